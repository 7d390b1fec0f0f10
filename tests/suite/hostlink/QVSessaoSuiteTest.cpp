// Company names in the embedded session library: one folder per company
// whatever the case, and a clear refusal of a name that cannot be carried
// or stored unchanged.
#include "suite/hostlink/QVSessaoSuite.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVProfilerLog.h"
#include "tests/support/QVTestSupport.h"

namespace fs = std::filesystem;

namespace {

class QVSessaoSuiteTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_Raiz = QVTesteNovoDiretorio("raiz-empresas");
    QVDefineRaizDados(m_Raiz);
    QVTesteLimpaLog();
  }
  void TearDown() override {
    QVDefineRaizDados(QVTesteDiretorio() + "/dados");
    QVProfilerDefineDiretorioBase(QVTesteDiretorio());
  }
  HRESULT Diretorio(const std::string& empresa, std::string* pDir = nullptr) {
    std::string dir;
    const HRESULT hr = QVSessaoSuite().GetDiretorioDadosModulo(QV_GE, empresa, &dir);
    if (pDir != nullptr) *pDir = dir;
    return hr;
  }
  std::string m_Raiz;
};

}  // namespace

TEST_F(QVSessaoSuiteTest, UmaEmpresaUmaPastaSemRespeitoACaixa) {
  std::string a, b, c;
  ASSERT_EQ(Diretorio("Construções", &a), S_OK);
  ASSERT_EQ(Diretorio("CONSTRUÇÕES", &b), S_OK);
  ASSERT_EQ(Diretorio("construções", &c), S_OK);
  EXPECT_EQ(a, m_Raiz + "/Construções/GE");
  EXPECT_EQ(b, a);
  EXPECT_EQ(c, a);
  // Folders the suite made, in its own case, are the ones used.
  fs::create_directories(m_Raiz + "/acme/ge");
  ASSERT_EQ(Diretorio("ACME", &a), S_OK);
  EXPECT_EQ(a, m_Raiz + "/acme/ge");
  EXPECT_EQ(std::distance(fs::directory_iterator(m_Raiz), fs::directory_iterator()), 2);
}

TEST_F(QVSessaoSuiteTest, NomesRecusadosComMotivoENenhumaPasta) {
  const struct {
    std::string empresa;
    const char* motivo;  // null: accepted
  } casos[] = {
      {std::string(47, 'E'), nullptr},
      {std::string(24, '\xC3'), "página de código"},  // not UTF-8
      {std::string(23, 'E') + "ÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇ", nullptr},  // 47 bytes in the code page, 71 in UTF-8
      {std::string(48, 'E'), "mais de 47 bytes"},
      {"Ωmega", "página de código"},
      {"Preço €", nullptr},
      {"..", "pasta"},
      {"a/b", "pasta"},
      {"a:b", "pasta"},
      {"ACME.", "pasta"},
      {"ACME ", "pasta"},
      {"con", "pasta"},
      {"Com1.txt", "pasta"},
      {"COM10", nullptr},
      {"qvprofiler", nullptr},  // the log is not under this data root
  };
  for (const auto& c : casos) {
    SCOPED_TRACE(c.empresa);
    std::string motivo;
    const HRESULT hr = QVValidaNomeEmpresa(c.empresa, &motivo);
    EXPECT_EQ(Diretorio(c.empresa), hr);
    if (c.motivo == nullptr) {
      EXPECT_EQ(hr, S_OK) << motivo;
      continue;
    }
    EXPECT_EQ(hr, E_QVDF_NOME_EMPRESA_INVALIDO);
    EXPECT_NE(motivo.find(c.motivo), std::string::npos) << motivo;
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(m_Raiz), fs::directory_iterator()), 5);  // the five accepted
  EXPECT_EQ(QVRecusaEmpresaParaRegistro("Preço €"), "");  // the command lines' check
  EXPECT_EQ(QVRecusaEmpresaParaRegistro("Ωmega"), "empresa \"Ωmega\": caractere fora da página de código (Windows-1252)");
  EXPECT_EQ(Diretorio(""), S_OK);  // no company, no directory

  // A company named like the log's folder under the same root cannot write into it.
  QVProfilerDefineDiretorioBase(m_Raiz);
  for (const char* empresa : {"QVProfiler", "qvPROFILER"}) {
    std::string motivo;
    EXPECT_EQ(QVValidaNomeEmpresa(empresa, &motivo), E_QVDF_NOME_EMPRESA_INVALIDO) << empresa;
    EXPECT_EQ(motivo, "é a pasta do log de erros");
  }
}

TEST_F(QVSessaoSuiteTest, ConectaRecusaOCampoDoRegistro) {
  const struct {
    std::string campo;  // bytes of szEmpresa, in the code page
    HRESULT hr;
  } casos[] = {
      {"ACME", S_OK},
      {"", S_OK},  // no company: the database's facade answers that
      {"Constru\xE7\xF5" "es", S_OK},
      {"A\x81", E_QVDF_NOME_EMPRESA_INVALIDO},  // no character in the code page
      {std::string(48, 'E'), E_QVDF_NOME_EMPRESA_INVALIDO},  // no terminator in the field
      {"..", E_QVDF_NOME_EMPRESA_INVALIDO},
  };
  for (const auto& c : casos) {
    SCOPED_TRACE(c.campo);
    _REG_DF_INICIALIZAPS reg = QVTesteInicializaPS();
    std::memset(reg.szEmpresa, 0, sizeof reg.szEmpresa);
    std::memcpy(reg.szEmpresa, c.campo.data(), c.campo.size());
    EXPECT_EQ(QVSessaoSuite().Conecta(reg), c.hr);
  }
  const auto linhas = QVTesteLinhasErro();
  ASSERT_EQ(linhas.size(), 3u);
  EXPECT_NE(linhas[0].find("sMotivo = byte que não é caractere da página de código\t"), std::string::npos) << linhas[0];
}
