#include <orv/render/renderer.h>

#include <orv/core/log_mgr.h>
#include <orv/gpu/gpu_render_target.h>
#include <orv/image/pixel_format.h>
#include <orv/math/mat4.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace orv {

struct RendererData {
  int owners = 1;  // copies of a Renderer share the block
  ORV_API3D api_type = ORV_API3D_NONE;
  char api_name[128] = {};
  mat4 matrix;
  std::vector<GpuRenderTarget*> render_targets;
};

namespace {

void drop(RendererData* data) {
  if (--data->owners > 0) return;
  for (GpuRenderTarget* target : data->render_targets) delete target;
  delete data;
}

}  // namespace

// ---- life ------------------------------------------------------------------------------------

Renderer::Renderer() : renderer_data_(new RendererData) { set_type(PLUGIN_TYPE_RENDERER); }

Renderer::Renderer(const Renderer& other)
    : Plugin(),
      renderer_data_(other.renderer_data_),
      current_render_window_(other.current_render_window_) {
  ++renderer_data_->owners;
  *this = other;
}

Renderer& Renderer::operator=(const Renderer& other) {
  if (this == &other) return *this;
  set_name(other.get_name());
  set_description(other.get_description());
  set_author(other.get_author());
  set_build_info(other.get_build_info());
  set_version(other.get_version_major(), other.get_version_minor(), other.get_version_patch());
  set_type(other.get_type());
  ++other.renderer_data_->owners;
  drop(renderer_data_);
  renderer_data_ = other.renderer_data_;
  current_render_window_ = other.current_render_window_;
  return *this;
}

Renderer::~Renderer() { drop(renderer_data_); }

// ---- API name and type -----------------------------------------------------------------------

const char* Renderer::get_api_name() const { return renderer_data_->api_name; }

ORV_API3D Renderer::get_api_type() const { return renderer_data_->api_type; }

void Renderer::set_api_name(const char* name) {
  char(&text)[128] = renderer_data_->api_name;
  std::memset(text, 0, sizeof(text));
  if (name) std::memcpy(text, name, strnlen(name, sizeof(text) - 1));
}

void Renderer::set_api_type(ORV_API3D type) { renderer_data_->api_type = type; }

// ---- registry of render targets --------------------------------------------------------------

unsigned int Renderer::gpu_render_target_get_num() const {
  return static_cast<unsigned int>(renderer_data_->render_targets.size());
}

GpuRenderTarget* Renderer::gpu_render_target_get_by_index(unsigned int index) const {
  const std::vector<GpuRenderTarget*>& targets = renderer_data_->render_targets;
  return index < targets.size() ? targets[index] : nullptr;
}

GpuRenderTarget* Renderer::gpu_render_target_alloc() {
  auto target = std::make_unique<GpuRenderTarget>();
  renderer_data_->render_targets.push_back(target.get());
  return target.release();
}

bool Renderer::gpu_render_target_free(RendererGpu*, GpuRenderTarget* target) {
  if (!target) return false;
  std::vector<GpuRenderTarget*>& targets = renderer_data_->render_targets;
  const auto place = std::find(targets.begin(), targets.end(), target);
  if (place == targets.end()) return false;
  targets.erase(place);
  delete target;
  return true;
}

bool Renderer::gpu_render_target_kill(RendererGpu* gpu, GpuRenderTarget* target) {
  if (!target) return false;
  LogMgr::get().tracef_debug("GPU render target %d killed", target->getid());
  gpu_render_target_release(gpu, target);
  gpu_render_target_free(gpu, target);
  return true;
}

bool Renderer::gpu_render_target_killall(RendererGpu* gpu) {
  std::vector<GpuRenderTarget*> targets;
  targets.swap(renderer_data_->render_targets);
  for (GpuRenderTarget* target : targets) {
    LogMgr::get().tracef_debug("GPU render target %d killed", target->getid());
    gpu_render_target_release(gpu, target);
    delete target;
  }
  return true;
}

