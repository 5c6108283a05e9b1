#include <orv/geometry/polyline_wide_line.h>

#include <orv/core/log_mgr.h>
#include <orv/geometry/polyline.h>
#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/gpu_program_mgr.h>
#include <orv/render/renderer.h>

#include <cstdint>
#include <new>

namespace orv {

namespace {

constexpr const char* PROGRAM_NAME = "vrn_wideline_program";

constexpr const char* VERTEX_SHADER =
    "#version 150\n"
    "in vec4 orvex_Position;\n"
    "in vec4 orvex_Color;\n"
    "out vec4 Vertex_Color;\n"
    "uniform mat4 orvex_ModelViewProjectionMatrix;\n"
    "void main()\n"
    "{\n"
    "  gl_Position = orvex_ModelViewProjectionMatrix * orvex_Position;\n"
    "  Vertex_Color = orvex_Color;\n"
    "}";

constexpr const char* GEOMETRY_SHADER =
    "#version 150\n"
    "uniform vec4 orvex_Viewport;\n"
    "uniform float line_width;\n"
    "layout (lines_adjacency) in;\n"
    "layout (triangle_strip,max_vertices=4) out;\n"
    "in vec4 Vertex_Color[];\n"
    "out vec4 vcolor;\n"
    "out vec2 vtex;\n"
    "vec2 screen_space(vec4 vertex, vec2 screen_dim)\n"
    "{ return vec2(vertex.xy / vertex.w) * screen_dim; }\n"
    "void main( void )\n"
    "{\n"
    "  vec2 screen_size = orvex_Viewport.zw;\n"
    "  vec2 inPosition = screen_space(gl_in[1].gl_Position, screen_size);\n"
    "  vec2 outPosition = screen_space(gl_in[2].gl_Position, screen_size);\n"
    "  vec2 lineDir = normalize(outPosition - inPosition);\n"
    "  vec2 perp = vec2(-lineDir.y, lineDir.x) * line_width;\n"
    "  gl_Position = vec4((inPosition + perp) / screen_size, 0.0, 1.0);\n"
    "  vtex = vec2(0, 0);\n"
    "  vcolor = Vertex_Color[0];\n"
    "  EmitVertex();\n"
    "  gl_Position = vec4((inPosition - perp) / screen_size, 0.0, 1.0);\n"
    "  vtex = vec2(0, 1);\n"
    "  vcolor = Vertex_Color[0];\n"
    "  EmitVertex();\n"
    "  gl_Position = vec4((outPosition + perp) / screen_size, 0.0, 1.0);\n"
    "  vtex = vec2(0, 0);\n"
    "  vcolor = Vertex_Color[1];\n"
    "  EmitVertex();\n"
    "  gl_Position = vec4((outPosition - perp) / screen_size, 0.0, 1.0);\n"
    "  vtex = vec2(0, 1);\n"
    "  vcolor = Vertex_Color[1];\n"
    "  EmitVertex();\n"
    "  EndPrimitive();\n"
    "}";

constexpr const char* FRAGMENT_SHADER =
    "#version 150\n"
    "in vec4 vcolor;\n"
    "in vec2 vtex;\n"
    "out vec4 FragColor;\n"
    "void main()\n"
    "{ FragColor = vcolor; }\n";

// Gives up the polyline's own reference and, with `from_manager`, the manager's entry. Where there
// is no renderer to delete the API program, the entry had better wait for the manager's end.
void release_program(Renderer* renderer, GpuProgram* program, bool from_manager) {
  GpuProgramMgr& manager = *GpuProgramMgr::get();
  if (from_manager && manager.has_resource(program)) {
    manager.release_resource(renderer, program, nullptr);
  }
  program->release(renderer, nullptr);
}

// 2 * a - b in x, y and z.
vec4 reflection(const vec4& a, const vec4& b, float w) {
  return vec4(2.0f * a.x - b.x, 2.0f * a.y - b.y, 2.0f * a.z - b.z, w);
}

}  // namespace

PolylineWideLine::~PolylineWideLine() { delete[] points; }

void Polyline::forget_wideline_points() {
  PolylineWideLine& line = *wideline_;
  delete[] line.points;
  line.points = nullptr;
  line.num_vertices = 0;
  line.num_points = 0;
  wideline_capacity_ = 0;
}

void Polyline::free_wideline(Renderer* renderer, bool from_manager) {
  forget_wideline_points();
  PolylineWideLine& line = *wideline_;
  if (GpuProgram* program = line.program) {
    line.program = nullptr;
    release_program(renderer, program, from_manager);
  }
}

bool Polyline::wideline_initialize(Renderer* renderer, unsigned int n, float width) {
  PolylineWideLine& line = *wideline_;
  forget_wideline_points();
  if (!initialize_v2(n, PRIMITIVE_LINE_STRIP_ADJACENCY)) return false;
  const std::uint64_t capacity = std::uint64_t{n} + 2;
  line.points = new (std::nothrow) vec4[static_cast<std::size_t>(capacity)];
  if (!line.points) {
    LogMgr::get().tracef_debug("Polyline %s - %u points don't fit in memory", get_name(), n);
    return false;
  }
  wideline_capacity_ = capacity;
  if (renderer) wideline_initialize_gpu_program(renderer);
  wideline_set_line_width(renderer, width);
  return true;
}

bool Polyline::wideline_initialize_gpu_program(Renderer* renderer) {
  if (!renderer) return false;
  GpuProgramMgr& manager = *GpuProgramMgr::get();
  if (GpuProgram* old = wideline_->program) {
    wideline_->program = nullptr;
    release_program(renderer, old, true);
  }
  GpuProgram* program = manager.create_gpu_program_from_shaders(
      renderer, VERTEX_SHADER, FRAGMENT_SHADER, GEOMETRY_SHADER, nullptr, nullptr, nullptr,
      PROGRAM_NAME);
  if (!program) return false;
  if (!program->is_valid()) {
    LogMgr::get().tracef_debug("Polyline %s - no thick lines: the program was refused", get_name());
    manager.release_resource(renderer, program, nullptr);
    return false;
  }
  program->add_ref();
  wideline_->program = program;
  return true;
}

bool Polyline::wideline_bind_gpu_program(Renderer* renderer) {
  GpuProgram* program = wideline_->program;
  return renderer && program && renderer->gpu_program_bind(program->get_data_ptr());
}

bool Polyline::wideline_set_line_width(Renderer* renderer, float width) {
  wideline_->line_width = width;
  if (!wideline_->program) return false;
  GpuProgramData* program = wideline_->program->get_data_ptr();
  if (!renderer) return program->set_uniform_1f("line_width", width);
  GpuProgramData* current = renderer->get_current_gpu_program();
  const bool bound = renderer->gpu_program_bind(program);
  if (bound) renderer->gpu_program_set_uniform_1f(program, "line_width", width);
  if (bound && current != program) renderer->gpu_program_bind(current);
  return bound;
}

bool Polyline::wideline_reset_points() {
  wideline_->num_points = 0;
  wideline_->num_vertices = 0;
  if (polyline_data_) polyline_data_->set_vertex_draw_range(0, 0);
  return true;
}

int Polyline::wideline_add_point(const vec4& position, const vec4& color) {
  PolylineWideLine& line = *wideline_;
  if (!line.points || !polyline_data_) return -1;
  const auto full = [&] {
    return static_cast<std::uint64_t>(line.num_points) >= wideline_capacity_;
  };
  if (full()) return -1;
  line.points[line.num_points++] = position;
  if (line.num_points < 2) return -1;

  const auto write = [&](int i, const vec4& place) {
    set_vertex_position(static_cast<unsigned int>(i), place);
    set_vertex_color(static_cast<unsigned int>(i), color);
  };
  if (line.num_vertices == 0) {
    const vec4& first = line.points[0];
    write(0, reflection(first, position, position.w));
    write(1, first);
    line.num_vertices = 2;
  }
  write(line.num_vertices++, position);
  // The vertex behind the end gives adjacency alone. Its place comes from the point that is to
  // follow, at the origin while there is none.
  const vec4 next = full() ? vec4() : line.points[line.num_points];
  write(line.num_vertices, reflection(next, position, 2.0f * next.w - position.w));
  polyline_data_->set_vertex_draw_range(0, line.num_vertices + 1);
  return line.num_vertices - 1;
}

bool Polyline::wideline_set_point_attribs(unsigned int i, const vec4& position, const vec4& color) {
  if (!wideline_->points || !polyline_data_) return false;
  if (!set_vertex_position(i, position)) return false;
  set_vertex_color(i, color);
  return true;
}

}  // namespace orv
