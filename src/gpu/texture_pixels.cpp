// Texture: pixels in main memory.
#include <orv/gpu/gpu_render_target.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/image/image.h>
#include <orv/render/renderer.h>

namespace orv {
namespace {

/// Runs an operation on an image of a block; when it gives true the API object is out of date.
template <typename Operation>
bool edit(TextureData* data, Image* image, Operation operation) {
  if (!data || !image || !operation(*image)) return false;
  data->gpu_update_needed = true;
  return true;
}

/// Makes the image anew as bytes of this format unless it has that size, a store large enough and
/// as many bytes a pixel.
bool fit_bytes(Image& image, unsigned int width, unsigned int height, PIXEL_FORMAT format) {
  const unsigned int pixel_size = Image::get_pixel_format_size(format);
  const bool fits = image.width == width && image.height == height && image.u8_ptr &&
                    image.get_pixel_format_size() == pixel_size && image.has_pixels();
  return fits || image.create(width, height, 1, format, true, true);
}

using ReadTarget = bool (Renderer::*)(GpuRenderTarget*, unsigned char*);

bool read_render_target(Renderer* renderer, TextureData* data, GpuRenderTarget* target,
                        PIXEL_FORMAT format, ReadTarget read) {
  if (!renderer || !data || !target || target->width <= 0 || target->height <= 0) return false;
  const auto width = static_cast<unsigned int>(target->width);
  const auto height = static_cast<unsigned int>(target->height);
  return edit(data, &data->image, [&](Image& image) {
    return fit_bytes(image, width, height, format) && (renderer->*read)(target, image.u8_ptr);
  });
}

}  // namespace

bool Texture::set_pixmap_u8_ptr(unsigned char* pixels) {
  if (!data_) return false;
  data_->image.set_u8_ptr(pixels);
  data_->gpu_update_needed = true;
  return true;
}

bool Texture::set_pixmap_f32_ptr(float* pixels) {
  if (!data_) return false;
  data_->image.set_f32_ptr(pixels);
  data_->gpu_update_needed = true;
  return true;
}

bool Texture::update_pixel_format(PIXEL_FORMAT target) {
  if (!data_ || !data_->update_pixel_format(target)) return false;
  data_->gpu_update_needed = true;
  return true;
}

// ---- copies ----

bool Texture::update_pixmap_rgb_u8(const void* src) {
  return edit(data_, get_image_ptr(), [=](Image& i) { return i.update_pixmap_rgb_u8(src); });
}

bool Texture::update_pixmap_rgba_u8(const void* src) {
  return edit(data_, get_image_ptr(), [=](Image& i) { return i.update_pixmap_rgba_u8(src); });
}

bool Texture::update_pixmap_r_u8(const void* src) {
  return edit(data_, get_image_ptr(), [=](Image& i) { return i.update_pixmap_r_u8(src); });
}

bool Texture::update_pixmap_rgb_f32(const void* src) {
  return edit(data_, get_image_ptr(), [=](Image& i) { return i.update_pixmap_rgb_f32(src); });
}

bool Texture::update_pixmap_rgba_f32(const void* src) {
  return edit(data_, get_image_ptr(), [=](Image& i) { return i.update_pixmap_rgba_f32(src); });
}

bool Texture::update_pixmap_r_f32(const void* src) {
  return edit(data_, get_image_ptr(), [=](Image& i) { return i.update_pixmap_r_f32(src); });
}

bool Texture::update_pixmap_rgb_u8_2d_array(unsigned int layer, const void* src) {
  return edit(data_, get_layer_image_ptr(layer),
              [=](Image& i) { return i.update_pixmap_rgb_u8(src); });
}

bool Texture::update_pixmap_rgba_u8_2d_array(unsigned int layer, const void* src) {
  return edit(data_, get_layer_image_ptr(layer),
              [=](Image& i) { return i.update_pixmap_rgba_u8(src); });
}

bool Texture::update_pixmap_r_u8_2d_array(unsigned int layer, const void* src) {
  return edit(data_, get_layer_image_ptr(layer),
              [=](Image& i) { return i.update_pixmap_r_u8(src); });
}

bool Texture::update_pixmap_rgb_f32_2d_array(unsigned int layer, const void* src) {
  return edit(data_, get_layer_image_ptr(layer),
              [=](Image& i) { return i.update_pixmap_rgb_f32(src); });
}

bool Texture::update_pixmap_rgba_f32_2d_array(unsigned int layer, const void* src) {
  return edit(data_, get_layer_image_ptr(layer),
              [=](Image& i) { return i.update_pixmap_rgba_f32(src); });
}

bool Texture::update_pixmap_r_f32_2d_array(unsigned int layer, const void* src) {
  return edit(data_, get_layer_image_ptr(layer),
              [=](Image& i) { return i.update_pixmap_r_f32(src); });
}

// ---- pictures drawn by the renderer ----

bool Texture::update_pixmap_rgba_u8_from_framebuffer(Renderer* renderer) {
  if (!renderer || !data_) return false;
  unsigned int size = 0, width = 0, height = 0;
  if (!renderer->get_back_buffer_size(&size, &width, &height)) return false;
  if (!fit_bytes(data_->image, width, height, PF_RGBA_U8)) return false;
  data_->type = TEXTURE_2D;
  return edit(data_, &data_->image,
              [=](Image& i) { return renderer->read_back_buffer_rgba(i.u8_ptr); });
}

bool Texture::update_pixmap_rgb_u8_from_render_target(Renderer* renderer, GpuRenderTarget* target) {
  return read_render_target(renderer, data_, target, PF_RGB_U8,
                            &Renderer::gpu_render_target_read_rgb_u8);
}

bool Texture::update_pixmap_rgba_u8_from_render_target(Renderer* renderer,
                                                       GpuRenderTarget* target) {
  return read_render_target(renderer, data_, target, PF_RGBA_U8,
                            &Renderer::gpu_render_target_read_rgba_u8);
}

bool Texture::update_pixmap_rgba_u8_from_render_target_v2(Renderer* renderer,
                                                          GpuRenderTarget* target) {
  if (!renderer || !data_ || !target) return false;
  if (target->pixel_format != PF_RGBA_U8 && target->pixel_format != PF_BGRA_U8) return false;
  if (target->width < 0 || target->height < 0) return false;
  const auto width = static_cast<unsigned int>(target->width);
  const auto height = static_cast<unsigned int>(target->height);
  if (data_->image.width != width || data_->image.height != height) {
    data_->set_image_size(width, height, 1, PF_RGBA_U8);
    data_->type = TEXTURE_2D;
  }
  // An object of the texture's own would be lost with its id.
  if (data_->gl_texture_id != 0 && !data_->gl_texture_borrowed) renderer->texture_unload(data_);
  data_->gl_texture_id = renderer->gpu_render_target_get_color_texture_handle(target, 0);
  data_->gl_texture_borrowed = data_->gl_texture_id != 0;
  data_->pixel_buffer_id = 0;
  return data_->gl_texture_id != 0;
}

// ---- single pixels ----

bool Texture::get_texel_1d(unsigned int index, float* out4) const {
  return data_ && data_->image.get_pixel(index, out4);
}

bool Texture::get_texel_2d_v1(unsigned int index, float* out4) const {
  return data_ && data_->image.get_pixel(index, out4);
}

bool Texture::get_texel_2d_v2(unsigned int x, unsigned int y, float* out4) const {
  return data_ && data_->image.get_pixel_2d(x, y, out4);
}

bool Texture::get_texel_2d_array_v1(unsigned int layer, unsigned int index, float* out4) const {
  const Image* image = get_layer_image_ptr(layer);
  return image && image->get_pixel(index, out4);
}

bool Texture::get_texel_2d_array_v2(unsigned int layer, unsigned int x, unsigned int y,
                                    float* out4) const {
  const Image* image = get_layer_image_ptr(layer);
  return image && image->get_pixel_2d(x, y, out4);
}

bool Texture::set_texel_1d(unsigned int index, const vec4& color) {
  return edit(data_, get_image_ptr(), [&](Image& i) { return i.set_pixel(index, color); });
}

bool Texture::set_texel_1d_v2(unsigned int index, const float* color) {
  return edit(data_, get_image_ptr(), [=](Image& i) { return i.set_pixel_v2(index, color); });
}

bool Texture::set_texel_2d(unsigned int x, unsigned int y, const vec4& color) {
  return edit(data_, get_image_ptr(), [&](Image& i) { return i.set_pixel_2d(x, y, color); });
}

bool Texture::set_texel_2d_v2(unsigned int x, unsigned int y, const float* color) {
  return edit(data_, get_image_ptr(), [=](Image& i) { return i.set_pixel_2d_v2(x, y, color); });
}

bool Texture::set_texel_2d_v3(unsigned int index, const float* color) {
  return set_texel_1d_v2(index, color);
}

bool Texture::set_texel_2d_array_v1(unsigned int layer, unsigned int index, const vec4& color) {
  return edit(data_, get_layer_image_ptr(layer),
              [&](Image& i) { return i.set_pixel(index, color); });
}

bool Texture::set_texel_2d_array_v2(unsigned int layer, unsigned int x, unsigned int y,
                                    const float* color) {
  return edit(data_, get_layer_image_ptr(layer),
              [=](Image& i) { return i.set_pixel_2d_v2(x, y, color); });
}

bool Texture::set_texel_2d_array_v3(unsigned int layer, unsigned int index, const float* color) {
  return edit(data_, get_layer_image_ptr(layer),
              [=](Image& i) { return i.set_pixel_v2(index, color); });
}

// ---- whole image ----

bool Texture::fill_with_noise(unsigned int num_points, const vec4& background,
                              const vec4& point_color, unsigned int seed) {
  return edit(data_, get_image_ptr(), [&](Image& i) {
    return i.fill_with_noise(num_points, background, point_color, seed);
  });
}

bool Texture::inject_opacity_map_to_alpha_channel(const Image* map) {
  return edit(data_, get_image_ptr(),
              [=](Image& i) { return i.inject_opacity_map_to_alpha_channel(map); });
}

bool Texture::update_alpha_channel_smooth(float threshold) {
  return edit(data_, get_image_ptr(),
              [=](Image& i) { return i.update_alpha_channel_smooth(threshold); });
}

bool Texture::update_alpha_channel_binary(const vec4& key_color, float tolerance) {
  return edit(data_, get_image_ptr(),
              [&](Image& i) { return i.update_alpha_channel_binary(key_color, tolerance); });
}

bool Texture::flip_horizontal() {
  return edit(data_, get_image_ptr(), [](Image& i) { return i.flip_horizontal(); });
}

bool Texture::flip_vertical() {
  return edit(data_, get_image_ptr(), [](Image& i) { return i.flip_vertical(); });
}

}  // namespace orv
