#include <orv/text/font.h>

#include <orv/geometry/mesh.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/render/render_window.h>
#include <orv/render/renderer.h>

#include <cstdarg>
#include <cstring>

#include "core/format_message.h"
#include "text/font_state.h"

namespace orv {

// ---- textures ----

FontTexture::~FontTexture() {
  if (!texture_) return;
  texture_->remove_ref();
  if (texture_->get_ref() <= 0) TextureMgr::get()->release_texture(nullptr, texture_, nullptr);
}

void FontTexture::take(Renderer* renderer, Texture* texture) {
  release(renderer);
  texture_ = texture;
  if (texture_) texture_->add_ref();
}

bool FontTexture::release(Renderer* renderer) {
  if (!texture_) return false;
  Texture* texture = texture_;
  texture_ = nullptr;
  texture->remove_ref();
  TextureMgr& manager = *TextureMgr::get();
  // The reference that is left is the manager's, unless that gave the texture up before.
  const int others = manager.has_resource(texture) ? 1 : 0;
  if (texture->get_ref() <= others) manager.release_texture(renderer, texture, nullptr);
  return true;
}

// ---- life ----

Font::Font() : state_(new FontState) { set_type(NODE_TYPE_FONT); }

Font::~Font() { delete state_; }

bool Font::_cleanup(Renderer* renderer) {
  if (renderer) {
    if (state_->font_data) renderer->bitmap_font_destroy(state_->font_data.get());
    bm_release_charset_texture(renderer);
    bm_free_vb(renderer);
    stbttf_release_font_texture(renderer);
    stbttf_free_vb(renderer);
  }
  state_->charset.reset();
  state_->baked.reset();
  return Object::_cleanup(renderer);
}

int Font::get_renderer_id() { return state_->font_data ? state_->font_data->renderer_id : 0; }

void Font::set_opengl_2_3_rendering_states(bool legacy, Node* node) {
  if (Mesh* mesh = state_->bm_mesh.mesh()) mesh->set_opengl_2_3_rendering_states(legacy, nullptr);
  Object::set_opengl_2_3_rendering_states(legacy, node);
}

void Font::scale_vertices_position(const vec4& factors, Node* node) {
  if (Mesh* mesh = state_->bm_mesh.mesh()) mesh->scale_vertices_position(factors, nullptr);
  Object::scale_vertices_position(factors, node);
}

// ---- record ----

FontData* Font::get_font_data() const { return state_->font_data.get(); }

bool Font::free_font_data() {
  if (!state_->font_data) return false;
  state_->font_data.reset();
  return true;
}

bool Font::set_viewport_info(int x, int y, int width, int height) {
  FontData* data = state_->font_data.get();
  if (!data) return false;
  data->viewport_x = x;
  data->viewport_y = y;
  data->viewport_width = width;
  data->viewport_height = height;
  return true;
}

void Font::map_gpu_memory_for_update(bool state) { state_->map_gpu_memory = state; }

bool Font::get_map_gpu_memory_for_update() const { return state_->map_gpu_memory; }

void* Font::get_ftgl_data() const { return state_->ftgl_data; }

void Font::set_ftgl_data(void* data) { state_->ftgl_data = data; }

// ---- fonts of the window system ----

bool Font::bitmap_font_win32_create(Renderer* renderer, RenderWindow* window, const char* name,
                                    int height) {
  FontData* data = state_->font_data.get();
  if (!renderer || !window || !data) return false;
  std::memset(data->font_name, 0, sizeof(data->font_name));
  if (name) std::memcpy(data->font_name, name, strnlen(name, sizeof(data->font_name) - 1));
  data->height = height;
  data->window_handle = window->native_handle;
  return renderer->bitmap_font_create(data);
}

bool Font::bitmap_font_win32_render(Renderer* renderer, RenderWindow* window, int x, int y, float r,
                                    float g, float b, float a, const char* text,
                                    unsigned int length) {
  if (!renderer || !window || !text || !state_->font_data) return false;
  return renderer->bitmap_font_render(state_->font_data.get(), x, y, r, g, b, a, text, length);
}

bool Font::bitmap_font_win32_renderf(Renderer* renderer, RenderWindow* window, int x, int y,
                                     float r, float g, float b, float a, const char* format, ...) {
  if (!format) return false;
  char text[4096];
  va_list arguments;
  va_start(arguments, format);
  format_message(text, sizeof(text), format, arguments);
  va_end(arguments);
  return bitmap_font_win32_render(renderer, window, x, y, r, g, b, a, text,
                                  static_cast<unsigned int>(std::strlen(text)));
}

}  // namespace orv
