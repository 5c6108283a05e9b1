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
uniform mat4 orvex_ModelViewMatrix;
uniform mat4 orvex_ModelViewProjectionMatrix;
VARYING vec3 normal;
VARYING vec3 color;
VARYING float far;

vec3 turn(vec3 v, vec4 q) { return v + 2.0 * cross(q.xyz, cross(q.xyz, v) + q.w * v); }

void main() {
  // Boxes finer than pixels would flicker: with the distance they close their gaps.
  float away = -(orvex_ModelViewMatrix * vec4(orvex_Instance_Position.xyz, 1.0)).z;
  far = smoothstep(15.0, 110.0, away);
  vec3 size = orvex_Instance_Scale.xyz * (1.0 + far);
  vec3 place = turn(orvex_Position.xyz * size, orvex_Instance_Rotation) +
               orvex_Instance_Position.xyz;
  normal = mat3(orvex_ModelMatrix) * turn(orvex_Normal.xyz, orvex_Instance_Rotation);
  color = orvex_Instance_Color.rgb;
  gl_Position = orvex_ModelViewProjectionMatrix * vec4(place, 1.0);
}
)";

const char* const pixel = R"(
VARYING vec3 normal;
VARYING vec3 color;
VARYING float far;

void main() {
  float light = max(dot(normalize(normal), normalize(vec3(-0.4, 0.8, 0.6))), 0.0);
  float shade = mix(0.42 + 0.68 * light, 0.95, 0.8 * far);  // sides too small to see
  PIXEL = vec4(mix(color * shade, vec3(0.27, 0.31, 0.38), 0.25 * far), 1.0);
}
)";

}  // namespace

class Instancing : public Example {
 public:
  bool create() override {
    look(vec4(0.0f, 47.0f, 177.0f), vec4(0.0f, 12.0f, 92.0f), 50.0f);
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

  // A bowl, laid out like the seeds of a sunflower: evenly, and never in rows. Waves run outwards.
  void place(unsigned int i) {
    const float share = (static_cast<float>(i) + 0.5f) / static_cast<float>(count);
    const float radius = 177.0f * std::sqrt(share);
    const float angle = static_cast<float>(std::fmod(i * 2.399963229728653, 6.283185307179586));
    const float wave = std::cos(radius * 0.12f);
    const float lift = 40.0f * share + wave * 5.0f;
    const vec4 at(radius * std::cos(angle), lift, radius * std::sin(angle));
    boxes_->set_instance_position(i, at);
    boxes_->set_instance_scale(i, vec4(0.62f, 0.62f, 0.62f));
    orv::quat turn;
    turn.from_axis_angle(-angle * 57.2957795f, vec4(0.0f, 1.0f, 0.0f));
    boxes_->set_instance_rotation(i, turn);
    const float warm = 0.5f + 0.5f * wave;
    boxes_->set_instance_color(i, TEAL * (1.0f - warm) + YELLOW * warm);
  }

  orv::MeshBox* boxes_ = nullptr;
};

int main(int argc, char** argv) { return run<Instancing>(argc, argv, "Instancing"); }
