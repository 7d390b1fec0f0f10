#include "suite/store/CQVBancoSuite.h"

#include <sqlite3.h>

#include <atomic>
#include <filesystem>

#include "df/qvlibex/QVCodigos.h"
#include "platform/QVCodePage.h"
#include "platform/QVOsFile.h"
#include "platform/QVSystemInfo.h"
#include "suite/hostlink/QVSessaoSuite.h"

namespace {

std::atomic<int> g_iEsperaMs{kQVEsperaBancoSuitePadraoMs};

HRESULT StatusDeSqlite(int rc) {
  switch (rc & 0xFF) {
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE:
      return S_OK;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return E_QVDF_BANCO_SUITE_OCUPADO;
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
      return E_QVDF_BANCO_SUITE_INVALIDO;
    case SQLITE_NOMEM:
      return E_OUTOFMEMORY;
    default:
      return E_QVDF_BANCO_SUITE_FALHA;
  }
}

}  // namespace

// ---- CQVComandoSuite ---------------------------------------------------------

CQVComandoSuite::~CQVComandoSuite() {
  if (m_pStmt != nullptr) {
    sqlite3_reset(m_pStmt);
    sqlite3_clear_bindings(m_pStmt);
  }
}

// A statement stepped since its last reset refuses bindings (and a step
// would run it again with the old values): binding after a step starts a
// new run. A refused binding is kept and answered by the next step.
void CQVComandoSuite::NovaExecucao() {
  if (!m_bPassou) return;
  sqlite3_reset(m_pStmt);
  m_bPassou = false;
  m_hrLiga = S_OK;
}

void CQVComandoSuite::ConfereLiga(int rc, int idx) {
  if (rc == SQLITE_OK || FAILED(m_hrLiga)) return;
  m_hrLiga = m_pBanco->Status(rc, QV_LOCAL, "sqlite3_bind(m_pStmt, " + std::to_string(idx) + ")", Sql());
}

CQVComandoSuite& CQVComandoSuite::Liga(int idx, std::int64_t valor) {
  NovaExecucao();
  ConfereLiga(sqlite3_bind_int64(m_pStmt, idx, valor), idx);
  return *this;
}

CQVComandoSuite& CQVComandoSuite::Liga(int idx, std::string_view texto) {
  NovaExecucao();
  ConfereLiga(sqlite3_bind_text(m_pStmt, idx, texto.data(), static_cast<int>(texto.size()), SQLITE_TRANSIENT), idx);
  return *this;
}

CQVComandoSuite& CQVComandoSuite::LigaNulo(int idx) {
  NovaExecucao();
  ConfereLiga(sqlite3_bind_null(m_pStmt, idx), idx);
  return *this;
}

HRESULT CQVComandoSuite::Passo(bool* pbLinha) {
  if (pbLinha != nullptr) *pbLinha = false;
  if (m_pStmt == nullptr) return E_UNEXPECTED;
  // The run ends here either way: the next binding starts another.
  m_bPassou = true;
  if (FAILED(m_hrLiga)) return m_hrLiga;
  for (;;) {
    const int rc = sqlite3_step(m_pStmt);
    if (rc == SQLITE_ROW) {
      if (pbLinha != nullptr) {
        *pbLinha = true;
        return S_OK;
      }
      continue;  // a write's rows (RETURNING) are not wanted
    }
    if (rc == SQLITE_DONE) return S_OK;
    const HRESULT hr = m_pBanco->Status(rc, QV_LOCAL, "sqlite3_step(m_pStmt)", Sql());
    sqlite3_reset(m_pStmt);
    return hr;
  }
}

std::int64_t CQVComandoSuite::Inteiro(int col) const { return sqlite3_column_int64(m_pStmt, col); }

std::string CQVComandoSuite::Texto(int col) const {
  const auto* p = sqlite3_column_text(m_pStmt, col);
  if (p == nullptr) return {};
  return std::string(reinterpret_cast<const char*>(p), static_cast<std::size_t>(sqlite3_column_bytes(m_pStmt, col)));
}

void CQVComandoSuite::Texto(int col, std::string* psTexto) const {
  const auto* p = reinterpret_cast<const char*>(sqlite3_column_text(m_pStmt, col));
  if (p == nullptr) {
    psTexto->clear();
    return;
  }
  psTexto->assign(p, static_cast<std::size_t>(sqlite3_column_bytes(m_pStmt, col)));
}

const std::string& CQVComandoSuite::Sql() const {
  static const std::string kVazio;
  return m_pSql != nullptr ? *m_pSql : kVazio;
}

bool CQVComandoSuite::Nulo(int col) const { return sqlite3_column_type(m_pStmt, col) == SQLITE_NULL; }

int CQVComandoSuite::Colunas() const { return sqlite3_column_count(m_pStmt); }

