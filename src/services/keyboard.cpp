#include <orv/services/keyboard.h>

#include <cstring>

#include "services/key_symbols.h"
#include "services/key_table.h"
#include "services/keyboard_data.h"

namespace orv {
namespace {

constexpr std::uint8_t DOWN = 0x80;

// Keys that are down whenever one of two others is. An enter key of its own is return as well.
struct SharedKey {
  std::uint8_t vk, first, second;
};
constexpr SharedKey SHARED_KEYS[] = {{16, 160, 161}, {17, 162, 163}, {18, 164, 165}, {13, 13, 156}};

constexpr std::uint8_t LOCK_KEYS[] = {20, 144, 145};

}  // namespace

// ---- reading ----------------------------------------------------------------------------------

std::uint8_t& KeyboardData::byte_of(KeyCode code) {
  const unsigned int place = static_cast<unsigned int>(code);
  return key_buffer[place < 256 ? vk_of_code[place] : 0];
}

void KeyboardData::read_keys() {
  std::memset(last, 0, sizeof(last));
  for (int key = 0; key < detail::NUM_KEYS; ++key) {
    if (reading.is_down(key) && vk_of_key[key]) last[vk_of_key[key]] = DOWN;
  }
  for (const SharedKey& row : SHARED_KEYS) last[row.vk] = last[row.first] | last[row.second];
  for (int lock = 0; lock < 3; ++lock) {
    if (reading.locks >> lock & 1) last[LOCK_KEYS[lock]] |= 1;
  }
}

bool KeyboardData::read() {
  if (!opened) set_source(detail::open_key_source());
  reading.remapped = false;
  if (!source || !source->read(&reading)) return false;
  if (reading.remapped) detail::map_keys(reading.symbols, vk_of_key);
  std::uint8_t before[256];
  std::memcpy(before, last, sizeof(before));
  read_keys();
  for (int vk = 0; vk < 256; ++vk) pressed[vk] |= (last[vk] & ~before[vk] & DOWN) != 0;
  return true;
}

// ---- keyboard ---------------------------------------------------------------------------------

Keyboard::Keyboard() : data_(new KeyboardData) {}

Keyboard::~Keyboard() { delete data_; }

bool Keyboard::init() {
  for (const detail::KeyRow& row : detail::KEY_TABLE) data_->vk_of_code[row.code] = row.vk;
  return true;
}

bool Keyboard::update_key_buffer() {
  if (data_->read()) std::memcpy(data_->key_buffer, data_->last, sizeof(data_->last));
  return true;
}

bool Keyboard::clear_key_buffer() {
  std::memset(data_->key_buffer, 0, sizeof(data_->key_buffer));
  return true;
}

bool Keyboard::is_key_down(KeyCode code) const { return data_->byte_of(code) & DOWN; }

bool Keyboard::is_key_down_raw(unsigned int vk) const {
  return vk < 256 && data_->key_buffer[vk] & DOWN;
}

bool Keyboard::is_virtual_key_down(int /*vk*/) const { return false; }

bool Keyboard::set_key_state(KeyCode code, char state) {
  data_->byte_of(code) = state > 0 ? DOWN : 0;
  return true;
}

bool Keyboard::set_virtual_key_state(int vk, char /*state*/) {
  if (vk < 0 || vk > 255) return false;
  data_->read();
  data_->key_buffer[vk] = data_->pressed[vk];
  data_->pressed[vk] = false;
  return true;
}

}  // namespace orv
