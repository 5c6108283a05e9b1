/// @file
/// Plugins that draw text with outline fonts.
#pragma once

#include <orv/core/api.h>
#include <orv/core/plugin.h>
#include <orv/fwd.h>

namespace orv {

/// Sizes of a face at its present height, in pixels.
class ORV_API FtglFontMetrics {
 public:
  float ascender = 0.0f;     ///< from the base line up to the highest character
  float descender = 0.0f;    ///< from the base line down to the lowest, 0 or negative
  float line_height = 0.0f;  ///< from one base line to the next
};

/// Sizes of a character at the face's present height, in pixels, and its place in the atlas.
class ORV_API FtglGlyphMetrics {
 public:
  float advance = 0.0f;   ///< from this pen position to the next
  float offset_x = 0.0f;  ///< from the pen to the left edge of the picture
  float offset_y = 0.0f;  ///< from the base line up to the upper edge of the picture
  float width = 0.0f;     ///< of the picture, 0 for a space
  float height = 0.0f;    ///< of the picture
  float u0 = 0.0f;        ///< left edge in the atlas, 0 to 1
  float v0 = 0.0f;        ///< lower edge in the atlas, 0 to 1
  float u1 = 0.0f;        ///< right edge in the atlas, 0 to 1
  float v1 = 0.0f;        ///< upper edge in the atlas, 0 to 1
};

/// A plugin that draws text with FreeType: faces in any size, kerning and outlines, their
/// characters collected in an atlas texture. The library has none itself; a module fills every
/// operation.
///
/// A host makes a Font, loads a face for it and draws. All that the plugin knows of a Font it keeps
/// behind Font::set_ftgl_data(), which nobody else may touch then. free_face() frees it; it has to
/// be called before the Font ends, since a Font does not free what it does not know. terminate()
/// frees it for every Font that still lives.
///
/// Texts are UTF-8; a byte that is none stands for the character of its number. A line feed moves
/// the pen to the x where the text began and one line down. Characters that the face lacks are
/// drawn as its mark for missing ones. Units are pixels, x to the right and y up.
///
/// A null font, a font without a face, what a plugin cannot do, and other null pointers where not
/// told otherwise give false, 0 or null and change nothing. What takes a renderer belongs to the
/// renderer's thread; the rest may run on another one, one call a plugin at a time.
///
/// The order of the operations is a contract with modules built apart.
class ORV_API FreeTypeGLPluginInterface : public Plugin {
 public:
  /// A plugin of unknown type, for a module's class to name.
  FreeTypeGLPluginInterface() = default;
  ~FreeTypeGLPluginInterface() override;
  FreeTypeGLPluginInterface(const FreeTypeGLPluginInterface&) = delete;
  FreeTypeGLPluginInterface& operator=(const FreeTypeGLPluginInterface&) = delete;

  /// Starts the font library. A module may call that of Plugin to keep the flag. False when it
  /// cannot be started.
  bool initialize() override = 0;
  /// Frees the faces of all fonts, without their textures' copies on the GPU, and ends the font
  /// library.
  bool terminate() override = 0;
  /// Lets texts be drawn. False before initialize().
  bool start() override = 0;
  /// Lets no more text be drawn; faces stay.
  bool stop() override = 0;

  // ---- faces ----

  /// Reads the first face of a font file for a font, in place of the one before.
  /// @param pixel_height  from one base line to the next, above 0
  /// @return false, with the face before kept, for what cannot be read
  virtual bool load_face(Font* font, const char* filename, float pixel_height) = 0;
  /// The same from a file of `size` bytes in memory, which is copied.
  virtual bool load_face_from_memory(Font* font, const void* data, unsigned int size,
                                     float pixel_height) = 0;
  /// Frees face, atlas and queue of a font and sets its pointer to null. Without a renderer the
  /// copies on the GPU stay; so do those of a face or an atlas that another one replaces, which a
  /// host avoids by freeing the face first.
  virtual bool free_face(Renderer* renderer, Font* font) = 0;
  /// Another height, above 0, for all texts that come; atlas and queue are emptied.
  virtual bool set_pixel_height(Font* font, float pixel_height) = 0;
  /// The height, 0 without a face.
  virtual float get_pixel_height(Font* font) = 0;

  // ---- measuring ----

  /// Sizes of the face.
  virtual bool get_font_metrics(Font* font, FtglFontMetrics* metrics) = 0;
  /// Sizes of a character by its Unicode number. Its place in the atlas is 0 everywhere until it
  /// was cached. False when the face lacks it.
  virtual bool get_glyph_metrics(Font* font, unsigned int character, FtglGlyphMetrics* metrics) = 0;
  /// What is added to the advance of `left` when `right` follows, usually negative; 0 for pairs
  /// without, and while kerning is off.
  virtual float get_kerning(Font* font, unsigned int left, unsigned int right) = 0;
  /// Size of a text: its widest line, and its lines times their height. An empty text has none.
  /// Either pointer may be null.
  virtual bool measure_text(Font* font, const char* text, float* width, float* height) = 0;

  // ---- look ----

  /// RGBA, each 0 to 1, of the texts that come; opaque white at first.
  virtual bool set_color(Font* font, const vec4& color) = 0;
  /// Outline of the texts that come.
  /// @param thickness  pixels around the character, 0 for none as at first; below 0 draws the
  ///                   outline alone
  /// @param color      of the outline, RGBA
  virtual bool set_outline(Font* font, float thickness, const vec4& color) = 0;
  /// Whether pairs of characters are moved together; they are at first.
  virtual bool set_kerning(Font* font, bool state) = 0;

  // ---- atlas ----

  /// Makes an empty atlas in place of the one before, and empties the queue. Loading a face makes
  /// one of 512 x 512.
  /// @param width     pixels, 16 to 8192
  /// @param height    pixels, 16 to 8192
  /// @param channels  bytes of a pixel: 1 coverage, 3 coverage of subpixels, 4 colour
  virtual bool create_atlas(Font* font, unsigned int width, unsigned int height,
                            unsigned int channels) = 0;
  /// Draws the characters of a text into the atlas unless they are there. False, with as many
  /// drawn as fit, when it is full.
  virtual bool cache_glyphs(Font* font, const char* characters) = 0;
  /// Brings what was drawn into the atlas to its texture, which is made by the first call. False
  /// when the upload fails. With a null renderer the texture has the pixels and uploads them when
  /// it is bound.
  virtual bool upload_atlas(Renderer* renderer, Font* font) = 0;
  /// The atlas as a texture, the plugin's; null before upload_atlas().
  virtual Texture* get_atlas_texture(Font* font) = 0;

  // ---- texts ----

  /// Empties the queue of a font.
  virtual bool clear_text(Font* font) = 0;
  /// Adds a text to the queue, with the look of now; its characters are cached.
  /// @param pen  where the text begins, on its base line; receives where the next one would
  /// @return false, with pen and queue as they were, when the atlas is full
  virtual bool add_text(Font* font, vec2* pen, const char* text) = 0;
  /// Draws the queue with the font's absolute transform and keeps it. The atlas is uploaded and
  /// bound at unit 0; program and blending are the host's. True for an empty queue. False for a
  /// null renderer and before start().
  virtual bool render_text(Renderer* renderer, Font* font) = 0;
  /// Draws one text that begins at a point, beside the queue, as render_text() does.
  virtual bool draw_text(Renderer* renderer, Font* font, float x, float y, const char* text) = 0;
};

}  // namespace orv
