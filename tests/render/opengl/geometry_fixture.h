#pragma once

#include <orv/geometry/geometry_core.h>
#include <orv/gpu/gpu_buffer_data.h>

#include "render/opengl/fake_gl_fixture.h"

namespace orv::test {

/// A geometry on the fake OpenGL, destroyed at the end.
class FakeGeometryTest : public FakeGlTest {
 protected:
  void alloc_vertices(unsigned int num_vertices, bool separate, unsigned int num_user_attribs) {
    geometry.get_alloc_params_ptr()->separate_vertex_arrays = separate;
    geometry.set_alloc_params_num_vertices(num_vertices);
    geometry.set_alloc_params_num_user_attribs(num_user_attribs);
    ASSERT_TRUE(geometry.alloc_vertex_data());
  }
  /// Separate arrays of the standard attributes in another geometry, created and filled.
  void make_other(GeometryCore* other, unsigned int num_vertices) {
    other->set_alloc_params_num_vertices(num_vertices);
    ASSERT_TRUE(other->alloc_vertex_data());
    ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, other));
    ASSERT_TRUE(renderer.geometry_vbo_update(other));
  }
  /// Creates and fills the buffers and forgets the calls.
  void upload() {
    ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, &geometry));
    ASSERT_TRUE(renderer.geometry_vbo_update(&geometry));
    gl.clear();
  }
  void TearDown() override {
    if (geometry.vb_uploaded) renderer.geometry_vbo_destroy(&geometry);
  }

  GeometryCore geometry;
};

}  // namespace orv::test
