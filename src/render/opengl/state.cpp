// Matrices, viewport, raster and depth state. Every setter makes its call; the shadow values are
// for reading back alone.
#include <orv/core/log_mgr.h>

#include <algorithm>

#include "render/opengl/gl_draw_enums.h"
#include "render/opengl/renderer_opengl.h"

namespace orv {

using namespace detail;

// ---- matrices ----

const float* RendererOpenGL::matrix_floats(const mat4& matrix) { return matrix.ptr(); }

void RendererOpenGL::set_projection_matrix(const mat4& matrix, bool load) {
  shadow_.projection_matrix = matrix;
  if (load) load_fixed_projection(matrix_floats(matrix));
}

const mat4& RendererOpenGL::get_projection_matrix() { return shadow_.projection_matrix; }

void RendererOpenGL::set_modelview_matrix(const mat4& matrix, bool load) {
  shadow_.modelview_matrix = matrix;
  if (load) load_fixed_modelview(matrix_floats(matrix));
}

const mat4& RendererOpenGL::get_modelview_matrix() { return shadow_.modelview_matrix; }

// ---- viewport and scissor ----

void RendererOpenGL::set_viewport(unsigned int, int x, int y, int width, int height) {
  if (core_.glViewport) core_.glViewport(x, y, width, height);
}

bool RendererOpenGL::get_viewport(int* x, int* y, int* width, int* height) {
  const int* viewport = get_viewport_array(0);
  if (!viewport) return false;
  int* const targets[] = {x, y, width, height};
  for (int i = 0; i < 4; ++i) {
    if (targets[i]) *targets[i] = viewport[i];
  }
  return true;
}

int* RendererOpenGL::get_viewport_array(unsigned int) {
  if (!core_.glGetIntegerv) return nullptr;
  core_.glGetIntegerv(GL_VIEWPORT, shadow_.viewport);
  return shadow_.viewport;
}

void RendererOpenGL::set_scissor(unsigned int, int x, int y, int width, int height) {
  if (core_.glScissor) core_.glScissor(x, y, width, height);
}

void RendererOpenGL::enable_scissor_test(bool enabled) {
  shadow_.scissor_test = enabled;
  set_capability(GL_SCISSOR_TEST, enabled);
}

void RendererOpenGL::set_viewport_and_scissor(unsigned int index, int x, int y, int width,
                                              int height) {
  set_viewport(index, x, y, width, height);
  set_scissor(index, x, y, width, height);
}

// ---- colour and depth ----

void RendererOpenGL::set_color_mask(bool enabled) {
  if (!core_.glColorMask) return;
  const GLboolean mask = enabled ? GL_TRUE : GL_FALSE;
  core_.glColorMask(mask, mask, mask, mask);
}

void RendererOpenGL::set_clip_control(int origin, int depth) {
  if (!gl_.glClipControl) return;
  gl_.glClipControl(origin == 1 ? GL_UPPER_LEFT : GL_LOWER_LEFT,
                    depth == 1 ? GL_ZERO_TO_ONE : GL_NEGATIVE_ONE_TO_ONE);
}

void RendererOpenGL::set_depth_range(float znear, float zfar) {
  if (gl_.glDepthRangef) gl_.glDepthRangef(znear, zfar);
}

void RendererOpenGL::set_clear_depth_f(float depth) {
  if (gl_.glClearDepthf) gl_.glClearDepthf(depth);
}

void RendererOpenGL::set_depth_bounds(float zmin, float zmax) {
  if (gl_.glDepthBounds) gl_.glDepthBounds(zmin, zmax);
}

void RendererOpenGL::enable_depth_bounds_test(bool enabled) {
  set_state_by_name("GL_DEPTH_BOUNDS_TEST_EXT", enabled);
}

void RendererOpenGL::enable_depth_test(bool enabled) {
  shadow_.depth_test = enabled;
  set_state_by_name("GL_DEPTH_TEST", enabled);
}

void RendererOpenGL::set_depth_mask(bool enabled) {
  shadow_.depth_mask = enabled;
  if (core_.glDepthMask) core_.glDepthMask(enabled ? GL_TRUE : GL_FALSE);
}

void RendererOpenGL::set_depth_func(int func) {
  shadow_.depth_func = func;
  if (core_.glDepthFunc) core_.glDepthFunc(gl_depth_func(func));
}

// ---- blending ----

void RendererOpenGL::enable_blending(bool enabled) {
  shadow_.blending = enabled;
  set_capability(GL_BLEND, enabled);
}

void RendererOpenGL::set_blend_func(RENDERER_BLEND_FACTOR source,
                                    RENDERER_BLEND_FACTOR destination) {
  shadow_.blend_source = source;
  shadow_.blend_destination = destination;
  if (core_.glBlendFunc) core_.glBlendFunc(gl_blend_factor(source), gl_blend_factor(destination));
}

// ---- rasterizer ----

void RendererOpenGL::rasterizer_set_cull_enabled(bool enabled) {
  shadow_.rasterizer_wanted.cull_enabled = enabled;
}

void RendererOpenGL::rasterizer_set_cull_face(int face) {
  shadow_.rasterizer_wanted.cull_face = face;
}

void RendererOpenGL::rasterizer_set_front_ccw(bool ccw) {
  shadow_.rasterizer_wanted.front_ccw = ccw;
}

void RendererOpenGL::rasterizer_set_polygon_mode(int mode, int face) {
  shadow_.rasterizer_wanted.polygon_mode = mode;
  shadow_.rasterizer_wanted.polygon_face = face;
}

void RendererOpenGL::rasterizer_set_polygon_offset_enabled(bool enabled) {
  shadow_.rasterizer_wanted.polygon_offset_fill_enabled = enabled;
}

void RendererOpenGL::rasterizer_set_polygon_offset(float factor, float units) {
  shadow_.rasterizer_wanted.polygon_offset_factor = factor;
  shadow_.rasterizer_wanted.polygon_offset_units = units;
  set_polygon_offset_now(factor, units);
}

void RendererOpenGL::rasterizer_apply() {
  if (!core_.glEnable) return;
  const Renderer_Rasterizer_State& wanted = shadow_.rasterizer_wanted;
  set_capability(GL_CULL_FACE, wanted.cull_enabled);
  core_.glCullFace(gl_face(wanted.cull_face));
  core_.glFrontFace(wanted.front_ccw ? GL_CCW : GL_CW);
  // Core profile contexts know no polygon mode of one face.
  const GLenum face = is_core_context() ? GL_FRONT_AND_BACK : gl_face(wanted.polygon_face);
  core_.glPolygonMode(face, gl_polygon_mode(wanted.polygon_mode));
  set_capability(GL_POLYGON_OFFSET_FILL, wanted.polygon_offset_fill_enabled);
  core_.glPolygonOffset(wanted.polygon_offset_factor, wanted.polygon_offset_units);
  shadow_.rasterizer_applied = wanted;
}

void RendererOpenGL::set_polygon_offset_now(float factor, float units) {
  if (core_.glPolygonOffset) core_.glPolygonOffset(factor, units);
}

void RendererOpenGL::enable_polygon_offset_fill(bool enabled) {
  set_state_by_name("GL_POLYGON_OFFSET_FILL", enabled);
}

// ---- state by name ----

void RendererOpenGL::finish_gl() {
  if (core_.glFinish) core_.glFinish();
}

void RendererOpenGL::flush_gl() {
  if (core_.glFlush) core_.glFlush();
}

bool RendererOpenGL::enable_state(const char* name) { return set_state_by_name(name, true); }

bool RendererOpenGL::disable_state(const char* name) { return set_state_by_name(name, false); }

bool RendererOpenGL::set_state_by_name(const char* name, bool enabled) {
  const GLenum capability = gl_state_by_name(name);
  if (capability == 0) return false;
  // Without the extension the name is an error to the driver.
  if (capability == GL_DEPTH_BOUNDS_TEST_EXT && !gl_.glDepthBounds) return true;
  const bool fixed = capability == GL_TEXTURE_2D || capability == GL_LIGHTING ||
                     (capability >= GL_LIGHT0 && capability <= GL_LIGHT3);
  if (!fixed || !is_core_context()) set_capability(capability, enabled);
  return true;
}

void RendererOpenGL::set_capability(unsigned int capability, bool enabled) {
  if (!core_.glEnable || !core_.glDisable) return;
  if (enabled) {
    core_.glEnable(capability);
  } else {
    core_.glDisable(capability);
  }
}

// ---- raw drawing ----

void RendererOpenGL::draw_points(unsigned int count, unsigned int first) {
  draw_raw(GL_POINTS, 1, count, first);
}

void RendererOpenGL::draw_lines(unsigned int count, unsigned int first) {
  draw_raw(GL_LINES, 2, count, first);
}

void RendererOpenGL::draw_triangles(unsigned int count, unsigned int first) {
  draw_raw(GL_TRIANGLES, 3, count, first);
}

bool RendererOpenGL::set_patch_vertices(int num_vertices) {
  if (lacks(gl_.glPatchParameteri, "glPatchParameteri") || num_vertices < 1) return false;
  int maximum = 0;
  core_.glGetIntegerv(GL_MAX_PATCH_VERTICES, &maximum);
  if (maximum < 1) return false;
  if (num_vertices > maximum) {
    LogMgr::get().tracef_warning("GL_PATCH_VERTICES value (%d) set to GL_MAX_PATCH_VERTICES (%d)",
                                 num_vertices, maximum);
    num_vertices = maximum;
  }
  gl_.glPatchParameteri(GL_PATCH_VERTICES, num_vertices);
  return true;
}

// ---- starting state ----

void GlShadowState::reset() {
  const GlShadowState old = *this;
  *this = GlShadowState();
  std::copy(std::begin(old.fixed_projection), std::end(old.fixed_projection), fixed_projection);
  std::copy(std::begin(old.fixed_modelview), std::end(old.fixed_modelview), fixed_modelview);
}

bool RendererOpenGL::apply_pipeline_state() {
  if (lacks(core_.glEnable, "glEnable")) return false;
  apply_starting_state();
  shadow_.reset();
  set_vertex_buffer_usage_options(0, 0);
  core_.glGetIntegerv(GL_MAX_TEXTURE_SIZE, &max_texture_size_);
  int units = 1;
  core_.glGetIntegerv(GL_MAX_TEXTURE_IMAGE_UNITS, &units);
  resize_texture_units(units);
  core_.glGetIntegerv(GL_DRAW_BUFFER, &shadow_.draw_buffer);
  if (gl_.glUseProgram) gl_.glUseProgram(0);
  current_program_id_ = 0;
  current_program_ = nullptr;
  core_.glGetIntegerv(GL_MAX_VERTEX_ATTRIBS, &max_vertex_attribs_);
  if (gl_.glPatchParameteri) gl_.glPatchParameteri(GL_PATCH_VERTICES, 3);
  return true;
}

void RendererOpenGL::resize_texture_units(int count) {
  units_.reset(static_cast<std::size_t>(count > 0 ? count : 1));
}

void RendererOpenGL::apply_starting_state() {
  core_.glDisable(GL_MULTISAMPLE);
  core_.glDisable(GL_CULL_FACE);
  core_.glCullFace(GL_BACK);
  core_.glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
  core_.glFrontFace(GL_CCW);
  core_.glPolygonOffset(0.0f, 0.0f);
  core_.glDisable(GL_POLYGON_OFFSET_FILL);
  core_.glDisable(GL_POLYGON_OFFSET_LINE);
  core_.glDisable(GL_POLYGON_OFFSET_POINT);
  core_.glDisable(GL_SCISSOR_TEST);
  core_.glEnable(GL_DEPTH_TEST);
  core_.glDepthFunc(GL_LESS);
  core_.glDepthMask(GL_TRUE);
  core_.glDisable(GL_STENCIL_TEST);
  core_.glDisable(GL_BLEND);
  core_.glBlendFunc(GL_ONE, GL_ONE);
}

}  // namespace orv
