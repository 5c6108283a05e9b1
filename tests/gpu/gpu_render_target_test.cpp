#include <orv/gpu/gpu_render_target.h>

#include <gtest/gtest.h>

#include <string>

namespace orv {
namespace {

TEST(GpuRenderTarget, StartsWithTheDescribedValues) {
  GpuRenderTarget target;
  EXPECT_EQ(std::string(target.name), "GpuRenderTarget_" + std::to_string(target.getid()));
  EXPECT_EQ(target.num_color_targets, 1u);
  EXPECT_EQ(target.width, 0);
  EXPECT_EQ(target.height, 0);
  EXPECT_EQ(target.depth_layers, 0);
  EXPECT_EQ(target.pixel_format, PF_UNKNOWN);
  EXPECT_EQ(target.msaa_samples, 0);
  EXPECT_TRUE(target.has_color);
  EXPECT_TRUE(target.has_depth);
  EXPECT_TRUE(target.has_stencil);
}

TEST(GpuRenderTarget, OpenGLBlockStartsWithTheDescribedConstants) {
  const GpuRenderTargetDataGL gl;
  EXPECT_EQ(gl.fbo, 0u);
  EXPECT_EQ(gl.target, 0x0DE1u);
  EXPECT_FALSE(gl.is_rectangle);
  EXPECT_FALSE(gl.is_cube);
  EXPECT_EQ(gl.color_filter, 0x2600u);
  EXPECT_EQ(gl.color_wrap, 0x2900u);
  EXPECT_EQ(gl.color_internal_format, 0x1908u);
  EXPECT_EQ(gl.color_format, 0x1908u);
  EXPECT_EQ(gl.color_type, 0x1401u);
  EXPECT_EQ(gl.depth_internal_format, 0x81A6u);
  EXPECT_EQ(gl.depth_filter, 0x2600u);
  EXPECT_EQ(gl.depth_wrap, 0x2900u);
  EXPECT_EQ(gl.num_color_renderbuffers, 0u);
  for (const unsigned int id : gl.color_renderbuffers) EXPECT_EQ(id, 0u);
  for (const unsigned int id : gl.color_textures) EXPECT_EQ(id, 0u);
  for (const unsigned int id :
       {gl.depth_renderbuffer, gl.depth_texture, gl.color_cube_texture, gl.depth_cube_texture}) {
    EXPECT_EQ(id, 0u);
  }
}

TEST(GpuRenderTarget, IdsDiffer) {
  GpuRenderTarget a;
  GpuRenderTarget b;
  EXPECT_NE(a.getid(), b.getid());
}

TEST(GpuRenderTarget, TextureGettersReadTheFields) {
  GpuRenderTarget target;
  target.gl.color_textures[0] = 11;
  target.gl.color_textures[7] = 17;
  target.gl.depth_texture = 20;
  target.gl.color_cube_texture = 30;
  target.gl.depth_cube_texture = 40;
  EXPECT_EQ(target.gl_get_color_texture(0), 11u);
  EXPECT_EQ(target.gl_get_color_texture(7), 17u);
  EXPECT_EQ(target.gl_get_depth_texture(), 20u);
  EXPECT_EQ(target.gl_get_color_cube_texture(), 30u);
  EXPECT_EQ(target.gl_get_depth_cube_texture(), 40u);
}

TEST(GpuRenderTarget, ColorTextureEightAndAboveIsZero) {
  GpuRenderTarget target;
  for (unsigned int& texture : target.gl.color_textures) texture = 5;
  EXPECT_EQ(target.gl_get_color_texture(8), 0u);
  EXPECT_EQ(target.gl_get_color_texture(0xFFFFFFFFu), 0u);
}

TEST(GpuRenderTarget, Direct3DFieldsAreStored) {
  GpuRenderTarget target;
  EXPECT_TRUE(target.d3d12.optimized_clear_color == vec4(0, 0, 0, 1));
  target.d3d12_set_optimized_clear_color(vec4(1, 2, 3, 4));
  target.d3d12_set_texture_update_options(5, 6);
  target.d3d12_set_depth_handle_index(77);
  EXPECT_TRUE(target.d3d12_set_color_handle_index(7, 88));
  EXPECT_FALSE(target.d3d12_set_color_handle_index(8, 99));
  EXPECT_TRUE(target.d3d12.optimized_clear_color == vec4(1, 2, 3, 4));
  EXPECT_EQ(target.d3d12.texture_update_options[0], 5);
  EXPECT_EQ(target.d3d12.texture_update_options[1], 6);
  EXPECT_EQ(target.d3d12.depth_handle, 77u);
  EXPECT_EQ(target.d3d12.color_handles[7], 88u);
  EXPECT_EQ(target.vk.word, 0u);
}

}  // namespace
}  // namespace orv
