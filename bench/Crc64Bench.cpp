// CRC-64 throughput: every header check and every initialisation record
// goes through it.
#include <benchmark/benchmark.h>

#include <vector>

#include "df/qvlibex/QVCrc64.h"

static void BM_Crc64(benchmark::State& state) {
  std::vector<unsigned char> dados(static_cast<std::size_t>(state.range(0)), 0x5A);
  for (auto _ : state) benchmark::DoNotOptimize(QVCrc64(dados.data(), dados.size()));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}
BENCHMARK(BM_Crc64)->Arg(208)->Arg(288)->Arg(64 << 10);
