// The indexed record file: load, positions, unique keys, whole content.
#include "core/qvdatabase/QVFile.h"

#include "tests/support/QVTesteArquivos.h"

namespace {

std::uint64_t ChaveGrupo(const REG_TESTE& r, QVUInt) { return r.lGrupo; }

class QVFileTest : public ::testing::Test {
 protected:
  void SetUp() override { QVTesteLimpaLog(); }
  // Column 0 the code (unique, never zero), column 1 the group (repeated,
  // zero allowed and left out of the index).
  std::unique_ptr<CQVFile<REG_TESTE>> Abre() {
    auto a = std::make_unique<CQVFile<REG_TESTE>>("GEATPRJV2.dat", QV_GE,
                                                  std::initializer_list<CQVFile<REG_TESTE>::Indice>{
                                                      {&QVTesteChaveCodigo, false, false}, {&ChaveGrupo, true, true}});
    a->SetDiretorio(m_Dir);
    m_hrAbertura = a->Inicializa(&QVTesteIdentidade());
    return a;
  }
  std::string Caminho() const { return m_Dir + "/GEATPRJV2.dat"; }
  // The records the object reads, as the file holds them.
  static std::string Memoria(CQVFile<REG_TESTE>& a) {
    std::vector<REG_TESTE> registros(a.GetQtdRegistros());
    for (QVUInt p = 1; p <= registros.size(); ++p) EXPECT_EQ(a.Le(p, &registros[p - 1]), S_OK) << p;
    return QVTesteBytesDe(registros);
  }

  std::string m_Dir = QVTesteNovoDiretorio("registros");
  HRESULT m_hrAbertura = S_OK;
};

}  // namespace

TEST_F(QVFileTest, ArquivoVazioEPosicoesDeGravacao) {
  auto a = Abre();
  ASSERT_EQ(m_hrAbertura, S_OK);
  EXPECT_EQ(a->GetQtdRegistros(), 0u);
  REG_TESTE r;
  EXPECT_EQ(a->Le(1, &r), E_QVCR_ARQUIVO_NAO_EXISTE);  // never written: the file does not exist
  EXPECT_EQ(a->Le(0, &r), E_QVCR_TENTATIVA_LER_POSICAO_ZERO);

  QVUInt pos = 1;  // position 1 of an empty file appends
  ASSERT_EQ(a->Grava(pos, QVTesteRegistro(10, 1, "um")), S_OK);
  EXPECT_EQ(pos, 1u);
  ASSERT_EQ(a->Grava(pos = 0, QVTesteRegistro(20, 1, "dois")), S_OK);
  EXPECT_EQ(pos, 2u);
  // Past count + 1: refused before anything is written.
  EXPECT_EQ(a->Grava(pos = 4, QVTesteRegistro(40)), E_QVCR_POSICAO_GRAVACAO_SUPERIOR_QUANTIDADE_ARQUIVO);
  EXPECT_EQ(QVTesteBytes(Caminho()).size(), 240u + 64);
  EXPECT_EQ(a->Le(3, &r), E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO);

  // A run rewrites in place and extends past the end in one go.
  ASSERT_EQ(a->GravaColecao(pos = 2, {QVTesteRegistro(21, 2, "dois'"), QVTesteRegistro(30, 2, "tres")}), S_OK);
  EXPECT_EQ(pos, 2u);

  // Memory, the disk and a new load hold exactly these records.
  const std::string esperado =
      QVTesteBytesDe({QVTesteRegistro(10, 1, "um"), QVTesteRegistro(21, 2, "dois'"), QVTesteRegistro(30, 2, "tres")});
  EXPECT_EQ(Memoria(*a), esperado);
  EXPECT_EQ(QVTesteBytes(Caminho()).substr(240), esperado);
  EXPECT_EQ(QVTesteLeCabecalho(Caminho()).uiTamanhoDados, 96u);
  a.reset();
  a = Abre();
  ASSERT_EQ(m_hrAbertura, S_OK);
  EXPECT_EQ(Memoria(*a), esperado);
}

