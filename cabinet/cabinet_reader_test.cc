#include "cabinet/cabinet_reader.h"

#include <gmock/gmock.h>
#include <zlib.h>

#include "cabinet/test_support.h"

namespace kw::cabinet {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// A cabinet put together by hand, so that it can say what the writer never would.
struct HandMade {
  struct File {
    std::string name;
    uint32_t size, offset;
    uint16_t folder = 0;
  };
  std::vector<File> files;
  std::vector<std::pair<uint16_t, std::vector<std::pair<std::string, uint16_t>>>> folders;  // type, blocks
  uint16_t flags = 0;
  std::string block_reserve;       // in each block; with it the blocks have checksums
  bool sums_cover_reserve = true;  // else they leave it out

  std::string SumOf(const std::string& sizes, const std::string& packed) const {
    if (block_reserve.empty()) return std::string(4, '\0');
    const std::string covered = sums_cover_reserve ? sizes + block_reserve : sizes;
    const uint32_t sum =
        Checksum(std::as_bytes(std::span(covered)), Checksum(std::as_bytes(std::span(packed)), 0));
    std::string bytes(4, '\0');
    PutU32(reinterpret_cast<std::byte*>(bytes.data()), sum);
    return bytes;
  }

  std::string Bytes() const {
    std::string head, records, data;
    const auto u16 = [](uint32_t v) { return std::string{static_cast<char>(v), static_cast<char>(v >> 8)}; };
    const auto u32 = [&](uint32_t v) { return u16(v) + u16(v >> 16); };
    for (const File& file : files) {
      records += u32(file.size) + u32(file.offset) + u16(file.folder) + u16(0x21) + u16(0) + u16(0x20) +
                 file.name + '\0';
    }
    std::string reserve_fields;
    if (!block_reserve.empty())
      reserve_fields = u16(0) + u16(static_cast<uint32_t>(block_reserve.size() << 8));
    const size_t head_size = kHeaderSize + reserve_fields.size() + folders.size() * kFolderRecordSize;
    std::string folder_records;
    for (const auto& [type, blocks] : folders) {
      folder_records += u32(static_cast<uint32_t>(head_size + records.size() + data.size())) +
                        u16(static_cast<uint32_t>(blocks.size())) + u16(type);
      for (const auto& [packed, size] : blocks) {
        const std::string sizes = u16(static_cast<uint32_t>(packed.size())) + u16(size);
        data += SumOf(sizes, packed) + sizes + block_reserve + packed;
      }
    }
    head = "MSCF" + u32(0) + u32(static_cast<uint32_t>(head_size + records.size() + data.size())) + u32(0) +
           u32(static_cast<uint32_t>(head_size)) + u32(0) + "\x03\x01" +
           u16(static_cast<uint32_t>(folders.size())) + u16(static_cast<uint32_t>(files.size())) +
           u16(flags | (reserve_fields.empty() ? 0u : kFlagReserve)) + u32(0);
    return head + reserve_fields + folder_records + records + data;
  }
};

// MSZIP blocks that refer to the ones before them, as the system's own cabinet maker writes them.
std::vector<std::pair<std::string, uint16_t>> BlocksWithHistory(const std::string& content,
                                                                size_t block_size = kBlockSize) {
  std::vector<std::pair<std::string, uint16_t>> blocks;
  for (size_t pos = 0; pos < content.size(); pos += block_size) {
    const std::string block = content.substr(pos, block_size);
    z_stream stream{};
    deflateInit2(&stream, 9, Z_DEFLATED, -15, 9, Z_DEFAULT_STRATEGY);
    if (pos > 0) {
      deflateSetDictionary(&stream, reinterpret_cast<const Bytef*>(content.data() + pos - block_size),
                           static_cast<uInt>(block_size));
    }
    std::string packed(kMaxCompressedBlock, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(block.data()));
    stream.avail_in = static_cast<uInt>(block.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    blocks.emplace_back("CK" + packed, static_cast<uint16_t>(block.size()));
  }
  return blocks;
}

class CabinetReaderTest : public CabinetFolderTest {
 protected:
  Result<CabinetReader> OpenBytes(const std::string& bytes) const {
    Make("t.cab", bytes);
    return CabinetReader::Open(SystemStorage(), Host("t.cab"), 1252);
  }
};

TEST_F(CabinetReaderTest, BlocksThatReferToEarlierOnesAreUnpackedWithAnyNumberOfThreads) {
  const std::string page = Prose(kBlockSize);
  std::string content;
  for (int i = 0; i < 60; ++i)
    content += page.substr(static_cast<size_t>(i) * 100) + Noise(300, static_cast<uint32_t>(i));
  HandMade made;
  made.folders = {{kMszip, BlocksWithHistory(content)}};
  made.files = {{"a", 100000, 0}, {"b", static_cast<uint32_t>(content.size() - 100000), 100000}};
  Make("t.cab", made.Bytes());
  for (const unsigned threads : {1u, 2u, 4u}) {
    MemorySink sink;
    ASSERT_TRUE(Unpack("t.cab", sink, threads).ok());
    EXPECT_EQ(sink.content["a"], content.substr(0, 100000));
    EXPECT_EQ(sink.content["b"], content.substr(100000));
  }
}

// Where the bytes before such a block lie, readers do not agree, so that any content could be the wrong one.
TEST_F(CabinetReaderTest, NoBlockMayReferToTheOnesBeforeBehindOneThatIsNotFull) {
  const std::string content = Prose(5000);
  HandMade made;
  made.folders = {{kMszip, BlocksWithHistory(content + content.substr(0, 4000), 5000)}};
  made.files = {{"first", 5000, 0}, {"second", 4000, 5000}};
  Make("t.cab", made.Bytes());
  for (const unsigned threads : {1u, 2u}) {
    MemorySink sink;
    const Status status = Unpack("t.cab", sink, threads);
    EXPECT_THAT(status.message(), HasSubstr("data block 2 is damaged"));
    EXPECT_EQ(sink.content, (std::map<std::string, std::string>{{"first", content}}));
  }
}

TEST_F(CabinetReaderTest, BlocksThatAreNotFullButStandAloneAreUnpacked) {
  const std::string content = Prose(5000);
  HandMade made;
  made.folders = {{kMszip, {}}};
  for (int i = 0; i < 40; ++i) made.folders[0].second.push_back(BlocksWithHistory(content, 5000)[0]);
  made.files = {{"a", 200000, 0}};
  Make("t.cab", made.Bytes());
  MemorySink sink;
  ASSERT_TRUE(Unpack("t.cab", sink).ok());
  std::string whole;
  for (int i = 0; i < 40; ++i) whole += content;
  EXPECT_EQ(sink.content["a"], whole);
}

TEST_F(CabinetReaderTest, AChecksumMayCoverWhatABlockReservesOrNot) {
  HandMade made;
  made.folders = {{kMszip, BlocksWithHistory(Prose(50000))}, {kStored, {{"abcde", 5}}}};
  made.files = {{"a", 50000, 0, 0}, {"b", 5, 0, 1}};
  made.block_reserve = "signed";
  for (const bool covered : {true, false}) {
    made.sums_cover_reserve = covered;
    Make("t.cab", made.Bytes());
    MemorySink sink;
    const Status status = Unpack("t.cab", sink);
    ASSERT_TRUE(status.ok()) << status.message();
    EXPECT_EQ(sink.content["a"], Prose(50000));
    EXPECT_EQ(sink.content["b"], "abcde");
  }
  made.folders[1].second[0].first = "abcdX";
  std::string bytes = made.Bytes();
  bytes[bytes.size() - 1] = 'e';
  Make("t.cab", bytes);
  MemorySink sink;
  EXPECT_THAT(Unpack("t.cab", sink).message(), HasSubstr("does not match its checksum"));
}

TEST_F(CabinetReaderTest, EntriesComeByFolderAndOffsetWhateverTheirOrder) {
  HandMade made;
  made.folders = {{kStored, {{"abcdef", 6}}}, {kStored, {{"xyz", 3}}}};
  made.files = {{"second", 3, 3, 0}, {"other", 3, 0, 1}, {"empty", 0, 6, 0}, {"first", 3, 0, 0}};
  Make("t.cab", made.Bytes());
  MemorySink sink;
  ASSERT_TRUE(Unpack("t.cab", sink).ok());
  EXPECT_THAT(sink.order, ElementsAre("first", "second", "empty", "other"));
  EXPECT_EQ(sink.content["second"], "def");
  EXPECT_EQ(sink.content["other"], "xyz");
}

TEST_F(CabinetReaderTest, OnlyWhatIsWantedIsUnpacked) {
  ASSERT_TRUE(Pack("t.cab", {{"a", Prose(70000)}, {"b", "bb"}, {"c", "cc"}}).ok());
  auto reader = CabinetReader::Open(SystemStorage(), Host("t.cab"), 1252);
  MemorySink sink;
  ASSERT_TRUE(reader->Extract(sink, [](const CabinetEntry& entry) { return entry.name == "b"; }).ok());
  EXPECT_THAT(sink.order, ElementsAre("b"));
  EXPECT_EQ(sink.content["b"], "bb");
}

TEST_F(CabinetReaderTest, PartsOfASetAreRefused) {
  HandMade made;
  made.folders = {{kStored, {{"abc", 3}}}};
  made.files = {{"a", 3, 0}};
  for (const uint16_t flag : {kFlagPrevious, kFlagNext}) {
    made.flags = flag;
    const auto reader = OpenBytes(made.Bytes());
    EXPECT_EQ(reader.number(), kErrorUnsupported);
    EXPECT_THAT(reader.error().message, HasSubstr("part of a set of cabinets"));
  }
  made.flags = 0;
  made.files[0].folder = 0xFFFE;
  EXPECT_EQ(OpenBytes(made.Bytes()).number(), kErrorUnsupported);
}

TEST_F(CabinetReaderTest, WhatIsNoCabinetIsRefused) {
  EXPECT_EQ(OpenBytes("").number(), kErrorInvalidData);
  EXPECT_EQ(OpenBytes(std::string(100, 'x')).number(), kErrorInvalidData);
  EXPECT_EQ(CabinetReader::Open(SystemStorage(), Host("gone.cab"), 1252).number(), kErrorFileNotFound);
  HandMade made;
  made.files = {{"a", 3, 0}};
  EXPECT_THAT(OpenBytes(made.Bytes()).error().message, HasSubstr("has no folder"));
  made.folders = {{uint16_t{7}, {{"abc", 3}}}};
  EXPECT_EQ(OpenBytes(made.Bytes()).number(), kErrorUnsupported);
  made.folders = {{kStored, {{"abc", 3}}}};
  made.files = {{std::string(300, 'n'), 3, 0}};
  EXPECT_THAT(OpenBytes(made.Bytes()).error().message, HasSubstr("has no end"));
}

TEST_F(CabinetReaderTest, LzxIsUnpacked) {
  // One block of type 3, "as it is": 0 (no translation of calls), 011, the length in 24 bits, filled up to
  // whole words; the three last distances; the bytes.
  const std::string packed("\x00\x30\xB0\x00\x01\0\0\0\x01\0\0\0\x01\0\0\0hello, lzx!\0", 28);
  HandMade made;
  made.folders = {{kLzx | (15 << 8), {{packed, 11}}}};
  made.files = {{"a", 5, 0}, {"b", 4, 7}};
  Make("t.cab", made.Bytes());
  MemorySink sink;
  ASSERT_TRUE(Unpack("t.cab", sink).ok());
  EXPECT_EQ(sink.content["a"], "hello");
  EXPECT_EQ(sink.content["b"], "lzx!");
}

TEST_F(CabinetReaderTest, AnLzxFolderOfManyBlocksIsUnpacked) {
  // As above, with the length 0x0186A0: its bits stand in the upper half of the first word and the lower of
  // the next. What follows the first 32 KiB of output lies in further data blocks.
  const std::string content = Prose(100000);
  std::string head("\x18\x30\x00\x6A", 4);
  head += std::string("\x01\0\0\0\x01\0\0\0\x01\0\0\0", 12);
  HandMade made;
  made.folders = {{kLzx | (17 << 8), {}}};
  for (size_t at = 0; at < content.size(); at += kBlockSize) {
    const std::string block = content.substr(at, kBlockSize);
    made.folders[0].second.emplace_back((at == 0 ? head : "") + block, static_cast<uint16_t>(block.size()));
  }
  made.files = {{"a", 40000, 0}, {"b", 60000, 40000}};
  Make("t.cab", made.Bytes());
  MemorySink sink;
  const Status status = Unpack("t.cab", sink);
  ASSERT_TRUE(status.ok()) << status.message();
  EXPECT_EQ(sink.content["a"], content.substr(0, 40000));
  EXPECT_EQ(sink.content["b"], content.substr(40000));
}

TEST_F(CabinetReaderTest, DamagedLzxAndQuantumFailTheirEntries) {
  for (const int type : {kLzx | (15 << 8), kQuantum | (15 << 8)}) {
    HandMade made;
    made.folders = {{static_cast<uint16_t>(type), {{"\xFF\xFF\xFF", 300}}}, {kStored, {{"abc", 3}}}};
    made.files = {{"bad", 300, 0}, {"good", 3, 0, 1}};
    Make("t.cab", made.Bytes());
    MemorySink sink;
    const Status status = Unpack("t.cab", sink);
    EXPECT_EQ(status.number(), kErrorInvalidData);
    EXPECT_THAT(status.message(), HasSubstr("\"bad\""));
    EXPECT_EQ(sink.content.count("bad"), 0u);
    EXPECT_EQ(sink.content["good"], "abc");
  }
}

TEST_F(CabinetReaderTest, ADamagedBlockFailsItsEntriesAndKeepsTheOthers) {
  ASSERT_TRUE(Pack("t.cab", {{"a", Noise(10000)}, {"b", Noise(100000, 2)}, {"c", "c"}}).ok());
  std::string bytes = Content("t.cab");
  bytes[bytes.size() - 40000] = static_cast<char>(bytes[bytes.size() - 40000] ^ 1);
  Make("t.cab", bytes);
  MemorySink sink;
  const Status status = Unpack("t.cab", sink);
  EXPECT_EQ(status.number(), kErrorInvalidData);
  EXPECT_THAT(status.message(), HasSubstr("\"b\""));
  EXPECT_THAT(status.message(), HasSubstr("checksum"));
  EXPECT_EQ(sink.content["a"], Noise(10000));
  EXPECT_EQ(sink.content.count("b"), 0u);
  EXPECT_EQ(sink.content.count("c"), 0u);
}

TEST_F(CabinetReaderTest, AnEntryBeyondTheDataFails) {
  HandMade made;
  made.folders = {{kStored, {{"abc", 3}}}};
  made.files = {{"good", 3, 0}, {"bad", 10, 3}};
  Make("t.cab", made.Bytes());
  MemorySink sink;
  const Status status = Unpack("t.cab", sink);
  EXPECT_THAT(status.message(), HasSubstr("\"bad\""));
  EXPECT_EQ(sink.content["good"], "abc");
}

TEST_F(CabinetReaderTest, OverlappingEntriesAreRefused) {
  HandMade made;
  made.folders = {{kStored, {{"abcdef", 6}}}};
  made.files = {{"a", 4, 0}, {"b", 4, 2}};
  Make("t.cab", made.Bytes());
  MemorySink sink;
  EXPECT_THAT(Unpack("t.cab", sink).message(), HasSubstr("overlaps"));
  EXPECT_TRUE(sink.order.empty());
}

TEST_F(CabinetReaderTest, AnEmptyFileComesWhereverItSaysThatItLies) {
  for (const uint16_t type : {uint16_t{kStored}, uint16_t{kMszip}, uint16_t{kLzx | (15 << 8)}}) {
    HandMade made;
    made.folders = {{type, {{"not a block of its kind, or of another size", 6}}}};
    if (type == kStored) made.folders[0].second = {{"abcdef", 6}};
    made.files = {{"start", 0, 0}, {"a", 3, 0}, {"within", 0, 1}, {"b", 3, 3}, {"beyond", 0, 77}};
    Make("t.cab", made.Bytes());
    MemorySink sink;
    EXPECT_EQ(Unpack("t.cab", sink).ok(), type == kStored);
    EXPECT_EQ(sink.content.size(), type == kStored ? 5u : 3u);
    for (const char* name : {"start", "within", "beyond"}) {
      EXPECT_TRUE(sink.content.contains(name)) << name;
      EXPECT_EQ(sink.outcomes[name], 0) << name;
    }
  }
}

TEST_F(CabinetReaderTest, FoldersThatShareTheirDataAreRefused) {
  HandMade made;
  made.folders = {{kStored, {{"abcdef", 6}}}, {kStored, {}}, {kStored, {{"ghijkl", 6}}}};
  made.files = {{"a", 6, 0}, {"b", 6, 0, 2}};
  const std::string good = made.Bytes();
  const auto offset_at = [](size_t folder) { return kHeaderSize + folder * kFolderRecordSize; };
  const auto second = static_cast<unsigned char>(good[offset_at(2)]);
  const auto first = static_cast<unsigned char>(good[offset_at(0)]);
  EXPECT_TRUE(OpenBytes(good).ok()) << "a folder without data lies where it likes";
  for (int offset = first - 7; offset < first + 8; ++offset) {
    std::string bytes = good;
    bytes[offset_at(2)] = static_cast<char>(offset);
    EXPECT_THAT(OpenBytes(bytes).status().message(), HasSubstr("two folders in it share data.")) << offset;
  }
  EXPECT_EQ(second, first + 14);
}

TEST_F(CabinetReaderTest, ImpossibleBlockSizesAreRefused) {
  for (const auto& block : {std::pair<std::string, uint16_t>{"abc", 40000}, {"abc", 0}, {"abc", 2}}) {
    HandMade made;
    made.folders = {{kStored, {block}}};
    made.files = {{"a", 2, 0}};
    Make("t.cab", made.Bytes());
    MemorySink sink;
    EXPECT_EQ(Unpack("t.cab", sink).number(), kErrorInvalidData) << block.second;
  }
}

TEST_F(CabinetReaderTest, BlocksThatUnpackToAnotherSizeAreRefused) {
  for (const uint16_t told : {uint16_t{99}, uint16_t{101}}) {
    HandMade made;
    made.folders = {{kMszip, BlocksWithHistory(Prose(100))}};
    made.folders[0].second[0].second = told;
    made.files = {{"a", 99, 0}};
    Make("t.cab", made.Bytes());
    MemorySink sink;
    EXPECT_EQ(Unpack("t.cab", sink).number(), kErrorInvalidData) << told;
  }
}

TEST_F(CabinetReaderTest, TruncationAtEveryPlaceIsAnErrorAndNeverACrash) {
  ASSERT_TRUE(Pack("whole.cab", {{"a", Prose(50000)}, {"b", Noise(3000)}}).ok());
  const std::string bytes = Content("whole.cab");
  for (size_t size = 0; size < bytes.size(); size += size < 200 ? 1 : 211) {
    Make("t.cab", bytes.substr(0, size));
    MemorySink sink;
    EXPECT_FALSE(Unpack("t.cab", sink, 1).ok()) << size;
  }
}

TEST_F(CabinetReaderTest, ChangedBytesNeverGiveWrongContent) {
  const std::string prose = Prose(40000);
  ASSERT_TRUE(Pack("whole.cab", {{"a", prose}}).ok());
  const std::string bytes = Content("whole.cab");
  for (size_t at = 0; at < bytes.size(); at += 41) {
    std::string changed = bytes;
    changed[at] = static_cast<char>(changed[at] ^ (1 << (at % 8)));
    Make("t.cab", changed);
    MemorySink sink;
    // Names, dates and sizes have no checksum; content does.
    if (!Unpack("t.cab", sink, 1).ok()) continue;
    for (const auto& [name, content] : sink.content) EXPECT_TRUE(prose.starts_with(content)) << at;
  }
}

}  // namespace
}  // namespace kw::cabinet
