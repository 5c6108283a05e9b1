// A head-up display: pictures over the scene, placed in pixels, solid or blended.
#include <algorithm>
#include <cmath>

#include "common/example.h"

using namespace examples;
using orv::vec4;

class HeadUp : public Example {
 public:
  bool create() override {
    look(vec4(0.0f, 2.0f, 9.0f), vec4(0.0f, 0.0f, 0.0f), 37.0f);
    knot_ = keep(new orv::MeshPQTorus);
    knot_->set_build_params(320, 24, 1.3f, 0.34f, 0.0f, 0.0f, 0.0f, 1.0f, 1.0f, 2.0f, 3.0f);
    knot_->build(nullptr);
    knot_->set_vertices_color(TEAL, nullptr);
    knot_->add_material(lit_material(), nullptr);
    sight_ = draw_sight();
    gauge_ = draw_gauge();
    // The picture of its own comes from a file.
    if (!hud_.init_texture(renderer, data("tiles.png").c_str())) {
      return fail("cannot read " + data("tiles.png"));
    }
    return true;
  }

  void draw(float time) override {
    knot_->set_orientation_euler_xyz(0.0f, time * 30.0f, 0.0f);
    knot_->render(renderer, nullptr);

    const orv::RENDERER_BLEND_FACTOR source = orv::RENDERER_BLEND_FACTOR_SRC_ALPHA;
    const orv::RENDERER_BLEND_FACTOR rest = orv::RENDERER_BLEND_FACTOR_ONE_MINUS_SRC_ALPHA;
    hud_.render(renderer, 16, height - 16 - 72, 72, 72, false, source, rest);
    hud_.render(renderer, sight_, width / 2 - 64, height / 2 - 64, 128, 128, true, source, rest);
    hud_.render(renderer, gauge_, width - 16 - 112, 16, 112, 112, true, source, rest);
  }

  void destroy() override { hud_.cleanup(renderer); }

 private:
  static constexpr int size = 128;

  // A picture from a function of the place, from -1 to 1 and y upwards, that gives its alpha.
  template <class Cover>
  static orv::Texture* draw_texture(const vec4& color, Cover cover) {
    orv::Texture* texture =
        orv::TextureMgr::get()->create_texture_2d(size, size, orv::PF_RGBA_U8, true);
    for (int i = 0; i < size * size; ++i) {
      const float x = (static_cast<float>(i % size) + 0.5f) / size * 2.0f - 1.0f;
      const float y = 1.0f - (static_cast<float>(i / size) + 0.5f) / size * 2.0f;
      const float alpha = std::clamp(cover(x, y), 0.0f, 1.0f);
      const vec4 texel(color.x * 255.0f, color.y * 255.0f, color.z * 255.0f, alpha * 255.0f);
      texture->set_texel_2d(static_cast<unsigned int>(i % size),
                            static_cast<unsigned int>(i / size), texel);
    }
    return texture;
  }

  // 1 within `half` of 0, falling to 0 over a pixel.
  static float stroke(float distance, float half) {
    return (half - std::fabs(distance)) * (size * 0.5f) + 0.5f;
  }

  static orv::Texture* draw_sight() {
    return draw_texture(YELLOW, [](float x, float y) {
      const float r = std::sqrt(x * x + y * y);
      float cover = std::max(stroke(r - 0.62f, 0.025f), stroke(r, 0.05f));
      if (r > 0.42f && r < 0.9f) cover = std::max({cover, stroke(x, 0.02f), stroke(y, 0.02f)});
      return cover;
    });
  }

  static orv::Texture* draw_gauge() {
    return draw_texture(ORANGE, [](float x, float y) {
      const float r = std::sqrt(x * x + y * y);
      const float angle = std::atan2(x, -y) / 3.1415927f;  // from -1 to 1, 0 below
      const float share = (angle < 0.0f ? -angle : 2.0f - angle) * 0.5f;
      if (share < 0.125f || share > 0.875f) return 0.0f;
      return std::min(stroke(r - 0.78f, 0.11f), 1.0f) * (share < 0.62f ? 1.0f : 0.35f);
    });
  }

  orv::MeshPQTorus* knot_ = nullptr;
  orv::Texture* sight_ = nullptr;
  orv::Texture* gauge_ = nullptr;
  orv::aux::Hud hud_;
};

int main(int argc, char** argv) { return run<HeadUp>(argc, argv, "HUD"); }
