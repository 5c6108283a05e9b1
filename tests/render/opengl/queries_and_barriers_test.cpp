#include "render/opengl/fake_gl_fixture.h"

using namespace orv;
using namespace orv::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class QueriesAndBarriersTest : public FakeGlTest {};

}  // namespace

TEST_F(QueriesAndBarriersTest, BarriersPassTheirBits) {
  start();
  EXPECT_TRUE(renderer.memory_barrier(RENDERER_BARRIER_UNIFORM));
  renderer.memory_barrier_raw(RENDERER_BARRIER_SHADER_STORAGE);
  EXPECT_TRUE(renderer.memory_barrier_by_name(
      "GL_VERTEX_ATTRIB_ARRAY_BARRIER_BIT | GL_TEXTURE_FETCH_BARRIER_BIT"));
  EXPECT_THAT(take(), ElementsAre("glMemoryBarrier(0x4)", "glMemoryBarrier(0x2000)",
                                  "glMemoryBarrier(0x9)"));
}

TEST_F(QueriesAndBarriersTest, AtomicCounterBarrierPassesTwoBits) {
  start();
  renderer.atomic_counter_barrier();
  EXPECT_THAT(take(), ElementsAre("glMemoryBarrier(0x1001)"));
}

TEST_F(QueriesAndBarriersTest, BarriersAreFalseWhereAbsent) {
  gl.remove_function("glMemoryBarrier");
  start();
  EXPECT_FALSE(renderer.memory_barrier(1));
  EXPECT_FALSE(renderer.memory_barrier_by_name("GL_UNIFORM_BARRIER_BIT"));
  EXPECT_FALSE(renderer.memory_barrier_by_name(nullptr));
  renderer.memory_barrier_raw(1);
  renderer.atomic_counter_barrier();
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(QueriesAndBarriersTest, QueriesGoByNameOfTheirTarget) {
  gl.add_extension("GL_ARB_pipeline_statistics_query");
  start();
  const unsigned int id = renderer.query_create();
  ASSERT_NE(0u, id);
  gl.clear();
  EXPECT_TRUE(renderer.query_begin(id, "GL_FRAGMENT_SHADER_INVOCATIONS_ARB"));
  EXPECT_TRUE(renderer.query_end("GL_FRAGMENT_SHADER_INVOCATIONS_ARB"));
  const std::string number = std::to_string(id);
  EXPECT_THAT(take(),
              ElementsAre("glBeginQuery(GL_FRAGMENT_SHADER_INVOCATIONS_ARB, " + number + ")",
                          "glEndQuery(GL_FRAGMENT_SHADER_INVOCATIONS_ARB)"));
  gl.query_result = 77;
  unsigned int result = 0;
  EXPECT_TRUE(renderer.query_is_available(id));
  EXPECT_TRUE(renderer.query_get_result(id, &result));
  EXPECT_EQ(77u, result);
  EXPECT_TRUE(renderer.query_delete(id));
}

TEST_F(QueriesAndBarriersTest, TimeQueriesMeasureElapsedTime) {
  start();
  const unsigned int id = renderer.query_create();
  gl.clear();
  EXPECT_TRUE(renderer.time_query_begin(id));
  EXPECT_TRUE(renderer.time_query_end());
  EXPECT_THAT(take(), ElementsAre("glBeginQuery(GL_TIME_ELAPSED, " + std::to_string(id) + ")",
                                  "glEndQuery(GL_TIME_ELAPSED)"));
  gl.query_result = 123456;
  unsigned int nanoseconds = 0;
  EXPECT_TRUE(renderer.time_query_get_result(id, &nanoseconds));
  EXPECT_EQ(123456u, nanoseconds);
  renderer.query_delete(id);
}

TEST_F(QueriesAndBarriersTest, BadQueriesAreFalse) {
  start();
  EXPECT_FALSE(renderer.query_begin(0, "GL_TIME_ELAPSED"));
  EXPECT_FALSE(renderer.query_begin(1, "GL_TIME"));
  EXPECT_FALSE(renderer.query_begin(1, nullptr));
  EXPECT_FALSE(renderer.query_end("GL_SAMPLES_PASSED"));
  EXPECT_FALSE(renderer.query_end(nullptr));
  EXPECT_FALSE(renderer.query_get_result(1, nullptr));
  EXPECT_FALSE(renderer.query_get_result(0, nullptr));
  EXPECT_FALSE(renderer.query_is_available(0));
  EXPECT_FALSE(renderer.query_delete(0));
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(QueriesAndBarriersTest, TargetsThatTheDriverLacksAreRefused) {
  gl.set_extensions({});
  start(2, 1, false);
  EXPECT_FALSE(renderer.time_query_begin(1));
  EXPECT_FALSE(renderer.query_begin(1, "GL_VERTICES_SUBMITTED_ARB"));
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(QueriesAndBarriersTest, StoppedRendererHasNoQueries) {
  start();
  renderer.stop();
  unsigned int result = 0;
  EXPECT_EQ(0u, renderer.query_create());
  EXPECT_FALSE(renderer.query_delete(1));
  EXPECT_FALSE(renderer.time_query_begin(1));
  EXPECT_FALSE(renderer.time_query_end());
  EXPECT_FALSE(renderer.query_get_result(1, &result));
  EXPECT_FALSE(renderer.query_is_available(1));
}
