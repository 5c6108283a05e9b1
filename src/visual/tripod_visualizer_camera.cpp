#include <orv/visual/tripod_visualizer_camera.h>

#include <orv/math/mat4.h>
#include <orv/render/renderer.h>
#include <orv/scene/camera.h>

#include <algorithm>
#include <cmath>

#include "visual/overlay_state.h"

namespace orv {
namespace aux {

namespace {

/// Sees a ball of that radius around the origin whole, in a rectangle of any form.
mat4 fit_ball(float radius, int width, int height) {
  const auto w = static_cast<float>(width), h = static_cast<float>(height);
  const float shorter = std::min(w, h);
  const float x = radius * w / shorter, y = radius * h / shorter;
  mat4 projection;
  projection.buildRHOrthographicProjectionMatrix(-x, x, -y, y, -radius, radius);
  return projection;
}

}  // namespace

TripodVisualizerCamera::TripodVisualizerCamera() = default;

TripodVisualizerCamera::~TripodVisualizerCamera() = default;

bool TripodVisualizerCamera::render(Renderer* renderer, Camera* camera, int x, int y, int width,
                                    int height) {
  if (!renderer || !camera || !get_axes() || width <= 0 || height <= 0) return false;
  constexpr float MARGIN = 1.1f;
  const float radius = std::fabs(get_scale()) * MARGIN;
  if (!(radius > 0.0f)) return false;
  const OverlayState state(*renderer);
  mat4 turn = camera->get_view_matrix();
  turn.set_translate(0.0f, 0.0f, 0.0f);
  renderer->set_viewport(0, x, y, width, height);
  renderer->set_projection_matrix(fit_ball(radius, width, height), false);
  renderer->set_modelview_matrix(turn, false);
  return draw_axes(*renderer, mat4());
}

}  // namespace aux
}  // namespace orv
