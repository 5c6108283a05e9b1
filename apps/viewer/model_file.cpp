#include "viewer/model_file.h"

#include <orv/orv.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fstream>

#include "viewer/load_faults.h"
#include "viewer/material_parts.h"
#include "viewer/mesh_area.h"
#include "viewer/mesh_normals.h"
#include "viewer/options.h"

namespace viewer {

using orv::Material;
using orv::MaterialMgr;
using orv::Mesh;
using orv::Texture;
using orv::TextureMgr;

namespace {

std::string folder_of(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

std::string name_of(const std::string& path) { return path.substr(path.rfind('/') + 1); }

/// Why the file cannot be opened; "" when it can.
std::string check_file(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return std::strerror(errno);
  if (S_ISDIR(status.st_mode)) return "this is a folder";
  if (!S_ISREG(status.st_mode)) return "this is no plain file";
  if (!std::ifstream(path, std::ios::binary)) return std::strerror(errno);
  return {};
}

bool is_supported(const std::string& name) {
  for (const char* extension : {".obj", ".3ds", ".stl"}) {
    if (name.size() > std::strlen(extension) && has_extension(name, extension)) return true;
  }
  return false;
}

bool starts_with_solid(const std::string& path) {
  char word[5] = {};
  std::ifstream(path, std::ios::binary).read(word, sizeof(word));
  return std::memcmp(word, "solid", sizeof(word)) == 0;
}

/// Materials are shared by name. The names of a model that is still shown are taken from its
/// materials, so that a file loaded again gets materials of its own.
void retire_material_names() {
  MaterialMgr& materials = *MaterialMgr::get();
  for (unsigned int i = 0; i < materials.get_num_resources(); ++i) {
    materials.get_resource_by_index(i)->set_name("(of an earlier load)");
  }
}

template <class Resource, class Manager>
std::vector<Resource*> resources_from(Manager& manager, unsigned int first) {
  std::vector<Resource*> found;
  for (unsigned int i = first; i < manager.get_num_resources(); ++i) {
    found.push_back(static_cast<Resource*>(manager.get_resource_by_index(i)));
  }
  return found;
}

orv::Model* load_with_any_loader(const std::string& name, const std::string& folder) {
  return orv::Kernel::get()->load_model_from_file(orv::MeshDataVertexAttribsAllocParams(),
                                                  name.c_str(), folder.c_str(), nullptr);
}

/// With the loader that knows relative indices and cuts polygons with dents right.
orv::Model* load_with_exact_loader(const std::string& name, const std::string& folder) {
  orv::Kernel::get()->set_current_3d_obj_loader_name("ObjLoaderV2");
  return orv::Kernel::get()->load_model_from_file_obj(orv::MeshDataVertexAttribsAllocParams(),
                                                      name.c_str(), folder.c_str(), nullptr);
}

unsigned int count_triangles(Mesh& mesh) {
  const unsigned int faces = mesh.get_num_faces(nullptr);
  return faces > 0 ? faces : mesh.get_num_vertices(nullptr) / 3;
}

}  // namespace

// ---- loading -----------------------------------------------------------------------------------

std::unique_ptr<ModelFile> ModelFile::load(const std::string& path, const Settings& settings,
                                           LogTap& log, std::string* reason) {
  const auto begin = std::chrono::steady_clock::now();
  std::unique_ptr<ModelFile> file(new ModelFile(path));
  file->folder_ = folder_of(path);
  const unsigned int first_material = MaterialMgr::get()->get_num_resources();
  const unsigned int first_texture = TextureMgr::get()->get_num_resources();
  bool loaded = file->load_meshes(settings, log, reason) && file->measure(reason);
  if (loaded) {
    file->add_normals();
    file->make_parts();
    file->load_named_textures(log);
    loaded = settings.texture.empty() || file->add_texture(settings.texture, reason);
  }
  file->materials_ = resources_from<Material>(*MaterialMgr::get(), first_material);
  file->textures_ = resources_from<Texture>(*TextureMgr::get(), first_texture);
  if (!loaded) {
    file->release(nullptr);
    return nullptr;
  }
  for (Texture* texture : file->textures_) {
    texture->flip_vertical();  // files begin with the top row, textures with the bottom one
    texture->set_filtering_mode(nullptr, orv::SAMPLER_FILTERING_TRILINEAR);
  }
  const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - begin;
  file->load_milliseconds_ = took.count();
  return file;
}

bool ModelFile::refuse(const std::string& what, std::string* reason) const {
  *reason = path_ + ": " + what;
  if (!fault_.empty()) *reason += ": " + fault_;
  return false;
}

bool ModelFile::load_meshes(const Settings& settings, LogTap& log, std::string* reason) {
  const std::string name = name_of(path_);
  const std::string why = check_file(path_);
  if (!why.empty()) return refuse(why, reason);
  if (!is_supported(name)) {
    return refuse("unsupported kind of file (known are .obj, .3ds and .stl)", reason);
  }
  retire_material_names();
  read_model(settings.whole_only, log);
  if (!model_) return refuse("broken file", reason);
  find_meshes(*model_);
  const bool is_stl = has_extension(name, ".stl");
  if (meshes_.empty() && is_stl && starts_with_solid(path_)) {
    fault_.clear();
    return refuse("unsupported kind of file: STL in text form (binary is read)", reason);
  }
  if (meshes_.empty()) return refuse("broken or empty file: no triangles in it", reason);
  if (is_stl) fault_ = find_missing_records(path_);
  if (!fault_.empty() && settings.whole_only) return refuse("broken file", reason);
  if (!fault_.empty()) warn("shown as far as it can be read: " + fault_);
  return true;
}

void ModelFile::read_model(bool whole_only, LogTap& log) {
  const std::string name = name_of(path_);
  const bool is_obj = has_extension(name, ".obj");
  log.begin_keeping();
  model_ = is_obj ? load_with_exact_loader(name, folder_) : load_with_any_loader(name, folder_);
  const std::string said = log.end_keeping(folder_ + name);
  if (model_) {
    fault_ = find_fault(log.get_kept(), folder_ + name);
    return;
  }
  fault_ = said.empty() ? "no loader takes it" : said;
  // The other loader takes more liberties with files that this one refuses.
  if (is_obj && !whole_only) model_ = load_with_any_loader(name, folder_);
}

void ModelFile::find_meshes(orv::Node& node) {
  for (unsigned int i = 0; i < node.get_num_children(); ++i) {
    orv::Node* child = node.get_child(i);
    if (!child) continue;
    if (child->is_type_of(orv::NODE_TYPE_MESH)) {
      auto* mesh = static_cast<Mesh*>(child);
      if (count_triangles(*mesh) > 0) meshes_.push_back(mesh);
    }
    find_meshes(*child);
  }
}

bool ModelFile::measure(std::string* reason) {
  for (Mesh* mesh : meshes_) {
    num_triangles_ += count_triangles(*mesh);
    num_vertices_ += mesh->get_num_vertices(nullptr);
    mesh->bounding_volume_update(true, nullptr);
    const orv::BoundingVolume& volume = mesh->bounding_volume_get();
    box_.add({volume.global_box_min, volume.global_box_max});
  }
  if (!box_.is_usable()) return refuse("broken file: its vertices have no finite bounds", reason);
  if (box_.min.is_equal(box_.max, 0.0f)) {
    return refuse("broken file: all its vertices are at one place", reason);
  }
  if (has_area()) return true;
  const std::string what = fault_.empty() ? "nothing to show" : "broken file";
  return refuse(what + ": none of its triangles has an area", reason);
}

bool ModelFile::has_area() const {
  return std::any_of(meshes_.begin(), meshes_.end(),
                     [](Mesh* mesh) { return has_visible_triangle(*mesh); });
}

void ModelFile::add_normals() {
  std::vector<Mesh*> bare;
  for (Mesh* mesh : meshes_) {
    if (lacks_normals(*mesh)) bare.push_back(mesh);
  }
  compute_normals(bare);
}

void ModelFile::make_parts() {
  for (Mesh* mesh : meshes_) split_by_material(*mesh, parts_);
}

// ---- textures ----------------------------------------------------------------------------------

void ModelFile::load_named_textures(LogTap& log) {
  log.begin_keeping();
  model_->async_texture_loading_process_all_materials(nullptr, folder_.c_str(), orv::PF_RGBA_U8,
                                                      false, model_);
  log.end_keeping({});
  const TextureReport report = report_textures(log.get_kept(), folder_);
  if (report.num_missing == 0) return;
  if (report.num_wanted == 1) {
    warn("cannot load its texture " + report.first_missing);
  } else {
    warn("cannot load " + std::to_string(report.num_missing) + " of its " +
         std::to_string(report.num_wanted) + " textures, first " + report.first_missing);
  }
}

void ModelFile::warn(const std::string& what) {
  warning_ += (warning_.empty() ? path_ + ": " : "; ") + what;
}

bool ModelFile::add_texture(const std::string& path, std::string* reason) {
  const std::string why = check_file(path);
  if (!why.empty()) {
    *reason = path + ": " + why;
    return false;
  }
  Texture* texture =
      TextureMgr::get()->create_texture_2d_from_file(path.c_str(), false, orv::PF_RGBA_U8);
  if (!texture) {
    *reason = path + ": broken file, or a kind of picture that is not known";
    return false;
  }
  for (Part& part : parts_) {
    if (!part.material) {
      part.material = MaterialMgr::get()->create_material("texture");
      part.mesh->add_material(part.material, nullptr);
    }
    if (part.material->get_num_textures() == 0) part.material->add_texture(texture);
  }
  return true;
}

// ---- release -----------------------------------------------------------------------------------

ModelFile::~ModelFile() = default;

void ModelFile::release(orv::Renderer* renderer) {
  parts_.clear();
  meshes_.clear();
  if (model_) model_->release(renderer, nullptr);
  model_ = nullptr;
  for (Material* material : materials_) {
    MaterialMgr::get()->release_resource(renderer, material, nullptr);
  }
  materials_.clear();
  for (Texture* texture : textures_) {
    TextureMgr::get()->release_texture(renderer, texture, nullptr);
  }
  textures_.clear();
}

}  // namespace viewer
