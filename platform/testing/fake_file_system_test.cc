#include "platform/testing/fake_file_system.h"

#include <memory>

#include "platform/testing/file_system_contract.h"

namespace kw::platform::testing {
namespace {

class FakeUnderTest : public FileSystemUnderTest {
 public:
  FakeUnderTest() { files_.AddFolder("C:\\Work"); }
  FileSystem& Files() override { return files_; }
  std::string Folder() override { return "C:\\Work"; }
  void ProtectFolder(const std::string& path, bool protect) override { files_.ProtectFolder(path, protect); }
  bool AddLink(const std::string& path, const std::string& target) override {
    files_.AddLink(path, target);
    return true;
  }

 private:
  FakeFileSystem files_;
};

INSTANTIATE_TEST_SUITE_P(Fake, FileSystemContract,
                         ::testing::Values([] { return std::make_unique<FakeUnderTest>(); }));

TEST(FakeFileSystem, AnOrderedFailureMeetsTheNthCallAlone) {
  FakeFileSystem files;
  files.AddFile("C:\\a", "x");
  files.FailNth(FileOperation::kCopyFile, "c:\\B", 2, kErrorDiskFull);
  EXPECT_TRUE(files.CopyFile("C:\\a", "C:\\b", true).ok());
  EXPECT_EQ(files.CopyFile("C:\\a", "C:\\b", true).number(), kErrorDiskFull);
  EXPECT_TRUE(files.CopyFile("C:\\a", "C:\\b", true).ok());
}

TEST(FakeFileSystem, AStandingFailureStaysAndLeavesOtherPathsAlone) {
  FakeFileSystem files;
  files.FailAlways(FileOperation::kWriteFile, "C:\\a", kErrorDiskFull);
  EXPECT_EQ(files.WriteFile("C:\\a", "").number(), kErrorDiskFull);
  EXPECT_EQ(files.WriteFile("C:\\a", "").number(), kErrorDiskFull);
  EXPECT_TRUE(files.WriteFile("C:\\b", "").ok());
  files.FailNext(FileOperation::kCreateFolder, "", kErrorAccessDenied);
  EXPECT_EQ(files.CreateFolder("C:\\f").number(), kErrorAccessDenied);
  EXPECT_TRUE(files.CreateFolder("C:\\f").ok());
}

TEST(FakeFileSystem, AWriteToAnOpenFileCanFail) {
  FakeFileSystem files;
  auto open = files.Open("C:\\a", OpenHow::kOpenOrCreateExclusive);
  ASSERT_TRUE(open.ok());
  files.FailNext(FileOperation::kHandleWrite, "C:\\a", kErrorDiskFull);
  EXPECT_EQ((*open)->Write("x").number(), kErrorDiskFull);
  EXPECT_TRUE((*open)->Write("y").ok());
  open = Error{1, ""};
  EXPECT_EQ(files.Content("C:\\a"), "y");
}

TEST(FakeFileSystem, TheLogTellsEachChange) {
  FakeFileSystem files;
  EXPECT_TRUE(files.CreateFolder("C:\\f").ok());
  EXPECT_TRUE(files.WriteFile("C:\\f\\a", "x").ok());
  EXPECT_TRUE(files.SetReadOnly("C:\\f\\a", true).ok());
  EXPECT_TRUE(files.CopyFile("C:\\f\\a", "C:\\b", false).ok());
  EXPECT_TRUE(files.DeleteFolder("C:\\f", true).ok());
  EXPECT_FALSE(files.DeleteFile("C:\\f\\a", true).ok());
  EXPECT_THAT(files.log, ::testing::ElementsAre("create-folder C:\\f", "write C:\\f\\a", "read-only C:\\f\\a",
                                                "copy C:\\f\\a -> C:\\b", "delete-folder C:\\f"));
}

TEST(FakeFileSystem, AnOpenDatabaseCanBeCopiedAndNotDeleted) {
  FakeFileSystem files;
  files.AddFile("C:\\a.msi", "x");
  auto database = files.HostFiles().Open("C:\\A.MSI", Storage::Mode::kReadWrite);
  ASSERT_TRUE(database.ok());
  ASSERT_TRUE((*database)->WriteAt(1, std::as_bytes(std::span("yz", 2))).ok());
  EXPECT_TRUE(files.CopyFile("C:\\a.msi", "C:\\b.msi", false).ok());
  EXPECT_EQ(files.Content("C:\\b.msi"), "xyz");
  EXPECT_EQ(files.DeleteFile("C:\\a.msi", true).number(), kErrorSharingViolation);
  database = Error{1, ""};
  EXPECT_TRUE(files.DeleteFile("C:\\a.msi", false).ok());
}

TEST(FakeFileSystem, TheTreeListsFilesAndEmptyFolders) {
  FakeFileSystem files;
  files.AddFile("C:\\Out\\b\\c.txt", "");
  files.AddFile("C:\\Out\\a.txt", "");
  files.AddFolder("C:\\Out\\empty");
  EXPECT_THAT(files.Tree("C:\\Out"), ::testing::ElementsAre("a.txt", "b\\c.txt", "empty\\"));
}

TEST(FakeFileSystem, SharesAreRootsToo) {
  FakeFileSystem files;
  files.AddFolder("\\\\server\\share\\dir");
  EXPECT_TRUE(files.WriteFile("\\\\SERVER\\Share\\dir\\a", "x").ok());
  EXPECT_EQ(files.Content("\\\\server\\share\\dir\\a"), "x");
  EXPECT_FALSE(files.FolderExists("\\\\server\\other"));
}

}  // namespace
}  // namespace kw::platform::testing
