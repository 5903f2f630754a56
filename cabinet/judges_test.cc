// Independent programs read what we write, and we read what they write. Where one is missing its tests are
// skipped.

#include <gmock/gmock.h>

#include <array>
#include <cstdio>
#include <random>

#include "base/text.h"
#include "cabinet/folder_sink.h"
#include "cabinet/test_support.h"

#ifndef _WIN32

namespace kw::cabinet {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class JudgesTest : public CabinetFolderTest {
 protected:
  static bool Has(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
  }

  // What a command prints; fails the test when it does not exit with 0.
  std::string Run(const std::string& command) const {
    std::string out;
    FILE* pipe = popen(("cd '" + folder_.string() + "' && " + command + " 2>&1").c_str(), "r");
    std::array<char, 4096> buffer;
    while (const size_t got = std::fread(buffer.data(), 1, buffer.size(), pipe))
      out.append(buffer.data(), got);
    EXPECT_EQ(pclose(pipe), 0) << command << "\n" << out;
    return out;
  }

  std::vector<std::pair<std::string, std::string>> Entries() const {
    const std::string literals = LiteralsAlone(60000, 9);
    return {{"_id_1_setup.txt", Prose(150000)},
            {"noise", Noise(70000)},
            {"empty", ""},
            {"zeros", std::string(200000, '\0')},
            {"literals", literals + Prose(9000)},
            {"a", "a"}};
  }
};

TEST_F(JudgesTest, CabextractUnpacksOurCabinets) {
  if (!Has("cabextract")) GTEST_SKIP();
  for (const uint16_t reserved : {uint16_t{0}, uint16_t{8}, uint16_t{6144}}) {
    WriterOptions options;
    options.reserved_header = reserved;
    ASSERT_TRUE(Pack("t.cab", Entries(), options).ok());
    Run("cabextract -t t.cab");
    Run("cabextract -q -d out t.cab");
    for (const auto& [name, content] : Entries()) EXPECT_EQ(Content("out/" + name), content) << name;
  }
}

TEST_F(JudgesTest, CabextractSeesOurOrderSizesAndDates) {
  if (!Has("cabextract")) GTEST_SKIP();
  const FileStamp stamp{(41 << 9) | (5 << 5) | 17, (13 << 11) | (37 << 5) | 21, kArchive};
  ASSERT_TRUE(WriteCabinet(SystemStorage(), Host("t.cab"),
                           {{Make("f", "12345"), "z", stamp}, {Host("f"), "b", stamp}}, {})
                  .ok());
  EXPECT_THAT(Run("cabextract -l t.cab"), HasSubstr("         5 | 17.05.2021 13:37:42 | z\n"
                                                    "         5 | 17.05.2021 13:37:42 | b\n"));
}

// Without checksums, so that changes of the packed bytes are seen too.
TEST_F(JudgesTest, WhoeverTakesAChangedCabinetGivesTheSameBytes) {
  if (!Has("cabextract")) GTEST_SKIP();
  const std::string repeated = Prose(40000);
  ASSERT_TRUE(Pack("t.cab", {{"a", repeated + repeated}, {"b", Noise(3000)}, {"c", Prose(9000, 3)}}).ok());
  std::string bytes = Content("t.cab");
  const auto reader = CabinetReader::Open(SystemStorage(), Host("t.cab"), 1252);
  ASSERT_TRUE(reader.ok());
  auto* const start = reinterpret_cast<std::byte*>(bytes.data());
  size_t at = reader->folders()[0].data_offset;
  for (int block = 0; block < reader->folders()[0].blocks; ++block) {
    PutU32(start + at, 0);
    at += kDataRecordSize + GetU16(start + at + 4);
  }
  ASSERT_EQ(at, bytes.size());
  std::mt19937 random(7);
  int taken_by_both = 0;
  for (int turn = 0; turn < 200; ++turn) {
    std::string changed = bytes;
    for (uint32_t i = random() % 3; i < 3; ++i) {
      const size_t place = random() % (random() % 2 == 0 ? 160 : changed.size());
      changed[place] = static_cast<char>(changed[place] ^ (1 << random() % 8));
    }
    Make("t.cab", changed);
    std::filesystem::remove_all(folder_ / "out");
    const std::string command = "cd '" + folder_.string() + "' && cabextract -q -d out t.cab >/dev/null 2>&1";
    const bool theirs = std::system(command.c_str()) == 0;
    MemorySink sink;
    if (!Unpack("t.cab", sink).ok() || !theirs) continue;
    ++taken_by_both;
    for (const auto& [name, content] : sink.content) {
      if (!There("out/" + name)) continue;  // a changed name, which the other reads in its own way
      EXPECT_TRUE(Content("out/" + name) == content) << turn << " " << name;
    }
  }
  EXPECT_GT(taken_by_both, 20);
}

TEST_F(JudgesTest, GcabReadsOurCabinets) {
  if (!Has("gcab")) GTEST_SKIP();
  for (const uint16_t reserved : {uint16_t{0}, uint16_t{8}, uint16_t{6144}}) {
    WriterOptions options;
    options.reserved_header = reserved;
    ASSERT_TRUE(Pack("t.cab", Entries(), options).ok());
    EXPECT_EQ(Run("gcab -t t.cab"), "_id_1_setup.txt\nnoise\nempty\nzeros\nliterals\na\n");
    Run("mkdir -p out && gcab -x -C out t.cab");
    for (const auto& [name, content] : Entries()) EXPECT_EQ(Content("out/" + name), content) << name;
  }
}

TEST_F(JudgesTest, CabinetsOfGcabAreRead) {
  if (!Has("gcab")) GTEST_SKIP();
  Make("one", Prose(100000));
  Make("two", Noise(50000));
  for (const char* zip : {"-z", ""}) {
    Run(std::string("rm -f t.cab; gcab -c ") + zip + " t.cab two one");
    MemorySink sink;
    ASSERT_TRUE(Unpack("t.cab", sink).ok()) << zip;
    EXPECT_THAT(sink.order, ElementsAre("two", "one"));
    EXPECT_EQ(sink.content["one"], Prose(100000));
    EXPECT_EQ(sink.content["two"], Noise(50000));
  }
}

}  // namespace
}  // namespace kw::cabinet

#endif
