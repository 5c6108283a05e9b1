#include <orv/gpu/gpu_render_target.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/math/mat4.h>

#include "render/opengl/gl_fixture.h"
#include "render/opengl/textured_quad.h"

using namespace orv;
using namespace orv::test;

namespace {

class RenderTargetsGlTest : public GlTest {
 public:
  TexturedQuad::Tools tools() {
    return {renderer, vertex_header(), pixel_header(), has_modern_shaders()};
  }

 protected:
  void SetUp() override {
    GlTest::SetUp();
    if (IsSkipped()) return;
    if (!renderer.gl().glGenFramebuffers) GTEST_SKIP() << "no framebuffer objects";
    if (!renderer.gl().glClearBufferfv) GTEST_SKIP() << "no clearing of single attachments";
  }
  void TearDown() override {
    renderer.gpu_render_target_killall(nullptr);
    GlTest::TearDown();
  }
  GpuRenderTarget* create(int width = 32, int height = 32, unsigned int num_color = 1, int msaa = 0,
                          PIXEL_FORMAT format = PF_RGBA_U8, bool renderbuffer = false) {
    return renderer.gpu_render_target_create_2d(nullptr, width, height, format, num_color,
                                                renderbuffer, true, true, msaa);
  }
  void fill(GpuRenderTarget* target, unsigned int index, const Pixel& color, float depth = 1) {
    ASSERT_TRUE(renderer.gpu_render_target_bind(target));
    fill_bound(index, color);
    EXPECT_TRUE(renderer.gpu_render_target_clear_depth(depth));
    renderer.gpu_render_target_unbind(target);
  }
  void fill_bound(unsigned int index, const Pixel& c) {
    EXPECT_TRUE(renderer.gpu_render_target_clear_color(
        index, static_cast<float>(c[0]) / 255, static_cast<float>(c[1]) / 255,
        static_cast<float>(c[2]) / 255, static_cast<float>(c[3]) / 255));
  }
  Pixel first_pixel(GpuRenderTarget* target) {
    std::vector<unsigned char> pixels(static_cast<std::size_t>(target->width) *
                                      static_cast<std::size_t>(target->height) * 4);
    EXPECT_TRUE(renderer.gpu_render_target_read_rgba_u8(target, pixels.data()));
    return {pixels[0], pixels[1], pixels[2], pixels[3]};
  }
};

}  // namespace

ORV_BOTH_PROFILES(RenderTargetsGlTest);

TEST_P(RenderTargetsGlTest, EachAttachmentIsClearedAndSampled) {
  GpuRenderTarget* target = create(16, 16, 3);
  ASSERT_NE(nullptr, target);
  fill(target, 0, RED);
  fill(target, 1, GREEN);
  fill(target, 2, BLUE);
  EXPECT_EQ(RED, first_pixel(target));
  TexturedQuad quad(tools(), "sampler2D", "SAMPLE_2D(image, uv)");
  const Pixel colors[] = {RED, GREEN, BLUE};
  for (unsigned int i = 0; i < 3; ++i) {
    EXPECT_TRUE(renderer.gpu_render_target_bind_color_texture(target, i, 4));
    quad.draw(4);
    EXPECT_EQ(colors[i], center());
  }
}

TEST_P(RenderTargetsGlTest, DrawingGoesToTheTarget) {
  GpuRenderTarget* source = create(8, 8);
  GpuRenderTarget* target = create(8, 8);
  ASSERT_TRUE(source && target);
  fill(source, 0, GREEN);
  TexturedQuad quad(tools(), "sampler2D", "SAMPLE_2D(image, uv)");
  EXPECT_TRUE(renderer.gpu_render_target_bind_color_texture(source, 0, 0));
  fill(target, 0, RED);
  renderer.gpu_render_target_bind(target);
  renderer.set_viewport(0, 0, 0, 8, 8);
  quad.draw(0);
  renderer.gpu_render_target_unbind(target);
  EXPECT_EQ(GREEN, first_pixel(target));
  EXPECT_EQ(BLACK, center()) << "the window is untouched";
  EXPECT_EQ(8, renderer.get_viewport_array(0)[2]) << "the viewport stays";
}

