#include <orv/scene/model.h>

#include <orv/geometry/mesh.h>
#include <orv/gpu/material.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/held.h"
#include "support/recording_renderer.h"

namespace orv {
namespace {

using test::Held;
using test::RecordingRenderer;
using testing::ElementsAre;
using testing::IsEmpty;

/// Notes each drawing with the material of the subset being drawn.
class WitnessMesh : public Mesh {
 public:
  void _render(Renderer*) override {
    const MaterialSubset* subset = get_mesh_data()->get_current_subset();
    drawn.push_back(subset ? subset->material_id : 0);
    if (drop_subsets) get_mesh_data()->free_subsets();
  }
  void render_geometry(Renderer*) override { ++geometry; }
  std::vector<int> drawn;
  int geometry = 0;
  bool drop_subsets = false;
};

class WitnessModel : public Model {
 public:
  void _render(Renderer*) override { ++drawn; }
  int drawn = 0;
};

/// A mesh of four faces with two materials on two faces each.
struct TwoMaterialMesh {
  TwoMaterialMesh() {
    mesh->set_vertex_alloc_params_num_vertices(12);
    mesh->alloc_vertex_data();
    mesh->alloc_face_data(4, false);
    mesh->add_material(first, nullptr);
    mesh->add_material(second, nullptr);
    for (unsigned int face = 0; face < 4; ++face) {
      mesh->set_face_material(face < 2 ? first : second, face);
    }
  }
  Held<WitnessMesh> mesh;
  Held<Material> first, second;
};

TEST(Model, IsAnObjectOfItsOwnType) {
  Model model;
  EXPECT_EQ(model.get_type(), NODE_TYPE_MODEL);
  EXPECT_TRUE(model.is_type_of(NODE_TYPE_OBJECT));
  EXPECT_TRUE(model.get_separate_vertex_arrays_state());
  EXPECT_EQ(model.get_vertex_alignment(), 0);
}

TEST(Model, MakesMeshesWithItsAllocationParameters) {
  MeshDataVertexAttribsAllocParams params;
  params.separate_vertex_arrays = false;
  params.vertex_alignment = 16;
  params.num_user_attribs = 2;
  Model model;
  model.set_mesh_vertex_alloc_params(params);
  EXPECT_FALSE(model.get_separate_vertex_arrays_state());
  EXPECT_EQ(model.get_vertex_alignment(), 16);
  Mesh* mesh = model.create_mesh();
  ASSERT_NE(mesh, nullptr);
  EXPECT_EQ(mesh->get_parent(), nullptr);
  EXPECT_FALSE(mesh->get_vertex_alloc_params().separate_vertex_arrays);
  EXPECT_EQ(mesh->get_vertex_alloc_params().vertex_alignment, 16);
  EXPECT_EQ(mesh->get_vertex_alloc_params().num_user_attribs, 2u);
  mesh->release(nullptr, nullptr);
}

TEST(Model, MakesPlainObjects) {
  Model model;
  Object* object = model.create_object();
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(object->get_type(), NODE_TYPE_OBJECT);
  EXPECT_EQ(model.get_num_children(), 0u);
  object->release(nullptr, nullptr);
}

TEST(Model, WithoutChildrenOnlyDrawsItself) {
  RecordingRenderer renderer;
  WitnessModel model;
  model.render(&renderer, nullptr);
  EXPECT_EQ(model.drawn, 1);
  model.set_render_state(false, nullptr);
  model.render(&renderer, nullptr);
  EXPECT_EQ(model.drawn, 1);
}

TEST(Model, DrawsItsTripodAfterItsChildren) {
  RecordingRenderer renderer;
  Held<Model> model;
  Held<Object> child;
  model->add_child(child);
  child->set_grid_params(1, 1, 0, 0, true, false);
  child->set_display_grid_state(true, nullptr);
  model->set_display_tripod_state(true, nullptr);
  model->render(&renderer, nullptr);
  EXPECT_EQ(renderer.count("draw_immediate_line"), 5);
  std::vector<std::string> widths;
  for (const std::string& call : renderer.calls()) {
    if (call.rfind("set_line_width", 0) == 0) widths.push_back(call);
  }
  EXPECT_THAT(widths, ElementsAre("set_line_width(1)", "set_line_width(1)", "set_line_width(2)",
                                  "set_line_width(1)"));
}

TEST(Model, DrawsEachSubsetWhateverTheRenderStateOfTheMesh) {
  RecordingRenderer renderer;
  Held<WitnessModel> model;
  TwoMaterialMesh two;
  model->add_child(two.mesh);
  model->init_meshes_subsets();
  ASSERT_EQ(two.mesh->get_num_subsets(), 2u);
  two.mesh->set_render_state(false, nullptr);
  model->render(&renderer, nullptr);
  EXPECT_THAT(two.mesh->drawn, ElementsAre(two.first->get_id(), two.second->get_id()));
  EXPECT_EQ(two.mesh->get_mesh_data()->get_current_subset(), nullptr);
  EXPECT_EQ(model->drawn, 1);
}

TEST(Model, AMeshWithoutSubsetsFollowsItsRenderState) {
  RecordingRenderer renderer;
  Held<WitnessModel> model;
  Held<WitnessMesh> mesh;
  model->add_child(mesh);
  model->render(&renderer, nullptr);
  EXPECT_THAT(mesh->drawn, ElementsAre(0));
  mesh->set_render_state(false, nullptr);
  model->render(&renderer, nullptr);
  EXPECT_EQ(mesh->drawn.size(), 1u);
}

TEST(Model, SubsetsMayGoWhileTheyAreDrawn) {
  RecordingRenderer renderer;
  Held<WitnessModel> model;
  TwoMaterialMesh two;
  two.mesh->drop_subsets = true;
  model->add_child(two.mesh);
  model->init_meshes_subsets();
  model->render(&renderer, nullptr);
  EXPECT_EQ(two.mesh->drawn.size(), 1u);
  EXPECT_EQ(two.mesh->get_mesh_data()->get_current_subset(), nullptr);
}

TEST(Model, AMeshWithoutDataHasNoSubsets) {
  RecordingRenderer renderer;
  Held<WitnessModel> model;
  Held<Mesh> mesh(static_cast<VERTEX_FORMAT>(1));
  model->add_child(mesh);
  model->init_meshes_subsets();
  model->render(&renderer, nullptr);
  model->render_geometry(&renderer);
  EXPECT_EQ(model->drawn, 1);
}

TEST(Model, RenderWalksTheNodeGiven) {
  RecordingRenderer renderer;
  Held<WitnessModel> model;
  Held<WitnessMesh> own, other;
  Held<Object> group;
  model->add_child(own);
  group->add_child(other);
  model->render(&renderer, group);
  EXPECT_THAT(own->drawn, IsEmpty());
  EXPECT_EQ(other->drawn.size(), 1u);
  EXPECT_EQ(model->drawn, 1);
}

/// Takes its neighbours out of the parent's list when it is drawn.
class Remover : public Object {
 public:
  void render(Renderer*, Node*) override {
    while (Node* last = get_parent()->get_child(1)) get_parent()->remove_child(last);
  }
};

TEST(Model, ChildrenMayGoWhileTheyAreDrawn) {
  RecordingRenderer renderer;
  Held<WitnessModel> model;
  Held<Remover> remover;
  Held<WitnessMesh> first, second;
  model->add_child(remover);
  model->add_child(first);
  model->add_child(second);
  model->render(&renderer, nullptr);
  EXPECT_THAT(first->drawn, IsEmpty());
  EXPECT_THAT(second->drawn, IsEmpty());
  EXPECT_EQ(model->drawn, 1);
}

TEST(Model, RenderGeometryReachesTheObjectChildren) {
  RecordingRenderer renderer;
  Held<Model> model;
  Held<WitnessMesh> mesh;
  Held<Node> node;
  model->add_child(node);
  model->add_child(mesh);
  model->render_geometry(&renderer);
  EXPECT_EQ(mesh->geometry, 1);
}

TEST(Model, NullRendererIsTolerated) {
  Held<Model> model;
  TwoMaterialMesh two;
  model->add_child(two.mesh);
  model->add_child(model->create_mesh());
  model->init_meshes_subsets();
  model->render(nullptr, nullptr);
  model->render_geometry(nullptr);
}

}  // namespace
}  // namespace orv
