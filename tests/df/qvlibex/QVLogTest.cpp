#include "df/qvlibex/QVLog.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVProfilerLog.h"
#include "platform/QVLogFile.h"
#include "tests/support/QVTestSupport.h"

namespace fs = std::filesystem;

namespace {

class QVLogTest : public ::testing::Test {
 protected:
  void SetUp() override { QVTesteLimpaLog(); }
  void TearDown() override { QVClockFixLocalTime(nullptr); }
};

HRESULT Le(HRESULT hr, int*) { return hr; }

HRESULT LeTolerando(HRESULT h, int* pChegou) {
  HRESULT hr;
  QV_CHECK_HR(hr, Le(h, nullptr), E_QVCR_ARQUIVO_NAO_EXISTE);
  *pChegou = 1;  // a tolerated failure goes on
  return hr;
}

HRESULT LeVerificando(HRESULT h) {
  QV_CHECK(Le(h, nullptr));
  return S_OK;
}

}  // namespace

TEST_F(QVLogTest, FalhaNaoToleradaEscreveUmaLinhaERetornaOCodigo) {
  CQVProfilerEmpresa perfil("ACME", 7, 1234);
  CQVEscopoLog escopo(&perfil);
  EXPECT_EQ(LeVerificando(E_QVCR_ARQUIVO_NAO_EXISTE), E_QVCR_ARQUIVO_NAO_EXISTE);
  EXPECT_EQ(QVTesteCabecalhosErro(),
            std::vector<std::string>{
                "Data\tHora\tProcesso\tUsuarioLocal\tClasseFuncao\tGuid\tEmpresa\tUsuario\tSessao\tThreadID\tEmpresa\t"
                "Usuario\tNumeroSessao\tUsuarioDominio\tAplicativo\tModuleName\tArquivoFonte\tLinhaFonte\tWTS\tFiller\t"
                "Filler\tTipo\tMemoriaDisponivel\tMemoriaTotal\tMemoriaComponente\tVersaoVireo\tVersaoSO\tArquivo\t"
                "Linha\tLog\tParameter1\tParameter2\tParameter3\tParameter4\tParameter5\tParameter6\tParameter7\t"
                "Parameter8\tParameter9"});
  const auto linhas = QVTesteLinhasErro();
  ASSERT_EQ(linhas.size(), 1u);
  const std::string& l = linhas[0];
  // The function, the scope's identity, the source and the type in their cells.
  EXPECT_NE(l.find("\t{anonymous}::LeVerificando\t"), std::string::npos) << l;
  EXPECT_NE(l.find("\tEACME\tU007\tS00001234\tT"), std::string::npos) << l;
  EXPECT_NE(l.find("\tdf/qvlibex/QVLogTest\t"), std::string::npos) << l;
  EXPECT_NE(l.find("\tERRO\t"), std::string::npos) << l;
  // The message's parts fill the last cells, the last one ending with its tab too.
  EXPECT_TRUE(l.ends_with("\thr = Le(h, nullptr)\thr = 0X810809E3 O arquivo não existe\tSEVERITY = 1 SEVERITY_ERROR\t"
                          "FACILITY = 264 FACILITY_QVCR\tCODE = 2531 ERROR_DESCONHECIDO\t"
                          "Descrição = E_QVCR_ARQUIVO_NAO_EXISTE\t"))
      << l;
}

TEST_F(QVLogTest, CodigoToleradoNaoEscreveNadaEContinua) {
  int chegou = 0;
  EXPECT_EQ(LeTolerando(E_QVCR_ARQUIVO_NAO_EXISTE, &chegou), E_QVCR_ARQUIVO_NAO_EXISTE);
  EXPECT_EQ(chegou, 1);
  EXPECT_TRUE(QVTesteLinhasErro().empty());
  // Not in the list: logged (outside any scope: no identity) and returned at once.
  chegou = 0;
  EXPECT_EQ(LeTolerando(E_QVCR_TENTATIVA_LER_POSICAO_ZERO, &chegou), E_QVCR_TENTATIVA_LER_POSICAO_ZERO);
  EXPECT_EQ(chegou, 0);
  // Success codes are never logged.
  EXPECT_EQ(LeTolerando(S_FALSE, &chegou), S_FALSE);
  EXPECT_EQ(LeVerificando(S_FALSE), S_OK);
  const auto linhas = QVTesteLinhasErro();
  ASSERT_EQ(linhas.size(), 1u);
  EXPECT_NE(linhas[0].find("\tE\tU000\tS00000000\tT"), std::string::npos) << linhas[0];
}

