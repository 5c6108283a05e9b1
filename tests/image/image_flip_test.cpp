#include <orv/image/image.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <vector>

namespace orv {
namespace {

using Bytes = std::vector<unsigned char>;

constexpr PIXEL_FORMAT FLIPPED[] = {PF_RGB_U8, PF_BGR_U8, PF_RGBA_U8, PF_BGRA_U8,
                                    PF_R_U8,   PF_RG_U8,  PF_RGB_F32, PF_RGBA_F32};

unsigned char* store_of(const Image& image) {
  return image.u8_ptr ? image.u8_ptr : reinterpret_cast<unsigned char*>(image.f32_ptr);
}

Bytes make_picture(Image* image, unsigned int width, unsigned int height, PIXEL_FORMAT format) {
  EXPECT_TRUE(image->create(width, height, 1, format, true, true));
  Bytes bytes(std::size_t{width} * height * image->get_pixel_format_size());
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i * 31);
  std::memcpy(store_of(*image), bytes.data(), bytes.size());
  return bytes;
}

/// The described swaps, pixel by pixel.
Bytes swapped(Bytes bytes, std::size_t width, std::size_t height, std::size_t size, bool vertical) {
  const auto swap_pixels = [&](std::size_t a, std::size_t b) {
    for (std::size_t i = 0; i < size; ++i) std::swap(bytes[a * size + i], bytes[b * size + i]);
  };
  for (std::size_t y = 0; y < (vertical ? height / 2 : height); ++y) {
    for (std::size_t x = 0; x < (vertical ? width : width / 2); ++x) {
      swap_pixels(x + width * y, vertical ? x + width * (height - y - 1) : (y + 1) * width - x - 1);
    }
  }
  return bytes;
}

TEST(ImageFlip, SwapsRowsAndColumnsOfEveryFormat) {
  for (const PIXEL_FORMAT format : FLIPPED) {
    for (const unsigned int width : {1u, 4u, 7u}) {
      for (const unsigned int height : {2u, 5u}) {
        Image image;
        const Bytes before = make_picture(&image, width, height, format);
        const unsigned int size = image.get_pixel_format_size();
        ASSERT_TRUE(image.flip_vertical());
        Bytes expected = swapped(before, width, height, size, true);
        EXPECT_EQ(std::memcmp(store_of(image), expected.data(), expected.size()), 0) << format;
        ASSERT_TRUE(image.flip_horizontal());
        expected = swapped(expected, width, height, size, false);
        EXPECT_EQ(std::memcmp(store_of(image), expected.data(), expected.size()), 0) << format;
      }
    }
  }
}

TEST(ImageFlip, OneRowTurnsIntoItself) {
  Image image;
  const Bytes before = make_picture(&image, 5, 1, PF_RGB_U8);
  EXPECT_TRUE(image.flip_vertical());
  EXPECT_EQ(std::memcmp(image.u8_ptr, before.data(), before.size()), 0);
}

TEST(ImageFlip, OneRowWithoutAStoreNeedsBorrowedPixels) {
  Image image;
  image.create(2, 1, 1, PF_RGB_U8, false, false);
  EXPECT_FALSE(image.flip_vertical());
  EXPECT_FALSE(image.flip_horizontal());
  unsigned char borrowed[6] = {1, 2, 3, 4, 5, 6};
  image.codec_pixels = borrowed;
  EXPECT_TRUE(image.flip_vertical());
  EXPECT_EQ(std::memcmp(image.get_u8_ptr(), borrowed, 6), 0);
}

TEST(ImageFlip, NoRowsAreFlippedAtOnce) {
  Image image;
  ASSERT_TRUE(image.create(4, 0, 1, PF_RGBA_U8, true, true));
  EXPECT_TRUE(image.flip_horizontal());
  EXPECT_TRUE(image.flip_vertical());
}

TEST(ImageFlip, BorrowedBytesAreCopiedBeforeTheyAreFlipped) {
  for (const PIXEL_FORMAT format : {PF_RGB_U8, PF_RGBA_U8, PF_RG_U8, PF_R_U8}) {
    Bytes borrowed(16);
    for (std::size_t i = 0; i < 16; ++i) borrowed[i] = static_cast<unsigned char>(i);
    const Bytes before = borrowed;
    Image image;
    image.create(2, 2, 7, format, false, false);
    image.codec_pixels = borrowed.data();
    ASSERT_TRUE(image.flip_vertical()) << format;
    const unsigned int size = image.get_pixel_format_size();
    EXPECT_EQ(borrowed, before);
    EXPECT_EQ(image.codec_pixels, borrowed.data());
    ASSERT_NE(image.u8_ptr, nullptr);
    EXPECT_TRUE(image.owns_pixels);
    EXPECT_EQ(image.depth, 1u);
    EXPECT_EQ(image.u8_ptr[0], 2 * size);
    EXPECT_EQ(image.pixel_format, format);
  }
}

TEST(ImageFlip, FloatsAreNeverTakenFromBorrowedBytes) {
  unsigned char borrowed[64] = {};
  for (const PIXEL_FORMAT format : {PF_RGB_F32, PF_RGBA_F32}) {
    Image image;
    image.create(2, 2, 1, format, false, false);
    image.codec_pixels = borrowed;
    EXPECT_FALSE(image.flip_vertical());
    EXPECT_FALSE(image.flip_horizontal());
  }
}

TEST(ImageFlip, OneChannelFloatsAndStorelessFormatsAreRefused) {
  Image image;
  ASSERT_TRUE(image.create(2, 2, 1, PF_R_F32, true, true));
  EXPECT_FALSE(image.flip_vertical());
  EXPECT_FALSE(image.flip_horizontal());
  for (const PIXEL_FORMAT format : {PF_UNKNOWN, PF_RGB_F16, PF_R_U32}) {
    image.create(2, 2, 1, format, false, false);
    EXPECT_FALSE(image.flip_vertical());
    EXPECT_FALSE(image.flip_horizontal());
  }
}

TEST(ImageFlip, WhereNothingIsSwappedTheSizeOfTheBlockDoesNotMatter) {
  Image image;
  ASSERT_TRUE(image.create(4, 1, 1, PF_R_U8, true, true));
  image.create(4, 1, 1, PF_RGBA_U8, false, false);
  EXPECT_TRUE(image.flip_vertical());
  EXPECT_FALSE(image.flip_horizontal());
  image.create(4, 0, 1, PF_RGBA_U8, false, false);
  EXPECT_TRUE(image.flip_horizontal());
}

TEST(ImageFlip, AsManyEmptyRowsAsThereCanBeAreNoWork) {
  Image image;
  ASSERT_TRUE(image.create(0, 0xFFFFFFFFu, 1, PF_RGB_U8, true, true));
  const auto start = std::chrono::steady_clock::now();
  EXPECT_TRUE(image.flip_vertical());
  EXPECT_TRUE(image.flip_horizontal());
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

TEST(ImageFlip, ABlockTooSmallForTheSizesIsLeftAlone) {
  Image image;
  ASSERT_TRUE(image.create(2, 2, 1, PF_R_U8, true, true));
  image.create(100, 100, 1, PF_RGBA_U8, false, false);
  EXPECT_FALSE(image.flip_vertical());
  EXPECT_FALSE(image.flip_horizontal());
}

}  // namespace
}  // namespace orv
