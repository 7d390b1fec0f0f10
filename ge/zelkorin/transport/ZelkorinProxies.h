// The client side of the server's objects: proxies that implement the
// business interfaces (each expanded from its method table) over a
// connection, with the signatures and the ownership rules of the in-process
// objects.
//
// Records the caller passes are copied deeply into the call; what comes back
// is allocated for the caller (task allocator, system strings) and owned by
// it. A failed call leaves every out value zeroed (counts 0, pointers null)
// and every in/out record as the caller passed it; a succeeded one replaces
// an in/out record's contents, freeing what it owned before. A null out
// pointer is allowed (that value is not delivered); a null in/out pointer
// answers E_POINTER.
#pragma once

#include <memory>

#include "ge/zelkorin/transport/CQVConexaoZelkorin.h"

// A proxy for an object the server made, whose business interface is
// iidNegocio, asked for riid. E_NOINTERFACE when the proxy has no riid.
[[nodiscard]] HRESULT QVCriaProxy(const std::shared_ptr<CQVConexaoZelkorin>& conexao, zk::Objeto::Client objeto,
                                  REFIID iidNegocio, REFIID riid, void** ppv);
