#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/gpu_program_uniform.h>

#include <gtest/gtest.h>

#include <string>

namespace orv {
namespace {

TEST(GpuProgramUniform, TypesHaveTheirNumbers) {
  const int numbers[][2] = {
      {GPU_SHADER_UNIFORM_1i, 0},          {GPU_SHADER_UNIFORM_4i, 3},
      {GPU_SHADER_UNIFORM_1iv, 4},         {GPU_SHADER_UNIFORM_4iv, 7},
      {GPU_SHADER_UNIFORM_1f, 8},          {GPU_SHADER_UNIFORM_4f, 11},
      {GPU_SHADER_UNIFORM_1fv, 12},        {GPU_SHADER_UNIFORM_4fv, 15},
      {GPU_SHADER_UNIFORM_1d, 16},         {GPU_SHADER_UNIFORM_4d, 19},
      {GPU_SHADER_UNIFORM_1dv, 20},        {GPU_SHADER_UNIFORM_4dv, 23},
      {GPU_SHADER_UNIFORM_3x3f, 24},       {GPU_SHADER_UNIFORM_4x4f, 25},
      {GPU_SHADER_UNIFORM_3x3d, 26},       {GPU_SHADER_UNIFORM_4x4d, 27},
      {GPU_SHADER_UNIFORM_1ui, 28},        {GPU_SHADER_UNIFORM_4ui, 31},
      {GPU_SHADER_UNIFORM_1ui64, 32},      {GPU_SHADER_UNIFORM_1ui64v, 33},
      {GPU_SHADER_UNIFORM_subroutine, 37},
  };
  for (const auto& row : numbers) EXPECT_EQ(row[0], row[1]);
}

// ---- copies ----

TEST(GpuProgramUniform, CopyOwnsItsArrays) {
  GpuProgramData data;
  const float values[] = {1, 2, 3, 4};
  data.set_uniform_2fv("u", 2, values);
  GpuProgramUniform* uniform = data.find_uniform("u");
  GpuProgramUniform copy(*uniform);
  EXPECT_STREQ(copy.name, "u");
  EXPECT_EQ(copy.type, GPU_SHADER_UNIFORM_2fv);
  EXPECT_EQ(copy.count, 2);
  ASSERT_NE(copy.values_f, uniform->values_f);
  EXPECT_EQ(copy.values_f[3], 4);
  uniform->values_f[3] = 9;
  EXPECT_EQ(copy.values_f[3], 4);
  copy = *uniform;
  EXPECT_EQ(copy.values_f[3], 9);
  GpuProgramUniform& same = copy;
  copy = same;
  EXPECT_EQ(copy.values_f[3], 9);
  copy = GpuProgramUniform();
  EXPECT_EQ(copy.values_f, nullptr);
  EXPECT_EQ(copy.count, 0);
}

// ---- values that lie in the record itself ----

TEST(GpuProgramUniform, ArrayMayBeTakenFromTheRecordsOwn) {
  GpuProgramData data;
  const float values[] = {1, 2, 3, 4};
  data.set_uniform_1fv("u", 4, values);
  const GpuProgramUniform* uniform = data.find_uniform("u");
  EXPECT_TRUE(data.set_uniform_2fv("u", 2, uniform->values_f));
  EXPECT_EQ(uniform->type, GPU_SHADER_UNIFORM_2fv);
  EXPECT_EQ(uniform->values_f[3], 4);
  EXPECT_TRUE(data.set_uniform_2fv("u", 1, uniform->values_f + 2));
  EXPECT_EQ(uniform->count, 1);
  EXPECT_EQ(uniform->values_f[0], 3);
  EXPECT_TRUE(data.set_uniform_2fv("u", 1, uniform->values_f));
  EXPECT_EQ(uniform->values_f[1], 4);
}

TEST(GpuProgramUniform, ValueMayBeTakenFromTheRecordsOwnArray) {
  GpuProgramData data;
  float values[16];
  for (int i = 0; i < 16; ++i) values[i] = static_cast<float>(i);
  data.set_uniform_4fv("u", 4, values);
  const GpuProgramUniform* uniform = data.find_uniform("u");
  EXPECT_TRUE(data.set_uniform_4x4f("u", uniform->values_f));
  EXPECT_EQ(uniform->type, GPU_SHADER_UNIFORM_4x4f);
  EXPECT_EQ(uniform->values_f, nullptr);
  for (int i = 0; i < 16; ++i) EXPECT_EQ(uniform->value_mat4f[i], values[i]);
}

TEST(GpuProgramUniform, SubroutineNameMayBeTakenFromTheRecord) {
  GpuProgramData data;
  data.set_uniform_subroutine(GPU_SHADER_PIXEL, "light", "phong");
  const GpuProgramUniform* uniform = data.find_uniform("light");
  EXPECT_TRUE(data.set_uniform_subroutine(GPU_SHADER_VERTEX, "light", uniform->subroutine_name));
  EXPECT_EQ(uniform->shader_type, GPU_SHADER_VERTEX);
  EXPECT_STREQ(uniform->subroutine_name, "phong");
  EXPECT_TRUE(data.set_uniform_subroutine(GPU_SHADER_VERTEX, "light", "toon"));
  EXPECT_EQ(std::string(uniform->subroutine_name, 6), std::string("toon\0\0", 6));
}

// ---- records that stand where another stood ----

TEST(GpuProgramUniform, RecordInThePlaceOfAnEngineUniformIsNotTakenForIt) {
  GpuProgramData data;
  data.set_engine_uniform_4f(ENGINE_UNIFORM_VIEWPORT, 0, 0, 640, 480);
  GpuProgramUniform* viewport = data.engine_uniform(ENGINE_UNIFORM_VIEWPORT);
  ASSERT_EQ(viewport, data.get_uniforms_list()[0]);
  // The same as deleting it, and making one that lands at the same address.
  *viewport = GpuProgramUniform();
  viewport->name[0] = 'x';
  EXPECT_EQ(data.engine_uniform(ENGINE_UNIFORM_VIEWPORT), nullptr);
  data.set_engine_uniform_4f(ENGINE_UNIFORM_VIEWPORT, 0, 0, 320, 200);
  EXPECT_EQ(viewport->value_f[2], 0);
  EXPECT_EQ(data.find_uniform("orvex_Viewport")->value_f[2], 320);
}

}  // namespace
}  // namespace orv
