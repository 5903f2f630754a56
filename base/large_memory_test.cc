#include "base/large_memory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace kw {
namespace {

TEST(LargeMemoryTest, AContainerKeepsItsContentWhileItGrowsIntoLargePagesAndBack) {
  std::vector<uint32_t, LargeAllocator<uint32_t>> numbers;
  for (uint32_t i = 0; i < 3 * kLargeMemory / sizeof(uint32_t); ++i) numbers.push_back(i * 7);
  for (uint32_t i = 0; i < numbers.size(); ++i) ASSERT_EQ(numbers[i], i * 7);
  numbers.resize(100);
  numbers.shrink_to_fit();
  EXPECT_EQ(numbers.capacity(), 100u);
  EXPECT_EQ(numbers[99], 693u);
}

TEST(LargeMemoryTest, MemoryIsGivenOutInFull) {
  for (const size_t bytes : {kLargeMemory, kLargeMemory + 1, 2 * kLargeMemory, 5 * kLargeMemory + 4095}) {
    char* const memory = static_cast<char*>(AllocateLarge(bytes));
    ASSERT_NE(memory, nullptr);
    memory[0] = 'a';
    memory[bytes - 1] = 'z';
    EXPECT_EQ(memory[0], 'a');
    FreeLarge(memory);
  }
}

}  // namespace
}  // namespace kw
