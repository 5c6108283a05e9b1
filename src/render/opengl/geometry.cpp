// Buffers of a GeometryCore: creating, filling, drawing and deleting them.
#include <orv/geometry/geometry_core.h>
#include <orv/gpu/gpu_buffer_data.h>

#include <algorithm>
#include <climits>
#include <cstring>

#include "render/opengl/gl_draw_enums.h"
#include "render/opengl/renderer_opengl.h"

namespace orv {

using namespace detail;

namespace {

// Up to this size it is cheaper to copy parts together than to call the driver once more.
constexpr std::size_t MAX_STAGED_BYTES = std::size_t{1} << 20;

/// A changed part of the vertex buffer.
struct Part {
  std::size_t offset;
  std::size_t size;
  const unsigned char* data;
};

struct PartList {
  Part parts[GeometryCore::MAX_VERTEX_ATTRIBS + 1];
  std::size_t count = 0;
  std::size_t bytes = 0;

  void add(std::size_t offset, std::size_t size, const void* data) {
    if (size == 0 || !data) return;
    parts[count++] = {offset, size, static_cast<const unsigned char*>(data)};
    bytes += size;
  }
};

/// What has to be sent, in the order of the buffer; everything when `whole` is set.
PartList collect_parts(const GeometryCore& geometry, bool whole) {
  PartList list;
  std::size_t base = geometry.get_interleaved_vertex_array_size();
  if (base != 0) {
    unsigned int begin = 0, end = geometry.num_vertices;
    if (!whole) geometry.get_dirty_interleaved_vertices(&begin, &end);
    const auto* data = reinterpret_cast<const unsigned char*>(geometry.vertices);
    constexpr std::size_t STRIDE = sizeof(Vertex);
    if (end > begin) list.add(begin * STRIDE, (end - begin) * STRIDE, data + begin * STRIDE);
  }
  for (unsigned int i = 0; i < geometry.num_attrib_arrays; ++i) {
    const VertexAttribArray* array = geometry.attrib_arrays[i];
    if (!array) continue;
    unsigned int begin = 0, end = static_cast<unsigned int>(array->num_elements);
    if (!whole) array->get_dirty_elements(&begin, &end);
    const auto stride = static_cast<std::size_t>(array->element_size);
    const auto* data = static_cast<const unsigned char*>(array->data);
    if (data && end > begin) {
      list.add(base + begin * stride, (end - begin) * stride, data + begin * stride);
    }
    base += array->get_size();
  }
  return list;
}

void clear_upload_marks(GeometryCore* geometry) {
  geometry->update_interleaved_vertex_array_set_state(false);
  for (unsigned int i = 0; i < geometry->num_attrib_arrays; ++i) {
    if (geometry->attrib_arrays[i]) geometry->attrib_arrays[i]->update_needed(false);
  }
  // Arrays that a host put into the list themselves tell nobody of their marks.
  const auto* first = geometry->attrib_arrays;
  geometry->attribs_marked = std::any_of(
      first, first + geometry->num_attrib_arrays,
      [=](const VertexAttribArray* array) { return array && array->owner != geometry; });
}

/// Whether nothing was allocated, freed or marked since the upload: the state of most geometries
/// in most frames, told without a look at the arrays.
bool is_vertex_buffer_current(const GeometryCore& geometry) {
  return geometry.gpu_state.uploaded_serial == geometry.layout_serial && !geometry.attribs_marked &&
         !geometry.is_update_interleaved_vertex_array_needed();
}

/// Counts of the buffers as they were uploaded.
struct DrawCounts {
  unsigned int vertices = 0;
  unsigned int faces = 0;
  bool short_indices = false;
  bool generic = false;
};

DrawCounts draw_counts(const GeometryCore& geometry) {
  DrawCounts counts;
  if (geometry.gpu_state.cpu_released) {
    const GeometryGpuLayout& layout = geometry.gpu_state.released;
    counts = {layout.num_vertices, layout.num_faces, layout.index_bits == 16,
              layout.generic_indices};
  } else {
    counts = {geometry.num_vertices, geometry.num_faces, geometry.index_bits == 16,
              geometry.indices != nullptr};
  }
  counts.faces = std::min(counts.faces, geometry.gpu_state.uploaded_num_faces);
  if (counts.generic) counts.short_indices = false;
  return counts;
}

/// Vertices that all arrays hold, also when they were made without a vertex count. Arrays of
/// instances step otherwise, and empty ones are not bound.
long long available_vertices(const GeometryCore& geometry, const DrawCounts& counts) {
  GeometryGpuLayout layout;
  geometry.get_gpu_layout(&layout);
  long long available = counts.vertices > 0 ? counts.vertices : LLONG_MAX;
  for (unsigned int i = 0; i < layout.num_attribs; ++i) {
    const GeometryGpuAttrib& array = layout.attribs[i];
    if (array.divisor > 0 || array.num_elements == 0) continue;
    available = std::min(available, static_cast<long long>(array.num_elements));
  }
  return available == LLONG_MAX ? 0 : available;
}

/// Range of the index buffer that is drawn.
struct IndexRange {
  int count = 0;
  std::size_t offset = 0;  ///< bytes
};

IndexRange index_range(const DrawCounts& counts, long long first, long long last) {
  last = std::min(last, static_cast<long long>(counts.faces) - 1);
  if (last < first || first < 0) return {};
  const long long per_face = counts.generic ? 1 : 3;
  const long long count = (last - first + 1) * per_face;
  if (count > INT_MAX) return {};
  const long long index_size = counts.short_indices ? 2 : 4;
  return {static_cast<int>(count), static_cast<std::size_t>(first * per_face * index_size)};
}

const void* as_offset(std::size_t offset) { return reinterpret_cast<const void*>(offset); }

bool is_adjacency_mode(GLenum mode) {
  return mode == GL_LINES_ADJACENCY || mode == GL_LINE_STRIP_ADJACENCY;
}

/// Calls draw(mode, first, count) for what a range is drawn with where OpenGL knows no adjacency:
/// the lines between the inner vertices, as it draws itself where no geometry shader takes them.
template <class Draw>
void draw_inner_lines(GLenum mode, long long first, long long count, Draw draw) {
  if (mode == GL_LINE_STRIP_ADJACENCY) {
    if (count >= 4) draw(GL_LINE_STRIP, first + 1, count - 2);
    return;
  }
  for (long long i = 0; i + 4 <= count; i += 4) draw(GL_LINES, first + i + 1, 2);
}

}  // namespace

// ---- creating ----

bool RendererOpenGL::geometry_vbo_create(RendererGpu* gpu, GeometryCore* geometry) {
  if (!geometry || lacks(gl_.glGenBuffers, "glGenBuffers")) return false;
  if (geometry->vb_uploaded) return true;
  if (geometry->is_external_vb_source()) {
    if (geometry->get_vb_source()->size == 0) return false;
  } else if (!create_vertex_buffer(gpu, geometry)) {
    return false;
  }
  geometry->vb_uploaded = true;
  // The first update sends everything, whatever is marked.
  geometry->gpu_state.uploaded_serial = 0;
  create_index_buffer(geometry);
  geometry->update_thread();
  return true;
}

bool RendererOpenGL::create_vertex_buffer(RendererGpu* gpu, GeometryCore* geometry) {
  const unsigned int size = geometry->get_total_vertex_buffer_size();
  if (size == 0) return false;
  GpuBufferData* buffer = geometry->vb();
  const unsigned int option = usage_.values[GlUsageOptions::VERTEX];
  const BUFFER_OBJECT_USAGE usage =
      option != 0 ? static_cast<BUFFER_OBJECT_USAGE>(option) : geometry->vertex_buffer_usage;
  if (!gpu_buffer_alloc(gpu, buffer, geometry->vertex_buffer_type, usage, size, nullptr)) {
    return false;
  }
  geometry->vertex_buffer_id = buffer->buffer_id;
  geometry->gpu_state.uploaded_vertex_size = size;
  // A new buffer may get the number of the old one.
  geometry->gpu_state.vao_serial = 0;
  return true;
}

void RendererOpenGL::create_index_buffer(GeometryCore* geometry) {
  const unsigned int size = geometry->get_total_index_buffer_size();
  if (geometry->ibo != 0 || geometry->num_faces == 0 || size == 0) return;
  gl_.glGenBuffers(1, &geometry->ibo);
  specify_index_buffer(geometry, size, nullptr);
  geometry->ib_uploaded = false;
  geometry->gpu_state.vao_serial = 0;
}

void RendererOpenGL::specify_index_buffer(GeometryCore* geometry, unsigned int size,
                                          const void* data) {
  const unsigned int option = usage_.values[GlUsageOptions::INDEX];
  const unsigned int usage =
      option != 0 ? option : static_cast<unsigned int>(geometry->index_buffer_usage);
  // The element array binding belongs to the vertex array object that is bound just now.
  gl_.glBindBuffer(GL_ARRAY_BUFFER, geometry->ibo);
  gl_.glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(size), data, gl_buffer_usage(usage));
  gl_.glBindBuffer(GL_ARRAY_BUFFER, 0);
  geometry->gpu_state.uploaded_index_size = size;
}

