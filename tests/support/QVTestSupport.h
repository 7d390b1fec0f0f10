// Shared test support, built by layer like the system: a test binary links
// the support of its own layer and of those below it, never above (see
// tests/CMakeLists.txt).
//
// Every test process runs in its own temporary directory (made by the test
// main): the machine settings file, the error log and the data root all
// point there, so tests never touch the user's files and never see each
// other's. Each support layer linked into a binary adds, at static
// initialisation, the step that points its own part of the process there.
#pragma once

#include <sys/mman.h>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "df/qvlibex/QVRegistrosDF.h"

// ---- platform layer (QVTestSupport.cpp) --------------------------------------

// The process's private directory.
const std::string& QVTesteDiretorio();
// A fresh empty subdirectory of it.
std::string QVTesteNovoDiretorio(const std::string& nome);
std::string QVTesteLeArquivo(const std::string& caminho);
// Writes the machine settings file (JSON text).
void QVTesteDefineRegistro(const std::string& json);

// Runs corpo(0) .. corpo(n - 1) at once, each in a process forked for it
// that ends with what its corpo returns (nothing of the test runs there
// after it); the processes' wait statuses, once all have ended: 0 each when
// every corpo returned 0.
std::vector<int> QVTesteEmProcessos(int n, const std::function<int(int)>& corpo);
// A value-initialised T in memory that the processes forked after it share
// with the test (for counting what they see); never freed.
template <class T>
T* QVTesteCompartilhado() {
  void* p = ::mmap(nullptr, sizeof(T), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (p == MAP_FAILED) std::abort();
  return new (p) T{};
}

// A step that prepares the test process, given its private directory; run
// by the test main in the order the steps were registered.
using QVTestePreparo = void (*)(const std::string& sDiretorio);
bool QVTesteRegistraPreparo(QVTestePreparo preparo);
// A role a test binary can be re-run in (a server, a client for the
// transport tests): the exit code, or -1 when its arguments do not ask for it.
using QVTestePapel = int (*)(int argc, char** argv);
bool QVTesteRegistraPapel(QVTestePapel papel);
// For the test main.
void QVTestePreparaProcesso();
int QVTesteExecutaPapeis(int argc, char** argv);

// ---- support library layer (QVTesteLog.cpp) ----------------------------------

// The lines of the error log files written so far (header lines excluded),
// and the header lines themselves.
std::vector<std::string> QVTesteLinhasErro();
std::vector<std::string> QVTesteCabecalhosErro();
// Forgets the error log files written so far.
void QVTesteLimpaLog();

// ---- session layer (QVTesteSessao.cpp) ---------------------------------------

// A valid initialisation record for a company (UTF-8, carried unchanged in
// the suite's code page), of user kQVTesteUsuario: the company and the user
// are registered in the suite store first, as the suite would have them.
inline constexpr std::uint32_t kQVTesteUsuario = 7;
inline constexpr const char* kQVTesteEmpresa = "EMPRESA_TESTE";
_REG_DF_INICIALIZAPS QVTesteInicializaPS(const std::string& empresa = kQVTesteEmpresa);

// The suite store of the test's data root (suite/store/CQVBancoSuite.h).
class CQVBancoSuite;
std::shared_ptr<CQVBancoSuite> QVTesteBancoSuite();
// Registers a company (when absent) and a user (when absent, login
// "usuario<N>") allowed in it, in the store of the data root; the company's
// pointer. Fails the test on any error.
std::uint32_t QVTesteCadastraEmpresa(const std::string& empresa, std::uint32_t usuario = kQVTesteUsuario);
// Runs statements on that store (test data), failing the test on an error.
void QVTesteExecutaSql(const std::string& sql);
