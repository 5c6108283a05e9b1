#include "render/opengl/gl_texture_enums.h"

#include <GL/glext.h>

#include <cstddef>
#include <cstring>

namespace orv::detail {
namespace {

constexpr GLenum RED_C = GL_COMPRESSED_RED;
constexpr GLenum RG_C = GL_COMPRESSED_RG;
constexpr GLenum RGB_C = GL_COMPRESSED_RGB;
constexpr GLenum RGBA_C = GL_COMPRESSED_RGBA;

// By pixel format.
constexpr GlPixelFormat FORMATS[] = {
    {},
    {GL_RGB, GL_RGB, GL_UNSIGNED_BYTE, RGB_C},
    {GL_RGB, GL_BGR, GL_UNSIGNED_BYTE, RGB_C},
    {GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE, RGBA_C},
    {GL_RGBA, GL_BGRA, GL_UNSIGNED_BYTE, RGBA_C},
    {GL_RGB32F, GL_RGB, GL_FLOAT, RGB_C},
    {GL_RGBA32F, GL_RGBA, GL_FLOAT, RGBA_C},
    {GL_R32F, GL_RED, GL_FLOAT, RED_C},
    {GL_RGB16F, GL_RGB, GL_FLOAT, RGB_C},
    {GL_RGBA16F, GL_RGBA, GL_FLOAT, RGBA_C},
    {GL_R16F, GL_RED, GL_FLOAT, RED_C},
    {GL_RED, GL_RED, GL_UNSIGNED_BYTE, RED_C},
    {GL_RG, GL_RG, GL_UNSIGNED_BYTE, RG_C},
    {GL_R32UI, GL_RED_INTEGER, GL_UNSIGNED_INT, 0, true},
    {GL_RG32UI, GL_RG_INTEGER, GL_UNSIGNED_INT, 0, true},
    {GL_RGBA32UI, GL_RGBA_INTEGER, GL_UNSIGNED_INT, 0, true},
    {GL_R32I, GL_RED_INTEGER, GL_INT, 0, true},
    {GL_RG32I, GL_RG_INTEGER, GL_INT, 0, true},
    {GL_RGBA32I, GL_RGBA_INTEGER, GL_INT, 0, true},
    {GL_R16UI, GL_RED_INTEGER, GL_UNSIGNED_SHORT, 0, true},
    {GL_RG16UI, GL_RG_INTEGER, GL_UNSIGNED_SHORT, 0, true},
    {GL_RGBA16UI, GL_RGBA_INTEGER, GL_UNSIGNED_SHORT, 0, true},
    {GL_R16I, GL_RED_INTEGER, GL_SHORT, 0, true},
    {GL_RG16I, GL_RG_INTEGER, GL_SHORT, 0, true},
    {GL_RGBA16I, GL_RGBA_INTEGER, GL_SHORT, 0, true},
    {GL_R8UI, GL_RED_INTEGER, GL_UNSIGNED_BYTE, 0, true},
    {GL_RG8UI, GL_RG_INTEGER, GL_UNSIGNED_BYTE, 0, true},
    {GL_RGBA8UI, GL_RGBA_INTEGER, GL_UNSIGNED_BYTE, 0, true},
    {GL_R8I, GL_RED_INTEGER, GL_BYTE, 0, true},
    {GL_RG8I, GL_RG_INTEGER, GL_BYTE, 0, true},
    {GL_RGBA8I, GL_RGBA_INTEGER, GL_BYTE, 0, true},
};
constexpr int NUM_FORMATS = static_cast<int>(sizeof(FORMATS) / sizeof(FORMATS[0]));

struct Compression {
  const char* name;
  GLenum format;
  GlCompressionGroup group;
};

constexpr Compression COMPRESSIONS[] = {
    {"COMPRESSED_RED", GL_COMPRESSED_RED, GlCompressionGroup::GENERIC},
    {"COMPRESSED_RG", GL_COMPRESSED_RG, GlCompressionGroup::GENERIC},
    {"COMPRESSED_RGB", GL_COMPRESSED_RGB, GlCompressionGroup::GENERIC},
    {"COMPRESSED_RGBA", GL_COMPRESSED_RGBA, GlCompressionGroup::GENERIC},
    {"RGB_S3TC_DXT1", GL_COMPRESSED_RGB_S3TC_DXT1_EXT, GlCompressionGroup::S3TC},
    {"RGBA_S3TC_DXT1", GL_COMPRESSED_RGBA_S3TC_DXT1_EXT, GlCompressionGroup::S3TC},
    {"RGBA_S3TC_DXT3", GL_COMPRESSED_RGBA_S3TC_DXT3_EXT, GlCompressionGroup::S3TC},
    {"RGBA_S3TC_DXT5", GL_COMPRESSED_RGBA_S3TC_DXT5_EXT, GlCompressionGroup::S3TC},
    {"RED_RGTC1", GL_COMPRESSED_RED_RGTC1, GlCompressionGroup::RGTC},
    {"SIGNED_RED_RGTC1", GL_COMPRESSED_SIGNED_RED_RGTC1, GlCompressionGroup::RGTC},
    {"RED_GREEN_RGTC2", GL_COMPRESSED_RG_RGTC2, GlCompressionGroup::RGTC},
    {"SIGNED_RED_GREEN_RGTC2", GL_COMPRESSED_SIGNED_RG_RGTC2, GlCompressionGroup::RGTC},
};
constexpr std::size_t MAX_COMPRESSION_NAME = 31;

}  // namespace

unsigned int gl_pixel_size(const GlPixelFormat& format) {
  unsigned int channels = 4;
  if (format.format == GL_RED || format.format == GL_RED_INTEGER) channels = 1;
  if (format.format == GL_RG || format.format == GL_RG_INTEGER) channels = 2;
  if (format.format == GL_RGB || format.format == GL_BGR) channels = 3;
  if (format.type == GL_UNSIGNED_BYTE || format.type == GL_BYTE) return channels;
  if (format.type == GL_UNSIGNED_SHORT || format.type == GL_SHORT) return channels * 2;
  return channels * 4;
}

GlPixelFormat gl_texture_format(PIXEL_FORMAT format) {
  const GlPixelFormat found = gl_target_format(format);
  return found.integer ? GlPixelFormat() : found;
}

GlPixelFormat gl_target_format(PIXEL_FORMAT format) {
  const int index = static_cast<int>(format);
  return index > 0 && index < NUM_FORMATS ? FORMATS[index] : GlPixelFormat();
}

GLenum gl_renderbuffer_format(const GlPixelFormat& format) {
  if (format.internal_format == GL_RGB) return GL_RGB8;
  if (format.internal_format == GL_RGBA) return GL_RGBA8;
  return format.internal_format;
}

GLenum gl_image_format(PIXEL_FORMAT format) {
  switch (format) {
    case PF_RGBA_U8:
    case PF_BGRA_U8:
      return GL_RGBA8;
    case PF_RG_U8:
      return GL_RG8;
    case PF_R_U8:
      return GL_R8;
    case PF_RGBA_F32:
      return GL_RGBA32F;
    case PF_R_F32:
      return GL_R32F;
    default:
      return GL_RGBA;
  }
}

GLenum gl_compressed_format(const char* name, GlCompressionGroup* group) {
  for (const Compression& row : COMPRESSIONS) {
    if (std::strncmp(name, row.name, MAX_COMPRESSION_NAME) != 0) continue;
    *group = row.group;
    return row.format;
  }
  return 0;
}

GLenum gl_texture_target(TEXTURE_TYPE type) {
  switch (type) {
    case TEXTURE_1D:
      return GL_TEXTURE_1D;
    case TEXTURE_3D:
      return GL_TEXTURE_3D;
    case TEXTURE_CUBE:
      return GL_TEXTURE_CUBE_MAP;
    case TEXTURE_2D_MULTISAMPLE:
      return GL_TEXTURE_2D_MULTISAMPLE;
    case TEXTURE_RECTANGLE:
      return GL_TEXTURE_RECTANGLE;
    case TEXTURE_2D_ARRAY:
      return GL_TEXTURE_2D_ARRAY;
    default:
      return GL_TEXTURE_2D;
  }
}

GLint gl_wrap(SAMPLER_ADDRESSING_MODE mode) {
  if (mode == SAMPLER_ADDRESSING_WRAP) return GL_REPEAT;
  return mode == SAMPLER_ADDRESSING_MIRROR ? GL_MIRRORED_REPEAT : GL_CLAMP_TO_EDGE;
}

GLint gl_mag_filter(SAMPLER_FILTERING_MODE mode) {
  return mode == SAMPLER_FILTERING_NEAREST ? GL_NEAREST : GL_LINEAR;
}

GLint gl_min_filter(SAMPLER_FILTERING_MODE mode, bool mipmapped) {
  if (!mipmapped) return gl_mag_filter(mode);
  if (mode == SAMPLER_FILTERING_NEAREST) return GL_NEAREST_MIPMAP_NEAREST;
  return mode == SAMPLER_FILTERING_TRILINEAR ? GL_LINEAR_MIPMAP_LINEAR : GL_LINEAR_MIPMAP_NEAREST;
}

GLint gl_row_alignment(unsigned int width) {
  GLint alignment = 8;
  while (width % static_cast<unsigned int>(alignment) != 0) alignment /= 2;
  return alignment;
}

int gl_texture_target_index(GLenum target) {
  for (int i = 0; i < NUM_GL_TEXTURE_TARGETS; ++i) {
    if (GL_TEXTURE_TARGETS[i] == target) return i;
  }
  return -1;
}

}  // namespace orv::detail
