// The session library's part of the test support: the data root of the
// embedded default session points into the test's directory.
#include "suite/hostlink/QVSessaoSuite.h"
#include "tests/support/QVTestSupport.h"

namespace {

void PreparaRaizDados(const std::string& dir) { QVDefineRaizDados(dir + "/dados"); }

const bool g_raiz = QVTesteRegistraPreparo(PreparaRaizDados);

}  // namespace
