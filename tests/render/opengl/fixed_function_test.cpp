#include <orv/math/mat4.h>
#include <orv/math/vec4.h>

#include "render/opengl/fake_gl_fixture.h"

using namespace orv;
using namespace orv::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class FixedFunctionTest : public FakeGlTest {
 protected:
  /// Every operation of the fixed pipeline once.
  void call_everything() {
    const mat4 matrix;
    const vec4 v(1, 2, 3, 4);
    renderer.push_all_attribs();
    renderer.pop_all_attribs();
    renderer.set_line_stipple(2, 0xAAAA);
    renderer.load_fixed_matrices(&matrix, &matrix, &matrix, &matrix);
    renderer.load_identity_matrices(true, true, true);
    renderer.light_set_colors(0, v, v, v);
    renderer.light_set_ambient(0, v);
    renderer.light_set_diffuse(0, v);
    renderer.light_set_specular(0, v);
    renderer.light_set_spot(0, v, 1, 2);
    renderer.light_model_two_side(true);
    renderer.material_set_all(v, v, v, 3);
    renderer.material_set_ambient(v);
    renderer.material_set_diffuse(v);
    renderer.material_set_specular(v);
    renderer.material_set_shininess(4);
  }
};

mat4 scale(float x, float y, float z) {
  mat4 matrix;
  matrix.m[0] = x;
  matrix.m[5] = y;
  matrix.m[10] = z;
  return matrix;
}

mat4 translation(float x, float y, float z) {
  mat4 matrix;
  matrix.m[12] = x;
  matrix.m[13] = y;
  matrix.m[14] = z;
  return matrix;
}

}  // namespace

TEST_F(FixedFunctionTest, PushAndPopOfAllAttributes) {
  start();
  renderer.push_all_attribs();
  renderer.pop_all_attribs();
  EXPECT_THAT(take(), ElementsAre("glPushAttrib(0xFFFFF)", "glPopAttrib()"));
}

TEST_F(FixedFunctionTest, LinesWidthAndStipple) {
  start();
  renderer.set_line_width(2.5f);
  renderer.set_line_stipple(3, 0xFF);
  EXPECT_THAT(take(), ElementsAre("glLineWidth(2.5)", "glLineStipple(3, 255)"));
}

TEST_F(FixedFunctionTest, ImmediateLineIsDrawnFromArrays) {
  start();
  renderer.draw_immediate_line(vec4(1, 2, 3), vec4(4, 5, 6), vec4(1, 0, 0), vec4(0, 1, 0));
  EXPECT_THAT(take(),
              ElementsAre("glBegin(GL_LINES)", "glColor4fv([1 0 0 1])", "glVertex4fv([1 2 3 1])",
                          "glColor4fv([0 1 0 1])", "glVertex4fv([4 5 6 1])", "glEnd()"));
}

TEST_F(FixedFunctionTest, FixedMatricesAreLoadedAndTheModelMultiplied) {
  start();
  const mat4 projection = scale(2, 2, 2), view = translation(1, 2, 3), model = scale(5, 6, 7),
             texture = scale(9, 9, 9);
  renderer.load_fixed_matrices(&projection, &view, &model, &texture);
  EXPECT_THAT(
      take(),
      ElementsAre("glMatrixMode(GL_PROJECTION)", "glLoadMatrixf([2 0 0 0 0 2 0 0 0 0 2 0 0 0 0 1])",
                  "glMatrixMode(GL_MODELVIEW)", "glLoadMatrixf([1 0 0 0 0 1 0 0 0 0 1 0 1 2 3 1])",
                  "glMultMatrixf([5 0 0 0 0 6 0 0 0 0 7 0 0 0 0 1])", "glMatrixMode(GL_TEXTURE)",
                  "glLoadMatrixf([9 0 0 0 0 9 0 0 0 0 9 0 0 0 0 1])"));
  EXPECT_TRUE(renderer.get_modelview_matrix() == mat4()) << "the stored view stays";
  const float* shadow = renderer.shadow().fixed_modelview;
  EXPECT_THAT(std::vector<float>(shadow, shadow + 16),
              ElementsAre(5, 0, 0, 0, 0, 6, 0, 0, 0, 0, 7, 0, 1, 2, 3, 1));
}

