#include "platform/QVLogFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/QVOsFile.h"

namespace {

constexpr mode_t kModoPasta = 0750;
constexpr mode_t kModoArquivo = 0640;

HRESULT HrDoErrno(int e) { return HRESULT_FROM_WIN32(QVWin32ErrorFromErrno(e)); }

// Every missing folder of the path, parents first. A folder that exists
// (made by another process in between, too) is left as it is; a file in a
// folder's place fails the open that follows, with its own cause.
HRESULT CriaPastas(const std::string& sPasta) {
  if (::mkdir(sPasta.c_str(), kModoPasta) == 0 || errno == EEXIST) return S_OK;
  if (errno != ENOENT) return HrDoErrno(errno);
  const std::size_t barra = sPasta.find_last_of('/');
  if (barra == std::string::npos || barra == 0) return HrDoErrno(ENOENT);
  if (const HRESULT hr = CriaPastas(sPasta.substr(0, barra)); FAILED(hr)) return hr;
  if (::mkdir(sPasta.c_str(), kModoPasta) == 0 || errno == EEXIST) return S_OK;
  return HrDoErrno(errno);
}

HRESULT GravaTudo(int fd, std::string_view s) {
  while (!s.empty()) {
    const ssize_t n = ::write(fd, s.data(), s.size());
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return HrDoErrno(errno);
    if (n == 0) return HRESULT_FROM_WIN32(ERROR_WRITE_FAULT);
    s.remove_prefix(static_cast<std::size_t>(n));
  }
  return S_OK;
}

HRESULT Acrescenta(int fd, std::string_view sCabecalho, std::string_view sLinha) {
  // An open-file-description lock: released when this descriptor closes,
  // never by another descriptor of the same process.
  struct flock trava {};
  trava.l_type = F_WRLCK;
  trava.l_whence = SEEK_SET;
  while (::fcntl(fd, F_OFD_SETLKW, &trava) != 0)
    if (errno != EINTR) return HrDoErrno(errno);
  struct stat info {};
  if (::fstat(fd, &info) != 0) return HrDoErrno(errno);
  if (info.st_size == 0)
    if (const HRESULT hr = GravaTudo(fd, sCabecalho); FAILED(hr)) return hr;
  return GravaTudo(fd, sLinha);
}

}  // namespace

HRESULT QVAppendLogRecord(const std::string& sCaminho, std::string_view sCabecalho, std::string_view sLinha) {
  const std::size_t barra = sCaminho.find_last_of('/');
  if (barra != std::string::npos && barra > 0)
    if (const HRESULT hr = CriaPastas(sCaminho.substr(0, barra)); FAILED(hr)) return hr;
  int fd;
  do {
    fd = ::open(sCaminho.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, kModoArquivo);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0) return HrDoErrno(errno);
  const HRESULT hr = Acrescenta(fd, sCabecalho, sLinha);
  ::close(fd);
  return hr;
}
