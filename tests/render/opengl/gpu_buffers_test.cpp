#include <orv/gpu/gpu_buffer_data.h>
#include <orv/gpu/gpu_program_data.h>

#include <cstring>

#include "render/opengl/fake_gl_fixture.h"

using namespace orv;
using namespace orv::test;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class GpuBuffersTest : public FakeGlTest {
 protected:
  bool alloc(GPU_BUFFER_TYPE type, unsigned int size, const void* data = nullptr) {
    return renderer.gpu_buffer_alloc(nullptr, &buffer, type, BUFFER_USAGE_STATIC_DRAW, size, data);
  }
  const std::vector<unsigned char>& bytes() { return gl.buffer_bytes(buffer.buffer_id); }
  std::string id() { return std::to_string(buffer.buffer_id); }

  GpuBufferData buffer;
};

constexpr unsigned char EIGHT[8] = {1, 2, 3, 4, 5, 6, 7, 8};

}  // namespace

// ---- creating ----

TEST_F(GpuBuffersTest, AllocTellsTheRecordAndLeavesNothingBound) {
  start();
  ASSERT_TRUE(renderer.gpu_buffer_alloc(nullptr, &buffer, GPU_BUFFER_ARRAY,
                                        BUFFER_USAGE_DYNAMIC_DRAW, 8, EIGHT));
  EXPECT_THAT(take(),
              ElementsAre("glGenBuffers(1, ptr)", "glBindBuffer(GL_ARRAY_BUFFER, " + id() + ")",
                          "glBufferData(GL_ARRAY_BUFFER, 8, ptr, GL_DYNAMIC_DRAW)",
                          "glBindBuffer(GL_ARRAY_BUFFER, 0)"));
  EXPECT_EQ(8u, buffer.size);
  EXPECT_EQ(GPU_BUFFER_ARRAY, buffer.type);
  EXPECT_EQ(BUFFER_USAGE_DYNAMIC_DRAW, buffer.usage);
  EXPECT_EQ(renderer.getid(), buffer.renderer_id);
  EXPECT_FALSE(buffer.bound);
  EXPECT_EQ(4, bytes()[3]);
  EXPECT_TRUE(renderer.gpu_buffer_free(&buffer));
}

TEST_F(GpuBuffersTest, AllocatedBufferIsTrueAtOnceAndNullIsFalse) {
  start();
  ASSERT_TRUE(alloc(GPU_BUFFER_ARRAY, 8));
  gl.clear();
  EXPECT_TRUE(alloc(GPU_BUFFER_UNIFORM, 800));
  EXPECT_FALSE(renderer.gpu_buffer_alloc(nullptr, nullptr, GPU_BUFFER_ARRAY,
                                         BUFFER_USAGE_STATIC_DRAW, 8, nullptr));
  EXPECT_THAT(take(), IsEmpty());
  EXPECT_EQ(8u, buffer.size);
  renderer.gpu_buffer_free(&buffer);
}

TEST_F(GpuBuffersTest, UnknownTypeIsRefused) {
  start();
  EXPECT_FALSE(alloc(static_cast<GPU_BUFFER_TYPE>(7), 8));
  EXPECT_FALSE(alloc(static_cast<GPU_BUFFER_TYPE>(-1), 8));
  EXPECT_EQ(0u, buffer.buffer_id);
  EXPECT_THAT(take(), IsEmpty());
}

