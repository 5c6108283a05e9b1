#include <orv/geometry/mesh.h>

#include <gtest/gtest.h>

#include <vector>

#include "geometry/mesh_support.h"
#include "support/held.h"
#include "support/log_capture.h"
#include "support/near.h"

namespace orv {
namespace {

using test::give_triangles;
using test::Held;
using test::near;
using test::VertexForm;

const std::vector<vec3> TRIANGLE = {vec3(1, 2, 3), vec3(-4, 5, 6), vec3(7, -8, 9)};

// ---- faces ----

TEST(MeshEdit, FaceIndexesAreWrittenForTheirWidth) {
  const Held<Mesh> mesh;
  mesh->alloc_face_data(1, false);
  mesh->get_data()->ib_update_faces_list_set_state(false);
  mesh->set_face_indexes(0, 0x10005, 6, 7);
  EXPECT_EQ(mesh->get_data()->faces_u16[0].a, 5);
  EXPECT_TRUE(mesh->get_data()->is_ib_update_faces_list_needed());
  mesh->alloc_face_data(1, true);
  mesh->set_face_indexes(0, 0x10005, 6, 7);
  EXPECT_EQ(mesh->get_data()->faces_u32[0].a, 0x10005u);
}

TEST(MeshEdit, FaceIndexesPastTheEndAreIgnored) {
  const Held<Mesh> mesh;
  mesh->alloc_face_data(1, false);
  mesh->get_data()->ib_update_faces_list_set_state(false);
  mesh->set_face_indexes(1, 1, 2, 3);
  EXPECT_FALSE(mesh->get_data()->is_ib_update_faces_list_needed());
  unsigned int a = 99;
  mesh->get_face_indexes(1, &a, nullptr, nullptr);
  EXPECT_EQ(a, 99u);
}

TEST(MeshEdit, FaceIndexesOfAGenericListAreIgnored) {
  const Held<Mesh> mesh;
  mesh->alloc_face_data_v2(3, MESH_FACE_TRIANGLE_LIST);
  mesh->set_face_indexes(0, 1, 2, 3);
  EXPECT_EQ(mesh->get_data()->indices[0], 0u);
  unsigned int a = 99;
  mesh->get_face_indexes(0, &a, nullptr, nullptr);
  EXPECT_EQ(a, 99u);
}

TEST(MeshEdit, AnyOutPointerMayBeNull) {
  const Held<Mesh> mesh;
  mesh->alloc_face_data(1, false);
  mesh->set_face_indexes(0, 1, 2, 3);
  unsigned int b = 0;
  mesh->get_face_indexes(0, nullptr, &b, nullptr);
  EXPECT_EQ(b, 2u);
}

// ---- geometry of other meshes ----

TEST(MeshEdit, CopyCarriesInterleavedVerticesAndFacesOver) {
  const Held<Mesh> source;
  const Held<Mesh> target;
  give_triangles(*source, TRIANGLE, VertexForm::INTERLEAVED);
  source->set_vertex_color(1, vec4(1, 2, 3, 4));
  EXPECT_TRUE(target->copy_geometry(source));
  EXPECT_EQ(target->get_num_vertices(nullptr), 3u);
  EXPECT_EQ(target->get_vertex_position(1), vec4(-4, 5, 6, 1));
  EXPECT_EQ(target->get_vertex_color(1), vec4(1, 2, 3, 4));
  unsigned int c = 0;
  target->get_face_indexes(0, nullptr, nullptr, &c);
  EXPECT_EQ(c, 2u);
}

TEST(MeshEdit, CopyLosesSeparateAttributes) {
  const Held<Mesh> source;
  const Held<Mesh> target;
  give_triangles(*source, TRIANGLE);
  EXPECT_TRUE(target->copy_geometry(source));
  EXPECT_EQ(target->get_num_faces(nullptr), 1u);
  EXPECT_EQ(target->get_data()->num_attrib_arrays, 8u);
  EXPECT_EQ(target->get_vertex_position(1), vec4(0, 0, 0, 1));
}

TEST(MeshEdit, CopyNeedsVerticesAndFaces) {
  const Held<Mesh> source;
  const Held<Mesh> target;
  give_triangles(*target, TRIANGLE);
  EXPECT_FALSE(target->copy_geometry(nullptr));
  EXPECT_FALSE(target->copy_geometry(source)) << "no vertices";
  source->set_vertex_alloc_params_num_vertices(3);
  source->alloc_vertex_data();
  EXPECT_FALSE(target->copy_geometry(source)) << "no faces";
  EXPECT_EQ(target->get_num_vertices(nullptr), 3u) << "kept";
}

TEST(MeshEdit, CopyOfItselfKeepsTheGeometry) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, TRIANGLE);
  EXPECT_TRUE(mesh->copy_geometry(mesh));
  EXPECT_EQ(mesh->get_vertex_position(1), vec4(-4, 5, 6, 1));
}

