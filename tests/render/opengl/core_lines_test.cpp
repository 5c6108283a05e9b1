#include <orv/geometry/geometry_core.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/math/mat4.h>

#include "render/opengl/fake_gl_fixture.h"

using namespace orv;
using namespace orv::test;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

class CoreLinesTest : public FakeGlTest {
 protected:
  void draw_line() {
    renderer.draw_immediate_line(vec4(0, 0, 0), vec4(1, 0, 0), vec4(1, 0, 0), vec4(0, 1, 0));
  }
  void make_geometry() {
    geometry.set_alloc_params_num_vertices(2);
    ASSERT_TRUE(geometry.alloc_vertex_data());
    geometry.set_primitive_type(PRIMITIVE_LINES);
    ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry));
    ASSERT_TRUE(renderer.geometry_vbo_update(&geometry));
    ASSERT_TRUE(renderer.geometry_vbo_bind(&geometry));
    gl.clear();
  }
  void TearDown() override {
    if (geometry.vb_uploaded) renderer.geometry_vbo_destroy(&geometry);
  }
  GeometryCore geometry;
};

}  // namespace

TEST_F(CoreLinesTest, LineOfACoreContextIsDrawnByTheInternalProgram) {
  start_core();
  draw_line();
  EXPECT_EQ(1, gl.count("glLinkProgram"));
  EXPECT_TRUE(gl.called("glDrawArrays(GL_LINES, 0, 2)"));
  EXPECT_EQ(0, gl.count("glBegin"));
  EXPECT_EQ("glUseProgram(0)", gl.calls().back());
  EXPECT_EQ(nullptr, renderer.get_current_gpu_program());
  gl.clear();
  draw_line();
  EXPECT_EQ(0, gl.count("glLinkProgram")) << "made once";
  EXPECT_EQ(0, gl.count("glVertexAttribPointer")) << "set up once";
  EXPECT_TRUE(gl.called("glDrawArrays(GL_LINES, 0, 2)"));
}

TEST_F(CoreLinesTest, InternalProgramBindsPositionAndColor) {
  start_core();
  draw_line();
  const Calls calls = gl.calls_of({"glBindAttribLocation"});
  ASSERT_EQ(2u, calls.size());
  EXPECT_NE(std::string::npos, calls[0].find("0, \"orvex_Position\""));
  EXPECT_NE(std::string::npos, calls[1].find("3, \"orvex_Color\""));
}

TEST_F(CoreLinesTest, StoredMatricesAreSent) {
  start_core();
  gl.uniform_locations = {{"orvex_ProjectionMatrix", 1}, {"orvex_ModelViewMatrix", 2}};
  mat4 projection, view;
  projection.m[0] = 5;
  view.m[12] = 7;
  renderer.set_projection_matrix(projection, true);
  renderer.set_modelview_matrix(view, true);
  draw_line();
  EXPECT_TRUE(gl.called("glUniformMatrix4fv(1, 1, GL_FALSE, [5 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1])"));
  EXPECT_TRUE(gl.called("glUniformMatrix4fv(2, 1, GL_FALSE, [1 0 0 0 0 1 0 0 0 0 1 0 7 0 0 1])"));
}

TEST_F(CoreLinesTest, ProgramAndVertexArrayThatWereBoundComeBack) {
  start_core();
  draw_line();
  renderer.gpu_program_use_id(99);
  renderer.gl().glBindVertexArray(55);
  gl.clear();
  draw_line();
  const Calls calls = gl.changes();
  EXPECT_EQ("glUseProgram(99)", calls.back());
  EXPECT_THAT(calls, Contains("glBindVertexArray(55)"));
}

TEST_F(CoreLinesTest, GeometryWithoutProgramIsDrawnByTheInternalProgram) {
  start_core();
  make_geometry();
  EXPECT_TRUE(renderer.geometry_vbo_draw(&geometry));
  EXPECT_EQ(1, gl.count("glLinkProgram"));
  EXPECT_TRUE(gl.called("glDrawArrays(GL_LINES, 0, 2)"));
  EXPECT_TRUE(gl.called("glVertexAttrib4fv(3, [1 1 1 1])")) << "white without a colour array";
  EXPECT_EQ("glUseProgram(0)", gl.calls().back());
  EXPECT_EQ(nullptr, renderer.get_current_gpu_program());
}

TEST_F(CoreLinesTest, RawDrawsWithoutProgramAreDrawnByTheInternalProgram) {
  start_core();
  make_geometry();
  renderer.draw_lines(1, 0);
  EXPECT_TRUE(gl.called("glDrawArrays(GL_LINES, 0, 2)"));
  EXPECT_EQ(2, gl.count("glUseProgram"));
  EXPECT_EQ("glUseProgram(0)", gl.calls().back());
}

TEST_F(CoreLinesTest, GeometryWithAProgramIsNot) {
  start_core();
  make_geometry();
  renderer.gpu_program_use_id(99);
  gl.clear();
  EXPECT_TRUE(renderer.geometry_vbo_draw(&geometry));
  EXPECT_THAT(take_changes(), ElementsAre("glDrawArrays(GL_LINES, 0, 2)"));
}

TEST_F(CoreLinesTest, ProgramThatTheHostBoundItselfIsLeft) {
  start_core();
  make_geometry();
  renderer.gl().glUseProgram(77);
  gl.clear();
  EXPECT_TRUE(renderer.geometry_vbo_draw(&geometry));
  EXPECT_THAT(take_changes(), ElementsAre("glDrawArrays(GL_LINES, 0, 2)"));
}

TEST_F(CoreLinesTest, PatchesWithoutAProgramAreFalse) {
  start_core();
  make_geometry();
  geometry.tessellation = true;
  EXPECT_FALSE(renderer.geometry_vbo_draw(&geometry));
  EXPECT_THAT(gl.calls_of({"glDraw"}), IsEmpty());
}

TEST_F(CoreLinesTest, ProgramThatDoesNotCompileDrawsNothingAndIsTriedOnce) {
  start_core();
  gl.compile_result = false;
  draw_line();
  draw_line();
  EXPECT_THAT(gl.calls_of({"glDraw"}), IsEmpty());
  EXPECT_EQ(1, gl.count("glCompileShader"));
}

TEST_F(CoreLinesTest, CompatibilityContextHasNoInternalProgram) {
  start();
  make_geometry();
  EXPECT_TRUE(renderer.geometry_vbo_draw(&geometry));
  draw_line();
  EXPECT_EQ(0, gl.count("glCreateProgram"));
  EXPECT_EQ(0, gl.count("glUseProgram"));
}
