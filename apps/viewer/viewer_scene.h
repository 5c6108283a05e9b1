#pragma once

#include <orv/orv.h>

#include <string>

#include "common/orbit.h"
#include "viewer/model_file.h"

namespace viewer {

/// What is drawn beside the model, and how.
struct Look {
  bool wireframe = false;
  bool grid = false;
  bool axes = false;
};

/// Draws a model, brought to one size and lit from above the camera's shoulder, with grid and axes.
class ViewerScene {
 public:
  /// Colour behind the model, red, green and blue from 0 to 1.
  static constexpr float background[3] = {0.16f, 0.18f, 0.21f};

  /// Where the camera stands at first; its distance of 1 is the one that frames the model.
  static orv_app::Orbit make_orbit();

  /// Makes the GPU program, in the current context. False with a reason.
  bool create(orv::Renderer* renderer, bool core, std::string* reason);
  /// Frees what was created; the model is its owner's.
  void destroy(orv::Renderer* renderer);

  /// Shows this model from now on; it has to outlive the next frames.
  void set_model(ModelFile* file);
  /// Draws a frame of this size in pixels.
  void draw(orv::Renderer* renderer, const orv_app::Orbit& orbit, const Look& look, int width,
            int height);

  /// Side of the squares of the grid, in units of the file.
  float get_grid_step() const { return grid_step_; }

 private:
  float place_camera(const orv_app::Orbit& orbit, int width, int height);
  void place_light(const orv_app::Orbit& orbit, float unit);
  void draw_parts(orv::Renderer* renderer);
  void draw_stage(orv::Renderer* renderer, const Look& look);

  ModelFile* file_ = nullptr;
  UnitPlacement placement_;
  float grid_step_ = 1.0f;
  orv::GpuProgram* program_ = nullptr;
  orv::Object* stage_ = nullptr;  ///< carries grid and axes
  orv::Camera camera_;
  orv::Light light_;
};

}  // namespace viewer
