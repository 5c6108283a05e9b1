// Picking: a ray through a pixel, the triangle that it hits and the place where it does.
#include "common/example.h"

using namespace examples;
using orv::vec4;

class Picking : public Example {
 public:
  bool create() override {
    look(vec4(2.2f, 3.0f, 9.5f), vec4(-0.6f, 0.0f, 0.0f), 35.0f);
    add_solid("dodecahedron", GREEN, vec4(2.2f, 0.1f, -2.2f));
    add_solid("icosahedron", BLUE, vec4(0.7f, 0.0f, 0.0f));
    add_solid("octohedron", ORANGE, vec4(-1.2f, 0.0f, -2.4f));

    // The camera that picks: a small picture of 160 x 120 pixels, with a view of its own.
    picker_.build_projection_persp(34.0f, 160.0f / 120.0f, 0.5f, 50.0f, true);
    picker_.set_viewport(0, 0, 160, 120);
    picker_.set_position(-3.0f, 0.9f, 3.2f);
    picker_.set_lookat(0.6f, -0.1f, 0.0f);

    mark_ = keep(new orv::MeshTriangle);
    mark_->add_material(flat_material(), nullptr);
    point_ = keep(new orv::MeshSphere);
    point_->set_build_params(0.07f, 16, 24);
    point_->build(nullptr);
    point_->set_vertices_color(WHITE, nullptr);
    point_->add_material(flat_material(), nullptr);
    line_ = keep(new orv::Line);
    line_->build(nullptr);
    line_->set_start_color(YELLOW);
    line_->set_end_color(YELLOW);
    line_->add_material(flat_material(), nullptr);
    add_frame();
    return true;
  }

  void draw(float time) override {
    orv::Ray ray;
    orv::RayCaster::get_ray(&picker_, 88, 56, ray);  // pixels from the upper left corner
    orv::RayObjectIntersection nearest;
    for (orv::Mesh* solid : solids_) {
      solid->set_orientation_euler_xyz(10.0f, (time - still_time) * 20.0f + 8.0f, 0.0f);
      solid->bounding_volume_update(true, nullptr);  // a ray meets the bounding sphere first
      orv::RayObjectIntersection hit;
      if (!orv::RayCaster::cast_ray_object(ray, solid, hit)) continue;
      if (!nearest.object || hit.distance < nearest.distance) nearest = hit;
    }

    for (orv::Mesh* solid : solids_) solid->render(renderer, nullptr);
    frame_->render(renderer, nullptr);
    if (!nearest.object) return;
    show(ray, nearest);
    mark_->render(renderer, nullptr);
    point_->render(renderer, nullptr);
    line_->render(renderer, nullptr);
  }

 private:
  void add_solid(const char* name, const vec4& color, const vec4& place) {
    orv::MeshParShape* solid = keep(new orv::MeshParShape);
    solid->set_shape_type(name);
    solid->build(nullptr);
    solid->set_vertices_color(color, nullptr);
    solid->set_position(place);
    solid->set_scale(1.25f, 1.25f, 1.25f);
    solid->add_material(lit_material(), nullptr);
    solids_.push_back(solid);
  }

  // A hit names the object, the face, and the point in the space of the world.
  void show(const orv::Ray& ray, const orv::RayObjectIntersection& hit) {
    unsigned int index[3] = {};
    vec4 corner[3];
    orv::Mesh* solid = static_cast<orv::Mesh*>(hit.object);
    solid->get_face_indexes(hit.face, &index[0], &index[1], &index[2]);
    for (int i = 0; i < 3; ++i) {
      solid->get_vertex_absolute_position(index[i], &corner[i]);
      corner[i] += ray.direction * -0.02f;  // a little in front of the face itself
    }
    mark_->set_build_params(corner[0], corner[1], corner[2]);
    mark_->build(nullptr);
    mark_->set_vertices_color(RED, nullptr);
    point_->set_position(hit.point);
    line_->set_start_position(ray.origin.get_vec3());
    line_->set_end_position(hit.point.get_vec3());
  }

  // The view of the picking camera, from the rays through the corners of its picture.
  void add_frame() {
    constexpr int corners[][2] = {{0, 0}, {159, 0}, {159, 119}, {0, 119}};
    frame_ = keep(new orv::Polyline);
    frame_->initialize(16, orv::LINE_RENDER_LINES);
    for (unsigned int i = 0; i < 4; ++i) {
      const unsigned int next = (i + 1) % 4;
      orv::Ray ray, other;
      orv::RayCaster::get_ray(&picker_, corners[i][0], corners[i][1], ray);
      orv::RayCaster::get_ray(&picker_, corners[next][0], corners[next][1], other);
      frame_->set_vertex_position(i * 4, picker_.get_position());
      frame_->set_vertex_position(i * 4 + 1, ray.origin + ray.direction * 1.0f);
      frame_->set_vertex_position(i * 4 + 2, ray.origin + ray.direction * 1.0f);
      frame_->set_vertex_position(i * 4 + 3, other.origin + other.direction * 1.0f);
    }
    frame_->set_vertices_color(WHITE, nullptr);
    frame_->add_material(flat_material(), nullptr);
  }

  orv::Camera picker_;
  std::vector<orv::Mesh*> solids_;
  orv::MeshTriangle* mark_ = nullptr;
  orv::MeshSphere* point_ = nullptr;
  orv::Line* line_ = nullptr;
  orv::Polyline* frame_ = nullptr;
};

int main(int argc, char** argv) { return run<Picking>(argc, argv, "Picking"); }
