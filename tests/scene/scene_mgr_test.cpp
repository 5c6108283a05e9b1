#include <orv/scene/scene_mgr.h>

#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_mgr.h>
#include <orv/gpu/material.h>
#include <orv/gpu/material_mgr.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/image/image.h>
#include <orv/scene/camera.h>
#include <orv/scene/model.h>
#include <orv/scene/object.h>
#include <orv/scene/scene.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "support/held.h"

namespace orv {
namespace {

using test::Held;

SceneMgr& mgr() { return *SceneMgr::get(); }

class Mortal : public Object {
 public:
  explicit Mortal(int* deaths) : deaths_(deaths) {}
  ~Mortal() override { ++*deaths_; }

 private:
  int* deaths_;
};

class SceneMgrTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(mgr().get_num_scenes(), 0u); }
  void TearDown() override { mgr().kill_all_scenes(nullptr); }
};

TEST_F(SceneMgrTest, IsOneAndStartsEmpty) {
  EXPECT_EQ(SceneMgr::get(), SceneMgr::get());
  EXPECT_TRUE(mgr().init(nullptr));
  EXPECT_EQ(mgr().get_scene_by_index(0), nullptr);
}

TEST_F(SceneMgrTest, ListsTheScenesItMakes) {
  Scene* first = mgr().create_scene();
  Scene* second = mgr().create_scene();
  EXPECT_EQ(mgr().get_num_scenes(), 2u);
  EXPECT_EQ(mgr().get_scene_by_index(1), second);
  EXPECT_EQ(mgr().get_scene_by_index(2), nullptr);
  EXPECT_EQ(mgr().get_scene(first->get_id()), first);
  EXPECT_EQ(mgr().get_scene(-1), nullptr);
}

TEST_F(SceneMgrTest, KillingASceneTwiceIsFalse) {
  Scene* scene = mgr().create_scene();
  EXPECT_TRUE(mgr().kill_scene(nullptr, scene));
  EXPECT_EQ(mgr().get_num_scenes(), 0u);
  EXPECT_FALSE(mgr().kill_scene(nullptr, scene));
  EXPECT_FALSE(mgr().kill_scene(nullptr, nullptr));
}

TEST_F(SceneMgrTest, KillingASceneDestroysItsTree) {
  int deaths = 0;
  Scene* scene = mgr().create_scene();
  Object* child = new Mortal(&deaths);
  child->add_child(new Mortal(&deaths));
  scene->add_node(child);
  scene->add_node(new Mortal(&deaths));
  EXPECT_TRUE(mgr().kill_scene(nullptr, scene));
  EXPECT_EQ(deaths, 3);
}

TEST_F(SceneMgrTest, WhatOthersHoldStaysWithoutItsChildren) {
  int deaths = 0;
  Held<Object> shared;
  shared->add_child(new Mortal(&deaths));
  Scene* scene = mgr().create_scene();
  scene->add_node(shared);
  EXPECT_TRUE(mgr().kill_scene(nullptr, scene));
  EXPECT_EQ(deaths, 1);
  EXPECT_EQ(shared->get_ref(), 1);
  EXPECT_EQ(shared->get_num_children(), 0u);
}

TEST_F(SceneMgrTest, ANodeInSeveralPlacesOfTheTreeGoesOnce) {
  int deaths = 0;
  Scene* scene = mgr().create_scene();
  Object* shared = new Mortal(&deaths);
  Object* child = new Mortal(&deaths);
  scene->add_node(child);
  scene->add_node(shared);
  scene->add_node(shared);
  child->add_child(shared);
  // One count too few: still no harm.
  shared->remove_ref();
  EXPECT_TRUE(mgr().kill_scene(nullptr, scene));
  EXPECT_EQ(deaths, 2);
}

TEST_F(SceneMgrTest, ADeepTreeIsReleasedWithoutTheStack) {
  int deaths = 0;
  Scene* scene = mgr().create_scene();
  Node* bottom = scene->get_root();
  for (int i = 0; i < 100000; ++i) {
    Node* child = new Node;
    bottom->add_child(child);
    bottom = child;
  }
  bottom->add_child(new Mortal(&deaths));
  EXPECT_TRUE(mgr().kill_scene(nullptr, scene));
  EXPECT_EQ(deaths, 1);
}

