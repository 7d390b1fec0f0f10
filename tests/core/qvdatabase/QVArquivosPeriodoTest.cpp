// Single-record files, the per-month names, and groups of month files.
#include <gtest/gtest.h>

#include <filesystem>

#include "core/qvdatabase/CQVDataBaseUtil.h"
#include "core/qvdatabase/QVFileReg.h"
#include "core/qvdatabase/QVFileSingleReg.h"
#include "core/qvdatabase/QVGroupFile.h"
#include "df/qvlibex/QVCodigos.h"
#include "df/qvlibex/QVDatas.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "tests/support/QVTestSupport.h"
#include "tests/support/QVTesteArquivos.h"

namespace {

struct REG_VERSAO {
  std::uint16_t usVersao;
  std::uint8_t cFiller[6];
};

std::uint64_t ChaveCodigo(const REG_TESTE& r, QVUInt) { return r.lCodigo; }

class QVArquivosPeriodoTest : public ::testing::Test {
 protected:
  void SetUp() override { m_Dir = QVTesteNovoDiretorio("periodos"); }
  template <class F>
  void Prepara(F& f) {
    f.SetDiretorio(m_Dir);
    m_hr = f.Inicializa(&QVTesteIdentidade());
  }
  std::string Caminho(const std::string& nome) const { return m_Dir + "/" + nome; }
  std::string m_Dir;
  HRESULT m_hr = S_OK;
};

}  // namespace

TEST_F(QVArquivosPeriodoTest, RegistroUnico) {
  {
    CQVFileSingleReg<REG_VERSAO> v("GEPROJETOSVS.dat", QV_GE);
    Prepara(v);
    ASSERT_EQ(m_hr, S_OK);
    EXPECT_EQ(v.GetQtdRegistros(), 0u);
    REG_VERSAO r{7, {1}};
    ASSERT_EQ(v.Le(&r), S_OK);  // absent: all zero
    EXPECT_EQ(r.usVersao, 0);
    EXPECT_EQ(r.cFiller[0], 0);
    ASSERT_EQ(v.Grava(REG_VERSAO{2, {}}), S_OK);
    EXPECT_EQ(v.GetQtdRegistros(), 1u);
  }
  EXPECT_EQ(QVTesteBytes(Caminho("GEPROJETOSVS.dat")).size(), 240u + sizeof(REG_VERSAO));
  CQVFileSingleReg<REG_VERSAO> v("GEPROJETOSVS.dat", QV_GE);
  Prepara(v);
  REG_VERSAO r{};
  ASSERT_EQ(v.Le(&r), S_OK);
  EXPECT_EQ(r.usVersao, 2);
  v.FechaArquivo();

  // Only a header (its creator died before writing the record): zeros.
  const std::string bytes = QVTesteBytes(Caminho("GEPROJETOSVS.dat"));
  QVTesteGravaBytes(Caminho("GEPROJETOSVS.dat"), bytes.substr(0, 240));
  QVTesteAlteraCabecalho(Caminho("GEPROJETOSVS.dat"), [](QVCabecalhoArquivo& c) { c.uiTamanhoDados = 0; });
  CQVFileSingleReg<REG_VERSAO> vazio("GEPROJETOSVS.dat", QV_GE);
  Prepara(vazio);
  ASSERT_EQ(m_hr, S_OK);
  ASSERT_EQ(vazio.Le(&r), S_OK);
  EXPECT_EQ(r.usVersao, 0);
  vazio.FechaArquivo();
  // One byte too many behind the header (the header agreeing): refused.
  QVTesteGravaBytes(Caminho("GEPROJETOSVS.dat"), bytes + "x");
  QVTesteAlteraCabecalho(Caminho("GEPROJETOSVS.dat"), [](QVCabecalhoArquivo& c) { c.uiTamanhoDados++; });
  CQVFileSingleReg<REG_VERSAO> maior("GEPROJETOSVS.dat", QV_GE);
  Prepara(maior);
  EXPECT_EQ(m_hr, E_QVCR_ARQUIVO_SINGLE_REG_NAO_TEM_TAMANHO_ESTRUTURA);
}

