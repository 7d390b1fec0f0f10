// Searches of service calls and of the agenda's service lines.
//
// A search goes over the months that have a call file, ascending, and over
// every stored call of each month (positions 1 to the last: a saved call
// always shows up), so its pointers come out by month, then position. A
// month is selected in the database and read from its memory: the search
// holds the database's Trava() from the first selection to the last read.
//
// The agenda's filter (_REG_FILTRO_AGENDA_PS) tests a call's services:
//  - lUsuario, the executor (0: any);
//  - cSituacao, the status: 0 pending services, 1 done ones, 2 all (any
//    other value matches no service);
//  - iDataSaida, the departure day (0: any). The field is 16 bits wide and
//    holds the day number itself, which fits it up to 2079-06-04; it is
//    compared, widened, with the service's 32-bit day.
// An agenda line's code (szCodigo) is the month as "MM/AAAA", a dash, and
// the service's code (lCodigo) in at least six digits: "07/2020-000015".
#include <cstdio>
#include <cstring>
#include <set>
#include <vector>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVDatas.h"
#include "df/qvlibex/QVLog.h"
#include "ge/zelkorin/CGeServidorAtendimento.h"
#include "ge/zelkorin/atendimento/CFiltro.h"
#include "ge/zelkorin/atendimento/ZelkorinAtendimentoUtil.h"
#include "platform/QVTaskMem.h"

namespace {

template <class T>
void Zera(T* p) {
  if (p != nullptr) std::memset(static_cast<void*>(p), 0, sizeof *p);
}

HRESULT ListaSemArray(const char* sCampo, std::uint64_t uiQuantidade) {
  QVLogaFalhaHr(QV_LOCAL, "E_INVALIDARG", E_INVALIDARG, {{sCampo, std::to_string(uiQuantidade)}});
  return E_INVALIDARG;
}

// A pointer of a list: a month code that is a month and a position that is
// one (its end is checked once the month is selected).
HRESULT ValidaPonteiro(std::size_t i, std::uint16_t iMA, std::uint32_t lPosicao) {
  int ano = 0, mes = 0;
  if (!QVMesAnoDecompoe(iMA, &ano, &mes)) {
    QVLogaFalhaHr(QV_LOCAL, "E_INVALIDARG", E_INVALIDARG, {{"i", std::to_string(i)}, {"iMA", std::to_string(iMA)}});
    return E_INVALIDARG;
  }
  if (lPosicao == 0) {
    QVLogaFalhaHr(QV_LOCAL, "E_QVCR_TENTATIVA_LER_POSICAO_ZERO", E_QVCR_TENTATIVA_LER_POSICAO_ZERO,
                  {{"i", std::to_string(i)}, {"iMA", std::to_string(iMA)}});
    return E_QVCR_TENTATIVA_LER_POSICAO_ZERO;
  }
  return S_OK;
}

// A position within the current month's file, or one error line.
HRESULT ValidaFim(CQVFileRegistros& arquivo, std::size_t i, std::uint16_t iMA, std::uint32_t lPosicao) {
  const QVUInt uiQtd = arquivo.GetQtdRegistros();
  if (lPosicao <= uiQtd) return S_OK;
  QVLogaFalhaHr(QV_LOCAL, "E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO",
                E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO,
                {{"i", std::to_string(i)},
                 {"iMA", std::to_string(iMA)},
                 {"lPosicao", std::to_string(lPosicao)},
                 {"GetQtdRegistros", std::to_string(uiQtd)},
                 {"m_sNomeArquivo", arquivo.GetNomeArquivo()}});
  return E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO;
}

// A vector handed to the caller in a task-allocator array.
template <class T>
HRESULT Entrega(const std::vector<T>& v, T*& p, std::uint32_t& n) {
  T* pNovo = nullptr;
  QV_CHECK(QVAlocaLista(pNovo, static_cast<std::uint32_t>(v.size())));
  if (!v.empty()) std::memcpy(static_cast<void*>(pNovo), v.data(), v.size() * sizeof(T));
  p = pNovo;
  n = static_cast<std::uint32_t>(v.size());
  return S_OK;
}

// "MM/AAAA-" and the code, zero-padded to six digits.
void CodigoAgenda(char (&szCodigo)[24], std::uint16_t iMA, std::uint32_t lCodigo) {
  int ano = 0, mes = 0;
  QVMesAnoDecompoe(iMA, &ano, &mes);
  char sMes[16];
  std::snprintf(sMes, sizeof sMes, "%02d/%04d", mes, ano);
  std::snprintf(szCodigo, sizeof szCodigo, "%s-%06u", sMes, static_cast<unsigned>(lCodigo));
}

}  // namespace

