// Globally unique identifiers of classes and interfaces, in the platform's
// binary layout (16 bytes: u32, u16, u16, u8[8]).
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

struct GUID {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];

  friend constexpr bool operator==(const GUID&, const GUID&) = default;
  friend constexpr auto operator<=>(const GUID&, const GUID&) = default;
};
static_assert(sizeof(GUID) == 16);

using IID = GUID;
using CLSID = GUID;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

constexpr GUID GUID_NULL{};

// Parses "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" (braces optional, either
// letter case). Anything else gives no value.
std::optional<GUID> QVGuidParse(std::string_view texto);
// Formats in upper case with braces, the registry's spelling.
std::string QVGuidFormat(const GUID& guid);
// A new random identifier (version 4).
GUID QVGuidNovo();

namespace qvguid_detail {
constexpr int Hex(char c) {
  return c >= '0' && c <= '9'   ? c - '0'
         : c >= 'a' && c <= 'f' ? c - 'a' + 10
         : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                : -1;
}
constexpr std::uint64_t Campo(const char* s, int n) {
  std::uint64_t v = 0;
  for (int i = 0; i < n; ++i) v = (v << 4) | static_cast<std::uint64_t>(Hex(s[i]));
  return v;
}
// The fields of an already checked "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}".
constexpr GUID Monta(const char* s) {
  GUID g{};
  g.Data1 = static_cast<std::uint32_t>(Campo(s + 1, 8));
  g.Data2 = static_cast<std::uint16_t>(Campo(s + 10, 4));
  g.Data3 = static_cast<std::uint16_t>(Campo(s + 15, 4));
  g.Data4[0] = static_cast<std::uint8_t>(Campo(s + 20, 2));
  g.Data4[1] = static_cast<std::uint8_t>(Campo(s + 22, 2));
  for (int i = 0; i < 6; ++i) g.Data4[2 + i] = static_cast<std::uint8_t>(Campo(s + 25 + 2 * i, 2));
  return g;
}
}  // namespace qvguid_detail

// Compile-time identifier from its 38-character registry spelling.
consteval GUID QVGuid(const char (&s)[39]) {
  using namespace qvguid_detail;
  for (int i = 1; i < 37; ++i) {
    if (i == 9 || i == 14 || i == 19 || i == 24) {
      if (s[i] != '-') throw "malformed GUID";
    } else if (Hex(s[i]) < 0) {
      throw "malformed GUID";
    }
  }
  if (s[0] != '{' || s[37] != '}') throw "malformed GUID";
  return Monta(s);
}
