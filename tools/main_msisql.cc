// msisql FILE [--direct|--readonly] SQL [PARAM...]: runs one statement on an installer database and prints
// its rows, tabs between columns, null as an empty field, streams as "[Binary Data]". A parameter that is a
// whole number goes in as such, anything else as text; "@PATH" is the content of a host file. Exits with 1
// and one line on standard error on a failure.

#include <cstdio>
#include <string>
#include <vector>

#include "base/machine_paths.h"
#include "msi/database.h"
#include "msi/sql_parser.h"

namespace kw::msi {
namespace {

Result<Record> ParametersOf(const std::vector<std::string>& arguments) {
  Record record(static_cast<int>(arguments.size()));
  for (int field = 1; field <= record.FieldCount(); ++field) {
    const std::string& argument = arguments[static_cast<size_t>(field - 1)];
    int32_t number = 0;
    if (argument.size() > 1 && argument[0] == '@') {
      KW_RETURN_IF_ERROR(record.SetStream(field, SystemStorage(), argument.substr(1)));
    } else if (ParseInteger(argument, &number) && std::to_string(number) == argument) {
      KW_RETURN_IF_ERROR(record.SetInteger(field, number));
    } else {
      KW_RETURN_IF_ERROR(record.SetString(field, argument));
    }
  }
  return record;
}

void Print(const Record& record) {
  for (int field = 1; field <= record.FieldCount(); ++field) {
    if (field > 1) std::fputc('\t', stdout);
    const bool stream = record.value(field).kind == Value::Kind::kStream;
    std::fputs(stream ? "[Binary Data]" : record.StringData(field).c_str(), stdout);
  }
  std::fputc('\n', stdout);
}

// FILE may be a host path or a path of the machine ("C:\...").
std::string HostPathOf(const std::string& file) {
  const bool windows = (file.size() > 2 && file[1] == ':') || file.find('\\') != std::string::npos;
  return windows ? MachinePaths::OfThisProcess().HostPath(file) : file;
}

Status Run(const std::string& path, OpenMode mode, const std::string& sql,
           const std::vector<std::string>& arguments) {
  KW_ASSIGN_OR_RETURN(const Statement statement, ParseSql(sql));
  // A select needs no right to write.
  if (statement.kind == Statement::Kind::kSelect && mode == OpenMode::kTransact) mode = OpenMode::kReadOnly;
  KW_ASSIGN_OR_RETURN(const auto database, Database::Open(SystemStorage(), path, mode));
  KW_ASSIGN_OR_RETURN(const auto view, database->OpenView(sql));
  KW_ASSIGN_OR_RETURN(const Record parameters, ParametersOf(arguments));
  KW_RETURN_IF_ERROR(view->Execute(&parameters));
  if (view->changes()) return mode == OpenMode::kReadOnly ? Status() : database->Commit();
  for (;;) {
    KW_ASSIGN_OR_RETURN(const std::optional<Record> record, view->Fetch());
    if (!record) return {};
    Print(*record);
  }
}

}  // namespace
}  // namespace kw::msi

int main(int argc, char** argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  bool direct = false;
  bool read_only = false;
  if (arguments.size() > 1 && (arguments[1] == "--direct" || arguments[1] == "--readonly")) {
    direct = arguments[1] == "--direct";
    read_only = !direct;
    arguments.erase(arguments.begin() + 1);
  }
  if (arguments.size() < 2) {
    std::fputs("usage: msisql FILE [--direct|--readonly] SQL [PARAM...]\n", stderr);
    return 1;
  }
  using kw::msi::OpenMode;
  const OpenMode mode = direct ? OpenMode::kDirect : read_only ? OpenMode::kReadOnly : OpenMode::kTransact;
  const kw::Status status = kw::msi::Run(kw::msi::HostPathOf(arguments[0]), mode, arguments[1],
                                         std::vector<std::string>(arguments.begin() + 2, arguments.end()));
  if (status.ok()) return 0;
  std::string line = status.message();
  for (char& c : line) {
    if (c == '\n' || c == '\r') c = ' ';
  }
  std::fprintf(stderr, "msisql: %s\n", line.c_str());
  return 1;
}