TEST_F(GpuBuffersTest, UsageOptionsOverrideByType) {
  struct Row {
    GPU_BUFFER_TYPE type;
    unsigned int option;
    const char* usage;
  };
  start();
  for (const unsigned int which : {0u, 1u, 2u, 3u, 4u, 5u, 6u}) {
    EXPECT_TRUE(renderer.gpu_buffer_set_usage_option(which, which + 2));
    EXPECT_EQ(which + 2, renderer.gpu_buffer_get_usage_option(which));
  }
  for (const Row& row : {Row{GPU_BUFFER_ARRAY, 0, "GL_STATIC_READ"},
                         Row{GPU_BUFFER_ELEMENT_ARRAY, 1, "GL_STATIC_COPY"},
                         Row{GPU_BUFFER_SHADER_STORAGE, 4, "GL_DYNAMIC_COPY"},
                         Row{GPU_BUFFER_UNIFORM, 0, "GL_STATIC_DRAW"},
                         Row{GPU_BUFFER_ATOMIC_COUNTER, 0, "GL_STATIC_DRAW"},
                         Row{GPU_BUFFER_TEXTURE, 0, "GL_STATIC_DRAW"}}) {
    GpuBufferData data;
    gl.clear();
    ASSERT_TRUE(renderer.gpu_buffer_alloc(nullptr, &data, row.type, BUFFER_USAGE_STATIC_DRAW, 4096,
                                          nullptr));
    const Calls calls = gl.calls_of({"glBufferData"});
    ASSERT_EQ(1u, calls.size());
    EXPECT_NE(std::string::npos, calls[0].find(row.usage)) << calls[0];
    renderer.gpu_buffer_free(&data);
  }
}

TEST_F(GpuBuffersTest, UnknownUsageOptionIsFalse) {
  start();
  EXPECT_FALSE(renderer.gpu_buffer_set_usage_option(7, 1));
  EXPECT_EQ(0u, renderer.gpu_buffer_get_usage_option(7));
}

TEST_F(GpuBuffersTest, RawOptionsAndBufferOptionsAreTheSame) {
  start();
  renderer.set_vertex_buffer_usage_options(4, 7);
  renderer.set_storage_buffer_usage_option(9);
  EXPECT_EQ(4u, renderer.gpu_buffer_get_usage_option(0));
  EXPECT_EQ(7u, renderer.gpu_buffer_get_usage_option(1));
  EXPECT_EQ(9u, renderer.gpu_buffer_get_usage_option(4));
}

TEST_F(GpuBuffersTest, SmallUniformBufferGrowsToTheAlignmentWithoutReadingPastTheData) {
  gl.set_integer(GL_UNIFORM_BUFFER_OFFSET_ALIGNMENT, 256);
  start();
  const auto four = std::make_unique<unsigned char[]>(4);
  std::memcpy(four.get(), EIGHT, 4);
  ASSERT_TRUE(alloc(GPU_BUFFER_UNIFORM, 4, four.get()));
  EXPECT_EQ(256u, buffer.size);
  EXPECT_EQ(256, buffer.offset_alignment);
  ASSERT_EQ(256u, bytes().size());
  EXPECT_EQ(4, bytes()[3]);
  EXPECT_EQ(0, bytes()[4]);
  renderer.gpu_buffer_free(&buffer);
}

TEST_F(GpuBuffersTest, AlignmentIsReadByType) {
  gl.set_integer(GL_UNIFORM_BUFFER_OFFSET_ALIGNMENT, 256);
  gl.set_integer(GL_SHADER_STORAGE_BUFFER_OFFSET_ALIGNMENT, 32);
  gl.set_integer(GL_TEXTURE_BUFFER_OFFSET_ALIGNMENT, 16);
  start();
  struct Row {
    GPU_BUFFER_TYPE type;
    int alignment;
  };
  for (const Row& row :
       {Row{GPU_BUFFER_UNIFORM, 256}, Row{GPU_BUFFER_SHADER_STORAGE, 32},
        Row{GPU_BUFFER_TEXTURE, 16}, Row{GPU_BUFFER_ARRAY, 0}, Row{GPU_BUFFER_ATOMIC_COUNTER, 0}}) {
    GpuBufferData data;
    ASSERT_TRUE(
        renderer.gpu_buffer_alloc(nullptr, &data, row.type, BUFFER_USAGE_STATIC_DRAW, 8, nullptr));
    EXPECT_EQ(row.alignment, data.offset_alignment) << row.type;
    EXPECT_EQ(static_cast<unsigned int>(std::max(8, row.alignment)), data.size) << row.type;
    renderer.gpu_buffer_free(&data);
  }
}

