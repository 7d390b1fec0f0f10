#include "suite/analytics/QVEstatisticasUso.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "df/qvlibex/QVDatas.h"

void QVCelulaEstatistica::Adiciona(std::uint64_t ms) {
  ++ulChamadas;
  ulTotalMs += ms;
  ulMaiorMs = std::max(ulMaiorMs, ms);
  ulMenorMs = std::min(ulMenorMs, ms);
}

void QVCelulaEstatistica::Soma(const QVCelulaEstatistica& o) {
  ulChamadas += o.ulChamadas;
  ulTotalMs += o.ulTotalMs;
  ulMaiorMs = std::max(ulMaiorMs, o.ulMaiorMs);
  ulMenorMs = std::min(ulMenorMs, o.ulMenorMs);
}

void QVAdicionaEstatistica(QVMapaEstatisticas& mapa, const std::string& empresa, std::uint32_t dia,
                           const std::string& classe, const std::string& metodo, std::uint16_t codigo,
                           std::uint64_t ms) {
  mapa[empresa][dia][classe][metodo][codigo].Adiciona(ms);
}

nlohmann::json QVEstatisticasJson(const QVMapaEstatisticas& mapa) {
  nlohmann::json j = nlohmann::json::object();
  for (const auto& [empresa, dias] : mapa)
    for (const auto& [dia, classes] : dias)
      for (const auto& [classe, metodos] : classes)
        for (const auto& [metodo, codigos] : metodos)
          for (const auto& [codigo, c] : codigos) {
            j[empresa][QVDiaTexto(dia)][classe][metodo][std::to_string(codigo)] = {
                {"chamadas", c.ulChamadas},
                {"totalMs", c.ulTotalMs},
                {"maiorMs", c.ulMaiorMs},
                {"menorMs", c.ulChamadas == 0 ? 0 : c.ulMenorMs},
                {"mediaMs", c.ulChamadas == 0 ? 0 : c.ulTotalMs / c.ulChamadas}};
          }
  return j;
}

void CQVEstatisticasUso::Adiciona(const std::string& empresa, std::uint32_t dia, const std::string& classe,
                                  const std::string& metodo, std::uint16_t codigo, std::uint64_t ms) {
  std::lock_guard lock(m_mutex);
  QVAdicionaEstatistica(m_mapa, empresa, dia, classe, metodo, codigo, ms);
}

QVMapaEstatisticas CQVEstatisticasUso::Copia() const {
  std::lock_guard lock(m_mutex);
  return m_mapa;
}

void CQVEstatisticasUso::Limpa() {
  std::lock_guard lock(m_mutex);
  m_mapa.clear();
}

CQVEstatisticasUso& QVEstatisticasProcesso() {
  static CQVEstatisticasUso estatisticas;
  return estatisticas;
}
