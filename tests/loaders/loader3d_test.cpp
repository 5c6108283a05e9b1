#include <orv/core/kernel.h>
#include <orv/core/plugin_mgr.h>
#include <orv/loaders/loader3d_lib3ds.h>
#include <orv/loaders/loader3d_obj.h>
#include <orv/loaders/loader3d_obj_v2.h>
#include <orv/loaders/loader3d_stl.h>
#include <orv/scene/scene.h>

#include "loaders/loader_support.h"
#include "loaders/tds_builder.h"
#include "support/vtable_slot.h"

#include <gtest/gtest.h>

namespace orv::test {
namespace {

class NamedLoader : public Loader3D {
 public:
  NamedLoader() {
    set_loader_name("name");
    set_loader_description("description");
    set_loader_name(nullptr);
    set_loader_description(nullptr);
  }
  bool load_model(Model*, const char*) override { return false; }
  bool load_scene(Scene*, const char*, const char*) override { return false; }
};

TEST(Loader3D, FieldsAreEmptyAtFirst) {
  Loader3D_OBJ loader;
  EXPECT_STREQ(loader.get_loader_name(), "");
  EXPECT_STREQ(loader.get_loader_description(), "");
  EXPECT_STREQ(loader.get_model_dir(), "");
  EXPECT_STREQ(loader.get_resource_dir(), "");
}

TEST(Loader3D, SettersCopyAndIgnoreNull) {
  NamedLoader loader;
  EXPECT_STREQ(loader.get_loader_name(), "name");
  EXPECT_STREQ(loader.get_loader_description(), "description");
  std::string directory = "models/";
  loader.set_model_dir(directory.c_str());
  loader.set_resource_dir(directory.c_str());
  directory.clear();
  loader.set_model_dir(nullptr);
  loader.set_resource_dir(nullptr);
  EXPECT_STREQ(loader.get_model_dir(), "models/");
  EXPECT_STREQ(loader.get_resource_dir(), "models/");
}

TEST(Loader3D, LoadingFollowsTheOperationsOfPlugin) {
  EXPECT_EQ(vtable_slot(&Loader3D::stop), 9u);
  EXPECT_EQ(vtable_slot(&Loader3D::load_model), 10u);
  EXPECT_EQ(vtable_slot(&Loader3D::load_scene), 11u);
}

TEST(Loader3D, PluginRecordsOfTheCoreLoaders) {
  const auto check = [](const Loader3D& loader, const char* name, const char* description) {
    EXPECT_EQ(loader.get_type(), PLUGIN_TYPE_LOADER3D);
    EXPECT_EQ(loader.get_type(), 5);
    EXPECT_STREQ(loader.get_name(), name);
    EXPECT_STREQ(loader.get_description(), description);
    EXPECT_STRNE(loader.get_author(), "");
    EXPECT_EQ(std::string(loader.get_build_info()).rfind("BUILD_DATE: [", 0), 0u);
    EXPECT_EQ(loader.get_version_major(), 0);
    EXPECT_EQ(loader.get_version_minor(), 1);
    EXPECT_EQ(loader.get_version_patch(), 0);
  };
  check(Loader3D_OBJ(), "ObjLoaderV1", "OBJ 3D loader (core plugin).");
  check(Loader3D_OBJ_V2(), "ObjLoaderV2", "OBJ loader based on TinyOBJLoader (core plugin).");
  check(Loader3D_STL(), "STL", "STL (StereoLithography) 3D loader (core plugin).");
}

// ---- through the kernel, with all core loaders ----

class CoreLoaders : public LoaderTest<Loader3D_OBJ> {
 protected:
  CoreLoaders() {
    reset();
    kernel.start();
  }
  ~CoreLoaders() override { reset(); }

  void reset() {
    kernel.stop();
    kernel.unload_all_plugins();
    kernel.set_current_3d_obj_loader_name("ObjLoaderV1");
  }
  std::string directory() const { return folder.path() + "/"; }
  /// A triangle in each of the formats.
  void write_triangles() const {
    folder.write("m.obj", TRIANGLE);
    folder.write("m.3ds", tds::file(tds::triangle("t")));
    folder.write("m.stl", std::string(80, ' ') + tds::u32(1) + std::string(50, '\0'));
  }

  static constexpr const char* TRIANGLE = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

