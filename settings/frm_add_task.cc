#include "settings/frm_add_task.h"

#include "base/text.h"
#include "package/file_rules.h"
#include "package/staging.h"
#include "settings/branches.h"
#include "settings/frm_auto_update.h"
#include "settings/frm_scheduled_scan.h"
#include "settings/product_tool.h"

namespace kw {
namespace {

struct KindFacts {
  const char* word;
  const char* flag;
  int help_add;
  int help_edit;
};

const KindFacts& FactsOf(TaskKind kind) {
  static constexpr KindFacts kScan = {"Scheduled Scan", "bOdsCfg32", 1031, 1032};
  static constexpr KindFacts kUpdate = {"AutoUpdate", "bTxFetch", 1029, 1030};
  static constexpr KindFacts kMirror = {"Mirror", "bTxFetch", 1033, 1034};
  switch (kind) {
    case TaskKind::kUpdate:
      return kUpdate;
    case TaskKind::kMirror:
      return kMirror;
    default:
      return kScan;
  }
}

std::string ToolCommand(TaskKind kind, const std::string& identifier, const std::string& name) {
  const std::string tool = kind == TaskKind::kScan ? "OdsCfg32" : "TxFetch";
  return tool + " /TASK " + identifier + (kind == TaskKind::kMirror ? " /MIRROR" : "") + " /TASKNAME \"" +
         name + "\"";
}

}  // namespace

frmAddTask::frmAddTask(PageContext& context)
    : WizardDialog(context, kName, "Add Task"),
      TaskNameLabel(*this, "TaskNameLabel", "&Task name"),
      TaskName(*this, "TaskName"),
      ConfigureSettings(*this, "ConfigureSettings", ""),
      OK(*this, "OK", "OK"),
      Cancel(*this, "Cancel", "Cancel"),
      Help(*this, "Help", "&Help") {
  OK.is_default = true;
  Cancel.is_cancel = true;
  TaskName.on_change = [this] { OnNameChange(); };
  ConfigureSettings.on_click = [this] { OnConfigure(); };
  OK.on_click = [this] { OnOk(); };
  Cancel.on_click = [this] { AbandonTask(); };
  Help.on_click = [this] {
    ShowHelp(context_, IsNewTask ? FactsOf(kind_).help_add : FactsOf(kind_).help_edit);
  };
}

ui::Layout frmAddTask::ContentLayout() {
  using namespace ui;
  return Column({Fields({Place(TaskNameLabel), Place(TaskName)}), Row({Place(ConfigureSettings), Space()}),
                 Space(), Buttons({Space(), Place(OK), Place(Cancel), Place(Help)})},
                1);
}

TaskPage& frmAddTask::Parent() {
  if (kind_ == TaskKind::kScan) return context_.navigator.Get<frmScheduledScan>();
  return context_.navigator.Get<frmAutoUpdate>();
}

std::string frmAddTask::Key() { return Parent().StagingKeyOf(identifier_); }

void frmAddTask::ReadConfig(const std::string& identifier, const std::string& name, bool is_new,
                            TaskKind kind) {
  EnsureLoaded();
  identifier_ = identifier;
  IsNewTask = is_new;
  kind_ = kind;
  const std::string word = FactsOf(kind).word;
  SetCaption((is_new ? "Add " : "Edit ") + word + " Task");
  ConfigureSettings.SetText("&Configure " + word + " Properties");
  TaskName.SetText(name);
  TaskName.SetEnabled(identifier != kDefaultTask);
  OK.SetEnabled(false);
}

bool frmAddTask::NameCanStand() {
  TaskPage& parent = Parent();
  return !TaskName.Text().empty() && parent.IsUniqueName(TaskName.Text(), parent.Grid.SelectedRow());
}

void frmAddTask::OnNameChange() {
  const bool can_stand = NameCanStand();
  ConfigureSettings.SetEnabled(can_stand);
  if (!can_stand) {
    OK.SetEnabled(false);
  } else if (!IsNewTask) {
    OK.SetEnabled(true);
  }
}

void frmAddTask::OnConfigure() {
  if (InSettingsTool) return;
  InSettingsTool = true;
  Configure();
  InSettingsTool = false;
}

void frmAddTask::Configure() {
  platform::Services& services = context_.services;
  // An empty or missing key means not configured, so that the tool loads the live settings.
  const bool already_configured = !context_.run.SettingsFromSystem || !DeleteEmptyKey(services, Key());
  const std::string name = TaskName.Text();
  const std::string identifier = identifier_;
  abandoned_.clear();
  const bool is_new = IsNewTask;
  const int result =
      RunProductTool(context_, *this, ToolCommand(kind_, identifier_, name), already_configured);
  const bool changed = TakeChangeFlag(services, FactsOf(kind_).flag);
  if (result != 0) {
    services.dialogs->Message(std::string("Configuring ") + FactsOf(kind_).word + " task '" + name +
                              "' failed. Please make sure that Kestrane Enterprise is installed properly.");
  }
  if (abandoned_ == identifier) {
    // The dialog was abandoned before the tool had saved.
    ForgetChanges(identifier, is_new);
    return;
  }
  // The name may have been changed while the tool ran.
  const bool enabled = changed && NameCanStand();
  if (IsNewTask || enabled) OK.SetEnabled(enabled);
}

void frmAddTask::OnOk() {
  // The tool has yet to save what is to be named. One that runs on for an abandoned task does not count.
  if (InSettingsTool && abandoned_.empty()) return;
  platform::Services& services = context_.services;
  Hide();
  const std::string key = Key();
  const std::string name = identifier_ == kDefaultTask ? std::string("New Scan") : TaskName.Text();
  DeleteEmptyKey(services, key);
  if (auto opened = services.registry->OpenKey(platform::Hive::kCurrentUser, key, platform::kKeySet);
      opened.ok()) {
    Check((*opened)->SetValue("szTaskName", platform::RegistryValue::OfText(name)));
  }
  (kind_ == TaskKind::kScan ? context_.run.changes.ConfigChangedScan
                            : context_.run.changes.ConfigChangedUpdate) = true;
  TaskPage& parent = Parent();
  int row = parent.Grid.SelectedRow();
  if (IsNewTask) {
    parent.Grid.SetRows(parent.Grid.Rows() + 1);
    row = parent.Grid.Rows() - 2;
  }
  parent.FillTaskInfo(platform::Hive::kCurrentUser, key, row, identifier_);
  parent.Grid.SelectRow(row);
  TaskName.SetText("");
  parent.AdjustControls();
}

bool frmAddTask::OnQueryUnload() {
  AbandonTask();
  return true;
}

void frmAddTask::AbandonTask() {
  Hide();
  abandoned_ = identifier_;
  ForgetChanges(identifier_, IsNewTask);
  TaskName.SetText("");
  Parent().AdjustControls();
}

// Takes back what the tool saved for a task.
void frmAddTask::ForgetChanges(const std::string& identifier, bool is_new) {
  platform::Services& services = context_.services;
  if (is_new) {
    DeleteBranch(services, platform::Hive::kCurrentUser,
                 std::string(kStagingVersionKey) + "\\Tasks\\" + identifier);
  } else if (!context_.run.SettingsFromSystem) {
    RunAndWait(services, context_.run, context_.host,
               "regedit /s \"" + context_.run.TempFolder + "\\" + identifier + ".reg\"",
               platform::WindowStyle::kHidden);
  }
}

}  // namespace kw
