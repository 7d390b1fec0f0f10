// Reading a stored call: the call record of the current month, then its
// tree, each function reading its own record first and then its children.
// A list is a count and the position of its first record; before anything
// is allocated for it, the whole run must lie inside its file, so a
// damaged count or position fails with a status instead of allocating or
// reading beyond the file.
#include <cstring>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVLog.h"
#include "ge/zelkorin/CGeServidorAtendimento.h"
#include "ge/zelkorin/atendimento/ZelkorinAtendimentoUtil.h"
#include "ge/zelkorin/atendimento/ZelkorinConversaoRegistros.h"
#include "platform/QVBstr.h"
#include "platform/QVCodePage.h"
#include "suite/hostlink/IQVAcessoGerenciador.h"

HRESULT CGeServidorAtendimento::LeAtendimentoArquivo(std::uint32_t lPosicao, _REG_ATENDIMENTO_PS& atendimento,
                                                     bool bCompleto, CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  REG_ATENDIMENTO_V2 reg;
  QV_CHECK(pGEAtendimentoDB->m_ArqAtendimento.Le(lPosicao, &reg));
  QVAtendimentoParaPs(reg, atendimento);
  atendimento.lPonteiro = lPosicao;
  if (bCompleto) {
    QV_CHECK(LeAtendimento(atendimento, pGEAtendimentoDB));
  } else {
    // The record alone: no list travels, so no count either.
    atendimento.iQuantidadeServicoAtend = 0;
    atendimento.iQuantidadeDespesa = 0;
    atendimento.lQtdRepresentante = 0;
    atendimento.lQuantidadeClassificacao = 0;
    atendimento.regListaPonteirosIntegACM.ulQuantidade = 0;
  }
  return S_OK;
}

HRESULT CGeServidorAtendimento::LeAtendimento(_REG_ATENDIMENTO_PS& atendimento,
                                              CGeServidorAtendimentoDatabase* pGEAtendimentoDB, bool bEventos) {
  QV_CHECK(LeServicosAtendimento(atendimento, pGEAtendimentoDB));
  QV_CHECK(LeDespesasAtendimento(atendimento, pGEAtendimentoDB));
  QV_CHECK(LeRepresentantes(atendimento, pGEAtendimentoDB));
  QV_CHECK(LeListaClassificacoes(atendimento.lQuantidadeClassificacao, atendimento.lPonteiroClassificacao,
                                 atendimento.pClassificacoes, pGEAtendimentoDB));
  QV_CHECK(LeString(atendimento.lPonteiroComentario, atendimento.bsComentario, pGEAtendimentoDB));
  QV_CHECK(LeString(atendimento.lPonteiroComentarioAgendamento, atendimento.bsComentarioAgendamento, pGEAtendimentoDB));
  QV_CHECK(LeString(atendimento.lPonteiroDescricaoSomarItensNF, atendimento.bsDescricaoSomarItensNF, pGEAtendimentoDB));
  if (bEventos && atendimento.lPonteiroEventoAgenda != 0) {
    CQVDadosGE_ListaEventos dadosListaEventos;
    if (GetAcessoGerenciador() == nullptr) QV_RETURN(E_QVDF_SEM_SESSAO_SUITE);
    QV_CHECK(GetAcessoGerenciador()->LeEventosGoogle(&atendimento.lPonteiroEventoAgenda, &dadosListaEventos));
    QV_CHECK(QVEventosParaPs(dadosListaEventos, atendimento.regListaEventosGoogle));
  }
  QV_CHECK(LePisCofins(atendimento.lPonteiroPISCOFINSSomarItensNF, atendimento.RegPisCofinsPsSomarItensNF,
                       pGEAtendimentoDB));
  QV_CHECK(LeEFD_REINF(atendimento.lPonteiroEFD_REINFSomarItensNF, atendimento.regEFDREINFPsSomarItensNF,
                       pGEAtendimentoDB));
  QV_CHECK(LeRetencoes(atendimento.lPonteiroRetencoesSomarItensNF, atendimento.regRetencoesSomarItensNF,
                       pGEAtendimentoDB));
  QV_CHECK(LePonteirosIntegracaoACM(pGEAtendimentoDB->GetMa().ToChave(), atendimento));
  return S_OK;
}

