#include "msi/executor.h"

#include <algorithm>
#include <utility>

namespace kw::msi {
namespace {

constexpr int32_t kMaxShort = 32767;

std::string Where(const Table& table, const Column& column) {
  return "the column " + column.name + " of the table " + table.name();
}

// Texts that were brought into the pool for a change, and are forgotten again if nothing came to use them.
class Interned {
 public:
  explicit Interned(Core& core) : core_(core) {}
  ~Interned() {
    for (const StringPool::Id id : ids_) core_.pool().DropIfUnused(id);
  }
  Interned(const Interned&) = delete;
  Interned& operator=(const Interned&) = delete;
  Result<Cell> Add(std::string_view text) {
    KW_ASSIGN_OR_RETURN(const StringPool::Id id, core_.pool().Intern(text));
    ids_.push_back(id);
    return id;
  }

 private:
  Core& core_;
  std::vector<StringPool::Id> ids_;
};

// The cell for a value; of a stream only whether there is one.
Result<Cell> CellFor(const Table& table, const Column& column, const Value& value, Interned& interned) {
  const bool is_stream = value.kind == Value::Kind::kStream;
  if (value.IsNull()) {
    if (column.is_nullable()) return kNullCell;
    return {kErrorFunctionFailed, "A value is missing for " + Where(table, column) + "."};
  }
  if (column.is_stream() != is_stream) {
    return {kErrorFunctionFailed, std::string(is_stream ? "A stream" : "A plain value") +
                                      " does not fit into " + Where(table, column) + "."};
  }
  if (is_stream) return Cell{1};
  if (column.is_text()) {
    return interned.Add(value.kind == Value::Kind::kInteger ? std::to_string(value.integer) : value.text);
  }
  int32_t number = value.integer;
  if (value.kind == Value::Kind::kText && !ParseInteger(value.text, &number)) {
    return {kErrorFunctionFailed, "\"" + value.text + "\" is no number for " + Where(table, column) + "."};
  }
  if (number == kNullInteger || (column.is_short() && (number > kMaxShort || number < -kMaxShort))) {
    return {kErrorFunctionFailed,
            std::to_string(number) + " is out of the range of " + Where(table, column) + "."};
  }
  return CellOfInteger(number);
}

Result<std::shared_ptr<CfStream>> CopyStream(Core& core, StreamField& field, bool temporary) {
  KW_ASSIGN_OR_RETURN(const uint64_t size, field.Size());
  uint64_t at = 0;
  const auto source = [&](std::span<std::byte> buffer) -> Result<size_t> {
    KW_ASSIGN_OR_RETURN(const size_t got, field.ReadAt(at, buffer));
    at += got;
    return got;
  };
  return temporary ? core.file().Hold(size, source) : core.file().Write(size, source);
}

Status CheckTable(Core& core, const Table& table, bool temporary) {
  if (table.system) {
    return {kErrorFunctionFailed, "The table " + table.name() + " cannot be changed by a statement."};
  }
  if (table.storages) {
    return {kErrorUnsupported, "A storage can be read and removed, but not added or changed."};
  }
  return temporary && !table.streams ? Status() : core.CheckWritable();
}

bool SameStream(Core& core, const Table& table, Table::Row row, int column, const Value& value) {
  return value.kind == Value::Kind::kStream && value.stream->stream() != nullptr &&
         value.stream->stream() == core.StreamOf(table, row, column).get();
}

// The cells of a row that is to come into `table`, whose key must be new there.
Result<std::vector<Cell>> CellsFor(Table& table, const std::vector<const Value*>& by_column,
                                   Interned& interned) {
  std::vector<Cell> cells(by_column.size());
  const Value null;
  for (size_t i = 0; i < cells.size(); ++i) {
    KW_ASSIGN_OR_RETURN(cells[i],
                        CellFor(table, table.columns()[i], by_column[i] ? *by_column[i] : null, interned));
  }
  std::vector<Cell> key;
  for (const int column : table.key_columns()) key.push_back(cells[static_cast<size_t>(column)]);
  if (!key.empty() && table.FindKey(key) != Table::kNoRow) {
    return {kErrorFunctionFailed, "The table " + table.name() + " has a row with this key already."};
  }
  return cells;
}

using RowStreams = std::map<int, std::shared_ptr<CfStream>>;

// The streams of a row that is to come into `table`, brought into the file without a name.
Result<RowStreams> StreamsFor(Core& core, const Table& table, const std::vector<Cell>& cells,
                              const std::vector<const Value*>& by_column, bool temporary) {
  RowStreams streams;
  for (size_t i = 0; i < cells.size(); ++i) {
    if (!table.columns()[i].is_stream() || cells[i] == kNullCell) continue;
    const bool held = !table.streams && (temporary || table.temporary || table.columns()[i].is_temporary());
    const Result<std::u16string> name = core.StreamName(table, cells);
    Status status = name.status();
    if (status.ok() && !held) status = core.CheckNewStream(table, *name);
    if (status.ok()) {
      Result<std::shared_ptr<CfStream>> stream = CopyStream(core, *by_column[i]->stream, held);
      status = stream.status();
      if (stream.ok()) streams[static_cast<int>(i)] = *std::move(stream);
    }
    if (status.ok()) continue;
    for (auto& [column, stream] : streams) core.file().Discard(std::move(stream));
    return status.error();
  }
  return streams;
}

std::vector<const Value*> ByColumn(const Table& table, const std::vector<Assignment>& values) {
  std::vector<const Value*> by_column(table.columns().size(), nullptr);
  for (const Assignment& assignment : values)
    by_column[static_cast<size_t>(assignment.column)] = &assignment.value;
  return by_column;
}

// The rows of a table that is still to be made. What they need is in the pool and in the file already, and
// goes again if the table never comes.
class StagedRows {
 public:
  StagedRows(Core& core, const std::string& name, const std::vector<Column>& columns)
      : core_(core), table_(name, columns) {}
  ~StagedRows() {
    for (RowStreams& streams : streams_) {
      for (auto& [column, stream] : streams) core_.file().Discard(std::move(stream));
    }
    for (const StringPool::Id id : held_) core_.pool().DropUse(id, true);
  }
  StagedRows(const StagedRows&) = delete;
  StagedRows& operator=(const StagedRows&) = delete;

