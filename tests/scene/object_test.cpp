#include <orv/scene/object.h>

#include <orv/gpu/gpu_program.h>
#include <orv/gpu/material.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "scene/object_witness.h"
#include "support/held.h"
#include "support/log_capture.h"

namespace orv {
namespace {

using test::Family;
using test::Held;
using test::LogCapture;
using test::Witness;
using testing::ElementsAre;

// ---- life -----------------------------------------------------------------------------------

TEST(Object, StartsWithTheDocumentedState) {
  Object object;
  EXPECT_EQ(object.get_type(), NODE_TYPE_OBJECT);
  EXPECT_TRUE(object.is_type_of(NODE_TYPE_NODE));
  EXPECT_TRUE(object.get_build_state());
  EXPECT_TRUE(object.get_use_generic_vertex_attribs_state());
  EXPECT_FALSE(object.get_use_gl2_vertex_array_state());
  EXPECT_FALSE(object.get_use_fixed_mvp_matrices_state());
  EXPECT_FALSE(object.get_display_tripod_state());
  EXPECT_FALSE(object.get_display_grid_state());
  EXPECT_EQ(object.get_tripod_size(), vec4(2, 2, 2, 1));
  EXPECT_EQ(object.get_gpu_program(), nullptr);
  EXPECT_EQ(object.get_num_materials(), 0u);
  EXPECT_EQ(object.get_projection_matrix(), mat4());
  EXPECT_EQ(object.get_view_matrix(), mat4());
  EXPECT_TRUE(object.bounding_volume_update_from_geometry_get_state());
  EXPECT_TRUE(object.bounding_sphere_inscribed_sphere());
  const GpuProgramModelViewParams& params = object.get_gpu_program_model_view_params();
  for (const mat4* m : {&params.model_view_projection, &params.model_view, &params.model_view_2,
                        &params.view, &params.projection, &params.view_projection}) {
    EXPECT_EQ(*m, mat4());
  }
}

TEST(Object, HasNoGeometryOfItsOwn) {
  Object object;
  EXPECT_EQ(object.get_num_vertices(nullptr), 0u);
  EXPECT_EQ(object.get_num_faces(nullptr), 0u);
  EXPECT_EQ(object.get_vertex(0), nullptr);
  EXPECT_EQ(object.get_vertex_v2(7).position, vec4(0, 0, 0, 1));
  EXPECT_TRUE(object.update_bounding_sphere(nullptr));
  object.render_geometry(nullptr);
  object.render_geometry_prepare(nullptr);
  object.render_geometry_draw(nullptr);
  object.render_geometry_finish(nullptr);
}

TEST(Object, CleanupReleasesMaterialsAndProgram) {
  Held<Object> object;
  Held<Material> material;
  Held<GpuProgram> program;
  object->add_material(material, nullptr);
  object->set_gpu_program(program, nullptr);
  EXPECT_TRUE(object->_cleanup(nullptr));
  EXPECT_EQ(object->get_num_materials(), 0u);
  EXPECT_EQ(object->get_gpu_program(), nullptr);
  EXPECT_EQ(material->get_ref(), 1);
  EXPECT_EQ(program->get_ref(), 1);
}

TEST(Object, DestructorLeavesMaterialsAndProgramCounted) {
  Held<Material> material;
  Held<GpuProgram> program;
  {
    Object object;
    object.add_material(material, nullptr);
    object.set_gpu_program(program, nullptr);
  }
  EXPECT_EQ(material->get_ref(), 2);
  EXPECT_EQ(program->get_ref(), 2);
  material->remove_ref();
  program->remove_ref();
}

// ---- states and walks -----------------------------------------------------------------------

TEST(Object, GenericAttribsAndFixedMatricesMoveTogether) {
  Object object;
  object.set_use_generic_vertex_attribs_state(false, nullptr);
  EXPECT_FALSE(object.get_use_generic_vertex_attribs_state());
  EXPECT_TRUE(object.get_use_gl2_vertex_array_state());
  EXPECT_TRUE(object.get_use_fixed_mvp_matrices_state());
  object.set_use_gl2_vertex_array_state(false, nullptr);
  EXPECT_TRUE(object.get_use_generic_vertex_attribs_state());
  EXPECT_FALSE(object.get_use_fixed_mvp_matrices_state());
  object.set_opengl_2_3_rendering_states(true, nullptr);
  EXPECT_FALSE(object.get_use_generic_vertex_attribs_state());
  EXPECT_TRUE(object.get_use_fixed_mvp_matrices_state());
  object.set_opengl_2_3_rendering_states(false, nullptr);
  EXPECT_TRUE(object.get_use_generic_vertex_attribs_state());
  EXPECT_FALSE(object.get_use_fixed_mvp_matrices_state());
}

TEST(Object, FixedMatricesStateMovesAlone) {
  Object object;
  object.set_use_fixed_mvp_matrices_state(true, nullptr);
  EXPECT_TRUE(object.get_use_fixed_mvp_matrices_state());
  EXPECT_TRUE(object.get_use_generic_vertex_attribs_state());
}

TEST(Object, SettersWithANullNodeReachThisObjectAlone) {
  Family f;
  f.parent->set_use_fixed_mvp_matrices_state(true, nullptr);
  f.parent->set_display_tripod_state(true, nullptr);
  f.parent->set_view_matrix(mat4(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16), nullptr);
  EXPECT_TRUE(f.parent->get_use_fixed_mvp_matrices_state());
  EXPECT_FALSE(f.child->get_use_fixed_mvp_matrices_state());
  EXPECT_FALSE(f.child->get_display_tripod_state());
  EXPECT_EQ(f.child->get_view_matrix(), mat4());
}

TEST(Object, SettersWithANodeReachItsObjectDescendantsToo) {
  const mat4 m(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
  Family f;
  f.parent->set_use_generic_vertex_attribs_state(false, f.parent);
  f.parent->set_display_tripod_state(true, f.parent);
  f.parent->set_display_grid_state(true, f.parent);
  f.parent->set_tripod_size(3, 4, 5, f.parent);
  f.parent->set_view_matrix(m, f.parent);
  f.parent->set_projection_matrix(m, f.parent);
  for (Object* object : {f.parent.get(), f.child.get(), f.grandchild.get()}) {
    EXPECT_FALSE(object->get_use_generic_vertex_attribs_state());
    EXPECT_TRUE(object->get_use_fixed_mvp_matrices_state());
    EXPECT_TRUE(object->get_display_tripod_state());
    EXPECT_TRUE(object->get_display_grid_state());
    EXPECT_EQ(object->get_tripod_size(), vec4(3, 4, 5, 1));
    EXPECT_EQ(object->get_view_matrix(), m);
    EXPECT_EQ(object->get_projection_matrix(), m);
  }
  f.parent->set_use_gl2_vertex_array_state(false, f.parent);
  EXPECT_TRUE(f.grandchild->get_use_generic_vertex_attribs_state());
  f.parent->set_opengl_2_3_rendering_states(true, f.parent);
  EXPECT_TRUE(f.grandchild->get_use_fixed_mvp_matrices_state());
  f.parent->set_use_fixed_mvp_matrices_state(false, f.parent);
  EXPECT_FALSE(f.grandchild->get_use_fixed_mvp_matrices_state());
}

TEST(Object, SettersSkipChildrenThatAreNoObjectsWithTheirSubtrees) {
  Family f;
  f.parent->set_display_grid_state(true, f.parent);
  EXPECT_FALSE(f.hidden->get_display_grid_state());
}

TEST(Object, SettersWalkTheNodeGivenInPlaceOfTheirOwnChildren) {
  Family f;
  Held<Object> elsewhere, below;
  elsewhere->add_child(below);
  f.parent->set_display_grid_state(true, elsewhere);
  EXPECT_TRUE(f.parent->get_display_grid_state());
  EXPECT_FALSE(f.child->get_display_grid_state());
  EXPECT_FALSE(elsewhere->get_display_grid_state());
  EXPECT_TRUE(below->get_display_grid_state());
}

TEST(Object, TessellationStateOfAPlainObjectDoesNothing) {
  Object object;
  object.set_tessellation_state(true, nullptr);
  EXPECT_TRUE(object.get_use_generic_vertex_attribs_state());
}

TEST(Object, TessellationStateGoesToTheChildrenOnly) {
  Held<Object> parent;
  Held<Witness> child;
  parent->add_child(child);
  parent->set_tessellation_state(true, nullptr);
  EXPECT_TRUE(child->seen.empty());
  parent->set_tessellation_state(true, parent);
  EXPECT_THAT(child->seen, ElementsAre("tessellation(self)"));
}

TEST(Object, EditingOperationsWalkTheObjectChildren) {
  Held<Object> parent;
  Held<Witness> child;
  parent->add_child(child);
  EXPECT_TRUE(parent->compute_faces_normal(parent));
  EXPECT_TRUE(parent->compute_vertices_normal(parent));
  EXPECT_TRUE(parent->average_vertices_normal(0.5f, parent));
  parent->translate_vertices_position(vec4(1, 2, 3, 1), parent);
  parent->translate_vertices_position(vec3(1, 2, 3), parent);
  parent->scale_vertices_position(vec4(1, 2, 3, 1), parent);
  parent->rotate_vertices_position(quat(), parent);
  parent->rotate_vertices_position(10, 20, 30, parent);
  parent->flip_faces(parent);
  parent->flip_vertex_normals(parent);
  EXPECT_THAT(child->seen, ElementsAre("faces_normal(self)", "vertices_normal(self)",
                                       "average(self)", "translate4(self)", "translate3(self)",
                                       "scale(self)", "rotate_quat(self)", "rotate_xyz(self)",
                                       "flip_faces(self)", "flip_normals(self)"));
}

TEST(Object, EditingOperationsWithANullNodeStayHere) {
  Held<Object> parent;
  Held<Witness> child;
  parent->add_child(child);
  EXPECT_TRUE(parent->compute_faces_normal(nullptr));
  EXPECT_TRUE(parent->compute_vertices_normal(nullptr));
  EXPECT_TRUE(parent->average_vertices_normal(0.5f, nullptr));
  parent->translate_vertices_position(vec4(1, 2, 3, 1), nullptr);
  parent->scale_vertices_position(vec4(1, 2, 3, 1), nullptr);
  parent->set_vertices_color(vec4(1, 2, 3, 1), nullptr);
  parent->flip_faces(nullptr);
  EXPECT_TRUE(child->seen.empty());
}

TEST(Object, ColourFromFourFloatsGoesThroughTheVectorForm) {
  Held<Witness> object;
  object->set_vertices_color(0.1f, 0.2f, 0.3f, 0.4f, nullptr);
  EXPECT_THAT(object->seen, ElementsAre("color(null)"));
  EXPECT_EQ(object->last_color, vec4(0.1f, 0.2f, 0.3f, 0.4f));
}

TEST(Object, CountsOfTheTreeStartFromThisObjectForANullNode) {
  Family f;
  f.parent->vertices = 1;
  f.child->vertices = 10;
  f.grandchild->vertices = 100;
  f.hidden->vertices = 1000;
  f.parent->faces = 2;
  f.child->faces = 20;
  f.grandchild->faces = 200;
  EXPECT_EQ(f.parent->get_num_vertices_v2(nullptr), 111u);
  EXPECT_EQ(f.parent->get_num_vertices_v2(f.parent), 111u);
  EXPECT_EQ(f.parent->get_num_vertices_v2(f.child), 101u);
  EXPECT_EQ(f.parent->get_num_faces_v2(nullptr), 222u);
  EXPECT_EQ(f.parent->get_num_vertices(nullptr), 1u);
}

// ---- GPU program ----------------------------------------------------------------------------

TEST(Object, SettingTheSameProgramTwiceAddsTwoReferences) {
  Held<Object> object;
  Held<GpuProgram> program;
  object->set_gpu_program(program, nullptr);
  object->set_gpu_program(program, nullptr);
  EXPECT_EQ(program->get_ref(), 3);
  EXPECT_EQ(object->get_gpu_program(), program.get());
  program->remove_ref();
}

TEST(Object, AnotherProgramReleasesTheFirst) {
  Held<Object> object;
  Held<GpuProgram> first, second;
  object->set_gpu_program(first, nullptr);
  object->set_gpu_program(second, nullptr);
  EXPECT_EQ(first->get_ref(), 1);
  EXPECT_EQ(second->get_ref(), 2);
  object->set_gpu_program(nullptr, nullptr);
  EXPECT_EQ(second->get_ref(), 1);
  EXPECT_EQ(object->get_gpu_program(), nullptr);
}

TEST(Object, AProgramThatHangsOnTheOldOneSurvivesTheChange) {
  Held<Object> object;
  GpuProgram* old = new GpuProgram;
  GpuProgram* below = new GpuProgram;
  old->add_child(below);
  object->set_gpu_program(old, nullptr);
  object->set_gpu_program(below, nullptr);
  EXPECT_EQ(object->get_gpu_program(), below);
  EXPECT_EQ(below->get_ref(), 1);
}

TEST(Object, ProgramReachesTheSubtreeOnlyWithANode) {
  Family f;
  Held<GpuProgram> program;
  f.parent->set_gpu_program(program, nullptr);
  EXPECT_EQ(f.child->get_gpu_program(), nullptr);
  f.parent->set_gpu_program(nullptr, nullptr);
  f.parent->set_gpu_program(program, f.parent);
  EXPECT_EQ(f.child->get_gpu_program(), program.get());
  EXPECT_EQ(f.grandchild->get_gpu_program(), program.get());
  EXPECT_EQ(f.hidden->get_gpu_program(), nullptr);
  EXPECT_EQ(program->get_ref(), 4);
}

// ---- bounding volume ------------------------------------------------------------------------

TEST(Object, BuildTakesBoundsFromTheGeometryOnlyOnce) {
  Held<Witness> object;
  EXPECT_TRUE(object->_build());
  EXPECT_FALSE(object->bounding_volume_update_from_geometry_get_state());
  EXPECT_TRUE(object->_build());
  EXPECT_THAT(object->seen, ElementsAre("volume(null)"));
  object->bounding_volume_update_from_geometry_set_state(true);
  object->_build();
  EXPECT_EQ(object->seen.size(), 2u);
}

TEST(Object, ForcedUpdateComputesAgain) {
  Held<Witness> object;
  object->bounding_volume_update(false, nullptr);
  object->bounding_volume_update(false, nullptr);
  EXPECT_EQ(object->seen.size(), 1u);
  object->bounding_volume_update(true, nullptr);
  EXPECT_EQ(object->seen.size(), 2u);
}

TEST(Object, BoundsUpdateTakesTheTransformGivenOrTheAbsoluteOne) {
  Held<Object> parent, child;
  parent->add_child(child);
  parent->set_position(10, 0, 0);
  child->set_bounding_box(vec4(-1, -1, -1, 1), vec4(1, 1, 1, 1));
  child->bounding_volume_update(false, nullptr);
  EXPECT_EQ(child->get_global_bounding_sphere_center(), vec4(10, 0, 0, 1));
  mat4 given;
  given.init_translate(0, 5, 0);
  child->bounding_volume_update(false, &given);
  EXPECT_EQ(child->get_global_bounding_sphere_center(), vec4(0, 5, 0, 1));
  EXPECT_EQ(child->get_global_bounding_box_size(), vec4(2, 2, 2, 1));
  EXPECT_EQ(child->get_global_bounding_sphere_radius(), 1.0f);
}

TEST(Object, ChildVolumesAreMergedWithoutTheChildsTransform) {
  LogCapture log(LOG_LEVEL_INFO);
  Held<Object> parent, child, grandchild;
  Held<Node> plain_node;
  parent->add_child(plain_node);
  parent->add_child(child);
  child->add_child(grandchild);
  child->set_position(100, 0, 0);
  child->set_bounding_box(vec4(-1, -2, -3, 1), vec4(1, 2, 3, 1));
  grandchild->set_bounding_box(vec4(0, 0, 0, 1), vec4(1, 4, 1, 1));
  parent->set_bounding_sphere(vec4(0, 0, 0, 1), 7);
  EXPECT_TRUE(parent->bounding_volume_compute(nullptr));
  EXPECT_EQ(parent->get_bounding_box_min(), vec4(-1, -2, -3, 1));
  EXPECT_EQ(parent->get_bounding_box_max(), vec4(1, 4, 3, 1));
  EXPECT_EQ(parent->get_bounding_box_size(), vec4(2, 6, 6, 1));
  EXPECT_EQ(parent->get_bounding_sphere_center(), vec4(0, 1, 0, 1));
  EXPECT_EQ(parent->get_bounding_sphere_radius(), 7.0f);
  EXPECT_EQ(log.count("BoundingVolume::merge() - box size:<2.00;6.00;6.00> - "
                      "sphere center:<0.00;1.00;0.00>"),
            2);
}

TEST(Object, ComputingBoundsResetsTheGlobalOnes) {
  Object object;
  object.update_global_bounding_volume(vec4(-1, -1, -1, 1), vec4(1, 1, 1, 1));
  object.bounding_volume_compute(nullptr);
  EXPECT_EQ(object.get_global_bounding_box_size(), vec4(0, 0, 0, 1));
  EXPECT_EQ(object.get_global_bounding_sphere_radius(), 0.0f);
}

TEST(Object, GlobalBoundsGrowWithEachBox) {
  Object object;
  object.bounding_sphere_use_inscribed_sphere(false);
  object.update_global_bounding_volume(vec4(0, 0, 0, 1), vec4(1, 1, 1, 1));
  object.update_global_bounding_volume(vec4(0, 0, 0, 1), vec4(4, 0, 3, 1));
  EXPECT_EQ(object.get_global_bounding_box_size(), vec4(4, 1, 3, 1));
  EXPECT_EQ(object.get_global_bounding_sphere_center(), vec4(2, 0.5f, 1.5f, 1));
  EXPECT_FLOAT_EQ(object.get_global_bounding_sphere_radius(), std::sqrt(26.0f) / 2);
  object.bounding_sphere_use_inscribed_sphere(true);
  object.update_global_bounding_volume(vec4(0, 0, 0, 1), vec4(1, 1, 1, 1));
  EXPECT_FLOAT_EQ(object.get_global_bounding_sphere_radius(), std::sqrt(26.0f) / 2 / 1.732f);
}

}  // namespace
}  // namespace orv
