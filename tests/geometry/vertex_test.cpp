#include <orv/geometry/face.h>
#include <orv/geometry/vertex.h>

#include <gtest/gtest.h>

#include <cstddef>

namespace orv {
namespace {

TEST(Vertex, FieldsStartAsPointsAtTheOrigin) {
  const Vertex vertex;
  for (const vec4& field : {vertex.position, vertex.uv0, vertex.normal, vertex.color}) {
    EXPECT_EQ(field, vec4(0, 0, 0, 1));
  }
}

TEST(Vertex, FieldsStandInOrder) {
  EXPECT_EQ(offsetof(Vertex, position), 0u);
  EXPECT_EQ(offsetof(Vertex, uv0), 16u);
  EXPECT_EQ(offsetof(Vertex, normal), 32u);
  EXPECT_EQ(offsetof(Vertex, color), 48u);
}

TEST(Vertex, IsCopiedAsAWhole) {
  Vertex vertex;
  vertex.color = vec4(1, 2, 3, 4);
  const Vertex copied = vertex;
  Vertex assigned;
  assigned = copied;
  EXPECT_EQ(assigned.color, vec4(1, 2, 3, 4));
}

TEST(Vertex_32, StartsAtZeroInThirtyTwoBytes) {
  const Vertex_32 vertex;
  EXPECT_EQ(sizeof(vertex), 32u);
  EXPECT_EQ(vertex.position, vec3(0, 0, 0));
  EXPECT_EQ(vertex.uv0, vec2(0, 0));
  EXPECT_EQ(vertex.normal, vec3(0, 0, 0));
}

TEST(Vertex_64, ColorAndTangentHaveWOne) {
  const Vertex_64 vertex;
  EXPECT_EQ(sizeof(vertex), 64u);
  EXPECT_EQ(vertex.position, vec3(0, 0, 0));
  EXPECT_EQ(vertex.color, vec4(0, 0, 0, 1));
  EXPECT_EQ(vertex.tangent, vec4(0, 0, 0, 1));
  EXPECT_EQ(offsetof(Vertex_64, tangent), 48u);
}

TEST(Vertex_PhysXCloth, PositionAndColorHaveWOne) {
  const Vertex_PhysXCloth vertex;
  EXPECT_EQ(sizeof(vertex), 64u);
  EXPECT_EQ(vertex.position, vec4(0, 0, 0, 1));
  EXPECT_EQ(vertex.color, vec4(0, 0, 0, 1));
  EXPECT_EQ(vertex.tangent, vec3(0, 0, 0));
  EXPECT_EQ(offsetof(Vertex_PhysXCloth, color), 36u);
}

TEST(Face, StartsAtZeroWithoutPadding) {
  const FaceU16 narrow;
  const FaceU32 wide;
  EXPECT_EQ(sizeof(narrow), 6u);
  EXPECT_EQ(sizeof(wide), 12u);
  EXPECT_EQ(narrow.a + narrow.b + narrow.c, 0);
  EXPECT_EQ(wide.a + wide.b + wide.c, 0u);
}

}  // namespace
}  // namespace orv
