// The check-and-log step and the error-line writer.
//
// After every call that can fail the caller writes one check:
//
//   QV_CHECK(arqV1.Le(i, &regAtendimentoV1));
//
// If the status is a failure, one error line is written naming the
// qualified function ("CConversao::ConverteProjetos"), the source
// ("ge/zelkorin/Conversao"), the line and the call's text exactly as written
// ("arqV1.Le(i, &regAtendimentoV1)"), and the status is returned from the
// calling function unchanged. With a list of tolerated codes the status is
// kept in a variable and a tolerated failure goes on silently:
//
//   HRESULT hr;
//   QV_CHECK_HR(hr, arq.Le(pos, &reg), E_QVCR_ARQUIVO_NAO_EXISTE);
//   if (hr == E_QVCR_ARQUIVO_NAO_EXISTE) ...
//
// A named code raised by the function itself is logged under its own name:
//
//   QV_RETURN(E_QVCR_VERSAO_INCOMPATIVEL);
//
// Where returning is not possible (destructors, clean-up) QV_LOGA(expr)
// logs a failure and yields the status.
// The line goes to the error log of the identity of the current log scope
// (CQVEscopoLog); the check itself never throws.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "df/qvlibex/QVProfilerLog.h"
#include "platform/QVHResult.h"

// Where a check is written: the compiler's full function signature and the
// source path (relative to the source tree).
struct QVLocalFonte {
  const char* assinatura;
  const char* arquivo;
  int linha;
};
#define QV_LOCAL (QVLocalFonte{__PRETTY_FUNCTION__, __FILE__, __LINE__})

#define QV_CHECK_HR(hrVar, expr, ...)                                                 \
  do {                                                                                \
    (hrVar) = (expr);                                                                 \
    if (QVFalhaNaoTolerada(QV_LOCAL, #expr, (hrVar), {__VA_ARGS__})) return (hrVar); \
  } while (0)

#define QV_CHECK(expr)              \
  do {                              \
    HRESULT qvHrCheck_;             \
    QV_CHECK_HR(qvHrCheck_, expr);  \
  } while (0)

// The same check with the class's own logger, for classes that name
// themselves in the log and add named values (a file's name, a position):
// on failure logger(text of expr, status) is called, then the status is
// returned. The logger is only evaluated on failure.
#define QV_CHECK_COM(logger, expr)     \
  do {                                 \
    const HRESULT qvHrCom_ = (expr);   \
    if (FAILED(qvHrCom_)) {            \
      (logger)(#expr, qvHrCom_);       \
      return qvHrCom_;                 \
    }                                  \
  } while (0)

#define QV_LOGA(expr) QVLogaSeFalhou(QV_LOCAL, #expr, (expr))

#define QV_RETURN(codigo)                        \
  do {                                           \
    const HRESULT qvHrCodigo_ = (codigo);        \
    QVLogaFalhaHr(QV_LOCAL, #codigo, qvHrCodigo_); \
    return qvHrCodigo_;                          \
  } while (0)

// "CQVFileBase::AbreArquivo" from "HRESULT CQVFileBase::AbreArquivo(EQVDataBase_ModoAbertura)";
// template arguments are filled in from the "[with ...]" part.
std::string QVNomeQualificado(std::string_view assinatura);
// "core/qvdatabase/QVFileBase" from "core/qvdatabase/QVFileBase.cpp": the
// path without extension, cut to its last three components.
std::string QVNomeFonte(std::string_view arquivo);

bool QVTolerado(HRESULT hr, std::initializer_list<HRESULT> tolerados);

// The message of a failed status (format 1):
// "hr = <expr>\thr = 0X...  <message>\tSEVERITY = ..\tFACILITY = ..\tCODE = ..\tDescrição = <name>"
std::string QVFormataFalhaHr(std::string_view expressao, HRESULT hr);
// The message of a failed call that returns a count or a flag (format 2).
std::string QVFormataFalhaValor(std::string_view expressao, std::string_view variavel, std::int64_t valor,
                                HRESULT hr);

// The message of a failed record-file operation (format 3): the file, the
// position asked for, the record number and the file's record count, or,
// with a file length instead of a count, the variant ending "GetLength".
std::string QVFormataFalhaArquivo(HRESULT hr, std::string_view arquivo, std::int64_t posicao, std::int64_t registro,
                                  std::int64_t quantidadeRegistros);
std::string QVFormataFalhaArquivoTamanho(HRESULT hr, std::string_view arquivo, std::int64_t posicao,
                                         std::int64_t registro, std::int64_t tamanho);

// Writes one error line: the printf-style message with the function and
// source it came from. pSink may be null.
void QVEscreveLinhaErro(const IQVDF_Profiler* pSink, std::string_view funcao, std::string_view fonte, int linha,
                        const char* formato, ...) __attribute__((format(printf, 5, 6)));
// The same with a message already made and named parameters ("m_sNomeArquivo").
void QVEscreveLinhaErroTexto(const IQVDF_Profiler* pSink, std::string_view funcao, std::string_view fonte,
                             int linha, std::string mensagem, std::vector<QVParametroLog> parametros = {});

// Logs a failed status in format 1 at a source location (function and
// source taken from it) or under an explicit function and source.
void QVLogaFalhaHr(const QVLocalFonte& local, std::string_view expressao, HRESULT hr,
                   std::vector<QVParametroLog> parametros = {});
void QVLogaFalhaHrEm(std::string_view funcao, std::string_view fonte, int linha, std::string_view expressao,
                     HRESULT hr, std::vector<QVParametroLog> parametros = {});

// The steps behind the macros.
bool QVFalhaNaoTolerada(const QVLocalFonte& local, const char* expressao, HRESULT hr,
                        std::initializer_list<HRESULT> tolerados);
HRESULT QVLogaSeFalhou(const QVLocalFonte& local, const char* expressao, HRESULT hr);
