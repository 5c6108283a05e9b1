// The fixed pipeline of compatibility contexts. Core profile contexts never see one of these calls;
// the matrices are kept for the program that stands in there.
#include <algorithm>
#include <cstring>

#include "render/opengl/renderer_opengl.h"

namespace orv {
namespace {

constexpr unsigned int NUM_LIGHTS = 8;
constexpr float IDENTITY[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

/// out = out * b.
void multiply(float* out, const mat4& b) {
  mat4 a;
  std::memcpy(a.m, out, sizeof(a.m));
  const mat4 product = a * b;
  std::memcpy(out, product.m, sizeof(product.m));
}

const float* floats(const vec4& v) { return &v.x; }

}  // namespace

bool RendererOpenGL::has_fixed_function() const {
  return core_.glMatrixMode != nullptr && !is_core_context();
}

// ---- attributes ----

void RendererOpenGL::push_all_attribs() {
  if (has_fixed_function()) core_.glPushAttrib(0xFFFFF);
}

void RendererOpenGL::pop_all_attribs() {
  if (has_fixed_function()) core_.glPopAttrib();
}

// ---- matrices ----

void RendererOpenGL::load_fixed_projection(const float* matrix) {
  std::memcpy(shadow_.fixed_projection, matrix, sizeof(shadow_.fixed_projection));
  load_fixed_matrix(GL_PROJECTION, matrix);
}

void RendererOpenGL::load_fixed_modelview(const float* matrix) {
  std::memcpy(shadow_.fixed_modelview, matrix, sizeof(shadow_.fixed_modelview));
  load_fixed_matrix(GL_MODELVIEW, matrix);
}

void RendererOpenGL::load_fixed_matrix(unsigned int mode, const float* matrix) {
  if (!has_fixed_function()) return;
  core_.glMatrixMode(mode);
  core_.glLoadMatrixf(matrix);
}

void RendererOpenGL::load_fixed_matrices(const mat4* projection, const mat4* view,
                                         const mat4* model, const mat4* texture) {
  if (projection) load_fixed_projection(matrix_floats(*projection));
  if (view) load_fixed_modelview(matrix_floats(*view));
  if (model) {
    multiply(shadow_.fixed_modelview, *model);
    if (has_fixed_function()) {
      if (!view) core_.glMatrixMode(GL_MODELVIEW);
      core_.glMultMatrixf(matrix_floats(*model));
    }
  }
  if (texture) load_fixed_matrix(GL_TEXTURE, matrix_floats(*texture));
}

void RendererOpenGL::load_identity_matrices(bool projection, bool modelview, bool texture) {
  const bool fixed = has_fixed_function();
  const auto load_identity = [&](GLenum mode, float* shadow) {
    if (shadow) std::memcpy(shadow, IDENTITY, sizeof(IDENTITY));
    if (!fixed) return;
    core_.glMatrixMode(mode);
    core_.glLoadIdentity();
  };
  if (projection) load_identity(GL_PROJECTION, shadow_.fixed_projection);
  if (modelview) load_identity(GL_MODELVIEW, shadow_.fixed_modelview);
  if (texture) load_identity(GL_TEXTURE, nullptr);
}

// ---- lines ----

void RendererOpenGL::set_line_width(float width) {
  if (core_.glLineWidth) core_.glLineWidth(width);
}

void RendererOpenGL::set_line_stipple(int factor, unsigned short pattern) {
  if (has_fixed_function()) core_.glLineStipple(factor, pattern);
}

void RendererOpenGL::draw_immediate_line(const vec4& p0, const vec4& p1, const vec4& color0,
                                         const vec4& color1) {
  if (is_core_context()) {
    draw_core_line(p0, p1, color0, color1);
    return;
  }
  if (!has_fixed_function()) return;
  core_.glBegin(GL_LINES);
  core_.glColor4fv(floats(color0));
  core_.glVertex4fv(floats(p0));
  core_.glColor4fv(floats(color1));
  core_.glVertex4fv(floats(p1));
  core_.glEnd();
}

// ---- lights ----

void RendererOpenGL::set_light_value(unsigned int index, unsigned int name, const float* values) {
  if (index >= NUM_LIGHTS || !has_fixed_function()) return;
  core_.glLightfv(GL_LIGHT0 + index, name, values);
}

void RendererOpenGL::light_set_colors(unsigned int index, const vec4& ambient, const vec4& diffuse,
                                      const vec4& specular) {
  light_set_ambient(index, ambient);
  light_set_diffuse(index, diffuse);
  light_set_specular(index, specular);
}

void RendererOpenGL::light_set_ambient(unsigned int index, const vec4& color) {
  set_light_value(index, GL_AMBIENT, floats(color));
}

void RendererOpenGL::light_set_diffuse(unsigned int index, const vec4& color) {
  set_light_value(index, GL_DIFFUSE, floats(color));
}

void RendererOpenGL::light_set_specular(unsigned int index, const vec4& color) {
  set_light_value(index, GL_SPECULAR, floats(color));
}

void RendererOpenGL::light_set_spot(unsigned int index, const vec4& direction, float exponent,
                                    float cutoff) {
  set_light_value(index, GL_SPOT_DIRECTION, floats(direction));
  set_light_value(index, GL_SPOT_EXPONENT, &exponent);
  set_light_value(index, GL_SPOT_CUTOFF, &cutoff);
}

void RendererOpenGL::light_model_two_side(bool enabled) {
  if (has_fixed_function()) core_.glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, enabled ? 1 : 0);
}

// ---- materials ----

void RendererOpenGL::set_material_value(unsigned int name, const vec4& color) {
  if (has_fixed_function()) core_.glMaterialfv(GL_FRONT_AND_BACK, name, floats(color));
}

void RendererOpenGL::material_set_all(const vec4& ambient, const vec4& diffuse,
                                      const vec4& specular, float shininess) {
  material_set_ambient(ambient);
  material_set_diffuse(diffuse);
  material_set_specular(specular);
  material_set_shininess(shininess);
}

void RendererOpenGL::material_set_ambient(const vec4& color) {
  set_material_value(GL_AMBIENT, color);
}

void RendererOpenGL::material_set_diffuse(const vec4& color) {
  set_material_value(GL_DIFFUSE, color);
}

void RendererOpenGL::material_set_specular(const vec4& color) {
  set_material_value(GL_SPECULAR, color);
}

void RendererOpenGL::material_set_shininess(float shininess) {
  // The driver refuses values outside of this range, which files do hold.
  if (has_fixed_function()) {
    core_.glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, std::clamp(shininess, 0.0f, 128.0f));
  }
}

}  // namespace orv
