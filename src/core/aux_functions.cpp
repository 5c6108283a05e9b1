#include <orv/core/aux_functions.h>

#include <orv/core/kernel.h>
#include <orv/core/log_mgr.h>
#include <orv/core/plugin.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/math/mat4.h>
#include <orv/render/renderer.h>

#include "core/platform/platform.h"
#include "core/plugin_hooks.h"

#include <string>

namespace orv::aux {

// ---- models and vertex lighting ----------------------------------------------------------------

Model* load_model_from_file(const MeshDataVertexAttribsAllocParams& params, const char* filename,
                            const char* model_dir, const char* resource_dir) {
  return Kernel::get()->load_model_from_file(params, filename, model_dir, resource_dir);
}

Model* load_model_from_file_lib3ds(const MeshDataVertexAttribsAllocParams& params,
                                   const char* filename, const char* model_dir,
                                   const char* resource_dir) {
  return Kernel::get()->load_model_from_file_lib3ds(params, filename, model_dir, resource_dir);
}

Model* load_model_from_file_obj(const MeshDataVertexAttribsAllocParams& params,
                                const char* filename, const char* model_dir,
                                const char* resource_dir) {
  return Kernel::get()->load_model_from_file_obj(params, filename, model_dir, resource_dir);
}

Model* load_model_from_file_fbx(const MeshDataVertexAttribsAllocParams& params,
                                const char* filename, const char* model_dir,
                                const char* resource_dir) {
  return Kernel::get()->load_model_from_file_fbx(params, filename, model_dir, resource_dir);
}

bool compute_object_vertex_color(Object* object, unsigned int vertex_index, vec4& color,
                                 Material* material, Light* light, bool clamp) {
  return Kernel::get()->compute_object_vertex_color(object, vertex_index, color, material, light,
                                                    clamp);
}

bool compute_object_vertex_color_v2(Object* object, const mat4& transform,
                                    unsigned int vertex_index, vec4& color, Material* material,
                                    Light* light, const vec4& light_position, bool clamp) {
  return Kernel::get()->compute_object_vertex_color_v2(object, transform, vertex_index, color,
                                                       material, light, light_position, clamp);
}

// ---- Vulkan renderer module --------------------------------------------------------------------

namespace {

/// Borrowed from PluginMgr; cleared when the plugin goes away.
Renderer* vk_renderer = nullptr;

void forget_vk_renderer(Plugin* plugin) {
  if (vk_renderer == plugin) vk_renderer = nullptr;
}

}  // namespace

bool vk_init() {
  if (vk_renderer) return true;
  const std::string filename = std::string("plugin_orv_vulkan") + platform::MODULE_SUFFIX;
  Plugin* plugin = Kernel::get()->load_plugin(filename.c_str(), true, true);
  if (!plugin || plugin->get_type() != PLUGIN_TYPE_RENDERER) {
    LogMgr::get().tracef_debug(
        "Vulkan renderer %s: %s", filename.c_str(),
        plugin ? "not a renderer plugin" : "no directory of the plugin search path gave it");
    return false;
  }
  add_plugin_destroyed_hook(&forget_vk_renderer);
  vk_renderer = static_cast<Renderer*>(plugin);
  if (vk_renderer->get_api_type() == ORV_API3D_VULKAN) return vk_renderer->initialize();
  LogMgr::get().tracef_debug("Vulkan renderer %s: its renderer is of another API",
                             filename.c_str());
  vk_cleanup();
  return false;
}

Renderer* vk_get_renderer() {
  vk_init();
  return vk_renderer;
}

bool vk_cleanup() {
  if (!vk_renderer) return true;
  vk_renderer->terminate();
  Kernel::get()->unload_plugin(vk_renderer->get_id());
  vk_renderer = nullptr;
  return true;
}

// ---- shadow mapping ----------------------------------------------------------------------------

void shadow_mapping_compute_texture_matrix(const mat4& projection, const mat4& view,
                                           mat4* camera_view, GpuProgramData* program,
                                           const char* uniform_name, mat4* out) {
  mat4 bias;
  bias.m[0] = 0.5f;
  bias.m[5] = 0.5f;
  bias.m[12] = 0.5f;
  bias.m[13] = 0.5f;
  mat4 texture_matrix = bias * projection * view;
  if (camera_view) {
    mat4 from_camera = *camera_view;
    from_camera.inverse();
    texture_matrix = texture_matrix * from_camera;
  }
  if (program) {
    program->set_uniform_4x4f(uniform_name ? uniform_name : "ORV_TextureMatrix", texture_matrix);
  }
  if (out) *out = texture_matrix;
}

}  // namespace orv::aux
