#include "payloads/frm_beaconry_server.h"

#include "base/text.h"
#include "package/file_rules.h"
#include "package/source_package.h"
#include "pages/folder_box.h"
#include "pages/startup_ini.h"
#include "pages/wizard_dialog.h"

namespace kw {
namespace {

constexpr const char* kBeaconryUpgradeCode = "{71014215-9627-11D4-B865-00508B022A51}";
constexpr const char* kNestedPackage = "BCN470.msi";
constexpr const char* kLocationKey = "szBeaconryLocation";
constexpr const char* kTrue = "TRUE";
constexpr int kAudience = 1;
constexpr int kDirectory = 2;
constexpr unsigned kSourceChecks = kCheckCharacters | kCheckLocal | kCheckUnc;

}  // namespace

frmBeaconryServer::frmBeaconryServer(PageContext& context)
    : WizardPage(context, kName, "Beaconry Installation", "Label8", "Specify Beaconry installation options.",
                 1015),
      InstallBeaconry(*this, "InstallBeaconry", "&Install Beaconry"),
      ServersAndWorkstations(*this, "ServersAndWorkstations", "Install to servers and &workstations",
                             kAudience),
      ServersOnly(*this, "ServersOnly", "Install to &servers only", kAudience),
      EnterSourceDirectory(*this, "EnterSourceDirectory", "Sourc&e folder:"),
      SourceDir(*this, "SourceDir"),
      SourceBrowse(*this, "SourceBrowse", "B&rowse..."),
      UseDefaultDirectory(*this, "UseDefaultDirectory", "&Use default installation folder", kDirectory),
      SpecifyCustomDirectory(*this, "SpecifyCustomDirectory",
                             "Specify &custom installation folder:", kDirectory),
      InstallDirectory(*this, "InstallDirectory"),
      InstallBrowse(*this, "InstallBrowse", "Br&owse..."),
      BeaconryServiceAccount(*this, "BeaconryServiceAccount", "Beaconry Service Account"),
      UseSystemAccountForBeaconry(*this, "UseSystemAccountForBeaconry", "Use s&ystem account"),
      UserName(*this, "UserName", "User Na&me"),
      BeaconryUserName(*this, "BeaconryUserName"),
      Password(*this, "Password", "P&assword"),
      BeaconryPassword(*this, "BeaconryPassword"),
      AccountRightsDescription(
          *this, "AccountRightsDescription",
          "This account should have rights to send network alert messages on your network."),
      db_(InstallerDb::Working(context.services, context.run)),
      nested_(InstallerDb::Beaconry(context.services, context.run)) {
  BeaconryPassword.masked = true;
  InstallBeaconry.on_click = [this] { AdjustControls(); };
  SpecifyCustomDirectory.on_click = [this] { AdjustControls(); };
  UseDefaultDirectory.on_click = [this] { AdjustControls(); };
  UseSystemAccountForBeaconry.on_click = [this] { AdjustControls(); };
  SourceBrowse.on_click = [this] {
    if (SourceDir.Text().starts_with(kInPackage)) return;
    BrowseForFolderInto(services_, SourceDir, "Select Source Folder");
  };
  InstallBrowse.on_click = [this] {
    BrowseForFolderInto(services_, InstallDirectory, "Select Installation Folder");
  };
  AddButtons();
}

ui::Layout frmBeaconryServer::PageLayout() {
  using namespace ui;
  return Column(
      {Place(InstallBeaconry),
       Indent(
           Column({Place(ServersAndWorkstations), Place(ServersOnly),
                   Fields({Place(EnterSourceDirectory), Row({Place(SourceDir, 1), Place(SourceBrowse)})}),
                   Place(UseDefaultDirectory), Place(SpecifyCustomDirectory),
                   Indent(Row({Place(InstallDirectory, 1), Place(InstallBrowse)})),
                   Framed(BeaconryServiceAccount, Column({Place(UseSystemAccountForBeaconry),
                                                          Fields({Place(UserName), Place(BeaconryUserName),
                                                                  Place(Password), Place(BeaconryPassword)}),
                                                          Place(AccountRightsDescription)}))})),
       Space()},
      1);
}

void frmBeaconryServer::LoadPage() {
  ServersOnly.SetValue(true);
  UseDefaultDirectory.SetValue(true);
  UseSystemAccountForBeaconry.SetChecked(true);
  AdjustControls();
}

void frmBeaconryServer::AdjustControls() {
  const bool install = InstallBeaconry.Checked();
  const bool custom = install && SpecifyCustomDirectory.Value();
  const bool account = install && !UseSystemAccountForBeaconry.Checked();
  for (ui::Control* control :
       {static_cast<ui::Control*>(&ServersAndWorkstations), static_cast<ui::Control*>(&ServersOnly),
        static_cast<ui::Control*>(&EnterSourceDirectory), static_cast<ui::Control*>(&SourceBrowse),
        static_cast<ui::Control*>(&UseDefaultDirectory), static_cast<ui::Control*>(&SpecifyCustomDirectory),
        static_cast<ui::Control*>(&BeaconryServiceAccount),
        static_cast<ui::Control*>(&UseSystemAccountForBeaconry),
        static_cast<ui::Control*>(&AccountRightsDescription)}) {
    control->SetEnabled(install);
  }
  SourceDir.EnableWithColor(install);
  InstallDirectory.EnableWithColor(custom);
  InstallBrowse.SetEnabled(custom);
  UserName.SetEnabled(account);
  BeaconryUserName.EnableWithColor(account);
  Password.SetEnabled(account);
  BeaconryPassword.EnableWithColor(account);
}

void frmBeaconryServer::ReadConfig() {
  EnsureLoaded();
  for (ui::TextBox* box : {&SourceDir, &InstallDirectory, &BeaconryUserName, &BeaconryPassword})
    box->SetText("");
  InstallBeaconry.SetChecked(false);
  run_.BeaconryWorkingMsiPath = run_.TempFolder + "\\BCData\\" + kNestedPackage;
  // A folder that cannot be made shows when the package is copied into it.
  MakeOwnFolder(services_, run_.TempFolder + "\\BCData").IgnoreError();
  if (ReadNestedPackage()) ReadNestedChoices();
  AdjustControls();
}

// Opens the nested package that the source carries; False when it carries none that can be used.
bool frmBeaconryServer::ReadNestedPackage() {
  run_.BeaconrySourceFolder =
      ReadIniValue(services_, run_.WorkingSetupIniPath, kStartupSection, kLocationKey, "unknown");
  const auto suppressed = db_.GetProperty("SUPPRESSBCSINSTALL");
  if (!Check(suppressed.status())) return false;
  if (run_.BeaconrySourceFolder.empty() || !suppressed->empty()) return false;
  std::string location = run_.BeaconrySourceFolder;
  if (location.starts_with('\\')) location.erase(0, 1);
  run_.BeaconrySourceFolder = run_.SourceFolder + "\\" + location;
  const auto opened = OpenNestedPackage();
  if (!Check(opened.status())) return false;
  switch (*opened) {
    case Opened::kYes:
      return true;
    case Opened::kNoCopy:
      return false;
    case Opened::kNoDatabase:
      services_.dialogs->Message(
          "The Beaconry Server installation file " + run_.BeaconrySourceMsiPath +
          " could not be opened.  You may configure Beaconry Server installation options on the "
          "Beaconry Installation page.");
      return false;
    case Opened::kOtherProduct:
      services_.dialogs->Message(
          run_.BeaconrySourceMsiPath +
          " does not appear to be a valid Beaconry Server installation file.  You may configure "
          "Beaconry Server installation options on the Beaconry Installation page.");
      return false;
  }
  return false;
}

// Copies BeaconrySourceFolder's package afresh and opens the copy; a failed Result is a damaged database.
Result<frmBeaconryServer::Opened> frmBeaconryServer::OpenNestedPackage() {
  platform::FileSystem& files = *services_.files;
  run_.BeaconrySourceMsiPath = run_.BeaconrySourceFolder + "\\" + kNestedPackage;
  run_.BeaconryDatabase.reset();
  if (files.FileExists(run_.BeaconryWorkingMsiPath)) {
    files.DeleteFile(run_.BeaconryWorkingMsiPath, true).IgnoreError();
  }
  if (!files.CopyFile(run_.BeaconrySourceMsiPath, run_.BeaconryWorkingMsiPath, true).ok() ||
      !MakeWritable(services_, run_.BeaconryWorkingMsiPath).ok()) {
    return Opened::kNoCopy;
  }
  auto database =
      run_.InstallerSecond->OpenDatabase(run_.BeaconryWorkingMsiPath, platform::OpenMode::kDirect);
  if (!database.ok()) return Opened::kNoDatabase;
  run_.BeaconryDatabase = *database;
  // A package that lacks one of these tables is another product's as well.
  const Status lowered = nested_.LowerCaseFileNames();
  if (!lowered.ok() && lowered.number() != kErrorBadQuerySyntax) return lowered;
  const auto code = nested_.QuerySql("select `Value` from `Property` where `Property` = 'UpgradeCode'");
  const bool is_server = code.ok() && *code && (*code)->StringData(1) == kBeaconryUpgradeCode;
  if (lowered.ok() && is_server) return Opened::kYes;
  run_.BeaconryDatabase.reset();
  return Opened::kOtherProduct;
}

void frmBeaconryServer::ReadNestedChoices() {
  const auto force = db_.GetProperty("FORCEBCSINSTALL");
  const auto folder = nested_.GetProperty("INSTALLDIR");
  const auto user = nested_.GetProperty("BEACONRYUSERNAME");
  const auto password = nested_.GetProperty("BEACONRYPASSWORD");
  const auto locale = nested_.GetProperty("txlocaleid");
  for (const auto* value : {&force, &folder, &user, &password, &locale}) {
    if (!Check(value->status())) return;
  }
  run_.BeaconryLocale = *locale;
  InstallBeaconry.SetChecked(true);
  (*force == kTrue ? ServersAndWorkstations : ServersOnly).SetValue(true);
  SourceDir.SetText(run_.SourceWasExtracted ? kInPackage : run_.BeaconrySourceFolder);
  InstallDirectory.SetText(*folder);
  (folder->empty() ? UseDefaultDirectory : SpecifyCustomDirectory).SetValue(true);
  BeaconryUserName.SetText(*user);
  UseSystemAccountForBeaconry.SetChecked(user->empty());
  EncodedPassword = user->empty() ? std::string() : *password;
  if (!EncodedPassword.empty()) BeaconryPassword.SetText("********");
}

bool frmBeaconryServer::FoldersAreValid() {
  if (!SourceDir.Text().starts_with(kInPackage)) {
    bool valid = !SourceDir.Text().empty();
    if (!valid) {
      services_.dialogs->Message("Please enter a folder containing the Beaconry Server installation files.");
    }
    valid = valid && ValidatePath(services_, "Source folder", SourceDir.Text(), kSourceChecks);
    if (!valid) {
      SourceDir.SelectField();
      return false;
    }
  }
  return UseDefaultDirectory.Value() || CustomFolderIsValid(services_, InstallDirectory);
}

bool frmBeaconryServer::AccountIsValid() {
  if (UseSystemAccountForBeaconry.Checked()) return true;
  if (BeaconryUserName.Text().empty()) {
    services_.dialogs->Message(
        "Please enter a user name for the Beaconry service account or choose to use the system account.");
    BeaconryUserName.SelectField();
    return false;
  }
  // The mask is not tested: asterisks left in the box are encoded as they stand.
  if (!BeaconryPassword.Text().empty()) {
    EncodedPassword = EncodePassword(BeaconryPassword.Text(), services_.system->CodePage());
  }
  return true;
}

bool frmBeaconryServer::TakeNestedPackage() {
  if (!SourceDir.Text().starts_with(kInPackage)) {
    run_.BeaconrySourceFolder = SourceDir.Text();
    if (run_.BeaconrySourceFolder.ends_with('\\')) run_.BeaconrySourceFolder.pop_back();
  }
  const auto opened = OpenNestedPackage();
  if (!opened.ok()) {
    Check(opened.status());
  } else if (*opened == Opened::kYes) {
    const auto locale = nested_.GetProperty("txlocaleid");
    if (Check(locale.status())) {
      run_.BeaconryLocale = *locale;
      return true;
    }
  } else if (*opened == Opened::kNoCopy) {
    services_.dialogs->Message("Could not copy the Beaconry file " + run_.BeaconrySourceMsiPath +
                               ".  Please check the provided source folder and verify the file exists.");
  } else if (*opened == Opened::kNoDatabase) {
    services_.dialogs->Message(
        "The Beaconry Server installation file " + run_.BeaconrySourceMsiPath +
        " could not be opened.  Please verify that you have provided a valid installation "
        "file.");
  } else {
    services_.dialogs->Message(
        run_.BeaconrySourceMsiPath +
        " does not appear to be a valid Beaconry Server installation file.  Please verify that "
        "you have provided a valid installation file.");
  }
  SourceDir.SelectField();
  return false;
}

void frmBeaconryServer::LeavePage(const std::string& name) {
  if (InstallBeaconry.Checked() && (!FoldersAreValid() || !AccountIsValid() || !TakeNestedPackage())) return;
  navigator_.GoToPage(name);
}

Status frmBeaconryServer::WriteChoices() {
  const bool install = InstallBeaconry.Checked();
  KW_RETURN_IF_ERROR(WriteIniValue(services_, run_.WorkingSetupIniPath, kStartupSection, kLocationKey,
                                   install ? std::optional<std::string_view>("\\BCN") : std::nullopt));
  KW_RETURN_IF_ERROR(db_.SetProperty("SUPPRESSBCSINSTALL", ChooseValue(install, "", kTrue)));
  return db_.SetProperty("FORCEBCSINSTALL",
                         ChooseValue(install && ServersAndWorkstations.Value(), kTrue, ""));
}

Status frmBeaconryServer::WriteNestedChoices() {
  if (!run_.BeaconryDatabase) {
    return {kErrorOpenFailed, "The Beaconry Server installation file is not open."};
  }
  KW_RETURN_IF_ERROR(nested_.SetProperty("INSTALLDIR", InstallDirectory.Text()));
  KW_RETURN_IF_ERROR(nested_.SetProperty("BEACONRYUSERNAME", BeaconryUserName.Text()));
  KW_RETURN_IF_ERROR(nested_.SetProperty("BEACONRYPASSWORD", EncodedPassword));
  return run_.BeaconryDatabase->Commit();
}

// The build names this step; no more is said of a failure.
bool frmBeaconryServer::SaveConfig() {
  if (!WriteChoices().ok()) return false;
  if (!InstallBeaconry.Checked()) return true;
  if (!WriteNestedChoices().ok()) return false;
  return !services_.files->FolderExists(run_.BeaconrySourceFolder) || CopyNestedFiles();
}

bool frmBeaconryServer::CopyNestedFiles() {
  const std::string folder = run_.DestinationFolder + "\\BCN";
  // A folder that cannot be made shows in the copy.
  if (!MakeOwnFolder(services_, folder).ok() && services_.files->IsLink(folder)) return false;
  if (!CopyFileToFolder(services_, run_.BeaconryWorkingMsiPath, folder, run_.BeaconryFileList)) return false;
  // A server that lies in the destination already has its choices written into it, but stays.
  if (services_.files->IsSameFolder(run_.BeaconrySourceFolder + "\\", folder))
    run_.BeaconryFileList->kept.insert(kNestedPackage);
  const auto entries = ListFolder(services_, run_.BeaconrySourceFolder);
  if (!entries.ok()) return false;
  for (const platform::FileEntry& entry : *entries) {
    if (entry.is_folder || StartsWithNoCase(entry.name, "PkgCatalog.z")) continue;
    bool copied = false;
    for (const std::string& name : run_.BeaconryFileList->names)
      copied = copied || StartsWithNoCase(name, entry.name);
    if (copied) continue;
    // A copy that was given up ends the listing, and the step stands.
    if (!CopyFileToFolder(services_, run_.BeaconrySourceFolder + "\\" + entry.name, folder,
                          run_.BeaconryFileList)) {
      break;
    }
  }
  return true;
}

void frmBeaconryServer::AddChoices(ui::ListBox& list) {
  if (!InstallBeaconry.Checked()) {
    list.Add("\tBeaconry Server has not been configured for installation.");
    list.Add("");
    return;
  }
  list.Add(ServersAndWorkstations.Value()
               ? "\tBeaconry Server has been configured for installation on servers and workstations."
               : "\tBeaconry Server has been configured for installation on servers only.");
  list.Add("\tBeaconry Server source folder: " + SourceDir.Text());
  list.Add(UseDefaultDirectory.Value() ? "\tUse default installation folder."
                                       : "\tCustom installation folder: " + InstallDirectory.Text());
  if (UseSystemAccountForBeaconry.Checked()) {
    list.Add("\tBeaconry Server service account: system account");
  } else {
    list.Add("\tBeaconry Server service account: " + BeaconryUserName.Text());
    list.Add(BeaconryPassword.Text().empty() ? "\tBeaconry Server service account password is blank."
                                             : "\tBeaconry Server service account password has been set.");
  }
  list.Add("");
}

}  // namespace kw
