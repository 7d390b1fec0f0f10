// The follow-up integration of service calls: the services of a call that
// the user marked for it are attached to follow-ups of the suite, and a
// linked service rewritten refreshes its follow-up.
//
// What ties them, on both sides:
//  - the call keeps, in its month's member of m_ATTPonteirosIntegACM, the
//    references of the integration records made for it (one per follow-up
//    it created), in the order they were made;
//  - a linked service keeps the follow-up's reference
//    (rDMCAcompanhamentoGerado, and its position and month in
//    lPonteiroACSGerado / iMaACSGerado), the integration record's
//    (dmcRegIntegracaoAcompanhamento) and the number of its entry there
//    (lIdentificadorServicoAcompanhamento; 0 = not linked);
//  - the entry keeps the call's reference and the service record's position.
// Every suite call runs under the call's mark; nothing is rolled back: a
// failure leaves what was written on both sides, and a service not linked
// yet is attached again at the next save.
#include <set>
#include <vector>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVDatas.h"
#include "df/qvlibex/QVLog.h"
#include "ge/zelkorin/CGeServidorAtendimento.h"
#include "ge/zelkorin/atendimento/ZelkorinAtendimentoUtil.h"
#include "suite/hostlink/IQVAcessoGerenciador.h"
#include "suite/masterdata/IQVAcessoEmpresarial.h"

struct CGeServidorAtendimento::AcompanhamentoIntegrado {
  CQVDadosGE_DadosIntegracaoAcompanhamentoServico integracao;
  CQVDadosGE_AcompanhamentoServico acompanhamento;
};

struct CGeServidorAtendimento::ServicoIntegracao {
  REG_SERVICO_ATENDIMENTO_V3 reg{};
  std::uint32_t lPonteiroServico = 0;  // in the month's service file
  REG_QVDMC dmcAtendimento;
  const REG_ATENDIMENTO_V2* pAtendimento = nullptr;
  const CQVDadosGE_PropriedadesAcompanhamento* pPropriedades = nullptr;
  std::uint32_t lPonteiroClasse = 0;  // the title service; 0: none
  CQVDadosDF_Servico dadosServicoDF;
  CQVDadosDF_Servico dadosServicoClasse;
};

namespace {

// What an entry knows of the call's service that performs it. A service
// with any situation but 0 is done.
void CopiaServicoParaEntrada(const REG_SERVICO_ATENDIMENTO_V3& reg, std::uint32_t lPonteiroServico,
                             CQVDadosGE_ServicoAcompanhamentoServico& entrada) {
  entrada.lPonteiroExecutor = reg.lPonteiroExecutor;
  entrada.vQuantidade = reg.vTotalHoras;
  entrada.vValor = reg.vValorTotal;
  entrada.iDataPrevista = reg.iDataSaida;
  entrada.iDataConclusao = reg.iDataConclusao;
  entrada.cSituacao = reg.cSituacao != 0 ? kQVAcmRealizado : kQVAcmPendente;
  entrada.lPonteiroServicoAtendimento = lPonteiroServico;
}

// The entry of a service not yet in a follow-up.
CQVDadosGE_ServicoAcompanhamentoServico NovaEntrada(const REG_SERVICO_ATENDIMENTO_V3& reg,
                                                    std::uint32_t lPonteiroServico, std::uint32_t lPonteiroClasse,
                                                    const REG_QVDMC& dmcAtendimento, const std::string& sDescricao) {
  CQVDadosGE_ServicoAcompanhamentoServico entrada = CQVDadosGE_AcompanhamentoServico::CriaNovoServicoAcompanhamento(
      reg.lPonteiroServico, lPonteiroClasse, reg.lPonteiroExecutor, reg.vTotalHoras, reg.vValorTotal, reg.iDataSaida);
  CopiaServicoParaEntrada(reg, lPonteiroServico, entrada);
  entrada.dmcAtendimento = dmcAtendimento;
  entrada.sDescricao = sDescricao;
  return entrada;
}

std::string TextoDmc(const REG_QVDMC& dmc) {
  return std::to_string(dmc.GetMa().iMA) + ":" + std::to_string(dmc.GetPosicao());
}

}  // namespace

