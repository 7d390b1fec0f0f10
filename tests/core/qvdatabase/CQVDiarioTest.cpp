// The company journal: committed transactions come back after a crash,
// once or twice alike; a torn or damaged tail and a failed commit never
// reach the files; a power cut at any point of a commit leaves either the
// whole transaction or none of it.
#include "core/qvdatabase/CQVDiario.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/QVArquivoFalho.h"
#include "tests/support/QVTesteArquivos.h"

namespace {

using Escritas = std::vector<QVEscritaDiario>;

QVEscritaDiario Bytes(const char* arquivo, std::uint64_t offset, std::string dados) {
  return {QVEscritaDiario::Tipo::Bytes, arquivo, offset, std::move(dados)};
}

class CQVDiarioTest : public ::testing::Test {
 protected:
  void SetUp() override {
    QVTesteGravaBytes(Caminho("A.dat"), "aaaaaaaa");
    QVTesteGravaBytes(Caminho("B.dat"), "bbbbbbbb");
  }
  std::string Caminho(const std::string& nome) const { return m_Dir + "/" + nome; }
  // Commits the transactions and leaves them unapplied, as a crash would.
  void ConfirmaSemAplicar(const std::vector<Escritas>& transacoes) {
    CQVDiario d(m_Dir);
    ASSERT_EQ(d.Abre(), S_OK);
    for (const Escritas& t : transacoes) ASSERT_EQ(d.Confirma(t), S_OK);
  }
  QVRecuperacaoDiario Recupera() {
    CQVDiario d(m_Dir);
    QVRecuperacaoDiario r;
    EXPECT_EQ(d.Abre(&r), S_OK);
    return r;
  }

  std::string m_Dir = QVTesteNovoDiretorio("diario");
  const std::vector<Escritas> m_Duas{
      {Bytes("A.dat", 2, "XYZ"), {QVEscritaDiario::Tipo::Tamanho, "B.dat", 3, ""}},
      {Bytes("B.dat", 1, "QQ"), Bytes("A.dat", 8, "++")}};
};

}  // namespace

TEST_F(CQVDiarioTest, TransacoesConfirmadasVoltamUmaOuDuasVezesIgual) {
  ConfirmaSemAplicar(m_Duas);
  EXPECT_EQ(QVTesteBytes(Caminho("A.dat")), "aaaaaaaa");  // the files wait for the replay
  const std::string diario = QVTesteBytes(Caminho(kQVNomeArquivoDiario));
  QVRecuperacaoDiario r = Recupera();
  EXPECT_EQ(r.uiTransacoes, 2u);
  EXPECT_EQ(r.uiBytesDescartados, 0u);
  EXPECT_EQ(QVTesteBytes(Caminho("A.dat")), "aaXYZaaa++");
  EXPECT_EQ(QVTesteBytes(Caminho("B.dat")), "bQQ");
  EXPECT_EQ(std::filesystem::file_size(Caminho(kQVNomeArquivoDiario)), CQVDiario::kTamanhoCabecalho);
  EXPECT_EQ(Recupera().uiTransacoes, 0u);  // emptied
  // A crash during the emptying: the same journal replayed again.
  QVTesteGravaBytes(Caminho(kQVNomeArquivoDiario), diario);
  EXPECT_EQ(Recupera().uiTransacoes, 2u);
  EXPECT_EQ(QVTesteBytes(Caminho("A.dat")), "aaXYZaaa++");
  EXPECT_EQ(QVTesteBytes(Caminho("B.dat")), "bQQ");
}

