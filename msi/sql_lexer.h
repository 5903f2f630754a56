#ifndef KITWRIGHT_MSI_SQL_LEXER_H_
#define KITWRIGHT_MSI_SQL_LEXER_H_

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/result.h"

namespace kw::msi {

/// A piece of a statement. Views point into the statement's text.
struct Token {
  enum class Kind { kWord, kQuotedName, kText, kInteger, kSymbol, kEnd };
  Kind kind = Kind::kEnd;
  std::string_view text;  ///< without quotes; of a symbol one or two characters
};

/// The pieces of `sql`. A name in backticks and a text in single quotes end at the next such character;
/// neither has an escape. Blanks are needed only where two words would run together.
Result<std::vector<Token>> Tokenize(std::string_view sql);

}  // namespace kw::msi

#endif  // KITWRIGHT_MSI_SQL_LEXER_H_
