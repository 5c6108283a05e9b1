// The loops over the slots of a particle pool.
#pragma once

#include <orv/math/vec3.h>
#include <orv/math/vec4.h>
#include <orv/visual/particle_pool.h>

#include <algorithm>

namespace orv::detail {

/// The arrays of a pool are padded to whole blocks of this many slots, so that loops need no
/// remainder. What pads them is never alive.
inline constexpr unsigned int PARTICLE_BLOCK = 16;

/// One entry of a table of sizes, and how far it is from there to the next one.
struct SizeStep {
  float base;
  float rise;
};

/// Slots `begin`, the first of a block, to `end` - 1.
struct SlotRange {
  unsigned int begin;
  unsigned int end;
};

/// Adds `change` to the velocities of the living and moves them by the new velocity for `dt`.
void move_particles(const ParticlePool& pool, SlotRange range, const vec3& change, float dt);

/// Sizes of the living, from a table of `count` entries, not 0, and their time left.
void size_particles(const ParticlePool& pool, SlotRange range, const SizeStep* table,
                    unsigned int count);

/// Takes `dt` off the time left of all slots, padding apart.
void age_particles(const ParticlePool& pool, SlotRange range, float dt);

unsigned int count_living_particles(const ParticlePool& pool);

/// Writes the places with the sizes, and white with the share of `lifetime` that is left as alpha,
/// of the living in order. Returns how many. Both arrays have room for all slots.
unsigned int pack_particles(const ParticlePool& pool, float lifetime, vec4* positions,
                            vec4* colors);

/// Whether one of a block of slots is free.
bool is_any_free(const float* lifetimes);

/// Calls `spawn(slot)` for the lowest free slots from the pool's cursor on, `count` of them at
/// most, enters them in the lists of the spawned, gives them their lifetime and moves the cursor
/// on. Returns how many.
template <class Spawn>
unsigned int fill_free_slots(ParticlePool& pool, unsigned int count, float lifetime, Spawn spawn) {
  const unsigned int slots = pool.num_particles;
  unsigned int filled = 0;
  unsigned int slot = pool.spawn_cursor;
  while (slot < slots && filled < count) {
    const unsigned int end = slot + std::min(PARTICLE_BLOCK, slots - slot);
    if (end - slot == PARTICLE_BLOCK && !is_any_free(pool.lifetimes + slot)) {
      slot = end;
      continue;
    }
    for (; slot < end && filled < count; ++slot) {
      if (!(pool.lifetimes[slot] <= 0.0f)) continue;
      // The lists end where a host has emitters fill the slots twice in a frame.
      const unsigned int a = pool.num_spawned_a + filled, b = pool.num_spawned_b + filled;
      if (a < slots) pool.spawned_a[a] = slot;
      if (b < slots) pool.spawned_b[b] = slot;
      spawn(slot);
      pool.lifetimes[slot] = lifetime;
      ++filled;
    }
  }
  pool.spawn_cursor = slot;
  pool.num_spawned_a = std::min(pool.num_spawned_a + filled, slots);
  pool.num_spawned_b = std::min(pool.num_spawned_b + filled, slots);
  return filled;
}

}  // namespace orv::detail
