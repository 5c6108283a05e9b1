/// @file
/// A block of pixels in main memory.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/image/pixel_format.h>

#include <cstddef>

namespace orv {

/// A block of pixels with its width, height, depth and pixel format. Image codecs fill one,
/// textures take their pixels from it, and client code edits pixels through it.
///
/// Pixels are tightly packed: rows in order, no padding, interleaved channels. Pixel (x, y) has the
/// index x + width * y. Byte formats live in u8_ptr, float formats in f32_ptr. Values 1 and 2 are
/// handled alike and so are 3 and 4: an Image never swaps channels, the format only names their
/// order.
///
/// The Image remembers which blocks it allocated and how large they are: it frees no other block,
/// and no operation writes past the end of one. The size of a block handed in by set_u8_ptr(),
/// set_f32_ptr() or codec_pixels is not known here: it must hold width * height pixels of the
/// format that the called operation is for.
///
/// All operations report failure by false; only a lack of memory is told in the log, at debug
/// level. One thread at a time.
class ORV_API Image {
 public:
  /// Without size, format and pixels.
  Image();
  /// Copies like operator=.
  Image(const Image& other);
  /// Frees the pixels if owns_pixels is set.
  virtual ~Image();

  /// Copies sizes, format and codec id. Then a byte store is copied, else a float store, and when
  /// the other image has neither, the borrowed pointer codec_pixels.
  Image& operator=(const Image& other);

  /// Exchanges everything with the other image; no pixel is copied.
  void swap(Image& other) noexcept;

  /// Makes an image of this size. With allocate false the four numbers are stored and no store is
  /// touched. With allocate true the store of the format's family is replaced by a new block
  /// (zeroed when zero_fill is set), the other store stays as it is.
  /// False for formats that have no store here (unknown, 16-bit floats, integers), in which case
  /// nothing changes, and when memory runs out, in which case the store is null, the sizes are
  /// stored and the format is as before.
  bool create(unsigned int new_width, unsigned int new_height, unsigned int new_depth,
              PIXEL_FORMAT format, bool zero_fill, bool allocate);

  /// Frees and nulls both stores when owns_pixels is set; sizes and format stay. Always true.
  bool cleanup();

  // ---- stores ----

  /// The byte store, or codec_pixels when there is none.
  unsigned char* get_u8_ptr() const { return u8_ptr ? u8_ptr : codec_pixels; }
  /// The float store, null when there is none.
  float* get_f32_ptr() const { return f32_ptr; }

  /// @{
  /// Makes the image a view of the caller's pixels: stores the pointer and clears owns_pixels. The
  /// pixels stay the caller's, and so does the block that was there before: it is not freed (an
  /// Image allocates bytes with new unsigned char[] and floats with new float[]).
  void set_u8_ptr(unsigned char* pixels);
  /// The same for the float store.
  void set_f32_ptr(float* pixels);
  /// @}

  /// @{
  /// Nulls a store, and frees it when the image owns it.
  void _delete_u8_ptr();
  /// The same for the float store.
  void _delete_f32_ptr();
  /// @}

  /// @{
  /// Size in bytes of a store that the image allocated itself; 0 when the store is null or was
  /// handed in.
  std::size_t get_u8_capacity() const { return u8_ptr == u8_block_ ? u8_capacity_ : 0; }
  /// The same for the float store.
  std::size_t get_f32_capacity() const { return f32_ptr == f32_block_ ? f32_capacity_ : 0; }
  /// @}

  /// True when the store that the pixel format calls for is there (codec_pixels counts for byte
  /// formats, the 16-bit float formats use the float store) and, if the image allocated it, holds
  /// width * height pixels or more. Ask before handing the pixels to anyone who trusts the sizes.
  bool has_pixels() const;

  // ---- formats ----

