/// @file
/// OpenGL without the library: a context by EGL, and the functions that a plain program calls.
#pragma once

#include <EGL/egl.h>
#include <GL/gl.h>
#include <GL/glext.h>

#include <cstddef>
#include <vector>

namespace bench {

#define BENCH_GL_FUNCTIONS(F)  \
  F(glUseProgram)              \
  F(glUniform4f)               \
  F(glUniformMatrix4fv)        \
  F(glBindVertexArray)         \
  F(glDrawElements)            \
  F(glDrawElementsInstanced)   \
  F(glClear)                   \
  F(glClearColor)              \
  F(glClearDepthf)             \
  F(glViewport)                \
  F(glScissor)                 \
  F(glEnable)                  \
  F(glFlush)                   \
  F(glFinish)                  \
  F(glReadPixels)              \
  F(glGetError)                \
  F(glGenQueries)              \
  F(glDeleteQueries)           \
  F(glBeginQuery)              \
  F(glEndQuery)                \
  F(glGetQueryObjectuiv)       \
  F(glGenVertexArrays)         \
  F(glGenBuffers)              \
  F(glBindBuffer)              \
  F(glBufferData)              \
  F(glBufferSubData)           \
  F(glVertexAttribPointer)     \
  F(glEnableVertexAttribArray) \
  F(glVertexAttribDivisor)     \
  F(glCreateShader)            \
  F(glShaderSource)            \
  F(glCompileShader)           \
  F(glCreateProgram)           \
  F(glAttachShader)            \
  F(glBindAttribLocation)      \
  F(glLinkProgram)             \
  F(glGetProgramiv)            \
  F(glGetUniformLocation)

/// The functions; they work in every context of EGL.
struct RawGl {
#define BENCH_GL_MEMBER(name) decltype(&::name) name = nullptr;
  BENCH_GL_FUNCTIONS(BENCH_GL_MEMBER)
#undef BENCH_GL_MEMBER
};

/// The table, filled at the first call. Ends the program when a function is missing.
const RawGl& raw_gl();

/// A context of its own with a surface off screen, drawn by software.
class RawContext {
 public:
  enum Profile { CORE_3_3, COMPATIBILITY };

  /// Makes it current. Ends the program where there is none.
  RawContext(int width, int height, Profile profile);
  RawContext(const RawContext&) = delete;
  RawContext& operator=(const RawContext&) = delete;

  void make_current();

 private:
  EGLDisplay display_;
  EGLSurface surface_;
  EGLContext context_;
};

/// One array of a vertex buffer.
struct RawAttrib {
  GLuint location;
  GLint dim;
  GLsizei stride;
  std::size_t offset;
  GLuint divisor = 0;
};

/// A mesh as the library would upload it.
struct RawMesh {
  std::vector<unsigned char> vertices;
  std::vector<unsigned char> indices;
  std::vector<RawAttrib> attribs;
  GLenum mode = GL_TRIANGLES;
  GLenum index_type = GL_UNSIGNED_SHORT;
  GLsizei num_indices = 0;
  std::size_t num_vertices = 0;

  /// Vertex array object over buffers of its own.
  /// @param vertex_buffer  gets the buffer that holds the vertices; may be null
  GLuint create_vertex_array(GLuint* vertex_buffer = nullptr) const;
};

/// A linked program with the library's names of attributes and instance streams at locations 0
/// to 7.
GLuint create_raw_program(const char* vertex_text, const char* pixel_text);

/// Triangles that reach the rasteriser while `draw` runs, and the picture after it.
struct DrawnFrame {
  unsigned int triangles = 0;
  std::vector<unsigned char> pixels;  ///< four bytes each
};

/// Runs one frame in the current context and looks at what came of it.
template <class Draw>
DrawnFrame look_at(int width, int height, Draw draw) {
  const RawGl& gl = raw_gl();
  DrawnFrame frame;
  GLuint query = 0;
  gl.glGenQueries(1, &query);
  gl.glBeginQuery(GL_PRIMITIVES_GENERATED, query);
  draw();
  gl.glEndQuery(GL_PRIMITIVES_GENERATED);
  gl.glGetQueryObjectuiv(query, GL_QUERY_RESULT, &frame.triangles);
  gl.glDeleteQueries(1, &query);
  frame.pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
  gl.glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, frame.pixels.data());
  return frame;
}

/// Share of the pixels whose channels differ by more than two.
double differing_share(const DrawnFrame& a, const DrawnFrame& b);

}  // namespace bench
