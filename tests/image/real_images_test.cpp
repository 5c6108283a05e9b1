// Real pictures of every format through the core codec: sizes, pixels, and spoiled files.
#include <orv/image/image.h>
#include <orv/image/image_codec_stb.h>

#include "image/decode_safely.h"
#include "image/test_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>

namespace orv {
namespace {

using test::Bytes;
using test::decode;

struct Picture {
  const char* name;
  unsigned int width;
  unsigned int height;
  std::uint32_t crc;
};
constexpr Picture PICTURES[] = {
#define ORV_PICTURE(name, width, height, crc) {name, width, height, crc},
#include "image/real_images.inc"
#undef ORV_PICTURE
};

void expect_picture(const std::string& path, const Picture& picture) {
  ImageCodecStb codec;
  Image image;
  const bool is_loaded = codec.load_image_from_file(&image, path.c_str(), false, PF_RGBA_U8);
  EXPECT_EQ(is_loaded, picture.width > 0) << path;
  if (!is_loaded) return;
  EXPECT_EQ(image.width, picture.width) << path;
  EXPECT_EQ(image.height, picture.height) << path;
  EXPECT_EQ(test::crc32(image.u8_ptr, image.get_u8_capacity()), picture.crc) << path;
}

TEST(RealImages, SamplesDecodeToTheirPixels) {
  int count = 0;
  for (const Picture& picture : PICTURES) {
    const std::string path = test::data_path(picture.name);
    if (test::read_bytes(path).empty()) continue;
    expect_picture(path, picture);
    ++count;
  }
  EXPECT_EQ(count, 49);
}

TEST(RealImages, AllPicturesDecodeToTheirPixels) {
  if (test::extra_path("").empty()) GTEST_SKIP() << "no folder of real files";
  for (const Picture& picture : PICTURES) {
    expect_picture(test::extra_path(picture.name), picture);
  }
}

// ---- spoiled files ----

/// Too long to be cut at every length: that is done to small ones.
constexpr const char* CUT[] = {
    "img/jpg/hopper.jpg",          "img/jpg/progressive_cat.jpg",    "img/tga/200x32_p_tl_rle.tga",
    "img/tga/200x32_l_bl_raw.tga", "img/tga/200x32_rgba_tl_rle.tga", "img/psd/rgba.psd"};

TEST(RealImages, TruncationsInStepsAreSafe) {
  for (const char* name : CUT) {
    const Bytes file = test::read_bytes(test::data_path(name));
    ASSERT_FALSE(file.empty()) << name;
    // Headers byte by byte, long data in steps.
    const std::size_t step = std::max<std::size_t>(1, file.size() / 500);
    for (std::size_t length = 0; length <= file.size(); length += length < 256 ? 1 : step) {
      test::expect_safe(file, length, name);
    }
  }
}

TEST(RealImages, ColoursThatAPaletteLacksAreBlack) {
  // Four bits a pixel and a palette of one colour: the pixels name the others too.
  Bytes bmp = {'B',  'M',  0,  0, 0, 0, 0, 0, 0, 0, 29, 0, 0, 0,  // pixels at 29
               12,   0,    0,  0, 4, 0, 1, 0, 1, 0, 4,  0,        // 4 by 1
               30,   20,   10,                                    // blue, green, red
               0x01, 0xF0, 0,  0};
  Image image;
  ASSERT_TRUE(decode(bmp, bmp.size(), PF_RGB_U8, &image));
  const Bytes expected = {10, 20, 30, 0, 0, 0, 0, 0, 0, 10, 20, 30};
  EXPECT_TRUE(std::equal(expected.begin(), expected.end(), image.u8_ptr));
  bmp[10] = 26;  // no colour at all
  EXPECT_FALSE(decode(bmp, bmp.size(), PF_RGB_U8, &image));
}

TEST(RealImages, EverySpoiledHeaderByteIsSafe) {
  for (const char* name : CUT) {
    const Bytes file = test::read_bytes(test::data_path(name));
    for (std::size_t at = 0; at < std::min<std::size_t>(file.size(), 128); ++at) {
      for (const int value : {0x00, 0x7F, 0xFF}) {
        Bytes spoiled = file;
        spoiled[at] = static_cast<unsigned char>(value);
        test::expect_safe(spoiled, spoiled.size(), name);
      }
    }
  }
}

TEST(RealImages, AHuffmanTableOfTooManyCodesIsRefused) {
  Bytes file = test::read_bytes(test::data_path("img/jpg/hopper.jpg"));
  Image image;
  ASSERT_TRUE(decode(file, file.size(), PF_RGB_U8, &image));
  std::size_t table = 2;
  while (table + 21 < file.size() && !(file[table] == 0xFF && file[table + 1] == 0xC4)) ++table;
  ASSERT_LT(table + 21, file.size());
  for (std::size_t i = 5; i < 21; ++i) file[table + i] = 255;  // 16 lengths of 255 codes
  EXPECT_FALSE(decode(file, file.size(), PF_RGB_U8, &image));
}

TEST(RealImages, AProgressivePictureOfManyScansEndsSoon) {
  // The scans of a good picture are repeated over and over behind a header that claims a large one.
  Bytes file = test::read_bytes(test::data_path("img/jpg/progressive_cat.jpg"));
  const auto is_frame = [&](std::size_t i) { return file[i] == 0xFF && file[i + 1] == 0xC2; };
  std::size_t frame = 0;
  while (frame + 9 < file.size() && !is_frame(frame)) ++frame;
  ASSERT_LT(frame + 9, file.size());
  file[frame + 5] = file[frame + 7] = 0x30;
  const Bytes scan(file.begin() + static_cast<std::ptrdiff_t>(file.size() / 2), file.end() - 2);
  for (int i = 0; i < 20; ++i) file.insert(file.end() - 2, scan.begin(), scan.end());
  const auto start = std::chrono::steady_clock::now();
  Image image;
  decode(file, file.size(), PF_RGB_U8, &image);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

}  // namespace
}  // namespace orv