// ---- attaching the call's services -----------------------------------------------

HRESULT CGeServidorAtendimento::InsereServicoAcompanhamentoIntegrado(const _REG_ATENDIMENTO_PS& atendimento,
                                                                     const REG_QVDMC& regDMCAtendimento,
                                                                     CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  if (atendimento.iQuantidadeServicoAtend == 0) return S_OK;
  // The call as stored: its positions are the server's, not the client's.
  const std::uint32_t lPosicao = regDMCAtendimento.GetPosicao();
  REG_ATENDIMENTO_V2 regAtendimento;
  QV_CHECK(pGEAtendimentoDB->m_ArqAtendimento.Le(lPosicao, &regAtendimento));
  const std::uint32_t lPonteiroServicoAtend = regAtendimento.lPonteiroServicoAtend;
  const std::uint32_t iQuantidadeServicoAtend = regAtendimento.iQuantidadeServicoAtend;
  QV_CHECK(QVValidaLista(pGEAtendimentoDB->m_ArqServico, lPonteiroServicoAtend, iQuantidadeServicoAtend));

  // Read once, and only when a service needs them.
  MapAcompanhamentos mapIntegAcompanhamento;
  CQVDadosGE_PropriedadesAcompanhamento dadosPropriedades;
  bool bCarregado = false;
  for (std::uint32_t i = 0; i < iQuantidadeServicoAtend; ++i) {
    ServicoIntegracao servico;
    servico.lPonteiroServico = lPonteiroServicoAtend + i;
    QV_CHECK(pGEAtendimentoDB->m_ArqServico.Le(servico.lPonteiroServico, &servico.reg));
    if (servico.reg.cIntegrarAcompServ == 0 || servico.reg.lIdentificadorServicoAcompanhamento != 0) continue;
    if (!bCarregado) {
      QV_CHECK(GetAcessoGerenciador()->LePropriedadesAcompanhamento(&dadosPropriedades));
      QV_CHECK(CarregaMapAcompanhamentos(regAtendimento, regDMCAtendimento.GetMa().ToChave(), mapIntegAcompanhamento));
      bCarregado = true;
    }
    servico.dmcAtendimento = regDMCAtendimento;
    servico.pAtendimento = &regAtendimento;
    servico.pPropriedades = &dadosPropriedades;
    QV_CHECK(LeClasseServico(servico));

    // The call's follow-ups in the order they were made: a second service
    // is offered first to the follow-up made for the first.
    bool bAtualizouServico = false;
    for (AcompanhamentoIntegrado& dadosAcompanhamento : mapIntegAcompanhamento) {
      QV_CHECK(AtualizaServicoAcompanhamentoExistente(dadosAcompanhamento.acompanhamento, servico, bAtualizouServico));
      if (!bAtualizouServico) continue;
      QV_CHECK(AtualizaACM_ServicoATTEC(dadosAcompanhamento, servico, pGEAtendimentoDB));
      break;
    }
    if (!bAtualizouServico)
      QV_CHECK(InsereNovoAcompanhamento(servico, mapIntegAcompanhamento, regAtendimento, pGEAtendimentoDB));
  }
  return S_OK;
}

