#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <new>
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
};

// A second process that marks (tipo > 0) and unmarks (-tipo) on command, one
// mark object per type; Pede(0) ends it without unmarking, as a crash would.
class COutroProcesso {
 public:
  explicit COutroProcesso(const std::string& sPasta)
      : m_Filho([marcas = std::make_shared<std::map<std::int32_t, CQVArqMarca>>(), sPasta](std::int32_t pedido) {
          return pedido > 0 ? (*marcas)[pedido].Marca(sPasta, static_cast<std::uint8_t>(pedido), 9, "GE")
                            : (*marcas)[-pedido].Desmarca();
        }) {}
  std::int32_t Pede(std::int32_t pedido) { return pedido == 0 ? m_Filho.MorreSemFechar() : m_Filho.Pede(pedido); }

 private:
  CQVProcessoFilho m_Filho;
};

std::vector<std::string> Arquivos(const std::string& sPasta) {
  std::vector<std::string> nomes;
  static_cast<void>(QVListDirectory(sPasta, &nomes));
  return nomes;
}

// Runs fn and answers how long it took, in ms.
template <typename F>
std::uint64_t Duracao(F fn) {
  const std::uint64_t inicio = GetTickCount64();
  fn();
  return GetTickCount64() - inicio;
}

}  // namespace

TEST_F(QVMarcas, OutroProcessoSeguraAteDesmarcar) {
  const std::string sPasta = QVTesteNovoDiretorio("marcas_processos");
  COutroProcesso outro(sPasta);
  for (const std::int32_t tipo : {7, 1, 6, 100}) ASSERT_EQ(outro.Pede(tipo), 0) << tipo;

  QVTesteLimpaLog();
  CQVDatabaseMarcaNucleo nucleo;
  const CQVProfilerEmpresa conexao("EMPRESA", 12, 1);
  const std::uint64_t ms = Duracao(
      [&] { EXPECT_EQ(nucleo.Marca(&conexao, sPasta, MARCA_ATENDIMENTO, "GE"), E_QVDF_MARCA_ATENDIMENTO_OCUPADA); });
  EXPECT_GE(ms, kEsperaMs);
  EXPECT_LT(ms, kEsperaMs + 2000);
  EXPECT_FALSE(nucleo.EstaMarcado(MARCA_ATENDIMENTO));
  const std::vector<std::string> log = QVTesteLinhasErro();
  ASSERT_EQ(log.size(), 1u);
  EXPECT_NE(log[0].find("\tiRetorno = 16284\t"), std::string::npos) << log[0];

  CQVArqMarca marca;
  EXPECT_EQ(marca.Marca(sPasta, 1, 12, "GE"), 16225);
  EXPECT_EQ(marca.Marca(sPasta, 6, 12, "GE"), 16276);
  EXPECT_EQ(marca.Marca(sPasta, 100, 12, "GE"), 17396);
  EXPECT_FALSE(marca.EstaMarcado());

  outro.Pede(-MARCA_ATENDIMENTO);
  EXPECT_EQ(nucleo.Marca(&conexao, sPasta, MARCA_ATENDIMENTO, "GE"), S_OK);
  EXPECT_TRUE(nucleo.EstaMarcado(MARCA_ATENDIMENTO));
  // And the other way round.
  EXPECT_EQ(outro.Pede(MARCA_ATENDIMENTO), 16284);
}

TEST_F(QVMarcas, MarcaAbandonadaNaoBloqueiaESeparadorFinal) {
  const std::string sPasta = QVTesteNovoDiretorio("marcas_abandonada");
  COutroProcesso outro(sPasta);
  ASSERT_EQ(outro.Pede(MARCA_ATENDIMENTO), 0);
  outro.Pede(0);  // ends without unmarking, as a crash would
  EXPECT_EQ(Arquivos(sPasta), std::vector<std::string>{"XXMARCA7.dat"});

  // With a trailing separator: the same file, taken at once.
  CQVArqMarca marca;
  EXPECT_LT(Duracao([&] { EXPECT_EQ(marca.Marca(sPasta + "/", MARCA_ATENDIMENTO, 1, "GE"), 0); }), kEsperaMs);
  EXPECT_EQ(Arquivos(sPasta), std::vector<std::string>{"XXMARCA7.dat"});
  EXPECT_EQ(marca.Desmarca(), 0);
  EXPECT_TRUE(Arquivos(sPasta).empty());

  CQVArqMarca comSufixo;
  ASSERT_EQ(comSufixo.Marca(sPasta, 3, 1, "GE", "_GE"), 0);
  EXPECT_EQ(Arquivos(sPasta), std::vector<std::string>{"XXMARCA3_GE.dat"});
}