TEST_F(FixedFunctionTest, NullFixedMatricesAreSkipped) {
  start();
  renderer.load_fixed_matrices(nullptr, nullptr, nullptr, nullptr);
  EXPECT_THAT(take(), IsEmpty());
  const mat4 view = translation(1, 2, 3);
  renderer.load_fixed_matrices(nullptr, &view, nullptr, nullptr);
  EXPECT_THAT(take(), ElementsAre("glMatrixMode(GL_MODELVIEW)",
                                  "glLoadMatrixf([1 0 0 0 0 1 0 0 0 0 1 0 1 2 3 1])"));
}

TEST_F(FixedFunctionTest, IdentityIsLoadedIntoTheFlaggedMatrices) {
  start();
  renderer.load_identity_matrices(true, false, true);
  EXPECT_THAT(take(), ElementsAre("glMatrixMode(GL_PROJECTION)", "glLoadIdentity()",
                                  "glMatrixMode(GL_TEXTURE)", "glLoadIdentity()"));
  renderer.load_identity_matrices(false, true, false);
  EXPECT_THAT(take(), ElementsAre("glMatrixMode(GL_MODELVIEW)", "glLoadIdentity()"));
}

TEST_F(FixedFunctionTest, LightsAreCountedFromTheFirst) {
  start();
  renderer.light_set_colors(2, vec4(1, 0, 0), vec4(0, 1, 0), vec4(0, 0, 1));
  EXPECT_THAT(take(), ElementsAre("glLightfv(GL_LIGHT2, GL_AMBIENT, [1 0 0 1])",
                                  "glLightfv(GL_LIGHT2, GL_DIFFUSE, [0 1 0 1])",
                                  "glLightfv(GL_LIGHT2, GL_SPECULAR, [0 0 1 1])"));
  renderer.light_set_spot(0, vec4(0, -1, 0), 4.0f, 45.0f);
  EXPECT_THAT(take(), ElementsAre("glLightfv(GL_LIGHT0, GL_SPOT_DIRECTION, [0 -1 0])",
                                  "glLightfv(GL_LIGHT0, GL_SPOT_EXPONENT, [4])",
                                  "glLightfv(GL_LIGHT0, GL_SPOT_CUTOFF, [45])"));
  renderer.light_model_two_side(true);
  EXPECT_THAT(take(), ElementsAre("glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 1)"));
  renderer.light_set_ambient(8, vec4());
  renderer.light_set_ambient(0xFFFFFFFFu, vec4());
  EXPECT_THAT(take(), IsEmpty()) << "there are eight lights";
}

TEST_F(FixedFunctionTest, MaterialsAreSetForBothFaces) {
  start();
  renderer.material_set_all(vec4(1, 0, 0), vec4(0, 1, 0), vec4(0, 0, 1), 12.0f);
  EXPECT_THAT(take(), ElementsAre("glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, [1 0 0 1])",
                                  "glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, [0 1 0 1])",
                                  "glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, [0 0 1 1])",
                                  "glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 12)"));
  renderer.material_set_shininess(500.0f);
  EXPECT_THAT(take(), ElementsAre("glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 128)"));
}

TEST_F(FixedFunctionTest, CoreContextSeesNoRemovedCall) {
  start_core();
  call_everything();
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(FixedFunctionTest, CoreContextKeepsTheFixedMatrices) {
  start_core();
  const mat4 projection = scale(2, 2, 2), view = translation(1, 2, 3), model = scale(5, 6, 7);
  renderer.load_fixed_matrices(&projection, &view, &model, nullptr);
  EXPECT_EQ(2.0f, renderer.shadow().fixed_projection[0]);
  EXPECT_EQ(5.0f, renderer.shadow().fixed_modelview[0]);
  EXPECT_EQ(1.0f, renderer.shadow().fixed_modelview[12]);
  renderer.load_identity_matrices(true, true, false);
  EXPECT_EQ(1.0f, renderer.shadow().fixed_projection[0]);
  EXPECT_EQ(1.0f, renderer.shadow().fixed_modelview[0]);
  EXPECT_EQ(0.0f, renderer.shadow().fixed_modelview[12]);
}

TEST_F(FixedFunctionTest, ContextOfVersion30IsNoCoreContext) {
  start(3, 0, false);
  renderer.push_all_attribs();
  EXPECT_THAT(take(), ElementsAre("glPushAttrib(0xFFFFF)"));
}

TEST_F(FixedFunctionTest, StoppedRendererMakesNoCall) {
  start();
  renderer.stop();
  gl.clear();
  call_everything();
  renderer.set_line_width(1);
  renderer.draw_immediate_line(vec4(), vec4(), vec4(), vec4());
  EXPECT_THAT(gl.calls(), IsEmpty());
}