// ---- updating ----

bool RendererOpenGL::geometry_vbo_update(GeometryCore* geometry) {
  if (!geometry || !geometry->vb_uploaded || !gl_.glBufferData) return false;
  if (geometry->gpu_state.cpu_released) return true;
  bool updated = true;
  if (!geometry->is_external_vb_source()) updated = update_vertex_buffer(geometry);
  update_index_buffer(geometry);
  if (updated) geometry->note_uploaded();
  return updated;
}

bool RendererOpenGL::update_vertex_buffer(GeometryCore* geometry) {
  if (is_vertex_buffer_current(*geometry) && geometry->vb()->buffer_id != 0) return true;
  const unsigned int size = geometry->get_total_vertex_buffer_size();
  const GeometryGpuState& state = geometry->gpu_state;
  GpuBufferData* buffer = geometry->vb();
  const bool whole = state.uploaded_serial != geometry->layout_serial ||
                     state.uploaded_vertex_size != size || buffer->buffer_id == 0;
  if (size == 0 || (!whole && !geometry->is_update_vertex_buffer_needed())) return true;
  // The driver refuses to touch a buffer that the host has mapped, persistent mappings apart.
  const bool persistent = buffer->immutable_storage && buffer->map_persistent;
  if (buffer->mapped_ptr && !persistent) return false;
  if (!fit_vertex_buffer(geometry, size)) return false;

  const PartList list = collect_parts(*geometry, whole);
  const GLenum target = gl_buffer_target(buffer->type);
  const bool resize = state.uploaded_vertex_size != size;
  gpu_buffer_bind(buffer);
  if (!buffer->immutable_storage && (resize || list.bytes == size)) {
    specify_vertex_buffer(geometry, target, size);
  } else {
    write_parts(target, list.parts, list.count);
  }
  gpu_buffer_unbind(buffer);
  clear_upload_marks(geometry);
  geometry->gpu_state.uploaded_vertex_size = size;
  geometry->vertex_buffer_id = buffer->buffer_id;
  return true;
}

