#include <orv/gpu/texture_mgr.h>

#include <orv/core/log_mgr.h>
#include <orv/core/plugin_mgr.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/image/image_codec.h>
#include <orv/render/renderer.h>

#include "core/plugin_hooks.h"
#include "gpu/texture_mgr_data.h"

#include <algorithm>
#include <cstring>

namespace orv {
namespace {

constexpr std::size_t MAX_NAME = 127;

TextureMgrData* registered_codecs = nullptr;

/// A plugin that goes away takes its entries with it. Only its address is looked at.
void forget_plugin(Plugin* plugin) {
  if (!registered_codecs) return;
  const auto is_plugin = [plugin](ImageCodec* codec) { return codec == plugin; };
  std::erase_if(registered_codecs->image_codecs, is_plugin);
  if (is_plugin(registered_codecs->last_codec)) registered_codecs->last_codec = nullptr;
}

bool may_release(Renderer* renderer, Texture* texture) {
  const int renderer_id = texture->get_renderer_id();
  return renderer_id < 1 || !renderer || renderer->get_id() == renderer_id;
}

}  // namespace

// ---- private block ----

ImageCodec* TextureMgrData::find_codec(const char* name) const {
  for (ImageCodec* codec : image_codecs) {
    if (std::strncmp(codec->get_name(), name, MAX_NAME) == 0) return codec;
  }
  return nullptr;
}

ImageCodec* TextureMgrData::find_codec(int plugin_id) const {
  for (ImageCodec* codec : image_codecs) {
    if (codec->get_id() == plugin_id) return codec;
  }
  return nullptr;
}

void TextureMgrData::report_no_codec(const char* subject) const {
  LogMgr::get().tracef_debug("image %s: no codec named \"%s\" or \"%s\" is registered", subject,
                             current_image_codec_name.c_str(), fallback_image_codec_name.c_str());
}

void TextureMgrData::free_lent_pixels(Image* image) const {
  ImageCodec* codec = find_codec(image->get_codec_id());
  if (codec && codec->free_image_resources(image)) image->codec_pixels = nullptr;
}

void TextureMgrData::free_image(Image* image) const {
  free_lent_pixels(image);
  image->cleanup();
}

// ---- life ----

TextureMgr* TextureMgr::get() {
  static TextureMgr* const manager = new TextureMgr;
  return manager;
}

TextureMgr::TextureMgr() : data_(new TextureMgrData) {
  registered_codecs = data_;
  add_plugin_destroyed_hook(&forget_plugin);
}

TextureMgr::~TextureMgr() {
  registered_codecs = nullptr;
  delete data_;
}

bool TextureMgr::start(Renderer*) {
  PluginMgr::get();
  return true;
}

bool TextureMgr::stop(Renderer* renderer) {
  data_->last_codec = nullptr;
  release_all_textures(renderer, nullptr);
  data_->image_codecs.clear();
  return ResourceMgr::stop(renderer);
}

// ---- codecs ----

bool TextureMgr::register_image_codec_plugin(ImageCodec* codec) {
  if (!codec) return false;
  codec->add_ref();
  data_->image_codecs.push_back(codec);
  return true;
}

int TextureMgr::register_all_image_codec_plugins() {
  PluginMgr* plugins = PluginMgr::get();
  int count = 0;
  for (unsigned int i = 0; i < plugins->get_num_plugins(); ++i) {
    Plugin* plugin = plugins->get_plugin_by_index(i);
    if (!plugin || plugin->get_type() != PLUGIN_TYPE_IMAGE_CODEC) continue;
    register_image_codec_plugin(static_cast<ImageCodec*>(plugin));
    ++count;
  }
  return count;
}

bool TextureMgr::unregister_image_codec_plugin(ImageCodec* codec) {
  std::vector<ImageCodec*>& codecs = data_->image_codecs;
  const auto place = std::find(codecs.begin(), codecs.end(), codec);
  if (place == codecs.end()) return false;
  codecs.erase(place);
  codec->dec_ref();
  return true;
}

void TextureMgr::unregister_all_image_codec_plugins() { data_->image_codecs.clear(); }

unsigned int TextureMgr::get_num_image_codecs() const {
  return static_cast<unsigned int>(data_->image_codecs.size());
}

ImageCodec* TextureMgr::get_image_codec_by_index(unsigned int index) const {
  return index < data_->image_codecs.size() ? data_->image_codecs[index] : nullptr;
}

ImageCodec* TextureMgr::get_last_image_codec() const { return data_->last_codec; }

const char* TextureMgr::get_current_image_codec_name() const {
  return data_->current_image_codec_name.c_str();
}

void TextureMgr::set_current_image_codec_name(const char* name) {
  if (name) data_->current_image_codec_name = name;
}

// ---- new textures ----

namespace {

Texture* add_new_texture(TextureMgr& manager) {
  auto* texture = new Texture;
  manager.add_texture(texture);
  return texture;
}

Texture* keep_or_release(TextureMgr& manager, Texture* texture, bool is_loaded) {
  if (is_loaded) return texture;
  manager.release_resource(nullptr, texture, nullptr);
  return nullptr;
}

}  // namespace

bool TextureMgr::add_texture(Texture* texture) { return add_resource(texture); }

Texture* TextureMgr::create_texture() { return add_new_texture(*this); }

Texture* TextureMgr::create_texture_1d(unsigned int width, PIXEL_FORMAT format, bool zero_fill) {
  Texture* texture = add_new_texture(*this);
  texture->create_1d(width, format, zero_fill);
  return texture;
}

Texture* TextureMgr::create_texture_2d(unsigned int width, unsigned int height, PIXEL_FORMAT format,
                                       bool zero_fill) {
  Texture* texture = add_new_texture(*this);
  texture->create_2d(width, height, format, zero_fill);
  return texture;
}

Texture* TextureMgr::create_texture_2d_rectangle(unsigned int width, unsigned int height,
                                                 PIXEL_FORMAT format, bool zero_fill) {
  Texture* texture = add_new_texture(*this);
  texture->create_2d_rectangle(width, height, format, zero_fill);
  return texture;
}

Texture* TextureMgr::create_texture_2d_array(unsigned int width, unsigned int height,
                                             unsigned int num_layers, PIXEL_FORMAT format,
                                             bool zero_fill) {
  Texture* texture = add_new_texture(*this);
  texture->create_2d_array(width, height, num_layers, format, zero_fill);
  return texture;
}

Texture* TextureMgr::create_texture_cube(unsigned int size, PIXEL_FORMAT format, bool zero_fill) {
  Texture* texture = add_new_texture(*this);
  texture->create_cubemap(size, format, zero_fill);
  return texture;
}

Texture* TextureMgr::create_texture_2d_from_file(const char* filename, bool flip,
                                                 PIXEL_FORMAT format) {
  Texture* texture = add_new_texture(*this);
  return keep_or_release(*this, texture,
                         load_texture_2d_from_file(texture, filename, flip, format));
}

Texture* TextureMgr::create_texture_2d_from_memory(unsigned char* data, unsigned int size,
                                                   bool flip, PIXEL_FORMAT format) {
  Texture* texture = add_new_texture(*this);
  return keep_or_release(*this, texture,
                         load_texture_2d_from_memory(texture, data, size, flip, format));
}

Texture* TextureMgr::create_texture_cube_from_files(const char** filenames, bool flip) {
  Texture* texture = add_new_texture(*this);
  return keep_or_release(*this, texture, load_texture_cube_from_files(texture, filenames, flip));
}

Texture* TextureMgr::create_texture_cube_from_files(const char* positive_x, const char* negative_x,
                                                    const char* positive_y, const char* negative_y,
                                                    const char* positive_z, const char* negative_z,
                                                    bool flip) {
  const char* filenames[6] = {positive_x, negative_x, positive_y,
                              negative_y, positive_z, negative_z};
  return create_texture_cube_from_files(filenames, flip);
}

Texture* TextureMgr::create_texture_cube_from_memory(unsigned char** datas,
                                                     const unsigned int* sizes, bool flip) {
  Texture* texture = add_new_texture(*this);
  return keep_or_release(*this, texture,
                         load_texture_cube_from_memory(texture, datas, sizes, flip));
}

Texture* TextureMgr::create_texture_2d_from_raw_memory(const void* pixels, unsigned int width,
                                                       unsigned int height, PIXEL_FORMAT format) {
  Texture* texture = add_new_texture(*this);
  return keep_or_release(*this, texture,
                         load_texture_2d_from_raw_memory(texture, pixels, width, height, format));
}

Texture* TextureMgr::create_texture_from_truetype_file(const char* filename, float pixel_height,
                                                       int width, int height) {
  Texture* texture = add_new_texture(*this);
  return keep_or_release(
      *this, texture,
      load_texture_2d_from_truetype_file(texture, filename, pixel_height, width, height));
}

Texture* TextureMgr::create_color_texture_from_render_target(GpuRenderTarget* target,
                                                             unsigned int index) {
  if (!target) return nullptr;
  Texture* texture = add_new_texture(*this);
  texture->get_data_ptr()->type = TEXTURE_2D;
  texture->init_color_texture_from_render_target(target, index);
  return texture;
}

Texture* TextureMgr::create_depth_texture_from_render_target(GpuRenderTarget* target) {
  if (!target) return nullptr;
  Texture* texture = add_new_texture(*this);
  texture->get_data_ptr()->type = TEXTURE_2D;
  texture->init_depth_texture_from_render_target(target);
  return texture;
}

// ---- release ----

bool TextureMgr::free_image_resource(Texture* texture) {
  if (!texture) return false;
  TextureData* data = texture->get_data_ptr();
  if (!data) return true;
  if (data->layers.num_layers == 0) data_->free_image(&data->image);
  for (unsigned int i = 0; i < data->layers.num_layers; ++i) {
    data_->free_image(data->layers.get_layer(i));
  }
  return true;
}

int TextureMgr::release_texture(Renderer* renderer, Texture* texture, Thread* thread) {
  if (texture && texture->get_ref() < 2) free_image_resource(texture);
  return release_resource(renderer, texture, thread);
}

bool TextureMgr::release_all_textures(Renderer* renderer, Thread* thread) {
  for (unsigned int i = 0; i < get_num_resources(); ++i) {
    auto* texture = static_cast<Texture*>(get_resource_by_index(i));
    if (may_release(renderer, texture)) free_image_resource(texture);
  }
  return release_all_resources(renderer, thread);
}

}  // namespace orv
