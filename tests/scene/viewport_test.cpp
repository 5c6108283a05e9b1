#include <orv/scene/viewport.h>

#include <gtest/gtest.h>

namespace orv {
namespace {

TEST(Viewport, StartsEmptyAndTakesFourNumbers) {
  Viewport viewport;
  EXPECT_EQ(viewport.x, 0);
  EXPECT_EQ(viewport.y, 0);
  EXPECT_EQ(viewport.width, 0);
  EXPECT_EQ(viewport.height, 0);
  viewport.set(1, 2, 3, 4);
  const Viewport copy = viewport;
  EXPECT_EQ(copy.x, 1);
  EXPECT_EQ(copy.y, 2);
  EXPECT_EQ(copy.width, 3);
  EXPECT_EQ(copy.height, 4);
}

}  // namespace
}  // namespace orv