std::string CQVComandoSuite::NomeColuna(int col) const {
  const char* p = sqlite3_column_name(m_pStmt, col);
  return p != nullptr ? p : "";
}

// ---- CQVBancoSuite -----------------------------------------------------------

CQVBancoSuite::~CQVBancoSuite() {
  for (auto& [sql, pStmt] : m_comandos) sqlite3_finalize(pStmt);
  if (m_pDb != nullptr) sqlite3_close(m_pDb);
}

HRESULT CQVBancoSuite::Status(int rc, const QVLocalFonte& local, std::string_view expressao,
                              std::string_view sSql) const {
  const HRESULT hr = StatusDeSqlite(rc);
  if (FAILED(hr)) {
    std::vector<QVParametroLog> parametros{{"sqlite", m_pDb != nullptr ? sqlite3_errmsg(m_pDb) : sqlite3_errstr(rc)},
                                           {"m_sCaminho", m_sCaminho}};
    if (!sSql.empty()) parametros.push_back({"sql", std::string(sSql)});
    QVLogaFalhaHr(local, expressao, hr, std::move(parametros));
  }
  return hr;
}

HRESULT CQVBancoSuite::AbreArquivo(const std::string& sCaminho, bool bCriar) {
  m_sCaminho = sCaminho;
  if (!QVFileExists(sCaminho)) {
    if (!bCriar) {
      QVLogaFalhaHr(QV_LOCAL, "QVFileExists(sCaminho)", E_QVDF_BANCO_SUITE_INVALIDO, {{"sCaminho", sCaminho}});
      return E_QVDF_BANCO_SUITE_INVALIDO;
    }
    // Made empty by the platform (an empty file is an empty database), so
    // that it gets the mode of the company's data files; SQLite gives its
    // -wal and -shm files the mode of the database.
    const std::unique_ptr<IQVOsFile> pArquivo = QVCreateOsFile();
    if (!pArquivo->Open(sCaminho, QVFILE_MODE_READWRITE | QVFILE_SHARE_DENY_NONE | QVFILE_MODE_CREATE |
                                      QVFILE_MODE_NO_TRUNCATE)) {
      const HRESULT hr = HRESULT_FROM_WIN32(pArquivo->LastError());
      QVLogaFalhaHr(QV_LOCAL, "pArquivo->Open(sCaminho, ...)", hr, {{"sCaminho", sCaminho}});
      return hr;
    }
    pArquivo->Close();
    QV_CHECK(QVSyncDirectory(std::filesystem::path(sCaminho).parent_path().string()));
  }
  // CREATE still: a name that differs from the one on disk only in case
  // is another file to SQLite.
  const int flags = SQLITE_OPEN_READWRITE | (bCriar ? SQLITE_OPEN_CREATE : 0) | SQLITE_OPEN_FULLMUTEX;
  int rc = sqlite3_open_v2(sCaminho.c_str(), &m_pDb, flags, nullptr);
  if (rc != SQLITE_OK) return Status(rc, QV_LOCAL, "sqlite3_open_v2(sCaminho.c_str(), &m_pDb, flags, nullptr)");
  sqlite3_extended_result_codes(m_pDb, 1);
  sqlite3_busy_timeout(m_pDb, g_iEsperaMs.load());
  // The version first, before any write (the journal mode is one): a file
  // that is no database fails here, a newer store is refused here, and
  // both stay as they were.
  QV_CHECK(LeVersao(&m_iVersao));
  if (m_iVersao > kQVVersaoEsquemaSuite) return RecusaVersaoMaisNova();
  QV_CHECK(ExecutaSql("PRAGMA foreign_keys = ON"));
  CQVComandoSuite cmd;
  QV_CHECK(Prepara("PRAGMA journal_mode = WAL", &cmd));
  bool bLinha = false;
  QV_CHECK(cmd.Passo(&bLinha));
  // The pragma answers the mode in force: another one means it could not
  // be changed.
  const std::string sModo = bLinha ? cmd.Texto(0) : std::string();
  if (sModo != "wal") {
    QVLogaFalhaHr(QV_LOCAL, "PRAGMA journal_mode = WAL", E_QVDF_BANCO_SUITE_FALHA,
                  {{"journal_mode", sModo}, {"m_sCaminho", m_sCaminho}});
    return E_QVDF_BANCO_SUITE_FALHA;
  }
  QV_CHECK(ExecutaSql("PRAGMA synchronous = FULL"));
  return S_OK;
}

HRESULT CQVBancoSuite::LeVersao(int* piVersao) {
  CQVComandoSuite cmd;
  QV_CHECK(Prepara("PRAGMA user_version", &cmd));
  bool bLinha = false;
  QV_CHECK(cmd.Passo(&bLinha));
  *piVersao = bLinha ? static_cast<int>(cmd.Inteiro(0)) : 0;
  return S_OK;
}