TEST_F(QVFileTest, ChavesUnicasEZero) {
  auto a = Abre();
  QVUInt pos = 0;
  ASSERT_EQ(a->GravaColecao(pos, {QVTesteRegistro(1, 5), QVTesteRegistro(2, 5), QVTesteRegistro(3, 0)}), S_OK);

  // A record may keep its own unique key...
  ASSERT_EQ(a->Grava(pos = 2, QVTesteRegistro(2, 6, "mesma chave")), S_OK);
  // ...but not take another's, at any position.
  EXPECT_EQ(a->Grava(pos = 2, QVTesteRegistro(1)), E_QVCR_CHAVE_DE_INDEXACAO_REPETIDA);
  EXPECT_EQ(a->Grava(pos = 0, QVTesteRegistro(3)), E_QVCR_CHAVE_DE_INDEXACAO_REPETIDA);
  // Nor twice inside one run, nor a swap of two keys inside the run.
  EXPECT_EQ(a->GravaColecao(pos = 0, {QVTesteRegistro(8), QVTesteRegistro(8)}), E_QVCR_CHAVE_DE_INDEXACAO_REPETIDA);
  EXPECT_EQ(a->GravaColecao(pos = 1, {QVTesteRegistro(2), QVTesteRegistro(1)}), E_QVCR_CHAVE_DE_INDEXACAO_REPETIDA);
  // Column 0 refuses a zero key.
  EXPECT_EQ(a->Grava(pos = 0, QVTesteRegistro(0)), E_QVCR_INDEXACAO_COM_POSICAO_ZERO);
  EXPECT_EQ(a->GetQtdRegistros(), 3u);
  EXPECT_EQ(QVTesteBytes(Caminho()).size(), 240u + 96);  // none of the refusals wrote

  // A key's positions, nothing when absent (no failure either).
  auto posicoes = [&](QVUInt coluna, std::uint64_t chave) {
    bool existe = false;
    std::vector<QVUInt> todas{99};
    EXPECT_EQ(a->ExisteIndex(coluna, chave, &existe, &todas), S_OK);
    EXPECT_EQ(existe, !todas.empty());
    return todas;
  };
  using P = std::vector<QVUInt>;
  // The indexes built from a reopened file agree with those kept by writes.
  for (int volta = 0; volta < 2; ++volta, a.reset(), a = Abre()) {
    EXPECT_EQ(posicoes(0, 3), P{3});
    EXPECT_EQ(posicoes(0, 99), P{});
    EXPECT_EQ(posicoes(1, 5), P{1});  // position 2 moved to group 6
    EXPECT_EQ(posicoes(1, 6), P{2});
    EXPECT_EQ(posicoes(1, 0), P{});  // column 1 takes a zero key and does not index it
  }
  bool existe = false;
  QVUInt primeira = 0;
  ASSERT_EQ(a->ExisteIndex(0, 3, &existe, &primeira), S_OK);
  EXPECT_EQ(primeira, 3u);
  ASSERT_EQ(a->ExisteIndex(0, QVTesteRegistro(2), &existe, &primeira), S_OK);
  EXPECT_EQ(primeira, 2u);
  EXPECT_EQ(a->ExisteIndex(2, 1, &existe), E_QVCR_COLUNA_INDEXACAO_INVALIDA);
  EXPECT_EQ(a->Grava(pos = 0, QVTesteRegistro(1)), E_QVCR_CHAVE_DE_INDEXACAO_REPETIDA);
}

TEST_F(QVFileTest, DadosQueNaoSaoRegistrosInteirosRecusamACarga) {
  ASSERT_EQ(QVTesteAcrescenta(*Abre(), {1}), S_OK);
  // 33 bytes of data for a 32-byte record, with a header that agrees.
  QVTesteGravaBytes(Caminho(), QVTesteBytes(Caminho()) + "x");
  QVTesteAlteraCabecalho(Caminho(), [](QVCabecalhoArquivo& c) { c.uiTamanhoDados = 33; });
  const std::string antes = QVTesteBytes(Caminho());
  EXPECT_EQ(Abre()->GetQtdRegistros(), 0u);
  EXPECT_EQ(m_hrAbertura, E_QVCR_ARQUIVO_NAO_EH_MOD_ESTRUTURA);
  EXPECT_EQ(QVTesteBytes(Caminho()), antes);
  EXPECT_EQ(QVTesteLinhasCom({"CQVFile<REG_TESTE>::LeConteudo", "GetLength = 33"}), 1u);
}

TEST_F(QVFileTest, ConteudoInteiroParaConversoes) {
  auto a = Abre();
  ASSERT_EQ(QVTesteAcrescenta(*a, {1, 2}), S_OK);
  EXPECT_FALSE(a->PrecisaGravar());
  const auto contador = QVTesteLeCabecalho(Caminho()).uiContadorAtualizacoes;
  // The same content: nothing written.
  ASSERT_EQ(a->SetConteudo({QVTesteRegistro(1), QVTesteRegistro(2)}), S_OK);
  EXPECT_EQ(QVTesteLeCabecalho(Caminho()).uiContadorAtualizacoes, contador);
  // Memory changed alone, then written as a whole, shorter than before.
  ASSERT_EQ(a->SetRegData(1, QVTesteRegistro(9)), S_OK);
  EXPECT_TRUE(a->PrecisaGravar());
  ASSERT_EQ(a->SetConteudo({QVTesteRegistro(9)}), S_OK);
  EXPECT_FALSE(a->PrecisaGravar());
  EXPECT_EQ(QVTesteBytes(Caminho()).substr(240), QVTesteBytesDe({QVTesteRegistro(9)}));
  EXPECT_EQ(Memoria(*a), QVTesteBytesDe({QVTesteRegistro(9)}));
  bool existe = false;
  ASSERT_EQ(a->ExisteIndex(0, 2, &existe), S_OK);
  EXPECT_FALSE(existe);
}

// Memory grows from a small block to a mapped one, past the room a load
// left, and is loaded again: no record is lost or moves on the way.
TEST_F(QVFileTest, MemoriaQueCresceGuardaOsRegistros) {
  CQVFile<REG_TESTE> f("GRANDE.dat", QV_GE);
  f.SetDiretorio(m_Dir);
  QVUInt uiQtd = 0;
  for (std::uint32_t n : {100u, 70000u, 20000u, 0u}) {  // 70000 records pass 2 MB
    ASSERT_EQ(f.Inicializa(&QVTesteIdentidade()), S_OK);
    std::vector<REG_TESTE> lote;
    for (std::uint32_t i = 1; i <= n; ++i) lote.push_back(QVTesteRegistro(0, static_cast<std::uint32_t>(uiQtd + i)));
    QVUInt pos = 0;
    ASSERT_EQ(f.GravaColecao(pos, lote), S_OK);
    uiQtd += n;
    ASSERT_EQ(f.GetQtdRegistros(), uiQtd);
    for (QVUInt p = 1; p <= uiQtd; ++p) ASSERT_EQ(f.GetRegistro(p)->lGrupo, p) << p;
    ASSERT_EQ(f.Finaliza(), S_OK);
  }
}
