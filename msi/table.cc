#include "msi/table.h"

#include <algorithm>
#include <utility>

namespace kw::msi {
namespace {

constexpr Table::Row kBatch = 32;

}  // namespace

Table::Table(std::string name, std::vector<Column> columns) : name_(std::move(name)) {
  for (Column& column : columns) AddColumn(std::move(column));
}

int Table::FindColumn(std::string_view name) const {
  for (size_t i = 0; i < columns_.size(); ++i) {
    if (columns_[i].name == name) return static_cast<int>(i);
  }
  return -1;
}

void Table::AddColumn(Column column) {
  if (column.is_key()) key_columns_.push_back(static_cast<int>(columns_.size()));
  columns_.push_back(std::move(column));
  cells_.emplace_back(rows_.size(), kNullCell);
}

void Table::CutColumns(size_t count) {
  columns_.resize(count);
  cells_.resize(count);
}

Table::Row Table::Append(std::span<const Cell> cells, bool temporary_row) {
  const Row row = static_cast<Row>(rows_.size());
  rows_.push_back(static_cast<uint8_t>(kAlive | (temporary_row ? kTemporaryRow : 0)));
  for (size_t i = 0; i < cells_.size(); ++i) cells_[i].push_back(cells[i]);
  ++live_rows_;
  if (!index_.empty()) IndexInsert(row);
  return row;
}

void Table::Erase(Row row) {
  rows_[row] = static_cast<uint8_t>(rows_[row] & ~kAlive);
  --live_rows_;
}

void Table::Resize(size_t rows) {
  rows_.assign(rows, kAlive);
  live_rows_ = rows;
  for (std::vector<Cell>& column : cells_) column.resize(rows);
}

size_t Table::HashRow(Row row) const {
  size_t hash = 0;
  for (const int column : key_columns_) hash = HashStep(hash, Get(row, column));
  return hash;
}

void Table::BuildIndex() {
  size_t capacity = 16;
  while (capacity < (live_rows_ + 1) * 2) capacity *= 2;
  index_.assign(capacity, kNoRow);
  index_used_ = 0;
  const size_t mask = capacity - 1;
  // The places of some rows come from memory at a time.
  size_t hashes[kBatch];
  for (Row first = 0; first < row_end(); first += kBatch) {
    const Row last = std::min(first + kBatch, row_end());
    for (Row row = first; row < last; ++row) {
      hashes[row - first] = HashRow(row);
      __builtin_prefetch(&index_[hashes[row - first] & mask], 1);
    }
    for (Row row = first; row < last; ++row) {
      if (Alive(row)) IndexPlace(row, hashes[row - first]);
    }
  }
}

void Table::IndexInsert(Row row) {
  if ((index_used_ + 1) * 4 > index_.size() * 3) {
    BuildIndex();  // takes the new row in as well
    return;
  }
  IndexPlace(row, HashRow(row));
}

void Table::IndexPlace(Row row, size_t hash) {
  const size_t mask = index_.size() - 1;
  size_t slot = hash & mask;
  while (index_[slot] != kNoRow) slot = (slot + 1) & mask;
  index_[slot] = row;
  ++index_used_;
}

void Table::ExpectKey(Row row) const {
  if (!index_.empty()) __builtin_prefetch(&index_[HashRow(row) & (index_.size() - 1)]);
}

Table::Row Table::FindKey(std::span<const Cell> key) {
  if (index_.empty()) BuildIndex();
  size_t hash = 0;
  for (const Cell cell : key) hash = HashStep(hash, cell);
  const size_t mask = index_.size() - 1;
  for (size_t slot = hash & mask; index_[slot] != kNoRow; slot = (slot + 1) & mask) {
    const Row row = index_[slot];
    if (!Alive(row)) continue;
    bool same = true;
    for (size_t i = 0; i < key.size() && same; ++i) same = Get(row, key_columns_[i]) == key[i];
    if (same) return row;
  }
  return kNoRow;
}

}  // namespace kw::msi
