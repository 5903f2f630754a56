// Reads any text as a directive file: no crash, and what is taken can be named.

#include <cstdlib>

#include "cabinet/directive_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto parsed = kw::cabinet::ParseDirectives({reinterpret_cast<const char*>(data), size});
  if (!parsed.ok()) return 0;
  if (parsed->CabinetName().empty()) std::abort();
  for (const auto& file : parsed->files) {
    if (file.path.empty() || file.name.empty() || file.line == 0) std::abort();
  }
  return 0;
}
