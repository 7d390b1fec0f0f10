// Folders named without regard to case, as the suite's file system names
// them: "Empresa" and "EMPRESA" are one folder.
#pragma once

#include <string>

// The name of the folder inside sPai that is sNome when case is ignored
// (the code page's letters, QVMaiusculasCodePage): sNome itself when that
// folder exists or none matches; among several matches, the first in byte
// order. A parent that cannot be read matches nothing.
std::string QVResolveFolderCase(const std::string& sPai, const std::string& sNome);
