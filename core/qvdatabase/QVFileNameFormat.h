// Names of record files: one file ("GEATRPS" gives "GEATRPS.DAT"), or one
// file per month, the period written as four-digit year and two-digit month
// ("GEATTEC2" and July 2020 give "GEATTEC2202007.DAT").
#pragma once

#include <cstdint>
#include <string>

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
