#include "package/file_rules.h"

#include "base/path.h"
#include "base/text.h"

namespace kw {
namespace {

constexpr size_t kLongestPath = 256;

/// `path` from its third character on.
std::string_view BehindSecondCharacter(std::string_view path) {
  size_t characters = 0;
  for (size_t i = 0; i < path.size(); ++i) {
    const bool starts_character = (static_cast<unsigned char>(path[i]) & 0xC0) != 0x80;
    if (starts_character && ++characters == 3) return path.substr(i);
  }
  return {};
}

bool IsDiskRoot(std::string_view path) { return IsLocalPath(path) && path.size() == 3; }

/// Runs the tests in their order, sets the bits that hold in `passed`, and gives the words of the first
/// refusal, "" when all is well.
std::string FirstRefusal(platform::FileSystem& files, const std::string& label, const std::string& path,
                         unsigned checks, unsigned& passed) {
  if (!HasForbiddenCharacter(path)) passed |= kCheckCharacters;
  if (IsLocalPath(path)) passed |= kCheckLocal;
  if (IsUncPath(path)) passed |= kCheckUnc;
  if (!IsDiskRoot(path)) passed |= kCheckNotRoot;
  const auto refused = [&](unsigned bit) { return (checks & bit) != 0 && (passed & bit) == 0; };

  if (CharacterCount(path) > kLongestPath)
    return label + " is too long.  Please provide a shorter path name and try again.";
  if (BehindSecondCharacter(path).find("\\\\") != std::string_view::npos)
    return label +
           " contains too many backslahes.  Please provide a path name without multiple sequential "
           "backslashes.";
  const unsigned forms = checks & (kCheckLocal | kCheckUnc);
  if (forms != 0 && (passed & forms) == 0) {
    const char* wanted = forms == kCheckLocal ? "local" : forms == kCheckUnc ? "UNC" : "local or UNC";
    return label + " " + path + " is not valid.  Please specify a valid " + wanted + " path.";
  }
  if (refused(kCheckNotRoot)) return label + " cannot be the root of a disk.  Please specify another path.";
  if (refused(kCheckCharacters))
    return label +
           " is not valid.  Folder and file names cannot contain any of the following characters: | > < "
           "\\\" ? * :";

  if ((checks & (kCheckFileExists | kCheckFileNotEmpty)) != 0) {
    const auto file = files.GetFile(path);
    if (file.ok()) passed |= kCheckFileExists;
    if (file.ok() && file->size > 0) passed |= kCheckFileNotEmpty;
  }
  if ((checks & kCheckFolderExists) != 0 && files.FolderExists(path)) passed |= kCheckFolderExists;
  if (refused(kCheckFileExists))
    return label + " " + path + " does not exist.  Please specify a valid path to an existing file.";
  if (refused(kCheckFolderExists))
    return label + " " + path + " does not exist.  Please specify a valid path to an existing folder.";
  if (refused(kCheckFileNotEmpty))
    return label + " " + path + " is empty.  Please specify a path to a valid file.";
  return {};
}

}  // namespace

bool HasForbiddenCharacter(std::string_view path) {
  return path.find_first_of("><|\"?*") != std::string_view::npos ||
         BehindSecondCharacter(path).find(':') != std::string_view::npos;
}

bool IsLocalPath(std::string_view path) {
  if (path.size() < 3 || path[1] != ':' || path[2] != '\\') return false;
  return (path[0] >= 'A' && path[0] <= 'Z') || (path[0] >= 'a' && path[0] <= 'z');
}

bool IsUncPath(std::string_view path) { return path.size() >= 3 && path.substr(0, 2) == "\\\\"; }

bool ValidatePath(platform::Services& services, std::string_view label, const std::string& path,
                  unsigned& checks, bool silent) {
  unsigned passed = 0;
  const std::string refusal = FirstRefusal(*services.files, std::string(label), path, checks, passed);
  checks = passed;
  if (refusal.empty()) return true;
  if (!silent) services.dialogs->Message(refusal);
  return false;
}

bool ValidatePath(platform::Services& services, std::string_view label, const std::string& path,
                  unsigned checks) {
  unsigned in_out = checks;
  return ValidatePath(services, label, path, in_out, false);
}

Result<bool> FileIsThere(platform::Services& services, const std::string& path) {
  const auto file = services.files->GetFile(path);
  if (file.ok()) return true;
  const int number = file.error().number;
  if (number == kErrorFileNotFound || number == kErrorPathNotFound) return false;
  return file.error();
}

std::string BrowseForFolder(platform::Services& services, const std::string& title,
                            const std::string& start_folder) {
  return services.dialogs->BrowseForFolder(title, start_folder);
}

std::string ReadIniValue(platform::Services& services, const std::string& ini_path, std::string_view section,
                         std::string_view key, std::string_view fallback) {
  return services.profiles->ReadString(ini_path, section, key, fallback, 255);
}

Status WriteIniValue(platform::Services& services, const std::string& ini_path, std::string_view section,
                     std::optional<std::string_view> key, std::optional<std::string_view> value) {
  if (!value) return services.profiles->WriteString(ini_path, section, key, std::nullopt);
  std::string line(*value);
  for (char& c : line) {
    if (c == '\r' || c == '\n') c = ' ';
  }
  return services.profiles->WriteString(ini_path, section, key, line);
}

std::string ReadRegistryString(platform::Services& services, platform::Hive hive, std::string_view key_path,
                               std::string_view value_name) {
  constexpr uint32_t kBuffer = 512;
  const auto key = services.registry->OpenKey(hive, key_path, platform::kKeyQuery);
  if (!key.ok()) return {};
  const auto value = (*key)->QueryValue(value_name, kBuffer);
  if (!value.ok() || value->type != platform::kRegSz) return {};
  return value->Text();
}

}  // namespace kw
