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

FolderSink::FolderSink(Storage& storage, std::string folder, Making making)
    : storage_(storage),
      folder_(std::move(folder)),
      maker_(making == Making::kTogether ? std::make_unique<FileMaker>(storage) : nullptr) {}

FolderSink::~FolderSink() { DropPart(); }

Status FolderSink::Begin(const CabinetEntry& entry) {
  KW_ASSIGN_OR_RETURN(const std::vector<std::string> parts, SafeParts(entry.name));
  KW_ASSIGN_OR_RETURN(std::string key, TakeName(parts));
  final_folder_ = folder_;
  for (size_t i = 0; i + 1 < parts.size(); ++i) {
    KW_ASSIGN_OR_RETURN(final_folder_, EnterFolder(final_folder_, parts[i]));
  }
  KW_ASSIGN_OR_RETURN(FolderNames * names, NamesIn(final_folder_));
  const auto [name, is_new] = names->emplace(ToUpper(parts.back()), parts.back());
  final_name_ = &name->second;
  final_path_ = Below(final_folder_, name->second);
  place_is_free_ = is_new;
  written_.insert(std::move(key));
  size_ = entry.size;
  position_ = 0;
  return {};
}

Status FolderSink::Write(std::span<const std::byte> data) {
  if (file_ == nullptr) {
    const bool whole = data.size() == size_;
    if (whole && ForMaker()) {
      for_maker_.assign(data.begin(), data.end());
      return {};
    }
    KW_RETURN_IF_ERROR(OpenFile(whole));
  }
  KW_RETURN_IF_ERROR(file_->WriteAt(position_, data));
  position_ += data.size();
  return {};
}

Status FolderSink::End(const CabinetEntry& entry, const Status& outcome) {
  Status status = outcome;
  if (status.ok() && place_is_free_) made_.emplace_back(&names_.find(final_folder_)->first, final_name_);
  if (status.ok() && file_ == nullptr && ForMaker()) {
    maker_->Add(entry, final_path_, std::move(for_maker_));
    for_maker_.clear();
    return {};
  }
  if (status.ok() && file_ == nullptr) status = OpenFile(true);
  file_.reset();
  if (status.ok()) status = StampHostFile(part_path_, entry.stamp);
  if (status.ok() && part_path_ != final_path_) status = storage_.Rename(part_path_, final_path_);
  if (status.ok()) {
    part_path_.clear();
  } else {
    DropPart();
  }
  return status;
}

std::vector<EntryFailure> FolderSink::Settle() {
  return maker_ == nullptr ? std::vector<EntryFailure>() : maker_->Settle();
}

void FolderSink::TakeBack() {
  for (const auto& [folder, name] : made_) storage_.Remove(Below(*folder, *name)).IgnoreError();
  made_.clear();
}

// Whether the present entry, if its content comes at once, is a file to be made together with others.
bool FolderSink::ForMaker() const {
  return maker_ != nullptr && place_is_free_ && size_ <= FileMaker::kLargest;
}

// The name of an entry as it counts for others; fails when one of them has it, or has one of its folders'
// names.
Result<std::string> FolderSink::TakeName(const std::vector<std::string>& parts) {
  std::string key;
  bool taken = false;
  for (const std::string& part : parts) {
    if (!key.empty()) entered_.insert(key);
    key.append("\\").append(ToUpper(part));
    taken |= written_.contains(key);
  }
  if (taken || entered_.contains(key)) {
    return {kErrorAlreadyExists, "another file of the cabinet has that name."};
  }
  return key;
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

// Makes the present entry's file; `whole` says that all of its content is at hand.
Status FolderSink::OpenFile(bool whole) {
  if (!whole || !place_is_free_) return OpenPart();
  Result<std::unique_ptr<StorageFile>> file = storage_.Open(final_path_, Storage::Mode::kCreateNew);
  if (file.number() == kErrorFileExists) return OpenPart();
  KW_ASSIGN_OR_RETURN(file_, std::move(file));
  part_path_ = final_path_;
  return {};
}

Status FolderSink::OpenPart() {
  Status last;
  for (int i = 0; i < kPartNames; ++i) {
    const std::string path = Below(final_folder_, "~unpack" + std::to_string(i) + ".part");
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
