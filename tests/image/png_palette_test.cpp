#include "image/png_palette.h"

#include "image/decode_safely.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <string>

namespace orv::test {
namespace {

void append(Bytes* file, std::initializer_list<unsigned char> bytes) {
  file->insert(file->end(), bytes);
}

/// A chunk with a checksum of zeros, which decoders of this library do not read.
void append_chunk(Bytes* file, const std::string& name, const Bytes& contents) {
  append(file, {0, 0, 0, static_cast<unsigned char>(contents.size())});
  file->insert(file->end(), name.begin(), name.end());
  file->insert(file->end(), contents.begin(), contents.end());
  append(file, {0, 0, 0, 0});
}

/// One row of four pixels, of eight bits each, that name the colours 0, 1, 2 and 255.
Bytes make_row(const Bytes& palette, const Bytes& transparency = {}) {
  Bytes file = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
  append_chunk(&file, "IHDR", {0, 0, 0, 4, 0, 0, 0, 1, 8, 3, 0, 0, 0});
  append_chunk(&file, "PLTE", palette);
  if (!transparency.empty()) append_chunk(&file, "tRNS", transparency);
  // One block that is not packed: length, its complement, the filter and the pixels.
  append_chunk(&file, "IDAT", {0x78, 0x01, 1, 5, 0, 0xFA, 0xFF, 0, 0, 1, 2, 255, 0, 0, 0, 0});
  append_chunk(&file, "IEND", {});
  return file;
}

Bytes decode_row(const Bytes& file) {
  Image image;
  if (!decode(file, file.size(), PF_RGBA_U8, &image)) return {};
  return Bytes(image.u8_ptr, image.u8_ptr + 16);
}

TEST(PngPalette, ColoursThatItLacksAreBlack) {
  const Bytes expected = {10, 20, 30, 255, 40, 50, 60, 255, 0, 0, 0, 255, 0, 0, 0, 255};
  EXPECT_EQ(decode_row(make_row({10, 20, 30, 40, 50, 60})), expected);
}

TEST(PngPalette, TransparenciesStayWithTheirColours) {
  const Bytes expected = {10, 20, 30, 7, 40, 50, 60, 8, 0, 0, 0, 255, 0, 0, 0, 255};
  EXPECT_EQ(decode_row(make_row({10, 20, 30, 40, 50, 60}, {7, 8})), expected);
}

TEST(PngPalette, AFileWithMoreTransparenciesThanColoursIsRefused) {
  EXPECT_EQ(decode_row(make_row({10, 20, 30, 40, 50, 60}, {7, 8, 9})), Bytes());
}

TEST(PngPalette, AFileWithoutAColourIsRefused) { EXPECT_EQ(decode_row(make_row({})), Bytes()); }

TEST(PngPalette, OtherFilesStayAsTheyAre) {
  Bytes filled;
  const Bytes short_palette = make_row({1, 2, 3});
  EXPECT_TRUE(detail::fill_png_palette(short_palette.data(), short_palette.size(), &filled));
  for (const char* name : {"img/png/basn6a08.png", "img/jpg/hopper.jpg"}) {
    const Bytes file = read_bytes(data_path(name));
    ASSERT_FALSE(file.empty()) << name;
    EXPECT_FALSE(detail::fill_png_palette(file.data(), file.size(), &filled)) << name;
  }
}

TEST(PngPalette, EveryTruncationIsSafe) {
  const Bytes file = make_row({10, 20, 30, 40, 50, 60}, {7, 8});
  for (std::size_t length = 0; length <= file.size(); ++length) expect_safe(file, length, "row");
}

}  // namespace
}  // namespace orv::test
