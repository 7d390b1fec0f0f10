// Helpers for the record store's tests: raw file bytes, header patches, a
// test identity and a small record type.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "core/qvdatabase/QVFormatoCabecalho.h"
#include "df/qvlibex/QVProfilerEmpresa.h"

// 32 bytes, like the small record files of the system.
struct REG_TESTE {
  std::uint32_t lCodigo;  // unique key, never zero (column 0)
  std::uint32_t lGrupo;  // repeated keys allowed, zero allowed (column 1)
  char szNome[24];
};
static_assert(sizeof(REG_TESTE) == 32);

REG_TESTE QVTesteRegistro(std::uint32_t codigo, std::uint32_t grupo = 0, const char* nome = "");

// The identity files are opened under in the tests.
const CQVProfilerEmpresa& QVTesteIdentidade();

std::string QVTesteBytes(const std::string& caminho);
void QVTesteGravaBytes(const std::string& caminho, const std::string& bytes);
// Changes header fields on disk; with bCorrigeCrc the header check is
// recomputed (so only the changed field is wrong).
void QVTesteAlteraCabecalho(const std::string& caminho, const std::function<void(QVCabecalhoArquivo&)>& altera,
                            bool bCorrigeCrc = true);
QVCabecalhoArquivo QVTesteLeCabecalho(const std::string& caminho);
