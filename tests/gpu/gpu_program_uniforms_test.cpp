#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/math/mat4.h>
#include <orv/math/mat4d.h>
#include <orv/math/vec4.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "support/recording_renderer.h"

namespace orv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const int INTS[] = {1, 2, 3, 4};
const float FLOATS[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
const double DOUBLES[] = {1, 2, 3, 4};
const unsigned long long HANDLES[] = {1, 2};

struct Row {
  const char* name;
  std::function<bool(GpuProgram&, Renderer*)> set;
  const char* call;
  GPU_SHADER_UNIFORM type;
};

// What each setter does with a renderer and without one. The uniform is named "u".
const Row ROWS[] = {
    {"1i", [](GpuProgram& p, Renderer* r) { return p.set_uniform_1i(r, "u", 1); },
     "gpu_program_set_uniform_1i(program, \"u\", 1)", GPU_SHADER_UNIFORM_1i},
    {"2i", [](GpuProgram& p, Renderer* r) { return p.set_uniform_2i(r, "u", 1, 2); },
     "gpu_program_set_uniform_2i(program, \"u\", 1, 2)", GPU_SHADER_UNIFORM_2i},
    {"3i", [](GpuProgram& p, Renderer* r) { return p.set_uniform_3i(r, "u", 1, 2, 3); },
     "gpu_program_set_uniform_3i(program, \"u\", 1, 2, 3)", GPU_SHADER_UNIFORM_3i},
    {"4i", [](GpuProgram& p, Renderer* r) { return p.set_uniform_4i(r, "u", 1, 2, 3, 4); },
     "gpu_program_set_uniform_4i(program, \"u\", 1, 2, 3, 4)", GPU_SHADER_UNIFORM_4i},
    {"1ui", [](GpuProgram& p, Renderer* r) { return p.set_uniform_1ui(r, "u", 1); },
     "gpu_program_set_uniform_1ui(program, \"u\", 1)", GPU_SHADER_UNIFORM_1ui},
    {"2ui", [](GpuProgram& p, Renderer* r) { return p.set_uniform_2ui(r, "u", 1, 2); },
     "gpu_program_set_uniform_2ui(program, \"u\", 1, 2)", GPU_SHADER_UNIFORM_2ui},
    {"3ui", [](GpuProgram& p, Renderer* r) { return p.set_uniform_3ui(r, "u", 1, 2, 3); },
     "gpu_program_set_uniform_3ui(program, \"u\", 1, 2, 3)", GPU_SHADER_UNIFORM_3ui},
    {"4ui", [](GpuProgram& p, Renderer* r) { return p.set_uniform_4ui(r, "u", 1, 2, 3, 4); },
     "gpu_program_set_uniform_4ui(program, \"u\", 1, 2, 3, 4)", GPU_SHADER_UNIFORM_4ui},
    {"1f", [](GpuProgram& p, Renderer* r) { return p.set_uniform_1f(r, "u", 1); },
     "gpu_program_set_uniform_1f(program, \"u\", 1)", GPU_SHADER_UNIFORM_1f},
    {"2f", [](GpuProgram& p, Renderer* r) { return p.set_uniform_2f(r, "u", 1, 2); },
     "gpu_program_set_uniform_2f(program, \"u\", 1, 2)", GPU_SHADER_UNIFORM_2f},
    {"3f", [](GpuProgram& p, Renderer* r) { return p.set_uniform_3f(r, "u", 1, 2, 3); },
     "gpu_program_set_uniform_3f(program, \"u\", 1, 2, 3)", GPU_SHADER_UNIFORM_3f},
    {"3f vec4",
     [](GpuProgram& p, Renderer* r) { return p.set_uniform_3f(r, "u", vec4(1, 2, 3, 4)); },
     "gpu_program_set_uniform_3f(program, \"u\", 1, 2, 3)", GPU_SHADER_UNIFORM_3f},
    {"4f", [](GpuProgram& p, Renderer* r) { return p.set_uniform_4f(r, "u", 1, 2, 3, 4); },
     "gpu_program_set_uniform_4f(program, \"u\", 1, 2, 3, 4)", GPU_SHADER_UNIFORM_4f},
    {"4f vec4",
     [](GpuProgram& p, Renderer* r) { return p.set_uniform_4f(r, "u", vec4(1, 2, 3, 4)); },
     "gpu_program_set_uniform_4f(program, \"u\", 1, 2, 3, 4)", GPU_SHADER_UNIFORM_4f},
    {"1d", [](GpuProgram& p, Renderer* r) { return p.set_uniform_1d(r, "u", 1); },
     "gpu_program_set_uniform_1d(program, \"u\", 1)", GPU_SHADER_UNIFORM_1d},
    {"2d", [](GpuProgram& p, Renderer* r) { return p.set_uniform_2d(r, "u", 1, 2); },
     "gpu_program_set_uniform_2d(program, \"u\", 1, 2)", GPU_SHADER_UNIFORM_2d},
    {"3d", [](GpuProgram& p, Renderer* r) { return p.set_uniform_3d(r, "u", 1, 2, 3); },
     "gpu_program_set_uniform_3d(program, \"u\", 1, 2, 3)", GPU_SHADER_UNIFORM_3d},
    {"4d", [](GpuProgram& p, Renderer* r) { return p.set_uniform_4d(r, "u", 1, 2, 3, 4); },
     "gpu_program_set_uniform_4d(program, \"u\", 1, 2, 3, 4)", GPU_SHADER_UNIFORM_4d},
    {"1iv", [](GpuProgram& p, Renderer* r) { return p.set_uniform_1iv(r, "u", 4, INTS); },
     "gpu_program_set_uniform_1iv(program, \"u\", 4, values)", GPU_SHADER_UNIFORM_1iv},
    {"2iv", [](GpuProgram& p, Renderer* r) { return p.set_uniform_2iv(r, "u", 2, INTS); },
     "gpu_program_set_uniform_2iv(program, \"u\", 2, values)", GPU_SHADER_UNIFORM_2iv},
    {"3iv", [](GpuProgram& p, Renderer* r) { return p.set_uniform_3iv(r, "u", 1, INTS); },
     "gpu_program_set_uniform_3iv(program, \"u\", 1, values)", GPU_SHADER_UNIFORM_3iv},
    {"4iv", [](GpuProgram& p, Renderer* r) { return p.set_uniform_4iv(r, "u", 1, INTS); },
     "gpu_program_set_uniform_4iv(program, \"u\", 1, values)", GPU_SHADER_UNIFORM_4iv},
    {"1fv", [](GpuProgram& p, Renderer* r) { return p.set_uniform_1fv(r, "u", 4, FLOATS); },
     "gpu_program_set_uniform_1fv(program, \"u\", 4, values)", GPU_SHADER_UNIFORM_1fv},
    {"2fv", [](GpuProgram& p, Renderer* r) { return p.set_uniform_2fv(r, "u", 2, FLOATS); },
     "gpu_program_set_uniform_2fv(program, \"u\", 2, values)", GPU_SHADER_UNIFORM_2fv},
    {"3fv", [](GpuProgram& p, Renderer* r) { return p.set_uniform_3fv(r, "u", 1, FLOATS); },
     "gpu_program_set_uniform_3fv(program, \"u\", 1, values)", GPU_SHADER_UNIFORM_3fv},
    {"4fv", [](GpuProgram& p, Renderer* r) { return p.set_uniform_4fv(r, "u", 1, FLOATS); },
     "gpu_program_set_uniform_4fv(program, \"u\", 1, values)", GPU_SHADER_UNIFORM_4fv},
    {"1dv", [](GpuProgram& p, Renderer* r) { return p.set_uniform_1dv(r, "u", 4, DOUBLES); },
     "gpu_program_set_uniform_1dv(program, \"u\", 4, values)", GPU_SHADER_UNIFORM_1dv},
    {"2dv", [](GpuProgram& p, Renderer* r) { return p.set_uniform_2dv(r, "u", 2, DOUBLES); },
     "gpu_program_set_uniform_2dv(program, \"u\", 2, values)", GPU_SHADER_UNIFORM_2dv},
    {"3dv", [](GpuProgram& p, Renderer* r) { return p.set_uniform_3dv(r, "u", 1, DOUBLES); },
     "gpu_program_set_uniform_3dv(program, \"u\", 1, values)", GPU_SHADER_UNIFORM_3dv},
    {"4dv", [](GpuProgram& p, Renderer* r) { return p.set_uniform_4dv(r, "u", 1, DOUBLES); },
     "gpu_program_set_uniform_4dv(program, \"u\", 1, values)", GPU_SHADER_UNIFORM_4dv},
    {"1ui64", [](GpuProgram& p, Renderer* r) { return p.set_uniform_1ui64(r, "u", 7); },
     "gpu_program_set_uniform_1ui64(program, \"u\", 7)", GPU_SHADER_UNIFORM_1ui64},
    {"1ui64v", [](GpuProgram& p, Renderer* r) { return p.set_uniform_1ui64v(r, "u", 2, HANDLES); },
     "gpu_program_set_uniform_1ui64v(program, \"u\", values, 2)", GPU_SHADER_UNIFORM_1ui64v},
    {"3x3f", [](GpuProgram& p, Renderer* r) { return p.set_uniform_3x3f(r, "u", FLOATS); },
     "gpu_program_set_uniform_3x3fv(program, \"u\", 1, values)", GPU_SHADER_UNIFORM_3x3f},
    {"4x4f", [](GpuProgram& p, Renderer* r) { return p.set_uniform_4x4f(r, "u", FLOATS); },
     "gpu_program_set_uniform_4x4fv(program, \"u\", 1, values)", GPU_SHADER_UNIFORM_4x4f},
};

class GpuProgramUniforms : public testing::Test {
 protected:
  GpuProgramUniforms() {
    renderer.label(program.get_data_ptr(), "program");
    for (const void* values :
         {static_cast<const void*>(INTS), static_cast<const void*>(FLOATS),
          static_cast<const void*>(DOUBLES), static_cast<const void*>(HANDLES)}) {
      renderer.label(values, "values");
    }
  }

  test::RecordingRenderer renderer;
  GpuProgram program;
};

TEST_F(GpuProgramUniforms, ValuesGoStraightToTheRenderer) {
  for (const Row& row : ROWS) {
    SCOPED_TRACE(row.name);
    renderer.clear();
    EXPECT_TRUE(row.set(program, &renderer));
    EXPECT_THAT(renderer.calls(), ElementsAre(row.call));
    EXPECT_EQ(program.get_data_ptr()->find_uniform("u"), nullptr);
  }
}

TEST_F(GpuProgramUniforms, ResultIsThatOfTheRenderer) {
  for (const Row& row : ROWS) {
    SCOPED_TRACE(row.name);
    const std::string call = row.call;
    renderer.answer(call.substr(0, call.find('(')), 0);
    EXPECT_FALSE(row.set(program, &renderer));
  }
}

TEST_F(GpuProgramUniforms, ValuesWithoutRendererGoToTheRecord) {
  for (const Row& row : ROWS) {
    SCOPED_TRACE(row.name);
    EXPECT_TRUE(row.set(program, nullptr));
    ASSERT_NE(program.get_data_ptr()->find_uniform("u"), nullptr);
    EXPECT_EQ(program.get_data_ptr()->find_uniform("u")->type, row.type);
  }
  EXPECT_THAT(renderer.calls(), IsEmpty());
  EXPECT_EQ(program.get_data_ptr()->get_uniforms_list()[1], nullptr);
}

TEST_F(GpuProgramUniforms, TypesWithoutOperationGoToTheRecordAlways) {
  const double nine[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  EXPECT_TRUE(program.set_uniform_3x3d(&renderer, "3x3d", nine));
  EXPECT_TRUE(program.set_uniform_4x4d(&renderer, "4x4d", mat4d()));
  EXPECT_TRUE(program.set_uniform_subroutine(&renderer, GPU_SHADER_PIXEL, "light", "phong"));
  EXPECT_TRUE(program.gpu_buffer_set_uniform_1i(&renderer, 0, 1));
  EXPECT_TRUE(program.gpu_buffer_set_uniform_1f(&renderer, 4, 1));
  EXPECT_TRUE(program.gpu_buffer_set_uniform_4f(&renderer, 8, 1, 2, 3, 4));
  EXPECT_TRUE(program.gpu_buffer_set_uniform_4f(&renderer, 24, vec4(5, 6, 7, 8)));
  EXPECT_TRUE(program.gpu_buffer_set_uniform_4x4f(&renderer, 40, mat4()));
  const GpuProgramData* data = program.get_data_ptr();
  EXPECT_EQ(data->find_uniform("3x3d")->value_mat4d[8], 9);
  EXPECT_NE(data->find_uniform("4x4d"), nullptr);
  EXPECT_STREQ(data->find_uniform("light")->subroutine_name, "phong");
  EXPECT_EQ(data->find_uniform_v2(24)->value_f[3], 8);
  EXPECT_EQ(data->find_uniform_v2(40)->type, GPU_SHADER_UNIFORM_4x4f);
  EXPECT_THAT(renderer.calls(), IsEmpty());
}

TEST_F(GpuProgramUniforms, ObjectsOfTheLibraryAreTakenToo) {
  const vec4 vectors[] = {vec4(1, 2, 3, 4), vec4(5, 6, 7, 8)};
  mat4 matrix;
  matrix.ptr()[12] = 9;
  EXPECT_TRUE(program.set_uniform_4fv(nullptr, "vectors", 2, vectors));
  EXPECT_TRUE(program.set_uniform_4x4f(nullptr, "matrix", matrix));
  EXPECT_EQ(program.get_data_ptr()->find_uniform("vectors")->values_f[7], 8);
  EXPECT_EQ(program.get_data_ptr()->find_uniform("matrix")->value_mat4f[12], 9);
  EXPECT_TRUE(program.set_uniform_4fv(nullptr, "none", 2, static_cast<const vec4*>(nullptr)));
  EXPECT_EQ(program.get_data_ptr()->find_uniform("none"), nullptr);
}

TEST_F(GpuProgramUniforms, BadArraysDoNotReachTheRenderer) {
  EXPECT_TRUE(program.set_uniform_4fv(&renderer, "u", -1, FLOATS));
  EXPECT_TRUE(program.set_uniform_4fv(&renderer, "u", 0, FLOATS));
  EXPECT_TRUE(program.set_uniform_1iv(&renderer, "u", 1, nullptr));
  EXPECT_TRUE(program.set_uniform_1ui64v(&renderer, "u", -1, HANDLES));
  EXPECT_TRUE(program.set_uniform_3x3f(&renderer, "u", nullptr));
  EXPECT_TRUE(program.set_uniform_4x4f(&renderer, "u", static_cast<const float*>(nullptr)));
  EXPECT_FALSE(program.set_uniform_1fv(&renderer, nullptr, 1, FLOATS));
  EXPECT_FALSE(program.set_uniform_1ui64v(&renderer, nullptr, 1, HANDLES));
  EXPECT_FALSE(program.set_uniform_3x3f(&renderer, nullptr, FLOATS));
  EXPECT_FALSE(program.set_uniform_4x4f(&renderer, nullptr, mat4()));
  EXPECT_THAT(renderer.calls(), IsEmpty());
}

}  // namespace
}  // namespace orv
