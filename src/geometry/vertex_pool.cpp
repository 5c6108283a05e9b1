#include <orv/geometry/vertex_pool.h>

#include <orv/core/log_mgr.h>
#include <orv/gpu/gpu_buffer.h>
#include <orv/gpu/gpu_buffer_data.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/render/renderer.h>

namespace orv {

VertexPool::VertexPool() : pool_data_(new VertexPoolData) { set_type(NODE_TYPE_VERTEX_POOL); }

VertexPool::~VertexPool() { delete pool_data_; }

// ---- life and drawing ----

bool VertexPool::_cleanup(Renderer* renderer) {
  if (renderer && pool_data_) renderer->geometry_vbo_destroy(pool_data_);
  delete pool_data_;
  pool_data_ = nullptr;
  return Object::_cleanup(renderer);
}

void VertexPool::_render(Renderer* renderer) {
  if (!renderer || !pool_data_) return;
  GpuProgramData* program = renderer->get_current_gpu_program();
  if (program) {
    set_opengl_2_3_rendering_states(!program->get_use_generic_vertex_attribs_state(), nullptr);
  }
  bind_gpu_program_uniforms(renderer, program, get_use_fixed_mvp_matrices_state());
  render_geometry(renderer);
  if (get_display_grid_state()) display_grid(renderer, nullptr);
  if (get_display_tripod_state()) render_tripod(renderer, get_tripod_size());
}

int VertexPool::get_renderer_id() { return pool_data_ ? pool_data_->vb()->renderer_id : 0; }

void VertexPool::render_geometry(Renderer* renderer) {
  render_geometry_prepare(renderer);
  render_geometry_draw(renderer);
  render_geometry_finish(renderer);
}

void VertexPool::render_geometry_prepare(Renderer* renderer) {
  if (!renderer || !pool_data_) return;
  GpuProgramData* program = renderer->get_current_gpu_program();
  pool_data_->set_use_generic_vertex_attribs_state(program &&
                                                   program->get_use_generic_vertex_attribs_state());
  if (program) renderer->gpu_program_bind_vertex_attrib_locations(program);
  renderer->geometry_vbo_create(nullptr, pool_data_);
  renderer->geometry_vbo_update(pool_data_);
  renderer->geometry_vbo_bind(pool_data_);
}

void VertexPool::render_geometry_draw(Renderer* renderer) {
  if (renderer && pool_data_) renderer->geometry_vbo_draw(pool_data_);
}

void VertexPool::render_geometry_finish(Renderer* renderer) {
  if (renderer && pool_data_) renderer->geometry_vbo_unbind(pool_data_);
}

// ---- pool ----

bool VertexPool::init_pool(unsigned int n, bool separate_arrays) {
  if (!pool_data_) return false;
  GeometryCoreAllocParams& params = pool_data_->alloc_params;
  params.separate_vertex_arrays = separate_arrays;
  params.num_vertices = n;
  if (separate_arrays) params.set_vertex_attrib_dim(0, 3);
  // Arrays of an earlier, separate form would stay behind interleaved vertices.
  pool_data_->free_vertex_data();
  if (!pool_data_->alloc_vertex_data()) return false;
  pool_data_->set_primitive_type(PRIMITIVE_POINTS);
  return true;
}

void VertexPool::set_render_start_offset(unsigned int n) {
  if (pool_data_) pool_data_->draw_start = static_cast<int>(n);
}

void VertexPool::set_render_num_vertices(unsigned int n) {
  if (pool_data_) pool_data_->draw_count = static_cast<int>(n);
}

Vertex* VertexPool::get_pool_ptr() {
  return pool_data_ ? static_cast<Vertex*>(pool_data_->get_vertex_ptr()) : nullptr;
}

unsigned int VertexPool::get_pool_size() const {
  return pool_data_ ? pool_data_->get_num_vertices() : 0;
}

void* VertexPool::get_position_ptr() {
  return pool_data_ ? pool_data_->get_position_ptr() : nullptr;
}

void* VertexPool::get_color_ptr() { return pool_data_ ? pool_data_->get_color_ptr() : nullptr; }

void VertexPool::set_point_sprite_state(bool state) {
  if (pool_data_) pool_data_->set_point_sprite_state(state);
}

bool VertexPool::get_point_sprite_state() const {
  return pool_data_ && pool_data_->get_point_sprite_state();
}

// ---- vertices ----

unsigned int VertexPool::get_num_vertices(Node*) { return get_pool_size(); }

Vertex* VertexPool::get_vertex(unsigned int i) {
  return pool_data_ ? pool_data_->get_vertex(i) : nullptr;
}

Vertex VertexPool::get_vertex_v2(unsigned int i) {
  return pool_data_ ? pool_data_->get_vertex_v2(i) : Vertex();
}

bool VertexPool::set_vertex_position(unsigned int i, const vec3& v) {
  return set_vertex_position(i, vec4(v));
}

bool VertexPool::set_vertex_position(unsigned int i, const vec4& v) {
  return pool_data_ && pool_data_->set_position(i, v);
}

bool VertexPool::set_vertex_position(unsigned int i, float x, float y, float z, float w) {
  return set_vertex_position(i, vec4(x, y, z, w));
}

bool VertexPool::set_vertex_color(unsigned int i, const vec3& v) {
  return set_vertex_color(i, vec4(v));
}

bool VertexPool::set_vertex_color(unsigned int i, const vec4& v) {
  return pool_data_ && pool_data_->set_color(i, v);
}

bool VertexPool::set_vertex_color(unsigned int i, float r, float g, float b, float a) {
  return set_vertex_color(i, vec4(r, g, b, a));
}

bool VertexPool::set_vertex_normal(unsigned int i, const vec3& v) {
  return set_vertex_normal(i, vec4(v));
}

bool VertexPool::set_vertex_normal(unsigned int i, const vec4& v) {
  return pool_data_ && pool_data_->set_normal(i, v);
}

bool VertexPool::set_vertex_normal(unsigned int i, float x, float y, float z, float w) {
  return set_vertex_normal(i, vec4(x, y, z, w));
}

vec4 VertexPool::get_vertex_position(unsigned int i) const {
  return pool_data_ ? pool_data_->get_position_4f(i) : vec4();
}

vec4 VertexPool::get_vertex_color(unsigned int i) const {
  return pool_data_ ? pool_data_->get_color(i) : vec4();
}

vec4 VertexPool::get_vertex_normal(unsigned int i) const {
  return pool_data_ ? pool_data_->get_normal(i) : vec4();
}

// ---- buffers ----

bool VertexPool::is_interleaved() const {
  return pool_data_ && !pool_data_->has_separate_vertex_arrays();
}

Vertex* VertexPool::map_vertex_buffer(Renderer* renderer) {
  if (!is_interleaved()) return nullptr;
  if (renderer) {
    GpuBufferData* source = pool_data_->get_vb_source();
    renderer->gpu_buffer_bind(source);
    pool_data_->mapped_ptr = renderer->gpu_buffer_map(source, "GL_WRITE_ONLY");
  }
  return static_cast<Vertex*>(pool_data_->mapped_ptr);
}

bool VertexPool::unmap_vertex_buffer(Renderer* renderer) {
  if (!renderer || !is_interleaved()) return false;
  GpuBufferData* source = pool_data_->get_vb_source();
  renderer->gpu_buffer_unmap(source);
  renderer->gpu_buffer_unbind(source);
  pool_data_->mapped_ptr = nullptr;
  return true;
}

void* VertexPool::get_mapped_vertex_buffer() const {
  return pool_data_ ? pool_data_->mapped_ptr : nullptr;
}

bool VertexPool::set_vertex_source(GpuBuffer* buffer) {
  if (pool_data_) pool_data_->set_vb_source(buffer ? buffer->get_data_ptr() : nullptr);
  return true;
}

bool VertexPool::can_exchange(Renderer* renderer, GpuBuffer* buffer) const {
  if (!buffer || !is_interleaved()) return false;
  if (!renderer) return true;
  if (!buffer->get_data_ptr()) return false;
  const unsigned int have = buffer->get_data_ptr()->size;
  const unsigned int need = pool_data_->get_total_vertex_buffer_size();
  if (have >= need) return true;
  LogMgr::get().tracef_debug("Vertex pool %s - buffer of %u bytes for vertices of %u bytes",
                             get_name(), have, need);
  return false;
}

bool VertexPool::vertices_to_gpu_buffer(Renderer* renderer, GpuBuffer* buffer) {
  if (!can_exchange(renderer, buffer)) return false;
  if (!renderer) return true;
  void* memory = buffer->map(renderer, "GL_WRITE_ONLY");
  if (!memory) return false;
  pool_data_->vertex_arrays_to_memory(memory);
  buffer->unmap(renderer);
  return true;
}

bool VertexPool::vertices_from_gpu_buffer(Renderer* renderer, GpuBuffer* buffer) {
  if (!can_exchange(renderer, buffer)) return false;
  if (!renderer) return true;
  const void* memory = buffer->map(renderer, "GL_READ_ONLY");
  if (!memory) return false;
  pool_data_->vertex_arrays_from_memory(memory);
  buffer->unmap(renderer);
  return true;
}

}  // namespace orv
