#include "tests/support/QVArquivoFalho.h"

namespace {

bool Falha(int n, int alvo, bool daiEmDiante) { return alvo > 0 && (n == alvo || (daiEmDiante && n > alvo)); }

class CArquivoFalho final : public IQVOsFile {
 public:
  explicit CArquivoFalho(std::shared_ptr<CQVArquivoFalho::Estado> estado)
      : m_Real(QVCreateRealOsFile()), m_Estado(std::move(estado)) {}

  bool Open(const std::string& path, std::uint32_t flags) override { return Real(m_Real->Open(path, flags)); }
  void Close() override { m_Real->Close(); }
  bool IsOpen() const override { return m_Real->IsOpen(); }
  const std::string& Path() const override { return m_Real->Path(); }
  bool Seek(std::uint64_t offset) override { return Real(m_Real->Seek(offset)); }
  bool SeekToEnd(std::uint64_t* p) override { return Real(m_Real->SeekToEnd(p)); }
  std::uint64_t Position() const override { return m_Real->Position(); }
  bool Read(void* b, std::size_t n, std::size_t* pRead) override { return Real(m_Real->Read(b, n, pRead)); }
  bool GetLength(std::uint64_t* p) override { return Real(m_Real->GetLength(p)); }

  bool Write(const void* b, std::size_t n) override {
    const QVPlanoFalhas& p = m_Estado->plano;
    if (Falha(++m_Estado->escritas, p.iFalharEscrita, p.bFalharDaiEmDiante)) {
      if (p.bEscritaParcial && n > 1) m_Real->Write(b, n / 2);
      return Injeta();
    }
    return Real(m_Real->Write(b, n));
  }
  bool SetLength(std::uint64_t length) override {
    const QVPlanoFalhas& p = m_Estado->plano;
    if (Falha(++m_Estado->tamanhos, p.iFalharTamanho, p.bFalharDaiEmDiante)) return Injeta();
    return Real(m_Real->SetLength(length));
  }
  bool Flush() override {
    const QVPlanoFalhas& p = m_Estado->plano;
    if (Falha(++m_Estado->flushes, p.iFalharFlush, p.bFalharDaiEmDiante)) return Injeta();
    return Real(m_Real->Flush());
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
  std::uint32_t m_ulErro = 0;
};

}  // namespace

CQVArquivoFalho::CQVArquivoFalho(const QVPlanoFalhas& plano) : m_Estado(std::make_shared<Estado>()) {
  m_Estado->plano = plano;
  auto estado = m_Estado;
  QVSetOsFileFactory([estado] { return std::make_unique<CArquivoFalho>(estado); });
}

CQVArquivoFalho::~CQVArquivoFalho() { QVSetOsFileFactory({}); }
