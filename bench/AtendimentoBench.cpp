// The service-call store at the size of a large company: 1,000,000 calls
// over 120 months (January 2015 to December 2024, about 8,334 a month) with
// 1 to 5 services each (3,000,000 in all). Each figure has its baselines
// (BenchMain.cpp prints the ratios):
//  - BM_ChamadosBusca: a search of the ten-field filter below over every
//    month, the company open and a first search done / BM_ChamadosBuscaMemoria,
//    the same tests on the month files' records already in memory (the
//    limit) / BM_ChamadosBuscaSqlite, the same ten predicates over a SQLite
//    copy of the fields (rowid the only index);
//  - BM_ChamadosGrava: the save of a new call with 3 services, 6 sessions
//    and 4 classifications in December 2024 of that company /
//    BM_ChamadosGravaAnexo, one append of the same stored bytes with its
//    fdatasync / BM_ChamadosGravaSqlite, the same rows in one SQLite WAL
//    transaction (synchronous FULL);
//  - BM_ChamadosNumero: whether a number is free, from the process's index
//    of numbers (warm), for a free number (/0) and a taken one (/1) /
//    BM_ChamadosNumeroLeitura, the rule read literally: every month's call
//    file opened read-only and its numbers collected;
//  - BM_ChamadosAbertura: a server object opened on the company and one
//    search over every month, with the company's files out of the page
//    cache (/0) or in it (/1), in bytes of the company's files per second /
//    BM_ChamadosAberturaLeitura, the same files read sequentially.
// Everything is timed on the wall clock.
//
// The company is made once, under $ZELKORIN_BENCH_DIR/atendimento (default
// /var/tmp/zelkorin-bench/atendimento, about 1.7 GB), by writing each
// month's records straight into its files in two bulk writes (one save per
// call would take hours), and kept: the file "gerado.versao" holds the
// generator's version and the company is made again only when it is missing
// or older. The SQLite copy (busca.db) is made from the month files the
// first time it is needed and kept with them. The saves of BM_ChamadosGrava
// stay in the company (a few hundred calls a run, outside every range the
// search asks for).
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "bench/BenchComum.h"
#include "core/qvdatabase/QVFileNameFormat.h"
#include "core/qvdatabase/QVFormatoCabecalho.h"
#include "df/qvlibex/QVDatas.h"
#include "df/qvlibex/QVLog.h"
#include "ge/zelkorin/CGeServidorAtendimento.h"
#include "ge/zelkorin/atendimento/ZelkorinAtendimentoUtil.h"
#include "ge/zelkorin/atendimento/ZelkorinConversaoRegistros.h"
#include "platform/QVOsFile.h"
#include "platform/QVTaskMem.h"
#include "suite/store/CQVBancoSuite.h"

