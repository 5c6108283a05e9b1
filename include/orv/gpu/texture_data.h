/// @file
/// What a texture is, in main memory and on the GPU.
#pragma once

#include <orv/core/api.h>
#include <orv/gpu/gpu_enums.h>
#include <orv/gpu/texture_array.h>
#include <orv/gpu/texture_cube_map_face.h>
#include <orv/image/image.h>

namespace orv {

/// The whole state of a texture: its pixels, its sampling settings and its API object. Several
/// Texture objects may share one block, which counts them and dies with the last.
///
/// Textures and client code write pixels and settings, the renderer reads them and fills in the
/// fields of the API object. Fields are public, since renderers live in modules of their own.
class ORV_API TextureData {
 public:
  /// A 2D texture without pixels.
  TextureData();
  /// Frees the pixels. The API object is the renderer's and must be unloaded before.
  ~TextureData();
  TextureData(const TextureData&) = delete;
  TextureData& operator=(const TextureData&) = delete;

  /// Identity within the process.
  int getid() const { return id; }

  // ---- sharing ----

  /// Number of textures that share the block. Each gives the new count; dec_ref stays at 0.
  int inc_ref() { return ++ref; }
  /// Takes one reference off, down to 0; returns what is left.
  int dec_ref() { return ref > 0 ? --ref : 0; }
  /// References held.
  int get_ref() const { return ref; }

  // ---- name ----

  /// Name in messages, never null.
  const char* get_texture_name() const { return texture_name; }
  /// Node id of the first owner.
  int get_texture_id() const { return texture_id; }
  /// Stores at most 127 characters; null clears the name.
  void set_texture_name_and_id(const char* name, int node_id);

  // ---- pixels ----

  /// @{
  /// Image that stands for the texture where one is asked for: the first layer of an array, the
  /// first face of a cube map, else image.
  Image& get_main_image();
  const Image& get_main_image() const;
  /// @}

  /// @{
  /// Size and format of the main image.
  unsigned int get_width() const { return get_main_image().width; }
  unsigned int get_height() const { return get_main_image().height; }
  PIXEL_FORMAT get_pixel_format() const { return get_main_image().pixel_format; }
  /// @}

  /// Pixels of the main image in the store that its format calls for: its own, or, for byte
  /// formats, those borrowed from a codec. Null when there are none.
  void* get_pixmap_ptr() const;

  /// @{
  /// Byte or float store of the main image whatever its format says; null when there is none.
  unsigned char* get_pixmap_u8_ptr() const { return get_main_image().get_u8_ptr(); }
  float* get_pixmap_f32_ptr() const { return get_main_image().get_f32_ptr(); }
  /// @}

  /// True when the main image is not empty and its pixels are all there.
  bool has_pixels() const;

  /// Face of the cube map; null for a number that is none.
  Image* get_cubemap_image_ptr(CUBEMAP_FACE face);
  /// Layers of an array, 0 for all other textures.
  unsigned int get_num_layers() const { return layers.num_layers; }
  /// Layer of the array; null past the end.
  Image* get_layer_image_ptr(unsigned int layer) { return layers.get_layer(layer); }

  /// Converts the six faces of a cube map (always true), or all layers of an array (true when one
  /// was converted), or the image (as Image::update_pixel_format).
  bool update_pixel_format(PIXEL_FORMAT target);

  /// Writes a size and a format into the image and makes no pixels. Pixels that were there are let
  /// go when they are too few for it: those of the image's own block by what it holds, those handed
  /// in by a host or a codec when more bytes are called for than before.
  void set_image_size(unsigned int width, unsigned int height, unsigned int depth,
                      PIXEL_FORMAT format);

  /// Frees the pixels of image, faces and layers. The API object stays.
  void cleanup();
  /// Frees the pixels of the faces alone.
  void cleanup_cubemap_data();

  // ---- state ----

  /// @{
  /// What the texture is; TEXTURE_2D at first.
  TEXTURE_TYPE get_type() const { return type; }
  void set_type(TEXTURE_TYPE new_type) { type = new_type; }
  /// @}

  /// @{
  /// Whether a renderer uploaded the texture, or it is a view of a render target.
  bool is_loaded_in_gpu_memory() const { return loaded_in_gpu_memory; }
  void set_loaded_in_gpu_memory_state(bool state) { loaded_in_gpu_memory = state; }
  /// @}

