#include "platform/testing/fake_file_system.h"

#include <algorithm>
#include <utility>

#include "base/path.h"
#include "platform/shared/file_errors.h"
#include "platform/testing/fake_host_files.h"

namespace kw::platform::testing {

/// An open file. Reading and writing share one position.
class FakeFileHandle : public FileHandle {
 public:
  FakeFileHandle(FakeFileSystem& files, std::shared_ptr<FakeNode> node, std::string full, OpenHow how)
      : files_(files), node_(std::move(node)), full_(std::move(full)), how_(how) {
    if (how_ == OpenHow::kReadExisting) {
      ++node_->readers;
    } else {
      node_->held_exclusively = true;
    }
  }
  ~FakeFileHandle() override {
    if (how_ == OpenHow::kReadExisting) {
      --node_->readers;
    } else {
      node_->held_exclusively = false;
    }
  }

  Result<std::string> Read(size_t length) override {
    if (const int number = files_.Ordered(FileOperation::kHandleRead, full_)) {
      return FileError(number, "read", full_);
    }
    const size_t start = std::min(position_, node_->bytes.size());
    std::string bytes = node_->bytes.substr(start, length);
    position_ = start + bytes.size();
    return bytes;
  }

  Status Write(std::string_view bytes) override {
    if (const int number = files_.Ordered(FileOperation::kHandleWrite, full_)) {
      return FileError(number, "write", full_);
    }
    if (how_ == OpenHow::kReadExisting) return FileError(kErrorAccessDenied, "write", full_);
    if (node_->bytes.size() < position_ + bytes.size()) node_->bytes.resize(position_ + bytes.size());
    std::copy(bytes.begin(), bytes.end(), node_->bytes.begin() + static_cast<std::ptrdiff_t>(position_));
    position_ += bytes.size();
    return {};
  }

  Status Flush() override { return {}; }

