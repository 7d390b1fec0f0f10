#include "platform/QVCom.h"

#include <map>
#include <mutex>

namespace {

struct Registro {
  CLSID clsid;
  IClassFactory* fabrica;
};

std::mutex g_mutex;
std::map<std::uint32_t, Registro> g_classes;
std::uint32_t g_proximo = 1;

}  // namespace

HRESULT CoRegisterClassObject(REFCLSID rclsid, IClassFactory* pFactory, std::uint32_t* pdwRegister) {
  if (pFactory == nullptr || pdwRegister == nullptr) return E_INVALIDARG;
  std::lock_guard lock(g_mutex);
  for (const auto& [cookie, reg] : g_classes)
    if (reg.clsid == rclsid) return CO_E_OBJISREG;
  pFactory->AddRef();
  *pdwRegister = g_proximo++;
  g_classes.emplace(*pdwRegister, Registro{rclsid, pFactory});
  return S_OK;
}

HRESULT CoRevokeClassObject(std::uint32_t dwRegister) {
  IClassFactory* fabrica = nullptr;
  {
    std::lock_guard lock(g_mutex);
    const auto it = g_classes.find(dwRegister);
    if (it == g_classes.end()) return E_INVALIDARG;
    fabrica = it->second.fabrica;
    g_classes.erase(it);
  }
  fabrica->Release();
  return S_OK;
}

HRESULT CoGetClassObject(REFCLSID rclsid, IClassFactory** ppFactory) {
  if (ppFactory == nullptr) return E_POINTER;
  *ppFactory = nullptr;
  std::lock_guard lock(g_mutex);
  for (const auto& [cookie, reg] : g_classes) {
    if (reg.clsid == rclsid) {
      reg.fabrica->AddRef();
      *ppFactory = reg.fabrica;
      return S_OK;
    }
  }
  return REGDB_E_CLASSNOTREG;
}

HRESULT CoCreateInstance(REFCLSID rclsid, IUnknown* pUnkOuter, std::uint32_t, REFIID riid, void** ppv) {
  if (ppv == nullptr) return E_POINTER;
  *ppv = nullptr;
  IClassFactory* fabrica = nullptr;
  const HRESULT hr = CoGetClassObject(rclsid, &fabrica);
  if (FAILED(hr)) return hr;
  const HRESULT hrCria = fabrica->CreateInstance(pUnkOuter, riid, ppv);
  fabrica->Release();
  if (FAILED(hrCria)) *ppv = nullptr;
  return hrCria;
}
