// The administrators' commands read and report; they never change a file.
#include "tools/zelkorin/ComandosDb.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "core/qvdatabase/QVFileNameFormat.h"
#include "core/qvdatabase/QVFileRegistros.h"
#include "df/qvlibex/QVCodigos.h"
#include "ge/zelkorin/ZelkorinArquivos.h"
#include "platform/QVCodePage.h"
#include "platform/QVOsFile.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "tests/support/QVTestSupport.h"
#include "tests/support/QVTesteArquivos.h"

namespace {

void Contem(const std::string& texto, std::initializer_list<std::string> trechos) {
  for (const std::string& t : trechos) EXPECT_NE(texto.find(t), std::string::npos) << t << "\n" << texto;
}

class ComandosDbTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_Dir = QVTesteNovoDiretorio("db");
    QVTesteGravaBytes(Caminho("LEGADO.dat"), "sem cabecalho");
    CQVFileRegistros atendimentos("GEATTEC2202007.dat", QV_GE, 512, "REG_ATENDIMENTO_V2");
    atendimentos.SetDiretorio(m_Dir);
    ASSERT_EQ(atendimentos.Inicializa(&QVTesteIdentidade()), S_OK);
    QVUInt pos = 0;
    ASSERT_EQ(atendimentos.GravaRegistros(pos, std::string(1024, 'a').data(), 2), S_OK);
    CQVTextFile textos("GeAtStrV1.dat", QV_GE);
    textos.SetDiretorio(m_Dir);
    ASSERT_EQ(textos.Inicializa(&QVTesteIdentidade()), S_OK);
    pos = 0;
    ASSERT_EQ(textos.GravaColecao(pos, {QVUtf8ToAnsi("Ação"), "segundo"}), S_OK);  // texts are in the 8-bit code page
  }

  std::string Caminho(const std::string& nome) const { return m_Dir + "/" + nome; }

  std::map<std::string, std::string> Conteudos() const {
    std::map<std::string, std::string> m;
    for (const auto& e : std::filesystem::directory_iterator(m_Dir)) m[e.path().string()] = QVTesteBytes(e.path());
    return m;
  }

  // A command that only reads, on fresh output streams: every file is as it
  // was after it.
  int Roda(const std::function<int()>& comando) {
    m_Out.str("");
    m_Err.str("");
    const auto antes = Conteudos();
    const int rc = comando();
    EXPECT_EQ(Conteudos(), antes);
    return rc;
  }
  int Verify(const std::vector<std::string>& caminhos, std::optional<std::size_t> tam = {}, bool bJson = false) {
    return Roda([&] { return QVComandoDbVerify(caminhos, tam, bJson, m_Out, m_Err); });
  }
  int Control(std::optional<std::string> esquecer = {}, bool bJson = false) {
    return Roda([&] { return QVComandoDbControl(m_Dir, esquecer, bJson, m_Out, m_Err); });
  }

  std::string m_Dir;
  std::ostringstream m_Out, m_Err;
};

}  // namespace

