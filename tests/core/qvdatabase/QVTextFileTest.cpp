// The text file: placement of rewrites (in place, at the end, compaction),
// the positions refused, and the count check of the load.
#include "core/qvdatabase/QVTextFile.h"

#include "tests/support/QVTesteArquivos.h"

namespace {

class QVTextFileTest : public ::testing::Test {
 protected:
  std::unique_ptr<CQVTextFile> Abre() { return m_Pasta.Textos("GeAtStrV1.dat"); }
  std::string Caminho() const { return m_Pasta.Caminho("GeAtStrV1.dat"); }
  // On disk each text is its 4-byte count, then its characters.
  QVUInt TamanhoDados() const { return QVTesteBytes(Caminho()).size() - 240; }

  CQVTestePasta m_Pasta{QVTesteNovoDiretorio("textos")};
};

}  // namespace

TEST_F(QVTextFileTest, MesmoTamanhoMaiorMenorEPosicoesRecusadas) {
  auto a = Abre();
  std::string t;
  EXPECT_EQ(a->Le(1, &t), E_QVCR_ARQUIVO_NAO_EXISTE);  // never written: the file does not exist
  QVUInt pos = 0;
  ASSERT_EQ(a->GravaColecao(pos, {"alfa", "beta", "gama"}), S_OK);
  EXPECT_EQ(pos, 1u);
  ASSERT_EQ(TamanhoDados(), 3 * 8u);

  // Same length: in place, same position, same file length.
  ASSERT_EQ(a->Grava(pos = 2, "BETA"), S_OK);
  EXPECT_EQ(pos, 2u);
  EXPECT_EQ(TamanhoDados(), 3 * 8u);

  // Longer: appended with a new position; the old position keeps its text.
  ASSERT_EQ(a->Grava(pos = 2, "beta longo"), S_OK);
  EXPECT_EQ(pos, 4u);
  EXPECT_EQ(TamanhoDados(), 3 * 8 + 14u);
  ASSERT_EQ(a->Le(2, &t), S_OK);
  EXPECT_EQ(t, "BETA");

  // Shorter: the file is compacted, positions stay.
  ASSERT_EQ(a->Grava(pos = 1, "a"), S_OK);
  EXPECT_EQ(pos, 1u);
  EXPECT_EQ(TamanhoDados(), 5 + 8 + 8 + 14u);
  ASSERT_NE(a->GetPtrRegistros(), nullptr);
  EXPECT_EQ((*a->GetPtrRegistros())[3].uiOffset, 5 + 8 + 8u);

  // A run that goes past the end is written in place from its start.
  ASSERT_EQ(a->GravaColecao(pos = 4, {"beta longo", "novo"}), S_OK);
  EXPECT_EQ(pos, 4u);
  EXPECT_EQ(a->GetQtdRegistros(), 5u);

  EXPECT_EQ(a->Le(0, &t), E_QVCR_TENTATIVA_LER_POSICAO_ZERO);
  EXPECT_EQ(a->Le(6, &t), E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO);
  EXPECT_EQ(a->Grava(pos = 7, "y"), E_QVCR_POSICAO_GRAVACAO_SUPERIOR_QUANTIDADE_ARQUIVO);

  // Loaded again, the file holds exactly these texts at these positions.
  a.reset();
  EXPECT_EQ(m_Pasta.TextosNoDisco("GeAtStrV1.dat"),
            (std::vector<std::string>{"a", "BETA", "gama", "beta longo", "novo"}));
  EXPECT_EQ(TamanhoDados(), 5 + 8 + 8 + 14 + 8u);
}

TEST_F(QVTextFileTest, TextoIgualNaoGravaNada) {
  auto a = Abre();
  ASSERT_EQ(QVTesteAcrescenta(*a, {"igual", ""}), S_OK);
  const auto contador = QVTesteLeCabecalho(Caminho()).uiContadorAtualizacoes;
  EXPECT_FALSE(a->PrecisaGravar(1, {"igual", ""}));
  QVUInt pos = 1;
  ASSERT_EQ(a->GravaColecao(pos, {"igual", ""}), S_OK);
  EXPECT_EQ(pos, 1u);
  EXPECT_EQ(QVTesteLeCabecalho(Caminho()).uiContadorAtualizacoes, contador);
  EXPECT_TRUE(a->PrecisaGravar(0, {"igual"}));
  EXPECT_TRUE(a->PrecisaGravar(2, {"", "depois do fim"}));
}

// A count that claims more characters than remain, and a count cut short:
// the load is refused, nothing is loaded and the file is left as it was.
TEST_F(QVTextFileTest, ContagemMaiorQueOsBytesRestantesRecusaACarga) {
  ASSERT_EQ(QVTesteAcrescenta(*Abre(), {"um", "dois"}), S_OK);
  const std::string bom = QVTesteBytes(Caminho());
  for (const std::string& cauda : {std::string("\x05\x00\x00\x00"
                                               "abc",
                                               7),
                                   std::string("\x01\x00", 2)}) {
    QVTesteGravaBytes(Caminho(), bom + cauda);
    QVTesteAlteraCabecalho(Caminho(), [&](QVCabecalhoArquivo& c) { c.uiTamanhoDados += cauda.size(); });
    const std::string antes = QVTesteBytes(Caminho());
    EXPECT_EQ(Abre()->GetQtdRegistros(), 0u);
    EXPECT_EQ(m_Pasta.m_hr, E_QVCR_ARQUIVO_TEXTO_QUANTIDADE_CARACTERES_INVALIDA);
    EXPECT_EQ(QVTesteBytes(Caminho()), antes);  // nothing repaired
  }
}
