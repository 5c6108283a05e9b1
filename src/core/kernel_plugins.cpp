#include <orv/core/kernel.h>
#include <orv/core/log_mgr.h>
#include <orv/core/plugin_mgr.h>

#include "core/kernel_data.h"

#include <algorithm>
#include <cstring>

namespace orv {

// ---- search path -------------------------------------------------------------------------------

bool Kernel::plugin_search_path_add_dir(const char* directory) {
  if (!directory) return false;
  data_->plugin_search_path.emplace_back(directory);
  return true;
}

bool Kernel::plugin_search_path_remove_dir(const char* directory) {
  if (!directory) return false;
  std::vector<std::string>& path = data_->plugin_search_path;
  const auto found = std::find(path.begin(), path.end(), directory);
  if (found == path.end()) return false;
  path.erase(found);
  return true;
}

bool Kernel::plugin_search_path_clear() {
  data_->plugin_search_path.clear();
  return true;
}

bool Kernel::plugin_search_path_get(char* buffer, unsigned int size) const {
  if (!buffer || size == 0) return false;
  std::string all;
  for (const std::string& directory : data_->plugin_search_path) all += directory + ";";
  const size_t room = size - 1;
  const size_t copied = std::min(all.size(), room);
  std::memcpy(buffer, all.data(), copied);
  std::memset(buffer + copied, 0, room - copied);
  return true;
}

// ---- modules -----------------------------------------------------------------------------------

Plugin* Kernel::load_plugin(const char* filename, bool force_reload, bool use_search_path) {
  if (!filename) return nullptr;
  PluginMgr& manager = *PluginMgr::get();
  int id = -1;
  if (!use_search_path) {
    id = manager.load_plugin(filename, force_reload);
  } else {
    // A copy, since a module may change the path while it loads.
    const std::vector<std::string> path = data_->plugin_search_path;
    for (const std::string& directory : path) {
      manager.set_current_plugin_dir(directory.c_str());
      id = manager.load_plugin((directory + filename).c_str(), force_reload);
      if (id > 0) break;
    }
    if (id <= 0) return nullptr;
  }
  Plugin* plugin = manager.get_plugin(id);
  if (!plugin) {
    LogMgr::get().tracef_debug("orv::Kernel - Plugin (%s) not loaded.", filename);
    return nullptr;
  }
  plugin->set_core_plugin_state(false);
  LogMgr::get().tracef("[%s] %s", plugin->get_name(), plugin->get_description());
  return plugin;
}

int Kernel::unload_plugin(int id) {
  Plugin* plugin = get_plugin(id);
  data_->forget_loader(plugin);
  return PluginMgr::get()->unload_plugin(plugin);
}

int Kernel::unload_plugin(Plugin* plugin) { return plugin ? unload_plugin(plugin->get_id()) : 0; }

bool Kernel::unload_all_plugins() {
  for (Loader3D** loader : data_->core_loaders()) *loader = nullptr;
  PluginMgr::get()->unload_all_plugins();
  return true;
}

namespace {

/// Calls an operation on every plugin; one that the operation adds or unloads is met or passed by.
bool for_all_plugins(bool (Plugin::*operation)()) {
  const PluginMgr& manager = *PluginMgr::get();
  std::vector<int> ids;
  for (unsigned int i = 0; i < manager.get_num_plugins(); ++i) {
    ids.push_back(manager.get_plugin_by_index(i)->get_id());
  }
  for (const int id : ids) {
    if (Plugin* plugin = manager.get_plugin(id)) (plugin->*operation)();
  }
  return true;
}

}  // namespace

bool Kernel::initialize_all_plugins() { return for_all_plugins(&Plugin::initialize); }

bool Kernel::start_all_plugins() { return for_all_plugins(&Plugin::start); }

bool Kernel::stop_all_plugins() { return for_all_plugins(&Plugin::stop); }

bool Kernel::terminate_all_plugins() { return for_all_plugins(&Plugin::terminate); }

Plugin* Kernel::get_plugin(int id) const { return PluginMgr::get()->get_plugin(id); }

// ---- core plugins ------------------------------------------------------------------------------

bool Kernel::insert_core_plugin(Plugin* plugin) {
  if (!plugin) return false;
  PluginMgr::get()->insert_plugin(plugin);
  LogMgr::get().tracef_debug("Core plugin (%s::%d) loaded ok.", plugin->get_name(),
                             plugin->get_id());
  LogMgr::get().tracef_debug("%s: %s. By %s", plugin->get_name(), plugin->get_description(),
                             plugin->get_author());
  return true;
}

bool Kernel::load_core_plugins() {
  load_core_loader3d_plugins();
  return true;
}

void Kernel::core_plugin_set_loading_state_stb(bool state) {
  data_->core_plugin_stb_loading = state;
}

}  // namespace orv
