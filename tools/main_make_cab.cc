// MakeCab.exe: makes a cabinet from a directive file.

#include <cstdlib>

#include "base/text.h"
#include "cabinet/make_cab.h"
#include "tools/program.h"

namespace {

// Lets scripts see what the wizard does when the tool fails.
bool IsToldToFail() {
  const char* names = std::getenv("SAMPLE_FAIL");
  for (const std::string& name : kw::Split(names == nullptr ? "" : names, ',')) {
    if (kw::EqualsNoCase(kw::TrimBlanks(name), "MakeCab")) return true;
  }
  return false;
}

kw::Result<std::string> Run(const kw::tools::ProgramStart& start) {
  if (IsToldToFail()) return {kw::kErrorFunctionFailed, "The environment variable SAMPLE_FAIL says so."};
  KW_RETURN_IF_ERROR(
      kw::cabinet::RunMakeCab(kw::SystemStorage(), start.paths, start.arguments, start.code_page));
  return std::string();
}

}  // namespace

int main(int argc, char** argv) {
  return kw::tools::EndProgram("MakeCab", Run(kw::tools::ReadProgramStart(argc, argv, "MakeCab.exe")));
}
