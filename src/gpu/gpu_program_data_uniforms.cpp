#include "gpu/gpu_program_data_uniforms.h"

#include <orv/math/mat4.h>
#include <orv/math/mat4d.h>
#include <orv/math/vec4.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <type_traits>

namespace orv {

namespace {

constexpr unsigned int SLOTS_PER_GROWTH = 4;

bool has_subroutines(GPU_SHADER_TYPE type) {
  return type >= 0 && type < static_cast<int>(GpuProgramData::NUM_SUBROUTINE_STAGES);
}

bool is_vector(int elements) { return elements >= 1 && elements <= 4; }

GPU_SHADER_UNIFORM type_of(GPU_SHADER_UNIFORM first, int elements) {
  return is_vector(elements) ? static_cast<GPU_SHADER_UNIFORM>(first + elements - 1) : first;
}

template <class T>
void free_array(T*& array) {
  delete[] array;
  array = nullptr;
}

// An equal value that was sent before need not be sent again. Numbers compare as numbers: a NaN is
// never equal, and zeros of both signs are.
template <class T>
void store_changed(GpuProgramUniform* uniform, bool fresh, T* target, const T* values, int count) {
  if (!fresh && uniform->num_uploads >= 1 && std::equal(values, values + count, target)) return;
  std::copy_n(values, count, target);
  uniform->dirty = true;
}

bool has_key(const char* name) { return name != nullptr; }

bool has_key(unsigned int offset) { return offset != GpuProgramUniform::NO_OFFSET; }

}  // namespace

// ---- list ------------------------------------------------------------------------------------

void GpuProgramData::init_uniforms() {
  kill_uniforms();
  uniforms = new GpuProgramUniform* [SLOTS_PER_GROWTH] {};
  num_uniform_slots = SLOTS_PER_GROWTH;
}

void GpuProgramData::kill_uniforms() {
  for (unsigned int i = 0; i < num_uniform_slots; ++i) delete uniforms[i];
  free_array(uniforms);
  num_uniform_slots = 0;
  for (unsigned int i = 0; i < NUM_SUBROUTINE_STAGES; ++i) {
    num_subroutine_uniforms[i] = 0;
    free_array(subroutine_indices[i]);
    subroutine_indices_capacity[i] = 0;
  }
  uniform_index_->clear();
  _clear_all_uniform_caches();
}

void GpuProgramData::copy_uniforms(const GpuProgramData& other) {
  kill_uniforms();
  num_uniform_slots = other.num_uniform_slots;
  if (other.uniforms) {
    uniforms = new GpuProgramUniform* [num_uniform_slots] {};
    for (unsigned int i = 0; i < num_uniform_slots; ++i) {
      if (other.uniforms[i]) uniforms[i] = new GpuProgramUniform(*other.uniforms[i]);
    }
  }
  std::copy_n(other.num_subroutine_uniforms, NUM_SUBROUTINE_STAGES, num_subroutine_uniforms);
  *uniform_caches_ = *other.uniform_caches_;
  uniforms_optimized = other.uniforms_optimized;
}

// -1 when there is no such record.
int GpuProgramData::find_slot(const char* name) const {
  if (!name || !uniforms) return -1;
  const std::string_view key = uniform_name_key(name);
  const auto is_named = [&](unsigned int slot) {
    return slot < num_uniform_slots && uniforms[slot] &&
           uniform_name_key(uniforms[slot]->name) == key;
  };
  const std::size_t hash = UniformNameHash()(key);
  // Records at an offset of a constant buffer have no name and are not indexed.
  if (!key.empty()) {
    const int slot = uniform_index_->find(hash, is_named);
    if (slot >= 0) return slot;
  }
  // The list is open to renderers and hosts, so the index may not know all of it.
  for (unsigned int slot = 0; slot < num_uniform_slots; ++slot) {
    if (!is_named(slot)) continue;
    if (!key.empty()) uniform_index_->insert(hash, slot);
    return static_cast<int>(slot);
  }
  return -1;
}

GpuProgramUniform* GpuProgramData::find_uniform(const char* name) const {
  const int slot = find_slot(name);
  return slot < 0 ? nullptr : uniforms[slot];
}

GpuProgramUniform* GpuProgramData::find_uniform_v2(unsigned int offset) const {
  if (offset == GpuProgramUniform::NO_OFFSET) return nullptr;
  for (unsigned int i = 0; i < num_uniform_slots; ++i) {
    if (uniforms[i] && uniforms[i]->gpu_buffer_offset == offset) return uniforms[i];
  }
  return nullptr;
}

// Index of a slot that holds a fresh record.
unsigned int GpuProgramData::take_free_slot() {
  unsigned int slot = 0;
  while (slot < num_uniform_slots && uniforms[slot]) ++slot;
  if (slot == num_uniform_slots) {
    auto** grown = new GpuProgramUniform* [num_uniform_slots + SLOTS_PER_GROWTH] {};
    std::copy_n(uniforms, num_uniform_slots, grown);
    delete[] uniforms;
    uniforms = grown;
    num_uniform_slots += SLOTS_PER_GROWTH;
  }
  uniforms[slot] = new GpuProgramUniform;
  // The new record has no location yet.
  uniforms_optimized = false;
  return slot;
}

GpuProgramUniform* GpuProgramData::get_new_uniform() {
  // The list may move before it is read.
  const unsigned int slot = take_free_slot();
  return uniforms[slot];
}

bool GpuProgramData::need_bind_uniforms() {
  if (!uniforms) return false;
  for (unsigned int i = 0; i < num_uniform_slots; ++i) {
    if (uniforms[i]) uniforms[i]->dirty = true;
  }
  uniforms_optimized = false;
  return true;
}

// ---- record to write -------------------------------------------------------------------------

void GpuProgramData::count_subroutine(const GpuProgramUniform* uniform, int change) {
  if (uniform->type != GPU_SHADER_UNIFORM_subroutine || !has_subroutines(uniform->shader_type)) {
    return;
  }
  num_subroutine_uniforms[uniform->shader_type] += static_cast<unsigned int>(change);
  uniforms_optimized = false;
}

// True when the type was another one: arrays of the old type are gone and no value compares.
bool GpuProgramData::change_type(GpuProgramUniform* uniform, GPU_SHADER_UNIFORM type) {
  if (uniform->type == type) return false;
  count_subroutine(uniform, -1);
  uniform->type = type;
  free_array(uniform->values_f);
  free_array(uniform->values_d);
  free_array(uniform->values_i);
  free_array(uniform->values_ui64);
  uniform->count = 0;
  uniform->elements = 0;
  return true;
}

// Finds or makes the record; fresh tells that it holds no value of this type yet.
GpuProgramUniform* GpuProgramData::uniform_to_set(const char* name, GPU_SHADER_UNIFORM type,
                                                  bool* fresh) {
  const int found = find_slot(name);
  if (found >= 0) {
    *fresh = change_type(uniforms[found], type);
    return uniforms[found];
  }
  const unsigned int slot = take_free_slot();
  GpuProgramUniform* uniform = uniforms[slot];
  const std::string_view key = uniform_name_key(name);
  std::copy(key.begin(), key.end(), uniform->name);
  uniform->type = type;
  if (!key.empty()) uniform_index_->insert(UniformNameHash()(key), slot);
  *fresh = true;
  return uniform;
}

GpuProgramUniform* GpuProgramData::uniform_to_set(unsigned int offset, GPU_SHADER_UNIFORM type,
                                                  bool* fresh) {
  GpuProgramUniform* uniform = find_uniform_v2(offset);
  if (uniform) {
    *fresh = change_type(uniform, type);
    return uniform;
  }
  uniform = get_new_uniform();
  uniform->gpu_buffer_offset = offset;
  uniform->type = type;
  *fresh = true;
  return uniform;
}

// ---- engine uniforms -------------------------------------------------------------------------

GpuProgramUniform* GpuProgramData::engine_uniform(ENGINE_UNIFORM which) const {
  if (which < 0 || which >= ENGINE_UNIFORM_COUNT) return nullptr;
  UniformIndex::EngineRecord& known = uniform_index_->engine_records[which];
  // The list is open: another record may have come to the same place.
  if (known.record && known.slot < num_uniform_slots && uniforms[known.slot] == known.record &&
      known.wanted == engine_uniform_names[which] &&
      std::memcmp(known.record->name, known.name, sizeof(known.name)) == 0) {
    return known.record;
  }
  const int slot = find_slot(engine_uniform_names[which]);
  known = {};
  if (slot < 0) return nullptr;
  known.slot = static_cast<unsigned int>(slot);
  known.record = uniforms[slot];
  known.wanted = engine_uniform_names[which];
  std::memcpy(known.name, known.record->name, sizeof(known.name));
  return known.record;
}

bool GpuProgramData::is_engine_uniform_unused(ENGINE_UNIFORM which) const {
  if (!uniforms_optimized) return false;
  const GpuProgramUniform* uniform = engine_uniform(which);
  return uniform && uniform->location < 0;
}

bool GpuProgramData::set_engine_uniform_4x4f(ENGINE_UNIFORM which, const mat4& value) {
  GpuProgramUniform* uniform = engine_uniform(which);
  if (!uniform) return set_uniform_4x4f(get_engine_uniform_name(which), value);
  const bool fresh = change_type(uniform, GPU_SHADER_UNIFORM_4x4f);
  store_changed(uniform, fresh, uniform->value_mat4f, value.ptr(), 16);
  return true;
}

bool GpuProgramData::set_engine_uniform_4f(ENGINE_UNIFORM which, float x, float y, float z,
                                           float w) {
  GpuProgramUniform* uniform = engine_uniform(which);
  if (!uniform) return set_uniform_4f(get_engine_uniform_name(which), x, y, z, w);
  const float values[] = {x, y, z, w};
  const bool fresh = change_type(uniform, GPU_SHADER_UNIFORM_4f);
  store_changed(uniform, fresh, uniform->value_f, values, 4);
  return true;
}

// ---- workers of the setters ------------------------------------------------------------------

// Sets one value under a name or at an offset of a constant buffer. Integers are stored always,
// other numbers by store_changed.
template <class Key, class T, int SIZE>
bool GpuProgramData::set_values(Key key, GPU_SHADER_UNIFORM type,
                                T (GpuProgramUniform::*field)[SIZE], int count, const T* values) {
  if (!has_key(key)) return !std::is_pointer_v<Key>;
  if (!values) return true;
  // The values may lie in an array of this record, which goes with its type.
  T copy[SIZE];
  std::copy_n(values, count, copy);
  bool fresh = false;
  GpuProgramUniform* uniform = uniform_to_set(key, type, &fresh);
  store_changed(uniform, fresh || std::is_integral_v<T>, uniform->*field, copy, count);
  return true;
}

template <class T>
bool GpuProgramData::set_array(const char* name, GPU_SHADER_UNIFORM type,
                               T*(GpuProgramUniform::*field), int count, int elements,
                               const T* values) {
  if (!name) return false;
  if (!values || count < 1 || !is_vector(elements)) return true;
  const std::size_t size = static_cast<std::size_t>(count) * static_cast<std::size_t>(elements);
  GpuProgramUniform* uniform = find_uniform(name);
  if (uniform && uniform->*field && uniform->type == type && uniform->count == count &&
      uniform->elements == elements) {
    std::memmove(uniform->*field, values, size * sizeof(T));
  } else {
    // Copied first: the values may lie in an array of this record, which goes with its shape.
    std::unique_ptr<T[]> block(new T[size]);
    std::copy_n(values, size, block.get());
    bool fresh = false;
    uniform = uniform_to_set(name, type, &fresh);
    delete[](uniform->*field);
    uniform->*field = block.release();
    uniform->count = count;
    uniform->elements = elements;
  }
  uniform->dirty = true;
  return true;
}

bool GpuProgramData::_set_uniform_i(const char* name, int elements, const int* values) {
  if (!is_vector(elements)) values = nullptr;
  return set_values(name, type_of(GPU_SHADER_UNIFORM_1i, elements), &GpuProgramUniform::value_i,
                    elements, values);
}

bool GpuProgramData::_set_uniform_ui(const char* name, int elements, const unsigned int* values) {
  if (!is_vector(elements)) values = nullptr;
  if (name && values) uniforms_optimized = false;
  return set_values(name, type_of(GPU_SHADER_UNIFORM_1ui, elements), &GpuProgramUniform::value_ui,
                    elements, values);
}

bool GpuProgramData::_set_uniform_f(const char* name, int elements, const float* values) {
  if (!is_vector(elements)) values = nullptr;
  return set_values(name, type_of(GPU_SHADER_UNIFORM_1f, elements), &GpuProgramUniform::value_f,
                    elements, values);
}

bool GpuProgramData::_set_uniform_d(const char* name, int elements, const double* values) {
  if (!is_vector(elements)) values = nullptr;
  return set_values(name, type_of(GPU_SHADER_UNIFORM_1d, elements), &GpuProgramUniform::value_d,
                    elements, values);
}

bool GpuProgramData::_set_uniform_iv(const char* name, int count, int elements, const int* values) {
  return set_array(name, type_of(GPU_SHADER_UNIFORM_1iv, elements), &GpuProgramUniform::values_i,
                   count, elements, values);
}

bool GpuProgramData::_set_uniform_fv(const char* name, int count, int elements,
                                     const float* values) {
  return set_array(name, type_of(GPU_SHADER_UNIFORM_1fv, elements), &GpuProgramUniform::values_f,
                   count, elements, values);
}

bool GpuProgramData::_set_uniform_dv(const char* name, int count, int elements,
                                     const double* values) {
  return set_array(name, type_of(GPU_SHADER_UNIFORM_1dv, elements), &GpuProgramUniform::values_d,
                   count, elements, values);
}

bool GpuProgramData::_set_uniform_ui64v(const char* name, int count, int elements,
                                        const unsigned long long* values) {
  return set_array(name, GPU_SHADER_UNIFORM_1ui64v, &GpuProgramUniform::values_ui64, count,
                   elements, values);
}

// ---- setters ---------------------------------------------------------------------------------

#define ORV_SCALAR_SETTERS(letters, T)                                                \
  bool GpuProgramData::set_uniform_1##letters(const char* name, T x) {                \
    return _set_uniform_##letters(name, 1, &x);                                       \
  }                                                                                   \
  bool GpuProgramData::set_uniform_2##letters(const char* name, T x, T y) {           \
    const T values[] = {x, y};                                                        \
    return _set_uniform_##letters(name, 2, values);                                   \
  }                                                                                   \
  bool GpuProgramData::set_uniform_3##letters(const char* name, T x, T y, T z) {      \
    const T values[] = {x, y, z};                                                     \
    return _set_uniform_##letters(name, 3, values);                                   \
  }                                                                                   \
  bool GpuProgramData::set_uniform_4##letters(const char* name, T x, T y, T z, T w) { \
    const T values[] = {x, y, z, w};                                                  \
    return _set_uniform_##letters(name, 4, values);                                   \
  }

