#include <orv/image/image.h>

#include <orv/core/log_mgr.h>

#include "image/image_access.h"
#include "image/pixel_cast.h"

#include <orv/math/vec4.h>

#include <cstdint>
#include <cstring>

namespace orv {
namespace {

using detail::FormatInfo;
using detail::StoreKind;

/// Replaces a store by a new block. The sizes are stored in any case, the format on success.
template <typename T>
bool create_store(Image& image, PIXEL_FORMAT format, unsigned int pixel_size, bool zero_fill) {
  ImageAccess::release<T>(image);
  std::size_t bytes = 0;
  if (!detail::block_size(detail::pixel_count(image), image.depth, pixel_size, &bytes)) {
    LogMgr::get().tracef_debug("image of %ux%ux%u pixels: too large for any memory", image.width,
                               image.height, image.depth);
    return false;
  }
  T* pixels = detail::new_block<T>(bytes);
  if (!pixels) {
    LogMgr::get().tracef_debug("image of %ux%ux%u pixels: allocation of %zu bytes failed",
                               image.width, image.height, image.depth, bytes);
    return false;
  }
  if (zero_fill) std::memset(pixels, 0, bytes);
  ImageAccess::install(image, pixels, bytes);
  ImageAccess::mark_owner(image);
  image.pixel_format = format;
  return true;
}

/// Copies another image's store into a new block of this one. The copy comes first: the other image
/// may be a view of this one's pixels.
template <typename T>
void copy_store(Image& image, const Image& other, const T* pixels) {
  const std::uint64_t pixel_size =
      sizeof(T) * static_cast<std::uint64_t>(other.get_pixel_format_num_channels());
  std::size_t bytes = 0;
  T* copy = nullptr;
  if (detail::block_size(detail::pixel_count(other), other.depth, pixel_size, &bytes)) {
    copy = detail::new_block<T>(bytes);
  }
  if (copy) {
    const std::size_t available = std::min(bytes, ImageAccess::readable_bytes<T>(other));
    std::memcpy(copy, pixels, available);
    std::memset(reinterpret_cast<unsigned char*>(copy) + available, 0, bytes - available);
  }
  ImageAccess::release<T>(image);
  if (!copy) return;
  ImageAccess::install(image, copy, bytes);
  ImageAccess::mark_owner(image);
}

template <typename T>
void hand_in_store(Image& image, T* pixels, bool& is_view) {
  is_view = is_view || image.owns_pixels;
  image.owns_pixels = false;
  ImageAccess::pointer<T>(image) = pixels;
  ImageAccess::forget_block<T>(image);
}

/// True when a pixel lies within width * height * depth and, in an own block, within the block.
template <typename T>
bool is_pixel_there(const Image& image, std::uint64_t index, std::size_t pixel_size) {
  std::uint64_t count = 0;
  if (!__builtin_mul_overflow(detail::pixel_count(image), std::uint64_t{image.depth}, &count) &&
      index >= count) {
    return false;
  }
  return index < ImageAccess::readable_bytes<T>(image) / pixel_size;
}

/// A byte image is served from its own byte store; only without one are floats looked for.
StoreKind pixel_store(const Image& image, const FormatInfo& info) {
  if (image.u8_ptr) return info.store == StoreKind::BYTES ? StoreKind::BYTES : StoreKind::NONE;
  if (image.f32_ptr && info.store == StoreKind::FLOATS && info.channels > 1) {
    return StoreKind::FLOATS;
  }
  return StoreKind::NONE;
}

/// A pixel in its store: where it starts, counted in channels.
struct PixelPlace {
  StoreKind store = StoreKind::NONE;
  std::size_t first = 0;
  unsigned int channels = 0;
};

bool find_pixel(const Image& image, std::uint64_t index, PixelPlace* place) {
  const FormatInfo info = detail::format_info(image.pixel_format);
  place->store = pixel_store(image, info);
  if (place->store == StoreKind::NONE) return false;
  const bool is_there = place->store == StoreKind::BYTES
                            ? is_pixel_there<unsigned char>(image, index, info.size)
                            : is_pixel_there<float>(image, index, info.size);
  if (!is_there) return false;
  place->first = static_cast<std::size_t>(index) * info.channels;
  place->channels = info.channels;
  return true;
}

bool read_pixel(const Image& image, std::uint64_t index, float* out4) {
  PixelPlace place;
  if (!out4 || !find_pixel(image, index, &place)) return false;
  const float missing[4] = {0.0f, 0.0f, 0.0f, 1.0f};
  std::memcpy(out4, missing, sizeof(missing));
  for (unsigned int c = 0; c < place.channels; ++c) {
    out4[c] = place.store == StoreKind::BYTES ? detail::byte_to_unit(image.u8_ptr[place.first + c])
                                              : image.f32_ptr[place.first + c];
  }
  return true;
}

bool write_pixel(Image& image, std::uint64_t index, const float* color) {
  PixelPlace place;
  if (!color || !find_pixel(image, index, &place)) return false;
  for (unsigned int c = 0; c < place.channels; ++c) {
    if (place.store == StoreKind::BYTES) {
      image.u8_ptr[place.first + c] = detail::wrap_to_byte(color[c]);
    } else {
      image.f32_ptr[place.first + c] = color[c];
    }
  }
  return true;
}

std::uint64_t index_2d(const Image& image, unsigned int x, unsigned int y) {
  return x + static_cast<std::uint64_t>(image.width) * y;
}

}  // namespace

// ---- construction, copies ----

Image::Image() = default;

Image::Image(const Image& other) { *this = other; }

Image::~Image() {
  ImageAccess::release<unsigned char>(*this);
  ImageAccess::release<float>(*this);
}

Image& Image::operator=(const Image& other) {
  if (this == &other) return *this;
  width = other.width;
  height = other.height;
  depth = other.depth;
  pixel_format = other.pixel_format;
  codec_id = other.codec_id;
  if (other.u8_ptr) {
    copy_store(*this, other, other.u8_ptr);
  } else if (other.f32_ptr) {
    copy_store(*this, other, other.f32_ptr);
  } else {
    codec_pixels = other.codec_pixels;
  }
  return *this;
}

void Image::swap(Image& other) noexcept {
  std::swap(width, other.width);
  std::swap(height, other.height);
  std::swap(depth, other.depth);
  std::swap(pixel_format, other.pixel_format);
  std::swap(owns_pixels, other.owns_pixels);
  std::swap(u8_ptr, other.u8_ptr);
  std::swap(f32_ptr, other.f32_ptr);
  std::swap(codec_pixels, other.codec_pixels);
  std::swap(codec_id, other.codec_id);
  std::swap(u8_block_, other.u8_block_);
  std::swap(f32_block_, other.f32_block_);
  std::swap(u8_capacity_, other.u8_capacity_);
  std::swap(f32_capacity_, other.f32_capacity_);
  std::swap(is_view_, other.is_view_);
}

bool Image::create(unsigned int new_width, unsigned int new_height, unsigned int new_depth,
                   PIXEL_FORMAT format, bool zero_fill, bool allocate) {
  const FormatInfo info = detail::format_info(format);
  if (allocate && info.store == StoreKind::NONE) return false;
  width = new_width;
  height = new_height;
  depth = new_depth;
  if (!allocate) {
    pixel_format = format;
    return true;
  }
  return info.store == StoreKind::BYTES
             ? create_store<unsigned char>(*this, format, info.size, zero_fill)
             : create_store<float>(*this, format, info.size, zero_fill);
}

bool Image::cleanup() {
  if (owns_pixels) {
    ImageAccess::release<unsigned char>(*this);
    ImageAccess::release<float>(*this);
  }
  return true;
}

// ---- stores ----

void Image::set_u8_ptr(unsigned char* pixels) { hand_in_store(*this, pixels, is_view_); }

void Image::set_f32_ptr(float* pixels) { hand_in_store(*this, pixels, is_view_); }

void Image::_delete_u8_ptr() { ImageAccess::release<unsigned char>(*this); }

void Image::_delete_f32_ptr() { ImageAccess::release<float>(*this); }

bool Image::has_pixels() const {
  const FormatInfo info = detail::readable_format_info(pixel_format);
  switch (info.store) {
    case StoreKind::BYTES:
      return get_u8_ptr() && detail::holds_all_pixels<unsigned char>(*this, info.size);
    case StoreKind::FLOATS:
      return f32_ptr && detail::holds_all_pixels<float>(*this, info.size);
    default:
      return false;
  }
}

// ---- formats ----

unsigned int Image::get_pixel_format_num_channels(PIXEL_FORMAT format) {
  return detail::format_info(format).channels;
}

unsigned int Image::get_pixel_format_size(PIXEL_FORMAT format) {
  return detail::format_info(format).size;
}

// ---- single pixels ----

bool Image::get_pixel(unsigned int index, float* out4) const {
  return read_pixel(*this, index, out4);
}

bool Image::get_pixel_2d(unsigned int x, unsigned int y, float* out4) const {
  return read_pixel(*this, index_2d(*this, x, y), out4);
}

bool Image::set_pixel(unsigned int index, const vec4& color) {
  return write_pixel(*this, index, color.ptr());
}

bool Image::set_pixel_1d(unsigned int index, const vec4& color) {
  return write_pixel(*this, index, color.ptr());
}

bool Image::set_pixel_2d(unsigned int x, unsigned int y, const vec4& color) {
  return write_pixel(*this, index_2d(*this, x, y), color.ptr());
}

bool Image::set_pixel_v2(unsigned int index, const float* color) {
  return write_pixel(*this, index, color);
}

bool Image::set_pixel_1d_v2(unsigned int index, const float* color) {
  return write_pixel(*this, index, color);
}

bool Image::set_pixel_2d_v2(unsigned int x, unsigned int y, const float* color) {
  return write_pixel(*this, index_2d(*this, x, y), color);
}

}  // namespace orv