TEST_F(GpuBuffersTest, ImmutableStorageFlags) {
  struct Row {
    const char* states;
    const char* flags;
  };
  start();
  for (const Row& row : {Row{"dynamic_storage map_write", "0x102"}, Row{"map_read", "0x1"},
                         Row{"map_read map_write map_persistent", "0x43"},
                         Row{"map_write map_coherent", "0x282"}, Row{"client_storage", "0x0"}}) {
    GpuBufferData data;
    data.set_state("dynamic_storage map_write", false);
    data.set_state("immutable_storage", true);
    data.set_state(row.states, true);
    gl.clear();
    ASSERT_TRUE(renderer.gpu_buffer_alloc(nullptr, &data, GPU_BUFFER_ARRAY,
                                          BUFFER_USAGE_STATIC_DRAW, 8, nullptr));
    EXPECT_THAT(
        gl.calls_of({"glBufferStorage", "glBufferData"}),
        ElementsAre(std::string("glBufferStorage(GL_ARRAY_BUFFER, 8, null, ") + row.flags + ")"))
        << row.states;
    renderer.gpu_buffer_free(&data);
  }
}

TEST_F(GpuBuffersTest, ImmutableStorageFallsBackWhereAbsent) {
  gl.remove_function("glBufferStorage");
  start();
  buffer.set_state("immutable_storage", true);
  ASSERT_TRUE(alloc(GPU_BUFFER_ARRAY, 8));
  EXPECT_TRUE(gl.called("glBufferData(GL_ARRAY_BUFFER, 8, null, GL_STATIC_DRAW)"));
  renderer.gpu_buffer_free(&buffer);
}

TEST_F(GpuBuffersTest, FreeDeletesOnceAndIsFalseThen) {
  start();
  ASSERT_TRUE(alloc(GPU_BUFFER_ARRAY, 8));
  const unsigned int old = buffer.buffer_id;
  EXPECT_TRUE(renderer.gpu_buffer_free(&buffer));
  EXPECT_EQ(0u, gl.live_ids().count(old));
  EXPECT_FALSE(buffer.is_allocated());
  EXPECT_FALSE(renderer.gpu_buffer_free(&buffer));
  EXPECT_FALSE(renderer.gpu_buffer_free(nullptr));
}

TEST_F(GpuBuffersTest, UniformBufferTakesTheSizeOfItsBlock) {
  start();
  GpuProgramData program;
  program.program_id = 1;
  program.linked = true;
  gl.uniform_blocks["Lights"] = 0;
  gl.uniform_block_size = 48;
  EXPECT_TRUE(renderer.gpu_buffer_alloc_uniform_buffer(nullptr, &buffer, BUFFER_USAGE_STATIC_DRAW,
                                                       &program, "Lights", nullptr));
  EXPECT_EQ(48u, buffer.size);
  EXPECT_EQ(GPU_BUFFER_UNIFORM, buffer.type);
  EXPECT_EQ(0, buffer.uniform_block_index);
  GpuBufferData other;
  EXPECT_FALSE(renderer.gpu_buffer_alloc_uniform_buffer(nullptr, &other, BUFFER_USAGE_STATIC_DRAW,
                                                        &program, "Unknown", nullptr));
  EXPECT_FALSE(renderer.gpu_buffer_alloc_uniform_buffer_v2(
      nullptr, &other, BUFFER_USAGE_STATIC_DRAW, &program, -1, nullptr));
  EXPECT_FALSE(renderer.gpu_buffer_alloc_uniform_buffer_v2(
      nullptr, &other, BUFFER_USAGE_STATIC_DRAW, &program, 5, nullptr));
  EXPECT_FALSE(renderer.gpu_buffer_alloc_uniform_buffer(nullptr, &other, BUFFER_USAGE_STATIC_DRAW,
                                                        nullptr, "Lights", nullptr));
  EXPECT_FALSE(other.is_allocated());
  renderer.gpu_buffer_free(&buffer);
}

