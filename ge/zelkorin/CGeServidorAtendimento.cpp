#include "ge/zelkorin/CGeServidorAtendimento.h"

#include <cstring>
#include <vector>

#include "core/qvdatabase/CQVDataBaseUtil.h"
#include "df/qvlibex/CQVDatabaseMarca.h"
#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVDatas.h"
#include "df/qvlibex/QVLog.h"
#include "ge/zelkorin/atendimento/ZelkorinAtendimentoUtil.h"
#include "ge/zelkorin/atendimento/ZelkorinConversaoRegistros.h"
#include "platform/QVOsFile.h"
#include "suite/hostlink/IQVAcessoGerenciador.h"
#include "suite/txlog/CLogTransacoesHelper.h"

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

// ---- argument checks --------------------------------------------------------

HRESULT CGeServidorAtendimento::ValidaServidor() const {
  if (m_pDataBase == nullptr) QV_RETURN(E_QVCR_SERVIDOR_NAO_INICIALIZADO);
  // Every wire method starts here: what it reads reflects every write made
  // before it began, by this process or another.
  m_pDataBase->NovaEpocaLeitura();
  return S_OK;
}

HRESULT CGeServidorAtendimento::ValidaPosicao(std::uint16_t iMA, std::uint32_t lPosicao,
                                              CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  const QVUInt uiQtd = pGEAtendimentoDB->m_ArqAtendimento.GetQtdRegistros();
  if (lPosicao != 0 && lPosicao <= uiQtd) return S_OK;
  const HRESULT hr =
      lPosicao == 0 ? E_QVCR_TENTATIVA_LER_POSICAO_ZERO : E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO;
  QVLogaFalhaHr(QV_LOCAL,
                lPosicao == 0 ? "E_QVCR_TENTATIVA_LER_POSICAO_ZERO" : "E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO",
                hr,
                {{"iMA", std::to_string(iMA)},
                 {"lPosicao", std::to_string(lPosicao)},
                 {"GetQtdRegistros", std::to_string(uiQtd)}});
  return hr;
}

HRESULT CGeServidorAtendimento::ValidaMes(std::uint16_t iMA) const {
  int ano = 0, mes = 0;
  if (!QVMesAnoDecompoe(iMA, &ano, &mes)) {
    QVLogaFalhaHr(QV_LOCAL, "E_INVALIDARG", E_INVALIDARG, {{"iMA", std::to_string(iMA)}});
    return E_INVALIDARG;
  }
  return S_OK;
}

