#include "core/qvdatabase/CQVDiario.h"

#include <cstring>
#include <map>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVCrc64.h"
#include "df/qvlibex/QVLog.h"
#include "df/qvlibex/QVProfilerEmpresa.h"

namespace {

constexpr char kMagia[8] = {'Q', 'V', 'D', 'I', 'A', 'R', 'I', 'O'};
constexpr std::uint32_t kVersao = 1;
constexpr std::uint32_t kMarcaTransacao = 0x314E5254;  // "TRN1"
constexpr std::size_t kTamanhoCabecalhoTransacao = 32;
constexpr std::size_t kTamanhoCabecalhoEscrita = 24;
constexpr const char* kFonte = "core/qvdatabase/CQVDiario";

template <class T>
void Poe(std::string& s, T v) {
  s.append(reinterpret_cast<const char*>(&v), sizeof v);
}

template <class T>
T Tira(const std::string& s, std::size_t o) {
  T v;
  std::memcpy(&v, s.data() + o, sizeof v);
  return v;
}

HRESULT FalhaDoArquivo(const IQVOsFile& f) {
  const std::uint32_t e = f.LastError();
  return e != 0 ? HRESULT_FROM_WIN32(e) : E_FAIL;
}

// A write's name stays inside the journal's folder.
bool NomeValido(const std::string& s) {
  return !s.empty() && s.size() <= 255 && s.find('/') == std::string::npos && s != "." && s != "..";
}

}  // namespace

