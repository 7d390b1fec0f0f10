// Machine-wide settings: the stand-in for values under HKEY_LOCAL_MACHINE.
//
// They live in one JSON file, by default "/etc/zelkorin/registry.json"; the
// environment variable ZELKORIN_REGISTRY names another file, and tests point
// the process at their own with QVMachineSettingsSetPath. The file maps a key
// path to its values, both looked up without regard to case, as the registry
// does:
//   { "SOFTWARE\\Wow6432Node\\Quorvane": { "QVDataBase_DesabilitaCabecalho": 1 } }
// A missing file or value answers HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
// a file that is not valid JSON answers HRESULT_FROM_WIN32(ERROR_INVALID_DATA).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/QVHResult.h"

inline constexpr const char* kQVChaveMaquina = "SOFTWARE\\Wow6432Node\\Quorvane";

[[nodiscard]] HRESULT QVRegQueryMachineDword(std::string_view chave, std::string_view valor,
                                             std::uint32_t* pResultado);
[[nodiscard]] HRESULT QVRegQueryMachineString(std::string_view chave, std::string_view valor,
                                              std::string* pResultado);

// The file in use (after the environment and any override).
std::string QVMachineSettingsPath();
// Overrides the file; an empty path returns to the default.
void QVMachineSettingsSetPath(const std::string& caminho);
