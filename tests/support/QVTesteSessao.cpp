// The session library's part of the test support: the data root of the
// embedded default session points into the test's directory; initialisation
// records as a client sends them.
#include <gtest/gtest.h>

#include "df/qvlibex/QVLog.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "suite/store/CQVBancoSuite.h"
#include "tests/support/QVTestSupport.h"

namespace {

void PreparaRaizDados(const std::string& dir) { QVDefineRaizDados(dir + "/dados"); }

const bool g_raiz = QVTesteRegistraPreparo(PreparaRaizDados);

}  // namespace

_REG_DF_INICIALIZAPS QVTesteInicializaPS(const std::string& empresa) {
  QVDadosInicializacao d;
  // As a client sends it: a company the record cannot carry unchanged is a
  // mistake of the test, not a case to cut down.
  if (FAILED(QVEmpresaParaRegistro(empresa, &d.empresa))) ADD_FAILURE() << "empresa inválida no teste: " << empresa;
  if (!empresa.empty() && SUCCEEDED(QVValidaNomeEmpresa(empresa))) QVTesteCadastraEmpresa(empresa);
  d.usuario = kQVTesteUsuario;
  d.numeroSessao = 1234;
  d.aplicativo = "testes";
  d.moduleName = "GE";
  d.arquivoFonte = "QVTestSupport.cpp";
  d.linhaFonte = 42;
  d.nomeUsuarioDominio = "dominio\\teste";
  return QVMontaInicializaPS(d);
}

std::shared_ptr<CQVBancoSuite> QVTesteBancoSuite() {
  std::shared_ptr<CQVBancoSuite> pBanco;
  if (FAILED(QVBancoSuite(&pBanco))) ADD_FAILURE() << "banco da suíte indisponível em " << QVRaizDados();
  return pBanco;
}

void QVTesteExecutaSql(const std::string& sql) {
  auto pBanco = QVTesteBancoSuite();
  if (!pBanco) return;
  auto trava = pBanco->Trava();
  if (FAILED(pBanco->ExecutaSql(sql.c_str()))) ADD_FAILURE() << "SQL do teste falhou: " << sql;
}

std::uint32_t QVTesteCadastraEmpresa(const std::string& empresa, std::uint32_t usuario) {
  auto pBanco = QVTesteBancoSuite();
  if (!pBanco) return 0;
  std::uint32_t lEmpresa = 0;
  const HRESULT hr = pBanco->Transacao([&]() -> HRESULT {
    CQVComandoSuite cmd;
    QV_CHECK(pBanco->Prepara("INSERT OR IGNORE INTO empresas(nome, razao_social) VALUES(?1, ?1)", &cmd));
    QV_CHECK(cmd.Liga(1, empresa).Executa());
    CQVComandoSuite le;
    QV_CHECK(pBanco->Prepara("SELECT ponteiro FROM empresas WHERE nome = ?1", &le));
    bool bLinha = false;
    QV_CHECK(le.Liga(1, empresa).Passo(&bLinha));
    if (!bLinha) return E_UNEXPECTED;
    lEmpresa = static_cast<std::uint32_t>(le.Inteiro(0));
    CQVComandoSuite u;
    QV_CHECK(pBanco->Prepara("INSERT OR IGNORE INTO usuarios(ponteiro, login, nome) VALUES(?1, 'usuario' || ?1, 'Usuário ' || ?1)", &u));
    QV_CHECK(u.Liga(1, static_cast<std::int64_t>(usuario)).Executa());
    CQVComandoSuite ue;
    QV_CHECK(pBanco->Prepara("INSERT OR IGNORE INTO usuarios_empresas(ponteiro_usuario, ponteiro_empresa) VALUES(?1, ?2)", &ue));
    QV_CHECK(ue.Liga(1, static_cast<std::int64_t>(usuario)).Liga(2, static_cast<std::int64_t>(lEmpresa)).Executa());
    return S_OK;
  });
  if (FAILED(hr)) ADD_FAILURE() << "cadastro da empresa de teste falhou: " << empresa;
  return lEmpresa;
}
