// The indexed record file: load, positions, unique keys, whole content.
#include "core/qvdatabase/QVFile.h"

#include <gtest/gtest.h>

#include <cstring>

#include "df/qvlibex/QVCodigos.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "tests/support/QVTestSupport.h"
#include "tests/support/QVTesteArquivos.h"

namespace {

std::uint64_t ChaveCodigo(const REG_TESTE& r, QVUInt) { return r.lCodigo; }
std::uint64_t ChaveGrupo(const REG_TESTE& r, QVUInt) { return r.lGrupo; }

class CArquivoTeste : public CQVFile<REG_TESTE> {
 public:
  explicit CArquivoTeste(const std::string& dir, const std::string& nome = "GEATPRJV2.dat")
      : CQVFile<REG_TESTE>(nome, QV_GE, {{&ChaveCodigo, false, false}, {&ChaveGrupo, true, true}}) {
    SetDiretorio(dir);
  }
};

class QVFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_Dir = QVTesteNovoDiretorio("registros");
    QVTesteLimpaLog();
  }
  std::unique_ptr<CArquivoTeste> Abre() {
    auto a = std::make_unique<CArquivoTeste>(m_Dir);
    m_hrAbertura = a->Inicializa(&QVTesteIdentidade());
    return a;
  }
  std::string Caminho() const { return m_Dir + "/GEATPRJV2.dat"; }

  std::string m_Dir;
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
  pos = 0;
  ASSERT_EQ(a->Grava(pos, QVTesteRegistro(20, 1, "dois")), S_OK);
  EXPECT_EQ(pos, 2u);
  EXPECT_EQ(QVTesteBytes(Caminho()).size(), 240u + 64);

  // Past count + 1: refused before anything is written.
  pos = 4;
  EXPECT_EQ(a->Grava(pos, QVTesteRegistro(40)), E_QVCR_POSICAO_GRAVACAO_SUPERIOR_QUANTIDADE_ARQUIVO);
  EXPECT_EQ(QVTesteBytes(Caminho()).size(), 240u + 64);
  EXPECT_EQ(a->Le(3, &r), E_QVCR_POSICAO_LEITURA_SUPERIOR_QUANTIDADE_ARQUIVO);

  // A run rewrites in place and extends past the end in one go.
  pos = 2;
  ASSERT_EQ(a->GravaColecao(pos, {QVTesteRegistro(21, 2, "dois'"), QVTesteRegistro(30, 2, "tres")}), S_OK);
  EXPECT_EQ(pos, 2u);
  EXPECT_EQ(a->GetQtdRegistros(), 3u);
  ASSERT_EQ(a->Le(2, &r), S_OK);
  EXPECT_STREQ(r.szNome, "dois'");

  // After reopening, disk and memory agree record for record.
  a.reset();
  a = Abre();
  ASSERT_EQ(m_hrAbertura, S_OK);
  ASSERT_EQ(a->GetQtdRegistros(), 3u);
  const std::string b = QVTesteBytes(Caminho());
  for (QVUInt p = 1; p <= 3; ++p) {
    ASSERT_EQ(a->Le(p, &r), S_OK);
    EXPECT_EQ(std::memcmp(&r, b.data() + 240 + (p - 1) * 32, 32), 0) << p;
  }
  EXPECT_EQ(QVTesteLeCabecalho(Caminho()).uiTamanhoDados, 96u);
}