HRESULT CGeServidorAtendimento::CarregaMapAcompanhamentos(const REG_ATENDIMENTO_V2& regAtendimento,
                                                          std::uint64_t uiChaveArquivo,
                                                          MapAcompanhamentos& mapIntegAcompanhamento) {
  CQVRegistroPs<_REG_ATENDIMENTO_PS> lista;
  lista.reg.lPonteiroListaPosIntegracoesACM = regAtendimento.lPonteiroListaPosIntegracoesACM;
  lista.reg.regListaPonteirosIntegACM.ulQuantidade = regAtendimento.lQtdPosIntegracoesACM;
  QV_CHECK(LePonteirosIntegracaoACM(uiChaveArquivo, lista.reg));
  std::set<std::uint64_t> lidos;
  for (std::uint32_t i = 0; i < lista.reg.regListaPonteirosIntegACM.ulQuantidade; ++i) {
    const REG_QVDMC dmcIntegracao(lista.reg.regListaPonteirosIntegACM.pLista[i]);
    if (!lidos.insert(dmcIntegracao.ui).second) continue;
    AcompanhamentoIntegrado dados;
    QV_CHECK(GetAcessoGerenciador()->LeRegistroIntegracaoAcompanhamentoATTEC(dmcIntegracao, &dados.integracao));
    QV_CHECK(
        GetAcessoGerenciador()->LeAcompanhamentoServico(&dados.integracao.dmcAcompanhamento, &dados.acompanhamento));
    mapIntegAcompanhamento.push_back(std::move(dados));
  }
  return S_OK;
}

HRESULT CGeServidorAtendimento::LeClasseServico(ServicoIntegracao& servico) {
  QV_CHECK(GetAcessoEmpresarial()->LeBufferServico(servico.reg.lPonteiroServico, &servico.dadosServicoDF));
  // S_FALSE: a service under no title; its class is 0.
  QV_CHECK(GetAcessoEmpresarial()->ExisteClassificacaoTituloServico(
      servico.dadosServicoDF.GetClassificacao(), &servico.lPonteiroClasse, &servico.dadosServicoClasse));
  return S_OK;
}

// A follow-up takes the service when it is still pending, is of the call's
// client and, unless the settings allow classes to mix, of the service's
// class (its class entry's title service; 0 for a follow-up without one,
// which takes only services under no title).
HRESULT CGeServidorAtendimento::AtualizaServicoAcompanhamentoExistente(
    CQVDadosGE_AcompanhamentoServico& dadosAcompanhamento, const ServicoIntegracao& servico, bool& bAtualizouServico) {
  bAtualizouServico = false;
  if (dadosAcompanhamento.cSituacao != kQVAcmPendente) return S_OK;
  if (dadosAcompanhamento.lPonteiroCliente != servico.pAtendimento->lPonteiroCliente) return S_OK;
  if (!servico.pPropriedades->GetPermitirAcompanhamentoClassesDiferentes()) {
    const CQVDadosGE_ServicoAcompanhamentoServico* pClasse = dadosAcompanhamento.GetClasse();
    if ((pClasse != nullptr ? pClasse->lPonteiroServico : 0) != servico.lPonteiroClasse) return S_OK;
  }
  QVMoeda vValorServicos = 0;
  if (__builtin_add_overflow(dadosAcompanhamento.vValorServicos, servico.reg.vValorTotal, &vValorServicos)) {
    QVLogaFalhaHr(QV_LOCAL, "dadosAcompanhamento.vValorServicos + servico.reg.vValorTotal", DISP_E_OVERFLOW,
                  {{"dmc", TextoDmc(dadosAcompanhamento.dmc)}});
    return DISP_E_OVERFLOW;
  }
  dadosAcompanhamento.m_servicos.push_back(NovaEntrada(servico.reg, servico.lPonteiroServico, servico.lPonteiroClasse,
                                                       servico.dmcAtendimento, servico.dadosServicoDF.sDescricao));
  dadosAcompanhamento.vValorServicos = vValorServicos;
  bAtualizouServico = true;
  return S_OK;
}

