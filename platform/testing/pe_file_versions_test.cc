#include "platform/shared/pe_file_versions.h"

#include "platform/testing/fake_file_system.h"
#include "platform/testing/versions_contract.h"

namespace kw::platform::testing {
namespace {

class FakeUnderTest : public VersionsUnderTest {
 public:
  FakeUnderTest() { files_.AddFolder("C:\\Work"); }
  FileVersions& Versions() override { return versions_; }
  FileSystem& Files() override { return files_; }
  std::string Folder() override { return "C:\\Work"; }

 private:
  FakeFileSystem files_;
  PeFileVersions versions_{files_};
};

INSTANTIATE_TEST_SUITE_P(Fake, VersionsContract,
                         ::testing::Values([] { return std::make_unique<FakeUnderTest>(); }));

TEST(PeFileVersions, AResourceFarInAFileIsReached) {
  FakeFileSystem files;
  PeFileVersions versions(files);
  formats::VersionBlock block;
  block.has_fixed = true;
  block.file = {1, 2, 3, 4};
  // The section is moved 3 MiB behind its headers.
  const std::string file = formats::MakePeFile(true, formats::MakeVersionResource(block));
  std::string moved = file.substr(0, 0x200) + std::string(3 << 20, 'x') + file.substr(0x200);
  const size_t raw_offset = 0x40 + 24 + 240 + 20;
  moved[raw_offset + 2] = 0x30;
  files.AddFile("C:\\a.exe", moved);
  const auto version = versions.Read("C:\\a.exe");
  ASSERT_TRUE(version.ok()) << version.error().message;
  EXPECT_EQ(version->file, block.file);
}

}  // namespace
}  // namespace kw::platform::testing
