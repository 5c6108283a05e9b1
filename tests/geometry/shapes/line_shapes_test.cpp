// What all line shapes have in common, and each of them.
#include <orv/geometry/shapes/bone.h>
#include <orv/geometry/shapes/box.h>
#include <orv/geometry/shapes/circle.h>
#include <orv/geometry/shapes/curve.h>
#include <orv/geometry/shapes/line.h>
#include <orv/geometry/shapes/pyramid.h>
#include <orv/geometry/shapes/sphere.h>
#include <orv/math/bounding_volume.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <set>
#include <utility>
#include <vector>

#include "support/held.h"
#include "support/log_capture.h"
#include "support/near.h"
#include "support/recording_renderer.h"

namespace orv {
namespace {

using test::Held;
using test::near;
using test::RecordingRenderer;

const vec4 BLACK(0, 0, 0, 1);

// ---- in common ----

template <class Shape>
class LineShape : public testing::Test {};

template <class Shape>
constexpr NODE_TYPE TYPE_OF = NODE_TYPE_NODE;
template <>
constexpr NODE_TYPE TYPE_OF<Line> = NODE_TYPE_LINE;
template <>
constexpr NODE_TYPE TYPE_OF<Curve> = NODE_TYPE_CURVE;
template <>
constexpr NODE_TYPE TYPE_OF<Circle> = NODE_TYPE_CIRCLE;
template <>
constexpr NODE_TYPE TYPE_OF<Sphere> = NODE_TYPE_SPHERE;
template <>
constexpr NODE_TYPE TYPE_OF<Pyramid> = NODE_TYPE_PYRAMID;
template <>
constexpr NODE_TYPE TYPE_OF<Bone> = NODE_TYPE_BONE;
template <>
constexpr NODE_TYPE TYPE_OF<Box> = NODE_TYPE_BOX;

using Shapes = testing::Types<Line, Curve, Circle, Sphere, Pyramid, Bone, Box>;
TYPED_TEST_SUITE(LineShape, Shapes);

TYPED_TEST(LineShape, HasItsNodeType) {
  const Held<TypeParam> shape;
  EXPECT_EQ(shape->get_type(), TYPE_OF<TypeParam>);
}

TYPED_TEST(LineShape, BuildsThroughItsSlotOnlyWhenDue) {
  class Counted : public TypeParam {
   public:
    bool _build() override { return ++builds, TypeParam::_build(); }
    int builds = 0;
  };
  const Held<Counted> shape;
  EXPECT_TRUE(shape->get_build_state()) << "defaults are to be built";
  EXPECT_TRUE(shape->build(nullptr));
  EXPECT_FALSE(shape->get_build_state());
  EXPECT_TRUE(shape->build(nullptr));
  EXPECT_EQ(shape->builds, 1);
  shape->update_build_state(true);
  EXPECT_TRUE(shape->build(nullptr));
  EXPECT_EQ(shape->builds, 2);
}

// ---- line ----

TEST(Line, ConstructorMakesTwoWhiteVertices) {
  const Held<Line> line(vec3(1, 2, 3), vec3(4, 5, 6));
  EXPECT_EQ(line->get_num_vertices(nullptr), 2u);
  EXPECT_EQ(line->get_polyline_data()->get_primitive_type(), PRIMITIVE_LINES);
  EXPECT_EQ(line->get_vertex_position(0), vec4(1, 2, 3, 1));
  EXPECT_EQ(line->get_vertex_position(1), vec4(4, 5, 6, 1));
  EXPECT_EQ(line->get_vertex_color(0), vec4(1, 1, 1, 1));
  EXPECT_EQ(line->get_vertex_color(1), vec4(1, 1, 1, 1));
}

TEST(Line, DefaultEndsAreTheOrigin) {
  const Held<Line> line;
  EXPECT_EQ(line->get_num_vertices(nullptr), 2u);
  EXPECT_EQ(line->get_start_position(), vec3());
  EXPECT_EQ(line->get_end_position(), vec3());
}

TEST(Line, SettersStoreAndRewrite) {
  const Held<Line> line;
  line->set_start_position(vec3(1, 2, 3));
  line->set_end_position(4, 5, 6);
  EXPECT_EQ(line->get_start_position(), vec3(1, 2, 3));
  EXPECT_EQ(line->get_end_position(), vec3(4, 5, 6));
  EXPECT_EQ(line->get_vertex_position(0), vec4(1, 2, 3, 1));
  EXPECT_EQ(line->get_vertex_position(1), vec4(4, 5, 6, 1));
  line->set_start_position(7, 8, 9);
  line->set_end_position(vec3(10, 11, 12));
  EXPECT_EQ(line->get_vertex_position(0), vec4(7, 8, 9, 1));
  EXPECT_EQ(line->get_vertex_position(1), vec4(10, 11, 12, 1));
  line->set_start_color(vec4(1, 0, 0, 1));
  line->set_end_color(0, 1, 0, 1);
  EXPECT_EQ(line->get_vertex_color(0), vec4(1, 0, 0, 1));
  EXPECT_EQ(line->get_vertex_color(1), vec4(0, 1, 0, 1));
  line->set_start_color(0, 0, 1, 1);
  line->set_end_color(vec4(1, 1, 0, 1));
  EXPECT_EQ(line->get_vertex_color(0), vec4(0, 0, 1, 1));
  EXPECT_EQ(line->get_vertex_color(1), vec4(1, 1, 0, 1));
}

TEST(Line, FactorsMoveTheVerticesAndKeepTheEnds) {
  const Held<Line> line(vec3(0, 0, 0), vec3(8, 0, 0));
  line->set_start_factor(0.25f);
  line->set_end_factor(0.75f);
  EXPECT_EQ(line->get_vertex_position(0), vec4(2, 0, 0, 1));
  EXPECT_EQ(line->get_vertex_position(1), vec4(6, 0, 0, 1));
  EXPECT_EQ(line->get_start_position(), vec3(0, 0, 0));
  EXPECT_EQ(line->get_end_position(), vec3(8, 0, 0));
}

TEST(Line, BuildPutsTheVerticesToTheStoredEnds) {
  const Held<Line> line;
  EXPECT_TRUE(line->set_params(vec3(1, 0, 0), vec3(2, 0, 0)));
  EXPECT_EQ(line->get_vertex_position(1), vec4(0, 0, 0, 1)) << "not yet";
  line->set_start_color(1, 0, 0, 1);
  EXPECT_TRUE(line->build(nullptr));
  EXPECT_EQ(line->get_vertex_position(1), vec4(2, 0, 0, 1));
  EXPECT_EQ(line->get_vertex_color(0), vec4(1, 0, 0, 1));
  EXPECT_TRUE(line->free_polyline_data());
  EXPECT_TRUE(line->set_build_params(vec3(1, 0, 0), vec3(3, 0, 0)));
  EXPECT_TRUE(line->build(nullptr));
  EXPECT_EQ(line->get_vertex_position(1), vec4(3, 0, 0, 1));
}

// ---- curve ----

TEST(Curve, AllocMakesValuesAndVertices) {
  const Held<Curve> curve;
  EXPECT_EQ(curve->get_num_points(), 0u);
  EXPECT_TRUE(curve->alloc(3));
  EXPECT_EQ(curve->get_num_points(), 3u);
  EXPECT_EQ(curve->get_num_vertices(nullptr), 3u);
  EXPECT_EQ(curve->get_polyline_data()->get_primitive_type(), PRIMITIVE_LINE_STRIP);
  EXPECT_EQ(curve->get_value_vec4(2), vec4(0, 0, 0, 1));
  EXPECT_TRUE(curve->alloc(2));
  EXPECT_EQ(curve->get_num_points(), 2u);
}

TEST(Curve, FailedAllocationIsLoggedAndLeavesNoPoints) {
  const test::LogCapture log(LOG_LEVEL_ERROR);
  const Held<Curve> curve;
  ASSERT_TRUE(curve->alloc(2));
  EXPECT_FALSE(curve->alloc(0xFFFFFFFFu));
  EXPECT_EQ(log.count("std::bad_alloc exception caught - what: std::bad_alloc"), 1);
  EXPECT_EQ(curve->get_num_points(), 0u);
  EXPECT_FALSE(curve->alloc(0));
  EXPECT_EQ(curve->get_num_points(), 0u);
}

TEST(Curve, ValuesGoToTheVertexToo) {
  const Held<Curve> curve;
  ASSERT_TRUE(curve->alloc(4));
  const float floats[4] = {13, 14, 15, 16};
  EXPECT_TRUE(curve->set_value(0, vec3(1, 2, 3)));
  EXPECT_TRUE(curve->set_value(1, vec4(4, 5, 6, 7)));
  EXPECT_TRUE(curve->set_value(2, 8, 9, 10, 11));
  EXPECT_TRUE(curve->set_value(3, floats));
  const vec4 expected[4] = {{1, 2, 3, 1}, {4, 5, 6, 7}, {8, 9, 10, 11}, {13, 14, 15, 16}};
  for (unsigned int i = 0; i < 4; ++i) {
    EXPECT_EQ(curve->get_value_vec4(i), expected[i]);
    EXPECT_EQ(curve->get_value_vec3(i), expected[i].get_vec3());
    EXPECT_EQ(*curve->get_value_vec4_ptr(i), expected[i]);
    EXPECT_EQ(curve->get_value_xyzw_ptr(i)[3], expected[i].w);
    EXPECT_EQ(curve->get_vertex_position(i), expected[i]);
  }
}

TEST(Curve, OutOfRangeIsRefused) {
  const Held<Curve> curve;
  ASSERT_TRUE(curve->alloc(1));
  EXPECT_FALSE(curve->set_value(1, vec3()));
  EXPECT_FALSE(curve->set_value(1, vec4()));
  EXPECT_FALSE(curve->set_value(1, 0, 0, 0, 0));
  EXPECT_FALSE(curve->set_value(0, static_cast<const float*>(nullptr)));
  EXPECT_EQ(curve->get_value_vec4(1), vec4(0, 0, 0, 1));
  EXPECT_EQ(curve->get_value_vec3(1), vec3());
  EXPECT_EQ(curve->get_value_vec4_ptr(1), nullptr);
  EXPECT_EQ(curve->get_value_xyzw_ptr(1), nullptr);
}

TEST(Curve, FreeReleasesTheValues) {
  const Held<Curve> curve;
  ASSERT_TRUE(curve->alloc(3));
  EXPECT_TRUE(curve->free());
  EXPECT_EQ(curve->get_num_points(), 0u);
  EXPECT_EQ(curve->get_value_vec4_ptr(0), nullptr);
  EXPECT_TRUE(curve->free());
}

TEST(Curve, ParametersAreBuiltIntoVertices) {
  const Held<Curve> curve;
  const vec4 values[2] = {{1, 2, 3, 1}, {4, 5, 6, 1}};
  EXPECT_TRUE(curve->set_params(2, values));
  EXPECT_TRUE(curve->build(nullptr));
  EXPECT_EQ(curve->get_vertex_position(1), vec4(4, 5, 6, 1));
  EXPECT_TRUE(curve->set_build_params(1, curve->get_value_vec4_ptr(1))) << "its own values";
  EXPECT_EQ(curve->get_value_vec4(0), vec4(4, 5, 6, 1));
  EXPECT_TRUE(curve->build(nullptr));
  EXPECT_EQ(curve->get_num_vertices(nullptr), 1u);
  EXPECT_TRUE(curve->set_params(0, nullptr));
  EXPECT_TRUE(curve->build(nullptr));
}

// ---- circle ----

TEST(Circle, DefaultIsBuiltOfTenBlackSegments) {
  const Held<Circle> circle;
  EXPECT_EQ(circle->get_radius(), 10.0f);
  EXPECT_EQ(circle->get_num_segments(), 10u);
  ASSERT_TRUE(circle->build(nullptr));
  EXPECT_EQ(circle->get_num_vertices(nullptr), 20u);
  EXPECT_EQ(circle->get_polyline_data()->get_primitive_type(), PRIMITIVE_LINES);
  for (unsigned int i = 0; i < 20; ++i) EXPECT_EQ(circle->get_vertex_color(i), BLACK);
}

TEST(Circle, TenSegmentsStepInTheConstant001745328) {
  const Held<Circle> circle;
  ASSERT_TRUE(circle->build(nullptr));
  const float step = 36.0f * 0.01745328f;
  EXPECT_EQ(circle->get_vertex_position(0), vec4(10, 0, 0, 1));
  for (unsigned int i = 0; i < 20; ++i) {
    const double angle = static_cast<double>(static_cast<float>((i + 1) / 2) * step);
    EXPECT_EQ(circle->get_vertex_position(i).x, 10.0f * static_cast<float>(std::cos(angle)));
    EXPECT_EQ(circle->get_vertex_position(i).y, 10.0f * static_cast<float>(std::sin(angle)));
  }
  EXPECT_NEAR(circle->get_vertex_position(19).y, -4.6e-5f, 1e-5f) << "it does not quite close";
}

TEST(Circle, RadiusAndColorChangeAtOnce) {
  const Held<Circle> circle;
  EXPECT_TRUE(circle->set_params(3, 8, 1, 0, 0, 1));
  ASSERT_TRUE(circle->build(nullptr));
  EXPECT_EQ(circle->get_vertex_color(15), vec4(1, 0, 0, 1));
  EXPECT_TRUE(circle->update_radius(5));
  EXPECT_EQ(circle->get_vertex_position(0), vec4(5, 0, 0, 1));
  EXPECT_TRUE(circle->update_color(0, 1, 0, 1));
  EXPECT_EQ(circle->get_vertex_color(15), vec4(0, 1, 0, 1));
  EXPECT_TRUE(circle->set_build_params(2, 4, 0, 1, 0, 1));
  EXPECT_TRUE(circle->update_radius(7)) << "of segments that are not built yet";
  EXPECT_EQ(circle->get_vertex_position(0), vec4(5, 0, 0, 1));
  ASSERT_TRUE(circle->build(nullptr));
  EXPECT_EQ(circle->get_num_vertices(nullptr), 8u);
  EXPECT_EQ(circle->get_vertex_position(0), vec4(7, 0, 0, 1));
}

TEST(Circle, NoSegmentsAndTooManyAreRefused) {
  const test::LogCapture log(LOG_LEVEL_ERROR);
  const Held<Circle> circle;
  for (const unsigned int segments : {0u, 0x80000000u, 0xFFFFFFFFu}) {
    circle->set_params(1, segments, 0, 0, 0, 1);
    EXPECT_FALSE(circle->build(nullptr)) << segments;
    EXPECT_EQ(circle->get_num_vertices(nullptr), 0u);
  }
  EXPECT_EQ(log.lines().size(), 3u);
}

// ---- box ----

TEST(Box, TwelveEdgesStandAroundTheOrigin) {
  const Held<Box> box;
  EXPECT_TRUE(box->set_params(2, 4, 6, 1, 0, 0, 1));
  ASSERT_TRUE(box->build(nullptr));
  ASSERT_EQ(box->get_num_vertices(nullptr), 24u);
  EXPECT_EQ(box->get_polyline_data()->get_primitive_type(), PRIMITIVE_LINES);
  std::set<std::pair<std::array<float, 3>, std::array<float, 3>>> edges;
  for (unsigned int i = 0; i < 24; i += 2) {
    const vec4 a = box->get_vertex_position(i);
    const vec4 b = box->get_vertex_position(i + 1);
    EXPECT_EQ(vec4(std::fabs(a.x), std::fabs(a.y), std::fabs(a.z), a.w), vec4(1, 2, 3, 1));
    const int differing = (a.x != b.x) + (a.y != b.y) + (a.z != b.z);
    EXPECT_EQ(differing, 1) << "edge " << i / 2;
    const std::array<float, 3> p{a.x, a.y, a.z}, q{b.x, b.y, b.z};
    edges.insert({std::min(p, q), std::max(p, q)});
    EXPECT_EQ(box->get_vertex_color(i), vec4(1, 0, 0, 1));
    if (i >= 16) continue;
    EXPECT_EQ(a.y, i < 8 ? -2.0f : 2.0f) << "the bottom first, then the top";
  }
  EXPECT_EQ(edges.size(), 12u) << "no edge twice";
}

TEST(Box, DefaultsAreTenByTenByTenAndBlack) {
  const Held<Box> box;
  ASSERT_TRUE(box->build(nullptr));
  EXPECT_EQ(box->get_width(), 10.0f);
  EXPECT_EQ(box->get_height(), 10.0f);
  EXPECT_EQ(box->get_depth(), 10.0f);
  EXPECT_EQ(box->get_center(), vec4(0, 0, 0, 1));
  EXPECT_EQ(box->get_vertex_position(0), vec4(-5, -5, -5, 1));
  EXPECT_EQ(box->get_vertex_color(0), BLACK);
}

TEST(Box, SizeIsRewrittenAroundTheOrigin) {
  const Held<Box> box;
  EXPECT_TRUE(box->update_size(1, 1, 1)) << "before the build";
  EXPECT_FALSE(box->_update_geometry());
  ASSERT_TRUE(box->build(nullptr));
  EXPECT_EQ(box->get_vertex_position(0), vec4(-0.5f, -0.5f, -0.5f, 1));
  EXPECT_TRUE(box->update_size(2, 4, 6));
  EXPECT_EQ(box->get_vertex_position(0), vec4(-1, -2, -3, 1));
  EXPECT_TRUE(box->update_color(0, 0, 1, 1));
  EXPECT_EQ(box->get_vertex_color(23), vec4(0, 0, 1, 1));
}

TEST(Box, VolumeGivesCentreAndSize) {
  BoundingVolume volume;
  volume.set_box(vec4(1, 2, 3, 1), vec4(3, 6, 9, 1));
  const Held<Box> box;
  ASSERT_TRUE(box->build(nullptr));
  EXPECT_TRUE(box->update_size_from_bv(volume));
  EXPECT_EQ(box->get_center(), vec4(2, 4, 6, 1));
  EXPECT_EQ(box->get_width(), 2.0f);
  EXPECT_EQ(box->get_height(), 4.0f);
  EXPECT_EQ(box->get_depth(), 6.0f);
  EXPECT_EQ(box->get_vertex_position(0), vec4(1, 2, 3, 1));
  EXPECT_TRUE(box->_update_geometry_v2(vec4(0, 0, 0, 1)));
  EXPECT_EQ(box->get_vertex_position(0), vec4(-1, -2, -3, 1));
  EXPECT_TRUE(box->_update_geometry()) << "the stored centre";
  EXPECT_EQ(box->get_vertex_position(0), vec4(1, 2, 3, 1));
}

// ---- pyramid ----

TEST(Pyramid, EightEdgesMeetAtTheTip) {
  const Held<Pyramid> pyramid;
  EXPECT_TRUE(pyramid->set_params_v2(2, 5, 1, 1, 0, 0, 1));
  ASSERT_TRUE(pyramid->build(nullptr));
  ASSERT_EQ(pyramid->get_num_vertices(nullptr), 16u);
  for (unsigned int i = 0; i < 8; ++i) {
    EXPECT_EQ(pyramid->get_vertex_position(i).y, 1.0f) << "base";
    EXPECT_EQ(std::fabs(pyramid->get_vertex_position(i).x), 1.0f);
    EXPECT_EQ(std::fabs(pyramid->get_vertex_position(i).z), 1.0f);
  }
  for (unsigned int i = 8; i < 16; i += 2) {
    EXPECT_EQ(pyramid->get_vertex_position(i).y, 1.0f);
    EXPECT_EQ(pyramid->get_vertex_position(i + 1), vec4(0, 6, 0, 1));
  }
  EXPECT_EQ(pyramid->get_vertex_color(15), vec4(1, 0, 0, 1));
}

TEST(Pyramid, ParametersWithoutAnOffsetZeroIt) {
  const Held<Pyramid> pyramid;
  EXPECT_EQ(pyramid->get_base_size(), 4.0f);
  EXPECT_EQ(pyramid->get_length(), 10.0f);
  EXPECT_TRUE(pyramid->set_build_params_v2(2, 5, 1, 0, 0, 0, 1));
  EXPECT_EQ(pyramid->get_base_offset(), 1.0f);
  EXPECT_TRUE(pyramid->set_params(2, 5, 0, 0, 0, 1));
  EXPECT_EQ(pyramid->get_base_offset(), 0.0f);
  EXPECT_TRUE(pyramid->set_build_params(2, 6, 0, 0, 0, 1));
  EXPECT_EQ(pyramid->get_length(), 6.0f);
}

TEST(Pyramid, LengthMovesTheTip) {
  const Held<Pyramid> pyramid;
  EXPECT_TRUE(pyramid->update_length(3)) << "before the build";
  ASSERT_TRUE(pyramid->build(nullptr));
  EXPECT_EQ(pyramid->get_vertex_position(9), vec4(0, 3, 0, 1));
  EXPECT_TRUE(pyramid->update_length(7));
  EXPECT_EQ(pyramid->get_vertex_position(15), vec4(0, 7, 0, 1));
  EXPECT_TRUE(pyramid->update_color(0, 1, 0, 1));
  EXPECT_EQ(pyramid->get_vertex_color(0), vec4(0, 1, 0, 1));
}

// ---- bone ----

TEST(Bone, HasThreeCirclesAndAPyramid) {
  const Held<Bone> bone;
  ASSERT_TRUE(bone->build(nullptr));
  ASSERT_EQ(bone->get_num_vertices(nullptr), 76u);
  EXPECT_EQ(bone->get_vertex_position(0), vec4(2, 0, 0, 1));
  EXPECT_EQ(bone->get_vertex_position(40), vec4(0, 2, 0, 1));
  for (unsigned int i = 0; i < 20; ++i) {
    EXPECT_EQ(bone->get_vertex_position(i).z, 0.0f);
    EXPECT_EQ(bone->get_vertex_position(20 + i).y, 0.0f);
    EXPECT_EQ(bone->get_vertex_position(40 + i).x, 0.0f);
  }
  for (unsigned int i = 60; i < 68; ++i) {
    const vec4 p = bone->get_vertex_position(i);
    EXPECT_EQ(vec4(std::fabs(p.x), p.y, std::fabs(p.z), p.w), vec4(1, 2, 1, 1));
  }
  for (const unsigned int tip : {69u, 71u, 73u, 75u}) {
    EXPECT_EQ(bone->get_vertex_position(tip), vec4(0, 12, 0, 1));
    EXPECT_EQ(bone->get_vertex_position(tip - 1).y, 2.0f);
  }
  EXPECT_EQ(bone->get_vertex_color(75), BLACK);
}

TEST(Bone, LengthZeroLeavesTheCirclesAlone) {
  const Held<Bone> bone;
  EXPECT_TRUE(bone->set_params(2, 10, 0, 1, 0, 0, 1));
  ASSERT_TRUE(bone->build(nullptr));
  EXPECT_EQ(bone->get_num_vertices(nullptr), 60u);
  EXPECT_FALSE(bone->update_bone_length(5));
  EXPECT_EQ(bone->get_length(), 0.0f);
}

TEST(Bone, LengthMovesTheTips) {
  const Held<Bone> bone;
  EXPECT_TRUE(bone->update_bone_length(4)) << "before the build";
  ASSERT_TRUE(bone->build(nullptr));
  EXPECT_EQ(bone->get_vertex_position(69), vec4(0, 6, 0, 1));
  EXPECT_TRUE(bone->update_bone_length(8));
  for (const unsigned int tip : {69u, 71u, 73u, 75u}) {
    EXPECT_EQ(bone->get_vertex_position(tip), vec4(0, 10, 0, 1));
  }
  EXPECT_TRUE(bone->update_color(0, 1, 0, 1));
  EXPECT_EQ(bone->get_vertex_color(0), vec4(0, 1, 0, 1));
  EXPECT_EQ(bone->get_vertex_color(75), vec4(0, 1, 0, 1));
}

TEST(Bone, FewerSegmentsThanThreeBecomeThree) {
  const Held<Bone> bone;
  EXPECT_TRUE(bone->set_build_params(2, 1, 10, 0, 0, 0, 1));
  ASSERT_TRUE(bone->build(nullptr));
  EXPECT_EQ(bone->get_num_vertices(nullptr), 34u);
  EXPECT_EQ(bone->get_num_segments(), 3u);
}

TEST(Bone, TooManySegmentsAreRefused) {
  const test::LogCapture log(LOG_LEVEL_ERROR);
  const Held<Bone> bone;
  bone->set_params(2, 0xFFFFFFFFu, 10, 0, 0, 0, 1);
  EXPECT_FALSE(bone->build(nullptr));
  EXPECT_EQ(bone->get_num_vertices(nullptr), 0u);
  EXPECT_EQ(log.lines().size(), 1u);
}

// ---- sphere ----

TEST(Sphere, MakesItsCircleOnFirstBuild) {
  const Held<Sphere> sphere;
  EXPECT_FALSE(sphere->is_type_of(NODE_TYPE_POLYLINE));
  EXPECT_EQ(sphere->get_circle(), nullptr);
  EXPECT_TRUE(sphere->set_params(3, 12, 1, 0, 0, 1));
  ASSERT_TRUE(sphere->build(nullptr));
  Circle* circle = sphere->get_circle();
  ASSERT_NE(circle, nullptr);
  EXPECT_EQ(circle->get_parent(), sphere.get());
  EXPECT_EQ(circle->get_radius(), 3.0f);
  EXPECT_EQ(circle->get_num_vertices(nullptr), 24u);
  EXPECT_EQ(circle->get_vertex_color(0), vec4(1, 0, 0, 1));
  EXPECT_TRUE(sphere->set_build_params(4, 8, 1, 0, 0, 1));
  ASSERT_TRUE(sphere->build(nullptr));
  EXPECT_EQ(sphere->get_circle(), circle);
  EXPECT_EQ(circle->get_num_vertices(nullptr), 16u);
}

TEST(Sphere, DefaultIsBlackWithoutAxisColors) {
  const Held<Sphere> sphere;
  EXPECT_EQ(sphere->get_radius(), 10.0f);
  EXPECT_EQ(sphere->get_num_segments(), 10u);
  EXPECT_EQ(sphere->get_color(), BLACK);
  for (const int axis : {0, 1, 2}) EXPECT_FALSE(sphere->get_rgb_color_state(axis));
  sphere->enable_rgb_color(true);
  for (const int axis : {0, 1, 2}) EXPECT_TRUE(sphere->get_rgb_color_state(axis));
  EXPECT_FALSE(sphere->get_rgb_color_state(3));
  EXPECT_FALSE(sphere->get_rgb_color_state(-1));
}

TEST(Sphere, ChangesReachTheCircleAtOnce) {
  const Held<Sphere> sphere;
  EXPECT_TRUE(sphere->update_radius(1)) << "before the build";
  EXPECT_TRUE(sphere->update_color(1, 1, 0, 1));
  ASSERT_TRUE(sphere->build(nullptr));
  EXPECT_EQ(sphere->get_circle()->get_vertex_position(0), vec4(1, 0, 0, 1));
  EXPECT_TRUE(sphere->update_radius(2));
  EXPECT_TRUE(sphere->update_color(0, 1, 1, 1));
  EXPECT_EQ(sphere->get_circle()->get_vertex_position(0), vec4(2, 0, 0, 1));
  EXPECT_EQ(sphere->get_circle()->get_vertex_color(0), vec4(0, 1, 1, 1));
}

/// Notes the axis that the circle stands on, and its colour, at each draw.
class CircleWatcher : public RecordingRenderer {
 public:
  explicit CircleWatcher(Sphere* watched) : sphere(watched) {}
  bool geometry_vbo_draw(GeometryCore* geometry) override {
    const vec4 axis = sphere->get_circle()->get_absolute_transform() * vec4(0, 0, 1, 0);
    axes.push_back(axis);
    colors.push_back(geometry->get_color(0));
    return true;
  }
  Sphere* sphere;
  std::vector<vec4> axes;
  std::vector<vec4> colors;
};

TEST(Sphere, DrawsTheCircleAroundEachAxis) {
  const Held<Sphere> sphere;
  CircleWatcher renderer(sphere);
  sphere->_render(&renderer);
  EXPECT_TRUE(renderer.axes.empty()) << "before the build";
  sphere->_render(nullptr);
  ASSERT_TRUE(sphere->build(nullptr));
  sphere->render(&renderer, nullptr);
  ASSERT_EQ(renderer.axes.size(), 3u);
  EXPECT_TRUE(near(renderer.axes[0], vec4(0, 0, 1, 0), 1e-6f));
  EXPECT_NEAR(std::fabs(renderer.axes[1].x), 1.0f, 1e-6f);
  EXPECT_NEAR(std::fabs(renderer.axes[2].y), 1.0f, 1e-6f);
  for (const vec4& color : renderer.colors) EXPECT_EQ(color, BLACK);
}

TEST(Sphere, AxisColorsAreRedGreenBlueAndGoAgain) {
  const Held<Sphere> sphere;
  CircleWatcher renderer(sphere);
  ASSERT_TRUE(sphere->build(nullptr));
  sphere->enable_rgb_color(true);
  sphere->_render(&renderer);
  ASSERT_EQ(renderer.colors.size(), 3u);
  EXPECT_EQ(renderer.colors[0], vec4(0, 0, 1, 1)) << "round Z";
  EXPECT_EQ(renderer.colors[1], vec4(1, 0, 0, 1)) << "round X";
  EXPECT_EQ(renderer.colors[2], vec4(0, 1, 0, 1)) << "round Y";
  sphere->enable_rgb_color(false);
  renderer.colors.clear();
  sphere->_render(&renderer);
  for (const vec4& color : renderer.colors) EXPECT_EQ(color, BLACK);
}

TEST(Sphere, CleanupReleasesTheCircleWithTheRenderer) {
  RecordingRenderer renderer;
  const Held<Sphere> sphere;
  ASSERT_TRUE(sphere->build(nullptr));
  EXPECT_TRUE(sphere->cleanup(&renderer, nullptr));
  EXPECT_EQ(sphere->get_circle(), nullptr);
  EXPECT_EQ(sphere->get_num_children(), 0u);
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 1);
  sphere->update_build_state(true);
  EXPECT_TRUE(sphere->build(nullptr)) << "it can be built again";
}

TEST(Sphere, CircleTakenOutOfTheTreeStaysWithTheSphere) {
  const Held<Sphere> sphere;
  ASSERT_TRUE(sphere->build(nullptr));
  sphere->remove_child(sphere->get_circle());
  RecordingRenderer renderer;
  sphere->_render(&renderer);
  EXPECT_EQ(renderer.count("geometry_vbo_draw"), 3);
}

}  // namespace
}  // namespace orv
