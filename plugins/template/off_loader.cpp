#include "off_loader.h"

#include <orv/geometry/mesh.h>
#include <orv/scene/model.h>

#include <cstring>
#include <exception>
#include <string>

#include "off_text.h"

namespace {

// A loader knows its files by name: the library offers a file to each loader in turn.
bool is_off_name(const char* filename) {
  const std::size_t length = filename ? std::strlen(filename) : 0;
  return length > 4 && std::strcmp(filename + length - 4, ".off") == 0;
}

bool fill_mesh(orv::Mesh& mesh, const OffShape& shape) {
  mesh.set_vertex_alloc_params_num_vertices(static_cast<unsigned int>(shape.positions.size()));
  if (!mesh.alloc_vertex_data()) return false;
  if (!mesh.alloc_face_data(static_cast<unsigned int>(shape.triangles.size()), false)) return false;
  unsigned int at = 0;
  for (const auto& p : shape.positions) mesh.set_vertex_position(at++, {p[0], p[1], p[2]});
  at = 0;
  for (const auto& t : shape.triangles) mesh.set_face_indexes(at++, t[0], t[1], t[2]);
  mesh.compute_faces_normal(nullptr);
  mesh.compute_vertices_normal(nullptr);
  mesh.bounding_volume_compute(nullptr);
  return true;
}

}  // namespace

OffLoader::OffLoader() {
  set_name("OFF");
  set_description("OFF model loader, the template of a plugin module.");
  set_author("Your name");
  set_version(1, 0, 0);
}

// No exception may reach the library: it calls modules that other compilers may have built.
bool OffLoader::load_model(orv::Model* model, const char* filename) {
  if (!model || !is_off_name(filename)) return false;
  try {
    return load_off_file(*model, filename);
  } catch (const std::exception& e) {
    tracef_debug("%s: %s", filename, e.what());
    return false;
  }
}

bool OffLoader::load_off_file(orv::Model& model, const char* filename) {
  // The directory ends in its separator, so that the two are simply put together.
  const std::string path = std::string(get_model_dir()) + filename;
  OffShape shape;
  std::string reason;
  if (!read_off_file(path.c_str(), shape, reason)) {
    tracef_debug("%s %s", path.c_str(), reason.c_str());
    return false;
  }
  if (shape.triangles.empty()) {
    tracef_debug("%s holds no polygon", path.c_str());
    return false;
  }
  orv::Mesh* mesh = model.create_mesh();
  if (!fill_mesh(*mesh, shape)) {
    tracef_debug("%s: no memory for %zu vertices", path.c_str(), shape.positions.size());
    mesh->release(nullptr, nullptr);
    return false;
  }
  mesh->set_name(filename);
  model.add_child(mesh);
  return true;
}

// OFF files hold no materials and no cameras.
bool OffLoader::load_scene(orv::Scene*, const char*, const char*) { return false; }
