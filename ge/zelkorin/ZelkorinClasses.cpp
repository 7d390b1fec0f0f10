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
auto Fabrica() {
  return TQVFabricaDeClasse([] { return new (std::nothrow) T(); }, &g_travas);
}

auto g_fabricaAtendimento = Fabrica<CQVGE_Atendimento>();
auto g_fabricaProjeto = Fabrica<CQVGE_Projeto>();
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
