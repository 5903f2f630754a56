#include "settings/import_configuration.h"

#include <optional>

#include "package/file_rules.h"
#include "package/staging.h"
#include "package/xml_file.h"
#include "settings/branches.h"

namespace kw {
namespace {

using platform::Answer;
using platform::Hive;

class Import {
 public:
  explicit Import(PageContext& context)
      : context_(context), services_(context.services), run_(context.run), files_(*context.services.files) {}

  bool Run(const std::string& path, bool show_missing_message) {
    run_.SaveDifferencesOnly = false;
    if (run_.changes.Any() && !MayDiscard()) return false;
    ClearStagingBranches(services_, run_);
    folder_ = MakeConfigAppDataFolder(services_, run_);
    if (path.empty() || !files_.FileExists(path)) {
      if (show_missing_message) Tell("Configuration file " + path + " does not exist.");
      run_.ConfigAppDataFolder = folder_;
      return false;
    }
    if (!Unpack(path) || !LoadStagingBranch() || !LanguageFits()) return false;
    DecipherSiteList();
    DecipherBulwarkPreferences();
    CopyToComparisonBranch();
    if (!run_.ConfigAppDataFolder.empty()) {
      // A stale folder that is missing is no error.
      files_.DeleteFolder(run_.ConfigAppDataFolder, true).IgnoreError();
    }
    run_.ConfigAppDataFolder = folder_;
    return true;
  }

 private:
  void Tell(const std::string& text) { services_.dialogs->Message(text); }

  bool MayDiscard() {
    return services_.dialogs->Question("Any changes you have made will be discarded.",
                                       {Answer::kOk, Answer::kCancel}, Answer::kOk, "") == Answer::kOk;
  }

  bool Unpack(const std::string& path) {
    EnterProgramFolder(services_);
    // The backslash that the tool needs follows the closing quote.
    const int code =
        RunAndWait(services_, run_, context_.host, "CabArc X \"" + path + "\" *.* \"" + folder_ + "\"\\",
                   platform::WindowStyle::kHidden);
    if (context_.host.Ended()) return false;
    if (!WasCutOff(code) && files_.FileExists(folder_ + "\\KTE700.CFG")) return true;
    Tell(
        "The provided cab file does not appear to contain Kestrane Enterprise settings.  Please choose a "
        "different cab file and try again.");
    files_.DeleteFolder(folder_, true).IgnoreError();
    return false;
  }

  bool LoadStagingBranch() {
    const std::string settings = folder_ + "\\KTE700.REG";
    if (!DecryptFile(services_, folder_ + "\\KTE700.CFG", settings)) {
      Tell("Could not decrypt configuration file.");
      return false;
    }
    if (!ConvertRegistryFile(services_, settings)) {
      Tell("Invalid configuration file.");
      return false;
    }
    RunAndWait(services_, run_, context_.host, "regedit.exe /s \"" + settings + "\"",
               platform::WindowStyle::kHidden);
    if (context_.host.Ended()) return false;
    ReadDeltaConfig();
    return true;
  }

  void ReadDeltaConfig() {
    auto key = services_.registry->OpenKey(Hive::kCurrentUser, kStagingBranch, platform::kKeyQuery);
    std::optional<uint32_t> delta;
    if (key.ok()) {
      const auto value = (*key)->QueryValue("DeltaConfig", kRegistryBuffer);
      if (value.ok() && value->type == platform::kRegDword) delta = value->Dword(1);
    }
    if (!delta) {
      Tell("This configuration file is corrupted.");
    } else if (*delta != 0) {
      Tell(
          "This configuration package does not contain the entire Kestrane Enterprise settings.\r\n"
          "You will be unable to configure Kestrane Enterprise if you use this file as the source for "
          "configuration.");
      run_.SaveDifferencesOnly = true;
    }
    if (!key.ok()) return;
    // The handle may only query, so this is an attempt.
    (*key)->DeleteValue("CAP").IgnoreError();
    (*key)->DeleteValue("NCAP").IgnoreError();
  }

  bool LanguageFits() {
    run_.ProductLocale = ReadRegistryString(services_, Hive::kCurrentUser, kStagingBranch, "Language");
    if (run_.ProductLocale == "0000") return true;
    if (run_.PackageMode && run_.ProductLocale != run_.PackageLocale) {
      return RefuseLanguage(
          "Language of the configuration file does not match that of the installation package.");
    }
    if (run_.ProductInstalled && GetInstalledProductLanguage(services_, run_) != run_.ProductLocale) {
      return RefuseLanguage(
          "Language of the configuration file does not match Kestrane Enterprise on your system.");
    }
    return true;
  }

  bool RefuseLanguage(const std::string& text) {
    Tell(text);
    ClearStagingBranches(services_, run_);
    return false;
  }

  void DecipherSiteList() {
    const std::string list = folder_ + "\\SiteList.XML";
    if (!files_.FileExists(folder_ + "\\SiteList.CFG")) return;
    if (!DecryptFile(services_, folder_ + "\\SiteList.CFG", list)) {
      Tell(
          "Could not decrypt AutoUpdate repository list file.  You may configure the AutoUpdate repository "
          "list on the AutoUpdate Configuration page.");
    } else if (!IsLoadableXmlFile(services_, list)) {
      Tell(
          "The AutoUpdate repository list file does not appear to be valid.  You may configure the "
          "AutoUpdate repository list on the AutoUpdate Configuration page.");
      files_.DeleteFile(list, true).IgnoreError();
    }
  }

  void DecipherBulwarkPreferences() {
    if (!files_.FileExists(folder_ + "\\BulwarkPrefs.CFG")) return;
    if (DecryptFile(services_, folder_ + "\\BulwarkPrefs.CFG", folder_ + "\\BulwarkPrefs.TXT")) return;
    Tell(
        "Could not decrypt Tamrix Bulwark configuration file.  You may configure the Bulwark on the Tamrix "
        "Bulwark page.");
  }

  void CopyToComparisonBranch() {
    DeleteBranch(services_, Hive::kCurrentUser, kComparisonBranch);
    const auto key = services_.registry->CreateKey(Hive::kCurrentUser, kComparisonBranch, platform::kKeyAll);
    if (key.ok()) CopyBranch(services_, kStagingBranch, kComparisonBranch);
  }

  PageContext& context_;
  platform::Services& services_;
  RunState& run_;
  platform::FileSystem& files_;
  std::string folder_;
};

}  // namespace

bool ImportConfiguration(PageContext& context, const std::string& path, bool show_missing_message) {
  return Import(context).Run(path, show_missing_message);
}

}  // namespace kw
