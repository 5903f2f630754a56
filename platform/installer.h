#ifndef KITWRIGHT_PLATFORM_INSTALLER_H_
#define KITWRIGHT_PLATFORM_INSTALLER_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"

namespace kw::platform {

/// Installer automation, in the automation interface's own names. Text is UTF-8, paths are Windows paths,
/// fields count from 1. Objects are owned by whoever holds the pointer; a database closes with its last
/// holder (views and records keep it open).

/// A row, or the parameters of a statement.
class Record {
 public:
  virtual ~Record() = default;
  virtual int FieldCount() const = 0;
  /// True for a field that is null; an empty string is null.
  virtual bool IsNull(int field) const = 0;
  /// The field as text; an integer in decimal; "" for null, for a stream and for a field out of range.
  virtual std::string StringData(int field) const = 0;
  virtual Status SetStringData(int field, std::string_view value) = 0;
  /// The field as a 32-bit integer; a numeric string is converted; INT32_MIN for null and for other text.
  virtual int32_t IntegerData(int field) const = 0;
  virtual Status SetIntegerData(int field, int32_t value) = 0;
  /// Makes the field a stream of the file's bytes, read when the record is used; fails when the file cannot
  /// be opened for reading.
  virtual Status SetStream(int field, const std::string& path) = 0;
  /// The next `length` bytes of a stream field; fewer at its end, none behind it.
  virtual Result<std::string> ReadStream(int field, int length) = 0;
  /// Sets every field to null and lets go of streams.
  virtual void ClearData() = 0;
};

/// The codes of View::Modify.
enum class ModifyMode { kInsert = 1, kUpdate = 2, kAssign = 3, kDelete = 6 };

/// A statement on a database.
class View {
 public:
  virtual ~View() = default;
  /// Runs the statement; `parameters` (may be null) gives the values of the "?" in order. Changes are visible
  /// to whoever opens or copies the file when this returns, if the database is in direct mode.
  virtual Status Execute(const Record* parameters) = 0;
  /// The next row, or a null pointer behind the last.
  virtual Result<std::shared_ptr<Record>> Fetch() = 0;
  /// Changes the row that `record` was fetched from (update, delete) or adds one (insert, assign).
  virtual Status Modify(ModifyMode mode, Record& record) = 0;
  virtual void Close() = 0;
};

/// The summary information of a database.
class SummaryInfo {
 public:
  virtual ~SummaryInfo() = default;
  /// A property as an integer (1 code page, 14 page count, 15 word count, 19 security); 0 when absent.
  virtual int32_t IntegerProperty(int id) const = 0;
  /// A text property (2 title, 3 subject, 7 template, 9 revision); "" when absent.
  virtual std::string TextProperty(int id) const = 0;
  virtual Status SetIntegerProperty(int id, int32_t value) = 0;
  virtual Status SetTextProperty(int id, std::string_view value) = 0;
  /// Sets a time property (11 last printed, 12 created, 13 last saved) to the present local date and time.
  virtual Status SetTimePropertyToNow(int id) = 0;
  /// Writes the changes into the database; in direct mode they are in the file then.
  virtual Status Persist() = 0;
};

/// An open installer database.
class Database {
 public:
  virtual ~Database() = default;
  /// Fails on bad SQL and on unknown tables and columns, with the statement in the sentence.
  virtual Result<std::unique_ptr<View>> OpenView(std::string_view sql) = 0;
  /// Brings everything to the disk. After a failure the file is the old one or the new one.
  virtual Status Commit() = 0;
  /// Writes `table` as a text archive to `folder`\`file`, its streams into `folder`\`table`.
  virtual Status Export(const std::string& table, const std::string& folder, const std::string& file) = 0;
  /// Reads a text archive back into the database.
  virtual Status Import(const std::string& folder, const std::string& file) = 0;
  /// The summary information, for up to `updates` changes.
  virtual Result<std::unique_ptr<SummaryInfo>> SummaryInformation(int updates) = 0;
};

/// An installation session on a database, as far as source paths need one. It never writes to the database.
class Session {
 public:
  virtual ~Session() = default;
  /// A run mode; 9 says that the source uses short names.
  virtual bool Mode(int mode) const = 0;
  virtual std::string Property(std::string_view name) const = 0;
  virtual Status SetProperty(std::string_view name, std::string_view value) = 0;
  /// Runs a standard action ("CostInitialize"); 1 is success, 0 not implemented, 3 failure.
  virtual int DoAction(std::string_view action) = 0;
};

/// The modes of Installer::OpenDatabase.
enum class OpenMode { kReadOnly = 0, kTransact = 1, kDirect = 2, kCreate = 3, kCreateDirect = 4 };

/// "WindowsInstaller.Installer".
class Installer {
 public:
  virtual ~Installer() = default;
  virtual std::shared_ptr<Record> CreateRecord(int field_count) = 0;
  /// Opens a database file; fails when it is missing, damaged, locked, or read-only and the mode writes.
  virtual Result<std::shared_ptr<Database>> OpenDatabase(const std::string& path, OpenMode mode) = 0;
  /// A session on an open database; one at a time.
  virtual Result<std::unique_ptr<Session>> OpenPackage(const std::shared_ptr<Database>& database) = 0;
  /// The user-interface level of later sessions; 2 shows nothing.
  virtual void SetUiLevel(int level) = 0;
  /// Product codes of the installed products with this upgrade code, in the system's order.
  virtual std::vector<std::string> RelatedProducts(const std::string& upgrade_code) = 0;
  /// Install state of a feature: 3 local, 4 source, 2 absent, 1 advertised, -1 unknown.
  virtual int FeatureState(const std::string& product_code, const std::string& feature) = 0;
  /// Size of a file in bytes, -1 when there is none.
  virtual int64_t FileSize(const std::string& path) = 0;
};

}  // namespace kw::platform

#endif  // KITWRIGHT_PLATFORM_INSTALLER_H_
