// zelkorin: the server's command-line program.
//
//   zelkorin sample [--socket PATH | --connect HOST:PORT | --root DIR] [--empresa NOME] [--usuario N] [--sessao N]
//       runs the sample client session against a running server (or, with
//       neither --socket nor --connect, against the classes in this process)
//       and prints every answer.
//   zelkorin serve | status ...
//       runs the server, asks a running one how it is (ComandosServidor.h).
//   zelkorin db header|verify|dump|control ...
//       inspects data files; control --forget mends the file-creation
//       control (ComandosDb.h).
//   zelkorin suite init|import|export|list|show|tables ...
//       the suite store: the sample company, tables in and out as CSV or
//       JSON, what the server wrote (ComandosSuite.h).
//   zelkorin call [--socket PATH | --connect HOST:PORT | --root DIR] ARQUIVO.json|-
//       runs the calls of a JSON document on the two classes and prints
//       their answers as JSON (ComandoCall.h).
#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>

#include "df/qvlibex/QVLog.h"
#include "df/qvlibex/QVProfilerLog.h"
#include "ge/zelkorin/ZelkorinClasses.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "tools/zelkorin/ComandoCall.h"
#include "tools/zelkorin/ComandosDb.h"
#include "tools/zelkorin/ComandosServidor.h"
#include "tools/zelkorin/ComandosSuite.h"
#include "tools/zelkorin/SessaoExemplo.h"

namespace {

// The data root: given, else the embedded default (created on first use).
void PreparaRaiz(const std::string& raiz) {
  if (!raiz.empty()) QVDefineRaizDados(raiz);
  std::error_code ec;
  std::filesystem::create_directories(QVRaizDados(), ec);
  QVProfilerDefineDiretorioBase(QVRaizDados());
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"Zelkorin: servidor de atendimentos técnicos e projetos do módulo GE"};
  app.require_subcommand(1);

  std::string raiz;
  QVOpcoesSessaoExemplo opcoes;
  QVOpcoesConexao conexao;
  CLI::App* sample = app.add_subcommand("sample", "Sessão de exemplo de um cliente");
  auto* optSocket = sample->add_option("--socket", conexao.sSocket, "Socket Unix de um servidor em execução");
  auto* optConnect = sample->add_option("--connect", conexao.sEndereco, "HOST:PORTA de um servidor (TCP)");
  auto* optRaiz =
      sample->add_option("--root", raiz, "Sem servidor: raiz dos dados neste processo (padrão: $ZELKORIN_ROOT ou ~/.local/share/zelkorin)");
  optSocket->excludes(optConnect);
  optRaiz->excludes(optSocket)->excludes(optConnect);
  sample->add_option("--empresa", opcoes.empresa, "Empresa da sessão")->check(QVRecusaEmpresaParaRegistro);
  sample->add_option("--usuario", opcoes.usuario, "Código do usuário");
  sample->add_option("--sessao", opcoes.numeroSessao, "Número da sessão");

  int codigoSaida = 0;
  QVRegistraComandosDb(app, &codigoSaida);
  QVRegistraComandosServidor(app, &codigoSaida);
  QVRegistraComandosSuite(app, &codigoSaida);
  QVRegistraComandoCall(app, &codigoSaida);

  CLI11_PARSE(app, argc, argv);

  if (*sample && (!conexao.sSocket.empty() || !conexao.sEndereco.empty())) {
    const std::string onde = conexao.sEndereco.empty() ? "unix:" + conexao.sSocket : "tcp:" + conexao.sEndereco;
    std::printf("Zelkorin: sessão de exemplo no servidor em %s\n", onde.c_str());
    std::shared_ptr<CQVConexaoZelkorin> c;
    if (FAILED(QV_LOGA(CQVConexaoZelkorin::Conecta(conexao, &c)))) {
      std::fprintf(stderr, "zelkorin: nenhum servidor responde em %s\n", onde.c_str());
      return 1;
    }
    if (FAILED(QV_LOGA(c->RegistraClasses()))) return 1;
    const int rc = QVExecutaSessaoExemplo(opcoes, stdout);
    c->RevogaClasses();
    return rc;
  }
  if (*sample) {
    PreparaRaiz(raiz);
    std::printf("Zelkorin: sessão de exemplo (raiz de dados %s)\n", QVRaizDados().c_str());
    if (FAILED(QV_LOGA(QVRegistraClassesZelkorin()))) return 1;
    const int rc = QVExecutaSessaoExemplo(opcoes, stdout);
    QVRevogaClassesZelkorin();
    return rc;
  }
  return codigoSaida;
}
