// `zelkorin suite`: the administrators' window into the suite store of a
// data root (<root>/suite.db): companies, users, master data and what the
// server wrote. Every command opens the store, creating or upgrading it.
//
//   zelkorin suite init [--sample] [--json]
//       the store's path and schema version; --sample loads the sample
//       company EMPRESA_EXEMPLO when it is missing
//   zelkorin suite import TABELA ARQUIVO [--empresa NOME] [--formato csv|json] [--json]
//       loads a CSV or JSON file into a table, all of it or nothing
//   zelkorin suite export TABELA [--empresa NOME] [--formato csv|json] [--output ARQUIVO]
//       the rows in the form import reads back (to stdout without --output)
//   zelkorin suite list TABELA [--empresa NOME] [--json]
//       the rows as an aligned table
//   zelkorin suite show acompanhamentos|eventos|log|vinculos [--empresa NOME] [--json]
//       follow-ups with their services, event lists with their events, the
//       transaction log newest first, linked information
//   zelkorin suite tables [--json]
//       the tables, their columns and kinds
// All take --root DIR. --empresa is needed for a per-company table when
// the store has more than one company.
//
// Exit codes: 0 done; 1 the store, a file or a row failed (nothing
// imported); 2 the command line asks for something that does not exist
// or is not allowed (a table, a format, a view, --empresa).
#pragma once

#include <ostream>
#include <string>

namespace CLI {
class App;
}

struct QVOpcoesSuite {
  std::string sTabela;   // or the view, for show
  std::string sArquivo;  // import's file, export's --output
  std::string sEmpresa;
  std::string sFormato;
  bool bAmostra = false;
  bool bJson = false;
};

// Each works on the store of the process's data root (QVRaizDados()).
int QVComandoSuiteInit(const QVOpcoesSuite& opcoes, std::ostream& out, std::ostream& err);
int QVComandoSuiteImport(const QVOpcoesSuite& opcoes, std::ostream& out, std::ostream& err);
int QVComandoSuiteExport(const QVOpcoesSuite& opcoes, std::ostream& out, std::ostream& err);
int QVComandoSuiteList(const QVOpcoesSuite& opcoes, std::ostream& out, std::ostream& err);
int QVComandoSuiteShow(const QVOpcoesSuite& opcoes, std::ostream& out, std::ostream& err);
int QVComandoSuiteTables(const QVOpcoesSuite& opcoes, std::ostream& out, std::ostream& err);

// Adds "suite" and its commands to the program; the chosen command's exit
// code goes to *pCodigoSaida.
void QVRegistraComandosSuite(CLI::App& app, int* pCodigoSaida);
