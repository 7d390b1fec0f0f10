// Types shared by the record store's classes.
#pragma once

#include <cstdint>

#include "platform/QVOsFile.h"

// The modes a data file is opened in; the values are the platform's open
// flag sets and are stored as such.
enum class EQVDataBase_ModoAbertura : std::uint32_t {
  eModoFechado = 0,
  // Read and write; created when absent, never truncated; others may read
  // but not write.
  eModoLeituraGravacaoCriacao = QVFILE_MODE_READWRITE | QVFILE_SHARE_DENY_WRITE | QVFILE_MODE_CREATE |
                                QVFILE_MODE_NO_TRUNCATE,
  // Read and write an existing file, never truncated; others may read but
  // not write.
  eModoLeituraGravacao = QVFILE_MODE_READWRITE | QVFILE_SHARE_DENY_WRITE | QVFILE_MODE_NO_TRUNCATE,
  // Read only, never truncated; others may read and write.
  eModoLeitura = QVFILE_MODE_READ | QVFILE_SHARE_DENY_NONE | QVFILE_MODE_NO_TRUNCATE,
};
static_assert(static_cast<std::uint32_t>(EQVDataBase_ModoAbertura::eModoLeituraGravacaoCriacao) == 0x3022);
static_assert(static_cast<std::uint32_t>(EQVDataBase_ModoAbertura::eModoLeituraGravacao) == 0x2022);
static_assert(static_cast<std::uint32_t>(EQVDataBase_ModoAbertura::eModoLeitura) == 0x2040);

constexpr bool QVModoGravacao(EQVDataBase_ModoAbertura m) {
  return m == EQVDataBase_ModoAbertura::eModoLeituraGravacaoCriacao ||
         m == EQVDataBase_ModoAbertura::eModoLeituraGravacao;
}

enum class EQVDataBase_DeletaArquivoFlag : std::uint32_t {
  eNenhum = 0,
  // Also drop the file from the file-creation control's list in memory.
  eRemoverDoControleCriacaoArquivosInMemory = 1,
};

// The record store's positions: 1-based; 0 is none on reads, append on writes.
using QVUInt = std::uint64_t;

// The creation-control file of a data directory (a text file, never with a
// header).
inline constexpr const char* QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS = "QVDATABASE_FILE_CTRL.dat";
