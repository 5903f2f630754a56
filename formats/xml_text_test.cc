#include "formats/xml_text.h"

#include <gtest/gtest.h>

#include "formats/utf16_bytes.h"

namespace kw::formats {
namespace {

std::string RoundTrip(const std::string& bytes) {
  const auto xml = XmlText::Parse(bytes);
  return xml.ok() ? (*xml)->Serialize() : xml.error().message;
}

bool Loads(const std::string& bytes) { return XmlText::Parse(bytes).ok(); }

TEST(XmlText, WhatIsNotTouchedIsSavedLetterForLetter) {
  const std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n<!-- head -->\r\n"
      "<!DOCTYPE a [\r\n<!ENTITY e \"x\">\r\n]>\r\n<?target some data?>\r\n"
      "<a one=\"1 &amp; &quot;2&quot;\" b:two='3'>\r\n\t<b>&lt;text&#65;&e;</b> tail <![CDATA[<raw> & ]]>\r\n"
      "  <c/>\r\n\xC3\xA4</a>\r\n<!-- end -->\r\n";
  std::string expected = text;
  expected.replace(expected.find("'3'"), 3, "\"3\"");
  EXPECT_EQ(RoundTrip(text), expected);
}

TEST(XmlText, QuotesInAttributesSurvive) {
  EXPECT_EQ(RoundTrip("<a b='say \"hi\"'><c d='\"'/></a>"),
            "<a b=\"say &quot;hi&quot;\"><c d=\"&quot;\"/></a>");
}

TEST(XmlText, TheEncodingStays) {
  const std::string umlaut = "<?xml version=\"1.0\" encoding=\"windows-1252\"?><a>\xE4\x80</a>";
  EXPECT_EQ(RoundTrip(umlaut), umlaut);
  const std::string latin2 = "<?xml version=\"1.0\" encoding=\"iso-8859-2\"?><a>\xB1</a>";
  EXPECT_EQ(RoundTrip(latin2), latin2);
  const std::string utf16 = "<?xml version=\"1.0\" encoding=\"UTF-16\"?><a>\xE6\x97\xA5</a>";
  const std::string little = std::string(kUtf16LittleMark) + Utf8ToUtf16LeBytes(utf16);
  EXPECT_EQ(RoundTrip(little), little);
  const std::string big = std::string(kUtf16BigMark) + SwapBytePairs(Utf8ToUtf16LeBytes(utf16));
  EXPECT_EQ(RoundTrip(big), big);
  const std::string marked = std::string(kUtf8Mark) + "<a>\xC3\xA4</a>";
  EXPECT_EQ(RoundTrip(marked), marked);
}

TEST(XmlText, ACharacterThatTheEncodingLacksBecomesAReference) {
  auto xml = XmlText::Parse("<?xml version=\"1.0\" encoding=\"windows-1252\"?><a/>");
  ASSERT_TRUE(xml.ok());
  XmlText::SetText((*xml)->Root().child("a"), "\xC3\xA4\xE6\x97\xA5");
  EXPECT_EQ((*xml)->Serialize(), "<?xml version=\"1.0\" encoding=\"windows-1252\"?><a>\xE4&#26085;</a>");
}

TEST(XmlText, TextIsEscapedWhenSetAndResolvedWhenRead) {
  auto xml = XmlText::Parse("<a><b>old<c/></b>&#x20AC;&apos;<![CDATA[&]]>\r\n<d>&lt;</d></a>");
  ASSERT_TRUE(xml.ok());
  const pugi::xml_node a = (*xml)->Root().child("a");
  XmlText::SetText(a.child("b"), "x & <y> \"z\"");
  EXPECT_EQ(XmlText::TextOf(a.child("b")), "x & <y> \"z\"");
  EXPECT_EQ(XmlText::TextOf(a), "x & <y> \"z\"\xE2\x82\xAC'&\n<");
  XmlText::SetText(a, "");
  EXPECT_EQ((*xml)->Serialize(), "<a/>");
}

TEST(XmlText, WhatIsNotWellFormedIsRefusedWithItsLine) {
  for (const char* text : {"",
                           "text",
                           "<a>",
                           "<a></b>",
                           "<a/><b/>",
                           "<a/>text",
                           "text<a/>",
                           "<a b='1' b='2'/>",
                           "<a>&none;</a>",
                           "<a>&</a>",
                           "<a b='<'/>",
                           "<a>&#0;</a>",
                           "<a>&#x110000;</a>",
                           "<!-- a -- b --><a/>",
                           "<a>]]></a>",
                           " <?xml version='1.0'?><a/>",
                           "<a><!DOCTYPE a></a>",
                           "<a/><!DOCTYPE a>",
                           "<a>\x01</a>",
                           "<a>\xFF</a>",
                           "<?xml version='1.0' encoding='utf-16'?><a/>",
                           "<?xml version='1.0' encoding='none'?><a/>",
                           "<![CDATA[x]]><a/>",
                           "<a b=1/>",
                           "<1/>"}) {
    EXPECT_FALSE(Loads(text)) << text;
  }
  EXPECT_FALSE(Loads(std::string("<a>\0</a>", 8)));
  EXPECT_NE(XmlText::Parse("<a>\n<b>\n</a>").error().message.find("line 3"), std::string::npos);
  EXPECT_NE(XmlText::Parse("<a>\n&x;</a>").error().message.find("a bad reference in line"),
            std::string::npos);
}

TEST(XmlText, BrokenUtf16IsRefused) {
  const std::string good("\xFF\xFE<\0a\0>\0\x3D\xD8\x00\xDE<\0/\0a\0>\0", 20);
  ASSERT_TRUE(Loads(good));
  EXPECT_EQ((*XmlText::Parse(good))->Serialize(), good);
  EXPECT_FALSE(Loads(good + "\n"));                          // half a unit
  EXPECT_FALSE(Loads(good.substr(0, 8) + good.substr(10)));  // half a pair
  EXPECT_FALSE(Loads("\xFE\xFF" + std::string("\0<\0a\0>\xDE\0\0<\0/\0a\0>", 16)));
}

TEST(XmlText, LineEndsOfEverySystemReadAsLineFeeds) {
  const auto xml = XmlText::Parse("<a>1\r2\r\n3<![CDATA[4\r5\r\n6]]></a>");
  ASSERT_TRUE(xml.ok());
  EXPECT_EQ(XmlText::TextOf((*xml)->Root()), "1\n2\n34\n5\n6");
}

TEST(XmlText, EntitiesOfTheDocumentTypeAreNeitherFetchedNorExpanded) {
  const std::string text =
      "<!DOCTYPE a [<!ENTITY x SYSTEM \"file:///etc/passwd\"><!ENTITY y \"&x;&x;\">]><a>&x;&y;</a>";
  const auto xml = XmlText::Parse(text);
  ASSERT_TRUE(xml.ok());
  EXPECT_EQ(XmlText::TextOf((*xml)->Root()), "&x;&y;");
  EXPECT_EQ((*xml)->Serialize(), text);
}

TEST(XmlText, DeepNestingIsRefused) {
  std::string text;
  for (int i = 0; i < 200000; ++i) text += "<a>";
  EXPECT_FALSE(Loads(text));
  for (int i = 0; i < 200000; ++i) text += "</a>";
  EXPECT_FALSE(Loads(text));
}

}  // namespace
}  // namespace kw::formats
