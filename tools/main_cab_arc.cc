// CabArc: unpacks and lists cabinets.

#include "cabinet/cab_arc.h"
#include "tools/program.h"

int main(int argc, char** argv) {
  const kw::tools::ProgramStart start = kw::tools::ReadProgramStart(argc, argv, "CabArc");
  return kw::tools::EndProgram(
      "CabArc", kw::cabinet::RunCabArc(kw::SystemStorage(), start.paths, start.arguments, start.code_page));
}
