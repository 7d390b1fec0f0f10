#include "suite/txlog/CLogTransacoesHelper.h"

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVDatas.h"
#include "df/qvlibex/QVLog.h"
#include "suite/hostlink/CQVBaseParaRotinas.h"
#include "suite/store/CQVBancoSuite.h"

HRESULT CLogTransacoesHelper::Inicializa(const CQVBaseParaRotinas* pBase) {
  if (pBase == nullptr) QV_RETURN(E_POINTER);
  const std::shared_ptr<IQVConexaoSuite>& pConexao = pBase->GetConexao();
  if (!pConexao) {
    QVLogaFalhaHr(QV_LOCAL, "pBase->GetConexao()", E_QVDF_SEM_SESSAO_SUITE,
                  {{"empresa", pBase->GetEmpresa()}, {"sessao", std::to_string(pBase->GetNumeroSessao())}});
    return E_QVDF_SEM_SESSAO_SUITE;
  }
  m_lEmpresa = pConexao->GetPonteiroEmpresa();
  m_lUsuario = pConexao->GetPonteiroUsuario();
  m_lSessao = pBase->GetNumeroSessao();
  m_uiModulo = pBase->GetModulo();
  return S_OK;
}

HRESULT CLogTransacoesHelper::Grava(const REG_QVDMC& chave, E_GE_REGISTRO_LOG eTipo, char cOperacao,
                                    const std::string& sTexto) {
  // A connected session always has a company: 0 means Inicializa never took one.
  if (m_lEmpresa == 0) {
    QVLogaFalhaHr(QV_LOCAL, "m_lEmpresa", E_QVDF_SEM_SESSAO_SUITE);
    return E_QVDF_SEM_SESSAO_SUITE;
  }
  if (cOperacao != 'I' && cOperacao != 'A' && cOperacao != 'E') {
    QVLogaFalhaHr(QV_LOCAL, "cOperacao", E_INVALIDARG,
                  {{"cOperacao", std::to_string(static_cast<unsigned char>(cOperacao))}});
    return E_INVALIDARG;
  }
  // The store of this process (a fork opens its own), not one kept from
  // Inicializa.
  std::shared_ptr<CQVBancoSuite> pBanco;
  QV_CHECK(QVBancoSuite(&pBanco));
  const std::int64_t i64DataHora = QVDataHoraAgora();
  const HRESULT hr = pBanco->Transacao([&]() -> HRESULT {
    CQVComandoSuite cmd;
    QV_CHECK(pBanco->Prepara(
        "INSERT INTO log_transacoes(ponteiro_empresa, usuario, sessao, data_hora, modulo, tipo, operacao, chave, texto)"
        " VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9)",
        &cmd));
    cmd.Liga(1, std::int64_t{m_lEmpresa})
        .Liga(2, std::int64_t{m_lUsuario})
        .Liga(3, std::int64_t{m_lSessao})
        .Liga(4, i64DataHora)
        .Liga(5, std::int64_t{m_uiModulo})
        .Liga(6, static_cast<std::int64_t>(eTipo))
        .Liga(7, std::string_view(&cOperacao, 1))
        .Liga(8, static_cast<std::int64_t>(chave.ui))
        .Liga(9, sTexto);
    QV_CHECK(cmd.Executa());
    return S_OK;
  });
  return hr;  // a failure was logged where it happened
}
