#include <orv/geometry/geometry_core_alloc_params.h>

#include <gtest/gtest.h>

namespace orv {
namespace {

void expect_defaults(const GeometryCoreAllocParams& params) {
  EXPECT_TRUE(params.std_vertex_attribs);
  EXPECT_TRUE(params.separate_vertex_arrays);
  EXPECT_EQ(params.vertex_alignment, 0);
  for (const int dim : params.vertex_attrib_dim) EXPECT_EQ(dim, 4);
  EXPECT_EQ(params.num_vertices, 0u);
  EXPECT_EQ(params.num_user_attribs, 0u);
  EXPECT_TRUE(params.alloc_vertex_particles);
  EXPECT_EQ(params.reserved, 0);
}

TEST(GeometryCoreAllocParams, HasItsDefaults) { expect_defaults(GeometryCoreAllocParams()); }

TEST(GeometryCoreAllocParams, ResetRestoresTheDefaults) {
  GeometryCoreAllocParams params;
  params.std_vertex_attribs = false;
  params.separate_vertex_arrays = false;
  params.vertex_alignment = 64;
  params.set_vertex_attrib_dim(15, 1);
  params.num_vertices = 7;
  params.num_user_attribs = 8;
  params.alloc_vertex_particles = false;
  params.reserved = 9;
  params.reset();
  expect_defaults(params);
}

TEST(GeometryCoreAllocParams, SetVertexAttribDimIgnoresIndexSixteen) {
  GeometryCoreAllocParams params;
  params.set_vertex_attrib_dim(16, 3);
  params.set_vertex_attrib_dim(0xFFFFFFFFu, 3);
  expect_defaults(params);
  params.set_vertex_attrib_dim(15, 3);
  EXPECT_EQ(params.vertex_attrib_dim[15], 3);
}

TEST(MeshDataVertexAttribsAllocParams, TakesOverAllFieldsOfTheCoreParams) {
  GeometryCoreAllocParams core;
  core.num_vertices = 12;
  core.separate_vertex_arrays = false;
  core.set_vertex_attrib_dim(2, 3);
  MeshDataVertexAttribsAllocParams params;
  expect_defaults(params);
  params = core;
  EXPECT_EQ(params.num_vertices, 12u);
  EXPECT_FALSE(params.separate_vertex_arrays);
  EXPECT_EQ(params.vertex_attrib_dim[2], 3);
}

}  // namespace
}  // namespace orv
