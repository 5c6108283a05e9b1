// Render targets in use: drawing to them, sampling and reading what was drawn.
#include <orv/gpu/gpu_render_target.h>

#include "render/opengl/framebuffer_binding.h"
#include "render/opengl/renderer_opengl.h"
#include "render/opengl/texture_binding.h"

namespace orv {

using namespace detail;

// ---- drawing ----

bool RendererOpenGL::gpu_render_target_bind(GpuRenderTarget* target) {
  if (!target || lacks(gl_.glBindFramebuffer, "glBindFramebuffer") ||
      lacks(gl_.glGenFramebuffers, "glGenFramebuffers"))
    return false;
  if (target->gl.fbo == 0) gl_.glGenFramebuffers(1, &target->gl.fbo);
  gl_.glBindFramebuffer(GL_FRAMEBUFFER, target->gl.fbo);
  return true;
}

bool RendererOpenGL::gpu_render_target_unbind(GpuRenderTarget*) { return framebuffer_bind(0); }

bool RendererOpenGL::gpu_render_target_set_array_layer(GpuRenderTarget* target,
                                                       unsigned int layer) {
  if (!target || lacks(gl_.glFramebufferTextureLayer, "glFramebufferTextureLayer") ||
      target->gl.fbo == 0)
    return false;
  const unsigned int id = target->gl.color_textures[0];
  if (id == 0 || target->gl.target != GL_TEXTURE_2D_ARRAY) return false;
  if (0ll + layer >= read_integer(GL_MAX_ARRAY_TEXTURE_LAYERS)) return false;
  const FramebufferBinding binding(this, target->gl.fbo, read_framebuffer());
  gl_.glFramebufferTextureLayer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, id, 0,
                                static_cast<GLint>(layer));
  return true;
}

bool RendererOpenGL::gpu_render_target_set_cube_face(GpuRenderTarget* target, CUBEMAP_FACE face) {
  if (!target || lacks(gl_.glFramebufferTexture2D, "glFramebufferTexture2D") || target->gl.fbo == 0)
    return false;
  const int index = static_cast<int>(face);
  if (index < 0 || index > 5 || target->gl.color_cube_texture == 0) return false;
  const FramebufferBinding binding(this, target->gl.fbo, read_framebuffer());
  const GLenum image = GL_TEXTURE_CUBE_MAP_POSITIVE_X + static_cast<GLenum>(index);
  gl_.glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, image,
                             target->gl.color_cube_texture, 0);
  if (target->gl.depth_cube_texture != 0) {
    gl_.glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, image,
                               target->gl.depth_cube_texture, 0);
  }
  return true;
}

bool RendererOpenGL::gpu_render_target_clear_color(unsigned int index, float r, float g, float b,
                                                   float a) {
  if (lacks(gl_.glClearBufferfv, "glClearBufferfv") ||
      index >= GpuRenderTargetDataGL::MAX_COLOR_TARGETS)
    return false;
  const float color[4] = {r, g, b, a};
  gl_.glClearBufferfv(GL_COLOR, static_cast<GLint>(index), color);
  return true;
}

bool RendererOpenGL::gpu_render_target_clear_depth(float depth) {
  if (lacks(gl_.glClearBufferfv, "glClearBufferfv")) return false;
  gl_.glClearBufferfv(GL_DEPTH, 0, &depth);
  return true;
}

bool RendererOpenGL::gpu_render_target_apply_cmaa() {
  if (lacks(gl_.glApplyFramebufferAttachmentCMAAINTEL, "glApplyFramebufferAttachmentCMAAINTEL"))
    return false;
  gl_.glApplyFramebufferAttachmentCMAAINTEL();
  return true;
}

// ---- sampling ----

bool RendererOpenGL::gpu_render_target_bind_color_texture(GpuRenderTarget* target,
                                                          unsigned int index, unsigned int unit) {
  if (!target) return false;
  if (target->gl.is_cube) return texture_bind_cube_by_id(target->gl.color_cube_texture, unit);
  return bind_texture_id(target->gl.target, target->gl_get_color_texture(index), unit);
}

bool RendererOpenGL::gpu_render_target_bind_depth_texture(GpuRenderTarget* target,
                                                          unsigned int unit) {
  if (!target) return false;
  if (target->gl.is_cube) return texture_bind_cube_by_id(target->gl.depth_cube_texture, unit);
  const bool flat = target->gl.target == GL_TEXTURE_2D_ARRAY;
  return bind_texture_id(flat ? GL_TEXTURE_2D : target->gl.target, target->gl.depth_texture, unit);
}

bool RendererOpenGL::gpu_render_target_bind_color_cube_texture(GpuRenderTarget* target,
                                                               unsigned int unit) {
  return target && texture_bind_cube_by_id(target->gl.color_cube_texture, unit);
}

bool RendererOpenGL::gpu_render_target_bind_depth_cube_texture(GpuRenderTarget* target,
                                                               unsigned int unit) {
  return target && texture_bind_cube_by_id(target->gl.depth_cube_texture, unit);
}

// ---- reading ----

bool RendererOpenGL::gpu_render_target_read_rgb_u8(GpuRenderTarget* target, unsigned char* pixels) {
  return read_target(target, pixels, GL_RGB);
}

bool RendererOpenGL::gpu_render_target_read_rgba_u8(GpuRenderTarget* target,
                                                    unsigned char* pixels) {
  return read_target(target, pixels, GL_RGBA);
}

bool RendererOpenGL::read_target(GpuRenderTarget* target, unsigned char* pixels,
                                 unsigned int format) {
  if (!target || !pixels || lacks(core_.glGetTexImage, "glGetTexImage") || units_.bound.empty())
    return false;
  const GLenum gl_target = target->gl.target;
  const GLuint id = target->gl.color_textures[0];
  const bool is_flat = gl_target == GL_TEXTURE_2D || gl_target == GL_TEXTURE_RECTANGLE;
  if (id == 0 || !is_flat || target->msaa_samples > 0) return false;
  if (gl_target_format(target->pixel_format).integer) return false;
  const TextureBinding binding(this, gl_target, id);
  GLint width = 0;
  GLint height = 0;
  core_.glGetTexLevelParameteriv(gl_target, 0, GL_TEXTURE_WIDTH, &width);
  core_.glGetTexLevelParameteriv(gl_target, 0, GL_TEXTURE_HEIGHT, &height);
  // OpenGL writes as much as it has, the caller has as much as the record says.
  if (width != target->width || height != target->height) return false;
  core_.glPixelStorei(GL_PACK_ALIGNMENT, 1);
  core_.glGetTexImage(gl_target, 0, format, GL_UNSIGNED_BYTE, pixels);
  return true;
}

}  // namespace orv
