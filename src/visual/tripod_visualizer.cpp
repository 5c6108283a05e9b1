#include <orv/visual/tripod_visualizer.h>

#include <orv/geometry/polyline.h>
#include <orv/gpu/gpu_program.h>
#include <orv/render/renderer.h>

#include "visual/parts.h"

namespace orv {
namespace aux {

namespace {

constexpr unsigned int NUM_AXES = 3;
constexpr vec4 AXES[NUM_AXES] = {{1.0f, 0.0f, 0.0f}, {0.0f, 1.0f, 0.0f}, {0.0f, 0.0f, 1.0f}};

/// One version of the program and the least version of OpenGL that it takes.
struct Level {
  int major, minor;
  const char* vertex;
  const char* pixel;
};

#define ORV_IN_OUT_VERTEX(version)                                      \
  "#version " version                                                   \
  "\n"                                                                  \
  "in vec4 orvex_Position;\n"                                           \
  "in vec4 orvex_Color;\n"                                              \
  "out vec4 Vertex_Color;\n"                                            \
  "uniform mat4 orvex_ModelViewProjectionMatrix;\n"                     \
  "void main()\n"                                                       \
  "{\n"                                                                 \
  "  gl_Position = orvex_ModelViewProjectionMatrix * orvex_Position;\n" \
  "  Vertex_Color = orvex_Color;\n"                                     \
  "}"

#define ORV_IN_OUT_PIXEL(version) \
  "#version " version             \
  "\n"                            \
  "in vec4 Vertex_Color;\n"       \
  "out vec4 Out_Color;\n"         \
  "void main()\n"                 \
  "{\n"                           \
  "  Out_Color = Vertex_Color;\n" \
  "}"

constexpr Level LEVELS[] = {
    {3, 2, ORV_IN_OUT_VERTEX("150"), ORV_IN_OUT_PIXEL("150")},
    {3, 0, ORV_IN_OUT_VERTEX("130"), ORV_IN_OUT_PIXEL("130")},
    {0, 0,
     "#version 120\n"
     "attribute vec4 orvex_Position;\n"
     "attribute vec4 orvex_Color;\n"
     "varying vec4 Vertex_Color;\n"
     "uniform mat4 orvex_ModelViewProjectionMatrix;\n"
     "void main()\n"
     "{\n"
     "  gl_Position = orvex_ModelViewProjectionMatrix * orvex_Position;\n"
     "  Vertex_Color = orvex_Color;\n"
     "}",
     "#version 120\n"
     "varying vec4 Vertex_Color;\n"
     "void main()\n"
     "{\n"
     "  gl_FragColor = Vertex_Color;\n"
     "}"},
};

#undef ORV_IN_OUT_VERTEX
#undef ORV_IN_OUT_PIXEL

GpuProgram* make_program(Renderer& renderer) {
  const Level* level = LEVELS;
  while (level->major > 0 && !renderer.is_api_version_at_least(level->major, level->minor)) ++level;
  return make_own_program(renderer, {"ORV_tripod_visualizer_prog", "for the tripod visualizer",
                                     "tripod visualizer", level->vertex, level->pixel});
}

}  // namespace

struct TripodVisualizerData {
  Polyline* axes = nullptr;
  GpuProgram* gpu_program = nullptr;
  float scale = 1.0f;

  void drop(Renderer* renderer, bool from_manager) {
    release_part(renderer, axes);
    release_own_program(renderer, gpu_program, from_manager);
  }
};

// ---- life ----

TripodVisualizer::TripodVisualizer() : data_(new TripodVisualizerData) {}

TripodVisualizer::~TripodVisualizer() {
  data_->drop(nullptr, false);
  delete data_;
}

bool TripodVisualizer::init(Renderer* renderer) {
  if (!renderer) return false;
  if (data_->gpu_program) return true;
  data_->gpu_program = make_program(*renderer);
  if (!data_->gpu_program) return false;
  data_->axes = new Polyline;
  data_->axes->add_ref();
  if (!data_->axes->initialize(2 * NUM_AXES, LINE_RENDER_LINES)) {
    data_->drop(renderer, true);
    return false;
  }
  write_axes();
  return true;
}

bool TripodVisualizer::cleanup(Renderer* renderer) {
  data_->drop(renderer, true);
  return true;
}

// ---- axes ----

void TripodVisualizer::write_axes() {
  if (!data_->axes) return;
  for (unsigned int i = 0; i < NUM_AXES; ++i) {
    const vec4& axis = AXES[i];
    const float s = data_->scale;
    data_->axes->set_vertex_position(2 * i, vec4());
    data_->axes->set_vertex_position(2 * i + 1, axis.x * s, axis.y * s, axis.z * s);
    // The colours are the directions.
    data_->axes->set_vertex_color(2 * i, axis);
    data_->axes->set_vertex_color(2 * i + 1, axis);
  }
}

void TripodVisualizer::set_scale(float scale) {
  data_->scale = scale;
  write_axes();
}

float TripodVisualizer::get_scale() const { return data_->scale; }

Polyline* TripodVisualizer::get_axes() const { return data_->axes; }

bool TripodVisualizer::draw_axes(Renderer& renderer, const mat4& transform) {
  if (!data_->axes || !data_->gpu_program) return false;
  GpuProgramData* previous = renderer.get_current_gpu_program();
  if (!renderer.gpu_program_bind(data_->gpu_program->get_data_ptr())) return false;
  data_->axes->set_transform(transform);
  renderer.set_line_width(2.0f);
  data_->axes->render(&renderer, nullptr);
  renderer.set_line_width(1.0f);
  renderer.gpu_program_bind(previous);
  return true;
}

}  // namespace aux
}  // namespace orv
