#include "base/storage.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace kw {
namespace {

// Cabinets bring read-only files, which are unpacked over earlier ones and taken back.
TEST(SystemStorage, AReadOnlyFileIsReplacedAndRemoved) {
  const std::filesystem::path folder = std::filesystem::temp_directory_path() / "kw_storage_test";
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  const auto host = [&](const char* name) { return (folder / name).string(); };
  const auto make = [&](const char* name, std::string_view content) {
    ASSERT_TRUE(WriteFileAtomically(SystemStorage(), host(name), content).ok());
    std::filesystem::permissions(folder / name, std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::remove);
  };
  make("old", "old");
  make("new", "new");
  const auto is_read_only = [&](const char* name) {
    const auto all = std::filesystem::status(folder / name).permissions();
    return (all & std::filesystem::perms::owner_write) == std::filesystem::perms::none;
  };
  ASSERT_TRUE(is_read_only("old"));
  EXPECT_TRUE(SystemStorage().Rename(host("new"), host("old")).ok());
  EXPECT_FALSE(SystemStorage().Exists(host("new")));
  EXPECT_EQ(ReadWholeFile(SystemStorage(), host("old")).value_or(""), "new");
  EXPECT_TRUE(is_read_only("old"));
  EXPECT_TRUE(SystemStorage().Remove(host("old")).ok());
  EXPECT_FALSE(SystemStorage().Exists(host("old")));
  EXPECT_EQ(SystemStorage().Remove(host("old")).number(), kErrorFileNotFound);
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace kw
