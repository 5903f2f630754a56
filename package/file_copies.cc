#include "base/path.h"
#include "base/text.h"
#include "package/file_rules.h"

namespace kw {
namespace {

using platform::Answer;

bool AskRetry(platform::Services& services, const std::string& text) {
  return services.dialogs->Question(text, {Answer::kRetry, Answer::kCancel}, Answer::kRetry, "") ==
         Answer::kRetry;
}

}  // namespace

Status MakeWritable(platform::Services& services, const std::string& path) {
  const auto file = services.files->GetFile(path);
  if (!file.ok() || !file->read_only) return {};
  return services.files->SetReadOnly(path, false);
}

Status MakeOwnFolder(platform::Services& services, const std::string& path) {
  if (services.files->IsLink(path)) {
    const bool to_folder = services.files->FolderExists(path);
    KW_RETURN_IF_ERROR(to_folder ? services.files->DeleteFolder(path, true)
                                 : services.files->DeleteFile(path, true));
  }
  if (services.files->FolderExists(path)) return {};
  return services.files->CreateFolder(path);
}

void MakeFolderPath(platform::Services& services, const std::string& path) {
  const std::string whole = path.ends_with('\\') ? path : path + "\\";
  for (size_t i = whole.find('\\', 3); i != std::string::npos; i = whole.find('\\', i + 1))
    services.files->CreateFolder(whole.substr(0, i)).IgnoreError();
}

Status CopyOver(platform::Services& services, const std::string& from, const std::string& to) {
  // One that stays read-only shows in the copy.
  if (!services.files->IsLink(to)) MakeWritable(services, to).IgnoreError();
  return services.files->CopyFile(from, to, true);
}

Status CopyWritable(platform::Services& services, const std::string& from, const std::string& to) {
  KW_RETURN_IF_ERROR(CopyOver(services, from, to));
  return MakeWritable(services, to);
}

bool IsSameFile(platform::Services& services, const std::string& one, const std::string& two) {
  return EqualsNoCase(FileNameOf(one), FileNameOf(two)) &&
         services.files->IsSameFolder(ParentOf(one) + "\\", ParentOf(two) + "\\");
}

bool CopyFileToFolder(platform::Services& services, const std::string& path, const std::string& folder,
                      FileListPtr& list) {
  if (!list) list = std::make_unique<FileList>();
  const std::string name = FileNameOf(path);
  const std::string target = folder + "\\" + name;
  while (!services.files->FileExists(path)) {
    if (!AskRetry(services, "Could not copy the source file " + path +
                                ".  Please verify that the file exists and that you have permissions to "
                                "access it."))
      return false;
  }
  while (!CopyOver(services, path, target).ok()) {
    if (!AskRetry(services, "Could not copy file to " + target +
                                ".  Please verify that the file does not already exist, that the folder is "
                                "writable and that the drive is not full."))
      return false;
  }
  MakeWritable(services, target).IgnoreError();
  list->names.push_back(ToUpper(name));
  if (IsSameFile(services, path, target)) list->kept.insert(name);
  return true;
}

}  // namespace kw
