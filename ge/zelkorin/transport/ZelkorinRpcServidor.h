// The server process: a listener on a Unix socket (and, when asked, on a
// TCP address) that serves the class factory of each connection. Each
// client object is one frame in this process, released when the client
// releases it or when its connection drops.
//
// Calls are served one at a time, in arrival order, on one thread: the
// frame registers its object's session as the process's default access for
// the duration of each call, which two calls at once would overwrite.
//
// What a client can make the server hold is bounded (CQVFluxoMensagens.h):
// connections by ulMaxConexoes, incoming messages over all connections by
// uiOrcamentoBytes, answers waiting for a client that does not read them by
// ulMaxPendentes per connection, a message that stops arriving by
// ulTempoOciosoMs. docs/transport.md has the figures.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "core/QVRPCDLL/QVMarshaller.h"
#include "platform/QVHResult.h"
#include "platform/QVSocket.h"

struct QVLimitesServidor {
  std::uint32_t ulMaxConexoes = 256;  // more are accepted and closed at once
  std::uint64_t uiOrcamentoBytes = 512ull << 20;  // incoming messages in memory, whole server
  std::uint32_t ulMaxPendentes = 16;  // calls per connection whose answers have not gone out
  std::uint32_t ulTempoOciosoMs = 30000;  // silence within a message that drops its connection
};

struct QVOpcoesServidor {
  std::string sSocket;  // Unix socket path (made with mode 0660)
  std::string sEscuta;  // "host:port", or "port" alone for the loopback; "" for no TCP
  // An address other machines can reach is refused unless this is set:
  // nothing on the wire authenticates a client.
  bool bPermiteRemoto = false;
  QVLimitesMarshal limites;
  QVLimitesServidor servidor;
  // One line per event (start, connections) for the operator; may be empty.
  std::function<void(const std::string&)> log;
  // Called once every listener is up, before the first accept.
  std::function<void()> pronto;
};

// The address of --listen: "PORT" alone is the loopback's (127.0.0.1);
// "HOST:PORT", "[IPV6]:PORT" and "*:PORT" (every interface) as written.
[[nodiscard]] HRESULT QVEnderecoEscuta(const std::string& sEscuta, QVEnderecoTcp* pEndereco);

// Serves until SIGTERM or SIGINT: then stops accepting, drops every
// connection (releasing every object: databases finalised, headers
// written) and returns S_OK. Failures to listen are returned at once; a TCP
// address off the loopback without bPermiteRemoto is E_ACCESSDENIED.
[[nodiscard]] HRESULT QVExecutaServidor(const QVOpcoesServidor& opcoes);
