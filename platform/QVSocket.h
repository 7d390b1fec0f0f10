// The server's sockets: listening on a Unix socket or a TCP address and
// accepting connections. A socket is the system's descriptor; once accepted
// it is handed to the event loop, which does the reads and the writes.
//
// Failures keep their cause: the errno of the failing call as a Win32 error
// (QVWin32ErrorFromErrno), with the socket errors that have no file-error
// twin under their own numbers (WSAEADDRINUSE, WSAEADDRNOTAVAIL,
// WSAHOST_NOT_FOUND).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

#include "platform/QVHResult.h"

using QVSocket = int;
inline constexpr QVSocket kQVSocketInvalido = -1;

// Owns a socket: closed when it goes, unless Solta() handed it on.
class CQVSocket {
 public:
  CQVSocket() = default;
  explicit CQVSocket(QVSocket s) : m_s(s) {}
  ~CQVSocket();
  CQVSocket(CQVSocket&& o) noexcept : m_s(std::exchange(o.m_s, kQVSocketInvalido)) {}
  CQVSocket& operator=(CQVSocket&& o) noexcept;
  CQVSocket(const CQVSocket&) = delete;
  CQVSocket& operator=(const CQVSocket&) = delete;

  QVSocket Get() const { return m_s; }
  QVSocket Solta() { return std::exchange(m_s, kQVSocketInvalido); }

 private:
  QVSocket m_s = kQVSocketInvalido;
};

// The longest Unix socket path the system takes, in bytes.
std::size_t QVMaxUnixSocketPath();

// Listens on a Unix socket at `caminho`, which is born with `modo` (the
// permissions never open wider than that, not even for an instant) and is
// non-blocking and close-on-exec. What is already at the path decides:
//   nothing                    the socket is made;
//   a socket nobody answers on left by a server that died: replaced;
//   a socket a server answers on                   WSAEADDRINUSE;
//   anything that is not a socket (never removed)  ERROR_FILE_EXISTS.
// A path longer than QVMaxUnixSocketPath() is ERROR_FILENAME_EXCED_RANGE.
[[nodiscard]] HRESULT QVListenUnix(const std::string& caminho, std::uint32_t modo, CQVSocket* pSocket);

// A resolved TCP address (the system's own form, opaque here).
struct QVEnderecoTcp {
  std::string sTexto;      // numeric "host:port" ("[v6]:port" for IPv6)
  bool bLoopback = false;  // only this machine can reach it
  alignas(16) unsigned char bytes[128] = {};
  std::uint32_t ulTamanho = 0;
};

// Resolves a host ("127.0.0.1", "localhost", "::1", "0.0.0.0", "::", a
// name) and a port number for listening; "" or "*" as host means every
// interface (IPv4). An unknown host is WSAHOST_NOT_FOUND, a port that is
// not a number from 0 to 65535 ERROR_INVALID_PARAMETER.
[[nodiscard]] HRESULT QVResolveTcp(const std::string& host, const std::string& porta, QVEnderecoTcp* pEndereco);

// Listens on a resolved address (non-blocking, close-on-exec, address
// reuse on); *pPorta receives the port bound (the one chosen when 0 was asked).
[[nodiscard]] HRESULT QVListenTcp(const QVEnderecoTcp& endereco, CQVSocket* pSocket, std::uint16_t* pPorta);

// Takes one pending connection off a listening socket, non-blocking and
// close-on-exec: S_OK with *pNovo, S_FALSE when none is waiting, or the
// failure (ERROR_TOO_MANY_OPEN_FILES when the process or the system is out
// of descriptors; the connection then stays queued). Connections that broke
// before they were taken are skipped.
[[nodiscard]] HRESULT QVAcceptConnection(QVSocket escuta, CQVSocket* pNovo);

// Removes the socket file a server leaves behind when it stops.
[[nodiscard]] HRESULT QVRemoveUnixSocket(const std::string& caminho);

// A write to a peer that went away must fail as an error, not end the process.
void QVIgnoreBrokenPipe();
