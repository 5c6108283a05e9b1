#include <orv/image/image_codec_stb.h>

#include "image/test_files.h"
#include "support/vtable_slot.h"

#include <orv/image/image.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace orv {
namespace {

using test::Bytes;
using test::TempFile;
using test::vtable_slot;

Bytes small_picture() { return test::read_bytes(test::data_path("img/png/basn6a08.png")); }

TEST(ImageCodecStb, FillsItsPluginRecord) {
  const ImageCodecStb codec;
  EXPECT_EQ(codec.get_type(), PLUGIN_TYPE_IMAGE_CODEC);
  EXPECT_STREQ(codec.get_name(), "stb");
  EXPECT_STREQ(codec.get_description(),
               "STB image loader. Supported formats: *.JPEG, *.PNG, *.TGA, *.BMP, *.PSD, *.GIF, "
               "*.HDR, *.PIC");
  EXPECT_STRNE(codec.get_author(), "");
  EXPECT_EQ(std::string(codec.get_build_info()).rfind("BUILD_DATE: [", 0), 0u);
  EXPECT_NE(std::string(codec.get_build_info()).find("] - BUILD_TIME: ["), std::string::npos);
  EXPECT_EQ(codec.get_version_major(), 0);
  EXPECT_EQ(codec.get_version_minor(), 1);
  EXPECT_EQ(codec.get_version_patch(), 0);
}

TEST(ImageCodecStb, OperationsStandBehindThoseOfPlugin) {
  const std::size_t stop = vtable_slot(&Plugin::stop);
  EXPECT_EQ(vtable_slot(&ImageCodec::load_image_from_file), stop + 1);
  EXPECT_EQ(vtable_slot(&ImageCodec::load_image_from_memory), stop + 2);
  EXPECT_EQ(vtable_slot(&ImageCodec::save_image_to_file), stop + 3);
  EXPECT_EQ(vtable_slot(&ImageCodec::free_image_resources), stop + 4);
}

// ---- loading ----

TEST(ImageCodecStb, TheWantedFormatChoosesTheChannels) {
  struct Row {
    int wanted;
    PIXEL_FORMAT given;
  };
  const Row rows[] = {{1, PF_RGB_U8}, {2, PF_RGB_U8}, {3, PF_RGBA_U8}, {4, PF_RGB_U8},
                      {5, PF_RGB_U8}, {6, PF_RGB_U8}, {7, PF_RGB_U8},  {9, PF_RGB_U8},
                      {11, PF_R_U8},  {12, PF_RG_U8}, {0, PF_RGB_U8},  {30, PF_RGB_U8}};
  Bytes data = small_picture();
  ImageCodecStb codec;
  for (const Row& row : rows) {
    Image image;
    ASSERT_TRUE(codec.load_image_from_memory(&image, data.data(),
                                             static_cast<unsigned int>(data.size()), false,
                                             static_cast<PIXEL_FORMAT>(row.wanted)));
    EXPECT_EQ(image.pixel_format, row.given) << row.wanted;
    EXPECT_EQ(image.width, 32u);
    EXPECT_EQ(image.height, 32u);
    EXPECT_EQ(image.depth, 1u);
    EXPECT_TRUE(image.owns_pixels);
    EXPECT_EQ(image.get_u8_capacity(), 1024u * image.get_pixel_format_size());
  }
}

TEST(ImageCodecStb, TheFlipOptionIsIgnored) {
  Bytes data = small_picture();
  const auto size = static_cast<unsigned int>(data.size());
  ImageCodecStb codec;
  Image plain, flipped;
  ASSERT_TRUE(codec.load_image_from_memory(&plain, data.data(), size, false, PF_RGBA_U8));
  ASSERT_TRUE(codec.load_image_from_memory(&flipped, data.data(), size, true, PF_RGBA_U8));
  EXPECT_EQ(std::memcmp(plain.u8_ptr, flipped.u8_ptr, plain.get_u8_capacity()), 0);
}

TEST(ImageCodecStb, NullArgumentsAreRefused) {
  Bytes data = small_picture();
  const auto size = static_cast<unsigned int>(data.size());
  ImageCodecStb codec;
  Image image;
  EXPECT_FALSE(codec.load_image_from_memory(nullptr, data.data(), size, false, PF_RGB_U8));
  EXPECT_FALSE(codec.load_image_from_memory(&image, nullptr, size, false, PF_RGB_U8));
  EXPECT_FALSE(codec.load_image_from_memory(&image, data.data(), 0, false, PF_RGB_U8));
  EXPECT_FALSE(codec.load_image_from_file(&image, nullptr, false, PF_RGB_U8));
  EXPECT_FALSE(codec.load_image_from_file(nullptr, "x", false, PF_RGB_U8));
  EXPECT_FALSE(codec.save_image_to_file(nullptr, "x"));
  EXPECT_FALSE(codec.save_image_to_file(&image, nullptr));
}

TEST(ImageCodecStb, AFailedDecodeLeavesTheImage) {
  Bytes data = small_picture();
  ImageCodecStb codec;
  Image image;
  ASSERT_TRUE(image.create(3, 3, 1, PF_R_U8, true, true));
  unsigned char* store = image.u8_ptr;
  EXPECT_FALSE(codec.load_image_from_memory(&image, data.data(), 40, false, PF_RGB_U8));
  EXPECT_EQ(image.width, 3u);
  EXPECT_EQ(image.pixel_format, PF_R_U8);
  EXPECT_EQ(image.u8_ptr, store);
}

/// Notes what the decoder is handed.
class SizeNotingCodec : public ImageCodecStb {
 public:
  bool load_image_from_memory(Image* image, unsigned char* data, unsigned int size, bool option,
                              PIXEL_FORMAT format) override {
    seen_size = size;
    last_byte = data[size - 1];
    return ImageCodecStb::load_image_from_memory(image, data, size, option, format);
  }
  unsigned int seen_size = 0;
  int last_byte = -1;
};

TEST(ImageCodecStb, TheDecoderSeesAZeroBehindTheFile) {
  const std::string path = test::data_path("img/png/basn6a08.png");
  SizeNotingCodec codec;
  Image image;
  EXPECT_TRUE(codec.load_image_from_file(&image, path.c_str(), false, PF_RGB_U8));
  EXPECT_EQ(codec.seen_size, test::read_bytes(path).size() + 1);
  EXPECT_EQ(codec.last_byte, 0);
}

TEST(ImageCodecStb, AnEmptyFileIsOneZeroByteThatNoDecoderTakes) {
  const TempFile file("empty");
  test::write_bytes(file.path(), {});
  SizeNotingCodec codec;
  Image image;
  EXPECT_FALSE(codec.load_image_from_file(&image, file.path(), false, PF_RGB_U8));
  EXPECT_EQ(codec.seen_size, 1u);
}

TEST(ImageCodecStb, MissingFilesAndDirectoriesAreRefused) {
  ImageCodecStb codec;
  Image image;
  EXPECT_FALSE(codec.load_image_from_file(&image, "/no/such/file", false, PF_RGB_U8));
  EXPECT_FALSE(codec.load_image_from_file(&image, "/tmp", false, PF_RGB_U8));
  EXPECT_FALSE(codec.load_image_from_file(&image, "/dev/null", false, PF_RGB_U8));
}

TEST(ImageCodecStb, AShortFileOfAHugePictureIsRefused) {
  // A TGA header that claims 16000 by 16000 pixels of run-length data that are not there.
  Bytes tga(18 + 16);
  tga[2] = 10;
  tga[12] = tga[14] = 0x80;
  tga[13] = tga[15] = 0x3E;
  tga[16] = 24;
  ImageCodecStb codec;
  Image image;
  EXPECT_FALSE(codec.load_image_from_memory(
      &image, tga.data(), static_cast<unsigned int>(tga.size()), false, PF_RGB_U8));
}

// ---- saving ----

bool is_jpeg(const char* path) {
  const Bytes bytes = test::read_bytes(path);
  return bytes.size() > 4 && bytes[0] == 0xFF && bytes[1] == 0xD8 &&
         bytes[bytes.size() - 2] == 0xFF && bytes.back() == 0xD9;
}

TEST(ImageCodecStb, SavesAJpegWhateverTheName) {
  const TempFile file("x.png");
  Image image;
  ASSERT_TRUE(image.create(8, 8, 1, PF_RGB_U8, true, true));
  ImageCodecStb codec;
  EXPECT_TRUE(codec.save_image_to_file(&image, file.path()));
  EXPECT_TRUE(is_jpeg(file.path()));
}

TEST(ImageCodecStb, SavesTheFormatsItCanAndMakesNoFileForOthers) {
  ImageCodecStb codec;
  for (const int number : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}) {
    const auto format = static_cast<PIXEL_FORMAT>(number);
    const TempFile file("format.jpg");
    Image image;
    if (!image.create(9, 5, 1, format, true, true)) {
      image.create(9, 5, 1, format, false, false);
    }
    const bool is_saved = (number >= 1 && number <= 6) || number == 11;
    EXPECT_EQ(codec.save_image_to_file(&image, file.path()), is_saved) << number;
    EXPECT_EQ(file.exists(), is_saved) << number;
  }
}

