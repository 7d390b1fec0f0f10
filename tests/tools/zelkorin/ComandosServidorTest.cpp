// The server's program end to end: `zelkorin serve` on its default socket,
// `zelkorin sample` and `zelkorin status` against it, SIGTERM, and what the
// operator reads on stderr.
#include "tools/zelkorin/ComandosServidor.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/support/QVServidorTeste.h"
#include "tests/support/QVTestSupport.h"

namespace {

// True once something accepts connections on the socket.
bool Atende(const std::string& caminho) {
  sockaddr_un end{};
  end.sun_family = AF_UNIX;
  std::strncpy(end.sun_path, caminho.c_str(), sizeof end.sun_path - 1);
  const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const bool ok = ::connect(fd, reinterpret_cast<sockaddr*>(&end), sizeof end) == 0;
  ::close(fd);
  return ok;
}

bool SaiuCom(int status, int codigo) { return WIFEXITED(status) && WEXITSTATUS(status) == codigo; }

// How many lines the error logs of a server on that data root hold.
std::size_t LinhasLog(const std::string& raiz) {
  std::size_t n = 0;
  std::error_code ec;
  for (const auto& e : std::filesystem::directory_iterator(raiz + "/QVProfiler", ec))
    n += std::count(std::istreambuf_iterator<char>(std::ifstream(e.path()).rdbuf()), {}, '\n');
  return n;
}

}  // namespace

TEST(ComandosServidor, ServeSampleStatusESigterm) {
  // The default data root comes from the environment here and is made on
  // the first start, with the socket inside it. TCP on every interface is
  // allowed, with a warning.
  const std::string raiz = QVTesteDiretorio() + "/raiz-padrao";
  ::setenv("ZELKORIN_ROOT", raiz.c_str(), 1);
  CQVProcessoTeste servidor({"serve", "--listen", "*:0", "--allow-remote"}, ZELKORIN_PROGRAMA);
  ::unsetenv("ZELKORIN_ROOT");
  const std::string socket = QVSocketPadrao(raiz);
  ASSERT_TRUE(QVTesteEsperaQue([&] { return Atende(socket); })) << servidor.Erros();

  CQVProcessoTeste sample({"sample", "--socket", socket, "--empresa", "ACME"}, ZELKORIN_PROGRAMA);
  EXPECT_TRUE(sample.EsperaLinha("QVGE_Projeto {87EABE28-DC83-4C70-8B1C-5F1B4F2142DF}"));
  EXPECT_TRUE(SaiuCom(sample.Espera(), 0)) << sample.Erros();

  QVOpcoesStatus opcoes;
  opcoes.conexao.sSocket = socket;
  opcoes.empresa = "ACME";
  opcoes.json = true;
  std::ostringstream out, err;
  ASSERT_EQ(QVComandoStatus(opcoes, out, err), 0) << err.str();
  const auto j = nlohmann::json::parse(out.str());
  EXPECT_EQ(j["QVGE_Atendimento"]["inicializaPadrao"], "0x00000000 S_OK");
  EXPECT_EQ(j["QVGE_Projeto"]["keepAlive"]["bOK"], 1);
  // The process's statistics hold the sample's calls too.
  const auto& dias = j["estatisticas"]["processo"]["ACME"];
  ASSERT_EQ(dias.size(), 1u);
  EXPECT_EQ(dias.begin().value()["CQVGE_Atendimento"]["LePropriedades"]["9"]["chamadas"], 1);
  EXPECT_EQ(j["estatisticas"]["servidor"]["objetosAtivos"], 1);  // the status's own, at that moment

  opcoes.json = false;
  out.str("");
  ASSERT_EQ(QVComandoStatus(opcoes, out, err), 0);
  EXPECT_NE(out.str().find("Servidor em unix:" + socket), std::string::npos) << out.str();
  EXPECT_NE(out.str().find("CQVGE_Atendimento   LePropriedades"), std::string::npos) << out.str();

  // A day that is not one gets no statistics, and the status says so.
  opcoes.estatisticasDia = "ontem";
  EXPECT_EQ(QVComandoStatus(opcoes, out, err), 2);
  EXPECT_NE(err.str().find("não deu estatísticas (QVGE_Atendimento: FuncaoGenerica(9001) 0x80070057 E_INVALIDARG"),
            std::string::npos)
      << err.str();

  // A clean stop writes nothing to the error log.
  const std::size_t linhasLog = LinhasLog(raiz);
  EXPECT_TRUE(SaiuCom(servidor.Termina(SIGTERM), 0));
  EXPECT_EQ(LinhasLog(raiz), linhasLog);
  const std::string erros = servidor.Erros();
  for (const char* linha : {"raiz de dados ", "zelkorin: ouvindo unix:", "zelkorin: ouvindo tcp:0.0.0.0:0 (porta ",
                            "zelkorin: aviso: tcp:0.0.0.0:0 aceita conexões de outras máquinas, sem autenticação",
                            "zelkorin: conexão 1 aberta (unix)", "zelkorin: conexão 3 encerrada",
                            "zelkorin: sinal SIGTERM", "zelkorin: encerrado"})
    EXPECT_NE(erros.find(linha), std::string::npos) << linha << "\n" << erros;
  EXPECT_FALSE(Atende(socket));

  // Nobody answers now: the status says so and fails.
  err.str("");
  EXPECT_EQ(QVComandoStatus(opcoes, out, err), 1);
  EXPECT_NE(err.str().find("nenhum servidor responde em unix:" + socket), std::string::npos) << err.str();
}

