#ifndef KITWRIGHT_MSI_VIEW_H_
#define KITWRIGHT_MSI_VIEW_H_

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "msi/executor.h"
#include "msi/query_plan.h"
#include "msi/record.h"
#include "msi/sql_ast.h"

namespace kw::msi {

/// What View::Modify does; the numbers are those of the automation interface.
enum class ModifyMode {
  kRefresh = 0,          ///< reads the record's row again
  kInsert = 1,           ///< adds a row; the key must be new
  kUpdate = 2,           ///< changes the row that the record was fetched from
  kAssign = 3,           ///< adds a row, or changes the one that has the key
  kDelete = 6,           ///< removes the row that the record was fetched from
  kInsertTemporary = 7,  ///< like kInsert, for a row that never reaches the file
};

/// A parsed statement with its names resolved. The same text opened again shares it.
struct Prepared {
  Statement statement;
  uint64_t bound_version = 0;  ///< Core::schema_version at which the names were resolved, 0 for not yet
  Query query;
  std::vector<BoundColumn> columns;
  std::vector<BoundColumn> order;

  /// Resolves the names again if tables or columns have come or gone.
  Status Bind(Core& core);
};

/// A statement on a database. It keeps the database open.
class View {
 public:
  ~View() = default;
  View(const View&) = delete;
  View& operator=(const View&) = delete;

  /// Runs the statement; `parameters` (may be null) gives the values of the "?" in order. A select finds its
  /// rows now: later changes of other statements do not move or repeat them, but are seen in their contents,
  /// and rows deleted meanwhile are passed over. A statement that fails has changed nothing, except that in
  /// direct mode a file that could not be written is written with the next change.
  Status Execute(const Record* parameters);
  /// The next row, or nothing behind the last.
  Result<std::optional<Record>> Fetch();
  /// Changes the database through a record of this view, also of a join: its fields belong to the selected
  /// columns. Update and delete want a record that this view fetched; insert and assign a view on one table.
  Status Modify(ModifyMode mode, Record& record);
  /// Ends the run; Execute starts a new one.
  void Close();

  /// True for every statement but a select.
  bool changes() const { return prepared_->statement.kind != Statement::Kind::kSelect; }
  /// The names of the selected columns.
  Result<Record> ColumnNames();
  /// Their types: "s" text, "l" text that can be localised, "i" integer, "v" stream, with the size; in upper
  /// case when null is allowed; "g" and "j" are temporary text and integers.
  Result<Record> ColumnTypes();

 private:
  friend class Database;
  View(std::shared_ptr<Core> core, std::shared_ptr<Prepared> prepared, uint64_t id)
      : core_(std::move(core)), prepared_(std::move(prepared)), id_(id) {}

  Status CheckNames();
  Status Bind() { return prepared_->Bind(*core_); }
  Status Select(const Record* parameters);
  Status Change(const Record* parameters);
  void Order();
  void KeepDistinct();
  void Fill(Record& record, const Table::Row* rows);
  Status ModifyFetched(ModifyMode mode, Record& record);
  Status ModifyByKey(ModifyMode mode, const Record& record);
  std::vector<Assignment> Values(const Record* parameters) const;
  const Statement& statement() const { return prepared_->statement; }
  const std::vector<Table*>& tables() const { return prepared_->query.tables(); }
  const std::vector<BoundColumn>& columns() const { return prepared_->columns; }

  std::shared_ptr<Core> core_;
  std::shared_ptr<Prepared> prepared_;
  uint64_t id_;
  std::vector<Table*> executed_tables_;
  std::vector<Table::Row> results_;
  size_t next_ = 0;
  bool executed_ = false;
};

/// The short form of a column's type, as in text archives: "s72", "S0", "i2", "V0".
std::string ColumnTypeText(const Column& column, bool show_temporary);

}  // namespace kw::msi

#endif  // KITWRIGHT_MSI_VIEW_H_
