/// @file
/// Private block of Font.
#pragma once

#include <orv/fwd.h>
#include <orv/text/font_data.h>

#include <memory>
#include <vector>

#include "text/text_mesh.h"
#include "text/text_queue.h"
#include "text/text_rows.h"

namespace orv {

/// A texture of the manager's list on which the font holds a reference of its own.
class FontTexture {
 public:
  FontTexture() = default;
  /// Gives up the reference. The manager, which has the renderer, ends the texture at its stop.
  ~FontTexture();
  FontTexture(const FontTexture&) = delete;
  FontTexture& operator=(const FontTexture&) = delete;

  Texture* get() const { return texture_; }
  /// Takes a texture in place of the one before, which is released.
  void take(Renderer* renderer, Texture* texture);
  /// False without a texture.
  bool release(Renderer* renderer);

 private:
  Texture* texture_ = nullptr;
};

/// The characters of a TrueType font and the bitmap that they were drawn to.
struct BakedFont {
  std::vector<detail::BakedChar> chars;
  std::vector<unsigned char> pixels;  ///< empty once used
  detail::BakedGlyphs glyphs;
  float pixel_height = 0;
  int bitmap_width = 0;
  int bitmap_height = 0;
};

struct FontState {
  std::unique_ptr<FontData> font_data = std::make_unique<FontData>();
  detail::TextQueue queue;
  void* ftgl_data = nullptr;
  bool map_gpu_memory = false;
  float scale = 1;

  std::unique_ptr<detail::Charset> charset;
  detail::CharsetGlyphs charset_glyphs;
  FontTexture charset_texture;
  detail::TextMesh bm_mesh;

  std::unique_ptr<BakedFont> baked;
  int glyph_advance[256] = {};  ///< whole pixels, by character code
  FontTexture baked_texture;
  detail::TextMesh stbtt_mesh;
};

}  // namespace orv
