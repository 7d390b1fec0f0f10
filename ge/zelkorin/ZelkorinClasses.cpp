#include "ge/zelkorin/ZelkorinClasses.h"

#include <atomic>
#include <mutex>
#include <new>

#include "df/qvlibex/QVLog.h"
#include "ge/zelkorin/CQVGE_Atendimento.h"
#include "ge/zelkorin/CQVGE_Projeto.h"

namespace {

std::atomic<int> g_travas{0};

// One class object per class, living as long as the process.
template <class T>
class CFabricaClasse final : public IClassFactory {
 public:
  HRESULT QueryInterface(REFIID riid, void** ppv) override {
    if (ppv == nullptr) return E_POINTER;
    if (riid == IID_IUnknown || riid == IID_IClassFactory) {
      *ppv = static_cast<IClassFactory*>(this);
      return S_OK;
    }
    *ppv = nullptr;
    return E_NOINTERFACE;
  }
  std::uint32_t AddRef() override { return 2; }
  std::uint32_t Release() override { return 1; }

  HRESULT CreateInstance(IUnknown* pUnkOuter, REFIID riid, void** ppv) override {
    if (ppv == nullptr) return E_POINTER;
    *ppv = nullptr;
    if (pUnkOuter != nullptr) return CLASS_E_NOAGGREGATION;
    T* objeto = new (std::nothrow) T();
    if (objeto == nullptr) return E_OUTOFMEMORY;
    const HRESULT hr = objeto->QueryInterface(riid, ppv);
    objeto->Release();  // the creator's reference; QueryInterface added the caller's
    return hr;
  }

  HRESULT LockServer(bool fLock) override {
    g_travas.fetch_add(fLock ? 1 : -1);
    return S_OK;
  }
};

CFabricaClasse<CQVGE_Atendimento> g_fabricaAtendimento;
CFabricaClasse<CQVGE_Projeto> g_fabricaProjeto;
std::mutex g_mutex;
std::uint32_t g_cookieAtendimento = 0;
std::uint32_t g_cookieProjeto = 0;

}  // namespace

HRESULT QVRegistraClassesZelkorin() {
  std::lock_guard lock(g_mutex);
  if (g_cookieAtendimento == 0)
    QV_CHECK(CoRegisterClassObject(CLSID_QVGE_Atendimento, &g_fabricaAtendimento, &g_cookieAtendimento));
  if (g_cookieProjeto == 0)
    QV_CHECK(CoRegisterClassObject(CLSID_QVGE_Projeto, &g_fabricaProjeto, &g_cookieProjeto));
  return S_OK;
}

void QVRevogaClassesZelkorin() {
  std::lock_guard lock(g_mutex);
  if (g_cookieAtendimento != 0) QV_LOGA(CoRevokeClassObject(g_cookieAtendimento));
  if (g_cookieProjeto != 0) QV_LOGA(CoRevokeClassObject(g_cookieProjeto));
  g_cookieAtendimento = g_cookieProjeto = 0;
}

int QVTravasServidor() { return g_travas.load(); }
