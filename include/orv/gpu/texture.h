/// @file
/// Pictures on the GPU.
#pragma once

#include <orv/core/api.h>
#include <orv/gpu/gpu_enums.h>
#include <orv/gpu/resource.h>
#include <orv/image/pixel_format.h>

namespace orv {

/// A resource that stands for a texture of the graphics API. All its state lives in a TextureData
/// block, which several textures may share.
///
/// Pixels are written here and reach the GPU with upload() or with the first bind(). A null
/// renderer is tolerated everywhere: values are stored and take effect at the next upload. After
/// _cleanup() there is no block: every operation then answers 0, false or null.
///
/// Where an Image is spoken of, see there for what an operation accepts; "the image" is the block's
/// single image, not a face or layer.
class ORV_API Texture : public Resource {
 public:
  /// Named "texture_" and the node id, with a block of its own.
  Texture();
  /// Lets go of the block without a renderer; call _cleanup() or release the node to free the API
  /// object.
  ~Texture() override;
  Texture(const Texture&) = delete;
  Texture& operator=(const Texture&) = delete;

  // ---- node ----

  /// Gives the texture a fresh block; the old one is released as by _cleanup().
  bool _init(Renderer* renderer) override;
  /// Lets go of the block. The last texture of a block frees it, and its API object when the
  /// renderer is not null.
  bool _cleanup(Renderer* renderer) override;
  /// Names the node and the block; null is ignored.
  void set_name(const char* name) override;
  /// Plugin id of the renderer that uploaded the texture, 0 before.
  int get_renderer_id() override;

  // ---- creation ----

  /// Copies an image into the block. Always true while there is a block.
  virtual bool load_from_image(const Image& image);
  /// Copies an image into a face of the cube map. False for a number that is no face.
  virtual bool load_cubemap_face_image(CUBEMAP_FACE face, const Image& image);

  /// Make an image of this size in pixels and set the texture's type. When the image cannot be made
  /// they give false and the type stays.
  /// @param zero_fill whether pixels start at 0; else they start with any value
  virtual bool create_1d(unsigned int width, PIXEL_FORMAT format, bool zero_fill);
  /// See create_1d.
  virtual bool create_2d(unsigned int width, unsigned int height, PIXEL_FORMAT format,
                         bool zero_fill);
  /// Discards the old layers and makes new ones. A layer that cannot be made is logged.
  virtual bool create_2d_array(unsigned int width, unsigned int height, unsigned int num_layers,
                               PIXEL_FORMAT format, bool zero_fill);
  /// See create_1d.
  virtual bool create_2d_rectangle(unsigned int width, unsigned int height, PIXEL_FORMAT format,
                                   bool zero_fill);
  /// Makes six square faces; always true.
  virtual bool create_cubemap(unsigned int size, PIXEL_FORMAT format, bool zero_fill);

  /// Makes the texture a view of a colour attachment (0 to 7; above gives no object) or of the
  /// depth attachment of a render target, which keeps owning the API object and must outlive its
  /// use. Size and format are copied; the image's depth becomes the target's height for colour and
  /// 1 for depth. An API object that the texture had is forgotten: unload it first. False for a
  /// null target.
  virtual bool init_color_texture_from_render_target(GpuRenderTarget* target, unsigned int index);
  /// The same by the renderer. False for a null renderer.
  virtual bool init_color_texture_from_render_target_v2(Renderer* renderer, GpuRenderTarget* target,
                                                        unsigned int index);
  /// The same for the depth attachment.
  virtual bool init_depth_texture_from_render_target(GpuRenderTarget* target);
  /// The same for the depth attachment, by the renderer.
  virtual bool init_depth_texture_from_render_target_v2(Renderer* renderer,
                                                        GpuRenderTarget* target);

  // ---- use ----