TEST_P(RenderTargetsGlTest, EveryFormatMakesATarget) {
  for (int format = 1; format <= 30; ++format) {
    // Formats of three floats need not be drawn to.
    if (format == PF_RGB_F32 || format == PF_RGB_F16) continue;
    GpuRenderTarget* target = create(8, 8, 2, 0, static_cast<PIXEL_FORMAT>(format));
    EXPECT_NE(nullptr, target) << format;
    if (target) renderer.gpu_render_target_kill(nullptr, target);
    context.check();
  }
}

TEST_P(RenderTargetsGlTest, EightAttachmentsAndNoMore) {
  GpuRenderTarget* target = create(8, 8, 20);
  ASSERT_NE(nullptr, target);
  EXPECT_LE(target->num_color_targets, 8u);
  fill(target, target->num_color_targets - 1, BLUE);
}

TEST_P(RenderTargetsGlTest, SamplesAreResolvedByACopy) {
  GpuRenderTarget* source = create(8, 8, 1, 1000);
  GpuRenderTarget* target = create(8, 8);
  ASSERT_TRUE(source && target);
  if (source->msaa_samples == 0) GTEST_SKIP() << "no multisampled textures";
  fill(source, 0, RED);
  EXPECT_TRUE(renderer.framebuffer_blit(source, target, true, true, false));
  EXPECT_EQ(RED, first_pixel(target));
  unsigned char pixels[8 * 8 * 4];
  EXPECT_FALSE(renderer.gpu_render_target_read_rgba_u8(source, pixels));
  EXPECT_TRUE(renderer.gpu_render_target_bind_color_texture(source, 0, 1));
  EXPECT_TRUE(renderer.gpu_render_target_resize(source, 4, 4));
  GpuRenderTarget* half = create(8, 8, 1, 4, PF_RGBA_U8, true);
  EXPECT_NE(nullptr, half) << "with a depth renderbuffer";
}

TEST_P(RenderTargetsGlTest, RowsOfOddWidthsAreTight) {
  GpuRenderTarget* target = create(5, 3, 1, 0, PF_RGB_U8);
  ASSERT_NE(nullptr, target);
  fill(target, 0, WHITE);
  std::vector<unsigned char> pixels(5 * 3 * 3 + 4, 77);
  EXPECT_TRUE(renderer.gpu_render_target_read_rgb_u8(target, pixels.data()));
  for (int i = 0; i < 45; ++i) EXPECT_EQ(255, pixels[static_cast<std::size_t>(i)]) << i;
  EXPECT_EQ(77, pixels[45]) << "nothing behind the pixels";
}

TEST_P(RenderTargetsGlTest, RectanglesAreReadToo) {
  GpuRenderTarget* target =
      renderer.gpu_render_target_create_rect(nullptr, 7, 5, PF_RGBA_U8, 1, false, true, false, 4);
  ASSERT_NE(nullptr, target);
  fill(target, 0, GREEN);
  EXPECT_EQ(GREEN, first_pixel(target));
  EXPECT_TRUE(renderer.gpu_render_target_bind_color_texture(target, 0, 0));
  EXPECT_TRUE(renderer.gpu_render_target_bind_depth_texture(target, 0));
  EXPECT_TRUE(renderer.gpu_render_target_resize(target, 9, 9));
  fill(target, 0, BLUE);
  EXPECT_EQ(BLUE, first_pixel(target));
}

TEST_P(RenderTargetsGlTest, NewSizeIsDrawnTo) {
  GpuRenderTarget* target = create(8, 8, 2);
  ASSERT_NE(nullptr, target);
  EXPECT_TRUE(renderer.gpu_render_target_resize(target, 20, 3));
  fill(target, 0, RED);
  EXPECT_EQ(RED, first_pixel(target));
}

