#include "base/text.h"

#include <gtest/gtest.h>

namespace kw {
namespace {

TEST(Text, Utf16RoundTripKeepsCharactersBeyondTheBasicPlane) {
  const std::string text = "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80";
  EXPECT_EQ(Utf16ToUtf8(Utf8ToUtf16(text)), text);
  EXPECT_EQ(Utf8ToUtf16(text).size(), 5u);
}

TEST(Text, BytesThatAreNoUtf8BecomeTheReplacementCharacter) {
  EXPECT_EQ(Utf16ToUtf8(Utf8ToUtf16("a\xFF")), "a\xEF\xBF\xBD");
  EXPECT_FALSE(IsValidUtf8("\xC0\x80"));
  EXPECT_FALSE(IsValidUtf8("\xE2\x82"));
  EXPECT_TRUE(IsValidUtf8("\xE2\x82\xAC"));
}

TEST(Text, TextThatACodePageCannotHoldIsRefused) {
  EXPECT_EQ(*Utf8ToCodePage("\xC3\xA4\xE2\x82\xAC", 1252), "\xE4\x80");
  EXPECT_EQ(Utf8ToCodePage("\xE6\x97\xA5", 1252).number(), kErrorUnrepresentableText);
  EXPECT_EQ(Utf8ToCodePage("\xC3\xA4", 0).number(), kErrorUnrepresentableText);
}

TEST(Text, ACharacterIsNotReplacedByOneThatLooksAlike) {
  // The yen sign, the overline, the minus sign and the wave dash have no place of their own there.
  for (const char* text : {"\xC2\xA5", "\xE2\x80\xBE", "\xE2\x88\x92", "\xE3\x80\x9C"}) {
    EXPECT_EQ(Utf8ToCodePage(text, 932).number(), kErrorUnrepresentableText) << text;
  }
  EXPECT_EQ(*Utf8ToCodePage("\xEF\xBF\xA5\xEF\xBD\x9E", 932), "\x81\x8F\x81\x60");
}

TEST(Text, CodePageTextComesBackAsUtf8) {
  EXPECT_EQ(CodePageToUtf8("\xE4", 1252), "\xC3\xA4");
  EXPECT_EQ(CodePageToUtf8("\x93\xFA", 932), "\xE6\x97\xA5");
  EXPECT_EQ(CodePageOfLocale(1033), 1252);
  EXPECT_EQ(CodePageOfLocale(1041), 932);
  EXPECT_EQ(CodePageOfLocale(1028), 950);
  EXPECT_EQ(CodePageOfLocale(2052), 936);
}

TEST(Text, EveryByteOfAWindowsPageIsACharacterAndComesBack) {
  for (const int page : {874, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258}) {
    std::string bytes;
    for (int byte = 1; byte < 0x100; ++byte) bytes += static_cast<char>(byte);
    const std::string utf8 = CodePageToUtf8(bytes, page);
    EXPECT_EQ(CharacterCount(utf8), 255u) << page;
    EXPECT_EQ(utf8.find("\xEF\xBF\xBD"), std::string::npos) << page;
    EXPECT_EQ(Utf8ToCodePage(utf8, page).value_or(""), bytes) << page;
  }
  EXPECT_EQ(CodePageToUtf8("\x81\x8D\x8F\x90\x9D", 1252), "\xC2\x81\xC2\x8D\xC2\x8F\xC2\x90\xC2\x9D");
  EXPECT_EQ(CodePageToUtf8("\xDB\xFF", 874), "\xEF\xA3\x81\xEF\xA3\x88");
  EXPECT_EQ(CodePageToUtf8("\x80\xA0\xFD", 932), "\xC2\x80\xEF\xA3\xB0\xEF\xA3\xB1");
}

TEST(Text, BytesThatMeanNothingInAPageBecomeTheReplacementCharacter) {
  EXPECT_EQ(CodePageToUtf8("b\xC3\xA4", 0), "b\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(CodePageToUtf8("a\x81", 932), "a\xEF\xBF\xBD");
  EXPECT_EQ(CodePageToUtf8("\x81\xFF\x93\xFA", 932), "\xEF\xBF\xBD\xEF\xA3\xB3\xE6\x97\xA5");
  EXPECT_EQ(CodePageToUtf8("a\xFF", 65001), "a\xEF\xBF\xBD");
}

TEST(Text, AControlCharacterWhoseNumberThePageUsesOtherwiseHasNoPlaceInIt) {
  // 0x80 is the euro sign there.
  EXPECT_EQ(Utf8ToCodePage("\xC2\x80", 1252).number(), kErrorUnrepresentableText);
  EXPECT_EQ(Utf8ToCodePage("\xC2\x81\xE2\x82\xAC", 1252).value_or(""), "\x81\x80");
}

TEST(Text, ComparisonsIgnoreCaseBeyondAscii) {
  EXPECT_TRUE(EqualsNoCase("\xC3\x84pfel.TXT", "\xC3\xA4PFEL.txt"));
  EXPECT_TRUE(StartsWithNoCase("Install.pkg.bak", "INSTALL.PKG"));
  EXPECT_TRUE(EndsWithNoCase("a.MSP", ".msp"));
  EXPECT_FALSE(EndsWithNoCase("A.MSP.TXT", ".msp"));
  EXPECT_LT(CompareNoCase("a", "B"), 0);
  EXPECT_GT(CompareNoCase("ab", "A"), 0);
}

TEST(Text, LeadingIntegerStopsAtTheFirstOtherCharacter) {
  EXPECT_EQ(LeadingInteger(" -12abc"), -12);
  EXPECT_EQ(LeadingInteger("abc"), 0);
  EXPECT_EQ(LeadingInteger("99999999999999999999"), 9223372036854775807LL);
}

}  // namespace
}  // namespace kw
