#ifndef KITWRIGHT_FUZZ_MEMORY_STORAGE_H_
#define KITWRIGHT_FUZZ_MEMORY_STORAGE_H_

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

#include "base/storage.h"

namespace kw::fuzz {

/// Every path is one read-only file: the fuzzer's input, which must outlive this.
class InputStorage : public Storage {
 public:
  explicit InputStorage(std::span<const std::byte> input) : input_(input) {}

  Result<std::unique_ptr<StorageFile>> Open(const std::string& path, Mode mode) override {
    if (mode != Mode::kRead) return {kErrorAccessDenied, path + " is read-only."};
    return std::unique_ptr<StorageFile>(std::make_unique<File>(input_));
  }
  Status Rename(const std::string& from, const std::string&) override { return Refused(from); }
  Status Remove(const std::string& path) override { return Refused(path); }
  bool Exists(const std::string&) override { return true; }
  Status CreateFolder(const std::string& path) override { return Refused(path); }

 private:
  static Status Refused(const std::string& path) { return {kErrorAccessDenied, path + " is read-only."}; }

  class File : public StorageFile {
   public:
    explicit File(std::span<const std::byte> input) : input_(input) {}
    Result<size_t> ReadAt(uint64_t offset, std::span<std::byte> buffer) override {
      if (offset >= input_.size()) return size_t{0};
      const auto rest = input_.subspan(static_cast<size_t>(offset));
      const size_t count = std::min(rest.size(), buffer.size());
      std::memcpy(buffer.data(), rest.data(), count);
      return count;
    }
    Status WriteAt(uint64_t, std::span<const std::byte>) override { return Refused("The input"); }
    Result<uint64_t> Size() override { return uint64_t{input_.size()}; }
    Status Truncate(uint64_t) override { return Refused("The input"); }
    Status Sync() override { return {}; }

   private:
    std::span<const std::byte> input_;
  };

  std::span<const std::byte> input_;
};

}  // namespace kw::fuzz

#endif  // KITWRIGHT_FUZZ_MEMORY_STORAGE_H_
