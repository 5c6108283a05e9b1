#include <orv/gpu/gpu_program_constant_buffer.h>

#include <orv/core/utils.h>

namespace orv {

GpuProgramConstantBuffer::GpuProgramConstantBuffer() : id(utils::gen_id()) {}

void GpuProgramConstantBuffer::inc_block_index() {
  ++current_block_index;
  if (current_block_index >= num_blocks) current_block_index = 0;
}

void GpuProgramConstantBuffer::set_block_index(unsigned int index) {
  if (index < num_blocks) current_block_index = index;
}

}  // namespace orv
