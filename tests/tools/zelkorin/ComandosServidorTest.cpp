// The server's program end to end: `zelkorin serve` on its default socket,
// `zelkorin sample` and `zelkorin status` against it, SIGTERM, and what the
// operator reads on stderr.
#include "tools/zelkorin/ComandosServidor.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>

#include "df/qvlibex/QVProfilerLog.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "tests/support/QVServidorTeste.h"
#include "tests/support/QVTestSupport.h"

namespace {

bool SaiuCom(int status, int codigo) { return WIFEXITED(status) && WEXITSTATUS(status) == codigo; }

}  // namespace

TEST(ComandosServidor, ServeSampleStatusESigterm) {
  // The default data root comes from the environment here and is made on
  // the first start, with the socket inside it. TCP on every interface is
  // allowed, with a warning.
  const std::string raiz = QVTesteDiretorio() + "/raiz-padrao";
  // The sample's and the status's company and user (1), known to the suite there.
  QVDefineRaizDados(raiz);
  QVTesteCadastraEmpresa("ACME", 1);
  QVDefineRaizDados(QVTesteDiretorio() + "/dados");
  ::setenv("ZELKORIN_ROOT", raiz.c_str(), 1);
  CQVProcessoTeste servidor({"serve", "--listen", "*:0", "--allow-remote"}, ZELKORIN_PROGRAMA);
  ::unsetenv("ZELKORIN_ROOT");
  const std::string socket = QVSocketPadrao(raiz);
  const auto disse = [&](const std::string& linha) { return servidor.Erros().find(linha) != std::string::npos; };
  ASSERT_TRUE(QVTesteEsperaQue([&] { return disse("zelkorin: ouvindo unix:" + socket); })) << servidor.Erros();

  CQVProcessoTeste sample({"sample", "--socket", socket, "--empresa", "ACME"}, ZELKORIN_PROGRAMA);
  EXPECT_TRUE(sample.EsperaLinha("QVGE_Projeto {87EABE28-DC83-4C70-8B1C-5F1B4F2142DF}"));
  EXPECT_TRUE(SaiuCom(sample.Espera(), 0)) << sample.Erros();

  QVOpcoesStatus opcoes{.conexao = {.sSocket = socket}, .empresa = "ACME", .json = true};
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
  ASSERT_EQ(QVComandoStatus(opcoes, out, err), 0);
  EXPECT_NE(out.str().find("Servidor em unix:" + socket), std::string::npos) << out.str();
  EXPECT_NE(out.str().find("CQVGE_Atendimento   LePropriedades"), std::string::npos) << out.str();

  // A day that is not one gets no statistics, and the status says so.
  opcoes.estatisticasDia = "ontem";
  EXPECT_EQ(QVComandoStatus(opcoes, out, err), 2);
  EXPECT_NE(err.str().find("não deu estatísticas (QVGE_Atendimento: FuncaoGenerica(9001) 0x80070057 E_INVALIDARG"),
            std::string::npos)
      << err.str();

  // A clean stop writes nothing to the error log (the server's, under its
  // root) and removes the socket.
  QVProfilerDefineDiretorioBase(raiz);
  const std::size_t linhasLog = QVTesteLinhasErro().size();
  EXPECT_TRUE(SaiuCom(servidor.Termina(SIGTERM), 0));
  EXPECT_EQ(QVTesteLinhasErro().size(), linhasLog);
  QVProfilerDefineDiretorioBase(QVTesteDiretorio());
  EXPECT_FALSE(std::filesystem::exists(socket));
  for (const char* linha : {"raiz de dados ", "zelkorin: ouvindo tcp:0.0.0.0:0 (porta ",
                            "zelkorin: aviso: tcp:0.0.0.0:0 aceita conexões de outras máquinas, sem autenticação",
                            "zelkorin: conexão 1 aberta (unix)", "zelkorin: conexão 3 encerrada",
                            "zelkorin: sinal SIGTERM", "zelkorin: encerrado"})
    EXPECT_TRUE(disse(linha)) << linha << "\n" << servidor.Erros();

  // Nobody answers now: the status says so and fails.
  EXPECT_EQ(QVComandoStatus(opcoes, out, err), 1);
  EXPECT_NE(err.str().find("nenhum servidor responde em unix:" + socket), std::string::npos) << err.str();
}

TEST(ComandosServidor, LinhasDeComandoRuinsNaoIniciamNada) {
  const std::string raiz = QVTesteNovoDiretorio("r");
  const std::string longo = raiz + "/" + std::string(120, 's') + ".sock";
  const std::tuple<std::vector<std::string>, int, const char*> casos[] = {
      // arguments, exit code (-1: any failure), what stderr says
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
  for (const auto& [args, codigo, diz] : casos) {
    SCOPED_TRACE(args[0] + " " + args.back());
    CQVProcessoTeste p(args, ZELKORIN_PROGRAMA);
    const int status = p.Espera();
    EXPECT_TRUE(codigo < 0 ? WIFEXITED(status) && WEXITSTATUS(status) != 0 : SaiuCom(status, codigo)) << p.Erros();
    EXPECT_NE(p.Erros().find(diz), std::string::npos) << p.Erros();
  }
}
