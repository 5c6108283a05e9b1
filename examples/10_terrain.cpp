// A terrain from a picture of heights, coloured by height and slope, and the sea round it.
#include "common/example.h"

using namespace examples;
using orv::vec4;

namespace {

const char* const vertex = R"(
ATTRIBUTE vec4 orvex_Position;
ATTRIBUTE vec4 orvex_Normal;
uniform mat4 orvex_ModelViewProjectionMatrix;
VARYING vec3 normal;
VARYING float height;

void main() {
  normal = orvex_Normal.xyz;
  height = orvex_Position.y;
  gl_Position = orvex_ModelViewProjectionMatrix * vec4(orvex_Position.xyz, 1.0);
}
)";

const char* const pixel = R"(
VARYING vec3 normal;
VARYING float height;
uniform float sea;

void main() {
  vec3 n = normalize(normal);
  vec3 color = mix(vec3(0.82, 0.74, 0.54), vec3(0.34, 0.48, 0.22), smoothstep(0.25, 0.6, height));
  color = mix(color, vec3(0.20, 0.34, 0.17), smoothstep(0.6, 1.6, height));
  color = mix(color, vec3(0.46, 0.42, 0.39), smoothstep(0.80, 0.62, n.y));
  color = mix(color, vec3(0.95, 0.96, 0.98), smoothstep(3.0, 3.5, height + n.y * 0.4));
  if (height < sea) color *= mix(vec3(0.12, 0.32, 0.42), vec3(0.5, 0.75, 0.78), height / sea);
  vec3 to_light = normalize(vec3(-0.7, 0.6, 0.25));
  float light = max(dot(n, to_light), 0.0);
  PIXEL = vec4(color * (vec3(0.34, 0.38, 0.46) + vec3(1.0, 0.93, 0.80) * 0.8 * light), 1.0);
}
)";

}  // namespace

class Terrain : public Example {
 public:
  bool create() override {
    look(vec4(0.0f, 8.0f, 19.0f), vec4(0.0f, 0.3f, 0.8f), 31.0f);
    background_top = vec4(0.36f, 0.55f, 0.80f, 1.0f);
    background_bottom = vec4(0.80f, 0.88f, 0.93f, 1.0f);

    orv::Texture* heights = orv::TextureMgr::get()->create_texture_2d_from_file(
        data("heights.png").c_str(), false, orv::PF_RGB_U8);
    if (!heights) return fail("cannot read " + data("heights.png"));
    terrain_ = keep(new orv::MeshTerrain);
    // 127 cells a side, 6 units from black to white, from -8 to 8 in x and z.
    terrain_->set_build_params(heights, 127, 6.0f, 8.0f, 0.0f);
    if (!terrain_->build(nullptr)) return fail("the terrain cannot be built");

    program_ = make_program("terrain", vertex, pixel);
    terrain_->add_material(make_material("terrain", program_), nullptr);
    program_->set_uniform_1f(nullptr, "sea", sea_level);

    ground_ = keep(new orv::MeshPlane);
    ground_->set_build_params(400.0f, 400.0f, 1, 1);
    ground_->build(nullptr);
    ground_->set_position(0.0f, -0.01f, 0.0f);
    ground_->add_material(terrain_->get_material_by_index(0), nullptr);
    sea_ = keep(new orv::MeshPlane);
    sea_->set_build_params(400.0f, 400.0f, 1, 1);
    sea_->build(nullptr);
    sea_->set_vertices_color(0.16f, 0.42f, 0.54f, 0.62f, nullptr);
    sea_->set_position(0.0f, sea_level, 0.0f);
    sea_->add_material(flat_material(), nullptr);
    return true;
  }

  void draw(float) override {
    terrain_->render(renderer, nullptr);
    ground_->render(renderer, nullptr);
    // The water is drawn last and lets the ground shine through.
    renderer->set_blend_func(orv::RENDERER_BLEND_FACTOR_SRC_ALPHA,
                             orv::RENDERER_BLEND_FACTOR_ONE_MINUS_SRC_ALPHA);
    renderer->enable_blending(true);
    sea_->render(renderer, nullptr);
    renderer->enable_blending(false);
  }

 private:
  static constexpr float sea_level = 0.22f;
  orv::GpuProgram* program_ = nullptr;
  orv::MeshTerrain* terrain_ = nullptr;
  orv::MeshPlane* ground_ = nullptr;
  orv::MeshPlane* sea_ = nullptr;
};

int main(int argc, char** argv) { return run<Terrain>(argc, argv, "Terrain"); }
