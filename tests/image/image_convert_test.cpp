#include <orv/image/image.h>

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <tuple>

namespace orv {
namespace {

constexpr PIXEL_FORMAT FORMATS[] = {PF_RGB_U8,   PF_BGR_U8, PF_RGBA_U8, PF_BGRA_U8, PF_RGB_F32,
                                    PF_RGBA_F32, PF_R_F32,  PF_R_U8,    PF_RG_U8};

bool is_bytes(PIXEL_FORMAT format) {
  return format != PF_RGB_F32 && format != PF_RGBA_F32 && format != PF_R_F32;
}

/// Channel of a pixel as the store has it.
float stored(const Image& image, std::size_t pixel, std::size_t channel) {
  const std::size_t at = pixel * image.get_pixel_format_num_channels() + channel;
  return is_bytes(image.pixel_format) ? static_cast<float>(image.u8_ptr[at]) : image.f32_ptr[at];
}

class ImageConversion : public testing::TestWithParam<std::tuple<PIXEL_FORMAT, PIXEL_FORMAT>> {};

TEST_P(ImageConversion, FollowsTheChannelRules) {
  const auto [from, to] = GetParam();
  Image image;
  ASSERT_TRUE(image.create(5, 3, 1, from, true, true));
  const unsigned int channels = image.get_pixel_format_num_channels();
  for (std::size_t i = 0; i < 15 * channels; ++i) {
    if (is_bytes(from)) {
      image.u8_ptr[i] = static_cast<unsigned char>(i * 37);
    } else {
      image.f32_ptr[i] = static_cast<float>(i) * 0.11f - 0.5f;
    }
  }
  Image source(image);
  if (from == to) {
    EXPECT_FALSE(image.update_pixel_format(to));
    EXPECT_EQ(stored(image, 14, 0), stored(source, 14, 0));
    return;
  }
  ASSERT_TRUE(image.update_pixel_format(to));
  EXPECT_EQ(image.pixel_format, to);
  EXPECT_TRUE(image.owns_pixels);
  EXPECT_EQ(image.u8_ptr != nullptr, is_bytes(to));
  EXPECT_EQ(image.f32_ptr != nullptr, !is_bytes(to));
  for (std::size_t i = 0; i < 15; ++i) {
    for (std::size_t c = 0; c < image.get_pixel_format_num_channels(); ++c) {
      float expected = c == 3 ? (is_bytes(to) ? 255.0f : 1.0f) : 0.0f;
      if (c < channels && !(c == 3 && channels < 4)) {
        expected = stored(source, i, c);
        if (is_bytes(from) && !is_bytes(to)) expected = expected / 255.0f;
        if (!is_bytes(from) && is_bytes(to)) {
          expected = static_cast<float>(static_cast<int>(expected * 255.0f) & 255);
        }
      }
      EXPECT_EQ(stored(image, i, c), expected) << "pixel " << i << " channel " << c;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(AllPairs, ImageConversion,
                         testing::Combine(testing::ValuesIn(FORMATS), testing::ValuesIn(FORMATS)));

TEST(ImageConvert, PresentFormatIsAFailureThatLeavesThePixels) {
  Image image;
  ASSERT_TRUE(image.create(1, 1, 1, PF_R_U8, false, true));
  image.u8_ptr[0] = 3;
  unsigned char* store = image.u8_ptr;
  EXPECT_FALSE(image.update_pixel_format(PF_R_U8));
  EXPECT_EQ(image.u8_ptr, store);
  EXPECT_EQ(store[0], 3);
}

TEST(ImageConvert, FloatsAreCutAndWrappedNotClamped) {
  Image image;
  ASSERT_TRUE(image.create(6, 1, 1, PF_R_F32, false, true));
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float values[6] = {1.5f, -1.0f / 255.0f, 0.999f, nan, 1e30f, -1e30f};
  std::memcpy(image.f32_ptr, values, sizeof(values));
  ASSERT_TRUE(image.update_pixel_format(PF_R_U8));
  const unsigned char expected[6] = {126, 255, 254, 0, 0, 0};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(image.u8_ptr[i], expected[i]) << i;
}

TEST(ImageConvert, EveryByteBecomesByteBy255) {
  Image image;
  ASSERT_TRUE(image.create(256, 1, 1, PF_R_U8, false, true));
  for (int i = 0; i < 256; ++i) image.u8_ptr[i] = static_cast<unsigned char>(i);
  ASSERT_TRUE(image.update_pixel_format(PF_R_F32));
  for (int i = 0; i < 256; ++i) EXPECT_EQ(image.f32_ptr[i], static_cast<float>(i) / 255.0f);
}

TEST(ImageConvert, ChannelOrderIsNeverSwapped) {
  Image image;
  ASSERT_TRUE(image.create(1, 1, 1, PF_RGB_U8, false, true));
  image.u8_ptr[0] = 1;
  image.u8_ptr[1] = 2;
  image.u8_ptr[2] = 3;
  ASSERT_TRUE(image.update_pixel_format(PF_BGR_U8));
  EXPECT_EQ(image.u8_ptr[0], 1);
  ASSERT_TRUE(image.update_pixel_format(PF_BGRA_U8));
  ASSERT_TRUE(image.update_pixel_format(PF_RGBA_U8));
  EXPECT_EQ(image.u8_ptr[0], 1);
  EXPECT_EQ(image.u8_ptr[2], 3);
}

TEST(ImageConvert, UnknownPresentFormatIsRenamedWithoutPixels) {
  for (const PIXEL_FORMAT format : {PF_UNKNOWN, PF_RGBA_F16, PF_R_U32}) {
    Image image;
    ASSERT_TRUE(image.create(2, 2, 1, PF_R_U8, true, true));
    unsigned char* store = image.u8_ptr;
    image.create(2, 2, 1, format, false, false);
    EXPECT_TRUE(image.update_pixel_format(PF_RGBA_F32));
    EXPECT_EQ(image.pixel_format, PF_RGBA_F32);
    EXPECT_EQ(image.u8_ptr, store);
    EXPECT_EQ(image.f32_ptr, nullptr);
  }
}

TEST(ImageConvert, TargetWithoutAStoreIsRefused) {
  Image image;
  ASSERT_TRUE(image.create(1, 1, 1, PF_R_U8, true, true));
  for (const int format : {0, 8, 9, 10, 13, 99}) {
    EXPECT_FALSE(image.update_pixel_format(static_cast<PIXEL_FORMAT>(format)));
  }
  EXPECT_EQ(image.pixel_format, PF_R_U8);
}

TEST(ImageConvert, MissingPixelsAreAFailure) {
  Image image;
  image.create(2, 2, 1, PF_RGB_U8, false, false);
  EXPECT_FALSE(image.update_pixel_format(PF_RGBA_U8));
  EXPECT_EQ(image.pixel_format, PF_RGB_U8);
  image.create(2, 2, 1, PF_RGB_F32, false, false);
  EXPECT_FALSE(image.update_pixel_format(PF_RGBA_U8));
}

TEST(ImageConvert, ReadsBorrowedBytes) {
  unsigned char borrowed[3] = {9, 8, 7};
  Image image;
  image.create(1, 1, 1, PF_RGB_U8, false, false);
  image.codec_pixels = borrowed;
  ASSERT_TRUE(image.update_pixel_format(PF_RGBA_U8));
  EXPECT_EQ(image.u8_ptr[2], 7);
  EXPECT_EQ(image.u8_ptr[3], 255);
  EXPECT_EQ(image.codec_pixels, borrowed);
}

TEST(ImageConvert, HandedInPixelsAreReadAndLeftAlone) {
  unsigned char pixels[2] = {255, 0};
  Image image;
  image.create(2, 1, 1, PF_R_U8, false, false);
  image.set_u8_ptr(pixels);
  ASSERT_TRUE(image.update_pixel_format(PF_R_F32));
  EXPECT_EQ(image.f32_ptr[0], 1.0f);
  EXPECT_EQ(image.u8_ptr, nullptr);
  EXPECT_EQ(pixels[0], 255);
}

TEST(ImageConvert, ByteToByteLeavesTheFloatStore) {
  Image image;
  ASSERT_TRUE(image.create(1, 1, 1, PF_R_F32, true, true));
  float* floats = image.f32_ptr;
  ASSERT_TRUE(image.create(1, 1, 1, PF_R_U8, true, true));
  ASSERT_TRUE(image.update_pixel_format(PF_RGBA_U8));
  EXPECT_EQ(image.f32_ptr, floats);
}

TEST(ImageConvert, ShortBlockIsReadToItsEndOnly) {
  Image image;
  ASSERT_TRUE(image.create(1, 1, 1, PF_RGB_U8, false, true));
  std::memset(image.u8_ptr, 200, 3);
  image.create(10, 10, 1, PF_RGB_U8, false, false);
  ASSERT_TRUE(image.update_pixel_format(PF_R_U8));
  EXPECT_EQ(image.u8_ptr[0], 200);
  EXPECT_EQ(image.u8_ptr[99], 0);
}

// ---- grey and alpha ----

TEST(ImageConvert, GreyAlphaKeepsRedAndAlphaAndTheOldFormat) {
  for (const PIXEL_FORMAT format : {PF_RGBA_U8, PF_BGRA_U8}) {
    Image image;
    ASSERT_TRUE(image.create(2, 1, 1, format, false, true));
    const unsigned char pixels[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    std::memcpy(image.u8_ptr, pixels, 8);
    ASSERT_TRUE(image.convert_rgba_to_grey_alpha());
    EXPECT_EQ(image.pixel_format, format);
    const unsigned char expected[4] = {1, 4, 5, 8};
    EXPECT_EQ(std::memcmp(image.u8_ptr, expected, 4), 0);
    // Readers that go by the format stay inside the block.
    EXPECT_TRUE(image.flip_vertical());
    EXPECT_TRUE(image.update_alpha_channel_smooth(10));
    image.create(2, 1, 1, PF_RG_U8, false, false);
    float out[4];
    EXPECT_TRUE(image.get_pixel(1, out));
  }
}

TEST(ImageConvert, GreyAlphaTakesFourByteFormatsOnly) {
  for (const PIXEL_FORMAT format : {PF_RGB_U8, PF_RG_U8, PF_RGBA_F32}) {
    Image image;
    ASSERT_TRUE(image.create(1, 1, 1, format, true, true));
    EXPECT_FALSE(image.convert_rgba_to_grey_alpha());
  }
  Image image;
  image.create(1, 1, 1, PF_RGBA_U8, false, false);
  EXPECT_FALSE(image.convert_rgba_to_grey_alpha());
}

}  // namespace
}  // namespace orv