#define ORV_ARRAY_SETTERS(letters, T)                                                         \
  bool GpuProgramData::set_uniform_1##letters(const char* name, int count, const T* values) { \
    return _set_uniform_##letters(name, count, 1, values);                                    \
  }                                                                                           \
  bool GpuProgramData::set_uniform_2##letters(const char* name, int count, const T* values) { \
    return _set_uniform_##letters(name, count, 2, values);                                    \
  }                                                                                           \
  bool GpuProgramData::set_uniform_3##letters(const char* name, int count, const T* values) { \
    return _set_uniform_##letters(name, count, 3, values);                                    \
  }                                                                                           \
  bool GpuProgramData::set_uniform_4##letters(const char* name, int count, const T* values) { \
    return _set_uniform_##letters(name, count, 4, values);                                    \
  }

ORV_SCALAR_SETTERS(i, int)
ORV_SCALAR_SETTERS(ui, unsigned int)
ORV_SCALAR_SETTERS(f, float)
ORV_SCALAR_SETTERS(d, double)
ORV_ARRAY_SETTERS(iv, int)
ORV_ARRAY_SETTERS(fv, float)
ORV_ARRAY_SETTERS(dv, double)

#undef ORV_SCALAR_SETTERS
#undef ORV_ARRAY_SETTERS