GpuRenderTarget* Renderer::gpu_render_target_get(int id) {
  for (GpuRenderTarget* target : renderer_data_->render_targets) {
    if (target->getid() == id) return target;
  }
  return nullptr;
}

// ---- creation of render targets --------------------------------------------------------------

namespace {

// Runs the API's part of a creation on a new target and takes the target back when that fails.
template <class Init>
GpuRenderTarget* create_target(Renderer* renderer, RendererGpu* gpu, Init init) {
  GpuRenderTarget* target = renderer->gpu_render_target_alloc();
  if (target && init(target)) return target;
  renderer->gpu_render_target_free(gpu, target);
  return nullptr;
}

}  // namespace

GpuRenderTarget* Renderer::gpu_render_target_create_2d(RendererGpu* gpu, int width, int height,
                                                       PIXEL_FORMAT format, unsigned int num_color,
                                                       bool depth_as_renderbuffer,
                                                       bool linear_filtering, bool clamp,
                                                       int msaa) {
  return create_target(this, gpu, [&](GpuRenderTarget* target) {
    return gpu_render_target_init_2d(gpu, target, width, height, format, num_color,
                                     depth_as_renderbuffer, linear_filtering, clamp, msaa);
  });
}

GpuRenderTarget* Renderer::gpu_render_target_create_rb(RendererGpu* gpu, int width, int height,
                                                       PIXEL_FORMAT format, bool with_color,
                                                       unsigned int num_color, bool with_depth,
                                                       int msaa) {
  return create_target(this, gpu, [&](GpuRenderTarget* target) {
    return gpu_render_target_init_rb(gpu, target, width, height, format, with_color, num_color,
                                     with_depth, msaa);
  });
}

GpuRenderTarget* Renderer::gpu_render_target_create_rect(
    RendererGpu* gpu, int width, int height, PIXEL_FORMAT format, unsigned int num_color,
    bool depth_as_renderbuffer, bool linear_filtering, bool clamp, int msaa) {
  return create_target(this, gpu, [&](GpuRenderTarget* target) {
    return gpu_render_target_init_rect(gpu, target, width, height, format, num_color,
                                       depth_as_renderbuffer, linear_filtering, clamp, msaa);
  });
}

GpuRenderTarget* Renderer::gpu_render_target_create_cube(RendererGpu* gpu, int size,
                                                         PIXEL_FORMAT format,
                                                         bool depth_as_renderbuffer, int msaa,
                                                         bool linear_filtering, bool clamp) {
  return create_target(this, gpu, [&](GpuRenderTarget* target) {
    return gpu_render_target_init_cube(gpu, target, size, format, depth_as_renderbuffer, msaa,
                                       linear_filtering, clamp);
  });
}

GpuRenderTarget* Renderer::gpu_render_target_create_depth_2d(RendererGpu* gpu, int width,
                                                             int height, bool linear_filtering,
                                                             bool clamp) {
  return create_target(this, gpu, [&](GpuRenderTarget* target) {
    return gpu_render_target_init_depth_2d(gpu, target, width, height, linear_filtering, clamp);
  });
}

GpuRenderTarget* Renderer::gpu_render_target_create_depth_rect(RendererGpu* gpu, int width,
                                                               int height, bool linear_filtering,
                                                               bool clamp) {
  return create_target(this, gpu, [&](GpuRenderTarget* target) {
    return gpu_render_target_init_depth_rect(gpu, target, width, height, linear_filtering, clamp);
  });
}

GpuRenderTarget* Renderer::gpu_render_target_create_2d_array(RendererGpu* gpu, unsigned int layers,
                                                             bool depth_as_renderbuffer, int width,
                                                             int height, PIXEL_FORMAT format,
                                                             int msaa, bool linear_filtering,
                                                             bool clamp) {
  return create_target(this, gpu, [&](GpuRenderTarget* target) {
    return gpu_render_target_init_2d_array(gpu, target, layers, depth_as_renderbuffer, width,
                                           height, format, msaa, linear_filtering, clamp);
  });
}

}  // namespace orv
