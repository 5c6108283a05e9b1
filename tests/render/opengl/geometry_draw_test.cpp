#include "render/opengl/geometry_fixture.h"

using namespace orv;
using namespace orv::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(GeometryTest, GeometryWithoutFacesDrawsArrays) {
  start();
  make_separate();
  geometry.set_vertex_draw_range(1, 2);
  upload();
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawArrays(GL_TRIANGLES, 1, 2)"));
}

TEST_F(GeometryTest, DrawRangeStaysInsideEveryArrayOfVertices) {
  start();
  make_separate();
  ASSERT_EQ(4u, geometry.num_vertices);
  ASSERT_TRUE(geometry.alloc_new_vertex_attrib_array(3));  // shorter than the vertices
  VertexAttribArray* instances = geometry.alloc_new_vertex_attrib_array(1);
  ASSERT_TRUE(instances);
  instances->set_divisor(1);
  upload();
  geometry.set_vertex_draw_range(0, 4);
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawArrays(GL_TRIANGLES, 0, 3)"));
  geometry.set_vertex_draw_range(1, 4);
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawArrays(GL_TRIANGLES, 1, 2)"));
}

TEST_F(GeometryTest, DrawRangeStaysInsideTheVertices) {
  start();
  make_separate();
  upload();
  geometry.set_vertex_draw_range(2, 1000);
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawArrays(GL_TRIANGLES, 2, 2)"));
  geometry.set_vertex_draw_range(-5, 3);
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawArrays(GL_TRIANGLES, 0, 3)"));
  geometry.set_vertex_draw_range(100, 3);
  EXPECT_THAT(draw_calls(), IsEmpty());
  geometry.set_vertex_draw_range(0, -3);
  EXPECT_THAT(draw_calls(), IsEmpty());
}

TEST_F(GeometryTest, PrimitiveTypesAndPatches) {
  struct Row {
    int type;
    bool tessellation;
    const char* mode;
  };
  start();
  make_separate();
  upload();
  for (const Row& row :
       {Row{0, false, "GL_TRIANGLES"}, Row{1, false, "GL_TRIANGLE_STRIP"},
        Row{2, false, "GL_LINES"}, Row{3, false, "GL_LINE_STRIP"}, Row{4, false, "GL_LINE_LOOP"},
        Row{5, false, "GL_LINES_ADJACENCY"}, Row{6, false, "GL_LINE_STRIP_ADJACENCY"},
        Row{7, false, "GL_PATCHES"}, Row{8, false, "GL_POINTS"}, Row{50, false, "GL_TRIANGLES"},
        Row{2, true, "GL_PATCHES"}}) {
    geometry.set_primitive_type(static_cast<PRIMITIVE_TYPE>(row.type));
    geometry.tessellation = row.tessellation;
    EXPECT_THAT(draw_calls(), ElementsAre(std::string("glDrawArrays(") + row.mode + ", 0, 4)"));
  }
}

TEST_F(GeometryTest, IndexedDrawsByIndexWidth) {
  start();
  make_separate(2);
  upload();
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, 0)"));
  geometry.free_face_data();
  geometry.alloc_face_data(3, true);
  ASSERT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawElements(GL_TRIANGLES, 9, GL_UNSIGNED_INT, 0)"));
  geometry.free_face_data();
  geometry.alloc_face_data_v3(5, PRIMITIVE_LINE_STRIP);
  ASSERT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawElements(GL_LINE_STRIP, 5, GL_UNSIGNED_INT, 0)"));
}

TEST_F(GeometryTest, InstancesAreDrawnWhereTheDriverHasThem) {
  start();
  make_separate(2);
  geometry.num_instances = 5;
  upload();
  EXPECT_THAT(draw_calls(),
              ElementsAre("glDrawElementsInstancedARB(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, 0, 5)"));
  geometry.free_face_data();
  ASSERT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawArraysInstancedARB(GL_TRIANGLES, 0, 4, 5)"));
  geometry.num_instances = 1;
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawArrays(GL_TRIANGLES, 0, 4)"));
}

TEST_F(GeometryTest, InstancesFallBackToOneWithoutTheFunctions) {
  gl.remove_function("glDrawArraysInstancedARB");
  gl.remove_function("glDrawElementsInstancedARB");
  start();
  make_separate(2);
  geometry.num_instances = 5;
  upload();
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, 0)"));
}

TEST_F(GeometryTest, SubsetDrawsItsFacesAndNeverInstances) {
  start();
  make_separate(4);
  geometry.num_instances = 5;
  upload();
  MaterialSubset subset;
  subset.start_face = 1;
  subset.end_face = 2;
  geometry.set_current_subset(&subset);
  EXPECT_THAT(draw_calls(),
              ElementsAre("glDrawRangeElements(GL_TRIANGLES, 0, 3, 6, GL_UNSIGNED_SHORT, 6)"));
  geometry.set_current_subset(nullptr);
}

TEST_F(GeometryTest, SubsetOfWideAndGenericIndices) {
  start();
  make_separate(4, true);
  upload();
  MaterialSubset subset;
  subset.start_face = 1;
  subset.end_face = 3;
  geometry.set_current_subset(&subset);
  EXPECT_THAT(draw_calls(),
              ElementsAre("glDrawRangeElements(GL_TRIANGLES, 0, 3, 9, GL_UNSIGNED_INT, 12)"));
  geometry.free_face_data();
  geometry.alloc_face_data_v3(6, PRIMITIVE_TRIANGLE_STRIP);
  ASSERT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_THAT(draw_calls(),
              ElementsAre("glDrawRangeElements(GL_TRIANGLE_STRIP, 0, 3, 3, GL_UNSIGNED_INT, 4)"));
  geometry.set_current_subset(nullptr);
}