bool GpuProgramData::set_uniform_4f(const char* name, const vec4& value) {
  return _set_uniform_f(name, 4, value.ptr());
}

bool GpuProgramData::set_uniform_1ui64(const char* name, unsigned long long value) {
  return set_array(name, GPU_SHADER_UNIFORM_1ui64, &GpuProgramUniform::values_ui64, 1, 1, &value);
}

bool GpuProgramData::set_uniform_1ui64v(const char* name, int count,
                                        const unsigned long long* values) {
  return _set_uniform_ui64v(name, count, 1, values);
}

bool GpuProgramData::set_uniform_3x3f(const char* name, const float* values) {
  return set_values(name, GPU_SHADER_UNIFORM_3x3f, &GpuProgramUniform::value_mat4f, 9, values);
}

bool GpuProgramData::set_uniform_4x4f(const char* name, const mat4& value) {
  return set_uniform_4x4f(name, value.ptr());
}

bool GpuProgramData::set_uniform_4x4f(const char* name, const float* values) {
  return set_values(name, GPU_SHADER_UNIFORM_4x4f, &GpuProgramUniform::value_mat4f, 16, values);
}

bool GpuProgramData::set_uniform_3x3d(const char* name, const double* values) {
  return set_values(name, GPU_SHADER_UNIFORM_3x3d, &GpuProgramUniform::value_mat4d, 9, values);
}

