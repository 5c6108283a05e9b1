// Font: BMFont files.
#include <orv/core/log_mgr.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/render/renderer.h>
#include <orv/text/font.h>

#include <vector>

#include "core/read_file.h"
#include "text/font_state.h"

namespace orv {

using detail::TextMesh;

namespace {

/// Characters by which the mesh grows.
constexpr unsigned int SLACK = 1000;

/// A new texture filled by `load(manager, texture)` and uploaded, in place of the one before.
template <class Load>
bool load_charset_texture(FontTexture& held, Renderer* renderer, bool mipmaps, Load load) {
  TextureMgr& manager = *TextureMgr::get();
  held.release(renderer);
  Texture* texture = manager.create_texture();
  TextureData* data = load(manager, texture) ? texture->get_data_ptr() : nullptr;
  if (!data) {
    manager.release_texture(renderer, texture, nullptr);
    return false;
  }
  data->type = TEXTURE_2D;
  data->gen_mipmaps = mipmaps;
  held.take(renderer, texture);
  return !renderer || texture->upload(renderer, 0, mipmaps);
}

}  // namespace

// ---- charset ----

namespace {

bool load_charset(FontState& state, const char* subject, const char* xml) {
  const char* fault = nullptr;
  std::unique_ptr<detail::Charset> charset = detail::read_charset(xml, &fault);
  if (!charset) {
    LogMgr::get().tracef_debug("font %s: %s", subject, fault);
    return false;
  }
  state.charset = std::move(charset);
  state.charset_glyphs.prepare(*state.charset);
  return true;
}

}  // namespace

bool Font::bm_load_charset(const char* filename) {
  if (!filename) return false;
  std::vector<unsigned char> file;
  const char* fault = nullptr;
  if (!detail::read_whole_file(filename, file, &fault)) {
    LogMgr::get().tracef_debug("font %s: %s", filename, fault);
    return false;
  }
  file.push_back(0);
  return load_charset(*state_, filename, reinterpret_cast<const char*>(file.data()));
}

bool Font::bm_load_charset_from_memory(const char* xml) {
  return xml && load_charset(*state_, get_name(), xml);
}

const char* Font::bm_get_charset_image_filename() const {
  return state_->charset ? state_->charset->image_filename : nullptr;
}

// ---- page image ----

bool Font::bm_load_charset_texture(Renderer* renderer, const char* filename) {
  return bm_load_charset_texture_v2(renderer, filename, PF_RGB_U8, false);
}

bool Font::bm_load_charset_texture_v2(Renderer* renderer, const char* filename, PIXEL_FORMAT format,
                                      bool mipmaps) {
  if (!filename) return false;
  return load_charset_texture(
      state_->charset_texture, renderer, mipmaps, [&](TextureMgr& manager, Texture* texture) {
        return manager.load_image_from_file(texture, filename, false, format);
      });
}

bool Font::bm_load_charset_texture_from_memory(Renderer* renderer, const void* data,
                                               unsigned int size) {
  return bm_load_charset_texture_from_memory_v2(renderer, data, size, PF_RGB_U8, false);
}

bool Font::bm_load_charset_texture_from_memory_v2(Renderer* renderer, const void* data,
                                                  unsigned int size, PIXEL_FORMAT format,
                                                  bool mipmaps) {
  if (!data || size == 0) return false;
  // Codecs read what they take as bytes that may be written.
  auto* bytes = const_cast<unsigned char*>(static_cast<const unsigned char*>(data));
  return load_charset_texture(
      state_->charset_texture, renderer, mipmaps, [&](TextureMgr& manager, Texture* texture) {
        return manager.load_texture_2d_from_memory(texture, bytes, size, false, format);
      });
}

bool Font::bm_release_charset_texture(Renderer* renderer) {
  return state_->charset_texture.release(renderer);
}

Texture* Font::bm_get_charset_texture() const { return state_->charset_texture.get(); }

// ---- vertices ----

void Font::bm_set_scale(float scale) { state_->scale = scale; }

float Font::bm_get_scale() const { return state_->scale; }

bool Font::bm_alloc_vb(Renderer* renderer, unsigned int num_chars) {
  if (num_chars <= state_->bm_mesh.capacity()) return true;
  if (!renderer || !state_->charset_texture.get() || !state_->charset) return false;
  return state_->bm_mesh.reserve(renderer, num_chars, SLACK);
}

bool Font::bm_free_vb(Renderer* renderer) {
  if (!renderer) return false;
  state_->bm_mesh.free(renderer);
  return true;
}

bool Font::bm_update_vb(Renderer* renderer, bool use_gpu_map) {
  if (!renderer) return false;
  if (state_->queue.count() == 0) return true;
  const unsigned int total = state_->queue.sum_chars();
  bm_alloc_vb(renderer, total);
  if (!state_->charset) return false;
  const float space = static_cast<float>(state_->charset->spacing[0]) * state_->scale;
  const auto write = [&](float* rows) {
    write_charset_rows(state_->charset_glyphs, state_->scale, space, state_->queue, rows);
  };
  return state_->bm_mesh.update(renderer, total,
                                use_gpu_map ? TextMesh::WHERE_POSSIBLE : TextMesh::OFF, write);
}

bool Font::bm_render_vb(Renderer* renderer) {
  if (!renderer || state_->queue.count() == 0) return false;
  return state_->bm_mesh.render(renderer, get_absolute_transform());
}

}  // namespace orv
