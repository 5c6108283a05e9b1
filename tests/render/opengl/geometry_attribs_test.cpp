#include "render/opengl/geometry_fixture.h"

using namespace orv;
using namespace orv::test;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::Not;

namespace {

constexpr unsigned int VERTICES = 2;

class GeometryAttribsTest : public FakeGeometryTest {
 protected:
  void make_separate(unsigned int num_user = 0) {
    alloc_vertices(VERTICES, true, num_user);
    upload();
  }
  void make_interleaved(unsigned int num_user = 0) {
    alloc_vertices(VERTICES, false, num_user);
    upload();
  }
  Calls bind_calls() {
    gl.clear();
    EXPECT_TRUE(renderer.geometry_vbo_bind(&geometry));
    return gl.changes();
  }
  Calls unbind_calls() {
    gl.clear();
    EXPECT_TRUE(renderer.geometry_vbo_unbind(&geometry));
    return gl.changes();
  }
  Calls pointer_calls() {
    bind_calls();
    return gl.calls_of({"glVertexAttribPointer"});
  }
  std::string vbo() { return std::to_string(geometry.vb()->buffer_id); }
};

}  // namespace

// ---- separate arrays ----

TEST_F(GeometryAttribsTest, SeparateArraysStandOneBehindTheOther) {
  start();
  make_separate();
  EXPECT_THAT(
      bind_calls(),
      ElementsAre(
          "glBindBuffer(GL_ARRAY_BUFFER, " + vbo() + ")", "glEnableVertexAttribArray(0)",
          "glVertexAttribPointer(0, 4, GL_FLOAT, GL_FALSE, 0, 0)", "glEnableVertexAttribArray(1)",
          "glVertexAttribPointer(1, 4, GL_FLOAT, GL_FALSE, 0, 32)", "glEnableVertexAttribArray(2)",
          "glVertexAttribPointer(2, 4, GL_FLOAT, GL_FALSE, 0, 64)", "glEnableVertexAttribArray(3)",
          "glVertexAttribPointer(3, 4, GL_FLOAT, GL_FALSE, 0, 96)"));
  EXPECT_TRUE(geometry.vb()->bound);
  EXPECT_THAT(
      unbind_calls(),
      ElementsAre("glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0)", "glBindBuffer(GL_ARRAY_BUFFER, 0)",
                  "glDisableVertexAttribArray(0)", "glDisableVertexAttribArray(1)",
                  "glDisableVertexAttribArray(2)", "glDisableVertexAttribArray(3)"));
  EXPECT_FALSE(geometry.vb()->bound);
}

TEST_F(GeometryAttribsTest, OffsetsFollowTheElementSizes) {
  start();
  geometry.get_alloc_params_ptr()->set_vertex_attrib_dim(0, 3);
  make_separate();
  EXPECT_THAT(pointer_calls(),
              ElementsAre("glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 0, 0)",
                          "glVertexAttribPointer(1, 4, GL_FLOAT, GL_FALSE, 0, 24)",
                          "glVertexAttribPointer(2, 4, GL_FLOAT, GL_FALSE, 0, 56)",
                          "glVertexAttribPointer(3, 4, GL_FLOAT, GL_FALSE, 0, 88)"));
}

TEST_F(GeometryAttribsTest, IndexBufferIsBoundBehindTheAttributes) {
  start();
  make_separate();
  ASSERT_TRUE(geometry.alloc_face_data(1, false));
  ASSERT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_EQ("glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, " + std::to_string(geometry.get_ibo()) + ")",
            bind_calls().back());
}

TEST_F(GeometryAttribsTest, LocationsBelowZeroAndBeyondTheDriverAreSkipped) {
  start();
  make_separate();
  geometry.attrib_arrays[1]->set_location(-1);
  geometry.attrib_arrays[2]->set_location(16);
  EXPECT_THAT(pointer_calls(),
              ElementsAre("glVertexAttribPointer(0, 4, GL_FLOAT, GL_FALSE, 0, 0)",
                          "glVertexAttribPointer(3, 4, GL_FLOAT, GL_FALSE, 0, 96)"));
}

