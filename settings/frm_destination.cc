#include "settings/frm_destination.h"

#include "base/path.h"
#include "package/clean_up.h"
#include "package/file_rules.h"
#include "package/source_package.h"
#include "pages/folder_box.h"
#include "settings/branches.h"

namespace kw {
namespace {

using platform::Answer;

constexpr unsigned kFolderChecks = kCheckCharacters | kCheckLocal | kCheckUnc;

// Whether a typed folder ends in a "\" that comes off.
bool HasSpareBackslash(const std::string& text) {
  return text.ends_with('\\') && (text.size() >= 4 || (text.size() > 1 && text[1] == ':'));
}

}  // namespace

frmDestination::frmDestination(PageContext& context)
    : WizardPage(context, kName, "Destination", "Label4", "Specify configuration output options.", 1005),
      GenericConfig(*this, "GenericConfig",
                    "Create &one configuration package for both servers and workstations"),
      WorkstationConfig(*this, "WorkstationConfig", "Create &workstation configuration package"),
      ServerConfig(*this, "ServerConfig", "Create &server configuation package"),
      Label1(*this, "Label1", "New &configuration folder:"),
      DestConfigFolder(*this, "DestConfigFolder"),
      ConfigBrowse(*this, "ConfigBrowse", "B&rowse...") {
  ConfigBrowse.on_click = [this] {
    BrowseForFolderInto(services_, DestConfigFolder, "Select Destination Folder");
  };
  AddButtons();
}

ui::Layout frmDestination::PageLayout() {
  using namespace ui;
  return Column({Place(GenericConfig), Place(WorkstationConfig), Place(ServerConfig),
                 Fields({Place(Label1), Row({Place(DestConfigFolder, 1), Place(ConfigBrowse)})}), Space()},
                1);
}

void frmDestination::LoadPage() {
  if (!run_.PackageMode && !run_.AnyFeatureInstalled) navigator_.BuildSettingsPageList();
  GenericConfig.SetValue(true);
}

void frmDestination::ActivatePage() {
  navigator_.SetPageNeverConfigured(Caption(), DestConfigFolder.Text().empty());
}

bool frmDestination::HasDestination() {
  if (!DestConfigFolder.Text().empty()) return true;
  services_.dialogs->Message("Please enter a destination.");
  DestConfigFolder.SelectField();
  return false;
}

void frmDestination::OnNext() {
  const std::string name = navigator_.NextPageName();
  if (HasDestination()) ValidateDestination(name);
}

void frmDestination::OnFinish() {
  if (HasDestination()) ValidateDestination("Finish");
}

void frmDestination::OnBack() {
  if (!run_.AnyFeatureInstalled) {
    navigator_.FormByName("frmWelcome").Show();
    Hide();
    return;
  }
  ValidateDestination(navigator_.PreviousPageName());
}

void frmDestination::LeavePage(const std::string& name) {
  if (navigator_.PageIsRequired(name) || HasDestination()) ValidateDestination(name);
}

void frmDestination::ValidateDestination(const std::string& name) {
  run_.SettingsFileName = GenericConfig.Value()       ? "KTECFG.CAB"
                          : WorkstationConfig.Value() ? "KTECFG_W.CAB"
                                                      : "KTECFG_S.CAB";
  const bool empty = DestConfigFolder.Text().empty();
  navigator_.SetPageNeverConfigured(Caption(), empty);
  if (!empty && !TakeDestination()) {
    DestConfigFolder.SelectField();
    return;
  }
  if (!Check(EnsureTempFolder(services_, run_))) return;
  if (run_.ConfigAppDataFolder.empty()) run_.ConfigAppDataFolder = MakeConfigAppDataFolder(services_, run_);
  navigator_.GoToPage(name);
}

bool frmDestination::TakeDestination() {
  const std::string text = DestConfigFolder.Text();
  if (!ValidatePath(services_, "Destination folder", text, kFolderChecks)) return false;
  if (text != run_.DestinationFolder && run_.DestinationInUse) {
    UndoDestination(services_, run_);
    run_.DestinationInUse = false;
    run_.DestinationFolder.clear();
  }
  const bool spare = HasSpareBackslash(text);
  const std::string file_path = (spare ? text : text + "\\") + run_.SettingsFileName;
  if (services_.files->FileExists(file_path)) {
    if (!Ask(
            "The File \"" + file_path +
            "\" already exists.  Click OK to overwrite the file or Cancel to specify another destination.") ||
        !Check(services_.files->DeleteFile(file_path, true))) {
      return false;
    }
  } else if (!MakeDestination(file_path)) {
    return false;
  }
  run_.DestinationFolder = spare ? text.substr(0, text.size() - 1) : text;
  return true;
}

bool frmDestination::MakeDestination(const std::string& file_path) {
  std::string folder = ParentOf(file_path);
  if (folder.ends_with(':')) folder += '\\';
  if (folder.empty()) {
    services_.dialogs->Message("The file path " + file_path + " is invalid.");
    return false;
  }
  if (!services_.files->FolderExists(folder)) {
    if (!Ask("The folder \"" + folder +
             "\" does not exist.  Click OK to create the folder or Cancel to specify another destination.")) {
      return false;
    }
    MakeFolderPath(services_, folder);
    if (!services_.files->FolderExists(folder)) {
      services_.dialogs->Message(
          "Unable to create the folder.  Please verify that the drive is accessible and that you have the "
          "correct permissions to create a folder.");
      return false;
    }
    run_.DestinationInUse = true;
  }
  return ProbeFile(file_path);
}

bool frmDestination::ProbeFile(const std::string& file_path) {
  {
    const auto probe = services_.files->Open(file_path, platform::OpenHow::kOpenOrCreateExclusive);
    if (!probe.ok()) {
      services_.dialogs->Message("The file path " + file_path + " is invalid.");
      return false;
    }
  }
  return Check(services_.files->DeleteFile(file_path, true));
}

bool frmDestination::Ask(const std::string& text) {
  return services_.dialogs->Question(text, {Answer::kOk, Answer::kCancel}, Answer::kOk, "") == Answer::kOk;
}

void frmDestination::AddChoices(ui::ListBox& list) {
  list.Add(GenericConfig.Value()  ? "\tCreate one configuration package for both servers and workstations."
           : ServerConfig.Value() ? "\tCreate server configuation package."
                                  : "\tCreate workstation configuration package.");
  list.Add("\tNew configuration file: " + run_.DestinationFolder + "\\" + run_.SettingsFileName);
  list.Add("");
}

}  // namespace kw
