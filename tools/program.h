#ifndef KITWRIGHT_TOOLS_PROGRAM_H_
#define KITWRIGHT_TOOLS_PROGRAM_H_

#include <string>
#include <vector>

#include "base/machine_paths.h"
#include "base/result.h"

namespace kw::tools {

/// What a program beside the wizard is started with.
struct ProgramStart {
  std::vector<std::string> arguments;  ///< without the program's name, in UTF-8
  MachinePaths paths;
  int code_page;  ///< of 8-bit text on the machine
};

/// Reads it from this process. `program` is the program's file name.
ProgramStart ReadProgramStart(int argc, const char* const* argv, const std::string& program);

/// Prints `output` on success, or the failure as one line on standard error; gives the exit code, 0 or 1.
int EndProgram(const std::string& program, const Result<std::string>& output);

}  // namespace kw::tools

#endif  // KITWRIGHT_TOOLS_PROGRAM_H_
