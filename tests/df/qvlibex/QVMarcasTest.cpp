#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <string>
#include <vector>

#include "df/qvlibex/CQVArqMarca.h"
#include "df/qvlibex/CQVDatabaseMarca.h"
#include "df/qvlibex/CQVDatabaseMarcaNucleo.h"
#include "df/qvlibex/QVCodigos.h"
#include "platform/QVClock.h"
#include "tests/support/QVProcessoFilho.h"
#include "tests/support/QVTestSupport.h"

namespace {

constexpr std::uint32_t kEsperaMs = 300;

class QVMarcas : public ::testing::Test {
 protected:
  void SetUp() override { CQVArqMarca::DefineEsperaParaTestes(kEsperaMs, 10); }
  void TearDown() override { CQVArqMarca::DefineEsperaParaTestes(CQVArqMarca::kEsperaPadraoMs, 10); }
  const std::string sPasta = QVTesteNovoDiretorio(::testing::UnitTest::GetInstance()->current_test_info()->name());
  const CQVProfilerEmpresa conexao{"EMPRESA", 12, 1};
};

// What a second process does on command: marks (tipo > 0) or unmarks
// (-tipo), one mark object per type.
CQVProcessoFilho::Atende Marcador(const std::string& sPasta) {
  return [marcas = std::make_shared<std::map<std::int32_t, CQVArqMarca>>(), sPasta](std::int32_t pedido) {
    return pedido > 0 ? (*marcas)[pedido].Marca(sPasta, static_cast<std::uint8_t>(pedido), 9, "GE")
                      : (*marcas)[-pedido].Desmarca();
  };
}

std::vector<std::string> Arquivos(const std::string& sPasta) {
  std::vector<std::string> nomes;
  static_cast<void>(QVListDirectory(sPasta, &nomes));
  return nomes;
}

// Runs fn: whether it waited the whole wait for a mark held by someone
// else (and not much longer), rather than ending at once.
bool Esperou(const std::function<void()>& fn) {
  const std::uint64_t inicio = GetTickCount64();
  fn();
  const std::uint64_t ms = GetTickCount64() - inicio;
  EXPECT_LT(ms, kEsperaMs + 2000);
  return ms >= kEsperaMs;
}

}  // namespace

TEST_F(QVMarcas, OutroProcessoSeguraAteDesmarcarOuMorrer) {
  CQVProcessoFilho outro(Marcador(sPasta));
  for (const std::int32_t tipo : {7, 1, 6, 100}) ASSERT_EQ(outro.Pede(tipo), 0) << tipo;

  QVTesteLimpaLog();
  CQVDatabaseMarcaNucleo nucleo;
  EXPECT_TRUE(Esperou(
      [&] { EXPECT_EQ(nucleo.Marca(&conexao, sPasta, MARCA_ATENDIMENTO, "GE"), E_QVDF_MARCA_ATENDIMENTO_OCUPADA); }));
  EXPECT_FALSE(nucleo.EstaMarcado(MARCA_ATENDIMENTO));
  const std::vector<std::string> log = QVTesteLinhasErro();
  ASSERT_EQ(log.size(), 1u);
  EXPECT_NE(log[0].find("\tiRetorno = 16284\t"), std::string::npos) << log[0];

  // Each type's own "held" message; a type without one, "unavailable".
  CQVArqMarca marca;
  for (const auto& [tipo, mensagem] : {std::pair{1, 16225}, {6, 16276}, {100, 17396}})
    EXPECT_EQ(marca.Marca(sPasta, tipo, 12, "GE"), mensagem) << tipo;
  EXPECT_FALSE(marca.EstaMarcado());

  outro.Pede(-MARCA_ATENDIMENTO);
  EXPECT_EQ(nucleo.Marca(&conexao, sPasta, MARCA_ATENDIMENTO, "GE"), S_OK);
  EXPECT_TRUE(nucleo.EstaMarcado(MARCA_ATENDIMENTO));
  // And the other way round.
  EXPECT_EQ(outro.Pede(MARCA_ATENDIMENTO), 16284);

  // A process that ends without unmarking, as a crash would, leaves its
  // files but not its marks: a stale file is taken at once.
  outro.MorreSemFechar();
  EXPECT_EQ(Arquivos(sPasta),
            (std::vector<std::string>{"XXMARCA1.dat", "XXMARCA100.dat", "XXMARCA6.dat", "XXMARCA7.dat"}));
  EXPECT_FALSE(Esperou([&] { EXPECT_EQ(marca.Marca(sPasta, 6, 1, "GE"), 0); }));
}

