// The suite's 8-bit text: char[n] fields of the wire records and the texts of
// the data files are in the suite's code page, Windows-1252. Our own texts
// (messages, logs, company names inside the server) are UTF-8; these convert
// at the boundary.
//
// Five bytes of the code page stand for no character: 0x81, 0x8D, 0x8F, 0x90
// and 0x9D. Bytes 0x80..0x9F otherwise hold the typographic characters
// (0x80 is U+20AC); every other byte equals its Unicode code point.
#pragma once

#include <string>
#include <string_view>

// UTF-8 to the 8-bit code page; characters it cannot hold become '?'.
std::string QVUtf8ToAnsi(std::string_view utf8);
// The same, refusing instead of replacing: false when some character (or
// an invalid UTF-8 sequence) has no byte in the code page; *pAnsi is then
// left unchanged.
bool QVUtf8ToAnsiExato(std::string_view utf8, std::string* pAnsi);
// The 8-bit code page to UTF-8; undefined bytes become U+FFFD.
std::string QVAnsiToUtf8(std::string_view ansi);
// Whether every byte is a character of the code page.
bool QVAnsiDefinido(std::string_view ansi);

// Names as the suite's file system compares them: the letters of the code
// page in upper case (a-z, à-þ except ÷, and š œ ž ÿ), everything else
// unchanged. UTF-8 in and out.
std::string QVMaiusculasCodePage(std::string_view utf8);
bool QVIguaisSemCaixa(std::string_view utf8a, std::string_view utf8b);
