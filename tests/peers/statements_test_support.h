#ifndef KITWRIGHT_TESTS_PEERS_STATEMENTS_TEST_SUPPORT_H_
#define KITWRIGHT_TESTS_PEERS_STATEMENTS_TEST_SUPPORT_H_

#include <string>
#include <vector>

namespace kw::msi {

/// What makes the two tables that the statements are about, with their rows.
std::vector<std::string> TablesOfStatements();
/// Selects that were thought of: each comparison, each kind of column, nulls, joins.
std::vector<std::string> WrittenSelects();
/// Inserts, updates and deletes that were thought of, also ones that must be refused.
std::vector<std::string> WrittenChanges();
/// Statements of all kinds put together by chance, the same each time.
std::vector<std::string> GeneratedStatements(int count);

}  // namespace kw::msi

#endif  // KITWRIGHT_TESTS_PEERS_STATEMENTS_TEST_SUPPORT_H_
