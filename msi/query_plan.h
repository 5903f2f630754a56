#ifndef KITWRIGHT_MSI_QUERY_PLAN_H_
#define KITWRIGHT_MSI_QUERY_PLAN_H_

#include <memory>
#include <string>
#include <vector>

#include "msi/core.h"
#include "msi/record.h"
#include "msi/sql_ast.h"

namespace kw::msi {

/// A column of one of the tables of a statement.
struct BoundColumn {
  int table = 0;
  int column = 0;
};

/// The tables of a statement and its condition, with all names resolved.
class Query {
 public:
  /// Resolves names. Fails with kErrorBadQuerySyntax on an unknown table or column. A column without a table
  /// is taken from the first table that has it.
  static Result<Query> Bind(Core& core, const Statement& statement);

  const std::vector<Table*>& tables() const { return tables_; }
  Result<BoundColumn> Resolve(const ColumnName& name) const;

  /// Finds the rows: for each result the row of every table in the order of the statement, one after the
  /// other. Results come in the order of the first table's rows, then the second's and so on.
  Result<std::vector<Table::Row>> Run(Core& core, const Record* parameters) const;

 private:
  friend class QueryRun;
  struct Side {
    bool is_column = false;
    BoundColumn column;
    Value constant;     // of a side that is no column and no parameter
    int parameter = 0;  // which parameter, 0 for none
  };
  struct Test {
    Condition::Kind kind = Condition::Kind::kAnd;
    std::vector<Test> parts;
    Comparison comparison = Comparison::kEqual;
    Side left;
    Side right;
    uint32_t tables = 0;  // a bit for each table that it looks at
  };

  void FindKeyTests();
  static Result<const Value*> ValueOf(const Side& side, const Record* parameters);

  Result<Test> BindTest(const Condition& condition) const;
  Result<Side> BindSide(const Operand& operand) const;

  std::vector<Table*> tables_;
  std::vector<Test> tests_;  // all must hold
  // Of a query that asks for one row by its whole key and for nothing else: the test for each column of the
  // key.
  std::vector<int> key_tests_;
};

}  // namespace kw::msi

#endif  // KITWRIGHT_MSI_QUERY_PLAN_H_
