#include <orv/geometry/mesh.h>

#include <orv/math/bounding_volume.h>
#include <orv/math/quat.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "geometry/mesh_support.h"
#include "support/held.h"
#include "support/near.h"

namespace orv {
namespace {

using test::ALL_FORMS;
using test::CountingObject;
using test::give_triangles;
using test::Held;
using test::near;
using test::VertexForm;

const std::vector<vec3> TRIANGLE = {vec3(1, 2, 3), vec3(-4, 5, 6), vec3(7, -8, 9)};

// ---- one vertex ----

TEST(MeshVertices, PositionReadsWithWOne) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, TRIANGLE);
  EXPECT_TRUE(mesh->set_vertex_position(1, vec4(1, 2, 3, 9)));
  EXPECT_EQ(mesh->get_vertex_position(1), vec4(1, 2, 3, 1));
  EXPECT_EQ(mesh->get_data()->get_position_4f(1).w, 9.0f);
  EXPECT_FALSE(mesh->set_vertex_position(3, vec4()));
}

TEST(MeshVertices, PositionWChangesAlone) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, TRIANGLE);
  EXPECT_TRUE(mesh->set_vertex_position_w(1, 0.5f));
  EXPECT_EQ(mesh->get_data()->get_position_4f(1), vec4(-4, 5, 6, 0.5f));
  EXPECT_FALSE(mesh->set_vertex_position_w(3, 0.5f));
}

TEST(MeshVertices, NormalIsStoredWithWOneAndReadWithWZero) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, TRIANGLE);
  EXPECT_TRUE(mesh->set_vertex_normal(0, vec4(0, 1, 0, 7)));
  EXPECT_EQ(mesh->get_data()->get_normal(0), vec4(0, 1, 0, 1));
  EXPECT_EQ(mesh->get_vertex_normal(0), vec4(0, 1, 0, 0));
}

TEST(MeshVertices, LayersBeyondTheSecondReadTheFirstAndWriteNothing) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, TRIANGLE);
  mesh->set_vertex_uv(0, vec4(0.25f, 0.5f, 0, 1), 0);
  EXPECT_EQ(mesh->get_vertex_uv(0, 5), vec4(0.25f, 0.5f, 0, 1));
  mesh->set_vertex_uv(0, vec4(9, 9, 9, 9), 5);
  EXPECT_EQ(mesh->get_vertex_uv(0, 0), vec4(0.25f, 0.5f, 0, 1));
  mesh->set_vertex_uv(0, vec4(9, 9, 9, 9), 1);
  EXPECT_EQ(mesh->get_vertex_uv(0, 1), vec4(0, 0, 0, 1)) << "there is no second layer";
}

TEST(MeshVertices, ColorTangentAndAttributesAreForwarded) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, TRIANGLE);
  EXPECT_TRUE(mesh->set_vertex_color(2, vec4(1, 2, 3, 4)));
  EXPECT_EQ(mesh->get_vertex_color(2), vec4(1, 2, 3, 4));
  EXPECT_FALSE(mesh->set_vertex_tangent(2, vec4(1, 2, 3, 4)));
  EXPECT_EQ(mesh->get_vertex_tangent(2), vec4(0, 0, 0, 1));
  mesh->set_vertex_attrib_element(3, 1, vec4(5, 6, 7, 8));
  EXPECT_EQ(mesh->get_vertex_attrib_element(3, 1), vec4(5, 6, 7, 8));
  EXPECT_EQ(mesh->get_vertex_color(1), vec4(5, 6, 7, 8));
  EXPECT_EQ(mesh->get_vertex_attrib_element(4, 1), vec4(0, 0, 0, 1));
}

TEST(MeshVertices, AbsolutePositionGoesThroughTheTransform) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, TRIANGLE);
  mesh->set_position(10, 20, 30);
  vec4 out;
  EXPECT_TRUE(mesh->get_vertex_absolute_position(0, &out));
  EXPECT_EQ(out, vec4(11, 22, 33, 1));
  EXPECT_FALSE(mesh->get_vertex_absolute_position(3, &out));
  EXPECT_FALSE(mesh->get_vertex_absolute_position(0, nullptr));
}

TEST(MeshVertices, WholeVerticesNeedVertices) {
  const Held<Mesh> mesh;
  EXPECT_EQ(mesh->get_vertex(0), nullptr);
  EXPECT_EQ(mesh->get_vertex_v2(0).position, vec4(0, 0, 0, 1));
  give_triangles(*mesh, TRIANGLE, VertexForm::INTERLEAVED);
  ASSERT_NE(mesh->get_vertex(1), nullptr);
  EXPECT_EQ(mesh->get_vertex(1)->position, vec4(-4, 5, 6, 1));
  EXPECT_EQ(mesh->get_vertex_v2(1).position, vec4(-4, 5, 6, 1));
  EXPECT_EQ(mesh->get_vertex(3), nullptr);
}