bool GpuProgramData::set_uniform_4x4d(const char* name, const mat4d& value) {
  return set_uniform_4x4d(name, value.ptr());
}

bool GpuProgramData::set_uniform_4x4d(const char* name, const double* values) {
  return set_values(name, GPU_SHADER_UNIFORM_4x4d, &GpuProgramUniform::value_mat4d, 16, values);
}

bool GpuProgramData::set_uniform_subroutine(GPU_SHADER_TYPE type, const char* uniform_name,
                                            const char* subroutine_name) {
  if (!uniform_name || !subroutine_name) return false;
  if (!has_subroutines(type)) return true;
  bool fresh = false;
  GpuProgramUniform* uniform = uniform_to_set(uniform_name, GPU_SHADER_UNIFORM_subroutine, &fresh);
  const std::string_view key = uniform_name_key(subroutine_name);
  const bool is_stage_same = !fresh && uniform->shader_type == type;
  if (is_stage_same && uniform_name_key(uniform->subroutine_name) == key) return true;
  if (!is_stage_same) {
    if (!fresh) count_subroutine(uniform, -1);
    uniform->shader_type = type;
    count_subroutine(uniform, +1);
  }
  std::memmove(uniform->subroutine_name, key.data(), key.size());
  std::fill(uniform->subroutine_name + key.size(), std::end(uniform->subroutine_name), '\0');
  uniform->dirty = true;
  uniforms_optimized = false;
  return true;
}

