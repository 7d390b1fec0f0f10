#include "tests/support/QVArquivoFalho.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <thread>

#include "tests/support/QVTestSupport.h"

struct CQVArquivoFalho::Estado {
  QVPlanoFalhas plano;
  std::atomic<int> escritas{0}, flushes{0}, tamanhos{0}, aberturas{0}, falhas{0}, operacoes{0};
  std::atomic<bool> caiu{false};
  // Per path: what the file held at its last flush (or when first opened),
  // and whether it was written since.
  std::mutex mutex;
  std::map<std::string, std::pair<std::string, bool>> duraveis;

  enum Evento { kAbriu, kEscreveu, kSincronizou };
  void Registra(const std::string& caminho, Evento e) {
    std::lock_guard lock(mutex);
    const auto [it, bNovo] = duraveis.try_emplace(caminho);
    if (bNovo || e == kSincronizou) it->second.first = QVTesteLeArquivo(caminho);
    it->second.second = e == kEscreveu || (e == kAbriu && !bNovo && it->second.second);
  }
  // Renames are synced: the file keeps what it held, under its new name.
  void Renomeia(const std::string& de, const std::string& para) {
    std::lock_guard lock(mutex);
    if (auto no = duraveis.extract(de)) duraveis.insert_or_assign(para, std::move(no.mapped()));
  }
  // One more operation; false when a crash stops it (the crash happens at
  // the planned one).
  bool Conta() {
    if (caiu || ++operacoes != plano.iCrashNaOperacao) return !caiu;
    std::lock_guard lock(mutex);
    for (const auto& [caminho, d] : duraveis)
      if (plano.bCrashPerdeNaoSincronizado && d.second && std::filesystem::exists(caminho))
        std::ofstream(caminho, std::ios::binary | std::ios::trunc) << d.first;
    caiu = true;
    return false;
  }
};

namespace {

bool Falha(int n, int alvo, bool daiEmDiante) { return alvo > 0 && (n == alvo || (daiEmDiante && n > alvo)); }

class CArquivoFalho final : public IQVOsFile {
 public:
  explicit CArquivoFalho(std::shared_ptr<CQVArquivoFalho::Estado> estado)
      : m_Real(QVCreateRealOsFile()), m_Estado(std::move(estado)) {}

  bool Open(const std::string& path, std::uint32_t flags) override {
    if (!m_Estado->Conta() || Falha(++m_Estado->aberturas, Plano().iFalharAbertura, Plano().bFalharDaiEmDiante))
      return Injeta();
    if (!Real(m_Real->Open(path, flags))) return false;
    m_Estado->Registra(m_Real->Path(), CQVArquivoFalho::Estado::kAbriu);
    return true;
  }
  void Close() override { m_Real->Close(); }
  bool IsOpen() const override { return m_Real->IsOpen(); }
  const std::string& Path() const override { return m_Real->Path(); }
  bool Seek(std::uint64_t offset) override { return Real(m_Real->Seek(offset)); }
  bool SeekToEnd(std::uint64_t* p) override { return Real(m_Real->SeekToEnd(p)); }
  std::uint64_t Position() const override { return m_Real->Position(); }
  bool Read(void* b, std::size_t n, std::size_t* pRead) override { return Real(m_Real->Read(b, n, pRead)); }
  bool GetLength(std::uint64_t* p) override { return Real(m_Real->GetLength(p)); }
  bool GetIdentity(QVFileIdentity* p) override { return Real(m_Real->GetIdentity(p)); }
  bool LockContent(bool b, std::uint32_t ms) override { return Real(m_Real->LockContent(b, ms)); }
  void UnlockContent() override { m_Real->UnlockContent(); }

  bool Write(const void* b, std::size_t n) override {
    if (!m_Estado->Conta()) return Injeta();
    m_Estado->Registra(m_Real->Path(), CQVArquivoFalho::Estado::kEscreveu);
    if (Falha(++m_Estado->escritas, Plano().iFalharEscrita, Plano().bFalharDaiEmDiante)) {
      if (Plano().bEscritaParcial && n > 1) m_Real->Write(b, n / 2);
      return Injeta();
    }
    const bool ok = Real(m_Real->Write(b, n));
    std::this_thread::sleep_for(std::chrono::milliseconds(Plano().iPausaAposEscritaMs));
    return ok;
  }
  bool SetLength(std::uint64_t length) override {
    if (!m_Estado->Conta()) return Injeta();
    m_Estado->Registra(m_Real->Path(), CQVArquivoFalho::Estado::kEscreveu);
    if (Falha(++m_Estado->tamanhos, Plano().iFalharTamanho, Plano().bFalharDaiEmDiante)) return Injeta();
    return Real(m_Real->SetLength(length));
  }
  // The double decides what a crash keeps: the disk's own sync would only
  // slow the tests down.
  bool Flush() override {
    if (!m_Estado->Conta() || Falha(++m_Estado->flushes, Plano().iFalharFlush, Plano().bFalharDaiEmDiante))
      return Injeta();
    if (!m_Real->IsOpen()) return Real(m_Real->Flush());
    m_Estado->Registra(m_Real->Path(), CQVArquivoFalho::Estado::kSincronizou);
    return Real(true);
  }
  std::uint32_t LastError() const override { return m_ulErro; }

 private:
  const QVPlanoFalhas& Plano() const { return m_Estado->plano; }
  bool Real(bool ok) {
    m_ulErro = ok ? 0 : m_Real->LastError();
    return ok;
  }
  bool Injeta() {
    ++m_Estado->falhas;
    m_ulErro = Plano().ulErro;
    return false;
  }

  std::unique_ptr<IQVOsFile> m_Real;
  std::shared_ptr<CQVArquivoFalho::Estado> m_Estado;
  std::uint32_t m_ulErro = 0;
};

}  // namespace

CQVArquivoFalho::CQVArquivoFalho(const QVPlanoFalhas& plano) : m_Estado(std::make_shared<Estado>()) {
  m_Estado->plano = plano;
  auto estado = m_Estado;
  QVSetOsFileFactory([estado] { return std::make_unique<CArquivoFalho>(estado); });
  QVSetOsNameHook([estado](const std::string& de, const std::string& para) -> std::uint32_t {
    if (!estado->Conta()) return estado->plano.ulErro;
    if (!para.empty()) estado->Renomeia(de, para);
    return 0;
  });
}

CQVArquivoFalho::~CQVArquivoFalho() {
  QVSetOsNameHook({});
  QVSetOsFileFactory({});
}

int CQVArquivoFalho::Falhas() const { return m_Estado->falhas; }
int CQVArquivoFalho::Operacoes() const { return m_Estado->operacoes; }
bool CQVArquivoFalho::Caiu() const { return m_Estado->caiu; }