HRESULT CQVBancoSuite::RecusaVersaoMaisNova() const {
  QVLogaFalhaHr(QV_LOCAL, "m_iVersao > kQVVersaoEsquemaSuite", E_QVDF_BANCO_SUITE_VERSAO_MAIS_NOVA,
                {{"m_iVersao", std::to_string(m_iVersao)}, {"m_sCaminho", m_sCaminho}});
  return E_QVDF_BANCO_SUITE_VERSAO_MAIS_NOVA;
}

HRESULT CQVBancoSuite::Migra(int iAte) {
  if (m_iVersao >= iAte) return S_OK;
  int n = 0;
  const QVMigracaoSuite* pMigracoes = QVMigracoesSuite(&n);
  // Read again and applied under one write lock, so that two processes
  // opening an old store do not both upgrade it.
  return Transacao([&]() -> HRESULT {
    QV_CHECK(LeVersao(&m_iVersao));
    if (m_iVersao > kQVVersaoEsquemaSuite) return RecusaVersaoMaisNova();
    for (int i = 0; i < n; ++i) {
      const QVMigracaoSuite& m = pMigracoes[i];
      if (m.iVersao <= m_iVersao || m.iVersao > iAte) continue;
      QV_CHECK(ExecutaSql(m.sSql));
      // The version is a pragma, not a parameter: written from our own number.
      const std::string sVersao = "PRAGMA user_version = " + std::to_string(m.iVersao);
      QV_CHECK(ExecutaSql(sVersao.c_str()));
      m_iVersao = m.iVersao;
    }
    return S_OK;
  });
}

HRESULT CQVBancoSuite::Abre(const std::string& sRaiz, std::shared_ptr<CQVBancoSuite>* ppBanco, bool bCriar) {
  if (ppBanco == nullptr) return E_POINTER;
  ppBanco->reset();
  std::shared_ptr<CQVBancoSuite> p(new CQVBancoSuite());
  QV_CHECK(p->AbreArquivo(sRaiz + "/" + kQVArquivoBancoSuite, bCriar));
  QV_CHECK(p->Migra(kQVVersaoEsquemaSuite));
  *ppBanco = std::move(p);
  return S_OK;
}

HRESULT CQVBancoSuite::AbreAteVersao(const std::string& sRaiz, int iAte, std::shared_ptr<CQVBancoSuite>* ppBanco) {
  if (ppBanco == nullptr) return E_POINTER;
  ppBanco->reset();
  std::shared_ptr<CQVBancoSuite> p(new CQVBancoSuite());
  QV_CHECK(p->AbreArquivo(sRaiz + "/" + kQVArquivoBancoSuite, true));
  QV_CHECK(p->Migra(iAte));
  *ppBanco = std::move(p);
  return S_OK;
}

HRESULT CQVBancoSuite::Transacao(const std::function<HRESULT()>& corpo) {
  auto trava = Trava();
  if (m_iProfundidadeTransacao > 0) {
    ++m_iProfundidadeTransacao;
    HRESULT hr = E_UNEXPECTED;
    try {
      hr = corpo();
    } catch (...) {
      --m_iProfundidadeTransacao;
      throw;
    }
    --m_iProfundidadeTransacao;
    return hr;
  }
  QV_CHECK(ExecutaSql("BEGIN IMMEDIATE"));
  m_iProfundidadeTransacao = 1;
  HRESULT hr = E_UNEXPECTED;
  try {
    hr = corpo();
  } catch (...) {
    m_iProfundidadeTransacao = 0;
    static_cast<void>(ExecutaSql("ROLLBACK"));
    throw;
  }
  m_iProfundidadeTransacao = 0;
  if (FAILED(hr)) {
    static_cast<void>(QV_LOGA(ExecutaSql("ROLLBACK")));
    return hr;
  }
  hr = ExecutaSql("COMMIT");
  if (FAILED(hr)) {
    QVLogaFalhaHr(QV_LOCAL, "ExecutaSql(\"COMMIT\")", hr);
    static_cast<void>(ExecutaSql("ROLLBACK"));
  }
  return hr;
}

HRESULT CQVBancoSuite::Prepara(const char* sSql, CQVComandoSuite* pComando) {
  if (pComando == nullptr) return E_POINTER;
  auto it = m_comandos.find(std::string_view(sSql));
  if (it == m_comandos.end()) {
    sqlite3_stmt* pStmt = nullptr;
    const int rc = sqlite3_prepare_v3(m_pDb, sSql, -1, SQLITE_PREPARE_PERSISTENT, &pStmt, nullptr);
    if (rc != SQLITE_OK) return Status(rc, QV_LOCAL, "sqlite3_prepare_v3(m_pDb, sSql, -1, SQLITE_PREPARE_PERSISTENT, &pStmt, nullptr)", sSql);
    it = m_comandos.emplace(sSql, pStmt).first;
  }
  pComando->m_pBanco = this;
  pComando->m_pStmt = it->second;
  pComando->m_pSql = &it->first;
  // Whatever a previous user left: the first binding starts afresh.
  pComando->m_bPassou = true;
  pComando->m_hrLiga = S_OK;
  return S_OK;
}

