/// @file
/// A model that a loader fills.
#pragma once

#include <orv/geometry/mesh.h>
#include <orv/geometry/mesh_data.h>
#include <orv/scene/model.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "loaders/model_files.h"

namespace bench {

/// Loads one of the files of model_folder(), and lets the model go at the end.
class LoadedModel {
 public:
  template <class Loader>
  void load(Loader& loader, const std::string& name) {
    loader.set_model_dir(model_folder().c_str());
    model_ = new orv::Model;
    model_->add_ref();
    if (!loader.load_model(model_, name.c_str())) {
      std::fprintf(stderr, "%s is not loaded\n", name.c_str());
      std::exit(1);
    }
  }
  LoadedModel() = default;
  ~LoadedModel() {
    if (model_) model_->release(nullptr, nullptr);
  }
  LoadedModel(const LoadedModel&) = delete;
  LoadedModel& operator=(const LoadedModel&) = delete;

  unsigned int num_meshes() const { return model_->get_num_children(); }
  orv::MeshData& mesh(unsigned int i) const {
    return *static_cast<orv::Mesh*>(model_->get_child(i))->get_mesh_data();
  }

  /// Bytes of all arrays that have an element for each vertex.
  std::size_t vertex_bytes() const {
    std::size_t bytes = 0;
    for (unsigned int i = 0; i < num_meshes(); ++i) {
      bytes += mesh(i).get_separate_vertex_arrays_size();
      if (mesh(i).vertex_particles) bytes += mesh(i).get_num_vertices() * sizeof(orv::vec4);
    }
    return bytes;
  }

 private:
  orv::Model* model_ = nullptr;
};

}  // namespace bench