  /// API object, 0 without one.
  unsigned int get_opengl_texture_id() const { return gl_texture_id; }
  /// Takes an API object. The one held before is not deleted; unload it first.
  void set_opengl_texture_id(unsigned int api_id) { gl_texture_id = api_id; }

  /// Level that sampling starts at, 0 being the full size.
  int get_mipmap_base_level() const { return mipmap_base_level; }
  /// Last level sampled; -1 means all.
  int get_mipmap_max_level() const { return mipmap_max_level; }
  /// Takes effect at the next upload.
  void set_mipmap_levels(int base_level, int max_level);
  /// How many halvings bring width and height both to 0: 9 for 256 x 1, 1 for 1 x 1.
  unsigned int get_max_number_of_mipmaps() const;

  /// Names the compressed format wanted on the GPU, at most 31 characters, and turns compression
  /// on. An empty name clears the name alone. False for null.
  bool set_compression_format(const char* name);
  /// The name wanted, empty when the choice is the driver's.
  const char* get_compression_format() const { return compression_format; }

  /// @{
  /// Whether the upload compresses; false at first.
  bool get_gpu_compression_state() const { return gpu_compression; }
  void set_gpu_compression_state(bool state) { gpu_compression = state; }
  /// @}

  /// @{
  /// Whether the upload goes by the name of the format; true at first.
  bool get_s3tc_compression_state() const { return s3tc_compression; }
  void set_s3tc_compression_state(bool state) { s3tc_compression = state; }
  /// @}

  /// @{
  /// Bytes on the GPU as uploaded and as compressed, 0 before the upload.
  unsigned int get_gpu_memory_size() const { return gpu_memory_size; }
  unsigned int get_gpu_memory_size_compressed() const { return gpu_memory_size_compressed; }
  /// @}

  // ---- fields ----

  char texture_name[128] = {};          ///< see set_texture_name_and_id
  int texture_id = 0;                   ///< node id of the first owner
  Image image;                          ///< pixels of all types but cube map and array
  TextureCubeMapFace cubemap_faces[6];  ///< pixels of a cube map
  TextureArray layers;                  ///< pixels of an array
  bool loaded_in_gpu_memory = false;    ///< see is_loaded_in_gpu_memory
  bool gpu_update_needed = true;        ///< pixels changed since the last upload
  TEXTURE_TYPE type = TEXTURE_2D;       ///< see get_type
  bool gen_mipmaps = true;              ///< the upload makes mipmaps
  int mipmap_base_level = 0;            ///< level that sampling starts at
  int mipmap_max_level = -1;            ///< -1 means all
  SAMPLER_FILTERING_MODE filtering_mode = SAMPLER_FILTERING_LINEAR;   ///< how texels are mixed
  SAMPLER_ADDRESSING_MODE addressing_mode = SAMPLER_ADDRESSING_WRAP;  ///< what lies outside 0 to 1
  float anisotropy = 1.0f;                                            ///< samples, 1 for none
  unsigned int gl_format = 0x1908;                                    ///< API format, GL_RGBA
  unsigned int gl_texture_id = 0;                                     ///< API object, 0 without one
  unsigned int pixel_buffer_id = 0;                                   ///< staging buffer of uploads
  bool use_pixel_buffer = false;  ///< uploads go through the staging buffer

  // Private to the graphics API.
  unsigned int pixel_buffer_id_2 = 0;        ///< second staging buffer
  unsigned long long gl_texture_handle = 0;  ///< bindless handle
  bool gl_handle_resident = false;           ///< the handle may be used by shaders
  bool gl_texture_borrowed = false;          ///< the id belongs to a render target: never delete it
  unsigned int uploaded_width = 0;           ///< what the API object was last specified with
  unsigned int uploaded_height = 0;          ///< rows, as above
  unsigned int uploaded_layers = 0;          ///< layers, as above
  PIXEL_FORMAT uploaded_format = PF_UNKNOWN;  ///< format, as above

  int renderer_id = 0;               ///< plugin id of the renderer that uploaded the texture
  char compression_format[32] = {};  ///< see set_compression_format
  bool gpu_compression = false;      ///< the upload compresses
  bool s3tc_compression = true;      ///< the name in compression_format is to be honoured
  unsigned int gpu_memory_size = 0;  ///< bytes
  unsigned int gpu_memory_size_compressed = 0;  ///< bytes
  int ref = 0;                                  ///< textures that share the block
  int id;                                       ///< identity within the process
};

}  // namespace orv
