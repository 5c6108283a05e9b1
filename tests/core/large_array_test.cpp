#include "core/large_array.h"

#include <orv/math/vec4.h>

#include <gtest/gtest.h>

#include <memory>
#include <numeric>
#include <vector>

namespace orv::detail {
namespace {

TEST(LargeArray, ElementsStartAsNewOnesDo) {
  for (const std::size_t n : {std::size_t{0}, std::size_t{3}, LARGE_BLOCK / sizeof(vec4),
                              LARGE_BLOCK / sizeof(vec4) + 1}) {
    const std::unique_ptr<vec4[]> elements(new_large_array<vec4>(n));
    for (std::size_t i = 0; i < n; ++i) ASSERT_EQ(elements[i], vec4()) << n << " " << i;
    const std::unique_ptr<unsigned int[]> numbers(new_large_array<unsigned int>(n));
    for (std::size_t i = 0; i < n; ++i) ASSERT_EQ(numbers[i], 0u) << n << " " << i;
  }
}

TEST(LargeArray, WhatDoesNotFitThrows) {
#ifdef ORV_TEST_SANITIZED_ALLOCATION
  GTEST_SKIP() << "the sanitizer ends the program in place of throwing";
#endif
  volatile std::size_t n = static_cast<std::size_t>(-1) / sizeof(vec4) - 1;
  EXPECT_THROW(delete[] new_large_array<vec4>(n), std::bad_alloc);
  n = static_cast<std::size_t>(-1);
  EXPECT_THROW(delete[] new_large_array<vec4>(n), std::bad_alloc);
}

TEST(LargeArray, ContainersGrowIntoLargeBlocks) {
  std::vector<int, LargeArrayAllocator<int>> numbers;
  for (int i = 0; i < 3000000; ++i) numbers.push_back(i);
  EXPECT_EQ(numbers.back(), 2999999);
  EXPECT_EQ(std::accumulate(numbers.begin(), numbers.end(), 0LL), 2999999LL * 3000000 / 2);
}

TEST(LargeArray, AdviceOnAnyBlockIsHarmless) {
  advise_large_pages(nullptr, 0);
  std::vector<char> bytes(LARGE_BLOCK + 5, 'x');
  advise_large_pages(bytes.data() + 1, bytes.size() - 2);
  EXPECT_EQ(bytes.front(), 'x');
  EXPECT_EQ(bytes.back(), 'x');
}

}  // namespace
}  // namespace orv::detail
