// The suite store's two hot paths against bare SQLite on the same file (or
// the same file system); BenchMain.cpp prints the ratios:
//  - a client read by its pointer through the business access, the read
//    the search's municipality filter makes for every call it looks at / a
//    bare prepared SELECT of the same row by rowid, into the same object;
//  - a follow-up written with its services through the manager access, as
//    the service-call integration writes it / a bare prepared INSERT in a
//    transaction of its own, with the store's durability (WAL, synchronous
//    FULL).
// The writes are timed on the wall clock: their cost is the commit's sync.
// The store lives under $ZELKORIN_BENCH_DIR/suite (default
// /var/tmp/zelkorin-bench), made again at every start of a benchmark.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "bench/BenchComum.h"
#include "df/qvlibex/QVDatas.h"
#include "suite/hostlink/CQVAcessoGerenciadorSuite.h"
#include "suite/masterdata/CQVAcessoEmpresarialSuite.h"
#include "suite/store/CQVBancoSuite.h"

namespace {

std::string Diretorio() {
  const char* env = std::getenv("ZELKORIN_BENCH_DIR");
  std::string d = env != nullptr && *env != '\0' ? env : "/var/tmp/zelkorin-bench";
  d += "/suite";
  std::filesystem::create_directories(d);
  return d;
}

// A database file with its WAL and shared-memory companions.
void ApagaBanco(const std::string& sCaminho) {
  for (const char* sufixo : {"", "-wal", "-shm"}) std::filesystem::remove(sCaminho + sufixo);
}

// A new store with what the two paths read: a company, a municipality, a
// client there, a unit and a service under a title service.
struct CBaseSuite {
  std::shared_ptr<CQVBancoSuite> pBanco;
  std::uint32_t lEmpresa = 0;
  std::uint32_t lCliente = 0;
  std::uint32_t lTitulo = 0;
  std::uint32_t lServico = 0;
};

HRESULT Insere(CQVBancoSuite& banco, const char* sSql, std::initializer_list<std::int64_t> valores,
               std::uint32_t* plPonteiro) {
  CQVComandoSuite cmd;
  QV_CHECK(banco.Prepara(sSql, &cmd));
  int i = 0;
  for (const std::int64_t v : valores) cmd.Liga(++i, v);
  QV_CHECK(cmd.Executa());
  *plPonteiro = static_cast<std::uint32_t>(banco.UltimoPonteiro());
  return S_OK;
}

HRESULT PreparaBase(CBaseSuite* pBase) {
  const std::string sRaiz = Diretorio();
  ApagaBanco(sRaiz + "/" + kQVArquivoBancoSuite);
  QV_CHECK(CQVBancoSuite::Abre(sRaiz, &pBase->pBanco));
  CQVBancoSuite& banco = *pBase->pBanco;
  return banco.Transacao([&]() -> HRESULT {
    std::uint32_t lMunicipio = 0, lUnidade = 0;
    QV_CHECK(Insere(banco, "INSERT INTO empresas(nome, razao_social) VALUES('BENCH', 'Bench Ltda')", {},
                    &pBase->lEmpresa));
    QV_CHECK(Insere(banco, "INSERT INTO municipios(nome, uf) VALUES('Campinas', 'SP')", {}, &lMunicipio));
    QV_CHECK(Insere(banco,
                    "INSERT INTO clientes(ponteiro_empresa, codigo, nome, nome_fantasia, cnpj_cpf, endereco, "
                    "bairro, cep, ponteiro_municipio, telefone, email) VALUES(?1, 'C001', 'Cliente de Bench Ltda', "
                    "'Cliente', '12.345.678/0001-90', 'Rua das Palmeiras, 100', 'Centro', '13010-000', ?2, "
                    "'(19) 3232-0000', 'contato@cliente.com.br')",
                    {pBase->lEmpresa, lMunicipio}, &pBase->lCliente));
    QV_CHECK(Insere(banco, "INSERT INTO unidades(sigla, descricao, casas_decimais) VALUES('H', 'Hora', 2)", {},
                    &lUnidade));
    QV_CHECK(Insere(banco,
                    "INSERT INTO servicos(ponteiro_empresa, codigo, descricao, tipo, classificacao, "
                    "ponteiro_unidade) VALUES(?1, 'T01', 'Manutenção', 'T', '01', ?2)",
                    {pBase->lEmpresa, lUnidade}, &pBase->lTitulo));
    QV_CHECK(Insere(banco,
                    "INSERT INTO servicos(ponteiro_empresa, codigo, descricao, tipo, classificacao, "
                    "ponteiro_unidade, valor_unitario) VALUES(?1, 'S01', 'Visita técnica', 'S', '01.001', ?2, "
                    "1500000)",
                    {pBase->lEmpresa, lUnidade}, &pBase->lServico));
    return S_OK;
  });
}

// The bare connection: the file as SQLite alone opens it.
struct CSqlitePuro {
  sqlite3* pDb = nullptr;
  ~CSqlitePuro() { sqlite3_close(pDb); }
  bool Abre(const std::string& sCaminho) {
    return sqlite3_open_v2(sCaminho.c_str(), &pDb, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr) == SQLITE_OK;
  }
  bool Executa(const char* sSql) { return sqlite3_exec(pDb, sSql, nullptr, nullptr, nullptr) == SQLITE_OK; }
};

struct CComandoPuro {
  sqlite3_stmt* pStmt = nullptr;
  ~CComandoPuro() { sqlite3_finalize(pStmt); }
  bool Prepara(sqlite3* pDb, const char* sSql) {
    return sqlite3_prepare_v3(pDb, sSql, -1, SQLITE_PREPARE_PERSISTENT, &pStmt, nullptr) == SQLITE_OK;
  }
  // One run to the end (or to its first row); false on a failure.
  bool Passo(int iEsperado = SQLITE_DONE) {
    const bool bOk = sqlite3_step(pStmt) == iEsperado;
    sqlite3_reset(pStmt);
    return bOk;
  }
};

std::string Coluna(sqlite3_stmt* pStmt, int i) {
  const auto* p = sqlite3_column_text(pStmt, i);
  if (p == nullptr) return {};
  return std::string(reinterpret_cast<const char*>(p), static_cast<std::size_t>(sqlite3_column_bytes(pStmt, i)));
}

}  // namespace

