#ifndef KITWRIGHT_MSI_TABLE_H_
#define KITWRIGHT_MSI_TABLE_H_

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/large_memory.h"
#include "msi/compound_file.h"

namespace kw::msi {

// The bits of a column's type, as `_Columns` keeps them.
inline constexpr uint16_t kColumnSizeMask = 0x00FF;
inline constexpr uint16_t kColumnValid = 0x0100;
inline constexpr uint16_t kColumnLocalizable = 0x0200;
inline constexpr uint16_t kColumnKindMask = 0x0C00;
inline constexpr uint16_t kColumnLong = 0x0000;
inline constexpr uint16_t kColumnShort = 0x0400;
inline constexpr uint16_t kColumnStream = 0x0800;
inline constexpr uint16_t kColumnText = 0x0C00;
inline constexpr uint16_t kColumnNullable = 0x1000;
inline constexpr uint16_t kColumnKey = 0x2000;
inline constexpr uint16_t kColumnTemporary = 0x4000;

/// The value of a cell: the number of a text, an integer with its sign bit turned, or 1 for a stream. 0 is
/// null.
using Cell = uint32_t;
inline constexpr Cell kNullCell = 0;

inline Cell CellOfInteger(int32_t value) { return static_cast<uint32_t>(value) ^ 0x80000000u; }
inline int32_t IntegerOfCell(Cell cell) { return static_cast<int32_t>(cell ^ 0x80000000u); }

struct Column {
  std::string name;
  uint16_t type = 0;

  bool is_text() const { return (type & kColumnKindMask) == kColumnText; }
  bool is_stream() const { return (type & kColumnKindMask) == kColumnStream; }
  bool is_integer() const { return (type & kColumnStream) == 0; }
  bool is_short() const { return (type & kColumnKindMask) == kColumnShort; }
  bool is_key() const { return (type & kColumnKey) != 0; }
  bool is_nullable() const { return (type & kColumnNullable) != 0; }
  bool is_temporary() const { return (type & kColumnTemporary) != 0; }
  /// Bytes of a cell in the file.
  int file_bytes(int reference_bytes) const {
    return is_text() ? reference_bytes : is_integer() && !is_short() ? 4 : 2;
  }
};

/// A table in memory, column by column. Rows keep their numbers as long as the database is open; numbers of
/// deleted rows are not used again. The key is looked up through an index.
class Table {
 public:
  using Row = uint32_t;
  static constexpr Row kNoRow = 0xFFFFFFFF;

  Table(std::string name, std::vector<Column> columns);

  const std::string& name() const { return name_; }
  const std::vector<Column>& columns() const { return columns_; }
  const std::vector<int>& key_columns() const { return key_columns_; }
  /// Position of the column `name`, or -1.
  int FindColumn(std::string_view name) const;
  /// Adds a column of nulls at the end.
  void AddColumn(Column column);
  /// Takes away the last columns down to `count`.
  void CutColumns(size_t count);

  /// One more than the greatest row number given so far.
  Row row_end() const { return static_cast<Row>(rows_.size()); }
  bool Alive(Row row) const { return (rows_[row] & kAlive) != 0; }
  bool TemporaryRow(Row row) const { return (rows_[row] & kTemporaryRow) != 0; }
  size_t live_rows() const { return live_rows_; }
  Cell Get(Row row, int column) const { return cells_[static_cast<size_t>(column)][row]; }
  const std::vector<Cell>& cells(int column) const { return cells_[static_cast<size_t>(column)]; }
  std::vector<Cell>& mutable_cells(int column) { return cells_[static_cast<size_t>(column)]; }
  /// True if the cell stays out of the file.
  bool TemporaryCell(Row row, int column) const {
    return temporary || TemporaryRow(row) || columns_[static_cast<size_t>(column)].is_temporary();
  }
  /// Changes a cell that is not part of the key.
  void Set(Row row, int column, Cell cell) { cells_[static_cast<size_t>(column)][row] = cell; }
  Row Append(std::span<const Cell> cells, bool temporary_row);
  void Erase(Row row);
  /// Fills an empty table with `rows` rows; the cells follow through mutable_cells.
  void Resize(size_t rows);
  /// The row with this key (cells in the order of key_columns), or kNoRow.
  Row FindKey(std::span<const Cell> key);
  /// Says that this row will be looked for by its key soon: memory begins to fetch its place in the index.
  void ExpectKey(Row row) const;
  /// Throws the index away, after cells were changed from outside.
  void ForgetIndex() { index_.clear(); }

  bool temporary = false;  ///< never goes to the file
  bool system = false;     ///< catalogue: statements may only read it
  bool streams = false;    ///< `_Streams`: rows stand for streams of the file
  bool storages = false;   ///< `_Storages`
  bool dirty = false;      ///< differs from the file
  int holds = 0;
  uint64_t names_version = 0;  ///< of `_Streams` and `_Storages`: the file's names that the rows stand for
  /// Streams of cells that stay out of the file, by row and column.
  std::map<std::pair<Row, int>, std::shared_ptr<CfStream>> temporary_streams;

 private:
  static constexpr uint8_t kAlive = 1;
  static constexpr uint8_t kTemporaryRow = 2;

  void BuildIndex();
  void IndexInsert(Row row);
  void IndexPlace(Row row, size_t hash);
  size_t HashRow(Row row) const;
  static size_t HashStep(size_t hash, Cell cell) {
    hash = (hash ^ cell) * 0x9E3779B97F4A7C15ull;
    return hash ^ (hash >> 29);
  }

  std::string name_;
  std::vector<Column> columns_;
  std::vector<int> key_columns_;
  std::vector<std::vector<Cell>> cells_;
  std::vector<uint8_t> rows_;
  size_t live_rows_ = 0;
  // Open addressing; kNoRow is empty. Deleted rows stay in it until it is rebuilt.
  std::vector<Row, LargeAllocator<Row>> index_;
  size_t index_used_ = 0;
};

}  // namespace kw::msi

#endif  // KITWRIGHT_MSI_TABLE_H_
