#include "settings/branches.h"

#include "base/text.h"
#include "package/file_rules.h"
#include "package/installer_db.h"
#include "package/staging.h"

namespace kw {
namespace {

bool SaysYes(const Result<int>& result) { return result.value_or(0) != 0; }

}  // namespace

bool DeleteEmptyKey(platform::Services& services, const std::string& path) {
  EnterProgramFolder(services);
  return SaysYes(services.libraries->RegShDeleteEmptyKey(platform::Hive::kCurrentUser, path));
}

bool DeleteEmptyKeyTree(platform::Services& services, const std::string& path) {
  EnterProgramFolder(services);
  return SaysYes(services.libraries->RegShDeleteEmptyKeyEx(platform::Hive::kCurrentUser, path));
}

void CopyBranch(platform::Services& services, const std::string& source, const std::string& destination) {
  EnterProgramFolder(services);
  // Nobody looks at the result: the copy only serves a later comparison.
  services.libraries
      ->RegShCopyKey(platform::Hive::kCurrentUser, source, platform::Hive::kCurrentUser, destination)
      .status()
      .IgnoreError();
}

bool ConvertRegistryFile(platform::Services& services, const std::string& path) {
  EnterProgramFolder(services);
  return SaysYes(services.libraries->ConvertRegFile(path));
}

bool EncryptFile(platform::Services& services, const std::string& source, const std::string& destination) {
  EnterProgramFolder(services);
  return SaysYes(services.libraries->EncryptDecryptFile(true, source, destination));
}

bool DecryptFile(platform::Services& services, const std::string& source, const std::string& destination) {
  EnterProgramFolder(services);
  return SaysYes(services.libraries->EncryptDecryptFile(false, source, destination));
}

Result<std::string> EncryptText(platform::Services& services, const std::string& text) {
  EnterProgramFolder(services);
  // What fails is told without the text, which is a password.
  auto bytes = Utf8ToCodePage(text, services.system->CodePage());
  if (!bytes.ok()) {
    return {bytes.number(), "The password holds a character that code page " +
                                std::to_string(services.system->CodePage()) + " does not have."};
  }
  if (!SaysYes(services.libraries->EncryptTextInPlace(*bytes))) {
    return {kErrorFunctionFailed, "The password could not be enciphered."};
  }
  return CodePageToUtf8(*bytes, services.system->CodePage());
}

bool TakeChangeFlag(platform::Services& services, const std::string& name) {
  auto key =
      services.registry->OpenKey(platform::Hive::kCurrentUser, kStagingBranch, platform::kKeyReadWrite);
  if (!key.ok()) return false;
  const auto value = (*key)->QueryValue(name, kRegistryBuffer);
  if (!value.ok() || value->type != platform::kRegDword) return false;
  (*key)->DeleteValue(name).IgnoreError();
  return value->Dword(0) != 0;
}

uint32_t ReadDword(platform::Services& services, platform::Hive hive, const std::string& key,
                   std::string_view name, uint32_t fallback) {
  auto opened = services.registry->OpenKey(hive, key, platform::kKeyQuery);
  if (!opened.ok()) return fallback;
  const auto value = (*opened)->QueryValue(name, kRegistryBuffer);
  return value.ok() ? value->Dword(fallback) : fallback;
}

std::string MakeConfigAppDataFolder(platform::Services& services, RunState& run) {
  const std::string folder = run.TempFolder + "\\ConfigAppData" + MakeUniqueId(services, run);
  MakeOwnFolder(services, folder).IgnoreError();
  return folder;
}

}  // namespace kw