// The new follow-up: the call's client and branch, opened on the call's
// issue date (today for a call without one), pending, with the call's
// invoice number, the origin and record version of the follow-up settings
// and the service's value; its entries are the class entry (for a service
// under a title) and the service's.
HRESULT CGeServidorAtendimento::InsereNovoAcompanhamento(const ServicoIntegracao& servico,
                                                         MapAcompanhamentos& mapIntegAcompanhamento,
                                                         REG_ATENDIMENTO_V2& regAtendimento,
                                                         CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  AcompanhamentoIntegrado novo;
  CQVDadosGE_AcompanhamentoServico& dadosNovoAcompanhamento = novo.acompanhamento;
  dadosNovoAcompanhamento.lPonteiroCliente = regAtendimento.lPonteiroCliente;
  dadosNovoAcompanhamento.lPonteiroFilial = regAtendimento.lPonteiroFilial;
  dadosNovoAcompanhamento.SetDataAbertura(regAtendimento.iDataEmissao != 0 ? regAtendimento.iDataEmissao : QVHoje());
  dadosNovoAcompanhamento.SetOrigemRegistro(servico.pPropriedades->cOrigemPadrao);
  dadosNovoAcompanhamento.SetNumeroNF(regAtendimento.i64NumeroNF);
  dadosNovoAcompanhamento.SetVersaoRegistro(servico.pPropriedades->usVersaoRegistro);
  dadosNovoAcompanhamento.vValorServicos = servico.reg.vValorTotal;

  std::vector<CQVDadosGE_ServicoAcompanhamentoServico> servicos;
  if (servico.lPonteiroClasse != 0) {
    CQVDadosGE_ServicoAcompanhamentoServico classe;
    classe.SetClasse(servico.lPonteiroClasse);
    classe.SetPonteiroServico(servico.lPonteiroClasse);
    classe.sDescricao = servico.dadosServicoClasse.sDescricao;
    classe.PreparaParaSerClasse();
    servicos.push_back(std::move(classe));
  }
  servicos.push_back(NovaEntrada(servico.reg, servico.lPonteiroServico, servico.lPonteiroClasse, servico.dmcAtendimento,
                                 servico.dadosServicoDF.sDescricao));
  dadosNovoAcompanhamento.RemoveTodosServicos();
  dadosNovoAcompanhamento.AdicionaServicos(servicos);

  QV_CHECK(GetAcessoGerenciador()->InsereAcompanhamentoIntegracaoATTEC(dadosNovoAcompanhamento, servico.dmcAtendimento,
                                                                       &novo.integracao));
  mapIntegAcompanhamento.push_back(std::move(novo));
  AcompanhamentoIntegrado& inserido = mapIntegAcompanhamento.back();
  QV_CHECK(AtualizaPonteirosInteg_ACM(servico.dmcAtendimento.GetMa().ToChave(), regAtendimento,
                                      servico.dmcAtendimento.GetPosicao(), inserido.integracao, pGEAtendimentoDB));
  QV_CHECK(AtualizaACM_ServicoATTEC(inserido, servico, pGEAtendimentoDB));
  return S_OK;
}

// The list grows by one: written as a fresh run of the month's member (the
// old run stays, unreferenced), then the call record points to it.
HRESULT CGeServidorAtendimento::AtualizaPonteirosInteg_ACM(
    std::uint64_t uiChaveArquivo, REG_ATENDIMENTO_V2& regAtendimento, std::uint32_t lPosicao,
    const CQVDadosGE_DadosIntegracaoAcompanhamentoServico& dadosIntegracaoGerada,
    CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  CQVRegistroPs<_REG_ATENDIMENTO_PS> antigo, novo;
  antigo.reg.lPonteiroListaPosIntegracoesACM = regAtendimento.lPonteiroListaPosIntegracoesACM;
  antigo.reg.regListaPonteirosIntegACM.ulQuantidade = regAtendimento.lQtdPosIntegracoesACM;
  QV_CHECK(LePonteirosIntegracaoACM(uiChaveArquivo, antigo.reg));
  const std::uint32_t n = antigo.reg.regListaPonteirosIntegACM.ulQuantidade;
  _REG_DF_LISTA_QVDMCPS& lista = novo.reg.regListaPonteirosIntegACM;
  QV_CHECK(QVAlocaLista(lista.pLista, n + 1));
  lista.ulQuantidade = n + 1;
  for (std::uint32_t i = 0; i < n; ++i) lista.pLista[i] = antigo.reg.regListaPonteirosIntegACM.pLista[i];
  lista.pLista[n] = dadosIntegracaoGerada.dmcIntegracao.ui;
  QV_CHECK(GravaPonteirosIntegracaoACM(uiChaveArquivo, novo.reg, antigo.reg, regAtendimento));
  QVUInt uiPosicao = lPosicao;
  QV_CHECK(pGEAtendimentoDB->m_ArqAtendimento.Grava(uiPosicao, regAtendimento));
  return S_OK;
}