  Kernel& kernel = *Kernel::get();
  MeshDataVertexAttribsAllocParams params;
};

TEST_F(CoreLoaders, StandInTheOrderInWhichTheyAreTried) {
  const char* names[] = {"ORV_plugin_core_lib3ds", "ObjLoaderV1", "ObjLoaderV2", "STL"};
  for (unsigned int i = 0; i < 4; ++i) {
    Plugin* plugin = PluginMgr::get()->get_plugin_by_type(PLUGIN_TYPE_LOADER3D, i);
    ASSERT_NE(plugin, nullptr);
    EXPECT_STREQ(plugin->get_name(), names[i]);
    EXPECT_TRUE(plugin->is_initialized());
    EXPECT_TRUE(plugin->is_started());
  }
  EXPECT_EQ(PluginMgr::get()->get_plugin_by_type(PLUGIN_TYPE_LOADER3D, 4), nullptr);
}

TEST_F(CoreLoaders, RefuseNamesOfFourCharacters) {
  for (const char* name : {"a.x3", ".obj", ".3ds", ".stl", "aobj"}) {
    folder.write(name, TRIANGLE);
    EXPECT_EQ(kernel.load_model_from_file(params, name, directory().c_str(), ""), nullptr) << name;
  }
}

TEST_F(CoreLoaders, FindTheirFilesInAnyCase) {
  folder.write("m.OBJ", TRIANGLE);
  Model* model = kernel.load_model_from_file(params, "m.OBJ", directory().c_str(), "");
  ASSERT_NE(model, nullptr);
  EXPECT_EQ(model->get_num_children(), 1u);
  model->release(nullptr, nullptr);
}

TEST_F(CoreLoaders, LeaveNothingOfAnUnknownKindOfFile) {
  folder.write("m.xyz", TRIANGLE);
  EXPECT_EQ(kernel.load_model_from_file(params, "m.xyz", directory().c_str(), ""), nullptr);
  EXPECT_EQ(MaterialMgr::get()->get_num_resources(), 0u);
}

TEST_F(CoreLoaders, TypedFormsAskTheirOwnLoaderAlone) {
  using Load = Model* (Kernel::*)(const MeshDataVertexAttribsAllocParams&, const char*, const char*,
                                  const char*);
  const struct {
    Load load;
    const char* file;
  } rows[] = {{&Kernel::load_model_from_file_lib3ds, "m.3ds"},
              {&Kernel::load_model_from_file_stl, "m.stl"},
              {&Kernel::load_model_from_file_obj, "m.obj"}};
  write_triangles();
  for (const auto& row : rows) {
    for (const char* file : {"m.3ds", "m.stl", "m.obj"}) {
      Model* model = (kernel.*row.load)(params, file, directory().c_str(), "");
      ASSERT_EQ(model != nullptr, std::string(file) == row.file) << row.file << " " << file;
      if (!model) continue;
      EXPECT_EQ(model->get_num_children(), 1u);
      model->release(nullptr, nullptr);
    }
  }
}

TEST_F(CoreLoaders, TheUntypedFormTakesAllFormats) {
  write_triangles();
  for (const char* file : {"m.3ds", "m.stl", "m.obj"}) {
    Model* model = kernel.load_model_from_file(params, file, directory().c_str(), "");
    ASSERT_NE(model, nullptr) << file;
    EXPECT_EQ(model->get_num_children(), 1u) << file;
    model->release(nullptr, nullptr);
  }
}

TEST_F(CoreLoaders, AllocationParametersReachTheMeshesOfAllFormats) {
  write_triangles();
  for (const bool separate : {false, true}) {
    params.separate_vertex_arrays = separate;
    for (const char* file : {"m.3ds", "m.stl", "m.obj"}) {
      Model* model = kernel.load_model_from_file(params, file, directory().c_str(), "");
      ASSERT_NE(model, nullptr) << file;
      EXPECT_EQ(mesh_of(*model, 0)->get_data()->has_separate_vertex_arrays(), separate) << file;
      model->release(nullptr, nullptr);
    }
  }
}

TEST_F(CoreLoaders, ScenesTakeMaterialsMeshesAndCameras) {
  folder.write("m.3ds", tds::sample());
  Scene scene;
  EXPECT_TRUE(kernel.load_scene_from_file_lib3ds_v1(&scene, "m.3ds", directory().c_str(), ""));
  ASSERT_EQ(scene.model_get_num(), 1u);
  EXPECT_EQ(scene.model_get_by_index(0)->get_num_children(), 2u);
  EXPECT_EQ(scene.model_get_by_index(0)->get_num_materials(), 2u);
  EXPECT_EQ(scene.camera_get_num(), 1u);
  EXPECT_FALSE(kernel.load_scene_from_file_lib3ds_v1(nullptr, "m.3ds", nullptr, nullptr));
  EXPECT_FALSE(kernel.load_scene_from_file_lib3ds_v1(&scene, nullptr, nullptr, nullptr));
  EXPECT_FALSE(kernel.load_scene_from_file_lib3ds_v1(&scene, "none.3ds", nullptr, nullptr));
  scene.model_kill_all(nullptr);
  scene.camera_kill_all(nullptr);
  scene.get_root()->release(nullptr, nullptr);
}

TEST_F(CoreLoaders, UnknownObjLoaderNameStopsTheObjFormAlone) {
  folder.write("m.obj", TRIANGLE);
  kernel.set_current_3d_obj_loader_name("nope");
  EXPECT_EQ(kernel.load_model_from_file_obj(params, "m.obj", directory().c_str(), ""), nullptr);
  Model* model = kernel.load_model_from_file(params, "m.obj", directory().c_str(), "");
  ASSERT_NE(model, nullptr);
  model->release(nullptr, nullptr);
}

TEST_F(CoreLoaders, ObjLoaderNameChoosesTheLoader) {
  // The first names a mesh of no group, the second leaves it nameless.
  folder.write("m.obj", TRIANGLE);
  for (const auto& [loader_name, mesh_name] :
       {std::pair("ObjLoaderV1", "obj_default_group"), std::pair("ObjLoaderV2", "")}) {
    kernel.set_current_3d_obj_loader_name(loader_name);
    Model* model = kernel.load_model_from_file_obj(params, "m.obj", directory().c_str(), "");
    ASSERT_NE(model, nullptr);
    EXPECT_STREQ(model->get_child(0)->get_name(), mesh_name);
    model->release(nullptr, nullptr);
  }
}

TEST_F(CoreLoaders, NullDirectoryKeepsTheLastOne) {
  folder.write("m.obj", TRIANGLE);
  Model* model = kernel.load_model_from_file(params, "m.obj", directory().c_str(), "");
  ASSERT_NE(model, nullptr);
  model->release(nullptr, nullptr);
  model = kernel.load_model_from_file(params, "m.obj", nullptr, nullptr);
  ASSERT_NE(model, nullptr);
  model->release(nullptr, nullptr);
}

TEST_F(CoreLoaders, DirectoryAndNameAreJoinedWithoutSeparator) {
  folder.write("prefix_m.obj", TRIANGLE);
  Model* model =
      kernel.load_model_from_file_obj(params, "m.obj", (directory() + "prefix_").c_str(), "unused");
  ASSERT_NE(model, nullptr);
  model->release(nullptr, nullptr);
}

TEST_F(CoreLoaders, FoldersAndMissingFilesGiveNoModel) {
  std::filesystem::create_directory(folder.file("dir.obj"));
  std::filesystem::create_directory(folder.file("dir.stl"));
  for (const char* name : {"dir.obj", "dir.stl", "none.obj", "none.stl", "none.3ds"}) {
    EXPECT_EQ(kernel.load_model_from_file(params, name, directory().c_str(), ""), nullptr) << name;
  }
}

TEST_F(CoreLoaders, OfObjAndStlHaveNoScenes) {
  Loader3D_OBJ v1;
  Loader3D_OBJ_V2 v2;
  Loader3D_STL stl;
  for (Loader3D* each :
       {static_cast<Loader3D*>(&v1), static_cast<Loader3D*>(&v2), static_cast<Loader3D*>(&stl)}) {
    EXPECT_FALSE(each->load_scene(nullptr, "a.obj", "mesh"));
    EXPECT_FALSE(each->load_model(nullptr, "a.obj"));
    Held<Model> model;
    EXPECT_FALSE(each->load_model(model, nullptr));
  }
}

}  // namespace
}  // namespace orv::test
