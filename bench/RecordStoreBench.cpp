// The record store against the bare system calls it is built on; each
// figure has its baseline (BenchMain.cpp prints the ratios):
//  - loading a 100 MB record file / one sequential read of its bytes;
//  - appending or rewriting one record with its flush / pwrite + fdatasync
//    of the same 512 bytes;
//  - the first append after opening a file of 1M records / the appends that
//    follow it on the same file;
//  - an index look-up / the same look-up in a bare map;
//  - a text that grows (appended) / pwrite + fdatasync of its bytes at the
//    end; a text that shrinks (the whole file compacted) / one pwrite +
//    fdatasync of the whole file.
// Whatever has a disk in it is timed on the wall clock. Files live under
// $ZELKORIN_BENCH_DIR (default /var/tmp/zelkorin-bench), where the large
// ones are kept between runs; the flush figures mean something only on a
// real disk.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "bench/BenchComum.h"
#include "core/qvdatabase/CQVDataBase.h"
#include "core/qvdatabase/QVFile.h"
#include "core/qvdatabase/QVFileCopia.h"
#include "core/qvdatabase/QVTextFile.h"
#include "platform/QVMemoria.h"

namespace {

struct REG_BENCH {
  std::uint32_t lCodigo;
  std::uint8_t resto[508];
};
static_assert(sizeof(REG_BENCH) == 512);

using CArquivoBench = CQVFile<REG_BENCH>;

// Every record file here has one unique index on the code, and the record
// at position p has code p.
std::uint64_t ChaveCodigo(const REG_BENCH& r, QVUInt) { return r.lCodigo; }

REG_BENCH Registro(QVUInt uiCodigo) {
  REG_BENCH r;
  std::memset(&r, 0x5A, sizeof r);
  r.lCodigo = static_cast<std::uint32_t>(uiCodigo);
  return r;
}

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

// Deletes a data file through the store, which also drops it from the
// directory's creation control: a file the control lists and the disk lacks
// fails its next open.
HRESULT Apaga(const std::string& nome) {
  CQVFileCopia f(nome, 0);
  f.SetDiretorio(Diretorio());
  QV_CHECK(f.Inicializa(&Identidade()));
  QV_CHECK(f.DeletaArquivo());
  return S_OK;
}

HRESULT AbreRegistros(const std::string& nome, std::unique_ptr<CArquivoBench>* pp) {
  auto f = std::make_unique<CArquivoBench>(nome, 0, std::initializer_list<CArquivoBench::Indice>{
                                                        {&ChaveCodigo, false, false}});
  f->SetDiretorio(Diretorio());
  QV_CHECK(f->Inicializa(&Identidade()));
  *pp = std::move(f);
  return S_OK;
}

// A file of n to n + uiFolga records, made once and kept between runs (the
// benchmarks that append to a kept file leave it a little longer each run;
// past the margin it is made again).
HRESULT PreparaRegistros(const std::string& nome, QVUInt n, QVUInt uiFolga = 0) {
  std::error_code ec;
  const std::uintmax_t tamanho = std::filesystem::file_size(Diretorio() + "/" + nome, ec);
  if (!ec && tamanho >= kQVTamanhoBlocoCabecalho) {
    const std::uintmax_t dados = tamanho - kQVTamanhoBlocoCabecalho;
    if (dados % sizeof(REG_BENCH) == 0 && dados / sizeof(REG_BENCH) >= n && dados / sizeof(REG_BENCH) <= n + uiFolga)
      return S_OK;
  }
  QV_CHECK(Apaga(nome));
  std::unique_ptr<CArquivoBench> f;
  QV_CHECK(AbreRegistros(nome, &f));
  std::vector<REG_BENCH> lote;
  for (QVUInt i = 0; i < n; i += lote.size()) {
    lote.clear();
    for (QVUInt p = i + 1; p <= n && lote.size() < 4096; ++p) lote.push_back(Registro(p));
    QVUInt pos = 0;
    QV_CHECK(f->GravaColecao(pos, lote));
  }
  return S_OK;
}

// Where BM_PwriteFdatasync writes in its plain file (one the store never
// sees): at the end, or over the bytes at its start.
enum EOndeGrava : std::int64_t { eNoFim = 0, eNoInicio = 1 };

constexpr QVUInt k100MB = 100u * 1024 * 1024 / sizeof(REG_BENCH);  // 204,800 records
constexpr QVUInt k1M = QVUInt{1} << 20;                             // 512 MB of records
constexpr QVUInt kFolga1M = QVUInt{1} << 16;
constexpr QVUInt kIndice = 100000;
constexpr std::size_t kTextos = 100000;
constexpr std::size_t kTamTexto = 30;
constexpr std::size_t kBytesTextos = kTextos * (4 + kTamTexto);  // the data of the text file

}  // namespace

