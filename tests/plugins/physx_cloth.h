// The cloth of the physics module: points that keep their distances.
#pragma once

#include <orv/geometry/vertex.h>

#include <set>

#include "physx_world.h"

namespace orv::test {

class Cloth {
 public:
  int scene = 0;
  float stretch = 1.0f;
  float damping = 0.0f;
  vec3 wind;
  std::vector<int> colliders;

  Cloth(int scene_number, const Vertex_PhysXCloth* vertices, unsigned int num_vertices,
        const unsigned int* indices, unsigned int num_triangles)
      : scene(scene_number), indices_(indices, indices + std::size_t{num_triangles} * 3) {
    for (unsigned int i = 0; i < num_vertices; ++i) {
      const vec4& p = vertices[i].position;
      points_.push_back({vec3(p.x, p.y, p.z), vec3(), p.w, p.w});
    }
    std::set<std::pair<unsigned int, unsigned int>> edges;
    for (std::size_t i = 0; i < indices_.size(); ++i) {
      const unsigned int a = indices_[i], b = indices_[i % 3 == 2 ? i - 2 : i + 1];
      edges.insert({std::min(a, b), std::max(a, b)});
    }
    for (const auto& [a, b] : edges) {
      edges_.push_back({a, b, (points_[a].position - points_[b].position).length()});
    }
  }

  std::size_t num_points() const { return points_.size(); }

  void pin(unsigned int index, const vec3* position) {
    Point& point = points_[index];
    point.inverse_mass = position ? 0.0f : point.own_inverse_mass;
    if (position) point.position = *position;
    point.velocity = vec3();
  }

  /// Moves the cloth on; the work keeps one place out of the colliders.
  template <class KeepOut>
  void step(const vec3& gravity, float seconds, KeepOut keep_out) {
    std::vector<vec3> before;
    for (Point& point : points_) {
      before.push_back(point.position);
      if (point.inverse_mass == 0.0f) continue;
      point.velocity += (gravity + (wind - point.velocity) * wind_grip()) * seconds;
      point.velocity *= std::max(0.0f, 1.0f - damping * seconds);
      point.position += point.velocity * seconds;
    }
    for (int round = 0; round < 20; ++round) {
      for (const Edge& edge : edges_) keep_length(edge);
    }
    for (std::size_t i = 0; i < points_.size(); ++i) {
      Point& point = points_[i];
      if (point.inverse_mass == 0.0f) continue;
      keep_out(&point.position);
      point.velocity = (point.position - before[i]) * (1.0f / seconds);
    }
  }

  void read(Vertex_PhysXCloth* vertices) const {
    std::vector<vec3> normals(points_.size());
    for (std::size_t i = 0; i < indices_.size(); i += 3) {
      const vec3& a = points_[indices_[i]].position;
      const vec3 normal =
          (points_[indices_[i + 1]].position - a).cross(points_[indices_[i + 2]].position - a);
      for (std::size_t k = 0; k < 3; ++k) normals[indices_[i + k]] += normal;
    }
    for (std::size_t i = 0; i < points_.size(); ++i) {
      const vec3& p = points_[i].position;
      vertices[i].position = vec4(p.x, p.y, p.z, 1.0f);
      vertices[i].normal = normals[i].normalize();
      vec3 tangent = normals[i].cross(vec3(0, 1, 0));
      if (!unit(tangent, &tangent)) tangent = vec3(1, 0, 0);
      vertices[i].tangent = tangent;
    }
  }

 private:
  struct Point {
    vec3 position;
    vec3 velocity;
    float inverse_mass;
    float own_inverse_mass;
  };
  struct Edge {
    unsigned int a, b;
    float length;
  };

  float wind_grip() const { return wind.magnitude_squared() > 0.0f ? 0.5f : 0.0f; }

  void keep_length(const Edge& edge) {
    Point& a = points_[edge.a];
    Point& b = points_[edge.b];
    const float sum = a.inverse_mass + b.inverse_mass;
    vec3 direction;
    if (sum == 0.0f || !unit(a.position - b.position, &direction)) return;
    const float excess = (a.position - b.position).length() - edge.length;
    a.position -= direction * (excess * stretch * a.inverse_mass / sum);
    b.position += direction * (excess * stretch * b.inverse_mass / sum);
  }

  std::vector<Point> points_;
  std::vector<Edge> edges_;
  std::vector<unsigned int> indices_;
};

}  // namespace orv::test
