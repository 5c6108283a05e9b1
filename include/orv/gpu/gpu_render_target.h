/// @file
/// A drawing surface off screen.
#pragma once

#include <orv/core/api.h>
#include <orv/gpu/gpu_render_target_data_d3d12.h>
#include <orv/gpu/gpu_render_target_data_gl.h>
#include <orv/gpu/gpu_render_target_data_vk.h>
#include <orv/image/pixel_format.h>

namespace orv {

/// Record of a surface with colour attachments and a depth attachment: size and options, with one
/// block of API fields for each kind of renderer. Renderers make, own and destroy them:
/// Renderer::gpu_render_target_create_2d and its relatives.
class ORV_API GpuRenderTarget {
 public:
  /// A target of no size, named "GpuRenderTarget_" and its id.
  GpuRenderTarget();
  GpuRenderTarget(const GpuRenderTarget&) = delete;
  GpuRenderTarget& operator=(const GpuRenderTarget&) = delete;

  /// Identity within the process.
  int getid() const { return id; }

  /// OpenGL texture of a colour attachment; 0 at index 8 and above. These ids stay the target's.
  unsigned int gl_get_color_texture(unsigned int index) const;

  /// @{
  /// OpenGL texture of this attachment, 0 without one.
  unsigned int gl_get_depth_texture() const { return gl.depth_texture; }
  unsigned int gl_get_color_cube_texture() const { return gl.color_cube_texture; }
  unsigned int gl_get_depth_cube_texture() const { return gl.depth_cube_texture; }
  /// @}

  // Stored for a Direct3D 12 renderer; nothing here reads them.

  /// @{
  /// Values kept for a Direct3D 12 renderer.
  void d3d12_set_optimized_clear_color(const vec4& color);
  void d3d12_set_texture_update_options(int a, int b);
  /// @}

  /// False at index 8 and above.
  bool d3d12_set_color_handle_index(unsigned int index, unsigned long long handle);
  /// Keeps the handle of the depth attachment for a Direct3D 12 renderer.
  void d3d12_set_depth_handle_index(unsigned long long handle);

  char name[128];                          ///< "GpuRenderTarget_" and the id
  int id;                                  ///< process-wide number
  unsigned int num_color_targets = 1;      ///< colour attachments, at most 8
  int width = 0;                           ///< pixels
  int height = 0;                          ///< pixels
  int depth_layers = 0;                    ///< of an array, else 0
  PIXEL_FORMAT pixel_format = PF_UNKNOWN;  ///< of the colour attachments
  int msaa_samples = 0;                    ///< 0 for none
  bool has_color = true;                   ///< there is a colour attachment
  bool has_depth = true;                   ///< there is a depth attachment
  bool has_stencil = true;                 ///< the depth attachment has stencil bits too
  bool linear_filtering = true;            ///< as asked for at creation
  bool clamp = true;                       ///< as asked for at creation
  GpuRenderTargetDataGL gl;                ///< objects of an OpenGL renderer
  GpuRenderTargetDataD3D12 d3d12;          ///< objects of a Direct3D 12 renderer
  GpuRenderTargetDataVK vk;                ///< a word of a Vulkan renderer
};

}  // namespace orv
