#include <orv/gpu/gpu_render_target.h>

#include <orv/core/utils.h>

#include <cstdio>

namespace orv {

GpuRenderTarget::GpuRenderTarget() : name(), id(utils::gen_id()) {
  std::snprintf(name, sizeof(name), "GpuRenderTarget_%d", id);
}

unsigned int GpuRenderTarget::gl_get_color_texture(unsigned int index) const {
  return index < GpuRenderTargetDataGL::MAX_COLOR_TARGETS ? gl.color_textures[index] : 0;
}

void GpuRenderTarget::d3d12_set_optimized_clear_color(const vec4& color) {
  d3d12.optimized_clear_color = color;
}

void GpuRenderTarget::d3d12_set_texture_update_options(int a, int b) {
  d3d12.texture_update_options[0] = a;
  d3d12.texture_update_options[1] = b;
}

bool GpuRenderTarget::d3d12_set_color_handle_index(unsigned int index, unsigned long long handle) {
  if (index >= GpuRenderTargetDataD3D12::MAX_COLOR_TARGETS) return false;
  d3d12.color_handles[index] = handle;
  return true;
}

void GpuRenderTarget::d3d12_set_depth_handle_index(unsigned long long handle) {
  d3d12.depth_handle = handle;
}

}  // namespace orv
