#include "msi/view.h"

#include <algorithm>
#include <set>

namespace kw::msi {

Status Prepared::Bind(Core& core) {
  const bool refresh = std::any_of(query.tables().begin(), query.tables().end(),
                                   [](const Table* table) { return table->streams || table->storages; });
  if (bound_version == core.schema_version() && !refresh) return {};
  KW_ASSIGN_OR_RETURN(query, Query::Bind(core, statement));
  columns.clear();
  order.clear();
  for (const ColumnName& name : statement.columns) {
    KW_ASSIGN_OR_RETURN(const BoundColumn column, query.Resolve(name));
    columns.push_back(column);
  }
  const bool all = statement.kind == Statement::Kind::kSelect || statement.kind == Statement::Kind::kInsert;
  if (statement.columns.empty() && all) {
    for (size_t table = 0; table < query.tables().size(); ++table) {
      for (size_t i = 0; i < query.tables()[table]->columns().size(); ++i) {
        columns.push_back({static_cast<int>(table), static_cast<int>(i)});
      }
    }
  }
  for (const ColumnName& name : statement.order) {
    KW_ASSIGN_OR_RETURN(const BoundColumn column, query.Resolve(name));
    order.push_back(column);
  }
  const bool assigns =
      statement.kind == Statement::Kind::kInsert || statement.kind == Statement::Kind::kUpdate;
  if (assigns && columns.size() != statement.values.size()) {
    return {kErrorBadQuerySyntax, "The statement gives " + std::to_string(statement.values.size()) +
                                      " values for " + std::to_string(columns.size()) + " columns."};
  }
  bound_version = core.schema_version();
  return {};
}

Status View::CheckNames() {
  switch (statement().kind) {
    case Statement::Kind::kSelect:
    case Statement::Kind::kInsert:
    case Statement::Kind::kUpdate:
    case Statement::Kind::kDelete:
      return Bind();
    case Statement::Kind::kCreate:
      return {};
    default:
      if (core_->FindTable(statement().tables[0])) return {};
      return {kErrorBadQuerySyntax, "There is no table " + statement().tables[0] + "."};
  }
}

Status View::Execute(const Record* parameters) {
  Close();
  const int given = parameters ? parameters->FieldCount() : 0;
  if (given < statement().parameter_count) {
    return {kErrorInvalidParameter, "The statement wants " + std::to_string(statement().parameter_count) +
                                        " parameters and was given " + std::to_string(given) + "."};
  }
  core_->Prepare();
  for (int i = 1; i <= given; ++i) {
    if (parameters->value(i).kind == Value::Kind::kText) core_->pool().Expect(parameters->value(i).text);
  }
  if (statement().kind == Statement::Kind::kSelect) {
    KW_RETURN_IF_ERROR(Bind());
    return Select(parameters);
  }
  KW_RETURN_IF_ERROR(Change(parameters));
  executed_ = true;
  return core_->EndStatement();
}

Status View::Select(const Record* parameters) {
  KW_ASSIGN_OR_RETURN(results_, prepared_->query.Run(*core_, parameters));
  if (statement().distinct) KeepDistinct();
  if (!prepared_->order.empty()) Order();
  executed_tables_ = tables();
  executed_ = true;
  return {};
}

void View::Order() {
  const size_t width = tables().size();
  std::vector<size_t> order(results_.size() / width);
  for (size_t i = 0; i < order.size(); ++i) order[i] = i;
  const auto before = [&](size_t a, size_t b) {
    for (const BoundColumn& by : prepared_->order) {
      const Table& table = *tables()[static_cast<size_t>(by.table)];
      const Column& column = table.columns()[static_cast<size_t>(by.column)];
      const Cell left = table.Get(results_[a * width + static_cast<size_t>(by.table)], by.column);
      const Cell right = table.Get(results_[b * width + static_cast<size_t>(by.table)], by.column);
      if (left == right) continue;
      if (!column.is_text()) return left < right;
      const std::string_view left_text = left == kNullCell ? std::string_view() : core_->pool().Text(left);
      const std::string_view right_text = right == kNullCell ? std::string_view() : core_->pool().Text(right);
      if (left_text != right_text) return left_text < right_text;
    }
    return false;
  };
  std::stable_sort(order.begin(), order.end(), before);
  std::vector<Table::Row> sorted;
  sorted.reserve(results_.size());
  for (const size_t index : order) {
    for (size_t i = 0; i < width; ++i) sorted.push_back(results_[index * width + i]);
  }
  results_ = std::move(sorted);
}

void View::KeepDistinct() {
  const size_t width = tables().size();
  std::set<std::vector<Cell>> seen;
  std::vector<Table::Row> kept;
  for (size_t at = 0; at < results_.size(); at += width) {
    std::vector<Cell> cells;
    for (const BoundColumn& column : columns()) {
      const size_t table = static_cast<size_t>(column.table);
      cells.push_back(tables()[table]->Get(results_[at + table], column.column));
    }
    if (!seen.insert(std::move(cells)).second) continue;
    for (size_t i = 0; i < width; ++i) kept.push_back(results_[at + i]);
  }
  results_ = std::move(kept);
}

std::vector<Assignment> View::Values(const Record* parameters) const {
  std::vector<Assignment> values;
  values.reserve(columns().size());
  for (size_t i = 0; i < columns().size(); ++i) {
    const Operand& operand = statement().values[i];
    const int column = columns()[i].column;
    if (operand.kind == Operand::Kind::kText) {
      values.push_back({column, Value::Text(operand.text)});
    } else if (operand.kind == Operand::Kind::kInteger) {
      values.push_back({column, Value::Integer(operand.integer)});
    } else {
      values.push_back({column, parameters->value(operand.parameter)});
    }
  }
  return values;
}

Status View::Change(const Record* parameters) {
  switch (statement().kind) {
    case Statement::Kind::kCreate:
      return core_->CreateTable(statement().tables[0], statement().definitions, statement().temporary,
                                statement().hold);
    case Statement::Kind::kInsert:
    case Statement::Kind::kUpdate:
    case Statement::Kind::kDelete:
      break;
    default: {
      Table* table = core_->FindTable(statement().tables[0]);
      if (!table) return {kErrorBadQuerySyntax, "There is no table " + statement().tables[0] + "."};
      if (statement().kind == Statement::Kind::kAddColumn) {
        return core_->AddColumn(*table, statement().definitions[0], statement().hold);
      }
      if (statement().kind == Statement::Kind::kDrop) return core_->DropTable(*table);
      if (statement().kind == Statement::Kind::kHold) core_->Hold(*table);
      if (statement().kind == Statement::Kind::kFree) core_->Free(*table);
      return {};
    }
  }
  KW_RETURN_IF_ERROR(Bind());
  Table& table = *tables()[0];
  std::vector<Assignment> values;
  if (statement().kind != Statement::Kind::kDelete) {
    values = Values(parameters);  // Execute has counted them
  }
  if (statement().kind == Statement::Kind::kInsert)
    return InsertInto(*core_, table, values, statement().temporary);
  KW_ASSIGN_OR_RETURN(const std::vector<Table::Row> rows, prepared_->query.Run(*core_, parameters));
  if (statement().kind == Statement::Kind::kUpdate) return UpdateRows(*core_, table, values, rows);
  return DeleteRows(*core_, table, rows);
}

Result<std::optional<Record>> View::Fetch() {
  if (!executed_) return {kErrorFunctionFailed, "The view was not executed."};
  if (statement().kind != Statement::Kind::kSelect) return std::optional<Record>();
  KW_RETURN_IF_ERROR(Bind());
  if (tables() != executed_tables_) return {kErrorFunctionFailed, "The table of the view was dropped."};
  const size_t width = tables().size();
  for (; next_ < results_.size(); next_ += width) {
    const Table::Row* rows = results_.data() + next_;
    bool alive = true;
    for (size_t i = 0; i < width && alive; ++i) {
      alive = rows[i] < tables()[i]->row_end() && tables()[i]->Alive(rows[i]);
    }
    if (!alive) continue;
    Record record(static_cast<int>(columns().size()));
    Fill(record, rows);
    next_ += width;
    return std::optional<Record>(std::move(record));
  }
  return std::optional<Record>();
}

void View::Fill(Record& record, const Table::Row* rows) {
  for (size_t i = 0; i < columns().size(); ++i) {
    const size_t table = static_cast<size_t>(columns()[i].table);
    record.values_[i] = core_->ValueOf(*tables()[table], rows[table], columns()[i].column);
  }
  record.view_ = id_;
  record.rows_.assign(rows, rows + tables().size());
}

Status View::Modify(ModifyMode mode, Record& record) {
  if (statement().kind != Statement::Kind::kSelect || !executed_) {
    return {kErrorFunctionFailed, "Only an executed select can be modified."};
  }
  KW_RETURN_IF_ERROR(Bind());
  if (record.FieldCount() < static_cast<int>(columns().size())) {
    return {kErrorInvalidParameter, "The record has fewer fields than the view has columns."};
  }
  core_->Prepare();
  switch (mode) {
    case ModifyMode::kRefresh:
      return ModifyFetched(mode, record);
    case ModifyMode::kUpdate:
    case ModifyMode::kDelete:
      KW_RETURN_IF_ERROR(ModifyFetched(mode, record));
      return core_->EndStatement();
    case ModifyMode::kInsert:
    case ModifyMode::kAssign:
    case ModifyMode::kInsertTemporary:
      KW_RETURN_IF_ERROR(ModifyByKey(mode, record));
      return core_->EndStatement();
  }
  return {kErrorUnsupported,
          "The way of modifying " + std::to_string(static_cast<int>(mode)) + " is not known."};
}

Status View::ModifyFetched(ModifyMode mode, Record& record) {
  const size_t width = tables().size();
  bool known = record.view_ == id_ && record.rows_.size() == width && tables() == executed_tables_;
  for (size_t i = 0; i < width && known; ++i) {
    known = record.rows_[i] < tables()[i]->row_end() && tables()[i]->Alive(record.rows_[i]);
  }
  if (!known) return {kErrorFunctionFailed, "The record does not stand for a row of this view."};
  const std::vector<Table::Row> rows = record.rows_;
  if (mode == ModifyMode::kRefresh) {
    Fill(record, rows.data());
    return {};
  }
  if (mode == ModifyMode::kDelete) {
    if (width != 1) return {kErrorFunctionFailed, "A row of a join cannot be deleted."};
    return DeleteRows(*core_, *tables()[0], rows);
  }
  std::vector<std::vector<Assignment>> values(width);
  for (size_t i = 0; i < columns().size(); ++i) {
    const size_t table = static_cast<size_t>(columns()[i].table);
    const Value& value = record.values_[i];
    const Value now = core_->ValueOf(*tables()[table], rows[table], columns()[i].column);
    // A stream that was fetched and not replaced is left alone.
    if (value.kind == Value::Kind::kStream && now.kind == Value::Kind::kStream &&
        value.stream->stream() != nullptr && value.stream->stream() == now.stream->stream()) {
      continue;
    }
    if (value.kind == now.kind && value.kind != Value::Kind::kStream && value.integer == now.integer &&
        value.text == now.text) {
      continue;
    }
    values[table].push_back({columns()[i].column, value});
  }
  for (size_t i = 0; i < width; ++i) {
    KW_RETURN_IF_ERROR(CheckUpdate(*core_, *tables()[i], values[i], rows[i]));
  }
  for (size_t i = 0; i < width; ++i) {
    if (values[i].empty()) continue;
    KW_RETURN_IF_ERROR(UpdateRows(*core_, *tables()[i], values[i], {rows[i]}));
  }
  return {};
}

Status View::ModifyByKey(ModifyMode mode, const Record& record) {
  if (tables().size() != 1) return {kErrorFunctionFailed, "A row cannot be added to a join."};
  Table& table = *tables()[0];
  std::vector<Assignment> values;
  for (size_t i = 0; i < columns().size(); ++i) values.push_back({columns()[i].column, record.values_[i]});
  if (mode == ModifyMode::kAssign) {
    const Table::Row row = FindByKey(*core_, table, values);
    if (row != Table::kNoRow) return UpdateRows(*core_, table, values, {row});
  }
  return InsertInto(*core_, table, values, mode == ModifyMode::kInsertTemporary);
}

void View::Close() {
  results_.clear();
  next_ = 0;
  executed_ = false;
}

Result<Record> View::ColumnNames() {
  KW_RETURN_IF_ERROR(Bind());
  Record record(static_cast<int>(columns().size()));
  for (size_t i = 0; i < columns().size(); ++i) {
    const Table& table = *tables()[static_cast<size_t>(columns()[i].table)];
    record.values_[i] = Value::Text(table.columns()[static_cast<size_t>(columns()[i].column)].name);
  }
  return record;
}

Result<Record> View::ColumnTypes() {
  KW_RETURN_IF_ERROR(Bind());
  Record record(static_cast<int>(columns().size()));
  for (size_t i = 0; i < columns().size(); ++i) {
    const Table& table = *tables()[static_cast<size_t>(columns()[i].table)];
    record.values_[i] =
        Value::Text(ColumnTypeText(table.columns()[static_cast<size_t>(columns()[i].column)], true));
  }
  return record;
}

std::string ColumnTypeText(const Column& column, bool show_temporary) {
  char letter = 'v';
  int size = 0;
  if (column.is_integer()) {
    letter = show_temporary && column.is_temporary() ? 'j' : 'i';
    size = column.is_short() ? 2 : 4;
  } else if (column.is_text()) {
    const bool localizable = (column.type & kColumnLocalizable) != 0;
    letter = show_temporary && column.is_temporary() ? 'g' : localizable ? 'l' : 's';
    size = column.type & kColumnSizeMask;
  }
  if (column.is_nullable()) letter = static_cast<char>(letter - 'a' + 'A');
  return letter + std::to_string(size);
}

}  // namespace kw::msi
