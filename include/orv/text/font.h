/// @file
/// Text.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/image/pixel_format.h>
#include <orv/scene/object.h>

namespace orv {

struct FontState;

/// Draws text in three unrelated ways.
///
/// - Bitmap fonts: an AngelCode BMFont file in its XML form with one page image (`bm_*`).
/// - TrueType fonts: a file baked into a bitmap of one byte a pixel (`stbttf_*`, `stbtt_*`).
/// - Fonts of the window system, drawn by the renderer (`bitmap_font_win32_*`).
///
/// The first two share a queue of texts: fill it with `bm_draw_*`, turn it into vertices with
/// bm_update_vb or stbtt_update_vb, draw it with bm_render_vb or stbtt_render_vb, and empty it with
/// bm_draw_reset. All texts of the queue are one draw of one mesh, with the font's own transform.
/// A unit is a pixel of the page image or of the baked bitmap, so an orthographic camera of the
/// window's size shows them one to one.
///
/// Neither of the two binds anything: bind the texture (bm_get_charset_texture,
/// stbttf_get_font_texture), and a program or the fixed pipeline's texturing, and switch blending
/// on, before drawing. Vertices have a position, texture coordinates and the colour of their text.
///
/// Texts are bytes, one character each: codes 0 to 255 in a bitmap font, 32 to 254 in a TrueType
/// font. A line feed is a character like any other.
///
/// _cleanup with the renderer frees what the font holds on the GPU. Without one, textures and
/// buffers stay until the font ends: textures go back to their manager then, buffers are leaked.
///
/// All belongs to the rendering thread; nothing takes a lock. Null arguments give false.
class ORV_API Font : public Object {
 public:
  /// Texts that the queue holds.
  static constexpr unsigned int MAX_STRINGS = 512;

  /// A font with a record, an empty queue, and nothing loaded.
  Font();
  /// Frees what the font holds in main memory.
  ~Font() override;
  Font(const Font&) = delete;
  Font& operator=(const Font&) = delete;

  /// Frees the fonts, the textures, the meshes and the window-system font, and removes all
  /// materials. Without a renderer the textures, the meshes and the window-system font stay. True.
  bool _cleanup(Renderer* renderer) override;
  /// The id in the font's record, 0 without one.
  int get_renderer_id() override;
  /// Also told to the mesh of the bitmap font.
  void set_opengl_2_3_rendering_states(bool legacy, Node* node) override;
  /// Also scales the vertices of the bitmap font as they were written last.
  void scale_vertices_position(const vec4& factors, Node* node) override;

  // ---- record ----

  /// The record of the window-system font, owned by the font; null after free_font_data.
  FontData* get_font_data() const;
  /// Frees the record. A font of the window system has to be cleaned up before. False when it is
  /// gone already.
  bool free_font_data();
  /// Rectangle in which the text is placed, in pixels, kept in the record. False without it.
  bool set_viewport_info(int x, int y, int width, int height);

  /// @{
  /// Kept for the host, which names its wish at each update itself; false at first.
  void map_gpu_memory_for_update(bool state);
  bool get_map_gpu_memory_for_update() const;
  /// @}

  /// @{
  /// A pointer of a plugin that draws text; never read here.
  void* get_ftgl_data() const;
  void set_ftgl_data(void* data);
  /// @}

  // ---- queue of texts ----

