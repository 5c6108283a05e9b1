#include <orv/geometry/mesh.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
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

// ---- normals of faces ----

TEST(MeshNormals, FacesPointCounterClockwise) {
  for (const VertexForm form : ALL_FORMS) {
    const Held<Mesh> mesh;
    give_triangles(*mesh, {vec3(0, 0, 0), vec3(2, 0, 0), vec3(0, 3, 0)}, form);
    EXPECT_TRUE(mesh->compute_faces_normal(nullptr));
    EXPECT_EQ(mesh->get_data()->face_normals[0], vec4(0, 0, 1, 0));
    for (unsigned int i = 0; i < 3; ++i) {
      EXPECT_EQ(mesh->get_data()->get_normal(i), vec4(0, 0, 1, 1));
    }
  }
}

TEST(MeshNormals, SixVerticesWithoutFacesBecomeTwoTriangles) {
  const Held<Mesh> mesh;
  mesh->set_vertex_alloc_params_num_vertices(6);
  ASSERT_TRUE(mesh->alloc_vertex_data());
  EXPECT_TRUE(mesh->compute_faces_normal(nullptr));
  ASSERT_EQ(mesh->get_num_faces(nullptr), 2u);
  unsigned int a = 0, b = 0, c = 0;
  mesh->get_face_indexes(1, &a, &b, &c);
  EXPECT_EQ(a, 3u);
  EXPECT_EQ(b, 4u);
  EXPECT_EQ(c, 5u);
}

TEST(MeshNormals, SevenVerticesWithoutFacesAreRefused) {
  const Held<Mesh> mesh;
  mesh->set_vertex_alloc_params_num_vertices(7);
  ASSERT_TRUE(mesh->alloc_vertex_data());
  EXPECT_FALSE(mesh->compute_faces_normal(nullptr));
  EXPECT_EQ(mesh->get_num_faces(nullptr), 0u);
}

TEST(MeshNormals, DegenerateFaceHasNone) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, {vec3(0, 0, 0), vec3(1, 1, 1), vec3(2, 2, 2)});
  EXPECT_TRUE(mesh->compute_faces_normal(nullptr));
  EXPECT_EQ(mesh->get_data()->face_normals[0], vec4(0, 0, 0, 0));
  EXPECT_EQ(mesh->get_data()->get_normal(1), vec4(0, 0, 0, 1));
}

TEST(MeshNormals, SharedVertexKeepsTheNormalOfItsLastFace) {
  const Held<Mesh> mesh;
  give_triangles(*mesh,
                 {vec3(0, 0, 0), vec3(1, 0, 0), vec3(0, 1, 0), vec3(0, 0, 1), vec3(), vec3()});
  mesh->set_face_indexes(1, 0, 2, 3);
  EXPECT_TRUE(mesh->compute_faces_normal(nullptr));
  EXPECT_EQ(mesh->get_vertex_normal(0), vec4(1, 0, 0, 0));
  EXPECT_EQ(mesh->get_vertex_normal(1), vec4(0, 0, 1, 0));
}

TEST(MeshNormals, GenericListIsRefused) {
  const Held<Mesh> mesh;
  mesh->set_vertex_alloc_params_num_vertices(3);
  mesh->alloc_vertex_data();
  mesh->alloc_face_data_v2(3, MESH_FACE_TRIANGLE_STRIP);
  EXPECT_FALSE(mesh->compute_faces_normal(nullptr));
  EXPECT_FALSE(mesh->compute_vertices_normal(nullptr));
}

TEST(MeshNormals, IndicesPastTheVerticesReadAsOrigin) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, {vec3(1, 0, 0), vec3(0, 1, 0), vec3(0, 0, 0)});
  mesh->set_face_indexes(0, 0, 1, 60000);
  EXPECT_TRUE(mesh->compute_faces_normal(nullptr));
  EXPECT_EQ(mesh->get_data()->face_normals[0], vec4(0, 0, 1, 0));
  EXPECT_TRUE(mesh->compute_vertices_normal(nullptr));
  EXPECT_TRUE(mesh->average_vertices_normal(0.1f, nullptr));
}

// ---- normals of vertices ----

TEST(MeshNormals, VerticesAverageTheStoredNormalsOfTheirFaces) {
  for (const VertexForm form : ALL_FORMS) {
    const Held<Mesh> mesh;
    give_triangles(*mesh, std::vector<vec3>(6), form);
    mesh->set_face_indexes(1, 0, 1, 2);
    mesh->get_data()->face_normals[0] = vec4(1, 0, 0, 0);
    mesh->get_data()->face_normals[1] = vec4(0, 1, 0, 0);
    mesh->set_vertex_normal(5, vec4(0, 0, 7, 0));
    EXPECT_TRUE(mesh->compute_vertices_normal(nullptr));
    const float half = std::sqrt(0.5f);
    EXPECT_TRUE(near(mesh->get_vertex_normal(0), vec4(half, half, 0, 0), 1e-6f));
    EXPECT_EQ(mesh->get_data()->get_normal(0).w, 1.0f);
    EXPECT_EQ(mesh->get_vertex_normal(5), vec4(0, 0, 7, 0)) << "of no face";
  }
}

