#include <orv/gpu/gpu_program_data.h>
#include <orv/math/mat4.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "gpu/uniform_fixture.h"

namespace orv {
namespace {

class GpuProgramDataUniforms : public test::UniformFixture {};

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

struct Cache {
  const char* name;
  int (*get)(const GpuProgramData& data, const char* name);
  void (*put)(GpuProgramData& data, const char* name, int value);
  void (GpuProgramData::*clear)();
};

const Cache CACHES[] = {
    {"locations",
     [](const GpuProgramData& d, const char* n) { return d._get_uniform_location_from_cache(n); },
     [](GpuProgramData& d, const char* n, int v) { d._update_uniform_location_cache(n, v); },
     &GpuProgramData::_clear_uniform_location_cache},
    {"subroutine locations",
     [](const GpuProgramData& d, const char* n) {
       return d._get_uniform_subroutine_location_from_cache(n);
     },
     [](GpuProgramData& d, const char* n, int v) {
       d._update_uniform_subroutine_location_cache(n, v);
     },
     &GpuProgramData::_clear_uniform_subroutine_location_cache},
    {"subroutine indices",
     [](const GpuProgramData& d, const char* n) {
       return static_cast<int>(d._get_subroutine_index_from_cache(n));
     },
     [](GpuProgramData& d, const char* n, int v) {
       d._update_subroutine_index_cache(n, static_cast<unsigned int>(v));
     },
     &GpuProgramData::_clear_subroutine_index_cache},
};

TEST_F(GpuProgramDataUniforms, CachesKeepTheLastValueOfEachName) {
  for (const Cache& cache : CACHES) {
    SCOPED_TRACE(cache.name);
    EXPECT_EQ(cache.get(data, "a"), -1);
    cache.put(data, "a", 1);
    cache.put(data, "a", 2);
    cache.put(data, "b", 0);
    EXPECT_EQ(cache.get(data, "a"), 2);
    EXPECT_EQ(cache.get(data, "b"), 0);
  }
  EXPECT_EQ(data._get_subroutine_index_from_cache("absent"), 0xFFFFFFFFu);
}

TEST_F(GpuProgramDataUniforms, ClearingACacheEmptiesItAloneAndAsksForLocations) {
  for (const Cache& cleared : CACHES) {
    SCOPED_TRACE(cleared.name);
    for (const Cache& cache : CACHES) cache.put(data, "a", 3);
    data._uniforms_optimization_ok();
    (data.*cleared.clear)();
    EXPECT_FALSE(data._are_uniforms_optimized());
    for (const Cache& cache : CACHES) {
      EXPECT_EQ(cache.get(data, "a"), &cache == &cleared ? -1 : 3) << cache.name;
    }
  }
}

TEST_F(GpuProgramDataUniforms, AllCachesAreClearedTogether) {
  for (const Cache& cache : CACHES) cache.put(data, "a", 3);
  data._uniforms_optimization_ok();
  data._clear_all_uniform_caches();
  for (const Cache& cache : CACHES) EXPECT_EQ(cache.get(data, "a"), -1) << cache.name;
  EXPECT_FALSE(data._are_uniforms_optimized());
}

TEST_F(GpuProgramDataUniforms, NullNamesMissTheCaches) {
  for (const Cache& cache : CACHES) {
    cache.put(data, nullptr, 1);
    EXPECT_EQ(cache.get(data, nullptr), -1) << cache.name;
  }
}

}  // namespace
}  // namespace orv
