#include <orv/gpu/gpu_program_data.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>

namespace orv {
namespace {

TEST(GpuProgramData, StartsWithTheDescribedValues) {
  GpuProgramData data;
  EXPECT_STREQ(data.get_gpu_program_name(), "");
  EXPECT_FALSE(data.active);
  EXPECT_EQ(data.program_id, 0u);
  EXPECT_FALSE(data.get_use_generic_vertex_attribs_state());
  EXPECT_TRUE(data.generic_attribs_detection_needed);
  EXPECT_TRUE(data.generic_attrib_names_binding_needed);
  EXPECT_TRUE(data.is_linking_needed());
  EXPECT_TRUE(data.attrib_locations_dirty);
  EXPECT_TRUE(data.attrib_group_1_dirty);
  EXPECT_TRUE(data.attrib_group_2_dirty);
  EXPECT_FALSE(data.is_valid());
  for (unsigned int i = 0; i < GpuProgramData::NUM_STAGES; ++i) {
    EXPECT_FALSE(data.shader_loaded[i]);
    EXPECT_EQ(data.shader_id[i], 0u);
    EXPECT_EQ(data.get_shader_source_code(static_cast<GPU_SHADER_TYPE>(i)), nullptr);
    EXPECT_EQ(data.get_shader_info_log(static_cast<GPU_SHADER_TYPE>(i)), nullptr);
  }
  EXPECT_EQ(data.get_info_log(), nullptr);
  EXPECT_EQ(data.renderer_gpu_id, 0);
  EXPECT_EQ(data.get_gpu_program_id(), -1);
  EXPECT_EQ(data.get_num_uniforms(), 4u);
}

TEST(GpuProgramData, NameIsCutAt127Characters) {
  GpuProgramData data;
  data.set_gpu_program_name(std::string(200, 'n').c_str());
  EXPECT_EQ(std::string(data.get_gpu_program_name()), std::string(127, 'n'));
  data.set_gpu_program_name(nullptr);
  data.set_gpu_program_name("");
  EXPECT_EQ(std::string(data.get_gpu_program_name()), std::string(127, 'n'));
  data.set_gpu_program_name("short");
  EXPECT_STREQ(data.get_gpu_program_name(), "short");
}

TEST(GpuProgramData, RemembersTheThread) {
  GpuProgramData data;
  EXPECT_TRUE(data.check_thread());
  bool same = true;
  std::thread([&] { same = data.check_thread(); }).join();
  EXPECT_FALSE(same);
  std::thread([&] { data.update_thread(); }).join();
  EXPECT_FALSE(data.check_thread());
  EXPECT_EQ(data.get_thread_ptr(), &data.thread);
}

TEST(GpuProgramData, StageLabelsAreTheirOwn) {
  const char* const expected[] = {"Vertex",
                                  "Pixel",
                                  "Geometry",
                                  "Tessellation control/domain",
                                  "Tessellation evaluation/hull",
                                  "Tessellation compute",
                                  "",
                                  "",
                                  ""};
  for (int i = 0; i < 9; ++i) {
    EXPECT_STREQ(GpuProgramData::shader_type_to_string(static_cast<GPU_SHADER_TYPE>(i)),
                 expected[i])
        << i;
  }
  EXPECT_STREQ(GpuProgramData::shader_type_to_string(static_cast<GPU_SHADER_TYPE>(-1)), "");
}

// ---- logs ----

TEST(GpuProgramData, ShorterLogIsDropped) {
  GpuProgramData data;
  const std::string long_log(500, 'a');
  const std::string short_log(100, 'b');
  EXPECT_TRUE(data.set_shader_info_log(GPU_SHADER_PIXEL, long_log.c_str(), 500));
  EXPECT_FALSE(data.set_shader_info_log(GPU_SHADER_PIXEL, short_log.c_str(), 100));
  EXPECT_EQ(data.get_shader_info_log(GPU_SHADER_PIXEL), long_log);
}

TEST(GpuProgramData, LogGrowsOnlyPastItsCapacity) {
  GpuProgramData data;
  const std::string text(600, 'x');
  EXPECT_TRUE(data.set_info_log(text.c_str(), 500));
  EXPECT_EQ(data.info_log_capacity, 501u);
  EXPECT_FALSE(data.set_info_log(text.c_str(), 500));
  EXPECT_FALSE(data.set_info_log(text.c_str(), 501));
  EXPECT_TRUE(data.set_info_log(text.c_str(), 502));
  EXPECT_EQ(data.get_info_log(), std::string(502, 'x'));
}

TEST(GpuProgramData, NullAndEmptyLogsAreRefused) {
  GpuProgramData data;
  EXPECT_FALSE(data.set_info_log(nullptr, 5));
  EXPECT_FALSE(data.set_info_log("text", 0));
  EXPECT_FALSE(data.set_shader_info_log(GPU_SHADER_VERTEX, nullptr, 5));
  EXPECT_FALSE(data.set_shader_info_log(GPU_SHADER_VERTEX, "text", 0));
  EXPECT_FALSE(data.set_shader_info_log(static_cast<GPU_SHADER_TYPE>(8), "text", 4));
  EXPECT_FALSE(data.set_shader_info_log(static_cast<GPU_SHADER_TYPE>(-1), "text", 4));
}

TEST(GpuProgramData, LogShorterThanItsLengthIsReadToItsEnd) {
  GpuProgramData data;
  EXPECT_TRUE(data.set_info_log("short", 4000));
  EXPECT_STREQ(data.get_info_log(), "short");
}

TEST(GpuProgramData, StagesOutsideTheArraysHaveNothing) {
  GpuProgramData data;
  const auto stage = static_cast<GPU_SHADER_TYPE>(8);
  EXPECT_EQ(data.get_shader_source_code(stage), nullptr);
  EXPECT_EQ(data.get_shader_info_log(stage), nullptr);
  EXPECT_EQ(data.get_entry_point_name(stage), nullptr);
  EXPECT_EQ(data.d3d11_get_shader_ptr(stage), nullptr);
  EXPECT_FALSE(data.set_shader_source_code(stage, "x", 1));
  EXPECT_FALSE(data.set_entry_point_name(stage, "x"));
}

TEST(GpuProgramData, SourceIsCopiedAndTerminated) {
  GpuProgramData data;
  const char text[] = {'a', 'b', 'c', 'd'};
  EXPECT_TRUE(data.set_shader_source_code(GPU_SHADER_VERTEX, text, 3));
  EXPECT_STREQ(data.get_shader_source_code(GPU_SHADER_VERTEX), "abc");
  EXPECT_TRUE(data.set_shader_source_code(GPU_SHADER_VERTEX, nullptr, 3));
  EXPECT_EQ(data.get_shader_source_code(GPU_SHADER_VERTEX), nullptr);
}

// ---- Direct3D ----

TEST(GpuProgramData, EntryPointIsMainUntilSet) {
  GpuProgramData data;
  EXPECT_STREQ(data.get_entry_point_name(GPU_SHADER_PIXEL), "main");
  EXPECT_STREQ(data.d3d11_get_entry_point_name(GPU_SHADER_D3D_EFFECT), "main");
  EXPECT_TRUE(data.set_entry_point_name(GPU_SHADER_PIXEL, "shade"));
  EXPECT_STREQ(data.d3d11_get_entry_point_name(GPU_SHADER_PIXEL), "shade");
  EXPECT_STREQ(data.get_entry_point_name(GPU_SHADER_VERTEX), "main");
  EXPECT_FALSE(data.d3d11_set_entry_point_name(GPU_SHADER_PIXEL, nullptr));
  EXPECT_EQ(data.d3d11_get_shader_ptr(GPU_SHADER_PIXEL), nullptr);
}

// ---- engine names ----

struct EngineName {
  void (GpuProgramData::*set)(const char*);
  const char* (GpuProgramData::*get)() const;
  const char* default_name;
  ENGINE_UNIFORM which;
};

const EngineName ENGINE_NAMES[] = {
    {&GpuProgramData::set_model_matrix_uniform_name, &GpuProgramData::get_model_matrix_uniform_name,
     "orvex_ModelMatrix", ENGINE_UNIFORM_MODEL_MATRIX},
    {&GpuProgramData::set_view_matrix_uniform_name, &GpuProgramData::get_view_matrix_uniform_name,
     "orvex_ViewMatrix", ENGINE_UNIFORM_VIEW_MATRIX},
    {&GpuProgramData::set_projection_matrix_uniform_name,
     &GpuProgramData::get_projection_matrix_uniform_name, "orvex_ProjectionMatrix",
     ENGINE_UNIFORM_PROJECTION_MATRIX},
    {&GpuProgramData::set_model_view_matrix_uniform_name,
     &GpuProgramData::get_model_view_matrix_uniform_name, "orvex_ModelViewMatrix",
     ENGINE_UNIFORM_MODEL_VIEW_MATRIX},
    {&GpuProgramData::set_view_projection_matrix_uniform_name,
     &GpuProgramData::get_view_projection_matrix_uniform_name, "orvex_ViewProjectionMatrix",
     ENGINE_UNIFORM_VIEW_PROJECTION_MATRIX},
    {&GpuProgramData::set_model_view_projection_matrix_uniform_name,
     &GpuProgramData::get_model_view_projection_matrix_uniform_name,
     "orvex_ModelViewProjectionMatrix", ENGINE_UNIFORM_MODEL_VIEW_PROJECTION_MATRIX},
    {&GpuProgramData::set_viewport_uniform_name, &GpuProgramData::get_viewport_uniform_name,
     "orvex_Viewport", ENGINE_UNIFORM_VIEWPORT},
};

TEST(GpuProgramData, EngineUniformsHaveDefaultNamesThatCanBeReplaced) {
  for (const EngineName& row : ENGINE_NAMES) {
    SCOPED_TRACE(row.default_name);
    GpuProgramData data;
    EXPECT_STREQ((data.*row.get)(), row.default_name);
    (data.*row.set)(nullptr);
    EXPECT_STREQ((data.*row.get)(), row.default_name);
    (data.*row.set)("mine");
    EXPECT_STREQ((data.*row.get)(), "mine");
    EXPECT_STREQ(data.get_engine_uniform_name(row.which), "mine");
    data.init_data();
    EXPECT_STREQ((data.*row.get)(), row.default_name);
  }
}

// ---- vertex attributes ----

TEST(GpuProgramData, FirstNineAttributesCarryEngineNames) {
  const char* const expected[16] = {
      "orvex_Position",       "orvex_TexCoord0",         "orvex_Normal",
      "orvex_Color",          "orvex_Instance_Position", "orvex_Instance_Rotation",
      "orvex_Instance_Scale", "orvex_Instance_Color",    "orvex_Instance_Misc",
      "orvex_Attrib9",        "orvex_Attrib10",          "orvex_Attrib11",
      "orvex_Attrib12",       "orvex_Attrib13",          "orvex_Attrib14",
      "orvex_Attrib15"};
  GpuProgramData data;
  for (unsigned int i = 0; i < 16; ++i) {
    EXPECT_STREQ(data.get_vertex_attrib_name(i), expected[i]);
    EXPECT_EQ(data.get_vertex_attrib_location(i), static_cast<int>(i));
  }
}

TEST(GpuProgramData, AttributesCanBeNamedByNumberAlone) {
  GpuProgramData data;
  data.init_default_vertex_attribs(false);
  for (unsigned int i = 0; i < 16; ++i) {
    EXPECT_EQ(data.get_vertex_attrib_name(i), "orvex_Attrib" + std::to_string(i));
  }
}

TEST(GpuProgramData, ClearedAttributesHaveNeitherNameNorLocation) {
  GpuProgramData data;
  data.clear_vertex_attribs();
  for (unsigned int i = 0; i < 16; ++i) {
    EXPECT_STREQ(data.get_vertex_attrib_name(i), "");
    EXPECT_EQ(data.get_vertex_attrib_location(i), -1);
  }
}

TEST(GpuProgramData, VertexAttribLocation16IsRefused) {
  GpuProgramData data;
  EXPECT_FALSE(data.set_vertex_attrib("x", 16));
  EXPECT_TRUE(data.set_vertex_attrib("x", 15));
  EXPECT_STREQ(data.get_vertex_attrib_name(15), "x");
}

TEST(GpuProgramData, VertexAttribNeedsAName) {
  GpuProgramData data;
  EXPECT_FALSE(data.set_vertex_attrib(nullptr, 0));
  EXPECT_FALSE(data.set_vertex_attrib("", 0));
  EXPECT_STREQ(data.get_vertex_attrib_name(0), "orvex_Position");
}

TEST(GpuProgramData, VertexAttribSlotsAreBounded) {
  GpuProgramData data;
  EXPECT_EQ(data.get_vertex_attrib_name(16), nullptr);
  EXPECT_EQ(data.get_vertex_attrib_location(16), -1);
  EXPECT_FALSE(data.set_vertex_attrib_name(16, "x"));
  EXPECT_FALSE(data.set_vertex_attrib_name(0, nullptr));
  EXPECT_FALSE(data.set_vertex_attrib_location(16, 1));
}

TEST(GpuProgramData, LongVertexAttribNamesAreCut) {
  GpuProgramData data;
  data.set_vertex_attrib(std::string(100, 'v').c_str(), 3);
  EXPECT_EQ(data.get_vertex_attrib_name(3), std::string(63, 'v'));
}

TEST(GpuProgramData, WritingAnAttributeAsksForANewLink) {
  GpuProgramData data;
  const auto expect_relink = [&] {
    EXPECT_TRUE(data.is_linking_needed());
    EXPECT_TRUE(data.attrib_locations_dirty);
    data.linked = true;
    data.attrib_locations_dirty = false;
  };
  expect_relink();
  data.set_vertex_attrib("x", 4);
  expect_relink();
  data.set_vertex_attrib_name(4, "y");
  expect_relink();
  data.set_vertex_attrib_location(4, 6);
  expect_relink();
  data.clear_vertex_attribs();
  expect_relink();
  data.init_default_vertex_attribs(false);
  expect_relink();
  data.set_vertex_attrib("refused", 16);
  EXPECT_FALSE(data.is_linking_needed());
}

// ---- copies ----

TEST(GpuProgramData, CopyOwnsItsTextsAndSharesApiIds) {
  GpuProgramData copy;
  copy.set_uniform_1f("gone", 1);
  {
    GpuProgramData original;
    original.set_gpu_program_name("original");
    original.program_id = 7;
    original.shader_id[GPU_SHADER_PIXEL] = 8;
    original.valid = true;
    original.renderer_gpu_id = 9;
    original.set_gpu_program_id(10);
    original.set_shader_source_code(GPU_SHADER_PIXEL, "source", 6);
    original.set_shader_info_log(GPU_SHADER_PIXEL, "shader log", 10);
    original.set_info_log("link log", 8);
    original.set_entry_point_name(GPU_SHADER_PIXEL, "shade");
    original.set_viewport_uniform_name("view_size");
    original.set_vertex_attrib("mine", 2);
    original.linked = true;
    const float values[] = {1, 2, 3, 4};
    original.set_uniform_2fv("pair", 2, values);
    original.set_uniform_subroutine(GPU_SHADER_PIXEL, "light", "phong");
    original._update_uniform_location_cache("pair", 5);
    original._uniforms_optimization_ok();
    copy = original;
    original.set_uniform_1f("pair", 9);
  }
  EXPECT_STREQ(copy.get_gpu_program_name(), "original");
  EXPECT_EQ(copy.program_id, 7u);
  EXPECT_EQ(copy.shader_id[GPU_SHADER_PIXEL], 8u);
  EXPECT_FALSE(copy.is_linking_needed());
  EXPECT_TRUE(copy.is_valid());
  EXPECT_EQ(copy.renderer_gpu_id, 9);
  EXPECT_EQ(copy.get_gpu_program_id(), 10);
  EXPECT_STREQ(copy.get_shader_source_code(GPU_SHADER_PIXEL), "source");
  EXPECT_STREQ(copy.get_shader_info_log(GPU_SHADER_PIXEL), "shader log");
  EXPECT_STREQ(copy.get_info_log(), "link log");
  EXPECT_STREQ(copy.get_entry_point_name(GPU_SHADER_PIXEL), "shade");
  EXPECT_STREQ(copy.get_viewport_uniform_name(), "view_size");
  EXPECT_STREQ(copy.get_vertex_attrib_name(2), "mine");
  EXPECT_EQ(copy.find_uniform("gone"), nullptr);
  const GpuProgramUniform* pair = copy.find_uniform("pair");
  ASSERT_NE(pair, nullptr);
  EXPECT_EQ(pair->type, GPU_SHADER_UNIFORM_2fv);
  ASSERT_EQ(pair->count, 2);
  EXPECT_EQ(pair->values_f[3], 4);
  EXPECT_EQ(copy.num_subroutine_uniforms[GPU_SHADER_PIXEL], 1u);
  EXPECT_EQ(copy._get_uniform_location_from_cache("pair"), 5);
  EXPECT_TRUE(copy._are_uniforms_optimized());
}

TEST(GpuProgramData, CopiedLogHasTheRoomThatItsCapacityTells) {
  GpuProgramData original;
  original.set_info_log("short", 4000);
  original.set_shader_info_log(GPU_SHADER_PIXEL, "short", 4000);
  GpuProgramData copy(original);
  ASSERT_EQ(copy.info_log_capacity, 4001u);
  ASSERT_EQ(copy.shader_info_log_capacity[GPU_SHADER_PIXEL], 4001u);
  // Renderers may write into the block.
  std::memset(copy.info_log, 'x', 4000);
  std::memset(copy.shader_info_log[GPU_SHADER_PIXEL], 'x', 4000);
  EXPECT_EQ(copy.get_info_log(), std::string(4000, 'x'));
  EXPECT_STREQ(original.get_info_log(), "short");
  EXPECT_FALSE(copy.set_info_log("another", 4001));
}

TEST(GpuProgramData, OwnTextsMaySetTheFieldsThatTheyComeFrom) {
  GpuProgramData data;
  data.set_gpu_program_name("phong");
  data.set_gpu_program_name(data.get_gpu_program_name());
  EXPECT_STREQ(data.get_gpu_program_name(), "phong");
  data.set_viewport_uniform_name(data.get_viewport_uniform_name());
  EXPECT_STREQ(data.get_viewport_uniform_name(), "orvex_Viewport");
  data.set_shader_source_code(GPU_SHADER_PIXEL, "source", 6);
  data.set_shader_source_code(GPU_SHADER_PIXEL, data.get_shader_source_code(GPU_SHADER_PIXEL), 6);
  EXPECT_STREQ(data.get_shader_source_code(GPU_SHADER_PIXEL), "source");
  data.set_vertex_attrib(data.get_vertex_attrib_name(2), 2);
  EXPECT_STREQ(data.get_vertex_attrib_name(2), "orvex_Normal");
}

TEST(GpuProgramData, CopyConstructorAndSelfAssignmentKeepTheRecord) {
  GpuProgramData original;
  original.set_uniform_4f("color", 1, 2, 3, 4);
  GpuProgramData copy(original);
  EXPECT_NE(copy.find_uniform("color"), original.find_uniform("color"));
  EXPECT_EQ(copy.find_uniform("color")->value_f[3], 4);
  GpuProgramData& same = copy;
  copy = same;
  EXPECT_EQ(copy.find_uniform("color")->value_f[3], 4);
  EXPECT_STREQ(copy.get_model_matrix_uniform_name(), "orvex_ModelMatrix");
}

TEST(GpuProgramData, CopyOfARecordWithoutUniformsHasNone) {
  GpuProgramData original;
  original.kill_uniforms();
  GpuProgramData copy(original);
  EXPECT_EQ(copy.get_uniforms_list(), nullptr);
  EXPECT_EQ(copy.get_num_uniforms(), 0u);
  EXPECT_TRUE(copy.set_uniform_1i("x", 1));
  EXPECT_EQ(copy.get_num_uniforms(), 4u);
}

}  // namespace
}  // namespace orv
