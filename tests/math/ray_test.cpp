#include <orv/math/ray.h>

#include <gtest/gtest.h>

namespace orv {
namespace {

TEST(Ray, StartsAsTwoPoints) {
  const Ray ray;
  EXPECT_EQ(ray.origin, vec4(0, 0, 0, 1));
  EXPECT_EQ(ray.direction, vec4(0, 0, 0, 1));
}

TEST(Ray, IsCopiedWithAllLanes) {
  const Ray ray(vec4(1, 2, 3, 4), vec4(5, 6, 7, 8));
  Ray copy;
  copy = ray;
  EXPECT_EQ(copy.origin, vec4(1, 2, 3, 4));
  EXPECT_EQ(Ray(copy).direction, vec4(5, 6, 7, 8));
}

}  // namespace
}  // namespace orv
