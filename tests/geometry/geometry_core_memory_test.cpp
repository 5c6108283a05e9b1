#include <orv/geometry/geometry_core.h>

#include <gtest/gtest.h>

#include <vector>

#include "geometry/geometry_support.h"
#include "support/log_capture.h"
#include "support/near.h"

namespace orv {
namespace {

using test::ALL_FORMS;
using test::alloc_vertices;
using test::is_separate;
using test::LogCapture;
using test::VertexForm;

const vec4 NOTHING(0, 0, 0, 1);

vec4 number(unsigned int i) {
  const float x = static_cast<float>(i);
  return vec4(x, x + 0.25f, x + 0.5f, x + 0.75f);
}

void fill(GeometryCore& core) {
  for (unsigned int i = 0; i < core.num_vertices; ++i) {
    core.set_position(i, number(i + 100));
    core.set_uv0(i, number(i + 200));
    core.set_normal(i, number(i + 300));
    core.set_color(i, number(i + 400));
  }
}

// ---- sizes ----

TEST(GeometryCoreMemory, SizesFollowTheForm) {
  for (const VertexForm form : ALL_FORMS) {
    GeometryCore core;
    core.alloc_params.num_user_attribs = 1;
    core.alloc_params.set_vertex_attrib_dim(is_separate(form) ? 4 : 0, 2);
    ASSERT_TRUE(alloc_vertices(core, 3, form));
    EXPECT_EQ(core.get_interleaved_vertex_array_size(), is_separate(form) ? 0u : 192u);
    EXPECT_EQ(core.get_separate_vertex_arrays_size(), is_separate(form) ? 192u + 24u : 24u);
    EXPECT_EQ(core.get_total_vertex_buffer_size(), 216u);
  }
}

TEST(GeometryCoreMemory, SizesThatExceedThirtyTwoBitsDontWrap) {
  GeometryCore core;
  core.alloc_vertex_attrib_arrays(3, 1);
  // As arrays are that were allocated one by one, without their memory.
  for (unsigned int i = 0; i < 3; ++i) core.attrib_arrays[i]->num_elements = 0x7FFFFFF;
  EXPECT_EQ(core.get_separate_vertex_arrays_size(), 0xFFFFFFFFu);
  EXPECT_EQ(core.get_total_vertex_buffer_size(), 0xFFFFFFFFu);
  vec4 memory[3];
  EXPECT_FALSE(core.separate_vertex_arrays_to_memory(memory));
  EXPECT_FALSE(core.separate_vertex_arrays_from_memory(memory));
  EXPECT_TRUE(core.vertex_arrays_to_memory(memory)) << "true whatever happened";
  for (unsigned int i = 0; i < 3; ++i) core.attrib_arrays[i]->num_elements = 1;
}

TEST(GeometryCoreMemory, IndexBufferFollowsTheFaces) {
  GeometryCore core;
  core.alloc_face_data(3, false);
  EXPECT_EQ(core.get_total_index_buffer_size(), 18u);
  EXPECT_EQ(core.get_index_buffer_data_ptr(), core.faces_u16);
  core.alloc_face_data(3, true);
  EXPECT_EQ(core.get_total_index_buffer_size(), 36u);
  EXPECT_EQ(core.get_index_buffer_data_ptr(), core.faces_u32);
  core.alloc_face_data_v3(3, PRIMITIVE_LINES);
  EXPECT_EQ(core.get_total_index_buffer_size(), 12u);
  EXPECT_EQ(core.get_index_buffer_data_ptr(), core.indices);
  core.free_face_data();
  EXPECT_EQ(core.get_index_buffer_data_ptr(), nullptr);
}

// ---- to and from memory ----

TEST(GeometryCoreMemory, MemoryHoldsInterleavedVerticesThenArrays) {
  GeometryCore core;
  core.alloc_params.num_user_attribs = 1;
  ASSERT_TRUE(alloc_vertices(core, 2, VertexForm::INTERLEAVED));
  fill(core);
  core.set_vertex_attrib_element(0, 1, number(7));
  std::vector<vec4> memory(core.get_total_vertex_buffer_size() / 16);
  EXPECT_TRUE(core.vertex_arrays_to_memory(memory.data()));
  EXPECT_EQ(memory[0], number(100));
  EXPECT_EQ(memory[1], number(200));
  EXPECT_EQ(memory[7], number(401));
  EXPECT_EQ(memory[8], NOTHING);
  EXPECT_EQ(memory[9], number(7));
}

TEST(GeometryCoreMemory, MemoryHoldsArraysInOrder) {
  GeometryCore core;
  ASSERT_TRUE(alloc_vertices(core, 2));
  fill(core);
  std::vector<vec4> memory(8);
  EXPECT_TRUE(core.separate_vertex_arrays_to_memory(memory.data()));
  EXPECT_EQ(memory[1], number(101));
  EXPECT_EQ(memory[2], number(200));
  EXPECT_EQ(memory[7], number(401));
}

TEST(GeometryCoreMemory, ReadingMemoryRestoresVerticesAndMarksThem) {
  for (const VertexForm form : ALL_FORMS) {
    GeometryCore source;
    GeometryCore target;
    ASSERT_TRUE(alloc_vertices(source, 3, form));
    ASSERT_TRUE(alloc_vertices(target, 3, form));
    fill(source);
    std::vector<unsigned char> memory(source.get_total_vertex_buffer_size());
    source.vertex_arrays_to_memory(memory.data());
    target.update_interleaved_vertex_array_set_state(false);
    EXPECT_FALSE(target.is_update_vertex_buffer_needed());
    EXPECT_TRUE(target.vertex_arrays_from_memory(memory.data()));
    EXPECT_TRUE(target.is_update_vertex_buffer_needed());
    EXPECT_EQ(target.is_update_separate_vertex_arrays_needed(), is_separate(form));
    for (unsigned int i = 0; i < 3; ++i) {
      EXPECT_EQ(target.get_position_4f(i), number(i + 100));
      EXPECT_EQ(target.get_color(i), number(i + 400));
    }
  }
}

TEST(GeometryCoreMemory, NullAndMissingArraysAreFalseButNotForBothTogether) {
  GeometryCore core;
  ASSERT_TRUE(alloc_vertices(core, 2));
  vec4 memory[8];
  EXPECT_FALSE(core.interleaved_vertex_array_to_memory(memory));
  EXPECT_FALSE(core.interleaved_vertex_array_from_memory(memory));
  EXPECT_FALSE(core.separate_vertex_arrays_to_memory(nullptr));
  EXPECT_FALSE(core.separate_vertex_arrays_from_memory(nullptr));
  EXPECT_TRUE(core.vertex_arrays_to_memory(nullptr));
  EXPECT_TRUE(core.vertex_arrays_from_memory(nullptr));
}

// ---- copies ----

TEST(GeometryCoreMemory, CopyOfSeparateVerticesDoublesTheArrays) {
  GeometryCore source;
  ASSERT_TRUE(alloc_vertices(source, 3));
  fill(source);
  GeometryCore target;
  EXPECT_TRUE(target.copy_vertex_data(&source, true));
  EXPECT_EQ(target.num_attrib_arrays, 8u);
  for (unsigned int i = 0; i < 4; ++i) {
    EXPECT_EQ(target.get_vertex_attrib_element(i, 2), NOTHING) << "contents are not carried over";
    const VertexAttribArray* doubled = target.get_vertex_attrib_array(i + 4);
    EXPECT_STREQ(doubled->name, target.get_vertex_attrib_array(i)->name);
    EXPECT_EQ(doubled->location, static_cast<int>(i));
    EXPECT_TRUE(doubled->update_needed_);
    EXPECT_TRUE(doubled->copied_from_own);
    EXPECT_FALSE(target.get_vertex_attrib_array(i)->copied_from_own);
  }
}

TEST(GeometryCoreMemory, DoubledArraysHoldThisGeometrysBytes) {
  GeometryCore source;
  GeometryCore target;
  ASSERT_TRUE(alloc_vertices(source, 2));
  ASSERT_TRUE(alloc_vertices(target, 2));
  fill(target);
  target.get_vertex_attrib_array(1)->set_divisor(3);
  EXPECT_TRUE(target.copy_vertex_attrib_arrays(&source));
  EXPECT_EQ(target.get_vertex_attrib_element(4, 1), number(101));
  EXPECT_EQ(target.get_vertex_attrib_array(5)->divisor, 3);
}

TEST(GeometryCoreMemory, ArraysOfDifferingSizeAreAppendedEmpty) {
  GeometryCore source;
  GeometryCore target;
  ASSERT_TRUE(alloc_vertices(source, 3));
  ASSERT_TRUE(alloc_vertices(target, 2));
  fill(target);
  EXPECT_TRUE(target.copy_vertex_attrib_arrays(&source));
  EXPECT_EQ(target.num_attrib_arrays, 8u);
  EXPECT_EQ(target.get_vertex_attrib_element(4, 1), NOTHING);
  EXPECT_STREQ(target.get_vertex_attrib_array(4)->name, "orvex_Attrib4");
  EXPECT_EQ(target.get_vertex_attrib_array(4)->location, 4);
}

TEST(GeometryCoreMemory, CopiesPastTheSixteenthArrayAreSkipped) {
  const LogCapture log;
  GeometryCore source;
  source.alloc_params.num_user_attribs = 8;
  ASSERT_TRUE(alloc_vertices(source, 2));
  GeometryCore target;
  EXPECT_TRUE(target.copy_vertex_data(&source, true));
  EXPECT_EQ(target.num_attrib_arrays, 16u);
  EXPECT_EQ(log.count("max number of vertex attribs reached"), 8);
}

TEST(GeometryCoreMemory, CopyOfInterleavedVerticesCarriesThemOver) {
  GeometryCore source;
  ASSERT_TRUE(alloc_vertices(source, 3, VertexForm::INTERLEAVED_ALIGNED));
  fill(source);
  GeometryCore target;
  EXPECT_TRUE(target.copy_vertex_data(&source, true));
  EXPECT_EQ(target.get_position_4f(2), number(102));
  EXPECT_EQ(target.get_color(0), number(400));
  EXPECT_EQ(target.get_vertex_alignment(), 32);
}

TEST(GeometryCoreMemory, CopyWithoutReallocationStopsAtTheSmallerCount) {
  GeometryCore source;
  GeometryCore target;
  ASSERT_TRUE(alloc_vertices(source, 5, VertexForm::INTERLEAVED));
  ASSERT_TRUE(alloc_vertices(target, 2, VertexForm::INTERLEAVED));
  fill(source);
  EXPECT_TRUE(target.copy_vertex_data(&source, false));
  EXPECT_EQ(target.num_vertices, 2u);
  EXPECT_EQ(target.get_position_4f(1), number(101));
}

TEST(GeometryCoreMemory, VerticesNeedASource) {
  GeometryCore core;
  GeometryCore empty;
  EXPECT_FALSE(core.copy_vertex_data(nullptr, true));
  EXPECT_FALSE(core.copy_vertex_data(&empty, true));
  EXPECT_FALSE(core.copy_vertex_attrib_arrays(nullptr));
  EXPECT_FALSE(core.copy_vertex_attrib_arrays(&empty));
}

TEST(GeometryCoreMemory, CopyingItselfEnds) {
  const LogCapture log;
  GeometryCore core;
  ASSERT_TRUE(alloc_vertices(core, 2));
  EXPECT_TRUE(core.copy_vertex_attrib_arrays(&core));
  EXPECT_EQ(core.num_attrib_arrays, 16u);
  EXPECT_TRUE(core.copy_vertex_data(&core, true));
}

TEST(GeometryCoreMemory, FacesAreCopiedWithNormalsAndMaterials) {
  for (const bool wide : {false, true}) {
    GeometryCore source;
    source.alloc_face_data(2, wide);
    source.set_face_indices(1, 4, 5, 6);
    source.face_normals[1] = number(1);
    source.face_materials[1] = 9;
    GeometryCore target;
    target.alloc_face_data(2, wide);
    EXPECT_TRUE(target.copy_face_data(&source, false));
    if (wide) {
      EXPECT_EQ(target.faces_u32[1].c, 6u);
    } else {
      EXPECT_EQ(target.faces_u16[1].c, 6);
    }
    EXPECT_EQ(target.face_normals[1], number(1));
    EXPECT_EQ(target.face_materials[1], 9u);
  }
}

TEST(GeometryCoreMemory, FacesOfAnotherWidthAreNotCopied) {
  GeometryCore source;
  source.alloc_face_data(1, true);
  source.set_face_indices(0, 4, 5, 6);
  source.face_materials[0] = 9;
  GeometryCore target;
  EXPECT_TRUE(target.copy_face_data(&source, true)) << "makes 16-bit faces without vertices";
  EXPECT_EQ(target.index_bits, 16);
  EXPECT_EQ(target.faces_u16[0].a, 0);
  EXPECT_EQ(target.face_materials[0], 9u);
}

TEST(GeometryCoreMemory, GenericIndicesAreNotCopied) {
  GeometryCore source;
  source.alloc_face_data_v3(3, PRIMITIVE_LINES);
  source.indices[2] = 8;
  GeometryCore target;
  EXPECT_TRUE(target.copy_face_data(&source, true));
  EXPECT_EQ(target.indices, nullptr);
  EXPECT_EQ(target.num_faces, 3u);
}

TEST(GeometryCoreMemory, FacesNeedASourceOfTheSameCount) {
  GeometryCore source;
  GeometryCore target;
  EXPECT_FALSE(target.copy_face_data(nullptr, true));
  EXPECT_FALSE(target.copy_face_data(&source, true)) << "no faces";
  source.alloc_face_data(2, false);
  target.alloc_face_data(3, false);
  EXPECT_FALSE(target.copy_face_data(&source, false));
  EXPECT_TRUE(target.copy_face_data(&source, true));
}

}  // namespace
}  // namespace orv
