#include <orv/gpu/material_mgr.h>

#include <orv/gpu/material.h>

namespace orv {

MaterialMgr::MaterialMgr() = default;

MaterialMgr::~MaterialMgr() = default;

MaterialMgr* MaterialMgr::get() {
  static MaterialMgr* const instance = new MaterialMgr;
  return instance;
}

Material* MaterialMgr::create_material(const char* name) {
  Material* material = new Material;
  material->set_name(name);
  add_resource(material);
  return material;
}

bool MaterialMgr::add_material(Material* material) { return add_resource(material); }

}  // namespace orv
