// Textures on the GPU: refreshed from their pixels, and read back into them.
#include <orv/core/log_mgr.h>
#include <orv/gpu/texture_data.h>

#include <algorithm>
#include <cstddef>

#include "render/opengl/renderer_opengl.h"
#include "render/opengl/texture_binding.h"
#include "render/opengl/texture_pixels.h"

namespace orv {

using namespace detail;

namespace {

/// Whether a stretch of a side lies within it.
bool is_stretch(int start, int length, unsigned int size) {
  return start >= 0 && length > 0 && static_cast<long long>(start) + length <= size;
}

/// Whether a stretch of a side takes no part of a block, where the texture has blocks.
bool has_whole_blocks(const TextureData& texture, int start, int length, unsigned int size) {
  constexpr int BLOCK = 4;
  if (texture.gpu_memory_size_compressed == 0) return true;
  const bool to_the_end = static_cast<long long>(start) + length == size;
  return start % BLOCK == 0 && (length % BLOCK == 0 || to_the_end);
}

/// Where a region of an image starts.
const void* region_start(const Image& image, const void* pixels, int x, int y) {
  const std::size_t index =
      static_cast<std::size_t>(x) + std::size_t{image.width} * static_cast<std::size_t>(y);
  const std::size_t pixel = gl_pixel_size(gl_texture_format(image.pixel_format));
  return static_cast<const unsigned char*>(pixels) + index * pixel;
}

}  // namespace

// ---- updates ----

bool RendererOpenGL::is_updatable(TextureData* texture, TEXTURE_TYPE type) {
  if (!texture || texture->type != type) return false;
  // Asked for and impossible: not to be asked for again at each binding.
  texture->gpu_update_needed = false;
  return texture->gl_texture_id != 0 && core_.glTexSubImage2D && !units_.bound.empty() &&
         gl_texture_format(texture->get_pixel_format()).is_valid() && has_possible_size(*texture);
}

bool RendererOpenGL::has_possible_size(const TextureData& texture) const {
  const Image& image = texture.get_main_image();
  const auto limit = static_cast<unsigned int>(std::max(max_texture_size_, 0));
  if (image.width > limit || image.height > limit) return false;
  return texture.type != TEXTURE_CUBE || image.width == image.height;
}

bool RendererOpenGL::is_specified_anew(TextureData* texture, bool own_pixels) {
  // What others specified is not known here and stays as it is.
  if (texture->gl_texture_borrowed || texture->uploaded_format == PF_UNKNOWN) return false;
  const Image& image = texture->get_main_image();
  const bool same = image.width == texture->uploaded_width &&
                    image.height == texture->uploaded_height &&
                    image.pixel_format == texture->uploaded_format;
  // Blocks of compressed textures are not written in part: with the whole image at hand all of it
  // is sent.
  if (same && !(own_pixels && texture->gpu_compression)) return false;
  if (image.width == 0 || image.height == 0) return false;
  specify_texture(texture, upload_pixels(image));
  core_.glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  return true;
}

void RendererOpenGL::refresh_mipmaps(const TextureData& texture) {
  if (!texture.gen_mipmaps || texture.mipmap_max_level <= 0 || !gl_.glGenerateMipmap) return;
  gl_.glGenerateMipmap(gl_texture_target(texture.type));
}

bool RendererOpenGL::texture_update_1d(TextureData* texture, int offset, int width) {
  if (!is_updatable(texture, TEXTURE_1D)) return false;
  const Image& image = texture->get_main_image();
  const void* pixels = upload_pixels(image);
  if (!pixels || !is_stretch(offset, width, image.width)) return false;
  bind_texture(units_.current, GL_TEXTURE_1D, texture->gl_texture_id);
  if (!is_specified_anew(texture, true)) {
    const GlPixelFormat format = gl_texture_format(image.pixel_format);
    core_.glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    core_.glTexSubImage1D(GL_TEXTURE_1D, 0, offset, width, format.format, format.type,
                          region_start(image, pixels, offset, 0));
  }
  refresh_mipmaps(*texture);
  return true;
}

bool RendererOpenGL::texture_update_2d(TextureData* texture, int x, int y, int width, int height,
                                       int flag) {
  if (!is_updatable(texture, TEXTURE_2D)) return false;
  const Image& image = texture->get_main_image();
  const void* pixels = upload_pixels(image);
  if (!pixels || !is_stretch(x, width, image.width) || !is_stretch(y, height, image.height)) {
    return false;
  }
  if (flag != 0) bind_texture(units_.current, GL_TEXTURE_2D, texture->gl_texture_id);
  if (!is_specified_anew(texture, true)) {
    const GlPixelFormat format = gl_texture_format(image.pixel_format);
    const bool is_partial = static_cast<unsigned int>(width) != image.width;
    core_.glPixelStorei(GL_UNPACK_ALIGNMENT, gl_row_alignment(image.width));
    if (is_partial) core_.glPixelStorei(GL_UNPACK_ROW_LENGTH, static_cast<GLint>(image.width));
    core_.glTexSubImage2D(GL_TEXTURE_2D, 0, x, y, width, height, format.format, format.type,
                          region_start(image, pixels, x, y));
    if (is_partial) core_.glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    core_.glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  }
  refresh_mipmaps(*texture);
  return true;
}

bool RendererOpenGL::texture_update_2d_v2(TextureData* texture, int x, int y, int width, int height,
                                          int flag, const void* pixels) {
  if (!is_updatable(texture, TEXTURE_2D) || !pixels) return false;
  const Image& image = texture->get_main_image();
  if (!is_stretch(x, width, image.width) || !is_stretch(y, height, image.height)) return false;
  if (!has_whole_blocks(*texture, x, width, image.width) ||
      !has_whole_blocks(*texture, y, height, image.height)) {
    LogMgr::get().tracef_debug("texture %s not updated: its blocks are written whole",
                               texture->texture_name);
    return false;
  }
  if (flag != 0) bind_texture(units_.current, GL_TEXTURE_2D, texture->gl_texture_id);
  is_specified_anew(texture, false);
  const GlPixelFormat format = gl_texture_format(image.pixel_format);
  core_.glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  core_.glTexSubImage2D(GL_TEXTURE_2D, 0, x, y, width, height, format.format, format.type, pixels);
  refresh_mipmaps(*texture);
  return true;
}

bool RendererOpenGL::texture_load_cube_all_faces(TextureData* texture) {
  if (!is_updatable(texture, TEXTURE_CUBE) || !texture->has_pixels()) return false;
  bind_texture(units_.current, GL_TEXTURE_CUBE_MAP, texture->gl_texture_id);
  if (!is_specified_anew(texture, true)) update_faces(*texture);
  refresh_mipmaps(*texture);
  return true;
}

void RendererOpenGL::update_faces(const TextureData& texture) {
  const Image& first = texture.cubemap_faces[0].image;
  core_.glPixelStorei(GL_UNPACK_ALIGNMENT, gl_row_alignment(first.width));
  for (unsigned int i = 0; i < 6; ++i) {
    const Image& face = texture.cubemap_faces[i].image;
    const GlPixelFormat format = gl_texture_format(face.pixel_format);
    const void* pixels = upload_pixels(face);
    if (!pixels || !format.is_valid() || !has_size_of(face, first)) continue;
    core_.glTexSubImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + i, 0, 0, 0,
                          static_cast<GLsizei>(face.width), static_cast<GLsizei>(face.height),
                          format.format, format.type, pixels);
  }
  core_.glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
}

