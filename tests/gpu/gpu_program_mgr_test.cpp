#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/gpu_program_mgr.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "gpu/shader_compiler.h"
#include "support/log_capture.h"

namespace orv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class GpuProgramMgrTest : public testing::Test {
 protected:
  ~GpuProgramMgrTest() override { manager.stop(nullptr); }

  GpuProgramMgr manager;
  test::ShaderCompiler renderer;
};

TEST(GpuProgramMgr, GetGivesOneInstance) {
  ASSERT_NE(GpuProgramMgr::get(), nullptr);
  EXPECT_EQ(GpuProgramMgr::get(), GpuProgramMgr::get());
}

TEST_F(GpuProgramMgrTest, CreatedProgramIsNamedAndRegisteredOnce) {
  GpuProgram* program = manager.create_gpu_program("phong");
  EXPECT_STREQ(program->get_name(), "phong");
  EXPECT_EQ(program->get_ref(), 1);
  EXPECT_EQ(manager.get_resource("phong"), program);
  EXPECT_FALSE(program->is_valid());
}

TEST_F(GpuProgramMgrTest, NullNameKeepsTheDefault) {
  GpuProgram* program = manager.create_gpu_program(nullptr);
  EXPECT_EQ(program->get_name(), "GPU_program_" + std::to_string(program->get_id()));
}

TEST_F(GpuProgramMgrTest, CreatesFromMemory) {
  const std::string text = "[Vertex_Shader]v[Pixel_Shader]p";
  GpuProgram* program = manager.create_gpu_program_from_memory(
      &renderer, text.c_str(), static_cast<unsigned int>(text.size()), "phong");
  EXPECT_TRUE(program->is_valid());
  EXPECT_EQ(program->get_ref(), 1);
  EXPECT_EQ(manager.get_num_resources(), 1u);
}

TEST_F(GpuProgramMgrTest, ProgramThatFailedToLoadIsReturnedInvalid) {
  GpuProgram* program =
      manager.create_gpu_program_from_memory(&renderer, "[Vertex_Shader]v", 16, "half");
  ASSERT_NE(program, nullptr);
  EXPECT_FALSE(program->is_valid());
  EXPECT_EQ(manager.get_resource("half"), program);
  program = manager.create_gpu_program_from_file(&renderer, "/no/such/file", "missing");
  ASSERT_NE(program, nullptr);
  EXPECT_FALSE(program->is_valid());
  EXPECT_EQ(manager.get_num_resources(), 2u);
}

TEST_F(GpuProgramMgrTest, CreatesFromAFile) {
  const std::string path = testing::TempDir() + "orv_gpu_program_mgr_test.glsl";
  std::ofstream(path, std::ios::binary) << "[Compute_Shader]c";
  GpuProgram* program = manager.create_gpu_program_from_file(&renderer, path.c_str(), "sum");
  EXPECT_TRUE(program->is_valid());
  EXPECT_THAT(renderer.stages(), ElementsAre(GPU_SHADER_COMPUTE));
  std::remove(path.c_str());
}

TEST_F(GpuProgramMgrTest, InitReloadsAndKeepsOneEntry) {
  GpuProgram* program = manager.create_gpu_program("a");
  EXPECT_TRUE(
      manager.init_gpu_program_from_memory(&renderer, program, "[Compute_Shader]c", 17, "b"));
  EXPECT_TRUE(program->is_valid());
  EXPECT_STREQ(program->get_name(), "b");
  EXPECT_FALSE(manager.init_gpu_program_from_memory(&renderer, program, "nothing", 7, "b"));
  EXPECT_FALSE(program->is_valid());
  EXPECT_EQ(manager.get_num_resources(), 1u);
  EXPECT_EQ(program->get_ref(), 1);
}

TEST_F(GpuProgramMgrTest, InitRegistersAProgramFromOutside) {
  auto* program = new GpuProgram;
  EXPECT_FALSE(manager.init_gpu_program_from_file(&renderer, program, nullptr, "outside"));
  EXPECT_EQ(manager.get_resource("outside"), program);
  EXPECT_EQ(program->get_ref(), 1);
}

TEST_F(GpuProgramMgrTest, NullProgramsAreRefused) {
  EXPECT_FALSE(manager.init_gpu_program_from_file(&renderer, nullptr, "p", "n"));
  EXPECT_FALSE(manager.init_gpu_program_from_memory(&renderer, nullptr, "t", 1, "n"));
  EXPECT_FALSE(manager.init_gpu_program_from_shaders(&renderer, nullptr, "v", "p", nullptr, nullptr,
                                                     nullptr, nullptr, "n"));
  EXPECT_FALSE(manager.init_gpu_program_from_effect(&renderer, nullptr, "p", "n"));
  EXPECT_FALSE(manager.add_gpu_program(nullptr));
  EXPECT_EQ(manager.get_num_resources(), 0u);
}

TEST_F(GpuProgramMgrTest, AddsAProgramOnce) {
  auto* program = new GpuProgram;
  EXPECT_TRUE(manager.add_gpu_program(program));
  EXPECT_TRUE(manager.add_gpu_program(program));
  EXPECT_EQ(program->get_ref(), 1);
}

