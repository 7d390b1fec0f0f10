#include "df/qvlibex/QVCrc64.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

TEST(QVCrc64, VetoresConhecidos) {
  EXPECT_EQ(QVCrc64("", 0), 0u);
  const unsigned char um = 1;
  EXPECT_EQ(QVCrc64(&um, 1), 0xB32E4CBE03A75F6Full);  // the table's first entry after zero
  EXPECT_EQ(QVCrc64("123456789", 9), 0x2B9C7EE4E2780C8Aull);
}

TEST(QVCrc64, ValorCorrenteContinuaOCalculo) {
  EXPECT_EQ(QVCrc64("6789", 4, QVCrc64("12345", 5)), QVCrc64("123456789", 9));
}

// The word-at-a-time loop must agree with the bytewise definition for every
// length and alignment around its 8-byte step.
TEST(QVCrc64, PalavrasEBytesDaoOMesmoResultado) {
  std::vector<unsigned char> dados(1024);
  for (std::size_t i = 0; i < dados.size(); ++i) dados[i] = static_cast<unsigned char>(i);
  EXPECT_EQ(QVCrc64(dados.data(), dados.size()), 0x1667D61AE7E0E30Cull);
  for (std::size_t inicio = 0; inicio < 9; ++inicio)
    for (std::size_t n = 0; n < 40; ++n) {
      std::uint64_t byteAByte = 0;
      for (std::size_t i = 0; i < n; ++i) byteAByte = QVCrc64(&dados[inicio + i], 1, byteAByte);
      EXPECT_EQ(QVCrc64(&dados[inicio], n), byteAByte) << inicio << "+" << n;
    }
}
