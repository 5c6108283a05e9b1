/// @file
/// Registry of textures and image codecs.
#pragma once

#include <orv/core/api.h>
#include <orv/gpu/gpu_enums.h>
#include <orv/gpu/resource_mgr.h>
#include <orv/image/pixel_format.h>

namespace orv {

struct TextureMgrData;

/// Turns files, encoded memory, raw pixels and render targets into textures, keeps the image codecs
/// and the list of textures, and takes screenshots. Nothing is uploaded here: textures reach the
/// GPU with Texture::upload or their first Texture::bind.
///
/// Images are decoded by the codec named by the current codec name and, when that fails, by the
/// fallback. Both are "stb" at first, so that a broken file is decoded twice. The argument flip is
/// handed to the codec, which may ignore it; the core codec does. The format is what the decoded
/// pixels are converted to.
///
/// The manager holds each listed texture with one reference, so a texture that it created lives
/// until release_texture() or stop(), unless others hold it too. Paths are read as they are,
/// relative ones from the working directory. Null textures, names and pixels give false or null.
///
/// Failures are false or null, and the log tells why at debug level. One thread at a time.
class ORV_API TextureMgr : public ResourceMgr {
 public:
  /// The manager, made on first use and never destroyed.
  static TextureMgr* get();

  /// True.
  bool start(Renderer* renderer) override;
  /// Releases all textures that this renderer may release and forgets the codecs.
  bool stop(Renderer* renderer) override;

  // ---- codecs ----

  /// Appends a codec and takes a reference. False for null.
  bool register_image_codec_plugin(ImageCodec* codec);
  /// Appends all image codecs of PluginMgr, each with a reference, and gives their number.
  int register_all_image_codec_plugins();
  /// Takes a codec out and drops its reference. False when it is not registered.
  bool unregister_image_codec_plugin(ImageCodec* codec);
  /// Empties the list and leaves the references alone.
  void unregister_all_image_codec_plugins();

  /// Codecs registered.
  unsigned int get_num_image_codecs() const;
  /// Null past the end.
  ImageCodec* get_image_codec_by_index(unsigned int index) const;
  /// The codec that last loaded an image, or null.
  ImageCodec* get_last_image_codec() const;

  /// Name of the plugin that is asked first, "stb" at first.
  const char* get_current_image_codec_name() const;
  /// Plugin name of the codec to ask first, of which 127 characters count. It need not be
  /// registered (yet). Null is ignored.
  void set_current_image_codec_name(const char* name);

  // ---- new textures ----

  /// A new texture without pixels, in the list with one reference. So are all that follow; null
  /// comes from the loading ones alone, when loading fails.
  Texture* create_texture();

  /// @{
  /// Textures with an image of this size in pixels, see Texture::create_2d and its relatives. The
  /// texture is given even when the image could not be made; it has no size then. With zero_fill
  /// all pixels are 0, else undefined.
  Texture* create_texture_1d(unsigned int width, PIXEL_FORMAT format, bool zero_fill);
  Texture* create_texture_2d(unsigned int width, unsigned int height, PIXEL_FORMAT format,
                             bool zero_fill);
  Texture* create_texture_2d_rectangle(unsigned int width, unsigned int height, PIXEL_FORMAT format,
                                       bool zero_fill);
  Texture* create_texture_2d_array(unsigned int width, unsigned int height, unsigned int num_layers,
                                   PIXEL_FORMAT format, bool zero_fill);
  Texture* create_texture_cube(unsigned int size, PIXEL_FORMAT format, bool zero_fill);
  /// @}

  /// @{
  /// New textures filled by the loading operations of these names, see below.
  Texture* create_texture_2d_from_file(const char* filename, bool flip, PIXEL_FORMAT format);
  Texture* create_texture_2d_from_memory(unsigned char* data, unsigned int size, bool flip,
                                         PIXEL_FORMAT format);
  Texture* create_texture_cube_from_files(const char** filenames, bool flip);
  Texture* create_texture_cube_from_files(const char* positive_x, const char* negative_x,
                                          const char* positive_y, const char* negative_y,
                                          const char* positive_z, const char* negative_z,
                                          bool flip);
  Texture* create_texture_cube_from_memory(unsigned char** datas, const unsigned int* sizes,
                                           bool flip);
  Texture* create_texture_2d_from_raw_memory(const void* pixels, unsigned int width,
                                             unsigned int height, PIXEL_FORMAT format);
  Texture* create_texture_from_truetype_file(const char* filename, float pixel_height, int width,
                                             int height);
  /// @}

  /// Views of a render target's attachments. Null for a null target.
  Texture* create_color_texture_from_render_target(GpuRenderTarget* target, unsigned int index);
  /// The same for the depth attachment.
  Texture* create_depth_texture_from_render_target(GpuRenderTarget* target);

