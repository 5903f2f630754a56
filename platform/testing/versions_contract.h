#ifndef KITWRIGHT_PLATFORM_TESTING_VERSIONS_CONTRACT_H_
#define KITWRIGHT_PLATFORM_TESTING_VERSIONS_CONTRACT_H_

// The contract of FileVersions as tests. A test program includes this in one file and instantiates the suite:
//
//   INSTANTIATE_TEST_SUITE_P(Fake, VersionsContract, ::testing::Values(&MakeSomething));

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "formats/version_block_test_support.h"
#include "platform/file_system.h"
#include "platform/file_versions.h"

namespace kw::platform::testing {

class VersionsUnderTest {
 public:
  virtual ~VersionsUnderTest() = default;
  virtual FileVersions& Versions() = 0;
  virtual FileSystem& Files() = 0;
  /// An empty folder that can be written.
  virtual std::string Folder() = 0;
};

class VersionsContract
    : public ::testing::TestWithParam<std::function<std::unique_ptr<VersionsUnderTest>()>> {
 protected:
  VersionsContract()
      : under_test_(GetParam()()),
        versions(under_test_->Versions()),
        files(under_test_->Files()),
        path(under_test_->Folder() + "\\SETUP.EXE") {}

  Result<FileVersion> ReadFile(const std::string& bytes) {
    EXPECT_TRUE(files.WriteFile(path, bytes).ok());
    return versions.Read(path);
  }
  static formats::VersionBlock Sample() {
    formats::VersionBlock version;
    version.has_fixed = true;
    version.file = {4, 1, 60, 7};
    version.product = {65535, 2, 3, 4};
    version.translations = {{0x409, 1200}, {0x407, 1252}};
    version.tables = {{"040904b0", {{"OriginalFilename", "Repacker.exe"}, {"Comments", "\xC3\xA4"}}},
                      {"040704E4", {{"Comments", "zwei"}}}};
    return version;
  }

 private:
  std::unique_ptr<VersionsUnderTest> under_test_;

 protected:
  FileVersions& versions;
  FileSystem& files;
  std::string path;
};

TEST_P(VersionsContract, NumbersTranslationsAndStringsOf32And64BitProgramsAreRead) {
  for (const bool wide : {false, true}) {
    const auto version = ReadFile(formats::MakePeFile(wide, formats::MakeVersionResource(Sample())));
    ASSERT_TRUE(version.ok()) << version.error().message;
    EXPECT_TRUE(version->has_fixed);
    EXPECT_EQ(version->file, Sample().file);
    EXPECT_EQ(version->product, Sample().product);
    EXPECT_EQ(version->translations, Sample().translations);
    ASSERT_EQ(version->strings.count("040904B0"), 1u);
    EXPECT_EQ(version->strings.at("040904B0").at("ORIGINALFILENAME"), "Repacker.exe");
    EXPECT_EQ(version->strings.at("040904b0").at("Comments"), "\xC3\xA4");
    EXPECT_EQ(version->strings.at("040704e4").at("Comments"), "zwei");
  }
}

TEST_P(VersionsContract, AProgramBehindWhichOtherDataStandsIsRead) {
  const std::string program = formats::MakePeFile(true, formats::MakeVersionResource(Sample()));
  const auto version = ReadFile(program + std::string(300000, 'x'));
  ASSERT_TRUE(version.ok()) << version.error().message;
  EXPECT_EQ(version->file, Sample().file);
}

TEST_P(VersionsContract, AFileWithoutABlockHasNoResourceData) {
  EXPECT_EQ(ReadFile(formats::MakePeFile(true, "")).number(), kErrorResourceDataNotFound);
  EXPECT_EQ(ReadFile("no program at all").number(), kErrorResourceDataNotFound);
  EXPECT_EQ(ReadFile("").number(), kErrorResourceDataNotFound);
}

TEST_P(VersionsContract, AMissingFileIsNotFound) {
  EXPECT_EQ(versions.Read(path + ".none").number(), kErrorFileNotFound);
}

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_VERSIONS_CONTRACT_H_
