#include <cstring>
#include <thread>

#include "render/opengl/geometry_fixture.h"

using namespace orv;
using namespace orv::test;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

namespace {

constexpr unsigned int VERTICES = 4;

class GeometryTest : public FakeGeometryTest {
 protected:
  /// Separate arrays of four vertices, with faces when asked for.
  void make_separate(unsigned int num_faces = 0, bool force_32 = false) {
    alloc_vertices(VERTICES, true, 0);
    if (num_faces > 0) {
      ASSERT_TRUE(geometry.alloc_face_data(num_faces, force_32));
    }
  }
  void make_interleaved(unsigned int num_user_attribs = 0) {
    alloc_vertices(VERTICES, false, num_user_attribs);
  }
  Calls draw_calls() {
    EXPECT_TRUE(renderer.geometry_vbo_bind(&geometry));
    gl.clear();
    EXPECT_TRUE(renderer.geometry_vbo_draw(&geometry));
    return gl.calls_of({"glDraw"});
  }
  const std::vector<unsigned char>& vertex_bytes() {
    return gl.buffer_bytes(geometry.vb()->buffer_id);
  }
  float vertex_float(std::size_t index) {
    float value = 0;
    std::memcpy(&value, vertex_bytes().data() + index * 4, 4);
    return value;
  }
};

}  // namespace

// ---- creating ----

TEST_F(GeometryTest, NullGeometryIsFalseEverywhere) {
  start();
  EXPECT_FALSE(renderer.geometry_vbo_create(nullptr, nullptr));
  EXPECT_FALSE(renderer.geometry_vbo_update(nullptr));
  EXPECT_FALSE(renderer.geometry_vbo_bind(nullptr));
  EXPECT_FALSE(renderer.geometry_vbo_unbind(nullptr));
  EXPECT_FALSE(renderer.geometry_vbo_draw(nullptr));
  EXPECT_FALSE(renderer.geometry_vbo_destroy(nullptr));
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(GeometryTest, GeometryThatWasNotCreatedIsFalse) {
  start();
  make_separate();
  EXPECT_FALSE(renderer.geometry_vbo_update(&geometry));
  EXPECT_FALSE(renderer.geometry_vbo_bind(&geometry));
  EXPECT_FALSE(renderer.geometry_vbo_unbind(&geometry));
  EXPECT_FALSE(renderer.geometry_vbo_draw(&geometry));
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(GeometryTest, GeometryWithoutBytesIsNotCreated) {
  start();
  EXPECT_FALSE(renderer.geometry_vbo_create(nullptr, &geometry));
  EXPECT_FALSE(geometry.is_vb_uploaded());
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(GeometryTest, CreateMakesBothBuffersAndTellsTheRecord) {
  start();
  make_separate(2);
  ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry));
  EXPECT_TRUE(geometry.is_vb_uploaded());
  EXPECT_NE(0u, geometry.vb()->buffer_id);
  EXPECT_EQ(geometry.vb()->buffer_id, geometry.vertex_buffer_id);
  EXPECT_EQ(renderer.getid(), geometry.vb()->renderer_id);
  EXPECT_EQ(4 * VERTICES * 16u, vertex_bytes().size());
  EXPECT_NE(0u, geometry.get_ibo());
  EXPECT_EQ(2 * 6u, gl.buffer_bytes(geometry.get_ibo()).size()) << "16-bit faces";
  EXPECT_TRUE(geometry.check_thread());
}

TEST_F(GeometryTest, CreatedGeometryIsTrueAtOnce) {
  start();
  make_separate();
  ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry));
  gl.clear();
  EXPECT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry));
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(GeometryTest, IndexBufferSizeFollowsTheIndexWidth) {
  start();
  make_separate(3, true);
  upload();
  EXPECT_EQ(3 * 12u, gl.buffer_bytes(geometry.get_ibo()).size());
  geometry.free_face_data();
  geometry.alloc_face_data_v3(5, PRIMITIVE_LINE_STRIP);
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_EQ(5 * 4u, gl.buffer_bytes(geometry.get_ibo()).size());
}

