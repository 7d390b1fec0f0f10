#include "suite/analytics/QVEstatisticasUso.h"

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <vector>

#include "df/qvlibex/QVDatas.h"

namespace {

// Drops, in every company, the days before the window that ends on `dia`,
// and the companies left with none.
void Poda(QVMapaEstatisticas& mapa, std::uint32_t dia) {
  const std::uint32_t primeiro = dia >= kQVDiasEstatisticas - 1 ? dia - (kQVDiasEstatisticas - 1) : 0;
  for (auto itEmpresa = mapa.begin(); itEmpresa != mapa.end();) {
    auto& dias = itEmpresa->second;
    dias.erase(dias.begin(), dias.lower_bound(primeiro));
    itEmpresa = dias.empty() ? mapa.erase(itEmpresa) : std::next(itEmpresa);
  }
}

nlohmann::json CelulasJson(
    const std::map<std::string, std::map<std::string, std::map<std::uint16_t, QVCelulaEstatistica>>>& classes) {
  nlohmann::json j = nlohmann::json::object();
  for (const auto& [classe, metodos] : classes)
    for (const auto& [metodo, codigos] : metodos)
      for (const auto& [codigo, c] : codigos)
        j[classe][metodo][std::to_string(codigo)] = {{"chamadas", c.ulChamadas},
                                                     {"totalMs", c.ulTotalMs},
                                                     {"maiorMs", c.ulMaiorMs},
                                                     {"menorMs", c.ulChamadas == 0 ? 0 : c.ulMenorMs},
                                                     {"mediaMs", c.ulChamadas == 0 ? 0 : c.ulTotalMs / c.ulChamadas}};
  return j;
}

// "YYYY-MM-DD" to a day number; 0 when it is not a date.
std::uint32_t DiaDoTexto(const std::string& texto) {
  int ano = 0, mes = 0, dia = 0;
  char resto = 0;
  if (texto.size() != 10 || std::sscanf(texto.c_str(), "%4d-%2d-%2d%c", &ano, &mes, &dia, &resto) != 3) return 0;
  return QVDia(ano, mes, dia);
}

}  // namespace

void QVCelulaEstatistica::Adiciona(std::uint64_t ms) {
  ++ulChamadas;
  ulTotalMs += ms;
  ulMaiorMs = std::max(ulMaiorMs, ms);
  ulMenorMs = std::min(ulMenorMs, ms);
}

void QVAdicionaEstatistica(QVMapaEstatisticas& mapa, const std::string& empresa, std::uint32_t dia,
                           const std::string& classe, const std::string& metodo, std::uint16_t codigo,
                           std::uint64_t ms) {
  auto itEmpresa = mapa.find(empresa);
  if (itEmpresa == mapa.end() || itEmpresa->second.find(dia) == itEmpresa->second.end()) {
    Poda(mapa, dia);
    itEmpresa = mapa.find(empresa);
  }
  const bool semLugar =
      itEmpresa == mapa.end() && mapa.size() - mapa.count(kQVEmpresaOutras) >= kQVMaxEmpresasEstatisticas;
  mapa[semLugar ? std::string(kQVEmpresaOutras) : empresa][dia][classe][metodo][codigo].Adiciona(ms);
}

HRESULT QVLeFiltroEstatisticas(std::string_view texto, QVFiltroEstatisticas* pFiltro) {
  *pFiltro = QVFiltroEstatisticas{};
  if (texto.empty()) return S_OK;
  const nlohmann::json j = nlohmann::json::parse(texto, nullptr, false);
  if (!j.is_object()) return E_INVALIDARG;
  for (const auto& [chave, valor] : j.items()) {
    if (!valor.is_string()) return E_INVALIDARG;
    if (chave == "empresa") {
      pFiltro->empresa = valor.get<std::string>();
    } else if (chave == "dia") {
      pFiltro->dia = DiaDoTexto(valor.get<std::string>());
      if (pFiltro->dia == 0) return E_INVALIDARG;
    } else {
      return E_INVALIDARG;
    }
  }
  return S_OK;
}

nlohmann::json QVEstatisticasJson(const QVMapaEstatisticas& mapa, const QVFiltroEstatisticas& filtro,
                                  std::size_t* puiBytes, std::uint32_t* pulOmitidos) {
  struct Chave {
    std::uint32_t dia;
    const std::string* empresa;
  };
  std::vector<Chave> chaves;
  for (const auto& [empresa, dias] : mapa) {
    if (!filtro.empresa.empty() && empresa != filtro.empresa) continue;
    for (const auto& [dia, classes] : dias)
      if (filtro.dia == 0 || dia == filtro.dia) chaves.push_back({dia, &empresa});
  }
  std::sort(chaves.begin(), chaves.end(),
            [](const Chave& a, const Chave& b) { return a.dia != b.dia ? a.dia > b.dia : *a.empresa < *b.empresa; });

  nlohmann::json j = nlohmann::json::object();
  bool cheio = false;
  for (const Chave& c : chaves) {
    if (!cheio) {
      nlohmann::json celulas = CelulasJson(mapa.at(*c.empresa).at(c.dia));
      // The cells, the company's key and the day's key with their quotes,
      // colons, braces and commas.
      const std::size_t custo = celulas.dump().size() + nlohmann::json(*c.empresa).dump().size() + 20;
      if (custo <= *puiBytes) {
        *puiBytes -= custo;
        j[*c.empresa][QVDiaTexto(c.dia)] = std::move(celulas);
        continue;
      }
      cheio = true;
    }
    ++*pulOmitidos;
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