bool RendererOpenGL::fit_vertex_buffer(GeometryCore* geometry, unsigned int size) {
  GpuBufferData* buffer = geometry->vb();
  // Storage that cannot be specified again is replaced.
  if (buffer->buffer_id != 0 && buffer->immutable_storage && buffer->size < size) {
    gpu_buffer_free(buffer);
  }
  return buffer->buffer_id != 0 || create_vertex_buffer(nullptr, geometry);
}

void RendererOpenGL::specify_vertex_buffer(GeometryCore* geometry, unsigned int target,
                                           unsigned int size) {
  GpuBufferData* buffer = geometry->vb();
  const GLenum usage = gl_buffer_usage(static_cast<unsigned int>(buffer->usage));
  const auto bytes = static_cast<GLsizeiptr>(size);
  const PartList list = collect_parts(*geometry, true);
  buffer->size = size;
  if (list.count == 1) {
    gl_.glBufferData(target, bytes, list.parts[0].data, usage);
  } else if (size <= MAX_STAGED_BYTES) {
    upload_scratch_.resize(size);
    geometry->vertex_arrays_to_memory(upload_scratch_.data());
    gl_.glBufferData(target, bytes, upload_scratch_.data(), usage);
  } else {
    gl_.glBufferData(target, bytes, nullptr, usage);
    for (std::size_t i = 0; i < list.count; ++i) write_part(target, list.parts[i]);
  }
}

