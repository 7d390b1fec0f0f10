#include "df/qvlibex/QVCrc64.h"

#include <array>

namespace {

// Slicing-by-8: eight tables let the loop take a 64-bit word per step while
// giving exactly the bytewise result; table 0 is the classic one.
constexpr std::array<std::array<std::uint64_t, 256>, 8> MontaTabelas() {
  std::array<std::array<std::uint64_t, 256>, 8> t{};
  for (std::uint32_t i = 0; i < 256; ++i) {
    std::uint64_t crc = i;
    for (int b = 0; b < 8; ++b) crc = (crc & 1) ? (crc >> 1) ^ kQVCrc64Polinomio : crc >> 1;
    t[0][i] = crc;
  }
  for (std::uint32_t i = 0; i < 256; ++i)
    for (int k = 1; k < 8; ++k) t[k][i] = (t[k - 1][i] >> 8) ^ t[0][t[k - 1][i] & 0xFF];
  return t;
}

constexpr auto kTabelas = MontaTabelas();
static_assert(kTabelas[0][1] == 0xB32E4CBE03A75F6Full);

}  // namespace

std::uint64_t QVCrc64(const void* dados, std::size_t n, std::uint64_t crc) {
  const auto* p = static_cast<const unsigned char*>(dados);
  while (n >= 8) {
    std::uint64_t palavra = 0;
    for (int i = 0; i < 8; ++i) palavra |= static_cast<std::uint64_t>(p[i]) << (8 * i);
    crc ^= palavra;
    crc = kTabelas[7][crc & 0xFF] ^ kTabelas[6][(crc >> 8) & 0xFF] ^ kTabelas[5][(crc >> 16) & 0xFF] ^
          kTabelas[4][(crc >> 24) & 0xFF] ^ kTabelas[3][(crc >> 32) & 0xFF] ^
          kTabelas[2][(crc >> 40) & 0xFF] ^ kTabelas[1][(crc >> 48) & 0xFF] ^ kTabelas[0][crc >> 56];
    p += 8;
    n -= 8;
  }
  while (n-- > 0) crc = kTabelas[0][(crc ^ *p++) & 0xFF] ^ (crc >> 8);
  return crc;
}
