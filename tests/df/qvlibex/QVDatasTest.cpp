#include "df/qvlibex/QVDatas.h"

#include <gtest/gtest.h>

TEST(QVMesAno, LimitesDaFaixa) {
  EXPECT_EQ(QVMesAno(1848, 1), 1);
  EXPECT_EQ(QVMesAno(4717, 12), 34440);
  EXPECT_EQ(QVMesAno(4718, 1), 0);  // would be 34441
  EXPECT_EQ(QVMesAno(1847, 12), 0);
  EXPECT_EQ(QVMesAno(2020, 0), 0);
  EXPECT_EQ(QVMesAno(2020, 13), 0);
  EXPECT_EQ(QVMesAno(-5, 1), 0);
}

TEST(QVMesAno, AnosComDoisDigitos) {
  EXPECT_EQ(QVMesAno(83, 7), QVMesAno(2083, 7));
  EXPECT_EQ(QVMesAno(84, 7), QVMesAno(1984, 7));
  EXPECT_EQ(QVMesAno(0, 1), QVMesAno(2000, 1));
  EXPECT_EQ(QVMesAno(99, 12), QVMesAno(1999, 12));
  EXPECT_EQ(QVMesAno(100, 1), 0);  // three digits: a real year, out of range
}

TEST(QVMesAno, MesesConsecutivosDiferemDeUm) {
  EXPECT_EQ(QVMesAno(2020, 12) + 1, QVMesAno(2021, 1));
  int a = 0, m = 0;
  ASSERT_TRUE(QVMesAnoDecompoe(QVMesAno(2020, 7), &a, &m));
  EXPECT_EQ(a, 2020);
  EXPECT_EQ(m, 7);
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
  const SYSTEMTIME volta = QVDataHoraDecompoe(v);
  EXPECT_EQ(volta.wYear, 2026);
  EXPECT_EQ(volta.wMonth, 11);
  EXPECT_EQ(volta.wDay, 22);
  EXPECT_EQ(volta.wDayOfWeek, 0);  // a Sunday
  EXPECT_EQ(volta.wHour, 14);
  EXPECT_EQ(volta.wMilliseconds, 123);
  EXPECT_EQ(QVDataHoraTexto(v), "2026-11-22 14:03:05.123");
  EXPECT_EQ(QVDataHora(SYSTEMTIME{1601, 1, 1, 1, 0, 0, 0, 0}), 0);
  st.wSecond = 6;
  EXPECT_EQ(QVDataHora(st) - v, 10000000);  // one second in 100 ns ticks
}

TEST(QVDataHora, RelogioFixadoPelosTestes) {
  const SYSTEMTIME fixo{2020, 7, 0, 1, 10, 0, 0, 0};
  QVClockFixLocalTime(&fixo);
  EXPECT_EQ(QVHoje(), QVDia(2020, 7, 1));
  QVClockFixLocalTime(nullptr);
  EXPECT_NE(QVHoje(), QVDia(2020, 7, 1));
}
