// The 240-byte block at the start of every data file with a header.
//
// All integers little-endian. "now" is the 64-bit local date-time
// (df/qvlibex/QVDatas.h: 100 ns ticks since 1601-01-01, local time).
//
//  off size field                      content
//    0   2 usVersaoCabecalho          1, the only header layout known
//    2   6 reserved                   0
//    8   8 preamble check 1           CRC-64 of bytes 0..1
//   16   8 preamble check 2           CRC-64 of bytes 8..15
//  ---- header (216 bytes) ------------------------------------------------
//   24   8 last update                now, at every header update
//   32   8 created                    now, when the header is made
//   40   8 created (second copy)      now, when the header is made
//   48   8 company changed            now, when the stored company changes
//   56   8 computer changed           now, when the stored computer changes
//   64   8 header size                always 216
//   72   8 data length                file length - 240
//   80   8 update counter             +1 per update; wraps to 0 and bumps the wrap counter
//   88   8 session number             of the last writer
//   96   4 reserved                   0
//  100   4 user                       of the last writer
//  104   2 usVersaoArquivo            the file's own format version (1 at creation)
//  106   2 system version at creation 118
//  108   2 system version at update   118
//  110   2 wrap counter
//  112  24 file name                  last 23 characters of the name, NUL-padded
//  136  24 company                    last 23 characters, NUL-terminated
//  160  24 previous company
//  184  16 computer name              at most 15 characters
//  200  16 previous computer name
//  216  16 reserved                   0
//  232   8 header check               CRC-64 of bytes 24..231
// Data (records, texts) begins at offset 240. Texts in the block are in the
// suite's 8-bit code page.
#pragma once

#include <cstddef>
#include <cstdint>

#include "df/qvlibex/QVRegistrosDF.h"

inline constexpr std::uint16_t kQVVersaoCabecalho = 1;
inline constexpr std::uint32_t kQVTamanhoPreambulo = 24;
inline constexpr std::uint32_t kQVTamanhoCabecalho = 216;
inline constexpr std::uint32_t kQVTamanhoBlocoCabecalho = kQVTamanhoPreambulo + kQVTamanhoCabecalho;  // 240
// The header check covers the header's first 208 bytes (file bytes 24..231).
inline constexpr std::uint32_t kQVBytesCrcCabecalho = 208;
// Texts of the block keep their last 23 characters and a terminator.
inline constexpr std::size_t kQVMaxTextoCabecalho = 23;

struct QVPreambuloArquivo {
  std::uint16_t usVersaoCabecalho;
  std::uint8_t cReservado[6];
  std::uint64_t uiVerificacao1;
  std::uint64_t uiVerificacao2;
};

struct QVCabecalhoArquivo {
  std::int64_t iUltimaAtualizacao;
  std::int64_t iCriacao;
  std::int64_t iCriacaoCopia;
  std::int64_t iAlteracaoEmpresa;
  std::int64_t iAlteracaoComputador;
  std::uint64_t uiTamanhoCabecalho;
  std::uint64_t uiTamanhoDados;
  std::uint64_t uiContadorAtualizacoes;
  std::uint64_t uiNumeroSessao;
  std::uint32_t ulReservado;
  std::uint32_t ulUsuario;
  std::uint16_t usVersaoArquivo;
  std::uint16_t usVersaoSistemaCriacao;
  std::uint16_t usVersaoSistemaAtualizacao;
  std::uint16_t usContadorVoltas;
  char szNomeArquivo[24];
  char szEmpresa[24];
  char szEmpresaAnterior[24];
  char szComputador[16];
  char szComputadorAnterior[16];
  std::uint8_t cReservado[16];
  std::uint64_t uiVerificacaoCabecalho;
};

static_assert(sizeof(QVPreambuloArquivo) == kQVTamanhoPreambulo);
QV_ASSERT_CAMPO(QVPreambuloArquivo, usVersaoCabecalho, 0);
QV_ASSERT_CAMPO(QVPreambuloArquivo, cReservado, 2);
QV_ASSERT_CAMPO(QVPreambuloArquivo, uiVerificacao1, 8);
QV_ASSERT_CAMPO(QVPreambuloArquivo, uiVerificacao2, 16);

// Offsets below are from the start of the header (file offset - 24).
static_assert(sizeof(QVCabecalhoArquivo) == kQVTamanhoCabecalho);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, iUltimaAtualizacao, 0);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, iCriacao, 8);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, iCriacaoCopia, 16);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, iAlteracaoEmpresa, 24);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, iAlteracaoComputador, 32);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, uiTamanhoCabecalho, 40);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, uiTamanhoDados, 48);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, uiContadorAtualizacoes, 56);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, uiNumeroSessao, 64);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, ulReservado, 72);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, ulUsuario, 76);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, usVersaoArquivo, 80);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, usVersaoSistemaCriacao, 82);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, usVersaoSistemaAtualizacao, 84);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, usContadorVoltas, 86);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, szNomeArquivo, 88);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, szEmpresa, 112);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, szEmpresaAnterior, 136);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, szComputador, 160);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, szComputadorAnterior, 176);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, cReservado, 192);
QV_ASSERT_CAMPO(QVCabecalhoArquivo, uiVerificacaoCabecalho, 208);
static_assert(offsetof(QVCabecalhoArquivo, uiVerificacaoCabecalho) == kQVBytesCrcCabecalho);
