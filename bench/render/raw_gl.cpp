#include "raw_gl.h"

#include <EGL/eglext.h>

#include <cstdio>
#include <cstdlib>
#include <iterator>

#include "common/egl_format.h"

namespace bench {

namespace {

[[noreturn]] void give_up(const char* reason) {
  std::fprintf(stderr, "raw OpenGL: %s\n", reason);
  std::exit(1);
}

EGLDisplay open_display() {
  const auto get_display = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(
      eglGetProcAddress("eglGetPlatformDisplayEXT"));
  if (!get_display) give_up("no platform displays");
  const EGLDisplay display =
      get_display(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
  if (display == EGL_NO_DISPLAY || !eglInitialize(display, nullptr, nullptr)) {
    give_up("no surfaceless display");
  }
  return display;
}

GLuint compile(GLenum stage, const char* text) {
  const GLuint shader = raw_gl().glCreateShader(stage);
  raw_gl().glShaderSource(shader, 1, &text, nullptr);
  raw_gl().glCompileShader(shader);
  return shader;
}

}  // namespace

const RawGl& raw_gl() {
  static const RawGl table = [] {
    RawGl gl;
#define BENCH_GL_FIND(name)                                                \
  gl.name = reinterpret_cast<decltype(&::name)>(eglGetProcAddress(#name)); \
  if (!gl.name) give_up("no " #name);
    BENCH_GL_FUNCTIONS(BENCH_GL_FIND)
#undef BENCH_GL_FIND
    return gl;
  }();
  return table;
}

RawContext::RawContext(int width, int height, Profile profile) : display_(open_display()) {
  eglBindAPI(EGL_OPENGL_API);
  EGLConfig config = nullptr;
  EGLint count = 0;
  if (!eglChooseConfig(display_, bench::OFFSCREEN_FORMAT, &config, 1, &count) || count < 1)
    give_up("no format");
  const EGLint size[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
  surface_ = eglCreatePbufferSurface(display_, config, size);
  const EGLint core[] = {EGL_CONTEXT_MAJOR_VERSION,
                         3,
                         EGL_CONTEXT_MINOR_VERSION,
                         3,
                         EGL_CONTEXT_OPENGL_PROFILE_MASK,
                         EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                         EGL_NONE};
  const EGLint compatible[] = {EGL_NONE};
  context_ =
      eglCreateContext(display_, config, EGL_NO_CONTEXT, profile == CORE_3_3 ? core : compatible);
  if (surface_ == EGL_NO_SURFACE || context_ == EGL_NO_CONTEXT) give_up("no context");
  make_current();
}

void RawContext::make_current() {
  if (!eglMakeCurrent(display_, surface_, surface_, context_)) give_up("context refused");
}

GLuint RawMesh::create_vertex_array(GLuint* vertex_buffer) const {
  const RawGl& gl = raw_gl();
  GLuint vertex_array = 0;
  GLuint buffers[2] = {};
  gl.glGenVertexArrays(1, &vertex_array);
  gl.glBindVertexArray(vertex_array);
  gl.glGenBuffers(2, buffers);
  gl.glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
  gl.glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size()), vertices.data(),
                  GL_STATIC_DRAW);
  for (const RawAttrib& attrib : attribs) {
    gl.glEnableVertexAttribArray(attrib.location);
    gl.glVertexAttribPointer(attrib.location, attrib.dim, GL_FLOAT, GL_FALSE, attrib.stride,
                             reinterpret_cast<const void*>(attrib.offset));
    if (attrib.divisor > 0) gl.glVertexAttribDivisor(attrib.location, attrib.divisor);
  }
  gl.glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[1]);
  gl.glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indices.size()), indices.data(),
                  GL_STATIC_DRAW);
  gl.glBindVertexArray(0);
  if (vertex_buffer) *vertex_buffer = buffers[0];
  return vertex_array;
}

GLuint create_raw_program(const char* vertex_text, const char* pixel_text) {
  const RawGl& gl = raw_gl();
  constexpr const char* NAMES[] = {
      "orvex_Position",       "orvex_TexCoord0",         "orvex_Normal",
      "orvex_Color",          "orvex_Instance_Position", "orvex_Instance_Rotation",
      "orvex_Instance_Scale", "orvex_Instance_Color"};
  const GLuint program = gl.glCreateProgram();
  gl.glAttachShader(program, compile(GL_VERTEX_SHADER, vertex_text));
  gl.glAttachShader(program, compile(GL_FRAGMENT_SHADER, pixel_text));
  for (GLuint i = 0; i < std::size(NAMES); ++i) gl.glBindAttribLocation(program, i, NAMES[i]);
  gl.glLinkProgram(program);
  GLint linked = GL_FALSE;
  gl.glGetProgramiv(program, GL_LINK_STATUS, &linked);
  if (!linked) give_up("the program does not link");
  return program;
}

double differing_share(const DrawnFrame& a, const DrawnFrame& b) {
  if (a.pixels.size() != b.pixels.size() || a.pixels.empty()) return 1.0;
  std::size_t differing = 0;
  for (std::size_t i = 0; i < a.pixels.size(); i += 4) {
    bool differs = false;
    for (std::size_t channel = i; channel < i + 3; ++channel) {
      differs |= std::abs(a.pixels[channel] - b.pixels[channel]) > 2;
    }
    differing += differs ? 1 : 0;
  }
  return static_cast<double>(differing) / static_cast<double>(a.pixels.size() / 4);
}

}  // namespace bench
