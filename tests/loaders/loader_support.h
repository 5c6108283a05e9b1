#pragma once

#include <orv/geometry/mesh.h>
#include <orv/gpu/material.h>
#include <orv/gpu/material_mgr.h>
#include <orv/loaders/loader3d.h>
#include <orv/scene/model.h>

#include "support/held.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <string>
#include <string_view>
#include <vector>

namespace orv::test {

inline Mesh* mesh_of(const Model& model, unsigned int i) {
  return static_cast<Mesh*>(model.get_child(i));
}

inline std::vector<std::string> mesh_names(const Model& model) {
  std::vector<std::string> names;
  for (unsigned int i = 0; i < model.get_num_children(); ++i) {
    names.emplace_back(model.get_child(i)->get_name());
  }
  return names;
}

inline std::vector<std::string> material_names(const Object& object) {
  std::vector<std::string> names;
  for (unsigned int i = 0; i < object.get_num_materials(); ++i) {
    names.emplace_back(object.get_material_by_index(i)->get_name());
  }
  return names;
}

inline std::vector<vec4> mesh_positions(const Mesh& mesh) {
  std::vector<vec4> positions;
  for (unsigned int i = 0; i < mesh.get_data()->get_num_vertices(); ++i) {
    positions.push_back(mesh.get_data()->get_position_4f(i));
  }
  return positions;
}

/// x, y and z of both corners of the box around all vertices of a model's meshes.
struct Bounds {
  vec4 min = vec4(1e30f, 1e30f, 1e30f);
  vec4 max = vec4(-1e30f, -1e30f, -1e30f);

  void add(const vec4& p) {
    min = vec4(std::min(min.x, p.x), std::min(min.y, p.y), std::min(min.z, p.z));
    max = vec4(std::max(max.x, p.x), std::max(max.y, p.y), std::max(max.z, p.z));
  }
  explicit Bounds(const Model& model) {
    for (unsigned int i = 0; i < model.get_num_children(); ++i) {
      for (const vec4& p : mesh_positions(*mesh_of(model, i))) add(p);
    }
  }
};

/// A folder of files and an empty list of materials before and after each test.
template <class Loader>
class LoaderTest : public testing::Test {
 protected:
  LoaderTest() {
    clear_materials();
    loader.set_model_dir((folder.path() + "/").c_str());
  }
  ~LoaderTest() override { clear_materials(); }

  static void clear_materials() { MaterialMgr::get()->release_all_resources(nullptr, nullptr); }
  static Material* find_material(const char* name) {
    return static_cast<Material*>(MaterialMgr::get()->get_resource(name));
  }

  /// Writes a file and loads it.
  bool load(Model& model, const std::string& name, std::string_view text) {
    folder.write(name, std::string(text));
    return loader.load_model(&model, name.c_str());
  }

  TempFolder folder;
  Loader loader;
};

}  // namespace orv::test
