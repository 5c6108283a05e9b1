#include "visual/particle_passes.h"

#include <emmintrin.h>

#include <type_traits>

namespace orv::detail {

// Each lane does what the plain formula does, operation by operation. What is dead is computed
// along and thrown away.

namespace {

constexpr int ALL_LANES = 15;

inline __m128 living(const float* lifetimes) {
  return _mm_cmpgt_ps(_mm_loadu_ps(lifetimes), _mm_setzero_ps());
}

inline __m128 select(__m128 mask, __m128 yes, __m128 no) {
  return _mm_or_ps(_mm_and_ps(mask, yes), _mm_andnot_ps(mask, no));
}

// Four lanes of three floats: four values of x, y, z in a row.
struct TwelveFloats {
  __m128 part[3];
};

inline TwelveFloats load_twelve(const float* p) {
  return {{_mm_loadu_ps(p), _mm_loadu_ps(p + 4), _mm_loadu_ps(p + 8)}};
}

inline TwelveFloats repeat(const vec3& v) {
  return {{_mm_setr_ps(v.x, v.y, v.z, v.x), _mm_setr_ps(v.y, v.z, v.x, v.y),
           _mm_setr_ps(v.z, v.x, v.y, v.z)}};
}

// Each lane three times.
inline TwelveFloats triple(__m128 v) {
  return {{_mm_shuffle_ps(v, v, _MM_SHUFFLE(1, 0, 0, 0)),
           _mm_shuffle_ps(v, v, _MM_SHUFFLE(2, 2, 1, 1)),
           _mm_shuffle_ps(v, v, _MM_SHUFFLE(3, 3, 3, 2))}};
}

// Both tell of a block.
inline bool is_any_alive(const float* lifetimes) {
  static_assert(PARTICLE_BLOCK == 16);
  return _mm_movemask_ps(_mm_or_ps(_mm_or_ps(living(lifetimes), living(lifetimes + 4)),
                                   _mm_or_ps(living(lifetimes + 8), living(lifetimes + 12)))) != 0;
}

inline bool are_all_alive(const float* lifetimes) {
  return _mm_movemask_ps(_mm_and_ps(_mm_and_ps(living(lifetimes), living(lifetimes + 4)),
                                    _mm_and_ps(living(lifetimes + 8), living(lifetimes + 12)))) ==
         ALL_LANES;
}

// Calls `work` for each group of four slots, with true where all of its block are alive; blocks
// without life are passed over. Blocks are so large that the answer is mostly the one before.
template <class Work>
void for_each_group(const ParticlePool& pool, SlotRange range, Work work) {
  for (unsigned int i = range.begin; i < range.end; i += PARTICLE_BLOCK) {
    if (!is_any_alive(pool.lifetimes + i)) continue;
    if (are_all_alive(pool.lifetimes + i)) {
      for (unsigned int group = 0; group < PARTICLE_BLOCK; group += 4) {
        work(i + group, std::true_type());
      }
    } else {
      for (unsigned int group = 0; group < PARTICLE_BLOCK; group += 4) {
        work(i + group, std::false_type());
      }
    }
  }
}

}  // namespace

// ---- moving -----------------------------------------------------------------------------------

void move_particles(const ParticlePool& pool, SlotRange range, const vec3& change, float dt) {
  const TwelveFloats changes = repeat(change);
  const __m128 time = _mm_set1_ps(dt);
  for_each_group(pool, range, [&](unsigned int i, auto all_alive) {
    float* velocities = pool.velocities[i].ptr();
    float* positions = pool.positions[i].ptr();
    const TwelveFloats mask = triple(living(pool.lifetimes + i));
    const TwelveFloats old_velocity = load_twelve(velocities);
    const TwelveFloats old_position = load_twelve(positions);
    for (int part = 0; part < 3; ++part) {
      __m128 velocity = _mm_add_ps(old_velocity.part[part], changes.part[part]);
      __m128 position = _mm_add_ps(old_position.part[part], _mm_mul_ps(velocity, time));
      if constexpr (!all_alive) {
        velocity = select(mask.part[part], velocity, old_velocity.part[part]);
        position = select(mask.part[part], position, old_position.part[part]);
      }
      _mm_storeu_ps(velocities + 4 * part, velocity);
      _mm_storeu_ps(positions + 4 * part, position);
    }
  });
}

// ---- sizes ------------------------------------------------------------------------------------

namespace {

// Two entries of the table, one behind the other.
inline __m128 load_two(const SizeStep* table, int first, int second) {
  const auto* low = reinterpret_cast<const __m64*>(table + first);
  const auto* high = reinterpret_cast<const __m64*>(table + second);
  return _mm_loadh_pi(_mm_loadl_pi(_mm_setzero_ps(), low), high);
}

// Values of a table at four places, which lie inside it.
inline __m128 look_up(const SizeStep* table, __m128 place) {
  const __m128i entry = _mm_cvttps_epi32(place);
  alignas(16) int index[4];
  _mm_store_si128(reinterpret_cast<__m128i*>(index), entry);
  const __m128 low = load_two(table, index[0], index[1]);
  const __m128 high = load_two(table, index[2], index[3]);
  const __m128 base = _mm_shuffle_ps(low, high, _MM_SHUFFLE(2, 0, 2, 0));
  const __m128 rise = _mm_shuffle_ps(low, high, _MM_SHUFFLE(3, 1, 3, 1));
  const __m128 fraction = _mm_sub_ps(place, _mm_cvtepi32_ps(entry));
  return _mm_add_ps(base, _mm_mul_ps(rise, fraction));
}

void set_sizes(const ParticlePool& pool, SlotRange range, float size) {
  for (unsigned int i = range.begin; i < range.end; ++i) {
    pool.sizes[i] = pool.lifetimes[i] > 0.0f ? size : pool.sizes[i];
  }
}

}  // namespace

void size_particles(const ParticlePool& pool, SlotRange range, const SizeStep* table,
                    unsigned int count) {
  if (count == 1) return set_sizes(pool, range, table->base);
  const __m128 lifetime = _mm_set1_ps(pool.particle_lifetime);
  const __m128 last = _mm_set1_ps(static_cast<float>(count - 1));
  const __m128 limit = _mm_set1_ps(static_cast<float>(count));
  const __m128 out_of_table = _mm_set1_ps(100.0f);
  for_each_group(pool, range, [&](unsigned int i, auto all_alive) {
    const __m128 left = _mm_loadu_ps(pool.lifetimes + i);
    const __m128 place = _mm_mul_ps(_mm_div_ps(left, lifetime), last);
    const __m128 inside =
        _mm_and_ps(_mm_cmpge_ps(place, _mm_setzero_ps()), _mm_cmplt_ps(place, limit));
    __m128 size = select(inside, look_up(table, _mm_and_ps(place, inside)), out_of_table);
    if constexpr (!all_alive) {
      size = select(living(pool.lifetimes + i), size, _mm_loadu_ps(pool.sizes + i));
    }
    _mm_storeu_ps(pool.sizes + i, size);
  });
}

// ---- time left --------------------------------------------------------------------------------

void age_particles(const ParticlePool& pool, SlotRange range, float dt) {
  float* lifetimes = pool.lifetimes;
  for (unsigned int i = range.begin; i < range.end; ++i) lifetimes[i] -= dt;
}

unsigned int count_living_particles(const ParticlePool& pool) {
  const float* lifetimes = pool.lifetimes;
  unsigned int count = 0;
  for (unsigned int i = 0; i < pool.num_particles; ++i) count += lifetimes[i] > 0.0f ? 1 : 0;
  return count;
}

bool is_any_free(const float* lifetimes) {
  static_assert(PARTICLE_BLOCK == 16);
  const auto free = [=](int i) {
    return _mm_cmple_ps(_mm_loadu_ps(lifetimes + i), _mm_setzero_ps());
  };
  const __m128 any = _mm_or_ps(_mm_or_ps(free(0), free(4)), _mm_or_ps(free(8), free(12)));
  return _mm_movemask_ps(any) != 0;
}

// ---- packing ----------------------------------------------------------------------------------

namespace {

struct DrawnGroup {
  __m128 position[4];
  __m128 color[4];
};

class ParticlePacker {
 public:
  ParticlePacker(const ParticlePool& pool, float lifetime, vec4* positions, vec4* colors)
      : pool_(pool),
        lifetime_(_mm_set1_ps(lifetime)),
        positions_(positions->ptr()),
        colors_(colors->ptr()) {}

