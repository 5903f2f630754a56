#include <cstdlib>

#include "base/command_line.h"

namespace kw {

std::string RawCommandLine(int argc, const char* const* argv) {
  const char* raw = std::getenv("KITWRIGHT_COMMAND_LINE");
  if (raw != nullptr && *raw != '\0') return raw;
  return JoinCommandLine(std::vector<std::string>(argv, argv + argc));
}

}  // namespace kw
