#include "platform/QVBstr.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/QVGuid.h"

// The layout: the length in bytes in the four bytes before the string, a
// terminator after it, embedded zeros kept. Null is the empty string.
TEST(QVBstr, PrefixoDeTamanhoTerminadorENulo) {
  BSTR s = SysAllocString(u"Olá");
  ASSERT_NE(s, nullptr);
  EXPECT_EQ(SysStringLen(s), 3u);
  EXPECT_EQ(SysStringByteLen(s), 6u);
  std::uint32_t prefixo;
  std::memcpy(&prefixo, reinterpret_cast<char*>(s) - 4, 4);
  EXPECT_EQ(prefixo, 6u);
  EXPECT_EQ(s[3], 0);
  SysFreeString(s);
  s = SysAllocStringLen(u"a\0b", 3);
  EXPECT_EQ(SysStringLen(s), 3u);
  EXPECT_EQ(s[2], u'b');
  SysFreeString(s);
  s = SysAllocStringLen(nullptr, 2);
  EXPECT_TRUE(s[0] == 0 && s[2] == 0);
  SysFreeString(s);
  EXPECT_EQ(SysAllocStringLen(u"x", 0xFFFFFFF0u), nullptr);  // the byte length would not fit

  EXPECT_EQ(SysAllocString(nullptr), nullptr);
  EXPECT_EQ(SysStringLen(nullptr), 0u);
  EXPECT_EQ(QVBstrToUtf8(nullptr), "");
  SysFreeString(nullptr);
}

TEST(QVBstr, ConversoesUtf8Utf16) {
  const std::string texto = "Ação € 𝄞";  // two-, three- and four-byte sequences
  BSTR s = QVBstrFromUtf8(texto);
  EXPECT_EQ(SysStringLen(s), 9u);  // seven characters and the clef as a surrogate pair
  EXPECT_EQ(QVBstrToUtf8(s), texto);
  SysFreeString(s);
  EXPECT_EQ(QVUtf16ToUtf8(std::u16string(1, static_cast<char16_t>(0xD800))), "\xEF\xBF\xBD");
}

TEST(QVGuid, LeituraEEscrita) {
  constexpr GUID g = QVGuid("{0F537427-7E93-41AB-878D-E88FB7EA13B0}");
  EXPECT_EQ(g.Data1, 0x0F537427u);
  EXPECT_EQ(g.Data4[7], 0xB0);
  EXPECT_EQ(QVGuidFormat(g), "{0F537427-7E93-41AB-878D-E88FB7EA13B0}");
  EXPECT_EQ(QVGuidParse("0f537427-7e93-41ab-878d-e88fb7ea13b0"), g);
  EXPECT_FALSE(QVGuidParse("{0F537427-7E93-41AB-878D-E88FB7EA13B}").has_value());
  EXPECT_FALSE(QVGuidParse("{0F537427+7E93-41AB-878D-E88FB7EA13B0}").has_value());
  EXPECT_FALSE(QVGuidParse("{0F537427-7E93-41AB-878D-E88FB7EA13BG}").has_value());
  EXPECT_NE(QVGuidNovo(), QVGuidNovo());
  EXPECT_EQ(QVGuidNovo().Data3 >> 12, 4);
}
