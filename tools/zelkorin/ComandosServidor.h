// The server's commands:
//
//   zelkorin serve [--root DIR] [--socket PATH] [--listen [HOST:]PORT] [limits]
//       serves both classes until SIGTERM or SIGINT;
//   zelkorin status [--socket PATH | --connect HOST:PORT] [--empresa E] [--usuario N] [--json]
//       asks a running server how it is: exit 0 when it answers.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>

#include "ge/zelkorin/transport/CQVConexaoZelkorin.h"
#include "ge/zelkorin/transport/ZelkorinRpcServidor.h"

namespace CLI {
class App;
}

// The socket of a data root when none is given.
std::string QVSocketPadrao(const std::string& raiz);

// Serves from the data root (created when missing) with the classes of this
// process; lines for the operator go to err. Exit code: 0 after a signal,
// 1 when the server could not start.
int QVComandoServe(const std::string& raiz, QVOpcoesServidor opcoes, std::ostream& err);

struct QVOpcoesStatus {
  QVOpcoesConexao conexao;
  std::string empresa = "EMPRESA_EXEMPLO";
  std::uint32_t usuario = 1;
  bool json = false;
};
int QVComandoStatus(const QVOpcoesStatus& opcoes, std::ostream& out, std::ostream& err);

// Adds "serve" and "status"; the chosen command's exit code goes to
// *pCodigoSaida.
void QVRegistraComandosServidor(CLI::App& app, int* pCodigoSaida);
