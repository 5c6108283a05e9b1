#include <orv/image/image.h>

#include <orv/math/math.h>
#include <orv/math/vec3.h>
#include <orv/math/vec4.h>
#include <orv/math/vec_u8.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace orv {
namespace {

using Bytes = std::vector<unsigned char>;

std::size_t count_points(const Image& image, unsigned char value) {
  unsigned char* end = image.u8_ptr + image.get_u8_capacity();
  return static_cast<std::size_t>(std::count(image.u8_ptr, end, value));
}

// ---- copies ----

struct CopyRow {
  PIXEL_FORMAT format;
  bool (Image::*copy)(const void*);
};
constexpr CopyRow COPIES[] = {
    {PF_RGB_U8, &Image::update_pixmap_rgb_u8},   {PF_RGBA_U8, &Image::update_pixmap_rgba_u8},
    {PF_R_U8, &Image::update_pixmap_r_u8},       {PF_RG_U8, &Image::update_pixmap_rg_u8},
    {PF_RGB_F32, &Image::update_pixmap_rgb_f32}, {PF_RGBA_F32, &Image::update_pixmap_rgba_f32},
    {PF_R_F32, &Image::update_pixmap_r_f32}};

TEST(ImageFill, CopiesOneSliceOfPixels) {
  for (const CopyRow& row : COPIES) {
    Image image;
    ASSERT_TRUE(image.create(3, 2, 2, row.format, true, true));
    const std::size_t slice = 6 * image.get_pixel_format_size();
    Bytes pixels(2 * slice);
    for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<unsigned char>(i + 1);
    EXPECT_TRUE((image.*row.copy)(pixels.data()));
    const void* store = image.u8_ptr ? static_cast<void*>(image.u8_ptr) : image.f32_ptr;
    EXPECT_EQ(std::memcmp(store, pixels.data(), slice), 0) << row.format;
    EXPECT_EQ(static_cast<const unsigned char*>(store)[slice], 0) << row.format;
    EXPECT_FALSE((image.*row.copy)(nullptr));
    image.cleanup();
    EXPECT_FALSE((image.*row.copy)(pixels.data()));
  }
}

TEST(ImageFill, CopyOfLargerPixelsStopsAtTheBlock) {
  Image image;
  ASSERT_TRUE(image.create(2, 2, 1, PF_RGB_U8, true, true));
  const Bytes pixels(16, 5);
  EXPECT_TRUE(image.update_pixmap_rgba_u8(pixels.data()));
  EXPECT_EQ(count_points(image, 5), 12u);
}

// ---- colours ----

TEST(ImageFill, ColoursFillAllPixelsOfOneSlice) {
  Image image;
  for (const unsigned int size : {1u, 7u, 300u}) {  // within and beyond a copied run
    ASSERT_TRUE(image.create(size, 3, 2, PF_RGB_U8, true, true));
    EXPECT_TRUE(image.fill_color_rgb_u8(1, 2, 3));
    for (std::size_t i = 0; i < std::size_t{size} * 9; ++i) ASSERT_EQ(image.u8_ptr[i], i % 3 + 1);
    EXPECT_EQ(image.u8_ptr[std::size_t{size} * 9], 0);
    ASSERT_TRUE(image.create(size, 3, 1, PF_RGBA_F32, true, true));
    EXPECT_TRUE(image.fill_color_rgba_f32(1, 2, 3, 4));
    for (std::size_t i = 0; i < std::size_t{size} * 12; ++i) {
      ASSERT_EQ(image.f32_ptr[i], static_cast<float>(i % 4 + 1));
    }
  }
}

TEST(ImageFill, EachColourHasItsStride) {
  Image image;
  ASSERT_TRUE(image.create(2, 1, 1, PF_RGBA_U8, true, true));
  EXPECT_TRUE(image.fill_color_rgba_u8(1, 2, 3, 4));
  EXPECT_EQ(image.u8_ptr[7], 4);
  EXPECT_TRUE(image.fill_color_rg_u8(8, 9));
  EXPECT_EQ(image.u8_ptr[3], 9);
  EXPECT_EQ(image.u8_ptr[4], 1);
  EXPECT_TRUE(image.fill_color_r_u8(7));
  EXPECT_EQ(image.u8_ptr[1], 7);
  EXPECT_EQ(image.u8_ptr[2], 8);
  EXPECT_FALSE(image.fill_color_rgb_f32(1, 1, 1));
  ASSERT_TRUE(image.create(1, 1, 1, PF_RGB_F32, true, true));
  EXPECT_TRUE(image.fill_color_rgb_f32(1, 2, 3));
  EXPECT_EQ(image.f32_ptr[2], 3.0f);
}

TEST(ImageFill, ColourOfLargerPixelsStopsAtTheBlock) {
  Image image;
  ASSERT_TRUE(image.create(2, 2, 1, PF_R_U8, true, true));
  EXPECT_TRUE(image.fill_color_rgba_u8(1, 1, 1, 1));
  EXPECT_EQ(count_points(image, 1), 4u);
}

TEST(ImageFill, ColoursNeedAStore) {
  Image image;
  image.create(2, 2, 1, PF_RGBA_U8, false, false);
  unsigned char borrowed[16] = {};
  image.codec_pixels = borrowed;
  EXPECT_FALSE(image.fill_color_rgba_u8(1, 1, 1, 1));
  EXPECT_EQ(borrowed[0], 0);
}

// ---- noise ----

TEST(ImageFill, NoiseDrawsTheDescribedPoints) {
  Image image;
  ASSERT_TRUE(image.create(40, 30, 1, PF_R_U8, true, true));
  ASSERT_TRUE(image.fill_with_noise_r_u8(100, 3, 200, 12345));
  Bytes expected(1200, 3);
  Math::srnd(12345);
  for (int i = 0; i < 100; ++i) {
    const int x = static_cast<int>(Math::rnd(0, 40));
    const int y = static_cast<int>(Math::rnd(0, 30));
    expected[static_cast<std::size_t>(x + 40 * y)] = 200;
  }
  EXPECT_EQ(std::memcmp(image.u8_ptr, expected.data(), expected.size()), 0);
}

TEST(ImageFill, NoiseDrawsNoMorePointsThanPixels) {
  // With more points the generator would be further on.
  Image image;
  ASSERT_TRUE(image.create(4, 4, 1, PF_R_U8, true, true));
  ASSERT_TRUE(image.fill_with_noise_r_u8(1000000, 0, 1, 7));
  const float next = Math::rnd(0, 1);
  Math::srnd(7);
  for (int i = 0; i < 2 * 16; ++i) Math::rnd(0, 1);
  EXPECT_EQ(next, Math::rnd(0, 1));
  EXPECT_LE(count_points(image, 1), 16u);
  EXPECT_GE(count_points(image, 1), 1u);
}

TEST(ImageFill, NoiseDrawsNoMorePointsThanTheBlockHas) {
  Image image;
  ASSERT_TRUE(image.create(4, 4, 1, PF_R_U8, true, true));
  image.create(0xFFFFFFFFu, 0xFFFFFFFFu, 1, PF_R_U8, false, false);
  ASSERT_TRUE(image.fill_with_noise_r_u8(0xFFFFFFFFu, 0, 1, 7));
  const float next = Math::rnd(0, 1);
  Math::srnd(7);
  for (int i = 0; i < 2 * 16; ++i) Math::rnd(0, 1);
  EXPECT_EQ(next, Math::rnd(0, 1));
}

TEST(ImageFill, NoiseFacadeScalesColoursToBytes) {
  for (const PIXEL_FORMAT format : {PF_RGB_U8, PF_BGR_U8, PF_RGBA_U8, PF_BGRA_U8}) {
    Image image;
    ASSERT_TRUE(image.create(5, 5, 1, format, true, true));
    ASSERT_TRUE(image.fill_with_noise(0, vec4(0.5f, 1.5f, 0, 1), vec4(1, 1, 1, 1), 1));
    EXPECT_EQ(image.u8_ptr[0], 127);
    EXPECT_EQ(image.u8_ptr[1], 126);  // wrapped, not clamped
    EXPECT_EQ(image.u8_ptr[2], 0);
  }
}

TEST(ImageFill, NoiseFacadeServesFloats) {
  for (const PIXEL_FORMAT format : {PF_RGB_F32, PF_RGBA_F32}) {
    Image image;
    ASSERT_TRUE(image.create(3, 1, 1, format, true, true));
    ASSERT_TRUE(image.fill_with_noise(50, vec4(0.5f, 2, 3, 4), vec4(9, 9, 9, 9), 1));
    const std::size_t channels = image.get_pixel_format_num_channels();
    std::size_t points = 0;
    for (std::size_t i = 0; i < 3; ++i) points += image.f32_ptr[i * channels] == 9.0f;
    EXPECT_GE(points, 1u);
  }
}

TEST(ImageFill, NoiseFacadeRefusesOneAndTwoChannelsThatTheOperationsServe) {
  const vec4 white(1, 1, 1, 1);
  Image image;
  ASSERT_TRUE(image.create(2, 2, 1, PF_R_U8, true, true));
  EXPECT_FALSE(image.fill_with_noise(1, white, white, 1));
  EXPECT_EQ(image.u8_ptr[0], 0);
  EXPECT_TRUE(image.fill_with_noise_r_u8(1, 4, 4, 1));
  EXPECT_EQ(image.u8_ptr[0], 4);
  ASSERT_TRUE(image.create(2, 2, 1, PF_RG_U8, true, true));
  EXPECT_FALSE(image.fill_with_noise(1, white, white, 1));
  EXPECT_TRUE(image.fill_with_noise_rg_u8(1, vec2u8(4, 5), vec2u8(4, 5), 1));
  EXPECT_EQ(image.u8_ptr[7], 5);
  for (const PIXEL_FORMAT format : {PF_R_F32, PF_UNKNOWN, PF_RGBA_F16}) {
    image.create(1, 1, 1, format, false, false);
    EXPECT_FALSE(image.fill_with_noise(1, white, white, 1));
  }
}

TEST(ImageFill, NoiseOperationsHaveTheirStride) {
  Image image;
  ASSERT_TRUE(image.create(1, 2, 1, PF_RGBA_U8, true, true));
  EXPECT_TRUE(image.fill_with_noise_rgba_u8(0, vec4u8(1, 2, 3, 4), vec4u8(), 1));
  EXPECT_EQ(image.u8_ptr[7], 4);
  EXPECT_TRUE(image.fill_with_noise_rgb_u8(0, vec3u8(9, 8, 7), vec3u8(), 1));
  EXPECT_EQ(image.u8_ptr[5], 7);
  EXPECT_EQ(image.u8_ptr[6], 3);
  EXPECT_FALSE(image.fill_with_noise_rgb_f32(0, vec3(1, 1, 1), vec3(1, 1, 1), 1));
  EXPECT_FALSE(image.fill_with_noise_rgba_f32(0, vec4(), vec4(), 1));
}

TEST(ImageFill, NoiseOfLargerPixelsStopsAtTheBlock) {
  Image image;
  ASSERT_TRUE(image.create(8, 8, 1, PF_R_U8, true, true));
  EXPECT_TRUE(image.fill_with_noise_rgba_u8(64, vec4u8(1, 1, 1, 1), vec4u8(2, 2, 2, 2), 3));
  EXPECT_EQ(count_points(image, 1) + count_points(image, 2), 64u);
}

TEST(ImageFill, NoiseOfAnEmptyImageIsTrue) {
  Image image;
  ASSERT_TRUE(image.create(0, 0, 1, PF_RGBA_U8, true, true));
  EXPECT_TRUE(image.fill_with_noise(100, vec4(), vec4(), 1));
  image.cleanup();
  EXPECT_FALSE(image.fill_with_noise(100, vec4(), vec4(), 1));
}

}  // namespace
}  // namespace orv
