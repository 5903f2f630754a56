#include <algorithm>
#include <cstring>
#include <numeric>

#include "msi/bytes.h"
#include "msi/core.h"
#include "msi/stream_name.h"

// Tables between the file and memory.

namespace kw::msi {
namespace {

Error Damaged(const std::string& what) {
  return Error{kErrorInstallPackageInvalid, "The database is damaged: " + what + "."};
}

// The class that marks a compound file as an installer database.
constexpr std::array<char, 16> kDatabaseClass = {'\x84', '\x10', '\x0C', '\0', '\0', '\0', '\0', '\0',
                                                 '\xC0', '\0',   '\0',   '\0', '\0', '\0', '\0', '\x46'};

constexpr uint16_t kNameText = kColumnValid | kColumnText | 64;
constexpr uint16_t kStreamNameText = kColumnValid | kColumnText | kColumnKey | 62;

std::vector<Column> TablesColumns() { return {{"Name", kNameText | kColumnKey}}; }

std::vector<Column> ColumnsColumns() {
  return {{"Table", kNameText | kColumnKey},
          {"Number", kColumnValid | kColumnShort | kColumnKey | 2},
          {"Name", kNameText},
          {"Type", kColumnValid | kColumnShort | 2}};
}

std::u16string StoredName(const std::string& table) {
  // Names of tables were tried when they were made or loaded.
  return EncodeStreamName(table, true).value_or(u"");
}

}  // namespace

Status Core::MakeEmpty() {
  file_->SetRootClass(kDatabaseClass);
  MakeSystemTables();
  return pool_.Load({}, {});
}

void Core::MakeSystemTables() {
  for (const auto& [name, columns] :
       {std::pair{"_Tables", TablesColumns()}, std::pair{"_Columns", ColumnsColumns()}}) {
    auto table = std::make_unique<Table>(name, columns);
    table->system = true;
    tables_.emplace(name, std::move(table));
  }
  for (const char* name : {"_Streams", "_Storages"}) {
    auto table = std::make_unique<Table>(
        name, std::vector<Column>{{"Name", kStreamNameText},
                                  {"Data", kColumnValid | kColumnStream | kColumnNullable}});
    table->temporary = true;
    table->streams = std::strcmp(name, "_Streams") == 0;
    table->storages = !table->streams;
    tables_.emplace(name, std::move(table));
  }
}

Status Core::Load() {
  MakeSystemTables();
  const auto pool = file_->Find(StoredName("_StringPool"));
  const auto data = file_->Find(StoredName("_StringData"));
  if (!pool || !data) return Damaged("it has no texts");
  KW_ASSIGN_OR_RETURN(const std::string pool_bytes, file_->ReadAll(*pool));
  KW_ASSIGN_OR_RETURN(std::string data_bytes, file_->ReadAll(*data));
  KW_RETURN_IF_ERROR(pool_.Load(pool_bytes, std::move(data_bytes)));
  StringPool::Uses uses(pool_.size(), 0);
  Table& names = *System("_Tables");
  Table& columns = *System("_Columns");
  KW_RETURN_IF_ERROR(LoadTable(names, uses));
  KW_RETURN_IF_ERROR(LoadTable(columns, uses));

  std::map<Cell, std::vector<Column>> schemas;
  for (Table::Row row = 0; row < names.row_end(); ++row) schemas[names.Get(row, 0)];
  for (Table::Row row = 0; row < columns.row_end(); ++row) {
    const auto schema = schemas.find(columns.Get(row, 0));
    if (schema == schemas.end()) continue;  // leftovers of a table that is gone are kept as they are
    const int number = IntegerOfCell(columns.Get(row, 1));
    if (number < 1 || number > 255) return Damaged("a column has an impossible number");
    std::vector<Column>& list = schema->second;
    if (list.size() < static_cast<size_t>(number)) list.resize(static_cast<size_t>(number));
    Column& column = list[static_cast<size_t>(number - 1)];
    if (!column.name.empty()) return Damaged("two columns have one number");
    column.name = pool_.Text(columns.Get(row, 2));
    column.type = static_cast<uint16_t>(IntegerOfCell(columns.Get(row, 3)));
    const int size = column.type & kColumnSizeMask;
    if (column.name.empty() || (column.is_integer() && !(column.is_short() ? size <= 2 : size == 4))) {
      return Damaged("a column has an impossible type");
    }
    column.type = static_cast<uint16_t>(column.type & ~kColumnTemporary);
  }
  for (auto& [id, list] : schemas) {
    const std::string name(pool_.Text(id));
    if (list.empty() ||
        std::any_of(list.begin(), list.end(), [](const Column& c) { return c.name.empty(); })) {
      return Damaged("the table " + name + " lacks columns");
    }
    if (name.empty() || !EncodeStreamName(name, true).ok() || tables_.count(name) != 0) {
      return Damaged("a table has an impossible name");
    }
    auto table = std::make_unique<Table>(name, std::move(list));
    KW_RETURN_IF_ERROR(LoadTable(*table, uses));
    tables_.emplace(name, std::move(table));
  }
  return pool_.SetUses(std::move(uses));
}

Status Core::LoadTable(Table& table, StringPool::Uses& uses) {
  const auto stream = file_->Find(StoredName(table.name()));
  if (!stream || stream->size() == 0) return {};
  const int reference = pool_.reference_bytes();
  size_t row_bytes = 0;
  for (const Column& column : table.columns()) row_bytes += static_cast<size_t>(column.file_bytes(reference));
  if (stream->size() % row_bytes != 0) return Damaged("the table " + table.name() + " has a broken row");
  KW_ASSIGN_OR_RETURN(const std::string bytes, file_->ReadAll(*stream));
  const size_t rows = bytes.size() / row_bytes;
  table.Resize(rows);
  const char* at = bytes.data();
  for (size_t index = 0; index < table.columns().size(); ++index) {
    const Column& column = table.columns()[index];
    const int width = column.file_bytes(reference);
    std::vector<Cell>& cells = table.mutable_cells(static_cast<int>(index));
    if (width == 2) {
      for (size_t row = 0; row < rows; ++row) cells[row] = GetU16(at + 2 * row);
    } else if (width == 3) {
      for (size_t row = 0; row < rows; ++row) {
        cells[row] = GetU16(at + 3 * row) | static_cast<Cell>(static_cast<unsigned char>(at[3 * row + 2]))
                                                << 16;
      }
    } else {
      for (size_t row = 0; row < rows; ++row) cells[row] = GetU32(at + 4 * row);
    }
    if (column.is_text()) {
      for (const Cell cell : cells) {
        if (cell >= uses.size())
          return Damaged("the table " + table.name() + " names a text that is not there");
        ++uses[cell];
      }
    } else if (column.is_short()) {
      // The sign bit of the short form stands at another place.
      for (Cell& cell : cells)
        cell = cell == 0 ? kNullCell : CellOfInteger(static_cast<int32_t>(cell) - 0x8000);
    }
    at += static_cast<size_t>(width) * rows;
  }
  return {};
}

Status Core::SaveTable(Table& table) {
  const int reference = pool_.reference_bytes();
  std::vector<Table::Row> rows;
  rows.reserve(table.live_rows());
  for (Table::Row row = 0; row < table.row_end(); ++row) {
    if (table.Alive(row) && !table.TemporaryRow(row)) rows.push_back(row);
  }
  const auto before = [&](Table::Row a, Table::Row b) {
    for (const int column : table.key_columns()) {
      if (table.Get(a, column) != table.Get(b, column)) return table.Get(a, column) < table.Get(b, column);
    }
    return false;
  };
  if (!std::is_sorted(rows.begin(), rows.end(), before)) std::stable_sort(rows.begin(), rows.end(), before);
  size_t row_bytes = 0;
  for (const Column& column : table.columns()) {
    if (!column.is_temporary()) row_bytes += static_cast<size_t>(column.file_bytes(reference));
  }
  std::string bytes(row_bytes * rows.size(), '\0');
  char* at = bytes.data();
  for (size_t index = 0; index < table.columns().size(); ++index) {
    const Column& column = table.columns()[index];
    if (column.is_temporary()) continue;
    const int width = column.file_bytes(reference);
    const std::vector<Cell>& cells = table.cells(static_cast<int>(index));
    for (const Table::Row row : rows) {
      Cell cell = cells[row];
      if (column.is_short() && cell != kNullCell) cell = static_cast<Cell>(IntegerOfCell(cell) + 0x8000);
      PutU16(at, static_cast<uint16_t>(cell));
      if (width == 3) at[2] = static_cast<char>(cell >> 16);
      if (width == 4) PutU16(at + 2, static_cast<uint16_t>(cell >> 16));
      at += width;
    }
  }
  if (bytes.empty()) {
    file_->Remove(StoredName(table.name()));
  } else {
    KW_RETURN_IF_ERROR(file_->Update(StoredName(table.name()), bytes));
  }
  table.dirty = false;
  return {};
}

Status Core::SaveAll() {
  if (pool_.WidenIfNeeded()) {
    // Remembered by the tables, so that after a failure the next attempt writes those that are left.
    for (const auto& [name, table] : tables_) table->dirty = true;
  }
  for (const auto& [name, table] : tables_) {
    if (!table->temporary && table->dirty) KW_RETURN_IF_ERROR(SaveTable(*table));
  }
  if (pool_.dirty() || !file_->Find(StoredName("_StringPool"))) {
    std::string pool;
    std::string data;
    pool_.Save(&pool, &data);
    KW_RETURN_IF_ERROR(file_->Update(StoredName("_StringPool"), pool));
    KW_RETURN_IF_ERROR(file_->Update(StoredName("_StringData"), data));
    pool_.ClearDirty();
  }
  return {};
}

Status Core::EndStatement() {
  if (!direct_ || !writable_) return {};
  KW_RETURN_IF_ERROR(SaveAll());
  return file_->Commit(false);
}

Status Core::Commit() {
  KW_RETURN_IF_ERROR(CheckWritable());
  KW_RETURN_IF_ERROR(SaveAll());
  return file_->Commit(true);
}

Status Core::SetCodePage(int code_page) {
  KW_RETURN_IF_ERROR(CheckWritable());
  KW_RETURN_IF_ERROR(pool_.SetCodePage(code_page));
  // Names that the old page did not have may be shown now.
  for (const char* name : {"_Streams", "_Storages"}) System(name)->names_version = 0;
  return EndStatement();
}

}  // namespace kw::msi
