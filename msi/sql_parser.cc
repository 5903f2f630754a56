#include "msi/sql_parser.h"

#include <algorithm>

#include "msi/record.h"
#include "msi/sql_lexer.h"

namespace kw::msi {
namespace {

// Nested brackets beyond this are refused, so that no statement exhausts the stack.
constexpr int kMaxDepth = 200;

// Words that cannot be a name unless it stands in backticks.
constexpr std::string_view kReserved[] = {"SELECT", "DISTINCT", "FROM", "WHERE",  "ORDER",
                                          "BY",     "AND",      "OR",   "NOT",    "NULL",
                                          "IS",     "INTO",     "SET",  "VALUES", "TABLE"};

char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

bool SameWord(std::string_view word, std::string_view keyword) {
  return word.size() == keyword.size() &&
         std::equal(word.begin(), word.end(), keyword.begin(), [](char a, char b) { return Upper(a) == b; });
}

class Parser {
 public:
  Parser(std::string_view sql, const std::vector<Token>& tokens) : sql_(sql), tokens_(tokens) {}

  Result<Statement> Parse() {
    if (!ParseStatement() || Peek().kind != Token::Kind::kEnd) {
      const std::string near =
          Peek().kind == Token::Kind::kEnd ? "its end" : "\"" + std::string(Peek().text) + "\"";
      return {kErrorBadQuerySyntax,
              "The statement \"" + std::string(sql_) + "\" cannot be understood near " + near + "."};
    }
    return std::move(statement_);
  }

 private:
  const Token& Peek() const { return tokens_[at_]; }
  bool PeekWord(std::string_view keyword) const {
    return Peek().kind == Token::Kind::kWord && SameWord(Peek().text, keyword);
  }
  bool TakeWord(std::string_view keyword) {
    if (!PeekWord(keyword)) return false;
    ++at_;
    return true;
  }
  bool Take(std::string_view symbol) {
    if (Peek().kind != Token::Kind::kSymbol || Peek().text != symbol) return false;
    ++at_;
    return true;
  }
  bool TakeName(std::string* name) {
    const Token& token = Peek();
    if (token.kind == Token::Kind::kWord) {
      for (const std::string_view reserved : kReserved) {
        if (SameWord(token.text, reserved)) return false;
      }
    } else if (token.kind != Token::Kind::kQuotedName || token.text.empty()) {
      return false;
    }
    *name = token.text;
    ++at_;
    return true;
  }
  bool TakeColumn(ColumnName* name) {
    if (!TakeName(&name->column)) return false;
    if (!Take(".")) return true;
    name->table = std::move(name->column);
    return TakeName(&name->column);
  }

  bool ParseStatement() {
    if (TakeWord("SELECT")) return ParseSelect();
    if (TakeWord("INSERT")) return ParseInsert();
    if (TakeWord("UPDATE")) return ParseUpdate();
    if (TakeWord("DELETE")) return ParseDelete();
    if (TakeWord("CREATE")) return ParseCreate();
    if (TakeWord("ALTER")) return ParseAlter();
    if (TakeWord("DROP")) {
      statement_.kind = Statement::Kind::kDrop;
      return TakeWord("TABLE") && ParseTable();
    }
    return false;
  }

  bool ParseTable() {
    std::string name;
    if (!TakeName(&name)) return false;
    statement_.tables.push_back(std::move(name));
    return true;
  }

  bool ParseColumns(std::vector<ColumnName>* columns) {
    do {
      ColumnName name;
      if (!TakeColumn(&name)) return false;
      columns->push_back(std::move(name));
    } while (Take(","));
    return true;
  }

  bool ParseWhere() {
    if (!TakeWord("WHERE")) return true;
    statement_.has_condition = true;
    return ParseOr(&statement_.condition, 0);
  }

