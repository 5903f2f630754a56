#include "platform/testing/fake_host_files.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

#include "platform/shared/file_errors.h"
#include "platform/testing/fake_file_system.h"

namespace kw::platform::testing {
namespace {

class FakeHostFile : public StorageFile {
 public:
  /// `ordered` gives the number with which the next change is to fail, or 0.
  FakeHostFile(std::shared_ptr<FakeNode> node, bool writable, std::string path, std::function<int()> ordered)
      : node_(std::move(node)), writable_(writable), path_(std::move(path)), ordered_(std::move(ordered)) {
    ++node_->databases;
  }
  ~FakeHostFile() override { --node_->databases; }

  Result<size_t> ReadAt(uint64_t offset, std::span<std::byte> buffer) override {
    const size_t start = std::min<size_t>(static_cast<size_t>(offset), node_->bytes.size());
    const size_t length = std::min(buffer.size(), node_->bytes.size() - start);
    if (length > 0) std::memcpy(buffer.data(), node_->bytes.data() + start, length);
    return length;
  }

  Status WriteAt(uint64_t offset, std::span<const std::byte> data) override {
    if (!writable_) return FileError(kErrorAccessDenied, "write", path_);
    if (const int number = ordered_()) return FileError(number, "write", path_);
    const size_t end = static_cast<size_t>(offset) + data.size();
    if (node_->bytes.size() < end) node_->bytes.resize(end);
    if (!data.empty()) std::memcpy(node_->bytes.data() + offset, data.data(), data.size());
    return {};
  }

  Result<uint64_t> Size() override { return static_cast<uint64_t>(node_->bytes.size()); }

  Status Truncate(uint64_t size) override {
    if (!writable_) return FileError(kErrorAccessDenied, "resize", path_);
    if (const int number = ordered_()) return FileError(number, "resize", path_);
    node_->bytes.resize(static_cast<size_t>(size));
    return {};
  }

  Status Sync() override {
    const int number = ordered_();
    return number == 0 ? Status() : FileError(number, "write", path_);
  }

 private:
  std::shared_ptr<FakeNode> node_;
  bool writable_;
  std::string path_;
  std::function<int()> ordered_;
};

}  // namespace

Result<std::unique_ptr<StorageFile>> FakeHostFiles::Open(const std::string& path, Mode mode) {
  FakeFileSystem::Place place = files_.Find(path);
  const bool creates = mode == Mode::kCreateNew || mode == Mode::kCreateAlways;
  if (place.node == nullptr) {
    if (!creates) return FileError(FakeFileSystem::MissingNumber(place), "open", path);
    if (const int number = files_.WriteNumber(place)) return FileError(number, "open", path);
    files_.AddFile(path, "");
    place = files_.Find(path);
  } else if (mode == Mode::kCreateNew) {
    return FileError(kErrorFileExists, "create", path);
  } else if (mode != Mode::kRead) {
    if (const int number = files_.WriteNumber(place)) return FileError(number, "open", path);
  }
  if (place.node->is_folder) return FileError(kErrorAccessDenied, "open", path);
  if (place.node->held_exclusively) return FileError(kErrorSharingViolation, "open", path);
  if (mode == Mode::kCreateAlways) place.node->bytes.clear();
  const auto ordered = [this, path] { return files_.Ordered(FileOperation::kHandleWrite, path); };
  return std::unique_ptr<StorageFile>(
      std::make_unique<FakeHostFile>(place.node, mode != Mode::kRead, path, ordered));
}

Status FakeHostFiles::Rename(const std::string& from, const std::string& to) {
  const FakeFileSystem::Place source = files_.Find(from);
  if (source.node == nullptr) return FileError(FakeFileSystem::MissingNumber(source), "rename", from);
  const FakeFileSystem::Place target = files_.Find(to);
  if (target.parent == nullptr) return FileError(kErrorPathNotFound, "rename", from);
  if (target.parent->write_protected || source.parent->write_protected) {
    return FileError(kErrorAccessDenied, "rename", from);
  }
  FakeFileSystem::Erase(source);
  target.parent->links.erase(target.name);
  source.node->name = target.name;
  target.parent->children[target.name] = source.node;
  return {};
}

Status FakeHostFiles::Remove(const std::string& path) {
  const FakeFileSystem::Place place = files_.Find(path);
  if (place.node == nullptr || place.node->is_folder) {
    return FileError(FakeFileSystem::MissingNumber(place), "remove", path);
  }
  if (place.parent->write_protected) return FileError(kErrorAccessDenied, "remove", path);
  FakeFileSystem::Erase(place);
  return {};
}

bool FakeHostFiles::Exists(const std::string& path) { return files_.Find(path).node != nullptr; }

Status FakeHostFiles::CreateFolder(const std::string& path) {
  return files_.FolderExists(path) && !files_.IsLink(path) ? Status() : files_.CreateFolder(path);
}

}  // namespace kw::platform::testing