// The failing platform call, logged as written, and its status returned.
#define QV_CHECK_DIARIO(arquivo, expr)                                                              \
  do {                                                                                              \
    if (!(expr)) {                                                                                  \
      const HRESULT hrFalha = FalhaDoArquivo(arquivo);                                              \
      QVLogaFalhaHr(QV_LOCAL, #expr, hrFalha, {{"sDiretorio", m_sDiretorio}});                      \
      return hrFalha;                                                                               \
    }                                                                                               \
  } while (0)

CQVDiario::CQVDiario(std::string sDiretorio) : m_sDiretorio(std::move(sDiretorio)) {}

CQVDiario::~CQVDiario() { Fecha(); }

void CQVDiario::Fecha() {
  if (m_pArquivo) m_pArquivo->Close();
  m_pArquivo.reset();
}

HRESULT CQVDiario::Abre(QVRecuperacaoDiario* pRecuperacao) {
  QVRecuperacaoDiario r;
  m_pArquivo = QVCreateOsFile();
  QV_CHECK_DIARIO(*m_pArquivo, m_pArquivo->Open(m_sDiretorio + "/" + kQVNomeArquivoDiario,
                                                QVFILE_MODE_READWRITE | QVFILE_SHARE_DENY_WRITE |
                                                    QVFILE_MODE_CREATE | QVFILE_MODE_NO_TRUNCATE));
  QV_CHECK(Recupera(&r));
  if (pRecuperacao != nullptr) *pRecuperacao = r;
  return S_OK;
}

HRESULT CQVDiario::GravaCabecalho() {
  std::string c(kMagia, sizeof kMagia);
  Poe(c, kVersao);
  Poe(c, std::uint32_t{0});
  Poe(c, m_uiGeracao);
  Poe(c, QVCrc64(c.data(), c.size()));
  QV_CHECK_DIARIO(*m_pArquivo, m_pArquivo->Seek(0));
  QV_CHECK_DIARIO(*m_pArquivo, m_pArquivo->Write(c.data(), c.size()));
  return S_OK;
}

HRESULT CQVDiario::Esvazia() {
  if (!m_pArquivo) QV_RETURN(E_UNEXPECTED);
  // Cut first: a crash between the two leaves the old generation's header
  // with nothing after it, or the new one; never old transactions under a
  // header that would take them.
  QV_CHECK_DIARIO(*m_pArquivo, m_pArquivo->SetLength(kTamanhoCabecalho));
  ++m_uiGeracao;
  QV_CHECK(GravaCabecalho());
  QV_CHECK_DIARIO(*m_pArquivo, m_pArquivo->Flush());
  m_uiSequencia = 0;
  m_uiFim = kTamanhoCabecalho;
  return S_OK;
}

HRESULT CQVDiario::Confirma(const std::vector<QVEscritaDiario>& escritas) {
  if (!m_pArquivo) QV_RETURN(E_UNEXPECTED);
  std::string corpo;
  for (const QVEscritaDiario& e : escritas) {
    if (!NomeValido(e.sArquivo)) {
      QVLogaFalhaHr(QV_LOCAL, "NomeValido(e.sArquivo)", E_INVALIDARG, {{"sArquivo", e.sArquivo}});
      return E_INVALIDARG;
    }
    Poe(corpo, static_cast<std::uint8_t>(e.eTipo));
    Poe(corpo, std::uint8_t{0});
    Poe(corpo, static_cast<std::uint16_t>(e.sArquivo.size()));
    Poe(corpo, std::uint32_t{0});
    Poe(corpo, e.uiOffset);
    Poe(corpo, static_cast<std::uint64_t>(e.dados.size()));
    corpo += e.sArquivo;
    corpo += e.dados;
  }
  std::string t;
  Poe(t, kMarcaTransacao);
  Poe(t, static_cast<std::uint32_t>(escritas.size()));
  Poe(t, m_uiGeracao);
  Poe(t, m_uiSequencia + 1);
  Poe(t, static_cast<std::uint64_t>(corpo.size()));
  t += corpo;
  Poe(t, QVCrc64(t.data(), t.size()));
  const bool bGravou = m_pArquivo->Seek(m_uiFim) && m_pArquivo->Write(t.data(), t.size()) && m_pArquivo->Flush();
  if (!bGravou) {
    const HRESULT hr = FalhaDoArquivo(*m_pArquivo);
    QVLogaFalhaHr(QV_LOCAL, "m_pArquivo->Write(t.data(), t.size()) && m_pArquivo->Flush()", hr,
                  {{"sDiretorio", m_sDiretorio}});
    // Whatever reached the file fails its checksum or is cut here.
    static_cast<void>(m_pArquivo->SetLength(m_uiFim));
    return hr;
  }
  ++m_uiSequencia;
  m_uiFim += t.size();
  return S_OK;
}

HRESULT CQVDiario::Aplica(const std::string& corpo, std::uint32_t uiEscritas, QVRecuperacaoDiario* pRecuperacao) {
  std::map<std::string, std::unique_ptr<IQVOsFile>> abertos;
  std::size_t o = 0;
  for (std::uint32_t i = 0; i < uiEscritas; ++i) {
    const auto eTipo = static_cast<QVEscritaDiario::Tipo>(Tira<std::uint8_t>(corpo, o));
    const auto nNome = Tira<std::uint16_t>(corpo, o + 2);
    const auto uiOffset = Tira<std::uint64_t>(corpo, o + 8);
    const auto nDados = Tira<std::uint64_t>(corpo, o + 16);
    const std::string sNome = corpo.substr(o + kTamanhoCabecalhoEscrita, nNome);
    const char* pDados = corpo.data() + o + kTamanhoCabecalhoEscrita + nNome;
    o += kTamanhoCabecalhoEscrita + nNome + nDados;
    auto& pArquivo = abertos[sNome];
    if (!pArquivo) {
      pArquivo = QVCreateOsFile();
      if (!pArquivo->Open(m_sDiretorio + "/" + sNome,
                          QVFILE_MODE_READWRITE | QVFILE_SHARE_DENY_WRITE | QVFILE_MODE_NO_TRUNCATE)) {
        const HRESULT hr = FalhaDoArquivo(*pArquivo);
        if (hr != HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)) {
          QVLogaFalhaHr(QV_LOCAL, "pArquivo->Open(m_sDiretorio + \"/\" + sNome)", hr, {{"sArquivo", sNome}});
          return hr;
        }
        // Deleted after its writes reached it (deletions and renames come
        // after a checkpoint): nothing to bring back.
        ++pRecuperacao->uiEscritasSemArquivo;
        QVEscreveLinhaErroTexto(QVSinkAtual(), "CQVDiario::Aplica", kFonte, __LINE__,
                                "Escrita do diário para um arquivo que não existe mais ignorada",
                                {{"sDiretorio", m_sDiretorio}, {"sArquivo", sNome}});
        pArquivo.reset();
        abertos.erase(sNome);
        continue;
      }
    }
    if (eTipo == QVEscritaDiario::Tipo::Tamanho) {
      QV_CHECK_DIARIO(*pArquivo, pArquivo->SetLength(uiOffset));
    } else {
      QV_CHECK_DIARIO(*pArquivo, pArquivo->Seek(uiOffset));
      QV_CHECK_DIARIO(*pArquivo, pArquivo->Write(pDados, static_cast<std::size_t>(nDados)));
    }
  }
  for (auto& [sNome, pArquivo] : abertos) QV_CHECK_DIARIO(*pArquivo, pArquivo->Flush());
  return S_OK;
}

