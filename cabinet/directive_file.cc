#include "cabinet/directive_file.h"

#include <algorithm>
#include <map>
#include <optional>

#include "base/path.h"
#include "base/text.h"
#include "cabinet/format.h"

namespace kw::cabinet {
namespace {

// Bytes on the disks that MaxDiskSize knows by name.
constexpr uint64_t kCdRom = 681984000;

Error LineError(size_t line, const std::string& what) {
  return {kErrorInvalidData, "Line " + std::to_string(line) + ": " + what};
}

std::string Unquoted(std::string_view text) {
  text = TrimBlanks(text);
  if (text.size() >= 2 && text.starts_with('"') && text.ends_with('"'))
    text = text.substr(1, text.size() - 2);
  return std::string(text);
}

std::optional<bool> SwitchOf(const std::string& value) {
  for (const char* on : {"ON", "YES", "TRUE", "1"}) {
    if (EqualsNoCase(value, on)) return true;
  }
  for (const char* off : {"OFF", "NO", "FALSE", "0"}) {
    if (EqualsNoCase(value, off)) return false;
  }
  return std::nullopt;
}

std::optional<uint64_t> NumberOf(const std::string& value, uint64_t most) {
  if (value.empty() || value.size() > 12) return std::nullopt;
  uint64_t number = 0;
  for (const char c : value) {
    if (c < '0' || c > '9') return std::nullopt;
    number = number * 10 + static_cast<uint64_t>(c - '0');
  }
  return number <= most ? std::optional(number) : std::nullopt;
}

std::optional<uint64_t> DiskSizeOf(const std::string& value) {
  if (EqualsNoCase(value, "CDROM")) return kCdRom;
  return NumberOf(value, UINT64_MAX);
}

// Stores what `convert` makes of the value; false when it makes nothing.
template <typename Field, typename Converted>
bool Store(Field& field, const std::optional<Converted>& converted) {
  if (converted) field = static_cast<Field>(*converted);
  return converted.has_value();
}

// Takes one setting; false when its value is not understood, nothing when its name is not known.
std::optional<bool> TakeSetting(Directives& out, std::string_view name, const std::string& value) {
  using Setter = bool (*)(Directives&, const std::string&);
  static const std::map<std::string, Setter, LessNoCase> kSetters = {
      {"Cabinet", [](Directives& d, const std::string& v) { return Store(d.make_cabinet, SwitchOf(v)); }},
      {"Compress", [](Directives& d, const std::string& v) { return Store(d.compress, SwitchOf(v)); }},
      {"CabinetNameTemplate",
       [](Directives& d, const std::string& v) { return d.cabinet_name_template = v, !v.empty(); }},
      {"CabinetName1", [](Directives& d, const std::string& v) { return d.cabinet_name_1 = v, true; }},
      {"DiskDirectoryTemplate",
       [](Directives& d, const std::string& v) { return d.disk_directory_template = v, true; }},
      {"DiskDirectory1", [](Directives& d, const std::string& v) { return d.disk_directory_1 = v, true; }},
      {"ReservePerCabinetSize",
       [](Directives& d, const std::string& v) {
         return Store(d.reserved_header, NumberOf(v, kMaxReservedHeader));
       }},
      {"MaxDiskSize",
       [](Directives& d, const std::string& v) { return Store(d.max_disk_size, DiskSizeOf(v)); }},
      // One method of compression is offered; its level and memory are accepted and decide nothing.
      {"CompressionType", [](Directives&, const std::string& v) { return EqualsNoCase(v, "MSZIP"); }},
      {"CompressionLevel", [](Directives&, const std::string& v) { return NumberOf(v, 7).has_value(); }},
      {"CompressionMemory", [](Directives&, const std::string& v) { return NumberOf(v, 21).has_value(); }},
      {"InfFileName", [](Directives& d, const std::string& v) { return d.inf_file_name = v, true; }},
      {"RptFileName", [](Directives& d, const std::string& v) { return d.rpt_file_name = v, true; }},
      {"InfHeader", [](Directives& d, const std::string& v) { return d.inf_header = v, true; }},
      {"InfFooter", [](Directives& d, const std::string& v) { return d.inf_footer = v, true; }},
      {"InfFileLineFormat",
       [](Directives& d, const std::string& v) { return d.inf_file_line_format = v, true; }},
  };
  const auto found = kSetters.find(name);
  if (found == kSetters.end()) return std::nullopt;
  return found->second(out, value);
}

// A word of a directive or the text between quotes; moves `rest` behind it.
std::string TakeWord(std::string_view& rest) {
  rest = TrimBlanks(rest);
  const bool quoted = rest.starts_with('"');
  if (quoted) rest.remove_prefix(1);
  const size_t end = std::min(rest.find_first_of(quoted ? "\"" : " \t"), rest.size());
  std::string word(rest.substr(0, end));
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return word;
}

Status ParseSetting(Directives& out, std::string_view rest, size_t line) {
  const size_t equals = rest.find('=');
  const std::string_view name = TrimBlanks(rest.substr(0, equals));
  if (equals == std::string_view::npos || name.empty()) {
    return LineError(line, "a setting needs a name and a value.");
  }
  const std::string value = Unquoted(rest.substr(equals + 1));
  const std::optional<bool> taken = TakeSetting(out, name, value);
  if (!taken) return LineError(line, "the setting \"" + std::string(name) + "\" is not known.");
  if (!*taken) {
    return LineError(line, "the value \"" + value + "\" does not suit " + std::string(name) + ".");
  }
  return {};
}

Status ParseLine(Directives& out, std::string_view text, size_t line) {
  std::string_view rest = TrimBlanks(text);
  if (rest.empty() || rest.starts_with(';')) return {};
  if (rest.starts_with('.')) {
    const std::string directive = TakeWord(rest);
    if (EqualsNoCase(directive, ".Set")) return ParseSetting(out, rest, line);
    if (EqualsNoCase(directive, ".Option") && EqualsNoCase(TrimBlanks(rest), "EXPLICIT")) return {};
    return LineError(line, "the directive \"" + directive + "\" is not known.");
  }
  Directives::File file;
  file.line = line;
  file.path = TakeWord(rest);
  file.name = TakeWord(rest);
  if (file.path.empty() || !TrimBlanks(rest).empty()) {
    return LineError(line, "a file's line holds its path and, if need be, its name.");
  }
  if (file.name.empty()) file.name = FileNameOf(file.path);
  if (file.name.empty()) return LineError(line, "\"" + file.path + "\" names no file.");
  out.files.push_back(std::move(file));
  return {};
}

}  // namespace

std::string Directives::CabinetName() const {
  return cabinet_name_1.empty() ? ReplaceAll(cabinet_name_template, "*", "1") : cabinet_name_1;
}

std::string Directives::OutputFolder() const {
  return disk_directory_1.empty() ? ReplaceAll(disk_directory_template, "*", "1") : disk_directory_1;
}

Result<Directives> ParseDirectives(std::string_view text) {
  Directives out;
  size_t line = 0;
  for (bool more = true; more;) {
    const size_t end = text.find('\n');
    std::string_view content = text.substr(0, end);
    more = end != std::string_view::npos;
    if (more) text.remove_prefix(end + 1);
    if (content.ends_with('\r')) content.remove_suffix(1);
    KW_RETURN_IF_ERROR(ParseLine(out, content, ++line));
  }
  return out;
}

}  // namespace kw::cabinet