// The messages of the three formats: a status, a value and a record file's.
TEST_F(QVLogTest, FormatosDasMensagens) {
  EXPECT_EQ(QVFormataFalhaHr("CopyFile(a, b)", HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)),
            "hr = CopyFile(a, b)\thr = 0X80070002 O arquivo não foi encontrado\tSEVERITY = 1 SEVERITY_ERROR\t"
            "FACILITY = 7 FACILITY_WIN32\tCODE = 2 ERROR_FILE_NOT_FOUND\t"
            "Descrição = HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)");
  EXPECT_EQ(QVFormataFalhaValor("arq.GetQtdRegistros()", "lQtd", -1, E_FAIL),
            "arq.GetQtdRegistros()\tlQtd = -1\tHR = 0X80004005\tDescrição = Falha não especificada");
  EXPECT_EQ(QVFormataFalhaArquivo(E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO, "GEATPRJ.dat", 12, 12, 11),
            "hr = 0x810809DA\tDescrição = Posição de leitura além do último registro do arquivo\t"
            "Arquivo = GEATPRJ.dat\tPosição = 12\tRegistro = 12\tQtd. Registros = 11");
  EXPECT_EQ(QVFormataFalhaArquivoTamanho(E_QVCR_ARQUIVO_NAO_EH_MOD_ESTRUTURA, "GEATRPS.dat", 0, 0, 4294967297),
            "hr = 0x810809D8\tDescrição = O tamanho do arquivo não corresponde a um número inteiro de registros\t"
            "Arquivo = GEATRPS.dat\tPosição = 0\tRegistro = 0\tGetLength = 4294967297");
}

TEST_F(QVLogTest, UmArquivoPorMesComCabecalhoUmaVez) {
  const SYSTEMTIME julho{2020, 7, 0, 31, 23, 59, 59, 0}, agosto{2020, 8, 0, 1, 0, 0, 0, 0};
  QVClockFixLocalTime(&julho);
  for (const char* chamada : {"A()", "B()"}) QVLogaFalhaHr(QV_LOCAL, chamada, E_FAIL);
  QVClockFixLocalTime(&agosto);
  QVLogaFalhaHr(QV_LOCAL, "C()", E_FAIL);
  const std::string dir = QVProfilerDiretorio();
  // Readable by the owner and the group only.
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
  EXPECT_TRUE(QVProfilerCaminho(programa, agosto).ends_with("/QVProfilerErros_Pgms_202008.log"));
}

// Several processes appending to the same month file: one header, and every
// line whole.
TEST_F(QVLogTest, ProcessosConcorrentesNaoEmbaralhamLinhas) {
  constexpr int kProcessos = 4, kLinhas = 50;
  const auto escreve = [](int) {
    for (int i = 0; i < kLinhas; ++i) QVLogaFalhaHr(QV_LOCAL, "Concorrente()", E_FAIL);
    return 0;
  };
  EXPECT_EQ(QVTesteEmProcessos(kProcessos, escreve), std::vector<int>(kProcessos, 0));
  EXPECT_EQ(QVTesteCabecalhosErro().size(), 1u);
  const auto linhas = QVTesteLinhasErro();
  ASSERT_EQ(linhas.size(), static_cast<std::size_t>(kProcessos * kLinhas));
  for (const std::string& l : linhas) EXPECT_TRUE(l.ends_with("Descrição = E_FAIL\t")) << l;
}

TEST_F(QVLogTest, FalhaAoEscreverOLogTemSuaCausaEEIgnorada) {
  const std::string dir = QVTesteNovoDiretorio("log-falho");
  std::ofstream(dir + "/arquivo") << "x";
  fs::create_directory(dir + "/pasta.log");
  const std::pair<std::string, HRESULT> casos[] = {
      {dir + "/arquivo/x.log", HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND)},  // a file in the folder's place
      {dir + "/arquivo/sub/x.log", HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND)},
      {dir + "/pasta.log", HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED)},  // a folder in the file's place
      {dir + "/nova/x.log", S_OK},
  };
  for (const auto& [caminho, hr] : casos)
    EXPECT_EQ(QVAppendLogRecord(caminho, "cabecalho\n", "linha\n"), hr) << caminho;
  EXPECT_EQ(QVTesteLeArquivo(dir + "/nova/x.log"), "cabecalho\nlinha\n");

  // The log's folder cannot be made: the step still returns its status.
  fs::create_directories(fs::path(QVProfilerDiretorio()).parent_path());
  std::ofstream(QVProfilerDiretorio()) << "x";
  EXPECT_EQ(LeVerificando(E_QVCR_ARQUIVO_NAO_EXISTE), E_QVCR_ARQUIVO_NAO_EXISTE);
  fs::remove(QVProfilerDiretorio());
}

// The function and the source a check names, from what the compiler gives.
TEST(QVNomeQualificado, AssinaturasDoCompiladorECaminhosDasFontes) {
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
  EXPECT_EQ(QVNomeFonte("core/qvdatabase/QVFileBase.cpp"), "core/qvdatabase/QVFileBase");
  EXPECT_EQ(QVNomeFonte("/home/build/x/core/qvdatabase/QVFileBase.cpp"), "core/qvdatabase/QVFileBase");
  EXPECT_EQ(QVNomeFonte("Conversao.cpp"), "Conversao");
  EXPECT_EQ(QVNomeFonte("core/QVRPCDLL/T_QVUnknown.h"), "core/QVRPCDLL/T_QVUnknown");
}
