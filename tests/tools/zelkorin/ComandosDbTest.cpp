// The administrators' commands read and report; they never change a file.
#include "tools/zelkorin/ComandosDb.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "core/qvdatabase/CQVDataBase.h"
#include "core/qvdatabase/QVFileNameFormat.h"
#include "core/qvdatabase/QVFileRegistros.h"
#include "core/qvdatabase/QVGroupFile.h"
#include "core/qvdatabase/QVTextFile.h"
#include "df/qvlibex/QVCodigos.h"
#include "ge/zelkorin/ZelkorinArquivos.h"
#include "platform/QVCodePage.h"
#include "platform/QVOsFile.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "tests/support/QVTestSupport.h"
#include "tests/support/QVTesteArquivos.h"

namespace {

class ComandosDbTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_Dir = QVTesteNovoDiretorio("db");
    {
      CQVFileRegistros atendimentos("GEATTEC2202007.dat", QV_GE, 512, "REG_ATENDIMENTO_V2");
      atendimentos.SetDiretorio(m_Dir);
      ASSERT_EQ(atendimentos.Inicializa(&QVTesteIdentidade()), S_OK);
      std::string dois(1024, 'a');
      QVUInt pos = 0;
      ASSERT_EQ(atendimentos.GravaRegistros(pos, dois.data(), 2), S_OK);
      CQVTextFile textos("GeAtStrV1.dat", QV_GE);
      textos.SetDiretorio(m_Dir);
      ASSERT_EQ(textos.Inicializa(&QVTesteIdentidade()), S_OK);
      pos = 0;
      ASSERT_EQ(textos.GravaColecao(pos, {QVUtf8ToAnsi("Ação"), "segundo"}), S_OK);  // texts are in the 8-bit code page
    }
    QVTesteGravaBytes(Caminho("LEGADO.dat"), "sem cabecalho");
  }

  std::string Caminho(const std::string& nome) const { return m_Dir + "/" + nome; }

  std::map<std::string, std::string> Conteudos() const {
    std::map<std::string, std::string> m;
    for (const auto& e : std::filesystem::directory_iterator(m_Dir)) m[e.path().string()] = QVTesteBytes(e.path());
    return m;
  }

  std::string m_Dir;
  std::ostringstream m_Out, m_Err;
};

}  // namespace

TEST_F(ComandosDbTest, VerifyDeUmDiretorio) {
  // One file damaged behind the program's back.
  QVTesteGravaBytes(Caminho("GEATSRVV3202007.dat"), QVTesteBytes(Caminho("GEATTEC2202007.dat")));
  const auto antes = Conteudos();
  EXPECT_EQ(QVComandoDbVerify({m_Dir}, std::nullopt, false, m_Out, m_Err), 1);
  const std::string saida = m_Out.str();
  EXPECT_NE(saida.find("GEATTEC2202007.dat: OK (com cabeçalho; 1024 bytes de dados; 2 registros de 512 bytes)"),
            std::string::npos)
      << saida;
  EXPECT_NE(saida.find("GeAtStrV1.dat: OK (com cabeçalho; 19 bytes de dados; 2 textos)"), std::string::npos) << saida;
  EXPECT_NE(saida.find("LEGADO.dat: OK (sem cabeçalho; 13 bytes de dados)"), std::string::npos) << saida;
  EXPECT_NE(saida.find("GEATSRVV3202007.dat: E_QVCR_NOME_ARQUIVO_NAO_CONFERE 0x81080A43"), std::string::npos) << saida;
  EXPECT_EQ(Conteudos(), antes);  // not even the file without header got one

  // All good: exit 0. A size given on the command line is used for every file.
  std::filesystem::remove(Caminho("GEATSRVV3202007.dat"));
  std::filesystem::remove(Caminho("LEGADO.dat"));
  std::filesystem::remove(Caminho("GeAtStrV1.dat"));
  std::filesystem::remove(Caminho("QVDATABASE_FILE_CTRL.dat"));  // it listed GeAtStrV1.dat
  m_Out.str("");
  EXPECT_EQ(QVComandoDbVerify({m_Dir}, std::nullopt, false, m_Out, m_Err), 0) << m_Out.str();
  m_Out.str("");
  EXPECT_EQ(QVComandoDbVerify({Caminho("GEATTEC2202007.dat")}, 300, false, m_Out, m_Err), 1);
  EXPECT_NE(m_Out.str().find("E_QVCR_ARQUIVO_NAO_EH_MOD_ESTRUTURA"), std::string::npos) << m_Out.str();
}

