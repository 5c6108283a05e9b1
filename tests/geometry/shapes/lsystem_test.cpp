#include "geometry/shapes/lsystem.h"

#include <orv/geometry/shapes/mesh_par_shape.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <string>

#include "geometry/shapes/lsystem_program.h"
#include "support/near.h"

namespace orv::detail {
namespace {

using test::near;

constexpr const char* UNEXPECTED_END = "lsystem error: unexpected end of program.";

ParShape grow(const std::string& program, int max_depth = 60, int slices = 4, int seed = 1) {
  ParShape shape;
  EXPECT_TRUE(grow_lsystem(program, {slices, max_depth, seed}, shape));
  return shape;
}

std::string output_of(const std::string& program, ParShape* shape = nullptr) {
  ParShape local;
  testing::internal::CaptureStdout();
  grow_lsystem(program, {}, shape ? *shape : local);
  return testing::internal::GetCapturedStdout();
}

void expect_sound(const ParShape& shape) {
  ASSERT_LE(shape.points.size(), ParShape::MAX_POINTS);
  ASSERT_EQ(shape.normals.size(), shape.points.size());
  ASSERT_EQ(shape.tcoords.size(), shape.points.size());
  for (const vec3& p : shape.points) {
    ASSERT_TRUE(std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z));
  }
  for (const ParShape::Triangle& t : shape.triangles) {
    ASSERT_LT(std::max({t.a, t.b, t.c}), shape.points.size());
  }
}

// ---- statements ----

TEST(LSystem, TubeStandsAtTheFrame) {
  const ParShape shape = grow("shape tube");
  ASSERT_EQ(shape.points.size(), 10u);
  EXPECT_EQ(shape.triangles.size(), 8u);
  EXPECT_TRUE(near(shape.points[0], vec3(1, 0, 0), 1e-6f));
  EXPECT_TRUE(near(shape.points[5], vec3(1, 0, 1), 1e-6f));
}

TEST(LSystem, FrameIsTurnedMovedAndScaledInItsOwnAxes) {
  struct Row {
    const char* program;
    vec3 first;  // where (1, 0, 0) goes
    vec3 top;    // where (1, 0, 1) goes
  };
  const Row rows[] = {
      {"tx 2", vec3(3, 0, 0), vec3(3, 0, 1)},       {"ty 2", vec3(1, 2, 0), vec3(1, 2, 1)},
      {"tz 2", vec3(1, 0, 2), vec3(1, 0, 3)},       {"sx 2", vec3(2, 0, 0), vec3(2, 0, 1)},
      {"sy 2", vec3(1, 0, 0), vec3(1, 0, 1)},       {"sz 2", vec3(1, 0, 0), vec3(1, 0, 2)},
      {"sa 2", vec3(2, 0, 0), vec3(2, 0, 2)},       {"rx 90", vec3(1, 0, 0), vec3(1, -1, 0)},
      {"ry 90", vec3(0, 0, -1), vec3(1, 0, -1)},    {"rz 90", vec3(0, 1, 0), vec3(0, 1, 1)},
      {"rz 90 tx 2", vec3(0, 3, 0), vec3(0, 3, 1)}, {"sa 2 tx 2", vec3(6, 0, 0), vec3(6, 0, 2)}};
  for (const Row& row : rows) {
    const ParShape shape = grow(std::string(row.program) + " shape tube");
    ASSERT_EQ(shape.points.size(), 10u) << row.program;
    EXPECT_TRUE(near(shape.points[0], row.first, 1e-5f)) << row.program;
    EXPECT_TRUE(near(shape.points[5], row.top, 1e-5f)) << row.program;
  }
}

TEST(LSystem, SignMayBeATokenOfItsOwn) {
  const ParShape joined = grow("rx -15 tx -2 shape tube");
  const ParShape parted = grow("rx - 15 tx - 2 shape tube");
  EXPECT_EQ(joined.points, parted.points);
  const ParShape positive = grow("rx 15 tx 2 shape tube");
  EXPECT_NE(joined.points, positive.points);
  EXPECT_EQ(positive.points, grow("rx +15 tx +2 shape tube").points);
  EXPECT_EQ(grow("tx + shape tube").points, grow("shape tube").points) << "a sign is no number";
}

TEST(LSystem, AnythingBlankPartsWords) {
  EXPECT_EQ(grow("tx\t2\r\n\f\vshape\n\ntube").points, grow("tx 2 shape tube").points);
}

TEST(LSystem, UnknownWordsAndPiecesArePassedOver) {
  EXPECT_EQ(grow("grow 7 shape flower shape tube RX 5").points, grow("shape tube").points);
  EXPECT_EQ(grow("tx abc ty 1e999 tz nan shape tube").points, grow("shape tube").points);
}

TEST(LSystem, SolidsArePiecesToo) {
  const ParShape shape = grow("shape cube");
  EXPECT_EQ(shape.triangles.size(), 12u);
  expect_sound(shape);
}

TEST(LSystem, ConnectJoinsTheLastRing) {
  const ParShape shape = grow("shape tube tz 3 sx 2 shape connect");
  ASSERT_EQ(shape.points.size(), 15u);
  EXPECT_EQ(shape.triangles.size(), 16u);
  EXPECT_TRUE(near(shape.points[10], vec3(2, 0, 3), 1e-5f));
  const ParShape::Triangle& t = shape.triangles[8];
  EXPECT_EQ(t.a, 5u) << "the upper ring of the tube";
  EXPECT_EQ(t.b, 6u);
  EXPECT_EQ(t.c, 10u);
  EXPECT_EQ(shape.tcoords[10].y, 2.0f) << "the texture goes on";
}

TEST(LSystem, ConnectWithoutALastRingIsARingAlone) {
  const ParShape shape = grow("shape connect");
  EXPECT_EQ(shape.points.size(), 5u);
  EXPECT_TRUE(shape.triangles.empty());
  EXPECT_EQ(grow("shape connect tz 1 shape connect").triangles.size(), 8u);
}

TEST(LSystem, MirroredFramesKeepTheirTrianglesOutside) {
  const ParShape shape = grow("sx -1 shape tube");
  const ParShape::Triangle& t = shape.triangles[0];
  const vec3 normal =
      (shape.points[t.b] - shape.points[t.a]).cross(shape.points[t.c] - shape.points[t.a]);
  const vec3 center = shape.points[t.a] + shape.points[t.b] + shape.points[t.c];
  EXPECT_GT(normal.x * center.x + normal.y * center.y, 0.0f);
}

TEST(LSystem, NormalsLookOutwardsInEveryFrame) {
  for (const char* frame : {"", "rx 30 ty 2", "sx -1", "sz -2", "sx -1 sy -1", "sa -1", "sx 3"}) {
    const ParShape shape = grow(std::string(frame) + " shape tube tz 2 shape connect");
    ASSERT_EQ(shape.points.size(), 15u);
    for (const std::size_t ring : {0u, 5u, 10u}) {
      vec3 middle;
      for (std::size_t i = 0; i < 4; ++i) middle += shape.points[ring + i] * 0.25f;
      for (std::size_t i = 0; i < 5; ++i) {
        const vec3 outwards = shape.points[ring + i] - middle;
        EXPECT_GT(outwards.dot(shape.normals[ring + i]), 0.3f) << frame;
      }
    }
    for (const ParShape::Triangle& t : shape.triangles) {
      const vec3& a = shape.points[t.a];
      const vec3 face = (shape.points[t.b] - a).cross(shape.points[t.c] - a);
      const vec3 mean = shape.normals[t.a] + shape.normals[t.b] + shape.normals[t.c];
      EXPECT_GT(face.dot(mean), 0.0f) << frame;
    }
  }
}

// ---- rules ----

TEST(LSystem, CallsWorkOnACopyOfTheState) {
  const ParShape shape = grow("call move shape tube rule move tx 5 shape tube");
  ASSERT_EQ(shape.points.size(), 20u);
  EXPECT_TRUE(near(shape.points[0], vec3(6, 0, 0), 1e-5f));
  EXPECT_TRUE(near(shape.points[10], vec3(1, 0, 0), 1e-5f));
}

TEST(LSystem, ExecutionStartsInTheEntry) {
  EXPECT_TRUE(grow("rule other shape tube").points.empty());
  EXPECT_EQ(grow("rule entry shape tube").points.size(), 10u);
  EXPECT_TRUE(grow("").points.empty());
}

TEST(LSystem, CallsOfUnknownRulesDoNothing) {
  EXPECT_EQ(grow("call nobody shape tube").points.size(), 10u);
}

TEST(LSystem, CallsAtTheDepthAreSkipped) {
  const std::string program = "call a rule a shape tube tz 1 call a";
  EXPECT_TRUE(grow(program, 0).points.empty());
  EXPECT_TRUE(grow(program, -3).points.empty());
  EXPECT_EQ(grow(program, 1).points.size(), 10u);
  EXPECT_EQ(grow(program, 7).points.size(), 70u);
}

TEST(LSystem, NumberBehindTheDotIsTheWeightOfARule) {
  std::map<std::size_t, int> counts;
  for (int seed = 0; seed < 2000; ++seed) {
    const ParShape shape =
        grow("call a rule a.1 shape tube rule a.3 shape tube shape tube", 60, 4, seed);
    ++counts[shape.points.size()];
  }
  ASSERT_EQ(counts.size(), 2u);
  EXPECT_NEAR(counts[10], 500, 80);
  EXPECT_NEAR(counts[20], 1500, 80);
}

TEST(LSystem, RulesWithoutWeightAreLeftAloneUnlessAllAre) {
  for (int seed = 0; seed < 50; ++seed) {
    const std::string two = "call a rule a.0 shape cube rule a.2 shape tube rule a.0 shape cube";
    EXPECT_EQ(grow(two, 60, 4, seed).points.size(), 10u);
    const std::string none = "call a rule a.0 shape cube rule a.0 shape tube";
    EXPECT_EQ(grow(none, 60, 4, seed).points.size(), 10u) << "the last one";
  }
}

TEST(LSystem, NamesKeepWhatIsNoWeight) {
  const LSystemProgram program = parse_lsystem("rule a.b x rule a.2 rule a. rule b.1.2");
  EXPECT_THAT(program.names, testing::ElementsAre("a.b", "a", "a.", "b.1"));
  EXPECT_EQ(program.rules[1][0].weight, 2.0);
  EXPECT_EQ(program.rules[0][0].weight, 1.0);
}

TEST(LSystem, BuiltInProgramIsOneOfTwoLimbsThatBranch) {
  EXPECT_STREQ(MeshParShape::get_default_lsystem_program(),
               "  sx 2 sy 2 \n"
               "  ry 90 rx 90 \n"
               "  shape tube rx 15  call rlimb rx - 15 \n"
               "  shape tube rx - 15 call llimb rx 15 \n"
               "  shape tube ry 15  call rlimb ry - 15 \n"
               "  shape tube ry 15  call llimb ry - 15 \n"
               "  rule rlimb \n"
               "   sx 0.925 sy 0.925 tz 1 rx 1.2 \n"
               "   call rlimb2 \n"
               "  rule rlimb2.1 \n"
               "   shape connect \n"
               "   call rlimb \n"
               "  rule rlimb2.1 \n"
               "   rx 15  shape tube call rlimb rx - 15 \n"
               "   rx - 15 shape tube call llimb rx 15 \n"
               "  rule rlimb.1 \n"
               "   call llimb \n"
               "  rule llimb.1 \n"
               "   call rlimb \n"
               "  rule llimb.10 \n"
               "   sx 0.925 sy 0.925 \n"
               "   tz 1 \n"
               "   rx - 1.2 \n"
               "   shape connect \n"
               "   call llimb");
}

TEST(LSystem, BuiltInProgramHasTheRulesItNames) {
  const LSystemProgram program = parse_lsystem(MeshParShape::get_default_lsystem_program());
  EXPECT_THAT(program.names, testing::ElementsAre("entry", "rlimb", "llimb", "rlimb2"));
  ASSERT_EQ(program.rules.size(), 4u);
  EXPECT_EQ(program.rules[1].size(), 2u);
  EXPECT_EQ(program.rules[2].size(), 2u);
  EXPECT_EQ(program.rules[2][1].weight, 10.0);
  EXPECT_EQ(program.rules[3].size(), 2u);
}

// ---- ends and limits ----

TEST(LSystem, TextThatEndsWithinAStatementIsReported) {
  for (const char* program : {"shape", "shape tube tx", "call", "rule", "rx -", "shape tube sa"}) {
    EXPECT_EQ(output_of(program), UNEXPECTED_END) << program;
  }
  EXPECT_EQ(output_of("shape tube tx 1"), "");
  ParShape shape;
  EXPECT_EQ(output_of("shape tube tx", &shape), UNEXPECTED_END);
  EXPECT_EQ(shape.points.size(), 10u) << "what stands before it counts";
}

TEST(LSystem, EveryTruncationOfTheBuiltInProgramIsSound) {
  const std::string program = MeshParShape::get_default_lsystem_program();
  for (std::size_t length = 0; length <= program.size(); ++length) {
    ParShape shape;
    const std::string output = output_of(program.substr(0, length), &shape);
    ASSERT_TRUE(output.empty() || output == UNEXPECTED_END) << length;
    expect_sound(shape);
  }
}

TEST(LSystem, GrowthStopsAt65536Points) {
  const ParShape shape = grow("call a rule a shape tube call a call a", 1000000);
  expect_sound(shape);
  EXPECT_EQ(shape.points.size(), 65530u);
  EXPECT_EQ(shape.triangles.size(), 6553u * 8u);
}

TEST(LSystem, CallsWithoutPiecesEndToo) {
  expect_sound(grow("call a rule a call a call a", 2147483647));
  expect_sound(grow("call a rule a tx 1 rx 1 call a call b rule b call a", 20));
}

TEST(LSystem, FramesThatOverflowEndTheGrowth) {
  const ParShape shape = grow("call a rule a shape tube sa 1e30 tx 1e30 call a", 1000);
  expect_sound(shape);
  EXPECT_GE(shape.points.size(), 10u);
  expect_sound(grow("sa 0 shape tube shape connect"));
}

TEST(LSystem, SlicesOutsideOfTheLimitsAreRefused) {
  ParShape shape;
  for (const int slices : {0, -1, 32768, 2147483647}) {
    EXPECT_FALSE(grow_lsystem("shape tube", {slices, 60, 1}, shape)) << slices;
  }
  EXPECT_TRUE(grow_lsystem("shape tube", {32767, 60, 1}, shape));
  EXPECT_EQ(shape.points.size(), 65536u);
}

}  // namespace
}  // namespace orv::detail
