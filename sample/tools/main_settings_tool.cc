// OasCfg32, OdsCfg32, TxDesk and TxFetch: the product's configuration tools. One program, which does what the
// name it is started by says.

#include <cstdio>

#include "sample/settings/dialog_library.h"
#include "sample/settings/run_tool.h"
#include "sample/settings/this_machine.h"
#include "tools/program.h"

namespace {

/// The exit code for a command line that the tool does not know, as the system numbers it.
constexpr int kBadCommand = kw::kErrorInvalidParameter;

}  // namespace

int main(int argc, char** argv) {
  const kw::tools::ProgramStart start = kw::tools::ReadProgramStart(argc, argv, argv[0]);
  const auto command = kw::sample::ParseToolCommand(argv[0], start.arguments);
  if (!command.ok()) {
    std::fprintf(stderr, "%s\n", command.error().message.c_str());
    return kBadCommand;
  }
  const auto registry = kw::sample::OpenMachineRegistry(start.paths, start.code_page);
  const auto outcome = kw::sample::RunTool(*command, *registry, start.code_page,
                                           kw::sample::AnswerOfThisProcess(), kw::sample::ShowSettingsDialog);
  if (!outcome.ok()) {
    std::fprintf(stderr, "%s: %s\n", argv[0], outcome.error().message.c_str());
    return 1;
  }
  return outcome->failed ? 1 : 0;
}
