// CRC-64 throughput: every header check and every initialisation record
// goes through it. Its baseline is the classic loop over one table, a byte
// per step, which gives the same value.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <vector>

#include "df/qvlibex/QVCrc64.h"

namespace {

std::uint64_t Crc64PorByte(const unsigned char* p, std::size_t n) {
  static const auto tabela = [] {
    std::array<std::uint64_t, 256> t{};
    for (std::uint32_t i = 0; i < 256; ++i) {
      std::uint64_t crc = i;
      for (int b = 0; b < 8; ++b) crc = (crc & 1) ? (crc >> 1) ^ kQVCrc64Polinomio : crc >> 1;
      t[i] = crc;
    }
    return t;
  }();
  std::uint64_t crc = 0;
  while (n-- > 0) crc = tabela[(crc ^ *p++) & 0xFF] ^ (crc >> 8);
  return crc;
}

// Bytes that vary, so that no table entry is favoured.
std::vector<unsigned char> Dados(std::size_t n) {
  std::vector<unsigned char> d(n);
  for (std::size_t i = 0; i < n; ++i) d[i] = static_cast<unsigned char>(i * 131 + 7);
  return d;
}

}  // namespace

static void BM_Crc64(benchmark::State& state) {
  const auto dados = Dados(static_cast<std::size_t>(state.range(0)));
  if (QVCrc64(dados.data(), dados.size()) != Crc64PorByte(dados.data(), dados.size()))
    state.SkipWithError("QVCrc64 and the one-table loop disagree");
  for (auto _ : state) {
    const unsigned char* p = dados.data();
    benchmark::DoNotOptimize(p);
    benchmark::DoNotOptimize(QVCrc64(p, dados.size()));
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK(BM_Crc64)->Arg(208)->Arg(288)->Arg(64 << 10);

static void BM_Crc64PorByte(benchmark::State& state) {
  const auto dados = Dados(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    const unsigned char* p = dados.data();
    benchmark::DoNotOptimize(p);
    benchmark::DoNotOptimize(Crc64PorByte(p, dados.size()));
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK(BM_Crc64PorByte)->Arg(208)->Arg(288)->Arg(64 << 10);
