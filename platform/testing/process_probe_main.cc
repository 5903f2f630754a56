// The child of the processes' contract suite. It writes what it was given into the file that PROBE_OUT names
// (a Windows path): its command line, its current folder and PROBE_VALUE, a line each. It ends with
// PROBE_EXIT, after the file that PROBE_WAIT names is there.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>

#include "base/command_line.h"
#include "base/machine_paths.h"
#include "base/storage.h"

namespace {

std::string Variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

}  // namespace

int main(int argc, char** argv) {
  const kw::MachinePaths paths = kw::MachinePaths::OfThisProcess();
  std::puts("What a program without a console prints goes nowhere.");
  const std::string text =
      kw::RawCommandLine(argc, argv) + "\n" + paths.current() + "\n" + Variable("PROBE_VALUE") + "\n";
  const std::string out = Variable("PROBE_OUT");
  if (!out.empty() && !kw::WriteFileAtomically(kw::SystemStorage(), paths.HostPath(out), text).ok()) {
    return 99;
  }
  const std::string wait = Variable("PROBE_WAIT");
  for (int i = 0; !wait.empty() && !kw::SystemStorage().Exists(paths.HostPath(wait)) && i < 2000; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return std::atoi(Variable("PROBE_EXIT").c_str());
}
