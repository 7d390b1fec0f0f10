// Two processes on one company's files: what one process wrote is seen by
// the other before it writes or answers a read, its unique keys hold, nothing
// is lost; a reader never sees half a write; a compaction killed anywhere
// leaves a file that opens with every acknowledged text.
#include <chrono>
#include <filesystem>
#include <random>
#include <thread>

#include "tests/support/QVArquivoFalho.h"
#include "tests/support/QVProcessoFilho.h"
#include "tests/support/QVTesteArquivos.h"

namespace {

const HRESULT kOcupado = HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION);
const std::uint64_t kMes = QVMesAno(2020, 1);
using CProcesso = CQVTestePasta;

class QVEntreProcessosTest : public ::testing::Test {
 protected:
  // The other process's writes wait for nothing: a file this one holds
  // refuses them at once.
  void SetUp() override { CQVFileBase::DefineTentativasAbertura(2, 1); }
  void TearDown() override { CQVFileBase::DefineTentativasAbertura(500, 10); }

  std::string m_Dir = QVTesteNovoDiretorio("entre");
};

}  // namespace

TEST_F(QVEntreProcessosTest, RegistrosDoOutroProcessoSaoVistosAntesDeLerEDeGravar) {
  // The other process appends a record with the code asked for, or
  // rewrites record 1 keeping its code (negative code), and closes the file.
  // Above kSegura it first holds the file a while, then appends.
  constexpr std::int32_t kSegura = 1000;
  CQVProcessoFilho outro([dir = m_Dir](std::int32_t codigo) {
    CProcesso b(dir);
    auto f = b.Registros();
    if (codigo > kSegura) {
      CQVProcessoFilho::Publica(b.m_hr);
      std::this_thread::sleep_for(std::chrono::milliseconds(30));
      codigo -= kSegura;
    }
    QVUInt pos = codigo < 0 ? 1 : 0;
    return static_cast<std::int32_t>(
        f->Grava(pos, QVTesteRegistro(codigo < 0 ? -codigo : codigo, 0, codigo < 0 ? "reescrito" : "")));
  });
  CProcesso a(m_Dir);
  auto f = a.Registros();  // absent at the load
  ASSERT_EQ(outro.Pede(5), S_OK);
  EXPECT_EQ(f->GetQtdRegistros(), 1u);  // read without being held

  // The other process holds the file, and appends while this one waits to
  // open it for writing: what it appended is seen once the open succeeds.
  CQVFileBase::DefineTentativasAbertura(500, 10);
  ASSERT_TRUE(outro.Envia(kSegura + 6));
  ASSERT_EQ(outro.Resposta(), S_OK);
  EXPECT_EQ(QVTesteAcrescenta(*f, {6}), E_QVCR_CHAVE_DE_INDEXACAO_REPETIDA);
  ASSERT_EQ(outro.Resposta(), S_OK);
  CQVFileBase::DefineTentativasAbertura(2, 1);
  QVUInt pos = 0;
  ASSERT_EQ(f->Grava(pos, QVTesteRegistro(7)), S_OK);
  EXPECT_EQ(pos, 3u);                  // at the end of the file as it is on disk
  EXPECT_EQ(outro.Pede(8), kOcupado);  // held now: the other process is refused
  f.reset();
  EXPECT_EQ(a.Codigos(), (std::vector<std::uint32_t>{5, 6, 7}));

  // A read-only process holds the file open for reading: the other process
  // appends and rewrites in place (same length, same time of change or not),
  // and every read sees it.
  CProcesso leitor(m_Dir, true);
  auto r = leitor.Registros();
  ASSERT_EQ(outro.Pede(9), S_OK);
  ASSERT_EQ(r->GetQtdRegistros(), 4u);
  EXPECT_EQ(r->GetRegistro(4)->lCodigo, 9u);
  ASSERT_EQ(outro.Pede(-5), S_OK);
  EXPECT_STREQ(r->GetRegistro(1)->szNome, "reescrito");
}

