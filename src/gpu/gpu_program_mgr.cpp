#include <orv/gpu/gpu_program_mgr.h>

#include <orv/core/log_mgr.h>
#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>

#include <climits>
#include <cstring>

namespace orv {

namespace {

struct StageSource {
  GPU_SHADER_TYPE type;
  const char* label;
  const char* text;
};

// False when the stage has a source that does not load. The error is logged with the stage's log.
bool load_stage(Renderer* renderer, GpuProgram* program, const StageSource& stage) {
  if (!stage.text || !*stage.text) return true;
  const auto size = static_cast<unsigned int>(strnlen(stage.text, UINT_MAX));
  if (program->shader_load_from_memory(renderer, stage.type, stage.text, size)) return true;
  const char* log = program->get_shader_info_log(stage.type);
  if (log && *log) {
    LogMgr::get().tracef_error("GPU program %s - %s shader error: %s",
                               program->get_data_ptr()->get_gpu_program_name(), stage.label, log);
  }
  return false;
}

// Names a program, loads it and registers it, valid or not.
template <class Load>
bool init_program(GpuProgramMgr& manager, GpuProgram* program, const char* name, Load load) {
  if (!program) return false;
  program->set_name(name);
  const bool loaded = load();
  program->set_valid_state(loaded);
  manager.add_gpu_program(program);
  return loaded;
}

}  // namespace

struct GpuProgramMgr::GpuProgramMgrData {
  char reserved = 0;
};

GpuProgramMgr::GpuProgramMgr() : gpu_program_mgr_data_(new GpuProgramMgrData) {}

GpuProgramMgr::~GpuProgramMgr() { delete gpu_program_mgr_data_; }

GpuProgramMgr* GpuProgramMgr::get() {
  static GpuProgramMgr* const instance = new GpuProgramMgr;
  return instance;
}

// ---- create ----------------------------------------------------------------------------------

GpuProgram* GpuProgramMgr::create_gpu_program(const char* name) {
  GpuProgram* program = new GpuProgram;
  program->set_name(name);
  add_resource(program);
  return program;
}

GpuProgram* GpuProgramMgr::create_gpu_program_from_file(Renderer* renderer, const char* path,
                                                        const char* name) {
  GpuProgram* program = create_gpu_program(name);
  init_gpu_program_from_file(renderer, program, path, name);
  return program;
}

GpuProgram* GpuProgramMgr::create_gpu_program_from_memory(Renderer* renderer, const char* text,
                                                          unsigned int size, const char* name) {
  GpuProgram* program = create_gpu_program(name);
  init_gpu_program_from_memory(renderer, program, text, size, name);
  return program;
}

GpuProgram* GpuProgramMgr::create_gpu_program_from_shaders(Renderer* renderer, const char* vertex,
                                                           const char* pixel, const char* geometry,
                                                           const char* tess_control,
                                                           const char* tess_eval,
                                                           const char* compute, const char* name) {
  GpuProgram* program = create_gpu_program(name);
  init_gpu_program_from_shaders(renderer, program, vertex, pixel, geometry, tess_control, tess_eval,
                                compute, name);
  return program;
}

GpuProgram* GpuProgramMgr::create_gpu_program_from_effect(Renderer* renderer, const char* path,
                                                          const char* name) {
  GpuProgram* program = create_gpu_program(name);
  init_gpu_program_from_effect(renderer, program, path, name);
  return program;
}

// ---- init ------------------------------------------------------------------------------------

bool GpuProgramMgr::init_gpu_program_from_file(Renderer* renderer, GpuProgram* program,
                                               const char* path, const char* name) {
  return init_program(*this, program, name,
                      [=] { return program->load_from_file(renderer, path); });
}

bool GpuProgramMgr::init_gpu_program_from_memory(Renderer* renderer, GpuProgram* program,
                                                 const char* text, unsigned int size,
                                                 const char* name) {
  return init_program(*this, program, name,
                      [=] { return program->load_from_memory(renderer, text, size); });
}

bool GpuProgramMgr::init_gpu_program_from_shaders(Renderer* renderer, GpuProgram* program,
                                                  const char* vertex, const char* pixel,
                                                  const char* geometry, const char* tess_control,
                                                  const char* tess_eval, const char* compute,
                                                  const char* name) {
  const StageSource stages[] = {
      {GPU_SHADER_VERTEX, "Vertex", vertex},
      {GPU_SHADER_TESS_CONTROL, "Tessellation control", tess_control},
      {GPU_SHADER_TESS_EVAL, "Tessellation eval", tess_eval},
      {GPU_SHADER_GEOMETRY, "Geometry", geometry},
      {GPU_SHADER_PIXEL, "Pixel", pixel},
      {GPU_SHADER_COMPUTE, "Compute", compute},
  };
  return init_program(*this, program, name, [&] {
    bool loaded = true;
    for (const StageSource& stage : stages) {
      if (!load_stage(renderer, program, stage)) loaded = false;
    }
    return loaded;
  });
}

bool GpuProgramMgr::init_gpu_program_from_effect(Renderer* renderer, GpuProgram* program,
                                                 const char* path, const char* name) {
  return init_program(*this, program, name, [=] {
    if (program->d3d_load_from_file(renderer, GPU_SHADER_D3D_EFFECT, path)) return true;
    const char* log = program->get_shader_info_log(GPU_SHADER_D3D_EFFECT);
    LogMgr::get().tracef_error("GPU program %s - D3D effect error: %s",
                               program->get_data_ptr()->get_gpu_program_name(), log ? log : "");
    return false;
  });
}

bool GpuProgramMgr::add_gpu_program(GpuProgram* program) { return add_resource(program); }

}  // namespace orv
