// `zelkorin serve` under abuse by raw local clients: it logs each abuse
// once, stays within its limits, serves the others and stops cleanly on
// SIGTERM. Small limits on the command line keep each case short.
#include <capnp/message.h>
#include <capnp/rpc.capnp.h>
#include <capnp/serialize.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <functional>
#include <thread>

#include "tests/support/QVServidorTeste.h"
#include "tests/support/QVTestSupport.h"

namespace {

using capnp::rpc::Message;

std::size_t LinhasCom(const std::string& trecho) {
  std::size_t n = 0;
  for (const std::string& l : QVTesteLinhasErro()) n += l.find(trecho) != std::string::npos;
  return n;
}

// `zelkorin serve` with extra options.
class CServidor : public CQVProcessoTeste {
 public:
  explicit CServidor(const std::vector<std::string>& extras)
      : CQVProcessoTeste(Argumentos(extras), ZELKORIN_PROGRAMA) {}

  static std::string Socket() { return QVTesteDiretorio() + "/abuso.sock"; }
  // Also how a test waits for the server to listen: "ouvindo unix:".
  bool EsperaErro(const std::string& trecho) const {
    return QVTesteEsperaQue([&] { return Erros().find(trecho) != std::string::npos; }, 5000);
  }

  // SIGTERM whatever the clients are doing: exit 0, nothing added to the
  // error log, no error line on stderr.
  void EncerraLimpo() {
    const std::size_t linhas = QVTesteLinhasErro().size();
    const std::size_t ditos = Erros().size();
    EXPECT_EQ(Termina(SIGTERM), 0) << Erros();
    const std::string depois = Erros().substr(ditos);
    EXPECT_NE(depois.find("zelkorin: encerrado"), std::string::npos) << depois;
    EXPECT_EQ(depois.find("rror"), std::string::npos) << depois;
    EXPECT_EQ(QVTesteLinhasErro().size(), linhas);
  }

 private:
  // Its data root (and so its error log, cleared for it) the test's.
  static std::vector<std::string> Argumentos(std::vector<std::string> extras) {
    QVTesteLimpaLog();
    extras.insert(extras.begin(), {"serve", "--root", QVTesteDiretorio(), "--socket", Socket()});
    return extras;
  }
};

// A bootstrap and its finish: the server answers the first (one Return)
// and forgets it at the second, so that the pair costs it nothing lasting.
std::string BootstrapEFinish(std::uint32_t pergunta) {
  capnp::MallocMessageBuilder b, f;
  b.initRoot<Message>().initBootstrap().setQuestionId(pergunta);
  f.initRoot<Message>().initFinish().setQuestionId(pergunta);  // releasing the answer's capabilities
  kj::VectorOutputStream saida;
  capnp::writeMessage(saida, b);
  capnp::writeMessage(saida, f);
  return std::string(saida.getArray().asChars().begin(), saida.getArray().size());
}

// The framing of a message of that many segments, the first of that many
// words; nothing of the segments.
std::string Cabecalho(std::uint32_t palavras, std::uint32_t segmentos = 1) {
  const std::uint32_t u[2] = {segmentos - 1, palavras};
  return std::string(reinterpret_cast<const char*>(u), sizeof u);
}

// A client on a raw socket, writing and reading the transport's frames.
class CClienteBruto {
 public:
  explicit CClienteBruto(const std::string& socket) : m_fd(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un end{};
    end.sun_family = AF_UNIX;
    std::strncpy(end.sun_path, socket.c_str(), sizeof end.sun_path - 1);
    EXPECT_EQ(::connect(m_fd, reinterpret_cast<sockaddr*>(&end), sizeof end), 0);
    Opcao(SO_RCVTIMEO, timeval{5, 0});
  }
  ~CClienteBruto() { ::close(m_fd); }

  void Opcao(int opcao, const auto& valor) { ::setsockopt(m_fd, SOL_SOCKET, opcao, &valor, sizeof valor); }

  // Sends from `de` on until everything went or a send timed out; where it got.
  std::size_t Envia(const std::string& bytes, std::size_t de = 0) {
    for (ssize_t n = 1; de < bytes.size() && n > 0; de += n > 0 ? static_cast<std::size_t>(n) : 0)
      n = ::send(m_fd, bytes.data() + de, bytes.size() - de, MSG_NOSIGNAL);
    return de;
  }

