// The record store against the bare system calls it is built on:
//  - loading a 100 MB record file against one sequential read of its bytes;
//  - appending / rewriting one record with its flush against pwrite +
//    fdatasync of the same bytes;
//  - an index look-up;
//  - a text that grows (append) and one that shrinks (compaction) in a file
//    of 100,000 texts.
// Files live under $ZELKORIN_BENCH_DIR (default /var/tmp/zelkorin-bench):
// the flush figures mean something only on a real disk.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "core/qvdatabase/CQVDataBase.h"
#include "core/qvdatabase/QVFile.h"
#include "core/qvdatabase/QVTextFile.h"

namespace {

struct REG_BENCH {
  std::uint32_t lCodigo;
  std::uint8_t resto[508];
};
static_assert(sizeof(REG_BENCH) == 512);

std::uint64_t ChaveCodigo(const REG_BENCH& r, QVUInt) { return r.lCodigo; }

std::string Diretorio() {
  const char* env = std::getenv("ZELKORIN_BENCH_DIR");
  std::string d = env != nullptr && *env != '\0' ? env : "/var/tmp/zelkorin-bench";
  std::filesystem::create_directories(d);
  return d;
}

const CQVProfilerEmpresa& Identidade() {
  static const CQVProfilerEmpresa id("BENCH", 1, 1);
  return id;
}

template <class F>
std::unique_ptr<F> Abre(std::unique_ptr<F> f) {
  f->SetDiretorio(Diretorio());
  if (FAILED(f->Inicializa(&Identidade()))) std::abort();
  return f;
}

std::unique_ptr<CQVFile<REG_BENCH>> ArquivoRegistros(const std::string& nome) {
  return Abre(std::make_unique<CQVFile<REG_BENCH>>(
      nome, 0, std::initializer_list<CQVFile<REG_BENCH>::Indice>{{&ChaveCodigo, false, false}}));
}

// A file of n records with codes 1..n, made once.
void PreparaRegistros(const std::string& nome, std::size_t n) {
  const std::string caminho = Diretorio() + "/" + nome;
  if (std::filesystem::exists(caminho) && std::filesystem::file_size(caminho) == 240 + n * sizeof(REG_BENCH)) return;
  std::filesystem::remove(caminho);
  auto f = ArquivoRegistros(nome);
  std::vector<REG_BENCH> lote(4096);
  for (std::size_t i = 0; i < n; i += lote.size()) {
    const std::size_t k = std::min(lote.size(), n - i);
    for (std::size_t j = 0; j < k; ++j) {
      std::memset(&lote[j], 0x5A, sizeof lote[j]);
      lote[j].lCodigo = static_cast<std::uint32_t>(i + j + 1);
    }
    lote.resize(k);
    QVUInt pos = 0;
    if (FAILED(f->GravaColecao(pos, lote))) std::abort();
    lote.resize(4096);
  }
}

constexpr std::size_t k100MB = 100u * 1024 * 1024 / sizeof(REG_BENCH);  // 204,800 records

}  // namespace

static void BM_CargaArquivoRegistros100MB(benchmark::State& state) {
  PreparaRegistros("CARGA.dat", k100MB);
  for (auto _ : state) {
    auto f = ArquivoRegistros("CARGA.dat");
    benchmark::DoNotOptimize(f->GetQtdRegistros());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * k100MB * sizeof(REG_BENCH)));
}
BENCHMARK(BM_CargaArquivoRegistros100MB)->Unit(benchmark::kMillisecond);

static void BM_LeituraSequencial100MB(benchmark::State& state) {
  PreparaRegistros("CARGA.dat", k100MB);
  const std::string caminho = Diretorio() + "/CARGA.dat";
  std::vector<char> buffer(k100MB * sizeof(REG_BENCH) + 240);
  for (auto _ : state) {
    const int fd = open(caminho.c_str(), O_RDONLY);
    std::size_t lido = 0;
    for (ssize_t n; (n = read(fd, buffer.data() + lido, buffer.size() - lido)) > 0;) lido += static_cast<std::size_t>(n);
    close(fd);
    benchmark::DoNotOptimize(lido);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * k100MB * sizeof(REG_BENCH)));
}
BENCHMARK(BM_LeituraSequencial100MB)->Unit(benchmark::kMillisecond);

