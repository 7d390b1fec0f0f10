#include "ge/zelkorin/transport/ZelkorinRpcServidor.h"

#include <algorithm>
#include <capnp/rpc-twoparty.h>
#include <csignal>
#include <kj/async-io.h>
#include <kj/async-unix.h>
#include <map>
#include <vector>

#include "core/QVRPCDLL/QVFrame.h"
#include "df/qvlibex/QVLog.h"
#include "df/qvlibex/QVStatus.h"
#include "ge/zelkorin/transport/CQVFluxoMensagens.h"
#include "ge/zelkorin/transport/ZelkorinRpcRegistros.h"
#include "ge/zelkorin/transport/ZelkorinRpcStubs.h"

namespace {

constexpr const char* kFonte = "ge/zelkorin/transport/ZelkorinRpcServidor";
// The socket is the owner's and its group's.
constexpr std::uint32_t kModoSocket = 0660;
// Waits between accepts that fail (descriptors exhausted): doubling from
// the first to the last.
constexpr std::uint32_t kEsperaAceiteMinMs = 10;
constexpr std::uint32_t kEsperaAceiteMaxMs = 1000;

void Anuncia(const QVOpcoesServidor& opcoes, const std::string& linha) {
  if (opcoes.log) opcoes.log(linha);
}

class CQVServidorRpc final : private kj::TaskSet::ErrorHandler {
 public:
  CQVServidorRpc(const QVOpcoesServidor& opcoes, kj::AsyncIoContext& io)
      : m_Opcoes(opcoes),
        m_Io(io),
        m_Leitura(QVOpcoesLeitura(opcoes.limites)),
        m_Orcamento(opcoes.servidor.uiOrcamentoBytes),
        m_Tarefas(*this) {
    m_LimitesFluxo.uiMaxMensagem = m_Leitura.traversalLimitInWords * sizeof(capnp::word);
    m_LimitesFluxo.ulMaxPendentes = std::max<std::uint32_t>(1, opcoes.servidor.ulMaxPendentes);
    m_LimitesFluxo.ulTempoOciosoMs = opcoes.servidor.ulTempoOciosoMs;
  }

  ~CQVServidorRpc() { Encerra(); }

  void Escuta(CQVSocket socket, std::string tipo) {
    auto ouvinte = kj::heap<Ouvinte>(m_Io.unixEventPort, std::move(socket), std::move(tipo));
    Ouvinte& o = *ouvinte;
    m_Ouvintes.push_back(kj::mv(ouvinte));
    o.laco = Aceita(o).eagerlyEvaluate([this](kj::Exception&& e) { taskFailed(kj::mv(e)); });
  }

  // Stops accepting and drops every connection: their objects are released.
  // Nothing of this is a fault: the peers are told the server is stopping.
  void Encerra() {
    m_Ouvintes.clear();
    for (auto& [n, conexao] : m_Conexoes) conexao->fluxo.Encerrando();
    m_Conexoes.clear();
  }

  std::size_t Conexoes() const { return m_Conexoes.size(); }

 private:
  // A listening socket and the loop that accepts on it. The loop goes
  // first, then the observer, then the socket.
  struct Ouvinte {
    Ouvinte(kj::UnixEventPort& porta, CQVSocket s, std::string t)
        : socket(std::move(s)),
          tipo(std::move(t)),
          observador(porta, socket.Get(), kj::UnixEventPort::FdObserver::OBSERVE_READ) {}
    CQVSocket socket;
    std::string tipo;
    kj::UnixEventPort::FdObserver observador;
    std::uint32_t ulFalhas = 0;  // accepts failed in a row
    kj::Promise<void> laco = nullptr;
  };

  struct Conexao {
    Conexao(CQVServidorRpc& s, unsigned n, kj::Own<kj::AsyncIoStream> st)
        : stream(kj::mv(st)),
          fluxo(*stream, s.m_Io.provider->getTimer(), s.m_Orcamento, s.m_LimitesFluxo,
                [&s, n](HRESULT hr, const std::string& motivo) { s.Falhou(n, hr, motivo); }),
          rede(fluxo, capnp::rpc::twoparty::Side::SERVER, s.m_Leitura),
          rpc(capnp::makeRpcServer(rede, QVCriaFabricaRpc())) {}
    kj::Own<kj::AsyncIoStream> stream;
    CQVFluxoMensagens fluxo;
    capnp::TwoPartyVatNetwork rede;
    capnp::RpcSystem<capnp::rpc::twoparty::VatId> rpc;
    // Last, so that it is cancelled first: the network it watches must
    // not see its watcher fail when both go.
    kj::Promise<void> vigia = nullptr;
  };

  void taskFailed(kj::Exception&& e) override {
    QVLogaFalhaHrEm("CQVServidorRpc::taskFailed", kFonte, __LINE__, e.getDescription().cStr(), E_FAIL);
  }

