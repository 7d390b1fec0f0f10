// Shared test support.
//
// Every test process runs in its own temporary directory (made by the test
// main): the error log, the machine settings file and the data root all
// point there, so tests never touch the user's files and never see each
// other's.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "df/qvlibex/QVRegistrosDF.h"

// The process's private directory.
const std::string& QVTesteDiretorio();
// A fresh empty subdirectory of it.
std::string QVTesteNovoDiretorio(const std::string& nome);

// The lines of the error log files written so far (header lines excluded),
// and the header lines themselves.
std::vector<std::string> QVTesteLinhasErro();
std::vector<std::string> QVTesteCabecalhosErro();
// Forgets the error log files written so far.
void QVTesteLimpaLog();

// Writes the machine settings file (JSON text).
void QVTesteDefineRegistro(const std::string& json);

// A valid initialisation record for a company (UTF-8, carried unchanged in
// the suite's code page).
_REG_DF_INICIALIZAPS QVTesteInicializaPS(const std::string& empresa = "EMPRESA_TESTE");

std::string QVTesteLeArquivo(const std::string& caminho);
