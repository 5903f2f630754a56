// Large inputs made to be slow: whatever a parser does with them, it is done in time that grows with their
// size.

#include <gtest/gtest.h>

#include <ctime>
#include <functional>
#include <string>

#include "formats/ini_file.h"
#include "formats/reg_file.h"
#include "formats/version_block.h"
#include "formats/xml_text.h"

namespace kw::formats {
namespace {

constexpr size_t kMany = 100'000;
// What takes the square of the size takes minutes for these.
constexpr double kMostSeconds = 5;

std::string Times(size_t count, const std::string& text) {
  std::string all;
  all.reserve(count * text.size());
  for (size_t i = 0; i < count; ++i) all += text;
  return all;
}

/// `text` so many times, each "#" in it a number of its own.
std::string Numbered(size_t count, const std::string& text) {
  std::string all;
  for (size_t i = 0; i < count; ++i) {
    for (const char c : text) c == '#' ? all += std::to_string(i) : all += c;
  }
  return all;
}

void ExpectQuick(const std::string& what, const std::function<void()>& work) {
  const std::clock_t start = std::clock();
  work();
  EXPECT_LT(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, kMostSeconds) << what;
}

TEST(LargeInput, IniFilesAreReadAndChangedInTime) {
  for (const std::string& bytes :
       {Numbered(kMany, "[s#]\r\nk#=v\r\n"), "[s]\r\n" + Numbered(kMany, "k#=v\r\n"), Times(kMany, "[s]\n"),
        Times(kMany * 10, "["), Times(kMany * 10, "="), Times(kMany * 10, "\r"), Times(kMany * 10, "\n")}) {
    ExpectQuick(bytes.substr(0, 20), [&] {
      IniFile file = IniFile::Parse(bytes, 1252);
      EXPECT_FALSE(file.Read("none", "none").has_value());
      EXPECT_TRUE(file.Write("s", "last", "x").ok());
      EXPECT_EQ(file.Read("S", "LAST"), "x");
      file.DeleteKey("s", "last");
      EXPECT_GE(file.Serialize().size(), bytes.size());
    });
  }
}

TEST(LargeInput, RegistryFilesAreReadInTime) {
  const std::string head = "REGEDIT4\r\n[HKEY_CURRENT_USER\\a]\r\n";
  for (const std::string& text :
       {Times(kMany, "\"a\"=\"open\r\n"), Times(kMany, "@=\"open\r\n"), "@=\"" + Times(kMany, "line\r\n"),
        "@=hex:" + Times(kMany, "aa,\\\r\n"), Times(kMany, "@=hex:aa,\\\r\n"), Times(kMany * 10, "\""),
        Times(kMany * 10, "\\"), Numbered(kMany, "[HKEY_CURRENT_USER\\k#]\r\n"), Times(kMany * 10, "["),
        Numbered(kMany, "\"v#\"=dword:1\r\n"), Times(kMany * 10, "\r"), "\"" + Times(kMany * 10, "n")}) {
    ExpectQuick(text.substr(0, 20), [&] { EXPECT_TRUE(ParseRegFile(head + text, 1252).ok()); });
  }
}

TEST(LargeInput, XmlIsReadAndWrittenInTime) {
  const auto root = [](const std::string& content) { return "<r>" + content + "</r>"; };
  for (const std::string& bytes :
       {root(Times(kMany, "<a/>")), root(Times(kMany, "&amp;")), root(Times(kMany, "&#65;")),
        root(Times(kMany, "&")), root(Times(kMany, "<!-- - -->")), root(Times(kMany, "]]")),
        root(Times(kMany, "]]>")), root(Times(kMany, "<![CDATA[]]>")), root(Times(kMany, "<a>")),
        "<r " + Numbered(kMany, "a#='\"' ") + "/>", "<r " + Times(kMany, "a='' ") + "/>",
        "<!DOCTYPE r [" + Times(kMany, "<!ENTITY a '&a;'>") + "]><r>" + Times(kMany, "&a;") + "</r>",
        "<!DOCTYPE r [" + Times(kMany, "[<!") + "]><r/>", Times(kMany, "<r/>"),
        Times(kMany, "<?x?>") + "<r/>", Times(kMany * 10, "<"), "<r>" + Times(kMany * 10, "\r")}) {
    ExpectQuick(bytes.substr(0, 20), [&] {
      const auto xml = XmlText::Parse(bytes);
      if (!xml.ok()) return;
      XmlText::TextOf((*xml)->Root());
      EXPECT_TRUE(XmlText::Parse((*xml)->Serialize()).ok());
    });
  }
}

TEST(LargeInput, VersionBlocksOfTinyPartsAreReadInTime) {
  const auto block = [](const std::u16string& key, const std::string& content) {
    std::string bytes(6, '\0');
    for (const char16_t c : key + u'\0') bytes += {static_cast<char>(c), static_cast<char>(c >> 8)};
    bytes.resize((bytes.size() + 3) / 4 * 4);
    bytes += content;
    bytes[0] = static_cast<char>(bytes.size());
    bytes[1] = static_cast<char>(bytes.size() >> 8);
    return bytes;
  };
  const std::string tiny = {8, 0, 0, 0, 0, 0, 0, 0};
  const std::string whole =
      block(u"VS_VERSION_INFO", block(u"StringFileInfo", block(u"040904B0", Times(8000, tiny))));
  ExpectQuick("tiny parts", [&] {
    const auto version = ParseVersionBlock(whole);
    ASSERT_TRUE(version.ok());
    EXPECT_EQ(version->tables.at(0).strings.size(), 8000u);
  });
}

}  // namespace
}  // namespace kw::formats
