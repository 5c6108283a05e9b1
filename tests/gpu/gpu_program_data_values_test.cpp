#include <orv/gpu/gpu_program_data.h>
#include <orv/math/mat4.h>
#include <orv/math/mat4d.h>
#include <orv/math/vec4.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "gpu/uniform_fixture.h"

namespace orv {
namespace {

class GpuProgramDataValues : public test::UniformFixture {};

// ---- what all setters do ----

/// As many numbers as the largest value has, counted up from the first.
template <class T>
struct Numbers {
  explicit Numbers(int first) {
    for (int i = 0; i < 16; ++i) values[i] = static_cast<T>(first + i);
  }
  operator const T*() const { return values; }

  T values[16];
};

mat4d double_matrix(const double* numbers) {
  mat4d matrix;
  std::copy_n(numbers, 16, matrix.ptr());
  return matrix;
}

template <auto FIELD>
double number_of(const GpuProgramUniform& uniform, int i) {
  return static_cast<double>((uniform.*FIELD)[i]);
}

enum Resend {
  IF_OTHER,  // an equal value that was sent before is not sent again
  ALWAYS
};

struct Setter {
  const char* name;
  GPU_SHADER_UNIFORM type;
  int size;  // numbers of a value
  Resend resend;
  bool (*set)(GpuProgramData& data, const char* name, int first);  // first, first + 1, ...
  double (*get)(const GpuProgramUniform& uniform, int i);
};

// A setter that takes its numbers one by one or, behind `v`, in an array of the type T.
#define SETTER_AS(name, suffix, T, size, resend, field, ...)       \
  Setter {                                                         \
    name, GPU_SHADER_UNIFORM_##suffix, size, resend,               \
        [](GpuProgramData& data, const char* uniform, int first) { \
          const Numbers<T> v(first);                               \
          return data.set_uniform_##suffix(uniform, __VA_ARGS__);  \
        },                                                         \
        &number_of<&GpuProgramUniform::field>                      \
  }
#define SETTER(suffix, ...) SETTER_AS(#suffix, suffix, __VA_ARGS__)

const Setter SETTERS[] = {
    SETTER(1i, int, 1, ALWAYS, value_i, v[0]),
    SETTER(2i, int, 2, ALWAYS, value_i, v[0], v[1]),
    SETTER(3i, int, 3, ALWAYS, value_i, v[0], v[1], v[2]),
    SETTER(4i, int, 4, ALWAYS, value_i, v[0], v[1], v[2], v[3]),
    SETTER(1ui, unsigned int, 1, ALWAYS, value_ui, v[0]),
    SETTER(2ui, unsigned int, 2, ALWAYS, value_ui, v[0], v[1]),
    SETTER(3ui, unsigned int, 3, ALWAYS, value_ui, v[0], v[1], v[2]),
    SETTER(4ui, unsigned int, 4, ALWAYS, value_ui, v[0], v[1], v[2], v[3]),
    SETTER(1f, float, 1, IF_OTHER, value_f, v[0]),
    SETTER(2f, float, 2, IF_OTHER, value_f, v[0], v[1]),
    SETTER(3f, float, 3, IF_OTHER, value_f, v[0], v[1], v[2]),
    SETTER(4f, float, 4, IF_OTHER, value_f, v[0], v[1], v[2], v[3]),
    SETTER_AS("4f_vec4", 4f, float, 4, IF_OTHER, value_f, vec4(v[0], v[1], v[2], v[3])),
    SETTER(1d, double, 1, IF_OTHER, value_d, v[0]),
    SETTER(2d, double, 2, IF_OTHER, value_d, v[0], v[1]),
    SETTER(3d, double, 3, IF_OTHER, value_d, v[0], v[1], v[2]),
    SETTER(4d, double, 4, IF_OTHER, value_d, v[0], v[1], v[2], v[3]),
    SETTER(1iv, int, 3, ALWAYS, values_i, 3, v),
    SETTER(2iv, int, 6, ALWAYS, values_i, 3, v),
    SETTER(3iv, int, 9, ALWAYS, values_i, 3, v),
    SETTER(4iv, int, 12, ALWAYS, values_i, 3, v),
    SETTER(1fv, float, 3, ALWAYS, values_f, 3, v),
    SETTER(2fv, float, 6, ALWAYS, values_f, 3, v),
    SETTER(3fv, float, 9, ALWAYS, values_f, 3, v),
    SETTER(4fv, float, 12, ALWAYS, values_f, 3, v),
    SETTER(1dv, double, 3, ALWAYS, values_d, 3, v),
    SETTER(2dv, double, 6, ALWAYS, values_d, 3, v),
    SETTER(3dv, double, 9, ALWAYS, values_d, 3, v),
    SETTER(4dv, double, 12, ALWAYS, values_d, 3, v),
    SETTER(1ui64, unsigned long long, 1, ALWAYS, values_ui64, v[0]),
    SETTER(1ui64v, unsigned long long, 3, ALWAYS, values_ui64, 3, v),
    SETTER(3x3f, float, 9, IF_OTHER, value_mat4f, v),
    SETTER(4x4f, float, 16, IF_OTHER, value_mat4f, v),
    SETTER_AS("4x4f_mat4", 4x4f, float, 16, IF_OTHER, value_mat4f, mat4(v)),
    SETTER(3x3d, double, 9, IF_OTHER, value_mat4d, v),
    SETTER(4x4d, double, 16, IF_OTHER, value_mat4d, v),
    SETTER_AS("4x4d_mat4d", 4x4d, double, 16, IF_OTHER, value_mat4d, double_matrix(v)),
};

#undef SETTER
#undef SETTER_AS

class GpuProgramDataSetters : public test::UniformFixture,
                              public testing::WithParamInterface<Setter> {
 protected:
  bool set(const char* name, int first) { return GetParam().set(data, name, first); }
};

INSTANTIATE_TEST_SUITE_P(Each, GpuProgramDataSetters, testing::ValuesIn(SETTERS),
                         [](const auto& setter) { return std::string(setter.param.name); });

TEST_P(GpuProgramDataSetters, StoresTypeAndNumbers) {
  EXPECT_TRUE(set("u", 1));
  const GpuProgramUniform* uniform = data.find_uniform("u");
  ASSERT_NE(uniform, nullptr);
  EXPECT_EQ(uniform->type, GetParam().type);
  EXPECT_TRUE(uniform->dirty);
  for (int i = 0; i < GetParam().size; ++i) EXPECT_EQ(GetParam().get(*uniform, i), i + 1);
}

TEST_P(GpuProgramDataSetters, NullNameIsRefused) {
  EXPECT_FALSE(set(nullptr, 1));
  EXPECT_EQ(data.get_uniforms_list()[0], nullptr);
}

TEST_P(GpuProgramDataSetters, EqualValueBeforeAnyUploadIsMarkedAgain) {
  set("u", 1);
  data.find_uniform("u")->dirty = false;
  set("u", 1);
  EXPECT_TRUE(is_dirty("u"));
}

TEST_P(GpuProgramDataSetters, EqualValueAfterAnUploadIsMarkedByTheRuleOfItsType) {
  set("u", 1);
  send_all();
  EXPECT_TRUE(set("u", 1));
  EXPECT_EQ(is_dirty("u"), GetParam().resend == ALWAYS);
}

TEST_P(GpuProgramDataSetters, OtherValueIsMarkedAndReplacesTheOldOne) {
  set("u", 1);
  send_all();
  set("u", 2);
  EXPECT_TRUE(is_dirty("u"));
  const int last = GetParam().size - 1;
  EXPECT_EQ(GetParam().get(*data.find_uniform("u"), last), last + 2);
  EXPECT_EQ(data.get_uniforms_list()[1], nullptr);
}

TEST_P(GpuProgramDataSetters, TakesOverARecordOfAnotherTypeUncompared) {
  const int zero[] = {0};
  data.set_uniform_1iv("u", 1, zero);
  send_all();
  if (GetParam().type == GPU_SHADER_UNIFORM_1iv) data.set_uniform_1i("u", 0);
  send_all();
  set("u", 0);
  const GpuProgramUniform* uniform = data.find_uniform("u");
  EXPECT_EQ(uniform->type, GetParam().type);
  EXPECT_TRUE(uniform->dirty);
  for (int i = 0; i < GetParam().size; ++i) EXPECT_EQ(GetParam().get(*uniform, i), i);
  EXPECT_EQ(data.get_uniforms_list()[1], nullptr);
}

TEST_P(GpuProgramDataSetters, OnlyUnsignedNumbersAskForAllLocationsAgain) {
  set("u", 1);
  send_all();
  set("u", 2);
  const bool is_unsigned =
      GetParam().type >= GPU_SHADER_UNIFORM_1ui && GetParam().type <= GPU_SHADER_UNIFORM_4ui;
  EXPECT_EQ(data._are_uniforms_optimized(), !is_unsigned);
}

// ---- values ----

TEST_F(GpuProgramDataValues, ArraysTellCountAndElements) {
  const float numbers[12] = {};
  using SetArray = bool (GpuProgramData::*)(const char*, int, const float*);
  const SetArray setters[] = {&GpuProgramData::set_uniform_1fv, &GpuProgramData::set_uniform_2fv,
                              &GpuProgramData::set_uniform_3fv, &GpuProgramData::set_uniform_4fv};
  for (int elements = 1; elements <= 4; ++elements) {
    (data.*setters[elements - 1])("u", 3, numbers);
    EXPECT_EQ(data.find_uniform("u")->count, 3);
    EXPECT_EQ(data.find_uniform("u")->elements, elements);
  }
}

TEST_F(GpuProgramDataValues, HandlesAreKeptIn64Bits) {
  const unsigned long long handles[] = {1ull << 40, 2ull << 40};
  EXPECT_TRUE(data.set_uniform_1ui64("one", 1ull << 63));
  EXPECT_TRUE(data.set_uniform_1ui64v("many", 2, handles));
  EXPECT_EQ(data.find_uniform("one")->values_ui64[0], 1ull << 63);
  EXPECT_EQ(data.find_uniform("many")->count, 2);
  EXPECT_EQ(data.find_uniform("many")->values_ui64[1], 2ull << 40);
}

TEST_F(GpuProgramDataValues, SubroutineNeedsBothNames) {
  EXPECT_FALSE(data.set_uniform_subroutine(GPU_SHADER_VERTEX, nullptr, "s"));
  EXPECT_FALSE(data.set_uniform_subroutine(GPU_SHADER_VERTEX, "u", nullptr));
  EXPECT_EQ(data.get_uniforms_list()[0], nullptr);
}

TEST_F(GpuProgramDataValues, NullValuesAndEmptyArraysStoreNothing) {
  const float f[] = {1};
  EXPECT_TRUE(data.set_uniform_1fv("u", 1, nullptr));
  EXPECT_TRUE(data.set_uniform_1fv("u", 0, f));
  EXPECT_TRUE(data.set_uniform_1fv("u", -5, f));
  EXPECT_TRUE(data.set_uniform_1iv("u", 2, nullptr));
  EXPECT_TRUE(data.set_uniform_4dv("u", 2, nullptr));
  EXPECT_TRUE(data.set_uniform_1ui64v("u", 2, nullptr));
  EXPECT_TRUE(data.set_uniform_3x3f("u", nullptr));
  EXPECT_TRUE(data.set_uniform_4x4f("u", static_cast<const float*>(nullptr)));
  EXPECT_TRUE(data.set_uniform_4x4d("u", static_cast<const double*>(nullptr)));
  EXPECT_TRUE(data._set_uniform_fv("u", 1, 0, f));
  EXPECT_TRUE(data._set_uniform_fv("u", 1, 5, f));
  EXPECT_TRUE(data._set_uniform_f("u", 5, f));
  EXPECT_TRUE(data._set_uniform_i("u", 1, nullptr));
  const int i[4] = {};
  for (const int elements : {-1, 0, std::numeric_limits<int>::min()}) {
    EXPECT_TRUE(data._set_uniform_i("u", elements, i));
    EXPECT_TRUE(data._set_uniform_fv("u", 1, elements, f));
  }
  EXPECT_EQ(data.find_uniform("u"), nullptr);
}

// ---- what is sent again ----

TEST_F(GpuProgramDataValues, NanIsNeverEqual) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  mat4 matrix;
  matrix.ptr()[5] = nan;
  data.set_uniform_1f("u", nan);
  data.set_uniform_4x4f("m", matrix);
  send_all();
  data.set_uniform_1f("u", nan);
  data.set_uniform_4x4f("m", matrix);
  EXPECT_TRUE(is_dirty("u"));
  EXPECT_TRUE(is_dirty("m"));
}

TEST_F(GpuProgramDataValues, ZerosOfBothSignsAreEqual) {
  data.set_uniform_1f("u", 0.0f);
  send_all();
  data.set_uniform_1f("u", -0.0f);
  EXPECT_FALSE(is_dirty("u"));
  EXPECT_FALSE(std::signbit(data.find_uniform("u")->value_f[0]));
}

// ---- changing sizes ----

TEST_F(GpuProgramDataValues, ArraysFollowEveryChangeOfShape) {
  std::vector<float> floats(64, 1.0f);
  std::vector<int> integers(64, 1);
  // Same count with more elements, same product with another shape, another kind and back again.
  data.set_uniform_1fv("u", 2, floats.data());
  data.set_uniform_4fv("u", 2, floats.data());
  EXPECT_EQ(data.find_uniform("u")->values_f[7], 1);
  data.set_uniform_2fv("u", 4, floats.data());
  EXPECT_EQ(data.find_uniform("u")->count, 4);
  data.set_uniform_1fv("u", 1, floats.data());
  data.set_uniform_4iv("u", 16, integers.data());
  EXPECT_EQ(data.find_uniform("u")->values_f, nullptr);
  data.set_uniform_4fv("u", 16, floats.data());
  EXPECT_EQ(data.find_uniform("u")->values_f[63], 1);
  EXPECT_EQ(data.find_uniform("u")->values_i, nullptr);
  EXPECT_EQ(data.find_uniform("u")->type, GPU_SHADER_UNIFORM_4fv);
}

TEST_F(GpuProgramDataValues, ArrayOfTheSameShapeKeepsItsBlock) {
  const float first[] = {1, 2};
  const float second[] = {3, 4};
  data.set_uniform_1fv("u", 2, first);
  const float* block = data.find_uniform("u")->values_f;
  data.set_uniform_1fv("u", 2, second);
  EXPECT_EQ(data.find_uniform("u")->values_f, block);
  EXPECT_EQ(block[1], 4);
}

// ---- subroutines ----

TEST_F(GpuProgramDataValues, SubroutineUniformsAreCountedPerStage) {
  EXPECT_TRUE(data.set_uniform_subroutine(GPU_SHADER_PIXEL, "light", "phong"));
  EXPECT_TRUE(data.set_uniform_subroutine(GPU_SHADER_PIXEL, "fog", "none"));
  EXPECT_TRUE(data.set_uniform_subroutine(GPU_SHADER_COMPUTE, "step", "one"));
  EXPECT_EQ(data.num_subroutine_uniforms[GPU_SHADER_PIXEL], 2u);
  EXPECT_EQ(data.num_subroutine_uniforms[GPU_SHADER_COMPUTE], 1u);
  const GpuProgramUniform* uniform = data.find_uniform("light");
  EXPECT_EQ(uniform->type, GPU_SHADER_UNIFORM_subroutine);
  EXPECT_EQ(uniform->shader_type, GPU_SHADER_PIXEL);
  EXPECT_STREQ(uniform->subroutine_name, "phong");
}

TEST_F(GpuProgramDataValues, SameSubroutineTwiceIsNotMarked) {
  data.set_uniform_subroutine(GPU_SHADER_PIXEL, "light", "phong");
  send_all();
  EXPECT_TRUE(data.set_uniform_subroutine(GPU_SHADER_PIXEL, "light", "phong"));
  EXPECT_FALSE(is_dirty("light"));
  EXPECT_TRUE(data._are_uniforms_optimized());
  EXPECT_EQ(data.num_subroutine_uniforms[GPU_SHADER_PIXEL], 1u);
}

TEST_F(GpuProgramDataValues, AnotherSubroutineIsMarkedAndResolved) {
  data.set_uniform_subroutine(GPU_SHADER_PIXEL, "light", "phong");
  send_all();
  EXPECT_TRUE(data.set_uniform_subroutine(GPU_SHADER_PIXEL, "light", "toon"));
  EXPECT_TRUE(is_dirty("light"));
  EXPECT_FALSE(data._are_uniforms_optimized());
  EXPECT_STREQ(data.find_uniform("light")->subroutine_name, "toon");
  EXPECT_EQ(data.num_subroutine_uniforms[GPU_SHADER_PIXEL], 1u);
}

TEST_F(GpuProgramDataValues, SubroutineNamesCompareOver63Characters) {
  const std::string base(63, 's');
  data.set_uniform_subroutine(GPU_SHADER_PIXEL, "light", (base + "a").c_str());
  send_all();
  data.set_uniform_subroutine(GPU_SHADER_PIXEL, "light", (base + "b").c_str());
  EXPECT_FALSE(is_dirty("light"));
  EXPECT_EQ(data.find_uniform("light")->subroutine_name, base);
}

TEST_F(GpuProgramDataValues, StagesWithoutSubroutinesStoreNothing) {
  EXPECT_TRUE(data.set_uniform_subroutine(static_cast<GPU_SHADER_TYPE>(6), "u", "s"));
  EXPECT_TRUE(data.set_uniform_subroutine(GPU_SHADER_D3D_EFFECT, "u", "s"));
  EXPECT_TRUE(data.set_uniform_subroutine(static_cast<GPU_SHADER_TYPE>(-1), "u", "s"));
  EXPECT_EQ(data.find_uniform("u"), nullptr);
}

TEST_F(GpuProgramDataValues, SubroutineCountsFollowStageAndTypeChanges) {
  data.set_uniform_subroutine(GPU_SHADER_PIXEL, "u", "s");
  data.set_uniform_subroutine(GPU_SHADER_VERTEX, "u", "s");
  EXPECT_EQ(data.num_subroutine_uniforms[GPU_SHADER_PIXEL], 0u);
  EXPECT_EQ(data.num_subroutine_uniforms[GPU_SHADER_VERTEX], 1u);
  data.set_uniform_1f("u", 1);
  EXPECT_EQ(data.num_subroutine_uniforms[GPU_SHADER_VERTEX], 0u);
  data.set_uniform_subroutine(GPU_SHADER_VERTEX, "u", "s");
  EXPECT_EQ(data.num_subroutine_uniforms[GPU_SHADER_VERTEX], 1u);
}

TEST_F(GpuProgramDataValues, SubroutineIndexArrayGrowsAndIsZeroed) {
  unsigned int* indices = data._reserve_subroutine_indices(GPU_SHADER_PIXEL, 2);
  ASSERT_NE(indices, nullptr);
  indices[1] = 9;
  EXPECT_EQ(data._reserve_subroutine_indices(GPU_SHADER_PIXEL, 1), indices);
  EXPECT_EQ(indices[1], 0u);
  indices = data._reserve_subroutine_indices(GPU_SHADER_PIXEL, 50);
  for (int i = 0; i < 50; ++i) EXPECT_EQ(indices[i], 0u);
  EXPECT_EQ(data._reserve_subroutine_indices(GPU_SHADER_D3D_EFFECT, 1), nullptr);
  EXPECT_EQ(data._reserve_subroutine_indices(GPU_SHADER_PIXEL, 0), nullptr);
}

// ---- constant buffers ----

TEST_F(GpuProgramDataValues, OffsetZeroIsNotTheFirstNamedRecord) {
  data.set_uniform_1f("named", 5);
  EXPECT_EQ(data.find_uniform_v2(0), nullptr);
  EXPECT_TRUE(data.gpu_buffer_set_uniform_1f(0, 7));
  const GpuProgramUniform* uniform = data.find_uniform_v2(0);
  ASSERT_NE(uniform, nullptr);
  EXPECT_NE(uniform, data.find_uniform("named"));
  EXPECT_STREQ(uniform->name, "");
  EXPECT_EQ(uniform->value_f[0], 7);
  EXPECT_EQ(data.find_uniform("named")->value_f[0], 5);
}

TEST_F(GpuProgramDataValues, OffsetsAreSetLikeNames) {
  const mat4 matrix(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
  EXPECT_TRUE(data.gpu_buffer_set_uniform_1i(0, -3));
  EXPECT_TRUE(data.gpu_buffer_set_uniform_4f(16, 1, 2, 3, 4));
  EXPECT_TRUE(data.gpu_buffer_set_uniform_4x4f(32, matrix));
  EXPECT_EQ(data.find_uniform_v2(0)->value_i[0], -3);
  EXPECT_EQ(data.find_uniform_v2(16)->value_f[2], 3);
  EXPECT_EQ(data.find_uniform_v2(32)->value_mat4f[14], 15);
  send_all();
  data.gpu_buffer_set_uniform_1i(0, -3);
  data.gpu_buffer_set_uniform_4f(16, 1, 2, 3, 4);
  data.gpu_buffer_set_uniform_4x4f(32, matrix);
  EXPECT_TRUE(data.find_uniform_v2(0)->dirty);
  EXPECT_FALSE(data.find_uniform_v2(16)->dirty);
  EXPECT_FALSE(data.find_uniform_v2(32)->dirty);
  data.gpu_buffer_set_uniform_1f(16, 1);
  EXPECT_EQ(data.find_uniform_v2(16)->type, GPU_SHADER_UNIFORM_1f);
  EXPECT_TRUE(data.find_uniform_v2(16)->dirty);
  EXPECT_EQ(data.get_uniforms_list()[3], nullptr);
}

TEST_F(GpuProgramDataValues, NoOffsetStoresNothing) {
  data.set_uniform_1f("named", 5);
  EXPECT_TRUE(data.gpu_buffer_set_uniform_1f(GpuProgramUniform::NO_OFFSET, 7));
  EXPECT_TRUE(data.gpu_buffer_set_uniform_4x4f(0, static_cast<const float*>(nullptr)));
  EXPECT_EQ(data.find_uniform_v2(GpuProgramUniform::NO_OFFSET), nullptr);
  EXPECT_EQ(data.find_uniform("named")->value_f[0], 5);
  EXPECT_EQ(data.get_uniforms_list()[1], nullptr);
}

TEST_F(GpuProgramDataValues, EmptyNameIsThatOfTheFirstUnnamedRecord) {
  data.gpu_buffer_set_uniform_1f(0, 7);
  EXPECT_EQ(data.find_uniform(""), data.find_uniform_v2(0));
}

}  // namespace
}  // namespace orv
