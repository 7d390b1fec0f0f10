// The suite store's tables as administrators load and read them
// (`zelkorin suite`): a constant description of every table, its columns
// and their kinds, and the generic import, export, listing and views over
// that description.
//
// Files are CSV or JSON, UTF-8, and carry every value in its text form:
//  - CSV: a header row naming the columns, in any order, then one record a
//    row (RFC 4180: a field with a comma, a quote or a line break is
//    quoted, a quote inside doubled; CRLF or LF). Written with CRLF.
//  - JSON: an array of objects, one per row, keyed by column name.
// A column left out of the file, or an empty field, takes the column's
// default (QVColunaSuite::sPadrao); a required column must be given.
//
// The kinds, stored and written:
//   texto     TEXT                     as it stands (valid UTF-8)
//   inteiro   INTEGER                  "-12" (a JSON number)
//   ponteiro  INTEGER, a row's pointer "12" (a JSON number; empty or null:
//                                      none, or the next free pointer for
//                                      the table's own "ponteiro")
//   booleano  INTEGER 0 or 1           "1"/"0" (JSON true/false); read also
//                                      as sim/não, S/N, true/false
//   moeda     INTEGER, 4 decimals      "1.234,56" (a JSON string; a JSON
//                                      number 1234.56 is read too)
//   data      INTEGER day number       "AAAA-MM-DD"; 0 is ""
//   mes       INTEGER month code       "AAAA-MM"; 0 is ""
//   datahora  INTEGER 64-bit date-time "AAAA-MM-DD HH:MM:SS.mmm" (read only)
//   empresa   the row's company        not in files: the company of the
//                                      command (--empresa), which also
//                                      narrows what is exported and listed
//
// An import is one transaction: the first bad row (an unknown or repeated
// column, a value that is not of its kind, a required value missing, a
// pointer to no row of the company, a duplicate of a unique key, a company
// name equal to another's ignoring case, anything else the store refuses)
// ends it with E_QVDF_IMPORTACAO_LINHA_INVALIDA and a message naming the
// CSV line (the line the record starts on; the header is line 1) or the
// JSON array index (from 0) and the column, logged once; nothing of the
// file stays. Files above kQVTamanhoMaximoImportacao are refused unread.
// Reads hold one row of each statement at a time, never a whole table.
//
// SQL is made only from the names in these descriptions; values are
// always bound.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "platform/QVHResult.h"

class CQVBancoSuite;

enum class EQVTipoColunaSuite : std::uint8_t {
  Texto,
  Inteiro,
  Ponteiro,
  Booleano,
  Moeda,
  Data,
  Mes,
  DataHora,
  Empresa
};

// Column options.
inline constexpr std::uint32_t kQVColunaNula = 0x1;         // empty or 0: NULL (no default)
inline constexpr std::uint32_t kQVColunaNomeEmpresa = 0x2;  // a company's name: valid, unique ignoring case

struct QVColunaSuite {
  const char* sNome;
  EQVTipoColunaSuite eTipo;
  // The default in the files' form ("" is the kind's empty value); nullptr:
  // the row must give it (or, with kQVColunaNula, it is NULL).
  const char* sPadrao = "";
  std::uint32_t fOpcoes = 0;
  // For a pointer: the table it points into (an import checks the row
  // exists, and is of the company when that table is per company).
  const char* sReferencia = nullptr;
  // For a text: the values it may take, separated by '|'.
  const char* sValores = nullptr;
  // For an integer or a pointer.
  std::int64_t iMinimo = std::numeric_limits<std::int64_t>::min();
  std::int64_t iMaximo = std::numeric_limits<std::int64_t>::max();

  bool Obrigatoria() const { return sPadrao == nullptr && (fOpcoes & kQVColunaNula) == 0; }
};

struct QVTabelaSuite {
  const char* sNome;
  std::span<const QVColunaSuite> colunas;
  bool bSomenteLeitura;
  // The rows of one company: a condition whose parameter ?1 is the
  // company's pointer; nullptr for a table of every company.
  const char* sEscopo;
  const char* sOrdem;
  // Unique keys an import checks before inserting (comma-separated columns).
  std::array<const char*, 2> chaves;

  bool PorEmpresa() const { return sEscopo != nullptr; }
  // The index of a column, or -1.
  int Coluna(std::string_view sColuna) const;
};

// Every table, those an import may load first, in an order that loads the
// rows a pointer needs before the pointer.
std::span<const QVTabelaSuite> QVTabelasSuite();
const QVTabelaSuite* QVProcuraTabelaSuite(std::string_view sNome);
const char* QVNomeTipoColunaSuite(EQVTipoColunaSuite eTipo);

