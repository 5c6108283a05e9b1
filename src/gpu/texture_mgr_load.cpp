// TextureMgr: what goes through the image codecs, raw pixels and fonts.
#include <orv/core/log_mgr.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/image/image_codec.h>
#include <orv/render/renderer.h>

#include "core/read_file.h"
#include "gpu/texture_mgr_data.h"
#include "image/image_access.h"
#include "text/stb_truetype.h"

#include <climits>
#include <cstdint>
#include <cstring>
#include <typeinfo>
#include <vector>

namespace orv {
namespace {

/// Name in the log of an image that is no file.
constexpr const char* IN_MEMORY = "in memory";
constexpr int NUM_FACES = 6;
constexpr int FIRST_CHARACTER = 0;
constexpr int NUM_CHARACTERS = 255;

/// Hands a decoded image to a texture. A texture class of a host sees the call and copies; the
/// library's own, which only copies, takes over pixels that the image allocated.
bool hand_over(Texture* texture, Image& image) {
  const std::size_t own_bytes = image.u8_ptr ? image.get_u8_capacity() : image.get_f32_capacity();
  if (typeid(*texture) != typeid(Texture) || own_bytes == 0) {
    return texture->load_from_image(image);
  }
  TextureData* data = texture->get_data_ptr();
  if (!data) return false;
  data->image.swap(image);
  data->gpu_update_needed = true;
  return true;
}

/// Pixels that a codec lent to an image which is about to get others. Once it has them, nobody else
/// would give the old ones back, and a new codec could not free them.
class LentPixels {
 public:
  explicit LentPixels(const Image* image) {
    if (!image) return;
    old_.create(image->width, image->height, image->depth, image->pixel_format, false, false);
    old_.codec_pixels = image->codec_pixels;
    old_.set_codec_id(image->get_codec_id());
  }

  int get_codec_id() const { return old_.get_codec_id(); }

  void give_back(const TextureMgrData& state, Image& image) {
    const bool is_shown = image.codec_pixels == old_.codec_pixels;
    if (!old_.codec_pixels || (is_shown && image.get_codec_id() == get_codec_id())) return;
    if (is_shown) image.codec_pixels = nullptr;
    state.free_lent_pixels(&old_);
  }

