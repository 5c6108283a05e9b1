#include "common/png_writer.h"

#include <cstddef>
#include <vector>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#include <stb/stb_image_write.h>
#pragma GCC diagnostic pop

namespace orv_app {

bool write_png(const char* path, const unsigned char* rgba, int width, int height) {
  const std::size_t row = static_cast<std::size_t>(width) * 3;
  std::vector<unsigned char> rgb(row * static_cast<std::size_t>(height));
  for (int y = 0; y < height; ++y) {
    unsigned char* out = rgb.data() + row * static_cast<std::size_t>(height - 1 - y);
    for (int x = 0; x < width; ++x, rgba += 4, out += 3) {
      out[0] = rgba[0];
      out[1] = rgba[1];
      out[2] = rgba[2];
    }
  }
  return stbi_write_png(path, width, height, 3, rgb.data(), width * 3) != 0;
}

}  // namespace orv_app
