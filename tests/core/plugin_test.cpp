#include <orv/core/plugin.h>

#include "support/log_capture.h"
#include "support/vtable_slot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace orv {
namespace {

using test::LogCapture;
using test::vtable_slot;
using testing::ElementsAre;
using testing::IsEmpty;

class TestPlugin : public Plugin {
 public:
  using Plugin::set_author;
  using Plugin::set_build_info;
  using Plugin::set_description;
  using Plugin::set_name;
  using Plugin::set_type;
  using Plugin::set_version;
  explicit TestPlugin(int* destroyed = nullptr) : destroyed_(destroyed) {}
  ~TestPlugin() override {
    if (destroyed_) ++*destroyed_;
  }

 private:
  int* destroyed_;
};

TEST(Plugin, VirtualOperationsStandInTheirOrder) {
  // The destructor takes two places.
  EXPECT_EQ(vtable_slot(&Plugin::tracef), 2u);
  EXPECT_EQ(vtable_slot(&Plugin::tracef_warning), 3u);
  EXPECT_EQ(vtable_slot(&Plugin::tracef_error), 4u);
  EXPECT_EQ(vtable_slot(&Plugin::tracef_debug), 5u);
  EXPECT_EQ(vtable_slot(&Plugin::initialize), 6u);
  EXPECT_EQ(vtable_slot(&Plugin::terminate), 7u);
  EXPECT_EQ(vtable_slot(&Plugin::start), 8u);
  EXPECT_EQ(vtable_slot(&Plugin::stop), 9u);
  EXPECT_EQ(vtable_slot(&Plugin::release), test::NOT_VIRTUAL);
}

TEST(Plugin, StartsEmptyWithAnIdOfItsOwn) {
  TestPlugin a;
  TestPlugin b;
  EXPECT_GE(a.get_id(), 2);
  EXPECT_EQ(a.get_id(), a.getid());
  EXPECT_NE(a.get_id(), b.get_id());
  EXPECT_STREQ(a.get_name(), "");
  EXPECT_STREQ(a.get_description(), "");
  EXPECT_STREQ(a.get_author(), "");
  EXPECT_STREQ(a.get_build_info(), "");
  EXPECT_STREQ(a.get_full_filename(), "");
  EXPECT_EQ(a.get_version_major(), 0);
  EXPECT_EQ(a.get_type(), 0);
  EXPECT_EQ(a.get_ref(), 0);
  EXPECT_FALSE(a.get_core_plugin_state());
  EXPECT_EQ(a.get_dynlib_handle(), nullptr);
  EXPECT_FALSE(a.is_initialized());
  EXPECT_FALSE(a.is_started());
}

TEST(Plugin, NameOf200CharactersIsCutTo127) {
  TestPlugin plugin;
  plugin.set_name(std::string(200, 'n').c_str());
  EXPECT_EQ(std::string(plugin.get_name()), std::string(127, 'n'));
}

TEST(Plugin, TextsAreCutAtTheirLimits) {
  TestPlugin plugin;
  const std::string text(2000, 'x');
  plugin.set_description(text.c_str());
  plugin.set_author(text.c_str());
  plugin.set_build_info(text.c_str());
  plugin.set_full_filename(text.c_str());
  EXPECT_EQ(std::string(plugin.get_description()).size(), 255u);
  EXPECT_EQ(std::string(plugin.get_author()).size(), 127u);
  EXPECT_EQ(std::string(plugin.get_build_info()).size(), 127u);
  EXPECT_EQ(std::string(plugin.get_full_filename()).size(), 1023u);
}

TEST(Plugin, SettersReplaceAndIgnoreNull) {
  TestPlugin plugin;
  plugin.set_name("a long name");
  plugin.set_name("short");
  plugin.set_name(nullptr);
  plugin.set_name(plugin.get_name());
  EXPECT_STREQ(plugin.get_name(), "short");
  plugin.set_full_filename("file");
  plugin.set_full_filename(nullptr);
  EXPECT_STREQ(plugin.get_full_filename(), "file");
  plugin.set_version(1, 2, 3);
  EXPECT_EQ(plugin.get_version_major(), 1);
  EXPECT_EQ(plugin.get_version_minor(), 2);
  EXPECT_EQ(plugin.get_version_patch(), 3);
  plugin.set_type(PLUGIN_TYPE_LOADER3D);
  EXPECT_EQ(plugin.get_type(), 5);
  plugin.set_core_plugin_state(true);
  EXPECT_TRUE(plugin.get_core_plugin_state());
}

TEST(Plugin, DecRefAtZeroStaysThere) {
  TestPlugin plugin;
  EXPECT_EQ(plugin.dec_ref(), 0);
  EXPECT_EQ(plugin.get_ref(), 0);
  EXPECT_EQ(plugin.add_ref(), 1);
  EXPECT_EQ(plugin.add_ref(), 2);
  EXPECT_EQ(plugin.dec_ref(), 1);
}

TEST(Plugin, ReleaseDestroysAtTheLastReference) {
  int destroyed = 0;
  auto* plugin = new TestPlugin(&destroyed);
  plugin->add_ref();
  plugin->add_ref();
  EXPECT_EQ(plugin->release(), 1);
  EXPECT_EQ(destroyed, 0);
  EXPECT_EQ(plugin->release(), 0);
  EXPECT_EQ(destroyed, 1);
}

TEST(Plugin, ReleaseOfAnUnreferencedPluginDestroysIt) {
  int destroyed = 0;
  EXPECT_EQ((new TestPlugin(&destroyed))->release(), 0);
  EXPECT_EQ(destroyed, 1);
}

TEST(Plugin, StateChangesAreTracedOnceAndAlwaysTrue) {
  LogCapture log;
  TestPlugin plugin;
  plugin.set_name("P");
  const std::string id = std::to_string(plugin.get_id());
  for (int i = 0; i < 2; ++i) {
    EXPECT_TRUE(plugin.initialize());
    EXPECT_TRUE(plugin.start());
  }
  EXPECT_TRUE(plugin.is_initialized());
  EXPECT_TRUE(plugin.is_started());
  for (int i = 0; i < 2; ++i) {
    EXPECT_TRUE(plugin.stop());
    EXPECT_TRUE(plugin.terminate());
  }
  EXPECT_FALSE(plugin.is_initialized());
  EXPECT_FALSE(plugin.is_started());
  const std::string head = "plugin P (id=" + id + ") - ";
  EXPECT_THAT(log.lines(), ElementsAre(head + "initialize()", head + "start()", head + "stop()",
                                       head + "terminate()"));
}

TEST(Plugin, MessagesStartWithTheNameInBrackets) {
  LogCapture log;
  TestPlugin plugin;
  plugin.set_name("P");
  plugin.tracef("a %d", 1);
  plugin.tracef_warning("b");
  plugin.tracef_error("c %s", "%s");
  plugin.tracef_debug("d");
  EXPECT_THAT(log.lines(), ElementsAre("[P] a 1", "[P] b", "[P] c %s", "[P] d"));
}

TEST(Plugin, MessagesGoOutAtTheirLevels) {
  LogCapture log(LOG_LEVEL_WARNING);
  TestPlugin plugin;
  plugin.tracef("a");
  plugin.tracef_debug("d");
  EXPECT_THAT(log.lines(), IsEmpty());
  plugin.tracef_warning("b");
  EXPECT_THAT(log.lines(), ElementsAre("[] b"));
}

TEST(Plugin, MessagesAreCutAt4095Bytes) {
  LogCapture log;
  TestPlugin plugin;
  plugin.tracef("%s", std::string(5000, 'x').c_str());
  EXPECT_THAT(log.lines(), ElementsAre("[] " + std::string(4095, 'x')));
}

TEST(Plugin, MessagesIgnoreANullFormat) {
  LogCapture log;
  TestPlugin plugin;
  const char* null = nullptr;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
  plugin.tracef(null);
  plugin.tracef_error(null);
#pragma GCC diagnostic pop
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(Plugin, RemembersTheThreadThatMadeIt) {
  TestPlugin plugin;
  EXPECT_TRUE(plugin.check_thread());
  bool there_before = true;
  bool there_after = false;
  std::thread([&] {
    there_before = plugin.check_thread();
    plugin.update_thread();
    there_after = plugin.check_thread();
  }).join();
  EXPECT_FALSE(there_before);
  EXPECT_TRUE(there_after);
  EXPECT_FALSE(plugin.check_thread());
  EXPECT_EQ(*plugin.get_thread_ptr(), plugin.get_thread());
}

TEST(Plugin, InstancesOfACorePluginAreRefused) {
  TestPlugin plugin;
  int object = 0;
  EXPECT_EQ(plugin.create_instance(), nullptr);
  EXPECT_FALSE(plugin.kill_instance(&object));
}

}  // namespace
}  // namespace orv
