#include <orv/math/math.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <thread>

#include <orv/math/vec4.h>

#include "support/near.h"

namespace orv {
namespace {

using test::near;

// ---- random numbers ---------------------------------------------------------------------------

TEST(Math, RandomSeriesIsTheSameEverywhere) {
  Math::srnd(1);
  const int expected[] = {41, 18467, 6334, 26500, 19169};
  for (const int value : expected) EXPECT_EQ(Math::rand15(), value);
}

TEST(Math, RandomStaysInFifteenBits) {
  Math::srnd(7);
  int least = Math::RANDOM_MAX;
  int greatest = 0;
  for (int i = 0; i < 200000; ++i) {
    const int value = Math::rand15();
    ASSERT_GE(value, 0);
    ASSERT_LE(value, Math::RANDOM_MAX);
    least = std::min(least, value);
    greatest = std::max(greatest, value);
  }
  EXPECT_LT(least, 10);
  EXPECT_GT(greatest, Math::RANDOM_MAX - 10);
}

TEST(Math, RndScalesTheSeries) {
  Math::srnd(1);
  EXPECT_EQ(Math::rnd(8), 41.0f * (8.0f / 32768.0f));
  EXPECT_EQ(Math::rnd(-2, 6), 18467.0f * (8.0f / 32768.0f) - 2.0f);
  for (int i = 0; i < 100000; ++i) {
    const float value = Math::rnd(0, 640);
    ASSERT_TRUE(value >= 0 && value < 640) << value;
  }
}

TEST(Math, SeedBringsTheSeriesBack) {
  Math::srnd(1234);
  const float first = Math::rnd(1);
  Math::rnd(1);
  Math::srnd(1234);
  EXPECT_EQ(Math::rnd(1), first);
}

TEST(Math, EachThreadHasItsOwnSeriesThatStartsWithSeed1) {
  Math::srnd(99);
  const int expected = Math::rand15();
  Math::srnd(99);
  int elsewhere = 0;
  std::thread([&] { elsewhere = Math::rand15(); }).join();
  EXPECT_EQ(elsewhere, 41);
  EXPECT_EQ(Math::rand15(), expected);
}

// ---- scalars ----------------------------------------------------------------------------------

TEST(Math, Lerp) {
  EXPECT_EQ(Math::lerp(2, 6, 0), 2.0f);
  EXPECT_EQ(Math::lerp(2, 6, 1), 6.0f);
  EXPECT_EQ(Math::lerp(2, 6, 0.25f), 3.0f);
  EXPECT_EQ(Math::lerp(2, 6, 2), 10.0f);
}

TEST(Math, MiniAndMaxi) {
  EXPECT_EQ(Math::mini(-3, 2), -3);
  EXPECT_EQ(Math::maxi(-3, 2), 2);
  EXPECT_EQ(Math::mini(3u, 0xFFFFFFFFu), 3u);
  EXPECT_EQ(Math::maxi(3u, 0xFFFFFFFFu), 0xFFFFFFFFu);
  EXPECT_EQ(Math::mini(0.5f, -0.5f), -0.5f);
  EXPECT_EQ(Math::maxi(0.5f, -0.5f), 0.5f);
}

TEST(Math, IsPowerOfTwo) {
  EXPECT_FALSE(Math::is_power_of_two(0));
  for (unsigned int bit = 0; bit < 32; ++bit) {
    EXPECT_TRUE(Math::is_power_of_two(1u << bit));
    EXPECT_FALSE(Math::is_power_of_two((5u << bit) | 2u)) << bit;
  }
}

TEST(Math, NextPowerOfTwoIsStrictlyGreater) {
  EXPECT_EQ(Math::next_power_of_two(8), 16u);
  EXPECT_EQ(Math::next_power_of_two(0), 1u);
  EXPECT_EQ(Math::next_power_of_two(1), 2u);
  EXPECT_EQ(Math::next_power_of_two(7), 8u);
  EXPECT_EQ(Math::next_power_of_two(0x7FFFFFFFu), 0x80000000u);
}

TEST(Math, NextPowerOfTwoWrapsToZeroPastTheLast) {
  EXPECT_EQ(Math::next_power_of_two(0x80000000u), 0u);
  EXPECT_EQ(Math::next_power_of_two(0xFFFFFFFFu), 0u);
}

TEST(Math, AlignedSizeTakesTheAlignmentMinusOne) {
  EXPECT_EQ(Math::get_aligned_size(5, 3), 8u);
  EXPECT_EQ(Math::get_aligned_size(8, 3), 8u);
  EXPECT_EQ(Math::get_aligned_size(0, 15), 0u);
  EXPECT_EQ(Math::get_aligned_size(17, 15), 32u);
}

// ---- lines and rays ---------------------------------------------------------------------------

TEST(Math, DistanceFromALine) {
  EXPECT_FLOAT_EQ(Math::distance_point_line(vec4(1, 0, 0), vec4(0, 1, 0), vec4(4, 9, 4)), 5.0f);
  EXPECT_FLOAT_EQ(Math::distance_point_line(vec4(1, 0, 0), vec4(0, 1, 0), vec4(1, -7, 0)), 0.0f);
}

class Triangle : public ::testing::Test {
 protected:
  const vec4 p0_{0, 0, 0};
  const vec4 p1_{1, 0, 0};
  const vec4 p2_{0, 1, 0};