TEST_F(QVArquivosPeriodoTest, RegistroUnicoDaEmpresaPeloUtilitario) {
  // Without a directory of its own the file lives in the company's data directory.
  const CQVProfilerEmpresa empresa("EMPRESA_UNICO", 3, 30);
  REG_VERSAO r{};
  ASSERT_EQ(CQVDataBaseUtil::LeSingleReg(&empresa, QV_GE, &r, "GEATENDIMENTOTECNICOVS.dat"), S_OK);
  EXPECT_EQ(r.usVersao, 0);
  ASSERT_EQ(CQVDataBaseUtil::GravaSingleReg(&empresa, QV_GE, REG_VERSAO{2, {}}, "GEATENDIMENTOTECNICOVS.dat"), S_OK);
  ASSERT_EQ(CQVDataBaseUtil::LeSingleReg(&empresa, QV_GE, &r, "GEATENDIMENTOTECNICOVS.dat"), S_OK);
  EXPECT_EQ(r.usVersao, 2);
  EXPECT_TRUE(std::filesystem::exists(QVRaizDados() + "/EMPRESA_UNICO/GE/GEATENDIMENTOTECNICOVS.dat"));
  EXPECT_EQ(QVTesteLeCabecalho(QVRaizDados() + "/EMPRESA_UNICO/GE/GEATENDIMENTOTECNICOVS.dat").ulUsuario, 3u);
}

TEST_F(QVArquivosPeriodoTest, NomesPorMesNosDoisSentidos) {
  using F = CQVFileNameFormatMa<10>;
  EXPECT_EQ(F::Nome("GEATTEC2", QVMesAno(2020, 7)), "GEATTEC2202007.DAT");
  EXPECT_EQ(F::Nome("GEAtCla", QVMesAno(1984, 8)), "GEAtCla198408.DAT");
  EXPECT_EQ(F::Periodo("GEATTEC2202007.DAT", "GEATTEC2"), QVMesAno(2020, 7));
  EXPECT_EQ(F::Periodo("geattec2202007.dat", "GEATTEC2"), QVMesAno(2020, 7));
  EXPECT_EQ(F::Periodo("GEATTEC2202013.DAT", "GEATTEC2"), 0);  // month 13
  EXPECT_EQ(F::Periodo("GEATTEC20719.DAT", "GEATTEC2"), 0);  // the old four-character form
  EXPECT_EQ(F::Periodo("GEATTEC2002007.DAT", "GEATTEC2"), 0);  // year 0020, not 2020
  EXPECT_EQ(F::Periodo("GEATTEC220X007.DAT", "GEATTEC2"), 0);
  EXPECT_EQ(CQVFileNameFormat::Nome("GEATRPS", 0), "GEATRPS.DAT");
}

TEST_F(QVArquivosPeriodoTest, SelecionarOPeriodoAbreOArquivoDoMes) {
  CQVFileReg<REG_TESTE, CQVFileNameFormatMa<10>> arq("GEAtCla", QV_GE);
  ASSERT_EQ(arq.SelecionaPeriodo(QVMesAno(2020, 7)), S_OK);
  Prepara(arq);
  ASSERT_EQ(m_hr, S_OK);
  QVUInt pos = 0;
  ASSERT_EQ(arq.Grava(pos, QVTesteRegistro(1)), S_OK);
  ASSERT_EQ(arq.SelecionaPeriodo(QVMesAno(2020, 8)), S_OK);
  EXPECT_EQ(arq.GetQtdRegistros(), 0u);
  ASSERT_EQ(arq.GravaColecao(pos = 0, {QVTesteRegistro(2), QVTesteRegistro(3)}), S_OK);
  ASSERT_EQ(arq.SelecionaPeriodo(QVMesAno(2020, 7)), S_OK);
  EXPECT_EQ(arq.GetQtdRegistros(), 1u);
  EXPECT_EQ(QVTesteBytes(Caminho("GEAtCla202007.DAT")).size(), 240u + 32);
  EXPECT_EQ(QVTesteBytes(Caminho("GEAtCla202008.DAT")).size(), 240u + 64);
}

