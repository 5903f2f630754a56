#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "ui/wx/testing/virtual_display.h"

namespace kw::ui::testing {

namespace {

constexpr int kStartMilliseconds = 10000;

/// Starts a program with its output thrown away; `keep` stays open in it. -1 when it cannot be started.
pid_t StartProgram(const std::vector<std::string>& words, int keep) {
  int report[2];
  if (pipe2(report, O_CLOEXEC) != 0) return -1;
  const pid_t child = fork();
  if (child == 0) {
    const int nowhere = open("/dev/null", O_RDWR);
    for (const int standard : {0, 1, 2}) dup2(nowhere, standard);
    if (keep >= 0) fcntl(keep, F_SETFD, 0);
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    const char failed = 1;
    if (write(report[1], &failed, 1) != 1) _exit(126);
    _exit(127);
  }
  close(report[1]);
  char failed = 0;
  const bool started = child > 0 && read(report[0], &failed, 1) == 0;
  close(report[0]);
  if (!started && child > 0) waitpid(child, nullptr, 0);
  return started ? child : -1;
}

void End(pid_t& child) {
  if (child <= 0) return;
  kill(child, SIGTERM);
  waitpid(child, nullptr, 0);
  child = -1;
}

/// The display number that the server writes once it is ready; "" when it does not.
std::string ReadNumber(int from) {
  std::string number;
  pollfd waiting{from, POLLIN, 0};
  while (poll(&waiting, 1, kStartMilliseconds) > 0) {
    char letter = 0;
    if (read(from, &letter, 1) != 1) return "";
    if (letter == '\n') return number;
    number += letter;
  }
  return "";
}

}  // namespace

std::unique_ptr<VirtualDisplay> VirtualDisplay::Start(int width, int height) {
  int ready[2];
  if (pipe2(ready, O_CLOEXEC) != 0) return nullptr;
  std::unique_ptr<VirtualDisplay> display(new VirtualDisplay);
  const std::string screen = std::to_string(width) + "x" + std::to_string(height) + "x24";
  display->server_ = StartProgram({"Xvfb", "-displayfd", std::to_string(ready[1]), "-screen", "0", screen,
                                   "-nolisten", "tcp", "-noreset"},
                                  ready[1]);
  close(ready[1]);
  const std::string number = display->server_ > 0 ? ReadNumber(ready[0]) : "";
  close(ready[0]);
  if (number.empty()) return nullptr;
  setenv("DISPLAY", (":" + number).c_str(), 1);
  // A window that is shown before the manager manages would not become active.
  char folder[] = "/tmp/kitwright-display.XXXXXX";
  if (!mkdtemp(folder)) return nullptr;
  const std::string managed = std::string(folder) + "/managed";
  display->manager_ = StartProgram({"openbox", "--sm-disable", "--startup", "touch " + managed}, -1);
  for (int waited = 0;
       display->manager_ > 0 && waited < kStartMilliseconds && access(managed.c_str(), F_OK) != 0;
       waited += 20)
    poll(nullptr, 0, 20);
  unlink(managed.c_str());
  rmdir(folder);
  if (display->manager_ <= 0) return nullptr;
  return display;
}

VirtualDisplay::~VirtualDisplay() {
  End(manager_);
  End(server_);
}

}  // namespace kw::ui::testing
