#ifndef KITWRIGHT_PLATFORM_SHARED_CLOSED_LIBRARY_CALLS_H_
#define KITWRIGHT_PLATFORM_SHARED_CLOSED_LIBRARY_CALLS_H_

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/closed_libraries.h"
#include "platform/file_system.h"
#include "platform/registry.h"
#include "platform/system.h"

namespace kw::platform {

/// The closed libraries, by the interface in platform/shared/library_abi.h; how a library is loaded and
/// called is the system's matter. A library is loaded at its first call and stays for the process's life.
class ClosedLibraryCalls : public ClosedLibraries {
 public:
  /// All outlive the object. `extension` is that of the libraries' files (".dll").
  ClosedLibraryCalls(FileSystem& files, Registry& registry, System& system, std::string extension)
      : files_(files), registry_(registry), system_(system), extension_(std::move(extension)) {}

  Result<int> IsAdmin() override;
  Result<int> RegShDeleteKey(Hive root, const std::string& subkey) override;
  Result<int> RegShDeleteEmptyKey(Hive root, const std::string& subkey) override;
  Result<int> RegShDeleteEmptyKeyEx(Hive root, const std::string& subkey) override;
  Result<int> RegShCopyKey(Hive root, const std::string& subkey, Hive destination_root,
                           const std::string& destination) override;
  Result<int> ConvertRegFile(const std::string& path) override;
  Result<int> EncryptDecryptFile(bool encrypt, const std::string& source,
                                 const std::string& destination) override;
  Result<int> EncryptTextInPlace(std::string& text) override;
  Result<int> EmalConfigZed(int mode, int flush) override;
  Result<int> EditSiteList(const std::string& help_path) override;
  Result<int> InitializeHtmlHelpPath(const std::string& context) override;
  Result<std::string> GetHtmlHelpPath() override;
  Result<int> TxUnzip(const std::string& archive, const std::string& folder) override;
  Result<int> BwkExtractInstallerFiles(const std::string& installer, const std::string& folder) override;
  Result<int> BwkCreateInstaller(const std::string& installer, const std::string& preferences,
                                 const std::string* install_folder, int fourth, int fifth) override;

 protected:
  /// Loads the library `file`: a Windows path, or a bare name that the loader looks for along its own path. A
  /// null pointer and the `reason` when it cannot.
  virtual void* LoadFile(const std::string& file, std::string& reason) = 0;
  /// An exported function, or a null pointer.
  virtual void* FindFunction(void* library, const char* name) = 0;
  /// Runs `call`, which is one call into a library. A failure stands for an exception of the system that came
  /// out.
  virtual Status Run(const std::function<void()>& call) = 0;
  /// Gives `call` what REG_SHCopyKey takes as its open destination key.
  virtual Result<int> WithOpenKey(Hive root, const std::string& path,
                                  const std::function<Result<int>(const void* key)>& call) = 0;
  /// The path by which a library finds the key that this program calls `subkey`.
  virtual std::string KeyForLibrary(Hive root, const std::string& subkey) = 0;
  /// The window that a function's own windows belong to; may be null.
  virtual void* ActiveWindow() = 0;

 private:
  std::vector<std::string> SearchFolders();
  /// kErrorModuleNotFound when there is no such library or it cannot be loaded.
  Result<void*> Load(const std::string& library);
  /// Calls `function` of `library`, and asks whether the call raised an error.
  template <typename Function, typename... Arguments>
  auto Call(const char* library, const char* function, Arguments... arguments)
      -> Result<decltype(static_cast<Function*>(nullptr)(arguments...))>;
  /// 8-bit text of this machine.
  Result<std::string> EightBit(const std::string& text);
  std::u16string KeyText(Hive root, const std::string& subkey);

  FileSystem& files_;
  Registry& registry_;
  System& system_;
  std::string extension_;
  std::map<std::string, void*> loaded_;
};

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_SHARED_CLOSED_LIBRARY_CALLS_H_
