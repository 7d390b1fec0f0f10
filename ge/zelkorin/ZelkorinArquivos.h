// The data files of the GE module, by name: what each holds, so that the
// administrators' tools can check whole records and texts, and which roots
// name one file per month.
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "core/qvdatabase/QVVerificacao.h"

struct QVArquivoGE {
  const char* raiz;  // name without period and extension
  EQVTipoConteudo tipo;
  std::size_t tamRegistro;
  bool bPorMes;  // one file per month: raiz + "AAAAMM" + ".dat"
};

// The file kind of a name (letter case ignored): a file of the module, or a
// member of one of its month groups (whatever its period); null otherwise.
const QVArquivoGE* QVProcuraArquivoGE(const std::string& sNomeArquivo);

struct QVRaizMensalGE {
  const char* raiz;
  // Renamed from root + "MMAA" to root + "AAAAMM" by the conversion before
  // any group is opened.
  bool bRenomeadaPelaConversao;
};
// Every root the module opens as a group of month files
// (QVPadraoGrupoMensal): today's and those of older layouts, which the
// conversion reads.
std::span<const QVRaizMensalGE> QVRaizesMensaisGE();
