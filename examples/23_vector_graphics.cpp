// Vector graphics: paths, gradients, text and widgets, on the page that shows them all.
#include "common/example.h"

using namespace examples;
using orv::vec4;

class VectorGraphics : public Example {
 public:
  bool create() override {
    namespace nvg = orv::nvg;
    background_top = vec4(0.24f, 0.26f, 0.31f, 1.0f);
    background_bottom = vec4(0.32f, 0.34f, 0.40f, 1.0f);
    if (!nvg::init(renderer, true)) return missing("vector graphics (OpenGL 3.2)");
    const std::string dejavu = "/usr/share/fonts/truetype/dejavu/";
    const std::string entypo = "/usr/share/fonts/truetype/fonts-entypo/";
    if (!nvg::load_font("sans", (dejavu + "DejaVuSans.ttf").c_str()) ||
        !nvg::load_font("sans-bold", (dejavu + "DejaVuSans-Bold.ttf").c_str()) ||
        !nvg::load_font("icons", (entypo + "entypo.ttf").c_str())) {
      return fail("no fonts: install the packages fonts-dejavu-core and fonts-entypo");
    }
    return true;
  }

  void draw(float time) override {
    // Shapes are drawn by way of the stencil buffer: it has to be zero.
    renderer->clear_stencil_buffer(0);
    orv::nvg::begin_frame(width, height, 1.0f);
    orv::nvg::render_demo(0, 0, width, height, time);
    orv::nvg::end_frame();
  }

  void destroy() override { orv::nvg::terminate(renderer); }
};

int main(int argc, char** argv) { return run<VectorGraphics>(argc, argv, "Vector graphics"); }
