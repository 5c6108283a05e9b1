#include <orv/core/aligned_array.h>

#include <orv/geometry/vertex.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace orv {
namespace {

template <class T>
std::vector<float> first_floats(const T* element) {
  std::vector<float> floats(sizeof(T) / sizeof(float));
  std::memcpy(floats.data(), static_cast<const void*>(element), sizeof(T));
  return floats;
}

template <class T, class New, class Delete>
void check(New new_array, Delete delete_array, size_t size, std::vector<float> expected) {
  EXPECT_EQ(sizeof(T), size);
  for (const int alignment : {-4, 0, 1, 16, 64, 4096}) {
    unsigned char* raw = nullptr;
    T* array = new_array(5, alignment, &raw);
    ASSERT_NE(array, nullptr);
    ASSERT_NE(raw, nullptr);
    if (alignment > 0) {
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(array) % static_cast<size_t>(alignment), 0u);
    }
    const std::ptrdiff_t offset = reinterpret_cast<unsigned char*>(array) - raw;
    EXPECT_GE(offset, 0);
    EXPECT_LT(offset, alignment > 1 ? alignment : 1);
    EXPECT_EQ(first_floats(array), expected);
    EXPECT_EQ(first_floats(array + 4), expected);
    delete_array(&array, 5, &raw);
    EXPECT_EQ(array, nullptr);
    EXPECT_EQ(raw, nullptr);
  }
}

TEST(AlignedArray, ElementsHaveTheirInitialValues) {
  check<vec2>(AlignedNew_vec2, AlignedDelete_vec2, 8, {0, 0});
  check<vec3>(AlignedNew_vec3, AlignedDelete_vec3, 12, {0, 0, 0});
  check<vec4>(AlignedNew_vec4, AlignedDelete_vec4, 16, {0, 0, 0, 1});
  check<Vertex>(AlignedNew_Vertex, AlignedDelete_Vertex, 64,
                {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1});
  check<Vertex_64>(AlignedNew_Vertex_64, AlignedDelete_Vertex_64, 64,
                   {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1});
  check<Vertex_32>(AlignedNew_Vertex_32, AlignedDelete_Vertex_32, 32, {0, 0, 0, 0, 0, 0, 0, 0});
  check<Vertex_PhysXCloth>(AlignedNew_Vertex_PhysXCloth, AlignedDelete_Vertex_PhysXCloth, 64,
                           {0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0});
  check<unsigned int>(AlignedNew_u32, AlignedDelete_u32, 4, {0});
}

TEST(AlignedArray, CountZeroStillGivesAnAlignedPointer) {
  unsigned char* raw = nullptr;
  vec4* array = AlignedNew_vec4(0, 16, &raw);
  ASSERT_NE(raw, nullptr);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(array) % 16, 0u);
  AlignedDelete_vec4(&array, 0, &raw);
  EXPECT_EQ(array, nullptr);
  EXPECT_EQ(raw, nullptr);
}

TEST(AlignedArray, DeleteWithoutRawOnlyClearsThePointer) {
  unsigned char* raw = nullptr;
  vec2* array = AlignedNew_vec2(3, 1, &raw);
  vec2* kept = array;
  AlignedDelete_vec2(&array, 3, nullptr);
  EXPECT_EQ(array, nullptr);
  kept[2].x = 4.0f;  // the block is still there
  AlignedDelete_vec2(nullptr, 3, &raw);
  EXPECT_EQ(raw, nullptr);
  AlignedDelete_vec2(nullptr, 3, nullptr);
  AlignedDelete_vec2(&array, 3, &raw);
}

}  // namespace
}  // namespace orv
