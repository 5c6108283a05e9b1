#include <orv/core/kernel.h>
#include <orv/core/log_mgr.h>
#include <orv/core/plugin_mgr.h>
#include <orv/gpu/material_mgr.h>
#include <orv/loaders/loader3d.h>
#include <orv/scene/model.h>

#include "core/kernel_data.h"

#include <cstring>

namespace orv {

namespace {

/// Everything that a scene can take from a file.
constexpr const char* WHOLE_SCENE = "material + mesh + camera";

Loader3D* get_loader(unsigned int n) {
  return static_cast<Loader3D*>(PluginMgr::get()->get_plugin_by_type(PLUGIN_TYPE_LOADER3D, n));
}

Loader3D* find_fbx_loader() {
  for (unsigned int n = 0; Loader3D* loader = get_loader(n); ++n) {
    if (std::strncmp(loader->get_name(), "FBX", 127) == 0) return loader;
  }
  return nullptr;
}

void set_directories(Loader3D& loader, const char* model_dir, const char* resource_dir) {
  loader.set_model_dir(model_dir);
  loader.set_resource_dir(resource_dir);
}

void report_missing_loader(const char* filename, const char* loader_name) {
  if (!filename) return;
  LogMgr::get().tracef_debug("model %s: no loader plugin %s", filename, loader_name);
}

/// Drops what a failed loader left, so that the next one does not find its materials by name.
void discard(Model* model, unsigned int num_materials_before) {
  model->release(nullptr, nullptr);
  MaterialMgr& materials = *MaterialMgr::get();
  for (unsigned int n = materials.get_num_resources(); n > num_materials_before; --n) {
    materials.release_resource(nullptr, materials.get_resource_by_index(n - 1), nullptr);
  }
}

}  // namespace

Model* Kernel::load_model_with(const MeshDataVertexAttribsAllocParams& params, Loader3D* loader,
                               const char* filename, const char* model_dir,
                               const char* resource_dir) {
  if (!filename || !loader) return nullptr;
  const unsigned int num_materials = MaterialMgr::get()->get_num_resources();
  Model* model = new Model;
  model->set_mesh_vertex_alloc_params(params);
  set_directories(*loader, model_dir, resource_dir);
  if (loader->load_model(model, filename)) return model;
  discard(model, num_materials);
  return nullptr;
}

Model* Kernel::load_model_from_file(const MeshDataVertexAttribsAllocParams& params,
                                    const char* filename, const char* model_dir,
                                    const char* resource_dir) {
  if (!filename) return nullptr;
  for (unsigned int n = 0; Loader3D* loader = get_loader(n); ++n) {
    Model* model = load_model_with(params, loader, filename, model_dir, resource_dir);
    if (model) return model;
  }
  LogMgr::get().tracef_debug("model %s: no loader took it", filename);
  return nullptr;
}

Model* Kernel::load_model_from_file_obj(const MeshDataVertexAttribsAllocParams& params,
                                        const char* filename, const char* model_dir,
                                        const char* resource_dir) {
  for (Loader3D* loader : {data_->loader_obj, data_->loader_obj_v2}) {
    if (loader && data_->current_3d_obj_loader_name == loader->get_name()) {
      return load_model_with(params, loader, filename, model_dir, resource_dir);
    }
  }
  report_missing_loader(filename, data_->current_3d_obj_loader_name.c_str());
  return nullptr;
}

Model* Kernel::load_model_from_file_lib3ds(const MeshDataVertexAttribsAllocParams& params,
                                           const char* filename, const char* model_dir,
                                           const char* resource_dir) {
  if (!data_->loader_lib3ds) report_missing_loader(filename, "3DS");
  return load_model_with(params, data_->loader_lib3ds, filename, model_dir, resource_dir);
}

Model* Kernel::load_model_from_file_stl(const MeshDataVertexAttribsAllocParams& params,
                                        const char* filename, const char* model_dir,
                                        const char* resource_dir) {
  if (!data_->loader_stl) report_missing_loader(filename, "STL");
  return load_model_with(params, data_->loader_stl, filename, model_dir, resource_dir);
}

Model* Kernel::load_model_from_file_fbx(const MeshDataVertexAttribsAllocParams& params,
                                        const char* filename, const char* model_dir,
                                        const char* resource_dir) {
  Loader3D* loader = find_fbx_loader();
  if (!loader) report_missing_loader(filename, "FBX");
  return load_model_with(params, loader, filename, model_dir, resource_dir);
}

bool Kernel::load_scene_from_file_lib3ds_v1(Scene* scene, const char* filename,
                                            const char* model_dir, const char* resource_dir) {
  if (!scene || !filename) return false;
  if (!data_->loader_lib3ds) {
    report_missing_loader(filename, "3DS");
    return false;
  }
  set_directories(*data_->loader_lib3ds, model_dir, resource_dir);
  return data_->loader_lib3ds->load_scene(scene, filename, WHOLE_SCENE);
}

bool Kernel::load_scene_from_file_fbx_v1(Scene* scene, const char* filename, const char* model_dir,
                                         const char* resource_dir) {
  if (!scene || !filename) return false;
  Loader3D* loader = find_fbx_loader();
  if (!loader) {
    report_missing_loader(filename, "FBX");
    return false;
  }
  set_directories(*loader, model_dir, resource_dir);
  return loader->load_scene(scene, filename, WHOLE_SCENE);
}

void Kernel::set_current_3d_obj_loader_name(const char* name) {
  if (name) data_->current_3d_obj_loader_name = name;
}

const char* Kernel::get_current_3d_obj_loader_name() const {
  return data_->current_3d_obj_loader_name.c_str();
}

}  // namespace orv
