// Texts as real OpenGL draws them, held against the pixels that the fonts are made of.
#include <orv/core/core.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/scene/camera.h>
#include <orv/text/font.h>
#include <orv/text/font_data.h>

#include <cmath>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "image/test_files.h"
#include "render/opengl/gl_fixture.h"
#include "support/held.h"
#include "text/charset.h"
#include "text/stb_truetype.h"

namespace orv::test {
namespace {

constexpr int SIDE = 64;
constexpr int BITMAP = 128;
constexpr float HEIGHT = 20;

struct Color {
  float r, g, b;
};
constexpr Color ORANGE = {1, 0.5f, 0.25f}, CYAN = {0, 1, 1}, LIGHT = {1, 1, 1};

/// A picture with its upper row first, which starts black.
class Canvas {
 public:
  unsigned char* at(int x, int y) {
    return bytes_.data() + (static_cast<std::size_t>(y) * SIDE + static_cast<std::size_t>(x)) * 3;
  }
  bool holds(int x, int y) const { return x >= 0 && x < SIDE && y >= 0 && y < SIDE; }
  void put(int x, int y, Color color, const unsigned char* texel, int step) {
    if (!holds(x, y)) return;
    const float channels[] = {color.r, color.g, color.b};
    for (int i = 0; i < 3; ++i) {
      at(x, y)[i] = static_cast<unsigned char>(std::lround(channels[i] * texel[i * step]));
    }
  }

 private:
  Bytes bytes_ = Bytes(SIDE * SIDE * 3);
};

/// One window pixel is one unit; y runs upwards, so that flat texts begin at the upper edge.
class FontGlTest : public GlTest {
 protected:
  FontGlTest() { core::start(nullptr, false, nullptr, nullptr); }
  ~FontGlTest() override { core::stop(nullptr); }

  void SetUp() override {
    GlTest::SetUp();
    if (IsSkipped()) return;
    load_program(&program_,
                 "ATTRIB vec4 orvex_Position; ATTRIB vec4 orvex_TexCoord0;\n"
                 "ATTRIB vec4 orvex_Color; uniform mat4 orvex_ModelViewProjectionMatrix;\n"
                 "OUT vec4 color; OUT vec2 uv;\n"
                 "void main() { color = orvex_Color; uv = orvex_TexCoord0.xy;\n"
                 "  gl_Position = orvex_ModelViewProjectionMatrix * vec4(orvex_Position.xyz, 1.0); "
                 "}",
                 has_modern_shaders()
                     ? "IN vec4 color; IN vec2 uv; uniform sampler2D map; uniform int single;\n"
                       "void main() { vec4 texel = texture(map, uv);\n"
                       "  pixel = color * (single == 1 ? vec4(texel.rrr, 1.0) : texel); }"
                     : "IN vec4 color; IN vec2 uv; uniform sampler2D map; uniform int single;\n"
                       "void main() { vec4 texel = texture2D(map, uv);\n"
                       "  pixel = color * (single == 1 ? vec4(texel.rrr, 1.0) : texel); }");
    camera_.build_projection_ortho(0, SIDE, -SIDE, 0, -1, 1, true);
    camera_.set_viewport(0, 0, SIDE, SIDE);
    camera_.set_position(0.0f, 0.0f, 0.0f);
    camera_.bind(&renderer, true, true, true, true, true);
    renderer.enable_depth_test(false);
  }
  void TearDown() override {
    if (IsSkipped()) return;
    font._cleanup(&renderer);
    renderer.gpu_program_unload(&program_);
    GlTest::TearDown();
  }

  bool load_bitmap_font() {
    const bool loaded =
        font.bm_load_charset(data_path("bmfont/font.fnt").c_str()) &&
        font.bm_load_charset_texture(&renderer, data_path("bmfont/font.png").c_str());
    if (loaded) font.bm_get_charset_texture()->flip_vertical();
    return loaded;
  }
  bool load_truetype_font() {
    return font.stbttf_load_font_texture(nullptr, data_path("ttf/DejaVuSansMono.ttf").c_str(),
                                         HEIGHT, BITMAP * 2, BITMAP) &&
           font.stbttf_build_font_texture(&renderer, 0);
  }

