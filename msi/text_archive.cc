#include "msi/text_archive.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <set>

#include "base/path.h"
#include "base/text.h"
#include "msi/core.h"
#include "msi/executor.h"
#include "msi/summary_info.h"
#include "msi/view.h"

namespace kw::msi {
namespace {

constexpr const char* kForceCodePage = "_ForceCodepage";
constexpr const char* kSummary = "_SummaryInformation";
constexpr uint64_t kTicksPerSecond = 10000000;
constexpr uint64_t kSecondsTo1970 = 11644473600;

// Characters that would end a field or a line stand as others that text does not hold.
constexpr struct {
  char text;
  char archived;
} kReplaced[] = {{'\0', '\x15'}, {'\b', '\x1B'}, {'\t', '\x10'},
                 {'\n', '\x19'}, {'\f', '\x18'}, {'\r', '\x11'}};

// `name` in `folder`, with the separator that the folder's own path uses.
std::string Inside(const std::string& folder, const std::string& name) {
  const bool windows =
      folder.find('/') == std::string::npos && folder.find_first_of("\\:") != std::string::npos;
  return folder + (windows ? "\\" : "/") + name;
}

std::string Archived(std::string text) {
  for (char& c : text) {
    for (const auto& pair : kReplaced) {
      if (c == pair.text) {
        c = pair.archived;
        break;
      }
    }
  }
  return text;
}

std::string Unarchived(std::string text) {
  for (char& c : text) {
    for (const auto& pair : kReplaced) {
      if (c == pair.archived) {
        c = pair.text;
        break;
      }
    }
  }
  return text;
}

// The file that carries a row's stream; the key must be a plain name, so that nothing is written elsewhere.
Result<std::string> StreamFileName(Core& core, const Table& table, Table::Row row) {
  std::string name;
  for (const int column : table.key_columns()) {
    if (!name.empty()) name += '.';
    name += core.TextOf(table, row, column);
  }
  if (!IsPlainFileName(name)) {
    return {kErrorInvalidName,
            "The key \"" + name + "\" of the table " + table.name() + " cannot be a file's name."};
  }
  return name;
}

Status WriteStream(Core& core, const std::string& path, CfStream& stream) {
  KW_ASSIGN_OR_RETURN(auto file, OpenAnew(core.storage(), path));
  std::string buffer(256 * 1024, '\0');
  for (uint64_t at = 0; at < stream.size();) {
    KW_ASSIGN_OR_RETURN(const size_t got,
                        core.file().Read(stream, at, std::as_writable_bytes(std::span(buffer))));
    if (got == 0) return {kErrorIo, "A stream ended early while " + path + " was written."};
    KW_RETURN_IF_ERROR(file->WriteAt(at, std::as_bytes(std::span(buffer.data(), got))));
    at += got;
  }
  return {};
}

Status WriteText(Core& core, const std::string& path, const std::string& text) {
  KW_ASSIGN_OR_RETURN(auto file, OpenAnew(core.storage(), path));
  return file->WriteAt(0, std::as_bytes(std::span(text)));
}

std::string TimeText(uint64_t file_time) {
  const std::time_t seconds = static_cast<std::time_t>(file_time / kTicksPerSecond - kSecondsTo1970);
  std::tm parts{};
  if (const std::tm* utc = std::gmtime(&seconds)) parts = *utc;
  char text[32];
  std::strftime(text, sizeof text, "%Y/%m/%d %H:%M:%S", &parts);
  return text;
}

Status ExportSummary(Core& core, const std::string& path) {
  KW_ASSIGN_OR_RETURN(const auto info, SummaryInfo::Open(core.shared_from_this(), 0));
  std::string text = "PropertyId\tValue\r\ni2\tl255\r\n_SummaryInformation\tPropertyId\r\n";
  for (const int id : info->PropertyIds()) {
    std::string value = info->TextProperty(id);
    if (value.empty()) {
      value = info->TimeProperty(id) != 0 ? TimeText(info->TimeProperty(id))
                                          : std::to_string(info->IntegerProperty(id));
    }
    text += std::to_string(id) + "\t" + Archived(value) + "\r\n";
  }
  KW_ASSIGN_OR_RETURN(const std::string bytes, Utf8ToCodePage(text, 65001));
  return WriteText(core, path, bytes);
}

Status ImportSummary(const std::shared_ptr<Core>& core, const std::vector<std::vector<std::string>>& rows) {
  KW_ASSIGN_OR_RETURN(const auto info, SummaryInfo::Open(core, static_cast<int>(rows.size())));
  for (const std::vector<std::string>& row : rows) {
    int32_t id = 0;
    if (row.size() < 2 || !ParseInteger(row[0], &id)) {
      return {kErrorFunctionFailed, "A line of the summary information cannot be read."};
    }
    int32_t number = 0;
    std::tm time{};
    if (id >= 10 && id <= 13) {
      if (std::sscanf(row[1].c_str(), "%d/%d/%d %d:%d:%d", &time.tm_year, &time.tm_mon, &time.tm_mday,
                      &time.tm_hour, &time.tm_min, &time.tm_sec) < 3) {
        return {kErrorFunctionFailed, "\"" + row[1] + "\" is no time."};
      }
      // Days since 1601 by the calendar's own rule, so that no time zone enters.
      const int64_t month = (time.tm_mon + 9) % 12;
      const int64_t year = time.tm_year - (time.tm_mon <= 2 ? 1 : 0);
      const int64_t days = 365 * year + year / 4 - year / 100 + year / 400 + (month * 306 + 5) / 10 +
                           time.tm_mday - 1 - 584694;
      const int64_t seconds = days * 86400 + time.tm_hour * 3600 + time.tm_min * 60 + time.tm_sec;
      KW_RETURN_IF_ERROR(info->SetTime(id, static_cast<uint64_t>(seconds) * kTicksPerSecond));
    } else if (id == 1 || (id >= 14 && id != 18 && ParseInteger(row[1], &number))) {
      if (!ParseInteger(row[1], &number)) return {kErrorFunctionFailed, "\"" + row[1] + "\" is no number."};
      KW_RETURN_IF_ERROR(info->SetInteger(id, number));
    } else {
      KW_RETURN_IF_ERROR(info->SetText(id, row[1]));
    }
  }
  return info->Persist();
}

bool ColumnOfType(const std::string& text, Column* column) {
  int32_t size = 0;
  if (text.size() < 2 || !ParseInteger(text.substr(1), &size) || size < 0 || size > 255) return false;
  const char letter = text[0];
  column->type = kColumnValid;
  if (letter >= 'A' && letter <= 'Z') column->type |= kColumnNullable;
  switch (letter) {
    case 'l':
    case 'L':
      column->type |= kColumnLocalizable;
      [[fallthrough]];
    case 's':
    case 'S':
      column->type = static_cast<uint16_t>(column->type | kColumnText | size);
      return true;
    case 'i':
    case 'I':
      if (size != 2 && size != 4) return false;
      column->type = static_cast<uint16_t>(column->type | (size == 2 ? kColumnShort : kColumnLong) | size);
      return true;
    case 'v':
    case 'V':
      column->type |= kColumnStream;
      return size == 0;
    default:
      return false;
  }
}

struct Archive {
  int code_page = 0;
  std::vector<std::string> names;
  std::vector<std::string> types;
  std::vector<std::string> head;  // table and key
  std::vector<std::vector<std::string>> rows;
};

Result<Archive> ReadArchive(Core& core, const std::string& path) {
  KW_ASSIGN_OR_RETURN(const std::string bytes, ReadWholeFile(core.storage(), path));
  std::vector<std::string> lines = Split(bytes, '\n');
  while (!lines.empty() && (lines.back().empty() || lines.back() == "\r")) lines.pop_back();
  if (lines.size() < 3) return {kErrorFunctionFailed, path + " is no text archive."};
  for (std::string& line : lines) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
  }
  Archive archive;
  archive.code_page = core.pool().code_page();
  archive.names = Split(lines[0], '\t');
  archive.types = Split(lines[1], '\t');
  archive.head = Split(lines[2], '\t');
  int32_t code_page = 0;
  if (archive.head.size() > 1 && ParseInteger(archive.head[0], &code_page)) {
    archive.code_page = code_page;
    archive.head.erase(archive.head.begin());
  }
  const bool summary = archive.head[0] == kSummary;
  for (size_t i = 3; i < lines.size(); ++i) {
    archive.rows.push_back(Split(lines[i], '\t'));
    for (std::string& field : archive.rows.back()) {
      field = Unarchived(CodePageToUtf8(field, summary ? 65001 : archive.code_page));
    }
  }
  return archive;
}

}  // namespace

