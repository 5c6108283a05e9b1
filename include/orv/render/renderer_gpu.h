/// @file
/// One physical GPU.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// One physical GPU seen by a renderer. Made by Renderer::gpu_create, deleted by gpu_kill.
class ORV_API RendererGpu {
 public:
  /// With an identity of its own; hosts call Renderer::gpu_create.
  RendererGpu();
  virtual ~RendererGpu();
  RendererGpu(const RendererGpu&) = delete;
  RendererGpu& operator=(const RendererGpu&) = delete;

  /// Identity within the process.
  int getid() const { return id_; }

  /// @{
  /// Number given at creation, 0 at first.
  unsigned int getindex() const { return index_; }
  void setindex(unsigned int index) { index_ = index; }
  /// @}

  /// @{
  /// Data of the renderer that made the record; owned by that renderer.
  void* getrdata() const { return rdata_; }
  void setrdata(void* rdata) { rdata_ = rdata; }
  /// @}

 private:
  int id_;
  unsigned int index_ = 0;
  void* rdata_ = nullptr;
};

}  // namespace orv
