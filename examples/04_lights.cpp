// Three point lights: each sends its values to the program under names that end in its index.
#include <cmath>

#include "common/example.h"

using namespace examples;
using orv::vec4;

namespace {

const char* const vertex = R"(
ATTRIBUTE vec4 orvex_Position;
ATTRIBUTE vec4 orvex_Normal;
uniform mat4 orvex_ModelMatrix;
uniform mat4 orvex_ModelViewProjectionMatrix;
VARYING vec3 position;
VARYING vec3 normal;

void main() {
  position = (orvex_ModelMatrix * vec4(orvex_Position.xyz, 1.0)).xyz;
  normal = mat3(orvex_ModelMatrix) * orvex_Normal.xyz;
  gl_Position = orvex_ModelViewProjectionMatrix * vec4(orvex_Position.xyz, 1.0);
}
)";

const char* const pixel = R"(
VARYING vec3 position;
VARYING vec3 normal;
uniform vec4 camera_position;
uniform vec4 orv_light_position_0;
uniform vec4 orv_light_position_1;
uniform vec4 orv_light_position_2;
uniform vec4 orv_light_diffuse_0;
uniform vec4 orv_light_diffuse_1;
uniform vec4 orv_light_diffuse_2;
uniform float orv_light_radius_0;  // here all lights have the same

vec3 shine(vec3 light, vec3 color) {
  vec3 way = light - position;
  vec3 to_light = normalize(way);
  vec3 to_eye = normalize(camera_position.xyz - position);
  float reach = clamp(1.0 - length(way) / orv_light_radius_0, 0.0, 1.0);
  float diffuse = max(dot(normalize(normal), to_light), 0.0);
  float specular = pow(max(dot(normalize(normal), normalize(to_light + to_eye)), 0.0), 60.0);
  return color * reach * reach * (0.9 * diffuse + 0.8 * specular);
}

void main() {
  vec3 sum = vec3(0.0063) + shine(orv_light_position_0.xyz, orv_light_diffuse_0.rgb) +
             shine(orv_light_position_1.xyz, orv_light_diffuse_1.rgb) +
             shine(orv_light_position_2.xyz, orv_light_diffuse_2.rgb);
  PIXEL = vec4(pow(min(sum, vec3(1.0)), vec3(1.0 / 2.2)), 1.0);
}
)";

}  // namespace

class Lights : public Example {
 public:
  bool create() override {
    look(vec4(0.0f, 6.5f, 12.0f), vec4(0.0f, 0.7f, 0.0f), 33.0f);
    background_top = background_bottom = vec4(0.05f, 0.05f, 0.06f, 1.0f);
    program_ = make_program("three lights", vertex, pixel);
    if (!program_) return false;
    orv::Material* material = make_material("surface", program_);

    orv::MeshEllipse* floor = keep(new orv::MeshEllipse);
    floor->set_build_params(4.6f, 4.6f, 96, 2, 360.0f);
    things_.push_back(floor);
    for (int i = 0; i < 7; ++i) {
      orv::MeshSphere* ball = keep(new orv::MeshSphere);
      ball->set_build_params(i ? 0.6f : 1.1f, 40, 60);
      const float angle = static_cast<float>(i) * 1.0472f;
      ball->set_position(i ? std::cos(angle) * 2.9f : 0.0f, i ? 0.6f : 1.1f,
                         i ? std::sin(angle) * 2.9f : 0.0f);
      things_.push_back(ball);
    }
    for (orv::Mesh* thing : things_) {
      thing->build(nullptr);
      thing->add_material(material, nullptr);
    }

    const vec4 colors[] = {vec4(1.0f, 0.20f, 0.06f), vec4(0.06f, 0.80f, 0.20f),
                           vec4(0.10f, 0.26f, 1.0f)};
    for (unsigned int i = 0; i < 3; ++i) {
      lights_[i].set_index(i);
      lights_[i].set_diffuse(colors[i]);
      lights_[i].set_radius(6.5f);
      lights_[i].enable_fixed_pipeline(false);  // uniforms in place of built-in state

      bulbs_[i] = keep(new orv::MeshSphere);
      bulbs_[i]->set_build_params(0.12f, 16, 24);
      bulbs_[i]->build(nullptr);
      bulbs_[i]->set_vertices_color(colors[i] * 0.6f + vec4(0.4f, 0.4f, 0.4f, 0.4f), nullptr);
      bulbs_[i]->add_material(flat_material(), nullptr);
    }
    return true;
  }

  void draw(float time) override {
    program_->bind(renderer);  // a light sends its values to the current program
    for (int i = 0; i < 3; ++i) {
      const float angle = time * 0.8f + static_cast<float>(i) * 2.0944f;
      const vec4 place(std::cos(angle) * 2.3f, 2.1f, std::sin(angle) * 2.3f);
      lights_[i].set_position(place);
      lights_[i].bind(renderer);
      bulbs_[i]->set_position(place);
    }
    program_->set_uniform_4f(renderer, "camera_position", camera.get_position());
    for (orv::Mesh* thing : things_) thing->render(renderer, nullptr);
    for (orv::Mesh* bulb : bulbs_) bulb->render(renderer, nullptr);
  }

 private:
  orv::GpuProgram* program_ = nullptr;
  orv::Light lights_[3];
  orv::MeshSphere* bulbs_[3] = {};
  std::vector<orv::Mesh*> things_;
};

int main(int argc, char** argv) { return run<Lights>(argc, argv, "Lights"); }
