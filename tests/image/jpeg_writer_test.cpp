#include "image/jpeg_writer.h"

#include "image/jpeg_tables.h"
#include "image/test_files.h"

#include <gtest/gtest.h>

// Wants stdio first.
#include <jpeglib.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace orv {
namespace {

using detail::write_jpeg;
using test::Bytes;
using test::TempFile;

struct Decoded {
  unsigned int width = 0;
  unsigned int height = 0;
  int components = 0;
  long warnings = -1;
  Bytes rgb;
  std::vector<int> sampling;
};

/// Decodes with the system's JPEG library; an error ends the test program, a warning is counted.
Decoded decode(const Bytes& file) {
  jpeg_decompress_struct info;
  jpeg_error_mgr errors;
  info.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&info);
  jpeg_mem_src(&info, file.data(), file.size());
  jpeg_read_header(&info, TRUE);
  Decoded decoded;
  decoded.components = info.num_components;
  for (int i = 0; i < info.num_components; ++i) {
    decoded.sampling.push_back(info.comp_info[i].h_samp_factor * 16 +
                               info.comp_info[i].v_samp_factor);
  }
  info.out_color_space = JCS_RGB;
  jpeg_start_decompress(&info);
  decoded.width = info.output_width;
  decoded.height = info.output_height;
  decoded.rgb.resize(std::size_t{decoded.width} * decoded.height * 3);
  while (info.output_scanline < info.output_height) {
    JSAMPROW row = decoded.rgb.data() + std::size_t{info.output_scanline} * decoded.width * 3;
    jpeg_read_scanlines(&info, &row, 1);
  }
  jpeg_finish_decompress(&info);
  decoded.warnings = info.err->num_warnings;
  jpeg_destroy_decompress(&info);
  return decoded;
}

/// Smooth in two directions, so that quality 90 keeps it close.
Bytes make_picture(unsigned int width, unsigned int height, unsigned int components) {
  Bytes pixels(std::size_t{width} * height * components);
  for (unsigned int y = 0; y < height; ++y) {
    for (unsigned int x = 0; x < width; ++x) {
      unsigned char* pixel = &pixels[(std::size_t{y} * width + x) * components];
      const unsigned int values[4] = {x * 255 / width, y * 255 / height,
                                      (x + y) * 255 / (width + height), x * 77 + y};
      for (unsigned int c = 0; c < components; ++c) {
        pixel[c] = static_cast<unsigned char>(values[c]);
      }
    }
  }
  return pixels;
}

Bytes write_and_read(unsigned int width, unsigned int height, int components, const Bytes& pixels) {
  const TempFile file("writer.jpg");
  EXPECT_TRUE(write_jpeg(file.path(), width, height, components, pixels.data()));
  return test::read_bytes(file.path());
}

TEST(JpegWriter, RefusesWhatItCannotWrite) {
  const Bytes pixels(64 * 4, 1);
  const TempFile file("refused.jpg");
  EXPECT_FALSE(write_jpeg(nullptr, 8, 8, 3, pixels.data()));
  EXPECT_FALSE(write_jpeg(file.path(), 8, 8, 3, nullptr));
  EXPECT_FALSE(write_jpeg(file.path(), 0, 8, 3, pixels.data()));
  EXPECT_FALSE(write_jpeg(file.path(), 8, 0, 3, pixels.data()));
  for (const int components : {-1, 0, 2, 5}) {
    EXPECT_FALSE(write_jpeg(file.path(), 8, 8, components, pixels.data()));
  }
  EXPECT_FALSE(write_jpeg(file.path(), 65536, 1, 1, pixels.data()));
  EXPECT_FALSE(write_jpeg(file.path(), 1, 65536, 1, pixels.data()));
  EXPECT_FALSE(file.exists());
  EXPECT_FALSE(write_jpeg("/no/such/folder/x.jpg", 8, 8, 3, pixels.data()));
}

TEST(JpegWriter, AFullDiskIsAFailure) {
  const Bytes pixels = make_picture(64, 64, 3);
  EXPECT_FALSE(write_jpeg("/dev/full", 64, 64, 3, pixels.data()));
}

TEST(JpegWriter, HeaderIsTheDescribedOne) {
  const Bytes file = write_and_read(0x123, 0x45, 3, make_picture(0x123, 0x45, 3));
  const Bytes start = {0xFF, 0xD8, 0xFF, 0xE0, 0, 0x10, 'J', 'F',  'I',  'F', 0,    1, 1,
                       0,    0,    1,    0,    1, 0,    0,   0xFF, 0xDB, 0,   0x84, 0};
  ASSERT_GT(file.size(), 623u);
  EXPECT_TRUE(std::equal(start.begin(), start.end(), file.begin()));
  // (16 * 20 + 50) / 100 and its neighbours in zig-zag order: 11, 12, 14, 12, 10.
  const Bytes luminance = {3, 2, 2, 3, 2, 2};
  EXPECT_TRUE(std::equal(luminance.begin(), luminance.end(), file.begin() + 25));
  EXPECT_EQ(file[25 + 64], 1);
  const Bytes chrominance = {3, 4, 4, 5, 4, 5};  // 17, 18, 18, 24, 21, 24
  EXPECT_TRUE(std::equal(chrominance.begin(), chrominance.end(), file.begin() + 25 + 65));
  const Bytes frame = {0xFF, 0xC0, 0, 0x11, 8, 0,    0x45, 1, 0x23, 3,    1, 0x11, 0, 2,
                       0x11, 1,    3, 0x11, 1, 0xFF, 0xC4, 1, 0xA2, 0x00, 0, 1,    5};
  EXPECT_TRUE(std::equal(frame.begin(), frame.end(), file.begin() + 25 + 129));
  const std::size_t scan = 25 + 129 + 19 + 2 + 0x1A2;
  const Bytes scan_header = {0xFF, 0xDA, 0, 0x0C, 3, 1, 0x00, 2, 0x11, 3, 0x11, 0, 0x3F, 0};
  EXPECT_TRUE(std::equal(scan_header.begin(), scan_header.end(),
                         file.begin() + static_cast<std::ptrdiff_t>(scan)));
  EXPECT_EQ(file[file.size() - 2], 0xFF);
  EXPECT_EQ(file.back(), 0xD9);
}