enum class EQVFormatoTabela { Csv, Json };
// "csv" or "json" (any case); false for anything else.
bool QVLeFormatoTabela(std::string_view sTexto, EQVFormatoTabela* pFormato);
// By the file's extension, ".csv" or ".json" (any case).
bool QVFormatoDoArquivo(std::string_view sCaminho, EQVFormatoTabela* pFormato);

inline constexpr std::uint64_t kQVTamanhoMaximoImportacao = 64ull << 20;

// A value ready to bind: NULL, an integer or a text.
using QVValorSuite = std::variant<std::monostate, std::int64_t, std::string>;
// Reads one field of a file (its text form) as the column's kind; an empty
// field gives the default. False, with the reason in *pMotivo, when the
// text is not of the kind or a required value is empty.
bool QVLeCampoSuite(const QVColunaSuite& coluna, std::string_view sTexto, QVValorSuite* pValor, std::string* pMotivo);

// The company a command works on: the one named (compared ignoring case as
// the suite does), else the only one the store has. For a table of every
// company, none (0) and no name allowed. E_QVDF_EMPRESA_NAO_CADASTRADA for a
// name the store lacks or a store without companies, E_INVALIDARG when a
// name is needed or not allowed; the message in *pErro, logged.
[[nodiscard]] HRESULT QVEmpresaDaTabela(CQVBancoSuite& banco, const QVTabelaSuite& tabela, std::string_view sEmpresa,
                                        std::uint32_t* plEmpresa, std::string* pErro);

// Reads an import file whole, refusing one larger than the bound
// (HRESULT_FROM_WIN32(ERROR_INVALID_DATA)) and one it cannot read.
[[nodiscard]] HRESULT QVLeArquivoImportacao(const std::string& sCaminho, std::string* pConteudo, std::string* pErro);

// Loads the rows of a file's text into a table, for the company lEmpresa
// (QVEmpresaDaTabela). *pLinhas: the rows inserted. A read-only table
// answers E_INVALIDARG.
[[nodiscard]] HRESULT QVImportaTabela(CQVBancoSuite& banco, const QVTabelaSuite& tabela, std::uint32_t lEmpresa,
                                      std::string_view sConteudo, EQVFormatoTabela eFormato, std::size_t* pLinhas,
                                      std::string* pErro);

// Where output goes, a piece at a time; a failure stops the writer.
using QVSaidaTabela = std::function<HRESULT(std::string_view)>;

// The rows of a table (of the company, for a per-company table) in a file
// format that QVImportaTabela reads back to the same rows.
[[nodiscard]] HRESULT QVExportaTabela(CQVBancoSuite& banco, const QVTabelaSuite& tabela, std::uint32_t lEmpresa,
                                      EQVFormatoTabela eFormato, const QVSaidaTabela& saida,
                                      std::size_t* pLinhas = nullptr);
// The same rows as a table to read on a terminal: aligned columns, texts
// cut at 40 characters, line breaks as spaces.
[[nodiscard]] HRESULT QVListaTabela(CQVBancoSuite& banco, const QVTabelaSuite& tabela, std::uint32_t lEmpresa,
                                    const QVSaidaTabela& saida);

// Views that join a table to its detail rows: "acompanhamentos" (each
// follow-up with its services), "eventos" (each calendar event list with
// its events), "log" (the transaction log, newest first), "vinculos"
// (linked information).
struct QVVisaoSuite {
  const char* sNome;
  const char* sTabela;
  const char* sOrdem;
  // The detail rows: their table, the condition tying them to the row's
  // "ponteiro" (?1), their order, and their key in a JSON object.
  const char* sDetalhe;
  const char* sLigacao;
  const char* sOrdemDetalhe;
  const char* sChaveDetalhe;
};
std::span<const QVVisaoSuite> QVVisoesSuite();
const QVVisaoSuite* QVProcuraVisaoSuite(std::string_view sNome);
// One line per row with its filled columns ("coluna=valor"), its details
// indented under it; or a JSON array with the details as an array member.
[[nodiscard]] HRESULT QVMostraVisao(CQVBancoSuite& banco, const QVVisaoSuite& visao, std::uint32_t lEmpresa, bool bJson,
                                    const QVSaidaTabela& saida);

// The tables and their columns, kinds, defaults and pointers.
[[nodiscard]] HRESULT QVDescreveTabelas(bool bJson, const QVSaidaTabela& saida);