// ---- reading ----

bool RendererOpenGL::texture_read_1d(TextureData* texture) {
  return read_texture(texture, TEXTURE_1D);
}

bool RendererOpenGL::texture_read_2d(TextureData* texture) {
  return read_texture(texture, TEXTURE_2D);
}

bool RendererOpenGL::read_texture(TextureData* texture, TEXTURE_TYPE type) {
  if (!texture || texture->type != type || texture->gl_texture_id == 0) return false;
  Image& image = texture->get_main_image();
  const GlPixelFormat format = gl_texture_format(image.pixel_format);
  // Pixels that a codec holds are not ours to write.
  void* store = image.u8_ptr;
  if (format.type == GL_FLOAT) store = image.f32_ptr;
  if (lacks(core_.glGetTexImage, "glGetTexImage") || !format.is_valid() || !store ||
      !upload_pixels(image))
    return false;
  const GLenum target = gl_texture_target(type);
  const TextureBinding binding(this, target, texture->gl_texture_id);
  GLint width = 0;
  GLint height = 1;
  core_.glGetTexLevelParameteriv(target, 0, GL_TEXTURE_WIDTH, &width);
  if (type == TEXTURE_2D) {
    core_.glGetTexLevelParameteriv(target, 0, GL_TEXTURE_HEIGHT, &height);
  }
  // OpenGL writes as much as it has.
  if (width < 0 || height < 0 || static_cast<unsigned int>(width) != image.width ||
      static_cast<unsigned int>(height) != image.height) {
    LogMgr::get().tracef_debug("texture %s not read: %dx%d on the GPU, %ux%u here",
                               texture->texture_name, width, height, image.width, image.height);
    return false;
  }
  core_.glPixelStorei(GL_PACK_ALIGNMENT, 1);
  core_.glGetTexImage(target, 0, format.format, format.type, store);
  return true;
}

}  // namespace orv
