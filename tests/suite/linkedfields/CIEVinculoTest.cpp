// Linked-information fields: the kind of each id and how a filter's
// criteria match a record's fields.
#include "suite/linkedfields/CIEVinculo.h"

#include <gtest/gtest.h>

namespace {

using T = EQVTipoCampoVinculo;
constexpr std::int32_t kBase = kQVCampoLivreBase, kTexto = kBase + 100, kValor2 = kBase + 200;

CIEVinculo Vinculo(std::initializer_list<QVCampoVinculo> campos) {
  CIEVinculo v;
  for (const auto& c : campos) v.Adiciona(c);
  return v;
}

}  // namespace

TEST(CIEVinculoTest, TipoPeloBlocoDoId) {
  const std::pair<std::int32_t, T> casos[] = {
      {kBase, T::Data},   {kBase + 49, T::Data},   {kBase + 50, T::Mes},      {kTexto, T::Texto},
      {kValor2, T::Valor2}, {kBase + 349, T::Valor8}, {kBase + 350, T::InfComplCodigo}, {kBase + 449, T::Hora},
      {kBase + 450, T::Invalido}, {kBase - 1, T::Invalido}, {0, T::Invalido}, {INT32_MAX, T::Invalido}};
  for (const auto& [id, tipo] : casos) EXPECT_EQ(QVTipoCampoVinculo(id), tipo) << std::hex << id;
}

TEST(CIEVinculoTest, CriteriosCorrespondemAoRegistro) {
  const CIEVinculo registro = Vinculo({{kTexto, 0, "José da Conceição"}, {kValor2, 1500, ""}, {kValor2, 1501, ""}});
  const std::pair<CIEVinculo, bool> casos[] = {
      {Vinculo({}), true},
      {Vinculo({{kTexto, 7, "JOSÉ DA CONCEIÇÃO"}, {kValor2, 1501, ""}}), true},  // a field given again replaces
      {Vinculo({{kTexto, 0, "Jose da Conceicao"}}), false},                        // accents count
      {Vinculo({{kValor2, 1500, ""}}), false},
      {Vinculo({{kBase, 46000, ""}}), false},                                      // a field the record lacks
      {Vinculo({{kTexto, 9, ""}, {kBase, 0, "x"}}), true},                         // empty criteria: dropped
  };
  for (std::size_t i = 0; i < std::size(casos); ++i)
    EXPECT_EQ(casos[i].first.Corresponde(registro), casos[i].second) << i;
  EXPECT_EQ(registro.m_campos.size(), 2u);
  EXPECT_TRUE(casos[5].first.Vazio());
}
