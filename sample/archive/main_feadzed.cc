// FEADZED: packs a folder into one self-extracting SETUP.EXE.

#include <filesystem>

#include "base/storage.h"
#include "sample/archive/repacker.h"
#include "sample/settings/answers.h"
#include "sample/settings/this_machine.h"
#include "tools/program.h"

int main(int argc, char** argv) {
  const kw::tools::ProgramStart start = kw::tools::ReadProgramStart(argc, argv, "FEADZED");
  if (kw::sample::MustFail("FEADZED")) {
    return kw::tools::EndProgram("FEADZED",
                                 kw::Result<std::string>(kw::kErrorFunctionFailed, "Asked to fail."));
  }
  const std::filesystem::path self = kw::sample::OwnProgram();
  const kw::Status status =
      kw::sample::RunOptimizer(kw::SystemStorage(), start.paths, start.arguments,
                               (self.parent_path() / "Repacker.stub").string(), start.code_page);
  return kw::tools::EndProgram("FEADZED", status.ok() ? kw::Result<std::string>("") : status.error());
}
