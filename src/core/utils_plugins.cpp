#include <orv/core/kernel.h>
#include <orv/core/log_mgr.h>
#include <orv/core/plugin.h>
#include <orv/core/utils.h>

#include "core/platform/platform.h"

#include <string>

namespace orv::utils {

namespace {

bool can_load(const char* name) {
  auto* const plugin = static_cast<Plugin*>(load_plugin(name));
  if (!plugin) return false;
  Kernel::get()->unload_plugin(plugin->get_id());
  return true;
}

}  // namespace

bool check_vulkan_support() { return can_load("plugin_orv_vulkan"); }

bool check_d3d12_support() { return can_load("plugin_orv_d3d12"); }

void* load_plugin(const char* name) {
  if (!name) return nullptr;
  const std::string filename = std::string(name) + platform::MODULE_SUFFIX;
  Plugin* const plugin = Kernel::get()->load_plugin(filename.c_str(), true, true);
  if (!plugin) {
    LogMgr::get().tracef_debug("plugin %s: no directory of the plugin search path gave it",
                               filename.c_str());
  }
  return plugin;
}

int unload_plugin(void* plugin) {
  if (!plugin) return 0;
  return Kernel::get()->unload_plugin(static_cast<Plugin*>(plugin)->get_id());
}

}  // namespace orv::utils
