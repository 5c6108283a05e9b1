#include <orv/gpu/texture_data.h>

#include <orv/core/utils.h>

#include <algorithm>
#include <bit>
#include <cstring>

namespace orv {
namespace {

/// Copies a text into a field, cut to what fits; the rest of the field is zeroed.
template <std::size_t SIZE>
void store_text(char (&field)[SIZE], const char* text) {
  std::memset(field, 0, SIZE);
  if (text) std::memcpy(field, text, strnlen(text, SIZE - 1));
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
  if (name[0] != '\0') gpu_compression = true;
  return true;
}

}  // namespace orv
