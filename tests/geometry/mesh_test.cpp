#include <orv/geometry/mesh.h>

#include <orv/gpu/gpu_buffer_data.h>
#include <orv/gpu/material.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "geometry/geometry_support.h"
#include "support/held.h"
#include "support/log_capture.h"
#include "support/near.h"
#include "support/recording_renderer.h"

namespace orv {
namespace {

using test::Held;
using test::LogCapture;
using test::RecordingRenderer;
using testing::ElementsAre;

constexpr VERTEX_FORMAT OTHER_FORMAT = static_cast<VERTEX_FORMAT>(1);

bool alloc_triangles(Mesh& mesh, unsigned int faces) {
  mesh.set_vertex_alloc_params_num_vertices(faces * 3);
  return mesh.alloc_vertex_data() && mesh.alloc_face_data(faces, false);
}

// ---- construction ----

TEST(Mesh, IsAnObjectWithDataOfItsOwn) {
  const Held<Mesh> mesh;
  EXPECT_EQ(mesh->get_type(), NODE_TYPE_MESH);
  EXPECT_TRUE(mesh->is_type_of(NODE_TYPE_OBJECT));
  ASSERT_NE(mesh->get_data(), nullptr);
  EXPECT_EQ(mesh->get_mesh_data(), mesh->get_data());
  EXPECT_EQ(mesh->get_data()->get_ref(), 1);
  EXPECT_EQ(mesh->get_data()->owner_id, mesh->get_id());
}

TEST(Mesh, OtherFormatHasNoDataUntilItIsMade) {
  const Held<Mesh> mesh(OTHER_FORMAT);
  EXPECT_EQ(mesh->get_data(), nullptr);
  EXPECT_TRUE(mesh->init_mesh_data(nullptr, VERTEX_FORMAT_DEFAULT));
  EXPECT_NE(mesh->get_data(), nullptr);
  EXPECT_TRUE(mesh->init_mesh_data(nullptr, OTHER_FORMAT));
  EXPECT_EQ(mesh->get_data(), nullptr);
}

TEST(Mesh, WithoutDataEveryAnswerIsEmpty) {
  RecordingRenderer renderer;
  const Held<Mesh> mesh(OTHER_FORMAT);
  EXPECT_EQ(mesh->get_num_vertices(nullptr), 0u);
  EXPECT_EQ(mesh->get_num_faces(nullptr), 0u);
  EXPECT_EQ(mesh->get_renderer_id(), 0);
  EXPECT_EQ(mesh->get_vertex(0), nullptr);
  EXPECT_EQ(mesh->get_vertex_v2(0).color, vec4());
  EXPECT_FALSE(mesh->alloc_vertex_data());
  EXPECT_FALSE(mesh->alloc_face_data(1, false));
  EXPECT_FALSE(mesh->alloc_face_data_v2(1, MESH_FACE_TRIANGLE_LIST));
  EXPECT_FALSE(mesh->free_mesh_data());
  EXPECT_FALSE(mesh->free_vertex_attrib_array(0));
  EXPECT_FALSE(mesh->set_vertex_alloc_params({}));
  EXPECT_EQ(mesh->get_vertex_alloc_params().num_vertices, 0u);
  EXPECT_FALSE(mesh->clear_cpu_gpu_data(&renderer, true, true));
  EXPECT_FALSE(mesh->set_vertex_position(0, vec4()));
  EXPECT_EQ(mesh->get_vertex_position(0), vec4());
  EXPECT_FALSE(mesh->set_vertex_position_w(0, 1));
  EXPECT_FALSE(mesh->set_vertex_normal(0, vec4()));
  EXPECT_FALSE(mesh->set_vertex_tangent(0, vec4()));
  EXPECT_FALSE(mesh->set_vertex_color(0, vec4()));
  mesh->set_vertex_uv(0, vec4(), 0);
  mesh->set_vertex_attrib_element(0, 0, vec4());
  EXPECT_FALSE(mesh->update_vertex_attrib_buffer(VERTEX_ATTRIB_POSITION, &renderer));
  mesh->set_face_indexes(0, 1, 2, 3);
  mesh->get_face_indexes(0, nullptr, nullptr, nullptr);
  EXPECT_FALSE(mesh->compute_faces_normal(nullptr));
  EXPECT_FALSE(mesh->compute_vertices_normal(nullptr));
  EXPECT_FALSE(mesh->average_vertices_normal(1, nullptr));
  EXPECT_FALSE(mesh->bounding_volume_compute(nullptr));
  mesh->flip_faces(nullptr);
  mesh->flip_vertex_normals(nullptr);
  mesh->set_vertices_color(1, 1, 1, 1, nullptr);
  EXPECT_FALSE(mesh->init_subsets());
  EXPECT_EQ(mesh->get_num_subsets(), 0u);
  EXPECT_FALSE(mesh->render_subset(&renderer, 0));
  EXPECT_EQ(mesh->map_vertex_buffer(&renderer), nullptr);
  EXPECT_FALSE(mesh->unmap_vertex_buffer(&renderer));
  EXPECT_EQ(mesh->get_vertex_buffer_opengl_id(), 0u);
  EXPECT_FALSE(mesh->voxelize(1, 1, 1, 0));
  EXPECT_FALSE(mesh->_user_geometry_build());
  mesh->_render(&renderer);
  mesh->render_geometry(&renderer);
  EXPECT_THAT(renderer.calls(), ElementsAre());
}

// ---- sharing ----

TEST(Mesh, SharedDataLivesUntilItsLastMesh) {
  MeshData* data = nullptr;
  Held<Mesh> second;
  {
    const Held<Mesh> first;
    data = first->get_data();
    ASSERT_TRUE(alloc_triangles(*first, 1));
    EXPECT_TRUE(second->share_mesh_data(nullptr, first));
    EXPECT_EQ(second->get_data(), data);
    EXPECT_EQ(data->get_ref(), 2);
    EXPECT_EQ(data->owner_id, second->get_id());
  }
  EXPECT_EQ(data->get_ref(), 1);
  EXPECT_EQ(second->get_num_vertices(nullptr), 3u);
}

TEST(Mesh, LastReleaseDestroysTheGpuSideWithARenderer) {
  RecordingRenderer renderer;
  const Held<Mesh> first;
  const Held<Mesh> second;
  second->share_mesh_data(&renderer, first);
  ASSERT_EQ(renderer.count("geometry_vbo_destroy"), 1) << "the second mesh's own data";
  renderer.clear();
  EXPECT_TRUE(first->cleanup_mesh_data(&renderer));
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 0);
  EXPECT_EQ(second->get_data()->get_ref(), 1);
  EXPECT_TRUE(second->cleanup_mesh_data(&renderer));
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 1);
  EXPECT_EQ(second->get_data(), nullptr);
}

