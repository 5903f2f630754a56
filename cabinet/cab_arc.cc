#include "cabinet/cab_arc.h"

#include <algorithm>
#include <cstdio>

#include "base/text.h"
#include "cabinet/cabinet_reader.h"
#include "cabinet/entry_name.h"
#include "cabinet/entry_splitter.h"
#include "cabinet/folder_sink.h"

namespace kw::cabinet {
namespace {

constexpr char kUsage[] = "Usage: CabArc X <cabinet> [<pattern>...] [<folder>\\], or CabArc L <cabinet>";

std::string Joined(std::vector<std::string>::const_iterator from,
                   std::vector<std::string>::const_iterator to) {
  std::string text;
  for (; from != to; ++from) text.append(text.empty() ? "" : " ").append(*from);
  return text;
}

struct Request {
  std::string cabinet;
  std::vector<std::string> patterns;
  std::string folder;
};

Request ReadRequest(const std::vector<std::string>& arguments) {
  Request request;
  const auto all = std::find(arguments.begin(), arguments.end(), "*.*");
  if (all != arguments.end()) {
    request.cabinet = Joined(arguments.begin(), all);
    request.folder = Joined(all + 1, arguments.end());
    return request;
  }
  for (const std::string& argument : arguments) {
    if (request.cabinet.empty()) {
      request.cabinet = argument;
    } else if (argument.ends_with('\\') || argument.ends_with('/')) {
      request.folder = argument;
    } else {
      request.patterns.push_back(argument);
    }
  }
  return request;
}

Result<std::string> Unpack(Storage& storage, const MachinePaths& paths, const Request& request,
                           int code_page) {
  const std::string folder = paths.HostPath(request.folder);
  KW_RETURN_IF_ERROR(NamesInHostFolder(folder).status());
  KW_ASSIGN_OR_RETURN(CabinetReader reader,
                      CabinetReader::Open(storage, paths.HostPath(request.cabinet), code_page));
  FolderSink sink(storage, folder, FolderSink::Making::kTogether);
  size_t count = 0;
  const CabinetReader::Wanted wanted = [&](const CabinetEntry& entry) {
    const bool fits =
        request.patterns.empty() ||
        std::any_of(request.patterns.begin(), request.patterns.end(),
                    [&](const std::string& pattern) { return FitsPattern(entry.name, pattern); });
    count += fits ? 1 : 0;
    return fits;
  };
  const Status unpacked = reader.Extract(sink, wanted);
  // Who does not ask how it ended must not take a part for the whole.
  if (!unpacked.ok() && !IsFaultOfTheCabinet(unpacked)) sink.TakeBack();
  KW_RETURN_IF_ERROR(unpacked);
  return std::to_string(count) + " file(s) unpacked.\n";
}

Result<std::string> List(Storage& storage, const MachinePaths& paths, const Request& request, int code_page) {
  KW_ASSIGN_OR_RETURN(const CabinetReader reader,
                      CabinetReader::Open(storage, paths.HostPath(request.cabinet), code_page));
  std::string text;
  for (const CabinetEntry& entry : reader.entries()) {
    char line[96];
    const FileStamp& stamp = entry.stamp;
    std::snprintf(line, sizeof line, "%10u  %04d/%02d/%02d %02d:%02d:%02d  %c%c%c%c  ", entry.size,
                  (stamp.date >> 9) + 1980, (stamp.date >> 5) & 15, stamp.date & 31, stamp.time >> 11,
                  (stamp.time >> 5) & 63, (stamp.time & 31) * 2, (stamp.attributes & kReadOnly) ? 'R' : '-',
                  (stamp.attributes & kHidden) ? 'H' : '-', (stamp.attributes & kSystem) ? 'S' : '-',
                  (stamp.attributes & kArchive) ? 'A' : '-');
    text += line + entry.name + "\n";
  }
  return text;
}

}  // namespace

Result<std::string> RunCabArc(Storage& storage, const MachinePaths& paths,
                              const std::vector<std::string>& arguments, int code_page) {
  if (arguments.size() < 2) return {kErrorInvalidParameter, kUsage};
  const Request request = ReadRequest({arguments.begin() + 1, arguments.end()});
  if (EqualsNoCase(arguments[0], "X")) return Unpack(storage, paths, request, code_page);
  if (EqualsNoCase(arguments[0], "L")) return List(storage, paths, request, code_page);
  return {kErrorInvalidParameter, kUsage};
}

}  // namespace kw::cabinet