TEST_F(ComandosDbTest, VerifyDeArquivosDanificados) {
  std::string b = QVTesteBytes(Caminho("GEATTEC2202007.dat"));
  QVTesteGravaBytes(Caminho("GEATTEC2202007.dat"), b + "x");  // bytes appended
  std::string t = QVTesteBytes(Caminho("GeAtStrV1.dat"));
  t[240] = 100;  // the first text's count now runs past the end
  QVTesteGravaBytes(Caminho("GeAtStrV1.dat"), t);
  QVTesteAlteraCabecalho(Caminho("GeAtStrV1.dat"), [](QVCabecalhoArquivo&) {});
  EXPECT_EQ(QVComandoDbVerify({Caminho("GEATTEC2202007.dat"), Caminho("GeAtStrV1.dat"), Caminho("NADA.dat")},
                              std::nullopt, false, m_Out, m_Err),
            1);
  const std::string saida = m_Out.str();
  EXPECT_NE(saida.find("GEATTEC2202007.dat: E_QVCR_TAMANHO_ARQUIVO_NAO_CONFERE 0x81080C08"), std::string::npos);
  EXPECT_NE(saida.find("GeAtStrV1.dat: E_QVCR_ARQUIVO_TEXTO_QUANTIDADE_CARACTERES_INVALIDA 0x81080C5E"),
            std::string::npos);
  EXPECT_NE(saida.find("NADA.dat: E_QVCR_ARQUIVO_NAO_EXISTE"), std::string::npos) << saida;
}

TEST_F(ComandosDbTest, HeaderEmJson) {
  ASSERT_EQ(QVComandoDbHeader(Caminho("GEATTEC2202007.dat"), m_Out, m_Err), 0);
  const auto j = nlohmann::json::parse(m_Out.str());
  EXPECT_TRUE(j["possuiCabecalho"].get<bool>());
  EXPECT_EQ(j["cabecalho"]["tamanhoDados"], 1024);
  EXPECT_TRUE(j["cabecalho"]["tamanhoDadosConfere"].get<bool>());
  EXPECT_TRUE(j["cabecalho"]["verificacaoConfere"].get<bool>());
  EXPECT_EQ(j["cabecalho"]["nomeArquivo"], "GEATTEC2202007.dat");
  EXPECT_EQ(j["cabecalho"]["empresa"], "EMPRESA_TESTE");
  EXPECT_EQ(j["cabecalho"]["versaoSistemaCriacao"], 118);
  EXPECT_EQ(j["cabecalho"]["criacao"].get<std::string>().size(), 23u);  // "YYYY-MM-DD HH:MM:SS.mmm"

  m_Out.str("");
  ASSERT_EQ(QVComandoDbHeader(Caminho("LEGADO.dat"), m_Out, m_Err), 0);
  EXPECT_FALSE(nlohmann::json::parse(m_Out.str())["possuiCabecalho"].get<bool>());
  EXPECT_EQ(QVComandoDbHeader(Caminho("NADA.dat"), m_Out, m_Err), 1);
}

