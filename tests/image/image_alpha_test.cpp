#include <orv/image/image.h>

#include <orv/math/vec4.h>

#include <gtest/gtest.h>

#include <limits>

namespace orv {
namespace {

void make_bytes(Image* image, unsigned int width, PIXEL_FORMAT format,
                std::initializer_list<unsigned char> bytes) {
  ASSERT_TRUE(image->create(width, 1, 1, format, true, true));
  std::copy(bytes.begin(), bytes.end(), image->u8_ptr);
}

void make_floats(Image* image, unsigned int width, PIXEL_FORMAT format,
                 std::initializer_list<float> floats) {
  ASSERT_TRUE(image->create(width, 1, 1, format, true, true));
  std::copy(floats.begin(), floats.end(), image->f32_ptr);
}

// ---- first channel ----

TEST(ImageAlpha, GetRReadsTheFirstChannelOfEveryFormat) {
  for (const PIXEL_FORMAT format :
       {PF_RGB_U8, PF_BGR_U8, PF_RGBA_U8, PF_BGRA_U8, PF_R_U8, PF_RG_U8}) {
    Image image;
    ASSERT_TRUE(image.create(2, 1, 1, format, true, true));
    image.u8_ptr[image.get_pixel_format_size()] = 51;
    EXPECT_EQ(image.get_r(1), 51 / 255.0f) << format;
  }
  for (const PIXEL_FORMAT format : {PF_RGB_F32, PF_RGBA_F32, PF_R_F32}) {
    Image image;
    ASSERT_TRUE(image.create(2, 1, 1, format, true, true));
    image.f32_ptr[image.get_pixel_format_num_channels()] = 0.75f;
    EXPECT_EQ(image.get_r(1), 0.75f) << format;
  }
}

TEST(ImageAlpha, GetRReads16BitFloatFormatsAsFloats) {
  float floats[8] = {0, 1, 2, 3, 4, 5, 6, 7};
  Image image;
  image.set_f32_ptr(floats);
  image.create(2, 1, 1, PF_RGB_F16, false, false);
  EXPECT_EQ(image.get_r(1), 3.0f);
  image.create(2, 1, 1, PF_RGBA_F16, false, false);
  EXPECT_EQ(image.get_r(1), 4.0f);
  image.create(2, 1, 1, PF_R_F16, false, false);
  EXPECT_EQ(image.get_r(1), 1.0f);
}

TEST(ImageAlpha, GetRReadsBorrowedBytes) {
  unsigned char borrowed[2] = {0, 255};
  Image image;
  image.create(2, 1, 1, PF_R_U8, false, false);
  image.codec_pixels = borrowed;
  EXPECT_EQ(image.get_r(1), 1.0f);
}

TEST(ImageAlpha, GetROfTheIndexBehindTheLastIsNotRefused) {
  Image image;
  make_bytes(&image, 2, PF_R_U8, {255, 255});
  EXPECT_EQ(image.get_r(2), 0.0f);
  EXPECT_EQ(image.get_r(3), -1.0f);
}

TEST(ImageAlpha, GetRWithoutAStoreOrAFormatIsMinusOne) {
  Image image;
  EXPECT_EQ(image.get_r(0), -1.0f);
  image.create(2, 1, 1, PF_RGB_U8, false, false);
  EXPECT_EQ(image.get_r(0), -1.0f);
  image.create(2, 1, 1, PF_RGB_F32, false, false);
  EXPECT_EQ(image.get_r(0), -1.0f);
  make_bytes(&image, 1, PF_R_U8, {9});
  image.create(1, 1, 1, PF_R_U32, false, false);
  EXPECT_EQ(image.get_r(0), -1.0f);
}

// ---- smooth ----

TEST(ImageAlpha, SmoothTakesTheMeanBelowTheThresholdOfBytes) {
  Image image;
  make_bytes(&image, 3, PF_RGBA_U8, {10, 11, 13, 0, 99, 100, 101, 0, 200, 200, 200, 0});
  ASSERT_TRUE(image.update_alpha_channel_smooth(100.9f));
  EXPECT_EQ(image.u8_ptr[3], 11);   // 34 / 3 in integers
  EXPECT_EQ(image.u8_ptr[7], 255);  // the mean is not below 100
  EXPECT_EQ(image.u8_ptr[11], 255);
  ASSERT_TRUE(image.update_alpha_channel_smooth(256.0f));  // wraps to 0
  EXPECT_EQ(image.u8_ptr[3], 255);
  ASSERT_TRUE(image.update_alpha_channel_smooth(std::numeric_limits<float>::quiet_NaN()));
  EXPECT_EQ(image.u8_ptr[3], 255);
}

TEST(ImageAlpha, SmoothTakesTheMeanBelowTheThresholdOfFloats) {
  Image image;
  make_floats(&image, 2, PF_RGBA_F32, {0.1f, 0.2f, 0.3f, 0, 0.5f, 0.5f, 0.5f, 0});
  ASSERT_TRUE(image.update_alpha_channel_smooth(0.5f));
  EXPECT_EQ(image.f32_ptr[3], (0.1f + 0.2f + 0.3f) / 3.0f);
  EXPECT_EQ(image.f32_ptr[7], 1.0f);
}

TEST(ImageAlpha, SmoothWorksOnBorrowedBytes) {
  unsigned char borrowed[4] = {3, 3, 3, 0};
  Image image;
  image.create(1, 1, 1, PF_BGRA_U8, false, false);
  image.codec_pixels = borrowed;
  ASSERT_TRUE(image.update_alpha_channel_smooth(200));
  EXPECT_EQ(image.get_u8_ptr()[3], 3);
}

// ---- binary ----

TEST(ImageAlpha, BinaryClearsWhatIsNearTheKeyInBytes) {
  Image image;
  make_bytes(&image, 3, PF_RGBA_U8, {10, 20, 30, 9, 12, 18, 32, 9, 13, 20, 30, 9});
  ASSERT_TRUE(image.update_alpha_channel_binary(vec4(10, 20, 30, 0), 2));
  EXPECT_EQ(image.u8_ptr[3], 0);
  EXPECT_EQ(image.u8_ptr[7], 0);
  EXPECT_EQ(image.u8_ptr[11], 255);
}

TEST(ImageAlpha, BinaryCutsTheKeyToItsLowByteUnscaled) {
  Image image;
  make_bytes(&image, 2, PF_RGBA_U8, {1, 1, 1, 9, 0, 0, 0, 9});
  ASSERT_TRUE(image.update_alpha_channel_binary(vec4(257.5f, 1.9f, 1, 0), 0));
  EXPECT_EQ(image.u8_ptr[3], 0);
  EXPECT_EQ(image.u8_ptr[7], 255);
}

TEST(ImageAlpha, BinaryComparesFloatsAsTheyAre) {
  Image image;
  make_floats(&image, 2, PF_RGBA_F32, {0.5f, 0.5f, 0.5f, 9, 0.75f, 0.5f, 0.5f, 9});
  ASSERT_TRUE(image.update_alpha_channel_binary(vec4(0.5f, 0.5f, 0.5f, 0), 0.125f));
  EXPECT_EQ(image.f32_ptr[3], 0.0f);
  EXPECT_EQ(image.f32_ptr[7], 1.0f);
}

TEST(ImageAlpha, AlphaOperationsTakeFourChannelsOnly) {
  for (const PIXEL_FORMAT format : {PF_RGB_U8, PF_RG_U8, PF_R_U8, PF_RGB_F32, PF_R_F32}) {
    Image image;
    ASSERT_TRUE(image.create(1, 1, 1, format, true, true));
    EXPECT_FALSE(image.update_alpha_channel_smooth(1));
    EXPECT_FALSE(image.update_alpha_channel_binary(vec4(), 1));
  }
  Image image;
  image.create(1, 1, 1, PF_RGBA_U8, false, false);
  EXPECT_FALSE(image.update_alpha_channel_smooth(1));
  EXPECT_FALSE(image.update_alpha_channel_binary(vec4(), 1));
}

// ---- opacity map ----

TEST(ImageAlpha, OpacityGoesIntoTheLastChannel) {
  Image map;
  make_bytes(&map, 2, PF_R_U8, {255, 51});
  for (const PIXEL_FORMAT format : {PF_RGBA_U8, PF_BGRA_U8, PF_RG_U8}) {
    Image image;
    ASSERT_TRUE(image.create(2, 1, 1, format, true, true));
    ASSERT_TRUE(image.inject_opacity_map_to_alpha_channel(&map));
    const unsigned int size = image.get_pixel_format_size();
    EXPECT_EQ(image.u8_ptr[size - 1], 255);
    EXPECT_EQ(image.u8_ptr[2 * size - 1],
              static_cast<unsigned char>(static_cast<double>(51 / 255.0f) * 255.0));
    EXPECT_EQ(image.u8_ptr[0], 0);
  }
  Image floats;
  ASSERT_TRUE(floats.create(2, 1, 1, PF_RGBA_F32, true, true));
  ASSERT_TRUE(floats.inject_opacity_map_to_alpha_channel(&map));
  EXPECT_EQ(floats.f32_ptr[7], 51 / 255.0f);
  floats.create(2, 1, 1, PF_RGBA_F16, false, false);
  map.u8_ptr[1] = 102;
  ASSERT_TRUE(floats.inject_opacity_map_to_alpha_channel(&map));
  EXPECT_EQ(floats.f32_ptr[7], 102 / 255.0f);
}

TEST(ImageAlpha, AMapWithoutPixelsCountsAsMinusOne) {
  Image map, bytes, floats;
  map.create(1, 1, 1, PF_R_U8, false, false);
  ASSERT_TRUE(bytes.create(1, 1, 1, PF_RGBA_U8, true, true));
  ASSERT_TRUE(floats.create(1, 1, 1, PF_RGBA_F32, true, true));
  ASSERT_TRUE(bytes.inject_opacity_map_to_alpha_channel(&map));
  ASSERT_TRUE(floats.inject_opacity_map_to_alpha_channel(&map));
  EXPECT_EQ(bytes.u8_ptr[3], 1);  // -255 wrapped
  EXPECT_EQ(floats.f32_ptr[3], -1.0f);
}

TEST(ImageAlpha, OpacityNeedsAMapOfTheSameSizeAndAPlace) {
  Image image, map;
  ASSERT_TRUE(image.create(2, 2, 1, PF_RGBA_U8, true, true));
  EXPECT_FALSE(image.inject_opacity_map_to_alpha_channel(nullptr));
  ASSERT_TRUE(map.create(2, 1, 1, PF_R_U8, true, true));
  EXPECT_FALSE(image.inject_opacity_map_to_alpha_channel(&map));
  ASSERT_TRUE(map.create(1, 2, 1, PF_R_U8, true, true));
  EXPECT_FALSE(image.inject_opacity_map_to_alpha_channel(&map));
  ASSERT_TRUE(map.create(2, 2, 1, PF_R_U8, true, true));
  EXPECT_TRUE(image.inject_opacity_map_to_alpha_channel(&map));
  for (const PIXEL_FORMAT format : {PF_RGB_U8, PF_R_U8, PF_RGB_F32, PF_R_F32}) {
    ASSERT_TRUE(image.create(2, 2, 1, format, true, true));
    EXPECT_FALSE(image.inject_opacity_map_to_alpha_channel(&map)) << format;
  }
  Image empty;
  empty.create(2, 2, 1, PF_RGBA_U8, false, false);
  EXPECT_FALSE(empty.inject_opacity_map_to_alpha_channel(&map));
}

TEST(ImageAlpha, AnEmptyImageWithAStoreIsTrueAtOnce) {
  Image image, map;
  ASSERT_TRUE(image.create(0, 0, 1, PF_RGBA_U8, true, true));
  EXPECT_TRUE(image.update_alpha_channel_smooth(1));
  EXPECT_TRUE(image.update_alpha_channel_binary(vec4(), 1));
  EXPECT_TRUE(image.inject_opacity_map_to_alpha_channel(&map));
}

}  // namespace
}  // namespace orv
