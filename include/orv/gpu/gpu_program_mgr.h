/// @file
/// Registry and factory of GPU programs.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/gpu/resource_mgr.h>

namespace orv {

/// Keeps and makes GPU programs. A program whose loading failed stays registered: is_valid tells.
class ORV_API GpuProgramMgr : public ResourceMgr {
 public:
  /// A registry of its own; the library uses the one instance alone.
  GpuProgramMgr();
  /// Releases no program; stop does.
  ~GpuProgramMgr() override;

  /// The one instance, made by the first call and never destroyed.
  static GpuProgramMgr* get();

  /// Makes an empty program and registers it with one reference. A null name keeps the default.
  GpuProgram* create_gpu_program(const char* name);

  /// @{
  /// Makes a program and loads it as init_gpu_program_from_file and its companions do. The program
  /// is returned also when loading failed; the manager holds its only reference.
  GpuProgram* create_gpu_program_from_file(Renderer* renderer, const char* path, const char* name);
  GpuProgram* create_gpu_program_from_memory(Renderer* renderer, const char* text,
                                             unsigned int size, const char* name);
  /// @}

  /// From the source texts of the stages; null and empty texts are passed over.
  GpuProgram* create_gpu_program_from_shaders(Renderer* renderer, const char* vertex,
                                              const char* pixel, const char* geometry,
                                              const char* tess_control, const char* tess_eval,
                                              const char* compute, const char* name);
  /// From a Direct3D effect file.
  GpuProgram* create_gpu_program_from_effect(Renderer* renderer, const char* path,
                                             const char* name);

  /// @{
  /// Names and loads a program, marks it valid or not, and registers it when it is not yet. False
  /// for a null program and when loading failed.
  bool init_gpu_program_from_file(Renderer* renderer, GpuProgram* program, const char* path,
                                  const char* name);
  bool init_gpu_program_from_memory(Renderer* renderer, GpuProgram* program, const char* text,
                                    unsigned int size, const char* name);
  /// @}

  /// Loads the stages in the order vertex, tessellation control, tessellation evaluation, geometry,
  /// pixel, compute. A stage that fails is logged as an error, and the others are still loaded.
  bool init_gpu_program_from_shaders(Renderer* renderer, GpuProgram* program, const char* vertex,
                                     const char* pixel, const char* geometry,
                                     const char* tess_control, const char* tess_eval,
                                     const char* compute, const char* name);
  /// From a Direct3D effect file. No renderer of the library has effects: false, and an error in
  /// the log.
  bool init_gpu_program_from_effect(Renderer* renderer, GpuProgram* program, const char* path,
                                    const char* name);

  /// Registers a program with one reference. False for null; true for one registered already.
  bool add_gpu_program(GpuProgram* program);

 private:
  struct GpuProgramMgrData;
  GpuProgramMgrData* gpu_program_mgr_data_;
};

}  // namespace orv
