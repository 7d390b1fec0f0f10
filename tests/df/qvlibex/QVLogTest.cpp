#include "df/qvlibex/QVLog.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVProfilerLog.h"
#include "platform/QVLogFile.h"
#include "tests/support/QVTestSupport.h"

namespace {

class QVLogTest : public ::testing::Test {
 protected:
  void SetUp() override { QVTesteLimpaLog(); }
  void TearDown() override { QVClockFixLocalTime(nullptr); }
};

struct CLeitor {
  HRESULT Le(int, int*) { return m_hr; }
  HRESULT LeTolerando(int* pChegou) {
    HRESULT hr;
    QV_CHECK_HR(hr, Le(3, nullptr), E_QVCR_ARQUIVO_NAO_EXISTE);
    *pChegou = 1;  // a tolerated failure goes on
    return hr;
  }
  HRESULT LeVerificando() {
    QV_CHECK(Le(3, nullptr));
    return S_OK;
  }
  HRESULT m_hr = S_OK;
};

}  // namespace

TEST_F(QVLogTest, FalhaNaoToleradaEscreveUmaLinhaERetornaOCodigo) {
  CLeitor leitor;
  leitor.m_hr = E_QVCR_ARQUIVO_NAO_EXISTE;
  EXPECT_EQ(leitor.LeVerificando(), E_QVCR_ARQUIVO_NAO_EXISTE);
  const auto linhas = QVTesteLinhasErro();
  ASSERT_EQ(linhas.size(), 1u);
  const std::string& l = linhas[0];
  EXPECT_NE(l.find("\t{anonymous}::CLeitor::LeVerificando\t"), std::string::npos) << l;
  EXPECT_NE(l.find("\tdf/qvlibex/QVLogTest\t"), std::string::npos) << l;
  EXPECT_NE(l.find("\tERRO\t"), std::string::npos);
  EXPECT_EQ(l.back(), '\t');  // the last cell ends with its tab too
  const auto cabecalhos = QVTesteCabecalhosErro();
  ASSERT_EQ(cabecalhos.size(), 1u);
  EXPECT_EQ(cabecalhos[0] + "\n",
            "Data\tHora\tProcesso\tUsuarioLocal\tClasseFuncao\tGuid\tEmpresa\tUsuario\tSessao\tThreadID\tEmpresa\t"
            "Usuario\tNumeroSessao\tUsuarioDominio\tAplicativo\tModuleName\tArquivoFonte\tLinhaFonte\tWTS\tFiller\t"
            "Filler\tTipo\tMemoriaDisponivel\tMemoriaTotal\tMemoriaComponente\tVersaoVireo\tVersaoSO\tArquivo\tLinha\t"
            "Log\tParameter1\tParameter2\tParameter3\tParameter4\tParameter5\tParameter6\tParameter7\tParameter8\t"
            "Parameter9\n");
  EXPECT_NE(l.find("hr = Le(3, nullptr)\thr = 0X810809E3 O arquivo não existe\tSEVERITY = 1 SEVERITY_ERROR\t"
                   "FACILITY = 264 FACILITY_QVCR\tCODE = 2531 ERROR_DESCONHECIDO\t"
                   "Descrição = E_QVCR_ARQUIVO_NAO_EXISTE"),
            std::string::npos)
      << l;
}

TEST_F(QVLogTest, CodigoToleradoNaoEscreveNadaEContinua) {
  CLeitor leitor;
  leitor.m_hr = E_QVCR_ARQUIVO_NAO_EXISTE;
  int chegou = 0;
  EXPECT_EQ(leitor.LeTolerando(&chegou), E_QVCR_ARQUIVO_NAO_EXISTE);
  EXPECT_EQ(chegou, 1);
  EXPECT_TRUE(QVTesteLinhasErro().empty());

  leitor.m_hr = E_QVCR_TENTATIVA_LER_POSICAO_ZERO;  // not in the list: logged and returned at once
  chegou = 0;
  EXPECT_EQ(leitor.LeTolerando(&chegou), E_QVCR_TENTATIVA_LER_POSICAO_ZERO);
  EXPECT_EQ(chegou, 0);
  EXPECT_EQ(QVTesteLinhasErro().size(), 1u);

  leitor.m_hr = S_FALSE;  // success codes are never logged
  EXPECT_EQ(leitor.LeVerificando(), S_OK);
  EXPECT_EQ(QVTesteLinhasErro().size(), 1u);
}

