#include "platform/QVSocket.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "platform/QVOsFile.h"

namespace {

constexpr int kFila = 128;  // connections the system queues for accept

// The Win32 error of a socket call's errno.
std::uint32_t ErroSocket(int e) {
  switch (e) {
    case EADDRINUSE: return WSAEADDRINUSE;
    case EADDRNOTAVAIL: return WSAEADDRNOTAVAIL;
    default: return QVWin32ErrorFromErrno(e);
  }
}

HRESULT Falha(int e) { return HRESULT_FROM_WIN32(ErroSocket(e)); }

bool EnderecoUnix(const std::string& caminho, sockaddr_un* pEnd) {
  std::memset(pEnd, 0, sizeof *pEnd);
  pEnd->sun_family = AF_UNIX;
  if (caminho.empty() || caminho.size() > QVMaxUnixSocketPath()) return false;
  std::memcpy(pEnd->sun_path, caminho.c_str(), caminho.size());
  return true;
}

// Whether a server answers on the socket at the path: false also when the
// probe itself cannot be made (then the bind that follows reports why).
bool Atende(const sockaddr_un& end) {
  const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (fd < 0) return false;
  const bool vivo = ::connect(fd, reinterpret_cast<const sockaddr*>(&end), sizeof end) == 0;
  ::close(fd);
  return vivo;
}

bool EhLoopback(const sockaddr* sa) {
  if (sa->sa_family == AF_INET)
    return (ntohl(reinterpret_cast<const sockaddr_in*>(sa)->sin_addr.s_addr) >> 24) == 127;
  if (sa->sa_family != AF_INET6) return false;
  const in6_addr& a = reinterpret_cast<const sockaddr_in6*>(sa)->sin6_addr;
  if (IN6_IS_ADDR_LOOPBACK(&a)) return true;
  return IN6_IS_ADDR_V4MAPPED(&a) && a.s6_addr[12] == 127;
}

std::string TextoNumerico(const sockaddr* sa, socklen_t tamanho) {
  char host[NI_MAXHOST] = {};
  char porta[NI_MAXSERV] = {};
  if (::getnameinfo(sa, tamanho, host, sizeof host, porta, sizeof porta, NI_NUMERICHOST | NI_NUMERICSERV) != 0)
    return "?";
  return sa->sa_family == AF_INET6 ? "[" + std::string(host) + "]:" + porta : std::string(host) + ":" + porta;
}

}  // namespace

CQVSocket::~CQVSocket() {
  if (m_s >= 0) ::close(m_s);
}

CQVSocket& CQVSocket::operator=(CQVSocket&& o) noexcept {
  if (this != &o) {
    if (m_s >= 0) ::close(m_s);
    m_s = std::exchange(o.m_s, kQVSocketInvalido);
  }
  return *this;
}

std::size_t QVMaxUnixSocketPath() { return sizeof(sockaddr_un::sun_path) - 1; }

