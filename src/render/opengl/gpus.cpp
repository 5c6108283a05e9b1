// Records of GPUs. OpenGL shows one at a time: the one behind the current context.
#include <orv/render/renderer_gpu.h>

#include <algorithm>
#include <string>

#include "render/opengl/renderer_opengl.h"

namespace orv {
namespace {

std::string* name_of(RendererGpu* gpu) { return static_cast<std::string*>(gpu->getrdata()); }

}  // namespace

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
  if (!gpu) return false;
  const auto place = std::find(gpus_.begin(), gpus_.end(), gpu);
  if (place == gpus_.end()) return false;
  gpus_.erase(place);
  delete name_of(gpu);
  if (current_gpu_ == gpu) current_gpu_ = nullptr;
  delete gpu;
  return true;
}

bool RendererOpenGL::gpu_killall() {
  while (!gpus_.empty()) gpu_kill(gpus_.back());
  return true;
}

bool RendererOpenGL::gpu_read_description(RendererGpu* gpu) {
  if (!gpu || !gpu->getrdata()) return false;
  const char* text = get_gl_renderer();
  if (!text) return false;
  *name_of(gpu) = text;
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
  if (!gpu || !gpu->getrdata()) return nullptr;
  return name_of(gpu)->c_str();
}

}  // namespace orv
