#include <orv/gpu/gpu_buffer.h>
#include <orv/gpu/gpu_buffer_data.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/math/mat4.h>
#include <orv/math/vec4.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "support/recording_renderer.h"

namespace orv {
namespace {

using testing::ElementsAre;

class GpuBufferTest : public testing::Test {
 protected:
  GpuBufferTest() {
    renderer.label(buffer.get_data_ptr(), "buffer");
    renderer.label(&bytes, "bytes");
    renderer.label(&program, "program");
  }

  // Stands in for memory that a renderer mapped.
  void map_bytes(unsigned int size) {
    buffer.get_data_ptr()->mapped_ptr = bytes;
    buffer.get_data_ptr()->size = size;
  }

  test::RecordingRenderer renderer;
  GpuBuffer buffer;
  GpuProgramData program;
  unsigned char bytes[256] = {};
};

TEST_F(GpuBufferTest, MemoryOperationsPassTheRecord) {
  EXPECT_TRUE(buffer.alloc(&renderer, GPU_BUFFER_ARRAY, BUFFER_USAGE_DYNAMIC_DRAW, 32, bytes));
  EXPECT_TRUE(
      buffer.alloc_uniform_buffer(&renderer, BUFFER_USAGE_STATIC_DRAW, &program, "Lights", bytes));
  EXPECT_TRUE(
      buffer.alloc_uniform_buffer_v2(&renderer, BUFFER_USAGE_STATIC_DRAW, &program, 3, bytes));
  EXPECT_TRUE(buffer.sub_data_write(&renderer, 1, 2, bytes));
  buffer.sub_data_read(&renderer, 3, 4, bytes);
  EXPECT_TRUE(buffer.free(&renderer));
  EXPECT_THAT(
      renderer.calls(),
      ElementsAre("gpu_buffer_alloc(null, buffer, 0, 4, 32, bytes)",
                  "gpu_buffer_alloc_uniform_buffer(null, buffer, 1, program, \"Lights\", "
                  "bytes)",
                  "gpu_buffer_alloc_uniform_buffer_v2(null, buffer, 1, program, 3, bytes)",
                  "gpu_buffer_sub_data_write(buffer, 1, 2, bytes)",
                  "gpu_buffer_sub_data_read(buffer, 3, 4, bytes)", "gpu_buffer_free(buffer)"));
}

TEST_F(GpuBufferTest, BindingAndMappingPassTheRecord) {
  buffer.bind(&renderer);
  buffer.unbind(&renderer);
  buffer.bind_base(&renderer, 2);
  buffer.bind_range(&renderer, 2, 16, 32);
  buffer.map(&renderer, "GL_READ_ONLY");
  buffer.map_range(&renderer, 4, 8, "GL_MAP_READ_BIT");
  buffer.flush_range(&renderer, 4, 8);
  buffer.unmap(&renderer);
  buffer.atomic_counter_set_value(&renderer, 1, 9);
  EXPECT_THAT(
      renderer.calls(),
      ElementsAre("gpu_buffer_bind(buffer)", "gpu_buffer_unbind(buffer)",
                  "gpu_buffer_bind_base(buffer, 2)", "gpu_buffer_bind_range(buffer, 2, 16, 32)",
                  "gpu_buffer_map(buffer, \"GL_READ_ONLY\")",
                  "gpu_buffer_map_range(buffer, 4, 8, \"GL_MAP_READ_BIT\")",
                  "gpu_buffer_flush_range(buffer, 4, 8)", "gpu_buffer_unmap(buffer)",
                  "gpu_buffer_set_atomic_counter(buffer, 1, 9)"));
}

TEST_F(GpuBufferTest, CopyPassesBothRecords) {
  GpuBuffer source;
  renderer.label(source.get_data_ptr(), "source");
  EXPECT_TRUE(buffer.copy(&renderer, &source, 1, 2, 3));
  EXPECT_FALSE(buffer.copy(&renderer, nullptr, 1, 2, 3));
  EXPECT_THAT(renderer.calls(), ElementsAre("gpu_buffer_copy(buffer, source, 1, 2, 3)"));
}

TEST_F(GpuBufferTest, ResultsOfTheRendererAreGivenBack) {
  renderer.answer("gpu_buffer_alloc", 0);
  EXPECT_FALSE(buffer.alloc(&renderer, GPU_BUFFER_ARRAY, BUFFER_USAGE_STATIC_DRAW, 4, nullptr));
  renderer.answer_pointer("gpu_buffer_map", bytes);
  EXPECT_EQ(buffer.map(&renderer, "GL_READ_ONLY"), bytes);
  renderer.answer("gpu_buffer_get_usage_option", 4);
  EXPECT_EQ(buffer.get_gpu_buffer_usage_option(&renderer, 0), 4u);
}

TEST_F(GpuBufferTest, UsageOptionsGoToTheRenderer) {
  EXPECT_TRUE(buffer.set_gpu_buffer_usage_option(&renderer, 2, 5));
  buffer.get_gpu_buffer_usage_option(&renderer, 2);
  EXPECT_THAT(renderer.calls(),
              ElementsAre("gpu_buffer_set_usage_option(2, 5)", "gpu_buffer_get_usage_option(2)"));
}

TEST_F(GpuBufferTest, NullRendererGivesNothing) {
  unsigned int value = 0;
  EXPECT_FALSE(buffer.alloc(nullptr, GPU_BUFFER_ARRAY, BUFFER_USAGE_STATIC_DRAW, 4, nullptr));
  EXPECT_FALSE(
      buffer.alloc_uniform_buffer(nullptr, BUFFER_USAGE_STATIC_DRAW, &program, "x", nullptr));
  EXPECT_FALSE(
      buffer.alloc_uniform_buffer_v2(nullptr, BUFFER_USAGE_STATIC_DRAW, &program, 0, nullptr));
  EXPECT_FALSE(buffer.free(nullptr));
  EXPECT_FALSE(buffer.sub_data_write(nullptr, 0, 1, bytes));
  EXPECT_FALSE(buffer.sub_data_read(nullptr, 0, 1, bytes));
  EXPECT_FALSE(buffer.copy(nullptr, &buffer, 0, 0, 1));
  EXPECT_FALSE(buffer.bind(nullptr));
  EXPECT_FALSE(buffer.unbind(nullptr));
  EXPECT_FALSE(buffer.bind_base(nullptr, 0));
  EXPECT_FALSE(buffer.bind_range(nullptr, 0, 0, 1));
  EXPECT_EQ(buffer.map(nullptr, "GL_READ_ONLY"), nullptr);
  EXPECT_EQ(buffer.map_range(nullptr, 0, 1, nullptr), nullptr);
  EXPECT_FALSE(buffer.flush_range(nullptr, 0, 1));
  EXPECT_FALSE(buffer.unmap(nullptr));
  EXPECT_FALSE(buffer.atomic_counter_set_value(nullptr, 0, 0));
  EXPECT_FALSE(buffer.atomic_counter_get_value(nullptr, 0, &value));
  EXPECT_FALSE(buffer.set_gpu_buffer_usage_option(nullptr, 0, 1));
  EXPECT_EQ(buffer.get_gpu_buffer_usage_option(nullptr, 0), 0u);
}

TEST_F(GpuBufferTest, CleanupFreesTheApiBuffer) {
  EXPECT_TRUE(buffer.cleanup(&renderer, nullptr));
  EXPECT_FALSE(buffer.cleanup(nullptr, nullptr));
  EXPECT_THAT(renderer.calls(), ElementsAre("gpu_buffer_free(buffer)"));
}

TEST_F(GpuBufferTest, RendererIdIsThatOfTheRecord) {
  EXPECT_EQ(buffer.get_renderer_id(), 0);
  buffer.get_data_ptr()->renderer_id = 12;
  EXPECT_EQ(buffer.get_renderer_id(), 12);
}

TEST_F(GpuBufferTest, StateAndAllocationComeFromTheRecord) {
  EXPECT_TRUE(buffer.set_state("map_coherent", true));
  EXPECT_TRUE(buffer.get_data_ptr()->map_coherent);
  EXPECT_FALSE(buffer.set_state(nullptr, true));
  EXPECT_FALSE(buffer.is_allocated());
  buffer.get_data_ptr()->buffer_id = 1;
  EXPECT_TRUE(buffer.is_allocated());
}

TEST_F(GpuBufferTest, ValueAccessWithoutMappingFails) {
  float x = 7;
  buffer.get_data_ptr()->size = 256;
  EXPECT_FALSE(buffer.get_value_1f(&renderer, 0, &x));
  EXPECT_FALSE(buffer.set_value_1f(&renderer, 0, 1));
  EXPECT_EQ(x, 7);
}

TEST_F(GpuBufferTest, ValuesComeBackAsWritten) {
  map_bytes(sizeof(bytes));
  const vec4 vector(1, 2, 3, 4);
  const mat4 matrix(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
  EXPECT_TRUE(buffer.set_value_1f(nullptr, 0, 1.5f));
  EXPECT_TRUE(buffer.set_value_2f(nullptr, 4, 2, 3));
  EXPECT_TRUE(buffer.set_value_3f(nullptr, 12, 4, 5, 6));
  EXPECT_TRUE(buffer.set_value_4f(nullptr, 24, 7, 8, 9, 10));
  EXPECT_TRUE(buffer.set_value_vec4(nullptr, 40, vector));
  EXPECT_TRUE(buffer.set_value_mat4(nullptr, 56, matrix));
  EXPECT_TRUE(buffer.set_value_4x4f(nullptr, 120, matrix.ptr()));
  EXPECT_TRUE(buffer.set_value_1ui(nullptr, 184, 0x80000001u));
  EXPECT_TRUE(buffer.set_value_ui64(nullptr, 188, 0x8000000000000001ull));
  float f[4] = {};
  EXPECT_TRUE(buffer.get_value_1f(nullptr, 0, &f[0]));
  EXPECT_EQ(f[0], 1.5f);
  EXPECT_TRUE(buffer.get_value_2f(nullptr, 4, &f[0], &f[1]));
  EXPECT_THAT(std::vector<float>(f, f + 2), ElementsAre(2, 3));
  EXPECT_TRUE(buffer.get_value_3f(nullptr, 12, &f[0], &f[1], &f[2]));
  EXPECT_THAT(std::vector<float>(f, f + 3), ElementsAre(4, 5, 6));
  EXPECT_TRUE(buffer.get_value_4f(nullptr, 24, &f[0], &f[1], &f[2], &f[3]));
  EXPECT_THAT(std::vector<float>(f, f + 4), ElementsAre(7, 8, 9, 10));
  vec4 vector_back;
  EXPECT_TRUE(buffer.get_value_vec4(nullptr, 40, &vector_back));
  EXPECT_TRUE(vector_back == vector);
  mat4 matrix_back;
  EXPECT_TRUE(buffer.get_value_mat4(nullptr, 56, &matrix_back));
  EXPECT_TRUE(matrix_back == matrix);
  float sixteen[16] = {};
  EXPECT_TRUE(buffer.get_value_4x4f(nullptr, 120, sixteen));
  EXPECT_EQ(std::memcmp(sixteen, matrix.ptr(), sizeof(sixteen)), 0);
  unsigned int ui = 0;
  EXPECT_TRUE(buffer.get_value_1ui(nullptr, 184, &ui));
  EXPECT_EQ(ui, 0x80000001u);
  unsigned long long ui64 = 0;
  EXPECT_TRUE(buffer.get_value_ui64(nullptr, 188, &ui64));
  EXPECT_EQ(ui64, 0x8000000000000001ull);
  EXPECT_TRUE(renderer.calls().empty());
}

TEST_F(GpuBufferTest, ValuesOutsideTheMappedMemoryAreRefused) {
  map_bytes(16);
  float x = 0;
  EXPECT_TRUE(buffer.set_value_1f(nullptr, 12, 1));
  EXPECT_FALSE(buffer.set_value_1f(nullptr, 13, 1));
  EXPECT_FALSE(buffer.set_value_1f(nullptr, 16, 1));
  EXPECT_FALSE(buffer.set_value_1f(nullptr, 0xFFFFFFFFu, 1));
  EXPECT_FALSE(buffer.set_value_mat4(nullptr, 0, mat4()));
  EXPECT_FALSE(buffer.get_value_1f(nullptr, 0xFFFFFFFCu, &x));
  EXPECT_TRUE(buffer.set_value_vec4(nullptr, 0, vec4(1, 2, 3, 4)));
  EXPECT_EQ(bytes[16], 0);
}

TEST_F(GpuBufferTest, ValuesOfAMappedRangeEndWithTheRange) {
  map_bytes(64);
  renderer.answer_pointer("gpu_buffer_map_range", bytes);
  buffer.map_range(&renderer, 32, 8, "GL_MAP_WRITE_BIT");
  EXPECT_TRUE(buffer.set_value_2f(nullptr, 0, 1, 2));
  EXPECT_FALSE(buffer.set_value_2f(nullptr, 4, 1, 2));
  renderer.answer_pointer("gpu_buffer_map", bytes);
  buffer.map(&renderer, "GL_WRITE_ONLY");
  EXPECT_TRUE(buffer.set_value_2f(nullptr, 56, 1, 2));
}

TEST_F(GpuBufferTest, RangeWithoutBytesIsNotMapped) {
  map_bytes(64);
  renderer.answer_pointer("gpu_buffer_map_range", bytes);
  EXPECT_NE(buffer.map_range(&renderer, 0, 8, "GL_MAP_WRITE_BIT"), nullptr);
  EXPECT_EQ(buffer.map_range(&renderer, 60, 0, "GL_MAP_WRITE_BIT"), nullptr);
  EXPECT_FALSE(buffer.set_value_1f(nullptr, 8, 1));
}

TEST_F(GpuBufferTest, FailedMappingLeavesTheMappedSizeAlone) {
  map_bytes(64);
  EXPECT_EQ(buffer.map_range(&renderer, 0, 128, "GL_MAP_WRITE_BIT"), nullptr);
  EXPECT_FALSE(buffer.set_value_1f(nullptr, 64, 1));
  EXPECT_TRUE(buffer.set_value_1f(nullptr, 60, 1));
}

TEST_F(GpuBufferTest, NullValuesAreRefused) {
  map_bytes(64);
  float x = 0;
  EXPECT_FALSE(buffer.get_value_1f(nullptr, 0, nullptr));
  EXPECT_FALSE(buffer.get_value_2f(nullptr, 0, &x, nullptr));
  EXPECT_FALSE(buffer.get_value_3f(nullptr, 0, &x, nullptr, &x));
  EXPECT_FALSE(buffer.get_value_4f(nullptr, 0, nullptr, &x, &x, &x));
  EXPECT_FALSE(buffer.get_value_vec4(nullptr, 0, nullptr));
  EXPECT_FALSE(buffer.get_value_mat4(nullptr, 0, nullptr));
  EXPECT_FALSE(buffer.get_value_4x4f(nullptr, 0, nullptr));
  EXPECT_FALSE(buffer.get_value_1ui(nullptr, 0, nullptr));
  EXPECT_FALSE(buffer.get_value_ui64(nullptr, 0, nullptr));
  EXPECT_FALSE(buffer.set_value_4x4f(nullptr, 0, nullptr));
}

}  // namespace
}  // namespace orv
