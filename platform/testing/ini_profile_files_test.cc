#include "platform/shared/ini_profile_files.h"

#include "platform/testing/fake_file_system.h"
#include "platform/testing/fake_system.h"
#include "platform/testing/profile_contract.h"

namespace kw::platform::testing {
namespace {

class FakeUnderTest : public ProfileUnderTest {
 public:
  FakeUnderTest() { files_.AddFolder("C:\\Work"); }
  ProfileFiles& Profile() override { return profile_; }
  FileSystem& Files() override { return files_; }
  std::string Folder() override { return "C:\\Work"; }

 private:
  FakeFileSystem files_;
  FakeSystem system_;
  IniProfileFiles profile_{files_, system_};
};

INSTANTIATE_TEST_SUITE_P(Fake, ProfileContract,
                         ::testing::Values([] { return std::make_unique<FakeUnderTest>(); }));

TEST(IniProfileFiles, AFullDiskKeepsTheOldFile) {
  FakeFileSystem files;
  FakeSystem system;
  IniProfileFiles profile(files, system);
  files.AddFile("C:\\a.ini", "[S]\r\na=1\r\n");
  files.FailNext(FileOperation::kWriteFile, "C:\\a.ini", kErrorDiskFull);
  EXPECT_EQ(profile.WriteString("C:\\a.ini", "S", "a", "2").number(), kErrorDiskFull);
  EXPECT_EQ(files.Content("C:\\a.ini"), "[S]\r\na=1\r\n");
}

TEST(IniProfileFiles, AFileThatCannotBeReadIsNotReplaced) {
  FakeFileSystem files;
  FakeSystem system;
  IniProfileFiles profile(files, system);
  files.AddFile("C:\\a.ini", "[S]\r\na=1\r\n");
  files.FailNext(FileOperation::kReadFile, "C:\\a.ini", kErrorSharingViolation);
  EXPECT_EQ(profile.WriteString("C:\\a.ini", "S", "a", "2").number(), kErrorSharingViolation);
  EXPECT_EQ(files.Content("C:\\a.ini"), "[S]\r\na=1\r\n");
}

TEST(IniProfileFiles, AFileThatCannotBeLookedAtIsNotReplaced) {
  FakeFileSystem files;
  FakeSystem system;
  IniProfileFiles profile(files, system);
  files.AddFile("C:\\a.ini", "[S]\r\na=1\r\n");
  files.FailNext(FileOperation::kGetFile, "C:\\a.ini", kErrorAccessDenied);
  EXPECT_EQ(profile.WriteString("C:\\a.ini", "S", "a", "2").number(), kErrorAccessDenied);
  EXPECT_EQ(files.Content("C:\\a.ini"), "[S]\r\na=1\r\n");
}

TEST(IniProfileFiles, DeletingInAMissingFileMakesNone) {
  FakeFileSystem files;
  FakeSystem system;
  IniProfileFiles profile(files, system);
  EXPECT_TRUE(profile.WriteString("C:\\a.ini", "S", std::nullopt, std::nullopt).ok());
  EXPECT_FALSE(files.FileExists("C:\\a.ini"));
}

TEST(IniProfileFiles, DoubleByteTextIsNotCutInTheMiddleOfACharacter) {
  FakeFileSystem files;
  FakeSystem system;
  system.code_page = 932;
  IniProfileFiles profile(files, system);
  files.AddFile("C:\\a.ini", "[S]\r\na=\x93\xFA\x96\x7B\r\n");
  EXPECT_EQ(profile.ReadString("C:\\a.ini", "S", "a", "", 4), "\xE6\x97\xA5");
}

}  // namespace
}  // namespace kw::platform::testing
