// The service value and the hours-and-minutes of reports: exact fixed-point
// rounding at its edges, and refusals that write nothing.
#include "suite/moduleutil/CGeUtils.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

#include "tests/support/QVTestSupport.h"

constexpr QVMoeda kMin = std::numeric_limits<QVMoeda>::min(), kMax = std::numeric_limits<QVMoeda>::max();

TEST(CGeUtils, ValorDoServicoArredondaQuantidadeECentavosUmaVezCada) {
  constexpr QVMoeda k = 777;  // untouched
  const std::tuple<QVMoeda, QVMoeda, int, HRESULT, QVMoeda> casos[] = {
      // quantity, unit value, decimals of the unit; status, value (1,5 is 15000)
      {11250, 100000, 2, S_OK, 113000}, {-11250, 100000, 2, S_OK, -113000},  // 1,125 -> 1,13 x 10,00
      {11249, 100000, 2, S_OK, 112000},
      {10000, 50, 0, S_OK, 100}, {10000, -50, 0, S_OK, -100}, {10000, 49, 0, S_OK, 0},  // 0,005 -> 0,01
      {99, 5000, 4, S_OK, 0},  // 0,00495: 0,00, not 0,0050 and then 0,01
      {25000, 70000, 0, S_OK, 210000}, {-25000, 70000, 0, S_OK, -210000}, {24999, 70000, 0, S_OK, 140000},
      {12345, 10000, 4, S_OK, 12300}, {12355, 10000, 4, S_OK, 12400},
      {500, 33300, 1, S_OK, 3300}, {5, 50000, 3, S_OK, 100},  // 0,1 x 3,33; 0,001 x 5,00
      {kMax, 10000, 4, S_OK, kMax - 7}, {kMin, 10000, 4, S_OK, kMin + 8},
      {kMin, -10000, 4, S_OK, kMax - 7},  // past the range by 0,0001: back in it in cents
      {kMax, 10000, 0, DISP_E_OVERFLOW, k},  // the rounded quantity itself leaves the range
      {kMax, 20000, 2, DISP_E_OVERFLOW, k}, {kMax, -20000, 4, DISP_E_OVERFLOW, k}, {kMin, kMin, 4, DISP_E_OVERFLOW, k},
      {10000, 10000, -1, E_INVALIDARG, k}, {10000, 10000, 5, E_INVALIDARG, k}};
  QVTesteLimpaLog();
  std::size_t nFalhas = 0;
  for (const auto& [horas, unitario, casas, hr, valor] : casos) {
    SCOPED_TRACE(::testing::Message() << horas << " x " << unitario << " (" << casas << ")");
    QVMoeda v = k;
    EXPECT_EQ(CGeUtils::CalcularValorTotalServicoAtendimento(horas, unitario, casas, &v), hr);
    EXPECT_EQ(v, valor);
    nFalhas += FAILED(hr) ? 1 : 0;
  }
  EXPECT_EQ(QVTesteLinhasErro().size(), nFalhas);  // one line each
}

TEST(CGeUtils, HorasEMinutosArredondamMinutosComSinalNosDois) {
  constexpr std::int32_t kMaxHoras = std::numeric_limits<std::int32_t>::max();  // hours stop at 32 bits
  const std::tuple<QVMoeda, std::int32_t, std::int32_t> casos[] = {
      {0, 0, 0}, {15000, 1, 30}, {19999, 2, 0}, {9916, 0, 59}, {9917, 1, 0},  // 59,496 and 59,502 min
      {250, 0, 2}, {249, 0, 1}, {-12500, -1, -15}, {-250, 0, -2}, {-19999, -2, 0},
      {kMax, kMaxHoras, 35}, {kMin, -kMaxHoras, -35}};
  for (const auto& [horas, h, m] : casos) {
    std::int32_t iHoras = -99, iMinutos = -99;
    CGeUtils::ConverteCurrencyToHM(horas, &iHoras, &iMinutos);
    EXPECT_EQ(std::make_pair(iHoras, iMinutos), std::make_pair(h, m)) << horas;
  }
}