  // The next message from the server; false when it closed the connection
  // or sent nothing in time.
  bool Le(const std::function<void(Message::Reader)>& f) {
    return kj::runCatchingExceptions([&]() {
             capnp::StreamFdMessageReader leitor(m_fd);
             f(leitor.getRoot<Message>());
           }) == nullptr;
  }
  bool Responde() {
    bool retorno = false;
    return Le([&](Message::Reader m) { retorno = m.which() == Message::RETURN; }) && retorno;
  }
  // Served as before: a bootstrap answered.
  bool Atendido() { return Envia(BootstrapEFinish(0)) > 0 && Responde(); }
  // Whether the server closes the connection within the time given.
  bool Encerrada(int ms = 5000) {
    char buf[4096];
    for (pollfd p{m_fd, POLLIN, 0}; ::poll(&p, 1, ms) == 1;)
      if (const ssize_t n = ::recv(m_fd, buf, sizeof buf, MSG_DONTWAIT); n == 0 || (n < 0 && errno == ECONNRESET))
        return true;
    return false;
  }

 private:
  int m_fd;
};

}  // namespace

TEST(ServidorSobAbuso, MensagensRuinsDerrubamSoSuaConexaoComUmaLinhaEUmMotivoSimples) {
  CServidor s({"--tempo-ocioso-ms", "200", "--memoria-mensagens", "65536"});
  ASSERT_TRUE(s.EsperaErro("ouvindo unix:")) << s.Erros();
  CClienteBruto quieto(s.Socket());  // silent between messages for longer than the time-out: never dropped
  const std::pair<std::string, std::string> casos[] = {
      // bytes, the reason told to the peer and, but for the first, logged
      // One segment whose root is a list pointer (kind 1), where a message struct belongs.
      {Cabecalho(1) + std::string("\x01\0\0\0\x01\0\0\0", 8), "erro de protocolo"},
      {Cabecalho(100) + std::string(16, '\0'),
       "mensagem incompleta: nada chegou em 200 ms (recebidos 24 de 808 bytes)"},
      {Cabecalho(10000), "mensagem de 80008 bytes acima do limite de 65536 bytes"},
      {Cabecalho(1, 601), "mensagem com 601 segmentos; o máximo é 512"},
  };
  int n = 1;
  for (const auto& [bytes, motivoEsperado] : casos) {
    SCOPED_TRACE(motivoEsperado);
    CClienteBruto cliente(s.Socket());
    const std::string conexao = "conexão " + std::to_string(++n);
    cliente.Envia(bytes);
    std::string motivo;
    EXPECT_TRUE(cliente.Le([&](Message::Reader m) { motivo = m.getAbort().getReason(); }));
    EXPECT_EQ(motivo, motivoEsperado);
    EXPECT_TRUE(cliente.Encerrada());
    EXPECT_TRUE(s.EsperaErro(conexao + " abortada: "));
    EXPECT_EQ(LinhasCom(conexao + ": "), 1u);
    EXPECT_EQ(LinhasCom(conexao + ": " + (n > 2 ? motivoEsperado : "")), 1u);
  }
  // Closing mid-message is no fault.
  CClienteBruto(s.Socket()).Envia(Cabecalho(100));
  EXPECT_TRUE(s.EsperaErro("conexão 6 encerrada"));

  // A holds 40 KiB of the 64, sending a byte now and then; B's 40 KiB do
  // not fit beside them: B waits, then is dropped.
  CClienteBruto a(s.Socket());
  a.Envia(Cabecalho(5000) + "x");
  ASSERT_TRUE(s.EsperaErro("conexão 7 aberta"));
  std::this_thread::sleep_for(std::chrono::milliseconds(50));  // A's table read and its bytes reserved
  CClienteBruto b(s.Socket());
  b.Envia(Cabecalho(5000));
  for (int i = 0; i < 20 && !b.Encerrada(40); ++i) a.Envia("x");
  EXPECT_EQ(LinhasCom("conexão 8: mensagem de 40008 bytes esperou 200 ms pela memória de mensagens do servidor "
                      "(40008 de 65536 bytes em uso)"),
            1u);
  // A goes quiet and is dropped; its bytes are free again, and the others
  // are served as before.
  EXPECT_TRUE(a.Encerrada());
  EXPECT_TRUE(quieto.Atendido());
  EXPECT_EQ(QVTesteLinhasErro().size(), 6u);
  s.EncerraLimpo();
}

