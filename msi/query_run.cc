#include <algorithm>
#include <numeric>

#include "msi/query_plan.h"

// Finding the rows of a query. Tables are joined one after the other, the cheapest next: by their key,
// through an index made for the run, or row by row.

namespace kw::msi {
namespace {

// Longest key that is looked up the short way.
constexpr size_t kShortKey = 8;

template <typename T>
bool Holds(Comparison comparison, const T& a, const T& b) {
  switch (comparison) {
    case Comparison::kEqual:
      return a == b;
    case Comparison::kNotEqual:
      return a != b;
    case Comparison::kLess:
      return a < b;
    case Comparison::kGreater:
      return a > b;
    case Comparison::kLessOrEqual:
      return a <= b;
    case Comparison::kGreaterOrEqual:
      return a >= b;
  }
  return false;
}

// The cell of a column that is equal to `value`; false when no cell can be.
bool CellOf(Core& core, const Column& column, const Value& value, Cell* cell) {
  if (value.kind == Value::Kind::kStream) return false;
  if (value.IsNull()) {
    *cell = kNullCell;
    return true;
  }
  if (column.is_stream()) return false;
  if (column.is_text()) {
    if (value.kind == Value::Kind::kText) return core.pool().Find(value.text, cell);
    return core.pool().Find(std::to_string(value.integer), cell);
  }
  int32_t number = value.integer;
  if (value.kind == Value::Kind::kText && !ParseInteger(value.text, &number)) return false;
  *cell = CellOfInteger(number);
  return true;
}

}  // namespace

class QueryRun {
 public:
  QueryRun(const Query& query, Core& core, const Record* parameters)
      : query_(query), core_(core), parameters_(parameters), current_(query.tables_.size()) {}

  Result<std::vector<Table::Row>> Run() {
    tests_.reserve(query_.tests_.size());
    for (const Query::Test& test : query_.tests_) {
      KW_ASSIGN_OR_RETURN(Ready ready, Prepare(test));
      tests_.push_back(std::move(ready));
    }
    for (const Ready& test : tests_) {
      if (test.test->tables == 0 && !Check(test)) return std::vector<Table::Row>();
    }
    MakeSteps();
    Bind(0);
    SortResults();
    return std::move(results_);
  }

 private:
  // A constant beside a column, in the column's own form.
  enum class Form { kCell, kNothing, kText };
  struct Ready {
    const Query::Test* test = nullptr;
    std::vector<Ready> parts;
    Form form = Form::kCell;  // kNothing: no cell can be equal to the constant
    Cell cell = kNullCell;
    std::string text;
    bool constant_result = false;
  };
  struct Probe {
    bool constant = false;
    bool never = false;
    Cell cell = kNullCell;
    BoundColumn from;
  };
  enum class Way { kKey, kIndex, kFiltered, kScan };
  struct Step {
    int table = 0;
    Way way = Way::kScan;
    std::vector<Probe> probes;
    int index_column = 0;
    std::vector<Table::Row> heads;
    std::vector<Table::Row> next;
    std::vector<const Ready*> checks;
  };

  Table& TableOf(int table) const { return *query_.tables_[static_cast<size_t>(table)]; }
  const Column& ColumnOf(BoundColumn column) const {
    return TableOf(column.table).columns()[static_cast<size_t>(column.column)];
  }
  Cell CellAt(BoundColumn column) const {
    return TableOf(column.table).Get(current_[static_cast<size_t>(column.table)], column.column);
  }
  std::string TextAt(BoundColumn column) const {
    return core_.TextOf(TableOf(column.table), current_[static_cast<size_t>(column.table)], column.column);
  }

  Result<Ready> Prepare(const Query::Test& test) {
    Ready ready;
    ready.test = &test;
    for (const Query::Test& part : test.parts) {
      KW_ASSIGN_OR_RETURN(Ready bound, Prepare(part));
      ready.parts.push_back(std::move(bound));
    }
    if (test.kind != Condition::Kind::kCompare || test.right.is_column) return ready;
    KW_ASSIGN_OR_RETURN(const Value* const right_value, Query::ValueOf(test.right, parameters_));
    const Value& right = *right_value;
    if (!test.left.is_column) {
      KW_ASSIGN_OR_RETURN(const Value* const left, Query::ValueOf(test.left, parameters_));
      ready.constant_result = CompareConstants(test.comparison, *left, right);
      return ready;
    }
    const Column& column = ColumnOf(test.left.column);
    const bool equality = test.comparison == Comparison::kEqual || test.comparison == Comparison::kNotEqual;
    if (column.is_text() && !equality && right.kind != Value::Kind::kStream && !right.IsNull()) {
      ready.form = Form::kText;
      ready.text = right.kind == Value::Kind::kInteger ? std::to_string(right.integer) : right.text;
    } else if (!CellOf(core_, column, right, &ready.cell)) {
      ready.form = Form::kNothing;
    }
    // Order against null is order against the smallest integer or the empty text, which the cell says
    // already.
    if (ready.form == Form::kCell && column.is_text() && right.IsNull() &&
        test.comparison != Comparison::kEqual && test.comparison != Comparison::kNotEqual) {
      ready.form = Form::kText;
    }
    return ready;
  }