TEST(Mesh, ReferencesOfSharedDataGoToZeroBeforeTheGpuSideGoes) {
  class Watched : public RecordingRenderer {
   public:
    bool geometry_vbo_destroy(GeometryCore* geometry) override {
      last_count = geometry->get_ref();
      return RecordingRenderer::geometry_vbo_destroy(geometry);
    }
    int last_count = -1;
  };
  Watched renderer;
  const Held<Mesh> second;
  const Held<Mesh> first;
  second->share_mesh_data(nullptr, first);
  ASSERT_EQ(first->get_data()->get_ref(), 2);
  first->cleanup_mesh_data(&renderer);
  EXPECT_EQ(second->get_data()->get_ref(), 1);
  EXPECT_EQ(renderer.last_count, -1) << "still in use";
  second->cleanup_mesh_data(&renderer);
  EXPECT_EQ(renderer.last_count, 0);
}

TEST(Mesh, WithoutARendererTheGpuSideIsNotTouched) {
  const Held<Mesh> mesh;
  EXPECT_TRUE(mesh->cleanup_mesh_data(nullptr));
  EXPECT_EQ(mesh->get_data(), nullptr);
  EXPECT_TRUE(mesh->cleanup_mesh_data(nullptr));
}

TEST(Mesh, SharingWithItselfKeepsTheData) {
  RecordingRenderer renderer;
  const Held<Mesh> mesh;
  ASSERT_TRUE(alloc_triangles(*mesh, 1));
  EXPECT_TRUE(mesh->share_mesh_data(&renderer, mesh));
  EXPECT_TRUE(mesh->_set_mesh_data(&renderer, mesh->get_data()));
  EXPECT_EQ(mesh->get_data()->get_ref(), 1);
  EXPECT_EQ(mesh->get_num_vertices(nullptr), 3u);
  EXPECT_THAT(renderer.calls(), ElementsAre());
  EXPECT_FALSE(mesh->share_mesh_data(&renderer, nullptr));
}

