#include "cabinet/make_cab.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <set>

#include "base/path.h"
#include "base/text.h"

namespace kw::cabinet {
namespace {

constexpr char kNewLine[] = "\r\n";

struct Job {
  Directives directives;
  std::string cabinet_path;  // on the host
  std::vector<CabinetFile> files;
  WriterOptions options;
};

Result<Directives> ReadDirectives(Storage& storage, const std::string& host_path, int code_page) {
  KW_ASSIGN_OR_RETURN(std::string text, ReadWholeFile(storage, host_path));
  text = CodePageToUtf8(text, code_page);
  Result<Directives> directives = ParseDirectives(text);
  if (!directives.ok()) return {directives.number(), host_path + ": " + directives.error().message};
  return directives;
}

Status FillJob(Storage& storage, const MachinePaths& paths, int code_page, Job& job) {
  Directives& directives = job.directives;
  if (!directives.make_cabinet) {
    return {kErrorUnsupported, "Copying files without a cabinet is not supported."};
  }
  if (directives.files.empty()) return {kErrorInvalidData, "The directive file lists no file."};
  std::set<std::string_view> names;
  std::set<std::string_view, LessNoCase> paths_listed;
  job.files.reserve(directives.files.size());
  for (const Directives::File& file : directives.files) {
    const std::string host = paths.HostPath(file.path);
    if (!storage.Exists(host)) {
      return {kErrorFileNotFound,
              "Line " + std::to_string(file.line) + ": the file " + file.path + " does not exist."};
    }
    if (!names.insert(file.name).second) {
      return {kErrorAlreadyExists,
              "Line " + std::to_string(file.line) + ": the name " + file.name + " is listed twice."};
    }
    // What lay in two cabinet entries is one file in a folder, and would be packed as both.
    const std::string_view listed = *paths_listed.insert(file.path).first;
    if (listed != file.path) {
      return {kErrorAlreadyExists, "Line " + std::to_string(file.line) + ": the file " + file.path +
                                       " is also listed as " + std::string(listed) + "."};
    }
    job.files.push_back({host, "", std::nullopt});
  }
  // Tens of thousands of names are kept once; the views of them go first.
  names.clear();
  paths_listed.clear();
  for (size_t i = 0; i < job.files.size(); ++i) job.files[i].name = std::move(directives.files[i].name);
  directives.files = {};
  job.options.compress = directives.compress;
  job.options.reserved_header = directives.reserved_header;
  job.options.code_page = code_page;
  if (directives.max_disk_size != 0) job.options.max_size = directives.max_disk_size;
  return {};
}

Status WriteText(Storage& storage, const MachinePaths& paths, const std::string& name,
                 const std::string& text, int code_page) {
  if (name.empty()) return {};
  KW_ASSIGN_OR_RETURN(const std::string bytes, Utf8ToCodePage(text, code_page));
  return WriteFileAtomically(storage, paths.HostPath(name), bytes);
}

std::string WithThousands(uint64_t number) {
  std::string digits = std::to_string(number);
  for (size_t at = digits.size(); at > 3; at -= 3) digits.insert(at - 3, 1, ',');
  return digits;
}

// Fills the fields of a line format: names between "*", "**" for a star.
std::string FillFormat(std::string_view format,
                       const std::map<std::string, std::string, LessNoCase>& fields) {
  std::string out;
  while (!format.empty()) {
    const size_t star = format.find('*');
    out.append(format.substr(0, star));
    if (star == std::string_view::npos) break;
    format.remove_prefix(star + 1);
    const size_t end = format.find('*');
    const auto field = fields.find(format.substr(0, end));
    if (end == std::string_view::npos || field == fields.end()) {
      out += '*';
      if (end == 0) format.remove_prefix(1);
      continue;
    }
    out += field->second;
    format.remove_prefix(end + 1);
  }
  return out;
}

}  // namespace

std::string InfText(const Directives& directives, const std::vector<CabinetFile>& files,
                    const WrittenCabinet& written) {
  std::string text;
  if (!directives.inf_header.empty()) text += directives.inf_header + kNewLine;
  text += std::string("[disk list]") + kNewLine + "1,Disk 1" + kNewLine + kNewLine;
  text += std::string("[cabinet list]") + kNewLine + "1,1," + directives.CabinetName() + kNewLine + kNewLine;
  text += std::string("[file list]") + kNewLine;
  for (size_t i = 0; i < files.size(); ++i) {
    text += FillFormat(directives.inf_file_line_format, {{"disk#", "1"},
                                                         {"cab#", "1"},
                                                         {"file#", std::to_string(i + 1)},
                                                         {"file", files[i].name},
                                                         {"size", std::to_string(written.sizes[i])}}) +
            kNewLine;
  }
  if (!directives.inf_footer.empty()) text += directives.inf_footer + kNewLine;
  return text;
}

std::string ReportText(const WrittenCabinet& written, double seconds) {
  const double before = static_cast<double>(written.content_size);
  const double ratio = before > 0 ? 100.0 * static_cast<double>(written.size) / before : 0.0;
  char numbers[2][64];
  std::snprintf(numbers[0], sizeof numbers[0], "%.2f%%", ratio);
  std::snprintf(numbers[1], sizeof numbers[1], "%.2f seconds", seconds);
  std::string text = std::string("Cabinet report") + kNewLine + kNewLine;
  text += "Total files:   " + WithThousands(written.sizes.size()) + kNewLine;
  text += "Bytes before:  " + WithThousands(written.content_size) + kNewLine;
  text += "Bytes after:   " + WithThousands(written.size) + kNewLine;
  text += std::string("After/Before:  ") + numbers[0] + kNewLine;
  text += std::string("Time:          ") + numbers[1] + kNewLine;
  return text;
}

Status MakeCabinet(Storage& storage, const MachinePaths& paths, const std::string& directive_path,
                   const std::string& default_folder, int code_page) {
  const auto start = std::chrono::steady_clock::now();
  Job job;
  KW_ASSIGN_OR_RETURN(job.directives, ReadDirectives(storage, paths.HostPath(directive_path), code_page));
  std::string folder = job.directives.OutputFolder();
  if (folder.empty()) folder = default_folder.empty() ? paths.current() : default_folder;
  job.cabinet_path = paths.HostPath(JoinPath(folder, job.directives.CabinetName()));
  if (storage.Exists(job.cabinet_path)) KW_RETURN_IF_ERROR(storage.Remove(job.cabinet_path));

  KW_RETURN_IF_ERROR(FillJob(storage, paths, code_page, job));
  KW_ASSIGN_OR_RETURN(const WrittenCabinet written,
                      WriteCabinet(storage, job.cabinet_path, job.files, job.options));
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
  Status status = WriteText(storage, paths, job.directives.inf_file_name,
                            InfText(job.directives, job.files, written), code_page);
  if (status.ok()) {
    status =
        WriteText(storage, paths, job.directives.rpt_file_name, ReportText(written, took.count()), code_page);
  }
  if (!status.ok()) storage.Remove(job.cabinet_path).IgnoreError();
  return status;
}

Status RunMakeCab(Storage& storage, const MachinePaths& paths, const std::vector<std::string>& arguments,
                  int code_page) {
  static constexpr char kUsage[] = "Usage: MakeCab /f <directive file> [/l <folder>]";
  std::map<std::string, std::string, LessNoCase> options;
  std::string* value = nullptr;
  for (const std::string& argument : arguments) {
    if (EqualsNoCase(argument, "/f") || EqualsNoCase(argument, "/l")) {
      value = &options[argument];
    } else if (value == nullptr) {
      return {kErrorInvalidParameter, kUsage};
    } else {
      // The callers' paths stand without quotes, whatever blanks they hold.
      if (!value->empty()) *value += ' ';
      *value += argument;
    }
  }
  if (options["/f"].empty()) return {kErrorInvalidParameter, kUsage};
  return MakeCabinet(storage, paths, options["/f"], options["/l"], code_page);
}

}  // namespace kw::cabinet
