#include "ge/zelkorin/atendimento/CFiltro.h"

#include <algorithm>
#include <cstring>

#include "df/qvlibex/QVDatas.h"
#include "df/qvlibex/QVException.h"
#include "df/qvlibex/QVLog.h"
#include "platform/QVCodePage.h"
#include "suite/masterdata/IQVAcessoEmpresarial.h"

// The check of a call made while testing a call: logged like any check,
// then thrown (see the header).
#define QV_CHECK_LANCA_HR(hrVar, expr)                                                \
  do {                                                                                \
    (hrVar) = (expr);                                                                 \
    if (QVFalhaNaoTolerada(QV_LOCAL, #expr, (hrVar), {})) throw _com_error(hrVar);    \
  } while (0)
#define QV_CHECK_LANCA(expr)               \
  do {                                     \
    HRESULT qvHrLanca_;                    \
    QV_CHECK_LANCA_HR(qvHrLanca_, expr);   \
  } while (0)

namespace {

// A text of the code page with its letters in one case, for a comparison
// that ignores case (the code page's letters, as the suite folds them).
std::string Dobrada(std::string_view sAnsi) { return QVMaiusculasCodePage(QVAnsiToUtf8(sAnsi)); }

template <class T>
std::string_view Texto(const T& campo) {
  return {campo, strnlen(campo, sizeof campo)};
}

// A bound of a range: 0 restricts nothing.
bool AbaixoDoInicio(std::uint32_t iData, std::uint32_t iInicio) { return iInicio != 0 && iData < iInicio; }
bool AcimaDoFim(std::uint32_t iData, std::uint32_t iFim) { return iFim != 0 && iData > iFim; }
bool ForaDoPeriodo(std::uint32_t iData, std::uint32_t iInicio, std::uint32_t iFim) {
  return AbaixoDoInicio(iData, iInicio) || AcimaDoFim(iData, iFim);
}

template <class T>
std::vector<T> Ordenados(const T* p, std::int32_t n) {
  std::vector<T> v;
  if (p != nullptr && n > 0) v.assign(p, p + n);
  std::sort(v.begin(), v.end());
  return v;
}

}  // namespace

CFiltro::CFiltro(const _REG_FILTRO_ATENDIMENTO_PS& filtro)
    : m_Filtro(filtro),
      m_Vinculos(m_Filtro.GetVinculos()),
      m_MesesExplicitos(Ordenados(filtro.arrMA, filtro.iQtdeMA)),
      m_PosicoesExplicitas(Ordenados(filtro.arrlPos, filtro.iQtdePos)) {
  const std::string_view sDescricao = Texto(m_Filtro.cDescricaoServico);
  if (!sDescricao.empty()) m_sDescricaoServico = Dobrada(sDescricao);
}

HRESULT CFiltro::OnInicializa() {
  QV_CHECK(CQVBaseParaRotinas::OnInicializa());
  QV_CHECK(GetAcessoEmpresarial()->LeBufferFiliaisAtivas(GetUsuario(), &m_dadosFiliaisAtivas));
  if (m_Filtro.bListarExecutoresPermissoesIguais) QV_CHECK(LeListaExecutores());
  if (m_Filtro.bVerificarTituloServico)
    QV_CHECK(GetAcessoEmpresarial()->LeServico(m_Filtro.lPonteiroServico, &m_ServicoFiltro));
  return S_OK;
}

// The users who may be listed as executors for this user: executors with the
// same permission profile as the session's user. Of them only the filter's
// executor is kept: an executor outside that set finds nothing.
HRESULT CFiltro::LeListaExecutores() {
  CQVDadosDF_UsuarioFiltro dadosUsuarioFiltro;
  dadosUsuarioFiltro.bSomenteExecutores = true;
  dadosUsuarioFiltro.lPermissoesIguaisA = GetUsuario();
  std::vector<std::uint32_t> listaPonteiros;
  QV_CHECK(GetAcessoEmpresarial()->BuscaPonteirosUsuario(dadosUsuarioFiltro, &listaPonteiros));
  m_listaExecutores.clear();
  for (const std::uint32_t lPonteiro : listaPonteiros)
    if (lPonteiro == m_Filtro.lPonteiroExecutor) m_listaExecutores.push_back(lPonteiro);
  return S_OK;
}

bool CFiltro::FiltraDatas(const REG_ATENDIMENTO_V2& a) const {
  const CRegFiltroAtendimento& f = m_Filtro;
  return !ForaDoPeriodo(a.iDataFaturamento, f.iDataFaturamentoInicio, f.iDataFaturamentoFim) &&
         !ForaDoPeriodo(a.iDataEmissao, f.iPeriodoInicio, f.iPeriodoFim) &&
         !ForaDoPeriodo(a.iDataConclusao, f.iDataConclusaoInicial, f.iDataConclusaoFinal) &&
         !ForaDoPeriodo(a.iDataAgendamento, f.iDataAgendInicial, f.iDataAgendFinal);
}

// Reviewed flag, origin and status (invoiced, cancelled).
bool CFiltro::FiltraOrigemESituacao(const REG_ATENDIMENTO_V2& a) const {
  const CRegFiltroAtendimento& f = m_Filtro;
  if (f.cConferido != f.cNaoConferido) {
    if (f.cConferido && !a.cConferido) return false;
    if (f.cNaoConferido && a.cConferido) return false;
  }
  // The integration flag alone does not switch the origin test on.
  if (f.bOrigemGerenciador || f.bOrigemWeb || f.bOrigemImportacao) {
    const bool bImportado = a.cImportacao != 0;
    const bool bWeb = a.bWeb != 0;
    const bool bPassa = (f.bOrigemImportacao && bImportado) || (f.bOrigemWeb && bWeb) ||
                        (f.bOrigemGerenciador && !bImportado && !bWeb) ||
                        (f.cOrigemIntegracaoAcompanhamento && a.cOrigemAcompServ != 0);
    if (!bPassa) return false;
  }
  if (f.cSomenteNaoFaturados && (a.bFaturado || a.bReembolsado)) return false;
  if (f.bFiltrarAtivoECancelado && (f.bAtivo != 0) != (f.bCancelado != 0)) {
    if (f.bAtivo && a.bCancelado) return false;
    if (f.bCancelado && !a.bCancelado) return false;
  }
  return true;
}

bool CFiltro::FiltraListaExplicita(std::uint16_t iMA, std::uint32_t lPosicao) const {
  if (m_Filtro.iQtdeMA <= 0) return true;
  if (!std::binary_search(m_MesesExplicitos.begin(), m_MesesExplicitos.end(), iMA)) return false;
  // No position listed rejects every call.
  return std::binary_search(m_PosicoesExplicitas.begin(), m_PosicoesExplicitas.end(), lPosicao);
}

bool CFiltro::Filtra(const REG_ATENDIMENTO_V2& a, std::uint16_t iMA, std::uint32_t lPosicao,
                     CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  const CRegFiltroAtendimento& f = m_Filtro;
  if (!m_dadosFiliaisAtivas.EhFilialAtiva(a.lPonteiroFilial)) return false;
  if (f.cNivelDataTree == 3 && a.iDataEmissao != f.iDataTreeInicial) return false;
  auto difere = [](std::uint32_t lFiltro, std::uint32_t lValor) { return lFiltro != 0 && lFiltro != lValor; };
  if (difere(f.lClienteSelecionadoTree, a.lPonteiroCliente)) return false;
  if (difere(f.lPonteiroFilial, a.lPonteiroFilial)) return false;
  if (difere(f.lNumeroAtendimento, a.lNumeroAtendimento)) return false;
  if (difere(f.lPonteiroCliente, a.lPonteiroCliente)) return false;
  if (difere(f.lPonteiroCliente2, a.lPonteiroCliente2)) return false;
  if (difere(f.lPonteiroClienteParaFaturamento, a.lPonteiroCliente2 != 0 ? a.lPonteiroCliente2 : a.lPonteiroCliente))
    return false;
  if (difere(f.lPonteiroContrato, a.lPonteiroContrato)) return false;
  if (const std::string_view sContrato = Texto(f.cContrato); !sContrato.empty() && sContrato != Texto(a.cContrato))
    return false;
  if (!FiltraDatas(a)) return false;
  if (!FiltraOrigemESituacao(a)) return false;
  if (f.lPonteiroMunicipio != 0) {
    // One read per client and search.
    const std::uint32_t lPonteiroCliente = a.lPonteiroCliente;
    auto it = m_MunicipioCliente.find(lPonteiroCliente);
    if (it == m_MunicipioCliente.end()) {
      CQVDadosDF_Cliente dadosCliente;
      QV_CHECK_LANCA(GetAcessoEmpresarial()->LeBufferCFRTLibPla(lPonteiroCliente, &dadosCliente));
      it = m_MunicipioCliente.emplace(lPonteiroCliente, dadosCliente.GetPonteiroMunicipio()).first;
    }
    if (it->second != f.lPonteiroMunicipio) return false;
  }
  if (!FiltraListaExplicita(iMA, lPosicao)) return false;
  if (!FiltraListaServicos(a, pGEAtendimentoDB)) return false;
  if (m_Vinculos.Vazio()) return true;
  // Linked data are keyed by the month of the call's date, not the month
  // of its file.
  CIEVinculo dadosRegistro;
  HRESULT hr = S_OK;
  QV_CHECK_LANCA_HR(hr, GetAcessoEmpresarial()->LeVinculos(QVMesAnoDoDia(a.iDataEmissao), lPosicao, &dadosRegistro));
  return hr == S_OK && m_Vinculos.Corresponde(dadosRegistro);
}

bool CFiltro::FiltraListaServicos(const REG_ATENDIMENTO_V2& a, CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  if (!m_Filtro.TemCriterioServico()) return true;
  for (std::uint32_t i = 0; i < a.iQuantidadeServicoAtend; ++i) {
    const QVUInt lPosicao = QVUInt{a.lPonteiroServicoAtend} + i;
    REG_SERVICO_ATENDIMENTO_V3 servico;
    QV_CHECK_LANCA(pGEAtendimentoDB->m_ArqServico.Le(lPosicao, &servico));
    if (FiltraServico(servico, pGEAtendimentoDB)) return true;
  }
  return false;
}

bool CFiltro::FiltraServico(const REG_SERVICO_ATENDIMENTO_V3& servico,
                            CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  const CRegFiltroAtendimento& f = m_Filtro;
  if (f.lPonteiroServico != 0 && f.lPonteiroServico != servico.lPonteiroServico) return false;
  if (f.bListarExecutoresPermissoesIguais) {
    const std::uint32_t lExecutor = servico.lPonteiroExecutor;  // a packed field binds no reference
    if (std::find(m_listaExecutores.begin(), m_listaExecutores.end(), lExecutor) == m_listaExecutores.end())
      return false;
  } else if (f.lPonteiroExecutor != 0 && f.lPonteiroExecutor != servico.lPonteiroExecutor) {
    return false;
  }
  if ((f.bPendente || f.bRealizado) &&
      !((f.bPendente && servico.cSituacao == 0) || (f.bRealizado && servico.cSituacao == 1)))
    return false;
  if (!m_sDescricaoServico.empty()) {
    std::string sDescricao;
    if (servico.lPonteiroDescricao != 0)
      QV_CHECK_LANCA(pGEAtendimentoDB->m_ArqStringAtendimento.Le(servico.lPonteiroDescricao, &sDescricao));
    if (Dobrada(sDescricao).find(m_sDescricaoServico) == std::string::npos) return false;
  }
  // Both bounds as they stand: a start without an end keeps nothing.
  if ((f.iDataSaidaInicial != 0 || f.iDataSaidaFinal != 0) &&
      !(f.iDataSaidaInicial <= servico.iDataSaida && servico.iDataSaida <= f.iDataSaidaFinal))
    return false;
  if (f.lPtrProjeto != 0 && f.lPtrProjeto != servico.lPtrProjeto) return false;
  if (f.bVerificarTituloServico && m_ServicoFiltro.GetTipo() == kQVServicoTitulo) {
    // One read per service and search.
    const std::uint32_t lPonteiroServico = servico.lPonteiroServico;
    auto it = m_ClassificacaoServico.find(lPonteiroServico);
    if (it == m_ClassificacaoServico.end()) {
      CQVDadosDF_Servico dadosServico;
      QV_CHECK_LANCA(GetAcessoEmpresarial()->LeServico(lPonteiroServico, &dadosServico));
      it = m_ClassificacaoServico.emplace(lPonteiroServico, dadosServico.GetClassificacao()).first;
    }
    const std::string& sTitulo = m_ServicoFiltro.GetClassificacao();
    const std::string& sClassificacao = it->second;
    return sClassificacao.size() > sTitulo.size() && sClassificacao.compare(0, sTitulo.size(), sTitulo) == 0;
  }
  return true;
}
