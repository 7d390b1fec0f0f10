// Profiler log files: one tab-separated line per error (and, when call
// tracing is on, per call entered and left).
//
// Location: <base>/QVProfiler/, where <base> is the suite's base directory:
// QVProfilerDefineDiretorioBase (the server passes its data root), else the
// environment variable ZELKORIN_LOG_DIR, else $HOME/.local/share/zelkorin.
// Files, one per month ("%04d%02d" of the local date):
//   QVProfilerErros_Base_YYYYMM.log   errors raised in the libraries
//                                     (sources under core/, df/, suite/, platform/)
//   QVProfilerErros_Pgms_YYYYMM.log   errors raised by the programs (ge/, tools/)
//   QVProfilerTempos_Pgms_YYYYMM.log  call tracing (ENTROU / SAIU lines)
// Text is UTF-8, one record per line, every cell (the last one too)
// followed by its tab. A file that does not exist yet gets the header line
// first; writers of several processes append under an advisory lock, so the
// header is written once and lines never interleave (QVAppendLogRecord). The
// folder is made 0750 and the files 0640. A failure while logging is
// ignored: logging never changes the outcome of the operation that logs.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "df/qvlibex/QVProfilerEmpresa.h"
#include "platform/QVClock.h"

enum class EQVTipoProfiler : std::uint8_t { Entrou = 1, Saiu = 2, Erro = 3, CoCreate = 4 };

struct QVParametroLog {
  std::string nome;
  std::string valor;
};

struct QVRegistroProfiler {
  EQVTipoProfiler tipo = EQVTipoProfiler::Erro;
  const IQVDF_Profiler* sink = nullptr;  // may be null
  std::string classeFuncao;  // "CQVFileBase::AbreArquivo"
  // Error records.
  std::string arquivo;  // source name, "core/qvdatabase/QVFileBase"
  int linha = 0;
  std::string log;  // the formatted message
  // Timing records.
  std::int64_t duracaoMs = 0;
  std::int64_t deltaMemoria = 0;
  std::vector<QVParametroLog> parametros;  // "nome = valor" cells, at most nine
};

// The header line of the error files and of the timing files, byte for byte.
extern const char kQVCabecalhoErros[];
extern const char kQVCabecalhoTempos[];

void QVProfilerDefineDiretorioBase(const std::string& base);
std::string QVProfilerDiretorio();  // <base>/QVProfiler
// The file a record goes to, for the given local date.
std::string QVProfilerCaminho(const QVRegistroProfiler& reg, const SYSTEMTIME& st);

// Appends one record; never throws, never reports a failure.
void QVProfilerEscreve(const QVRegistroProfiler& reg) noexcept;

// Call tracing: off unless the machine setting "QVProfiler_RastrearChamadas"
// is non-zero or it is switched on here.
bool QVProfilerRastreamentoLigado();
void QVProfilerDefineRastreamento(bool ligado);
// Echo of every error line on standard error (the server's --verbose).
void QVProfilerDefineEspelhoErros(bool ligado);
