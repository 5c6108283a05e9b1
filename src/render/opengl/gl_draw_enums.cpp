#include "render/opengl/gl_draw_enums.h"

#include <GL/glext.h>
#include <orv/geometry/geometry_enums.h>
#include <orv/gpu/gpu_enums.h>
#include <orv/render/renderer_enums.h>

#include <cstddef>
#include <cstring>

namespace orv::detail {
namespace {

/// Entry `index` of a table whose first row is number `first`; `other` for any other value.
template <std::size_t N>
GLenum pick(const GLenum (&table)[N], long long index, long long first, GLenum other) {
  const long long row = index - first;
  return row >= 0 && row < static_cast<long long>(N) ? table[row] : other;
}

struct NamedEnum {
  const char* name;
  GLenum value;
};

template <std::size_t N>
GLenum find_exact(const NamedEnum (&table)[N], const char* name) {
  if (!name) return 0;
  for (const NamedEnum& row : table) {
    if (std::strcmp(row.name, name) == 0) return row.value;
  }
  return 0;
}

template <std::size_t N>
GLbitfield collect_bits(const NamedEnum (&table)[N], const char* text) {
  GLbitfield bits = 0;
  if (!text) return bits;
  for (const NamedEnum& row : table) {
    if (std::strstr(text, row.name)) bits |= row.value;
  }
  return bits;
}

constexpr GLenum DEPTH_FUNCS[] = {GL_NEVER,  GL_LESS,  GL_LEQUAL,   GL_GREATER,
                                  GL_GEQUAL, GL_EQUAL, GL_NOTEQUAL, GL_ALWAYS};
constexpr GLenum BLEND_FACTORS[] = {GL_ZERO,
                                    GL_ONE,
                                    GL_SRC_ALPHA,
                                    GL_ONE_MINUS_DST_ALPHA,
                                    GL_ONE_MINUS_DST_COLOR,
                                    GL_ONE_MINUS_SRC_ALPHA,
                                    GL_DST_COLOR,
                                    GL_DST_ALPHA,
                                    GL_SRC_COLOR,
                                    GL_ONE_MINUS_SRC_COLOR};
constexpr GLenum FACES[] = {GL_BACK, GL_FRONT};
constexpr GLenum POLYGON_MODES[] = {GL_POINT, GL_LINE};
constexpr GLenum BUFFER_TARGETS[] = {
    GL_ARRAY_BUFFER,          GL_ELEMENT_ARRAY_BUFFER,  GL_PIXEL_UNPACK_BUFFER, GL_UNIFORM_BUFFER,
    GL_SHADER_STORAGE_BUFFER, GL_ATOMIC_COUNTER_BUFFER, GL_TEXTURE_BUFFER};
constexpr GLenum BUFFER_USAGES[] = {GL_STATIC_DRAW,  GL_STATIC_READ,  GL_STATIC_COPY,
                                    GL_DYNAMIC_DRAW, GL_DYNAMIC_READ, GL_DYNAMIC_COPY,
                                    GL_STREAM_DRAW,  GL_STREAM_READ,  GL_STREAM_COPY};
constexpr GLenum DATA_ACCESSES[] = {GL_WRITE_ONLY, GL_READ_ONLY};
constexpr GLenum PRIMITIVE_MODES[] = {
    GL_TRIANGLES,       GL_TRIANGLE_STRIP,       GL_LINES,   GL_LINE_STRIP, GL_LINE_LOOP,
    GL_LINES_ADJACENCY, GL_LINE_STRIP_ADJACENCY, GL_PATCHES, GL_POINTS};
constexpr GLenum SHADER_STAGES[] = {GL_VERTEX_SHADER,          GL_FRAGMENT_SHADER,
                                    GL_GEOMETRY_SHADER,        GL_TESS_CONTROL_SHADER,
                                    GL_TESS_EVALUATION_SHADER, GL_COMPUTE_SHADER};

#define ORV_NAMED(name) \
  { #name, name }

constexpr NamedEnum STATES[] = {ORV_NAMED(GL_CLIP_DISTANCE0),
                                ORV_NAMED(GL_CLIP_DISTANCE1),
                                ORV_NAMED(GL_CLIP_DISTANCE2),
                                ORV_NAMED(GL_CLIP_DISTANCE3),
                                ORV_NAMED(GL_MULTISAMPLE),
                                ORV_NAMED(GL_CULL_FACE),
                                ORV_NAMED(GL_BLEND),
                                ORV_NAMED(GL_DEPTH_TEST),
                                ORV_NAMED(GL_SCISSOR_TEST),
                                ORV_NAMED(GL_DEPTH_BOUNDS_TEST_EXT),
                                ORV_NAMED(GL_POLYGON_OFFSET_FILL),
                                ORV_NAMED(GL_DITHER),
                                ORV_NAMED(GL_STENCIL_TEST),
                                ORV_NAMED(GL_TEXTURE_2D),
                                ORV_NAMED(GL_LIGHTING),
                                ORV_NAMED(GL_LIGHT0),
                                ORV_NAMED(GL_LIGHT1),
                                ORV_NAMED(GL_LIGHT2),
                                ORV_NAMED(GL_LIGHT3)};

constexpr NamedEnum QUERY_TARGETS[] = {ORV_NAMED(GL_VERTICES_SUBMITTED_ARB),
                                       ORV_NAMED(GL_PRIMITIVES_SUBMITTED_ARB),
                                       ORV_NAMED(GL_VERTEX_SHADER_INVOCATIONS_ARB),
                                       ORV_NAMED(GL_TESS_CONTROL_SHADER_PATCHES_ARB),
                                       ORV_NAMED(GL_TESS_EVALUATION_SHADER_INVOCATIONS_ARB),
                                       ORV_NAMED(GL_GEOMETRY_SHADER_INVOCATIONS),
                                       ORV_NAMED(GL_GEOMETRY_SHADER_PRIMITIVES_EMITTED_ARB),
                                       ORV_NAMED(GL_FRAGMENT_SHADER_INVOCATIONS_ARB),
                                       ORV_NAMED(GL_COMPUTE_SHADER_INVOCATIONS_ARB),
                                       ORV_NAMED(GL_CLIPPING_INPUT_PRIMITIVES_ARB),
                                       ORV_NAMED(GL_CLIPPING_OUTPUT_PRIMITIVES_ARB),
                                       ORV_NAMED(GL_TIME_ELAPSED)};

constexpr NamedEnum BARRIERS[] = {ORV_NAMED(GL_VERTEX_ATTRIB_ARRAY_BARRIER_BIT),
                                  ORV_NAMED(GL_ELEMENT_ARRAY_BARRIER_BIT),
                                  ORV_NAMED(GL_UNIFORM_BARRIER_BIT),
                                  ORV_NAMED(GL_TEXTURE_FETCH_BARRIER_BIT),
                                  ORV_NAMED(GL_SHADER_IMAGE_ACCESS_BARRIER_BIT),
                                  ORV_NAMED(GL_COMMAND_BARRIER_BIT),
                                  ORV_NAMED(GL_PIXEL_BUFFER_BARRIER_BIT),
                                  ORV_NAMED(GL_TEXTURE_UPDATE_BARRIER_BIT),
                                  ORV_NAMED(GL_BUFFER_UPDATE_BARRIER_BIT),
                                  ORV_NAMED(GL_FRAMEBUFFER_BARRIER_BIT),
                                  ORV_NAMED(GL_TRANSFORM_FEEDBACK_BARRIER_BIT),
                                  ORV_NAMED(GL_ATOMIC_COUNTER_BARRIER_BIT),
                                  ORV_NAMED(GL_SHADER_STORAGE_BARRIER_BIT)};

constexpr NamedEnum MAP_BITS[] = {ORV_NAMED(GL_MAP_READ_BIT),
                                  ORV_NAMED(GL_MAP_WRITE_BIT),
                                  ORV_NAMED(GL_MAP_INVALIDATE_RANGE_BIT),
                                  ORV_NAMED(GL_MAP_INVALIDATE_BUFFER_BIT),
                                  ORV_NAMED(GL_MAP_FLUSH_EXPLICIT_BIT),
                                  ORV_NAMED(GL_MAP_UNSYNCHRONIZED_BIT),
                                  ORV_NAMED(GL_MAP_PERSISTENT_BIT),
                                  ORV_NAMED(GL_MAP_COHERENT_BIT)};

constexpr NamedEnum MAP_ACCESSES[] = {ORV_NAMED(GL_WRITE_ONLY), ORV_NAMED(GL_READ_WRITE),
                                      ORV_NAMED(GL_READ_ONLY)};

#undef ORV_NAMED

}  // namespace

GLenum gl_depth_func(int func) { return pick(DEPTH_FUNCS, func, 0, GL_LESS); }
GLenum gl_blend_factor(RENDERER_BLEND_FACTOR factor) {
  return pick(BLEND_FACTORS, factor, 0, GL_ONE);
}
GLenum gl_face(int face) { return pick(FACES, face, 1, GL_FRONT_AND_BACK); }
GLenum gl_polygon_mode(int mode) { return pick(POLYGON_MODES, mode, 0, GL_FILL); }
GLenum gl_buffer_target(GPU_BUFFER_TYPE type) { return pick(BUFFER_TARGETS, type, 0, 0); }
GLenum gl_buffer_usage(unsigned int usage) { return pick(BUFFER_USAGES, usage, 1, GL_STATIC_DRAW); }
GLenum gl_data_access(DATA_ACCESS_TYPE access) {
  return pick(DATA_ACCESSES, access, 1, GL_READ_WRITE);
}
GLenum gl_primitive_mode(PRIMITIVE_TYPE type) {
  return pick(PRIMITIVE_MODES, type, 0, GL_TRIANGLES);
}
GLenum gl_shader_stage(GPU_SHADER_TYPE type) { return pick(SHADER_STAGES, type, 0, 0); }

GLenum gl_buffer_binding(GLenum target) {
  switch (target) {
    case GL_ARRAY_BUFFER:
      return GL_ARRAY_BUFFER_BINDING;
    case GL_ELEMENT_ARRAY_BUFFER:
      return GL_ELEMENT_ARRAY_BUFFER_BINDING;
    case GL_PIXEL_UNPACK_BUFFER:
      return GL_PIXEL_UNPACK_BUFFER_BINDING;
    case GL_UNIFORM_BUFFER:
      return GL_UNIFORM_BUFFER_BINDING;
    case GL_SHADER_STORAGE_BUFFER:
      return GL_SHADER_STORAGE_BUFFER_BINDING;
    case GL_ATOMIC_COUNTER_BUFFER:
      return GL_ATOMIC_COUNTER_BUFFER_BINDING;
    case GL_TEXTURE_BUFFER:
      return GL_TEXTURE_BUFFER_BINDING;
    default:
      return 0;
  }
}

GLenum gl_state_by_name(const char* name) { return find_exact(STATES, name); }
GLenum gl_query_target(const char* name) { return find_exact(QUERY_TARGETS, name); }
GLbitfield gl_barrier_bits(const char* names) { return collect_bits(BARRIERS, names); }
GLbitfield gl_map_bits(const char* flags) { return collect_bits(MAP_BITS, flags); }

GLenum gl_map_access(const char* access) {
  if (!access) return 0;
  for (const NamedEnum& row : MAP_ACCESSES) {
    if (std::strstr(access, row.name)) return row.value;
  }
  return 0;
}

}  // namespace orv::detail
