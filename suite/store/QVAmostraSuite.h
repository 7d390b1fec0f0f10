// The sample company of a new installation, EMPRESA_EXEMPLO: a small,
// believable company of technical services, enough for the sample client
// session and for an administrator to see what each table holds.
//
// What it loads, in this order (in a fresh store each table's pointers
// start at 1): municipalities (Brazilian, with UF and IBGE code), the
// company, its branches (branch 1 the head office), users (user 1 the
// administrator, allowed in the company and in branch 1, active; some
// executors with their profiles), who may work in which branch, clients,
// units of measure (H with 2 decimals, UN with 0, KM with 1), services
// (titles 'T' "01", "02", "03" over services "01.001", "01.002", ...), two
// contracts, the module's settings, a few invoices and linked-information
// rows. Municipalities, units and users that the store already has (same
// IBGE code, abbreviation or login) are used rather than repeated.
#pragma once

#include "platform/QVHResult.h"

class CQVBancoSuite;

inline constexpr const char* kQVEmpresaAmostra = "EMPRESA_EXEMPLO";

// Loads the sample in one transaction: S_OK; S_FALSE, with nothing
// changed, when the store already has a company of that name (any case).
[[nodiscard]] HRESULT QVCriaAmostraSuite(CQVBancoSuite& banco);