TEST_F(ComandosDbTest, DumpDeRegistrosEDeTextos) {
  const auto antes = Conteudos();
  ASSERT_EQ(QVComandoDbDump(Caminho("GeAtStrV1.dat"), std::nullopt, true, false, m_Out, m_Err), 0) << m_Err.str();
  EXPECT_EQ(m_Out.str(), "1\t4\tAção\n2\t7\tsegundo\n");
  m_Out.str("");
  ASSERT_EQ(QVComandoDbDump(Caminho("GEATTEC2202007.dat"), 512, false, false, m_Out, m_Err), 0);
  EXPECT_NE(m_Out.str().find("posição 2\n  0000  61 61 61"), std::string::npos) << m_Out.str().substr(0, 200);
  m_Out.str("");
  ASSERT_EQ(QVComandoDbDump(Caminho("GeAtStrV1.dat"), std::nullopt, true, true, m_Out, m_Err), 0);
  EXPECT_EQ(nlohmann::json::parse(m_Out.str())[0]["texto"], "Ação");
  EXPECT_EQ(QVComandoDbDump(Caminho("GEATTEC2202007.dat"), 500, false, false, m_Out, m_Err), 1);  // not whole records
  EXPECT_EQ(QVComandoDbDump(Caminho("GEATTEC2202007.dat"), std::nullopt, false, false, m_Out, m_Err), 2);
  EXPECT_EQ(Conteudos(), antes);
}

TEST_F(ComandosDbTest, VerifyDoDiretorioComoBancoDaEmpresa) {
  QVTesteGravaBytes(Caminho("GEATTEC2202008.dat"), QVTesteBytes(Caminho("GEATTEC2202007.dat")));
  QVTesteGravaBytes(Caminho("GEAtCla0519.DAT"), "");  // the old month form, before the conversion
  QVTesteGravaBytes(Caminho("GeAtDsp0720.DAT"), "");  // its new name is taken: never renamed
  QVTesteGravaBytes(Caminho("GEATDSP202007.DAT"), "");
  QVTesteGravaBytes(Caminho("GeAtStrV1.tra"), "");  // an interrupted rewrite
  std::filesystem::remove(Caminho("GeAtStrV1.dat"));  // listed in the control, gone: the copy may be all there is
  QVTesteGravaBytes(Caminho("GEATTEC2202007.tra"), "");  // an interrupted compaction: harmless
  QVTesteGravaBytes(Caminho("XXMARCA7.dat"), "");  // left by a process that ended
  const auto antes = Conteudos();
  EXPECT_EQ(QVComandoDbVerify({m_Dir}, std::nullopt, false, m_Out, m_Err), 1);
  const std::string s = m_Out.str();
  EXPECT_NE(s.find("GEATTEC2AAAAMM.DAT: 2 meses, de 2020-07 a 2020-08"), std::string::npos) << s;
  EXPECT_NE(s.find("GEATTEC2202008.dat: E_QVCR_NOME_ARQUIVO_NAO_CONFERE"), std::string::npos) << s;
  EXPECT_NE(s.find("GEAtCla0519.DAT: AVISO nome no formato antigo (mês e ano com dois dígitos); a conversão o "
                   "renomeia para GEAtCla201905.DAT"),
            std::string::npos)
      << s;
  EXPECT_NE(s.find("GeAtDsp0720.DAT: AVISO nome no formato antigo; GeAtDsp202007.DAT já existe"), std::string::npos)
      << s;
  EXPECT_NE(s.find("GeAtStrV1.tra: E_QVCR_ARQUIVO_TRA_ENCONTRADO 0x810809CB - cópia sem o arquivo de origem"),
            std::string::npos)
      << s;
  EXPECT_NE(s.find("GEATTEC2202007.tra: AVISO cópia deixada por uma compactação interrompida"), std::string::npos) << s;
  EXPECT_NE(s.find("GeAtStrV1.dat: E_QVCR_INCONSISTENCIA_CONTROLE_CRIACAO_ARQUIVOS"), std::string::npos) << s;
  EXPECT_NE(s.find("XXMARCA7.dat: AVISO marca abandonada"), std::string::npos) << s;
  EXPECT_EQ(s.find("XXMARCA7.dat: OK"), std::string::npos) << s;  // a mark is not a data file
  EXPECT_EQ(Conteudos(), antes);

  // A mark some process holds is reported as such.
  auto marca = QVCreateRealOsFile();
  ASSERT_TRUE(marca->Open(Caminho("XXMARCA7.dat"), QVFILE_MODE_READWRITE | QVFILE_SHARE_EXCLUSIVE | QVFILE_MODE_CREATE));
  m_Out.str("");
  QVComandoDbVerify({m_Dir}, std::nullopt, false, m_Out, m_Err);
  EXPECT_NE(m_Out.str().find("XXMARCA7.dat: marcada por um processo em execução"), std::string::npos) << m_Out.str();
}

