// What the call frame costs in process: a business call through the frame
// (timing, guard, log scope, statistics) and KeepAlive, which passes by the
// frame, each against a bare virtual call on the server object.
//
// Every call goes through a pointer to member function that
// benchmark::DoNotOptimize hides from the compiler at each iteration: with
// the object's type in sight it would devirtualise the call (hiding only
// the object is not enough: it then guesses the one implementation it sees
// and inlines it behind a type check), and time nothing.
#include <benchmark/benchmark.h>

#include <memory>

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
  IQVGE_Atendimento* o = new CQVGE_Atendimento();
  std::int32_t ok = 0;
  HRESULT (IQVGE_Atendimento::*pKeepAlive)(std::int32_t*) = &IQVGE_Atendimento::KeepAlive;
  for (auto _ : state) {
    benchmark::DoNotOptimize(o);
    benchmark::DoNotOptimize(pKeepAlive);
    benchmark::DoNotOptimize((o->*pKeepAlive)(&ok));
    benchmark::DoNotOptimize(ok);
  }
  o->Release();
}
BENCHMARK(BM_KeepAlive);

static void BM_ChamadaPeloFrame(benchmark::State& state) {
  QVDefineRaizDados("/tmp/zelkorin-bench");
  IQVGE_Atendimento* o = new CQVGE_Atendimento([] { return std::make_unique<CServidorRapido>(); });
  if (!QVFalhouBench(state, "o->Inicializa_Padrao(...)",
                     o->Inicializa_Padrao(QVBenchInicializacao("FrameBench.cpp")))) {
    std::int32_t ok = 0;
    HRESULT (IQVGE_Atendimento::*pMetodo)(std::uint32_t, std::int32_t*) =
        &IQVGE_Atendimento::ConsistirNumeroAtendimentoPS;
    for (auto _ : state) {
      benchmark::DoNotOptimize(o);
      benchmark::DoNotOptimize(pMetodo);
      benchmark::DoNotOptimize((o->*pMetodo)(1, &ok));
      benchmark::DoNotOptimize(ok);
    }
  }
  o->Release();
}
BENCHMARK(BM_ChamadaPeloFrame);

static void BM_ChamadaDireta(benchmark::State& state) {
  const auto servidor = std::make_unique<CServidorRapido>();
  CGeServidorAtendimento* s = servidor.get();
  std::int32_t ok = 0;
  HRESULT (CGeServidorAtendimento::*pMetodo)(std::uint32_t, std::int32_t*) =
      &CGeServidorAtendimento::ConsistirNumeroAtendimentoPS;
  for (auto _ : state) {
    benchmark::DoNotOptimize(s);
    benchmark::DoNotOptimize(pMetodo);
    benchmark::DoNotOptimize((s->*pMetodo)(1, &ok));
    benchmark::DoNotOptimize(ok);
  }
}
BENCHMARK(BM_ChamadaDireta);
