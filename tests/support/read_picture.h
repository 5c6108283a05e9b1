#pragma once

#include <orv/orv.h>

#include <string>

#include "support/image_compare.h"

namespace orv::test {

/// Reads a picture with the library's own codec, turned to bottom row first; empty on failure.
inline Picture read_picture(const std::string& path) {
  Picture picture;
  core::start(nullptr, false, nullptr, nullptr);
  if (Texture* texture =
          TextureMgr::get()->create_texture_2d_from_file(path.c_str(), false, PF_RGBA_U8)) {
    texture->flip_vertical();
    picture.width = static_cast<int>(texture->get_width());
    picture.height = static_cast<int>(texture->get_height());
    const unsigned char* pixels = texture->get_pixmap_u8_ptr();
    picture.rgba.assign(pixels,
                        pixels + std::size_t{4} * texture->get_width() * texture->get_height());
  }
  core::stop(nullptr);
  return picture;
}

}  // namespace orv::test
