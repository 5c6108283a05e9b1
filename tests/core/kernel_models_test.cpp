#include <orv/core/aux_functions.h>
#include <orv/core/kernel.h>
#include <orv/core/plugin_mgr.h>
#include <orv/gpu/material.h>
#include <orv/gpu/material_mgr.h>
#include <orv/loaders/loader3d.h>
#include <orv/scene/model.h>
#include <orv/scene/scene.h>
#include <orv/scene/scene_mgr.h>

#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orv {
namespace {

using test::TempFolder;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> calls;
int live_nodes = 0;

/// A child that is counted while it lives.
class CountedNode : public Node {
 public:
  CountedNode() { ++live_nodes; }
  ~CountedNode() override { --live_nodes; }
};

/// Notes its calls; adds a child and a material to the model and succeeds when told so.
class TestLoader : public Loader3D {
 public:
  TestLoader(const char* name, bool succeeds) : succeeds_(succeeds) { set_name(name); }

  bool load_model(Model* model, const char* filename) override {
    calls.push_back(std::string(get_name()) + " " + get_model_dir() + "|" + get_resource_dir() +
                    "|" + filename);
    children_before = model->get_num_children();
    alignment = model->get_vertex_alignment();
    model->add_child(new CountedNode);
    Material* material = static_cast<Material*>(MaterialMgr::get()->get_resource("shared name"));
    found_material = material != nullptr;
    if (!material) {
      material = MaterialMgr::get()->create_material("shared name");
    }
    model->add_material(material, nullptr);
    return succeeds_;
  }

  bool load_scene(Scene*, const char* filename, const char* what) override {
    calls.push_back(std::string(get_name()) + " scene " + filename + " " + what);
    return succeeds_;
  }

  unsigned int children_before = 99;
  int alignment = 0;
  bool found_material = false;

 private:
  bool succeeds_;
};

class KernelModelsTest : public testing::Test {
 protected:
  KernelModelsTest() { reset(); }
  ~KernelModelsTest() override {
    reset();
    EXPECT_EQ(live_nodes, 0);
  }

  void reset() {
    kernel.stop();
    kernel.unload_all_plugins();
    MaterialMgr::get()->release_all_resources(nullptr, nullptr);
    kernel.set_current_3d_obj_loader_name("ObjLoaderV1");
    calls.clear();
  }
  TestLoader* insert(const char* name, bool succeeds) {
    auto* loader = new TestLoader(name, succeeds);
    kernel.insert_core_plugin(loader);
    return loader;
  }
  static void release(Model* model) { model->release(nullptr, nullptr); }