// ---- copies ----

TEST(Mesh, CopyIsANewNodeThatSharesTheData) {
  const Held<Mesh> mesh;
  ASSERT_TRUE(alloc_triangles(*mesh, 1));
  auto* material = new Material;
  material->add_ref();
  mesh->add_material(material, nullptr);
  mesh->set_name("original");
  mesh->set_position(1, 2, 3);
  mesh->user_geometry_add_vertex(vec4());
  const Held<Mesh> copy(*mesh);
  EXPECT_NE(copy->get_id(), mesh->get_id());
  EXPECT_EQ(copy->get_type(), NODE_TYPE_MESH);
  EXPECT_EQ(copy->get_parent(), nullptr);
  EXPECT_EQ(copy->get_data(), mesh->get_data());
  EXPECT_EQ(copy->get_data()->get_ref(), 2);
  EXPECT_STREQ(copy->get_name(), "original");
  EXPECT_EQ(copy->get_position(), vec4(1, 2, 3, 1));
  EXPECT_EQ(copy->get_material_by_index(0), material);
  EXPECT_EQ(material->get_ref(), 3);
  EXPECT_EQ(copy->user_geometry_add_vertex(vec4()), 1u) << "has a list of its own";
  EXPECT_EQ(mesh->user_geometry_add_vertex(vec4()), 1u);
  *copy = *mesh;
  EXPECT_EQ(material->get_ref(), 3);
  EXPECT_EQ(copy->get_data()->get_ref(), 2);
  material->release(nullptr, nullptr);
}

TEST(Mesh, CopyTakesTheTransformAndStates) {
  const Held<Mesh> mesh;
  mesh->set_orientation_euler_xyz(10, 20, 30);
  mesh->set_scale(2, 3, 4);
  mesh->set_use_generic_vertex_attribs_state(false, nullptr);
  mesh->set_display_grid_state(true, nullptr);
  mesh->set_render_state(false, nullptr);
  mesh->update_build_state(false);
  const Held<Mesh> copy(*mesh);
  EXPECT_EQ(copy->get_absolute_transform(), mesh->get_absolute_transform());
  float y = 0;
  copy->get_orientation_euler_angles(nullptr, &y, nullptr);
  EXPECT_EQ(y, 20.0f);
  EXPECT_FALSE(copy->get_use_generic_vertex_attribs_state());
  EXPECT_TRUE(copy->get_use_fixed_mvp_matrices_state());
  EXPECT_TRUE(copy->get_display_grid_state());
  EXPECT_FALSE(copy->get_render_state());
  EXPECT_FALSE(copy->get_build_state());
  mat4 matrix;
  matrix.init_translate(7, 8, 9);
  mesh->set_transform(matrix);
  *copy = *mesh;
  EXPECT_EQ(copy->get_absolute_transform(), matrix) << "a matrix set by hand";
}

