// Vertex particles: a cloth that hangs by two corners and falls over a ball, computed by the CPU.
#include <cmath>

#include "common/example.h"

using namespace examples;
using orv::vec4;

class Cloth : public Example {
 public:
  bool create() override {
    look(vec4(4.5f, 2.0f, 8.0f), vec4(0.1f, 0.2f, -1.0f), 33.0f);
    still_time = 2.4f;

    cloth_ = keep(new orv::MeshPlane);
    cloth_->set_build_params(side, side, cells, cells);
    cloth_->build(nullptr);
    cloth_->translate_vertices_position(vec4(0.0f, 2.6f, 0.0f), nullptr);
    for (unsigned int i = 0; i < cloth_->get_num_vertices(nullptr); ++i) {
      const unsigned int x = i % (cells + 1), z = i / (cells + 1);
      cloth_->set_vertex_color(i, (x / 3 + z / 3) % 2 ? WHITE : RED);
    }
    cloth_->add_material(lit_material(), nullptr);

    // A particle starts at its vertex; w is its weight. The two corners at the far border are
    // pinned: their w becomes 0.
    cloth_->update_vertex_particle_from_position();
    cloth_->vertex_particle_attach_border_two_points(orv::MESH_PLANE_BORDER_Z_MIN);
    particles_ = cloth_->get_vertex_particles();
    if (!particles_) return fail("no vertex particles");
    before_.assign(particles_, particles_ + cloth_->get_num_vertices(nullptr));

    ball_ = keep(new orv::MeshSphere);
    ball_->set_build_params(radius, 48, 64);
    ball_->build(nullptr);
    ball_->set_vertices_color(TEAL, nullptr);
    ball_->set_position(ball_place);
    ball_->add_material(lit_material(), nullptr);
    return true;
  }

  void draw(float time) override {
    for (; clock_ < time; clock_ += step) move();
    cloth_->update_vertex_attrib_buffer(orv::VERTEX_ATTRIB_POSITION, particles_);
    cloth_->compute_faces_normal(nullptr);
    cloth_->compute_vertices_normal(nullptr);  // the mean of the faces that meet
    ball_->render(renderer, nullptr);
    cloth_->render(renderer, nullptr);
  }

 private:
  static constexpr int cells = 28;
  static constexpr float side = 4.4f;
  static constexpr float step = 1.0f / 100.0f;
  static constexpr float radius = 1.5f;
  const vec4 ball_place{0.0f, -0.5f, -0.6f, 1.0f};

  void move() {
    for (std::size_t i = 0; i < before_.size(); ++i) {
      vec4& p = particles_[i];
      const vec4 last = p;
      if (p.w == 0.0f) continue;
      // Where it was tells how fast it is.
      p.x += (p.x - before_[i].x) * 0.992f;
      p.y += (p.y - before_[i].y) * 0.992f - 9.81f * step * step;
      p.z += (p.z - before_[i].z) * 0.992f;
      before_[i] = last;
    }
    for (int pass = 0; pass < 8; ++pass) {
      for (int z = 0; z <= cells; ++z) {
        for (int x = 0; x <= cells; ++x) {
          if (x < cells) join(x, z, x + 1, z);
          if (z < cells) join(x, z, x, z + 1);
          if (x < cells && z < cells) join(x, z, x + 1, z + 1);
          if (x < cells && z < cells) join(x + 1, z, x, z + 1);
        }
      }
      for (std::size_t i = 0; i < before_.size(); ++i) keep_outside(particles_[i]);
    }
  }

  // Pulls two particles back to the distance that they began with.
  void join(int ax, int az, int bx, int bz) {
    vec4& a = particles_[az * (cells + 1) + ax];
    vec4& b = particles_[bz * (cells + 1) + bx];
    const float rest = side / cells * (ax != bx && az != bz ? 1.41421356f : 1.0f);
    const float dx = b.x - a.x, dy = b.y - a.y, dz = b.z - a.z;
    const float length = std::sqrt(dx * dx + dy * dy + dz * dz);
    if (!(length > 0.0f) || a.w + b.w == 0.0f) return;
    const float share = (length - rest) / length / (a.w + b.w);
    a += vec4(dx, dy, dz, 0.0f) * (share * a.w);
    b -= vec4(dx, dy, dz, 0.0f) * (share * b.w);
  }

  void keep_outside(vec4& p) const {
    const float dx = p.x - ball_place.x, dy = p.y - ball_place.y, dz = p.z - ball_place.z;
    const float length = std::sqrt(dx * dx + dy * dy + dz * dz);
    const float least = radius + 0.03f;
    if (p.w == 0.0f || length >= least || !(length > 0.0f)) return;
    const float out = (least - length) / length;
    p += vec4(dx * out, dy * out, dz * out, 0.0f);
  }

  orv::MeshPlane* cloth_ = nullptr;
  orv::MeshSphere* ball_ = nullptr;
  vec4* particles_ = nullptr;
  std::vector<vec4> before_;
  float clock_ = 0.0f;
};

int main(int argc, char** argv) { return run<Cloth>(argc, argv, "Cloth of vertex particles"); }
