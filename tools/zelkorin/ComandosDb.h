// `zelkorin db`: the administrators' window into a company's data files.
// Only `control --forget` changes a file.
//
//   zelkorin db header FILE                 the preamble and header as JSON
//   zelkorin db verify PATH... [--record-size N] [--json]
//                                           one line per file: OK or the failure;
//                                           a directory is also judged as a
//                                           company's database; exit 1 when
//                                           anything failed
//   zelkorin db dump FILE (--record-size N | --text) [--json]
//                                           records as hex, or texts, with positions
//   zelkorin db control DIR [--forget NAME] [--root RAIZ] [--json]
//                                           the file-creation control's entries and
//                                           which files are missing (exit 1 when
//                                           any is); --forget drops the entry of a
//                                           missing file and logs it
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
int QVComandoDbVerify(const std::vector<std::string>& caminhos, std::optional<std::size_t> tamRegistro, bool bJson,
                      std::ostream& out, std::ostream& err);
int QVComandoDbDump(const std::string& sArquivo, std::optional<std::size_t> tamRegistro, bool bTexto, bool bJson,
                    std::ostream& out, std::ostream& err);
int QVComandoDbControl(const std::string& sDiretorio, const std::optional<std::string>& sEsquecer, bool bJson,
                       std::ostream& out, std::ostream& err);

// Adds "db" and its commands to the program; the chosen command's exit code
// goes to *pCodigoSaida.
void QVRegistraComandosDb(CLI::App& app, int* pCodigoSaida);
