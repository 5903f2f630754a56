#ifndef KITWRIGHT_TESTS_FAULTS_WIZARD_RUN_H_
#define KITWRIGHT_TESTS_FAULTS_WIZARD_RUN_H_

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/faults/fault_plan.h"

namespace kw::faults {

/// Relative paths of the files and folders below a folder (folders end in "/"), with the files' bytes.
using Contents = std::map<std::string, std::string>;

/// "" when there is no such file.
std::string ReadHostFile(const std::string& path);
Contents ContentsOf(const std::string& folder);

/// What a run is to suffer.
struct Fault {
  FaultMode mode = FaultMode::kNone;
  uint32_t kinds = kAllCalls;
  int error = 0;
  uint32_t first = 0;
  uint32_t times = 1;
  std::string below = {};  ///< only on calls below this folder of drive C
};

struct Outcome {
  int status = 0;     ///< as waitpid gives it
  bool hung = false;  ///< killed because it did not end
  bool hit = false;   ///< the fault came to pass
  std::string call;   ///< which call it was
  std::vector<std::string>
      told;  ///< transcript lines since the build began: messages, questions, pages, prints
  bool Killed() const;
  bool Says(const std::string& text) const;  ///< some line holds the text
  /// Messages and questions alone, but for the one whether the destination shall be made.
  std::vector<std::string> Boxes() const;
};

/// A sample machine in a folder of its own, and the wizard driven on it again and again from the same state.
class WizardRuns {
 public:
  /// `level` is "700" or "710". `script` are the driver's commands before the build, ` build` those that run
  /// it.
  WizardRuns(const std::string& level, std::string before_build, std::string build);
  ~WizardRuns();
  WizardRuns(const WizardRuns&) = delete;
  WizardRuns& operator=(const WizardRuns&) = delete;

  /// `meanwhile` is called when all is chosen, before the build begins.
  Outcome Run(const Fault& fault, const std::function<void()>& meanwhile = nullptr);
  /// A run without faults on the machine as the last one left it, into a destination of its own.
  Outcome RunAfterwards();
  /// The calls that the last run counted.
  std::vector<CountedCall> Calls() const;
  /// Starts the wizard once more, cancels it on its first page, and gives its transcript.
  std::string StartAgain();
  bool HasStagingBranches() const;

  const std::string& root() const { return machine_; }
  std::string Folder(const std::string& below_drive) const { return machine_ + "/drive_c/" + below_drive; }
  bool IsFolder(const std::string& below_drive) const;
  /// Files of the machine, besides what a run may change, that are no longer as they were laid out.
  std::vector<std::string> ChangedFiles() const;

 private:
  void LayOut();
  void Restore();
  Outcome RunScript(const std::string& before_build, const Fault& fault,
                    const std::function<void()>& meanwhile);
  int Start(int& to_wizard, int& from_wizard, bool with_faults);
  std::map<std::string, std::string> Stamps() const;

  std::string level_;
  std::string before_build_;
  std::string build_;
  std::string work_;
  std::string machine_;
  std::string pristine_;
  std::map<std::string, std::string> stamps_;
  FaultPlan* plan_ = nullptr;
};

}  // namespace kw::faults

#endif  // KITWRIGHT_TESTS_FAULTS_WIZARD_RUN_H_
