// Textures on their way to the GPU.
#include <orv/core/log_mgr.h>
#include <orv/gpu/texture_data.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "render/opengl/renderer_opengl.h"
#include "render/opengl/texture_binding.h"
#include "render/opengl/texture_pixels.h"

namespace orv {

using namespace detail;

namespace {

bool is_larger(unsigned int size, int limit) {
  return static_cast<long long>(size) > static_cast<long long>(limit);
}

unsigned int size_in_kb(const TextureData& texture) {
  const unsigned int compressed = texture.gpu_memory_size_compressed;
  return (compressed != 0 ? compressed : texture.gpu_memory_size) / 1024;
}

}  // namespace

// ---- by type ----

bool RendererOpenGL::texture_load(RendererGpu* gpu, TextureData* texture, unsigned int unit) {
  if (!texture) return false;
  switch (texture->type) {
    case TEXTURE_1D:
      return texture_load_1d(gpu, texture, unit);
    case TEXTURE_2D:
      return texture_load_2d(gpu, texture, unit);
    case TEXTURE_CUBE:
      return texture_load_cube(gpu, texture, unit);
    case TEXTURE_2D_ARRAY:
      return texture_load_2d_array(gpu, texture, unit);
    default:
      return false;
  }
}

bool RendererOpenGL::texture_load_1d(RendererGpu*, TextureData* texture, unsigned int unit) {
  if (!texture || texture->type != TEXTURE_1D) return false;
  if (texture->loaded_in_gpu_memory) return true;
  if (lacks(core_.glGenTextures, "glGenTextures")) return false;
  const unsigned int width = texture->get_width();
  if (is_larger(width, max_texture_size_)) {
    log_error("1D texture loading failed (texture size must be <= %d)", max_texture_size_);
    return false;
  }
  if (width == 0) {
    log_error("unable to load a 1D texture with no size (%lu)", static_cast<unsigned long>(width));
    return false;
  }
  if (!load_texture(texture, unit)) return false;
  LogMgr::get().tracef("texture 1D loaded ok (GL id=%d, size=%d)",
                       static_cast<int>(texture->gl_texture_id), static_cast<int>(width));
  return true;
}

bool RendererOpenGL::texture_load_2d(RendererGpu*, TextureData* texture, unsigned int unit) {
  if (!texture || texture->type != TEXTURE_2D) return false;
  if (texture->loaded_in_gpu_memory) return true;
  if (lacks(core_.glGenTextures, "glGenTextures")) return false;
  const unsigned int width = texture->get_width();
  const unsigned int height = texture->get_height();
  if (is_larger(width, max_texture_size_) || is_larger(height, max_texture_size_)) {
    log_error("2D texture loading failed (texture size must be <= %dx%d)", max_texture_size_,
              max_texture_size_);
    return false;
  }
  if (width == 0 || height == 0) {
    log_error("unable to load a 2D texture with no size (%lux%lu)",
              static_cast<unsigned long>(width), static_cast<unsigned long>(height));
    return false;
  }
  if (!load_texture(texture, unit)) return false;
  LogMgr::get().tracef("texture loaded ok (GL id=%d, size=%dx%d, gpu mem size: %dKB)",
                       static_cast<int>(texture->gl_texture_id), static_cast<int>(width),
                       static_cast<int>(height), static_cast<int>(size_in_kb(*texture)));
  return true;
}

bool RendererOpenGL::texture_load_cube(RendererGpu*, TextureData* texture, unsigned int unit) {
  if (!texture || texture->type != TEXTURE_CUBE) return false;
  if (texture->loaded_in_gpu_memory) return true;
  if (lacks(core_.glGenTextures, "glGenTextures")) return false;
  const Image& face = texture->cubemap_faces[0].image;
  if (is_larger(face.width, max_texture_size_) || is_larger(face.height, max_texture_size_)) {
    log_error("CUBE texture loading failed (texture size must be <= %dx%d)", max_texture_size_,
              max_texture_size_);
    return false;
  }
  if (face.width == 0 || face.height == 0) {
    log_error("unable to load a CUBE texture with no size (%lu)",
              static_cast<unsigned long>(face.width));
    return false;
  }
  if (face.width != face.height) {
    LogMgr::get().tracef_debug("texture %s not loaded: faces of %ux%u are not square",
                               texture->texture_name, face.width, face.height);
    return false;
  }
  if (!load_texture(texture, unit)) return false;
  LogMgr::get().tracef("cube texture loaded ok (GL id=%d, size=%dx%d)",
                       static_cast<int>(texture->gl_texture_id), static_cast<int>(face.width),
                       static_cast<int>(face.height));
  return true;
}

bool RendererOpenGL::texture_load_2d_array(RendererGpu*, TextureData* texture, unsigned int unit) {
  if (!texture || texture->type != TEXTURE_2D_ARRAY) return false;
  if (texture->loaded_in_gpu_memory) return true;
  if (lacks(core_.glGenTextures, "glGenTextures")) return false;
  if (!gl_.glTexImage3D || !gl_.glTexSubImage3D || !has_texture_target(GL_TEXTURE_2D_ARRAY)) {
    LogMgr::get().tracef_debug("texture %s not loaded: no texture arrays in this context",
                               texture->texture_name);
    return false;
  }
  const Image* layer = texture->get_layer_image_ptr(0);
  const unsigned int width = layer ? layer->width : 0;
  const unsigned int height = layer ? layer->height : 0;
  if (is_larger(width, max_texture_size_) || is_larger(height, max_texture_size_)) {
    log_error("texture 2D array loading failed (texture size must be <= %dx%d)", max_texture_size_,
              max_texture_size_);
    return false;
  }
  if (width == 0 || height == 0) {
    log_error("unable to load a texture 2D array with no size (%lux%lu)",
              static_cast<unsigned long>(width), static_cast<unsigned long>(height));
    return false;
  }
  const int max_layers = read_integer(GL_MAX_ARRAY_TEXTURE_LAYERS);
  if (is_larger(texture->get_num_layers(), max_layers)) {
    log_error("unable to load a texture 2D array, number of layers does not exceed %d", max_layers);
    return false;
  }
  return load_texture(texture, unit);
}

// ---- what all types go through ----

bool RendererOpenGL::load_texture(TextureData* texture, unsigned int unit) {
  if (units_.bound.empty()) return false;
  const Image& image = texture->get_main_image();
  const GlPixelFormat format = gl_texture_format(image.pixel_format);
  // A texture without pixels is a surface to be filled later, one with too few is a mistake.
  if (!format.is_valid() || (texture->get_pixmap_ptr() && !image.has_pixels())) {
    LogMgr::get().tracef_debug("texture %s not loaded: pixels do not fit pixel format %d",
                               texture->texture_name, static_cast<int>(image.pixel_format));
    return false;
  }
  if (texture->gl_texture_borrowed) texture->gl_texture_id = 0;
  texture->gl_texture_borrowed = false;
  delete_texture_id(&texture->gl_texture_id);

  core_.glGenTextures(1, &texture->gl_texture_id);
  if (texture->gl_texture_id == 0) {
    LogMgr::get().tracef_debug("texture %s not loaded: the driver gives no texture object",
                               texture->texture_name);
    return false;
  }
  const unsigned int last_unit = static_cast<unsigned int>(units_.bound.size() - 1);
  bind_texture(std::min(unit, last_unit), gl_texture_target(texture->type), texture->gl_texture_id);
  texture->renderer_id = getid();

  const bool is_staged = stage_pixels(texture);
  texture_set_anisotropy(texture, texture->anisotropy);
  specify_texture(texture, is_staged ? nullptr : upload_pixels(image));
  apply_mipmaps(texture);
  texture_set_filtering_mode(texture, texture->filtering_mode);
  texture_set_addressing_mode(texture, texture->addressing_mode);
  texture->loaded_in_gpu_memory = true;
  texture->gpu_update_needed = false;
  texture_get_compressed_size(texture);
  end_upload();
  return true;
}

bool RendererOpenGL::stage_pixels(TextureData* texture) {
  const bool is_plain = texture->type == TEXTURE_1D || texture->type == TEXTURE_2D;
  if (!texture->use_pixel_buffer || !is_plain) return false;
  const Image& image = texture->get_main_image();
  const void* pixels = upload_pixels(image);
  if (!pixels || !has_buffer_target(GPU_BUFFER_PIXEL_UNPACK)) return false;
  if (texture->pixel_buffer_id == 0) gl_.glGenBuffers(1, &texture->pixel_buffer_id);
  const std::size_t pixel_size = gl_pixel_size(gl_texture_format(image.pixel_format));
  const std::size_t size = pixel_size * image.width * image.height;
  gl_.glBindBuffer(GL_PIXEL_UNPACK_BUFFER, texture->pixel_buffer_id);
  gl_.glBufferData(GL_PIXEL_UNPACK_BUFFER, static_cast<GLsizeiptr>(size), pixels, GL_STREAM_DRAW);
  return true;
}

void RendererOpenGL::end_upload() {
  if (has_buffer_target(GPU_BUFFER_PIXEL_UNPACK)) gl_.glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
  core_.glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
}

void RendererOpenGL::apply_mipmaps(TextureData* texture) {
  const GLenum target = gl_texture_target(texture->type);
  const bool mipmapped = texture->gen_mipmaps && gl_.glGenerateMipmap;
  if (!mipmapped) {
    texture->mipmap_base_level = 0;
    texture->mipmap_max_level = 0;
  } else if (texture->mipmap_max_level == -1) {
    texture->mipmap_max_level = static_cast<int>(texture->get_max_number_of_mipmaps());
  }
  core_.glTexParameteri(target, GL_TEXTURE_BASE_LEVEL, std::max(texture->mipmap_base_level, 0));
  core_.glTexParameteri(target, GL_TEXTURE_MAX_LEVEL, std::max(texture->mipmap_max_level, 0));
  if (!mipmapped) return;
  gl_.glGenerateMipmap(target);
  texture->filtering_mode = SAMPLER_FILTERING_TRILINEAR;
}

// ---- formats ----

bool RendererOpenGL::is_compression_supported(GlCompressionGroup group) {
  if (group == GlCompressionGroup::GENERIC) return true;
  const bool is_s3tc = group == GlCompressionGroup::S3TC;
  int& supported = is_s3tc ? facts_.s3tc_supported : facts_.rgtc_supported;
  if (supported == -1) {
    supported = facts_.has_extension(is_s3tc ? "GL_EXT_texture_compression_s3tc"
                                             : "GL_EXT_texture_compression_rgtc")
                    ? 1
                    : 0;
  }
  return supported == 1;
}

unsigned int RendererOpenGL::choose_internal_format(const TextureData& texture,
                                                    const GlPixelFormat& format) {
  if (!texture.gpu_compression) return format.internal_format;
  if (!texture.s3tc_compression || texture.compression_format[0] == '\0') return format.compressed;
  GlCompressionGroup group = GlCompressionGroup::GENERIC;
  const GLenum named = gl_compressed_format(texture.compression_format, &group);
  if (named == 0 || !is_compression_supported(group)) {
    LogMgr::get().tracef_debug("texture %s: no compression %s here, the driver chooses one",
                               texture.texture_name, texture.compression_format);
    return format.compressed;
  }
  // Blocks have two dimensions.
  const bool has_blocks = group != GlCompressionGroup::GENERIC;
  return has_blocks && texture.type == TEXTURE_1D ? format.compressed : named;
}

// ---- storage ----

void RendererOpenGL::specify_texture(TextureData* texture, const void* pixels) {
  const Image& image = texture->get_main_image();
  const GlPixelFormat format = gl_texture_format(image.pixel_format);
  const GLenum internal_format = choose_internal_format(*texture, format);
  const GLsizei width = static_cast<GLsizei>(image.width);
  const GLsizei height = static_cast<GLsizei>(image.height);
  core_.glPixelStorei(GL_UNPACK_ALIGNMENT, gl_row_alignment(image.width));
  switch (texture->type) {
    case TEXTURE_1D:
      core_.glTexImage1D(GL_TEXTURE_1D, 0, static_cast<GLint>(internal_format), width, 0,
                         format.format, format.type, pixels);
      break;
    case TEXTURE_CUBE:
      specify_cube(*texture, internal_format);
      break;
    case TEXTURE_2D_ARRAY:
      specify_layers(*texture, format, internal_format);
      break;
    default:
      core_.glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(internal_format), width, height, 0,
                         format.format, format.type, pixels);
      break;
  }
  texture->gl_format = format.format;
  texture->uploaded_width = image.width;
  texture->uploaded_height = image.height;
  texture->uploaded_layers = texture->get_num_layers();
  texture->uploaded_format = image.pixel_format;
}

