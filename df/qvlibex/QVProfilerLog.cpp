#include "df/qvlibex/QVProfilerLog.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <mutex>

#include "df/qvlibex/QVVersao.h"
#include "platform/QVCodePage.h"
#include "platform/QVGuid.h"
#include "platform/QVLogFile.h"
#include "platform/QVMachineSettings.h"
#include "platform/QVSystemInfo.h"

const char kQVCabecalhoErros[] =
    "Data\tHora\tProcesso\tUsuarioLocal\tClasseFuncao\tGuid\tEmpresa\tUsuario\tSessao\tThreadID\tEmpresa\tUsuario\t"
    "NumeroSessao\tUsuarioDominio\tAplicativo\tModuleName\tArquivoFonte\tLinhaFonte\tWTS\tFiller\tFiller\tTipo\t"
    "MemoriaDisponivel\tMemoriaTotal\tMemoriaComponente\t"
    "VersaoVireo\tVersaoSO\tArquivo\tLinha\tLog"
    "\tParameter1\tParameter2\tParameter3\tParameter4\tParameter5\tParameter6\tParameter7\tParameter8\tParameter9\n";

const char kQVCabecalhoTempos[] =
    "Data\tHora\tProcesso\tUsuarioLocal\tClasseFuncao\tGuid\tEmpresa\tUsuario\tSessao\tThreadID\tEmpresa\tUsuario\t"
    "NumeroSessao\tUsuarioDominio\tAplicativo\tModuleName\tArquivoFonte\tLinhaFonte\tWTS\tFiller\tFiller\tTipo\t"
    "MemoriaDisponivel\tMemoriaTotal\tMemoriaComponente\t"
    "Duracao\tDeltaMemoria"
    "\tParameter1\tParameter2\tParameter3\tParameter4\tParameter5\tParameter6\tParameter7\tParameter8\tParameter9\n";

namespace {

std::mutex g_mutexBase;
std::string g_base;
std::atomic<int> g_rastreamento{-1};  // -1: not read yet
std::atomic<bool> g_espelho{false};

// What does not change during the process, gathered once.
struct Constantes {
  std::string processo = QVProcessName();
  std::string usuarioLocal = QVLocalUserName();
  std::string guid = QVGuidFormat(QVGuidNovo());
  std::string versaoPrograma = QVVersaoPrograma();
  std::string versaoSO = QVOsVersion();
};

const Constantes& Fixos() {
  static const Constantes c;
  return c;
}

// One cell: tabs and line breaks inside a value would break the columns.
void Celula(std::string& linha, std::string_view valor) {
  for (char c : valor) linha.push_back(c == '\t' || c == '\n' || c == '\r' ? ' ' : c);
  linha.push_back('\t');
}

void CelulaNumero(std::string& linha, std::int64_t v) { Celula(linha, std::to_string(v)); }

template <class... A>
void CelulaFormato(std::string& linha, const char* fmt, A... args) {
  char buf[128];
  std::snprintf(buf, sizeof buf, fmt, args...);
  linha += buf;
}

template <std::size_t N>
std::string TextoCampo(const char (&campo)[N]) {
  return QVAnsiToUtf8(QVLeCampoTexto(campo));
}

bool EhBiblioteca(std::string_view fonte) {
  for (std::string_view p : {"core/", "df/", "suite/", "platform/"})
    if (fonte.substr(0, p.size()) == p) return true;
  return false;
}

std::string MontaLinha(const QVRegistroProfiler& reg, const SYSTEMTIME& st) {
  const Constantes& k = Fixos();
  const QVMemoryCounters mem = QVReadMemoryCounters();
  std::string linha;
  linha.reserve(512);
  CelulaFormato(linha, "%02d/%02d/%04d\t", st.wDay, st.wMonth, st.wYear);
  CelulaFormato(linha, "%02d:%02d:%02d\t", st.wHour, st.wMinute, st.wSecond);
  Celula(linha, k.processo);
  Celula(linha, k.usuarioLocal);
  Celula(linha, reg.classeFuncao);
  Celula(linha, k.guid);
  if (reg.sink != nullptr) {
    linha += 'E';
    Celula(linha, reg.sink->GetEmpresa());
    CelulaFormato(linha, "U%03d\t", static_cast<int>(reg.sink->GetUsuario()));
    CelulaFormato(linha, "S%08u\t", reg.sink->GetNumeroSessao());
  } else {
    linha += "E\tU000\tS00000000\t";
  }
  CelulaFormato(linha, "T%08u\t", QVCurrentThreadId());
  const _REG_DF_INICIALIZAPS* ini = reg.sink != nullptr ? reg.sink->GetRegistroInicializacao() : nullptr;
  if (ini != nullptr) {
    Celula(linha, TextoCampo(ini->szEmpresa));
    CelulaNumero(linha, ini->ulUsuario);
    CelulaNumero(linha, ini->ulNumeroSessao);
    Celula(linha, TextoCampo(ini->szNomeUsuarioDominio));
    Celula(linha, TextoCampo(ini->szAplicativo));
    Celula(linha, TextoCampo(ini->szModuleName));
    Celula(linha, TextoCampo(ini->szArquivoFonte));
    CelulaNumero(linha, ini->ulLinhaFonte);
    CelulaNumero(linha, ini->cWTS);
  } else {
    linha += "\t\t\t\t\t\t\t\t\t";
  }
  linha += "\t\t";  // Filler, Filler
  switch (reg.tipo) {
    case EQVTipoProfiler::Entrou: linha += "ENTROU\t"; break;
    case EQVTipoProfiler::Saiu: linha += "SAIU\t"; break;
    case EQVTipoProfiler::CoCreate: linha += "COCREATE\t"; break;
    case EQVTipoProfiler::Erro: linha += "ERRO\t"; break;
  }
  CelulaNumero(linha, mem.availablePhysical);
  CelulaNumero(linha, mem.totalPhysical);
  CelulaNumero(linha, mem.privateBytes);
  if (reg.tipo == EQVTipoProfiler::Erro) {
    Celula(linha, k.versaoPrograma);
    Celula(linha, k.versaoSO);
    Celula(linha, reg.arquivo);
    CelulaNumero(linha, reg.linha);
    // The message keeps its own tabs: its parts (code, severity, facility...)
    // are meant to fall into the columns that follow.
    for (char c : reg.log) linha.push_back(c == '\n' || c == '\r' ? ' ' : c);
    linha.push_back('\t');
  } else {
    CelulaNumero(linha, reg.duracaoMs);
    CelulaNumero(linha, reg.deltaMemoria);
  }
  for (std::size_t i = 0; i < reg.parametros.size() && i < 9; ++i)
    Celula(linha, reg.parametros[i].nome + " = " + reg.parametros[i].valor);
  // Every cell, the last one too, ends with its tab.
  linha.push_back('\n');
  return linha;
}

}  // namespace

