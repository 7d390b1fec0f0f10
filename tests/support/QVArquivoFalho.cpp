#include "tests/support/QVArquivoFalho.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <map>
#include <mutex>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <utility>

namespace {

using Chave = std::pair<std::uint64_t, std::uint64_t>;  // device, inode

bool Falha(int n, int alvo, bool daiEmDiante) { return alvo > 0 && (n == alvo || (daiEmDiante && n > alvo)); }

std::string Conteudo(const std::string& caminho) {
  std::ifstream in(caminho, std::ios::binary);
  std::stringstream ss;
  ss << in.rdbuf();
  return ss.str();
}

}  // namespace

struct CQVArquivoFalho::Estado {
  QVPlanoFalhas plano;
  std::atomic<int> escritas{0};
  std::atomic<int> flushes{0};
  std::atomic<int> tamanhos{0};
  std::atomic<int> aberturas{0};
  std::atomic<int> falhas{0};
  std::atomic<int> operacoes{0};
  std::atomic<bool> caiu{false};
  // Per file: what it held at its last flush, where it was last seen, and
  // whether it was written since.
  std::mutex mutex;
  std::map<Chave, std::string> duraveis;
  std::map<Chave, std::string> caminhos;
  std::set<Chave> sujos;

  // One more operation; false when a crash stops it (the crash happens at
  // the planned one).
  bool Conta() {
    const int n = ++operacoes;
    if (caiu) return false;
    if (n != plano.iCrashNaOperacao) return true;
    std::lock_guard lock(mutex);
    for (const Chave& k : sujos) {
      QVFileIdentity id;
      const std::string& caminho = caminhos[k];
      if (SUCCEEDED(QVGetFileIdentity(caminho, &id)) && id.bExists && Chave{id.uiDevice, id.uiInode} == k)
        std::ofstream(caminho, std::ios::binary | std::ios::trunc) << duraveis[k];
    }
    caiu = true;
    return false;
  }

  void Conhece(const Chave& k, const std::string& caminho) {
    std::lock_guard lock(mutex);
    caminhos[k] = caminho;
    if (!duraveis.contains(k)) duraveis[k] = Conteudo(caminho);
  }
  void Suja(const Chave& k) {
    std::lock_guard lock(mutex);
    sujos.insert(k);
  }
  void Duravel(const Chave& k) {
    std::lock_guard lock(mutex);
    duraveis[k] = Conteudo(caminhos[k]);
    sujos.erase(k);
  }
  void Renomeia(const std::string& de, const std::string& para) {
    QVFileIdentity id;
    if (FAILED(QVGetFileIdentity(de, &id)) || !id.bExists) return;
    std::lock_guard lock(mutex);
    caminhos[{id.uiDevice, id.uiInode}] = para;
  }
};

namespace {

class CArquivoFalho final : public IQVOsFile {
 public:
  explicit CArquivoFalho(std::shared_ptr<CQVArquivoFalho::Estado> estado)
      : m_Real(QVCreateRealOsFile()), m_Estado(std::move(estado)) {}

  bool Open(const std::string& path, std::uint32_t flags) override {
    const QVPlanoFalhas& p = m_Estado->plano;
    if (!m_Estado->Conta()) return Injeta();
    if (Falha(++m_Estado->aberturas, p.iFalharAbertura, p.bFalharDaiEmDiante)) return Injeta();
    if (!Real(m_Real->Open(path, flags))) return false;
    QVFileIdentity id;
    if (m_Real->GetIdentity(&id)) {
      m_Chave = {id.uiDevice, id.uiInode};
      m_Estado->Conhece(m_Chave, m_Real->Path());
    }
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
    const QVPlanoFalhas& p = m_Estado->plano;
    if (!m_Estado->Conta()) return Injeta();
    m_Estado->Suja(m_Chave);
    if (Falha(++m_Estado->escritas, p.iFalharEscrita, p.bFalharDaiEmDiante)) {
      if (p.bEscritaParcial && n > 1) m_Real->Write(b, n / 2);
      return Injeta();
    }
    const bool ok = Real(m_Real->Write(b, n));
    if (p.iPausaAposEscritaMs > 0) std::this_thread::sleep_for(std::chrono::milliseconds(p.iPausaAposEscritaMs));
    return ok;
  }
  bool SetLength(std::uint64_t length) override {
    const QVPlanoFalhas& p = m_Estado->plano;
    if (!m_Estado->Conta()) return Injeta();
    m_Estado->Suja(m_Chave);
    if (Falha(++m_Estado->tamanhos, p.iFalharTamanho, p.bFalharDaiEmDiante)) return Injeta();
    return Real(m_Real->SetLength(length));
  }
  bool Flush() override {
    const QVPlanoFalhas& p = m_Estado->plano;
    if (!m_Estado->Conta()) return Injeta();
    if (Falha(++m_Estado->flushes, p.iFalharFlush, p.bFalharDaiEmDiante)) return Injeta();
    // The double decides what a crash keeps: the disk's own sync would only
    // slow the tests down.
    if (!m_Real->IsOpen()) return Real(m_Real->Flush());
    m_Estado->Duravel(m_Chave);
    return Real(true);
  }
  std::uint32_t LastError() const override { return m_ulErro; }

 private:
  bool Real(bool ok) {
    m_ulErro = ok ? 0 : m_Real->LastError();
    return ok;
  }
  bool Injeta() {
    ++m_Estado->falhas;
    m_ulErro = m_Estado->plano.ulErro;
    return false;
  }

  std::unique_ptr<IQVOsFile> m_Real;
  std::shared_ptr<CQVArquivoFalho::Estado> m_Estado;
  Chave m_Chave{};
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

int CQVArquivoFalho::Escritas() const { return m_Estado->escritas; }
int CQVArquivoFalho::Flushes() const { return m_Estado->flushes; }
int CQVArquivoFalho::Falhas() const { return m_Estado->falhas; }
int CQVArquivoFalho::Operacoes() const { return m_Estado->operacoes; }
bool CQVArquivoFalho::Caiu() const { return m_Estado->caiu; }
