#include "ge/zelkorin/transport/ZelkorinRpcServidor.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <capnp/rpc-twoparty.h>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <kj/async-io.h>
#include <kj/async-unix.h>
#include <map>

#include "core/QVRPCDLL/QVFrame.h"
#include "df/qvlibex/QVLog.h"
#include "ge/zelkorin/transport/ZelkorinRpcRegistros.h"
#include "ge/zelkorin/transport/ZelkorinRpcStubs.h"

namespace {

void Anuncia(const QVOpcoesServidor& opcoes, const std::string& linha) {
  if (opcoes.log) opcoes.log(linha);
}

// A socket path that is already there: a live server answers on it (then
// this one must not start), a stale one from a server that died is
// removed, and anything that is not a socket is left alone.
HRESULT PreparaCaminhoSocket(const std::string& caminho) {
  struct stat info {};
  if (::lstat(caminho.c_str(), &info) != 0) return S_OK;
  if (!S_ISSOCK(info.st_mode)) QV_RETURN(HRESULT_FROM_WIN32(ERROR_FILE_EXISTS));
  sockaddr_un end{};
  end.sun_family = AF_UNIX;
  std::strncpy(end.sun_path, caminho.c_str(), sizeof end.sun_path - 1);
  const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (fd < 0) QV_RETURN(HRESULT_FROM_WIN32(ERROR_OUTOFMEMORY));
  const bool vivo = ::connect(fd, reinterpret_cast<sockaddr*>(&end), sizeof end) == 0;
  ::close(fd);
  if (vivo) QV_RETURN(HRESULT_FROM_WIN32(WSAEADDRINUSE));
  if (::unlink(caminho.c_str()) != 0) QV_RETURN(HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED));
  return S_OK;
}

// The address of --listen: "port" alone is the loopback's; a host given
// explicitly is used as given.
std::string EnderecoTcp(const std::string& escuta) {
  if (escuta.find(':') == std::string::npos) return "127.0.0.1:" + escuta;
  return escuta;
}

class CQVServidorRpc {
 public:
  explicit CQVServidorRpc(const QVOpcoesServidor& opcoes)
      : m_Opcoes(opcoes), m_LeituraOpcoes(QVOpcoesLeitura(opcoes.limites)), m_Tarefas(m_Erros) {}

  ~CQVServidorRpc() { Encerra(); }

  void Escuta(kj::Own<kj::ConnectionReceiver> receptor, std::string tipo) {
    m_Receptores.push_back(kj::mv(receptor));
    Aceita(*m_Receptores.back(), std::move(tipo));
  }

  // Stops accepting and drops every connection: their objects are released.
  void Encerra() {
    m_Receptores.clear();
    m_Conexoes.clear();
  }

  std::size_t Conexoes() const { return m_Conexoes.size(); }

 private:
  struct Conexao {
    Conexao(kj::Own<kj::AsyncIoStream> s, capnp::ReaderOptions opcoes)
        : stream(kj::mv(s)),
          rede(*stream, capnp::rpc::twoparty::Side::SERVER, opcoes),
          rpc(capnp::makeRpcServer(rede, QVCriaFabricaRpc())) {}
    kj::Own<kj::AsyncIoStream> stream;
    capnp::TwoPartyVatNetwork rede;
    capnp::RpcSystem<capnp::rpc::twoparty::VatId> rpc;
  };

  class CErros final : public kj::TaskSet::ErrorHandler {
   public:
    void taskFailed(kj::Exception&& e) override {
      QVLogaFalhaHrEm("CQVServidorRpc::taskFailed", "ge/zelkorin/transport/ZelkorinRpcServidor", __LINE__,
                      e.getDescription().cStr(), E_FAIL);
    }
  };

  void Aceita(kj::ConnectionReceiver& receptor, std::string tipo) {
    m_Tarefas.add(receptor.accept().then([this, &receptor, tipo](kj::Own<kj::AsyncIoStream>&& stream) {
      const unsigned n = ++m_ulUltima;
      auto conexao = kj::heap<Conexao>(kj::mv(stream), m_LeituraOpcoes);
      // Removed a turn later: the network must not be destroyed inside its
      // own disconnect callback.
      m_Tarefas.add(conexao->rede.onDisconnect().then([this, n]() {
        return kj::evalLater([this, n]() { Fecha(n); });
      }));
      m_Conexoes.emplace(n, kj::mv(conexao));
      Anuncia(m_Opcoes, "conexão " + std::to_string(n) + " aberta (" + tipo + ")");
      Aceita(receptor, tipo);
    }));
  }

