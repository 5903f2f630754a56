// Repacker: the native twin of every self-extracting SETUP.EXE.

#include <cstdlib>

#include "base/command_line.h"
#include "base/storage.h"
#include "sample/archive/repacker.h"
#include "tools/program.h"

int main(int argc, char** argv) {
  const kw::tools::ProgramStart start = kw::tools::ReadProgramStart(argc, argv, "Repacker");
  const char* program = std::getenv("KITWRIGHT_PROGRAM");
  const kw::Status status = kw::sample::RunSelfExtractor(
      kw::SystemStorage(), start.paths, start.paths.HostPath(program != nullptr ? program : argv[0]),
      kw::RawCommandLine(argc, argv), start.code_page);
  return kw::tools::EndProgram("Repacker", status.ok() ? kw::Result<std::string>("") : status.error());
}