TEST_F(GeometryAttribsTest, NumberOfAttributesIsCapped) {
  gl.set_integer(GL_MAX_VERTEX_ATTRIBS, 5);
  start();
  make_separate(3);
  EXPECT_EQ(5u, pointer_calls().size());
}

TEST_F(GeometryAttribsTest, DivisorsAreSetAndTakenBack) {
  start();
  make_separate(1);
  geometry.attrib_arrays[4]->set_divisor(2);
  EXPECT_THAT(bind_calls(), Contains("glVertexAttribDivisorARB(4, 2)"));
  EXPECT_EQ(1, gl.count("glVertexAttribDivisorARB"));
  EXPECT_THAT(unbind_calls(), Contains("glVertexAttribDivisorARB(4, 0)"));
  EXPECT_EQ(1, gl.count("glVertexAttribDivisorARB"));
}

TEST_F(GeometryAttribsTest, UnbindDisablesWhatWasEnabledWhateverTheGeometryHasBecome) {
  start();
  make_separate();
  bind_calls();
  geometry.free_vertex_data();
  unbind_calls();
  EXPECT_EQ(4u, gl.calls_of({"glDisableVertexAttribArray"}).size());
  unbind_calls();
  EXPECT_EQ(0, gl.count("glDisableVertexAttribArray")) << "nothing is left";
}

TEST_F(GeometryAttribsTest, DestroyOfABoundGeometryDisablesItsArraysFirst) {
  start();
  make_separate(1);
  geometry.use_gl2_built_in_vertex_attribs_set_state(true);
  bind_calls();
  gl.clear();
  EXPECT_TRUE(renderer.geometry_vbo_destroy(&geometry));
  EXPECT_THAT(gl.changes(),
              ::testing::ContainerEq(Calls{
                  "glDisableClientState(GL_VERTEX_ARRAY)", "glClientActiveTexture(GL_TEXTURE0)",
                  "glDisableClientState(GL_TEXTURE_COORD_ARRAY)",
                  "glDisableClientState(GL_NORMAL_ARRAY)", "glDisableClientState(GL_COLOR_ARRAY)",
                  "glDisableVertexAttribArray(4)", gl.calls().back()}));
  EXPECT_EQ(0u, gl.calls().back().rfind("glDeleteBuffers", 0));
}

TEST_F(GeometryAttribsTest, FreeingTheSourceOfBoundArraysDisablesThem) {
  start();
  make_separate();
  GpuBufferData shared;
  ASSERT_TRUE(renderer.gpu_buffer_alloc(nullptr, &shared, GPU_BUFFER_ARRAY,
                                        BUFFER_USAGE_STATIC_DRAW, 256, nullptr));
  geometry.set_vb_source(&shared);
  bind_calls();
  gl.clear();
  renderer.gpu_buffer_free(&shared);
  EXPECT_EQ(4u, gl.calls_of({"glDisableVertexAttribArray"}).size());
  EXPECT_FALSE(renderer.geometry_vbo_draw(&geometry));
  geometry.set_vb_source(nullptr);
}

TEST_F(GeometryAttribsTest, ArraysOfAGeometryThatWasNotUnboundAreDisabledByTheNext) {
  start();
  make_separate(2);
  bind_calls();
  GeometryCore other;
  make_other(&other, VERTICES);
  gl.clear();
  ASSERT_TRUE(renderer.geometry_vbo_bind(&other));
  EXPECT_TRUE(gl.called("glDisableVertexAttribArray(5)"));
  EXPECT_TRUE(renderer.geometry_vbo_destroy(&other));
}

// ---- fixed arrays ----