HRESULT QVListenUnix(const std::string& caminho, std::uint32_t modo, CQVSocket* pSocket) {
  sockaddr_un end;
  if (!EnderecoUnix(caminho, &end))
    return HRESULT_FROM_WIN32(caminho.empty() ? ERROR_INVALID_NAME : ERROR_FILENAME_EXCED_RANGE);
  struct stat info {};
  if (::lstat(caminho.c_str(), &info) == 0) {
    if (!S_ISSOCK(info.st_mode)) return HRESULT_FROM_WIN32(ERROR_FILE_EXISTS);
    if (Atende(end)) return HRESULT_FROM_WIN32(WSAEADDRINUSE);
    if (::unlink(caminho.c_str()) != 0 && errno != ENOENT) return Falha(errno);
  }
  CQVSocket s(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  if (s.Get() < 0) return Falha(errno);
  // bind makes the file with the umask applied: the mask is set so that
  // the socket is never wider than modo, then chmod gives it exactly modo.
  const mode_t anterior = ::umask(~static_cast<mode_t>(modo) & 0777);
  const int rBind = ::bind(s.Get(), reinterpret_cast<const sockaddr*>(&end), sizeof end);
  const int eBind = errno;
  ::umask(anterior);
  if (rBind != 0) return Falha(eBind);
  if (::chmod(caminho.c_str(), static_cast<mode_t>(modo)) != 0 || ::listen(s.Get(), kFila) != 0) {
    const int e = errno;
    ::unlink(caminho.c_str());
    return Falha(e);
  }
  *pSocket = std::move(s);
  return S_OK;
}

HRESULT QVResolveTcp(const std::string& host, const std::string& porta, QVEnderecoTcp* pEndereco) {
  *pEndereco = QVEnderecoTcp{};
  if (porta.empty() || porta.size() > 5 || porta.find_first_not_of("0123456789") != std::string::npos ||
      std::stoul(porta) > 65535)
    return HRESULT_FROM_WIN32(ERROR_INVALID_PARAMETER);
  addrinfo dica{};
  dica.ai_family = AF_UNSPEC;
  dica.ai_socktype = SOCK_STREAM;
  dica.ai_flags = AI_PASSIVE | AI_NUMERICSERV;
  addrinfo* lista = nullptr;
  const bool todas = host.empty() || host == "*";
  if (todas) dica.ai_family = AF_INET;
  const int r = ::getaddrinfo(todas ? nullptr : host.c_str(), porta.c_str(), &dica, &lista);
  if (r != 0) {
    if (r == EAI_SYSTEM) return Falha(errno);
    if (r == EAI_MEMORY) return HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_MEMORY);
    return HRESULT_FROM_WIN32(WSAHOST_NOT_FOUND);
  }
  const addrinfo* a = lista;
  if (a->ai_addrlen > sizeof pEndereco->bytes) {
    ::freeaddrinfo(lista);
    return HRESULT_FROM_WIN32(ERROR_INVALID_PARAMETER);
  }
  std::memcpy(pEndereco->bytes, a->ai_addr, a->ai_addrlen);
  pEndereco->ulTamanho = static_cast<std::uint32_t>(a->ai_addrlen);
  pEndereco->bLoopback = EhLoopback(a->ai_addr);
  pEndereco->sTexto = TextoNumerico(a->ai_addr, a->ai_addrlen);
  ::freeaddrinfo(lista);
  return S_OK;
}

HRESULT QVListenTcp(const QVEnderecoTcp& endereco, CQVSocket* pSocket, std::uint16_t* pPorta) {
  const auto* sa = reinterpret_cast<const sockaddr*>(endereco.bytes);
  if (endereco.ulTamanho == 0) return HRESULT_FROM_WIN32(ERROR_INVALID_PARAMETER);
  CQVSocket s(::socket(sa->sa_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
  if (s.Get() < 0) return Falha(errno);
  const int um = 1;
  if (::setsockopt(s.Get(), SOL_SOCKET, SO_REUSEADDR, &um, sizeof um) != 0) return Falha(errno);
  if (::bind(s.Get(), sa, endereco.ulTamanho) != 0 || ::listen(s.Get(), kFila) != 0) return Falha(errno);
  sockaddr_storage ligado{};
  socklen_t tamanho = sizeof ligado;
  if (::getsockname(s.Get(), reinterpret_cast<sockaddr*>(&ligado), &tamanho) != 0) return Falha(errno);
  *pPorta = ntohs(ligado.ss_family == AF_INET6 ? reinterpret_cast<const sockaddr_in6*>(&ligado)->sin6_port
                                               : reinterpret_cast<const sockaddr_in*>(&ligado)->sin_port);
  *pSocket = std::move(s);
  return S_OK;
}

HRESULT QVAcceptConnection(QVSocket escuta, CQVSocket* pNovo) {
  for (;;) {
    const int fd = ::accept4(escuta, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (fd >= 0) {
      *pNovo = CQVSocket(fd);
      return S_OK;
    }
    switch (errno) {
      case EAGAIN:
#if EWOULDBLOCK != EAGAIN
      case EWOULDBLOCK:
#endif
        return S_FALSE;
      // The connection at the head of the queue broke before it was taken,
      // or the call was interrupted: the next one may be fine.
      case EINTR:
      case ECONNABORTED:
      case EPROTO:
      case ENETDOWN:
      case ENETUNREACH:
      case EHOSTDOWN:
      case EHOSTUNREACH:
      case ETIMEDOUT:
        continue;
      default:
        return Falha(errno);
    }
  }
}

HRESULT QVRemoveUnixSocket(const std::string& caminho) {
  struct stat info {};
  if (::lstat(caminho.c_str(), &info) != 0) return errno == ENOENT ? S_OK : Falha(errno);
  if (!S_ISSOCK(info.st_mode)) return HRESULT_FROM_WIN32(ERROR_FILE_EXISTS);
  if (::unlink(caminho.c_str()) != 0 && errno != ENOENT) return Falha(errno);
  return S_OK;
}

void QVIgnoreBrokenPipe() { std::signal(SIGPIPE, SIG_IGN); }