TEST_F(GeometryTest, UsageOptionsOverrideTheGeometrysOwn) {
  start();
  make_separate(1);
  geometry.set_vertex_buffer_usage(BUFFER_USAGE_STREAM_DRAW);
  geometry.set_index_buffer_usage(BUFFER_USAGE_STREAM_READ);
  ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry));
  EXPECT_THAT(take(), Contains("glBufferData(GL_ARRAY_BUFFER, 256, null, GL_STREAM_DRAW)"));
  renderer.geometry_vbo_destroy(&geometry);
  renderer.set_vertex_buffer_usage_options(BUFFER_USAGE_DYNAMIC_DRAW, BUFFER_USAGE_STATIC_COPY);
  gl.clear();
  ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry));
  const Calls calls = take();
  EXPECT_THAT(calls, Contains("glBufferData(GL_ARRAY_BUFFER, 256, null, GL_DYNAMIC_DRAW)"));
  EXPECT_THAT(calls, Contains("glBufferData(GL_ARRAY_BUFFER, 6, null, GL_STATIC_COPY)"));
}

TEST_F(GeometryTest, SharedBufferOfSizeZeroIsFalse) {
  start();
  make_separate();
  GpuBufferData shared;
  geometry.set_vb_source(&shared);
  EXPECT_FALSE(renderer.geometry_vbo_create(nullptr, &geometry));
  shared.size = 64;
  EXPECT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry));
  EXPECT_EQ(0u, geometry.vb()->buffer_id) << "the own buffer is not made";
  EXPECT_FALSE(renderer.geometry_vbo_bind(&geometry)) << "the shared one does not exist";
  geometry.set_vb_source(nullptr);
}

// ---- updating ----

TEST_F(GeometryTest, FirstUpdateSendsEverythingWhateverIsMarked) {
  start();
  make_separate(1);
  geometry.set_position(1, 5, 6, 7, 8);
  geometry.set_face_indices(0, 3, 2, 1);
  ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry));
  for (unsigned int i = 0; i < 4; ++i) geometry.attrib_arrays[i]->update_needed(false);
  geometry.ib_update_faces_list_set_state(false);
  ASSERT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_EQ(5.0f, vertex_float(4));
  EXPECT_EQ(1.0f, vertex_float(3)) << "default elements are sent, too";
  const auto& indices = gl.buffer_bytes(geometry.get_ibo());
  EXPECT_EQ(3, indices[0]);
  EXPECT_EQ(1, indices[4]);
  EXPECT_TRUE(geometry.is_ib_uploaded());
}

