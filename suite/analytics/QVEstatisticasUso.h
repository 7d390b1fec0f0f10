// Usage statistics of the calls: how often each method ran and how long it
// took, by company, day, class, method and a 16-bit code of the object (the
// module it serves).
//
// Each call frame keeps the statistics of its own object; every call is
// also handed at once to the process-wide store (the suite's analytics
// records), which is what the operators' view shows.
//
// Bounds, so that a server that runs for months stays the same size: a map
// keeps the last kQVDiasEstatisticas days (today included; older days are
// dropped, for every company, when a company counts its first call of a
// new day) and at most kQVMaxEmpresasEstatisticas companies (the calls of
// any further company count under kQVEmpresaOutras).
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

#include "platform/QVHResult.h"

inline constexpr std::uint32_t kQVDiasEstatisticas = 31;
inline constexpr std::size_t kQVMaxEmpresasEstatisticas = 256;
inline constexpr const char* kQVEmpresaOutras = "*";

struct QVCelulaEstatistica {
  std::uint64_t ulChamadas = 0;
  std::uint64_t ulTotalMs = 0;
  std::uint64_t ulMaiorMs = 0;
  std::uint64_t ulMenorMs = std::numeric_limits<std::uint64_t>::max();

  void Adiciona(std::uint64_t ms);
};

// empresa -> dia -> classe -> método -> código -> célula
using QVMapaEstatisticas =
    std::map<std::string,
             std::map<std::uint32_t,
                      std::map<std::string, std::map<std::string, std::map<std::uint16_t, QVCelulaEstatistica>>>>>;

void QVAdicionaEstatistica(QVMapaEstatisticas& mapa, const std::string& empresa, std::uint32_t dia,
                           const std::string& classe, const std::string& metodo, std::uint16_t codigo,
                           std::uint64_t ms);

// What a request for the statistics narrows them to: one company, one day
// (a day number), or both; empty and 0 mean all.
struct QVFiltroEstatisticas {
  std::string empresa;
  std::uint32_t dia = 0;
};

// Reads a request: no bytes (or "{}") asks for everything; otherwise a JSON
// object with the optional members "empresa" (a string) and "dia"
// ("YYYY-MM-DD"). Anything else is E_INVALIDARG.
[[nodiscard]] HRESULT QVLeFiltroEstatisticas(std::string_view texto, QVFiltroEstatisticas* pFiltro);

// The statistics the filter selects as JSON:
// {"<empresa>": {"YYYY-MM-DD": {"<classe>": {"<método>": {"<código>":
//   {"chamadas": n, "totalMs": n, "maiorMs": n, "menorMs": n, "mediaMs": n}}}}}}
// filled newest day first (companies in name order within a day) while the
// encoded size stays within *puiBytes, which is decreased by what was used;
// the company-days left out (all older than the ones kept) are added to
// *pulOmitidos.
nlohmann::json QVEstatisticasJson(const QVMapaEstatisticas& mapa, const QVFiltroEstatisticas& filtro,
                                  std::size_t* puiBytes, std::uint32_t* pulOmitidos);

class CQVEstatisticasUso {
 public:
  void Adiciona(const std::string& empresa, std::uint32_t dia, const std::string& classe, const std::string& metodo,
                std::uint16_t codigo, std::uint64_t ms);
  QVMapaEstatisticas Copia() const;
  void Limpa();

 private:
  mutable std::mutex m_mutex;
  QVMapaEstatisticas m_mapa;
};

CQVEstatisticasUso& QVEstatisticasProcesso();
