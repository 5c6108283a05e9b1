#pragma once

#include <orv/image/image.h>
#include <orv/image/image_codec_stb.h>

#include "image/test_files.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace orv::test {

/// Decodes the first bytes of a file.
inline bool decode(const Bytes& file, std::size_t length, PIXEL_FORMAT format, Image* image) {
  // A block of its own length, so that a read past the end is seen.
  Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
  cut.shrink_to_fit();
  ImageCodecStb codec;
  return codec.load_image_from_memory(image, cut.data(), static_cast<unsigned int>(cut.size()),
                                      false, format);
}

/// The first bytes of a file are refused, or give a picture of all its pixels and of a size that is
/// no burden.
inline void expect_safe(const Bytes& file, std::size_t length, const std::string& name) {
  for (const PIXEL_FORMAT format : {PF_RGBA_U8, PF_RGB_U8}) {
    Image image;
    if (!decode(file, length, format, &image)) continue;
    EXPECT_TRUE(image.has_pixels()) << name << " cut at " << length;
    EXPECT_LE(image.get_u8_capacity(), std::size_t{32} << 20) << name << " cut at " << length;
  }
}

}  // namespace orv::test
