#ifndef KITWRIGHT_TESTS_PEERS_ENGINES_TEST_SUPPORT_H_
#define KITWRIGHT_TESTS_PEERS_ENGINES_TEST_SUPPORT_H_

#include <libmsi-1.0/libmsi.h>

#include <string>
#include <vector>

#include "msi/database.h"

namespace kw::msi {

/// What a statement comes to: whether it worked, its rows, and behind a change the rows of all tables.
/// Sorted, as the order without "order by" is nobody's promise.
struct Answer {
  bool ok = false;
  std::vector<std::string> rows;

  bool operator==(const Answer&) const = default;
};

std::string Print(const Answer& answer);
bool IsSelect(const std::string& sql);

/// Runs a statement here; the rows of a select go to `answer`, each with `mark` before it and "|" behind each
/// field.
void OurRows(Database& database, const std::string& sql, const std::string& mark, Answer& answer);
/// The same with the common free library.
void LibraryRows(LibmsiDatabase* database, const std::string& sql, const std::string& mark, Answer& answer);

}  // namespace kw::msi

#endif  // KITWRIGHT_TESTS_PEERS_ENGINES_TEST_SUPPORT_H_