// Files let go after each write (several server processes on a company):
// the two processes write in turn, neither refused once the other let go,
// and each reading epoch sees the other's writes, an in-place rewrite that
// leaves length and time of change as they were included.
TEST_F(QVEntreProcessosTest, ArquivosLiberadosGravadosPelosDoisProcessos) {
  CQVProcessoFilho outro([dir = m_Dir](std::int32_t codigo) {
    CProcesso b(dir);
    auto f = b.Registros();
    const std::string sCaminho = b.Caminho("GEATRPS.dat");
    const auto quando = std::filesystem::last_write_time(sCaminho);
    QVUInt pos = codigo < 0 ? 1 : 0;
    const HRESULT hr = f->Grava(pos, QVTesteRegistro(codigo < 0 ? -codigo : codigo, 0, codigo < 0 ? "reescrito" : ""));
    f.reset();
    if (codigo < 0) std::filesystem::last_write_time(sCaminho, quando);
    return static_cast<std::int32_t>(hr);
  });
  CProcesso a(m_Dir, false, true);
  auto f = a.Registros();
  CQVDataBase& db = a.UltimoBanco();
  ASSERT_EQ(QVTesteAcrescenta(*f, {1}), S_OK);
  EXPECT_EQ(outro.Pede(2), kOcupado);  // held from its write until let go
  ASSERT_EQ(f->LiberaGravacao(), S_OK);
  ASSERT_EQ(outro.Pede(2), S_OK);
  db.NovaEpocaLeitura();
  EXPECT_EQ(f->GetQtdRegistros(), 2u);
  ASSERT_EQ(outro.Pede(-1), S_OK);
  EXPECT_STREQ(f->GetRegistro(1)->szNome, "");  // this epoch already looked
  db.NovaEpocaLeitura();
  EXPECT_STREQ(f->GetRegistro(1)->szNome, "reescrito");
  EXPECT_EQ(QVTesteAcrescenta(*f, {2}), E_QVCR_CHAVE_DE_INDEXACAO_REPETIDA);
  ASSERT_EQ(QVTesteAcrescenta(*f, {3}), S_OK);
  ASSERT_EQ(f->LiberaGravacao(), S_OK);
  ASSERT_EQ(outro.Pede(4), S_OK);
  f.reset();
  EXPECT_EQ(a.Codigos(), (std::vector<std::uint32_t>{1, 2, 3, 4}));
}

TEST_F(QVEntreProcessosTest, TextosDoOutroProcessoNaoSaoSobrescritos) {
  // 1: the other process writes two texts; 2: it opens the file for reading
  // and keeps it open; 3: it closes it.
  std::unique_ptr<CProcesso> leitorFilho;
  std::unique_ptr<CQVTextFile> aberto;
  CQVProcessoFilho outro([&, dir = m_Dir](std::int32_t pedido) -> std::int32_t {
    if (pedido == 1) return QVTesteAcrescenta(*CProcesso(dir).Textos(), {"alfa", "beta"});
    if (pedido == 2) {
      leitorFilho = std::make_unique<CProcesso>(dir, true);
      aberto = leitorFilho->Textos();
      return leitorFilho->m_hr;
    }
    aberto.reset();
    return S_OK;
  });
  CProcesso a(m_Dir);
  auto t = a.Textos();
  ASSERT_EQ(outro.Pede(1), S_OK);
  QVUInt pos = 0;
  ASSERT_EQ(t->Grava(pos, "gama"), S_OK);
  EXPECT_EQ(pos, 3u);  // after the other process's texts

  // A compaction while another process has the file open fails, the old
  // file and memory as they were, and succeeds once it is closed.
  ASSERT_EQ(outro.Pede(2), S_OK);
  const std::string antes = QVTesteBytes(a.Caminho("GeAtDsDe.dat"));
  EXPECT_EQ(t->Grava(pos = 1, "a"), kOcupado);
  EXPECT_EQ(QVTesteBytes(a.Caminho("GeAtDsDe.dat")), antes);
  EXPECT_FALSE(std::filesystem::exists(a.Caminho("GeAtDsDe.tra")));
  std::string s;
  ASSERT_EQ(t->Le(1, &s), S_OK);
  EXPECT_EQ(s, "alfa");
  ASSERT_EQ(outro.Pede(3), S_OK);
  ASSERT_EQ(t->Grava(pos = 1, "a"), S_OK);
  t.reset();
  EXPECT_EQ(a.TextosNoDisco(), (std::vector<std::string>{"a", "beta", "gama"}));
}

TEST_F(QVEntreProcessosTest, MesCriadoPeloOutroProcessoEntraNoGrupo) {
  // The other process appends the code to the month, or (negative) to the
  // next month.
  CQVProcessoFilho outro([dir = m_Dir](std::int32_t codigo) {
    CProcesso b(dir);
    QVUInt pos = 0;
    return static_cast<std::int32_t>(
        b.Meses()->GravaColecao(codigo < 0 ? kMes + 1 : kMes, pos, {QVTesteRegistro(codigo < 0 ? -codigo : codigo)}));
  });
  CProcesso a(m_Dir);
  auto g = a.Meses();
  ASSERT_EQ(outro.Pede(5), S_OK);
  bool existe = false;
  QVUInt posicao = 0;
  ASSERT_EQ(g->ExisteIndex(kMes, 0, 5, &existe, &posicao), S_OK);
  EXPECT_TRUE(existe);
  ASSERT_EQ(outro.Pede(6), S_OK);  // read above without being held
  EXPECT_EQ(g->GetChaves(), std::vector<std::uint64_t>{kMes});
  EXPECT_EQ(g->GetQtdRegistros(kMes), 2u);
  QVUInt pos = 0;
  EXPECT_EQ(g->GravaColecao(kMes, pos, {QVTesteRegistro(6)}), E_QVCR_CHAVE_DE_INDEXACAO_REPETIDA);
  ASSERT_EQ(g->GravaColecao(kMes, pos = 0, {QVTesteRegistro(7)}), S_OK);
  EXPECT_EQ(pos, 3u);
  // A write is the first access to the month: its file is loaded first.
  ASSERT_EQ(outro.Pede(-5), S_OK);
  EXPECT_EQ(g->GravaColecao(kMes + 1, pos = 0, {QVTesteRegistro(5)}), E_QVCR_CHAVE_DE_INDEXACAO_REPETIDA);
  ASSERT_EQ(g->GravaColecao(kMes + 1, pos = 0, {QVTesteRegistro(8)}), S_OK);
  EXPECT_EQ(pos, 2u);
}

