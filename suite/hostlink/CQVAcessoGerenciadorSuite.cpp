// The manager access over the suite store.
//
// Rows, per company (ponteiro_empresa):
//  - acompanhamentos: one follow-up; its reference is (ponteiro, ma), ma
//    being the month of its opening date when it was inserted (today's
//    month without one). The month never changes afterwards: calls keep the
//    reference in their service records.
//  - acompanhamento_servicos: its services, keyed by (follow-up,
//    identificador); read in the order of their numbers.
//  - integracoes_acompanhamento: (ponteiro, ma) is the record's reference,
//    ma the month of the call; it holds the follow-up's pointer and the
//    call's whole reference.
//  - listas_eventos / eventos: a call's calendar events, kept in order.
//  - projetos, parametros_ge, empresas (+ municipios) for the rest.
// A reference is accepted only with the company AND the month of its row,
// a pointer with the company; a mismatch reads as absent. Each write runs in one IMMEDIATE
// transaction: the numbers it hands out (max + 1, row ids) are therefore
// unique across the processes sharing the store. A failure inside a
// transaction is logged where it happens (a record found absent: one line)
// and the transaction's status returned as it is.
#include "suite/hostlink/CQVAcessoGerenciadorSuite.h"

#include <algorithm>
#include <limits>
#include <set>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVDatas.h"
#include "df/qvlibex/QVLog.h"
#include "suite/store/CQVBancoSuite.h"

