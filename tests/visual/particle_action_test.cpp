#include <orv/visual/particle_action.h>

#include <orv/math/vec3.h>
#include <orv/visual/particle_pool.h>

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "support/held.h"
#include "support/near.h"
#include "support/vtable_slot.h"

namespace orv {
namespace {

using test::Held;

constexpr float INF = std::numeric_limits<float>::infinity();
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

TEST(ParticleAction, StartsWithItsDefaults) {
  const Held<ParticleAction> action;
  EXPECT_EQ(action->get_type(), NODE_TYPE_PARTICLE_ACTION);
  EXPECT_EQ(static_cast<int>(action->get_type()), 34);
  EXPECT_TRUE(action->is_type_of(NODE_TYPE_OBJECT));
  EXPECT_EQ(action->get_action_type(), PARTICLE_ACTION_GRAVITY);
  EXPECT_EQ(static_cast<int>(PARTICLE_ACTION_GRAVITY), 0);
  EXPECT_EQ(static_cast<int>(PARTICLE_ACTION_SIZE), 1);
  EXPECT_EQ(action->get_gravity(), vec3(0, -9.81f, 0));
  EXPECT_EQ(action->get_num_sizes(), 0u);
}

TEST(ParticleAction, OwnOperationsFollowThoseOfObject) {
  const std::size_t last = test::vtable_slot(&Object::update_bounding_sphere);
  EXPECT_EQ(test::vtable_slot(&ParticleAction::update_particle), last + 1);
  EXPECT_EQ(test::vtable_slot(&ParticleAction::update_particle_pool), last + 2);
}

TEST(ParticleAction, SettingsAreKept) {
  const Held<ParticleAction> action;
  action->set_gravity(vec3(1, 2, 3));
  EXPECT_EQ(action->get_gravity(), vec3(1, 2, 3));
  action->set_gravity(4, 5, 6);
  EXPECT_EQ(action->get_gravity(), vec3(4, 5, 6));
  action->set_action_type(PARTICLE_ACTION_SIZE);
  EXPECT_EQ(action->get_action_type(), PARTICLE_ACTION_SIZE);
  action->add_size(7);
  action->add_size(8);
  EXPECT_EQ(action->get_num_sizes(), 2u);
  EXPECT_EQ(action->get_size(0), 7.0f);
  EXPECT_EQ(action->get_size(1), 8.0f);
  EXPECT_EQ(action->get_size(2), 0.0f);
}

// A pool of particles that have these times left, in slots of these numbers.
class PoolOf : public ParticlePool {
 public:
  explicit PoolOf(const std::vector<float>& left) {
    alloc(static_cast<unsigned int>(left.size()));
    std::memcpy(lifetimes, left.data(), left.size() * sizeof(float));
  }
};

// ---- gravity ----

TEST(ParticleAction, GravityMovesByTheNewVelocity) {
  PoolOf pool({1.0f, 0.0f, 0.25f});
  for (unsigned int i = 0; i < 3; ++i) {
    pool.positions[i] = vec3(1, 2, 3);
    pool.velocities[i] = vec3(4, 8, 16);
  }
  const Held<ParticleAction> action;
  action->set_gravity(2, -4, 0);
  action->update_particle_pool(pool, 0.5f);
  for (const unsigned int alive : {0u, 2u}) {
    EXPECT_EQ(pool.velocities[alive], vec3(5, 6, 16));
    EXPECT_EQ(pool.positions[alive], vec3(3.5f, 5, 11));
  }
  EXPECT_EQ(pool.velocities[1], vec3(4, 8, 16)) << "dead";
  EXPECT_EQ(pool.positions[1], vec3(1, 2, 3));
  EXPECT_EQ(pool.lifetimes[0], 1.0f) << "no action takes time";
}

TEST(ParticleAction, ZeroGravityIsFreeMotion) {
  PoolOf pool({1.0f});
  pool.positions[0] = vec3(1, 2, 3);
  pool.velocities[0] = vec3(4, 8, 16);
  const Held<ParticleAction> action;
  action->set_gravity(0, 0, 0);
  action->update_particle_pool(pool, 0.5f);
  EXPECT_EQ(pool.positions[0], vec3(3, 6, 11));
  EXPECT_EQ(pool.velocities[0], vec3(4, 8, 16));
}

TEST(ParticleAction, DeadSlotsKeepEveryBit) {
  PoolOf pool({1.0f, -1.0f, 0.0f, NOT_A_NUMBER, 1.0f});
  for (unsigned int i = 1; i < 4; ++i) {
    pool.positions[i] = vec3(-0.0f, NOT_A_NUMBER, 1);
    pool.velocities[i] = vec3(-0.0f, INF, -2);
  }
  const std::vector<vec3> positions(pool.positions, pool.positions + 5);
  const std::vector<vec3> velocities(pool.velocities, pool.velocities + 5);
  const Held<ParticleAction> action;
  action->update_particle_pool(pool, 0.5f);
  EXPECT_EQ(std::memcmp(pool.positions + 1, positions.data() + 1, 3 * sizeof(vec3)), 0);
  EXPECT_EQ(std::memcmp(pool.velocities + 1, velocities.data() + 1, 3 * sizeof(vec3)), 0);
  EXPECT_NE(pool.positions[0], positions[0]);
  EXPECT_NE(pool.positions[4], positions[4]);
}

// ---- size ----

std::vector<float> sizes_of(const std::vector<float>& table, const std::vector<float>& left,
                            float lifetime) {
  PoolOf pool(left);
  pool.particle_lifetime = lifetime;
  const Held<ParticleAction> action;
  action->set_action_type(PARTICLE_ACTION_SIZE);
  for (const float size : table) action->add_size(size);
  action->update_particle_pool(pool, 0.5f);
  return {pool.sizes, pool.sizes + left.size()};
}

TEST(ParticleAction, SizeGoesFromTheLastEntryAtBirthToTheFirstAtDeath) {
  EXPECT_EQ(sizes_of({10, 20, 60}, {8.0f, 6.0f, 4.0f, 2.0f, 1e-30f}, 8.0f),
            (std::vector<float>{60, 40, 20, 15, 10}));
}

TEST(ParticleAction, DeadSlotsKeepTheirSize) {
  EXPECT_EQ(sizes_of({10, 20}, {1.0f, 0.0f, -1.0f, 1.0f}, 1.0f),
            (std::vector<float>{20, 1, 1, 20}));
}

TEST(ParticleAction, EmptyTableDoesNothing) {
  EXPECT_EQ(sizes_of({}, {1.0f, 0.5f}, 1.0f), (std::vector<float>{1, 1}));
}

TEST(ParticleAction, SingleEntryIsTheSizeOfAll) {
  EXPECT_EQ(sizes_of({3}, {1.0f, 0.5f, 100.0f, INF, 0.0f}, 1.0f),
            (std::vector<float>{3, 3, 3, 3, 1}));
  EXPECT_EQ(sizes_of({3}, {1.0f}, 0.0f), (std::vector<float>{3}));
}

TEST(ParticleAction, MoreTimeThanALifetimeKeepsTheLastEntryThenGivesOneHundred) {
  // Of two entries the place is 1 at birth and leaves the table at 2.
  EXPECT_EQ(sizes_of({10, 20}, {1.0f, 1.5f, 1.9999f, 2.0f, 7.0f}, 1.0f),
            (std::vector<float>{20, 20, 20, 100, 100}));
  EXPECT_EQ(sizes_of({10, 20, 60}, {8.0f, 10.0f, 12.0f}, 8.0f), (std::vector<float>{60, 60, 100}));
}

TEST(ParticleAction, PlaceThatCannotBeToldGivesOneHundred) {
  EXPECT_EQ(sizes_of({10, 20}, {1.0f, 2.0f}, 0.0f), (std::vector<float>{100, 100}));
  EXPECT_EQ(sizes_of({10, 20}, {1.0f, INF}, NOT_A_NUMBER), (std::vector<float>{100, 100}));
  EXPECT_EQ(sizes_of({10, 20}, {1.0f, INF}, INF), (std::vector<float>{10, 100}));
  EXPECT_EQ(sizes_of({10, 20}, {1.0f}, -1.0f), (std::vector<float>{100}));
}

float plain_size(const std::vector<float>& table, float left, float lifetime) {
  if (table.size() == 1) return table[0];
  const float place = left / lifetime * static_cast<float>(table.size() - 1);
  if (!(place >= 0.0f && place < static_cast<float>(table.size()))) return 100.0f;
  const auto low = static_cast<std::size_t>(place);
  const std::size_t high = std::min(table.size() - 1, low + 1);
  return table[low] + (table[high] - table[low]) * (place - static_cast<float>(low));
}

TEST(ParticleAction, EverySizeIsThatOfThePlainFormula) {
  std::mt19937 generator(3);
  std::uniform_real_distribution<float> number(-1.0f, 4.0f);
  for (std::size_t entries = 1; entries <= 6; ++entries) {
    for (unsigned int slots = 1; slots <= 14; ++slots) {
      std::vector<float> table(entries), left(slots);
      for (float& size : table) size = number(generator);
      for (float& time : left) time = number(generator);
      const std::vector<float> sizes = sizes_of(table, left, 1.7f);
      for (std::size_t i = 0; i < slots; ++i) {
        const float expected = left[i] > 0.0f ? plain_size(table, left[i], 1.7f) : 1.0f;
        EXPECT_EQ(sizes[i], expected) << entries << " entries, " << left[i] << " left";
      }
    }
  }
}

// ---- others ----

TEST(ParticleAction, OtherTypesDoNothing) {
  PoolOf pool({1.0f});
  const vec3 before = pool.positions[0];
  const Held<ParticleAction> action;
  action->add_size(5);
  action->set_action_type(static_cast<PARTICLE_ACTION_TYPE>(2));
  action->update_particle_pool(pool, 1.0f);
  action->set_action_type(PARTICLE_ACTION_GRAVITY);
  action->update_particle(pool, 0, 1.0f);
  EXPECT_EQ(pool.positions[0], before);
  EXPECT_EQ(pool.velocities[0], vec3());
  EXPECT_EQ(pool.sizes[0], 1.0f);
}

TEST(ParticleAction, PoolWithoutSlotsIsLeftAlone) {
  ParticlePool pool;
  const Held<ParticleAction> action;
  action->add_size(5);
  action->update_particle_pool(pool, 1.0f);
  action->set_action_type(PARTICLE_ACTION_SIZE);
  action->update_particle_pool(pool, 1.0f);
  EXPECT_EQ(pool.positions, nullptr);
}

}  // namespace
}  // namespace orv
