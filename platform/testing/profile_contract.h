#ifndef KITWRIGHT_PLATFORM_TESTING_PROFILE_CONTRACT_H_
#define KITWRIGHT_PLATFORM_TESTING_PROFILE_CONTRACT_H_

// The contract of ProfileFiles as tests. A test program includes this in one file and instantiates the suite:
//
//   INSTANTIATE_TEST_SUITE_P(Fake, ProfileContract, ::testing::Values(&MakeSomething));

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/file_system.h"
#include "platform/profile_files.h"

namespace kw::platform::testing {

/// Profile files under test on a machine with the code page 1252.
class ProfileUnderTest {
 public:
  virtual ~ProfileUnderTest() = default;
  virtual ProfileFiles& Profile() = 0;
  virtual FileSystem& Files() = 0;
  /// An empty folder that can be written.
  virtual std::string Folder() = 0;
};

class ProfileContract : public ::testing::TestWithParam<std::function<std::unique_ptr<ProfileUnderTest>()>> {
 protected:
  ProfileContract()
      : under_test_(GetParam()()),
        profile(under_test_->Profile()),
        files(under_test_->Files()),
        ini(under_test_->Folder() + "\\Setup.ini") {}

  void Content(std::string_view bytes) { ASSERT_TRUE(files.WriteFile(ini, bytes).ok()); }
  std::string Content() { return files.ReadFile(ini).value_or("(no such file)"); }
  std::string Read(std::string_view section, std::string_view key, std::string_view fallback = "none",
                   int size = 255) {
    return profile.ReadString(ini, section, key, fallback, size);
  }

 private:
  std::unique_ptr<ProfileUnderTest> under_test_;

 protected:
  ProfileFiles& profile;
  FileSystem& files;
  std::string ini;
};

TEST_P(ProfileContract, TheFallbackStandsForAMissingFileSectionOrKey) {
  EXPECT_EQ(Read("Startup", "Product"), "none");
  Content("[Startup]\r\nProduct=\r\n");
  EXPECT_EQ(Read("Dat", "Product"), "none");
  EXPECT_EQ(Read("Startup", "CmdLine"), "none");
  EXPECT_EQ(Read("startup", "PRODUCT"), "");
}

TEST_P(ProfileContract, BlanksAreTrimmedAndOnePairOfQuotesStripped) {
  Content("[S]\r\na =  one two \r\nb=\" quoted \"\r\n");
  EXPECT_EQ(Read("S", "a"), "one two");
  EXPECT_EQ(Read("S", "b"), " quoted ");
}

TEST_P(ProfileContract, TheFirstSectionAndTheFirstKeyWin) {
  Content("[S]\r\na=1\r\nA=2\r\n[s]\r\na=3\r\nb=4\r\n");
  EXPECT_EQ(Read("S", "a"), "1");
  EXPECT_EQ(Read("S", "b"), "none");
}

TEST_P(ProfileContract, ABufferOf255Gives254Characters) {
  Content("[S]\r\na=" + std::string(300, 'x') + "\r\nb=" + std::string(300, '\xE4') + "\r\n");
  EXPECT_EQ(Read("S", "a"), std::string(254, 'x'));
  EXPECT_EQ(Read("S", "b").size(), 508u);
  EXPECT_EQ(Read("S", "none", std::string(300, 'y')), std::string(254, 'y'));
  EXPECT_EQ(Read("S", "a", "", 3), "xx");
}

TEST_P(ProfileContract, TextIsInTheSystemCodePage) {
  Content("[\xC4]\r\n\xD6=\xDF\x80\r\n");
  EXPECT_EQ(Read("\xC3\xA4", "\xC3\xB6"), "\xC3\x9F\xE2\x82\xAC");
  ASSERT_TRUE(profile.WriteString(ini, "\xC3\x84", "\xC3\x96", "\xC3\xBC").ok());
  EXPECT_EQ(Content(), "[\xC4]\r\n\xD6=\xFC\r\n");
}

TEST_P(ProfileContract, AKeyIsReplacedInPlace) {
  Content("[S]\r\na=1\r\nb=2\r\n[T]\r\nb=3\r\n");
  ASSERT_TRUE(profile.WriteString(ini, "s", "A", "new").ok());
  EXPECT_EQ(Content(), "[S]\r\na=new\r\nb=2\r\n[T]\r\nb=3\r\n");
}

TEST_P(ProfileContract, ANewKeyGoesToTheEndOfItsSectionAndANewSectionToTheEndOfTheFile) {
  Content("[S]\r\na=1\r\n[T]\r\nb=3\r\n");
  ASSERT_TRUE(profile.WriteString(ini, "S", "n", "2").ok());
  EXPECT_EQ(Content(), "[S]\r\na=1\r\nn=2\r\n[T]\r\nb=3\r\n");
  ASSERT_TRUE(profile.WriteString(ini, "U", "n", "4").ok());
  EXPECT_EQ(Read("U", "n"), "4");
  EXPECT_EQ(profile.SectionNames(ini), (std::vector<std::string>{"S", "T", "U"}));
}

TEST_P(ProfileContract, NoValueDeletesTheKeyAndNoKeyTheSection) {
  Content("[S]\r\na=1\r\nb=2\r\n[T]\r\nb=3\r\n");
  ASSERT_TRUE(profile.WriteString(ini, "S", "a", std::nullopt).ok());
  EXPECT_EQ(Content(), "[S]\r\nb=2\r\n[T]\r\nb=3\r\n");
  ASSERT_TRUE(profile.WriteString(ini, "S", std::nullopt, std::nullopt).ok());
  EXPECT_EQ(Content(), "[T]\r\nb=3\r\n");
  ASSERT_TRUE(profile.WriteString(ini, "S", std::nullopt, std::nullopt).ok());
  EXPECT_EQ(Content(), "[T]\r\nb=3\r\n");
}

TEST_P(ProfileContract, CommentsStay) {
  Content("; head\r\n[S]\r\n; about a\r\na=1\r\n");
  ASSERT_TRUE(profile.WriteString(ini, "S", "a", "2").ok());
  EXPECT_EQ(Content(), "; head\r\n[S]\r\n; about a\r\na=2\r\n");
}

TEST_P(ProfileContract, WritingMakesAMissingFile) {
  ASSERT_TRUE(profile.WriteString(ini, "S", "a", "1").ok());
  EXPECT_EQ(Content(), "[S]\r\na=1\r\n");
}

TEST_P(ProfileContract, AWriteThatFailsChangesNothing) {
  Content("[S]\r\na=1\r\n");
  EXPECT_EQ(profile.WriteString(ini, "S", "a", "\xE6\x97\xA5").number(), kErrorUnrepresentableText);
  ASSERT_TRUE(files.SetReadOnly(ini, true).ok());
  EXPECT_EQ(profile.WriteString(ini, "S", "a", "2").number(), kErrorAccessDenied);
  ASSERT_TRUE(files.SetReadOnly(ini, false).ok());
  EXPECT_EQ(Content(), "[S]\r\na=1\r\n");
}

TEST_P(ProfileContract, BlankLinesStay) {
  Content("\r\n[S]\r\n\r\na=1\r\n\r\n[T]\r\n");
  ASSERT_TRUE(profile.WriteString(ini, "S", "b", "2").ok());
  EXPECT_EQ(Content(), "\r\n[S]\r\n\r\na=1\r\nb=2\r\n\r\n[T]\r\n");
}

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_PROFILE_CONTRACT_H_
