#include <orv/geometry/mesh.h>

#include <cstring>

namespace orv {

vec4* Mesh::get_vertex_particles() { return mesh_data_ ? mesh_data_->vertex_particles : nullptr; }

// ---- one and all ----

void Mesh::set_vertex_particle(unsigned int i, const vec4& v) {
  vec4* particles = get_vertex_particles();
  if (particles && i < mesh_data_->num_vertices) particles[i] = v;
}

void Mesh::set_vertex_particle_w(unsigned int i, float w) {
  vec4* particles = get_vertex_particles();
  if (particles && i < mesh_data_->num_vertices) particles[i].w = w;
}

void Mesh::set_vertices_particle_w(float w) {
  vec4* particles = get_vertex_particles();
  if (!particles) return;
  for (unsigned int i = 0; i < mesh_data_->num_vertices; ++i) particles[i].w = w;
}

bool Mesh::update_vertex_particle_from_position() {
  vec4* particles = get_vertex_particles();
  if (!particles) return false;
  const unsigned int n = mesh_data_->num_vertices;
  const VertexAttribArray* array =
      mesh_data_->has_separate_vertex_arrays() ? mesh_data_->get_vertex_attrib_array(0) : nullptr;
  const bool whole_block = array && array->data_vec4 &&
                           mesh_data_->get_position_elt_size() == static_cast<int>(sizeof(vec4)) &&
                           static_cast<unsigned int>(array->num_elements) >= n;
  if (whole_block) {
    std::memcpy(static_cast<void*>(particles), array->data_vec4, std::size_t{n} * sizeof(vec4));
    return true;
  }
  for (unsigned int i = 0; i < n; ++i) particles[i] = mesh_data_->get_position_4f(i);
  return true;
}

// ---- pinning borders ----

namespace {

/// What is smaller and greater than any extent that the scan is made for.
constexpr float FAR = 1e8f;

struct ParticleExtent {
  float min[3] = {FAR, FAR, FAR};
  float max[3] = {-FAR, -FAR, -FAR};

  ParticleExtent(const vec4* particles, unsigned int n) {
    for (unsigned int i = 0; i < n; ++i) {
      const float* p = particles[i].ptr();
      for (int axis = 0; axis < 3; ++axis) {
        if (p[axis] < min[axis]) min[axis] = p[axis];
        if (p[axis] > max[axis]) max[axis] = p[axis];
      }
    }
  }

  /// Borders on which the particle lies.
  unsigned int borders_of(const vec4& p) const {
    unsigned int borders = 0;
    if (p.x <= min[0]) borders |= MESH_PLANE_BORDER_X_MIN;
    if (p.x >= max[0]) borders |= MESH_PLANE_BORDER_X_MAX;
    if (p.z <= min[2]) borders |= MESH_PLANE_BORDER_Z_MIN;
    if (p.z >= max[2]) borders |= MESH_PLANE_BORDER_Z_MAX;
    if (p.y <= min[1]) borders |= MESH_PLANE_BORDER_Y_MIN;
    if (p.y >= max[1]) borders |= MESH_PLANE_BORDER_Y_MAX;
    return borders;
  }
};

constexpr unsigned int X_BORDERS = MESH_PLANE_BORDER_X_MIN | MESH_PLANE_BORDER_X_MAX;
constexpr unsigned int Z_BORDERS = MESH_PLANE_BORDER_Z_MIN | MESH_PLANE_BORDER_Z_MAX;

}  // namespace

bool Mesh::vertex_particle_attach_border(unsigned int mask) {
  vec4* particles = get_vertex_particles();
  if (!particles) return false;
  const unsigned int n = mesh_data_->num_vertices;
  const ParticleExtent extent(particles, n);
  for (unsigned int i = 0; i < n; ++i) {
    if ((extent.borders_of(particles[i]) & mask) != 0) particles[i].w = 0.0f;
  }
  return true;
}

bool Mesh::vertex_particle_attach_border_two_points(unsigned int mask) {
  vec4* particles = get_vertex_particles();
  if (!particles) return false;
  const unsigned int n = mesh_data_->num_vertices;
  const ParticleExtent extent(particles, n);
  for (unsigned int i = 0; i < n; ++i) {
    const unsigned int borders = extent.borders_of(particles[i]);
    const bool corner = (borders & X_BORDERS) != 0 && (borders & Z_BORDERS) != 0;
    if (corner && (borders & mask & (X_BORDERS | Z_BORDERS)) != 0) particles[i].w = 0.0f;
  }
  return true;
}

}  // namespace orv
