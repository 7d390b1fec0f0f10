// Invoice numbers as texts (the suite's InvoiceNumbers library): what the
// reports print for the 64-bit number an invoice or a call carries.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Decimal digits, no separators ("%I64d"); "" for 0 (no invoice).
std::string QVNumeroNFTexto(std::int64_t i64NumeroNF);
// With the series: "123/A"; the number alone without a series.
std::string QVNumeroNFTextoComSerie(std::int64_t i64NumeroNF, std::string_view sSerie);
// Reads a number written by a user: digits with optional '.' thousand
// separators, 1 to 18 digits. False (nothing written) otherwise.
bool QVNumeroNFLe(std::string_view sTexto, std::int64_t* pi64NumeroNF);
