#include "settings/scanner_pages.h"

#include <utility>

#include "package/staging.h"
#include "settings/branches.h"
#include "settings/product_tool.h"

namespace kw {
namespace {

// Modes of the mail scanner's library.
constexpr int kLiveToStaging = 2;
constexpr int kStagingToStaging = 3;
constexpr int kShowDialog = 0;
constexpr int kSaveAtOnce = 1;

}  // namespace

ScannerPage::ScannerPage(PageContext& context, std::string name, std::string title, std::string text,
                         std::string button, int help_id, bool& flag, std::string line_set,
                         std::string line_clear)
    : WizardPage(context, std::move(name), std::move(title), "Label4", std::move(text), help_id),
      ConfigureSettings(*this, "ConfigureSettings", std::move(button)),
      flag_(flag),
      line_set_(std::move(line_set)),
      line_clear_(std::move(line_clear)) {
  ConfigureSettings.on_click = [this] {
    if (InSettingsTool) return;
    InSettingsTool = true;
    Configure();
    InSettingsTool = false;
  };
  AddButtons();
}

ui::Layout ScannerPage::PageLayout() {
  return ui::Column({ui::Row({ui::Place(ConfigureSettings), ui::Space()}), ui::Space()}, 1);
}

void ScannerPage::AddChoices(ui::ListBox& list) {
  list.Add("\t" + (flag_ ? line_set_ : line_clear_));
  list.Add("");
}

int ScannerPage::RunTool(const std::string& command, bool already_configured) {
  return RunProductTool(context_, *this, command, already_configured);
}

frmOnAccessMonitor::frmOnAccessMonitor(PageContext& context)
    : ScannerPage(
          context, kName, "On-Access Scanner",
          "Configure On-Access Scan Properties to specify what to scan, and what to do when viruses and "
          "infected files are found.",
          "&Configure On-Access Scan Properties", 1006, context.run.changes.ConfigChangedOnAccess,
          "On-Access Scan Properties were configured.", "On-Access Scan Properties were not configured.") {}

void frmOnAccessMonitor::Configure() {
  if (RunTool("OasCfg32", flag_) != 0) {
    services_.dialogs->Message(
        "Configuring the On-Access Scan Properties failed. Please make sure that Kestrane Enterprise is "
        "installed properly.");
  }
  if (TakeChangeFlag(services_, "bOasCfg32")) {
    flag_ = true;
  } else if (run_.SettingsFromSystem) {
    DeleteEmptyKeyTree(services_,
                       std::string(kStagingBranch) + "\\Shared Components\\On Access Scanner\\TxGuard");
  }
}

void frmOnAccessMonitor::TransferSettings() {
  if (!flag_) RunTool("OasCfg32 /FLUSHSETTINGS", false);
}

frmEmailScan::frmEmailScan(PageContext& context)
    : ScannerPage(
          context, kName, "On-Delivery Scanner",
          "Configure On-Delivery Scan Properties to specify how e-mail files, their attachments and message "
          "bodies, are scanned and specify what to do when viruses and infected files are found.",
          "&Configure On-Delivery Scan Properties", 1007, context.run.changes.ConfigChangedEmailScan,
          "On-Delivery Scan Properties were configured", "On-Delivery Scan Properties were not configured") {}

void frmEmailScan::Configure() {
  if (run_.ProductInstallDir.empty() || !run_.HasEmailScanFeature) {
    services_.dialogs->Message(
        "Configuring the On-Delivery Scan properties failed. Please make sure that Kestrane Enterprise is "
        "installed properly.");
    return;
  }
  services_.files->SetCurrentFolder(run_.ProductInstallDir).IgnoreError();
  const bool from_live = run_.SettingsFromSystem && !flag_;
  const auto changed =
      services_.libraries->EmalConfigZed(from_live ? kLiveToStaging : kStagingToStaging, kShowDialog);
  if (!changed.ok()) {
    services_.dialogs->Message(
        "You must install Microsoft Outlook in order to configure On-Delivery Scan Properties.");
  }
  EnterProgramFolder(services_);
  if (changed.value_or(0) != 0) flag_ = true;
}

void frmEmailScan::TransferSettings() {
  if (flag_ || run_.ProductInstallDir.empty()) return;
  services_.files->SetCurrentFolder(run_.ProductInstallDir).IgnoreError();
  // A failure to flush is not reported.
  services_.libraries->EmalConfigZed(kLiveToStaging, kSaveAtOnce).status().IgnoreError();
  EnterProgramFolder(services_);
}

frmBeaconryClient::frmBeaconryClient(PageContext& context)
    : ScannerPage(context, kName, "Beaconry Properties",
                  "Configure Beaconry properties to specify what components to generate alerts, Beaconry "
                  "destination, alert messages, and recipients.",
                  "&Configure Beaconry Properties", 1011, context.run.changes.ConfigChangedBeaconry,
                  "Beaconry Properties were configured.", "Beaconry Properties were not configured.") {}

void frmBeaconryClient::Configure() {
  // The dialog box wants a full set of settings in the staging branch.
  if (run_.SettingsFromSystem && !flag_) RunTool("TxDesk /ALERT /FLUSHSETTINGS", false);
  if (RunTool("TxDesk /ALERT", true) != 0) {
    services_.dialogs->Message(
        "Configuring the Beaconry Properties failed. Please make sure that Kestrane Enterprise is installed "
        "properly.");
  }
  if (TakeChangeFlag(services_, "bBeaconry")) {
    flag_ = true;
  } else if (run_.SettingsFromSystem) {
    DeleteEmptyKey(services_, std::string(kStagingVersionKey) + "\\Alerts\\CurrentVersion");
  }
}

void frmBeaconryClient::TransferSettings() {
  if (!flag_) RunTool("TxDesk /ALERT /FLUSHSETTINGS", false);
}

frmUIOptions::frmUIOptions(PageContext& context)
    : ScannerPage(
          context, kName, "User Interface Properties",
          "Configure Kestrane Enterprise user interface properties to specify display options and user "
          "interface password options.",
          "&Configure user interface properties", 1012, context.run.changes.ConfigChangedUi,
          "UI options were configured.", "UI options were not configured.") {}

void frmUIOptions::Configure() {
  if (RunTool("TxDesk /UIOPTIONS", flag_) != 0) {
    services_.dialogs->Message(
        "Configuring user interface properties failed. Please make sure that Kestrane Enterprise is "
        "installed properly.");
  }
  if (TakeChangeFlag(services_, "bUIOptions")) flag_ = true;
}

void frmUIOptions::TransferSettings() {
  if (!flag_) RunTool("TxDesk /UIOPTIONS /FLUSHSETTINGS", false);
}

}  // namespace kw
