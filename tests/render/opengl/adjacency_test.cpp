// Primitives that came with later versions, where OpenGL has them and where it has not.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orv/geometry/material_subset.h>

#include "render/opengl/geometry_fixture.h"

using namespace orv;
using namespace orv::test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class AdjacencyTest : public FakeGeometryTest {
 protected:
  void make(unsigned int num_vertices, PRIMITIVE_TYPE primitive) {
    alloc_vertices(num_vertices, true, 0);
    geometry.set_primitive_type(primitive);
    upload();
  }
  /// A list of indices in place of the vertices in their order.
  void add_indices(unsigned int count, PRIMITIVE_TYPE primitive) {
    geometry.alloc_face_data_v3(count, primitive);
    ASSERT_TRUE(renderer.geometry_vbo_update(&geometry));
  }
  Calls draw_calls(bool expected = true) {
    EXPECT_TRUE(renderer.geometry_vbo_bind(&geometry));
    gl.clear();
    EXPECT_EQ(renderer.geometry_vbo_draw(&geometry), expected);
    Calls calls = gl.calls_of({"glDraw"});
    renderer.geometry_vbo_unbind(&geometry);
    gl.clear();
    return calls;
  }
};

TEST_F(AdjacencyTest, IsLeftToOpenGLWhereThereAreGeometryShaders) {
  start(3, 2, false);
  make(8, PRIMITIVE_LINE_STRIP_ADJACENCY);
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawArrays(GL_LINE_STRIP_ADJACENCY, 0, 8)"));
  geometry.set_primitive_type(PRIMITIVE_LINES_ADJACENCY);
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawArrays(GL_LINES_ADJACENCY, 0, 8)"));
}

class AdjacencyExtensionTest : public AdjacencyTest,
                               public testing::WithParamInterface<const char*> {};

TEST_P(AdjacencyExtensionTest, IsLeftToOpenGLWhereAnExtensionBringsIt) {
  gl.set_extensions({GetParam()});
  start(2, 1, false);
  make(8, PRIMITIVE_LINE_STRIP_ADJACENCY);
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawArrays(GL_LINE_STRIP_ADJACENCY, 0, 8)"));
}

INSTANTIATE_TEST_SUITE_P(, AdjacencyExtensionTest,
                         testing::Values("GL_ARB_geometry_shader4", "GL_EXT_geometry_shader4"));

TEST_F(AdjacencyTest, StripIsDrawnFromItsInnerVerticesElsewhere) {
  start(2, 1, false);
  make(8, PRIMITIVE_LINE_STRIP_ADJACENCY);
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawArrays(GL_LINE_STRIP, 1, 6)"));
  geometry.set_vertex_draw_range(2, 4);
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawArrays(GL_LINE_STRIP, 3, 2)"));
  for (const int count : {0, 1, 3}) {
    geometry.set_vertex_draw_range(0, count);
    EXPECT_THAT(draw_calls(), IsEmpty()) << count;
  }
  geometry.set_vertex_draw_range(5, 100);
  EXPECT_THAT(draw_calls(), IsEmpty()) << "three are left";
}

TEST_F(AdjacencyTest, LinesAreDrawnOneByOneElsewhere) {
  start(3, 1, false);
  make(11, PRIMITIVE_LINES_ADJACENCY);
  EXPECT_THAT(draw_calls(),
              ElementsAre("glDrawArrays(GL_LINES, 1, 2)", "glDrawArrays(GL_LINES, 5, 2)"));
  geometry.set_vertex_draw_range(1, 4);
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawArrays(GL_LINES, 2, 2)"));
  geometry.set_vertex_draw_range(0, 3);
  EXPECT_THAT(draw_calls(), IsEmpty());
}

TEST_F(AdjacencyTest, IndicesAreTakenFromTheirInnerOnesElsewhere) {
  start(2, 1, false);
  make(8, PRIMITIVE_LINES);
  add_indices(8, PRIMITIVE_LINE_STRIP_ADJACENCY);
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawElements(GL_LINE_STRIP, 6, GL_UNSIGNED_INT, 4)"));
  geometry.set_primitive_type(PRIMITIVE_LINES_ADJACENCY);
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawElements(GL_LINES, 2, GL_UNSIGNED_INT, 4)",
                                        "glDrawElements(GL_LINES, 2, GL_UNSIGNED_INT, 20)"));
  MaterialSubset subset;
  subset.start_face = 2;
  subset.end_face = 7;
  geometry.set_current_subset(&subset);
  EXPECT_THAT(draw_calls(),
              ElementsAre("glDrawRangeElements(GL_LINES, 0, 7, 2, GL_UNSIGNED_INT, 12)"));
  geometry.set_current_subset(nullptr);
}

TEST_F(AdjacencyTest, InstancesRepeatTheInnerLines) {
  gl.add_extension("GL_ARB_draw_instanced");
  start(2, 1, false);
  make(4, PRIMITIVE_LINE_STRIP_ADJACENCY);
  ASSERT_TRUE(renderer.gl().glDrawArraysInstancedARB);
  geometry.num_instances = 3;
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawArraysInstancedARB(GL_LINE_STRIP, 1, 2, 3)"));
}

TEST_F(AdjacencyTest, PatchesAreRefusedWithoutTessellation) {
  gl.set_extensions({});
  start(3, 3, false);
  make(4, PRIMITIVE_PATCHES);
  EXPECT_THAT(draw_calls(false), IsEmpty());
  geometry.set_primitive_type(PRIMITIVE_TRIANGLES);
  geometry.tessellation = true;
  EXPECT_THAT(draw_calls(false), IsEmpty());
  geometry.tessellation = false;
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawArrays(GL_TRIANGLES, 0, 4)"));
}

}  // namespace
