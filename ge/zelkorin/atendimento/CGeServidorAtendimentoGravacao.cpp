// Writing a call's tree: every function writes its children first and its
// own record last, and takes its positions from the tree stored now (read
// back, whole, before anything is written), never from the client's
// record: a client cannot make a save overwrite another call's records.
//
// Lists are runs of consecutive records. A list whose count did not grow
// is rewritten over its stored run (a shorter list leaves the run's tail
// unreferenced); a grown list is written as a fresh run at the end of its
// file, leaving the old run unreferenced: rewriting it in place would run
// into the records that follow it. An emptied list has position 0.
#include <vector>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVLog.h"
#include "ge/zelkorin/CGeServidorAtendimento.h"
#include "ge/zelkorin/atendimento/ZelkorinAtendimentoUtil.h"
#include "ge/zelkorin/atendimento/ZelkorinConversaoRegistros.h"

namespace {

// The list rule above. lPonteiro: in, the stored run's first position
// (lQuantidadeAntiga records); out, where the list went.
template <class F, class T>
HRESULT GravaLista(F& arquivo, const std::vector<T>& registros, std::uint32_t lQuantidadeAntiga,
                   std::uint32_t& lPonteiro) {
  if (registros.empty()) {
    lPonteiro = 0;
    return S_OK;
  }
  QVUInt uiPosicao = registros.size() <= lQuantidadeAntiga ? lPonteiro : 0;
  QV_CHECK(arquivo.GravaColecao(uiPosicao, registros));
  lPonteiro = static_cast<std::uint32_t>(uiPosicao);
  return S_OK;
}

// A single sub-record (withholdings, PIS/COFINS, EFD-REINF) is rewritten
// in place; a new one is appended, unless it is all zero: position 0 reads
// as zeros, so an empty record takes no room.
template <class F, class T>
HRESULT GravaRegistro(F& arquivo, const T& registro, std::uint32_t& lPosicao) {
  if (lPosicao == 0 && QVRegistroZerado(registro)) return S_OK;
  QVUInt uiPosicao = lPosicao;
  QV_CHECK(arquivo.Grava(uiPosicao, registro));
  lPosicao = static_cast<std::uint32_t>(uiPosicao);
  return S_OK;
}

template <class T>
const T& Antigo(const T* pLista, std::uint32_t n, std::uint32_t i) {
  static const T kVazio{};
  return i < n ? pLista[i] : kVazio;
}

}  // namespace

HRESULT CGeServidorAtendimento::GravaDespesasAtendimento(const _REG_ATENDIMENTO_PS& atendimento,
                                                         const _REG_ATENDIMENTO_PS& antigo, REG_ATENDIMENTO_V2& reg,
                                                         CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  std::vector<REG_DESPESA_ATENDIMENTO_V1> registros(atendimento.iQuantidadeDespesa);
  for (std::uint32_t i = 0; i < atendimento.iQuantidadeDespesa; ++i) {
    const _REG_DESPESA_ATENDIMENTO_PS& despesa = atendimento.pDespesas[i];
    const _REG_DESPESA_ATENDIMENTO_PS& despesaAntiga = Antigo(antigo.pDespesas, antigo.iQuantidadeDespesa, i);
    REG_DESPESA_ATENDIMENTO_V1& regDespesa = registros[i];
    QVDespesaParaArquivo(despesa, regDespesa);
    std::uint32_t lPonteiroString = 0;
    QV_CHECK(GravaString(despesa.bsComentario, despesaAntiga.lPonteiroComentario, despesaAntiga.bsComentario,
                         lPonteiroString, pGEAtendimentoDB));
    regDespesa.lPonteiroComentario = lPonteiroString;
    QV_CHECK(GravaString(despesa.bsDescricao, despesaAntiga.lPonteiroDescricao, despesaAntiga.bsDescricao,
                         lPonteiroString, pGEAtendimentoDB));
    regDespesa.lPonteiroDescricao = lPonteiroString;
    std::uint32_t lPosicao = despesaAntiga.lPonteiroPisCofins;
    QV_CHECK(GravaPisCofins(lPosicao, despesa.RegPisCofinsPs, pGEAtendimentoDB));
    regDespesa.lPonteiroPisCofins = lPosicao;
    lPosicao = despesaAntiga.lPonteiroClassificacao;
    QV_CHECK(GravaListaClassificacoes(despesa.iQuantidadeClassificacao, lPosicao, despesa.pClassificacoes,
                                      despesaAntiga.iQuantidadeClassificacao, despesaAntiga.pClassificacoes,
                                      pGEAtendimentoDB));
    regDespesa.lPonteiroClassificacao = lPosicao;
  }
  std::uint32_t lPonteiro = antigo.lPonteiroDespesa;
  QV_CHECK(GravaLista(pGEAtendimentoDB->m_ArqDespesas, registros, antigo.iQuantidadeDespesa, lPonteiro));
  reg.lPonteiroDespesa = lPonteiro;
  return S_OK;
}

