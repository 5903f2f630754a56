#include "sample/archive/repacker.h"

#include <filesystem>

#include "sample/archive/appended_cabinet.h"

namespace kw::sample {

std::string UnpackFolder(const std::string& command_line) {
  constexpr std::string_view kSwitch = "-nos_o";
  const size_t at = command_line.find(kSwitch);
  if (at == std::string::npos) return "";
  std::string folder = command_line.substr(at + kSwitch.size());
  // Quotes stand around the folder, or around the whole switch where another program passed it on.
  char end = at > 0 && command_line[at - 1] == '"' ? '"' : ' ';
  if (!folder.empty() && folder[0] == '"') {
    end = '"';
    folder.erase(0, 1);
  }
  return folder.substr(0, folder.find(end));
}

Status RunSelfExtractor(Storage& storage, const MachinePaths& paths, const std::string& program,
                        const std::string& command_line, int code_page) {
  const std::string folder = UnpackFolder(command_line);
  if (folder.empty()) return Status(kErrorInvalidParameter, "No folder to unpack into was given.");
  const std::string host_folder = paths.HostPath(folder);
  std::error_code error;
  std::filesystem::create_directories(host_folder, error);
  if (error) return Status(kErrorPathNotFound, "Could not make the folder " + folder + ".");
  return ExtractAppendedCabinet(storage, program, host_folder, code_page);
}

Status RunOptimizer(Storage& storage, const MachinePaths& paths, const std::vector<std::string>& arguments,
                    const std::string& stub, int code_page) {
  if (arguments.size() != 5 || arguments[3] != "-t" || arguments[4] != "-d") {
    return Status(kErrorInvalidParameter, "usage: FEADZED \"folder\" \"output\" \"language file\" -t -d");
  }
  const std::string folder = paths.HostPath(arguments[0]);
  const std::string output = paths.HostPath(arguments[1]);
  if (!storage.Exists(paths.HostPath(arguments[2]))) {
    return Status(kErrorFileNotFound, "The language file " + arguments[2] + " does not exist.");
  }
  KW_ASSIGN_OR_RETURN(const std::vector<cabinet::CabinetFile> files, FilesBelow(folder));
  if (files.empty()) return Status(kErrorFileNotFound, "There is nothing to pack in " + arguments[0] + ".");
  return WriteBehindProgram(storage, stub, files, output, code_page);
}

}  // namespace kw::sample