template <class F>
HRESULT CGeServidorAtendimento::ComBancoDaBusca(CGeServidorAtendimentoDatabase* pGEAtendimentoDB, F&& busca) {
  if (pGEAtendimentoDB != nullptr) {
    std::lock_guard trava(pGEAtendimentoDB->Trava());
    return busca(pGEAtendimentoDB);
  }
  // Read-only: a search never creates, changes or holds a file.
  CGeServidorAtendimentoDatabase dbBusca;
  dbBusca.SetSomenteLeitura(true);
  QV_CHECK(dbBusca.Inicializa(this));
  HRESULT hr;
  {
    std::lock_guard trava(dbBusca.Trava());
    hr = busca(&dbBusca);
  }
  const HRESULT hrFim = QV_LOGA(dbBusca.Finaliza());
  return FAILED(hr) ? hr : hrFim;
}

// ---- wire methods: over the company's database ---------------------------------

HRESULT CGeServidorAtendimento::BuscaPonteiros(const _REG_FILTRO_ATENDIMENTO_PS& RegFiltroPs,
                                               _REG_LISTA_PONTEIROS_PS* RegListaPonteirosPs,
                                               _REG_CLIENTES_ATENDIMENTO_PS* RegClientes) {
  Zera(RegListaPonteirosPs);
  Zera(RegClientes);
  QV_CHECK(ValidaServidor());
  QV_CHECK(BuscaPonteiros(RegFiltroPs, RegListaPonteirosPs, RegClientes, m_pDataBase));
  return S_OK;
}

HRESULT CGeServidorAtendimento::BuscaRegistros(const _REG_LISTA_PONTEIROS_PS& RegPonteirosPs,
                                               _REG_LISTA_REGISTROS_PS* RegRegistrosPs) {
  Zera(RegRegistrosPs);
  QV_CHECK(ValidaServidor());
  QV_CHECK(BuscaRegistros(RegPonteirosPs, RegRegistrosPs, m_pDataBase));
  return S_OK;
}

HRESULT CGeServidorAtendimento::BuscaPonteirosAgenda(const _REG_FILTRO_AGENDA_PS& RegFiltroPs,
                                                     _REG_LISTA_PONTEIROS_AGENDA* RegListaPonteirosPs) {
  Zera(RegListaPonteirosPs);
  QV_CHECK(ValidaServidor());
  QV_CHECK(BuscaPonteirosAgenda(RegFiltroPs, RegListaPonteirosPs, m_pDataBase));
  return S_OK;
}

HRESULT CGeServidorAtendimento::BuscaRegistrosAgenda(const _REG_LISTA_PONTEIROS_AGENDA& RegPonteiros,
                                                     _REG_LISTA_SERVICOS_AGENDA_PS* RegListaServicosPs) {
  Zera(RegListaServicosPs);
  QV_CHECK(ValidaServidor());
  QV_CHECK(BuscaRegistrosAgenda(RegPonteiros, RegListaServicosPs, m_pDataBase));
  return S_OK;
}

// ---- calls ------------------------------------------------------------------------