// The service record gets the follow-up's identity: its entry's number,
// the follow-up's reference (also as position and month) and the
// integration record's. Nothing else of the record changes.
HRESULT CGeServidorAtendimento::AtualizaACM_ServicoATTEC(AcompanhamentoIntegrado& acompanhamento,
                                                         const ServicoIntegracao& servico,
                                                         CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  REG_QVDMC regDMCGravado;
  QV_CHECK(GetAcessoGerenciador()->GravaAcompanhamentoServico(acompanhamento.acompanhamento, &regDMCGravado, true));
  CQVDadosGE_AcompanhamentoServico dadosAcompanhamentoGravado;
  QV_CHECK(GetAcessoGerenciador()->LeAcompanhamentoServico(&regDMCGravado, &dadosAcompanhamentoGravado,
                                                           GE_ACM_LER_SOMENTE_SERVICO));
  // The entries as the suite numbered them, so that a later write of this
  // follow-up in the same save does not number them again.
  acompanhamento.acompanhamento.m_servicos = dadosAcompanhamentoGravado.m_servicos;
  const CQVDadosGE_ServicoAcompanhamentoServico* pEntrada = nullptr;
  for (const CQVDadosGE_ServicoAcompanhamentoServico& entrada : dadosAcompanhamentoGravado.m_servicos)
    if (!entrada.bClasse && entrada.dmcAtendimento == servico.dmcAtendimento &&
        entrada.lPonteiroServicoAtendimento == servico.lPonteiroServico)
      pEntrada = &entrada;
  if (pEntrada == nullptr) {
    QVLogaFalhaHr(QV_LOCAL, "pEntrada", E_QVDF_REGISTRO_SUITE_INEXISTENTE,
                  {{"dmcAcompanhamento", TextoDmc(regDMCGravado)},
                   {"lPonteiroServico", std::to_string(servico.lPonteiroServico)}});
    return E_QVDF_REGISTRO_SUITE_INEXISTENTE;
  }
  REG_SERVICO_ATENDIMENTO_V3 regServicoGravacao = servico.reg;
  regServicoGravacao.lIdentificadorServicoAcompanhamento = pEntrada->lIdentificador;
  regServicoGravacao.rDMCAcompanhamentoGerado = regDMCGravado.ui;
  regServicoGravacao.lPonteiroACSGerado = regDMCGravado.GetPosicao();
  regServicoGravacao.iMaACSGerado = regDMCGravado.GetMa().iMA;
  regServicoGravacao.dmcRegIntegracaoAcompanhamento = acompanhamento.integracao.dmcIntegracao.ui;
  QVUInt uiPosicao = servico.lPonteiroServico;
  QV_CHECK(pGEAtendimentoDB->m_ArqServico.Grava(uiPosicao, regServicoGravacao));
  return S_OK;
}

// ---- a linked service rewritten --------------------------------------------------

