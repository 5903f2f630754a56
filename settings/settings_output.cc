#include "settings/settings_output.h"

#include <cstdint>
#include <vector>

#include "base/text.h"
#include "package/file_rules.h"
#include "package/installer_db.h"
#include "package/staging.h"
#include "pages/frm_registry_settings.h"
#include "pages/wizard_dialog.h"
#include "settings/branches.h"
#include "settings/frm_auto_update.h"
#include "settings/frm_scheduled_scan.h"
#include "settings/scanner_pages.h"

namespace kw {
namespace {

using platform::Hive;
using platform::RegistryValue;

class Output {
 public:
  explicit Output(PageContext& context)
      : context_(context),
        services_(context.services),
        run_(context.run),
        registry_page_(context.navigator.Get<frmRegistrySettings>()),
        word_(context.run.PackageMode ? "installation" : "configuration") {}

  bool Run() {
    FlushPages();
    if (ReadDword(services_, Hive::kLocalMachine, kLiveVersionKey, "bZEDIgnoreLocale", 0) != 0) {
      run_.ProductLocale = "0000";
    }
    WriteRootValues();
    const bool removed = RemoveOld("KTE700.REG");
    // The line ends with the key path: its quote stays open.
    RunAndWait(services_, run_, context_.host,
               "regedit /s /e \"" + Folder("KTE700.REG") + "\" \"HKEY_CURRENT_USER\\" + kStagingBranch,
               platform::WindowStyle::kHidden);
    if (!removed || !EncipherFiles()) {
      services_.dialogs->Message(
          "Could not encrypt the configuration file, Kestrane Enterprise application settings cannot be "
          "added to the " +
          word_ + " package.");
      return false;
    }
    // Whatever went wrong on the way shows as a cabinet that cannot be delivered.
    if (!RemoveOld(run_.SettingsFileName) || !MakeSettingsCabinet(context_).ok() || !Deliver()) {
      services_.dialogs->Message(
          "Could not copy settings file.  Kestrane Enterprise application settings cannot be "
          "added to the " +
          word_ + " package.");
      return false;
    }
    return true;
  }

 private:
  std::string Folder(const std::string& file) const { return run_.ConfigAppDataFolder + "\\" + file; }

  // A file that an import left in the folder must not pass for the one that could not be made.
  bool RemoveOld(const std::string& file) {
    const auto there = FileIsThere(services_, Folder(file));
    return there.ok() && (!*there || services_.files->DeleteFile(Folder(file), true).ok());
  }

  void FlushPages() {
    Navigator& pages = context_.navigator;
    if (run_.SaveDifferencesOnly) {
      StripUnchangedValues(context_, "");
    } else if (run_.SettingsFromSystem) {
      pages.Get<frmOnAccessMonitor>().TransferSettings();
      pages.Get<frmEmailScan>().TransferSettings();
      pages.Get<frmBeaconryClient>().TransferSettings();
      pages.Get<frmUIOptions>().TransferSettings();
    }
    if (run_.SettingsFromSystem) {
      // Behind the stripping: tasks from the live system are flushed whole.
      pages.Get<frmScheduledScan>().TransferSettings();
      pages.Get<frmAutoUpdate>().TransferSettings();
    }
  }

  void WriteRootValues() {
    auto root = services_.registry->CreateKey(Hive::kCurrentUser, kStagingBranch, platform::kKeyAll);
    if (!root.ok()) return;
    const auto write = [&root](const char* name, const RegistryValue& value) {
      (*root)->SetValue(name, value).IgnoreError();
    };
    const auto add = [](const TaskPage& page) {
      return RegistryValue::OfDword(page.AddTasks->Value() ? 1 : 0);
    };
    write("AddScheduledTasks", add(context_.navigator.Get<frmScheduledScan>()));
    write("AddUpdateTasks", add(context_.navigator.Get<frmAutoUpdate>()));
    write("DeltaConfig", RegistryValue::OfDword(run_.SaveDifferencesOnly ? 1 : 0));
    write("Language", RegistryValue::OfText(run_.ProductLocale));
  }

  bool EncipherFiles() {
    if (!EncryptFile(services_, Folder("KTE700.REG"), Folder("KTE700.CFG"))) return false;
    for (const frmRegistrySettings::Slot* slot : registry_page_.ChosenSlots()) {
      if (slot->box->Text().empty()) continue;
      const std::string enciphered = std::string(slot->base_name) + ".CFG";
      // One of the source that did not decipher travels on as it is.
      const bool from_source = slot->box->Text().starts_with(kInPackage);
      if ((!from_source && !RemoveOld(enciphered)) || !EncipherIfPresent(slot->path, enciphered))
        return false;
    }
    return EncipherIfPresent(Folder("SiteList.XML"), "SiteList.CFG") &&
           EncipherIfPresent(Folder("BulwarkPrefs.TXT"), "BulwarkPrefs.CFG");
  }

