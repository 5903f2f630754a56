#include "platform/windows/file_system.h"

#include <gmock/gmock.h>

#include <memory>
#include <thread>

#include "base/storage.h"
#include "platform/testing/file_system_contract.h"
#include "platform/windows/deny_changes.h"
#include "platform/windows/system_headers.h"
#include "platform/windows/temp_folder.h"
#include "platform/windows/wide.h"

namespace kw::platform::testing {
namespace {

class WindowsUnderTest : public FileSystemUnderTest {
 public:
  FileSystem& Files() override { return files_; }
  std::string Folder() override { return folder_.path(); }
  void ProtectFolder(const std::string& path, bool protect) override { windows::DenyChanges(path, protect); }
  bool AddLink(const std::string& path, const std::string& target) override {
    const DWORD kind = files_.FolderExists(target) ? SYMBOLIC_LINK_FLAG_DIRECTORY : 0;
    // Some systems say that they made one and did not.
    return CreateSymbolicLinkW(windows::Wide(path).c_str(), windows::Wide(target).c_str(), kind) != 0 &&
           files_.IsLink(path);
  }

 private:
  windows::TempFolder folder_;
  windows::WindowsFileSystem files_;
};

INSTANTIATE_TEST_SUITE_P(Windows, FileSystemContract,
                         ::testing::Values([] { return std::make_unique<WindowsUnderTest>(); }));

}  // namespace
}  // namespace kw::platform::testing

