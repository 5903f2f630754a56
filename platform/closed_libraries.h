#ifndef KITWRIGHT_PLATFORM_CLOSED_LIBRARIES_H_
#define KITWRIGHT_PLATFORM_CLOSED_LIBRARIES_H_

#include <cstdint>
#include <memory>
#include <string>

#include "base/result.h"
#include "platform/registry.h"

namespace kw::platform {

/// The makers' closed libraries, loaded at run time and called by their exported names. A Result that fails
/// stands for a call that raised an error (the library or the export is missing, or the call failed or
/// crashed); otherwise the library's own result comes back as it is. Libraries are looked for in the
/// program's folder, the current folder, the product's folder and the system's search path.
class ClosedLibraries {
 public:
  virtual ~ClosedLibraries() = default;

  // zedutil.dll
  virtual Result<int> IsAdmin() = 0;
  virtual Result<int> RegShDeleteKey(Hive root, const std::string& subkey) = 0;  ///< "REG_SHDeleteKey"
  virtual Result<int> RegShDeleteEmptyKey(Hive root,
                                          const std::string& subkey) = 0;  ///< "REG_SHDeleteEmptyKey"
  virtual Result<int> RegShDeleteEmptyKeyEx(Hive root,
                                            const std::string& subkey) = 0;  ///< "REG_SHDeleteEmptyKeyEx"
  /// "REG_SHCopyKey": copies the tree of `subkey` into the key `destination` below `destination_root`, which
  /// exists.
  virtual Result<int> RegShCopyKey(Hive root, const std::string& subkey, Hive destination_root,
                                   const std::string& destination) = 0;
  virtual Result<int> ConvertRegFile(const std::string& path) = 0;
  /// "EncryptDecrypt" in file mode.
  virtual Result<int> EncryptDecryptFile(bool encrypt, const std::string& source,
                                         const std::string& destination) = 0;
  /// "EncryptDecrypt" in text mode, encrypting in place. `text` is 8-bit text of the system code page, whose
  /// length stays.
  virtual Result<int> EncryptTextInPlace(std::string& text) = 0;

  // TxMailScan.dll
  /// "Emal_ConfigZED"(window, 1, mode, flush); mode 2 live to staging, 3 staging to staging.
  virtual Result<int> EmalConfigZed(int mode, int flush) = 0;

  // TxPanelLib, TxHelpLib
  /// "EditSiteList"(page window, 0, "0", help path): the modal editor of the machine's live list.
  virtual Result<int> EditSiteList(const std::string& help_path) = 0;
  /// "InitializeHtmlHelpPath"("::/context.txt").
  virtual Result<int> InitializeHtmlHelpPath(const std::string& context) = 0;
  virtual Result<std::string> GetHtmlHelpPath() = 0;

  // TxUnzip
  virtual Result<int> TxUnzip(const std::string& archive, const std::string& folder) = 0;

  // bulwarkcfg.dll
  virtual Result<int> BwkExtractInstallerFiles(const std::string& installer, const std::string& folder) = 0;
  /// "BWKCreateInstallerA"(installer, preferences, install folder, 4th, 5th); a null `install_folder` passes
  /// null.
  virtual Result<int> BwkCreateInstaller(const std::string& installer, const std::string& preferences,
                                         const std::string* install_folder, int fourth, int fifth) = 0;
};

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_CLOSED_LIBRARIES_H_
