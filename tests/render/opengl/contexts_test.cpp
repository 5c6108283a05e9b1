#include <orv/geometry/geometry_core.h>
#include <orv/render/render_window.h>

#include "render/opengl/fake_gl_fixture.h"

using namespace orv;
using namespace orv::test;
using ::testing::Contains;
using ::testing::IsEmpty;

namespace {

class ContextsTest : public FakeGlTest {
 protected:
  void make_geometry() {
    geometry.set_alloc_params_num_vertices(2);
    ASSERT_TRUE(geometry.alloc_vertex_data());
    ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry));
    ASSERT_TRUE(renderer.geometry_vbo_update(&geometry));
  }
  void TearDown() override {
    if (geometry.vb_uploaded) renderer.geometry_vbo_destroy(&geometry);
  }
  GeometryCore geometry;
};

}  // namespace

TEST_F(ContextsTest, ContextOfTheHostOutlivesARestart) {
  start_core();
  make_geometry();
  ASSERT_TRUE(renderer.geometry_vbo_bind(&geometry));
  renderer.geometry_vbo_unbind(&geometry);
  const unsigned int first = geometry.gpu_state.vao_context_id;
  EXPECT_NE(0u, first);
  renderer.stop();
  ASSERT_TRUE(gl.start(renderer));
  gl.clear();
  // It may be another context now, so the object of before is not used.
  ASSERT_TRUE(renderer.geometry_vbo_bind(&geometry));
  EXPECT_EQ(4u, gl.calls_of({"glVertexAttribPointer"}).size());
  EXPECT_TRUE(renderer.geometry_vbo_unbind(&geometry));
  EXPECT_EQ(4, gl.count("glDisableVertexAttribArray"));
  gl.clear();
  ASSERT_TRUE(renderer.geometry_vbo_bind(&geometry));
  EXPECT_EQ(4u, gl.calls_of({"glVertexAttribPointer"}).size()) << "set up on every bind";
  renderer.geometry_vbo_unbind(&geometry);
}

TEST_F(ContextsTest, StopDeletesTheObjectsOfTheCurrentContext) {
  start_core();
  make_geometry();
  const auto before = gl.live_ids();
  renderer.draw_immediate_line(vec4(), vec4(), vec4(), vec4());
  EXPECT_GT(gl.live_ids().size(), before.size());
  renderer.stop();
  EXPECT_EQ(before, gl.live_ids());
}
