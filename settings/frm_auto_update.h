#ifndef KITWRIGHT_SETTINGS_FRM_AUTO_UPDATE_H_
#define KITWRIGHT_SETTINGS_FRM_AUTO_UPDATE_H_

#include <string>

#include "settings/task_page.h"

namespace kw {

/// The product's update and mirror tasks.
class frmAutoUpdate : public TaskPage {
 public:
  static constexpr const char* kName = "frmAutoUpdate";
  explicit frmAutoUpdate(PageContext& context);

  std::string NewTaskName(bool is_mirror) const {
    return NextFreeName(is_mirror ? "New Mirror Task" : "New Update Task");
  }
  void TransferSettings() override;

  ui::Button NewUpdateButton;
  ui::Button NewMirrorButton;

 protected:
  ui::Layout PageLayout() override;
  bool ShowsTask(platform::Hive root, const std::string& key) override;
  void FillMore(platform::RegistryKey* open_key, int row, const std::string& identifier) override;
  TaskKind KindOfRow(int row) const override;
  bool ConfirmDelete(int row) override;
  void AddTypeLine(ui::ListBox& list, int row) override;
};

}  // namespace kw

#endif  // KITWRIGHT_SETTINGS_FRM_AUTO_UPDATE_H_
