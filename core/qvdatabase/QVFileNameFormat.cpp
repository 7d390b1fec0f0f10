#include "core/qvdatabase/QVFileNameFormat.h"

#include <cctype>
#include <cstdio>

#include "df/qvlibex/QVDatas.h"

std::string CQVFileNameFormat::Nome(const std::string& sRaiz, std::uint16_t) { return sRaiz + ".DAT"; }

std::string CQVFileNameFormatMa<10>::Nome(const std::string& sRaiz, std::uint16_t iMA) {
  int ano = 0, mes = 0;
  if (!QVMesAnoDecompoe(iMA, &ano, &mes)) return sRaiz + ".DAT";
  char periodo[16];
  std::snprintf(periodo, sizeof periodo, "%04d%02d", ano, mes);
  return sRaiz + periodo + ".DAT";
}

std::uint16_t CQVFileNameFormatMa<10>::Periodo(const std::string& sNomeArquivo, const std::string& sRaiz) {
  if (sNomeArquivo.size() < sRaiz.size() + 6) return 0;
  const std::string p = sNomeArquivo.substr(sRaiz.size(), 6);
  for (char c : p)
    if (!std::isdigit(static_cast<unsigned char>(c))) return 0;
  // Year, slash, month: "2020/07". Four digits are a year as written (the
  // two-digit reading of the month code helper does not apply).
  const int ano = std::stoi(p.substr(0, 4));
  return ano < 100 ? 0 : QVMesAno(ano, std::stoi(p.substr(4, 2)));
}
