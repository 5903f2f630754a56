#include "tests/faults/wizard_run.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>

#include "platform/embedded/registry.h"

namespace kw::faults {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr const char* kArmLine = "say the build begins";
constexpr std::chrono::seconds kLongest{60};

// What a run may change: everything else on the machine must stay as it is.
constexpr std::string_view kMayChange[] = {"drive_c/Out", "drive_c/Temp", "registry", "instance.lock"};

bool MayChange(std::string_view path) {
  for (const std::string_view start : kMayChange) {
    if (path.starts_with(start)) return true;
  }
  return false;
}

[[noreturn]] void Fail(const std::string& what) {
  throw std::runtime_error(what + ": " + std::strerror(errno));
}

// The end of children that lost their parent, so that none of them writes into the next run's machine.
void CollectChildren() {
  const auto end = Clock::now() + std::chrono::seconds(10);
  while (Clock::now() < end) {
    const pid_t ended = ::waitpid(-1, nullptr, WNOHANG);
    if (ended < 0) return;
    if (ended == 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

// In memory where there is room, and where programs may be run: thousands of machines are laid out.
fs::path MachinesFolder() {
  constexpr uint64_t kRoom = uint64_t{256} << 20;
  struct statvfs memory {};
  const bool usable = ::statvfs("/dev/shm", &memory) == 0 && (memory.f_flag & (ST_NOEXEC | ST_RDONLY)) == 0 &&
                      uint64_t{memory.f_bavail} * memory.f_frsize >= kRoom;
  return usable ? fs::path("/dev/shm") : fs::temp_directory_path();
}

void WriteAll(int fd, std::string_view text) {
  while (!text.empty()) {
    const ssize_t put = ::write(fd, text.data(), text.size());
    if (put <= 0) return;  // the wizard is gone
    text.remove_prefix(static_cast<size_t>(put));
  }
}

// Reads until the text stands in what was read, or to the end. False when time runs out.
bool ReadUntil(int fd, const char* text, std::string& so_far, Clock::time_point end) {
  for (;;) {
    if (text != nullptr && so_far.find(text) != std::string::npos) return true;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    pollfd ready{fd, POLLIN, 0};
    if (left <= 0 || ::poll(&ready, 1, static_cast<int>(left)) <= 0) return false;
    char buffer[1 << 14];
    const ssize_t got = ::read(fd, buffer, sizeof buffer);
    if (got <= 0) return true;
    so_far.append(buffer, static_cast<size_t>(got));
  }
}

}  // namespace

std::string ReadHostFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

Contents ContentsOf(const std::string& folder) {
  Contents contents;
  if (!fs::is_directory(folder)) return contents;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
    const std::string name = entry.path().string().substr(folder.size() + 1);
    if (entry.is_directory()) {
      contents[name + "/"];
    } else {
      contents[name] = ReadHostFile(entry.path());
    }
  }
  return contents;
}

bool Outcome::Killed() const { return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL; }

bool Outcome::Says(const std::string& text) const {
  for (const std::string& line : told) {
    if (line.find(text) != std::string::npos) return true;
  }
  return false;
}

std::vector<std::string> Outcome::Boxes() const {
  std::vector<std::string> boxes;
  for (const std::string& line : told) {
    const bool asks_for_the_folder = line.starts_with("question The destination folder") &&
                                     line.find("does not exist.") != std::string::npos;
    if (line.starts_with("message") || (line.starts_with("question") && !asks_for_the_folder))
      boxes.push_back(line);
  }
  return boxes;
}

WizardRuns::WizardRuns(const std::string& level, std::string before_build, std::string build)
    : level_(level), before_build_(std::move(before_build)), build_(std::move(build)) {
  ::prctl(PR_SET_CHILD_SUBREAPER, 1);
  ::signal(SIGPIPE, SIG_IGN);
  std::string pattern = MachinesFolder() / "kw-faults-XXXXXX";
  if (::mkdtemp(pattern.data()) == nullptr) Fail("mkdtemp");
  work_ = pattern;
  machine_ = work_ + "/machine";
  pristine_ = std::string(KITWRIGHT_BINARY_DIR) + "/tests/machines/" + level_;
  const int fd = ::open((work_ + "/plan").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (fd < 0 || ::ftruncate(fd, sizeof(FaultPlan)) != 0) Fail("the plan's file");
  plan_ =
      static_cast<FaultPlan*>(::mmap(nullptr, sizeof(FaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0));
  ::close(fd);
  if (plan_ == MAP_FAILED) Fail("mmap");
  LayOut();
}

WizardRuns::~WizardRuns() {
  ::munmap(plan_, sizeof(FaultPlan));
  std::error_code ignored;
  fs::remove_all(work_, ignored);
}

void WizardRuns::LayOut() {
  fs::remove_all(machine_);
  const std::string copy = "cp -a '" + pristine_ + "' '" + machine_ + "'";
  if (std::system(copy.c_str()) != 0) Fail(copy);
  // Fewer files in the package make no other steps, only the same ones fewer times.
  const std::string package = Folder("Packages/Kestrane/Kte") + level_ + ".msi";
  const std::string fewer =
      "'" KITWRIGHT_BINARY_DIR "/bin/msisql' '" + package +
      "' --direct 'delete from `File` where `Sequence` > 22 and `Sequence` < 128' >/dev/null";
  if (std::system(fewer.c_str()) != 0) Fail(fewer);
  stamps_ = Stamps();
}

std::map<std::string, std::string> WizardRuns::Stamps() const {
  std::map<std::string, std::string> stamps;
  for (auto at = fs::recursive_directory_iterator(machine_); at != fs::recursive_directory_iterator(); ++at) {
    const std::string name = at->path().string().substr(machine_.size() + 1);
    if (MayChange(name)) {
      if (at->is_directory()) at.disable_recursion_pending();
      continue;
    }
    struct stat info {};
    if (::lstat(at->path().c_str(), &info) != 0) continue;
    if (S_ISDIR(info.st_mode)) {
      stamps[name + "/"] = std::to_string(info.st_mode);
    } else {
      stamps[name] = std::to_string(info.st_ino) + " " + std::to_string(info.st_mode) + " " +
                     std::to_string(info.st_size) + " " + std::to_string(info.st_mtim.tv_sec) + "." +
                     std::to_string(info.st_mtim.tv_nsec);
    }
  }
  return stamps;
}

std::vector<std::string> WizardRuns::ChangedFiles() const {
  std::vector<std::string> changed;
  const auto now = Stamps();
  for (const auto& [name, stamp] : stamps_) {
    const auto place = now.find(name);
    if (place != now.end() && place->second == stamp) continue;
    // The live list is put aside for a moment, and comes back as another file with the same bytes.
    const bool same = place != now.end() && !name.ends_with('/') &&
                      ReadHostFile(machine_ + "/" + name) == ReadHostFile(pristine_ + "/" + name);
    if (!same) changed.push_back(name);
  }
  for (const auto& [name, stamp] : now) {
    if (!stamps_.contains(name)) changed.push_back(name + " (new)");
  }
  return changed;
}

bool WizardRuns::IsFolder(const std::string& below_drive) const {
  return fs::is_directory(Folder(below_drive));
}

void WizardRuns::Restore() {
  if (Stamps() != stamps_) LayOut();
  for (const char* folder : {"Out", "Temp"}) fs::remove_all(Folder(folder));
  fs::create_directories(Folder("Temp"));
  fs::remove_all(machine_ + "/registry");
  fs::copy(pristine_ + "/registry", machine_ + "/registry", fs::copy_options::recursive);
  fs::remove_all(work_ + "/tmp");
  fs::create_directories(work_ + "/tmp");
}

int WizardRuns::Start(int& to_wizard, int& from_wizard, bool with_faults) {
  int in[2];
  int out[2];
  if (::pipe2(in, O_CLOEXEC) != 0 || ::pipe2(out, O_CLOEXEC) != 0) Fail("pipe");
  const pid_t wizard = ::fork();
  if (wizard < 0) Fail("fork");
  if (wizard == 0) {
    ::dup2(in[0], STDIN_FILENO);
    ::dup2(out[1], STDOUT_FILENO);
    ::dup2(out[1], STDERR_FILENO);
    ::setenv("KITWRIGHT_ROOT", machine_.c_str(), 1);
    ::setenv("TMPDIR", (work_ + "/tmp").c_str(), 1);
    ::unsetenv("DISPLAY");
    ::unsetenv("WAYLAND_DISPLAY");
    if (with_faults) {
      ::setenv("LD_PRELOAD", KITWRIGHT_FAILING_CALLS, 1);
      ::setenv(kPlanVariable, (work_ + "/plan").c_str(), 1);
    }
    ::execl(KITWRIGHT_BINARY_DIR "/bin/kitwright-drive", "kitwright-drive", static_cast<char*>(nullptr));
    ::_exit(127);
  }
  ::close(in[0]);
  ::close(out[1]);
  to_wizard = in[1];
  from_wizard = out[0];
  return wizard;
}

Outcome WizardRuns::Run(const Fault& fault, const std::function<void()>& meanwhile) {
  Restore();
  return RunScript(before_build_, fault, meanwhile);
}

Outcome WizardRuns::RunAfterwards() {
  std::string script = before_build_;
  const std::string destination = "C:\\Out";
  const size_t at = script.find(destination);
  if (at != std::string::npos) script.replace(at, destination.size(), "C:\\Out\\Afterwards");
  return RunScript(script, {}, nullptr);
}

Outcome WizardRuns::RunScript(const std::string& before_build, const Fault& fault,
                              const std::function<void()>& meanwhile) {
  plan_->armed = 0;
  plan_->kinds = fault.kinds;
  plan_->mode = fault.mode;
  plan_->error = fault.error;
  plan_->first = fault.first;
  plan_->times = fault.times;
  plan_->counted = 0;
  plan_->suffered = 0;
  plan_->random = 0;
  std::snprintf(plan_->below, sizeof plan_->below, "%s%s", fault.below.empty() ? "" : "machine/drive_c/",
                fault.below.c_str());
  std::snprintf(plan_->root, sizeof plan_->root, "%s/", work_.c_str());

  Outcome outcome;
  int to = -1;
  int from = -1;
  const pid_t wizard = Start(to, from, true);
  plan_->wizard = wizard;
  std::string transcript;
  const auto end = Clock::now() + kLongest;
  WriteAll(to, before_build + kArmLine + "\n");
  bool in_time = ReadUntil(from, kArmLine, transcript, end);
  const size_t begin = transcript.find(kArmLine);
  if (begin == std::string::npos)
    throw std::runtime_error("the run stopped before its build:\n" + transcript);
  if (meanwhile) meanwhile();
  plan_->armed = 1;
  WriteAll(to, build_);
  ::close(to);
  in_time = in_time && ReadUntil(from, nullptr, transcript, end);
  plan_->armed = 0;
  if (!in_time) ::kill(wizard, SIGKILL);
  ::close(from);
  ::waitpid(wizard, &outcome.status, 0);
  CollectChildren();
  outcome.hung = !in_time;
  outcome.hit = plan_->suffered > 0;
  if (outcome.hit && fault.first > 0 && fault.first <= FaultPlan::kMostCalls) {
    const CountedCall& call = plan_->calls[fault.first - 1];
    outcome.call = std::string(call.program) + ": " + call.call + " " + call.path;
  }
  std::string_view rest = std::string_view(transcript).substr(begin);
  while (!rest.empty()) {
    const size_t line = rest.find('\n');
    outcome.told.emplace_back(rest.substr(0, line));
    rest.remove_prefix(line == std::string_view::npos ? rest.size() : line + 1);
  }
  return outcome;
}

std::vector<CountedCall> WizardRuns::Calls() const {
  const uint32_t count = std::min<uint32_t>(plan_->counted, FaultPlan::kMostCalls);
  return {plan_->calls, plan_->calls + count};
}

std::string WizardRuns::StartAgain() {
  int to = -1;
  int from = -1;
  const pid_t wizard = Start(to, from, false);
  WriteAll(to, "click frmWelcome.Cancel\n");
  ::close(to);
  std::string transcript;
  const bool in_time = ReadUntil(from, nullptr, transcript, Clock::now() + kLongest);
  if (!in_time) ::kill(wizard, SIGKILL);
  ::close(from);
  ::waitpid(wizard, nullptr, 0);
  return transcript;
}

bool WizardRuns::HasStagingBranches() const {
  platform::embedded::EmbeddedRegistry registry(machine_, 1252);
  for (const char* branch : {"SOFTWARE\\Orvantic\\ZED", "SOFTWARE\\Orvantic\\ZED_Backup"}) {
    if (registry.OpenKey(platform::Hive::kCurrentUser, branch, platform::kKeyQuery).ok()) return true;
  }
  return false;
}

}  // namespace kw::faults
