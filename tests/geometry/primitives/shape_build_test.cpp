#include <orv/geometry/primitives/mesh_box.h>
#include <orv/geometry/primitives/mesh_box_8v.h>
#include <orv/geometry/primitives/mesh_cylinder.h>
#include <orv/geometry/primitives/mesh_disc.h>
#include <orv/geometry/primitives/mesh_ellipse.h>
#include <orv/geometry/primitives/mesh_plane.h>
#include <orv/geometry/primitives/mesh_pq_torus.h>
#include <orv/geometry/primitives/mesh_quad.h>
#include <orv/geometry/primitives/mesh_quad_hud.h>
#include <orv/geometry/primitives/mesh_sphere.h>
#include <orv/geometry/primitives/mesh_torus.h>
#include <orv/geometry/primitives/mesh_triangle.h>

#include <gtest/gtest.h>

#include <functional>

#include "geometry/geometry_support.h"
#include "geometry/primitives/shape_support.h"
#include "support/held.h"
#include "support/log_capture.h"

namespace orv {
namespace {

using test::Held;

/// One of the shapes, with what is known of its default.
struct Shape {
  const char* name;
  NODE_TYPE type;
  unsigned int vertices;
  unsigned int faces;
  std::function<Mesh*(VERTEX_FORMAT)> make;
  std::function<Mesh*(const Mesh&)> copy;
};

template <class T>
Shape shape(const char* name, NODE_TYPE type, unsigned int vertices, unsigned int faces) {
  return {name,
          type,
          vertices,
          faces,
          [](VERTEX_FORMAT format) -> Mesh* {
            return format == VERTEX_FORMAT_DEFAULT ? new T : new T(format);
          },
          [](const Mesh& other) -> Mesh* { return new T(static_cast<const T&>(other)); }};
}

const std::vector<Shape>& shapes() {
  static const std::vector<Shape> all = {
      shape<MeshPlane>("plane", NODE_TYPE_MESH_PLANE, 25, 32),
      shape<MeshSphere>("sphere", NODE_TYPE_MESH_SPHERE, 441, 800),
      shape<MeshCylinder>("cylinder", NODE_TYPE_MESH_CYLINDER, 441, 800),
      shape<MeshDisc>("disc", NODE_TYPE_MESH_DISC, 120, 40),
      shape<MeshEllipse>("ellipse", NODE_TYPE_MESH_ELLIPSE, 23, 30),
      shape<MeshTorus>("torus", NODE_TYPE_MESH_TORUS, 441, 800),
      shape<MeshPQTorus>("pq torus", NODE_TYPE_MESH_PQ_TORUS, 257 * 17 + 1, 257 * 16 * 2),
      shape<MeshBox>("box", NODE_TYPE_MESH_BOX, 144, 48),
      shape<MeshBox8v>("box of 8", NODE_TYPE_MESH_BOX_8V, 8, 12),
      shape<MeshQuadHud>("hud quad", NODE_TYPE_MESH_QUAD_HUD, 4, 2),
      shape<MeshTriangle>("triangle", NODE_TYPE_MESH_TRIANGLE, 3, 1),
  };
  return all;
}

/// Holds a shape that was made on the heap.
class Owned {
 public:
  explicit Owned(Mesh* mesh) : mesh_(mesh) { mesh_->add_ref(); }
  ~Owned() { mesh_->release(nullptr, nullptr); }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  Mesh* operator->() const { return mesh_; }
  Mesh& operator*() const { return *mesh_; }

