#include "ge/zelkorin/CGeServidorAtendimento.h"

#include <cstring>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVLog.h"

namespace {

// An out record a method does not fill owns nothing: zero it.
template <class T>
void ZeraSaida(T* p) {
  if (p != nullptr) std::memset(p, 0, sizeof *p);
}

}  // namespace

CGeServidorAtendimento::~CGeServidorAtendimento() { QV_LOGA(Finaliza()); }

HRESULT CGeServidorAtendimento::OnInicializa() {
  QV_CHECK(CQVBaseParaRotinas::OnInicializa());
  QV_CHECK(GetDiretorioDadosModulo(QV_GE, &m_sDiretorioDados));
  if (m_sDiretorioDados.empty()) QV_RETURN(E_QVDF_EMPRESA_SEM_DIRETORIO_DADOS);
  return S_OK;
}

HRESULT CGeServidorAtendimento::BuscaPonteiros(const _REG_FILTRO_ATENDIMENTO_PS&, _REG_LISTA_PONTEIROS_PS* pLista,
                                               _REG_CLIENTES_ATENDIMENTO_PS* pClientes) {
  ZeraSaida(pLista);
  ZeraSaida(pClientes);
  return E_NOTIMPL;
}

HRESULT CGeServidorAtendimento::BuscaRegistros(const _REG_LISTA_PONTEIROS_PS&, _REG_LISTA_REGISTROS_PS* pRegistros) {
  ZeraSaida(pRegistros);
  return E_NOTIMPL;
}

HRESULT CGeServidorAtendimento::BuscaPonteirosAgenda(const _REG_FILTRO_AGENDA_PS&, _REG_LISTA_PONTEIROS_AGENDA* pLista) {
  ZeraSaida(pLista);
  return E_NOTIMPL;
}

HRESULT CGeServidorAtendimento::BuscaRegistrosAgenda(const _REG_LISTA_PONTEIROS_AGENDA&,
                                                     _REG_LISTA_SERVICOS_AGENDA_PS* pLista) {
  ZeraSaida(pLista);
  return E_NOTIMPL;
}

HRESULT CGeServidorAtendimento::LeAtendimento(std::uint16_t, std::uint32_t, _REG_ATENDIMENTO_PS* pAtendimento) {
  ZeraSaida(pAtendimento);
  return E_NOTIMPL;
}

HRESULT CGeServidorAtendimento::LeAtendimentoLight(std::uint16_t, std::uint32_t, _REG_ATENDIMENTO_PS* pAtendimento) {
  ZeraSaida(pAtendimento);
  return E_NOTIMPL;
}

HRESULT CGeServidorAtendimento::GravaAtendimento(std::uint16_t, std::uint32_t, const _REG_ATENDIMENTO_PS&,
                                                 std::uint32_t* plPosicaoGravada) {
  if (plPosicaoGravada != nullptr) *plPosicaoGravada = 0;
  return E_NOTIMPL;
}

HRESULT CGeServidorAtendimento::LePropriedades(_REG_PROPRIEDADES_ATENDIMENTO_PS* pPropriedades, std::uint32_t) {
  ZeraSaida(pPropriedades);
  return E_NOTIMPL;
}

HRESULT CGeServidorAtendimento::GravaPropriedades(const _REG_PROPRIEDADES_ATENDIMENTO_PS&, std::uint32_t) {
  return E_NOTIMPL;
}

HRESULT CGeServidorAtendimento::BuscaLeiautesAtendimento(BSTR* pbs) {
  if (pbs != nullptr) *pbs = nullptr;
  return E_NOTIMPL;
}

HRESULT CGeServidorAtendimento::BuscaLeiautesAtendimentoDFCLAY(BSTR* pbs) {
  if (pbs != nullptr) *pbs = nullptr;
  return E_NOTIMPL;
}

HRESULT CGeServidorAtendimento::BuscaLeiautesAtendimentoDFCMOD(BSTR* pbs) {
  if (pbs != nullptr) *pbs = nullptr;
  return E_NOTIMPL;
}

HRESULT CGeServidorAtendimento::ConsistirNumeroAtendimentoPS(std::uint32_t, std::int32_t* pbNaoDuplicado) {
  if (pbNaoDuplicado != nullptr) *pbNaoDuplicado = 0;
  return E_NOTIMPL;
}

HRESULT CGeServidorAtendimento::GeraRelatorioAgrupamento(const _REG_RELATORIO_ATENDIMENTO_PS&, std::uint8_t) {
  return E_NOTIMPL;
}

HRESULT CGeServidorAtendimento::GeraRelatorioPeriodo(const _REG_RELATORIO_ATENDIMENTO_PS&) { return E_NOTIMPL; }

HRESULT CGeServidorAtendimento::GeraRelatorioAtendimento(const _REG_RELATORIO_ATENDIMENTO_PS&) { return E_NOTIMPL; }

HRESULT CGeServidorAtendimento::GeraRelatorioControleHoras(const _REG_FILTRO_REL_CONTROLE_HORAS&) { return E_NOTIMPL; }

HRESULT CGeServidorAtendimento::GeraRelatorioConsultaAgendamento(_REG_REL_CONSULTA_AGENDAMENTO*) { return E_NOTIMPL; }
