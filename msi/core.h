#ifndef KITWRIGHT_MSI_CORE_H_
#define KITWRIGHT_MSI_CORE_H_

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "base/result.h"
#include "base/storage.h"
#include "msi/compound_file.h"
#include "msi/record.h"
#include "msi/string_pool.h"
#include "msi/table.h"

namespace kw::msi {

/// The open database behind Database, its views and its records.
class Core : public std::enable_shared_from_this<Core> {
 public:
  Core(Storage& storage, std::unique_ptr<CompoundFile> file, bool writable, bool direct)
      : storage_(storage), file_(std::move(file)), writable_(writable), direct_(direct) {}

  /// Reads the texts, the catalogue and all tables. Fails with kErrorInstallPackageInvalid when they do not
  /// fit together.
  Status Load();
  /// Makes the tables of an empty database.
  Status MakeEmpty();

  Storage& storage() { return storage_; }
  CompoundFile& file() { return *file_; }
  StringPool& pool() { return pool_; }
  bool writable() const { return writable_; }
  /// Goes up whenever a table or column comes or goes.
  uint64_t schema_version() const { return schema_version_; }

  /// The table `name`, `_Streams` and `_Storages` brought up to date; null when there is none.
  Table* FindTable(std::string_view name);
  /// Must be called before a statement runs: texts get their index.
  void Prepare();

  /// Whether a table of this name and these columns may be in the file.
  Status CheckNewTable(const std::string& name, const std::vector<Column>& columns) const;
  /// Whether a table may be dropped.
  Status CheckDrop(const Table& table) const;

  // Changes of the catalogue. Each checks everything before it changes anything.
  Status CreateTable(const std::string& name, std::vector<Column> columns, bool temporary, bool hold);
  Status AddColumn(Table& table, Column column, bool hold);
  Status DropTable(Table& table);
  void Hold(Table& table) { ++table.holds; }
  void Free(Table& table);

  /// Adds a row; `cells` hold texts without uses counted. Streams belong to the row from here on, by column.
  Status InsertRow(Table& table, std::span<const Cell> cells,
                   std::map<int, std::shared_ptr<CfStream>> streams, bool temporary_row);
  /// Changes one cell that is not part of the key.
  void SetCell(Table& table, Table::Row row, int column, Cell cell);
  /// Gives a cell a stream; null takes it away.
  void SetStream(Table& table, Table::Row row, int column, std::shared_ptr<CfStream> stream);
  void DeleteRow(Table& table, Table::Row row);
  /// The stream of a cell, or null.
  std::shared_ptr<CfStream> StreamOf(const Table& table, Table::Row row, int column) const;
  /// The name of the stream of a row, as the file keeps it.
  Result<std::u16string> StreamName(const Table& table, std::span<const Cell> cells) const;
  /// Whether a row of `table` that has no stream yet may get one of this stored name. Fails with
  /// kErrorInvalidName when another row's stream has it already, or one that differs in case alone.
  Status CheckNewStream(const Table& table, const std::u16string& name) const;
  Status CheckNewStream(const Table& table, Table::Row row) const;
  /// The content of a cell for a record.
  Value ValueOf(const Table& table, Table::Row row, int column);
  /// The text of an integer or text cell; "" for null and for streams.
  std::string TextOf(const Table& table, Table::Row row, int column) const;

  /// Fails on a database that was opened for reading.
  Status CheckWritable() const;
  /// Called when a statement that changed something has ended: in direct mode the change goes to the file.
  Status EndStatement();
  /// Brings everything to the disk.
  Status Commit();
  /// Changes the code page of all texts.
  Status SetCodePage(int code_page);

 private:
  void MakeSystemTables();
  Status LoadTable(Table& table, StringPool::Uses& uses);
  Status SaveTable(Table& table);
  Status SaveAll();
  Status AppendCatalogue(const Table& table, size_t first_column);
  bool StreamHasRow(const Table& but, const std::u16string& name) const;
  void DropRows(Table& table);
  /// Deletes the rows of `catalogue`, _Tables or _Columns, that belong to `table`.
  void DropCatalogueRows(Table& catalogue, const std::string& table);
  void RefreshStreams(Table& table);
  std::vector<Cell> CellsOf(const Table& table, Table::Row row) const;
  Table* System(const char* name) { return tables_.find(name)->second.get(); }

  Storage& storage_;
  std::unique_ptr<CompoundFile> file_;
  StringPool pool_;
  bool writable_;
  bool direct_;
  bool prepared_ = false;
  uint64_t schema_version_ = 1;
  std::map<std::string, std::unique_ptr<Table>, std::less<>> tables_;
  std::vector<std::unique_ptr<Table>> dropped_;  // views may still point at them
};

}  // namespace kw::msi

#endif  // KITWRIGHT_MSI_CORE_H_
