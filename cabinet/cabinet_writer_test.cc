#include "cabinet/cabinet_writer.h"

#include <gmock/gmock.h>

#include "base/testing/memory_storage.h"
#include "cabinet/cabinet_plan.h"
#include "cabinet/test_support.h"

namespace kw::cabinet {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class CabinetWriterTest : public CabinetFolderTest {};

std::vector<std::string> Names(const CabinetReader& reader) {
  std::vector<std::string> names;
  for (const CabinetEntry& entry : reader.entries()) names.push_back(entry.name);
  return names;
}

TEST_F(CabinetWriterTest, EntriesKeepOrderNamesAndContent) {
  const std::string text = Prose(200000);
  const std::string noise = Noise(70001);
  ASSERT_TRUE(Pack("a.cab", {{"_id_1_z.txt", text}, {"Empty", ""}, {"a", noise}, {"B\\sub", "x"}}).ok());
  const auto reader = CabinetReader::Open(SystemStorage(), Host("a.cab"), 1252);
  ASSERT_TRUE(reader.ok());
  EXPECT_THAT(Names(*reader), ElementsAre("_id_1_z.txt", "Empty", "a", "B\\sub"));
  EXPECT_EQ(reader->size(), std::filesystem::file_size(Host("a.cab")));
  MemorySink sink;
  ASSERT_TRUE(Unpack("a.cab", sink).ok());
  EXPECT_EQ(sink.content["_id_1_z.txt"], text);
  EXPECT_EQ(sink.content["a"], noise);
  EXPECT_EQ(sink.content["B\\sub"], "x");
  EXPECT_EQ(sink.content["Empty"], "");
  EXPECT_THAT(sink.order, ElementsAre("_id_1_z.txt", "Empty", "a", "B\\sub"));
}

TEST_F(CabinetWriterTest, TheBytesAreTheSameWhateverTheNumberOfThreads) {
  const std::vector<std::pair<std::string, std::string>> entries = {
      {"t", Prose(3000000)}, {"n", Noise(1000000)}, {"z", std::string(500000, '\0')}};
  std::vector<std::string> cabinets;
  for (const unsigned threads : {1u, 2u, 4u, 8u}) {
    WriterOptions options;
    options.threads = threads;
    ASSERT_TRUE(Pack("a.cab", entries, options).ok());
    cabinets.push_back(Content("a.cab"));
  }
  EXPECT_EQ(cabinets[0], cabinets[1]);
  EXPECT_EQ(cabinets[0], cabinets[2]);
  EXPECT_EQ(cabinets[0], cabinets[3]);
}

TEST_F(CabinetWriterTest, ReservedHeaderSpaceIsZeroAndKept) {
  for (const uint16_t reserved : {uint16_t{8}, uint16_t{6144}, uint16_t{60000}}) {
    WriterOptions options;
    options.reserved_header = reserved;
    ASSERT_TRUE(Pack("r.cab", {{"a", "content"}}, options).ok());
    const auto reader = CabinetReader::Open(SystemStorage(), Host("r.cab"), 1252);
    ASSERT_TRUE(reader.ok());
    EXPECT_EQ(reader->reserved_header(), reserved);
    EXPECT_EQ(Content("r.cab").substr(kHeaderSize + 4, reserved), std::string(reserved, '\0'));
  }
}

TEST_F(CabinetWriterTest, DatesAndAttributesAreKept) {
  const FileStamp stamp{0x2F9F, 0xBF7D, kReadOnly | kHidden | kArchive};
  const std::vector<CabinetFile> files = {{Make("f", "x"), "f", stamp}};
  ASSERT_TRUE(WriteCabinet(SystemStorage(), Host("a.cab"), files, {}).ok());
  const auto reader = CabinetReader::Open(SystemStorage(), Host("a.cab"), 1252);
  ASSERT_TRUE(reader.ok());
  EXPECT_EQ(reader->entries()[0].stamp.date, stamp.date);
  EXPECT_EQ(reader->entries()[0].stamp.time, stamp.time);
  EXPECT_EQ(reader->entries()[0].stamp.attributes, stamp.attributes);
}

TEST_F(CabinetWriterTest, NamesStandInTheCodePageAndElseInMarkedUtf8) {
  ASSERT_TRUE(Pack("a.cab", {{"\xC3\xA4", "1"}, {"\xE6\x97\xA5", "2"}}).ok());
  const auto reader = CabinetReader::Open(SystemStorage(), Host("a.cab"), 1252);
  ASSERT_TRUE(reader.ok());
  EXPECT_THAT(Names(*reader), ElementsAre("\xC3\xA4", "\xE6\x97\xA5"));
  EXPECT_FALSE(reader->entries()[0].name_is_utf8);
  EXPECT_TRUE(reader->entries()[1].name_is_utf8);
  const auto cyrillic = CabinetReader::Open(SystemStorage(), Host("a.cab"), 1251);
  EXPECT_EQ(cyrillic->entries()[0].name, "\xD0\xB4");
}

TEST_F(CabinetWriterTest, AFullFolderIsFollowedByANewOne) {
  std::vector<CabinetFile> files;
  for (int i = 0; i < 5; ++i) {
    files.push_back({Make(std::to_string(i), Prose(60000, static_cast<uint32_t>(i))), std::to_string(i), {}});
  }
  const auto plan = PlanCabinet(SystemStorage(), files, {}, 4 * kBlockSize);
  ASSERT_TRUE(plan.ok());
  ASSERT_EQ(plan->folders.size(), 3u);
  EXPECT_EQ(plan->folders[0].size, 120000u);
  EXPECT_EQ(plan->folders[0].blocks, 4u);
  ASSERT_TRUE(WritePlannedCabinet(SystemStorage(), Host("a.cab"), files, {}, *plan).ok());
  MemorySink sink;
  ASSERT_TRUE(Unpack("a.cab", sink).ok());
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(sink.content[std::to_string(i)], Prose(60000, static_cast<uint32_t>(i)));
  }
}