  bool ParseSelect() {
    statement_.kind = Statement::Kind::kSelect;
    statement_.distinct = TakeWord("DISTINCT");
    if (!Take("*") && !ParseColumns(&statement_.columns)) return false;
    if (!TakeWord("FROM")) return false;
    do {
      if (!ParseTable()) return false;
    } while (Take(","));
    if (!ParseWhere()) return false;
    if (!TakeWord("ORDER")) return true;
    return TakeWord("BY") && ParseColumns(&statement_.order);
  }

  bool ParseInsert() {
    statement_.kind = Statement::Kind::kInsert;
    if (!TakeWord("INTO") || !ParseTable()) return false;
    if (Take("(")) {
      if (!ParseColumns(&statement_.columns) || !Take(")")) return false;
    }
    if (!TakeWord("VALUES") || !Take("(")) return false;
    do {
      Operand value;
      if (!ParseConstant(&value)) return false;
      statement_.values.push_back(std::move(value));
    } while (Take(","));
    if (!Take(")")) return false;
    statement_.temporary = TakeWord("TEMPORARY") || TakeWord("TEMP");
    return true;
  }

  bool ParseUpdate() {
    statement_.kind = Statement::Kind::kUpdate;
    if (!ParseTable() || !TakeWord("SET")) return false;
    do {
      ColumnName name;
      Operand value;
      if (!TakeColumn(&name) || !Take("=") || !ParseConstant(&value)) return false;
      statement_.columns.push_back(std::move(name));
      statement_.values.push_back(std::move(value));
    } while (Take(","));
    return ParseWhere();
  }

  bool ParseDelete() {
    statement_.kind = Statement::Kind::kDelete;
    return TakeWord("FROM") && ParseTable() && ParseWhere();
  }

  bool ParseCreate() {
    statement_.kind = Statement::Kind::kCreate;
    if (!TakeWord("TABLE") || !ParseTable() || !Take("(")) return false;
    do {
      Column column;
      if (!ParseDefinition(&column)) return false;
      statement_.definitions.push_back(std::move(column));
    } while (Take(","));
    if (!TakeWord("PRIMARY") || !TakeWord("KEY")) return false;
    std::vector<ColumnName> keys;
    if (!ParseColumns(&keys) || !Take(")")) return false;
    // The key stands first: each of its columns changes places with the one that is where it belongs.
    auto place = statement_.definitions.begin();
    for (const ColumnName& key : keys) {
      const auto column = std::find_if(place, statement_.definitions.end(),
                                       [&](const Column& c) { return c.name == key.column; });
      if (column == statement_.definitions.end()) return false;
      column->type |= kColumnKey;
      std::iter_swap(column, place++);
    }
    // A table is temporary when all its columns are.
    statement_.temporary = std::all_of(statement_.definitions.begin(), statement_.definitions.end(),
                                       [](const Column& column) { return column.is_temporary(); });
    statement_.hold = TakeWord("HOLD");
    return true;
  }

  bool ParseAlter() {
    if (!TakeWord("TABLE") || !ParseTable()) return false;
    if (TakeWord("HOLD")) {
      statement_.kind = Statement::Kind::kHold;
      return true;
    }
    if (TakeWord("FREE")) {
      statement_.kind = Statement::Kind::kFree;
      return true;
    }
    statement_.kind = Statement::Kind::kAddColumn;
    if (!TakeWord("ADD")) return false;
    TakeWord("COLUMN");
    Column column;
    if (!ParseDefinition(&column)) return false;
    statement_.temporary = column.is_temporary();
    statement_.definitions.push_back(std::move(column));
    statement_.hold = TakeWord("HOLD");
    return true;
  }