HRESULT CGeServidorAtendimento::GravaServicosAtendimento(const _REG_ATENDIMENTO_PS& atendimento,
                                                         const _REG_ATENDIMENTO_PS& antigo, REG_ATENDIMENTO_V2& reg,
                                                         CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  std::vector<REG_SERVICO_ATENDIMENTO_V3> registros(atendimento.iQuantidadeServicoAtend);
  for (std::uint32_t i = 0; i < atendimento.iQuantidadeServicoAtend; ++i) {
    const _REG_SERVICO_ATENDIMENTO_PS& servico = atendimento.pServicos[i];
    const _REG_SERVICO_ATENDIMENTO_PS& servicoAntigo = Antigo(antigo.pServicos, antigo.iQuantidadeServicoAtend, i);
    REG_SERVICO_ATENDIMENTO_V3& regServico = registros[i];
    QVServicoParaArquivo(servico, regServico);
    QV_CHECK(GravaSessoesServico(servico, servicoAntigo, regServico, pGEAtendimentoDB));
    std::uint32_t lPosicao = servicoAntigo.lPonteiroRetencoes;
    QV_CHECK(GravaRetencoes(lPosicao, servico.regRetencoes, servicoAntigo.regRetencoes, pGEAtendimentoDB));
    regServico.lPonteiroRetencoes = lPosicao;
    lPosicao = servicoAntigo.lPonteiroEFD_REINF;
    QV_CHECK(GravaEFD_REINF(lPosicao, servico.regEFD_REINF, servicoAntigo.regEFD_REINF, pGEAtendimentoDB));
    regServico.lPonteiroEFD_REINF = lPosicao;
    lPosicao = servicoAntigo.lPonteiroClassificacao;
    QV_CHECK(GravaListaClassificacoes(servico.iQuantidadeClassificacao, lPosicao, servico.pClassificacoes,
                                      servicoAntigo.iQuantidadeClassificacao, servicoAntigo.pClassificacoes,
                                      pGEAtendimentoDB));
    regServico.lPonteiroClassificacao = lPosicao;
    std::uint32_t lPonteiroString = 0;
    QV_CHECK(GravaString(servico.bsComentario, servicoAntigo.lPonteiroComentario, servicoAntigo.bsComentario,
                         lPonteiroString, pGEAtendimentoDB));
    regServico.lPonteiroComentario = lPonteiroString;
    QV_CHECK(GravaString(servico.bsResultado, servicoAntigo.lPonteiroResultado, servicoAntigo.bsResultado,
                         lPonteiroString, pGEAtendimentoDB));
    regServico.lPonteiroResultado = lPonteiroString;
    QV_CHECK(GravaString(servico.bsDescricao, servicoAntigo.lPonteiroDescricao, servicoAntigo.bsDescricao,
                         lPonteiroString, pGEAtendimentoDB));
    regServico.lPonteiroDescricao = lPonteiroString;
  }
  std::uint32_t lPosicaoServicoGravado = antigo.lPonteiroServicoAtend;
  QV_CHECK(GravaLista(pGEAtendimentoDB->m_ArqServico, registros, antigo.iQuantidadeServicoAtend,
                      lPosicaoServicoGravado));
  reg.lPonteiroServicoAtend = lPosicaoServicoGravado;
  // A call's services occupy consecutive positions from the first one.
  for (std::uint32_t i = 0; i < atendimento.iQuantidadeServicoAtend; ++i) {
    REG_SERVICO_ATENDIMENTO_V3 regServAtendimento;
    QV_CHECK(pGEAtendimentoDB->m_ArqServico.Le(lPosicaoServicoGravado + i, &regServAtendimento));
    QV_CHECK(AtualizaDadosAcompanhamentoIntegrado(atendimento, regServAtendimento, lPosicaoServicoGravado + i,
                                                  pGEAtendimentoDB));
  }
  return S_OK;
}

