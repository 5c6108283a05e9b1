#include <orv/visual/hud.h>

#include <orv/core/log_mgr.h>
#include <orv/geometry/mesh.h>
#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/render/renderer.h>
#include <orv/scene/camera.h>

#include <string>

#include "geometry/primitives/quad_corners.h"
#include "visual/overlay_state.h"
#include "visual/parts.h"

namespace orv {
namespace aux {

namespace {

constexpr char NAME[] = "ORV_hud_tex_ortho_proj_XXXX";

constexpr char GL2_VERTEX[] =
    "#version 120\n"
    "uniform mat4 orvex_ModelViewProjectionMatrix;\n"
    "void main()\n"
    "{\n"
    "  gl_Position = orvex_ModelViewProjectionMatrix * gl_Vertex;\n"
    "  gl_TexCoord[0] = gl_MultiTexCoord0; \n"
    "}";

constexpr char GL2_PIXEL[] =
    "#version 120\n"
    "uniform sampler2D tex0;\n"
    "void main()\n"
    "{\n"
    "  vec2 uv = gl_TexCoord[0].xy; \n"
    "  uv.y *= -1.0; \n"
    "  gl_FragColor = texture2D(tex0, uv); \n"
    "}";

constexpr char GL3_VERTEX[] =
    "#version 150\n"
    "in vec4 orvex_Position;\n"
    "in vec4 orvex_TexCoord0;\n"
    "out vec4 Vertex_UV;\n"
    "uniform mat4 orvex_ModelViewProjectionMatrix;\n"
    "void main()\n"
    "{\n"
    "  gl_Position = orvex_ModelViewProjectionMatrix * orvex_Position;\n"
    "  Vertex_UV = orvex_TexCoord0;\n"
    "}";

constexpr char GL3_PIXEL[] =
    "#version 150\n"
    "uniform sampler2D tex0;\n"
    "in vec4 Vertex_UV;\n"
    "out vec4 Out_Color;\n"
    "void main()\n"
    "{\n"
    "  vec2 uv = Vertex_UV.xy; \n"
    "  uv.y *= -1.0; \n"
    "  Out_Color = texture(tex0, uv); \n"
    "}";

}  // namespace

struct HudData {
  Mesh* quad = nullptr;
  Camera* camera = nullptr;
  GpuProgram* gpu_program = nullptr;
  Texture* texture = nullptr;
  int width = 0;  ///< as quad and camera were made for
  int height = 0;
  bool program_refused = false;

  bool prepare(Renderer& renderer);
  bool fit(int new_width, int new_height);
  void drop(Renderer* renderer, bool from_manager);
};

// ---- parts ----

bool HudData::prepare(Renderer& renderer) {
  if (gpu_program) return true;
  if (program_refused) return false;
  const bool modern = has_glsl_150(renderer);
  gpu_program = make_own_program(renderer, {NAME, NAME, NAME, modern ? GL3_VERTEX : GL2_VERTEX,
                                            modern ? GL3_PIXEL : GL2_PIXEL});
  program_refused = !gpu_program;
  if (program_refused) return false;
  gpu_program->set_uniform_1i(nullptr, "tex0", 0);
  return true;
}

// One unit is a pixel, whatever the rectangle.
bool HudData::fit(int new_width, int new_height) {
  if (!quad) {
    quad = new Mesh;
    quad->add_ref();
    camera = new Camera;
    camera->add_ref();
    camera->set_position(0.0f, 0.0f, 0.0f);
  }
  if (new_width == width && new_height == height) return true;
  const auto w = static_cast<float>(new_width), h = static_cast<float>(new_height);
  camera->build_projection_ortho(0.0f, w, 0.0f, h, -1.0f, 1.0f, true);
  if (!build_quad(*quad, 0.0f, 0.0f, w, h)) return false;
  width = new_width;
  height = new_height;
  return true;
}

void HudData::drop(Renderer* renderer, bool from_manager) {
  release_own_program(renderer, gpu_program, from_manager);
  release_own_texture(renderer, texture, from_manager);
  release_part(renderer, quad);
  release_part(renderer, camera);
  width = height = 0;
  program_refused = false;
}

// ---- Hud ----

Hud::Hud() : data_(new HudData) {}

Hud::~Hud() {
  data_->drop(nullptr, false);
  delete data_;
}

void Hud::cleanup(Renderer* renderer) { data_->drop(renderer, true); }

bool Hud::init_texture(Renderer* renderer, const char* filename) {
  if (!renderer || !filename) return false;
  const std::string path = filename;  // it may be the name of the texture that goes
  release_own_texture(renderer, data_->texture, true);
  TextureMgr& manager = *TextureMgr::get();
  Texture* texture = manager.create_texture();
  texture->add_ref();
  if (!manager.load_image_from_file(texture, path.c_str(), false, PF_RGB_U8)) {
    LogMgr::get().tracef_error("- Unable to load texture (%s).", path.c_str());
    release_own_texture(renderer, texture, true);
    return false;
  }
  texture->get_data_ptr()->set_type(TEXTURE_2D);
  if (!texture->upload(renderer, 0, false)) {
    LogMgr::get().tracef_error("- Unable to upload texture (%s) to renderer.", path.c_str());
    release_own_texture(renderer, texture, true);
    return false;
  }
  data_->texture = texture;
  return true;
}

void Hud::render(Renderer* renderer, int x, int y, int width, int height, bool blend,
                 RENDERER_BLEND_FACTOR source, RENDERER_BLEND_FACTOR destination) {
  render(renderer, data_->texture, x, y, width, height, blend, source, destination);
}

void Hud::render(Renderer* renderer, Texture* texture, int x, int y, int width, int height,
                 bool blend, RENDERER_BLEND_FACTOR source, RENDERER_BLEND_FACTOR destination) {
  if (!renderer || !texture || width <= 0 || height <= 0) return;
  if (!data_->prepare(*renderer) || !data_->fit(width, height)) return;
  const OverlayState state(*renderer);
  data_->camera->set_viewport(x, y, width, height);
  data_->camera->bind(renderer, true, false, true, true, false);
  if (blend) {
    renderer->enable_blending(true);
    renderer->set_blend_func(source, destination);
  }
  texture->bind(renderer, 0);
  if (renderer->gpu_program_bind(data_->gpu_program->get_data_ptr())) {
    data_->quad->render(renderer, nullptr);
  }
  texture->unbind(renderer, 0);
  renderer->enable_blending(false);
}

Texture* Hud::get_texture() const { return data_->texture; }

}  // namespace aux
}  // namespace orv
