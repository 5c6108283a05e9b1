#include <orv/gpu/gpu_buffer_data.h>

#include "render/opengl/gl_fixture.h"

using namespace orv;
using namespace orv::test;

namespace {

class GpuBuffersGlTest : public GlTest {
 protected:
  void TearDown() override {
    renderer.gpu_buffer_free(&buffer);
    GlTest::TearDown();
  }
  std::vector<unsigned char> read(GpuBufferData* from, unsigned int size) {
    std::vector<unsigned char> bytes(size);
    EXPECT_TRUE(renderer.gpu_buffer_sub_data_read(from, 0, size, bytes.data()));
    return bytes;
  }
  GpuBufferData buffer;
  const std::vector<unsigned char> eight = {1, 2, 3, 4, 5, 6, 7, 8};
};

}  // namespace

ORV_BOTH_PROFILES(GpuBuffersGlTest);

TEST_P(GpuBuffersGlTest, EveryTypeKeepsItsBytes) {
  for (int type = 0; type < 7; ++type) {
    GpuBufferData data;
    if (!renderer.gpu_buffer_alloc(nullptr, &data, static_cast<GPU_BUFFER_TYPE>(type),
                                   BUFFER_USAGE_DYNAMIC_DRAW, 8, eight.data())) {
      EXPECT_FALSE(renderer.facts().is_version_at_least(4, 3)) << type;
      continue;
    }
    EXPECT_EQ(eight, read(&data, 8)) << type;
    const unsigned char two[] = {70, 80};
    EXPECT_TRUE(renderer.gpu_buffer_sub_data_write(&data, 6, 2, two));
    EXPECT_EQ(80, read(&data, 8)[7]);
    EXPECT_TRUE(renderer.gpu_buffer_bind(&data));
    EXPECT_TRUE(renderer.gpu_buffer_unbind(&data));
    EXPECT_TRUE(renderer.gpu_buffer_free(&data));
    context.check();
  }
}

TEST_P(GpuBuffersGlTest, SmallUniformBufferIsPaddedWithZeros) {
  if (!renderer.gpu_buffer_alloc(nullptr, &buffer, GPU_BUFFER_UNIFORM, BUFFER_USAGE_STATIC_DRAW, 4,
                                 eight.data())) {
    GTEST_SKIP() << "no uniform buffers";
  }
  EXPECT_EQ(static_cast<unsigned int>(std::max(4, buffer.offset_alignment)), buffer.size);
  const std::vector<unsigned char> bytes = read(&buffer, buffer.size);
  EXPECT_EQ(4, bytes[3]);
  for (std::size_t i = 4; i < bytes.size(); ++i) EXPECT_EQ(0, bytes[i]);
}

TEST_P(GpuBuffersGlTest, MappedBytesAreWrittenAndRead) {
  ASSERT_TRUE(renderer.gpu_buffer_alloc(nullptr, &buffer, GPU_BUFFER_ARRAY,
                                        BUFFER_USAGE_DYNAMIC_DRAW, 8, eight.data()));
  auto* bytes = static_cast<unsigned char*>(renderer.gpu_buffer_map(&buffer, "GL_READ_WRITE"));
  ASSERT_NE(nullptr, bytes);
  EXPECT_EQ(3, bytes[2]);
  bytes[2] = 33;
  EXPECT_TRUE(renderer.gpu_buffer_unmap(&buffer));
  EXPECT_FALSE(renderer.gpu_buffer_unmap(&buffer)) << "no error, just false";
  EXPECT_EQ(33, read(&buffer, 8)[2]);
  if (!renderer.gl().glMapBufferRange) return;
  bytes = static_cast<unsigned char*>(
      renderer.gpu_buffer_map_range(&buffer, 4, 4, "GL_MAP_WRITE_BIT | GL_MAP_FLUSH_EXPLICIT_BIT"));
  ASSERT_NE(nullptr, bytes);
  bytes[0] = 55;
  EXPECT_TRUE(renderer.gpu_buffer_flush_range(&buffer, 0, 1));
  EXPECT_TRUE(renderer.gpu_buffer_unmap(&buffer));
  EXPECT_EQ(55, read(&buffer, 8)[4]);
}