template <class PartType>
void RendererOpenGL::write_part(unsigned int target, const PartType& part) {
  gl_.glBufferSubData(target, static_cast<GLintptr>(part.offset),
                      static_cast<GLsizeiptr>(part.size), part.data);
}

template <class PartType>
void RendererOpenGL::write_parts(unsigned int target, const PartType* parts, std::size_t count) {
  for (std::size_t first = 0; first < count;) {
    std::size_t last = first + 1;
    std::size_t bytes = parts[first].size;
    while (last < count && parts[last].offset == parts[first].offset + bytes &&
           bytes + parts[last].size <= MAX_STAGED_BYTES) {
      bytes += parts[last++].size;
    }
    if (last == first + 1) {
      write_part(target, parts[first]);
    } else {
      upload_scratch_.resize(bytes);
      unsigned char* to = upload_scratch_.data();
      for (std::size_t i = first; i < last; ++i) {
        std::memcpy(to, parts[i].data, parts[i].size);
        to += parts[i].size;
      }
      write_part(target, PartType{parts[first].offset, bytes, upload_scratch_.data()});
    }
    first = last;
  }
}

void RendererOpenGL::update_index_buffer(GeometryCore* geometry) {
  const unsigned int size = geometry->get_total_index_buffer_size();
  const void* data = geometry->get_index_buffer_data_ptr();
  GeometryGpuState& state = geometry->gpu_state;
  if (geometry->num_faces == 0 || size == 0 || !data) {
    delete_index_buffer(geometry);
    return;
  }
  const bool current =
      geometry->ibo != 0 && geometry->ib_uploaded && !geometry->ib_update_faces_list_needed &&
      state.uploaded_index_size == size && state.uploaded_serial == geometry->layout_serial;
  if (current) return;
  if (geometry->ibo == 0) {
    gl_.glGenBuffers(1, &geometry->ibo);
    state.vao_serial = 0;
  }
  specify_index_buffer(geometry, size, data);
  geometry->ib_uploaded = true;
  geometry->ib_update_faces_list_needed = false;
  state.uploaded_num_faces = geometry->num_faces;
}

void RendererOpenGL::delete_index_buffer(GeometryCore* geometry) {
  if (geometry->ibo != 0) forget_buffer(geometry->ibo);
  if (geometry->ibo != 0 && gl_.glDeleteBuffers) gl_.glDeleteBuffers(1, &geometry->ibo);
  geometry->ibo = 0;
  geometry->ib_uploaded = false;
  geometry->gpu_state.uploaded_index_size = 0;
  geometry->gpu_state.uploaded_num_faces = 0;
  geometry->gpu_state.vao_serial = 0;
}

// ---- drawing ----

bool RendererOpenGL::geometry_vbo_draw(GeometryCore* geometry) {
  if (!geometry || !geometry->vb_uploaded || !core_.glDrawArrays) return false;
  // What the buffers hold is no longer what the geometry describes: it has to be bound again.
  const GeometryGpuState& state = geometry->gpu_state;
  if (!state.cpu_released && state.uploaded_serial != geometry->layout_serial) return false;
  // The driver would take byte offsets for addresses where the geometry's buffers are not bound.
  if (!is_bound(*geometry)) return false;
  const GLenum mode =
      geometry->tessellation ? GL_PATCHES : gl_primitive_mode(geometry->primitive_type);
  if (mode == GL_PATCHES && !gl_.glPatchParameteri) return false;
  const bool stand_in = is_core_program_missing();
  if (stand_in && (mode == GL_PATCHES || !begin_core_color_program())) return false;
  if (geometry->ibo == 0) {
    draw_arrays(*geometry, mode);
  } else {
    draw_elements(*geometry, mode);
  }
  if (stand_in) end_core_color_program();
  return true;
}

