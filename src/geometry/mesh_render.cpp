#include <orv/geometry/mesh.h>
#include <orv/gpu/gpu_buffer_data.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/math/mat4.h>
#include <orv/render/renderer.h>
#include <orv/scene/tripod.h>

#include "geometry/material_binding.h"
#include "geometry/prefetch.h"

namespace orv {

// ---- drawing ----

void Mesh::_render(Renderer* renderer) {
  if (!renderer || !mesh_data_) return;
  prefetch_record(*mesh_data_);
  const MaterialSubset* subset = mesh_data_->get_current_subset();
  Material* material = subset ? get_material(subset->material_id) : get_material_by_index(0);
  const mat4* transform = get_tripod()->get_transform_mat4_ptr();
  prefetch_range(transform, transform + 1);
  if (material) bind_material(*renderer, *material);
  if (mesh_data_) __builtin_prefetch(mesh_data_->get_vb_source());  // its address came in first

  GpuProgramData* program = renderer->get_current_gpu_program();
  const bool opengl = renderer->get_api_type() == ORV_API3D_OPENGL;
  const bool fixed_texturing = opengl && !program && material && material->get_num_textures() > 0;
  if (opengl && program) {
    set_opengl_2_3_rendering_states(!program->get_use_generic_vertex_attribs_state(), nullptr);
  }
  if (fixed_texturing) renderer->enable_texture_2d(true);

  bind_gpu_program_uniforms(renderer, program, get_use_fixed_mvp_matrices_state());
  render_geometry(renderer);

  if (material) unbind_material(*renderer, *material);
  if (fixed_texturing) renderer->enable_texture_2d(false);
}

void Mesh::render_geometry(Renderer* renderer) {
  render_geometry_prepare(renderer);
  render_geometry_draw(renderer);
  render_geometry_finish(renderer);
}

void Mesh::render_geometry_prepare(Renderer* renderer) {
  if (!renderer || !mesh_data_) return;
  if (renderer->get_api_type() == ORV_API3D_OPENGL) {
    const GpuProgramData* program = renderer->get_current_gpu_program();
    mesh_data_->set_use_generic_vertex_attribs_state(
        program && program->get_use_generic_vertex_attribs_state());
  }
  renderer->geometry_vbo_create(nullptr, mesh_data_);
  renderer->geometry_vbo_update(mesh_data_);
  renderer->geometry_vbo_bind(mesh_data_);
}

void Mesh::render_geometry_draw(Renderer* renderer) {
  if (renderer && mesh_data_) renderer->geometry_vbo_draw(mesh_data_);
}

void Mesh::render_geometry_finish(Renderer* renderer) {
  if (renderer && mesh_data_) renderer->geometry_vbo_unbind(mesh_data_);
}

void Mesh::set_tessellation_state(bool state, Node* node) {
  if (mesh_data_) mesh_data_->tessellation = state;
  Object::set_tessellation_state(state, node);
}

void Mesh::set_render_wireframe_quad_state(bool state) {
  if (mesh_data_) mesh_data_->render_wireframe_quad = state;
}

bool Mesh::get_render_wireframe_quad_state() const {
  return mesh_data_ && mesh_data_->render_wireframe_quad;
}

// ---- buffers ----

unsigned int Mesh::get_vertex_buffer_opengl_id() const {
  return mesh_data_ ? mesh_data_->vertex_buffer_id : 0;
}

unsigned int Mesh::get_index_buffer_opengl_id() const {
  return mesh_data_ ? mesh_data_->get_ibo() : 0;
}

Vertex* Mesh::map_vertex_buffer(Renderer* renderer) {
  if (!renderer || !mesh_data_) return nullptr;
  mesh_data_->mapped_ptr = renderer->gpu_buffer_map(mesh_data_->vb(), "GL_WRITE_ONLY");
  return static_cast<Vertex*>(mesh_data_->mapped_ptr);
}

vec4* Mesh::map_vertex_buffer_vec4(Renderer* renderer) {
  if (!mesh_data_ || !mesh_data_->has_separate_vertex_arrays()) return nullptr;
  return static_cast<vec4*>(static_cast<void*>(map_vertex_buffer(renderer)));
}

bool Mesh::unmap_vertex_buffer(Renderer* renderer) {
  if (!renderer || !mesh_data_) return false;
  renderer->gpu_buffer_unmap(mesh_data_->vb());
  mesh_data_->mapped_ptr = nullptr;
  return true;
}

void* Mesh::get_map_vertex_buffer() const { return mesh_data_ ? mesh_data_->mapped_ptr : nullptr; }

}  // namespace orv