TEST_F(GeometryAttribsTest, FixedArraysTakeTheStandardAttributes) {
  start();
  make_separate(1);
  geometry.use_gl2_built_in_vertex_attribs_set_state(true);
  EXPECT_THAT(
      bind_calls(),
      ElementsAre("glBindBuffer(GL_ARRAY_BUFFER, " + vbo() + ")",
                  "glEnableClientState(GL_VERTEX_ARRAY)", "glVertexPointer(4, GL_FLOAT, 16, 0)",
                  "glClientActiveTexture(GL_TEXTURE0)",
                  "glEnableClientState(GL_TEXTURE_COORD_ARRAY)",
                  "glTexCoordPointer(4, GL_FLOAT, 16, 32)", "glEnableClientState(GL_NORMAL_ARRAY)",
                  "glNormalPointer(GL_FLOAT, 16, 64)", "glEnableClientState(GL_COLOR_ARRAY)",
                  "glColorPointer(4, GL_FLOAT, 16, 96)", "glEnableVertexAttribArray(4)",
                  "glVertexAttribPointer(4, 4, GL_FLOAT, GL_FALSE, 0, 128)"));
  EXPECT_THAT(
      unbind_calls(),
      ElementsAre("glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0)", "glBindBuffer(GL_ARRAY_BUFFER, 0)",
                  "glDisableClientState(GL_VERTEX_ARRAY)", "glClientActiveTexture(GL_TEXTURE0)",
                  "glDisableClientState(GL_TEXTURE_COORD_ARRAY)",
                  "glDisableClientState(GL_NORMAL_ARRAY)", "glDisableClientState(GL_COLOR_ARRAY)",
                  "glDisableVertexAttribArray(4)"));
}

TEST_F(GeometryAttribsTest, FixedArraysOfThreeComponentsHaveTheirOwnStride) {
  start();
  geometry.get_alloc_params_ptr()->set_vertex_attrib_dim(0, 3);
  make_separate();
  geometry.use_gl2_built_in_vertex_attribs_set_state(true);
  EXPECT_THAT(bind_calls(), IsSupersetOf({"glVertexPointer(3, GL_FLOAT, 12, 0)",
                                          "glTexCoordPointer(4, GL_FLOAT, 16, 24)"}));
}

TEST_F(GeometryAttribsTest, FixedArraysOfInterleavedVertices) {
  start();
  make_interleaved();
  geometry.use_gl2_built_in_vertex_attribs_set_state(true);
  EXPECT_THAT(
      bind_calls(),
      IsSupersetOf({"glVertexPointer(4, GL_FLOAT, 64, 0)", "glTexCoordPointer(4, GL_FLOAT, 64, 16)",
                    "glNormalPointer(GL_FLOAT, 64, 32)", "glColorPointer(4, GL_FLOAT, 64, 48)"}));
}

TEST_F(GeometryAttribsTest, CoreContextHasGenericAttributesInTheirPlace) {
  start_core();
  make_separate();
  geometry.use_gl2_built_in_vertex_attribs_set_state(true);
  geometry.attrib_arrays[3]->set_location(9);
  const Calls calls = bind_calls();
  EXPECT_THAT(calls, Contains("glVertexAttribPointer(0, 4, GL_FLOAT, GL_FALSE, 0, 0)"));
  EXPECT_THAT(calls, Contains("glVertexAttribPointer(3, 4, GL_FLOAT, GL_FALSE, 0, 96)"));
  EXPECT_THAT(gl.calls_of({"glEnableClientState", "glClientActiveTexture"}), IsEmpty());
}

// ---- interleaved vertices ----

TEST_F(GeometryAttribsTest, InterleavedVerticesHaveOneStride) {
  start();
  make_interleaved();
  EXPECT_THAT(pointer_calls(),
              ElementsAre("glVertexAttribPointer(0, 4, GL_FLOAT, GL_FALSE, 64, 0)",
                          "glVertexAttribPointer(1, 4, GL_FLOAT, GL_FALSE, 64, 16)",
                          "glVertexAttribPointer(2, 4, GL_FLOAT, GL_FALSE, 64, 32)",
                          "glVertexAttribPointer(3, 4, GL_FLOAT, GL_FALSE, 64, 48)"));
}