/// Two meshes to go between, and one that takes the result.
class Tweening : public testing::Test {
 protected:
  void make(VertexForm form) {
    give_triangles(*a, {vec3(0, 0, 0), vec3(1, 0, 0), vec3(0, 1, 0)}, form);
    give_triangles(*b, {vec3(4, 8, 0), vec3(1, 4, 0), vec3(0, 1, 8)}, form);
    give_triangles(*mesh, {vec3(), vec3(), vec3()}, form);
    for (unsigned int i = 0; i < 3; ++i) {
      a->set_vertex_normal(i, vec4(1, 0, 0, 0));
      b->set_vertex_normal(i, vec4(0, 1, 0, 0));
    }
    b->set_vertex_normal(2, vec4(-1, 0, 0, 0));
  }
  Held<Mesh> a, b, mesh;
};

TEST_F(Tweening, GoesLinearlyBetweenPositionsAndNormals) {
  for (const VertexForm form : test::ALL_FORMS) {
    make(form);
    EXPECT_TRUE(mesh->do_linear_tweening(a, b, 0.25f));
    EXPECT_EQ(mesh->get_vertex_position(0), vec4(1, 2, 0, 1));
    EXPECT_TRUE(near(mesh->get_vertex_normal(0), vec4(0.9486833f, 0.3162278f, 0, 0), 1e-6f));
    EXPECT_TRUE(mesh->do_linear_tweening(a, b, 0.5f));
    EXPECT_EQ(mesh->get_vertex_normal(2), vec4(0, 0, 0, 0)) << "opposite normals cancel";
  }
}

TEST_F(Tweening, ClampsItsShare) {
  make(VertexForm::SEPARATE);
  EXPECT_TRUE(mesh->do_linear_tweening(a, b, 2.0f));
  EXPECT_EQ(mesh->get_vertex_position(0), vec4(4, 8, 0, 1)) << "as t = 1";
  EXPECT_TRUE(mesh->do_linear_tweening(a, b, -1.0f));
  EXPECT_EQ(mesh->get_vertex_position(1), vec4(1, 0, 0, 1)) << "as t = 0";
}

TEST_F(Tweening, NeedsTwoMeshesOfOneCount) {
  make(VertexForm::SEPARATE);
  EXPECT_FALSE(mesh->do_linear_tweening(nullptr, b, 0.5f));
  EXPECT_FALSE(mesh->do_linear_tweening(a, nullptr, 0.5f));
  give_triangles(*b, std::vector<vec3>(6));
  EXPECT_FALSE(mesh->do_linear_tweening(a, b, 0.5f));
}

TEST_F(Tweening, TakesTheGeometryOfTheFirstWhenCountsDiffer) {
  make(VertexForm::SEPARATE);
  const Held<Mesh> empty;
  EXPECT_TRUE(empty->do_linear_tweening(a, b, 1.0f));
  EXPECT_EQ(empty->get_num_faces(nullptr), 1u);
  EXPECT_EQ(empty->get_vertex_position(0), vec4(4, 8, 0, 1));
}

// ---- user geometry ----

