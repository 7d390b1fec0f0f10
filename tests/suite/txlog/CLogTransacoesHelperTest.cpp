// The transaction log helper: refused without a session or with an unknown
// operation, one row with the session's identity otherwise.
#include "suite/txlog/CLogTransacoesHelper.h"

#include <gtest/gtest.h>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVDatas.h"
#include "suite/hostlink/CQVBaseParaRotinas.h"
#include "suite/hostlink/CQVConexaoSuitePadrao.h"
#include "suite/store/CQVBancoSuite.h"
#include "tests/support/QVTestSupport.h"

namespace {

// A session library that connects every record to one registered company.
struct SessaoDeTeste : IQVSessaoSuite {
  std::uint32_t lEmpresa = QVTesteCadastraEmpresa("EMPRESA_LOG");
  HRESULT Conecta(const _REG_DF_INICIALIZAPS& regps, std::shared_ptr<IQVConexaoSuite>* pp) override {
    *pp = std::make_shared<CQVConexaoSuitePadrao>(QVTesteBancoSuite(), lEmpresa, regps.ulUsuario);
    return S_OK;
  }
  HRESULT GetDiretorioDadosModulo(std::uint32_t, const std::string&, std::string*) override { return E_NOTIMPL; }
};

struct BaseGE : CQVBaseParaRotinas {
  std::uint32_t GetModulo() const override { return QV_GE; }
};

// The last row's columns, joined by '|'.
std::string UltimaLinha() {
  auto p = QVTesteBancoSuite();
  auto trava = p->Trava();
  CQVComandoSuite cmd;
  bool b = false;
  return SUCCEEDED(p->Prepara("SELECT ponteiro_empresa||'|'||usuario||'|'||sessao||'|'||modulo||'|'||tipo||'|'||"
                              "operacao||'|'||chave||'|'||texto, data_hora FROM log_transacoes ORDER BY ponteiro DESC",
                              &cmd)) &&
                 SUCCEEDED(cmd.Passo(&b)) && b
             ? cmd.Texto(0) + "|" + cmd.Texto(1)
             : "";
}

}  // namespace

TEST(LogTransacoesTest, SemSessaoRecusado) {
  QVTesteLimpaLog();
  BaseGE base;
  CLogTransacoesHelper log;
  EXPECT_EQ(log.Inicializa(&base), E_QVDF_SEM_SESSAO_SUITE);
  EXPECT_EQ(QVTesteLinhasErro().size(), 1u);
  EXPECT_EQ(log.Grava(REG_QVDMC(), E_GE_REGISTRO_LOG::eLogProjeto, 'I'), E_QVDF_SEM_SESSAO_SUITE);
}

TEST(LogTransacoesTest, UmaLinhaComAIdentidadeDaSessao) {
  auto pSessao = std::make_shared<SessaoDeTeste>();
  QVDefineSessaoSuite(pSessao);
  BaseGE base;
  CLogTransacoesHelper log;
  const HRESULT hr = base.Inicializa(QVTesteInicializaPS("EMPRESA_LOG"));
  QVDefineSessaoSuite(nullptr);
  ASSERT_EQ(hr, S_OK);
  ASSERT_EQ(log.Inicializa(&base), S_OK);
  const REG_QVDMC chave = REG_QVDMC().SetDMC(3, 2000);
  const std::int64_t inicio = QVDataHoraAgora();
  ASSERT_EQ(log.Grava(chave, E_GE_REGISTRO_LOG::eLogAcompanhamento, 'E', "Exclusão"), S_OK);
  const std::string linha = UltimaLinha();
  const std::string esperada =
      std::to_string(pSessao->lEmpresa) + "|7|1234|9|3|E|" + std::to_string(chave.ui) + "|Exclusão|";
  ASSERT_EQ(linha.substr(0, esperada.size()), esperada);
  const std::int64_t dataHora = std::stoll(linha.substr(esperada.size()));
  EXPECT_TRUE(dataHora >= inicio && dataHora <= QVDataHoraAgora());
  for (const char c : {'X', 'a', '\0'}) {
    QVTesteLimpaLog();
    EXPECT_EQ(log.Grava(REG_QVDMC(), E_GE_REGISTRO_LOG::eLogAtendimentoTecnico, c), E_INVALIDARG);
    EXPECT_EQ(QVTesteLinhasErro().size(), 1u);
  }
  EXPECT_EQ(UltimaLinha(), linha);  // nothing written since
}
