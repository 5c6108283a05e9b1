// The road of a plugin module: found, loaded, used and unloaded again.

#include <orv/core/aux_functions.h>
#include <orv/core/core.h>
#include <orv/core/kernel.h>
#include <orv/core/plugin_mgr.h>
#include <orv/core/utils.h>
#include <orv/geometry/mesh.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/image/image.h>
#include <orv/image/image_codec.h>
#include <orv/loaders/loader3d.h>
#include <orv/render/renderer.h>
#include <orv/scene/model.h>
#include <orv/scene/scene.h>
#include <orv/scene/scene_mgr.h>

#include "support/log_capture.h"
#include "support/temp_folder.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace orv {
namespace {

namespace fs = std::filesystem;
using test::LogCapture;
using test::TempFolder;
using testing::ElementsAre;

/// Folder of the modules that were built for this test.
std::string plugin_dir() {
#if defined(ORV_TEST_PLUGIN_DIR)
  return ORV_TEST_PLUGIN_DIR;
#else
  const char* directory = std::getenv("ORV_TEST_PLUGIN_DIR");
  return directory ? directory : ".";
#endif
}

std::string module_name(const char* name) {
  return std::string("plugin_orv_test_") + name + "_x64.so";
}

std::string module_path(const char* name) { return plugin_dir() + "/" + module_name(name); }

bool is_mapped(const std::string& path) {
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (handle) dlclose(handle);
  return handle != nullptr;
}

class PluginModules : public testing::Test {
 protected:
  PluginModules() { clear(); }
  ~PluginModules() override { clear(); }

  void SetUp() override { ASSERT_TRUE(fs::exists(module_path("loader"))) << module_path("loader"); }

  void clear() {
    kernel.stop();
    kernel.unload_all_plugins();
    kernel.plugin_search_path_clear();
    plugins.set_current_plugin_dir(nullptr);
  }
  Plugin* load(const char* name) {
    return kernel.load_plugin(module_path(name).c_str(), false, false);
  }
  void add_dir(const std::string& directory) {
    kernel.plugin_search_path_add_dir((directory + "/").c_str());
  }

