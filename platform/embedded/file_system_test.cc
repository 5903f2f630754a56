#include "platform/embedded/file_system.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <memory>

#include "base/text.h"
#include "platform/embedded/temp_machine.h"
#include "platform/testing/file_system_contract.h"

namespace kw::platform::testing {
namespace {

class EmbeddedUnderTest : public FileSystemUnderTest {
 public:
  EmbeddedUnderTest() : files_(MachinePaths(machine_.root(), "C:\\")) {}
  FileSystem& Files() override { return files_; }
  std::string Folder() override { return "C:\\Work"; }
  void ProtectFolder(const std::string& path, bool protect) override {
    ASSERT_EQ(::chmod(files_.Paths().HostPath(path).c_str(), protect ? 0555 : 0755), 0);
  }
  bool AddLink(const std::string& path, const std::string& target) override {
    const MachinePaths paths = files_.Paths();
    return ::symlink(paths.HostPath(target).c_str(), paths.HostPath(path).c_str()) == 0;
  }

 private:
  embedded::TempMachine machine_;
  embedded::EmbeddedFileSystem files_;
};

INSTANTIATE_TEST_SUITE_P(Embedded, FileSystemContract,
                         ::testing::Values([] { return std::make_unique<EmbeddedUnderTest>(); }));

}  // namespace
}  // namespace kw::platform::testing

namespace kw::platform::embedded {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

class EmbeddedFileSystemTest : public ::testing::Test {
 protected:
  TempMachine machine;
  EmbeddedFileSystem files{MachinePaths(machine.root(), "C:\\Work")};