TEST_F(QVLogTest, PartesDeUmCodigoWin32) {
  const std::string texto = QVFormataFalhaHr("CopyFile(a, b)", HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(texto,
            "hr = CopyFile(a, b)\thr = 0X80070002 O arquivo não foi encontrado\tSEVERITY = 1 SEVERITY_ERROR\t"
            "FACILITY = 7 FACILITY_WIN32\tCODE = 2 ERROR_FILE_NOT_FOUND\t"
            "Descrição = HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)");
  EXPECT_EQ(QVFormataFalhaValor("arq.GetQtdRegistros()", "lQtd", -1, E_FAIL),
            "arq.GetQtdRegistros()\tlQtd = -1\tHR = 0X80004005\tDescrição = Falha não especificada");
}

TEST_F(QVLogTest, FalhasDeArquivoDeRegistros) {
  EXPECT_EQ(QVFormataFalhaArquivo(E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO, "GEATPRJ.dat", 12, 12, 11),
            "hr = 0x810809DA\tDescrição = Posição de leitura além do último registro do arquivo\t"
            "Arquivo = GEATPRJ.dat\tPosição = 12\tRegistro = 12\tQtd. Registros = 11");
  EXPECT_EQ(QVFormataFalhaArquivoTamanho(E_QVCR_ARQUIVO_NAO_EH_MOD_ESTRUTURA, "GEATRPS.dat", 0, 0, 4294967297),
            "hr = 0x810809D8\tDescrição = O tamanho do arquivo não corresponde a um número inteiro de registros\t"
            "Arquivo = GEATRPS.dat\tPosição = 0\tRegistro = 0\tGetLength = 4294967297");
}

TEST_F(QVLogTest, IdentidadeDoEscopoNasColunas) {
  CQVProfilerEmpresa perfil("ACME", 7, 1234);
  {
    CQVEscopoLog escopo(&perfil);
    QVLogaFalhaHr(QV_LOCAL, "Teste()", E_FAIL);
  }
  QVLogaFalhaHr(QV_LOCAL, "SemEscopo()", E_FAIL);
  const auto linhas = QVTesteLinhasErro();
  ASSERT_EQ(linhas.size(), 2u);
  EXPECT_NE(linhas[0].find("\tEACME\tU007\tS00001234\tT"), std::string::npos) << linhas[0];
  EXPECT_NE(linhas[1].find("\tE\tU000\tS00000000\tT"), std::string::npos) << linhas[1];
}

TEST_F(QVLogTest, UmArquivoPorMesComCabecalhoUmaVez) {
  const SYSTEMTIME julho{2020, 7, 0, 31, 23, 59, 59, 0};
  const SYSTEMTIME agosto{2020, 8, 0, 1, 0, 0, 0, 0};
  QVClockFixLocalTime(&julho);
  QVLogaFalhaHr(QV_LOCAL, "A()", E_FAIL);
  QVLogaFalhaHr(QV_LOCAL, "B()", E_FAIL);
  QVClockFixLocalTime(&agosto);
  QVLogaFalhaHr(QV_LOCAL, "C()", E_FAIL);
  const std::string dir = QVProfilerDiretorio();
  // Readable by the owner and the group only.
  namespace fs = std::filesystem;
  EXPECT_EQ(fs::status(dir).permissions(), fs::perms(0750));
  EXPECT_EQ(fs::status(dir + "/QVProfilerErros_Base_202007.log").permissions(), fs::perms(0640));
  const std::string julhoTexto = QVTesteLeArquivo(dir + "/QVProfilerErros_Base_202007.log");
  const std::string agostoTexto = QVTesteLeArquivo(dir + "/QVProfilerErros_Base_202008.log");
  EXPECT_EQ(std::count(julhoTexto.begin(), julhoTexto.end(), '\n'), 3);
  EXPECT_EQ(std::count(agostoTexto.begin(), agostoTexto.end(), '\n'), 2);
  EXPECT_EQ(julhoTexto.rfind("Data\tHora", 0), 0u);
  EXPECT_NE(julhoTexto.find("31/07/2020\t23:59:59\t"), std::string::npos);

  QVRegistroProfiler programa;
  programa.arquivo = "ge/zelkorin/Conversao";
  EXPECT_NE(QVProfilerCaminho(programa, agosto).find("/QVProfilerErros_Pgms_202008.log"), std::string::npos);
}

// Several processes appending to the same month file: one header, and every
// line whole.
TEST_F(QVLogTest, ProcessosConcorrentesNaoEmbaralhamLinhas) {
  constexpr int kProcessos = 4, kLinhas = 50;
  pid_t filhos[kProcessos];
  for (pid_t& filho : filhos) {
    filho = fork();
    ASSERT_GE(filho, 0);
    if (filho == 0) {
      for (int i = 0; i < kLinhas; ++i) QVLogaFalhaHr(QV_LOCAL, "Concorrente()", E_FAIL);
      _exit(0);
    }
  }
  for (pid_t filho : filhos) {
    int status = 0;
    waitpid(filho, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  EXPECT_EQ(QVTesteCabecalhosErro().size(), 1u);
  const auto linhas = QVTesteLinhasErro();
  ASSERT_EQ(linhas.size(), static_cast<std::size_t>(kProcessos * kLinhas));
  for (const std::string& l : linhas) EXPECT_NE(l.find("Descrição = E_FAIL"), std::string::npos) << l;
}

TEST_F(QVLogTest, FalhaAoEscreverOLogTemSuaCausaEEIgnorada) {
  const std::string dir = QVTesteNovoDiretorio("log-falho");
  std::ofstream(dir + "/arquivo") << "x";
  std::filesystem::create_directory(dir + "/pasta.log");
  const struct {
    std::string caminho;
    HRESULT hr;
  } casos[] = {
      {dir + "/arquivo/x.log", HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND)},  // a file in the folder's place
      {dir + "/arquivo/sub/x.log", HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND)},
      {dir + "/pasta.log", HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED)},  // a folder in the file's place
      {dir + "/nova/x.log", S_OK},
  };
  for (const auto& c : casos) {
    SCOPED_TRACE(c.caminho);
    EXPECT_EQ(QVAppendLogRecord(c.caminho, "cabecalho\n", "linha\n"), c.hr);
  }
  EXPECT_EQ(QVTesteLeArquivo(dir + "/nova/x.log"), "cabecalho\nlinha\n");

  // The log's folder cannot be made: the step still returns its status.
  std::filesystem::create_directories(std::filesystem::path(QVProfilerDiretorio()).parent_path());
  std::ofstream(QVProfilerDiretorio()) << "x";
  CLeitor leitor;
  leitor.m_hr = E_QVCR_ARQUIVO_NAO_EXISTE;
  EXPECT_EQ(leitor.LeVerificando(), E_QVCR_ARQUIVO_NAO_EXISTE);
  std::filesystem::remove(QVProfilerDiretorio());
}