 private:
  Mesh* mesh_;
};

TEST(ShapeBuild, TypesStandBehindThatOfTheMesh) {
  for (const Shape& row : shapes()) {
    const Owned mesh(row.make(VERTEX_FORMAT_DEFAULT));
    EXPECT_EQ(mesh->get_type(), row.type) << row.name;
    EXPECT_TRUE(mesh->is_type_of(NODE_TYPE_MESH)) << row.name;
    EXPECT_TRUE(mesh->is_type_of(NODE_TYPE_OBJECT)) << row.name;
  }
  EXPECT_EQ(Held<MeshTriangle>()->get_type(), 15);
}

TEST(ShapeBuild, DefaultsHaveTheirCounts) {
  for (const Shape& row : shapes()) {
    const Owned mesh(row.make(VERTEX_FORMAT_DEFAULT));
    EXPECT_TRUE(mesh->build(nullptr)) << row.name;
    EXPECT_EQ(mesh->get_num_vertices(nullptr), row.vertices) << row.name;
    EXPECT_EQ(mesh->get_num_faces(nullptr), row.faces) << row.name;
    EXPECT_FALSE(mesh->get_build_state()) << row.name;
  }
}

TEST(ShapeBuild, EveryFormOfVerticesHoldsTheSameShape) {
  for (const Shape& row : shapes()) {
    const Owned plain(row.make(VERTEX_FORMAT_DEFAULT));
    plain->build(nullptr);
    for (const test::VertexForm form : test::ALL_FORMS) {
      const Owned mesh(row.make(VERTEX_FORMAT_DEFAULT));
      test::use_form(*mesh->get_data(), form);
      EXPECT_TRUE(mesh->build(nullptr));
      for (unsigned int i = 0; i < row.vertices; ++i) {
        const Vertex a = plain->get_data()->get_vertex_v2(i);
        const Vertex b = mesh->get_data()->get_vertex_v2(i);
        ASSERT_EQ(a.position, b.position) << row.name << " " << i;
        ASSERT_EQ(a.normal, b.normal) << row.name << " " << i;
        ASSERT_EQ(a.uv0, b.uv0) << row.name << " " << i;
        ASSERT_EQ(a.color, b.color) << row.name << " " << i;
      }
    }
  }
}

TEST(ShapeBuild, DataOfAnotherTypeGetsTheSameShape) {
  for (const Shape& row : shapes()) {
    const Owned plain(row.make(VERTEX_FORMAT_DEFAULT));
    plain->build(nullptr);
    const Owned mesh(row.make(VERTEX_FORMAT_DEFAULT));
    auto* data = new test::CountingMeshData;
    mesh->_set_mesh_data(nullptr, data);
    EXPECT_TRUE(mesh->build(nullptr));
    EXPECT_GT(data->writes, 0) << row.name;
    for (unsigned int i = 0; i < row.vertices; ++i) {
      ASSERT_EQ(plain->get_data()->get_position_4f(i), data->get_position_4f(i)) << row.name;
      ASSERT_EQ(plain->get_data()->get_normal(i), data->get_normal(i)) << row.name;
      ASSERT_EQ(plain->get_data()->get_uv0(i), data->get_uv0(i)) << row.name;
      ASSERT_EQ(plain->get_data()->get_color(i), data->get_color(i)) << row.name;
    }
  }
}

TEST(ShapeBuild, WorkerBuildsAsTheWalkDoes) {
  for (const Shape& row : shapes()) {
    const Owned mesh(row.make(VERTEX_FORMAT_DEFAULT));
    EXPECT_TRUE(mesh->_build()) << row.name;
    EXPECT_EQ(mesh->get_num_vertices(nullptr), row.vertices) << row.name;
  }
}

TEST(ShapeBuild, ABuiltShapeIsNotBuiltAgain) {
  for (const Shape& row : shapes()) {
    const Owned mesh(row.make(VERTEX_FORMAT_DEFAULT));
    mesh->build(nullptr);
    const unsigned int serial = mesh->get_data()->layout_serial;
    EXPECT_TRUE(mesh->build(nullptr));
    EXPECT_EQ(mesh->get_data()->layout_serial, serial) << row.name;
    mesh->update_build_state(true);
    EXPECT_TRUE(mesh->build(nullptr));
    EXPECT_GT(mesh->get_data()->layout_serial, serial) << row.name;
    EXPECT_EQ(mesh->get_num_vertices(nullptr), row.vertices) << row.name;
  }
}

TEST(ShapeBuild, BuildingTakesTheBounds) {
  for (const Shape& row : shapes()) {
    const Owned mesh(row.make(VERTEX_FORMAT_DEFAULT));
    mesh->build(nullptr);
    EXPECT_GT(mesh->get_bounding_box_size().x, 0.0f) << row.name;
    EXPECT_GT(mesh->get_global_bounding_box_size().x, 0.0f) << row.name;
  }
}

TEST(ShapeBuild, WithoutDataNothingIsBuilt) {
  for (const Shape& row : shapes()) {
    const Owned mesh(row.make(static_cast<VERTEX_FORMAT>(1)));
    EXPECT_FALSE(mesh->_build()) << row.name;
    EXPECT_EQ(mesh->get_num_vertices(nullptr), 0u) << row.name;
    EXPECT_EQ(mesh->get_type(), row.type) << row.name;
  }
}

TEST(ShapeBuild, UserGeometryNeverBuildsOnAShape) {
  for (const Shape& row : shapes()) {
    const Owned mesh(row.make(VERTEX_FORMAT_DEFAULT));
    for (int i = 0; i < 3; ++i) mesh->user_geometry_add_vertex(vec4());
    mesh->user_geometry_add_face32(0, 1, 2);
    EXPECT_TRUE(mesh->_build()) << row.name;
    EXPECT_EQ(mesh->get_num_vertices(nullptr), row.vertices) << row.name;
    EXPECT_TRUE(mesh->user_geometry_cleanup()) << "the lists are still there";
  }
}

TEST(ShapeBuild, SubsetsAreFreed) {
  const Held<MeshSphere> mesh;
  mesh->get_data()->alloc_subsets(3);
  mesh->_build();
  EXPECT_EQ(mesh->get_num_subsets(), 0u);
}

TEST(ShapeBuild, CopiesAreShapesOfTheirOwnThatShareTheGeometry) {
  for (const Shape& row : shapes()) {
    const Owned mesh(row.make(VERTEX_FORMAT_DEFAULT));
    mesh->build(nullptr);
    const Owned copy(row.copy(*mesh));
    EXPECT_EQ(copy->get_type(), row.type) << row.name;
    EXPECT_NE(copy->get_id(), mesh->get_id()) << row.name;
    EXPECT_EQ(copy->get_data(), mesh->get_data()) << row.name;
    EXPECT_EQ(copy->get_data()->get_ref(), 2) << row.name;
  }
}

TEST(ShapeBuild, CopiesKeepTheParameters) {
  const Held<MeshSphere> sphere;
  sphere->set_build_params(7, 8, 9);
  const Held<MeshSphere> copy(*sphere);
  EXPECT_EQ(copy->get_radius(), 7.0f);
  EXPECT_TRUE(copy->get_build_state());
  Held<MeshSphere> assigned;
  *assigned = *copy;
  EXPECT_EQ(assigned->get_stacks(), 8);
  EXPECT_EQ(assigned->get_slices(), 9);
}

TEST(ShapeBuild, ChildrenAreBuiltOnlyByShapesThatLeaveTheWalkToTheNode) {
  const auto child_is_built = [](Mesh* parent) {
    const Owned mesh(parent);
    auto* child = new MeshSphere;
    mesh->add_child(child);
    mesh->build(nullptr);
    return child->get_num_vertices(nullptr) > 0;
  };
  EXPECT_TRUE(child_is_built(new MeshSphere));
  EXPECT_TRUE(child_is_built(new MeshTorus));
  EXPECT_TRUE(child_is_built(new MeshPQTorus));
  EXPECT_FALSE(child_is_built(new MeshPlane));
  EXPECT_FALSE(child_is_built(new MeshCylinder));
  EXPECT_FALSE(child_is_built(new MeshDisc));
  EXPECT_FALSE(child_is_built(new MeshEllipse));
  EXPECT_FALSE(child_is_built(new MeshBox));
  EXPECT_FALSE(child_is_built(new MeshBox8v));
  EXPECT_FALSE(child_is_built(new MeshQuad));
  EXPECT_FALSE(child_is_built(new MeshQuadHud));
  EXPECT_FALSE(child_is_built(new MeshTriangle));
}

TEST(ShapeBuild, ShapesThatDontFitInMemoryFailAndKeepTheirParameters) {
  const test::LogCapture log;
  const int huge = 2000000000;
  const Held<MeshPlane> plane;
  plane->set_build_params(1, 1, huge, huge);
  EXPECT_FALSE(plane->_build());
  EXPECT_FALSE(plane->get_build_state());
  EXPECT_EQ(plane->get_wsegs(), huge);
  const Held<MeshSphere> sphere;
  sphere->set_build_params(1, huge, huge);
  EXPECT_FALSE(sphere->_build());
  const Held<MeshCylinder> cylinder;
  cylinder->set_build_params(1, 1, huge, huge);
  EXPECT_FALSE(cylinder->_build());
  const Held<MeshDisc> disc;
  disc->set_build_params(1, 1, huge);
  EXPECT_FALSE(disc->_build());
  const Held<MeshEllipse> ellipse;
  ellipse->set_build_params(1, 1, huge, huge, 360);
  EXPECT_FALSE(ellipse->_build());
  const Held<MeshTorus> torus;
  torus->set_build_params(1, 1, huge);
  EXPECT_FALSE(torus->_build());
  const Held<MeshPQTorus> knot;
  knot->set_build_params(huge, huge, 1, 1, 1, 1, 1, 1, 1, 2, 3);
  EXPECT_FALSE(knot->_build());
  const Held<MeshBox> box;
  box->set_build_params(1, 1, 1, huge, huge, huge);
  EXPECT_FALSE(box->_build());
  EXPECT_EQ(log.count("vertices memory allocation failed"), 8);
}

}  // namespace
}  // namespace orv
