#ifndef KITWRIGHT_PLATFORM_TESTING_FILE_SYSTEM_CONTRACT_H_
#define KITWRIGHT_PLATFORM_TESTING_FILE_SYSTEM_CONTRACT_H_

// The contract of FileSystem as tests. A test program includes this in one file and instantiates the suite:
//
//   INSTANTIATE_TEST_SUITE_P(Fake, FileSystemContract, ::testing::Values(&MakeSomething));

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/path.h"
#include "base/text.h"
#include "platform/file_system.h"

namespace kw::platform::testing {

/// A file system under test and a place to work in.
class FileSystemUnderTest {
 public:
  virtual ~FileSystemUnderTest() = default;
  virtual FileSystem& Files() = 0;
  /// An empty folder with drive and folder, which can be written and lies below the drive's root.
  virtual std::string Folder() = 0;
  /// Makes a folder one in which nothing can be made or deleted, or an ordinary one again.
  virtual void ProtectFolder(const std::string& path, bool protect) = 0;
  /// Makes a link to a file or folder that is there. False where links cannot be made.
  virtual bool AddLink(const std::string& path, const std::string& target) = 0;
};

class FileSystemContract
    : public ::testing::TestWithParam<std::function<std::unique_ptr<FileSystemUnderTest>()>> {
 protected:
  FileSystemContract() : under_test_(GetParam()()), files(under_test_->Files()) {
    start_ = files.CurrentFolder();
    folder = under_test_->Folder();
  }
  ~FileSystemContract() override { files.SetCurrentFolder(start_).IgnoreError(); }

  std::string In(const std::string& name) const { return folder + "\\" + name; }
  void Write(const std::string& name, const std::string& bytes) {
    ASSERT_EQ(files.WriteFile(In(name), bytes).message(), "");
  }
  std::string Read(const std::string& name) { return files.ReadFile(In(name)).value_or("(unreadable)"); }
  std::vector<std::string> Names(const std::string& path) {
    std::vector<std::string> names;
    const auto entries = files.List(path);
    if (!entries.ok()) return {entries.error().message};
    for (const FileEntry& entry : *entries) names.push_back(entry.name);
    return names;
  }
  bool Link(const std::string& name, const std::string& target) {
    return under_test_->AddLink(In(name), In(target));
  }
  void Protect(const std::string& path, bool protect) { under_test_->ProtectFolder(path, protect); }

 private:
  std::unique_ptr<FileSystemUnderTest> under_test_;
  std::string start_;

 protected:
  FileSystem& files;
  std::string folder;
};

using ::testing::ElementsAre;

TEST_P(FileSystemContract, ALinkToAFileIsReplacedAndNeverWrittenThrough) {
  Write("kept", "kept");
  Write("new", "new");
  if (!Link("written", "kept") || !Link("copied", "kept")) GTEST_SKIP() << "no links here";
  EXPECT_TRUE(files.IsLink(In("written")));
  EXPECT_EQ(Read("written"), "kept");
  Write("written", "new");
  EXPECT_EQ(files.CopyFile(In("new"), In("copied"), false).number(), kErrorFileExists);
  EXPECT_TRUE(files.IsLink(In("copied")));
  EXPECT_TRUE(files.CopyFile(In("new"), In("copied"), true).ok());
  for (const char* name : {"written", "copied"}) {
    EXPECT_FALSE(files.IsLink(In(name))) << name;
    EXPECT_EQ(Read(name), "new") << name;
  }
  EXPECT_EQ(Read("kept"), "kept");
  ASSERT_TRUE(Link("again", "kept"));
  EXPECT_TRUE(files.CopyFile(In("kept"), In("again"), true).ok());
  EXPECT_FALSE(files.IsLink(In("again")));
  EXPECT_TRUE(files.DeleteFile(In("again"), false).ok());
  EXPECT_EQ(Read("kept"), "kept");
}

TEST_P(FileSystemContract, ALinkToAFolderIsNoPlaceForAFolderAndIsDeletedAlone) {
  ASSERT_TRUE(files.CreateFolder(In("kept")).ok());
  Write("kept\\file", "kept");
  if (!Link("link", "kept")) GTEST_SKIP() << "no links here";
  EXPECT_TRUE(files.IsLink(In("link")));
  EXPECT_FALSE(files.IsLink(In("kept")));
  EXPECT_FALSE(files.IsLink(In("link\\file")));
  EXPECT_FALSE(files.IsLink(In("none")));
  EXPECT_EQ(files.CreateFolder(In("link")).number(), kErrorAlreadyExists);
  EXPECT_EQ(files.WriteFile(In("link"), "x").number(), kErrorAccessDenied);
  EXPECT_EQ(files.CopyFile(In("kept\\file"), In("link"), true).number(), kErrorAccessDenied);
  EXPECT_TRUE(files.DeleteFolder(In("link"), true).ok());
  EXPECT_FALSE(files.FolderExists(In("link")));
  EXPECT_EQ(Read("kept\\file"), "kept");
}

TEST_P(FileSystemContract, OneFolderIsKnownInEverySpelling) {
  ASSERT_TRUE(files.CreateFolder(In("Größe")).ok());
  ASSERT_TRUE(files.CreateFolder(In("other")).ok());
  Write("file", "x");
  for (const char* spelling : {"Größe", "gRÖßE\\", ".\\Größe\\.", "other\\..\\Größe"}) {
    EXPECT_TRUE(files.IsSameFolder(In("Größe"), In(spelling))) << spelling;
    EXPECT_TRUE(files.IsSameFolder(In(spelling), In("Größe"))) << spelling;
  }
  for (const char* another : {"other", "none", "file", "", "Größe\\none", "a?b"}) {
    EXPECT_FALSE(files.IsSameFolder(In("Größe"), In(another))) << another;
  }
  for (const char* none : {"none", "file"}) EXPECT_FALSE(files.IsSameFolder(In(none), In(none))) << none;
  EXPECT_FALSE(files.IsSameFolder("", ""));
  const bool linked = Link("link", "Größe");
  EXPECT_EQ(files.IsSameFolder(In("link"), In("Größe")), linked);
}

TEST_P(FileSystemContract, NamesAreFoundWithoutRegardToCaseBeyondAscii) {
  Write("Größe Ärger.TXT", "a");
  EXPECT_FALSE(files.FileExists(In("GRÖSSE ÄRGER.txt")));
  EXPECT_TRUE(files.FileExists(In("größe ärger.txt")));
  EXPECT_EQ(Read("GRÖße äRGER.txt"), "a");
  ASSERT_TRUE(files.CreateFolder(In("Élan")).ok());
  EXPECT_TRUE(files.FolderExists(ToUpper(folder) + "\\éLAN"));
}

TEST_P(FileSystemContract, AReplacedFileKeepsItsSpellingAndANewOneHasTheGivenOne) {
  Write("Setup.INI", "a");
  Write("SETUP.ini", "b");
  EXPECT_THAT(Names(folder), ElementsAre("Setup.INI"));
  EXPECT_EQ(Read("setup.ini"), "b");
  const auto entry = files.GetFile(In("sETUP.iNI"));
  ASSERT_TRUE(entry.ok());
  EXPECT_EQ(entry->name, "Setup.INI");
}

TEST_P(FileSystemContract, FilesAndFoldersAreToldApart) {
  Write("a", "123");
  ASSERT_TRUE(files.CreateFolder(In("b")).ok());
  EXPECT_TRUE(files.FileExists(In("a")));
  EXPECT_FALSE(files.FolderExists(In("a")));
  EXPECT_FALSE(files.FileExists(In("b")));
  EXPECT_TRUE(files.FolderExists(In("b")));
  EXPECT_TRUE(files.FolderExists(In("b\\")));
  EXPECT_FALSE(files.FileExists(""));
  EXPECT_FALSE(files.FolderExists(""));
  const auto entry = files.GetFile(In("a"));
  ASSERT_TRUE(entry.ok());
  EXPECT_EQ(entry->size, 3);
  EXPECT_FALSE(entry->is_folder);
  EXPECT_FALSE(entry->read_only);
  EXPECT_EQ(files.GetFile(In("b")).number(), kErrorFileNotFound);
  EXPECT_EQ(files.GetFile(In("missing")).number(), kErrorFileNotFound);
  EXPECT_EQ(files.GetFile(In("missing\\x")).number(), kErrorPathNotFound);
}

TEST_P(FileSystemContract, AFolderListsInNameOrderWithoutRegardToCase) {
  for (const char* name : {"b.txt", "C.txt", "a.txt", "Ä.txt", "_x", "B2.txt"}) Write(name, "");
  ASSERT_TRUE(files.CreateFolder(In("aa")).ok());
  EXPECT_THAT(Names(folder), ElementsAre("a.txt", "aa", "b.txt", "B2.txt", "C.txt", "_x", "Ä.txt"));
  EXPECT_EQ(files.List(In("missing")).number(), kErrorPathNotFound);
  EXPECT_EQ(files.List(In("a.txt")).number(), kErrorPathNotFound);
  const auto entries = files.List(folder);
  ASSERT_TRUE(entries.ok());
  EXPECT_TRUE((*entries)[1].is_folder);
}

TEST_P(FileSystemContract, AListingTellsTheReadOnlyAttributeAndTheSize) {
  Write("a", "12345");
  ASSERT_TRUE(files.SetReadOnly(In("a"), true).ok());
  const auto entries = files.List(folder);
  ASSERT_TRUE(entries.ok());
  EXPECT_TRUE((*entries)[0].read_only);
  EXPECT_EQ((*entries)[0].size, 5);
}

TEST_P(FileSystemContract, ACopyTakesBytesAndTheReadOnlyAttributeAlong) {
  Write("a", std::string("x\0y\r\n", 5));
  ASSERT_TRUE(files.SetReadOnly(In("a"), true).ok());
  ASSERT_EQ(files.CopyFile(In("A"), In("b"), false).message(), "");
  EXPECT_EQ(Read("b"), std::string("x\0y\r\n", 5));
  EXPECT_TRUE(files.GetFile(In("b"))->read_only);
}

TEST_P(FileSystemContract, ACopyReplacesAnExistingFileOnlyWhenAsked) {
  Write("a", "new");
  Write("b", "older and longer");
  EXPECT_EQ(files.CopyFile(In("a"), In("b"), false).number(), kErrorFileExists);
  EXPECT_EQ(Read("b"), "older and longer");
  EXPECT_TRUE(files.CopyFile(In("a"), In("b"), true).ok());
  EXPECT_EQ(Read("b"), "new");
}

TEST_P(FileSystemContract, ACopyOntoAReadOnlyFileIsRefusedInAnyCase) {
  Write("a", "new");
  Write("b", "old");
  ASSERT_TRUE(files.SetReadOnly(In("b"), true).ok());
  EXPECT_EQ(files.CopyFile(In("a"), In("b"), true).number(), kErrorAccessDenied);
  EXPECT_EQ(files.CopyFile(In("a"), In("b"), false).number(), kErrorAccessDenied);
  EXPECT_EQ(Read("b"), "old");
}

TEST_P(FileSystemContract, ACopyOntoItselfChangesNothing) {
  Write("a", "same");
  EXPECT_TRUE(files.CopyFile(In("a"), In("A"), true).ok());
  EXPECT_EQ(Read("a"), "same");
  EXPECT_THAT(Names(folder), ElementsAre("a"));
}

TEST_P(FileSystemContract, ACopyTellsWhatIsMissing) {
  Write("a", "x");
  ASSERT_TRUE(files.CreateFolder(In("sub")).ok());
  EXPECT_EQ(files.CopyFile(In("missing"), In("b"), true).number(), kErrorFileNotFound);
  EXPECT_EQ(files.CopyFile(In("missing\\a"), In("b"), true).number(), kErrorPathNotFound);
  EXPECT_EQ(files.CopyFile(In("a"), In("missing\\b"), true).number(), kErrorPathNotFound);
  EXPECT_EQ(files.CopyFile(In("sub"), In("b"), true).number(), kErrorAccessDenied);
  EXPECT_EQ(files.CopyFile(In("a"), In("sub"), true).number(), kErrorAccessDenied);
  EXPECT_THAT(Names(folder), ElementsAre("a", "sub"));
  EXPECT_THAT(files.CopyFile(In("missing"), In("b"), true).message(), ::testing::HasSubstr(In("missing")));
}

TEST_P(FileSystemContract, AReadOnlyFileIsDeletedByForceAlone) {
  Write("a", "x");
  ASSERT_TRUE(files.SetReadOnly(In("a"), true).ok());
  EXPECT_EQ(files.DeleteFile(In("a"), false).number(), kErrorAccessDenied);
  EXPECT_TRUE(files.FileExists(In("a")));
  EXPECT_TRUE(files.DeleteFile(In("a"), true).ok());
  EXPECT_FALSE(files.FileExists(In("a")));
  EXPECT_EQ(files.DeleteFile(In("a"), true).number(), kErrorFileNotFound);
  EXPECT_EQ(files.DeleteFile(In("missing\\a"), true).number(), kErrorPathNotFound);
  ASSERT_TRUE(files.CreateFolder(In("sub")).ok());
  EXPECT_EQ(files.DeleteFile(In("sub"), true).number(), kErrorAccessDenied);
}

TEST_P(FileSystemContract, AFolderGoesWithItsContent) {
  ASSERT_TRUE(files.CreateFolder(In("sub")).ok());
  ASSERT_TRUE(files.CreateFolder(In("sub\\deeper")).ok());
  Write("sub\\a", "x");
  Write("sub\\deeper\\b", "y");
  EXPECT_TRUE(files.DeleteFolder(In("SUB"), false).ok());
  EXPECT_THAT(Names(folder), ElementsAre());
  EXPECT_EQ(files.DeleteFolder(In("sub"), false).number(), kErrorPathNotFound);
  Write("file", "x");
  EXPECT_EQ(files.DeleteFolder(In("file"), true).number(), kErrorPathNotFound);
  EXPECT_TRUE(files.FileExists(In("file")));
}

TEST_P(FileSystemContract, AFolderWithReadOnlyContentGoesByForceAlone) {
  ASSERT_TRUE(files.CreateFolder(In("sub")).ok());
  Write("sub\\a", "x");
  ASSERT_TRUE(files.SetReadOnly(In("sub\\a"), true).ok());
  EXPECT_EQ(files.DeleteFolder(In("sub"), false).number(), kErrorAccessDenied);
  EXPECT_TRUE(files.FileExists(In("sub\\a")));
  EXPECT_TRUE(files.DeleteFolder(In("sub"), true).ok());
  EXPECT_FALSE(files.FolderExists(In("sub")));
}

TEST_P(FileSystemContract, OneFolderIsCreatedAtATime) {
  EXPECT_EQ(files.CreateFolder(In("a\\b")).number(), kErrorPathNotFound);
  EXPECT_TRUE(files.CreateFolder(In("a")).ok());
  EXPECT_TRUE(files.CreateFolder(In("a\\b\\")).ok());
  EXPECT_EQ(files.CreateFolder(In("A")).number(), kErrorAlreadyExists);
  Write("file", "");
  EXPECT_EQ(files.CreateFolder(In("file")).number(), kErrorAlreadyExists);
}

TEST_P(FileSystemContract, ReadOnlyFilesAreRefusedWhoeverRunsTheProgram) {
  Write("a", "old");
  ASSERT_TRUE(files.SetReadOnly(In("a"), true).ok());
  EXPECT_EQ(files.WriteFile(In("a"), "new").number(), kErrorAccessDenied);
  EXPECT_EQ(files.Open(In("a"), OpenHow::kOpenOrCreateExclusive).number(), kErrorAccessDenied);
  EXPECT_EQ(Read("a"), "old");
  ASSERT_TRUE(files.SetReadOnly(In("a"), false).ok());
  EXPECT_TRUE(files.WriteFile(In("a"), "new").ok());
  EXPECT_EQ(files.SetReadOnly(In("missing"), false).number(), kErrorFileNotFound);
}

TEST_P(FileSystemContract, AWriteProtectedFolderRefusesWhateverIsNew) {
  ASSERT_TRUE(files.CreateFolder(In("locked")).ok());
  Write("locked\\a", "old");
  Write("b", "x");
  Protect(In("locked"), true);
  EXPECT_EQ(files.WriteFile(In("locked\\new"), "x").number(), kErrorAccessDenied);
  EXPECT_EQ(files.CreateFolder(In("locked\\sub")).number(), kErrorAccessDenied);
  EXPECT_EQ(files.CopyFile(In("b"), In("locked\\b"), true).number(), kErrorAccessDenied);
  EXPECT_EQ(files.Open(In("locked\\new"), OpenHow::kOpenOrCreateExclusive).number(), kErrorAccessDenied);
  EXPECT_EQ(files.DeleteFile(In("locked\\a"), true).number(), kErrorAccessDenied);
  EXPECT_EQ(files.DeleteFolder(In("locked"), true).number(), kErrorAccessDenied);
  EXPECT_THAT(Names(In("locked")), ElementsAre("a"));
  Protect(In("locked"), false);
  EXPECT_TRUE(files.DeleteFolder(In("locked"), true).ok());
}

TEST_P(FileSystemContract, AnExclusiveOpenMakesAFileAndNeverCutsOne) {
  Write("a", "0123456789");
  {
    auto open = files.Open(In("a"), OpenHow::kOpenOrCreateExclusive);
    ASSERT_TRUE(open.ok());
    EXPECT_EQ((*open)->Read(2).value_or("?"), "01");
    EXPECT_TRUE((*open)->Write("xyz").ok());
    EXPECT_TRUE((*open)->Flush().ok());
  }
  EXPECT_EQ(Read("a"), "01xyz56789");
  {
    auto open = files.Open(In("new"), OpenHow::kOpenOrCreateExclusive);
    ASSERT_TRUE(open.ok());
    EXPECT_TRUE((*open)->Write("a").ok());
    EXPECT_TRUE((*open)->Write("b").ok());
  }
  EXPECT_EQ(Read("new"), "ab");
  EXPECT_EQ(files.Open(In("missing\\x"), OpenHow::kOpenOrCreateExclusive).number(), kErrorPathNotFound);
}

TEST_P(FileSystemContract, AnExclusiveOpenKeepsEverybodyOut) {
  Write("a", "x");
  {
    auto open = files.Open(In("a"), OpenHow::kOpenOrCreateExclusive);
    ASSERT_TRUE(open.ok());
    EXPECT_EQ(files.Open(In("A"), OpenHow::kReadExisting).number(), kErrorSharingViolation);
    EXPECT_EQ(files.Open(In("A"), OpenHow::kOpenOrCreateExclusive).number(), kErrorSharingViolation);
    EXPECT_EQ(files.ReadFile(In("a")).number(), kErrorSharingViolation);
    EXPECT_EQ(files.WriteFile(In("a"), "y").number(), kErrorSharingViolation);
    EXPECT_EQ(files.CopyFile(In("a"), In("b"), true).number(), kErrorSharingViolation);
    EXPECT_EQ(files.DeleteFile(In("a"), true).number(), kErrorSharingViolation);
  }
  EXPECT_EQ(Read("a"), "x");
  EXPECT_FALSE(files.FileExists(In("b")));
  EXPECT_TRUE(files.DeleteFile(In("a"), false).ok());
}

TEST_P(FileSystemContract, ReadersShareAFileAndKeepWritersOut) {
  Write("a", "abc");
  auto one = files.Open(In("a"), OpenHow::kReadExisting);
  auto two = files.Open(In("a"), OpenHow::kReadExisting);
  ASSERT_TRUE(one.ok());
  ASSERT_TRUE(two.ok());
  EXPECT_EQ((*one)->Read(2).value_or("?"), "ab");
  EXPECT_EQ((*one)->Read(2).value_or("?"), "c");
  EXPECT_EQ((*one)->Read(2).value_or("?"), "");
  EXPECT_EQ((*two)->Read(9).value_or("?"), "abc");
  EXPECT_FALSE((*two)->Write("x").ok());
  EXPECT_EQ(files.Open(In("a"), OpenHow::kOpenOrCreateExclusive).number(), kErrorSharingViolation);
  EXPECT_TRUE(files.CopyFile(In("a"), In("b"), true).ok());
  EXPECT_EQ(files.Open(In("missing"), OpenHow::kReadExisting).number(), kErrorFileNotFound);
}

TEST_P(FileSystemContract, FilesAreReadAndWrittenWhole) {
  const std::string bytes("\0\xFF\r\n\x1A", 5);
  Write("a", bytes + bytes);
  Write("a", bytes);
  EXPECT_EQ(Read("a"), bytes);
  EXPECT_EQ(files.ReadFile(In("missing")).number(), kErrorFileNotFound);
  EXPECT_EQ(files.ReadFile(In("missing\\a")).number(), kErrorPathNotFound);
  EXPECT_EQ(files.ReadFile(folder).number(), kErrorAccessDenied);
  EXPECT_EQ(files.WriteFile(folder, "").number(), kErrorAccessDenied);
  EXPECT_EQ(files.WriteFile(In("missing\\a"), "").number(), kErrorPathNotFound);
}

TEST_P(FileSystemContract, PathsGoByTheCurrentDriveAndFolder) {
  ASSERT_TRUE(files.CreateFolder(In("sub")).ok());
  ASSERT_TRUE(files.SetCurrentFolder(In("sub")).ok());
  EXPECT_TRUE(EqualsNoCase(files.CurrentFolder(), In("sub")));
  Write("sub\\a", "x");
  EXPECT_EQ(files.ReadFile("a").value_or(""), "x");
  EXPECT_EQ(files.ReadFile("..\\sub\\a").value_or(""), "x");
  EXPECT_EQ(files.ReadFile(".\\a").value_or(""), "x");
  EXPECT_EQ(files.ReadFile(folder.substr(2) + "\\sub\\a").value_or(""), "x");
  EXPECT_TRUE(files.WriteFile("b", "y").ok());
  EXPECT_EQ(Read("sub\\b"), "y");
  EXPECT_FALSE(files.SetCurrentFolder(In("missing")).ok());
  EXPECT_FALSE(files.SetCurrentFolder(In("sub\\a")).ok());
  EXPECT_TRUE(EqualsNoCase(files.CurrentFolder(), In("sub")));
}

TEST_P(FileSystemContract, ADriveAndAPathFromTheRootJoin) {
  const std::string drive = folder.substr(0, 2);
  EXPECT_TRUE(files.FolderExists(drive + "\\"));
  ASSERT_TRUE(files.SetCurrentFolder(drive + "\\").ok());
  EXPECT_EQ(files.CurrentFolder().substr(1), ":\\");
  EXPECT_TRUE(files.FolderExists(drive + folder.substr(2)));
  EXPECT_FALSE(files.FolderExists("Q:\\"));
  EXPECT_EQ(files.WriteFile("Q:\\a", "").number(), kErrorPathNotFound);
}

TEST_P(FileSystemContract, TheCurrentFolderCannotBeDeleted) {
  ASSERT_TRUE(files.CreateFolder(In("sub")).ok());
  ASSERT_TRUE(files.SetCurrentFolder(In("sub")).ok());
  EXPECT_EQ(files.DeleteFolder(In("sub"), true).number(), kErrorSharingViolation);
  ASSERT_TRUE(files.SetCurrentFolder(folder).ok());
  EXPECT_TRUE(files.DeleteFolder(In("sub"), true).ok());
}

TEST_P(FileSystemContract, NamesThatNoFileMayHaveAreRefused) {
  for (const char* name : {"a?b", "a*b", "a<b", "a>b", "a|b", "a\"b", "a:b"}) {
    EXPECT_EQ(files.WriteFile(In(name), "").number(), kErrorInvalidName) << name;
    EXPECT_EQ(files.CreateFolder(In(name)).number(), kErrorInvalidName) << name;
    EXPECT_FALSE(files.FileExists(In(name))) << name;
  }
  EXPECT_THAT(Names(folder), ElementsAre());
}

TEST_P(FileSystemContract, NamesWithBlanksAndUmlautsArePlainNames) {
  ASSERT_TRUE(files.CreateFolder(In("Neue Pakete (März)")).ok());
  Write("Neue Pakete (März)\\Übersicht 1.txt", "x");
  EXPECT_TRUE(files.CopyFile(In("Neue Pakete (März)\\Übersicht 1.txt"), In("日本語.txt"), false).ok());
  EXPECT_EQ(Read("日本語.txt"), "x");
}

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_FILE_SYSTEM_CONTRACT_H_