Status ExportTable(Core& core, const std::string& name, const std::string& folder, const std::string& file) {
  const std::string path = Inside(folder, file);
  const int code_page = core.pool().code_page();
  if (name == kForceCodePage) {
    return WriteText(core, path, "\r\n\r\n" + std::to_string(code_page) + "\t_ForceCodepage\r\n");
  }
  if (name == kSummary) return ExportSummary(core, path);
  Table* found = core.FindTable(name);
  if (!found) return {kErrorBadQuerySyntax, "There is no table " + name + "."};
  const Table& table = *found;
  std::string lines[3];
  std::vector<int> columns;
  lines[2] = table.name();
  for (size_t i = 0; i < table.columns().size(); ++i) {
    const Column& column = table.columns()[i];
    if (column.is_temporary() && !table.temporary) continue;
    if (!columns.empty()) {
      lines[0] += '\t';
      lines[1] += '\t';
    }
    columns.push_back(static_cast<int>(i));
    lines[0] += column.name;
    lines[1] += ColumnTypeText(column, false);
  }
  for (const int column : table.key_columns())
    lines[2] += "\t" + table.columns()[static_cast<size_t>(column)].name;
  std::string rows;
  std::set<std::string, LessNoCase> stream_files;
  for (Table::Row row = 0; row < table.row_end(); ++row) {
    if (!table.Alive(row) || (table.TemporaryRow(row) && !table.temporary)) continue;
    std::string line;
    for (const int column : columns) {
      if (column != columns.front()) line += '\t';
      if (!table.columns()[static_cast<size_t>(column)].is_stream()) {
        line += Archived(core.TextOf(table, row, column));
        continue;
      }
      const std::shared_ptr<CfStream> stream = core.StreamOf(table, row, column);
      if (!stream) continue;
      KW_ASSIGN_OR_RETURN(const std::string stream_file, StreamFileName(core, table, row));
      if (!stream_files.insert(stream_file).second) {
        return {kErrorInvalidName,
                "Two rows of the table " + table.name() + " would become one file, \"" + stream_file + "\"."};
      }
      KW_RETURN_IF_ERROR(core.storage().CreateFolder(Inside(folder, table.name())));
      KW_RETURN_IF_ERROR(WriteStream(core, Inside(Inside(folder, table.name()), stream_file), *stream));
      line += stream_file;
    }
    rows += line + "\r\n";
  }
  const bool ascii =
      std::all_of(rows.begin(), rows.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  if (!ascii) {
    KW_ASSIGN_OR_RETURN(rows, Utf8ToCodePage(rows, code_page == 0 ? 1252 : code_page));
    if (code_page != 0) lines[2] = std::to_string(code_page) + "\t" + lines[2];
  }
  return WriteText(core, path, lines[0] + "\r\n" + lines[1] + "\r\n" + lines[2] + "\r\n" + rows);
}

Status ImportTable(const std::shared_ptr<Core>& core, const std::string& folder, const std::string& file) {
  KW_RETURN_IF_ERROR(core->CheckWritable());
  const std::string path = Inside(folder, file);
  KW_ASSIGN_OR_RETURN(const Archive archive, ReadArchive(*core, path));
  const std::string& name = archive.head[0];
  if (name == kForceCodePage) return core->SetCodePage(archive.code_page);
  if (name == kSummary) return ImportSummary(core, archive.rows);
  std::vector<Column> columns;
  for (size_t i = 0; i < archive.names.size(); ++i) {
    Column column;
    column.name = archive.names[i];
    if (i >= archive.types.size() || column.name.empty() || !ColumnOfType(archive.types[i], &column)) {
      return {kErrorFunctionFailed, path + " tells a column of an unknown type."};
    }
    if (std::find(archive.head.begin() + 1, archive.head.end(), column.name) != archive.head.end()) {
      column.type |= kColumnKey;
    }
    columns.push_back(std::move(column));
  }
  std::vector<std::vector<Assignment>> rows;
  for (const std::vector<std::string>& row : archive.rows) {
    if (row.size() > columns.size())
      return {kErrorFunctionFailed, path + " has a line with too many fields."};
    std::vector<Assignment>& values = rows.emplace_back();
    for (size_t i = 0; i < row.size(); ++i) {
      Value value = Value::Text(row[i]);
      if (columns[i].is_stream() && !row[i].empty()) {
        if (row[i].find_first_of("/\\:") != std::string::npos) {
          return {kErrorInvalidName, "\"" + row[i] + "\" in " + path + " cannot be a file's name."};
        }
        value = Value::Stream(
            std::make_shared<StreamField>(core->storage(), Inside(Inside(folder, name), row[i])));
      }
      values.push_back({static_cast<int>(i), std::move(value)});
    }
  }
  KW_RETURN_IF_ERROR(ReplaceTable(*core, name, columns, rows));
  return core->EndStatement();
}

}  // namespace kw::msi
