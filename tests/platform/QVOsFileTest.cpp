#include "platform/QVOsFile.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/wait.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <tuple>

#include "tests/support/QVProcessoFilho.h"
#include "tests/support/QVTestSupport.h"

namespace fs = std::filesystem;

namespace {

// The modes the record store uses, and the mark files'.
constexpr std::int32_t kEscritaCria = 0x3022;
constexpr std::int32_t kEscrita = 0x2022;
constexpr std::int32_t kLeitura = 0x2040;
constexpr std::int32_t kLeituraNegaEscrita = QVFILE_MODE_READ | QVFILE_SHARE_DENY_WRITE | QVFILE_MODE_NO_TRUNCATE;
constexpr std::int32_t kMarca = QVFILE_MODE_READWRITE | QVFILE_SHARE_EXCLUSIVE | QVFILE_MODE_CREATE;
constexpr std::int32_t SV = ERROR_SHARING_VIOLATION;
constexpr std::uint32_t NEGADO = ERROR_ACCESS_DENIED, INVALIDO = ERROR_INVALID_PARAMETER;

void Grava(const std::string& caminho, const std::string& conteudo) {
  std::ofstream(caminho, std::ios::binary | std::ios::trunc) << conteudo;
}

// 0 or the Win32 error of the open; a refused open leaves the object closed.
std::uint32_t ErroAoAbrir(IQVOsFile& arquivo, const std::string& caminho, std::uint32_t flags) {
  const std::uint32_t erro = arquivo.Open(caminho, flags) ? 0 : arquivo.LastError();
  EXPECT_EQ(arquivo.IsOpen(), erro == 0);
  return erro;
}

// Who opens in a sharing case: a file object of its own that opens the
// file with the flags asked for (answering 0 or the Win32 error), or closes
// it (kFecha). Called here, or run by a second process on command.
using Lado = std::function<std::int32_t(std::int32_t)>;
constexpr std::int32_t kFecha = -1;
Lado NovoLado(const std::string& caminho) {
  return [arquivo = std::shared_ptr<IQVOsFile>(QVCreateRealOsFile()), caminho](std::int32_t pedido) {
    if (pedido == kFecha) arquivo->Close();
    return pedido == kFecha ? 0 : static_cast<std::int32_t>(ErroAoAbrir(*arquivo, caminho, pedido));
  };
}

}  // namespace

// Every pair of the modes the system uses, opened by two handles of this
// process, by this process then another, and by the other then this one:
// the result does not depend on where the first handle is. A refused open
// truncates nothing and leaves the first handle's sharing in force (tried
// again, it is refused again); once the first closes, it is accepted.
TEST(QVOsFile, CompartilhamentoEntreHandlesEProcessos) {
  const std::string caminho = QVTesteNovoDiretorio("compartilha") + "/GEATPRJ.DAT";
  CQVProcessoFilho filho(NovoLado(caminho));  // before anything is open here: it would share it
  const Lado a = NovoLado(caminho), b = NovoLado(caminho);
  const Lado outro = [&filho](std::int32_t pedido) { return filho.Pede(pedido); };
  const std::tuple<const char*, const Lado&, const Lado&> arranjos[] = {
      {"mesmo processo", a, b}, {"este e depois outro", a, outro}, {"outro e depois este", outro, b}};
  // The first open's flags, the second's, and the second's result.
  const std::int32_t casos[][3] = {
      {kEscrita, kEscritaCria, SV},         {kEscritaCria, kEscrita, SV},   {kEscritaCria, kLeitura, 0},
      {kLeitura, kEscrita, 0},              {kLeitura, kLeitura, 0},        {kEscrita, kLeituraNegaEscrita, SV},
      {kLeituraNegaEscrita, kEscrita, SV},  {kLeituraNegaEscrita, kLeituraNegaEscrita, 0},
      {kLeitura, kMarca, SV},               {kMarca, kLeitura, SV},         {kMarca, kMarca, SV},
  };
  for (const auto& [nome, primeiro, segundo] : arranjos) {
    for (const auto& [flags1, flags2, erro] : casos) {
      SCOPED_TRACE(::testing::Message() << nome << std::hex << " 0x" << flags1 << " 0x" << flags2);
      Grava(caminho, "conteudo");
      ASSERT_EQ(primeiro(flags1), 0);
      const std::string conteudo = QVTesteLeArquivo(caminho);
      EXPECT_EQ(segundo(flags2), erro);
      EXPECT_EQ(QVTesteLeArquivo(caminho), conteudo);
      segundo(kFecha);
      EXPECT_EQ(segundo(flags2), erro);
      primeiro(kFecha);
      EXPECT_EQ(segundo(flags2), 0);
      segundo(kFecha);
    }
  }

  // Closing one of this process's handles leaves the other's sharing alone;
  // reopening an open object closes it first: it does not conflict with itself.
  ASSERT_EQ(a(kEscrita), 0);
  ASSERT_EQ(b(kLeitura), 0);
  b(kFecha);
  EXPECT_EQ(b(kEscrita), SV);
  EXPECT_EQ(a(kEscrita), 0);
  a(kFecha);

  // A process that dies holding the file does not keep it.
  ASSERT_EQ(outro(kEscrita), 0);
  EXPECT_EQ(a(kEscrita), SV);
  ASSERT_TRUE(WIFEXITED(filho.MorreSemFechar()));
  EXPECT_EQ(a(kEscrita), 0);
}