// ---- loading --------------------------------------------------------------------

static void BM_CargaArquivoRegistros100MB(benchmark::State& state) {
  if (QVFalhouBench(state, "PreparaRegistros(\"CARGA.dat\", k100MB)", PreparaRegistros("CARGA.dat", k100MB))) return;
  for (auto _ : state) {
    std::unique_ptr<CArquivoBench> f;
    if (QVFalhouBench(state, "AbreRegistros(\"CARGA.dat\", &f)", AbreRegistros("CARGA.dat", &f))) break;
    benchmark::DoNotOptimize(f->GetQtdRegistros());
    state.PauseTiming();  // the load is timed, not the release of its memory
    f.reset();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * k100MB * sizeof(REG_BENCH)));
}
BENCHMARK(BM_CargaArquivoRegistros100MB)->UseRealTime()->MinTime(1)->Unit(benchmark::kMillisecond);

// Into fresh memory taken the way the store takes it for its records: on a
// virtual machine, first touching memory can cost as much as the read.
static void BM_LeituraSequencial100MB(benchmark::State& state) {
  if (QVFalhouBench(state, "PreparaRegistros(\"CARGA.dat\", k100MB)", PreparaRegistros("CARGA.dat", k100MB))) return;
  const std::string caminho = Diretorio() + "/CARGA.dat";
  const std::size_t tamanho = k100MB * sizeof(REG_BENCH) + kQVTamanhoBlocoCabecalho;
  for (auto _ : state) {
    CQVBloco bloco(tamanho);
    const int fd = ::open(caminho.c_str(), O_RDONLY | O_CLOEXEC);
    std::size_t lido = 0;
    for (ssize_t n; (n = ::read(fd, bloco.get() + lido, tamanho - lido)) > 0;) lido += static_cast<std::size_t>(n);
    ::close(fd);
    if (lido != tamanho) {
      state.SkipWithError("read");
      break;
    }
    state.PauseTiming();
    bloco = CQVBloco();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * k100MB * sizeof(REG_BENCH)));
}
BENCHMARK(BM_LeituraSequencial100MB)->UseRealTime()->MinTime(1)->Unit(benchmark::kMillisecond);

// ---- writing one record ----------------------------------------------------------

// Argument: 0 = header updated at every flush, 1 = deferred to the end.
static void BM_AnexaRegistroComFlush(benchmark::State& state) {
  if (QVFalhouBench(state, "Apaga(\"ANEXA.dat\")", Apaga("ANEXA.dat"))) return;
  CQVDataBase db;
  db.SetDiretorio(Diretorio());
  db.SetAtualizacaoCabecalhoAdiada(state.range(0) != 0);
  if (QVFalhouBench(state, "db.Inicializa(&Identidade())", db.Inicializa(&Identidade()))) return;
  CArquivoBench f("ANEXA.dat", 0, {{&ChaveCodigo, false, false}});
  if (QVFalhouBench(state, "f.Inicializa(&db)", f.Inicializa(&db))) return;
  QVUInt uiCodigo = 0;
  for (auto _ : state) {
    QVUInt pos = 0;
    if (QVFalhouBench(state, "f.Grava(pos, r)", f.Grava(pos, Registro(++uiCodigo)))) break;
  }
}
BENCHMARK(BM_AnexaRegistroComFlush)->Arg(0)->Arg(1)->UseRealTime()->Unit(benchmark::kMicrosecond);