HRESULT CGeServidorAtendimento::MesesDaBusca(const _REG_FILTRO_ATENDIMENTO_PS& RegFiltroPs,
                                             std::vector<std::uint16_t>* pMeses,
                                             CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  std::vector<std::uint16_t> existentes;
  std::uint32_t iInicial = 0, iFinal = 0;
  if (RegFiltroPs.iDataTreeInicial != 0 && RegFiltroPs.iDataTreeFinal != 0) {
    // A day that is no date has no month: the range then holds none.
    iInicial = QVMesAnoDoDia(RegFiltroPs.iDataTreeInicial);
    iFinal = QVMesAnoDoDia(RegFiltroPs.iDataTreeFinal);
    if (iInicial == 0 || iFinal == 0) iInicial = 1, iFinal = 0;
  } else {
    REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1 regPropriedades;
    QV_CHECK(pGEAtendimentoDB->m_AtendimentoTecnicoPropriedades.Le(&regPropriedades));
    if (!RegFiltroPs.cIgnorarDatasEmissao) {
      iInicial = regPropriedades.iEmissaoInicial;
      iFinal = regPropriedades.iEmissaoFinal;
    }
  }
  QV_CHECK(pGEAtendimentoDB->GetMesesAtendimento(&existentes));
  pMeses->clear();
  for (const std::uint16_t iMA : existentes)
    if ((iInicial == 0 || iMA >= iInicial) && (iFinal == 0 || iMA <= iFinal)) pMeses->push_back(iMA);
  return S_OK;
}

HRESULT CGeServidorAtendimento::BuscaPonteiros(const _REG_FILTRO_ATENDIMENTO_PS& RegFiltroPs,
                                               _REG_LISTA_PONTEIROS_PS* RegListaPonteirosPs,
                                               _REG_CLIENTES_ATENDIMENTO_PS* RegClientes,
                                               CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  Zera(RegListaPonteirosPs);
  Zera(RegClientes);
  if (RegListaPonteirosPs == nullptr || RegClientes == nullptr) QV_RETURN(E_POINTER);
  if (RegFiltroPs.iQtdeMA > 0 && RegFiltroPs.arrMA == nullptr) return ListaSemArray("iQtdeMA", RegFiltroPs.iQtdeMA);
  if (RegFiltroPs.iQtdePos > 0 && RegFiltroPs.arrlPos == nullptr)
    return ListaSemArray("iQtdePos", RegFiltroPs.iQtdePos);

  std::vector<_REG_PONTEIRO_ATENDIMENTO_PS> ponteiros;
  std::set<std::uint32_t> clientes;
  auto busca = [&](CGeServidorAtendimentoDatabase* pDB) -> HRESULT {
    CFiltro filtro(RegFiltroPs);
    QV_CHECK(filtro.Inicializa(this));
    std::vector<std::uint16_t> meses;
    QV_CHECK(MesesDaBusca(RegFiltroPs, &meses, pDB));
    for (const std::uint16_t iMA : meses) {
      QV_CHECK(pDB->SelecionaMes(iMA));
      // No file (gone since the listing): no call.
      const QVUInt uiQtd = pDB->m_ArqAtendimento.GetQtdRegistros();
      for (QVUInt lPosicao = 1; lPosicao <= uiQtd; ++lPosicao) {
        REG_ATENDIMENTO_V2 reg;
        QV_CHECK(pDB->m_ArqAtendimento.Le(lPosicao, &reg));
        if (!filtro.Filtra(reg, iMA, static_cast<std::uint32_t>(lPosicao), pDB)) continue;
        _REG_PONTEIRO_ATENDIMENTO_PS ponteiro{};
        ponteiro.iMA = iMA;
        ponteiro.lPonteiroAtendimento = static_cast<std::uint32_t>(lPosicao);
        ponteiros.push_back(ponteiro);
        clientes.insert(static_cast<std::uint32_t>(reg.lPonteiroCliente));  // packed: a copy
      }
    }
    return S_OK;
  };
  QV_CHECK(ComBancoDaBusca(pGEAtendimentoDB, busca));
  const std::vector<std::uint32_t> listaClientes(clientes.begin(), clientes.end());
  _REG_LISTA_PONTEIROS_PS lista{};
  QV_CHECK(Entrega(ponteiros, lista.pPonteiro, lista.iQuantidadePonteiros));
  _REG_CLIENTES_ATENDIMENTO_PS regClientes{};
  const HRESULT hr = QV_LOGA(Entrega(listaClientes, regClientes.pClientes, regClientes.iQuantidadeClientes));
  if (FAILED(hr)) {
    CoTaskMemFree(lista.pPonteiro);
    return hr;
  }
  *RegListaPonteirosPs = lista;
  *RegClientes = regClientes;
  return S_OK;
}

