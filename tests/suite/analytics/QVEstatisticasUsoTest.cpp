// The usage statistics stay bounded however long the server runs and
// however many companies call it, and so does their answer, which a request
// can narrow to a company and a day.
#include "suite/analytics/QVEstatisticasUso.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "core/QVRPCDLL/QVFrame.h"
#include "df/qvlibex/QVDatas.h"
#include "platform/QVTaskMem.h"

namespace {

const std::uint32_t kHoje = QVDia(2026, 11, 23);

void Chama(QVMapaEstatisticas& m, const std::string& empresa, std::uint32_t dia, int metodos = 1) {
  for (int i = 0; i < metodos; ++i)
    QVAdicionaEstatistica(m, empresa, dia, "CQVGE_Atendimento", "Metodo" + std::to_string(i), 9, 5);
}

// The statistics function's answer to a request sent as a client sends a
// text (with its terminating zero), which must give that status; null when
// it failed.
nlohmann::json Responde(const QVMapaEstatisticas& objeto, std::string pedido, HRESULT hr = S_OK) {
  _REG_DF_FUNCAO_GENERICAPS entrada{static_cast<std::uint32_t>(pedido.size() + 1), {},
                                    reinterpret_cast<std::uint8_t*>(pedido.data()), nullptr};
  _REG_DF_FUNCAO_GENERICAPS* saida = nullptr;
  EXPECT_EQ(QVRespondeEstatisticasUso(objeto, entrada, &saida), hr) << pedido;
  if (saida == nullptr) return nullptr;
  EXPECT_LE(saida->ulQtdBytes, kQVMaxBytesEstatisticas);
  auto j = nlohmann::json::parse(reinterpret_cast<char*>(saida->pListaBytes));
  QVLibera(saida);
  CoTaskMemFree(saida);
  return j;
}

}  // namespace

TEST(EstatisticasUso, GuardamOsUltimosDiasEUmNumeroLimitadoDeEmpresas) {
  QVMapaEstatisticas m;
  Chama(m, "PARADA", kHoje - 35);
  for (std::uint32_t d = kHoje - 40; d <= kHoje; ++d) Chama(m, "A", d);
  ASSERT_EQ(m["A"].size(), kQVDiasEstatisticas);
  EXPECT_EQ(m["A"].begin()->first, kHoje - (kQVDiasEstatisticas - 1));
  EXPECT_EQ(m.count("PARADA"), 0u);  // it stopped calling: its old days go all the same

  // Companies beyond the bound count together, under one name.
  for (std::size_t i = 0; i < kQVMaxEmpresasEstatisticas + 10; ++i) Chama(m, "E" + std::to_string(i), kHoje);
  EXPECT_EQ(m.size(), kQVMaxEmpresasEstatisticas + 1);
  EXPECT_EQ(m[kQVEmpresaOutras][kHoje]["CQVGE_Atendimento"]["Metodo0"][9].ulChamadas, 11u);
}

TEST(EstatisticasUso, PedidosQueNaoSaoUmFiltroSaoRecusados) {
  // No bytes, or an object of "empresa" and "dia" (the answers below);
  // anything else is refused, and nothing is handed out.
  for (const char* texto :
       {"ACME", R"(["ACME"])", R"({"empresa": 7})", R"({"dia": "ontem"})", R"({"dia": "2026-13-01"})",
        R"({"dia": "23/11/2026"})", R"({"dia": "2026-11-23x"})", R"({"dias": "2026-11-23"})"})
    EXPECT_EQ(Responde({}, texto, E_INVALIDARG), nullptr) << texto;
}

TEST(EstatisticasUso, RespostaFicaAbaixoDoLimiteCortandoOsDiasMaisAntigos) {
  // About twice what fits: 40 companies, a month, 10 methods each day.
  QVMapaEstatisticas objeto;
  for (std::uint32_t d = kHoje - (kQVDiasEstatisticas - 1); d <= kHoje; ++d)
    for (int e = 0; e < 40; ++e) Chama(objeto, "EMPRESA_" + std::to_string(e), d, 10);

  const nlohmann::json tudo = Responde(objeto, "");
  EXPECT_TRUE(tudo["truncado"].get<bool>());
  EXPECT_GT(tudo["omitidos"].get<int>(), 0);
  ASSERT_EQ(tudo["objeto"].size(), 40u);
  for (const auto& [empresa, dias] : tudo["objeto"].items()) {
    EXPECT_TRUE(dias.contains(QVDiaTexto(kHoje))) << empresa;
    EXPECT_FALSE(dias.contains(QVDiaTexto(kHoje - (kQVDiasEstatisticas - 1)))) << empresa;
  }

  // Narrowed to one company, or to one company and one day, everything
  // asked for fits.
  const nlohmann::json empresa = Responde(objeto, R"({"empresa": "EMPRESA_7"})");
  EXPECT_FALSE(empresa["truncado"].get<bool>());
  ASSERT_EQ(empresa["objeto"].size(), 1u);
  EXPECT_EQ(empresa["objeto"]["EMPRESA_7"].size(), kQVDiasEstatisticas);
  const std::string dia = QVDiaTexto(kHoje - 20);
  const nlohmann::json um = Responde(objeto, R"({"empresa": "EMPRESA_7", "dia": ")" + dia + "\"}");
  EXPECT_FALSE(um["truncado"].get<bool>());
  ASSERT_EQ(um["objeto"].size(), 1u);
  ASSERT_EQ(um["objeto"]["EMPRESA_7"].size(), 1u);
  EXPECT_EQ(um["objeto"]["EMPRESA_7"][dia]["CQVGE_Atendimento"].size(), 10u);
}