TEST(ImageCodecStb, SavingNeedsPixels) {
  ImageCodecStb codec;
  const TempFile file("none.jpg");
  Image image;
  image.create(8, 8, 1, PF_RGBA_U8, false, false);
  EXPECT_FALSE(codec.save_image_to_file(&image, file.path()));
  ASSERT_TRUE(image.create(2, 2, 1, PF_RGBA_U8, true, true));
  image.create(800, 800, 1, PF_RGBA_U8, false, false);
  EXPECT_FALSE(codec.save_image_to_file(&image, file.path()));
  ASSERT_TRUE(image.create(0, 4, 1, PF_RGBA_U8, true, true));
  EXPECT_FALSE(codec.save_image_to_file(&image, file.path()));
  EXPECT_FALSE(file.exists());
}

TEST(ImageCodecStb, SavesBorrowedPixels) {
  Bytes borrowed(64 * 3, 90);
  const TempFile file("borrowed.jpg");
  Image image;
  image.create(8, 8, 1, PF_RGB_U8, false, false);
  image.codec_pixels = borrowed.data();
  ImageCodecStb codec;
  EXPECT_TRUE(codec.save_image_to_file(&image, file.path()));
}

TEST(ImageCodecStb, FloatsAreSavedAsTheirBytes) {
  Image floats, bytes;
  ASSERT_TRUE(floats.create(16, 16, 1, PF_RGBA_F32, true, true));
  for (int i = 0; i < 16 * 16 * 4; ++i) floats.f32_ptr[i] = static_cast<float>(i % 97) / 80.0f;
  bytes = floats;
  ASSERT_TRUE(bytes.update_pixel_format(PF_RGB_U8));
  ImageCodecStb codec;
  const TempFile a("a.jpg"), b("b.jpg"), c("c.jpg");
  ASSERT_TRUE(codec.save_image_to_file(&floats, a.path()));
  ASSERT_TRUE(codec.save_image_to_file(&bytes, b.path()));
  ASSERT_TRUE(floats.update_pixel_format(PF_RGB_F32));
  ASSERT_TRUE(codec.save_image_to_file(&floats, c.path()));
  EXPECT_EQ(test::read_bytes(a.path()), test::read_bytes(b.path()));
  EXPECT_EQ(test::read_bytes(a.path()), test::read_bytes(c.path()));
}

