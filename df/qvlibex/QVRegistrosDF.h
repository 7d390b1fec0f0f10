// Wire records of the support library, shared by every interface of the
// suite. Layouts are a wire format: sizes and offsets are asserted below and
// must never change. All integers little-endian; "ptr" fields are 64-bit
// pointers to arrays allocated with CoTaskMemAlloc and owned by the
// receiver; a count of 0 travels with a null pointer. Reserved fields
// (...Filler) are written as zero and ignored on reading.
//
// _REG_DF_TEXTOPS (24)              _REG_DF_FUNCAO_GENERICAPS (24)
//   +0  ulQtdBytes u32 (len+1 | 0)    +0  ulQtdBytes u32
//   +4  cFiller u8[4]                 +4  cFiller u8[4]
//   +8  pTexto ptr u8                 +8  pListaBytes ptr u8
//   +16 pFiller ptr                   +16 pFiller ptr
//
// _REG_DF_INICIALIZAPS (296): see the struct; uiCRC at +288 is the CRC-64
// of bytes 0..287.
// _REG_DF_ERROPS (480): see the struct.
// _REG_DF_LISTA_QVDMCPS (24): +0 ulQuantidade u32, +4 cFiller u8[4],
//   +8 pLista ptr u64, +16 pFiller ptr.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "df/qvlibex/QVDescritorRegistro.h"
#include "platform/QVHResult.h"

static_assert(sizeof(void*) == 8, "the wire records carry 64-bit pointers");

// The suite version every client and every file header carries.
inline constexpr std::uint16_t kQVVersaoSistema = 118;

struct _REG_DF_TEXTOPS {
  std::uint32_t ulQtdBytes;
  std::uint8_t cFiller[4];
  std::uint8_t* pTexto;
  void* pFiller;
};

struct _REG_DF_FUNCAO_GENERICAPS {
  std::uint32_t ulQtdBytes;
  std::uint8_t cFiller[4];
  std::uint8_t* pListaBytes;
  void* pFiller;
};

struct _REG_DF_INICIALIZAPS {
  std::uint32_t ulUsuario;
  std::uint32_t ulNumeroSessao;
  std::uint32_t ulLinhaFonte;
  std::uint32_t ulFiller;
  std::uint16_t usVersaoVireo;
  std::uint16_t usFiller[3];
  char szEmpresa[48];
  char szAplicativo[48];
  char szModuleName[48];
  char szArquivoFonte[64];
  char szNomeUsuarioDominio[32];
  std::uint8_t cControle;
  std::uint8_t cWTS;
  std::uint8_t szFiller[22];
  std::uint64_t uiCRC;
};

struct _REG_DF_ERROPS {
  std::int32_t hr;
  std::int32_t nCodigoErro;
  std::int32_t lCodigoMensagem;
  std::int32_t iRegistro;
  std::int32_t iItem;
  std::int32_t lCodigoCampo;
  std::uint16_t nModuloMensagem;
  std::int16_t nTipoErro;
  std::uint16_t usNumeroServidor;
  char cMensagem[302];
  char szEmpresa[48];
  std::uint8_t cFiller[100];
};

struct _REG_DF_LISTA_QVDMCPS {
  std::uint32_t ulQuantidade;
  std::uint8_t cFiller[4];
  std::uint64_t* pLista;
  void* pFiller;
};

#define QV_ASSERT_CAMPO(T, campo, off) static_assert(offsetof(T, campo) == (off), #T "." #campo)

static_assert(sizeof(_REG_DF_TEXTOPS) == 24);
QV_ASSERT_CAMPO(_REG_DF_TEXTOPS, ulQtdBytes, 0);
QV_ASSERT_CAMPO(_REG_DF_TEXTOPS, cFiller, 4);
QV_ASSERT_CAMPO(_REG_DF_TEXTOPS, pTexto, 8);
QV_ASSERT_CAMPO(_REG_DF_TEXTOPS, pFiller, 16);

static_assert(sizeof(_REG_DF_FUNCAO_GENERICAPS) == 24);
QV_ASSERT_CAMPO(_REG_DF_FUNCAO_GENERICAPS, ulQtdBytes, 0);
QV_ASSERT_CAMPO(_REG_DF_FUNCAO_GENERICAPS, cFiller, 4);
QV_ASSERT_CAMPO(_REG_DF_FUNCAO_GENERICAPS, pListaBytes, 8);
QV_ASSERT_CAMPO(_REG_DF_FUNCAO_GENERICAPS, pFiller, 16);