TEST(UserGeometry, BecomesTheGeometryAtTheNextBuild) {
  for (const VertexForm form : test::ALL_FORMS) {
    const Held<Mesh> mesh;
    test::use_form(*mesh->get_data(), form);
    EXPECT_EQ(mesh->user_geometry_add_vertex(vec4(1, 2, 3, 9)), 0u);
    EXPECT_EQ(mesh->user_geometry_add_vertex(vec4(4, 5, 6, 1)), 1u);
    EXPECT_EQ(mesh->user_geometry_add_vertex(vec4(7, 8, 9, 1)), 2u);
    EXPECT_TRUE(mesh->user_geometry_add_face32(2, 1, 0));
    EXPECT_TRUE(mesh->user_geometry_set_vertex_normal(0, vec4(0, 0, 1, 5)));
    EXPECT_TRUE(mesh->user_geometry_set_vertex_uv0(0, vec4(0.5f, 0.25f, 3, 4)));
    EXPECT_TRUE(mesh->build(nullptr));
    EXPECT_EQ(mesh->get_num_vertices(nullptr), 3u);
    EXPECT_EQ(mesh->get_data()->get_position_4f(0), vec4(1, 2, 3, 1));
    EXPECT_EQ(mesh->get_data()->get_normal(0), vec4(0, 0, 1, 1));
    EXPECT_EQ(mesh->get_vertex_color(0), vec4(1, 1, 1, 1)) << "white by default";
    EXPECT_EQ(mesh->get_vertex_uv(0, 0), vec4(0.5f, 0.25f, 3, 4));
    unsigned int a = 9;
    mesh->get_face_indexes(0, &a, nullptr, nullptr);
    EXPECT_EQ(a, 2u);
    EXPECT_FALSE(mesh->user_geometry_cleanup()) << "used up";
  }
}

TEST(UserGeometry, SettersNeedAVertex) {
  const Held<Mesh> mesh;
  EXPECT_FALSE(mesh->user_geometry_set_vertex_position(0, vec4()));
  mesh->user_geometry_add_vertex(vec4());
  mesh->update_build_state(false);
  EXPECT_FALSE(mesh->user_geometry_set_vertex_color(1, vec4()));
  EXPECT_FALSE(mesh->get_build_state());
  EXPECT_TRUE(mesh->user_geometry_set_vertex_position(0, vec4()));
  EXPECT_TRUE(mesh->get_build_state()) << "marks the mesh for building";
}

TEST(UserGeometry, VerticesWithoutFacesLoseTheOldGeometry) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, TRIANGLE);
  mesh->user_geometry_add_vertex(vec4());
  EXPECT_FALSE(mesh->_build());
  EXPECT_EQ(mesh->get_num_vertices(nullptr), 0u);
  EXPECT_EQ(mesh->get_num_faces(nullptr), 0u);
  EXPECT_FALSE(mesh->get_build_state());
}

TEST(UserGeometry, ReplacesAllPreviousContents) {
  const Held<Mesh> mesh;
  for (int round = 0; round < 2; ++round) {
    for (int i = 0; i < 3; ++i) mesh->user_geometry_add_vertex(vec4());
    mesh->user_geometry_add_face32(0, 1, 2);
    EXPECT_TRUE(mesh->_build());
    EXPECT_EQ(mesh->get_num_vertices(nullptr), 3u) << "a later add starts a new list";
    EXPECT_EQ(mesh->get_num_faces(nullptr), 1u);
  }
}

TEST(UserGeometry, WideIndicesAreTruncatedForFewVertices) {
  const Held<Mesh> mesh;
  for (int i = 0; i < 3; ++i) mesh->user_geometry_add_vertex(vec4());
  mesh->user_geometry_add_face32(0x10001, 0x10002, 0);
  EXPECT_TRUE(mesh->_build());
  EXPECT_EQ(mesh->get_data()->faces_u16[0].a, 1);
  EXPECT_EQ(mesh->get_data()->faces_u16[0].b, 2);
}

TEST(UserGeometry, CanBeDropped) {
  const Held<Mesh> mesh;
  EXPECT_FALSE(mesh->user_geometry_cleanup());
  mesh->user_geometry_add_face32(0, 1, 2);
  EXPECT_TRUE(mesh->user_geometry_cleanup());
  EXPECT_FALSE(mesh->_user_geometry_build());
  EXPECT_TRUE(mesh->_build()) << "nothing was gathered";
}

}  // namespace
}  // namespace orv
