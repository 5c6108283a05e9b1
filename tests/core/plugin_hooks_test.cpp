#include "core/plugin_hooks.h"

#include <orv/core/plugin.h>

#include <gtest/gtest.h>

namespace orv {
namespace {

Plugin* last_gone = nullptr;
int calls = 0;

void remember(Plugin* plugin) {
  last_gone = plugin;
  ++calls;
}

TEST(PluginHooks, EachDestroyedPluginIsToldOnce) {
  add_plugin_destroyed_hook(remember);
  add_plugin_destroyed_hook(remember);
  add_plugin_destroyed_hook(nullptr);
  auto* plugin = new Plugin;
  delete plugin;
  EXPECT_EQ(last_gone, plugin);
  EXPECT_EQ(calls, 1);
  plugin = new Plugin;
  plugin->release();
  EXPECT_EQ(last_gone, plugin);
  EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace orv