  /// Refreshes the API object from the pixels: types 1, 2 and cube map; others give false. The
  /// block counts as up to date afterwards in any case. False for a null renderer.
  virtual bool gpu_memory_update(Renderer* renderer);
  /// Binds the texture at a unit, uploading it first when it has pixels and was not uploaded yet,
  /// and then refreshes it when pixels changed. The result is that of the binding alone.
  virtual bool bind(Renderer* renderer, unsigned int unit);
  /// Leaves nothing bound at a unit.
  virtual bool unbind(Renderer* renderer, unsigned int unit);
  /// Clears a unit and makes it the current one.
  virtual bool activate(Renderer* renderer, unsigned int unit);
  /// Binds the texture to an image unit, for shaders that write to it, and clears such a unit.
  virtual bool image_bind(Renderer* renderer, unsigned int unit, DATA_ACCESS_TYPE access);
  /// Clears an image unit.
  virtual bool image_unbind(Renderer* renderer, unsigned int unit);

  /// Uploads the pixels at a unit. The flag is for the one back end that has its own upload and is
  /// ignored by the others. False for a null renderer.
  bool upload(Renderer* renderer, unsigned int unit, bool flag);
  /// Frees the API object. False for a null renderer or when there is none.
  bool unload(Renderer* renderer);

  // ---- block ----

  /// The block, which all textures sharing it own together; null after _cleanup().
  TextureData* get_data_ptr() const { return data_; }
  /// Shares the block of another texture. False when either is null.
  bool share_texture_data(Renderer* renderer, Texture* other);
  /// Replaces the block, counting this texture in the new one (which may be null) and letting go of
  /// the old one as _cleanup() does. The block was made with new and is freed by its last texture.
  bool _set_texture_data(Renderer* renderer, TextureData* new_data);

  /// @{
  /// Number that hosts tie to a stream of pictures; 0 at first, read by nobody here.
  int get_audio_video_block_id() const { return audio_video_block_id_; }
  void set_audio_video_block_id(int id) { audio_video_block_id_ = id; }
  /// @}

  /// @{
  /// State and API object of the block, see TextureData.
  bool is_loaded_in_gpu_memory() const;
  void set_loaded_in_gpu_memory_state(bool state);
  void set_opengl_texture_id(unsigned int api_id);
  unsigned int get_opengl_texture_id() const;
  /// @}

  // ---- sampling ----

  /// @{
  /// Store the value; with a renderer it is applied at once.
  void set_filtering_mode(Renderer* renderer, SAMPLER_FILTERING_MODE mode);
  SAMPLER_FILTERING_MODE get_filtering_mode() const;
  void set_addressing_mode(Renderer* renderer, SAMPLER_ADDRESSING_MODE mode);
  SAMPLER_ADDRESSING_MODE get_addressing_mode() const;
  void set_anisotropy(Renderer* renderer, float value);
  float get_anisotropy() const;
  /// @}

  /// Whether the upload makes mipmaps; they are made at first.
  void gen_mipmaps(bool state);

  /// @{
  /// Levels used in sampling, see TextureData.
  void set_mipmap_levels(int base_level, int max_level);
  int get_mipmap_base_level() const;
  int get_mipmap_max_level() const;
  /// @}

  /// See TextureData.
  unsigned int get_max_number_of_mipmaps() const;

  // ---- compression ----

  /// @{
  /// See TextureData.
  bool set_compression_format(const char* name);
  bool get_gpu_compression_state() const;
  void set_gpu_compression_state(bool state);
  bool get_s3tc_compression_state() const;
  void set_s3tc_compression_state(bool state);
  unsigned int get_gpu_memory_size() const;
  unsigned int get_gpu_memory_size_compressed() const;
  /// @}

  // ---- pixels ----

  /// @{
  /// Size, format and pixels of the main image, see TextureData.
  unsigned int get_width() const;
  unsigned int get_height() const;
  PIXEL_FORMAT get_pixel_format() const;
  void* get_pixmap_ptr() const;
  unsigned char* get_pixmap_u8_ptr() const;
  float* get_pixmap_f32_ptr() const;
  /// @}

  /// @{
  /// Make the image a view of the caller's pixels, see Image.
  bool set_pixmap_u8_ptr(unsigned char* pixels);
  bool set_pixmap_f32_ptr(float* pixels);
  /// @}

