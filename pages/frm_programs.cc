#include "pages/frm_programs.h"

#include <cstdint>
#include <utility>

#include "base/path.h"
#include "package/file_rules.h"
#include "pages/frm_add_program.h"

namespace kw {
namespace {

constexpr const char* kBinaryPrefix = "id_RunFileBin_";
constexpr const char* kActionPrefix = "id_RunFileCust_";
// A program from the Binary table, deferred inside the script, its exit code ignored.
constexpr int kProgramActionType = 1024 + 64 + 2;
constexpr const char* kBinaryRows = "select `Name`, `Data` from `Binary`";
constexpr const char* kActionOfBinary = "select `Action`, `Target` from `CustomAction` where `Source` = ?";

}  // namespace

frmPrograms::frmPrograms(PageContext& context)
    : GridPage(context, kName, "Programs",
               "Specify programs to include in the installation package and run after installation.", 1020),
      db_(InstallerDb::Working(context.services, context.run)) {}

void frmPrograms::LoadPage() {
  Grid.SetColumns({"", "Program pathname", "Command line arguments", ""}, {0, 1, 1, 0});
  AdjustControls();
  navigator_.Get<frmAddProgram>().EnsureLoaded();
}

void frmPrograms::ReadConfig() {
  EnsureLoaded();
  Check(ReadPrograms());
  AdjustControls();
}

Status frmPrograms::ReadPrograms() {
  KW_ASSIGN_OR_RETURN(const auto rows, db_.QueryAll(kBinaryRows));
  int n = 1;
  for (const auto& record : rows) {
    const std::string name = record->StringData(1);
    if (!name.starts_with(kBinaryPrefix)) continue;
    const std::string file = name.substr(name.rfind('_') + 1);
    const std::string folder = JoinPath(run_.TempFolder, MakeUniqueId(services_, run_));
    KW_ASSIGN_OR_RETURN(const auto action, db_.QuerySql(kActionOfBinary, {name}));
    const std::string path = JoinPath(folder, file);
    if (Extract(name, folder, file)) {
      Grid.InsertRow(1);
      // After a failed extraction the count is ahead of the rows, and the program lands one row too high.
      const int row = Grid.Rows() - n - 1;
      if (row < 0)
        return {kErrorInvalidParameter, "The list of programs has no row " + std::to_string(row) + "."};
      Grid.SetCell(row, kPathname, kInPackage + file);
      Grid.SetCell(row, kArguments, action ? action->StringData(2) : "");
      Grid.SetCell(row, kRealFile, path);
    } else {
      services_.dialogs->Message(
          "Unable to extract program " + file +
          " from the .MSI file.  You will be unable to add this program to the new .MSI file "
          "you are currently configuring.");
    }
    ++n;
  }
  return {};
}

// False when the program cannot be had; then nothing of it takes up room.
bool frmPrograms::Extract(const std::string& name, const std::string& folder, const std::string& file) {
  // A package may come from anywhere, and its names must not lead out of the folder.
  if (file.find_first_of("\\/:") != std::string::npos || !services_.files->CreateFolder(folder).ok())
    return false;
  if (db_.ExtractBinary(name, JoinPath(folder, file)).value_or(false)) return true;
  // What resists goes with the temp folder at the end of the run.
  services_.files->DeleteFolder(folder, true).IgnoreError();
  return false;
}

void frmPrograms::OnNew() {
  // The header and the blank row count, so that the list holds 99 programs.
  if (Grid.Rows() > 100) {
    services_.dialogs->Message(
        "Cannot add more than 100 programs to run.  Please delete an existing program before adding a new "
        "one.");
    return;
  }
  Grid.SelectRow(Grid.Rows() - 1);
  frmAddProgram& dialog = navigator_.Get<frmAddProgram>();
  dialog.AddingNew = true;
  dialog.InPackage = false;
  dialog.ExeFileName.EnableWithColor(true);
  dialog.Browse.SetEnabled(true);
  dialog.ShowModal();
}

void frmPrograms::OnEdit() {
  // Cancel of a new program leaves the blank row selected, and what is put there is never written.
  AdjustControls();
  const int row = Grid.SelectedRow();
  frmAddProgram& dialog = navigator_.Get<frmAddProgram>();
  dialog.InPackage = Grid.Cell(row, kPathname).starts_with(kInPackage);
  dialog.ExeFileName.EnableWithColor(!dialog.InPackage);
  dialog.Browse.SetEnabled(!dialog.InPackage);
  dialog.ExeFileName.SetText(Grid.Cell(row, kPathname));
  dialog.Parameters.SetText(Grid.Cell(row, kArguments));
  dialog.AddingNew = false;
  dialog.ShowModal();
}

void frmPrograms::OnDelete() {
  const int row = Grid.SelectedRow();
  if (Grid.Cell(row, kRealFile).empty()) return;
  if (!ConfirmDelete("  Program: " + Grid.Cell(row, kPathname) +
                     "\n  Command line options: " + Grid.Cell(row, kArguments)))
    return;
  RemoveSelectedRow();
  AdjustControls();
}

bool frmPrograms::HasFile(int row) const {
  const std::string& path = Grid.Cell(row, kRealFile);
  return !path.empty() && path != "(none)";
}

bool frmPrograms::AllFilesExist() {
  for (int row = 1; row <= Grid.Rows() - 2; ++row) {
    const std::string& path = Grid.Cell(row, kRealFile);
    if (!HasFile(row) || services_.files->FileExists(path)) continue;
    services_.dialogs->Message("Could not find the file " + path + ".  Please verify that the file exits.");
    return false;
  }
  return true;
}

// Everything that can fail for one program's sake (a file that cannot be read, a name that the package cannot
// hold) fails here, before anything is written.
Result<std::vector<frmPrograms::Program>> frmPrograms::PreparePrograms() {
  std::vector<Program> programs;
  for (int row = 1; row <= Grid.Rows() - 2; ++row) {
    if (!HasFile(row)) continue;
    const std::string& path = Grid.Cell(row, kRealFile);
    const std::string tail = std::to_string(row) + "_" + FileNameOf(path);
    Program program{row, kBinaryPrefix + tail, kActionPrefix + tail, run_.Installer->CreateRecord(1),
                    nullptr};
    if (const Status prepared = Prepare(program, path); !prepared.ok())
      return Error{prepared.number(), "Unable to put the program " + path +
                                          " into the installation package.  " + prepared.message()};
    programs.push_back(std::move(program));
  }
  return programs;
}

Status frmPrograms::Prepare(Program& program, const std::string& path) {
  // The name stands in the statement as it is.
  if (program.binary.find('\'') != std::string::npos)
    return {kErrorInvalidName, "The name of a program cannot hold an apostrophe.  Please rename the file."};
  KW_RETURN_IF_ERROR(services_.files->Open(path, platform::OpenHow::kReadExisting).status());
  KW_RETURN_IF_ERROR(program.stream->SetStream(1, path));
  KW_RETURN_IF_ERROR(TryRows(program.row, FileNameOf(path)));
  KW_ASSIGN_OR_RETURN(program.insert_binary,
                      run_.WorkingDatabase->OpenView("insert into `Binary` (`Data`, `Name`) values (?, '" +
                                                     program.binary + "')"));
  return {};
}

// Rows for a program as they will be, but with the number 0, taken back at once: a name that is too long for
// the package, or text that it cannot hold.
Status frmPrograms::TryRows(int row, const std::string& file) {
  const std::string tail = std::string(std::to_string(row).size(), '0') + "_" + file;
  const std::string probe = JoinPath(run_.TempFolder, "probe");
  KW_RETURN_IF_ERROR(services_.files->WriteFile(probe, "probe"));
  KW_RETURN_IF_ERROR(db_.ReplaceBinary(kBinaryPrefix + tail, probe));
  KW_RETURN_IF_ERROR(db_.RunSql("delete from `Binary` where `Name` = ?", {kBinaryPrefix + tail}));
  KW_RETURN_IF_ERROR(db_.RunSql(
      "insert into `CustomAction` (`Action`, `Type`, `Source`, `Target`) values (?, ?, ?, ?)",
      {kActionPrefix + tail, kProgramActionType, kBinaryPrefix + tail, Grid.Cell(row, kArguments)}));
  return db_.RunSql("delete from `CustomAction` where `Action` = ?", {kActionPrefix + tail});
}

Status frmPrograms::DeleteOldRows() {
  KW_ASSIGN_OR_RETURN(const auto rows, db_.QueryAll(kBinaryRows));
  for (const auto& record : rows) {
    const std::string name = record->StringData(1);
    if (!name.starts_with(kBinaryPrefix)) continue;
    KW_ASSIGN_OR_RETURN(const auto action, db_.QuerySql(kActionOfBinary, {name}));
    if (action) {
      KW_RETURN_IF_ERROR(
          db_.RunSql("delete from `InstallExecuteSequence` where `Action` = ?", {action->StringData(1)}));
    }
    KW_RETURN_IF_ERROR(db_.RunSql("delete from `CustomAction` where `Source` = ?", {name}));
    KW_RETURN_IF_ERROR(db_.RunSql("delete from `Binary` where `Name` = ?", {name}));
  }
  return {};
}

Status frmPrograms::WriteProgram(const Program& program, int finalize_sequence) {
  KW_RETURN_IF_ERROR(
      db_.RunSql("insert into `CustomAction` (`Action`, `Type`, `Source`, `Target`) values (?, ?, ?, ?)",
                 {program.action, kProgramActionType, program.binary, Grid.Cell(program.row, kArguments)}));
  KW_RETURN_IF_ERROR(program.insert_binary->Execute(program.stream.get()));
  program.stream->ClearData();
  program.insert_binary->Close();
  const auto sequence = static_cast<int16_t>(finalize_sequence + program.row - Grid.Rows() - 20);
  return db_.RunSql(
      "insert into `InstallExecuteSequence` (`Action`, `Condition`, `Sequence`) values (?, ?, ?)",
      {program.action, "(NOT Installed) OR REINSTALL", int32_t{sequence}});
}

void frmPrograms::LeavePage(const std::string& name) {
  if (!AllFilesExist()) return;
  const auto programs = PreparePrograms();
  if (!Check(programs.status()) || !Check(DeleteOldRows())) return;
  const auto finalize =
      db_.QuerySql("select `Sequence` from `InstallExecuteSequence` where `Action` = 'InstallFinalize'");
  if (!Check(finalize.status())) return;
  if (!*finalize) {
    services_.dialogs->Message(
        "InstallFinalize action is missing.  The installation package may be corrupted.  Please specify "
        "another source.");
    return;
  }
  for (const Program& program : *programs) {
    if (!Check(WriteProgram(program, (*finalize)->IntegerData(1)))) return;
  }
  navigator_.GoToPage(name);
}

void frmPrograms::OnBack() { navigator_.GoToPage(navigator_.PreviousPageName()); }

void frmPrograms::AddChoices(ui::ListBox& list) {
  for (int row = 1; row <= Grid.Rows() - 1; ++row) {
    const std::string& path = Grid.Cell(row, kPathname);
    if (!path.empty()) {
      list.Add("\tProgram: " + path);
      list.Add("\tCommand-line options: " + Grid.Cell(row, kArguments));
    } else if (row == 1) {
      list.Add("\tNone");
    }
  }
  list.Add("");
}

}  // namespace kw
