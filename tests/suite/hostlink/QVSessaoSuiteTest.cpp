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
  // The company's data directory, in m_Dir.
  HRESULT Diretorio(const std::string& empresa) {
    m_Dir.clear();
    return QVSessaoSuite().GetDiretorioDadosModulo(QV_GE, empresa, &m_Dir);
  }
  std::ptrdiff_t Pastas() const { return std::distance(fs::directory_iterator(m_Raiz), fs::directory_iterator()); }
  std::string m_Raiz, m_Dir;
};

}  // namespace

TEST_F(QVSessaoSuiteTest, UmaEmpresaUmaPastaSemRespeitoACaixa) {
  for (const char* empresa : {"Construções", "CONSTRUÇÕES", "construções"}) {
    ASSERT_EQ(Diretorio(empresa), S_OK) << empresa;
    EXPECT_EQ(m_Dir, m_Raiz + "/Construções/GE") << empresa;
  }
  // Folders the suite made, in its own case, are the ones used.
  fs::create_directories(m_Raiz + "/acme/ge");
  ASSERT_EQ(Diretorio("ACME"), S_OK);
  EXPECT_EQ(m_Dir, m_Raiz + "/acme/ge");
  EXPECT_EQ(Pastas(), 2);
}

TEST_F(QVSessaoSuiteTest, NomesRecusadosComMotivoENenhumaPasta) {
  const std::pair<std::string, const char*> casos[] = {
      // the company, why it is refused ("": accepted)
      {std::string(47, 'E'), ""},
      {std::string(24, '\xC3'), "página de código"},  // not UTF-8
      {std::string(23, 'E') + "ÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇÇ", ""},  // 47 bytes in the code page, 71 in UTF-8
      {std::string(48, 'E'), "mais de 47 bytes"},
      {"Ωmega", "página de código"},
      {"Preço €", ""},
      {"..", "pasta"},
      {"a/b", "pasta"},
      {"a:b", "pasta"},
      {"ACME.", "pasta"},
      {"ACME ", "pasta"},
      {"con", "pasta"},
      {"Com1.txt", "pasta"},
      {"COM10", ""},
      {"qvprofiler", ""},  // the log is not under this data root
  };
  for (const auto& [empresa, motivoEsperado] : casos) {
    SCOPED_TRACE(empresa);
    std::string motivo;
    const HRESULT hr = QVValidaNomeEmpresa(empresa, &motivo);
    EXPECT_EQ(Diretorio(empresa), hr);
    EXPECT_EQ(hr, *motivoEsperado == '\0' ? S_OK : E_QVDF_NOME_EMPRESA_INVALIDO) << motivo;
    EXPECT_NE(motivo.find(motivoEsperado), std::string::npos) << motivo;
  }
  EXPECT_EQ(Pastas(), 5);  // the five accepted
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
  const std::pair<std::string, HRESULT> casos[] = {
      // bytes of szEmpresa, in the code page; the status
      {"ACME", S_OK},
      {"", S_OK},  // no company: the database's facade answers that
      {"Constru\xE7\xF5" "es", S_OK},
      {"A\x81", E_QVDF_NOME_EMPRESA_INVALIDO},  // no character in the code page
      {std::string(48, 'E'), E_QVDF_NOME_EMPRESA_INVALIDO},  // no terminator in the field
      {"..", E_QVDF_NOME_EMPRESA_INVALIDO},
  };
  std::shared_ptr<IQVConexaoSuite> conexao;
  for (const auto& [campo, hr] : casos) {
    SCOPED_TRACE(campo);
    _REG_DF_INICIALIZAPS reg = QVTesteInicializaPS("");  // the field all zeros
    std::memcpy(reg.szEmpresa, campo.data(), campo.size());
    EXPECT_EQ(QVSessaoSuite().Conecta(reg, &conexao), hr);
  }
  const auto linhas = QVTesteLinhasErro();
  ASSERT_EQ(linhas.size(), 3u);
  EXPECT_NE(linhas[0].find("sMotivo = byte que não é caractere da página de código\t"), std::string::npos) << linhas[0];
}
