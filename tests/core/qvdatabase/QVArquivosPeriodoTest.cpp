// Single-record files, the per-month names, and groups of month files.
#include "core/qvdatabase/CQVDataBaseUtil.h"
#include "core/qvdatabase/QVFileReg.h"
#include "core/qvdatabase/QVFileSingleReg.h"
#include "tests/support/QVTesteArquivos.h"

namespace {

struct REG_VERSAO {
  std::uint16_t usVersao;
  std::uint8_t cFiller[6];
};

class QVArquivosPeriodoTest : public ::testing::Test {
 protected:
  template <class F>
  void Prepara(F& f) {
    f.SetDiretorio(m_Dir);
    m_hr = f.Inicializa(&QVTesteIdentidade());
  }
  std::string Caminho(const std::string& nome) const { return m_Dir + "/" + nome; }
  std::string m_Dir = QVTesteNovoDiretorio("periodos");
  HRESULT m_hr = S_OK;
};

}  // namespace

TEST_F(QVArquivosPeriodoTest, RegistroUnico) {
  const std::string caminho = Caminho("GEPROJETOSVS.dat");
  // What an object of its own loads and reads: the status, the version and
  // a filler byte.
  using Lido = std::tuple<HRESULT, int, int>;
  auto le = [&] {
    CQVFileSingleReg<REG_VERSAO> v("GEPROJETOSVS.dat", QV_GE);
    Prepara(v);
    REG_VERSAO r{7, {1}};
    return Lido(FAILED(m_hr) ? m_hr : v.Le(&r), r.usVersao, r.cFiller[0]);
  };
  EXPECT_EQ(le(), Lido(S_OK, 0, 0));  // absent: all zero
  {
    CQVFileSingleReg<REG_VERSAO> v("GEPROJETOSVS.dat", QV_GE);
    Prepara(v);
    EXPECT_EQ(v.GetQtdRegistros(), 0u);
    ASSERT_EQ(v.Grava(REG_VERSAO{2, {}}), S_OK);
    EXPECT_EQ(v.GetQtdRegistros(), 1u);
  }
  const std::string bytes = QVTesteBytes(caminho);
  EXPECT_EQ(bytes.size(), 240u + sizeof(REG_VERSAO));
  EXPECT_EQ(le(), Lido(S_OK, 2, 0));

  // Only a header (its creator died before writing the record): zeros.
  QVTesteGravaBytes(caminho, bytes.substr(0, 240));
  QVTesteAlteraCabecalho(caminho, [](QVCabecalhoArquivo& c) { c.uiTamanhoDados = 0; });
  EXPECT_EQ(le(), Lido(S_OK, 0, 0));
  // One byte too many behind the header (the header agreeing): refused.
  QVTesteGravaBytes(caminho, bytes + "x");
  QVTesteAlteraCabecalho(caminho, [](QVCabecalhoArquivo& c) { c.uiTamanhoDados++; });
  EXPECT_EQ(std::get<0>(le()), E_QVCR_ARQUIVO_SINGLE_REG_NAO_TEM_TAMANHO_ESTRUTURA);
}

TEST_F(QVArquivosPeriodoTest, RegistroUnicoDaEmpresaPeloUtilitario) {
  // Without a directory of its own the file lives in the company's data directory.
  const CQVProfilerEmpresa empresa("EMPRESA_UNICO", 3, 30);
  QVTesteCadastraEmpresa("EMPRESA_UNICO", 3);
  const std::string nome = "GEATENDIMENTOTECNICOVS.dat";
  REG_VERSAO r{};
  ASSERT_EQ(CQVDataBaseUtil::LeSingleReg(&empresa, QV_GE, &r, nome), S_OK);
  EXPECT_EQ(r.usVersao, 0);
  ASSERT_EQ(CQVDataBaseUtil::GravaSingleReg(&empresa, QV_GE, REG_VERSAO{2, {}}, nome), S_OK);
  ASSERT_EQ(CQVDataBaseUtil::LeSingleReg(&empresa, QV_GE, &r, nome), S_OK);
  EXPECT_EQ(r.usVersao, 2);
  EXPECT_EQ(QVTesteLeCabecalho(QVRaizDados() + "/EMPRESA_UNICO/GE/" + nome).ulUsuario, 3u);
}

// The names the files get are checked where they are written (the periods
// selected, the group's members).
TEST_F(QVArquivosPeriodoTest, NomesPorMesNosDoisSentidos) {
  using F = CQVFileNameFormatMa<10>;
  EXPECT_EQ(F::Nome("GEAtCla", QVMesAno(1984, 8)), "GEAtCla198408.DAT");
  EXPECT_EQ(CQVFileNameFormat::Nome("GEATRPS", 0), "GEATRPS.DAT");
  EXPECT_EQ(F::Periodo("GEATTEC2202007.DAT", "GEATTEC2"), QVMesAno(2020, 7));
  EXPECT_EQ(F::Periodo("geattec2202007.dat", "GEATTEC2"), QVMesAno(2020, 7));
  EXPECT_EQ(F::Periodo("GEATTEC2202013.DAT", "GEATTEC2"), 0);  // month 13
  EXPECT_EQ(F::Periodo("GEATTEC20719.DAT", "GEATTEC2"), 0);    // the old four-character form
  EXPECT_EQ(F::Periodo("GEATTEC2002007.DAT", "GEATTEC2"), 0);  // year 0020, not 2020
  EXPECT_EQ(F::Periodo("GEATTEC220X007.DAT", "GEATTEC2"), 0);
}

