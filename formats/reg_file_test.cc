#include "formats/reg_file.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "formats/utf16_bytes.h"

namespace kw::formats {
namespace {

constexpr std::string_view kHead = "Windows Registry Editor Version 5.00\r\n\r\n";

RegFile Read(const std::string& body) {
  auto file = ParseRegFile(std::string(kHead) + body, 1252);
  EXPECT_TRUE(file.ok());
  return file.ok() ? *file : RegFile();
}

std::string Line(std::string_view name, uint32_t type, std::string_view data) {
  RegFileWriter writer;
  writer.AddValue(name, type, data);
  return writer.lines();
}

TEST(RegFile, EveryValueTypeIsRead) {
  const RegFile file = Read(
      "[HKEY_CURRENT_USER\\Software\\X]\r\n"
      "@=\"default\"\r\n"
      "\"text\"=\"C:\\\\a \\\"b\\\"\"\r\n"
      "\"number\"=dword:0000000A\r\n"
      "\"bytes\"=hex:01,02,\\\r\n  fe,ff\r\n"
      "\"expand\"=hex(2):25,00,41,00,25,00,00,00\r\n"
      "\"multi\"=hex(7):61,00,00,00,62,00,00,00,00,00\r\n"
      "\"long\"=hex(b):01,00,00,00,00,00,00,00\r\n"
      "\"none\"=hex(0):\r\n"
      "\"big\"=hex(5):00,00,00,01\r\n");
  ASSERT_EQ(file.keys.size(), 1u);
  EXPECT_EQ(file.keys[0].path, "HKEY_CURRENT_USER\\Software\\X");
  const auto& values = file.keys[0].values;
  ASSERT_EQ(values.size(), 9u);
  const auto expect = [&](size_t at, std::string_view name, uint32_t type, std::string_view data) {
    EXPECT_EQ(values[at].name, name);
    EXPECT_EQ(values[at].type, type) << name;
    EXPECT_EQ(values[at].data, data) << name;
  };
  expect(0, "", 1, std::string_view("default\0", 8));
  expect(1, "text", 1, std::string_view("C:\\a \"b\"\0", 9));
  expect(2, "number", 4, std::string_view("\x0A\0\0\0", 4));
  expect(3, "bytes", 3, "\x01\x02\xFE\xFF");
  expect(4, "expand", 2, std::string_view("%A%\0", 4));
  expect(5, "multi", 7, std::string_view("a\0b\0\0", 5));
  expect(6, "long", 11, std::string_view("\x01\0\0\0\0\0\0\0", 8));
  expect(7, "none", 0, "");
  expect(8, "big", 5, std::string_view("\0\0\0\x01", 4));
  EXPECT_EQ(file.bad_lines, 0u);
}

TEST(RegFile, DeletionsAndCommentsAreRead) {
  const RegFile file = Read(
      "; a comment\r\n[-HKEY_CURRENT_USER\\Old]\r\n[HKEY_CURRENT_USER\\X] \r\n\"v\"=-\r\n@=- ; gone\r\n"
      "  \"w\" = \"x\" ; y\r\n");
  ASSERT_EQ(file.keys.size(), 2u);
  EXPECT_TRUE(file.keys[0].deleted);
  EXPECT_EQ(file.keys[0].path, "HKEY_CURRENT_USER\\Old");
  ASSERT_EQ(file.keys[1].values.size(), 3u);
  EXPECT_TRUE(file.keys[1].values[0].deleted);
  EXPECT_TRUE(file.keys[1].values[1].deleted);
  EXPECT_EQ(file.keys[1].values[2].data, std::string("x\0", 2));
}

TEST(RegFile, TheOldFormatHolds8BitTextInItsHexadecimalData) {
  const auto file =
      ParseRegFile("REGEDIT4\n\n[HKEY_CURRENT_USER\\\xC4]\n\"e\"=hex(2):e4,00\n\"t\"=\"\xFC\"\n", 1252);
  ASSERT_TRUE(file.ok());
  EXPECT_EQ(file->keys[0].path, "HKEY_CURRENT_USER\\\xC3\x84");
  EXPECT_EQ(file->keys[0].values[0].data, std::string("\xC3\xA4\0", 3));
  EXPECT_EQ(file->keys[0].values[1].data, std::string("\xC3\xBC\0", 3));
}

TEST(RegFile, EveryEncodingOfTheNewFormatIsRead) {
  const std::string text = std::string(kHead) + "[HKEY_CURRENT_USER\\\xC3\x84]\r\n";
  const std::string wide = Utf8ToUtf16LeBytes(text);
  for (const std::string& bytes :
       {text, std::string(kUtf8Mark) + text, std::string(kUtf16LittleMark) + wide,
        std::string(kUtf16BigMark) + SwapBytePairs(wide), *Utf8ToCodePage(text, 1252)}) {
    const auto file = ParseRegFile(bytes, 1252);
    ASSERT_TRUE(file.ok());
    EXPECT_EQ(file->keys[0].path, "HKEY_CURRENT_USER\\\xC3\x84");
  }
}

TEST(RegFile, OtherFilesAreRefusedAndDamagedLinesPassedOver) {
  EXPECT_EQ(ParseRegFile("", 1252).number(), kErrorInvalidData);
  EXPECT_EQ(ParseRegFile("[HKEY_CURRENT_USER]\r\n", 1252).number(), kErrorInvalidData);
  const RegFile file = Read(
      "\"early\"=dword:1\r\n[HKEY_CURRENT_USER\\X]\r\n\"a\"=\"open\r\n\"b\"=dword:xyz\r\nnonsense\r\n"
      "\"c\"=hex:0g\r\n\"d\"=dword:2\r\n[broken\r\n\"lost\"=dword:1\r\n");
  ASSERT_EQ(file.keys.size(), 1u);
  ASSERT_EQ(file.keys[0].values.size(), 1u);
  EXPECT_EQ(file.keys[0].values[0].name, "d");
  EXPECT_EQ(file.bad_lines, 7u);
}

TEST(RegFile, TextMayGoOverSeveralLines) {
  const RegFile file = Read("[HKEY_CURRENT_USER\\X]\r\n\"a\"=\"one\r\ntwo\"\r\n\"b\"=\"three\\nfour\"\r\n");
  ASSERT_EQ(file.keys[0].values.size(), 2u);
  EXPECT_EQ(file.keys[0].values[0].data, std::string("one\r\ntwo\0", 9));
  EXPECT_EQ(file.keys[0].values[1].data, std::string("three\nfour\0", 11));
}

TEST(RegFile, ValuesAreWrittenAsTheRegistryEditorDoes) {
  EXPECT_EQ(Line("", 1, std::string_view("a\0", 2)), "@=\"a\"\r\n");
  EXPECT_EQ(Line("C:\\\"x\"", 1, std::string_view("\\\0", 2)), "\"C:\\\\\\\"x\\\"\"=\"\\\\\"\r\n");
  EXPECT_EQ(Line("n", 4, std::string_view("\x0A\0\0\x80", 4)), "\"n\"=dword:8000000a\r\n");
  EXPECT_EQ(Line("n", 4, "\x01"), "\"n\"=hex(4):01\r\n");
  EXPECT_EQ(Line("n", 0, ""), "\"n\"=hex(0):\r\n");
  EXPECT_EQ(Line("n", 11, "\x01\x02"), "\"n\"=hex(b):01,02\r\n");
  EXPECT_EQ(Line("n", 2, std::string_view("%\0", 2)), "\"n\"=hex(2):25,00,00,00\r\n");
}

TEST(RegFile, TextWithoutItsOneTerminatorIsWrittenAsBytes) {
  EXPECT_EQ(Line("n", 1, ""), "\"n\"=hex(1):\r\n");
  EXPECT_EQ(Line("n", 1, "a"), "\"n\"=hex(1):61,00\r\n");
  EXPECT_EQ(Line("n", 1, std::string_view("\0\0", 2)), "\"n\"=hex(1):00,00,00,00\r\n");
  EXPECT_EQ(Line("n", 1, std::string_view("\n\0", 2)), "\"n\"=hex(1):0a,00,00,00\r\n");
}

TEST(RegFile, LongDataIsWrappedBehindTheByteThatReachesColumn77) {
  EXPECT_EQ(Line("Binary", 3, std::string(50, '\x2A')),
            "\"Binary\"=hex:2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,\\\r\n"
            "  2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,2a,\\\r\n"
            "  2a,2a,2a\r\n");
}

TEST(RegFile, WhatIsWrittenReadsTheSame) {
  RegFileWriter writer;
  writer.AddKeyDeletion("HKEY_LOCAL_MACHINE\\Gone");
  writer.AddKey("HKEY_CURRENT_USER\\A\xC3\x84]b");
  writer.AddValueDeletion("old");
  const std::vector<RegFileValue> values = {
      {"", false, 1, std::string("\xE6\x97\xA5\0", 4)}, {"a\nb", false, 3, std::string(300, '\xFF')},
      {"m", false, 7, std::string("x\0y\0\0", 5)},      {"e", false, 1, ""},
      {"d", false, 4, std::string("\1\2\3\4", 4)},      {"t", false, 77, std::string("\0\1", 2)}};
  for (const RegFileValue& value : values) writer.AddValue(value.name, value.type, value.data);
  const auto file = ParseRegFile(writer.File(), 1252);
  ASSERT_TRUE(file.ok());
  EXPECT_EQ(file->bad_lines, 0u);
  ASSERT_EQ(file->keys.size(), 2u);
  EXPECT_TRUE(file->keys[0].deleted);
  EXPECT_EQ(file->keys[1].path, "HKEY_CURRENT_USER\\A\xC3\x84]b");
  ASSERT_EQ(file->keys[1].values.size(), values.size() + 1);
  EXPECT_TRUE(file->keys[1].values[0].deleted);
  for (size_t i = 0; i < values.size(); ++i) {
    EXPECT_EQ(file->keys[1].values[i + 1].name, values[i].name);
    EXPECT_EQ(file->keys[1].values[i + 1].type, values[i].type);
    EXPECT_EQ(file->keys[1].values[i + 1].data, values[i].data);
  }
}

}  // namespace
}  // namespace kw::formats
