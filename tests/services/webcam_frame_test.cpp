#include "services/webcam_frame.h"

#include <orv/image/image.h>
#include <orv/image/image_codec_stb.h>
#include <orv/math/vec4.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "image/stb_image_decode.h"
#include "support/temp_folder.h"

namespace orv::test {
namespace {

using Bytes = std::vector<unsigned char>;
using detail::CameraFormat;
using detail::convert_frame;
using detail::FrameLayout;
using detail::WebcamFrame;

FrameLayout layout_of(CameraFormat format, unsigned int width, unsigned int height,
                      unsigned int stride = 0) {
  FrameLayout layout;
  layout.format = format;
  layout.width = width;
  layout.height = height;
  layout.stride = stride;
  EXPECT_TRUE(layout.check());
  return layout;
}

/// The frame's bytes; nothing when it is refused. The source is a block of exactly its size.
Bytes convert(const FrameLayout& layout, const Bytes& source) {
  const std::unique_ptr<unsigned char[]> exact(new unsigned char[source.size()]);
  std::copy(source.begin(), source.end(), exact.get());
  WebcamFrame frame;
  if (!convert_frame(layout, exact.get(), source.size(), &frame)) {
    EXPECT_EQ(frame.bytes, nullptr);
    return {};
  }
  EXPECT_EQ(frame.size, std::size_t{frame.width} * frame.height * 3);
  return Bytes(frame.bytes.get(), frame.bytes.get() + frame.size);
}

// ---- colours by bytes ----

TEST(WebcamFrame, Bgr24IsTurnedUpsideDown) {
  const Bytes source = {1, 2, 3, 4, 5, 6, 99, 7, 8, 9, 10, 11, 12, 99};
  EXPECT_EQ(convert(layout_of(CameraFormat::BGR24, 2, 2, 7), source),
            (Bytes{7, 8, 9, 10, 11, 12, 1, 2, 3, 4, 5, 6}));
}

TEST(WebcamFrame, Rgb24IsSwappedToo) {
  const Bytes source = {1, 2, 3, 4, 5, 6, 99, 99, 7, 8, 9, 10, 11, 12, 99, 99};
  EXPECT_EQ(convert(layout_of(CameraFormat::RGB24, 2, 2, 8), source),
            (Bytes{9, 8, 7, 12, 11, 10, 3, 2, 1, 6, 5, 4}));
}

TEST(WebcamFrame, TheLastRowNeedsNoGapBehindIt) {
  const Bytes source = {1, 2, 3, 99, 99, 4, 5, 6};
  EXPECT_EQ(convert(layout_of(CameraFormat::BGR24, 1, 2, 5), source), (Bytes{4, 5, 6, 1, 2, 3}));
}

// ---- Y, U, V ----

struct Weights {
  double red, blue;
  bool full;
};

int clamped(double value) {
  return static_cast<int>(std::clamp(std::floor(value + 0.5), 0.0, 255.0));
}

/// As the recommendations have it, in floating point.
Bytes expected_bgr(const Weights& w, int y, int u, int v) {
  const double green = 1.0 - w.red - w.blue;
  const double luma = w.full ? y / 255.0 : (y - 16) / 219.0;
  const double pb = (u - 128) / (w.full ? 255.0 : 224.0), pr = (v - 128) / (w.full ? 255.0 : 224.0);
  const double r = luma + 2 * (1 - w.red) * pr, b = luma + 2 * (1 - w.blue) * pb;
  const double g = (luma - w.red * r - w.blue * b) / green;
  return {static_cast<unsigned char>(clamped(b * 255)),
          static_cast<unsigned char>(clamped(g * 255)),
          static_cast<unsigned char>(clamped(r * 255))};
}

int largest_difference(const Bytes& a, const Bytes& b) {
  int largest = a.size() == b.size() ? 0 : 999;
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
    largest = std::max(largest, std::abs(a[i] - b[i]));
  }
  return largest;
}

TEST(WebcamFrame, YuvFollowsTheRecommendations) {
  const struct {
    detail::YuvScale scale;
    Weights weights;
  } rows[] = {{detail::BT601_LIMITED, {0.299, 0.114, false}},
              {detail::BT601_FULL, {0.299, 0.114, true}},
              {detail::BT709_LIMITED, {0.2126, 0.0722, false}},
              {detail::BT709_FULL, {0.2126, 0.0722, true}}};
  for (const auto& row : rows) {
    FrameLayout layout = layout_of(CameraFormat::YUYV, 1, 1);
    layout.yuv = row.scale;
    int off_by_one = 0;
    for (int y = 0; y < 256; y += 7) {
      for (int u = 0; u < 256; u += 7) {
        for (int v = 0; v < 256; v += 7) {
          const Bytes source = {static_cast<unsigned char>(y), static_cast<unsigned char>(u), 0,
                                static_cast<unsigned char>(v)};
          const int difference =
              largest_difference(convert(layout, source), expected_bgr(row.weights, y, u, v));
          ASSERT_LE(difference, 1) << y << " " << u << " " << v;
          off_by_one += difference;
        }
      }
    }
    EXPECT_LE(off_by_one, 760) << "of 50653: those that lie nearly half way";
  }
}

TEST(WebcamFrame, KnownColoursOfLimitedRange) {
  const struct {
    unsigned char y, u, v;
    Bytes bgr;
  } rows[] = {{16, 128, 128, {0, 0, 0}},        {235, 128, 128, {255, 255, 255}},
              {126, 128, 128, {128, 128, 128}}, {81, 90, 240, {0, 0, 254}},
              {145, 54, 34, {1, 255, 0}},       {41, 240, 110, {255, 0, 0}},
              {0, 128, 128, {0, 0, 0}},         {255, 128, 128, {255, 255, 255}}};
  for (const auto& row : rows) {
    EXPECT_EQ(convert(layout_of(CameraFormat::YUYV, 1, 1), {row.y, row.u, 0, row.v}), row.bgr)
        << int{row.y};
  }
}

Bytes grey(std::initializer_list<int> levels) {
  Bytes bgr;
  for (const int level : levels) bgr.insert(bgr.end(), 3, static_cast<unsigned char>(level));
  return bgr;
}

TEST(WebcamFrame, YuyvTakesItsPixelsInOrder) {
  // Two rows of three pixels; the last pair of a row is half used, and there is a gap.
  const Bytes source = {16, 128, 235, 128, 126, 128, 99,  128, 1,
                        2,  126, 128, 16,  128, 235, 128, 99,  128};
  EXPECT_EQ(convert(layout_of(CameraFormat::YUYV, 3, 2, 10), source),
            grey({128, 0, 255, 0, 255, 128}));
}

TEST(WebcamFrame, YuyvPairsShareTheirColour) {
  const Bytes red = expected_bgr({0.299, 0.114, false}, 81, 90, 240);
  const Bytes blue = expected_bgr({0.299, 0.114, false}, 41, 240, 110);
  Bytes both = red;
  both.insert(both.end(), red.begin(), red.end());
  both.insert(both.end(), blue.begin(), blue.end());
  both.insert(both.end(), blue.begin(), blue.end());
  EXPECT_EQ(convert(layout_of(CameraFormat::YUYV, 4, 1), {81, 90, 81, 240, 41, 240, 41, 110}),
            both);
}

TEST(WebcamFrame, Nv12TakesColourFromTheSecondPlane) {
  // Three by three: two pairs of U and V in each of two rows, with a gap behind each row.
  const Bytes source = {81, 81, 41, 0,   0,   81,  81, 41, 0,  0,   145, 145, 16,
                        0,  0,  90, 240, 240, 110, 0,  54, 34, 128, 128, 0};
  const Bytes r = {0, 0, 254}, b = {255, 0, 0}, g = {1, 255, 0}, k = {0, 0, 0};
  Bytes expected;
  for (const Bytes& pixel : {g, g, k, r, r, b, r, r, b}) {
    expected.insert(expected.end(), pixel.begin(), pixel.end());
  }
  EXPECT_EQ(convert(layout_of(CameraFormat::NV12, 3, 3, 5), source), expected);
}

TEST(WebcamFrame, RowsOfAnyWidthAreMadeOfTheSamePixels) {
  unsigned int state = 1;
  const auto next = [&] {
    state = state * 1664525u + 1013904223u;
    // Both ends often, for they are clamped.
    return static_cast<unsigned char>(state >> 29 == 0 ? 0 : state >> 29 == 1 ? 255 : state >> 16);
  };
  for (const detail::YuvScale& scale : {detail::BT601_LIMITED, detail::BT709_FULL}) {
    for (unsigned int width = 1; width < 41; ++width) {
      FrameLayout yuyv = layout_of(CameraFormat::YUYV, width, 1), one = yuyv;
      FrameLayout nv12 = layout_of(CameraFormat::NV12, width, 1);
      yuyv.yuv = nv12.yuv = one.yuv = scale;
      one.width = 1;
      Bytes source(yuyv.bytes_needed()), planes(nv12.bytes_needed()), expected;
      for (unsigned char& byte : source) byte = next();
      for (std::size_t i = 0; i < width; ++i) {
        const unsigned char y = source[i * 2], u = source[i / 2 * 4 + 1], v = source[i / 2 * 4 + 3];
        planes[i] = y;
        planes[nv12.stride + i / 2 * 2] = u;
        planes[nv12.stride + i / 2 * 2 + 1] = v;
        const Bytes pixel = convert(one, {y, u, 0, v});
        expected.insert(expected.end(), pixel.begin(), pixel.end());
      }
      ASSERT_EQ(convert(yuyv, source), expected) << width;
      ASSERT_EQ(convert(nv12, planes), expected) << width;
    }
  }
}

TEST(WebcamFrame, FramesAreRefusedByteByByteWhenTooShort) {
  const struct {
    CameraFormat format;
    std::size_t needed;
  } rows[] = {{CameraFormat::BGR24, 2 * 24 + 15},
              {CameraFormat::RGB24, 2 * 24 + 15},
              {CameraFormat::YUYV, 2 * 24 + 12},
              {CameraFormat::NV12, 4 * 24 + 6}};
  for (const auto& row : rows) {
    const FrameLayout layout = layout_of(row.format, 5, 3, 24);
    EXPECT_EQ(layout.bytes_needed(), row.needed);
    for (std::size_t size = 0; size < row.needed; ++size) {
      ASSERT_TRUE(convert(layout, Bytes(size)).empty()) << size;
    }
    EXPECT_EQ(convert(layout, Bytes(row.needed)).size(), 45u);
    EXPECT_EQ(convert(layout, Bytes(row.needed + 100)).size(), 45u);
  }
}

// ---- layouts ----

TEST(WebcamFrame, LayoutsThatCannotBeAreRefused) {
  const struct {
    CameraFormat format;
    std::uint32_t width, height, stride;
    bool good;
  } rows[] = {{CameraFormat::BGR24, 0, 4, 0, false},
              {CameraFormat::BGR24, 4, 0, 0, false},
              {CameraFormat::BGR24, 4, 4, 11, false},
              {CameraFormat::BGR24, 4, 4, 12, true},
              {CameraFormat::RGB24, 4, 4, 11, false},
              {CameraFormat::YUYV, 5, 4, 11, false},
              {CameraFormat::YUYV, 5, 4, 12, true},
              {CameraFormat::NV12, 5, 4, 5, false},
              {CameraFormat::NV12, 5, 4, 6, true},
              {CameraFormat::MJPEG, 5, 4, 0, true},
              {CameraFormat::MJPEG, 0, 4, 0, false},
              {CameraFormat::BGR24, 16385, 1, 0, false},
              {CameraFormat::BGR24, 1, 16385, 0, false},
              {CameraFormat::BGR24, 16384, 16384, 0, false},
              {CameraFormat::BGR24, 16384, 4096, 0, true},
              {CameraFormat::BGR24, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, false},
              {CameraFormat::NV12, 0xFFFFFFFF, 1, 0, false}};
  for (const auto& row : rows) {
    FrameLayout layout;
    layout.format = row.format;
    layout.width = row.width;
    layout.height = row.height;
    layout.stride = row.stride;
    EXPECT_EQ(layout.check(), row.good) << row.width << "x" << row.height << " " << row.stride;
  }
}

TEST(WebcamFrame, RowsWithoutALengthArePacked) {
  EXPECT_EQ(layout_of(CameraFormat::BGR24, 5, 3).stride, 15u);
  EXPECT_EQ(layout_of(CameraFormat::YUYV, 5, 3).stride, 12u);
  EXPECT_EQ(layout_of(CameraFormat::NV12, 5, 3).stride, 6u);
}

TEST(WebcamFrame, HugeStridesAreCountedInWideNumbers) {
  FrameLayout layout = layout_of(CameraFormat::NV12, 4, 4096, 0xFFFFFFFF);
  EXPECT_EQ(layout.bytes_needed(), 0xFFFFFFFFull * (4096 + 2048 - 1) + 4);
  EXPECT_TRUE(convert(layout, Bytes(1000)).empty());
}

// ---- blocks ----

TEST(WebcamFrame, TheBlockStaysForAFrameOfItsSize) {
  WebcamFrame frame;
  const Bytes source(48, 7);
  ASSERT_TRUE(convert_frame(layout_of(CameraFormat::BGR24, 4, 4), source.data(), 48, &frame));
  const unsigned char* block = frame.bytes.get();
  ASSERT_TRUE(convert_frame(layout_of(CameraFormat::BGR24, 8, 2), source.data(), 48, &frame));
  EXPECT_EQ(frame.bytes.get(), block);
  EXPECT_EQ(frame.width, 8u);
  EXPECT_EQ(frame.height, 2u);
  ASSERT_TRUE(convert_frame(layout_of(CameraFormat::BGR24, 2, 2), source.data(), 12, &frame));
  EXPECT_EQ(frame.size, 12u);
}

// ---- MJPEG ----

/// A picture of 16 x 16 pixels in four blocks of one colour each: a block is exact up to rounding.
Bytes jpeg_of_blocks() {
  Image image;
  image.create(16, 16, 1, PF_RGB_U8, true, true);
  const vec4 colors[] = {
      {200, 30, 40, 255}, {20, 180, 60, 255}, {10, 40, 220, 255}, {240, 240, 30, 255}};
  for (unsigned int y = 0; y < 16; ++y) {
    for (unsigned int x = 0; x < 16; ++x) image.set_pixel_2d(x, y, colors[y / 8 * 2 + x / 8]);
  }
  const TempFolder folder;
  ImageCodecStb codec;
  EXPECT_TRUE(codec.save_image_to_file(&image, folder.file("blocks.jpg").c_str()));
  const std::string bytes = folder.read("blocks.jpg");
  return Bytes(bytes.begin(), bytes.end());
}

std::size_t find_marker(const Bytes& jpeg, unsigned char marker) {
  const unsigned char both[] = {0xFF, marker};
  const auto found = std::search(jpeg.begin(), jpeg.end(), both, both + 2);
  EXPECT_NE(found, jpeg.end());
  return static_cast<std::size_t>(found - jpeg.begin());
}

/// Without its Huffman tables, as most cameras deliver it.
Bytes without_tables(Bytes jpeg) {
  const auto at = jpeg.begin() + static_cast<std::ptrdiff_t>(find_marker(jpeg, 0xC4));
  jpeg.erase(at, at + 2 + (at[2] << 8 | at[3]));
  return jpeg;
}

void expect_blocks(const Bytes& bgr) {
  ASSERT_EQ(bgr.size(), 768u);
  // Bottom row first, blue first.
  const int colors[2][2][3] = {{{220, 40, 10}, {30, 240, 240}}, {{40, 30, 200}, {60, 180, 20}}};
  for (std::size_t i = 0; i < 768; ++i) {
    const std::size_t pixel = i / 3;
    EXPECT_NEAR(bgr[i], colors[pixel / 16 / 8][pixel % 16 / 8][i % 3], 4) << i;
  }
}

TEST(WebcamFrame, MjpegIsDecoded) {
  const Bytes jpeg = jpeg_of_blocks();
  const Bytes bgr = convert(layout_of(CameraFormat::MJPEG, 16, 16), jpeg);
  expect_blocks(bgr);
  // To the bit what the decoder gives, upside down and swapped.
  detail::DecodedImage decoded;
  ASSERT_TRUE(decoded.decode(jpeg.data(), jpeg.size(), 3));
  for (std::size_t y = 0; y < 16; ++y) {
    for (std::size_t i = 0; i < 48; ++i) {
      ASSERT_EQ(bgr[(15 - y) * 48 + i], decoded.pixels()[y * 48 + i / 3 * 3 + 2 - i % 3]);
    }
  }
}

TEST(WebcamFrame, MjpegWithoutHuffmanTablesTakesThoseOfTheStandard) {
  const Bytes jpeg = jpeg_of_blocks(), bare = without_tables(jpeg);
  ASSERT_EQ(bare.size() + 420, jpeg.size());
  EXPECT_EQ(convert(layout_of(CameraFormat::MJPEG, 16, 16), bare),
            convert(layout_of(CameraFormat::MJPEG, 16, 16), jpeg));
}

TEST(WebcamFrame, MjpegMayBePaddedBehindItsEnd) {
  Bytes jpeg = without_tables(jpeg_of_blocks());
  jpeg.resize(jpeg.size() + 333);
  expect_blocks(convert(layout_of(CameraFormat::MJPEG, 16, 16), jpeg));
}

TEST(WebcamFrame, MjpegBringsItsOwnSize) {
  const FrameLayout layout = layout_of(CameraFormat::MJPEG, 640, 480);
  const Bytes jpeg = jpeg_of_blocks();
  WebcamFrame frame;
  ASSERT_TRUE(convert_frame(layout, jpeg.data(), jpeg.size(), &frame));
  EXPECT_EQ(frame.width, 16u);
  EXPECT_EQ(frame.height, 16u);
}

TEST(WebcamFrame, MjpegIsRefusedAtEachTruncation) {
  for (const Bytes& jpeg : {jpeg_of_blocks(), without_tables(jpeg_of_blocks())}) {
    for (std::size_t size = 0; size < jpeg.size(); ++size) {
      const Bytes cut(jpeg.begin(), jpeg.begin() + static_cast<std::ptrdiff_t>(size));
      ASSERT_TRUE(convert(layout_of(CameraFormat::MJPEG, 16, 16), cut).empty()) << size;
    }
  }
}

TEST(WebcamFrame, MjpegSpoiledAnywhereHarmsNothing) {
  const Bytes jpeg = without_tables(jpeg_of_blocks());
  int refused = 0;
  for (std::size_t at = 0; at < jpeg.size(); ++at) {
    for (const int value : {0x00, 0x01, 0x7F, 0xFF}) {
      Bytes spoiled = jpeg;
      spoiled[at] = static_cast<unsigned char>(value);
      refused += convert(layout_of(CameraFormat::MJPEG, 16, 16), spoiled).empty();
    }
  }
  EXPECT_GT(refused, 20);
}

TEST(WebcamFrame, MjpegWithTooLargeATableIsRefused) {
  Bytes jpeg = jpeg_of_blocks();
  const std::size_t at = find_marker(jpeg, 0xC4);
  for (std::size_t i = 0; i < 16; ++i) jpeg[at + 5 + i] = 0xFF;
  EXPECT_TRUE(convert(layout_of(CameraFormat::MJPEG, 16, 16), jpeg).empty());
}

TEST(WebcamFrame, MjpegThatTellsAHugeSizeIsRefusedBeforeItIsDecoded) {
  Bytes jpeg = jpeg_of_blocks();
  const std::size_t at = find_marker(jpeg, 0xC0);
  // 12000 x 12000, with as many bytes behind the end as would make that plausible.
  for (const std::size_t side : {at + 5, at + 7}) {
    jpeg[side] = 12000 >> 8;
    jpeg[side + 1] = 12000 & 255;
  }
  jpeg.resize(200000);
  detail::DecodedImage image;
  EXPECT_FALSE(image.decode(jpeg.data(), jpeg.size(), 3, 12000 * 12000 - 1));
  EXPECT_STREQ(image.fault(), "too large");
  EXPECT_TRUE(convert(layout_of(CameraFormat::MJPEG, 16, 16), jpeg).empty());
  const Bytes small = jpeg_of_blocks();
  EXPECT_FALSE(image.decode(small.data(), small.size(), 3, 255));
  EXPECT_TRUE(image.decode(small.data(), small.size(), 3, 256));
}

TEST(WebcamFrame, OtherPicturesAreNoMjpeg) {
  std::string png = TempFolder::read_file(ORV_TEST_DATA_DIR "/../fuzz/corpus/image/basn2c08.png");
  ASSERT_FALSE(png.empty());
  png += "\xFF\xD9";
  EXPECT_TRUE(
      convert(layout_of(CameraFormat::MJPEG, 16, 16), Bytes(png.begin(), png.end())).empty());
}

TEST(WebcamFrame, ADamagedFrameLeavesTheOldOne) {
  Bytes jpeg = jpeg_of_blocks();
  WebcamFrame frame;
  const FrameLayout layout = layout_of(CameraFormat::MJPEG, 16, 16);
  ASSERT_TRUE(convert_frame(layout, jpeg.data(), jpeg.size(), &frame));
  const Bytes before(frame.bytes.get(), frame.bytes.get() + frame.size);
  jpeg.resize(jpeg.size() - 2);
  EXPECT_FALSE(convert_frame(layout, jpeg.data(), jpeg.size(), &frame));
  EXPECT_EQ(Bytes(frame.bytes.get(), frame.bytes.get() + frame.size), before);
  EXPECT_EQ(frame.width, 16u);
}

}  // namespace
}  // namespace orv::test
