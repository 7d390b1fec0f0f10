#include "suite/invoices/QVNumerosNF.h"

namespace {

// 18 digits always fit in 63 bits (10^18 - 1 < 2^63 - 1): no overflow check
// is needed once the count is bounded.
constexpr int kMaxDigitosNF = 18;

}  // namespace

std::string QVNumeroNFTexto(std::int64_t i64NumeroNF) {
  if (i64NumeroNF == 0) return {};
  return std::to_string(i64NumeroNF);
}

std::string QVNumeroNFTextoComSerie(std::int64_t i64NumeroNF, std::string_view sSerie) {
  // No invoice has no series to show either.
  std::string s = QVNumeroNFTexto(i64NumeroNF);
  if (s.empty() || sSerie.empty()) return s;
  s += '/';
  s += sSerie;
  return s;
}

bool QVNumeroNFLe(std::string_view sTexto, std::int64_t* pi64NumeroNF) {
  if (pi64NumeroNF == nullptr || sTexto.empty()) return false;
  // With separators, every group after the first has exactly three digits
  // and the first one to three: "1.234.567", never "12.34" or "1234.567".
  std::int64_t i64Numero = 0;
  int iDigitos = 0;
  int iNoGrupo = 0;
  bool bPrimeiroGrupo = true;
  for (const char c : sTexto) {
    if (c == '.') {
      if (iNoGrupo == 0 || (bPrimeiroGrupo ? iNoGrupo > 3 : iNoGrupo != 3)) return false;
      bPrimeiroGrupo = false;
      iNoGrupo = 0;
      continue;
    }
    if (c < '0' || c > '9' || ++iDigitos > kMaxDigitosNF) return false;
    ++iNoGrupo;
    i64Numero = i64Numero * 10 + (c - '0');
  }
  if (iNoGrupo == 0 || (!bPrimeiroGrupo && iNoGrupo != 3)) return false;
  *pi64NumeroNF = i64Numero;
  return true;
}
