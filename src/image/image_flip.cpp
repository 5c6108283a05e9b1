// Image: turning upside down and left to right.
#include <orv/image/image.h>

#include "image/image_access.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace orv {
namespace {

using detail::FormatInfo;
using detail::StoreKind;

/// What a flip works on: the image's own pixels, taken as bytes.
struct FlipStore {
  unsigned char* pixels = nullptr;
  std::size_t pixel_size = 0;
  bool is_whole = false;  // the store holds all pixels
};

/// Gives a byte image that only borrows its pixels a copy of its own.
bool copy_borrowed_pixels(Image& image, std::size_t pixel_size) {
  if (!image.codec_pixels) return false;
  if (!image.create(image.width, image.height, 1, image.pixel_format, false, true)) return false;
  std::memcpy(image.u8_ptr, image.codec_pixels,
              static_cast<std::size_t>(detail::pixel_count(image)) * pixel_size);
  return true;
}

bool open_flip_store(Image& image, FlipStore* store) {
  const FormatInfo info = detail::format_info(image.pixel_format);
  store->pixel_size = info.size;
  if (info.store == StoreKind::BYTES) {
    if (!image.u8_ptr && !copy_borrowed_pixels(image, info.size)) return false;
    store->pixels = image.u8_ptr;
    store->is_whole = detail::holds_all_pixels<unsigned char>(image, info.size);
    return true;
  }
  if (info.store == StoreKind::NONE || info.channels == 1 || !image.f32_ptr) return false;
  store->pixels = reinterpret_cast<unsigned char*>(image.f32_ptr);
  store->is_whole = detail::holds_all_pixels<float>(image, info.size);
  return true;
}

template <std::size_t SIZE>
struct PixelBytes {
  unsigned char bytes[SIZE];
};

template <std::size_t SIZE>
void reverse_rows(unsigned char* pixels, std::size_t width, std::size_t height) {
  auto* row = reinterpret_cast<PixelBytes<SIZE>*>(pixels);
  for (std::size_t y = 0; y < height; ++y, row += width) std::reverse(row, row + width);
}

}  // namespace

bool Image::flip_vertical() {
  FlipStore store;
  if (!open_flip_store(*this, &store)) return false;
  if (height < 2 || width == 0) return true;
  if (!store.is_whole) return false;
  const std::size_t row_bytes = width * store.pixel_size;
  for (std::size_t y = 0; y < height / 2; ++y) {
    unsigned char* upper = store.pixels + y * row_bytes;
    unsigned char* lower = store.pixels + (height - y - 1) * row_bytes;
    std::swap_ranges(upper, upper + row_bytes, lower);
  }
  return true;
}

bool Image::flip_horizontal() {
  FlipStore store;
  if (!open_flip_store(*this, &store)) return false;
  if (height == 0 || width == 0) return true;
  if (!store.is_whole) return false;
  switch (store.pixel_size) {
    case 1:
      reverse_rows<1>(store.pixels, width, height);
      break;
    case 2:
      reverse_rows<2>(store.pixels, width, height);
      break;
    case 3:
      reverse_rows<3>(store.pixels, width, height);
      break;
    case 4:
      reverse_rows<4>(store.pixels, width, height);
      break;
    case 12:
      reverse_rows<12>(store.pixels, width, height);
      break;
    default:
      reverse_rows<16>(store.pixels, width, height);
      break;
  }
  return true;
}

}  // namespace orv