TEST_P(RenderTargetsGlTest, FacesOfCubes) {
  GpuRenderTarget* target =
      renderer.gpu_render_target_create_cube(nullptr, 8, PF_RGBA_U8, false, 0, true, true);
  ASSERT_NE(nullptr, target);
  renderer.gpu_render_target_bind(target);
  const Pixel colors[] = {RED, GREEN, BLUE, WHITE, BLACK, RED};
  for (int face = 0; face < 6; ++face) {
    ASSERT_TRUE(renderer.gpu_render_target_set_cube_face(target, static_cast<CUBEMAP_FACE>(face)));
    fill_bound(0, colors[face]);
    EXPECT_TRUE(renderer.gpu_render_target_clear_depth(1));
  }
  renderer.gpu_render_target_unbind(target);
  EXPECT_TRUE(renderer.gpu_render_target_bind_color_texture(target, 0, 0));
  TexturedQuad down(tools(), "samplerCube", "SAMPLE_CUBE(image, vec3(0.1, -1.0, 0.2))");
  down.draw(0);
  EXPECT_EQ(WHITE, center());
  TexturedQuad left(tools(), "samplerCube", "SAMPLE_CUBE(image, vec3(-1.0, 0.1, 0.2))");
  left.draw(0);
  EXPECT_EQ(GREEN, center());
  EXPECT_TRUE(renderer.gpu_render_target_bind_depth_cube_texture(target, 0));
  EXPECT_NE(nullptr,
            renderer.gpu_render_target_create_cube(nullptr, 8, PF_RGBA_U8, true, 4, false, false));
}

TEST_P(RenderTargetsGlTest, LayersOfArrays) {
  if (!has_modern_shaders()) GTEST_SKIP() << "no array textures in shaders";
  GpuRenderTarget* target = renderer.gpu_render_target_create_2d_array(nullptr, 3, false, 8, 8,
                                                                       PF_RGBA_U8, 0, true, true);
  ASSERT_NE(nullptr, target);
  renderer.gpu_render_target_bind(target);
  const Pixel colors[] = {RED, GREEN, BLUE};
  for (unsigned int layer = 0; layer < 3; ++layer) {
    ASSERT_TRUE(renderer.gpu_render_target_set_array_layer(target, layer));
    fill_bound(0, colors[layer]);
  }
  renderer.gpu_render_target_unbind(target);
  EXPECT_TRUE(renderer.gpu_render_target_bind_color_texture(target, 0, 0));
  TexturedQuad quad(tools(), "sampler2DArray", "texture(image, vec3(uv, 1.0))");
  quad.draw(0);
  EXPECT_EQ(GREEN, center());
  EXPECT_TRUE(renderer.gpu_render_target_resize(target, 4, 4));
}

TEST_P(RenderTargetsGlTest, Renderbuffers) {
  for (const int msaa : {0, 4}) {
    GpuRenderTarget* source =
        renderer.gpu_render_target_create_rb(nullptr, 8, 8, PF_RGBA_U8, true, 2, true, msaa);
    GpuRenderTarget* target = create(8, 8);
    ASSERT_TRUE(source && target);
    fill(source, 1, BLUE);
    EXPECT_TRUE(renderer.framebuffer_blit_rect_b(source, 1, target, 0));
    EXPECT_EQ(BLUE, first_pixel(target));
    EXPECT_TRUE(renderer.gpu_render_target_resize(source, 16, 4));
  }
  EXPECT_NE(nullptr,
            renderer.gpu_render_target_create_rb(nullptr, 8, 8, PF_RGB_U8, false, 0, true, 0));
}

TEST_P(RenderTargetsGlTest, TargetOfNothingFails) {
  EXPECT_EQ(nullptr,
            renderer.gpu_render_target_create_rb(nullptr, 8, 8, PF_RGB_U8, false, 0, false, 0));
  EXPECT_EQ(0u, renderer.gpu_render_target_get_num());
}

// ---- copies ----

