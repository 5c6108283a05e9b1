#include <orv/geometry/mesh.h>
#include <orv/geometry/primitives/mesh_plane.h>

#include <gtest/gtest.h>

#include <vector>

#include "geometry/mesh_support.h"
#include "support/held.h"
#include "support/near.h"

namespace orv {
namespace {

using test::Held;

/// Corners of a box round the origin and its middle, as particles.
class MeshParticles : public ::testing::Test {
 protected:
  MeshParticles() {
    std::vector<vec3> corners;
    for (int i = 0; i < 8; ++i) {
      corners.emplace_back(i & 1 ? 1.0f : -1.0f, i & 2 ? 2.0f : -2.0f, i & 4 ? 3.0f : -3.0f);
    }
    corners.emplace_back(0.0f, 0.0f, 0.0f);
    test::give_triangles(*mesh, corners);
    mesh->update_vertex_particle_from_position();
  }

  /// Bit i for particle i with w 0.
  unsigned int pinned() const {
    unsigned int bits = 0;
    for (unsigned int i = 0; i < 9; ++i) {
      if (mesh->get_vertex_particles()[i].w == 0.0f) bits |= 1u << i;
    }
    return bits;
  }
  unsigned int pinned_by(unsigned int mask) {
    mesh->set_vertices_particle_w(1.0f);
    EXPECT_TRUE(mesh->vertex_particle_attach_border(mask));
    return pinned();
  }
  unsigned int pinned_in_two_points_by(unsigned int mask) {
    mesh->set_vertices_particle_w(1.0f);
    EXPECT_TRUE(mesh->vertex_particle_attach_border_two_points(mask));
    return pinned();
  }

