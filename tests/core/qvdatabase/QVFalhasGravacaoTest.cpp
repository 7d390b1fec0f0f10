// Writes that fail halfway, and crashes: the file is left valid with what its
// callers were told was written, or it is refused at its next open. Never
// silently wrong.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

#include "core/qvdatabase/CQVDataBase.h"
#include "core/qvdatabase/QVFile.h"
#include "core/qvdatabase/QVTextFile.h"
#include "df/qvlibex/QVCodigos.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "tests/support/QVArquivoFalho.h"
#include "tests/support/QVTestSupport.h"
#include "tests/support/QVTesteArquivos.h"

namespace {

std::uint64_t ChaveCodigo(const REG_TESTE& r, QVUInt) { return r.lCodigo; }
const HRESULT kDiscoCheio = HRESULT_FROM_WIN32(ERROR_DISK_FULL);
using Codigos = std::vector<std::uint32_t>;
using Textos = std::vector<std::string>;
const Textos kTextosAntigos{"primeiro texto", "segundo", "terceiro"};
const Textos kTextosNovos{"curto", "segundo", "terceiro"};  // the first one compacted

// The files of one directory, each opened through a database of its own (the
// file-creation control is at work, as in a company's folder).
class CArquivosDoTeste {
 public:
  explicit CArquivosDoTeste(std::string dir) : m_Dir(std::move(dir)) {}
  std::string Caminho(const std::string& nome) const { return m_Dir + "/" + nome; }

  std::unique_ptr<CQVFile<REG_TESTE>> Registros(const std::string& nome = "GEATRPS.dat") {
    auto a = std::make_unique<CQVFile<REG_TESTE>>(nome, QV_GE, std::initializer_list<CQVFile<REG_TESTE>::Indice>{
                                                                    {&ChaveCodigo, false, false}});
    m_hr = a->Inicializa(Banco());
    return a;
  }
  std::unique_ptr<CQVTextFile> Textos() {
    auto a = std::make_unique<CQVTextFile>("GeAtDsDe.dat", QV_GE);
    m_hr = a->Inicializa(Banco());
    return a;
  }
  // What a reopened file holds (nothing when refused; m_hr says why).
  Codigos CodigosNoDisco(const std::string& nome = "GEATRPS.dat") {
    auto a = Registros(nome);
    Codigos codigos;
    for (QVUInt p = 1; p <= a->GetQtdRegistros(); ++p) codigos.push_back(a->GetRegistro(p)->lCodigo);
    return codigos;
  }
  ::Textos TextosNoDisco() {
    auto a = Textos();
    ::Textos textos;
    if (SUCCEEDED(m_hr))
      for (const auto& e : *a->GetPtrRegistros()) textos.push_back(e.sTexto);
    return textos;
  }
  std::vector<std::string> ListaDoControle() {
    CQVTextFile ctrl(QVDATABASE_NOME_ARQUIVO_CONTROLE_CRIACAO_ARQUIVOS, QV_GE);
    EXPECT_EQ(ctrl.Inicializa(Banco()), S_OK);
    std::vector<std::string> nomes;
    for (const auto& e : *ctrl.GetPtrRegistros()) nomes.push_back(e.sTexto);
    return nomes;
  }

  HRESULT m_hr = S_OK;