// Processes race to open: a writer never coexists with another writer
// nor with a reader that denies writing, whatever the interleaving.
TEST(QVOsFile, AberturasConcorrentesRespeitamOCompartilhamento) {
  const std::string caminho = QVTesteNovoDiretorio("corrida") + "/dados.dat";
  Grava(caminho, "x");
  struct Contadores { std::atomic<int> escritores, leitores, violacoes, escritas, leituras; };
  auto* c = QVTesteCompartilhado<Contadores>();
  // Two processes racing flat out hit an unguarded check-then-record window
  // far more often than more processes taking turns on few processors.
  const auto corrida = [&](int p) {
    auto arquivo = QVCreateRealOsFile();
    for (int i = 0; i < 2000; ++i) {
      const bool escritor = (i + p) % 2 == 0;
      if (!arquivo->Open(caminho, escritor ? kEscrita : kLeituraNegaEscrita)) {
        if (arquivo->LastError() != SV) return 3;
        continue;
      }
      // Holding it: a writer must be alone, a reader must see no writer.
      const int comigo = ++(escritor ? c->escritores : c->leitores);
      if (escritor ? comigo != 1 || c->leitores > 0 : c->escritores > 0) ++c->violacoes;
      ++(escritor ? c->escritas : c->leituras);
      sched_yield();
      --(escritor ? c->escritores : c->leitores);
      arquivo->Close();
    }
    return 0;
  };
  EXPECT_EQ(QVTesteEmProcessos(2, corrida), std::vector<int>(2, 0));
  EXPECT_EQ(c->violacoes.load(), 0);
  EXPECT_GT(c->escritas.load(), 0);
  EXPECT_GT(c->leituras.load(), 0);
}

// Every refused open, with its error: none creates or truncates anything.
TEST(QVOsFile, AberturasRecusadasESomenteLeitura) {
  const std::string dir = QVTesteNovoDiretorio("recusas");
  const std::string dados = dir + "/dados.dat", somente = dir + "/somente.dat", falta = dir + "/falta/dados.dat";
  for (const std::string& caminho : {dados, somente}) Grava(caminho, "abc");
  ASSERT_EQ(QVSetReadOnly(somente, true), S_OK);
  EXPECT_TRUE(QVIsReadOnly(somente));
  const std::tuple<std::string, std::uint32_t, std::uint32_t> casos[] = {
      {dir + "/ausente.dat", kEscrita, ERROR_FILE_NOT_FOUND}, {falta, kEscrita, ERROR_PATH_NOT_FOUND},
      {falta, kEscritaCria, ERROR_PATH_NOT_FOUND}, {dir, kLeitura, NEGADO}, {dir, kEscritaCria, NEGADO},
      // Read-only: refused even to the superuser, for any access that writes
      // and for a truncation.
      {somente, kEscrita, NEGADO}, {somente, QVFILE_MODE_WRITE | QVFILE_SHARE_DENY_NONE, NEGADO},
      {somente, QVFILE_MODE_READ | QVFILE_SHARE_DENY_NONE | QVFILE_MODE_CREATE, NEGADO},
      // A reader that denies reading (it could not check its sharing without
      // a race); a missing sharing, an unknown access, unknown bits.
      {dados, QVFILE_MODE_READ | QVFILE_SHARE_EXCLUSIVE, INVALIDO},
      {dados, QVFILE_MODE_READ | QVFILE_SHARE_DENY_READ, INVALIDO}, {dados, QVFILE_MODE_READWRITE, INVALIDO},
      {dados, 0x0003u | QVFILE_SHARE_DENY_NONE, INVALIDO}, {dados, kLeitura | 0x8000u, INVALIDO},
  };
  auto arquivo = QVCreateRealOsFile();
  for (const auto& [caminho, flags, erro] : casos) {
    SCOPED_TRACE(::testing::Message() << caminho << std::hex << " 0x" << flags);
    EXPECT_EQ(ErroAoAbrir(*arquivo, caminho, flags), erro);
  }
  EXPECT_FALSE(QVFileExists(dir + "/ausente.dat"));
  EXPECT_EQ(QVTesteLeArquivo(somente), "abc");
  // Denying reading with a writable handle can be done.
  EXPECT_EQ(ErroAoAbrir(*arquivo, dados, QVFILE_MODE_READWRITE | QVFILE_SHARE_DENY_READ), 0u);
  EXPECT_EQ(ErroAoAbrir(*arquivo, somente, kLeitura), 0u);

  ASSERT_EQ(QVSetReadOnly(somente, false), S_OK);
  EXPECT_FALSE(QVIsReadOnly(somente));
  EXPECT_EQ(fs::status(somente).permissions() & fs::perms::owner_write, fs::perms::owner_write);
  EXPECT_EQ(ErroAoAbrir(*arquivo, somente, kEscrita), 0u);
  EXPECT_EQ(QVTesteLeArquivo(somente), "abc");
}

