#include <orv/gpu/texture.h>

#include "support/held.h"
#include "support/recording_renderer.h"

#include <orv/gpu/gpu_render_target.h>
#include <orv/gpu/texture_data.h>
#include <orv/image/image.h>
#include <orv/math/vec4.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace orv {
namespace {

using test::Held;
using test::RecordingRenderer;
using testing::ElementsAre;

using Bytes = std::vector<unsigned char>;

/// Runs an operation on a block that counts as up to date and tells whether it counts so after.
template <typename Operation>
bool marks_update(Texture& texture, Operation operation) {
  texture.get_data_ptr()->gpu_update_needed = false;
  EXPECT_TRUE(operation());
  return texture.get_data_ptr()->gpu_update_needed;
}

// ---- copies ----

struct CopyRow {
  PIXEL_FORMAT format;
  bool (Texture::*copy)(const void*);
  bool (Texture::*copy_layer)(unsigned int, const void*);
};
constexpr CopyRow COPIES[] = {
    {PF_RGB_U8, &Texture::update_pixmap_rgb_u8, &Texture::update_pixmap_rgb_u8_2d_array},
    {PF_RGBA_U8, &Texture::update_pixmap_rgba_u8, &Texture::update_pixmap_rgba_u8_2d_array},
    {PF_R_U8, &Texture::update_pixmap_r_u8, &Texture::update_pixmap_r_u8_2d_array},
    {PF_RGB_F32, &Texture::update_pixmap_rgb_f32, &Texture::update_pixmap_rgb_f32_2d_array},
    {PF_RGBA_F32, &Texture::update_pixmap_rgba_f32, &Texture::update_pixmap_rgba_f32_2d_array},
    {PF_R_F32, &Texture::update_pixmap_r_f32, &Texture::update_pixmap_r_f32_2d_array}};

TEST(TexturePixels, CopiesIntoTheImageAndIntoLayers) {
  const Bytes pixels(64, 0x3F);
  for (const CopyRow& row : COPIES) {
    Held<Texture> texture;
    ASSERT_TRUE(texture->create_2d(2, 2, row.format, true));
    const std::size_t size = 4 * Image::get_pixel_format_size(row.format);
    EXPECT_TRUE(marks_update(*texture, [&] { return (*texture.*row.copy)(pixels.data()); }));
    EXPECT_EQ(std::memcmp(texture->get_pixmap_ptr(), pixels.data(), size), 0);
    EXPECT_FALSE((*texture.*row.copy)(nullptr));
    EXPECT_FALSE((*texture.*row.copy_layer)(0, pixels.data()));
    ASSERT_TRUE(texture->create_2d_array(2, 2, 2, row.format, true));
    EXPECT_TRUE(
        marks_update(*texture, [&] { return (*texture.*row.copy_layer)(1, pixels.data()); }));
    const Image* layer = texture->get_layer_image_ptr(1);
    const void* store = layer->u8_ptr ? static_cast<void*>(layer->u8_ptr) : layer->f32_ptr;
    EXPECT_EQ(std::memcmp(store, pixels.data(), size), 0);
    EXPECT_FALSE((*texture.*row.copy_layer)(2, pixels.data()));
    EXPECT_FALSE((*texture.*row.copy_layer)(1, nullptr));
  }
}

TEST(TexturePixels, CopiesNeedAStoreAndStayInIt) {
  const Bytes pixels(64, 1);
  Held<Texture> texture;
  EXPECT_FALSE(texture->update_pixmap_rgb_u8(pixels.data()));
  ASSERT_TRUE(texture->create_2d(4, 4, PF_RGB_U8, true));
  EXPECT_TRUE(texture->update_pixmap_rgba_u8(pixels.data()));  // clipped
}

TEST(TexturePixels, CanBeAViewOfHandedInPixels) {
  unsigned char bytes[4] = {};
  float floats[4] = {};
  Held<Texture> texture;
  EXPECT_TRUE(texture->set_pixmap_u8_ptr(bytes));
  EXPECT_TRUE(texture->set_pixmap_f32_ptr(floats));
  EXPECT_EQ(texture->get_pixmap_u8_ptr(), bytes);
  EXPECT_EQ(texture->get_pixmap_f32_ptr(), floats);
}

// ---- renderer ----

TEST(TexturePixels, BackBufferIsReadIntoAnImageOfItsSize) {
  class Reading : public RecordingRenderer {
   public:
    bool get_back_buffer_size(unsigned int* size, unsigned int* width,
                              unsigned int* height) override {
      *size = 3 * 2 * 4;
      *width = 3;
      *height = 2;
      return true;
    }
    bool read_back_buffer_rgba(unsigned char* pixels) override {
      std::memset(pixels, 8, 24);
      return true;
    }
  };
  Reading renderer;
  Held<Texture> texture;
  ASSERT_TRUE(texture->create_1d(4, PF_R_U8, true));
  EXPECT_TRUE(marks_update(
      *texture, [&] { return texture->update_pixmap_rgba_u8_from_framebuffer(&renderer); }));
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_2D);
  EXPECT_EQ(texture->get_pixel_format(), PF_RGBA_U8);
  EXPECT_EQ(texture->get_width(), 3u);
  unsigned char* store = texture->get_pixmap_u8_ptr();
  EXPECT_EQ(store[23], 8);
  EXPECT_TRUE(texture->update_pixmap_rgba_u8_from_framebuffer(&renderer));
  EXPECT_EQ(texture->get_pixmap_u8_ptr(), store);
  RecordingRenderer without;
  EXPECT_FALSE(texture->update_pixmap_rgba_u8_from_framebuffer(&without));
  EXPECT_FALSE(texture->update_pixmap_rgba_u8_from_framebuffer(nullptr));
}