// Marks through one nucleus, and through a database's mark object, which
// releases only what it marked.
TEST_F(QVMarcas, NoMesmoProcesso) {
  {
    CQVDatabaseMarcaNucleo nucleo;
    CQVDatabaseMarca dono(nucleo, &conexao, sPasta, "GE");
    {
      CQVDatabaseMarca outro(nucleo, &conexao, sPasta, "GE");
      ASSERT_EQ(dono.Marca(MARCA_ATENDIMENTO), S_OK);
      // Marked again through the nucleus: refused at once, the mark stays.
      EXPECT_EQ(outro.Marca(MARCA_ATENDIMENTO), E_QVDF_MARCA_INDISPONIVEL);
      EXPECT_EQ(outro.Desmarca(MARCA_ATENDIMENTO), S_OK);
      ASSERT_EQ(outro.Marca(2), S_OK);
    }  // releases type 2, not the owner's type 7
    EXPECT_TRUE(dono.EstaMarcado(MARCA_ATENDIMENTO));
    EXPECT_FALSE(nucleo.EstaMarcado(2));
    {
      // Another mark object of this process is refused like another process.
      CQVArqMarca outra;
      EXPECT_TRUE(Esperou([&] { EXPECT_EQ(outra.Marca(sPasta, MARCA_ATENDIMENTO, 1, "GE"), 16284); }));
    }  // its unmarking leaves the holder's file alone
    EXPECT_EQ(Arquivos(sPasta), std::vector<std::string>{"XXMARCA7.dat"});

    EXPECT_EQ(nucleo.Desmarca(3), S_OK);
    EXPECT_EQ(dono.Desmarca(MARCA_ATENDIMENTO), S_OK);
    EXPECT_FALSE(nucleo.EstaMarcado(MARCA_ATENDIMENTO));
    EXPECT_TRUE(Arquivos(sPasta).empty());
    ASSERT_EQ(nucleo.Marca(nullptr, sPasta, MARCA_ATENDIMENTO, "GE"), S_OK);
  }  // the nucleus releases what it holds
  CQVArqMarca nova;
  EXPECT_FALSE(Esperou([&] { EXPECT_EQ(nova.Marca(sPasta, MARCA_ATENDIMENTO, 1, "GE"), 0); }));
}

TEST_F(QVMarcas, NomesEFalhasDoSistemaDeArquivos) {
  // <folder>/XXMARCA<type><suffix>.dat; a folder that ends with a separator
  // gets none of its own.
  CQVArqMarca comSufixo, marca;
  ASSERT_EQ(comSufixo.Marca(sPasta + "/", 3, 1, "GE", "_GE"), 0);
  EXPECT_EQ(Arquivos(sPasta), std::vector<std::string>{"XXMARCA3_GE.dat"});
  EXPECT_EQ(marca.Marca(sPasta, 7, 1, "GE", std::string(247 - sPasta.size(), 'x').c_str()), 0);  // 260 in all
  marca.Desmarca();
  EXPECT_EQ(marca.Marca(sPasta, 7, 1, "GE", std::string(248 - sPasta.size(), 'x').c_str()),
            HRESULT_FROM_WIN32(ERROR_FILENAME_EXCED_RANGE));

  // A missing folder ends at once with the platform's status.
  CQVDatabaseMarcaNucleo nucleo;
  EXPECT_FALSE(Esperou([&] {
    EXPECT_EQ(marca.Marca(sPasta + "/falta", 7, 1, "GE"), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(nucleo.Marca(nullptr, sPasta + "/falta", 7, "GE"), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
  }));
  EXPECT_EQ(marca.Marca("", 7, 1, "GE"), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));  // never the root

  // A read-only mark file (which unmarking cannot delete) is waited for,
  // then refused as access denied.
  ASSERT_EQ(marca.Marca(sPasta, 7, 1, "GE"), 0);
  ASSERT_EQ(QVSetReadOnly(sPasta + "/XXMARCA7.dat", true), S_OK);
  marca.Desmarca();
  CQVArqMarca outra;
  EXPECT_TRUE(Esperou([&] { EXPECT_EQ(outra.Marca(sPasta, 7, 1, "GE"), 16080); }));
  ASSERT_EQ(QVSetReadOnly(sPasta + "/XXMARCA7.dat", false), S_OK);
}

// Several processes mark and unmark the same type as fast as they can: at no
// moment may two of them hold it. (An unmark deleting the file while another
// process had just opened it once let a third create a new file and hold
// the "same" mark.)
TEST_F(QVMarcas, NuncaDoisDonosAoMesmoTempo) {
  // Holders right now; times two held at once.
  struct Donos { std::atomic<int> agora, juntos; };
  auto* donos = QVTesteCompartilhado<Donos>();
  const auto disputa = [&](int) {
    for (int i = 0; i < 1000; ++i) {
      CQVArqMarca marca;
      if (marca.Marca(sPasta, MARCA_ATENDIMENTO, 1, "GE") != 0) continue;
      if (donos->agora.fetch_add(1) != 0) donos->juntos.fetch_add(1);
      for (int k = 0; k < 3; ++k) Sleep(0);  // hold it a moment
      donos->agora.fetch_sub(1);
      marca.Desmarca();
    }
    return 0;
  };
  EXPECT_EQ(QVTesteEmProcessos(4, disputa), std::vector<int>(4, 0));
  EXPECT_EQ(donos->juntos.load(), 0);
}