  static bool CompareConstants(Comparison comparison, const Value& left, const Value& right) {
    if (left.kind == Value::Kind::kInteger && right.kind == Value::Kind::kInteger) {
      return Holds(comparison, left.integer, right.integer);
    }
    const auto text = [](const Value& value) {
      return value.kind == Value::Kind::kInteger ? std::to_string(value.integer) : value.text;
    };
    return Holds(comparison, text(left), text(right));
  }

  bool Check(const Ready& ready) const {
    const Query::Test& test = *ready.test;
    switch (test.kind) {
      case Condition::Kind::kAnd:
        return std::all_of(ready.parts.begin(), ready.parts.end(),
                           [&](const Ready& part) { return Check(part); });
      case Condition::Kind::kOr:
        return std::any_of(ready.parts.begin(), ready.parts.end(),
                           [&](const Ready& part) { return Check(part); });
      case Condition::Kind::kIsNull:
        return CellAt(test.left.column) == kNullCell;
      case Condition::Kind::kIsNotNull:
        return CellAt(test.left.column) != kNullCell;
      case Condition::Kind::kCompare:
        break;
    }
    if (!test.left.is_column) return ready.constant_result;
    if (test.right.is_column) return CheckColumns(test);
    if (ready.form == Form::kNothing) return test.comparison == Comparison::kNotEqual;
    if (ready.form == Form::kText) return Holds(test.comparison, TextAt(test.left.column), ready.text);
    return Holds(test.comparison, CellAt(test.left.column), ready.cell);
  }

  bool CheckColumns(const Query::Test& test) const {
    const Column& left = ColumnOf(test.left.column);
    const Column& right = ColumnOf(test.right.column);
    const bool equality = test.comparison == Comparison::kEqual || test.comparison == Comparison::kNotEqual;
    // Texts are kept once, so that equal texts have equal cells; integers' cells have the integers' order.
    if (left.is_integer() == right.is_integer() && (left.is_integer() || equality)) {
      return Holds(test.comparison, CellAt(test.left.column), CellAt(test.right.column));
    }
    return Holds(test.comparison, TextAt(test.left.column), TextAt(test.right.column));
  }

  // What `column` of a table must be equal to, from constants and from the tables that are bound; false when
  // the query does not say.
  bool FindProbe(BoundColumn column, uint32_t bound, bool constants_only, Probe* probe) const {
    for (const Ready& ready : tests_) {
      const Query::Test& test = *ready.test;
      if (test.kind != Condition::Kind::kCompare || test.comparison != Comparison::kEqual ||
          !test.left.is_column)
        continue;
      const auto is_it = [&](const Query::Side& side) {
        return side.is_column && side.column.table == column.table && side.column.column == column.column;
      };
      if (!test.right.is_column) {
        if (!is_it(test.left) || ready.form == Form::kText) continue;
        *probe = {true, ready.form == Form::kNothing, ready.cell, {}};
        return true;
      }
      if (constants_only) continue;
      const bool turned = is_it(test.right);
      if (!turned && !is_it(test.left)) continue;
      const BoundColumn other = turned ? test.left.column : test.right.column;
      if (((bound >> other.table) & 1) == 0 ||
          ColumnOf(other).is_integer() != ColumnOf(column).is_integer() || ColumnOf(other).is_stream() ||
          ColumnOf(column).is_stream()) {
        continue;
      }
      *probe = {false, false, kNullCell, other};
      return true;
    }
    return false;
  }

  Step BestStep(int table, uint32_t bound) const {
    Step step;
    step.table = table;
    bool key = !TableOf(table).key_columns().empty();
    for (const int column : TableOf(table).key_columns()) {
      Probe probe;
      key = key && FindProbe({table, column}, bound, false, &probe);
      step.probes.push_back(probe);
    }
    if (key) {
      step.way = Way::kKey;
      return step;
    }
    step.probes.clear();
    const int columns = static_cast<int>(TableOf(table).columns().size());
    for (int column = 0; column < columns; ++column) {
      Probe probe;
      if (!FindProbe({table, column}, bound, false, &probe)) continue;
      if (probe.constant) {
        if (step.way == Way::kScan) step.way = Way::kFiltered;
        // Another test on the column may still tie it to a bound table.
        continue;
      }
      step.way = Way::kIndex;
      step.index_column = column;
      step.probes = {probe};
      break;
    }
    return step;
  }

