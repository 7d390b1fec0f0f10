// System strings (BSTR): UTF-16 code units behind a 4-byte length prefix.
//
// Memory layout of one string of n code units:
//   [u32 byte length = 2n][n x char16_t][char16_t 0]
//                          ^ the BSTR points here
// A null BSTR is the empty string everywhere. Strings are owned by whoever
// receives them and are freed with SysFreeString.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

using OLECHAR = char16_t;
using BSTR = OLECHAR*;

// Copies a zero-terminated string; null in gives null out.
BSTR SysAllocString(const OLECHAR* psz);
// Copies len code units from pch (or leaves them zero when pch is null);
// the terminator is always added. Null when memory runs out.
BSTR SysAllocStringLen(const OLECHAR* pch, std::uint32_t len);
// Number of code units (the prefix / 2); 0 for null.
std::uint32_t SysStringLen(BSTR bstr);
// Number of bytes (the prefix); 0 for null.
std::uint32_t SysStringByteLen(BSTR bstr);
void SysFreeString(BSTR bstr);

// Conversions for our own code: the texts of the system are UTF-8 inside the
// server; system strings carry UTF-16.
BSTR QVBstrFromUtf8(std::string_view utf8);
std::string QVBstrToUtf8(BSTR bstr);
std::u16string QVUtf8ToUtf16(std::string_view utf8);
std::string QVUtf16ToUtf8(std::u16string_view utf16);
