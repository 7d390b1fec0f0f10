#include "df/qvlibex/QVMoeda.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

constexpr QVMoeda kMin = std::numeric_limits<std::int64_t>::min(), kMax = std::numeric_limits<std::int64_t>::max();

// Text: thousands separated, rounded half away from zero, never "-0,00".
// Reading: what does not read whole is refused and leaves the value alone.
TEST(QVMoeda, TextoComSeparadoresEArredondamentoELeitura) {
  const std::tuple<QVMoeda, int, const char*> casos[] = {
      {12345678, 2, "1.234,57"}, {-12345678, 2, "-1.234,57"}, {12345678, 4, "1.234,5678"}, {12345678, 0, "1.235"},
      {50, 2, "0,01"},           {-50, 2, "-0,01"},           {-49, 2, "0,00"},            {0, 2, "0,00"},
      {1000000000, 2, "100.000,00"}, {kMin, 4, "-922.337.203.685.477,5808"}, {kMax, 4, "922.337.203.685.477,5807"}};
  for (const auto& [valor, casas, texto] : casos) EXPECT_EQ(QVMoedaTexto(valor, casas), texto) << valor;
  EXPECT_EQ(QVMoedaTexto(12345678, 2, false), "1234,57");

  constexpr QVMoeda kRecusado = 7;
  const std::pair<const char*, QVMoeda> lidos[] = {
      {"1.234,5", 12345000}, {"-0,0001", -1}, {"12", 120000}, {"-922.337.203.685.477,5808", kMin},
      {"922.337.203.685.477,5808", kRecusado}, {"1,23456", kRecusado}, {"1,2,3", kRecusado},
      {"abc", kRecusado}, {"-", kRecusado}, {"", kRecusado}};
  for (const auto& [texto, valor] : lidos) {
    QVMoeda v = kRecusado;
    EXPECT_EQ(QVMoedaLe(texto, &v), valor != kRecusado) << texto;
    EXPECT_EQ(v, valor) << texto;
  }
}

TEST(QVMoeda, MultiplicacaoExata) {
  QVMoeda r = 0;
  ASSERT_TRUE(QVMoedaMultiplica(15000, 25000, &r));  // 1,5 x 2,5
  EXPECT_EQ(r, 37500);
  ASSERT_TRUE(QVMoedaMultiplica(1, 5000, &r));  // 0,0001 x 0,5 rounds away from zero
  EXPECT_EQ(r, 1);
  ASSERT_TRUE(QVMoedaMultiplica(-1, 5000, &r));
  EXPECT_EQ(r, -1);
  EXPECT_FALSE(QVMoedaMultiplica(kMax, 20000, &r));
}