  // Accepts until nothing is waiting, then waits for the listener. A
  // failed accept (descriptors exhausted, most likely: the system says so
  // even when no connection is waiting) is logged once per run of failures
  // and tried again after a wait that doubles up to a second; a connection
  // that came meanwhile stays queued.
  kj::Promise<void> Aceita(Ouvinte& o) {
    for (;;) {
      CQVSocket novo;
      const HRESULT hr = QVAcceptConnection(o.socket.Get(), &novo);
      if (SUCCEEDED(hr) && o.ulFalhas != 0) {
        Anuncia(m_Opcoes, "aceitando conexões (" + o.tipo + ") de novo, após " + std::to_string(o.ulFalhas) +
                              " tentativas falhas");
        o.ulFalhas = 0;
      }
      if (hr == S_FALSE) return o.observador.whenBecomesReadable().then([this, &o]() { return Aceita(o); });
      if (FAILED(hr)) {
        const std::uint32_t ms = std::min(kEsperaAceiteMaxMs, kEsperaAceiteMinMs << std::min(o.ulFalhas, 7u));
        if (o.ulFalhas++ == 0) {
          QVLogaFalhaHrEm("CQVServidorRpc::Aceita", kFonte, __LINE__, "QVAcceptConnection(o.socket.Get(), &novo)",
                          hr);
          Anuncia(m_Opcoes, "aceitar conexão (" + o.tipo + ") falhou: " + QVNomeSimbolico(hr) + " - " +
                                QVGetDescricaoHRESULT(hr) + "; nova tentativa em até " +
                                std::to_string(kEsperaAceiteMaxMs) + " ms");
        }
        return m_Io.provider->getTimer().afterDelay(ms * kj::MILLISECONDS).then([this, &o]() { return Aceita(o); });
      }
      // A connection that cannot be set up is logged and dropped; the
      // listener goes on.
      KJ_IF_MAYBE(e, kj::runCatchingExceptions([&]() { Abre(std::move(novo), o.tipo); })) taskFailed(kj::mv(*e));
    }
  }

  void Abre(CQVSocket socket, const std::string& tipo) {
    if (m_Conexoes.size() >= m_Opcoes.servidor.ulMaxConexoes) {
      // Closed at once, so that the client hears it now rather than waiting
      // in the queue.
      if (m_uiRecusadas++ == 0) {
        QVLogaFalhaHrEm("CQVServidorRpc::Abre", kFonte, __LINE__,
                        "limite de " + std::to_string(m_Opcoes.servidor.ulMaxConexoes) + " conexões atingido",
                        HRESULT_FROM_WIN32(RPC_S_SERVER_TOO_BUSY));
        Anuncia(m_Opcoes, "limite de " + std::to_string(m_Opcoes.servidor.ulMaxConexoes) +
                              " conexões atingido: novas conexões são recusadas");
      }
      return;
    }
    const unsigned n = ++m_ulUltima;
    auto stream = m_Io.lowLevelProvider->wrapSocketFd(
        socket.Solta(), kj::LowLevelAsyncIoProvider::TAKE_OWNERSHIP | kj::LowLevelAsyncIoProvider::ALREADY_CLOEXEC |
                            kj::LowLevelAsyncIoProvider::ALREADY_NONBLOCK);
    auto conexao = kj::heap<Conexao>(*this, n, kj::mv(stream));
    // The connection goes a turn later: the network must not be destroyed
    // inside its own disconnect callback.
    conexao->vigia = conexao->rede.onDisconnect()
                         .then([this, n]() { m_Tarefas.add(kj::evalLater([this, n]() { Fecha(n); })); })
                         .eagerlyEvaluate([this](kj::Exception&& e) { taskFailed(kj::mv(e)); });
    m_Conexoes.emplace(n, kj::mv(conexao));
    Anuncia(m_Opcoes, "conexão " + std::to_string(n) + " aberta (" + tipo + ")");
  }

  // One error line and one operator line per connection ended by a fault.
  void Falhou(unsigned n, HRESULT hr, const std::string& motivo) {
    QVLogaFalhaHrEm("CQVServidorRpc::Falhou", kFonte, __LINE__, "conexão " + std::to_string(n) + ": " + motivo, hr);
    Anuncia(m_Opcoes, "conexão " + std::to_string(n) + " abortada: " + motivo);
  }

  void Fecha(unsigned n) {
    if (m_Conexoes.erase(n) == 0) return;
    Anuncia(m_Opcoes, "conexão " + std::to_string(n) + " encerrada; objetos ativos no processo: " +
                          std::to_string(QVObjetosAtivos()));
    if (m_uiRecusadas != 0 && m_Conexoes.size() < m_Opcoes.servidor.ulMaxConexoes) {
      Anuncia(m_Opcoes, std::to_string(m_uiRecusadas) + " conexões recusadas pelo limite; aceitando de novo");
      m_uiRecusadas = 0;
    }
  }

