#include "loaders/loader_names.h"

#include <orv/gpu/material.h>
#include <orv/gpu/material_mgr.h>
#include <orv/scene/model.h>

#include <cstddef>
#include <cstring>
#include <string_view>

namespace orv::detail {

namespace {

std::string compared_part(const char* name) {
  return std::string(std::string_view(name).substr(0, MAX_NAME));
}

}  // namespace

bool ends_in_letters(const char* filename, const char* letters) {
  if (!filename) return false;
  const std::size_t length = std::strlen(filename);
  if (length < 5) return false;
  const char* end = filename + length - 3;
  for (int i = 0; i < 3; ++i) {
    const char c = end[i];
    const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    if (lower != letters[i]) return false;
  }
  return true;
}

std::string loader_build_info() {
  return "BUILD_DATE: [" __DATE__ "] - BUILD_TIME: [" __TIME__ "]";
}

SharedMaterials::SharedMaterials() {
  const MaterialMgr& manager = *MaterialMgr::get();
  for (unsigned int i = 0; i < manager.get_num_resources(); ++i) {
    Material* material = static_cast<Material*>(manager.get_resource_by_index(i));
    by_name_.emplace(material->get_name(), material);
  }
}

Material* SharedMaterials::find(const std::string& name) const {
  const auto known = by_name_.find(name);
  return known == by_name_.end() ? nullptr : known->second;
}

SharedMaterials::Found SharedMaterials::find_or_create(const std::string& name) {
  if (Material* known = find(name)) return {known, false};
  Material* material = MaterialMgr::get()->create_material(name.c_str());
  by_name_.emplace(name, material);
  return {material, true};
}

ModelMaterials::ModelMaterials(Model* model) : model_(model) {
  const unsigned int count = model ? model->get_num_materials() : 0;
  for (unsigned int i = 0; i < count; ++i) {
    names_.insert(compared_part(model->get_material_by_index(i)->get_name()));
  }
}

void ModelMaterials::add(Material* material) {
  if (!model_ || !names_.insert(compared_part(material->get_name())).second) return;
  model_->add_material(material, nullptr);
}

}  // namespace orv::detail
