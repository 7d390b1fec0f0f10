// Creating an object by class identifier with the support library's
// failure handling: CQVComPtr<T>::CoCreateInstance of the suite.
#pragma once

#include <cstdint>
#include <string>

#include "platform/QVCom.h"

enum EQVComPtrFlags : std::uint32_t {
  eQVCCI_NENHUM = 0,
  eQVCCI_LOG_FAILURE = 0x1,  // log a failure (its description below)
  eQVCCI_RETRY = 0x2,  // try once more, 100 ms later, unless the failure is final
};

// The description of a failed creation:
// "\nHR: 0x%X (%s)\nCLSID: %s\nPrograma: %s\n".
std::string QVDescricaoFalhaCriacao(HRESULT hr, REFCLSID clsid);

// Creates the object and asks for riid. A creation that succeeds with a null
// interface is a failure: ER_QVDF_CO_CREATE_INSTANCE_INTERFACE_NULA. Final
// failures are not retried: an unregistered class, a missing interface,
// aggregation refused.
[[nodiscard]] HRESULT QVCoCreateInstance(REFCLSID clsid, REFIID riid, void** ppv, std::uint32_t flags,
                                         std::uint32_t dwClsContext = CLSCTX_ALL);

template <class T>
[[nodiscard]] HRESULT QVCoCreateInstance(CQVComPtr<T>* p, REFCLSID clsid, REFIID riid, std::uint32_t flags,
                                         std::uint32_t dwClsContext = CLSCTX_ALL) {
  return QVCoCreateInstance(clsid, riid, p->ppv(), flags, dwClsContext);
}
