// The server's program end to end: `zelkorin serve` on its default socket,
// `zelkorin sample` and `zelkorin status` against it, SIGTERM, and what the
// operator reads on stderr.
#include "tools/zelkorin/ComandosServidor.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
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

}  // namespace

TEST(ComandosServidor, ServeSampleStatusESigterm) {
  // The default data root comes from the environment here and is made on
  // the first start, with the socket inside it.
  const std::string raiz = QVTesteDiretorio() + "/raiz-padrao";
  ::setenv("ZELKORIN_ROOT", raiz.c_str(), 1);
  CQVProcessoTeste servidor({"serve"}, ZELKORIN_PROGRAMA);
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

  EXPECT_TRUE(SaiuCom(servidor.Termina(SIGTERM), 0));
  const std::string erros = servidor.Erros();
  for (const char* linha : {"raiz de dados " , "zelkorin: ouvindo unix:", "zelkorin: conexão 1 aberta (unix)",
                            "zelkorin: conexão 3 encerrada", "zelkorin: sinal SIGTERM", "zelkorin: encerrado"})
    EXPECT_NE(erros.find(linha), std::string::npos) << linha << "\n" << erros;
  EXPECT_FALSE(Atende(socket));

  // Nobody answers now: the status says so and fails.
  err.str("");
  EXPECT_EQ(QVComandoStatus(opcoes, out, err), 1);
  EXPECT_NE(err.str().find("nenhum servidor responde em unix:" + socket), std::string::npos) << err.str();
}

TEST(ComandosServidor, LinhasDeComandoRuinsNaoIniciamNada) {
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{"serve", "--max-elementos", "0"},
        std::vector<std::string>{"status", "--socket", "a", "--connect", "b:1"},
        std::vector<std::string>{"sample", "--root", "r", "--socket", "s"}}) {
    CQVProcessoTeste p(args, ZELKORIN_PROGRAMA);
    const int status = p.Espera();
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) != 0) << args[0] << " " << p.Erros();
  }
  // A socket path that is a directory: the server does not start.
  CQVProcessoTeste p({"serve", "--root", QVTesteNovoDiretorio("r"), "--socket", QVTesteDiretorio()},
                     ZELKORIN_PROGRAMA);
  EXPECT_TRUE(SaiuCom(p.Espera(), 1)) << p.Erros();
  EXPECT_NE(p.Erros().find("o servidor não pôde iniciar"), std::string::npos) << p.Erros();
}
