// The suite's own store: one SQLite database per data root ("suite.db"),
// which keeps what the suite's closed libraries keep for the server: the
// companies and users and who may work where, master data (branches,
// municipalities, clients, units of measure, services, contracts), the
// follow-up records, calendar events, the transaction log, linked
// information, invoices and the module's settings.
//
// Several server processes share one data root: the database runs in WAL
// mode with foreign keys on and a busy time-out (QVDefineEsperaBancoSuite);
// every write is one IMMEDIATE transaction, so a writer waits for another
// at its start, never half-way. Master data are addressed by the 32-bit
// pointers the records carry: the tables' row ids ("ponteiro").
//
// The schema is created and upgraded by numbered migrations, recorded in
// PRAGMA user_version; a store of a newer version than this program is
// refused, untouched (E_QVDF_BANCO_SUITE_VERSAO_MAIS_NOVA). A file that is
// no database answers E_QVDF_BANCO_SUITE_INVALIDO, a lock held beyond the
// time-out E_QVDF_BANCO_SUITE_OCUPADO, any other failure of SQLite
// E_QVDF_BANCO_SUITE_FALHA; each writes one error line with SQLite's text.
//
// Within a process one connection serves every thread, behind a recursive
// mutex: Trava() holds it across a sequence of statements, Transacao()
// holds it for a whole transaction. After a fork the child never uses the
// parent's connection (its locks are the parent's): QVBancoSuite() opens a
// new one there and leaves the inherited one alone.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "df/qvlibex/QVLog.h"
#include "platform/QVHResult.h"

struct sqlite3;
struct sqlite3_stmt;

inline constexpr const char* kQVArquivoBancoSuite = "suite.db";
// The schema version this program writes (the last migration's number).
inline constexpr int kQVVersaoEsquemaSuite = 2;
// The busy time-out by default, in milliseconds.
inline constexpr int kQVEsperaBancoSuitePadraoMs = 5000;

class CQVBancoSuite;

// One prepared statement, borrowed from the connection's cache for the
// length of a use: bind, step, read columns. Reset (and unbound) when it
// goes out of scope. Parameters are numbered from 1, columns from 0; texts
// are UTF-8. A statement is not re-entered while in use.
class CQVComandoSuite {
 public:
  CQVComandoSuite() = default;
  ~CQVComandoSuite();
  CQVComandoSuite(const CQVComandoSuite&) = delete;
  CQVComandoSuite& operator=(const CQVComandoSuite&) = delete;

  // Bindings after a step start a new run of the statement (the old
  // bindings stay until replaced). A binding SQLite refuses (an index out
  // of range) is logged and answered by the next Passo.
  CQVComandoSuite& Liga(int idx, std::int64_t valor);
  CQVComandoSuite& Liga(int idx, std::string_view texto);
  CQVComandoSuite& LigaNulo(int idx);
  // One step: *pbLinha true when a row is ready, false when done. A
  // constraint broken by a write answers E_QVDF_BANCO_SUITE_FALHA with
  // SQLite's text in the error line (the importer adds the line number).
  [[nodiscard]] HRESULT Passo(bool* pbLinha = nullptr);
  // Steps to the end, for writes.
  [[nodiscard]] HRESULT Executa() { return Passo(nullptr); }

  std::int64_t Inteiro(int col) const;
  std::string Texto(int col) const;
  // The same into an existing string: its storage is reused, so a reader
  // called per record allocates nothing once its strings have grown.
  void Texto(int col, std::string* psTexto) const;
  bool Nulo(int col) const;
  int Colunas() const;
  std::string NomeColuna(int col) const;
  const std::string& Sql() const;

 private:
  friend class CQVBancoSuite;
  void NovaExecucao();
  void ConfereLiga(int rc, int idx);

  CQVBancoSuite* m_pBanco = nullptr;
  sqlite3_stmt* m_pStmt = nullptr;
  bool m_bPassou = false;  // stepped since the last reset
  HRESULT m_hrLiga = S_OK;  // the first binding refused in this run
  const std::string* m_pSql = nullptr;  // the cache's key: borrowing copies nothing
};

class CQVBancoSuite {
 public:
  ~CQVBancoSuite();
  CQVBancoSuite(const CQVBancoSuite&) = delete;
  CQVBancoSuite& operator=(const CQVBancoSuite&) = delete;

