#include "suite/moduleutil/CConexaoGesInteg.h"

#include <limits>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVLog.h"
#include "platform/QVCodePage.h"
#include "suite/store/CQVBancoSuite.h"

namespace {

// The integration services of one company over the suite store's invoices
// (table notas_fiscais).
class CQVGE_IntegracaoSuite : public IQVGE_Integracao {
 public:
  CQVGE_IntegracaoSuite(std::shared_ptr<CQVBancoSuite> pBanco, std::uint32_t lEmpresa)
      : m_pBanco(std::move(pBanco)), m_lEmpresa(lEmpresa) {}

  HRESULT LeNotasFiscais(std::uint32_t iDataInicial, std::uint32_t iDataFinal, std::uint32_t lCliente,
                         std::uint32_t lServico) override;
  const std::vector<CQVDadosGE_NotaFiscal>& GetNotasFiscais() const override { return m_notas; }
  HRESULT GetValorRecebidoAtTecFaturado(std::uint16_t iMA, std::uint32_t lPosicao, QVMoeda* pvValor) override;

 private:
  std::shared_ptr<CQVBancoSuite> m_pBanco;
  std::uint32_t m_lEmpresa;
  std::vector<CQVDadosGE_NotaFiscal> m_notas;
};

// An open end of the date range: past any day number.
constexpr std::int64_t kSemDataFinal = std::numeric_limits<std::int64_t>::max();

HRESULT CQVGE_IntegracaoSuite::LeNotasFiscais(std::uint32_t iDataInicial, std::uint32_t iDataFinal,
                                              std::uint32_t lCliente, std::uint32_t lServico) {
  m_notas.clear();
  // The range is always bound (0 and the largest number for open ends) so
  // that the company-and-date index serves it; number, then series and
  // pointer, keep invoices of one day in a stable order.
  static constexpr const char* kSql =
      "SELECT ponteiro, numero, serie, data_emissao, ponteiro_cliente, ponteiro_servico, ma_atendimento, "
      "posicao_atendimento, valor, valor_recebido FROM notas_fiscais "
      "WHERE ponteiro_empresa = ?1 AND data_emissao BETWEEN ?2 AND ?3 AND cancelada = 0 "
      "AND (?4 = 0 OR ponteiro_cliente = ?4) AND (?5 = 0 OR ponteiro_servico = ?5) "
      "ORDER BY data_emissao, numero, serie, ponteiro";
  std::vector<CQVDadosGE_NotaFiscal> notas;
  {
    auto trava = m_pBanco->Trava();
    CQVComandoSuite cmd;
    QV_CHECK(m_pBanco->Prepara(kSql, &cmd));
    cmd.Liga(1, std::int64_t{m_lEmpresa})
        .Liga(2, std::int64_t{iDataInicial})
        .Liga(3, iDataFinal == 0 ? kSemDataFinal : std::int64_t{iDataFinal})
        .Liga(4, std::int64_t{lCliente})
        .Liga(5, std::int64_t{lServico});
    for (bool bLinha = true;;) {
      QV_CHECK(cmd.Passo(&bLinha));
      if (!bLinha) break;
      CQVDadosGE_NotaFiscal& n = notas.emplace_back();
      n.lPonteiro = static_cast<std::uint32_t>(cmd.Inteiro(0));
      n.i64Numero = cmd.Inteiro(1);
      n.sSerie = cmd.Texto(2);
      n.iDataEmissao = static_cast<std::uint32_t>(cmd.Inteiro(3));
      n.lPonteiroCliente = static_cast<std::uint32_t>(cmd.Inteiro(4));
      n.lPonteiroServico = static_cast<std::uint32_t>(cmd.Inteiro(5));
      n.iMAAtendimento = static_cast<std::uint16_t>(cmd.Inteiro(6));
      n.lPosicaoAtendimento = static_cast<std::uint32_t>(cmd.Inteiro(7));
      n.vValor = cmd.Inteiro(8);
      n.vValorRecebido = cmd.Inteiro(9);
    }
  }
  m_notas = std::move(notas);
  return S_OK;
}

HRESULT CQVGE_IntegracaoSuite::GetValorRecebidoAtTecFaturado(std::uint16_t iMA, std::uint32_t lPosicao,
                                                             QVMoeda* pvValor) {
  if (pvValor == nullptr) QV_RETURN(E_POINTER);
  *pvValor = 0;
  // Position 0 is no call: the invoices of no call are nobody's receipts.
  if (lPosicao == 0) return S_OK;
  // Summed here rather than by SUM(): an overflow is then this call's
  // DISP_E_OVERFLOW, not a generic failure of the store.
  static constexpr const char* kSql =
      "SELECT valor_recebido FROM notas_fiscais "
      "WHERE ponteiro_empresa = ?1 AND ma_atendimento = ?2 AND posicao_atendimento = ?3 AND cancelada = 0";
  QVMoeda vTotal = 0;
  auto trava = m_pBanco->Trava();
  CQVComandoSuite cmd;
  QV_CHECK(m_pBanco->Prepara(kSql, &cmd));
  cmd.Liga(1, std::int64_t{m_lEmpresa}).Liga(2, std::int64_t{iMA}).Liga(3, std::int64_t{lPosicao});
  for (bool bLinha = true;;) {
    QV_CHECK(cmd.Passo(&bLinha));
    if (!bLinha) break;
    if (__builtin_add_overflow(vTotal, cmd.Inteiro(0), &vTotal)) {
      QVLogaFalhaHr(QV_LOCAL, "__builtin_add_overflow(vTotal, cmd.Inteiro(0), &vTotal)", DISP_E_OVERFLOW,
                    {{"iMA", std::to_string(iMA)}, {"lPosicao", std::to_string(lPosicao)}});
      return DISP_E_OVERFLOW;
    }
  }
  *pvValor = vTotal;
  return S_OK;
}

}  // namespace

CConexaoGesInteg::CConexaoGesInteg() = default;
CConexaoGesInteg::~CConexaoGesInteg() = default;

HRESULT CConexaoGesInteg::Inicializa(const std::string& sEmpresa, std::uint32_t lUsuario, std::uint32_t lSessao) {
  m_pIntegracao.reset();
  std::shared_ptr<CQVBancoSuite> pBanco;
  QV_CHECK(QVBancoSuite(&pBanco));
  QVEmpresaSuite empresa;
  HRESULT hr = S_OK;
  QV_CHECK_HR(hr, QVProcuraEmpresaSuite(*pBanco, sEmpresa, &empresa));
  if (hr == S_FALSE) {
    QVLogaFalhaHr(QV_LOCAL, "E_QVDF_EMPRESA_NAO_CADASTRADA", E_QVDF_EMPRESA_NAO_CADASTRADA,
                  {{"sEmpresa", sEmpresa},
                   {"lUsuario", std::to_string(lUsuario)},
                   {"lSessao", std::to_string(lSessao)}});
    return E_QVDF_EMPRESA_NAO_CADASTRADA;
  }
  m_pIntegracao = std::make_unique<CQVGE_IntegracaoSuite>(std::move(pBanco), empresa.lPonteiro);
  return S_OK;
}
