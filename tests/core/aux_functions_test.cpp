#include <orv/core/aux_functions.h>

#include <orv/core/kernel.h>
#include <orv/core/plugin_mgr.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/gpu_program_uniform.h>
#include <orv/math/mat4.h>
#include <orv/math/vec4.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace orv {
namespace {

using Elements = std::array<float, 16>;

Elements elements(const mat4& matrix) {
  Elements all;
  std::memcpy(all.data(), matrix.m, sizeof matrix.m);
  return all;
}

/// Column-major matrices of small whole numbers, so that products are exact.
mat4 numbered(const Elements& values) {
  mat4 matrix;
  std::memcpy(matrix.m, values.data(), sizeof matrix.m);
  return matrix;
}

const Elements BIAS = {0.5f, 0, 0, 0, 0, 0.5f, 0, 0, 0, 0, 1, 0, 0.5f, 0.5f, 0, 1};

TEST(ShadowMatrix, BiasHalvesAndMovesXAndYAndLeavesDepth) {
  mat4 out;
  aux::shadow_mapping_compute_texture_matrix(mat4(), mat4(), nullptr, nullptr, nullptr, &out);
  EXPECT_EQ(elements(out), BIAS);
}

TEST(ShadowMatrix, ConcatenatesBiasProjectionAndView) {
  const mat4 projection = numbered({2, 0, 0, 0, 0, 4, 0, 0, 0, 0, 3, 1, 0, 0, 5, 0});
  const mat4 view = numbered({0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 7, 8, 9, 1});
  mat4 out;
  aux::shadow_mapping_compute_texture_matrix(projection, view, nullptr, nullptr, nullptr, &out);
  EXPECT_EQ(elements(out), elements(numbered(BIAS) * projection * view));
  // One point by hand: view gives (9, 9, 12, 1), projection (18, 36, 41, 12), bias half of that,
  // moved.
  const vec4 point = out * vec4(1, 2, 3, 1);
  EXPECT_EQ(point.x, 0.5f * 18 + 0.5f * 12);
  EXPECT_EQ(point.y, 0.5f * 36 + 0.5f * 12);
  EXPECT_EQ(point.z, 41.0f);
  EXPECT_EQ(point.w, 12.0f);
}

TEST(ShadowMatrix, CameraViewIsInvertedInACopy) {
  mat4 camera = numbered({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 2, 4, 6, 1});
  mat4 out;
  aux::shadow_mapping_compute_texture_matrix(mat4(), mat4(), &camera, nullptr, nullptr, &out);
  EXPECT_EQ(elements(out), elements(numbered(BIAS) *
                                    numbered({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -2, -4, -6, 1})));
  EXPECT_EQ(camera.m[12], 2.0f);
}

TEST(ShadowMatrix, GoesToTheProgramUnderItsName) {
  GpuProgramData program;
  aux::shadow_mapping_compute_texture_matrix(mat4(), mat4(), nullptr, &program, nullptr, nullptr);
  const GpuProgramUniform* uniform = program.find_uniform("ORV_TextureMatrix");
  ASSERT_NE(uniform, nullptr);
  EXPECT_THAT(uniform->value_mat4f, testing::ElementsAreArray(BIAS));
  EXPECT_EQ(program.find_uniform("name"), nullptr);
  aux::shadow_mapping_compute_texture_matrix(mat4(), mat4(), nullptr, &program, "name", nullptr);
  EXPECT_NE(program.find_uniform("name"), nullptr);
}

TEST(Vulkan, WithoutTheModuleThereIsNoRenderer) {
  Kernel::get()->plugin_search_path_clear();
  EXPECT_FALSE(aux::vk_init());
  EXPECT_EQ(aux::vk_get_renderer(), nullptr);
  EXPECT_TRUE(aux::vk_cleanup());
}

TEST(VertexColor, NullObjectIsRefused) {
  vec4 color(0.1f, 0.2f, 0.3f, 0.4f);
  EXPECT_FALSE(aux::compute_object_vertex_color(nullptr, 0, color, nullptr, nullptr, true));
  EXPECT_FALSE(aux::compute_object_vertex_color_v2(nullptr, mat4(), 0, color, nullptr, nullptr,
                                                   vec4(), true));
  EXPECT_EQ(color.x, 0.1f);
}

}  // namespace
}  // namespace orv
