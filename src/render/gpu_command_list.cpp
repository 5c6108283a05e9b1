#include <orv/render/gpu_command_list.h>

#include <orv/core/utils.h>

#include <cstdio>

namespace orv {

GpuCommandList::GpuCommandList() : name(), id(utils::gen_id()) {
  std::snprintf(name, sizeof(name), "GpuCommandList_%d", id);
}

}  // namespace orv