  void Fecha(unsigned n) {
    if (m_Conexoes.erase(n) == 0) return;
    Anuncia(m_Opcoes, "conexão " + std::to_string(n) + " encerrada; objetos ativos no processo: " +
                          std::to_string(QVObjetosAtivos()));
  }

  const QVOpcoesServidor& m_Opcoes;
  capnp::ReaderOptions m_LeituraOpcoes;
  std::vector<kj::Own<kj::ConnectionReceiver>> m_Receptores;
  std::map<unsigned, kj::Own<Conexao>> m_Conexoes;
  unsigned m_ulUltima = 0;
  CErros m_Erros;
  kj::TaskSet m_Tarefas;
};

// Listens on a kj address ("unix:PATH" or "host:port").
HRESULT Ouve(kj::AsyncIoContext& io, const std::string& endereco, kj::Own<kj::ConnectionReceiver>* pReceptor) {
  KJ_IF_MAYBE(e, kj::runCatchingExceptions([&]() {
                auto addr = io.provider->getNetwork().parseAddress(endereco).wait(io.waitScope);
                *pReceptor = addr->listen();
              })) {
    QVLogaFalhaHrEm("Ouve", "ge/zelkorin/transport/ZelkorinRpcServidor", __LINE__, e->getDescription().cStr(),
                    HRESULT_FROM_WIN32(WSAEADDRINUSE));
    return HRESULT_FROM_WIN32(WSAEADDRINUSE);
  }
  return S_OK;
}

}  // namespace

HRESULT QVExecutaServidor(const QVOpcoesServidor& opcoes) {
  QVDefineLimitesStubs(opcoes.limites);
  // A client that goes away mid-write must not end the server.
  std::signal(SIGPIPE, SIG_IGN);
  // Before the event loop exists, so that the loop alone receives them.
  kj::UnixEventPort::captureSignal(SIGTERM);
  kj::UnixEventPort::captureSignal(SIGINT);
  kj::AsyncIoContext io = kj::setupAsyncIo();
  CQVServidorRpc servidor(opcoes);

  if (!opcoes.sSocket.empty()) {
    QV_CHECK(PreparaCaminhoSocket(opcoes.sSocket));
    kj::Own<kj::ConnectionReceiver> receptor;
    // The socket is born 0660: only the owner and its group may connect.
    const mode_t anterior = ::umask(0117);
    const HRESULT hr = Ouve(io, "unix:" + opcoes.sSocket, &receptor);
    ::umask(anterior);
    QV_CHECK(hr);
    if (::chmod(opcoes.sSocket.c_str(), 0660) != 0) QV_RETURN(HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED));
    servidor.Escuta(kj::mv(receptor), "unix");
    Anuncia(opcoes, "ouvindo unix:" + opcoes.sSocket);
  }
  if (!opcoes.sEscuta.empty()) {
    kj::Own<kj::ConnectionReceiver> receptor;
    const std::string endereco = EnderecoTcp(opcoes.sEscuta);
    QV_CHECK(Ouve(io, endereco, &receptor));
    Anuncia(opcoes, "ouvindo tcp:" + endereco + " (porta " + std::to_string(receptor->getPort()) + ")");
    servidor.Escuta(kj::mv(receptor), "tcp");
  }
  if (opcoes.pronto) opcoes.pronto();

  const siginfo_t sinal =
      io.unixEventPort.onSignal(SIGTERM).exclusiveJoin(io.unixEventPort.onSignal(SIGINT)).wait(io.waitScope);
  Anuncia(opcoes, std::string("sinal ") + (sinal.si_signo == SIGTERM ? "SIGTERM" : "SIGINT") + ": encerrando " +
                      std::to_string(servidor.Conexoes()) + " conexões");
  servidor.Encerra();
  // What the dropped connections left queued (their last releases) runs now.
  io.waitScope.poll();
  if (!opcoes.sSocket.empty()) ::unlink(opcoes.sSocket.c_str());
  Anuncia(opcoes, "encerrado; objetos ativos no processo: " + std::to_string(QVObjetosAtivos()));
  return S_OK;
}
