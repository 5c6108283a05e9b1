/// @file
/// Ring of equal blocks inside a constant buffer.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// Circular allocator of fixed-size blocks inside one constant buffer, used by renderers that keep
/// several frames of constants apart.
class ORV_API GpuProgramConstantBuffer {
 public:
  /// Empty, with an identity of its own.
  GpuProgramConstantBuffer();

  /// Identity within the process.
  int getid() const { return id; }
  /// Bytes of one block.
  unsigned int get_block_size() const { return block_size; }
  /// Block in use, from 0.
  unsigned int get_current_block_index() const { return current_block_index; }
  /// Goes to the next block; behind the last comes the first.
  void inc_block_index();
  /// Ignored for an index not below num_blocks.
  void set_block_index(unsigned int index);
  /// Byte offset of the current block.
  unsigned int get_block_offset_in_bytes() const { return current_block_index * block_size; }

  int id;                                ///< process-wide number
  void* api_buffer = nullptr;            ///< of the renderer
  unsigned int num_blocks = 0;           ///< see inc_block_index
  unsigned int block_size = 0;           ///< bytes
  unsigned int current_block_index = 0;  ///< block in use, from 0
  unsigned long long api_words[4] = {};  ///< of the renderer
};

}  // namespace orv
