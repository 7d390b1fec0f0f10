// The suite's 8-bit text: char[n] fields of the wire records and the texts of
// the data files are in the suite's code page, Windows-1252. Our own texts
// (messages, logs) are UTF-8; these convert at the boundary.
#pragma once

#include <string>
#include <string_view>

// UTF-8 to the 8-bit code page; characters it cannot hold become '?'.
std::string QVUtf8ToAnsi(std::string_view utf8);
// The 8-bit code page to UTF-8; undefined bytes become U+FFFD.
std::string QVAnsiToUtf8(std::string_view ansi);
