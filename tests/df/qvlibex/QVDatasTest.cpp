#include "df/qvlibex/QVDatas.h"

#include <gtest/gtest.h>

#include <tuple>

TEST(QVMesAno, FaixaAnosComDoisDigitosEDecomposicao) {
  const std::tuple<int, int, std::uint16_t> casos[] = {
      {1848, 1, 1},   {4717, 12, 34440}, {4718, 1, 0},     {1847, 12, 0},  {2020, 0, 0}, {2020, 13, 0}, {-5, 1, 0},
      {83, 7, 2827},  {84, 7, 1639},     {0, 1, 1825},    {99, 12, 1824}, {100, 1, 0},  // 83 is 2083, 84 is 1984
  };
  for (const auto& [ano, mes, iMA] : casos) EXPECT_EQ(QVMesAno(ano, mes), iMA) << ano << "-" << mes;
  // Consecutive months differ by one; a valid code splits back, 0 and codes
  // past the last do not.
  EXPECT_EQ(QVMesAno(2020, 12) + 1, QVMesAno(2021, 1));
  int a = 0, m = 0;
  ASSERT_TRUE(QVMesAnoDecompoe(QVMesAno(2020, 7), &a, &m));
  EXPECT_EQ(a * 100 + m, 202007);
  EXPECT_FALSE(QVMesAnoDecompoe(0, &a, &m));
  EXPECT_FALSE(QVMesAnoDecompoe(34441, &a, &m));
}

TEST(QVDia, ContagemDesde1899) {
  EXPECT_EQ(QVDia(1899, 12, 31), 1u);
  EXPECT_EQ(QVDia(1900, 1, 1), 2u);
  EXPECT_EQ(QVDia(2026, 11, 22), 46348u);
  EXPECT_EQ(QVDia(2079, 6, 4), 65535u);  // the last day that fits 16 bits
  EXPECT_EQ(QVDia(1899, 12, 30), 0u);
  EXPECT_EQ(QVDia(2023, 2, 29), 0u);
  EXPECT_EQ(QVDia(2024, 2, 29), QVDia(2024, 3, 1) - 1);
  int a, m, d;
  ASSERT_TRUE(QVDiaDecompoe(QVDia(2000, 2, 29), &a, &m, &d));
  EXPECT_EQ(a * 10000 + m * 100 + d, 20000229);
  EXPECT_EQ(QVMesAnoDoDia(QVDia(2020, 7, 15)), QVMesAno(2020, 7));
  EXPECT_EQ(QVUltimoDiaDoMes(QVMesAno(2024, 2)), QVDia(2024, 2, 29));
  EXPECT_EQ(QVPrimeiroDiaDoMes(QVMesAno(2024, 3)), QVDia(2024, 3, 1));
}

TEST(QVHoraMinuto, CodificacaoEmMinutos) {
  EXPECT_EQ(QVHoraMinuto(0, 0), 0);
  EXPECT_EQ(QVHoraMinuto(23, 59), 1439);
  EXPECT_EQ(QVHoraMinuto(24, 0), kQVHoraInvalida);
  EXPECT_EQ(QVHoraMinuto(8, 60), kQVHoraInvalida);
  int h, m;
  ASSERT_TRUE(QVHoraMinutoDecompoe(QVHoraMinuto(13, 45), &h, &m));
  EXPECT_EQ(h * 100 + m, 1345);
  EXPECT_FALSE(QVHoraMinutoDecompoe(1440, &h, &m));
}

TEST(QVDataHora, IdaEVolta) {
  SYSTEMTIME st{2026, 11, 0, 22, 14, 3, 5, 123};
  const std::int64_t v = QVDataHora(st);
  EXPECT_EQ(QVDataHoraDecompoe(v).wDayOfWeek, 0);  // a Sunday
  EXPECT_EQ(QVDataHoraTexto(v), "2026-11-22 14:03:05.123");
  EXPECT_EQ(QVDataHora(SYSTEMTIME{1601, 1, 1, 1, 0, 0, 0, 0}), 0);
  st.wSecond = 6;
  EXPECT_EQ(QVDataHora(st) - v, 10000000);  // one second in 100 ns ticks
}