  bool hit(const vec4& origin, const vec4& dir, float* t) const {
    return Math::ray_triangle_intersection(origin, dir, p0_, p1_, p2_, t);
  }
};

TEST_F(Triangle, HitsFromBothSides) {
  float t = 0;
  EXPECT_TRUE(hit(vec4(0.25f, 0.25f, 2), vec4(0, 0, -1), &t));
  EXPECT_EQ(t, 2.0f);
  EXPECT_TRUE(hit(vec4(0.25f, 0.25f, -3), vec4(0, 0, 1), &t));
  EXPECT_EQ(t, 3.0f);
}

TEST_F(Triangle, HitBehindTheOriginGivesANegativeParameter) {
  float t = 0;
  EXPECT_TRUE(hit(vec4(0.25f, 0.25f, 2), vec4(0, 0, 1), &t));
  EXPECT_EQ(t, -2.0f);
}

TEST_F(Triangle, ParameterIsWrittenOnAMissToo) {
  float t = 0;
  EXPECT_FALSE(hit(vec4(5, 5, 2), vec4(0, 0, -1), &t));
  EXPECT_EQ(t, 2.0f);
}

TEST_F(Triangle, ParallelRayHasNoTestOfTheDeterminant) {
  float t = 0;
  EXPECT_FALSE(hit(vec4(0, 0, 1), vec4(1, 0, 0), &t));
  EXPECT_FALSE(std::isfinite(t));
}

TEST_F(Triangle, ParameterMayBeNull) {
  EXPECT_TRUE(hit(vec4(0.25f, 0.25f, 2), vec4(0, 0, -1), nullptr));
  EXPECT_FALSE(hit(vec4(0.75f, 0.75f, 2), vec4(0, 0, -1), nullptr)) << "u + v above 1";
}

TEST_F(Triangle, CornersAndEdgesAreHits) {
  for (const vec4& p : {p0_, p1_, p2_, vec4(0.5f, 0.5f, 0)}) {
    EXPECT_TRUE(hit(vec4(p.x, p.y, 1), vec4(0, 0, -1), nullptr));
  }
}

TEST(Math, SphereCheckTestsTheWholeLine) {
  const vec4 centre(0, 0, -5);
  EXPECT_TRUE(Math::check_ray_sphere_intersection(vec4(), vec4(0, 0, -1), centre, 1));
  EXPECT_TRUE(Math::check_ray_sphere_intersection(vec4(), vec4(0, 0, 1), centre, 1))
      << "a sphere behind the origin";
  EXPECT_TRUE(Math::check_ray_sphere_intersection(vec4(1, 0, 0), vec4(0, 0, 1), centre, 1))
      << "a line that touches";
  EXPECT_FALSE(Math::check_ray_sphere_intersection(vec4(2, 0, 0), vec4(0, 0, 1), centre, 1));
}

TEST(Math, SphereGivesTheSmallerRootAndKeepsW) {
  float t = 0;
  vec4 point(9, 9, 9, 9);
  EXPECT_TRUE(Math::ray_sphere_intersection(vec4(0, 0, 10), vec4(0, 0, -1), vec4(), 2, &t, &point));
  EXPECT_EQ(t, 8.0f);
  EXPECT_EQ(point, vec4(0, 0, 2, 9));
  EXPECT_TRUE(Math::ray_sphere_intersection(vec4(0, 0, 10), vec4(0, 0, 1), vec4(), 2, &t, nullptr));
  EXPECT_EQ(t, -12.0f);
}

TEST(Math, SphereTouchedOnceGivesTheOnlyRoot) {
  float t = 0;
  vec4 point;
  EXPECT_TRUE(Math::ray_sphere_intersection(vec4(2, 0, 6), vec4(0, 0, -1), vec4(), 2, &t, &point));
  EXPECT_EQ(t, 6.0f);
  EXPECT_EQ(point, vec4(2, 0, 0, 1));
  vec4 alone;
  EXPECT_TRUE(
      Math::ray_sphere_intersection(vec4(2, 0, 6), vec4(0, 0, -1), vec4(), 2, nullptr, &alone));
  EXPECT_EQ(alone, point) << "the single root needs no place for the parameter";
}

TEST(Math, SphereMissedTouchesNoOutput) {
  float t = 77;
  vec4 point(7, 7, 7, 7);
  EXPECT_FALSE(Math::ray_sphere_intersection(vec4(3, 0, 6), vec4(0, 0, -1), vec4(), 2, &t, &point));
  EXPECT_EQ(t, 77.0f);
  EXPECT_EQ(point, vec4(7, 7, 7, 7));
}

TEST(Math, SphereWithTwoRootsAndNoParameterGivesTheOriginAsPoint) {
  vec4 point(7, 7, 7, 7);
  EXPECT_TRUE(
      Math::ray_sphere_intersection(vec4(0, 0, 10), vec4(0, 0, -1), vec4(), 2, nullptr, &point));
  EXPECT_EQ(point, vec4(0, 0, 10, 7));
}

struct BoxCase {
  const char* name;
  vec4 origin;
  vec4 dir;
  bool hit;
};

TEST(Math, BoxBySlabs) {
  const BoxCase cases[] = {
      {"from outside", vec4(0, 0, 5), vec4(0, 0, -1), true},
      {"from inside", vec4(0, 0, 0), vec4(1, 1, 1), true},
      {"wholly behind", vec4(0, 0, 5), vec4(0, 0, 1), false},
      {"past the side", vec4(3, 0, 5), vec4(0, 0, -1), false},
      {"along an axis outside of the others", vec4(0, 5, 0), vec4(1, 0, 0), false},
      {"through two faces at a slant", vec4(-3, -2, 0), vec4(1, 1, 0), true},
      {"past the corner", vec4(-5, 0, 0), vec4(1, 2, 0), false},
      {"negative direction", vec4(5, 0.5f, 0.5f), vec4(-1, 0, 0), true},
      {"no direction, outside", vec4(5, 0, 0), vec4(0, 0, 0), false},
  };
  for (const BoxCase& c : cases) {
    EXPECT_EQ(Math::check_ray_aabb_intersection(c.origin, c.dir, vec4(-1, -1, -1), vec4(1, 1, 1)),
              c.hit)
        << c.name;
  }
}

}  // namespace
}  // namespace orv
