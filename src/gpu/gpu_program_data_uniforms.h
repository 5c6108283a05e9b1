#pragma once

#include <orv/gpu/gpu_program_data.h>

#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace orv {

/// The part of a uniform's name that counts.
inline std::string_view uniform_name_key(const char* name) {
  return {name, strnlen(name, sizeof(GpuProgramUniform::name) - 1)};
}

struct UniformNameHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const {
    return std::hash<std::string_view>{}(text);
  }
};

using UniformNameMap = std::unordered_map<std::string, int, UniformNameHash, std::equal_to<>>;

struct GpuProgramData::UniformCaches {
  UniformNameMap locations;
  UniformNameMap subroutine_locations;
  UniformNameMap subroutine_indices;
};

/// Finds slots by name: a table of slots with open addressing, beside the hash of each name. Also
/// remembers the record of each engine uniform, as every object that is drawn asks for all of them.
struct GpuProgramData::UniformIndex {
  struct Entry {
    std::size_t hash = 0;
    unsigned int slot_plus_1 = 0;
  };

  /// Where an engine uniform was found.
  struct EngineRecord {
    GpuProgramUniform* record = nullptr;
    unsigned int slot = 0;
    const char* wanted = nullptr;                     ///< its name in the program's record
    char name[sizeof(GpuProgramUniform::name)] = {};  ///< the record's bytes at that time
  };

  std::vector<Entry> table;
  std::size_t num_used = 0;
  EngineRecord engine_records[ENGINE_UNIFORM_COUNT];

  void clear() { *this = UniformIndex(); }

  /// Slot of this hash that the test accepts, or -1.
  template <class Accept>
  int find(std::size_t hash, Accept accept) const {
    if (table.empty()) return -1;
    const std::size_t mask = table.size() - 1;
    for (std::size_t i = hash & mask; table[i].slot_plus_1 != 0; i = (i + 1) & mask) {
      const unsigned int slot = table[i].slot_plus_1 - 1;
      if (table[i].hash == hash && accept(slot)) return static_cast<int>(slot);
    }
    return -1;
  }

  void insert(std::size_t hash, unsigned int slot) {
    if (2 * (num_used + 1) > table.size()) grow();
    put({hash, slot + 1});
    ++num_used;
  }

 private:
  void put(const Entry& entry) {
    const std::size_t mask = table.size() - 1;
    std::size_t i = entry.hash & mask;
    while (table[i].slot_plus_1 != 0) i = (i + 1) & mask;
    table[i] = entry;
  }

  void grow() {
    const std::vector<Entry> old = std::move(table);
    table.assign(old.empty() ? 16 : old.size() * 2, Entry());
    for (const Entry& entry : old) {
      if (entry.slot_plus_1 != 0) put(entry);
    }
  }
};

}  // namespace orv
