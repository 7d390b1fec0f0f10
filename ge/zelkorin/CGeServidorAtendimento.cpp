#include "ge/zelkorin/CGeServidorAtendimento.h"

#include <cstring>
#include <vector>

#include "core/qvdatabase/CQVDataBaseUtil.h"
#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVLog.h"
#include "platform/QVOsFile.h"

namespace {

// An out record a method does not fill owns nothing: zero it.
template <class T>
void ZeraSaida(T* p) {
  if (p != nullptr) std::memset(static_cast<void*>(p), 0, sizeof *p);
}

// Every file of the service-call data, of this layout or of an older one,
// starts with "GEAT" (letter case ignored), but for the project store's
// "GEATPRJ" files, which do not make a company's call data exist.
bool EhArquivoDeAtendimento(const std::string& sNome) {
  auto prefixo = [&](std::string_view p) {
    return sNome.size() >= p.size() && QVNomesIguais(std::string_view(sNome).substr(0, p.size()), p);
  };
  return prefixo("GEAT") && !prefixo("GEATPRJ");
}

}  // namespace

CGeServidorAtendimento::~CGeServidorAtendimento() { QV_LOGA(Finaliza()); }

HRESULT CGeServidorAtendimento::OnInicializa() {
  QV_CHECK(CQVBaseParaRotinas::OnInicializa());
  QV_CHECK(GetDiretorioDadosModulo(QV_GE, &m_sDiretorioDados));
  if (m_sDiretorioDados.empty()) QV_RETURN(E_QVDF_EMPRESA_SEM_DIRETORIO_DADOS);
  QV_CHECK(QVDataBaseInicializa());
  return S_OK;
}

// The version record is read through a read-only database of its own: a
// company whose files are newer than this server, or older and not
// converted, must find them exactly as they were (not even listed in the
// file-creation control).
HRESULT CGeServidorAtendimento::ExecutaConversao() {
  REG_GE_ATENDIMENTOTECNICO_VERSAO regVersao{};
  {
    CQVDataBase qvDB(QV_GE);
    qvDB.SetSomenteLeitura(true);
    QV_CHECK(qvDB.Inicializa(this));
    CQVFileSingleReg<REG_GE_ATENDIMENTOTECNICO_VERSAO> arqVersao(kQVArquivoVersaoAtendimento, QV_GE);
    QV_CHECK(arqVersao.Inicializa(&qvDB));
    QV_CHECK(arqVersao.Le(&regVersao));
  }
  const std::uint16_t usVersao = regVersao.usVersao;
  if (usVersao == kQVVersaoAtendimentoTecnico) return S_OK;
  if (usVersao > kQVVersaoAtendimentoTecnico) {
    QVLogaFalhaHr(QV_LOCAL, "E_QVCR_VERSAO_DADOS_SUPERIOR_VERSAO_SISTEMA", E_QVCR_VERSAO_DADOS_SUPERIOR_VERSAO_SISTEMA,
                  {{"usVersao", std::to_string(usVersao)}});
    return E_QVCR_VERSAO_DADOS_SUPERIOR_VERSAO_SISTEMA;
  }

  // Older than the current layouts: a company that has no file of the
  // service calls at all is a new one, and starts at the current version.
  std::vector<std::string> nomes;
  HRESULT hr;
  QV_CHECK_HR(hr, QVListDirectory(m_sDiretorioDados, &nomes), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND),
              HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
  for (const std::string& sNome : nomes)
    if (EhArquivoDeAtendimento(sNome)) {
      QV_CHECK(ConverteVersaoAnterior(usVersao));
      return S_OK;
    }

  // The version first: a crash after it leaves a current company without
  // settings (read as zeros), never files without a version, which would
  // be taken for old data.
  REG_GE_ATENDIMENTOTECNICO_VERSAO regNova{};
  regNova.usVersao = kQVVersaoAtendimentoTecnico;
  QV_CHECK(CQVDataBaseUtil::GravaSingleReg(this, QV_GE, regNova, kQVArquivoVersaoAtendimento));
  REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1 regPropriedades{};
  regPropriedades.lProximoNumero = 1;
  regPropriedades.cListarDescricaoServicoNaNF = 1;
  QV_CHECK(CQVDataBaseUtil::GravaSingleReg(this, QV_GE, regPropriedades, kQVArquivoPropriedadesAtendimento));
  return S_OK;
}

HRESULT CGeServidorAtendimento::ConverteVersaoAnterior(std::uint16_t usVersao) {
  QVLogaFalhaHr(QV_LOCAL, "E_QVCR_VERSAO_DADOS_INFERIOR_SEM_CONVERSAO", E_QVCR_VERSAO_DADOS_INFERIOR_SEM_CONVERSAO,
                {{"usVersao", std::to_string(usVersao)}, {"m_sDiretorioDados", m_sDiretorioDados}});
  return E_QVCR_VERSAO_DADOS_INFERIOR_SEM_CONVERSAO;
}

HRESULT CGeServidorAtendimento::AtualizaDadosAcompanhamentoIntegrado(const _REG_ATENDIMENTO_PS&,
                                                                     const REG_SERVICO_ATENDIMENTO_V3&, std::uint32_t,
                                                                     CGeServidorAtendimentoDatabase*) {
  return S_OK;
}

HRESULT CGeServidorAtendimento::InsereServicoAcompanhamentoIntegrado(const _REG_ATENDIMENTO_PS&, const REG_QVDMC&,
                                                                     CGeServidorAtendimentoDatabase*) {
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