HRESULT CGeServidorAtendimento::BuscaRegistros(const _REG_LISTA_PONTEIROS_PS& RegPonteirosPs,
                                               _REG_LISTA_REGISTROS_PS* RegRegistrosPs,
                                               CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  Zera(RegRegistrosPs);
  if (RegRegistrosPs == nullptr) QV_RETURN(E_POINTER);
  const std::uint32_t n = RegPonteirosPs.iQuantidadePonteiros;
  const _REG_PONTEIRO_ATENDIMENTO_PS* pPonteiros = RegPonteirosPs.pPonteiro;
  if (n != 0 && pPonteiros == nullptr) return ListaSemArray("iQuantidadePonteiros", n);
  for (std::uint32_t i = 0; i < n; ++i) QV_CHECK(ValidaPonteiro(i, pPonteiros[i].iMA, pPonteiros[i].lPonteiroAtendimento));

  _REG_ATENDIMENTO_PS* pRegistros = nullptr;
  QV_CHECK(QVAlocaLista(pRegistros, n));
  auto leitura = [&](CGeServidorAtendimentoDatabase* pDB) -> HRESULT {
    for (std::uint32_t i = 0; i < n; ++i) {
      const _REG_PONTEIRO_ATENDIMENTO_PS& ponteiro = pPonteiros[i];
      // Pointers of one month in a row cost one selection.
      if (pDB->GetMa().iMA != ponteiro.iMA) QV_CHECK(pDB->SelecionaMes(ponteiro.iMA));
      QV_CHECK(ValidaFim(pDB->m_ArqAtendimento, i, ponteiro.iMA, ponteiro.lPonteiroAtendimento));
      QV_CHECK(LeAtendimentoArquivo(ponteiro.lPonteiroAtendimento, pRegistros[i], true, pDB));
    }
    return S_OK;
  };
  const HRESULT hr = ComBancoDaBusca(pGEAtendimentoDB, leitura);
  if (FAILED(hr)) {
    // What was read so far is not handed out (the failure's line is
    // written where it happened).
    for (std::uint32_t i = 0; i < n; ++i) QVLibera(&pRegistros[i]);
    CoTaskMemFree(pRegistros);
    return hr;
  }
  RegRegistrosPs->iQuantidadeRegistros = n;
  RegRegistrosPs->pRegistros = pRegistros;
  return S_OK;
}

// ---- agenda -----------------------------------------------------------------------

HRESULT CGeServidorAtendimento::BuscaPonteirosAgenda(const _REG_FILTRO_AGENDA_PS& RegFiltroPs,
                                                     _REG_LISTA_PONTEIROS_AGENDA* RegListaPonteirosPs,
                                                     CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  Zera(RegListaPonteirosPs);
  if (RegListaPonteirosPs == nullptr) QV_RETURN(E_POINTER);
  std::vector<_REG_PONTEIRO_AGENDA> ponteiros;
  auto busca = [&](CGeServidorAtendimentoDatabase* pDB) -> HRESULT {
    std::vector<std::uint16_t> meses;
    QV_CHECK(pDB->GetMesesAtendimento(&meses));
    for (const std::uint16_t iMA : meses) {
      QV_CHECK(pDB->SelecionaMes(iMA));
      const QVUInt uiQtd = pDB->m_ArqAtendimento.GetQtdRegistros();
      for (QVUInt lPosicao = 1; lPosicao <= uiQtd; ++lPosicao) {
        REG_ATENDIMENTO_V2 reg;
        QV_CHECK(pDB->m_ArqAtendimento.Le(lPosicao, &reg));
        // A call's services are consecutive; a run outside the file (no
        // service file counts as empty) is a damaged call.
        QV_CHECK(QVValidaLista(pDB->m_ArqServico, reg.lPonteiroServicoAtend, reg.iQuantidadeServicoAtend));
        for (std::uint32_t i = 0; i < reg.iQuantidadeServicoAtend; ++i) {
          const std::uint32_t lPonteiroServ = reg.lPonteiroServicoAtend + i;
          REG_SERVICO_ATENDIMENTO_V3 servico;
          QV_CHECK(pDB->m_ArqServico.Le(lPonteiroServ, &servico));
          if (RegFiltroPs.lUsuario != 0 && RegFiltroPs.lUsuario != servico.lPonteiroExecutor) continue;
          if (RegFiltroPs.cSituacao != 2 && RegFiltroPs.cSituacao != servico.cSituacao) continue;
          if (RegFiltroPs.iDataSaida != 0 && RegFiltroPs.iDataSaida != servico.iDataSaida) continue;
          _REG_PONTEIRO_AGENDA ponteiro{};
          ponteiro.iMA = iMA;
          ponteiro.lPonteiroAtTec = static_cast<std::uint32_t>(lPosicao);
          ponteiro.lPonteiroServ = lPonteiroServ;
          ponteiros.push_back(ponteiro);
        }
      }
    }
    return S_OK;
  };
  QV_CHECK(ComBancoDaBusca(pGEAtendimentoDB, busca));
  _REG_LISTA_PONTEIROS_AGENDA lista{};
  QV_CHECK(Entrega(ponteiros, lista.pPonteiros, lista.lQuantidade));
  *RegListaPonteirosPs = lista;
  return S_OK;
}