 private:
  FakeFileSystem& files_;
  std::shared_ptr<FakeNode> node_;
  std::string full_;
  OpenHow how_;
  size_t position_ = 0;
};

namespace {

// The part of a full path that stands for the drive or the share, and the rest.
std::pair<std::string, std::vector<std::string>> TakeApart(const std::string& full) {
  size_t end = 2;
  if (full.starts_with("\\\\")) {
    const size_t share = full.find('\\', 2);
    end = share == std::string::npos ? full.size() : std::min(full.find('\\', share + 1), full.size());
  }
  std::vector<std::string> parts;
  for (std::string& part : Split(std::string_view(full).substr(end), '\\')) {
    if (!part.empty()) parts.push_back(std::move(part));
  }
  return {full.substr(0, end), std::move(parts)};
}

bool IsBusy(const FakeNode& node) { return node.held_exclusively || node.readers > 0; }

void ListTree(const FakeNode& folder, const std::string& prefix, std::vector<std::string>& lines) {
  for (const auto& [name, child] : folder.children) {
    if (folder.links.contains(name)) {
      lines.push_back(prefix + name);
    } else if (!child->is_folder) {
      lines.push_back(prefix + child->name);
    } else if (child->children.empty()) {
      lines.push_back(prefix + child->name + "\\");
    } else {
      ListTree(*child, prefix + child->name + "\\", lines);
    }
  }
}

}  // namespace

FakeFileSystem::FakeFileSystem() : host_files_(std::make_unique<FakeHostFiles>(*this)) {
  roots_.is_folder = true;
  AddFolder("C:\\");
}

FakeFileSystem::~FakeFileSystem() = default;

FakeFileSystem::Place FakeFileSystem::Find(const std::string& path) const {
  Place place;
  place.full = paths_.FullPath(path);
  if (path.empty() || HasBadNameCharacter(place.full)) return place;
  const auto [anchor, parts] = TakeApart(place.full);
  const auto root = roots_.children.find(anchor);
  if (root == roots_.children.end()) return place;
  std::shared_ptr<FakeNode> node = root->second;
  for (const std::string& part : parts) {
    if (node == nullptr || !node->is_folder) {
      place.parent = nullptr;
      return place;
    }
    place.parent = node;
    place.name = part;
    const auto child = node->children.find(part);
    node = child == node->children.end() ? nullptr : child->second;
  }
  place.node = node;
  return place;
}

bool FakeFileSystem::IsLinkAt(const Place& place) {
  return place.parent != nullptr && place.parent->links.contains(place.name);
}

FakeFileSystem::Place FakeFileSystem::FindTarget(const std::string& path) const {
  Place place = Find(path);
  if (IsLinkAt(place) && !place.node->is_folder) place.node = nullptr;
  return place;
}

void FakeFileSystem::Erase(const Place& place) {
  place.parent->children.erase(place.parent->children.find(place.name));
  place.parent->links.erase(place.name);
}

std::shared_ptr<FakeNode> FakeFileSystem::MakeFolders(const std::string& full) {
  auto [anchor, parts] = TakeApart(full);
  parts.insert(parts.begin(), anchor);
  FakeNode* folder = &roots_;
  std::shared_ptr<FakeNode> made;
  for (const std::string& part : parts) {
    std::shared_ptr<FakeNode>& child = folder->children[part];
    if (child == nullptr) {
      child = std::make_shared<FakeNode>();
      child->name = part;
      child->is_folder = true;
    }
    made = child;
    folder = child.get();
  }
  return made;
}

void FakeFileSystem::AddFolder(const std::string& path) { MakeFolders(paths_.FullPath(path)); }

void FakeFileSystem::AddFile(const std::string& path, std::string_view bytes, bool read_only) {
  const std::string full = paths_.FullPath(path);
  const auto folder = MakeFolders(ParentOf(full));
  if (folder->links.erase(FileNameOf(full)) != 0) folder->children.erase(FileNameOf(full));
  std::shared_ptr<FakeNode>& node = folder->children[FileNameOf(full)];
  if (node == nullptr) {
    node = std::make_shared<FakeNode>();
    node->name = FileNameOf(full);
  }
  node->bytes.assign(bytes);
  node->read_only = read_only;
}

void FakeFileSystem::AddLink(const std::string& path, const std::string& target) {
  const std::string full = paths_.FullPath(path);
  const auto folder = MakeFolders(ParentOf(full));
  folder->children[FileNameOf(full)] = Find(target).node;
  folder->links.insert(FileNameOf(full));
}

void FakeFileSystem::ProtectFolder(const std::string& path, bool protect) {
  const Place place = Find(path);
  if (place.node != nullptr) place.node->write_protected = protect;
}

void FakeFileSystem::FailNth(FileOperation operation, const std::string& path, int nth, int number) {
  orders_.push_back({operation, path.empty() ? std::string() : paths_.FullPath(path), nth, number, false});
}

int FakeFileSystem::Ordered(FileOperation operation, const std::string& path) {
  int failure = 0;
  for (Order& order : orders_) {
    if (order.operation != operation || order.done) continue;
    if (!order.full.empty() && !EqualsNoCase(order.full, paths_.FullPath(path))) continue;
    if (order.calls_left > 1) {
      --order.calls_left;
      continue;
    }
    order.done = order.calls_left == 1;
    if (failure == 0) failure = order.number;
  }
  return failure;
}

std::string FakeFileSystem::Content(const std::string& path) const {
  const Place place = Find(path);
  return place.node == nullptr || place.node->is_folder ? "(no such file)" : place.node->bytes;
}

bool FakeFileSystem::IsReadOnly(const std::string& path) const {
  const Place place = Find(path);
  return place.node != nullptr && place.node->read_only;
}

std::vector<std::string> FakeFileSystem::Tree(const std::string& folder) const {
  std::vector<std::string> lines;
  const Place place = Find(folder);
  if (place.node != nullptr) ListTree(*place.node, "", lines);
  return lines;
}

int FakeFileSystem::MissingNumber(const Place& place) {
  if (HasBadNameCharacter(place.full)) return kErrorInvalidName;
  return place.parent == nullptr ? kErrorPathNotFound : kErrorFileNotFound;
}

FileEntry FakeFileSystem::EntryOf(const FakeNode& node) {
  return {node.name, node.is_folder, node.read_only, static_cast<int64_t>(node.bytes.size())};
}

bool FakeFileSystem::FileExists(const std::string& path) {
  const Place place = Find(path);
  return place.node != nullptr && !place.node->is_folder;
}

bool FakeFileSystem::FolderExists(const std::string& path) {
  const Place place = Find(path);
  return place.node != nullptr && place.node->is_folder;
}

Result<FileEntry> FakeFileSystem::GetFile(const std::string& path) {
  if (const int number = Ordered(FileOperation::kGetFile, path)) return FileError(number, "look at", path);
  const Place place = Find(path);
  if (place.node == nullptr) return FileError(MissingNumber(place), "look at", path);
  if (place.node->is_folder) return FileError(kErrorFileNotFound, "look at", path);
  return EntryOf(*place.node);
}

bool FakeFileSystem::IsLink(const std::string& path) { return IsLinkAt(Find(path)); }

bool FakeFileSystem::IsSameFolder(const std::string& one, const std::string& two) {
  const Place place = Find(one);
  return place.node != nullptr && place.node->is_folder && place.node == Find(two).node;
}

Result<std::vector<FileEntry>> FakeFileSystem::List(const std::string& folder) {
  if (const int number = Ordered(FileOperation::kList, folder)) return FileError(number, "list", folder);
  const Place place = Find(folder);
  if (place.node == nullptr || !place.node->is_folder) {
    return FileError(HasBadNameCharacter(place.full) ? kErrorInvalidName : kErrorPathNotFound, "list",
                     folder);
  }
  std::vector<FileEntry> entries;
  for (const auto& [name, child] : place.node->children) {
    entries.push_back(EntryOf(*child));
    if (place.node->links.contains(name)) entries.back().name = name;
  }
  return entries;
}

int FakeFileSystem::WriteNumber(const Place& place) const {
  if (place.node == nullptr) {
    if (place.parent == nullptr || HasBadNameCharacter(place.full)) return MissingNumber(place);
    return place.parent->write_protected ? kErrorAccessDenied : 0;
  }
  if (place.node->is_folder || place.node->read_only) return kErrorAccessDenied;
  return IsBusy(*place.node) ? kErrorSharingViolation : 0;
}

Status FakeFileSystem::CopyFile(const std::string& from, const std::string& to, bool overwrite) {
  int number = Ordered(FileOperation::kCopyFile, from);
  if (number == 0) number = Ordered(FileOperation::kCopyFile, to);
  if (number != 0) return FileError(number, "copy " + from + " to", to);
  const Place source = Find(from);
  if (source.node == nullptr) return FileError(MissingNumber(source), "copy", from);
  if (source.node->is_folder) return FileError(kErrorAccessDenied, "copy", from);
  const Place target = FindTarget(to);
  if (source.node == target.node) return {};
  if (source.node->held_exclusively) return FileError(kErrorSharingViolation, "copy", from);
  const bool read_only = target.node != nullptr && target.node->read_only;
  const bool is_file = target.node != nullptr && !target.node->is_folder;
  const bool is_link = target.node == nullptr && IsLinkAt(target);
  if (((is_file && !read_only) || is_link) && !overwrite) {
    return FileError(kErrorFileExists, "copy " + from + " to", to);
  }
  number = WriteNumber(target);
  if (number != 0) return FileError(number, "copy " + from + " to", to);
  AddFile(to, source.node->bytes, source.node->read_only);
  log.push_back("copy " + from + " -> " + to);
  return {};
}

Status FakeFileSystem::DeleteFile(const std::string& path, bool force) {
  if (const int number = Ordered(FileOperation::kDeleteFile, path)) return FileError(number, "delete", path);
  const Place place = Find(path);
  if (place.node == nullptr) return FileError(MissingNumber(place), "delete", path);
  if (place.node->is_folder || place.parent->write_protected || (place.node->read_only && !force)) {
    return FileError(kErrorAccessDenied, "delete", path);
  }
  if (IsBusy(*place.node) || place.node->databases > 0) {
    return FileError(kErrorSharingViolation, "delete", path);
  }
  Erase(place);
  log.push_back("delete " + path);
  return {};
}

Status FakeFileSystem::DeleteTree(const Place& place, bool force) {
  std::vector<std::string> names;
  const bool is_link = IsLinkAt(place);
  if (!is_link) {
    for (const auto& [name, child] : place.node->children) names.push_back(name);
  }
  for (const std::string& name : names) {
    const Place below = Find(JoinPath(place.full, name));
    if (below.node->is_folder) {
      KW_RETURN_IF_ERROR(DeleteTree(below, force));
      continue;
    }
    const bool denied = place.node->write_protected || (below.node->read_only && !force);
    if (denied) return FileError(kErrorAccessDenied, "delete", below.full);
    if (IsBusy(*below.node) || below.node->databases > 0) {
      return FileError(kErrorSharingViolation, "delete", below.full);
    }
    Erase(below);
  }
  if (place.parent == nullptr || place.parent->write_protected) {
    return FileError(kErrorAccessDenied, "delete", place.full);
  }
  if (EqualsNoCase(place.full, CurrentFolder())) {
    return FileError(kErrorSharingViolation, "delete", place.full);
  }
  Erase(place);
  return {};
}

Status FakeFileSystem::DeleteFolder(const std::string& path, bool force) {
  if (const int number = Ordered(FileOperation::kDeleteFolder, path)) {
    return FileError(number, "delete", path);
  }
  const Place place = Find(path);
  if (place.node == nullptr || !place.node->is_folder) {
    return FileError(kErrorPathNotFound, "delete", path);
  }
  KW_RETURN_IF_ERROR(DeleteTree(place, force));
  log.push_back("delete-folder " + path);
  return {};
}

Status FakeFileSystem::CreateFolder(const std::string& path) {
  if (const int number = Ordered(FileOperation::kCreateFolder, path)) {
    return FileError(number, "create the folder", path);
  }
  const Place place = Find(path);
  if (place.node != nullptr) return FileError(kErrorAlreadyExists, "create the folder", path);
  if (const int number = WriteNumber(place)) return FileError(number, "create the folder", path);
  AddFolder(path);
  log.push_back("create-folder " + path);
  return {};
}

Status FakeFileSystem::SetReadOnly(const std::string& path, bool read_only) {
  if (const int number = Ordered(FileOperation::kSetReadOnly, path)) {
    return FileError(number, "change the attributes of", path);
  }
  const Place place = Find(path);
  if (place.node == nullptr || place.node->is_folder) {
    const int number = place.node == nullptr ? MissingNumber(place) : kErrorAccessDenied;
    return FileError(number, "change the attributes of", path);
  }
  place.node->read_only = read_only;
  log.push_back((read_only ? "read-only " : "writable ") + path);
  return {};
}

Result<std::unique_ptr<FileHandle>> FakeFileSystem::Open(const std::string& path, OpenHow how) {
  if (const int number = Ordered(FileOperation::kOpen, path)) return FileError(number, "open", path);
  Place place = Find(path);
  if (how == OpenHow::kReadExisting) {
    if (place.node == nullptr) return FileError(MissingNumber(place), "open", path);
    if (place.node->is_folder) return FileError(kErrorAccessDenied, "open", path);
    if (place.node->held_exclusively) return FileError(kErrorSharingViolation, "open", path);
  } else {
    if (const int number = WriteNumber(place)) return FileError(number, "open", path);
    if (place.node == nullptr) {
      AddFile(path, "");
      place = Find(path);
    }
    log.push_back("write " + path);
  }
  return std::unique_ptr<FileHandle>(std::make_unique<FakeFileHandle>(*this, place.node, place.full, how));
}

Result<std::string> FakeFileSystem::ReadFile(const std::string& path) {
  if (const int number = Ordered(FileOperation::kReadFile, path)) return FileError(number, "read", path);
  const Place place = Find(path);
  if (place.node == nullptr) return FileError(MissingNumber(place), "read", path);
  if (place.node->is_folder) return FileError(kErrorAccessDenied, "read", path);
  if (place.node->held_exclusively) return FileError(kErrorSharingViolation, "read", path);
  return place.node->bytes;
}

Status FakeFileSystem::WriteFile(const std::string& path, std::string_view bytes) {
  if (const int number = Ordered(FileOperation::kWriteFile, path)) return FileError(number, "write", path);
  const Place place = FindTarget(path);
  if (const int number = WriteNumber(place)) return FileError(number, "write", path);
  AddFile(path, bytes);
  log.push_back("write " + path);
  return {};
}

std::string FakeFileSystem::CurrentFolder() { return paths_.current(); }

Status FakeFileSystem::SetCurrentFolder(const std::string& path) {
  if (const int number = Ordered(FileOperation::kSetCurrentFolder, path)) {
    return FileError(number, "go to", path);
  }
  if (!FolderExists(path)) return FileError(kErrorPathNotFound, "go to", path);
  paths_ = MachinePaths(paths_.root(), paths_.FullPath(path));
  log.push_back("current " + path);
  return {};
}

}  // namespace kw::platform::testing