HRESULT CGeServidorAtendimento::GravaSessoesServico(const _REG_SERVICO_ATENDIMENTO_PS& servico,
                                                    const _REG_SERVICO_ATENDIMENTO_PS& antigo,
                                                    REG_SERVICO_ATENDIMENTO_V3& reg,
                                                    CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  std::vector<REG_SESSAO_ATENDIMENTO_V1> registros(servico.iQuantidadeSessao);
  for (std::uint32_t i = 0; i < servico.iQuantidadeSessao; ++i) QVSessaoParaArquivo(servico.pSessoes[i], registros[i]);
  std::uint32_t lPonteiro = antigo.lPonteiroSessao;
  QV_CHECK(GravaLista(pGEAtendimentoDB->m_ArqSessao, registros, antigo.iQuantidadeSessao, lPonteiro));
  reg.lPonteiroSessao = lPonteiro;
  return S_OK;
}

HRESULT CGeServidorAtendimento::GravaRepresentantes(const _REG_ATENDIMENTO_PS& atendimento,
                                                    const _REG_ATENDIMENTO_PS& antigo, REG_ATENDIMENTO_V2& reg,
                                                    CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  std::vector<REG_REPRESENTANTE_ATENDIMENTO> registros;
  if (atendimento.lQtdRepresentante != 0)
    registros.assign(atendimento.pRepresentante, atendimento.pRepresentante + atendimento.lQtdRepresentante);
  std::uint32_t lPonteiro = antigo.lPtrRepresentante;
  QV_CHECK(GravaLista(pGEAtendimentoDB->m_ArqRepresentantes, registros, antigo.lQtdRepresentante, lPonteiro));
  reg.lPtrRepresentante = lPonteiro;
  return S_OK;
}

HRESULT CGeServidorAtendimento::GravaListaClassificacoes(std::uint32_t lQuantidade, std::uint32_t& lPonteiro,
                                                         const _REG_CLASSIFICACAO_GE_PS* pClassificacoes,
                                                         std::uint32_t lQuantidadeAntiga,
                                                         const _REG_CLASSIFICACAO_GE_PS* pAntigas,
                                                         CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  std::vector<REG_CLASSIFICACAO_ATENDIMENTO_V1> registros(lQuantidade);
  for (std::uint32_t i = 0; i < lQuantidade; ++i)
    QV_CHECK(GravaClassificacao(pClassificacoes[i], i < lQuantidadeAntiga ? &pAntigas[i] : nullptr, registros[i],
                                pGEAtendimentoDB));
  QV_CHECK(GravaLista(pGEAtendimentoDB->m_ArqClassificacao, registros, lQuantidadeAntiga, lPonteiro));
  return S_OK;
}

HRESULT CGeServidorAtendimento::GravaClassificacao(const _REG_CLASSIFICACAO_GE_PS& classificacao,
                                                   const _REG_CLASSIFICACAO_GE_PS* pAntiga,
                                                   REG_CLASSIFICACAO_ATENDIMENTO_V1& reg,
                                                   CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  QVClassificacaoParaArquivo(classificacao, reg);
  std::uint32_t lPosicao = pAntiga != nullptr ? pAntiga->lPonteiroGerencial : 0;
  QV_CHECK(GravaGerencial(lPosicao, classificacao, pAntiga, pGEAtendimentoDB));
  reg.lPonteiroGerencial = lPosicao;
  return S_OK;
}