namespace {

// The first list of a call's tree whose count comes without its array,
// named as a path ("pServicos[1].pSessoes"); "" when there is none.
std::string ListaSemArray(const _REG_ATENDIMENTO_PS& a) {
  auto falta = [](std::uint64_t n, const void* p) { return n != 0 && p == nullptr; };
  auto indice = [](const char* lista, std::uint32_t i) { return std::string(lista) + "[" + std::to_string(i) + "]"; };
  auto classificacoes = [&](const std::string& sPai, std::uint32_t n,
                            const _REG_CLASSIFICACAO_GE_PS* p) -> std::string {
    if (falta(n, p)) return sPai + "pClassificacoes";
    for (std::uint32_t i = 0; i < n; ++i)
      if (falta(p[i].lQuantidadeGerencial, p[i].pGerenciais))
        return sPai + indice("pClassificacoes", i) + ".pGerenciais";
    return {};
  };
  auto retencoes = [&](const std::string& sPai, const _REG_RETENCOES_PS& r) -> std::string {
    return falta(r.iQtdDeducaoBCINSS, r.pRegDeducoesBCINSS) ? sPai + "pRegDeducoesBCINSS" : std::string();
  };
  auto efd = [&](const std::string& sPai, const tagREG_EFD_REINF_ITENS_NFPS& e) -> std::string {
    if (falta(e.iQuantidadeProcessosRetAjuiz, e.pRegProcessosRetAjuiz)) return sPai + "pRegProcessosRetAjuiz";
    if (falta(e.iQuantidadeProcessosRetAdic, e.pRegProcessosRetAdic)) return sPai + "pRegProcessosRetAdic";
    return {};
  };
  std::string s;
  if (falta(a.iQuantidadeServicoAtend, a.pServicos)) return "pServicos";
  for (std::uint32_t i = 0; i < a.iQuantidadeServicoAtend; ++i) {
    const _REG_SERVICO_ATENDIMENTO_PS& sv = a.pServicos[i];
    const std::string sPai = indice("pServicos", i) + ".";
    if (falta(sv.iQuantidadeSessao, sv.pSessoes)) return sPai + "pSessoes";
    if (!(s = classificacoes(sPai, sv.iQuantidadeClassificacao, sv.pClassificacoes)).empty()) return s;
    if (!(s = retencoes(sPai + "regRetencoes.", sv.regRetencoes)).empty()) return s;
    if (!(s = efd(sPai + "regEFD_REINF.", sv.regEFD_REINF)).empty()) return s;
  }
  if (falta(a.iQuantidadeDespesa, a.pDespesas)) return "pDespesas";
  for (std::uint32_t i = 0; i < a.iQuantidadeDespesa; ++i) {
    const _REG_DESPESA_ATENDIMENTO_PS& d = a.pDespesas[i];
    if (!(s = classificacoes(indice("pDespesas", i) + ".", d.iQuantidadeClassificacao, d.pClassificacoes)).empty())
      return s;
  }
  if (falta(a.lQtdRepresentante, a.pRepresentante)) return "pRepresentante";
  if (!(s = classificacoes("", a.lQuantidadeClassificacao, a.pClassificacoes)).empty()) return s;
  if (falta(a.regListaEventosGoogle.lQuantidadeEventos, a.regListaEventosGoogle.pListaEventos))
    return "regListaEventosGoogle.pListaEventos";
  if (falta(a.regListaPonteirosIntegACM.ulQuantidade, a.regListaPonteirosIntegACM.pLista))
    return "regListaPonteirosIntegACM.pLista";
  if (!(s = retencoes("regRetencoesSomarItensNF.", a.regRetencoesSomarItensNF)).empty()) return s;
  return efd("regEFDREINFPsSomarItensNF.", a.regEFDREINFPsSomarItensNF);
}

}  // namespace

HRESULT CGeServidorAtendimento::ValidaAtendimentoPs(const _REG_ATENDIMENTO_PS& atendimento) const {
  const std::string sLista = ListaSemArray(atendimento);
  if (!sLista.empty()) {
    QVLogaFalhaHr(QV_LOCAL, "E_INVALIDARG", E_INVALIDARG, {{"lista sem array", sLista}});
    return E_INVALIDARG;
  }
  return S_OK;
}

// ---- reading ----------------------------------------------------------------

// The two wire reads: the call at (iMA, lPosicao), with its whole tree or
// the record only. On failure the record is handed back empty.
HRESULT CGeServidorAtendimento::LeAtendimentoPs(std::uint16_t iMA, std::uint32_t lPosicao,
                                                _REG_ATENDIMENTO_PS* RegAtendimento, bool bCompleto) {
  ZeraSaida(RegAtendimento);
  if (RegAtendimento == nullptr) QV_RETURN(E_POINTER);
  QV_CHECK(ValidaServidor());
  HRESULT hr;
  QV_CHECK_HR(hr, ValidaMes(iMA), E_INVALIDARG);  // its own line names the month
  if (FAILED(hr)) return hr;
  CGeServidorAtendimentoDatabase* pGEAtendimentoDB = m_pDataBase;
  std::lock_guard trava(pGEAtendimentoDB->Trava());
  QV_CHECK(pGEAtendimentoDB->SelecionaMes(iMA));
  QV_CHECK_HR(hr, ValidaPosicao(iMA, lPosicao, pGEAtendimentoDB), E_QVCR_TENTATIVA_LER_POSICAO_ZERO,
              E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO);
  if (FAILED(hr)) return hr;
  hr = QV_LOGA(LeAtendimentoArquivo(lPosicao, *RegAtendimento, bCompleto, pGEAtendimentoDB));
  if (FAILED(hr)) {
    // What was read so far is the caller's no longer: on failure nothing.
    QVLibera(RegAtendimento);
    ZeraSaida(RegAtendimento);
  }
  return hr;
}

HRESULT CGeServidorAtendimento::LeAtendimento(std::uint16_t iMA, std::uint32_t lPosicao,
                                              _REG_ATENDIMENTO_PS* RegAtendimento) {
  return LeAtendimentoPs(iMA, lPosicao, RegAtendimento, true);
}

