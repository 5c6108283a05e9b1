#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orv/geometry/geometry_core.h>
#include <orv/gpu/gpu_program_data.h>

#include <string>
#include <vector>

#include "support/gl_context.h"

namespace orv::test {

using Pixel = std::vector<int>;

const Pixel BLACK = {0, 0, 0, 255}, RED = {255, 0, 0, 255}, GREEN = {0, 255, 0, 255},
            BLUE = {0, 0, 255, 255}, WHITE = {255, 255, 255, 255};

/// Real OpenGL in software, once with and once without the fixed pipeline.
class GlTest : public ::testing::TestWithParam<GlContext::Profile> {
 protected:
  void SetUp() override {
    ORV_REQUIRE_GL(context);
    renderer.clear_color_depth_buffers_rgba(0, 0, 0, 1, 1);
  }
  void TearDown() override { context.check(); }

  bool has_modern_shaders() const { return renderer.facts().is_version_at_least(3, 2); }
  std::string vertex_header() const {
    return has_modern_shaders() ? "#version 150\n#define ATTRIB in\n#define OUT out\n"
                                : "#version 120\n#define ATTRIB attribute\n#define OUT varying\n";
  }
  std::string pixel_header() const {
    return has_modern_shaders() ? "#version 150\n#define IN in\nout vec4 pixel;\n"
                                : "#version 120\n#define IN varying\n#define pixel gl_FragColor\n";
  }
  bool load(GpuProgramData* program, GPU_SHADER_TYPE type, const std::string& text) {
    const bool loaded = renderer.gpu_shader_load(program, type, text.c_str(),
                                                 static_cast<unsigned int>(text.size() + 1));
    if (!loaded) {
      const char* log = program->get_shader_info_log(type);
      ADD_FAILURE() << (log ? log : "no log") << "\n" << text;
    }
    return loaded;
  }
  /// Two stages; the version line and the words ATTRIB, OUT, IN and pixel are given.
  void load_program(GpuProgramData* program, const std::string& vertex, const std::string& pixel) {
    ASSERT_TRUE(load(program, GPU_SHADER_VERTEX, vertex_header() + vertex));
    ASSERT_TRUE(load(program, GPU_SHADER_PIXEL, pixel_header() + pixel));
  }
  /// Passes positions on and colours by vertex.
  void load_color_program(GpuProgramData* program) {
    load_program(program,
                 "ATTRIB vec4 orvex_Position; ATTRIB vec4 orvex_Color; OUT vec4 color;\n"
                 "void main() { color = orvex_Color; gl_Position = orvex_Position; }",
                 "IN vec4 color; void main() { pixel = color; }");
  }
  /// Create, update, bind, draw, unbind.
  void draw(GeometryCore* geometry) {
    ASSERT_TRUE(renderer.geometry_vbo_create(nullptr, geometry));
    ASSERT_TRUE(renderer.geometry_vbo_update(geometry));
    ASSERT_TRUE(renderer.geometry_vbo_bind(geometry));
    EXPECT_TRUE(renderer.geometry_vbo_draw(geometry));
    EXPECT_TRUE(renderer.geometry_vbo_unbind(geometry));
  }
  Pixel center() { return context.pixel(32, 32); }
  void clear() { renderer.clear_color_depth_buffers_rgba(0, 0, 0, 1, 1); }

  GlContext context{GetParam()};
  RendererOpenGL& renderer = context.renderer();
};

inline std::string profile_name(const ::testing::TestParamInfo<GlContext::Profile>& info) {
  return info.param == GlContext::CORE ? "Core" : "Compatibility";
}

#define ORV_BOTH_PROFILES(suite)                                                                  \
  INSTANTIATE_TEST_SUITE_P(, suite, ::testing::Values(GlContext::COMPATIBILITY, GlContext::CORE), \
                           profile_name)

}  // namespace orv::test
