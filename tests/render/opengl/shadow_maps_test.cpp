#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/texture_data.h>
#include <orv/math/mat4.h>

#include "render/opengl/fake_gl_fixture.h"

using namespace orv;
using namespace orv::test;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class ShadowMapsTest : public FakeGlTest {
 protected:
  ShadowMapsTest() { depth.set_opengl_texture_id(7); }
  TextureData depth;
};

Calls pass(std::initializer_list<const char*> cull) {
  Calls calls = {
      "glDisable(GL_BLEND)",         "glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE)",
      "glEnable(GL_DEPTH_TEST)",     "glDepthMask(GL_TRUE)",
      "glDepthFunc(GL_LESS)",        "glClearDepth(1)",
      "glClear(GL_DEPTH_BUFFER_BIT)"};
  calls.insert(calls.end(), cull.begin(), cull.end());
  return calls;
}

Calls pass_end(std::initializer_list<const char*> cull) {
  Calls calls = {"glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE)", "glDepthFunc(GL_LESS)"};
  calls.insert(calls.end(), cull.begin(), cull.end());
  return calls;
}

}  // namespace

TEST_F(ShadowMapsTest, PassDrawsDepthAlone) {
  start();
  renderer.shadow_map_pass_begin();
  EXPECT_EQ(pass({"glEnable(GL_CULL_FACE)", "glCullFace(GL_BACK)"}), take());
  renderer.shadow_map_pass_end();
  EXPECT_EQ(pass_end({"glDisable(GL_CULL_FACE)"}), take());
}

TEST_F(ShadowMapsTest, PassWithAChoiceOfFaces) {
  start();
  renderer.shadow_map_pass_begin_v2(0);
  EXPECT_EQ(pass({"glDisable(GL_CULL_FACE)"}), take());
  renderer.shadow_map_pass_begin_v2(1);
  EXPECT_EQ(pass({"glEnable(GL_CULL_FACE)", "glCullFace(GL_BACK)"}), take());
  renderer.shadow_map_pass_begin_v2(2);
  EXPECT_EQ(pass({"glEnable(GL_CULL_FACE)", "glCullFace(GL_FRONT)"}), take());
  renderer.shadow_map_pass_end_v2(0);
  EXPECT_EQ(pass_end({"glDisable(GL_CULL_FACE)"}), take());
  renderer.shadow_map_pass_end_v2(1);
  EXPECT_EQ(pass_end({"glEnable(GL_CULL_FACE)", "glCullFace(GL_BACK)"}), take());
}

TEST_F(ShadowMapsTest, BindingComparesAndDrawsWhereDepthIsEqual) {
  start();
  renderer.shadow_map_bind(&depth, 3, nullptr, mat4(), mat4(), nullptr);
  EXPECT_THAT(
      take(),
      ElementsAre("glEnable(GL_DEPTH_TEST)", "glDepthMask(GL_FALSE)", "glDepthFunc(GL_EQUAL)",
                  "glActiveTexture(GL_TEXTURE3)", "glBindTexture(GL_TEXTURE_2D, 7)",
                  "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_MODE, "
                  "GL_COMPARE_R_TO_TEXTURE)",
                  "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_FUNC, GL_LEQUAL)"));
  renderer.shadow_map_unbind(&depth, 3);
  EXPECT_THAT(take(),
              ElementsAre("glActiveTexture(GL_TEXTURE3)", "glBindTexture(GL_TEXTURE_2D, 7)",
                          "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_MODE, GL_NONE)",
                          "glDepthMask(GL_TRUE)", "glDepthFunc(GL_LESS)"));
}

TEST_F(ShadowMapsTest, TextureMatrixGoesToTheProgram) {
  start();
  GpuProgramData program;
  renderer.shadow_map_bind(&depth, 0, &program, mat4(), mat4(), nullptr);
  const GpuProgramUniform* uniform = program.find_uniform("orvex_TextureMatrix");
  ASSERT_NE(nullptr, uniform);
  const float expected[16] = {0.5f, 0, 0, 0, 0, 0.5f, 0, 0, 0, 0, 1, 0, 0.5f, 0.5f, 0, 1};
  for (int i = 0; i < 16; ++i) EXPECT_EQ(expected[i], uniform->value_mat4f[i]) << i;
  EXPECT_EQ(nullptr, program.find_uniform("ORV_TextureMatrix"));
}

TEST_F(ShadowMapsTest, TexturesThatCannotCompare) {
  start();
  EXPECT_TRUE(renderer.shadow_map_texture_set_compare(&depth, 0));
  EXPECT_TRUE(renderer.shadow_map_texture_reset_compare(&depth, 0));
  EXPECT_FALSE(renderer.shadow_map_texture_set_compare(&depth, 16));
  EXPECT_FALSE(renderer.shadow_map_texture_set_compare(nullptr, 0));
  EXPECT_FALSE(renderer.shadow_map_texture_reset_compare(nullptr, 0));
  depth.set_opengl_texture_id(0);
  EXPECT_FALSE(renderer.shadow_map_texture_set_compare(&depth, 0));
}

TEST_F(ShadowMapsTest, StoppedRendererStaysQuiet) {
  renderer.shadow_map_pass_begin();
  renderer.shadow_map_pass_end();
  renderer.shadow_map_bind(nullptr, 0, nullptr, mat4(), mat4(), nullptr);
  renderer.shadow_map_unbind(nullptr, 0);
  EXPECT_THAT(gl.calls(), IsEmpty());
}
