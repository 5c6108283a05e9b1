#include "render/opengl/fake_gl_fixture.h"

using namespace orv;
using namespace orv::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class RawBuffersTest : public FakeGlTest {};

}  // namespace

TEST_F(RawBuffersTest, VertexBufferIsCreatedFilledMappedAndDestroyed) {
  start();
  const unsigned int id = renderer.vertex_buffer_create(16, BUFFER_USAGE_STREAM_DRAW);
  const std::string number = std::to_string(id);
  EXPECT_THAT(take(),
              ElementsAre("glGenBuffers(1, ptr)", "glBindBuffer(GL_ARRAY_BUFFER, " + number + ")",
                          "glBufferData(GL_ARRAY_BUFFER, 16, null, GL_STREAM_DRAW)",
                          "glBindBuffer(GL_ARRAY_BUFFER, 0)"));
  const unsigned char bytes[] = {1, 2, 3, 4};
  EXPECT_TRUE(renderer.vertex_buffer_set_data(id, 8, 4, bytes));
  EXPECT_EQ(3, gl.buffer_bytes(id)[10]);
  gl.clear();
  void* mapped = renderer.vertex_buffer_map(id);
  ASSERT_NE(nullptr, mapped);
  EXPECT_TRUE(gl.called("glMapBuffer(GL_ARRAY_BUFFER, GL_WRITE_ONLY)"));
  static_cast<unsigned char*>(mapped)[0] = 9;
  EXPECT_TRUE(renderer.vertex_buffer_unmap(id));
  EXPECT_EQ(9, gl.buffer_bytes(id)[0]);
  EXPECT_TRUE(renderer.vertex_buffer_destroy(id));
  EXPECT_EQ(0u, gl.live_ids().count(id));
}

TEST_F(RawBuffersTest, VertexUsageOptionOverridesTheUsage) {
  start();
  renderer.set_vertex_buffer_usage_options(BUFFER_USAGE_DYNAMIC_READ, 0);
  const unsigned int id = renderer.vertex_buffer_create(16, BUFFER_USAGE_STREAM_DRAW);
  EXPECT_TRUE(gl.called("glBufferData(GL_ARRAY_BUFFER, 16, null, GL_DYNAMIC_READ)"));
  renderer.set_vertex_buffer_usage_options(0, 0);
  const unsigned int other = renderer.vertex_buffer_create(16, BUFFER_USAGE_STREAM_DRAW);
  EXPECT_TRUE(gl.called("glBufferData(GL_ARRAY_BUFFER, 16, null, GL_STREAM_DRAW)"));
  renderer.vertex_buffer_destroy(id);
  renderer.vertex_buffer_destroy(other);
}

TEST_F(RawBuffersTest, DataPastTheEndOfAVertexBufferIsRefused) {
  start();
  const unsigned int id = renderer.vertex_buffer_create(16, BUFFER_USAGE_STATIC_DRAW);
  const unsigned char bytes[16] = {};
  EXPECT_FALSE(renderer.vertex_buffer_set_data(id, 1, 16, bytes));
  EXPECT_FALSE(renderer.vertex_buffer_set_data(id, 0xFFFFFFFFu, 2, bytes));
  EXPECT_FALSE(renderer.vertex_buffer_set_data(id, 0, 4, nullptr));
  EXPECT_FALSE(renderer.vertex_buffer_set_data(0, 0, 4, bytes));
  EXPECT_TRUE(renderer.vertex_buffer_set_data(id, 0, 16, bytes));
  renderer.vertex_buffer_destroy(id);
}

TEST_F(RawBuffersTest, StorageBufferIsCreatedMappedBoundAndDestroyed) {
  start();
  renderer.set_storage_buffer_usage_option(BUFFER_USAGE_DYNAMIC_COPY);
  const unsigned int id = renderer.storage_buffer_create(32, BUFFER_USAGE_STATIC_DRAW);
  const std::string number = std::to_string(id);
  EXPECT_TRUE(gl.called("glBufferData(GL_SHADER_STORAGE_BUFFER, 32, null, GL_DYNAMIC_COPY)"));
  gl.clear();
  EXPECT_NE(nullptr, renderer.storage_buffer_map(id, DATA_ACCESS_READ_ONLY));
  EXPECT_TRUE(gl.called("glMapBuffer(GL_SHADER_STORAGE_BUFFER, GL_READ_ONLY)"));
  EXPECT_TRUE(renderer.storage_buffer_unmap(id));
  EXPECT_NE(nullptr, renderer.storage_buffer_map_range(id, 8, 16, RENDERER_MAP_WRITE));
  EXPECT_TRUE(gl.called("glMapBufferRange(GL_SHADER_STORAGE_BUFFER, 8, 16, 0x2)"));
  EXPECT_TRUE(renderer.storage_buffer_unmap(id));
  gl.clear();
  EXPECT_TRUE(renderer.storage_buffer_bind(id));
  EXPECT_TRUE(renderer.storage_buffer_bind_base(id, 3));
  EXPECT_THAT(take(), ElementsAre("glBindBuffer(GL_SHADER_STORAGE_BUFFER, " + number + ")",
                                  "glBindBufferBase(GL_SHADER_STORAGE_BUFFER, 3, " + number + ")"));
  EXPECT_TRUE(renderer.storage_buffer_destroy(id));
}

TEST_F(RawBuffersTest, IdZeroIsFalse) {
  start();
  EXPECT_FALSE(renderer.vertex_buffer_destroy(0));
  EXPECT_EQ(nullptr, renderer.vertex_buffer_map(0));
  EXPECT_FALSE(renderer.vertex_buffer_unmap(0));
  EXPECT_FALSE(renderer.storage_buffer_destroy(0));
  EXPECT_EQ(nullptr, renderer.storage_buffer_map(0, DATA_ACCESS_READ_ONLY));
  EXPECT_EQ(nullptr, renderer.storage_buffer_map_range(0, 0, 4, 1));
  EXPECT_FALSE(renderer.storage_buffer_unmap(0));
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(RawBuffersTest, StorageBuffersAreFalseWhereAbsent) {
  gl.set_extensions({});
  start(2, 1, false);
  EXPECT_EQ(0u, renderer.storage_buffer_create(32, BUFFER_USAGE_STATIC_DRAW));
  EXPECT_FALSE(renderer.storage_buffer_bind(1));
  EXPECT_FALSE(renderer.storage_buffer_bind_base(1, 0));
  EXPECT_EQ(nullptr, renderer.storage_buffer_map(1, DATA_ACCESS_READ_ONLY));
  EXPECT_FALSE(renderer.storage_buffer_unmap(1));
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(RawBuffersTest, StoppedRendererHasNoBuffers) {
  start();
  renderer.stop();
  const unsigned char bytes[4] = {};
  EXPECT_EQ(0u, renderer.vertex_buffer_create(16, BUFFER_USAGE_STATIC_DRAW));
  EXPECT_FALSE(renderer.vertex_buffer_set_data(1, 0, 4, bytes));
  EXPECT_EQ(nullptr, renderer.vertex_buffer_map(1));
  EXPECT_FALSE(renderer.vertex_buffer_unmap(1));
  EXPECT_FALSE(renderer.vertex_buffer_destroy(1));
}