TEST_F(CabinetWriterTest, TooManyFilesAreRefusedBeforeAnythingIsWritten) {
  const std::string path = Make("f", "x");
  std::vector<CabinetFile> files(kMaxEntries + 1, {path, "f", FileStamp{}});
  for (size_t i = 0; i < files.size(); ++i) files[i].name = std::to_string(i);
  const auto written = WriteCabinet(SystemStorage(), Host("a.cab"), files, {});
  EXPECT_EQ(written.number(), kErrorUnsupported);
  EXPECT_EQ(FilesIn("."), 1u);
}

TEST_F(CabinetWriterTest, AsManyFilesAsACabinetHoldsArePacked) {
  kw::testing::MemoryStorage storage;
  storage.Content("f") = "x";
  std::vector<CabinetFile> files(kMaxEntries, {"f", "", FileStamp{}});
  for (size_t i = 0; i < files.size(); ++i) files[i].name = std::to_string(i);
  ASSERT_TRUE(WriteCabinet(storage, "a.cab", files, {}).ok());
  auto reader = CabinetReader::Open(storage, "a.cab", 1252);
  ASSERT_TRUE(reader.ok());
  MemorySink sink;
  ASSERT_TRUE(reader->Extract(sink).ok());
  EXPECT_EQ(sink.content.size(), kMaxEntries);
}

TEST_F(CabinetWriterTest, AFileThatNoFolderHoldsIsRefusedBeforeAnythingIsWritten) {
  const std::string path = Make("huge", "");
  std::filesystem::resize_file(path, uint64_t{kMaxFolderSize} + 1);
  const auto written = WriteCabinet(SystemStorage(), Host("a.cab"), {{path, "huge", {}}}, {});
  EXPECT_EQ(written.number(), kErrorUnsupported);
  EXPECT_THAT(written.error().message, HasSubstr("huge"));
  EXPECT_EQ(FilesIn("."), 1u);
}

TEST_F(CabinetWriterTest, LongNamesAndEmptyNamesAreRefused) {
  EXPECT_TRUE(Pack("a.cab", {{std::string(255, 'n'), "x"}}).ok());
  EXPECT_EQ(Pack("b.cab", {{std::string(256, 'n'), "x"}}).number(), kErrorInvalidName);
  EXPECT_EQ(Pack("b.cab", {{std::string(300, 'n'), "x"}}).number(), kErrorInvalidName);
  EXPECT_EQ(Pack("b.cab", {{"", "x"}}).number(), kErrorInvalidName);
  EXPECT_FALSE(There("b.cab"));
}

TEST_F(CabinetWriterTest, ACabinetThatOutgrowsItsLimitLeavesNothing) {
  WriterOptions options;
  options.max_size = 100000;
  EXPECT_EQ(Pack("a.cab", {{"n", Noise(300000)}}, options).number(), kErrorUnsupported);
  EXPECT_FALSE(There("a.cab"));
  EXPECT_FALSE(There("a.cab.new"));
}

TEST_F(CabinetWriterTest, AFailureKeepsTheCabinetThatWasThere) {
  Make("a.cab", "old");
  EXPECT_EQ(WriteCabinet(SystemStorage(), Host("a.cab"), {{Host("gone"), "x", {}}}, {}).number(),
            kErrorFileNotFound);
  EXPECT_EQ(Content("a.cab"), "old");
  EXPECT_FALSE(There("a.cab.new"));
}

TEST_F(CabinetWriterTest, StoredCabinetsHoldTheContentAsItIs) {
  WriterOptions options;
  options.compress = false;
  const std::string text = Prose(100000);
  ASSERT_TRUE(Pack("a.cab", {{"t", text}}, options).ok());
  EXPECT_NE(Content("a.cab").find(text.substr(0, kBlockSize)), std::string::npos);
  MemorySink sink;
  ASSERT_TRUE(Unpack("a.cab", sink).ok());
  EXPECT_EQ(sink.content["t"], text);
}

TEST_F(CabinetWriterTest, ACabinetOfNothingIsACabinet) {
  ASSERT_TRUE(Pack("a.cab", {}).ok());
  MemorySink sink;
  EXPECT_TRUE(Unpack("a.cab", sink).ok());
  EXPECT_TRUE(sink.order.empty());
}

}  // namespace
}  // namespace kw::cabinet