HRESULT CGeServidorAtendimento::LeAtendimentoLight(std::uint16_t iMA, std::uint32_t lPosicao,
                                                   _REG_ATENDIMENTO_PS* RegAtendimento) {
  return LeAtendimentoPs(iMA, lPosicao, RegAtendimento, false);
}

HRESULT CGeServidorAtendimento::LePropriedades(_REG_PROPRIEDADES_ATENDIMENTO_PS* RegPropriedadesPs, std::uint32_t) {
  ZeraSaida(RegPropriedadesPs);
  if (RegPropriedadesPs == nullptr) QV_RETURN(E_POINTER);
  QV_CHECK(ValidaServidor());
  REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1 rPropriedadesAtendimento;
  QV_CHECK(m_pDataBase->m_AtendimentoTecnicoPropriedades.Le(&rPropriedadesAtendimento));
  _REG_PROPRIEDADES_ATENDIMENTO_PS ps;
  QVPropriedadesParaPs(rPropriedadesAtendimento, ps);
  if (rPropriedadesAtendimento.lPonteiroNomeCliente2 != 0) {
    std::string sTexto;
    QV_CHECK(m_pDataBase->m_AtendimentoTecnicoPropTXT.Le(rPropriedadesAtendimento.lPonteiroNomeCliente2, &sTexto));
    QV_CHECK(QVTextoPsDefine(&ps.rNomeCliente2, sTexto));
  }
  *RegPropriedadesPs = ps;
  return S_OK;
}

// ---- writing ----------------------------------------------------------------

