/// @file
/// What the sources of Image know of its stores: which blocks are its own and how far they reach.
#pragma once

#include <orv/image/image.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <type_traits>

#include "core/large_array.h"

namespace orv {

/// Opens the stores of an Image. T is unsigned char for the byte store, float for the float store.
struct ImageAccess {
  template <typename T>
  static auto& pointer(Image& image) {
    if constexpr (std::is_same_v<T, float>) {
      return image.f32_ptr;
    } else {
      return image.u8_ptr;
    }
  }

  template <typename T>
  static auto& block(Image& image) {
    if constexpr (std::is_same_v<T, float>) {
      return image.f32_block_;
    } else {
      return image.u8_block_;
    }
  }

  template <typename T>
  static std::size_t& capacity(Image& image) {
    return std::is_same_v<T, float> ? image.f32_capacity_ : image.u8_capacity_;
  }

  /// Bytes of the store if the image allocated it, else as many as there can be.
  template <typename T>
  static std::size_t readable_bytes(const Image& image) {
    const bool is_own = std::is_same_v<T, float>
                            ? image.f32_ptr && image.f32_ptr == image.f32_block_
                            : image.u8_ptr && image.u8_ptr == image.u8_block_;
    if (!is_own) return std::numeric_limits<std::size_t>::max();
    return std::is_same_v<T, float> ? image.f32_capacity_ : image.u8_capacity_;
  }

  /// Whether the image may free what it allocated. Handing in one store by set_*_ptr clears
  /// owns_pixels, but a block in the other store is still the image's.
  static bool may_free(const Image& image) { return image.owns_pixels || image.is_view_; }
  static void mark_owner(Image& image) {
    image.owns_pixels = true;
    image.is_view_ = false;
  }

  /// Nulls a store and frees it if it is the image's.
  template <typename T>
  static void release(Image& image) {
    T*& store = pointer<T>(image);
    if (store && store == block<T>(image) && may_free(image)) delete[] store;
    store = nullptr;
    forget_block<T>(image);
  }

  template <typename T>
  static void forget_block(Image& image) {
    block<T>(image) = nullptr;
    capacity<T>(image) = 0;
  }

  /// Puts a block made by new T[] into a store.
  template <typename T>
  static void install(Image& image, T* pixels, std::size_t bytes) {
    pointer<T>(image) = pixels;
    block<T>(image) = pixels;
    capacity<T>(image) = bytes;
  }
};

namespace detail {

/// width * height, which always fits.
inline std::uint64_t pixel_count(const Image& image) {
  return static_cast<std::uint64_t>(image.width) * image.height;
}

/// Product of a number of pixels and their size. False when no block can be that large.
inline bool block_size(std::uint64_t pixels, std::uint64_t depth, std::uint64_t pixel_size,
                       std::size_t* bytes) {
  std::uint64_t product = 0;
  if (__builtin_mul_overflow(pixels, depth, &product)) return false;
  if (__builtin_mul_overflow(product, pixel_size, &product)) return false;
  if (product > std::numeric_limits<std::size_t>::max() / 2) return false;
  *bytes = static_cast<std::size_t>(product);
  return true;
}

/// A block of this many bytes, at least one element, so that an empty image has a store too. Null
/// when memory runs out.
template <typename T>
T* new_block(std::size_t bytes) {
  const std::size_t count = std::max<std::size_t>(1, bytes / sizeof(T));
  T* block = new (std::nothrow) T[count];
  if (block) advise_large_pages(block, count * sizeof(T));
  return block;
}

/// How many of the image's width * height pixels of this size may be touched in the store.
template <typename T>
std::size_t reachable_pixels(const Image& image, std::size_t pixel_size) {
  const std::uint64_t limit = ImageAccess::readable_bytes<T>(image) / pixel_size;
  return static_cast<std::size_t>(std::min<std::uint64_t>(pixel_count(image), limit));
}

/// True when the store, if it is the image's own, holds all width * height pixels of this size.
template <typename T>
bool holds_all_pixels(const Image& image, std::size_t pixel_size) {
  std::size_t bytes = 0;
  return block_size(pixel_count(image), 1, pixel_size, &bytes) &&
         bytes <= ImageAccess::readable_bytes<T>(image);
}

/// The store that a pixel format lives in.
enum class StoreKind { NONE, BYTES, FLOATS };

struct FormatInfo {
  StoreKind store;
  unsigned int channels;
  unsigned int size;  ///< bytes of a pixel
};

/// Formats that an Image can make. All others have no store and size 0.
inline FormatInfo format_info(PIXEL_FORMAT format) {
  switch (static_cast<int>(format)) {
    case PF_RGB_U8:
    case PF_BGR_U8:
      return {StoreKind::BYTES, 3, 3};
    case PF_RGBA_U8:
    case PF_BGRA_U8:
      return {StoreKind::BYTES, 4, 4};
    case PF_RGB_F32:
      return {StoreKind::FLOATS, 3, 12};
    case PF_RGBA_F32:
      return {StoreKind::FLOATS, 4, 16};
    case PF_R_F32:
      return {StoreKind::FLOATS, 1, 4};
    case PF_R_U8:
      return {StoreKind::BYTES, 1, 1};
    case PF_RG_U8:
      return {StoreKind::BYTES, 2, 2};
    default:
      return {StoreKind::NONE, 0, 0};
  }
}

/// The same, with the 16-bit float formats taken as floats: they can be read, not made.
inline FormatInfo readable_format_info(PIXEL_FORMAT format) {
  switch (static_cast<int>(format)) {
    case PF_RGB_F16:
      return format_info(PF_RGB_F32);
    case PF_RGBA_F16:
      return format_info(PF_RGBA_F32);
    case PF_R_F16:
      return format_info(PF_R_F32);
    default:
      return format_info(format);
  }
}

}  // namespace detail
}  // namespace orv
