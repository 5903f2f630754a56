#include <cstdlib>

#include "base/large_memory.h"

namespace kw {

// Large pages need a right there that no ordinary program has.
void* AllocateLarge(size_t bytes) { return std::malloc(bytes); }

void FreeLarge(void* memory) { std::free(memory); }

}  // namespace kw
