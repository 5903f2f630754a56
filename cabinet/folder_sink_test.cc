#include "cabinet/folder_sink.h"

#include <gmock/gmock.h>

#include "cabinet/test_support.h"

namespace kw::cabinet {
namespace {

using testing::HasSubstr;

class FolderSinkTest : public CabinetFolderTest {
 protected:
  void SetUp() override {
    CabinetFolderTest::SetUp();
    std::filesystem::create_directories(folder_ / "out");
  }

  Status UnpackTo(const std::vector<std::pair<std::string, std::string>>& entries) const {
    KW_RETURN_IF_ERROR(Pack("t.cab", entries).status());
    KW_ASSIGN_OR_RETURN(CabinetReader reader, CabinetReader::Open(SystemStorage(), Host("t.cab"), 1252));
    FolderSink sink(SystemStorage(), Host("out"));
    return reader.Extract(sink);
  }
};

TEST_F(FolderSinkTest, EntriesBecomeFilesInSubfoldersToo) {
  ASSERT_TRUE(UnpackTo({{"a.txt", "a"}, {"sub\\deep\\b", "b"}, {"SUB\\c", "c"}, {"empty", ""}}).ok());
  EXPECT_EQ(Content("out/a.txt"), "a");
  EXPECT_EQ(Content("out/sub/deep/b"), "b");
  EXPECT_EQ(Content("out/sub/c"), "c");
  EXPECT_TRUE(There("out/empty"));
  EXPECT_EQ(FilesIn("out"), 3u);
}

TEST_F(FolderSinkTest, AFileWhoseNameDiffersInCaseIsReplaced) {
  Make("out/\xC3\x84.TXT", "old");
  ASSERT_TRUE(UnpackTo({{"\xC3\xA4.txt", "new"}}).ok());
  EXPECT_EQ(Content("out/\xC3\x84.TXT"), "new");
  EXPECT_EQ(FilesIn("out"), 1u);
}

TEST_F(FolderSinkTest, NamesThatWouldLeaveTheFolderWriteNothingAndTheOthersCome) {
  for (const char* name :
       {"..\\evil", "\\evil", "C:\\evil", "sub\\..\\..\\evil", "nul", "a:b", "/tmp/evil"}) {
    const Status status = UnpackTo({{name, "evil"}, {"good", "good"}});
    EXPECT_EQ(status.number(), kErrorInvalidName) << name;
    EXPECT_THAT(status.message(), HasSubstr(name));
    EXPECT_EQ(Content("out/good"), "good");
    EXPECT_EQ(FilesIn("out"), 1u) << name;
    EXPECT_FALSE(There("evil"));
  }
}

TEST_F(FolderSinkTest, ANameWithoutMeaningInTheCodePageWritesNothing) {
  ASSERT_TRUE(Pack("t.cab", {{"aXb", "bad"}, {"good", "good"}}).ok());
  std::string bytes = Content("t.cab");
  bytes[bytes.find("aXb") + 2] = '\x81';  // the first byte of two that has no second
  Make("t.cab", bytes);
  auto reader = CabinetReader::Open(SystemStorage(), Host("t.cab"), 932);
  ASSERT_TRUE(reader.ok());
  FolderSink sink(SystemStorage(), Host("out"));
  EXPECT_EQ(reader->Extract(sink).number(), kErrorInvalidName);
  EXPECT_EQ(Content("out/good"), "good");
  EXPECT_EQ(FilesIn("out"), 1u);
}

TEST_F(FolderSinkTest, NoLinkIsFollowed) {
  Make("outside/file", "precious");
  std::filesystem::create_directory_symlink(folder_ / "outside", folder_ / "out/linked");
  std::filesystem::create_symlink(folder_ / "outside/file", folder_ / "out/file");
  const Status status = UnpackTo({{"linked\\new", "x"}, {"file", "replaced"}});
  EXPECT_EQ(status.number(), kErrorAccessDenied);
  EXPECT_EQ(FilesIn("outside"), 1u);
  EXPECT_EQ(Content("outside/file"), "precious");
  EXPECT_FALSE(std::filesystem::is_symlink(folder_ / "out/file"));
  EXPECT_EQ(Content("out/file"), "replaced");
}

TEST_F(FolderSinkTest, ACabinetIsWrittenThroughNoLink) {
  Make("outside", "precious");
  for (const char* name : {"t.cab", "t.cab.new"})
    std::filesystem::create_symlink(folder_ / "outside", folder_ / name);
  ASSERT_TRUE(Pack("t.cab", {{"a", "content"}}).ok());
  EXPECT_EQ(Content("outside"), "precious");
  EXPECT_FALSE(std::filesystem::is_symlink(folder_ / "t.cab"));
  MemorySink sink;
  EXPECT_TRUE(Unpack("t.cab", sink).ok());
  EXPECT_EQ(sink.content["a"], "content");
}

TEST_F(FolderSinkTest, TwoEntriesOfOneNameAreNotMixedUp) {
  const Status status = UnpackTo({{"name", "first"}, {"NAME", "second"}});
  EXPECT_EQ(status.number(), kErrorAlreadyExists);
  EXPECT_THAT(status.message(), HasSubstr("NAME"));
  EXPECT_EQ(Content("out/name"), "first");
  EXPECT_EQ(FilesIn("out"), 1u);
}

TEST_F(FolderSinkTest, OneNameIsNotAFileAndAFolder) {
  for (const bool file_first : {true, false}) {
    std::vector<std::pair<std::string, std::string>> entries = {
        {"Name", "file"}, {"NAME\\sub\\x", "below"}, {"other\\x", "other"}};
    if (!file_first) std::swap(entries[0], entries[1]);
    ASSERT_TRUE(Pack("t.cab", entries).ok());
    for (const auto making : {FolderSink::Making::kOneByOne, FolderSink::Making::kTogether}) {
      std::filesystem::remove_all(folder_ / "out");
      std::filesystem::create_directories(folder_ / "out");
      auto reader = CabinetReader::Open(SystemStorage(), Host("t.cab"), 1252);
      FolderSink sink(SystemStorage(), Host("out"), making);
      const Status status = reader->Extract(sink);
      EXPECT_EQ(status.number(), kErrorAlreadyExists);
      EXPECT_THAT(status.message(), HasSubstr('"' + entries[1].first + '"'));
      EXPECT_EQ(Content(file_first ? "out/Name" : "out/NAME/sub/x"), entries[0].second);
      EXPECT_EQ(Content("out/other/x"), "other");
      EXPECT_EQ(FilesIn("out"), 2u);
    }
  }
}

TEST_F(FolderSinkTest, ADamagedEntryLeavesNoFileAndKeepsTheOldOne) {
  ASSERT_TRUE(Pack("t.cab", {{"a", Noise(100000)}}).ok());
  std::string bytes = Content("t.cab");
  bytes.resize(bytes.size() - 10);
  Make("t.cab", bytes);
  Make("out/a", "old");
  auto reader = CabinetReader::Open(SystemStorage(), Host("t.cab"), 1252);
  FolderSink sink(SystemStorage(), Host("out"));
  EXPECT_FALSE(reader->Extract(sink).ok());
  EXPECT_EQ(Content("out/a"), "old");
  EXPECT_EQ(FilesIn("out"), 1u);
}

TEST_F(FolderSinkTest, AFolderInTheWayIsAnErrorOfThatEntry) {
  std::filesystem::create_directories(folder_ / "out/a/x");
  const Status status = UnpackTo({{"a", "a"}, {"b", "b"}});
  EXPECT_FALSE(status.ok());
  EXPECT_THAT(status.message(), HasSubstr("\"a\""));
  EXPECT_EQ(Content("out/b"), "b");
  EXPECT_EQ(FilesIn("out"), 2u);
}

TEST_F(FolderSinkTest, DatesAndTheReadOnlyAttributeAreRestored) {
  const FileStamp stamp{(41 << 9) | (5 << 5) | 17, (13 << 11) | (37 << 5) | 21, kReadOnly | kArchive};
  ASSERT_TRUE(WriteCabinet(SystemStorage(), Host("t.cab"), {{Make("f", "x"), "f", stamp}}, {}).ok());
  for (int turn = 0; turn < 2; ++turn) {  // a read-only file is replaced as well
    auto reader = CabinetReader::Open(SystemStorage(), Host("t.cab"), 1252);
    FolderSink sink(SystemStorage(), Host("out"));
    ASSERT_TRUE(reader->Extract(sink).ok());
    const auto info = LookAtHostFile(Host("out/f"));
    ASSERT_TRUE(info.ok());
    EXPECT_EQ(info->stamp.date, stamp.date);
    EXPECT_EQ(info->stamp.time, stamp.time);
    EXPECT_EQ(info->stamp.attributes, stamp.attributes);
  }
}

}  // namespace
}  // namespace kw::cabinet
