// Exception classes of the support library.
//
// Two families, as the suite's code throws them:
//  - class-library exceptions (CException and its derivations) are thrown by
//    pointer to a heap object: `throw new CQVException(...)`; the catcher
//    owns the object and frees it with Delete();
//  - CQVExceptionEx, CQVSEH and _com_error are thrown by value.
// No exception ever crosses an interface method: the call frame catches
// everything and turns it into a status (QVTranslate.h).
#pragma once

#include <cstdint>
#include <string>

#include "platform/QVHResult.h"

class CException {
 public:
  virtual ~CException() = default;
  virtual const char* GetRuntimeClass() const { return "CException"; }
  virtual std::string GetErrorMessage() const { return {}; }
  // Frees a heap-thrown exception.
  void Delete() { delete this; }
};

class CMemoryException : public CException {
 public:
  const char* GetRuntimeClass() const override { return "CMemoryException"; }
  std::string GetErrorMessage() const override { return "Memória insuficiente"; }
};

class CInvalidArgException : public CException {
 public:
  const char* GetRuntimeClass() const override { return "CInvalidArgException"; }
  std::string GetErrorMessage() const override { return "Argumento inválido"; }
};

// A failed file operation: its cause and the operating system's error number
// (a Win32 error number, or 0).
class CFileException : public CException {
 public:
  enum {
    none = 0,
    genericException = 1,
    fileNotFound = 2,
    badPath = 3,
    tooManyOpenFiles = 4,
    accessDenied = 5,
    invalidFile = 6,
    removeCurrentDir = 7,
    directoryFull = 8,
    badSeek = 9,
    hardIO = 10,
    sharingViolation = 11,
    lockViolation = 12,
    diskFull = 13,
    endOfFile = 14,
  };
  CFileException(int cause = none, std::int32_t lOsError = 0, std::string arquivo = {})
      : m_cause(cause), m_lOsError(lOsError), m_strFileName(std::move(arquivo)) {}
  const char* GetRuntimeClass() const override { return "CFileException"; }
  std::string GetErrorMessage() const override;

  int m_cause;
  std::int32_t m_lOsError;
  std::string m_strFileName;
};

// The system's own exception: a message number of the message table, a
// second value, and the operating system's error number (or 0).
class CQVException : public CException {
 public:
  CQVException(std::int32_t lCodigo, std::int32_t lValor, std::int32_t lErroSO)
      : m_lCodigo(lCodigo), m_lValor(lValor), m_lErroSO(lErroSO) {}
  CQVException(std::string mensagem, std::int32_t lValor, std::int32_t lErroSO)
      : m_lCodigo(0), m_lValor(lValor), m_lErroSO(lErroSO), m_sMensagem(std::move(mensagem)) {}

  const char* GetRuntimeClass() const override { return "CQVException"; }
  // The message: from the message table by code, filled on first use.
  std::string GetErrorMessage() const override;
  // Shows the message (with the operating system's error appended when
  // there is one) and returns the button pressed; a box type without an
  // icon gets the warning icon (0x30).
  int ReportError(unsigned tipo = 0, unsigned ajuda = 0) const;
  // The text ReportError shows.
  std::string TextoRelatorio() const;

  std::int32_t m_lCodigo;
  std::int32_t m_lValor;
  std::int32_t m_lErroSO;
  mutable std::string m_sMensagem;
};

// Thrown by value: carries the status the translation yields and where it
// was raised.
class CQVExceptionEx {
 public:
  CQVExceptionEx(HRESULT hr, std::int32_t l1, std::int32_t l2, std::string mensagem, std::string arquivo = {},
                 std::int32_t linha = 0, std::string funcao = {})
      : m_hr(hr), m_l1(l1), m_l2(l2), m_sMensagem(std::move(mensagem)), m_sArquivo(std::move(arquivo)),
        m_lLinha(linha), m_sFuncao(std::move(funcao)) {}

  HRESULT m_hr;
  std::int32_t m_l1;
  std::int32_t m_l2;
  std::string m_sMensagem;
  std::string m_sMensagem2;
  std::string m_sArquivo;
  std::int32_t m_lLinha;
  std::string m_sFuncao;
};

// Marker for a structured exception turned into a language exception; the
// code and the stack are kept process-wide (QVUltimoCodigoSEH).
class CQVSEH {};

// The compiler's object-platform error: a status thrown by value.
class _com_error {
 public:
  explicit _com_error(HRESULT hr) : m_hr(hr) {}
  HRESULT Error() const { return m_hr; }

 private:
  HRESULT m_hr;
};

// The message table: text of a message number of a module.
class CQVMensagem {
 public:
  static std::string GetMensagem(std::int32_t lCodigo, std::uint16_t usModulo = 0);
};

// The operating system's text for a Win32 error number.
std::string QVTextoErroSO(std::int32_t lErroSO);

// Runtime-library invalid-parameter events: the call frame installs, per
// thread, a handler that throws an exception naming the method. Our own
// routines report an invalid parameter through QVParametroInvalido.
using QVTratadorParametroInvalido = void (*)(const char* expressao, const char* funcao, const char* arquivo,
                                             unsigned linha);
QVTratadorParametroInvalido QVDefineTratadorParametroInvalido(QVTratadorParametroInvalido tratador);
void QVParametroInvalido(const char* expressao, const char* funcao, const char* arquivo, unsigned linha);
