#pragma once

#include "render/opengl/gl_fixture.h"

namespace orv::test {

/// A quad over the whole picture, coloured by an expression of the texture `image` and the place
/// `uv`, which is 0 to 1. SAMPLE_2D and SAMPLE_CUBE stand for the functions of the shader version.
class TexturedQuad {
 public:
  struct Tools {
    RendererOpenGL& renderer;
    std::string vertex_header, pixel_header;
    bool modern;
  };

  TexturedQuad(const Tools& tools, const std::string& sampler, const std::string& color)
      : renderer_(tools.renderer) {
    const std::string functions =
        tools.modern ? "#define SAMPLE_2D texture\n#define SAMPLE_CUBE texture\n"
                     : "#define SAMPLE_2D texture2D\n#define SAMPLE_CUBE textureCube\n";
    load(GPU_SHADER_VERTEX, tools.vertex_header +
                                "ATTRIB vec4 orvex_Position; OUT vec2 uv;\n"
                                "void main() { uv = orvex_Position.xy * 0.5 + 0.5;\n"
                                "gl_Position = orvex_Position; }");
    load(GPU_SHADER_PIXEL, tools.pixel_header + functions + "uniform " + sampler +
                               " image; IN vec2 uv;\nvoid main() { pixel = vec4(" + color + "); }");
    geometry_.set_alloc_params_num_vertices(4);
    EXPECT_TRUE(geometry_.alloc_vertex_data());
    geometry_.set_primitive_type(PRIMITIVE_TRIANGLE_STRIP);
    for (unsigned int i = 0; i < 4; ++i) {
      geometry_.set_position(i, i % 2 ? 1.0f : -1.0f, i < 2 ? -1.0f : 1.0f, 0, 1);
    }
    EXPECT_TRUE(renderer_.geometry_vbo_create(nullptr, &geometry_));
    EXPECT_TRUE(renderer_.geometry_vbo_update(&geometry_));
  }
  ~TexturedQuad() {
    renderer_.geometry_vbo_destroy(&geometry_);
    renderer_.gpu_program_unload(&program_);
  }
  TexturedQuad(const TexturedQuad&) = delete;
  TexturedQuad& operator=(const TexturedQuad&) = delete;

  /// Draws with the texture of a unit, whatever was drawn before.
  void draw(unsigned int unit) {
    renderer_.enable_depth_test(false);
    EXPECT_TRUE(renderer_.gpu_program_bind(&program_));
    const int location =
        renderer_.gl().glGetUniformLocation(renderer_.get_current_program_id(), "image");
    renderer_.gl().glUniform1i(location, static_cast<int>(unit));
    EXPECT_TRUE(renderer_.geometry_vbo_bind(&geometry_));
    EXPECT_TRUE(renderer_.geometry_vbo_draw(&geometry_));
    EXPECT_TRUE(renderer_.geometry_vbo_unbind(&geometry_));
    renderer_.gpu_program_unbind(&program_);
  }

 private:
  void load(GPU_SHADER_TYPE type, const std::string& text) {
    if (renderer_.gpu_shader_load(&program_, type, text.c_str(),
                                  static_cast<unsigned int>(text.size() + 1))) {
      return;
    }
    const char* log = program_.get_shader_info_log(type);
    ADD_FAILURE() << (log ? log : "no log") << "\n" << text;
  }

  RendererOpenGL& renderer_;
  GpuProgramData program_;
  GeometryCore geometry_;
};

}  // namespace orv::test