  // Opens the store of a data root, creating the file when absent, and
  // brings its schema to kQVVersaoEsquemaSuite. bCriar false: a missing
  // file answers E_QVDF_BANCO_SUITE_INVALIDO instead of being created.
  // Nothing is written before the schema version was read: a file that is
  // no database, or of a newer version, is left as it was. A store already
  // at the version takes no write lock to open.
  [[nodiscard]] static HRESULT Abre(const std::string& sRaiz, std::shared_ptr<CQVBancoSuite>* ppBanco,
                                    bool bCriar = true);
  // Only as far as schema version iAte (for tests of the migrations).
  [[nodiscard]] static HRESULT AbreAteVersao(const std::string& sRaiz, int iAte,
                                             std::shared_ptr<CQVBancoSuite>* ppBanco);

  const std::string& Caminho() const { return m_sCaminho; }
  // PRAGMA user_version as read at open (after the migrations).
  int VersaoEsquema() const { return m_iVersao; }

  // The connection for this thread alone, across several statements.
  [[nodiscard]] std::unique_lock<std::recursive_mutex> Trava() { return std::unique_lock(m_mutex); }
  // corpo inside BEGIN IMMEDIATE ... COMMIT; rolled back, and its status
  // returned, when corpo fails or throws. Nested calls join the outer
  // transaction.
  [[nodiscard]] HRESULT Transacao(const std::function<HRESULT()>& corpo);

  // A statement of the cache by its text (prepared at its first use).
  // Call with Trava() held; the command must not outlive it.
  [[nodiscard]] HRESULT Prepara(const char* sSql, CQVComandoSuite* pComando);
  // Statements without parameters or results (schema, pragmas).
  [[nodiscard]] HRESULT ExecutaSql(const char* sSql);
  std::int64_t UltimoPonteiro() const;
  int Alteracoes() const;

  // The status of an SQLite result code, and one error line with SQLite's
  // message when it is a failure (expressao is the caller's text).
  HRESULT Status(int rc, const QVLocalFonte& local, std::string_view expressao, std::string_view sSql = {}) const;

 private:
  CQVBancoSuite() = default;
  [[nodiscard]] HRESULT AbreArquivo(const std::string& sCaminho, bool bCriar);
  [[nodiscard]] HRESULT LeVersao(int* piVersao);
  [[nodiscard]] HRESULT RecusaVersaoMaisNova() const;
  [[nodiscard]] HRESULT Migra(int iAte);

  sqlite3* m_pDb = nullptr;
  std::string m_sCaminho;
  int m_iVersao = 0;
  int m_iProfundidadeTransacao = 0;
  std::recursive_mutex m_mutex;
  std::map<std::string, sqlite3_stmt*, std::less<>> m_comandos;
  friend class CQVComandoSuite;
};

// The store of the process's data root (QVRaizDados()), opened at its first
// use and opened again when the data root changes or the process is a fork
// of the one that opened it.
[[nodiscard]] HRESULT QVBancoSuite(std::shared_ptr<CQVBancoSuite>* ppBanco);
// The busy time-out of the stores opened from then on.
void QVDefineEsperaBancoSuite(int ms);

// A company of the store, found by name as the suite compares company
// names: the row spelt as asked (ASCII letter case aside, as the column's
// NOCASE index compares), else the first by pointer equal to it without
// regard to case in the suite's code page (accented letters included).
struct QVEmpresaSuite {
  std::uint32_t lPonteiro = 0;
  std::string sNome;   // as stored
  std::string sPasta;  // its folder under the data root (its name when none is stored)
};
// S_OK with the company, S_FALSE when the store has none (an empty name
// included). Takes the store's lock itself.
[[nodiscard]] HRESULT QVProcuraEmpresaSuite(CQVBancoSuite& banco, const std::string& sEmpresa,
                                            QVEmpresaSuite* pEmpresa);
int QVEsperaBancoSuite();

// The migrations, in order: migration i (1-based) brings the schema from
// version i - 1 to i. QVEsquemaSuite.cpp.
struct QVMigracaoSuite {
  int iVersao;
  const char* sSql;
};
const QVMigracaoSuite* QVMigracoesSuite(int* pQuantidade);
