// Writes that fail halfway, and crashes: the file is left valid with what its
// callers were told was written. Never silently wrong.
#include "tests/support/QVArquivoFalho.h"
#include "tests/support/QVTesteArquivos.h"

namespace {

const HRESULT kDiscoCheio = HRESULT_FROM_WIN32(ERROR_DISK_FULL);
using Codigos = std::vector<std::uint32_t>;
using Textos = std::vector<std::string>;
const Textos kTextosAntigos{"primeiro texto", "segundo", "terceiro"};
const Textos kTextosNovos{"curto", "segundo", "terceiro"};  // the first one compacted

// After a crash every open fails: the open's retries are cut short.
template <class P>
class QVTesteDeFalhas : public ::testing::TestWithParam<P> {
 protected:
  void SetUp() override { CQVFileBase::DefineTentativasAbertura(2, 0); }
  void TearDown() override { CQVFileBase::DefineTentativasAbertura(500, 10); }
  CQVTestePasta m_Pasta{QVTesteNovoDiretorio("falhas")};
};

struct CasoFalha {
  const char* nome;
  QVPlanoFalhas plano;
  QVUInt posicao;  // 0 append, 2 rewrite
};
void PrintTo(const CasoFalha& c, std::ostream* os) { *os << c.nome; }
class QVFalhaDeGravacaoTest : public QVTesteDeFalhas<CasoFalha> {};
class QVCompactacaoQueFalhaTest : public QVTesteDeFalhas<QVPlanoFalhas> {};

}  // namespace

// Every way one write or one flush can fail, during an append and during a
// rewrite in place: the call fails with the disk's error, memory is not
// changed, the file object goes on working, and the file on disk holds
// exactly the acknowledged records.
// When the disk keeps failing the rollback fails too: the file is in doubt
// and refuses further writes; its next open finds exactly the acknowledged
// records (half a record past the header's length is an unfinished write,
// cut off); it never reads back something else.
TEST_P(QVFalhaDeGravacaoTest, EhDesfeitaOuDeixaOArquivoEmDuvida) {
  const CasoFalha& caso = GetParam();
  const bool bDuvida = caso.plano.bFalharDaiEmDiante;
  ASSERT_EQ(QVTesteAcrescenta(*m_Pasta.Registros(), {1, 2, 3}), S_OK);
  {
    CQVArquivoFalho falho(caso.plano);
    auto a = m_Pasta.Registros();
    QVUInt pos = caso.posicao;
    EXPECT_EQ(a->Grava(pos, QVTesteRegistro(99)), kDiscoCheio);
    EXPECT_EQ(a->GetEstadoDuvida(), bDuvida ? kDiscoCheio : S_OK);
    EXPECT_EQ(a->GetRegistro(2)->lCodigo, 2u);
    EXPECT_TRUE(bDuvida || falho.Falhas() == 1) << falho.Falhas();
    EXPECT_EQ(a->Grava(pos = 0, QVTesteRegistro(4)), bDuvida ? kDiscoCheio : S_OK);
    EXPECT_EQ(a->Finaliza(), bDuvida ? kDiscoCheio : S_OK);
  }
  const Codigos codigos = m_Pasta.Codigos();
  EXPECT_EQ(m_Pasta.m_hr, S_OK);
  EXPECT_EQ(codigos, (bDuvida ? Codigos{1, 2, 3} : Codigos{1, 2, 3, 4}));
}

INSTANTIATE_TEST_SUITE_P(
    Casos, QVFalhaDeGravacaoTest,
    ::testing::Values(
        CasoFalha{"escrita do append", {.iFalharEscrita = 1}, 0},
        CasoFalha{"escrita parcial do append", {.iFalharEscrita = 1, .bEscritaParcial = true}, 0},
        CasoFalha{"cabecalho do append", {.iFalharEscrita = 2}, 0},
        CasoFalha{"flush do append", {.iFalharFlush = 1}, 0},
        CasoFalha{"escrita parcial no lugar", {.iFalharEscrita = 1, .bEscritaParcial = true}, 2},
        CasoFalha{"flush no lugar", {.iFalharFlush = 1}, 2},
        CasoFalha{
            "disco que continua falhando", {.iFalharEscrita = 1, .iFalharTamanho = 1, .bFalharDaiEmDiante = true}, 0},
        CasoFalha{"disco que continua falhando, escrita parcial",
                  {.iFalharEscrita = 1, .iFalharTamanho = 1, .bEscritaParcial = true, .bFalharDaiEmDiante = true},
                  0}));