  std::vector<std::string> Names(const std::string& folder) {
    std::vector<std::string> names;
    for (const FileEntry& entry : files.List(folder).value_or({})) names.push_back(entry.name);
    return names;
  }
};

TEST_F(EmbeddedFileSystemTest, DriveZIsTheHost) {
  machine.Put("somewhere/a", "x");
  std::string path = "Z:" + machine.root() + "/somewhere/A";
  std::replace(path.begin(), path.end(), '/', '\\');
  EXPECT_EQ(files.ReadFile(path).value_or(""), "x");
  EXPECT_TRUE(files.FolderExists("Z:\\"));
  EXPECT_TRUE(files.FolderExists("z:\\TMP") || files.FolderExists("z:\\usr"));
}

TEST_F(EmbeddedFileSystemTest, SharesLieBelowUnc) {
  machine.Put("unc/Server/Share/a", "x");
  EXPECT_EQ(files.ReadFile("\\\\server\\share\\A").value_or(""), "x");
  EXPECT_FALSE(files.FolderExists("\\\\server\\other"));
  EXPECT_EQ(files.WriteFile("\\\\nobody\\share\\a", "").number(), kErrorPathNotFound);
}

TEST_F(EmbeddedFileSystemTest, ACopyKeepsTheTimes) {
  machine.Put("drive_c/Work/a", "x");
  const timespec times[2] = {{1000000000, 0}, {1000000001, 500}};
  ASSERT_EQ(::utimensat(AT_FDCWD, machine.OnC("Work/a").c_str(), times, 0), 0);
  ASSERT_TRUE(files.CopyFile("a", "b", false).ok());
  struct stat info {};
  ASSERT_EQ(::stat(machine.OnC("Work/b").c_str(), &info), 0);
  EXPECT_EQ(info.st_mtim.tv_sec, 1000000001);
  EXPECT_EQ(info.st_mtim.tv_nsec, 500);
}

TEST_F(EmbeddedFileSystemTest, LinksAreRemovedAndNeverFollowed) {
  machine.Put("drive_c/Elsewhere/precious", "x");
  fs::create_directories(machine.OnC("Work/sub"));
  fs::create_directory_symlink(machine.OnC("Elsewhere"), machine.OnC("Work/sub/folder-link"));
  fs::create_symlink(machine.OnC("Elsewhere/precious"), machine.OnC("Work/sub/file-link"));
  fs::create_symlink("/nowhere/at/all", machine.OnC("Work/sub/dangling"));
  EXPECT_TRUE(files.DeleteFile("sub\\file-link", false).ok());
  EXPECT_TRUE(files.DeleteFolder("sub", true).ok());
  EXPECT_FALSE(fs::exists(machine.OnC("Work/sub")));
  EXPECT_TRUE(fs::exists(machine.OnC("Elsewhere/precious")));
  fs::create_directory_symlink(machine.OnC("Elsewhere"), machine.OnC("Work/link"));
  EXPECT_TRUE(files.DeleteFolder("link", true).ok());
  EXPECT_FALSE(fs::exists(fs::symlink_status(machine.OnC("Work/link"))));
  EXPECT_TRUE(fs::exists(machine.OnC("Elsewhere/precious")));
}

TEST_F(EmbeddedFileSystemTest, ALinkToNothingIsReplacedOrRefusedAndNothingIsMadeThere) {
  fs::create_directories(machine.OnC("Elsewhere"));
  for (const char* name : {"written", "copied", "opened", "folder"}) {
    fs::create_symlink(machine.OnC("Elsewhere/none"), machine.OnC("Work") + "/" + name);
    EXPECT_TRUE(files.IsLink(name)) << name;
  }
  machine.Put("drive_c/Work/new", "new");
  EXPECT_TRUE(files.WriteFile("written", "new").ok());
  EXPECT_TRUE(files.CopyFile("new", "copied", true).ok());
  EXPECT_FALSE(files.Open("opened", OpenHow::kOpenOrCreateExclusive).ok());
  EXPECT_FALSE(files.CreateFolder("folder").ok());
  EXPECT_FALSE(fs::exists(machine.OnC("Elsewhere/none")));
  EXPECT_EQ(files.ReadFile("written").value_or(""), "new");
  EXPECT_EQ(files.ReadFile("copied").value_or(""), "new");
}

TEST_F(EmbeddedFileSystemTest, TheRightsOfWhatALinkPointsToDoNotMatterToItsReplacement) {
  machine.Put("drive_c/Elsewhere/real", "old");
  ASSERT_EQ(::chmod(machine.OnC("Elsewhere/real").c_str(), 0400), 0);
  fs::create_symlink(machine.OnC("Elsewhere/real"), machine.OnC("Work/link"));
  EXPECT_TRUE(files.WriteFile("link", "new").ok());
  EXPECT_EQ(files.ReadFile("C:\\Elsewhere\\real").value_or(""), "old");
  EXPECT_FALSE(files.GetFile("link")->read_only);
}

TEST_F(EmbeddedFileSystemTest, AnExclusiveOpenKeepsOtherProcessesOut) {
  machine.Put("drive_c/Work/a", "x");
  auto open = files.Open("a", OpenHow::kOpenOrCreateExclusive);
  ASSERT_TRUE(open.ok());
  const pid_t child = ::fork();
  if (child == 0) {
    EmbeddedFileSystem others(MachinePaths(machine.root(), "C:\\Work"));
    const bool out = others.ReadFile("a").number() == kErrorSharingViolation &&
                     others.Open("a", OpenHow::kOpenOrCreateExclusive).number() == kErrorSharingViolation;
    ::_exit(out ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
}

// Writing past the limit fails as a full disk does.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) {
    ::getrlimit(RLIMIT_FSIZE, &old_);
    handler_ = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, old_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FullDisk() {
    ::setrlimit(RLIMIT_FSIZE, &old_);
    std::signal(SIGXFSZ, handler_);
  }

 private:
  rlimit old_{};
  void (*handler_)(int) = nullptr;
};

TEST_F(EmbeddedFileSystemTest, AFileWhoseSpellingCannotBeFoundIsNotTakenForAMissingOne) {
  machine.Put("drive_c/Work/Name", "x");
  rlimit old{};
  ::getrlimit(RLIMIT_NOFILE, &old);
  const rlimit none{0, old.rlim_max};
  ::setrlimit(RLIMIT_NOFILE, &none);  // no folder can be listed
  const int number = files.GetFile("NAME").number();
  const int made = files.CreateFolder("NAME").number();
  ::setrlimit(RLIMIT_NOFILE, &old);
  EXPECT_EQ(number, kErrorIo);
  EXPECT_EQ(made, kErrorIo);
  EXPECT_TRUE(files.GetFile("NAME").ok());
  EXPECT_EQ(files.GetFile("None").number(), kErrorFileNotFound);
}

TEST_F(EmbeddedFileSystemTest, ALetterWithoutACapitalOfItsOwnKeepsItsCase) {
  EXPECT_EQ(ToUpper("\u00b5\u0131\u017f \u00e4\u00ff\u03c3\u03c2\u0436"),
            "\u00b5\u0131\u017f \u00c4\u0178\u03a3\u03a3\u0416");
  machine.Put("drive_c/Work/5 \u00b5.msp", "x");
  machine.Put("drive_c/Work/\u0131.txt", "x");
  EXPECT_TRUE(files.FileExists("5 \u00b5.MSP"));
  EXPECT_FALSE(files.FileExists("I.TXT"));
}

TEST_F(EmbeddedFileSystemTest, ASeparatorBehindAFilesNameMakesABadName) {
  machine.Put("drive_c/Work/a.zip", "x");
  machine.Put("drive_c/Work/sub/b", "x");
  EXPECT_FALSE(files.FileExists("C:\\Work\\a.zip\\"));
  EXPECT_EQ(files.GetFile("C:\\Work\\a.zip\\").number(), kErrorInvalidName);
  EXPECT_FALSE(files.CopyFile("a.zip\\", "c.zip", true).ok());
  EXPECT_TRUE(files.FileExists("C:\\Work\\a.zip"));
  EXPECT_TRUE(files.FolderExists("C:\\Work\\sub\\"));
}

TEST_F(EmbeddedFileSystemTest, AFailedCopyLeavesNoHalfWrittenFile) {
  machine.Put("drive_c/Work/big", std::string(300000, 'x'));
  machine.Put("drive_c/Work/old", "old");
  {
    const FullDisk full(200000);
    EXPECT_EQ(files.CopyFile("big", "new", true).number(), kErrorDiskFull);
    EXPECT_EQ(files.CopyFile("big", "old", true).number(), kErrorDiskFull);
    EXPECT_EQ(files.WriteFile("old", std::string(300000, 'y')).number(), kErrorDiskFull);
  }
  EXPECT_THAT(Names("C:\\Work"), ElementsAre("big", "old"));
  EXPECT_EQ(files.ReadFile("old").value_or(""), "old");
}

TEST_F(EmbeddedFileSystemTest, AReplacedFileKeepsItsMode) {
  machine.Put("drive_c/Work/tool", "old");
  ASSERT_EQ(::chmod(machine.OnC("Work/tool").c_str(), 0754), 0);
  ASSERT_TRUE(files.WriteFile("tool", "new").ok());
  struct stat info {};
  ASSERT_EQ(::stat(machine.OnC("Work/tool").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0754u);
}

TEST_F(EmbeddedFileSystemTest, AFailedDeletionNamesWhatStayed) {
  machine.Put("drive_c/Work/sub/a", "x");
  machine.Put("drive_c/Work/sub/b", "x");
  ASSERT_TRUE(files.SetReadOnly("sub\\b", true).ok());
  const Status status = files.DeleteFolder("C:\\Work\\sub", false);
  EXPECT_THAT(status.message(), ::testing::HasSubstr("C:\\Work\\sub\\b"));
}

TEST_F(EmbeddedFileSystemTest, TheCurrentFolderIsTheHostsToo) {
  machine.Put("drive_c/Work/Sub/a", "x");
  ASSERT_TRUE(files.SetCurrentFolder("C:\\work\\SUB").ok());
  EXPECT_EQ(fs::current_path(), fs::path(machine.OnC("Work/Sub")));
  EXPECT_STREQ(std::getenv("KITWRIGHT_CWD"), "C:\\work\\SUB");
  EXPECT_EQ(MachinePaths::OfThisProcess().current(), "C:\\work\\SUB");
}

TEST_F(EmbeddedFileSystemTest, ListingsShowLinksByWhatTheyPointTo) {
  fs::create_directory_symlink(machine.OnC("Work"), machine.OnC("link"));
  fs::create_symlink("/nowhere", machine.OnC("Work/dangling"));
  const auto entries = files.List("C:\\");
  ASSERT_TRUE(entries.ok());
  EXPECT_TRUE((*entries)[0].is_folder);
  EXPECT_THAT(Names("C:\\Work"), ElementsAre("dangling"));
  EXPECT_FALSE(files.FileExists("dangling"));
}

}  // namespace
}  // namespace kw::platform::embedded