TEST_F(QVMarcas, NoMesmoProcesso) {
  const std::string sPasta = QVTesteNovoDiretorio("marcas_mesmo");
  const CQVProfilerEmpresa conexao("EMPRESA", 12, 1);
  {
    CQVDatabaseMarcaNucleo nucleo;
    ASSERT_EQ(nucleo.Marca(&conexao, sPasta, MARCA_ATENDIMENTO, "GE"), S_OK);
    // Twice with one object: refused at once, the mark stays.
    EXPECT_EQ(nucleo.Marca(&conexao, sPasta, MARCA_ATENDIMENTO, "GE"), E_QVDF_MARCA_INDISPONIVEL);
    EXPECT_TRUE(nucleo.EstaMarcado(MARCA_ATENDIMENTO));
    {
      // Another object of this process is refused like another process.
      CQVArqMarca outra;
      EXPECT_GE(Duracao([&] { EXPECT_EQ(outra.Marca(sPasta, MARCA_ATENDIMENTO, 1, "GE"), 16284); }), kEsperaMs);
    }  // its unmarking leaves the holder's file alone
    EXPECT_EQ(Arquivos(sPasta), std::vector<std::string>{"XXMARCA7.dat"});

    EXPECT_EQ(nucleo.Desmarca(3), S_OK);
    EXPECT_EQ(nucleo.Desmarca(MARCA_ATENDIMENTO), S_OK);
    EXPECT_FALSE(nucleo.EstaMarcado(MARCA_ATENDIMENTO));
    EXPECT_TRUE(Arquivos(sPasta).empty());
    ASSERT_EQ(nucleo.Marca(nullptr, sPasta, MARCA_ATENDIMENTO, "GE"), S_OK);
  }  // the nucleus releases what it holds
  CQVArqMarca nova;
  EXPECT_LT(Duracao([&] { EXPECT_EQ(nova.Marca(sPasta, MARCA_ATENDIMENTO, 1, "GE"), 0); }), kEsperaMs);

  CQVArqMarca nunca;
  EXPECT_EQ(nunca.Desmarca(), 0);
  EXPECT_FALSE(nunca.EstaMarcado());
}

TEST_F(QVMarcas, DatabaseMarcaLiberaSoOQueMarcou) {
  const std::string sPasta = QVTesteNovoDiretorio("marcas_database");
  const CQVProfilerEmpresa conexao("EMPRESA", 12, 1);
  CQVDatabaseMarcaNucleo nucleo;
  CQVDatabaseMarca dono(nucleo, &conexao, sPasta, "GE");
  {
    CQVDatabaseMarca outro(nucleo, &conexao, sPasta, "GE");
    ASSERT_EQ(dono.Marca(MARCA_ATENDIMENTO), S_OK);
    EXPECT_EQ(outro.Marca(MARCA_ATENDIMENTO), E_QVDF_MARCA_INDISPONIVEL);
    EXPECT_EQ(outro.Desmarca(MARCA_ATENDIMENTO), S_OK);
    ASSERT_EQ(outro.Marca(2), S_OK);
  }  // releases type 2, not the owner's type 7
  EXPECT_TRUE(dono.EstaMarcado(MARCA_ATENDIMENTO));
  EXPECT_FALSE(nucleo.EstaMarcado(2));
  EXPECT_EQ(Arquivos(sPasta), std::vector<std::string>{"XXMARCA7.dat"});
  EXPECT_EQ(dono.Desmarca(MARCA_ATENDIMENTO), S_OK);
  EXPECT_TRUE(Arquivos(sPasta).empty());
}

TEST_F(QVMarcas, FalhasDoSistemaDeArquivos) {
  const std::string sPasta = QVTesteNovoDiretorio("marcas_falhas");
  CQVArqMarca marca;
  CQVDatabaseMarcaNucleo nucleo;
  // A missing folder ends at once with the platform's status.
  EXPECT_LT(Duracao([&] {
              EXPECT_EQ(marca.Marca(sPasta + "/falta", 7, 1, "GE"), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
              EXPECT_EQ(nucleo.Marca(nullptr, sPasta + "/falta", 7, "GE"), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
            }),
            kEsperaMs);
  EXPECT_EQ(marca.Marca(sPasta, 7, 1, "GE", std::string(260, 'x').c_str()),
            HRESULT_FROM_WIN32(ERROR_FILENAME_EXCED_RANGE));
  EXPECT_EQ(marca.Marca("", 7, 1, "GE"), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));  // never the root

  // A read-only mark file (which unmarking cannot delete) is waited for,
  // then refused as access denied.
  ASSERT_EQ(marca.Marca(sPasta, 7, 1, "GE"), 0);
  ASSERT_EQ(QVSetReadOnly(sPasta + "/XXMARCA7.dat", true), S_OK);
  marca.Desmarca();
  CQVArqMarca outra;
  EXPECT_EQ(outra.Marca(sPasta, 7, 1, "GE"), 16080);
  ASSERT_EQ(QVSetReadOnly(sPasta + "/XXMARCA7.dat", false), S_OK);
}

// Several processes mark and unmark the same type as fast as they can: at no
// moment may two of them hold it. (An unmark deleting the file while another
// process had just opened it once let a third create a new file and hold
// the "same" mark.)
TEST_F(QVMarcas, NuncaDoisDonosAoMesmoTempo) {
  const std::string sPasta = QVTesteNovoDiretorio("corrida");
  auto* donos = static_cast<std::atomic<int>*>(
      mmap(nullptr, 2 * sizeof(std::atomic<int>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  ASSERT_NE(donos, MAP_FAILED);
  new (&donos[0]) std::atomic<int>(0);  // holders right now
  new (&donos[1]) std::atomic<int>(0);  // times two held at once
  std::vector<pid_t> filhos;
  for (int p = 0; p < 4; ++p) {
    const pid_t pid = ::fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
      for (int i = 0; i < 1000; ++i) {
        CQVArqMarca marca;
        if (marca.Marca(sPasta, MARCA_ATENDIMENTO, 1, "GE") != 0) continue;
        if (donos[0].fetch_add(1) != 0) donos[1].fetch_add(1);
        for (int k = 0; k < 3; ++k) Sleep(0);  // hold it a moment
        donos[0].fetch_sub(1);
        marca.Desmarca();
      }
      _exit(0);
    }
    filhos.push_back(pid);
  }
  for (pid_t pid : filhos) ::waitpid(pid, nullptr, 0);
  EXPECT_EQ(donos[1].load(), 0);
  munmap(donos, 2 * sizeof(std::atomic<int>));
}
