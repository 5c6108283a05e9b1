// The sky as real OpenGL draws it.
#include <orv/visual/skybox.h>

#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/gpu_program_mgr.h>
#include <orv/scene/camera.h>

#include "render/opengl/gl_fixture.h"
#include "support/held.h"
#include "support/log_capture.h"
#include "visual/picture_files.h"

namespace orv::test {
namespace {

const Pixel CYAN = {0, 255, 255, 255}, YELLOW = {255, 255, 0, 255};

class SkyboxGlTest : public GlTest {
 protected:
  void SetUp() override {
    GlTest::SetUp();
    if (IsSkipped()) return;
    camera.set_viewport(0, 0, 64, 64);
    camera.build_projection_persp(60.0f, 1.0f, 0.1f, 100.0f, true);
  }
  void TearDown() override {
    sky->_cleanup(&renderer);
    GlTest::TearDown();
  }

  /// A cube map of six colours, in the order of the faces.
  bool load_six_colors() {
    std::string names[6];
    const char* pointers[6];
    const Pixel colors[6] = {RED, GREEN, BLUE, WHITE, CYAN, YELLOW};
    for (int i = 0; i < 6; ++i) {
      names[i] = files.write("face" + std::to_string(i) + ".tga", colors[i]);
      pointers[i] = names[i].c_str();
    }
    return sky->load_all_faces_from_files(&renderer, pointers, PF_RGB_U8);
  }
  /// Draws the sky along a direction and gives the pixel in the middle.
  Pixel look(const vec4& direction, const vec4& up = vec4(0, 1, 0, 0)) {
    clear();
    camera.set_up(up);
    camera.set_lookat(direction);
    camera.bind(&renderer, true, false, true, true, true);
    sky->render(&renderer, nullptr);
    return center();
  }

