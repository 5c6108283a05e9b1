#pragma once

#include "image/test_files.h"

#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/image/image.h>
#include <orv/image/image_codec_stb.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace orv::test {

/// Gives one-coloured pictures without a file, and counts what it is asked for.
class FakeCodec : public ImageCodec {
 public:
  explicit FakeCodec(const char* name) { set_name(name); }

  bool load_image_from_file(Image* image, const char*, bool option, PIXEL_FORMAT format) override {
    ++loads;
    last_option = option;
    last_format = format;
    return give(image);
  }
  bool load_image_from_memory(Image* image, unsigned char*, unsigned int, bool option,
                              PIXEL_FORMAT format) override {
    ++loads;
    last_option = option;
    last_format = format;
    return give(image);
  }
  bool save_image_to_file(Image* image, const char*) override {
    ++saves;
    saved = *image;
    if (spoils) image->create(image->width, image->height, 1, PF_R_U8, true, true);
    return can_save;
  }
  bool free_image_resources(Image* image) override {
    ++frees;
    if (!image || !image->codec_pixels) return false;
    image->codec_pixels = nullptr;
    return true;
  }

  bool succeeds = true;
  bool can_save = true;
  bool spoils = false;  ///< makes another image of the one that it writes
  bool lends = false;   ///< the picture stays in `pixels`
  unsigned int width = 2;
  unsigned int height = 2;
  PIXEL_FORMAT given_format = PF_RGB_U8;
  int loads = 0;
  int saves = 0;
  int frees = 0;
  bool last_option = false;
  PIXEL_FORMAT last_format = PF_UNKNOWN;
  Bytes pixels = Bytes(256, 40);
  Image saved;

 private:
  bool give(Image* image) {
    if (!succeeds) return false;
    if (!image->create(width, height, 1, given_format, true, !lends)) return false;
    if (lends) image->codec_pixels = pixels.data();
    if (!lends && image->u8_ptr) std::memset(image->u8_ptr, 40, image->get_u8_capacity());
    return true;
  }
};

/// An uncompressed TGA file of these pixels, upper row first.
inline Bytes tga_rgb(unsigned char width, unsigned char height, const Bytes& rgb) {
  Bytes file = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, width, 0, height, 0, 24, 0x20};
  for (std::size_t i = 0; i + 2 < rgb.size(); i += 3) {
    file.insert(file.end(), {rgb[i + 2], rgb[i + 1], rgb[i]});
  }
  return file;
}

class TextureMgrTest : public testing::Test {
 protected:
  void SetUp() override {
    mgr.stop(nullptr);
    mgr.set_current_image_codec_name("stb");
  }
  void TearDown() override {
    mgr.stop(nullptr);
    mgr.set_current_image_codec_name("stb");
  }

  void use(ImageCodec& codec) {
    mgr.register_image_codec_plugin(&codec);
    mgr.set_current_image_codec_name(codec.get_name());
  }

  Texture* load(FakeCodec& codec) {
    use(codec);
    return mgr.create_texture_2d_from_file("any", false, PF_RGB_U8);
  }

  TextureMgr& mgr = *TextureMgr::get();
  ImageCodecStb stb;
};

/// A picture of 32 x 32 pixels with an alpha channel.
inline std::string sample() { return data_path("img/png/basn6a08.png"); }

}  // namespace orv::test