// Names resolve in their directory without regard to case: the exact name
// wins, otherwise the first match in byte order.
TEST(QVOsFile, NomesSemDistincaoDeCaixaRenomeiaEApaga) {
  const std::string dir = QVTesteNovoDiretorio("nomes");
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
  Grava(dir + "/abc", "");
  Grava(dir + "/ABC", "novo");
  EXPECT_EQ(QVResolvePathCase(dir + "/abc"), dir + "/abc");
  EXPECT_EQ(QVResolvePathCase(dir + "/aBc"), dir + "/ABC");
  EXPECT_EQ(QVResolvePathCase(dir + "/nada"), dir + "/nada");
  EXPECT_EQ(QVResolvePathCase(dir + "/inexistente/abc"), dir + "/inexistente/abc");
  // Names made or removed right after a lookup missed are seen at once
  // (the directory's listing is not trusted within the clock's tick).
  for (int i = 0; i < 3; ++i) {
    const std::string nome = "Mes" + std::to_string(i) + ".DAT";
    EXPECT_FALSE(QVFileExists(dir + "/mes" + std::to_string(i) + ".dat"));
    Grava(dir + "/" + nome, "");
    EXPECT_EQ(QVResolvePathCase(dir + "/MES" + std::to_string(i) + ".dat"), dir + "/" + nome);
    std::filesystem::remove(dir + "/" + nome);
    EXPECT_FALSE(QVFileExists(dir + "/mes" + std::to_string(i) + ".dat"));
  }

  // A rename to another case fixes the name on disk; onto a destination
  // found in another case, it replaces it and keeps the case asked for.
  ASSERT_EQ(QVMoveFile(dir + "/GEATPRJ.DAT", dir + "/GeatPrj.Dat"), S_OK);
  std::vector<std::string> nomes;
  ASSERT_EQ(QVListDirectory(dir, &nomes), S_OK);
  EXPECT_EQ(nomes, (std::vector<std::string>{"ABC", "GeatPrj.Dat", "abc"}));
  EXPECT_EQ(QVTesteLeArquivo(dir + "/GeatPrj.Dat"), "dados");
  ASSERT_EQ(QVMoveFile(dir + "/ABC", dir + "/GEATPRJ.dat"), S_OK);
  EXPECT_EQ(QVTesteLeArquivo(dir + "/GEATPRJ.dat"), "novo");

  // Refused, changing nothing: a missing name or folder; an open file
  // renamed, replaced or deleted; a read-only one replaced or deleted.
  Grava(dir + "/somente.dat", "");
  ASSERT_EQ(QVSetReadOnly(dir + "/somente.dat", true), S_OK);
  ASSERT_EQ(ErroAoAbrir(*arquivo, dir + "/abc", kLeitura), 0u);
  // From, to (none: a deletion), the error.
  const std::tuple<const char*, const char*, std::uint32_t> recusas[] = {
      {"ausente", "x", ERROR_FILE_NOT_FOUND}, {"somente.dat", "falta/x", ERROR_PATH_NOT_FOUND},
      {"abc", "x", SV},                       {"geatprj.dat", "abc", SV},
      {"abc", nullptr, SV},                   {"geatprj.dat", "somente.dat", NEGADO},
      {"somente.dat", nullptr, NEGADO},       {"ausente", nullptr, ERROR_FILE_NOT_FOUND},
      {"falta/x", nullptr, ERROR_PATH_NOT_FOUND}};
  for (const auto& [de, para, erro] : recusas) {
    SCOPED_TRACE(::testing::Message() << de << " -> " << (para != nullptr ? para : "(apagado)"));
    const HRESULT hr = para != nullptr ? QVMoveFile(dir + "/" + de, dir + "/" + para) : QVDeleteFile(dir + "/" + de);
    EXPECT_EQ(hr, HRESULT_FROM_WIN32(erro));
  }
  ASSERT_EQ(QVListDirectory(dir, &nomes), S_OK);
  EXPECT_EQ(nomes, (std::vector<std::string>{"GEATPRJ.dat", "abc", "somente.dat"}));
  arquivo->Close();
  ASSERT_EQ(QVSetReadOnly(dir + "/somente.dat", false), S_OK);
  for (const char* nome : {"/Geatprj.DAT", "/ABC", "/somente.dat"}) EXPECT_EQ(QVDeleteFile(dir + nome), S_OK) << nome;
  ASSERT_EQ(QVListDirectory(dir, &nomes), S_OK);
  EXPECT_TRUE(nomes.empty());
}

