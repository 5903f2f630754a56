#include "payloads/frm_dats_and_engine.h"

#include <array>
#include <utility>
#include <vector>

#include "base/path.h"
#include "package/file_rules.h"
#include "package/staging.h"
#include "payloads/version_text.h"

namespace kw {
namespace {

constexpr unsigned kArchiveChecks = kCheckCharacters | kCheckLocal | kCheckUnc | kCheckFileExists;
constexpr const char* kUnknown = "unknown";
constexpr const char* kDatSection = "Dat";
constexpr const char* kEngineSection = "Engine";
constexpr std::array<const char*, 3> kDatFiles = {"REPAIR.DAT", "LABELS.DAT", "SIGS.DAT"};
constexpr std::array<const char*, 4> kEngineFiles = {"TXENG32.DLL", "TEXTS.DAT", "ENGINE.DAT",
                                                     "SIGTERMS.TXT"};

}  // namespace

struct frmDATsAndEngine::Archive {
  ui::CheckBox& chosen;
  ui::TextBox& path;
  ui::TextBox& focus_when_empty;
  const char* label;
  const char* empty_text;
  std::string folder;
  const char* could_not_delete;
  const char* could_not_create;
  const char* could_not_unzip;
  std::vector<const char*> files;
  const char* missing_text;
};

frmDATsAndEngine::frmDATsAndEngine(PageContext& context)
    : WizardPage(context, kName, "DAT and Engine Files", "Label4", "Specify updated DAT and engine files.",
                 1019, "Next1"),
      FromSource(*this, "FromSource", "&Same DAT and engine files as original installation package"),
      SeparateZIPs(*this, "SeparateZIPs", "Se&parate Zip files for DAT files and engine files"),
      SpecifyDATZIP(*this, "SpecifyDATZIP", "ZIP file containing updated .&DAT files"),
      DATPath(*this, "DATPath"),
      DATPathBrowse(*this, "DATPathBrowse", "Br&owse..."),
      SpecifyEngineZIP(*this, "SpecifyEngineZIP", "ZIP file containing updated en&gine"),
      EnginePath(*this, "EnginePath"),
      EnginePathBrowse(*this, "EnginePathBrowse", "Bro&wse..."),
      db_(InstallerDb::Working(context.services, context.run)) {
  FromSource.on_click = [this] { AdjustControls(); };
  SeparateZIPs.on_click = [this] { AdjustControls(); };
  const std::pair<ui::CheckBox*, ui::TextBox*> pairs[] = {{&SpecifyDATZIP, &DATPath},
                                                          {&SpecifyEngineZIP, &EnginePath}};
  for (const auto& [box, path] : pairs) {
    box->on_click = [this, box = box, path = path] {
      AdjustControls();
      if (box->Checked() && Visible()) path->SetFocus();
    };
  }
  const std::pair<ui::Button*, ui::TextBox*> browses[] = {{&DATPathBrowse, &DATPath},
                                                          {&EnginePathBrowse, &EnginePath}};
  for (const auto& [button, path] : browses) {
    button->on_click = [this, path = path] {
      const std::string chosen =
          services_.dialogs->OpenFile("Select Archive File", "Archive Files (*.zip)|*.zip", "", "");
      if (!chosen.empty()) path->SetText(chosen);
    };
  }
  AddButtons();
}

ui::Layout frmDATsAndEngine::PageLayout() {
  using namespace ui;
  return Column({Place(FromSource), Place(SeparateZIPs),
                 Indent(Column({Place(SpecifyDATZIP), Indent(Row({Place(DATPath, 1), Place(DATPathBrowse)})),
                                Place(SpecifyEngineZIP),
                                Indent(Row({Place(EnginePath, 1), Place(EnginePathBrowse)}))})),
                 Space()},
                1);
}

void frmDATsAndEngine::LoadPage() {
  FromSource.SetValue(true);
  AdjustControls();
}

std::string frmDATsAndEngine::SourceFilesFolder() const {
  return run_.PackageIs700 ? run_.SourceFolder : run_.TempFolder + "\\MSIDATsAndEngine";
}

void frmDATsAndEngine::ReadConfig() {
  EnsureLoaded();
  if (run_.PackageIs700) {
    const std::string& ini = run_.WorkingSetupIniPath;
    SourceDATDate = ReadIniValue(services_, ini, kDatSection, "DATDate", kUnknown);
    SourceDATVersion = ReadIniValue(services_, ini, kDatSection, "DATVersion", kUnknown);
    SourceEngineVersion = ReadIniValue(services_, ini, kEngineSection, "EngineVersion", kUnknown);
    DATFolder = EngineFolder = SourceFilesFolder();
  } else {
    bool complete = false;
    if (!Check(ReadVersions710(complete)) || !complete || !KeepSourceFiles()) return;
  }
  DATDate = SourceDATDate;
  DATVersion = SourceDATVersion;
  EngineVersion = SourceEngineVersion;
  FromSource.SetValue(true);
  DATPath.SetText("");
  EnginePath.SetText("");
}

// `complete` tells whether all three rows are there.
Status frmDATsAndEngine::ReadVersions710(bool& complete) {
  const std::pair<const char*, std::string*> rows[] = {
      {"select `Value` from `Property` where `Property` = 'ENGINEVERSION'", &SourceEngineVersion},
      {"select `Value` from `Property` where `Property` = 'DATVERSION'", &SourceDATVersion},
      {"select `Value` from `Property` where `Property` = 'DATDATE'", &SourceDATDate}};
  for (const auto& [sql, value] : rows) {
    KW_ASSIGN_OR_RETURN(const auto record, db_.QuerySql(sql));
    if (!record) return {};
    *value = record->StringData(1);
  }
  complete = true;
  return {};
}

// Copies the package's files aside, so that the build can restore a group that was not replaced.
bool frmDATsAndEngine::KeepSourceFiles() {
  const std::string folder = SourceFilesFolder();
  if (!services_.files->CreateFolder(folder).ok()) {
    services_.dialogs->Message("Could not create a temporary folder for extracting DAT .ZIP file.");
    return false;
  }
  DATFolder = EngineFolder = folder;
  // A file that the package lacks shows when the build wants it back.
  const auto keep = [&](const char* file) {
    services_.files->CopyFile(JoinPath(run_.CabDataFolder, file), JoinPath(folder, file), true).IgnoreError();
  };
  for (const char* file : kDatFiles) keep(file);
  for (const char* file : kEngineFiles) keep(file);
  return true;
}

void frmDATsAndEngine::AdjustControls() {
  const bool zips = !FromSource.Value();
  SpecifyDATZIP.SetEnabled(zips);
  DATPath.EnableWithColor(zips && SpecifyDATZIP.Checked());
  DATPathBrowse.SetEnabled(zips && SpecifyDATZIP.Checked());
  SpecifyEngineZIP.SetEnabled(zips);
  EnginePath.EnableWithColor(zips && SpecifyEngineZIP.Checked());
  EnginePathBrowse.SetEnabled(zips && SpecifyEngineZIP.Checked());
  if (!Visible() || !zips) return;
  if (SpecifyDATZIP.Checked()) {
    DATPath.SetFocus();
  } else if (SpecifyEngineZIP.Checked()) {
    EnginePath.SetFocus();
  }
}

void frmDATsAndEngine::LeavePage(const std::string& name) {
  if (!FromSource.Value()) {
    ui::TextBox* focus = nullptr;
    SetMousePointer(ui::Pointer::kHourglass);
    const bool extracted = ExtractZIPFiles(focus);
    SetMousePointer(ui::Pointer::kDefault);
    if (!extracted) {
      if (focus != nullptr) focus->SelectField();
      return;
    }
  }
  navigator_.GoToPage(name);
}

bool frmDATsAndEngine::ExtractZIPFiles(ui::TextBox*& focus) {
  const Archive dat = {
      SpecifyDATZIP,
      DATPath,
      DATPath,
      "DATs .ZIP file",
      "You selected to add updated DAT files.  Please enter a valid path to a DAT package.",
      run_.TempFolder + "\\DATZipData",
      "Could not remove temporary files or folders. This may be because you have the files or folders "
      "open in another program.",
      "Could not create a temporary folder for extracting DAT .ZIP file.",
      "Could not decompress the .ZIP file.",
      {"pkginfo.ini", "repair.dat", "labels.dat", "sigs.dat"},
      "PKGINFO.INI, REPAIR.DAT, LABELS.DAT, or SIGS.DAT is missing from the DAT .ZIP file."};
  // An empty engine path sends the focus to the other box.
  const Archive engine = {
      SpecifyEngineZIP,
      EnginePath,
      DATPath,
      "Engine .ZIP file",
      "You selected to add updated engine files.  Please enter a valid path to an engine package.",
      run_.TempFolder + "\\EngineZipData",
      "Could not delete the folder where extracted engine files are stored temporarily.",
      "Could not create a temporary folder for extracting engine .ZIP file.",
      "Could not decompress .ZIP file.",
      {"engine.dat", "txeng32.dll", "texts.dat", "sigterms.txt"},
      "ENGINE.DAT, TXENG32.DLL, TEXTS.DAT or SIGTERMS.TXT files missing from the engine .ZIP "
      "file."};
  const bool with_dat = SpecifyDATZIP.Checked();
  const bool with_engine = SpecifyEngineZIP.Checked();
  if (!CheckChoice(dat, focus)) return false;
  if (!with_dat) {
    DATFolder = SourceFilesFolder();
    DATDate = SourceDATDate;
    DATVersion = SourceDATVersion;
  }
  if (!CheckChoice(engine, focus)) return false;
  if (!with_engine) {
    EngineFolder = SourceFilesFolder();
    EngineVersion = SourceEngineVersion;
  }
  if (!with_dat && !with_engine) {
    services_.dialogs->Message(
        "Please enter a valid path to a valid DAT package, engine package or both, or select one of the "
        "other options.");
    focus = &DATPath;
    return false;
  }
  if ((with_dat && !Unpack(dat, focus)) || (with_engine && !Unpack(engine, focus))) return false;
  if (with_dat && (!ReadDATVersion(dat.folder, DATVersion) || !ReadDATDate(dat.folder, DATDate)))
    return false;
  if (with_engine) {
    EngineVersion = EngineVersionText(services_, JoinPath(engine.folder, "txeng32.dll"));
    if (EngineVersion == kNoVersion) {
      services_.dialogs->Message(
          "Unable to determine the version of the provided engine file.  Please verify that the given engine "
          "file is valid.");
      DeleteUnpacked();
      focus = &EnginePath;
      return false;
    }
  }
  if (with_dat) DATFolder = dat.folder;
  if (with_engine) EngineFolder = engine.folder;
  return true;
}

bool frmDATsAndEngine::CheckChoice(const Archive& archive, ui::TextBox*& focus) {
  if (!archive.chosen.Checked()) return true;
  if (archive.path.Text().empty()) {
    services_.dialogs->Message(archive.empty_text);
    focus = &archive.focus_when_empty;
    return false;
  }
  if (ValidatePath(services_, archive.label, archive.path.Text(), kArchiveChecks)) return true;
  focus = &archive.path;
  return false;
}

bool frmDATsAndEngine::Unpack(const Archive& archive, ui::TextBox*& focus) {
  platform::FileSystem& files = *services_.files;
  if (files.FolderExists(archive.folder)) {
    files.DeleteFolder(archive.folder, true).IgnoreError();
    if (files.FolderExists(archive.folder)) {
      services_.dialogs->Message(archive.could_not_delete);
      return false;
    }
  }
  if (!files.CreateFolder(archive.folder).ok()) {
    services_.dialogs->Message(archive.could_not_create);
    return false;
  }
  if (!CallUnzip(archive.path.Text(), archive.folder)) {
    services_.dialogs->Message(archive.could_not_unzip);
    return false;
  }
  for (const char* file : archive.files) {
    if (files.FileExists(JoinPath(archive.folder, file))) continue;
    services_.dialogs->Message(archive.missing_text);
    if (&archive.chosen == &SpecifyEngineZIP) {
      DeleteUnpacked();
    } else {
      files.DeleteFolder(archive.folder, true).IgnoreError();
    }
    focus = &archive.path;
    return false;
  }
  return true;
}

// The library gets a bare file name in the archive's folder, but a network path whole.
bool frmDATsAndEngine::CallUnzip(const std::string& path, const std::string& folder) {
  if (path.starts_with("\\\\")) return services_.libraries->TxUnzip(path, folder).ok();
  const Status changed = services_.files->SetCurrentFolder(ParentOf(path) + "\\");
  const bool unpacked = changed.ok() && services_.libraries->TxUnzip(FileNameOf(path), folder).ok();
  EnterProgramFolder(services_);
  return unpacked;
}

void frmDATsAndEngine::DeleteUnpacked() {
  for (const char* name : {"\\EngineZipData", "\\DATZipData"}) {
    // One that was never made is no failure.
    services_.files->DeleteFolder(run_.TempFolder + name, true).IgnoreError();
  }
}

bool frmDATsAndEngine::ReadDATVersion(const std::string& folder, std::string& version) {
  const std::string value =
      ReadIniValue(services_, JoinPath(folder, "pkginfo.ini"), kDatSection, "Version", kUnknown);
  if (value == kUnknown || value.empty()) {
    services_.dialogs->Message("Could not read DAT version from the PKGINFO.INI file.");
    return false;
  }
  version = "4.0." + value;
  return true;
}

bool frmDATsAndEngine::ReadDATDate(const std::string& folder, std::string& date) {
  const std::string value =
      ReadIniValue(services_, JoinPath(folder, "pkginfo.ini"), kDatSection, "Date", kUnknown);
  const std::string last = value.substr(value.rfind(' ') + 1);
  const size_t first_slash = last.find('/');
  if (value == kUnknown || first_slash == std::string::npos ||
      last.find('/', first_slash + 1) == std::string::npos) {
    services_.dialogs->Message("Cannot read DAT date from the PKGINFO.INI file.");
    return false;
  }
  date = last;
  return true;
}

// The build names this step; no more is said of a failure.
bool frmDATsAndEngine::SaveConfig() {
  if (FromSource.Value()) return true;
  return run_.PackageIs700 ? SaveBesidePackage() : SaveInPackage().ok();
}

bool frmDATsAndEngine::SaveBesidePackage() {
  const std::pair<const char*, const std::string*> copies[] = {
      {"SIGTERMS.TXT", &EngineFolder}, {"ENGINE.DAT", &EngineFolder}, {"TEXTS.DAT", &EngineFolder},
      {"TXENG32.DLL", &EngineFolder},  {"REPAIR.DAT", &DATFolder},    {"LABELS.DAT", &DATFolder},
      {"SIGS.DAT", &DATFolder}};
  bool copied = true;
  for (const auto& [file, folder] : copies) {
    // All are tried, whatever happens to one of them.
    const bool ok = CopyFileToFolder(services_, JoinPath(*folder, file), run_.DestinationFolder,
                                     run_.DestinationFileList);
    copied = copied && ok;
  }
  if (!copied) return false;
  const std::string& ini = run_.WorkingSetupIniPath;
  return WriteIniValue(services_, ini, kDatSection, "DATDate", DATDate).ok() &&
         WriteIniValue(services_, ini, kDatSection, "DATVersion", DATVersion).ok() &&
         WriteIniValue(services_, ini, kEngineSection, "EngineVersion", EngineVersion).ok();
}

Status frmDATsAndEngine::SaveInPackage() {
  for (const char* sql : {"delete from `Property` where `Property` = 'ENGINEVERSION'",
                          "delete from `Property` where `Property` = 'DATVERSION'",
                          "delete from `Property` where `Property` = 'DATDATE'"}) {
    KW_RETURN_IF_ERROR(db_.RunSql(sql));
  }
  KW_RETURN_IF_ERROR(db_.RunSql("insert into `Property` (`Value`, `Property`) values (?, 'ENGINEVERSION')",
                                {EngineVersion}));
  KW_RETURN_IF_ERROR(
      db_.RunSql("insert into `Property` (`Value`, `Property`) values (?, 'DATVERSION')", {DATVersion}));
  KW_RETURN_IF_ERROR(
      db_.RunSql("insert into `Property` (`Value`, `Property`) values (?, 'DATDATE')", {DATDate}));
  const auto copy = [this](const std::string& folder, const char* file) {
    // A cabinet gives its read-only files back as such.
    return CopyOver(services_, JoinPath(folder, file), JoinPath(run_.CabDataFolder, file));
  };
  for (const char* file : kDatFiles) KW_RETURN_IF_ERROR(copy(DATFolder, file));
  for (const char* file : kEngineFiles) KW_RETURN_IF_ERROR(copy(EngineFolder, file));
  return {};
}

void frmDATsAndEngine::CopySigTermsTxt() {
  if (FromSource.Value()) return;
  CopyOver(services_, JoinPath(EngineFolder, "SIGTERMS.TXT"),
           JoinPath(run_.DestinationFolder, "SIGTERMS.TXT"))
      .IgnoreError();
}

void frmDATsAndEngine::AddChoices(ui::ListBox& list) {
  if (FromSource.Value()) {
    list.Add("\tInclude DATs and engine from the source installation package");
  } else {
    if (SpecifyDATZIP.Checked()) list.Add("\tZIP file containing DATs: " + DATPath.Text());
    if (SpecifyEngineZIP.Checked()) list.Add("\tZIP file containing engine: " + EnginePath.Text());
  }
  list.Add("\tDAT Version: " + DATVersion);
  list.Add("\tDAT Date: " + DATDate);
  list.Add("\tEngine Version: " + EngineVersion);
  list.Add("");
}

}  // namespace kw
