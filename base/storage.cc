#include "base/storage.h"

#include <string_view>

namespace kw {

Result<std::string> ReadWholeFile(Storage& storage, const std::string& path) {
  KW_ASSIGN_OR_RETURN(auto file, storage.Open(path, Storage::Mode::kRead));
  KW_ASSIGN_OR_RETURN(const uint64_t size, file->Size());
  std::string content(static_cast<size_t>(size), '\0');
  KW_ASSIGN_OR_RETURN(const size_t got, file->ReadAt(0, std::as_writable_bytes(std::span(content))));
  content.resize(got);
  return content;
}

Result<std::unique_ptr<StorageFile>> OpenAnew(Storage& storage, const std::string& path) {
  const Status removed = storage.Remove(path);
  if (!removed.ok() && removed.number() != kErrorFileNotFound) return removed.error();
  return storage.Open(path, Storage::Mode::kCreateNew);
}

Status WriteFileAtomically(Storage& storage, const std::string& path, std::string_view content) {
  const std::string beside = path + ".new";
  Status status = [&]() -> Status {
    KW_ASSIGN_OR_RETURN(auto file, OpenAnew(storage, beside));
    KW_RETURN_IF_ERROR(file->WriteAt(0, std::as_bytes(std::span(content))));
    return file->Sync();
  }();
  if (status.ok()) status = storage.Rename(beside, path);
  if (!status.ok()) storage.Remove(beside).IgnoreError();
  return status;
}

}  // namespace kw