static void BM_ReescreveRegistroComFlush(benchmark::State& state) {
  std::unique_ptr<CArquivoBench> f;
  if (QVFalhouBench(state, "PreparaRegistros(\"REESCREVE.dat\", 1000)", PreparaRegistros("REESCREVE.dat", 1000)) ||
      QVFalhouBench(state, "AbreRegistros(\"REESCREVE.dat\", &f)", AbreRegistros("REESCREVE.dat", &f)))
    return;
  REG_BENCH r = Registro(500);
  for (auto _ : state) {
    QVUInt pos = 500;
    r.resto[0]++;
    if (QVFalhouBench(state, "f->Grava(pos, r)", f->Grava(pos, r))) break;
  }
}
BENCHMARK(BM_ReescreveRegistroComFlush)->UseRealTime()->Unit(benchmark::kMicrosecond);

// Arguments: where (EOndeGrava), and how many bytes each write carries.
static void BM_PwriteFdatasync(benchmark::State& state) {
  const std::string caminho = Diretorio() + "/PWRITE.raw";
  std::filesystem::remove(caminho);
  const int fd = ::open(caminho.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
  const bool bNoFim = state.range(0) == eNoFim;
  const std::vector<char> bytes(static_cast<std::size_t>(state.range(1)), 'w');
  // A rewrite overwrites bytes that are already there.
  if (!bNoFim && ::pwrite(fd, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size()))
    state.SkipWithError("pwrite");
  off_t fim = bNoFim ? 0 : static_cast<off_t>(bytes.size());
  for (auto _ : state) {
    const off_t o = bNoFim ? fim : 0;
    if (::pwrite(fd, bytes.data(), bytes.size(), o) != static_cast<ssize_t>(bytes.size()) || ::fdatasync(fd) != 0) {
      state.SkipWithError("pwrite + fdatasync");
      break;
    }
    if (bNoFim) fim += static_cast<off_t>(bytes.size());
  }
  ::close(fd);
  std::filesystem::remove(caminho);
}
BENCHMARK(BM_PwriteFdatasync)
    ->Args({eNoFim, sizeof(REG_BENCH)})
    ->Args({eNoInicio, sizeof(REG_BENCH)})
    ->Args({eNoFim, 4 + 40})  // the text that grows
    ->Args({eNoInicio, kBytesTextos})
    ->UseRealTime()
    ->Unit(benchmark::kMicrosecond);

// ---- the first append after an open ----------------------------------------------

namespace {

// The 1M file loaded, with its index built the way the server's first
// look-up builds it: what is left for the first append is its own work.
HRESULT Abre1M(std::unique_ptr<CArquivoBench>* pp) {
  QV_CHECK(AbreRegistros("ANEXA1M.dat", pp));
  bool bExiste = false;
  QVUInt pos = 0;
  QV_CHECK((*pp)->ExisteIndex(0, 1, &bExiste, &pos));
  return S_OK;
}

}  // namespace

// Each iteration opens the file and times its first append alone; the open
// (a 512 MB load) and the close around it are set-up.
static void BM_PrimeiraAnexacao1M(benchmark::State& state) {
  if (QVFalhouBench(state, "PreparaRegistros(\"ANEXA1M.dat\", k1M, kFolga1M)",
                    PreparaRegistros("ANEXA1M.dat", k1M, kFolga1M)))
    return;
  for (auto _ : state) {
    std::unique_ptr<CArquivoBench> f;
    if (QVFalhouBench(state, "Abre1M(&f)", Abre1M(&f))) break;
    const REG_BENCH r = Registro(f->GetQtdRegistros() + 1);
    QVUInt pos = 0;
    const auto inicio = std::chrono::steady_clock::now();
    const HRESULT hr = f->Grava(pos, r);
    state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - inicio).count());
    if (QVFalhouBench(state, "f->Grava(pos, r)", hr)) break;
  }
}
BENCHMARK(BM_PrimeiraAnexacao1M)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

static void BM_AnexacaoContinua1M(benchmark::State& state) {
  std::unique_ptr<CArquivoBench> f;
  if (QVFalhouBench(state, "PreparaRegistros(\"ANEXA1M.dat\", k1M, kFolga1M)",
                    PreparaRegistros("ANEXA1M.dat", k1M, kFolga1M)) ||
      QVFalhouBench(state, "Abre1M(&f)", Abre1M(&f)))
    return;
  QVUInt uiCodigo = f->GetQtdRegistros();
  QVUInt pos = 0;
  if (QVFalhouBench(state, "f->Grava(pos, r)", f->Grava(pos, Registro(++uiCodigo)))) return;  // the first one
  for (auto _ : state) {
    pos = 0;
    if (QVFalhouBench(state, "f->Grava(pos, r)", f->Grava(pos, Registro(++uiCodigo)))) break;
  }
}
BENCHMARK(BM_AnexacaoContinua1M)->UseRealTime()->Iterations(300)->Unit(benchmark::kMicrosecond);

