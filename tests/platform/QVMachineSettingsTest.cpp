#include "platform/QVMachineSettings.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "tests/support/QVTestSupport.h"

TEST(QVMachineSettings, ChavesEValoresSemDistincaoDeCaixaEArquivoAusenteOuInvalido) {
  QVTesteDefineRegistro(R"({"software\\wow6432node\\QUORVANE": {"qvdatabase_desabilitacabecalho": 1,
                           "Texto": "abc", "Ligado": true}})");
  std::uint32_t v = 0;
  ASSERT_EQ(QVRegQueryMachineDword(kQVChaveMaquina, "QVDataBase_DesabilitaCabecalho", &v), S_OK);
  EXPECT_EQ(v, 1u);
  ASSERT_EQ(QVRegQueryMachineDword(kQVChaveMaquina, "ligado", &v), S_OK);
  EXPECT_EQ(v, 1u);
  std::string s;
  ASSERT_EQ(QVRegQueryMachineString(kQVChaveMaquina, "TEXTO", &s), S_OK);
  EXPECT_EQ(s, "abc");
  EXPECT_EQ(QVRegQueryMachineDword(kQVChaveMaquina, "Texto", &v), HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
  EXPECT_EQ(QVRegQueryMachineDword(kQVChaveMaquina, "Ausente", &v), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(QVRegQueryMachineDword("SOFTWARE\\Outra", "QVDataBase_DesabilitaCabecalho", &v),
            HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));

  // A missing file; a file that is not JSON.
  std::remove(QVMachineSettingsPath().c_str());
  EXPECT_EQ(QVRegQueryMachineDword(kQVChaveMaquina, "X", &v), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
  QVTesteDefineRegistro("{ nao eh json");
  EXPECT_EQ(QVRegQueryMachineDword(kQVChaveMaquina, "X", &v), HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
  std::remove(QVMachineSettingsPath().c_str());
}
