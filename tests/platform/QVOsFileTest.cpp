#include "platform/QVOsFile.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <fstream>

#include "tests/support/QVProcessoFilho.h"
#include "tests/support/QVTestSupport.h"

namespace {

// The modes the record store uses, and the mark files'.
constexpr std::uint32_t kEscritaCria = 0x3022;
constexpr std::uint32_t kEscrita = 0x2022;
constexpr std::uint32_t kLeitura = 0x2040;
constexpr std::uint32_t kMarca = QVFILE_MODE_READWRITE | QVFILE_SHARE_EXCLUSIVE | QVFILE_MODE_CREATE;

void Grava(const std::string& caminho, const std::string& conteudo) {
  std::ofstream(caminho, std::ios::binary | std::ios::trunc) << conteudo;
}

// 0 or the Win32 error of the open.
std::uint32_t ErroAoAbrir(IQVOsFile& arquivo, const std::string& caminho, std::uint32_t flags) {
  return arquivo.Open(caminho, flags) ? 0 : arquivo.LastError();
}

// A second process that opens the file on command with its own file object
// (answering 0 or the Win32 error) or closes it.
class COutroProcesso {
 public:
  explicit COutroProcesso(const std::string& caminho)
      : m_Filho([arquivo = std::shared_ptr<IQVOsFile>(QVCreateRealOsFile()), caminho](std::int32_t pedido) {
          if (pedido == kFecha) {
            arquivo->Close();
            return 0;
          }
          return static_cast<std::int32_t>(ErroAoAbrir(*arquivo, caminho, static_cast<std::uint32_t>(pedido)));
        }) {}
  std::uint32_t Abre(std::uint32_t flags) {
    return static_cast<std::uint32_t>(m_Filho.Pede(static_cast<std::int32_t>(flags)));
  }
  void Fecha() { m_Filho.Pede(kFecha); }
  // Ends the process with the file still open; its exit status.
  int MorreSemFechar() { return m_Filho.MorreSemFechar(); }

 private:
  static constexpr std::int32_t kFecha = -1;
  CQVProcessoFilho m_Filho;
};

}  // namespace

TEST(QVOsFile, CompartilhamentoEntreProcessosEProcessoQueMorre) {
  const std::string caminho = QVTesteNovoDiretorio("entre") + "/GEATPRJ.DAT";
  COutroProcesso outro(caminho);
  auto arquivo = QVCreateRealOsFile();

  // Read-write denying write: another writer is refused, a reader is not.
  ASSERT_EQ(ErroAoAbrir(*arquivo, caminho, kEscritaCria), 0u);
  EXPECT_EQ(outro.Abre(kEscrita), ERROR_SHARING_VIOLATION);
  EXPECT_EQ(outro.Abre(kEscritaCria), ERROR_SHARING_VIOLATION);
  EXPECT_EQ(outro.Abre(kLeitura), 0u);
  outro.Fecha();
  arquivo->Close();
  EXPECT_EQ(outro.Abre(kEscrita), 0u);

  // The other way round, and a reader does not keep a writer out.
  EXPECT_EQ(ErroAoAbrir(*arquivo, caminho, kEscrita), ERROR_SHARING_VIOLATION);
  EXPECT_FALSE(arquivo->IsOpen());
  ASSERT_EQ(ErroAoAbrir(*arquivo, caminho, kLeitura), 0u);
  outro.Fecha();
  EXPECT_EQ(outro.Abre(kEscritaCria), 0u);
  // A reader that denies writing is refused while a writer is open.
  EXPECT_EQ(ErroAoAbrir(*arquivo, caminho, QVFILE_MODE_READ | QVFILE_SHARE_DENY_WRITE), ERROR_SHARING_VIOLATION);

  // A process that dies holding the file does not keep it.
  EXPECT_EQ(ErroAoAbrir(*arquivo, caminho, kEscrita), ERROR_SHARING_VIOLATION);
  ASSERT_TRUE(WIFEXITED(outro.MorreSemFechar()));
  EXPECT_EQ(ErroAoAbrir(*arquivo, caminho, kEscrita), 0u);
}