TEST(QVNomeQualificado, AssinaturasDoCompilador) {
  EXPECT_EQ(QVNomeQualificado("HRESULT CQVFileBase::AbreArquivo(EQVDataBase_ModoAbertura)"),
            "CQVFileBase::AbreArquivo");
  EXPECT_EQ(QVNomeQualificado("CQVFileBase::CQVFileBase(const char*, int)"), "CQVFileBase::CQVFileBase");
  EXPECT_EQ(QVNomeQualificado("HRESULT T_QVUnknown<I, S>::Inicializa_Padrao(_REG_DF_INICIALIZAPS) "
                              "[with I = IQVGE_Atendimento; S = CGeServidorAtendimento]"),
            "T_QVUnknown<IQVGE_Atendimento, CGeServidorAtendimento>::Inicializa_Padrao");
  EXPECT_EQ(QVNomeQualificado("CConversao::ConverteProjetos()::<lambda(int)>"), "CConversao::ConverteProjetos");
  EXPECT_EQ(QVNomeQualificado("bool CChave::operator<(const CChave&) const"), "CChave::operator<");
  EXPECT_EQ(QVNomeQualificado("HRESULT CFuncao::operator()(int)"), "CFuncao::operator()");
  EXPECT_EQ(QVNomeQualificado("std::map<int, int> CTabela::Mapa(std::pair<int, int>)"), "CTabela::Mapa");
}

TEST(QVNomeFonte, CaminhoSemExtensao) {
  EXPECT_EQ(QVNomeFonte("core/qvdatabase/QVFileBase.cpp"), "core/qvdatabase/QVFileBase");
  EXPECT_EQ(QVNomeFonte("/home/build/x/core/qvdatabase/QVFileBase.cpp"), "core/qvdatabase/QVFileBase");
  EXPECT_EQ(QVNomeFonte("Conversao.cpp"), "Conversao");
  EXPECT_EQ(QVNomeFonte("core/QVRPCDLL/T_QVUnknown.h"), "core/QVRPCDLL/T_QVUnknown");
}