  /// Keeps a text in the pool.
  Status Hold(std::string_view text) {
    KW_ASSIGN_OR_RETURN(const StringPool::Id id, core_.pool().Intern(text));
    Hold(id);
    return {};
  }
  Status Add(const std::vector<Assignment>& values) {
    Interned interned(core_);
    const std::vector<const Value*> by_column = ByColumn(table_, values);
    KW_ASSIGN_OR_RETURN(const std::vector<Cell> cells, CellsFor(table_, by_column, interned));
    KW_ASSIGN_OR_RETURN(RowStreams streams, StreamsFor(core_, table_, cells, by_column, false));
    for (size_t i = 0; i < cells.size(); ++i) {
      if (table_.columns()[i].is_text()) Hold(cells[i]);
    }
    table_.Append(cells, false);
    streams_.push_back(std::move(streams));
    return {};
  }
  /// Puts the rows into the table that was made for them.
  Status MoveTo(Table& table) {
    for (Table::Row row = 0; row < table_.row_end(); ++row) {
      std::vector<Cell> cells;
      for (size_t i = 0; i < table_.columns().size(); ++i)
        cells.push_back(table_.Get(row, static_cast<int>(i)));
      KW_RETURN_IF_ERROR(core_.InsertRow(table, cells, std::exchange(streams_[row], {}), false));
    }
    return {};
  }

 private:
  void Hold(StringPool::Id id) {
    core_.pool().AddUse(id, true);
    held_.push_back(id);
  }

