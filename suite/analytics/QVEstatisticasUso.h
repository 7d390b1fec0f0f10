// Usage statistics of the calls: how often each method ran and how long it
// took, by company, day, class, method and a 16-bit code of the object (the
// module it serves).
//
// Each call frame keeps the statistics of its own object; every call is
// also handed at once to the process-wide store (the suite's analytics
// records), which is what the operators' view shows.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <mutex>
#include <string>

#include <nlohmann/json_fwd.hpp>

struct QVCelulaEstatistica {
  std::uint64_t ulChamadas = 0;
  std::uint64_t ulTotalMs = 0;
  std::uint64_t ulMaiorMs = 0;
  std::uint64_t ulMenorMs = std::numeric_limits<std::uint64_t>::max();

  void Adiciona(std::uint64_t ms);
  void Soma(const QVCelulaEstatistica& outra);
};

// empresa -> dia -> classe -> método -> código -> célula
using QVMapaEstatisticas =
    std::map<std::string,
             std::map<std::uint32_t,
                      std::map<std::string, std::map<std::string, std::map<std::uint16_t, QVCelulaEstatistica>>>>>;

void QVAdicionaEstatistica(QVMapaEstatisticas& mapa, const std::string& empresa, std::uint32_t dia,
                           const std::string& classe, const std::string& metodo, std::uint16_t codigo,
                           std::uint64_t ms);

// The statistics as JSON:
// {"<empresa>": {"YYYY-MM-DD": {"<classe>": {"<método>": {"<código>":
//   {"chamadas": n, "totalMs": n, "maiorMs": n, "menorMs": n, "mediaMs": n}}}}}}
nlohmann::json QVEstatisticasJson(const QVMapaEstatisticas& mapa);

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
