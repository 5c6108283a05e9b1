#include "common/png_writer.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <vector>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#include <stb/stb_image_write.h>
#pragma GCC diagnostic pop

namespace orv_app {

namespace {

/// A full disk may show as late as in the closing.
bool write_file(const char* path, const unsigned char* bytes, std::size_t size) {
  std::FILE* file = std::fopen(path, "wb");
  if (!file) return false;
  const bool written = std::fwrite(bytes, 1, size, file) == size;
  const int fault = errno;
  const bool closed = std::fclose(file) == 0;
  if (!written) errno = fault;
  return written && closed;
}

}  // namespace

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
  int size = 0;
  unsigned char* png = stbi_write_png_to_mem(rgb.data(), width * 3, width, height, 3, &size);
  if (!png) {
    errno = ENOMEM;
    return false;
  }
  const bool written = write_file(path, png, static_cast<std::size_t>(size));
  const int fault = errno;
  std::free(png);
  errno = fault;
  return written;
}

}  // namespace orv_app