  /// Channels of a pixel: 1 to 4, and 0 for formats without a store here.
  static unsigned int get_pixel_format_num_channels(PIXEL_FORMAT format);
  /// The same for this image's format.
  unsigned int get_pixel_format_num_channels() const {
    return get_pixel_format_num_channels(pixel_format);
  }

  /// Bytes of a pixel, and 0 for formats without a store here.
  static unsigned int get_pixel_format_size(PIXEL_FORMAT format);
  /// The same for this image's format.
  unsigned int get_pixel_format_size() const { return get_pixel_format_size(pixel_format); }

  /// Converts the pixels to another format. Floats become bytes by value * 255 cut to an integer
  /// and wrapped, without clamping; bytes become floats by byte / 255. Channels go by position: G
  /// and B that are missing become 0, a missing alpha 255 or 1.
  /// False when the image has that format already, when the target has no store here and when the
  /// pixels are missing. A present format without a store is only renamed: true, and no pixel
  /// changes.
  bool update_pixel_format(PIXEL_FORMAT target);

  /// Id of the plugin that decoded the image, 0 when none did.
  int get_codec_id() const { return codec_id; }
  /// Stores the id of the plugin that decoded the image.
  void set_codec_id(int id) { codec_id = id; }

  // ---- whole image ----

  /// @{
  /// Copies width * height pixels over the store. The name gives the pixel size; pixel_format and
  /// depth are not looked at. False when the store or the source is null.
  bool update_pixmap_rgb_u8(const void* src);
  bool update_pixmap_rgba_u8(const void* src);
  bool update_pixmap_r_u8(const void* src);
  bool update_pixmap_rg_u8(const void* src);
  bool update_pixmap_rgb_f32(const void* src);
  bool update_pixmap_rgba_f32(const void* src);
  bool update_pixmap_r_f32(const void* src);
  /// @}

  /// @{
  /// Writes one colour to width * height pixels of the store, in the stride that the name gives;
  /// pixel_format is not looked at. False when the store is null.
  bool fill_color_rgb_u8(unsigned char r, unsigned char g, unsigned char b);
  bool fill_color_rgba_u8(unsigned char r, unsigned char g, unsigned char b, unsigned char a);
  bool fill_color_rg_u8(unsigned char r, unsigned char g);
  bool fill_color_r_u8(unsigned char r);
  bool fill_color_rgb_f32(float r, float g, float b);
  bool fill_color_rgba_f32(float r, float g, float b, float a);
  /// @}

  /// @{
  /// Turns the image upside down, or swaps left and right. A byte image that only borrows
  /// codec_pixels gets a store of its own first. False for the one-channel float format, for
  /// formats without a store here, and without pixels.
  bool flip_vertical();
  bool flip_horizontal();
  /// @}

  /// Fills the image with background and draws points of point_color (0 to 1) at random places:
  /// as many as num_points, at most width * height; a place may be drawn twice. The same seed gives
  /// the same picture; the seed goes to Math::srnd(). Formats 1 to 6 only.
  bool fill_with_noise(unsigned int num_points, const vec4& background, const vec4& point_color,
                       unsigned int seed);

  /// @{
  /// The same for a store of the pixel size that the name gives; pixel_format is not looked at.
  /// False when the store is null.
  bool fill_with_noise_rgb_u8(unsigned int num_points, const vec3u8& background,
                              const vec3u8& point_color, unsigned int seed);
  bool fill_with_noise_rgba_u8(unsigned int num_points, const vec4u8& background,
                               const vec4u8& point_color, unsigned int seed);
  bool fill_with_noise_rg_u8(unsigned int num_points, const vec2u8& background,
                             const vec2u8& point_color, unsigned int seed);
  bool fill_with_noise_r_u8(unsigned int num_points, unsigned char background,
                            unsigned char point_color, unsigned int seed);
  bool fill_with_noise_rgb_f32(unsigned int num_points, const vec3& background,
                               const vec3& point_color, unsigned int seed);
  bool fill_with_noise_rgba_f32(unsigned int num_points, const vec4& background,
                                const vec4& point_color, unsigned int seed);
  /// @}

