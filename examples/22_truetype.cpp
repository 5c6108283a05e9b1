// Text from a TrueType file: the font is baked into a texture, and a line may change its colour.
#include <cstdio>

#include "common/example.h"
#include "common/shaders.h"

using namespace examples;
using orv::vec4;

namespace {

const char* const font_file = "/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf";

// The texture has one channel: how much of a pixel the letter covers.
const char* const pixel = R"(
VARYING vec2 uv;
VARYING vec4 color;
uniform sampler2D glyphs;

void main() { PIXEL = vec4(color.rgb, color.a * SAMPLE(glyphs, uv).r); }
)";

}  // namespace

class TrueType : public Example {
 public:
  bool create() override {
    background_top = background_bottom = vec4(0.13f, 0.15f, 0.19f, 1.0f);
    program_ = make_program("glyphs", surface_vertex, pixel);
    if (!program_) return false;
    program_->set_uniform_1i(nullptr, "glyphs", 0);
    font_ = keep(new orv::Font);
    if (!font_->stbttf_load_font_texture(renderer, font_file, 26.0f, 512, 512)) {
      return fail(std::string("cannot read ") + font_file + ": install fonts-dejavu-core");
    }
    return font_->stbttf_build_font_texture(renderer, 0);
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

    write_program();
    font_->stbttf_get_font_texture()->bind(renderer, 0);
    program_->bind(renderer);
    font_->stbtt_update_vb(renderer, false);
    font_->stbtt_render_vb(renderer);
    font_->bm_draw_reset();
    program_->unbind(renderer);
    renderer->enable_blending(false);
    renderer->enable_depth_test(true);
  }

 private:
  // A new line starts at its own place; the rest goes on where the text before it ended.
  void line(const vec4& color, const char* text) {
    y_ += 36;
    font_->bm_draw_text_2d_v2(32, y_, color.x, color.y, color.z, 1.0f, true, text);
  }
  void more(const vec4& color, const char* text) {
    font_->bm_draw_text_2d_v2(0, 0, color.x, color.y, color.z, 1.0f, false, text);
  }

  void write_program() {
    const vec4 sky(0.50f, 0.72f, 0.96f);
    y_ = 28;
    line(GREY, "// light on a surface");
    line(VIOLET + vec4(0.15f, 0.15f, 0.15f, 0.0f), "float ");
    more(sky, "shade");
    more(WHITE, "(");
    more(VIOLET + vec4(0.15f, 0.15f, 0.15f, 0.0f), "vec3 ");
    more(ORANGE, "n");
    more(WHITE, ") {");
    line(VIOLET + vec4(0.15f, 0.15f, 0.15f, 0.0f), "  return ");
    more(sky, "max");
    more(WHITE, "(");
    more(sky, "dot");
    more(WHITE, "(");
    more(ORANGE, "n");
    more(WHITE, ", l), ");
    more(YELLOW, "0.0");
    more(WHITE, ");");
    line(WHITE, "}");
    y_ += 18;
    line(GREEN,
         "\"Gr\xfc\xdf"
         "e, na\xefve caf\xe9\"");
    line(YELLOW, "width: ");
    char number[16];
    std::snprintf(number, sizeof(number), "%u", font_->stbttf_get_string_width_v1("width: "));
    more(WHITE, number);
    more(GREY, " pixels");
  }

  orv::GpuProgram* program_ = nullptr;
  orv::Camera flat_camera_;
  orv::Font* font_ = nullptr;
  int y_ = 0;
};

int main(int argc, char** argv) { return run<TrueType>(argc, argv, "TrueType text"); }
