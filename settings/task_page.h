#ifndef KITWRIGHT_SETTINGS_TASK_PAGE_H_
#define KITWRIGHT_SETTINGS_TASK_PAGE_H_

#include <string>
#include <vector>

#include "shell/page_contract.h"

namespace kw {

/// The kinds of task that frmAddTask serves.
enum class TaskKind { kScan = 1, kUpdate = 2, kMirror = 3 };

/// The literal identifier of the default scan task.
inline constexpr const char* kDefaultTask = "DefaultTask";

/// A list of the product's tasks of one kind. The product's own dialog stores a task's settings in the
/// staging branch; the page stores the name there and keeps the list. The grid has a header row, a row per
/// task and one blank last row.
class TaskPage : public WizardPage, public SettingsPage {
 public:
  /// The grid's columns behind the selector.
  enum GridColumn { kName = 1, kScheduled = 2, kType = 3, kIdentifier = 4 };

  /// Brings the row selection and the buttons up to date.
  void AdjustControls();
  /// Rebuilds the list from the present source of settings.
  void ReadConfig() override;
  void AddChoices(ui::ListBox& list) override;
  /// Fills one row from a task's key.
  void FillTaskInfo(platform::Hive root, const std::string& key, int row, const std::string& identifier);
  /// True unless another row than `skip_row` has that name, compared without regard to case.
  bool IsUniqueName(const std::string& name, int skip_row) const;
  /// Appends a row and fills it from `path` below the version key.
  void AddOneTask(const std::string& path, const std::string& identifier);
  /// The staging key of a task.
  virtual std::string StagingKeyOf(const std::string& identifier) const;

  ui::Grid Grid;
  /// Set while a task's key is saved, against a second click.
  bool SavingTask = false;

 protected:
  TaskPage(PageContext& context, std::string name, std::string title, std::string text, int help_id,
           bool& change_flag, std::string add_value, std::string fixed_identifier);

  /// Makes Edit, Delete and the two options behind the page's own adding buttons; end of a derived
  /// constructor.
  void MakeControls(const std::string& third_heading);
  ui::Layout TaskLayout(std::vector<ui::Layout> adding_buttons);
  void LoadPage() override;
  void LeavePage(const std::string& name) override;

  /// Whether a key below "Tasks" is shown here.
  virtual bool ShowsTask(platform::Hive root, const std::string& key) = 0;
  virtual void AddFixedTasks() {}
  /// What the page reads beside name and schedule; `open_key` may be null.
  virtual void FillMore(platform::RegistryKey* open_key, int row, const std::string& identifier) = 0;
  virtual TaskKind KindOfRow(int row) const = 0;
  /// Deletes the task of a row after asking.
  virtual bool ConfirmDelete(int row) = 0;
  virtual void AddTypeLine(ui::ListBox&, int) {}

  void OpenTaskDialog(const std::string& identifier, const std::string& name, bool is_new, TaskKind kind);
  void NewTask(const std::string& name, TaskKind kind);
  /// The next free name from `base` on; depends on the order of the rows.
  std::string NextFreeName(const std::string& base) const;
  bool Ask(const std::string& text);

 public:
  std::unique_ptr<ui::Button> EditButton;
  std::unique_ptr<ui::Button> DeleteButton;
  std::unique_ptr<ui::Option> AddTasks;
  std::unique_ptr<ui::Option> ReplaceTasks;

 private:
  void OnEdit();
  void SaveTask(const std::string& identifier, const std::string& file);
  void OnDelete();
  void MarkTaskDeleted(const std::string& identifier, bool value);

  bool& change_flag_;
  std::string add_value_;
  std::string fixed_identifier_;
  std::string third_heading_;
};

}  // namespace kw

#endif  // KITWRIGHT_SETTINGS_TASK_PAGE_H_
