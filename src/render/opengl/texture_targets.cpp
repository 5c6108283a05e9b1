// API objects of textures: unloading, creation by id, bindless handles, views of render targets.
#include <orv/core/log_mgr.h>
#include <orv/gpu/gpu_render_target.h>
#include <orv/gpu/texture_data.h>

#include <algorithm>

#include "render/opengl/renderer_opengl.h"
#include "render/opengl/texture_binding.h"

namespace orv {

using namespace detail;

// ---- unloading ----

bool RendererOpenGL::texture_unload(TextureData* texture) {
  if (!texture || texture->gl_texture_id == 0) return false;
  const int id = static_cast<int>(texture->gl_texture_id);
  release_texture_handle(texture);
  for (unsigned int* buffer : {&texture->pixel_buffer_id, &texture->pixel_buffer_id_2}) {
    if (*buffer != 0 && gl_.glDeleteBuffers) gl_.glDeleteBuffers(1, buffer);
    *buffer = 0;
  }
  if (texture->gl_texture_borrowed) {
    // The render target lives on with it.
    forget_texture(texture->gl_texture_id);
  } else {
    delete_texture_id(&texture->gl_texture_id);
    LogMgr::get().tracef("Texture (%s / %d / %d) unloaded from GPU memory", texture->texture_name,
                         texture->texture_id, id);
  }
  texture->gl_texture_id = 0;
  texture->gl_texture_borrowed = false;
  texture->loaded_in_gpu_memory = false;
  texture->uploaded_width = 0;
  texture->uploaded_height = 0;
  texture->uploaded_layers = 0;
  texture->uploaded_format = PF_UNKNOWN;
  return true;
}

bool RendererOpenGL::texture_delete_id(unsigned int id) {
  if (id == 0 || !core_.glDeleteTextures) return false;
  delete_texture_id(&id);
  return true;
}

// ---- creation by id ----

bool RendererOpenGL::texture_create_2d_by_id(unsigned int* id, int width, int height,
                                             PIXEL_FORMAT format, const void* pixels,
                                             SAMPLER_FILTERING_MODE filtering,
                                             SAMPLER_ADDRESSING_MODE addressing) {
  return create_texture_by_id(id, GL_TEXTURE_2D, width, height, format, pixels, filtering,
                              addressing);
}

bool RendererOpenGL::texture_create_rect_by_id(unsigned int* id, int width, int height,
                                               PIXEL_FORMAT format, const void* pixels,
                                               SAMPLER_FILTERING_MODE filtering,
                                               SAMPLER_ADDRESSING_MODE) {
  if (!has_texture_target(GL_TEXTURE_RECTANGLE)) return false;
  return create_texture_by_id(id, GL_TEXTURE_RECTANGLE, width, height, format, pixels, filtering,
                              SAMPLER_ADDRESSING_CLAMP);
}

bool RendererOpenGL::create_texture_by_id(unsigned int* id, unsigned int target, int width,
                                          int height, PIXEL_FORMAT format, const void* pixels,
                                          SAMPLER_FILTERING_MODE filtering,
                                          SAMPLER_ADDRESSING_MODE addressing) {
  if (!id || lacks(core_.glGenTextures, "glGenTextures")) return false;
  if (width > max_texture_size_ || height > max_texture_size_) {
    log_error("gl_texture_2d_create - 2D texture loading failed (texture size must be <= %dx%d)",
              max_texture_size_, max_texture_size_);
    return false;
  }
  if (width <= 0 || height <= 0) {
    log_error("gl_texture_2d_create - unable to load a 2D texture with no size (%lux%lu)",
              static_cast<unsigned long>(std::max(width, 0)),
              static_cast<unsigned long>(std::max(height, 0)));
    return false;
  }
  const GlPixelFormat found = gl_texture_format(format);
  if (!found.is_valid()) {
    LogMgr::get().tracef_debug("texture of %dx%d not created: pixel format %d is unknown", width,
                               height, static_cast<int>(format));
    return false;
  }
  *id = 0;
  core_.glGenTextures(1, id);
  const TextureBinding binding(this, target, *id);
  core_.glTexParameteri(target, GL_TEXTURE_MAG_FILTER, gl_mag_filter(filtering));
  core_.glTexParameteri(target, GL_TEXTURE_MIN_FILTER, gl_min_filter(filtering, false));
  core_.glTexParameteri(target, GL_TEXTURE_WRAP_S, gl_wrap(addressing));
  core_.glTexParameteri(target, GL_TEXTURE_WRAP_T, gl_wrap(addressing));
  core_.glPixelStorei(GL_UNPACK_ALIGNMENT, gl_row_alignment(static_cast<unsigned int>(width)));
  core_.glTexImage2D(target, 0, static_cast<GLint>(found.internal_format), width, height, 0,
                     found.format, found.type, pixels);
  core_.glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  return *id != 0;
}

// ---- bindless handles ----

bool RendererOpenGL::texture_make_handle_resident(TextureData* texture) {
  if (!texture || texture->gl_texture_id == 0) return false;
  if (lacks(gl_.glGetTextureHandleARB, "glGetTextureHandleARB") ||
      lacks(gl_.glMakeTextureHandleResidentARB, "glMakeTextureHandleResidentARB"))
    return false;
  if (texture->gl_handle_resident) return true;
  texture->gl_texture_handle = gl_.glGetTextureHandleARB(texture->gl_texture_id);
  if (texture->gl_texture_handle == 0) return false;
  gl_.glMakeTextureHandleResidentARB(texture->gl_texture_handle);
  texture->gl_handle_resident = true;
  return true;
}

bool RendererOpenGL::texture_make_handle_non_resident(TextureData* texture) {
  if (!texture || lacks(gl_.glMakeTextureHandleNonResidentARB, "glMakeTextureHandleNonResidentARB"))
    return false;
  if (!texture->gl_handle_resident) return false;
  gl_.glMakeTextureHandleNonResidentARB(texture->gl_texture_handle);
  texture->gl_handle_resident = false;
  return true;
}

void RendererOpenGL::release_texture_handle(TextureData* texture) {
  texture_make_handle_non_resident(texture);
  texture->gl_handle_resident = false;
  texture->gl_texture_handle = 0;
}

// ---- views of render targets ----

bool RendererOpenGL::texture_bind_render_target_color(TextureData* texture, GpuRenderTarget* target,
                                                      unsigned int index) {
  if (!texture || !target) return false;
  return view_render_target(texture, *target, target->gl_get_color_texture(index));
}

bool RendererOpenGL::texture_bind_render_target_depth(TextureData* texture,
                                                      GpuRenderTarget* target) {
  if (!texture || !target) return false;
  return view_render_target(texture, *target, target->gl_get_depth_texture());
}

bool RendererOpenGL::view_render_target(TextureData* texture, const GpuRenderTarget& target,
                                        unsigned int id) {
  texture_unload(texture);
  texture->gl_texture_id = id;
  texture->gl_texture_borrowed = true;
  texture->gpu_update_needed = false;
  texture->type = TEXTURE_2D;
  texture->set_image_size(static_cast<unsigned int>(std::max(target.width, 0)),
                          static_cast<unsigned int>(std::max(target.height, 0)), 1,
                          target.pixel_format);
  texture->loaded_in_gpu_memory = true;
  return true;
}

}  // namespace orv