TEST_F(GeometryTest, EmptySubsetDrawsNoIndexAndFalseOnesStayInside) {
  start();
  make_separate(4);
  upload();
  MaterialSubset subset;
  geometry.set_current_subset(&subset);
  EXPECT_THAT(draw_calls(),
              ElementsAre("glDrawRangeElements(GL_TRIANGLES, 0, 3, 0, GL_UNSIGNED_SHORT, 0)"));
  subset.start_face = 2;
  subset.end_face = 1000000;
  EXPECT_THAT(draw_calls(),
              ElementsAre("glDrawRangeElements(GL_TRIANGLES, 0, 3, 6, GL_UNSIGNED_SHORT, 12)"));
  subset.start_face = 0xFFFFFFFFu;
  EXPECT_THAT(draw_calls(),
              ElementsAre("glDrawRangeElements(GL_TRIANGLES, 0, 3, 0, GL_UNSIGNED_SHORT, 0)"));
  geometry.set_current_subset(nullptr);
}

TEST_F(GeometryTest, DrawingGoesOnFromTheBuffersAfterTheArraysWereGivenUp) {
  start();
  make_separate(2);
  upload();
  geometry.release_cpu_data();
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_THAT(take(), IsEmpty());
  EXPECT_TRUE(renderer.geometry_vbo_bind(&geometry));
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, 0)"));
  EXPECT_TRUE(renderer.geometry_vbo_unbind(&geometry));
}

TEST_F(GeometryTest, ArraysThatWereNeverSentAreGivenUpWithoutBeingDrawn) {
  start();
  make_separate(2);
  upload();
  geometry.set_alloc_params_num_vertices(1000);
  ASSERT_TRUE(geometry.alloc_vertex_data());
  ASSERT_TRUE(geometry.alloc_face_data(500, true));
  geometry.release_cpu_data();
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, 0)"));
  EXPECT_TRUE(renderer.geometry_vbo_unbind(&geometry));
}

TEST_F(GeometryTest, FreedGeometryDrawsNothing) {
  start();
  make_separate(2);
  upload();
  geometry.free_data();
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_TRUE(renderer.geometry_vbo_bind(&geometry));
  EXPECT_THAT(draw_calls(), IsEmpty());
  EXPECT_TRUE(renderer.geometry_vbo_unbind(&geometry));
}

TEST_F(GeometryTest, GeometryThatChangedSinceItsBindingIsNotDrawn) {
  start();
  make_separate(2);
  upload();
  ASSERT_TRUE(renderer.geometry_vbo_bind(&geometry));
  geometry.free_face_data();
  geometry.alloc_face_data(1000, true);
  gl.clear();
  EXPECT_FALSE(renderer.geometry_vbo_draw(&geometry));
  EXPECT_THAT(gl.calls_of({"glDraw"}), IsEmpty());
  EXPECT_TRUE(renderer.geometry_vbo_bind(&geometry)) << "binding sends what is new";
  EXPECT_THAT(draw_calls(), ElementsAre("glDrawElements(GL_TRIANGLES, 3000, GL_UNSIGNED_INT, 0)"));
}

TEST_F(GeometryTest, GeometryThatIsNotTheOneBoundIsNotDrawn) {
  start();
  make_separate(2);
  upload();
  EXPECT_FALSE(renderer.geometry_vbo_draw(&geometry)) << "not bound yet";
  GeometryCore other;
  make_other(&other, NUM_VERTICES);
  ASSERT_TRUE(renderer.geometry_vbo_bind(&geometry));
  ASSERT_TRUE(renderer.geometry_vbo_bind(&other));
  gl.clear();
  EXPECT_FALSE(renderer.geometry_vbo_draw(&geometry));
  EXPECT_TRUE(renderer.geometry_vbo_draw(&other));
  EXPECT_TRUE(renderer.geometry_vbo_unbind(&other));
  EXPECT_FALSE(renderer.geometry_vbo_draw(&other));
  EXPECT_THAT(gl.calls_of({"glDraw"}), ElementsAre("glDrawArrays(GL_TRIANGLES, 0, 4)"));
  EXPECT_TRUE(renderer.geometry_vbo_destroy(&other));
}

TEST_F(GeometryTest, GeometryWhoseBuffersWentAfterItsBindingIsNotDrawn) {
  start();
  make_separate(2);
  upload();
  ASSERT_TRUE(renderer.geometry_vbo_bind(&geometry));
  renderer.gpu_buffer_free(geometry.vb());
  EXPECT_FALSE(renderer.geometry_vbo_draw(&geometry));
  renderer.geometry_vbo_destroy(&geometry);
  upload();
  ASSERT_TRUE(renderer.geometry_vbo_bind(&geometry));
  GpuBufferData indices;
  ASSERT_TRUE(renderer.gpu_buffer_alloc(nullptr, &indices, GPU_BUFFER_ELEMENT_ARRAY,
                                        BUFFER_USAGE_STATIC_DRAW, 64, nullptr));
  EXPECT_FALSE(renderer.geometry_vbo_draw(&geometry)) << "other indices were bound";
  EXPECT_TRUE(renderer.geometry_vbo_bind(&geometry));
  EXPECT_TRUE(renderer.geometry_vbo_draw(&geometry));
  renderer.gpu_buffer_free(&indices);
}
