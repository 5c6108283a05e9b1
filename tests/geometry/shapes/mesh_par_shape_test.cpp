#include <orv/geometry/shapes/mesh_par_shape.h>

#include <orv/math/math.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "geometry/geometry_support.h"
#include "geometry/primitives/shape_support.h"
#include "support/held.h"
#include "support/log_capture.h"
#include "support/recording_renderer.h"

namespace orv {
namespace {

using test::facing_of;
using test::Held;
using test::LogCapture;
using test::near;

/// What a generated shape has: white vertices, unit normals with w 0, finite positions with w 1,
/// and indices in range.
void expect_well_formed(Mesh& mesh) {
  MeshData& data = *mesh.get_data();
  for (unsigned int i = 0; i < data.get_num_vertices(); ++i) {
    const vec4 p = data.get_position_4f(i);
    ASSERT_TRUE(std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z)) << "vertex " << i;
    ASSERT_EQ(p.w, 1.0f);
    ASSERT_EQ(data.get_color(i), vec4(1, 1, 1, 1)) << "vertex " << i;
    ASSERT_EQ(data.get_normal(i).w, 0.0f) << "vertex " << i;
    ASSERT_NEAR(data.get_normal_vec3(i).length(), 1.0f, 1e-4f) << "vertex " << i;
    ASSERT_EQ(data.get_uv0(i).w, 1.0f);
  }
  for (unsigned int i = 0; i < data.get_num_faces(); ++i) {
    for (const unsigned int corner : test::face_of(mesh, i)) {
      ASSERT_LT(corner, data.get_num_vertices()) << "face " << i;
    }
  }
}

struct Counts {
  const char* name;
  unsigned int vertices;
  unsigned int faces;
};

TEST(MeshParShape, DefaultIsATrefoilKnotOfFourByFour) {
  const Held<MeshParShape> shape;
  EXPECT_EQ(shape->get_type(), NODE_TYPE_MESH_PAR_SHAPE);
  EXPECT_STREQ(shape->get_shape_type(), "trefoil_knot");
  EXPECT_EQ(shape->get_slices(), 4);
  EXPECT_EQ(shape->get_stacks(), 4);
  EXPECT_EQ(shape->get_seed(), 1);
  EXPECT_EQ(shape->get_num_subdivisions(), 3);
  EXPECT_EQ(shape->get_lsystem_slices(), 60);
  EXPECT_STREQ(shape->get_lsystem_program(), MeshParShape::get_default_lsystem_program());
  ASSERT_TRUE(shape->build(nullptr));
  EXPECT_EQ(shape->get_num_vertices(nullptr), 25u);
  EXPECT_EQ(shape->get_num_faces(nullptr), 32u);
  expect_well_formed(*shape);
}

TEST(MeshParShape, EmptyAndNullNamesKeepTheOldOne) {
  const Held<MeshParShape> shape;
  EXPECT_TRUE(shape->set_shape_type("cube"));
  EXPECT_FALSE(shape->set_shape_type(""));
  EXPECT_FALSE(shape->set_shape_type(nullptr));
  EXPECT_STREQ(shape->get_shape_type(), "cube");
}

TEST(MeshParShape, NameIsCutAfter63Characters) {
  const Held<MeshParShape> shape;
  shape->set_shape_type(std::string(100, 'x').c_str());
  EXPECT_EQ(shape->get_shape_type(), std::string(63, 'x'));
}

TEST(MeshParShape, ChoosingAShapeAloneDoesNotMakeItDue) {
  const Held<MeshParShape> shape;
  ASSERT_TRUE(shape->build(nullptr));
  shape->set_shape_type("cube");
  EXPECT_FALSE(shape->get_build_state());
  EXPECT_TRUE(shape->build(nullptr));
  EXPECT_EQ(shape->get_num_vertices(nullptr), 25u) << "still the knot";
  EXPECT_TRUE(shape->set_build_params_rock(1, 1));
  EXPECT_TRUE(shape->build(nullptr));
  EXPECT_EQ(shape->get_num_vertices(nullptr), 36u);
}

TEST(MeshParShape, ParametersAreStoredAndMakeItDue) {
  const Held<MeshParShape> shape;
  const auto due = [&](bool stored) {
    const bool state = shape->get_build_state();
    shape->update_build_state(false);
    return stored && state;
  };
  EXPECT_TRUE(due(shape->set_build_params_klein_bottle(5, 6)));
  EXPECT_EQ(shape->get_slices(), 5);
  EXPECT_EQ(shape->get_stacks(), 6);
  EXPECT_TRUE(due(shape->set_build_params_parametric_sphere(7, 8)));
  EXPECT_EQ(shape->get_slices(), 7);
  EXPECT_EQ(shape->get_stacks(), 8);
  EXPECT_TRUE(due(shape->set_build_params_trefoil_knot(9, 10)));
  EXPECT_EQ(shape->get_slices(), 9);
  EXPECT_EQ(shape->get_stacks(), 10);
  EXPECT_TRUE(due(shape->set_build_params_subdivided_sphere(2)));
  EXPECT_EQ(shape->get_num_subdivisions(), 2);
  EXPECT_TRUE(due(shape->set_build_params_rock(11, 4)));
  EXPECT_EQ(shape->get_seed(), 11);
  EXPECT_EQ(shape->get_num_subdivisions(), 4);
  EXPECT_TRUE(due(shape->set_build_params_lsystem(6, 20, "shape tube")));
  EXPECT_EQ(shape->get_slices(), 6);
  EXPECT_EQ(shape->get_lsystem_slices(), 20);
  EXPECT_STREQ(shape->get_lsystem_program(), "shape tube");
  EXPECT_STREQ(shape->get_shape_type(), "trefoil_knot") << "no setter chooses a shape";
}

TEST(MeshParShape, ProgramTextIsCopied) {
  const Held<MeshParShape> shape;
  char text[] = "shape tube";
  shape->set_build_params_lsystem(4, 10, text);
  text[0] = 'x';
  EXPECT_STREQ(shape->get_lsystem_program(), "shape tube");
  shape->set_build_params_lsystem(4, 10, shape->get_lsystem_program());
  EXPECT_STREQ(shape->get_lsystem_program(), "shape tube");
}

// ---- solids ----

TEST(MeshParShape, SolidsAreUnweldedWithFlatNormals) {
  const Counts rows[] = {{"tetrahedron", 12, 4},
                         {"octohedron", 24, 8},
                         {"icosahedron", 60, 20},
                         {"dodecahedron", 108, 36},
                         {"cube", 36, 12}};
  for (const Counts& row : rows) {
    const Held<MeshParShape> shape;
    shape->set_shape_type(row.name);
    ASSERT_TRUE(shape->build(nullptr)) << row.name;
    EXPECT_EQ(shape->get_num_vertices(nullptr), row.vertices) << row.name;
    EXPECT_EQ(shape->get_num_faces(nullptr), row.faces) << row.name;
    expect_well_formed(*shape);
    const auto facing = facing_of(*shape, [](const vec3& p) { return p; });
    EXPECT_EQ(facing.along, static_cast<int>(row.faces)) << row.name;
    for (unsigned int i = 0; i < row.faces; ++i) {
      vec3 normal = test::corners_of(*shape, i).normal();
      normal.normalize();
      for (unsigned int corner = 0; corner < 3; ++corner) {
        EXPECT_TRUE(near(shape->get_data()->get_normal_vec3(3 * i + corner), normal, 1e-5f));
      }
    }
  }
}

TEST(MeshParShape, OctahedronSpelledOtherwiseIsRefused) {
  const Held<MeshParShape> shape;
  ASSERT_TRUE(shape->build(nullptr));
  shape->set_shape_type("octahedron");
  EXPECT_FALSE(shape->build_shape());
  EXPECT_EQ(shape->get_num_vertices(nullptr), 25u) << "the old geometry stays";
  shape->update_build_state(true);
  EXPECT_FALSE(shape->build(nullptr));
  EXPECT_FALSE(shape->get_build_state());
}

TEST(MeshParShape, CubeIsCentred) {
  const Held<MeshParShape> shape;
  shape->set_shape_type("cube");
  ASSERT_TRUE(shape->build(nullptr));
  for (unsigned int i = 0; i < 36; ++i) {
    const vec4 p = shape->get_vertex_position(i);
    EXPECT_EQ(vec4(std::fabs(p.x), std::fabs(p.y), std::fabs(p.z), p.w),
              vec4(0.5f, 0.5f, 0.5f, 1.0f));
  }
}

// ---- spheres and rock ----

TEST(MeshParShape, SubdividedSphereSharesItsPoints) {
  const Held<MeshParShape> shape;
  shape->set_shape_type("subdivided_sphere");
  unsigned int faces = 20;
  for (int level = 0; level <= 6; ++level, faces *= 4) {
    shape->set_build_params_subdivided_sphere(level);
    ASSERT_TRUE(shape->build(nullptr)) << level;
    EXPECT_EQ(shape->get_num_vertices(nullptr), faces / 2 + 2) << level;
    EXPECT_EQ(shape->get_num_faces(nullptr), faces) << level;
  }
  expect_well_formed(*shape);
  shape->set_build_params_subdivided_sphere(2);
  ASSERT_TRUE(shape->build(nullptr));
  for (unsigned int i = 0; i < shape->get_num_vertices(nullptr); ++i) {
    EXPECT_NEAR(shape->get_data()->get_position(i).length(), 1.0f, 1e-6f);
  }
  EXPECT_EQ(facing_of(*shape, [](const vec3& p) { return p; }).along, 320);
}

TEST(MeshParShape, MoreThanSixSubdivisionsAreRefused) {
  const Held<MeshParShape> shape;
  for (const char* name : {"subdivided_sphere", "rock"}) {
    shape->set_shape_type(name);
    for (const int levels : {7, 2147483647}) {
      shape->set_build_params_subdivided_sphere(levels);
      EXPECT_FALSE(shape->build(nullptr));
    }
    shape->set_build_params_subdivided_sphere(-5);
    EXPECT_TRUE(shape->build(nullptr)) << "none";
    EXPECT_EQ(shape->get_num_faces(nullptr), 20u);
  }
}

std::vector<vec3> positions_of(MeshParShape& shape) {
  std::vector<vec3> positions;
  for (unsigned int i = 0; i < shape.get_num_vertices(nullptr); ++i) {
    positions.push_back(shape.get_data()->get_position(i));
  }
  return positions;
}

TEST(MeshParShape, SameSeedGivesTheSameRock) {
  const Held<MeshParShape> shape;
  shape->set_shape_type("rock");
  shape->set_build_params_rock(7, 3);
  ASSERT_TRUE(shape->build(nullptr));
  expect_well_formed(*shape);
  const std::vector<vec3> first = positions_of(*shape);
  shape->set_build_params_rock(8, 3);
  ASSERT_TRUE(shape->build(nullptr));
  EXPECT_NE(positions_of(*shape), first);
  shape->set_build_params_rock(7, 3);
  ASSERT_TRUE(shape->build(nullptr));
  EXPECT_EQ(positions_of(*shape), first);
  float lowest = 0.0f;
  for (const vec3& p : first) {
    lowest = std::min(lowest, p.y);
    EXPECT_GT(p.length(), 0.2f);
    EXPECT_LT(p.length(), 1.8f);
  }
  EXPECT_EQ(lowest, -0.4f) << "flat below";
}

TEST(MeshParShape, RandomShapesLeaveTheSharedRandomNumbersAlone) {
  Math::srnd(5);
  const float expected = Math::rnd(1.0f);
  Math::srnd(5);
  const Held<MeshParShape> shape;
  for (const char* name : {"rock", "lsystem"}) {
    shape->set_shape_type(name);
    ASSERT_TRUE(shape->build_shape());
  }
  EXPECT_EQ(Math::rnd(1.0f), expected);
}

// ---- surfaces ----

TEST(MeshParShape, KnotAndSphereNeedThreeSlicesAndStacks) {
  const Held<MeshParShape> shape;
  for (const char* name : {"trefoil_knot", "sphere"}) {
    shape->set_shape_type(name);
    EXPECT_TRUE(shape->set_build_params_trefoil_knot(2, 10));
    EXPECT_FALSE(shape->build(nullptr)) << name;
    EXPECT_TRUE(shape->set_build_params_trefoil_knot(10, 2));
    EXPECT_FALSE(shape->build(nullptr)) << name;
    EXPECT_TRUE(shape->set_build_params_trefoil_knot(3, 3));
    EXPECT_TRUE(shape->build(nullptr)) << name;
  }
}

TEST(MeshParShape, KleinBottleHasNoLimitOfThree) {
  const Held<MeshParShape> shape;
  shape->set_shape_type("klein_bottle");
  shape->set_build_params_klein_bottle(1, 2);
  EXPECT_TRUE(shape->build(nullptr));
  EXPECT_EQ(shape->get_num_vertices(nullptr), 6u);
  for (const int wrong : {0, -1, -2147483647 - 1}) {
    shape->set_build_params_klein_bottle(wrong, 5);
    EXPECT_FALSE(shape->build(nullptr)) << wrong;
    shape->set_build_params_klein_bottle(5, wrong);
    EXPECT_FALSE(shape->build(nullptr)) << wrong;
  }
}

TEST(MeshParShape, SurfacesOfMoreThan65536PointsAreRefused) {
  const Held<MeshParShape> shape;
  shape->set_shape_type("klein_bottle");
  shape->set_build_params_klein_bottle(255, 255);
  EXPECT_TRUE(shape->build(nullptr));
  EXPECT_EQ(shape->get_num_vertices(nullptr), 65536u);
  EXPECT_EQ(shape->get_data()->get_index_bits(), 32);
  shape->set_build_params_klein_bottle(255, 256);
  EXPECT_FALSE(shape->build(nullptr));
  shape->set_build_params_klein_bottle(2147483647, 2147483647);
  EXPECT_FALSE(shape->build(nullptr));
  EXPECT_EQ(shape->get_num_vertices(nullptr), 65536u) << "the old geometry stays";
}

TEST(MeshParShape, SphereHasPolesOnZWithoutDegenerateTriangles) {
  const Held<MeshParShape> shape;
  shape->set_shape_type("sphere");
  shape->set_build_params_parametric_sphere(12, 8);
  ASSERT_TRUE(shape->build(nullptr));
  expect_well_formed(*shape);
  EXPECT_EQ(shape->get_num_vertices(nullptr), 13u * 9u);
  EXPECT_EQ(shape->get_num_faces(nullptr), 2u * 12u * 8u - 24u);
  EXPECT_TRUE(near(shape->get_vertex_position(0), vec4(0, 0, -1, 1), 1e-6f));
  EXPECT_TRUE(near(shape->get_vertex_position(13 * 8), vec4(0, 0, 1, 1), 1e-6f));
  for (unsigned int i = 0; i < shape->get_num_vertices(nullptr); ++i) {
    EXPECT_TRUE(
        near(shape->get_data()->get_normal_vec3(i), shape->get_data()->get_position(i), 1e-3f));
  }
  EXPECT_EQ(facing_of(*shape, [](const vec3& p) { return p; }).against, 0);
}

TEST(MeshParShape, ThinSpheresKeepTheTrianglesBesideThePoles) {
  const Held<MeshParShape> shape;
  shape->set_shape_type("sphere");
  shape->set_build_params_parametric_sphere(3, 16000);
  ASSERT_TRUE(shape->build(nullptr));
  EXPECT_EQ(shape->get_num_faces(nullptr), 2u * 3u * 16000u - 6u);
}

TEST(MeshParShape, KnotIsATubeOfRadius035RoundATrefoil) {
  const Held<MeshParShape> shape;
  shape->set_build_params_trefoil_knot(16, 64);
  ASSERT_TRUE(shape->build(nullptr));
  expect_well_formed(*shape);
  MeshData& data = *shape->get_data();
  for (unsigned int stack = 0; stack <= 64; ++stack) {
    const double t = 6.283185307179586 * stack / 64;
    const vec3 center(static_cast<float>((std::sin(t) + 2 * std::sin(2 * t)) / 3),
                      static_cast<float>((std::cos(t) - 2 * std::cos(2 * t)) / 3),
                      static_cast<float>(-std::sin(3 * t) / 3));
    for (unsigned int slice = 0; slice <= 16; ++slice) {
      const unsigned int i = stack * 17 + slice;
      const vec3 outwards = data.get_position(i) - center;
      ASSERT_NEAR(outwards.length(), 0.35f, 1e-5f);
      ASSERT_GT(outwards.dot(data.get_normal_vec3(i)), 0.3f);
      ASSERT_EQ(data.get_uv0(i),
                vec4(static_cast<float>(slice) / 16.0f, static_cast<float>(stack) / 64.0f, 0, 1));
    }
  }
  EXPECT_TRUE(near(data.get_position(0), data.get_position(64 * 17), 1e-5f)) << "it closes";
}

TEST(MeshParShape, TrianglesLookWhereTheirNormalsPoint) {
  for (const char* name : {"trefoil_knot", "sphere", "rock", "lsystem"}) {
    const Held<MeshParShape> shape;
    shape->set_shape_type(name);
    shape->set_build_params_parametric_sphere(16, 32);
    ASSERT_TRUE(shape->build(nullptr)) << name;
    MeshData& data = *shape->get_data();
    int along = 0;
    int against = 0;
    for (unsigned int i = 0; i < data.get_num_faces(); ++i) {
      vec3 mean;
      for (const unsigned int corner : test::face_of(*shape, i)) {
        mean += data.get_normal_vec3(corner);
      }
      const float facing = test::corners_of(*shape, i).normal().dot(mean);
      if (std::fabs(facing) < 1e-6f) continue;
      ++(facing > 0.0f ? along : against);
    }
    // The first ring behind a tube lies upon its end, turned a little.
    EXPECT_GT(along, (std::string(name) == "lsystem" ? 10 : 50) * against) << name;
  }
}

// ---- programs ----

TEST(MeshParShape, NullAndEmptyProgramsRunTheBuiltInOne) {
  const Held<MeshParShape> shape;
  shape->set_shape_type("lsystem");
  shape->set_build_params_lsystem(5, 30, MeshParShape::get_default_lsystem_program());
  ASSERT_TRUE(shape->build(nullptr));
  expect_well_formed(*shape);
  const std::vector<vec3> expected = positions_of(*shape);
  EXPECT_GT(expected.size(), 50u);
  for (const char* program : {static_cast<const char*>(nullptr), ""}) {
    shape->set_build_params_lsystem(5, 30, program);
    EXPECT_STREQ(shape->get_lsystem_program(), MeshParShape::get_default_lsystem_program());
    ASSERT_TRUE(shape->build(nullptr));
    EXPECT_EQ(positions_of(*shape), expected);
  }
}

TEST(MeshParShape, SeedChoosesAmongTheRules) {
  const Held<MeshParShape> shape;
  shape->set_shape_type("lsystem");
  shape->set_build_params_lsystem(4, 60, nullptr);
  ASSERT_TRUE(shape->build(nullptr));
  const std::vector<vec3> first = positions_of(*shape);
  bool differs = false;
  for (int seed = 2; seed < 6; ++seed) {
    shape->set_build_params_rock(seed, 1);
    ASSERT_TRUE(shape->build(nullptr));
    if (positions_of(*shape) != first) differs = true;
  }
  EXPECT_TRUE(differs);
}

TEST(MeshParShape, ProgramsWithoutPiecesBuildNothing) {
  const LogCapture log(LOG_LEVEL_ERROR);
  const Held<MeshParShape> shape;
  shape->set_shape_type("lsystem");
  shape->set_build_params_lsystem(4, 10, "rule other shape tube");
  EXPECT_FALSE(shape->build(nullptr));
  EXPECT_EQ(log.count("number of vertices is 0."), 1);
}

// ---- life ----

TEST(MeshParShape, CopyTakesOverTheParameters) {
  const Held<MeshParShape> shape;
  shape->set_shape_type("lsystem");
  shape->set_build_params_lsystem(6, 20, "shape tube");
  ASSERT_TRUE(shape->build(nullptr));
  const Held<MeshParShape> copy(*shape);
  EXPECT_EQ(copy->get_data(), shape->get_data());
  EXPECT_STREQ(copy->get_shape_type(), "lsystem");
  EXPECT_STREQ(copy->get_lsystem_program(), "shape tube");
  EXPECT_EQ(copy->get_slices(), 6);
}

TEST(MeshParShape, AnotherFormatHasNoDataAndBuildsNothing) {
  const Held<MeshParShape> shape(static_cast<VERTEX_FORMAT>(1));
  EXPECT_FALSE(shape->build(nullptr));
  EXPECT_FALSE(shape->build_shape());
}

TEST(MeshParShape, CleanupLetsGoOfTheData) {
  test::RecordingRenderer renderer;
  const Held<MeshParShape> shape;
  ASSERT_TRUE(shape->build(nullptr));
  EXPECT_TRUE(shape->_cleanup(&renderer));
  EXPECT_EQ(shape->get_data(), nullptr);
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 1);
}

TEST(MeshParShape, EveryFormOfVerticesIsFilled) {
  for (const test::VertexForm form : test::ALL_FORMS) {
    const Held<MeshParShape> shape;
    test::use_form(*shape->get_data(), form);
    ASSERT_TRUE(shape->build(nullptr));
    expect_well_formed(*shape);
  }
}

}  // namespace
}  // namespace orv