namespace {

using Servico = CQVDadosGE_ServicoAcompanhamentoServico;
using Servicos = std::vector<Servico>;

std::string TextoDmc(const REG_QVDMC& dmc) {
  return std::to_string(dmc.GetMa().iMA) + ":" + std::to_string(dmc.GetPosicao());
}

HRESULT Inexistente(const QVLocalFonte& local, std::string_view expressao, std::uint32_t lEmpresa,
                    std::string sNome, std::string sValor) {
  QVLogaFalhaHr(local, expressao, E_QVDF_REGISTRO_SUITE_INEXISTENTE,
                {{std::move(sNome), std::move(sValor)}, {"m_lEmpresa", std::to_string(lEmpresa)}});
  return E_QVDF_REGISTRO_SUITE_INEXISTENTE;
}

std::int64_t I64(std::uint64_t v) { return static_cast<std::int64_t>(v); }

// The pointer of the row just inserted: row ids are the 32-bit pointers the
// records carry, so one beyond them is a store we cannot address.
HRESULT PonteiroInserido(const CQVBancoSuite& banco, std::uint32_t* plPonteiro) {
  const std::int64_t i64 = banco.UltimoPonteiro();
  if (i64 <= 0 || i64 > std::numeric_limits<std::uint32_t>::max()) {
    QVLogaFalhaHr(QV_LOCAL, "banco.UltimoPonteiro()", E_QVDF_BANCO_SUITE_FALHA, {{"ponteiro", std::to_string(i64)}});
    return E_QVDF_BANCO_SUITE_FALHA;
  }
  *plPonteiro = static_cast<std::uint32_t>(i64);
  return S_OK;
}

// Numbers the entries for writing: the numbers given stay (each at most
// once), the zeros get lMaiorGravado + 1, + 2... past every number given,
// so no new number is one a call may still hold for a removed entry of
// this write.
HRESULT NumeraServicos(Servicos& servicos, std::uint32_t lMaiorGravado) {
  std::set<std::uint32_t> dados;
  std::uint64_t ui64Proximo = lMaiorGravado;
  for (const Servico& s : servicos) {
    if (s.lIdentificador == 0) continue;
    if (!dados.insert(s.lIdentificador).second) {
      QVLogaFalhaHr(QV_LOCAL, "dados.insert(s.lIdentificador).second", E_INVALIDARG,
                    {{"lIdentificador", std::to_string(s.lIdentificador)}});
      return E_INVALIDARG;
    }
    ui64Proximo = std::max<std::uint64_t>(ui64Proximo, s.lIdentificador);
  }
  for (Servico& s : servicos) {
    if (s.lIdentificador != 0) continue;
    if (++ui64Proximo > std::numeric_limits<std::uint32_t>::max()) {
      QVLogaFalhaHr(QV_LOCAL, "++ui64Proximo > std::numeric_limits<std::uint32_t>::max()", E_INVALIDARG,
                    {{"lMaiorGravado", std::to_string(lMaiorGravado)}});
      return E_INVALIDARG;
    }
    s.lIdentificador = static_cast<std::uint32_t>(ui64Proximo);
  }
  return S_OK;
}

// The entries of a follow-up, as numbered; the caller removed the old ones.
HRESULT InsereServicos(CQVBancoSuite& banco, std::uint32_t lAcompanhamento, const Servicos& servicos) {
  for (const Servico& s : servicos) {
    CQVComandoSuite cmd;
    QV_CHECK(banco.Prepara(
        "INSERT INTO acompanhamento_servicos(ponteiro_acompanhamento, identificador, ponteiro_servico,"
        " ponteiro_classe, classe, ponteiro_executor, situacao, data_prevista, data_conclusao, quantidade, valor,"
        " dmc_atendimento, ponteiro_servico_atendimento, descricao)"
        " VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14)",
        &cmd));
    cmd.Liga(1, I64(lAcompanhamento))
        .Liga(2, I64(s.lIdentificador))
        .Liga(3, I64(s.lPonteiroServico))
        .Liga(4, I64(s.lPonteiroClasse))
        .Liga(5, I64(s.bClasse ? 1 : 0))
        .Liga(6, I64(s.lPonteiroExecutor))
        .Liga(7, I64(s.cSituacao))
        .Liga(8, I64(s.iDataPrevista))
        .Liga(9, I64(s.iDataConclusao))
        .Liga(10, s.vQuantidade)
        .Liga(11, s.vValor)
        .Liga(12, I64(s.dmcAtendimento.ui))
        .Liga(13, I64(s.lPonteiroServicoAtendimento))
        .Liga(14, s.sDescricao);
    QV_CHECK(cmd.Executa());
  }
  return S_OK;
}

// The columns of a follow-up's header from ?2 on, as INSERT and UPDATE bind them.
void LigaCabecalho(CQVComandoSuite& cmd, const CQVDadosGE_AcompanhamentoServico& d) {
  cmd.Liga(2, I64(d.lPonteiroCliente))
      .Liga(3, I64(d.lPonteiroFilial))
      .Liga(4, I64(d.iDataAbertura))
      .Liga(5, I64(d.iDataConclusao))
      .Liga(6, I64(d.cSituacao))
      .Liga(7, I64(d.cOrigemRegistro))
      .Liga(8, d.i64NumeroNF)
      .Liga(9, I64(d.usVersaoRegistro))
      .Liga(10, d.vValorServicos)
      .Liga(11, d.sObservacao);
}

template <class T>
T Coluna(const CQVComandoSuite& cmd, int col) {
  return static_cast<T>(cmd.Inteiro(col));
}

}  // namespace

// ---- calendar events -----------------------------------------------------------