namespace {

constexpr const char* kEmpresa = "BENCH ATENDIMENTO";
constexpr std::uint32_t kUsuario = 1;
// Bumped whenever the generated data changes: the kept company is then made again.
constexpr const char* kVersaoGerador = "1";
constexpr int kMeses = 120;
constexpr std::uint32_t kChamados = 1000000;
constexpr std::uint32_t kFiliais = 5, kClientes = 2000, kServicos = 50, kExecutores = 20;
constexpr const char* kRaizChamados = "GEATTEC2";
constexpr const char* kRaizServicos = "GEATSRVV3";

std::string Raiz() {
  const char* env = std::getenv("ZELKORIN_BENCH_DIR");
  std::string d = env != nullptr && *env != '\0' ? env : "/var/tmp/zelkorin-bench";
  return d + "/atendimento";
}

std::uint16_t MesDoIndice(int i) { return QVMesAno(2015 + i / 12, i % 12 + 1); }

_REG_DF_INICIALIZAPS Inicializacao() { return QVBenchInicializacao("AtendimentoBench.cpp", kEmpresa); }

// ---- plain files (the platform's file objects) ------------------------------------

HRESULT ErroDe(const IQVOsFile& f) { return HRESULT_FROM_WIN32(f.LastError()); }

HRESULT LeExato(IQVOsFile& f, void* p, std::size_t n) {
  for (std::size_t lido = 0; lido < n;) {
    std::size_t k = 0;
    if (!f.Read(static_cast<unsigned char*>(p) + lido, n - lido, &k)) return ErroDe(f);
    if (k == 0) return HRESULT_FROM_WIN32(ERROR_HANDLE_EOF);
    lido += k;
  }
  return S_OK;
}

// The records of a record file read whole with plain reads, after its
// 240-byte block when it has one (the record sizes read here leave no doubt:
// 240 is no multiple of them). No file: no record.
template <class T>
HRESULT LeRegistrosCrus(const std::string& sCaminho, std::vector<T>* pRegistros) {
  static_assert(sizeof(T) > kQVTamanhoBlocoCabecalho);
  pRegistros->clear();
  const std::unique_ptr<IQVOsFile> f = QVCreateOsFile();
  if (!f->Open(sCaminho, QVFILE_MODE_READ | QVFILE_SHARE_DENY_NONE))
    return f->LastError() == ERROR_FILE_NOT_FOUND ? S_OK : ErroDe(*f);
  std::uint64_t uiTamanho = 0;
  if (!f->GetLength(&uiTamanho)) return ErroDe(*f);
  const std::uint64_t uiInicio = uiTamanho % sizeof(T) == kQVTamanhoBlocoCabecalho ? kQVTamanhoBlocoCabecalho : 0;
  if ((uiTamanho - uiInicio) % sizeof(T) != 0) return HRESULT_FROM_WIN32(ERROR_INVALID_DATA);
  pRegistros->resize(static_cast<std::size_t>((uiTamanho - uiInicio) / sizeof(T)));
  if (!f->Seek(uiInicio)) return ErroDe(*f);
  return LeExato(*f, pRegistros->data(), pRegistros->size() * sizeof(T));
}

// Every file of a directory read sequentially, 1 MB at a time; the bytes read.
HRESULT LeDiretorio(const std::vector<std::string>& caminhos, std::uint64_t* puiBytes) {
  *puiBytes = 0;
  std::vector<unsigned char> bloco(std::size_t{1} << 20);
  for (const std::string& sCaminho : caminhos) {
    const std::unique_ptr<IQVOsFile> f = QVCreateOsFile();
    if (!f->Open(sCaminho, QVFILE_MODE_READ | QVFILE_SHARE_DENY_NONE)) return ErroDe(*f);
    for (std::size_t k = 1; k != 0; *puiBytes += k)
      if (!f->Read(bloco.data(), bloco.size(), &k)) return ErroDe(*f);
  }
  return S_OK;
}

HRESULT LeTexto(const std::string& sCaminho, std::string* pTexto) {
  pTexto->clear();
  const std::unique_ptr<IQVOsFile> f = QVCreateOsFile();
  if (!f->Open(sCaminho, QVFILE_MODE_READ | QVFILE_SHARE_DENY_NONE)) return ErroDe(*f);
  char buffer[64];
  std::size_t k = 0;
  if (!f->Read(buffer, sizeof buffer, &k)) return ErroDe(*f);
  pTexto->assign(buffer, k);
  return S_OK;
}

HRESULT GravaTexto(const std::string& sCaminho, const std::string& sTexto) {
  const std::unique_ptr<IQVOsFile> f = QVCreateOsFile();
  if (!f->Open(sCaminho, QVFILE_MODE_READWRITE | QVFILE_SHARE_DENY_NONE | QVFILE_MODE_CREATE) ||
      !f->Write(sTexto.data(), sTexto.size()) || !f->Flush())
    return ErroDe(*f);
  return S_OK;
}

// ---- the generated company ---------------------------------------------------------

// The company, its user and the five branches, all of them the user's.
HRESULT CadastraEmpresa() {
  std::shared_ptr<CQVBancoSuite> pBanco;
  QV_CHECK(QVBancoSuite(&pBanco));
  CQVBancoSuite& banco = *pBanco;
  return banco.Transacao([&]() -> HRESULT {
    CQVComandoSuite cmd;
    QV_CHECK(banco.Prepara("INSERT OR IGNORE INTO empresas(nome, razao_social) VALUES(?1, ?1)", &cmd));
    QV_CHECK(cmd.Liga(1, kEmpresa).Executa());
    CQVComandoSuite le;
    QV_CHECK(banco.Prepara("SELECT ponteiro FROM empresas WHERE nome = ?1", &le));
    bool bLinha = false;
    QV_CHECK(le.Liga(1, kEmpresa).Passo(&bLinha));
    if (!bLinha) QV_RETURN(E_UNEXPECTED);
    const std::int64_t lEmpresa = le.Inteiro(0);
    CQVComandoSuite usuario, acesso;
    QV_CHECK(banco.Prepara("INSERT OR IGNORE INTO usuarios(ponteiro, login, nome) VALUES(?1, 'bench', 'Bench')",
                           &usuario));
    QV_CHECK(usuario.Liga(1, std::int64_t{kUsuario}).Executa());
    QV_CHECK(banco.Prepara("INSERT OR IGNORE INTO usuarios_empresas VALUES(?1, ?2)", &acesso));
    QV_CHECK(acesso.Liga(1, std::int64_t{kUsuario}).Liga(2, lEmpresa).Executa());
    for (std::int64_t f = 1; f <= kFiliais; ++f) {
      // A command is borrowed for one use: its end resets the statement,
      // and a statement not reset keeps its old values.
      CQVComandoSuite filial, filialUsuario;
      QV_CHECK(banco.Prepara(
          "INSERT OR IGNORE INTO filiais(ponteiro, ponteiro_empresa, nome) VALUES(?1, ?2, 'Filial')", &filial));
      QV_CHECK(filial.Liga(1, f).Liga(2, lEmpresa).Executa());
      QV_CHECK(banco.Prepara("INSERT OR IGNORE INTO filiais_usuarios VALUES(?1, ?2)", &filialUsuario));
      QV_CHECK(filialUsuario.Liga(1, std::int64_t{kUsuario}).Liga(2, f).Executa());
    }
    return S_OK;
  });
}

// The calls of month i (numbers from lNumero on) and their services. A
// call's services are consecutive; lPonteiroServicoAtend holds the offset of
// the first one in the month (0-based) until the services' file position is
// known. The same month always comes out the same.
struct CMesGerado {
  std::vector<REG_ATENDIMENTO_V2> chamados;
  std::vector<REG_SERVICO_ATENDIMENTO_V3> servicos;
};

void GeraMes(int i, std::uint32_t lNumero, std::uint32_t n, CMesGerado* pMes) {
  std::mt19937 gerador(static_cast<std::uint32_t>(1000 + i));
  auto u = [&](std::uint32_t a, std::uint32_t b) { return a + gerador() % (b - a + 1); };
  auto chance = [&](std::uint32_t iPorCento) { return gerador() % 100 < iPorCento; };
  const std::uint16_t iMA = MesDoIndice(i);
  const std::uint32_t iPrimeiroDia = QVPrimeiroDiaDoMes(iMA), iUltimoDia = QVUltimoDiaDoMes(iMA);
  pMes->chamados.assign(n, REG_ATENDIMENTO_V2{});
  pMes->servicos.clear();
  for (std::uint32_t k = 0; k < n; ++k) {
    REG_ATENDIMENTO_V2& a = pMes->chamados[k];
    a.lPonteiroCliente = u(1, kClientes);
    a.lPonteiroExecutor = u(1, kExecutores);
    a.lNumeroAtendimento = lNumero + k;
    a.lPonteiroFilial = u(1, kFiliais);
    const int iHora = static_cast<int>(u(7, 16));
    a.iHoraInicialAgendamento = QVHoraMinuto(iHora, 0);
    a.iHoraFinalAgendamento = QVHoraMinuto(iHora + static_cast<int>(u(1, 3)), 0);
    std::snprintf(a.cContato, sizeof a.cContato, "Contato %u", static_cast<unsigned>(a.lPonteiroCliente));
    std::snprintf(a.szEmailExecutor, sizeof a.szEmailExecutor, "tecnico%u@bench.com.br",
                  static_cast<unsigned>(a.lPonteiroExecutor));
    const std::uint32_t iEmissao = u(iPrimeiroDia, iUltimoDia);
    a.iDataEmissao = iEmissao;
    a.iDataVencimento = iEmissao + 30;
    a.iDataAgendamento = iEmissao + u(0, 5);
    const bool bConcluido = chance(85);
    if (bConcluido) a.iDataConclusao = iEmissao + u(0, 10);
    if (bConcluido && chance(80)) {
      a.bFaturado = 1;
      a.iDataFaturamento = iEmissao + u(5, 25);
    }
    if (chance(30)) {
      a.lPonteiroContrato = u(1, 300);
      std::snprintf(a.cContrato, sizeof a.cContrato, "CT-%04u", static_cast<unsigned>(a.lPonteiroContrato));
    }
    a.cConferido = chance(60) ? 1 : 0;
    a.bCancelado = chance(5) ? 1 : 0;
    const std::uint32_t iOrigem = u(0, 9);  // 1 in 10 imported, 1 in 10 from the web
    a.cImportacao = iOrigem == 0 ? 1 : 0;
    a.bWeb = iOrigem == 1 ? 1 : 0;
    a.lVersaoRegistro = 1;
    a.lUsuarioUltAlteracao = kUsuario;
    a.iDataUltAlteracao = iEmissao;
    const std::uint32_t nServicos = u(1, 5);
    a.lPonteiroServicoAtend = static_cast<std::uint32_t>(pMes->servicos.size());
    a.iQuantidadeServicoAtend = nServicos;
    for (std::uint32_t s = 0; s < nServicos; ++s) {
      REG_SERVICO_ATENDIMENTO_V3 r{};
      r.lPonteiroServico = u(1, kServicos);
      r.lPonteiroExecutor = chance(70) ? a.lPonteiroExecutor : u(1, kExecutores);
      r.cSituacao = bConcluido || chance(30) ? 1 : 0;
      r.lCodigo = static_cast<std::uint32_t>(pMes->servicos.size() + 1);
      r.vValor = std::int64_t{10000} * u(50, 500);
      r.vTotalHoras = std::int64_t{10000} * u(1, 8);
      r.vValorTotal = r.vValor * (r.vTotalHoras / 10000);
      r.iDataSaida = iEmissao + u(0, 7);
      r.iDataRetorno = r.iDataSaida + u(0, 2);
      if (r.cSituacao == 1) {
        r.iDataConclusao = r.iDataRetorno;
        r.iHoraConclusao = QVHoraMinuto(static_cast<int>(u(8, 18)), 0);
      }
      r.bCobrar = chance(80) ? 1 : 0;
      pMes->servicos.push_back(r);
    }
  }
}

// Writes the company: its settings through a first server object (which
// makes the folder, the layouts' version and the settings), then every
// month in two bulk writes through the company's database, services first.
HRESULT Gera() {
  const std::string sRaiz = Raiz();
  std::error_code ec;
  std::filesystem::remove_all(sRaiz, ec);
  QV_CHECK(QVCreateDirectories(sRaiz));
  QVDefineRaizDados(sRaiz);
  QV_CHECK(CadastraEmpresa());
  {
    CGeServidorAtendimento servidor;
    QV_CHECK(servidor.Inicializa(Inicializacao()));
  }
  CGeServidorAtendimentoDatabase db;
  const CQVProfilerEmpresa identidade(kEmpresa, kUsuario, 1);
  QV_CHECK(db.Inicializa(&identidade));
  std::uint32_t lNumero = 1;
  for (int i = 0; i < kMeses; ++i) {
    // The first months take one call more: 1,000,000 = 120 * 8,333 + 40.
    const std::uint32_t n = kChamados / kMeses + (static_cast<std::uint32_t>(i) < kChamados % kMeses ? 1 : 0);
    CMesGerado mes;
    GeraMes(i, lNumero, n, &mes);
    lNumero += n;
    QV_CHECK(db.SelecionaMes(MesDoIndice(i)));
    QVUInt uiPrimeiro = 0;
    QV_CHECK(db.m_ArqServico.GravaColecao(uiPrimeiro, mes.servicos));
    for (REG_ATENDIMENTO_V2& a : mes.chamados)
      a.lPonteiroServicoAtend = static_cast<std::uint32_t>(a.lPonteiroServicoAtend + uiPrimeiro);
    QVUInt uiPosicao = 0;
    QV_CHECK(db.m_ArqAtendimento.GravaColecao(uiPosicao, mes.chamados));
  }
  REG_PROPRIEDADES_ATENDIMENTO_TECNICO_V1 propriedades;
  QV_CHECK(db.m_AtendimentoTecnicoPropriedades.Le(&propriedades));
  propriedades.lProximoNumero = lNumero;
  QV_CHECK(db.m_AtendimentoTecnicoPropriedades.Grava(propriedades));
  QV_CHECK(db.Finaliza());
  QV_CHECK(GravaTexto(sRaiz + "/gerado.versao", kVersaoGerador));
  return S_OK;
}

struct CEmpresa {
  HRESULT hr = E_UNEXPECTED;
  std::string sDiretorio;  // the company's data directory
  std::vector<std::uint16_t> meses;
};

// The company, made at the first call of the process when it is not on
// disk. Every call points the data root at it (another benchmark may have
// moved it).
const CEmpresa& Empresa() {
  static const CEmpresa empresa = [] {
    CEmpresa e;
    std::string sVersao;
    if (FAILED(LeTexto(Raiz() + "/gerado.versao", &sVersao)) || sVersao != kVersaoGerador) {
      const auto inicio = std::chrono::steady_clock::now();
      e.hr = Gera();
      if (FAILED(e.hr)) return e;
      std::fprintf(stderr, "Empresa de %u atendimentos gerada em %.1f s em %s\n", kChamados,
                   std::chrono::duration<double>(std::chrono::steady_clock::now() - inicio).count(), Raiz().c_str());
    }
    QVDefineRaizDados(Raiz());
    e.hr = QVSessaoSuite().GetDiretorioDadosModulo(QV_GE, kEmpresa, &e.sDiretorio);
    if (SUCCEEDED(e.hr) && e.sDiretorio.empty()) e.hr = E_QVDF_EMPRESA_SEM_DIRETORIO_DADOS;
    for (int i = 0; i < kMeses; ++i) e.meses.push_back(MesDoIndice(i));
    return e;
  }();
  QVDefineRaizDados(Raiz());
  return empresa;
}

bool EmpresaFalhou(benchmark::State& state) { return QVFalhouBench(state, "Empresa().hr", Empresa().hr); }

std::string CaminhoMensal(const char* sRaizArquivo, std::uint16_t iMA) {
  return Empresa().sDiretorio + "/" + CQVFileNameFormatMa<10>::Nome(sRaizArquivo, iMA);
}

// Every file of the company's data directory.
std::vector<std::string> ArquivosDaEmpresa(std::uint64_t* puiBytes) {
  std::vector<std::string> caminhos;
  *puiBytes = 0;
  for (const auto& entrada : std::filesystem::directory_iterator(Empresa().sDiretorio)) {
    if (!entrada.is_regular_file()) continue;
    caminhos.push_back(entrada.path().string());
    *puiBytes += entrada.file_size();
  }
  return caminhos;
}

// ---- the ten-field filter ------------------------------------------------------------

// On the call: branch, emission range, billing range, reviewed, not
// cancelled, entered by hand (neither imported nor from the web); on one of
// its services: service, executor, done, departure range. It keeps about
// one call in 7,000 (137 of the generated million), after reading the
// services of about one call in 20.
struct CCriterios {
  std::uint32_t lFilial = 3;
  std::uint32_t iEmissaoDe = QVDia(2016, 1, 1), iEmissaoAte = QVDia(2023, 12, 31);
  std::uint32_t iFaturamentoDe = QVDia(2016, 3, 1), iFaturamentoAte = QVDia(2024, 3, 31);
  std::uint32_t lServico = 7, lExecutor = 4;
  std::uint32_t iSaidaDe = QVDia(2016, 1, 1), iSaidaAte = QVDia(2024, 12, 31);
};

_REG_FILTRO_ATENDIMENTO_PS FiltroDezCampos() {
  const CCriterios c;
  _REG_FILTRO_ATENDIMENTO_PS f{};
  f.cIgnorarDatasEmissao = 1;  // every month, whatever the settings' default range
  f.lPonteiroFilial = c.lFilial;
  f.iPeriodoInicio = c.iEmissaoDe, f.iPeriodoFim = c.iEmissaoAte;
  f.iDataFaturamentoInicio = c.iFaturamentoDe, f.iDataFaturamentoFim = c.iFaturamentoAte;
  f.cConferido = 1;
  f.bFiltrarAtivoECancelado = 1, f.bAtivo = 1;
  f.bOrigemGerenciador = 1;
  f.lPonteiroServico = c.lServico, f.lPonteiroExecutor = c.lExecutor;
  f.bRealizado = 1;
  f.iDataSaidaInicial = c.iSaidaDe, f.iDataSaidaFinal = c.iSaidaAte;
  return f;
}

bool Entre(std::uint32_t v, std::uint32_t de, std::uint32_t ate) { return de <= v && v <= ate; }

bool ChamadoPassa(const CCriterios& c, const REG_ATENDIMENTO_V2& a) {
  return a.lPonteiroFilial == c.lFilial && Entre(a.iDataEmissao, c.iEmissaoDe, c.iEmissaoAte) &&
         Entre(a.iDataFaturamento, c.iFaturamentoDe, c.iFaturamentoAte) && a.cConferido != 0 && a.bCancelado == 0 &&
         a.cImportacao == 0 && a.bWeb == 0;
}

bool ServicoPassa(const CCriterios& c, const REG_SERVICO_ATENDIMENTO_V3& s) {
  return s.lPonteiroServico == c.lServico && s.lPonteiroExecutor == c.lExecutor && s.cSituacao == 1 &&
         Entre(s.iDataSaida, c.iSaidaDe, c.iSaidaAte);
}

// One search through a server object; how many calls it found.
HRESULT Busca(CGeServidorAtendimento& servidor, const _REG_FILTRO_ATENDIMENTO_PS& filtro, std::uint32_t* pn) {
  _REG_LISTA_PONTEIROS_PS lista{};
  _REG_CLIENTES_ATENDIMENTO_PS clientes{};
  const HRESULT hr = servidor.BuscaPonteiros(filtro, &lista, &clientes);
  *pn = lista.iQuantidadePonteiros;
  CoTaskMemFree(lista.pPonteiro);
  CoTaskMemFree(clientes.pClientes);
  return hr;
}

// ---- SQLite ----------------------------------------------------------------------------

struct CSqlite {
  sqlite3* pDb = nullptr;
  ~CSqlite() { sqlite3_close(pDb); }
  bool Abre(const std::string& sCaminho) {
    return sqlite3_open_v2(sCaminho.c_str(), &pDb, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) == SQLITE_OK;
  }
  bool Executa(const char* sSql) { return sqlite3_exec(pDb, sSql, nullptr, nullptr, nullptr) == SQLITE_OK; }
};

struct CComando {
  sqlite3_stmt* pStmt = nullptr;
  ~CComando() { sqlite3_finalize(pStmt); }
  bool Prepara(sqlite3* pDb, const char* sSql) {
    return sqlite3_prepare_v3(pDb, sSql, -1, SQLITE_PREPARE_PERSISTENT, &pStmt, nullptr) == SQLITE_OK;
  }
  // Binds the values from 1 on and runs the statement to its end.
  bool Executa(std::initializer_list<std::int64_t> valores) {
    int i = 0;
    for (const std::int64_t v : valores) sqlite3_bind_int64(pStmt, ++i, v);
    const bool bOk = sqlite3_step(pStmt) == SQLITE_DONE;
    sqlite3_reset(pStmt);
    return bOk;
  }
};

// The search's fields of every call and service; a call's services are
// the rowids from primeiro_servico on, as in the month files.
constexpr const char* kEsquemaBusca = R"sql(
CREATE TABLE chamados (ponteiro INTEGER PRIMARY KEY, ma INTEGER, posicao INTEGER, filial INTEGER, cliente INTEGER,
  emissao INTEGER, faturamento INTEGER, conferido INTEGER, cancelado INTEGER, importacao INTEGER, web INTEGER,
  primeiro_servico INTEGER, qtd_servicos INTEGER);
CREATE TABLE servicos (ponteiro INTEGER PRIMARY KEY, servico INTEGER, executor INTEGER, situacao INTEGER,
  saida INTEGER);
CREATE TABLE meta (versao TEXT);
)sql";

