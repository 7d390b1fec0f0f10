#include "suite/hostlink/QVSessaoSuite.h"

#include <cstdlib>
#include <mutex>

#include "platform/QVOsFile.h"

namespace {

std::mutex g_mutex;
std::shared_ptr<IQVSessaoSuite> g_sessao;
std::string g_raiz;

}  // namespace

HRESULT CQVSessaoSuitePadrao::Conecta(const _REG_DF_INICIALIZAPS&) { return S_OK; }

HRESULT CQVSessaoSuitePadrao::GetDiretorioDadosModulo(std::uint32_t modulo, const std::string& empresa,
                                                      std::string* pDiretorio) {
  if (pDiretorio == nullptr) return E_POINTER;
  pDiretorio->clear();
  if (!QVNomeEmpresaValido(empresa)) return S_OK;
  // The suite sets a company's folders up before anyone asks for them; the
  // embedded default makes them at the first request.
  const std::string sDiretorio = QVRaizDados() + "/" + empresa + "/" + QVPastaModulo(modulo);
  const HRESULT hr = QVCreateDirectories(sDiretorio);
  if (FAILED(hr)) return hr;
  *pDiretorio = sDiretorio;
  return S_OK;
}

IQVSessaoSuite& QVSessaoSuite() {
  std::lock_guard lock(g_mutex);
  if (!g_sessao) g_sessao = std::make_shared<CQVSessaoSuitePadrao>();
  return *g_sessao;
}

void QVDefineSessaoSuite(std::shared_ptr<IQVSessaoSuite> sessao) {
  std::lock_guard lock(g_mutex);
  g_sessao = std::move(sessao);
}

void QVDefineRaizDados(const std::string& raiz) {
  std::lock_guard lock(g_mutex);
  g_raiz = raiz;
}

std::string QVRaizDados() {
  {
    std::lock_guard lock(g_mutex);
    if (!g_raiz.empty()) return g_raiz;
  }
  if (const char* env = std::getenv("ZELKORIN_ROOT"); env != nullptr && *env != '\0') return env;
  const char* home = std::getenv("HOME");
  return std::string(home != nullptr && *home != '\0' ? home : "/tmp") + "/.local/share/zelkorin";
}

std::string QVPastaModulo(std::uint32_t modulo) {
  if (modulo == QV_GE) return "GE";
  // Appended rather than "M" + to_string(): g++ 12 at -O3 warns falsely
  // (-Wrestrict) about the operator+ that takes a temporary.
  std::string sPasta = "M";
  sPasta += std::to_string(modulo);
  return sPasta;
}

bool QVNomeEmpresaValido(const std::string& empresa) {
  if (empresa.empty() || empresa == "." || empresa == "..") return false;
  for (unsigned char c : empresa)
    if (c == '/' || c == '\\' || c < 0x20 || c == 0x7F) return false;
  return true;
}