  // ---- single pixels ----

  /// @{
  /// Reads a pixel as four floats: bytes as byte / 255, missing G and B as 0, missing alpha as 1.
  /// Byte formats read u8_ptr alone. False past the end (width * height * depth), for a null
  /// result, without a store, and for formats other than the byte formats, 5 and 6.
  bool get_pixel(unsigned int index, float* out4) const;
  /// The same for the pixel x + width * y; x may run on into the next row.
  bool get_pixel_2d(unsigned int x, unsigned int y, float* out4) const;
  /// @}

  /// @{
  /// Writes a pixel from four floats. Mind the scale: byte formats take 0 to 255 here, cut to
  /// integers, while get_pixel() gives 0 to 1. The same bounds and failures as get_pixel().
  bool set_pixel(unsigned int index, const vec4& color);
  bool set_pixel_1d(unsigned int index, const vec4& color);
  bool set_pixel_2d(unsigned int x, unsigned int y, const vec4& color);
  bool set_pixel_v2(unsigned int index, const float* color);
  bool set_pixel_1d_v2(unsigned int index, const float* color);
  bool set_pixel_2d_v2(unsigned int x, unsigned int y, const float* color);
  /// @}

  /// First channel of a pixel, bytes as byte / 255. Reads the 16-bit float formats too, from the
  /// float store. -1 for other formats, without a store and for an index above width * height; the
  /// index width * height itself gives 0.
  float get_r(unsigned int index) const;

  // ---- alpha ----

  /// Sets alpha to the mean of R, G and B where that is below the threshold, else to opaque. The
  /// threshold is in 0 to 255 for bytes and in 0 to 1 for floats. Formats 3, 4 and 6 only.
  bool update_alpha_channel_smooth(float threshold);

  /// Sets alpha to 0 where R, G and B are all within tolerance of the key colour, else to opaque.
  /// Key and tolerance are in 0 to 255 for bytes (the key is cut to its low byte) and in 0 to 1 for
  /// floats. Formats 3, 4 and 6 only.
  bool update_alpha_channel_binary(const vec4& key_color, float tolerance);

  /// Takes the first channel of the map, an image of the same width and height, as the last
  /// channel of this one. Formats 3, 4, 6, 9 and 12 only. False for null.
  bool inject_opacity_map_to_alpha_channel(const Image* map);

  /// Reduces four bytes a pixel to two: R and A. The pixel format stays as it is, which no longer
  /// fits the block: call create(width, height, depth, PF_RG_U8, false, false) to name it.
  /// Formats 3 and 4 only.
  bool convert_rgba_to_grey_alpha();

  // ---- fields ----

  unsigned int width = 0;   ///< pixels of a row
  unsigned int height = 0;  ///< rows
  unsigned int depth = 0;   ///< slices; counted by create() and the pixel bounds, ignored elsewhere
  PIXEL_FORMAT pixel_format = PF_UNKNOWN;  ///< what the pixels are; PF_UNKNOWN before create()
  bool owns_pixels = false;                ///< the image frees its stores
  unsigned char* u8_ptr = nullptr;         ///< pixels of the byte formats
  float* f32_ptr = nullptr;                ///< pixels of the float formats
  unsigned char* codec_pixels = nullptr;   ///< pixels held by a codec, which frees them; used
                                           ///< where u8_ptr is null
  int codec_id = 0;                        ///< plugin id of the codec that made the image

 private:
  friend struct ImageAccess;

  // Blocks allocated here and their bytes: a store is freed and bounded only when it is one.
  unsigned char* u8_block_ = nullptr;
  float* f32_block_ = nullptr;
  std::size_t u8_capacity_ = 0;
  std::size_t f32_capacity_ = 0;
  bool is_view_ = false;  // owns_pixels was cleared by set_u8_ptr or set_f32_ptr
};

}  // namespace orv
