#include "platform/QVMachineSettings.h"

#include <strings.h>

#include <cstdlib>
#include <fstream>
#include <mutex>
#include <nlohmann/json.hpp>

namespace {

std::mutex g_mutex;
std::string g_caminhoFixo;

bool IguaisSemCaixa(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

// Finds the value's JSON node, or reports why there is none.
HRESULT Procura(std::string_view chave, std::string_view valor, nlohmann::json* pNo) {
  std::ifstream in(QVMachineSettingsPath());
  if (!in) return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
  const nlohmann::json doc = nlohmann::json::parse(in, nullptr, false);
  if (doc.is_discarded() || !doc.is_object()) return HRESULT_FROM_WIN32(ERROR_INVALID_DATA);
  for (const auto& [nomeChave, valores] : doc.items()) {
    if (!IguaisSemCaixa(nomeChave, chave) || !valores.is_object()) continue;
    for (const auto& [nomeValor, no] : valores.items()) {
      if (IguaisSemCaixa(nomeValor, valor)) {
        *pNo = no;
        return S_OK;
      }
    }
  }
  return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
}

}  // namespace

std::string QVMachineSettingsPath() {
  std::lock_guard lock(g_mutex);
  if (!g_caminhoFixo.empty()) return g_caminhoFixo;
  if (const char* env = std::getenv("ZELKORIN_REGISTRY"); env != nullptr && *env != '\0') return env;
  return "/etc/zelkorin/registry.json";
}

void QVMachineSettingsSetPath(const std::string& caminho) {
  std::lock_guard lock(g_mutex);
  g_caminhoFixo = caminho;
}

HRESULT QVRegQueryMachineDword(std::string_view chave, std::string_view valor,
                               std::uint32_t* pResultado) {
  nlohmann::json no;
  const HRESULT hr = Procura(chave, valor, &no);
  if (FAILED(hr)) return hr;
  if (no.is_number_integer()) {
    *pResultado = static_cast<std::uint32_t>(no.get<std::int64_t>());
    return S_OK;
  }
  if (no.is_boolean()) {
    *pResultado = no.get<bool>() ? 1 : 0;
    return S_OK;
  }
  return HRESULT_FROM_WIN32(ERROR_INVALID_DATA);
}

HRESULT QVRegQueryMachineString(std::string_view chave, std::string_view valor,
                                std::string* pResultado) {
  nlohmann::json no;
  const HRESULT hr = Procura(chave, valor, &no);
  if (FAILED(hr)) return hr;
  if (!no.is_string()) return HRESULT_FROM_WIN32(ERROR_INVALID_DATA);
  *pResultado = no.get<std::string>();
  return S_OK;
}