HRESULT CQVAcessoGerenciadorSuite::LeEventosGoogle(const std::uint32_t* plPonteiroEventoAgenda,
                                                   CQVDadosGE_ListaEventos* pLista) {
  if (plPonteiroEventoAgenda == nullptr || pLista == nullptr) QV_RETURN(E_POINTER);
  pLista->m_eventos.clear();
  const std::uint32_t lLista = *plPonteiroEventoAgenda;
  if (lLista == 0) return S_OK;
  auto trava = m_pBanco->Trava();
  // One statement: the list and its events from one snapshot.
  CQVComandoSuite cmd;
  QV_CHECK(m_pBanco->Prepara(
      "SELECT e.ponteiro, e.usuario, e.id_agenda, e.id_evento FROM listas_eventos l"
      " LEFT JOIN eventos e ON e.ponteiro_lista = l.ponteiro"
      " WHERE l.ponteiro = ?1 AND l.ponteiro_empresa = ?2 ORDER BY e.ordem",
      &cmd));
  cmd.Liga(1, I64(lLista)).Liga(2, I64(m_lEmpresa));
  std::vector<CQVDadosGE_EventoAgenda> eventos;
  bool bLinha = false, bLista = false;
  for (;;) {
    QV_CHECK(cmd.Passo(&bLinha));
    if (!bLinha) break;
    bLista = true;
    if (cmd.Nulo(0)) continue;  // a list without events
    CQVDadosGE_EventoAgenda e;
    e.lPonteiroTextoIDAgenda = e.lPonteiroTextoIDEvento = Coluna<std::uint32_t>(cmd, 0);
    e.usUsuarioEvento = Coluna<std::uint16_t>(cmd, 1);
    e.sIDAgenda = cmd.Texto(2);
    e.sIDEvento = cmd.Texto(3);
    eventos.push_back(std::move(e));
  }
  if (!bLista) return Inexistente(QV_LOCAL, "bLista", m_lEmpresa, "lLista", std::to_string(lLista));
  pLista->m_eventos = std::move(eventos);
  return S_OK;
}

HRESULT CQVAcessoGerenciadorSuite::GravaEventosGoogle(const CQVDadosGE_ListaEventos* pLista,
                                                      std::uint32_t* plPonteiroEventoAgenda) {
  if (plPonteiroEventoAgenda == nullptr || pLista == nullptr) QV_RETURN(E_POINTER);
  std::uint32_t lLista = *plPonteiroEventoAgenda;
  // Nothing to keep and nowhere kept: no empty list is made.
  if (lLista == 0 && pLista->m_eventos.empty()) return S_OK;
  const HRESULT hr = m_pBanco->Transacao([&]() -> HRESULT {
    if (lLista == 0) {
      CQVComandoSuite nova;
      QV_CHECK(m_pBanco->Prepara("INSERT INTO listas_eventos(ponteiro_empresa) VALUES(?1)", &nova));
      QV_CHECK(nova.Liga(1, I64(m_lEmpresa)).Executa());
      QV_CHECK(PonteiroInserido(*m_pBanco, &lLista));
    } else {
      CQVComandoSuite existe;
      QV_CHECK(
          m_pBanco->Prepara("SELECT 1 FROM listas_eventos WHERE ponteiro = ?1 AND ponteiro_empresa = ?2", &existe));
      bool bLinha = false;
      QV_CHECK(existe.Liga(1, I64(lLista)).Liga(2, I64(m_lEmpresa)).Passo(&bLinha));
      if (!bLinha) return Inexistente(QV_LOCAL, "bLinha", m_lEmpresa, "lLista", std::to_string(lLista));
      CQVComandoSuite apaga;
      QV_CHECK(m_pBanco->Prepara("DELETE FROM eventos WHERE ponteiro_lista = ?1", &apaga));
      QV_CHECK(apaga.Liga(1, I64(lLista)).Executa());
    }
    std::int64_t i64Ordem = 0;
    for (const CQVDadosGE_EventoAgenda& e : pLista->m_eventos) {
      CQVComandoSuite cmd;
      QV_CHECK(m_pBanco->Prepara(
          "INSERT INTO eventos(ponteiro_lista, ordem, usuario, id_agenda, id_evento) VALUES(?1, ?2, ?3, ?4, ?5)",
          &cmd));
      cmd.Liga(1, I64(lLista)).Liga(2, ++i64Ordem).Liga(3, I64(e.usUsuarioEvento));
      cmd.Liga(4, e.sIDAgenda).Liga(5, e.sIDEvento);
      QV_CHECK(cmd.Executa());
    }
    return S_OK;
  });
  if (FAILED(hr)) return hr;  // logged where it failed
  *plPonteiroEventoAgenda = lLista;
  return S_OK;
}

