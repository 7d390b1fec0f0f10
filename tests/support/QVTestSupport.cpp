#include "tests/support/QVTestSupport.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "df/qvlibex/QVProfilerLog.h"
#include "platform/QVMachineSettings.h"
#include "suite/hostlink/QVSessaoSuite.h"

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

void QVTesteDefineRegistro(const std::string& json) {
  std::ofstream(QVMachineSettingsPath(), std::ios::trunc) << json;
}

_REG_DF_INICIALIZAPS QVTesteInicializaPS(const std::string& empresa) {
  QVDadosInicializacao d;
  // As a client sends it: a company the record cannot carry unchanged is a
  // mistake of the test, not a case to cut down.
  if (FAILED(QVEmpresaParaRegistro(empresa, &d.empresa))) ADD_FAILURE() << "empresa inválida no teste: " << empresa;
  d.usuario = 7;
  d.numeroSessao = 1234;
  d.aplicativo = "testes";
  d.moduleName = "GE";
  d.arquivoFonte = "QVTestSupport.cpp";
  d.linhaFonte = 42;
  d.nomeUsuarioDominio = "dominio\\teste";
  return QVMontaInicializaPS(d);
}
