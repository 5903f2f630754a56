#include "tools/regedit/registry_editor.h"

#include <optional>

#include "base/command_line.h"
#include "base/storage.h"
#include "base/text.h"
#include "platform/embedded/registry.h"

namespace kw::regedit {
namespace {

using platform::Hive;
using platform::HiveName;
using platform::embedded::EmbeddedRegistry;

constexpr Hive kHives[] = {Hive::kCurrentUser, Hive::kLocalMachine};

// Parts a full key name into hive and path below it.
std::optional<Hive> TakeHive(std::string_view& path) {
  for (const Hive hive : kHives) {
    const std::string_view name = HiveName(hive);
    if (!StartsWithNoCase(path, name)) continue;
    if (path.size() > name.size() && path[name.size()] != '\\') continue;
    path.remove_prefix(std::min(path.size(), name.size() + 1));
    return hive;
  }
  return std::nullopt;
}

Status Import(EmbeddedRegistry& registry, const std::string& path, const MachinePaths& paths, int code_page) {
  KW_ASSIGN_OR_RETURN(const std::string bytes, ReadWholeFile(SystemStorage(), paths.HostPath(path)));
  auto file = formats::ParseRegFile(bytes, code_page);
  if (!file.ok()) return {file.number(), path + " is no registry file."};
  size_t refused = file->bad_lines;
  formats::RegFile changes[std::size(kHives)];
  for (formats::RegFileKey& key : file->keys) {
    std::string_view below = key.path;
    const auto hive = TakeHive(below);
    // A whole hive is never deleted, nor one that this machine does not have changed.
    const bool is_whole = below.find_first_not_of('\\') == std::string_view::npos;
    if (!hive || (is_whole && key.deleted)) {
      ++refused;
      continue;
    }
    key.path = std::string(below);
    changes[*hive == kHives[0] ? 0 : 1].keys.push_back(std::move(key));
  }
  for (size_t i = 0; i < std::size(kHives); ++i) {
    KW_RETURN_IF_ERROR(registry.Apply(kHives[i], changes[i]));
  }
  if (refused != 0) {
    return {kErrorInvalidData, path + " was taken but for " + std::to_string(refused) +
                                   " lines or keys that mean nothing here."};
  }
  return {};
}

Status Export(EmbeddedRegistry& registry, const Command& command, const MachinePaths& paths) {
  formats::RegFileWriter writer;
  if (command.export_key.empty()) {
    for (const Hive hive : kHives) {
      KW_RETURN_IF_ERROR(registry.Export(hive, "", std::string(HiveName(hive)), writer));
    }
  } else {
    std::string_view below = command.export_key;
    const auto hive = TakeHive(below);
    if (!hive) return {kErrorInvalidParameter, command.export_key + " names no registry key."};
    below = below.substr(0, below.find_last_not_of('\\') + 1);
    std::string shown(HiveName(*hive));
    if (!below.empty()) shown.append("\\").append(below);
    KW_RETURN_IF_ERROR(registry.Export(*hive, below, shown, writer));
  }
  return WriteFileAtomically(SystemStorage(), paths.HostPath(command.export_file), writer.File());
}

}  // namespace

Result<Command> ParseCommand(std::string_view command_line) {
  Command command;
  const std::vector<std::string> arguments = SplitCommandLine(command_line, "regedit");
  size_t positional = 0;
  for (size_t i = 1; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument.starts_with('/') || argument.starts_with('-')) {
      const std::string name = ToLower(argument.substr(1));
      if (name == "s") {
        command.silent = true;
      } else if (name == "e") {
        command.is_export = true;
      } else {
        return {kErrorInvalidParameter, "The switch " + argument + " is not known."};
      }
      continue;
    }
    if (!command.is_export) {
      command.import_files.push_back(argument);
    } else if (positional == 0) {
      command.export_file = argument;
    } else if (positional == 1) {
      command.export_key = argument;
    } else {
      return {kErrorInvalidParameter, "The argument " + argument + " is one too many."};
    }
    ++positional;
  }
  const bool complete = command.is_export ? !command.export_file.empty() && command.import_files.empty()
                                          : !command.import_files.empty();
  if (!complete)
    return {kErrorInvalidParameter, "Usage: regedit [/s] FILE..., or regedit [/s] /e FILE [KEY]"};
  return command;
}

Status Run(const Command& command, const MachinePaths& paths, int code_page) {
  EmbeddedRegistry registry(paths.root(), code_page);
  Status result;
  if (command.is_export) {
    result = Export(registry, command, paths);
  } else {
    for (const std::string& file : command.import_files) {
      const Status status = Import(registry, file, paths, code_page);
      if (result.ok()) result = status;
    }
  }
  const Status flushed = registry.Flush();
  return result.ok() ? flushed : result;
}

}  // namespace kw::regedit