 private:
  Image old_;
};

/// Replaces pixels that a codec lends by a copy, and gives them back.
void own_pixels(ImageCodec& codec, Image& image) {
  const detail::FormatInfo info = detail::format_info(image.pixel_format);
  if (!image.codec_pixels || image.u8_ptr || info.store != detail::StoreKind::BYTES) return;
  if (!image.create(image.width, image.height, 1, image.pixel_format, false, true)) return;
  std::memcpy(image.u8_ptr, image.codec_pixels, image.get_u8_capacity());
  codec.free_image_resources(&image);
  image.codec_pixels = nullptr;
}

/// One codec's part in loading the single image of a texture. decode(codec, image) fills an image.
template <typename Decode>
bool load_image_with(TextureMgr& manager, TextureMgrData& state, ImageCodec& codec,
                     Texture* texture, PIXEL_FORMAT format, Decode decode) {
  Image image;
  if (!decode(codec, image)) return false;
  image.set_codec_id(codec.get_id());
  const TextureData* old_data = texture->get_data_ptr();
  LentPixels lent(texture->get_image_ptr());
  const bool is_loaded = hand_over(texture, image);
  TextureData* data = texture->get_data_ptr();
  // A texture class of a host may have taken another block.
  if (is_loaded && data && data == old_data) lent.give_back(state, data->image);
  if (data && data->update_pixel_format(format)) data->gpu_update_needed = true;
  manager.add_texture(texture);
  if (is_loaded) state.last_codec = &codec;
  return is_loaded;
}

/// The same for one face of a cube map.
template <typename Decode>
bool load_face_with(TextureMgrData& state, ImageCodec& codec, Texture* texture, CUBEMAP_FACE face,
                    Decode decode) {
  Image image;
  if (!decode(codec, image)) return false;
  image.set_codec_id(codec.get_id());
  // Nothing asks for the pixels of faces again.
  own_pixels(codec, image);
  if (!texture->load_cubemap_face_image(face, image)) return false;
  state.last_codec = &codec;
  return true;
}

/// Pixels of an image in the store that its format calls for.
const void* pixels_of(const Image& image) {
  const detail::FormatInfo info = detail::format_info(image.pixel_format);
  if (!image.has_pixels()) return nullptr;
  if (info.store == detail::StoreKind::FLOATS) return image.get_f32_ptr();
  return image.get_u8_ptr();
}

/// Brings a decoded image into the form that the texture's API object has.
bool fit_to_texture(const TextureData& data, Image& image) {
  const PIXEL_FORMAT wanted = data.get_pixel_format();
  if (image.pixel_format != wanted && !image.update_pixel_format(wanted)) return false;
  return image.width == data.get_width() && image.height == data.get_height();
}

/// Copies pixels into a store of an image unless the store is the image's own and too small.
template <typename T>
bool copy_into_store(Image& image, const void* pixels, std::size_t bytes) {
  T* store = ImageAccess::pointer<T>(image);
  if (!store || bytes > ImageAccess::readable_bytes<T>(image)) return false;
  std::memmove(store, pixels, bytes);
  return true;
}

}  // namespace

// ---- single images ----

bool TextureMgr::load_image_from_file(Texture* texture, const char* filename, bool flip,
                                      PIXEL_FORMAT format) {
  if (!texture || !filename) return false;
  return data_->try_codecs(filename, [&](ImageCodec& codec) {
    return load_image_with(*this, *data_, codec, texture, format, [&](ImageCodec& c, Image& i) {
      return c.load_image_from_file(&i, filename, flip, format);
    });
  });
}

bool TextureMgr::load_texture_2d_from_file(Texture* texture, const char* filename, bool flip,
                                           PIXEL_FORMAT format) {
  if (!load_image_from_file(texture, filename, flip, format)) return false;
  if (TextureData* data = texture->get_data_ptr()) data->type = TEXTURE_2D;
  return true;
}

bool TextureMgr::load_texture_2d_from_memory(Texture* texture, unsigned char* data,
                                             unsigned int size, bool flip, PIXEL_FORMAT format) {
  if (!texture || !texture->get_data_ptr() || !data || size == 0) return false;
  texture->get_data_ptr()->type = TEXTURE_2D;
  return data_->try_codecs(IN_MEMORY, [&](ImageCodec& codec) {
    return load_image_with(*this, *data_, codec, texture, format, [&](ImageCodec& c, Image& i) {
      return c.load_image_from_memory(&i, data, size, flip, format);
    });
  });
}

bool TextureMgr::load_texture_2d_from_raw_memory(Texture* texture, const void* pixels,
                                                 unsigned int width, unsigned int height,
                                                 PIXEL_FORMAT format) {
  if (!texture || !pixels || width == 0 || height == 0 || format == PF_UNKNOWN) return false;
  Image image;
  if (!image.create(width, height, 1, format, false, true)) return false;
  const std::size_t bytes = image.get_u8_capacity() + image.get_f32_capacity();
  void* store = image.u8_ptr ? static_cast<void*>(image.u8_ptr) : image.f32_ptr;
  std::memcpy(store, pixels, bytes);
  if (!hand_over(texture, image) || !texture->get_data_ptr()) return false;
  texture->get_data_ptr()->type = TEXTURE_2D;
  return true;
}

// ---- cube maps ----

bool TextureMgr::load_cubemap_face_from_file(Texture* texture, CUBEMAP_FACE face,
                                             const char* filename, bool flip) {
  if (!texture || !filename) return false;
  return data_->try_codecs(filename, [&](ImageCodec& codec) {
    return load_face_with(*data_, codec, texture, face, [&](ImageCodec& c, Image& i) {
      return c.load_image_from_file(&i, filename, flip, PF_RGB_U8);
    });
  });
}

bool TextureMgr::load_cubemap_face_from_memory(Texture* texture, CUBEMAP_FACE face,
                                               unsigned char* data, unsigned int size, bool flip) {
  if (!texture || !data || size == 0) return false;
  return data_->try_codecs(IN_MEMORY, [&](ImageCodec& codec) {
    return load_face_with(*data_, codec, texture, face, [&](ImageCodec& c, Image& i) {
      return c.load_image_from_memory(&i, data, size, flip, PF_RGB_U8);
    });
  });
}

bool TextureMgr::load_texture_cube_from_files(Texture* texture, const char** filenames, bool flip) {
  if (!texture || !texture->get_data_ptr() || !filenames) return false;
  texture->get_data_ptr()->type = TEXTURE_CUBE;
  for (int face = 0; face < NUM_FACES; ++face) {
    const auto number = static_cast<CUBEMAP_FACE>(face);
    if (!load_cubemap_face_from_file(texture, number, filenames[face], flip)) return false;
  }
  return true;
}

bool TextureMgr::load_texture_cube_from_files(Texture* texture, const char* positive_x,
                                              const char* negative_x, const char* positive_y,
                                              const char* negative_y, const char* positive_z,
                                              const char* negative_z, bool flip) {
  const char* filenames[NUM_FACES] = {positive_x, negative_x, positive_y,
                                      negative_y, positive_z, negative_z};
  return load_texture_cube_from_files(texture, filenames, flip);
}

bool TextureMgr::load_texture_cube_from_memory(Texture* texture, unsigned char** datas,
                                               const unsigned int* sizes, bool flip) {
  if (!texture || !texture->get_data_ptr() || !datas || !sizes) return false;
  texture->get_data_ptr()->type = TEXTURE_CUBE;
  for (int face = 0; face < NUM_FACES; ++face) {
    const auto number = static_cast<CUBEMAP_FACE>(face);
    if (!load_cubemap_face_from_memory(texture, number, datas[face], sizes[face], flip)) {
      return false;
    }
  }
  return true;
}

// ---- array layers ----

bool TextureMgr::load_texture_2d_array_layer_from_file(Texture* texture, unsigned int layer,
                                                       const char* filename, bool flip) {
  if (!texture || !filename) return false;
  if (!texture->get_layer_image_ptr(layer)) {
    LogMgr::get().tracef_debug("image %s: the texture has no layer %u", filename, layer);
    return false;
  }
  return data_->try_codecs(filename, [&](ImageCodec& codec) {
    Image* image = texture->get_layer_image_ptr(layer);
    if (!image) return false;
    LentPixels lent(image);
    if (!codec.load_image_from_file(image, filename, flip, image->pixel_format)) return false;
    image->set_codec_id(codec.get_id());
    // A codec sees its own pixels and deals with them itself.
    if (lent.get_codec_id() != codec.get_id()) lent.give_back(*data_, *image);
    texture->get_data_ptr()->gpu_update_needed = true;
    add_texture(texture);
    data_->last_codec = &codec;
    return true;
  });
}

bool TextureMgr::load_texture_2d_array_layer_from_raw_memory(Texture* texture, unsigned int layer,
                                                             const void* pixels) {
  if (!texture || !pixels) return false;
  Image* image = texture->get_layer_image_ptr(layer);
  if (!image) return false;
  std::size_t bytes = 0;
  if (!detail::block_size(detail::pixel_count(*image), 1, image->get_pixel_format_size(), &bytes)) {
    return false;
  }
  const bool has_bytes = copy_into_store<unsigned char>(*image, pixels, bytes);
  const bool has_floats = copy_into_store<float>(*image, pixels, bytes);
  if (!has_bytes && !has_floats) return false;
  texture->get_data_ptr()->gpu_update_needed = true;
  return true;
}

// ---- fonts ----

bool TextureMgr::load_texture_2d_from_truetype_file(Texture* texture, const char* filename,
                                                    float pixel_height, int width, int height) {
  if (!texture || !filename || width <= 0 || height <= 0) return false;
  if (static_cast<std::int64_t>(width) * height > INT_MAX) {
    LogMgr::get().tracef_debug("font %s: a picture of %dx%d is too large", filename, width, height);
    return false;
  }
  std::vector<unsigned char> file;
  const char* fault = nullptr;
  if (!detail::read_whole_file(filename, file, &fault)) {
    LogMgr::get().tracef_debug("font %s: %s", filename, fault);
    return false;
  }
  Image image;
  if (!image.create(static_cast<unsigned int>(width), static_cast<unsigned int>(height), 1, PF_R_U8,
                    true, true)) {
    return false;
  }
  // A picture too small for all characters shows those that fit.
  std::vector<detail::BakedChar> glyphs(NUM_CHARACTERS);
  fault = detail::bake_font_bitmap(file.data(), file.size(), pixel_height, image.u8_ptr, width,
                                   height, FIRST_CHARACTER, NUM_CHARACTERS, glyphs.data())
              .fault;
  if (fault) {
    LogMgr::get().tracef_debug("font %s: %s", filename, fault);
    return false;
  }
  if (!hand_over(texture, image) || !texture->get_data_ptr()) return false;
  texture->get_data_ptr()->type = TEXTURE_2D;
  return true;
}

// ---- straight to the GPU ----

namespace {

bool update_gpu_memory_with(TextureMgrData& state, ImageCodec& codec, Renderer* renderer,
                            TextureData& data, const char* filename, bool flip,
                            PIXEL_FORMAT format) {
  Image image;
  if (!codec.load_image_from_file(&image, filename, flip, format)) return false;
  if (data.update_pixel_format(format)) data.gpu_update_needed = true;
  bool is_updated = false;
  // Who holds the pixels frees them; the conversion below leaves them alone.
  ImageCodec* pixel_holder = image.codec_pixels ? &codec : state.last_codec;
  if (!fit_to_texture(data, image)) {
    LogMgr::get().tracef_debug("image %s: %ux%u pixels do not fit texture %s of %ux%u", filename,
                               image.width, image.height, data.texture_name, data.get_width(),
                               data.get_height());
  } else {
    if (const void* pixels = pixels_of(image)) {
      is_updated = renderer->texture_update_2d_v2(&data, 0, 0, static_cast<int>(image.width),
                                                  static_cast<int>(image.height), 1, pixels);
    }
  }
  if (pixel_holder) pixel_holder->free_image_resources(&image);
  state.last_codec = &codec;
  return is_updated;
}

}  // namespace

bool TextureMgr::update_gpu_memory_from_file(Renderer* renderer, Texture* texture,
                                             const char* filename, bool flip, PIXEL_FORMAT format) {
  if (!renderer || !texture || !texture->get_data_ptr() || !filename) return false;
  return data_->try_codecs(filename, [&](ImageCodec& codec) {
    return update_gpu_memory_with(*data_, codec, renderer, *texture->get_data_ptr(), filename, flip,
                                  format);
  });
}

// ---- writing ----

bool TextureMgr::write_texture_2d_to_file(Texture* texture, const char* filename) {
  if (!texture || !texture->get_data_ptr() || !filename) return false;
  if (texture->get_data_ptr()->type != TEXTURE_2D) return false;
  return data_->try_codecs(filename, [&](ImageCodec& codec) {
    return codec.save_image_to_file(texture->get_image_ptr(), filename);
  });
}

// ---- screenshots ----

namespace {

bool fit_screenshot(Image& image, unsigned int width, unsigned int height) {
  if (width == 0 || height == 0) return false;
  // A codec that wrote the last one may have changed the image.
  const bool is_fit = image.width == width && image.height == height && image.depth == 1 &&
                      image.pixel_format == PF_BGRA_U8 && image.get_u8_capacity() > 0;
  return (is_fit && image.has_pixels()) || image.create(width, height, 1, PF_BGRA_U8, true, true);
}

/// Offers the picture to every codec of the current name and then of the fallback's, until one can
/// write it.
bool save_screenshot(TextureMgrData& state, const char* filename, bool flip) {
  Image* image = &state.screenshot_image;
  if (flip) image->flip_vertical();
  // A codec may change both the names and the list.
  const std::string names[] = {state.current_image_codec_name, state.fallback_image_codec_name};
  bool is_asked = false;
  for (const std::string& name : names) {
    for (std::size_t i = 0; i < state.image_codecs.size(); ++i) {
      ImageCodec* codec = state.image_codecs[i];
      if (name != codec->get_name()) continue;
      const detail::RepeatedAttempt attempt(is_asked && &name != names && name == names[0]);
      if (codec->save_image_to_file(image, filename)) return true;
      is_asked = true;
    }
  }
  if (!is_asked) state.report_no_codec(filename);
  return false;
}

/// Says in the log why there is no picture of the back buffer.
bool fail_screenshot(const Renderer& renderer, const char* filename) {
  LogMgr::get().tracef_debug("screenshot %s: the back buffer cannot be read%s", filename,
                             renderer.is_started() ? "" : ": the renderer is not started");
  return false;
}

}  // namespace

bool TextureMgr::do_screenshot(Renderer* renderer, const char* filename, bool flip) {
  if (!renderer || !filename) return false;
  unsigned int size = 0, width = 0, height = 0;
  if (!renderer->get_back_buffer_size(&size, &width, &height) || width == 0 || height == 0) {
    return fail_screenshot(*renderer, filename);
  }
  Image& image = data_->screenshot_image;
  if (!fit_screenshot(image, width, height)) return false;
  if (!renderer->read_back_buffer_rgba(image.u8_ptr)) {
    return fail_screenshot(*renderer, filename);
  }
  return save_screenshot(*data_, filename, flip);
}

bool TextureMgr::do_screenshot_v2(Renderer* renderer, const char* filename, int x, int y, int width,
                                  int height, bool flip) {
  if (!renderer || !filename || width <= 0 || height <= 0) return false;
  Image& image = data_->screenshot_image;
  if (!fit_screenshot(image, static_cast<unsigned int>(width), static_cast<unsigned int>(height))) {
    return false;
  }
  if (!renderer->read_back_buffer_rect_rgba(image.u8_ptr, x, y, width, height)) {
    return fail_screenshot(*renderer, filename);
  }
  return save_screenshot(*data_, filename, flip);
}

const Image* TextureMgr::get_screenshot_image() const { return &data_->screenshot_image; }

}  // namespace orv