TEST_F(GpuBuffersTest, AtomicCountersStartAtZeroAndAreWrittenOneByOne) {
  start();
  ASSERT_TRUE(renderer.gpu_buffer_alloc_a(nullptr, &buffer, BUFFER_USAGE_DYNAMIC_DRAW, 3));
  EXPECT_EQ(GPU_BUFFER_ATOMIC_COUNTER, buffer.type);
  EXPECT_EQ(std::vector<unsigned char>(12), bytes());
  EXPECT_TRUE(renderer.gpu_buffer_set_atomic_counter(&buffer, 2, 77));
  unsigned int value = 0;
  EXPECT_TRUE(renderer.gpu_buffer_get_atomic_counter(&buffer, 2, &value));
  EXPECT_EQ(77u, value);
  EXPECT_FALSE(renderer.gpu_buffer_set_atomic_counter(&buffer, 3, 1));
  EXPECT_FALSE(renderer.gpu_buffer_get_atomic_counter(&buffer, 0x40000000u, &value));
  EXPECT_FALSE(renderer.gpu_buffer_get_atomic_counter(&buffer, 0, nullptr));
  GpuBufferData other;
  EXPECT_FALSE(renderer.gpu_buffer_alloc_a(nullptr, &other, BUFFER_USAGE_DYNAMIC_DRAW, 0));
  EXPECT_FALSE(
      renderer.gpu_buffer_alloc_a(nullptr, &other, BUFFER_USAGE_DYNAMIC_DRAW, 0xFFFFFFFFu));
  renderer.gpu_buffer_free(&buffer);
}

// ---- reading and writing ----

TEST_F(GpuBuffersTest, SubDataIsWrittenAndReadInsideTheBuffer) {
  start();
  ASSERT_TRUE(alloc(GPU_BUFFER_ARRAY, 8, EIGHT));
  const unsigned char two[2] = {50, 60};
  EXPECT_TRUE(renderer.gpu_buffer_sub_data_write(&buffer, 6, 2, two));
  EXPECT_EQ(60, bytes()[7]);
  unsigned char back[4] = {};
  EXPECT_TRUE(renderer.gpu_buffer_sub_data_read(&buffer, 4, 4, back));
  EXPECT_EQ(50, back[2]);
  EXPECT_FALSE(renderer.gpu_buffer_sub_data_write(&buffer, 7, 2, two));
  EXPECT_FALSE(renderer.gpu_buffer_sub_data_write(&buffer, 0xFFFFFFFFu, 2, two));
  EXPECT_FALSE(renderer.gpu_buffer_sub_data_read(&buffer, 8, 1, back));
  EXPECT_FALSE(renderer.gpu_buffer_sub_data_write(&buffer, 0, 2, nullptr));
  EXPECT_FALSE(renderer.gpu_buffer_sub_data_read(&buffer, 0, 2, nullptr));
  EXPECT_FALSE(renderer.gpu_buffer_sub_data_write(nullptr, 0, 2, two));
  renderer.gpu_buffer_free(&buffer);
  EXPECT_FALSE(renderer.gpu_buffer_sub_data_write(&buffer, 0, 2, two));
}

TEST_F(GpuBuffersTest, OperationsBindTheirBufferAndRestoreWhatWasBound) {
  start();
  ASSERT_TRUE(alloc(GPU_BUFFER_ARRAY, 8, EIGHT));
  GpuBufferData other;
  ASSERT_TRUE(renderer.gpu_buffer_alloc(nullptr, &other, GPU_BUFFER_ARRAY, BUFFER_USAGE_STATIC_DRAW,
                                        8, nullptr));
  renderer.gpu_buffer_bind(&other);
  gl.clear();
  unsigned char back[8];
  EXPECT_TRUE(renderer.gpu_buffer_sub_data_read(&buffer, 0, 8, back));
  const std::string other_id = std::to_string(other.buffer_id);
  EXPECT_THAT(take_changes(), ElementsAre("glBindBuffer(GL_ARRAY_BUFFER, " + id() + ")",
                                          "glBindBuffer(GL_ARRAY_BUFFER, " + other_id + ")"));
  EXPECT_TRUE(renderer.gpu_buffer_sub_data_read(&other, 0, 8, back));
  EXPECT_THAT(take_changes(), IsEmpty()) << "already bound";
  renderer.gpu_buffer_free(&buffer);
  renderer.gpu_buffer_free(&other);
}

