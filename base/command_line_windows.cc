#include <windows.h>

#include "base/command_line.h"
#include "base/text.h"

namespace kw {

std::string RawCommandLine(int, const char* const*) {
  return Utf16ToUtf8(reinterpret_cast<const char16_t*>(GetCommandLineW()));
}

}  // namespace kw
