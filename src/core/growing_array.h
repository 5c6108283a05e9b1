#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>
#include <type_traits>
#include <utility>

#include "core/large_array.h"

namespace orv::detail {

/// A list of plain values that is appended to. Large ones grow where they are or are moved by the
/// page, so that nothing is copied and no more memory is touched than there are values.
template <class T>
class GrowingArray {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  using value_type = T;
  using const_iterator = const T*;

  GrowingArray() = default;
  ~GrowingArray() { std::free(values_); }
  GrowingArray(GrowingArray&& other) noexcept { swap(other); }
  GrowingArray& operator=(GrowingArray&& other) noexcept {
    swap(other);
    return *this;
  }

  /// Throws std::bad_alloc, with all values kept, when memory is exhausted.
  void push_back(const T& value) {
    const T copy = value;
    if (size_ == capacity_)
      resize_block(size_ < FIRST_CAPACITY ? FIRST_CAPACITY : size_ + size_ / 2);
    values_[size_++] = copy;
  }

  /// Gives back the room for further values.
  void shrink_to_fit() {
    if (size_ > 0 && size_ < capacity_) resize_block(size_);
  }

  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  const T* data() const { return values_; }
  const T* begin() const { return values_; }
  const T* end() const { return values_ + size_; }
  const T& operator[](std::size_t i) const { return values_[i]; }
  const T& back() const { return values_[size_ - 1]; }

 private:
  void swap(GrowingArray& other) noexcept {
    std::swap(values_, other.values_);
    std::swap(size_, other.size_);
    std::swap(capacity_, other.capacity_);
  }

  static constexpr std::size_t FIRST_CAPACITY = 64;

  void resize_block(std::size_t capacity) {
    if (capacity > static_cast<std::size_t>(-1) / 2 / sizeof(T)) throw std::bad_alloc();
    void* block = std::realloc(values_, capacity * sizeof(T));
    if (!block) throw std::bad_alloc();
    values_ = static_cast<T*>(block);
    capacity_ = capacity;
    advise_large_pages(values_, capacity * sizeof(T));
  }

  T* values_ = nullptr;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace orv::detail