// ---- follow-ups ----------------------------------------------------------------

HRESULT CQVAcessoGerenciadorSuite::LeAcompanhamentoServico(const REG_QVDMC* pDmc,
                                                           CQVDadosGE_AcompanhamentoServico* pDados,
                                                           std::uint32_t modo) {
  if (pDmc == nullptr || pDados == nullptr) QV_RETURN(E_POINTER);
  if (modo != GE_ACM_LER_TUDO && modo != GE_ACM_LER_SOMENTE_SERVICO) {
    QVLogaFalhaHr(QV_LOCAL, "modo", E_INVALIDARG, {{"modo", std::to_string(modo)}});
    return E_INVALIDARG;
  }
  *pDados = CQVDadosGE_AcompanhamentoServico();
  const REG_QVDMC dmc = *pDmc;
  auto trava = m_pBanco->Trava();
  // One statement: the header and its services from one snapshot, even
  // while another process rewrites them.
  CQVComandoSuite cmd;
  QV_CHECK(m_pBanco->Prepara(
      "SELECT a.ponteiro_cliente, a.ponteiro_filial, a.data_abertura, a.data_conclusao, a.situacao, a.origem,"
      " a.numero_nf, a.versao_registro, a.valor_servicos, a.observacao,"
      " s.identificador, s.ponteiro_servico, s.ponteiro_classe, s.classe, s.ponteiro_executor, s.situacao,"
      " s.data_prevista, s.data_conclusao, s.quantidade, s.valor, s.dmc_atendimento,"
      " s.ponteiro_servico_atendimento, s.descricao"
      " FROM acompanhamentos a LEFT JOIN acompanhamento_servicos s ON s.ponteiro_acompanhamento = a.ponteiro"
      " WHERE a.ponteiro = ?1 AND a.ponteiro_empresa = ?2 AND a.ma = ?3 ORDER BY s.identificador",
      &cmd));
  cmd.Liga(1, I64(dmc.GetPosicao())).Liga(2, I64(m_lEmpresa)).Liga(3, I64(dmc.GetMa().iMA));
  CQVDadosGE_AcompanhamentoServico d;
  bool bLinha = false, bCabecalho = false;
  for (;;) {
    QV_CHECK(cmd.Passo(&bLinha));
    if (!bLinha) break;
    if (!bCabecalho && modo == GE_ACM_LER_TUDO) {
      d.lPonteiroCliente = Coluna<std::uint32_t>(cmd, 0);
      d.lPonteiroFilial = Coluna<std::uint32_t>(cmd, 1);
      d.iDataAbertura = Coluna<std::uint32_t>(cmd, 2);
      d.iDataConclusao = Coluna<std::uint32_t>(cmd, 3);
      d.cSituacao = Coluna<std::uint8_t>(cmd, 4);
      d.cOrigemRegistro = Coluna<std::uint8_t>(cmd, 5);
      d.i64NumeroNF = cmd.Inteiro(6);
      d.usVersaoRegistro = Coluna<std::uint16_t>(cmd, 7);
      d.vValorServicos = cmd.Inteiro(8);
      d.sObservacao = cmd.Texto(9);
    }
    bCabecalho = true;
    if (cmd.Nulo(10)) continue;  // a follow-up without services
    Servico s;
    s.lIdentificador = Coluna<std::uint32_t>(cmd, 10);
    s.lPonteiroServico = Coluna<std::uint32_t>(cmd, 11);
    s.lPonteiroClasse = Coluna<std::uint32_t>(cmd, 12);
    s.bClasse = cmd.Inteiro(13) != 0;
    s.lPonteiroExecutor = Coluna<std::uint32_t>(cmd, 14);
    s.cSituacao = Coluna<std::uint8_t>(cmd, 15);
    s.iDataPrevista = Coluna<std::uint32_t>(cmd, 16);
    s.iDataConclusao = Coluna<std::uint32_t>(cmd, 17);
    s.vQuantidade = cmd.Inteiro(18);
    s.vValor = cmd.Inteiro(19);
    s.dmcAtendimento = REG_QVDMC(static_cast<std::uint64_t>(cmd.Inteiro(20)));
    s.lPonteiroServicoAtendimento = Coluna<std::uint32_t>(cmd, 21);
    s.sDescricao = cmd.Texto(22);
    d.m_servicos.push_back(std::move(s));
  }
  if (!bCabecalho) return Inexistente(QV_LOCAL, "bCabecalho", m_lEmpresa, "dmc", TextoDmc(dmc));
  d.dmc = dmc;
  *pDados = std::move(d);
  return S_OK;
}