constexpr const char* kConsultaBusca = R"sql(
SELECT ma, posicao, cliente FROM chamados c
WHERE filial = ?1 AND emissao BETWEEN ?2 AND ?3 AND faturamento BETWEEN ?4 AND ?5 AND conferido <> 0
  AND cancelado = 0 AND importacao = 0 AND web = 0
  AND EXISTS (SELECT 1 FROM servicos s WHERE s.ponteiro BETWEEN c.primeiro_servico
              AND c.primeiro_servico + c.qtd_servicos - 1
              AND s.servico = ?6 AND s.executor = ?7 AND s.situacao = 1 AND s.saida BETWEEN ?8 AND ?9)
)sql";

std::string CaminhoBusca() { return Raiz() + "/busca.db"; }

// The SQLite copy of the month files, made when missing or of another version.
HRESULT PreparaSqliteBusca() {
  {
    CSqlite db;
    CComando versao;
    if (db.Abre(CaminhoBusca()) && versao.Prepara(db.pDb, "SELECT versao FROM meta") &&
        sqlite3_step(versao.pStmt) == SQLITE_ROW &&
        std::string(reinterpret_cast<const char*>(sqlite3_column_text(versao.pStmt, 0))) == kVersaoGerador)
      return S_OK;
  }
  const auto inicioCopia = std::chrono::steady_clock::now();
  std::error_code ec;
  std::filesystem::remove(CaminhoBusca(), ec);
  CSqlite db;
  CComando chamado, servico, meta;
  if (!db.Abre(CaminhoBusca()) || !db.Executa(kEsquemaBusca) || !db.Executa("BEGIN") ||
      !chamado.Prepara(db.pDb, "INSERT INTO chamados VALUES(NULL, ?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12)") ||
      !servico.Prepara(db.pDb, "INSERT INTO servicos VALUES(NULL, ?1, ?2, ?3, ?4)") ||
      !meta.Prepara(db.pDb, "INSERT INTO meta VALUES(?1)"))
    QV_RETURN(E_FAIL);
  std::int64_t iServicosAntes = 0;  // rowids of the services of the months before
  for (const std::uint16_t iMA : Empresa().meses) {
    std::vector<REG_ATENDIMENTO_V2> chamados;
    std::vector<REG_SERVICO_ATENDIMENTO_V3> servicos;
    QV_CHECK(LeRegistrosCrus(CaminhoMensal(kRaizChamados, iMA), &chamados));
    QV_CHECK(LeRegistrosCrus(CaminhoMensal(kRaizServicos, iMA), &servicos));
    for (std::size_t p = 0; p < chamados.size(); ++p) {
      const REG_ATENDIMENTO_V2& a = chamados[p];
      if (!chamado.Executa({iMA, static_cast<std::int64_t>(p + 1), a.lPonteiroFilial, a.lPonteiroCliente,
                            a.iDataEmissao, a.iDataFaturamento, a.cConferido, a.bCancelado, a.cImportacao, a.bWeb,
                            iServicosAntes + a.lPonteiroServicoAtend, a.iQuantidadeServicoAtend}))
        QV_RETURN(E_FAIL);
    }
    for (const REG_SERVICO_ATENDIMENTO_V3& s : servicos)
      if (!servico.Executa({s.lPonteiroServico, s.lPonteiroExecutor, s.cSituacao, s.iDataSaida})) QV_RETURN(E_FAIL);
    iServicosAntes += static_cast<std::int64_t>(servicos.size());
  }
  sqlite3_bind_text(meta.pStmt, 1, kVersaoGerador, -1, SQLITE_STATIC);
  if (sqlite3_step(meta.pStmt) != SQLITE_DONE || !db.Executa("COMMIT")) QV_RETURN(E_FAIL);
  std::fprintf(stderr, "Cópia SQLite da busca feita em %.1f s em %s\n",
               std::chrono::duration<double>(std::chrono::steady_clock::now() - inicioCopia).count(),
               CaminhoBusca().c_str());
  return S_OK;
}