HRESULT CGeServidorAtendimento::LeServicosAtendimento(_REG_ATENDIMENTO_PS& atendimento,
                                                      CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  const std::uint32_t n = atendimento.iQuantidadeServicoAtend;
  QV_CHECK(QVValidaLista(pGEAtendimentoDB->m_ArqServico, atendimento.lPonteiroServicoAtend, n));
  QV_CHECK(QVAlocaLista(atendimento.pServicos, n));
  for (std::uint32_t i = 0; i < n; ++i) {
    _REG_SERVICO_ATENDIMENTO_PS& servico = atendimento.pServicos[i];
    const std::uint32_t lPosicao = atendimento.lPonteiroServicoAtend + i;
    REG_SERVICO_ATENDIMENTO_V3 reg;
    QV_CHECK(pGEAtendimentoDB->m_ArqServico.Le(lPosicao, &reg));
    QVServicoParaPs(reg, servico);
    QVChaveRegistroMes(servico.cChave, pGEAtendimentoDB->GetMa().iMA, lPosicao);
    QV_CHECK(LeSessoesServico(servico, pGEAtendimentoDB));
    QV_CHECK(LeRetencoes(servico.lPonteiroRetencoes, servico.regRetencoes, pGEAtendimentoDB));
    QV_CHECK(LeEFD_REINF(servico.lPonteiroEFD_REINF, servico.regEFD_REINF, pGEAtendimentoDB));
    QV_CHECK(LeListaClassificacoes(servico.iQuantidadeClassificacao, servico.lPonteiroClassificacao,
                                   servico.pClassificacoes, pGEAtendimentoDB));
    QV_CHECK(LeString(servico.lPonteiroComentario, servico.bsComentario, pGEAtendimentoDB));
    QV_CHECK(LeString(servico.lPonteiroResultado, servico.bsResultado, pGEAtendimentoDB));
    QV_CHECK(LeString(servico.lPonteiroDescricao, servico.bsDescricao, pGEAtendimentoDB));
  }
  return S_OK;
}

HRESULT CGeServidorAtendimento::LeSessoesServico(_REG_SERVICO_ATENDIMENTO_PS& servico,
                                                 CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  const std::uint32_t n = servico.iQuantidadeSessao;
  QV_CHECK(QVValidaLista(pGEAtendimentoDB->m_ArqSessao, servico.lPonteiroSessao, n));
  QV_CHECK(QVAlocaLista(servico.pSessoes, n));
  for (std::uint32_t i = 0; i < n; ++i) {
    REG_SESSAO_ATENDIMENTO_V1 reg;
    QV_CHECK(pGEAtendimentoDB->m_ArqSessao.Le(servico.lPonteiroSessao + i, &reg));
    QVSessaoParaPs(reg, servico.pSessoes[i]);
  }
  return S_OK;
}

HRESULT CGeServidorAtendimento::LeDespesasAtendimento(_REG_ATENDIMENTO_PS& atendimento,
                                                      CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  const std::uint32_t n = atendimento.iQuantidadeDespesa;
  QV_CHECK(QVValidaLista(pGEAtendimentoDB->m_ArqDespesas, atendimento.lPonteiroDespesa, n));
  QV_CHECK(QVAlocaLista(atendimento.pDespesas, n));
  for (std::uint32_t i = 0; i < n; ++i) {
    _REG_DESPESA_ATENDIMENTO_PS& despesa = atendimento.pDespesas[i];
    const std::uint32_t lPonteiro = atendimento.lPonteiroDespesa + i;
    REG_DESPESA_ATENDIMENTO_V1 reg;
    QV_CHECK(pGEAtendimentoDB->m_ArqDespesas.Le(lPonteiro, &reg));
    QVDespesaParaPs(reg, despesa);
    QVChaveRegistroMes(despesa.cChave, pGEAtendimentoDB->GetMa().iMA, lPonteiro);
    QV_CHECK(LePisCofins(despesa.lPonteiroPisCofins, despesa.RegPisCofinsPs, pGEAtendimentoDB));
    QV_CHECK(LeListaClassificacoes(despesa.iQuantidadeClassificacao, despesa.lPonteiroClassificacao,
                                   despesa.pClassificacoes, pGEAtendimentoDB));
    QV_CHECK(LeString(despesa.lPonteiroComentario, despesa.bsComentario, pGEAtendimentoDB));
    QV_CHECK(LeString(despesa.lPonteiroDescricao, despesa.bsDescricao, pGEAtendimentoDB));
  }
  return S_OK;
}