// A compaction whose copy cannot be made leaves the file and memory as they
// were and no copy behind; one whose file cannot be opened again after the
// rename has the new texts on disk and in memory. Either way the object goes
// on.

TEST_P(QVCompactacaoQueFalhaTest, ArquivoEMemoriaConcordam) {
  auto a = m_Pasta.Textos();
  ASSERT_EQ(QVTesteAcrescenta(*a, kTextosAntigos), S_OK);
  QVUInt pos = 1;
  {
    CQVArquivoFalho falho(GetParam());
    EXPECT_EQ(a->Grava(pos, "curto"), kDiscoCheio);
  }
  EXPECT_FALSE(std::filesystem::exists(m_Pasta.Caminho("GeAtDsDe.tra")));
  Textos esperados = GetParam().iFalharAbertura == 2 ? kTextosNovos : kTextosAntigos;
  std::string t;
  ASSERT_EQ(a->Le(1, &t), S_OK);
  EXPECT_EQ(t, esperados[0]);
  EXPECT_EQ(a->Grava(pos = 2, "seg"), S_OK);
  a.reset();
  esperados[1] = "seg";
  EXPECT_EQ(m_Pasta.TextosNoDisco(), esperados);
}

INSTANTIATE_TEST_SUITE_P(
    Planos, QVCompactacaoQueFalhaTest,
    ::testing::Values(QVPlanoFalhas{.iFalharEscrita = 1, .bEscritaParcial = true},        // the copy's bytes
                      QVPlanoFalhas{.iFalharFlush = 1},                                   // the copy's sync
                      QVPlanoFalhas{.iFalharAbertura = 1, .bFalharDaiEmDiante = true},    // the copy itself
                      QVPlanoFalhas{.iFalharAbertura = 2, .bFalharDaiEmDiante = true}));  // after the rename

// ---- crashes during the whole-file rewrites ----------------------------------
//
// Each rewrite runs once to count its operations, then once per operation
// with a crash there: a process's death (what it wrote stays: a rewrite in
// place would be caught half done) and a power cut (what was not flushed is
// lost: a copy renamed before it was flushed would be caught empty). After
// each crash the files are opened again: every
// file opens (or is refused for a documented reason, and opens once that is
// dealt with), it holds its old content or its new one and nothing else, and
// the new one when the rewrite had answered S_OK.

