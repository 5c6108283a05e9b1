#include <orv/gpu/gpu_buffer_data.h>

#include <gtest/gtest.h>

namespace orv {
namespace {

TEST(GpuBufferData, StartsAsAnUnallocatedUniformBuffer) {
  GpuBufferData data;
  EXPECT_EQ(data.size, 0u);
  EXPECT_EQ(data.type, GPU_BUFFER_UNIFORM);
  EXPECT_EQ(data.type, 3);
  EXPECT_EQ(data.usage, BUFFER_USAGE_STATIC_READ);
  EXPECT_EQ(data.usage, 2);
  EXPECT_EQ(data.renderer_id, 0);
  EXPECT_FALSE(data.bound);
  EXPECT_EQ(data.mapped_ptr, nullptr);
  EXPECT_FALSE(data.is_allocated());
  EXPECT_EQ(data.binding_point, -1);
  EXPECT_EQ(data.uniform_block_index, -1);
  EXPECT_EQ(data.offset_alignment, 0);
  EXPECT_FALSE(data.immutable_storage);
  EXPECT_TRUE(data.dynamic_storage);
  EXPECT_FALSE(data.client_storage);
  EXPECT_FALSE(data.map_read);
  EXPECT_TRUE(data.map_write);
  EXPECT_FALSE(data.map_invalidate_range);
  EXPECT_TRUE(data.map_invalidate_buffer);
  EXPECT_FALSE(data.map_flush_explicit);
  EXPECT_FALSE(data.map_unsynchronized);
  EXPECT_FALSE(data.map_persistent);
  EXPECT_FALSE(data.map_coherent);
  EXPECT_EQ(data.num_blocks, 0u);
}

TEST(GpuBufferData, IdsDiffer) {
  GpuBufferData a;
  GpuBufferData b;
  EXPECT_NE(a.getid(), b.getid());
}

TEST(GpuBufferData, AllocatedMeansAnApiBuffer) {
  GpuBufferData data;
  data.buffer_id = 4;
  EXPECT_TRUE(data.is_allocated());
}

TEST(GpuBufferData, SetStateSetsEachNamedFlag) {
  struct Row {
    const char* name;
    bool GpuBufferData::*flag;
  };
  const Row rows[] = {
      {"map_read", &GpuBufferData::map_read},
      {"map_write", &GpuBufferData::map_write},
      {"map_invalidate_range", &GpuBufferData::map_invalidate_range},
      {"map_invalidate_buffer", &GpuBufferData::map_invalidate_buffer},
      {"map_flush_explicit", &GpuBufferData::map_flush_explicit},
      {"map_unsynchronized", &GpuBufferData::map_unsynchronized},
      {"map_persistent", &GpuBufferData::map_persistent},
      {"map_coherent", &GpuBufferData::map_coherent},
      {"immutable_storage", &GpuBufferData::immutable_storage},
      {"dynamic_storage", &GpuBufferData::dynamic_storage},
      {"client_storage", &GpuBufferData::client_storage},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    GpuBufferData data;
    for (const Row& each : rows) data.*each.flag = false;
    EXPECT_TRUE(data.set_state(row.name, true));
    for (const Row& each : rows) EXPECT_EQ(data.*each.flag, each.flag == row.flag) << each.name;
    EXPECT_TRUE(data.set_state(row.name, false));
    EXPECT_FALSE(data.*row.flag);
  }
}

TEST(GpuBufferData, SetStateWithTwoNamesSetsBoth) {
  GpuBufferData data;
  data.map_write = false;
  EXPECT_TRUE(data.set_state("map_read map_write", true));
  EXPECT_TRUE(data.map_read);
  EXPECT_TRUE(data.map_write);
  EXPECT_FALSE(data.map_persistent);
}

TEST(GpuBufferData, SetStateRefusesNullOnly) {
  GpuBufferData data;
  EXPECT_FALSE(data.set_state(nullptr, true));
  EXPECT_TRUE(data.set_state("", true));
  EXPECT_TRUE(data.set_state("no such state", true));
  EXPECT_FALSE(data.map_read);
}

TEST(GpuBufferData, BlockIndexWrapsOneStepLate) {
  GpuBufferData data;
  data.num_blocks = 2;
  data.block_size = 64;
  EXPECT_EQ(data.get_current_block_index(), 0u);
  const unsigned int expected[] = {1, 2, 0, 1, 2, 0};
  for (unsigned int index : expected) {
    data.inc_block_index();
    EXPECT_EQ(data.get_current_block_index(), index);
    EXPECT_EQ(data.get_block_offset_in_bytes(), index * 64);
  }
}

TEST(GpuBufferData, TypeStackRestoresInReverseOrder) {
  GpuBufferData data;
  data.push_buffer_type();
  data.type = GPU_BUFFER_ARRAY;
  data.push_buffer_type();
  data.type = GPU_BUFFER_TEXTURE;
  data.pop_buffer_type();
  EXPECT_EQ(data.type, GPU_BUFFER_ARRAY);
  data.pop_buffer_type();
  EXPECT_EQ(data.type, GPU_BUFFER_UNIFORM);
}

TEST(GpuBufferData, PopOfAnEmptyStackDoesNothing) {
  GpuBufferData data;
  data.type = GPU_BUFFER_ARRAY;
  data.pop_buffer_type();
  EXPECT_EQ(data.type, GPU_BUFFER_ARRAY);
}

TEST(GpuBufferData, MappedSizeIsThatOfTheRangeOrOfTheBuffer) {
  GpuBufferData data;
  data.size = 100;
  EXPECT_EQ(data.get_mapped_size(), 0u);
  unsigned char memory[100];
  data.mapped_ptr = memory;
  EXPECT_EQ(data.get_mapped_size(), 100u);
  data.mapped_size = 40;
  EXPECT_EQ(data.get_mapped_size(), 40u);
}

}  // namespace
}  // namespace orv
