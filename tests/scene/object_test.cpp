#include <orv/scene/object.h>

#include <orv/gpu/gpu_program.h>
#include <orv/gpu/material.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/image/image.h>
#include <orv/image/image_codec.h>
#include <orv/scene/tripod.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/held.h"
#include "support/log_capture.h"

namespace orv {
namespace {

using test::Held;
using test::LogCapture;
using testing::ElementsAre;

/// Tells which operations reached it.
class Witness : public Object {
 public:
  using Object::rotate_vertices_position;
  using Object::set_vertices_color;
  using Object::translate_vertices_position;

  void set_tessellation_state(bool state, Node* node) override {
    note("tessellation", node);
    Object::set_tessellation_state(state, node);
  }
  bool compute_faces_normal(Node* node) override {
    note("faces_normal", node);
    return Object::compute_faces_normal(node);
  }
  bool compute_vertices_normal(Node* node) override {
    note("vertices_normal", node);
    return Object::compute_vertices_normal(node);
  }
  bool average_vertices_normal(float epsilon, Node* node) override {
    note("average", node);
    return Object::average_vertices_normal(epsilon, node);
  }
  void translate_vertices_position(const vec4& v, Node* node) override {
    note("translate4", node);
    Object::translate_vertices_position(v, node);
  }
  void translate_vertices_position(const vec3& v, Node* node) override {
    note("translate3", node);
    Object::translate_vertices_position(v, node);
  }
  void scale_vertices_position(const vec4& v, Node* node) override {
    note("scale", node);
    Object::scale_vertices_position(v, node);
  }
  void rotate_vertices_position(const quat& q, Node* node) override {
    note("rotate_quat", node);
    Object::rotate_vertices_position(q, node);
  }
  void rotate_vertices_position(float x, float y, float z, Node* node) override {
    note("rotate_xyz", node);
    Object::rotate_vertices_position(x, y, z, node);
  }
  void set_vertices_color(const vec4& color, Node* node) override {
    note("color", node);
    last_color = color;
    Object::set_vertices_color(color, node);
  }
  void flip_faces(Node* node) override {
    note("flip_faces", node);
    Object::flip_faces(node);
  }
  void flip_vertex_normals(Node* node) override {
    note("flip_normals", node);
    Object::flip_vertex_normals(node);
  }
  bool bounding_volume_compute(Node* node) override {
    note("volume", node);
    return Object::bounding_volume_compute(node);
  }
  unsigned int get_num_vertices(Node*) override { return vertices; }
  unsigned int get_num_faces(Node*) override { return faces; }

  std::vector<std::string> seen;
  vec4 last_color;
  unsigned int vertices = 0;
  unsigned int faces = 0;

