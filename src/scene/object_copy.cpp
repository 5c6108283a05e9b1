#include <orv/scene/object.h>

#include <orv/gpu/gpu_program.h>
#include <orv/gpu/material.h>
#include <orv/scene/tripod.h>

#include "scene/object_data.h"

#include <vector>

namespace orv {

namespace {

void copy_materials(Object& target, const std::vector<Material*>& materials) {
  // The target may hold the only reference to what it is about to remove and take again.
  for (Material* material : materials) material->add_ref();
  target.remove_all_materials(nullptr, nullptr);
  for (Material* material : materials) {
    target.add_material(material, nullptr);
    material->remove_ref();
  }
}

}  // namespace

void Object::copy_state(const Object& other) {
  if (this == &other) return;
  set_name(other.get_name());
  set_layer(other.get_layer());
  set_user_data_ptr(other.get_user_data_ptr());
  set_render_state(other.get_render_state(), nullptr);

  Tripod& to = data_->tripod;
  Tripod& from = other.data_->tripod;
  const vec4 angles = from.get_orientation_euler_angles();
  to.set_transform_order(from.get_transform_order());
  to.set_position(from.get_position());
  to.set_scale(from.get_scale());
  to.set_orientation_euler_angles(angles.x, angles.y, angles.z);
  to.set_orientation(from.get_orientation());
  from.update_transform();
  to.set_transform(from.get_transform());

  data_->build_state = other.data_->build_state;
  data_->projection_matrix = other.data_->projection_matrix;
  data_->view_matrix = other.data_->view_matrix;
  data_->tripod_size = other.data_->tripod_size;
  data_->display_tripod = other.data_->display_tripod;
  data_->display_grid = other.data_->display_grid;
  data_->use_generic_vertex_attribs = other.data_->use_generic_vertex_attribs;
  data_->use_fixed_mvp_matrices = other.data_->use_fixed_mvp_matrices;
  data_->send_camera_matrices = other.data_->send_camera_matrices;
  data_->grid = other.data_->grid;
  data_->bounding_volume = other.data_->bounding_volume;
  if (data_->gpu_program != other.data_->gpu_program) {
    set_gpu_program(other.data_->gpu_program, nullptr);
  }
  copy_materials(*this, other.data_->materials);
}

}  // namespace orv
