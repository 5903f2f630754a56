#include <windows.h>

#include "base/machine_config.h"

namespace kw {

int MachineCodePage(const std::string&) { return static_cast<int>(GetACP()); }

}  // namespace kw
