#include <orv/render/renderer.h>

#include <orv/core/log_mgr.h>
#include <orv/gpu/gpu_render_target.h>
#include <orv/image/pixel_format.h>
#include <orv/render/gpu_command_list.h>
#include <orv/render/gpu_pipeline_state_data.h>
#include <orv/render/renderer_gpu.h>
#include <orv/render/renderer_null.h>
#include <orv/render/renderer_rasterizer_state.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "support/log_capture.h"
#include "support/recording_renderer.h"

namespace orv {
namespace {

using test::RecordingRenderer;
using ::testing::ElementsAre;

class NamedRenderer : public RendererNull {
 public:
  using Renderer::set_api_name;
  using Renderer::set_api_type;
};

TEST(Renderer, FreshOneHasNoApi) {
  NamedRenderer renderer;
  EXPECT_EQ(renderer.get_api_type(), ORV_API3D_NONE);
  EXPECT_STREQ(renderer.get_api_name(), "");
  EXPECT_EQ(renderer.get_current_render_window(), nullptr);
  EXPECT_EQ(renderer.get_type(), PLUGIN_TYPE_RENDERER);
}

TEST(Renderer, ApiNameKeeps127Characters) {
  NamedRenderer renderer;
  renderer.set_api_name(std::string(300, 'x').c_str());
  EXPECT_EQ(std::string(renderer.get_api_name()), std::string(127, 'x'));
  renderer.set_api_name("y");
  EXPECT_STREQ(renderer.get_api_name(), "y");
  renderer.set_api_name(nullptr);
  EXPECT_STREQ(renderer.get_api_name(), "");
}

TEST(Renderer, CopySharesWindowAndTargets) {
  NamedRenderer renderer;
  renderer.set_api_name("Copied");
  GpuRenderTarget* target = renderer.gpu_render_target_alloc();
  NamedRenderer copy(renderer);
  EXPECT_STREQ(copy.get_api_name(), "Copied");
  EXPECT_EQ(copy.gpu_render_target_get(target->getid()), target);
  NamedRenderer assigned;
  assigned = copy;
  assigned = *&assigned;
  EXPECT_EQ(assigned.gpu_render_target_get(target->getid()), target);
}

TEST(RendererTargets, CreateRunsTheInitOfItsKindWithAllArguments) {
  RecordingRenderer renderer;
  EXPECT_NE(
      renderer.gpu_render_target_create_2d(nullptr, 64, 32, PF_RGBA_U8, 2, true, false, true, 4),
      nullptr);
  EXPECT_NE(renderer.gpu_render_target_create_rb(nullptr, 8, 9, PF_RGB_U8, true, 1, false, 2),
            nullptr);
  EXPECT_NE(
      renderer.gpu_render_target_create_rect(nullptr, 1, 2, PF_RGBA_U8, 1, false, true, false, 0),
      nullptr);
  EXPECT_NE(renderer.gpu_render_target_create_cube(nullptr, 16, PF_RGBA_U8, true, 0, true, true),
            nullptr);
  EXPECT_NE(renderer.gpu_render_target_create_depth_2d(nullptr, 5, 6, true, false), nullptr);
  EXPECT_NE(renderer.gpu_render_target_create_depth_rect(nullptr, 7, 8, false, true), nullptr);
  EXPECT_NE(renderer.gpu_render_target_create_2d_array(nullptr, 3, true, 10, 11, PF_RGBA_U8, 0,
                                                       true, false),
            nullptr);
  EXPECT_THAT(
      renderer.calls(),
      ElementsAre(
          "gpu_render_target_init_2d(null, ptr, 64, 32, 3, 2, true, false, true, 4)",
          "gpu_render_target_init_rb(null, ptr, 8, 9, 1, true, 1, false, 2)",
          "gpu_render_target_init_rect(null, ptr, 1, 2, 3, 1, false, true, false, 0)",
          "gpu_render_target_init_cube(null, ptr, 16, 3, true, 0, true, true)",
          "gpu_render_target_init_depth_2d(null, ptr, 5, 6, true, false)",
          "gpu_render_target_init_depth_rect(null, ptr, 7, 8, false, true)",
          "gpu_render_target_init_2d_array(null, ptr, 3, true, 10, 11, 3, 0, true, false)"));
  EXPECT_EQ(renderer.gpu_render_target_get_num(), 7u);
}

TEST(RendererTargets, FailedCreationLeavesNoEntry) {
  RecordingRenderer renderer;
  renderer.answer("gpu_render_target_init_2d", 0);
  EXPECT_EQ(
      renderer.gpu_render_target_create_2d(nullptr, 4, 4, PF_RGBA_U8, 1, false, false, false, 0),
      nullptr);
  EXPECT_EQ(renderer.gpu_render_target_get_num(), 0u);
}

TEST(RendererTargets, CreatedAndKilledLeavesRegistryEmpty) {
  test::LogCapture log;
  RecordingRenderer renderer;
  GpuRenderTarget* target =
      renderer.gpu_render_target_create_2d(nullptr, 4, 4, PF_RGBA_U8, 1, false, false, false, 0);
  const int id = target->getid();
  renderer.clear();
  EXPECT_TRUE(renderer.gpu_render_target_kill(nullptr, target));
  EXPECT_THAT(renderer.names(), ElementsAre("gpu_render_target_release"));
  EXPECT_EQ(renderer.gpu_render_target_get_num(), 0u);
  EXPECT_TRUE(log.contains("GPU render target " + std::to_string(id) + " killed"));
}

TEST(RendererTargets, KillOfNullIsFalseAndSilent) {
  test::LogCapture log;
  RecordingRenderer renderer;
  EXPECT_FALSE(renderer.gpu_render_target_kill(nullptr, nullptr));
  EXPECT_TRUE(renderer.calls().empty());
  EXPECT_FALSE(log.contains("killed"));
}

TEST(RendererTargets, FreeTouchesNoApiObject) {
  RecordingRenderer renderer;
  GpuRenderTarget* target = renderer.gpu_render_target_alloc();
  GpuRenderTarget stranger;
  EXPECT_FALSE(renderer.gpu_render_target_free(nullptr, nullptr));
  EXPECT_FALSE(renderer.gpu_render_target_free(nullptr, &stranger));
  EXPECT_TRUE(renderer.gpu_render_target_free(nullptr, target));
  EXPECT_TRUE(renderer.calls().empty());
}

TEST(RendererTargets, KillallReleasesEach) {
  test::LogCapture log;
  RecordingRenderer renderer;
  std::string lines[2];
  for (std::string& line : lines) {
    const int id = renderer.gpu_render_target_alloc()->getid();
    line = "GPU render target " + std::to_string(id) + " killed";
  }
  EXPECT_TRUE(renderer.gpu_render_target_killall(nullptr));
  for (const std::string& line : lines) EXPECT_TRUE(log.contains(line));
  EXPECT_EQ(renderer.count("gpu_render_target_release"), 2);
  EXPECT_EQ(renderer.gpu_render_target_get_num(), 0u);
  EXPECT_TRUE(renderer.gpu_render_target_killall(nullptr));
}

TEST(RendererTargets, GetOfUnknownIdIsNull) {
  RendererNull renderer;
  EXPECT_EQ(renderer.gpu_render_target_get(0), nullptr);
  GpuRenderTarget* target = renderer.gpu_render_target_alloc();
  EXPECT_EQ(renderer.gpu_render_target_get(target->getid()), target);
  EXPECT_EQ(renderer.gpu_render_target_get_by_index(0), target);
  EXPECT_EQ(renderer.gpu_render_target_get_by_index(1), nullptr);
}

TEST(RendererNull, CreatorsSucceedAndReadersAnswerNothing) {
  RendererNull renderer;
  EXPECT_TRUE(renderer.initialize());
  EXPECT_TRUE(renderer.start());
  EXPECT_TRUE(renderer.geometry_vbo_create(nullptr, nullptr));
  EXPECT_TRUE(renderer.texture_load(nullptr, nullptr, 0));
  EXPECT_TRUE(renderer.gpu_shader_load(nullptr, GPU_SHADER_TYPE{}, "", 0));
  EXPECT_TRUE(renderer.gpu_buffer_alloc(nullptr, nullptr, GPU_BUFFER_TYPE{}, BUFFER_OBJECT_USAGE{},
                                        0, nullptr));
  EXPECT_EQ(renderer.get_max_texture_size(), 0);
  EXPECT_EQ(renderer.get_gl_renderer(), nullptr);
  EXPECT_FALSE(renderer.has_capability("GL_MAX_TEXTURE_SIZE"));
  EXPECT_EQ(renderer.gpu_program_get_uniform_location(nullptr, "x"), -1);
  EXPECT_EQ(renderer.reserved_op_22(nullptr), -1);
  EXPECT_EQ(renderer.reserved_op_28(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 1);
  EXPECT_FALSE(renderer.reserved_op_01(nullptr));
  EXPECT_EQ(renderer.get_projection_matrix(), mat4());
  EXPECT_TRUE(renderer.stop());
  EXPECT_TRUE(renderer.terminate());
}

TEST(RendererRasterizerState, DefaultsAndInit) {
  Renderer_Rasterizer_State state;
  EXPECT_EQ(state.polygon_mode, 2);
  EXPECT_EQ(state.polygon_face, 3);
  EXPECT_EQ(state.cull_face, 1);
  EXPECT_FALSE(state.cull_enabled);
  EXPECT_TRUE(state.front_ccw);
  EXPECT_FALSE(state.polygon_offset_fill_enabled);
  state.cull_face = 2;
  state.polygon_offset_units = 3.0f;
  EXPECT_NE(state, Renderer_Rasterizer_State());
  state.init();
  EXPECT_EQ(state, Renderer_Rasterizer_State());
}

TEST(RendererRasterizerState, RecordsThatDifferOnlyInReservedAreUnequal) {
  Renderer_Rasterizer_State a;
  Renderer_Rasterizer_State b;
  b.reserved = 1;
  EXPECT_FALSE(a == b);
}

TEST(RendererGpu, CarriesIndexAndRendererData) {
  RendererGpu a;
  RendererGpu b;
  EXPECT_NE(a.getid(), b.getid());
  EXPECT_EQ(a.getindex(), 0u);
  EXPECT_EQ(a.getrdata(), nullptr);
  a.setindex(3);
  a.setrdata(&b);
  EXPECT_EQ(a.getindex(), 3u);
  EXPECT_EQ(a.getrdata(), &b);
}

TEST(GpuPipelineStateData, DefaultsAndCopy) {
  GpuPipelineStateData state;
  EXPECT_EQ(std::string(state.name), "GpuPipelineStateData_" + std::to_string(state.getid()));
  EXPECT_THAT(state.values, ElementsAre(1, 1, 2, 0, 1, 1));
  EXPECT_THAT(state.modes, ElementsAre(1, 0, 1, 0, 0));
  EXPECT_EQ(state.scale, 1.0f);
  EXPECT_THAT(state.flags, ::testing::Each(false));
  GpuPipelineStateData other;
  EXPECT_NE(other.getid(), state.getid());
  other = state;
  EXPECT_EQ(other.getid(), state.getid());
  EXPECT_STREQ(other.name, state.name);
}

TEST(GpuCommandList, Defaults) {
  GpuCommandList list;
  EXPECT_EQ(std::string(list.name), "GpuCommandList_" + std::to_string(list.getid()));
  EXPECT_THAT(list.api_values, ::testing::Each(nullptr));
}

}  // namespace
}  // namespace orv
