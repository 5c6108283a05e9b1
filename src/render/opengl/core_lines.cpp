// Lines and geometry without a program in core profile contexts, as the fixed pipeline of other
// contexts draws them: unlit, not textured, coloured by vertex.
#include "render/opengl/core_lines.h"

#include <orv/core/log_mgr.h>

#include <cstddef>
#include <string>

#include "render/opengl/renderer_opengl.h"

namespace orv {
namespace {

constexpr GLuint POSITION = 0;
constexpr GLuint COLOR = 3;
constexpr float WHITE[4] = {1.0f, 1.0f, 1.0f, 1.0f};

constexpr char VERTEX_SHADER[] = R"(
uniform mat4 orvex_ProjectionMatrix;
uniform mat4 orvex_ModelViewMatrix;
in vec4 orvex_Position;
in vec4 orvex_Color;
out vec4 vertex_color;
void main() {
  vertex_color = orvex_Color;
  gl_PointSize = 1.0;
  gl_Position = orvex_ProjectionMatrix * (orvex_ModelViewMatrix * orvex_Position);
}
)";

constexpr char PIXEL_SHADER[] = R"(
in vec4 vertex_color;
out vec4 pixel_color;
void main() { pixel_color = vertex_color; }
)";

/// A point of a line as it lies in the buffer.
struct LineVertex {
  vec4 position;
  vec4 color;
};

}  // namespace

bool RendererOpenGL::is_core_program_missing() {
  if (!is_core_context() || current_program_id_ != 0) return false;
  // The host may have made one current behind our back.
  GLint program = 0;
  core_.glGetIntegerv(GL_CURRENT_PROGRAM, &program);
  return program == 0;
}

GlCoreColorProgram* RendererOpenGL::core_color_program() {
  std::unique_ptr<GlCoreColorProgram>& slot = core_color_programs_[current_context_id()];
  if (slot) return slot->usable ? slot.get() : nullptr;
  slot = std::make_unique<GlCoreColorProgram>();
  GpuProgramData& program = slot->program;
  program.set_gpu_program_name("orv_core_color_prog");
  // Contexts of version 3.1 may lack the fixed pipeline, too.
  const std::string version = facts_.is_version_at_least(3, 2) ? "#version 150" : "#version 140";
  const std::string vertex = version + VERTEX_SHADER, pixel = version + PIXEL_SHADER;
  const auto load = [&](GPU_SHADER_TYPE type, const std::string& text) {
    return gpu_shader_load(&program, type, text.c_str(), static_cast<unsigned int>(text.size()));
  };
  if (!load(GPU_SHADER_VERTEX, vertex) || !load(GPU_SHADER_PIXEL, pixel)) {
    const char* log = program.get_shader_info_log(GPU_SHADER_VERTEX);
    if (!log) log = program.get_shader_info_log(GPU_SHADER_PIXEL);
    LogMgr::get().tracef_debug("program orv_core_color_prog does not compile: %s", log ? log : "");
    return nullptr;
  }
  gl_.glBindAttribLocation(program.program_id, POSITION, "orvex_Position");
  gl_.glBindAttribLocation(program.program_id, COLOR, "orvex_Color");
  slot->usable = gpu_program_link(&program);
  slot->projection = gpu_program_get_uniform_location(&program, "orvex_ProjectionMatrix");
  slot->modelview = gpu_program_get_uniform_location(&program, "orvex_ModelViewMatrix");
  return slot->usable ? slot.get() : nullptr;
}

bool RendererOpenGL::begin_core_color_program() {
  GlCoreColorProgram* colors = core_color_program();
  if (!colors) return false;
  GLint previous = 0;
  core_.glGetIntegerv(GL_CURRENT_PROGRAM, &previous);
  colors->previous_program = static_cast<unsigned int>(previous);
  gl_.glUseProgram(colors->program.program_id);
  gl_.glUniformMatrix4fv(colors->projection, 1, GL_FALSE, shadow_.fixed_projection);
  gl_.glUniformMatrix4fv(colors->modelview, 1, GL_FALSE, shadow_.fixed_modelview);
  // The colour of geometry that has none.
  gl_.glVertexAttrib4fv(COLOR, WHITE);
  return true;
}

void RendererOpenGL::end_core_color_program() {
  if (const GlCoreColorProgram* colors = core_color_program()) {
    gl_.glUseProgram(colors->previous_program);
  }
}

void RendererOpenGL::draw_core_line(const vec4& p0, const vec4& p1, const vec4& color0,
                                    const vec4& color1) {
  if (!gl_.glGenVertexArrays || !begin_core_color_program()) return;
  GlCoreColorProgram* colors = core_color_program();
  GLint previous_array = 0;
  core_.glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &previous_array);
  const bool fresh = colors->line_array == 0;
  if (fresh) {
    gl_.glGenVertexArrays(1, &colors->line_array);
    gl_.glGenBuffers(1, &colors->line_buffer);
  }
  gl_.glBindVertexArray(colors->line_array);
  gl_.glBindBuffer(GL_ARRAY_BUFFER, colors->line_buffer);
  const LineVertex line[2] = {{p0, color0}, {p1, color1}};
  gl_.glBufferData(GL_ARRAY_BUFFER, sizeof(line), line, GL_STREAM_DRAW);
  if (fresh) {
    constexpr std::size_t COLOR_OFFSET = offsetof(LineVertex, color);
    gl_.glEnableVertexAttribArray(POSITION);
    gl_.glVertexAttribPointer(POSITION, 4, GL_FLOAT, GL_FALSE, sizeof(LineVertex), nullptr);
    gl_.glEnableVertexAttribArray(COLOR);
    gl_.glVertexAttribPointer(COLOR, 4, GL_FLOAT, GL_FALSE, sizeof(LineVertex),
                              reinterpret_cast<const void*>(COLOR_OFFSET));
  }
  core_.glDrawArrays(GL_LINES, 0, 2);
  gl_.glBindBuffer(GL_ARRAY_BUFFER, 0);
  gl_.glBindVertexArray(static_cast<GLuint>(previous_array));
  end_core_color_program();
}

void RendererOpenGL::release_core_color_program() {
  const auto found = core_color_programs_.find(current_context_id());
  if (found == core_color_programs_.end()) return;
  GlCoreColorProgram& colors = *found->second;
  if (colors.line_array != 0 && gl_.glDeleteVertexArrays) {
    gl_.glDeleteVertexArrays(1, &colors.line_array);
  }
  if (colors.line_buffer != 0 && gl_.glDeleteBuffers) {
    gl_.glDeleteBuffers(1, &colors.line_buffer);
  }
  gpu_program_unload(&colors.program);
  core_color_programs_.erase(found);
}

}  // namespace orv
