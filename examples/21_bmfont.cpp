// Text from a BMFont file: glyphs cut from one picture, as many texts as one likes in one draw.
#include "common/example.h"
#include "common/shaders.h"

using namespace examples;
using orv::vec4;

namespace {

const char* const pixel = R"(
VARYING vec2 uv;
VARYING vec4 color;
uniform sampler2D glyphs;

void main() { PIXEL = color * SAMPLE(glyphs, uv); }
)";

}  // namespace

class BitmapFont : public Example {
 public:
  bool create() override {
    program_ = make_program("glyphs", surface_vertex, pixel);
    if (!program_) return false;
    program_->set_uniform_1i(nullptr, "glyphs", 0);

    font_ = keep(new orv::Font);
    if (!font_->bm_load_charset(data("desyrel.xml").c_str())) return fail("cannot read the font");
    const std::string page = data(font_->bm_get_charset_image_filename());
    if (!font_->bm_load_charset_texture_v2(renderer, page.c_str(), orv::PF_RGBA_U8, false)) {
      return fail("cannot read " + page);
    }
    font_->bm_get_charset_texture()->flip_vertical();  // the file's first row is the upper one
    return true;
  }

  void draw(float) override {
    // One unit is a pixel; y runs downwards from the upper edge.
    flat_camera_.build_projection_ortho(0.0f, static_cast<float>(width),
                                        -static_cast<float>(height), 0.0f, -1.0f, 1.0f, true);
    flat_camera_.set_viewport(0, 0, width, height);
    flat_camera_.set_position(0.0f, 0.0f, 0.0f);
    flat_camera_.bind(renderer, true, true, true, true, true);
    renderer->enable_depth_test(false);
    renderer->enable_blending(true);
    renderer->set_blend_func(orv::RENDERER_BLEND_FACTOR_SRC_ALPHA,
                             orv::RENDERER_BLEND_FACTOR_ONE_MINUS_SRC_ALPHA);
    font_->bm_get_charset_texture()->bind(renderer, 0);
    program_->bind(renderer);

    write(36, 20, WHITE, "Bitmap font");
    flush(1.0f);
    write(36, 130, WHITE, "Glyphs are cut from one picture,");
    write(36, 172, YELLOW, "each text has a tint of its own,");
    write(36, 214, ORANGE, "and one draw shows them all.");
    font_->bm_draw_text_2df(36, 280, 0.75f, 0.85f, 0.75f, 1.0f, "%u texts, %u letters",
                            font_->bm_get_num_strings() + 1, font_->bm_get_num_chars());
    flush(0.37f);

    program_->unbind(renderer);
    renderer->enable_blending(false);
    renderer->enable_depth_test(true);
  }

 private:
  void write(int x, int y, const vec4& color, const char* text) {
    font_->bm_draw_text_2d(x, y, color.x, color.y, color.z, 1.0f, text);
  }

  // Turns the queue of texts into vertices, draws them and empties the queue.
  void flush(float scale) {
    font_->bm_set_scale(scale);
    font_->bm_update_vb(renderer, false);
    font_->bm_render_vb(renderer);
    font_->bm_draw_reset();
  }

  orv::GpuProgram* program_ = nullptr;
  orv::Camera flat_camera_;
  orv::Font* font_ = nullptr;
};

int main(int argc, char** argv) { return run<BitmapFont>(argc, argv, "BMFont text"); }
