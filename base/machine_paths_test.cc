#include "base/machine_paths.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace kw {
namespace {

TEST(MachinePaths, RelativeFormsGoByTheCurrentDriveAndFolder) {
  const MachinePaths paths("/m", "C:\\Temp\\Work");
  EXPECT_EQ(paths.FullPath("x.cab"), "C:\\Temp\\Work\\x.cab");
  EXPECT_EQ(paths.FullPath("..\\x.cab"), "C:\\Temp\\x.cab");
  EXPECT_EQ(paths.FullPath("\\x"), "C:\\x");
  EXPECT_EQ(paths.FullPath("C:x"), "C:\\Temp\\Work\\x");
  EXPECT_EQ(paths.FullPath("c:"), "C:\\Temp\\Work");
  EXPECT_EQ(paths.FullPath("D:x"), "D:\\x");
  EXPECT_EQ(paths.FullPath(""), "C:\\Temp\\Work");
}

TEST(MachinePaths, DotsAndSlashesAreTidied) {
  const MachinePaths paths("/m", "C:\\");
  EXPECT_EQ(paths.FullPath("C:\\a\\.\\b\\..\\c\\"), "C:\\a\\c");
  EXPECT_EQ(paths.FullPath("C:/a//b"), "C:\\a\\b");
  EXPECT_EQ(paths.FullPath("C:\\..\\..\\a"), "C:\\a");
  EXPECT_EQ(paths.FullPath("C:\\"), "C:\\");
  EXPECT_EQ(paths.FullPath("C:\\\\name"), "C:\\name");
  EXPECT_EQ(paths.FullPath("\\\\?\\C:\\a"), "C:\\a");
  EXPECT_EQ(paths.FullPath("\\\\server\\share\\..\\x"), "\\\\server\\share\\x");
}

class MachinePathsOnDisk : public testing::Test {
 protected:
  void SetUp() override {
    root_ = std::filesystem::temp_directory_path() /
            ("kw_paths_" + std::to_string(testing::UnitTest::GetInstance()->random_seed()) + "_" +
             testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::remove_all(root_);
    std::filesystem::create_directories(root_ / "drive_c");
  }
  void TearDown() override { std::filesystem::remove_all(root_); }

  void Make(const std::string& name) {
    std::filesystem::create_directories((root_ / name).parent_path());
    std::ofstream(root_ / name) << name;
  }
  std::string Host(const std::string& name) const { return (root_ / name).string(); }
  MachinePaths Paths() const { return {root_.string() + "/", "C:\\Temp"}; }

  std::filesystem::path root_;
};

#ifndef _WIN32
TEST_F(MachinePathsOnDisk, NamesAreFoundWithoutRegardToCaseBeyondAscii) {
  Make("drive_c/Temp/\xC3\x84pfel/File.TXT");
  EXPECT_EQ(Paths().HostPath("c:\\TEMP\\\xC3\xA4PFEL\\file.txt"), Host("drive_c/Temp/\xC3\x84pfel/File.TXT"));
  EXPECT_EQ(Paths().HostPath("\xC3\xA4pfel\\new.Txt"), Host("drive_c/Temp/\xC3\x84pfel/new.Txt"));
}

TEST_F(MachinePathsOnDisk, TheExactSpellingWinsThenTheFirstInByteOrder) {
  Make("drive_c/A.txt");
  Make("drive_c/a.txt");
  Make("drive_c/b.TXT");
  Make("drive_c/B.txt");
  EXPECT_EQ(Paths().HostPath("C:\\a.txt"), Host("drive_c/a.txt"));
  EXPECT_EQ(Paths().HostPath("C:\\A.txt"), Host("drive_c/A.txt"));
  EXPECT_EQ(Paths().HostPath("C:\\B.TXT"), Host("drive_c/B.txt"));
}

TEST_F(MachinePathsOnDisk, DriveZIsTheRootOfTheHost) {
  Make("drive_c/Temp/x");
  EXPECT_EQ(Paths().HostPath("Z:" + Host("drive_c")), Host("drive_c"));
  EXPECT_EQ(Paths().HostPath("Z:\\"), "/");
  EXPECT_EQ(Paths().HostPath("D:\\x"), Host("drive_d/x"));
  EXPECT_EQ(Paths().HostPath("C:\\"), Host("drive_c"));
}

TEST_F(MachinePathsOnDisk, HostPathsHaveAWindowsForm) {
  EXPECT_EQ(Paths().WindowsPath(Host("drive_c/Temp/x")), "C:\\Temp\\x");
  EXPECT_EQ(Paths().WindowsPath(Host("drive_c")), "C:\\");
  EXPECT_EQ(Paths().WindowsPath("/usr/lib"), "Z:\\usr\\lib");
  EXPECT_EQ(Paths().WindowsPath("/"), "Z:\\");
}

TEST_F(MachinePathsOnDisk, NothingClimbsOutOfADrive) {
  EXPECT_EQ(Paths().HostPath("C:\\..\\..\\etc"), Host("drive_c/etc"));
}
#endif

}  // namespace
}  // namespace kw
