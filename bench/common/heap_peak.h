/// @file
/// Peak of the memory that a piece of work takes from the heap.
#pragma once

#include <cstddef>

namespace bench {

/// Counts the bytes that malloc and operator new hand out, while one stands.
///
/// The allocations of all threads are counted; mappings of files are not.
class HeapPeak {
 public:
  HeapPeak();
  ~HeapPeak();
  HeapPeak(const HeapPeak&) = delete;
  HeapPeak& operator=(const HeapPeak&) = delete;

  /// Bytes in use above those at the construction, at the worst moment.
  std::size_t peak() const;
  /// Bytes in use now above those at the construction.
  std::size_t in_use() const;
};

}  // namespace bench
