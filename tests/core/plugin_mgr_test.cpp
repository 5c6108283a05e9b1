#include <orv/core/plugin_mgr.h>

#include "support/log_capture.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <string>

namespace orv {
namespace {

using test::LogCapture;
using test::TempFolder;
using testing::ElementsAre;

class TestPlugin : public Plugin {
 public:
  explicit TestPlugin(const char* name = "P", PLUGIN_TYPE type = static_cast<PLUGIN_TYPE>(77)) {
    set_name(name);
    set_type(type);
    ++alive;
  }
  ~TestPlugin() override { --alive; }
  bool stop() override {
    if (at_stop) at_stop();
    return Plugin::stop();
  }

  std::function<void()> at_stop;
  static int alive;
};

int TestPlugin::alive = 0;

class PluginMgrTest : public testing::Test {
 protected:
  PluginMgrTest() { manager.unload_all_plugins(); }
  ~PluginMgrTest() override {
    manager.unload_all_plugins();
    manager.set_current_plugin_dir(nullptr);
  }

  TestPlugin* insert(const char* name = "P") {
    auto* plugin = new TestPlugin(name);
    manager.insert_plugin(plugin);
    return plugin;
  }

  PluginMgr& manager = *PluginMgr::get();
  TempFolder folder;
};

// ---- list --------------------------------------------------------------------------------------

TEST_F(PluginMgrTest, KeepsInsertionOrderAndOneReference) {
  Plugin* a = insert("a");
  Plugin* b = insert("b");
  EXPECT_EQ(manager.get_num_plugins(), 2u);
  EXPECT_EQ(manager.get_plugin_by_index(0), a);
  EXPECT_EQ(manager.get_plugin_by_index(1), b);
  EXPECT_EQ(a->get_ref(), 1);
  EXPECT_EQ(manager.get_plugin(b->get_id()), b);
}

TEST_F(PluginMgrTest, LooksUpTolerantly) {
  insert();
  EXPECT_EQ(manager.get_plugin_by_index(1), nullptr);
  EXPECT_EQ(manager.get_plugin_by_index(0xFFFFFFFFu), nullptr);
  EXPECT_EQ(manager.get_plugin(-5), nullptr);
  EXPECT_FALSE(manager.insert_plugin(nullptr));
}

TEST_F(PluginMgrTest, FindsPluginsByType) {
  const auto type = static_cast<PLUGIN_TYPE>(77);
  Plugin* a = insert("a");
  manager.insert_plugin(new TestPlugin("other", static_cast<PLUGIN_TYPE>(78)));
  Plugin* b = insert("b");
  EXPECT_EQ(manager.get_num_plugins_by_type(type), 2u);
  EXPECT_EQ(manager.get_plugin_by_type(type, 0), a);
  EXPECT_EQ(manager.get_plugin_by_type(type, 1), b);
  EXPECT_EQ(manager.get_plugin_by_type(type, 2), nullptr);
  EXPECT_EQ(manager.get_num_plugins_by_type(static_cast<PLUGIN_TYPE>(79)), 0u);
}

TEST_F(PluginMgrTest, RemoveTakesOneReferenceAndDestroysNothing) {
  TestPlugin* plugin = insert();
  EXPECT_EQ(manager.remove_plugin(plugin), 1);
  EXPECT_EQ(plugin->get_ref(), 0);
  EXPECT_EQ(manager.get_num_plugins(), 0u);
  delete plugin;
}

TEST_F(PluginMgrTest, RemoveOfAStrangerIsZeroAndOfNullMinusOne) {
  TestPlugin stranger;
  EXPECT_EQ(manager.remove_plugin(&stranger), 0);
  insert();
  EXPECT_EQ(manager.remove_plugin(&stranger), 0);
  EXPECT_EQ(manager.remove_plugin(nullptr), -1);
  EXPECT_EQ(manager.get_num_plugins(), 1u);
}

TEST_F(PluginMgrTest, ForgetsAPluginThatItsOwnerDestroys) {
  delete insert();
  EXPECT_EQ(manager.get_num_plugins(), 0u);
}

// ---- unloading ---------------------------------------------------------------------------------

TEST_F(PluginMgrTest, UnloadStopsTerminatesAndDestroys) {
  TestPlugin* plugin = insert();
  plugin->initialize();
  plugin->start();
  const std::string id = std::to_string(plugin->get_id());
  LogCapture log;
  EXPECT_EQ(manager.unload_plugin(plugin), 0);
  EXPECT_EQ(TestPlugin::alive, 0);
  EXPECT_THAT(log.lines(), ElementsAre("plugin P (id=" + id + ") - stop()",
                                       "plugin P (id=" + id + ") - terminate()",
                                       "[Plugin manager] plugin P (" + id + ") unloaded."));
}

TEST_F(PluginMgrTest, UnloadDropsTwoReferences) {
  TestPlugin* two = insert();
  two->add_ref();
  EXPECT_EQ(manager.unload_plugin(two), 0);
  EXPECT_EQ(TestPlugin::alive, 0);

  TestPlugin* three = insert();
  three->add_ref();
  three->add_ref();
  LogCapture log;
  EXPECT_EQ(manager.unload_plugin(three), 1);
  EXPECT_EQ(TestPlugin::alive, 1);
  EXPECT_EQ(manager.get_num_plugins(), 0u);
  EXPECT_THAT(log.lines(),
              ElementsAre("[Plugin manager] plugin P (" + std::to_string(three->get_id()) +
                          ") not unloaded: still referenced (1)."));
  EXPECT_EQ(three->release(), 0);
}

TEST_F(PluginMgrTest, UnloadOfNullOrAnUnknownIdIsMinusOne) {
  EXPECT_EQ(manager.unload_plugin(static_cast<Plugin*>(nullptr)), -1);
  EXPECT_EQ(manager.unload_plugin(-3), -1);
  insert();
  EXPECT_EQ(manager.unload_plugin(-3), -1);
}

TEST_F(PluginMgrTest, UnloadById) {
  EXPECT_EQ(manager.unload_plugin(insert()->get_id()), 0);
  EXPECT_EQ(TestPlugin::alive, 0);
}

TEST_F(PluginMgrTest, UnloadByTypeReturnsHowManyThereWere) {
  insert();
  manager.insert_plugin(new TestPlugin("other", static_cast<PLUGIN_TYPE>(78)));
  insert();
  EXPECT_EQ(manager.unload_plugins_by_type(static_cast<PLUGIN_TYPE>(77)), 2);
  EXPECT_EQ(TestPlugin::alive, 1);
  EXPECT_EQ(manager.unload_plugins_by_type(static_cast<PLUGIN_TYPE>(77)), 0);
}

TEST_F(PluginMgrTest, UnloadAllDropsOneReferenceAndReturnsTheVisitedCount) {
  insert("a");
  TestPlugin* held = insert("b");
  held->add_ref();
  insert("c");
  LogCapture log;
  EXPECT_EQ(manager.unload_all_plugins(), 3);
  EXPECT_EQ(manager.get_num_plugins(), 0u);
  EXPECT_EQ(TestPlugin::alive, 1);
  EXPECT_EQ(held->get_ref(), 1);
  ASSERT_EQ(log.lines().size(), 3u);
  EXPECT_THAT(log.lines()[0], testing::StartsWith("[Plugin manager] plugin a ("));
  EXPECT_EQ(log.lines()[1], "[Plugin manager] plugin b (" + std::to_string(held->get_id()) +
                                ") not unloaded: still referenced (1).");
  EXPECT_THAT(log.lines()[2], testing::EndsWith(") unloaded."));
  held->release();
  EXPECT_EQ(TestPlugin::alive, 0);
  EXPECT_EQ(manager.unload_all_plugins(), 0);
}

TEST_F(PluginMgrTest, UnloadAllVisitsEachEntryOfAPluginThatStandsThereTwice) {
  manager.insert_plugin(insert());
  LogCapture log;
  EXPECT_EQ(manager.unload_all_plugins(), 2);
  EXPECT_EQ(TestPlugin::alive, 0);
  EXPECT_EQ(log.count("not unloaded: still referenced (1)."), 1);
}

TEST_F(PluginMgrTest, UnloadAllSurvivesAStopThatUnloadsOthers) {
  TestPlugin* first = insert("first");
  TestPlugin* second = insert("second");
  first->at_stop = [&] { manager.unload_plugin(second); };
  EXPECT_EQ(manager.unload_all_plugins(), 2);
  EXPECT_EQ(TestPlugin::alive, 0);
}

// ---- loading: what fails (modules that load have a test of their own) --------------------------

TEST_F(PluginMgrTest, CurrentDirectoryIsATextThatNullClears) {
  EXPECT_STREQ(manager.get_current_plugin_dir(), "");
  manager.set_current_plugin_dir("somewhere/");
  EXPECT_STREQ(manager.get_current_plugin_dir(), "somewhere/");
  manager.set_current_plugin_dir(nullptr);
  EXPECT_STREQ(manager.get_current_plugin_dir(), "");
}

TEST_F(PluginMgrTest, FailedLoadLeavesTheListUnchangedAndWarns) {
  insert();
  LogCapture log(LOG_LEVEL_INFO);
  const std::string missing = folder.file("missing.so");
  const std::string text = folder.write("text.so", "this is no library");
  const std::string empty = folder.write("empty.so", "");
  for (const std::string& path : {missing, text, empty, folder.path(), std::string()}) {
    log.clear();
    EXPECT_EQ(manager.load_plugin(path.c_str(), true), -1) << path;
    EXPECT_THAT(log.lines(), ElementsAre("[Plugin manager] unable to load the plugin: " + path));
  }
  EXPECT_EQ(manager.load_plugin(nullptr, false), -1);
  EXPECT_EQ(manager.get_num_plugins(), 1u);
}

TEST_F(PluginMgrTest, PipesAreNotWaitedFor) {
  const std::string pipe = folder.file("pipe.so");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(manager.load_plugin(pipe.c_str(), false), -1);
}

TEST_F(PluginMgrTest, WorkingDirectoryIsRestoredAfterALoad) {
  const auto before = std::filesystem::current_path();
  manager.set_current_plugin_dir(folder.path().c_str());
  manager.load_plugin("missing.so", false);
  EXPECT_EQ(std::filesystem::current_path(), before);
  manager.set_current_plugin_dir("/no/such/directory");
  manager.load_plugin("missing.so", false);
  EXPECT_EQ(std::filesystem::current_path(), before);
}

TEST_F(PluginMgrTest, LibraryWithoutTheExportIsAnError) {
  LogCapture log(LOG_LEVEL_INFO);
  EXPECT_EQ(manager.load_plugin("libm.so.6", false), -1);  // found by the system's own search
  EXPECT_THAT(log.lines(), ElementsAre("[Plugin manager] unable to call the creation function of "
                                       "plugin: libm.so.6"));
}

TEST_F(PluginMgrTest, KnownFileNameReturnsItsPluginWithoutAReference) {
  TestPlugin* plugin = insert();
  plugin->set_full_filename("/plugins/known.so");
  EXPECT_EQ(manager.load_plugin("/plugins/known.so", false), plugin->get_id());
  EXPECT_EQ(plugin->get_ref(), 1);
  EXPECT_EQ(manager.load_plugin("/plugins/known.so", true), -1);
}

}  // namespace
}  // namespace orv
