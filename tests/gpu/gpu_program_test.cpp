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

class GpuProgramTest : public testing::Test {
 protected:
  GpuProgramTest() {
    renderer.label(program.get_data_ptr(), "program");
    path = testing::TempDir() + "orv_gpu_program_test.glsl";
  }
  ~GpuProgramTest() override { std::remove(path.c_str()); }

  void write_file(const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

  test::ShaderCompiler renderer;
  GpuProgram program;
  std::string path;
};

// ---- identity ----

TEST_F(GpuProgramTest, IsNamedAfterItsId) {
  const std::string name = "GPU_program_" + std::to_string(program.get_id());
  EXPECT_EQ(program.get_name(), name);
  EXPECT_EQ(program.get_data_ptr()->get_gpu_program_name(), name);
  EXPECT_EQ(program.get_data_ptr()->get_gpu_program_id(), program.get_id());
}

TEST_F(GpuProgramTest, NameGoesToNodeAndRecord) {
  program.set_name("phong");
  EXPECT_STREQ(program.get_name(), "phong");
  EXPECT_STREQ(program.get_data_ptr()->get_gpu_program_name(), "phong");
  program.set_name(nullptr);
  EXPECT_STREQ(program.get_name(), "phong");
  EXPECT_STREQ(program.get_data_ptr()->get_gpu_program_name(), "phong");
}

TEST_F(GpuProgramTest, FreshProgramHasFourUniformSlots) {
  EXPECT_EQ(program.get_data_ptr()->get_num_uniforms(), 4u);
}

TEST_F(GpuProgramTest, RendererIdIsThatOfTheMaker) {
  EXPECT_EQ(program.get_renderer_id(), 0);
  program.get_data_ptr()->renderer_gpu_id = renderer.get_id();
  EXPECT_EQ(program.get_renderer_id(), renderer.get_id());
}

TEST_F(GpuProgramTest, ItsOwnRendererMayReleaseIt) {
  GpuProgramMgr manager;
  GpuProgram* made = manager.create_gpu_program("made");
  made->get_data_ptr()->renderer_gpu_id = renderer.get_id();
  test::RecordingRenderer other;
  EXPECT_EQ(manager.release_resource(&other, made, nullptr), 0);
  EXPECT_EQ(manager.get_num_resources(), 1u);
  EXPECT_EQ(manager.release_resource(&renderer, made, nullptr), 0);
  EXPECT_EQ(manager.get_num_resources(), 0u);
  EXPECT_EQ(renderer.count("gpu_program_unload"), 1);
}

TEST_F(GpuProgramTest, CleanupUnloadsTheApiProgram) {
  EXPECT_TRUE(program.cleanup(&renderer, nullptr));
  EXPECT_FALSE(program.cleanup(nullptr, nullptr));
  EXPECT_THAT(renderer.calls(), ElementsAre("gpu_program_unload(program)"));
}

// ---- loading ----

TEST_F(GpuProgramTest, LoadsASectionedFile) {
  write_file("[Vertex_Shader]\nv\n[Pixel_Shader]\np\n");
  EXPECT_TRUE(program.load_from_file(&renderer, path.c_str()));
  EXPECT_THAT(renderer.stages(), ElementsAre(GPU_SHADER_VERTEX, GPU_SHADER_PIXEL));
  EXPECT_STREQ(program.get_shader_source_code(GPU_SHADER_PIXEL), "\np\n");
}

TEST_F(GpuProgramTest, LoadsAStageFile) {
  write_file("void main() {}");
  EXPECT_TRUE(program.shader_load_from_file(&renderer, GPU_SHADER_GEOMETRY, path.c_str()));
  EXPECT_STREQ(program.get_shader_source_code(GPU_SHADER_GEOMETRY), "void main() {}");
}

TEST_F(GpuProgramTest, FilesThatCannotBeReadAreSilent) {
  test::LogCapture log(LOG_LEVEL_INFO);
  EXPECT_FALSE(program.load_from_file(&renderer, nullptr));
  EXPECT_FALSE(program.load_from_file(&renderer, "/no/such/file.glsl"));
  EXPECT_FALSE(program.load_from_file(&renderer, testing::TempDir().c_str()));
  EXPECT_FALSE(program.shader_load_from_file(&renderer, GPU_SHADER_VERTEX, nullptr));
  EXPECT_FALSE(program.shader_load_from_file(&renderer, GPU_SHADER_VERTEX, "/no/such/file"));
  EXPECT_FALSE(
      program.shader_load_from_file(&renderer, GPU_SHADER_VERTEX, testing::TempDir().c_str()));
  EXPECT_THAT(renderer.loads, IsEmpty());
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(GpuProgramTest, EmptyFileIsRefused) {
  write_file("");
  EXPECT_FALSE(program.load_from_file(&renderer, path.c_str()));
}

TEST_F(GpuProgramTest, StageWithoutRendererFailsSilently) {
  test::LogCapture log;
  EXPECT_FALSE(program.shader_load_from_memory(nullptr, GPU_SHADER_VERTEX, "text", 4));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(GpuProgramTest, StageKeepsItsSource) {
  EXPECT_TRUE(program.shader_load_from_memory(&renderer, GPU_SHADER_VERTEX, "first", 5));
  EXPECT_TRUE(program.shader_load_from_memory(&renderer, GPU_SHADER_VERTEX, "second", 6));
  EXPECT_STREQ(program.get_shader_source_code(GPU_SHADER_VERTEX), "second");
  EXPECT_TRUE(program.get_data_ptr()->shader_loaded[GPU_SHADER_VERTEX]);
}

TEST_F(GpuProgramTest, FailedStageWarnsWithItsLog) {
  test::LogCapture log(LOG_LEVEL_WARNING);
  program.set_name("broken");
  renderer.failing = {GPU_SHADER_TESS_CONTROL};
  renderer.logs[GPU_SHADER_TESS_CONTROL] = "line 3: no";
  EXPECT_TRUE(program.shader_load_from_memory(&renderer, GPU_SHADER_VERTEX, "v", 1));
  program.get_data_ptr()->shader_loaded[GPU_SHADER_TESS_CONTROL] = true;
  EXPECT_FALSE(program.shader_load_from_memory(&renderer, GPU_SHADER_TESS_CONTROL, "t", 1));
  EXPECT_FALSE(program.get_data_ptr()->shader_loaded[GPU_SHADER_TESS_CONTROL]);
  EXPECT_EQ(log.count("GPU program broken - Tessellation control shader info log: line 3: no"), 1);
  EXPECT_EQ(log.lines().size(), 1u);
}

TEST_F(GpuProgramTest, FailedStageWithoutLogIsSilent) {
  test::LogCapture log(LOG_LEVEL_INFO);
  renderer.failing = {GPU_SHADER_VERTEX};
  EXPECT_FALSE(program.shader_load_from_memory(&renderer, GPU_SHADER_VERTEX, "v", 1));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(GpuProgramTest, LongerOldLogIsReportedForALaterFailure) {
  test::LogCapture log(LOG_LEVEL_WARNING);
  renderer.failing = {GPU_SHADER_VERTEX};
  renderer.logs[GPU_SHADER_VERTEX] = std::string(500, 'a');
  program.shader_load_from_memory(&renderer, GPU_SHADER_VERTEX, "v", 1);
  renderer.logs[GPU_SHADER_VERTEX] = std::string(100, 'b');
  program.shader_load_from_memory(&renderer, GPU_SHADER_VERTEX, "v", 1);
  EXPECT_EQ(program.get_shader_info_log(GPU_SHADER_VERTEX), std::string(500, 'a'));
  EXPECT_EQ(log.count(std::string(500, 'a')), 2);
}

TEST_F(GpuProgramTest, UnknownStagesAreRefused) {
  for (const int stage : {-1, 6, 8, 1000}) {
    EXPECT_FALSE(
        program.shader_load_from_memory(&renderer, static_cast<GPU_SHADER_TYPE>(stage), "text", 4));
  }
  EXPECT_THAT(renderer.loads, IsEmpty());
}

TEST_F(GpuProgramTest, StageWithoutTextFailsAndCountsAsNotLoaded) {
  ASSERT_TRUE(program.shader_load_from_memory(&renderer, GPU_SHADER_VERTEX, "v", 1));
  EXPECT_FALSE(program.shader_load_from_memory(&renderer, GPU_SHADER_VERTEX, nullptr, 4));
  EXPECT_FALSE(program.get_data_ptr()->shader_loaded[GPU_SHADER_VERTEX]);
  ASSERT_TRUE(program.shader_load_from_memory(&renderer, GPU_SHADER_VERTEX, "v", 1));
  EXPECT_FALSE(program.shader_load_from_memory(&renderer, GPU_SHADER_VERTEX, "v", 0));
  EXPECT_FALSE(program.get_data_ptr()->shader_loaded[GPU_SHADER_VERTEX]);
  EXPECT_STREQ(program.get_shader_source_code(GPU_SHADER_VERTEX), "v");
}

TEST_F(GpuProgramTest, EmptySectionIsAStageThatFails) {
  const std::string text = "[Vertex_Shader][Pixel_Shader]p";
  EXPECT_FALSE(
      program.load_from_memory(&renderer, text.c_str(), static_cast<unsigned int>(text.size())));
  EXPECT_THAT(renderer.loads, IsEmpty());
}

TEST_F(GpuProgramTest, SpirvModulesHaveNoBackEnd) {
  test::LogCapture log(LOG_LEVEL_ERROR);
  program.set_name("module");
  const unsigned char bytes[] = {3, 2, 0x23, 7};
  EXPECT_FALSE(program.spirv_shader_module_load_from_memory(&renderer, GPU_SHADER_PIXEL, bytes,
                                                            sizeof(bytes)));
  EXPECT_EQ(log.count("GPU program module - Pixel shader error."), 1);
  write_file("spirv");
  EXPECT_FALSE(
      program.spirv_shader_module_load_from_file(&renderer, GPU_SHADER_VERTEX, path.c_str()));
  EXPECT_EQ(log.count("GPU program module - Vertex shader error."), 1);
  EXPECT_FALSE(program.spirv_shader_module_load_from_file(&renderer, GPU_SHADER_VERTEX, nullptr));
  EXPECT_FALSE(
      program.spirv_shader_module_load_from_file(&renderer, GPU_SHADER_VERTEX, "/no/such"));
  EXPECT_FALSE(program.spirv_shader_module_load_from_memory(nullptr, GPU_SHADER_VERTEX, bytes, 4));
  EXPECT_EQ(log.lines().size(), 2u);
}

TEST_F(GpuProgramTest, Direct3DLoadsHaveNoBackEnd) {
  EXPECT_FALSE(program.d3d_load_from_file(&renderer, GPU_SHADER_D3D_EFFECT, path.c_str()));
  EXPECT_FALSE(program.d3d_load_from_file(nullptr, GPU_SHADER_D3D_EFFECT, nullptr));
  EXPECT_FALSE(program.d3d_shader_load_from_memory(&renderer, GPU_SHADER_PIXEL, "text", 4));
  EXPECT_THAT(renderer.calls(), IsEmpty());
}

// ---- use ----

TEST_F(GpuProgramTest, UseIsForwardedToTheRenderer) {
  EXPECT_TRUE(program.bind(&renderer));
  EXPECT_TRUE(program.unbind(&renderer));
  EXPECT_TRUE(program.activate(&renderer));
  EXPECT_TRUE(program.deactivate(&renderer));
  EXPECT_TRUE(program.bind_uniforms(&renderer));
  EXPECT_TRUE(program.run_compute(&renderer, 1, 2, 3));
  EXPECT_THAT(renderer.calls(),
              ElementsAre("gpu_program_bind(program)", "gpu_program_unbind(program)",
                          "gpu_program_use(program)", "gpu_program_unuse(program)",
                          "gpu_program_apply_uniforms(program)",
                          "gpu_program_dispatch_compute(program, 1, 2, 3)"));
}

TEST_F(GpuProgramTest, UseWithoutRendererFails) {
  EXPECT_FALSE(program.bind(nullptr));
  EXPECT_FALSE(program.unbind(nullptr));
  EXPECT_FALSE(program.activate(nullptr));
  EXPECT_FALSE(program.deactivate(nullptr));
  EXPECT_FALSE(program.bind_uniforms(nullptr));
  EXPECT_FALSE(program.run_compute(nullptr, 1, 1, 1));
}

TEST_F(GpuProgramTest, StateComesFromTheRecord) {
  EXPECT_FALSE(program.is_valid());
  program.set_valid_state(true);
  EXPECT_TRUE(program.is_valid());
  EXPECT_TRUE(program.is_linking_needed());
  program.get_data_ptr()->linked = true;
  EXPECT_FALSE(program.is_linking_needed());
  EXPECT_TRUE(program.set_vertex_attrib("mine", 3));
  EXPECT_TRUE(program.is_linking_needed());
  EXPECT_FALSE(program.set_vertex_attrib("x", 16));
  EXPECT_STREQ(program.get_vertex_attrib_name(3), "mine");
  EXPECT_EQ(program.get_vertex_attrib_location(3), 3);
  EXPECT_TRUE(program.set_vertex_attrib_location(3, 7));
  EXPECT_EQ(program.get_vertex_attrib_location(3), 7);
  EXPECT_EQ(program.get_vertex_attrib_location(16), -1);
  EXPECT_TRUE(program.d3d11_set_entry_point_name(GPU_SHADER_PIXEL, "shade"));
  EXPECT_STREQ(program.get_entry_point_name(GPU_SHADER_PIXEL), "shade");
  EXPECT_STREQ(program.d3d11_get_entry_point_name(GPU_SHADER_VERTEX), "main");
  EXPECT_EQ(program.d3d11_get_shader_ptr(GPU_SHADER_VERTEX), nullptr);
  program.get_data_ptr()->use_generic_vertex_attribs = true;
  EXPECT_TRUE(program.get_use_generic_vertex_attribs_state());
  program.get_data_ptr()->set_info_log("link", 4);
  EXPECT_STREQ(program.get_info_log(), "link");
  program.set_viewport_uniform_name("size");
  EXPECT_STREQ(program.get_data_ptr()->get_viewport_uniform_name(), "size");
}

TEST_F(GpuProgramTest, NeedBindUniformsMarksTheRecord) {
  program.set_uniform_1f(nullptr, "u", 1);
  program.get_data_ptr()->find_uniform("u")->dirty = false;
  EXPECT_TRUE(program.need_bind_uniforms());
  EXPECT_TRUE(program.get_data_ptr()->find_uniform("u")->dirty);
  program.get_data_ptr()->kill_uniforms();
  EXPECT_FALSE(program.need_bind_uniforms());
}

// ---- logs ----

TEST_F(GpuProgramTest, LogsOfAllStagesStandInOneText) {
  EXPECT_STREQ(program.get_shaders_info_log(), "");
  GpuProgramData* data = program.get_data_ptr();
  for (const GPU_SHADER_TYPE type :
       {GPU_SHADER_D3D_EFFECT, GPU_SHADER_COMPUTE, GPU_SHADER_TESS_EVAL, GPU_SHADER_TESS_CONTROL,
        GPU_SHADER_GEOMETRY, GPU_SHADER_PIXEL, GPU_SHADER_VERTEX}) {
    data->set_shader_info_log(type, "log", 3);
  }
  const std::string expected =
      "\nVertex shader info log: log"
      "\nPixel shader info log: log"
      "\nGeometry shader info log: log"
      "\nTessellation control shader info log: log"
      "\nTessellation evaluation shader info log: log"
      "\nCompute shader info log: log"
      "\nDirect3D effect shader info log: log";
  EXPECT_EQ(program.get_shaders_info_log(), expected);
  EXPECT_EQ(program.get_shaders_info_log(), expected);
}

// ---- questions to the renderer ----

TEST_F(GpuProgramTest, LocationsComeFromTheRenderer) {
  renderer.answer("gpu_program_get_uniform_location", 4);
  renderer.answer("gpu_program_get_vertex_attrib_location", 5);
  EXPECT_EQ(program.get_uniform_location(&renderer, "u"), 4);
  EXPECT_EQ(program.get_vertex_attrib_location(&renderer, "a"), 5);
  EXPECT_EQ(program.get_uniform_location(nullptr, "u"), -1);
  EXPECT_EQ(program.get_vertex_attrib_location(nullptr, "a"), -1);
}

TEST_F(GpuProgramTest, InterfaceBlockKindIsFoundInItsText) {
  renderer.answer("gpu_program_get_uniform_block_index", 2);
  renderer.answer("gpu_program_get_shader_storage_block_index", 3);
  EXPECT_EQ(program.get_interface_block_index(&renderer, "GL_UNIFORM_BLOCK", "b"), 2u);
  EXPECT_EQ(program.get_interface_block_index(&renderer, "GL_SHADER_STORAGE_BLOCK", "b"), 3u);
  EXPECT_EQ(program.get_interface_block_index(&renderer, "SHADER_STORAGE or UNIFORM", "b"), 2u);
  EXPECT_EQ(program.get_interface_block_index(&renderer, "uniform", "b"), 0xFFFFFFFFu);
  EXPECT_EQ(program.get_interface_block_index(&renderer, "", "b"), 0xFFFFFFFFu);
  EXPECT_EQ(program.get_interface_block_index(&renderer, nullptr, "b"), 0xFFFFFFFFu);
  EXPECT_EQ(program.get_interface_block_index(&renderer, "UNIFORM", nullptr), 0xFFFFFFFFu);
  EXPECT_EQ(program.get_interface_block_index(nullptr, "UNIFORM", "b"), 0xFFFFFFFFu);
}

TEST_F(GpuProgramTest, BlockQuestionsAreForwarded) {
  const char* names[] = {"a", "b"};
  int sizes[2];
  int offsets[2];
  renderer.label(names, "names");
  renderer.label(sizes, "sizes");
  renderer.label(offsets, "offsets");
  renderer.answer("gpu_program_get_uniform_block_size", 96);
  EXPECT_EQ(program.get_uniform_block_size(&renderer, "Lights", 1), 96);
  EXPECT_TRUE(program.set_uniform_block_binding(&renderer, 1, 2));
  EXPECT_TRUE(program.set_shader_storage_block_binding(&renderer, 3, 4));
  program.get_uniform_size_and_offset(&renderer, names, 2, sizes, offsets);
  program.get_uniform_array_stride(&renderer, names, 2, sizes);
  EXPECT_THAT(
      renderer.calls(),
      ElementsAre("gpu_program_get_uniform_block_size(program, \"Lights\", 1)",
                  "gpu_program_set_uniform_block_binding(program, 1, 2)",
                  "gpu_program_set_shader_storage_block_binding(program, 3, 4)",
                  "gpu_program_get_uniform_size_and_offset(program, names, 2, sizes, offsets)",
                  "gpu_program_get_uniform_array_stride(program, names, 2, sizes)"));
}

TEST_F(GpuProgramTest, BlockQuestionsWithoutRendererFail) {
  const char* names[] = {"a"};
  int values[1];
  EXPECT_EQ(program.get_uniform_block_size(nullptr, "Lights", 0), 0);
  EXPECT_FALSE(program.set_uniform_block_binding(nullptr, 0, 0));
  EXPECT_FALSE(program.set_shader_storage_block_binding(nullptr, 0, 0));
  EXPECT_FALSE(program.get_uniform_size_and_offset(nullptr, names, 1, values, values));
  EXPECT_FALSE(program.get_uniform_array_stride(nullptr, names, 1, values));
}

}  // namespace
}  // namespace orv
