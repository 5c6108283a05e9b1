// Binding the attributes of a GeometryCore.
#include <orv/geometry/geometry_core.h>
#include <orv/gpu/gpu_buffer_data.h>

#include <algorithm>
#include <bit>
#include <cstdint>

#include "render/opengl/renderer_opengl.h"

namespace orv {

using namespace detail;

namespace {

constexpr unsigned int NUM_STD_ATTRIBS = 4;
constexpr int INTERLEAVED_STRIDE = 64;
constexpr int INTERLEAVED_ATTRIB_SIZE = 16;
constexpr int NOT_FIXED = -1;
constexpr int MAX_LOCATIONS = 64;  // one bit each; drivers have 16 to 32

/// One attribute to bind: to a location, or to one of the four arrays of the fixed pipeline.
struct AttribRow {
  int location;
  int fixed_array;  ///< 0 vertex, 1 texture coordinates, 2 normal, 3 colour, else NOT_FIXED
  int dim;
  int stride;
  int divisor;
  std::size_t offset;
};

const void* as_offset(std::size_t offset) { return reinterpret_cast<const void*>(offset); }

/// Whether the fixed pipeline takes an array of so many components.
bool is_fixed_dim(int fixed_array, int dim) {
  constexpr int MIN_DIM[NUM_STD_ATTRIBS] = {2, 1, 3, 3};
  return dim >= MIN_DIM[fixed_array];
}

GLenum client_state(int fixed_array) {
  constexpr GLenum STATES[NUM_STD_ATTRIBS] = {GL_VERTEX_ARRAY, GL_TEXTURE_COORD_ARRAY,
                                              GL_NORMAL_ARRAY, GL_COLOR_ARRAY};
  return STATES[fixed_array];
}

/// How the standard attributes are handed over.
struct AttribMode {
  bool built_in;         ///< the geometry asks for the arrays of the fixed pipeline
  bool fixed_available;  ///< the context has them; else they stand at locations 0 to 3
  int max_attribs;
};

}  // namespace

/// The attributes of a geometry as they lie in its buffer.
struct RendererOpenGL::AttribPlan {
  AttribRow rows[NUM_STD_ATTRIBS + GeometryCore::MAX_VERTEX_ATTRIBS];
  int count = 0;

  AttribPlan(const GeometryCore& geometry, const AttribMode& mode) {
    GeometryGpuLayout layout;
    geometry.get_gpu_layout(&layout);
    const bool interleaved = layout.interleaved_size != 0;
    if (interleaved) add_interleaved(layout, mode);
    // The standard attributes of interleaved vertices take four of the driver's attributes.
    const int cap = mode.max_attribs - (interleaved ? static_cast<int>(NUM_STD_ATTRIBS) : 0);
    const int num_arrays = std::min(static_cast<int>(layout.num_attribs), cap);
    std::size_t offset = layout.interleaved_size;
    for (int i = 0; i < num_arrays; ++i) {
      const GeometryGpuAttrib& array = layout.attribs[i];
      add_array(array, i, interleaved, mode, offset);
      offset += std::size_t{array.num_elements} * static_cast<std::size_t>(array.element_size);
    }
  }

 private:
  std::uint64_t used_ = 0;  ///< locations taken so far

  void use(int location) {
    if (location >= 0 && location < MAX_LOCATIONS) used_ |= std::uint64_t{1} << location;
  }
  bool is_used(int location) const {
    return location >= 0 && location < MAX_LOCATIONS && (used_ >> location & 1) != 0;
  }

  void add(const AttribRow& row, int max_attribs) {
    if (row.fixed_array == NOT_FIXED) {
      if (row.location < 0 || row.location >= max_attribs) return;
    } else if (!is_fixed_dim(row.fixed_array, row.dim)) {
      return;
    }
    rows[count++] = row;
  }

  void add_interleaved(const GeometryGpuLayout& layout, const AttribMode& mode) {
    for (int i = 0; i < static_cast<int>(NUM_STD_ATTRIBS); ++i) {
      const int location = mode.built_in ? i : layout.std_locations[i];
      const bool fixed = mode.built_in && mode.fixed_available;
      use(location);
      add({location, fixed ? i : NOT_FIXED, 4, INTERLEAVED_STRIDE, 0,
           static_cast<std::size_t>(i * INTERLEAVED_ATTRIB_SIZE)},
          mode.max_attribs);
    }
  }

