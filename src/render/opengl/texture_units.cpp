// Texture units and image units: what is bound to them.
#include <orv/gpu/texture_data.h>

#include <algorithm>

#include "render/opengl/gl_draw_enums.h"
#include "render/opengl/renderer_opengl.h"

namespace orv {

using namespace detail;

// ---- bookkeeping ----

void RendererOpenGL::select_unit(unsigned int unit) {
  units_.current = unit;
  if (gl_.glActiveTexture) gl_.glActiveTexture(GL_TEXTURE0 + unit);
}

void RendererOpenGL::bind_texture(unsigned int unit, unsigned int target, unsigned int id) {
  select_unit(unit);
  units_.bound[unit] = id;
  const int index = gl_texture_target_index(target);
  if (index >= 0) units_.by_target[unit].ids[index] = id;
  core_.glBindTexture(target, id);
}

bool RendererOpenGL::bind_texture_id(unsigned int target, unsigned int id, unsigned int unit) {
  if (!core_.glBindTexture || !units_.has(unit) || !has_texture_target(target)) return false;
  bind_texture(unit, target, id);
  return true;
}

void GlTextureUnits::reset(std::size_t count) {
  current = 0;
  bound.assign(count, 0u);
  by_target.assign(count, GlUnitBindings());
}

void GlTextureUnits::forget(unsigned int id) {
  std::replace(bound.begin(), bound.end(), id, 0u);
  for (GlUnitBindings& bindings : by_target) {
    std::replace(std::begin(bindings.ids), std::end(bindings.ids), id, 0u);
  }
}

void RendererOpenGL::forget_texture(unsigned int id) {
  units_.forget(id);
  for (auto& [context_id, units] : units_of_others_) units.forget(id);
}

void RendererOpenGL::delete_texture_id(unsigned int* id) {
  if (*id == 0) return;
  forget_texture(*id);
  if (core_.glDeleteTextures) core_.glDeleteTextures(1, id);
  *id = 0;
}

bool RendererOpenGL::has_texture_target(unsigned int target) const {
  switch (target) {
    case GL_TEXTURE_3D:
      return facts_.is_version_at_least(1, 2);
    case GL_TEXTURE_CUBE_MAP:
      return facts_.is_version_at_least(1, 3) || facts_.has_extension("GL_ARB_texture_cube_map");
    case GL_TEXTURE_2D_ARRAY:
      return facts_.is_version_at_least(3, 0) || facts_.has_extension("GL_EXT_texture_array");
    case GL_TEXTURE_RECTANGLE:
      return facts_.is_version_at_least(3, 1) || facts_.has_extension("GL_ARB_texture_rectangle");
    case GL_TEXTURE_2D_MULTISAMPLE:
      return facts_.is_version_at_least(3, 2) || facts_.has_extension("GL_ARB_texture_multisample");
    default:
      return true;
  }
}

// ---- textures ----

bool RendererOpenGL::texture_bind(TextureData* texture, unsigned int unit) {
  if (texture) {
    if (texture->gl_texture_id == 0) return false;
    return bind_texture_id(gl_texture_target(texture->type), texture->gl_texture_id, unit);
  }
  if (!units_.has(unit)) return true;
  units_.bound[unit] = 0;
  units_.by_target[unit] = GlUnitBindings();
  select_unit(unit);
  if (!core_.glBindTexture) return true;
  for (const GLenum target : GL_TEXTURE_TARGETS) {
    if (has_texture_target(target)) core_.glBindTexture(target, 0);
  }
  return true;
}

bool RendererOpenGL::texture_unbind(TextureData*, unsigned int unit) {
  return texture_bind(nullptr, unit);
}

bool RendererOpenGL::texture_unbind_unit(unsigned int unit) {
  if (!units_.has(unit)) return true;
  texture_bind(nullptr, unit);
  clear_image_unit(unit);
  if (!has_fixed_function()) return true;
  // The fixed pipeline knows fewer units than programs.
  if (static_cast<int>(unit) >= read_integer(GL_MAX_TEXTURE_UNITS)) return true;
  constexpr GLenum targets[] = {GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP,
                                GL_TEXTURE_RECTANGLE};
  for (const GLenum target : targets) {
    if (has_texture_target(target)) set_capability(target, false);
  }
  if (gl_.glClientActiveTexture) gl_.glClientActiveTexture(GL_TEXTURE0 + unit);
  core_.glDisableClientState(GL_TEXTURE_COORD_ARRAY);
  return true;
}

bool RendererOpenGL::texture_unbind_all_units() {
  const unsigned int count = static_cast<unsigned int>(units_.bound.size());
  for (unsigned int unit = 0; unit < count; ++unit) texture_unbind_unit(unit);
  select_unit(0);
  if (gl_.glClientActiveTexture) gl_.glClientActiveTexture(GL_TEXTURE0);
  return true;
}

bool RendererOpenGL::texture_bind_2d_by_id(unsigned int id, unsigned int unit) {
  return bind_texture_id(GL_TEXTURE_2D, id, unit);
}

bool RendererOpenGL::texture_bind_2d_multisample_by_id(unsigned int id, unsigned int unit) {
  return bind_texture_id(GL_TEXTURE_2D_MULTISAMPLE, id, unit);
}

bool RendererOpenGL::texture_bind_rect_by_id(unsigned int id, unsigned int unit) {
  return bind_texture_id(GL_TEXTURE_RECTANGLE, id, unit);
}

bool RendererOpenGL::texture_bind_cube_by_id(unsigned int id, unsigned int unit) {
  return bind_texture_id(GL_TEXTURE_CUBE_MAP, id, unit);
}

bool RendererOpenGL::texture_bind_2d_array_by_id(unsigned int id, unsigned int unit) {
  return bind_texture_id(GL_TEXTURE_2D_ARRAY, id, unit);
}

bool RendererOpenGL::texture_bind_2d_unit(unsigned int id, unsigned int unit) {
  return bind_texture_id(GL_TEXTURE_2D, id, unit);
}

bool RendererOpenGL::texture_bind_rect_unit(unsigned int id, unsigned int unit) {
  return bind_texture_id(GL_TEXTURE_RECTANGLE, id, unit);
}

// ---- image units ----

int RendererOpenGL::read_image_units() {
  return gl_.glBindImageTexture ? read_integer(GL_MAX_IMAGE_UNITS) : 0;
}

void RendererOpenGL::clear_image_unit(unsigned int unit) {
  if (0ll + unit >= read_image_units()) return;
  // The format must be one of images even where there is none.
  gl_.glBindImageTexture(unit, 0, 0, GL_FALSE, 0, GL_READ_ONLY, GL_RGBA8);
}

bool RendererOpenGL::texture_bind_image(TextureData* texture, unsigned int unit,
                                        DATA_ACCESS_TYPE access) {
  if (lacks(gl_.glBindImageTexture, "glBindImageTexture")) return false;
  if (!texture) {
    clear_image_unit(unit);
    return true;
  }
  if (texture->gl_texture_id == 0 || 0ll + unit >= read_image_units()) return false;
  const int level = texture->mipmap_base_level > 0 ? texture->mipmap_base_level : 0;
  gl_.glBindImageTexture(unit, texture->gl_texture_id, level, GL_FALSE, 0, gl_data_access(access),
                         gl_image_format(texture->get_pixel_format()));
  return true;
}

}  // namespace orv
