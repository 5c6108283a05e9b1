// Image: the first channel and the alpha channel.
#include <orv/image/image.h>

#include "image/image_access.h"
#include "image/pixel_cast.h"

#include <orv/math/vec4.h>

#include <cstddef>
#include <cstdint>

namespace orv {
namespace {

using detail::FormatInfo;
using detail::StoreKind;

/// First channels of an image, with the choice of the store made once.
class RedReader {
 public:
  explicit RedReader(const Image& image) {
    const FormatInfo info = detail::readable_format_info(image.pixel_format);
    stride_ = info.channels;
    if (info.store == StoreKind::BYTES) {
      bytes_ = image.get_u8_ptr();
      if (bytes_) count_ = detail::reachable_pixels<unsigned char>(image, info.size);
    } else if (info.store == StoreKind::FLOATS) {
      floats_ = image.get_f32_ptr();
      if (floats_) count_ = detail::reachable_pixels<float>(image, info.size);
    }
  }

  bool has_store() const { return bytes_ || floats_; }

  float read(std::size_t index) const {
    if (index >= count_) return -1.0f;
    return bytes_ ? detail::byte_to_unit(bytes_[index * stride_]) : floats_[index * stride_];
  }

 private:
  const unsigned char* bytes_ = nullptr;
  const float* floats_ = nullptr;
  std::size_t stride_ = 0;
  std::size_t count_ = 0;
};

/// Applies a rule to each pixel of a four-channel image: bytes take rule(unsigned char*), floats
/// rule(float*).
template <typename Rule>
bool for_each_rgba(Image& image, Rule rule) {
  const FormatInfo info = detail::format_info(image.pixel_format);
  if (info.channels != 4) return false;
  if (info.store == StoreKind::BYTES) {
    unsigned char* pixel = image.get_u8_ptr();
    if (!pixel) return false;
    const std::size_t count = detail::reachable_pixels<unsigned char>(image, info.size);
    for (std::size_t i = 0; i < count; ++i, pixel += 4) rule(pixel);
    return true;
  }
  float* pixel = image.get_f32_ptr();
  if (!pixel) return false;
  const std::size_t count = detail::reachable_pixels<float>(image, info.size);
  for (std::size_t i = 0; i < count; ++i, pixel += 4) rule(pixel);
  return true;
}

struct SmoothAlpha {
  float threshold;
  unsigned char byte_threshold;

  void operator()(unsigned char* p) const {
    const int mean = (p[0] + p[1] + p[2]) / 3;
    p[3] = mean < byte_threshold ? static_cast<unsigned char>(mean) : 255;
  }

  void operator()(float* p) const {
    const float mean = (p[0] + p[1] + p[2]) / 3.0f;
    p[3] = threshold > mean ? mean : 1.0f;
  }
};

/// Range of one channel around the key.
struct KeyRange {
  float low[3];
  float high[3];

  KeyRange(const float* key, float tolerance) {
    for (int c = 0; c < 3; ++c) {
      low[c] = key[c] - tolerance;
      high[c] = key[c] + tolerance;
    }
  }

  bool holds(float r, float g, float b) const {
    return high[0] >= r && r >= low[0] && high[1] >= g && g >= low[1] && high[2] >= b &&
           b >= low[2];
  }
};

struct BinaryAlpha {
  KeyRange bytes;
  KeyRange floats;

  void operator()(unsigned char* p) const { p[3] = bytes.holds(p[0], p[1], p[2]) ? 0 : 255; }
  void operator()(float* p) const { p[3] = floats.holds(p[0], p[1], p[2]) ? 0.0f : 1.0f; }
};

}  // namespace

float Image::get_r(unsigned int index) const {
  const std::uint64_t count = detail::pixel_count(*this);
  const RedReader reader(*this);
  if (!reader.has_store() || index > count) return -1.0f;
  // An index equal to the count is let through, and there is no pixel to read.
  if (index == count) return 0.0f;
  return reader.read(index);
}

bool Image::update_alpha_channel_smooth(float threshold) {
  return for_each_rgba(*this, SmoothAlpha{threshold, detail::wrap_to_byte(threshold)});
}

bool Image::update_alpha_channel_binary(const vec4& key_color, float tolerance) {
  float byte_key[3];
  for (int c = 0; c < 3; ++c) byte_key[c] = detail::wrap_to_byte(key_color.ptr()[c]);
  return for_each_rgba(
      *this, BinaryAlpha{KeyRange(byte_key, tolerance), KeyRange(key_color.ptr(), tolerance)});
}

bool Image::inject_opacity_map_to_alpha_channel(const Image* map) {
  if (!map || map->width != width || map->height != height) return false;
  const FormatInfo info = detail::readable_format_info(pixel_format);
  const bool has_place =
      info.channels == 4 || (info.channels == 2 && info.store == StoreKind::BYTES);
  if (!has_place) return false;
  const RedReader opacity(*map);
  const std::size_t last = info.channels - 1;
  if (info.store == StoreKind::BYTES) {
    unsigned char* pixels = get_u8_ptr();
    if (!pixels) return false;
    const std::size_t count = detail::reachable_pixels<unsigned char>(*this, info.size);
    for (std::size_t i = 0; i < count; ++i) {
      const double a = opacity.read(i);
      pixels[i * info.channels + last] = detail::wrap_to_byte(a * 255.0);
    }
    return true;
  }
  if (!f32_ptr) return false;
  const std::size_t count = detail::reachable_pixels<float>(*this, info.size);
  for (std::size_t i = 0; i < count; ++i) f32_ptr[i * info.channels + last] = opacity.read(i);
  return true;
}

}  // namespace orv