HRESULT CGeServidorAtendimento::GravaAtendimento(std::uint16_t iMA, std::uint32_t lPosicao,
                                                 const _REG_ATENDIMENTO_PS& RegAtendimentoPs,
                                                 std::uint32_t* lPosicaoGravada) {
  if (lPosicaoGravada == nullptr) QV_RETURN(E_POINTER);
  *lPosicaoGravada = 0;
  QV_CHECK(ValidaServidor());
  // Each check writes its own line, naming the argument at fault.
  HRESULT hr;
  QV_CHECK_HR(hr, ValidaMes(iMA), E_INVALIDARG);
  if (FAILED(hr)) return hr;
  QV_CHECK_HR(hr, ValidaAtendimentoPs(RegAtendimentoPs), E_INVALIDARG);
  if (FAILED(hr)) return hr;
  const _REG_ATENDIMENTO_PS& atendimento = RegAtendimentoPs;
  CGeServidorAtendimentoDatabase* pGEAtendimentoDB = m_pDataBase;
  std::lock_guard trava(pGEAtendimentoDB->Trava());

  std::string sDiretorio;
  QV_CHECK(pGEAtendimentoDB->GetDiretorioDados(&sDiretorio));
  // Released by its destructor on every way out.
  CQVDatabaseMarca DBFactory(pGEAtendimentoDB->GetNucleoMarcas(), this, sDiretorio, "GE");
  QV_CHECK(DBFactory.Marca(MARCA_ATENDIMENTO));
  // Declared after the mark: the files are let go before it is.
  CQVLiberacaoArquivos liberacao(*pGEAtendimentoDB);
  QV_CHECK(pGEAtendimentoDB->SelecionaMes(iMA));

  // The call stored now, whole: its positions are the ones reused, and a
  // damaged one stops the save before anything is written.
  const QVUInt uiQtdAtendimentos = pGEAtendimentoDB->m_ArqAtendimento.GetQtdRegistros();
  if (lPosicao > uiQtdAtendimentos) {
    QVLogaFalhaHr(QV_LOCAL, "E_QVCR_POSICAO_GRAVACAO_SUPERIOR_QUANTIDADE_ARQUIVO",
                  E_QVCR_POSICAO_GRAVACAO_SUPERIOR_QUANTIDADE_ARQUIVO,
                  {{"lPosicao", std::to_string(lPosicao)}, {"GetQtdRegistros", std::to_string(uiQtdAtendimentos)},
                   {"iMA", std::to_string(iMA)}});
    return E_QVCR_POSICAO_GRAVACAO_SUPERIOR_QUANTIDADE_ARQUIVO;
  }
  CQVRegistroPs<_REG_ATENDIMENTO_PS> antigo;
  if (lPosicao != 0) {
    REG_ATENDIMENTO_V2 regAntigo;
    QV_CHECK(pGEAtendimentoDB->m_ArqAtendimento.Le(lPosicao, &regAntigo));
    QVAtendimentoParaPs(regAntigo, antigo.reg);
    QV_CHECK(LeAtendimento(antigo.reg, pGEAtendimentoDB, false));
  }

  REG_ATENDIMENTO_V2 reg;
  QVAtendimentoParaArquivo(atendimento, reg);
  QV_CHECK(GravaDespesasAtendimento(atendimento, antigo.reg, reg, pGEAtendimentoDB));
  QV_CHECK(GravaServicosAtendimento(atendimento, antigo.reg, reg, pGEAtendimentoDB));
  QV_CHECK(GravaRepresentantes(atendimento, antigo.reg, reg, pGEAtendimentoDB));
  std::uint32_t lPonteiro = antigo.reg.lPonteiroClassificacao;
  QV_CHECK(GravaListaClassificacoes(atendimento.lQuantidadeClassificacao, lPonteiro, atendimento.pClassificacoes,
                                    antigo.reg.lQuantidadeClassificacao, antigo.reg.pClassificacoes,
                                    pGEAtendimentoDB));
  reg.lPonteiroClassificacao = lPonteiro;
  QV_CHECK(GravaString(atendimento.bsComentario, antigo.reg.lPonteiroComentario, antigo.reg.bsComentario, lPonteiro,
                       pGEAtendimentoDB));
  reg.lPonteiroComentario = lPonteiro;
  QV_CHECK(GravaString(atendimento.bsComentarioAgendamento, antigo.reg.lPonteiroComentarioAgendamento,
                       antigo.reg.bsComentarioAgendamento, lPonteiro, pGEAtendimentoDB));
  reg.lPonteiroComentarioAgendamento = lPonteiro;
  QV_CHECK(GravaString(atendimento.bsDescricaoSomarItensNF, antigo.reg.lPonteiroDescricaoSomarItensNF,
                       antigo.reg.bsDescricaoSomarItensNF, lPonteiro, pGEAtendimentoDB));
  reg.lPonteiroDescricaoSomarItensNF = lPonteiro;

  // The calendar events are the suite's: a call that never had any makes
  // no list there.
  std::uint32_t lPonteiroEventoAgenda = antigo.reg.lPonteiroEventoAgenda;
  if (atendimento.regListaEventosGoogle.lQuantidadeEventos != 0 || lPonteiroEventoAgenda != 0) {
    CQVDadosGE_ListaEventos dadosListaEventos;
    QVEventosParaDados(atendimento.regListaEventosGoogle, dadosListaEventos);
    if (GetAcessoGerenciador() == nullptr) QV_RETURN(E_QVDF_SEM_SESSAO_SUITE);
    QV_CHECK(GetAcessoGerenciador()->GravaEventosGoogle(&dadosListaEventos, &lPonteiroEventoAgenda));
  }
  reg.lPonteiroEventoAgenda = lPonteiroEventoAgenda;

  lPonteiro = antigo.reg.lPonteiroPISCOFINSSomarItensNF;
  QV_CHECK(GravaPisCofins(lPonteiro, atendimento.RegPisCofinsPsSomarItensNF, pGEAtendimentoDB));
  reg.lPonteiroPISCOFINSSomarItensNF = lPonteiro;
  lPonteiro = antigo.reg.lPonteiroEFD_REINFSomarItensNF;
  QV_CHECK(GravaEFD_REINF(lPonteiro, atendimento.regEFDREINFPsSomarItensNF, antigo.reg.regEFDREINFPsSomarItensNF,
                          pGEAtendimentoDB));
  reg.lPonteiroEFD_REINFSomarItensNF = lPonteiro;
  lPonteiro = antigo.reg.lPonteiroRetencoesSomarItensNF;
  QV_CHECK(GravaRetencoes(lPonteiro, atendimento.regRetencoesSomarItensNF, antigo.reg.regRetencoesSomarItensNF,
                          pGEAtendimentoDB));
  reg.lPonteiroRetencoesSomarItensNF = lPonteiro;
  QV_CHECK(GravaPonteirosIntegracaoACM(pGEAtendimentoDB->GetMa().ToChave(), atendimento, antigo.reg, reg));

  std::uint32_t lNumeroAtendimento = atendimento.lNumeroAtendimento;
  QV_CHECK(ConsistirNumeroAtendimentoGravacao(lNumeroAtendimento, iMA, lPosicao, pGEAtendimentoDB));
  reg.lNumeroAtendimento = lNumeroAtendimento;
  QVUInt uiPosicao = lPosicao;
  QV_CHECK(pGEAtendimentoDB->m_ArqAtendimento.Grava(uiPosicao, reg));
  *lPosicaoGravada = static_cast<std::uint32_t>(uiPosicao);
  RegistraNumeroGravado(iMA, *lPosicaoGravada, lNumeroAtendimento, pGEAtendimentoDB);
  QV_CHECK(AtualizaNovoNumeroSugestao(lNumeroAtendimento, pGEAtendimentoDB));
  QV_CHECK(InsereServicoAcompanhamentoIntegrado(atendimento, REG_QVDMC().SetDMC(*lPosicaoGravada, iMA),
                                                pGEAtendimentoDB));
  QV_CHECK(liberacao.Libera());
  QV_CHECK(DBFactory.Desmarca(MARCA_ATENDIMENTO));
  return S_OK;
}