TEST_F(GeometryAttribsTest, UserArraysOfInterleavedVerticesStandBehindTheStandardOnes) {
  start();
  make_interleaved(2);
  geometry.attrib_arrays[1]->set_location(11);
  bind_calls();
  EXPECT_THAT(gl.calls_of({"glVertexAttribPointer(4", "glVertexAttribPointer(11"}),
              ElementsAre("glVertexAttribPointer(4, 4, GL_FLOAT, GL_FALSE, 0, 128)",
                          "glVertexAttribPointer(11, 4, GL_FLOAT, GL_FALSE, 0, 160)"))
      << "its own number means four further on, another location is used as it is";
}

TEST_F(GeometryAttribsTest, CapOfInterleavedVerticesIsLessenedByFour) {
  gl.set_integer(GL_MAX_VERTEX_ATTRIBS, 6);
  start();
  make_interleaved(4);
  EXPECT_EQ(4u + 2u, pointer_calls().size());
}

// ---- copies ----

TEST_F(GeometryAttribsTest, CopiedArraysDoNotHideTheirOriginals) {
  start();
  make_separate();
  GeometryCore source;
  source.set_alloc_params_num_vertices(VERTICES);
  ASSERT_TRUE(source.alloc_vertex_data());
  ASSERT_TRUE(geometry.copy_vertex_attrib_arrays(&source));
  ASSERT_EQ(8u, geometry.num_attrib_arrays);
  ASSERT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_EQ(4u, pointer_calls().size());
  geometry.attrib_arrays[0]->set_location(7);
  ASSERT_TRUE(renderer.geometry_vbo_update(&geometry));
  EXPECT_THAT(pointer_calls(), Contains("glVertexAttribPointer(0, 4, GL_FLOAT, GL_FALSE, 0, 128)"))
      << "a location of its own is used";
}

// ---- sources ----

TEST_F(GeometryAttribsTest, SharedBufferIsBoundAsVertexBufferAndGetsItsTypeBack) {
  start();
  make_separate();
  GpuBufferData shared;
  ASSERT_TRUE(renderer.gpu_buffer_alloc(nullptr, &shared, GPU_BUFFER_SHADER_STORAGE,
                                        BUFFER_USAGE_STATIC_DRAW, 256, nullptr));
  geometry.set_vb_source(&shared);
  EXPECT_EQ("glBindBuffer(GL_ARRAY_BUFFER, " + std::to_string(shared.buffer_id) + ")",
            bind_calls().front());
  EXPECT_EQ(GPU_BUFFER_ARRAY, shared.type);
  unbind_calls();
  EXPECT_EQ(GPU_BUFFER_SHADER_STORAGE, shared.type);
  geometry.set_vb_source(nullptr);
  renderer.gpu_buffer_free(&shared);
}

TEST_F(GeometryAttribsTest, BindSendsALayoutThatWasNotSentYet) {
  start();
  geometry.set_alloc_params_num_vertices(VERTICES);
  ASSERT_TRUE(geometry.alloc_vertex_data());
  ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry));
  bind_calls();
  EXPECT_THAT(gl.calls_of({"glBufferData", "glVertexAttribPointer(0"}),
              ElementsAre("glBufferData(GL_ARRAY_BUFFER, 128, ptr, GL_STATIC_DRAW)",
                          "glVertexAttribPointer(0, 4, GL_FLOAT, GL_FALSE, 0, 0)"));
}

// ---- vertex array objects ----

TEST_F(GeometryAttribsTest, VertexArrayObjectIsRecordedOnce) {
  start_core();
  make_separate();
  const Calls first = bind_calls();
  ASSERT_GE(first.size(), 2u);
  const std::string vao = std::to_string(geometry.gpu_state.vao_id);
  EXPECT_EQ("glBindVertexArray(" + vao + ")", first[1]);
  EXPECT_EQ(4u, gl.calls_of({"glVertexAttribPointer"}).size());
  EXPECT_THAT(unbind_calls(), ElementsAre("glBindVertexArray(0)"));
  EXPECT_FALSE(geometry.vb()->bound);
  EXPECT_THAT(bind_calls(), ElementsAre("glBindVertexArray(" + vao + ")"));
  EXPECT_TRUE(geometry.vb()->bound);
}

