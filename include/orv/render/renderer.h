/// @file
/// The one door to a graphics API.
#pragma once

#include <orv/core/api.h>
#include <orv/core/plugin.h>
#include <orv/fwd.h>
#include <orv/render/renderer_enums.h>

namespace orv {

struct RendererData;

/// A graphics API as the rest of the library sees it: a plugin with one operation for everything
/// that scenes, meshes, textures and programs want done. Resource classes never call a graphics
/// API; they hand plain records to these operations, which fill in the records' API fields.
///
/// Renderer implements the plugin side and the registry of render targets; the operations of the
/// list below are pure. Their order is a contract with renderer modules built apart.
///
/// Every operation that takes a record pointer tests it: null gives false, 0, null or nothing,
/// without a message. All operations belong to the thread that holds the current context.
class ORV_API Renderer : public Plugin {
 public:
  /// Without a name and an API, for derived classes.
  Renderer();
  ~Renderer() override;

  /// @{
  /// Copies share the private block and the window; kept for compatibility, not for use.
  Renderer(const Renderer& other);
  Renderer& operator=(const Renderer& other);
  /// @}

#define ORV_OP(result, name, parameters, arguments, null_result) virtual result name parameters = 0;
#define ORV_BASE_OP(result, name, parameters, arguments, null_result) \
  virtual result name parameters;
#include <orv/render/renderer_ops.inc>

  /// Name of the API, at most 127 characters, "" until the implementation sets it.
  const char* get_api_name() const;
  /// Which API, ORV_API3D_NONE until the implementation sets it.
  ORV_API3D get_api_type() const;

  /// The window that operations without a window argument mean; borrowed, null at first.
  RenderWindow* get_current_render_window() const { return current_render_window_; }
  /// Makes another window the current one; null leaves none.
  void set_current_render_window(RenderWindow* window) { current_render_window_ = window; }

  /// Render targets in the registry.
  unsigned int gpu_render_target_get_num() const;
  /// Target at an index of the registry, null past its end.
  GpuRenderTarget* gpu_render_target_get_by_index(unsigned int index) const;

 protected:
  /// Copies at most 127 characters; null clears the name.
  void set_api_name(const char* name);
  /// For implementations, in their constructor.
  void set_api_type(ORV_API3D type);

 private:
  RendererData* renderer_data_;
  RenderWindow* current_render_window_ = nullptr;
};

}  // namespace orv
