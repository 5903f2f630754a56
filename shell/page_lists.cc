// The two lists of pages, by mode.

#include "shell/page_table.h"

namespace kw {

void PageTable::AddPage(const char* caption, const char* form, bool not_installed, bool required) {
  PageRecord record;
  record.NotInstalled = not_installed;
  record.Required = required;
  record.Blocked = !required;
  record.Caption = caption;
  record.Form = form;
  records_.push_back(record);
  FormByName(form).SetCaption(caption);
}

void PageTable::BuildPackagePageList() {
  const RunState& run = context_.run;
  records_.clear();
  const auto add = [this](const char* caption, const char* form, bool not_installed) {
    AddPage(caption, form, not_installed, true);
  };
  add("Source and Destination", "frmSourceAndDestination", false);
  add("Features", "frmFeatures", false);
  add("Source for Configuration", "frmConfigSource", !run.AnyFeatureInstalled);
  add("Installation Options", "frmInstallOptions", false);
  add("On-Access Scanner", "frmOnAccessMonitor", !run.HasOnAccessFeature);
  add("On-Delivery Scanner", "frmEmailScan", !run.HasEmailScanFeature);
  add("Scheduled Scans", "frmScheduledScan", !run.HasOnDemandFeature);
  add("AutoUpdate Schedule", "frmAutoUpdate", !run.HasAutoUpdateFeature);
  add("Beaconry Properties", "frmBeaconryClient", !run.HasConsoleFeature);
  add("Beaconry Installation", "frmBeaconryServer", false);
  add("Tamrix Bulwark", "frmInstallBWK", false);
  add("User Interface Properties", "frmUIOptions", !run.HasConsoleFeature);
  add("Add/Remove Options", "frmAddRemoveOptions", false);
  add("DAT and Engine Files", "frmDATsAndEngine", false);
  add("Patch Files", "frmPatchFiles", false);
  add("AutoUpdate Configuration", "frmCommonUpdater", false);
  add("Programs", "frmPrograms", false);
  add("Additional Files", "frmAdditionalFiles", false);
  add("Registry Settings", "frmRegistrySettings", false);
  add("Kitwright Password", "frmZEDPassword", false);
  add("Post-Installation Options", "frmPostInstallOptions", false);
  add("Finish", "frmReviewConfiguration", false);
  records_[0].IsCurrent = true;
  RecomputeDisabled(true);
}

void PageTable::BuildSettingsPageList() {
  const RunState& run = context_.run;
  records_.clear();
  const bool later = !run.AnyFeatureInstalled;
  AddPage("Source for Configuration", "frmConfigSource", !run.AnyFeatureInstalled, true);
  AddPage("Destination", "frmDestination", false, true);
  AddPage("Type", "frmType", !run.AnyFeatureInstalled, later);
  AddPage("On-Access Scanner", "frmOnAccessMonitor", !run.HasOnAccessFeature, later);
  AddPage("On-Delivery Scanner", "frmEmailScan", !run.HasEmailScanFeature, later);
  AddPage("Scheduled Scans", "frmScheduledScan", !run.HasOnDemandFeature, later);
  AddPage("AutoUpdate Schedule", "frmAutoUpdate", !run.HasAutoUpdateFeature, later);
  AddPage("Beaconry Properties", "frmBeaconryClient", !run.HasConsoleFeature, later);
  AddPage("Tamrix Bulwark", "frmInstallBWK", run.ProductIs700, later);
  AddPage("User Interface Properties", "frmUIOptions", !run.HasConsoleFeature, later);
  AddPage("AutoUpdate Configuration", "frmCommonUpdater", false, later);
  AddPage("Registry Settings", "frmRegistrySettings", false, later);
  AddPage("Kitwright Password", "frmZEDPassword", false, later);
  AddPage("Finish", "frmReviewConfiguration", false, later);
  records_[run.AnyFeatureInstalled ? 0 : 1].IsCurrent = true;
  RecomputeDisabled(true);
}

}  // namespace kw
