#include "msi/core.h"

#include <algorithm>
#include <set>

#include "msi/stream_name.h"

namespace kw::msi {

Table* Core::FindTable(std::string_view name) {
  const auto found = tables_.find(name);
  if (found == tables_.end()) return nullptr;
  Table& table = *found->second;
  if (table.streams || table.storages) {
    Prepare();
    RefreshStreams(table);
  }
  return &table;
}

void Core::Prepare() {
  if (prepared_) return;
  prepared_ = true;
  pool_.BuildIndex();
  if (!pool_.has_doubles()) return;
  // A text that the file keeps twice would be two texts to every comparison by number.
  for (const auto& [name, table] : tables_) {
    for (size_t column = 0; column < table->columns().size(); ++column) {
      if (!table->columns()[column].is_text()) continue;
      for (Cell& cell : table->mutable_cells(static_cast<int>(column))) {
        const Cell same = pool_.Canonical(cell);
        if (same == cell) continue;
        pool_.AddUse(same, false);
        pool_.DropUse(cell, false);
        cell = same;
        // The other one may be gone from the texts now, and its number given to a new one.
        table->dirty = true;
      }
    }
    table->ForgetIndex();
  }
}

void Core::RefreshStreams(Table& table) {
  if (table.names_version == file_->names_version()) return;
  table.names_version = file_->names_version();
  std::map<std::string, Table::Row> rows;
  for (Table::Row row = 0; row < table.row_end(); ++row) {
    if (table.Alive(row)) rows.emplace(TextOf(table, row, 0), row);
  }
  std::set<std::string> names;
  for (const auto& [stored, entry] : file_->root().children) {
    if ((entry->stream != nullptr) != table.streams) continue;
    if (entry->stream && stored[0] == kTableStreamMark) continue;
    const std::string name = DecodeStreamName(stored);
    // Of two stored names that say the same, which other writers may leave, one is shown.
    if (!names.insert(name).second || rows.erase(name) != 0) continue;
    // A name that the code page does not have cannot be shown, and is kept.
    const Result<StringPool::Id> id = pool_.Intern(name);
    if (!id.ok()) continue;
    pool_.AddUse(*id, true);
    const Cell cells[] = {*id, entry->stream ? 1u : 0u};
    table.Append(cells, true);
  }
  for (const auto& [name, row] : rows) {
    pool_.DropUse(table.Get(row, 0), true);
    table.Erase(row);
  }
}

Status Core::CheckWritable() const {
  if (writable_) return {};
  return {kErrorAccessDenied, "The database was opened for reading only."};
}

std::vector<Cell> Core::CellsOf(const Table& table, Table::Row row) const {
  std::vector<Cell> cells;
  for (size_t i = 0; i < table.columns().size(); ++i) cells.push_back(table.Get(row, static_cast<int>(i)));
  return cells;
}

Result<std::u16string> Core::StreamName(const Table& table, std::span<const Cell> cells) const {
  std::string name = table.streams ? "" : table.name();
  for (const int column : table.key_columns()) {
    if (!name.empty()) name += '.';
    const Cell cell = cells[static_cast<size_t>(column)];
    if (table.columns()[static_cast<size_t>(column)].is_text()) {
      name += pool_.Text(cell);
    } else {
      name += std::to_string(IntegerOfCell(cell));
    }
  }
  if (table.streams) {
    Result<std::u16string> packed = EncodeStreamName(name, false);
    if (packed.ok() && file_->Find(*packed) && DecodeStreamName(*packed) == name) return packed;
    // A stream that exists may have been stored under its plain name.
    for (const auto& [stored, entry] : file_->root().children) {
      if (stored[0] != kTableStreamMark && DecodeStreamName(stored) == name) return stored;
    }
  }
  return EncodeStreamName(name, false);
}

Status Core::CheckNewStream(const Table& table, const std::u16string& name) const {
  const auto& children = file_->root().children;
  if (children.count(name) != 0) {
    // What no row has is a leftover, which the new stream replaces.
    if (!table.streams && StreamHasRow(table, name)) {
      return {kErrorInvalidName,
              "The stream \"" + DecodeStreamName(name) + "\" belongs to another row already."};
    }
    return {};
  }
  if (!HasCase(name)) return {};
  const std::u16string key = WithoutCase(name);
  for (const auto& [stored, entry] : children) {
    if (stored.size() != name.size() || WithoutCase(stored) != key) continue;
    return {kErrorInvalidName,
            "The stream name \"" + DecodeStreamName(name) + "\" differs from another one in case alone."};
  }
  return {};
}

Status Core::CheckNewStream(const Table& table, Table::Row row) const {
  KW_ASSIGN_OR_RETURN(const std::u16string name, StreamName(table, CellsOf(table, row)));
  return CheckNewStream(table, name);
}

bool Core::StreamHasRow(const Table& but, const std::u16string& name) const {
  for (const auto& [table_name, table] : tables_) {
    // A table that is about to be replaced by one of its name does not count.
    if (table->temporary || (table_name == but.name() && table.get() != &but)) continue;
    for (size_t i = 0; i < table->columns().size(); ++i) {
      if (!table->columns()[i].is_stream() || table->columns()[i].is_temporary()) continue;
      for (Table::Row row = 0; row < table->row_end(); ++row) {
        if (!table->Alive(row) || table->TemporaryRow(row)) continue;
        if (table->Get(row, static_cast<int>(i)) == kNullCell) continue;
        if (StreamName(*table, CellsOf(*table, row)).value_or(u"") == name) return true;
      }
    }
  }
  return false;
}

std::shared_ptr<CfStream> Core::StreamOf(const Table& table, Table::Row row, int column) const {
  if (table.Get(row, column) == kNullCell) return nullptr;
  if (table.TemporaryCell(row, column) && !table.streams) {
    const auto found = table.temporary_streams.find({row, column});
    return found == table.temporary_streams.end() ? nullptr : found->second;
  }
  const Result<std::u16string> name = StreamName(table, CellsOf(table, row));
  return name.ok() ? file_->Find(*name) : nullptr;
}

Value Core::ValueOf(const Table& table, Table::Row row, int column) {
  const Cell cell = table.Get(row, column);
  if (cell == kNullCell) return {};
  const Column& definition = table.columns()[static_cast<size_t>(column)];
  if (definition.is_integer()) return Value::Integer(IntegerOfCell(cell));
  if (definition.is_text()) return Value::Text(std::string(pool_.Text(cell)));
  std::shared_ptr<CfStream> stream = StreamOf(table, row, column);
  if (!stream) return {};
  return Value::Stream(std::make_shared<StreamField>(shared_from_this(), std::move(stream)));
}

std::string Core::TextOf(const Table& table, Table::Row row, int column) const {
  const Cell cell = table.Get(row, column);
  const Column& definition = table.columns()[static_cast<size_t>(column)];
  if (cell == kNullCell || definition.is_stream()) return {};
  return definition.is_integer() ? std::to_string(IntegerOfCell(cell)) : std::string(pool_.Text(cell));
}

Status Core::InsertRow(Table& table, std::span<const Cell> cells,
                       std::map<int, std::shared_ptr<CfStream>> streams, bool temporary_row) {
  std::u16string name;
  if (!streams.empty()) {
    KW_ASSIGN_OR_RETURN(name, StreamName(table, cells));
  }
  const Table::Row row = table.Append(cells, temporary_row || table.streams);
  for (size_t i = 0; i < cells.size(); ++i) {
    const int column = static_cast<int>(i);
    if (table.columns()[i].is_text()) pool_.AddUse(cells[i], table.TemporaryCell(row, column));
  }
  for (auto& [column, stream] : streams) {
    if (table.TemporaryCell(row, column) && !table.streams) {
      table.temporary_streams[{row, column}] = std::move(stream);
    } else {
      file_->Put(name, std::move(stream));
    }
  }
  table.dirty = table.dirty || !temporary_row;
  table.names_version = 0;
  return {};
}

void Core::SetCell(Table& table, Table::Row row, int column, Cell cell) {
  const Cell old = table.Get(row, column);
  if (old == cell) return;
  const bool temporary = table.TemporaryCell(row, column);
  if (table.columns()[static_cast<size_t>(column)].is_text()) {
    pool_.AddUse(cell, temporary);
    pool_.DropUse(old, temporary);
  }
  table.Set(row, column, cell);
  table.dirty = table.dirty || !temporary;
}

void Core::SetStream(Table& table, Table::Row row, int column, std::shared_ptr<CfStream> stream) {
  const bool temporary = table.TemporaryCell(row, column);
  table.names_version = 0;
  table.Set(row, column, stream ? 1 : kNullCell);
  table.dirty = table.dirty || !temporary;
  if (temporary && !table.streams) {
    std::shared_ptr<CfStream>& kept = table.temporary_streams[{row, column}];
    std::shared_ptr<CfStream> old = std::exchange(kept, std::move(stream));
    if (old) file_->Discard(std::move(old));
    if (!kept) table.temporary_streams.erase({row, column});
    return;
  }
  // The name is the one that the row got when it came in.
  const Result<std::u16string> name = StreamName(table, CellsOf(table, row));
  if (!name.ok()) return;
  if (stream) {
    file_->Put(*name, std::move(stream));
  } else {
    file_->Remove(*name);
  }
}

void Core::DeleteRow(Table& table, Table::Row row) {
  for (size_t i = 0; i < table.columns().size(); ++i) {
    const int column = static_cast<int>(i);
    if (table.columns()[i].is_stream() && table.Get(row, column) != kNullCell)
      SetStream(table, row, column, nullptr);
  }
  if (table.storages) {
    for (const auto& [stored, entry] : file_->root().children) {
      if (entry->stream || DecodeStreamName(stored) != TextOf(table, row, 0)) continue;
      file_->Remove(std::u16string(stored));
      break;
    }
  }
  for (size_t i = 0; i < table.columns().size(); ++i) {
    const int column = static_cast<int>(i);
    if (table.columns()[i].is_text()) pool_.DropUse(table.Get(row, column), table.TemporaryCell(row, column));
  }
  table.dirty = table.dirty || !table.TemporaryRow(row);
  table.names_version = 0;
  table.Erase(row);
}

}  // namespace kw::msi
