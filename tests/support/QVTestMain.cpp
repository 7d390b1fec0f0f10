// The main of every test binary: points the process's log, machine settings
// and data root into its private directory, then runs the tests.
#include <gtest/gtest.h>

#include <filesystem>

#include "df/qvlibex/QVProfilerLog.h"
#include "platform/QVMachineSettings.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "tests/support/QVTestSupport.h"

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  const std::string& dir = QVTesteDiretorio();
  QVProfilerDefineDiretorioBase(dir);
  QVMachineSettingsSetPath(dir + "/registry.json");
  QVDefineRaizDados(dir + "/dados");
  const int rc = RUN_ALL_TESTS();
  std::error_code ec;
  std::filesystem::remove_all(dir, ec);
  return rc;
}
