#include <orv/geometry/mesh_data.h>

#include <gtest/gtest.h>

namespace orv {
namespace {

TEST(MeshData, StartsAsTrianglesOfNobody) {
  const MeshData data;
  EXPECT_EQ(data.get_primitive_type(), PRIMITIVE_TRIANGLES);
  EXPECT_EQ(data.owner_id, 0);
  EXPECT_EQ(data.get_ref(), 0);
}

TEST(MeshData, AllocParamsReachTheCore) {
  MeshData data;
  MeshDataVertexAttribsAllocParams params;
  params.num_vertices = 5;
  params.separate_vertex_arrays = false;
  params.set_vertex_attrib_dim(3, 1);
  EXPECT_TRUE(data.set_vertex_alloc_params(params));
  EXPECT_EQ(data.alloc_params.num_vertices, 5u);
  EXPECT_FALSE(data.alloc_params.separate_vertex_arrays);
  EXPECT_EQ(data.alloc_params.vertex_attrib_dim[3], 1);
}

TEST(MeshData, AllocParamsAreReadFromTheCore) {
  MeshData data;
  data.set_vertex_alloc_params_num_vertices(6);
  data.set_vertex_alloc_params_num_user_attribs(2);
  MeshDataVertexAttribsAllocParams& mirror = data.get_vertex_alloc_params();
  EXPECT_EQ(mirror.num_vertices, 6u);
  EXPECT_EQ(mirror.num_user_attribs, 2u);
  mirror.num_vertices = 99;
  EXPECT_EQ(data.alloc_params.num_vertices, 6u) << "the mirror is a copy";
  EXPECT_EQ(&data.get_vertex_alloc_params(), &mirror);
  EXPECT_EQ(mirror.num_vertices, 6u) << "written anew";
}

}  // namespace
}  // namespace orv