TEST_F(GpuBuffersTest, CopyStaysInsideBothBuffers) {
  start();
  ASSERT_TRUE(alloc(GPU_BUFFER_ARRAY, 8, EIGHT));
  GpuBufferData target;
  ASSERT_TRUE(renderer.gpu_buffer_alloc(nullptr, &target, GPU_BUFFER_ARRAY,
                                        BUFFER_USAGE_STATIC_DRAW, 4, nullptr));
  EXPECT_TRUE(renderer.gpu_buffer_copy(&target, &buffer, 4, 1, 3));
  EXPECT_EQ(std::vector<unsigned char>({0, 5, 6, 7}), gl.buffer_bytes(target.buffer_id));
  EXPECT_FALSE(renderer.gpu_buffer_copy(&target, &buffer, 0, 2, 3));
  EXPECT_FALSE(renderer.gpu_buffer_copy(&target, &buffer, 6, 0, 3));
  EXPECT_FALSE(renderer.gpu_buffer_copy(&buffer, &buffer, 0, 2, 4)) << "overlap";
  EXPECT_TRUE(renderer.gpu_buffer_copy(&buffer, &buffer, 0, 4, 4));
  EXPECT_EQ(1, bytes()[4]);
  EXPECT_FALSE(renderer.gpu_buffer_copy(nullptr, &buffer, 0, 0, 1));
  EXPECT_FALSE(renderer.gpu_buffer_copy(&target, nullptr, 0, 0, 1));
  renderer.gpu_buffer_free(&buffer);
  renderer.gpu_buffer_free(&target);
}

// ---- binding ----

TEST_F(GpuBuffersTest, BindAndUnbindUseThePresentType) {
  start();
  ASSERT_TRUE(alloc(GPU_BUFFER_SHADER_STORAGE, 64));
  gl.clear();
  EXPECT_TRUE(renderer.gpu_buffer_bind(&buffer));
  EXPECT_TRUE(buffer.bound);
  EXPECT_TRUE(renderer.gpu_buffer_unbind(&buffer));
  EXPECT_FALSE(buffer.bound);
  buffer.type = GPU_BUFFER_ARRAY;
  renderer.gpu_buffer_bind(&buffer);
  EXPECT_THAT(take(), ElementsAre("glBindBuffer(GL_SHADER_STORAGE_BUFFER, " + id() + ")",
                                  "glBindBuffer(GL_SHADER_STORAGE_BUFFER, 0)",
                                  "glBindBuffer(GL_ARRAY_BUFFER, " + id() + ")"));
  EXPECT_FALSE(renderer.gpu_buffer_bind(nullptr));
  EXPECT_FALSE(renderer.gpu_buffer_unbind(nullptr));
  renderer.gpu_buffer_free(&buffer);
  EXPECT_FALSE(renderer.gpu_buffer_bind(&buffer));
}