namespace kw::platform::windows {
namespace {

using ::testing::ElementsAre;

class WindowsFileSystemTest : public ::testing::Test {
 protected:
  std::string In(const std::string& name) const { return folder.path() + "\\" + name; }
  std::vector<std::string> Names(const std::string& path) {
    std::vector<std::string> names;
    for (const FileEntry& entry : files.List(path).value_or({})) names.push_back(entry.name);
    return names;
  }
  TempFolder folder;
  WindowsFileSystem files;
};

TEST_F(WindowsFileSystemTest, PathsMayBeLongerThanTheUsualCallsTake) {
  std::string deep = folder.path();
  for (int i = 0; i < 6; ++i) {
    deep += "\\" + std::string(60, static_cast<char>('a' + i));
    ASSERT_EQ(files.CreateFolder(deep).message(), "");
  }
  ASSERT_GT(deep.size(), 300u);
  EXPECT_EQ(files.WriteFile(deep + "\\a", "x").message(), "");
  EXPECT_EQ(files.CopyFile(deep + "\\a", deep + "\\b", false).message(), "");
  EXPECT_EQ(files.ReadFile(deep + "\\b").value_or(""), "x");
  EXPECT_THAT(Names(deep), ElementsAre("a", "b"));
  EXPECT_EQ(files.DeleteFolder(In(std::string(60, 'a')), false).message(), "");
}

TEST_F(WindowsFileSystemTest, NamesThatNoCodePageHoldsAreKept) {
  const std::string name = "\xE6\x97\xA5\xE6\x9C\xAC \xD0\x96.txt";
  ASSERT_TRUE(files.WriteFile(In(name), "x").ok());
  EXPECT_THAT(Names(folder.path()), ElementsAre(name));
  EXPECT_EQ(files.ReadFile(In(name)).value_or(""), "x");
}

TEST_F(WindowsFileSystemTest, ACopyKeepsTheTimes) {
  ASSERT_TRUE(files.WriteFile(In("a"), "x").ok());
  const auto times_of = [&](const char* name, bool set) {
    FILETIME time = {0x12345600, 0x01C40000};
    const HANDLE file = CreateFileW(Wide(In(name)).c_str(), set ? GENERIC_WRITE : GENERIC_READ,
                                    FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (set) {
      SetFileTime(file, nullptr, nullptr, &time);
    } else {
      GetFileTime(file, nullptr, nullptr, &time);
    }
    CloseHandle(file);
    return time;
  };
  times_of("a", true);
  ASSERT_TRUE(files.CopyFile(In("a"), In("b"), false).ok());
  EXPECT_EQ(times_of("b", false).dwHighDateTime, times_of("a", false).dwHighDateTime);
  EXPECT_EQ(times_of("b", false).dwLowDateTime, times_of("a", false).dwLowDateTime);
}

TEST_F(WindowsFileSystemTest, NothingIsLeftBesideAFileThatCouldNotBeReplaced) {
  ASSERT_TRUE(files.WriteFile(In("a"), "old").ok());
  const HANDLE reader = CreateFileW(Wide(In("a")).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    nullptr, OPEN_EXISTING, 0, nullptr);
  EXPECT_EQ(files.WriteFile(In("a"), "new").number(), kErrorSharingViolation);
  EXPECT_EQ(files.CopyFile(In("a"), In("missing\\b"), true).number(), kErrorPathNotFound);
  CloseHandle(reader);
  EXPECT_EQ(files.ReadFile(In("a")).value_or(""), "old");
  EXPECT_THAT(Names(folder.path()), ElementsAre("a"));
}

/// Another program that looks through a file for a moment, and lets nobody else have it meanwhile.
class Scanner {
 public:
  explicit Scanner(const std::string& path)
      : file_(CreateFileW(Wide(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0,
                          nullptr)),
        thread_([this] {
          Sleep(200);
          CloseHandle(file_);
        }) {}
  ~Scanner() { thread_.join(); }
  bool Looks() const { return file_ != INVALID_HANDLE_VALUE; }

 private:
  HANDLE file_;
  std::thread thread_;
};

TEST_F(WindowsFileSystemTest, WhatAScannerLooksThroughForAMomentIsDeletedAndRenamed) {
  ASSERT_TRUE(files.WriteFile(In("a"), "x").ok());
  {
    const Scanner scanner(In("a"));
    ASSERT_TRUE(scanner.Looks());
    EXPECT_EQ(SystemStorage().Rename(In("a"), In("b")).message(), "");
  }
  {
    const Scanner scanner(In("b"));
    ASSERT_TRUE(scanner.Looks());
    EXPECT_EQ(files.DeleteFile(In("b"), false).message(), "");
  }
  EXPECT_THAT(Names(folder.path()), ElementsAre());
}

TEST_F(WindowsFileSystemTest, AHiddenFileStaysHiddenWhenItIsReplaced) {
  ASSERT_TRUE(files.WriteFile(In("a"), "old").ok());
  ASSERT_TRUE(SetFileAttributesW(Wide(In("a")).c_str(), FILE_ATTRIBUTE_HIDDEN));
  ASSERT_EQ(files.WriteFile(In("a"), "new").message(), "");
  EXPECT_EQ(files.ReadFile(In("a")).value_or(""), "new");
  EXPECT_NE(GetFileAttributesW(Wide(In("a")).c_str()) & FILE_ATTRIBUTE_HIDDEN, 0u);
}

TEST_F(WindowsFileSystemTest, AProtectedFolderRefusesNewFilesAndFolders) {
  ASSERT_TRUE(files.CreateFolder(In("locked")).ok());
  ASSERT_TRUE(files.WriteFile(In("b"), "x").ok());
  DenyChanges(In("locked"), true);
  EXPECT_EQ(files.WriteFile(In("locked\\new"), "x").number(), kErrorAccessDenied);
  EXPECT_EQ(files.CreateFolder(In("locked\\sub")).number(), kErrorAccessDenied);
  EXPECT_EQ(files.CopyFile(In("b"), In("locked\\b"), true).number(), kErrorAccessDenied);
  EXPECT_EQ(files.Open(In("locked\\new"), OpenHow::kOpenOrCreateExclusive).number(), kErrorAccessDenied);
  EXPECT_THAT(Names(In("locked")), ElementsAre());
  DenyChanges(In("locked"), false);
  EXPECT_TRUE(files.DeleteFolder(In("locked"), false).ok());
}

TEST_F(WindowsFileSystemTest, AFailedDeletionNamesWhatStayed) {
  ASSERT_TRUE(files.CreateFolder(In("sub")).ok());
  ASSERT_TRUE(files.WriteFile(In("sub\\a"), "x").ok());
  ASSERT_TRUE(files.WriteFile(In("sub\\b"), "x").ok());
  ASSERT_TRUE(files.SetReadOnly(In("sub\\b"), true).ok());
  const Status status = files.DeleteFolder(In("sub"), false);
  EXPECT_THAT(status.message(), ::testing::HasSubstr(In("sub\\b")));
}

}  // namespace
}  // namespace kw::platform::windows