HRESULT CGeServidorAtendimento::LeRepresentantes(_REG_ATENDIMENTO_PS& atendimento,
                                                 CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  const std::uint32_t n = atendimento.lQtdRepresentante;
  QV_CHECK(QVValidaLista(pGEAtendimentoDB->m_ArqRepresentantes, atendimento.lPtrRepresentante, n));
  QV_CHECK(QVAlocaLista(atendimento.pRepresentante, n));
  for (std::uint32_t i = 0; i < n; ++i)
    QV_CHECK(pGEAtendimentoDB->m_ArqRepresentantes.Le(atendimento.lPtrRepresentante + i, &atendimento.pRepresentante[i]));
  return S_OK;
}

HRESULT CGeServidorAtendimento::LeListaClassificacoes(std::uint32_t lQuantidade, std::uint32_t lPonteiro,
                                                      _REG_CLASSIFICACAO_GE_PS*& pClassificacoes,
                                                      CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  QV_CHECK(QVValidaLista(pGEAtendimentoDB->m_ArqClassificacao, lPonteiro, lQuantidade));
  QV_CHECK(QVAlocaLista(pClassificacoes, lQuantidade));
  for (std::uint32_t i = 0; i < lQuantidade; ++i)
    QV_CHECK(LeClassificacao(lPonteiro + i, pClassificacoes[i], pGEAtendimentoDB));
  return S_OK;
}

HRESULT CGeServidorAtendimento::LeClassificacao(std::uint32_t lPosicao, _REG_CLASSIFICACAO_GE_PS& classificacao,
                                                CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  REG_CLASSIFICACAO_ATENDIMENTO_V1 reg;
  QV_CHECK(pGEAtendimentoDB->m_ArqClassificacao.Le(lPosicao, &reg));
  QVClassificacaoParaPs(reg, classificacao);
  const std::uint32_t n = classificacao.lQuantidadeGerencial;
  QV_CHECK(QVValidaLista(pGEAtendimentoDB->m_ArqGerencial, classificacao.lPonteiroGerencial, n));
  QV_CHECK(QVAlocaLista(classificacao.pGerenciais, n));
  for (std::uint32_t i = 0; i < n; ++i)
    QV_CHECK(LeGerencial(classificacao.lPonteiroGerencial + i, classificacao.pGerenciais[i], pGEAtendimentoDB));
  return S_OK;
}

HRESULT CGeServidorAtendimento::LeGerencial(std::uint32_t lPosicao, _REG_GERENCIAL_GE_PS& gerencial,
                                            CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  REG_GERENCIAL_ATENDIMENTO_V1 reg;
  QV_CHECK(pGEAtendimentoDB->m_ArqGerencial.Le(lPosicao, &reg));
  QVGerencialParaPs(reg, gerencial);
  return S_OK;
}

HRESULT CGeServidorAtendimento::LeRetencoes(std::uint32_t lPosicao, _REG_RETENCOES_PS& retencoes,
                                            CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  std::memset(static_cast<void*>(&retencoes), 0, sizeof retencoes);
  if (lPosicao == 0) return S_OK;
  REG_RETENCOES_ATENDIMENTO_V1 reg;
  QV_CHECK(pGEAtendimentoDB->m_ArqRetencoes.Le(lPosicao, &reg));
  QVRetencoesParaPs(reg, retencoes);
  QV_CHECK(LeDeducoes(retencoes, pGEAtendimentoDB));
  return S_OK;
}

HRESULT CGeServidorAtendimento::LeDeducoes(_REG_RETENCOES_PS& retencoes,
                                           CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  const std::uint32_t n = retencoes.iQtdDeducaoBCINSS;
  QV_CHECK(QVValidaLista(pGEAtendimentoDB->m_ArqDeducoes, retencoes.lPtrDeducaoBCINSS, n));
  QV_CHECK(QVAlocaLista(retencoes.pRegDeducoesBCINSS, n));
  for (std::uint32_t i = 0; i < n; ++i) {
    REG_DEDUCOES_BCINSS_ATENDIMENTO_V1 reg;
    QV_CHECK(pGEAtendimentoDB->m_ArqDeducoes.Le(retencoes.lPtrDeducaoBCINSS + i, &reg));
    QVDeducaoParaPs(reg, retencoes.pRegDeducoesBCINSS[i]);
    if (reg.lPtrDescricao != 0) {
      std::string sDescricao;
      QV_CHECK(pGEAtendimentoDB->m_ArqDescricaoDeducao.Le(reg.lPtrDescricao, &sDescricao));
      QVCopiaCampoTexto(retencoes.pRegDeducoesBCINSS[i].cDescricao, sDescricao);
    }
  }
  return S_OK;
}

