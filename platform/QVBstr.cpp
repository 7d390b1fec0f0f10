#include "platform/QVBstr.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr std::size_t kPrefixo = sizeof(std::uint32_t);

std::uint32_t* Prefixo(BSTR bstr) {
  return reinterpret_cast<std::uint32_t*>(reinterpret_cast<char*>(bstr) - kPrefixo);
}

}  // namespace

BSTR SysAllocStringLen(const OLECHAR* pch, std::uint32_t len) {
  // The byte length must fit the 32-bit prefix.
  if (len > (0xFFFFFFFFu - kPrefixo - sizeof(OLECHAR)) / sizeof(OLECHAR)) return nullptr;
  const std::size_t bytes = std::size_t{len} * sizeof(OLECHAR);
  char* bloco = static_cast<char*>(std::malloc(kPrefixo + bytes + sizeof(OLECHAR)));
  if (bloco == nullptr) return nullptr;
  const auto tamanho = static_cast<std::uint32_t>(bytes);
  std::memcpy(bloco, &tamanho, kPrefixo);
  BSTR bstr = reinterpret_cast<BSTR>(bloco + kPrefixo);
  if (pch != nullptr)
    std::memcpy(bstr, pch, bytes);
  else
    std::memset(bstr, 0, bytes);
  bstr[len] = 0;
  return bstr;
}

BSTR SysAllocString(const OLECHAR* psz) {
  if (psz == nullptr) return nullptr;
  std::uint32_t len = 0;
  while (psz[len] != 0) ++len;
  return SysAllocStringLen(psz, len);
}

std::uint32_t SysStringByteLen(BSTR bstr) {
  if (bstr == nullptr) return 0;
  std::uint32_t tamanho;
  std::memcpy(&tamanho, Prefixo(bstr), kPrefixo);
  return tamanho;
}

std::uint32_t SysStringLen(BSTR bstr) { return SysStringByteLen(bstr) / sizeof(OLECHAR); }

void SysFreeString(BSTR bstr) {
  if (bstr != nullptr) std::free(Prefixo(bstr));
}

std::u16string QVUtf8ToUtf16(std::string_view s) {
  std::u16string out;
  out.reserve(s.size());
  std::size_t i = 0;
  while (i < s.size()) {
    const auto c = static_cast<unsigned char>(s[i]);
    std::uint32_t cp = 0xFFFD;
    std::size_t n = 1;
    if (c < 0x80) {
      cp = c;
    } else if ((c >> 5) == 0x6 && i + 1 < s.size()) {
      cp = ((c & 0x1Fu) << 6) | (static_cast<unsigned char>(s[i + 1]) & 0x3Fu);
      n = 2;
    } else if ((c >> 4) == 0xE && i + 2 < s.size()) {
      cp = ((c & 0x0Fu) << 12) | ((static_cast<unsigned char>(s[i + 1]) & 0x3Fu) << 6) |
           (static_cast<unsigned char>(s[i + 2]) & 0x3Fu);
      n = 3;
    } else if ((c >> 3) == 0x1E && i + 3 < s.size()) {
      cp = ((c & 0x07u) << 18) | ((static_cast<unsigned char>(s[i + 1]) & 0x3Fu) << 12) |
           ((static_cast<unsigned char>(s[i + 2]) & 0x3Fu) << 6) |
           (static_cast<unsigned char>(s[i + 3]) & 0x3Fu);
      n = 4;
    }
    i += n;
    if (cp >= 0x10000 && cp <= 0x10FFFF) {
      cp -= 0x10000;
      out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
      out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
    } else {
      out.push_back(static_cast<char16_t>(cp > 0x10FFFF ? 0xFFFD : cp));
    }
  }
  return out;
}

std::string QVUtf16ToUtf8(std::u16string_view s) {
  std::string out;
  out.reserve(s.size());
  for (std::size_t i = 0; i < s.size(); ++i) {
    std::uint32_t cp = s[i];
    if (cp >= 0xD800 && cp < 0xDC00 && i + 1 < s.size() && s[i + 1] >= 0xDC00 && s[i + 1] < 0xE000) {
      cp = 0x10000 + ((cp - 0xD800) << 10) + (s[i + 1] - 0xDC00u);
      ++i;
    } else if (cp >= 0xD800 && cp < 0xE000) {
      cp = 0xFFFD;  // lone surrogate
    }
    if (cp < 0x80) {
      out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
  }
  return out;
}

BSTR QVBstrFromUtf8(std::string_view utf8) {
  const std::u16string u16 = QVUtf8ToUtf16(utf8);
  return SysAllocStringLen(u16.data(), static_cast<std::uint32_t>(u16.size()));
}

std::string QVBstrToUtf8(BSTR bstr) {
  if (bstr == nullptr) return {};
  return QVUtf16ToUtf8(std::u16string_view(bstr, SysStringLen(bstr)));
}