  void add_array(const GeometryGpuAttrib& array, int index, bool interleaved,
                 const AttribMode& mode, std::size_t offset) {
    int location = array.location;
    const bool standard =
        mode.built_in && !interleaved && index < static_cast<int>(NUM_STD_ATTRIBS);
    if (standard) {
      location = index;
    } else if (interleaved && location == index) {
      // Its own number would put it on top of the standard attributes.
      location = index + static_cast<int>(NUM_STD_ATTRIBS);
    }
    if (array.copied_from_own && is_used(location)) return;
    use(location);
    if (array.num_elements == 0 || array.element_size == 0) return;
    const bool fixed = standard && mode.fixed_available;
    const int stride = fixed ? array.element_size : 0;
    add({location, fixed ? index : NOT_FIXED, array.element_dim, stride, array.divisor, offset},
        mode.max_attribs);
  }
};

RendererOpenGL::AttribPlan RendererOpenGL::plan_attribs(const GeometryCore& geometry) const {
  return AttribPlan(geometry, {geometry.use_gl2_built_in_vertex_attribs, has_fixed_function(),
                               std::min(max_vertex_attribs_, MAX_LOCATIONS)});
}

// ---- arrays ----

void RendererOpenGL::enable_attribs(const AttribPlan& plan) {
  for (int i = 0; i < plan.count; ++i) {
    const AttribRow& row = plan.rows[i];
    if (row.fixed_array != NOT_FIXED) {
      enable_fixed_array(row.fixed_array, row.dim, row.stride, row.offset);
      bound_.fixed_arrays |= 1u << row.fixed_array;
      continue;
    }
    const auto location = static_cast<GLuint>(row.location);
    gl_.glEnableVertexAttribArray(location);
    gl_.glVertexAttribPointer(location, row.dim, GL_FLOAT, GL_FALSE, row.stride,
                              as_offset(row.offset));
    const std::uint64_t bit = std::uint64_t{1} << location;
    bound_.locations |= bit;
    if (row.divisor > 0 && gl_.glVertexAttribDivisorARB) {
      gl_.glVertexAttribDivisorARB(location, static_cast<GLuint>(row.divisor));
      bound_.divided |= bit;
    }
  }
}

void RendererOpenGL::enable_fixed_array(int fixed_array, int dim, int stride, std::size_t offset) {
  const void* pointer = as_offset(offset);
  if (fixed_array == 1) gl_.glClientActiveTexture(GL_TEXTURE0);
  core_.glEnableClientState(client_state(fixed_array));
  switch (fixed_array) {
    case 0:
      core_.glVertexPointer(dim, GL_FLOAT, stride, pointer);
      break;
    case 1:
      core_.glTexCoordPointer(dim, GL_FLOAT, stride, pointer);
      break;
    case 2:
      core_.glNormalPointer(GL_FLOAT, stride, pointer);
      break;
    default:
      core_.glColorPointer(dim, GL_FLOAT, stride, pointer);
      break;
  }
}

// What was enabled, whatever has become of the geometry since: an array that stays enabled is read
// by the next drawing, out of a buffer that may be gone.
void RendererOpenGL::disable_arrays() {
  const GlBoundGeometry old = bound_;
  bound_ = GlBoundGeometry();
  if (old.context_id != current_context_id() || !core_.glEnable) return;
  for (int i = 0; i < static_cast<int>(NUM_STD_ATTRIBS); ++i) {
    if ((old.fixed_arrays >> i & 1u) == 0) continue;
    if (i == 1) gl_.glClientActiveTexture(GL_TEXTURE0);
    core_.glDisableClientState(client_state(i));
  }
  for (std::uint64_t rest = old.locations; rest != 0; rest &= rest - 1) {
    const auto location = static_cast<GLuint>(std::countr_zero(rest));
    gl_.glDisableVertexAttribArray(location);
    // It would stay on the location and ruin the next geometry.
    if ((old.divided >> location & 1u) != 0) gl_.glVertexAttribDivisorARB(location, 0);
  }
}

bool RendererOpenGL::is_bound(const GeometryCore& geometry) const {
  const GpuBufferData* source = geometry.get_vb_source();
  const bool same_layout =
      geometry.gpu_state.cpu_released || bound_.serial == geometry.layout_serial;
  return bound_.geometry == &geometry && bound_.context_id == current_context_id() && source &&
         bound_.source_id == source->buffer_id && bound_.index_id == geometry.ibo && same_layout;
}

void RendererOpenGL::forget_buffer(unsigned int id) {
  if (id == bound_.source_id || id == bound_.index_id) disable_arrays();
}

// ---- sources ----

namespace {

/// Whether the buffer is bound as a vertex buffer though it is of another type, or another's.
bool borrows_source(const GeometryCore& geometry) {
  return geometry.is_external_vb_source() || geometry.vertex_buffer_type != GPU_BUFFER_ARRAY;
}

}  // namespace

void RendererOpenGL::bind_source(GeometryCore* geometry) {
  GpuBufferData* source = geometry->get_vb_source();
  if (borrows_source(*geometry)) {
    source->push_buffer_type();
    source->type = GPU_BUFFER_ARRAY;
  }
  gpu_buffer_bind(source);
}

void RendererOpenGL::bind_arrays(GeometryCore* geometry) {
  bind_source(geometry);
  enable_attribs(plan_attribs(*geometry));
  if (geometry->ibo != 0) gl_.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, geometry->ibo);
}

