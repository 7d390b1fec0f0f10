// The error log's own file access: appending one record to a text file that
// several processes append to at once.
//
// Permissions: a folder the append creates is 0750 and a file it creates is
// 0640 (owner reads and writes, the group reads, others nothing): the log
// names companies, users and paths. Existing folders and files keep theirs.
#pragma once

#include <string>
#include <string_view>

#include "platform/QVHResult.h"

// Appends sLinha to the file at sCaminho, creating the file and any missing
// folder of its path. Under an exclusive advisory lock on the file, held
// from the emptiness check to the end of the write, an empty file first
// gets sCabecalho: so the header is written once, and records of different
// processes never interleave. S_OK, or HRESULT_FROM_WIN32 of the platform's
// error for the step that failed.
[[nodiscard]] HRESULT QVAppendLogRecord(const std::string& sCaminho, std::string_view sCabecalho,
                                        std::string_view sLinha);