// ---- setters at an offset of a constant buffer -----------------------------------------------

bool GpuProgramData::gpu_buffer_set_uniform_1i(unsigned int offset, int x) {
  return set_values(offset, GPU_SHADER_UNIFORM_1i, &GpuProgramUniform::value_i, 1, &x);
}

bool GpuProgramData::gpu_buffer_set_uniform_1f(unsigned int offset, float x) {
  return set_values(offset, GPU_SHADER_UNIFORM_1f, &GpuProgramUniform::value_f, 1, &x);
}

bool GpuProgramData::gpu_buffer_set_uniform_4f(unsigned int offset, float x, float y, float z,
                                               float w) {
  const float values[] = {x, y, z, w};
  return set_values(offset, GPU_SHADER_UNIFORM_4f, &GpuProgramUniform::value_f, 4, values);
}

bool GpuProgramData::gpu_buffer_set_uniform_4x4f(unsigned int offset, const mat4& value) {
  return gpu_buffer_set_uniform_4x4f(offset, value.ptr());
}

bool GpuProgramData::gpu_buffer_set_uniform_4x4f(unsigned int offset, const float* values) {
  return set_values(offset, GPU_SHADER_UNIFORM_4x4f, &GpuProgramUniform::value_mat4f, 16, values);
}

// ---- caches ----------------------------------------------------------------------------------

