// The HUD as real OpenGL draws it.
#include <orv/visual/hud.h>

#include <orv/gpu/texture.h>
#include <orv/scene/camera.h>

#include "render/opengl/gl_fixture.h"
#include "support/held.h"
#include "visual/picture_files.h"

namespace orv::test {
namespace {

constexpr RENDERER_BLEND_FACTOR ONE = RENDERER_BLEND_FACTOR_ONE;

class HudGlTest : public GlTest {
 protected:
  void SetUp() override {
    GlTest::SetUp();
    if (IsSkipped()) return;
    renderer.set_viewport(0, 0, 0, 64, 64);
  }
  void TearDown() override {
    hud.cleanup(&renderer);
    GlTest::TearDown();
  }
  /// Quarters of red, green, blue and white. Texels of the edges mix with those across.
  bool load_corners() {
    std::vector<Pixel> pixels;
    for (int i = 0; i < 64; ++i) {
      const bool right = i % 8 >= 4, lower = i / 8 >= 4;
      pixels.push_back(lower ? (right ? WHITE : BLUE) : (right ? GREEN : RED));
    }
    return hud.init_texture(&renderer, files.write("corners.tga", 8, 8, pixels).c_str());
  }

  PictureFiles files;
  aux::Hud hud;
};

TEST_P(HudGlTest, PictureStandsUprightInItsRectangle) {
  ASSERT_TRUE(load_corners());
  hud.render(&renderer, 16, 8, 32, 24, false, ONE, ONE);
  EXPECT_EQ(context.pixel(22, 26), RED);
  EXPECT_EQ(context.pixel(41, 26), GREEN);
  EXPECT_EQ(context.pixel(22, 13), BLUE);
  EXPECT_EQ(context.pixel(41, 13), WHITE);
  const int outside[][2] = {{15, 20}, {48, 20}, {30, 7}, {30, 32}};
  for (const auto& place : outside) {
    EXPECT_EQ(context.pixel(place[0], place[1]), BLACK) << place[0] << " " << place[1];
  }
}

TEST_P(HudGlTest, RectangleMayChangeFromCallToCall) {
  ASSERT_TRUE(load_corners());
  hud.render(&renderer, 0, 0, 8, 8, false, ONE, ONE);
  hud.render(&renderer, 32, 32, 32, 16, false, ONE, ONE);
  EXPECT_EQ(context.pixel(2, 5), RED);
  EXPECT_EQ(context.pixel(8, 4), BLACK);
  EXPECT_EQ(context.pixel(38, 44), RED);
  EXPECT_EQ(context.pixel(58, 35), WHITE);
}

TEST_P(HudGlTest, BlendsWithTheFactorsGiven) {
  ASSERT_TRUE(load_corners());
  renderer.clear_color_depth_buffers_rgba(0, 0, 1, 1, 1);
  hud.render(&renderer, 0, 0, 64, 64, true, ONE, ONE);
  EXPECT_EQ(context.pixel(15, 48), (Pixel{255, 0, 255, 255})) << "red added to blue";
  EXPECT_FALSE(context.core().glIsEnabled(GL_BLEND));
  hud.render(&renderer, 0, 0, 64, 64, false, ONE, ONE);
  EXPECT_EQ(context.pixel(15, 48), RED) << "not blended";
}

TEST_P(HudGlTest, DrawsOverWhatIsNearerAndPutsStateBack) {
  ASSERT_TRUE(load_corners());
  renderer.clear_color_depth_buffers_rgba(0, 0, 0, 1, 0.0f);
  Camera camera;
  camera.set_viewport(0, 0, 64, 64);
  camera.bind(&renderer, true, false, true, true, true);
  GpuProgramData program;
  load_color_program(&program);
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  hud.render(&renderer, 0, 0, 32, 32, false, ONE, ONE);
  EXPECT_EQ(context.pixel(7, 24), RED);
  EXPECT_EQ(renderer.get_current_gpu_program(), &program);
  EXPECT_TRUE(context.core().glIsEnabled(GL_DEPTH_TEST));
  int viewport[4] = {};
  EXPECT_TRUE(renderer.get_viewport(&viewport[0], &viewport[1], &viewport[2], &viewport[3]));
  EXPECT_EQ(std::vector<int>(viewport, viewport + 4), (std::vector<int>{0, 0, 64, 64}));
  EXPECT_EQ(renderer.get_projection_matrix(), camera.get_projection_matrix());
  EXPECT_EQ(renderer.get_modelview_matrix(), camera.get_view_matrix());
  renderer.gpu_program_unload(&program);
}

TEST_P(HudGlTest, HostsTexturesAreUploadedAndDrawn) {
  const Held<Texture> texture;
  ASSERT_TRUE(texture->create_2d(1, 1, PF_RGBA_U8, true));
  texture->set_texel_2d(0, 0, vec4(0, 255, 0, 255));
  hud.render(&renderer, texture, 0, 0, 64, 64, false, ONE, ONE);
  EXPECT_EQ(center(), GREEN);
  texture->_cleanup(&renderer);
}

TEST_P(HudGlTest, TexturesThatDoNotRepeatShowTheirUpperEdgeAlone) {
  ASSERT_TRUE(load_corners());
  hud.get_texture()->set_addressing_mode(&renderer, SAMPLER_ADDRESSING_CLAMP);
  hud.render(&renderer, 0, 0, 64, 64, false, ONE, ONE);
  for (const int y : {2, 32, 61}) {
    EXPECT_EQ(context.pixel(15, y), RED) << y;
    EXPECT_EQ(context.pixel(48, y), GREEN) << y;
  }
}

TEST_P(HudGlTest, StartsAnewAfterCleanup) {
  ASSERT_TRUE(load_corners());
  hud.render(&renderer, 0, 0, 64, 64, false, ONE, ONE);
  hud.cleanup(&renderer);
  EXPECT_EQ(hud.get_texture(), nullptr);
  clear();
  hud.render(&renderer, 0, 0, 64, 64, false, ONE, ONE);
  EXPECT_EQ(context.pixel(15, 48), BLACK) << "without a texture";
  ASSERT_TRUE(load_corners());
  hud.render(&renderer, 0, 0, 64, 64, false, ONE, ONE);
  EXPECT_EQ(context.pixel(15, 48), RED);
}

ORV_BOTH_PROFILES(HudGlTest);

}  // namespace
}  // namespace orv::test
