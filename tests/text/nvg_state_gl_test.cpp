// What a frame leaves behind: nothing.
#include "text/nvg_fixture.h"

#include <orv/gpu/texture_data.h>

#include <map>

#include "render/opengl/vector_state.h"
#include "render/window/context.h"

namespace orv::test {
namespace {

struct Name {
  const char* text;
  GLenum value;
  int count;
};

#define ORV_NAME(name, count) \
  { #name, name, count }
constexpr Name NAMES[] = {
    ORV_NAME(GL_DEPTH_TEST, 1),
    ORV_NAME(GL_CULL_FACE, 1),
    ORV_NAME(GL_CULL_FACE_MODE, 1),
    ORV_NAME(GL_FRONT_FACE, 1),
    ORV_NAME(GL_BLEND, 1),
    ORV_NAME(GL_BLEND_SRC_RGB, 1),
    ORV_NAME(GL_BLEND_DST_RGB, 1),
    ORV_NAME(GL_BLEND_SRC_ALPHA, 1),
    ORV_NAME(GL_BLEND_DST_ALPHA, 1),
    ORV_NAME(GL_BLEND_EQUATION_RGB, 1),
    ORV_NAME(GL_BLEND_EQUATION_ALPHA, 1),
    ORV_NAME(GL_SCISSOR_TEST, 1),
    ORV_NAME(GL_COLOR_WRITEMASK, 4),
    ORV_NAME(GL_DEPTH_WRITEMASK, 1),
    ORV_NAME(GL_STENCIL_TEST, 1),
    ORV_NAME(GL_STENCIL_WRITEMASK, 1),
    ORV_NAME(GL_STENCIL_FUNC, 1),
    ORV_NAME(GL_STENCIL_REF, 1),
    ORV_NAME(GL_STENCIL_VALUE_MASK, 1),
    ORV_NAME(GL_STENCIL_FAIL, 1),
    ORV_NAME(GL_STENCIL_PASS_DEPTH_FAIL, 1),
    ORV_NAME(GL_STENCIL_PASS_DEPTH_PASS, 1),
    ORV_NAME(GL_STENCIL_BACK_WRITEMASK, 1),
    ORV_NAME(GL_STENCIL_BACK_FUNC, 1),
    ORV_NAME(GL_STENCIL_BACK_REF, 1),
    ORV_NAME(GL_STENCIL_BACK_VALUE_MASK, 1),
    ORV_NAME(GL_STENCIL_BACK_FAIL, 1),
    ORV_NAME(GL_STENCIL_BACK_PASS_DEPTH_FAIL, 1),
    ORV_NAME(GL_STENCIL_BACK_PASS_DEPTH_PASS, 1),
    ORV_NAME(GL_POLYGON_MODE, 1),
    ORV_NAME(GL_SAMPLE_ALPHA_TO_COVERAGE, 1),
    ORV_NAME(GL_SAMPLE_COVERAGE, 1),
    ORV_NAME(GL_POLYGON_SMOOTH, 1),
    ORV_NAME(GL_CLIP_DISTANCE0, 1),
    ORV_NAME(GL_CLIP_DISTANCE3, 1),
    ORV_NAME(GL_COLOR_LOGIC_OP, 1),
    ORV_NAME(GL_RASTERIZER_DISCARD, 1),
    ORV_NAME(GL_CURRENT_PROGRAM, 1),
    ORV_NAME(GL_VERTEX_ARRAY_BINDING, 1),
    ORV_NAME(GL_ARRAY_BUFFER_BINDING, 1),
    ORV_NAME(GL_UNIFORM_BUFFER_BINDING, 1),
    ORV_NAME(GL_PIXEL_UNPACK_BUFFER_BINDING, 1),
    ORV_NAME(GL_ACTIVE_TEXTURE, 1),
    ORV_NAME(GL_TEXTURE_BINDING_2D, 1),
    ORV_NAME(GL_UNPACK_ALIGNMENT, 1),
    ORV_NAME(GL_UNPACK_ROW_LENGTH, 1),
    ORV_NAME(GL_UNPACK_SKIP_PIXELS, 1),
    ORV_NAME(GL_UNPACK_SKIP_ROWS, 1),
    ORV_NAME(GL_VIEWPORT, 4),
    ORV_NAME(GL_FRAMEBUFFER_BINDING, 1),
};
#undef ORV_NAME

using State = std::map<std::string, std::vector<int>>;

/// What is off when nobody draws.
constexpr GLenum TESTS[] = {GL_DEPTH_TEST, GL_CULL_FACE, GL_SCISSOR_TEST, GL_STENCIL_TEST};
/// What must be off for the picture to be right.
constexpr GLenum SPOILERS[] = {
    GL_SAMPLE_ALPHA_TO_COVERAGE, GL_SAMPLE_COVERAGE, GL_COLOR_LOGIC_OP, GL_RASTERIZER_DISCARD,
    GL_POLYGON_SMOOTH,           GL_CLIP_DISTANCE0,  GL_CLIP_DISTANCE3};

class NvgState : public NvgGlTest {
 protected:
  static GlProc proc_address(const char* name) {
    return detail::current_back_end()->proc_address(name);
  }
  void SetUp() override {
    NvgGlTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    ASSERT_TRUE(load_fonts());
    ASSERT_TRUE(more.fetch(proc_address, renderer.facts()));
    gl.glGenBuffers(4, buffers);
    core.glGenTextures(2, textures);
    gl.glGenVertexArrays(1, &vertex_array);
    if (!more.glBindSampler) return;
    const auto generate = reinterpret_cast<PFNGLGENSAMPLERSPROC>(proc_address("glGenSamplers"));
    generate(1, &sampler);
  }
  void TearDown() override {
    if (gl.glDeleteBuffers && core.glDeleteTextures) {
      gl.glDeleteBuffers(4, buffers);
      core.glDeleteTextures(2, textures);
      gl.glDeleteVertexArrays(1, &vertex_array);
    }
    NvgGlTest::TearDown();
  }

  State read_state() {
    State state;
    for (const Name& name : NAMES) {
      GLint values[4] = {};
      core.glGetIntegerv(name.value, values);
      state[name.text] = std::vector<int>(values, values + name.count);
    }
    const auto indexed = [&](const char* text, GLenum name) {
      GLint64 value = 0;
      more.glGetInteger64i_v(name, 0, &value);
      state[text] = {static_cast<int>(value)};
    };
    indexed("GL_UNIFORM_BUFFER_BINDING 0", GL_UNIFORM_BUFFER_BINDING);
    indexed("GL_UNIFORM_BUFFER_START 0", GL_UNIFORM_BUFFER_START);
    indexed("GL_UNIFORM_BUFFER_SIZE 0", GL_UNIFORM_BUFFER_SIZE);
    const std::vector<int> unit = state["GL_ACTIVE_TEXTURE"];
    gl.glActiveTexture(GL_TEXTURE0);
    GLint values[2] = {};
    core.glGetIntegerv(GL_TEXTURE_BINDING_2D, values);
    if (more.glBindSampler) core.glGetIntegerv(GL_SAMPLER_BINDING, values + 1);
    state["unit 0"] = {values[0], values[1]};
    gl.glActiveTexture(static_cast<GLenum>(unit[0]));
    if (renderer.is_core_context()) return state;
    core.glGetIntegerv(GL_POLYGON_MODE, values);
    state["both polygon modes"] = {values[0], values[1]};
    state["fixed pipeline"] = {core.glIsEnabled(GL_ALPHA_TEST),
                               core.glIsEnabled(GL_POLYGON_STIPPLE)};
    return state;
  }

  void make_state_unusual() {
    core.glEnable(GL_DEPTH_TEST);
    core.glEnable(GL_CULL_FACE);
    core.glCullFace(GL_FRONT);
    core.glFrontFace(GL_CW);
    core.glDisable(GL_BLEND);
    more.glBlendFuncSeparate(GL_DST_COLOR, GL_SRC_ALPHA, GL_ZERO, GL_ONE_MINUS_DST_ALPHA);
    more.glBlendEquationSeparate(GL_FUNC_REVERSE_SUBTRACT, GL_MAX);
    core.glScissor(0, 0, 2, 2);
    core.glEnable(GL_SCISSOR_TEST);
    core.glColorMask(GL_FALSE, GL_TRUE, GL_FALSE, GL_TRUE);
    core.glDepthMask(GL_FALSE);
    core.glEnable(GL_STENCIL_TEST);
    more.glStencilFuncSeparate(GL_FRONT, GL_LESS, 3, 0x0F);
    more.glStencilFuncSeparate(GL_BACK, GL_GEQUAL, 5, 0xF0);
    more.glStencilMaskSeparate(GL_FRONT, 0x33);
    more.glStencilMaskSeparate(GL_BACK, 0x55);
    gl.glStencilOpSeparate(GL_FRONT, GL_INVERT, GL_INCR, GL_DECR);
    gl.glStencilOpSeparate(GL_BACK, GL_REPLACE, GL_ZERO, GL_INCR_WRAP);
    core.glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    for (const GLenum name : SPOILERS) core.glEnable(name);
    if (!renderer.is_core_context()) {
      core.glEnable(GL_ALPHA_TEST);
      core.glEnable(GL_POLYGON_STIPPLE);
      core.glPolygonMode(GL_BACK, GL_POINT);
    }
    gl.glBindVertexArray(vertex_array);
    gl.glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
    gl.glBindBuffer(GL_UNIFORM_BUFFER, buffers[1]);
    gl.glBufferData(GL_UNIFORM_BUFFER, 4096, nullptr, GL_STATIC_DRAW);
    gl.glBindBufferRange(GL_UNIFORM_BUFFER, 0, buffers[1], 1024, 512);
    gl.glBindBuffer(GL_UNIFORM_BUFFER, buffers[2]);
    gl.glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffers[3]);
    core.glPixelStorei(GL_UNPACK_ALIGNMENT, 2);
    core.glPixelStorei(GL_UNPACK_ROW_LENGTH, 17);
    core.glPixelStorei(GL_UNPACK_SKIP_PIXELS, 3);
    core.glPixelStorei(GL_UNPACK_SKIP_ROWS, 5);
    ASSERT_TRUE(renderer.texture_bind_2d_by_id(textures[0], 0));
    ASSERT_TRUE(renderer.texture_bind_2d_by_id(textures[1], 3));
    if (more.glBindSampler) more.glBindSampler(0, sampler);
  }
  void make_state_usual() {
    for (const GLenum name : SPOILERS) core.glDisable(name);
    for (const GLenum name : TESTS) core.glDisable(name);
    if (!renderer.is_core_context()) {
      core.glDisable(GL_ALPHA_TEST);
      core.glDisable(GL_POLYGON_STIPPLE);
    }
    if (more.glBindSampler) more.glBindSampler(0, 0);
    core.glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    core.glStencilMask(0xFF);
    core.glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    gl.glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
  }
  /// Everything that NanoVG knows to draw, with glyphs that are new to it.
  void draw_all() {
    nvg::begin_path();
    nvg::move_to(10, 10);
    nvg::line_to(64, 60);
    nvg::line_to(118, 10);
    nvg::line_to(118, 118);
    nvg::line_to(10, 118);
    nvg::close_path();
    nvg::fill_color(1, 0, 0, 1);
    nvg::stroke(1, 1, 1, 1, 4);
    nvg::circle_draw_fill_gradient(64, 90, 20, red_, blue_);
    nvg::text_draw(20, "sans", nvg::ALIGN_LEFT | nvg::ALIGN_TOP, 4, 4, 1, 1, 1, 1, "state");
    nvg::text_draw(300, "sans", nvg::ALIGN_LEFT | nvg::ALIGN_TOP, 0, 0, 1, 1, 1, 0.1f, "WMQXY");
  }

  const GlCoreTable& core = context.core();
  const GlTable& gl = context.gl();
  GlVectorFunctions more;
  GLuint buffers[4] = {}, textures[2] = {}, vertex_array = 0, sampler = 0;
};
ORV_NVG_PROFILES(NvgState);

TEST_P(NvgState, FrameLeavesTheStartingState) {
  const State before = read_state();
  frame([this] { draw_all(); });
  EXPECT_EQ(before, read_state());
}

TEST_P(NvgState, FrameLeavesUnusualState) {
  make_state_unusual();
  context.check();
  const State before = read_state();
  nvg::begin_frame(SIZE, SIZE, 1);
  EXPECT_EQ(before, read_state());
  draw_all();
  EXPECT_EQ(before, read_state()) << "glyphs went into textures";
  nvg::end_frame();
  EXPECT_EQ(before, read_state());
  context.check();
  make_state_usual();
}

TEST_P(NvgState, NothingSpoilsThePicture) {
  frame([this] { draw_all(); });
  std::vector<unsigned char> usual(std::size_t{4} * SIZE * SIZE), unusual(usual.size());
  renderer.read_back_buffer_rect_rgba(usual.data(), 0, 0, SIZE, SIZE);
  nvg::terminate(&renderer);
  clear();
  make_state_unusual();
  ASSERT_TRUE(nvg::init(&renderer, true));
  ASSERT_TRUE(load_fonts());
  frame([this] { draw_all(); });
  make_state_usual();
  renderer.read_back_buffer_rect_rgba(unusual.data(), 0, 0, SIZE, SIZE);
  EXPECT_EQ(usual, unusual);
}

TEST_P(NvgState, StencilIsZeroAfterwards) {
  frame([this] { draw_all(); });
  // What is drawn where the stencil is not zero would show.
  core.glEnable(GL_STENCIL_TEST);
  core.glStencilFunc(GL_EQUAL, 0, 0xFF);
  core.glStencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
  clear();
  core.glDisable(GL_STENCIL_TEST);
  frame([] {
    nvg::begin_path();
    nvg::rect(-5, -5, 138, 138);
    nvg::rect(300, 0, 5, 5);  // two parts go through the stencil
    nvg::fill_color(1, 1, 1, 1);
  });
  EXPECT_EQ(count_lit(), SIZE * SIZE);
}

TEST_P(NvgState, RecordsOfTheRendererStayTrue) {
  ASSERT_TRUE(renderer.texture_bind_2d_by_id(textures[0], 0));
  ASSERT_TRUE(renderer.texture_bind_2d_by_id(textures[1], 3));
  GpuProgramData program;
  const std::string vertex = "#version 150\nvoid main() { gl_Position = vec4(0); }";
  const std::string pixel = "#version 150\nout vec4 c; void main() { c = vec4(1); }";
  ASSERT_TRUE(renderer.gpu_shader_load(&program, GPU_SHADER_VERTEX, vertex.c_str(),
                                       static_cast<unsigned int>(vertex.size())));
  ASSERT_TRUE(renderer.gpu_shader_load(&program, GPU_SHADER_PIXEL, pixel.c_str(),
                                       static_cast<unsigned int>(pixel.size())));
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  frame([this] { draw_all(); });
  EXPECT_EQ(renderer.get_texture_2d_binding_current(0), textures[0]);
  EXPECT_EQ(renderer.get_texture_2d_binding_current(3), textures[1]);
  GLint unit = 0;
  core.glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
  EXPECT_EQ(unit, GL_TEXTURE0 + 3) << "the unit that the renderer used last";
  EXPECT_EQ(renderer.get_current_gpu_program(), &program);
  EXPECT_EQ(renderer.get_current_program_id(), program.program_id);
  renderer.gpu_program_unbind(&program);
  renderer.gpu_program_unload(&program);
}

TEST_P(NvgState, ChangesOfTheHostWithinAFrameStay) {
  nvg::begin_frame(SIZE, SIZE, 1);
  draw_all();
  renderer.enable_depth_test(false);
  ASSERT_TRUE(renderer.texture_bind_2d_by_id(textures[1], 0));
  nvg::end_frame();
  EXPECT_FALSE(core.glIsEnabled(GL_DEPTH_TEST));
  EXPECT_EQ(renderer.get_texture_2d_binding_current(0), textures[1]);
}

TEST_P(NvgState, CurrentProgramDeletedWithinAFrame) {
  const GLuint program = gl.glCreateProgram();
  const GLuint shader = gl.glCreateShader(GL_VERTEX_SHADER);
  const char* text = "#version 150\nvoid main() { gl_Position = vec4(0); }";
  gl.glShaderSource(shader, 1, &text, nullptr);
  gl.glCompileShader(shader);
  gl.glAttachShader(program, shader);
  gl.glLinkProgram(program);
  gl.glUseProgram(program);
  gl.glDeleteShader(shader);
  gl.glDeleteProgram(program);  // stays while it is current
  frame([this] { draw_all(); });
  EXPECT_EQ(renderer.get_current_program_id(), 0u);
}

TEST_P(NvgState, DrawsIntoRenderTargets) {
  GpuRenderTarget* target =
      renderer.gpu_render_target_create_2d(nullptr, 64, 64, PF_RGBA_U8, 1, false, true, true, 0);
  ASSERT_NE(target, nullptr);
  renderer.gpu_render_target_bind(target);
  const State before = read_state();
  frame([] { nvg::circle_draw_fill_color(64, 64, 100, 1, 0, 0, 1); });
  EXPECT_EQ(before, read_state());
  renderer.gpu_render_target_unbind(target);
  EXPECT_EQ(count_lit(), 0) << "the window is untouched";
  EXPECT_TRUE(renderer.gpu_render_target_kill(nullptr, target));
}

}  // namespace
}  // namespace orv::test
