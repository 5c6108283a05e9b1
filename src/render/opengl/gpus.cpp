// Records of GPUs. OpenGL shows one at a time: the one behind the current context.
#include <orv/render/renderer_gpu.h>

#include <algorithm>
#include <string>

#include "render/opengl/renderer_opengl.h"

namespace orv {

// Null for null and for a GPU of another renderer, whose data are not ours to read.
std::string* RendererOpenGL::name_of_gpu(RendererGpu* gpu) const {
  const bool own = gpu && std::find(gpus_.begin(), gpus_.end(), gpu) != gpus_.end();
  return own ? static_cast<std::string*>(gpu->getrdata()) : nullptr;
}

RendererGpu* RendererOpenGL::gpu_create(unsigned int index) {
  auto gpu = std::make_unique<RendererGpu>();
  auto name = std::make_unique<std::string>();
  gpus_.push_back(gpu.get());
  gpu->setindex(index);
  gpu->setrdata(name.release());
  current_gpu_ = gpu.get();
  gpu_read_description(gpu.get());
  return gpu.release();
}

bool RendererOpenGL::gpu_kill(RendererGpu* gpu) {
  const auto place = std::find(gpus_.begin(), gpus_.end(), gpu);
  if (!gpu || place == gpus_.end()) return false;
  delete name_of_gpu(gpu);
  gpus_.erase(place);
  if (current_gpu_ == gpu) current_gpu_ = nullptr;
  delete gpu;
  return true;
}

bool RendererOpenGL::gpu_killall() {
  while (!gpus_.empty()) gpu_kill(gpus_.back());
  return true;
}

bool RendererOpenGL::gpu_read_description(RendererGpu* gpu) {
  std::string* name = name_of_gpu(gpu);
  const char* text = name ? get_gl_renderer() : nullptr;
  if (!text) return false;
  *name = text;
  return true;
}

bool RendererOpenGL::gpu_reserved(RendererGpu*) { return true; }

bool RendererOpenGL::set_current_gpu(RendererGpu* gpu) {
  current_gpu_ = gpu;
  return true;
}

RendererGpu* RendererOpenGL::get_current_gpu() { return current_gpu_; }

RendererGpu* RendererOpenGL::gpu_get_by_id(int id) {
  for (RendererGpu* gpu : gpus_) {
    if (gpu->getid() == id) return gpu;
  }
  return nullptr;
}

unsigned int RendererOpenGL::get_num_gpus() { return static_cast<unsigned int>(gpus_.size()); }

RendererGpu* RendererOpenGL::gpu_get_by_index(unsigned int index) {
  return index < gpus_.size() ? gpus_[index] : nullptr;
}

const char* RendererOpenGL::gpu_get_name(RendererGpu* gpu) {
  const std::string* name = name_of_gpu(gpu);
  return name ? name->c_str() : nullptr;
}

}  // namespace orv
