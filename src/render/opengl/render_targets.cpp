// Render targets: creation, new sizes, and the end of their API objects.
#include <orv/core/log_mgr.h>
#include <orv/gpu/gpu_render_target.h>

#include <algorithm>

#include "render/opengl/renderer_opengl.h"
#include "render/opengl/texture_binding.h"

namespace orv {

using namespace detail;

/// What a target is made of.
struct RendererOpenGL::TargetOptions {
  GLenum gl_target = GL_TEXTURE_2D;
  int width = 0;
  int height = 0;
  unsigned int layers = 0;
  PIXEL_FORMAT format = PF_UNKNOWN;
  unsigned int num_color = 0;
  bool depth_as_renderbuffer = false;
  bool linear = false;
  bool clamp = true;
  int msaa = 0;
  const char* kind = "GPU render target";  // of failures

  static TargetOptions depth_only(GLenum gl_target, int width, int height, bool linear,
                                  bool clamp) {
    return {.gl_target = gl_target,
            .width = width,
            .height = height,
            .linear = linear,
            .clamp = clamp,
            .kind = "GPU render target - create depth only target"};
  }
};

// ---- limits ----

unsigned int RendererOpenGL::limit_color_targets(unsigned int count) {
  const int attachments = read_integer(GL_MAX_COLOR_ATTACHMENTS);
  const unsigned int limit = std::min(GpuRenderTargetDataGL::MAX_COLOR_TARGETS,
                                      static_cast<unsigned int>(std::max(attachments, 0)));
  return std::min(count, limit);
}

int RendererOpenGL::limit_samples(int samples, bool as_texture, bool integer) {
  if (samples <= 0) return 0;
  const bool possible =
      as_texture ? gl_.glTexImage2DMultisample && has_texture_target(GL_TEXTURE_2D_MULTISAMPLE)
                 : gl_.glRenderbufferStorageMultisample != nullptr;
  if (!possible) return 0;
  int limit = read_integer(GL_MAX_SAMPLES);
  // The limit of integers came with multisampled textures.
  if (integer && has_texture_target(GL_TEXTURE_2D_MULTISAMPLE)) {
    limit = std::min(limit, read_integer(GL_MAX_INTEGER_SAMPLES));
  }
  return std::clamp(samples, 0, std::max(limit, 0));
}

// ---- creation ----

bool RendererOpenGL::begin_target(GpuRenderTarget* target, const TargetOptions& options) {
  if (!target || lacks(gl_.glGenFramebuffers, "glGenFramebuffers") ||
      lacks(gl_.glCheckFramebufferStatus, "glCheckFramebufferStatus") || units_.bound.empty()) {
    return false;
  }
  if (options.width <= 0 || options.height <= 0 || options.width > max_texture_size_ ||
      options.height > max_texture_size_) {
    log_error("%s - no size: %dx%d, at most %dx%d", options.kind, options.width, options.height,
              max_texture_size_, max_texture_size_);
    return false;
  }
  const GlPixelFormat format = gl_target_format(options.format);
  if (options.num_color > 0 && !format.is_valid()) {
    log_error("%s - no pixel format: %d", options.kind, static_cast<int>(options.format));
    return false;
  }
  // A second creation replaces what there is.
  gpu_render_target_release(nullptr, target);
  target->gl = GpuRenderTargetDataGL();
  target->width = options.width;
  target->height = options.height;
  target->depth_layers = static_cast<int>(options.layers);
  target->pixel_format = options.format;
  target->num_color_targets = limit_color_targets(options.num_color);
  target->msaa_samples = options.msaa;
  target->has_color = options.num_color > 0;
  target->has_depth = true;
  target->linear_filtering = options.linear;
  target->clamp = options.clamp;
  if (format.is_valid()) {
    target->gl.color_internal_format = format.internal_format;
    target->gl.color_format = format.format;
    target->gl.color_type = format.type;
  }
  return true;
}

bool RendererOpenGL::init_texture_target(GpuRenderTarget* target, const TargetOptions& options) {
  if (!begin_target(target, options)) return false;
  GpuRenderTargetDataGL& data = target->gl;
  data.target = options.gl_target;
  data.is_rectangle = options.gl_target == GL_TEXTURE_RECTANGLE;
  data.is_cube = options.gl_target == GL_TEXTURE_CUBE_MAP;
  // Integers cannot be blended between.
  const bool integer = gl_target_format(options.format).integer;
  const bool linear = options.linear && options.msaa == 0;
  data.color_filter = linear && !integer ? GL_LINEAR : GL_NEAREST;
  data.depth_filter = linear ? GL_LINEAR : GL_NEAREST;
  data.color_wrap = options.clamp ? GL_CLAMP_TO_EDGE : GL_REPEAT;
  // Depth is clamped but where nothing else is drawn.
  data.depth_wrap = options.num_color == 0 && !options.clamp ? GL_REPEAT : GL_CLAMP_TO_EDGE;
  if (data.is_cube) {
    data.color_cube_texture = create_target_texture(*target, false, 0);
  } else {
    for (unsigned int i = 0; i < target->num_color_targets; ++i) {
      data.color_textures[i] = create_target_texture(*target, false, i);
    }
  }
  if (options.depth_as_renderbuffer) {
    data.depth_renderbuffer = create_renderbuffer(*target, data.depth_internal_format);
  } else if (data.is_cube) {
    data.depth_cube_texture = create_target_texture(*target, true, 0);
  } else {
    data.depth_texture = create_target_texture(*target, true, 0);
  }
  return finish_target(target, options.kind);
}

bool RendererOpenGL::finish_target(GpuRenderTarget* target, const char* kind) {
  gpu_render_target_bind(target);
  attach_target(*target);
  const unsigned int status = gl_.glCheckFramebufferStatus(GL_FRAMEBUFFER);
  const bool complete = status == GL_FRAMEBUFFER_COMPLETE;
  if (!complete) log_error("%s - FBO creation error: %.4X", kind, status);
  gpu_render_target_unbind(target);
  if (!complete) gpu_render_target_release(nullptr, target);
  return complete;
}

void RendererOpenGL::attach_target(const GpuRenderTarget& target) {
  const GpuRenderTargetDataGL& data = target.gl;
  for (unsigned int i = 0; i < target.num_color_targets; ++i) {
    const GLenum attachment = GL_COLOR_ATTACHMENT0 + i;
    if (data.color_renderbuffers[i] != 0)
      attach_renderbuffer(attachment, data.color_renderbuffers[i]);
    if (data.color_textures[i] != 0)
      attach_texture(attachment, data.target, data.color_textures[i]);
  }
  if (data.color_cube_texture != 0) {
    attach_texture(GL_COLOR_ATTACHMENT0, data.target, data.color_cube_texture);
  }
  if (data.depth_renderbuffer != 0) {
    attach_renderbuffer(GL_DEPTH_ATTACHMENT, data.depth_renderbuffer);
  } else if (data.depth_cube_texture != 0) {
    attach_texture(GL_DEPTH_ATTACHMENT, data.target, data.depth_cube_texture);
  } else if (data.depth_texture != 0) {
    const bool is_array = data.target == GL_TEXTURE_2D_ARRAY;
    attach_texture(GL_DEPTH_ATTACHMENT, is_array ? GL_TEXTURE_2D : data.target, data.depth_texture);
  }
  set_draw_buffers(target.num_color_targets);
}

void RendererOpenGL::set_draw_buffers(unsigned int count) {
  if (count == 0) {
    core_.glDrawBuffer(GL_NONE);
    core_.glReadBuffer(GL_NONE);
    return;
  }
  GLenum buffers[GpuRenderTargetDataGL::MAX_COLOR_TARGETS];
  count = std::min(count, GpuRenderTargetDataGL::MAX_COLOR_TARGETS);
  const int limit = read_integer(GL_MAX_DRAW_BUFFERS);
  if (limit > 0) count = std::min(count, static_cast<unsigned int>(limit));
  for (unsigned int i = 0; i < count; ++i) buffers[i] = GL_COLOR_ATTACHMENT0 + i;
  if (gl_.glDrawBuffers) gl_.glDrawBuffers(static_cast<GLsizei>(count), buffers);
}

bool RendererOpenGL::gpu_render_target_init_2d(RendererGpu*, GpuRenderTarget* target, int width,
                                               int height, PIXEL_FORMAT format,
                                               unsigned int num_color, bool depth_as_renderbuffer,
                                               bool linear_filtering, bool clamp, int msaa) {
  const int samples = limit_samples(msaa, true, gl_target_format(format).integer);
  const GLenum gl_target = samples > 0 ? GL_TEXTURE_2D_MULTISAMPLE : GL_TEXTURE_2D;
  return init_texture_target(target, {gl_target, width, height, 0, format, num_color,
                                      depth_as_renderbuffer, linear_filtering, clamp, samples});
}

bool RendererOpenGL::gpu_render_target_init_rect(RendererGpu*, GpuRenderTarget* target, int width,
                                                 int height, PIXEL_FORMAT format,
                                                 unsigned int num_color, bool depth_as_renderbuffer,
                                                 bool linear_filtering, bool clamp, int) {
  if (lacks(has_texture_target(GL_TEXTURE_RECTANGLE), "rectangle textures")) return false;
  // Rectangles have no samples.
  return init_texture_target(target, {GL_TEXTURE_RECTANGLE, width, height, 0, format, num_color,
                                      depth_as_renderbuffer, linear_filtering, clamp});
}

bool RendererOpenGL::gpu_render_target_init_cube(RendererGpu*, GpuRenderTarget* target, int size,
                                                 PIXEL_FORMAT format, bool depth_as_renderbuffer,
                                                 int, bool linear_filtering, bool clamp) {
  // Nor have cubes.
  return init_texture_target(target, {GL_TEXTURE_CUBE_MAP, size, size, 0, format, 1,
                                      depth_as_renderbuffer, linear_filtering, clamp});
}

bool RendererOpenGL::gpu_render_target_init_depth_2d(RendererGpu*, GpuRenderTarget* target,
                                                     int width, int height, bool linear_filtering,
                                                     bool clamp) {
  return init_texture_target(
      target, TargetOptions::depth_only(GL_TEXTURE_2D, width, height, linear_filtering, clamp));
}

bool RendererOpenGL::gpu_render_target_init_depth_rect(RendererGpu*, GpuRenderTarget* target,
                                                       int width, int height, bool linear_filtering,
                                                       bool clamp) {
  if (lacks(has_texture_target(GL_TEXTURE_RECTANGLE), "rectangle textures")) return false;
  return init_texture_target(target, TargetOptions::depth_only(GL_TEXTURE_RECTANGLE, width, height,
                                                               linear_filtering, clamp));
}

bool RendererOpenGL::gpu_render_target_init_2d_array(RendererGpu*, GpuRenderTarget* target,
                                                     unsigned int layers,
                                                     bool depth_as_renderbuffer, int width,
                                                     int height, PIXEL_FORMAT format, int,
                                                     bool linear_filtering, bool clamp) {
  if (!target || layers == 0 || lacks(gl_.glTexImage3D, "glTexImage3D") ||
      lacks(gl_.glFramebufferTextureLayer, "glFramebufferTextureLayer"))
    return false;
  const int limit = read_integer(GL_MAX_ARRAY_TEXTURE_LAYERS);
  if (static_cast<long long>(layers) > limit) {
    LogMgr::get().tracef_warning("number of layers limited to %d", limit);
    layers = static_cast<unsigned int>(std::max(limit, 0));
  }
  // Arrays have no samples here.
  return init_texture_target(target, {GL_TEXTURE_2D_ARRAY, width, height, layers, format, 1,
                                      depth_as_renderbuffer, linear_filtering, clamp});
}

bool RendererOpenGL::gpu_render_target_init_rb(RendererGpu*, GpuRenderTarget* target, int width,
                                               int height, PIXEL_FORMAT format, bool with_color,
                                               unsigned int num_color, bool with_depth, int msaa) {
  const TargetOptions options = {
      .width = width,
      .height = height,
      .format = format,
      .num_color = with_color ? num_color : 0,
      .msaa = limit_samples(msaa, false, with_color && gl_target_format(format).integer)};
  if (!begin_target(target, options)) return false;
  GpuRenderTargetDataGL& data = target->gl;
  target->has_depth = with_depth;
  data.color_internal_format = gl_renderbuffer_format(gl_target_format(format));
  data.depth_internal_format = GL_DEPTH_COMPONENT;
  data.num_color_renderbuffers = target->num_color_targets;
  for (unsigned int i = 0; i < data.num_color_renderbuffers; ++i) {
    data.color_renderbuffers[i] = create_renderbuffer(*target, data.color_internal_format);
  }
  if (with_depth) {
    data.depth_renderbuffer = create_renderbuffer(*target, data.depth_internal_format);
  }
  if (finish_target(target, options.kind)) return true;
  LogMgr::get().tracef_error("[OpenGL] %s", error_text_.data());
  return false;
}

// ---- new size ----

bool RendererOpenGL::gpu_render_target_resize(GpuRenderTarget* target, int width, int height) {
  if (!target || width <= 0 || height <= 0 || lacks(gl_.glGenFramebuffers, "glGenFramebuffers"))
    return false;
  if (width > max_texture_size_ || height > max_texture_size_) {
    LogMgr::get().tracef_debug("GPU render target %d not resized: %dx%d, at most %dx%d",
                               target->getid(), width, height, max_texture_size_,
                               max_texture_size_);
    return false;
  }
  GpuRenderTargetDataGL& data = target->gl;
  if (data.is_cube && width != height) return false;
  target->width = width;
  target->height = height;
  for (const unsigned int id : data.color_renderbuffers) {
    if (id != 0) store_renderbuffer(*target, id, data.color_internal_format);
  }
  if (data.depth_renderbuffer != 0) {
    store_renderbuffer(*target, data.depth_renderbuffer, data.depth_internal_format);
  }
  const auto store = [&](unsigned int id, bool depth) {
    if (id == 0) return;
    const bool flat = depth && data.target == GL_TEXTURE_2D_ARRAY;
    const TextureBinding binding(this, flat ? GL_TEXTURE_2D : data.target, id);
    store_target_texture(*target, depth);
  };
  for (const unsigned int id : data.color_textures) store(id, false);
  store(data.color_cube_texture, false);
  store(data.depth_texture, true);
  store(data.depth_cube_texture, true);
  return true;
}

// ---- end ----

bool RendererOpenGL::gpu_render_target_release(RendererGpu*, GpuRenderTarget* target) {
  if (!target) return false;
  GpuRenderTargetDataGL& data = target->gl;
  if (data.fbo != 0 && gl_.glDeleteFramebuffers) {
    // What is drawn next goes to the window.
    if (framebuffer_get_current() == data.fbo || read_framebuffer() == data.fbo) {
      framebuffer_bind(0);
    }
  }
  const auto delete_renderbuffer = [&](unsigned int* id) {
    if (*id != 0 && gl_.glDeleteRenderbuffers) gl_.glDeleteRenderbuffers(1, id);
    *id = 0;
  };
  for (unsigned int& id : data.color_renderbuffers) delete_renderbuffer(&id);
  data.num_color_renderbuffers = 0;
  delete_renderbuffer(&data.depth_renderbuffer);
  for (unsigned int& id : data.color_textures) delete_texture_id(&id);
  delete_texture_id(&data.depth_texture);
  delete_texture_id(&data.color_cube_texture);
  delete_texture_id(&data.depth_cube_texture);
  if (data.fbo != 0 && gl_.glDeleteFramebuffers) gl_.glDeleteFramebuffers(1, &data.fbo);
  data.fbo = 0;
  return true;
}

}  // namespace orv