TEST(ServidorSobAbuso, ClienteQueNaoLeAsRespostasFicaNoLimiteERetomaQuandoLe) {
  CServidor s({"--max-pendentes", "4"});
  ASSERT_TRUE(s.EsperaErro("ouvindo unix:")) << s.Erros();
  CClienteBruto c(s.Socket());
  // A small buffer on the client's side: the server's stop shows at once.
  c.Opcao(SO_SNDBUF, 4096);
  c.Opcao(SO_SNDTIMEO, timeval{0, 100 * 1000});
  constexpr std::uint32_t kPares = 1500;
  std::string pares;
  for (std::uint32_t i = 0; i < kPares; ++i) pares += BootstrapEFinish(i);
  std::size_t total = c.Envia(pares);
  ASSERT_LT(total, pares.size()) << "o servidor continuou lendo sem que as respostas saíssem";

  // Reading the answers lets the server read again: every bootstrap is answered.
  std::atomic<std::uint32_t> respostas{0};
  std::thread leitor([&] {
    while (respostas < kPares && c.Responde()) ++respostas;
  });
  for (int i = 0; i < 50 && total < pares.size(); ++i) total = c.Envia(pares, total);
  leitor.join();
  EXPECT_EQ(total, pares.size());
  EXPECT_EQ(respostas, kPares);
  EXPECT_TRUE(QVTesteLinhasErro().empty());
  s.EncerraLimpo();
}

TEST(ServidorSobAbuso, ConexoesAlemDoLimiteSaoFechadasAoChegar) {
  CServidor s({"--max-conexoes", "2"});
  ASSERT_TRUE(s.EsperaErro("ouvindo unix:")) << s.Erros();
  auto a = std::make_unique<CClienteBruto>(s.Socket());
  CClienteBruto b(s.Socket());
  ASSERT_TRUE(s.EsperaErro("conexão 2 aberta"));
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(CClienteBruto(s.Socket()).Encerrada(1000));
  EXPECT_EQ(LinhasCom("limite de 2 conexões atingido"), 1u);  // once per run of refusals
  a.reset();
  EXPECT_TRUE(s.EsperaErro("2 conexões recusadas pelo limite; aceitando de novo"));
  CClienteBruto c(s.Socket());
  EXPECT_TRUE(c.Atendido());
  s.EncerraLimpo();
}

TEST(ServidorSobAbuso, SemDescritoresLogaEsperaEVoltaAAceitar) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizers' runtime probes memory through a pipe of its own, and reports false errors once "
                  "the process has no descriptor left";
#endif
  CServidor s({});
  ASSERT_TRUE(s.EsperaErro("ouvindo unix:")) << s.Erros();
  // Room for two more descriptors (the lowest free numbers are taken
  // first): the third connection cannot be taken.
  const std::string fds = "/proc/" + std::to_string(s.Pid()) + "/fd/";
  int teto = 0;
  for (int livres = 0; livres < 2; ++teto) livres += !std::filesystem::is_symlink(fds + std::to_string(teto));
  rlimit original{};
  ASSERT_EQ(::prlimit(s.Pid(), RLIMIT_NOFILE, nullptr, &original), 0);
  const rlimit limite{static_cast<rlim_t>(teto), original.rlim_max};
  ASSERT_EQ(::prlimit(s.Pid(), RLIMIT_NOFILE, &limite, nullptr), 0) << std::strerror(errno);

  auto um = std::make_unique<CClienteBruto>(s.Socket());
  CClienteBruto dois(s.Socket()), tres(s.Socket());
  ASSERT_TRUE(s.EsperaErro("aceitar conexão (unix) falhou: HRESULT_FROM_WIN32(ERROR_TOO_MANY_OPEN_FILES)"))
      << s.Erros();
  EXPECT_TRUE(s.EsperaErro("conexão 2 aberta"));
  // Once a descriptor is free again the waiting connection is taken and served.
  um.reset();
  EXPECT_TRUE(s.EsperaErro("conexão 3 aberta")) << s.Erros();
  EXPECT_NE(s.Erros().find("aceitando conexões (unix) de novo"), std::string::npos);
  EXPECT_TRUE(tres.Atendido());
  ASSERT_EQ(::prlimit(s.Pid(), RLIMIT_NOFILE, &original, nullptr), 0);  // what the exit needs
  s.EncerraLimpo();
}
