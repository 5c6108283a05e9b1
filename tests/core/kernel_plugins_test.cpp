#include <orv/core/core.h>
#include <orv/core/kernel.h>
#include <orv/core/plugin_mgr.h>
#include <orv/geometry/geometry_core_alloc_params.h>
#include <orv/render/renderer_null.h>

#include "support/log_capture.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orv {
namespace {

using test::LogCapture;
using test::TempFolder;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> steps;

class TestPlugin : public Plugin {
 public:
  explicit TestPlugin(const char* name) {
    set_name(name);
    set_description("text");
    set_author("somebody");
  }
  bool initialize() override { return note("initialize"); }
  bool start() override { return note("start"); }
  bool stop() override { return note("stop"); }
  bool terminate() override { return note("terminate"); }

 private:
  bool note(const char* step) {
    steps.push_back(std::string(get_name()) + " " + step);
    return false;  // nobody looks at it
  }
};

class KernelPluginsTest : public testing::Test {
 protected:
  KernelPluginsTest() { clear(); }
  ~KernelPluginsTest() override { clear(); }

  void clear() {
    kernel.stop();
    kernel.unload_all_plugins();
    kernel.plugin_search_path_clear();
    PluginMgr::get()->set_current_plugin_dir(nullptr);
    steps.clear();
  }
  std::string path() const {
    char text[256] = {};
    EXPECT_TRUE(kernel.plugin_search_path_get(text, sizeof text));
    return text;
  }

