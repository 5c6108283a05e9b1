// State and textures of shadow maps.
#include <orv/core/aux_functions.h>
#include <orv/gpu/texture_data.h>

#include "render/opengl/renderer_opengl.h"

namespace orv {

using namespace detail;

namespace {

constexpr int DEPTH_LESS = 1;
constexpr int DEPTH_EQUAL = 5;
constexpr int CULL_NOTHING = 0;
constexpr int CULL_BACK_FACES = 1;
constexpr int CULL_FRONT_FACES = 2;

}  // namespace

// ---- drawing into one ----

void RendererOpenGL::shadow_map_pass_begin() { shadow_map_pass_begin_v2(CULL_BACK_FACES); }

void RendererOpenGL::shadow_map_pass_end() { shadow_map_pass_end_v2(CULL_NOTHING); }

void RendererOpenGL::shadow_map_pass_begin_v2(int mode) {
  enable_blending(false);
  set_color_mask(false);
  enable_depth_test(true);
  set_depth_mask(true);
  set_depth_func(DEPTH_LESS);
  if (core_.glClearDepth) core_.glClearDepth(1.0);
  if (core_.glClear) core_.glClear(GL_DEPTH_BUFFER_BIT);
  set_shadow_cull(mode);
}

void RendererOpenGL::shadow_map_pass_end_v2(int mode) {
  set_color_mask(true);
  set_depth_func(DEPTH_LESS);
  set_shadow_cull(mode);
}

void RendererOpenGL::set_shadow_cull(int mode) {
  const bool culls = mode == CULL_BACK_FACES || mode == CULL_FRONT_FACES;
  set_capability(GL_CULL_FACE, culls);
  if (!culls || !core_.glCullFace) return;
  core_.glCullFace(mode == CULL_FRONT_FACES ? GL_FRONT : GL_BACK);
}

// ---- drawing with one ----

void RendererOpenGL::shadow_map_bind(TextureData* depth, unsigned int unit, GpuProgramData* program,
                                     const mat4& light_projection, const mat4& light_view,
                                     mat4* camera_view) {
  enable_depth_test(true);
  set_depth_mask(false);
  set_depth_func(DEPTH_EQUAL);
  shadow_map_texture_set_compare(depth, unit);
  aux::shadow_mapping_compute_texture_matrix(light_projection, light_view, camera_view, program,
                                             "orvex_TextureMatrix", nullptr);
}

void RendererOpenGL::shadow_map_unbind(TextureData* depth, unsigned int unit) {
  shadow_map_texture_reset_compare(depth, unit);
  set_depth_mask(true);
  set_depth_func(DEPTH_LESS);
}

bool RendererOpenGL::shadow_map_texture_set_compare(TextureData* depth, unsigned int unit) {
  return set_compare_mode(depth, unit, true);
}

bool RendererOpenGL::shadow_map_texture_reset_compare(TextureData* depth, unsigned int unit) {
  return set_compare_mode(depth, unit, false);
}

bool RendererOpenGL::set_compare_mode(TextureData* depth, unsigned int unit, bool compare) {
  if (!depth || !core_.glTexParameteri || !texture_bind(depth, unit)) return false;
  if (depth->type == TEXTURE_2D_MULTISAMPLE) return false;
  const GLenum target = gl_texture_target(depth->type);
  core_.glTexParameteri(target, GL_TEXTURE_COMPARE_MODE,
                        compare ? GL_COMPARE_R_TO_TEXTURE : GL_NONE);
  if (compare) core_.glTexParameteri(target, GL_TEXTURE_COMPARE_FUNC, GL_LEQUAL);
  return true;
}

}  // namespace orv
