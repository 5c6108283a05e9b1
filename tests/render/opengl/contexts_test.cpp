#include <orv/geometry/geometry_core.h>
#include <orv/gpu/texture_data.h>
#include <orv/render/render_window.h>

#include "render/opengl/fake_gl_fixture.h"
#include "support/fake_back_end.h"

using namespace orv;
using namespace orv::test;
using ::testing::Contains;
using ::testing::ElementsAre;
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

// ---- texture units ----

class ContextUnitsTest : public FakeGlTest {
 protected:
  void SetUp() override {
    renderer.use_context_back_end(&back_end);
    start();
    one = make_window();
    two = make_window();
    texture.gl_texture_id = 50;
    ASSERT_TRUE(renderer.render_window_make_current(one, true));
    ASSERT_TRUE(renderer.texture_bind_2d_by_id(90, 3));
    gl.clear();
  }
  void TearDown() override { renderer.render_window_free_all(); }
  RenderWindow* make_window() {
    RenderWindow* window = renderer.render_window_alloc();
    RenderWindowData data;
    data.native_window = this;
    EXPECT_TRUE(renderer.render_window_create_context(window, &data, nullptr));
    return window;
  }
  /// What a setter binds, and what it puts back.
  Calls set_filtering() {
    gl.clear();
    renderer.texture_set_filtering_mode(&texture, SAMPLER_FILTERING_LINEAR);
    return gl.calls_of({"glActiveTexture", "glBindTexture"});
  }

  FakeBackEnd back_end{gl};
  RenderWindow* one = nullptr;
  RenderWindow* two = nullptr;
  TextureData texture;
};

TEST_F(ContextUnitsTest, AnotherContextHasUnitsOfItsOwn) {
  ASSERT_TRUE(renderer.render_window_make_current(two, true));
  EXPECT_THAT(set_filtering(),
              ElementsAre("glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_2D, 50)",
                          "glBindTexture(GL_TEXTURE_2D, 0)"));
}

TEST_F(ContextUnitsTest, UnitsOfAContextAreStillKnownWhenItIsBoundAgain) {
  ASSERT_TRUE(renderer.render_window_make_current(two, true));
  ASSERT_TRUE(renderer.texture_bind_2d_by_id(91, 3));
  ASSERT_TRUE(renderer.render_window_make_current(one, true));
  EXPECT_THAT(set_filtering(),
              ElementsAre("glActiveTexture(GL_TEXTURE3)", "glBindTexture(GL_TEXTURE_2D, 50)",
                          "glBindTexture(GL_TEXTURE_2D, 90)"));
}

TEST_F(ContextUnitsTest, DeletedTexturesAreNotBoundAgainInAnyContext) {
  unsigned int id = 0;
  renderer.core_functions().glGenTextures(1, &id);
  ASSERT_TRUE(renderer.texture_bind_2d_by_id(id, 3));
  ASSERT_TRUE(renderer.render_window_make_current(two, true));
  ASSERT_TRUE(renderer.texture_delete_id(id));
  ASSERT_TRUE(renderer.render_window_make_current(one, true));
  EXPECT_EQ("glBindTexture(GL_TEXTURE_2D, 0)", set_filtering().back());
}

TEST_F(ContextUnitsTest, NewContextOfAWindowStartsEmpty) {
  ASSERT_TRUE(renderer.render_window_destroy_context(one));
  RenderWindowData data;
  data.native_window = this;
  ASSERT_TRUE(renderer.render_window_create_context(one, &data, nullptr));
  EXPECT_EQ("glBindTexture(GL_TEXTURE_2D, 0)", set_filtering().back());
}
