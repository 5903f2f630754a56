#ifndef KITWRIGHT_TOOLS_REGEDIT_REGISTRY_EDITOR_H_
#define KITWRIGHT_TOOLS_REGEDIT_REGISTRY_EDITOR_H_

#include <string>
#include <string_view>
#include <vector>

#include "base/machine_paths.h"
#include "base/result.h"

namespace kw::regedit {

/// What a command line asks for.
struct Command {
  bool silent = false;
  bool is_export = false;
  std::string export_file;
  std::string export_key;  ///< "" means everything
  std::vector<std::string> import_files;
};

/// Reads a whole command line, program name included. Switches may begin with "/" or "-" and come in any
/// case; a missing closing quote ends with the line.
Result<Command> ParseCommand(std::string_view command_line);

/// Carries out a command on the registry of the machine that `paths` describes. Fails for a missing file or
/// key, a file that is not the registry editor's, and lines of it that mean nothing; what does mean something
/// in such a file is carried out all the same.
Status Run(const Command& command, const MachinePaths& paths, int code_page);

}  // namespace kw::regedit

#endif  // KITWRIGHT_TOOLS_REGEDIT_REGISTRY_EDITOR_H_
