#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

namespace orv::detail {

/// Blocks from this size on are worth large pages.
inline constexpr std::size_t LARGE_BLOCK = std::size_t{4} << 20;

/// Asks the system to back a block of fresh memory by large pages: touching it page by page would
/// cost more than filling it. Does nothing to smaller blocks and where there are no large pages.
void advise_large_pages(void* begin, std::size_t bytes);

/// `new T[n]()`, to be freed with delete[].
template <class T>
T* new_large_array(std::size_t n) {
  static_assert(std::is_trivially_destructible_v<T>, "freed without a count of elements");
  static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);
  if (n < LARGE_BLOCK / sizeof(T) || n > static_cast<std::size_t>(-1) / 2 / sizeof(T)) {
    return new T[n]();
  }
  void* block = ::operator new[](n * sizeof(T));
  advise_large_pages(block, n * sizeof(T));
  T* elements = static_cast<T*>(block);
  std::uninitialized_value_construct_n(elements, n);
  return elements;
}

/// Allocator for containers that may grow large.
template <class T>
struct LargeArrayAllocator {
  using value_type = T;

  LargeArrayAllocator() = default;
  template <class U>
  LargeArrayAllocator(const LargeArrayAllocator<U>&) {}

  T* allocate(std::size_t n) {
    T* block = std::allocator<T>().allocate(n);
    advise_large_pages(block, n * sizeof(T));
    return block;
  }
  void deallocate(T* block, std::size_t n) { std::allocator<T>().deallocate(block, n); }

  template <class U>
  bool operator==(const LargeArrayAllocator<U>&) const {
    return true;
  }
};

template <class T>
using LargeVector = std::vector<T, LargeArrayAllocator<T>>;

}  // namespace orv::detail
