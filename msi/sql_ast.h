#ifndef KITWRIGHT_MSI_SQL_AST_H_
#define KITWRIGHT_MSI_SQL_AST_H_

#include <cstdint>
#include <string>
#include <vector>

#include "msi/table.h"

namespace kw::msi {

/// A column as a statement names it; `table` is empty when it is not told.
struct ColumnName {
  std::string table;
  std::string column;
};

/// What stands beside a comparison, behind an equals sign or in a list of values.
struct Operand {
  enum class Kind { kColumn, kText, kInteger, kParameter };
  Kind kind = Kind::kText;
  ColumnName column;
  std::string text;
  int32_t integer = 0;
  int parameter = 0;  ///< which "?" of the statement, from 1
};

enum class Comparison { kEqual, kNotEqual, kLess, kGreater, kLessOrEqual, kGreaterOrEqual };

/// The condition behind "where".
struct Condition {
  enum class Kind { kAnd, kOr, kCompare, kIsNull, kIsNotNull };
  Kind kind = Kind::kAnd;
  std::vector<Condition> parts;  ///< of kAnd and kOr
  Comparison comparison = Comparison::kEqual;
  Operand left;
  Operand right;
};

/// A parsed statement; which fields have a meaning depends on the kind.
struct Statement {
  enum class Kind { kSelect, kInsert, kUpdate, kDelete, kCreate, kAddColumn, kHold, kFree, kDrop };
  Kind kind = Kind::kSelect;
  std::vector<std::string> tables;
  std::vector<ColumnName> columns;  ///< selected ones (none: all), those set, those given values
  std::vector<Operand> values;
  bool distinct = false;
  bool has_condition = false;
  Condition condition;
  std::vector<ColumnName> order;
  std::vector<Column> definitions;
  bool temporary = false;
  bool hold = false;
  int parameter_count = 0;
};

}  // namespace kw::msi

#endif  // KITWRIGHT_MSI_SQL_AST_H_