// ---- the call that is saved -----------------------------------------------------------

template <class T>
T* Novo(std::size_t n) {
  auto* p = static_cast<T*>(CoTaskMemAlloc(n * sizeof(T)));
  std::memset(static_cast<void*>(p), 0, n * sizeof(T));
  return p;
}

const std::uint16_t kMesGravacao = QVMesAno(2024, 12);

// Three services of two sessions each, four classifications of the call,
// no texts: what is stored is the call's 512 bytes, 3 * 384 of services,
// 6 * 8 of sessions and 4 * 64 of classifications.
void MontaChamado(_REG_ATENDIMENTO_PS& a) {
  const std::uint32_t iDia = QVDia(2024, 12, 15);
  a.lPonteiroFilial = 1, a.lPonteiroCliente = 10, a.lPonteiroExecutor = 2;
  a.iDataEmissao = a.iDataAgendamento = iDia;
  a.iQuantidadeServicoAtend = 3;
  a.pServicos = Novo<_REG_SERVICO_ATENDIMENTO_PS>(3);
  for (std::uint32_t i = 0; i < 3; ++i) {
    _REG_SERVICO_ATENDIMENTO_PS& s = a.pServicos[i];
    s.lPonteiroServico = 10 + i, s.lPonteiroExecutor = 2, s.lCodigo = i + 1;
    s.iDataSaida = iDia + 1, s.vValor = 1500000, s.vTotalHoras = 20000, s.vValorTotal = 3000000;
    s.iQuantidadeSessao = 2;
    s.pSessoes = Novo<_REG_SESSAO_ATENDIMENTO_PS>(2);
    s.pSessoes[0] = {QVHoraMinuto(8, 0), QVHoraMinuto(12, 0), {0, 0}};
    s.pSessoes[1] = {QVHoraMinuto(13, 0), QVHoraMinuto(17, 0), {0, 0}};
  }
  a.lQuantidadeClassificacao = 4;
  a.pClassificacoes = Novo<_REG_CLASSIFICACAO_GE_PS>(4);
  for (std::uint32_t i = 0; i < 4; ++i) {
    a.pClassificacoes[i].lPonteiroClassificacao = 100 + i;
    a.pClassificacoes[i].vValor = 2250000;
    a.pClassificacoes[i].vQuantidade = 10000;
  }
}