// ---- index look-ups ----------------------------------------------------------------

static void BM_ConsultaIndice(benchmark::State& state) {
  std::unique_ptr<CArquivoBench> f;
  if (QVFalhouBench(state, "PreparaRegistros(\"INDICE.dat\", kIndice)", PreparaRegistros("INDICE.dat", kIndice)) ||
      QVFalhouBench(state, "AbreRegistros(\"INDICE.dat\", &f)", AbreRegistros("INDICE.dat", &f)))
    return;
  bool bExiste = false;
  QVUInt pos = 0;
  if (QVFalhouBench(state, "f->ExisteIndex(0, 1, &bExiste, &pos)", f->ExisteIndex(0, 1, &bExiste, &pos)))
    return;  // builds the index
  std::mt19937 gerador(42);
  std::uniform_int_distribution<std::uint32_t> chave(1, kIndice);
  for (auto _ : state) {
    benchmark::DoNotOptimize(f->ExisteIndex(0, chave(gerador), &bExiste, &pos));
    benchmark::DoNotOptimize(pos);
  }
}
BENCHMARK(BM_ConsultaIndice);

// The same keys in a bare map of the same shape: the index without the
// file's lock and call layers.
static void BM_ConsultaMapa(benchmark::State& state) {
  std::map<std::uint64_t, std::vector<QVUInt>> indice;
  for (QVUInt p = 1; p <= kIndice; ++p) indice[p].push_back(p);
  std::mt19937 gerador(42);
  std::uniform_int_distribution<std::uint32_t> chave(1, kIndice);
  for (auto _ : state) {
    const auto it = indice.find(chave(gerador));
    QVUInt pos = it != indice.end() ? it->second.front() : 0;
    benchmark::DoNotOptimize(pos);
  }
}
BENCHMARK(BM_ConsultaMapa);

// ---- texts -------------------------------------------------------------------------

namespace {

// A new file of kTextos texts of kTamTexto characters.
HRESULT PreparaTextos(std::unique_ptr<CQVTextFile>* pp) {
  QV_CHECK(Apaga("TEXTOS.dat"));
  auto f = std::make_unique<CQVTextFile>("TEXTOS.dat", 0);
  f->SetDiretorio(Diretorio());
  QV_CHECK(f->Inicializa(&Identidade()));
  const std::vector<std::string> textos(kTextos, std::string(kTamTexto, 'x'));
  QVUInt pos = 0;
  QV_CHECK(f->GravaColecao(pos, textos));
  *pp = std::move(f);
  return S_OK;
}

}  // namespace

static void BM_TextoQueCresce(benchmark::State& state) {
  std::unique_ptr<CQVTextFile> f;
  if (QVFalhouBench(state, "PreparaTextos(&f)", PreparaTextos(&f))) return;
  const std::string texto(40, 'y');
  QVUInt p = 0;
  for (auto _ : state) {
    QVUInt pos = ++p % kTextos + 1;
    if (QVFalhouBench(state, "f->Grava(pos, texto)", f->Grava(pos, texto))) break;
  }
}
BENCHMARK(BM_TextoQueCresce)->UseRealTime()->Unit(benchmark::kMicrosecond);

static void BM_TextoQueEncolhe(benchmark::State& state) {
  std::unique_ptr<CQVTextFile> f;
  if (QVFalhouBench(state, "PreparaTextos(&f)", PreparaTextos(&f))) return;
  const std::string texto(10, 'z');
  QVUInt p = 0;
  for (auto _ : state) {
    QVUInt pos = ++p % kTextos + 1;
    if (QVFalhouBench(state, "f->Grava(pos, texto)", f->Grava(pos, texto))) break;
  }
}
BENCHMARK(BM_TextoQueEncolhe)->UseRealTime()->Unit(benchmark::kMillisecond);
