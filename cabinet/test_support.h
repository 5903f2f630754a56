#ifndef KITWRIGHT_CABINET_TEST_SUPPORT_H_
#define KITWRIGHT_CABINET_TEST_SUPPORT_H_

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/storage.h"
#include "cabinet/cabinet_reader.h"
#include "cabinet/cabinet_writer.h"

namespace kw::cabinet {

/// Keeps unpacked entries in memory, and the outcome of each.
class MemorySink : public EntrySink {
 public:
  Status Begin(const CabinetEntry& entry) override {
    current_ = entry.name;
    content[current_].clear();
    return {};
  }
  Status Write(std::span<const std::byte> data) override {
    content[current_].append(reinterpret_cast<const char*>(data.data()), data.size());
    return {};
  }
  Status End(const CabinetEntry& entry, const Status& outcome) override {
    outcomes[entry.name] = outcome.number();
    if (!outcome.ok()) content.erase(entry.name);
    order.push_back(entry.name);
    return {};
  }

  std::map<std::string, std::string> content;
  std::map<std::string, int> outcomes;
  std::vector<std::string> order;

 private:
  std::string current_;
};

/// A folder of its own for each test, and short ways to make files and cabinets in it.
class CabinetFolderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    folder_ = std::filesystem::temp_directory_path() /
              (std::string("kw_cabinet_") + info->test_suite_name() + "_" + info->name());
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
  }
  void TearDown() override {
    // Windows deletes no read-only file.
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_)) {
      if (!entry.is_regular_file() || entry.is_symlink()) continue;
      std::filesystem::permissions(entry.path(), std::filesystem::perms::owner_write,
                                   std::filesystem::perm_options::add);
    }
    std::filesystem::remove_all(folder_);
  }

  /// Where a file of the folder lies; `name` is UTF-8, which a path of narrow text is not on every system.
  std::filesystem::path Path(const std::string& name) const {
    return folder_ / std::filesystem::path(std::u8string(name.begin(), name.end()));
  }

  std::string Host(const std::string& name) const {
    const std::u8string path = Path(name).u8string();
    return {path.begin(), path.end()};
  }

  std::string Make(const std::string& name, std::string_view content) const {
    std::filesystem::create_directories(Path(name).parent_path());
    std::ofstream(Path(name), std::ios::binary) << content;
    return Host(name);
  }

  std::string Content(const std::string& name) const {
    std::ifstream file(Path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  bool There(const std::string& name) const {
    return std::filesystem::exists(std::filesystem::symlink_status(Path(name)));
  }

  size_t FilesIn(const std::string& name) const {
    const std::filesystem::directory_iterator begin(Path(name));
    return static_cast<size_t>(std::distance(begin, std::filesystem::directory_iterator()));
  }

  /// A cabinet `name` of the given entries.
  Result<WrittenCabinet> Pack(const std::string& name,
                              const std::vector<std::pair<std::string, std::string>>& entries,
                              const WriterOptions& options = {}) const {
    std::vector<CabinetFile> files;
    for (size_t i = 0; i < entries.size(); ++i) {
      files.push_back({Make("source_" + name + "/" + std::to_string(i), entries[i].second), entries[i].first,
                       FileStamp{}});
    }
    return WriteCabinet(SystemStorage(), Host(name), files, options);
  }

  Status Unpack(const std::string& name, MemorySink& sink, unsigned threads = 2) const {
    KW_ASSIGN_OR_RETURN(CabinetReader reader, CabinetReader::Open(SystemStorage(), Host(name), 1252));
    return reader.Extract(sink, {}, threads);
  }

  std::filesystem::path folder_;
};

/// Bytes that do not compress, and text that does; the same each time.
inline std::string Noise(size_t size, uint32_t seed = 1) {
  std::string out(size, '\0');
  for (char& c : out) {
    seed = seed * 1664525u + 1013904223u;
    c = static_cast<char>(seed >> 24);
  }
  return out;
}

inline std::string Prose(size_t size, uint32_t seed = 1) {
  static const char* const kWords[] = {"package", "feature", "of", "the", "cabinet", "row", "and", "\r\n"};
  std::string out;
  while (out.size() < size) {
    seed = seed * 1664525u + 1013904223u;
    out.append(kWords[seed >> 29]).append(" ").append(std::to_string((seed >> 8) % 5000));
  }
  out.resize(size);
  return out;
}

/// Bytes that give no match, yet pack to less than eight bits each: no three of them come twice.
inline std::string LiteralsAlone(size_t size, uint32_t seed = 1) {
  constexpr uint32_t kBytes = 180;
  std::vector<bool> seen(kBytes * kBytes * kBytes);
  std::string out;
  uint32_t last = 0;
  while (out.size() < size) {
    seed = seed * 1664525u + 1013904223u;
    uint32_t byte = (seed >> 16) % kBytes;
    while (seen[last * kBytes + byte]) byte = (byte + 1) % kBytes;
    seen[last * kBytes + byte] = true;
    last = (last * kBytes + byte) % (kBytes * kBytes);
    out += static_cast<char>(byte);
  }
  return out;
}

}  // namespace kw::cabinet

#endif  // KITWRIGHT_CABINET_TEST_SUPPORT_H_