  /// Appends a text at (x, -y, 0): y runs downwards. Colours are RGBA, usually 0 to 1. False for
  /// null and when the queue is full, with MAX_STRINGS texts or 2 GiB of them. So are all of these.
  bool bm_draw_text_2d(int x, int y, float r, float g, float b, float a, const char* text);
  /// The same with a format as of printf, which gives at most 511 bytes.
  bool bm_draw_text_2df(int x, int y, float r, float g, float b, float a, const char* format, ...)
      ORV_PRINTF_LIKE(8, 9);
  /// With `new_line` false a TrueType text goes on where the text before it ended, whatever x and y
  /// are, which makes lines of several colours. Bitmap fonts take no notice.
  bool bm_draw_text_2d_v2(int x, int y, float r, float g, float b, float a, bool new_line,
                          const char* text);
  /// The same with a format, at most 511 bytes.
  bool bm_draw_text_2df_v2(int x, int y, float r, float g, float b, float a, bool new_line,
                           const char* format, ...) ORV_PRINTF_LIKE(9, 10);
  /// At (x, y, z) as given: y runs upwards.
  bool bm_draw_text_3d(float x, float y, float z, float r, float g, float b, float a,
                       const char* text);
  /// The same with a format, at most 511 bytes.
  bool bm_draw_text_3df(float x, float y, float z, float r, float g, float b, float a,
                        const char* format, ...) ORV_PRINTF_LIKE(9, 10);
  /// Codes up to 255 are taken as they are, others as '?'; at most 255 characters.
  bool bm_draw_wtext_2d(int x, int y, float r, float g, float b, float a, const wchar_t* text);
  /// The same with a format as of wprintf.
  bool bm_draw_wtext_2df(int x, int y, float r, float g, float b, float a, const wchar_t* format,
                         ...);
  /// Empties the queue.
  void bm_draw_reset();
  /// Texts in the queue.
  unsigned int bm_get_num_strings() const;
  /// Characters of all texts in the queue.
  unsigned int bm_get_num_chars();

  // ---- bitmap fonts ----

  /// Reads a BMFont file, of which the characters 0 to 255 and the first page count. Negative
  /// offsets become large ones. False, with the font read before kept, for what is no XML.
  bool bm_load_charset(const char* filename);
  /// The same from a text in memory that ends with a zero.
  bool bm_load_charset_from_memory(const char* xml);

  /// Loads the page image as PF_RGB_U8 without mipmaps; see bm_load_charset_texture_v2.
  bool bm_load_charset_texture(Renderer* renderer, const char* filename);
  /// Loads the page image in place of the one before, and uploads it when there is a renderer.
  /// Texture coordinates run upwards: an image whose first row is the upper one, as the library's
  /// own codec gives it, has to be turned with `bm_get_charset_texture()->flip_vertical()`, before
  /// or after the upload.
  /// @param mipmaps  makes mipmaps
  /// @return false when it cannot be read, without a texture then, and when the upload fails
  bool bm_load_charset_texture_v2(Renderer* renderer, const char* filename, PIXEL_FORMAT format,
                                  bool mipmaps);
  /// @{
  /// The same from an encoded image in memory of `size` bytes.
  bool bm_load_charset_texture_from_memory(Renderer* renderer, const void* data, unsigned int size);
  bool bm_load_charset_texture_from_memory_v2(Renderer* renderer, const void* data,
                                              unsigned int size, PIXEL_FORMAT format, bool mipmaps);
  /// @}
  /// Lets go of the page image, which ends unless others hold it. Without a renderer its copy on
  /// the GPU stays. False without a page image.
  bool bm_release_charset_texture(Renderer* renderer);
  /// Name of the page image in the charset, without a folder; null without a charset.
  const char* bm_get_charset_image_filename() const;
  /// The page image, null for none; borrowed.
  Texture* bm_get_charset_texture() const;

  /// Scale of both kinds of fonts, 1 at first; counts at the next update.
  void bm_set_scale(float scale);
  /// The scale.
  float bm_get_scale() const;

  /// Makes room for the vertices of `num_chars` characters, in steps of 1000. False without a
  /// renderer, a charset or a page image, and when memory is short; true where there is room.
  bool bm_alloc_vb(Renderer* renderer, unsigned int num_chars);
  /// Frees the vertices and their buffer. False without a renderer.
  bool bm_free_vb(Renderer* renderer);
  /// Writes the vertices of all texts in the queue, with room for them made first. True for an
  /// empty queue, of which nothing is written.
  /// @param use_gpu_map  write to the mapped buffer where that is possible; a buffer is there after
  ///                     the first drawing
  bool bm_update_vb(Renderer* renderer, bool use_gpu_map);
  /// Draws what was written last. False when there is nothing to draw.
  bool bm_render_vb(Renderer* renderer);

