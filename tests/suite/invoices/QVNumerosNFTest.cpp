// Invoice numbers as reports print them and as users type them.
#include "suite/invoices/QVNumerosNF.h"

#include <gtest/gtest.h>

TEST(QVNumerosNF, TextosELeitura) {
  EXPECT_EQ(QVNumeroNFTexto(0), "");
  EXPECT_EQ(QVNumeroNFTexto(1234567), "1234567");
  EXPECT_EQ(QVNumeroNFTextoComSerie(123, "A"), "123/A");
  EXPECT_EQ(QVNumeroNFTextoComSerie(123, ""), "123");
  EXPECT_EQ(QVNumeroNFTextoComSerie(0, "A"), "");

  constexpr std::int64_t kRecusado = -7;
  const std::pair<const char*, std::int64_t> casos[] = {
      {"1", 1}, {"0001", 1}, {"1.234", 1234}, {"12.345.678", 12345678},
      {"999999999999999999", 999999999999999999}, {"999.999.999.999.999.999", 999999999999999999},
      {"1000000000000000000", kRecusado},  // 19 digits
      {"", kRecusado}, {"12.34", kRecusado}, {"1.2345", kRecusado}, {"1234.567", kRecusado}, {".123", kRecusado},
      {"123.", kRecusado}, {"1..234", kRecusado}, {"-1", kRecusado}, {" 1", kRecusado}, {"1,5", kRecusado},
      {"1/A", kRecusado}};
  for (const auto& [texto, numero] : casos) {
    std::int64_t i64 = kRecusado;
    EXPECT_EQ(QVNumeroNFLe(texto, &i64), numero != kRecusado) << texto;
    EXPECT_EQ(i64, numero) << texto;
  }
}
