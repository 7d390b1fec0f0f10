#include "suite/hostlink/CQVBaseParaRotinas.h"

#include "df/qvlibex/QVLog.h"
#include "platform/QVCodePage.h"
#include "suite/hostlink/CQVAcessoSemSessao.h"

std::atomic<CQVBaseParaRotinas*> CQVBaseParaRotinas::s_pAcessoDefault{nullptr};

HRESULT CQVBaseParaRotinas::Inicializa(const _REG_DF_INICIALIZAPS& regps) {
  if (EstaInicializado()) QV_CHECK(Finaliza());
  // Nothing of a previous session outlives a refused one.
  m_bTemRegistro = false;
  QV_CHECK(QVSessaoSuite().Conecta(regps, &m_pConexao));
  m_regInicializacao = regps;
  m_bTemRegistro = true;
  const CQVProfilerEmpresa identidade(QVAnsiToUtf8(QVLeCampoTexto(regps.szEmpresa)),
                                      static_cast<std::uint16_t>(regps.ulUsuario), regps.ulNumeroSessao);
  DefineEmpresaErro(identidade.GetEmpresa());
  const HRESULT hr = QV_LOGA(Inicializa(&identidade));
  if (FAILED(hr)) {
    m_bTemRegistro = false;
    m_pConexao.reset();
  }
  return hr;
}

HRESULT CQVBaseParaRotinas::Inicializa(const CQVBaseParaRotinas* pOutra) {
  if (pOutra == nullptr) return E_POINTER;
  if (EstaInicializado()) QV_CHECK(Finaliza());
  m_pConexao = pOutra->m_pConexao;
  m_regInicializacao = pOutra->m_regInicializacao;
  m_bTemRegistro = pOutra->m_bTemRegistro;
  DefineEmpresaErro(pOutra->GetEmpresa());
  const HRESULT hr = QV_LOGA(Inicializa(static_cast<const IQVDF_Profiler*>(pOutra)));
  if (FAILED(hr)) {
    m_bTemRegistro = false;
    m_pConexao.reset();
  }
  return hr;
}

IQVAcessoGerenciador* CQVBaseParaRotinas::GetAcessoGerenciador() const {
  return m_pConexao ? m_pConexao->GetAcessoGerenciador() : QVAcessoGerenciadorSemSessao();
}

IQVAcessoEmpresarial* CQVBaseParaRotinas::GetAcessoEmpresarial() const {
  return m_pConexao ? m_pConexao->GetAcessoEmpresarial() : QVAcessoEmpresarialSemSessao();
}

HRESULT CQVBaseParaRotinas::FuncaoGenerica(std::uint32_t, const _REG_DF_FUNCAO_GENERICAPS&,
                                           _REG_DF_FUNCAO_GENERICAPS** ppregOutps) {
  if (ppregOutps != nullptr) *ppregOutps = nullptr;
  return E_NOTIMPL;
}

HRESULT CQVBaseParaRotinas::GetDiretorioDadosModulo(std::uint32_t modulo, std::string* pDiretorio) const {
  QV_CHECK(QVSessaoSuite().GetDiretorioDadosModulo(modulo, GetEmpresa(), pDiretorio));
  return S_OK;
}

void CQVBaseParaRotinas::SetAcessoDefault(CQVBaseParaRotinas* pBase) { s_pAcessoDefault.store(pBase); }

CQVBaseParaRotinas* CQVBaseParaRotinas::GetAcessoDefault() { return s_pAcessoDefault.load(); }
