// Verification of data files for the administrators' tools: the header,
// its checks, the data length and the stored name, and, when the content's
// kind is known, whole records or whole texts. A file is only ever opened
// read-only, the file-creation control is not consulted, and nothing is
// written: verification never changes a file.
#pragma once

#include <cstdint>
#include <string>

#include "platform/QVHResult.h"

enum class EQVTipoConteudo {
  Desconhecido,  // header only
  Registros,  // fixed-size records of tamRegistro bytes
  RegistroUnico,  // exactly one record of tamRegistro bytes
  Texto,  // counted texts
};

struct QVResultadoVerificacao {
  HRESULT hr = S_OK;
  bool bPossuiCabecalho = false;
  std::uint64_t uiTamanhoDados = 0;
  std::uint64_t uiQuantidade = 0;  // records or texts, when the kind is known
  // Bytes past the header's data length: a write whose process died before
  // completing it, never acknowledged, cut off at the next open for writing.
  std::uint64_t uiBytesEscritaInacabada = 0;
};

QVResultadoVerificacao QVVerificaArquivo(const std::string& sCaminho, EQVTipoConteudo eTipo,
                                         std::size_t tamRegistro = 0);
