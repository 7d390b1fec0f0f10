// The session library's part of the test support: the data root of the
// embedded default session points into the test's directory; initialisation
// records as a client sends them.
#include <gtest/gtest.h>

#include "suite/hostlink/QVSessaoSuite.h"
#include "tests/support/QVTestSupport.h"

namespace {

void PreparaRaizDados(const std::string& dir) { QVDefineRaizDados(dir + "/dados"); }

const bool g_raiz = QVTesteRegistraPreparo(PreparaRaizDados);

}  // namespace

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
