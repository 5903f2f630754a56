#ifndef KITWRIGHT_SETTINGS_FRM_SCHEDULED_SCAN_H_
#define KITWRIGHT_SETTINGS_FRM_SCHEDULED_SCAN_H_

#include <string>

#include "settings/task_page.h"

namespace kw {

/// The product's scheduled scan tasks.
class frmScheduledScan : public TaskPage {
 public:
  static constexpr const char* kName = "frmScheduledScan";
  explicit frmScheduledScan(PageContext& context);

  std::string NewTaskName() const { return NextFreeName("New Scan Task"); }
  void TransferSettings() override;
  /// True when existing tasks are replaced and no row is the product's own on-demand task.
  bool IsDefaultOnDemandTaskMissing() const;
  std::string StagingKeyOf(const std::string& identifier) const override;

  ui::Button NewButton;

 protected:
  ui::Layout PageLayout() override;
  bool ShowsTask(platform::Hive root, const std::string& key) override;
  void AddFixedTasks() override;
  void FillMore(platform::RegistryKey* open_key, int row, const std::string& identifier) override;
  TaskKind KindOfRow(int) const override { return TaskKind::kScan; }
  bool ConfirmDelete(int row) override;
};

/// False for the keys of update and mirror tasks; True for all others, an unreadable key among them.
bool IsScanTaskKey(platform::Services& services, platform::Hive root, const std::string& key);

}  // namespace kw

#endif  // KITWRIGHT_SETTINGS_FRM_SCHEDULED_SCAN_H_
