#include "platform/embedded/program_finder.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

#include "base/command_line.h"
#include "base/path.h"
#include "base/text.h"

namespace kw::platform::embedded {
namespace {

constexpr std::string_view kExe = ".exe";

std::string WithoutExe(const std::string& name) {
  return EndsWithNoCase(name, kExe) ? name.substr(0, name.size() - kExe.size()) : name;
}

bool HasExtension(const std::string& name) { return FileNameOf(name).find('.') != std::string::npos; }

// The names that the beginning of a command line may be, in the order of trying.
std::vector<std::string> PossibleNames(std::string_view line) {
  const size_t start = line.find_first_not_of(" \t");
  if (start == std::string_view::npos) return {};
  line.remove_prefix(start);
  if (line.front() == '"') {
    line.remove_prefix(1);
    return {std::string(line.substr(0, line.find('"')))};
  }
  std::vector<std::string> names;
  for (size_t end = line.find_first_of(" \t"); end != std::string_view::npos;
       end = line.find_first_of(" \t", end + 1)) {
    names.emplace_back(line.substr(0, end));
  }
  names.emplace_back(line);
  return names;
}

}  // namespace

ProgramFinder::Kind ProgramFinder::KindOf(const std::string& path) const {
  if (!files_.FileExists(path)) return Kind::kNone;
  auto open = files_.Open(path, OpenHow::kReadExisting);
  const std::string start = open.ok() ? (*open)->Read(4).value_or("") : std::string();
  if (start ==
          "\x7F"
          "ELF" ||
      start.starts_with("#!"))
    return Kind::kNative;
  return start.starts_with("MZ") ? Kind::kWindows : Kind::kOther;
}

std::vector<std::string> ProgramFinder::SearchFolders() const {
  std::vector<std::string> folders{program_folder_, files_.CurrentFolder(), "C:\\Windows\\System32",
                                   "C:\\Windows"};
  if (const char* path = std::getenv("KITWRIGHT_PATH")) {
    for (std::string& folder : Split(path, ';')) {
      if (!folder.empty()) folders.push_back(std::move(folder));
    }
  }
  return folders;
}

// A file counts whatever it holds under the name that the system's call would look for; under the shortened
// name it must be native.
std::optional<std::string> ProgramFinder::FindIn(const std::string& folder, const std::string& name) const {
  const std::string path = folder.empty() ? name : JoinPath(folder, name);
  const std::string full = HasExtension(name) ? path : path + std::string(kExe);
  if (files_.FileExists(full)) return full;
  const std::string shortened = WithoutExe(full);
  if (shortened != full && KindOf(shortened) == Kind::kNative) return shortened;
  return std::nullopt;
}

std::optional<std::string> ProgramFinder::FindFile(const std::string& name) const {
  if (name.empty()) return std::nullopt;
  if (name.find_first_of("\\/:") != std::string::npos) return FindIn("", name);
  for (const std::string& folder : SearchFolders()) {
    if (auto found = FindIn(folder, name)) return found;
  }
  return std::nullopt;
}

std::optional<std::string> ProgramFinder::FindTwin(const std::string& path) const {
  const std::string folder = ParentOf(path);
  const std::string beside = WithoutExe(path);
  if (beside != path && KindOf(beside) == Kind::kNative) return beside;
  const auto version = versions_.Read(path);
  if (!version.ok()) return std::nullopt;
  for (const auto& [language, strings] : version->strings) {
    const auto original = strings.find("OriginalFilename");
    if (original == strings.end()) continue;
    const std::string name = WithoutExe(original->second.substr(0, original->second.find('\0')));
    // The name comes from the file: it must not lead out of the two folders.
    if (name.empty() || name.find_first_of("\\/:") != std::string::npos) continue;
    for (const std::string& place : {folder, program_folder_}) {
      const std::string twin = JoinPath(place, name);
      if (KindOf(twin) == Kind::kNative) return twin;
    }
  }
  return std::nullopt;
}

Result<FoundProgram> ProgramFinder::Find(const std::string& command_line) const {
  const auto failure = [&](int number, const char* reason) {
    return Error{number, "Could not start " + command_line + ": " + reason + "."};
  };
  for (const std::string& name : PossibleNames(command_line)) {
    const auto path = FindFile(name);
    if (!path) continue;
    FoundProgram found;
    found.path = files_.Paths().FullPath(*path);
    const Kind kind = KindOf(found.path);
    std::optional<std::string> native;
    if (kind == Kind::kNative) native = found.path;
    if (kind == Kind::kWindows) native = FindTwin(found.path);
    if (!native) return failure(kErrorBadExeFormat, "the file is no program for this machine");
    found.host_path = files_.Paths().HostPath(*native);
    if (::access(found.host_path.c_str(), X_OK) != 0) {
      return failure(kErrorAccessDenied, "the file may not be executed");
    }
    found.arguments = SplitCommandLine(command_line, FileNameOf(name));
    return found;
  }
  return failure(kErrorFileNotFound, "the program does not exist");
}

}  // namespace kw::platform::embedded