  Kernel& kernel = *Kernel::get();
  MeshDataVertexAttribsAllocParams params;
  TempFolder folder;
};

constexpr const char* TRIANGLE_OBJ = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

TEST_F(KernelModelsTest, FirstLoaderThatSucceedsWins) {
  insert("one", false);
  insert("two", true);
  insert("three", true);
  Model* model = kernel.load_model_from_file(params, "file", "dir/", "res/");
  ASSERT_NE(model, nullptr);
  EXPECT_THAT(calls, ElementsAre("one dir/|res/|file", "two dir/|res/|file"));
  EXPECT_EQ(model->get_ref(), 0);
  release(model);
}

TEST_F(KernelModelsTest, NullDirectoriesKeepThoseOfTheLastUse) {
  insert("one", false);
  kernel.load_model_from_file(params, "a", "dir/", "res/");
  kernel.load_model_from_file(params, "b", nullptr, nullptr);
  EXPECT_THAT(calls, ElementsAre("one dir/|res/|a", "one dir/|res/|b"));
}

TEST_F(KernelModelsTest, AllocationParametersReachTheModel) {
  TestLoader* loader = insert("one", true);
  params.vertex_alignment = 64;
  release(kernel.load_model_from_file(params, "a", "", ""));
  EXPECT_EQ(loader->alignment, 64);
}

TEST_F(KernelModelsTest, FailedLoadersLeaveNothingForTheNext) {
  insert("one", false);
  TestLoader* second = insert("two", true);
  Model* model = kernel.load_model_from_file(params, "a", "", "");
  ASSERT_NE(model, nullptr);
  EXPECT_EQ(second->children_before, 0u);
  EXPECT_FALSE(second->found_material);
  EXPECT_EQ(live_nodes, 1);
  EXPECT_EQ(MaterialMgr::get()->get_num_resources(), 1u);
  release(model);
}

TEST_F(KernelModelsTest, FailureLeavesNoModelBehind) {
  insert("one", false);
  EXPECT_EQ(kernel.load_model_from_file(params, "a", "", ""), nullptr);
  EXPECT_EQ(live_nodes, 0);
  EXPECT_EQ(MaterialMgr::get()->get_num_resources(), 0u);
}

TEST_F(KernelModelsTest, FailureKeepsTheMaterialsThatWereThere) {
  Material* before = MaterialMgr::get()->create_material("shared name");
  insert("one", false);
  EXPECT_EQ(kernel.load_model_from_file(params, "a", "", ""), nullptr);
  EXPECT_EQ(MaterialMgr::get()->get_resource("shared name"), before);
  EXPECT_EQ(before->get_ref(), 1);
}

TEST_F(KernelModelsTest, NullNameReachesNoLoader) {
  insert("FBX", true);
  Scene* scene = SceneMgr::get()->create_scene();
  EXPECT_EQ(kernel.load_model_from_file(params, nullptr, "", ""), nullptr);
  EXPECT_EQ(kernel.load_model_from_file_obj(params, nullptr, "", ""), nullptr);
  EXPECT_EQ(kernel.load_model_from_file_lib3ds(params, nullptr, "", ""), nullptr);
  EXPECT_EQ(kernel.load_model_from_file_stl(params, nullptr, "", ""), nullptr);
  EXPECT_EQ(kernel.load_model_from_file_fbx(params, nullptr, "", ""), nullptr);
  EXPECT_FALSE(kernel.load_scene_from_file_lib3ds_v1(scene, nullptr, "", ""));
  EXPECT_FALSE(kernel.load_scene_from_file_fbx_v1(scene, nullptr, "", ""));
  EXPECT_FALSE(kernel.load_scene_from_file_fbx_v1(nullptr, "a.fbx", "", ""));
  EXPECT_THAT(calls, IsEmpty());
  SceneMgr::get()->kill_scene(nullptr, scene);
}

TEST_F(KernelModelsTest, OnlyTheFirstFbxLoaderIsTried) {
  EXPECT_EQ(kernel.load_model_from_file_fbx(params, "a.fbx", "", ""), nullptr);
  insert("FBX2", true);
  insert("FBX", false);
  insert("FBX", true);
  EXPECT_EQ(kernel.load_model_from_file_fbx(params, "a.fbx", "d/", "r/"), nullptr);
  EXPECT_THAT(calls, ElementsAre("FBX d/|r/|a.fbx"));
}

TEST_F(KernelModelsTest, ScenesOfFbxFilesTakeEverything) {
  Scene* scene = SceneMgr::get()->create_scene();
  EXPECT_FALSE(kernel.load_scene_from_file_fbx_v1(scene, "a.fbx", "", ""));
  insert("FBX", true);
  EXPECT_TRUE(kernel.load_scene_from_file_fbx_v1(scene, "a.fbx", "", ""));
  EXPECT_THAT(calls, ElementsAre("FBX scene a.fbx material + mesh + camera"));
  SceneMgr::get()->kill_scene(nullptr, scene);
}

TEST_F(KernelModelsTest, TypedLoadsNeedTheirCoreLoader) {
  folder.write("t.obj", TRIANGLE_OBJ);
  const std::string dir = folder.path() + "/";
  EXPECT_EQ(kernel.load_model_from_file_obj(params, "t.obj", dir.c_str(), ""), nullptr);
  EXPECT_EQ(kernel.load_model_from_file_stl(params, "t.stl", dir.c_str(), ""), nullptr);
  EXPECT_EQ(kernel.load_model_from_file_lib3ds(params, "t.3ds", dir.c_str(), ""), nullptr);
  Scene* scene = SceneMgr::get()->create_scene();
  EXPECT_FALSE(kernel.load_scene_from_file_lib3ds_v1(scene, "t.3ds", dir.c_str(), ""));
  SceneMgr::get()->kill_scene(nullptr, scene);
}

TEST_F(KernelModelsTest, ObjLoaderIsChosenByItsName) {
  kernel.start();
  folder.write("t.obj", TRIANGLE_OBJ);
  const std::string dir = folder.path() + "/";
  EXPECT_STREQ(kernel.get_current_3d_obj_loader_name(), "ObjLoaderV1");
  for (const char* name : {"ObjLoaderV1", "ObjLoaderV2"}) {
    kernel.set_current_3d_obj_loader_name(name);
    kernel.set_current_3d_obj_loader_name(nullptr);
    EXPECT_STREQ(kernel.get_current_3d_obj_loader_name(), name);
    Model* model = kernel.load_model_from_file_obj(params, "t.obj", dir.c_str(), "");
    ASSERT_NE(model, nullptr) << name;
    EXPECT_EQ(model->get_num_children(), 1u);
    release(model);
  }
  for (const char* name : {"STL", "nope", "ObjLoaderV", ""}) {
    kernel.set_current_3d_obj_loader_name(name);
    EXPECT_EQ(kernel.load_model_from_file_obj(params, "t.obj", dir.c_str(), ""), nullptr) << name;
    Model* model = kernel.load_model_from_file(params, "t.obj", dir.c_str(), "");
    EXPECT_NE(model, nullptr);
    if (model) release(model);
  }
}

TEST_F(KernelModelsTest, NamesDecideAboutTheLoader) {
  kernel.start();
  folder.write("m.OBJ", TRIANGLE_OBJ);
  folder.write("abobj", TRIANGLE_OBJ);
  folder.write(".obj", TRIANGLE_OBJ);
  folder.write("a.x3", TRIANGLE_OBJ);
  folder.write("m.txt", TRIANGLE_OBJ);
  const std::string dir = folder.path() + "/";
  for (const char* name : {"m.OBJ", "abobj"}) {
    Model* model = kernel.load_model_from_file(params, name, dir.c_str(), "");
    ASSERT_NE(model, nullptr) << name;
    release(model);
  }
  for (const char* name : {".obj", "a.x3", "m.txt"}) {
    EXPECT_EQ(kernel.load_model_from_file(params, name, dir.c_str(), ""), nullptr) << name;
  }
}

TEST_F(KernelModelsTest, NullDirectoryKeepsThatOfThePreviousLoad) {
  kernel.start();
  folder.write("t.obj", TRIANGLE_OBJ);
  EXPECT_EQ(kernel.load_model_from_file(params, "t.obj", "/no/such/", ""), nullptr);
  EXPECT_EQ(kernel.load_model_from_file(params, "t.obj", nullptr, nullptr), nullptr);
  release(kernel.load_model_from_file(params, "t.obj", (folder.path() + "/").c_str(), ""));
  Model* model = kernel.load_model_from_file(params, "t.obj", nullptr, nullptr);
  ASSERT_NE(model, nullptr);
  release(model);
}

TEST_F(KernelModelsTest, NoSeparatorIsAddedToTheDirectory) {
  kernel.start();
  folder.write("t.obj", TRIANGLE_OBJ);
  EXPECT_EQ(kernel.load_model_from_file(params, "t.obj", folder.path().c_str(), ""), nullptr);
}

TEST_F(KernelModelsTest, AuxFunctionsForwardToTheKernel) {
  insert("FBX", true);
  release(aux::load_model_from_file(params, "a", "d/", "r/"));
  release(aux::load_model_from_file_fbx(params, "b", "d/", "r/"));
  EXPECT_EQ(aux::load_model_from_file_obj(params, "c", "", ""), nullptr);
  EXPECT_EQ(aux::load_model_from_file_lib3ds(params, "c", "", ""), nullptr);
  EXPECT_THAT(calls, ElementsAre("FBX d/|r/|a", "FBX d/|r/|b"));
}

}  // namespace
}  // namespace orv
