#include "payloads/frm_patch_files.h"

#include <algorithm>

#include "base/path.h"
#include "base/text.h"
#include "package/file_rules.h"
#include "pages/startup_ini.h"

namespace kw {
namespace {

using platform::Answer;

std::string PatchKey(int number) { return "PatchFile" + std::to_string(number); }

}  // namespace

frmPatchFiles::frmPatchFiles(PageContext& context)
    : WizardPage(context, kName, "Patch Files", "Label4", "Specify patch files (service packs or hotfixes).",
                 1018),
      PatchFiles(*this, "PatchFiles"),
      Add(*this, "Add", "&Add..."),
      Edit(*this, "Edit", "&Edit..."),
      Delete(*this, "Delete", "&Delete...") {
  Add.on_click = [this] { OnAdd(); };
  Edit.on_click = [this] { OnEdit(); };
  Delete.on_click = [this] { OnDelete(); };
  PatchFiles.on_double_click = [this] {
    if (Edit.UserCanUse()) OnEdit();
  };
  PatchFiles.on_delete_key = [this] {
    if (Delete.UserCanUse()) OnDelete();
  };
  PatchFiles.on_insert_key = [this] { OnAdd(); };
  EnableButtons(false);
  AddButtons();
}

ui::Layout frmPatchFiles::PageLayout() {
  using namespace ui;
  return Column({Place(PatchFiles, 1), Row({Space(), Place(Add), Place(Edit), Place(Delete)})}, 1);
}

void frmPatchFiles::EnableButtons(bool enabled) {
  Edit.SetEnabled(enabled);
  Delete.SetEnabled(enabled);
}

void frmPatchFiles::ReadConfig() {
  EnsureLoaded();
  // Nothing uses the folder, so that an error in making it is passed over.
  MakeOwnFolder(services_, run_.TempFolder + "\\Patches").IgnoreError();
  for (int i = 0;; ++i) {
    const std::string value =
        ReadIniValue(services_, run_.WorkingSetupIniPath, kStartupSection, PatchKey(i), "");
    if (value.empty()) break;
    const std::string path = run_.SourceFolder + "\\" + value;
    if (services_.files->FileExists(path)) {
      PatchFiles.Add(path);
      PatchFiles.Select(PatchFiles.Count() - 1);
      EnableButtons(true);
    } else {
      services_.dialogs->Message(
          "This package has specified the patch file " + value +
          " for installation. However, the file could not be found.  You may configure patches "
          "later on the Patch page.");
    }
    // Only the build brings the key back.
    if (!Check(
            WriteIniValue(services_, run_.WorkingSetupIniPath, kStartupSection, PatchKey(i), std::nullopt)))
      return;
  }
}

std::string frmPatchFiles::BrowsePatchFile(const std::string& current_path, bool& cancelled) {
  const std::string chosen = services_.dialogs->OpenFile("Select Patch File to Install",
                                                         "Patch Files (*.msp)|*.msp", "", current_path);
  cancelled = chosen.empty();
  // A cancelled dialog still holds the name that it began with.
  return ToUpper(cancelled ? current_path : chosen);
}

const char* frmPatchFiles::Refusal(const std::string& name, int skip) const {
  if (!EndsWithNoCase(name, ".msp")) {
    return "You attempted to add a file that does not have the .MSP extension.  Please select a valid patch "
           "file with the .MSP extension or click Cancel to return to the wizard.";
  }
  for (int line = 0; line < PatchFiles.Count(); ++line) {
    if (line != skip && PatchFiles.Items()[static_cast<size_t>(line)] == name) {
      return "You attempted to add a duplicate file.  Please select a different file or click Cancel to "
             "return to the wizard.";
    }
  }
  return nullptr;
}

std::string frmPatchFiles::AskForPatch(const std::string& current_path, int skip) {
  while (!context_.host.Ended()) {
    bool cancelled = false;
    const std::string name = BrowsePatchFile(current_path, cancelled);
    if (name.empty()) return {};
    const char* refusal = Refusal(name, skip);
    if (refusal == nullptr) return name;
    // The package may name a patch that no test passes: then Cancel alone leads back.
    if (cancelled) return {};
    services_.dialogs->Message(refusal);
  }
  return {};
}

void frmPatchFiles::OnAdd() {
  const std::string name = AskForPatch("", -1);
  if (name.empty()) return;
  PatchFiles.Add(name);
  PatchFiles.Select(PatchFiles.Count() - 1);
  EnableButtons(true);
  UpdateListExtent();
}

void frmPatchFiles::OnEdit() {
  const int line = PatchFiles.Selected();
  if (line < 0) return;
  const std::string name = AskForPatch(PatchFiles.Items()[static_cast<size_t>(line)], line);
  if (name.empty()) return;
  PatchFiles.Insert(line + 1, name);
  PatchFiles.Select(line + 1);
  PatchFiles.Remove(line);
  UpdateListExtent();
}

void frmPatchFiles::OnDelete() {
  const int line = PatchFiles.Selected();
  if (line < 0) return;
  const Answer answer = services_.dialogs->Question(
      "This item will be deleted:\n\nFile name: " + PatchFiles.Items()[static_cast<size_t>(line)],
      {Answer::kOk, Answer::kCancel}, Answer::kOk, "");
  if (answer != Answer::kOk) return;
  if (PatchFiles.Count() == 1) {
    EnableButtons(false);
  } else {
    PatchFiles.Select(line == 0 ? 1 : line - 1);
  }
  PatchFiles.Remove(line);
  UpdateListExtent();
}

void frmPatchFiles::UpdateListExtent() {
  int widest = 0;
  for (const std::string& line : PatchFiles.Items()) {
    widest = std::max(widest, context_.host.TextWidth(*this, line + "   "));
  }
  PatchFiles.SetHorizontalExtent(widest);
}

void frmPatchFiles::AddChoices(ui::ListBox& list) {
  const std::string head = "\tThe following patch files should be added to the installation package: ";
  list.Add(PatchFiles.Count() == 0 ? head + "None" : head);
  for (const std::string& path : PatchFiles.Items()) list.Add("\t" + path);
  list.Add("");
}

// The build names this step; no more is said of a failure than the copy itself asks.
bool frmPatchFiles::SaveConfig() {
  for (int i = 0; i < PatchFiles.Count(); ++i) {
    const std::string& path = PatchFiles.Items()[static_cast<size_t>(i)];
    if (!CopyFileToFolder(services_, path, run_.DestinationFolder, run_.DestinationFileList) ||
        !WriteIniValue(services_, run_.WorkingSetupIniPath, kStartupSection, PatchKey(i), FileNameOf(path))
             .ok()) {
      return false;
    }
  }
  return true;
}

}  // namespace kw
