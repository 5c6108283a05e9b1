/// @file
/// Everything that the library and the renderer know of one GPU buffer.
#pragma once

#include <orv/core/api.h>
#include <orv/gpu/gpu_enums.h>

namespace orv {

/// The record behind a GpuBuffer and behind the vertex buffer of a GeometryCore. The public fields
/// are read and written by renderers.
class ORV_API GpuBufferData {
 public:
  /// An unallocated uniform buffer.
  GpuBufferData();
  /// The API buffer is the renderer's and must be freed before.
  ~GpuBufferData();
  GpuBufferData(const GpuBufferData&) = delete;
  GpuBufferData& operator=(const GpuBufferData&) = delete;

  /// Identity within the process.
  int getid() const { return id; }
  /// Whether there is an API buffer.
  bool is_allocated() const { return buffer_id != 0; }
  /// Sets storage and mapping flags by name. The text may hold several of map_read, map_write,
  /// map_invalidate_range, map_invalidate_buffer, map_flush_explicit, map_unsynchronized,
  /// map_persistent, map_coherent, immutable_storage, dynamic_storage, client_storage. False for
  /// null only.
  bool set_state(const char* name, bool value);
  /// Remembers the present type.
  void push_buffer_type();
  /// Restores the type remembered last; nothing without one.
  void pop_buffer_type();
  /// Block in use, from 0.
  unsigned int get_current_block_index() const { return current_block_index; }
  /// Goes to the next block. The index wraps to 0 only after it has reached num_blocks, so it runs
  /// through num_blocks + 1 values.
  void inc_block_index();
  /// Bytes of one block.
  unsigned int get_block_size() const { return block_size; }
  /// Byte offset of the current block.
  unsigned int get_block_offset_in_bytes() const { return current_block_index * block_size; }
  /// Bytes that may be reached through mapped_ptr; 0 while not mapped.
  unsigned int get_mapped_size() const;

  unsigned int size = 0;                      ///< bytes
  GPU_BUFFER_TYPE type = GPU_BUFFER_UNIFORM;  ///< present binding target
  int renderer_id = 0;                        ///< plugin id of the renderer that allocated it
  bool bound = false;                         ///< bound through this record, and not unbound since
  void* mapped_ptr = nullptr;                 ///< valid while mapped
  unsigned int buffer_id = 0;                 ///< API buffer
  BUFFER_OBJECT_USAGE usage = BUFFER_USAGE_STATIC_READ;  ///< as allocated
  int binding_point = -1;        ///< indexed point of the last bind_base or bind_range, -1 for none
  int uniform_block_index = -1;  ///< block that the buffer was made for, -1 for none
  int offset_alignment =
      0;  ///< bytes that offsets of bound ranges are multiples of; 0 before allocation
  bool immutable_storage = false;  ///< storage flag: the size is fixed for good
  bool dynamic_storage = true;     ///< storage flag: written by sub_data_write
  bool client_storage = false;     ///< storage flag: better in main memory
  bool map_read = false;           ///< mapping flag: read through the pointer
  bool map_write = true;           ///< mapping flag: written through the pointer
  bool map_invalidate_range =
      false;  ///< mapping flag: the old contents of the range are not needed
  bool map_invalidate_buffer = true;  ///< mapping flag: the old contents are not needed
  bool map_flush_explicit = false;    ///< mapping flag: written ranges are flushed by flush_range
  bool map_unsynchronized = false;    ///< mapping flag: does not wait for the GPU
  bool map_persistent = false;        ///< mapping flag: stays mapped while the GPU uses it
  bool map_coherent = false;          ///< mapping flag: writes are seen without a flush
  unsigned int num_blocks = 0;        ///< see inc_block_index
  unsigned int block_size = 0;        ///< bytes
  unsigned int current_block_index = 0;  ///< see get_current_block_index
  int id;                                ///< process-wide number
  /// Bytes of a mapped range, set by whoever maps one; 0 means that all of the buffer is mapped.
  unsigned int mapped_size = 0;

 private:
  struct TypeStack;
  TypeStack* type_stack_;
};

}  // namespace orv
