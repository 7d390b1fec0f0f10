#include "core/QVRPCDLL/QVFrame.h"

#include <atomic>
#include <cstring>
#include <nlohmann/json.hpp>

#include "df/qvlibex/QVException.h"
#include "df/qvlibex/QVLog.h"
#include "df/qvlibex/QVVersao.h"
#include "platform/QVSystemInfo.h"
#include "platform/QVTaskMem.h"

namespace {

std::atomic<int> g_objetos{0};
thread_local std::string_view t_nomeMetodo;

[[noreturn]] void TrataParametroInvalido(const char* expressao, const char* funcao, const char* arquivo,
                                         unsigned linha) {
  std::string mensagem = "Parâmetro inválido";
  if (expressao != nullptr && *expressao != '\0') mensagem += std::string(": ") + expressao;
  throw CQVExceptionEx(E_INVALIDARG, 0, 0, mensagem, arquivo != nullptr ? arquivo : "",
                       static_cast<std::int32_t>(linha),
                       !t_nomeMetodo.empty() ? std::string(t_nomeMetodo) : std::string(funcao != nullptr ? funcao : ""));
}

}  // namespace

void QVSeparaNomeMetodo(std::string_view nome, std::string* pClasse, std::string* pMetodo) {
  const std::size_t doisPontos = nome.find(':');
  std::string_view classe = nome.substr(0, doisPontos);
  classe = classe.substr(0, classe.find('<'));
  std::string_view metodo;
  if (doisPontos != std::string_view::npos) {
    metodo = nome.substr(doisPontos + 1);
    if (!metodo.empty() && metodo.front() == ':') metodo.remove_prefix(1);
    metodo = metodo.substr(0, metodo.find(':'));
  }
  *pClasse = std::string(classe);
  *pMetodo = std::string(metodo);
}

HRESULT QVDevolveJson(const std::string& json, _REG_DF_FUNCAO_GENERICAPS** ppregOutps) {
  if (ppregOutps == nullptr) return E_POINTER;
  *ppregOutps = nullptr;
  auto* reg = static_cast<_REG_DF_FUNCAO_GENERICAPS*>(CoTaskMemAlloc(sizeof(_REG_DF_FUNCAO_GENERICAPS)));
  auto* bytes = static_cast<std::uint8_t*>(CoTaskMemAlloc(json.size() + 1));
  if (reg == nullptr || bytes == nullptr) {
    CoTaskMemFree(reg);
    CoTaskMemFree(bytes);
    return E_OUTOFMEMORY;
  }
  std::memset(reg, 0, sizeof *reg);
  std::memcpy(bytes, json.c_str(), json.size() + 1);
  reg->ulQtdBytes = static_cast<std::uint32_t>(json.size() + 1);
  reg->pListaBytes = bytes;
  *ppregOutps = reg;
  return S_OK;
}

std::string QVJsonEstatisticasUso(const QVMapaEstatisticas& objeto, const QVFiltroEstatisticas& filtro) {
  nlohmann::json j;
  j["servidor"] = {{"programa", QVProcessName()},
                   {"versao", QVVersaoPrograma()},
                   {"pid", QVCurrentProcessId()},
                   {"computador", QVComputerName()},
                   {"objetosAtivos", QVObjetosAtivos()}};
  // What the cells may take: the rest is the header above, the filter's
  // company names and the closing members, a few hundred bytes at most.
  std::size_t uiBytes = kQVMaxBytesEstatisticas - 4096;
  std::uint32_t ulOmitidos = 0;
  j["objeto"] = QVEstatisticasJson(objeto, filtro, &uiBytes, &ulOmitidos);
  j["processo"] = QVEstatisticasJson(QVEstatisticasProcesso().Copia(), filtro, &uiBytes, &ulOmitidos);
  j["truncado"] = ulOmitidos != 0;
  j["omitidos"] = ulOmitidos;
  return j.dump();
}

HRESULT QVRespondeEstatisticasUso(const QVMapaEstatisticas& objeto, const _REG_DF_FUNCAO_GENERICAPS& pedido,
                                  _REG_DF_FUNCAO_GENERICAPS** ppregOutps) {
  if (ppregOutps == nullptr) return E_POINTER;
  *ppregOutps = nullptr;
  std::string_view texto;
  if (pedido.pListaBytes != nullptr)
    texto = std::string_view(reinterpret_cast<const char*>(pedido.pListaBytes), pedido.ulQtdBytes);
  // A text sent with its terminating zero, as the answer is.
  while (!texto.empty() && texto.back() == '\0') texto.remove_suffix(1);
  QVFiltroEstatisticas filtro;
  QV_CHECK(QVLeFiltroEstatisticas(texto, &filtro));
  QV_CHECK(QVDevolveJson(QVJsonEstatisticasUso(objeto, filtro), ppregOutps));
  return S_OK;
}

int QVObjetosAtivos() { return g_objetos.load(); }

void QVContaObjeto(int delta) { g_objetos.fetch_add(delta); }

CQVEscopoParametroInvalido::CQVEscopoParametroInvalido(std::string_view nomeMetodo)
    : m_pTratadorAnterior(QVDefineTratadorParametroInvalido(TrataParametroInvalido)), m_sNomeAnterior(t_nomeMetodo) {
  t_nomeMetodo = nomeMetodo;
}

CQVEscopoParametroInvalido::~CQVEscopoParametroInvalido() {
  QVDefineTratadorParametroInvalido(m_pTratadorAnterior);
  t_nomeMetodo = m_sNomeAnterior;
}