TEST_F(GpuProgramMgrTest, ShadersLoadInTheirOrderWithEmptyOnesPassedOver) {
  GpuProgram* program =
      manager.create_gpu_program_from_shaders(&renderer, "v", "p", "g", "tc", "te", "c", "all");
  EXPECT_TRUE(program->is_valid());
  EXPECT_THAT(renderer.stages(),
              ElementsAre(GPU_SHADER_VERTEX, GPU_SHADER_TESS_CONTROL, GPU_SHADER_TESS_EVAL,
                          GPU_SHADER_GEOMETRY, GPU_SHADER_PIXEL, GPU_SHADER_COMPUTE));
  EXPECT_STREQ(program->get_shader_source_code(GPU_SHADER_TESS_EVAL), "te");
  renderer.loads.clear();
  program =
      manager.create_gpu_program_from_shaders(&renderer, "v", "p", "", nullptr, "", nullptr, "two");
  EXPECT_TRUE(program->is_valid());
  EXPECT_THAT(renderer.stages(), ElementsAre(GPU_SHADER_VERTEX, GPU_SHADER_PIXEL));
}

TEST_F(GpuProgramMgrTest, NoShadersAtAllAreNoFailure) {
  GpuProgram* program = manager.create_gpu_program_from_shaders(
      &renderer, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, "empty");
  EXPECT_TRUE(program->is_valid());
  EXPECT_THAT(renderer.loads, IsEmpty());
}

TEST_F(GpuProgramMgrTest, FailingShaderDoesNotStopTheOthers) {
  renderer.failing = {GPU_SHADER_VERTEX};
  GpuProgram* program = manager.create_gpu_program_from_shaders(&renderer, "v", "p", nullptr,
                                                                nullptr, nullptr, nullptr, "half");
  EXPECT_FALSE(program->is_valid());
  EXPECT_THAT(renderer.stages(), ElementsAre(GPU_SHADER_VERTEX, GPU_SHADER_PIXEL));
  EXPECT_FALSE(program->get_data_ptr()->shader_loaded[GPU_SHADER_VERTEX]);
  EXPECT_TRUE(program->get_data_ptr()->shader_loaded[GPU_SHADER_PIXEL]);
}

TEST_F(GpuProgramMgrTest, FailingShadersAreLoggedAsErrorsOfTheirStage) {
  test::LogCapture log(LOG_LEVEL_ERROR);
  for (const GPU_SHADER_TYPE type :
       {GPU_SHADER_VERTEX, GPU_SHADER_PIXEL, GPU_SHADER_GEOMETRY, GPU_SHADER_TESS_CONTROL,
        GPU_SHADER_TESS_EVAL, GPU_SHADER_COMPUTE}) {
    renderer.failing.insert(type);
    renderer.logs[type] = "bad";
  }
  manager.create_gpu_program_from_shaders(&renderer, "v", "p", "g", "tc", "te", "c", "all");
  ASSERT_EQ(log.lines().size(), 6u);
  const char* const expected[] = {
      "GPU program all - Vertex shader error: bad",
      "GPU program all - Tessellation control shader error: bad",
      "GPU program all - Tessellation eval shader error: bad",
      "GPU program all - Geometry shader error: bad",
      "GPU program all - Pixel shader error: bad",
      "GPU program all - Compute shader error: bad",
  };
  for (int i = 0; i < 6; ++i) {
    EXPECT_THAT(log.lines()[static_cast<std::size_t>(i)], testing::HasSubstr(expected[i]));
  }
}

TEST_F(GpuProgramMgrTest, FailureWithoutLogIsSilent) {
  test::LogCapture log(LOG_LEVEL_INFO);
  renderer.failing = {GPU_SHADER_VERTEX};
  manager.create_gpu_program_from_shaders(&renderer, "v", "p", nullptr, nullptr, nullptr, nullptr,
                                          "silent");
  manager.create_gpu_program_from_shaders(nullptr, "v", "p", nullptr, nullptr, nullptr, nullptr,
                                          "no renderer");
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(GpuProgramMgrTest, EffectsHaveNoBackEnd) {
  test::LogCapture log(LOG_LEVEL_ERROR);
  GpuProgram* program = manager.create_gpu_program_from_effect(&renderer, "water.fx", "water");
  ASSERT_NE(program, nullptr);
  EXPECT_FALSE(program->is_valid());
  EXPECT_EQ(manager.get_resource("water"), program);
  EXPECT_EQ(log.count("GPU program water - D3D effect error: "), 1);
}

TEST_F(GpuProgramMgrTest, StopUnloadsProgramsThroughTheirRenderer) {
  GpuProgram* program = manager.create_gpu_program("a");
  program->get_data_ptr()->renderer_gpu_id = renderer.get_id();
  EXPECT_TRUE(manager.stop(&renderer));
  EXPECT_EQ(renderer.count("gpu_program_unload"), 1);
  EXPECT_EQ(manager.get_num_resources(), 0u);
}

}  // namespace
}  // namespace orv