TEST(ImageCodecStb, AlphaIsDropped) {
  Image image;
  ASSERT_TRUE(image.create(16, 16, 1, PF_RGBA_U8, true, true));
  ImageCodecStb codec;
  const TempFile a("a.jpg"), b("b.jpg");
  ASSERT_TRUE(codec.save_image_to_file(&image, a.path()));
  image.fill_color_rgba_u8(0, 0, 0, 255);
  ASSERT_TRUE(codec.save_image_to_file(&image, b.path()));
  EXPECT_EQ(test::read_bytes(a.path()), test::read_bytes(b.path()));
}

TEST(ImageCodecStb, SavingIntoAMissingFolderIsRefused) {
  Image image;
  ASSERT_TRUE(image.create(1, 1, 1, PF_R_U8, true, true));
  ImageCodecStb codec;
  EXPECT_FALSE(codec.save_image_to_file(&image, "/no/such/folder/x.jpg"));
}

TEST(ImageCodecStb, FreesBorrowedPixelsOnce) {
  ImageCodecStb codec;
  Image image;
  EXPECT_FALSE(codec.free_image_resources(nullptr));
  EXPECT_FALSE(codec.free_image_resources(&image));
  image.codec_pixels = new unsigned char[4];
  EXPECT_TRUE(codec.free_image_resources(&image));
  EXPECT_EQ(image.codec_pixels, nullptr);
  EXPECT_FALSE(codec.free_image_resources(&image));
}

}  // namespace
}  // namespace orv
