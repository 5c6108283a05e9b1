// A sky from a cube map, and a knot that mirrors the same cube map.
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

// The sky is looked up with x negated, since it is seen from inside: so is its mirror image.
const char* const pixel = R"(
VARYING vec3 position;
VARYING vec3 normal;
uniform samplerCube sky;
uniform vec4 camera_position;

void main() {
  vec3 way = normalize(position - camera_position.xyz);
  vec3 n = normalize(normal);
  vec3 mirrored = reflect(way, n);
  vec3 color = SAMPLE_CUBE(sky, vec3(-mirrored.x, mirrored.yz)).rgb;
  float rim = pow(1.0 - abs(dot(way, n)), 3.0);
  PIXEL = vec4(mix(color * vec3(1.0, 0.86, 0.66), color, rim), 1.0);
}
)";

}  // namespace

class Sky : public Example {
 public:
  bool create() override {
    look(vec4(-2.2f, -0.5f, 6.5f), vec4(0.0f, 0.55f, 0.0f), 48.0f);
    const char* const faces[] = {"sky_posx.png", "sky_negx.png", "sky_posy.png",
                                 "sky_negy.png", "sky_posz.png", "sky_negz.png"};
    std::string paths[6];
    const char* names[6];
    for (int i = 0; i < 6; ++i) {
      paths[i] = data(faces[i]);
      names[i] = paths[i].c_str();
    }
    sky_ = keep(new orv::Skybox);
    if (!sky_->load_all_faces_from_files(renderer, names, orv::PF_RGB_U8)) {
      return fail("cannot read the sky's faces");
    }

    program_ = make_program("mirror", vertex, pixel);
    if (!program_) return false;
    orv::Material* mirror = make_material("mirror", program_);
    mirror->add_texture(sky_->get_cubemap());
    knot_ = keep(new orv::MeshPQTorus);
    knot_->set_build_params(400, 32, 1.15f, 0.32f, 0.0f, 0.0f, 0.0f, 1.0f, 1.0f, 2.0f, 3.0f);
    knot_->build(nullptr);
    knot_->set_position(0.2f, 0.5f, 0.0f);
    knot_->add_material(mirror, nullptr);
    return true;
  }

  void draw(float time) override {
    sky_->render(renderer, nullptr);  // first: it is behind everything
    program_->set_uniform_1i(nullptr, "sky", 0);
    program_->set_uniform_4f(nullptr, "camera_position", camera.get_position());
    knot_->set_orientation_euler_xyz(0.0f, time * 25.0f, 0.0f);
    knot_->render(renderer, nullptr);
  }

 private:
  orv::Skybox* sky_ = nullptr;
  orv::GpuProgram* program_ = nullptr;
  orv::MeshPQTorus* knot_ = nullptr;
};

int main(int argc, char** argv) { return run<Sky>(argc, argv, "Cube map and skybox"); }
