#ifndef KITWRIGHT_MSI_DATABASE_H_
#define KITWRIGHT_MSI_DATABASE_H_

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "base/result.h"
#include "base/storage.h"
#include "msi/record.h"
#include "msi/summary_info.h"
#include "msi/view.h"

namespace kw::msi {

class Core;

/// How a database is opened; the numbers are those of the automation interface.
enum class OpenMode {
  kReadOnly = 0,      ///< nothing reaches the file; temporary rows, columns and tables are allowed
  kTransact = 1,      ///< changes reach the file at Commit and are lost without it
  kDirect = 2,        ///< changes are visible in the file at the end of each statement
  kCreate = 3,        ///< a new database in place of any file, otherwise like kTransact
  kCreateDirect = 4,  ///< a new database, otherwise like kDirect
};

/// Whether a table is part of the file.
enum class Persistence { kPersistent, kTemporary, kNone };

/// An open Windows Installer database. Text is UTF-8; paths are the host's own. The file stays open until the
/// database, its views and the streams in its records are gone. One thread at a time.
///
/// An empty text and null are the same. Text compares exactly; ORDER BY sorts it by Unicode code points, null
/// first, and keeps the order of rows that are equal. Without ORDER BY rows come as the file holds them (by
/// the order of their keys there), rows added since the opening behind them. The lengths of text columns are
/// not enforced. Names of tables and columns are case-sensitive, keywords are not.
class Database {
 public:
  /// Opens a file. Fails when it is missing, when it is no sound database (kErrorInstallPackageInvalid), when
  /// it is read-only and the mode writes (kErrorAccessDenied), and when this process has it open for writing
  /// already and the mode writes (kErrorSharingViolation). `storage` must outlive the database.
  static Result<std::shared_ptr<Database>> Open(Storage& storage, const std::string& path, OpenMode mode);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  /// A statement, not yet run. Fails with kErrorBadQuerySyntax on bad SQL and on unknown tables and columns,
  /// with the statement or the name in the sentence.
  Result<std::unique_ptr<View>> OpenView(std::string_view sql);
  /// Brings all changes to the disk. After a failure the file holds the old or the new state, and the call
  /// may be tried again, though not with success when the system lost what it had taken.
  Status Commit();
  /// Writes `table` as a text archive to `folder`/`file`, and each stream of it to a file in `folder`/`table`
  /// that bears the row's key as its name (the parts of a longer key joined with "."). Keys that cannot be a
  /// file's name fail with kErrorInvalidName. "_SummaryInformation" and "_ForceCodepage" are written too.
  Status Export(const std::string& table, const std::string& folder, const std::string& file);
  /// Reads a text archive, which replaces the table that it names. "_ForceCodepage" sets the code page. After
  /// a failure the table is as it was.
  Status Import(const std::string& folder, const std::string& file);
  /// The summary information, for up to `updates` changes of properties.
  Result<std::unique_ptr<SummaryInfo>> SummaryInformation(int updates);
  Persistence TablePersistent(std::string_view table) const;
  /// The names of the key's columns, in order.
  Result<Record> PrimaryKeys(std::string_view table) const;
  int CodePage() const;
  /// Changes the code page; fails with kErrorUnrepresentableText when a text has no place in it.
  Status SetCodePage(int code_page);
  bool ReadOnly() const;

 private:
  explicit Database(std::shared_ptr<Core> core) : core_(std::move(core)) {}

  std::shared_ptr<Core> core_;
  std::unordered_map<std::string, std::shared_ptr<Prepared>> prepared_;  // by their text
};

}  // namespace kw::msi

#endif  // KITWRIGHT_MSI_DATABASE_H_
