#include "cubes.h"

namespace bench {

namespace {

class RawCubes : public CubeSide {
 public:
  RawCubes(const CubeField& field, bool lean)
      : field_(field),
        lean_(lean),
        context_(CubeField::WIDTH, CubeField::HEIGHT, RawContext::CORE_3_3),
        program_(create_raw_program(CUBE_VERTEX_TEXT, CUBE_PIXEL_TEXT)),
        matrix_at_(raw_gl().glGetUniformLocation(program_, "orvex_ModelViewProjectionMatrix")),
        color_at_(raw_gl().glGetUniformLocation(program_, "surface_color")) {
    for (int i = 0; i < CubeField::NUM_CUBES; ++i) {
      cubes_.push_back({field.cube.create_vertex_array(),
                        field.transforms[static_cast<std::size_t>(i)],
                        field.colors[static_cast<std::size_t>(i)]});
    }
    raw_gl().glEnable(GL_DEPTH_TEST);
  }

  void make_current() override { context_.make_current(); }

  void draw() override {
    const RawGl& gl = raw_gl();
    gl.glViewport(0, 0, CubeField::WIDTH, CubeField::HEIGHT);
    gl.glScissor(0, 0, CubeField::WIDTH, CubeField::HEIGHT);
    gl.glClearColor(0.1f, 0.1f, 0.1f, 1.0f);
    gl.glClearDepthf(1.0f);
    gl.glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    const orv::mat4 view_projection = field_.projection * field_.view;
    if (lean_) gl.glUseProgram(program_);
    for (const Cube& cube : cubes_) {
      const orv::mat4 matrix = view_projection * cube.transform;
      if (!lean_) gl.glUseProgram(program_);
      gl.glUniform4f(color_at_, cube.color.x, cube.color.y, cube.color.z, cube.color.w);
      gl.glUniformMatrix4fv(matrix_at_, 1, GL_FALSE, matrix.ptr());
      gl.glBindVertexArray(cube.vertex_array);
      gl.glDrawElements(field_.cube.mode, field_.cube.num_indices, field_.cube.index_type, nullptr);
      if (lean_) continue;
      gl.glBindVertexArray(0);
      gl.glUseProgram(0);
    }
    gl.glFlush();
  }

 private:
  struct Cube {
    GLuint vertex_array;
    orv::mat4 transform;
    orv::vec4 color;
  };

  const CubeField& field_;
  bool lean_;
  RawContext context_;
  GLuint program_;
  GLint matrix_at_;
  GLint color_at_;
  std::vector<Cube> cubes_;
};

}  // namespace

std::unique_ptr<CubeSide> make_raw_cubes(const CubeField& field, bool lean) {
  return std::make_unique<RawCubes>(field, lean);
}

}  // namespace bench