static_assert(sizeof(_REG_DF_INICIALIZAPS) == 296);
QV_ASSERT_CAMPO(_REG_DF_INICIALIZAPS, ulUsuario, 0);
QV_ASSERT_CAMPO(_REG_DF_INICIALIZAPS, ulNumeroSessao, 4);
QV_ASSERT_CAMPO(_REG_DF_INICIALIZAPS, ulLinhaFonte, 8);
QV_ASSERT_CAMPO(_REG_DF_INICIALIZAPS, ulFiller, 12);
QV_ASSERT_CAMPO(_REG_DF_INICIALIZAPS, usVersaoVireo, 16);
QV_ASSERT_CAMPO(_REG_DF_INICIALIZAPS, usFiller, 18);
QV_ASSERT_CAMPO(_REG_DF_INICIALIZAPS, szEmpresa, 24);
QV_ASSERT_CAMPO(_REG_DF_INICIALIZAPS, szAplicativo, 72);
QV_ASSERT_CAMPO(_REG_DF_INICIALIZAPS, szModuleName, 120);
QV_ASSERT_CAMPO(_REG_DF_INICIALIZAPS, szArquivoFonte, 168);
QV_ASSERT_CAMPO(_REG_DF_INICIALIZAPS, szNomeUsuarioDominio, 232);
QV_ASSERT_CAMPO(_REG_DF_INICIALIZAPS, cControle, 264);
QV_ASSERT_CAMPO(_REG_DF_INICIALIZAPS, cWTS, 265);
QV_ASSERT_CAMPO(_REG_DF_INICIALIZAPS, szFiller, 266);
QV_ASSERT_CAMPO(_REG_DF_INICIALIZAPS, uiCRC, 288);

static_assert(sizeof(_REG_DF_ERROPS) == 480);
QV_ASSERT_CAMPO(_REG_DF_ERROPS, hr, 0);
QV_ASSERT_CAMPO(_REG_DF_ERROPS, nCodigoErro, 4);
QV_ASSERT_CAMPO(_REG_DF_ERROPS, lCodigoMensagem, 8);
QV_ASSERT_CAMPO(_REG_DF_ERROPS, iRegistro, 12);
QV_ASSERT_CAMPO(_REG_DF_ERROPS, iItem, 16);
QV_ASSERT_CAMPO(_REG_DF_ERROPS, lCodigoCampo, 20);
QV_ASSERT_CAMPO(_REG_DF_ERROPS, nModuloMensagem, 24);
QV_ASSERT_CAMPO(_REG_DF_ERROPS, nTipoErro, 26);
QV_ASSERT_CAMPO(_REG_DF_ERROPS, usNumeroServidor, 28);
QV_ASSERT_CAMPO(_REG_DF_ERROPS, cMensagem, 30);
QV_ASSERT_CAMPO(_REG_DF_ERROPS, szEmpresa, 332);
QV_ASSERT_CAMPO(_REG_DF_ERROPS, cFiller, 380);

static_assert(sizeof(_REG_DF_LISTA_QVDMCPS) == 24);
QV_ASSERT_CAMPO(_REG_DF_LISTA_QVDMCPS, ulQuantidade, 0);
QV_ASSERT_CAMPO(_REG_DF_LISTA_QVDMCPS, cFiller, 4);
QV_ASSERT_CAMPO(_REG_DF_LISTA_QVDMCPS, pLista, 8);
QV_ASSERT_CAMPO(_REG_DF_LISTA_QVDMCPS, pFiller, 16);

template <> const QVDescritorRegistro& QVDescritor<_REG_DF_TEXTOPS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_DF_FUNCAO_GENERICAPS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_DF_INICIALIZAPS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_DF_ERROPS>();
template <> const QVDescritorRegistro& QVDescritor<_REG_DF_LISTA_QVDMCPS>();

// ---- _REG_DF_TEXTOPS --------------------------------------------------------

// Puts a copy of the text into the record: ulQtdBytes = length + 1 and a
// task-allocated buffer with the terminating zero; an empty text gives 0 and
// null. Whatever the record held before is freed first. E_OUTOFMEMORY
// leaves the record empty.
[[nodiscard]] HRESULT QVTextoPsDefine(_REG_DF_TEXTOPS* reg, std::string_view texto);
// The text of the record (the bytes before the first zero, at most
// ulQtdBytes of them); "" when empty.
std::string QVTextoPsLe(const _REG_DF_TEXTOPS& reg);
// Frees the buffer and empties the record.
void QVTextoPsLibera(_REG_DF_TEXTOPS* reg);

// ---- _REG_DF_INICIALIZAPS ---------------------------------------------------

struct QVDadosInicializacao {
  std::string empresa;
  std::uint32_t usuario = 0;
  std::uint32_t numeroSessao = 0;
  std::string aplicativo;
  std::string moduleName;
  std::string arquivoFonte;
  std::uint32_t linhaFonte = 0;
  std::string nomeUsuarioDominio;
  std::uint8_t cWTS = 0;
};

// A valid initialisation record: version 118, control letter 'B', texts cut
// to their fields with the terminator kept, and the CRC over bytes 0..287.
_REG_DF_INICIALIZAPS QVMontaInicializaPS(const QVDadosInicializacao& dados);
// The CRC-64 an initialisation record must carry.
std::uint64_t QVCrcInicializaPS(const _REG_DF_INICIALIZAPS& reg);

// Copies text into a char[n] field of a record: at most n - 1 bytes, the
// rest zero-filled.
void QVCopiaCampoTexto(char* campo, std::size_t n, std::string_view texto);
template <std::size_t N>
void QVCopiaCampoTexto(char (&campo)[N], std::string_view texto) {
  QVCopiaCampoTexto(campo, N, texto);
}
// The text of a char[n] field: up to the first zero or the field's end.
template <std::size_t N>
std::string QVLeCampoTexto(const char (&campo)[N]) {
  std::size_t n = 0;
  while (n < N && campo[n] != '\0') ++n;
  return std::string(campo, n);
}