TEST_P(RenderTargetsGlTest, CopiesToTheWindow) {
  GpuRenderTarget* source = create(16, 16);
  ASSERT_NE(nullptr, source);
  fill(source, 0, RED);
  EXPECT_TRUE(renderer.framebuffer_blit(source, nullptr, true, false, true));
  EXPECT_EQ(RED, center());
  fill(source, 0, GREEN);
  const int rect[4] = {0, 0, 8, 8};
  EXPECT_TRUE(renderer.framebuffer_blit_rect_c(source, rect));
  EXPECT_EQ(GREEN, context.pixel(3, 3));
  EXPECT_EQ(RED, center());
  fill(source, 0, BLUE);
  EXPECT_TRUE(renderer.framebuffer_blit_to_current(source, true, false, false));
  EXPECT_EQ(BLUE, center());
}

TEST_P(RenderTargetsGlTest, CopiesLeaveTheAttachmentsDrawn) {
  GpuRenderTarget* source = create(8, 8);
  GpuRenderTarget* target = create(8, 8, 2);
  ASSERT_TRUE(source && target);
  fill(source, 0, RED);
  EXPECT_TRUE(renderer.framebuffer_blit(source, target, true, true, true));
  renderer.gpu_render_target_bind(target);
  renderer.clear_color_buffer_rgba(0, 1, 0, 1);
  renderer.gpu_render_target_unbind(target);
  EXPECT_TRUE(renderer.framebuffer_blit_rect_b(target, 1, source, 0));
  EXPECT_EQ(GREEN, first_pixel(source)) << "both attachments were cleared";
}

// ---- views and shadow maps ----

TEST_P(RenderTargetsGlTest, ViewsAreSampledAndNotDeleted) {
  GpuRenderTarget* target = create(8, 8);
  ASSERT_NE(nullptr, target);
  fill(target, 0, GREEN);
  Texture view;
  ASSERT_TRUE(view.init_color_texture_from_render_target_v2(&renderer, target, 0));
  EXPECT_TRUE(view.bind(&renderer, 1));
  TexturedQuad quad(tools(), "sampler2D", "SAMPLE_2D(image, uv)");
  quad.draw(1);
  EXPECT_EQ(GREEN, center());
  EXPECT_TRUE(view.unload(&renderer));
  EXPECT_EQ(GREEN, first_pixel(target));
}

TEST_P(RenderTargetsGlTest, ShadowMapIsComparedWith) {
  GpuRenderTarget* target = renderer.gpu_render_target_create_depth_2d(nullptr, 8, 8, false, true);
  ASSERT_NE(nullptr, target);
  renderer.gpu_render_target_bind(target);
  renderer.shadow_map_pass_begin();
  EXPECT_TRUE(renderer.gpu_render_target_clear_depth(0.5f));
  renderer.shadow_map_pass_end();
  renderer.gpu_render_target_unbind(target);
  Texture depth;
  ASSERT_TRUE(depth.init_depth_texture_from_render_target_v2(&renderer, target));
  renderer.shadow_map_bind(depth.get_data_ptr(), 2, nullptr, mat4(), mat4(), nullptr);
  const std::string lookup =
      has_modern_shaders() ? "texture(image, vec3(uv, " : "shadow2D(image, vec3(uv, ";
  const std::string end = has_modern_shaders() ? "))" : ")).r";
  TexturedQuad near_quad(tools(), "sampler2DShadow", "vec3(" + lookup + "0.25" + end + "), 1.0");
  near_quad.draw(2);
  EXPECT_EQ(WHITE, center());
  TexturedQuad far_quad(tools(), "sampler2DShadow", "vec3(" + lookup + "0.75" + end + "), 1.0");
  far_quad.draw(2);
  EXPECT_EQ(BLACK, center());
  renderer.shadow_map_unbind(depth.get_data_ptr(), 2);
  TexturedQuad plain(tools(), "sampler2D", "vec3(SAMPLE_2D(image, uv).r), 1.0");
  plain.draw(2);
  EXPECT_NEAR(128, center()[0], 2) << "depth itself again";
}
