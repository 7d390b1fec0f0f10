// What the call frame costs in process: a business call through the frame
// (timing, guard, log scope, statistics) against the same call made on the
// server object directly.
#include <benchmark/benchmark.h>

#include "bench/BenchComum.h"
#include "ge/zelkorin/CQVGE_Atendimento.h"

namespace {

class CServidorRapido : public CGeServidorAtendimento {
 public:
  HRESULT ConsistirNumeroAtendimentoPS(std::uint32_t, std::int32_t* p) override {
    *p = 1;
    return S_OK;
  }
};

}  // namespace

static void BM_KeepAlive(benchmark::State& state) {
  auto* o = new CQVGE_Atendimento();
  std::int32_t ok = 0;
  for (auto _ : state) benchmark::DoNotOptimize(o->KeepAlive(&ok));
  o->Release();
}
BENCHMARK(BM_KeepAlive);

static void BM_ChamadaPeloFrame(benchmark::State& state) {
  QVDefineRaizDados("/tmp/zelkorin-bench");
  auto* o = new CQVGE_Atendimento([] { return std::make_unique<CServidorRapido>(); });
  if (FAILED(o->Inicializa_Padrao(QVBenchInicializacao("FrameBench.cpp")))) state.SkipWithError("Inicializa_Padrao");
  std::int32_t ok = 0;
  for (auto _ : state) benchmark::DoNotOptimize(o->ConsistirNumeroAtendimentoPS(1, &ok));
  o->Release();
}
BENCHMARK(BM_ChamadaPeloFrame);

static void BM_ChamadaDireta(benchmark::State& state) {
  CServidorRapido servidor;
  std::int32_t ok = 0;
  for (auto _ : state) benchmark::DoNotOptimize(servidor.ConsistirNumeroAtendimentoPS(1, &ok));
}
BENCHMARK(BM_ChamadaDireta);