HRESULT CGeServidorAtendimento::AtualizaDadosAcompanhamentoIntegrado(
    const _REG_ATENDIMENTO_PS& atendimento, const REG_SERVICO_ATENDIMENTO_V3& regServAtendimento,
    std::uint32_t lPonteiroServico, CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  const std::uint32_t lIdentificador = regServAtendimento.lIdentificadorServicoAcompanhamento;
  if (lIdentificador == 0) return S_OK;
  AcompanhamentoIntegrado dados;
  const REG_QVDMC regDMCIntegracao(regServAtendimento.dmcRegIntegracaoAcompanhamento);
  QV_CHECK(GetAcessoGerenciador()->LeRegistroIntegracaoAcompanhamentoATTEC(regDMCIntegracao, &dados.integracao));
  const REG_QVDMC regDMCAcompanhamento = dados.integracao.dmcAcompanhamento;
  QV_CHECK(GetAcessoGerenciador()->LeAcompanhamentoServico(&regDMCAcompanhamento, &dados.acompanhamento));
  // Its entry follows the service (a grown service list moves it); an
  // entry removed in the follow-up is not made again.
  for (CQVDadosGE_ServicoAcompanhamentoServico& entrada : dados.acompanhamento.m_servicos)
    if (!entrada.bClasse && entrada.lIdentificador == lIdentificador)
      CopiaServicoParaEntrada(regServAtendimento, lPonteiroServico, entrada);
  QVMoeda vValorServicos = 0;
  QV_CHECK(CalculaValorServicosMesmaOrigem(dados, atendimento, vValorServicos, pGEAtendimentoDB));
  dados.acompanhamento.vValorServicos = vValorServicos;
  REG_QVDMC regDMCGravado;
  QV_CHECK(GetAcessoGerenciador()->GravaAcompanhamentoServico(dados.acompanhamento, &regDMCGravado, true));
  return S_OK;
}

// A service counts for the follow-up when it names the follow-up and one
// of its service entries; each entry once. The call being written comes
// first, from the client's record (its services are what was just stored;
// its call record is not yet), then the other calls, as stored.
HRESULT CGeServidorAtendimento::CalculaValorServicosMesmaOrigem(const AcompanhamentoIntegrado& acompanhamento,
                                                                const _REG_ATENDIMENTO_PS& atendimento,
                                                                QVMoeda& vValorServicos,
                                                                CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  const CQVDadosGE_AcompanhamentoServico& dados = acompanhamento.acompanhamento;
  std::vector<std::pair<std::uint32_t, QVMoeda>> realizados;  // entry number, value
  auto adiciona = [&](std::uint32_t lIdentificador, std::uint64_t rDMCAcompanhamento, QVMoeda vValor) {
    if (lIdentificador != 0 && rDMCAcompanhamento == dados.dmc.ui) realizados.emplace_back(lIdentificador, vValor);
  };
  for (std::uint32_t i = 0; i < atendimento.iQuantidadeServicoAtend; ++i) {
    const _REG_SERVICO_ATENDIMENTO_PS& servico = atendimento.pServicos[i];
    adiciona(servico.lIdentificadorServicoAcompanhamento, servico.rDMCAcompanhamentoGerado, servico.vValorTotal);
  }
  std::set<REG_QVDMC> atendimentos;
  QV_CHECK(BuscaAtendimentosMesmaOrigem(acompanhamento, atendimentos));
  std::vector<REG_SERVICO_ATENDIMENTO_V3> servicos;
  for (const REG_QVDMC& dmcAtendimento : atendimentos) {
    QV_CHECK(LeServicosGravadosAtendimento(dmcAtendimento, servicos, pGEAtendimentoDB));
    for (const REG_SERVICO_ATENDIMENTO_V3& reg : servicos)
      adiciona(reg.lIdentificadorServicoAcompanhamento, reg.rDMCAcompanhamentoGerado, reg.vValorTotal);
  }

  std::set<std::uint32_t> contados;
  QVMoeda vTotal = 0;
  for (const auto& [lIdentificador, vValor] : realizados) {
    const CQVDadosGE_ServicoAcompanhamentoServico* pEntrada = dados.ProcuraServico(lIdentificador);
    if (pEntrada == nullptr || pEntrada->bClasse || !contados.insert(lIdentificador).second) continue;
    if (__builtin_add_overflow(vTotal, vValor, &vTotal)) {
      QVLogaFalhaHr(QV_LOCAL, "vTotal + vValor", DISP_E_OVERFLOW, {{"dmc", TextoDmc(dados.dmc)}});
      return DISP_E_OVERFLOW;
    }
  }
  vValorServicos = vTotal;
  return S_OK;
}

