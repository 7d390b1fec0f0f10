// The benchmarks' main; run as "--servidor-bench SOCKET" it is instead the
// server the transport benchmarks talk to.
#include <benchmark/benchmark.h>

#include <cstring>

#include "bench/RpcBench.h"

int main(int argc, char** argv) {
  if (argc == 3 && std::strcmp(argv[1], "--servidor-bench") == 0) return QVExecutaServidorBench(argv[2]);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
