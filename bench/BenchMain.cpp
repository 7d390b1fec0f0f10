// The benchmarks' main: the console report, followed by the ratio of each
// figure to its baseline. Run as "--servidor-bench SOCKET" it is instead the
// server the transport benchmarks talk to.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "bench/RpcBench.h"

namespace {

// A figure and the baseline it is read against.
struct Par {
  const char* figura;
  const char* base;
  const char* oQue;
};

const Par kPares[] = {
    {"BM_KeepAlive", "BM_ChamadaDireta", "KeepAlive in process / a bare virtual call"},
    {"BM_ChamadaPeloFrame", "BM_ChamadaDireta", "a business call through the frame / a bare virtual call"},
    {"BM_Crc64/208", "BM_Crc64PorByte/208", "CRC-64 of a header / the one-table loop"},
    {"BM_Crc64/288", "BM_Crc64PorByte/288", "CRC-64 of an initialisation record / the one-table loop"},
    {"BM_Crc64/65536", "BM_Crc64PorByte/65536", "CRC-64 of 64 KB / the one-table loop"},
    {"BM_CargaArquivoRegistros100MB", "BM_LeituraSequencial100MB", "loading 100 MB of records / reading them"},
    {"BM_AnexaRegistroComFlush/0", "BM_PwriteFdatasync/0/512", "appending a record / pwrite + fdatasync"},
    {"BM_AnexaRegistroComFlush/1", "BM_PwriteFdatasync/0/512",
     "appending a record, header deferred / pwrite + fdatasync"},
    {"BM_ReescreveRegistroComFlush", "BM_PwriteFdatasync/1/512", "rewriting a record / pwrite + fdatasync"},
    {"BM_PrimeiraAnexacao1M", "BM_AnexacaoContinua1M", "first append after opening 1M records / the next ones"},
    {"BM_ConsultaIndice", "BM_ConsultaMapa", "an index look-up / the same in a bare map"},
    {"BM_TextoQueCresce", "BM_PwriteFdatasync/0/44", "a text that grows / pwrite + fdatasync of its bytes"},
    // 3400000: the data bytes of RecordStoreBench.cpp's text file (kBytesTextos).
    {"BM_TextoQueEncolhe", "BM_PwriteFdatasync/1/3400000", "a text that shrinks / rewriting the whole file"},
    {"BM_RpcKeepAlive", "BM_SocketUnixIdaEVolta", "KeepAlive over the socket / a bare socket round trip"},
    {"BM_Atendimento816Rpc", "BM_Atendimento816EmProcesso", "write + read of 816 bytes over the socket / in process"},
    {"BM_RpcClientesSimultaneos/threads:4", "BM_RpcClientesSimultaneos/threads:1",
     "a call with 4 clients at once / with 1 (below 1: more calls per second)"},
    {"BM_LeClienteSuite", "BM_LeClienteSqlite", "a client read by its pointer / a bare SQLite read by rowid"},
    {"BM_GravaAcompanhamentoSuite", "BM_InsertSqliteTransacao",
     "a follow-up write with its services / a bare SQLite INSERT + COMMIT"},
    {"BM_ChamadosBusca", "BM_ChamadosBuscaMemoria", "a ten-field search of 1M calls / the tests on them in memory"},
    {"BM_ChamadosBusca", "BM_ChamadosBuscaSqlite", "a ten-field search of 1M calls / the same query in SQLite"},
    {"BM_ChamadosGrava", "BM_ChamadosGravaAnexo", "saving a call (3 services...) / one append + fdatasync"},
    {"BM_ChamadosGrava", "BM_ChamadosGravaSqlite", "saving a call (3 services...) / one SQLite transaction"},
    {"BM_ChamadosNumero/0", "BM_ChamadosNumeroLeitura", "a free number, from the index / reading every month"},
    {"BM_ChamadosNumero/1", "BM_ChamadosNumeroLeitura", "a taken number, from the index / reading every month"},
    {"BM_ChamadosAbertura/0", "BM_ChamadosAberturaLeitura/0", "opening + search, cold / reading the files, cold"},
    {"BM_ChamadosAbertura/1", "BM_ChamadosAberturaLeitura/1", "opening + search, warm / reading the files, warm"},
};

// The console report, keeping each benchmark's time per iteration (per item
// when it counts items) to print the ratios at the end: wall-clock time for
// the benchmarks timed on it, CPU time for the others; with repetitions,
// the median.
class CRelatorioComRazoes : public benchmark::ConsoleReporter {
 public:
  // Plain text: the report is read in a terminal as often as in a file.
  CRelatorioComRazoes() : ConsoleReporter(OO_None) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& r : runs) {
      if (r.error_occurred) continue;
      const bool bMediana = r.run_type == Run::RT_Aggregate && r.aggregate_name == "median";
      if (r.run_type == Run::RT_Aggregate && !bMediana) continue;
      Figura& f = m_Figuras[Chave(r)];
      if (f.bMediana && !bMediana) continue;
      f = {Nanossegundos(r), bMediana};
    }
  }

  void Finalize() override {
    ConsoleReporter::Finalize();
    std::ostream& saida = GetOutputStream();
    saida << "\nRatios (figure / baseline; time per iteration, or per item where items are counted)\n";
    for (const Par& p : kPares) {
      const auto f = m_Figuras.find(p.figura);
      const auto b = m_Figuras.find(p.base);
      if (f == m_Figuras.end() || b == m_Figuras.end()) continue;  // filtered out, or failed
      char linha[256];
      std::snprintf(linha, sizeof linha, "  %-36s %12s / %-12s %9.2f  ", p.figura, Texto(f->second.ns).c_str(),
                    Texto(b->second.ns).c_str(), f->second.ns / b->second.ns);
      saida << linha << p.oQue << "\n";
    }
    saida.flush();
  }

 private:
  struct Figura {
    double ns = 0;
    bool bMediana = false;
  };

  // The name without the options that do not tell two cases apart:
  // "BM_PwriteFdatasync/0/512", "BM_RpcClientesSimultaneos/threads:4".
  static std::string Chave(const Run& r) {
    std::string s = r.run_name.function_name;
    if (!r.run_name.args.empty()) s += "/" + r.run_name.args;
    if (!r.run_name.threads.empty()) s += "/" + r.run_name.threads;
    return s;
  }

  static double Nanossegundos(const Run& r) {
    const bool bRelogio = !r.run_name.time_type.empty();  // real_time or manual_time
    if (const auto it = r.counters.find("items_per_second"); it != r.counters.end() && it->second.value > 0)
      return 1e9 / it->second.value;  // the rate was taken with the same clock
    const double t = bRelogio ? r.GetAdjustedRealTime() : r.GetAdjustedCPUTime();
    return t * 1e9 / benchmark::GetTimeUnitMultiplier(r.time_unit);
  }

  static std::string Texto(double ns) {
    char s[32];
    if (ns >= 1e6)
      std::snprintf(s, sizeof s, "%.2f ms", ns / 1e6);
    else if (ns >= 1e3)
      std::snprintf(s, sizeof s, "%.2f us", ns / 1e3);
    else
      std::snprintf(s, sizeof s, "%.2f ns", ns);
    return s;
  }

  std::map<std::string, Figura> m_Figuras;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc == 3 && std::strcmp(argv[1], "--servidor-bench") == 0) return QVExecutaServidorBench(argv[2]);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  CRelatorioComRazoes relatorio;
  benchmark::RunSpecifiedBenchmarks(&relatorio);
  benchmark::Shutdown();
  return 0;
}
