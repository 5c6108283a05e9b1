// A hundred thousand boxes in one draw: the mesh is one box, the rest stands in instance streams.
#include <cmath>

#include "common/example.h"

using namespace examples;
using orv::vec4;

namespace {

// Each stream is an attribute that steps once for each instance.
const char* const vertex = R"(
ATTRIBUTE vec4 orvex_Position;
ATTRIBUTE vec4 orvex_Normal;
ATTRIBUTE vec4 orvex_Instance_Position;
ATTRIBUTE vec4 orvex_Instance_Rotation;
ATTRIBUTE vec4 orvex_Instance_Scale;
ATTRIBUTE vec4 orvex_Instance_Color;
uniform mat4 orvex_ModelMatrix;
uniform mat4 orvex_ModelViewProjectionMatrix;
VARYING vec3 normal;
VARYING vec3 color;

vec3 turn(vec3 v, vec4 q) { return v + 2.0 * cross(q.xyz, cross(q.xyz, v) + q.w * v); }

void main() {
  vec3 place = turn(orvex_Position.xyz * orvex_Instance_Scale.xyz, orvex_Instance_Rotation) +
               orvex_Instance_Position.xyz;
  normal = mat3(orvex_ModelMatrix) * turn(orvex_Normal.xyz, orvex_Instance_Rotation);
  color = orvex_Instance_Color.rgb;
  gl_Position = orvex_ModelViewProjectionMatrix * vec4(place, 1.0);
}
)";

const char* const pixel = R"(
VARYING vec3 normal;
VARYING vec3 color;

void main() {
  float light = max(dot(normalize(normal), normalize(vec3(-0.5, 0.8, 0.35))), 0.0);
  PIXEL = vec4(color * (0.40 + 0.75 * light), 1.0);
}
)";

}  // namespace

class Instancing : public Example {
 public:
  bool create() override {
    look(vec4(0.0f, 58.0f, 108.0f), vec4(0.0f, -4.5f, 0.0f), 36.0f);
    if (!renderer->is_instancing_supported()) return missing("instancing");

    boxes_ = keep(new orv::MeshBox);
    boxes_->set_build_params(1.0f, 1.0f, 1.0f, 1, 1, 1);
    boxes_->build(nullptr);  // vertices first: building anew would free the streams
    if (!boxes_->instancing_init(count, orv::InstancingInitParams())) return fail("no memory");
    for (unsigned int i = 0; i < count; ++i) place(i);
    boxes_->add_material(make_material("boxes", make_program("boxes", vertex, pixel)), nullptr);
    return true;
  }

  void draw(float time) override {
    boxes_->set_orientation_euler_xyz(0.0f, time * 6.0f + 23.0f, 0.0f);
    boxes_->render(renderer, nullptr);
  }

 private:
  static constexpr unsigned int count = 100000;

  // A block of 50 x 40 x 50, coloured by the place, in which waves run outwards.
  void place(unsigned int i) {
    const float x = static_cast<float>(i % 50) - 24.5f;
    const float y = static_cast<float>(i / 50 % 40) - 19.5f;
    const float z = static_cast<float>(i / 2000) - 24.5f;
    const float wave = std::cos(std::sqrt(x * x + y * y + z * z) * 0.55f);
    const float size = 0.68f + 0.28f * wave;
    boxes_->set_instance_position(i, vec4(x, y, z));
    boxes_->set_instance_scale(i, vec4(size, size, size));
    orv::quat turn;
    turn.from_axis_angle(20.0f - 20.0f * wave, vec4(0.0f, 1.0f, 0.0f));
    boxes_->set_instance_rotation(i, turn);
    boxes_->set_instance_color(i, vec4(0.58f + x * 0.015f, 0.55f + y * 0.015f, 0.62f - z * 0.014f));
  }

  orv::MeshBox* boxes_ = nullptr;
};

int main(int argc, char** argv) { return run<Instancing>(argc, argv, "Instancing"); }
