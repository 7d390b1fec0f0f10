// Writes that fail halfway, and crashes: the file is left valid with what its
// callers were told was written, or it is refused at its next open. Never
// silently wrong.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "df/qvlibex/QVCodigos.h"
#include "tests/support/QVArquivoFalho.h"
#include "tests/support/QVTestSupport.h"
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

}  // namespace

// Every way one write or one flush can fail, during an append and during a
// rewrite in place: the call fails with the disk's error, the file object
// goes on working, and the file on disk holds exactly the acknowledged
// records.
TEST_P(QVFalhaDeGravacaoTest, EhDesfeitaEOArquivoContinua) {
  QVUInt pos = 0;
  ASSERT_EQ(m_Pasta.Registros()->GravaColecao(pos, {QVTesteRegistro(1), QVTesteRegistro(2), QVTesteRegistro(3)}),
            S_OK);
  {
    CQVArquivoFalho falho(GetParam().plano);
    auto a = m_Pasta.Registros();
    pos = GetParam().posicao;
    EXPECT_EQ(a->Grava(pos, QVTesteRegistro(99)), kDiscoCheio);
    EXPECT_EQ(falho.Falhas(), 1);
    EXPECT_EQ(a->GetEstadoDuvida(), S_OK);
    EXPECT_EQ(a->GetRegistro(2)->lCodigo, 2u);  // memory was not changed
    EXPECT_EQ(a->Grava(pos = 0, QVTesteRegistro(4)), S_OK);
    EXPECT_EQ(pos, 4u);
  }
  EXPECT_EQ(m_Pasta.Codigos(), (Codigos{1, 2, 3, 4}));
  EXPECT_EQ(m_Pasta.m_hr, S_OK);
}

INSTANTIATE_TEST_SUITE_P(
    Casos, QVFalhaDeGravacaoTest,
    ::testing::Values(CasoFalha{"escrita do append", {.iFalharEscrita = 1}, 0},
                      CasoFalha{"escrita parcial do append", {.iFalharEscrita = 1, .bEscritaParcial = true}, 0},
                      CasoFalha{"cabecalho do append", {.iFalharEscrita = 2}, 0},
                      CasoFalha{"flush do append", {.iFalharFlush = 1}, 0},
                      CasoFalha{"escrita parcial no lugar", {.iFalharEscrita = 1, .bEscritaParcial = true}, 2},
                      CasoFalha{"flush no lugar", {.iFalharFlush = 1}, 2}));

namespace {
class QVDiscoQueContinuaFalhandoTest : public QVTesteDeFalhas<bool> {};
}  // namespace

// The disk keeps failing: the rollback fails too. The file refuses further
// writes and is refused at its next open, or still holds exactly the
// acknowledged records; it never reads back something else.
TEST_P(QVDiscoQueContinuaFalhandoTest, DeixaOArquivoEmDuvida) {
  const bool parcial = GetParam();
  QVUInt pos = 0;
  ASSERT_EQ(m_Pasta.Registros()->GravaColecao(pos, {QVTesteRegistro(1), QVTesteRegistro(2)}), S_OK);
  {
    CQVArquivoFalho falho(
        {.iFalharEscrita = 1, .iFalharTamanho = 1, .bEscritaParcial = parcial, .bFalharDaiEmDiante = true});
    auto a = m_Pasta.Registros();
    EXPECT_EQ(a->Grava(pos = 0, QVTesteRegistro(3)), kDiscoCheio);
    EXPECT_EQ(a->GetEstadoDuvida(), kDiscoCheio);
    EXPECT_EQ(a->Grava(pos = 0, QVTesteRegistro(4)), kDiscoCheio);
    EXPECT_EQ(a->Finaliza(), kDiscoCheio);
  }
  const Codigos codigos = m_Pasta.Codigos();
  // Half a record behind the header's length is refused.
  EXPECT_EQ(m_Pasta.m_hr, parcial ? E_QVCR_TAMANHO_ARQUIVO_NAO_CONFERE : S_OK);
  if (!parcial) {
    EXPECT_EQ(codigos, (Codigos{1, 2}));
  }
}

INSTANTIATE_TEST_SUITE_P(EscritaInteiraOuParcial, QVDiscoQueContinuaFalhandoTest, ::testing::Bool());

// A compaction whose copy cannot be made leaves the file and memory as they
// were and no copy behind; one whose file cannot be opened again after the
// rename has the new texts on disk and in memory. Either way the object goes
// on.
namespace {
class QVCompactacaoQueFalhaTest : public QVTesteDeFalhas<QVPlanoFalhas> {};
}  // namespace

TEST_P(QVCompactacaoQueFalhaTest, ArquivoEMemoriaConcordam) {
  auto a = m_Pasta.Textos();
  QVUInt pos = 0;
  ASSERT_EQ(a->GravaColecao(pos, kTextosAntigos), S_OK);
  {
    CQVArquivoFalho falho(GetParam());
    EXPECT_EQ(a->Grava(pos = 1, "curto"), kDiscoCheio);
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
    ::testing::Values(QVPlanoFalhas{.iFalharEscrita = 1, .bEscritaParcial = true},  // the copy's bytes
                      QVPlanoFalhas{.iFalharFlush = 1},                              // the copy's sync
                      QVPlanoFalhas{.iFalharAbertura = 1, .bFalharDaiEmDiante = true},  // the copy itself
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

std::string Legado() {
  std::string b;
  for (std::uint32_t c : {1u, 2u, 3u}) {
    const REG_TESTE r = QVTesteRegistro(c);
    b.append(reinterpret_cast<const char*>(&r), sizeof r);
  }
  return b;
}

const Reescrita kReescritas[] = {
    {"compactacao de textos",
     [](CQVTestePasta& p) {
       QVUInt pos = 0;
       ASSERT_EQ(p.Textos()->GravaColecao(pos, kTextosAntigos), S_OK);
     },
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
       QVUInt pos = 0;
       ASSERT_EQ(p.Registros()->GravaColecao(pos, {QVTesteRegistro(1), QVTesteRegistro(2), QVTesteRegistro(3)}), S_OK);
     },
     [](CQVTestePasta& p) { return p.Registros()->SetConteudo({QVTesteRegistro(9)}); },
     [](CQVTestePasta& p, bool bConfirmada) {
       const Codigos codigos = p.Codigos();
       ASSERT_EQ(p.m_hr, S_OK);
       EXPECT_TRUE(codigos == Codigos{9} || (!bConfirmada && codigos == Codigos{1, 2, 3})) << codigos.size();
     }},
    {"cabecalho de arquivo antigo", [](CQVTestePasta& p) { QVTesteGravaBytes(p.Caminho("GEATRPS.dat"), Legado()); },
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
         EXPECT_EQ(QVTesteBytes(p.Caminho("GEATRPS.dat")), Legado());
         std::filesystem::remove(p.Caminho("GEATRPS.tra"));
       }
       EXPECT_EQ(p.Codigos(), (Codigos{1, 2, 3}));
       EXPECT_EQ(p.m_hr, S_OK);
       EXPECT_EQ(QVTesteBytes(p.Caminho("GEATRPS.dat")).substr(240), Legado());
     }},
    {"lista do controle",
     [](CQVTestePasta& p) {
       for (const char* nome : {"GEAtDedu.dat", "GEATPC.dat"}) {
         QVUInt pos = 0;
         ASSERT_EQ(p.Registros(nome)->Grava(pos, QVTesteRegistro(1)), S_OK);
       }
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