TEST_F(GpuBuffersTest, BindingPointsAreStored) {
  start();
  ASSERT_TRUE(alloc(GPU_BUFFER_UNIFORM, 512));
  gl.clear();
  EXPECT_FALSE(renderer.gpu_buffer_bind_base(&buffer, -1));
  EXPECT_FALSE(renderer.gpu_buffer_bind_range(&buffer, -1, 0, 16));
  EXPECT_THAT(take(), IsEmpty());
  EXPECT_EQ(-1, buffer.binding_point);
  EXPECT_TRUE(renderer.gpu_buffer_bind_base(&buffer, 2));
  EXPECT_EQ(2, buffer.binding_point);
  EXPECT_TRUE(buffer.bound);
  EXPECT_TRUE(renderer.gpu_buffer_bind_range(&buffer, 3, 256, 128));
  EXPECT_EQ(3, buffer.binding_point);
  EXPECT_THAT(take(),
              ElementsAre("glBindBufferBase(GL_UNIFORM_BUFFER, 2, " + id() + ")",
                          "glBindBufferRange(GL_UNIFORM_BUFFER, 3, " + id() + ", 256, 128)"));
  EXPECT_FALSE(renderer.gpu_buffer_bind_range(&buffer, 3, 512, 1));
  EXPECT_FALSE(renderer.gpu_buffer_bind_range(&buffer, 3, 0, 0));
  renderer.gpu_buffer_free(&buffer);
  ASSERT_TRUE(alloc(GPU_BUFFER_ARRAY, 16));
  EXPECT_FALSE(renderer.gpu_buffer_bind_base(&buffer, 0)) << "vertex buffers have no points";
  renderer.gpu_buffer_free(&buffer);
}

// ---- mapping ----

TEST_F(GpuBuffersTest, MapFindsTheAccessInTheText) {
  start();
  ASSERT_TRUE(alloc(GPU_BUFFER_ARRAY, 8, EIGHT));
  for (const char* access : {"GL_WRITE_ONLY", "GL_READ_WRITE", "GL_READ_ONLY"}) {
    gl.clear();
    void* mapped = renderer.gpu_buffer_map(&buffer, access);
    ASSERT_NE(nullptr, mapped) << access;
    EXPECT_EQ(mapped, buffer.mapped_ptr);
    EXPECT_EQ(8u, buffer.get_mapped_size());
    EXPECT_TRUE(gl.called(std::string("glMapBuffer(GL_ARRAY_BUFFER, ") + access + ")"));
    EXPECT_EQ(mapped, renderer.gpu_buffer_map(&buffer, access)) << "mapped already";
    EXPECT_EQ(1, gl.count("glMapBuffer"));
    EXPECT_TRUE(renderer.gpu_buffer_unmap(&buffer));
    EXPECT_EQ(nullptr, buffer.mapped_ptr);
  }
  EXPECT_EQ(nullptr, renderer.gpu_buffer_map(&buffer, nullptr));
  EXPECT_EQ(nullptr, renderer.gpu_buffer_map(&buffer, "write"));
  EXPECT_EQ(nullptr, renderer.gpu_buffer_map(nullptr, "GL_READ_ONLY"));
  renderer.gpu_buffer_free(&buffer);
}

TEST_F(GpuBuffersTest, MapRangePassesItsFlagsAndBoundsTheAccess) {
  start();
  ASSERT_TRUE(alloc(GPU_BUFFER_ARRAY, 8, EIGHT));
  gl.clear();
  void* mapped = renderer.gpu_buffer_map_range(&buffer, 2, 4, "GL_MAP_READ_BIT GL_MAP_WRITE_BIT");
  ASSERT_NE(nullptr, mapped);
  EXPECT_TRUE(gl.called("glMapBufferRange(GL_ARRAY_BUFFER, 2, 4, 0x3)"));
  EXPECT_EQ(3, *static_cast<unsigned char*>(mapped));
  EXPECT_EQ(4u, buffer.get_mapped_size());
  EXPECT_EQ(nullptr, renderer.gpu_buffer_map(&buffer, "GL_READ_ONLY")) << "part of it is mapped";
  EXPECT_TRUE(renderer.gpu_buffer_unmap(&buffer));
  EXPECT_EQ(nullptr, renderer.gpu_buffer_map_range(&buffer, 5, 4, "GL_MAP_READ_BIT"));
  EXPECT_EQ(nullptr, renderer.gpu_buffer_map_range(&buffer, 0, 0, "GL_MAP_READ_BIT"));
  gl.clear();
  renderer.gpu_buffer_map_range(&buffer, 0, 4, nullptr);
  EXPECT_TRUE(gl.called("glMapBufferRange(GL_ARRAY_BUFFER, 0, 4, 0x0)")) << "null flags give 0";
  renderer.gpu_buffer_unmap(&buffer);
  renderer.gpu_buffer_free(&buffer);
}

