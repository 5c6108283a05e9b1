#pragma once

#include <orv/loaders/loader3d.h>

#include <array>
#include <string>
#include <vector>

namespace orv {

struct KernelData {
  bool started = false;
  bool core_plugin_stb_loading = true;
  // Borrowed from PluginMgr; cleared when the plugin goes away.
  Loader3D* loader_lib3ds = nullptr;
  Loader3D* loader_obj = nullptr;
  Loader3D* loader_obj_v2 = nullptr;
  Loader3D* loader_stl = nullptr;

  std::array<Loader3D**, 4> core_loaders() {
    return {&loader_lib3ds, &loader_obj, &loader_obj_v2, &loader_stl};
  }
  /// Clears the pointer to this plugin; any other is left.
  void forget_loader(const Plugin* plugin) {
    for (Loader3D** loader : core_loaders()) {
      if (*loader == plugin) *loader = nullptr;
    }
  }

  std::vector<std::string> plugin_search_path;
  std::string app_directory;
  std::string current_3d_obj_loader_name = "ObjLoaderV1";
};

}  // namespace orv