TEST_F(SceneMgrTest, KillingAllScenesEmptiesTheList) {
  int deaths = 0;
  for (int i = 0; i < 3; ++i) mgr().create_scene()->add_node(new Mortal(&deaths));
  EXPECT_TRUE(mgr().kill_all_scenes(nullptr));
  EXPECT_EQ(mgr().get_num_scenes(), 0u);
  EXPECT_EQ(deaths, 3);
  mgr().create_scene();
  EXPECT_TRUE(mgr().cleanup(nullptr));
  EXPECT_EQ(mgr().get_num_scenes(), 0u);
}

TEST_F(SceneMgrTest, CamerasAndModelsAreReachedOnlyInTheTree) {
  Scene* scene = mgr().create_scene();
  Camera* camera = scene->camera_create();
  Model* model = scene->model_create();
  scene->add_node(scene->model_create());
  EXPECT_TRUE(mgr().kill_scene(nullptr, scene));
  EXPECT_EQ(camera->release(nullptr, nullptr), 0);
  EXPECT_EQ(model->release(nullptr, nullptr), 0);
}

TEST_F(SceneMgrTest, AModelPutIntoTheTreeMayBeKilledBeforeTheScene) {
  Scene* scene = mgr().create_scene();
  scene->add_node(scene->model_create());
  scene->cleanup(nullptr);
  scene->model_kill_all(nullptr);
  EXPECT_TRUE(mgr().kill_scene(nullptr, scene));
}

// ---- resources in the tree ------------------------------------------------------------------

TEST_F(SceneMgrTest, ResourcesGoBackToTheirManagers) {
  Scene* scene = mgr().create_scene();
  GpuProgram* program = GpuProgramMgr::get()->create_gpu_program("program");
  Material* material = MaterialMgr::get()->create_material("material");
  Texture* texture = TextureMgr::get()->create_texture_2d(2, 2, PF_RGBA_U8, true);
  for (Resource* resource : {static_cast<Resource*>(program), static_cast<Resource*>(material),
                             static_cast<Resource*>(texture)}) {
    scene->add_node(resource);
  }
  EXPECT_TRUE(mgr().kill_scene(nullptr, scene));
  EXPECT_FALSE(GpuProgramMgr::get()->has_resource(program));
  EXPECT_FALSE(MaterialMgr::get()->has_resource(material));
  EXPECT_FALSE(TextureMgr::get()->has_resource(texture));
  for (Resource* resource : {static_cast<Resource*>(program), static_cast<Resource*>(material),
                             static_cast<Resource*>(texture)}) {
    EXPECT_EQ(resource->get_ref(), 1);
    resource->release(nullptr, nullptr);
  }
}

TEST_F(SceneMgrTest, ATextureThatOthersHoldKeepsItsImage) {
  Scene* scene = mgr().create_scene();
  Texture* texture = TextureMgr::get()->create_texture_2d(2, 2, PF_RGBA_U8, true);
  scene->add_node(texture);
  ASSERT_EQ(texture->get_ref(), 2);
  EXPECT_TRUE(mgr().kill_scene(nullptr, scene));
  EXPECT_FALSE(TextureMgr::get()->has_resource(texture));
  EXPECT_EQ(texture->get_ref(), 1);
  ASSERT_NE(texture->get_image_ptr(), nullptr);
  EXPECT_NE(texture->get_image_ptr()->get_u8_ptr(), nullptr);
  texture->release(nullptr, nullptr);
}

TEST_F(SceneMgrTest, ATextureOfTheTreeAloneGoes) {
  Scene* scene = mgr().create_scene();
  Texture* texture = TextureMgr::get()->create_texture_2d(2, 2, PF_RGBA_U8, true);
  const int id = texture->get_id();
  scene->add_node(texture);
  texture->remove_ref();
  EXPECT_TRUE(mgr().kill_scene(nullptr, scene));
  EXPECT_FALSE(TextureMgr::get()->has_resource(id));
}

TEST_F(SceneMgrTest, ScenesMayBeMadeByManyThreads) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int k = 0; k < 50; ++k) mgr().kill_scene(nullptr, mgr().create_scene());
      mgr().create_scene();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(mgr().get_num_scenes(), 4u);
}

}  // namespace
}  // namespace orv