TEST(ComandosServidor, LinhasDeComandoRuinsNaoIniciamNada) {
  const std::string raiz = QVTesteNovoDiretorio("r");
  const std::string longo = raiz + "/" + std::string(120, 's') + ".sock";
  struct Caso {
    std::vector<std::string> args;
    int codigo;  // -1: any failure
    const char* diz;
  };
  const Caso casos[] = {
      {{"serve", "--max-elementos", "0"}, -1, ""},
      {{"serve", "--tempo-ocioso-ms", "0"}, -1, ""},
      {{"status", "--socket", "a", "--connect", "b:1"}, -1, ""},
      {{"sample", "--root", "r", "--socket", "s"}, -1, ""},
      // Every interface, spelt three ways: refused without --allow-remote.
      {{"serve", "--root", raiz, "--listen", "0.0.0.0:0"}, 2, "use --allow-remote"},
      {{"serve", "--root", raiz, "--listen", "*:0"}, 2, "(tcp:0.0.0.0:0) aceitaria conexões de outras máquinas"},
      {{"serve", "--root", raiz, "--listen", "[::]:0"}, 2, "use --allow-remote"},
      {{"serve", "--root", raiz, "--listen", "::1:0"}, 2, "endereço inválido"},
      {{"serve", "--root", raiz, "--listen", "porta"}, 2, "endereço inválido: 0x80070057 E_INVALIDARG"},
      // A socket path that is a directory, one longer than the system takes.
      {{"serve", "--root", raiz, "--socket", QVTesteDiretorio()}, 1, "ERROR_FILE_EXISTS"},
      {{"serve", "--root", raiz, "--socket", longo}, 1, "ERROR_FILENAME_EXCED_RANGE"},
  };
  for (const Caso& c : casos) {
    SCOPED_TRACE(c.args[0] + " " + c.args.back());
    CQVProcessoTeste p(c.args, ZELKORIN_PROGRAMA);
    const int status = p.Espera();
    ASSERT_TRUE(WIFEXITED(status)) << p.Erros();
    EXPECT_TRUE(c.codigo < 0 ? WEXITSTATUS(status) != 0 : WEXITSTATUS(status) == c.codigo) << p.Erros();
    EXPECT_NE(p.Erros().find(c.diz), std::string::npos) << p.Erros();
  }
}
