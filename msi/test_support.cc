#include "msi/test_support.h"

#include <algorithm>

namespace kw::msi {
namespace {

Record ParametersOf(const std::vector<Value>& parameters) {
  Record record(static_cast<int>(parameters.size()));
  for (size_t i = 0; i < parameters.size(); ++i) record.value(static_cast<int>(i + 1)) = parameters[i];
  return record;
}

}  // namespace

Status RunSql(Database& database, std::string_view sql, const std::vector<Value>& parameters) {
  KW_ASSIGN_OR_RETURN(const auto view, database.OpenView(sql));
  const Record record = ParametersOf(parameters);
  return view->Execute(&record);
}

Rows QueryRows(Database& database, std::string_view sql, const std::vector<Value>& parameters) {
  Rows rows;
  const auto view = Get(database.OpenView(sql));
  const Record record = ParametersOf(parameters);
  const Status status = view->Execute(&record);
  if (!status.ok()) throw std::runtime_error(status.message());
  while (std::optional<Record> fetched = Get(view->Fetch())) {
    Row& row = rows.emplace_back();
    for (int field = 1; field <= fetched->FieldCount(); ++field) {
      const bool stream = fetched->value(field).kind == Value::Kind::kStream;
      row.push_back(stream ? Get(fetched->ReadStream(field, 1 << 20)) : fetched->StringData(field));
    }
  }
  return rows;
}

std::string Dump(Database& database) {
  std::string dump;
  std::vector<std::string> tables{"_Tables", "_Columns", "_Streams"};
  for (const Row& row : QueryRows(database, "SELECT `Name` FROM `_Tables` ORDER BY `Name`"))
    tables.push_back(row[0]);
  for (const std::string& table : tables) {
    Rows rows = QueryRows(database, "SELECT * FROM `" + table + "`");
    std::sort(rows.begin(), rows.end());
    dump += table + "\n";
    for (const Row& row : rows) {
      for (const std::string& field : row) dump += "\t" + field;
      dump += "\n";
    }
  }
  return dump;
}

void DatabaseTest::MakePackage() {
  for (const char* sql :
       {"CREATE TABLE `Property` (`Property` CHAR(72) NOT NULL, `Value` LONGCHAR NOT NULL LOCALIZABLE "
        "PRIMARY KEY `Property`)",
        "CREATE TABLE `Feature` (`Feature` CHAR(38) NOT NULL, `Feature_Parent` CHAR(38), `Title` CHAR(64) "
        "LOCALIZABLE, "
        "`Display` SHORT, `Level` SHORT NOT NULL, `Attributes` SHORT NOT NULL PRIMARY KEY `Feature`)",
        "CREATE TABLE `File` (`File` CHAR(72) NOT NULL, `Component_` CHAR(72) NOT NULL, `FileName` CHAR(255) "
        "NOT NULL "
        "LOCALIZABLE, `FileSize` LONG NOT NULL, `Attributes` INT, `Sequence` SHORT NOT NULL PRIMARY KEY "
        "`File`)",
        "CREATE TABLE `Component` (`Component` CHAR(72) NOT NULL, `ComponentId` CHAR(38), `Directory_` "
        "CHAR(72) NOT "
        "NULL, `Attributes` INTEGER NOT NULL PRIMARY KEY `Component`)",
        "CREATE TABLE `FeatureComponents` (`Feature_` CHAR(38) NOT NULL, `Component_` CHAR(72) NOT NULL "
        "PRIMARY KEY "
        "`Feature_`, `Component_`)",
        "CREATE TABLE `Binary` (`Name` CHAR(72) NOT NULL, `Data` OBJECT NOT NULL PRIMARY KEY `Name`)",
        "CREATE TABLE `Cabs` (`Name` CHAR(72) NOT NULL, `Data` OBJECT NOT NULL PRIMARY KEY `Name`)"}) {
    KW_EXPECT_OK(RunSql(*db, sql));
  }
}

}  // namespace kw::msi
