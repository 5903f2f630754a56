#ifndef KITWRIGHT_BASE_LARGE_MEMORY_H_
#define KITWRIGHT_BASE_LARGE_MEMORY_H_

#include <cstddef>
#include <memory>
#include <new>

namespace kw {

/// From this size on, in bytes, memory is worth asking for in large pages.
inline constexpr size_t kLargeMemory = size_t{1} << 20;

/// Memory of at least kLargeMemory bytes, in large pages where the system has them to give: tables that are
/// read here and there then cost no search for the page. Null when there is none left.
void* AllocateLarge(size_t bytes);
void FreeLarge(void* memory);

/// For containers that may grow to megabytes and are read without an order.
template <typename T>
struct LargeAllocator {
  using value_type = T;

  LargeAllocator() = default;
  template <typename U>
  explicit LargeAllocator(const LargeAllocator<U>& /*other*/) {}

  T* allocate(size_t count) {
    const size_t bytes = count * sizeof(T);
    if (bytes < kLargeMemory) return std::allocator<T>().allocate(count);
    void* memory = AllocateLarge(bytes);
    if (!memory) throw std::bad_alloc();
    return static_cast<T*>(memory);
  }
  void deallocate(T* memory, size_t count) {
    if (count * sizeof(T) < kLargeMemory) {
      std::allocator<T>().deallocate(memory, count);
    } else {
      FreeLarge(memory);
    }
  }
  template <typename U>
  bool operator==(const LargeAllocator<U>& /*other*/) const {
    return true;
  }
};

}  // namespace kw

#endif  // KITWRIGHT_BASE_LARGE_MEMORY_H_