  /// @{
  /// The image, a face (null for a number that is none), a layer (null past the end).
  Image* get_image_ptr() const;
  Image* get_cubemap_image_ptr(CUBEMAP_FACE face) const;
  Image* get_layer_image_ptr(unsigned int layer) const;
  /// @}

  /// Converts all pixels of the texture, see TextureData.
  bool update_pixel_format(PIXEL_FORMAT target);

  /// @{
  /// Copy width * height pixels over the image or over a layer. False when the source or the store
  /// is null and past the last layer.
  bool update_pixmap_rgb_u8(const void* src);
  bool update_pixmap_rgba_u8(const void* src);
  bool update_pixmap_r_u8(const void* src);
  bool update_pixmap_rgb_f32(const void* src);
  bool update_pixmap_rgba_f32(const void* src);
  bool update_pixmap_r_f32(const void* src);
  bool update_pixmap_rgb_u8_2d_array(unsigned int layer, const void* src);
  bool update_pixmap_rgba_u8_2d_array(unsigned int layer, const void* src);
  bool update_pixmap_r_u8_2d_array(unsigned int layer, const void* src);
  bool update_pixmap_rgb_f32_2d_array(unsigned int layer, const void* src);
  bool update_pixmap_rgba_f32_2d_array(unsigned int layer, const void* src);
  bool update_pixmap_r_f32_2d_array(unsigned int layer, const void* src);
  /// @}

  /// Reads the back buffer into the image, which is made anew as RGBA bytes when its size differs.
  bool update_pixmap_rgba_u8_from_framebuffer(Renderer* renderer);

  /// @{
  /// Read colour attachment 0 of a render target into the image, which is made anew when its size
  /// differs.
  bool update_pixmap_rgb_u8_from_render_target(Renderer* renderer, GpuRenderTarget* target);
  bool update_pixmap_rgba_u8_from_render_target(Renderer* renderer, GpuRenderTarget* target);
  /// @}

  /// Takes the renderer's handle of colour attachment 0 as the API object of this texture, without
  /// reading pixels. Targets of format 3 or 4 only. False when the handle is 0, as it is on OpenGL.
  bool update_pixmap_rgba_u8_from_render_target_v2(Renderer* renderer, GpuRenderTarget* target);

  /// @{
  /// Single pixels, see Image::get_pixel and Image::set_pixel. An index is x + width * y.
  bool get_texel_1d(unsigned int index, float* out4) const;
  bool get_texel_2d_v1(unsigned int index, float* out4) const;
  bool get_texel_2d_v2(unsigned int x, unsigned int y, float* out4) const;
  bool get_texel_2d_array_v1(unsigned int layer, unsigned int index, float* out4) const;
  bool get_texel_2d_array_v2(unsigned int layer, unsigned int x, unsigned int y, float* out4) const;
  bool set_texel_1d(unsigned int index, const vec4& color);
  bool set_texel_1d_v2(unsigned int index, const float* color);
  bool set_texel_2d(unsigned int x, unsigned int y, const vec4& color);
  bool set_texel_2d_v2(unsigned int x, unsigned int y, const float* color);
  bool set_texel_2d_v3(unsigned int index, const float* color);
  bool set_texel_2d_array_v1(unsigned int layer, unsigned int index, const vec4& color);
  bool set_texel_2d_array_v2(unsigned int layer, unsigned int x, unsigned int y,
                             const float* color);
  bool set_texel_2d_array_v3(unsigned int layer, unsigned int index, const float* color);
  /// @}

  /// @{
  /// Whole-image operations, see Image.
  bool fill_with_noise(unsigned int num_points, const vec4& background, const vec4& point_color,
                       unsigned int seed);
  bool inject_opacity_map_to_alpha_channel(const Image* map);
  bool update_alpha_channel_smooth(float threshold);
  bool update_alpha_channel_binary(const vec4& key_color, float tolerance);
  bool flip_horizontal();
  bool flip_vertical();
  /// @}

 private:
  TextureData* data_ = nullptr;
  int audio_video_block_id_ = 0;
};

}  // namespace orv
