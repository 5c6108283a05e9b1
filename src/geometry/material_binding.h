#pragma once

#include <orv/gpu/gpu_program.h>
#include <orv/gpu/material.h>
#include <orv/render/renderer.h>

namespace orv {

/// Binds the program and the textures of a material and sets the fixed pipeline's colours when the
/// material asks for them.
inline void bind_material(Renderer& renderer, Material& material) {
  if (GpuProgram* program = material.get_gpu_program()) {
    renderer.gpu_program_bind(program->get_data_ptr());
  }
  material.bind_textures(&renderer);
  if (material.get_use_fixed_material_colors_state()) {
    renderer.material_set_all(material.get_ambient(), material.get_diffuse(),
                              material.get_specular(), material.get_shininess());
  }
}

/// Ends bind_material.
inline void unbind_material(Renderer& renderer, Material& material) {
  if (material.get_gpu_program()) renderer.gpu_program_bind(nullptr);
  material.unbind_textures(&renderer);
}

}  // namespace orv