// The calls of a follow-up are the ones its integration record and its
// entries name: every entry the server made names the call that performed
// it, and only entries the follow-up still has are counted. Not a search of
// every call: no filter step selects by follow-up, and the filter's branch
// step would make the value depend on the user who saves.
HRESULT CGeServidorAtendimento::BuscaAtendimentosMesmaOrigem(const AcompanhamentoIntegrado& acompanhamento,
                                                             std::set<REG_QVDMC>& atendimentos) {
  atendimentos.clear();
  if (!acompanhamento.integracao.dmcAtendimento.Vazio()) atendimentos.insert(acompanhamento.integracao.dmcAtendimento);
  for (const CQVDadosGE_ServicoAcompanhamentoServico& entrada : acompanhamento.acompanhamento.m_servicos)
    if (!entrada.bClasse && !entrada.dmcAtendimento.Vazio()) atendimentos.insert(entrada.dmcAtendimento);
  return S_OK;
}

// The current month is read from memory; another month from its files,
// opened read-only (no month is selected, no file changes). A reference of
// no month, of a month without calls or past its last call names no
// stored call: no services.
HRESULT CGeServidorAtendimento::LeServicosGravadosAtendimento(const REG_QVDMC& dmcAtendimento,
                                                              std::vector<REG_SERVICO_ATENDIMENTO_V3>& servicos,
                                                              CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  using ArquivoAtendimento = CGeServidorAtendimentoDatabase::ArquivoMensal<REG_ATENDIMENTO_V2>;
  using ArquivoServico = CGeServidorAtendimentoDatabase::ArquivoMensal<REG_SERVICO_ATENDIMENTO_V3>;
  servicos.clear();
  const std::uint16_t iMA = dmcAtendimento.GetMa().iMA;
  const std::uint32_t lPosicao = dmcAtendimento.GetPosicao();
  int iAno = 0, iMes = 0;
  if (lPosicao == 0 || !QVMesAnoDecompoe(iMA, &iAno, &iMes)) return S_OK;

  ArquivoAtendimento* pArqAtendimento = &pGEAtendimentoDB->m_ArqAtendimento;
  ArquivoServico* pArqServico = &pGEAtendimentoDB->m_ArqServico;
  CQVDataBase qvDB(QV_GE);
  ArquivoAtendimento arqAtendimentoMes(pGEAtendimentoDB->m_ArqAtendimento.GetRaiz(), QV_GE);
  ArquivoServico arqServicoMes(pGEAtendimentoDB->m_ArqServico.GetRaiz(), QV_GE);
  if (iMA != pGEAtendimentoDB->GetMa().iMA) {
    qvDB.SetSomenteLeitura(true);
    qvDB.SetDiretorio(pGEAtendimentoDB->GetDiretorio());
    QV_CHECK(qvDB.Inicializa(this));
    QV_CHECK(arqAtendimentoMes.SelecionaPeriodo(iMA));
    QV_CHECK(arqAtendimentoMes.Inicializa(&qvDB));
    QV_CHECK(arqServicoMes.SelecionaPeriodo(iMA));
    QV_CHECK(arqServicoMes.Inicializa(&qvDB));
    pArqAtendimento = &arqAtendimentoMes;
    pArqServico = &arqServicoMes;
  }
  if (lPosicao > pArqAtendimento->GetQtdRegistros()) return S_OK;
  REG_ATENDIMENTO_V2 regAtendimento;
  QV_CHECK(pArqAtendimento->Le(lPosicao, &regAtendimento));
  const std::uint32_t lPonteiroServicoAtend = regAtendimento.lPonteiroServicoAtend;
  const std::uint32_t iQuantidadeServicoAtend = regAtendimento.iQuantidadeServicoAtend;
  QV_CHECK(QVValidaLista(*pArqServico, lPonteiroServicoAtend, iQuantidadeServicoAtend));
  servicos.resize(iQuantidadeServicoAtend);
  for (std::uint32_t i = 0; i < iQuantidadeServicoAtend; ++i)
    QV_CHECK(pArqServico->Le(lPonteiroServicoAtend + i, &servicos[i]));
  return S_OK;
}
