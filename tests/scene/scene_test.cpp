#include <orv/scene/scene.h>

#include <orv/geometry/mesh.h>
#include <orv/scene/camera.h>
#include <orv/scene/model.h>
#include <orv/scene/object.h>

#include <gtest/gtest.h>

#include <string>

#include "support/held.h"

namespace orv {
namespace {

using test::Held;

/// A scene whose root goes with it; the scene itself releases nothing.
class SceneTest : public testing::Test {
 protected:
  ~SceneTest() override {
    if (Object* root = scene.get_root()) root->release(nullptr, nullptr);
  }
  Scene scene;
};

/// Counts its own end.
class Mortal : public Object {
 public:
  explicit Mortal(int* deaths) : deaths_(deaths) {}
  ~Mortal() override { ++*deaths_; }

 private:
  int* deaths_;
};

TEST_F(SceneTest, IsNamedByItsIdAndHasAPlainObjectAsRoot) {
  EXPECT_EQ(scene.get_name(), "scene_" + std::to_string(scene.get_id()));
  ASSERT_NE(scene.get_root(), nullptr);
  EXPECT_EQ(scene.get_root()->get_type(), NODE_TYPE_OBJECT);
  EXPECT_EQ(scene.camera_get_num(), 0u);
  EXPECT_EQ(scene.model_get_num(), 0u);
  EXPECT_TRUE(scene.init(nullptr));
}

TEST_F(SceneTest, NullNameIsIgnored) {
  scene.set_name("stage");
  scene.set_name(nullptr);
  EXPECT_STREQ(scene.get_name(), "stage");
  scene.set_name(scene.get_name());
  EXPECT_STREQ(scene.get_name(), "stage");
}

TEST_F(SceneTest, AddedNodesAreChildrenOfTheRoot) {
  Held<Object> object;
  EXPECT_FALSE(scene.add_node(nullptr));
  EXPECT_TRUE(scene.add_node(object));
  EXPECT_EQ(scene.get_root()->get_child(0), object.get());
  EXPECT_EQ(object->get_ref(), 2);
}

TEST_F(SceneTest, RemoveNodeOnlyClearsTheParent) {
  Held<Object> object;
  scene.add_node(object);
  EXPECT_FALSE(scene.remove_node(nullptr));
  EXPECT_TRUE(scene.remove_node(object));
  EXPECT_EQ(object->get_parent(), nullptr);
  EXPECT_EQ(scene.get_root()->get_num_children(), 1u);
  EXPECT_EQ(object->get_ref(), 2);
}

TEST_F(SceneTest, FindsNodesInTheWholeTreeOrBelowANode) {
  Held<Object> child, grandchild, sibling;
  scene.add_node(child);
  scene.add_node(sibling);
  child->add_child(grandchild);
  EXPECT_EQ(scene.get_node(grandchild->get_id(), nullptr), grandchild.get());
  EXPECT_EQ(scene.get_node(grandchild->get_id(), child), grandchild.get());
  EXPECT_EQ(scene.get_node(sibling->get_id(), child), nullptr);
  EXPECT_EQ(scene.get_node(scene.get_root()->get_id(), nullptr), nullptr);
}

// ---- cameras --------------------------------------------------------------------------------

TEST_F(SceneTest, CamerasStandInTheListAndNotInTheTree) {
  Camera* camera = scene.camera_create();
  EXPECT_EQ(scene.camera_get_num(), 1u);
  EXPECT_EQ(scene.camera_get_by_index(0), camera);
  EXPECT_EQ(scene.camera_get_by_index(1), nullptr);
  EXPECT_EQ(scene.camera_get(camera->get_id()), camera);
  EXPECT_EQ(scene.camera_get(-1), nullptr);
  EXPECT_EQ(scene.get_root()->get_num_children(), 0u);
  EXPECT_EQ(camera->get_position(), vec4(0, 0, 10, 1));
  EXPECT_TRUE(scene.camera_kill(nullptr, camera));
  EXPECT_EQ(scene.camera_get_num(), 0u);
}

TEST_F(SceneTest, KillingACameraThatIsNotListedIsFalse) {
  Held<Camera> stranger;
  EXPECT_FALSE(scene.camera_kill(nullptr, nullptr));
  EXPECT_FALSE(scene.camera_kill(nullptr, stranger));
  EXPECT_FALSE(scene.camera_remove(nullptr));
  EXPECT_FALSE(scene.camera_remove(stranger));
  EXPECT_EQ(stranger->get_ref(), 1);
}

TEST_F(SceneTest, RemovingACameraDoesNotDestroyIt) {
  Camera* camera = scene.camera_create();
  EXPECT_TRUE(scene.camera_remove(camera));
  EXPECT_EQ(scene.camera_get_num(), 0u);
  EXPECT_EQ(camera->get_ref(), 0);
  camera->release(nullptr, nullptr);
}

TEST_F(SceneTest, KillingAllCamerasIsAlwaysFalse) {
  EXPECT_FALSE(scene.camera_kill_all(nullptr));
  int deaths = 0;
  Camera* held = scene.camera_create();
  held->add_ref();
  held->add_ref();
  held->add_child(new Mortal(&deaths));
  scene.camera_create();
  EXPECT_FALSE(scene.camera_kill_all(nullptr));
  EXPECT_EQ(scene.camera_get_num(), 0u);
  // One that others hold stays, without its children.
  EXPECT_EQ(held->get_ref(), 1);
  EXPECT_EQ(held->get_num_children(), 0u);
  EXPECT_EQ(deaths, 1);
  held->release(nullptr, nullptr);
}

TEST_F(SceneTest, CleanupKillsCamerasAndLeavesModels) {
  scene.camera_create();
  Model* model = scene.model_create();
  EXPECT_TRUE(scene.cleanup(nullptr));
  EXPECT_EQ(scene.camera_get_num(), 0u);
  EXPECT_EQ(scene.model_get_num(), 1u);
  scene.model_kill(nullptr, model);
}

TEST_F(SceneTest, CamerasThatHangOnEachOtherGoOnlyOnce) {
  Camera* first = scene.camera_create();
  Camera* second = scene.camera_create();
  Model* model = scene.model_create();
  first->add_child(second);
  second->add_child(model);
  EXPECT_TRUE(scene.camera_kill(nullptr, first));
  EXPECT_EQ(scene.camera_get_num(), 0u);
  EXPECT_EQ(scene.model_get_num(), 0u);

  first = scene.camera_create();
  second = scene.camera_create();
  second->add_child(first);
  first->add_child(scene.model_create());
  EXPECT_FALSE(scene.camera_kill_all(nullptr));
  EXPECT_EQ(scene.camera_get_num(), 0u);
  EXPECT_EQ(scene.model_get_num(), 0u);
}

// ---- models ---------------------------------------------------------------------------------

TEST_F(SceneTest, ModelsStandInTheListAndNotInTheTree) {
  Model* model = scene.model_create();
  EXPECT_EQ(scene.model_get_num(), 1u);
  EXPECT_EQ(scene.model_get_by_index(0), model);
  EXPECT_EQ(scene.model_get_by_index(1), nullptr);
  EXPECT_EQ(scene.model_get(model->get_id()), model);
  EXPECT_EQ(scene.model_get(-1), nullptr);
  EXPECT_EQ(scene.get_root()->get_num_children(), 0u);
  EXPECT_FALSE(scene.model_kill(nullptr, nullptr));
  EXPECT_TRUE(scene.model_kill(nullptr, model));
  EXPECT_FALSE(scene.model_kill(nullptr, model));
  EXPECT_EQ(scene.model_get_num(), 0u);
}

TEST_F(SceneTest, ModelsTakeTheAllocationParametersOfTheScene) {
  MeshDataVertexAttribsAllocParams params;
  params.separate_vertex_arrays = false;
  params.vertex_alignment = 32;
  Model* before = scene.model_create();
  scene.set_mesh_vertex_alloc_params(params);
  Model* after = scene.model_create();
  EXPECT_TRUE(before->get_separate_vertex_arrays_state());
  EXPECT_FALSE(after->get_separate_vertex_arrays_state());
  EXPECT_EQ(after->get_vertex_alignment(), 32);
  EXPECT_FALSE(scene.model_kill_all(nullptr));
  EXPECT_EQ(scene.model_get_num(), 0u);
  EXPECT_FALSE(scene.model_kill_all(nullptr));
}

TEST_F(SceneTest, RemovingAModelDoesNotDestroyIt) {
  Model* model = scene.model_create();
  EXPECT_TRUE(scene.model_remove(model));
  EXPECT_FALSE(scene.model_remove(model));
  EXPECT_EQ(model->get_ref(), 0);
  model->release(nullptr, nullptr);
}

TEST_F(SceneTest, AModelInTheTreeLeavesItWhenKilled) {
  Model* model = scene.model_create();
  scene.add_node(model);
  scene.model_kill_all(nullptr);
  EXPECT_EQ(scene.get_root()->get_num_children(), 0u);
}

TEST_F(SceneTest, WhatEndsInATreeOfItsOwnLeavesTheLists) {
  Model* model = scene.model_create();
  Camera* camera = scene.camera_create();
  Object* group = new Object;
  group->add_child(model);
  group->add_child(camera);
  EXPECT_EQ(group->release(nullptr, nullptr), 0);
  EXPECT_EQ(scene.model_get_num(), 0u);
  EXPECT_EQ(scene.camera_get_num(), 0u);
  EXPECT_EQ(scene.camera_get_by_index(0), nullptr);
  scene.model_kill_all(nullptr);
}

TEST_F(SceneTest, ARootThatEndsInAnotherTreeIsGone) {
  Object* group = new Object;
  Object* child = new Object;
  group->add_child(scene.get_root());
  EXPECT_EQ(group->release(nullptr, nullptr), 0);
  EXPECT_EQ(scene.get_root(), nullptr);
  EXPECT_FALSE(scene.add_node(child));
  EXPECT_EQ(scene.get_node(child->get_id(), nullptr), nullptr);
  child->release(nullptr, nullptr);
}

TEST(Scene, DestructorReleasesNeitherRootNorCamerasNorModels) {
  Object* root = nullptr;
  Camera* camera = nullptr;
  Model* model = nullptr;
  {
    Scene scene;
    root = scene.get_root();
    camera = scene.camera_create();
    model = scene.model_create();
  }
  EXPECT_EQ(root->release(nullptr, nullptr), 0);
  EXPECT_EQ(camera->release(nullptr, nullptr), 0);
  EXPECT_EQ(model->release(nullptr, nullptr), 0);
}

}  // namespace
}  // namespace orv
