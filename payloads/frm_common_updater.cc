#include "payloads/frm_common_updater.h"

#include "base/text.h"
#include "package/file_rules.h"
#include "package/staging.h"
#include "package/xml_file.h"
#include "pages/wizard_dialog.h"
#include "payloads/version_text.h"

namespace kw {
namespace {

constexpr const char* kAgentKey = "SOFTWARE\\Orvantic\\RDX\\Shared Components\\AgentCore";
constexpr const char* kAgentFile = "AgentPkg.exe";
constexpr const char* kAgentRow = "Callagentpkg";
constexpr unsigned kAgentChecks = kCheckCharacters | kCheckLocal | kCheckUnc | kCheckFileExists;
constexpr const char* kCouldNotConfigure =
    "Could not configure the AutoUpdate repository list.\r\nPlease make sure that Kestrane Enterprise is "
    "installed correctly.";

}  // namespace

frmCommonUpdater::frmCommonUpdater(PageContext& context)
    : WizardPage(context, kName, "AutoUpdate Configuration", "Label8", "Specify files for AutoUpdate.", 1022),
      Label2(*this, "Label2", "Customize AutoUpdate repository list file:"),
      ImportSettings(*this, "ImportSettings", "&Read AutoUpdate repository list..."),
      ConfigureSettings(*this, "ConfigureSettings", "&Edit AutoUpdate repository list..."),
      Label5(*this, "Label5", "&Agent installation file:"),
      NewCommonAgentFile(*this, "NewCommonAgentFile"),
      NewCommonAgentBrowse(*this, "NewCommonAgentBrowse", "Br&owse..."),
      db_(InstallerDb::Working(context.services, context.run)) {
  ImportSettings.on_click = [this] { OnImport(); };
  ConfigureSettings.on_click = [this] { OnConfigure(); };
  NewCommonAgentBrowse.on_click = [this] {
    const std::string chosen = services_.dialogs->OpenFile("Select Agent Installation File",
                                                           "Agent Installation Files (*.exe)|*.exe", "", "");
    if (!chosen.empty()) NewCommonAgentFile.SetText(chosen);
  };
  AddButtons();
}

ui::Layout frmCommonUpdater::PageLayout() {
  using namespace ui;
  return Column(
      {Place(Label2), Indent(Row({Place(ImportSettings), Place(ConfigureSettings), Space()})), Place(Label5),
       Indent(Row({Place(NewCommonAgentFile, 1), Place(NewCommonAgentBrowse)})), Space()},
      1);
}

void frmCommonUpdater::LoadPage() { AdjustControls(); }

std::string frmCommonUpdater::WorkingList() const { return run_.ConfigAppDataFolder + "\\SiteList.xml"; }

void frmCommonUpdater::AdjustControls() {
  ConfigureSettings.SetEnabled(run_.ProductInstalled && IsLoadableXmlFile(services_, WorkingList()));
  Label5.SetEnabled(run_.PackageMode);
  NewCommonAgentFile.EnableWithColor(run_.PackageMode);
  NewCommonAgentBrowse.SetEnabled(run_.PackageMode);
}

bool frmCommonUpdater::ReadAgentFolders(AgentFolders& folders) {
  const auto read = [this](const char* name) {
    return ReadRegistryString(services_, platform::Hive::kLocalMachine, kAgentKey, name);
  };
  folders.data = read("Data Path");
  folders.installed = read("Installed Path");
  if (!folders.data.empty() && !folders.installed.empty()) return true;
  services_.dialogs->Message(
      "Could not find the Agent Core installation path. \r\nPlease make sure that Kestrane Enterprise is "
      "installed correctly.");
  return false;
}

bool frmCommonUpdater::FetchLiveList() {
  const bool missing = !services_.files->FileExists(WorkingList());
  const bool may_fetch = (missing && run_.SettingsFromFile) || run_.SettingsFromSystem;
  if (!may_fetch || !missing || !run_.ProductInstalled) return true;
  AgentFolders folders;
  if (!ReadAgentFolders(folders)) return false;
  if (CopyWritable(services_, folders.data + "\\SiteList.xml", WorkingList()).ok()) return true;
  services_.dialogs->Message(
      "Could not copy AutoUpdate repository list.\r\nAutoUpdate repository list configuration failed.");
  return false;
}

void frmCommonUpdater::ReadConfig() {
  EnsureLoaded();
  if (!FetchLiveList()) return;
  if (services_.files->FileExists(WorkingList()) && !IsLoadableXmlFile(services_, WorkingList())) {
    services_.dialogs->Message(
        "This package's AutoUpdate configuration is not valid.  You may configure update site settings on "
        "the AutoUpdate Configuration page.");
  }
  AdjustControls();
}

void frmCommonUpdater::ReadPackageAgent() {
  NewCommonAgentFile.SetText(std::string(kInPackage) + kAgentFile);
  const std::string path = run_.TempFolder + "\\" + kAgentFile;
  // A package without the row, or one that cannot be extracted, has no version to show.
  db_.ExtractBinary(kAgentRow, path).status().IgnoreError();
  AgentVersion = FileVersionText(services_, path);
}

void frmCommonUpdater::OnImport() {
  while (!context_.host.Ended()) {
    const std::string name = services_.dialogs->OpenFile(
        "Select AutoUpdate Repository List File", "AutoUpdate Repository List Files (*.xml)|*.xml", "", "");
    if (name.empty()) break;
    if (!EndsWithNoCase(name, ".xml") || !IsLoadableXmlFile(services_, name)) {
      services_.dialogs->Message(
          "Only .XML files are allowed.  Please select a valid .XML file or click Cancel to return to the "
          "wizard.");
      continue;
    }
    // There may be none yet.
    services_.files->DeleteFile(WorkingList(), true).IgnoreError();
    // Swapped in, a read-only one could neither be edited nor give way to the machine's own list again.
    if (CopyWritable(services_, name, WorkingList()).ok()) break;
    services_.dialogs->Message("Could not copy the Siteinfo file " + name +
                               ".  Please select another .XML file or click Cancel to return to the wizard.");
  }
  AdjustControls();
}

// The dialog works on the machine's own list alone, so the working list is swapped in and out.
void frmCommonUpdater::OnConfigure() {
  AgentFolders folders;
  if (!ReadAgentFolders(folders)) return;
  platform::FileSystem& files = *services_.files;
  const std::string live = folders.data + "\\SiteList.xml";
  const std::string backup = run_.ConfigAppDataFolder + "\\SiteList.tmp";
  files.DeleteFile(backup, true).IgnoreError();
  if (!files.CopyFile(live, backup, true).ok()) {
    services_.dialogs->Message(
        "Could not backup AutoUpdate repository list.\r\nAutoUpdate repository list configuration failed.");
    return;
  }
  if (files.FileExists(WorkingList()) && !SwapIn(live, backup)) return;
  EditLiveList(folders);
  // A failure to pick the edits up leaves the working list as it was.
  CopyWritable(services_, live, WorkingList()).IgnoreError();
  EnterProgramFolder(services_);
  Check(CopyOver(services_, backup, live));
}

bool frmCommonUpdater::SwapIn(const std::string& live, const std::string& backup) {
  platform::FileSystem& files = *services_.files;
  if (files.CopyFile(WorkingList(), live, true).ok()) return true;
  files.DeleteFile(live, false).IgnoreError();
  if (files.CopyFile(WorkingList(), live, true).ok()) return true;
  services_.dialogs->Message(kCouldNotConfigure);
  files.CopyFile(backup, live, true).IgnoreError();
  return false;
}

void frmCommonUpdater::EditLiveList(const AgentFolders& folders) {
  std::string help_path;
  if (!run_.ProductInstallDir.empty()) {
    services_.files->SetCurrentFolder(run_.ProductInstallDir).IgnoreError();
    services_.libraries->InitializeHtmlHelpPath("::/context.txt").status().IgnoreError();
    help_path = services_.libraries->GetHtmlHelpPath().value_or("");
  }
  services_.files->SetCurrentFolder(folders.installed).IgnoreError();
  if (!services_.libraries->EditSiteList(help_path).ok()) services_.dialogs->Message(kCouldNotConfigure);
}

bool frmCommonUpdater::AgentIsValid() {
  const std::string text = NewCommonAgentFile.Text();
  const std::string marker = std::string(kInPackage) + kAgentFile;
  if (text.starts_with(kInPackage)) {
    if (text == marker) return true;
    services_.dialogs->Message(
        "This file name AgentPkg.exe cannot be changed because it was previously added to the installation "
        "package.  You may continue with this file as it is or choose a completely new file.");
    NewCommonAgentFile.SetText(marker);
    return false;
  }
  if (!ValidatePath(services_, "Agent file", text, kAgentChecks)) return false;
  if (!EndsWithNoCase(text, ".exe")) {
    services_.dialogs->Message("Only .EXE files are allowed.  Please enter the path to a valid .EXE file.");
    return false;
  }
  AgentVersion = FileVersionText(services_, text);
  return true;
}

void frmCommonUpdater::LeavePage(const std::string& name) {
  if (run_.PackageMode && !AgentIsValid()) {
    NewCommonAgentFile.SelectField();
    return;
  }
  run_.changes.ConfigChangedSiteList = true;
  navigator_.GoToPage(name);
}

void frmCommonUpdater::AddChoices(ui::ListBox& list) {
  list.Add(run_.changes.ConfigChangedSiteList ? "\tAutoUpdate Configuration Properties were configured"
                                              : "\tAutoUpdate Configuration Properties were not configured");
  if (run_.PackageMode) list.Add("\tAgent Version: " + AgentVersion);
  list.Add("");
}

bool frmCommonUpdater::SaveConfig() {
  const auto has_list = FileIsThere(services_, WorkingList());
  bool stored = has_list.ok();
  if (run_.PackageMode && stored && *has_list) stored = StoreList();
  if (!NewCommonAgentFile.Text().starts_with(kInPackage) && !StoreAgent().ok()) stored = false;
  if (!stored) services_.dialogs->Message("Could not copy AutoUpdate configuration files.");
  return stored;
}

bool frmCommonUpdater::StoreList() {
  if (!db_.SetProperty("CAG_SITEINFO_FILE_NAME", "SiteList.xml").ok()) return false;
  if (run_.PackageIs700) {
    return CopyFileToFolder(services_, WorkingList(), run_.DestinationFolder, run_.DestinationFileList);
  }
  return db_.ReplaceBinary("sitelist.xml", WorkingList()).ok();
}

Status frmCommonUpdater::StoreAgent() {
  // The file is opened before the old row goes.
  const auto record = run_.Installer->CreateRecord(1);
  KW_RETURN_IF_ERROR(record->SetStream(1, NewCommonAgentFile.Text()));
  KW_RETURN_IF_ERROR(db_.RunSql("delete from `Binary` where `Name` = 'Callagentpkg'"));
  KW_ASSIGN_OR_RETURN(auto view, run_.WorkingDatabase->OpenView(
                                     "insert into `Binary` (`Data`, `Name`) values (?, 'Callagentpkg')"));
  KW_RETURN_IF_ERROR(view->Execute(record.get()));
  view->Close();
  return {};
}

}  // namespace kw
