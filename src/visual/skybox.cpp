#include <orv/visual/skybox.h>

#include <orv/core/log_mgr.h>
#include <orv/geometry/primitives/mesh_quad.h>
#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/gpu_program_mgr.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/render/renderer.h>

#include <cstring>
#include <utility>

#include "visual/parts.h"
#include "visual/skybox_shaders.h"

namespace orv {

struct SkyboxData {
  MeshQuad* quad = nullptr;
  Texture* cubemap = nullptr;
  GpuProgram* own_program = nullptr;   ///< made here, kept while the host's is used
  GpuProgram* host_program = nullptr;  ///< set by the host
  bool program_refused = false;        ///< made here, in vain
  bool sampler_was_sent = false;       ///< through the renderer

  GpuProgram* gpu_program() const { return host_program ? host_program : own_program; }
  void set_host_program(GpuProgram* program) {
    if (program) program->add_ref();
    release_own_program(nullptr, host_program, false);
    host_program = program;
    program_refused = sampler_was_sent = false;
  }
  void drop_programs(Renderer* renderer, bool from_manager) {
    release_own_program(renderer, host_program, false);
    release_own_program(renderer, own_program, from_manager);
    program_refused = sampler_was_sent = false;
  }
};

namespace {

bool load_stage(Renderer& renderer, GpuProgram& program, GPU_SHADER_TYPE type, const char* text) {
  return program.shader_load_from_memory(&renderer, type, text,
                                         static_cast<unsigned int>(std::strlen(text)));
}

bool load_stages(Renderer& renderer, GpuProgram& program, bool modern) {
  if (modern) {
    return load_stage(renderer, program, GPU_SHADER_VERTEX, SKYBOX_GL3_VERTEX) &&
           load_stage(renderer, program, GPU_SHADER_PIXEL, SKYBOX_GL3_PIXEL);
  }
  return (load_stage(renderer, program, GPU_SHADER_VERTEX, SKYBOX_GL2_VERTEX) ||
          load_stage(renderer, program, GPU_SHADER_VERTEX, SKYBOX_GL2_VERTEX_WITH_INVERSE)) &&
         load_stage(renderer, program, GPU_SHADER_PIXEL, SKYBOX_GL2_PIXEL);
}

/// The sky's own program, with a reference besides the manager's. Null when it doesn't compile.
GpuProgram* make_sky_program(Renderer& renderer) {
  const bool modern = has_glsl_150(renderer);
  GpuProgramMgr& manager = *GpuProgramMgr::get();
  GpuProgram* program =
      manager.create_gpu_program(modern ? "ORV_skybox_gl3_prog" : "ORV_skybox_gl2_prog");
  program->set_valid_state(load_stages(renderer, *program, modern));
  if (!program->is_valid()) {
    manager.release_resource(&renderer, program, nullptr);
    return nullptr;
  }
  program->set_model_view_matrix_uniform_name("ORV_ModelViewMatrix");
  program->set_projection_matrix_uniform_name("ORV_ProjectionMatrix");
  program->set_vertex_attrib_name(0, "ORV_Position");
  program->add_ref();
  return program;
}

}  // namespace

// ---- life ----

Skybox::Skybox() : data_(new SkyboxData) {
  set_type(NODE_TYPE_SKYBOX);
  data_->quad = make_part<MeshQuad>(*this);
  data_->quad->set_build_params(800.0f, 600.0f);
  data_->quad->Node::build(nullptr);
}

Skybox::~Skybox() {
  release_part(nullptr, data_->quad);
  release_own_texture(nullptr, data_->cubemap, false);
  data_->drop_programs(nullptr, false);
  delete data_;
}

bool Skybox::_cleanup(Renderer* renderer) {
  release_part(renderer, data_->quad);
  release_own_texture(renderer, data_->cubemap, true);
  data_->drop_programs(renderer, true);
  return Object::_cleanup(renderer);
}

// ---- drawing ----

bool Skybox::prepare_program(Renderer& renderer) {
  if (data_->gpu_program()) return true;
  if (data_->program_refused) return false;
  data_->own_program = make_sky_program(renderer);
  if (data_->own_program) return true;
  data_->program_refused = true;
  LogMgr::get().tracef_debug("Skybox %s - not drawn: its program was refused", get_name());
  return false;
}

void Skybox::_render(Renderer* renderer) {
  if (!renderer || !data_->quad || !prepare_program(*renderer) || !data_->cubemap) return;
  GpuProgramData* program = data_->gpu_program()->get_data_ptr();
  GpuProgramData* previous = renderer->get_current_gpu_program();
  if (!renderer->gpu_program_bind(program)) return;
  if (data_->sampler_was_sent) {
    program->set_uniform_1i("cubemap", 0);
  } else {
    renderer->gpu_program_set_uniform_1i(program, "cubemap", 0);
    data_->sampler_was_sent = true;
  }
  // The rectangle lies in the middle of the depth range.
  renderer->set_depth_mask(false);
  renderer->enable_depth_test(false);
  renderer->disable_state("GL_CULL_FACE");
  data_->cubemap->bind(renderer, 0);
  set_opengl_2_3_rendering_states(!program->get_use_generic_vertex_attribs_state(), nullptr);
  bind_gpu_program_uniforms(renderer, program, get_use_fixed_mvp_matrices_state());
  render_geometry(renderer);
  data_->cubemap->unbind(renderer, 0);
  renderer->gpu_program_bind(previous);
  renderer->set_depth_mask(true);
  renderer->enable_depth_test(true);
  renderer->rasterizer_apply();
}

void Skybox::render_geometry(Renderer* renderer) {
  render_geometry_prepare(renderer);
  render_geometry_draw(renderer);
  render_geometry_finish(renderer);
}

void Skybox::render_geometry_prepare(Renderer* renderer) {
  if (data_->quad) data_->quad->render_geometry_prepare(renderer);
}

void Skybox::render_geometry_draw(Renderer* renderer) {
  if (data_->quad) data_->quad->render_geometry_draw(renderer);
}

void Skybox::render_geometry_finish(Renderer* renderer) {
  if (data_->quad) data_->quad->render_geometry_finish(renderer);
}

// ---- cube map ----

namespace {

/// Loads and uploads six faces into a fresh texture. The cause is logged when it fails.
bool load_cubemap(Renderer& renderer, Texture& texture, const char** names, PIXEL_FORMAT format) {
  TextureMgr& manager = *TextureMgr::get();
  TextureData& data = *texture.get_data_ptr();
  data.set_type(TEXTURE_CUBE);
  for (int face = 0; face < 6; ++face) {
    const auto number = static_cast<CUBEMAP_FACE>(face);
    if (!manager.load_cubemap_face_from_file(&texture, number, names[face], false)) {
      LogMgr::get().tracef_debug("Skybox - face %d not loaded: %s", face,
                                 names[face] ? names[face] : "no file name");
      return false;
    }
  }
  texture.update_pixel_format(format);
  // Texels of a face's far edge would show along the near one.
  texture.set_addressing_mode(nullptr, SAMPLER_ADDRESSING_CLAMP);
  if (texture.upload(&renderer, 0, false)) return true;
  LogMgr::get().tracef_debug("Skybox - the cube map of %s was not uploaded", names[0]);
  return false;
}

}  // namespace

bool Skybox::load_all_faces_from_files(Renderer* renderer, const char** names,
                                       PIXEL_FORMAT format) {
  if (!renderer || !names) return false;
  Texture* texture = TextureMgr::get()->create_texture();
  texture->add_ref();
  const bool loaded = load_cubemap(*renderer, *texture, names, format);
  // The one that is not used any more goes.
  if (loaded) std::swap(texture, data_->cubemap);
  release_own_texture(renderer, texture, true);
  return loaded;
}

bool Skybox::load_all_faces_from_files(Renderer* renderer, const char* positive_x,
                                       const char* negative_x, const char* positive_y,
                                       const char* negative_y, const char* positive_z,
                                       const char* negative_z, PIXEL_FORMAT format) {
  const char* names[6] = {positive_x, negative_x, positive_y, negative_y, positive_z, negative_z};
  return load_all_faces_from_files(renderer, names, format);
}

Texture* Skybox::get_cubemap() const { return data_->cubemap; }

// ---- program and size ----

GpuProgram* Skybox::get_cubemap_gpu_program() const { return data_->gpu_program(); }

void Skybox::set_cubemap_gpu_program(GpuProgram* program) { data_->set_host_program(program); }

bool Skybox::resize(float width, float height) {
  return data_->quad && data_->quad->update_params(width, height);
}

}  // namespace orv
