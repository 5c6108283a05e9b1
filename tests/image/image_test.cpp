#include <orv/image/image.h>

#include <orv/core/utils.h>
#include <orv/math/vec4.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <vector>

namespace orv {
namespace {

using Bytes = std::vector<unsigned char>;

constexpr PIXEL_FORMAT CREATABLE[] = {PF_RGB_U8,   PF_BGR_U8, PF_RGBA_U8, PF_BGRA_U8, PF_RGB_F32,
                                      PF_RGBA_F32, PF_R_F32,  PF_R_U8,    PF_RG_U8};

struct FormatRow {
  PIXEL_FORMAT format;
  unsigned int channels;
  unsigned int size;
};
constexpr FormatRow FORMATS[] = {{PF_UNKNOWN, 0, 0},   {PF_RGB_U8, 3, 3},  {PF_BGR_U8, 3, 3},
                                 {PF_RGBA_U8, 4, 4},   {PF_BGRA_U8, 4, 4}, {PF_RGB_F32, 3, 12},
                                 {PF_RGBA_F32, 4, 16}, {PF_R_F32, 1, 4},   {PF_RGB_F16, 0, 0},
                                 {PF_RGBA_F16, 0, 0},  {PF_R_F16, 0, 0},   {PF_R_U8, 1, 1},
                                 {PF_RG_U8, 2, 2},     {PF_R_U32, 0, 0},   {PF_RGBA_I8I, 0, 0}};

TEST(Image, IsAllZeroAtFirst) {
  Image image;
  EXPECT_EQ(image.width, 0u);
  EXPECT_EQ(image.height, 0u);
  EXPECT_EQ(image.depth, 0u);
  EXPECT_EQ(image.pixel_format, PF_UNKNOWN);
  EXPECT_FALSE(image.owns_pixels);
  EXPECT_EQ(image.u8_ptr, nullptr);
  EXPECT_EQ(image.f32_ptr, nullptr);
  EXPECT_EQ(image.codec_pixels, nullptr);
  EXPECT_EQ(image.get_codec_id(), 0);
}

TEST(Image, TellsChannelsAndSizeOfEachFormat) {
  for (const FormatRow& row : FORMATS) {
    EXPECT_EQ(Image::get_pixel_format_num_channels(row.format), row.channels) << row.format;
    EXPECT_EQ(Image::get_pixel_format_size(row.format), row.size) << row.format;
  }
}

TEST(Image, SizeOfA16BitFloatFormatIsZero) {
  for (const PIXEL_FORMAT format : {PF_RGB_F16, PF_RGBA_F16, PF_R_F16}) {
    Image image;
    image.create(1, 1, 1, format, false, false);
    EXPECT_EQ(image.get_pixel_format_size(), 0u);
  }
}

TEST(Image, FormatsFromNumbersAreOneToTwelve) {
  for (int i = -1; i < 32; ++i) {
    EXPECT_EQ(static_cast<int>(ConvertInt2Pf(i)), i >= 1 && i <= 12 ? i : 0);
  }
}

// ---- create ----

TEST(Image, CreateStoresTheRequestedFormat) {
  for (const PIXEL_FORMAT format : CREATABLE) {
    Image image;
    ASSERT_TRUE(image.create(3, 2, 2, format, true, true)) << format;
    EXPECT_EQ(image.pixel_format, format);
    EXPECT_EQ(image.width, 3u);
    EXPECT_EQ(image.height, 2u);
    EXPECT_EQ(image.depth, 2u);
    EXPECT_TRUE(image.owns_pixels);
    EXPECT_EQ(image.get_u8_capacity() + image.get_f32_capacity(),
              12 * Image::get_pixel_format_size(format));
    const unsigned char* store =
        image.u8_ptr ? image.u8_ptr : reinterpret_cast<unsigned char*>(image.f32_ptr);
    const std::size_t bytes = image.get_u8_capacity() + image.get_f32_capacity();
    EXPECT_TRUE(std::all_of(store, store + bytes, [](unsigned char b) { return b == 0; }));
    EXPECT_EQ(image.u8_ptr == nullptr, image.f32_ptr != nullptr);
    EXPECT_TRUE(image.has_pixels());
  }
}

TEST(Image, CreateRefusesFormatsWithoutAStoreAndChangesNothing) {
  for (const int format : {0, 8, 9, 10, 13, 30, 31, -1}) {
    Image image;
    ASSERT_TRUE(image.create(2, 2, 1, PF_R_U8, true, true));
    unsigned char* store = image.u8_ptr;
    EXPECT_FALSE(image.create(5, 6, 7, static_cast<PIXEL_FORMAT>(format), true, true));
    EXPECT_EQ(image.width, 2u);
    EXPECT_EQ(image.depth, 1u);
    EXPECT_EQ(image.pixel_format, PF_R_U8);
    EXPECT_EQ(image.u8_ptr, store);
  }
}

TEST(Image, CreateWithoutAllocationTouchesNoStore) {
  Image image;
  ASSERT_TRUE(image.create(2, 2, 1, PF_R_U8, true, true));
  unsigned char* store = image.u8_ptr;
  EXPECT_TRUE(image.create(9, 8, 7, PF_RGBA_F16, true, false));
  EXPECT_EQ(image.u8_ptr, store);
  EXPECT_EQ(image.f32_ptr, nullptr);
  EXPECT_EQ(image.pixel_format, PF_RGBA_F16);
  EXPECT_EQ(image.width, 9u);
  EXPECT_EQ(image.height, 8u);
  EXPECT_EQ(image.depth, 7u);
}

TEST(Image, AByteCreatorLeavesTheFloatStoreAndTheReverse) {
  Image image;
  ASSERT_TRUE(image.create(2, 2, 1, PF_R_F32, true, true));
  float* floats = image.f32_ptr;
  ASSERT_TRUE(image.create(2, 2, 1, PF_R_U8, true, true));
  EXPECT_EQ(image.f32_ptr, floats);
  unsigned char* bytes = image.u8_ptr;
  ASSERT_TRUE(image.create(3, 3, 1, PF_RGB_F32, true, true));
  EXPECT_EQ(image.u8_ptr, bytes);
}

TEST(Image, CreateRefusesSizesThatNoBlockHas) {
  constexpr unsigned int MAX = std::numeric_limits<unsigned int>::max();
  Image image;
  ASSERT_TRUE(image.create(1, 1, 1, PF_RGBA_F32, true, true));
  EXPECT_FALSE(image.create(MAX, MAX, MAX, PF_RGBA_F32, true, true));
  EXPECT_EQ(image.f32_ptr, nullptr);
  EXPECT_EQ(image.width, MAX);
  EXPECT_EQ(image.pixel_format, PF_RGBA_F32);
  EXPECT_FALSE(image.create(MAX, MAX, 1, PF_R_U8, false, true));
  EXPECT_EQ(image.u8_ptr, nullptr);
  EXPECT_EQ(image.pixel_format, PF_RGBA_F32);
}

TEST(Image, AnEmptyImageHasAStore) {
  Image image;
  ASSERT_TRUE(image.create(0, 0, 1, PF_RGBA_U8, true, true));
  EXPECT_NE(image.u8_ptr, nullptr);
  EXPECT_TRUE(image.has_pixels());
}

// ---- stores ----

TEST(Image, CleanupFreesBothStoresAndKeepsTheSizes) {
  Image image;
  ASSERT_TRUE(image.create(2, 3, 1, PF_R_U8, true, true));
  ASSERT_TRUE(image.create(2, 3, 1, PF_R_F32, true, true));
  EXPECT_TRUE(image.cleanup());
  EXPECT_EQ(image.u8_ptr, nullptr);
  EXPECT_EQ(image.f32_ptr, nullptr);
  EXPECT_EQ(image.width, 2u);
  EXPECT_EQ(image.height, 3u);
  EXPECT_EQ(image.pixel_format, PF_R_F32);
  EXPECT_TRUE(image.cleanup());
}

TEST(Image, CleanupLeavesHandedInPixelsAndTheirPointer) {
  unsigned char bytes[4] = {1, 2, 3, 4};
  float floats[4] = {1, 2, 3, 4};
  Image image;
  image.set_u8_ptr(bytes);
  image.set_f32_ptr(floats);
  EXPECT_TRUE(image.cleanup());
  EXPECT_EQ(image.u8_ptr, bytes);
  EXPECT_EQ(image.f32_ptr, floats);
  EXPECT_EQ(bytes[3], 4);
}

TEST(Image, HandingInPixelsLeavesTheOldBlockToTheCaller) {
  Image image;
  ASSERT_TRUE(image.create(1, 1, 1, PF_RGBA_U8, true, true));
  unsigned char* old_block = image.get_u8_ptr();
  unsigned char bytes[4] = {};
  image.set_u8_ptr(bytes);
  EXPECT_FALSE(image.owns_pixels);
  EXPECT_EQ(image.get_u8_ptr(), bytes);
  old_block[3] = 7;
  delete[] old_block;
}

TEST(Image, CreateNeverFreesHandedInPixels) {
  Bytes bytes(16, 9);
  Image image;
  image.set_u8_ptr(bytes.data());
  ASSERT_TRUE(image.create(2, 2, 1, PF_RGBA_U8, true, true));
  EXPECT_NE(image.u8_ptr, bytes.data());
  EXPECT_TRUE(image.owns_pixels);
  EXPECT_EQ(bytes[0], 9);
}

TEST(Image, HandingInOneStoreKeepsTheOtherOneCounted) {
  // Ends without a leak: the float block is still the image's.
  unsigned char bytes[4] = {};
  Image image;
  ASSERT_TRUE(image.create(2, 2, 1, PF_RGBA_F32, true, true));
  image.set_u8_ptr(bytes);
  EXPECT_FALSE(image.owns_pixels);
  EXPECT_NE(image.f32_ptr, nullptr);
}

TEST(Image, DeletingAStoreNullsIt) {
  unsigned char bytes[4] = {5, 5, 5, 5};
  Image image;
  image.set_u8_ptr(bytes);
  image._delete_u8_ptr();
  EXPECT_EQ(image.u8_ptr, nullptr);
  EXPECT_EQ(bytes[0], 5);
  ASSERT_TRUE(image.create(1, 1, 1, PF_R_F32, true, true));
  image._delete_f32_ptr();
  EXPECT_EQ(image.f32_ptr, nullptr);
}

TEST(Image, BorrowedPixelsStandInForMissingBytes) {
  unsigned char borrowed[3] = {1, 2, 3};
  Image image;
  image.codec_pixels = borrowed;
  EXPECT_EQ(image.get_u8_ptr(), borrowed);
  ASSERT_TRUE(image.create(1, 1, 1, PF_RGB_U8, true, true));
  EXPECT_EQ(image.get_u8_ptr(), image.u8_ptr);
  EXPECT_EQ(image.codec_pixels, borrowed);
}

TEST(Image, MissingOrShortStoresAreNoPixels) {
  Image image;
  EXPECT_FALSE(image.has_pixels());
  ASSERT_TRUE(image.create(4, 4, 1, PF_R_U8, true, true));
  image.create(4, 4, 1, PF_RGBA_U8, false, false);
  EXPECT_FALSE(image.has_pixels());
  image.create(2, 2, 1, PF_RGBA_U8, false, false);
  EXPECT_TRUE(image.has_pixels());
  image.create(2, 2, 1, PF_RGBA_F32, false, false);
  EXPECT_FALSE(image.has_pixels());
  float floats[4] = {};
  image.set_f32_ptr(floats);
  image.create(1, 1, 1, PF_RGBA_F16, false, false);
  EXPECT_TRUE(image.has_pixels());
}

// ---- copies ----

TEST(Image, CopiesOwnedBytesDeeply) {
  Image image;
  ASSERT_TRUE(image.create(2, 1, 2, PF_RG_U8, false, true));
  const unsigned char pixels[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  std::memcpy(image.u8_ptr, pixels, 8);
  image.set_codec_id(42);
  const Image copy(image);
  EXPECT_NE(copy.u8_ptr, image.u8_ptr);
  EXPECT_EQ(std::memcmp(copy.u8_ptr, pixels, 8), 0);
  EXPECT_TRUE(copy.owns_pixels);
  EXPECT_EQ(copy.width, 2u);
  EXPECT_EQ(copy.depth, 2u);
  EXPECT_EQ(copy.pixel_format, PF_RG_U8);
  EXPECT_EQ(copy.get_codec_id(), 42);
}

TEST(Image, CopiesFloatsWhenThereAreNoBytes) {
  Image image;
  ASSERT_TRUE(image.create(1, 1, 1, PF_RGB_F32, false, true));
  const float pixels[3] = {0.5f, 1.5f, -2.0f};
  std::memcpy(image.f32_ptr, pixels, sizeof(pixels));
  Image copy;
  copy = image;
  ASSERT_NE(copy.f32_ptr, nullptr);
  EXPECT_EQ(std::memcmp(copy.f32_ptr, pixels, sizeof(pixels)), 0);
  EXPECT_EQ(copy.u8_ptr, nullptr);
}

TEST(Image, CopiesTheBorrowedPointerWhenThereIsNoStore) {
  unsigned char borrowed[1] = {1};
  Image image;
  image.create(1, 1, 1, PF_R_U8, false, false);
  image.codec_pixels = borrowed;
  const Image copy(image);
  EXPECT_EQ(copy.codec_pixels, borrowed);
  EXPECT_FALSE(copy.owns_pixels);
}

TEST(Image, CopyOfAStoreLeavesTheBorrowedPointerBehind) {
  unsigned char borrowed[1] = {1};
  Image image;
  ASSERT_TRUE(image.create(1, 1, 1, PF_R_U8, true, true));
  image.codec_pixels = borrowed;
  const Image copy(image);
  EXPECT_EQ(copy.codec_pixels, nullptr);
}

TEST(Image, SelfAssignmentKeepsThePixels) {
  Image image;
  ASSERT_TRUE(image.create(1, 1, 1, PF_R_U8, false, true));
  image.u8_ptr[0] = 77;
  const Image& same = image;
  image = same;
  EXPECT_EQ(image.u8_ptr[0], 77);
}

TEST(Image, AssignmentFromAViewOfItselfKeepsThePixels) {
  Image image, view;
  ASSERT_TRUE(image.create(2, 2, 1, PF_R_U8, false, true));
  std::memset(image.u8_ptr, 6, 4);
  view.create(2, 2, 1, PF_R_U8, false, false);
  view.set_u8_ptr(image.u8_ptr);
  image = view;
  EXPECT_EQ(image.u8_ptr[3], 6);
}

TEST(Image, CopyReadsNoMoreThanTheSourceHolds) {
  Image image;
  ASSERT_TRUE(image.create(2, 1, 1, PF_R_U8, false, true));
  image.u8_ptr[0] = 1;
  image.u8_ptr[1] = 2;
  image.create(64, 64, 1, PF_RGBA_U8, false, false);
  const Image copy(image);
  EXPECT_EQ(copy.get_u8_capacity(), 64u * 64u * 4u);
  EXPECT_EQ(copy.u8_ptr[1], 2);
  EXPECT_EQ(copy.u8_ptr[2], 0);
}

TEST(Image, CopyOfAnImageWithoutDepthHoldsNoPixels) {
  Image image;
  ASSERT_TRUE(image.create(2, 2, 0, PF_R_U8, false, true));
  Image copy(image);
  EXPECT_NE(copy.u8_ptr, nullptr);
  EXPECT_FALSE(copy.has_pixels());
  EXPECT_TRUE(copy.fill_color_r_u8(3));  // clipped to what is there
}

TEST(Image, SwapExchangesEverything) {
  Image a, b;
  ASSERT_TRUE(a.create(2, 2, 1, PF_R_U8, true, true));
  unsigned char* store = a.u8_ptr;
  a.swap(b);
  EXPECT_EQ(b.u8_ptr, store);
  EXPECT_EQ(b.get_u8_capacity(), 4u);
  EXPECT_EQ(a.u8_ptr, nullptr);
  EXPECT_FALSE(a.owns_pixels);
}

// ---- single pixels ----

TEST(Image, GetPixelGivesNormalisedValuesAndFillsMissingChannels) {
  struct Row {
    PIXEL_FORMAT format;
    std::array<float, 4> expected;
  };
  const Row rows[] = {{PF_R_U8, {51 / 255.0f, 0, 0, 1}},
                      {PF_RG_U8, {51 / 255.0f, 102 / 255.0f, 0, 1}},
                      {PF_RGB_U8, {51 / 255.0f, 102 / 255.0f, 153 / 255.0f, 1}},
                      {PF_BGR_U8, {51 / 255.0f, 102 / 255.0f, 153 / 255.0f, 1}},
                      {PF_RGBA_U8, {51 / 255.0f, 102 / 255.0f, 153 / 255.0f, 204 / 255.0f}},
                      {PF_BGRA_U8, {51 / 255.0f, 102 / 255.0f, 153 / 255.0f, 204 / 255.0f}}};
  const unsigned char pixel[4] = {51, 102, 153, 204};
  for (const Row& row : rows) {
    Image image;
    ASSERT_TRUE(image.create(2, 2, 1, row.format, true, true));
    const unsigned int size = image.get_pixel_format_size();
    std::memcpy(image.u8_ptr + 3 * size, pixel, size);
    std::array<float, 4> out{};
    ASSERT_TRUE(image.get_pixel(3, out.data()));
    EXPECT_EQ(out, row.expected) << row.format;
    ASSERT_TRUE(image.get_pixel_2d(1, 1, out.data()));
    EXPECT_EQ(out, row.expected) << row.format;
  }
}

TEST(Image, GetPixelReadsFloats) {
  Image image;
  ASSERT_TRUE(image.create(1, 1, 1, PF_RGB_F32, true, true));
  image.f32_ptr[1] = 7.5f;
  std::array<float, 4> out{};
  ASSERT_TRUE(image.get_pixel(0, out.data()));
  EXPECT_EQ(out, (std::array<float, 4>{0, 7.5f, 0, 1}));
  ASSERT_TRUE(image.update_pixel_format(PF_RGBA_F32));
  image.f32_ptr[3] = 0.25f;
  ASSERT_TRUE(image.get_pixel(0, out.data()));
  EXPECT_EQ(out[3], 0.25f);
}

TEST(Image, GetPixelServesFloatsOnlyWithoutAByteStore) {
  Image image;
  ASSERT_TRUE(image.create(1, 1, 1, PF_RGB_U8, true, true));
  ASSERT_TRUE(image.create(1, 1, 1, PF_RGB_F32, true, true));
  float out[4];
  EXPECT_FALSE(image.get_pixel(0, out));
  image._delete_u8_ptr();
  EXPECT_TRUE(image.get_pixel(0, out));
}

TEST(Image, PixelsOfOneChannelFloatsAreNotServed) {
  Image image;
  ASSERT_TRUE(image.create(1, 1, 1, PF_R_F32, true, true));
  float values[4] = {};
  EXPECT_FALSE(image.get_pixel(0, values));
  EXPECT_FALSE(image.set_pixel_v2(0, values));
}

TEST(Image, GetPixelIgnoresBorrowedPixels) {
  unsigned char borrowed[1] = {1};
  Image image;
  image.create(1, 1, 1, PF_R_U8, false, false);
  image.codec_pixels = borrowed;
  float out[4];
  EXPECT_FALSE(image.get_pixel(0, out));
  EXPECT_FALSE(image.set_pixel(0, vec4(1, 1, 1, 1)));
}

TEST(Image, PixelBoundsCountTheDepth) {
  Image image;
  ASSERT_TRUE(image.create(2, 2, 2, PF_R_U8, true, true));
  float values[4] = {9, 9, 9, 9};
  EXPECT_TRUE(image.set_pixel_v2(7, values));
  EXPECT_EQ(image.u8_ptr[7], 9);
  EXPECT_FALSE(image.set_pixel_v2(8, values));
  EXPECT_TRUE(image.get_pixel(7, values));
  EXPECT_FALSE(image.get_pixel(8, values));
  EXPECT_FALSE(image.get_pixel(0, nullptr));
  EXPECT_FALSE(image.set_pixel_v2(0, nullptr));
  EXPECT_FALSE(image.get_pixel_2d(0, 0xFFFFFFFFu, values));
}

TEST(Image, PixelsEndWhereTheOwnBlockEnds) {
  Image image;
  ASSERT_TRUE(image.create(2, 2, 1, PF_R_U8, true, true));
  image.create(100, 100, 100, PF_RGBA_U8, false, false);
  float values[4] = {};
  EXPECT_TRUE(image.get_pixel(0, values));
  EXPECT_FALSE(image.get_pixel(1, values));
  EXPECT_FALSE(image.set_pixel_v2(1, values));
}

TEST(Image, SetPixelStoresBytesUnscaled) {
  Image image;
  ASSERT_TRUE(image.create(1, 1, 1, PF_RGBA_U8, true, true));
  const float ones[4] = {1, 1, 1, 1};
  ASSERT_TRUE(image.set_pixel_v2(0, ones));
  EXPECT_EQ(image.u8_ptr[0], 1);
  float out[4];
  ASSERT_TRUE(image.get_pixel(0, out));
  EXPECT_EQ(out[0], 1 / 255.0f);
}

TEST(Image, SetPixelWritesAsManyChannelsAsTheFormatHas) {
  for (const FormatRow& row : FORMATS) {
    if (row.size == 0 || row.format == PF_R_F32) continue;
    Image image;
    ASSERT_TRUE(image.create(2, 1, 1, row.format, true, true));
    ASSERT_TRUE(image.set_pixel(0, vec4(11, 12, 13, 14)));
    for (unsigned int c = 0; c < 2 * row.channels; ++c) {
      const float stored = image.u8_ptr ? static_cast<float>(image.u8_ptr[c]) : image.f32_ptr[c];
      EXPECT_EQ(stored, c < row.channels ? 11.0f + static_cast<float>(c) : 0.0f) << row.format;
    }
  }
}

TEST(Image, AllPixelSettersAreOneOperation) {
  const vec4 color(1, 2, 3, 4);
  Image image;
  ASSERT_TRUE(image.create(3, 2, 1, PF_RGBA_U8, true, true));
  EXPECT_TRUE(image.set_pixel(0, color));
  EXPECT_TRUE(image.set_pixel_1d(1, color));
  EXPECT_TRUE(image.set_pixel_2d(2, 0, color));
  EXPECT_TRUE(image.set_pixel_v2(3, color.ptr()));
  EXPECT_TRUE(image.set_pixel_1d_v2(4, color.ptr()));
  EXPECT_TRUE(image.set_pixel_2d_v2(2, 1, color.ptr()));
  for (int i = 0; i < 24; ++i) EXPECT_EQ(image.u8_ptr[i], i % 4 + 1);
}

TEST(Image, FloatsOutOfRangeWrapAndNanIsZero) {
  Image image;
  ASSERT_TRUE(image.create(1, 1, 1, PF_RGBA_U8, true, true));
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float values[4] = {257.9f, -1.0f, nan, 1e30f};
  ASSERT_TRUE(image.set_pixel_v2(0, values));
  EXPECT_EQ(image.u8_ptr[0], 1);
  EXPECT_EQ(image.u8_ptr[1], 255);
  EXPECT_EQ(image.u8_ptr[2], 0);
  EXPECT_EQ(image.u8_ptr[3], 0);
}

}  // namespace
}  // namespace orv