TEST(QVOsFile, CriacaoLeituraEscritaETamanho) {
  const std::string dir = QVTesteNovoDiretorio("dados");
  const std::string caminho = dir + "/dados.dat";
  auto arquivo = QVCreateRealOsFile();
  ASSERT_EQ(ErroAoAbrir(*arquivo, caminho, kEscritaCria), 0u);
  // Company data: nothing for others, no writing for the group.
  EXPECT_EQ(fs::status(caminho).permissions() & fs::perms{0027}, fs::perms::none);
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
  // Creating an existing file with NO_TRUNCATE keeps its content.
  ASSERT_EQ(ErroAoAbrir(*arquivo, caminho, kEscritaCria), 0u);
  arquivo->Close();
  EXPECT_EQ(QVTesteLeArquivo(caminho), std::string("0123\0\0", 6));
  // A read-only handle reads but neither writes nor changes the length.
  ASSERT_EQ(ErroAoAbrir(*arquivo, caminho, kLeitura), 0u);
  EXPECT_FALSE(arquivo->Write("x", 1) || arquivo->SetLength(0));
  EXPECT_EQ(arquivo->LastError(), ERROR_ACCESS_DENIED);
  // Without NO_TRUNCATE it is emptied.
  ASSERT_EQ(ErroAoAbrir(*arquivo, caminho, kMarca), 0u);
  arquivo->Close();
  EXPECT_EQ(QVTesteLeArquivo(caminho), "");

  // Every operation on a closed object is refused.
  std::uint64_t n = 0;
  lidos = 99;
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
  EXPECT_EQ(fs::status(base + "/a/b").permissions() & fs::perms{0027}, fs::perms::none);
  for (const char* nome : {"z.dat", "Y.dat", "y.dat"}) Grava(base + "/a/b/" + nome, "");
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
  auto escritor = QVCreateRealOsFile(), leitor = QVCreateRealOsFile(), outro = QVCreateRealOsFile();
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

// Forgetting a file's cached pages changes nothing in it, finds the name in
// any case, and names a missing file or folder as the other operations do.
TEST(QVOsFile, DescarteDoCacheDeArquivo) {
  const std::string dir = QVTesteNovoDiretorio("cache");
  Grava(dir + "/Mes.DAT", "conteudo");
  EXPECT_EQ(QVDropFileCache(dir + "/mes.dat"), S_OK);
  EXPECT_EQ(QVTesteLeArquivo(dir + "/Mes.DAT"), "conteudo");
  EXPECT_EQ(QVDropFileCache(dir + "/falta.dat"), HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(QVDropFileCache(dir + "/falta/mes.dat"), HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND));
}