bool RendererOpenGL::has_adjacency() const {
  return facts_.is_version_at_least(3, 2) || facts_.has_extension("GL_ARB_geometry_shader4") ||
         facts_.has_extension("GL_EXT_geometry_shader4");
}

template <class Draw>
void RendererOpenGL::draw_range(unsigned int mode, long long first, long long count, Draw draw) {
  if (is_adjacency_mode(mode) && !has_adjacency()) {
    draw_inner_lines(mode, first, count, draw);
  } else {
    draw(mode, first, count);
  }
}

void RendererOpenGL::draw_arrays(const GeometryCore& geometry, unsigned int mode) {
  const long long start = std::max(geometry.draw_start, 0);
  long long left = geometry.draw_count;
  if (!geometry.is_external_vb_source()) {
    left = std::min(left, available_vertices(geometry, draw_counts(geometry)) - start);
  }
  if (left <= 0) return;
  const auto instances = static_cast<GLsizei>(std::min(geometry.num_instances, unsigned{INT_MAX}));
  draw_range(mode, start, left, [&](GLenum run_mode, long long run_first, long long run_count) {
    const auto first = static_cast<GLint>(run_first);
    const auto count = static_cast<GLsizei>(run_count);
    if (instances > 1 && gl_.glDrawArraysInstancedARB) {
      gl_.glDrawArraysInstancedARB(run_mode, first, count, instances);
    } else {
      core_.glDrawArrays(run_mode, first, count);
    }
  });
}

void RendererOpenGL::draw_elements(const GeometryCore& geometry, unsigned int mode) {
  const DrawCounts counts = draw_counts(geometry);
  const GLenum type = counts.short_indices ? GL_UNSIGNED_SHORT : GL_UNSIGNED_INT;
  const MaterialSubset* subset = geometry.current_subset;
  const IndexRange range = subset
                               ? index_range(counts, subset->start_face, subset->end_face)
                               : index_range(counts, 0, static_cast<long long>(counts.faces) - 1);
  const GLuint last_vertex = counts.vertices > 0 ? counts.vertices - 1 : 0;
  const auto instances = static_cast<GLsizei>(std::min(geometry.num_instances, unsigned{INT_MAX}));
  const std::size_t index_size = counts.short_indices ? 2 : 4;
  draw_range(mode, 0, range.count, [&](GLenum run_mode, long long first, long long run_count) {
    const auto count = static_cast<GLsizei>(run_count);
    const void* place = as_offset(range.offset + static_cast<std::size_t>(first) * index_size);
    if (subset) {
      if (!gl_.glDrawRangeElements) return;
      gl_.glDrawRangeElements(run_mode, 0, last_vertex, count, type, place);
    } else if (instances > 1 && gl_.glDrawElementsInstancedARB) {
      gl_.glDrawElementsInstancedARB(run_mode, count, type, place, instances);
    } else {
      core_.glDrawElements(run_mode, count, type, place);
    }
  });
}

void RendererOpenGL::draw_raw(unsigned int mode, unsigned int vertices_per_primitive,
                              unsigned int count, unsigned int first) {
  if (!core_.glDrawArrays) return;
  const unsigned long long begin = 1ull * first * vertices_per_primitive;
  const unsigned long long vertices = 1ull * count * vertices_per_primitive;
  if (begin + vertices > INT_MAX) return;
  const bool stand_in = is_core_program_missing();
  if (stand_in && !begin_core_color_program()) return;
  core_.glDrawArrays(mode, static_cast<GLint>(begin), static_cast<GLsizei>(vertices));
  if (stand_in) end_core_color_program();
}

// ---- deleting ----

bool RendererOpenGL::geometry_vbo_destroy(GeometryCore* geometry) {
  if (!geometry || !geometry->check_thread()) return false;
  if (bound_.geometry == geometry) disable_arrays();
  delete_vertex_array(geometry);
  gpu_buffer_free(geometry->vb());
  delete_index_buffer(geometry);
  geometry->vb_uploaded = false;
  geometry->vertex_buffer_id = 0;
  geometry->gpu_state = GeometryGpuState();
  return true;
}

}  // namespace orv
