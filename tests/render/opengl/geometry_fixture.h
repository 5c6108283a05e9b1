#pragma once

#include <orv/geometry/geometry_core.h>
#include <orv/gpu/gpu_buffer_data.h>

#include <cstring>
#include <vector>

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

/// Geometry of four vertices.
class GeometryTest : public FakeGeometryTest {
 protected:
  static constexpr unsigned int NUM_VERTICES = 4;

  /// Separate arrays of four vertices, with faces when asked for.
  void make_separate(unsigned int num_faces = 0, bool force_32 = false) {
    alloc_vertices(NUM_VERTICES, true, 0);
    if (num_faces > 0) {
      ASSERT_TRUE(geometry.alloc_face_data(num_faces, force_32));
    }
  }
  void make_interleaved(unsigned int num_user_attribs = 0) {
    alloc_vertices(NUM_VERTICES, false, num_user_attribs);
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

}  // namespace orv::test
