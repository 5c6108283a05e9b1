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

  /// Triangles of random corners in a cube of two units.
  void make_soup(unsigned int faces, float edge) {
    alloc(3 * faces, faces);
    for (unsigned int i = 0; i < faces; ++i) {
      const vec4 middle = random_point(1);
      for (unsigned int k = 0; k < 3; ++k)
        data_.set_position(3 * i + k, middle + random_point(edge));
      data_.set_face_indices(i, 3 * i, 3 * i + 1, 3 * i + 2);
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
  /// A ray in the plane of a face picked at random, `far` edges away and along an edge or not.
  Ray ray_in_the_plane_of_a_face(float far) {
    const FaceAccess faces(data_);
    const FaceU32 face =
        faces.get(static_cast<unsigned int>(Math::rnd(0, static_cast<float>(faces.size()) - 0.5f)));
    const vec4 corner = world(face.a);
    const vec4 a = world(face.b) - corner;
    const vec4 b = world(face.c) - corner;
    const bool along_edge = Math::rnd(0, 1) < 0.3f;
    const auto place = [&](float reach) {
      return corner + a * Math::rnd(-reach, reach) +
             b * (along_edge ? 0 : Math::rnd(-reach, reach));
    };
    return ray_from_to(place(far), place(3.0f));
  }
  void expect_agreement_in_planes_of_faces(int count) {
    int i = 0;
    expect_agreement(count, [&] {
      constexpr float REACHES[] = {3.0f, 30.0f, 300.0f, 1e4f};
      return ray_in_the_plane_of_a_face(REACHES[++i % 4]);
    });
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

// Nor is the plane of a single face of a curved surface out of reach of rounding.
TEST_F(RayTreeSearch, FindsWhatRoundingFindsInThePlanesOfSingleFaces) {
  m_.init_euler_angles(12, -70, 25);
  m_.set_translate(0.1f, 0.2f, -0.3f);
  make_grid(20, [](float u, float v) {
    const float a = u * 6.2831855f;
    const float b = v * 6.2831855f;
    const float ring = 1.0f + 0.4f * std::cos(b);
    return vec4(ring * std::cos(a), 0.4f * std::sin(b), ring * std::sin(a));
  });
  expect_agreement_in_planes_of_faces(6000);
  EXPECT_GT(hits_, 2000);
}

TEST_F(RayTreeSearch, FindsWhatRoundingFindsAmongStrayTriangles) {
  make_soup(1500, 0.15f);
  expect_agreement_in_planes_of_faces(4000);
  expect_agreement_of_random_rays(2000);
}

TEST_F(RayTreeSearch, AxisParallelRaysMeetAxisParallelFaces) {
  // Steps: every face lies in a plane of the axes, and every coordinate is exact.
  make_grid(32, [](float u, float v) {
    const float step = std::floor(u * 8.0f);
    return vec4(u * 2.0f - 1.0f, step * 0.25f - 1.0f, v * 2.0f - 1.0f);
  });
  expect_agreement(4000, [&] {
    const auto grid = [] { return std::floor(Math::rnd(-20, 20)) / 16.0f; };
    vec4 way(0, 0, 0, 0);
    way.ptr()[static_cast<int>(Math::rnd(0, 2.99f))] = Math::rnd(-1, 1) < 0 ? -1.0f : 1.0f;
    return Ray(vec4(grid(), grid(), grid()), way);
  });
  EXPECT_GT(hits_, 500);
}

TEST_F(RayTreeSearch, FarFromTheOriginCoordinatesAreCoarse) {
  for (const float far : {1e3f, 1e6f, 1e8f}) {
    hits_ = 0;
    m_.init_translate(far, -far, 0.5f * far);
    make_soup(1000, 0.3f);
    const vec4 middle(far, -far, 0.5f * far);
    expect_agreement(
        1000, [&] { return ray_from_to(middle + random_point(3), middle + random_point(1)); });
    expect_agreement_in_planes_of_faces(1000);
    if (far < 1e8f) {
      EXPECT_GT(hits_, 300);
    }
  }
}

TEST_F(RayTreeSearch, SmallAndLargeMeshesAreSearched) {
  for (const float size : {1e-6f, 1e-3f, 1e4f, 1e8f}) {
    hits_ = 0;
    m_.init_scale(size, size, size);
    make_soup(800, 0.3f);
    expect_agreement(1000, [&] { return ray_from_to(random_point(3 * size), random_point(size)); });
    expect_agreement_in_planes_of_faces(1000);
    EXPECT_GT(hits_, 300);
  }
}

TEST_F(RayTreeSearch, NeedlesAndFacesWithoutAreaAmongOthersAreTested) {
  make_soup(1200, 0.3f);
  for (unsigned int i = 0; i < 1200; ++i) {
    const vec4 a = vec4(data_.get_position(3 * i));
    const vec4 b = vec4(data_.get_position(3 * i + 1));
    switch (i % 6) {
      case 0:  // on one line
        data_.set_position(3 * i + 2, a + (b - a) * Math::rnd(-1, 2));
        break;
      case 1:  // a needle with its point first
        data_.set_position(3 * i + 2, b + random_point(std::pow(10.0f, Math::rnd(-7, -1))));
        break;
      case 2:  // a needle with its point last
        data_.set_position(3 * i + 1, a + random_point(std::pow(10.0f, Math::rnd(-7, -1))));
        break;
      case 3:
        data_.set_position(3 * i + i % 3, vec4(std::nanf(""), a.y, 1e20f));
        break;
      default:
        break;
    }
  }
  expect_agreement_of_random_rays(3000);
  EXPECT_GT(hits_, 500);
}

TEST_F(RayTreeSearch, FlatPartsOfVeryLargeMeshesAreFoundInTheirPlane) {
  m_.init_euler_angles(33, 21, -47);
  // Three sides of a box, each flat, of more faces than all planes are kept of.
  make_grid(260, [](float u, float v) {
    const float side = u * 3.0f;
    if (side < 1.0f) return vec4(side, 0, v);
    if (side < 2.0f) return vec4(1, side - 1.0f, v);
    return vec4(3.0f - side, 1, v);
  });
  ASSERT_GT(data_.num_faces, RayTree::MAX_EXACT_FACES);
  expect_agreement_in_planes_of_faces(40);
  expect_agreement_of_random_rays(10);
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