TEST(MeshVertices, BufferUpdatesGoToTheNamedAttribute) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, TRIANGLE);
  const std::vector<vec4> data(3, vec4(1, 2, 3, 4));
  for (const VERTEX_ATTRIB_TYPE type :
       {VERTEX_ATTRIB_POSITION, VERTEX_ATTRIB_UV0, VERTEX_ATTRIB_NORMAL, VERTEX_ATTRIB_COLOR}) {
    EXPECT_TRUE(mesh->update_vertex_attrib_buffer(type, data.data())) << type;
    EXPECT_EQ(mesh->get_vertex_attrib_element(static_cast<unsigned int>(type), 2), data[2]);
    EXPECT_TRUE(mesh->update_vertex_attrib_sub_buffer(type, data.data(), 1, 1)) << type;
    EXPECT_FALSE(mesh->update_vertex_attrib_sub_buffer(type, data.data(), 3, 1)) << type;
  }
  for (const int type : {4, 5, 6, -1}) {
    const auto missing = static_cast<VERTEX_ATTRIB_TYPE>(type);
    EXPECT_FALSE(mesh->update_vertex_attrib_buffer(missing, data.data())) << type;
    EXPECT_FALSE(mesh->update_vertex_attrib_sub_buffer(missing, data.data(), 0, 1)) << type;
  }
}

// ---- all vertices ----

TEST(MeshVertices, TransformsChangeEveryPositionInEveryForm) {
  for (const VertexForm form : ALL_FORMS) {
    const Held<Mesh> mesh;
    give_triangles(*mesh, TRIANGLE, form);
    mesh->translate_vertices_position(vec4(1, 1, 1, 99), nullptr);
    EXPECT_EQ(mesh->get_data()->get_position_4f(1), vec4(-3, 6, 7, 1));
    mesh->translate_vertices_position(vec3(-1, -1, -1), nullptr);
    EXPECT_EQ(mesh->get_vertex_position(1), vec4(-4, 5, 6, 1));
    mesh->scale_vertices_position(vec4(2, 3, 4, 5), nullptr);
    EXPECT_EQ(mesh->get_vertex_position(1), vec4(-8, 15, 24, 1));
  }
}

TEST(MeshVertices, RotationTurnsPositions) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, TRIANGLE);
  mesh->rotate_vertices_position(0, 0, 90, nullptr);
  EXPECT_TRUE(near(mesh->get_vertex_position(0), vec4(-2, 1, 3, 1), 1e-5f));
  quat q;
  q.from_euler(0, 0, -90);
  mesh->rotate_vertices_position(q, nullptr);
  EXPECT_TRUE(near(mesh->get_vertex_position(0), vec4(1, 2, 3, 1), 1e-5f));
}

TEST(MeshVertices, RotationByAnglesGoesThroughTheSlotOfTheQuaternion) {
  class Watched : public Mesh {
   public:
    using Mesh::rotate_vertices_position;
    void rotate_vertices_position(const quat&, Node*) override { called = true; }
    bool called = false;
  };
  const Held<Watched> mesh;
  mesh->rotate_vertices_position(1, 2, 3, nullptr);
  EXPECT_TRUE(mesh->called);
}

TEST(MeshVertices, EmptyMeshStopsTransformsBeforeItsChildren) {
  const Held<Mesh> mesh;
  auto* child = new CountingObject;
  mesh->add_child(child);
  mesh->translate_vertices_position(vec4(1, 1, 1, 1), mesh);
  mesh->translate_vertices_position(vec3(1, 1, 1), mesh);
  mesh->scale_vertices_position(vec4(1, 1, 1, 1), mesh);
  mesh->rotate_vertices_position(quat(), mesh);
  EXPECT_EQ(child->calls, 0);
  give_triangles(*mesh, TRIANGLE);
  mesh->translate_vertices_position(vec4(1, 1, 1, 1), mesh);
  mesh->translate_vertices_position(vec3(1, 1, 1), mesh);
  mesh->scale_vertices_position(vec4(1, 1, 1, 1), mesh);
  mesh->rotate_vertices_position(quat(), mesh);
  EXPECT_EQ(child->calls, 4);
  mesh->translate_vertices_position(vec4(1, 1, 1, 1), nullptr);
  EXPECT_EQ(child->calls, 4) << "null is this mesh alone";
}

TEST(MeshVertices, ColorsAreSetForAllVerticesAndChildren) {
  for (const VertexForm form : ALL_FORMS) {
    const Held<Mesh> mesh;
    auto* child = new CountingObject;
    mesh->add_child(child);
    give_triangles(*mesh, TRIANGLE, form);
    mesh->set_vertices_color(1, 2, 3, 4, mesh);
    for (unsigned int i = 0; i < 3; ++i) EXPECT_EQ(mesh->get_vertex_color(i), vec4(1, 2, 3, 4));
    EXPECT_EQ(child->calls, 1);
  }
}

TEST(MeshVertices, FlippedNormalsPointTheOtherWay) {
  for (const VertexForm form : ALL_FORMS) {
    const Held<Mesh> mesh;
    give_triangles(*mesh, TRIANGLE, form);
    mesh->set_vertex_normal(2, vec4(0, 1, -1, 0));
    mesh->flip_vertex_normals(nullptr);
    EXPECT_EQ(mesh->get_vertex_normal(2), vec4(0, -1, 1, 0));
    EXPECT_EQ(mesh->get_data()->get_normal(2).w, 1.0f);
  }
}