  Held<Mesh> mesh;
};

TEST_F(MeshParticles, WithoutThemEverythingIsFalse) {
  const Held<Mesh> bare;
  bare->get_data()->alloc_params.alloc_vertex_particles = false;
  test::give_triangles(*bare, {vec3(), vec3(), vec3()});
  EXPECT_EQ(bare->get_vertex_particles(), nullptr);
  EXPECT_FALSE(bare->vertex_particle_attach_border(63));
  EXPECT_FALSE(bare->vertex_particle_attach_border_two_points(63));
  EXPECT_FALSE(bare->update_vertex_particle_from_position());
  bare->set_vertex_particle(0, vec4());
  bare->set_vertex_particle_w(0, 1);
  bare->set_vertices_particle_w(1);
  bare->cleanup_mesh_data(nullptr);
  EXPECT_FALSE(bare->vertex_particle_attach_border(0));
  EXPECT_EQ(bare->get_vertex_particles(), nullptr);
}

TEST_F(MeshParticles, SettersKeepToTheirVertex) {
  mesh->set_vertex_particle(3, vec4(1, 2, 3, 4));
  mesh->set_vertex_particle_w(4, 7);
  mesh->set_vertex_particle(9, vec4(9, 9, 9, 9));
  mesh->set_vertex_particle_w(0xFFFFFFFFu, 9);
  EXPECT_EQ(mesh->get_vertex_particles()[3], vec4(1, 2, 3, 4));
  EXPECT_EQ(mesh->get_vertex_particles()[4].w, 7.0f);
  EXPECT_EQ(mesh->get_vertex_particles()[4].z, 3.0f);
  mesh->set_vertices_particle_w(0.5f);
  for (int i = 0; i < 9; ++i) EXPECT_EQ(mesh->get_vertex_particles()[i].w, 0.5f);
  EXPECT_EQ(mesh->get_vertex_particles()[3].x, 1.0f);
}

TEST_F(MeshParticles, TakePositionsOfEveryForm) {
  for (const test::VertexForm form : test::ALL_FORMS) {
    const Held<Mesh> other;
    test::give_triangles(*other, {vec3(1, 2, 3), vec3(4, 5, 6), vec3(7, 8, 9)}, form);
    other->set_vertex_position_w(1, 0.25f);
    EXPECT_TRUE(other->update_vertex_particle_from_position());
    EXPECT_EQ(other->get_vertex_particles()[0], vec4(1, 2, 3, 1));
    EXPECT_EQ(other->get_vertex_particles()[1], vec4(4, 5, 6, 0.25f));
  }
}

TEST_F(MeshParticles, TakePositionsOfThreeComponents) {
  const Held<Mesh> other;
  other->get_data()->alloc_params.set_vertex_attrib_dim(0, 3);
  test::give_triangles(*other, {vec3(1, 2, 3), vec3(4, 5, 6), vec3(7, 8, 9)});
  EXPECT_TRUE(other->update_vertex_particle_from_position());
  EXPECT_EQ(other->get_vertex_particles()[2], vec4(7, 8, 9, 1));
}

TEST_F(MeshParticles, TakeNothingFromFreedPositions) {
  mesh->free_vertex_attrib_array(0);
  EXPECT_TRUE(mesh->update_vertex_particle_from_position());
  EXPECT_EQ(mesh->get_vertex_particles()[8], vec4());
}

TEST_F(MeshParticles, FreshOnesAreAllOnEveryBorder) {
  for (const unsigned int bit : {1u, 2u, 4u, 8u, 16u, 32u}) {
    const Held<MeshPlane> plane;
    plane->build(nullptr);
    ASSERT_EQ(plane->get_vertex_particles()[12], vec4(0, 0, 0, 1));
    EXPECT_TRUE(plane->vertex_particle_attach_border(bit));
    for (int i = 0; i < 25; ++i) EXPECT_EQ(plane->get_vertex_particles()[i].w, 0.0f);
  }
}

TEST_F(MeshParticles, EachBitPinsItsBorder) {
  EXPECT_EQ(pinned_by(MESH_PLANE_BORDER_X_MIN), 0x55u);
  EXPECT_EQ(pinned_by(MESH_PLANE_BORDER_X_MAX), 0xAAu);
  EXPECT_EQ(pinned_by(MESH_PLANE_BORDER_Z_MIN), 0x0Fu);
  EXPECT_EQ(pinned_by(MESH_PLANE_BORDER_Z_MAX), 0xF0u);
  EXPECT_EQ(pinned_by(MESH_PLANE_BORDER_Y_MIN), 0x33u);
  EXPECT_EQ(pinned_by(MESH_PLANE_BORDER_Y_MAX), 0xCCu);
  EXPECT_EQ(pinned_by(MESH_PLANE_BORDER_X_MIN | MESH_PLANE_BORDER_Z_MAX), 0xF5u);
  EXPECT_EQ(pinned_by(~63u), 0u);
}

TEST_F(MeshParticles, AMaskOfNothingChangesNothing) {
  EXPECT_EQ(pinned_by(0), 0u);
  EXPECT_EQ(pinned_in_two_points_by(0), 0u);
}

TEST_F(MeshParticles, TwoPointFormPinsCornersOfTheBorder) {
  EXPECT_EQ(pinned_in_two_points_by(MESH_PLANE_BORDER_X_MIN), 0x55u);
  mesh->set_vertex_particle(0, vec4(-1, 0, 0, 1));  // on the border, not in a corner
  EXPECT_EQ(pinned_in_two_points_by(MESH_PLANE_BORDER_X_MIN), 0x54u);
  EXPECT_EQ(pinned_in_two_points_by(MESH_PLANE_BORDER_X_MAX), 0xAAu);
  EXPECT_EQ(pinned_in_two_points_by(MESH_PLANE_BORDER_Z_MIN), 0x0Eu);
  EXPECT_EQ(pinned_in_two_points_by(MESH_PLANE_BORDER_Z_MAX), 0xF0u);
}

TEST_F(MeshParticles, TwoPointFormPinsTheSharedCornerByEitherBit) {
  constexpr unsigned int MIN_MIN_CORNER = 0x05;
  EXPECT_EQ(pinned_in_two_points_by(1) & MIN_MIN_CORNER, MIN_MIN_CORNER);
  EXPECT_EQ(pinned_in_two_points_by(4) & MIN_MIN_CORNER, MIN_MIN_CORNER);
}

TEST_F(MeshParticles, TwoPointFormKnowsNoBordersInY) {
  EXPECT_EQ(pinned_in_two_points_by(MESH_PLANE_BORDER_Y_MIN | MESH_PLANE_BORDER_Y_MAX), 0u);
}

TEST_F(MeshParticles, BoundsAreThoseOfTheParticles) {
  mesh->set_vertex_position(8, vec4(-100, 0, 0, 1));
  EXPECT_EQ(pinned_by(MESH_PLANE_BORDER_X_MIN), 0x55u);
}

TEST_F(MeshParticles, BeyondOneHundredMillionNothingIsABorder) {
  for (unsigned int i = 0; i < 9; ++i) mesh->set_vertex_particle(i, vec4(2e8f, 0, 0, 1));
  // The minimum stays where the scan starts.
  EXPECT_EQ(pinned_by(MESH_PLANE_BORDER_X_MIN), 0u);
  EXPECT_EQ(pinned_by(MESH_PLANE_BORDER_X_MAX), 0x1FFu);
}

TEST_F(MeshParticles, WhatIsNotANumberIsOnNoBorder) {
  mesh->set_vertex_particle(0, vec4(std::nanf(""), 0, 0, 1));
  EXPECT_EQ(pinned_by(MESH_PLANE_BORDER_X_MIN), 0x54u);
}

}  // namespace
}  // namespace orv