HRESULT CGeServidorAtendimento::GravaGerencial(std::uint32_t& lPosicao, const _REG_CLASSIFICACAO_GE_PS& classificacao,
                                               const _REG_CLASSIFICACAO_GE_PS* pAntiga,
                                               CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  std::vector<REG_GERENCIAL_ATENDIMENTO_V1> registros(classificacao.lQuantidadeGerencial);
  for (std::uint32_t i = 0; i < classificacao.lQuantidadeGerencial; ++i)
    QVGerencialParaArquivo(classificacao.pGerenciais[i], registros[i]);
  QV_CHECK(GravaLista(pGEAtendimentoDB->m_ArqGerencial, registros,
                      pAntiga != nullptr ? pAntiga->lQuantidadeGerencial : 0, lPosicao));
  return S_OK;
}

HRESULT CGeServidorAtendimento::GravaRetencoes(std::uint32_t& lPosicao, const _REG_RETENCOES_PS& retencoes,
                                               const _REG_RETENCOES_PS& antigas,
                                               CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  REG_RETENCOES_ATENDIMENTO_V1 reg;
  QVRetencoesParaArquivo(retencoes, reg);
  std::uint32_t lPtrDeducaoBCINSS = antigas.lPtrDeducaoBCINSS;
  QV_CHECK(GravaDeducoes(lPtrDeducaoBCINSS, retencoes, antigas, pGEAtendimentoDB));
  reg.lPtrDeducaoBCINSS = lPtrDeducaoBCINSS;
  QV_CHECK(GravaRegistro(pGEAtendimentoDB->m_ArqRetencoes, reg, lPosicao));
  return S_OK;
}

HRESULT CGeServidorAtendimento::GravaDeducoes(std::uint32_t& lPosicao, const _REG_RETENCOES_PS& retencoes,
                                              const _REG_RETENCOES_PS& antigas,
                                              CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  std::vector<REG_DEDUCOES_BCINSS_ATENDIMENTO_V1> registros(retencoes.iQtdDeducaoBCINSS);
  for (std::uint32_t i = 0; i < retencoes.iQtdDeducaoBCINSS; ++i) {
    const _REG_DEDUCOES_BC_INSS_PS& deducao = retencoes.pRegDeducoesBCINSS[i];
    QVDeducaoParaArquivo(deducao, registros[i]);
    // The stored description's position is in the stored deduction only.
    REG_DEDUCOES_BCINSS_ATENDIMENTO_V1 regAntigo{};
    std::string sAntiga;
    if (i < antigas.iQtdDeducaoBCINSS) {
      QV_CHECK(pGEAtendimentoDB->m_ArqDeducoes.Le(antigas.lPtrDeducaoBCINSS + i, &regAntigo));
      sAntiga = QVLeCampoTexto(antigas.pRegDeducoesBCINSS[i].cDescricao);
    }
    std::uint32_t lPtrDescricao = 0;
    QV_CHECK(GravaString(QVLeCampoTexto(deducao.cDescricao), regAntigo.lPtrDescricao, sAntiga, lPtrDescricao,
                         pGEAtendimentoDB->m_ArqDescricaoDeducao));
    registros[i].lPtrDescricao = lPtrDescricao;
  }
  QV_CHECK(GravaLista(pGEAtendimentoDB->m_ArqDeducoes, registros, antigas.iQtdDeducaoBCINSS, lPosicao));
  return S_OK;
}

HRESULT CGeServidorAtendimento::GravaPisCofins(std::uint32_t& lPosicao, const _REG_PIS_COFINS_GE_PS& pisCofins,
                                               CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  REG_PIS_COFINS_ATENDIMENTO_V1 reg;
  QVPisCofinsParaArquivo(pisCofins, reg);
  QV_CHECK(GravaRegistro(pGEAtendimentoDB->m_ArqPisCofins, reg, lPosicao));
  return S_OK;
}

HRESULT CGeServidorAtendimento::GravaEFD_REINF(std::uint32_t& lPosicao, const tagREG_EFD_REINF_ITENS_NFPS& efd,
                                               const tagREG_EFD_REINF_ITENS_NFPS& antigo,
                                               CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  REG_EFD_REINF_V1 reg;
  QVEFDParaArquivo(efd, reg);
  std::uint32_t lPonteiro = antigo.lPonteiroProcessoRetAjuiz;
  QV_CHECK(GravaEFD_REINFProcJur(lPonteiro, efd.iQuantidadeProcessosRetAjuiz, efd.pRegProcessosRetAjuiz,
                                 antigo.iQuantidadeProcessosRetAjuiz, pGEAtendimentoDB));
  reg.lPonteiroProcessoRetAjuiz = lPonteiro;
  lPonteiro = antigo.lPonteiroProcessoRetAdic;
  QV_CHECK(GravaEFD_REINFProcJur(lPonteiro, efd.iQuantidadeProcessosRetAdic, efd.pRegProcessosRetAdic,
                                 antigo.iQuantidadeProcessosRetAdic, pGEAtendimentoDB));
  reg.lPonteiroProcessoRetAdic = lPonteiro;
  QV_CHECK(GravaRegistro(pGEAtendimentoDB->m_ArqEFD_REINF, reg, lPosicao));
  return S_OK;
}