// Argument: 0 = header updated at every flush, 1 = deferred to the end.
static void BM_AnexaRegistroComFlush(benchmark::State& state) {
  std::filesystem::remove(Diretorio() + "/ANEXA.dat");
  CQVDataBase db;
  db.SetDiretorio(Diretorio());
  db.SetAtualizacaoCabecalhoAdiada(state.range(0) != 0);
  if (FAILED(db.Inicializa(&Identidade()))) std::abort();
  CQVFile<REG_BENCH> f("ANEXA.dat", 0, {{&ChaveCodigo, false, false}});
  if (FAILED(f.Inicializa(&db))) std::abort();
  REG_BENCH r{};
  std::uint32_t codigo = 0;
  for (auto _ : state) {
    r.lCodigo = ++codigo;
    QVUInt pos = 0;
    if (FAILED(f.Grava(pos, r))) state.SkipWithError("Grava");
  }
}
BENCHMARK(BM_AnexaRegistroComFlush)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

static void BM_ReescreveRegistroComFlush(benchmark::State& state) {
  PreparaRegistros("REESCREVE.dat", 1000);
  auto f = ArquivoRegistros("REESCREVE.dat");
  REG_BENCH r{};
  r.lCodigo = 500;
  for (auto _ : state) {
    QVUInt pos = 500;
    r.resto[0]++;
    if (FAILED(f->Grava(pos, r))) state.SkipWithError("Grava");
  }
}
BENCHMARK(BM_ReescreveRegistroComFlush)->Unit(benchmark::kMicrosecond);

// Argument: 0 = append at the end, 1 = rewrite in place.
static void BM_PwriteFdatasync(benchmark::State& state) {
  const std::string caminho = Diretorio() + "/PWRITE.dat";
  std::filesystem::remove(caminho);
  const int fd = open(caminho.c_str(), O_RDWR | O_CREAT, 0644);
  REG_BENCH r{};
  off_t fim = 0;
  for (auto _ : state) {
    const off_t o = state.range(0) == 0 ? fim : 0;
    if (pwrite(fd, &r, sizeof r, o) != static_cast<ssize_t>(sizeof r)) state.SkipWithError("pwrite");
    fdatasync(fd);
    fim += sizeof r;
  }
  close(fd);
}
BENCHMARK(BM_PwriteFdatasync)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

static void BM_ConsultaIndice(benchmark::State& state) {
  PreparaRegistros("INDICE.dat", 100000);
  auto f = ArquivoRegistros("INDICE.dat");
  bool existe = false;
  QVUInt pos = 0;
  if (FAILED(f->ExisteIndex(0, 1, &existe, &pos))) std::abort();  // builds the index
  std::mt19937 gerador(42);
  std::uniform_int_distribution<std::uint32_t> chave(1, 100000);
  for (auto _ : state) {
    benchmark::DoNotOptimize(f->ExisteIndex(0, chave(gerador), &existe, &pos));
    benchmark::DoNotOptimize(pos);
  }
}
BENCHMARK(BM_ConsultaIndice);

namespace {

constexpr std::size_t kTextos = 100000;

std::unique_ptr<CQVTextFile> ArquivoTextos() {
  const std::string nome = "TEXTOS.dat";
  const std::string caminho = Diretorio() + "/" + nome;
  std::filesystem::remove(caminho);
  auto f = Abre(std::make_unique<CQVTextFile>(nome, 0));
  std::vector<std::string> textos(kTextos, std::string(30, 'x'));
  QVUInt pos = 0;
  if (FAILED(f->GravaColecao(pos, textos))) std::abort();
  return f;
}

}  // namespace

static void BM_TextoQueCresce(benchmark::State& state) {
  auto f = ArquivoTextos();
  QVUInt p = 0;
  for (auto _ : state) {
    QVUInt pos = ++p % kTextos + 1;
    if (FAILED(f->Grava(pos, std::string(40, 'y')))) state.SkipWithError("Grava");
  }
}
BENCHMARK(BM_TextoQueCresce)->Unit(benchmark::kMicrosecond);

static void BM_TextoQueEncolhe(benchmark::State& state) {
  auto f = ArquivoTextos();
  QVUInt p = 0;
  for (auto _ : state) {
    QVUInt pos = ++p % kTextos + 1;
    if (FAILED(f->Grava(pos, std::string(10, 'z')))) state.SkipWithError("Grava");
  }
}
BENCHMARK(BM_TextoQueEncolhe)->Unit(benchmark::kMillisecond);
