// Image: copies, colours and noise over the whole image.
#include <orv/image/image.h>

#include "image/image_access.h"
#include "image/pixel_cast.h"

#include <orv/math/math.h>
#include <orv/math/vec3.h>
#include <orv/math/vec4.h>
#include <orv/math/vec_u8.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace orv {
namespace {

template <typename T, std::size_t CHANNELS>
bool copy_over(Image& image, const void* src) {
  T* store = ImageAccess::pointer<T>(image);
  if (!store || !src) return false;
  std::size_t bytes = 0;
  if (!detail::block_size(detail::pixel_count(image), 1, CHANNELS * sizeof(T), &bytes)) {
    return false;
  }
  // The source may be the store itself or a part of it.
  std::memmove(store, src, std::min(bytes, ImageAccess::readable_bytes<T>(image)));
  return true;
}

/// One pixel of the store, as the loops write it.
template <typename T, std::size_t CHANNELS>
struct Pixel {
  T channels[CHANNELS];
};

template <typename T, std::size_t CHANNELS>
void fill_pixels(T* store, std::size_t count, const Pixel<T, CHANNELS>& color) {
  // A short run is written pixel by pixel and then copied as a block.
  constexpr std::size_t RUN = 256;
  const std::size_t run = std::min(count, RUN);
  for (std::size_t i = 0; i < run; ++i) {
    std::memcpy(store + i * CHANNELS, color.channels, sizeof(color));
  }
  for (std::size_t done = run; done < count;) {
    const std::size_t step = std::min(count - done, run);
    std::memcpy(store + done * CHANNELS, store, step * sizeof(color));
    done += step;
  }
}

template <typename T, std::size_t CHANNELS>
bool fill_color(Image& image, const Pixel<T, CHANNELS>& color) {
  T* store = ImageAccess::pointer<T>(image);
  if (!store) return false;
  fill_pixels(store, detail::reachable_pixels<T>(image, sizeof(color)), color);
  return true;
}

template <typename T, std::size_t CHANNELS>
bool fill_noise(Image& image, unsigned int num_points, const Pixel<T, CHANNELS>& background,
                const Pixel<T, CHANNELS>& point, unsigned int seed) {
  if (!fill_color(image, background)) return false;
  T* store = ImageAccess::pointer<T>(image);
  const std::size_t reachable = detail::reachable_pixels<T>(image, sizeof(point));
  // A store smaller than the sizes gets points for its own pixels: the sizes alone may say
  // anything.
  const std::size_t count = std::min<std::size_t>(num_points, reachable);
  const float width = static_cast<float>(image.width);
  const float height = static_cast<float>(image.height);
  Math::srnd(seed);
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint64_t x = static_cast<std::uint64_t>(Math::rnd(0.0f, width));
    const std::uint64_t y = static_cast<std::uint64_t>(Math::rnd(0.0f, height));
    const std::uint64_t index = x + image.width * y;
    if (index >= reachable) continue;
    std::memcpy(store + index * CHANNELS, point.channels, sizeof(point));
  }
  return true;
}

using Rgb8 = Pixel<unsigned char, 3>;
using Rgba8 = Pixel<unsigned char, 4>;
using Rg8 = Pixel<unsigned char, 2>;
using R8 = Pixel<unsigned char, 1>;
using Rgb32 = Pixel<float, 3>;
using Rgba32 = Pixel<float, 4>;

vec3u8 to_bytes_rgb(const vec4& c) {
  return vec3u8(detail::unit_to_byte(c.x), detail::unit_to_byte(c.y), detail::unit_to_byte(c.z));
}

vec4u8 to_bytes_rgba(const vec4& c) {
  return vec4u8(detail::unit_to_byte(c.x), detail::unit_to_byte(c.y), detail::unit_to_byte(c.z),
                detail::unit_to_byte(c.w));
}

}  // namespace

// ---- copies ----

bool Image::update_pixmap_rgb_u8(const void* src) {
  return copy_over<unsigned char, 3>(*this, src);
}
bool Image::update_pixmap_rgba_u8(const void* src) {
  return copy_over<unsigned char, 4>(*this, src);
}
bool Image::update_pixmap_r_u8(const void* src) { return copy_over<unsigned char, 1>(*this, src); }
bool Image::update_pixmap_rg_u8(const void* src) { return copy_over<unsigned char, 2>(*this, src); }
bool Image::update_pixmap_rgb_f32(const void* src) { return copy_over<float, 3>(*this, src); }
bool Image::update_pixmap_rgba_f32(const void* src) { return copy_over<float, 4>(*this, src); }
bool Image::update_pixmap_r_f32(const void* src) { return copy_over<float, 1>(*this, src); }