HRESULT CGeServidorAtendimento::LePisCofins(std::uint32_t lPosicao, _REG_PIS_COFINS_GE_PS& pisCofins,
                                            CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  std::memset(static_cast<void*>(&pisCofins), 0, sizeof pisCofins);
  if (lPosicao == 0) return S_OK;
  REG_PIS_COFINS_ATENDIMENTO_V1 reg;
  QV_CHECK(pGEAtendimentoDB->m_ArqPisCofins.Le(lPosicao, &reg));
  QVPisCofinsParaPs(reg, pisCofins);
  return S_OK;
}

HRESULT CGeServidorAtendimento::LeEFD_REINF(std::uint32_t lPosicao, tagREG_EFD_REINF_ITENS_NFPS& efd,
                                            CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  std::memset(static_cast<void*>(&efd), 0, sizeof efd);
  if (lPosicao == 0) return S_OK;
  REG_EFD_REINF_V1 reg;
  QV_CHECK(pGEAtendimentoDB->m_ArqEFD_REINF.Le(lPosicao, &reg));
  QVEFDParaPs(reg, efd);
  QV_CHECK(LeEFD_REINFProcJur(efd.lPonteiroProcessoRetAjuiz, efd.iQuantidadeProcessosRetAjuiz,
                              efd.pRegProcessosRetAjuiz, pGEAtendimentoDB));
  QV_CHECK(LeEFD_REINFProcJur(efd.lPonteiroProcessoRetAdic, efd.iQuantidadeProcessosRetAdic, efd.pRegProcessosRetAdic,
                              pGEAtendimentoDB));
  return S_OK;
}

HRESULT CGeServidorAtendimento::LeEFD_REINFProcJur(std::uint32_t lPonteiro, std::uint16_t iQuantidade,
                                                   tagREG_EFD_PROCESSO_JURIDICO_NFPS*& pProcessos,
                                                   CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  QV_CHECK(QVValidaLista(pGEAtendimentoDB->m_ArqProcessoJurEFD, lPonteiro, iQuantidade));
  QV_CHECK(QVAlocaLista(pProcessos, iQuantidade));
  for (std::uint32_t i = 0; i < iQuantidade; ++i) {
    REG_GE_EFD_PROC_RET reg;
    QV_CHECK(pGEAtendimentoDB->m_ArqProcessoJurEFD.Le(lPonteiro + i, &reg));
    QVProcessoParaPs(reg, pProcessos[i]);
  }
  return S_OK;
}

HRESULT CGeServidorAtendimento::LePonteirosIntegracaoACM(std::uint64_t uiChaveArquivo, _REG_ATENDIMENTO_PS& atendimento) {
  _REG_DF_LISTA_QVDMCPS& lista = atendimento.regListaPonteirosIntegACM;
  const std::uint32_t n = lista.ulQuantidade;
  const std::uint32_t lPonteiro = atendimento.lPonteiroListaPosIntegracoesACM;
  QV_CHECK(QVValidaLista(lPonteiro, n, m_pDataBase->m_ATTPonteirosIntegACM.GetQtdRegistros(uiChaveArquivo)));
  QV_CHECK(QVAlocaLista(lista.pLista, n));
  for (std::uint32_t i = 0; i < n; ++i) {
    REG_QVDMC regDmc;
    QV_CHECK(m_pDataBase->m_ATTPonteirosIntegACM.Le(uiChaveArquivo, lPonteiro + i, &regDmc));
    lista.pLista[i] = regDmc.ui;
  }
  return S_OK;
}

HRESULT CGeServidorAtendimento::LeString(std::uint32_t lPonteiro, BSTR& bs,
                                         CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  bs = nullptr;
  if (lPonteiro == 0) return S_OK;
  std::string sText;
  QV_CHECK(pGEAtendimentoDB->m_ArqStringAtendimento.Le(lPonteiro, &sText));
  if (sText.empty()) return S_OK;
  bs = QVBstrFromUtf8(QVAnsiToUtf8(sText));
  if (bs == nullptr) QV_RETURN(E_OUTOFMEMORY);
  return S_OK;
}
