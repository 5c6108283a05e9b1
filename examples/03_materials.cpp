// Materials carry a program and textures: pixels from a file, computed ones, and two at once.
#include "common/example.h"
#include "common/shaders.h"

using namespace examples;
using orv::vec4;

namespace {

// Textures stand in the units that the material gives them: the first in 0, the second in 1.
const char* const pixel = R"(
VARYING vec3 view_normal;
VARYING vec2 uv;
uniform sampler2D color_map;
uniform sampler2D mask_map;
uniform float masked;
uniform float tiles;

void main() {
  vec3 color = SAMPLE(color_map, uv * tiles).rgb;
  if (masked > 0.5) color = mix(vec3(0.93, 0.78, 0.40), color, SAMPLE(mask_map, uv).r);
  float light = max(dot(normalize(view_normal), normalize(vec3(-0.45, 0.75, 0.6))), 0.0);
  PIXEL = vec4(color * (0.35 + 0.75 * light), 1.0);
}
)";

}  // namespace

class Materials : public Example {
 public:
  bool create() override {
    look(vec4(0.0f, 0.6f, 13.0f), vec4(0.0f, 0.0f, 0.0f), 27.0f);
    program_ = make_program("textured", surface_vertex, pixel);
    if (!program_) return false;
    program_->set_uniform_1i(nullptr, "color_map", 0);
    program_->set_uniform_1i(nullptr, "mask_map", 1);

    orv::TextureMgr* textures = orv::TextureMgr::get();
    orv::Texture* file =
        textures->create_texture_2d_from_file(data("tiles.png").c_str(), false, orv::PF_RGB_U8);
    if (!file) return fail("cannot read " + data("tiles.png"));
    orv::Texture* noise = textures->create_texture_2d(64, 64, orv::PF_RGBA_U8, true);
    noise->fill_with_noise(160, vec4(0.30f, 0.42f, 0.66f, 1.0f), vec4(1.0f, 0.95f, 0.80f, 1.0f), 7);

    add("file", file, nullptr, 1.0f);
    add("nearest", checker(orv::SAMPLER_FILTERING_NEAREST), nullptr, 1.0f);
    add("linear", checker(orv::SAMPLER_FILTERING_LINEAR), nullptr, 1.0f);
    add("noise", noise, nullptr, 1.0f);
    add("tiled", file, nullptr, 3.0f);
    add("two", file, ring(), 1.0f);
    return true;
  }

  void draw(float) override {
    for (const Item& item : items_) {
      // Values of uniforms belong to the program: they are set for each mesh.
      program_->set_uniform_1f(nullptr, "tiles", item.tiles);
      program_->set_uniform_1f(nullptr, "masked", item.masked ? 1.0f : 0.0f);
      item.mesh->render(renderer, nullptr);
    }
  }

 private:
  struct Item {
    orv::Mesh* mesh;
    float tiles;
    bool masked;
  };

  // Eight by eight texels; the filter decides what is between them.
  orv::Texture* checker(orv::SAMPLER_FILTERING_MODE filter) {
    orv::Texture* texture = orv::TextureMgr::get()->create_texture_2d(8, 8, orv::PF_RGBA_U8, true);
    for (unsigned int i = 0; i < 64; ++i) {
      const bool dark = (i + i / 8) % 2 == 0;
      texture->set_texel_2d(i % 8, i / 8, (dark ? TEAL : WHITE) * 255.0f);
    }
    texture->gen_mipmaps(false);
    texture->set_filtering_mode(nullptr, filter);
    return texture;
  }

  // White outside of a ring.
  orv::Texture* ring() {
    orv::Texture* texture =
        orv::TextureMgr::get()->create_texture_2d(128, 128, orv::PF_RGBA_U8, true);
    for (int i = 0; i < 128 * 128; ++i) {
      const int x = i % 128 - 64, y = i / 128 - 64;
      const int square = x * x + y * y;
      const float v = square > 22 * 22 && square < 44 * 44 ? 0.0f : 255.0f;
      texture->set_texel_2d_v3(static_cast<unsigned int>(i), vec4(v, v, v, 255.0f).ptr());
    }
    return texture;
  }

  void add(const char* name, orv::Texture* first, orv::Texture* second, float tiles) {
    orv::Material* material = make_material(name, program_);
    material->add_texture(first);
    if (second) material->add_texture(second);

    orv::MeshBox* box = keep(new orv::MeshBox);
    box->set_build_params(1.5f, 1.5f, 1.5f, 1, 1, 1);
    box->build(nullptr);
    box->add_material(material, nullptr);
    const int i = static_cast<int>(items_.size());
    box->set_position(static_cast<float>(i % 3 - 1) * 2.6f, i < 3 ? 1.35f : -1.35f, 0.0f);
    box->set_orientation_euler_xyz(24.0f, -32.0f, 0.0f);
    items_.push_back({box, tiles, second != nullptr});
  }

  orv::GpuProgram* program_ = nullptr;
  std::vector<Item> items_;
};

int main(int argc, char** argv) { return run<Materials>(argc, argv, "Materials and textures"); }
