// CRC-64 of the record store and of the initialisation record.
//
// Reflected, table-driven, ECMA-182 polynomial (reflected form
// 0xC96C5795D7870F42; table[1] = 0xB32E4CBE03A75F6F), initial value 0 or a
// running value, no final inversion:
//   for each byte b: crc = table[(crc ^ b) & 0xFF] ^ (crc >> 8)
#pragma once

#include <cstddef>
#include <cstdint>

inline constexpr std::uint64_t kQVCrc64Polinomio = 0xC96C5795D7870F42ull;

// Continues crc over n bytes; pass 0 to start.
std::uint64_t QVCrc64(const void* dados, std::size_t n, std::uint64_t crc = 0);