// A reader of a file another process is appending to never sees data
// without its header (the content lock): every load and every reading again
// succeeds, and every record it sees is whole. The writer's disk is slow, so
// that the reader looks in the middle of its writes.
TEST_F(QVEntreProcessosTest, LeitorNuncaVeEscritaPelaMetade) {
  CQVFileBase::DefineTentativasAbertura(500, 10);  // the reader waits for each write
  constexpr std::int32_t kRegistros = 30;
  CQVProcessoFilho escritor([dir = m_Dir](std::int32_t n) {
    const CQVArquivoFalho discoLento({.iPausaAposEscritaMs = 2});
    CProcesso b(dir);
    auto f = b.Registros();
    for (std::int32_t i = 1; i <= n; ++i) {
      QVUInt pos = 0;
      const HRESULT hr = f->Grava(pos, QVTesteRegistro(i, i * 7));
      if (FAILED(hr)) return static_cast<std::int32_t>(hr);
    }
    return S_OK;
  });
  QVUInt pos = 0;
  ASSERT_EQ(CProcesso(m_Dir).Registros()->Grava(pos, QVTesteRegistro(1000, 7000)), S_OK);
  ASSERT_TRUE(escritor.Envia(kRegistros));
  CProcesso leitor(m_Dir, true);
  auto f = leitor.Registros();
  ASSERT_EQ(leitor.m_hr, S_OK);
  const auto limite = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  QVUInt n = 0;
  while (n < kRegistros + 1 && std::chrono::steady_clock::now() < limite) {
    n = f->GetQtdRegistros();
    for (QVUInt p = 1; p <= n; ++p) {
      REG_TESTE r;
      ASSERT_EQ(f->Le(p, &r), S_OK) << p;
      ASSERT_EQ(r.lGrupo, r.lCodigo * 7) << p;
    }
  }
  EXPECT_EQ(escritor.Resposta(), S_OK);
  EXPECT_EQ(f->GetQtdRegistros(), kRegistros + 1u);
}

// A process killed while it compacts a text file, again and again: the file
// always opens with every text the process had been told was written (or
// the one it was writing).
TEST_F(QVEntreProcessosTest, CompactacaoMortaNoMeioDeixaOArquivoInteiro) {
  constexpr int kTextos = 8;
  constexpr int kComprimento = 400;  // each write shortens one text by one character
  auto texto = [](int p, int versao) { return std::string(kComprimento - versao, static_cast<char>('a' + p)); };
  std::vector<std::string> iniciais;
  for (int p = 0; p < kTextos; ++p) iniciais.push_back(texto(p, 0));
  ASSERT_EQ(QVTesteAcrescenta(*CProcesso(m_Dir).Textos(), iniciais), S_OK);
  std::vector<int> versoes(kTextos, 0);  // acknowledged, per position
  std::mt19937 gerador(20240601);
  int iNoMeio = 0;
  for (int volta = 0; volta < 40 && iNoMeio < 3; ++volta) {
    // The child publishes position * 1000 + version after each write it was
    // told succeeded.
    CQVProcessoFilho filho([&, dir = m_Dir](std::int32_t) -> std::int32_t {
      CProcesso b(dir);
      auto t = b.Textos();
      for (int i = 0;; ++i) {
        const int p = i % kTextos;
        QVUInt posicao = p + 1;
        if (FAILED(t->Grava(posicao, texto(p, versoes[p] + 1)))) return -1;
        CQVProcessoFilho::Publica(p * 1000 + ++versoes[p]);
      }
    });
    ASSERT_TRUE(filho.Envia(0));
    std::this_thread::sleep_for(std::chrono::microseconds(std::uniform_int_distribution<int>(2000, 12000)(gerador)));
    filho.Mata();
    for (std::int32_t r; (r = filho.Resposta()) >= 0;) versoes[r / 1000] = r % 1000;
    iNoMeio += std::filesystem::exists(m_Dir + "/GeAtDsDe.tra");

    const std::vector<std::string> textos = CProcesso(m_Dir).TextosNoDisco();
    ASSERT_EQ(textos.size(), static_cast<std::size_t>(kTextos)) << "volta " << volta;
    for (int p = 0; p < kTextos; ++p) {
      const int versao = kComprimento - static_cast<int>(textos[p].size());
      ASSERT_TRUE(versao == versoes[p] || versao == versoes[p] + 1) << "volta " << volta << " texto " << p;
      ASSERT_EQ(textos[p], texto(p, versao));
      versoes[p] = versao;
    }
  }
  EXPECT_GT(iNoMeio, 0);
}
