// Text in a font of the system, drawn by the renderer through the fixed pipeline.
#include "common/example.h"

using namespace examples;
using orv::vec4;

class BitmapText : public Example {
 public:
  bool create() override {
    orv::RenderWindow* window = renderer->get_current_render_window();
    const char* const names[] = {"DejaVu Sans", "DejaVu Serif", "DejaVu Sans Mono"};
    const int heights[] = {40, 30, 22};
    for (int i = 0; i < 3; ++i) {
      fonts_[i] = keep(new orv::Font);
      if (!fonts_[i]->bitmap_font_win32_create(renderer, window, names[i], heights[i])) {
        return missing("bitmap fonts (core profile)");
      }
    }
    return true;
  }

  void draw(float) override {
    // One unit is a pixel, from the lower left corner.
    flat_camera_.build_projection_ortho(0.0f, static_cast<float>(width), 0.0f,
                                        static_cast<float>(height), -1.0f, 1.0f, true);
    flat_camera_.set_viewport(0, 0, width, height);
    flat_camera_.set_position(0.0f, 0.0f, 0.0f);
    flat_camera_.bind(renderer, true, true, true, true, true);
    const mat4 identity;
    renderer->load_fixed_matrices(&flat_camera_.get_projection_matrix(),
                                  &flat_camera_.get_view_matrix(), &identity, nullptr);
    renderer->enable_depth_test(false);
    write(0, 40, height - 80, YELLOW, "Bitmap text");
    write(1, 40, height - 140, WHITE, "Any font of the system,");
    write(1, 40, height - 178, WHITE, "by its name and height");
    write(2, 40, height - 240, TEAL + vec4(0.2f, 0.2f, 0.2f, 0.0f), "0123456789 +-*/ ()[]{}");
    fonts_[2]->bitmap_font_win32_renderf(renderer, renderer->get_current_render_window(), 40,
                                         height - 280, ORANGE.x, ORANGE.y, ORANGE.z, 1.0f,
                                         "%d x %d pixels, %.1f %%", width, height, 99.5);
    renderer->enable_depth_test(true);
  }

 private:
  using mat4 = orv::mat4;

  void write(int font, int x, int y, const vec4& color, const std::string& text) {
    fonts_[font]->bitmap_font_win32_render(renderer, renderer->get_current_render_window(), x, y,
                                           color.x, color.y, color.z, 1.0f, text.c_str(),
                                           static_cast<unsigned int>(text.size()));
  }

  orv::Camera flat_camera_;
  orv::Font* fonts_[3] = {};
};

int main(int argc, char** argv) { return run<BitmapText>(argc, argv, "Bitmap text"); }
