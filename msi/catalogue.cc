#include <algorithm>
#include <set>

#include "msi/core.h"
#include "msi/stream_name.h"

// Tables and columns that come and go.

namespace kw::msi {
namespace {

constexpr size_t kMaxColumns = 255;

Status CheckColumns(const std::string& table, const std::vector<Column>& columns) {
  std::set<std::string_view> names;
  size_t streams = 0;
  for (const Column& column : columns) {
    if (!names.insert(column.name).second) {
      return {kErrorBadQuerySyntax, "The table " + table + " would have two columns " + column.name + "."};
    }
    if (column.is_stream() && column.is_key()) {
      return {kErrorBadQuerySyntax, "A stream cannot belong to the key of " + table + "."};
    }
    if (column.is_stream() && !column.is_temporary()) ++streams;
  }
  // The streams of a row share the row's name in the file.
  if (streams > 1) return {kErrorBadQuerySyntax, "The table " + table + " can have one column of streams."};
  if (columns.size() > kMaxColumns)
    return {kErrorBadQuerySyntax, "The table " + table + " has too many columns."};
  return {};
}

}  // namespace

Status Core::AppendCatalogue(const Table& table, size_t first_column) {
  Prepare();
  Table& names = *System("_Tables");
  Table& columns = *System("_Columns");
  // All texts are tried first, so that a name that does not fit changes nothing.
  std::vector<StringPool::Id> ids;
  const auto intern = [&](const std::string& text) -> Status {
    const Result<StringPool::Id> id = pool_.Intern(text);
    if (id.ok()) {
      ids.push_back(*id);
      return {};
    }
    for (const StringPool::Id other : ids) pool_.DropIfUnused(other);
    return id.status();
  };
  // A damaged file may hold columns of no table; those of this name would become the new one's.
  if (first_column == 0) DropCatalogueRows(columns, table.name());
  KW_RETURN_IF_ERROR(intern(table.name()));
  for (size_t i = first_column; i < table.columns().size(); ++i)
    KW_RETURN_IF_ERROR(intern(table.columns()[i].name));
  if (first_column == 0) {
    KW_RETURN_IF_ERROR(InsertRow(names, std::span(ids).first(1), {}, false));
  }
  for (size_t i = first_column; i < table.columns().size(); ++i) {
    const Cell cells[] = {ids[0], CellOfInteger(static_cast<int32_t>(i + 1)), ids[i - first_column + 1],
                          CellOfInteger(table.columns()[i].type)};
    KW_RETURN_IF_ERROR(InsertRow(columns, cells, {}, false));
  }
  return {};
}

Status Core::CheckNewTable(const std::string& name, const std::vector<Column>& columns) const {
  KW_RETURN_IF_ERROR(EncodeStreamName(name, true).status());
  KW_RETURN_IF_ERROR(CheckColumns(name, columns));
  if (std::none_of(columns.begin(), columns.end(), [](const Column& column) { return column.is_key(); })) {
    return {kErrorBadQuerySyntax, "The table " + name + " would have no key."};
  }
  return {};
}

Status Core::CreateTable(const std::string& name, std::vector<Column> columns, bool temporary, bool hold) {
  if (!temporary) KW_RETURN_IF_ERROR(CheckWritable());
  if (tables_.count(name) != 0) return {kErrorBadQuerySyntax, "The table " + name + " exists already."};
  KW_RETURN_IF_ERROR(CheckNewTable(name, columns));
  auto table = std::make_unique<Table>(name, std::move(columns));
  table->temporary = temporary;
  table->holds = hold ? 1 : 0;
  if (!temporary) {
    KW_RETURN_IF_ERROR(AppendCatalogue(*table, 0));
    // Whatever an older table of this name left in the file is gone with the new one.
    table->dirty = true;
  }
  tables_.emplace(name, std::move(table));
  ++schema_version_;
  return {};
}

Status Core::AddColumn(Table& table, Column column, bool hold) {
  if (table.system || table.streams || table.storages) {
    return {kErrorBadQuerySyntax, "The table " + table.name() + " cannot be changed."};
  }
  if (!table.temporary && !column.is_temporary()) KW_RETURN_IF_ERROR(CheckWritable());
  std::vector<Column> columns = table.columns();
  columns.push_back(column);
  KW_RETURN_IF_ERROR(CheckColumns(table.name(), columns));
  const bool after_temporary = !table.columns().empty() && table.columns().back().is_temporary();
  if (!column.is_temporary() && !table.temporary && after_temporary) {
    return {kErrorBadQuerySyntax, "The table " + table.name() + " holds temporary columns."};
  }
  if (column.is_key()) return {kErrorBadQuerySyntax, "A column that is added cannot belong to the key."};
  const bool persistent = !table.temporary && !column.is_temporary();
  table.AddColumn(std::move(column));
  if (persistent) {
    const Status status = AppendCatalogue(table, table.columns().size() - 1);
    if (!status.ok()) {
      table.CutColumns(table.columns().size() - 1);
      return status;
    }
    table.dirty = true;
  }
  if (hold) Hold(table);
  ++schema_version_;
  return {};
}

void Core::Free(Table& table) {
  if (table.holds == 0 || --table.holds > 0) return;
  ++schema_version_;
  if (table.temporary) {
    DropRows(table);
    const auto found = tables_.find(table.name());
    dropped_.push_back(std::move(found->second));
    tables_.erase(found);
    return;
  }
  size_t count = table.columns().size();
  while (count > 0 && table.columns()[count - 1].is_temporary()) {
    --count;
    const int column = static_cast<int>(count);
    for (Table::Row row = 0; row < table.row_end(); ++row) {
      if (!table.Alive(row)) continue;
      if (table.columns()[count].is_text()) pool_.DropUse(table.Get(row, column), true);
      if (table.columns()[count].is_stream()) SetStream(table, row, column, nullptr);
    }
  }
  table.CutColumns(count);
}

void Core::DropRows(Table& table) {
  for (Table::Row row = 0; row < table.row_end(); ++row) {
    if (table.Alive(row)) DeleteRow(table, row);
  }
}

void Core::DropCatalogueRows(Table& catalogue, const std::string& table) {
  StringPool::Id id = 0;
  if (!pool_.Find(table, &id)) return;
  for (Table::Row row = 0; row < catalogue.row_end(); ++row) {
    if (catalogue.Alive(row) && catalogue.Get(row, 0) == id) DeleteRow(catalogue, row);
  }
}

Status Core::CheckDrop(const Table& table) const {
  if (table.system || table.streams || table.storages) {
    return {kErrorBadQuerySyntax, "The table " + table.name() + " cannot be dropped."};
  }
  return table.temporary ? Status() : CheckWritable();
}

Status Core::DropTable(Table& table) {
  KW_RETURN_IF_ERROR(CheckDrop(table));
  Prepare();
  DropRows(table);
  if (!table.temporary) {
    for (const char* name : {"_Tables", "_Columns"}) DropCatalogueRows(*System(name), table.name());
    file_->Remove(EncodeStreamName(table.name(), true).value_or(u""));
  }
  const auto found = tables_.find(table.name());
  dropped_.push_back(std::move(found->second));
  tables_.erase(found);
  ++schema_version_;
  return {};
}

}  // namespace kw::msi