namespace {

struct Reescrita {
  const char* nome;
  std::function<void(CQVTestePasta&)> prepara;
  std::function<HRESULT(CQVTestePasta&)> executa;  // its objects are gone when it returns
  std::function<void(CQVTestePasta&, bool bConfirmada)> verifica;
};
void PrintTo(const Reescrita& r, std::ostream* os) { *os << r.nome; }

const std::string kLegado = QVTesteBytesDe({QVTesteRegistro(1), QVTesteRegistro(2), QVTesteRegistro(3)});

const Reescrita kReescritas[] = {
    {"compactacao de textos", [](CQVTestePasta& p) { ASSERT_EQ(QVTesteAcrescenta(*p.Textos(), kTextosAntigos), S_OK); },
     [](CQVTestePasta& p) {
       QVUInt pos = 1;
       return p.Textos()->Grava(pos, "curto");
     },
     [](CQVTestePasta& p, bool bConfirmada) {
       const Textos textos = p.TextosNoDisco();
       ASSERT_EQ(p.m_hr, S_OK);
       EXPECT_TRUE(textos == kTextosNovos || (!bConfirmada && textos == kTextosAntigos)) << textos.size();
       // A copy a crash left behind does not stop the next compaction.
       QVUInt pos = 2;
       EXPECT_EQ(p.Textos()->Grava(pos, "seg"), S_OK);
       EXPECT_FALSE(std::filesystem::exists(p.Caminho("GeAtDsDe.tra")));
     }},
    {"conteudo inteiro de registros",
     [](CQVTestePasta& p) {
       ASSERT_EQ(QVTesteAcrescenta(*p.Registros(), {1, 2, 3}), S_OK);
     },
     [](CQVTestePasta& p) { return p.Registros()->SetConteudo({QVTesteRegistro(9)}); },
     [](CQVTestePasta& p, bool bConfirmada) {
       const Codigos codigos = p.Codigos();
       ASSERT_EQ(p.m_hr, S_OK);
       EXPECT_TRUE(codigos == Codigos{9} || (!bConfirmada && codigos == Codigos{1, 2, 3})) << codigos.size();
     }},
    {"cabecalho de arquivo antigo", [](CQVTestePasta& p) { QVTesteGravaBytes(p.Caminho("GEATRPS.dat"), kLegado); },
     [](CQVTestePasta& p) {
       p.Registros();
       return p.m_hr;
     },
     [](CQVTestePasta& p, bool) {
       // A copy left by the crash stops the open, the file untouched, until
       // an administrator removes it.
       if (std::filesystem::exists(p.Caminho("GEATRPS.tra"))) {
         p.Codigos();
         EXPECT_EQ(p.m_hr, E_QVCR_ARQUIVO_TRA_ENCONTRADO);
         EXPECT_EQ(QVTesteBytes(p.Caminho("GEATRPS.dat")), kLegado);
         std::filesystem::remove(p.Caminho("GEATRPS.tra"));
       }
       EXPECT_EQ(p.Codigos(), (Codigos{1, 2, 3}));
       EXPECT_EQ(p.m_hr, S_OK);
       EXPECT_EQ(QVTesteBytes(p.Caminho("GEATRPS.dat")).substr(240), kLegado);
     }},
    {"lista do controle",
     [](CQVTestePasta& p) {
       for (const char* nome : {"GEAtDedu.dat", "GEATPC.dat"})
         ASSERT_EQ(QVTesteAcrescenta(*p.Registros(nome), {1}), S_OK);
     },
     [](CQVTestePasta& p) { return p.Registros("GEAtDedu.dat")->DeletaArquivo(); },
     [](CQVTestePasta& p, bool bConfirmada) {
       // A copy left by the crash would stop the next removal until an
       // administrator removes it; opens never look at it.
       std::filesystem::remove(p.Caminho("QVDATABASE_FILE_CTRL.tra"));
       const Textos lista = p.ListaDoControle();
       EXPECT_TRUE(lista == Textos{"GEATPC.dat"} || (!bConfirmada && lista == Textos{"GEAtDedu.dat", "GEATPC.dat"}))
           << lista.size();
       // Nothing is listed and missing: every file opens for writing.
       EXPECT_EQ(p.Codigos("GEATPC.dat"), Codigos{1});
       EXPECT_EQ(p.m_hr, S_OK);
       p.Codigos("GEAtDedu.dat");
       EXPECT_EQ(p.m_hr, S_OK);
     }},
};

class QVCrashTest : public QVTesteDeFalhas<std::tuple<Reescrita, bool>> {};

}  // namespace

TEST_P(QVCrashTest, DeixaOArquivoAntigoOuONovo) {
  const auto& [r, bQuedaDeEnergia] = GetParam();
  // Set-up and checks run on the double too, without faults: it skips the
  // disk's sync, which only costs time here.
  auto prepara = [&](CQVTestePasta& p) {
    const CQVArquivoFalho semFalhas({});
    r.prepara(p);
  };
  int iOperacoes = 0;
  {
    CQVTestePasta p(QVTesteNovoDiretorio("contagem"));
    prepara(p);
    const CQVArquivoFalho contador({});
    ASSERT_EQ(r.executa(p), S_OK);
    iOperacoes = contador.Operacoes();
  }
  ASSERT_GT(iOperacoes, 3);
  for (int i = 1; i <= iOperacoes; ++i) {
    SCOPED_TRACE("crash na operacao " + std::to_string(i) + " de " + std::to_string(iOperacoes));
    CQVTestePasta p(QVTesteNovoDiretorio("crash"));
    prepara(p);
    HRESULT hr = S_OK;
    {
      const CQVArquivoFalho falho({.iCrashNaOperacao = i, .bCrashPerdeNaoSincronizado = bQuedaDeEnergia});
      hr = r.executa(p);
      ASSERT_TRUE(falho.Caiu());
    }
    const CQVArquivoFalho semFalhas({});
    r.verifica(p, SUCCEEDED(hr));
  }
}

INSTANTIATE_TEST_SUITE_P(Reescritas, QVCrashTest,
                         ::testing::Combine(::testing::ValuesIn(kReescritas), ::testing::Bool()));