  unsigned int pack() {
    // A slot of the target may be written before it is known whether another particle takes its
    // place; not so behind the last particle.
    const unsigned int end = end_of_living();
    const unsigned int whole = end / PARTICLE_BLOCK * PARTICLE_BLOCK;
    for_each_group(pool_, {0, whole}, [this](unsigned int i, auto all_alive) {
      const DrawnGroup group = make_group(i);
      const auto lanes = all_alive ? 15u : static_cast<unsigned int>(lanes_of(i));
      for (unsigned int lane = 0; lane < 4; ++lane) {
        store(group, lane);
        packed_ += (lanes >> lane) & 1u;
      }
    });
    for (unsigned int i = whole; i < end; i += 4) pack_one_by_one(i);
    return packed_;
  }

 private:
  // Behind the last particle.
  unsigned int end_of_living() const {
    unsigned int end = pool_.num_particles;
    while (end > 0 && !(pool_.lifetimes[end - 1] > 0.0f)) {
      const bool whole_block = end % PARTICLE_BLOCK == 0;
      const bool dead = whole_block && !is_any_alive(pool_.lifetimes + end - PARTICLE_BLOCK);
      end -= dead ? PARTICLE_BLOCK : 1;
    }
    return end;
  }

  int lanes_of(unsigned int i) const { return _mm_movemask_ps(living(pool_.lifetimes + i)); }