TEST(Mesh, CopyOntoItselfChangesNothing) {
  const Held<Mesh> mesh;
  mesh->add_material(new Material, nullptr);
  mesh->user_geometry_add_vertex(vec4());
  Mesh& same = *mesh;
  *mesh = same;
  EXPECT_EQ(mesh->get_num_materials(), 1u);
  EXPECT_EQ(mesh->get_data()->get_ref(), 1);
  EXPECT_EQ(mesh->user_geometry_add_vertex(vec4()), 1u);
}

// ---- allocation ----

TEST(Mesh, NoVerticesIsReportedWithNameAndId) {
  const LogCapture log(LOG_LEVEL_ERROR);
  const Held<Mesh> mesh;
  mesh->set_name("rock");
  EXPECT_FALSE(mesh->alloc_vertex_data());
  EXPECT_TRUE(log.contains("Mesh rock::" + std::to_string(mesh->get_id()) +
                           " - vertices memory allocation failed - number of vertices is 0."));
}

TEST(Mesh, TooManyVerticesAreReportedWithNameIdAndCount) {
  const LogCapture log(LOG_LEVEL_ERROR);
  const Held<Mesh> mesh;
  mesh->set_name("rock");
  mesh->set_vertex_alloc_params_num_vertices(0xFFFFFFFFu);
  EXPECT_FALSE(mesh->alloc_vertex_data());
  EXPECT_TRUE(log.contains("Mesh rock::" + std::to_string(mesh->get_id()) +
                           "d - vertices memory allocation failed (bad alloc - 4294967295 "
                           "vertices required)."));
}

TEST(Mesh, TooManyFacesAreReportedWithTheName) {
  const LogCapture log(LOG_LEVEL_ERROR);
  const Held<Mesh> mesh;
  mesh->set_name("rock");
  EXPECT_FALSE(mesh->alloc_face_data(0xFFFFFFFFu, false));
  EXPECT_FALSE(mesh->alloc_face_data_v2(0xFFFFFFFFu, MESH_FACE_TRIANGLE_STRIP));
  EXPECT_EQ(log.count("Mesh rock - faces memory allocation failed."), 2);
}

TEST(Mesh, UserAttributesSwitchGenericAttributesOn) {
  const Held<Mesh> mesh;
  mesh->set_use_generic_vertex_attribs_state(false, nullptr);
  mesh->set_vertex_alloc_params_num_vertices(3);
  ASSERT_TRUE(mesh->alloc_vertex_data());
  EXPECT_FALSE(mesh->get_use_generic_vertex_attribs_state());
  mesh->set_vertex_alloc_params_num_user_attribs(1);
  ASSERT_TRUE(mesh->alloc_vertex_data());
  EXPECT_TRUE(mesh->get_use_generic_vertex_attribs_state());
}

TEST(Mesh, AllocParamsAreForwarded) {
  const Held<Mesh> mesh;
  MeshDataVertexAttribsAllocParams params;
  params.num_vertices = 4;
  params.separate_vertex_arrays = false;
  EXPECT_TRUE(mesh->set_vertex_alloc_params(params));
  EXPECT_EQ(mesh->get_vertex_alloc_params().num_vertices, 4u);
  EXPECT_FALSE(mesh->get_data()->alloc_params.separate_vertex_arrays);
}

TEST(Mesh, DrawRangeCountsToTheEndVertex) {
  const Held<Mesh> mesh;
  mesh->set_draw_start_end_vertex(5, 12);
  EXPECT_EQ(mesh->get_data()->get_draw_start(), 5);
  EXPECT_EQ(mesh->get_data()->get_draw_count(), 7);
}

TEST(Mesh, DrawRangeOfFarApartVerticesStaysANumber) {
  const Held<Mesh> mesh;
  mesh->set_draw_start_end_vertex(INT_MIN, INT_MAX);
  EXPECT_EQ(mesh->get_data()->get_draw_count(), INT_MAX);
  mesh->set_draw_start_end_vertex(INT_MAX, INT_MIN);
  EXPECT_EQ(mesh->get_data()->get_draw_count(), INT_MIN);
}