TEST(TexturePixels, RenderTargetsAreReadIntoAnImageOfTheirSize) {
  GpuRenderTarget target;
  target.width = 5;
  target.height = 4;
  RecordingRenderer renderer;
  renderer.answer("gpu_render_target_read_rgb_u8", 1);
  renderer.answer("gpu_render_target_read_rgba_u8", 1);
  Held<Texture> texture;
  EXPECT_TRUE(texture->update_pixmap_rgb_u8_from_render_target(&renderer, &target));
  EXPECT_EQ(texture->get_pixel_format(), PF_RGB_U8);
  EXPECT_EQ(texture->get_image_ptr()->get_u8_capacity(), 60u);
  EXPECT_TRUE(texture->update_pixmap_rgba_u8_from_render_target(&renderer, &target));
  EXPECT_EQ(texture->get_image_ptr()->get_u8_capacity(), 80u);
  EXPECT_THAT(renderer.names(),
              ElementsAre("gpu_render_target_read_rgb_u8", "gpu_render_target_read_rgba_u8"));
  EXPECT_FALSE(texture->update_pixmap_rgb_u8_from_render_target(nullptr, &target));
  EXPECT_FALSE(texture->update_pixmap_rgb_u8_from_render_target(&renderer, nullptr));
  target.width = -1;
  EXPECT_FALSE(texture->update_pixmap_rgb_u8_from_render_target(&renderer, &target));
}

TEST(TexturePixels, HandleOfARenderTargetBecomesTheApiObject) {
  GpuRenderTarget target;
  target.width = 5;
  target.height = 4;
  target.pixel_format = PF_BGRA_U8;
  RecordingRenderer renderer;
  renderer.answer("gpu_render_target_get_color_texture_handle", 31);
  Held<Texture> texture;
  ASSERT_TRUE(texture->create_1d(2, PF_RGBA_U8, true));
  texture->get_data_ptr()->pixel_buffer_id = 6;
  EXPECT_TRUE(texture->update_pixmap_rgba_u8_from_render_target_v2(&renderer, &target));
  const TextureData& data = *texture->get_data_ptr();
  EXPECT_EQ(data.gl_texture_id, 31u);
  EXPECT_EQ(data.pixel_buffer_id, 0u);
  EXPECT_EQ(data.type, TEXTURE_2D);
  EXPECT_EQ(data.image.width, 5u);
  EXPECT_EQ(data.image.height, 4u);
  EXPECT_EQ(data.image.depth, 1u);
  EXPECT_EQ(data.image.pixel_format, PF_RGBA_U8);
  EXPECT_EQ(data.image.u8_ptr, nullptr);  // two pixels were too few
}

TEST(TexturePixels, AHandleOfZeroLeavesNoApiObjectAndIsFalse) {
  GpuRenderTarget target;
  target.pixel_format = PF_RGBA_U8;
  RecordingRenderer renderer;  // answers 0, as OpenGL does
  Held<Texture> texture;
  EXPECT_FALSE(texture->update_pixmap_rgba_u8_from_render_target_v2(&renderer, &target));
  EXPECT_EQ(texture->get_opengl_texture_id(), 0u);
  target.pixel_format = PF_RGB_U8;
  renderer.clear();
  EXPECT_FALSE(texture->update_pixmap_rgba_u8_from_render_target_v2(&renderer, &target));
  EXPECT_TRUE(renderer.calls().empty());
  EXPECT_FALSE(texture->update_pixmap_rgba_u8_from_render_target_v2(nullptr, &target));
}