  DrawnGroup make_group(unsigned int i) const {
    const TwelveFloats p = load_twelve(pool_.positions[i].ptr());
    const __m128 size = _mm_loadu_ps(pool_.sizes + i);
    const __m128 one = _mm_set1_ps(1.0f);
    const __m128 left = _mm_loadu_ps(pool_.lifetimes + i);
    const __m128 alpha = _mm_sub_ps(one, _mm_div_ps(_mm_sub_ps(lifetime_, left), lifetime_));
    // x0 y0 z0 x1, y1 z1 x2 y2, z2 x3 y3 z3
    const __m128 z0s0 = _mm_shuffle_ps(p.part[0], size, _MM_SHUFFLE(0, 0, 2, 2));
    const __m128 x1y1 = _mm_shuffle_ps(p.part[0], p.part[1], _MM_SHUFFLE(0, 0, 3, 3));
    const __m128 z1s1 = _mm_shuffle_ps(p.part[1], size, _MM_SHUFFLE(1, 1, 1, 1));
    const __m128 z2s2 = _mm_shuffle_ps(p.part[2], size, _MM_SHUFFLE(2, 2, 0, 0));
    const __m128 z3s3 = _mm_shuffle_ps(p.part[2], size, _MM_SHUFFLE(3, 3, 3, 3));
    const __m128 low = _mm_unpacklo_ps(one, alpha), high = _mm_unpackhi_ps(one, alpha);
    return {{_mm_shuffle_ps(p.part[0], z0s0, _MM_SHUFFLE(2, 0, 1, 0)),
             _mm_shuffle_ps(x1y1, z1s1, _MM_SHUFFLE(2, 0, 2, 0)),
             _mm_shuffle_ps(p.part[1], z2s2, _MM_SHUFFLE(2, 0, 3, 2)),
             _mm_shuffle_ps(p.part[2], z3s3, _MM_SHUFFLE(2, 0, 2, 1))},
            {_mm_movelh_ps(one, low), _mm_shuffle_ps(one, low, _MM_SHUFFLE(3, 2, 0, 0)),
             _mm_movelh_ps(one, high), _mm_shuffle_ps(one, high, _MM_SHUFFLE(3, 2, 0, 0))}};
  }

  void store(const DrawnGroup& group, unsigned int lane) {
    const std::size_t place = std::size_t{packed_} * 4;
    _mm_storeu_ps(positions_ + place, group.position[lane]);
    _mm_storeu_ps(colors_ + place, group.color[lane]);
  }

  void pack_one_by_one(unsigned int i) {
    const DrawnGroup group = make_group(i);
    for (unsigned int lane = 0; lane < 4; ++lane) {
      if (!(pool_.lifetimes[i + lane] > 0.0f)) continue;
      store(group, lane);
      ++packed_;
    }
  }

  const ParticlePool& pool_;
  __m128 lifetime_;
  float* positions_;
  float* colors_;
  unsigned int packed_ = 0;
};

}  // namespace

unsigned int pack_particles(const ParticlePool& pool, float lifetime, vec4* positions,
                            vec4* colors) {
  return ParticlePacker(pool, lifetime, positions, colors).pack();
}

}  // namespace orv::detail
