#include <orv/geometry/vertex_attrib_array.h>

#include <orv/geometry/geometry_core.h>

#include <orv/math/vec2.h>
#include <orv/math/vec3.h>
#include <orv/math/vec4.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <new>
#include <string>

namespace orv {
namespace {

// ---- storage ----

TEST(VertexAttribArray, StartsWithoutStorage) {
  const VertexAttribArray array;
  EXPECT_EQ(array.num_elements, 0);
  EXPECT_EQ(array.element_dim, 0);
  EXPECT_EQ(array.element_size, 0);
  EXPECT_EQ(array.location, -1);
  EXPECT_EQ(array.divisor, 0);
  EXPECT_FALSE(array.update_needed_);
  EXPECT_EQ(array.alignment, 0);
  EXPECT_STREQ(array.name, "");
  EXPECT_EQ(array.data, nullptr);
  EXPECT_EQ(array.raw_data, nullptr);
  EXPECT_EQ(array.get_size(), 0u);
}

struct Dimension {
  int dim;
  vec4 initial;   // as the accessor widens a fresh element
  vec4 stored;    // as it widens (1, 2, 3, 4)
  int alignment;  // what it keeps of a wanted alignment of 64
};

const Dimension DIMENSIONS[] = {
    {4, vec4(0, 0, 0, 1), vec4(1, 2, 3, 4), 64},
    {3, vec4(0, 0, 0, 1), vec4(1, 2, 3, 1), 64},
    {2, vec4(0, 0, 0, 1), vec4(1, 2, 0, 1), 64},
    {1, vec4(0, 0, 0, 1), vec4(1, 0, 0, 1), 0},
};

TEST(VertexAttribArray, ElementsAreWidenedAndNarrowedByDimension) {
  for (const Dimension& row : DIMENSIONS) {
    VertexAttribArray array;
    ASSERT_TRUE(array.alloc_data_v2(row.dim, 3, 0)) << row.dim;
    EXPECT_EQ(array.get_element_dim(), row.dim);
    EXPECT_EQ(array.get_element_size(), row.dim * 4);
    EXPECT_EQ(array.get_num_elements(), 3);
    EXPECT_EQ(array.get_size(), static_cast<unsigned int>(row.dim) * 12u);
    EXPECT_EQ(array.get_element_vec4(2), row.initial) << row.dim;
    array.set_element_vec4(2, vec4(1, 2, 3, 4));
    EXPECT_EQ(array.get_element_vec4(2), row.stored) << row.dim;
    EXPECT_EQ(array.get_element_vec4(1), row.initial) << row.dim;
  }
}

TEST(VertexAttribArray, OnlyTheTypedPointerOfTheDimensionIsSet) {
  for (const Dimension& row : DIMENSIONS) {
    VertexAttribArray array;
    ASSERT_TRUE(array.alloc_data_v2(row.dim, 2, 0));
    EXPECT_NE(array.get_data_ptr(), nullptr);
    EXPECT_EQ(array.get_data_vec4_ptr() != nullptr, row.dim == 4);
    EXPECT_EQ(array.get_data_vec3_ptr() != nullptr, row.dim == 3);
    EXPECT_EQ(array.get_data_vec2_ptr() != nullptr, row.dim == 2);
    EXPECT_EQ(array.get_data_f32_ptr() != nullptr, row.dim == 1);
  }
}

TEST(VertexAttribArray, AlignedStorageKeepsItsBaseApart) {
  for (const Dimension& row : DIMENSIONS) {
    VertexAttribArray array;
    ASSERT_TRUE(array.alloc_data_v2(row.dim, 5, 64));
    EXPECT_EQ(array.alignment, 64);
    if (row.alignment > 0) {
      EXPECT_EQ(reinterpret_cast<std::uintptr_t>(array.data) % 64, 0u);
      EXPECT_NE(array.raw_data, nullptr);
    } else {
      EXPECT_EQ(array.raw_data, nullptr) << "one component is never aligned";
    }
  }
}

TEST(VertexAttribArray, PlainStorageHasNoBase) {
  VertexAttribArray array;
  ASSERT_TRUE(array.alloc_data(5, -16));
  EXPECT_EQ(array.raw_data, nullptr);
  EXPECT_NE(array.data, nullptr);
}

TEST(VertexAttribArray, OneComponentStartsAtZero) {
  VertexAttribArray array;
  ASSERT_TRUE(array.alloc_data_v2(1, 1000, 0));
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(array.data_f32[i], 0.0f);
}

TEST(VertexAttribArray, OtherDimensionsAreRefused) {
  VertexAttribArray array;
  for (const int dim : {0, -1, 5, 100}) EXPECT_FALSE(array.alloc_data_v2(dim, 3, 0)) << dim;
  EXPECT_EQ(array.data, nullptr);
}

TEST(VertexAttribArray, CountZeroFallsBackToTheStoredCountWithFourComponents) {
  VertexAttribArray array;
  EXPECT_FALSE(array.alloc_data(0, 16)) << "no count is stored yet";
  EXPECT_FALSE(array.alloc_data_v2(3, 0, 16));
  ASSERT_TRUE(array.alloc_data_v2(3, 6, 32));
  ASSERT_TRUE(array.alloc_data_v2(2, 0, 0));
  EXPECT_EQ(array.num_elements, 6);
  EXPECT_EQ(array.element_dim, 4);
  EXPECT_EQ(array.alignment, 32);
}

TEST(VertexAttribArray, AllocatingAgainReplacesTheStorage) {
  VertexAttribArray array;
  ASSERT_TRUE(array.alloc_data(4, 16));
  array.set_element_vec4(0, vec4(9, 9, 9, 9));
  ASSERT_TRUE(array.alloc_data_v2(2, 8, 0));
  EXPECT_EQ(array.data_vec4, nullptr);
  EXPECT_EQ(array.raw_data, nullptr);
  EXPECT_EQ(array.get_size(), 64u);
  EXPECT_FALSE(array.is_update_needed());
}

TEST(VertexAttribArray, MoreThanTheLargestArrayThrowsAndKeepsTheOldContents) {
  VertexAttribArray array;
  ASSERT_TRUE(array.alloc_data(2, 0));
  array.set_element_vec4(1, vec4(1, 2, 3, 4));
  EXPECT_THROW(array.alloc_data(0xFFFFFFFFu, 0), std::bad_alloc);
  EXPECT_THROW(array.alloc_data(0x8000000u, 16), std::bad_alloc) << "2^31 bytes";
  EXPECT_THROW(array.alloc_data_v2(1, 0x20000000u, 0), std::bad_alloc);
  EXPECT_EQ(array.num_elements, 2);
  EXPECT_EQ(array.get_element_vec4(1), vec4(1, 2, 3, 4));
}

TEST(VertexAttribArray, FreeDataKeepsLocationDivisorAndName) {
  VertexAttribArray array;
  array.alloc_data(4, 16);
  array.set_name_and_loc("speed", 7);
  array.set_divisor(2);
  array.update_needed(true);
  array.free_data();
  EXPECT_EQ(array.num_elements, 0);
  EXPECT_EQ(array.element_dim, 0);
  EXPECT_EQ(array.element_size, 0);
  EXPECT_EQ(array.data, nullptr);
  EXPECT_EQ(array.raw_data, nullptr);
  EXPECT_EQ(array.alignment, 0);
  EXPECT_FALSE(array.is_update_needed());
  EXPECT_EQ(array.location, 7);
  EXPECT_EQ(array.divisor, 2);
  EXPECT_STREQ(array.get_name(), "speed");
}

TEST(VertexAttribArray, ResetForgetsStorageWithoutFreeingIt) {
  VertexAttribArray array;
  array.alloc_data(4, 0);
  array.set_location(3);
  vec4* kept = array.data_vec4;
  array.reset();
  EXPECT_EQ(array.data, nullptr);
  EXPECT_EQ(array.num_elements, 0);
  EXPECT_EQ(array.location, 3);
  kept[3] = vec4(1, 1, 1, 1);  // still there
  delete[] kept;
}

// ---- elements ----

TEST(VertexAttribArray, ElementsOutOfRangeReadAsDefaultAndAreNotWritten) {
  VertexAttribArray array;
  EXPECT_EQ(array.get_element_vec4(0), vec4(0, 0, 0, 1));
  array.set_element_vec4(0, vec4(1, 1, 1, 1));
  array.alloc_data(2, 0);
  array.set_element_vec4(2, vec4(1, 1, 1, 1));
  array.set_element_vec4(0xFFFFFFFFu, vec4(1, 1, 1, 1));
  EXPECT_FALSE(array.is_update_needed());
  EXPECT_EQ(array.get_element_vec4(2), vec4(0, 0, 0, 1));
}

TEST(VertexAttribArray, CopyTakesBytesLocationDivisorAndName) {
  VertexAttribArray source;
  source.alloc_data(2, 0);
  source.set_element_vec4(1, vec4(1, 2, 3, 4));
  source.set_name_and_loc("wind", 9);
  source.divisor = 4;
  VertexAttribArray target;
  target.alloc_data(2, 16);
  EXPECT_TRUE(target.copy(&source));
  EXPECT_EQ(target.get_element_vec4(1), vec4(1, 2, 3, 4));
  EXPECT_EQ(target.get_location(), 9);
  EXPECT_EQ(target.get_divisor(), 4);
  EXPECT_STREQ(target.get_name(), "wind");
  EXPECT_TRUE(target.is_update_needed());
}

TEST(VertexAttribArray, CopyNeedsAnotherArrayOfTheSameSize) {
  VertexAttribArray source;
  VertexAttribArray target;
  EXPECT_FALSE(target.copy(nullptr));
  EXPECT_FALSE(target.copy(&source)) << "no storage";
  source.alloc_data(2, 0);
  EXPECT_FALSE(target.copy(&source)) << "no storage here";
  target.alloc_data(3, 0);
  EXPECT_FALSE(target.copy(&source)) << "sizes differ";
  EXPECT_FALSE(target.copy(&target));
  EXPECT_FALSE(target.is_update_needed());
}

// ---- description ----

TEST(VertexAttribArray, EmptyNamesKeepTheOldOne) {
  VertexAttribArray array;
  array.set_name("first");
  array.set_name(nullptr);
  array.set_name("");
  EXPECT_STREQ(array.get_name(), "first");
  array.set_name_and_loc("", 5);
  EXPECT_STREQ(array.get_name(), "first");
  EXPECT_EQ(array.get_attrib_location(), 5);
}

TEST(VertexAttribArray, NamesAreCutAtSixtyThreeCharacters) {
  VertexAttribArray array;
  array.set_name(std::string(200, 'n').c_str());
  EXPECT_EQ(std::strlen(array.get_name()), 63u);
  array.set_name("short");
  EXPECT_STREQ(array.get_name(), "short");
}

// ---- upload marks ----

void expect_dirty(const VertexAttribArray& array, unsigned int begin, unsigned int end) {
  unsigned int first = 99;
  unsigned int last = 99;
  array.get_dirty_elements(&first, &last);
  EXPECT_EQ(first, begin);
  EXPECT_EQ(last, end);
}

/// An array whose first upload, which is always whole, is over.
void make_uploaded(VertexAttribArray& array, unsigned int n) {
  array.alloc_data(n, 0);
  array.update_needed(false);
}

TEST(VertexAttribArray, FirstUploadIsWhole) {
  VertexAttribArray array;
  array.alloc_data(10, 0);
  expect_dirty(array, 0, 0);
  array.set_element_vec4(3, vec4());
  expect_dirty(array, 0, 10);
}

TEST(VertexAttribArray, WrittenElementsAreTheDirtyRange) {
  VertexAttribArray array;
  make_uploaded(array, 10);
  expect_dirty(array, 0, 0);
  array.set_element_vec4(3, vec4());
  array.set_element_vec4(6, vec4());
  expect_dirty(array, 3, 7);
  array.update_needed(false);
  expect_dirty(array, 0, 0);
}

TEST(VertexAttribArray, MarkedByHandUploadIsWhole) {
  VertexAttribArray array;
  make_uploaded(array, 10);
  array.set_element_vec4(3, vec4());
  array.update_needed(true);
  expect_dirty(array, 0, 10);
}

TEST(VertexAttribArray, UploadsAreWholeOnceAPointerWasHandedOut) {
  VertexAttribArray array;
  make_uploaded(array, 10);
  array.get_data_ptr();
  expect_dirty(array, 0, 0);
  array.set_element_vec4(3, vec4());
  expect_dirty(array, 0, 10);
  array.update_needed(false);
  array.set_element_vec4(4, vec4());
  expect_dirty(array, 0, 10);
}

TEST(VertexAttribArray, LayoutChangesAreCounted) {
  GeometryCore geometry;
  const unsigned int& serial = geometry.layout_serial;
  VertexAttribArray array;
  array.owner = &geometry;
  const unsigned int fresh = serial;
  array.alloc_data(2, 0);
  const unsigned int allocated = serial;
  EXPECT_GT(allocated, fresh);
  array.set_location(4);
  EXPECT_EQ(serial, allocated + 1);
  array.set_location(4);
  array.set_divisor(0);
  EXPECT_EQ(serial, allocated + 1) << "nothing changed";
  array.set_divisor(1);
  EXPECT_EQ(serial, allocated + 2);
  array.free_data();
  EXPECT_EQ(serial, allocated + 3);
  array.free_data();
  EXPECT_EQ(serial, allocated + 3) << "nothing was left";
  array.alloc_data(1, 0);
  vec4* kept = array.data_vec4;
  const unsigned int again = serial;
  array.reset();
  EXPECT_EQ(serial, again + 1);
  delete[] kept;
}

TEST(VertexAttribArray, MarksReachTheGeometry) {
  GeometryCore geometry;
  geometry.set_alloc_params_num_vertices(4);
  ASSERT_TRUE(geometry.alloc_vertex_data());
  VertexAttribArray* array = geometry.get_vertex_attrib_array(2);
  geometry.attribs_marked = false;
  array->update_needed(false);
  EXPECT_FALSE(geometry.attribs_marked);
  array->set_element_vec4(1, vec4());
  EXPECT_TRUE(geometry.attribs_marked);
  geometry.attribs_marked = false;
  array->update_needed(true);
  EXPECT_TRUE(geometry.attribs_marked);
  geometry.attribs_marked = false;
  const vec4 values[4];
  EXPECT_TRUE(geometry.update_normal_buffer(values));
  EXPECT_TRUE(geometry.attribs_marked);
}

// ---- small descriptions ----

template <class Array>
void expect_small_array(int size) {
  Array array;
  EXPECT_EQ(array.location, -1);
  EXPECT_STREQ(array.name, "");
  EXPECT_EQ(array.get_element_size(), size);
  int something = 0;
  array.num_elements = 3;
  array.data = &something;
  array.location = 5;
  array.reset();
  EXPECT_EQ(array.num_elements, 0);
  EXPECT_EQ(array.data, nullptr);
  EXPECT_EQ(array.location, 5);
}

TEST(VertexAttribArray_2f, ElementsTakeEightBytes) { expect_small_array<VertexAttribArray_2f>(8); }

TEST(VertexAttribArray_3f, ElementsTakeTwelveBytes) {
  expect_small_array<VertexAttribArray_3f>(12);
}

TEST(VertexAttribData, DescribesFourComponentsWithoutLocation) {
  const VertexAttribData data;
  EXPECT_EQ(data.element_dim, 4);
  EXPECT_EQ(data.element_size, 16);
  EXPECT_EQ(data.location, -1);
  EXPECT_STREQ(data.name, "");
}

}  // namespace
}  // namespace orv
