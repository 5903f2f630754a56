#ifndef KITWRIGHT_PLATFORM_TESTING_FAKE_CLOSED_LIBRARIES_H_
#define KITWRIGHT_PLATFORM_TESTING_FAKE_CLOSED_LIBRARIES_H_

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/closed_libraries.h"
#include "platform/file_system.h"

namespace kw::platform::testing {

/// Closed libraries whose functions give 1, or what a test says. Functions go by their exported names
/// ("REG_SHDeleteKey", "Emal_ConfigZED", "BWKCreateInstallerA").
///
/// Some have an effect of their own, unless a test's result for them is 0: the registry functions change the
/// registry, EncryptDecrypt of a file writes "enciphered:" and the source's bytes (and back; a source without
/// that mark gives 0), of a text raises each byte by one. All others do what a test's function does.
class FakeClosedLibraries : public ClosedLibraries {
 public:
  using Arguments = std::vector<std::string>;

  FakeClosedLibraries(FileSystem& files, Registry& registry) : files_(files), registry_(registry) {}

  void Return(const std::string& function, int result) { results_[function] = result; }
  /// Calls raise an error with this number.
  void Raise(const std::string& function, int number) { raised_[function] = number; }
  /// Runs in each call, before the result is given; arguments as in the transcript, unquoted.
  void On(const std::string& function, std::function<void(const Arguments&)> run) {
    effects_[function] = std::move(run);
  }
  std::string help_path = "C:\\Kitwright\\context.chm";  ///< what GetHtmlHelpPath gives

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
  Result<int> EditSiteList(const std::string& help_path_argument) override;
  Result<int> InitializeHtmlHelpPath(const std::string& context) override;
  Result<std::string> GetHtmlHelpPath() override;
  Result<int> TxUnzip(const std::string& archive, const std::string& folder) override;
  Result<int> BwkExtractInstallerFiles(const std::string& installer, const std::string& folder) override;
  Result<int> BwkCreateInstaller(const std::string& installer, const std::string& preferences,
                                 const std::string* install_folder, int fourth, int fifth) override;

 private:
  Result<int> Call(const std::string& function, const Arguments& arguments);

  FileSystem& files_;
  Registry& registry_;
  std::map<std::string, int> results_;
  std::map<std::string, int> raised_;
  std::map<std::string, std::function<void(const Arguments&)>> effects_;
};

}  // namespace kw::platform::testing

#endif  // KITWRIGHT_PLATFORM_TESTING_FAKE_CLOSED_LIBRARIES_H_
