// Turning whatever went wrong inside a call into a status: language
// exceptions (QVTranslateThrownExceptionToHresult), structured exceptions
// (QVChamaComGuardaSEH) and runtime-library errno values.
#pragma once

#include <cstdint>
#include <string>

#include "df/qvlibex/QVCodigos.h"
#include "platform/QVHResult.h"
#include "platform/QVSeh.h"

// Classifies the exception being handled; call it only inside a catch
// block. First matching rule:
//   _com_error -> its status; CQVExceptionEx -> its status;
//   CQVException* -> OS error | 0x80040000 when non-zero, else 0x8004EA61;
//   CFileException* -> HRESULT_FROM_WIN32(OS error);
//   CMemoryException* -> 0x8004EA62; CInvalidArgException* -> 0x8004EA67;
//   other CException* -> 0x8004EA63; a thrown status (HRESULT, 32 bits)
//   -> its value; a 64-bit long -> its low 32 bits when it is a status
//   spelt signed or unsigned, else 0x8004EA66;
//   std::bad_alloc -> 0x8004EA64; other std::exception -> 0x8004EA65;
//   anything else -> 0x8004EA66.
// Heap-thrown exception objects are not freed here (QVLiberaExcecaoLancada).
HRESULT QVTranslateThrownExceptionToHresult();

// Frees the exception being handled when it is a heap-thrown class-library
// exception; call it inside a catch block, after the translation.
void QVLiberaExcecaoLancada();

// The filter of the guard: the system exception codes it accepts.
bool QVFiltroSEHAceita(std::uint32_t codigoSistema);
// The status of an accepted system exception code (0x8004EAC5..0x8004EADB,
// 0x8004EE47 for any other).
HRESULT QVHresultDeSEH(std::uint32_t codigoSistema);

// The last structured exception the guard accepted in this process, and the
// stack of the thread at the fault (last writer wins).
std::uint32_t QVUltimoCodigoSEH();
std::string QVUltimaPilhaSEH();

// Runs f (which returns a status) under the structured-exception guard. A
// processor fault inside yields the fault's status; language exceptions
// pass through to the caller.
template <class F>
HRESULT QVChamaComGuardaSEH(F&& f);

// Runtime-library errno (the numbering of the suite's runtime: 1..42, 80)
// to status: 1..14 -> 0x8004EADC.., 16..25 -> 0x8004EAEA.., 27..34 ->
// 0x8004EAF4.., 36 -> 0x8004EAFC, 38..42 -> 0x8004EAFD.., 80 -> 0x8004EB02,
// any other -> 0x8004EA60.
HRESULT QVHresultDeErrno(int errnoRuntime);
// This system's errno to the suite's runtime numbering (0 when it has no
// counterpart there).
int QVErrnoRuntimeDeErrno(int errnoSistema);

// ---- implementation ---------------------------------------------------------

HRESULT QVRegistraFalhaSEH(const QVSehFault& falha);

template <class F>
HRESULT QVChamaComGuardaSEH(F&& f) {
  HRESULT hr = S_OK;
  auto chamada = [&] { hr = f(); };
  const QVSehFault falha = QVSehRun(chamada);
  return falha.codigo != 0 ? QVRegistraFalhaSEH(falha) : hr;
}
