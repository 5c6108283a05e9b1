#include <orv/render/renderer_gpu.h>

#include <orv/core/utils.h>

namespace orv {

RendererGpu::RendererGpu() : id_(utils::gen_id()) {}

RendererGpu::~RendererGpu() = default;

}  // namespace orv
