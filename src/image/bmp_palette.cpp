#include "image/bmp_palette.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace orv::detail {
namespace {

constexpr std::size_t FILE_HEADER = 14;
constexpr std::size_t CORE_HEADER = 12;  // 16-bit sizes, three bytes a colour
constexpr std::size_t INFO_HEADER = 40;
constexpr std::size_t NUM_COLORS = 256;

std::uint32_t read_le(const unsigned char* bytes, std::size_t count) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < count; ++i) value |= std::uint32_t{bytes[i]} << 8 * i;
  return value;
}

void write_le(unsigned char* bytes, std::uint32_t value, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<unsigned char>(value >> 8 * i);
}

struct BmpHeader {
  std::size_t pixels_at;
  std::size_t header_size;
  std::uint32_t width;
  std::uint32_t height;  // signed in the file: negative for the upper row first
  std::uint32_t planes;
  std::uint32_t bits;
  std::uint32_t compression;

  std::size_t palette_at() const { return FILE_HEADER + header_size; }
  std::size_t color_size() const { return header_size == CORE_HEADER ? 3 : 4; }
};

/// False for what the decoder does not take for a BMP or refuses by itself.
bool read_header(const unsigned char* data, std::size_t size, BmpHeader* header) {
  if (size < FILE_HEADER + 4 || data[0] != 'B' || data[1] != 'M') return false;
  header->pixels_at = read_le(data + 10, 4);
  header->header_size = read_le(data + 14, 4);
  constexpr std::array<std::size_t, 5> SIZES = {CORE_HEADER, INFO_HEADER, 56, 108, 124};
  if (std::find(SIZES.begin(), SIZES.end(), header->header_size) == SIZES.end()) return false;
  if (size < header->palette_at()) return false;
  const bool is_core = header->header_size == CORE_HEADER;
  const std::size_t number = is_core ? 2 : 4;
  const unsigned char* at = data + FILE_HEADER + 4;
  header->width = read_le(at, number);
  header->height = read_le(at + number, number);
  header->planes = read_le(at + 2 * number, 2);
  header->bits = read_le(at + 2 * number + 2, 2);
  header->compression = is_core ? 0 : read_le(at + 2 * number + 4, 4);
  return true;
}

}  // namespace

BmpPalette rebuild_bmp_palette(const unsigned char* data, std::size_t size,
                               std::vector<unsigned char>* rebuilt) {
  BmpHeader header;
  if (!read_header(data, size, &header)) return BmpPalette::NONE;
  if (header.bits != 1 && header.bits != 4 && header.bits != 8) return BmpPalette::NONE;
  if (header.pixels_at < header.palette_at() || header.pixels_at > size) return BmpPalette::BROKEN;
  const std::size_t colors = (header.pixels_at - header.palette_at()) / header.color_size();
  if (colors == 0 || colors > NUM_COLORS) return BmpPalette::BROKEN;

  const std::size_t new_pixels_at = FILE_HEADER + INFO_HEADER + NUM_COLORS * 4;
  rebuilt->assign(new_pixels_at, 0);
  unsigned char* out = rebuilt->data();
  out[0] = 'B';
  out[1] = 'M';
  write_le(out + 10, static_cast<std::uint32_t>(new_pixels_at), 4);
  write_le(out + 14, INFO_HEADER, 4);
  write_le(out + 18, header.width, 4);
  write_le(out + 22, header.height, 4);
  write_le(out + 26, header.planes, 2);
  write_le(out + 28, header.bits, 2);
  write_le(out + 30, header.compression, 4);
  for (std::size_t i = 0; i < colors; ++i) {
    std::copy_n(data + header.palette_at() + i * header.color_size(), 3,
                out + FILE_HEADER + INFO_HEADER + i * 4);
  }
  rebuilt->insert(rebuilt->end(), data + header.pixels_at, data + size);
  return BmpPalette::REBUILT;
}

}  // namespace orv::detail
