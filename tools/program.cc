#include "tools/program.h"

#include <cstdio>

#include "base/command_line.h"
#include "base/machine_config.h"
#include "base/text.h"

namespace kw::tools {

ProgramStart ReadProgramStart(int argc, const char* const* argv, const std::string& program) {
  std::vector<std::string> arguments = SplitCommandLine(RawCommandLine(argc, argv), program);
  arguments.erase(arguments.begin());
  MachinePaths paths = MachinePaths::OfThisProcess();
  const int code_page = MachineCodePage(paths.root());
  return {std::move(arguments), std::move(paths), code_page};
}

int EndProgram(const std::string& program, const Result<std::string>& output) {
  if (output.ok()) {
    std::fputs(output->c_str(), stdout);
    return 0;
  }
  std::fprintf(stderr, "%s: %s\n", program.c_str(), ReplaceAll(output.error().message, "\n", " ").c_str());
  return 1;
}

}  // namespace kw::tools
