// The file-creation control, and a company's database shared through the
// facade and the process's container.
#include <atomic>
#include <thread>

#include "core/qvdatabase/QVDataBaseFacade.h"
#include "suite/hostlink/CQVBaseParaRotinas.h"
#include "tests/support/QVTesteArquivos.h"

namespace {

class QVControleTest : public ::testing::Test {
 protected:
  std::vector<std::string> Lista() { return m_Pasta.ListaDoControle(); }
  std::string Caminho(const std::string& nome) const { return m_Pasta.Caminho(nome); }

  std::string m_Dir = QVTesteNovoDiretorio("controle");
  CQVTestePasta m_Pasta{m_Dir};
};

}  // namespace

TEST_F(QVControleTest, ListaNaPrimeiraAberturaEscritaERecusaArquivoSumido) {
  {
    auto f = m_Pasta.Registros();
    EXPECT_TRUE(Lista().empty());                 // loading a file that does not exist lists nothing
    ASSERT_EQ(QVTesteAcrescenta(*f, {1}), S_OK);  // the creating open lists it
    EXPECT_EQ(Lista(), std::vector<std::string>{"GEATRPS.dat"});
  }
  // The control file never has a header: just the count and the name.
  const std::string antes = QVTesteBytes(Caminho("QVDATABASE_FILE_CTRL.dat"));
  EXPECT_EQ(antes, std::string("\x0B\x00\x00\x00GEATRPS.dat", 15));
  m_Pasta.Registros();
  EXPECT_EQ(QVTesteBytes(Caminho("QVDATABASE_FILE_CTRL.dat")), antes);  // opening again changes nothing

  // Gone behind the system's back: refused, not re-created empty.
  std::filesystem::remove(Caminho("GEATRPS.dat"));
  auto f = m_Pasta.Registros();
  EXPECT_EQ(m_Pasta.m_hr, E_QVCR_INCONSISTENCIA_CONTROLE_CRIACAO_ARQUIVOS);
  EXPECT_EQ(QVTesteAcrescenta(*f, {1}), E_QVCR_INCONSISTENCIA_CONTROLE_CRIACAO_ARQUIVOS);
  EXPECT_FALSE(std::filesystem::exists(Caminho("GEATRPS.dat")));
}

TEST_F(QVControleTest, ArquivoExistenteEntraNaListaSemCaixa) {
  QVTesteGravaBytes(Caminho("geatpc.DAT"), "");
  m_Pasta.Registros("GEATPC.dat");
  EXPECT_EQ(Lista(), std::vector<std::string>{"GEATPC.dat"});
  m_Pasta.Registros("GeAtPc.dat");
  EXPECT_EQ(Lista().size(), 1u);
  // Read-only opens neither consult nor change the control.
  QVTesteGravaBytes(Caminho("LEITURA.dat"), "");
  CQVTestePasta(m_Dir, true).Registros("LEITURA.dat");
  EXPECT_EQ(Lista().size(), 1u);
  // Nor does a file whose control was switched off.
  QVTesteGravaBytes(Caminho("SEMCONTROLE.dat"), "");
  CQVFile<REG_TESTE> semControle("SEMCONTROLE.dat", QV_GE);
  semControle.SetDiretorio(m_Dir);
  ASSERT_EQ(semControle.DesabilitaControleCriacaoArquivos(), S_OK);
  ASSERT_EQ(semControle.Inicializa(&QVTesteIdentidade()), S_OK);
  EXPECT_EQ(Lista().size(), 1u);
}

TEST_F(QVControleTest, ArquivoApagadoSaiDaListaECopiaTemporariaImpede) {
  auto f = m_Pasta.Registros("GEAtDedu.dat");
  ASSERT_EQ(QVTesteAcrescenta(*f, {1}), S_OK);
  auto g = m_Pasta.Registros("GEATPC.dat");
  ASSERT_EQ(QVTesteAcrescenta(*g, {1}), S_OK);
  EXPECT_EQ(Lista().size(), 2u);

  ASSERT_EQ(f->DeletaArquivo(), S_OK);
  EXPECT_EQ(Lista(), std::vector<std::string>{"GEATPC.dat"});
  // No longer listed: it may be created anew.
  ASSERT_EQ(QVTesteAcrescenta(*f, {2}), S_OK);
  EXPECT_EQ(Lista().size(), 2u);

  // An interrupted rewrite of the control left its copy: removal stops.
  QVTesteGravaBytes(Caminho("QVDATABASE_FILE_CTRL.tra"), "");
  EXPECT_EQ(g->DeletaArquivo(), E_QVCR_ARQUIVO_TRA_ENCONTRADO);
  EXPECT_EQ(Lista().size(), 2u);
}

namespace {

// A company's database of one file, with the header written once at the end.
class CDBTeste : public CQVDataBase {
 public:
  CDBTeste() : CQVDataBase(QV_GE) {
    SetAtualizacaoCabecalhoAdiada(true);
    AddFile(&m_Arquivo);
  }
  ~CDBTeste() override { QV_LOGA(Finaliza()); }
  CQVFile<REG_TESTE> m_Arquivo{"GEATRPS.dat", QV_GE};
};

std::atomic<int> g_iConversoes{0};
std::atomic<HRESULT> g_hrConversao{S_OK};

class CServidorTeste : public CQVDataBaseFacade<CDBTeste, CQVBaseParaRotinas> {
 public:
  ~CServidorTeste() override { QV_LOGA(Finaliza()); }
  std::uint32_t GetModulo() const override { return QV_GE; }

