#include "df/qvlibex/QVMoeda.h"

#include <gtest/gtest.h>

#include <limits>

TEST(QVMoeda, TextoComSeparadoresEArredondamento) {
  EXPECT_EQ(QVMoedaTexto(12345678, 2), "1.234,57");
  EXPECT_EQ(QVMoedaTexto(-12345678, 2), "-1.234,57");
  EXPECT_EQ(QVMoedaTexto(12345678, 4), "1.234,5678");
  EXPECT_EQ(QVMoedaTexto(12345678, 0), "1.235");
  EXPECT_EQ(QVMoedaTexto(12345678, 2, false), "1234,57");
  EXPECT_EQ(QVMoedaTexto(50, 2), "0,01");  // half away from zero
  EXPECT_EQ(QVMoedaTexto(-50, 2), "-0,01");
  EXPECT_EQ(QVMoedaTexto(-49, 2), "0,00");  // no "-0,00"
  EXPECT_EQ(QVMoedaTexto(0, 2), "0,00");
  EXPECT_EQ(QVMoedaTexto(1000000000, 2), "100.000,00");
  EXPECT_EQ(QVMoedaTexto(std::numeric_limits<std::int64_t>::min(), 4), "-922.337.203.685.477,5808");
  EXPECT_EQ(QVMoedaTexto(std::numeric_limits<std::int64_t>::max(), 4), "922.337.203.685.477,5807");
}

TEST(QVMoeda, LeituraDoTexto) {
  constexpr QVMoeda kRecusado = 7;
  const std::pair<const char*, QVMoeda> casos[] = {
      {"1.234,5", 12345000}, {"-0,0001", -1}, {"12", 120000},
      {"-922.337.203.685.477,5808", std::numeric_limits<std::int64_t>::min()},
      {"922.337.203.685.477,5808", kRecusado}, {"1,23456", kRecusado}, {"1,2,3", kRecusado},
      {"abc", kRecusado}, {"-", kRecusado}, {"", kRecusado}};
  for (const auto& [texto, valor] : casos) {
    QVMoeda v = kRecusado;
    EXPECT_EQ(QVMoedaLe(texto, &v), valor != kRecusado) << texto;
    EXPECT_EQ(v, valor) << texto;  // a refusal leaves v alone
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
  EXPECT_FALSE(QVMoedaMultiplica(std::numeric_limits<std::int64_t>::max(), 20000, &r));
}