TEST(JpegWriter, StandardTablesHaveTheirSizes) {
  const auto sum = [](const auto& counts) {
    int total = 0;
    for (const unsigned char count : counts) total += count;
    return total;
  };
  EXPECT_EQ(sum(detail::JPEG_DC_LUMINANCE.counts), 12);
  EXPECT_EQ(sum(detail::JPEG_DC_CHROMINANCE.counts), 12);
  EXPECT_EQ(sum(detail::JPEG_AC_LUMINANCE.counts), 162);
  EXPECT_EQ(sum(detail::JPEG_AC_CHROMINANCE.counts), 162);
  const auto codes = detail::make_jpeg_codes(detail::JPEG_AC_LUMINANCE);
  EXPECT_EQ(codes.code[0x00], 0xA);  // end of block, 1010
  EXPECT_EQ(codes.length[0x00], 4);
  EXPECT_EQ(codes.code[0xF0], 0x7F9);  // run of 16
  EXPECT_EQ(codes.length[0xF0], 11);
}

TEST(JpegWriter, ABlackPixelIsThisVeryScan) {
  // Luminance: -1024 by 3 is -341: category 9, 1111110, then 010101010. Chrominance: nothing, 00.
  // End of block: 1010 and 00. Then seven bits of ones, of which full bytes count.
  const unsigned char black[3] = {0, 0, 0};
  const TempFile path("black.jpg");
  ASSERT_TRUE(write_jpeg(path.path(), 1, 1, 3, black));
  const Bytes file = test::read_bytes(path.path());
  const Bytes scan = {0xFC, 0xAA, 0xA0, 0x0F, 0xFF, 0xD9};
  ASSERT_GT(file.size(), scan.size());
  EXPECT_TRUE(std::equal(scan.rbegin(), scan.rend(), file.rbegin()));
}

struct SizeRow {
  unsigned int width;
  unsigned int height;
};

class JpegRoundTrip : public testing::TestWithParam<SizeRow> {};

TEST_P(JpegRoundTrip, AnotherDecoderSeesThePictureOnceMore) {
  const auto [width, height] = GetParam();
  for (const unsigned int components : {1u, 3u, 4u}) {
    const Bytes pixels = make_picture(width, height, components);
    const Decoded decoded =
        decode(write_and_read(width, height, static_cast<int>(components), pixels));
    EXPECT_EQ(decoded.width, width);
    EXPECT_EQ(decoded.height, height);
    EXPECT_EQ(decoded.components, 3);
    EXPECT_EQ(decoded.sampling, (std::vector<int>{0x11, 0x11, 0x11}));
    EXPECT_EQ(decoded.warnings, 0);
    int largest = 0;
    for (std::size_t i = 0; i < std::size_t{width} * height; ++i) {
      for (std::size_t c = 0; c < 3; ++c) {
        const int wanted = pixels[i * components + (components == 1 ? 0 : c)];
        largest = std::max(largest, std::abs(wanted - decoded.rgb[i * 3 + c]));
      }
    }
    EXPECT_LE(largest, width * height < 64 ? 24 : 12) << components << " components";
  }
}

INSTANTIATE_TEST_SUITE_P(Sizes, JpegRoundTrip,
                         testing::Values(SizeRow{1, 1}, SizeRow{8, 8}, SizeRow{7, 9},
                                         SizeRow{16, 3}, SizeRow{1, 40}, SizeRow{129, 65},
                                         SizeRow{640, 3}, SizeRow{256, 256}));

TEST(JpegWriter, HardEdgesAndNoiseDecodeWithoutAWarning) {
  // Noise makes large coefficients, long streams over the buffer's end, and bytes of ones.
  Bytes pixels(std::size_t{512} * 512 * 3);
  unsigned int state = 1;
  for (unsigned char& byte : pixels) {
    state = state * 1664525u + 1013904223u;
    byte = state & 0x80000000u ? 255 : static_cast<unsigned char>(state >> 16 & 1);
  }
  const Bytes file = write_and_read(512, 512, 3, pixels);
  EXPECT_GT(file.size(), 200000u);
  const Decoded decoded = decode(file);
  EXPECT_EQ(decoded.warnings, 0);
  double error = 0;
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    error += std::abs(static_cast<int>(pixels[i]) - decoded.rgb[i]);
  }
  EXPECT_LT(error / static_cast<double>(pixels.size()), 6.0);
}

TEST(JpegWriter, LastColumnAndRowAreRepeatedIntoTheBorder) {
  // With the border repeated a one-coloured picture stays one-coloured to the last bit.
  const Bytes flat(std::size_t{13} * 11 * 3, 200);
  const Decoded decoded = decode(write_and_read(13, 11, 3, flat));
  const auto [low, high] = std::minmax_element(decoded.rgb.begin(), decoded.rgb.end());
  EXPECT_EQ(*low, *high);
  EXPECT_NEAR(*low, 200, 2);
}

}  // namespace
}  // namespace orv
