#include "df/qvlibex/QVCrc64.h"

#include <gtest/gtest.h>

#include <vector>

// The check values pin the polynomial and the bit order the stored CRCs were
// written with. The word-at-a-time loop must agree with the bytewise
// definition for every length and alignment around its 8-byte step (length
// 0 included), and a running value must carry the computation on, through
// that loop too.
TEST(QVCrc64, VetoresConhecidosEPalavrasEBytesDaoOMesmoResultado) {
  EXPECT_EQ(QVCrc64("123456789", 9), 0x2B9C7EE4E2780C8Aull);
  std::vector<unsigned char> dados(1024);
  for (std::size_t i = 0; i < dados.size(); ++i) dados[i] = static_cast<unsigned char>(i);
  EXPECT_EQ(QVCrc64(dados.data(), dados.size()), 0x1667D61AE7E0E30Cull);
  EXPECT_EQ(QVCrc64(&dados[100], 924, QVCrc64(dados.data(), 100)), 0x1667D61AE7E0E30Cull);
  for (std::size_t inicio = 0; inicio < 9; ++inicio)
    for (std::size_t n = 0; n < 40; ++n) {
      std::uint64_t byteAByte = 0;
      for (std::size_t i = 0; i < n; ++i) byteAByte = QVCrc64(&dados[inicio + i], 1, byteAByte);
      EXPECT_EQ(QVCrc64(&dados[inicio], n), byteAByte) << inicio << "+" << n;
    }
}