// ---- colours ----

bool Image::fill_color_rgb_u8(unsigned char r, unsigned char g, unsigned char b) {
  return fill_color(*this, Rgb8{{r, g, b}});
}
bool Image::fill_color_rgba_u8(unsigned char r, unsigned char g, unsigned char b, unsigned char a) {
  return fill_color(*this, Rgba8{{r, g, b, a}});
}
bool Image::fill_color_rg_u8(unsigned char r, unsigned char g) {
  return fill_color(*this, Rg8{{r, g}});
}
bool Image::fill_color_r_u8(unsigned char r) { return fill_color(*this, R8{{r}}); }
bool Image::fill_color_rgb_f32(float r, float g, float b) {
  return fill_color(*this, Rgb32{{r, g, b}});
}
bool Image::fill_color_rgba_f32(float r, float g, float b, float a) {
  return fill_color(*this, Rgba32{{r, g, b, a}});
}

// ---- noise ----

bool Image::fill_with_noise(unsigned int num_points, const vec4& background,
                            const vec4& point_color, unsigned int seed) {
  switch (static_cast<int>(pixel_format)) {
    case PF_RGB_U8:
    case PF_BGR_U8:
      return fill_with_noise_rgb_u8(num_points, to_bytes_rgb(background), to_bytes_rgb(point_color),
                                    seed);
    case PF_RGBA_U8:
    case PF_BGRA_U8:
      return fill_with_noise_rgba_u8(num_points, to_bytes_rgba(background),
                                     to_bytes_rgba(point_color), seed);
    case PF_RGB_F32:
      return fill_with_noise_rgb_f32(num_points, vec3(background.x, background.y, background.z),
                                     vec3(point_color.x, point_color.y, point_color.z), seed);
    case PF_RGBA_F32:
      return fill_with_noise_rgba_f32(num_points, background, point_color, seed);
    default:
      return false;
  }
}

bool Image::fill_with_noise_rgb_u8(unsigned int num_points, const vec3u8& background,
                                   const vec3u8& point_color, unsigned int seed) {
  const vec3u8 &b = background, &p = point_color;
  return fill_noise(*this, num_points, Rgb8{{b.x, b.y, b.z}}, Rgb8{{p.x, p.y, p.z}}, seed);
}

bool Image::fill_with_noise_rgba_u8(unsigned int num_points, const vec4u8& background,
                                    const vec4u8& point_color, unsigned int seed) {
  const vec4u8 &b = background, &p = point_color;
  return fill_noise(*this, num_points, Rgba8{{b.x, b.y, b.z, b.w}}, Rgba8{{p.x, p.y, p.z, p.w}},
                    seed);
}

bool Image::fill_with_noise_rg_u8(unsigned int num_points, const vec2u8& background,
                                  const vec2u8& point_color, unsigned int seed) {
  const vec2u8 &b = background, &p = point_color;
  return fill_noise(*this, num_points, Rg8{{b.x, b.y}}, Rg8{{p.x, p.y}}, seed);
}

bool Image::fill_with_noise_r_u8(unsigned int num_points, unsigned char background,
                                 unsigned char point_color, unsigned int seed) {
  return fill_noise(*this, num_points, R8{{background}}, R8{{point_color}}, seed);
}

bool Image::fill_with_noise_rgb_f32(unsigned int num_points, const vec3& background,
                                    const vec3& point_color, unsigned int seed) {
  const vec3 &b = background, &p = point_color;
  return fill_noise(*this, num_points, Rgb32{{b.x, b.y, b.z}}, Rgb32{{p.x, p.y, p.z}}, seed);
}

bool Image::fill_with_noise_rgba_f32(unsigned int num_points, const vec4& background,
                                     const vec4& point_color, unsigned int seed) {
  const vec4 &b = background, &p = point_color;
  return fill_noise(*this, num_points, Rgba32{{b.x, b.y, b.z, b.w}}, Rgba32{{p.x, p.y, p.z, p.w}},
                    seed);
}

}  // namespace orv
