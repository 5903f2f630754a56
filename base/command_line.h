#ifndef KITWRIGHT_BASE_COMMAND_LINE_H_
#define KITWRIGHT_BASE_COMMAND_LINE_H_

#include <string>
#include <string_view>
#include <vector>

namespace kw {

/// The command line of this process, letter for letter, program name included, in UTF-8. On Linux the starter
/// hands it over in the environment variable KITWRIGHT_COMMAND_LINE; without that it is joined from `argv`.
std::string RawCommandLine(int argc, const char* const* argv);

/// Splits a command line by the rules of the C runtime: blanks and tabs part arguments outside quotes, 2n
/// backslashes before a quote are n backslashes, 2n+1 a literal quote, `""` inside quotes a literal quote. So
/// `"C:\new folder"\` is the one argument `C:\new folder\`. The first element is the program's name; when it
/// stands unquoted and holds blanks, it ends at the first blank behind a file name that is `program` (a file
/// name, with or without ".exe"; "" means that the name ends at the first blank).
std::vector<std::string> SplitCommandLine(std::string_view line, std::string_view program);

/// One command line that SplitCommandLine takes apart into `arguments` again.
std::string JoinCommandLine(const std::vector<std::string>& arguments);

}  // namespace kw

#endif  // KITWRIGHT_BASE_COMMAND_LINE_H_
