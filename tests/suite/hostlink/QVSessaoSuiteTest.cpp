// Company names in the embedded session library: one folder per company
// whatever the case, and a clear refusal of a name that cannot be carried
// or stored unchanged; sessions only for what the suite store knows.
#include "suite/hostlink/QVSessaoSuite.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVProfilerLog.h"
#include "df/qvlibex/QVStatus.h"
#include "platform/QVCodePage.h"
#include "suite/hostlink/CQVBaseParaRotinas.h"
#include "suite/hostlink/IQVAcessoGerenciador.h"
#include "suite/masterdata/IQVAcessoEmpresarial.h"
#include "tests/support/QVTestSupport.h"

namespace fs = std::filesystem;

namespace {

class QVSessaoSuiteTest : public ::testing::Test {
 protected:
  void SetUp() override {
    // One root per test: the process's store stays open on its root's file.
    m_Raiz = QVTesteNovoDiretorio(::testing::UnitTest::GetInstance()->current_test_info()->name());
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
  std::ptrdiff_t Pastas() const {
    return std::count_if(fs::directory_iterator(m_Raiz), fs::directory_iterator(),
                         [](const fs::directory_entry& e) { return e.is_directory(); });
  }
  std::string m_Raiz, m_Dir;
};

}  // namespace

TEST_F(QVSessaoSuiteTest, UmaEmpresaUmaPastaSemRespeitoACaixa) {
  QVTesteCadastraEmpresa("Construções");
  for (const char* empresa : {"Construções", "CONSTRUÇÕES", "construções"}) {
    ASSERT_EQ(Diretorio(empresa), S_OK) << empresa;
    EXPECT_EQ(m_Dir, m_Raiz + "/Construções/GE") << empresa;
  }
  // Folders the suite made, in its own case, are the ones used.
  QVTesteCadastraEmpresa("ACME");
  fs::create_directories(m_Raiz + "/acme/ge");
  ASSERT_EQ(Diretorio("ACME"), S_OK);
  EXPECT_EQ(m_Dir, m_Raiz + "/acme/ge");
  // The store's folder for a company, when it names one; none for a
  // company it does not know (the caller says so); the store's folder
  // held to the rules of a name.
  QVTesteCadastraEmpresa("Filial Sul");
  QVTesteCadastraEmpresa("Torta");
  QVTesteExecutaSql("UPDATE empresas SET pasta = 'sul' WHERE nome = 'Filial Sul';"
                    "UPDATE empresas SET pasta = '../fora' WHERE nome = 'Torta'");
  ASSERT_EQ(Diretorio("filial sul"), S_OK);
  EXPECT_EQ(m_Dir, m_Raiz + "/sul/GE");
  EXPECT_EQ(Diretorio("Desconhecida"), S_OK);
  EXPECT_EQ(m_Dir, "");
  EXPECT_EQ(Diretorio("Torta"), E_QVDF_NOME_EMPRESA_INVALIDO);
  EXPECT_EQ(Pastas(), 3);
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
    if (SUCCEEDED(hr)) QVTesteCadastraEmpresa(empresa);
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
  QVTesteCadastraEmpresa("ACME");
  QVTesteCadastraEmpresa("Construções");
  QVTesteLimpaLog();
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

TEST_F(QVSessaoSuiteTest, ConectaSoEmpresaEUsuarioQueASuiteConhece) {
  const std::uint32_t lConstrucoes = QVTesteCadastraEmpresa("Construções", 7), lOutra = QVTesteCadastraEmpresa("Outra", 9);
  QVTesteCadastraEmpresa("Construções", 8);
  QVTesteExecutaSql("UPDATE usuarios SET ativo = 0 WHERE ponteiro = 8");
  const std::tuple<const char*, std::uint32_t, HRESULT> casos[] = {
      {"Construções", 7, S_OK}, {"CONSTRUÇÕES", 7, S_OK},  // letters beyond ASCII in another case
      {"outra", 9, S_OK},       {"Inexistente", 7, E_QVDF_EMPRESA_NAO_CADASTRADA},
      {"Construções", 99, E_QVDF_USUARIO_NAO_CADASTRADO},
      {"Construções", 8, E_QVDF_USUARIO_NAO_CADASTRADO},  // inactive
      {"Construções", 9, E_QVDF_USUARIO_SEM_ACESSO_EMPRESA},
  };
  for (const auto& [empresa, usuario, hr] : casos) {
    SCOPED_TRACE(std::string(empresa) + " " + std::to_string(usuario));
    _REG_DF_INICIALIZAPS reg = QVTesteInicializaPS("");
    const std::string ansi = QVUtf8ToAnsi(empresa);
    std::memcpy(reg.szEmpresa, ansi.data(), ansi.size());
    reg.ulUsuario = usuario;
    QVTesteLimpaLog();
    std::shared_ptr<IQVConexaoSuite> conexao;
    EXPECT_EQ(QVSessaoSuite().Conecta(reg, &conexao), hr);
    const auto linhas = QVTesteLinhasErro();
    if (hr == S_OK) {
      ASSERT_TRUE(conexao);
      EXPECT_EQ(conexao->GetPonteiroEmpresa(), *empresa == 'o' ? lOutra : lConstrucoes);
      EXPECT_EQ(conexao->GetPonteiroUsuario(), usuario);
      EXPECT_TRUE(linhas.empty());
      continue;
    }
    EXPECT_FALSE(conexao);
    ASSERT_EQ(linhas.size(), 1u);
    EXPECT_NE(linhas[0].find("hr = " + QVNomeSimbolico(hr) + "\t"), std::string::npos) << linhas[0];
    EXPECT_NE(linhas[0].find("szEmpresa = " + std::string(empresa) + "\tulUsuario = " + std::to_string(usuario)),
              std::string::npos) << linhas[0];
  }
}

// A session base refused a new session keeps nothing of the old one: its
// accesses are the stand-ins, which refuse everything and touch nothing.
TEST_F(QVSessaoSuiteTest, BaseRecusadaFicaSemSessao) {
  CQVBaseParaRotinas base;
  ASSERT_EQ(base.Inicializa(QVTesteInicializaPS()), S_OK);
  ASSERT_TRUE(base.GetConexao());
  _REG_DF_INICIALIZAPS reg = QVTesteInicializaPS("");
  std::memcpy(reg.szEmpresa, "Sem Cadastro", 12);
  EXPECT_EQ(base.Inicializa(reg), E_QVDF_EMPRESA_NAO_CADASTRADA);
  EXPECT_FALSE(base.GetConexao());
  EXPECT_EQ(base.GetRegistroInicializacao(), nullptr);
  QVTesteLimpaLog();
  CQVDadosDF_Filial filial{.sNome = "intocada"};
  EXPECT_EQ(base.GetAcessoEmpresarial()->LeFilial(1, &filial), E_QVDF_SEM_SESSAO_SUITE);
  EXPECT_EQ(filial.sNome, "intocada");
  CQVDadosGE_Projeto projeto;
  EXPECT_EQ(base.GetAcessoGerenciador()->GravaProjeto(projeto), E_QVDF_SEM_SESSAO_SUITE);
  EXPECT_EQ(QVTesteLinhasErro().size(), 2u);
}