// ---- a client by its pointer ----------------------------------------------------

static void BM_LeClienteSuite(benchmark::State& state) {
  CBaseSuite base;
  if (QVFalhouBench(state, "PreparaBase(&base)", PreparaBase(&base))) return;
  CQVAcessoEmpresarialSuite acessoSuite(base.pBanco, base.lEmpresa);
  IQVAcessoEmpresarial* pAcesso = &acessoSuite;  // as the search holds it
  for (auto _ : state) {
    CQVDadosDF_Cliente cliente;
    if (QVFalhouBench(state, "pAcesso->LeBufferCFRTLibPla(base.lCliente, &cliente)",
                      pAcesso->LeBufferCFRTLibPla(base.lCliente, &cliente)))
      break;
    benchmark::DoNotOptimize(cliente.lPonteiroMunicipio);
  }
}
BENCHMARK(BM_LeClienteSuite);

static void BM_LeClienteSqlite(benchmark::State& state) {
  CBaseSuite base;
  if (QVFalhouBench(state, "PreparaBase(&base)", PreparaBase(&base))) return;
  CSqlitePuro db;
  CComandoPuro le;
  if (!db.Abre(base.pBanco->Caminho()) ||
      !le.Prepara(db.pDb,
                  "SELECT ponteiro, ponteiro_empresa, codigo, nome, nome_fantasia, cnpj_cpf, inscricao_estadual, "
                  "endereco, bairro, cep, ponteiro_municipio, telefone, email, ativo "
                  "FROM clientes WHERE ponteiro = ?1")) {
    state.SkipWithError(sqlite3_errmsg(db.pDb));
    return;
  }
  sqlite3_stmt* p = le.pStmt;
  for (auto _ : state) {
    CQVDadosDF_Cliente c;
    sqlite3_bind_int64(p, 1, base.lCliente);
    if (sqlite3_step(p) != SQLITE_ROW) {
      state.SkipWithError("sqlite3_step(p)");
      break;
    }
    c.lPonteiro = static_cast<std::uint32_t>(sqlite3_column_int64(p, 0));
    c.lPonteiroEmpresa = static_cast<std::uint32_t>(sqlite3_column_int64(p, 1));
    c.sCodigo = Coluna(p, 2);
    c.sNome = Coluna(p, 3);
    c.sNomeFantasia = Coluna(p, 4);
    c.sCnpjCpf = Coluna(p, 5);
    c.sInscricaoEstadual = Coluna(p, 6);
    c.sEndereco = Coluna(p, 7);
    c.sBairro = Coluna(p, 8);
    c.sCep = Coluna(p, 9);
    c.lPonteiroMunicipio = static_cast<std::uint32_t>(sqlite3_column_int64(p, 10));
    c.sTelefone = Coluna(p, 11);
    c.sEmail = Coluna(p, 12);
    c.bAtivo = sqlite3_column_int64(p, 13) != 0;
    sqlite3_reset(p);
    benchmark::DoNotOptimize(c.lPonteiroMunicipio);
  }
}
BENCHMARK(BM_LeClienteSqlite);

