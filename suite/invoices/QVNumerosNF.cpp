// Stub: replaced by the implementation.
#include "suite/invoices/QVNumerosNF.h"

std::string QVNumeroNFTexto(std::int64_t) { return {}; }
std::string QVNumeroNFTextoComSerie(std::int64_t, std::string_view) { return {}; }
bool QVNumeroNFLe(std::string_view, std::int64_t*) { return false; }
