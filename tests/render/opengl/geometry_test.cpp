#include <thread>

#include "render/opengl/geometry_fixture.h"

using namespace orv;
using namespace orv::test;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

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
  EXPECT_EQ(4 * NUM_VERTICES * 16u, vertex_bytes().size());
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
  EXPECT_EQ(NUM_VERTICES * 64u + NUM_VERTICES * 16u, vertex_bytes().size());
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
  geometry.set_alloc_params_num_vertices(2 * NUM_VERTICES);
  ASSERT_TRUE(geometry.alloc_vertex_data());
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_EQ(4 * 2 * NUM_VERTICES * 16u, vertex_bytes().size());
  EXPECT_EQ(512u, geometry.vb()->size);
}

TEST_F(GeometryTest, AppendedArrayReachesTheBuffer) {
  start();
  make_separate();
  upload();
  VertexAttribArray* extra = geometry.alloc_new_vertex_attrib_array(NUM_VERTICES);
  ASSERT_NE(nullptr, extra);
  extra->set_element_vec4(0, vec4(77, 0, 0, 1));
  EXPECT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_EQ(5 * NUM_VERTICES * 16u, vertex_bytes().size());
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
  geometry.set_alloc_params_num_vertices(3 * NUM_VERTICES);
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