// ---- texels ----

TEST(TexturePixels, TexelsAreThoseOfTheImage) {
  Held<Texture> texture;
  ASSERT_TRUE(texture->create_2d(3, 2, PF_RGBA_U8, true));
  const vec4 color(51, 102, 153, 255);
  EXPECT_TRUE(marks_update(*texture, [&] { return texture->set_texel_1d(0, color); }));
  EXPECT_TRUE(texture->set_texel_1d_v2(1, color.ptr()));
  EXPECT_TRUE(texture->set_texel_2d(2, 0, color));
  EXPECT_TRUE(texture->set_texel_2d_v2(0, 1, color.ptr()));
  EXPECT_TRUE(texture->set_texel_2d_v3(4, color.ptr()));
  float out[4];
  for (unsigned int i = 0; i < 5; ++i) {
    ASSERT_TRUE(texture->get_texel_1d(i, out));
    EXPECT_EQ(out[1], 102 / 255.0f) << i;
  }
  EXPECT_TRUE(texture->get_texel_2d_v1(5, out));
  EXPECT_EQ(out[1], 0.0f);
  EXPECT_TRUE(texture->get_texel_2d_v2(1, 1, out));
  EXPECT_EQ(out[2], 153 / 255.0f);
  EXPECT_FALSE(texture->get_texel_2d_v1(6, out));
  EXPECT_FALSE(texture->set_texel_2d(0, 2, color));
}

TEST(TexturePixels, TexelsOfLayersTakeTheLayerFirst) {
  Held<Texture> texture;
  ASSERT_TRUE(texture->create_2d_array(3, 2, 2, PF_R_U8, true));
  const vec4 color(255, 0, 0, 0);
  EXPECT_TRUE(texture->set_texel_2d_array_v1(1, 5, color));
  EXPECT_TRUE(texture->set_texel_2d_array_v2(1, 0, 1, color.ptr()));
  EXPECT_TRUE(texture->set_texel_2d_array_v3(0, 1, color.ptr()));
  EXPECT_EQ(texture->get_layer_image_ptr(1)->u8_ptr[5], 255);
  EXPECT_EQ(texture->get_layer_image_ptr(1)->u8_ptr[3], 255);
  float out[4];
  EXPECT_TRUE(texture->get_texel_2d_array_v1(0, 1, out));
  EXPECT_EQ(out[0], 1.0f);
  EXPECT_TRUE(texture->get_texel_2d_array_v2(1, 2, 1, out));
  EXPECT_EQ(out[0], 1.0f);
  EXPECT_FALSE(texture->get_texel_2d_array_v1(2, 0, out));
  EXPECT_FALSE(texture->set_texel_2d_array_v1(2, 0, color));
}

// ---- whole image ----

TEST(TexturePixels, WholeImageOperationsMarkTheBlockOnSuccess) {
  const vec4 color(1, 1, 1, 1);
  Image map;
  ASSERT_TRUE(map.create(2, 2, 1, PF_R_U8, true, true));
  Held<Texture> texture;
  ASSERT_TRUE(texture->create_2d(2, 2, PF_RGBA_U8, true));
  Texture& t = *texture;
  EXPECT_TRUE(marks_update(t, [&] { return t.fill_with_noise(1, color, color, 1); }));
  EXPECT_TRUE(marks_update(t, [&] { return t.inject_opacity_map_to_alpha_channel(&map); }));
  EXPECT_EQ(t.get_pixmap_u8_ptr()[3], 0);
  EXPECT_TRUE(marks_update(t, [&] { return t.update_alpha_channel_smooth(1); }));
  EXPECT_TRUE(marks_update(t, [&] { return t.update_alpha_channel_binary(color, 1); }));
  EXPECT_TRUE(marks_update(t, [&] { return t.flip_horizontal(); }));
  EXPECT_TRUE(marks_update(t, [&] { return t.flip_vertical(); }));
  EXPECT_TRUE(marks_update(t, [&] { return t.update_pixel_format(PF_R_F32); }));
  t.get_data_ptr()->gpu_update_needed = false;
  EXPECT_FALSE(t.flip_vertical());
  EXPECT_FALSE(t.update_pixel_format(PF_R_F32));
  EXPECT_FALSE(t.get_data_ptr()->gpu_update_needed);
}

}  // namespace
}  // namespace orv
