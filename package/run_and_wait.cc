#include "package/file_rules.h"
#include "package/staging.h"

namespace kw {
namespace {

// The person ended the program while another one ran: what that one put into the staging branch or the temp
// folder came after the clean-up. It goes without a word, for nobody is there any more.
void RemoveLateRemains(platform::Services& services, RunState& run, const std::string& temp_folder) {
  ClearStagingBranches(services, run);
  if (!temp_folder.empty() && services.files->FolderExists(temp_folder)) {
    services.files->DeleteFolder(temp_folder, true).IgnoreError();
  }
}

class Waiting {
 public:
  explicit Waiting(RunState& run) : run_(run) { ++run_.WaitsForTools; }
  ~Waiting() { --run_.WaitsForTools; }

 private:
  RunState& run_;
};

}  // namespace

int RunAndWait(platform::Services& services, RunState& run, ui::FormHost& host,
               const std::string& command_line, platform::WindowStyle style) {
  // Ended in an earlier wait of the same handler: nobody is there for another program.
  if (host.Ended()) return 0;
  run.ToolWindowTitle.clear();
  const std::string temp_folder = run.TempFolder;
  const auto process = services.processes->Start(command_line, style);
  if (!process.ok()) return -1;
  const Waiting waiting(run);
  for (;;) {
    const int code = (*process)->ExitCode();
    host.PumpEvents();
    std::string title = (*process)->ForegroundWindowTitle();
    if (!title.empty()) run.ToolWindowTitle = title.substr(0, title.find('\0'));
    if (code == platform::kStillActive) continue;
    if (!host.Ended()) return code;
    RemoveLateRemains(services, run, temp_folder);
    return 0;
  }
}

}  // namespace kw