HRESULT CQVDiario::Recupera(QVRecuperacaoDiario* pRecuperacao) {
  *pRecuperacao = QVRecuperacaoDiario{};
  if (!m_pArquivo) QV_RETURN(E_UNEXPECTED);
  std::uint64_t uiTamanho = 0;
  QV_CHECK_DIARIO(*m_pArquivo, m_pArquivo->GetLength(&uiTamanho));
  if (uiTamanho > kTamanhoMaximo) {
    QVLogaFalhaHr(QV_LOCAL, "uiTamanho > kTamanhoMaximo", E_QVCR_TAMANHO_ARQUIVO_NAO_CONFERE,
                  {{"sDiretorio", m_sDiretorio}, {"uiTamanho", std::to_string(uiTamanho)}});
    return E_QVCR_TAMANHO_ARQUIVO_NAO_CONFERE;
  }
  std::string d(static_cast<std::size_t>(uiTamanho), '\0');
  std::size_t nLido = 0;
  QV_CHECK_DIARIO(*m_pArquivo, m_pArquivo->Seek(0));
  for (std::size_t n = 1; nLido < d.size() && n != 0; nLido += n)
    QV_CHECK_DIARIO(*m_pArquivo, m_pArquivo->Read(d.data() + nLido, d.size() - nLido, &n));
  d.resize(nLido);

  // A header that is missing or torn (its creation, or an emptying, cut
  // short) holds nothing: whatever follows it was applied before the
  // emptying began.
  const bool bCabecalho = d.size() >= kTamanhoCabecalho && std::memcmp(d.data(), kMagia, sizeof kMagia) == 0 &&
                          Tira<std::uint32_t>(d, 8) == kVersao && Tira<std::uint64_t>(d, 24) == QVCrc64(d.data(), 24);
  m_uiGeracao = bCabecalho ? Tira<std::uint64_t>(d, 16) : 0;
  std::size_t o = bCabecalho ? kTamanhoCabecalho : 0;
  for (std::uint64_t uiSequencia = 1; bCabecalho; ++uiSequencia) {
    if (d.size() - o < kTamanhoCabecalhoTransacao + 8) break;
    const auto uiEscritas = Tira<std::uint32_t>(d, o + 4);
    const auto uiCorpo = Tira<std::uint64_t>(d, o + 24);
    if (Tira<std::uint32_t>(d, o) != kMarcaTransacao || Tira<std::uint64_t>(d, o + 8) != m_uiGeracao ||
        Tira<std::uint64_t>(d, o + 16) != uiSequencia || uiCorpo > d.size() - o - kTamanhoCabecalhoTransacao - 8)
      break;
    const std::size_t nTransacao = kTamanhoCabecalhoTransacao + static_cast<std::size_t>(uiCorpo);
    if (Tira<std::uint64_t>(d, o + nTransacao) != QVCrc64(d.data() + o, nTransacao)) break;
    // The body must hold exactly its writes, each with a name of the folder.
    const std::string corpo = d.substr(o + kTamanhoCabecalhoTransacao, static_cast<std::size_t>(uiCorpo));
    std::size_t p = 0;
    bool bCorpoValido = true;
    for (std::uint32_t i = 0; i < uiEscritas && bCorpoValido; ++i) {
      if (corpo.size() - p < kTamanhoCabecalhoEscrita) {
        bCorpoValido = false;
        break;
      }
      const auto eTipo = Tira<std::uint8_t>(corpo, p);
      const auto nNome = Tira<std::uint16_t>(corpo, p + 2);
      const auto nDados = Tira<std::uint64_t>(corpo, p + 16);
      const std::size_t nResto = corpo.size() - p - kTamanhoCabecalhoEscrita;
      bCorpoValido = (eTipo == 1 || eTipo == 2) && nNome <= nResto && nDados <= nResto - nNome &&
                     NomeValido(corpo.substr(p + kTamanhoCabecalhoEscrita, nNome));
      p += kTamanhoCabecalhoEscrita + nNome + static_cast<std::size_t>(nDados);
    }
    if (!bCorpoValido || p != corpo.size()) break;
    QV_CHECK(Aplica(corpo, uiEscritas, pRecuperacao));
    ++pRecuperacao->uiTransacoes;
    o += nTransacao + 8;
  }
  pRecuperacao->uiBytesDescartados = d.size() - o;
  if (pRecuperacao->uiBytesDescartados != 0)
    QVEscreveLinhaErroTexto(QVSinkAtual(), "CQVDiario::Recupera", kFonte, __LINE__,
                            "Final do diário incompleto ou danificado descartado (transação não confirmada)",
                            {{"sDiretorio", m_sDiretorio},
                             {"uiBytesDescartados", std::to_string(pRecuperacao->uiBytesDescartados)}});
  QV_CHECK(Esvazia());
  return S_OK;
}