  PictureFiles files;
  Camera camera;
  Held<Skybox> sky;
};

TEST_P(SkyboxGlTest, EachDirectionShowsItsFaceWithXNegated) {
  ASSERT_TRUE(load_six_colors());
  EXPECT_EQ(look(vec4(1, 0, 0, 0)), GREEN) << "the face of -X";
  EXPECT_EQ(look(vec4(-1, 0, 0, 0)), RED) << "the face of +X";
  EXPECT_EQ(look(vec4(0, 1, 0, 0), vec4(0, 0, 1, 0)), BLUE);
  EXPECT_EQ(look(vec4(0, -1, 0, 0), vec4(0, 0, 1, 0)), WHITE);
  EXPECT_EQ(look(vec4(0, 0, 1, 0)), CYAN);
  EXPECT_EQ(look(vec4(0, 0, -1, 0)), YELLOW);
}

TEST_P(SkyboxGlTest, CoversTheScreenAndFollowsTheProjection) {
  ASSERT_TRUE(load_six_colors());
  EXPECT_EQ(look(vec4(0, 0, -1, 0)), YELLOW);
  for (const int x : {0, 63}) {
    for (const int y : {0, 63}) EXPECT_EQ(context.pixel(x, y), YELLOW) << x << " " << y;
  }
  // With an opening of 120 degrees the faces beside come into sight.
  camera.build_projection_persp(120.0f, 1.0f, 0.1f, 100.0f, true);
  EXPECT_EQ(look(vec4(0, 0, -1, 0)), YELLOW);
  EXPECT_EQ(context.pixel(2, 32), RED) << "on the left, x negated";
  EXPECT_EQ(context.pixel(61, 32), GREEN);
  EXPECT_EQ(context.pixel(32, 61), BLUE);
  EXPECT_EQ(context.pixel(32, 2), WHITE);
}

TEST_P(SkyboxGlTest, NeverComesNearerAndTurnsWithTheObject) {
  ASSERT_TRUE(load_six_colors());
  camera.set_position(500.0f, -300.0f, 20.0f);
  EXPECT_EQ(look(vec4(0, 0, -1, 0)), YELLOW);
  sky->set_position(0, 0, 1000.0f);
  EXPECT_EQ(look(vec4(0, 0, -1, 0)), YELLOW);
  sky->set_orientation_euler_xyz(0, 180.0f, 0);
  EXPECT_EQ(look(vec4(0, 0, -1, 0)), CYAN);
}

TEST_P(SkyboxGlTest, PicturesStandUprightAndUnmirrored) {
  const std::string plain = files.write("plain.tga", BLACK);
  const std::string corners = files.write("corners.tga", 2, 2, {RED, GREEN, BLUE, WHITE});
  const char* p = plain.c_str();
  ASSERT_TRUE(
      sky->load_all_faces_from_files(&renderer, p, p, p, p, p, corners.c_str(), PF_RGBA_U8));
  camera.build_projection_persp(90.0f, 1.0f, 0.1f, 100.0f, true);
  look(vec4(0, 0, -1, 0));
  EXPECT_EQ(context.pixel(2, 61), RED);
  EXPECT_EQ(context.pixel(61, 61), GREEN);
  EXPECT_EQ(context.pixel(2, 2), BLUE);
  EXPECT_EQ(context.pixel(61, 2), WHITE);
}

TEST_P(SkyboxGlTest, LeavesDepthAloneAndPutsStateBack) {
  ASSERT_TRUE(load_six_colors());
  GpuProgramData program;
  load_color_program(&program);
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  renderer.rasterizer_set_cull_enabled(true);
  renderer.rasterizer_set_cull_face(RENDERER_CULL_FACE_FRONT_AND_BACK);
  renderer.rasterizer_apply();
  EXPECT_EQ(look(vec4(0, 0, -1, 0)), YELLOW) << "culling would leave nothing of it";
  EXPECT_EQ(renderer.get_current_gpu_program(), &program);
  EXPECT_TRUE(context.core().glIsEnabled(GL_CULL_FACE));
  EXPECT_TRUE(context.core().glIsEnabled(GL_DEPTH_TEST));
  float depth = 0.0f;
  context.core().glReadPixels(32, 32, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
  EXPECT_EQ(depth, 1.0f);
  renderer.gpu_program_unload(&program);
}

TEST_P(SkyboxGlTest, ExactTextComesFirstAndOneWithItsOwnInverseNext) {
  LogCapture log(LOG_LEVEL_WARNING);
  ASSERT_TRUE(load_six_colors());
  look(vec4(0, 0, -1, 0));
  const GpuProgram* program = sky->get_cubemap_gpu_program();
  ASSERT_NE(program, nullptr);
  EXPECT_STREQ(program->get_name(),
               has_modern_shaders() ? "ORV_skybox_gl3_prog" : "ORV_skybox_gl2_prog");
  const std::string source = program->get_shader_source_code(GPU_SHADER_VERTEX);
  if (has_modern_shaders()) {
    EXPECT_EQ(source.find("orv_inv"), std::string::npos);
    EXPECT_EQ(source.find("#version 150\nin vec4 ORV_Position;"), 0u);
    EXPECT_EQ(log.text(), "");
  } else {
    EXPECT_EQ(source.find("#version 120\n"), 0u);
    EXPECT_NE(source.find("vec4 v = orv_inv(r) * orv_inv(ORV_ProjectionMatrix) * gl_Vertex;"),
              std::string::npos);
    EXPECT_TRUE(log.contains("no function with name 'inverse'"));
  }
}

TEST_P(SkyboxGlTest, OtherSizesAreDrawnAsTheyAre) {
  ASSERT_TRUE(load_six_colors());
  EXPECT_TRUE(sky->resize(1.0f, 1.0f));
  EXPECT_EQ(look(vec4(0, 0, -1, 0)), YELLOW);
  EXPECT_EQ(context.pixel(18, 18), YELLOW);
  EXPECT_EQ(context.pixel(12, 12), BLACK) << "half the screen alone";
}

TEST_P(SkyboxGlTest, WithoutACubeMapNothingIsDrawn) {
  EXPECT_EQ(look(vec4(0, 0, -1, 0)), BLACK);
  EXPECT_EQ(context.pixel(3, 3), BLACK);
}

TEST_P(SkyboxGlTest, FacesOfDifferentFormAreRefused) {
  const std::string wide = files.write("wide.tga", 2, 1, {RED, GREEN});
  const char* p = wide.c_str();
  EXPECT_FALSE(sky->load_all_faces_from_files(&renderer, p, p, p, p, p, p, PF_RGB_U8));
  EXPECT_EQ(sky->get_cubemap(), nullptr);
  context.take_errors();
}

ORV_BOTH_PROFILES(SkyboxGlTest);

}  // namespace
}  // namespace orv::test
