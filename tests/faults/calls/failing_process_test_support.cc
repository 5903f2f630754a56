#include "tests/faults/calls/failing_process_test_support.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <limits>

#include "base/exit_codes.h"

namespace kw::faults {
namespace {

/// The plan of one run, in a file that the process maps.
class MappedPlan {
 public:
  explicit MappedPlan(const std::filesystem::path& path) {
    const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd >= 0 && ::ftruncate(fd, sizeof(FaultPlan)) == 0) {
      void* const mapped = ::mmap(nullptr, sizeof(FaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
      if (mapped != MAP_FAILED) plan_ = static_cast<FaultPlan*>(mapped);
    }
    if (fd >= 0) ::close(fd);
  }
  ~MappedPlan() {
    if (plan_) ::munmap(plan_, sizeof(FaultPlan));
  }
  MappedPlan(const MappedPlan&) = delete;
  MappedPlan& operator=(const MappedPlan&) = delete;
  FaultPlan* get() { return plan_; }

 private:
  FaultPlan* plan_ = nullptr;
};

}  // namespace

std::vector<Kind> Kinds() {
  constexpr auto kFail = FaultMode::kFail;
  return {{"no space", kFail, ENOSPC},
          {"no space from then on", kFail, ENOSPC, true},
          {"an error of the disk", kFail, EIO},
          {"an error of the disk from then on", kFail, EIO, true},
          {"no permission", kFail, EACCES},
          {"no permission from then on", kFail, EACCES, true},
          {"half of the work", FaultMode::kShort, 0, false, true},
          {"half of the work from then on", FaultMode::kShort, 0, true, true},
          {"an interruption", kFail, EINTR, false, true, kInterruptibleCalls},
          {"an interruption from then on", kFail, EINTR, true, false, kInterruptibleCalls},
          {"killed before", FaultMode::kKillBefore},
          {"killed behind", FaultMode::kKillAfter}};
}

Ending RunFailing(const std::filesystem::path& folder, std::vector<std::string> command,
                  std::vector<std::string> environment, const std::string& watched, const Kind& kind,
                  uint32_t at) {
  MappedPlan mapped(folder / "plan");
  FaultPlan* const plan = mapped.get();
  if (!plan) {
    ADD_FAILURE() << "there is no plan";
    return {};
  }
  std::snprintf(plan->root, sizeof plan->root, "%s", watched.c_str());
  plan->kinds = kind.kinds;
  plan->mode = at == 0 ? FaultMode::kNone : kind.mode;
  plan->error = kind.error;
  plan->first = at;
  plan->times = kind.forever ? std::numeric_limits<uint32_t>::max() : 1;
  plan->armed = 1;
  environment.push_back(std::string("LD_PRELOAD=") + KITWRIGHT_FAILING_CALLS);
  environment.push_back(std::string(kPlanVariable) + "=" + (folder / "plan").string());
  const auto pointers = [](std::vector<std::string>& list) {
    std::vector<char*> result;
    for (std::string& text : list) result.push_back(text.data());
    result.push_back(nullptr);
    return result;
  };
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, (folder / "answer").c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                   0600);
  posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
  pid_t process = 0;
  EXPECT_EQ(posix_spawn(&process, command[0].c_str(), &actions, nullptr, pointers(command).data(),
                        pointers(environment).data()),
            0);
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  EXPECT_EQ(waitpid(process, &status, 0), process);
  Ending ending;
  ending.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  ending.success = ending.code == 0;
  ending.killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
  EXPECT_TRUE(ending.killed || ending.success || ending.code == 1 || ending.code == kExitMachineFailed)
      << "status " << status;
  ending.calls = plan->counted;
  return ending;
}

}  // namespace kw::faults