TEST(Mesh, OneArrayCanBeFreed) {
  const Held<Mesh> mesh;
  ASSERT_TRUE(alloc_triangles(*mesh, 1));
  EXPECT_TRUE(mesh->free_vertex_attrib_array(3));
  EXPECT_EQ(mesh->get_data()->get_color_ptr(), nullptr);
  EXPECT_FALSE(mesh->free_vertex_attrib_array(4));
}

TEST(Mesh, FreeMeshDataKeepsTheRecord) {
  const Held<Mesh> mesh;
  ASSERT_TRUE(alloc_triangles(*mesh, 1));
  MeshData* data = mesh->get_data();
  EXPECT_TRUE(mesh->free_mesh_data());
  EXPECT_EQ(mesh->get_data(), data);
  EXPECT_EQ(mesh->get_num_vertices(nullptr), 0u);
  EXPECT_EQ(mesh->get_num_faces(nullptr), 0u);
}

TEST(Mesh, ClearingTheCpuSideAloneKeepsTheUploadedLayout) {
  RecordingRenderer renderer;
  const Held<Mesh> mesh;
  ASSERT_TRUE(alloc_triangles(*mesh, 2));
  mesh->get_data()->vb_uploaded_set_state(true);
  EXPECT_TRUE(mesh->clear_cpu_gpu_data(&renderer, true, false));
  EXPECT_EQ(mesh->get_num_faces(nullptr), 0u);
  GeometryGpuLayout layout;
  mesh->get_data()->get_gpu_layout(&layout);
  EXPECT_EQ(layout.num_faces, 2u);
  EXPECT_THAT(renderer.calls(), ElementsAre());
  mesh->free_mesh_data();
  mesh->get_data()->get_gpu_layout(&layout);
  EXPECT_EQ(layout.num_faces, 0u);
}

TEST(Mesh, ClearingBothSidesDestroysTheBuffers) {
  RecordingRenderer renderer;
  const Held<Mesh> mesh;
  ASSERT_TRUE(alloc_triangles(*mesh, 2));
  mesh->get_data()->vb_uploaded_set_state(true);
  EXPECT_TRUE(mesh->clear_cpu_gpu_data(nullptr, false, true));
  EXPECT_TRUE(mesh->clear_cpu_gpu_data(&renderer, true, true));
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 1);
  EXPECT_FALSE(mesh->get_data()->gpu_state.cpu_released);
  EXPECT_EQ(mesh->get_data()->get_ref(), 1);
}

// ---- life ----

TEST(Mesh, CleanupLetsGoOfDataAndMaterials) {
  RecordingRenderer renderer;
  const Held<Mesh> mesh;
  mesh->add_material(new Material, nullptr);
  EXPECT_TRUE(mesh->cleanup(&renderer, nullptr));
  EXPECT_EQ(mesh->get_data(), nullptr);
  EXPECT_EQ(mesh->get_num_materials(), 0u);
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 1);
}

TEST(Mesh, BuildOfAHandFilledMeshTakesItsBounds) {
  const Held<Mesh> mesh;
  ASSERT_TRUE(alloc_triangles(*mesh, 1));
  mesh->set_vertex_position(1, vec4(2, 4, 6, 1));
  EXPECT_TRUE(mesh->get_build_state());
  EXPECT_TRUE(mesh->_build());
  EXPECT_FALSE(mesh->get_build_state());
  EXPECT_EQ(mesh->get_bounding_box_max(), vec4(2, 4, 6, 1));
}

TEST(Mesh, RendererIdIsThatOfTheVertexBuffer) {
  const Held<Mesh> mesh;
  mesh->get_data()->vb()->renderer_id = 42;
  EXPECT_EQ(mesh->get_renderer_id(), 42);
}

}  // namespace
}  // namespace orv