// Whatever damage the end of the journal has, the transactions before it
// are applied and nothing of it; a write to a file gone since is skipped.
TEST_F(CQVDiarioTest, FinalDanificadoNuncaChegaAosArquivos) {
  ConfirmaSemAplicar(m_Duas);
  const std::string bom = QVTesteBytes(Caminho(kQVNomeArquivoDiario));
  const std::size_t fimPrimeira = bom.size() - (32 + 2 * 24 + 5 + 2 + 5 + 2 + 8);  // the second: B.dat "QQ", A.dat "++"
  const struct {
    const char* nome;
    std::string diario;
    std::uint32_t aplicadas;
  } casos[] = {
      {"rasgado no meio", bom.substr(0, bom.size() - 5), 1},
      {"so o cabecalho da transacao", bom.substr(0, fimPrimeira + 20), 1},
      {"soma errada", [&] { std::string s = bom; s[s.size() - 12] ^= 1; return s; }(), 1},
      {"sequencia repetida", bom.substr(0, fimPrimeira) + bom.substr(32, fimPrimeira - 32), 1},
      {"cabecalho do diario danificado", [&] { std::string s = bom; s[3] = 'x'; return s; }(), 0},
      {"lixo", bom + std::string(100, '\x07'), 2},
  };
  for (const auto& c : casos) {
    SCOPED_TRACE(c.nome);
    QVTesteGravaBytes(Caminho("A.dat"), "aaaaaaaa");
    QVTesteGravaBytes(Caminho("B.dat"), "bbbbbbbb");
    QVTesteGravaBytes(Caminho(kQVNomeArquivoDiario), c.diario);
    QVTesteLimpaLog();
    const QVRecuperacaoDiario r = Recupera();
    EXPECT_EQ(r.uiTransacoes, c.aplicadas);
    EXPECT_EQ(QVTesteBytes(Caminho("A.dat")), c.aplicadas == 0   ? "aaaaaaaa"
                                               : c.aplicadas == 1 ? "aaXYZaaa"
                                                                  : "aaXYZaaa++");
    EXPECT_EQ(r.uiBytesDescartados, c.diario.size() - (c.aplicadas == 0 ? 0 : c.aplicadas == 1 ? fimPrimeira : bom.size()));
    EXPECT_EQ(QVTesteLinhasCom({"descartado"}), r.uiBytesDescartados != 0 ? 1u : 0u);
    EXPECT_EQ(Recupera().uiTransacoes, 0u);
  }

  std::filesystem::remove(Caminho("B.dat"));
  ConfirmaSemAplicar({m_Duas[1]});
  const QVRecuperacaoDiario r = Recupera();
  EXPECT_EQ(r.uiTransacoes, 1u);
  EXPECT_EQ(r.uiEscritasSemArquivo, 1u);
  EXPECT_FALSE(std::filesystem::exists(Caminho("B.dat")));
  EXPECT_EQ(QVTesteBytes(Caminho("A.dat")), "aaXYZaaa++");
}

// A commit cut by a power cut at each of its operations, or by a failed
// flush: answered with a failure and absent after recovery, or answered
// with success and whole.
TEST_F(CQVDiarioTest, QuedaDeEnergiaNoConfirmaTudoOuNada) {
  {
    CQVArquivoFalho falho({.iFalharFlush = 2});  // the opening's emptying flushes first
    CQVDiario d(m_Dir);
    ASSERT_EQ(d.Abre(), S_OK);
    EXPECT_EQ(d.Confirma(m_Duas[0]), HRESULT_FROM_WIN32(ERROR_DISK_FULL));
    EXPECT_EQ(d.GetTamanhoTransacoes(), 0u);
  }
  EXPECT_EQ(Recupera().uiTransacoes, 0u);
  EXPECT_EQ(QVTesteBytes(Caminho("A.dat")), "aaaaaaaa");

  for (int iOperacao = 1;; ++iOperacao) {
    SCOPED_TRACE(iOperacao);
    HRESULT hr = E_FAIL;
    bool bCaiu = false;
    {
      // Anywhere in the opening (its recovery and emptying) or the commit.
      CQVArquivoFalho falho({.iCrashNaOperacao = iOperacao, .bCrashPerdeNaoSincronizado = true});
      CQVDiario d(m_Dir);
      if (SUCCEEDED(d.Abre())) hr = d.Confirma(m_Duas[0]);
      bCaiu = falho.Caiu();
    }
    QVTesteGravaBytes(Caminho("A.dat"), "aaaaaaaa");
    const QVRecuperacaoDiario r = Recupera();
    if (SUCCEEDED(hr)) {
      EXPECT_EQ(r.uiTransacoes, 1u);
    }
    EXPECT_EQ(QVTesteBytes(Caminho("A.dat")), r.uiTransacoes == 1 ? "aaXYZaaa" : "aaaaaaaa");
    if (!bCaiu) break;
  }
  CQVDiario d(m_Dir);
  ASSERT_EQ(d.Abre(), S_OK);
  EXPECT_EQ(d.Confirma({Bytes("../fora.dat", 0, "x")}), E_INVALIDARG);
}