HRESULT CQVAcessoGerenciadorSuite::GravaAcompanhamentoServico(const CQVDadosGE_AcompanhamentoServico& dados,
                                                              REG_QVDMC* pDmcGravado, bool bGravarServicos) {
  if (pDmcGravado == nullptr) QV_RETURN(E_POINTER);
  const REG_QVDMC dmc = dados.dmc;
  const std::uint32_t lAcompanhamento = dmc.GetPosicao();
  const HRESULT hr = m_pBanco->Transacao([&]() -> HRESULT {
    // The month stays the one the follow-up was inserted with: it is part of
    // the reference the calls hold.
    CQVComandoSuite cmd;
    QV_CHECK(m_pBanco->Prepara(
        "UPDATE acompanhamentos SET ponteiro_cliente = ?2, ponteiro_filial = ?3, data_abertura = ?4,"
        " data_conclusao = ?5, situacao = ?6, origem = ?7, numero_nf = ?8, versao_registro = ?9,"
        " valor_servicos = ?10, observacao = ?11"
        " WHERE ponteiro = ?1 AND ponteiro_empresa = ?12 AND ma = ?13",
        &cmd));
    cmd.Liga(1, I64(lAcompanhamento)).Liga(12, I64(m_lEmpresa)).Liga(13, I64(dmc.GetMa().iMA));
    LigaCabecalho(cmd, dados);
    QV_CHECK(cmd.Executa());
    if (m_pBanco->Alteracoes() != 1)
      return Inexistente(QV_LOCAL, "m_pBanco->Alteracoes() != 1", m_lEmpresa, "dmc", TextoDmc(dmc));
    if (!bGravarServicos) return S_OK;

    CQVComandoSuite maior;
    QV_CHECK(m_pBanco->Prepara(
        "SELECT COALESCE(MAX(identificador), 0) FROM acompanhamento_servicos WHERE ponteiro_acompanhamento = ?1",
        &maior));
    bool bLinha = false;
    QV_CHECK(maior.Liga(1, I64(lAcompanhamento)).Passo(&bLinha));
    const std::int64_t i64Maior = bLinha ? maior.Inteiro(0) : 0;
    Servicos servicos = dados.m_servicos;
    const auto lMaior = static_cast<std::uint32_t>(
        std::clamp<std::int64_t>(i64Maior, 0, std::numeric_limits<std::uint32_t>::max()));
    // Refused input: one line, written there.
    if (const HRESULT hrNumeros = NumeraServicos(servicos, lMaior); FAILED(hrNumeros)) return hrNumeros;
    CQVComandoSuite apaga;
    QV_CHECK(m_pBanco->Prepara("DELETE FROM acompanhamento_servicos WHERE ponteiro_acompanhamento = ?1", &apaga));
    QV_CHECK(apaga.Liga(1, I64(lAcompanhamento)).Executa());
    QV_CHECK(InsereServicos(*m_pBanco, lAcompanhamento, servicos));
    return S_OK;
  });
  if (FAILED(hr)) return hr;  // logged where it failed
  *pDmcGravado = dmc;
  return S_OK;
}

