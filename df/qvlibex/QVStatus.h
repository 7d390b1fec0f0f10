// Reading a status code: its parts, the names the error log prints, and the
// system's own message texts.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/QVHResult.h"

// One code of the system: its symbolic name and its message (Portuguese,
// UTF-8).
struct QVCodigoSistema {
  HRESULT hr;
  const char* nome;
  const char* mensagem;
};

// Every code of the system, in ascending order of value as unsigned numbers.
std::span<const QVCodigoSistema> QVTabelaCodigosSistema();
// The entry of a code of the system, or null.
const QVCodigoSistema* QVProcuraCodigoSistema(HRESULT hr);

// "SEVERITY_SUCCESS", "SEVERITY_ERROR", else "Desconhecido ou novo código de SEVERITY".
const char* QVNomeSeveridade(int severidade);
// "FACILITY_NULL", "FACILITY_RPC", ... else "Desconhecido ou novo código de FACILITY".
const char* QVNomeFacility(int facility);
// "ERROR_SUCCESS", "ERROR_FILE_NOT_FOUND", ... else "ERROR_DESCONHECIDO".
const char* QVNomeErroWin32(std::uint32_t codigo);
// The symbolic name of a whole status ("E_UNEXPECTED", "E_QVCR_ARQUIVO_NAO_EXISTE",
// "HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION)"); "" when it has none.
std::string QVNomeSimbolico(HRESULT hr);
// The description of a status for the error line and the error record: the
// system's own text when the code is one of its own, else the suite's message
// library (QVGetDescricaoHRESULT).
std::string QVDescricaoHResult(HRESULT hr);

// The suite's message library (MessageTexts): the description of any
// status. Our embedded default knows the system's codes, the Win32 errors
// in status form and the common platform statuses; anything else gets
// "Código de erro 0x%08X sem descrição".
std::string QVGetDescricaoHRESULT(HRESULT hr);
