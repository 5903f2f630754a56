#include "settings/frm_auto_update.h"

#include "base/text.h"
#include "settings/branches.h"
#include "settings/frm_scheduled_scan.h"
#include "settings/product_tool.h"

namespace kw {
namespace {

constexpr const char* kFixedTask = "{A14CD6FC-3BA8-4703-87BF-E3247CE382F5}";
constexpr const char* kUpdate = "Update";
constexpr const char* kMirror = "Mirror";

}  // namespace

frmAutoUpdate::frmAutoUpdate(PageContext& context)
    : TaskPage(context, kName, "AutoUpdate Schedule", "Schedule AutoUpdate tasks.", 1010,
               context.run.changes.ConfigChangedUpdate, "AddUpdateTasks", kFixedTask),
      NewUpdateButton(*this, "NewUpdateButton", "&Add Update Task..."),
      NewMirrorButton(*this, "NewMirrorButton", "Add &Mirror Task...") {
  NewUpdateButton.on_click = [this] { NewTask(NewTaskName(false), TaskKind::kUpdate); };
  NewMirrorButton.on_click = [this] { NewTask(NewTaskName(true), TaskKind::kMirror); };
  Grid.on_insert_key = NewUpdateButton.on_click;
  MakeControls("Task type");
}

ui::Layout frmAutoUpdate::PageLayout() {
  return TaskLayout({ui::Place(NewUpdateButton), ui::Place(NewMirrorButton)});
}

bool frmAutoUpdate::ShowsTask(platform::Hive root, const std::string& key) {
  return !IsScanTaskKey(services_, root, key);
}

void frmAutoUpdate::FillMore(platform::RegistryKey* open_key, int row, const std::string&) {
  Grid.SetCell(row, kType, kUpdate);
  if (open_key != nullptr) {
    const auto mirror = open_key->QueryValue("bMirrorTask", kRegistryBuffer);
    if (mirror.ok() && mirror->Dword(0) != 0) Grid.SetCell(row, kType, kMirror);
  }
  if (Grid.Cell(row, TaskPage::kName).empty()) {
    Grid.SetCell(row, TaskPage::kName, NewTaskName(Grid.Cell(row, kType) == kMirror));
  }
}

TaskKind frmAutoUpdate::KindOfRow(int row) const {
  return EqualsNoCase(Grid.Cell(row, kType), kMirror) ? TaskKind::kMirror : TaskKind::kUpdate;
}

bool frmAutoUpdate::ConfirmDelete(int row) {
  return Ask("This item will be deleted:\n\n  Task name: " + Grid.Cell(row, TaskPage::kName) +
             "\n  Scheduled: " + Grid.Cell(row, kScheduled) + "\n  Task type: " + Grid.Cell(row, kType));
}

void frmAutoUpdate::AddTypeLine(ui::ListBox& list, int row) {
  list.Add("\tTask type: " + Grid.Cell(row, kType));
}

void frmAutoUpdate::TransferSettings() {
  for (int row = 1; row < Grid.Rows(); ++row) {
    const std::string identifier = Grid.Cell(row, kIdentifier);
    const std::string name = Grid.Cell(row, TaskPage::kName);
    const std::string key = StagingKeyOf(identifier);
    if (identifier.empty() || !DeleteEmptyKey(services_, key)) continue;
    // The name stands without quotes here, unlike in the dialog's command.
    RunProductTool(context_, *this, "TxFetch /FLUSHSETTINGS /TASK " + identifier + " /TASKNAME " + name,
                   false);
    // A tool that left no key leaves no name to write; its failure is not reported.
    auto opened = services_.registry->OpenKey(platform::Hive::kCurrentUser, key, platform::kKeySet);
    if (opened.ok()) (*opened)->SetValue("szTaskName", platform::RegistryValue::OfText(name)).IgnoreError();
  }
}

}  // namespace kw
