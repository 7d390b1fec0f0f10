// What the transport costs, each figure with its baseline (BenchMain.cpp
// prints the ratios): a KeepAlive round trip over the Unix socket / 8 bytes
// to another process and back over a bare Unix socket; a call carrying an
// 816-byte call record with three services (their sessions and
// classifications) in and out / the same calls in process; calls per second
// from four clients at once / from one. Everything is timed on the wall
// clock, the in-process baseline too.
//
// The server is this program run again with --servidor-bench SOCKET
// (BenchMain.cpp), serving stand-in servers that keep and hand back the
// record.
#include <benchmark/benchmark.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstring>
#include <memory>
#include <thread>

#include "bench/BenchComum.h"
#include "bench/RpcBench.h"
#include "ge/zelkorin/transport/CQVConexaoZelkorin.h"
#include "ge/zelkorin/CQVGE_Atendimento.h"
#include "ge/zelkorin/ZelkorinClasses.h"
#include "ge/zelkorin/transport/ZelkorinRpcServidor.h"
#include "platform/QVBstr.h"
#include "platform/QVTaskMem.h"

namespace {

template <class T>
T* Novo(std::size_t n) {
  auto* p = static_cast<T*>(CoTaskMemAlloc(n * sizeof(T)));
  std::memset(static_cast<void*>(p), 0, n * sizeof(T));
  return p;
}

// A call with three services, each with two sessions and two
// classifications of two management shares, and its comments.
_REG_ATENDIMENTO_PS Registro816() {
  _REG_ATENDIMENTO_PS r;
  std::memset(&r, 0, sizeof r);
  r.bsComentario = QVBstrFromUtf8("Troca do compressor e revisão do painel");
  r.iQuantidadeServicoAtend = 3;
  r.pServicos = Novo<_REG_SERVICO_ATENDIMENTO_PS>(3);
  for (std::uint16_t i = 0; i < 3; ++i) {
    _REG_SERVICO_ATENDIMENTO_PS& s = r.pServicos[i];
    s.bsDescricao = QVBstrFromUtf8("Serviço " + std::to_string(i + 1));
    s.iQuantidadeSessao = 2;
    s.pSessoes = Novo<_REG_SESSAO_ATENDIMENTO_PS>(2);
    s.pSessoes[0] = {480, 720, {0, 0}};
    s.pSessoes[1] = {780, 1080, {0, 0}};
    s.iQuantidadeClassificacao = 2;
    s.pClassificacoes = Novo<_REG_CLASSIFICACAO_GE_PS>(2);
    for (auto* c = s.pClassificacoes; c != s.pClassificacoes + 2; ++c) {
      c->lQuantidadeGerencial = 2;
      c->pGerenciais = Novo<_REG_GERENCIAL_GE_PS>(2);
    }
  }
  return r;
}

// Keeps the last record written and hands it back when read.
class CServidorGuarda final : public CGeServidorAtendimento {
 public:
  CServidorGuarda() { m_Registro = Registro816(); }
  ~CServidorGuarda() override { QVLibera(&m_Registro); }
  HRESULT GravaAtendimento(std::uint16_t, std::uint32_t, const _REG_ATENDIMENTO_PS& r, std::uint32_t* p) override {
    QVLibera(&m_Registro);
    *p = 1;
    return QVCopia(r, &m_Registro);
  }
  HRESULT LeAtendimento(std::uint16_t, std::uint32_t, _REG_ATENDIMENTO_PS* r) override {
    return QVCopia(m_Registro, r);
  }
  HRESULT ConsistirNumeroAtendimentoPS(std::uint32_t, std::int32_t* p) override {
    *p = 1;
    return S_OK;
  }

 private:
  _REG_ATENDIMENTO_PS m_Registro;
};

auto g_fabrica = TQVFabricaDeClasse(
    [] { return new CQVGE_Atendimento([] { return std::make_unique<CServidorGuarda>(); }); });

const char* const kRaiz = "/tmp/zelkorin-bench";

// The server process, started by the first benchmark that needs it.
class CServidorBench {
 public:
  static CServidorBench& Instancia() {
    static CServidorBench s;
    return s;
  }
  const std::string& Socket() const { return m_sSocket; }
  bool Pronto() const { return m_bPronto; }
  ~CServidorBench() {
    if (m_pid > 0) {
      ::kill(m_pid, SIGTERM);
      ::waitpid(m_pid, nullptr, 0);
    }
  }

