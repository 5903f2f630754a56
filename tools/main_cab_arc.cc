// CabArc: unpacks and lists cabinets.

#include "base/exit_codes.h"
#include "cabinet/cab_arc.h"
#include "cabinet/entry_splitter.h"
#include "tools/program.h"

int main(int argc, char** argv) {
  const kw::tools::ProgramStart start = kw::tools::ReadProgramStart(argc, argv, "CabArc");
  const auto output =
      kw::cabinet::RunCabArc(kw::SystemStorage(), start.paths, start.arguments, start.code_page);
  const int code = kw::tools::EndProgram("CabArc", output);
  const bool machine_failed = !output.ok() && output.number() != kw::kErrorInvalidParameter &&
                              !kw::cabinet::IsFaultOfTheCabinet(output.status());
  return machine_failed ? kw::kExitMachineFailed : code;
}
