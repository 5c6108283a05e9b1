#include <orv/gpu/material.h>

#include <orv/core/log_mgr.h>
#include <orv/gpu/gpu_program.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/math/vec4.h>
#include <orv/render/renderer.h>

#include <string>
#include <vector>

namespace orv {

// What drawing reads stands first.
struct Material::MaterialData {
  GpuProgram* gpu_program = nullptr;
  std::vector<Texture*> textures;
  unsigned int texture_unit_offset = 0;
  bool use_fixed_material_colors = false;
  float shininess = 16.0f;
  float opacity = 1.0f;
  vec4 diffuse = vec4(0.8f, 0.8f, 0.9f, 1.0f);
  vec4 ambient = vec4(0.5f, 0.5f, 0.6f, 1.0f);
  vec4 specular = vec4(0.9f, 0.9f, 0.9f, 1.0f);
  std::vector<std::string> texture_filenames;
};

namespace {

// Gives back the reference of a material's texture list. The children of the node go with it.
void let_go(Texture* texture) {
  std::vector<Node*> children;
  for (unsigned int i = 0; i < static_cast<unsigned int>(texture->get_num_children()); ++i) {
    children.push_back(texture->get_child(i));
  }
  for (Node* child : children) child->release(nullptr, nullptr);
  texture->clear_children_list();
  texture->remove_ref();
  if (texture->get_ref() < 1) texture->_kill(nullptr);
}

// The text behind the last separator of either kind, at most 255 characters; empty without one.
std::string base_name(const std::string& path) {
  constexpr std::size_t MAX_LENGTH = 255;
  const std::size_t separator = path.find_last_of("/\\");
  return separator == std::string::npos ? std::string() : path.substr(separator + 1, MAX_LENGTH);
}

}  // namespace

// ---- life ------------------------------------------------------------------------------------

Material::Material() : data_(new MaterialData) { set_type(NODE_TYPE_MATERIAL); }

Material::~Material() { delete data_; }

bool Material::_cleanup(Renderer*) { return remove_all_textures(); }

void Material::set_gpu_program(GpuProgram* program) { data_->gpu_program = program; }

GpuProgram* Material::get_gpu_program() const { return data_->gpu_program; }

// ---- fixed-function values -------------------------------------------------------------------

void Material::set_ambient(const vec4& color) { data_->ambient = color; }

void Material::set_ambient(float r, float g, float b, float a) { data_->ambient.set(r, g, b, a); }

vec4& Material::get_ambient() const { return data_->ambient; }

void Material::set_diffuse(const vec4& color) { data_->diffuse = color; }

void Material::set_diffuse(float r, float g, float b, float a) { data_->diffuse.set(r, g, b, a); }

vec4& Material::get_diffuse() const { return data_->diffuse; }

void Material::set_specular(const vec4& color) { data_->specular = color; }

void Material::set_specular(float r, float g, float b, float a) { data_->specular.set(r, g, b, a); }

vec4& Material::get_specular() const { return data_->specular; }

void Material::set_shininess(float shininess) { data_->shininess = shininess; }

float Material::get_shininess() const { return data_->shininess; }

void Material::set_opacity(float opacity) { data_->opacity = opacity; }

float Material::get_opacity() const { return data_->opacity; }

void Material::set_use_fixed_material_colors_state(bool state) {
  data_->use_fixed_material_colors = state;
}

bool Material::get_use_fixed_material_colors_state() const {
  return data_->use_fixed_material_colors;
}

// ---- textures --------------------------------------------------------------------------------

void Material::add_texture(Texture* texture) {
  if (!texture) return;
  data_->textures.push_back(texture);
  texture->add_ref();
}

bool Material::remove_texture(int id) {
  std::vector<Texture*>& textures = data_->textures;
  for (auto place = textures.begin(); place != textures.end(); ++place) {
    Texture* texture = *place;
    if (texture->get_id() != id) continue;
    textures.erase(place);
    let_go(texture);
    return true;
  }
  return false;
}

bool Material::remove_all_textures() {
  std::vector<Texture*> textures;
  textures.swap(data_->textures);
  for (Texture* texture : textures) let_go(texture);
  return true;
}

unsigned int Material::get_num_textures() const {
  return static_cast<unsigned int>(data_->textures.size());
}

Texture* Material::get_texture_by_index(unsigned int index) const {
  return index < data_->textures.size() ? data_->textures[index] : nullptr;
}

Texture* Material::get_texture(int id) const {
  for (Texture* texture : data_->textures) {
    if (texture->get_id() == id) return texture;
  }
  return nullptr;
}

Texture* Material::load_texture(Renderer* renderer, const char* path, PIXEL_FORMAT format, bool) {
  if (!path) return nullptr;
  TextureMgr* manager = TextureMgr::get();
  Texture* texture = manager->create_texture();
  if (!manager->load_image_from_file(texture, path, false, format)) {
    manager->release_resource(nullptr, texture, nullptr);
    return nullptr;
  }
  TextureData* data = texture->get_data_ptr();
  data->type = TEXTURE_2D;
  add_texture(texture);
  if (data->update_pixel_format(format)) data->gpu_update_needed = true;
  if (renderer && renderer->get_api_type() == ORV_API3D_D3D12) {
    renderer->texture_load_direct3d(nullptr, data, 0, 0);
  } else if (renderer) {
    renderer->texture_load(nullptr, data, 0);
  }
  return texture;
}

void Material::set_texture_unit_offset(unsigned int offset) { data_->texture_unit_offset = offset; }

unsigned int Material::get_texture_unit_offset() const { return data_->texture_unit_offset; }

// ---- use -------------------------------------------------------------------------------------

void Material::bind(Renderer* renderer) {
  bind_gpu_program(renderer);
  bind_textures(renderer);
  if (data_->use_fixed_material_colors) fixed_pipeline_bind_colors(renderer);
}

void Material::unbind(Renderer* renderer) {
  unbind_gpu_program(renderer);
  unbind_textures(renderer);
}

void Material::bind_gpu_program(Renderer* renderer) {
  if (!renderer || !data_->gpu_program) return;
  renderer->gpu_program_bind(data_->gpu_program->get_data_ptr());
}

void Material::unbind_gpu_program(Renderer* renderer) {
  if (!renderer || !data_->gpu_program) return;
  renderer->gpu_program_bind(nullptr);
}

void Material::bind_textures(Renderer* renderer) {
  // By index: a texture class of a host may change the list.
  for (unsigned int i = 0; i < get_num_textures(); ++i) {
    data_->textures[i]->bind(renderer, data_->texture_unit_offset + i);
  }
}

void Material::unbind_textures(Renderer* renderer) {
  for (unsigned int i = 0; i < get_num_textures(); ++i) {
    data_->textures[i]->unbind(renderer, data_->texture_unit_offset + i);
  }
}

void Material::fixed_pipeline_bind_colors(Renderer* renderer) {
  if (!renderer) return;
  renderer->material_set_all(data_->ambient, data_->diffuse, data_->specular, data_->shininess);
}

// ---- textures to be loaded later -------------------------------------------------------------

bool Material::async_loading_add_texture_filename(const char* path) {
  if (!path) return false;
  data_->texture_filenames.emplace_back(path);
  return true;
}

bool Material::async_loading_clear_texture_filenames_list() {
  data_->texture_filenames.clear();
  return true;
}

unsigned int Material::async_loading_get_num_texture_filenames() const {
  return static_cast<unsigned int>(data_->texture_filenames.size());
}

const char* Material::async_loading_get_texture_filename(unsigned int index) const {
  return index < data_->texture_filenames.size() ? data_->texture_filenames[index].c_str()
                                                 : nullptr;
}

unsigned int Material::async_loading_process_all_texture_filenames(Renderer* renderer,
                                                                   const char* prefix,
                                                                   PIXEL_FORMAT format, bool flag) {
  LogMgr& log = LogMgr::get();
  const std::string folder = prefix ? prefix : "";
  const std::vector<std::string> names = data_->texture_filenames;
  unsigned int num_loaded = 0;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const long index = static_cast<long>(i);
    std::string full = folder + names[i];
    bool loaded = load_texture(renderer, full.c_str(), format, flag) != nullptr;
    if (!loaded) {
      log.tracef_error("Material %s: texture %ld (%s) loading FAILED.", get_name(), index,
                       full.c_str());
      log.tracef_error("Material %s: let's do a second attempt...", get_name());
      full = base_name(full).insert(0, folder);
      loaded = load_texture(renderer, full.c_str(), format, flag) != nullptr;
    }
    if (loaded) {
      log.tracef("Material %s: texture %ld (%s) loaded ok.", get_name(), index, full.c_str());
      ++num_loaded;
    } else {
      log.tracef_error("Material %s: texture %ld (%s) loading FAILED, no hope!", get_name(), index,
                       full.c_str());
    }
  }
  data_->texture_filenames.clear();
  return num_loaded;
}

}  // namespace orv