HRESULT CGeServidorAtendimento::BuscaRegistrosAgenda(const _REG_LISTA_PONTEIROS_AGENDA& RegPonteiros,
                                                     _REG_LISTA_SERVICOS_AGENDA_PS* RegListaServicosPs,
                                                     CGeServidorAtendimentoDatabase* pGEAtendimentoDB) {
  Zera(RegListaServicosPs);
  if (RegListaServicosPs == nullptr) QV_RETURN(E_POINTER);
  const std::uint32_t n = RegPonteiros.lQuantidade;
  const _REG_PONTEIRO_AGENDA* pPonteiros = RegPonteiros.pPonteiros;
  if (n != 0 && pPonteiros == nullptr) return ListaSemArray("lQuantidade", n);
  for (std::uint32_t i = 0; i < n; ++i) {
    QV_CHECK(ValidaPonteiro(i, pPonteiros[i].iMA, pPonteiros[i].lPonteiroAtTec));
    QV_CHECK(ValidaPonteiro(i, pPonteiros[i].iMA, pPonteiros[i].lPonteiroServ));
  }

  std::vector<_REG_SERVICO_AGENDA_PS> servicos(n);
  auto busca = [&](CGeServidorAtendimentoDatabase* pDB) -> HRESULT {
    for (std::uint32_t i = 0; i < n; ++i) {
      const _REG_PONTEIRO_AGENDA& ponteiro = pPonteiros[i];
      if (pDB->GetMa().iMA != ponteiro.iMA) QV_CHECK(pDB->SelecionaMes(ponteiro.iMA));
      QV_CHECK(ValidaFim(pDB->m_ArqAtendimento, i, ponteiro.iMA, ponteiro.lPonteiroAtTec));
      QV_CHECK(ValidaFim(pDB->m_ArqServico, i, ponteiro.iMA, ponteiro.lPonteiroServ));
      REG_ATENDIMENTO_V2 reg;
      QV_CHECK(pDB->m_ArqAtendimento.Le(ponteiro.lPonteiroAtTec, &reg));
      REG_SERVICO_ATENDIMENTO_V3 servico;
      QV_CHECK(pDB->m_ArqServico.Le(ponteiro.lPonteiroServ, &servico));
      _REG_SERVICO_AGENDA_PS& linha = servicos[i];
      linha.lPonteiroCliente = reg.lPonteiroCliente;
      linha.lPonteiroServico = servico.lPonteiroServico;
      linha.lPonteiroExecutor = servico.lPonteiroExecutor;
      linha.lPonteiroAtendTec = ponteiro.lPonteiroAtTec;
      linha.iDataSaida = servico.iDataSaida;
      CodigoAgenda(linha.szCodigo, ponteiro.iMA, servico.lCodigo);
    }
    return S_OK;
  };
  QV_CHECK(ComBancoDaBusca(pGEAtendimentoDB, busca));
  _REG_LISTA_SERVICOS_AGENDA_PS lista{};
  QV_CHECK(Entrega(servicos, lista.pServicos, lista.lQuantidade));
  *RegListaServicosPs = lista;
  return S_OK;
}
