#include "text/text_mesh.h"

#include <orv/core/log_mgr.h>
#include <orv/geometry/mesh.h>
#include <orv/geometry/mesh_data.h>
#include <orv/gpu/gpu_buffer_data.h>
#include <orv/math/mat4.h>
#include <orv/render/renderer.h>
#include <orv/scene/tripod.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "geometry/limits.h"
#include "text/text_rows.h"

namespace orv::detail {

namespace {

constexpr std::uint64_t BYTES_PER_CHAR = FLOATS_PER_CHAR * sizeof(float);
static_assert(FLOATS_PER_VERTEX * sizeof(float) == sizeof(Vertex));

constexpr std::uint64_t MAX_CHARS = MAX_GEOMETRY_BYTES / BYTES_PER_CHAR;

}  // namespace

TextMesh::~TextMesh() { free(nullptr); }

void TextMesh::free(Renderer* renderer) {
  capacity_ = 0;
  if (mesh_) mesh_->release(renderer, nullptr);
  mesh_ = nullptr;
}

bool TextMesh::reserve(Renderer* renderer, unsigned int num_chars, unsigned int slack) {
  capacity_ = 0;
  const std::uint64_t wanted = num_chars > slack ? std::uint64_t{num_chars} + slack : slack;
  if (num_chars > MAX_CHARS) {
    LogMgr::get().tracef_debug("text mesh: %u characters are too many", num_chars);
    return false;
  }
  const auto capacity = static_cast<unsigned int>(std::min(wanted, MAX_CHARS));
  if (mesh_) {
    renderer->geometry_vbo_destroy(mesh_->get_data());
    mesh_->free_mesh_data();
  } else {
    mesh_ = new Mesh;
    mesh_->add_ref();
  }
  MeshDataVertexAttribsAllocParams params = mesh_->get_vertex_alloc_params();
  params.num_vertices = capacity * VERTICES_PER_CHAR;
  params.separate_vertex_arrays = false;
  params.alloc_vertex_particles = false;
  mesh_->set_vertex_alloc_params(params);
  if (!mesh_->alloc_vertex_data()) return false;
  mesh_->set_draw_start_end_vertex(0, 0);
  capacity_ = capacity;
  return true;
}

// ---- updating ----

float* TextMesh::block_for(unsigned int num_chars) const {
  MeshData* data = mesh_ ? mesh_->get_data() : nullptr;
  if (!data || !data->vertices || data->get_vertex_elt_size() != sizeof(Vertex)) return nullptr;
  if (num_chars > data->get_num_vertices() / VERTICES_PER_CHAR) return nullptr;
  return reinterpret_cast<float*>(data->vertices);
}

float* TextMesh::map(Renderer* renderer, unsigned int num_chars) {
  const unsigned int buffer = mesh_->get_vertex_buffer_opengl_id();
  // A buffer of an earlier, smaller mesh may be left where it could not be destroyed.
  if (buffer == 0 || mesh_->get_data()->vb()->size < num_chars * BYTES_PER_CHAR) return nullptr;
  return static_cast<float*>(renderer->vertex_buffer_map(buffer));
}

bool TextMesh::is_marked() const { return mesh_->get_data()->is_update_vertex_buffer_needed(); }

void TextMesh::end_update(Renderer* renderer, unsigned int num_chars, float* mapped,
                          bool into_own) {
  MeshData& data = *mesh_->get_data();
  data.set_vertex_draw_range(0, static_cast<int>(num_chars * VERTICES_PER_CHAR));
  if (mapped) {
    if (into_own) std::memcpy(mapped, data.vertices, num_chars * BYTES_PER_CHAR);
    renderer->vertex_buffer_unmap(mesh_->get_vertex_buffer_opengl_id());
  } else if (num_chars > 0) {
    data.mark_interleaved(0, num_chars * VERTICES_PER_CHAR);
  }
}

bool TextMesh::render(Renderer* renderer, const mat4& transform) {
  if (!mesh_) return false;
  mesh_->get_tripod()->set_transform(transform);
  mesh_->render(renderer, nullptr);
  return true;
}

}  // namespace orv::detail
