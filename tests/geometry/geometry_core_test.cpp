#include <orv/geometry/geometry_core.h>

#include <orv/gpu/gpu_buffer_data.h>

#include <gtest/gtest.h>

#include <thread>

#include "geometry/geometry_support.h"

namespace orv {
namespace {

using test::alloc_vertices;
using test::VertexForm;

TEST(GeometryCore, HasItsDefaults) {
  const GeometryCore core;
  EXPECT_EQ(core.primitive_type, PRIMITIVE_TRIANGLES);
  EXPECT_NE(core.vb_, nullptr);
  EXPECT_EQ(core.vb_source, core.vb_);
  EXPECT_FALSE(core.vb_uploaded);
  EXPECT_EQ(core.vertex_buffer_type, 0);
  EXPECT_EQ(core.vertex_buffer_usage, 1);
  EXPECT_FALSE(core.ib_uploaded);
  EXPECT_EQ(core.vertex_buffer_id, 0u);
  EXPECT_EQ(core.mapped_ptr, nullptr);
  EXPECT_EQ(core.num_vertices, 0u);
  EXPECT_EQ(core.draw_start, 0);
  EXPECT_EQ(core.draw_count, 0);
  EXPECT_TRUE(core.std_vertex_attribs);
  EXPECT_TRUE(core.separate_vertex_arrays);
  EXPECT_EQ(core.vertex_alignment, 0);
  EXPECT_FALSE(core.use_gl2_built_in_vertex_attribs);
  EXPECT_EQ(core.vertex_particles, nullptr);
  EXPECT_EQ(core.ibo, 0u);
  EXPECT_EQ(core.index_buffer_usage, 1);
  EXPECT_EQ(core.num_faces, 0u);
  EXPECT_EQ(core.index_bits, 32);
  EXPECT_FALSE(core.render_wireframe_quad);
  EXPECT_EQ(core.num_quad_edges, 0u);
  EXPECT_FALSE(core.ib_update_faces_list_needed);
  EXPECT_FALSE(core.tessellation);
  EXPECT_TRUE(core.use_generic_vertex_attribs);
  EXPECT_EQ(core.ref_count, 0);
  EXPECT_EQ(core.vertex_format, VERTEX_FORMAT_DEFAULT);
  EXPECT_EQ(core.num_attrib_arrays, 0u);
  EXPECT_TRUE(core.update_interleaved_needed);
  EXPECT_EQ(core.num_instances, 0u);
  EXPECT_EQ(core.first_instance_array, 0xFFFFFFFFu);
  EXPECT_FALSE(core.point_sprite);
  EXPECT_EQ(core.subsets, nullptr);
  EXPECT_EQ(core.num_subsets, 0u);
  EXPECT_EQ(core.current_subset, nullptr);
}

TEST(GeometryCore, DescribesFourStandardAttributes) {
  const GeometryCore core;
  const char* names[6] = {
      "orvex_Position", "orvex_TexCoord0", "orvex_Normal", "orvex_Color", "", ""};
  for (int i = 0; i < 6; ++i) {
    EXPECT_STREQ(core.std_attrib_data[i].name, names[i]);
    EXPECT_EQ(core.std_attrib_data[i].location, i < 4 ? i : -1);
    EXPECT_EQ(core.std_attrib_data[i].element_dim, 4);
  }
}

TEST(GeometryCore, IdsDiffer) {
  const GeometryCore a;
  const GeometryCore b;
  EXPECT_NE(a.getid(), b.getid());
}

TEST(GeometryCore, ReferencesStopAtZero) {
  GeometryCore core;
  core.dec_ref();
  EXPECT_EQ(core.get_ref(), 0);
  core.inc_ref();
  core.inc_ref();
  core.dec_ref();
  EXPECT_EQ(core.get_ref(), 1);
}

TEST(GeometryCore, NullRestoresTheOwnVertexBuffer) {
  GeometryCore core;
  GpuBufferData other;
  core.set_vb_source(&other);
  EXPECT_TRUE(core.is_external_vb_source());
  EXPECT_EQ(core.get_vb_source(), &other);
  core.set_vb_source(nullptr);
  EXPECT_FALSE(core.is_external_vb_source());
  EXPECT_EQ(core.get_vb_source(), core.vb());
}

TEST(GeometryCore, RemembersTheThreadThatMadeIt) {
  GeometryCore core;
  EXPECT_TRUE(core.check_thread());
  bool elsewhere = true;
  std::thread([&] { elsewhere = core.check_thread(); }).join();
  EXPECT_FALSE(elsewhere);
  std::thread([&] { core.update_thread(); }).join();
  EXPECT_FALSE(core.check_thread());
  core.update_thread();
  EXPECT_TRUE(core.check_thread());
}

TEST(GeometryCore, GenericAttributesExcludeBuiltInOnes) {
  GeometryCore core;
  core.set_use_generic_vertex_attribs_state(false);
  EXPECT_FALSE(core.get_use_generic_vertex_attribs_state());
  EXPECT_TRUE(core.use_gl2_built_in_vertex_attribs_get_state());
  core.use_gl2_built_in_vertex_attribs_set_state(false);
  EXPECT_FALSE(core.get_use_generic_vertex_attribs_state()) << "the flag alone";
  core.set_use_generic_vertex_attribs_state(true);
  EXPECT_FALSE(core.use_gl2_built_in_vertex_attribs_get_state());
}

TEST(GeometryCore, AccessorsStoreWhatTheyAreGiven) {
  GeometryCore core;
  core.set_primitive_type(PRIMITIVE_LINES);
  EXPECT_EQ(core.get_primitive_type(), PRIMITIVE_LINES);
  core.set_vertex_draw_range(3, 5);
  EXPECT_EQ(core.get_draw_start(), 3);
  EXPECT_EQ(core.get_draw_count(), 5);
  core.set_point_sprite_state(true);
  EXPECT_TRUE(core.get_point_sprite_state());
  core.vb_uploaded_set_state(true);
  core.ib_uploaded_set_state(true);
  core.ib_update_faces_list_set_state(true);
  EXPECT_TRUE(core.is_vb_uploaded());
  EXPECT_TRUE(core.is_ib_uploaded());
  EXPECT_TRUE(core.is_ib_update_faces_list_needed());
  core.set_vertex_buffer_type(GPU_BUFFER_SHADER_STORAGE);
  core.set_vertex_buffer_usage(BUFFER_USAGE_DYNAMIC_DRAW);
  core.set_index_buffer_usage(BUFFER_USAGE_STREAM_DRAW);
  EXPECT_EQ(core.get_vertex_buffer_type(), GPU_BUFFER_SHADER_STORAGE);
  EXPECT_EQ(core.get_vertex_buffer_usage(), BUFFER_USAGE_DYNAMIC_DRAW);
  EXPECT_EQ(core.get_index_buffer_usage(), BUFFER_USAGE_STREAM_DRAW);
  core.set_alloc_params_num_vertices(4);
  core.set_alloc_params_num_user_attribs(2);
  EXPECT_EQ(core.get_alloc_params().num_vertices, 4u);
  EXPECT_EQ(core.get_alloc_params_ptr()->num_user_attribs, 2u);
}

TEST(GeometryCore, VertexFormatChangesNothingAboutTheVertices) {
  for (const int format : {0, 1, 7}) {
    GeometryCore core;
    core.set_vertex_format(static_cast<VERTEX_FORMAT>(format));
    EXPECT_EQ(core.get_vertex_format(), format);
    EXPECT_EQ(core.get_vertex_elt_size(), 64u) << format;
    ASSERT_TRUE(alloc_vertices(core, 2, VertexForm::INTERLEAVED));
    EXPECT_EQ(core.get_total_vertex_buffer_size(), 128u);
  }
}

TEST(GeometryCore, FaceIndicesNeedFacesOfTheIndexWidth) {
  GeometryCore core;
  EXPECT_FALSE(core.set_face_indices(0, 1, 2, 3));
  core.alloc_face_data(2, false);
  EXPECT_TRUE(core.set_face_indices(1, 0x10001, 2, 3));
  EXPECT_EQ(core.get_faces_u16_ptr()[1].a, 1) << "the low 16 bits";
  EXPECT_FALSE(core.set_face_indices(2, 1, 2, 3));
  EXPECT_FALSE(core.is_ib_update_faces_list_needed());
  core.alloc_face_data(2, true);
  EXPECT_TRUE(core.set_face_indices(0, 0x10001, 2, 3));
  EXPECT_EQ(core.get_faces_u32_ptr()[0].a, 0x10001u);
  core.alloc_face_data_v3(6, PRIMITIVE_LINES);
  EXPECT_FALSE(core.set_face_indices(0, 1, 2, 3)) << "a generic list has no faces";
}

TEST(GeometryCore, WritesToInterleavedVerticesAreTheDirtyRange) {
  GeometryCore core;
  ASSERT_TRUE(alloc_vertices(core, 10, VertexForm::INTERLEAVED));
  EXPECT_TRUE(core.is_update_interleaved_vertex_array_needed());
  unsigned int begin = 9;
  unsigned int end = 9;
  core.get_dirty_interleaved_vertices(&begin, &end);
  EXPECT_EQ(begin, 0u);
  EXPECT_EQ(end, 10u) << "the first upload is whole";

  core.update_interleaved_vertex_array_set_state(false);
  EXPECT_FALSE(core.is_update_vertex_buffer_needed());
  core.set_color(4, vec4());
  core.set_position(2, vec4());
  core.get_dirty_interleaved_vertices(&begin, &end);
  EXPECT_EQ(begin, 2u);
  EXPECT_EQ(end, 5u);
  EXPECT_TRUE(core.is_update_vertex_buffer_needed());

  core.update_interleaved_vertex_array_set_state(false);
  core.get_vertex(1);
  core.set_color(4, vec4());
  core.get_dirty_interleaved_vertices(&begin, &end);
  EXPECT_EQ(begin, 0u);
  EXPECT_EQ(end, 10u) << "a pointer was handed out";
}

TEST(GeometryCore, InterleavedFlagAloneNeedsNoUpload) {
  GeometryCore core;
  EXPECT_TRUE(core.update_interleaved_needed);
  EXPECT_FALSE(core.is_update_interleaved_vertex_array_needed()) << "there is no array";
  EXPECT_FALSE(core.is_update_vertex_buffer_needed());
}

TEST(GeometryCore, EveryLayoutChangeRaisesTheSerial) {
  GeometryCore core;
  unsigned int last = core.layout_serial;
  const auto raised = [&] {
    const bool higher = core.layout_serial > last;
    last = core.layout_serial;
    return higher;
  };
  alloc_vertices(core, 4);
  EXPECT_TRUE(raised());
  core.alloc_face_data(2, false);
  EXPECT_TRUE(raised());
  core.alloc_new_vertex_attrib_array(4);
  EXPECT_TRUE(raised());
  core.get_vertex_attrib_array(4)->set_divisor(1);
  EXPECT_TRUE(raised());
  core.assign_vertex_attrib_name_and_location(1, "uv", 9);
  EXPECT_TRUE(raised());
  core.free_face_data();
  EXPECT_TRUE(raised());
  core.free_vertex_data();
  EXPECT_TRUE(raised());
  core.set_position(0, vec4());
  EXPECT_FALSE(raised());
}

}  // namespace
}  // namespace orv
