#include <orv/gpu/gpu_buffer_data.h>

#include <orv/core/utils.h>

#include <cstring>
#include <vector>

namespace orv {

struct GpuBufferData::TypeStack {
  std::vector<GPU_BUFFER_TYPE> types;
};

GpuBufferData::GpuBufferData() : id(utils::gen_id()), type_stack_(new TypeStack) {}

GpuBufferData::~GpuBufferData() { delete type_stack_; }

bool GpuBufferData::set_state(const char* name, bool value) {
  struct Flag {
    const char* name;
    bool GpuBufferData::*field;
  };
  static constexpr Flag FLAGS[] = {
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
  if (!name) return false;
  for (const Flag& flag : FLAGS) {
    if (std::strstr(name, flag.name)) this->*flag.field = value;
  }
  return true;
}

void GpuBufferData::push_buffer_type() { type_stack_->types.push_back(type); }

void GpuBufferData::pop_buffer_type() {
  std::vector<GPU_BUFFER_TYPE>& types = type_stack_->types;
  if (types.empty()) return;
  type = types.back();
  types.pop_back();
}

void GpuBufferData::inc_block_index() {
  ++current_block_index;
  if (current_block_index > num_blocks) current_block_index = 0;
}

unsigned int GpuBufferData::get_mapped_size() const {
  if (!mapped_ptr) return 0;
  return mapped_size != 0 ? mapped_size : size;
}

}  // namespace orv
