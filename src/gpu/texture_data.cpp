#include <orv/gpu/texture_data.h>

#include <orv/core/utils.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#include "image/image_access.h"

namespace orv {
namespace {

/// Bytes that an upload reads of an image; the most there can be where that is no number.
std::size_t pixel_bytes(const Image& image) {
  const std::size_t pixel_size = detail::readable_format_info(image.pixel_format).size;
  std::size_t bytes = 0;
  return detail::block_size(detail::pixel_count(image), 1, pixel_size, &bytes)
             ? bytes
             : std::numeric_limits<std::size_t>::max();
}

/// Copies a text, which may be the field's own, into a field, cut to what fits; the rest of the
/// field is zeroed.
template <std::size_t SIZE>
void store_text(char (&field)[SIZE], const char* text) {
  const std::size_t length = text ? strnlen(text, SIZE - 1) : 0;
  if (length > 0) std::memmove(field, text, length);
  std::memset(field + length, 0, SIZE - length);
}

}  // namespace

TextureData::TextureData() : id(utils::gen_id()) {}

TextureData::~TextureData() = default;

void TextureData::set_texture_name_and_id(const char* name, int node_id) {
  store_text(texture_name, name);
  texture_id = node_id;
}

// ---- pixels ----

const Image& TextureData::get_main_image() const {
  if (const Image* layer = layers.get_layer(0)) return *layer;
  return type == TEXTURE_CUBE ? cubemap_faces[0].image : image;
}

Image& TextureData::get_main_image() {
  return const_cast<Image&>(static_cast<const TextureData*>(this)->get_main_image());
}

void* TextureData::get_pixmap_ptr() const {
  const Image& main = get_main_image();
  switch (static_cast<int>(main.pixel_format)) {
    case PF_RGB_U8:
    case PF_BGR_U8:
    case PF_RGBA_U8:
    case PF_BGRA_U8:
    case PF_R_U8:
    case PF_RG_U8:
      return main.get_u8_ptr();
    case PF_RGB_F32:
    case PF_RGBA_F32:
    case PF_R_F32:
    case PF_RGB_F16:
    case PF_RGBA_F16:
    case PF_R_F16:
      return main.get_f32_ptr();
    default:
      return nullptr;
  }
}

bool TextureData::has_pixels() const {
  const Image& main = get_main_image();
  return main.width > 0 && main.height > 0 && main.has_pixels();
}

Image* TextureData::get_cubemap_image_ptr(CUBEMAP_FACE face) {
  const int index = static_cast<int>(face);
  return index >= 0 && index < 6 ? &cubemap_faces[index].image : nullptr;
}

bool TextureData::update_pixel_format(PIXEL_FORMAT target) {
  if (type == TEXTURE_CUBE) {
    for (TextureCubeMapFace& face : cubemap_faces) face.image.update_pixel_format(target);
    return true;
  }
  if (layers.num_layers == 0) return image.update_pixel_format(target);
  bool is_changed = false;
  for (unsigned int i = 0; i < layers.num_layers; ++i) {
    is_changed |= layers.layers[i].update_pixel_format(target);
  }
  return is_changed;
}

void TextureData::set_image_size(unsigned int width, unsigned int height, unsigned int depth,
                                 PIXEL_FORMAT format) {
  const std::size_t bytes_before = pixel_bytes(image);
  image.create(width, height, depth, format, false, false);
  const std::size_t bytes = pixel_bytes(image);
  // How far pixels handed in reach is known by nothing but the size they were for.
  const bool is_grown = bytes > bytes_before;
  if (is_grown) image.codec_pixels = nullptr;
  const auto is_short = [&](std::size_t capacity) {
    return capacity == 0 ? is_grown : capacity < bytes;
  };
  if (image.u8_ptr && is_short(image.get_u8_capacity())) image._delete_u8_ptr();
  if (image.f32_ptr && is_short(image.get_f32_capacity())) image._delete_f32_ptr();
}

void TextureData::cleanup() {
  image.cleanup();
  cleanup_cubemap_data();
  layers.cleanup();
}

void TextureData::cleanup_cubemap_data() {
  for (TextureCubeMapFace& face : cubemap_faces) face.image.cleanup();
}

// ---- state ----

void TextureData::set_mipmap_levels(int base_level, int max_level) {
  mipmap_base_level = base_level;
  mipmap_max_level = max_level;
}

unsigned int TextureData::get_max_number_of_mipmaps() const {
  return static_cast<unsigned int>(std::bit_width(std::max(get_width(), get_height())));
}

bool TextureData::set_compression_format(const char* name) {
  if (!name) return false;
  store_text(compression_format, name);
  if (compression_format[0] != '\0') gpu_compression = true;
  return true;
}

}  // namespace orv
