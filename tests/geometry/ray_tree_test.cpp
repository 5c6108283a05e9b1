#include "geometry/ray_tree.h"

#include <orv/geometry/mesh_data.h>
#include <orv/math/mat4.h>
#include <orv/math/math.h>
#include <orv/math/ray.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>

#include "geometry/face_access.h"

namespace orv {
namespace {

/// A mesh in world space, the walk through its faces and the search.
class RayTreeSearch : public ::testing::Test {
 protected:
  RayTreeSearch() { Math::srnd(3); }

  void alloc(unsigned int vertices, unsigned int faces) {
    data_.alloc_params.num_vertices = vertices;
    ASSERT_TRUE(data_.alloc_vertex_data());
    ASSERT_TRUE(data_.alloc_face_data(faces, false));
  }

  /// A grid of `n` by `n` cells bent by `place`.
  void make_grid(unsigned int n, const std::function<vec4(float, float)>& place) {
    alloc((n + 1) * (n + 1), n * n * 2);
    const auto size = static_cast<float>(n);
    unsigned int vertex = 0;
    for (unsigned int j = 0; j <= n; ++j) {
      for (unsigned int i = 0; i <= n; ++i) {
        data_.set_position(vertex++,
                           place(static_cast<float>(i) / size, static_cast<float>(j) / size));
      }
    }
    unsigned int face = 0;
    for (unsigned int j = 0; j < n; ++j) {
      for (unsigned int i = 0; i < n; ++i) {
        const unsigned int a = j * (n + 1) + i;
        const unsigned int c = a + n + 1;
        data_.set_face_indices(face++, a, c, a + 1);
        data_.set_face_indices(face++, a + 1, c, c + 1);
      }
    }
  }

  RayVertices vertices() const {
    RayVertices result;
    result.first = data_.attrib_arrays[0]->data_vec4->ptr();
    result.count = data_.num_vertices;
    return result;
  }
  vec4 world(unsigned int vertex) { return m_ * vec4(data_.get_position(vertex)); }

  static vec4 random_point(float size) {
    return vec4(Math::rnd(-size, size), Math::rnd(-size, size), Math::rnd(-size, size));
  }
  static Ray ray_from_to(const vec4& from, const vec4& to) {
    vec4 way = to - from;
    way.normalize();
    return Ray(from, way);
  }

  /// Both find the same face at the same distance for as many rays.
  void expect_agreement(int count, const std::function<Ray()>& next) {
    const FaceAccess faces(data_);
    const RayTree tree(m_, vertices(), faces);
    for (int i = 0; i < count; ++i) {
      const Ray ray = next();
      if (!RayTree::can_cast(ray)) continue;
      const bool first_only = i % 4 == 3;
      const RayHit walked = walk_faces(ray, m_, vertices(), faces, first_only);
      const RayHit found = tree.cast(ray, first_only);
      hits_ += walked.hit;
      ASSERT_EQ(found.hit, walked.hit) << "ray " << i;
      ASSERT_EQ(found.face, walked.face) << "ray " << i;
      ASSERT_EQ(std::memcmp(&found.distance, &walked.distance, sizeof(float)), 0) << "ray " << i;
    }
  }
  void expect_agreement_of_random_rays(int count, float far = 3.0f) {
    expect_agreement(count, [&] { return ray_from_to(random_point(far), random_point(1)); });
  }