 protected:
  HRESULT OnInicializa() override {
    QV_CHECK(CQVBaseParaRotinas::OnInicializa());
    QV_CHECK(QVDataBaseInicializa());
    return S_OK;
  }
  HRESULT ExecutaConversao() override {
    ++g_iConversoes;
    Sleep(50);  // long enough for a second object to come in meanwhile
    return g_hrConversao;
  }
};

class QVFacadeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    g_iConversoes = 0;
    g_hrConversao = S_OK;
  }
  static std::string Caminho(const std::string& empresa) { return QVRaizDados() + "/" + empresa + "/GE/GEATRPS.dat"; }
  auto& Container() { return CQVContainerFacade<CDBTeste>::Instancia(); }
};

}  // namespace

// Objects of one company come in at once, and in any letter case: one
// conversion, one database, shared until the last closes. The database
// defers the header: it is written once, at the last close, with the length
// of both records.
TEST_F(QVFacadeTest, ObjetosDaMesmaEmpresaPartilhamOBancoEAConversao) {
  CServidorTeste a, b, c;
  HRESULT hrA = E_FAIL, hrB = E_FAIL;
  std::thread ta([&] { hrA = a.Inicializa(QVTesteInicializaPS("EMPRESA_PARTILHA")); });
  std::thread tb([&] { hrB = b.Inicializa(QVTesteInicializaPS("EMPRESA_PARTILHA")); });
  ta.join();
  tb.join();
  ASSERT_EQ(std::pair(hrA, hrB), std::pair(S_OK, S_OK));
  ASSERT_EQ(c.Inicializa(QVTesteInicializaPS("Empresa_Partilha")), S_OK);
  EXPECT_EQ(g_iConversoes, 1);
  ASSERT_EQ(a.GetDataBase(), b.GetDataBase());
  ASSERT_EQ(a.GetDataBase(), c.GetDataBase());
  EXPECT_EQ(Container().GetQtdUsuarios("EMPRESA_PARTILHA", QV_GE), 3);
  ASSERT_EQ(QVTesteAcrescenta(a.GetDataBase()->m_Arquivo, {1}), S_OK);
  ASSERT_EQ(QVTesteAcrescenta(c.GetDataBase()->m_Arquivo, {2}), S_OK);
  // The data is on disk, the header still says what it said at creation.
  EXPECT_EQ(QVTesteBytes(Caminho("EMPRESA_PARTILHA")).size(), 240u + 64);
  const auto criado = QVTesteLeCabecalho(Caminho("EMPRESA_PARTILHA"));
  EXPECT_EQ(criado.uiTamanhoDados, 0u);

  ASSERT_EQ(a.Finaliza(), S_OK);
  ASSERT_EQ(b.Finaliza(), S_OK);
  EXPECT_TRUE(Container().EstaAberto("EMPRESA_PARTILHA", QV_GE));
  EXPECT_EQ(QVTesteLeCabecalho(Caminho("EMPRESA_PARTILHA")).uiContadorAtualizacoes, criado.uiContadorAtualizacoes);
  ASSERT_EQ(c.Finaliza(), S_OK);
  EXPECT_FALSE(Container().EstaAberto("EMPRESA_PARTILHA", QV_GE));
  const auto fechado = QVTesteLeCabecalho(Caminho("EMPRESA_PARTILHA"));
  EXPECT_EQ(fechado.uiContadorAtualizacoes, criado.uiContadorAtualizacoes + 1);
  EXPECT_EQ(fechado.uiTamanhoDados, 64u);

  // Closed and opened again in the same process: still converted once.
  ASSERT_EQ(a.Inicializa(QVTesteInicializaPS("EMPRESA_PARTILHA")), S_OK);
  EXPECT_EQ(g_iConversoes, 1);
  // Another company converts on its own.
  CServidorTeste d;
  ASSERT_EQ(d.Inicializa(QVTesteInicializaPS("EMPRESA_OUTRA")), S_OK);
  EXPECT_EQ(g_iConversoes, 2);
  EXPECT_NE(a.GetDataBase(), d.GetDataBase());
}

// A conversion that fails opens nothing and is tried again at the next
// initialisation; without a company nothing is even tried.
TEST_F(QVFacadeTest, ConversaoQueFalhaOuSemEmpresaNadaEhAberto) {
  CServidorTeste semEmpresa;
  EXPECT_EQ(semEmpresa.QVDataBaseInicializa(), E_QVCR_INICIALIZACAO_QVDATABASE_SEM_EMPRESA);
  EXPECT_EQ(semEmpresa.GetDataBase(), nullptr);
  EXPECT_EQ(g_iConversoes, 0);

  g_hrConversao = E_QVCR_VERSAO_DADOS_SUPERIOR_VERSAO_SISTEMA;
  CServidorTeste a;
  EXPECT_EQ(a.Inicializa(QVTesteInicializaPS("EMPRESA_FALHA")), E_QVCR_VERSAO_DADOS_SUPERIOR_VERSAO_SISTEMA);
  EXPECT_EQ(a.GetDataBase(), nullptr);
  EXPECT_FALSE(Container().EstaAberto("EMPRESA_FALHA", QV_GE));
  EXPECT_FALSE(std::filesystem::exists(Caminho("EMPRESA_FALHA")));
  g_hrConversao = S_OK;
  ASSERT_EQ(a.Inicializa(QVTesteInicializaPS("EMPRESA_FALHA")), S_OK);
  EXPECT_EQ(g_iConversoes, 2);
}