// What verify, header and dump say of the files as the program made them,
// and verify of the same files damaged.
TEST_F(ComandosDbTest, LeituraDeArquivosBonsEDanificados) {
  // The directory as made by the program: all good, exit 0, and not even the
  // file without header got one.
  EXPECT_EQ(Verify({m_Dir}), 0) << m_Out.str();
  Contem(m_Out.str(), {"GEATTEC2202007.dat: OK (com cabeçalho; 1024 bytes de dados; 2 registros de 512 bytes)",
                       "GeAtStrV1.dat: OK (com cabeçalho; 19 bytes de dados; 2 textos)",
                       "LEGADO.dat: OK (sem cabeçalho; 13 bytes de dados)"});
  // A size given on the command line is used for every file.
  EXPECT_EQ(Verify({Caminho("GEATTEC2202007.dat")}, 300), 1);
  Contem(m_Out.str(), {"E_QVCR_ARQUIVO_NAO_EH_MOD_ESTRUTURA"});

  ASSERT_EQ(Roda([&] { return QVComandoDbHeader(Caminho("GEATTEC2202007.dat"), m_Out, m_Err); }), 0);
  const auto j = nlohmann::json::parse(m_Out.str());
  EXPECT_TRUE(j["possuiCabecalho"].get<bool>());
  const nlohmann::json esperado = {{"tamanhoDados", 1024},       {"tamanhoDadosConfere", true},
                                   {"verificacaoConfere", true}, {"nomeArquivo", "GEATTEC2202007.dat"},
                                   {"empresa", "EMPRESA_TESTE"}, {"versaoSistemaCriacao", 118}};
  for (const auto& [campo, valor] : esperado.items()) EXPECT_EQ(j["cabecalho"][campo], valor) << campo;
  EXPECT_EQ(j["cabecalho"]["criacao"].get<std::string>().size(), 23u);  // "YYYY-MM-DD HH:MM:SS.mmm"

  ASSERT_EQ(Roda([&] { return QVComandoDbHeader(Caminho("LEGADO.dat"), m_Out, m_Err); }), 0);
  EXPECT_FALSE(nlohmann::json::parse(m_Out.str())["possuiCabecalho"].get<bool>());
  EXPECT_EQ(Roda([&] { return QVComandoDbHeader(Caminho("NADA.dat"), m_Out, m_Err); }), 1);

  const auto dump = [&](const char* nome, std::optional<std::size_t> tam, bool bTexto, bool bJson = false) {
    return Roda([&] { return QVComandoDbDump(Caminho(nome), tam, bTexto, bJson, m_Out, m_Err); });
  };
  ASSERT_EQ(dump("GeAtStrV1.dat", {}, true), 0) << m_Err.str();
  EXPECT_EQ(m_Out.str(), "1\t4\tAção\n2\t7\tsegundo\n");
  ASSERT_EQ(dump("GEATTEC2202007.dat", 512, false), 0);
  EXPECT_NE(m_Out.str().find("posição 2\n  0000  61 61 61"), std::string::npos) << m_Out.str().substr(0, 200);
  ASSERT_EQ(dump("GeAtStrV1.dat", {}, true, true), 0);
  EXPECT_EQ(nlohmann::json::parse(m_Out.str())[0]["texto"], "Ação");
  EXPECT_EQ(dump("GEATTEC2202007.dat", 500, false), 1);  // not whole records
  EXPECT_EQ(dump("GEATTEC2202007.dat", {}, false), 2);

  // A dead writer's unfinished append: reported, not a failure.
  const std::string sAtendimentos = QVTesteBytes(Caminho("GEATTEC2202007.dat"));
  QVTesteGravaBytes(Caminho("GEATTEC2202007.dat"), sAtendimentos + "x");
  EXPECT_EQ(Verify({Caminho("GEATTEC2202007.dat")}), 0);
  Contem(m_Out.str(), {"aviso: 1 bytes de uma gravação inacabada"});
  // Files damaged behind the program's back: a header promising more data
  // than there is, a text's count running past the end. (A copy under
  // another name: below.)
  QVTesteGravaBytes(Caminho("GEATTEC2202007.dat"), sAtendimentos);
  QVTesteAlteraCabecalho(Caminho("GEATTEC2202007.dat"), [](QVCabecalhoArquivo& c) { c.uiTamanhoDados += 512; });
  std::string t = QVTesteBytes(Caminho("GeAtStrV1.dat"));
  t[240] = 100;
  QVTesteGravaBytes(Caminho("GeAtStrV1.dat"), t);
  QVTesteAlteraCabecalho(Caminho("GeAtStrV1.dat"), [](QVCabecalhoArquivo&) {});
  EXPECT_EQ(Verify({Caminho("GEATTEC2202007.dat"), Caminho("GeAtStrV1.dat"), Caminho("NADA.dat")}), 1);
  Contem(m_Out.str(), {"GEATTEC2202007.dat: E_QVCR_TAMANHO_ARQUIVO_NAO_CONFERE 0x81080C08",
                       "GeAtStrV1.dat: E_QVCR_ARQUIVO_TEXTO_QUANTIDADE_CARACTERES_INVALIDA 0x81080C5E",
                       "NADA.dat: E_QVCR_ARQUIVO_NAO_EXISTE"});
}

