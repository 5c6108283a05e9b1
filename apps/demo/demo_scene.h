#pragma once

#include <orv/orv.h>

#include <string>
#include <vector>

#include "common/orbit.h"

namespace demo {

/// What the demo shows: a textured model among generated shapes on a checkered floor, lit per pixel
/// with shadows, and a screen that shows what a second camera sees.
class DemoScene {
 public:
  /// The point of view that the scene is arranged for.
  static orv_app::Orbit make_orbit();

  /// Loads and builds everything. False with a reason when something is missing.
  bool create(orv::Renderer* renderer, const std::string& data_dir, std::string* reason);
  /// Draws one frame into the bound framebuffer's rectangle (0, 0, width, height).
  void draw(orv::Renderer* renderer, orv::Camera& camera, int width, int height);
  /// Frees what was created.
  void destroy(orv::Renderer* renderer);

 private:
  // How a mesh looks: colour in linear light; options as surface.glsl reads them.
  struct Look {
    orv::vec4 color;
    float textured = 0.0f;
    float checker = 0.0f;
    float unlit = 0.0f;
    float gloss = 0.3f;
  };
  struct Item {
    orv::Mesh* mesh;
    orv::Material* material;
    Look look;
    bool casts_shadow;
    bool in_portrait;
  };

  bool load_model(orv::Renderer* renderer, const std::string& data_dir, std::string* reason);
  void add_shapes();
  bool add_screen(orv::Renderer* renderer);
  Item& add(orv::Mesh* mesh, const char* material_name, const Look& look);
  void draw_shadows(orv::Renderer* renderer);
  void draw_portrait(orv::Renderer* renderer);
  void draw_items(orv::Renderer* renderer, const orv::vec4& eye, bool portrait);

  orv::GpuProgram* surface_ = nullptr;
  orv::GpuProgram* depth_ = nullptr;
  orv::GpuRenderTarget* shadow_map_ = nullptr;
  orv::GpuRenderTarget* portrait_ = nullptr;
  orv::Scene* scene_ = nullptr;
  orv::Light* light_ = nullptr;
  orv::Camera light_camera_;
  orv::Camera portrait_camera_;
  std::vector<Item> items_;
};

}  // namespace demo
