#include "settings/task_page.h"

#include <utility>

#include "base/text.h"
#include "package/file_rules.h"
#include "package/installer_db.h"
#include "package/staging.h"
#include "settings/branches.h"
#include "settings/frm_add_task.h"

namespace kw {
namespace {

using platform::Answer;
using platform::Hive;

/// Counters of default names have 32 bits.
constexpr long long kLargestCounter = 0x7FFFFFFF;
constexpr const char* kDeletedTasksKey = "SOFTWARE\\Orvantic\\ZED\\Deleted Tasks";

}  // namespace

TaskPage::TaskPage(PageContext& context, std::string name, std::string title, std::string text, int help_id,
                   bool& change_flag, std::string add_value, std::string fixed_identifier)
    : WizardPage(context, std::move(name), std::move(title), "Label4", std::move(text), help_id),
      Grid(*this, "Grid"),
      change_flag_(change_flag),
      add_value_(std::move(add_value)),
      fixed_identifier_(std::move(fixed_identifier)) {}

void TaskPage::MakeControls(const std::string& third_heading) {
  third_heading_ = third_heading;
  EditButton = std::make_unique<ui::Button>(*this, "EditButton", "&Edit...");
  DeleteButton = std::make_unique<ui::Button>(*this, "DeleteButton", "&Delete...");
  AddTasks =
      std::make_unique<ui::Option>(*this, "AddTasks", "Add these to e&xisting tasks on the target system");
  ReplaceTasks =
      std::make_unique<ui::Option>(*this, "ReplaceTasks", "&Replace existing tasks with these tasks");
  EditButton->on_click = [this] { OnEdit(); };
  DeleteButton->on_click = [this] { OnDelete(); };
  Grid.on_click = [this] { AdjustControls(); };
  Grid.on_double_click = [this] {
    if (EditButton->UserCanUse()) OnEdit();
  };
  Grid.on_delete_key = [this] {
    if (DeleteButton->UserCanUse()) OnDelete();
  };
  AddButtons();
}

ui::Layout TaskPage::TaskLayout(std::vector<ui::Layout> adding_buttons) {
  std::vector<ui::Layout> buttons = {ui::Space()};
  for (ui::Layout& button : adding_buttons) buttons.push_back(std::move(button));
  buttons.push_back(ui::Place(*EditButton));
  buttons.push_back(ui::Place(*DeleteButton));
  return ui::Column(
      {ui::Place(Grid, 1), ui::Row(std::move(buttons)), ui::Place(*AddTasks), ui::Place(*ReplaceTasks)}, 1);
}

void TaskPage::LoadPage() {
  const int third_width = third_heading_.empty() ? 0 : 2;
  Grid.SetColumns({"", "Task name", "Scheduled", third_heading_, ""}, {0, 5, 2, third_width, 0});
  AddTasks->SetValue(true);
  AdjustControls();
}

void TaskPage::LeavePage(const std::string& name) {
  if (!SavingTask) WizardPage::LeavePage(name);
}

std::string TaskPage::StagingKeyOf(const std::string& identifier) const {
  return std::string(kStagingVersionKey) + "\\Tasks\\" + identifier;
}

void TaskPage::ReadConfig() {
  EnsureLoaded();
  change_flag_ = false;
  Grid.SetRows(2);
  Grid.ClearRow(1);
  AddFixedTasks();
  AddTasks->SetValue(true);
  Hive root = Hive::kLocalMachine;
  std::string tasks = std::string(kLiveVersionKey) + "\\Tasks";
  if (!run_.SettingsFromSystem) {
    root = Hive::kCurrentUser;
    tasks = std::string(kStagingVersionKey) + "\\Tasks";
    if (ReadDword(services_, Hive::kCurrentUser, kStagingBranch, add_value_, 1) == 0)
      ReplaceTasks->SetValue(true);
  }
  if (auto key = services_.registry->OpenKey(root, tasks, platform::kKeyQuery); key.ok()) {
    for (uint32_t index = 0;; ++index) {
      const auto name = (*key)->EnumKey(index, kRegistryBuffer);
      if (!name.ok()) break;
      if (!name->empty() && ShowsTask(root, tasks + "\\" + *name)) AddOneTask("\\Tasks\\" + *name, *name);
    }
  }
  Grid.SelectRow(1);
  AdjustControls();
}

void TaskPage::AddOneTask(const std::string& path, const std::string& identifier) {
  Grid.SetRows(Grid.Rows() + 1);
  const int row = Grid.Rows() - 2;
  const bool live = run_.SettingsFromSystem;
  FillTaskInfo(live ? Hive::kLocalMachine : Hive::kCurrentUser,
               (live ? kLiveVersionKey : kStagingVersionKey) + path, row, identifier);
  Grid.SelectRow(row);
}

void TaskPage::FillTaskInfo(Hive root, const std::string& key, int row, const std::string& identifier) {
  Grid.SetCell(row, kScheduled, "No");
  Grid.SetCell(row, kIdentifier, identifier);
  auto opened = services_.registry->OpenKey(root, key, platform::kKeyQuery);
  if (opened.ok()) {
    if (const auto name = (*opened)->QueryValue("szTaskName", kRegistryBuffer);
        name.ok() && name->type == platform::kRegSz) {
      Grid.SetCell(row, kName, name->Text());
    }
    if (const auto scheduled = (*opened)->QueryValue("bSchedEnabled", kRegistryBuffer);
        scheduled.ok() && scheduled->Dword(0) != 0) {
      Grid.SetCell(row, kScheduled, "Yes");
    }
  }
  FillMore(opened.ok() ? opened->get() : nullptr, row, identifier);
}

bool TaskPage::IsUniqueName(const std::string& name, int skip_row) const {
  for (int row = 1; row < Grid.Rows(); ++row) {
    if (row != skip_row && EqualsNoCase(Grid.Cell(row, kName), name)) return false;
  }
  return true;
}

std::string TaskPage::NextFreeName(const std::string& base) const {
  std::string candidate = base;
  long long counter = 1;
  for (int row = 1; row < Grid.Rows(); ++row) {
    const std::string& name = Grid.Cell(row, kName);
    if (!StartsWithNoCase(name, candidate)) continue;
    if (name.size() > base.size()) {
      // What stands behind the base and one blank; text that is no number leaves the counter.
      const std::string_view rest =
          TrimBlanks(std::string_view(name).substr(std::min(name.size(), base.size() + 1)));
      const bool is_number = !rest.empty() && rest.find_first_not_of("0123456789") == std::string_view::npos;
      const long long number = LeadingInteger(rest);
      if (is_number && counter <= number && number < kLargestCounter) counter = number + 1;
    }
    candidate = base + " " + std::to_string(counter);
  }
  return candidate;
}

void TaskPage::AdjustControls() {
  if (Grid.Rows() >= 3 && Grid.SelectedRow() == Grid.Rows() - 1) Grid.SelectRow(Grid.Rows() - 2);
  const std::string& identifier = Grid.Cell(Grid.SelectedRow(), kIdentifier);
  const bool empty = Grid.Rows() == 2 && identifier.empty();
  Grid.SetHighlight(!empty);
  EditButton->SetEnabled(!empty);
  DeleteButton->SetEnabled(!empty && identifier != fixed_identifier_);
}

void TaskPage::OpenTaskDialog(const std::string& identifier, const std::string& name, bool is_new,
                              TaskKind kind) {
  frmAddTask& dialog = navigator_.Get<frmAddTask>();
  dialog.ReadConfig(identifier, name, is_new, kind);
  dialog.ShowModal();
}

void TaskPage::NewTask(const std::string& name, TaskKind kind) {
  if (SavingTask) return;
  Grid.SelectRow(Grid.Rows() - 1);
  OpenTaskDialog(MakeGuidString(services_), name, true, kind);
}

// The only undo that a cancelled edit has.
void TaskPage::SaveTask(const std::string& identifier, const std::string& file) {
  SavingTask = true;
  RunAndWait(services_, run_, context_.host,
             "regedit /s /e \"" + file + "\" \"HKEY_CURRENT_USER\\" + StagingKeyOf(identifier) + "\"",
             platform::WindowStyle::kHidden);
  SavingTask = false;
}

void TaskPage::OnEdit() {
  if (SavingTask) return;
  const int row = Grid.SelectedRow();
  const std::string identifier = Grid.Cell(row, kIdentifier);
  const std::string saved = run_.TempFolder + "\\" + identifier + ".reg";
  if (!run_.SettingsFromSystem) {
    SaveTask(identifier, saved);
    // The selection may have moved meanwhile.
    Grid.SelectRow(row);
  }
  OpenTaskDialog(identifier, Grid.Cell(row, kName), false, KindOfRow(row));
  if (services_.files->FileExists(saved)) services_.files->DeleteFile(saved, true).IgnoreError();
}

bool TaskPage::Ask(const std::string& text) {
  return services_.dialogs->Question(text, {Answer::kOk, Answer::kCancel}, Answer::kOk, "") == Answer::kOk;
}

void TaskPage::OnDelete() {
  if (SavingTask) return;
  const int row = Grid.SelectedRow();
  if (Grid.Cell(row, kName).empty() || !ConfirmDelete(row)) return;
  const std::string identifier = Grid.Cell(row, kIdentifier);
  DeleteBranch(services_, Hive::kCurrentUser, std::string(kStagingVersionKey) + "\\Tasks\\" + identifier);
  MarkTaskDeleted(identifier, true);
  if (Grid.Rows() < 3) {
    for (const int column : {kName, kScheduled, kType, kIdentifier}) Grid.SetCell(row, column, "");
  } else {
    Grid.RemoveRow(row);
    Grid.SelectRow(row);
  }
  AdjustControls();
}

// The value travels with the staging branch, so that the target can remove the task.
void TaskPage::MarkTaskDeleted(const std::string& identifier, bool value) {
  auto key = services_.registry->CreateKey(Hive::kCurrentUser, kDeletedTasksKey, platform::kKeyAll);
  if (!Check(key.status())) return;
  Check((*key)->SetValue(identifier, platform::RegistryValue::OfDword(value ? 1 : 0)));
}

void TaskPage::AddChoices(ui::ListBox& list) {
  if (Grid.Rows() < 3) {
    list.Add("\tNone");
  } else {
    for (int row = 1; row < Grid.Rows(); ++row) {
      if (Grid.Cell(row, kName).empty()) continue;
      list.Add("\tTask name: " + Grid.Cell(row, kName));
      list.Add("\tScheduled: " + Grid.Cell(row, kScheduled));
      AddTypeLine(list, row);
    }
    list.Add(AddTasks->Value() ? "\tAdd to existing tasks on the target system"
                               : "\tReplace existing tasks on the target system");
  }
  list.Add("");
}

}  // namespace kw
