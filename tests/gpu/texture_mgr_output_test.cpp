// TextureMgr: pictures that go straight to the GPU, to files and from the screen.
#include <orv/gpu/texture_mgr.h>

#include "gpu/texture_mgr_fixture.h"
#include "support/recording_renderer.h"

#include <gmock/gmock.h>

namespace orv {
namespace {

using test::Bytes;
using test::FakeCodec;
using test::RecordingRenderer;
using test::TextureMgrTest;
using testing::ElementsAre;

// ---- straight to the GPU ----

TEST_F(TextureMgrTest, UpdatesGpuMemoryWithoutTouchingThePixels) {
  FakeCodec codec("fake");
  Texture* texture = load(codec);
  ASSERT_NE(texture, nullptr);
  texture->get_pixmap_u8_ptr()[0] = 99;
  RecordingRenderer renderer;
  renderer.label(texture->get_data_ptr(), "data");
  EXPECT_TRUE(mgr.update_gpu_memory_from_file(&renderer, texture, "any", false, PF_RGB_U8));
  EXPECT_THAT(renderer.calls(), ElementsAre("texture_update_2d_v2(data, 0, 0, 2, 2, 1, ptr)"));
  EXPECT_EQ(texture->get_pixmap_u8_ptr()[0], 99);
  EXPECT_EQ(codec.frees, 1);
}

TEST_F(TextureMgrTest, GpuUpdateMarksATextureWhoseFormatItConverted) {
  FakeCodec codec("fake");
  Texture* texture = load(codec);
  ASSERT_NE(texture, nullptr);
  RecordingRenderer renderer;
  texture->get_data_ptr()->gpu_update_needed = false;
  EXPECT_TRUE(mgr.update_gpu_memory_from_file(&renderer, texture, "any", false, PF_RGB_U8));
  EXPECT_FALSE(texture->get_data_ptr()->gpu_update_needed);
  EXPECT_TRUE(mgr.update_gpu_memory_from_file(&renderer, texture, "any", false, PF_RGBA_U8));
  EXPECT_TRUE(texture->get_data_ptr()->gpu_update_needed);
}

TEST_F(TextureMgrTest, GpuUpdateGivesTheResultOfTheRenderer) {
  FakeCodec codec("stb");
  mgr.register_image_codec_plugin(&codec);
  RecordingRenderer renderer;
  renderer.answer("texture_update_2d_v2", 0);
  Texture* texture = mgr.create_texture_2d(2, 2, PF_RGB_U8, true);
  EXPECT_FALSE(mgr.update_gpu_memory_from_file(&renderer, texture, "any", false, PF_RGB_U8));
  EXPECT_EQ(mgr.get_last_image_codec(), &codec);
}

TEST_F(TextureMgrTest, UpdatesGpuMemoryBeforeAnyImageWasLoaded) {
  FakeCodec codec("stb");
  mgr.register_image_codec_plugin(&codec);
  ASSERT_EQ(mgr.get_last_image_codec(), nullptr);
  RecordingRenderer renderer;
  Texture* texture = mgr.create_texture_2d(2, 2, PF_RGB_U8, true);
  EXPECT_TRUE(mgr.update_gpu_memory_from_file(&renderer, texture, "any", false, PF_RGB_U8));
  EXPECT_EQ(codec.frees, 0);
  EXPECT_EQ(mgr.get_last_image_codec(), &codec);
}

TEST_F(TextureMgrTest, GpuUpdateConvertsAndRefusesAnotherSize) {
  class Looking : public RecordingRenderer {
   public:
    bool texture_update_2d_v2(TextureData*, int, int, int width, int height, int,
                              const void* pixels) override {
      const auto* bytes = static_cast<const unsigned char*>(pixels);
      seen.assign(bytes, bytes + width * height * 4);
      return true;
    }
    Bytes seen;
  };
  FakeCodec codec("stb");
  mgr.register_image_codec_plugin(&codec);
  Looking renderer;
  Texture* texture = mgr.create_texture_2d(2, 2, PF_RGB_U8, true);
  EXPECT_TRUE(mgr.update_gpu_memory_from_file(&renderer, texture, "any", false, PF_RGBA_U8));
  EXPECT_EQ(texture->get_pixel_format(), PF_RGBA_U8);
  EXPECT_EQ(renderer.seen[0], 40);
  EXPECT_EQ(renderer.seen[3], 255);  // three channels were decoded
  codec.width = 3;
  renderer.seen.clear();
  EXPECT_FALSE(mgr.update_gpu_memory_from_file(&renderer, texture, "any", false, PF_RGBA_U8));
  EXPECT_TRUE(renderer.seen.empty());
}

TEST_F(TextureMgrTest, GpuUpdateFreesLentPixels) {
  FakeCodec codec("stb");
  codec.lends = true;
  mgr.register_image_codec_plugin(&codec);
  RecordingRenderer renderer;
  Texture* texture = mgr.create_texture_2d(2, 2, PF_RGB_U8, true);
  EXPECT_TRUE(mgr.update_gpu_memory_from_file(&renderer, texture, "any", false, PF_RGB_U8));
  EXPECT_EQ(codec.frees, 1);
  EXPECT_FALSE(mgr.update_gpu_memory_from_file(nullptr, texture, "any", false, PF_RGB_U8));
  EXPECT_FALSE(mgr.update_gpu_memory_from_file(&renderer, nullptr, "any", false, PF_RGB_U8));
  EXPECT_FALSE(mgr.update_gpu_memory_from_file(&renderer, texture, nullptr, false, PF_RGB_U8));
}

// ---- writing ----

TEST_F(TextureMgrTest, WritesTexturesOfType2DOnly) {
  FakeCodec codec("fake"), fallback("stb");
  codec.can_save = false;
  mgr.register_image_codec_plugin(&fallback);
  Texture* texture = load(codec);
  EXPECT_TRUE(mgr.write_texture_2d_to_file(texture, "x"));
  EXPECT_EQ(codec.saves, 1);
  EXPECT_EQ(fallback.saves, 1);
  texture->get_data_ptr()->type = TEXTURE_RECTANGLE;
  EXPECT_FALSE(mgr.write_texture_2d_to_file(texture, "x"));
  EXPECT_FALSE(mgr.write_texture_2d_to_file(nullptr, "x"));
  EXPECT_FALSE(mgr.write_texture_2d_to_file(texture, nullptr));
  EXPECT_EQ(codec.saves, 1);
}

// ---- screenshots ----

class Screen : public RecordingRenderer {
 public:
  bool get_back_buffer_size(unsigned int* size, unsigned int* w, unsigned int* h) override {
    *size = width * height * 4;
    *w = width;
    *h = height;
    return true;
  }
  bool read_back_buffer_rgba(unsigned char* pixels) override {
    for (unsigned int i = 0; i < width * height * 4 && is_drawn; ++i) {
      pixels[i] = static_cast<unsigned char>(i + 1);
    }
    return can_read;
  }
  bool read_back_buffer_rect_rgba(unsigned char* pixels, int x, int y, int w, int h) override {
    for (int row = 0; row < h; ++row) {
      std::memset(pixels + row * w * 4, 10 * x + y + row, static_cast<std::size_t>(w) * 4);
    }
    return can_read;
  }
  unsigned int width = 2;
  unsigned int height = 2;
  bool can_read = true;
  bool is_drawn = true;  ///< else the caller's memory stays as it is
};

TEST_F(TextureMgrTest, ScreenshotIsWrittenByTheCurrentCodec) {
  FakeCodec codec("fake"), fallback("stb");
  mgr.register_image_codec_plugin(&codec);
  mgr.register_image_codec_plugin(&fallback);
  mgr.set_current_image_codec_name("fake");
  Screen screen;
  EXPECT_TRUE(mgr.do_screenshot(&screen, "x", false));
  EXPECT_EQ(codec.saves, 1);
  EXPECT_EQ(fallback.saves, 0);
  EXPECT_EQ(codec.saved.width, 2u);
  EXPECT_EQ(codec.saved.pixel_format, PF_BGRA_U8);  // holding RGBA
  EXPECT_EQ(codec.saved.u8_ptr[0], 1);
  EXPECT_TRUE(mgr.do_screenshot(&screen, "x", true));
  EXPECT_EQ(codec.saved.u8_ptr[0], 9);  // the upper row is the last one read
  codec.can_save = false;
  EXPECT_TRUE(mgr.do_screenshot(&screen, "x", false));
  EXPECT_EQ(fallback.saves, 1);
  fallback.can_save = false;
  EXPECT_FALSE(mgr.do_screenshot(&screen, "x", false));
}

TEST_F(TextureMgrTest, ScreenshotOfTheSameSizeDoesNotReallocate) {
  FakeCodec codec("stb");
  mgr.register_image_codec_plugin(&codec);
  Screen screen;
  screen.width = 7;
  ASSERT_TRUE(mgr.do_screenshot(&screen, "x", false));
  const unsigned char* store = mgr.get_screenshot_image()->u8_ptr;
  // A new block may come from the same place, but not with the old pixels in it.
  screen.is_drawn = false;
  ASSERT_TRUE(mgr.do_screenshot(&screen, "x", false));
  EXPECT_EQ(mgr.get_screenshot_image()->u8_ptr, store);
  for (int i = 0; i < 7 * 2 * 4; ++i) EXPECT_EQ(store[i], i + 1);
  ASSERT_TRUE(mgr.do_screenshot_v2(&screen, "x", 0, 0, 7, 2, false));
  EXPECT_EQ(mgr.get_screenshot_image()->u8_ptr, store);
  screen.height = 9;
  ASSERT_TRUE(mgr.do_screenshot(&screen, "x", false));
  EXPECT_EQ(mgr.get_screenshot_image()->height, 9u);
  EXPECT_EQ(mgr.get_screenshot_image()->get_u8_capacity(), 7u * 9u * 4u);
}

TEST_F(TextureMgrTest, ScreenshotAfterACodecThatChangedTheImage) {
  FakeCodec codec("stb");
  codec.spoils = true;
  mgr.register_image_codec_plugin(&codec);
  Screen screen;
  for (int i = 0; i < 2; ++i) {
    ASSERT_TRUE(mgr.do_screenshot(&screen, "x", false));
    EXPECT_EQ(codec.saved.pixel_format, PF_BGRA_U8);
    EXPECT_EQ(codec.saved.get_u8_capacity(), 16u);
    EXPECT_EQ(codec.saved.u8_ptr[15], 16);
  }
}

TEST_F(TextureMgrTest, ScreenshotOffersThePictureToAllCodecsOfTheName) {
  FakeCodec first("stb"), second("stb"), longer("stbx");
  first.can_save = false;
  mgr.register_image_codec_plugin(&longer);
  mgr.register_image_codec_plugin(&first);
  mgr.register_image_codec_plugin(&second);
  Screen screen;
  EXPECT_TRUE(mgr.do_screenshot(&screen, "x", false));
  EXPECT_EQ(first.saves, 1);
  EXPECT_EQ(second.saves, 1);
  EXPECT_EQ(longer.saves, 0);
}

TEST_F(TextureMgrTest, ScreenshotOfARectangle) {
  FakeCodec codec("stb");
  mgr.register_image_codec_plugin(&codec);
  Screen screen;
  EXPECT_TRUE(mgr.do_screenshot_v2(&screen, "x", 3, 4, 5, 6, false));
  EXPECT_EQ(codec.saved.width, 5u);
  EXPECT_EQ(codec.saved.height, 6u);
  EXPECT_EQ(codec.saved.pixel_format, PF_BGRA_U8);
  EXPECT_EQ(codec.saved.get_u8_capacity(), 5u * 6u * 4u);
  EXPECT_EQ(codec.saved.u8_ptr[0], 34);
  EXPECT_TRUE(mgr.do_screenshot_v2(&screen, "x", 3, 4, 5, 6, true));
  EXPECT_EQ(codec.saved.u8_ptr[0], 39);  // the upper row is the last one read
  EXPECT_FALSE(mgr.do_screenshot_v2(&screen, "x", 0, 0, 0, 6, true));
  EXPECT_FALSE(mgr.do_screenshot_v2(&screen, "x", 0, 0, 5, -1, true));
  EXPECT_FALSE(mgr.do_screenshot_v2(nullptr, "x", 0, 0, 5, 6, true));
  EXPECT_FALSE(mgr.do_screenshot_v2(&screen, nullptr, 0, 0, 5, 6, true));
}

TEST_F(TextureMgrTest, ScreenshotNeedsARendererANameAndAPicture) {
  Screen screen;
  EXPECT_FALSE(mgr.do_screenshot(nullptr, "x", false));
  EXPECT_FALSE(mgr.do_screenshot(&screen, nullptr, false));
  EXPECT_FALSE(mgr.do_screenshot(&screen, "x", false));  // no codec
  RecordingRenderer blind;
  mgr.register_image_codec_plugin(&stb);
  EXPECT_FALSE(mgr.do_screenshot(&blind, "x", false));
  screen.can_read = false;
  EXPECT_FALSE(mgr.do_screenshot(&screen, "x", false));
  EXPECT_FALSE(mgr.do_screenshot_v2(&screen, "x", 0, 0, 5, 6, false));
  screen.can_read = true;
  screen.width = 0;
  EXPECT_FALSE(mgr.do_screenshot(&screen, "x", false));
}

}  // namespace
}  // namespace orv
