// The main of every test binary (or of the server and client processes it
// starts for the transport tests): each support layer linked into the binary
// points its part of the process (machine settings, error log, data root)
// into the process's private directory, then the tests run.
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/QVTestSupport.h"

int main(int argc, char** argv) {
  QVTestePreparaProcesso();
  // A server or client process for the transport tests, not a test run.
  if (const int papel = QVTesteExecutaPapeis(argc, argv); papel >= 0) return papel;
  ::testing::InitGoogleTest(&argc, argv);
  const int rc = RUN_ALL_TESTS();
  std::error_code ec;
  std::filesystem::remove_all(QVTesteDiretorio(), ec);
  return rc;
}
