// How textures are sampled, what they take on the GPU, and the switches of the fixed pipeline.
#include <orv/gpu/texture_data.h>

#include <algorithm>

#include "render/opengl/renderer_opengl.h"
#include "render/opengl/texture_binding.h"

namespace orv {

using namespace detail;

namespace {

/// Multisampled textures have no sampling settings.
bool has_sampling(const TextureData* texture) {
  return texture && texture->gl_texture_id != 0 && texture->type != TEXTURE_2D_MULTISAMPLE;
}

}  // namespace

// ---- sampling ----

void RendererOpenGL::texture_set_anisotropy(TextureData* texture, float value) {
  if (!has_sampling(texture) || !core_.glTexParameterf) return;
  const float largest = get_max_anisotropy();
  if (!(largest > 1.0f)) return;  // the driver does not know the setting
  const GLenum target = gl_texture_target(texture->type);
  const TextureBinding binding(this, target, texture->gl_texture_id);
  // In this order a value that is no number becomes 1.
  core_.glTexParameterf(target, GL_TEXTURE_MAX_ANISOTROPY_EXT,
                        std::min(std::max(1.0f, value), largest));
}

void RendererOpenGL::texture_set_addressing_mode(TextureData* texture,
                                                 SAMPLER_ADDRESSING_MODE mode) {
  if (!has_sampling(texture) || !core_.glTexParameteri) return;
  const GLenum target = gl_texture_target(texture->type);
  const TextureBinding binding(this, target, texture->gl_texture_id);
  // Rectangles cannot repeat.
  const GLint wrap = target == GL_TEXTURE_RECTANGLE ? GL_CLAMP_TO_EDGE : gl_wrap(mode);
  core_.glTexParameteri(target, GL_TEXTURE_WRAP_S, wrap);
  core_.glTexParameteri(target, GL_TEXTURE_WRAP_T, wrap);
}

void RendererOpenGL::texture_set_filtering_mode(TextureData* texture, SAMPLER_FILTERING_MODE mode) {
  if (!has_sampling(texture) || !core_.glTexParameteri) return;
  const GLenum target = gl_texture_target(texture->type);
  const TextureBinding binding(this, target, texture->gl_texture_id);
  const bool mipmapped = texture->mipmap_max_level > 0 && target != GL_TEXTURE_RECTANGLE;
  core_.glTexParameteri(target, GL_TEXTURE_MAG_FILTER, gl_mag_filter(mode));
  core_.glTexParameteri(target, GL_TEXTURE_MIN_FILTER, gl_min_filter(mode, mipmapped));
}

// ---- size ----

unsigned int RendererOpenGL::texture_get_compressed_size(TextureData* texture) {
  if (!texture || texture->gl_texture_id == 0 || !core_.glGetTexLevelParameteriv) return 0;
  const GLenum target = gl_texture_target(texture->type);
  const GLenum level_target =
      target == GL_TEXTURE_CUBE_MAP ? GL_TEXTURE_CUBE_MAP_POSITIVE_X : target;
  GLint size = 0;
  {
    const TextureBinding binding(this, target, texture->gl_texture_id);
    GLint is_compressed = GL_FALSE;
    core_.glGetTexLevelParameteriv(level_target, 0, GL_TEXTURE_COMPRESSED, &is_compressed);
    // The question is an error for textures that are not.
    if (is_compressed) {
      core_.glGetTexLevelParameteriv(level_target, 0, GL_TEXTURE_COMPRESSED_IMAGE_SIZE, &size);
    }
  }
  const unsigned long long images =
      target == GL_TEXTURE_CUBE_MAP ? 6 : std::max(1u, texture->get_num_layers());
  const auto cut = [](unsigned long long bytes) {
    return static_cast<unsigned int>(std::min<unsigned long long>(bytes, 0xFFFFFFFFu));
  };
  const Image& image = texture->get_main_image();
  // 16-bit floats come as 32-bit ones.
  const bool is_halved = image.pixel_format >= PF_RGB_F16 && image.pixel_format <= PF_R_F16;
  const GlPixelFormat format = gl_texture_format(image.pixel_format);
  const unsigned int pixel_size = format.is_valid() ? gl_pixel_size(format) : 0;
  texture->gpu_memory_size =
      cut(images * image.width * image.height * (is_halved ? pixel_size / 2 : pixel_size));
  // The driver counts all layers of an array, but one face of a cube map.
  const unsigned long long faces = target == GL_TEXTURE_CUBE_MAP ? 6 : 1;
  texture->gpu_memory_size_compressed =
      cut(faces * static_cast<unsigned long long>(std::max(size, 0)));
  return texture->gpu_memory_size_compressed;
}

// ---- fixed pipeline ----

void RendererOpenGL::enable_texture_1d(bool enabled) { enable_texture_target(TEXTURE_1D, enabled); }

void RendererOpenGL::enable_texture_2d(bool enabled) { enable_texture_target(TEXTURE_2D, enabled); }

void RendererOpenGL::enable_texture_3d(bool enabled) { enable_texture_target(TEXTURE_3D, enabled); }

void RendererOpenGL::enable_texture_cube_map(bool enabled) {
  enable_texture_target(TEXTURE_CUBE, enabled);
}

void RendererOpenGL::enable_texture_target(TEXTURE_TYPE type, bool enabled) {
  if (!has_fixed_function()) return;
  const GLenum target = gl_texture_target(type);
  // Arrays and multisampled textures are for programs alone.
  if (target == GL_TEXTURE_2D_ARRAY || target == GL_TEXTURE_2D_MULTISAMPLE) return;
  if (has_texture_target(target)) set_capability(target, enabled);
}

}  // namespace orv
