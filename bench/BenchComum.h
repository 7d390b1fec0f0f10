// What the benchmarks share: the initialisation record of their objects.
#pragma once

#include "suite/hostlink/QVSessaoSuite.h"

inline _REG_DF_INICIALIZAPS QVBenchInicializacao(const char* arquivoFonte) {
  QVDadosInicializacao d;
  d.empresa = "BENCH";
  d.usuario = 1;
  d.aplicativo = "bench";
  d.moduleName = "GE";
  d.arquivoFonte = arquivoFonte;
  d.linhaFonte = 1;
  return QVMontaInicializaPS(d);
}
