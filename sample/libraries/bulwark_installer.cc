#include "sample/libraries/bulwark_installer.h"

#include <filesystem>
#include <random>

#include "formats/ini_file.h"
#include "sample/archive/appended_cabinet.h"

namespace kw::sample {
namespace {

/// A host folder for the time of one call.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::random_device numbers;
    std::error_code error;
    const std::filesystem::path temp = std::filesystem::temp_directory_path(error);
    for (int i = 0; i < 100 && !temp.empty() && path_.empty(); ++i) {
      const auto path = temp / ("bulwark-" + std::to_string(numbers()));
      if (std::filesystem::create_directory(path, error)) path_ = path.string();
    }
  }
  ~ScratchFolder() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

Status WriteDescriptor(Storage& storage, const std::string& path, const BulwarkChoices& choices,
                       int code_page) {
  const auto present = ReadWholeFile(storage, path);
  if (!present.ok() && present.error().number != kErrorFileNotFound) return present.error();
  formats::IniFile descriptor =
      formats::IniFile::Parse(present.value_or("[General]\r\nLangID=0000\r\n"), code_page);
  KW_RETURN_IF_ERROR(descriptor.Write("General", "InstallPath", choices.install_folder));
  KW_RETURN_IF_ERROR(descriptor.Write("General", "STC", choices.managed ? "1" : "0"));
  KW_RETURN_IF_ERROR(descriptor.Write("General", "Silent", choices.silent ? "1" : "0"));
  return WriteFileAtomically(storage, path, descriptor.Serialize());
}

}  // namespace

Status ExtractBulwark(Storage& storage, const std::string& installer, const std::string& folder,
                      int code_page) {
  return ExtractAppendedCabinet(storage, installer, folder, code_page,
                                {"MDF.INI", "BulwarkPrefs.TXT", "BulwarkPref.TXT"});
}

Status RewriteBulwark(Storage& storage, const std::string& installer, const BulwarkChoices& choices,
                      int code_page) {
  const ScratchFolder scratch;
  if (scratch.path().empty()) return Status(kErrorIo, "There is no room for temporary files.");
  // Everything that the installer carries stays, but for what is chosen anew.
  KW_RETURN_IF_ERROR(ExtractAppendedCabinet(storage, installer, scratch.path(), code_page));
  KW_RETURN_IF_ERROR(WriteDescriptor(storage, scratch.path() + "/MDF.INI", choices, code_page));
  if (!choices.preferences.empty()) {
    KW_ASSIGN_OR_RETURN(const std::string preferences, ReadWholeFile(storage, choices.preferences));
    KW_RETURN_IF_ERROR(WriteFileAtomically(storage, scratch.path() + "/BulwarkPrefs.TXT", preferences));
    const std::string other_name = scratch.path() + "/BulwarkPref.TXT";
    if (storage.Exists(other_name)) KW_RETURN_IF_ERROR(WriteFileAtomically(storage, other_name, preferences));
  }
  KW_ASSIGN_OR_RETURN(const auto files, FilesBelow(scratch.path()));
  return WriteBehindProgram(storage, installer, files, installer, code_page);
}

}  // namespace kw::sample