  // ---- TrueType fonts ----

  /// Bakes the characters 32 to 255 of a TrueType file into a bitmap, in place of the font before.
  /// Characters that do not fit are left out.
  /// @param renderer       not used, may be null
  /// @param pixel_height   from the highest ascender to the lowest descender, up to 4096
  /// @param bitmap_width   1 to 32767; width * height is at most 2^28
  /// @return false, with the font before kept, for a file that is no sound font, for outlines that
  ///         would take too long to draw, and for sizes out of range
  bool stbttf_load_font_texture(Renderer* renderer, const char* filename, float pixel_height,
                                int bitmap_width, int bitmap_height);
  /// The same from a file in memory, which is not kept.
  bool stbttf_load_font_texture_from_memory(Renderer* renderer, const void* data, unsigned int size,
                                            float pixel_height, int bitmap_width,
                                            int bitmap_height);
  /// Turns the bitmap into a texture of one channel, without mipmaps, and uploads it at a texture
  /// unit. A bitmap is used once: false when it is gone. False also when the upload fails.
  bool stbttf_build_font_texture(Renderer* renderer, unsigned int texture_unit);
  /// Copies the bitmap into a layer of an array texture, which must be of its size and PF_R_U8, and
  /// which is sent to the GPU when it is bound next; the bitmap is gone then.
  bool stbttf_add_layer_to_texture_2d_array(Renderer* renderer, Texture* texture,
                                            unsigned int layer);
  /// Lets go of the texture as bm_release_charset_texture does. False without one.
  bool stbttf_release_font_texture(Renderer* renderer);
  /// The texture, null for none; borrowed.
  Texture* stbttf_get_font_texture() const;

  /// As bm_alloc_vb, in steps of 512, for a font that was baked.
  bool stbttf_alloc_vb(Renderer* renderer, unsigned int num_chars);
  /// As bm_free_vb.
  bool stbttf_free_vb(Renderer* renderer);
  /// As bm_update_vb. Where the buffer should be mapped and cannot be, nothing is written and the
  /// result is false. The vertices of characters outside of 32 to 254 keep what they were before.
  bool stbtt_update_vb(Renderer* renderer, bool use_gpu_map);
  /// As bm_render_vb.
  bool stbtt_render_vb(Renderer* renderer);

  /// Takes the advances of the characters, cut to whole pixels, from the baked ones, as loading
  /// does. False without a baked font.
  bool stbtt_update_glyph_sizes();
  /// Width of a text in pixels, without the scale; 0 for null.
  unsigned int stbttf_get_string_width_v1(const char* text) const;
  /// Width of a text of the queue, which is also stored with it; 0 past its end.
  unsigned int stbttf_get_string_width_v2(unsigned int item_index);

  // ---- fonts of the window system ----

  /// Makes a font of this name, of which 127 bytes count and null or "" stand for "Arial", and of
  /// this height in pixels. False in core profile contexts, which cannot draw it.
  bool bitmap_font_win32_create(Renderer* renderer, RenderWindow* window, const char* name,
                                int height);
  /// Draws `length` bytes at (x, y), under the fixed pipeline's matrices.
  bool bitmap_font_win32_render(Renderer* renderer, RenderWindow* window, int x, int y, float r,
                                float g, float b, float a, const char* text, unsigned int length);
  /// The same with a format, at most 4095 bytes.
  bool bitmap_font_win32_renderf(Renderer* renderer, RenderWindow* window, int x, int y, float r,
                                 float g, float b, float a, const char* format, ...)
      ORV_PRINTF_LIKE(10, 11);

 private:
  FontState* state_;
};

}  // namespace orv
