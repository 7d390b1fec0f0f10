// Names of record files: one file ("GEATRPS" gives "GEATRPS.DAT"), or one
// file per month, the period written as four-digit year and two-digit month
// ("GEATTEC2" and July 2020 give "GEATTEC2202007.DAT").
//
// Names are ASCII; "without regard to case" below folds ASCII letters only.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

struct CQVFileNameFormat {
  static std::string Nome(const std::string& sRaiz, std::uint16_t iMA);
  // One file: no period.
  static std::uint16_t Periodo(const std::string&, const std::string&) { return 0; }
};

// Month-and-year text form number N of the suite; form 10 is "AAAAMM".
template <int N>
struct CQVFileNameFormatMa;

template <>
struct CQVFileNameFormatMa<10> {
  // root + "AAAAMM" + ".DAT"; the root alone (one file) for month code 0.
  static std::string Nome(const std::string& sRaiz, std::uint16_t iMA);
  // The period of a name: the six characters after the root read as year
  // and month. 0 when they cannot be read (not digits, a month outside
  // 1..12, a year outside the month codes' range).
  static std::uint16_t Periodo(const std::string& sNomeArquivo, const std::string& sRaiz);
};

// ---- members of a per-month group -------------------------------------------
//
// The one rule by which a group file (CQVGroupFileBase) and the
// administrators' verification judge the names in a directory. A group's
// pattern is its root, one '?' per character of the period, then the rest
// of the name: "GEATTEC2??????.DAT". A name is a member when it matches the
// pattern without regard to case, each '?' standing for any one character.
// A member's key is its period read as above; a member whose period is not
// a valid month makes the group's initialisation fail with
// E_QVCR_NOME_ARQUIVO_GROUP_INVALIDO. A name of another length (an old
// "MMAA" name, a longer root's name) is no member.

// "GEATTEC2" -> "GEATTEC2??????.DAT".
std::string QVPadraoGrupoMensal(std::string_view sRaiz);
bool QVCorrespondeAoPadraoGrupo(std::string_view sPadrao, std::string_view sNome);
// The month code of a member; 0 for a name that is no member or whose
// period is not a valid month.
std::uint16_t QVPeriodoMembroGrupo(std::string_view sPadrao, std::string_view sNome);

// Old month names, root + "MMAA" + ".DAT" (month and two-digit year, 84 and
// above 19xx, below 20xx), which the conversion renames to the "AAAAMM" form
// before any group is opened. Whether the name has that form (case
// ignored); *piMA gets its month code, 0 when the four characters do not
// read as a month.
bool QVNomeMensalAntigo(std::string_view sNome, std::string_view sRaiz, std::uint16_t* piMA);

// Equality of two names without regard to (ASCII) case.
bool QVNomesIguais(std::string_view a, std::string_view b);
