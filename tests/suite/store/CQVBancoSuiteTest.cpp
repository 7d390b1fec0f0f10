// The suite store on real SQLite files: migrations, files it must leave
// alone, another process's lock, forks.
#include "suite/store/CQVBancoSuite.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "df/qvlibex/QVCodigos.h"
#include "tests/support/QVProcessoFilho.h"
#include "tests/support/QVTestSupport.h"

namespace fs = std::filesystem;

namespace {

std::int64_t Valor(CQVBancoSuite& banco, const char* sSql) {
  auto trava = banco.Trava();
  CQVComandoSuite cmd;
  bool bLinha = false;
  return SUCCEEDED(banco.Prepara(sSql, &cmd)) && SUCCEEDED(cmd.Passo(&bLinha)) && bLinha ? cmd.Inteiro(0) : -1;
}

HRESULT Insere(CQVBancoSuite& banco, const std::string& sEmpresa) {
  auto trava = banco.Trava();
  CQVComandoSuite cmd;
  QV_CHECK(banco.Prepara("INSERT INTO empresas(nome) VALUES(?1)", &cmd));
  return cmd.Liga(1, sEmpresa).Executa();
}

std::size_t LinhasCom(const std::string& trecho) {
  std::size_t n = 0;
  for (const std::string& l : QVTesteLinhasErro()) n += l.find(trecho) != std::string::npos;
  return n;
}

constexpr const char* kTabelas = "SELECT count(*) FROM sqlite_master WHERE type = 'table'";
constexpr const char* kEmpresas = "SELECT count(*) FROM empresas";

}  // namespace

TEST(CQVBancoSuiteTest, MigraDoNadaDoArquivoVazioEDaVersaoAnterior) {
  const std::string dirs[] = {QVTesteNovoDiretorio("nada"), QVTesteNovoDiretorio("vazio"), QVTesteNovoDiretorio("v1")};
  std::ofstream(dirs[1] + "/suite.db").flush();
  std::shared_ptr<CQVBancoSuite> p;
  ASSERT_EQ(CQVBancoSuite::AbreAteVersao(dirs[2], 1, &p), S_OK);
  EXPECT_EQ(Valor(*p, kTabelas), 10);
  ASSERT_EQ(Insere(*p, "ACME"), S_OK);
  for (const std::string& dir : dirs) {
    ASSERT_EQ(CQVBancoSuite::Abre(dir, &p), S_OK) << dir;
    EXPECT_EQ(p->VersaoEsquema(), kQVVersaoEsquemaSuite);
    EXPECT_EQ(Valor(*p, kTabelas), 20);
    EXPECT_EQ(Insere(*p, "NOVA"), S_OK);
  }
  EXPECT_EQ(Valor(*p, kEmpresas), 2);  // version 1's company kept
  // Company data, nobody else's to read: the WAL included.
  for (const char* arquivo : {"/suite.db", "/suite.db-wal"})
    EXPECT_EQ(fs::status(dirs[2] + arquivo).permissions() & fs::perms::all, fs::perms(0640)) << arquivo;
}

TEST(CQVBancoSuiteTest, ArquivoQueNaoServeFicaComoEstava) {
  const std::tuple<const char*, std::string, HRESULT, const char*> casos[] = {
      // the file (a text, or a store of version 99 in that journal mode), the status, its one line
      {"texto", std::string(5000, 'x'), E_QVDF_BANCO_SUITE_INVALIDO, "sqlite = file is not a database"},
      {"curto", "SQLite", E_QVDF_BANCO_SUITE_INVALIDO, "sqlite = file is not a database"},
      {"wal", "WAL", E_QVDF_BANCO_SUITE_VERSAO_MAIS_NOVA, "m_iVersao = 99"},
      {"delete", "DELETE", E_QVDF_BANCO_SUITE_VERSAO_MAIS_NOVA, "m_iVersao = 99"},
  };
  for (const auto& [nome, conteudo, hr, linha] : casos) {
    SCOPED_TRACE(nome);
    const std::string dir = QVTesteNovoDiretorio(nome);
    std::shared_ptr<CQVBancoSuite> p;
    if (hr == E_QVDF_BANCO_SUITE_INVALIDO) {
      std::ofstream(dir + "/suite.db") << conteudo;
    } else {
      ASSERT_EQ(CQVBancoSuite::Abre(dir, &p), S_OK);
      ASSERT_EQ(p->ExecutaSql(("PRAGMA journal_mode = " + conteudo + "; PRAGMA user_version = 99").c_str()), S_OK);
      p.reset();
    }
    const std::string antes = QVTesteLeArquivo(dir + "/suite.db");
    QVTesteLimpaLog();
    EXPECT_EQ(CQVBancoSuite::Abre(dir, &p), hr);
    EXPECT_FALSE(p);
    EXPECT_EQ(QVTesteLeArquivo(dir + "/suite.db"), antes);
    EXPECT_EQ(LinhasCom(linha), 1u);
  }
  // Not to be made: a missing store stays missing.
  const std::string dir = QVTesteNovoDiretorio("ausente");
  std::shared_ptr<CQVBancoSuite> p;
  EXPECT_EQ(CQVBancoSuite::Abre(dir, &p, false), E_QVDF_BANCO_SUITE_INVALIDO);
  EXPECT_TRUE(fs::is_empty(dir));
}