TEST_F(GeometryAttribsTest, VertexArrayObjectIsRecordedAnewForAnotherLayout) {
  start_core();
  make_separate();
  bind_calls();
  unbind_calls();
  geometry.attrib_arrays[1]->set_location(6);
  EXPECT_THAT(bind_calls(), Contains("glVertexAttribPointer(6, 4, GL_FLOAT, GL_FALSE, 0, 32)"));
  unbind_calls();
  ASSERT_TRUE(geometry.alloc_face_data(1, false));
  const Calls calls = bind_calls();
  EXPECT_EQ("glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, " + std::to_string(geometry.get_ibo()) + ")",
            calls.back());
  unbind_calls();
  EXPECT_EQ(1u, bind_calls().size()) << "and then stands";
}

TEST_F(GeometryAttribsTest, VertexArrayObjectIsRecordedAnewForAnotherSource) {
  start_core();
  make_separate();
  bind_calls();
  unbind_calls();
  GpuBufferData shared;
  ASSERT_TRUE(renderer.gpu_buffer_alloc(nullptr, &shared, GPU_BUFFER_SHADER_STORAGE,
                                        BUFFER_USAGE_STATIC_DRAW, 256, nullptr));
  geometry.set_vb_source(&shared);
  EXPECT_THAT(bind_calls(),
              Contains("glBindBuffer(GL_ARRAY_BUFFER, " + std::to_string(shared.buffer_id) + ")"));
  EXPECT_EQ(GPU_BUFFER_SHADER_STORAGE, shared.type);
  unbind_calls();
  EXPECT_EQ(1u, bind_calls().size());
  unbind_calls();
  geometry.set_vb_source(nullptr);
  renderer.gpu_buffer_free(&shared);
}

TEST_F(GeometryAttribsTest, NewContextHasNoVertexArrayObjectsInVersionTwo) {
  start(2, 1, false);
  make_separate();
  bind_calls();
  EXPECT_EQ(0, gl.count("glBindVertexArray"));
}

TEST_F(GeometryAttribsTest, DestroyDeletesTheVertexArrayObject) {
  start_core();
  make_separate();
  bind_calls();
  unbind_calls();
  const unsigned int vao = geometry.gpu_state.vao_id;
  EXPECT_TRUE(renderer.geometry_vbo_destroy(&geometry));
  EXPECT_EQ(0u, gl.live_ids().count(vao));
  EXPECT_EQ(0u, geometry.gpu_state.vao_id);
}

// ---- point sprites ----

TEST_F(GeometryAttribsTest, PointSpritesAreSwitchedAroundTheDrawing) {
  start();
  make_separate();
  geometry.set_primitive_type(PRIMITIVE_POINTS);
  geometry.set_point_sprite_state(true);
  EXPECT_EQ("glEnable(GL_VERTEX_PROGRAM_POINT_SIZE)", bind_calls().back());
  EXPECT_EQ("glDisable(GL_VERTEX_PROGRAM_POINT_SIZE)", unbind_calls().front());
  geometry.use_gl2_built_in_vertex_attribs_set_state(true);
  EXPECT_EQ("glEnable(GL_POINT_SPRITE)", bind_calls().back());
  EXPECT_THAT(unbind_calls(), Contains("glDisable(GL_POINT_SPRITE)"));
  geometry.set_primitive_type(PRIMITIVE_LINES);
  EXPECT_THAT(bind_calls(), Not(Contains("glEnable(GL_VERTEX_PROGRAM_POINT_SIZE)")));
}

TEST_F(GeometryAttribsTest, PointSpritesOfCoreContextsHaveNoFixedState) {
  start_core();
  make_separate();
  geometry.set_primitive_type(PRIMITIVE_POINTS);
  geometry.set_point_sprite_state(true);
  geometry.use_gl2_built_in_vertex_attribs_set_state(true);
  const Calls calls = bind_calls();
  EXPECT_THAT(calls, Contains("glEnable(GL_VERTEX_PROGRAM_POINT_SIZE)"));
  EXPECT_THAT(calls, Not(Contains("glEnable(GL_POINT_SPRITE)")));
}
