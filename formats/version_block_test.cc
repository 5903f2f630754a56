#include "formats/version_block.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "formats/version_block_test_support.h"

namespace kw::formats {
namespace {

class Bytes : public ByteSource {
 public:
  explicit Bytes(std::string bytes) : bytes_(std::move(bytes)) {}
  Result<std::string> Read(uint64_t offset, size_t length) override {
    return offset >= bytes_.size() ? std::string() : bytes_.substr(static_cast<size_t>(offset), length);
  }

 private:
  std::string bytes_;
};

VersionBlock Sample() {
  VersionBlock version;
  version.has_fixed = true;
  version.file = {4, 1, 60, 7};
  version.product = {65535, 2, 3, 4};
  version.translations = {{0x409, 1200}, {0x407, 1252}};
  version.tables = {{"040904B0", {{"OriginalFilename", "Repacker.exe"}, {"Empty", ""}, {"Odd", "a"}}},
                    {"040704E4", {{"Comments", "\xC3\xA4\xE6\x97\xA5"}}}};
  return version;
}

TEST(VersionBlock, FixedNumbersTablesAndTranslationsAreRead) {
  const auto version = ParseVersionBlock(MakeVersionResource(Sample()));
  ASSERT_TRUE(version.ok());
  EXPECT_TRUE(version->has_fixed);
  EXPECT_EQ(version->file, Sample().file);
  EXPECT_EQ(version->product, Sample().product);
  EXPECT_EQ(version->translations, Sample().translations);
  ASSERT_EQ(version->tables.size(), 2u);
  EXPECT_EQ(version->tables[0].digits, "040904B0");
  EXPECT_EQ(version->tables[0].strings, Sample().tables[0].strings);
  EXPECT_EQ(version->tables[1].strings, Sample().tables[1].strings);
}

TEST(VersionBlock, TheNamesOfTheBlocksStandInAnyCase) {
  std::string resource = MakeVersionResource(Sample());
  for (const char* name : {"VS_VERSION_INFO", "StringFileInfo", "VarFileInfo", "Translation"}) {
    const std::string stored = Utf8ToUtf16LeBytes(name);
    const size_t at = resource.find(stored);
    ASSERT_NE(at, std::string::npos) << name;
    resource.replace(at, stored.size(), Utf8ToUtf16LeBytes(ToLower(name)));
  }
  const auto version = ParseVersionBlock(resource);
  ASSERT_TRUE(version.ok());
  EXPECT_EQ(version->translations, Sample().translations);
  ASSERT_EQ(version->tables.size(), 2u);
  EXPECT_EQ(version->tables[0].strings, Sample().tables[0].strings);
}

TEST(VersionBlock, ABlockWithoutFixedNumbersHasNone) {
  VersionBlock bare = Sample();
  bare.has_fixed = false;
  const auto version = ParseVersionBlock(MakeVersionResource(bare));
  ASSERT_TRUE(version.ok());
  EXPECT_FALSE(version->has_fixed);
  EXPECT_EQ(version->tables.size(), 2u);
}

TEST(VersionBlock, ProgramsOf32And64BitsAreRead) {
  const std::string resource = MakeVersionResource(Sample());
  for (const bool wide : {false, true}) {
    Bytes file(MakePeFile(wide, resource));
    const auto found = FindVersionResource(file);
    ASSERT_TRUE(found.ok()) << found.error().message;
    EXPECT_EQ(*found, resource);
  }
}

TEST(VersionBlock, AFileWithoutABlockIsToldFromADamagedOne) {
  for (const std::string& bytes : {std::string(), std::string("hello"),
                                   std::string("MZ") + std::string(100, '\0'), MakePeFile(true, "")}) {
    Bytes file(bytes);
    EXPECT_EQ(FindVersionResource(file).number(), kErrorResourceDataNotFound);
  }
  Bytes cut(MakePeFile(true, MakeVersionResource(Sample())).substr(0, 0x240));
  EXPECT_EQ(FindVersionResource(cut).number(), kErrorInvalidData);
  EXPECT_EQ(ParseVersionBlock("").number(), kErrorInvalidData);
  EXPECT_EQ(ParseVersionBlock(MakeBlock("VS_OTHER", 0, 0, {})).number(), kErrorInvalidData);
}

TEST(VersionBlock, TruncatedAndMutatedFilesNeverLeadOutOfTheBytes) {
  const std::string resource = MakeVersionResource(Sample());
  for (size_t size = 0; size < resource.size(); ++size) {
    std::string cut = resource.substr(0, size);
    EXPECT_FALSE(ParseVersionBlock(cut).ok());
    if (size < 2) continue;
    cut[0] = static_cast<char>(size & 0xFF);
    cut[1] = static_cast<char>(size >> 8);
    EXPECT_LE(ParseVersionBlock(cut).value_or(VersionBlock()).tables.size(), 2u);
  }
  const std::string file = MakePeFile(false, resource);
  for (size_t at = 0; at < file.size(); ++at) {
    std::string mutated = file;
    mutated[at] = static_cast<char>(mutated[at] ^ 0xFF);
    Bytes source(mutated);
    EXPECT_LE(FindVersionResource(source).value_or("").size(), 0xFFFFu);
  }
}

}  // namespace
}  // namespace kw::formats
