#ifndef KITWRIGHT_MSI_SQL_PARSER_H_
#define KITWRIGHT_MSI_SQL_PARSER_H_

#include <string_view>

#include "base/result.h"
#include "msi/sql_ast.h"

namespace kw::msi {

/// Reads one statement of Windows Installer's SQL. Fails with kErrorBadQuerySyntax and the statement in the
/// sentence. Whether the tables and columns exist is not looked at.
Result<Statement> ParseSql(std::string_view sql);

}  // namespace kw::msi

#endif  // KITWRIGHT_MSI_SQL_PARSER_H_