  const QVOpcoesServidor& m_Opcoes;
  kj::AsyncIoContext& m_Io;
  const capnp::ReaderOptions m_Leitura;
  QVLimitesFluxo m_LimitesFluxo;
  // Before the connections: the messages they hold have reservations in it.
  CQVOrcamentoMensagens m_Orcamento;
  std::map<unsigned, kj::Own<Conexao>> m_Conexoes;
  std::vector<kj::Own<Ouvinte>> m_Ouvintes;
  unsigned m_ulUltima = 0;
  std::uint64_t m_uiRecusadas = 0;  // by the connection cap, since it was last below it
  kj::TaskSet m_Tarefas;
};

}  // namespace

HRESULT QVEnderecoEscuta(const std::string& sEscuta, QVEnderecoTcp* pEndereco) {
  std::string host = "127.0.0.1";
  std::string porta = sEscuta;
  if (const std::size_t p = sEscuta.rfind(':'); p != std::string::npos) {
    host = sEscuta.substr(0, p);
    porta = sEscuta.substr(p + 1);
    if (host.size() >= 2 && host.front() == '[' && host.back() == ']') {
      host = host.substr(1, host.size() - 2);
    } else if (host.find(':') != std::string::npos || host.empty()) {
      QV_RETURN(HRESULT_FROM_WIN32(ERROR_INVALID_PARAMETER));  // an IPv6 address goes in brackets
    }
  }
  QV_CHECK(QVResolveTcp(host, porta, pEndereco));
  return S_OK;
}

namespace {

// The TCP listener, if any, then the wait for a signal.
HRESULT ServeAteSinal(const QVOpcoesServidor& opcoes, kj::AsyncIoContext& io, CQVServidorRpc& servidor) {
  if (!opcoes.sEscuta.empty()) {
    QVEnderecoTcp endereco;
    QV_CHECK(QVEnderecoEscuta(opcoes.sEscuta, &endereco));
    if (!endereco.bLoopback && !opcoes.bPermiteRemoto) {
      Anuncia(opcoes, "tcp:" + endereco.sTexto +
                          " pode ser alcançado de outras máquinas e nada autentica os clientes: recusado sem "
                          "--allow-remote");
      QV_RETURN(E_ACCESSDENIED);
    }
    CQVSocket socket;
    std::uint16_t usPorta = 0;
    QV_CHECK(QVListenTcp(endereco, &socket, &usPorta));
    Anuncia(opcoes, "ouvindo tcp:" + endereco.sTexto + " (porta " + std::to_string(usPorta) + ")");
    if (!endereco.bLoopback)
      Anuncia(opcoes, "aviso: tcp:" + endereco.sTexto +
                          " aceita conexões de outras máquinas, sem autenticação; proteja-o com um firewall");
    servidor.Escuta(std::move(socket), "tcp");
  }
  if (opcoes.pronto) opcoes.pronto();

  const siginfo_t sinal =
      io.unixEventPort.onSignal(SIGTERM).exclusiveJoin(io.unixEventPort.onSignal(SIGINT)).wait(io.waitScope);
  Anuncia(opcoes, std::string("sinal ") + (sinal.si_signo == SIGTERM ? "SIGTERM" : "SIGINT") + ": encerrando " +
                      std::to_string(servidor.Conexoes()) + " conexões");
  return S_OK;
}

}  // namespace

HRESULT QVExecutaServidor(const QVOpcoesServidor& opcoes) {
  QVDefineLimitesStubs(opcoes.limites);
  QVIgnoreBrokenPipe();
  // Before the event loop exists, so that the loop alone receives them.
  kj::UnixEventPort::captureSignal(SIGTERM);
  kj::UnixEventPort::captureSignal(SIGINT);
  kj::AsyncIoContext io = kj::setupAsyncIo();
  CQVServidorRpc servidor(opcoes, io);

  if (!opcoes.sSocket.empty()) {
    CQVSocket socket;
    QV_CHECK(QVListenUnix(opcoes.sSocket, kModoSocket, &socket));
    servidor.Escuta(std::move(socket), "unix");
    Anuncia(opcoes, "ouvindo unix:" + opcoes.sSocket);
  }
  const HRESULT hr = ServeAteSinal(opcoes, io, servidor);
  servidor.Encerra();
  // What the dropped connections left queued (their last releases) runs now.
  io.waitScope.poll();
  // The socket goes whether the server served or failed to start in full.
  if (!opcoes.sSocket.empty()) (void)QV_LOGA(QVRemoveUnixSocket(opcoes.sSocket));
  if (SUCCEEDED(hr)) Anuncia(opcoes, "encerrado; objetos ativos no processo: " + std::to_string(QVObjetosAtivos()));
  return hr;
}