TEST_F(ComandosDbTest, VerifyDoDiretorioComoBancoDaEmpresa) {
  // Empty files: a member whose period is no month; an old month name, as
  // before the conversion; another whose new name is taken (never renamed);
  // the copy of an interrupted rewrite whose file is gone while the control
  // lists it (the copy may be all there is); the copy of an interrupted
  // compaction (harmless); a mark left by a process that ended. Then a file
  // copied under another name.
  for (const char* vazio : {"GEATTEC2ABCDEF.DAT", "GEAtCla0519.DAT", "GeAtDsp0720.DAT", "GEATDSP202007.DAT",
                            "GeAtStrV1.tra", "GEATTEC2202007.tra", "XXMARCA7.dat"})
    QVTesteGravaBytes(Caminho(vazio), "");
  QVTesteGravaBytes(Caminho("GEATTEC2202008.dat"), QVTesteBytes(Caminho("GEATTEC2202007.dat")));
  std::filesystem::remove(Caminho("GeAtStrV1.dat"));
  EXPECT_EQ(Verify({m_Dir}), 1);
  const std::string s = m_Out.str();
  Contem(s, {"GEATTEC2AAAAMM.DAT: 2 meses, de 2020-07 a 2020-08",
             "GEATTEC2202008.dat: E_QVCR_NOME_ARQUIVO_NAO_CONFERE 0x81080A43",
             "GEAtCla0519.DAT: AVISO nome no formato antigo (mês e ano com dois dígitos); a conversão o renomeia "
             "para GEAtCla201905.DAT",
             "GeAtDsp0720.DAT: AVISO nome no formato antigo; GeAtDsp202007.DAT já existe",
             "GeAtStrV1.tra: E_QVCR_ARQUIVO_TRA_ENCONTRADO 0x810809CB - cópia sem o arquivo de origem",
             "GEATTEC2202007.tra: AVISO cópia deixada por uma compactação interrompida",
             "GeAtStrV1.dat: E_QVCR_INCONSISTENCIA_CONTROLE_CRIACAO_ARQUIVOS", "XXMARCA7.dat: AVISO marca abandonada"});
  EXPECT_EQ(s.find("XXMARCA7.dat: OK"), std::string::npos) << s;  // a mark is not a data file

  // The same findings as JSON; copies and marks are no data files.
  EXPECT_EQ(Verify({m_Dir}, {}, true), 1);
  const auto j = nlohmann::json::parse(m_Out.str());
  EXPECT_EQ(j["falhas"], 4);
  EXPECT_EQ(j["achados"][0]["nivel"], "falha");
  EXPECT_EQ(j["achados"][0]["status"], "E_QVCR_NOME_ARQUIVO_GROUP_INVALIDO 0x810809F1");
  EXPECT_EQ(j["arquivos"].size(), 8u);

  // A mark some process holds is reported as such.
  auto marca = QVCreateRealOsFile();
  ASSERT_TRUE(
      marca->Open(Caminho("XXMARCA7.dat"), QVFILE_MODE_READWRITE | QVFILE_SHARE_EXCLUSIVE | QVFILE_MODE_CREATE));
  Verify({m_Dir});
  Contem(m_Out.str(), {"XXMARCA7.dat: marcada por um processo em execução"});
}

// The one rule for month names: verify reports exactly the names that make
// some group of the module refuse its directory, and warns of the old
// "MMAA" names the conversion renames.
TEST_F(ComandosDbTest, NomesDeMesVerifyEOGrupoConcordam) {
  const std::tuple<const char*, bool, bool> casos[] = {
      // name, refused, warned of
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
  for (const auto& [nome, bRecusado, bAviso] : casos) {
    SCOPED_TRACE(nome);
    const std::string dir = QVTesteNovoDiretorio("nomes");
    QVTesteGravaBytes(dir + "/" + nome, "");
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
    EXPECT_EQ(bGrupoRecusa, bRecusado);
    EXPECT_EQ(Verify({dir}), bRecusado ? 1 : 0) << m_Out.str();
    EXPECT_EQ(m_Out.str().find("E_QVCR_NOME_ARQUIVO_GROUP_INVALIDO") != std::string::npos, bRecusado) << m_Out.str();
    EXPECT_EQ(m_Out.str().find("AVISO nome no formato antigo") != std::string::npos, bAviso) << m_Out.str();
  }
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
  EXPECT_EQ(Control(), 1);
  Contem(m_Out.str(), {"QVDATABASE_FILE_CTRL.dat: 2 arquivos listados, 1 ausente\n", "  AUSENTE   GeAtStrV1.dat\n"});
  EXPECT_EQ(Control({}, true), 1);
  EXPECT_EQ(nlohmann::json::parse(m_Out.str())["ausentes"], 1);

  // Refusals change nothing.
  QVTesteGravaBytes(Caminho("QVDATABASE_FILE_CTRL.tra"), "");  // left by an interrupted rewrite
  const std::pair<const char*, const char*> recusas[] = {{"NADA.dat", "não está listado"},
                                                         {"GEATTEC2202007.dat", "o arquivo existe"},
                                                         {"GeAtStrV1.dat", "E_QVCR_ARQUIVO_TRA_ENCONTRADO"}};
  for (const auto& [nome, motivo] : recusas) {
    EXPECT_EQ(Control(nome), 1) << nome;
    Contem(m_Err.str(), {motivo});
  }
  std::filesystem::remove(Caminho("QVDATABASE_FILE_CTRL.tra"));

  QVTesteLimpaLog();
  m_Out.str("");
  ASSERT_EQ(QVComandoDbControl(m_Dir, std::string("geatstrv1.DAT"), false, m_Out, m_Err), 0) << m_Err.str();
  EXPECT_EQ(m_Out.str(), "GeAtStrV1.dat: entrada removida de " + Caminho("QVDATABASE_FILE_CTRL.dat") + "\n");
  const auto linhas = QVTesteLinhasErro();
  ASSERT_EQ(linhas.size(), 1u);
  Contem(linhas[0], {"--forget", "sNomeArquivo = GeAtStrV1.dat\t"});
  EXPECT_EQ(Control(), 0);
  EXPECT_EQ(abreTextos(), S_OK);
}
