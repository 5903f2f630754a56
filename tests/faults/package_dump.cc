#include "tests/faults/package_dump.h"

#include <functional>
#include <optional>

#include "base/storage.h"
#include "msi/database.h"

namespace kw::faults {
namespace {

constexpr const char* kSettings = "ktecfg.cab";

Status ReadRows(msi::Database& database, const std::string& sql,
                const std::function<Status(msi::Record&)>& take) {
  KW_ASSIGN_OR_RETURN(const auto view, database.OpenView(sql));
  KW_RETURN_IF_ERROR(view->Execute(nullptr));
  for (;;) {
    KW_ASSIGN_OR_RETURN(std::optional<msi::Record> record, view->Fetch());
    if (!record) return {};
    KW_RETURN_IF_ERROR(take(*record));
  }
}

Status Dump(const std::string& path, std::set<std::string>& lines) {
  KW_ASSIGN_OR_RETURN(const auto database,
                      msi::Database::Open(SystemStorage(), path, msi::OpenMode::kReadOnly));
  std::set<std::string> tables;
  KW_RETURN_IF_ERROR(ReadRows(*database, "select `Name` from `_Tables`", [&](msi::Record& record) -> Status {
    tables.insert(record.StringData(1));
    return {};
  }));
  for (const std::string& table : tables) {
    KW_RETURN_IF_ERROR(
        ReadRows(*database, "select * from `" + table + "`", [&](msi::Record& record) -> Status {
          std::string line = table;
          for (int field = 1; field <= record.FieldCount(); ++field) line += "\t" + record.StringData(field);
          if (line.find(kSettings) == std::string::npos) lines.insert(line);
          return {};
        }));
  }
  return ReadRows(*database, "select `Name`, `Data` from `_Streams`", [&](msi::Record& record) -> Status {
    const std::string name = record.StringData(1);
    if (name.find(kSettings) != std::string::npos) return {};
    std::string bytes;
    for (;;) {
      KW_ASSIGN_OR_RETURN(const std::string chunk, record.ReadStream(2, 1 << 16));
      if (chunk.empty()) break;
      bytes += chunk;
    }
    lines.insert(name + "\n" + bytes);
    return {};
  });
}

}  // namespace

std::set<std::string> DumpOf(const std::string& path) {
  std::set<std::string> lines;
  const Status status = Dump(path, lines);
  if (!status.ok()) return {"error: " + status.message()};
  return lines;
}

}  // namespace kw::faults
