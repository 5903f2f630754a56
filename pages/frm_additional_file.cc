#include "pages/frm_additional_file.h"

#include <string_view>
#include <utility>

#include "package/file_rules.h"
#include "pages/frm_additional_files.h"

namespace kw {
namespace {

constexpr unsigned kSourceChecks =
    kCheckCharacters | kCheckLocal | kCheckUnc | kCheckFileExists | kCheckFileNotEmpty;
constexpr const char* kDrive = "drive";
constexpr int kCompressed = 16384;
// A larger size does not fit the 16-bit value and leaves it at 0.
constexpr int64_t kLargestSize = 32767;

constexpr std::pair<const char*, const char*> kFolders[] = {
    {"INSTALLDIR", "Product Install"},     {"DesktopFolder", "Desktop"},
    {"WindowsFolder", "Windows"},          {"SystemFolder", "System"},
    {"StartupFolder", "Startup"},          {"ProgramFilesFolder", "Program Files"},
    {"CommonFilesFolder", "Common Files"}, {"StartMenuFolder", "Start Menu"},
    {"ProgramMenuFolder", "Program Menu"}, {"SendToFolder", "Send To Folder"},
    {"FavoritesFolder", "Favorites"},      {"FontsFolder", "Fonts"},
    {"PersonalFolder", "Personal"},        {"TempFolder", "Temp"},
};

}  // namespace

frmAdditionalFile::frmAdditionalFile(PageContext& context)
    : WizardDialog(context, kName, "Additional File"),
      SourceFileLabel(*this, "SourceFileLabel", "&Source File"),
      SourceFile(*this, "SourceFile"),
      Browse(*this, "Browse", "&Browse..."),
      DestinationFolderLabel(*this, "DestinationFolderLabel", "Destination &Folder"),
      DestinationFolder(*this, "DestinationFolder"),
      SubFoldersLabel(*this, "SubFoldersLabel", "S&ubfolders (optional)"),
      SubFolders(*this, "SubFolders"),
      cmdOK(*this, "cmdOK", "OK"),
      cmdCancel(*this, "cmdCancel", "Cancel"),
      Help(*this, "Help", "&Help"),
      db_(InstallerDb::Working(context.services, context.run)) {
  for (const auto& [internal_name, external_name] : kFolders)
    AddDestinationFolder(external_name, internal_name);
  for (char letter = 'A'; letter <= 'Z'; ++letter) AddDestinationFolder(std::string(1, letter) + ":", kDrive);
  cmdOK.is_default = true;
  cmdCancel.is_cancel = true;
  Browse.on_click = [this] {
    const std::string chosen =
        context_.services.dialogs->OpenFile("Select File", "All Files (*.*)|*.*", "", "");
    if (!chosen.empty()) SourceFile.SetText(chosen);
  };
  cmdOK.on_click = [this] { OnOk(); };
  cmdCancel.on_click = [this] {
    Hide();
    ClearFields();
  };
  Help.on_click = [this] { ShowHelp(context_, 1025); };
}

ui::Layout frmAdditionalFile::ContentLayout() {
  using namespace ui;
  return Column({Fields({Place(SourceFileLabel), Row({Place(SourceFile, 1), Place(Browse)}),
                         Place(DestinationFolderLabel), Place(DestinationFolder), Place(SubFoldersLabel),
                         Place(SubFolders)}),
                 Space(), Buttons({Space(), Place(cmdOK), Place(cmdCancel), Place(Help)})},
                1);
}

void frmAdditionalFile::AddDestinationFolder(const std::string& external_name,
                                             const std::string& internal_name) {
  DestinationFolder.Add(external_name);
  internal_names_.push_back(internal_name);
}

int frmAdditionalFile::GetDestinationFolderIndex(const std::string& external_name) const {
  for (size_t i = 0; i < DestinationFolder.Items().size(); ++i) {
    if (DestinationFolder.Items()[i] == external_name) return static_cast<int>(i);
  }
  return 0;
}

std::string frmAdditionalFile::GetDestinationFolderExternalName(const std::string& internal_name) const {
  for (size_t i = 0; i < internal_names_.size(); ++i) {
    if (internal_names_[i] == internal_name) return DestinationFolder.Items()[i];
  }
  return {};
}

std::string frmAdditionalFile::TakeFirstPathPart(std::string& path) {
  const size_t slash = path.find('\\');
  std::string part = path.substr(0, slash);
  path.erase(0, slash == std::string::npos ? slash : slash + 1);
  return part;
}

bool frmAdditionalFile::OnQueryUnload() {
  ClearFields();
  return true;
}

void frmAdditionalFile::ClearFields() {
  SourceFile.SetText("");
  DestinationFolder.Select(-1);
  SubFolders.SetText("");
  context_.navigator.Get<frmAdditionalFiles>().AdjustControls();
}

bool frmAdditionalFile::InputIsValid() {
  platform::Dialogs& dialogs = *context_.services.dialogs;
  if (!InPackage) {
    bool valid = !SourceFile.Text().empty();
    if (!valid) {
      dialogs.Message(
          "Please enter the location of the file you want to add in the Source File field.\n\n"
          "Pick a file to add using the Browse button.");
    }
    valid = valid && ValidatePath(context_.services, "Source file", SourceFile.Text(), kSourceChecks);
    if (!valid) {
      SourceFile.SelectField();
      return false;
    }
    if (DestinationFolder.Text().empty()) {
      dialogs.Message(
          "Please enter the name of the destination folder to which you want to install the product.");
      DestinationFolder.SetFocus();
      return false;
    }
    if (SubFolders.Text().find_first_of("|><\"?*:") != std::string::npos) {
      dialogs.Message(
          "Subfolders cannot contain any of the following characters: | > < \\\" ? * :. Please identify "
          "another subfolder, or rename the subfolder.");
      SubFolders.SelectField();
      return false;
    }
    if (AddingNew && IsDuplicate()) {
      dialogs.Message(
          "You attempted to add a duplicate file.  Please select a different file or click Cancel to return "
          "to the wizard.");
      SourceFile.SelectField();
      return false;
    }
  }
  return true;
}

bool frmAdditionalFile::IsDuplicate() const {
  const ui::Grid& grid = context_.navigator.Get<frmAdditionalFiles>().Grid;
  for (int row = 1; row <= grid.Rows() - 2; ++row) {
    if (grid.Cell(row, frmAdditionalFiles::kRealFile) == SourceFile.Text() &&
        grid.Cell(row, frmAdditionalFiles::kDestinationFolder) == DestinationFolder.Text() &&
        grid.Cell(row, frmAdditionalFiles::kSubfolders) == SubFolders.Text()) {
      return true;
    }
  }
  return false;
}

Result<frmAdditionalFile::File> frmAdditionalFile::LookUpFile() {
  if (InPackage) {
    KW_ASSIGN_OR_RETURN(const auto record,
                        db_.QuerySql("select `FileSize`from `File` where `File` = ?", {FileKey}));
    return File{SourceFile.Text().substr(std::string_view(kInPackage).size()),
                record ? record->IntegerData(1) : 0};
  }
  KW_ASSIGN_OR_RETURN(const auto entry, context_.services.files->GetFile(SourceFile.Text()));
  return File{entry.name, entry.size > kLargestSize ? 0 : static_cast<int>(entry.size)};
}

void frmAdditionalFile::OnOk() {
  if (!InputIsValid()) return;
  const auto file = LookUpFile();
  if (!file.ok()) {
    if (InPackage) {
      Check(file.status());
      return;
    }
    context_.services.dialogs->Message(
        "Unable to open the source file.  Please verify that the file exists and that you have the "
        "appropriate permissions to access the file.");
    SourceFile.SelectField();
    return;
  }
  if (const Status written = WriteRows(*file); !written.ok()) {
    Check({written.number(), "Unable to put the file " + SourceFile.Text() +
                                 " into the installation package.  " + written.message()});
    return;
  }
  Hide();
  FillGridRow();
  ClearFields();
}

// What can fail for a name's sake (text that the package cannot hold) fails before the old rows go.
Status frmAdditionalFile::WriteRows(const File& file) {
  frmAdditionalFiles& page = context_.navigator.Get<frmAdditionalFiles>();
  const std::string key = FileKey.substr(0, FileKey.find('_', 4)) + "_" + file.name;
  KW_ASSIGN_OR_RETURN(const std::string directory, WriteDirectories());
  if (key == FileKey) KW_RETURN_IF_ERROR(page.DeleteFileRows(key));
  KW_RETURN_IF_ERROR(db_.RunSql(
      "insert into `Component` (`Component`, `Directory_`, `Attributes`, `ComponentId`) values (?, ?, ?, ?)",
      {key, directory, 0, MakeGuidString(context_.services)}));
  KW_RETURN_IF_ERROR(db_.RunSql("insert into `FeatureComponents` (`Feature_`, `Component_`) values (?, ?)",
                                {"Console", key}));
  ++page.LastSequence;
  KW_RETURN_IF_ERROR(db_.RunSql(
      "insert into `File` (`File`, `Component_`, `FileName`, `FileSize`, `Attributes`, `Sequence`) values "
      "(?, ?, ?, ?, ?, ?)",
      {key, key, file.name, file.size, kCompressed, page.LastSequence}));
  if (key != FileKey) KW_RETURN_IF_ERROR(page.DeleteFileRows(FileKey));
  FileKey = key;
  return {};
}

// The directory that the file goes to; makes the rows of a drive's first use and of every subfolder.
Result<std::string> frmAdditionalFile::WriteDirectories() {
  const int selected = DestinationFolder.Selected();
  if (selected < 0) return {kErrorInvalidParameter, "No destination folder is selected."};
  std::string rest = SubFolders.Text();
  if (rest.starts_with('\\') || rest.find("\\\\") != std::string::npos)
    return {kErrorInvalidName, "The subfolders \"" + rest + "\" hold one without a name."};
  std::string& internal_name = internal_names_[static_cast<size_t>(selected)];
  if (internal_name == kDrive) {
    KW_ASSIGN_OR_RETURN(const std::string id, AddDirectory("TARGETDIR", "."));
    KW_RETURN_IF_ERROR(db_.RunSql("insert into `Property` (`Property`, `Value`) values (?, ?)",
                                  {id, DestinationFolder.Text() + "\\"}));
    internal_name = id;
  }
  std::string directory = internal_name;
  while (!rest.empty()) {
    KW_ASSIGN_OR_RETURN(directory, AddDirectory(directory, TakeFirstPathPart(rest)));
  }
  return directory;
}

Result<std::string> frmAdditionalFile::AddDirectory(const std::string& parent,
                                                    const std::string& default_dir) {
  // Rows of earlier runs stay in the package, and their keys are as unique as the time of day.
  std::string id;
  bool taken = true;
  while (taken) {
    id = MakeUniqueId(context_.services, context_.run);
    KW_ASSIGN_OR_RETURN(const auto row,
                        db_.QuerySql("select `Directory` from `Directory` where `Directory` = ?", {id}));
    taken = row != nullptr;
  }
  KW_RETURN_IF_ERROR(
      db_.RunSql("insert into `Directory` (`Directory`, `Directory_Parent`, `DefaultDir`) values (?, ?, ?)",
                 {id, parent, default_dir}));
  return id;
}

void frmAdditionalFile::FillGridRow() {
  ui::Grid& grid = context_.navigator.Get<frmAdditionalFiles>().Grid;
  const int row = grid.SelectedRow();
  grid.SetCell(row, frmAdditionalFiles::kSourceFile, SourceFile.Text());
  grid.SetCell(row, frmAdditionalFiles::kDestinationFolder, DestinationFolder.Text());
  grid.SetCell(row, frmAdditionalFiles::kSubfolders, SubFolders.Text());
  grid.SetCell(row, frmAdditionalFiles::kKey, FileKey);
  if (!InPackage) grid.SetCell(row, frmAdditionalFiles::kRealFile, SourceFile.Text());
  if (AddingNew) AddBlankRow(grid);
}

}  // namespace kw
