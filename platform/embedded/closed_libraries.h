#ifndef KITWRIGHT_PLATFORM_EMBEDDED_CLOSED_LIBRARIES_H_
#define KITWRIGHT_PLATFORM_EMBEDDED_CLOSED_LIBRARIES_H_

#include <map>
#include <string>
#include <vector>

#include "platform/closed_libraries.h"
#include "platform/embedded/file_system.h"
#include "platform/registry.h"
#include "platform/system.h"

namespace kw::platform::embedded {

/// The closed libraries as shared objects, by the interface in platform/shared/library_abi.h. A library is
/// loaded at its first call and stays for the process's life.
class EmbeddedClosedLibraries : public ClosedLibraries {
 public:
  EmbeddedClosedLibraries(EmbeddedFileSystem& files, Registry& registry, System& system)
      : files_(files), registry_(registry), system_(system) {}

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

 private:
  std::vector<std::string> SearchFolders();
  /// The loader's handle; kErrorModuleNotFound when there is no such library or it cannot be loaded.
  Result<void*> Load(const std::string& library);
  /// Calls `function` of `library`, and asks whether the call raised an error.
  template <typename Function, typename... Arguments>
  auto Call(const char* library, const char* function, Arguments... arguments)
      -> Result<decltype(static_cast<Function*>(nullptr)(arguments...))>;
  /// 8-bit text of this machine.
  Result<std::string> Narrow(const std::string& text);

  EmbeddedFileSystem& files_;
  Registry& registry_;
  System& system_;
  std::map<std::string, void*> loaded_;
};

}  // namespace kw::platform::embedded

#endif  // KITWRIGHT_PLATFORM_EMBEDDED_CLOSED_LIBRARIES_H_