namespace {

int get_cached(const UniformNameMap& map, const char* name) {
  if (!name) return -1;
  const auto found = map.find(std::string_view(name));
  return found == map.end() ? -1 : found->second;
}

void set_cached(UniformNameMap& map, const char* name, int value) {
  if (name) map.insert_or_assign(name, value);
}

}  // namespace

int GpuProgramData::_get_uniform_location_from_cache(const char* name) const {
  return get_cached(uniform_caches_->locations, name);
}

void GpuProgramData::_update_uniform_location_cache(const char* name, int location) {
  set_cached(uniform_caches_->locations, name, location);
}

void GpuProgramData::_clear_uniform_location_cache() {
  uniform_caches_->locations.clear();
  uniforms_optimized = false;
}

int GpuProgramData::_get_uniform_subroutine_location_from_cache(const char* name) const {
  return get_cached(uniform_caches_->subroutine_locations, name);
}

void GpuProgramData::_update_uniform_subroutine_location_cache(const char* name, int location) {
  set_cached(uniform_caches_->subroutine_locations, name, location);
}

void GpuProgramData::_clear_uniform_subroutine_location_cache() {
  uniform_caches_->subroutine_locations.clear();
  uniforms_optimized = false;
}

unsigned int GpuProgramData::_get_subroutine_index_from_cache(const char* name) const {
  return static_cast<unsigned int>(get_cached(uniform_caches_->subroutine_indices, name));
}

void GpuProgramData::_update_subroutine_index_cache(const char* name, unsigned int index) {
  set_cached(uniform_caches_->subroutine_indices, name, static_cast<int>(index));
}

void GpuProgramData::_clear_subroutine_index_cache() {
  uniform_caches_->subroutine_indices.clear();
  uniforms_optimized = false;
}

void GpuProgramData::_clear_all_uniform_caches() {
  _clear_uniform_location_cache();
  _clear_uniform_subroutine_location_cache();
  _clear_subroutine_index_cache();
}

unsigned int* GpuProgramData::_reserve_subroutine_indices(GPU_SHADER_TYPE type,
                                                          unsigned int count) {
  if (!has_subroutines(type) || count == 0) return nullptr;
  if (!subroutine_indices[type] || subroutine_indices_capacity[type] < count) {
    unsigned int* block = new unsigned int[count];
    delete[] subroutine_indices[type];
    subroutine_indices[type] = block;
    subroutine_indices_capacity[type] = count;
  }
  std::fill_n(subroutine_indices[type], subroutine_indices_capacity[type], 0u);
  return subroutine_indices[type];
}

}  // namespace orv
