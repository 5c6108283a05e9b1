#include <orv/geometry/primitives/mesh_pq_torus.h>

#include <cmath>
#include <vector>

#include "geometry/primitives/shape_build.h"

namespace orv {

MeshPQTorus::MeshPQTorus() : MeshPQTorus(VERTEX_FORMAT_DEFAULT) {}

MeshPQTorus::MeshPQTorus(VERTEX_FORMAT format)
    : Mesh(format), radius_(static_cast<float>(std::sin(0.2) * 0.5 + 1.5)) {
  set_type(NODE_TYPE_MESH_PQ_TORUS);
}

MeshPQTorus::MeshPQTorus(const MeshPQTorus& other) : MeshPQTorus() { *this = other; }

bool MeshPQTorus::set_build_params(int u_steps, int v_steps, float radius, float tube_radius,
                                   float twist_freq, float twist_phase, float twist_amount,
                                   float u_tiling, float v_tiling, float p, float q) {
  u_steps_ = u_steps;
  v_steps_ = v_steps;
  radius_ = radius;
  tube_radius_ = tube_radius;
  twist_freq_ = twist_freq;
  twist_phase_ = twist_phase;
  twist_amount_ = twist_amount;
  u_tiling_ = u_tiling;
  v_tiling_ = v_tiling;
  p_ = p;
  q_ = q;
  update_build_state(true);
  return true;
}

bool MeshPQTorus::_build() {
  return build_when_dirty(*this, [this] { return _build_pq_torus(); });
}

bool MeshPQTorus::_build_pq_torus() {
  if (u_steps_ < 1 || v_steps_ < 1) return begin_shape(*this, 0);
  const std::uint64_t u_steps = static_cast<std::uint64_t>(u_steps_);
  const std::uint64_t v_steps = static_cast<std::uint64_t>(v_steps_);
  // One vertex more than is ever written.
  if (!begin_shape(*this, (v_steps + 1) * (u_steps + 1) + 1)) return false;
  // Fewer than twice the vertices, of which there is room for 2^27.
  const auto num_indices = static_cast<unsigned int>((u_steps + 1) * v_steps * 2);
  if (!alloc_face_data_v2(num_indices, MESH_FACE_TRIANGLE_STRIP)) return false;
  write_indices(num_indices);
  write_rings();
  return true;
}

void MeshPQTorus::write_indices(unsigned int count) {
  unsigned int* indices = get_mesh_data()->get_indices_ptr();
  if (!indices || get_mesh_data()->get_num_faces() < count) return;
  const unsigned int ring_length = static_cast<unsigned int>(v_steps_) + 1;
  for (unsigned int j = 0; j < static_cast<unsigned int>(v_steps_); ++j) {
    for (unsigned int i = 0; i <= static_cast<unsigned int>(u_steps_); ++i) {
      *indices++ = ring_length * i + 1 + j;
      *indices++ = ring_length * i + j;
    }
  }
}

namespace {

/// The knot that the tube follows.
struct Knot {
  float radius;
  float p;
  float q;
  float steps;

  vec3 center(int i) const {
    const float a = TWO_PI * p * static_cast<float>(i) / steps;
    const float b = TWO_PI * q * static_cast<float>(i) / steps;
    const float r = (sin_of(b) + 2.0f) * 0.5f * radius;
    return vec3(cos_of(a) * r, cos_of(b) * r, sin_of(a) * r);
  }
};

}  // namespace

void MeshPQTorus::write_rings() {
  const Knot knot = {radius_, p_, q_, static_cast<float>(u_steps_)};
  const unsigned int ring_length = static_cast<unsigned int>(v_steps_) + 1;
  ShapeVertices vertices(*get_mesh_data());

  std::vector<vec2> circle;  // cosine and sine of the ring's vertices
  for (int j = 0; j < v_steps_; ++j) {
    const float theta = TWO_PI * static_cast<float>(j) / static_cast<float>(v_steps_);
    circle.emplace_back(cos_of(theta), sin_of(theta));
  }
  const auto u_of = [this](int j) {
    return static_cast<float>(j) / static_cast<float>(v_steps_) * u_tiling_;
  };

  const unsigned int last_ring = ring_length * static_cast<unsigned int>(u_steps_);
  for (int i = 0; i < u_steps_; ++i) {
    const vec3 center = knot.center(i);
    const vec3 next = knot.center(i + 1);
    const vec3 along = next - center;
    vec3 side = along.cross(next + center);
    vec3 up = side.cross(along);
    side.normalize();
    up.normalize();
    const float phase =
        TWO_PI * twist_freq_ * static_cast<float>(i) / static_cast<float>(u_steps_) + twist_phase_;
    const float along_side = (cos_of(phase) * twist_amount_ + 1.0f) * tube_radius_;
    const float along_up = (sin_of(phase) * twist_amount_ + 1.0f) * tube_radius_;
    const float v = static_cast<float>(i) / static_cast<float>(u_steps_) * v_tiling_;

    const unsigned int first = ring_length * static_cast<unsigned int>(i);
    for (int j = 0; j < v_steps_; ++j) {
      const vec2& direction = circle[static_cast<std::size_t>(j)];
      const vec3 position =
          center + side * (direction.x * along_side) + up * (direction.y * along_up);
      vec3 normal = position - center;
      normal.normalize();
      vertices.write(first + static_cast<unsigned int>(j), vec4(position), normal, u_of(j), v);
      // The seam of each ring repeats its first vertex, the last ring the first one.
      if (j == 0) vertices.write(first + ring_length - 1, vec4(position), normal, u_tiling_, v);
      if (i != 0) continue;
      vertices.write(last_ring + static_cast<unsigned int>(j), vec4(position), normal, u_of(j),
                     v_tiling_);
      if (j == 0) {
        vertices.write(last_ring + ring_length - 1, vec4(position), normal, u_tiling_, v_tiling_);
      }
    }
  }
}

}  // namespace orv