HRESULT CGeServidorAtendimento::GravaPropriedadesArquivo(const _REG_PROPRIEDADES_ATENDIMENTO_PS& RegPropriedadesPs,
                                                         CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1 rAntigo;
  QV_CHECK(pGEAtendimentoDB->m_AtendimentoTecnicoPropriedades.Le(&rAntigo));
  std::string sAntigo;
  if (rAntigo.lPonteiroNomeCliente2 != 0)
    QV_CHECK(pGEAtendimentoDB->m_AtendimentoTecnicoPropTXT.Le(rAntigo.lPonteiroNomeCliente2, &sAntigo));
  REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1 rPropriedadesAtendimento;
  QVPropriedadesParaArquivo(RegPropriedadesPs, rPropriedadesAtendimento);
  std::uint32_t lPonteiroNomeCliente2 = 0;
  QV_CHECK(GravaString(QVTextoPsLe(RegPropriedadesPs.rNomeCliente2), rAntigo.lPonteiroNomeCliente2, sAntigo,
                       lPonteiroNomeCliente2, pGEAtendimentoDB->m_AtendimentoTecnicoPropTXT));
  rPropriedadesAtendimento.lPonteiroNomeCliente2 = lPonteiroNomeCliente2;
  QV_CHECK(pGEAtendimentoDB->m_AtendimentoTecnicoPropriedades.Grava(rPropriedadesAtendimento));
  return S_OK;
}

HRESULT CGeServidorAtendimento::GravaPropriedades(const _REG_PROPRIEDADES_ATENDIMENTO_PS& RegPropriedadesPs,
                                                  std::uint32_t) {
  QV_CHECK(ValidaServidor());
  CGeServidorAtendimentoDatabase* pGEAtendimentoDB = m_pDataBase;
  std::lock_guard trava(pGEAtendimentoDB->Trava());
  // The suggested number is read and rewritten by the saves of calls under
  // the mark: the settings are written under it too.
  std::string sDiretorio;
  QV_CHECK(pGEAtendimentoDB->GetDiretorioDados(&sDiretorio));
  CQVDatabaseMarca DBFactory(pGEAtendimentoDB->GetNucleoMarcas(), this, sDiretorio, "GE");
  QV_CHECK(DBFactory.Marca(MARCA_ATENDIMENTO));
  CQVLiberacaoArquivos liberacao(*pGEAtendimentoDB);
  QV_CHECK(GravaPropriedadesArquivo(RegPropriedadesPs, pGEAtendimentoDB));
  QV_CHECK(liberacao.Libera());
  QV_CHECK(DBFactory.Desmarca(MARCA_ATENDIMENTO));
  CLogTransacoesHelper logHelper;
  QV_CHECK(logHelper.Inicializa(this));
  QV_CHECK(logHelper.Grava(REG_QVDMC(), E_GE_REGISTRO_LOG::eLogAtendimentoTecnico, 'A', "Alteração das Propriedades"));
  return S_OK;
}

