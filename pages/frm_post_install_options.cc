#include "pages/frm_post_install_options.h"

#include <utility>

#include "pages/startup_ini.h"
#include "settings/frm_scheduled_scan.h"

namespace kw {
namespace {

constexpr const char* kDefined = "defined";

}  // namespace

frmPostInstallOptions::frmPostInstallOptions(PageContext& context)
    : WizardPage(context, kName, "Post-Installation Options", "Label4", "Specify post-installation options.",
                 1014),
      ForceReboot(*this, "ForceReboot", "F&orce reboot after installation"),
      DisplayMessage(*this, "DisplayMessage",
                     "Always &display this warning message when a reboot is required:"),
      RebootMessage(*this, "RebootMessage"),
      StartKestrane(*this, "StartKestrane", "&Start On-Access Scanner after installation"),
      PerformScan(*this, "PerformScan", "&Perform a system scan after installation"),
      RunUpdate(*this, "RunUpdate", "Update &virus definition files after installation"),
      db_(InstallerDb::Working(context.services, context.run)) {
  RebootMessage.EnableWithColor(false);
  DisplayMessage.on_click = [this] { OnDisplayMessage(); };
  AddButtons();
}

ui::Layout frmPostInstallOptions::PageLayout() {
  using namespace ui;
  return Column({Place(ForceReboot), Place(DisplayMessage), Indent(Place(RebootMessage)),
                 Place(StartKestrane), Place(PerformScan), Place(RunUpdate), Space()},
                1);
}

// Without its task there is no scan to run.
void frmPostInstallOptions::ActivatePage() {
  const bool missing = navigator_.Get<frmScheduledScan>().IsDefaultOnDemandTaskMissing();
  if (missing) PerformScan.SetChecked(false);
  PerformScan.SetEnabled(!missing);
}

void frmPostInstallOptions::ReadConfig() {
  EnsureLoaded();
  ForceReboot.SetChecked(ReadStartupFlag(services_, run_, "bRebootAlways", "0"));
  const std::string message =
      ReadIniValue(services_, run_.WorkingSetupIniPath, kStartupSection, "szRebootMessage", "");
  RebootMessage.SetText(message);
  DisplayMessage.SetChecked(!message.empty());
  RebootMessage.EnableWithColor(!message.empty());
  const std::pair<const char*, ui::CheckBox*> switches[] = {{"ENABLEONACCESSSCANNER", &StartKestrane},
                                                            {"RUNONDEMANDSCAN", &PerformScan},
                                                            {"RUNAUTOUPDATE", &RunUpdate}};
  for (const auto& [property, box] : switches) {
    const auto value = db_.GetProperty(property);
    if (!Check(value.status())) return;
    box->SetChecked(*value == kDefined);
  }
}

void frmPostInstallOptions::OnDisplayMessage() {
  RebootMessage.EnableWithColor(DisplayMessage.Checked());
  if (DisplayMessage.Checked() && Visible()) RebootMessage.SetFocus();
}

Status frmPostInstallOptions::WriteChoices() {
  KW_RETURN_IF_ERROR(WriteStartupFlag(services_, run_, "bRebootAlways", ForceReboot.Checked()));
  // The check box is not consulted: unticking it alone does not remove a message.
  KW_RETURN_IF_ERROR(WriteIniValue(services_, run_.WorkingSetupIniPath, kStartupSection, "szRebootMessage",
                                   RebootMessage.Text()));
  KW_RETURN_IF_ERROR(
      db_.SetProperty("ENABLEONACCESSSCANNER", ChooseValue(StartKestrane.Checked(), kDefined, "")));
  KW_RETURN_IF_ERROR(db_.SetProperty("RUNONDEMANDSCAN", ChooseValue(PerformScan.Checked(), kDefined, "")));
  return db_.SetProperty("RUNAUTOUPDATE", ChooseValue(RunUpdate.Checked(), kDefined, ""));
}

void frmPostInstallOptions::LeavePage(const std::string& name) {
  if (Check(WriteChoices())) navigator_.GoToPage(name);
}

void frmPostInstallOptions::AddChoices(ui::ListBox& list) {
  list.Add("\tForce reboot after install: " + ChooseValue(ForceReboot.Checked(), "Yes", "No"));
  list.Add("\tDisplay message if reboot required: " + ChooseValue(DisplayMessage.Checked(), "Yes", "No") +
           RebootMessage.Text());
  list.Add("\tStart Kestrane Enterprise after installation: " +
           ChooseValue(StartKestrane.Checked(), "Yes", "No"));
  list.Add("\tPerform system scan: " + ChooseValue(PerformScan.Checked(), "Yes", "No"));
  list.Add("\tRun update: " + ChooseValue(RunUpdate.Checked(), "Yes", "No"));
  list.Add("");
}

}  // namespace kw
