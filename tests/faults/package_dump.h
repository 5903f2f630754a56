#ifndef KITWRIGHT_TESTS_FAULTS_PACKAGE_DUMP_H_
#define KITWRIGHT_TESTS_FAULTS_PACKAGE_DUMP_H_

#include <set>
#include <string>

namespace kw::faults {

/// Every row of every table of an installer database, and every stream with its bytes, but those that hold
/// the product's settings. One text starting "error:" when the file is no sound database.
std::set<std::string> DumpOf(const std::string& path);

}  // namespace kw::faults

#endif  // KITWRIGHT_TESTS_FAULTS_PACKAGE_DUMP_H_