HRESULT CGeServidorAtendimento::GravaEFD_REINFProcJur(std::uint32_t& lPonteiro, std::uint16_t iQuantidade,
                                                      const tagREG_EFD_PROCESSO_JURIDICO_NFPS* pProcessos,
                                                      std::uint16_t iQuantidadeAntiga,
                                                      CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  std::vector<REG_GE_EFD_PROC_RET> registros(iQuantidade);
  for (std::uint32_t i = 0; i < iQuantidade; ++i) QVProcessoParaArquivo(pProcessos[i], registros[i]);
  QV_CHECK(GravaLista(pGEAtendimentoDB->m_ArqProcessoJurEFD, registros, iQuantidadeAntiga, lPonteiro));
  return S_OK;
}

HRESULT CGeServidorAtendimento::GravaPonteirosIntegracaoACM(std::uint64_t uiChaveArquivo,
                                                            const _REG_ATENDIMENTO_PS& atendimento,
                                                            const _REG_ATENDIMENTO_PS& antigo, REG_ATENDIMENTO_V2& reg) {
  const _REG_DF_LISTA_QVDMCPS& lista = atendimento.regListaPonteirosIntegACM;
  std::vector<REG_QVDMC> listaPonteirosQVDMC;
  for (std::uint32_t i = 0; i < lista.ulQuantidade; ++i) listaPonteirosQVDMC.emplace_back(lista.pLista[i]);
  std::uint32_t lPonteiro = 0;
  if (!listaPonteirosQVDMC.empty()) {
    QVUInt uiPosicaoGravada = listaPonteirosQVDMC.size() <= antigo.regListaPonteirosIntegACM.ulQuantidade
                                  ? antigo.lPonteiroListaPosIntegracoesACM
                                  : 0;
    QV_CHECK(m_pDataBase->m_ATTPonteirosIntegACM.GravaColecao(uiChaveArquivo, uiPosicaoGravada, listaPonteirosQVDMC));
    lPonteiro = static_cast<std::uint32_t>(uiPosicaoGravada);
  }
  reg.lPonteiroListaPosIntegracoesACM = lPonteiro;
  reg.lQtdPosIntegracoesACM = lista.ulQuantidade;
  return S_OK;
}

HRESULT CGeServidorAtendimento::GravaString(const std::string& sTexto, std::uint32_t lPonteiroAntigo,
                                            const std::string& sAntigo, std::uint32_t& lPonteiro,
                                            CQVTextFile& arquivo) {
  lPonteiro = 0;
  if (sTexto.empty()) return S_OK;
  if (lPonteiroAntigo != 0 && sTexto == sAntigo) {
    lPonteiro = lPonteiroAntigo;
    return S_OK;
  }
  QVUInt uiPosicao = lPonteiroAntigo != 0 && sTexto.size() == sAntigo.size() ? lPonteiroAntigo : 0;
  QV_CHECK(arquivo.Grava(uiPosicao, sTexto));
  lPonteiro = static_cast<std::uint32_t>(uiPosicao);
  return S_OK;
}

HRESULT CGeServidorAtendimento::GravaString(BSTR bsTexto, std::uint32_t lPonteiroAntigo, BSTR bsAntigo,
                                            std::uint32_t& lPonteiro,
                                            CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  QV_CHECK(GravaString(QVTextoArquivoDoBstr(bsTexto), lPonteiroAntigo, QVTextoArquivoDoBstr(bsAntigo), lPonteiro,
                       pGEAtendimentoDB->m_ArqStringAtendimento));
  return S_OK;
}
