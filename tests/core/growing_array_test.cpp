#include "core/growing_array.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orv::detail {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(GrowingArray, IsEmptyAtFirst) {
  GrowingArray<int> list;
  EXPECT_TRUE(list.empty());
  EXPECT_THAT(list, IsEmpty());
  list.shrink_to_fit();
  EXPECT_EQ(list.size(), 0u);
}

TEST(GrowingArray, KeepsWhatItWasGivenWhileItGrows) {
  GrowingArray<int> list;
  for (int i = 0; i < 3000000; ++i) list.push_back(i);
  ASSERT_EQ(list.size(), 3000000u);
  for (int i = 0; i < 3000000; ++i) ASSERT_EQ(list[static_cast<std::size_t>(i)], i);
  EXPECT_EQ(list.end() - list.begin(), 3000000);
}

TEST(GrowingArray, GrowsAgainAfterShrinking) {
  GrowingArray<int> list;
  for (int i = 0; i < 5; ++i) list.push_back(i);
  list.shrink_to_fit();
  list.push_back(5);
  EXPECT_THAT(list, ElementsAre(0, 1, 2, 3, 4, 5));
  EXPECT_EQ(list.back(), 5);
}

TEST(GrowingArray, TakesOneOfItsOwnValues) {
  GrowingArray<int> list;
  list.push_back(7);
  for (int i = 0; i < 1000; ++i) list.push_back(list[0]);
  for (const int value : list) EXPECT_EQ(value, 7);
}

}  // namespace
}  // namespace orv::detail
