// The closed library of the contract suite, under whatever name it is copied to. Each call writes its
// function and arguments as a line into the file that PROBE_CALL names (a Windows path). It gives
// PROBE_RESULT, and raises the error PROBE_RAISE when that is not 0; "crash" is a fault of its own
// in EditSiteList and TxUnzip.

#ifdef _WIN32
#include <windows.h>
#endif

#include <cstdlib>
#include <cstring>
#include <string>

#include "base/machine_paths.h"
#include "base/storage.h"
#include "base/text.h"
#include "platform/shared/library_abi.h"

namespace {

int g_raised = 0;

std::string Variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

/// Writes where no memory is when PROBE_RAISE says so; called before anything is allocated that would be
/// lost.
void CrashIfAsked() {
  const char* raise = std::getenv("PROBE_RAISE");
  if (raise == nullptr || std::strcmp(raise, "crash") != 0) return;
  volatile uintptr_t nowhere = 8;
  *reinterpret_cast<volatile int*>(nowhere) = 1;
}

int Call(const std::string& line) {
  const kw::MachinePaths paths = kw::MachinePaths::OfThisProcess();
  const kw::Status written =
      kw::WriteFileAtomically(kw::SystemStorage(), paths.HostPath(Variable("PROBE_CALL")), line);
  g_raised = written.ok() ? std::atoi(Variable("PROBE_RAISE").c_str()) : written.number();
  return std::atoi(Variable("PROBE_RESULT").c_str());
}

std::string Root(uintptr_t root) {
  return root == KITWRIGHT_HKEY_CURRENT_USER ? "HKCU" : root == KITWRIGHT_HKEY_LOCAL_MACHINE ? "HKLM" : "?";
}

std::string Wide(const void* text) { return kw::Utf16ToUtf8(static_cast<const char16_t*>(text)); }

}  // namespace

int LastCallRaised(void) { return g_raised; }
int IsAdmin(void) { return Call("IsAdmin"); }
int REG_SHDeleteKey(uintptr_t root, const char16_t* subkey) {
  return Call("REG_SHDeleteKey " + Root(root) + " " + Wide(subkey));
}
int REG_SHDeleteEmptyKey(uintptr_t root, const char16_t* subkey) {
  return Call("REG_SHDeleteEmptyKey " + Root(root) + " " + Wide(subkey));
}
int REG_SHDeleteEmptyKeyEx(uintptr_t root, const char16_t* subkey) {
  return Call("REG_SHDeleteEmptyKeyEx " + Root(root) + " " + Wide(subkey));
}
int REG_SHCopyKey(uintptr_t root, const char16_t* subkey, const void* open_destination_key, int zero) {
  std::string target;
#ifdef _WIN32
  const HKEY key = static_cast<HKEY>(const_cast<void*>(open_destination_key));
  const bool open = RegSetValueExW(key, L"probe", 0, REG_NONE, nullptr, 0) == ERROR_SUCCESS;
  target = open ? " to an open key" : " to no key";
#else
  const auto* key = static_cast<const KitwrightOpenKey*>(open_destination_key);
  target = " to " + Root(key->root) + " " + Wide(key->path);
#endif
  return Call("REG_SHCopyKey " + Root(root) + " " + Wide(subkey) + target + " " + std::to_string(zero));
}
int ConvertRegFile(const char16_t* path, int zero) {
  return Call("ConvertRegFile " + Wide(path) + " " + std::to_string(zero));
}
int EncryptDecrypt(int encrypt, int file, int length, const void* input, void* output) {
  const std::string start = "EncryptDecrypt " + std::to_string(encrypt) + " " + std::to_string(file) + " " +
                            std::to_string(length) + " ";
  if (file != 0) return Call(start + Wide(input) + " " + Wide(output));
  char* text = static_cast<char*>(output);
  const std::string before(text, static_cast<size_t>(length));
  for (int i = 0; i < length; ++i) ++text[i];
  return Call(start + before + (input == output ? " in place" : ""));
}
int Emal_ConfigZED(void*, int one, int mode, int flush) {
  return Call("Emal_ConfigZED " + std::to_string(one) + " " + std::to_string(mode) + " " +
              std::to_string(flush));
}
int EditSiteList(void*, int zero, const char* text_zero, const char16_t* help_path) {
  CrashIfAsked();
  return Call("EditSiteList " + std::to_string(zero) + " " + text_zero + " " + Wide(help_path));
}
int InitializeHtmlHelpPath(const char16_t* context) {
  return Call("InitializeHtmlHelpPath " + Wide(context));
}
const char16_t* GetHtmlHelpPath(void) {
  Call("GetHtmlHelpPath");
  return u"C:\\Hilfe\\größe.chm::/context.txt";
}
int TxUnzip(const char* archive, const char* folder) {
  CrashIfAsked();
  return Call(std::string("TxUnzip ") + archive + " " + folder);
}
int BWKExtractInstallerFilesA(const char* installer, const char* folder) {
  return Call(std::string("BWKExtractInstallerFilesA ") + installer + " " + folder);
}
int BWKCreateInstallerA(const char* installer, const char* preferences, const char* install_folder,
                        int fourth, int fifth) {
  return Call(std::string("BWKCreateInstallerA ") + installer + " " + preferences + " " +
              (install_folder == nullptr ? "(null)" : std::string("[") + install_folder + "]") + " " +
              std::to_string(fourth) + " " + std::to_string(fifth));
}
