#include <orv/geometry/primitives/mesh_pq_torus.h>

#include <gtest/gtest.h>

#include <cmath>

#include "geometry/primitives/shape_support.h"
#include "support/log_capture.h"

namespace orv {
namespace {

using test::Held;
using test::near;

TEST(MeshPQTorus, IsOneStripOverAGenericList) {
  const Held<MeshPQTorus> knot;
  ASSERT_TRUE(knot->build(nullptr));
  const MeshData& data = *knot->get_data();
  EXPECT_EQ(knot->get_num_vertices(nullptr), 257u * 17 + 1);
  EXPECT_EQ(knot->get_num_faces(nullptr), 257u * 16 * 2) << "the number of indices";
  EXPECT_EQ(data.faces_u16, nullptr);
  EXPECT_EQ(data.faces_u32, nullptr);
  ASSERT_NE(data.indices, nullptr);
  EXPECT_EQ(data.get_primitive_type(), PRIMITIVE_TRIANGLE_STRIP);
}

TEST(MeshPQTorus, StripsRunAlongTheKnot) {
  const Held<MeshPQTorus> knot;
  knot->build(nullptr);
  const unsigned int* indices = knot->get_data()->indices;
  const unsigned int strip = 3;
  const unsigned int ring = 100;
  EXPECT_EQ(indices[2 * (257 * strip + ring)], 17 * ring + 1 + strip);
  EXPECT_EQ(indices[2 * (257 * strip + ring) + 1], 17 * ring + strip);
  for (unsigned int i = 0; i < knot->get_num_faces(nullptr); ++i) {
    ASSERT_LT(indices[i], 257u * 17);
  }
}

TEST(MeshPQTorus, LastVertexIsNeverWritten) {
  const Held<MeshPQTorus> knot;
  knot->build(nullptr);
  const Vertex last = knot->get_data()->get_vertex_v2(257 * 17);
  EXPECT_EQ(last.position, vec4(0, 0, 0, 1));
  EXPECT_EQ(last.color, vec4(0, 0, 0, 1));
  for (unsigned int i = 0; i < 257 * 17; ++i) {
    ASSERT_EQ(knot->get_vertex_color(i), vec4(1, 1, 1, 1)) << i;
    ASSERT_NEAR(knot->get_data()->get_normal_vec3(i).length(), 1.0f, 1e-5f) << i;
  }
}

TEST(MeshPQTorus, SeamsRepeatTheFirstVertexOfTheirRing) {
  const Held<MeshPQTorus> knot;
  knot->build(nullptr);
  MeshData& data = *knot->get_data();
  for (unsigned int ring = 0; ring <= 256; ++ring) {
    ASSERT_EQ(data.get_position_4f(ring * 17), data.get_position_4f(ring * 17 + 16)) << ring;
    ASSERT_EQ(data.get_normal(ring * 17), data.get_normal(ring * 17 + 16)) << ring;
    ASSERT_EQ(data.get_uv0(ring * 17 + 16).x, 4.0f) << ring;
    ASSERT_EQ(data.get_uv0(ring * 17).y, data.get_uv0(ring * 17 + 16).y) << ring;
  }
  for (unsigned int j = 0; j < 17; ++j) {
    ASSERT_EQ(data.get_position_4f(256 * 17 + j), data.get_position_4f(j)) << j;
    ASSERT_EQ(data.get_uv0(256 * 17 + j), vec4(data.get_uv0(j).x, 64.0f, 0, 1)) << j;
  }
}

TEST(MeshPQTorus, RingsLieAroundTheKnot) {
  const float radius = 2.0f;
  const Held<MeshPQTorus> knot;
  knot->set_build_params(64, 8, radius, 0.25f, 0, 0, 0, 1, 1, 2, 3);
  knot->build(nullptr);
  for (unsigned int ring = 0; ring < 64; ++ring) {
    const double share = ring / 64.0 * 2.0 * 3.14159265358979;
    const double r = (std::sin(3 * share) + 2.0) * 0.5 * radius;
    const vec3 center(static_cast<float>(std::cos(2 * share) * r),
                      static_cast<float>(std::cos(3 * share) * r),
                      static_cast<float>(std::sin(2 * share) * r));
    for (unsigned int j = 0; j < 8; ++j) {
      const vec3 p = knot->get_data()->get_position(ring * 9 + j);
      ASSERT_NEAR((p - center).length(), 0.25f, 1e-4f) << ring << " " << j;
    }
  }
}

TEST(MeshPQTorus, TextureCoordinatesTile) {
  const Held<MeshPQTorus> knot;
  knot->build(nullptr);
  EXPECT_EQ(knot->get_vertex_uv(64 * 17 + 8, 0), vec4(0.5f * 4, 0.25f * 64, 0, 1));
}

TEST(MeshPQTorus, NeedsAtLeastOneStepEachWay) {
  const test::LogCapture log(LOG_LEVEL_ERROR);
  for (const int steps : {0, -1, -2000000000}) {
    const Held<MeshPQTorus> knot;
    ASSERT_TRUE(knot->_build());
    knot->set_build_params(steps, 8, 1, 1, 1, 1, 1, 1, 1, 2, 3);
    EXPECT_FALSE(knot->_build()) << steps;
    EXPECT_EQ(knot->get_num_vertices(nullptr), 0u) << "the old geometry is gone";
    EXPECT_EQ(knot->get_data()->indices, nullptr);
    knot->set_build_params(8, steps, 1, 1, 1, 1, 1, 1, 1, 2, 3);
    EXPECT_FALSE(knot->_build()) << steps;
  }
  EXPECT_EQ(log.count("number of vertices is 0."), 6);
  const Held<MeshPQTorus> smallest;
  smallest->set_build_params(1, 1, 1, 1, 1, 1, 1, 1, 1, 2, 3);
  EXPECT_TRUE(smallest->_build());
  EXPECT_EQ(smallest->get_num_vertices(nullptr), 5u);
}

}  // namespace
}  // namespace orv