  bool ParseDefinition(Column* column) {
    if (!TakeName(&column->name)) return false;
    uint16_t type = 0;
    if (TakeWord("CHAR") || TakeWord("CHARACTER")) {
      type = kColumnText;
      if (Take("(")) {
        int32_t length = 0;
        if (Peek().kind != Token::Kind::kInteger || !ParseInteger(Peek().text, &length)) return false;
        ++at_;
        if (length < 0 || length > 255 || !Take(")")) return false;
        type = static_cast<uint16_t>(type | length);
      }
    } else if (TakeWord("LONGCHAR")) {
      type = kColumnText;
    } else if (TakeWord("SHORT") || TakeWord("INT") || TakeWord("INTEGER")) {
      type = kColumnShort | 2;
    } else if (TakeWord("LONG")) {
      type = kColumnLong | 4;
    } else if (TakeWord("OBJECT")) {
      type = kColumnStream;
    } else {
      return false;
    }
    type |= kColumnValid | kColumnNullable;
    for (;;) {
      if (PeekWord("NOT")) {
        ++at_;
        if (!TakeWord("NULL")) return false;
        type = static_cast<uint16_t>(type & ~kColumnNullable);
      } else if (TakeWord("TEMPORARY") || TakeWord("TEMP")) {
        type |= kColumnTemporary;
      } else if (TakeWord("LOCALIZABLE")) {
        type |= kColumnLocalizable;
      } else {
        break;
      }
    }
    column->type = type;
    return true;
  }

  bool ParseConstant(Operand* operand) {
    const Token& token = Peek();
    if (token.kind == Token::Kind::kText) {
      operand->kind = Operand::Kind::kText;
      operand->text = token.text;
    } else if (token.kind == Token::Kind::kInteger) {
      operand->kind = Operand::Kind::kInteger;
      if (!ParseInteger(token.text, &operand->integer)) return false;
    } else if (token.kind == Token::Kind::kSymbol && token.text == "?") {
      operand->kind = Operand::Kind::kParameter;
      operand->parameter = ++statement_.parameter_count;
    } else {
      return false;
    }
    ++at_;
    return true;
  }

  bool ParseOperand(Operand* operand) {
    if (ParseConstant(operand)) return true;
    operand->kind = Operand::Kind::kColumn;
    return TakeColumn(&operand->column);
  }

  bool ParseOr(Condition* condition, int depth) {
    condition->kind = Condition::Kind::kOr;
    do {
      if (!ParseAnd(&condition->parts.emplace_back(), depth)) return false;
    } while (TakeWord("OR"));
    if (condition->parts.size() == 1) {
      Condition only = std::move(condition->parts[0]);
      *condition = std::move(only);
    }
    return true;
  }

  bool ParseAnd(Condition* condition, int depth) {
    condition->kind = Condition::Kind::kAnd;
    do {
      if (!ParseTest(&condition->parts.emplace_back(), depth)) return false;
    } while (TakeWord("AND"));
    if (condition->parts.size() == 1) {
      Condition only = std::move(condition->parts[0]);
      *condition = std::move(only);
    }
    return true;
  }

  bool ParseTest(Condition* condition, int depth) {
    if (depth > kMaxDepth) return false;
    if (Take("(")) return ParseOr(condition, depth + 1) && Take(")");
    if (!ParseOperand(&condition->left)) return false;
    if (TakeWord("IS")) {
      condition->kind = TakeWord("NOT") ? Condition::Kind::kIsNotNull : Condition::Kind::kIsNull;
      return TakeWord("NULL") && condition->left.kind == Operand::Kind::kColumn;
    }
    condition->kind = Condition::Kind::kCompare;
    if (Take("=")) {
      condition->comparison = Comparison::kEqual;
    } else if (Take("<>")) {
      condition->comparison = Comparison::kNotEqual;
    } else if (Take("<=")) {
      condition->comparison = Comparison::kLessOrEqual;
    } else if (Take(">=")) {
      condition->comparison = Comparison::kGreaterOrEqual;
    } else if (Take("<")) {
      condition->comparison = Comparison::kLess;
    } else if (Take(">")) {
      condition->comparison = Comparison::kGreater;
    } else {
      return false;
    }
    return ParseOperand(&condition->right);
  }

  std::string_view sql_;
  const std::vector<Token>& tokens_;
  size_t at_ = 0;
  Statement statement_;
};

}  // namespace

Result<Statement> ParseSql(std::string_view sql) {
  KW_ASSIGN_OR_RETURN(const std::vector<Token> tokens, Tokenize(sql));
  return Parser(sql, tokens).Parse();
}

}  // namespace kw::msi