// ---- a follow-up write -------------------------------------------------------------

// The follow-up the integration inserts for a call and then writes again
// at every change of the call's service: the class entry and the service's.
static void BM_GravaAcompanhamentoSuite(benchmark::State& state) {
  CBaseSuite base;
  if (QVFalhouBench(state, "PreparaBase(&base)", PreparaBase(&base))) return;
  CQVAcessoGerenciadorSuite gerenciadorSuite(base.pBanco, base.lEmpresa);
  IQVAcessoGerenciador* pGerenciador = &gerenciadorSuite;
  const std::uint32_t iHoje = QVDia(2024, 3, 15);
  const REG_QVDMC dmcAtendimento = REG_QVDMC().SetDMC(1, QVMesAnoDoDia(iHoje));

  CQVDadosGE_ServicoAcompanhamentoServico classe;
  classe.SetClasse(base.lTitulo);
  classe.SetPonteiroServico(base.lTitulo);
  classe.PreparaParaSerClasse();
  CQVDadosGE_ServicoAcompanhamentoServico servico = CQVDadosGE_AcompanhamentoServico::CriaNovoServicoAcompanhamento(
      base.lServico, base.lTitulo, 0, 20000, 3000000, iHoje);
  CQVDadosGE_AcompanhamentoServico acm;
  acm.lPonteiroCliente = base.lCliente;
  acm.SetDataAbertura(iHoje);
  acm.SetOrigemRegistro(kQVOrigemAcmAtendimento);
  acm.SetVersaoRegistro(1);
  acm.RemoveTodosServicos();
  acm.AdicionaServicos({classe, servico});
  CQVDadosGE_DadosIntegracaoAcompanhamentoServico gerada;
  if (QVFalhouBench(state, "pGerenciador->InsereAcompanhamentoIntegracaoATTEC(acm, dmcAtendimento, &gerada)",
                    pGerenciador->InsereAcompanhamentoIntegracaoATTEC(acm, dmcAtendimento, &gerada)))
    return;
  for (auto _ : state) {
    acm.vValorServicos += 10000;  // every write changes the record
    REG_QVDMC dmcGravado;
    if (QVFalhouBench(state, "pGerenciador->GravaAcompanhamentoServico(acm, &dmcGravado, true)",
                      pGerenciador->GravaAcompanhamentoServico(acm, &dmcGravado, true)))
      break;
  }
}
BENCHMARK(BM_GravaAcompanhamentoSuite)->UseRealTime()->Unit(benchmark::kMicrosecond);

// A row of the follow-ups' shape in a file of its own, each insert its own
// IMMEDIATE transaction as the store makes every write.
static void BM_InsertSqliteTransacao(benchmark::State& state) {
  const std::string sCaminho = Diretorio() + "/puro.db";
  ApagaBanco(sCaminho);
  CSqlitePuro db;
  CComandoPuro inicio, insere, fim;
  if (!db.Abre(sCaminho) || !db.Executa("PRAGMA journal_mode = WAL") || !db.Executa("PRAGMA synchronous = FULL") ||
      !db.Executa("CREATE TABLE acompanhamentos (ponteiro INTEGER PRIMARY KEY, ponteiro_empresa INTEGER NOT NULL, "
                  "ma INTEGER NOT NULL, ponteiro_cliente INTEGER NOT NULL, data_abertura INTEGER NOT NULL, "
                  "valor_servicos INTEGER NOT NULL, observacao TEXT NOT NULL)") ||
      !inicio.Prepara(db.pDb, "BEGIN IMMEDIATE") || !fim.Prepara(db.pDb, "COMMIT") ||
      !insere.Prepara(db.pDb,
                      "INSERT INTO acompanhamentos(ponteiro_empresa, ma, ponteiro_cliente, data_abertura, "
                      "valor_servicos, observacao) VALUES(1, ?1, 1, ?2, ?3, '')")) {
    state.SkipWithError(sqlite3_errmsg(db.pDb));
    return;
  }
  const std::uint32_t iHoje = QVDia(2024, 3, 15);
  std::int64_t vValor = 0;
  for (auto _ : state) {
    sqlite3_bind_int64(insere.pStmt, 1, QVMesAnoDoDia(iHoje));
    sqlite3_bind_int64(insere.pStmt, 2, iHoje);
    sqlite3_bind_int64(insere.pStmt, 3, vValor += 10000);
    if (!inicio.Passo() || !insere.Passo() || !fim.Passo()) {
      state.SkipWithError(sqlite3_errmsg(db.pDb));
      break;
    }
  }
}
BENCHMARK(BM_InsertSqliteTransacao)->UseRealTime()->Unit(benchmark::kMicrosecond);
