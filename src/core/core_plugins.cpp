#include <orv/core/kernel.h>
#include <orv/core/plugin_mgr.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/image/image_codec_stb.h>
#include <orv/loaders/loader3d_lib3ds.h>
#include <orv/loaders/loader3d_obj.h>
#include <orv/loaders/loader3d_obj_v2.h>
#include <orv/loaders/loader3d_stl.h>

#include "core/kernel_data.h"
#include "render/opengl/renderer_opengl.h"

namespace orv {

// The plugins that live inside the library: the one place that names their classes.

namespace {

template <class T>
T* add_core_plugin() {
  T* plugin = new T;
  Kernel::get()->insert_core_plugin(plugin);
  plugin->initialize();
  plugin->start();
  return plugin;
}

template <class T>
void add_core_loader(Loader3D*& loader) {
  if (!loader) loader = add_core_plugin<T>();
}

}  // namespace

bool Kernel::load_core_loader3d_plugins() {
  // Models are offered to the loaders in this order.
  add_core_loader<Loader3D_Lib3ds>(data_->loader_lib3ds);
  add_core_loader<Loader3D_OBJ>(data_->loader_obj);
  add_core_loader<Loader3D_OBJ_V2>(data_->loader_obj_v2);
  add_core_loader<Loader3D_STL>(data_->loader_stl);
  return true;
}

bool Kernel::load_core_image_codec_plugins() {
  if (data_->core_plugin_stb_loading) add_core_plugin<ImageCodecStb>();
  return true;
}

bool Kernel::init_texture_mgr_core_image_plugins() {
  load_core_image_codec_plugins();
  TextureMgr::get()->register_all_image_codec_plugins();
  return true;
}

Renderer* Kernel::load_core_opengl_renderer_plugin(bool create) {
  if (create) {
    Renderer* renderer = new RendererOpenGL;
    insert_core_plugin(renderer);
    return renderer;
  }
  Plugin* first = PluginMgr::get()->get_plugin_by_type(PLUGIN_TYPE_RENDERER, 0);
  return first && first->get_core_plugin_state() ? static_cast<Renderer*>(first) : nullptr;
}

}  // namespace orv
