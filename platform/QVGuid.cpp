#include "platform/QVGuid.h"

#include <cstdio>
#include <random>

std::optional<GUID> QVGuidParse(std::string_view t) {
  if (t.size() == 38) {
    if (t.front() != '{' || t.back() != '}') return std::nullopt;
    t = t.substr(1, 36);
  }
  if (t.size() != 36) return std::nullopt;
  char s[39] = {};
  s[0] = '{';
  for (std::size_t i = 0; i < 36; ++i) {
    const bool traco = (i == 8 || i == 13 || i == 18 || i == 23);
    if (traco != (t[i] == '-')) return std::nullopt;
    if (!traco && qvguid_detail::Hex(t[i]) < 0) return std::nullopt;
    s[i + 1] = t[i];
  }
  return qvguid_detail::Monta(s);
}

std::string QVGuidFormat(const GUID& g) {
  char buf[40];
  std::snprintf(buf, sizeof buf, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", g.Data1,
                g.Data2, g.Data3, g.Data4[0], g.Data4[1], g.Data4[2], g.Data4[3], g.Data4[4],
                g.Data4[5], g.Data4[6], g.Data4[7]);
  return buf;
}

GUID QVGuidNovo() {
  thread_local std::mt19937_64 gerador{std::random_device{}()};
  const std::uint64_t a = gerador();
  const std::uint64_t b = gerador();
  GUID g{};
  g.Data1 = static_cast<std::uint32_t>(a);
  g.Data2 = static_cast<std::uint16_t>(a >> 32);
  g.Data3 = static_cast<std::uint16_t>(((a >> 48) & 0x0FFF) | 0x4000);
  for (int i = 0; i < 8; ++i) g.Data4[i] = static_cast<std::uint8_t>(b >> (8 * i));
  g.Data4[0] = static_cast<std::uint8_t>((g.Data4[0] & 0x3F) | 0x80);
  return g;
}
