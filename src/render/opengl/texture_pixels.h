/// @file
/// What uploads take from the images of textures.
#pragma once

#include <orv/gpu/texture_data.h>

namespace orv::detail {

/// Pixels of an image in the store of its format; null when there are none or too few.
inline const void* upload_pixels(const Image& image) {
  if (image.width == 0 || image.height == 0 || !image.has_pixels()) return nullptr;
  const bool is_float = image.pixel_format >= PF_RGB_F32 && image.pixel_format <= PF_R_F16;
  return is_float ? static_cast<const void*>(image.get_f32_ptr()) : image.get_u8_ptr();
}

inline bool has_size_of(const Image& a, const Image& b) {
  return a.width == b.width && a.height == b.height;
}

}  // namespace orv::detail