TEST_F(QVFileTest, ChavesUnicasEZero) {
  auto a = Abre();
  QVUInt pos = 0;
  ASSERT_EQ(a->GravaColecao(pos, {QVTesteRegistro(1, 5), QVTesteRegistro(2, 5), QVTesteRegistro(3, 0)}), S_OK);

  // A record may keep its own unique key...
  pos = 2;
  ASSERT_EQ(a->Grava(pos, QVTesteRegistro(2, 6, "mesma chave")), S_OK);
  // ...but not take another's, at any position.
  pos = 2;
  EXPECT_EQ(a->Grava(pos, QVTesteRegistro(1)), E_QVCR_CHAVE_DE_INDEXACAO_REPETIDA);
  pos = 0;
  EXPECT_EQ(a->Grava(pos, QVTesteRegistro(3)), E_QVCR_CHAVE_DE_INDEXACAO_REPETIDA);
  // Nor twice inside one run, nor a swap of two keys inside the run.
  pos = 0;
  EXPECT_EQ(a->GravaColecao(pos, {QVTesteRegistro(8), QVTesteRegistro(8)}), E_QVCR_CHAVE_DE_INDEXACAO_REPETIDA);
  pos = 1;
  EXPECT_EQ(a->GravaColecao(pos, {QVTesteRegistro(2), QVTesteRegistro(1)}), E_QVCR_CHAVE_DE_INDEXACAO_REPETIDA);
  // Column 0 refuses a zero key; column 1 takes it and does not index it.
  pos = 0;
  EXPECT_EQ(a->Grava(pos, QVTesteRegistro(0)), E_QVCR_INDEXACAO_COM_POSICAO_ZERO);
  EXPECT_EQ(a->GetQtdRegistros(), 3u);
  EXPECT_EQ(QVTesteBytes(Caminho()).size(), 240u + 96);  // none of the refusals wrote

  bool existe = false;
  QVUInt primeira = 0;
  ASSERT_EQ(a->ExisteIndex(0, 3, &existe, &primeira), S_OK);
  EXPECT_TRUE(existe);
  EXPECT_EQ(primeira, 3u);
  std::vector<QVUInt> lista;
  ASSERT_EQ(a->ExisteIndex(1, 5, &existe, &lista), S_OK);
  EXPECT_EQ(lista, std::vector<QVUInt>{1});  // position 2 moved to group 6
  ASSERT_EQ(a->ExisteIndex(1, 6, &existe, &lista), S_OK);
  EXPECT_EQ(lista, std::vector<QVUInt>{2});
  ASSERT_EQ(a->ExisteIndex(1, 0, &existe), S_OK);
  EXPECT_FALSE(existe);
  ASSERT_EQ(a->ExisteIndex(0, QVTesteRegistro(2), &existe, &primeira), S_OK);
  EXPECT_EQ(primeira, 2u);
  ASSERT_EQ(a->ExisteIndex(0, 99, &existe), S_OK);  // absent: no failure
  EXPECT_FALSE(existe);
  EXPECT_EQ(a->ExisteIndex(2, 1, &existe), E_QVCR_COLUNA_INDEXACAO_INVALIDA);

  // The indexes built from a reopened file agree with those kept by writes.
  a.reset();
  a = Abre();
  ASSERT_EQ(a->ExisteIndex(1, 6, &existe, &lista), S_OK);
  EXPECT_EQ(lista, std::vector<QVUInt>{2});
  pos = 0;
  EXPECT_EQ(a->Grava(pos, QVTesteRegistro(1)), E_QVCR_CHAVE_DE_INDEXACAO_REPETIDA);
}

TEST_F(QVFileTest, DadosQueNaoSaoRegistrosInteirosRecusamACarga) {
  {
    auto a = Abre();
    QVUInt pos = 0;
    ASSERT_EQ(a->Grava(pos, QVTesteRegistro(1)), S_OK);
  }
  // 33 bytes of data for a 32-byte record, with a header that agrees.
  QVTesteGravaBytes(Caminho(), QVTesteBytes(Caminho()) + "x");
  QVTesteAlteraCabecalho(Caminho(), [](QVCabecalhoArquivo& c) { c.uiTamanhoDados = 33; });
  const std::string antes = QVTesteBytes(Caminho());
  auto a = Abre();
  EXPECT_EQ(m_hrAbertura, E_QVCR_ARQUIVO_NAO_EH_MOD_ESTRUTURA);
  EXPECT_EQ(a->GetQtdRegistros(), 0u);
  a.reset();
  EXPECT_EQ(QVTesteBytes(Caminho()), antes);
  bool registrado = false;
  for (const std::string& l : QVTesteLinhasErro())
    registrado |= l.find("CQVFile<REG_TESTE>::LeConteudo") != std::string::npos &&
                  l.find("GetLength = 33") != std::string::npos;
  EXPECT_TRUE(registrado);
}

TEST_F(QVFileTest, ConteudoInteiroParaConversoes) {
  auto a = Abre();
  QVUInt pos = 0;
  ASSERT_EQ(a->GravaColecao(pos, {QVTesteRegistro(1), QVTesteRegistro(2)}), S_OK);
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
  EXPECT_EQ(QVTesteBytes(Caminho()).size(), 240u + 32);
  bool existe = false;
  ASSERT_EQ(a->ExisteIndex(0, 2, &existe), S_OK);
  EXPECT_FALSE(existe);
  EXPECT_EQ(a->GetNomeEstrutura(), "REG_TESTE");
  EXPECT_EQ(a->GetRegistro(1)->lCodigo, 9u);
  EXPECT_EQ(a->GetRegistro(2), nullptr);
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
