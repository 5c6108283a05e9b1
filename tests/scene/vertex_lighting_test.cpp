// Kernel: lighting of one vertex on the CPU.
#include <orv/core/aux_functions.h>
#include <orv/core/kernel.h>
#include <orv/geometry/mesh.h>
#include <orv/geometry/vertex.h>
#include <orv/gpu/material.h>
#include <orv/scene/light.h>
#include <orv/scene/object.h>

#include <gtest/gtest.h>

#include <cmath>

#include "support/held.h"

namespace orv {
namespace {

using test::Held;

#define EXPECT_VEC4_NEAR(a, b)    \
  do {                            \
    EXPECT_NEAR(a.x, b.x, 1e-5f); \
    EXPECT_NEAR(a.y, b.y, 1e-5f); \
    EXPECT_NEAR(a.z, b.z, 1e-5f); \
    EXPECT_NEAR(a.w, b.w, 1e-5f); \
  } while (false)

/// An object with one vertex.
class OneVertex : public Object {
 public:
  OneVertex() {
    vertex.position = vec4(0, 0, 0, 1);
    vertex.normal = vec4(0, 0, 1, 0);
    vertex.color = vec4(0.5f, 0.25f, 0.125f, 1);
  }
  Vertex* get_vertex(unsigned int index) override { return index == 0 ? &vertex : nullptr; }
  Vertex vertex;
};

/// One vertex at the origin with a light on the z axis, ten units away and of radius twenty.
class VertexLighting : public testing::Test {
 protected:
  void SetUp() override {
    light->set_position(0, 0, 10);
    light->set_radius(20);
    light->set_ambient(0.5f, 0.5f, 0.5f, 1);
    light->set_diffuse(1, 0.5f, 0.25f, 1);
  }
  bool shade(Light* with_light, Material* material, bool clamp) {
    return Kernel::get()->compute_object_vertex_color(object, 0, color, material, with_light,
                                                      clamp);
  }
  Held<OneVertex> object;
  Held<Light> light;
  vec4 color{9, 9, 9, 9};
};

TEST_F(VertexLighting, NullObjectOrVertexIsFalseAndLeavesTheColour) {
  EXPECT_FALSE(Kernel::get()->compute_object_vertex_color(nullptr, 0, color, nullptr, light, true));
  EXPECT_FALSE(Kernel::get()->compute_object_vertex_color(object, 1, color, nullptr, light, true));
  EXPECT_FALSE(Kernel::get()->compute_object_vertex_color_v2(nullptr, mat4(), 0, color, nullptr,
                                                             light, vec4(), true));
  EXPECT_FALSE(Kernel::get()->compute_object_vertex_color_v2(object, mat4(), 1, color, nullptr,
                                                             light, vec4(), true));
  EXPECT_EQ(color, vec4(9, 9, 9, 9));
}

TEST_F(VertexLighting, WithoutLightAndMaterialItIsTheVertexColourPlusOne) {
  EXPECT_TRUE(shade(nullptr, nullptr, false));
  EXPECT_EQ(color, vec4(1.5f, 1.25f, 1.125f, 2));
  EXPECT_TRUE(shade(nullptr, nullptr, true));
  EXPECT_EQ(color, vec4(1, 1, 1, 1));
}

TEST_F(VertexLighting, FacingLightAddsAmbientTimesVertexColourAndDiffuse) {
  EXPECT_TRUE(shade(light, nullptr, false));
  // Half way to the radius: everything halved, alpha too.
  EXPECT_VEC4_NEAR(color, vec4((0.25f + 1) / 2, (0.125f + 0.5f) / 2, (0.0625f + 0.25f) / 2, 1));
}

TEST_F(VertexLighting, MaterialColoursMultiply) {
  Held<Material> material;
  material->set_ambient(0, 0, 0, 0);
  material->set_diffuse(0.5f, 0.5f, 0.5f, 0.5f);
  EXPECT_TRUE(shade(light, material, false));
  EXPECT_VEC4_NEAR(color, vec4(0.25f, 0.125f, 0.0625f, 0.25f));
}

TEST_F(VertexLighting, AVertexAtTheRadiusIsBlack) {
  light->set_radius(10);
  EXPECT_TRUE(shade(light, nullptr, false));
  EXPECT_EQ(color, vec4(0, 0, 0, 0));
  light->set_radius(5);
  EXPECT_TRUE(shade(light, nullptr, false));
  EXPECT_EQ(color, vec4(0, 0, 0, 0));
}

TEST_F(VertexLighting, ALightBehindTakesLightAwayUnlessClamped) {
  light->set_position(0, 0, -10);
  EXPECT_TRUE(shade(light, nullptr, false));
  EXPECT_VEC4_NEAR(color, vec4((0.25f - 1) / 2, (0.125f - 0.5f) / 2, (0.0625f - 0.25f) / 2, 0));
  EXPECT_TRUE(shade(light, nullptr, true));
  EXPECT_EQ(color.x, 0.0f);
}

TEST_F(VertexLighting, ANormalWithWOnePicksUpTheTranslation) {
  object->set_position(10, 0, 0);
  light->set_position(10, 0, 10);
  EXPECT_TRUE(shade(light, nullptr, false));
  EXPECT_NEAR(color.x, (0.25f + 1) / 2, 1e-5f);
  object->vertex.normal.w = 1;
  EXPECT_TRUE(shade(light, nullptr, false));
  EXPECT_NEAR(color.x, (0.25f + 1 / std::sqrt(101.0f)) / 2, 1e-5f);
}

TEST_F(VertexLighting, ObjectAndLightStandWhereTheirParentsPutThem) {
  Held<Object> parent;
  parent->add_child(object);
  parent->add_child(light);
  parent->set_position(3, 4, 5);
  EXPECT_TRUE(shade(light, nullptr, false));
  EXPECT_NEAR(color.x, (0.25f + 1) / 2, 1e-5f);
}

TEST_F(VertexLighting, SecondFormTakesTransformAndLightPosition) {
  object->set_position(100, 100, 100);
  light->set_position(200, 200, 200);
  mat4 transform;
  transform.init_translate(1, 1, 1);
  EXPECT_TRUE(Kernel::get()->compute_object_vertex_color_v2(object, transform, 0, color, nullptr,
                                                            light, vec4(1, 1, 11, 1), false));
  EXPECT_NEAR(color.x, (0.25f + 1) / 2, 1e-5f);
  EXPECT_TRUE(Kernel::get()->compute_object_vertex_color_v2(object, transform, 0, color, nullptr,
                                                            nullptr, vec4(), false));
  EXPECT_EQ(color, vec4(1.5f, 1.25f, 1.125f, 2));
}

TEST_F(VertexLighting, FreeFunctionsDoTheSame) {
  EXPECT_TRUE(aux::compute_object_vertex_color(object, 0, color, nullptr, light, false));
  EXPECT_NEAR(color.x, (0.25f + 1) / 2, 1e-5f);
  EXPECT_TRUE(aux::compute_object_vertex_color_v2(object, mat4(), 0, color, nullptr, light,
                                                  vec4(0, 0, 10, 1), false));
  EXPECT_NEAR(color.x, (0.25f + 1) / 2, 1e-5f);
}

TEST_F(VertexLighting, ARadiusOfZeroIsBlack) {
  light->set_radius(0);
  EXPECT_TRUE(shade(light, nullptr, false));
  EXPECT_EQ(color, vec4(0, 0, 0, 0));
}

TEST_F(VertexLighting, MeshesWithSeparateArraysAreRefused) {
  Held<Mesh> mesh;
  mesh->set_vertex_alloc_params_num_vertices(3);
  ASSERT_TRUE(mesh->alloc_vertex_data());
  EXPECT_FALSE(Kernel::get()->compute_object_vertex_color(mesh, 0, color, nullptr, light, false));
  EXPECT_EQ(color, vec4(9, 9, 9, 9));
}

TEST_F(VertexLighting, InterleavedMeshesAreLit) {
  Held<Mesh> mesh;
  MeshDataVertexAttribsAllocParams params;
  params.separate_vertex_arrays = false;
  params.num_vertices = 3;
  mesh->set_vertex_alloc_params(params);
  ASSERT_TRUE(mesh->alloc_vertex_data());
  mesh->set_vertex_color(2, vec4(0.5f, 0.25f, 0.125f, 1));
  EXPECT_TRUE(Kernel::get()->compute_object_vertex_color(mesh, 2, color, nullptr, nullptr, false));
  EXPECT_EQ(color, vec4(1.5f, 1.25f, 1.125f, 2));
  EXPECT_FALSE(Kernel::get()->compute_object_vertex_color(mesh, 3, color, nullptr, nullptr, false));
}

}  // namespace
}  // namespace orv
