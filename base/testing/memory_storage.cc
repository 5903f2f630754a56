#include "base/testing/memory_storage.h"

#include <algorithm>
#include <cstring>

namespace kw::testing {

class MemoryFile : public StorageFile {
 public:
  MemoryFile(MemoryStorage& storage, std::shared_ptr<std::string> content, bool writable)
      : storage_(storage), content_(std::move(content)), writable_(writable) {}

  Result<size_t> ReadAt(uint64_t offset, std::span<std::byte> buffer) override {
    if (offset >= content_->size()) return size_t{0};
    const size_t length = std::min<size_t>(buffer.size(), content_->size() - static_cast<size_t>(offset));
    std::memcpy(buffer.data(), content_->data() + offset, length);
    return length;
  }
  Status WriteAt(uint64_t offset, std::span<const std::byte> data) override {
    if (!writable_) return {kErrorAccessDenied, "The file is open for reading."};
    storage_.bytes_written += data.size();
    const size_t end = static_cast<size_t>(offset) + data.size();
    if (content_->size() < end) content_->resize(end, '\0');
    if (!data.empty()) std::memcpy(content_->data() + offset, data.data(), data.size());
    return {};
  }
  Result<uint64_t> Size() override { return static_cast<uint64_t>(content_->size()); }
  Status Truncate(uint64_t size) override {
    content_->resize(static_cast<size_t>(size), '\0');
    return {};
  }
  Status Sync() override { return {}; }

 private:
  MemoryStorage& storage_;
  std::shared_ptr<std::string> content_;
  bool writable_;
};

Result<std::unique_ptr<StorageFile>> MemoryStorage::Open(const std::string& path, Mode mode) {
  const auto found = files_.find(path);
  if (found == files_.end() && (mode == Mode::kRead || mode == Mode::kReadWrite)) {
    return {kErrorFileNotFound, "There is no file " + path + "."};
  }
  if (found != files_.end() && mode == Mode::kCreateNew) return {kErrorFileExists, path + " exists."};
  if (mode != Mode::kRead && read_only.count(path) != 0) {
    return {kErrorAccessDenied, path + " is read-only."};
  }
  std::shared_ptr<std::string>& content = files_[path];
  if (!content) content = std::make_shared<std::string>();
  if (mode == Mode::kCreateAlways) content->clear();
  return std::unique_ptr<StorageFile>(std::make_unique<MemoryFile>(*this, content, mode != Mode::kRead));
}

Status MemoryStorage::Rename(const std::string& from, const std::string& to) {
  const auto found = files_.find(from);
  if (found == files_.end()) return {kErrorFileNotFound, "There is no file " + from + "."};
  std::shared_ptr<std::string> content = std::move(found->second);
  files_.erase(found);
  files_[to] = std::move(content);
  return {};
}

Status MemoryStorage::Remove(const std::string& path) {
  if (files_.erase(path) == 0) return {kErrorFileNotFound, "There is no file " + path + "."};
  return {};
}

Status MemoryStorage::CreateFolder(const std::string& path) {
  folders.insert(path);
  return {};
}

std::string& MemoryStorage::Content(const std::string& path) {
  std::shared_ptr<std::string>& content = files_[path];
  if (!content) content = std::make_shared<std::string>();
  return *content;
}

}  // namespace kw::testing
