#include <cstdio>

#include "base/command_line.h"
#include "base/machine_config.h"
#include "base/machine_paths.h"
#include "base/text.h"
#include "tools/regedit/registry_editor.h"

int main(int argc, char** argv) {
  const auto command = kw::regedit::ParseCommand(kw::RawCommandLine(argc, argv));
  if (!command.ok()) {
    std::fprintf(stderr, "regedit: %s\n", command.error().message.c_str());
    return 1;
  }
  const kw::MachinePaths paths = kw::MachinePaths::OfThisProcess();
  const kw::Status status = kw::regedit::Run(*command, paths, kw::MachineCodePage(paths.root()));
  if (status.ok()) return 0;
  if (!command->silent) std::fprintf(stderr, "regedit: %s\n", status.message().c_str());
  return 1;
}
