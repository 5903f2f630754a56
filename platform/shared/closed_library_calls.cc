#include "platform/shared/closed_library_calls.h"

#include "base/path.h"
#include "base/text.h"
#include "platform/shared/library_abi.h"

namespace kw::platform {
namespace {

constexpr const char* kProductKey = "SOFTWARE\\Orvantic\\RDX\\Kestrane Enterprise\\CurrentVersion";

uintptr_t RootOf(Hive hive) {
  return hive == Hive::kCurrentUser ? KITWRIGHT_HKEY_CURRENT_USER : KITWRIGHT_HKEY_LOCAL_MACHINE;
}

}  // namespace

std::vector<std::string> ClosedLibraryCalls::SearchFolders() {
  std::vector<std::string> folders{system_.ProgramFolder(), files_.CurrentFolder()};
  const auto key = registry_.OpenKey(Hive::kLocalMachine, kProductKey, kKeyQuery);
  if (key.ok()) {
    constexpr uint32_t kLongest = 512;
    const auto folder = (*key)->QueryValue("szInstallDir", kLongest);
    if (folder.ok() && !folder->Text().empty()) folders.push_back(folder->Text());
  }
  return folders;
}

Result<void*> ClosedLibraryCalls::Load(const std::string& library) {
  const auto known = loaded_.find(library);
  if (known != loaded_.end()) return known->second;
  const std::string name = library + extension_;
  std::string file = name;
  for (const std::string& folder : SearchFolders()) {
    const std::string path = JoinPath(folder, name);
    if (!files_.FileExists(path)) continue;
    file = path;
    break;
  }
  std::string reason;
  void* const handle = LoadFile(file, reason);
  if (handle == nullptr) {
    return Error{kErrorModuleNotFound, "Could not load the library " + library + ": " + reason + "."};
  }
  loaded_[library] = handle;
  return handle;
}

template <typename Function, typename... Arguments>
auto ClosedLibraryCalls::Call(const char* library, const char* function, Arguments... arguments)
    -> Result<decltype(static_cast<Function*>(nullptr)(arguments...))> {
  KW_ASSIGN_OR_RETURN(void* const handle, Load(library));
  auto* const called = reinterpret_cast<Function*>(FindFunction(handle, function));
  if (called == nullptr) {
    return Error{kErrorProcedureNotFound,
                 std::string("The library ") + library + " has no function " + function + "."};
  }
  const auto failure = [&](int number, const std::string& how) {
    return Error{number, std::string("The call of ") + function + " in the library " + library +
                             " failed with " + how + "."};
  };
  decltype(called(arguments...)) result{};
  const Status ran = Run([&] { result = called(arguments...); });
  if (!ran.ok()) return failure(ran.number(), ran.message());
  auto* const raised = reinterpret_cast<decltype(::LastCallRaised)*>(FindFunction(handle, "LastCallRaised"));
  const int number = raised == nullptr ? 0 : raised();
  if (number != 0) return failure(number, "error " + std::to_string(number));
  return result;
}

Result<std::string> ClosedLibraryCalls::EightBit(const std::string& text) {
  return Utf8ToCodePage(text, system_.CodePage());
}

std::u16string ClosedLibraryCalls::KeyText(Hive root, const std::string& subkey) {
  return Utf8ToUtf16(KeyForLibrary(root, subkey));
}

Result<int> ClosedLibraryCalls::IsAdmin() { return Call<decltype(::IsAdmin)>("zedutil", "IsAdmin"); }

Result<int> ClosedLibraryCalls::RegShDeleteKey(Hive root, const std::string& subkey) {
  const std::u16string wide = KeyText(root, subkey);
  return Call<decltype(::REG_SHDeleteKey)>("zedutil", "REG_SHDeleteKey", RootOf(root), wide.c_str());
}

Result<int> ClosedLibraryCalls::RegShDeleteEmptyKey(Hive root, const std::string& subkey) {
  const std::u16string wide = KeyText(root, subkey);
  return Call<decltype(::REG_SHDeleteEmptyKey)>("zedutil", "REG_SHDeleteEmptyKey", RootOf(root),
                                                wide.c_str());
}

Result<int> ClosedLibraryCalls::RegShDeleteEmptyKeyEx(Hive root, const std::string& subkey) {
  const std::u16string wide = KeyText(root, subkey);
  return Call<decltype(::REG_SHDeleteEmptyKeyEx)>("zedutil", "REG_SHDeleteEmptyKeyEx", RootOf(root),
                                                  wide.c_str());
}

Result<int> ClosedLibraryCalls::RegShCopyKey(Hive root, const std::string& subkey, Hive destination_root,
                                             const std::string& destination) {
  const std::u16string wide = KeyText(root, subkey);
  return WithOpenKey(destination_root, destination, [&](const void* key) {
    return Call<decltype(::REG_SHCopyKey)>("zedutil", "REG_SHCopyKey", RootOf(root), wide.c_str(), key, 0);
  });
}

Result<int> ClosedLibraryCalls::ConvertRegFile(const std::string& path) {
  const std::u16string wide = Utf8ToUtf16(path);
  return Call<decltype(::ConvertRegFile)>("zedutil", "ConvertRegFile", wide.c_str(), 0);
}

Result<int> ClosedLibraryCalls::EncryptDecryptFile(bool encrypt, const std::string& source,
                                                   const std::string& destination) {
  const std::u16string from = Utf8ToUtf16(source);
  std::u16string to = Utf8ToUtf16(destination);
  return Call<decltype(::EncryptDecrypt)>("zedutil", "EncryptDecrypt", encrypt ? 1 : 0, 1, 0, from.c_str(),
                                          to.data());
}

Result<int> ClosedLibraryCalls::EncryptTextInPlace(std::string& text) {
  return Call<decltype(::EncryptDecrypt)>("zedutil", "EncryptDecrypt", 1, 0, static_cast<int>(text.size()),
                                          text.data(), text.data());
}

Result<int> ClosedLibraryCalls::EmalConfigZed(int mode, int flush) {
  return Call<decltype(::Emal_ConfigZED)>("TxMailScan", "Emal_ConfigZED", ActiveWindow(), 1, mode, flush);
}

Result<int> ClosedLibraryCalls::EditSiteList(const std::string& help_path) {
  const std::u16string wide = Utf8ToUtf16(help_path);
  return Call<decltype(::EditSiteList)>("TxPanelLib", "EditSiteList", ActiveWindow(), 0, "0", wide.c_str());
}

Result<int> ClosedLibraryCalls::InitializeHtmlHelpPath(const std::string& context) {
  const std::u16string wide = Utf8ToUtf16(context);
  return Call<decltype(::InitializeHtmlHelpPath)>("TxHelpLib", "InitializeHtmlHelpPath", wide.c_str());
}

Result<std::string> ClosedLibraryCalls::GetHtmlHelpPath() {
  KW_ASSIGN_OR_RETURN(const char16_t* const path,
                      Call<decltype(::GetHtmlHelpPath)>("TxHelpLib", "GetHtmlHelpPath"));
  return path == nullptr ? std::string() : Utf16ToUtf8(path);
}

Result<int> ClosedLibraryCalls::TxUnzip(const std::string& archive, const std::string& folder) {
  KW_ASSIGN_OR_RETURN(const std::string from, EightBit(archive));
  KW_ASSIGN_OR_RETURN(const std::string to, EightBit(folder));
  return Call<decltype(::TxUnzip)>("TxUnzip", "TxUnzip", from.c_str(), to.c_str());
}

Result<int> ClosedLibraryCalls::BwkExtractInstallerFiles(const std::string& installer,
                                                         const std::string& folder) {
  KW_ASSIGN_OR_RETURN(const std::string from, EightBit(installer));
  KW_ASSIGN_OR_RETURN(const std::string to, EightBit(folder));
  return Call<decltype(::BWKExtractInstallerFilesA)>("bulwarkcfg", "BWKExtractInstallerFilesA", from.c_str(),
                                                     to.c_str());
}

Result<int> ClosedLibraryCalls::BwkCreateInstaller(const std::string& installer,
                                                   const std::string& preferences,
                                                   const std::string* install_folder, int fourth, int fifth) {
  KW_ASSIGN_OR_RETURN(const std::string file, EightBit(installer));
  KW_ASSIGN_OR_RETURN(const std::string settings, EightBit(preferences));
  KW_ASSIGN_OR_RETURN(const std::string folder, EightBit(install_folder == nullptr ? "" : *install_folder));
  return Call<decltype(::BWKCreateInstallerA)>(
      "bulwarkcfg", "BWKCreateInstallerA", file.c_str(), settings.c_str(),
      install_folder == nullptr ? nullptr : folder.c_str(), fourth, fifth);
}

}  // namespace kw::platform
