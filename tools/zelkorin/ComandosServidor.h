// The server's commands:
//
//   zelkorin serve [--root DIR] [--socket PATH] [--listen [HOST:]PORT [--allow-remote]] [limits]
//       serves both classes until SIGTERM or SIGINT;
//   zelkorin status [--socket PATH | --connect HOST:PORT] [--empresa E] [--usuario N]
//                   [--estatisticas-empresa E] [--estatisticas-dia AAAA-MM-DD] [--json]
//       asks a running server how it is.
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
// 1 when the server could not start, 2 when --listen is not an address or
// names one other machines can reach without bPermiteRemoto.
int QVComandoServe(const std::string& raiz, QVOpcoesServidor opcoes, std::ostream& err);

struct QVOpcoesStatus {
  QVOpcoesConexao conexao;
  std::string empresa = "EMPRESA_EXEMPLO";
  std::uint32_t usuario = 1;
  bool json = false;
  // What the statistics are narrowed to: a company, a day "YYYY-MM-DD".
  std::string estatisticasEmpresa;
  std::string estatisticasDia;
};
// Exit code: 0 when the server answered with its statistics, 1 when no
// server answered (or it dropped the connection), 2 when it answered
// without statistics (the reason goes to err).
int QVComandoStatus(const QVOpcoesStatus& opcoes, std::ostream& out, std::ostream& err);

// Adds "serve" and "status"; the chosen command's exit code goes to
// *pCodigoSaida.
void QVRegistraComandosServidor(CLI::App& app, int* pCodigoSaida);