HRESULT CQVAcessoGerenciadorSuite::LeRegistroIntegracaoAcompanhamentoATTEC(
    const REG_QVDMC& dmcIntegracao, CQVDadosGE_DadosIntegracaoAcompanhamentoServico* pDados) {
  if (pDados == nullptr) QV_RETURN(E_POINTER);
  *pDados = CQVDadosGE_DadosIntegracaoAcompanhamentoServico();
  auto trava = m_pBanco->Trava();
  CQVComandoSuite cmd;
  QV_CHECK(m_pBanco->Prepara(
      "SELECT i.ponteiro_acompanhamento, a.ma, i.dmc_atendimento FROM integracoes_acompanhamento i"
      " JOIN acompanhamentos a ON a.ponteiro = i.ponteiro_acompanhamento"
      " WHERE i.ponteiro = ?1 AND i.ponteiro_empresa = ?2 AND i.ma = ?3",
      &cmd));
  cmd.Liga(1, I64(dmcIntegracao.GetPosicao())).Liga(2, I64(m_lEmpresa)).Liga(3, I64(dmcIntegracao.GetMa().iMA));
  bool bLinha = false;
  QV_CHECK(cmd.Passo(&bLinha));
  if (!bLinha) return Inexistente(QV_LOCAL, "bLinha", m_lEmpresa, "dmcIntegracao", TextoDmc(dmcIntegracao));
  pDados->dmcIntegracao = dmcIntegracao;
  pDados->dmcAcompanhamento.SetDMC(Coluna<std::uint32_t>(cmd, 0), Coluna<std::uint16_t>(cmd, 1));
  pDados->dmcAtendimento = REG_QVDMC(static_cast<std::uint64_t>(cmd.Inteiro(2)));
  return S_OK;
}

HRESULT CQVAcessoGerenciadorSuite::InsereAcompanhamentoIntegracaoATTEC(
    CQVDadosGE_AcompanhamentoServico& dadosNovo, const REG_QVDMC& dmcAtendimento,
    CQVDadosGE_DadosIntegracaoAcompanhamentoServico* pGerada) {
  if (pGerada == nullptr) QV_RETURN(E_POINTER);
  // The integration record is filed under the call's month: a reference
  // without one names no call.
  const std::uint16_t maAtendimento = dmcAtendimento.GetMa().iMA;
  if (dmcAtendimento.GetPosicao() == 0 || maAtendimento == 0 || maAtendimento > kQVMesAnoMaximo) {
    QVLogaFalhaHr(QV_LOCAL, "dmcAtendimento", E_INVALIDARG, {{"dmcAtendimento", TextoDmc(dmcAtendimento)}});
    return E_INVALIDARG;
  }
  const std::uint16_t ma = QVMesAnoDoDia(dadosNovo.iDataAbertura != 0 ? dadosNovo.iDataAbertura : QVHoje());
  if (ma == 0) {
    QVLogaFalhaHr(QV_LOCAL, "QVMesAnoDoDia(dadosNovo.iDataAbertura)", E_INVALIDARG,
                  {{"iDataAbertura", std::to_string(dadosNovo.iDataAbertura)}});
    return E_INVALIDARG;
  }
  Servicos servicos = dadosNovo.m_servicos;
  std::uint32_t lNumero = 0;
  for (Servico& s : servicos) s.lIdentificador = ++lNumero;
  std::uint32_t lAcompanhamento = 0, lIntegracao = 0;
  const HRESULT hr = m_pBanco->Transacao([&]() -> HRESULT {
    CQVComandoSuite cmd;
    QV_CHECK(m_pBanco->Prepara(
        "INSERT INTO acompanhamentos(ponteiro_empresa, ponteiro_cliente, ponteiro_filial, data_abertura,"
        " data_conclusao, situacao, origem, numero_nf, versao_registro, valor_servicos, observacao, ma)"
        " VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12)",
        &cmd));
    cmd.Liga(1, I64(m_lEmpresa)).Liga(12, I64(ma));
    LigaCabecalho(cmd, dadosNovo);
    QV_CHECK(cmd.Executa());
    QV_CHECK(PonteiroInserido(*m_pBanco, &lAcompanhamento));
    QV_CHECK(InsereServicos(*m_pBanco, lAcompanhamento, servicos));
    CQVComandoSuite integ;
    QV_CHECK(m_pBanco->Prepara(
        "INSERT INTO integracoes_acompanhamento(ponteiro_empresa, ma, ponteiro_acompanhamento, dmc_atendimento)"
        " VALUES(?1, ?2, ?3, ?4)",
        &integ));
    integ.Liga(1, I64(m_lEmpresa)).Liga(2, I64(maAtendimento));
    integ.Liga(3, I64(lAcompanhamento)).Liga(4, I64(dmcAtendimento.ui));
    QV_CHECK(integ.Executa());
    QV_CHECK(PonteiroInserido(*m_pBanco, &lIntegracao));
    return S_OK;
  });
  if (FAILED(hr)) return hr;  // logged where it failed
  // Only what was committed is handed back.
  dadosNovo.dmc.SetDMC(lAcompanhamento, ma);
  dadosNovo.m_servicos = std::move(servicos);
  pGerada->dmcIntegracao.SetDMC(lIntegracao, maAtendimento);
  pGerada->dmcAcompanhamento = dadosNovo.dmc;
  pGerada->dmcAtendimento = dmcAtendimento;
  return S_OK;
}

