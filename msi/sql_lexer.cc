#include "msi/sql_lexer.h"

#include <string>

namespace kw::msi {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsWordStart(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

}  // namespace

Result<std::vector<Token>> Tokenize(std::string_view sql) {
  std::vector<Token> tokens;
  tokens.reserve(sql.size() / 4 + 2);
  for (size_t at = 0; at < sql.size();) {
    const char c = sql[at];
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n') {
      ++at;
      continue;
    }
    if (c == '`' || c == '\'') {
      const size_t end = sql.find(c, at + 1);
      if (end == std::string_view::npos) {
        return {kErrorBadQuerySyntax, "A quote is not closed in \"" + std::string(sql) + "\"."};
      }
      tokens.push_back(
          {c == '`' ? Token::Kind::kQuotedName : Token::Kind::kText, sql.substr(at + 1, end - at - 1)});
      at = end + 1;
      continue;
    }
    size_t end = at + 1;
    if (IsWordStart(c)) {
      while (end < sql.size() && (IsWordStart(sql[end]) || IsDigit(sql[end]))) ++end;
      tokens.push_back({Token::Kind::kWord, sql.substr(at, end - at)});
    } else if (IsDigit(c) || (c == '-' && end < sql.size() && IsDigit(sql[end]))) {
      while (end < sql.size() && IsDigit(sql[end])) ++end;
      tokens.push_back({Token::Kind::kInteger, sql.substr(at, end - at)});
    } else {
      const std::string_view two = sql.substr(at, 2);
      if (two == "<>" || two == "<=" || two == ">=") {
        ++end;
      } else if (std::string_view("()=<>,.*?").find(c) == std::string_view::npos) {
        return {kErrorBadQuerySyntax,
                "The character " + std::string(1, c) + " has no meaning in \"" + std::string(sql) + "\"."};
      }
      tokens.push_back({Token::Kind::kSymbol, sql.substr(at, end - at)});
    }
    at = end;
  }
  tokens.push_back({});
  return tokens;
}

}  // namespace kw::msi
