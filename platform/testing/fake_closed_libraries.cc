#include "platform/testing/fake_closed_libraries.h"

#include <string_view>

#include "platform/registry_trees.h"

namespace kw::platform::testing {
namespace {

constexpr std::string_view kMark = "enciphered:";

std::string RootName(Hive root) {
  return root == Hive::kCurrentUser ? "HKEY_CURRENT_USER" : "HKEY_LOCAL_MACHINE";
}

}  // namespace

Result<int> FakeClosedLibraries::Call(const std::string& function, const Arguments& arguments) {
  if (const auto effect = effects_.find(function); effect != effects_.end()) effect->second(arguments);
  if (const auto raised = raised_.find(function); raised != raised_.end()) {
    return Error{raised->second, "The call of " + function + " failed."};
  }
  const auto result = results_.find(function);
  return result == results_.end() ? 1 : result->second;
}

Result<int> FakeClosedLibraries::IsAdmin() { return Call("IsAdmin", {}); }

Result<int> FakeClosedLibraries::RegShDeleteKey(Hive root, const std::string& subkey) {
  KW_ASSIGN_OR_RETURN(const int result, Call("REG_SHDeleteKey", {RootName(root), subkey}));
  // Nobody looks at the result; a branch that is not there is no failure of a test.
  if (result != 0) DeleteTree(registry_, root, subkey).IgnoreError();
  return result;
}

Result<int> FakeClosedLibraries::RegShDeleteEmptyKey(Hive root, const std::string& subkey) {
  KW_ASSIGN_OR_RETURN(const int result, Call("REG_SHDeleteEmptyKey", {RootName(root), subkey}));
  return result != 0 && DeleteEmptyKey(registry_, root, subkey) ? result : 0;
}

Result<int> FakeClosedLibraries::RegShDeleteEmptyKeyEx(Hive root, const std::string& subkey) {
  KW_ASSIGN_OR_RETURN(const int result, Call("REG_SHDeleteEmptyKeyEx", {RootName(root), subkey}));
  return result != 0 && DeleteEmptyKeyTree(registry_, root, subkey) ? result : 0;
}

Result<int> FakeClosedLibraries::RegShCopyKey(Hive root, const std::string& subkey, Hive destination_root,
                                              const std::string& destination) {
  KW_ASSIGN_OR_RETURN(const int result, Call("REG_SHCopyKey", {RootName(root), subkey,
                                                               RootName(destination_root), destination}));
  const bool copied = result != 0 && CopyTree(registry_, root, subkey, destination_root, destination).ok();
  return copied ? result : 0;
}

Result<int> FakeClosedLibraries::ConvertRegFile(const std::string& path) {
  return Call("ConvertRegFile", {path});
}

Result<int> FakeClosedLibraries::EncryptDecryptFile(bool encrypt, const std::string& source,
                                                    const std::string& destination) {
  KW_ASSIGN_OR_RETURN(const int result,
                      Call("EncryptDecrypt", {encrypt ? "1" : "0", "1", "0", source, destination}));
  if (result == 0) return 0;
  const auto bytes = files_.ReadFile(source);
  if (!bytes.ok()) return 0;
  std::string converted;
  if (encrypt) {
    converted = std::string(kMark) + *bytes;
  } else {
    if (!bytes->starts_with(kMark)) return 0;
    converted = bytes->substr(kMark.size());
  }
  return files_.WriteFile(destination, converted).ok() ? result : 0;
}

Result<int> FakeClosedLibraries::EncryptTextInPlace(std::string& text) {
  KW_ASSIGN_OR_RETURN(const int result,
                      Call("EncryptDecrypt", {"1", "0", std::to_string(text.size()), text, text}));
  if (result == 0) return 0;
  for (char& c : text) c = static_cast<char>(c + 1);
  return result;
}

Result<int> FakeClosedLibraries::EmalConfigZed(int mode, int flush) {
  return Call("Emal_ConfigZED", {"window", "1", std::to_string(mode), std::to_string(flush)});
}

Result<int> FakeClosedLibraries::EditSiteList(const std::string& help_path_argument) {
  return Call("EditSiteList", {"window", "0", "0", help_path_argument});
}

Result<int> FakeClosedLibraries::InitializeHtmlHelpPath(const std::string& context) {
  return Call("InitializeHtmlHelpPath", {context});
}

Result<std::string> FakeClosedLibraries::GetHtmlHelpPath() {
  KW_RETURN_IF_ERROR(Call("GetHtmlHelpPath", {}).status());
  return help_path;
}

Result<int> FakeClosedLibraries::TxUnzip(const std::string& archive, const std::string& folder) {
  return Call("TxUnzip", {archive, folder});
}

Result<int> FakeClosedLibraries::BwkExtractInstallerFiles(const std::string& installer,
                                                          const std::string& folder) {
  return Call("BWKExtractInstallerFilesA", {installer, folder});
}

Result<int> FakeClosedLibraries::BwkCreateInstaller(const std::string& installer,
                                                    const std::string& preferences,
                                                    const std::string* install_folder, int fourth,
                                                    int fifth) {
  return Call("BWKCreateInstallerA",
              {installer, preferences, install_folder == nullptr ? "null" : *install_folder,
               std::to_string(fourth), std::to_string(fifth)});
}

}  // namespace kw::platform::testing
