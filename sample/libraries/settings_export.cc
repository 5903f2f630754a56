#include "sample/libraries/settings_export.h"

#include "base/text.h"
#include "formats/reg_file.h"

namespace kw::sample {
namespace {

constexpr const char* kStagingKey = "HKEY_CURRENT_USER\\SOFTWARE\\Orvantic\\ZED";
constexpr const char* kLiveKey = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Orvantic\\RDX";

/// The place of a key in the staging branch; "" for a key that holds no settings.
std::string StagedKey(const std::string& key) {
  for (const std::string branch : {kStagingKey, kLiveKey}) {
    if (EqualsNoCase(key, branch)) return kStagingKey;
    if (StartsWithNoCase(key, branch + "\\")) return kStagingKey + key.substr(branch.size());
  }
  return "";
}

}  // namespace

Status ConvertSettingsExport(Storage& storage, const std::string& path, int code_page) {
  const Error refused{kErrorInvalidData, path + " is no settings export."};
  KW_ASSIGN_OR_RETURN(const std::string bytes, ReadWholeFile(storage, path));
  KW_ASSIGN_OR_RETURN(const formats::RegFile file, formats::ParseRegFile(bytes, code_page));
  if (file.bad_lines != 0 || file.keys.empty()) return refused;
  formats::RegFileWriter writer;
  for (const formats::RegFileKey& key : file.keys) {
    const std::string staged = StagedKey(key.path);
    if (staged.empty() || key.deleted) return refused;
    writer.AddKey(staged);
    for (const formats::RegFileValue& value : key.values) {
      if (value.deleted) return refused;
      writer.AddValue(value.name, value.type, value.data);
    }
  }
  return WriteFileAtomically(storage, path, writer.File());
}

}  // namespace kw::sample