TEST(MeshNormals, VertexNormalsNeedVerticesAndFaces) {
  const Held<Mesh> mesh;
  EXPECT_FALSE(mesh->compute_vertices_normal(nullptr));
  EXPECT_FALSE(mesh->average_vertices_normal(1, nullptr));
  mesh->set_vertex_alloc_params_num_vertices(3);
  mesh->alloc_vertex_data();
  EXPECT_FALSE(mesh->compute_vertices_normal(nullptr));
  EXPECT_FALSE(mesh->average_vertices_normal(1, nullptr));
}

TEST(MeshNormals, ChildrenAreAskedForTheSame) {
  const Held<Mesh> mesh;
  auto* child = new CountingObject;
  mesh->add_child(child);
  give_triangles(*mesh, {vec3(0, 0, 0), vec3(2, 0, 0), vec3(0, 3, 0)});
  EXPECT_TRUE(mesh->compute_faces_normal(mesh));
  EXPECT_EQ(child->face_normals, 1);
  EXPECT_TRUE(mesh->compute_vertices_normal(mesh));
  EXPECT_EQ(child->vertex_normals, 1);
}

TEST(MeshNormals, AveragingEndsInVertexNormalsOfTheChildren) {
  const Held<Mesh> mesh;
  auto* child = new CountingObject;
  mesh->add_child(child);
  give_triangles(*mesh, {vec3(0, 0, 0), vec3(2, 0, 0), vec3(0, 3, 0)});
  EXPECT_TRUE(mesh->average_vertices_normal(0.1f, mesh));
  EXPECT_EQ(child->averages, 0);
  EXPECT_EQ(child->vertex_normals, 1);
}

// ---- welded normals ----

TEST(MeshNormals, VerticesWithinReachShareTheirAverage) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, {vec3(0, 0, 0), vec3(0.5f, 0, 0), vec3(5, 0, 0)});
  mesh->set_vertex_normal(0, vec4(1, 0, 0, 0));
  mesh->set_vertex_normal(1, vec4(0, 1, 0, 0));
  mesh->set_vertex_normal(2, vec4(0, 0, 3, 0));
  EXPECT_TRUE(mesh->average_vertices_normal(0.5f, nullptr));
  const float half = std::sqrt(0.5f);
  EXPECT_TRUE(near(mesh->get_vertex_normal(0), vec4(half, half, 0, 0), 1e-6f));
  EXPECT_EQ(mesh->get_vertex_normal(1), mesh->get_vertex_normal(0));
  EXPECT_EQ(mesh->get_vertex_normal(2), vec4(0, 0, 3, 0)) << "alone, so it stays as it is";
}

/// The comparison of all pairs that welding has to agree with to the bit.
std::vector<vec3> weld_by_pairs(const std::vector<vec3>& positions, std::vector<vec3> normals,
                                float eps) {
  const auto within = [eps](float a, float b) { return a >= b - eps && a <= b + eps; };
  for (std::size_t i = 0; i < positions.size(); ++i) {
    vec3 sum = normals[i];
    std::vector<std::size_t> found;
    for (std::size_t j = i + 1; j < positions.size(); ++j) {
      const vec3& p = positions[i];
      const vec3& q = positions[j];
      if (eps < 0 || !within(p.x, q.x) || !within(p.y, q.y) || !within(p.z, q.z)) continue;
      sum += normals[j];
      found.push_back(j);
    }
    if (found.empty()) continue;
    const float count = static_cast<float>(found.size() + 1);
    vec3 normal(sum.x / count, sum.y / count, sum.z / count);
    normal.normalize();
    normals[i] = normal;
    for (const std::size_t j : found) normals[j] = normal;
  }
  return normals;
}

/// Positions of many kinds: on a lattice, on the border of what eps reaches, and doubled.
std::vector<vec3> make_cloud(float spacing, float jitter, float offset, unsigned int seed) {
  std::vector<vec3> cloud;
  const auto next = [&seed] {
    seed = seed * 1664525u + 1013904223u;
    return static_cast<float>(seed >> 8) / 16777216.0f;
  };
  for (int i = 0; i < 600; ++i) {
    const auto cell = [&] {
      return std::floor(next() * 6.0f) * spacing + next() * jitter + offset;
    };
    cloud.emplace_back(cell(), cell(), cell());
  }
  for (std::size_t i = 0; i < 100; ++i) cloud.push_back(cloud[i * 3]);
  return cloud;
}

struct Welding {
  const char* name;
  float spacing, jitter, offset, eps;
};

const Welding WELDINGS[] = {
    {"exact lattice, reach of one cell", 1, 0, 0, 1},
    {"around the origin", 1, 0, -3, 1},
    {"borders of decimal cells", 0.1f, 0, -0.3f, 0.1f},
    {"dense cluster", 0.1f, 0.05f, 0, 1},
    {"nothing near", 10, 1, 0, 0.001f},
    {"far from the origin", 0.25f, 0, 3000000, 0.25f},
    {"reach below the resolution", 0.25f, 0, 3000000, 0.01f},
    {"equal positions", 1, 0, 0, 0},
    {"huge reach", 1, 0.5f, 0, 1e30f},
    {"overflowing reach", 1, 0.5f, 0, 3e38f},
    {"infinite reach", 1, 0.5f, 0, HUGE_VALF},
    {"negative reach", 1, 0, 0, -1},
    {"tiny numbers", 1e-40f, 0, 0, 1e-40f},
    {"reach below all numbers", 1e-40f, 0, 0, 0},
};

