#include <orv/gpu/gpu_program_constant_buffer.h>
#include <orv/gpu/gpu_program_model_view_params.h>

#include <gtest/gtest.h>

namespace orv {
namespace {

TEST(GpuProgramConstantBuffer, StartsEmptyWithAnIdOfItsOwn) {
  GpuProgramConstantBuffer a;
  GpuProgramConstantBuffer b;
  EXPECT_NE(a.getid(), b.getid());
  EXPECT_EQ(a.num_blocks, 0u);
  EXPECT_EQ(a.get_block_size(), 0u);
  EXPECT_EQ(a.get_current_block_index(), 0u);
  EXPECT_EQ(a.api_buffer, nullptr);
}

TEST(GpuProgramConstantBuffer, IndexWrapsAfterTheLastBlock) {
  GpuProgramConstantBuffer buffer;
  buffer.num_blocks = 3;
  buffer.block_size = 256;
  const unsigned int expected[] = {1, 2, 0, 1};
  for (unsigned int index : expected) {
    buffer.inc_block_index();
    EXPECT_EQ(buffer.get_current_block_index(), index);
    EXPECT_EQ(buffer.get_block_offset_in_bytes(), index * 256);
  }
}

TEST(GpuProgramConstantBuffer, IndexWrapsFromBeyondTheEndToo) {
  GpuProgramConstantBuffer buffer;
  buffer.current_block_index = 9;
  buffer.num_blocks = 2;
  buffer.inc_block_index();
  EXPECT_EQ(buffer.get_current_block_index(), 0u);
}

TEST(GpuProgramConstantBuffer, IndexOutsideTheBlocksIsIgnored) {
  GpuProgramConstantBuffer buffer;
  buffer.num_blocks = 3;
  buffer.set_block_index(2);
  buffer.set_block_index(3);
  EXPECT_EQ(buffer.get_current_block_index(), 2u);
}

TEST(GpuProgramModelViewParams, AllMatricesAreIdentity) {
  const GpuProgramModelViewParams params;
  const mat4 identity;
  EXPECT_TRUE(params.model_view_projection == identity);
  EXPECT_TRUE(params.model_view == identity);
  EXPECT_TRUE(params.model_view_2 == identity);
  EXPECT_TRUE(params.view == identity);
  EXPECT_TRUE(params.projection == identity);
  EXPECT_TRUE(params.view_projection == identity);
}

}  // namespace
}  // namespace orv