  bool EncipherIfPresent(const std::string& plain, const std::string& enciphered) {
    const auto there = FileIsThere(services_, plain);
    return there.ok() && (!*there || EncryptFile(services_, plain, Folder(enciphered)));
  }

  bool Deliver() {
    const std::string cabinet = Folder(run_.SettingsFileName);
    if (run_.PackageMode && !run_.ProductIs700) {
      if (!services_.files->FileExists(cabinet)) return false;
      return InstallerDb::Working(services_, run_).ReplaceBinary("ktecfg.cab", cabinet).ok();
    }
    return CopyFileToFolder(services_, cabinet, run_.DestinationFolder, run_.DestinationFileList);
  }

  PageContext& context_;
  platform::Services& services_;
  RunState& run_;
  frmRegistrySettings& registry_page_;
  std::string word_;
};

bool IsKeptWhole(const std::string& name) {
  return EqualsNoCase(name, "DefaultTask") || EqualsNoCase(name, "Tasks") || EqualsNoCase(name, "Recipients");
}

}  // namespace

bool AddProductSettings(PageContext& context) { return Output(context).Run(); }

void StripUnchangedValues(PageContext& context, const std::string& path) {
  platform::Services& services = context.services;
  const std::string staging_path = kStagingBranch + path;
  const bool from_system = context.run.SettingsFromSystem;
  auto staging = services.registry->OpenKey(Hive::kCurrentUser, staging_path, platform::kKeyReadWrite);
  auto source =
      services.registry->OpenKey(from_system ? Hive::kLocalMachine : Hive::kCurrentUser,
                                 (from_system ? kLiveBranch : kComparisonBranch) + path, platform::kKeyQuery);
  if (staging.ok() && source.ok()) {
    const auto counts = (*staging)->QueryInfo().value_or({});
    // Downwards, because keys and values go on the way.
    for (int64_t index = counts.subkeys; index >= 0; --index) {
      const auto name = (*staging)->EnumKey(static_cast<uint32_t>(index), kRegistryBuffer);
      if (name.ok() && !name->empty() && !IsKeptWhole(*name))
        StripUnchangedValues(context, path + "\\" + *name);
    }
    for (int64_t index = counts.values; index >= 0; --index) {
      const auto value = (*staging)->EnumValue(static_cast<uint32_t>(index), kRegistryBuffer);
      if (!value.ok() || value->name.empty()) continue;
      const auto original = (*source)->QueryValue(value->name, kRegistryBuffer);
      if (original.ok() && *original == value->value) (*staging)->DeleteValue(value->name).IgnoreError();
    }
  }
  if (staging.ok()) staging->reset();
  if (source.ok()) source->reset();
  DeleteEmptyKey(services, staging_path);
}

Status MakeSettingsCabinet(PageContext& context) {
  platform::Services& services = context.services;
  RunState& run = context.run;
  const std::string& folder = run.ConfigAppDataFolder;
  const auto quoted = [](const std::string& text) { return "\"" + text + "\""; };
  std::vector<std::string> lines = {
      ".OPTION EXPLICIT",
      ".Set Cabinet=ON",
      ".Set Compress=ON",
      ".Set ReservePerCabinetSize=6144",
      ".Set DiskDirectoryTemplate=",
      ".Set CompressionType=MSZIP",
      ".Set MaxDiskSize=CDRom",
      ".Set CompressionLevel=7",
      ".Set RptFileName=" + folder + "\\KTE700.RPT",
      ".Set CompressionMemory=21",
      ".Set CabinetNameTemplate=" + quoted(run.SettingsFileName),
      ".Set DiskDirectoryTemplate=" + quoted(folder),
      quoted(folder + "\\KTE700.CFG"),
  };
  const auto list_if_there = [&](const std::string& name) -> Status {
    const std::string path = folder + "\\" + name;
    KW_ASSIGN_OR_RETURN(const bool there, FileIsThere(services, path));
    if (there) lines.push_back(quoted(path));
    return {};
  };
  for (const frmRegistrySettings::Slot* slot : context.navigator.Get<frmRegistrySettings>().ChosenSlots()) {
    if (slot->box->Text().empty()) continue;
    KW_RETURN_IF_ERROR(list_if_there(std::string(slot->base_name) + ".CFG"));
  }
  KW_RETURN_IF_ERROR(list_if_there("SiteList.CFG"));
  KW_RETURN_IF_ERROR(list_if_there("BulwarkPrefs.CFG"));
  std::string text;
  for (const std::string& line : lines) text.append(line).append("\r\n");
  KW_ASSIGN_OR_RETURN(const std::string bytes, Utf8ToCodePage(text, services.system->CodePage()));
  KW_RETURN_IF_ERROR(services.files->WriteFile(folder + "\\KTE700.DDF", bytes));
  EnterProgramFolder(services);
  RunAndWait(services, run, context.host,
             services.system->ProgramFolder() + "\\MakeCab.exe /f " + folder + "\\KTE700.DDF",
             platform::WindowStyle::kHidden);
  return {};
}

}  // namespace kw
