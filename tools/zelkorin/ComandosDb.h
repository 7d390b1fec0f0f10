// `zelkorin db`: the administrators' window into a company's data files.
// None of these commands changes a file.
//
//   zelkorin db header FILE                 the preamble and header as JSON
//   zelkorin db verify PATH... [--record-size N]
//                                           one line per file: OK or the failure;
//                                           exit 1 when any file fails
//   zelkorin db dump FILE (--record-size N | --text)
//                                           records as hex, or texts, with positions
#pragma once

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace CLI {
class App;
}

int QVComandoDbHeader(const std::string& sArquivo, std::ostream& out, std::ostream& err);
int QVComandoDbVerify(const std::vector<std::string>& caminhos, std::optional<std::size_t> tamRegistro,
                      std::ostream& out, std::ostream& err);
int QVComandoDbDump(const std::string& sArquivo, std::optional<std::size_t> tamRegistro, bool bTexto,
                    std::ostream& out, std::ostream& err);

// Adds "db" and its commands to the program; the chosen command's exit code
// goes to *pCodigoSaida.
void QVRegistraComandosDb(CLI::App& app, int* pCodigoSaida);