TEST(QVOsFile, CompartilhamentoNoMesmoProcesso) {
  const std::string caminho = QVTesteNovoDiretorio("mesmo") + "/dados.dat";
  auto a = QVCreateRealOsFile();
  auto b = QVCreateRealOsFile();
  ASSERT_EQ(ErroAoAbrir(*a, caminho, kEscritaCria), 0u);
  EXPECT_EQ(ErroAoAbrir(*b, caminho, kEscrita), ERROR_SHARING_VIOLATION);
  EXPECT_EQ(ErroAoAbrir(*b, caminho, kLeitura), 0u);
  // Closing one handle leaves the other's sharing in force.
  b->Close();
  EXPECT_EQ(ErroAoAbrir(*b, caminho, kEscrita), ERROR_SHARING_VIOLATION);
  a->Close();
  EXPECT_EQ(ErroAoAbrir(*b, caminho, kEscrita), 0u);
  // Reopening an open object closes it first: it does not conflict with itself.
  EXPECT_EQ(ErroAoAbrir(*b, caminho, kEscrita), 0u);
}

TEST(QVOsFile, ExclusivoRecusaETruncaSoQuandoAceito) {
  const std::string caminho = QVTesteNovoDiretorio("exclusivo") + "/marca.mrk";
  Grava(caminho, "conteudo");
  COutroProcesso outro(caminho);
  auto leitor = QVCreateRealOsFile();
  auto marca = QVCreateRealOsFile();
  ASSERT_EQ(ErroAoAbrir(*leitor, caminho, kLeitura), 0u);
  EXPECT_EQ(ErroAoAbrir(*marca, caminho, kMarca), ERROR_SHARING_VIOLATION);
  EXPECT_EQ(QVTesteLeArquivo(caminho), "conteudo");  // refused: not truncated

  leitor->Close();
  ASSERT_EQ(ErroAoAbrir(*marca, caminho, kMarca), 0u);
  EXPECT_EQ(QVTesteLeArquivo(caminho), "");
  EXPECT_EQ(ErroAoAbrir(*leitor, caminho, kLeitura), ERROR_SHARING_VIOLATION);
  EXPECT_EQ(outro.Abre(kLeitura), ERROR_SHARING_VIOLATION);
  EXPECT_EQ(outro.Abre(kMarca), ERROR_SHARING_VIOLATION);
  marca->Close();
  EXPECT_EQ(outro.Abre(kLeitura), 0u);
}