// The stored bytes of that call, record by record, as the save converts them.
struct CBytesChamado {
  std::vector<unsigned char> chamado, todos;
  std::vector<std::vector<unsigned char>> servicos, sessoes, classificacoes;
};

template <class T>
std::vector<unsigned char> Bytes(const T& r) {
  const auto* p = reinterpret_cast<const unsigned char*>(&r);
  return {p, p + sizeof r};
}

CBytesChamado BytesDoChamado(const _REG_ATENDIMENTO_PS& a) {
  CBytesChamado b;
  REG_ATENDIMENTO_V2 reg{};
  QVAtendimentoParaArquivo(a, reg);
  b.chamado = Bytes(reg);
  for (std::uint32_t i = 0; i < a.iQuantidadeServicoAtend; ++i) {
    REG_SERVICO_ATENDIMENTO_V3 s{};
    QVServicoParaArquivo(a.pServicos[i], s);
    b.servicos.push_back(Bytes(s));
    for (std::uint32_t k = 0; k < a.pServicos[i].iQuantidadeSessao; ++k) {
      REG_SESSAO_ATENDIMENTO_V1 r{};
      QVSessaoParaArquivo(a.pServicos[i].pSessoes[k], r);
      b.sessoes.push_back(Bytes(r));
    }
  }
  for (std::uint32_t i = 0; i < a.lQuantidadeClassificacao; ++i) {
    REG_CLASSIFICACAO_ATENDIMENTO_V1 r{};
    QVClassificacaoParaArquivo(a.pClassificacoes[i], r);
    b.classificacoes.push_back(Bytes(r));
  }
  for (const auto* lista : {&b.sessoes, &b.servicos, &b.classificacoes})
    for (const auto& r : *lista) b.todos.insert(b.todos.end(), r.begin(), r.end());
  b.todos.insert(b.todos.end(), b.chamado.begin(), b.chamado.end());
  return b;
}

}  // namespace

