#include "pages/frm_add_program.h"

#include "base/text.h"
#include "package/file_rules.h"
#include "pages/frm_programs.h"

namespace kw {
namespace {

constexpr unsigned kProgramChecks =
    kCheckCharacters | kCheckLocal | kCheckUnc | kCheckFileExists | kCheckFileNotEmpty;

}  // namespace

frmAddProgram::frmAddProgram(PageContext& context)
    : WizardDialog(context, kName, "Add Program"),
      ExeFileNameLabel(*this, "ExeFileNameLabel", "&Program"),
      ExeFileName(*this, "ExeFileName"),
      Browse(*this, "Browse", "&Browse..."),
      ParametersLabel(*this, "ParametersLabel", "&Command line arguments"),
      Parameters(*this, "Parameters"),
      OK(*this, "OK", "OK"),
      Cancel(*this, "Cancel", "Cancel"),
      Help(*this, "Help", "&Help") {
  OK.is_default = true;
  Cancel.is_cancel = true;
  Browse.on_click = [this] {
    const std::string chosen = context_.services.dialogs->OpenFile(
        "Select Program", "Executable Files (*.exe; *.com)|*.exe;*.com", "", "");
    if (!chosen.empty()) ExeFileName.SetText(chosen);
  };
  OK.on_click = [this] { OnOk(); };
  Cancel.on_click = [this] { Hide(); };
  Help.on_click = [this] { ShowHelp(context_, 1027); };
}

ui::Layout frmAddProgram::ContentLayout() {
  using namespace ui;
  return Column({Fields({Place(ExeFileNameLabel), Row({Place(ExeFileName, 1), Place(Browse)}),
                         Place(ParametersLabel), Place(Parameters)}),
                 Space(), Buttons({Space(), Place(OK), Place(Cancel), Place(Help)})},
                1);
}

bool frmAddProgram::ProgramIsValid() {
  platform::Services& services = context_.services;
  const std::string& text = ExeFileName.Text();
  if (text.empty()) {
    services.dialogs->Message(
        "Please enter the location of the file you want to add in the Program field.\n\n"
        "Pick a file to add using the Browse button.");
    return false;
  }
  if (!ValidatePath(services, "Program", text, kProgramChecks)) return false;
  if (!EndsWithNoCase(text, ".com") && !EndsWithNoCase(text, ".exe")) {
    services.dialogs->Message(
        "Only .COM or .EXE files are allowed.  Please enter the path to a valid .COM or .EXE program.");
    return false;
  }
  return true;
}

bool frmAddProgram::DuplicateIsWanted() {
  const ui::Grid& grid = context_.navigator.Get<frmPrograms>().Grid;
  for (int row = 1; row <= grid.Rows() - 2; ++row) {
    if (!EqualsNoCase(grid.Cell(row, frmPrograms::kRealFile), ExeFileName.Text())) continue;
    return context_.services.dialogs->Question(
               "This program has been added previously. Click OK to add the program again or Cancel to enter "
               "another program.",
               {platform::Answer::kOk, platform::Answer::kCancel}, platform::Answer::kOk,
               "") == platform::Answer::kOk;
  }
  return true;
}

void frmAddProgram::OnOk() {
  if ((!InPackage && !ProgramIsValid()) || (AddingNew && !DuplicateIsWanted())) {
    ExeFileName.SelectField();
    return;
  }
  Hide();
  frmPrograms& page = context_.navigator.Get<frmPrograms>();
  const int row = page.Grid.SelectedRow();
  page.Grid.SetCell(row, frmPrograms::kPathname, ExeFileName.Text());
  page.Grid.SetCell(row, frmPrograms::kArguments, Parameters.Text());
  if (!InPackage) page.Grid.SetCell(row, frmPrograms::kRealFile, ExeFileName.Text());
  if (AddingNew) AddBlankRow(page.Grid);
  ExeFileName.SetText("");
  Parameters.SetText("");
  page.AdjustControls();
}

}  // namespace kw