TEST_F(QVArquivosPeriodoTest, SelecionarOPeriodoAbreOArquivoDoMes) {
  CQVFileReg<REG_TESTE, CQVFileNameFormatMa<10>> arq("GEAtCla", QV_GE);
  ASSERT_EQ(arq.SelecionaPeriodo(QVMesAno(2020, 7)), S_OK);
  Prepara(arq);
  ASSERT_EQ(m_hr, S_OK);
  ASSERT_EQ(QVTesteAcrescenta(arq, {1}), S_OK);
  ASSERT_EQ(arq.SelecionaPeriodo(QVMesAno(2020, 8)), S_OK);
  EXPECT_EQ(arq.GetQtdRegistros(), 0u);
  ASSERT_EQ(QVTesteAcrescenta(arq, {2, 3}), S_OK);
  ASSERT_EQ(arq.SelecionaPeriodo(QVMesAno(2020, 7)), S_OK);
  EXPECT_EQ(arq.GetQtdRegistros(), 1u);
  EXPECT_EQ(QVTesteBytes(Caminho("GEAtCla202007.DAT")).size(), 240u + 32);
  EXPECT_EQ(QVTesteBytes(Caminho("GEAtCla202008.DAT")).size(), 240u + 64);
}

TEST_F(QVArquivosPeriodoTest, GrupoDeArquivosDoMes) {
  // Two months on disk, one written under another letter case.
  CQVTestePasta pasta(m_Dir);
  ASSERT_EQ(QVTesteAcrescenta(*pasta.Registros("GEATTPINT202003.DAT"), {3}), S_OK);
  ASSERT_EQ(QVTesteAcrescenta(*pasta.Registros("geattpint201912.dat"), {12}), S_OK);
  QVTesteGravaBytes(Caminho("OUTRO202001.DAT"), "");  // not of the group
  auto grupo = pasta.Meses();
  ASSERT_EQ(pasta.m_hr, S_OK);
  EXPECT_EQ(grupo->GetChaves(), (std::vector<std::uint64_t>{QVMesAno(2019, 12), QVMesAno(2020, 3)}));
  EXPECT_EQ(grupo->GetQtdRegistros(QVMesAno(2019, 12)), 1u);
  EXPECT_EQ(grupo->GetQtdRegistros(QVMesAno(2020, 1)), 0u);  // no member: 0, not an error
  REG_TESTE r;
  ASSERT_EQ(grupo->Le(QVMesAno(2020, 3), 1, &r), S_OK);
  EXPECT_EQ(r.lCodigo, 3u);
  EXPECT_EQ(grupo->Le(QVMesAno(2020, 1), 1, &r), E_QVCR_ARQUIVO_NAO_EXISTE);
  bool existe = false;
  QVUInt posicao = 0;
  ASSERT_EQ(grupo->ExisteIndex(QVMesAno(2019, 12), 0, 12, &existe, &posicao), S_OK);
  EXPECT_TRUE(existe);
  ASSERT_EQ(grupo->ExisteIndex(QVMesAno(2020, 1), 0, 12, &existe, &posicao), S_OK);
  EXPECT_FALSE(existe);

  // A write to a month without a member creates its file.
  QVUInt pos = 0;
  ASSERT_EQ(grupo->GravaColecao(QVMesAno(2020, 1), pos, {QVTesteRegistro(1), QVTesteRegistro(2)}), S_OK);
  EXPECT_TRUE(std::filesystem::exists(Caminho("GEATTPINT202001.DAT")));
  EXPECT_EQ(grupo->GetChaves().size(), 3u);
  EXPECT_EQ(grupo->GetQtdRegistros(), 4u);
  EXPECT_EQ(grupo->GravaColecao(0, pos = 0, {QVTesteRegistro(9)}), E_QVCR_NOME_ARQUIVO_GROUP_INVALIDO);

  ASSERT_EQ(grupo->DeletaArquivo(), S_OK);
  EXPECT_FALSE(std::filesystem::exists(Caminho("GEATTPINT202003.DAT")));
  EXPECT_TRUE(std::filesystem::exists(Caminho("OUTRO202001.DAT")));

  // A member whose name holds no month refuses the whole group.
  QVTesteGravaBytes(Caminho("GEATTPINT2020AB.DAT"), "");
  pasta.Meses();
  EXPECT_EQ(pasta.m_hr, E_QVCR_NOME_ARQUIVO_GROUP_INVALIDO);
}
