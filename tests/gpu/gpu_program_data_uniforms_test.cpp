#include <orv/gpu/gpu_program_data.h>
#include <orv/math/mat4.h>
#include <orv/math/mat4d.h>
#include <orv/math/vec4.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace orv {
namespace {

class GpuProgramDataUniforms : public testing::Test {
 protected:
  // Plays the renderer that sent all values.
  void send_all() {
    for (unsigned int i = 0; i < data.get_num_uniforms(); ++i) {
      GpuProgramUniform* uniform = data.get_uniforms_list()[i];
      if (!uniform) continue;
      uniform->location = static_cast<int>(i);
      uniform->dirty = false;
      ++uniform->num_uploads;
    }
    data._uniforms_optimization_ok();
  }

  bool is_dirty(const char* name) const { return data.find_uniform(name)->dirty; }

  GpuProgramData data;
};

// ---- slots ----

TEST_F(GpuProgramDataUniforms, FourSlotsStandBeforeAnyUniform) {
  EXPECT_EQ(data.get_num_uniforms(), 4u);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(data.get_uniforms_list()[i], nullptr);
}

TEST_F(GpuProgramDataUniforms, FifthUniformGrowsTheListToEightAndNinthToTwelve) {
  const unsigned int expected[] = {4, 4, 4, 4, 8, 8, 8, 8, 12};
  std::vector<std::string> names;
  for (int i = 0; i < 9; ++i) {
    names.push_back("u" + std::to_string(i));
    EXPECT_TRUE(data.set_uniform_1i(names.back().c_str(), i));
    EXPECT_EQ(data.get_num_uniforms(), expected[i]);
  }
  for (int i = 0; i < 9; ++i) {
    const GpuProgramUniform* uniform = data.get_uniforms_list()[i];
    ASSERT_NE(uniform, nullptr);
    EXPECT_EQ(uniform->name, names[static_cast<std::size_t>(i)]);
    EXPECT_EQ(uniform->value_i[0], i);
    EXPECT_EQ(data.find_uniform(uniform->name), uniform);
  }
  EXPECT_EQ(data.get_uniforms_list()[9], nullptr);
}

TEST_F(GpuProgramDataUniforms, NewRecordsComeFromTheGrownList) {
  for (unsigned int i = 0; i < 13; ++i) {
    const GpuProgramUniform* uniform = data.get_new_uniform();
    EXPECT_EQ(uniform, data.get_uniforms_list()[i]);
  }
  EXPECT_EQ(data.get_num_uniforms(), 16u);
}

TEST_F(GpuProgramDataUniforms, FreedSlotIsReused) {
  data.set_uniform_1i("a", 1);
  data.set_uniform_1i("b", 2);
  GpuProgramUniform** list = data.get_uniforms_list();
  delete list[0];
  list[0] = nullptr;
  EXPECT_EQ(data.find_uniform("a"), nullptr);
  data.set_uniform_1i("c", 3);
  EXPECT_EQ(data.find_uniform("c"), list[0]);
  EXPECT_EQ(data.find_uniform("b"), list[1]);
  data.set_uniform_1i("a", 4);
  EXPECT_EQ(data.find_uniform("a"), list[2]);
  EXPECT_EQ(data.get_num_uniforms(), 4u);
}

TEST_F(GpuProgramDataUniforms, ManyNamesAreAllFound) {
  for (int i = 0; i < 1000; ++i) data.set_uniform_1i(("name_" + std::to_string(i)).c_str(), i);
  for (int i = 0; i < 1000; ++i) {
    const GpuProgramUniform* uniform = data.find_uniform(("name_" + std::to_string(i)).c_str());
    ASSERT_NE(uniform, nullptr) << i;
    EXPECT_EQ(uniform->value_i[0], i);
  }
  EXPECT_EQ(data.find_uniform("name_1000"), nullptr);
  EXPECT_EQ(data.get_num_uniforms(), 1000u);
}

TEST_F(GpuProgramDataUniforms, RecordsPutInByHandAreFound) {
  GpuProgramUniform* uniform = data.get_new_uniform();
  std::snprintf(uniform->name, sizeof(uniform->name), "by_hand");
  EXPECT_EQ(data.find_uniform("by_hand"), uniform);
  EXPECT_EQ(data.find_uniform("by_hand"), uniform);
}

TEST_F(GpuProgramDataUniforms, NamesWithTheSame63CharactersAreOneUniform) {
  const std::string base(63, 'n');
  data.set_uniform_1f((base + "_first").c_str(), 1);
  data.set_uniform_1f((base + "_second").c_str(), 2);
  const GpuProgramUniform* uniform = data.find_uniform(base.c_str());
  ASSERT_NE(uniform, nullptr);
  EXPECT_EQ(uniform->name, base);
  EXPECT_EQ(uniform->value_f[0], 2);
  EXPECT_EQ(data.get_uniforms_list()[1], nullptr);
}

TEST_F(GpuProgramDataUniforms, NameSearchOfNullFindsNothing) {
  EXPECT_EQ(data.find_uniform(nullptr), nullptr);
  EXPECT_EQ(data.find_uniform("absent"), nullptr);
}

TEST_F(GpuProgramDataUniforms, KillEndsAllAndSettingStartsAgain) {
  const float values[] = {1, 2};
  data.set_uniform_1fv("a", 2, values);
  data.set_uniform_subroutine(GPU_SHADER_VERTEX, "s", "one");
  data._reserve_subroutine_indices(GPU_SHADER_VERTEX, 3);
  data._update_uniform_location_cache("a", 1);
  data.kill_uniforms();
  EXPECT_EQ(data.get_num_uniforms(), 0u);
  EXPECT_EQ(data.get_uniforms_list(), nullptr);
  EXPECT_EQ(data.find_uniform("a"), nullptr);
  EXPECT_EQ(data.num_subroutine_uniforms[0], 0u);
  EXPECT_EQ(data.subroutine_indices[0], nullptr);
  EXPECT_EQ(data._get_uniform_location_from_cache("a"), -1);
  EXPECT_FALSE(data.need_bind_uniforms());
  EXPECT_TRUE(data.set_uniform_1f("a", 1));
  EXPECT_EQ(data.get_num_uniforms(), 4u);
}

TEST_F(GpuProgramDataUniforms, InitStartsAfresh) {
  data.set_uniform_1f("a", 1);
  data.init_uniforms();
  EXPECT_EQ(data.get_num_uniforms(), 4u);
  EXPECT_EQ(data.find_uniform("a"), nullptr);
}

// ---- values ----

TEST_F(GpuProgramDataUniforms, FreshRecordStartsWithTheDescribedValues) {
  const GpuProgramUniform* uniform = data.get_new_uniform();
  const mat4 identity;
  EXPECT_EQ(uniform->location, -1);
  EXPECT_EQ(uniform->num_uploads, 0);
  EXPECT_STREQ(uniform->name, "");
  EXPECT_EQ(uniform->value_ui[3], 0u);
  EXPECT_EQ(uniform->value_i[3], 1);
  EXPECT_EQ(uniform->value_f[3], 1);
  EXPECT_EQ(uniform->value_d[3], 1);
  EXPECT_TRUE(identity == uniform->value_mat4f);
  EXPECT_EQ(uniform->value_mat4d[15], 1);
  EXPECT_EQ(uniform->count, 0);
  EXPECT_EQ(uniform->values_f, nullptr);
  EXPECT_STREQ(uniform->subroutine_name, "");
  EXPECT_EQ(uniform->gpu_buffer_offset, 0xFFFFFFFFu);
}

TEST_F(GpuProgramDataUniforms, ScalarSettersStoreTypeAndValues) {
  struct Row {
    const char* name;
    GPU_SHADER_UNIFORM type;
  };
  data.set_uniform_1i("1i", 1);
  data.set_uniform_2i("2i", 1, 2);
  data.set_uniform_3i("3i", 1, 2, 3);
  data.set_uniform_4i("4i", 1, 2, 3, 4);
  data.set_uniform_1ui("1ui", 1);
  data.set_uniform_2ui("2ui", 1, 2);
  data.set_uniform_3ui("3ui", 1, 2, 3);
  data.set_uniform_4ui("4ui", 1, 2, 3, 4);
  data.set_uniform_1f("1f", 1);
  data.set_uniform_2f("2f", 1, 2);
  data.set_uniform_3f("3f", 1, 2, 3);
  data.set_uniform_4f("4f", 1, 2, 3, 4);
  data.set_uniform_1d("1d", 1);
  data.set_uniform_2d("2d", 1, 2);
  data.set_uniform_3d("3d", 1, 2, 3);
  data.set_uniform_4d("4d", 1, 2, 3, 4);
  const Row rows[] = {
      {"1i", GPU_SHADER_UNIFORM_1i},   {"2i", GPU_SHADER_UNIFORM_2i},
      {"3i", GPU_SHADER_UNIFORM_3i},   {"4i", GPU_SHADER_UNIFORM_4i},
      {"1ui", GPU_SHADER_UNIFORM_1ui}, {"2ui", GPU_SHADER_UNIFORM_2ui},
      {"3ui", GPU_SHADER_UNIFORM_3ui}, {"4ui", GPU_SHADER_UNIFORM_4ui},
      {"1f", GPU_SHADER_UNIFORM_1f},   {"2f", GPU_SHADER_UNIFORM_2f},
      {"3f", GPU_SHADER_UNIFORM_3f},   {"4f", GPU_SHADER_UNIFORM_4f},
      {"1d", GPU_SHADER_UNIFORM_1d},   {"2d", GPU_SHADER_UNIFORM_2d},
      {"3d", GPU_SHADER_UNIFORM_3d},   {"4d", GPU_SHADER_UNIFORM_4d},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const GpuProgramUniform* uniform = data.find_uniform(row.name);
    ASSERT_NE(uniform, nullptr);
    EXPECT_EQ(uniform->type, row.type);
    EXPECT_TRUE(uniform->dirty);
    const std::string kind = row.name + 1;
    for (int i = 0; i < row.name[0] - '0'; ++i) {
      const double value = kind == "i"    ? uniform->value_i[i]
                           : kind == "ui" ? uniform->value_ui[i]
                           : kind == "f"  ? static_cast<double>(uniform->value_f[i])
                                          : uniform->value_d[i];
      EXPECT_EQ(value, i + 1);
    }
  }
}

TEST_F(GpuProgramDataUniforms, ArraySettersStoreTypeCountAndValues) {
  int integers[12];
  float floats[12];
  double doubles[12];
  for (int i = 0; i < 12; ++i) {
    integers[i] = i;
    floats[i] = static_cast<float>(i);
    doubles[i] = i;
  }
  data.set_uniform_1iv("1iv", 3, integers);
  data.set_uniform_2iv("2iv", 3, integers);
  data.set_uniform_3iv("3iv", 3, integers);
  data.set_uniform_4iv("4iv", 3, integers);
  data.set_uniform_1fv("1fv", 3, floats);
  data.set_uniform_2fv("2fv", 3, floats);
  data.set_uniform_3fv("3fv", 3, floats);
  data.set_uniform_4fv("4fv", 3, floats);
  data.set_uniform_1dv("1dv", 3, doubles);
  data.set_uniform_2dv("2dv", 3, doubles);
  data.set_uniform_3dv("3dv", 3, doubles);
  data.set_uniform_4dv("4dv", 3, doubles);
  for (int elements = 1; elements <= 4; ++elements) {
    const std::string digit = std::to_string(elements);
    const int last = 3 * elements - 1;
    const GpuProgramUniform* iv = data.find_uniform((digit + "iv").c_str());
    EXPECT_EQ(iv->type, GPU_SHADER_UNIFORM_1iv + elements - 1);
    EXPECT_EQ(iv->values_i[last], last);
    const GpuProgramUniform* fv = data.find_uniform((digit + "fv").c_str());
    EXPECT_EQ(fv->type, GPU_SHADER_UNIFORM_1fv + elements - 1);
    EXPECT_EQ(fv->count, 3);
    EXPECT_EQ(fv->elements, elements);
    EXPECT_EQ(fv->values_f[last], static_cast<float>(last));
    const GpuProgramUniform* dv = data.find_uniform((digit + "dv").c_str());
    EXPECT_EQ(dv->type, GPU_SHADER_UNIFORM_1dv + elements - 1);
    EXPECT_EQ(dv->values_d[last], last);
  }
}

TEST_F(GpuProgramDataUniforms, HandlesAreKeptIn64Bits) {
  const unsigned long long handles[] = {1ull << 40, 2ull << 40};
  EXPECT_TRUE(data.set_uniform_1ui64("one", 1ull << 63));
  EXPECT_TRUE(data.set_uniform_1ui64v("many", 2, handles));
  EXPECT_EQ(data.find_uniform("one")->type, GPU_SHADER_UNIFORM_1ui64);
  EXPECT_EQ(data.find_uniform("one")->values_ui64[0], 1ull << 63);
  EXPECT_EQ(data.find_uniform("many")->type, GPU_SHADER_UNIFORM_1ui64v);
  EXPECT_EQ(data.find_uniform("many")->count, 2);
  EXPECT_EQ(data.find_uniform("many")->values_ui64[1], 2ull << 40);
}

TEST_F(GpuProgramDataUniforms, MatricesAreKeptAsGiven) {
  const mat4 matrix(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
  const float nine[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  const double nine_d[] = {9, 8, 7, 6, 5, 4, 3, 2, 1};
  mat4d matrix_d;
  matrix_d.ptr()[12] = 5;
  EXPECT_TRUE(data.set_uniform_4x4f("4x4f", matrix));
  EXPECT_TRUE(data.set_uniform_4x4f("floats", matrix.ptr()));
  EXPECT_TRUE(data.set_uniform_3x3f("3x3f", nine));
  EXPECT_TRUE(data.set_uniform_3x3d("3x3d", nine_d));
  EXPECT_TRUE(data.set_uniform_4x4d("4x4d", matrix_d));
  EXPECT_EQ(data.find_uniform("4x4f")->type, GPU_SHADER_UNIFORM_4x4f);
  EXPECT_EQ(data.find_uniform("3x3f")->type, GPU_SHADER_UNIFORM_3x3f);
  EXPECT_EQ(data.find_uniform("3x3d")->type, GPU_SHADER_UNIFORM_3x3d);
  EXPECT_EQ(data.find_uniform("4x4d")->type, GPU_SHADER_UNIFORM_4x4d);
  for (int i = 0; i < 16; ++i) {
    EXPECT_EQ(data.find_uniform("4x4f")->value_mat4f[i], static_cast<float>(i + 1));
    EXPECT_EQ(data.find_uniform("floats")->value_mat4f[i], static_cast<float>(i + 1));
  }
  for (int i = 0; i < 9; ++i) {
    EXPECT_EQ(data.find_uniform("3x3f")->value_mat4f[i], nine[i]);
    EXPECT_EQ(data.find_uniform("3x3d")->value_mat4d[i], nine_d[i]);
  }
  EXPECT_EQ(data.find_uniform("4x4d")->value_mat4d[12], 5);
}

TEST_F(GpuProgramDataUniforms, NullNamesAreRefused) {
  const int i = 0;
  const float f = 0;
  const double d = 0;
  const unsigned long long u = 0;
  EXPECT_FALSE(data.set_uniform_1i(nullptr, 1));
  EXPECT_FALSE(data.set_uniform_4ui(nullptr, 1, 2, 3, 4));
  EXPECT_FALSE(data.set_uniform_2f(nullptr, 1, 2));
  EXPECT_FALSE(data.set_uniform_4f(nullptr, vec4()));
  EXPECT_FALSE(data.set_uniform_3d(nullptr, 1, 2, 3));
  EXPECT_FALSE(data.set_uniform_1iv(nullptr, 1, &i));
  EXPECT_FALSE(data.set_uniform_1fv(nullptr, 1, &f));
  EXPECT_FALSE(data.set_uniform_1dv(nullptr, 1, &d));
  EXPECT_FALSE(data.set_uniform_1ui64(nullptr, u));
  EXPECT_FALSE(data.set_uniform_1ui64v(nullptr, 1, &u));
  EXPECT_FALSE(data.set_uniform_3x3f(nullptr, &f));
  EXPECT_FALSE(data.set_uniform_4x4f(nullptr, mat4()));
  EXPECT_FALSE(data.set_uniform_3x3d(nullptr, &d));
  EXPECT_FALSE(data.set_uniform_4x4d(nullptr, mat4d()));
  EXPECT_FALSE(data.set_uniform_subroutine(GPU_SHADER_VERTEX, nullptr, "s"));
  EXPECT_FALSE(data.set_uniform_subroutine(GPU_SHADER_VERTEX, "u", nullptr));
  EXPECT_EQ(data.get_uniforms_list()[0], nullptr);
}

TEST_F(GpuProgramDataUniforms, NullValuesAndEmptyArraysStoreNothing) {
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
  EXPECT_EQ(data.find_uniform("u"), nullptr);
}

// ---- what is sent again ----

TEST_F(GpuProgramDataUniforms, EqualFloatBeforeAnyUploadIsMarkedAgain) {
  data.set_uniform_1f("u", 2);
  data.find_uniform("u")->dirty = false;
  data.set_uniform_1f("u", 2);
  EXPECT_TRUE(is_dirty("u"));
}

TEST_F(GpuProgramDataUniforms, EqualValuesAfterAnUploadStayClean) {
  const float nine[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  const double nine_d[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  const auto set_all = [&](float last) {
    data.set_uniform_1f("1f", last);
    data.set_uniform_4f("4f", 1, 2, 3, last);
    data.set_uniform_3d("3d", 1, 2, static_cast<double>(last));
    data.set_uniform_4x4f("4x4f", mat4(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, last, 1));
    data.set_uniform_3x3f("3x3f", nine);
    data.set_uniform_3x3d("3x3d", nine_d);
  };
  set_all(4);
  send_all();
  set_all(4);
  for (const char* name : {"1f", "4f", "3d", "4x4f", "3x3f", "3x3d"}) {
    EXPECT_FALSE(is_dirty(name)) << name;
  }
  set_all(5);
  for (const char* name : {"1f", "4f", "3d", "4x4f"}) EXPECT_TRUE(is_dirty(name)) << name;
  EXPECT_FALSE(is_dirty("3x3f"));
}

TEST_F(GpuProgramDataUniforms, NanIsNeverEqual) {
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

TEST_F(GpuProgramDataUniforms, ZerosOfBothSignsAreEqual) {
  data.set_uniform_1f("u", 0.0f);
  send_all();
  data.set_uniform_1f("u", -0.0f);
  EXPECT_FALSE(is_dirty("u"));
  EXPECT_FALSE(std::signbit(data.find_uniform("u")->value_f[0]));
}

TEST_F(GpuProgramDataUniforms, EqualIntegersAndArraysAreMarkedAlways) {
  const float f[] = {1, 2};
  const unsigned long long handles[] = {1, 2};
  const auto set_all = [&] {
    data.set_uniform_1i("1i", 1);
    data.set_uniform_2ui("2ui", 1, 2);
    data.set_uniform_1fv("1fv", 2, f);
    data.set_uniform_1ui64("1ui64", 5);
    data.set_uniform_1ui64v("1ui64v", 2, handles);
  };
  set_all();
  send_all();
  set_all();
  for (const char* name : {"1i", "2ui", "1fv", "1ui64", "1ui64v"}) {
    EXPECT_TRUE(is_dirty(name)) << name;
  }
}

TEST_F(GpuProgramDataUniforms, UnsignedSetAsksForAllLocationsAgain) {
  data.set_uniform_1ui("u", 1);
  send_all();
  data.set_uniform_1i("i", 1);
  send_all();
  data.set_uniform_1i("i", 2);
  EXPECT_TRUE(data._are_uniforms_optimized());
  data.set_uniform_1ui("u", 1);
  EXPECT_FALSE(data._are_uniforms_optimized());
}

TEST_F(GpuProgramDataUniforms, NewRecordAsksForItsLocation) {
  data.set_uniform_1f("a", 1);
  send_all();
  data.set_uniform_1f("a", 2);
  EXPECT_TRUE(data._are_uniforms_optimized());
  data.set_uniform_1f("b", 2);
  EXPECT_FALSE(data._are_uniforms_optimized());
}

TEST_F(GpuProgramDataUniforms, NeedBindMarksAllRecords) {
  EXPECT_TRUE(data.need_bind_uniforms());
  data.set_uniform_1f("a", 1);
  data.set_uniform_1i("b", 1);
  send_all();
  EXPECT_TRUE(data.need_bind_uniforms());
  EXPECT_TRUE(is_dirty("a"));
  EXPECT_TRUE(is_dirty("b"));
  EXPECT_FALSE(data._are_uniforms_optimized());
}

// ---- changing types and sizes ----

TEST_F(GpuProgramDataUniforms, AnotherTypeReplacesTheOldOneUncompared) {
  data.set_uniform_1f("u", 1);
  send_all();
  data.set_uniform_2f("u", 1, 0);
  EXPECT_EQ(data.find_uniform("u")->type, GPU_SHADER_UNIFORM_2f);
  EXPECT_TRUE(is_dirty("u"));
  send_all();
  data.set_uniform_1i("u", 0);
  EXPECT_EQ(data.find_uniform("u")->type, GPU_SHADER_UNIFORM_1i);
  EXPECT_TRUE(is_dirty("u"));
  EXPECT_EQ(data.get_uniforms_list()[1], nullptr);
}

TEST_F(GpuProgramDataUniforms, ArraysFollowEveryChangeOfShape) {
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

TEST_F(GpuProgramDataUniforms, ArrayOfTheSameShapeKeepsItsBlock) {
  const float first[] = {1, 2};
  const float second[] = {3, 4};
  data.set_uniform_1fv("u", 2, first);
  const float* block = data.find_uniform("u")->values_f;
  data.set_uniform_1fv("u", 2, second);
  EXPECT_EQ(data.find_uniform("u")->values_f, block);
  EXPECT_EQ(block[1], 4);
}

// ---- subroutines ----

TEST_F(GpuProgramDataUniforms, SubroutineUniformsAreCountedPerStage) {
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

TEST_F(GpuProgramDataUniforms, SameSubroutineTwiceIsNotMarked) {
  data.set_uniform_subroutine(GPU_SHADER_PIXEL, "light", "phong");
  send_all();
  EXPECT_TRUE(data.set_uniform_subroutine(GPU_SHADER_PIXEL, "light", "phong"));
  EXPECT_FALSE(is_dirty("light"));
  EXPECT_TRUE(data._are_uniforms_optimized());
  EXPECT_EQ(data.num_subroutine_uniforms[GPU_SHADER_PIXEL], 1u);
}

TEST_F(GpuProgramDataUniforms, AnotherSubroutineIsMarkedAndResolved) {
  data.set_uniform_subroutine(GPU_SHADER_PIXEL, "light", "phong");
  send_all();
  EXPECT_TRUE(data.set_uniform_subroutine(GPU_SHADER_PIXEL, "light", "toon"));
  EXPECT_TRUE(is_dirty("light"));
  EXPECT_FALSE(data._are_uniforms_optimized());
  EXPECT_STREQ(data.find_uniform("light")->subroutine_name, "toon");
  EXPECT_EQ(data.num_subroutine_uniforms[GPU_SHADER_PIXEL], 1u);
}

TEST_F(GpuProgramDataUniforms, SubroutineNamesCompareOver63Characters) {
  const std::string base(63, 's');
  data.set_uniform_subroutine(GPU_SHADER_PIXEL, "light", (base + "a").c_str());
  send_all();
  data.set_uniform_subroutine(GPU_SHADER_PIXEL, "light", (base + "b").c_str());
  EXPECT_FALSE(is_dirty("light"));
  EXPECT_EQ(data.find_uniform("light")->subroutine_name, base);
}

TEST_F(GpuProgramDataUniforms, StagesWithoutSubroutinesStoreNothing) {
  EXPECT_TRUE(data.set_uniform_subroutine(static_cast<GPU_SHADER_TYPE>(6), "u", "s"));
  EXPECT_TRUE(data.set_uniform_subroutine(GPU_SHADER_D3D_EFFECT, "u", "s"));
  EXPECT_TRUE(data.set_uniform_subroutine(static_cast<GPU_SHADER_TYPE>(-1), "u", "s"));
  EXPECT_EQ(data.find_uniform("u"), nullptr);
}

TEST_F(GpuProgramDataUniforms, SubroutineCountsFollowStageAndTypeChanges) {
  data.set_uniform_subroutine(GPU_SHADER_PIXEL, "u", "s");
  data.set_uniform_subroutine(GPU_SHADER_VERTEX, "u", "s");
  EXPECT_EQ(data.num_subroutine_uniforms[GPU_SHADER_PIXEL], 0u);
  EXPECT_EQ(data.num_subroutine_uniforms[GPU_SHADER_VERTEX], 1u);
  data.set_uniform_1f("u", 1);
  EXPECT_EQ(data.num_subroutine_uniforms[GPU_SHADER_VERTEX], 0u);
  data.set_uniform_subroutine(GPU_SHADER_VERTEX, "u", "s");
  EXPECT_EQ(data.num_subroutine_uniforms[GPU_SHADER_VERTEX], 1u);
}

TEST_F(GpuProgramDataUniforms, SubroutineIndexArrayGrowsAndIsZeroed) {
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

TEST_F(GpuProgramDataUniforms, OffsetZeroIsNotTheFirstNamedRecord) {
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

TEST_F(GpuProgramDataUniforms, OffsetsAreSetLikeNames) {
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

TEST_F(GpuProgramDataUniforms, NoOffsetStoresNothing) {
  data.set_uniform_1f("named", 5);
  EXPECT_TRUE(data.gpu_buffer_set_uniform_1f(GpuProgramUniform::NO_OFFSET, 7));
  EXPECT_TRUE(data.gpu_buffer_set_uniform_4x4f(0, static_cast<const float*>(nullptr)));
  EXPECT_EQ(data.find_uniform_v2(GpuProgramUniform::NO_OFFSET), nullptr);
  EXPECT_EQ(data.find_uniform("named")->value_f[0], 5);
  EXPECT_EQ(data.get_uniforms_list()[1], nullptr);
}

TEST_F(GpuProgramDataUniforms, EmptyNameIsThatOfTheFirstUnnamedRecord) {
  data.gpu_buffer_set_uniform_1f(0, 7);
  EXPECT_EQ(data.find_uniform(""), data.find_uniform_v2(0));
}

// ---- engine uniforms ----

TEST_F(GpuProgramDataUniforms, EngineUniformIsNullBeforeItsFirstSet) {
  EXPECT_EQ(data.engine_uniform(ENGINE_UNIFORM_MODEL_MATRIX), nullptr);
  EXPECT_EQ(data.engine_uniform(ENGINE_UNIFORM_COUNT), nullptr);
  EXPECT_EQ(data.engine_uniform(static_cast<ENGINE_UNIFORM>(-1)), nullptr);
}

TEST_F(GpuProgramDataUniforms, EngineSettersUseTheRecordOfTheName) {
  mat4 matrix;
  matrix.ptr()[12] = 3;
  EXPECT_TRUE(data.set_engine_uniform_4x4f(ENGINE_UNIFORM_VIEW_MATRIX, matrix));
  EXPECT_TRUE(data.set_engine_uniform_4f(ENGINE_UNIFORM_VIEWPORT, 0, 0, 640, 480));
  GpuProgramUniform* view = data.find_uniform("orvex_ViewMatrix");
  ASSERT_NE(view, nullptr);
  EXPECT_EQ(view, data.get_uniforms_list()[0]);
  EXPECT_EQ(data.engine_uniform(ENGINE_UNIFORM_VIEW_MATRIX), view);
  EXPECT_EQ(data.find_uniform("orvex_Viewport")->value_f[2], 640);
  send_all();
  data.set_engine_uniform_4x4f(ENGINE_UNIFORM_VIEW_MATRIX, matrix);
  data.set_engine_uniform_4f(ENGINE_UNIFORM_VIEWPORT, 0, 0, 640, 480);
  EXPECT_FALSE(is_dirty("orvex_ViewMatrix"));
  EXPECT_FALSE(is_dirty("orvex_Viewport"));
  matrix.ptr()[12] = 4;
  data.set_engine_uniform_4x4f(ENGINE_UNIFORM_VIEW_MATRIX, matrix);
  EXPECT_TRUE(is_dirty("orvex_ViewMatrix"));
  EXPECT_EQ(view->value_mat4f[12], 4);
}

TEST_F(GpuProgramDataUniforms, EngineUniformFollowsARename) {
  data.set_engine_uniform_4x4f(ENGINE_UNIFORM_MODEL_MATRIX, mat4());
  data.set_model_matrix_uniform_name("world");
  EXPECT_EQ(data.engine_uniform(ENGINE_UNIFORM_MODEL_MATRIX), nullptr);
  data.set_engine_uniform_4x4f(ENGINE_UNIFORM_MODEL_MATRIX, mat4());
  EXPECT_EQ(data.engine_uniform(ENGINE_UNIFORM_MODEL_MATRIX), data.find_uniform("world"));
  EXPECT_NE(data.find_uniform("orvex_ModelMatrix"), nullptr);
}

TEST_F(GpuProgramDataUniforms, EngineUniformIsForgottenWithTheList) {
  data.set_engine_uniform_4x4f(ENGINE_UNIFORM_MODEL_MATRIX, mat4());
  data.kill_uniforms();
  EXPECT_EQ(data.engine_uniform(ENGINE_UNIFORM_MODEL_MATRIX), nullptr);
  data.init_uniforms();
  EXPECT_EQ(data.engine_uniform(ENGINE_UNIFORM_MODEL_MATRIX), nullptr);
}

TEST_F(GpuProgramDataUniforms, EngineUniformRemovedByHandIsForgotten) {
  data.set_engine_uniform_4x4f(ENGINE_UNIFORM_MODEL_MATRIX, mat4());
  EXPECT_NE(data.engine_uniform(ENGINE_UNIFORM_MODEL_MATRIX), nullptr);
  delete data.get_uniforms_list()[0];
  data.get_uniforms_list()[0] = nullptr;
  EXPECT_EQ(data.engine_uniform(ENGINE_UNIFORM_MODEL_MATRIX), nullptr);
}

TEST_F(GpuProgramDataUniforms, EngineUniformSetAsAnotherTypeChangesBack) {
  data.set_uniform_1f("orvex_ModelMatrix", 1);
  data.set_engine_uniform_4x4f(ENGINE_UNIFORM_MODEL_MATRIX, mat4());
  EXPECT_EQ(data.find_uniform("orvex_ModelMatrix")->type, GPU_SHADER_UNIFORM_4x4f);
}

TEST_F(GpuProgramDataUniforms, EngineUniformIsUnusedOnceItsLocationIsKnownToBeMissing) {
  EXPECT_FALSE(data.is_engine_uniform_unused(ENGINE_UNIFORM_VIEW_MATRIX));
  data.set_engine_uniform_4x4f(ENGINE_UNIFORM_VIEW_MATRIX, mat4());
  EXPECT_FALSE(data.is_engine_uniform_unused(ENGINE_UNIFORM_VIEW_MATRIX));
  data._uniforms_optimization_ok();
  EXPECT_TRUE(data.is_engine_uniform_unused(ENGINE_UNIFORM_VIEW_MATRIX));
  data.engine_uniform(ENGINE_UNIFORM_VIEW_MATRIX)->location = 2;
  EXPECT_FALSE(data.is_engine_uniform_unused(ENGINE_UNIFORM_VIEW_MATRIX));
}

TEST_F(GpuProgramDataUniforms, RecordsAreMadeInTheOrderOfTheirFirstSet) {
  data.set_engine_uniform_4x4f(ENGINE_UNIFORM_MODEL_VIEW_PROJECTION_MATRIX, mat4());
  data.set_uniform_1f("time", 0);
  data.set_engine_uniform_4x4f(ENGINE_UNIFORM_MODEL_MATRIX, mat4());
  EXPECT_STREQ(data.get_uniforms_list()[0]->name, "orvex_ModelViewProjectionMatrix");
  EXPECT_STREQ(data.get_uniforms_list()[1]->name, "time");
  EXPECT_STREQ(data.get_uniforms_list()[2]->name, "orvex_ModelMatrix");
}

// ---- caches ----

TEST_F(GpuProgramDataUniforms, CachesKeepTheLastValueOfEachName) {
  EXPECT_EQ(data._get_uniform_location_from_cache("a"), -1);
  EXPECT_EQ(data._get_uniform_subroutine_location_from_cache("a"), -1);
  EXPECT_EQ(data._get_subroutine_index_from_cache("a"), 0xFFFFFFFFu);
  data._update_uniform_location_cache("a", 1);
  data._update_uniform_location_cache("a", 2);
  data._update_uniform_subroutine_location_cache("a", 3);
  data._update_subroutine_index_cache("a", 4);
  EXPECT_EQ(data._get_uniform_location_from_cache("a"), 2);
  EXPECT_EQ(data._get_uniform_subroutine_location_from_cache("a"), 3);
  EXPECT_EQ(data._get_subroutine_index_from_cache("a"), 4u);
}

TEST_F(GpuProgramDataUniforms, ClearingACacheEmptiesItAloneAndAsksForLocations) {
  data._update_uniform_location_cache("a", 1);
  data._update_uniform_subroutine_location_cache("a", 3);
  data._update_subroutine_index_cache("a", 4);
  data._uniforms_optimization_ok();
  data._clear_uniform_location_cache();
  EXPECT_FALSE(data._are_uniforms_optimized());
  EXPECT_EQ(data._get_uniform_location_from_cache("a"), -1);
  EXPECT_EQ(data._get_uniform_subroutine_location_from_cache("a"), 3);
  data._uniforms_optimization_ok();
  data._clear_uniform_subroutine_location_cache();
  EXPECT_FALSE(data._are_uniforms_optimized());
  EXPECT_EQ(data._get_subroutine_index_from_cache("a"), 4u);
  data._uniforms_optimization_ok();
  data._clear_subroutine_index_cache();
  EXPECT_FALSE(data._are_uniforms_optimized());
  EXPECT_EQ(data._get_subroutine_index_from_cache("a"), 0xFFFFFFFFu);
}

TEST_F(GpuProgramDataUniforms, AllCachesAreClearedTogether) {
  data._update_uniform_location_cache("a", 1);
  data._update_uniform_subroutine_location_cache("a", 3);
  data._update_subroutine_index_cache("a", 4);
  data._uniforms_optimization_ok();
  data._clear_all_uniform_caches();
  EXPECT_EQ(data._get_uniform_location_from_cache("a"), -1);
  EXPECT_EQ(data._get_uniform_subroutine_location_from_cache("a"), -1);
  EXPECT_EQ(data._get_subroutine_index_from_cache("a"), 0xFFFFFFFFu);
  EXPECT_FALSE(data._are_uniforms_optimized());
}

TEST_F(GpuProgramDataUniforms, NullNamesMissTheCaches) {
  data._update_uniform_location_cache(nullptr, 1);
  EXPECT_EQ(data._get_uniform_location_from_cache(nullptr), -1);
  EXPECT_EQ(data._get_subroutine_index_from_cache(nullptr), 0xFFFFFFFFu);
}

}  // namespace
}  // namespace orv
