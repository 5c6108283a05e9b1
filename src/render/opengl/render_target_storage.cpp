// Textures and renderbuffers of render targets.
#include <orv/gpu/gpu_render_target.h>

#include "render/opengl/renderer_opengl.h"
#include "render/opengl/texture_binding.h"

namespace orv {

using namespace detail;

namespace {

/// Target of the texture that keeps colour or depth.
GLenum storage_target(const GpuRenderTarget& target, bool depth) {
  // All layers of an array are drawn with one depth.
  return depth && target.gl.target == GL_TEXTURE_2D_ARRAY ? GL_TEXTURE_2D : target.gl.target;
}

/// Modes of records that OpenGL has no longer.
GLint current_wrap(GLenum wrap, GLenum gl_target) {
  if (gl_target == GL_TEXTURE_RECTANGLE) return GL_CLAMP_TO_EDGE;
  return static_cast<GLint>(wrap == GL_CLAMP ? GL_CLAMP_TO_EDGE : wrap);
}

}  // namespace

// ---- textures ----

unsigned int RendererOpenGL::create_target_texture(const GpuRenderTarget& target, bool depth,
                                                   unsigned int unit) {
  GLuint id = 0;
  core_.glGenTextures(1, &id);
  const GLenum gl_target = storage_target(target, depth);
  const TextureBinding binding(this, units_.has(unit) ? unit : 0, gl_target, id);
  if (depth || gl_target == GL_TEXTURE_2D_MULTISAMPLE) {
    core_.glTexParameteri(gl_target, GL_TEXTURE_BASE_LEVEL, 0);
    core_.glTexParameteri(gl_target, GL_TEXTURE_MAX_LEVEL, 0);
  }
  if (gl_target != GL_TEXTURE_2D_MULTISAMPLE) {
    const GLint filter =
        static_cast<GLint>(depth ? target.gl.depth_filter : target.gl.color_filter);
    const GLint wrap = current_wrap(depth ? target.gl.depth_wrap : target.gl.color_wrap, gl_target);
    core_.glTexParameteri(gl_target, GL_TEXTURE_MAG_FILTER, filter);
    core_.glTexParameteri(gl_target, GL_TEXTURE_MIN_FILTER, filter);
    core_.glTexParameteri(gl_target, GL_TEXTURE_WRAP_S, wrap);
    core_.glTexParameteri(gl_target, GL_TEXTURE_WRAP_T, wrap);
    if (gl_target == GL_TEXTURE_CUBE_MAP) {
      core_.glTexParameteri(gl_target, GL_TEXTURE_WRAP_R, wrap);
    }
  }
  store_target_texture(target, depth);
  return id;
}

void RendererOpenGL::store_target_texture(const GpuRenderTarget& target, bool depth) {
  const GpuRenderTargetDataGL& data = target.gl;
  const GLenum gl_target = storage_target(target, depth);
  const GLenum internal_format = depth ? data.depth_internal_format : data.color_internal_format;
  const GLenum format = depth ? static_cast<GLenum>(GL_DEPTH_COMPONENT) : data.color_format;
  const GLenum type = depth ? static_cast<GLenum>(GL_FLOAT) : data.color_type;
  const GLint kept = static_cast<GLint>(internal_format);
  const int width = target.width;
  const int height = target.height;
  switch (gl_target) {
    case GL_TEXTURE_2D_MULTISAMPLE:
      gl_.glTexImage2DMultisample(gl_target, target.msaa_samples, internal_format, width, height,
                                  GL_TRUE);
      break;
    case GL_TEXTURE_2D_ARRAY:
      gl_.glTexImage3D(gl_target, 0, kept, width, height, target.depth_layers, 0, format, type,
                       nullptr);
      break;
    case GL_TEXTURE_CUBE_MAP:
      for (GLenum face = 0; face < 6; ++face) {
        core_.glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, 0, kept, width, height, 0, format,
                           type, nullptr);
      }
      break;
    default:
      core_.glTexImage2D(gl_target, 0, kept, width, height, 0, format, type, nullptr);
      break;
  }
}

void RendererOpenGL::attach_texture(unsigned int attachment, unsigned int gl_target,
                                    unsigned int id) {
  if (gl_target == GL_TEXTURE_2D_ARRAY) {
    gl_.glFramebufferTextureLayer(GL_FRAMEBUFFER, attachment, id, 0, 0);
    return;
  }
  const GLenum image =
      gl_target == GL_TEXTURE_CUBE_MAP ? GL_TEXTURE_CUBE_MAP_POSITIVE_X : gl_target;
  gl_.glFramebufferTexture2D(GL_FRAMEBUFFER, attachment, image, id, 0);
}

// ---- renderbuffers ----

unsigned int RendererOpenGL::create_renderbuffer(const GpuRenderTarget& target,
                                                 unsigned int internal_format) {
  GLuint id = 0;
  gl_.glGenRenderbuffers(1, &id);
  store_renderbuffer(target, id, internal_format);
  return id;
}

void RendererOpenGL::store_renderbuffer(const GpuRenderTarget& target, unsigned int id,
                                        unsigned int internal_format) {
  gl_.glBindRenderbuffer(GL_RENDERBUFFER, id);
  if (target.msaa_samples > 0) {
    gl_.glRenderbufferStorageMultisample(GL_RENDERBUFFER, target.msaa_samples, internal_format,
                                         target.width, target.height);
  } else {
    gl_.glRenderbufferStorage(GL_RENDERBUFFER, internal_format, target.width, target.height);
  }
  gl_.glBindRenderbuffer(GL_RENDERBUFFER, 0);
}

void RendererOpenGL::attach_renderbuffer(unsigned int attachment, unsigned int id) {
  gl_.glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, id);
}

}  // namespace orv
