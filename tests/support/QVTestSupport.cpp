#include "tests/support/QVTestSupport.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/QVMachineSettings.h"

namespace fs = std::filesystem;

const std::string& QVTesteDiretorio() {
  static const std::string dir = [] {
    // A server or client process of the test shares its test's directory.
    if (const char* herdado = std::getenv("ZELKORIN_TESTE_DIR"); herdado != nullptr && *herdado != '\0')
      return std::string(herdado);
    std::string modelo = (fs::temp_directory_path() / "zelkorin-teste-XXXXXX").string();
    if (::mkdtemp(modelo.data()) == nullptr) std::abort();
    return modelo;
  }();
  return dir;
}

std::string QVTesteNovoDiretorio(const std::string& nome) {
  const fs::path p = fs::path(QVTesteDiretorio()) / nome;
  fs::remove_all(p);
  fs::create_directories(p);
  return p.string();
}

std::string QVTesteLeArquivo(const std::string& caminho) {
  std::ifstream in(caminho, std::ios::binary);
  std::stringstream ss;
  ss << in.rdbuf();
  return ss.str();
}

void QVTesteDefineRegistro(const std::string& json) {
  std::ofstream(QVMachineSettingsPath(), std::ios::trunc) << json;
}

std::vector<int> QVTesteEmProcessos(int n, const std::function<int(int)>& corpo) {
  std::vector<pid_t> filhos(n);
  std::vector<int> status(n, -1);
  // _exit, not exit: what the test process cleans up at its end is its own.
  for (int i = 0; i < n; ++i)
    if ((filhos[i] = ::fork()) == 0) ::_exit(corpo(i));
  for (int i = 0; i < n; ++i)
    if (filhos[i] > 0) ::waitpid(filhos[i], &status[i], 0);
  return status;
}

namespace {

// Function-local, so that registrations made at static initialisation in
// other translation units find them constructed.
std::vector<QVTestePreparo>& Preparos() {
  static std::vector<QVTestePreparo> v;
  return v;
}

std::vector<QVTestePapel>& Papeis() {
  static std::vector<QVTestePapel> v;
  return v;
}

// The platform's own part: the machine settings file.
void PreparaPlataforma(const std::string& dir) {
  QVMachineSettingsSetPath(dir + "/registry.json");
  // The programs the tests run read their settings here too.
  ::setenv("ZELKORIN_REGISTRY", (dir + "/registry.json").c_str(), 1);
}

const bool g_plataforma = QVTesteRegistraPreparo(PreparaPlataforma);

}  // namespace

bool QVTesteRegistraPreparo(QVTestePreparo preparo) {
  Preparos().push_back(preparo);
  return true;
}

bool QVTesteRegistraPapel(QVTestePapel papel) {
  Papeis().push_back(papel);
  return true;
}

void QVTestePreparaProcesso() {
  for (QVTestePreparo p : Preparos()) p(QVTesteDiretorio());
}

int QVTesteExecutaPapeis(int argc, char** argv) {
  for (QVTestePapel p : Papeis())
    if (const int rc = p(argc, argv); rc >= 0) return rc;
  return -1;
}
