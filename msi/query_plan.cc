#include "msi/query_plan.h"

#include <algorithm>

namespace kw::msi {
namespace {

// The tables of a statement are told apart by the bits of a number.
constexpr size_t kMaxTables = 31;

Comparison Turned(Comparison comparison) {
  switch (comparison) {
    case Comparison::kLess:
      return Comparison::kGreater;
    case Comparison::kGreater:
      return Comparison::kLess;
    case Comparison::kLessOrEqual:
      return Comparison::kGreaterOrEqual;
    case Comparison::kGreaterOrEqual:
      return Comparison::kLessOrEqual;
    default:
      return comparison;
  }
}

}  // namespace

Result<const Value*> Query::ValueOf(const Side& side, const Record* parameters) {
  if (side.parameter == 0) return &side.constant;
  if (parameters && side.parameter <= parameters->FieldCount()) return &parameters->value(side.parameter);
  return {kErrorInvalidParameter, "The statement wants more parameters than it was given."};
}

Result<Query> Query::Bind(Core& core, const Statement& statement) {
  Query query;
  for (const std::string& name : statement.tables) {
    Table* table = core.FindTable(name);
    if (!table) return {kErrorBadQuerySyntax, "There is no table " + name + "."};
    if (std::find(query.tables_.begin(), query.tables_.end(), table) != query.tables_.end()) {
      return {kErrorBadQuerySyntax, "The table " + name + " is named twice."};
    }
    query.tables_.push_back(table);
  }
  if (query.tables_.size() > kMaxTables)
    return {kErrorBadQuerySyntax, "The statement names too many tables."};
  if (!statement.has_condition) return query;
  KW_ASSIGN_OR_RETURN(Test all, query.BindTest(statement.condition));
  if (all.kind == Condition::Kind::kAnd) {
    query.tests_ = std::move(all.parts);
  } else {
    query.tests_.push_back(std::move(all));
  }
  query.FindKeyTests();
  return query;
}

void Query::FindKeyTests() {
  const std::vector<int>& key = tables_[0]->key_columns();
  if (tables_.size() != 1 || tests_.size() != key.size()) return;
  std::vector<int> found;
  for (const int column : key) {
    for (size_t i = 0; i < tests_.size(); ++i) {
      const Test& test = tests_[i];
      if (test.kind == Condition::Kind::kCompare && test.comparison == Comparison::kEqual &&
          test.left.is_column && !test.right.is_column && test.left.column.column == column) {
        found.push_back(static_cast<int>(i));
        break;
      }
    }
  }
  if (found.size() == key.size()) key_tests_ = std::move(found);
}

Result<BoundColumn> Query::Resolve(const ColumnName& name) const {
  for (size_t i = 0; i < tables_.size(); ++i) {
    if (!name.table.empty() && tables_[i]->name() != name.table) continue;
    const int column = tables_[i]->FindColumn(name.column);
    if (column >= 0) return BoundColumn{static_cast<int>(i), column};
  }
  const std::string full = name.table.empty() ? name.column : name.table + "." + name.column;
  return {kErrorBadQuerySyntax, "There is no column " + full + "."};
}

Result<Query::Side> Query::BindSide(const Operand& operand) const {
  Side side;
  side.is_column = operand.kind == Operand::Kind::kColumn;
  if (side.is_column) {
    KW_ASSIGN_OR_RETURN(side.column, Resolve(operand.column));
  } else {
    side.parameter = operand.kind == Operand::Kind::kParameter ? operand.parameter : 0;
    if (operand.kind == Operand::Kind::kText) side.constant = Value::Text(operand.text);
    if (operand.kind == Operand::Kind::kInteger) side.constant = Value::Integer(operand.integer);
  }
  return side;
}

Result<Query::Test> Query::BindTest(const Condition& condition) const {
  Test test;
  test.kind = condition.kind;
  if (condition.kind == Condition::Kind::kAnd || condition.kind == Condition::Kind::kOr) {
    for (const Condition& part : condition.parts) {
      KW_ASSIGN_OR_RETURN(Test bound, BindTest(part));
      test.tables |= bound.tables;
      // Brackets around an "and" inside an "and" change nothing.
      if (test.kind == Condition::Kind::kAnd && bound.kind == Condition::Kind::kAnd) {
        std::move(bound.parts.begin(), bound.parts.end(), std::back_inserter(test.parts));
      } else {
        test.parts.push_back(std::move(bound));
      }
    }
    return test;
  }
  KW_ASSIGN_OR_RETURN(test.left, BindSide(condition.left));
  if (condition.kind == Condition::Kind::kCompare) {
    test.comparison = condition.comparison;
    KW_ASSIGN_OR_RETURN(test.right, BindSide(condition.right));
    if (!test.left.is_column && test.right.is_column) {
      std::swap(test.left, test.right);
      test.comparison = Turned(test.comparison);
    }
    if (test.right.is_column) test.tables |= 1u << test.right.column.table;
  }
  if (test.left.is_column) test.tables |= 1u << test.left.column.table;
  return test;
}

}  // namespace kw::msi
