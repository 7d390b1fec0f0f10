// zelkorin: the server's command-line program.
//
//   zelkorin sample [--root DIR] [--empresa NOME] [--usuario N] [--sessao N]
//       runs the sample client session in this process and prints every answer.
//   zelkorin db header|verify|dump ...
//       inspects data files without changing them (ComandosDb.h).
#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>

#include "df/qvlibex/QVLog.h"
#include "df/qvlibex/QVProfilerLog.h"
#include "ge/zelkorin/ZelkorinClasses.h"
#include "suite/hostlink/QVSessaoSuite.h"
#include "tools/zelkorin/ComandosDb.h"
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
  CLI::App* sample = app.add_subcommand("sample", "Sessão de exemplo de um cliente, neste processo");
  sample->add_option("--root", raiz, "Raiz dos dados (padrão: $ZELKORIN_ROOT ou ~/.local/share/zelkorin)");
  sample->add_option("--empresa", opcoes.empresa, "Empresa da sessão");
  sample->add_option("--usuario", opcoes.usuario, "Código do usuário");
  sample->add_option("--sessao", opcoes.numeroSessao, "Número da sessão");

  int codigoSaida = 0;
  QVRegistraComandosDb(app, &codigoSaida);

  CLI11_PARSE(app, argc, argv);

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