void QVProfilerDefineDiretorioBase(const std::string& base) {
  std::lock_guard lock(g_mutexBase);
  g_base = base;
}

std::string QVProfilerDiretorio() {
  std::string base;
  {
    std::lock_guard lock(g_mutexBase);
    base = g_base;
  }
  if (base.empty()) {
    if (const char* env = std::getenv("ZELKORIN_LOG_DIR"); env != nullptr && *env != '\0') {
      base = env;
    } else {
      const char* home = std::getenv("HOME");
      base = std::string(home != nullptr && *home != '\0' ? home : "/tmp") + "/.local/share/zelkorin";
    }
  }
  return base + "/QVProfiler";
}

std::string QVProfilerCaminho(const QVRegistroProfiler& reg, const SYSTEMTIME& st) {
  const char* prefixo = reg.tipo != EQVTipoProfiler::Erro ? "QVProfilerTempos_Pgms_"
                        : EhBiblioteca(reg.arquivo)       ? "QVProfilerErros_Base_"
                                                          : "QVProfilerErros_Pgms_";
  char nome[64];
  std::snprintf(nome, sizeof nome, "%s%04d%02d.log", prefixo, st.wYear, st.wMonth);
  return QVProfilerDiretorio() + "/" + nome;
}

void QVProfilerEscreve(const QVRegistroProfiler& reg) noexcept {
  try {
    SYSTEMTIME st;
    GetLocalTime(&st);
    const std::string linha = MontaLinha(reg, st);
    if (reg.tipo == EQVTipoProfiler::Erro && g_espelho.load(std::memory_order_relaxed))
      std::fprintf(stderr, "%s %s: %s\n", reg.classeFuncao.c_str(), reg.arquivo.c_str(), reg.log.c_str());

    // A failure to append is not reported: logging never changes the
    // outcome of the operation that logs.
    (void)QVAppendLogRecord(QVProfilerCaminho(reg, st),
                            reg.tipo == EQVTipoProfiler::Erro ? kQVCabecalhoErros : kQVCabecalhoTempos, linha);
  } catch (...) {
    // A failure while logging is ignored.
  }
}

bool QVProfilerRastreamentoLigado() {
  int v = g_rastreamento.load(std::memory_order_relaxed);
  if (v < 0) {
    std::uint32_t valor = 0;
    v = SUCCEEDED(QVRegQueryMachineDword(kQVChaveMaquina, "QVProfiler_RastrearChamadas", &valor)) && valor != 0;
    g_rastreamento.store(v, std::memory_order_relaxed);
  }
  return v != 0;
}

void QVProfilerDefineRastreamento(bool ligado) { g_rastreamento.store(ligado ? 1 : 0); }

void QVProfilerDefineEspelhoErros(bool ligado) { g_espelho.store(ligado); }
