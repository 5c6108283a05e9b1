#include <orv/geometry/geometry_core.h>

#include <gtest/gtest.h>

#include <cstdint>

#include "geometry/geometry_support.h"
#include "support/log_capture.h"
#include "support/near.h"

namespace orv {
namespace {

using test::alloc_vertices;
using test::LogCapture;
using test::VertexForm;

// ---- vertices ----

TEST(GeometryCoreAlloc, SeparateVerticesAreFourArrays) {
  GeometryCore core;
  ASSERT_TRUE(alloc_vertices(core, 5));
  EXPECT_EQ(core.num_attrib_arrays, 4u);
  EXPECT_EQ(core.vertices, nullptr);
  EXPECT_EQ(core.draw_start, 0);
  EXPECT_EQ(core.draw_count, 5);
  const char* names[4] = {"orvex_Position", "orvex_TexCoord0", "orvex_Normal", "orvex_Color"};
  for (unsigned int i = 0; i < 4; ++i) {
    EXPECT_STREQ(core.get_vertex_attrib_array(i)->get_name(), names[i]);
    EXPECT_EQ(core.get_vertex_attrib_array(i)->get_location(), static_cast<int>(i));
    EXPECT_EQ(core.get_vertex_attrib_element(i, 4), vec4(0, 0, 0, 1));
  }
}

TEST(GeometryCoreAlloc, InterleavedVerticesAreOneArray) {
  GeometryCore core;
  ASSERT_TRUE(alloc_vertices(core, 5, VertexForm::INTERLEAVED));
  EXPECT_EQ(core.num_attrib_arrays, 0u);
  ASSERT_NE(core.vertices, nullptr);
  EXPECT_EQ(core.vertices_raw, nullptr);
  EXPECT_EQ(core.vertices[4].normal, vec4(0, 0, 0, 1));
  EXPECT_FALSE(core.has_separate_vertex_arrays());
}

TEST(GeometryCoreAlloc, AlignedVerticesKeepTheirBaseApart) {
  GeometryCore core;
  ASSERT_TRUE(alloc_vertices(core, 5, VertexForm::INTERLEAVED_ALIGNED));
  EXPECT_NE(core.vertices_raw, nullptr);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(core.vertices) % 32, 0u);
  EXPECT_EQ(core.get_vertex_alignment(), 32);
  GeometryCore separate;
  ASSERT_TRUE(alloc_vertices(separate, 5, VertexForm::SEPARATE_ALIGNED));
  for (unsigned int i = 0; i < 4; ++i) {
    EXPECT_NE(separate.get_vertex_attrib_array(i)->raw_data, nullptr);
  }
}

TEST(GeometryCoreAlloc, UserArraysAreNumberedBehindStandardOnes) {
  struct Row {
    bool standard;
    const char* name;
  };
  for (const Row& row : {Row{true, "orvex_Attrib4"}, Row{false, "orvex_Attrib0"}}) {
    GeometryCore core;
    core.alloc_params.std_vertex_attribs = row.standard;
    core.alloc_params.num_user_attribs = 2;
    ASSERT_TRUE(alloc_vertices(core, 3));
    EXPECT_EQ(core.num_attrib_arrays, row.standard ? 6u : 2u);
    EXPECT_STREQ(core.get_vertex_attrib_array(row.standard ? 4 : 0)->get_name(), row.name);
    EXPECT_EQ(core.has_std_vertex_attribs(), row.standard);
  }
}

TEST(GeometryCoreAlloc, UserArraysPastTheLimitAreNoError) {
  const LogCapture log;
  GeometryCore core;
  core.alloc_params.num_user_attribs = 1000;
  EXPECT_TRUE(alloc_vertices(core, 3));
  EXPECT_EQ(core.num_attrib_arrays, 16u);
  EXPECT_EQ(log.lines().size(), 1u) << "it stops at the first failure";
}

TEST(GeometryCoreAlloc, ParticlesAreAllocatedWhenAskedFor) {
  GeometryCore core;
  ASSERT_TRUE(alloc_vertices(core, 3));
  ASSERT_NE(core.vertex_particles, nullptr);
  EXPECT_EQ(core.vertex_particles[2], vec4(0, 0, 0, 1));
  GeometryCore without;
  without.alloc_params.alloc_vertex_particles = false;
  ASSERT_TRUE(alloc_vertices(without, 3));
  EXPECT_EQ(without.vertex_particles, nullptr);
}

TEST(GeometryCoreAlloc, NoVerticesIsAnError) {
  const LogCapture log(LOG_LEVEL_ERROR);
  GeometryCore core;
  EXPECT_FALSE(core.alloc_vertex_data());
  EXPECT_TRUE(log.contains("Geometry core data allocation failed - num_vertices is 0"));
}

TEST(GeometryCoreAlloc, TooManyVerticesAreReportedAndFail) {
  for (const VertexForm form : {VertexForm::SEPARATE, VertexForm::INTERLEAVED}) {
    const LogCapture log(LOG_LEVEL_ERROR);
    GeometryCore core;
    EXPECT_FALSE(alloc_vertices(core, 0xFFFFFFFFu, form));
    EXPECT_TRUE(
        log.contains("Geometry core allocation failed - 4294967295 vertices required - "
                     "error: std::bad_alloc"));
    EXPECT_EQ(core.vertices, nullptr);
    EXPECT_EQ(core.num_attrib_arrays, 0u);
    EXPECT_FALSE(core.set_position(0, vec4()));
    EXPECT_TRUE(core.free_vertex_data());
    EXPECT_EQ(core.num_vertices, 0u);
  }
}

TEST(GeometryCoreAlloc, TheWholeVertexBufferIsLimitedToo) {
  const LogCapture log(LOG_LEVEL_ERROR);
  GeometryCore core;
  EXPECT_FALSE(alloc_vertices(core, 0x2000000u)) << "four arrays of 2^29 bytes";
  EXPECT_TRUE(log.contains("33554432 vertices required - error: std::bad_alloc"));
}

TEST(GeometryCoreAlloc, InterleavedVerticesShareTheLimitWithArraysFromBefore) {
  const LogCapture log(LOG_LEVEL_ERROR);
  GeometryCore core;
  ASSERT_NE(core.alloc_new_vertex_attrib_array(4), nullptr);
  EXPECT_FALSE(alloc_vertices(core, 0x1FFFFFFu, VertexForm::INTERLEAVED))
      << "2^31 - 64 bytes alone would fit, but not with 64 more in one buffer";
  EXPECT_TRUE(log.contains("33554431 vertices required - error: std::bad_alloc"));
  EXPECT_EQ(core.vertices, nullptr);
}

TEST(GeometryCoreAlloc, AllocatingAgainReplacesVertices) {
  for (const VertexForm first : test::ALL_FORMS) {
    for (const VertexForm second : test::ALL_FORMS) {
      GeometryCore core;
      ASSERT_TRUE(alloc_vertices(core, 100, first));
      core.set_position(0, vec4(5, 5, 5, 5));
      ASSERT_TRUE(alloc_vertices(core, 3, second));
      EXPECT_EQ(core.num_vertices, 3u);
      EXPECT_EQ(core.get_position_4f(0), vec4(0, 0, 0, 1));
      EXPECT_EQ(core.vertices != nullptr, !test::is_separate(second));
    }
  }
}

TEST(GeometryCoreAlloc, FreeKeepsTheDrawRange) {
  GeometryCore core;
  ASSERT_TRUE(alloc_vertices(core, 5));
  core.set_vertex_draw_range(1, 3);
  EXPECT_TRUE(core.free_vertex_data());
  EXPECT_EQ(core.num_vertices, 0u);
  EXPECT_EQ(core.num_attrib_arrays, 0u);
  EXPECT_EQ(core.vertex_particles, nullptr);
  EXPECT_EQ(core.get_draw_start(), 1);
  EXPECT_EQ(core.get_draw_count(), 3);
}

TEST(GeometryCoreAlloc, FreeDoesNothingWithoutVertices) {
  GeometryCore core;
  core.alloc_new_vertex_attrib_array(3);
  EXPECT_TRUE(core.free_vertex_data());
  EXPECT_EQ(core.num_attrib_arrays, 1u) << "there are no vertices to free";
}

// ---- faces ----

TEST(GeometryCoreAlloc, IndexWidthFollowsTheVertexCountAtThatMoment) {
  struct Row {
    unsigned int vertices;
    bool force_32;
    int bits;
  };
  const Row rows[] = {{65535, false, 16}, {65536, false, 32}, {65535, true, 32}, {3, true, 32}};
  for (const Row& row : rows) {
    GeometryCore core;
    core.alloc_params.alloc_vertex_particles = false;
    ASSERT_TRUE(alloc_vertices(core, row.vertices));
    ASSERT_TRUE(core.alloc_face_data(2, row.force_32));
    EXPECT_EQ(core.get_index_bits(), row.bits) << row.vertices;
    EXPECT_EQ(core.faces_u16 != nullptr, row.bits == 16);
    EXPECT_EQ(core.faces_u32 != nullptr, row.bits == 32);
  }
}

TEST(GeometryCoreAlloc, FacesBeforeVerticesAreSixteenBits) {
  GeometryCore core;
  ASSERT_TRUE(core.alloc_face_data(2, false));
  EXPECT_EQ(core.get_index_bits(), 16);
}

TEST(GeometryCoreAlloc, NoFacesAllocateNothing) {
  GeometryCore core;
  EXPECT_TRUE(core.alloc_face_data(0, false));
  EXPECT_TRUE(core.alloc_face_data(0, true));
  EXPECT_TRUE(core.alloc_face_data_v3(0, PRIMITIVE_LINES));
  EXPECT_EQ(core.faces_u16, nullptr);
  EXPECT_EQ(core.faces_u32, nullptr);
  EXPECT_EQ(core.face_normals, nullptr);
  EXPECT_EQ(core.num_faces, 0u);
}

TEST(GeometryCoreAlloc, FacesStartAtZeroWithNormalsAndMaterials) {
  GeometryCore core;
  ASSERT_TRUE(core.alloc_face_data(100, true));
  for (unsigned int i = 0; i < 100; ++i) {
    EXPECT_EQ(core.get_faces_u32_ptr()[i].b, 0u);
    EXPECT_EQ(core.get_face_normals_ptr()[i], vec4(0, 0, 0, 1));
    EXPECT_EQ(core.get_face_materials_ptr()[i], 0u);
  }
}

TEST(GeometryCoreAlloc, GenericListHasIndicesAndAPrimitive) {
  GeometryCore core;
  ASSERT_TRUE(core.alloc_face_data_v3(7, PRIMITIVE_LINE_STRIP));
  EXPECT_EQ(core.get_num_faces(), 7u);
  EXPECT_EQ(core.get_primitive_type(), PRIMITIVE_LINE_STRIP);
  EXPECT_EQ(core.get_index_bits(), 32);
  ASSERT_NE(core.get_indices_ptr(), nullptr);
  EXPECT_EQ(core.get_indices_ptr()[6], 0u);
  EXPECT_EQ(core.faces_u16, nullptr);
  EXPECT_EQ(core.faces_u32, nullptr);
  EXPECT_NE(core.face_normals, nullptr);
}

TEST(GeometryCoreAlloc, TypeTwoIsAStripAndAnyOtherAList) {
  for (const int type : {0, 1, 2, 3, 99}) {
    GeometryCore core;
    ASSERT_TRUE(core.alloc_face_data_v2(6, static_cast<MESH_FACE_TRIANGLE_TYPE>(type)));
    EXPECT_EQ(core.get_primitive_type(), type == 2 ? PRIMITIVE_TRIANGLE_STRIP : PRIMITIVE_TRIANGLES)
        << type;
    EXPECT_NE(core.get_indices_ptr(), nullptr);
  }
}

TEST(GeometryCoreAlloc, SecondFormGoesThroughTheSlotOfTheThird) {
  class Watched : public GeometryCore {
   public:
    bool alloc_face_data_v3(unsigned int count, PRIMITIVE_TYPE primitive) override {
      seen = primitive;
      return count == 6;
    }
    int seen = -1;
  };
  Watched core;
  EXPECT_TRUE(core.alloc_face_data_v2(6, MESH_FACE_TRIANGLE_STRIP));
  EXPECT_EQ(core.seen, PRIMITIVE_TRIANGLE_STRIP);
}

TEST(GeometryCoreAlloc, TooManyFacesAreReportedAndFail) {
  GeometryCore core;
  {
    const LogCapture log(LOG_LEVEL_ERROR);
    EXPECT_FALSE(core.alloc_face_data(0xFFFFFFFFu, false));
    EXPECT_TRUE(log.contains("Geometry core - faces memory allocation failed: std::bad_alloc"));
  }
  const LogCapture log(LOG_LEVEL_ERROR);
  EXPECT_FALSE(core.alloc_face_data_v3(0xFFFFFFFFu, PRIMITIVE_LINES));
  EXPECT_TRUE(log.contains("Geometry core - faces memory allocation failed: std::bad_alloc"));
  EXPECT_EQ(core.indices, nullptr);
  EXPECT_EQ(core.get_num_faces(), 0u);
}

TEST(GeometryCoreAlloc, AllocatingFacesAgainReplacesThem) {
  GeometryCore core;
  ASSERT_TRUE(core.alloc_face_data_v3(6, PRIMITIVE_LINES));
  ASSERT_TRUE(core.alloc_face_data(2, false));
  EXPECT_EQ(core.indices, nullptr);
  ASSERT_TRUE(core.alloc_face_data(0, false));
  EXPECT_EQ(core.faces_u16, nullptr);
}

TEST(GeometryCoreAlloc, FreeingFacesEmptiesAllArrays) {
  GeometryCore core;
  core.alloc_face_data(3, true);
  EXPECT_TRUE(core.free_face_data());
  EXPECT_EQ(core.num_faces, 0u);
  EXPECT_EQ(core.faces_u32, nullptr);
  EXPECT_EQ(core.face_normals, nullptr);
  EXPECT_EQ(core.face_materials, nullptr);
}

// ---- quad edges and subsets ----

TEST(GeometryCoreAlloc, QuadEdgesCountIndices) {
  GeometryCore core;
  ASSERT_TRUE(core.alloc_quad_edge_data(16));
  EXPECT_EQ(core.get_num_quad_edges(), 16u);
  EXPECT_EQ(core.get_quad_edges_ptr()[15], 0u);
  ASSERT_TRUE(core.alloc_quad_edge_data(8));
  EXPECT_EQ(core.get_num_quad_edges(), 8u);
  EXPECT_FALSE(core.alloc_quad_edge_data(0xFFFFFFFFu));
  EXPECT_EQ(core.get_num_quad_edges(), 0u);
  EXPECT_TRUE(core.free_quad_edge_data());
}

TEST(GeometryCoreAlloc, FreeingSubsetsEndsTheCurrentOne) {
  GeometryCore core;
  ASSERT_TRUE(core.alloc_subsets(2));
  EXPECT_EQ(core.get_subsets_ptr()[1].end_face, -1);
  core.set_current_subset(core.get_subsets_ptr());
  core.free_subsets();
  EXPECT_EQ(core.get_current_subset(), nullptr);
  EXPECT_EQ(core.num_subsets, 0u);
}

TEST(GeometryCoreAlloc, FreeDataGoesThroughTheSlots) {
  class Watched : public GeometryCore {
   public:
    bool free_vertex_data() override { return ++calls, true; }
    bool free_face_data() override { return ++calls, true; }
    bool free_quad_edge_data() override { return ++calls, true; }
    int calls = 0;
  };
  Watched core;
  core.alloc_subsets(1);
  EXPECT_TRUE(core.free_data());
  EXPECT_EQ(core.calls, 3);
  EXPECT_EQ(core.subsets, nullptr);
}

// ---- drawing on from the GPU copy ----

TEST(GeometryCoreAlloc, ReleasedDataIsDescribedFromBefore) {
  GeometryCore core;
  core.alloc_params.num_user_attribs = 1;
  ASSERT_TRUE(alloc_vertices(core, 6));
  core.alloc_face_data(2, false);
  core.vb_uploaded_set_state(true);
  core.release_cpu_data();
  EXPECT_EQ(core.get_num_faces(), 0u);
  EXPECT_TRUE(core.gpu_state.cpu_released);
  GeometryGpuLayout layout;
  core.get_gpu_layout(&layout);
  EXPECT_EQ(layout.num_vertices, 6u);
  EXPECT_EQ(layout.num_faces, 2u);
  EXPECT_EQ(layout.index_bits, 16);
  EXPECT_EQ(layout.num_attribs, 5u);
  EXPECT_EQ(layout.attribs[3].location, 3);
}

TEST(GeometryCoreAlloc, ReleasedDataIsDescribedAsItWasUploaded) {
  GeometryCore core;
  ASSERT_TRUE(alloc_vertices(core, 6));
  ASSERT_TRUE(core.alloc_face_data(2, false));
  core.vb_uploaded_set_state(true);
  core.note_uploaded();
  ASSERT_TRUE(alloc_vertices(core, 600, VertexForm::INTERLEAVED));
  ASSERT_TRUE(core.alloc_face_data(200, true));
  core.release_cpu_data();
  GeometryGpuLayout layout;
  core.get_gpu_layout(&layout);
  EXPECT_EQ(layout.num_vertices, 6u) << "the buffers never got the 600";
  EXPECT_EQ(layout.num_faces, 2u);
  EXPECT_EQ(layout.index_bits, 16);
  EXPECT_EQ(layout.interleaved_size, 0u);
  EXPECT_EQ(layout.num_attribs, 4u);
  core.release_cpu_data();
  core.get_gpu_layout(&layout);
  EXPECT_EQ(layout.num_vertices, 6u) << "once more changes nothing";
}

TEST(GeometryCoreAlloc, FreeingOrAllocatingEndsTheRelease) {
  const auto released = [](GeometryCore& core) {
    alloc_vertices(core, 6);
    core.alloc_face_data(2, false);
    core.vb_uploaded_set_state(true);
    core.release_cpu_data();
    return core.gpu_state.cpu_released;
  };
  GeometryCore freed;
  ASSERT_TRUE(released(freed));
  freed.free_data();
  EXPECT_FALSE(freed.gpu_state.cpu_released);
  GeometryCore again;
  ASSERT_TRUE(released(again));
  alloc_vertices(again, 3);
  EXPECT_FALSE(again.gpu_state.cpu_released);
  GeometryGpuLayout layout;
  again.get_gpu_layout(&layout);
  EXPECT_EQ(layout.num_vertices, 3u);
}

TEST(GeometryCoreAlloc, DataThatWasNeverUploadedIsJustFreed) {
  GeometryCore core;
  ASSERT_TRUE(alloc_vertices(core, 6));
  core.release_cpu_data();
  EXPECT_FALSE(core.gpu_state.cpu_released);
  EXPECT_EQ(core.get_num_vertices(), 0u);
}

}  // namespace
}  // namespace orv
