#include "df/qvlibex/QVCriaObjeto.h"

#include <gtest/gtest.h>

#include "df/qvlibex/QVCodigos.h"
#include "platform/QVClock.h"
#include "tests/support/QVTestSupport.h"

namespace {

constexpr CLSID kClasse = QVGuid("{AAAAAAAA-0000-0000-0000-000000000002}");

// A factory that fails a given number of times before it answers success,
// with an object or without one.
struct CFabrica final : IClassFactory {
  HRESULT QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
  std::uint32_t AddRef() override { return 2; }
  std::uint32_t Release() override { return 1; }
  HRESULT CreateInstance(IUnknown*, REFIID, void** ppv) override {
    ++tentativas;
    *ppv = nullptr;
    if (falhasAntes-- > 0) return CO_E_SERVER_EXEC_FAILURE;
    if (!nula) *ppv = this;  // any non-null interface will do here
    return S_OK;
  }
  HRESULT LockServer(bool) override { return S_OK; }
  bool nula = false;
  int falhasAntes = 0;
  int tentativas = 0;
};

class QVCriaObjetoTest : public ::testing::Test {
 protected:
  void SetUp() override {
    QVTesteLimpaLog();
    ASSERT_EQ(CoRegisterClassObject(kClasse, &m_Fabrica, &m_Registro), S_OK);
  }
  void TearDown() override { (void)CoRevokeClassObject(m_Registro); }
  CFabrica m_Fabrica;
  std::uint32_t m_Registro = 0;
  void* p = nullptr;
};

}  // namespace

TEST_F(QVCriaObjetoTest, InterfaceNulaEhFalha) {
  m_Fabrica.nula = true;
  EXPECT_EQ(QVCoCreateInstance(kClasse, IID_IUnknown, &p, eQVCCI_LOG_FAILURE),
            ER_QVDF_CO_CREATE_INSTANCE_INTERFACE_NULA);
  const auto linhas = QVTesteLinhasErro();
  ASSERT_EQ(linhas.size(), 1u);
  EXPECT_NE(linhas[0].find("hr = ER_QVDF_CO_CREATE_INSTANCE_INTERFACE_NULA\t"), std::string::npos);
}

TEST_F(QVCriaObjetoTest, NovaTentativaSoParaFalhasPassageiras) {
  m_Fabrica.falhasAntes = 1;
  EXPECT_EQ(QVCoCreateInstance(kClasse, IID_IUnknown, &p, eQVCCI_RETRY), S_OK);
  EXPECT_EQ(m_Fabrica.tentativas, 2);
  EXPECT_TRUE(QVTesteLinhasErro().empty());

  // Without the retry flag: one attempt only.
  m_Fabrica.falhasAntes = 1;
  EXPECT_EQ(QVCoCreateInstance(kClasse, IID_IUnknown, &p, eQVCCI_LOG_FAILURE), CO_E_SERVER_EXEC_FAILURE);
  EXPECT_EQ(m_Fabrica.tentativas, 3);
  const auto linhas = QVTesteLinhasErro();
  ASSERT_EQ(linhas.size(), 1u);
  // The description keeps its line breaks as spaces: one record, one line.
  EXPECT_NE(linhas[0].find(" HR: 0x80080005 (Falha ao executar o servidor) CLSID: "
                           "{AAAAAAAA-0000-0000-0000-000000000002} Programa: "),
            std::string::npos)
      << linhas[0];

  // An unregistered class is final: no second attempt, no wait.
  const std::uint64_t inicio = GetTickCount64();
  EXPECT_EQ(QVCoCreateInstance(QVGuid("{AAAAAAAA-0000-0000-0000-0000000000FF}"), IID_IUnknown, &p, eQVCCI_RETRY),
            REGDB_E_CLASSNOTREG);
  EXPECT_LT(GetTickCount64() - inicio, 100u);
}
