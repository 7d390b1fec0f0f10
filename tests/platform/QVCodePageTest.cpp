#include "platform/QVCodePage.h"

#include <gtest/gtest.h>

TEST(QVCodePage, CincoBytesSemCaractere) {
  std::string indefinidos;
  for (int b = 0; b < 256; ++b) {
    const std::string byte(1, static_cast<char>(b));
    if (QVAnsiDefinido(byte)) {
      std::string volta;
      EXPECT_TRUE(QVUtf8ToAnsiExato(QVAnsiToUtf8(byte), &volta)) << b;
      EXPECT_EQ(volta, byte) << b;
    } else {
      indefinidos += byte;
      EXPECT_EQ(QVAnsiToUtf8(byte), "\xEF\xBF\xBD") << b;  // U+FFFD
    }
  }
  EXPECT_EQ(indefinidos, "\x81\x8D\x8F\x90\x9D");
}

// The suite's code page: its letters and the euro sign, '?' for what it
// cannot hold, and capitals only where it has them.
TEST(QVCodePage, Windows1252EMaiusculas) {
  EXPECT_EQ(QVUtf8ToAnsi("Ação €"), "A\xE7\xE3o \x80");
  EXPECT_EQ(QVAnsiToUtf8("A\xE7\xE3o \x80"), "Ação €");
  EXPECT_EQ(QVUtf8ToAnsi("日本"), "??");
  EXPECT_EQ(QVMaiusculasCodePage("ação ÿ š œ ž é"), "AÇÃO Ÿ Š Œ Ž É");
  EXPECT_EQ(QVMaiusculasCodePage("ß ÷ µ 1"), "ß ÷ µ 1");  // no capital in the code page, or no letter
  EXPECT_TRUE(QVIguaisSemCaixa("Construções", "CONSTRUÇÕES"));
  EXPECT_FALSE(QVIguaisSemCaixa("Construcoes", "CONSTRUÇÕES"));
}
