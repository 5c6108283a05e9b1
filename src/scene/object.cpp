#include <orv/scene/object.h>

#include <orv/gpu/gpu_program.h>
#include <orv/gpu/material.h>

#include "scene/object_data.h"
#include "scene/object_walk.h"

#include <algorithm>
#include <cstring>

namespace orv {

// ---- life -----------------------------------------------------------------------------------

Object::Object() : data_(new ObjectData) { set_type(NODE_TYPE_OBJECT); }

Object::~Object() { delete data_; }

bool Object::_cleanup(Renderer* renderer) {
  remove_all_materials(renderer, nullptr);
  set_gpu_program(nullptr, nullptr);
  return true;
}

bool Object::_build() {
  bounding_volume_update(false, nullptr);
  return true;
}

// ---- rendering states -----------------------------------------------------------------------

void Object::set_use_generic_vertex_attribs_state(bool state, Node* node) {
  data_->use_generic_vertex_attribs = state;
  data_->use_fixed_mvp_matrices = !state;
  visit_object_children(
      node, [=](Object* child) { child->set_use_generic_vertex_attribs_state(state, child); });
}

void Object::set_opengl_2_3_rendering_states(bool legacy, Node* node) {
  data_->use_generic_vertex_attribs = !legacy;
  data_->use_fixed_mvp_matrices = legacy;
  visit_object_children(
      node, [=](Object* child) { child->set_opengl_2_3_rendering_states(legacy, child); });
}

void Object::set_use_gl2_vertex_array_state(bool state, Node* node) {
  set_use_generic_vertex_attribs_state(!state, node);
}

void Object::set_use_fixed_mvp_matrices_state(bool state, Node* node) {
  data_->use_fixed_mvp_matrices = state;
  visit_object_children(
      node, [=](Object* child) { child->set_use_fixed_mvp_matrices_state(state, child); });
}

void Object::set_tessellation_state(bool state, Node* node) {
  visit_object_children(node, [=](Object* child) { child->set_tessellation_state(state, child); });
}

void Object::update_build_state(bool state) { data_->build_state = state; }

bool Object::get_build_state() const { return data_->build_state; }

bool Object::get_use_generic_vertex_attribs_state() const {
  return data_->use_generic_vertex_attribs;
}

bool Object::get_use_gl2_vertex_array_state() const { return !data_->use_generic_vertex_attribs; }

bool Object::get_use_fixed_mvp_matrices_state() const { return data_->use_fixed_mvp_matrices; }

// ---- GPU program ----------------------------------------------------------------------------

void Object::set_gpu_program(GpuProgram* program, Node* node) {
  GpuProgram* old = data_->gpu_program;
  // The new one first: it may hang on the old one.
  if (program) program->add_ref();
  data_->gpu_program = program;
  if (old && old != program) old->release(nullptr, nullptr);
  visit_object_children(node, [=](Object* child) { child->set_gpu_program(program, child); });
}

GpuProgram* Object::get_gpu_program() const { return data_->gpu_program; }

// ---- materials ------------------------------------------------------------------------------

namespace {

/// Lists from this length on have an index.
constexpr std::size_t LONG_LIST = 32;

void append_material(ObjectData& data, Material* material) {
  data.materials.push_back(material);
  if (!data.materials_by_id.empty()) {
    data.materials_by_id.emplace(material->get_id(), material);
  } else if (data.materials.size() >= LONG_LIST) {
    for (Material* each : data.materials) data.materials_by_id.emplace(each->get_id(), each);
  }
}

}  // namespace

bool Object::add_material(Material* material, Node* node) {
  if (!material) return false;
  if (!get_material(material->get_id())) {
    append_material(*data_, material);
    material->add_ref();
  }
  visit_object_children(node, [=](Object* child) { child->add_material(material, child); });
  return true;
}

bool Object::remove_material(Material* material, Node* node) {
  if (!material) return false;
  std::vector<Material*>& list = data_->materials;
  const auto found = std::find(list.begin(), list.end(), material);
  const bool held = found != list.end();
  if (held) {
    list.erase(found);
    data_->materials_by_id.erase(material->get_id());
    material->release(nullptr, nullptr);
  }
  // From here on the pointer is only compared: it may be gone.
  visit_object_children(node, [=](Object* child) { child->remove_material(material, child); });
  return held;
}

unsigned int Object::get_num_materials() const {
  return static_cast<unsigned int>(data_->materials.size());
}

Material* Object::get_material_by_index(unsigned int index) const {
  return index < data_->materials.size() ? data_->materials[index] : nullptr;
}

Material* Object::get_material(int id) const {
  const auto& index = data_->materials_by_id;
  if (!index.empty()) {
    const auto found = index.find(id);
    return found == index.end() ? nullptr : found->second;
  }
  for (Material* material : data_->materials) {
    if (material->get_id() == id) return material;
  }
  return nullptr;
}

Material* Object::get_material_by_name(const char* name) const {
  constexpr std::size_t COMPARED = 127;
  if (!name) return nullptr;
  for (Material* material : data_->materials) {
    if (std::strncmp(material->get_name(), name, COMPARED) == 0) return material;
  }
  return nullptr;
}

bool Object::remove_all_materials(Renderer* renderer, Node* node) {
  std::vector<Material*> released;
  released.swap(data_->materials);
  data_->materials_by_id.clear();
  for (Material* material : released) material->release(renderer, nullptr);
  visit_object_children(node, [=](Object* child) { child->remove_all_materials(renderer, child); });
  return true;
}

void Object::set_all_materials_texture_unit_offset(unsigned int offset, Node* node) {
  for (Material* material : data_->materials) material->set_texture_unit_offset(offset);
  visit_object_children(
      node, [=](Object* child) { child->set_all_materials_texture_unit_offset(offset, child); });
}

unsigned int Object::async_texture_loading_process_all_materials(Renderer* renderer,
                                                                 const char* dir,
                                                                 PIXEL_FORMAT format, bool flag,
                                                                 Node* node) {
  unsigned int loaded = 0;
  for (Material* material : data_->materials) {
    loaded += material->async_loading_process_all_texture_filenames(renderer, dir, format, flag);
  }
  visit_object_children(node, [=](Object* child) {
    child->async_texture_loading_process_all_materials(renderer, dir, format, flag, child);
  });
  return loaded;
}

// ---- vertices and faces of the tree below ---------------------------------------------------

unsigned int Object::get_num_vertices(Node*) { return 0; }

unsigned int Object::get_num_faces(Node*) { return 0; }

unsigned int Object::get_num_vertices_v2(Node* node) {
  unsigned int sum = get_num_vertices(nullptr);
  visit_object_children(node ? node : this,
                        [&](Object* child) { sum += child->get_num_vertices_v2(child); });
  return sum;
}

unsigned int Object::get_num_faces_v2(Node* node) {
  unsigned int sum = get_num_faces(nullptr);
  visit_object_children(node ? node : this,
                        [&](Object* child) { sum += child->get_num_faces_v2(child); });
  return sum;
}

Vertex* Object::get_vertex(unsigned int) { return nullptr; }

Vertex Object::get_vertex_v2(unsigned int) { return Vertex(); }

bool Object::compute_faces_normal(Node* node) {
  visit_object_children(node, [](Object* child) { child->compute_faces_normal(child); });
  return true;
}

bool Object::compute_vertices_normal(Node* node) {
  visit_object_children(node, [](Object* child) { child->compute_vertices_normal(child); });
  return true;
}

bool Object::average_vertices_normal(float epsilon, Node* node) {
  visit_object_children(node,
                        [=](Object* child) { child->average_vertices_normal(epsilon, child); });
  return true;
}

void Object::translate_vertices_position(const vec4& offset, Node* node) {
  visit_object_children(node,
                        [&](Object* child) { child->translate_vertices_position(offset, child); });
}

void Object::translate_vertices_position(const vec3& offset, Node* node) {
  visit_object_children(node,
                        [&](Object* child) { child->translate_vertices_position(offset, child); });
}

void Object::scale_vertices_position(const vec4& factors, Node* node) {
  visit_object_children(node,
                        [&](Object* child) { child->scale_vertices_position(factors, child); });
}

void Object::rotate_vertices_position(const quat& rotation, Node* node) {
  visit_object_children(node,
                        [&](Object* child) { child->rotate_vertices_position(rotation, child); });
}

void Object::rotate_vertices_position(float x, float y, float z, Node* node) {
  visit_object_children(node,
                        [=](Object* child) { child->rotate_vertices_position(x, y, z, child); });
}

void Object::set_vertices_color(float r, float g, float b, float a, Node* node) {
  set_vertices_color(vec4(r, g, b, a), node);
}

void Object::set_vertices_color(const vec4& color, Node* node) {
  visit_object_children(node, [&](Object* child) { child->set_vertices_color(color, child); });
}

void Object::flip_faces(Node* node) {
  visit_object_children(node, [](Object* child) { child->flip_faces(child); });
}

void Object::flip_vertex_normals(Node* node) {
  visit_object_children(node, [](Object* child) { child->flip_vertex_normals(child); });
}

// ---- bounding volume ------------------------------------------------------------------------

bool Object::bounding_volume_compute(Node* node) {
  BoundingVolume& volume = data_->bounding_volume;
  volume.reset_globals();
  visit_object_children(node ? node : this, [&](Object* child) {
    child->bounding_volume_compute(child);
    volume.merge(child->data_->bounding_volume);
  });
  return true;
}

bool Object::update_bounding_sphere(Node*) { return true; }

BoundingVolume& Object::bounding_volume_get() const { return data_->bounding_volume; }

void Object::bounding_volume_update(bool force, mat4* transform) {
  BoundingVolume& volume = data_->bounding_volume;
  if (force || volume.enabled) {
    bounding_volume_compute(nullptr);
    volume.enabled = false;
  }
  volume.update(transform ? *transform : get_absolute_transform());
}

void Object::bounding_volume_update_from_geometry_set_state(bool state) {
  data_->bounding_volume.enabled = state;
}

bool Object::bounding_volume_update_from_geometry_get_state() const {
  return data_->bounding_volume.enabled;
}

bool Object::bounding_sphere_inscribed_sphere() const {
  return data_->bounding_volume.is_inscribed_sphere();
}

void Object::bounding_sphere_use_inscribed_sphere(bool state) {
  data_->bounding_volume.use_inscribed_sphere(state);
}

void Object::set_bounding_sphere(const vec4& center, float radius) {
  data_->bounding_volume.set_sphere(center, radius);
}

const vec4& Object::get_bounding_sphere_center() const {
  return data_->bounding_volume.get_sphere_center();
}

float Object::get_bounding_sphere_radius() const {
  return data_->bounding_volume.get_sphere_radius();
}

void Object::set_bounding_box(const vec4& min, const vec4& max) {
  data_->bounding_volume.set_box(min, max);
}

const vec4& Object::get_bounding_box_size() const { return data_->bounding_volume.get_box_size(); }

const vec4& Object::get_bounding_box_min() const { return data_->bounding_volume.get_box_min(); }

const vec4& Object::get_bounding_box_max() const { return data_->bounding_volume.get_box_max(); }

void Object::update_global_bounding_volume(const vec4& min, const vec4& max) {
  data_->bounding_volume.update_globals(min, max);
}

const vec4& Object::get_global_bounding_box_size() const {
  return data_->bounding_volume.get_global_box_size();
}

const vec4& Object::get_global_bounding_sphere_center() const {
  return data_->bounding_volume.get_global_sphere_center();
}

float Object::get_global_bounding_sphere_radius() const {
  return data_->bounding_volume.get_global_sphere_radius();
}

}  // namespace orv
