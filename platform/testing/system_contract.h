#ifndef KITWRIGHT_PLATFORM_TESTING_SYSTEM_CONTRACT_H_
#define KITWRIGHT_PLATFORM_TESTING_SYSTEM_CONTRACT_H_

// The contract of System as tests, to be included in one file of a test program and instantiated.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "base/text.h"
#include "platform/file_system.h"
#include "platform/system.h"

namespace kw::platform::testing {

/// A system under test.
class SystemUnderTest {
 public:
  virtual ~SystemUnderTest() = default;
  virtual System& Under() = 0;
  virtual FileSystem& Files() = 0;
};

class SystemContract : public ::testing::TestWithParam<std::function<std::unique_ptr<SystemUnderTest>()>> {
 protected:
  SystemContract() : under_test_(GetParam()()), system(under_test_->Under()), files(under_test_->Files()) {}

 private:
  std::unique_ptr<SystemUnderTest> under_test_;

 protected:
  System& system;
  FileSystem& files;
};

TEST_P(SystemContract, FoldersEndWithoutABackslash) {
  for (const std::string& folder : {system.TempFolder(), system.ProgramFolder(), system.SpecialFolder(35)}) {
    ASSERT_GT(folder.size(), 3u);
    EXPECT_EQ(folder.substr(1, 2), ":\\") << folder;
    EXPECT_NE(folder.back(), '\\') << folder;
  }
  EXPECT_TRUE(files.FolderExists(system.ProgramFolder()));
  EXPECT_EQ(system.SpecialFolder(9999), "");
}

TEST_P(SystemContract, LocaleAndCodePageAreReal) {
  EXPECT_GT(system.UserDefaultLocale(), 0);
  EXPECT_TRUE(CodePageIsKnown(system.CodePage()));
  EXPECT_NE(system.TotalPhysicalMemory(), 0);
}

TEST_P(SystemContract, TheTimeIsADate) {
  const LocalTime now = system.Now();
  EXPECT_GE(now.year, 2000);
  EXPECT_TRUE(now.month >= 1 && now.month <= 12);
  EXPECT_TRUE(now.day >= 1 && now.day <= 31);
  EXPECT_TRUE(now.hour >= 0 && now.hour <= 23);
  EXPECT_TRUE(now.minute >= 0 && now.minute <= 59);
  EXPECT_TRUE(now.second >= 0 && now.second <= 60);
  // The day of the year lies in its month: 28 days at least before it in each.
  EXPECT_GE(now.day_of_year, 28 * (now.month - 1) + now.day);
  EXPECT_LE(now.day_of_year, 31 * (now.month - 1) + now.day);
}

TEST_P(SystemContract, UniqueBytesDiffer) {
  const auto one = system.CreateGuid();
  const auto two = system.CreateGuid();
  ASSERT_TRUE(one.ok());
  ASSERT_TRUE(two.ok());
  EXPECT_NE(*one, *two);
}

TEST_P(SystemContract, TheFirstInstanceHasNone) {
  EXPECT_FALSE(system.PreviousInstance());
  EXPECT_FALSE(system.PreviousInstance());
}

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_SYSTEM_CONTRACT_H_