  Kernel& kernel = *Kernel::get();
  TempFolder folder;
};

// ---- search path -------------------------------------------------------------------------------

TEST_F(KernelPluginsTest, SearchPathKeepsOrderAndDuplicates) {
  EXPECT_EQ(path(), "");
  EXPECT_TRUE(kernel.plugin_search_path_add_dir("a/"));
  EXPECT_TRUE(kernel.plugin_search_path_add_dir("b"));
  EXPECT_TRUE(kernel.plugin_search_path_add_dir("a/"));
  EXPECT_FALSE(kernel.plugin_search_path_add_dir(nullptr));
  EXPECT_EQ(path(), "a/;b;a/;");
}

TEST_F(KernelPluginsTest, SearchPathRemovesTheFirstExactEntry) {
  for (const char* directory : {"a/", "b", "a/"}) kernel.plugin_search_path_add_dir(directory);
  EXPECT_TRUE(kernel.plugin_search_path_remove_dir("a/"));
  EXPECT_EQ(path(), "b;a/;");
  EXPECT_FALSE(kernel.plugin_search_path_remove_dir("a"));
  EXPECT_FALSE(kernel.plugin_search_path_remove_dir(nullptr));
  EXPECT_TRUE(kernel.plugin_search_path_clear());
  EXPECT_EQ(path(), "");
}

TEST_F(KernelPluginsTest, SearchPathIsCopiedWithoutATerminatorOfItsOwn) {
  kernel.plugin_search_path_add_dir("abc");
  char text[8] = "xxxxxxx";
  EXPECT_TRUE(kernel.plugin_search_path_get(text, 1));
  EXPECT_STREQ(text, "xxxxxxx");  // size 1 copies nothing
  EXPECT_TRUE(kernel.plugin_search_path_get(text, 4));
  EXPECT_STREQ(text, "abcxxxx");
  EXPECT_TRUE(kernel.plugin_search_path_get(text, 7));
  EXPECT_STREQ(text, "abc;");
  EXPECT_EQ(text[6], 'x');
  EXPECT_FALSE(kernel.plugin_search_path_get(text, 0));
  EXPECT_FALSE(kernel.plugin_search_path_get(nullptr, 8));
}

// ---- modules: what fails -----------------------------------------------------------------------

TEST_F(KernelPluginsTest, EmptySearchPathFindsNothingWithoutALine) {
  LogCapture log;
  EXPECT_EQ(kernel.load_plugin("plugin.so", false, true), nullptr);
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(KernelPluginsTest, EachFailedDirectoryLeavesOneWarning) {
  const std::string first = folder.path() + "/";
  kernel.plugin_search_path_add_dir(first.c_str());
  kernel.plugin_search_path_add_dir("/no/such/dir");  // no separator is added
  LogCapture log(LOG_LEVEL_INFO);
  EXPECT_EQ(kernel.load_plugin("plugin.so", false, true), nullptr);
  EXPECT_THAT(log.lines(),
              ElementsAre("[Plugin manager] unable to load the plugin: " + first + "plugin.so",
                          "[Plugin manager] unable to load the plugin: /no/such/dirplugin.so"));
  EXPECT_STREQ(PluginMgr::get()->get_current_plugin_dir(), "/no/such/dir");
}

TEST_F(KernelPluginsTest, FailedLoadWithoutSearchPathIsTraced) {
  LogCapture log;
  const std::string missing = folder.file("plugin.so");
  EXPECT_EQ(kernel.load_plugin(missing.c_str(), false, false), nullptr);
  EXPECT_EQ(log.lines().back(), "orv::Kernel - Plugin (" + missing + ") not loaded.");
  EXPECT_EQ(kernel.load_plugin(nullptr, true, true), nullptr);
}

// ---- plugins in the list -----------------------------------------------------------------------

TEST_F(KernelPluginsTest, InsertCorePluginAddsOneReferenceAndTwoLines) {
  EXPECT_FALSE(kernel.insert_core_plugin(nullptr));
  LogCapture log;
  auto* plugin = new TestPlugin("P");
  EXPECT_TRUE(kernel.insert_core_plugin(plugin));
  EXPECT_EQ(plugin->get_ref(), 1);
  EXPECT_FALSE(plugin->get_core_plugin_state());
  EXPECT_EQ(kernel.get_plugin(plugin->get_id()), plugin);
  EXPECT_THAT(log.lines(),
              ElementsAre("Core plugin (P::" + std::to_string(plugin->get_id()) + ") loaded ok.",
                          "P: text. By somebody"));
}

TEST_F(KernelPluginsTest, AllPluginsAreCalledInListOrder) {
  kernel.insert_core_plugin(new TestPlugin("a"));
  kernel.insert_core_plugin(new TestPlugin("b"));
  EXPECT_TRUE(kernel.initialize_all_plugins());
  EXPECT_TRUE(kernel.start_all_plugins());
  EXPECT_TRUE(kernel.stop_all_plugins());
  EXPECT_TRUE(kernel.terminate_all_plugins());
  EXPECT_THAT(steps, ElementsAre("a initialize", "b initialize", "a start", "b start", "a stop",
                                 "b stop", "a terminate", "b terminate"));
}

TEST_F(KernelPluginsTest, UnloadAnswersZeroForNullAndMinusOneForUnknown) {
  EXPECT_EQ(kernel.unload_plugin(static_cast<Plugin*>(nullptr)), 0);
  EXPECT_EQ(kernel.unload_plugin(-7), -1);
  auto* plugin = new TestPlugin("P");
  kernel.insert_core_plugin(plugin);
  EXPECT_EQ(kernel.unload_plugin(plugin), 0);
  EXPECT_EQ(PluginMgr::get()->get_num_plugins(), 0u);
}

TEST_F(KernelPluginsTest, UnloadingACoreLoaderClearsThePointer) {
  kernel.start();
  PluginMgr& plugins = *PluginMgr::get();
  ASSERT_EQ(plugins.get_num_plugins_by_type(PLUGIN_TYPE_LOADER3D), 4u);
  const MeshDataVertexAttribsAllocParams params;
  EXPECT_EQ(kernel.unload_plugin(plugins.get_plugin_by_type(PLUGIN_TYPE_LOADER3D, 3)), 0);
  EXPECT_EQ(kernel.load_model_from_file_stl(params, "a.stl", "", ""), nullptr);
  // It is the only one that comes back, at the end.
  kernel.load_core_plugins();
  ASSERT_EQ(plugins.get_num_plugins_by_type(PLUGIN_TYPE_LOADER3D), 4u);
  EXPECT_STREQ(plugins.get_plugin_by_index(plugins.get_num_plugins() - 1)->get_name(), "STL");
}

TEST_F(KernelPluginsTest, UnloadingByThePluginManagerClearsThePointersToo) {
  kernel.start();
  const MeshDataVertexAttribsAllocParams params;
  PluginMgr::get()->unload_plugins_by_type(PLUGIN_TYPE_LOADER3D);
  EXPECT_EQ(kernel.load_model_from_file_stl(params, "a.stl", "", ""), nullptr);
  EXPECT_EQ(kernel.load_model_from_file_lib3ds(params, "a.3ds", "", ""), nullptr);
  EXPECT_EQ(kernel.load_model_from_file_obj(params, "a.obj", "", ""), nullptr);
  EXPECT_EQ(kernel.load_model_from_file(params, "a.obj", "", ""), nullptr);
  kernel.load_core_plugins();
  EXPECT_EQ(PluginMgr::get()->get_num_plugins_by_type(PLUGIN_TYPE_LOADER3D), 4u);
}

// ---- OpenGL renderer ---------------------------------------------------------------------------

TEST_F(KernelPluginsTest, OpenGlRendererIsMadeButNeitherInitializedNorStarted) {
  Renderer* renderer = kernel.load_core_opengl_renderer_plugin(true);
  ASSERT_NE(renderer, nullptr);
  EXPECT_STREQ(renderer->get_name(), "OpenGL");
  EXPECT_STREQ(renderer->get_description(), "OpenGL renderer (OpenGL 2, 3.x and 4.x supported).");
  EXPECT_EQ(renderer->get_type(), PLUGIN_TYPE_RENDERER);
  EXPECT_EQ(renderer->get_ref(), 1);
  EXPECT_FALSE(renderer->is_initialized());
  EXPECT_FALSE(renderer->is_started());
  EXPECT_EQ(kernel.get_plugin(renderer->get_id()), renderer);
}

TEST_F(KernelPluginsTest, OpenGlRendererIsFoundOnlyWithTheCoreMark) {
  EXPECT_EQ(kernel.load_core_opengl_renderer_plugin(false), nullptr);
  Renderer* renderer = kernel.load_core_opengl_renderer_plugin(true);
  EXPECT_EQ(kernel.load_core_opengl_renderer_plugin(false), nullptr);
  renderer->set_core_plugin_state(true);
  EXPECT_EQ(kernel.load_core_opengl_renderer_plugin(false), renderer);
}

TEST_F(KernelPluginsTest, OnlyTheFirstRendererIsLookedAt) {
  kernel.insert_core_plugin(new RendererNull);
  kernel.load_core_opengl_renderer_plugin(true)->set_core_plugin_state(true);
  EXPECT_EQ(kernel.load_core_opengl_renderer_plugin(false), nullptr);
}

TEST_F(KernelPluginsTest, AllPluginsMayBeStartedWithoutAContext) {
  kernel.start();
  kernel.load_core_opengl_renderer_plugin(true);
  EXPECT_TRUE(kernel.initialize_all_plugins());
  EXPECT_TRUE(kernel.start_all_plugins());
  EXPECT_TRUE(kernel.stop_all_plugins());
  EXPECT_TRUE(kernel.terminate_all_plugins());
}

}  // namespace
}  // namespace orv
