// The support library's part of the test support: the error log, pointed
// into the test's directory and read back by the tests.
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "df/qvlibex/QVProfilerLog.h"
#include "tests/support/QVTestSupport.h"

namespace fs = std::filesystem;

namespace {

std::vector<std::string> LinhasLog(bool cabecalhos) {
  std::vector<std::string> linhas;
  std::error_code ec;
  for (const auto& entrada : fs::directory_iterator(QVProfilerDiretorio(), ec)) {
    if (entrada.path().filename().string().rfind("QVProfilerErros_", 0) != 0) continue;
    std::istringstream in(QVTesteLeArquivo(entrada.path().string()));
    std::string linha;
    bool primeira = true;
    while (std::getline(in, linha)) {
      if (primeira == cabecalhos) linhas.push_back(linha);
      primeira = false;
    }
  }
  return linhas;
}

}  // namespace

std::vector<std::string> QVTesteLinhasErro() { return LinhasLog(false); }

std::vector<std::string> QVTesteCabecalhosErro() { return LinhasLog(true); }

void QVTesteLimpaLog() {
  std::error_code ec;
  fs::remove_all(QVProfilerDiretorio(), ec);
}

namespace {

void PreparaLog(const std::string& dir) {
  QVProfilerDefineDiretorioBase(dir);
  // The programs the tests run log here too.
  ::setenv("ZELKORIN_LOG_DIR", dir.c_str(), 1);
}

const bool g_log = QVTesteRegistraPreparo(PreparaLog);

}  // namespace