  /// Puts a texture into the list, with a reference. False for null.
  bool add_texture(Texture* texture);

  // ---- loading into a texture ----

  /// @{
  /// Decodes a file into the texture's image, converts it to the format, and adds the texture to
  /// the list. Its type stays; load_texture_2d_from_file sets it to 2D.
  bool load_image_from_file(Texture* texture, const char* filename, bool flip, PIXEL_FORMAT format);
  bool load_texture_2d_from_file(Texture* texture, const char* filename, bool flip,
                                 PIXEL_FORMAT format);
  /// @}

  /// Becomes a 2D texture first, also when decoding fails then.
  bool load_texture_2d_from_memory(Texture* texture, unsigned char* data, unsigned int size,
                                   bool flip, PIXEL_FORMAT format);
  /// Copies width * height tightly packed pixels of this format and becomes a 2D texture. False for
  /// formats that an Image cannot hold.
  bool load_texture_2d_from_raw_memory(Texture* texture, const void* pixels, unsigned int width,
                                       unsigned int height, PIXEL_FORMAT format);

  /// @{
  /// Decode six faces as PF_RGB_U8, in the order +X, -X, +Y, -Y, +Z, -Z, and become a cube map. A
  /// face that fails ends the work with false; the faces before it stay loaded. The arrays have six
  /// entries each, sizes are in bytes.
  bool load_texture_cube_from_files(Texture* texture, const char** filenames, bool flip);
  bool load_texture_cube_from_files(Texture* texture, const char* positive_x,
                                    const char* negative_x, const char* positive_y,
                                    const char* negative_y, const char* positive_z,
                                    const char* negative_z, bool flip);
  bool load_texture_cube_from_memory(Texture* texture, unsigned char** datas,
                                     const unsigned int* sizes, bool flip);
  /// @}

  /// @{
  /// One face; the texture's type stays.
  bool load_cubemap_face_from_file(Texture* texture, CUBEMAP_FACE face, const char* filename,
                                   bool flip);
  bool load_cubemap_face_from_memory(Texture* texture, CUBEMAP_FACE face, unsigned char* data,
                                     unsigned int size, bool flip);
  /// @}

  /// Decodes into a layer of an array texture, as the layer's own format, and adds the texture to
  /// the list. False past the last layer.
  bool load_texture_2d_array_layer_from_file(Texture* texture, unsigned int layer,
                                             const char* filename, bool flip);
  /// Copies tightly packed pixels of the layer's size and format into a layer.
  bool load_texture_2d_array_layer_from_raw_memory(Texture* texture, unsigned int layer,
                                                   const void* pixels);

  /// Draws the characters 0 to 254 of a TrueType font, with this height in pixels, row by row into
  /// a one-channel picture of width x height and becomes a 2D texture. Characters that do not fit
  /// are left out. False for a file that is no sound font.
  bool load_texture_2d_from_truetype_file(Texture* texture, const char* filename,
                                          float pixel_height, int width, int height);

  /// Decodes a file straight into the API object of an uploaded 2D texture; the pixels in main
  /// memory stay as they are, but are converted to the format, after which the next bind brings
  /// them back to the GPU: pass the texture's own format to keep what was decoded. The picture must
  /// be of the texture's size. Gives the renderer's result.
  bool update_gpu_memory_from_file(Renderer* renderer, Texture* texture, const char* filename,
                                   bool flip, PIXEL_FORMAT format);

  /// Encodes the image of a 2D texture, replacing the file; other types give false.
  bool write_texture_2d_to_file(Texture* texture, const char* filename);

  // ---- release ----

  /// Frees the pixels of a texture's image in main memory, or those of all its layers; size and
  /// format stay, and so do the faces of a cube map. False for null.
  bool free_image_resource(Texture* texture);
  /// Frees the pixels if nobody else holds the texture, and releases it as release_resource does,
  /// with the same result.
  int release_texture(Renderer* renderer, Texture* texture, Thread* thread);
  /// The same for all textures that this renderer may release. True.
  bool release_all_textures(Renderer* renderer, Thread* thread);

  // ---- screenshots ----

  /// @{
  /// Reads the back buffer, or a rectangle of it, and writes it to a file. Rows come bottom first,
  /// as the API has them: flip turns the picture upright. False without a codec that can write.
  bool do_screenshot(Renderer* renderer, const char* filename, bool flip);
  bool do_screenshot_v2(Renderer* renderer, const char* filename, int x, int y, int width,
                        int height, bool flip);
  /// @}

  /// The picture of the last screenshot, reused by the next one; borrowed, never null.
  const Image* get_screenshot_image() const;

 private:
  TextureMgr();
  ~TextureMgr() override;

  TextureMgrData* data_;
};

}  // namespace orv
