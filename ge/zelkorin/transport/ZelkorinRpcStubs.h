// The server side of the transport: the class factory each connection
// serves and the stubs of the client objects it hands out. A stub reads a
// call's parameters by the method table of the object's interface (refusing
// bad data before the object sees it), calls the object through its frame
// and sends back what it answered.
#pragma once

#include <capnp/capability.h>
#include <kj/memory.h>

#include "core/QVRPCDLL/QVMarshaller.h"
#include "ge/zelkorin/transport/ZelkorinRpc.capnp.h"

// The limits every stub of this process applies to what it receives; set
// once, before the first connection is served.
void QVDefineLimitesStubs(const QVLimitesMarshal& limites);

// A new class factory for one connection.
kj::Own<zk::Fabrica::Server> QVCriaFabricaRpc();