// The one rule for month names: verify reports exactly the names that make
// some group of the module refuse its directory, and warns of the old
// "MMAA" names the conversion renames.
TEST_F(ComandosDbTest, NomesDeMesVerifyEOGrupoConcordam) {
  struct Caso {
    const char* nome;
    bool bRecusado;
    bool bAviso;
  };
  const Caso casos[] = {
      {"GEATTEC2202007.DAT", false, false},
      {"geattec2202007.dat", false, false},  // case does not count
      {"GEATTEC2ABCDEF.DAT", true, false},
      {"GEATTEC2202013.DAT", true, false},  // month 13
      {"GEATTEC2184700.DAT", true, false},  // before the first month code
      {"GEATTEC2471712.DAT", false, false},  // the last month code
      {"GEATTEC2471801.DAT", true, false},
      {"GEATTEC2002007.DAT", true, false},  // a two-digit year written with four
      {"GEATTEC22020071.DAT", false, false},  // no member: another length
      {"GEATTEC2202007.BAK", false, false},
      {"GEATSRVV3202007.DAT", false, false},  // not a "GeAtSrv" name: another length
      {"GEATSRVV30719.DAT", true, false},  // a "GeAtSrv" member whose period is "V30719"
      {"GeAtCmtSrv0719.DAT", false, true},  // old name of the longer root only
      {"GEAtCla0519.DAT", false, true},
      {"GEAtCla1319.DAT", false, true},  // old, unreadable: the conversion cannot rename it
      {"GEATEFDV10519.DAT", false, false},  // never renamed, no member
      {"GEATTPINT20200X.DAT", true, false},
  };
  for (const Caso& c : casos) {
    SCOPED_TRACE(c.nome);
    const std::string dir = QVTesteNovoDiretorio("nomes");
    QVTesteGravaBytes(dir + "/" + c.nome, "");
    bool bGrupoRecusa = false;
    for (const QVRaizMensalGE& raiz : QVRaizesMensaisGE()) {
      CQVDataBase db;
      db.SetSomenteLeitura(true);
      db.SetDiretorio(dir);
      ASSERT_EQ(db.Inicializa(&QVTesteIdentidade()), S_OK);
      CQVGroupFile<REG_TESTE> grupo(QVPadraoGrupoMensal(raiz.raiz), QV_GE);
      const HRESULT hr = grupo.Inicializa(&db);
      ASSERT_TRUE(hr == S_OK || hr == E_QVCR_NOME_ARQUIVO_GROUP_INVALIDO) << std::hex << hr;
      bGrupoRecusa = bGrupoRecusa || FAILED(hr);
    }
    EXPECT_EQ(bGrupoRecusa, c.bRecusado);
    std::ostringstream out, err;
    EXPECT_EQ(QVComandoDbVerify({dir}, std::nullopt, false, out, err), c.bRecusado ? 1 : 0) << out.str();
    EXPECT_EQ(out.str().find("E_QVCR_NOME_ARQUIVO_GROUP_INVALIDO") != std::string::npos, c.bRecusado) << out.str();
    EXPECT_EQ(out.str().find("AVISO nome no formato antigo") != std::string::npos, c.bAviso) << out.str();
  }
}