// ---- numbering ----------------------------------------------------------------

HRESULT CGeServidorAtendimento::LeNumerosAtendimento(std::uint16_t iMA, std::uint32_t lPosicao,
                                                     CQVNumerosAtendimento& numeros,
                                                     CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  std::string sDiretorio;
  QV_CHECK(pGEAtendimentoDB->GetDiretorioDados(&sDiretorio));
  QV_CHECK(CQVIndiceNumeros::Da(sDiretorio).Consulta(this, pGEAtendimentoDB, iMA, lPosicao, &numeros));
  return S_OK;
}

HRESULT CGeServidorAtendimento::ConsistirNumeroAtendimentoGravacao(std::uint32_t& lNumeroAtendimento,
                                                                   std::uint16_t iMA, std::uint32_t lPosicao,
                                                                   CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  CQVNumerosAtendimento numeros;
  QV_CHECK(LeNumerosAtendimento(iMA, lPosicao, numeros, pGEAtendimentoDB));
  while (lNumeroAtendimento == 0 || numeros.count(lNumeroAtendimento) != 0) ++lNumeroAtendimento;
  return S_OK;
}

HRESULT CGeServidorAtendimento::AtualizaNovoNumeroSugestao(std::uint32_t lNumeroAtendimento,
                                                           CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1 rPropriedadesAtendimento;
  QV_CHECK(pGEAtendimentoDB->m_AtendimentoTecnicoPropriedades.Le(&rPropriedadesAtendimento));
  const std::uint64_t uiProximo = std::uint64_t{lNumeroAtendimento} + 1;
  if (uiProximo <= rPropriedadesAtendimento.lProximoNumero || uiProximo > UINT32_MAX) return S_OK;
  rPropriedadesAtendimento.lProximoNumero = static_cast<std::uint32_t>(uiProximo);
  QV_CHECK(pGEAtendimentoDB->m_AtendimentoTecnicoPropriedades.Grava(rPropriedadesAtendimento));
  return S_OK;
}

// Slot 19 has a number and no call: the answer is for a new call, whose
// save would keep the number exactly when no stored call has it.
HRESULT CGeServidorAtendimento::ConsistirNumeroAtendimentoPS(std::uint32_t lNumeroAtendimento,
                                                             std::int32_t* pbNumeroNaoDuplicado) {
  if (pbNumeroNaoDuplicado == nullptr) QV_RETURN(E_POINTER);
  *pbNumeroNaoDuplicado = 0;
  QV_CHECK(ValidaServidor());
  CGeServidorAtendimentoDatabase* pGEAtendimentoDB = m_pDataBase;
  std::lock_guard trava(pGEAtendimentoDB->Trava());
  // What a save would keep: a number not 0 that no call has. (The save's
  // count-up to the first free number is not needed for that answer.)
  CQVNumerosAtendimento numeros;
  QV_CHECK(LeNumerosAtendimento(pGEAtendimentoDB->GetMa().iMA, 0, numeros, pGEAtendimentoDB));
  *pbNumeroNaoDuplicado = lNumeroAtendimento != 0 && numeros.count(lNumeroAtendimento) == 0 ? 1 : 0;
  return S_OK;
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

HRESULT CGeServidorAtendimento::GeraRelatorioAgrupamento(const _REG_RELATORIO_ATENDIMENTO_PS&, std::uint8_t) {
  return E_NOTIMPL;
}

HRESULT CGeServidorAtendimento::GeraRelatorioPeriodo(const _REG_RELATORIO_ATENDIMENTO_PS&) { return E_NOTIMPL; }

HRESULT CGeServidorAtendimento::GeraRelatorioAtendimento(const _REG_RELATORIO_ATENDIMENTO_PS&) { return E_NOTIMPL; }

HRESULT CGeServidorAtendimento::GeraRelatorioControleHoras(const _REG_FILTRO_REL_CONTROLE_HORAS&) { return E_NOTIMPL; }

HRESULT CGeServidorAtendimento::GeraRelatorioConsultaAgendamento(_REG_REL_CONSULTA_AGENDAMENTO*) { return E_NOTIMPL; }