void expect_welding_of_pairs(const std::vector<vec3>& positions, float eps, VertexForm form,
                             const char* name) {
  const Held<Mesh> mesh;
  give_triangles(*mesh, positions, form);
  std::vector<vec3> normals;
  unsigned int seed = 77;
  for (unsigned int i = 0; i < positions.size(); ++i) {
    seed = seed * 1664525u + 1013904223u;
    const float x = static_cast<float>(seed >> 16) / 65536.0f;
    normals.emplace_back(x, 1.0f - x, x * x);
    mesh->set_vertex_normal(i, vec4(normals.back()));
  }
  EXPECT_TRUE(mesh->average_vertices_normal(eps, nullptr));
  const std::vector<vec3> expected = weld_by_pairs(positions, normals, eps);
  for (unsigned int i = 0; i < positions.size(); ++i) {
    const vec4 normal = mesh->get_data()->get_normal(i);
    ASSERT_EQ(std::memcmp(normal.ptr(), expected[i].ptr(), 12), 0) << name << ", vertex " << i;
    ASSERT_EQ(normal.w, 1.0f);
  }
}

TEST(MeshNormals, WeldingEqualsComparingAllPairs) {
  for (const Welding& row : WELDINGS) {
    for (const unsigned int seed : {1u, 2u, 3u}) {
      expect_welding_of_pairs(make_cloud(row.spacing, row.jitter, row.offset, seed), row.eps,
                              VertexForm::SEPARATE, row.name);
    }
  }
}

TEST(MeshNormals, WeldingEqualsComparingAllPairsInOtherForms) {
  const std::vector<vec3> cloud = make_cloud(1, 0.1f, 0, 5);
  expect_welding_of_pairs(cloud, 0.1f, VertexForm::INTERLEAVED, "interleaved");
  expect_welding_of_pairs(cloud, 0.1f, VertexForm::SEPARATE_ALIGNED, "aligned");
}

TEST(MeshNormals, WeldingKnowsSignedZerosInfinitiesAndNonNumbers) {
  const float inf = HUGE_VALF;
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const std::vector<vec3> positions = {vec3(0, 0, 0),    vec3(-0.0f, 0, -0.0f), vec3(nan, 0, 0),
                                       vec3(nan, 0, 0),  vec3(inf, 0, 0),       vec3(inf, 0, 0),
                                       vec3(-inf, 0, 0), vec3(3e38f, 0, 0),     vec3(-3e38f, 0, 0)};
  for (const float eps : {0.0f, 0.5f, 1e38f, 3e38f}) {
    expect_welding_of_pairs(positions, eps, VertexForm::SEPARATE, "special values");
  }
}

TEST(MeshNormals, WeldingOfManyVerticesIsQuick) {
  const Held<Mesh> mesh;
  std::vector<vec3> positions;
  for (int i = 0; i < 90000; ++i) {
    positions.emplace_back(static_cast<float>(i % 300), static_cast<float>(i / 300), 0.0f);
  }
  give_triangles(*mesh, positions);
  mesh->set_vertex_normal(7, vec4(0, 2, 0, 0));
  EXPECT_TRUE(mesh->average_vertices_normal(0.25f, nullptr));
  EXPECT_EQ(mesh->get_vertex_normal(7), vec4(0, 2, 0, 0)) << "nothing is near";
}

// ---- facing ----

TEST(MeshNormals, FlippedFacesSwapFirstAndLast) {
  for (const bool wide : {false, true}) {
    const Held<Mesh> mesh;
    mesh->alloc_face_data(2, wide);
    mesh->set_face_indexes(1, 7, 8, 9);
    mesh->get_data()->ib_update_faces_list_set_state(false);
    mesh->flip_faces(nullptr);
    unsigned int a = 0, b = 0, c = 0;
    mesh->get_face_indexes(1, &a, &b, &c);
    EXPECT_EQ(a, 9u);
    EXPECT_EQ(b, 8u);
    EXPECT_EQ(c, 7u);
    EXPECT_TRUE(mesh->get_data()->is_ib_update_faces_list_needed());
  }
}

TEST(MeshNormals, FlippingWithoutFacesStillMarksAndWalks) {
  const Held<Mesh> mesh;
  auto* child = new CountingObject;
  mesh->add_child(child);
  mesh->flip_faces(mesh);
  EXPECT_TRUE(mesh->get_data()->is_ib_update_faces_list_needed());
  EXPECT_EQ(child->calls, 1);
  mesh->alloc_face_data_v2(3, MESH_FACE_TRIANGLE_STRIP);
  mesh->flip_faces(nullptr);
  EXPECT_EQ(mesh->get_data()->indices[0], 0u) << "generic lists are passed over";
}

}  // namespace
}  // namespace orv
