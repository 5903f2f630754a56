#ifndef KITWRIGHT_MSI_TEST_SUPPORT_H_
#define KITWRIGHT_MSI_TEST_SUPPORT_H_

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/testing/memory_storage.h"
#include "msi/database.h"

namespace kw::msi {

/// Fails the test when a status or result is a failure.
#define KW_EXPECT_OK(expr)                                      \
  do {                                                          \
    const auto& kw_outcome = (expr);                            \
    EXPECT_TRUE(kw_outcome.ok()) << kw_outcome.error().message; \
  } while (false)

/// A value, or a failed test.
template <typename T>
T Get(Result<T> result) {
  if (!result.ok()) throw std::runtime_error(result.error().message);
  return *std::move(result);
}

using Row = std::vector<std::string>;
using Rows = std::vector<Row>;

/// Runs a statement with text and integer parameters.
Status RunSql(Database& database, std::string_view sql, const std::vector<Value>& parameters = {});
/// The rows of a select as text; streams give their bytes.
Rows QueryRows(Database& database, std::string_view sql, const std::vector<Value>& parameters = {});
/// All tables and streams of a database as text in a fixed order.
std::string Dump(Database& database);

/// `prefix` and a number.
inline std::string Numbered(std::string prefix, long long number) {
  prefix += std::to_string(number);
  return prefix;
}

/// A stream of the host file `path`.
inline Value FileValue(Storage& storage, const std::string& path) {
  return Value::Stream(std::make_shared<StreamField>(storage, path));
}

inline Value T(std::string text) { return Value::Text(std::move(text)); }
inline Value I(int32_t number) { return Value::Integer(number); }

/// A database "a.msi" in memory with some tables of a package.
class DatabaseTest : public ::testing::Test {
 protected:
  void SetUp() override { Reopen(OpenMode::kCreate); }
  void Reopen(OpenMode mode) {
    db.reset();
    db = Get(Database::Open(storage, "a.msi", mode));
  }
  /// Commits and opens again.
  void Cycle(OpenMode mode = OpenMode::kTransact) {
    KW_EXPECT_OK(db->Commit());
    Reopen(mode);
  }
  void MakePackage();

  testing::MemoryStorage storage;
  std::shared_ptr<Database> db;
};

}  // namespace kw::msi

#endif  // KITWRIGHT_MSI_TEST_SUPPORT_H_
