// The text file: placement of rewrites (in place, at the end, compaction)
// and the count check of the load.
#include "core/qvdatabase/QVTextFile.h"

#include <gtest/gtest.h>

#include "df/qvlibex/QVCodigos.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "tests/support/QVTestSupport.h"
#include "tests/support/QVTesteArquivos.h"

namespace {

class QVTextFileTest : public ::testing::Test {
 protected:
  void SetUp() override { m_Dir = QVTesteNovoDiretorio("textos"); }
  std::unique_ptr<CQVTextFile> Abre() {
    auto a = std::make_unique<CQVTextFile>("GeAtStrV1.dat", QV_GE);
    a->SetDiretorio(m_Dir);
    m_hrAbertura = a->Inicializa(&QVTesteIdentidade());
    return a;
  }
  std::string Caminho() const { return m_Dir + "/GeAtStrV1.dat"; }
  QVUInt TamanhoDados() const { return QVTesteBytes(Caminho()).size() - 240; }
  // The data length a file of these texts must have.
  static QVUInt Soma(std::initializer_list<std::size_t> tamanhos) {
    QVUInt s = 0;
    for (std::size_t t : tamanhos) s += 4 + t;
    return s;
  }

  std::string m_Dir;
  HRESULT m_hrAbertura = S_OK;
};

}  // namespace

TEST_F(QVTextFileTest, MesmoTamanhoMaiorEMenor) {
  auto a = Abre();
  QVUInt pos = 0;
  ASSERT_EQ(a->GravaColecao(pos, {"alfa", "beta", "gama"}), S_OK);
  EXPECT_EQ(pos, 1u);
  ASSERT_EQ(TamanhoDados(), Soma({4, 4, 4}));

  // Same length: in place, same position, same file length.
  pos = 2;
  ASSERT_EQ(a->Grava(pos, "BETA"), S_OK);
  EXPECT_EQ(pos, 2u);
  EXPECT_EQ(TamanhoDados(), Soma({4, 4, 4}));

  // Longer: appended with a new position; the old position keeps its text.
  pos = 2;
  ASSERT_EQ(a->Grava(pos, "beta longo"), S_OK);
  EXPECT_EQ(pos, 4u);
  EXPECT_EQ(TamanhoDados(), Soma({4, 4, 4}) + 4 + 10);
  std::string t;
  ASSERT_EQ(a->Le(2, &t), S_OK);
  EXPECT_EQ(t, "BETA");

  // Shorter: the file is compacted, positions stay.
  pos = 1;
  ASSERT_EQ(a->Grava(pos, "a"), S_OK);
  EXPECT_EQ(pos, 1u);
  EXPECT_EQ(TamanhoDados(), Soma({1, 4, 4, 10}));
  const auto* entradas = a->GetPtrRegistros();
  ASSERT_NE(entradas, nullptr);
  EXPECT_EQ((*entradas)[3].uiOffset, Soma({1, 4, 4}));

  // A run that goes past the end is written in place from its start.
  pos = 4;
  ASSERT_EQ(a->GravaColecao(pos, {"beta longo", "novo"}), S_OK);
  EXPECT_EQ(pos, 4u);
  EXPECT_EQ(a->GetQtdRegistros(), 5u);

  // Reopened, the file holds exactly these texts at these positions.
  a.reset();
  a = Abre();
  ASSERT_EQ(m_hrAbertura, S_OK);
  const char* esperados[] = {"a", "BETA", "gama", "beta longo", "novo"};
  for (QVUInt p = 1; p <= 5; ++p) {
    ASSERT_EQ(a->Le(p, &t), S_OK);
    EXPECT_EQ(t, esperados[p - 1]);
  }
  EXPECT_EQ(TamanhoDados(), Soma({1, 4, 4, 10, 4}));
}

TEST_F(QVTextFileTest, TextoIgualNaoGravaNada) {
  auto a = Abre();
  QVUInt pos = 0;
  ASSERT_EQ(a->GravaColecao(pos, {"igual", ""}), S_OK);
  const auto contador = QVTesteLeCabecalho(Caminho()).uiContadorAtualizacoes;
  pos = 1;
  EXPECT_FALSE(a->PrecisaGravar(pos, {"igual", ""}));
  ASSERT_EQ(a->GravaColecao(pos, {"igual", ""}), S_OK);
  EXPECT_EQ(pos, 1u);
  EXPECT_EQ(QVTesteLeCabecalho(Caminho()).uiContadorAtualizacoes, contador);
  EXPECT_TRUE(a->PrecisaGravar(0, {"igual"}));
  EXPECT_TRUE(a->PrecisaGravar(2, {"", "depois do fim"}));
}

TEST_F(QVTextFileTest, PosicoesInvalidas) {
  auto a = Abre();
  std::string t;
  EXPECT_EQ(a->Le(1, &t), E_QVCR_ARQUIVO_NAO_EXISTE);
  QVUInt pos = 0;
  ASSERT_EQ(a->Grava(pos, "x"), S_OK);
  EXPECT_EQ(a->Le(0, &t), E_QVCR_TENTATIVA_LER_POSICAO_ZERO);
  EXPECT_EQ(a->Le(2, &t), E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO);
  pos = 3;
  EXPECT_EQ(a->Grava(pos, "y"), E_QVCR_POSICAO_GRAVACAO_SUPERIOR_QUANTIDADE_ARQUIVO);
}

TEST_F(QVTextFileTest, ContagemMaiorQueOsBytesRestantesRecusaACarga) {
  {
    auto a = Abre();
    QVUInt pos = 0;
    ASSERT_EQ(a->GravaColecao(pos, {"um", "dois"}), S_OK);
  }
  const std::string bom = QVTesteBytes(Caminho());
  for (const std::string& cauda : {std::string("\x05\x00\x00\x00" "abc", 7), std::string("\x01\x00", 2)}) {
    QVTesteGravaBytes(Caminho(), bom + cauda);
    QVTesteAlteraCabecalho(Caminho(), [&](QVCabecalhoArquivo& c) { c.uiTamanhoDados += cauda.size(); });
    auto a = Abre();
    EXPECT_EQ(m_hrAbertura, E_QVCR_ARQUIVO_TEXTO_QUANTIDADE_CARACTERES_INVALIDA);
    EXPECT_EQ(a->GetQtdRegistros(), 0u);
  }
}
