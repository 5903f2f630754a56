#ifndef KITWRIGHT_TESTS_FAULTS_CALLS_FAILING_PROCESS_TEST_SUPPORT_H_
#define KITWRIGHT_TESTS_FAULTS_CALLS_FAILING_PROCESS_TEST_SUPPORT_H_

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/faults/fault_plan.h"

namespace kw::faults {

/// How a call of another process fails.
struct Kind {
  const char* name = "no failure";
  FaultMode mode = FaultMode::kNone;
  int error = 0;
  bool forever = false;
  bool must_work = false;  ///< the process must do what it was told all the same
  uint32_t kinds = kAllCalls;
};

/// All kinds that are tried.
std::vector<Kind> Kinds();

struct Ending {
  bool success = false;
  bool killed = false;
  int code = 0;        ///< the exit code; -1 when a signal ended it
  uint32_t calls = 0;  ///< those that were counted
};

/// Runs a program whose call number `at` on a file whose path begins with `watched` fails (0: none does). Its
/// output goes to the file "answer" in `folder`; `environment` is all it knows beside that.
Ending RunFailing(const std::filesystem::path& folder, std::vector<std::string> command,
                  std::vector<std::string> environment, const std::string& watched, const Kind& kind,
                  uint32_t at);

}  // namespace kw::faults

#endif  // KITWRIGHT_TESTS_FAULTS_CALLS_FAILING_PROCESS_TEST_SUPPORT_H_
