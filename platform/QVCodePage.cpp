#include "platform/QVCodePage.h"

#include <cstdint>

#include "platform/QVBstr.h"

namespace {

// Bytes 0x80..0x9F of Windows-1252; 0 marks the five undefined ones. All
// other bytes equal their Unicode code point.
constexpr char16_t k1252[32] = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

// The code page's lower-case letters outside the Latin-1 block, with their
// capitals.
constexpr char16_t kMinusculas[][2] = {{0x0161, 0x0160}, {0x0153, 0x0152}, {0x017E, 0x017D}, {0x00FF, 0x0178}};

char16_t Maiuscula(char16_t c) {
  if ((c >= u'a' && c <= u'z') || (c >= 0x00E0 && c <= 0x00FE && c != 0x00F7)) return static_cast<char16_t>(c - 0x20);
  for (const auto& par : kMinusculas)
    if (par[0] == c) return par[1];
  return c;
}

}  // namespace

std::string QVUtf8ToAnsi(std::string_view utf8) {
  const std::u16string u16 = QVUtf8ToUtf16(utf8);
  std::string out;
  out.reserve(u16.size());
  for (char16_t c : u16) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) {
      out.push_back(static_cast<char>(c));
      continue;
    }
    char byte = '?';
    for (int i = 0; i < 32; ++i)
      if (k1252[i] != 0 && k1252[i] == c) byte = static_cast<char>(0x80 + i);
    out.push_back(byte);
  }
  return out;
}

bool QVUtf8ToAnsiExato(std::string_view utf8, std::string* pAnsi) {
  // Exact when nothing was replaced: the way back gives the same text (a
  // '?' that stood for a character, or U+FFFD for bad UTF-8, does not).
  std::string ansi = QVUtf8ToAnsi(utf8);
  if (QVAnsiToUtf8(ansi) != utf8) return false;
  *pAnsi = std::move(ansi);
  return true;
}

std::string QVAnsiToUtf8(std::string_view ansi) {
  std::u16string u16;
  u16.reserve(ansi.size());
  for (char ch : ansi) {
    const auto b = static_cast<unsigned char>(ch);
    if (b >= 0x80 && b < 0xA0)
      u16.push_back(k1252[b - 0x80] != 0 ? k1252[b - 0x80] : char16_t{0xFFFD});
    else
      u16.push_back(b);
  }
  return QVUtf16ToUtf8(u16);
}

bool QVAnsiDefinido(std::string_view ansi) {
  for (char ch : ansi) {
    const auto b = static_cast<unsigned char>(ch);
    if (b >= 0x80 && b < 0xA0 && k1252[b - 0x80] == 0) return false;
  }
  return true;
}

std::string QVMaiusculasCodePage(std::string_view utf8) {
  std::u16string u16 = QVUtf8ToUtf16(utf8);
  for (char16_t& c : u16) c = Maiuscula(c);
  return QVUtf16ToUtf8(u16);
}

bool QVIguaisSemCaixa(std::string_view utf8a, std::string_view utf8b) {
  return QVMaiusculasCodePage(utf8a) == QVMaiusculasCodePage(utf8b);
}
