// zelkorin call: the scripting client.
//
//   zelkorin call [--socket PATH | --connect HOST:PORT | --root DIR] [--empresa E] [--usuario N]
//                 [--timeout-ms N] ARQUIVO.json | -
//
// Reads a document of calls,
//
//   {"empresa": "ACME", "usuario": 1,
//    "chamadas": [{"classe": "QVGE_Atendimento", "metodo": "LeAtendimento",
//                  "entrada": {"iMA": "2026-11", "lPosicao": 1}}, ...]}
//
// checks all of it before anything is sent, then makes one object per class
// named (when its first call comes), initialises it for the company and
// user (unless that first call is Inicializa_Padrao itself), runs the calls
// in order and prints one JSON document:
//
//   {"respostas": [{"metodo": "LeAtendimento", "hr": "0x00000000", "status": "S_OK",
//                   "saida": {"RegAtendimento": {...}}}, ...],
//    "objetos": [{"classe": "QVGE_Atendimento", "criacao": {...}, "inicializacao": {...}}]}
//
// A failed answer carries "ultimoErro" (the object's GetUltimoErro) instead
// of "saida". The records' JSON form is ge/zelkorin/json/ZelkorinJson.h.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>

#include "ge/zelkorin/transport/CQVConexaoZelkorin.h"

namespace CLI {
class App;
}

struct QVOpcoesCall {
  QVOpcoesConexao conexao;  // neither socket nor address: the classes of this process
  std::string raiz;         // in this process: the data root ("" for the default)
  // Override the document's; the default company and user are the sample's.
  std::optional<std::string> empresa;
  std::optional<std::uint32_t> usuario;
  std::string arquivo;  // "-": the input stream
};

inline constexpr const char* kQVEmpresaPadraoCall = "EMPRESA_EXEMPLO";
inline constexpr std::uint32_t kQVUsuarioPadraoCall = 1;
// The largest document read (bytes).
inline constexpr std::size_t kQVMaxBytesDocumentoCall = 16u << 20;

// Exit code: 0 when every object and call succeeded; 1 when some failed,
// or no server answered; 2 when the document is refused (unreadable, not
// JSON, or naming something unknown or a value that does not read, with
// the place in err), in which case nothing was sent.
int QVComandoCall(const QVOpcoesCall& opcoes, std::istream& in, std::ostream& out, std::ostream& err);

// Adds "call"; its exit code goes to *pCodigoSaida.
void QVRegistraComandoCall(CLI::App& app, int* pCodigoSaida);
