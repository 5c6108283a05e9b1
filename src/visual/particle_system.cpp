#include <orv/visual/particle_system.h>

#include <orv/geometry/vertex_pool.h>
#include <orv/visual/particle_action.h>
#include <orv/visual/particle_emitter.h>
#include <orv/visual/particle_pool.h>

#include <algorithm>
#include <memory>
#include <typeinfo>

#include "scene/node_data.h"
#include "visual/particle_passes.h"

namespace orv {

struct ParticleSystemData {
  explicit ParticleSystemData(Node* system) : emitters(system), actions(system) {
    NodeData::of(system).has_other_lists = true;
  }

  // Nodes that a host ends by itself leave these lists.
  ChildList emitters;
  ChildList actions;
  float particle_lifetime = 1.0f;
};

ParticleSystem::ParticleSystem() : data_(new ParticleSystemData(this)), pool_(nullptr) {
  set_type(NODE_TYPE_PARTICLE_SYSTEM);
}

ParticleSystem::~ParticleSystem() {
  terminate(nullptr);
  delete data_;
}

// ---- life -------------------------------------------------------------------------------------

bool ParticleSystem::_cleanup(Renderer* renderer) {
  terminate(renderer);
  // The analyzer takes ParticlePool::free for the function of the C library.
  return Object::_cleanup(renderer);  // NOLINT(clang-analyzer-unix.Malloc)
}

bool ParticleSystem::initialize(unsigned int max_particles) {
  if (pool_) return true;
  auto pool = std::make_unique<ParticlePool>();
  pool->alloc(max_particles);
  pool->particle_lifetime = data_->particle_lifetime;
  pool_ = pool.release();
  return true;
}

namespace {

void release_all(ChildList& list, Renderer* renderer) {
  while (Node* node = list.at(0)) {
    list.remove(node);
    node->release(renderer, nullptr);
  }
}

}  // namespace

bool ParticleSystem::terminate(Renderer* renderer) {
  release_all(data_->emitters, renderer);
  release_all(data_->actions, renderer);
  if (!pool_) return true;
  pool_->free(renderer);
  delete pool_;
  pool_ = nullptr;
  return true;
}

// ---- emitters and actions ---------------------------------------------------------------------

namespace {

template <class T>
T* append_new(ChildList& list) {
  auto node = std::make_unique<T>();
  list.append(node.get());
  return node.release();
}

bool append_given(ChildList& list, const Node* system, Node* node) {
  if (!node) return false;
  for (unsigned int i = 0; i < list.size(); ++i) {
    if (list.at(i) == node) return false;
  }
  if (NodeData::stands_below(system, node)) return false;
  list.append(node);
  return true;
}

Node* find_by_id(const ChildList& list, int id) {
  for (unsigned int i = 0; i < list.size(); ++i) {
    if (list.at(i)->get_id() == id) return list.at(i);
  }
  return nullptr;
}

Node* at_index(const ChildList& list, int index) {
  return index < 0 ? nullptr : list.at(static_cast<unsigned int>(index));
}

bool kill_by_id(ChildList& list, Renderer* renderer, int id) {
  Node* node = find_by_id(list, id);
  if (!node) return false;
  list.remove(node);
  node->release(renderer, nullptr);
  return true;
}

}  // namespace

ParticleEmitter* ParticleSystem::create_emitter() {
  return append_new<ParticleEmitter>(data_->emitters);
}

ParticleAction* ParticleSystem::create_action() {
  return append_new<ParticleAction>(data_->actions);
}

bool ParticleSystem::add_emitter(ParticleEmitter* emitter) {
  return append_given(data_->emitters, this, emitter);
}

bool ParticleSystem::add_action(ParticleAction* action) {
  return append_given(data_->actions, this, action);
}

ParticleEmitter* ParticleSystem::get_emitter(int id) const {
  return static_cast<ParticleEmitter*>(find_by_id(data_->emitters, id));
}

ParticleAction* ParticleSystem::get_action(int id) const {
  return static_cast<ParticleAction*>(find_by_id(data_->actions, id));
}

ParticleEmitter* ParticleSystem::get_emitter_by_index(int index) const {
  return static_cast<ParticleEmitter*>(at_index(data_->emitters, index));
}

ParticleAction* ParticleSystem::get_action_by_index(int index) const {
  return static_cast<ParticleAction*>(at_index(data_->actions, index));
}

int ParticleSystem::get_num_emitters() const { return static_cast<int>(data_->emitters.size()); }

int ParticleSystem::get_num_actions() const { return static_cast<int>(data_->actions.size()); }

bool ParticleSystem::kill_emitter(Renderer* renderer, int id) {
  return kill_by_id(data_->emitters, renderer, id);
}

bool ParticleSystem::kill_action(Renderer* renderer, int id) {
  return kill_by_id(data_->actions, renderer, id);
}

// ---- particles --------------------------------------------------------------------------------

unsigned int ParticleSystem::get_num_alive_particles() const {
  return pool_ ? detail::count_living_particles(*pool_) : 0;
}

void ParticleSystem::set_particle_lifetime(float seconds) {
  data_->particle_lifetime = seconds;
  if (pool_) pool_->particle_lifetime = seconds;
}

float ParticleSystem::get_particle_lifetime() const { return data_->particle_lifetime; }

ParticlePool* ParticleSystem::get_particle_pool() const { return pool_; }

// ---- a frame ----------------------------------------------------------------------------------

bool ParticleSystem::_update(float dt) {
  if (!pool_) return true;
  process_particle_emitters(dt);
  if (has_plain_actions_only()) {
    update_by_tiles(dt);
    return true;
  }
  process_particle_actions(dt);
  update_particles_lifetime(dt);
  return true;
}

int ParticleSystem::process_particle_emitters(float dt) {
  if (!pool_) return 0;
  pool_->spawn_cursor = 0;
  pool_->num_spawned_a = 0;
  pool_->num_spawned_b = 0;
  int spawned = 0;
  for (int i = 0; i < get_num_emitters(); ++i) {
    spawned += spawn_particles_emitter(*get_emitter_by_index(i), dt);
  }
  return spawned;
}

int ParticleSystem::spawn_particles_emitter(ParticleEmitter& emitter, float dt) {
  if (!pool_) return 0;
  const int count = emitter.get_num_particles_to_spawn(dt);
  if (count <= 0) return 0;
  return static_cast<int>(
      emitter.fill_slots(*pool_, static_cast<unsigned int>(count), data_->particle_lifetime));
}

void ParticleSystem::process_particle_actions(float dt) {
  if (!pool_) return;
  for (int i = 0; i < get_num_actions(); ++i) {
    get_action_by_index(i)->update_particle_pool(*pool_, dt);
  }
}

void ParticleSystem::update_particles_lifetime(float dt) {
  if (pool_) detail::age_particles(*pool_, {0, pool_->num_particles}, dt);
}

// ---- actions and ageing at once -----------------------------------------------------------------

bool ParticleSystem::has_plain_actions_only() const {
  for (int i = 0; i < get_num_actions(); ++i) {
    const ParticleAction& action = *get_action_by_index(i);
    if (typeid(action) != typeid(ParticleAction)) return false;
  }
  return true;
}

// No particle looks at another one, so that all actions and the ageing can be done with a few slots
// at a time, which are then fetched from memory once. Tiles are so small that the processor fetches
// the next one while it works on one.
void ParticleSystem::update_by_tiles(float dt) {
  constexpr unsigned int TILE = 8 * detail::PARTICLE_BLOCK;
  const int actions = get_num_actions();
  const unsigned int slots = pool_->num_particles;
  for (unsigned int begin = 0; begin < slots; begin += TILE) {
    const unsigned int end = begin + std::min(TILE, slots - begin);
    for (int i = 0; i < actions; ++i) get_action_by_index(i)->update_slots(*pool_, begin, end, dt);
    detail::age_particles(*pool_, {begin, end}, dt);
  }
}

// ---- drawing ----------------------------------------------------------------------------------

void ParticleSystem::_render(Renderer* renderer) {
  if (!renderer) return;
  vertex_pool_prepare_render();
  vertex_pool_render(renderer);
}

namespace {

// An array that can take a vec4 for each of `n` slots, or null.
VertexAttribArray* array_of_vec4(VertexPoolData& data, VERTEX_ATTRIB_TYPE attrib, unsigned int n) {
  if (!data.has_separate_vertex_arrays() || !data.has_std_vertex_attribs()) return nullptr;
  VertexAttribArray* array = data.get_vertex_attrib_array(static_cast<unsigned int>(attrib));
  const bool fits = array && array->data_vec4 && array->get_size() / sizeof(vec4) >= n;
  return fits ? array : nullptr;
}

unsigned int pack_into_arrays(const ParticlePool& pool, float lifetime,
                              VertexAttribArray& positions, VertexAttribArray& colors) {
  const unsigned int packed =
      detail::pack_particles(pool, lifetime, positions.data_vec4, colors.data_vec4);
  // An empty range would stand for the whole array.
  if (packed == 0) return 0;
  positions.mark_elements(0, packed);
  colors.mark_elements(0, packed);
  return packed;
}

// For vertices that a host has laid out anew.
unsigned int pack_by_operation(const ParticlePool& pool, float lifetime, VertexPoolData& data) {
  unsigned int packed = 0;
  for (unsigned int i = 0; i < pool.num_particles; ++i) {
    const float left = pool.lifetimes[i];
    if (!(left > 0.0f)) continue;
    const vec3& place = pool.positions[i];
    data.set_position(packed, place.x, place.y, place.z, pool.sizes[i]);
    data.set_color(packed, 1.0f, 1.0f, 1.0f, 1.0f - (lifetime - left) / lifetime);
    ++packed;
  }
  return packed;
}

}  // namespace

void ParticleSystem::vertex_pool_prepare_render() {
  if (!pool_ || !pool_->vertex_pool || !pool_->vertex_pool->get_pool_data()) return;
  VertexPool& drawn = *pool_->vertex_pool;
  VertexPoolData& data = *drawn.get_pool_data();
  VertexAttribArray* positions = array_of_vec4(data, VERTEX_ATTRIB_POSITION, pool_->num_particles);
  VertexAttribArray* colors = array_of_vec4(data, VERTEX_ATTRIB_COLOR, pool_->num_particles);
  const float lifetime = data_->particle_lifetime;
  drawn.set_render_start_offset(0);
  drawn.set_render_num_vertices(positions && colors
                                    ? pack_into_arrays(*pool_, lifetime, *positions, *colors)
                                    : pack_by_operation(*pool_, lifetime, data));
}

void ParticleSystem::vertex_pool_render(Renderer* renderer) {
  if (!renderer || !pool_ || !pool_->vertex_pool) return;
  pool_->vertex_pool->_render(renderer);
}

void ParticleSystem::set_opengl_2_3_rendering_states(bool legacy, Node* node) {
  // Whoever stands below `node` is told by the call after, once.
  if (pool_ && pool_->vertex_pool) {
    pool_->vertex_pool->set_opengl_2_3_rendering_states(legacy, nullptr);
  }
  Object::set_opengl_2_3_rendering_states(legacy, node);
}

}  // namespace orv
