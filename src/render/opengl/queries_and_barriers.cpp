// Queries of what the GPU did, and barriers between its accesses to memory.

#include "render/opengl/gl_draw_enums.h"
#include "render/opengl/renderer_opengl.h"

namespace orv {

using namespace detail;

// ---- barriers ----

bool RendererOpenGL::memory_barrier(unsigned int bits) {
  if (lacks(gl_.glMemoryBarrier, "glMemoryBarrier")) return false;
  gl_.glMemoryBarrier(bits);
  return true;
}

void RendererOpenGL::memory_barrier_raw(unsigned int bits) {
  if (gl_.glMemoryBarrier) gl_.glMemoryBarrier(bits);
}

bool RendererOpenGL::memory_barrier_by_name(const char* names) {
  return names && memory_barrier(gl_barrier_bits(names));
}

void RendererOpenGL::atomic_counter_barrier() {
  memory_barrier_raw(GL_ATOMIC_COUNTER_BARRIER_BIT | GL_VERTEX_ATTRIB_ARRAY_BARRIER_BIT);
}

// ---- queries ----

unsigned int RendererOpenGL::supported_query_target(const char* name) const {
  const GLenum target = gl_query_target(name);
  if (target == 0) return 0;
  const bool supported = target == GL_TIME_ELAPSED
                             ? facts_.is_version_at_least(3, 3) ||
                                   facts_.has_extension("GL_ARB_timer_query") ||
                                   facts_.has_extension("GL_EXT_timer_query")
                             : facts_.is_version_at_least(4, 6) ||
                                   facts_.has_extension("GL_ARB_pipeline_statistics_query");
  return supported ? target : 0;
}

unsigned int RendererOpenGL::query_create() {
  GLuint id = 0;
  if (!lacks(gl_.glGenQueries, "glGenQueries")) gl_.glGenQueries(1, &id);
  return id;
}

bool RendererOpenGL::query_delete(unsigned int id) {
  if (id == 0 || lacks(gl_.glDeleteQueries, "glDeleteQueries")) return false;
  gl_.glDeleteQueries(1, &id);
  return true;
}

bool RendererOpenGL::begin_query(unsigned int target, unsigned int id) {
  if (target == 0 || id == 0 || lacks(gl_.glBeginQuery, "glBeginQuery")) return false;
  gl_.glBeginQuery(target, id);
  return true;
}

bool RendererOpenGL::end_query(unsigned int target) {
  if (target == 0 || lacks(gl_.glEndQuery, "glEndQuery")) return false;
  gl_.glEndQuery(target);
  return true;
}

bool RendererOpenGL::query_begin(unsigned int id, const char* target) {
  return begin_query(supported_query_target(target), id);
}

bool RendererOpenGL::query_end(const char* target) {
  return end_query(supported_query_target(target));
}

bool RendererOpenGL::query_get_result(unsigned int id, unsigned int* result) {
  if (id == 0 || !result || lacks(gl_.glGetQueryObjectuiv, "glGetQueryObjectuiv")) return false;
  gl_.glGetQueryObjectuiv(id, GL_QUERY_RESULT, result);
  return true;
}

bool RendererOpenGL::query_is_available(unsigned int id) {
  if (id == 0 || lacks(gl_.glGetQueryObjectuiv, "glGetQueryObjectuiv")) return false;
  GLuint available = GL_FALSE;
  gl_.glGetQueryObjectuiv(id, GL_QUERY_RESULT_AVAILABLE, &available);
  return available != GL_FALSE;
}

bool RendererOpenGL::time_query_begin(unsigned int id) {
  return query_begin(id, "GL_TIME_ELAPSED");
}

bool RendererOpenGL::time_query_end() { return query_end("GL_TIME_ELAPSED"); }

bool RendererOpenGL::time_query_get_result(unsigned int id, unsigned int* nanoseconds) {
  return query_get_result(id, nanoseconds);
}

}  // namespace orv
