#include "settings/frm_scheduled_scan.h"

#include "base/text.h"
#include "package/installer_db.h"
#include "pages/frm_post_install_options.h"
#include "settings/branches.h"
#include "settings/product_tool.h"

namespace kw {
namespace {

constexpr const char* kOnDemandTask = "{818C7543-358A-4C84-899A-14334EMS4BGS}";

}  // namespace

bool IsScanTaskKey(platform::Services& services, platform::Hive root, const std::string& key) {
  const uint32_t type = ReadDword(services, root, key, "wTaskType", 0);
  return type != 5 && type != 6;
}

frmScheduledScan::frmScheduledScan(PageContext& context)
    : TaskPage(context, kName, "Scheduled Scans",
               "Configure and schedule on-demand scans with On-Demand Scan Properties to specify when to "
               "scan, what to scan, and what to do when viruses and infected files are found.",
               1008, context.run.changes.ConfigChangedScan, "AddScheduledTasks", kDefaultTask),
      NewButton(*this, "NewButton", "&Add...") {
  NewButton.on_click = [this] { NewTask(NewTaskName(), TaskKind::kScan); };
  Grid.on_insert_key = NewButton.on_click;
  MakeControls("");
}

ui::Layout frmScheduledScan::PageLayout() { return TaskLayout({ui::Place(NewButton)}); }

bool frmScheduledScan::ShowsTask(platform::Hive root, const std::string& key) {
  return IsScanTaskKey(services_, root, key);
}

void frmScheduledScan::AddFixedTasks() { AddOneTask("\\DefaultTask", kDefaultTask); }

void frmScheduledScan::FillMore(platform::RegistryKey*, int row, const std::string& identifier) {
  if (EqualsNoCase(identifier, kDefaultTask)) {
    Grid.SetCell(row, TaskPage::kName, "Default Task");
  } else if (Grid.Cell(row, TaskPage::kName).empty()) {
    Grid.SetCell(row, TaskPage::kName, NewTaskName());
  }
}

std::string frmScheduledScan::StagingKeyOf(const std::string& identifier) const {
  if (EqualsNoCase(identifier, kDefaultTask)) return std::string(kStagingVersionKey) + "\\DefaultTask";
  return TaskPage::StagingKeyOf(identifier);
}

bool frmScheduledScan::ConfirmDelete(int row) {
  const bool stronger =
      Grid.Cell(row, kIdentifier) == kOnDemandTask && ReplaceTasks->Value() && run_.PackageMode;
  const std::string first = stronger
                                ? "If you delete this item, Kestrane Enterprise will be unable to perform a "
                                  "system scan after installation."
                                : "This item will be deleted:";
  if (!Ask(first + "\n\n  Task name: " + Grid.Cell(row, TaskPage::kName) +
           "\n  Scheduled: " + Grid.Cell(row, kScheduled))) {
    return false;
  }
  if (stronger) {
    ui::CheckBox& perform_scan = navigator_.Get<frmPostInstallOptions>().PerformScan;
    perform_scan.SetChecked(false);
    perform_scan.SetEnabled(false);
    return Check(InstallerDb::Working(services_, run_).SetProperty("RUNONDEMANDSCAN", ""));
  }
  return true;
}

bool frmScheduledScan::IsDefaultOnDemandTaskMissing() const {
  if (!ReplaceTasks->Value()) return false;
  for (int row = 1; row < Grid.Rows(); ++row) {
    if (Grid.Cell(row, kIdentifier) == kOnDemandTask) return false;
  }
  return true;
}

void frmScheduledScan::TransferSettings() {
  for (int row = 1; row < Grid.Rows(); ++row) {
    const std::string identifier = Grid.Cell(row, kIdentifier);
    if (identifier.empty() || !DeleteEmptyKey(services_, StagingKeyOf(identifier))) continue;
    std::string command = "OdsCfg32 /FLUSHSETTINGS";
    if (identifier != kDefaultTask) command += " /TASK " + identifier;
    RunProductTool(context_, *this, command, false);
  }
}

}  // namespace kw
