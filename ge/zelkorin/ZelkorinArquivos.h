// The data files of the GE module, by name: what each holds, so that the
// administrators' tools can check whole records and texts.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "core/qvdatabase/QVVerificacao.h"

struct QVArquivoGE {
  const char* raiz;  // name without period and extension
  EQVTipoConteudo tipo;
  std::size_t tamRegistro;
  bool bPorMes;  // one file per month: raiz + "AAAAMM" + ".dat"
};

// The file kind of a name (letter case ignored); null when the module has
// no file of that name.
const QVArquivoGE* QVProcuraArquivoGE(const std::string& sNomeArquivo);
// The roots of the module's month files, including those of older layouts
// that only the conversion reads.
std::vector<const char*> QVRaizesPorMesGE();