 private:
  void note(const char* name, Node* node) {
    seen.push_back(std::string(name) + (node == this ? "(self)" : node ? "(other)" : "(null)"));
  }
};

/// A parent with a child and a grandchild, and a plain node as another child that has an object
/// below it.
struct Family {
  Family() {
    parent->add_child(child);
    child->add_child(grandchild);
    parent->add_child(plain_node);
    plain_node->add_child(hidden);
  }
  Held<Witness> parent, child, grandchild, hidden;
  Held<Node> plain_node;
};

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

// ---- materials ------------------------------------------------------------------------------

TEST(Object, AddingAMaterialTwiceKeepsOneEntryAndOneReference) {
  Held<Object> object;
  Held<Material> material;
  EXPECT_FALSE(object->add_material(nullptr, nullptr));
  EXPECT_TRUE(object->add_material(material, nullptr));
  EXPECT_TRUE(object->add_material(material, nullptr));
  EXPECT_EQ(object->get_num_materials(), 1u);
  EXPECT_EQ(material->get_ref(), 2);
}

TEST(Object, FindsMaterialsByIndexIdAndName) {
  Held<Object> object;
  Held<Material> first, second;
  first->set_name("first");
  second->set_name("second");
  object->add_material(first, nullptr);
  object->add_material(second, nullptr);
  EXPECT_EQ(object->get_material_by_index(1), second.get());
  EXPECT_EQ(object->get_material_by_index(2), nullptr);
  EXPECT_EQ(object->get_material(first->get_id()), first.get());
  EXPECT_EQ(object->get_material(-1), nullptr);
  EXPECT_EQ(object->get_material_by_name("second"), second.get());
  EXPECT_EQ(object->get_material_by_name("sec"), nullptr);
  EXPECT_EQ(object->get_material_by_name(nullptr), nullptr);
}

TEST(Object, LongListsOfMaterialsStayInOrderAndAreFoundById) {
  Held<Object> object;
  std::vector<Material*> materials;
  for (int i = 0; i < 100; ++i) {
    materials.push_back(new Material);
    object->add_material(materials.back(), nullptr);
    object->add_material(materials[materials.size() / 2], nullptr);
  }
  ASSERT_EQ(object->get_num_materials(), 100u);
  for (unsigned int i = 0; i < 100; ++i) {
    EXPECT_EQ(object->get_material_by_index(i), materials[i]);
    EXPECT_EQ(object->get_material(materials[i]->get_id()), materials[i]);
    EXPECT_EQ(materials[i]->get_ref(), 1);
  }
  const int gone = materials[50]->get_id();
  EXPECT_TRUE(object->remove_material(materials[50], nullptr));
  EXPECT_EQ(object->get_material(gone), nullptr);
  EXPECT_EQ(object->get_material(materials[51]->get_id()), materials[51]);
  EXPECT_EQ(object->get_material_by_index(50), materials[51]);
  const int last = materials[99]->get_id();
  object->remove_all_materials(nullptr, nullptr);
  EXPECT_EQ(object->get_material(last), nullptr);
  Held<Material> one;
  object->add_material(one, nullptr);
  EXPECT_EQ(object->get_material(one->get_id()), one.get());
}

TEST(Object, MaterialNamesAreComparedOver127Characters) {
  Held<Object> object;
  Held<Material> material;
  const std::string name(127, 'n');
  material->set_name((name + "one").c_str());
  object->add_material(material, nullptr);
  EXPECT_EQ(object->get_material_by_name((name + "two").c_str()), material.get());
  EXPECT_EQ(object->get_material_by_name(name.substr(1).c_str()), nullptr);
}

TEST(Object, MaterialsReachTheSubtreeOnlyWithANode) {
  Family f;
  Held<Material> material;
  EXPECT_TRUE(f.parent->add_material(material, f.parent));
  EXPECT_EQ(material->get_ref(), 4);
  EXPECT_EQ(f.grandchild->get_num_materials(), 1u);
  EXPECT_EQ(f.hidden->get_num_materials(), 0u);
  f.parent->set_all_materials_texture_unit_offset(3, f.parent);
  EXPECT_EQ(material->get_texture_unit_offset(), 3u);
  EXPECT_TRUE(f.parent->remove_material(material, nullptr));
  EXPECT_EQ(f.child->get_num_materials(), 1u);
  EXPECT_TRUE(f.child->remove_material(material, f.child));
  EXPECT_EQ(f.grandchild->get_num_materials(), 0u);
  EXPECT_EQ(material->get_ref(), 1);
}

TEST(Object, RemovingAMaterialThatIsNotHeldIsFalse) {
  Held<Object> object;
  Held<Material> material;
  EXPECT_FALSE(object->remove_material(nullptr, nullptr));
  EXPECT_FALSE(object->remove_material(material, nullptr));
  EXPECT_EQ(material->get_ref(), 1);
}

TEST(Object, RemovingTheLastHoldOnAMaterialDestroysIt) {
  Family f;
  Material* material = new Material;
  f.parent->add_material(material, f.parent);
  EXPECT_TRUE(f.parent->remove_material(material, f.parent));
  for (Object* object : {f.parent.get(), f.child.get(), f.grandchild.get()}) {
    EXPECT_EQ(object->get_num_materials(), 0u);
  }
}

TEST(Object, RemovingAllMaterialsEmptiesTheChildrenOfASharedOne) {
  Held<Object> object;
  Held<Material> shared;
  Held<Node> below;
  shared->add_child(below);
  object->add_material(shared, nullptr);
  EXPECT_TRUE(object->remove_all_materials(nullptr, nullptr));
  EXPECT_EQ(object->get_num_materials(), 0u);
  EXPECT_EQ(shared->get_ref(), 1);
  EXPECT_EQ(shared->get_num_children(), 0u);
  EXPECT_EQ(below->get_ref(), 1);
}

TEST(Object, RemovingAllMaterialsReachesTheSubtreeOnlyWithANode) {
  Family f;
  Held<Material> material;
  f.parent->add_material(material, f.parent);
  f.parent->remove_all_materials(nullptr, nullptr);
  EXPECT_EQ(f.child->get_num_materials(), 1u);
  f.parent->remove_all_materials(nullptr, f.parent);
  EXPECT_EQ(f.grandchild->get_num_materials(), 0u);
  EXPECT_EQ(material->get_ref(), 1);
}

/// Makes a picture of one pixel for every file name.
class OnePixelCodec : public ImageCodec {
 public:
  OnePixelCodec() { set_name("one_pixel"); }
  bool load_image_from_file(Image* image, const char*, bool, PIXEL_FORMAT) override {
    return image->create(1, 1, 1, PF_RGBA_U8, true, true);
  }
  bool load_image_from_memory(Image*, unsigned char*, unsigned int, bool, PIXEL_FORMAT) override {
    return false;
  }
  bool save_image_to_file(Image*, const char*) override { return false; }
  bool free_image_resources(Image*) override { return false; }
};

TEST(Object, CountOfLoadedTexturesIsThatOfThisObjectAlone) {
  OnePixelCodec codec;
  TextureMgr* textures = TextureMgr::get();
  const std::string old_codec = textures->get_current_image_codec_name();
  textures->register_image_codec_plugin(&codec);
  textures->set_current_image_codec_name("one_pixel");
  {
    Held<Object> parent, child;
    Held<Material> own, other;
    parent->add_child(child);
    parent->add_material(own, nullptr);
    child->add_material(other, nullptr);
    own->async_loading_add_texture_filename("a.png");
    own->async_loading_add_texture_filename("b.png");
    other->async_loading_add_texture_filename("c.png");
    EXPECT_EQ(parent->async_texture_loading_process_all_materials(nullptr, nullptr, PF_RGBA_U8,
                                                                  false, parent),
              2u);
    EXPECT_EQ(own->get_num_textures(), 2u);
    EXPECT_EQ(other->get_num_textures(), 1u);
  }
  textures->set_current_image_codec_name(old_codec.c_str());
  textures->unregister_image_codec_plugin(&codec);
  textures->release_all_textures(nullptr, nullptr);
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
