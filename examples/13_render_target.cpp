// A picture in the picture: one scene is drawn into a texture, another one shows the texture.
#include "common/example.h"

using namespace examples;
using orv::vec4;

class RenderTarget : public Example {
 public:
  bool create() override {
    look(vec4(0.0f, 2.4f, 8.0f), vec4(0.0f, -0.05f, 0.0f), 26.0f);

    // 512 x 512 RGBA bytes, one colour texture, depth, linear filter, edges clamped, no samples.
    target_ = renderer->gpu_render_target_create_2d(nullptr, size, size, orv::PF_RGBA_U8, 1, true,
                                                    true, true, 0);
    if (!target_) return missing("render targets");
    orv::Texture* texture = orv::Kernel::get()->create_color_texture_from_render_target(target_, 0);

    knot_ = keep(new orv::MeshPQTorus);
    knot_->set_build_params(320, 24, 1.2f, 0.3f, 0.0f, 0.0f, 0.0f, 1.0f, 1.0f, 2.0f, 3.0f);
    knot_->build(nullptr);
    knot_->set_vertices_color(YELLOW, nullptr);
    knot_->add_material(lit_material(), nullptr);

    box_ = keep(new orv::MeshBox);
    box_->set_build_params(2.2f, 2.2f, 2.2f, 1, 1, 1);
    box_->build(nullptr);
    box_->add_material(textured_material("screen", texture), nullptr);
    return true;
  }

  void draw(float time) override {
    draw_into_texture(time);
    camera.bind(renderer, true, true, true, true, true);  // back to the window
    box_->set_orientation_euler_xyz(0.0f, time * 20.0f, 0.0f);
    box_->render(renderer, nullptr);
  }

 private:
  // Between bind and unbind everything goes to the target, whose size is the camera's viewport.
  void draw_into_texture(float time) {
    inner_camera_.build_projection_persp(35.0f, 1.0f, 0.1f, 50.0f, true);
    inner_camera_.set_viewport(0, 0, size, size);
    inner_camera_.set_position(0.0f, 0.0f, 8.0f);
    inner_camera_.set_lookat(0.0f, 0.0f, 0.0f);
    knot_->set_orientation_euler_xyz(15.0f, time * 50.0f, 0.0f);

    renderer->gpu_render_target_bind(target_);
    inner_camera_.bind(renderer, true, true, true, true, true);
    renderer->clear_color_depth_buffers_rgba(TEAL.x * 0.6f, TEAL.y * 0.6f, TEAL.z * 0.6f, 1.0f,
                                             1.0f);
    knot_->render(renderer, nullptr);
    renderer->gpu_render_target_unbind(target_);
  }

  static constexpr int size = 512;
  orv::GpuRenderTarget* target_ = nullptr;
  orv::Camera inner_camera_;
  orv::MeshPQTorus* knot_ = nullptr;
  orv::MeshBox* box_ = nullptr;
};

int main(int argc, char** argv) { return run<RenderTarget>(argc, argv, "Render target"); }