// Processes race to open: a writer never coexists with another writer
// nor with a reader that denies writing, whatever the interleaving.
TEST(QVOsFile, AberturasConcorrentesRespeitamOCompartilhamento) {
  const std::string caminho = QVTesteNovoDiretorio("corrida") + "/dados.dat";
  Grava(caminho, "x");
  struct Contadores {
    std::atomic<int> escritores, leitores, violacoes, escritas, leituras;
  };
  void* memoria = ::mmap(nullptr, sizeof(Contadores), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memoria, MAP_FAILED);
  auto* c = new (memoria) Contadores{};
  // Two processes racing flat out hit an unguarded check-then-record window
  // far more often than more processes taking turns on few processors.
  constexpr int kProcessos = 2;
  constexpr int kVoltas = 2000;
  constexpr std::uint32_t kLeituraNegaEscrita = QVFILE_MODE_READ | QVFILE_SHARE_DENY_WRITE | QVFILE_MODE_NO_TRUNCATE;
  pid_t filhos[kProcessos];
  for (int p = 0; p < kProcessos; ++p) {
    filhos[p] = ::fork();
    if (filhos[p] != 0) continue;
    auto arquivo = QVCreateRealOsFile();
    for (int i = 0; i < kVoltas; ++i) {
      const bool escritor = (i + p) % 2 == 0;
      if (!arquivo->Open(caminho, escritor ? kEscrita : kLeituraNegaEscrita)) {
        if (arquivo->LastError() != ERROR_SHARING_VIOLATION) ::_exit(3);
        continue;
      }
      if (escritor) {
        if (++c->escritores != 1 || c->leitores > 0) ++c->violacoes;
        ++c->escritas;
        sched_yield();
        --c->escritores;
      } else {
        ++c->leitores;
        if (c->escritores > 0) ++c->violacoes;
        ++c->leituras;
        sched_yield();
        --c->leitores;
      }
      arquivo->Close();
    }
    ::_exit(0);
  }
  for (pid_t filho : filhos) {
    int status = -1;
    ::waitpid(filho, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  EXPECT_EQ(c->violacoes.load(), 0);
  EXPECT_GT(c->escritas.load(), 0);
  EXPECT_GT(c->leituras.load(), 0);
  ::munmap(memoria, sizeof(Contadores));
}

TEST(QVOsFile, FlagsInvalidos) {
  const std::string caminho = QVTesteNovoDiretorio("flags") + "/dados.dat";
  Grava(caminho, "abc");
  auto arquivo = QVCreateRealOsFile();
  // A reader that denies reading is refused outright; so are a missing
  // sharing, an unknown access and unknown bits.
  for (std::uint32_t flags : {QVFILE_MODE_READ | QVFILE_SHARE_EXCLUSIVE, QVFILE_MODE_READ | QVFILE_SHARE_DENY_READ,
                              QVFILE_MODE_READWRITE, 0x0003u | QVFILE_SHARE_DENY_NONE, kLeitura | 0x8000u}) {
    EXPECT_EQ(ErroAoAbrir(*arquivo, caminho, flags), ERROR_INVALID_PARAMETER) << std::hex << flags;
  }
  // With a writable handle it can be done.
  EXPECT_EQ(ErroAoAbrir(*arquivo, caminho, QVFILE_MODE_READWRITE | QVFILE_SHARE_DENY_READ), 0u);
}

TEST(QVOsFile, NomesSemDistincaoDeCaixa) {
  const std::string dir = QVTesteNovoDiretorio("caixa");
  Grava(dir + "/geatprj.DAT", "dados");
  auto arquivo = QVCreateRealOsFile();
  ASSERT_EQ(ErroAoAbrir(*arquivo, dir + "/GEATPRJ.dat", kEscritaCria), 0u);
  EXPECT_EQ(arquivo->Path(), dir + "/geatprj.DAT");
  std::uint64_t tamanho = 0;
  ASSERT_TRUE(arquivo->GetLength(&tamanho));
  EXPECT_EQ(tamanho, 5u);  // the existing file, not a new one
  arquivo->Close();
  EXPECT_TRUE(QVFileExists(dir + "/GeatPrj.Dat"));
  EXPECT_FALSE(QVFileExists(dir + "/geatprj.da"));
  EXPECT_FALSE(QVFileExists(dir));

  // The exact name wins; otherwise the first match in byte order.
  Grava(dir + "/abc", "");
  Grava(dir + "/ABC", "");
  EXPECT_EQ(QVResolvePathCase(dir + "/abc"), dir + "/abc");
  EXPECT_EQ(QVResolvePathCase(dir + "/aBc"), dir + "/ABC");
  EXPECT_EQ(QVResolvePathCase(dir + "/nada"), dir + "/nada");
  EXPECT_EQ(QVResolvePathCase(dir + "/inexistente/abc"), dir + "/inexistente/abc");

  // Renaming to another case fixes the name on disk.
  ASSERT_EQ(QVMoveFile(dir + "/GEATPRJ.DAT", dir + "/GeatPrj.Dat"), S_OK);
  std::vector<std::string> nomes;
  ASSERT_EQ(QVListDirectory(dir, &nomes), S_OK);
  EXPECT_EQ(nomes, (std::vector<std::string>{"ABC", "GeatPrj.Dat", "abc"}));
  EXPECT_EQ(QVTesteLeArquivo(dir + "/GeatPrj.Dat"), "dados");
}

TEST(QVOsFile, RenomeiaEApaga) {
  const std::string dir = QVTesteNovoDiretorio("renomeia");
  Grava(dir + "/novo.tmp", "novo");
  Grava(dir + "/destino.dat", "antigo");
  // Replaces a destination found in another case, keeping the case asked for.
  ASSERT_EQ(QVMoveFile(dir + "/NOVO.TMP", dir + "/Destino.dat"), S_OK);
  std::vector<std::string> nomes;
  ASSERT_EQ(QVListDirectory(dir, &nomes), S_OK);
  EXPECT_EQ(nomes, std::vector<std::string>{"Destino.dat"});
  EXPECT_EQ(QVTesteLeArquivo(dir + "/Destino.dat"), "novo");

  EXPECT_EQ(QVMoveFile(dir + "/ausente", dir + "/x"), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(QVMoveFile(dir + "/destino.dat", dir + "/falta/x"), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));

  // An open file is neither renamed, replaced nor deleted; nor is a read-only one.
  Grava(dir + "/outro.dat", "outro");
  auto arquivo = QVCreateRealOsFile();
  ASSERT_EQ(ErroAoAbrir(*arquivo, dir + "/destino.dat", kLeitura), 0u);
  EXPECT_EQ(QVMoveFile(dir + "/destino.dat", dir + "/y"), HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION));
  EXPECT_EQ(QVMoveFile(dir + "/outro.dat", dir + "/destino.dat"), HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION));
  EXPECT_EQ(QVDeleteFile(dir + "/destino.dat"), HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION));
  arquivo->Close();
  ASSERT_EQ(QVSetReadOnly(dir + "/destino.dat", true), S_OK);
  EXPECT_EQ(QVMoveFile(dir + "/outro.dat", dir + "/destino.dat"), HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED));
  EXPECT_EQ(QVDeleteFile(dir + "/destino.dat"), HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED));
  ASSERT_EQ(QVSetReadOnly(dir + "/destino.dat", false), S_OK);

  EXPECT_EQ(QVDeleteFile(dir + "/DESTINO.DAT"), S_OK);
  EXPECT_FALSE(QVFileExists(dir + "/destino.dat"));
  EXPECT_EQ(QVDeleteFile(dir + "/destino.dat"), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(QVDeleteFile(dir + "/falta/x"), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
}

TEST(QVOsFile, AtributoSomenteLeitura) {
  const std::string caminho = QVTesteNovoDiretorio("somente") + "/dados.dat";
  Grava(caminho, "abc");
  ASSERT_EQ(QVSetReadOnly(caminho, true), S_OK);
  EXPECT_TRUE(QVIsReadOnly(caminho));
  auto arquivo = QVCreateRealOsFile();
  // Refused even to the superuser, for any access that writes.
  EXPECT_EQ(ErroAoAbrir(*arquivo, caminho, kEscrita), ERROR_ACCESS_DENIED);
  EXPECT_EQ(ErroAoAbrir(*arquivo, caminho, QVFILE_MODE_WRITE | QVFILE_SHARE_DENY_NONE), ERROR_ACCESS_DENIED);
  EXPECT_EQ(ErroAoAbrir(*arquivo, caminho, QVFILE_MODE_READ | QVFILE_SHARE_DENY_NONE | QVFILE_MODE_CREATE),
            ERROR_ACCESS_DENIED);  // it would truncate
  ASSERT_EQ(ErroAoAbrir(*arquivo, caminho, kLeitura), 0u);
  arquivo->Close();

  ASSERT_EQ(QVSetReadOnly(caminho, false), S_OK);
  EXPECT_FALSE(QVIsReadOnly(caminho));
  struct stat st {};
  ASSERT_EQ(::stat(caminho.c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 0200, 0200u);
  EXPECT_EQ(ErroAoAbrir(*arquivo, caminho, kEscrita), 0u);
  EXPECT_EQ(QVTesteLeArquivo(caminho), "abc");
}

TEST(QVOsFile, LeituraEscritaETamanho) {
  const std::string caminho = QVTesteNovoDiretorio("dados") + "/dados.dat";
  auto arquivo = QVCreateRealOsFile();
  ASSERT_EQ(ErroAoAbrir(*arquivo, caminho, kEscritaCria), 0u);
  ASSERT_TRUE(arquivo->Write("0123456789", 10));
  char buf[16] = {};
  std::size_t lidos = 0;
  // Reads move the position as far as they got; the end reads nothing.
  ASSERT_TRUE(arquivo->Seek(7) && arquivo->Read(buf, sizeof buf, &lidos));
  EXPECT_EQ(std::string(buf, lidos), "789");
  ASSERT_TRUE(arquivo->Read(buf, sizeof buf, &lidos));
  EXPECT_EQ(lidos, 0u);
  // Shrinking and growing; the grown part reads as zeros.
  ASSERT_TRUE(arquivo->SetLength(4) && arquivo->SetLength(6) && arquivo->Flush());
  arquivo->Close();
  EXPECT_EQ(QVTesteLeArquivo(caminho), std::string("0123\0\0", 6));
  // A read-only handle reads but neither writes nor changes the length.
  ASSERT_EQ(ErroAoAbrir(*arquivo, caminho, kLeitura), 0u);
  EXPECT_FALSE(arquivo->Write("x", 1) || arquivo->SetLength(0));
  EXPECT_EQ(arquivo->LastError(), ERROR_ACCESS_DENIED);
}

TEST(QVOsFile, CriacaoTruncamentoEErrosDeAbertura) {
  const std::string dir = QVTesteNovoDiretorio("cria");
  const std::string caminho = dir + "/dados.dat";
  auto arquivo = QVCreateRealOsFile();
  EXPECT_EQ(ErroAoAbrir(*arquivo, caminho, kEscrita), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(ErroAoAbrir(*arquivo, dir + "/falta/dados.dat", kEscrita), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(ErroAoAbrir(*arquivo, dir + "/falta/dados.dat", kEscritaCria), ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(ErroAoAbrir(*arquivo, dir, kLeitura), ERROR_ACCESS_DENIED);
  EXPECT_EQ(ErroAoAbrir(*arquivo, dir, kEscritaCria), ERROR_ACCESS_DENIED);

  ASSERT_EQ(ErroAoAbrir(*arquivo, dir + "/novo.dat", kEscritaCria), 0u);
  struct stat st {};
  ASSERT_EQ(::stat((dir + "/novo.dat").c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 0027, 0u);  // company data: nothing for others, no writing for the group
  Grava(caminho, "abc");
  ASSERT_EQ(ErroAoAbrir(*arquivo, caminho, kEscritaCria), 0u);  // NO_TRUNCATE keeps the content
  arquivo->Close();
  EXPECT_EQ(QVTesteLeArquivo(caminho), "abc");
  ASSERT_EQ(ErroAoAbrir(*arquivo, caminho, QVFILE_MODE_READWRITE | QVFILE_SHARE_DENY_WRITE | QVFILE_MODE_CREATE), 0u);
  arquivo->Close();
  EXPECT_EQ(QVTesteLeArquivo(caminho), "");

  // Every operation on a closed object is refused.
  char buf[4];
  std::size_t lidos = 99;
  std::uint64_t n = 0;
  EXPECT_FALSE(arquivo->Read(buf, 4, &lidos));
  EXPECT_EQ(lidos, 0u);
  EXPECT_FALSE(arquivo->Write(buf, 4) || arquivo->Seek(0) || arquivo->SeekToEnd(&n) || arquivo->GetLength(&n) ||
               arquivo->SetLength(0) || arquivo->Flush());
  EXPECT_EQ(arquivo->LastError(), ERROR_INVALID_HANDLE);
}

TEST(QVOsFile, DiretoriosEListagem) {
  const std::string base = QVTesteNovoDiretorio("diretorios");
  ASSERT_EQ(QVCreateDirectories(base + "/a/b/c"), S_OK);
  ASSERT_EQ(QVCreateDirectories(base + "/a/b/c"), S_OK);  // existing is fine
  struct stat st {};
  ASSERT_EQ(::stat((base + "/a/b").c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 0027, 0u);
  Grava(base + "/a/b/z.dat", "");
  Grava(base + "/a/b/Y.dat", "");
  Grava(base + "/a/b/y.dat", "");
  std::vector<std::string> nomes{"lixo"};
  ASSERT_EQ(QVListDirectory(base + "/a/b", &nomes), S_OK);
  EXPECT_EQ(nomes, (std::vector<std::string>{"Y.dat", "y.dat", "z.dat"}));  // no directory "c"
  EXPECT_EQ(QVCreateDirectories(base + "/a/b/z.dat"), HRESULT_FROM_WIN32(ERROR_ALREADY_EXISTS));
  EXPECT_EQ(QVCreateDirectories(base + "/a/b/z.dat/d"), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
  EXPECT_EQ(QVListDirectory(base + "/falta", &nomes), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
  EXPECT_EQ(QVSyncDirectory(base + "/a"), S_OK);
  EXPECT_EQ(QVSyncDirectory(base + "/falta"), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
}


// The content lock: readers share it, a writer has it alone (two handles of
// one process conflict as two processes do), a wait is bounded. The identity
// tells a changed length and a replaced file from the file that was read.
TEST(QVOsFile, TravaDeConteudoEIdentidade) {
  const std::string dir = QVTesteNovoDiretorio("trava");
  const std::string caminho = dir + "/dados.dat";
  auto escritor = QVCreateRealOsFile();
  auto leitor = QVCreateRealOsFile();
  auto outro = QVCreateRealOsFile();
  ASSERT_EQ(ErroAoAbrir(*escritor, caminho, kEscritaCria), 0u);
  ASSERT_EQ(ErroAoAbrir(*leitor, caminho, kLeitura), 0u);
  ASSERT_EQ(ErroAoAbrir(*outro, caminho, kLeitura), 0u);
  ASSERT_TRUE(leitor->LockContent(false, 0) && outro->LockContent(false, 0));
  EXPECT_FALSE(escritor->LockContent(true, 5));
  EXPECT_EQ(escritor->LastError(), ERROR_LOCK_VIOLATION);
  leitor->UnlockContent();
  outro->Close();  // releases its share
  ASSERT_TRUE(escritor->LockContent(true, 0));
  EXPECT_FALSE(leitor->LockContent(false, 0));

  QVFileIdentity antes, depois;
  ASSERT_TRUE(leitor->GetIdentity(&antes) && escritor->Write("abc", 3));
  leitor->Close();
  escritor->Close();
  ASSERT_EQ(QVGetFileIdentity(caminho, &depois), S_OK);
  EXPECT_EQ(depois.uiLength, 3u);
  EXPECT_EQ(depois.uiInode, antes.uiInode);
  Grava(dir + "/copia.tra", "abc");
  ASSERT_EQ(QVMoveFile(dir + "/copia.tra", caminho), S_OK);
  ASSERT_EQ(QVGetFileIdentity(caminho, &antes), S_OK);
  EXPECT_NE(antes.uiInode, depois.uiInode);
  ASSERT_EQ(QVGetFileIdentity(dir + "/ausente.dat", &antes), S_OK);
  EXPECT_FALSE(antes.bExists);
}
