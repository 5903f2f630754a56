#include "package/staging.h"

#include "base/text.h"
#include "package/file_rules.h"

namespace kw {

void EnterProgramFolder(platform::Services& services) {
  services.files->SetCurrentFolder(services.system->ProgramFolder()).IgnoreError();
}

void DeleteBranch(platform::Services& services, platform::Hive hive, const std::string& path) {
  EnterProgramFolder(services);
  services.libraries->RegShDeleteKey(hive, path).status().IgnoreError();
}

void ClearStagingBranches(platform::Services& services, RunState& run) {
  DeleteBranch(services, platform::Hive::kCurrentUser, kComparisonBranch);
  DeleteBranch(services, platform::Hive::kCurrentUser, kStagingBranch);
  run.changes = ChangeFlags();
}

std::string ConsolePluginKey(bool level_700) {
  return std::string("SOFTWARE\\Orvantic\\Stratocon\\Application Plugins\\") +
         (level_700 ? "KESTRANE7000" : "KESTRANE7100");
}

std::string GetInstalledProductLanguage(platform::Services& services, const RunState& run) {
  const std::string language = ReadRegistryString(services, platform::Hive::kLocalMachine,
                                                  ConsolePluginKey(run.ProductIs700), "Language");
  return language.empty() ? "0000" : ToUpper(language);
}

}  // namespace kw