TEST_F(GpuBuffersTest, FlushForgetsThePointerAndUnmapStillWorks) {
  start();
  ASSERT_TRUE(alloc(GPU_BUFFER_ARRAY, 8, EIGHT));
  ASSERT_NE(nullptr, renderer.gpu_buffer_map_range(&buffer, 0, 8,
                                                   "GL_MAP_WRITE_BIT GL_MAP_FLUSH_EXPLICIT_BIT"));
  gl.clear();
  EXPECT_TRUE(renderer.gpu_buffer_flush_range(&buffer, 2, 4));
  EXPECT_EQ(nullptr, buffer.mapped_ptr);
  EXPECT_TRUE(gl.called("glFlushMappedBufferRange(GL_ARRAY_BUFFER, 2, 4)"));
  EXPECT_TRUE(renderer.gpu_buffer_unmap(&buffer));
  EXPECT_TRUE(gl.called("glUnmapBuffer(GL_ARRAY_BUFFER)"));
  EXPECT_FALSE(renderer.gpu_buffer_flush_range(&buffer, 7, 2));
  EXPECT_FALSE(renderer.gpu_buffer_flush_range(nullptr, 0, 1));
  renderer.gpu_buffer_free(&buffer);
}

TEST_F(GpuBuffersTest, BufferThatIsNotMappedIsNotUnmapped) {
  start();
  ASSERT_TRUE(alloc(GPU_BUFFER_ARRAY, 8));
  gl.clear();
  EXPECT_FALSE(renderer.gpu_buffer_unmap(&buffer));
  EXPECT_EQ(0, gl.count("glUnmapBuffer"));
  EXPECT_FALSE(renderer.gpu_buffer_unmap(nullptr));
  renderer.gpu_buffer_free(&buffer);
}

TEST_F(GpuBuffersTest, RefusedMappingLeavesTheRecordUnmapped) {
  start();
  ASSERT_TRUE(alloc(GPU_BUFFER_ARRAY, 8));
  gl.map_result = false;
  EXPECT_EQ(nullptr, renderer.gpu_buffer_map(&buffer, "GL_READ_ONLY"));
  EXPECT_EQ(nullptr, renderer.gpu_buffer_map_range(&buffer, 0, 4, "GL_MAP_READ_BIT"));
  EXPECT_EQ(nullptr, buffer.mapped_ptr);
  EXPECT_EQ(0u, buffer.get_mapped_size());
  renderer.gpu_buffer_free(&buffer);
}

TEST_F(GpuBuffersTest, StoppedRendererHasNoBuffers) {
  start();
  renderer.stop();
  unsigned char byte = 0;
  EXPECT_FALSE(alloc(GPU_BUFFER_ARRAY, 8));
  buffer.buffer_id = 5;
  buffer.size = 8;
  buffer.type = GPU_BUFFER_ARRAY;
  EXPECT_FALSE(renderer.gpu_buffer_bind(&buffer));
  EXPECT_FALSE(renderer.gpu_buffer_sub_data_read(&buffer, 0, 1, &byte));
  EXPECT_EQ(nullptr, renderer.gpu_buffer_map(&buffer, "GL_READ_ONLY"));
  EXPECT_FALSE(renderer.gpu_buffer_unmap(&buffer));
  EXPECT_FALSE(renderer.gpu_buffer_bind_base(&buffer, 1));
  EXPECT_TRUE(renderer.gpu_buffer_free(&buffer)) << "the record forgets what went with the context";
}
