// The main of every test binary (or of the server and client processes it
// starts for the transport tests): points the process's log, machine settings
// and data root into its private directory, then runs the tests.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "df/qvlibex/QVProfilerLog.h"
#include "platform/QVMachineSettings.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "tests/support/QVServidorTeste.h"
#include "tests/support/QVTestSupport.h"

int main(int argc, char** argv) {
  // A server or client process for the transport tests, not a test run.
  if (const int papel = QVTesteExecutaPapel(argc, argv); papel >= 0) return papel;
  ::testing::InitGoogleTest(&argc, argv);
  const std::string& dir = QVTesteDiretorio();
  QVProfilerDefineDiretorioBase(dir);
  QVMachineSettingsSetPath(dir + "/registry.json");
  QVDefineRaizDados(dir + "/dados");
  // The programs the tests run log and read their settings here too.
  ::setenv("ZELKORIN_LOG_DIR", dir.c_str(), 1);
  ::setenv("ZELKORIN_REGISTRY", (dir + "/registry.json").c_str(), 1);
  const int rc = RUN_ALL_TESTS();
  std::error_code ec;
  std::filesystem::remove_all(dir, ec);
  return rc;
}