void RendererOpenGL::unbind_arrays(GeometryCore* geometry) {
  GpuBufferData* source = geometry->get_vb_source();
  gl_.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
  gpu_buffer_unbind(source);
  if (borrows_source(*geometry)) source->pop_buffer_type();
  disable_arrays();
}

// ---- vertex array objects ----

bool RendererOpenGL::has_vertex_arrays() const {
  return (use_vertex_arrays() || is_core_context()) && gl_.glGenVertexArrays &&
         gl_.glBindVertexArray;
}

bool RendererOpenGL::is_vertex_array_foreign(const GeometryCore& geometry) const {
  return geometry.gpu_state.vao_id != 0 &&
         geometry.gpu_state.vao_context_id != current_context_id();
}

void RendererOpenGL::bind_vertex_array(GeometryCore* geometry) {
  // Vertex array objects are not shared between contexts. In another than the first context the
  // attributes are set up on every bind.
  if (is_vertex_array_foreign(*geometry)) {
    gl_.glBindVertexArray(scratch_vertex_array());
    bind_arrays(geometry);
    return;
  }
  GeometryGpuState& state = geometry->gpu_state;
  GpuBufferData* source = geometry->get_vb_source();
  const unsigned int serial =
      geometry->layout_serial * 2u + (geometry->use_gl2_built_in_vertex_attribs ? 1u : 0u);
  if (state.vao_id != 0 && state.vao_serial == serial && state.vao_source_id == source->buffer_id) {
    gl_.glBindVertexArray(state.vao_id);
    source->bound = true;
    return;
  }
  delete_vertex_array(geometry);
  gl_.glGenVertexArrays(1, &state.vao_id);
  gl_.glBindVertexArray(state.vao_id);
  bind_arrays(geometry);
  bound_ = GlBoundGeometry();  // the arrays belong to the object
  if (borrows_source(*geometry)) source->pop_buffer_type();
  state.vao_serial = serial;
  state.vao_source_id = source->buffer_id;
  state.vao_context_id = current_context_id();
}

void RendererOpenGL::delete_vertex_array(GeometryCore* geometry) {
  GeometryGpuState& state = geometry->gpu_state;
  // An object of another context goes with that context.
  if (state.vao_id != 0 && gl_.glDeleteVertexArrays && !is_vertex_array_foreign(*geometry)) {
    gl_.glDeleteVertexArrays(1, &state.vao_id);
  }
  state.vao_id = 0;
  state.vao_serial = 0;
}

// ---- binding ----

bool RendererOpenGL::geometry_vbo_bind(GeometryCore* geometry) {
  if (!geometry || !geometry->vb_uploaded || !gl_.glBindBuffer) return false;
  const GeometryGpuState& state = geometry->gpu_state;
  // Attributes must not be laid out over buffers of an earlier layout.
  if (!state.cpu_released && state.uploaded_serial != geometry->layout_serial &&
      !geometry_vbo_update(geometry)) {
    return false;
  }
  const GpuBufferData* source = geometry->get_vb_source();
  if (!source || source->buffer_id == 0) return false;
  disable_arrays();  // of a geometry that was not unbound
  if (has_vertex_arrays()) {
    bind_vertex_array(geometry);
  } else {
    bind_arrays(geometry);
  }
  bound_.geometry = geometry;
  bound_.context_id = current_context_id();
  bound_.source_id = source->buffer_id;
  bound_.index_id = geometry->ibo;
  bound_.serial = geometry->layout_serial;
  set_point_sprites(*geometry, true);
  return true;
}

bool RendererOpenGL::geometry_vbo_unbind(GeometryCore* geometry) {
  if (!geometry || !geometry->vb_uploaded || !gl_.glBindBuffer) return false;
  set_point_sprites(*geometry, false);
  if (!has_vertex_arrays()) {
    unbind_arrays(geometry);
    return true;
  }
  if (is_vertex_array_foreign(*geometry)) unbind_arrays(geometry);
  gl_.glBindVertexArray(0);
  bound_ = GlBoundGeometry();
  geometry->get_vb_source()->bound = false;
  return true;
}

void RendererOpenGL::set_point_sprites(const GeometryCore& geometry, bool enabled) {
  if (geometry.primitive_type != PRIMITIVE_POINTS || !geometry.point_sprite) return;
  set_capability(GL_VERTEX_PROGRAM_POINT_SIZE, enabled);
  if (geometry.use_gl2_built_in_vertex_attribs && has_fixed_function()) {
    set_capability(GL_POINT_SPRITE, enabled);
  }
}

}  // namespace orv