TEST_F(GeometryTest, UpdateWithoutChangesMakesNoCall) {
  start();
  make_separate(2);
  upload();
  EXPECT_FALSE(geometry.is_update_vertex_buffer_needed());
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(GeometryTest, OnlyTheMarkedElementsOfAnArrayAreSent) {
  start();
  make_separate();
  upload();
  geometry.set_normal(2, vec4(9, 8, 7, 6));
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_THAT(gl.calls_of({"glBufferSubData", "glBufferData"}),
              ElementsAre("glBufferSubData(GL_ARRAY_BUFFER, 160, 16, ptr)"));
  EXPECT_EQ(9.0f, vertex_float(40));
  EXPECT_FALSE(geometry.is_update_vertex_buffer_needed());
}

TEST_F(GeometryTest, AdjacentMarkedArraysAreSentInOneCall) {
  start();
  make_separate();
  upload();
  geometry.set_uv0(3, vec4(1, 2, 3, 4));
  geometry.set_normal(0, vec4(5, 6, 7, 8));
  geometry.set_color(3, vec4(9, 10, 11, 12));
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_THAT(gl.calls_of({"glBufferSubData", "glBufferData"}),
              ElementsAre("glBufferSubData(GL_ARRAY_BUFFER, 112, 32, ptr)",
                          "glBufferSubData(GL_ARRAY_BUFFER, 240, 16, ptr)"));
  EXPECT_EQ(1.0f, vertex_float(28));
  EXPECT_EQ(5.0f, vertex_float(32));
  EXPECT_EQ(9.0f, vertex_float(60));
}

TEST_F(GeometryTest, BufferIsOrphanedWhenEverythingIsMarked) {
  start();
  make_separate();
  upload();
  for (unsigned int i = 0; i < 4; ++i) geometry.attrib_arrays[i]->update_needed(true);
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_THAT(gl.calls_of({"glBufferSubData", "glBufferData"}),
              ElementsAre("glBufferData(GL_ARRAY_BUFFER, 256, ptr, GL_STATIC_DRAW)"));
}

TEST_F(GeometryTest, ArrayWhosePointerWasHandedOutIsSentWhole) {
  start();
  make_separate();
  upload();
  auto* positions = static_cast<vec4*>(geometry.get_position_ptr());
  positions[3].x = 42;
  geometry.set_position(0, 1, 1, 1, 1);
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_THAT(gl.calls_of({"glBufferSubData"}),
              ElementsAre("glBufferSubData(GL_ARRAY_BUFFER, 0, 64, ptr)"));
  EXPECT_EQ(42.0f, vertex_float(12));
}

TEST_F(GeometryTest, InterleavedVerticesAreSentByRange) {
  start();
  make_interleaved(1);
  upload();
  EXPECT_EQ(VERTICES * 64u + VERTICES * 16u, vertex_bytes().size());
  geometry.set_color(2, vec4(1, 2, 3, 4));
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_THAT(gl.calls_of({"glBufferSubData", "glBufferData"}),
              ElementsAre("glBufferSubData(GL_ARRAY_BUFFER, 128, 64, ptr)"));
  EXPECT_EQ(1.0f, vertex_float(32 + 12));
}

TEST_F(GeometryTest, BufferOfAnotherSizeIsSpecifiedAnew) {
  start();
  make_separate();
  upload();
  geometry.free_vertex_data();
  geometry.set_alloc_params_num_vertices(2 * VERTICES);
  ASSERT_TRUE(geometry.alloc_vertex_data());
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_EQ(4 * 2 * VERTICES * 16u, vertex_bytes().size());
  EXPECT_EQ(512u, geometry.vb()->size);
}

TEST_F(GeometryTest, AppendedArrayReachesTheBuffer) {
  start();
  make_separate();
  upload();
  VertexAttribArray* extra = geometry.alloc_new_vertex_attrib_array(VERTICES);
  ASSERT_NE(nullptr, extra);
  extra->set_element_vec4(0, vec4(77, 0, 0, 1));
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_EQ(5 * VERTICES * 16u, vertex_bytes().size());
  EXPECT_EQ(77.0f, vertex_float(64));
}

TEST_F(GeometryTest, LargeArraysAreSentOneByOne) {
  start();
  geometry.set_alloc_params_num_vertices(40000);
  ASSERT_TRUE(geometry.alloc_vertex_data());
  geometry.set_color(39999, vec4(3, 3, 3, 3));
  ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry));
  gl.clear();
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_EQ(4, gl.count("glBufferSubData"));
  EXPECT_EQ(1, gl.count("glBufferData"));
  EXPECT_EQ(3.0f, vertex_float(4 * 160000 - 1));
}

TEST_F(GeometryTest, IndexBufferMadeAfterTheUploadIsCreatedAndFreedOneGoes) {
  start();
  make_separate();
  upload();
  EXPECT_EQ(0u, geometry.get_ibo());
  ASSERT_TRUE(geometry.alloc_face_data(1, false));
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  const unsigned int ibo = geometry.get_ibo();
  ASSERT_NE(0u, ibo);
  geometry.free_face_data();
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_EQ(0u, geometry.get_ibo());
  EXPECT_EQ(0u, gl.live_ids().count(ibo));
}

TEST_F(GeometryTest, MarkedFacesAreSentAgain) {
  start();
  make_separate(1);
  upload();
  geometry.set_face_indices(0, 1, 2, 3);
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_THAT(take(), IsEmpty()) << "not marked";
  geometry.ib_update_faces_list_set_state(true);
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_EQ(1, gl.buffer_bytes(geometry.get_ibo())[0]);
  EXPECT_FALSE(geometry.is_ib_update_faces_list_needed());
}

TEST_F(GeometryTest, IndicesAreSentPastTheElementBinding) {
  start();
  make_separate(1);
  ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry));
  ASSERT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_THAT(gl.calls_of({"glBindBuffer(GL_ELEMENT_ARRAY_BUFFER"}), IsEmpty());
}

TEST_F(GeometryTest, ExternalSourceIsNotTouched) {
  start();
  make_separate(1);
  GpuBufferData shared;
  ASSERT_TRUE(renderer.gpu_buffer_alloc(nullptr, &shared, GPU_BUFFER_SHADER_STORAGE,
                                        BUFFER_USAGE_STATIC_DRAW, 256, nullptr));
  geometry.set_vb_source(&shared);
  ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry));
  gl.clear();
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_THAT(gl.calls_of({"glBufferData", "glBufferSubData"}), SizeIs(1)) << "the indices";
  EXPECT_EQ(256u, gl.buffer_bytes(shared.buffer_id).size());
  geometry.set_vb_source(nullptr);
  renderer.gpu_buffer_free(&shared);
}