TEST(MeshVertices, BulkWritesMarkTheArrayOnce) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, TRIANGLE);
  VertexAttribArray& colors = *mesh->get_data()->get_vertex_attrib_array(3);
  VertexAttribArray& positions = *mesh->get_data()->get_vertex_attrib_array(0);
  colors.update_needed(false);
  positions.update_needed(false);
  mesh->set_vertices_color(1, 1, 1, 1, nullptr);
  unsigned int begin = 9;
  unsigned int end = 9;
  colors.get_dirty_elements(&begin, &end);
  EXPECT_EQ(begin, 0u);
  EXPECT_EQ(end, 3u);
  EXPECT_FALSE(positions.is_update_needed());
}

TEST(MeshVertices, DataOfAnotherTypeIsAskedThroughItsOperations) {
  const Held<Mesh> plain;
  const Held<Mesh> other;
  test::CountingMeshData* data = test::use_counting_data(*other);
  for (Mesh* mesh : {plain.get(), other.get()}) {
    give_triangles(*mesh, TRIANGLE);
    mesh->translate_vertices_position(vec4(0.1f, 0.2f, 0.3f, 0), nullptr);
    mesh->scale_vertices_position(vec4(0.7f, 1.1f, 1.3f, 0), nullptr);
    mesh->rotate_vertices_position(10, 20, 30, nullptr);
    mesh->set_vertices_color(1, 2, 3, 4, nullptr);
    mesh->compute_faces_normal(nullptr);
    mesh->flip_vertex_normals(nullptr);
  }
  EXPECT_EQ(data->writes, 3 + 9 + 3 + 3 + 3) << "positions, transforms, colours, normals, flip";
  for (unsigned int i = 0; i < 3; ++i) {
    EXPECT_EQ(plain->get_vertex_position(i), other->get_vertex_position(i));
    EXPECT_EQ(plain->get_vertex_normal(i), other->get_vertex_normal(i));
    EXPECT_EQ(plain->get_vertex_color(i), other->get_vertex_color(i));
  }
}

// ---- bounds ----

TEST(MeshVertices, BoundsSpanAllPositionsInEveryForm) {
  for (const VertexForm form : ALL_FORMS) {
    const Held<Mesh> mesh;
    give_triangles(*mesh, TRIANGLE, form);
    EXPECT_TRUE(mesh->bounding_volume_compute(nullptr));
    EXPECT_EQ(mesh->get_bounding_box_min(), vec4(-4, -8, 3, 1));
    EXPECT_EQ(mesh->get_bounding_box_max(), vec4(7, 5, 9, 1));
    EXPECT_EQ(mesh->get_bounding_sphere_center(), vec4(1.5f, -1.5f, 6, 1));
  }
}

TEST(MeshVertices, BoundingRadiusIsThatOfTheInscribedSphere) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, {vec3(-1, -1, -1), vec3(1, 1, 1), vec3(0, 0, 0)});
  EXPECT_TRUE(mesh->update_bounding_sphere(nullptr));
  EXPECT_NEAR(mesh->get_bounding_sphere_radius(), std::sqrt(3.0f) / 1.732f, 1e-6f);
  mesh->bounding_sphere_use_inscribed_sphere(false);
  EXPECT_TRUE(mesh->update_bounding_sphere(nullptr));
  EXPECT_NEAR(mesh->get_bounding_sphere_radius(), std::sqrt(3.0f), 1e-6f);
}

TEST(MeshVertices, BoundsNeedVertices) {
  const Held<Mesh> mesh;
  EXPECT_FALSE(mesh->bounding_volume_compute(nullptr));
}

TEST(MeshVertices, BoundsPassOverWhatIsNotANumber) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (const VertexForm form : ALL_FORMS) {
    const Held<Mesh> mesh;
    give_triangles(*mesh, {vec3(nan, 1, 2), vec3(3, nan, 4), vec3(5, 6, nan)}, form);
    EXPECT_TRUE(mesh->bounding_volume_compute(nullptr));
    EXPECT_EQ(mesh->get_bounding_box_min(), vec4(3, 1, 2, 1));
    EXPECT_EQ(mesh->get_bounding_box_max(), vec4(5, 6, 4, 1));
  }
}

TEST(MeshVertices, BoundsOfThreeComponentPositions) {
  const Held<Mesh> mesh;
  mesh->get_data()->alloc_params.set_vertex_attrib_dim(0, 3);
  give_triangles(*mesh, TRIANGLE);
  EXPECT_TRUE(mesh->bounding_volume_compute(nullptr));
  EXPECT_EQ(mesh->get_bounding_box_min(), vec4(-4, -8, 3, 1));
}

TEST(MeshVertices, BoundsGoThroughTheSlot) {
  class Watched : public Mesh {
   public:
    bool bounding_volume_compute(Node*) override { return called = true; }
    bool called = false;
  };
  const Held<Watched> mesh;
  EXPECT_TRUE(mesh->update_bounding_sphere(nullptr));
  EXPECT_TRUE(mesh->called);
}

}  // namespace
}  // namespace orv
