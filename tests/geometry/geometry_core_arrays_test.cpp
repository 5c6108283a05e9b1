#include <orv/geometry/geometry_core.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "geometry/geometry_support.h"
#include "support/log_capture.h"
#include "support/near.h"

namespace orv {
namespace {

using test::alloc_vertices;
using test::LogCapture;
using test::VertexForm;

const vec4 ONE_TO_FOUR(1, 2, 3, 4);
const vec4 NOTHING(0, 0, 0, 1);

// ---- appending ----

TEST(GeometryCoreArrays, NewArraysAreNamedAndPlacedByIndex) {
  GeometryCore core;
  for (int i = 0; i < 16; ++i) {
    VertexAttribArray* array = core.alloc_new_vertex_attrib_array(2);
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(std::string(array->get_name()), "orvex_Attrib" + std::to_string(i));
    EXPECT_EQ(array->get_location(), i);
    EXPECT_EQ(core.get_vertex_attrib_array(static_cast<unsigned int>(i)), array);
  }
}

TEST(GeometryCoreArrays, SeventeenthArrayIsAWarning) {
  GeometryCore core;
  core.alloc_vertex_attrib_arrays(16, 1);
  const LogCapture log(LOG_LEVEL_WARNING);
  EXPECT_EQ(core.alloc_new_vertex_attrib_array(1), nullptr);
  EXPECT_TRUE(
      log.contains("Geometry core allocation failed for vertex attrib array 17 - max "
                   "number of vertex attribs reached (16)"));
  const LogCapture errors(LOG_LEVEL_ERROR);
  EXPECT_EQ(core.alloc_new_vertex_attrib_array(1), nullptr);
  EXPECT_TRUE(errors.lines().empty()) << "no error";
  EXPECT_EQ(core.num_attrib_arrays, 16u);
}

TEST(GeometryCoreArrays, DimensionAndAlignmentComeFromTheParams) {
  GeometryCore core;
  core.alloc_params.set_vertex_attrib_dim(1, 2);
  core.alloc_params.vertex_alignment = 64;
  EXPECT_EQ(core.alloc_new_vertex_attrib_array(3)->get_element_dim(), 4);
  VertexAttribArray* second = core.alloc_new_vertex_attrib_array(3);
  EXPECT_EQ(second->get_element_dim(), 2);
  EXPECT_EQ(second->alignment, 64);
}

TEST(GeometryCoreArrays, ArraysThatDontFitAreAnError) {
  const LogCapture log(LOG_LEVEL_ERROR);
  GeometryCore core;
  core.alloc_new_vertex_attrib_array(1);
  EXPECT_EQ(core.alloc_new_vertex_attrib_array(0xFFFFFFFFu), nullptr);
  EXPECT_TRUE(
      log.contains("Geometry core allocation failed for vertex attrib array 2 - "
                   "4294967295 vertices required - error: std::bad_alloc"));
  EXPECT_EQ(core.num_attrib_arrays, 1u);
}

TEST(GeometryCoreArrays, AllArraysTogetherAreLimited) {
  const LogCapture log(LOG_LEVEL_ERROR);
  GeometryCore core;
  core.alloc_params.set_vertex_attrib_dim(0, 1);
  ASSERT_NE(core.alloc_new_vertex_attrib_array(4), nullptr);
  EXPECT_EQ(core.alloc_new_vertex_attrib_array(0x7FFFFFFu), nullptr)
      << "2^31 - 16 bytes alone would fit, but not with 16 more in one buffer";
  EXPECT_TRUE(log.contains("error: std::bad_alloc"));
}

TEST(GeometryCoreArrays, AllocatingManyFreesTheOldOnesAndStopsAtSixteen) {
  GeometryCore core;
  core.alloc_new_vertex_attrib_array(9);
  EXPECT_TRUE(core.alloc_vertex_attrib_arrays(20, 2));
  EXPECT_EQ(core.num_attrib_arrays, 16u);
  EXPECT_EQ(core.get_vertex_attrib_array(0)->get_num_elements(), 2);
  const LogCapture log;
  EXPECT_TRUE(core.alloc_vertex_attrib_arrays(3, 0xFFFFFFFFu)) << "true in every case";
  EXPECT_EQ(core.num_attrib_arrays, 0u);
  EXPECT_EQ(log.lines().size(), 1u);
}

TEST(GeometryCoreArrays, ArraysPastTheLastAreNull) {
  GeometryCore core;
  core.alloc_vertex_attrib_arrays(2, 1);
  EXPECT_NE(core.get_vertex_attrib_array(1), nullptr);
  EXPECT_EQ(core.get_vertex_attrib_array(2), nullptr);
  EXPECT_EQ(core.get_vertex_attrib_array(0xFFFFFFFFu), nullptr);
  EXPECT_TRUE(core.free_vertex_attrib_arrays());
  EXPECT_EQ(core.get_vertex_attrib_array(0), nullptr);
}

TEST(GeometryCoreArrays, StandardArraysNeedTheParam) {
  GeometryCore core;
  core.alloc_params.std_vertex_attribs = false;
  EXPECT_FALSE(core.init_standard_vertex_attrib_arrays(3));
  EXPECT_EQ(core.num_attrib_arrays, 0u);
  core.alloc_params.std_vertex_attribs = true;
  EXPECT_TRUE(core.init_standard_vertex_attrib_arrays(3));
  EXPECT_EQ(core.num_attrib_arrays, 4u);
  EXPECT_STREQ(core.get_vertex_attrib_array(1)->get_name(), "orvex_TexCoord0");
}

TEST(GeometryCoreArrays, UserArraysAreAlwaysTrue) {
  const LogCapture log;
  GeometryCore core;
  core.alloc_params.num_user_attribs = 2;
  EXPECT_TRUE(core.init_user_vertex_attribs_arrays(0xFFFFFFFFu));
  EXPECT_EQ(core.num_attrib_arrays, 0u);
  EXPECT_TRUE(core.init_user_vertex_attribs_arrays(3));
  EXPECT_EQ(core.num_attrib_arrays, 2u);
}

// ---- description ----

TEST(GeometryCoreArrays, SeparateArraysAreRenamedAndPlaced) {
  GeometryCore core;
  ASSERT_TRUE(alloc_vertices(core, 1));
  EXPECT_TRUE(core.assign_vertex_attrib_name_and_location(2, "bump", 9));
  EXPECT_STREQ(core.get_vertex_attrib_array(2)->get_name(), "bump");
  EXPECT_EQ(core.get_normal_attrib_location(), 9);
  EXPECT_TRUE(core.assign_vertex_attrib_name_and_location(2, nullptr, 3));
  EXPECT_STREQ(core.get_vertex_attrib_array(2)->get_name(), "bump");
  EXPECT_EQ(core.get_normal_attrib_location(), 3);
  EXPECT_FALSE(core.assign_vertex_attrib_name_and_location(4, "none", 1));
}

TEST(GeometryCoreArrays, InterleavedAttributesAreRenamedAndStillFalse) {
  GeometryCore core;
  ASSERT_TRUE(alloc_vertices(core, 1, VertexForm::INTERLEAVED));
  EXPECT_FALSE(core.assign_vertex_attrib_name_and_location(2, "bump", 9));
  EXPECT_STREQ(core.std_attrib_data[2].name, "bump");
  EXPECT_EQ(core.get_normal_attrib_location(), 9);
  EXPECT_FALSE(core.assign_vertex_attrib_name_and_location(4, "none", 1));
  EXPECT_STREQ(core.std_attrib_data[4].name, "");
}

TEST(GeometryCoreArrays, BuffersAreNullUnlessOfFourComponents) {
  GeometryCore core;
  core.alloc_params.set_vertex_attrib_dim(1, 3);
  core.alloc_vertex_attrib_arrays(2, 2);
  EXPECT_EQ(core.get_vertex_attrib_buffer(0), core.attrib_arrays[0]->data_vec4);
  EXPECT_EQ(core.get_vertex_attrib_buffer_float_ptr(0), core.attrib_arrays[0]->data);
  EXPECT_EQ(core.get_vertex_attrib_buffer(1), nullptr);
  EXPECT_EQ(core.get_vertex_attrib_buffer_float_ptr(1), nullptr);
  EXPECT_EQ(core.get_vertex_attrib_buffer(2), nullptr);
}

// ---- elements ----

TEST(GeometryCoreArrays, ElementsAreSetInThreeForms) {
  GeometryCore core;
  core.alloc_vertex_attrib_arrays(1, 2);
  EXPECT_TRUE(core.set_vertex_attrib_element(0, 1, ONE_TO_FOUR));
  EXPECT_EQ(core.get_vertex_attrib_element(0, 1), ONE_TO_FOUR);
  EXPECT_TRUE(core.set_vertex_attrib_element(0, 1, vec3(5, 6, 7)));
  EXPECT_EQ(core.get_vertex_attrib_element(0, 1), vec4(5, 6, 7, 1));
  EXPECT_TRUE(core.set_vertex_attrib_element(0, 1, 4.0f, 3.0f, 2.0f, 1.0f));
  EXPECT_EQ(core.get_vertex_attrib_element_vec3(0, 1), vec3(4, 3, 2));
}

TEST(GeometryCoreArrays, FailedElementAccessIsFalseOrDefault) {
  GeometryCore core;
  EXPECT_FALSE(core.set_vertex_attrib_element(0, 0, ONE_TO_FOUR));
  core.alloc_vertex_attrib_arrays(1, 2);
  EXPECT_FALSE(core.set_vertex_attrib_element(0, 2, ONE_TO_FOUR));
  EXPECT_FALSE(core.set_vertex_attrib_element(1, 0, ONE_TO_FOUR));
  EXPECT_EQ(core.get_vertex_attrib_element(0, 2), NOTHING);
  EXPECT_EQ(core.get_vertex_attrib_element(1, 0), NOTHING);
  EXPECT_EQ(core.get_vertex_attrib_element_vec3(1, 0), vec3(0, 0, 0));
  core.attrib_arrays[0]->free_data();
  EXPECT_FALSE(core.set_vertex_attrib_element(0, 0, ONE_TO_FOUR)) << "without storage";
  EXPECT_EQ(core.get_vertex_attrib_element(0, 0), NOTHING);
}

// ---- bulk writes ----

TEST(GeometryCoreArrays, BufferUpdateCopiesAsManyAsThereAreVertices) {
  GeometryCore core;
  ASSERT_TRUE(alloc_vertices(core, 2));
  core.alloc_new_vertex_attrib_array(4);
  core.alloc_new_vertex_attrib_array(1);
  const std::vector<vec4> data(4, ONE_TO_FOUR);
  EXPECT_TRUE(core.update_vertex_attrib_buffer(4, data.data()));
  EXPECT_EQ(core.get_vertex_attrib_element(4, 1), ONE_TO_FOUR);
  EXPECT_EQ(core.get_vertex_attrib_element(4, 2), NOTHING) << "the mesh has two vertices";
  EXPECT_FALSE(core.update_vertex_attrib_buffer(5, data.data())) << "fewer elements than vertices";
  EXPECT_FALSE(core.update_vertex_attrib_buffer(6, data.data()));
  EXPECT_FALSE(core.update_vertex_attrib_buffer(4, nullptr));
}

TEST(GeometryCoreArrays, SubBufferUpdateMarksWhatItWrote) {
  GeometryCore core;
  ASSERT_TRUE(alloc_vertices(core, 10));
  VertexAttribArray& array = *core.get_vertex_attrib_array(1);
  array.update_needed(false);
  const std::vector<vec4> data(3, ONE_TO_FOUR);
  EXPECT_TRUE(core.update_vertex_attrib_subbuffer(1, data.data(), 4, 3));
  unsigned int begin = 0;
  unsigned int end = 0;
  array.get_dirty_elements(&begin, &end);
  EXPECT_EQ(begin, 4u);
  EXPECT_EQ(end, 7u);
  EXPECT_TRUE(core.is_update_separate_vertex_arrays_needed());
}

}  // namespace
}  // namespace orv