  void MakeSteps() {
    const int count = static_cast<int>(query_.tables_.size());
    uint32_t bound = 0;
    while (static_cast<int>(steps_.size()) < count) {
      Step best;
      bool found = false;
      for (int table = 0; table < count; ++table) {
        if ((bound >> table) & 1) continue;
        Step step = BestStep(table, bound);
        if (found && step.way >= best.way) continue;
        best = std::move(step);
        found = true;
      }
      const uint32_t before = bound;
      bound |= 1u << best.table;
      for (const Ready& ready : tests_) {
        const uint32_t needs = ready.test->tables;
        if (needs != 0 && (needs & ~bound) == 0 && (needs & ~before) != 0) best.checks.push_back(&ready);
      }
      if (best.way == Way::kIndex) MakeIndex(best);
      in_order_ = in_order_ && best.table == static_cast<int>(steps_.size());
      steps_.push_back(std::move(best));
    }
  }

  static size_t Bucket(Cell cell, size_t mask) {
    return static_cast<size_t>((cell * 0x9E3779B97F4A7C15ull) >> 32) & mask;
  }

  void MakeIndex(Step& step) {
    const Table& table = TableOf(step.table);
    size_t buckets = 16;
    while (buckets < table.live_rows() * 2) buckets *= 2;
    step.heads.assign(buckets, Table::kNoRow);
    step.next.assign(table.row_end(), Table::kNoRow);
    for (Table::Row row = table.row_end(); row-- > 0;) {
      if (!table.Alive(row)) continue;
      Table::Row& head = step.heads[Bucket(table.Get(row, step.index_column), buckets - 1)];
      step.next[row] = head;
      head = row;
    }
  }

  void Try(size_t depth, Table::Row row) {
    const Step& step = steps_[depth];
    current_[static_cast<size_t>(step.table)] = row;
    for (const Ready* check : step.checks) {
      if (!Check(*check)) return;
    }
    Bind(depth + 1);
  }

  void Bind(size_t depth) {
    if (depth == steps_.size()) {
      results_.insert(results_.end(), current_.begin(), current_.end());
      return;
    }
    Step& step = steps_[depth];
    Table& table = TableOf(step.table);
    if (step.way == Way::kKey) {
      key_.clear();
      for (const Probe& probe : step.probes) {
        if (probe.never) return;
        key_.push_back(probe.constant ? probe.cell : CellAt(probe.from));
      }
      const Table::Row row = table.FindKey(key_);
      if (row != Table::kNoRow) Try(depth, row);
    } else if (step.way == Way::kIndex) {
      const Cell cell = CellAt(step.probes[0].from);
      for (Table::Row row = step.heads[Bucket(cell, step.heads.size() - 1)]; row != Table::kNoRow;
           row = step.next[row]) {
        if (table.Get(row, step.index_column) == cell) Try(depth, row);
      }
    } else {
      for (Table::Row row = 0; row < table.row_end(); ++row) {
        if (table.Alive(row)) Try(depth, row);
      }
    }
  }

  void SortResults() {
    const size_t width = current_.size();
    if (in_order_ || results_.size() <= width) return;
    std::vector<size_t> order(results_.size() / width);
    std::iota(order.begin(), order.end(), size_t{0});
    std::sort(order.begin(), order.end(), [&](size_t a, size_t b) {
      return std::lexicographical_compare(results_.begin() + static_cast<std::ptrdiff_t>(a * width),
                                          results_.begin() + static_cast<std::ptrdiff_t>((a + 1) * width),
                                          results_.begin() + static_cast<std::ptrdiff_t>(b * width),
                                          results_.begin() + static_cast<std::ptrdiff_t>((b + 1) * width));
    });
    std::vector<Table::Row> sorted;
    sorted.reserve(results_.size());
    for (const size_t index : order) {
      sorted.insert(sorted.end(), results_.begin() + static_cast<std::ptrdiff_t>(index * width),
                    results_.begin() + static_cast<std::ptrdiff_t>((index + 1) * width));
    }
    results_ = std::move(sorted);
  }

  const Query& query_;
  Core& core_;
  const Record* parameters_;
  std::vector<Ready> tests_;
  std::vector<Step> steps_;
  std::vector<Table::Row> current_;
  std::vector<Table::Row> results_;
  std::vector<Cell> key_;
  bool in_order_ = true;
};

Result<std::vector<Table::Row>> Query::Run(Core& core, const Record* parameters) const {
  core.Prepare();
  if (!key_tests_.empty() && key_tests_.size() <= kShortKey) {
    // By far the most frequent query, so it gets its answer without the machinery of joins.
    Table& table = *tables_[0];
    Cell key[kShortKey] = {};
    for (size_t i = 0; i < key_tests_.size(); ++i) {
      const Test& test = tests_[static_cast<size_t>(key_tests_[i])];
      KW_ASSIGN_OR_RETURN(const Value* const value, ValueOf(test.right, parameters));
      const Column& column = table.columns()[static_cast<size_t>(test.left.column.column)];
      if (!CellOf(core, column, *value, &key[i])) return std::vector<Table::Row>();
    }
    const Table::Row row = table.FindKey(std::span(key, key_tests_.size()));
    return row == Table::kNoRow ? std::vector<Table::Row>() : std::vector<Table::Row>{row};
  }
  return QueryRun(*this, core, parameters).Run();
}

}  // namespace kw::msi
