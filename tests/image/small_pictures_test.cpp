// Small pictures of every format that is read: whole, cut at every length, spoiled at every byte.
#include "image/small_pictures.h"

#include "image/decode_safely.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace orv {
namespace {

using test::Bytes;
using test::SmallPicture;

const std::vector<SmallPicture>& pictures() {
  static const std::vector<SmallPicture> made = test::make_small_pictures();
  return made;
}

/// Samples that other programs wrote, small enough to be cut at every length.
constexpr const char* SAMPLES[] = {
    "img/png/basn0g01.png",         "img/png/basn2c08.png",    "img/png/basi2c08.png",
    "img/png/basn3p08.png",         "img/png/basn4a08.png",    "img/png/basn6a08.png",
    "img/png/tbbn3p08.png",         "img/png/basn6a16.png",    "img/bmp/Info_1_Bit.bmp",
    "img/bmp/Info_4_Bit.bmp",       "img/bmp/Info_8_Bit.bmp",  "img/bmp/Info_R8_G8_B8.bmp",
    "img/bmp/Info_A8_R8_G8_B8.bmp", "img/bmp/V3_R5_G6_B5.bmp", "img/bmp/Info_R8_G8_B8_Top_Down.bmp",
    "img/gif/alpha_gif_a.gif",      "img/gif/interlaced.gif",  "img/hdr/rgbr4x4.hdr"};

/// Name and bytes of all of them.
template <typename Visit>
void for_each_file(Visit visit) {
  for (const SmallPicture& picture : pictures()) visit(picture.name, picture.file);
  for (const char* name : SAMPLES) {
    const Bytes file = test::read_bytes(test::data_path(name));
    ASSERT_FALSE(file.empty()) << name;
    visit(name, file);
  }
}

TEST(SmallPictures, AreDecodedToTheirPixels) {
  for (const SmallPicture& picture : pictures()) {
    Image image;
    ASSERT_TRUE(test::decode(picture.file, picture.file.size(), PF_RGB_U8, &image)) << picture.name;
    EXPECT_EQ(image.width, picture.width) << picture.name;
    EXPECT_EQ(image.height, picture.height) << picture.name;
    int largest = 0;
    for (unsigned int i = 0; i < image.width * image.height * 3; ++i) {
      const unsigned int pixel = i / 3;
      const int wanted =
          test::small_picture_channel(pixel % image.width, pixel / image.width, i % 3);
      largest = std::max(largest, std::abs(wanted - image.u8_ptr[i]));
    }
    EXPECT_LE(largest, picture.tolerance) << picture.name;
  }
}

TEST(SmallPictures, EveryTruncationIsSafe) {
  for_each_file([](const std::string& name, const Bytes& file) {
    for (std::size_t length = 0; length <= file.size(); ++length) {
      test::expect_safe(file, length, name);
    }
  });
}

TEST(SmallPictures, NoHeaderAloneIsAPicture) {
  for_each_file([](const std::string& name, const Bytes& file) {
    Image image;
    EXPECT_FALSE(test::decode(file, 8, PF_RGB_U8, &image)) << name;
  });
}

TEST(SmallPictures, EverySpoiledByteIsSafe) {
  for (const SmallPicture& picture : pictures()) {
    for (std::size_t at = 0; at < picture.file.size(); ++at) {
      for (const int change : {0x01, 0x80, 0xFF}) {
        Bytes spoiled = picture.file;
        spoiled[at] = static_cast<unsigned char>(spoiled[at] ^ change);
        test::expect_safe(spoiled, spoiled.size(), picture.name);
      }
    }
  }
}

// ---- memory ----

/// The pixels of a file while new blocks are filled with a byte; empty when it is refused.
Bytes decode_in_filled_memory(const Bytes& file, std::size_t length, int filling) {
  Image image;
  mallopt(M_PERTURB, filling);
  const bool is_decoded = test::decode(file, length, PF_RGB_U8, &image);
  mallopt(M_PERTURB, 0);
  return is_decoded ? Bytes(image.u8_ptr, image.u8_ptr + image.get_u8_capacity()) : Bytes();
}

bool can_fill_memory() {
  const bool can = mallopt(M_PERTURB, 1) == 1;
  mallopt(M_PERTURB, 0);
  return can;
}

/// A JPEG without the segments of a kind.
Bytes without_segments(const Bytes& jpeg, unsigned char marker) {
  Bytes left(jpeg.begin(), jpeg.begin() + 2);
  std::size_t at = 2;
  while (at + 4 < jpeg.size() && jpeg[at + 1] != 0xDA) {
    const std::size_t next = at + 2 + (std::size_t{jpeg[at + 2]} << 8 | jpeg[at + 3]);
    const auto begin = jpeg.begin() + static_cast<std::ptrdiff_t>(at);
    if (jpeg[at + 1] != marker) {
      left.insert(left.end(), begin, jpeg.begin() + static_cast<std::ptrdiff_t>(next));
    }
    at = next;
  }
  left.insert(left.end(), jpeg.begin() + static_cast<std::ptrdiff_t>(at), jpeg.end());
  return left;
}

TEST(SmallPictures, WhatACutFileLacksIsNotTakenFromOldMemory) {
  if (!can_fill_memory()) GTEST_SKIP() << "this allocator does not fill its blocks";
  for (const SmallPicture& picture : pictures()) {
    for (std::size_t length = 0; length < picture.file.size(); ++length) {
      EXPECT_EQ(decode_in_filled_memory(picture.file, length, 0x01),
                decode_in_filled_memory(picture.file, length, 0xA5))
          << picture.name << " cut at " << length;
    }
  }
}

TEST(SmallPictures, TablesThatAJpegLacksAreNotTakenFromOldMemory) {
  if (!can_fill_memory()) GTEST_SKIP() << "this allocator does not fill its blocks";
  constexpr unsigned char HUFFMAN = 0xC4, QUANTISATION = 0xDB;
  for (const SmallPicture& picture : pictures()) {
    if (picture.file[0] != 0xFF) continue;
    for (const unsigned char marker : {HUFFMAN, QUANTISATION}) {
      const Bytes file = without_segments(picture.file, marker);
      ASSERT_LT(file.size(), picture.file.size()) << picture.name;
      const Bytes first = decode_in_filled_memory(file, file.size(), 1);
      for (int filling = 2; filling < 256; ++filling) {
        ASSERT_EQ(decode_in_filled_memory(file, file.size(), filling), first) << picture.name;
      }
    }
  }
}

TEST(SmallPictures, BytesRepeatedFromNowhereAreZeros) {
  // The distance that code 30 stands for is 0 to the decoder.
  constexpr unsigned int SIDE = 64;
  const Bytes png = test::make_repeating_png(SIDE, SIDE * (SIDE + 1), 30);
  const Bytes black(std::size_t{SIDE} * SIDE * 3);
  for (int filling = 1; filling < 256; filling += 50) {
    EXPECT_EQ(decode_in_filled_memory(png, png.size(), filling), black) << filling;
  }
}

TEST(SmallPictures, DataThatSwellFarBeyondThePictureAreRefused) {
  Image image;
  const Bytes fitting = test::make_repeating_png(4, 4 * 5, 0);
  EXPECT_TRUE(test::decode(fitting, fitting.size(), PF_RGB_U8, &image));
  const Bytes swelling = test::make_repeating_png(4, std::size_t{16} << 20, 0);
  EXPECT_FALSE(test::decode(swelling, swelling.size(), PF_RGB_U8, &image));
}

TEST(SmallPictures, AChunkLongerThanTheFileIsRefused) {
  Bytes png = test::make_repeating_png(4, 4 * 5, 0);
  constexpr std::size_t DATA_LENGTH = 8 + 25;
  png[DATA_LENGTH] = 0x7F;
  Image image;
  EXPECT_FALSE(test::decode(png, png.size(), PF_RGB_U8, &image));
}

}  // namespace
}  // namespace orv
