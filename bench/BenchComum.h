// What the benchmarks share: the initialisation record of their objects and
// the way a benchmark gives up when its set-up fails.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "df/qvlibex/QVStatus.h"
#include "platform/QVHResult.h"
#include "suite/hostlink/QVSessaoSuite.h"

inline _REG_DF_INICIALIZAPS QVBenchInicializacao(const char* arquivoFonte, const char* empresa = "BENCH") {
  QVDadosInicializacao d;
  d.empresa = empresa;
  d.usuario = 1;
  d.aplicativo = "bench";
  d.moduleName = "GE";
  d.arquivoFonte = arquivoFonte;
  d.linhaFonte = 1;
  return QVMontaInicializaPS(d);
}

// Marks the benchmark as failed with the expression and the status that
// failed (it then reports no figure, and the run goes on to the next one).
// Returns whether hr was a failure:
//   if (QVFalhouBench(state, "f->Grava(pos, r)", f->Grava(pos, r))) break;
inline bool QVFalhouBench(benchmark::State& state, const char* expressao, HRESULT hr) {
  if (SUCCEEDED(hr)) return false;
  char codigo[16];
  std::snprintf(codigo, sizeof codigo, "0x%08X", static_cast<unsigned>(hr));
  const std::string nome = QVNomeSimbolico(hr);
  state.SkipWithError((std::string(expressao) + ": " + (nome.empty() ? codigo : nome)).c_str());
  return true;
}