TEST_F(GeometryTest, MappedBufferIsLeftAloneAndStaysMarked) {
  start();
  make_separate();
  upload();
  ASSERT_NE(nullptr, renderer.gpu_buffer_map(geometry.vb(), "GL_WRITE_ONLY"));
  geometry.set_position(0, 1, 2, 3, 4);
  gl.clear();
  EXPECT_FALSE(renderer.geometry_vbo_update(&geometry));
  EXPECT_THAT(take(), IsEmpty());
  EXPECT_TRUE(geometry.is_update_vertex_buffer_needed());
  EXPECT_TRUE(renderer.gpu_buffer_unmap(geometry.vb()));
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_EQ(2.0f, vertex_float(1));
}

TEST_F(GeometryTest, ImmutableStorageIsReplacedWhenItIsTooSmall) {
  start();
  geometry.vb()->set_state("immutable_storage", true);
  make_separate();
  upload();
  const unsigned int first = geometry.vb()->buffer_id;
  geometry.free_vertex_data();
  geometry.set_alloc_params_num_vertices(3 * VERTICES);
  ASSERT_TRUE(geometry.alloc_vertex_data());
  geometry.set_position(0, 6, 0, 0, 1);
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_NE(first, geometry.vb()->buffer_id);
  EXPECT_EQ(geometry.vb()->buffer_id, geometry.vertex_buffer_id);
  EXPECT_EQ(6.0f, vertex_float(0));
  EXPECT_EQ(0, gl.count("glBufferData"));
}

TEST_F(GeometryTest, ArraysThatTellNobodyOfMarksAreLookedAt) {
  start();
  make_separate();
  geometry.attrib_arrays[1]->owner = nullptr;
  upload();
  ASSERT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_EQ(0, gl.count("glBufferSubData"));
  geometry.attrib_arrays[1]->update_needed(true);
  ASSERT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_EQ(1, gl.count("glBufferSubData"));
}

// ---- drawing ----

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
  make_other(&other, VERTICES);
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

// ---- deleting ----

TEST_F(GeometryTest, DestroyDeletesBothBuffers) {
  start();
  make_separate(2);
  upload();
  const unsigned int vbo = geometry.vb()->buffer_id, ibo = geometry.get_ibo();
  EXPECT_TRUE(renderer.geometry_vbo_destroy(&geometry));
  EXPECT_EQ(0u, gl.live_ids().count(vbo));
  EXPECT_EQ(0u, gl.live_ids().count(ibo));
  EXPECT_EQ(0u, geometry.vb()->buffer_id);
  EXPECT_EQ(0u, geometry.vertex_buffer_id);
  EXPECT_EQ(0u, geometry.get_ibo());
  EXPECT_FALSE(geometry.is_vb_uploaded());
  EXPECT_FALSE(geometry.is_ib_uploaded());
  upload();
  EXPECT_NE(0u, geometry.vb()->buffer_id) << "it can be created again";
}

TEST_F(GeometryTest, DestroyFromAnotherThreadIsFalseAndFreesNothing) {
  start();
  make_separate(2);
  upload();
  bool destroyed = true;
  std::thread([&] { destroyed = renderer.geometry_vbo_destroy(&geometry); }).join();
  EXPECT_FALSE(destroyed);
  EXPECT_THAT(take(), IsEmpty());
  EXPECT_TRUE(geometry.is_vb_uploaded());
}

TEST_F(GeometryTest, DestroyLeavesASharedBuffer) {
  start();
  make_separate();
  GpuBufferData shared;
  ASSERT_TRUE(renderer.gpu_buffer_alloc(nullptr, &shared, GPU_BUFFER_ARRAY,
                                        BUFFER_USAGE_STATIC_DRAW, 256, nullptr));
  geometry.set_vb_source(&shared);
  ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry));
  EXPECT_TRUE(renderer.geometry_vbo_destroy(&geometry));
  EXPECT_NE(0u, shared.buffer_id);
  EXPECT_EQ(1u, gl.live_ids().count(shared.buffer_id));
  geometry.set_vb_source(nullptr);
  renderer.gpu_buffer_free(&shared);
}