  void with_program(bool single, const std::function<void()>& action) {
    ASSERT_TRUE(renderer.gpu_program_bind(&program_));
    renderer.gpu_program_set_uniform_1i(&program_, "map", 0);
    renderer.gpu_program_set_uniform_1i(&program_, "single", single ? 1 : 0);
    action();
    renderer.gpu_program_bind(nullptr);
  }
  void draw_bitmap_font(bool use_gpu_map = false) {
    clear();
    ASSERT_TRUE(font.bm_get_charset_texture()->bind(&renderer, 0));
    with_program(false, [&] {
      EXPECT_TRUE(font.bm_update_vb(&renderer, use_gpu_map));
      EXPECT_TRUE(font.bm_render_vb(&renderer));
    });
  }
  void draw_truetype_font(bool use_gpu_map = false) {
    clear();
    ASSERT_TRUE(font.stbttf_get_font_texture()->bind(&renderer, 0));
    with_program(true, [&] {
      EXPECT_TRUE(font.stbtt_update_vb(&renderer, use_gpu_map));
      EXPECT_TRUE(font.stbtt_render_vb(&renderer));
    });
  }

  /// All pixels are those of the canvas, give or take the rounding of a colour.
  void expect_picture(Canvas& canvas) {
    std::vector<unsigned char> pixels(SIDE * SIDE * 4);
    ASSERT_TRUE(renderer.read_back_buffer_rect_rgba(pixels.data(), 0, 0, SIDE, SIDE));
    int wrong = 0, lit = 0;
    for (int y = 0; y < SIDE; ++y) {
      for (int x = 0; x < SIDE; ++x) {
        const unsigned char* pixel = pixels.data() + ((SIDE - 1 - y) * SIDE + x) * 4;
        bool same = true;
        for (int i = 0; i < 3; ++i) same = same && std::abs(pixel[i] - canvas.at(x, y)[i]) <= 2;
        wrong += !same;
        lit += pixel[0] + pixel[1] + pixel[2] > 0;
      }
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(lit, 100);
  }

  Held<Font> held;
  Font& font = *held;

 private:
  GpuProgramData program_;
  Camera camera_;
};

// ---- bitmap fonts ----

/// Copies the characters of a text from the page image.
void put_charset_text(Canvas* canvas, int x, int y, Color color, const char* text) {
  const Bytes file = read_bytes(data_path("bmfont/font.fnt"));
  const std::string xml(file.begin(), file.end());
  const char* fault = nullptr;
  const auto charset = detail::read_charset(xml.c_str(), &fault);
  ASSERT_NE(charset, nullptr);
  Held<Texture> page;
  ASSERT_TRUE(TextureMgr::get()->load_image_from_file(page, data_path("bmfont/font.png").c_str(),
                                                      false, PF_RGB_U8));
  for (; *text; ++text) {
    const detail::CharsetChar& ch = charset->chars[static_cast<unsigned char>(*text)];
    for (int row = 0; row < ch.height; ++row) {
      for (int column = 0; column < ch.width; ++column) {
        const int texel = (ch.y + row) * 64 + ch.x + column;
        canvas->put(x + ch.xoffset + column, y + ch.yoffset + row, color,
                    page->get_pixmap_u8_ptr() + texel * 3, 1);
      }
    }
    x += ch.xadvance;
  }
  TextureMgr::get()->release_resource(nullptr, page, nullptr);
}

TEST_P(FontGlTest, PageImageIsShownPixelByPixel) {
  ASSERT_TRUE(load_bitmap_font());
  ASSERT_TRUE(font.bm_draw_text_2d(2, 3, 1, 1, 1, 1, "A D"));
  ASSERT_TRUE(font.bm_draw_text_2d(20, 33, ORANGE.r, ORANGE.g, ORANGE.b, 1, "C"));
  Canvas canvas;
  put_charset_text(&canvas, 2, 3, LIGHT, "A D");
  put_charset_text(&canvas, 20, 33, ORANGE, "C");
  draw_bitmap_font();
  expect_picture(canvas);
}

TEST_P(FontGlTest, MappedBufferShowsTheNextText) {
  ASSERT_TRUE(load_bitmap_font());
  ASSERT_TRUE(font.bm_draw_text_2d(2, 3, 1, 1, 1, 1, "A"));
  draw_bitmap_font(true);
  for (const char* text : {"B", "DC"}) {
    font.bm_draw_reset();
    ASSERT_TRUE(font.bm_draw_text_2d(10, 20, CYAN.r, CYAN.g, CYAN.b, 1, text));
    Canvas canvas;
    put_charset_text(&canvas, 10, 20, CYAN, text);
    draw_bitmap_font(true);
    expect_picture(canvas);
  }
}

TEST_P(FontGlTest, TextsMayOutgrowTheirRoom) {
  ASSERT_TRUE(load_bitmap_font());
  ASSERT_TRUE(font.bm_draw_text_2d(2, 3, 1, 1, 1, 1, "A"));
  draw_bitmap_font();
  // What lies outside of the window fills the first room.
  for (int i = 0; i < 500; ++i) ASSERT_TRUE(font.bm_draw_text_2d(500, 0, 1, 1, 1, 1, "BCD"));
  ASSERT_TRUE(font.bm_draw_text_2d(10, 30, 1, 1, 1, 1, "D"));
  Canvas canvas;
  put_charset_text(&canvas, 2, 3, LIGHT, "A");
  put_charset_text(&canvas, 10, 30, LIGHT, "D");
  for (const bool use_gpu_map : {false, true}) {
    draw_bitmap_font(use_gpu_map);
    expect_picture(canvas);
  }
}

TEST_P(FontGlTest, FontMovesWithItsTransform) {
  ASSERT_TRUE(load_bitmap_font());
  ASSERT_TRUE(font.bm_draw_text_2d(0, 0, 1, 1, 1, 1, "C"));
  font.set_position(12, -20, 0);
  Canvas canvas;
  put_charset_text(&canvas, 12, 20, LIGHT, "C");
  draw_bitmap_font();
  expect_picture(canvas);
}

TEST_P(FontGlTest, FixedPipelineDrawsTexts) {
  if (GetParam() == GlContext::CORE) GTEST_SKIP() << "no fixed pipeline in core profile";
  ASSERT_TRUE(load_bitmap_font());
  ASSERT_TRUE(font.bm_draw_text_2d(5, 9, ORANGE.r, ORANGE.g, ORANGE.b, 1, "AB"));
  ASSERT_TRUE(font.bm_update_vb(&renderer, false));
  clear();
  renderer.enable_texture_2d(true);
  ASSERT_TRUE(font.bm_get_charset_texture()->bind(&renderer, 0));
  font.set_opengl_2_3_rendering_states(true, nullptr);
  EXPECT_TRUE(font.bm_render_vb(&renderer));
  renderer.enable_texture_2d(false);
  Canvas canvas;
  put_charset_text(&canvas, 5, 9, ORANGE, "AB");
  expect_picture(canvas);
}

// ---- TrueType fonts ----

/// Copies the characters of a text from the baked bitmap; gives the pen behind it.
float put_baked_text(Canvas* canvas, float x, float y, Color color, const char* text) {
  constexpr int COUNT = 224;
  std::vector<detail::BakedChar> chars(COUNT);
  Bytes pixels(BITMAP * 2 * BITMAP);
  const Bytes file = read_bytes(data_path("ttf/DejaVuSansMono.ttf"));
  detail::bake_font_bitmap(file.data(), file.size(), HEIGHT, pixels.data(), BITMAP * 2, BITMAP, 32,
                           COUNT, chars.data());
  for (; *text; ++text) {
    const detail::BakedChar& b = chars[static_cast<std::size_t>(*text - 32)];
    const int left = static_cast<int>(std::floor(x + b.xoff + 0.5f));
    const int top = static_cast<int>(std::floor(y + b.yoff + 0.5f));
    for (int row = 0; row < b.y1 - b.y0; ++row) {
      for (int column = 0; column < b.x1 - b.x0; ++column) {
        const int texel = (b.y0 + row) * BITMAP * 2 + b.x0 + column;
        canvas->put(left + column, top + row, color, pixels.data() + texel, 0);
      }
    }
    x += b.xadvance;
  }
  return x;
}

TEST_P(FontGlTest, BakedBitmapIsShownPixelByPixel) {
  ASSERT_TRUE(load_truetype_font());
  ASSERT_TRUE(font.bm_draw_text_2d(3, 20, 1, 1, 1, 1, "Hgj"));
  ASSERT_TRUE(font.bm_draw_text_2d(10, 50, ORANGE.r, ORANGE.g, ORANGE.b, 1, "x-y"));
  Canvas canvas;
  put_baked_text(&canvas, 3, 20, LIGHT, "Hgj");
  put_baked_text(&canvas, 10, 50, ORANGE, "x-y");
  draw_truetype_font();
  expect_picture(canvas);
}

TEST_P(FontGlTest, LineOfSeveralColours) {
  ASSERT_TRUE(load_truetype_font());
  ASSERT_TRUE(font.bm_draw_text_2d(3, 20, 1, 1, 1, 1, "a"));
  ASSERT_TRUE(font.bm_draw_text_2d_v2(0, 0, ORANGE.r, ORANGE.g, ORANGE.b, 1, false, "bc"));
  ASSERT_TRUE(font.bm_draw_text_2d_v2(0, 0, CYAN.r, CYAN.g, CYAN.b, 1, false, "d"));
  Canvas canvas;
  float x = put_baked_text(&canvas, 3, 20, LIGHT, "a");
  x = put_baked_text(&canvas, x, 20, ORANGE, "bc");
  put_baked_text(&canvas, x, 20, CYAN, "d");
  draw_truetype_font();
  expect_picture(canvas);
}

TEST_P(FontGlTest, MappedBufferShowsTheNextTruetypeText) {
  ASSERT_TRUE(load_truetype_font());
  ASSERT_TRUE(font.bm_draw_text_2d(3, 20, 1, 1, 1, 1, "Hgj"));
  draw_truetype_font();
  font.bm_draw_reset();
  ASSERT_TRUE(font.bm_draw_text_2d(8, 40, 1, 1, 1, 1, "next"));
  Canvas canvas;
  put_baked_text(&canvas, 8, 40, LIGHT, "next");
  draw_truetype_font(true);
  expect_picture(canvas);
}

// ---- fonts of the window system ----

TEST_P(FontGlTest, WindowFontIsForTheFixedPipeline) {
  const bool created = font.bitmap_font_win32_create(&renderer, context.window(), "Arial", 20);
  if (GetParam() == GlContext::CORE) {
    EXPECT_FALSE(created);
    EXPECT_FALSE(
        font.bitmap_font_win32_render(&renderer, context.window(), 5, -30, 1, 0, 0, 1, "Wide", 4));
    return;
  }
  ASSERT_TRUE(created) << "is a TrueType font installed?";
  EXPECT_EQ(font.get_renderer_id(), renderer.get_id());
  ASSERT_TRUE(font.bitmap_font_win32_renderf(&renderer, context.window(), 5, -30, 1, 0, 0, 1, "W%s",
                                             "ide"));
  int red = 0;
  for (int y = 0; y < SIDE; ++y) {
    for (int x = 0; x < SIDE; ++x) red += context.pixel(x, y) == RED;
  }
  EXPECT_GT(red, 80);
  EXPECT_TRUE(font._cleanup(&renderer));
  EXPECT_EQ(font.get_font_data()->list_base, 0u);
}

ORV_BOTH_PROFILES(FontGlTest);

}  // namespace
}  // namespace orv::test
