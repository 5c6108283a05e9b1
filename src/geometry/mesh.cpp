#include <orv/geometry/mesh.h>

#include <orv/core/log_mgr.h>
#include <orv/gpu/gpu_buffer_data.h>
#include <orv/render/renderer.h>
#include <orv/scene/node.h>

#include <algorithm>
#include <climits>
#include <cstdint>

#include "geometry/counted_data.h"
#include "geometry/mesh_ray_cache.h"
#include "geometry/mesh_user_geometry.h"

namespace orv {

// ---- construction and copies ----

Mesh::Mesh() : Mesh(VERTEX_FORMAT_DEFAULT) {}

Mesh::Mesh(VERTEX_FORMAT format) {
  set_type(NODE_TYPE_MESH);
  init_mesh_data(nullptr, format);
}

Mesh::~Mesh() {
  _set_mesh_data(nullptr, nullptr);
  delete user_geometry_;
  delete ray_cache_;
}

Mesh::Mesh(const Mesh& other) : Mesh() { *this = other; }

Mesh& Mesh::operator=(const Mesh& other) {
  if (this == &other) return *this;
  copy_state(other);
  _set_mesh_data(nullptr, other.mesh_data_);
  MeshUserGeometry* gathered =
      other.user_geometry_ ? new MeshUserGeometry(*other.user_geometry_) : nullptr;
  delete user_geometry_;
  user_geometry_ = gathered;
  return *this;
}

// ---- data ----

bool Mesh::_set_mesh_data(Renderer* renderer, MeshData* data) {
  if (data != mesh_data_) {
    if (data) data->owner_id = get_id();
    delete ray_cache_;
    ray_cache_ = nullptr;
  }
  replace_counted_data(renderer, mesh_data_, data);
  return true;
}

bool Mesh::share_mesh_data(Renderer* renderer, Mesh* other) {
  return other && _set_mesh_data(renderer, other->mesh_data_);
}

bool Mesh::init_mesh_data(Renderer* renderer, VERTEX_FORMAT format) {
  return _set_mesh_data(renderer, format == VERTEX_FORMAT_DEFAULT ? new MeshData : nullptr);
}

bool Mesh::cleanup_mesh_data(Renderer* renderer) { return _set_mesh_data(renderer, nullptr); }

bool Mesh::clear_cpu_gpu_data(Renderer* renderer, bool clear_cpu, bool clear_gpu) {
  if (!mesh_data_) return false;
  if (clear_gpu && renderer) renderer->geometry_vbo_destroy(mesh_data_);
  if (!clear_cpu) return true;
  if (clear_gpu) {
    mesh_data_->free_data();
  } else {
    mesh_data_->release_cpu_data();
  }
  return true;
}

bool Mesh::free_mesh_data() { return mesh_data_ && mesh_data_->free_data(); }

bool Mesh::free_vertex_attrib_array(unsigned int array) {
  VertexAttribArray* target = mesh_data_ ? mesh_data_->get_vertex_attrib_array(array) : nullptr;
  if (!target) return false;
  target->free_data();
  return true;
}

// ---- allocation ----

bool Mesh::set_vertex_alloc_params(const MeshDataVertexAttribsAllocParams& params) {
  return mesh_data_ && mesh_data_->set_vertex_alloc_params(params);
}

MeshDataVertexAttribsAllocParams Mesh::get_vertex_alloc_params() const {
  return mesh_data_ ? mesh_data_->get_vertex_alloc_params() : MeshDataVertexAttribsAllocParams();
}

void Mesh::set_vertex_alloc_params_num_vertices(unsigned int n) {
  if (mesh_data_) mesh_data_->set_vertex_alloc_params_num_vertices(n);
}

void Mesh::set_vertex_alloc_params_num_user_attribs(unsigned int n) {
  if (mesh_data_) mesh_data_->set_vertex_alloc_params_num_user_attribs(n);
}

bool Mesh::alloc_vertex_data() {
  if (!mesh_data_) return false;
  const GeometryCoreAllocParams& params = mesh_data_->get_alloc_params();
  if (params.num_vertices == 0) {
    LogMgr::get().tracef_error(
        "Mesh %s::%d - vertices memory allocation failed - number of vertices is 0.", get_name(),
        get_id());
    return false;
  }
  if (!mesh_data_->alloc_vertex_data()) {
    LogMgr::get().tracef_error(
        "Mesh %s::%id - vertices memory allocation failed (bad alloc - %lu vertices required).",
        get_name(), get_id(), static_cast<unsigned long>(params.num_vertices));
    return false;
  }
  if (params.num_user_attribs > 0 && !get_use_generic_vertex_attribs_state()) {
    set_use_generic_vertex_attribs_state(true, nullptr);
  }
  return true;
}

bool Mesh::alloc_face_data(unsigned int count, bool force_32) {
  if (!mesh_data_) return false;
  if (mesh_data_->alloc_face_data(count, force_32)) return true;
  LogMgr::get().tracef_error("Mesh %s - faces memory allocation failed.", get_name());
  return false;
}

bool Mesh::alloc_face_data_v2(unsigned int count, MESH_FACE_TRIANGLE_TYPE type) {
  if (!mesh_data_) return false;
  if (mesh_data_->alloc_face_data_v2(count, type)) return true;
  LogMgr::get().tracef_error("Mesh %s - faces memory allocation failed.", get_name());
  return false;
}

void Mesh::set_draw_start_end_vertex(int start, int end) {
  if (!mesh_data_) return;
  const std::int64_t count = static_cast<std::int64_t>(end) - start;
  mesh_data_->set_vertex_draw_range(
      start, static_cast<int>(std::clamp<std::int64_t>(count, INT_MIN, INT_MAX)));
}

// ---- life ----

bool Mesh::_cleanup(Renderer* renderer) {
  cleanup_mesh_data(renderer);
  return Object::_cleanup(renderer);
}

bool Mesh::_build() {
  if (get_build_state()) {
    update_build_state(false);
    if (user_geometry_ && !_user_geometry_build()) return false;
  }
  return Object::_build();
}

MeshRayCache& Mesh::ray_cache() {
  if (!ray_cache_) ray_cache_ = new MeshRayCache;
  return *ray_cache_;
}

int Mesh::get_renderer_id() { return mesh_data_ ? mesh_data_->vb()->renderer_id : 0; }

}  // namespace orv