TEST(CQVBancoSuiteTest, OcupadoAlemDaEsperaENadaGravadoPelaMetade) {
  const std::string dir = QVTesteNovoDiretorio("ocupado");
  // Made before anything is open here: it takes the write lock (1) and lets it go (2).
  CQVProcessoFilho outro([dir](std::int32_t pedido) -> std::int32_t {
    static std::shared_ptr<CQVBancoSuite> p;
    if (pedido == 1 && FAILED(CQVBancoSuite::Abre(dir, &p))) return 0;
    return SUCCEEDED(p->ExecutaSql(pedido == 1 ? "BEGIN IMMEDIATE" : "ROLLBACK"));
  });
  ASSERT_EQ(outro.Pede(1), 1);
  QVDefineEsperaBancoSuite(100);
  std::shared_ptr<CQVBancoSuite> p;
  ASSERT_EQ(CQVBancoSuite::Abre(dir, &p), S_OK);  // up to date: opened without the write lock
  QVDefineEsperaBancoSuite(kQVEsperaBancoSuitePadraoMs);
  QVTesteLimpaLog();
  const auto inicio = std::chrono::steady_clock::now();
  EXPECT_EQ(p->Transacao([&] { return Insere(*p, "A"); }), E_QVDF_BANCO_SUITE_OCUPADO);
  EXPECT_GE(std::chrono::steady_clock::now() - inicio, std::chrono::milliseconds(100));
  EXPECT_EQ(LinhasCom("sqlite = database is locked"), 1u);
  EXPECT_EQ(Valor(*p, kEmpresas), 0);  // readers do not wait
  ASSERT_EQ(outro.Pede(2), 1);

  // A failure half-way leaves nothing of the transaction.
  EXPECT_EQ(p->Transacao([&] { return SUCCEEDED(Insere(*p, "B")) ? Insere(*p, "b") : S_OK; }),
            E_QVDF_BANCO_SUITE_FALHA);  // names are unique whatever the case
  EXPECT_EQ(p->Transacao([&] { return SUCCEEDED(Insere(*p, "C")) ? E_FAIL : S_OK; }), E_FAIL);
  EXPECT_EQ(Valor(*p, kEmpresas), 0);
  EXPECT_EQ(p->Transacao([&] { return Insere(*p, "D"); }), S_OK);
  EXPECT_EQ(Valor(*p, kEmpresas), 1);
}

TEST(CQVBancoSuiteTest, ProcessoFilhoUsaUmaConexaoSua) {
  const std::shared_ptr<CQVBancoSuite> p = QVTesteBancoSuite();
  ASSERT_TRUE(p);
  const std::int64_t iAntes = Valor(*p, kEmpresas);
  const auto status = QVTesteEmProcessos(3, [&](int i) {
    std::shared_ptr<CQVBancoSuite> pFilho;
    if (FAILED(QVBancoSuite(&pFilho)) || pFilho == p) return 1;
    return SUCCEEDED(pFilho->Transacao([&] { return Insere(*pFilho, "F" + std::to_string(iAntes + i)); })) ? 0 : 2;
  });
  EXPECT_EQ(status, std::vector<int>(3, 0));
  std::shared_ptr<CQVBancoSuite> pDepois;
  ASSERT_EQ(QVBancoSuite(&pDepois), S_OK);
  EXPECT_EQ(pDepois, p);  // the parent's, still working
  EXPECT_EQ(Valor(*p, kEmpresas), iAntes + 3);
  EXPECT_EQ(Insere(*p, "P" + std::to_string(iAntes)), S_OK);
}

// One command used for several runs: each binding after a step starts a
// new run with the new values; a binding SQLite refuses is answered by the
// step, which then writes nothing.
TEST(CQVBancoSuiteTest, ComandoReusadoLigaNovosValoresERecusaIndiceInvalido) {
  std::shared_ptr<CQVBancoSuite> p;
  ASSERT_EQ(CQVBancoSuite::Abre(QVTesteNovoDiretorio("reuso"), &p), S_OK);
  auto trava = p->Trava();
  CQVComandoSuite cmd;
  ASSERT_EQ(p->Prepara("INSERT INTO empresas(nome) VALUES(?1)", &cmd), S_OK);
  for (const char* nome : {"A", "B", "C"}) ASSERT_EQ(cmd.Liga(1, nome).Executa(), S_OK) << nome;
  EXPECT_EQ(Valor(*p, "SELECT count(DISTINCT nome) FROM empresas"), 3);
  QVTesteLimpaLog();
  EXPECT_EQ(cmd.Liga(2, "D").Executa(), E_QVDF_BANCO_SUITE_FALHA);
  EXPECT_EQ(LinhasCom("sqlite3_bind(m_pStmt, 2)"), 1u);
  EXPECT_EQ(Valor(*p, kEmpresas), 3);
  EXPECT_EQ(cmd.Liga(1, "E").Executa(), S_OK);
  EXPECT_EQ(Valor(*p, kEmpresas), 4);
}