  Core& core_;
  Table table_;
  std::vector<RowStreams> streams_;
  std::vector<StringPool::Id> held_;
};

struct Change {
  int column = 0;
  Cell cell = kNullCell;
  const Value* value = nullptr;
};

// Rows are mostly changed in their order: what the change of the next one will ask of large indexes comes
// from memory meanwhile.
void ExpectNext(Core& core, const Table& table, const std::vector<Assignment>& values, Table::Row row) {
  const Table::Row next = row + 1;
  if (next >= table.row_end()) return;
  for (const Assignment& assignment : values) {
    if (!table.columns()[static_cast<size_t>(assignment.column)].is_text()) continue;
    core.pool().ExpectById(table.Get(next, assignment.column));
  }
  for (const int column : table.key_columns()) {
    if (table.columns()[static_cast<size_t>(column)].is_text())
      core.pool().ExpectById(table.Get(next, column));
  }
  table.ExpectKey(next);
}

Result<std::vector<Change>> PrepareUpdate(Core& core, Table& table, const std::vector<Assignment>& values,
                                          const std::vector<Table::Row>& rows, Interned& interned) {
  bool all_temporary = true;
  std::vector<Change> changes;
  changes.reserve(values.size());
  for (const Assignment& assignment : values) {
    const Column& column = table.columns()[static_cast<size_t>(assignment.column)];
    KW_ASSIGN_OR_RETURN(const Cell cell, CellFor(table, column, assignment.value, interned));
    if (column.is_key()) {
      for (const Table::Row row : rows) {
        if (table.Get(row, assignment.column) == cell) continue;
        return {kErrorFunctionFailed, "The key of a row cannot be changed: " + Where(table, column) + "."};
      }
      continue;
    }
    all_temporary = all_temporary && (table.temporary || column.is_temporary());
    changes.push_back({assignment.column, cell, &assignment.value});
  }
  if (!changes.empty()) KW_RETURN_IF_ERROR(CheckTable(core, table, all_temporary));
  return changes;
}

}  // namespace

Status InsertInto(Core& core, Table& table, const std::vector<Assignment>& values, bool temporary) {
  core.Prepare();
  KW_RETURN_IF_ERROR(CheckTable(core, table, temporary || table.temporary));
  Interned interned(core);
  const std::vector<const Value*> by_column = ByColumn(table, values);
  KW_ASSIGN_OR_RETURN(const std::vector<Cell> cells, CellsFor(table, by_column, interned));
  KW_ASSIGN_OR_RETURN(RowStreams streams, StreamsFor(core, table, cells, by_column, temporary));
  return core.InsertRow(table, cells, std::move(streams), temporary);
}

Status ReplaceTable(Core& core, const std::string& name, const std::vector<Column>& columns,
                    const std::vector<std::vector<Assignment>>& rows) {
  core.Prepare();
  KW_RETURN_IF_ERROR(core.CheckNewTable(name, columns));
  Table* const old = core.FindTable(name);
  if (old) KW_RETURN_IF_ERROR(core.CheckDrop(*old));
  StagedRows staged(core, name, columns);
  KW_RETURN_IF_ERROR(staged.Hold(name));
  for (const Column& column : columns) KW_RETURN_IF_ERROR(staged.Hold(column.name));
  for (const std::vector<Assignment>& row : rows) KW_RETURN_IF_ERROR(staged.Add(row));
  if (old) KW_RETURN_IF_ERROR(core.DropTable(*old));
  KW_RETURN_IF_ERROR(core.CreateTable(name, columns, false, false));
  return staged.MoveTo(*core.FindTable(name));
}

Status UpdateRows(Core& core, Table& table, const std::vector<Assignment>& values,
                  const std::vector<Table::Row>& rows) {
  core.Prepare();
  if (rows.size() == 1) ExpectNext(core, table, values, rows[0]);
  Interned interned(core);
  KW_ASSIGN_OR_RETURN(const std::vector<Change> changes, PrepareUpdate(core, table, values, rows, interned));
  // New streams are brought in first: that may fail.
  struct NewStream {
    Table::Row row;
    int column;
    std::shared_ptr<CfStream> stream;
  };
  std::vector<NewStream> streams;
  for (const Change& change : changes) {
    if (!table.columns()[static_cast<size_t>(change.column)].is_stream() || change.cell == kNullCell)
      continue;
    for (const Table::Row row : rows) {
      if (SameStream(core, table, row, change.column, *change.value)) continue;
      const bool held = !table.streams && table.TemporaryCell(row, change.column);
      Status status;
      if (!held && table.Get(row, change.column) == kNullCell) status = core.CheckNewStream(table, row);
      if (status.ok()) {
        Result<std::shared_ptr<CfStream>> stream = CopyStream(core, *change.value->stream, held);
        status = stream.status();
        if (stream.ok()) streams.push_back({row, change.column, *std::move(stream)});
      }
      if (status.ok()) continue;
      for (NewStream& made : streams) core.file().Discard(std::move(made.stream));
      return status;
    }
  }
  // The last use of a text in one column may go before its first use in another comes.
  std::vector<StringPool::Id> held;
  for (const Change& change : changes) {
    if (changes.size() < 2 || !table.columns()[static_cast<size_t>(change.column)].is_text()) continue;
    core.pool().AddUse(change.cell, true);
    held.push_back(change.cell);
  }
  for (const Change& change : changes) {
    const bool is_stream = table.columns()[static_cast<size_t>(change.column)].is_stream();
    for (const Table::Row row : rows) {
      if (!is_stream) {
        core.SetCell(table, row, change.column, change.cell);
      } else if (change.cell == kNullCell && table.Get(row, change.column) != kNullCell) {
        core.SetStream(table, row, change.column, nullptr);
      }
    }
  }
  for (NewStream& made : streams) core.SetStream(table, made.row, made.column, std::move(made.stream));
  for (const StringPool::Id id : held) core.pool().DropUse(id, true);
  return {};
}

Status CheckUpdate(Core& core, Table& table, const std::vector<Assignment>& values, Table::Row row) {
  core.Prepare();
  Interned interned(core);
  return PrepareUpdate(core, table, values, {row}, interned).status();
}

Table::Row FindByKey(Core& core, Table& table, const std::vector<Assignment>& values) {
  core.Prepare();
  Interned interned(core);
  std::vector<Cell> key;
  for (const int column : table.key_columns()) {
    const auto found = std::find_if(values.begin(), values.end(), [&](const Assignment& assignment) {
      return assignment.column == column;
    });
    if (found == values.end()) return Table::kNoRow;
    const Result<Cell> cell =
        CellFor(table, table.columns()[static_cast<size_t>(column)], found->value, interned);
    if (!cell.ok()) return Table::kNoRow;
    key.push_back(*cell);
  }
  return table.FindKey(key);
}

Status DeleteRows(Core& core, Table& table, const std::vector<Table::Row>& rows) {
  core.Prepare();
  if (rows.empty()) return {};
  const bool all_temporary = !table.storages && std::all_of(rows.begin(), rows.end(), [&](Table::Row row) {
    return table.temporary || table.TemporaryRow(row);
  });
  if (table.system) return CheckTable(core, table, false);
  if (!all_temporary || table.streams) KW_RETURN_IF_ERROR(core.CheckWritable());
  for (const Table::Row row : rows) core.DeleteRow(table, row);
  return {};
}

}  // namespace kw::msi
