#ifndef KITWRIGHT_PACKAGE_INSTALLER_DB_H_
#define KITWRIGHT_PACKAGE_INSTALLER_DB_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "package/run_state.h"
#include "platform/services.h"

namespace kw {

/// A parameter of a statement: text is sent as text, a number as a 32-bit integer.
using SqlValue = std::variant<std::string, int32_t>;
using SqlValues = std::vector<SqlValue>;

/// The helpers through which every page reaches a package's database. Two stand in a run: on WorkingDatabase
/// through Installer, and on BeaconryDatabase through InstallerSecond. Failures come back; nothing is shown.
class InstallerDb {
 public:
  /// All outlive this object; the installer and the database may be null until a package is open.
  InstallerDb(platform::Services& services, const std::unique_ptr<platform::Installer>& installer,
              const std::shared_ptr<platform::Database>& database);
  /// On the working package, and on the nested alert server package.
  static InstallerDb Working(platform::Services& services, RunState& run);
  static InstallerDb Beaconry(platform::Services& services, RunState& run);

  std::shared_ptr<platform::Record> MakeRecord(const SqlValues& values) const;
  /// Opens the statement, runs it with the values, closes it.
  Status RunSql(std::string_view statement, const SqlValues& values = {}) const;
  /// The same, and gives the first record, or a null pointer when there is none.
  Result<std::shared_ptr<platform::Record>> QuerySql(std::string_view statement,
                                                     const SqlValues& values = {}) const;
  /// Every record of the statement, in order.
  Result<std::vector<std::shared_ptr<platform::Record>>> QueryAll(std::string_view statement,
                                                                  const SqlValues& values = {}) const;
  /// "" for an absent property and for an empty one.
  Result<std::string> GetProperty(std::string_view name) const;
  /// Deletes the row, and inserts it anew unless `value` is "".
  Status SetProperty(std::string_view name, std::string_view value) const;
  /// Writes a Binary row's bytes over the beginning of `path`, which is not truncated. False with no row, or
  /// when the file cannot be opened or written.
  Result<bool> ExtractBinary(std::string_view name, const std::string& path) const;
  /// Replaces a Binary row by a file's bytes.
  Status ReplaceBinary(std::string_view name, const std::string& path) const;
  /// Lower-cases every FileName of the table File.
  Status LowerCaseFileNames() const;

 private:
  Result<std::unique_ptr<platform::View>> Open(std::string_view statement) const;

  platform::Services& services_;
  const std::unique_ptr<platform::Installer>& installer_;
  const std::shared_ptr<platform::Database>& database_;
};

/// "_id_" + the day of the year, day, month, hour, minute and second without leading zeros + the number of
/// calls so far.
std::string MakeUniqueId(platform::Services& services, RunState& run);
/// A new identifier in braces, its bytes in the order in which they lie in memory; "" when the system cannot.
std::string MakeGuidString(platform::Services& services);
/// The second or the third argument.
std::string ChooseValue(bool condition, std::string_view when_true, std::string_view when_false);

}  // namespace kw

#endif  // KITWRIGHT_PACKAGE_INSTALLER_DB_H_