HRESULT CQVAcessoGerenciadorSuite::LePropriedadesAcompanhamento(CQVDadosGE_PropriedadesAcompanhamento* pDados) {
  if (pDados == nullptr) QV_RETURN(E_POINTER);
  CQVDadosGE_PropriedadesAcompanhamento d;
  auto trava = m_pBanco->Trava();
  CQVComandoSuite cmd;
  QV_CHECK(m_pBanco->Prepara(
      "SELECT permitir_classes_diferentes, origem_acompanhamento, versao_acompanhamento FROM parametros_ge"
      " WHERE ponteiro_empresa = ?1",
      &cmd));
  bool bLinha = false;
  QV_CHECK(cmd.Liga(1, I64(m_lEmpresa)).Passo(&bLinha));
  // A company that never set them works with the defaults.
  if (bLinha) {
    d.bPermitirAcompanhamentoClassesDiferentes = cmd.Inteiro(0) != 0;
    d.cOrigemPadrao = Coluna<std::uint8_t>(cmd, 1);
    d.usVersaoRegistro = Coluna<std::uint16_t>(cmd, 2);
  }
  *pDados = d;
  return S_OK;
}

// ---- the company and projects ----------------------------------------------------

HRESULT CQVAcessoGerenciadorSuite::LeMestre(CQVDadosGE_Mestre* pDados) {
  if (pDados == nullptr) QV_RETURN(E_POINTER);
  *pDados = CQVDadosGE_Mestre();
  auto trava = m_pBanco->Trava();
  CQVComandoSuite cmd;
  QV_CHECK(m_pBanco->Prepara(
      "SELECT e.razao_social, e.nome_fantasia, e.cnpj, e.inscricao_estadual, e.endereco, m.nome, m.uf,"
      " e.telefone, e.email, COALESCE(p.relatorios_por_faturamento, 0) FROM empresas e"
      " LEFT JOIN municipios m ON m.ponteiro = e.ponteiro_municipio"
      " LEFT JOIN parametros_ge p ON p.ponteiro_empresa = e.ponteiro WHERE e.ponteiro = ?1",
      &cmd));
  bool bLinha = false;
  QV_CHECK(cmd.Liga(1, I64(m_lEmpresa)).Passo(&bLinha));
  if (!bLinha) return Inexistente(QV_LOCAL, "bLinha", m_lEmpresa, "lEmpresa", std::to_string(m_lEmpresa));
  CQVDadosGE_Mestre& d = *pDados;
  d.sRazaoSocial = cmd.Texto(0);
  d.sNomeFantasia = cmd.Texto(1);
  d.sCnpj = cmd.Texto(2);
  d.sInscricaoEstadual = cmd.Texto(3);
  d.sEndereco = cmd.Texto(4);
  // "Nome/UF"; the name alone without a state; nothing without a municipality.
  d.sMunicipio = cmd.Texto(5);
  const std::string sUf = cmd.Texto(6);
  if (!d.sMunicipio.empty() && !sUf.empty()) d.sMunicipio += "/" + sUf;
  d.sTelefone = cmd.Texto(7);
  d.sEmail = cmd.Texto(8);
  d.bRelatoriosPorFaturamento = cmd.Inteiro(9) != 0;
  return S_OK;
}