// ---- (a) a search of ten fields over 1,000,000 calls ------------------------------------

static void BM_ChamadosBusca(benchmark::State& state) {
  if (EmpresaFalhou(state)) return;
  CGeServidorAtendimento servidor;
  if (QVFalhouBench(state, "servidor.Inicializa(Inicializacao())", servidor.Inicializa(Inicializacao()))) return;
  const _REG_FILTRO_ATENDIMENTO_PS filtro = FiltroDezCampos();
  std::uint32_t n = 0;
  if (QVFalhouBench(state, "Busca(servidor, filtro, &n)", Busca(servidor, filtro, &n))) return;  // warm
  for (auto _ : state)
    if (QVFalhouBench(state, "Busca(servidor, filtro, &n)", Busca(servidor, filtro, &n))) break;
  state.counters["encontrados"] = n;
}
BENCHMARK(BM_ChamadosBusca)->UseRealTime()->Iterations(3)->Unit(benchmark::kMillisecond);

// The same records, each month's files read into memory beforehand: the
// tests alone, what no store can beat.
static void BM_ChamadosBuscaMemoria(benchmark::State& state) {
  if (EmpresaFalhou(state)) return;
  struct CMes {
    std::uint16_t iMA;
    std::vector<REG_ATENDIMENTO_V2> chamados;
    std::vector<REG_SERVICO_ATENDIMENTO_V3> servicos;
  };
  std::vector<CMes> meses;
  for (const std::uint16_t iMA : Empresa().meses) {
    CMes& m = meses.emplace_back();
    m.iMA = iMA;
    if (QVFalhouBench(state, "LeRegistrosCrus(chamados)", LeRegistrosCrus(CaminhoMensal(kRaizChamados, iMA), &m.chamados)) ||
        QVFalhouBench(state, "LeRegistrosCrus(servicos)", LeRegistrosCrus(CaminhoMensal(kRaizServicos, iMA), &m.servicos)))
      return;
  }
  const CCriterios c;
  std::size_t n = 0;
  for (auto _ : state) {
    std::vector<_REG_PONTEIRO_ATENDIMENTO_PS> ponteiros;
    std::set<std::uint32_t> clientes;
    for (const CMes& m : meses) {
      for (std::size_t p = 0; p < m.chamados.size(); ++p) {
        const REG_ATENDIMENTO_V2& a = m.chamados[p];
        if (!ChamadoPassa(c, a)) continue;
        bool bServico = false;
        for (std::uint32_t i = 0; i < a.iQuantidadeServicoAtend && !bServico; ++i) {
          const std::size_t s = std::size_t{a.lPonteiroServicoAtend} - 1 + i;
          bServico = s < m.servicos.size() && ServicoPassa(c, m.servicos[s]);
        }
        if (!bServico) continue;
        _REG_PONTEIRO_ATENDIMENTO_PS ponteiro{};
        ponteiro.iMA = m.iMA;
        ponteiro.lPonteiroAtendimento = static_cast<std::uint32_t>(p + 1);
        ponteiros.push_back(ponteiro);
        clientes.insert(static_cast<std::uint32_t>(a.lPonteiroCliente));
      }
    }
    n = ponteiros.size();
    benchmark::DoNotOptimize(clientes.size());
  }
  state.counters["encontrados"] = static_cast<double>(n);
}
BENCHMARK(BM_ChamadosBuscaMemoria)->UseRealTime()->Unit(benchmark::kMillisecond);

static void BM_ChamadosBuscaSqlite(benchmark::State& state) {
  if (EmpresaFalhou(state) || QVFalhouBench(state, "PreparaSqliteBusca()", PreparaSqliteBusca())) return;
  CSqlite db;
  CComando busca;
  if (!db.Abre(CaminhoBusca()) || !busca.Prepara(db.pDb, kConsultaBusca)) {
    state.SkipWithError(sqlite3_errmsg(db.pDb));
    return;
  }
  const CCriterios c;
  int i = 0;
  for (const std::int64_t v : {c.lFilial, c.iEmissaoDe, c.iEmissaoAte, c.iFaturamentoDe, c.iFaturamentoAte, c.lServico,
                               c.lExecutor, c.iSaidaDe, c.iSaidaAte})
    sqlite3_bind_int64(busca.pStmt, ++i, v);
  std::size_t n = 0;
  for (auto _ : state) {
    std::vector<_REG_PONTEIRO_ATENDIMENTO_PS> ponteiros;
    std::set<std::uint32_t> clientes;
    int rc;
    while ((rc = sqlite3_step(busca.pStmt)) == SQLITE_ROW) {
      _REG_PONTEIRO_ATENDIMENTO_PS ponteiro{};
      ponteiro.iMA = static_cast<std::uint16_t>(sqlite3_column_int64(busca.pStmt, 0));
      ponteiro.lPonteiroAtendimento = static_cast<std::uint32_t>(sqlite3_column_int64(busca.pStmt, 1));
      ponteiros.push_back(ponteiro);
      clientes.insert(static_cast<std::uint32_t>(sqlite3_column_int64(busca.pStmt, 2)));
    }
    sqlite3_reset(busca.pStmt);
    if (rc != SQLITE_DONE) {
      state.SkipWithError(sqlite3_errmsg(db.pDb));
      break;
    }
    n = ponteiros.size();
  }
  state.counters["encontrados"] = static_cast<double>(n);
}
BENCHMARK(BM_ChamadosBuscaSqlite)->UseRealTime()->Iterations(5)->Unit(benchmark::kMillisecond);

// ---- (b) saving one call -----------------------------------------------------------------