  Kernel& kernel = *Kernel::get();
  PluginMgr& plugins = *PluginMgr::get();
  TempFolder folder;
};

// ---- loading and unloading ---------------------------------------------------------------------

TEST_F(PluginModules, LoadedPluginStandsInTheListWithItsModule) {
  LogCapture log;
  Plugin* plugin = load("loader");
  ASSERT_NE(plugin, nullptr);
  EXPECT_STREQ(plugin->get_name(), "FBX");
  EXPECT_EQ(plugin->get_full_filename(), module_path("loader"));
  EXPECT_EQ(plugin->get_ref(), 1);
  EXPECT_NE(plugin->get_dynlib_handle(), nullptr);
  EXPECT_FALSE(plugin->get_core_plugin_state());
  EXPECT_FALSE(plugin->is_initialized());
  EXPECT_FALSE(plugin->is_started());
  EXPECT_EQ(plugins.get_num_plugins(), 1u);
  EXPECT_THAT(log.lines(),
              ElementsAre("[Plugin manager] plugin (FBX::" + std::to_string(plugin->get_id()) +
                              ") loaded ok. Plugin filename: " + module_path("loader"),
                          "[FBX] Loader of the plugin tests."));
}

TEST_F(PluginModules, UnloadDestroysThePluginAndFreesItsLibrary) {
  const int id = load("loader")->get_id();
  EXPECT_TRUE(is_mapped(module_path("loader")));
  EXPECT_EQ(kernel.unload_plugin(id), 0);
  EXPECT_EQ(kernel.get_plugin(id), nullptr);
  EXPECT_FALSE(is_mapped(module_path("loader")));
}

TEST_F(PluginModules, SameFileTwiceReturnsTheSamePluginWithoutAReference) {
  Plugin* first = load("loader");
  EXPECT_EQ(load("loader"), first);
  EXPECT_EQ(first->get_ref(), 1);
  EXPECT_EQ(plugins.get_num_plugins(), 1u);
}

TEST_F(PluginModules, ForcedReloadMakesASecondInstance) {
  Plugin* first = load("loader");
  Plugin* second = kernel.load_plugin(module_path("loader").c_str(), true, false);
  ASSERT_NE(second, nullptr);
  EXPECT_NE(first, second);
  EXPECT_NE(first->get_id(), second->get_id());
  EXPECT_EQ(plugins.get_num_plugins(), 2u);
  kernel.unload_plugin(first);
  EXPECT_TRUE(is_mapped(module_path("loader")));  // the second one still needs it
  EXPECT_STREQ(second->get_name(), "FBX");
  kernel.unload_plugin(second);
  EXPECT_FALSE(is_mapped(module_path("loader")));
}

TEST_F(PluginModules, LoadClearsTheCoreMark) {
  Plugin* plugin = load("loader");
  plugin->set_core_plugin_state(true);
  EXPECT_EQ(load("loader"), plugin);
  EXPECT_FALSE(plugin->get_core_plugin_state());
}

TEST_F(PluginModules, ReferencedPluginOutlivesTheListWithItsLibrary) {
  Plugin* plugin = load("loader");
  plugin->add_ref();
  plugins.unload_all_plugins();
  EXPECT_EQ(plugins.get_num_plugins(), 0u);
  EXPECT_STREQ(plugin->get_name(), "FBX");
  EXPECT_EQ(plugin->release(), 0);
  EXPECT_FALSE(is_mapped(module_path("loader")));
}

TEST_F(PluginModules, WithoutADestroyFunctionTheLibraryIsFreedAllTheSame) {
  Plugin* plugin = load("no_destroy");
  ASSERT_NE(plugin, nullptr);
  const int id = plugin->get_id();
  LogCapture log;
  EXPECT_EQ(kernel.unload_plugin(id), 0);
  EXPECT_FALSE(is_mapped(module_path("no_destroy")));
  EXPECT_TRUE(log.contains("[Plugin manager] plugin kept (" + std::to_string(id) + ") unloaded."));
  EXPECT_EQ(plugins.get_num_plugins(), 0u);
}

TEST_F(PluginModules, InstancesComeFromTheSecondPairOfExports) {
  Plugin* plugin = load("loader");
  void* instance = plugin->create_instance();
  ASSERT_NE(instance, nullptr);
  EXPECT_EQ(*static_cast<int*>(instance) % 1000, 0);  // the argument is 0
  EXPECT_TRUE(plugin->kill_instance(instance));
  EXPECT_FALSE(plugin->kill_instance(nullptr));  // the export's own answer
  Plugin* without = load("no_destroy");
  EXPECT_EQ(without->create_instance(), nullptr);
  EXPECT_FALSE(without->kill_instance(without));
}

// ---- failures ----------------------------------------------------------------------------------

TEST_F(PluginModules, MissingExportsAndNullCreationAreErrors) {
  LogCapture log(LOG_LEVEL_INFO);
  EXPECT_EQ(load("no_exports"), nullptr);
  EXPECT_EQ(load("null_creation"), nullptr);
  EXPECT_THAT(log.lines(),
              ElementsAre("[Plugin manager] unable to call the creation function of plugin: " +
                              module_path("no_exports"),
                          "[Plugin manager] plugin creation failed for plugin: " +
                              module_path("null_creation")));
  EXPECT_EQ(plugins.get_num_plugins(), 0u);
  EXPECT_FALSE(is_mapped(module_path("no_exports")));
  EXPECT_FALSE(is_mapped(module_path("null_creation")));
}

TEST_F(PluginModules, TruncatedModulesAreRefused) {
  const std::string bytes = TempFolder::read_file(module_path("no_exports"));
  ASSERT_GT(bytes.size(), 1000u);
  for (size_t size = 0; size < bytes.size() / 2; size += 97) {
    const std::string path = folder.write("cut.so", bytes.substr(0, size));
    EXPECT_EQ(plugins.load_plugin(path.c_str(), true), -1) << size;
  }
  EXPECT_EQ(plugins.get_num_plugins(), 0u);
}

// ---- search ------------------------------------------------------------------------------------

TEST_F(PluginModules, SecondDirectoryIsSearchedAfterTheFirst) {
  add_dir(folder.path());
  add_dir(plugin_dir());
  LogCapture log(LOG_LEVEL_INFO);
  Plugin* plugin = kernel.load_plugin(module_name("loader").c_str(), false, true);
  ASSERT_NE(plugin, nullptr);
  EXPECT_EQ(plugin->get_full_filename(), module_path("loader"));
  EXPECT_EQ(plugins.get_current_plugin_dir(), plugin_dir() + "/");
  EXPECT_THAT(log.lines(), ElementsAre("[Plugin manager] unable to load the plugin: " +
                                           folder.file(module_name("loader")),
                                       "[FBX] Loader of the plugin tests."));
}

TEST_F(PluginModules, FirstDirectoryThatHasTheModuleWins) {
  fs::copy_file(module_path("loader"), folder.file(module_name("loader")));
  add_dir(folder.path());
  add_dir(plugin_dir());
  Plugin* plugin = kernel.load_plugin(module_name("loader").c_str(), false, true);
  ASSERT_NE(plugin, nullptr);
  EXPECT_EQ(plugin->get_full_filename(), folder.file(module_name("loader")));
}

TEST_F(PluginModules, EmptySearchPathDoesNotFindAFileThatIsThere) {
  EXPECT_EQ(kernel.load_plugin(module_path("loader").c_str(), false, true), nullptr);
}

TEST_F(PluginModules, RelativeSearchDirectoryIsTakenFromTheWorkingDirectory) {
  fs::create_directory(folder.file("mods"));
  fs::copy_file(module_path("loader"), folder.file("mods/" + module_name("loader")));
  const fs::path old = fs::current_path();
  fs::current_path(folder.path());
  kernel.plugin_search_path_add_dir("mods/");
  Plugin* plugin = kernel.load_plugin(module_name("loader").c_str(), false, true);
  EXPECT_EQ(fs::current_path(), fs::canonical(folder.path()));
  fs::current_path(old);
  ASSERT_NE(plugin, nullptr);
  EXPECT_EQ(plugin->get_full_filename(), "mods/" + module_name("loader"));
}

TEST_F(PluginModules, BareNameIsFoundInTheCurrentPluginDirectory) {
  plugins.set_current_plugin_dir(plugin_dir().c_str());
  EXPECT_GT(plugins.load_plugin(module_name("loader").c_str(), false), 0);
}

TEST_F(PluginModules, UtilsAppendTheSuffixAndForceAReload) {
  add_dir(plugin_dir());
  void* first = utils::load_plugin("plugin_orv_test_loader");
  void* second = utils::load_plugin("plugin_orv_test_loader");
  ASSERT_NE(first, nullptr);
  ASSERT_NE(second, nullptr);
  EXPECT_NE(first, second);
  EXPECT_EQ(utils::unload_plugin(first), 0);
  EXPECT_EQ(utils::unload_plugin(second), 0);
  EXPECT_EQ(plugins.get_num_plugins(), 0u);
}

// ---- a loader at work --------------------------------------------------------------------------

TEST_F(PluginModules, LoaderModuleServesModelLoading) {
  kernel.start();
  Plugin* plugin = load("loader");
  plugin->initialize();
  plugin->start();
  folder.write("cloud.points", "points 12");
  folder.write("broken.points", "nonsense");
  const std::string dir = folder.path() + "/";
  const MeshDataVertexAttribsAllocParams params;

  Model* model = kernel.load_model_from_file(params, "cloud.points", dir.c_str(), "");
  ASSERT_NE(model, nullptr);
  ASSERT_EQ(model->get_num_children(), 1u);
  auto* mesh = static_cast<Mesh*>(model->get_child(0));
  EXPECT_STREQ(mesh->get_name(), "points");
  EXPECT_EQ(mesh->get_num_vertices(nullptr), 12u);
  model->release(nullptr, nullptr);

  EXPECT_EQ(kernel.load_model_from_file(params, "broken.points", dir.c_str(), ""), nullptr);
  model = kernel.load_model_from_file_fbx(params, "cloud.points", dir.c_str(), "");
  ASSERT_NE(model, nullptr);
  model->release(nullptr, nullptr);

  Scene* scene = SceneMgr::get()->create_scene();
  EXPECT_TRUE(kernel.load_scene_from_file_fbx_v1(scene, "cloud.points", dir.c_str(), ""));
  SceneMgr::get()->kill_scene(nullptr, scene);

  kernel.unload_plugin(plugin);
  EXPECT_EQ(kernel.load_model_from_file(params, "cloud.points", dir.c_str(), ""), nullptr);
  EXPECT_EQ(kernel.load_model_from_file_fbx(params, "cloud.points", dir.c_str(), ""), nullptr);
}

// ---- a codec at work ---------------------------------------------------------------------------

TEST_F(PluginModules, CodecModuleServesTheTextureManager) {
  kernel.start();
  TextureMgr& textures = *TextureMgr::get();
  const std::string path = folder.write("picture.test", "TESTIMG...");
  EXPECT_EQ(textures.create_texture_2d_from_file(path.c_str(), false, PF_RGB_U8), nullptr);

  auto* codec = static_cast<ImageCodec*>(load("codec"));
  ASSERT_NE(codec, nullptr);
  textures.register_image_codec_plugin(codec);
  textures.set_current_image_codec_name("test codec");
  Texture* texture = textures.create_texture_2d_from_file(path.c_str(), false, PF_RGB_U8);
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(texture->get_width(), 2u);
  const Image& image = texture->get_data_ptr()->image;
  ASSERT_NE(image.get_u8_ptr(), nullptr);
  EXPECT_EQ(image.get_u8_ptr()[0], 255);
  EXPECT_EQ(image.get_u8_ptr()[5], 255);
  EXPECT_EQ(textures.get_last_image_codec(), codec);

  // Unloading takes both references: the list's and the texture manager's.
  EXPECT_EQ(kernel.unload_plugin(codec), 0);
  EXPECT_FALSE(is_mapped(module_path("codec")));
  EXPECT_EQ(textures.get_num_image_codecs(), 1u);
  EXPECT_EQ(textures.get_last_image_codec(), nullptr);
  EXPECT_EQ(textures.create_texture_2d_from_file(path.c_str(), false, PF_RGB_U8), nullptr);
  textures.set_current_image_codec_name("stb");
}

// ---- the Vulkan renderer -----------------------------------------------------------------------

class VulkanModule : public PluginModules {
 protected:
  ~VulkanModule() override { aux::vk_cleanup(); }
  void install(const char* name) {
    fs::copy_file(module_path(name), folder.file("plugin_orv_vulkan_x64.so"));
    add_dir(folder.path());
  }
};

TEST_F(VulkanModule, RendererIsLoadedOnceAndInitialised) {
  install("renderer_vk");
  EXPECT_TRUE(aux::vk_init());
  EXPECT_TRUE(aux::vk_init());
  Renderer* renderer = aux::vk_get_renderer();
  ASSERT_NE(renderer, nullptr);
  EXPECT_TRUE(renderer->is_initialized());
  EXPECT_EQ(plugins.get_num_plugins(), 1u);
  EXPECT_TRUE(aux::vk_cleanup());
  EXPECT_EQ(plugins.get_num_plugins(), 0u);
}

TEST_F(VulkanModule, InitAnswersWhatTheRendererSays) {
  install("renderer_vk");
  setenv("ORV_TEST_REFUSE", "1", 1);
  EXPECT_FALSE(aux::vk_init());
  unsetenv("ORV_TEST_REFUSE");
  EXPECT_EQ(plugins.get_num_plugins(), 1u);
}

TEST_F(VulkanModule, RendererOfAnotherApiIsUnloadedAgain) {
  install("renderer_gl");
  EXPECT_FALSE(aux::vk_init());
  EXPECT_EQ(plugins.get_num_plugins(), 0u);
  EXPECT_EQ(aux::vk_get_renderer(), nullptr);
}

TEST_F(VulkanModule, PluginOfAnotherTypeStaysLoaded) {
  install("loader");
  EXPECT_FALSE(aux::vk_init());
  EXPECT_EQ(plugins.get_num_plugins(), 1u);
}

TEST_F(VulkanModule, RendererThatIsUnloadedElsewhereIsForgotten) {
  install("renderer_vk");
  EXPECT_TRUE(aux::vk_init());
  plugins.unload_all_plugins();
  EXPECT_TRUE(aux::vk_cleanup());
  EXPECT_TRUE(aux::vk_init());
  EXPECT_EQ(plugins.get_num_plugins(), 1u);
}

TEST_F(VulkanModule, SupportCheckLoadsAndUnloads) {
  EXPECT_FALSE(utils::check_vulkan_support());
  install("renderer_vk");
  EXPECT_TRUE(utils::check_vulkan_support());
  EXPECT_FALSE(utils::check_d3d12_support());
  EXPECT_EQ(plugins.get_num_plugins(), 0u);
}

}  // namespace
}  // namespace orv
