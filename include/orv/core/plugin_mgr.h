/// @file
/// The owner of all plugins.
#pragma once

#include <orv/core/api.h>
#include <orv/core/plugin.h>
#include <orv/fwd.h>

namespace orv {

struct PluginMgrData;

/// The singleton that keeps all plugins in the order in which they came. It holds no lock and
/// belongs to the thread that loads plugins.
class ORV_API PluginMgr {
 public:
  /// The one instance, made by the first call and never destroyed. Never null.
  static PluginMgr* get();

  PluginMgr(const PluginMgr&) = delete;
  PluginMgr& operator=(const PluginMgr&) = delete;

  /// Adds a reference and appends. False for null.
  bool insert_plugin(Plugin* plugin);
  /// Takes the plugin out of the list and one reference off it, without destroying it. 1 when done,
  /// 0 when the list does not hold it, -1 for null.
  int remove_plugin(Plugin* plugin);

  /// @{
  /// Directory that is the working directory while a module loads. Null clears it.
  void set_current_plugin_dir(const char* directory);
  const char* get_current_plugin_dir() const;
  /// @}

  /// Loads a module and puts its plugin into the list. Returns the plugin's id, or -1 with a line
  /// in the log. Unless `force_reload`, a module that was loaded under this very name is not loaded
  /// again: the id of its plugin is returned.
  ///
  /// A relative name is taken from the working directory, then from the current plugin directory;
  /// a bare name that is in neither is left to the system's search. Libraries that the module
  /// depends on are found by the module's own run path ("$ORIGIN"), not by the working directory.
  ///
  /// The plugin is neither initialised nor started. The working directory of the process changes
  /// while the module loads.
  int load_plugin(const char* filename, bool force_reload);

  /// @{
  /// Takes the plugin out of the list, stops and terminates it and releases it. That is two
  /// references: only with a third one does it stay alive. Returns the references left, or -1 for
  /// null or an unknown id.
  int unload_plugin(Plugin* plugin);
  int unload_plugin(int id);
  /// @}

  /// Unloads each plugin of a type; returns how many there were.
  int unload_plugins_by_type(PLUGIN_TYPE type);
  /// Stops and terminates every plugin, takes off one reference each and empties the list. A plugin
  /// that is referenced elsewhere stays alive outside the list. Returns the number visited.
  int unload_all_plugins();

  /// Plugins in the list.
  unsigned int get_num_plugins() const;
  /// Null past the end.
  Plugin* get_plugin_by_index(unsigned int index) const;
  /// Null when no plugin has that id.
  Plugin* get_plugin(int id) const;
  /// Plugins of that type in the list.
  unsigned int get_num_plugins_by_type(PLUGIN_TYPE type) const;
  /// The n-th of that type, counted from 0; null when there are fewer.
  Plugin* get_plugin_by_type(PLUGIN_TYPE type, unsigned int n) const;

 private:
  PluginMgr();
  ~PluginMgr() = delete;

  PluginMgrData* data_;
};

}  // namespace orv
