#include "image/stb_image_decode.h"

#include "image/bmp_palette.h"
#include "image/jpeg_check.h"

#include <climits>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

/// For an empty chunk the decoder copies nothing to nowhere, which memcpy does not allow.
inline void* copy_bytes(void* target, const void* source, std::size_t size) {
  return size > 0 ? std::memcpy(target, source, size) : target;
}

}  // namespace

#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STBI_NO_STDIO
#define STBI_NO_PNM
#define STBI_NO_FAILURE_STRINGS
// A spoiled file must not abort the host.
#define STBI_ASSERT(x) ((void)(x))
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#define memcpy copy_bytes
#include <stb/stb_image.h>
#undef memcpy
#pragma GCC diagnostic pop

namespace orv::detail {
namespace {

/// How many pixels a byte of a format can stand for at most, so that a short file that claims a
/// huge picture is refused before memory is taken for it.
struct Density {
  const char* magic;
  std::size_t magic_size;
  std::uint64_t pixels_per_byte;
};

constexpr Density SOFTIMAGE = {"\x53\x80\xF6\x34", 4, 16384};  // runs of 65535
constexpr Density DENSITIES[] = {
    {"\xFF\xD8", 2, 1024},  // JPEG: two bits for a block of 64 pixels, colour halved
    {"\x89PNG", 4, 8300},   // PNG: deflate packs 1032 to 1, and a byte is eight pixels
    {"GIF8", 4, 4096},      // GIF: a code of 12 bits stands for up to 4096 pixels
    {"BM", 2, 8},           // BMP: one bit a pixel
    {"8BPS", 4, 128},       // PSD: runs of 128 in two bytes
    {"#?", 2, 64},          // HDR: runs of 127 in two bytes for each of four channels
    SOFTIMAGE};
constexpr std::uint64_t TGA_PIXELS_PER_BYTE = 128;  // runs of 128 in two bytes
// Small pictures always pass: a quarter of a million of pixels is nobody's trouble.
constexpr std::uint64_t FREE_PIXELS = std::uint64_t{1} << 18;
// Pixels times scans of a JPEG: a second or two of decoding.
constexpr std::uint64_t MAX_JPEG_WORK = std::uint64_t{1} << 31;

bool has_magic(const unsigned char* data, std::size_t size, const Density& format) {
  return size >= format.magic_size && std::memcmp(data, format.magic, format.magic_size) == 0;
}

std::uint64_t pixels_per_byte(const unsigned char* data, std::size_t size) {
  for (const Density& density : DENSITIES) {
    if (has_magic(data, size, density)) return density.pixels_per_byte;
  }
  return TGA_PIXELS_PER_BYTE;
}

std::uint64_t magnitude(int side) {
  const std::int64_t wide = side;
  return static_cast<std::uint64_t>(wide < 0 ? -wide : wide);
}

/// Whether the decoder may see the file.
bool is_decodable(const unsigned char* data, std::size_t size) {
  // First of all: the tables of a JPEG are read with its size already.
  std::uint64_t num_scans = 0;
  if (!is_sound_jpeg(data, size, &num_scans)) return false;
  int width = 0, height = 0, channels = 0;
  if (!stbi_info_from_memory(data, static_cast<int>(size), &width, &height, &channels)) {
    return false;
  }
  // The height of a BMP that starts with its upper row is told as a negative number.
  const std::uint64_t pixels = magnitude(width) * magnitude(height);
  if (pixels > FREE_PIXELS + size * pixels_per_byte(data, size)) return false;
  return pixels * num_scans <= MAX_JPEG_WORK;
}

}  // namespace

DecodedImage::~DecodedImage() { stbi_image_free(pixels_); }

bool DecodedImage::decode(const unsigned char* data, std::size_t size, int channels) {
  if (!data || size == 0 || size > INT_MAX || channels < 1 || channels > 4) return false;
  if (!is_decodable(data, size)) return false;
  std::vector<unsigned char> rebuilt;
  const BmpPalette palette = rebuild_bmp_palette(data, size, &rebuilt);
  if (palette == BmpPalette::BROKEN) return false;
  if (palette == BmpPalette::REBUILT) {
    data = rebuilt.data();
    size = rebuilt.size();
    if (size > INT_MAX) return false;
  }
  int width = 0, height = 0, file_channels = 0;
  // Of a Softimage picture that fails the decoder would convert the null picture: it is converted
  // here, from the four channels that all of them are decoded to.
  const bool is_softimage = has_magic(data, size, SOFTIMAGE);
  unsigned char* pixels = stbi_load_from_memory(data, static_cast<int>(size), &width, &height,
                                                &file_channels, is_softimage ? 4 : channels);
  if (pixels && is_softimage) {
    pixels = stbi__convert_format(pixels, 4, channels, static_cast<unsigned int>(width),
                                  static_cast<unsigned int>(height));
  }
  if (!pixels) return false;
  stbi_image_free(pixels_);
  pixels_ = pixels;
  width_ = static_cast<unsigned int>(width);
  height_ = static_cast<unsigned int>(height);
  return true;
}

}  // namespace orv::detail
