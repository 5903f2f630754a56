#ifndef KITWRIGHT_PLATFORM_TESTING_XML_CONTRACT_H_
#define KITWRIGHT_PLATFORM_TESTING_XML_CONTRACT_H_

// The contract of XmlFactory as tests. A test program includes this in one file and instantiates the suite:
//
//   INSTANTIATE_TEST_SUITE_P(Fake, XmlContract, ::testing::Values(&MakeSomething));

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/file_system.h"
#include "platform/xml.h"

namespace kw::platform::testing {

class XmlUnderTest {
 public:
  virtual ~XmlUnderTest() = default;
  virtual XmlFactory& Xml() = 0;
  virtual FileSystem& Files() = 0;
  /// An empty folder that can be written.
  virtual std::string Folder() = 0;
};

class XmlContract : public ::testing::TestWithParam<std::function<std::unique_ptr<XmlUnderTest>()>> {
 protected:
  XmlContract() : under_test_(GetParam()()), files(under_test_->Files()) {
    path = under_test_->Folder() + "\\PkgCatalog.XML";
    document = under_test_->Xml().CreateDocument().value();
  }
  Status Load(std::string_view bytes) {
    EXPECT_TRUE(files.WriteFile(path, bytes).ok());
    return document->Load(path);
  }
  std::string Saved() {
    const std::string target = path + ".out";
    EXPECT_TRUE(document->Save(target).ok());
    return files.ReadFile(target).value_or("(unreadable)");
  }

 private:
  std::unique_ptr<XmlUnderTest> under_test_;

 protected:
  FileSystem& files;
  std::string path;
  std::unique_ptr<XmlDocument> document;
};

TEST_P(XmlContract, WhatIsNotTouchedPassesThrough) {
  const std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!-- c --><?pi d?><a x=\"1\"><b y=\"2\">t</b><!-- d "
      "--><c/></a>";
  ASSERT_EQ(Load(text).message(), "");
  const std::string saved = Saved();
  for (const char* part : {"<!-- c -->", "<?pi d?>", "<a x=\"1\"><b y=\"2\">t</b><!-- d --><c/></a>"}) {
    EXPECT_NE(saved.find(part), std::string::npos) << saved;
  }
}

TEST_P(XmlContract, TheFirstChildElementOfANameIsSelected) {
  ASSERT_TRUE(Load("<a><!-- b --><c><b>deep</b></c><b>one</b><b>two</b></a>").ok());
  const auto a = document->Document()->SelectSingleNode("a");
  ASSERT_NE(a, nullptr);
  EXPECT_EQ(a->SelectSingleNode("b")->Text(), "one");
  EXPECT_EQ(a->SelectSingleNode("B"), nullptr);
  EXPECT_EQ(document->Document()->SelectSingleNode("b"), nullptr);
}

TEST_P(XmlContract, AListIsEmptiedAndFilledAgain) {
  ASSERT_TRUE(Load("<a><l>\n <i><n>old</n></i>\n</l><t>x</t></a>").ok());
  const auto a = document->Document()->SelectSingleNode("a");
  const auto list = a->SelectSingleNode("l");
  while (list->HasChildNodes()) list->RemoveFirstChild();
  for (const char* name : {"A & B.EXE", "\xC3\xA4.DLL"}) {
    list->AppendElement("i")->AppendElement("n")->SetText(name);
  }
  a->SelectSingleNode("t")->SetText("0407");
  a->AppendElement("new");
  ASSERT_TRUE(document->Save(path).ok());
  EXPECT_NE(files.ReadFile(path)->find(
                "<a><l><i><n>A &amp; B.EXE</n></i><i><n>\xC3\xA4.DLL</n></i></l><t>0407</t><new/></a>"),
            std::string::npos);
  ASSERT_TRUE(document->Load(path).ok());
  EXPECT_EQ(document->Document()->SelectSingleNode("a")->SelectSingleNode("l")->Text(),
            "A & B.EXE\xC3\xA4.DLL");
}

TEST_P(XmlContract, AMissingOrDamagedFileFails) {
  EXPECT_FALSE(document->Load(path + ".none").ok());
  EXPECT_FALSE(Load("").ok());
  EXPECT_FALSE(Load("<a><b></a>").ok());
  const Status status = Load("<a>\n<b></a>");
  EXPECT_NE(status.message().find(path), std::string::npos);
  EXPECT_NE(status.message().find("line 2"), std::string::npos);
  EXPECT_FALSE(Load("\xFF\xFE<\0a").ok());
}

TEST_P(XmlContract, ExternalEntitiesAndDocumentTypesAreNeverFetched) {
  ASSERT_TRUE(files.WriteFile(path + ".secret", "secret").ok());
  const Status status =
      Load("<!DOCTYPE a SYSTEM \"none.dtd\" [<!ENTITY x SYSTEM \"PkgCatalog.XML.secret\">]><a>&x;</a>");
  if (status.ok()) {
    EXPECT_EQ(document->Document()->SelectSingleNode("a")->Text().find("secret"), std::string::npos);
  }
}

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_XML_CONTRACT_H_
