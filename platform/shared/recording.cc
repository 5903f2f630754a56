#include "platform/shared/recording.h"

#include <utility>

#include "platform/shared/transcript_lines.h"

namespace kw::platform {
namespace {

class RecordingProcess : public Process {
 public:
  RecordingProcess(std::unique_ptr<Process> inner, Transcript& transcript, std::string command_line,
                   WindowStyle style)
      : inner_(std::move(inner)),
        transcript_(transcript),
        command_line_(std::move(command_line)),
        style_(style) {}

  int ExitCode() override {
    const int code = inner_->ExitCode();
    if (code != kStillActive && !told_) {
      told_ = true;
      transcript_.Add(RunLine(command_line_, style_, code));
    }
    return code;
  }
  std::string ForegroundWindowTitle() override { return inner_->ForegroundWindowTitle(); }

 private:
  std::unique_ptr<Process> inner_;
  Transcript& transcript_;
  std::string command_line_;
  WindowStyle style_;
  bool told_ = false;
};

std::string Quoted(const std::string& text) { return "\"" + TranscriptText(text) + "\""; }

std::string Root(Hive hive) {
  return hive == Hive::kCurrentUser ? "HKEY_CURRENT_USER" : "HKEY_LOCAL_MACHINE";
}

std::string KeyCall(const char* function, Hive root, const std::string& subkey) {
  return std::string("zedutil.") + function + "(" + Root(root) + ", " + Quoted(subkey) + ")";
}

}  // namespace

Result<std::unique_ptr<Process>> RecordingProcesses::Start(const std::string& command_line,
                                                           WindowStyle style) {
  KW_ASSIGN_OR_RETURN(std::unique_ptr<Process> inner, inner_.Start(command_line, style));
  return std::unique_ptr<Process>(
      std::make_unique<RecordingProcess>(std::move(inner), transcript_, command_line, style));
}

void RecordingProcesses::SetEnvironment(const std::string& name, const std::string& value) {
  inner_.SetEnvironment(name, value);
}

void RecordingProcesses::BringWindowToFront(const std::string& title) { inner_.BringWindowToFront(title); }

Result<int> RecordingClosedLibraries::Record(const std::string& call, Result<int> result) {
  transcript_.Add("call " + call + " -> " + (result.ok() ? std::to_string(*result) : "raised"));
  return result;
}

Result<int> RecordingClosedLibraries::IsAdmin() { return Record("zedutil.IsAdmin()", inner_.IsAdmin()); }

Result<int> RecordingClosedLibraries::RegShDeleteKey(Hive root, const std::string& subkey) {
  return Record(KeyCall("REG_SHDeleteKey", root, subkey), inner_.RegShDeleteKey(root, subkey));
}

Result<int> RecordingClosedLibraries::RegShDeleteEmptyKey(Hive root, const std::string& subkey) {
  return Record(KeyCall("REG_SHDeleteEmptyKey", root, subkey), inner_.RegShDeleteEmptyKey(root, subkey));
}

Result<int> RecordingClosedLibraries::RegShDeleteEmptyKeyEx(Hive root, const std::string& subkey) {
  return Record(KeyCall("REG_SHDeleteEmptyKeyEx", root, subkey), inner_.RegShDeleteEmptyKeyEx(root, subkey));
}

Result<int> RecordingClosedLibraries::RegShCopyKey(Hive root, const std::string& subkey,
                                                   Hive destination_root, const std::string& destination) {
  return Record("zedutil.REG_SHCopyKey(" + Root(root) + ", " + Quoted(subkey) + ", " +
                    Root(destination_root) + "\\" + TranscriptText(destination) + ", 0)",
                inner_.RegShCopyKey(root, subkey, destination_root, destination));
}

Result<int> RecordingClosedLibraries::ConvertRegFile(const std::string& path) {
  return Record("zedutil.ConvertRegFile(" + Quoted(path) + ", 0)", inner_.ConvertRegFile(path));
}

Result<int> RecordingClosedLibraries::EncryptDecryptFile(bool encrypt, const std::string& source,
                                                         const std::string& destination) {
  return Record(std::string("zedutil.EncryptDecrypt(") + (encrypt ? "1" : "0") + ", 1, 0, " + Quoted(source) +
                    ", " + Quoted(destination) + ")",
                inner_.EncryptDecryptFile(encrypt, source, destination));
}

Result<int> RecordingClosedLibraries::EncryptTextInPlace(std::string& text) {
  const std::string length = std::to_string(text.size());
  return Record("zedutil.EncryptDecrypt(1, 0, " + length + ", ***, ***)", inner_.EncryptTextInPlace(text));
}

Result<int> RecordingClosedLibraries::EmalConfigZed(int mode, int flush) {
  return Record(
      "TxMailScan.Emal_ConfigZED(window, 1, " + std::to_string(mode) + ", " + std::to_string(flush) + ")",
      inner_.EmalConfigZed(mode, flush));
}

Result<int> RecordingClosedLibraries::EditSiteList(const std::string& help_path) {
  return Record("TxPanelLib.EditSiteList(window, 0, \"0\", " + Quoted(help_path) + ")",
                inner_.EditSiteList(help_path));
}

Result<int> RecordingClosedLibraries::InitializeHtmlHelpPath(const std::string& context) {
  return Record("TxHelpLib.InitializeHtmlHelpPath(" + Quoted(context) + ")",
                inner_.InitializeHtmlHelpPath(context));
}

Result<std::string> RecordingClosedLibraries::GetHtmlHelpPath() {
  auto result = inner_.GetHtmlHelpPath();
  transcript_.Add("call TxHelpLib.GetHtmlHelpPath() -> " + (result.ok() ? Quoted(*result) : "raised"));
  return result;
}

Result<int> RecordingClosedLibraries::TxUnzip(const std::string& archive, const std::string& folder) {
  return Record("TxUnzip.TxUnzip(" + Quoted(archive) + ", " + Quoted(folder) + ")",
                inner_.TxUnzip(archive, folder));
}

Result<int> RecordingClosedLibraries::BwkExtractInstallerFiles(const std::string& installer,
                                                               const std::string& folder) {
  return Record("bulwarkcfg.BWKExtractInstallerFilesA(" + Quoted(installer) + ", " + Quoted(folder) + ")",
                inner_.BwkExtractInstallerFiles(installer, folder));
}

Result<int> RecordingClosedLibraries::BwkCreateInstaller(const std::string& installer,
                                                         const std::string& preferences,
                                                         const std::string* install_folder, int fourth,
                                                         int fifth) {
  return Record("bulwarkcfg.BWKCreateInstallerA(" + Quoted(installer) + ", " + Quoted(preferences) + ", " +
                    (install_folder == nullptr ? "null" : Quoted(*install_folder)) + ", " +
                    std::to_string(fourth) + ", " + std::to_string(fifth) + ")",
                inner_.BwkCreateInstaller(installer, preferences, install_folder, fourth, fifth));
}

}  // namespace kw::platform