// Each save is a new call of December 2024 with the next suggested number,
// as a client saves one; a first save outside the timing selects the month.
static void BM_ChamadosGrava(benchmark::State& state) {
  if (EmpresaFalhou(state)) return;
  CGeServidorAtendimento servidor;
  if (QVFalhouBench(state, "servidor.Inicializa(Inicializacao())", servidor.Inicializa(Inicializacao()))) return;
  CQVRegistroPs<_REG_PROPRIEDADES_ATENDIMENTO_PS> propriedades;
  if (QVFalhouBench(state, "servidor.LePropriedades(&propriedades.reg, 0)",
                    servidor.LePropriedades(&propriedades.reg, 0)))
    return;
  CQVRegistroPs<_REG_ATENDIMENTO_PS> chamado;
  MontaChamado(chamado.reg);
  std::uint32_t lNumero = propriedades.reg.lProximoNumero;
  std::uint32_t lPosicao = 0;
  chamado.reg.lNumeroAtendimento = lNumero++;
  if (QVFalhouBench(state, "servidor.GravaAtendimento(kMesGravacao, 0, chamado.reg, &lPosicao)",
                    servidor.GravaAtendimento(kMesGravacao, 0, chamado.reg, &lPosicao)))
    return;
  for (auto _ : state) {
    chamado.reg.lNumeroAtendimento = lNumero++;
    if (QVFalhouBench(state, "servidor.GravaAtendimento(kMesGravacao, 0, chamado.reg, &lPosicao)",
                      servidor.GravaAtendimento(kMesGravacao, 0, chamado.reg, &lPosicao)))
      break;
  }
}
BENCHMARK(BM_ChamadosGrava)->UseRealTime()->Iterations(200)->Unit(benchmark::kMicrosecond);

// The same 1968 bytes appended to a plain file and flushed, in one write.
static void BM_ChamadosGravaAnexo(benchmark::State& state) {
  if (EmpresaFalhou(state)) return;
  CQVRegistroPs<_REG_ATENDIMENTO_PS> chamado;
  MontaChamado(chamado.reg);
  const std::vector<unsigned char> bytes = BytesDoChamado(chamado.reg).todos;
  const std::string sCaminho = Raiz() + "/anexo.raw";
  const std::unique_ptr<IQVOsFile> f = QVCreateOsFile();
  if (!f->Open(sCaminho, QVFILE_MODE_READWRITE | QVFILE_SHARE_DENY_WRITE | QVFILE_MODE_CREATE)) {
    QVFalhouBench(state, "f->Open(sCaminho, ...)", ErroDe(*f));
    return;
  }
  for (auto _ : state) {
    std::uint64_t uiFim = 0;
    if (!f->SeekToEnd(&uiFim) || !f->Write(bytes.data(), bytes.size()) || !f->Flush()) {
      QVFalhouBench(state, "f->Write(bytes.data(), bytes.size())", ErroDe(*f));
      break;
    }
  }
  state.counters["bytes"] = static_cast<double>(bytes.size());
}
BENCHMARK(BM_ChamadosGravaAnexo)->UseRealTime()->Unit(benchmark::kMicrosecond);

// The same records as rows of their own (the stored bytes in a BLOB, the
// parent's rowid beside them), one IMMEDIATE transaction per call.
static void BM_ChamadosGravaSqlite(benchmark::State& state) {
  if (EmpresaFalhou(state)) return;
  CQVRegistroPs<_REG_ATENDIMENTO_PS> chamado;
  MontaChamado(chamado.reg);
  const CBytesChamado b = BytesDoChamado(chamado.reg);
  const std::string sCaminho = Raiz() + "/grava.db";
  std::error_code ec;
  for (const char* sufixo : {"", "-wal", "-shm"}) std::filesystem::remove(sCaminho + sufixo, ec);
  CSqlite db;
  CComando inicio, fim, insChamado, insServico, insSessao, insClassificacao;
  if (!db.Abre(sCaminho) || !db.Executa("PRAGMA journal_mode = WAL") || !db.Executa("PRAGMA synchronous = FULL") ||
      !db.Executa("CREATE TABLE chamados (ponteiro INTEGER PRIMARY KEY, ma INTEGER, dados BLOB);"
                  "CREATE TABLE servicos (ponteiro INTEGER PRIMARY KEY, chamado INTEGER, dados BLOB);"
                  "CREATE TABLE sessoes (ponteiro INTEGER PRIMARY KEY, servico INTEGER, dados BLOB);"
                  "CREATE TABLE classificacoes (ponteiro INTEGER PRIMARY KEY, chamado INTEGER, dados BLOB);") ||
      !inicio.Prepara(db.pDb, "BEGIN IMMEDIATE") || !fim.Prepara(db.pDb, "COMMIT") ||
      !insChamado.Prepara(db.pDb, "INSERT INTO chamados VALUES(NULL, ?1, ?2)") ||
      !insServico.Prepara(db.pDb, "INSERT INTO servicos VALUES(NULL, ?1, ?2)") ||
      !insSessao.Prepara(db.pDb, "INSERT INTO sessoes VALUES(NULL, ?1, ?2)") ||
      !insClassificacao.Prepara(db.pDb, "INSERT INTO classificacoes VALUES(NULL, ?1, ?2)")) {
    state.SkipWithError(sqlite3_errmsg(db.pDb));
    return;
  }
  auto insere = [&](CComando& cmd, std::int64_t iPai, const std::vector<unsigned char>& dados) {
    sqlite3_bind_int64(cmd.pStmt, 1, iPai);
    sqlite3_bind_blob(cmd.pStmt, 2, dados.data(), static_cast<int>(dados.size()), SQLITE_STATIC);
    const bool bOk = sqlite3_step(cmd.pStmt) == SQLITE_DONE;
    sqlite3_reset(cmd.pStmt);
    return bOk;
  };
  for (auto _ : state) {
    bool bOk = inicio.Executa({}) && insere(insChamado, kMesGravacao, b.chamado);
    const std::int64_t iChamado = sqlite3_last_insert_rowid(db.pDb);
    for (std::size_t i = 0; bOk && i < b.servicos.size(); ++i) {
      bOk = insere(insServico, iChamado, b.servicos[i]);
      const std::int64_t iServico = sqlite3_last_insert_rowid(db.pDb);
      for (std::size_t k = 0; bOk && k < 2; ++k) bOk = insere(insSessao, iServico, b.sessoes[2 * i + k]);
    }
    for (std::size_t i = 0; bOk && i < b.classificacoes.size(); ++i)
      bOk = insere(insClassificacao, iChamado, b.classificacoes[i]);
    if (!bOk || !fim.Executa({})) {
      state.SkipWithError(sqlite3_errmsg(db.pDb));
      break;
    }
  }
}
BENCHMARK(BM_ChamadosGravaSqlite)->UseRealTime()->Unit(benchmark::kMicrosecond);

