#include <orv/math/mat4.h>

#include "render/opengl/gl_fixture.h"

using namespace orv;
using namespace orv::test;

namespace {

class FixedFunctionGlTest : public GlTest {};

}  // namespace

ORV_BOTH_PROFILES(FixedFunctionGlTest);

TEST_P(FixedFunctionGlTest, EveryOperationIsFreeOfErrors) {
  const mat4 matrix;
  const vec4 v(0.5f, 0.5f, 0.5f, 1);
  renderer.push_all_attribs();
  renderer.set_line_width(1.0f);
  renderer.set_line_stipple(2, 0xAAAA);
  renderer.load_fixed_matrices(&matrix, &matrix, &matrix, &matrix);
  renderer.load_identity_matrices(true, true, true);
  renderer.draw_immediate_line(v, v, v, v);
  for (unsigned int light = 0; light < 10; ++light) {
    renderer.light_set_colors(light, v, v, v);
    renderer.light_set_spot(light, vec4(0, 0, -1), 2, 30);
  }
  renderer.light_model_two_side(true);
  renderer.material_set_all(v, v, v, 300);
  renderer.pop_all_attribs();
}

TEST_P(FixedFunctionGlTest, LitGeometryTakesLightAndMaterial) {
  if (renderer.is_core_context()) GTEST_SKIP() << "no lights in core profile contexts";
  GeometryCore quad;
  quad.set_alloc_params_num_vertices(4);
  ASSERT_TRUE(quad.alloc_vertex_data());
  quad.set_primitive_type(PRIMITIVE_TRIANGLE_STRIP);
  quad.set_use_generic_vertex_attribs_state(false);
  for (unsigned int i = 0; i < 4; ++i) {
    quad.set_position(i, i % 2 ? 1.0f : -1.0f, i < 2 ? -1.0f : 1.0f, 0, 1);
    quad.set_normal(i, vec4(0, 0, 1));
  }
  renderer.enable_state("GL_LIGHTING");
  renderer.enable_state("GL_LIGHT0");
  renderer.light_set_colors(0, vec4(1, 1, 1), vec4(0, 0, 0), vec4(0, 0, 0));
  renderer.material_set_all(vec4(0, 1, 0), vec4(0, 0, 0), vec4(0, 0, 0), 1);
  draw(&quad);
  renderer.disable_state("GL_LIGHTING");
  EXPECT_EQ(GREEN, center());
  renderer.geometry_vbo_destroy(&quad);
}
