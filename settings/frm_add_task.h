#ifndef KITWRIGHT_SETTINGS_FRM_ADD_TASK_H_
#define KITWRIGHT_SETTINGS_FRM_ADD_TASK_H_

#include <string>

#include "pages/wizard_dialog.h"
#include "settings/task_page.h"

namespace kw {

/// Adds or edits one task of frmScheduledScan or frmAutoUpdate.
class frmAddTask : public WizardDialog {
 public:
  static constexpr const char* kName = "frmAddTask";
  explicit frmAddTask(PageContext& context);

  /// Prepares the dialog for a task.
  void ReadConfig(const std::string& identifier, const std::string& name, bool is_new, TaskKind kind);

  ui::Label TaskNameLabel;
  ui::TextBox TaskName;
  ui::Button ConfigureSettings;
  ui::Button OK;
  ui::Button Cancel;
  ui::Button Help;

  ui::Layout ContentLayout() override;

 protected:
  bool OnQueryUnload() override;

 private:
  TaskPage& Parent();
  std::string Key();
  /// Whether the box holds a name that no other task of the list has.
  bool NameCanStand();
  void OnNameChange();
  void OnConfigure();
  void Configure();
  void OnOk();
  void AbandonTask();
  void ForgetChanges(const std::string& identifier, bool is_new);

  std::string identifier_;
  std::string abandoned_;  ///< the task whose dialog was closed without OK
  bool IsNewTask = false;
  TaskKind kind_ = TaskKind::kScan;
  bool InSettingsTool = false;
};

}  // namespace kw

#endif  // KITWRIGHT_SETTINGS_FRM_ADD_TASK_H_
