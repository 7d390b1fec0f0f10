#include "df/qvlibex/CQVArqMarca.h"

#include <atomic>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "df/qvlibex/QVCodigos.h"
#include "platform/QVClock.h"

namespace {

// Read and write, no sharing, always creating: an existing (stale) file is
// opened and emptied; an open one is refused with a sharing violation.
constexpr std::uint32_t kAberturaMarca = QVFILE_MODE_READWRITE | QVFILE_SHARE_EXCLUSIVE | QVFILE_MODE_CREATE;

std::atomic<std::uint32_t> g_ulEsperaMs{CQVArqMarca::kEsperaPadraoMs};
std::atomic<std::uint32_t> g_ulPassoMs{CQVArqMarca::kPassoPadraoMs};

// The message number behind a code of the support library.
constexpr std::int32_t Mensagem(HRESULT hr) { return HRESULT_CODE(hr); }

// What a caller gets when the mark of `tipo` stayed held for the whole wait.
// Types without a message of their own share "mark unavailable".
std::int32_t MensagemOcupada(std::uint8_t tipo) {
  static constexpr std::int32_t kPorTipo[] = {
      Mensagem(E_QVDF_MARCA_TIPO1_OCUPADA), Mensagem(E_QVDF_MARCA_TIPO2_OCUPADA),
      Mensagem(E_QVDF_MARCA_TIPO3_OCUPADA), Mensagem(E_QVDF_MARCA_TIPO4_OCUPADA),
      Mensagem(E_QVDF_MARCA_TIPO5_OCUPADA), Mensagem(E_QVDF_MARCA_TIPO6_OCUPADA),
      Mensagem(E_QVDF_MARCA_ATENDIMENTO_OCUPADA)};
  if (tipo >= 1 && tipo <= std::size(kPorTipo)) return kPorTipo[tipo - 1];
  return Mensagem(E_QVDF_MARCA_INDISPONIVEL);
}

}  // namespace

CQVArqMarca::~CQVArqMarca() { Desmarca(); }

void CQVArqMarca::DefineEsperaParaTestes(std::uint32_t ulEsperaMs, std::uint32_t ulPassoMs) {
  g_ulEsperaMs = ulEsperaMs;
  g_ulPassoMs = ulPassoMs;
}

std::int32_t CQVArqMarca::Marca(const std::string& sPasta, std::uint8_t tipo, std::uint16_t /*usuario*/,
                                const std::string& /*modulo*/, const char* sufixo) {
  // Marking again would drop the handle, and with it the mark, for a moment.
  if (m_pArquivo) return Mensagem(E_QVDF_MARCA_INDISPONIVEL);

  // No folder is no place to mark (it would be the file system's root).
  if (sPasta.empty()) return HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND);
  // <folder>/XXMARCA<type><suffix>.dat; a folder that already ends with a
  // separator gets none of its own.
  const bool bTemSeparador = !sPasta.empty() && (sPasta.back() == '/' || sPasta.back() == '\\');
  char szRaiz[32];
  std::snprintf(szRaiz, sizeof szRaiz, "%sXXMARCA%d", bTemSeparador ? "" : "/", static_cast<int>(tipo));
  const std::size_t tamSufixo = sufixo != nullptr ? std::strlen(sufixo) : 0;
  m_sCaminho.clear();
  if (tamSufixo > kMaxCaminho || sPasta.size() + std::strlen(szRaiz) + tamSufixo + 4 > kMaxCaminho)
    return HRESULT_FROM_WIN32(ERROR_FILENAME_EXCED_RANGE);
  m_sCaminho = sPasta + szRaiz + (sufixo != nullptr ? sufixo : "") + ".dat";

  // Only a mark held by someone else is worth waiting for:
  //  - sharing violation: another handle holds it; after the wait, the
  //    type's "mark held" message;
  //  - access denied (a read-only file, a folder we may not write): it may
  //    pass, as a holder's does; after the wait, 16080;
  //  - any other failure (missing folder, bad name, disk full) ends at once
  //    with the platform error in status form, negative so that a caller's
  //    widening keeps it apart from the message numbers: waiting 50 s for
  //    a folder that does not exist helps no one.
  // The file layer never leaves a handle behind a failed open, so there is
  // no half-open handle to close.
  const std::uint32_t ulEspera = g_ulEsperaMs;
  const std::uint32_t ulPasso = g_ulPassoMs;
  const std::uint64_t inicio = GetTickCount64();
  std::unique_ptr<IQVOsFile> pArquivo = QVCreateOsFile();
  for (;;) {
    if (pArquivo->Open(m_sCaminho, kAberturaMarca)) {
      m_pArquivo = std::move(pArquivo);
      return 0;
    }
    const std::uint32_t ulErro = pArquivo->LastError();
    const bool bEsgotou = GetTickCount64() - inicio >= ulEspera;
    if (ulErro == ERROR_ACCESS_DENIED) {
      if (bEsgotou) return Mensagem(E_QVDF_MARCA_ACESSO_NEGADO);
    } else if (ulErro == ERROR_SHARING_VIOLATION || ulErro == ERROR_SUCCESS) {
      // A refusal without a reason is taken as the mark being held.
      if (bEsgotou) return MensagemOcupada(tipo);
    } else {
      return HRESULT_FROM_WIN32(ulErro);
    }
    Sleep(ulPasso);
  }
}

std::int32_t CQVArqMarca::Desmarca(bool /*bFlag*/) {
  if (m_pArquivo) {
    m_pArquivo->Close();
    m_pArquivo.reset();
  }
  // Whatever the deletion answers is of no interest: a file another handle
  // holds open is that holder's mark and must survive; a missing one (never
  // marked, or already unmarked) is what we want.
  if (!m_sCaminho.empty()) static_cast<void>(QVDeleteFile(m_sCaminho));
  return 0;
}
