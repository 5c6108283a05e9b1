#include <orv/gpu/gpu_program_data.h>

#include "render/opengl/fake_gl_fixture.h"

using namespace orv;
using namespace orv::test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class UniformBlocksTest : public FakeGlTest {
 protected:
  void SetUp() override {
    program.program_id = 40;
    program.linked = true;
  }
  GpuProgramData program;
};

constexpr unsigned int NONE = 0xFFFFFFFFu;

}  // namespace

TEST_F(UniformBlocksTest, BlocksHaveAnIndexASizeAndABinding) {
  start();
  gl.uniform_blocks = {{"A", 0}, {"B", 1}};
  gl.uniform_block_size = 80;
  EXPECT_EQ(1u, renderer.gpu_program_get_uniform_block_index(&program, "B"));
  EXPECT_EQ(NONE, renderer.gpu_program_get_uniform_block_index(&program, "C"));
  EXPECT_EQ(80, renderer.gpu_program_get_uniform_block_size(&program, "B", 77)) << "by name";
  EXPECT_EQ(80, renderer.gpu_program_get_uniform_block_size(&program, nullptr, 1));
  EXPECT_EQ(0, renderer.gpu_program_get_uniform_block_size(&program, nullptr, 2));
  EXPECT_EQ(0, renderer.gpu_program_get_uniform_block_size(&program, "C", 0));
  gl.clear();
  EXPECT_TRUE(renderer.gpu_program_set_uniform_block_binding(&program, 1, 5));
  EXPECT_THAT(take_changes(), ElementsAre("glUniformBlockBinding(40, 1, 5)"));
  EXPECT_TRUE(program.linked) << "a binding needs no new link";
}

TEST_F(UniformBlocksTest, SizesAndOffsetsOfKnownNames) {
  start();
  gl.uniform_indices = {{"a", 3}, {"b", 4}};
  gl.active_uniform_value = 16;
  const char* names[] = {"a", "b"};
  int sizes[2] = {}, offsets[2] = {}, strides[2] = {};
  EXPECT_TRUE(renderer.gpu_program_get_uniform_size_and_offset(&program, names, 2, sizes, offsets));
  EXPECT_THAT(sizes, ElementsAre(16, 16));
  EXPECT_THAT(offsets, ElementsAre(16, 16));
  EXPECT_TRUE(renderer.gpu_program_get_uniform_array_stride(&program, names, 2, strides));
  EXPECT_THAT(strides, ElementsAre(16, 16));
  EXPECT_EQ(3, gl.count("glGetUniformIndices"));
  gl.clear();
  EXPECT_TRUE(
      renderer.gpu_program_get_uniform_size_and_offset(&program, names, 2, nullptr, offsets));
  EXPECT_EQ(1, gl.count("glGetActiveUniformsiv"));
}

TEST_F(UniformBlocksTest, UnknownNamesAreMarkedAndTheOthersStillRead) {
  start();
  gl.uniform_indices = {{"a", 3}, {"b", 4}};
  gl.active_uniform_value = 16;
  const char* names[] = {"a", "unknown", nullptr, "b"};
  int sizes[4] = {}, offsets[4] = {};
  EXPECT_FALSE(
      renderer.gpu_program_get_uniform_size_and_offset(&program, names, 4, sizes, offsets));
  EXPECT_THAT(sizes, ElementsAre(16, 0, 0, 16));
  EXPECT_THAT(offsets, ElementsAre(16, -1, -1, 16));
}

TEST_F(UniformBlocksTest, StorageBlocks) {
  start();
  gl.storage_blocks = {{"Data", 2}};
  EXPECT_EQ(2u, renderer.gpu_program_get_shader_storage_block_index(&program, "Data"));
  EXPECT_TRUE(gl.called("glGetProgramResourceIndex(40, GL_SHADER_STORAGE_BLOCK, \"Data\")"));
  EXPECT_EQ(NONE, renderer.gpu_program_get_shader_storage_block_index(&program, "Other"));
  gl.clear();
  EXPECT_TRUE(renderer.gpu_program_set_shader_storage_block_binding(&program, 2, 6));
  EXPECT_THAT(take_changes(), ElementsAre("glShaderStorageBlockBinding(40, 2, 6)"));
}

TEST_F(UniformBlocksTest, NullAndUnknownAreRefused) {
  start();
  const char* names[] = {"a"};
  int out[1] = {};
  EXPECT_EQ(NONE, renderer.gpu_program_get_uniform_block_index(nullptr, "A"));
  EXPECT_EQ(NONE, renderer.gpu_program_get_uniform_block_index(&program, nullptr));
  EXPECT_EQ(0, renderer.gpu_program_get_uniform_block_size(nullptr, "A", 0));
  EXPECT_FALSE(renderer.gpu_program_set_uniform_block_binding(nullptr, 0, 0));
  EXPECT_FALSE(renderer.gpu_program_set_uniform_block_binding(&program, NONE, 0));
  EXPECT_FALSE(renderer.gpu_program_get_uniform_size_and_offset(nullptr, names, 1, out, out));
  EXPECT_FALSE(renderer.gpu_program_get_uniform_size_and_offset(&program, nullptr, 1, out, out));
  EXPECT_FALSE(renderer.gpu_program_get_uniform_array_stride(&program, names, 1, nullptr));
  EXPECT_FALSE(renderer.gpu_program_get_uniform_array_stride(&program, names, 0, out));
  EXPECT_EQ(NONE, renderer.gpu_program_get_shader_storage_block_index(nullptr, "A"));
  EXPECT_FALSE(renderer.gpu_program_set_shader_storage_block_binding(&program, NONE, 0));
  EXPECT_THAT(take_changes(), IsEmpty());
}

TEST_F(UniformBlocksTest, WithoutTheFunctionsThereAreNoBlocks) {
  gl.set_extensions({});
  start(2, 1, false);
  int out[1] = {};
  const char* names[] = {"a"};
  EXPECT_EQ(NONE, renderer.gpu_program_get_uniform_block_index(&program, "A"));
  EXPECT_EQ(0, renderer.gpu_program_get_uniform_block_size(&program, nullptr, 0));
  EXPECT_FALSE(renderer.gpu_program_set_uniform_block_binding(&program, 0, 0));
  EXPECT_FALSE(renderer.gpu_program_get_uniform_array_stride(&program, names, 1, out));
  EXPECT_EQ(NONE, renderer.gpu_program_get_shader_storage_block_index(&program, "A"));
  EXPECT_FALSE(renderer.gpu_program_set_shader_storage_block_binding(&program, 0, 0));
}