TEST_F(ComandosDbTest, VerifyEmJson) {
  QVTesteGravaBytes(Caminho("GEATTEC2ABCDEF.DAT"), "");
  EXPECT_EQ(QVComandoDbVerify({m_Dir}, std::nullopt, true, m_Out, m_Err), 1);
  const auto j = nlohmann::json::parse(m_Out.str());
  EXPECT_EQ(j["falhas"], 1);
  EXPECT_EQ(j["achados"][0]["nivel"], "falha");
  EXPECT_EQ(j["achados"][0]["status"], "E_QVCR_NOME_ARQUIVO_GROUP_INVALIDO 0x810809F1");
  EXPECT_EQ(j["arquivos"].size(), 5u);  // the control file and the bad name are data files too
}

// The way out of E_QVCR_INCONSISTENCIA_CONTROLE_CRIACAO_ARQUIVOS: list the
// control, forget the entry of the file that vanished, and the directory
// opens again.
TEST_F(ComandosDbTest, ControleListaEEsqueceOArquivoAusente) {
  std::filesystem::remove(Caminho("GeAtStrV1.dat"));
  const auto abreTextos = [&] {
    CQVTextFile textos("GeAtStrV1.dat", QV_GE);
    textos.SetDiretorio(m_Dir);
    return textos.Inicializa(&QVTesteIdentidade());
  };
  ASSERT_EQ(abreTextos(), E_QVCR_INCONSISTENCIA_CONTROLE_CRIACAO_ARQUIVOS);

  EXPECT_EQ(QVComandoDbControl(m_Dir, std::nullopt, false, m_Out, m_Err), 1);
  EXPECT_NE(m_Out.str().find("QVDATABASE_FILE_CTRL.dat: 2 arquivos listados, 1 ausente\n"), std::string::npos)
      << m_Out.str();
  EXPECT_NE(m_Out.str().find("  AUSENTE   GeAtStrV1.dat\n"), std::string::npos) << m_Out.str();
  m_Out.str("");
  EXPECT_EQ(QVComandoDbControl(m_Dir, std::nullopt, true, m_Out, m_Err), 1);
  EXPECT_EQ(nlohmann::json::parse(m_Out.str())["ausentes"], 1);

  // Refusals change nothing.
  QVTesteGravaBytes(Caminho("QVDATABASE_FILE_CTRL.tra"), "");  // left by an interrupted rewrite
  struct Recusa {
    const char* nome;
    const char* motivo;
  };
  for (const Recusa& r : {Recusa{"NADA.dat", "não está listado"}, Recusa{"GEATTEC2202007.dat", "o arquivo existe"},
                          Recusa{"GeAtStrV1.dat", "E_QVCR_ARQUIVO_TRA_ENCONTRADO"}}) {
    SCOPED_TRACE(r.nome);
    const auto antes = Conteudos();
    m_Err.str("");
    EXPECT_EQ(QVComandoDbControl(m_Dir, std::string(r.nome), false, m_Out, m_Err), 1);
    EXPECT_NE(m_Err.str().find(r.motivo), std::string::npos) << m_Err.str();
    EXPECT_EQ(Conteudos(), antes);
  }
  std::filesystem::remove(Caminho("QVDATABASE_FILE_CTRL.tra"));

  QVTesteLimpaLog();
  m_Out.str("");
  ASSERT_EQ(QVComandoDbControl(m_Dir, std::string("geatstrv1.DAT"), false, m_Out, m_Err), 0) << m_Err.str();
  EXPECT_EQ(m_Out.str(), "GeAtStrV1.dat: entrada removida de " + Caminho("QVDATABASE_FILE_CTRL.dat") + "\n");
  const auto linhas = QVTesteLinhasErro();
  ASSERT_EQ(linhas.size(), 1u);
  EXPECT_NE(linhas[0].find("--forget"), std::string::npos) << linhas[0];
  EXPECT_NE(linhas[0].find("sNomeArquivo = GeAtStrV1.dat\t"), std::string::npos) << linhas[0];
  EXPECT_EQ(QVComandoDbControl(m_Dir, std::nullopt, false, m_Out, m_Err), 0);
  EXPECT_EQ(abreTextos(), S_OK);
}
