#include <orv/gpu/texture.h>

#include <orv/core/log_mgr.h>
#include <orv/gpu/gpu_render_target.h>
#include <orv/gpu/texture_data.h>
#include <orv/image/image.h>
#include <orv/render/renderer.h>

#include <cstdio>

namespace orv {
namespace {

unsigned int side(int size) { return size > 0 ? static_cast<unsigned int>(size) : 0; }

/// Makes a block a view of an API object that belongs to a render target.
void become_view(TextureData& data, const GpuRenderTarget& target, unsigned int api_id,
                 int image_depth) {
  data.gl_texture_id = api_id;
  data.gl_texture_borrowed = true;
  data.gpu_update_needed = false;
  data.type = TEXTURE_2D;
  data.set_image_size(side(target.width), side(target.height), side(image_depth),
                      target.pixel_format);
  data.loaded_in_gpu_memory = true;
}

}  // namespace

// ---- life ----

Texture::Texture() {
  set_type(NODE_TYPE_TEXTURE);
  char name[64];
  std::snprintf(name, sizeof(name), "texture_%d", get_id());
  Texture::set_name(name);
  Texture::_init(nullptr);
}

Texture::~Texture() { _set_texture_data(nullptr, nullptr); }

bool Texture::_init(Renderer* renderer) {
  auto* fresh = new TextureData;
  fresh->set_texture_name_and_id(get_name(), get_id());
  return _set_texture_data(renderer, fresh);
}

bool Texture::_cleanup(Renderer* renderer) { return _set_texture_data(renderer, nullptr); }

void Texture::set_name(const char* name) {
  if (!name) return;
  Resource::set_name(name);
  if (data_) data_->set_texture_name_and_id(name, data_->texture_id);
}

int Texture::get_renderer_id() { return data_ ? data_->renderer_id : 0; }

// ---- block ----

bool Texture::_set_texture_data(Renderer* renderer, TextureData* new_data) {
  // The new block is counted first: it may be the one held already.
  if (new_data) new_data->inc_ref();
  TextureData* old_data = data_;
  data_ = new_data;
  if (!old_data || old_data->dec_ref() > 0) return true;
  if (renderer) renderer->texture_unload(old_data);
  old_data->cleanup();
  delete old_data;
  return true;
}

bool Texture::share_texture_data(Renderer* renderer, Texture* other) {
  if (!other || !other->data_) return false;
  return _set_texture_data(renderer, other->data_);
}

// ---- creation ----

bool Texture::load_from_image(const Image& image) {
  if (!data_) return false;
  data_->image = image;
  data_->gpu_update_needed = true;
  return true;
}

bool Texture::load_cubemap_face_image(CUBEMAP_FACE face, const Image& image) {
  Image* target = get_cubemap_image_ptr(face);
  if (!target) return false;
  *target = image;
  data_->cubemap_faces[face].loaded = true;
  data_->gpu_update_needed = true;
  return true;
}

bool Texture::create_1d(unsigned int width, PIXEL_FORMAT format, bool zero_fill) {
  if (!data_ || !data_->image.create(width, 1, 1, format, zero_fill, true)) return false;
  data_->type = TEXTURE_1D;
  data_->gpu_update_needed = true;
  return true;
}

bool Texture::create_2d(unsigned int width, unsigned int height, PIXEL_FORMAT format,
                        bool zero_fill) {
  if (!data_ || !data_->image.create(width, height, 1, format, zero_fill, true)) return false;
  data_->type = TEXTURE_2D;
  data_->gpu_update_needed = true;
  return true;
}

bool Texture::create_2d_array(unsigned int width, unsigned int height, unsigned int num_layers,
                              PIXEL_FORMAT format, bool zero_fill) {
  if (!data_) return false;
  const auto fail = [](unsigned int layer) {
    LogMgr::get().tracef_error("texture 2D array: failed to allocate memory for layer %d",
                               static_cast<int>(layer));
    return false;
  };
  if (!data_->layers.alloc(num_layers)) return fail(0);
  data_->gpu_update_needed = true;
  for (unsigned int i = 0; i < num_layers; ++i) {
    if (!data_->layers.layers[i].create(width, height, 1, format, zero_fill, true)) return fail(i);
  }
  data_->type = TEXTURE_2D_ARRAY;
  return true;
}

bool Texture::create_2d_rectangle(unsigned int width, unsigned int height, PIXEL_FORMAT format,
                                  bool zero_fill) {
  if (!data_ || !data_->image.create(width, height, 1, format, zero_fill, true)) return false;
  data_->type = TEXTURE_RECTANGLE;
  data_->gpu_update_needed = true;
  return true;
}

bool Texture::create_cubemap(unsigned int size, PIXEL_FORMAT format, bool zero_fill) {
  if (!data_) return false;
  for (TextureCubeMapFace& face : data_->cubemap_faces) {
    face.image.create(size, size, 1, format, zero_fill, true);
  }
  data_->type = TEXTURE_CUBE;
  data_->gpu_update_needed = true;
  return true;
}

bool Texture::init_color_texture_from_render_target(GpuRenderTarget* target, unsigned int index) {
  if (!data_ || !target) return false;
  become_view(*data_, *target, target->gl_get_color_texture(index), target->height);
  return true;
}

bool Texture::init_color_texture_from_render_target_v2(Renderer* renderer, GpuRenderTarget* target,
                                                       unsigned int index) {
  if (!renderer || !data_ || !target) return false;
  return renderer->texture_bind_render_target_color(data_, target, index);
}

bool Texture::init_depth_texture_from_render_target(GpuRenderTarget* target) {
  if (!data_ || !target) return false;
  become_view(*data_, *target, target->gl_get_depth_texture(), 1);
  return true;
}

bool Texture::init_depth_texture_from_render_target_v2(Renderer* renderer,
                                                       GpuRenderTarget* target) {
  if (!renderer || !data_ || !target) return false;
  return renderer->texture_bind_render_target_depth(data_, target);
}

// ---- use ----

bool Texture::gpu_memory_update(Renderer* renderer) {
  if (!renderer || !data_) return false;
  const int width = static_cast<int>(data_->get_width());
  const int height = static_cast<int>(data_->get_height());
  bool is_done = false;
  switch (static_cast<int>(data_->type)) {
    case TEXTURE_1D:
      is_done = renderer->texture_update_1d(data_, 0, width);
      break;
    case TEXTURE_2D:
      is_done = renderer->texture_update_2d(data_, 0, 0, width, height, 1);
      break;
    case TEXTURE_CUBE:
      is_done = renderer->texture_load_cube_all_faces(data_);
      break;
    default:
      break;
  }
  data_->gpu_update_needed = false;
  return is_done;
}

bool Texture::bind(Renderer* renderer, unsigned int unit) {
  if (!renderer || !data_) return false;
  if (!data_->loaded_in_gpu_memory && data_->has_pixels()) upload(renderer, unit, false);
  const bool is_bound = renderer->texture_bind(data_, unit);
  if (data_->gpu_update_needed) gpu_memory_update(renderer);
  return is_bound;
}

bool Texture::unbind(Renderer* renderer, unsigned int unit) {
  if (!renderer || !data_) return false;
  return renderer->texture_unbind(data_, unit);
}

bool Texture::activate(Renderer* renderer, unsigned int unit) {
  if (!renderer || !data_) return false;
  return renderer->texture_unbind_unit(unit);
}

bool Texture::image_bind(Renderer* renderer, unsigned int unit, DATA_ACCESS_TYPE access) {
  if (!renderer || !data_) return false;
  return renderer->texture_bind_image(data_, unit, access);
}

bool Texture::image_unbind(Renderer* renderer, unsigned int unit) {
  if (!renderer || !data_) return false;
  return renderer->texture_bind_image(nullptr, unit, DATA_ACCESS_READ_WRITE);
}

bool Texture::upload(Renderer* renderer, unsigned int unit, bool flag) {
  if (!renderer || !data_) return false;
  if (renderer->get_api_type() == ORV_API3D_D3D12) {
    return renderer->texture_load_direct3d(nullptr, data_, unit, flag ? 1 : 0);
  }
  return renderer->texture_load(nullptr, data_, unit);
}

bool Texture::unload(Renderer* renderer) {
  if (!renderer || !data_) return false;
  return renderer->texture_unload(data_);
}

// ---- state ----

bool Texture::is_loaded_in_gpu_memory() const { return data_ && data_->loaded_in_gpu_memory; }

void Texture::set_loaded_in_gpu_memory_state(bool state) {
  if (data_) data_->loaded_in_gpu_memory = state;
}

void Texture::set_opengl_texture_id(unsigned int api_id) {
  if (data_) data_->gl_texture_id = api_id;
}

unsigned int Texture::get_opengl_texture_id() const { return data_ ? data_->gl_texture_id : 0; }

void Texture::set_filtering_mode(Renderer* renderer, SAMPLER_FILTERING_MODE mode) {
  if (!data_) return;
  data_->filtering_mode = mode;
  if (renderer) renderer->texture_set_filtering_mode(data_, mode);
}

SAMPLER_FILTERING_MODE Texture::get_filtering_mode() const {
  return data_ ? data_->filtering_mode : static_cast<SAMPLER_FILTERING_MODE>(0);
}

void Texture::set_addressing_mode(Renderer* renderer, SAMPLER_ADDRESSING_MODE mode) {
  if (!data_) return;
  data_->addressing_mode = mode;
  if (renderer) renderer->texture_set_addressing_mode(data_, mode);
}

SAMPLER_ADDRESSING_MODE Texture::get_addressing_mode() const {
  return data_ ? data_->addressing_mode : static_cast<SAMPLER_ADDRESSING_MODE>(0);
}

void Texture::set_anisotropy(Renderer* renderer, float value) {
  if (!data_) return;
  data_->anisotropy = value;
  if (renderer) renderer->texture_set_anisotropy(data_, value);
}

float Texture::get_anisotropy() const { return data_ ? data_->anisotropy : 0.0f; }

void Texture::gen_mipmaps(bool state) {
  if (data_) data_->gen_mipmaps = state;
}

void Texture::set_mipmap_levels(int base_level, int max_level) {
  if (data_) data_->set_mipmap_levels(base_level, max_level);
}

int Texture::get_mipmap_base_level() const { return data_ ? data_->mipmap_base_level : 0; }

int Texture::get_mipmap_max_level() const { return data_ ? data_->mipmap_max_level : 0; }

unsigned int Texture::get_max_number_of_mipmaps() const {
  return data_ ? data_->get_max_number_of_mipmaps() : 0;
}

bool Texture::set_compression_format(const char* name) {
  return data_ && data_->set_compression_format(name);
}

bool Texture::get_gpu_compression_state() const { return data_ && data_->gpu_compression; }

void Texture::set_gpu_compression_state(bool state) {
  if (data_) data_->gpu_compression = state;
}

bool Texture::get_s3tc_compression_state() const { return data_ && data_->s3tc_compression; }

void Texture::set_s3tc_compression_state(bool state) {
  if (data_) data_->s3tc_compression = state;
}

unsigned int Texture::get_gpu_memory_size() const { return data_ ? data_->gpu_memory_size : 0; }

unsigned int Texture::get_gpu_memory_size_compressed() const {
  return data_ ? data_->gpu_memory_size_compressed : 0;
}

// ---- size, format, images ----

unsigned int Texture::get_width() const { return data_ ? data_->get_width() : 0; }

unsigned int Texture::get_height() const { return data_ ? data_->get_height() : 0; }

PIXEL_FORMAT Texture::get_pixel_format() const {
  return data_ ? data_->get_pixel_format() : PF_UNKNOWN;
}

void* Texture::get_pixmap_ptr() const { return data_ ? data_->get_pixmap_ptr() : nullptr; }

unsigned char* Texture::get_pixmap_u8_ptr() const {
  return data_ ? data_->get_pixmap_u8_ptr() : nullptr;
}

float* Texture::get_pixmap_f32_ptr() const { return data_ ? data_->get_pixmap_f32_ptr() : nullptr; }

Image* Texture::get_image_ptr() const { return data_ ? &data_->image : nullptr; }

Image* Texture::get_cubemap_image_ptr(CUBEMAP_FACE face) const {
  return data_ ? data_->get_cubemap_image_ptr(face) : nullptr;
}

Image* Texture::get_layer_image_ptr(unsigned int layer) const {
  return data_ ? data_->get_layer_image_ptr(layer) : nullptr;
}

}  // namespace orv
