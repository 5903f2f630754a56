#include "formats/ini_file.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "formats/utf16_bytes.h"

namespace kw::formats {
namespace {

std::string ReadOne(std::string_view bytes, std::string_view section, std::string_view key,
                    int code_page = 1252) {
  return IniFile::Parse(bytes, code_page).Read(section, key).value_or("(none)");
}

std::string WriteOne(std::string_view bytes, std::string_view section, std::string_view key,
                     std::string_view value) {
  IniFile file = IniFile::Parse(bytes, 1252);
  EXPECT_TRUE(file.Write(section, key, value).ok());
  return file.Serialize();
}

TEST(IniFile, BlanksAroundKeyAndValueAreTrimmedAndOnePairOfQuotesStripped) {
  const std::string text =
      "[S]\r\n  a  = \t1 2 \r\nb=\" x \"\r\nc='y'\r\nd=\"\"z\"\"\r\ne=\"half\r\nf=\"\r\n";
  EXPECT_EQ(ReadOne(text, "S", "a"), "1 2");
  EXPECT_EQ(ReadOne(text, "S", "b"), " x ");
  EXPECT_EQ(ReadOne(text, "S", "c"), "y");
  EXPECT_EQ(ReadOne(text, "S", "d"), "\"z\"");
  EXPECT_EQ(ReadOne(text, "S", "e"), "\"half");
  EXPECT_EQ(ReadOne(text, "S", "f"), "\"");
}

TEST(IniFile, FirstSectionAndFirstKeyWinAndCaseDoesNotCount) {
  const std::string text = "[s]\nA=1\na=2\n[S]\nB=3\n";
  EXPECT_EQ(ReadOne(text, "S", "a"), "1");
  EXPECT_EQ(ReadOne(text, "S", "b"), "(none)");
  EXPECT_EQ(ReadOne("[\xC4]\n\xD6=1\n", "\xC3\xA4", "\xC3\xB6"), "1");
}

TEST(IniFile, CommentsAndLinesWithoutEqualsAreNoKeys) {
  const std::string text = "a=0\n[S]\n;a=1\nb\n= c\na=2=3\n";
  EXPECT_EQ(ReadOne(text, "S", "a"), "2=3");
  EXPECT_EQ(ReadOne(text, "S", "b"), "(none)");
  EXPECT_EQ(ReadOne(text, "", "a"), "(none)");
}

TEST(IniFile, DoubleByteTextWithABracketAsItsTrailByteIsRead) {
  // 0x83 0x5D is one Japanese letter whose second byte looks like a bracket.
  EXPECT_EQ(ReadOne("[S]\r\nk=\x83\x5D\r\n[\x83\x5D]\r\nk=v\r\n", "\xE3\x82\xBE", "k", 932), "v");
}

TEST(IniFile, LinesMayEndInAnyWayAndKeepTheirEnds) {
  IniFile file = IniFile::Parse("[a]\rk=1\r\r\n[b]\nk=2\r\n[c]\rk=3\r", 1252);
  EXPECT_EQ(file.Read("a", "k"), "1");
  EXPECT_EQ(file.Read("b", "k"), "2");
  EXPECT_EQ(file.Read("c", "k"), "3");
  ASSERT_TRUE(file.Write("b", "k", "x").ok());
  ASSERT_TRUE(file.Write("c", "n", "y").ok());
  EXPECT_EQ(file.Serialize(), "[a]\rk=1\r\r\n[b]\nk=x\r\n[c]\rk=3\rn=y\r\n");
}

TEST(IniFile, AReplacedKeyKeepsItsPlaceAndSpellingAndAllElseItsBytes) {
  EXPECT_EQ(WriteOne("; first\n\n[S]\nOne = 1\r\n Two=2 ; x\n\xE4=\xF6\n", "s", "ONE", "new"),
            "; first\n\n[S]\nOne=new\r\n Two=2 ; x\n\xE4=\xF6\n");
}

TEST(IniFile, ANewKeyGoesBehindTheLastLineOfItsSection) {
  EXPECT_EQ(WriteOne("[S]\r\na=1\r\n; c\r\n\r\n[T]\r\nb=2\r\n", "S", "n", "3"),
            "[S]\r\na=1\r\n; c\r\nn=3\r\n\r\n[T]\r\nb=2\r\n");
  EXPECT_EQ(WriteOne("[S]\r\na=1", "S", "n", "3"), "[S]\r\na=1\r\nn=3\r\n");
  EXPECT_EQ(WriteOne("[S]\r\n\r\n[T]\r\n", "S", "n", "3"), "[S]\r\nn=3\r\n\r\n[T]\r\n");
}

TEST(IniFile, ANewSectionGoesToTheEndOfTheFile) {
  EXPECT_EQ(WriteOne("", "S", "a", "1"), "[S]\r\na=1\r\n");
  EXPECT_EQ(WriteOne("[T]\nb=2", "S", "a", "1"), "[T]\nb=2\r\n[S]\r\na=1\r\n");
}

TEST(IniFile, DeletingAKeyOrASectionTakesTheFirstOfItsName) {
  IniFile file = IniFile::Parse("[S]\na=1\na=2\n; c\n\n[T]\nb=1\n[s]\nc=1\n", 1252);
  file.DeleteKey("s", "A");
  EXPECT_EQ(file.Serialize(), "[S]\na=2\n; c\n\n[T]\nb=1\n[s]\nc=1\n");
  file.DeleteSection("S");
  EXPECT_EQ(file.Serialize(), "[T]\nb=1\n[s]\nc=1\n");
  file.DeleteSection("missing");
  file.DeleteKey("T", "missing");
  EXPECT_EQ(file.Serialize(), "[T]\nb=1\n[s]\nc=1\n");
  EXPECT_EQ(file.SectionNames(), (std::vector<std::string>{"T", "s"}));
}

TEST(IniFile, Utf16FilesKeepTheirMark) {
  const std::string bytes = std::string(kUtf16LittleMark) + Utf8ToUtf16LeBytes("[S]\r\na=\xE2\x82\xAC\r\n");
  EXPECT_EQ(ReadOne(bytes, "S", "a"), "\xE2\x82\xAC");
  EXPECT_EQ(
      WriteOne(bytes, "S", "b", "\xE6\x97\xA5"),
      std::string(kUtf16LittleMark) + Utf8ToUtf16LeBytes("[S]\r\na=\xE2\x82\xAC\r\nb=\xE6\x97\xA5\r\n"));
  const std::string utf8 = std::string(kUtf8Mark) + "[S]\na=\xC3\xA4\n";
  EXPECT_EQ(ReadOne(utf8, "S", "a"), "\xC3\xA4");
  EXPECT_EQ(IniFile::Parse(utf8, 1252).Serialize(), utf8);
}

TEST(IniFile, TextWithoutAPlaceInTheCodePageIsRefused) {
  IniFile file = IniFile::Parse("[S]\r\na=1\r\n", 1252);
  EXPECT_EQ(file.Write("S", "a", "\xE6\x97\xA5").number(), kErrorUnrepresentableText);
  EXPECT_EQ(file.Write("S", "a", "x\r\n[T]").number(), kErrorInvalidParameter);
  EXPECT_EQ(file.Serialize(), "[S]\r\na=1\r\n");
  EXPECT_TRUE(file.Write("S", "a", "\xE2\x82\xAC").ok());
  EXPECT_EQ(file.Serialize(), "[S]\r\na=\x80\r\n");
}

}  // namespace
}  // namespace kw::formats