// ---- (c) the numbering check at 1,000,000 calls ----------------------------------------------

// Argument: 0 asks for a free number (2,000,000), 1 for a taken one (500,000).
static void BM_ChamadosNumero(benchmark::State& state) {
  if (EmpresaFalhou(state)) return;
  CGeServidorAtendimento servidor;
  if (QVFalhouBench(state, "servidor.Inicializa(Inicializacao())", servidor.Inicializa(Inicializacao()))) return;
  const std::uint32_t lNumero = state.range(0) == 0 ? 2000000 : 500000;
  std::int32_t bNaoDuplicado = 0;
  if (QVFalhouBench(state, "servidor.ConsistirNumeroAtendimentoPS(lNumero, &bNaoDuplicado)",
                    servidor.ConsistirNumeroAtendimentoPS(lNumero, &bNaoDuplicado)))  // fills the index
    return;
  for (auto _ : state)
    if (QVFalhouBench(state, "servidor.ConsistirNumeroAtendimentoPS(lNumero, &bNaoDuplicado)",
                      servidor.ConsistirNumeroAtendimentoPS(lNumero, &bNaoDuplicado)))
      break;
  state.counters["nao_duplicado"] = bNaoDuplicado;
}
BENCHMARK(BM_ChamadosNumero)->Arg(0)->Arg(1)->UseRealTime()->Unit(benchmark::kMicrosecond);

// The months listed from the folder, each call file opened read-only
// through the store and its numbers collected, then the number looked for.
static void BM_ChamadosNumeroLeitura(benchmark::State& state) {
  if (EmpresaFalhou(state)) return;
  const CQVProfilerEmpresa identidade(kEmpresa, kUsuario, 1);
  const std::string sPadrao = QVPadraoGrupoMensal(kRaizChamados);
  bool bNaoDuplicado = false;
  for (auto _ : state) {
    std::vector<std::string> nomes;
    if (QVFalhouBench(state, "QVListDirectory(Empresa().sDiretorio, &nomes)",
                      QVListDirectory(Empresa().sDiretorio, &nomes)))
      break;
    std::vector<std::uint32_t> numeros;
    HRESULT hr = S_OK;
    for (const std::string& sNome : nomes) {
      const std::uint16_t iMA = QVPeriodoMembroGrupo(sPadrao, sNome);
      if (iMA == 0) continue;
      CQVDataBase qvDB(QV_GE);
      qvDB.SetSomenteLeitura(true);
      CGeServidorAtendimentoDatabase::ArquivoMensal<REG_ATENDIMENTO_V2> arquivo(kRaizChamados, QV_GE);
      if (FAILED(hr = qvDB.Inicializa(&identidade)) || FAILED(hr = arquivo.SelecionaPeriodo(iMA)) ||
          FAILED(hr = arquivo.Inicializa(&qvDB)))
        break;
      REG_ATENDIMENTO_V2 reg;
      const QVUInt uiQtd = arquivo.GetQtdRegistros();
      for (QVUInt p = 1; p <= uiQtd && SUCCEEDED(hr); ++p)
        if (SUCCEEDED(hr = arquivo.Le(p, &reg)))
          numeros.push_back(static_cast<std::uint32_t>(reg.lNumeroAtendimento));  // packed: a copy
      if (FAILED(hr)) break;
    }
    if (QVFalhouBench(state, "leitura dos meses", hr)) break;
    bNaoDuplicado = std::find(numeros.begin(), numeros.end(), 2000000u) == numeros.end();
  }
  state.counters["nao_duplicado"] = bNaoDuplicado;
}
BENCHMARK(BM_ChamadosNumeroLeitura)->UseRealTime()->Iterations(3)->Unit(benchmark::kMillisecond);

// ---- (d) opening the company, cold and warm ----------------------------------------------------

// Argument: 0 with the company's files dropped from the page cache before
// each iteration, 1 with them in it.
static void BM_ChamadosAbertura(benchmark::State& state) {
  if (EmpresaFalhou(state)) return;
  std::uint64_t uiBytes = 0;
  const std::vector<std::string> caminhos = ArquivosDaEmpresa(&uiBytes);
  const _REG_FILTRO_ATENDIMENTO_PS filtro = FiltroDezCampos();
  const bool bFrio = state.range(0) == 0;
  for (auto _ : state) {
    state.PauseTiming();
    HRESULT hr = S_OK;
    for (const std::string& sCaminho : caminhos)
      if (bFrio && FAILED(hr = QVDropFileCache(sCaminho))) break;
    if (QVFalhouBench(state, "QVDropFileCache(sCaminho)", hr)) break;
    auto pServidor = std::make_unique<CGeServidorAtendimento>();
    state.ResumeTiming();
    std::uint32_t n = 0;
    if (QVFalhouBench(state, "pServidor->Inicializa(Inicializacao())", pServidor->Inicializa(Inicializacao())) ||
        QVFalhouBench(state, "Busca(*pServidor, filtro, &n)", Busca(*pServidor, filtro, &n)))
      break;
    state.PauseTiming();  // closing is not timed
    pServidor.reset();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * uiBytes));
}
BENCHMARK(BM_ChamadosAbertura)->Arg(0)->Arg(1)->UseRealTime()->Iterations(3)->Unit(benchmark::kMillisecond);

static void BM_ChamadosAberturaLeitura(benchmark::State& state) {
  if (EmpresaFalhou(state)) return;
  std::uint64_t uiBytes = 0;
  const std::vector<std::string> caminhos = ArquivosDaEmpresa(&uiBytes);
  const bool bFrio = state.range(0) == 0;
  for (auto _ : state) {
    state.PauseTiming();
    HRESULT hr = S_OK;
    for (const std::string& sCaminho : caminhos)
      if (bFrio && FAILED(hr = QVDropFileCache(sCaminho))) break;
    if (QVFalhouBench(state, "QVDropFileCache(sCaminho)", hr)) break;
    state.ResumeTiming();
    std::uint64_t uiLidos = 0;
    if (QVFalhouBench(state, "LeDiretorio(caminhos, &uiLidos)", LeDiretorio(caminhos, &uiLidos))) break;
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * uiBytes));
}
BENCHMARK(BM_ChamadosAberturaLeitura)->Arg(0)->Arg(1)->UseRealTime()->Iterations(3)->Unit(benchmark::kMillisecond);
