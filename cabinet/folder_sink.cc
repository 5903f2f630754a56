#include "cabinet/folder_sink.h"

#include "base/text.h"
#include "cabinet/entry_name.h"

namespace kw::cabinet {
namespace {

constexpr int kPartNames = 1000;

std::string Below(const std::string& folder, const std::string& name) {
  return folder.ends_with('/') || folder.ends_with('\\') ? folder + name : folder + "/" + name;
}

}  // namespace

FolderSink::FolderSink(Storage& storage, std::string folder)
    : storage_(storage), folder_(std::move(folder)) {}

FolderSink::~FolderSink() { DropPart(); }

Status FolderSink::Begin(const CabinetEntry& entry) {
  KW_ASSIGN_OR_RETURN(const std::vector<std::string> parts, SafeParts(entry.name));
  std::string key;
  for (const std::string& part : parts) key.append("\\").append(ToUpper(part));
  if (written_.contains(key)) {
    return {kErrorAlreadyExists, "another file of the cabinet has that name."};
  }
  std::string folder = folder_;
  for (size_t i = 0; i + 1 < parts.size(); ++i) {
    KW_ASSIGN_OR_RETURN(folder, EnterFolder(folder, parts[i]));
  }
  KW_ASSIGN_OR_RETURN(FolderNames * names, NamesIn(folder));
  final_path_ = Below(folder, names->emplace(ToUpper(parts.back()), parts.back()).first->second);
  KW_RETURN_IF_ERROR(OpenPart(folder));
  written_.insert(std::move(key));
  position_ = 0;
  return {};
}

Status FolderSink::Write(std::span<const std::byte> data) {
  KW_RETURN_IF_ERROR(file_->WriteAt(position_, data));
  position_ += data.size();
  return {};
}

Status FolderSink::End(const CabinetEntry& entry, const Status& outcome) {
  file_.reset();
  Status status = outcome;
  if (status.ok()) status = StampHostFile(part_path_, entry.stamp);
  if (status.ok()) status = storage_.Rename(part_path_, final_path_);
  if (status.ok()) {
    part_path_.clear();
  } else {
    DropPart();
  }
  return status;
}

Result<std::string> FolderSink::EnterFolder(const std::string& parent, const std::string& name) {
  KW_ASSIGN_OR_RETURN(FolderNames * names, NamesIn(parent));
  const std::string path = Below(parent, names->emplace(ToUpper(name), name).first->second);
  if (!names_.contains(path)) KW_RETURN_IF_ERROR(MakeHostFolder(path));
  return path;
}

Result<FolderNames*> FolderSink::NamesIn(const std::string& folder) {
  const auto known = names_.find(folder);
  if (known != names_.end()) return &known->second;
  KW_ASSIGN_OR_RETURN(FolderNames names, NamesInHostFolder(folder));
  return &names_.emplace(folder, std::move(names)).first->second;
}

Status FolderSink::OpenPart(const std::string& folder) {
  Status last;
  for (int i = 0; i < kPartNames; ++i) {
    const std::string path = Below(folder, "~unpack" + std::to_string(i) + ".part");
    Result<std::unique_ptr<StorageFile>> file = storage_.Open(path, Storage::Mode::kCreateNew);
    last = file.status();
    if (file.ok()) {
      file_ = std::move(*file);
      part_path_ = path;
      return {};
    }
    if (file.number() != kErrorFileExists) break;
  }
  return last;
}

void FolderSink::DropPart() {
  file_.reset();
  if (!part_path_.empty()) storage_.Remove(part_path_).IgnoreError();
  part_path_.clear();
}

}  // namespace kw::cabinet