TEST_P(GpuBuffersGlTest, BytesAreCopiedBetweenBuffers) {
  if (!renderer.gl().glCopyBufferSubData) GTEST_SKIP() << "no copies between buffers";
  ASSERT_TRUE(renderer.gpu_buffer_alloc(nullptr, &buffer, GPU_BUFFER_ARRAY,
                                        BUFFER_USAGE_STATIC_DRAW, 8, eight.data()));
  GpuBufferData other;
  ASSERT_TRUE(renderer.gpu_buffer_alloc(nullptr, &other, GPU_BUFFER_ELEMENT_ARRAY,
                                        BUFFER_USAGE_STATIC_DRAW, 4, nullptr));
  EXPECT_TRUE(renderer.gpu_buffer_copy(&other, &buffer, 2, 0, 4));
  EXPECT_EQ(std::vector<unsigned char>({3, 4, 5, 6}), read(&other, 4));
  renderer.gpu_buffer_free(&other);
}

TEST_P(GpuBuffersGlTest, ImmutableStorageIsMappedAsItsFlagsSay) {
  if (!renderer.gl().glBufferStorage) GTEST_SKIP() << "no immutable storage";
  buffer.set_state("immutable_storage map_read map_write map_persistent map_coherent", true);
  ASSERT_TRUE(renderer.gpu_buffer_alloc(nullptr, &buffer, GPU_BUFFER_ARRAY,
                                        BUFFER_USAGE_STATIC_DRAW, 8, eight.data()));
  auto* bytes = static_cast<unsigned char*>(renderer.gpu_buffer_map_range(
      &buffer, 0, 8, "GL_MAP_READ_BIT GL_MAP_WRITE_BIT GL_MAP_PERSISTENT_BIT GL_MAP_COHERENT_BIT"));
  ASSERT_NE(nullptr, bytes);
  EXPECT_EQ(8, bytes[7]);
  EXPECT_TRUE(renderer.gpu_buffer_unmap(&buffer));
}

TEST_P(GpuBuffersGlTest, BindingPoints) {
  if (!renderer.gpu_buffer_alloc(nullptr, &buffer, GPU_BUFFER_UNIFORM, BUFFER_USAGE_STATIC_DRAW,
                                 1024, nullptr)) {
    GTEST_SKIP() << "no uniform buffers";
  }
  EXPECT_TRUE(renderer.gpu_buffer_bind_base(&buffer, 1));
  EXPECT_TRUE(renderer.gpu_buffer_bind_range(
      &buffer, 2, static_cast<unsigned int>(buffer.offset_alignment), 16));
  EXPECT_FALSE(renderer.gpu_buffer_bind_base(&buffer, -1));
}

TEST_P(GpuBuffersGlTest, AtomicCounters) {
  if (!renderer.gpu_buffer_alloc_a(nullptr, &buffer, BUFFER_USAGE_DYNAMIC_DRAW, 4)) {
    GTEST_SKIP() << "no atomic counters";
  }
  unsigned int value = 1;
  EXPECT_TRUE(renderer.gpu_buffer_get_atomic_counter(&buffer, 3, &value));
  EXPECT_EQ(0u, value);
  EXPECT_TRUE(renderer.gpu_buffer_set_atomic_counter(&buffer, 3, 99));
  EXPECT_TRUE(renderer.gpu_buffer_get_atomic_counter(&buffer, 3, &value));
  EXPECT_EQ(99u, value);
}

TEST_P(GpuBuffersGlTest, RawVertexAndStorageBuffers) {
  const unsigned int id = renderer.vertex_buffer_create(8, BUFFER_USAGE_STREAM_DRAW);
  ASSERT_NE(0u, id);
  EXPECT_TRUE(renderer.vertex_buffer_set_data(id, 0, 8, eight.data()));
  EXPECT_FALSE(renderer.vertex_buffer_set_data(id, 4, 8, eight.data()));
  void* mapped = renderer.vertex_buffer_map(id);
  EXPECT_NE(nullptr, mapped);
  EXPECT_TRUE(renderer.vertex_buffer_unmap(id));
  EXPECT_TRUE(renderer.vertex_buffer_destroy(id));
  const unsigned int storage = renderer.storage_buffer_create(16, BUFFER_USAGE_DYNAMIC_DRAW);
  if (storage == 0) return;
  EXPECT_NE(nullptr, renderer.storage_buffer_map(storage, DATA_ACCESS_WRITE_ONLY));
  EXPECT_TRUE(renderer.storage_buffer_unmap(storage));
  EXPECT_NE(nullptr, renderer.storage_buffer_map_range(storage, 0, 8, RENDERER_MAP_READ));
  EXPECT_TRUE(renderer.storage_buffer_unmap(storage));
  EXPECT_TRUE(renderer.storage_buffer_bind(storage));
  EXPECT_TRUE(renderer.storage_buffer_bind_base(storage, 0));
  EXPECT_TRUE(renderer.storage_buffer_destroy(storage));
}
