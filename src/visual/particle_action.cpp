#include <orv/visual/particle_action.h>

#include <orv/core/log_mgr.h>
#include <orv/visual/particle_pool.h>

#include <vector>

#include "visual/particle_passes.h"

namespace orv {

namespace {

/// Places in a table are floats, which tell no more entries apart.
constexpr std::size_t MAX_SIZES = std::size_t{1} << 24;

}  // namespace

struct ParticleActionData {
  PARTICLE_ACTION_TYPE action_type = PARTICLE_ACTION_GRAVITY;
  vec3 gravity{0.0f, -9.81f, 0.0f};
  std::vector<detail::SizeStep> sizes;
};

ParticleAction::ParticleAction() : data_(new ParticleActionData) {
  set_type(NODE_TYPE_PARTICLE_ACTION);
}

ParticleAction::~ParticleAction() { delete data_; }

// ---- work -------------------------------------------------------------------------------------

void ParticleAction::update_particle(ParticlePool& /*pool*/, unsigned int /*index*/, float /*dt*/) {
}

void ParticleAction::update_particle_pool(ParticlePool& pool, float dt) {
  update_slots(pool, 0, pool.num_particles, dt);
}

void ParticleAction::update_slots(ParticlePool& pool, unsigned int begin, unsigned int end,
                                  float dt) const {
  if (data_->action_type == PARTICLE_ACTION_GRAVITY) {
    detail::move_particles(pool, {begin, end}, data_->gravity * dt, dt);
  } else if (data_->action_type == PARTICLE_ACTION_SIZE && !data_->sizes.empty()) {
    detail::size_particles(pool, {begin, end}, data_->sizes.data(),
                           static_cast<unsigned int>(data_->sizes.size()));
  }
}

// ---- settings ---------------------------------------------------------------------------------

void ParticleAction::set_action_type(PARTICLE_ACTION_TYPE type) { data_->action_type = type; }

PARTICLE_ACTION_TYPE ParticleAction::get_action_type() const { return data_->action_type; }

void ParticleAction::set_gravity(const vec3& gravity) { data_->gravity = gravity; }

void ParticleAction::set_gravity(float x, float y, float z) { data_->gravity = vec3(x, y, z); }

vec3 ParticleAction::get_gravity() const { return data_->gravity; }

void ParticleAction::add_size(float size) {
  std::vector<detail::SizeStep>& sizes = data_->sizes;
  if (sizes.size() == MAX_SIZES) {
    LogMgr::get().tracef_debug("Particle action %s - the table of sizes is full", get_name());
    return;
  }
  sizes.push_back({size, size - size});
  if (sizes.size() == 1) return;
  detail::SizeStep& before = sizes[sizes.size() - 2];
  before.rise = size - before.base;
}

unsigned int ParticleAction::get_num_sizes() const {
  return static_cast<unsigned int>(data_->sizes.size());
}

float ParticleAction::get_size(unsigned int index) const {
  return index < data_->sizes.size() ? data_->sizes[index].base : 0.0f;
}

}  // namespace orv
