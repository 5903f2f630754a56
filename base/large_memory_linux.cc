#include <sys/mman.h>

#include <cstdlib>

#include "base/large_memory.h"

namespace kw {
namespace {

constexpr size_t kLargePage = size_t{2} << 20;

}  // namespace

void* AllocateLarge(size_t bytes) {
  const size_t whole = (bytes + kLargePage - 1) / kLargePage * kLargePage;
  void* memory = std::aligned_alloc(kLargePage, whole);
  // Only a hint: without large pages the memory is as good, and slower.
  if (memory) static_cast<void>(madvise(memory, whole, MADV_HUGEPAGE));
  return memory;
}

void FreeLarge(void* memory) { std::free(memory); }

}  // namespace kw