HRESULT CQVBancoSuite::ExecutaSql(const char* sSql) {
  char* pErro = nullptr;
  const int rc = sqlite3_exec(m_pDb, sSql, nullptr, nullptr, &pErro);
  sqlite3_free(pErro);
  if (rc != SQLITE_OK) return Status(rc, QV_LOCAL, "sqlite3_exec(m_pDb, sSql, nullptr, nullptr, &pErro)", sSql);
  return S_OK;
}

std::int64_t CQVBancoSuite::UltimoPonteiro() const { return sqlite3_last_insert_rowid(m_pDb); }

int CQVBancoSuite::Alteracoes() const { return sqlite3_changes(m_pDb); }

// ---- the process's store -----------------------------------------------------

namespace {

struct BancoDoProcesso {
  std::mutex mutex;
  std::shared_ptr<CQVBancoSuite> pBanco;
  std::string sRaiz;
  std::uint32_t uiProcesso = 0;
};

BancoDoProcesso& Processo() {
  static auto* p = new BancoDoProcesso();  // never destroyed: used up to exit
  return *p;
}

}  // namespace

HRESULT QVBancoSuite(std::shared_ptr<CQVBancoSuite>* ppBanco) {
  if (ppBanco == nullptr) return E_POINTER;
  BancoDoProcesso& b = Processo();
  std::lock_guard lock(b.mutex);
  const std::string sRaiz = QVRaizDados();
  const std::uint32_t uiProcesso = QVCurrentProcessId();
  if (b.pBanco && b.uiProcesso != uiProcesso) {
    // Inherited through fork: its connection and locks are the parent's.
    // Closing it here could disturb them; it is left unused.
    new std::shared_ptr<CQVBancoSuite>(std::move(b.pBanco));
  }
  if (!b.pBanco || b.sRaiz != sRaiz) {
    b.pBanco.reset();
    QV_CHECK(QVCreateDirectories(sRaiz));
    QV_CHECK(CQVBancoSuite::Abre(sRaiz, &b.pBanco));
    b.sRaiz = sRaiz;
    b.uiProcesso = uiProcesso;
  }
  *ppBanco = b.pBanco;
  return S_OK;
}

void QVDefineEsperaBancoSuite(int ms) { g_iEsperaMs.store(ms); }

int QVEsperaBancoSuite() { return g_iEsperaMs.load(); }

namespace {

bool SoAscii(const std::string& s) {
  for (unsigned char c : s)
    if (c >= 0x80) return false;
  return true;
}

}  // namespace

HRESULT QVProcuraEmpresaSuite(CQVBancoSuite& banco, const std::string& sEmpresa, QVEmpresaSuite* pEmpresa) {
  if (pEmpresa == nullptr) return E_POINTER;
  *pEmpresa = {};
  if (sEmpresa.empty()) return S_FALSE;
  const auto le = [&](const CQVComandoSuite& cmd) {
    pEmpresa->lPonteiro = static_cast<std::uint32_t>(cmd.Inteiro(0));
    pEmpresa->sNome = cmd.Texto(1);
    pEmpresa->sPasta = cmd.Texto(2);
    if (pEmpresa->sPasta.empty()) pEmpresa->sPasta = pEmpresa->sNome;
  };
  auto trava = banco.Trava();
  // The index finds the name as asked or differing in ASCII case; names
  // unique under NOCASE can differ otherwise only in other letters, which
  // are compared one company at a time.
  CQVComandoSuite cmd;
  QV_CHECK(banco.Prepara("SELECT ponteiro, nome, pasta FROM empresas WHERE nome = ?1", &cmd));
  bool bLinha = false;
  QV_CHECK(cmd.Liga(1, sEmpresa).Passo(&bLinha));
  if (bLinha) {
    le(cmd);
    return S_OK;
  }
  if (SoAscii(sEmpresa)) return S_FALSE;
  CQVComandoSuite todas;
  QV_CHECK(banco.Prepara("SELECT ponteiro, nome, pasta FROM empresas ORDER BY ponteiro", &todas));
  for (;;) {
    QV_CHECK(todas.Passo(&bLinha));
    if (!bLinha) return S_FALSE;
    if (QVIguaisSemCaixa(todas.Texto(1), sEmpresa)) {
      le(todas);
      return S_OK;
    }
  }
}