 private:
  CQVDataBase* Banco() {
    auto& db = m_DBs.emplace_back(std::make_unique<CQVDataBase>(QV_GE));
    db->SetDiretorio(m_Dir);
    EXPECT_EQ(db->Inicializa(&QVTesteIdentidade()), S_OK);
    return db.get();
  }
  std::string m_Dir;
  std::vector<std::unique_ptr<CQVDataBase>> m_DBs;
};

// After a crash every open fails: the open's retries are cut short.
template <class P>
class QVTesteDeFalhas : public ::testing::TestWithParam<P> {
 protected:
  void SetUp() override { CQVFileBase::DefineTentativasAbertura(2, 0); }
  void TearDown() override { CQVFileBase::DefineTentativasAbertura(500, 10); }
};

// ---- one write or flush that fails -----------------------------------------

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
  CArquivosDoTeste arquivos(QVTesteNovoDiretorio("falhas"));
  {
    auto a = arquivos.Registros();
    QVUInt pos = 0;
    ASSERT_EQ(a->GravaColecao(pos, {QVTesteRegistro(1), QVTesteRegistro(2), QVTesteRegistro(3)}), S_OK);
  }
  {
    CQVArquivoFalho falho(GetParam().plano);
    auto a = arquivos.Registros();
    QVUInt pos = GetParam().posicao;
    EXPECT_EQ(a->Grava(pos, QVTesteRegistro(99)), kDiscoCheio);
    EXPECT_EQ(falho.Falhas(), 1);
    EXPECT_EQ(a->GetEstadoDuvida(), S_OK);
    EXPECT_EQ(a->GetRegistro(2)->lCodigo, 2u);  // memory was not changed
    pos = 0;
    EXPECT_EQ(a->Grava(pos, QVTesteRegistro(4)), S_OK);
    EXPECT_EQ(pos, 4u);
  }
  EXPECT_EQ(arquivos.CodigosNoDisco(), (Codigos{1, 2, 3, 4}));
  EXPECT_EQ(arquivos.m_hr, S_OK);
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
  CArquivosDoTeste arquivos(QVTesteNovoDiretorio("duvida"));
  {
    auto a = arquivos.Registros();
    QVUInt pos = 0;
    ASSERT_EQ(a->GravaColecao(pos, {QVTesteRegistro(1), QVTesteRegistro(2)}), S_OK);
  }
  {
    CQVArquivoFalho falho(
        {.iFalharEscrita = 1, .iFalharTamanho = 1, .bEscritaParcial = parcial, .bFalharDaiEmDiante = true});
    auto a = arquivos.Registros();
    QVUInt pos = 0;
    EXPECT_EQ(a->Grava(pos, QVTesteRegistro(3)), kDiscoCheio);
    EXPECT_EQ(a->GetEstadoDuvida(), kDiscoCheio);
    pos = 0;
    EXPECT_EQ(a->Grava(pos, QVTesteRegistro(4)), kDiscoCheio);
    EXPECT_EQ(a->Finaliza(), kDiscoCheio);
  }
  const Codigos codigos = arquivos.CodigosNoDisco();
  if (parcial) {
    EXPECT_EQ(arquivos.m_hr, E_QVCR_TAMANHO_ARQUIVO_NAO_CONFERE);  // half a record behind the header's length
  } else {
    EXPECT_EQ(arquivos.m_hr, S_OK);
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
  CArquivosDoTeste arquivos(QVTesteNovoDiretorio("compactacao"));
  auto a = arquivos.Textos();
  QVUInt pos = 0;
  ASSERT_EQ(a->GravaColecao(pos, kTextosAntigos), S_OK);
  {
    CQVArquivoFalho falho(GetParam());
    pos = 1;
    EXPECT_EQ(a->Grava(pos, "curto"), kDiscoCheio);
  }
  EXPECT_FALSE(std::filesystem::exists(arquivos.Caminho("GeAtDsDe.tra")));
  const bool bReaberturaFalhou = GetParam().iFalharAbertura == 2;
  std::string t;
  ASSERT_EQ(a->Le(1, &t), S_OK);
  EXPECT_EQ(t, bReaberturaFalhou ? "curto" : "primeiro texto");
  pos = 2;
  EXPECT_EQ(a->Grava(pos, "seg"), S_OK);
  a.reset();
  Textos esperados = bReaberturaFalhou ? kTextosNovos : kTextosAntigos;
  esperados[1] = "seg";
  EXPECT_EQ(arquivos.TextosNoDisco(), esperados);
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
// with a crash there. After each crash the files are opened again: every
// file opens (or is refused for a documented reason, and opens once that is
// dealt with), it holds its old content or its new one and nothing else, and
// the new one when the rewrite had answered S_OK.

namespace {

struct Reescrita {
  const char* nome;
  std::function<void(CArquivosDoTeste&)> prepara;
  std::function<HRESULT(CArquivosDoTeste&)> executa;  // its objects are gone when it returns
  // Checks the files after a crash; bConfirmada: the rewrite answered S_OK.
  std::function<void(CArquivosDoTeste&, bool bConfirmada)> verifica;
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
     [](CArquivosDoTeste& a) {
       QVUInt pos = 0;
       ASSERT_EQ(a.Textos()->GravaColecao(pos, kTextosAntigos), S_OK);
     },
     [](CArquivosDoTeste& a) {
       QVUInt pos = 1;
       return a.Textos()->Grava(pos, "curto");
     },
     [](CArquivosDoTeste& a, bool bConfirmada) {
       const Textos textos = a.TextosNoDisco();
       ASSERT_EQ(a.m_hr, S_OK);
       EXPECT_TRUE(textos == kTextosNovos || (!bConfirmada && textos == kTextosAntigos)) << textos[0];
       // A copy a crash left behind does not stop the next compaction.
       QVUInt pos = 2;
       EXPECT_EQ(a.Textos()->Grava(pos, "seg"), S_OK);
       EXPECT_FALSE(std::filesystem::exists(a.Caminho("GeAtDsDe.tra")));
     }},
    {"conteudo inteiro de registros",
     [](CArquivosDoTeste& a) {
       QVUInt pos = 0;
       ASSERT_EQ(a.Registros()->GravaColecao(pos, {QVTesteRegistro(1), QVTesteRegistro(2), QVTesteRegistro(3)}), S_OK);
     },
     [](CArquivosDoTeste& a) { return a.Registros()->SetConteudo({QVTesteRegistro(9)}); },
     [](CArquivosDoTeste& a, bool bConfirmada) {
       const Codigos codigos = a.CodigosNoDisco();
       ASSERT_EQ(a.m_hr, S_OK);
       EXPECT_TRUE(codigos == Codigos{9} || (!bConfirmada && codigos == Codigos{1, 2, 3})) << codigos.size();
     }},
    {"cabecalho de arquivo antigo",
     [](CArquivosDoTeste& a) { QVTesteGravaBytes(a.Caminho("GEATRPS.dat"), Legado()); },
     [](CArquivosDoTeste& a) {
       a.Registros();
       return a.m_hr;
     },
     [](CArquivosDoTeste& a, bool) {
       // A copy left by the crash stops the open, the file untouched, until
       // an administrator removes it.
       if (std::filesystem::exists(a.Caminho("GEATRPS.tra"))) {
         a.CodigosNoDisco();
         EXPECT_EQ(a.m_hr, E_QVCR_ARQUIVO_TRA_ENCONTRADO);
         EXPECT_EQ(QVTesteBytes(a.Caminho("GEATRPS.dat")), Legado());
         std::filesystem::remove(a.Caminho("GEATRPS.tra"));
       }
       EXPECT_EQ(a.CodigosNoDisco(), (Codigos{1, 2, 3}));
       EXPECT_EQ(a.m_hr, S_OK);
       EXPECT_EQ(QVTesteBytes(a.Caminho("GEATRPS.dat")).substr(240), Legado());
     }},
    {"lista do controle",
     [](CArquivosDoTeste& a) {
       for (const char* nome : {"GEAtDedu.dat", "GEATPC.dat"}) {
         QVUInt pos = 0;
         ASSERT_EQ(a.Registros(nome)->Grava(pos, QVTesteRegistro(1)), S_OK);
       }
     },
     [](CArquivosDoTeste& a) { return a.Registros("GEAtDedu.dat")->DeletaArquivo(); },
     [](CArquivosDoTeste& a, bool bConfirmada) {
       // A copy left by the crash would stop the next removal until an
       // administrator removes it; opens never look at it.
       std::filesystem::remove(a.Caminho("QVDATABASE_FILE_CTRL.tra"));
       using Lista = std::vector<std::string>;
       const Lista lista = a.ListaDoControle();
       EXPECT_TRUE(lista == Lista{"GEATPC.dat"} || (!bConfirmada && lista == Lista{"GEAtDedu.dat", "GEATPC.dat"}))
           << lista.size();
       // Nothing is listed and missing: every file opens for writing.
       EXPECT_EQ(a.CodigosNoDisco("GEATPC.dat"), Codigos{1});
       EXPECT_EQ(a.m_hr, S_OK);
       a.CodigosNoDisco("GEAtDedu.dat");
       EXPECT_EQ(a.m_hr, S_OK);
     }},
};

class QVCrashTest : public QVTesteDeFalhas<Reescrita> {};

}  // namespace

TEST_P(QVCrashTest, DeixaOArquivoAntigoOuONovo) {
  const Reescrita& r = GetParam();
  // Set-up and checks run on the double too, without faults: it skips the
  // disk's sync, which only costs time here.
  auto prepara = [&](CArquivosDoTeste& a) {
    const CQVArquivoFalho semFalhas({});
    r.prepara(a);
  };
  int iOperacoes = 0;
  {
    CArquivosDoTeste a(QVTesteNovoDiretorio("contagem"));
    prepara(a);
    const CQVArquivoFalho contador({});
    ASSERT_EQ(r.executa(a), S_OK);
    iOperacoes = contador.Operacoes();
  }
  ASSERT_GT(iOperacoes, 3);
  for (int i = 1; i <= iOperacoes; ++i) {
    SCOPED_TRACE("crash na operacao " + std::to_string(i) + " de " + std::to_string(iOperacoes));
    CArquivosDoTeste a(QVTesteNovoDiretorio("crash"));
    prepara(a);
    HRESULT hr = S_OK;
    {
      const CQVArquivoFalho falho({.iCrashNaOperacao = i});
      hr = r.executa(a);
      ASSERT_TRUE(falho.Caiu());
    }
    const CQVArquivoFalho semFalhas({});
    r.verifica(a, SUCCEEDED(hr));
  }
}

INSTANTIATE_TEST_SUITE_P(Reescritas, QVCrashTest, ::testing::ValuesIn(kReescritas));