 private:
  CServidorBench() : m_sSocket(std::string(kRaiz) + "/bench-" + std::to_string(::getpid()) + ".sock") {
    m_pid = ::fork();
    if (m_pid == 0) {
      ::execl("/proc/self/exe", "/proc/self/exe", "--servidor-bench", m_sSocket.c_str(), nullptr);
      ::_exit(127);
    }
    for (int i = 0; i < 500 && !m_bPronto; ++i) {
      std::shared_ptr<CQVConexaoZelkorin> c;
      m_bPronto = SUCCEEDED(CQVConexaoZelkorin::Conecta({.sSocket = m_sSocket}, &c));
      if (!m_bPronto) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  }
  std::string m_sSocket;
  pid_t m_pid = -1;
  bool m_bPronto = false;
};

// One client of the server: a connection and an initialised object.
// On failure the benchmark is marked failed and objeto stays null.
struct Cliente {
  explicit Cliente(benchmark::State& state) {
    if (!CServidorBench::Instancia().Pronto()) {
      state.SkipWithError("the benchmark server did not answer");
      return;
    }
    if (QVFalhouBench(state, "CQVConexaoZelkorin::Conecta(...)",
                      CQVConexaoZelkorin::Conecta({.sSocket = CServidorBench::Instancia().Socket()}, &conexao)) ||
        QVFalhouBench(state, "conexao->CriaObjeto(...)",
                      conexao->CriaObjeto(CLSID_QVGE_Atendimento, IID_IQVGE_Atendimento, objeto.ppv())) ||
        QVFalhouBench(state, "objeto->Inicializa_Padrao(...)",
                      objeto->Inicializa_Padrao(QVBenchInicializacao("RpcBench.cpp"))))
      objeto = {};
  }
  std::shared_ptr<CQVConexaoZelkorin> conexao;
  CQVComPtr<IQVGE_Atendimento> objeto;
};

// Writes the record and reads it back: 816 bytes and what they own, each way.
void GravaELe(benchmark::State& state, IQVGE_Atendimento* o) {
  _REG_ATENDIMENTO_PS registro = Registro816();
  for (auto _ : state) {
    std::uint32_t pos = 0;
    _REG_ATENDIMENTO_PS lido;
    if (QVFalhouBench(state, "o->GravaAtendimento(1, 0, registro, &pos)", o->GravaAtendimento(1, 0, registro, &pos)) ||
        QVFalhouBench(state, "o->LeAtendimento(1, pos, &lido)", o->LeAtendimento(1, pos, &lido)))
      break;
    QVLibera(&lido);
  }
  QVLibera(&registro);
  state.SetItemsProcessed(2 * state.iterations());
}

}  // namespace

int QVExecutaServidorBench(const char* socket) {
  QVDefineRaizDados(kRaiz);
  std::uint32_t cookie = 0;
  if (FAILED(CoRegisterClassObject(CLSID_QVGE_Atendimento, &g_fabrica, &cookie))) return 1;
  QVOpcoesServidor opcoes;
  opcoes.sSocket = socket;
  return SUCCEEDED(QVExecutaServidor(opcoes)) ? 0 : 1;
}

static void BM_RpcKeepAlive(benchmark::State& state) {
  Cliente c(state);
  std::int32_t ok = 0;
  for (auto _ : state)
    if (c.objeto) benchmark::DoNotOptimize(c.objeto->KeepAlive(&ok));
}
BENCHMARK(BM_RpcKeepAlive)->UseRealTime();

static void BM_Atendimento816EmProcesso(benchmark::State& state) {
  QVDefineRaizDados(kRaiz);
  IQVGE_Atendimento* o = new CQVGE_Atendimento([] { return std::make_unique<CServidorGuarda>(); });
  if (!QVFalhouBench(state, "o->Inicializa_Padrao(...)", o->Inicializa_Padrao(QVBenchInicializacao("RpcBench.cpp"))))
    GravaELe(state, o);
  o->Release();
}
BENCHMARK(BM_Atendimento816EmProcesso)->UseRealTime();

static void BM_Atendimento816Rpc(benchmark::State& state) {
  Cliente c(state);
  if (c.objeto) GravaELe(state, c.objeto.get());
}
BENCHMARK(BM_Atendimento816Rpc)->UseRealTime();

// Each thread is one client with its own connection; the server serves
// them one call at a time.
static void BM_RpcClientesSimultaneos(benchmark::State& state) {
  Cliente c(state);
  std::int32_t ok = 0;
  for (auto _ : state)
    if (c.objeto) benchmark::DoNotOptimize(c.objeto->ConsistirNumeroAtendimentoPS(1, &ok));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RpcClientesSimultaneos)->Threads(1)->Threads(4)->UseRealTime();

// The floor under every round trip: 8 bytes to another process over a Unix
// socket and back, with nothing on top.
static void BM_SocketUnixIdaEVolta(benchmark::State& state) {
  int par[2];
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, par) != 0) {
    state.SkipWithError("socketpair");
    return;
  }
  const pid_t eco = ::fork();
  if (eco == 0) {
    ::close(par[0]);  // or the echo would never see the end of the stream
    char buf[8];
    while (::read(par[1], buf, sizeof buf) == sizeof buf && ::write(par[1], buf, sizeof buf) == sizeof buf) {
    }
    ::_exit(0);
  }
  ::close(par[1]);
  char buf[8] = {};
  for (auto _ : state) {
    if (::write(par[0], buf, sizeof buf) != sizeof buf || ::read(par[0], buf, sizeof buf) != sizeof buf) {
      state.SkipWithError("write + read");
      break;
    }
  }
  ::close(par[0]);
  ::waitpid(eco, nullptr, 0);
}
BENCHMARK(BM_SocketUnixIdaEVolta)->UseRealTime();