void RendererOpenGL::specify_cube(const TextureData& texture, unsigned int internal_format) {
  const Image& first = texture.cubemap_faces[0].image;
  std::vector<unsigned char> black;
  for (unsigned int i = 0; i < 6; ++i) {
    const Image& face = texture.cubemap_faces[i].image;
    GlPixelFormat format = gl_texture_format(face.pixel_format);
    const void* pixels = upload_pixels(face);
    if (!pixels || !format.is_valid() || !has_size_of(face, first)) {
      // A cube map with a face missing could not be sampled at all.
      LogMgr::get().tracef_debug("texture %s: face %u has no pixels of the size of the first",
                                 texture.texture_name, i);
      format = gl_texture_format(PF_R_U8);
      black.resize(std::size_t{first.width} * first.height);
      pixels = black.data();
    }
    core_.glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + i, 0, static_cast<GLint>(internal_format),
                       static_cast<GLsizei>(first.width), static_cast<GLsizei>(first.height), 0,
                       format.format, format.type, pixels);
  }
}

void RendererOpenGL::specify_layers(const TextureData& texture, const GlPixelFormat& format,
                                    unsigned int internal_format) {
  const Image& first = texture.get_main_image();
  const unsigned int count = texture.get_num_layers();
  const GLsizei width = static_cast<GLsizei>(first.width);
  const GLsizei height = static_cast<GLsizei>(first.height);
  gl_.glTexImage3D(GL_TEXTURE_2D_ARRAY, 0, static_cast<GLint>(internal_format), width, height,
                   static_cast<GLsizei>(count), 0, format.format, format.type, nullptr);
  for (unsigned int i = 0; i < count; ++i) {
    const Image& layer = texture.layers.layers[i];
    const GlPixelFormat layer_format = gl_texture_format(layer.pixel_format);
    const void* pixels = upload_pixels(layer);
    if (!pixels || !layer_format.is_valid() || !has_size_of(layer, first)) {
      LogMgr::get().tracef_debug("texture %s: layer %u left out, its size is not %ux%u",
                                 texture.texture_name, i, first.width, first.height);
      continue;
    }
    gl_.glTexSubImage3D(GL_TEXTURE_2D_ARRAY, 0, 0, 0, static_cast<GLint>(i), width, height, 1,
                        layer_format.format, layer_format.type, pixels);
  }
}

}  // namespace orv
