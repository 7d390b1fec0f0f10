// The sample client session: what a client program of the suite does with
// the server's two classes, step by step, with every answer printed.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

struct QVOpcoesSessaoExemplo {
  std::string empresa = "EMPRESA_EXEMPLO";
  std::uint32_t usuario = 1;
  std::uint32_t numeroSessao = 1;
};

// Runs the session in this process against the registered classes and
// prints to out. Returns 0 when every answer was the expected one.
int QVExecutaSessaoExemplo(const QVOpcoesSessaoExemplo& opcoes, std::FILE* out);
