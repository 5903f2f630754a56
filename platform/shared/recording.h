#ifndef KITWRIGHT_PLATFORM_SHARED_RECORDING_H_
#define KITWRIGHT_PLATFORM_SHARED_RECORDING_H_

#include <memory>
#include <string>

#include "base/transcript.h"
#include "platform/closed_libraries.h"
#include "platform/processes.h"

namespace kw::platform {

/// Passes child processes through and adds a line to a transcript when the end of one is seen. Both objects
/// outlive it and every process it started.
class RecordingProcesses : public Processes {
 public:
  RecordingProcesses(Processes& inner, Transcript& transcript) : inner_(inner), transcript_(transcript) {}
  Result<std::unique_ptr<Process>> Start(const std::string& command_line, WindowStyle style) override;
  Status CanStart(const std::string& command_line) override { return inner_.CanStart(command_line); }
  void SetEnvironment(const std::string& name, const std::string& value) override;
  void BringWindowToFront(const std::string& title) override;

 private:
  Processes& inner_;
  Transcript& transcript_;
};

/// Passes calls of the closed libraries through and adds a line for each:
/// `call zedutil.REG_SHDeleteKey(HKEY_CURRENT_USER, "SOFTWARE\X") -> 0`. Texts stand in quotes, clear text
/// that is about to be enciphered as ***, a window as `window`, a call that raised an error gives `raised`.
class RecordingClosedLibraries : public ClosedLibraries {
 public:
  RecordingClosedLibraries(ClosedLibraries& inner, Transcript& transcript)
      : inner_(inner), transcript_(transcript) {}
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
  Result<int> Record(const std::string& call, Result<int> result);
  ClosedLibraries& inner_;
  Transcript& transcript_;
};

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_SHARED_RECORDING_H_
