#include "visual/parts.h"

#include <orv/core/log_mgr.h>
#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/gpu_program_mgr.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/render/renderer.h>

namespace orv {

bool has_glsl_150(Renderer& renderer) { return renderer.is_api_version_at_least(3, 2); }

GpuProgram* make_own_program(Renderer& renderer, const OwnProgram& wanted) {
  GpuProgramMgr& manager = *GpuProgramMgr::get();
  GpuProgram* program = manager.create_gpu_program_from_shaders(
      &renderer, wanted.vertex, wanted.pixel, nullptr, nullptr, nullptr, nullptr, wanted.name);
  if (!program->is_valid()) {
    LogMgr::get().tracef_error("- unable to create the GPU program %s.", wanted.wanted);
    manager.release_resource(&renderer, program, nullptr);
    return nullptr;
  }
  if (!renderer.gpu_program_link(program->get_data_ptr())) {
    const char* log = program->get_info_log();
    LogMgr::get().tracef_error("- %s GPU program has erros", wanted.label);
    LogMgr::get().tracef_error("- %s GPU program error: %s", wanted.label, log ? log : "");
    manager.release_resource(&renderer, program, nullptr);
    return nullptr;
  }
  program->add_ref();
  return program;
}

void release_own_program(Renderer* renderer, GpuProgram*& program, bool from_manager) {
  if (!program) return;
  GpuProgram* resource = program;
  program = nullptr;
  GpuProgramMgr& manager = *GpuProgramMgr::get();
  if (from_manager && manager.has_resource(resource)) {
    manager.release_resource(renderer, resource, nullptr);
  }
  resource->release(renderer, nullptr);
}

void release_own_texture(Renderer* renderer, Texture*& texture, bool from_manager) {
  if (!texture) return;
  Texture* resource = texture;
  texture = nullptr;
  TextureMgr& manager = *TextureMgr::get();
  if (!from_manager || !manager.has_resource(resource)) {
    resource->release(renderer, nullptr);
    return;
  }
  // The manager's reference is left when this one goes, so that it sees whether it is the last.
  resource->remove_ref();
  manager.release_texture(renderer, resource, nullptr);
}

}  // namespace orv