TEST_F(QVArquivosPeriodoTest, GrupoDeArquivosDoMes) {
  // Two months on disk, one written under another letter case.
  for (auto [nome, codigo] : {std::pair{"GEATTPINT202003.DAT", 3u}, std::pair{"geattpint201912.dat", 12u}}) {
    CQVFile<REG_TESTE> f(nome, QV_GE);
    Prepara(f);
    QVUInt pos = 0;
    ASSERT_EQ(f.Grava(pos, QVTesteRegistro(codigo)), S_OK);
  }
  QVTesteGravaBytes(Caminho("OUTRO202001.DAT"), "");  // not of the group
  CQVGroupFile<REG_TESTE> grupo("GEATTPINT??????.DAT", QV_GE, {{&ChaveCodigo, false, false}});
  Prepara(grupo);
  ASSERT_EQ(m_hr, S_OK);
  EXPECT_EQ(grupo.GetChaves(), (std::vector<std::uint64_t>{QVMesAno(2019, 12), QVMesAno(2020, 3)}));
  EXPECT_EQ(grupo.GetQtdRegistros(QVMesAno(2019, 12)), 1u);
  EXPECT_EQ(grupo.GetQtdRegistros(QVMesAno(2020, 1)), 0u);  // no member: 0, not an error
  REG_TESTE r;
  ASSERT_EQ(grupo.Le(QVMesAno(2020, 3), 1, &r), S_OK);
  EXPECT_EQ(r.lCodigo, 3u);
  EXPECT_EQ(grupo.Le(QVMesAno(2020, 1), 1, &r), E_QVCR_ARQUIVO_NAO_EXISTE);
  bool existe = false;
  QVUInt posicao = 0;
  ASSERT_EQ(grupo.ExisteIndex(QVMesAno(2019, 12), 0, 12, &existe, &posicao), S_OK);
  EXPECT_TRUE(existe);
  ASSERT_EQ(grupo.ExisteIndex(QVMesAno(2020, 1), 0, 12, &existe, &posicao), S_OK);
  EXPECT_FALSE(existe);

  // A write to a month without a member creates its file.
  QVUInt pos = 0;
  ASSERT_EQ(grupo.GravaColecao(QVMesAno(2020, 1), pos, {QVTesteRegistro(1), QVTesteRegistro(2)}), S_OK);
  EXPECT_TRUE(std::filesystem::exists(Caminho("GEATTPINT202001.DAT")));
  EXPECT_EQ(grupo.GetChaves().size(), 3u);
  EXPECT_EQ(grupo.GetQtdRegistros(), 4u);
  EXPECT_EQ(grupo.GravaColecao(0, pos = 0, {QVTesteRegistro(9)}), E_QVCR_NOME_ARQUIVO_GROUP_INVALIDO);

  ASSERT_EQ(grupo.DeletaArquivo(), S_OK);
  EXPECT_FALSE(std::filesystem::exists(Caminho("GEATTPINT202003.DAT")));
  EXPECT_TRUE(std::filesystem::exists(Caminho("OUTRO202001.DAT")));
}

TEST_F(QVArquivosPeriodoTest, MembroComNomeIlegivelRecusaOGrupo) {
  QVTesteGravaBytes(Caminho("GEATTPINT2020AB.DAT"), "");
  CQVGroupFile<REG_TESTE> grupo("GEATTPINT??????.DAT", QV_GE);
  Prepara(grupo);
  EXPECT_EQ(m_hr, E_QVCR_NOME_ARQUIVO_GROUP_INVALIDO);
}
