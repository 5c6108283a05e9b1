#include <orv/core/plugin_mgr.h>

#include <orv/core/log_mgr.h>

#include "core/platform/platform.h"
#include "core/plugin_hooks.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace orv {

struct PluginMgrData {
  std::vector<Plugin*> plugins;
  std::string current_plugin_dir;
  /// Plugins that were referenced elsewhere when the list was emptied. They are their holders';
  /// naming them here shows that they are not lost.
  std::vector<Plugin*> left_alive;
};

namespace {

/// Longest part of a file name that a plugin remembers.
constexpr size_t MAX_FILENAME = 1023;

/// What log lines tell of a plugin that may be gone by then.
struct Identity {
  explicit Identity(const Plugin& plugin) : name(plugin.get_name()), id(plugin.get_id()) {}
  std::string name;
  int id;
};

void report_unloaded(const Identity& plugin, int references) {
  if (references > 0) {
    LogMgr::get().tracef_debug(
        "[Plugin manager] plugin %s (%d) not unloaded: still referenced (%d).", plugin.name.c_str(),
        plugin.id, references);
  } else {
    LogMgr::get().tracef_debug("[Plugin manager] plugin %s (%d) unloaded.", plugin.name.c_str(),
                               plugin.id);
  }
}

bool holds(const std::vector<Plugin*>& plugins, const Plugin* plugin) {
  return std::find(plugins.begin(), plugins.end(), plugin) != plugins.end();
}

}  // namespace

// ---- list --------------------------------------------------------------------------------------

PluginMgr::PluginMgr() : data_(new PluginMgrData) {
  add_plugin_destroyed_hook([](Plugin* plugin) {
    PluginMgrData& data = *PluginMgr::get()->data_;
    std::erase(data.plugins, plugin);
    std::erase(data.left_alive, plugin);
  });
}

PluginMgr* PluginMgr::get() {
  static PluginMgr* const manager = new PluginMgr;
  return manager;
}

bool PluginMgr::insert_plugin(Plugin* plugin) {
  if (!plugin) return false;
  plugin->add_ref();
  data_->plugins.push_back(plugin);
  return true;
}

int PluginMgr::remove_plugin(Plugin* plugin) {
  if (!plugin) return -1;
  const auto found =
      std::find_if(data_->plugins.begin(), data_->plugins.end(),
                   [id = plugin->get_id()](const Plugin* entry) { return entry->get_id() == id; });
  if (found == data_->plugins.end()) return 0;
  plugin->dec_ref();
  data_->plugins.erase(found);
  return 1;
}

unsigned int PluginMgr::get_num_plugins() const {
  return static_cast<unsigned int>(data_->plugins.size());
}

Plugin* PluginMgr::get_plugin_by_index(unsigned int index) const {
  return index < data_->plugins.size() ? data_->plugins[index] : nullptr;
}

Plugin* PluginMgr::get_plugin(int id) const {
  for (Plugin* plugin : data_->plugins) {
    if (plugin->get_id() == id) return plugin;
  }
  return nullptr;
}

unsigned int PluginMgr::get_num_plugins_by_type(PLUGIN_TYPE type) const {
  return static_cast<unsigned int>(
      std::count_if(data_->plugins.begin(), data_->plugins.end(),
                    [type](const Plugin* plugin) { return plugin->get_type() == type; }));
}

Plugin* PluginMgr::get_plugin_by_type(PLUGIN_TYPE type, unsigned int n) const {
  for (Plugin* plugin : data_->plugins) {
    if (plugin->get_type() == type && n-- == 0) return plugin;
  }
  return nullptr;
}

// ---- loading -----------------------------------------------------------------------------------

void PluginMgr::set_current_plugin_dir(const char* directory) {
  data_->current_plugin_dir = directory ? directory : "";
}

const char* PluginMgr::get_current_plugin_dir() const { return data_->current_plugin_dir.c_str(); }

int PluginMgr::load_plugin(const char* filename, bool force_reload) {
  if (!filename) return -1;
  if (!force_reload) {
    for (const Plugin* plugin : data_->plugins) {
      if (std::strncmp(filename, plugin->get_full_filename(), MAX_FILENAME) == 0) {
        return plugin->get_id();
      }
    }
  }

  std::string cause;
  void* const library = platform::open_module(filename, data_->current_plugin_dir.c_str(), &cause);
  if (!library) {
    LogMgr::get().tracef_warning("[Plugin manager] unable to load the plugin: %s", filename);
    LogMgr::get().tracef_debug("[Plugin manager] %s", cause.c_str());
    return -1;
  }
  using Create = Plugin* (*)();
  const auto create = reinterpret_cast<Create>(platform::find_symbol(library, "orv_plugin_create"));
  Plugin* const plugin = create ? create() : nullptr;
  if (!plugin) {
    LogMgr::get().tracef_error(
        create ? "[Plugin manager] plugin creation failed for plugin: %s"
               : "[Plugin manager] unable to call the creation function of plugin: %s",
        filename);
    if (!create) {
      LogMgr::get().tracef_debug("[Plugin manager] %s: missing export orv_plugin_create", filename);
    }
    platform::close_library(library);
    return -1;
  }

  plugin->set_core_plugin_state(false);
  plugin->set_dynlib_handle(library);
  insert_plugin(plugin);
  plugin->set_full_filename(filename);
  LogMgr::get().tracef_debug("[Plugin manager] plugin (%s::%d) loaded ok. Plugin filename: %s",
                             plugin->get_name(), plugin->get_id(), filename);
  return plugin->get_id();
}

// ---- unloading ---------------------------------------------------------------------------------

int PluginMgr::unload_plugin(Plugin* plugin) {
  if (!plugin) return -1;
  const Identity identity(*plugin);
  remove_plugin(plugin);
  plugin->stop();
  plugin->terminate();
  const int references = plugin->release();
  report_unloaded(identity, references);
  return references;
}

int PluginMgr::unload_plugin(int id) { return unload_plugin(get_plugin(id)); }

int PluginMgr::unload_plugins_by_type(PLUGIN_TYPE type) {
  std::vector<int> ids;
  for (const Plugin* plugin : data_->plugins) {
    if (plugin->get_type() == type) ids.push_back(plugin->get_id());
  }
  for (const int id : ids) unload_plugin(id);
  return static_cast<int>(ids.size());
}

int PluginMgr::unload_all_plugins() {
  const std::vector<Plugin*> visited = data_->plugins;
  for (Plugin* plugin : visited) {
    // A plugin's stop may have unloaded others.
    if (!holds(data_->plugins, plugin)) continue;
    const Identity identity(*plugin);
    plugin->stop();
    plugin->terminate();
    const auto entry = std::find(data_->plugins.begin(), data_->plugins.end(), plugin);
    if (entry == data_->plugins.end()) continue;
    data_->plugins.erase(entry);
    int references = plugin->dec_ref();
    if (references > 0) {
      data_->left_alive.push_back(plugin);
    } else {
      references = plugin->release();
    }
    report_unloaded(identity, references);
  }
  data_->plugins.clear();
  return static_cast<int>(visited.size());
}

}  // namespace orv
