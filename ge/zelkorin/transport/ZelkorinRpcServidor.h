// The server process: a listener on a Unix socket (and, when asked, on a
// TCP address) that serves the class factory of each connection. Each
// client object is one frame in this process, released when the client
// releases it or when its connection drops.
//
// Calls are served one at a time, in arrival order, on one thread: the
// frame registers its object's session as the process's default access for
// the duration of each call, which two calls at once would overwrite.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "core/QVRPCDLL/QVMarshaller.h"
#include "platform/QVHResult.h"

struct QVOpcoesServidor {
  std::string sSocket;  // Unix socket path (made with mode 0660)
  std::string sEscuta;  // "host:port", or "port" alone for the loopback; "" for no TCP
  QVLimitesMarshal limites;
  // One line per event (start, connections) for the operator; may be empty.
  std::function<void(const std::string&)> log;
  // Called once every listener is up, before the first accept.
  std::function<void()> pronto;
};

// Serves until SIGTERM or SIGINT: then stops accepting, drops every
// connection (releasing every object: databases finalised, headers
// written) and returns S_OK. Failures to listen are returned at once.
[[nodiscard]] HRESULT QVExecutaServidor(const QVOpcoesServidor& opcoes);
