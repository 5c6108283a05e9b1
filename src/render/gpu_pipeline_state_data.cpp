#include <orv/render/gpu_pipeline_state_data.h>

#include <orv/core/utils.h>

#include <cstdio>

namespace orv {

GpuPipelineStateData::GpuPipelineStateData() : id(utils::gen_id()), name() {
  std::snprintf(name, sizeof(name), "GpuPipelineStateData_%d", id);
}

}  // namespace orv
