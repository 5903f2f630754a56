#include "shell/program_entry.h"

#include <string>
#include <vector>

#include "package/clean_up.h"
#include "package/file_rules.h"

namespace kw {
namespace {

using platform::Hive;

constexpr const char* kUpgradeCode = "{75951FF9-0087-4981-A526-56CB59DA17D9}";
constexpr int32_t kMemoryForOptimizer = 256'000'000;
constexpr int kInstalledLocally = 3;

struct ProductFeature {
  const char* key;
  const char* word;
  bool RunState::*installed;
};
constexpr ProductFeature kProductFeatures[] = {
    {"Console", "Console", &RunState::HasConsoleFeature},
    {"EmailScan", "E-Mail Scan", &RunState::HasEmailScanFeature},
    {"OnAccessScanner", "On-Access Scan", &RunState::HasOnAccessFeature},
    {"OnDemandScanner", "On-Demand Scan", &RunState::HasOnDemandFeature},
    {"AutoUpdate", "Updater", &RunState::HasAutoUpdateFeature},
};

/// Flags accumulate over the products: features may come from different ones.
void FindInstalledFeatures(RunState& run) {
  run.ProductInstalled = false;
  for (const ProductFeature& feature : kProductFeatures) run.*feature.installed = false;
  for (const std::string& product : run.Installer->RelatedProducts(kUpgradeCode)) {
    run.ProductInstalled = true;
    for (const ProductFeature& feature : kProductFeatures) {
      if (run.Installer->FeatureState(product, feature.key) == kInstalledLocally)
        run.*feature.installed = true;
    }
  }
}

/// "" when nothing is missing.
std::string MissingFeaturesRefusal(const RunState& run) {
  std::vector<const char*> missing;
  for (const ProductFeature& feature : kProductFeatures) {
    if (!(run.*feature.installed)) missing.push_back(feature.word);
  }
  if (missing.empty()) return {};
  std::string text = "Kestrane Enterprise's ";
  for (size_t i = 0; i < missing.size(); ++i) {
    if (i > 0) text += i + 1 == missing.size() ? " and " : ", ";
    text += missing[i];
  }
  return text + (missing.size() == 1 ? " is" : " are") +
         " not currently installed on this computer.  You must install all Kestrane Enterprise features "
         "before running Kitwright.  This program will now exit.";
}

/// Each failure carries the words of a refusal, or of the system's own error.
Status Enter(PageContext& context) {
  platform::Services& services = context.services;
  RunState& run = context.run;
  const auto refusal = [](std::string text) { return Status(kErrorFunctionFailed, std::move(text)); };

  if (services.system->PreviousInstance())
    return refusal(
        "Another instance of Kitwright is currently running on this machine.  You may only run one instance "
        "of Kitwright at a time.  This instance will now exit.");
  KW_ASSIGN_OR_RETURN(const int is_admin, services.libraries->IsAdmin());
  if (is_admin == 0)
    return refusal(
        "You are not currently logged in as an administrator.  Kitwright requires administrator rights, the "
        "program will now exit.");
  if (ReadRegistryString(services, Hive::kLocalMachine, "Software\\Microsoft\\Internet Explorer", "Version")
          .empty())
    return refusal("You may only run the Kitwright with IE4 or above.  The program will now exit.");
  run.EnoughMemory = services.system->TotalPhysicalMemory() >= kMemoryForOptimizer;

  KW_ASSIGN_OR_RETURN(run.Installer, services.create_installer());
  FindInstalledFeatures(run);
  if (!run.ProductInstalled)
    return refusal(
        "Kestrane Enterprise is not currently installed on this computer.  You must install Kestrane "
        "Enterprise before running Kitwright.  This program will now exit.");
  const std::string missing = MissingFeaturesRefusal(run);
  if (!missing.empty()) return refusal(missing);
  run.AnyFeatureInstalled = run.HasConsoleFeature || run.HasEmailScanFeature || run.HasOnAccessFeature ||
                            run.HasOnDemandFeature || run.HasAutoUpdateFeature;
  run.ProductIs700 =
      !ReadRegistryString(services, Hive::kLocalMachine, ConsolePluginKey(true), "Language").empty();
  KW_ASSIGN_OR_RETURN(run.InstallerSecond, services.create_installer());
  run.ProductInstallDir =
      ReadRegistryString(services, Hive::kLocalMachine,
                         "SOFTWARE\\Orvantic\\RDX\\Kestrane Enterprise\\CurrentVersion", "szInstallDir");
  ClearStagingBranches(services, run);
  run.DestinationFolder.clear();
  run.DestinationInUse = false;
  return {};
}

}  // namespace

void RunProgramEntry(PageContext& context) {
  if (!CheckOrReport(context.services, Enter(context))) {
    context.host.EndProgram();
    return;
  }
  context.navigator.FormByName("frmWelcome").Show();
}

}  // namespace kw