HRESULT CQVAcessoGerenciadorSuite::LeProjeto(std::uint32_t lPonteiro, CQVDadosGE_Projeto* pDados) {
  if (pDados == nullptr) QV_RETURN(E_POINTER);
  *pDados = CQVDadosGE_Projeto();
  auto trava = m_pBanco->Trava();
  CQVComandoSuite cmd;
  QV_CHECK(m_pBanco->Prepara(
      "SELECT codigo, nome, ponteiro_cliente, inativo FROM projetos WHERE ponteiro = ?1 AND ponteiro_empresa = ?2",
      &cmd));
  bool bLinha = false;
  QV_CHECK(cmd.Liga(1, I64(lPonteiro)).Liga(2, I64(m_lEmpresa)).Passo(&bLinha));
  if (!bLinha) return Inexistente(QV_LOCAL, "bLinha", m_lEmpresa, "lPonteiro", std::to_string(lPonteiro));
  pDados->lPonteiro = lPonteiro;
  pDados->sCodigo = cmd.Texto(0);
  pDados->sNome = cmd.Texto(1);
  pDados->lPonteiroCliente = Coluna<std::uint32_t>(cmd, 2);
  pDados->bInativo = cmd.Inteiro(3) != 0;
  return S_OK;
}

HRESULT CQVAcessoGerenciadorSuite::GravaProjeto(CQVDadosGE_Projeto& dados) {
  std::uint32_t lPonteiro = dados.lPonteiro;
  const HRESULT hr = m_pBanco->Transacao([&]() -> HRESULT {
    CQVComandoSuite cmd;
    if (lPonteiro == 0) {
      QV_CHECK(m_pBanco->Prepara(
          "INSERT INTO projetos(ponteiro_empresa, codigo, nome, ponteiro_cliente, inativo) VALUES(?1, ?2, ?3, ?4, ?5)",
          &cmd));
    } else {
      QV_CHECK(m_pBanco->Prepara(
          "UPDATE projetos SET codigo = ?2, nome = ?3, ponteiro_cliente = ?4, inativo = ?5"
          " WHERE ponteiro = ?6 AND ponteiro_empresa = ?1",
          &cmd));
      cmd.Liga(6, I64(lPonteiro));
    }
    cmd.Liga(1, I64(m_lEmpresa))
        .Liga(2, dados.sCodigo)
        .Liga(3, dados.sNome)
        .Liga(4, I64(dados.lPonteiroCliente))
        .Liga(5, I64(dados.bInativo ? 1 : 0));
    QV_CHECK(cmd.Executa());
    if (lPonteiro == 0) return PonteiroInserido(*m_pBanco, &lPonteiro);
    if (m_pBanco->Alteracoes() != 1)
      return Inexistente(QV_LOCAL, "m_pBanco->Alteracoes() != 1", m_lEmpresa, "lPonteiro", std::to_string(lPonteiro));
    return S_OK;
  });
  if (FAILED(hr)) return hr;  // logged where it failed
  dados.lPonteiro = lPonteiro;
  return S_OK;
}
