// Font: TrueType files.
#include <orv/core/log_mgr.h>
#include <orv/geometry/mesh.h>
#include <orv/geometry/mesh_data.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/render/renderer.h>
#include <orv/text/font.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "core/read_file.h"
#include "text/font_state.h"

namespace orv {

using detail::FIRST_BAKED;
using detail::NUM_BAKED;
using detail::TextMesh;

namespace {

/// Characters by which the mesh grows.
constexpr unsigned int SLACK = 512;

constexpr int MAX_SIDE = 32767;
constexpr std::int64_t MAX_AREA = std::int64_t{1} << 28;

bool is_good_bitmap(int width, int height) {
  if (width < 1 || width > MAX_SIDE || height < 1 || height > MAX_SIDE) return false;
  return std::int64_t{width} * height <= MAX_AREA;
}

/// Null, with the cause in `fault`, when it cannot be baked.
std::unique_ptr<BakedFont> bake_font(const unsigned char* data, std::size_t size,
                                     float pixel_height, int width, int height,
                                     const char** fault) {
  if (!is_good_bitmap(width, height)) {
    *fault = "a size of the bitmap out of range";
    return nullptr;
  }
  auto font = std::make_unique<BakedFont>();
  font->chars.resize(NUM_BAKED);
  font->pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  *fault = detail::bake_font_bitmap(data, size, pixel_height, font->pixels.data(), width, height,
                                    FIRST_BAKED, NUM_BAKED, font->chars.data())
               .fault;
  if (*fault) return nullptr;
  font->glyphs.prepare(font->chars.data(), width, height);
  font->pixel_height = pixel_height;
  font->bitmap_width = width;
  font->bitmap_height = height;
  return font;
}

bool load_baked_font(FontState& state, const char* subject, const void* data, std::size_t size,
                     float pixel_height, int width, int height) {
  const char* fault = nullptr;
  std::unique_ptr<BakedFont> font =
      bake_font(static_cast<const unsigned char*>(data), size, pixel_height, width, height, &fault);
  if (!font) {
    LogMgr::get().tracef_debug("font %s: %s", subject, fault);
    return false;
  }
  state.baked = std::move(font);
  return true;
}

/// The layer can take the bitmap as it stands.
bool is_layer_for(const BakedFont& font, Texture* texture, unsigned int layer) {
  const Image* image = texture->get_layer_image_ptr(layer);
  return image && image->pixel_format == PF_R_U8 &&
         image->width == static_cast<unsigned int>(font.bitmap_width) &&
         image->height == static_cast<unsigned int>(font.bitmap_height);
}

unsigned int width_of(const int* advances, std::string_view text) {
  std::int64_t width = 0;
  for (const char c : text) width += advances[static_cast<unsigned char>(c)];
  return static_cast<unsigned int>(std::clamp<std::int64_t>(width, 0, UINT_MAX));
}

}  // namespace

// ---- baking ----

bool Font::stbttf_load_font_texture(Renderer*, const char* filename, float pixel_height,
                                    int bitmap_width, int bitmap_height) {
  if (!filename) return false;
  std::vector<unsigned char> file;
  const char* fault = nullptr;
  if (!detail::read_whole_file(filename, file, &fault)) {
    LogMgr::get().tracef_debug("font %s: %s", filename, fault);
    return false;
  }
  return load_baked_font(*state_, filename, file.data(), file.size(), pixel_height, bitmap_width,
                         bitmap_height) &&
         stbtt_update_glyph_sizes();
}

bool Font::stbttf_load_font_texture_from_memory(Renderer*, const void* data, unsigned int size,
                                                float pixel_height, int bitmap_width,
                                                int bitmap_height) {
  return data && size != 0 &&
         load_baked_font(*state_, get_name(), data, size, pixel_height, bitmap_width,
                         bitmap_height) &&
         stbtt_update_glyph_sizes();
}

// ---- texture ----

bool Font::stbttf_build_font_texture(Renderer* renderer, unsigned int texture_unit) {
  BakedFont* font = state_->baked.get();
  if (!renderer || !font || font->pixels.empty()) return false;
  const std::vector<unsigned char> pixels = std::move(font->pixels);
  font->pixels.clear();
  Texture* texture = TextureMgr::get()->create_texture_2d_from_raw_memory(
      pixels.data(), static_cast<unsigned int>(font->bitmap_width),
      static_cast<unsigned int>(font->bitmap_height), PF_R_U8);
  if (!texture) return false;
  texture->get_data_ptr()->gen_mipmaps = false;
  state_->baked_texture.take(renderer, texture);
  return texture->upload(renderer, texture_unit, false);
}

bool Font::stbttf_add_layer_to_texture_2d_array(Renderer* renderer, Texture* texture,
                                                unsigned int layer) {
  BakedFont* font = state_->baked.get();
  if (!renderer || !texture || !font || font->pixels.empty()) return false;
  if (!is_layer_for(*font, texture, layer)) return false;
  const std::vector<unsigned char> pixels = std::move(font->pixels);
  font->pixels.clear();
  return TextureMgr::get()->load_texture_2d_array_layer_from_raw_memory(texture, layer,
                                                                        pixels.data());
}

bool Font::stbttf_release_font_texture(Renderer* renderer) {
  return state_->baked_texture.release(renderer);
}

Texture* Font::stbttf_get_font_texture() const { return state_->baked_texture.get(); }

// ---- vertices ----

bool Font::stbttf_alloc_vb(Renderer* renderer, unsigned int num_chars) {
  TextMesh& text = state_->stbtt_mesh;
  if (num_chars <= text.capacity()) return true;
  if (!renderer || !state_->baked || !text.reserve(renderer, num_chars, SLACK)) return false;
  Mesh* mesh = text.mesh();
  mesh->get_data()->set_vertex_buffer_usage(BUFFER_USAGE_DYNAMIC_DRAW);
  switch (renderer->get_api_type()) {
    case ORV_API3D_OPENGL:
      mesh->set_use_generic_vertex_attribs_state(true, nullptr);
      mesh->set_use_fixed_mvp_matrices_state(false, nullptr);
      break;
    case ORV_API3D_VULKAN:
      renderer->geometry_vbo_create(nullptr, mesh->get_data());
      break;
    default:
      break;
  }
  return true;
}

bool Font::stbttf_free_vb(Renderer* renderer) {
  if (!renderer) return false;
  state_->stbtt_mesh.free(renderer);
  return true;
}

bool Font::stbtt_update_vb(Renderer* renderer, bool use_gpu_map) {
  if (!renderer) return false;
  const unsigned int total = state_->queue.sum_chars();
  if (total == 0) return true;
  stbttf_alloc_vb(renderer, total);
  const BakedFont* font = state_->baked.get();
  if (!font) return false;
  const auto write = [&](float* rows) {
    write_baked_rows(font->glyphs, state_->scale, state_->queue, rows);
  };
  return state_->stbtt_mesh.update(renderer, total,
                                   use_gpu_map ? TextMesh::REQUIRED : TextMesh::OFF, write);
}

bool Font::stbtt_render_vb(Renderer* renderer) {
  if (!renderer || state_->queue.count() == 0) return false;
  return state_->stbtt_mesh.render(renderer, get_absolute_transform());
}

// ---- widths ----

bool Font::stbtt_update_glyph_sizes() {
  if (!state_->baked) return false;
  for (int i = 0; i < NUM_BAKED; ++i) {
    const float advance = state_->baked->chars[static_cast<std::size_t>(i)].xadvance;
    state_->glyph_advance[FIRST_BAKED + i] = static_cast<int>(advance);
  }
  return true;
}

unsigned int Font::stbttf_get_string_width_v1(const char* text) const {
  return text ? width_of(state_->glyph_advance, text) : 0;
}

unsigned int Font::stbttf_get_string_width_v2(unsigned int item_index) {
  detail::TextQueue& queue = state_->queue;
  if (item_index >= queue.count()) return 0;
  detail::TextItem& item = queue.item(item_index);
  return item.width = width_of(state_->glyph_advance, queue.text(item));
}

}  // namespace orv