  MeshData data_;
  mat4 m_;
  int hits_ = 0;
};

TEST_F(RayTreeSearch, FindsWhatTheWalkFindsOnACurvedSurface) {
  m_.init_euler_angles(30, 40, 50);
  make_grid(30, [](float u, float v) {
    const float a = u * 6.2831855f;
    const float b = v * 3.1415927f;
    return vec4(std::cos(a) * std::sin(b), std::cos(b), std::sin(a) * std::sin(b));
  });
  expect_agreement_of_random_rays(4000);
  EXPECT_GT(hits_, 500);
  // From far away the margins are wider.
  expect_agreement_of_random_rays(1000, 300.0f);
  expect_agreement_of_random_rays(1000, 0.5f);
}

TEST_F(RayTreeSearch, FindsWhatTheWalkFindsAmongNeedles) {
  make_grid(25, [](float u, float v) {
    return vec4(u * 2.0f - 1.0f, std::sin(v * 9.0f) * 0.3f, v * v * v * v * v * v * 2.0f - 1.0f);
  });
  expect_agreement_of_random_rays(4000);
  EXPECT_GT(hits_, 500);
}

TEST_F(RayTreeSearch, FindsSharedEdgesAndVertices) {
  make_grid(16, [](float u, float v) { return vec4(u * 2.0f - 1.0f, 0.0f, v * 2.0f - 1.0f); });
  expect_agreement(2000, [&] {
    const auto vertex = static_cast<unsigned int>(Math::rnd(0, 289));
    return ray_from_to(random_point(2), world(vertex));
  });
  expect_agreement(500, [&] {
    const vec4 p = world(static_cast<unsigned int>(Math::rnd(0, 289)));
    return Ray(p + vec4(0, 3, 0, 0), vec4(0, -1, 0, 0));
  });
}

// Nothing but rounding decides there, and the walk finds faces that the ray does not come near.
TEST_F(RayTreeSearch, FindsWhatRoundingFindsAlongAFlatMesh) {
  m_.init_euler_angles(33, 21, -47);
  m_.set_translate(0.3f, -0.2f, 0.7f);
  make_grid(16, [](float u, float v) { return vec4(u * 2.0f - 1.0f, 0.0f, v * 2.0f - 1.0f); });
  expect_agreement(6000, [&] {
    const vec4 a = world(static_cast<unsigned int>(Math::rnd(0, 289)));
    const vec4 b = world(static_cast<unsigned int>(Math::rnd(0, 289)));
    const vec4 c = world(static_cast<unsigned int>(Math::rnd(0, 289)));
    return ray_from_to(a + (b - a) * Math::rnd(-5, 5), c + (b - a) * Math::rnd(-5, 5));
  });
  EXPECT_GT(hits_, 100);
}

TEST_F(RayTreeSearch, SameBoxesAreSearchedThrough) {
  alloc(3, 1000);
  data_.set_position(0, vec4(-1, -1, 0));
  data_.set_position(1, vec4(1, -1, 0));
  data_.set_position(2, vec4(0, 1, 0));
  for (unsigned int i = 0; i < 1000; ++i) data_.set_face_indices(i, 0, 1, 2);
  expect_agreement_of_random_rays(300);
}

TEST_F(RayTreeSearch, FacesWithoutAreaAloneAreNeverHit) {
  alloc(3, 100);
  data_.set_position(0, vec4(-1, -1, 0));
  data_.set_position(1, vec4(1, -1, 0));
  for (unsigned int i = 0; i < 100; ++i) data_.set_face_indices(i, i % 2, i % 2, 1);
  expect_agreement_of_random_rays(200);
  EXPECT_EQ(hits_, 0);
}

TEST_F(RayTreeSearch, EndsOnSizesOfAllMagnitudes) {
  // Each triangle ten times as far away and as large as the one before, ever again.
  alloc(3 * 300, 300);
  for (unsigned int i = 0; i < 300; ++i) {
    const float size = std::pow(10.0f, static_cast<float>(i % 75) * 0.5f - 20.0f);
    for (unsigned int k = 0; k < 3; ++k) data_.set_position(3 * i + k, random_point(size));
    data_.set_face_indices(i, 3 * i, 3 * i + 1, 3 * i + 2);
  }
  expect_agreement_of_random_rays(1000);
}

TEST_F(RayTreeSearch, RaysOutOfTheUsualRangeAreRefused) {
  EXPECT_TRUE(RayTree::can_cast(Ray(vec4(1, 2, 3, 1), vec4(0, 0, 1, 0))));
  EXPECT_FALSE(RayTree::can_cast(Ray(vec4(1e10f, 2, 3, 1), vec4(0, 0, 1, 0))));
  EXPECT_FALSE(RayTree::can_cast(Ray(vec4(1, std::nanf(""), 3, 1), vec4(0, 0, 1, 0))));
  EXPECT_FALSE(RayTree::can_cast(Ray(vec4(1, 2, 3, 1), vec4(0, 0, 0, 0))));
  EXPECT_FALSE(RayTree::can_cast(Ray(vec4(1, 2, 3, 1), vec4(0, std::nanf(""), 1, 0))));
  EXPECT_FALSE(RayTree::can_cast(Ray(vec4(1, 2, 3, 1), vec4(0, 0, 1e20f, 0))));
}

TEST_F(RayTreeSearch, MemoryIsBoundByTheFaces) {
  make_grid(64, [](float u, float v) { return vec4(u, std::sin(u * v * 20.0f), v); });
  const RayTree tree(m_, vertices(), FaceAccess(data_));
  EXPECT_LT(tree.get_size(), 8192u * 320u);
}

}  // namespace
}  // namespace orv
