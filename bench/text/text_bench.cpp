// 10,000 characters a frame through both kinds of fonts: the queue and the vertices, beside a loop
// that writes the same vertices from the same texts.
#include <benchmark/benchmark.h>
#include <orv/core/core.h>
#include <orv/geometry/geometry_core.h>
#include <orv/render/renderer_null.h>
#include <orv/text/font.h>
#include <stb/stb_truetype.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr int NUM_TEXTS = 100;
constexpr int CHARS_PER_TEXT = 100;
constexpr std::size_t NUM_VERTICES = std::size_t{NUM_TEXTS} * CHARS_PER_TEXT * 6;
constexpr int BITMAP = 512;
constexpr int PAGE = 256;
constexpr float SCALE = 0.75f;

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  std::exit(1);
}

/// A line of a frame.
struct Text {
  int x, y;
  float r, g, b, a;
  std::string text;
};

std::vector<Text> make_texts() {
  std::vector<Text> texts;
  for (int i = 0; i < NUM_TEXTS; ++i) {
    Text line{i % 7, i * 12, 1.0f, static_cast<float>(i) / NUM_TEXTS, 0.5f, 1.0f, ""};
    for (int k = 0; k < CHARS_PER_TEXT; ++k) {
      line.text += static_cast<char>(' ' + (i * 31 + k * 17) % 95);
    }
    texts.push_back(line);
  }
  return texts;
}

struct Vertex {
  float position[4], uv[4], normal[4], color[4];
};

void write_vertex(Vertex& v, float x, float y, float s, float t, const Text& text) {
  v = {{x, y, 0, 1}, {s, t, 0, 1}, {0, 0, 0, 1}, {text.r, text.g, text.b, text.a}};
}

Vertex* write_quad(Vertex* v, float x0, float y0, float x1, float y1, float s0, float t0, float s1,
                   float t1, const Text& text) {
  write_vertex(v[0], x0, y0, s0, t0, text);
  write_vertex(v[1], x1, y0, s1, t0, text);
  write_vertex(v[2], x1, y1, s1, t1, text);
  write_vertex(v[3], x1, y1, s1, t1, text);
  write_vertex(v[4], x0, y1, s0, t1, text);
  write_vertex(v[5], x0, y0, s0, t0, text);
  return v + 6;
}

// ---- the loops ----

/// Numbers of a character in a page image.
struct PageChar {
  unsigned short x, y, width, height, xoffset, yoffset, xadvance;
};

PageChar page_char(int code) {
  const auto n = static_cast<unsigned short>(code);
  return {static_cast<unsigned short>(n % 16 * 16), static_cast<unsigned short>(n / 16 * 16),
          static_cast<unsigned short>(7 + n % 5),   static_cast<unsigned short>(9 + n % 3),
          static_cast<unsigned short>(n % 2),       static_cast<unsigned short>(n % 4),
          static_cast<unsigned short>(8 + n % 5)};
}

void page_loop(const std::vector<PageChar>& chars, const std::vector<Text>& texts, Vertex* v) {
  for (const Text& text : texts) {
    float pen = static_cast<float>(text.x);
    const float y = static_cast<float>(-text.y);
    for (const char c : text.text) {
      const PageChar& ch = chars[static_cast<unsigned char>(c)];
      const float u0 = static_cast<float>(ch.x) / PAGE;
      const float u1 = u0 + static_cast<float>(ch.width) / PAGE;
      const float v0 = 1.0f - static_cast<float>(ch.y) / PAGE;
      const float v1 =
          1.0f - (static_cast<float>(ch.height) / PAGE + static_cast<float>(ch.y) / PAGE);
      const float x0 = pen + static_cast<float>(ch.xoffset) * SCALE;
      const float x1 = x0 + static_cast<float>(ch.width) * SCALE;
      const float y0 = y - static_cast<float>(ch.yoffset) * SCALE;
      const float y1 = y0 - static_cast<float>(ch.height) * SCALE;
      v = write_quad(v, x0, y0, x1, y1, u0, v0, u1, v1, text);
      pen += static_cast<float>(ch.xadvance) * SCALE;
      if (c == ' ') pen += 2 * SCALE;
    }
  }
}

void baked_loop(const std::vector<stbtt_bakedchar>& chars, const std::vector<Text>& texts,
                Vertex* v) {
  for (const Text& text : texts) {
    float x = static_cast<float>(text.x);
    const float y = static_cast<float>(text.y);
    for (const char c : text.text) {
      const stbtt_bakedchar& b = chars[static_cast<unsigned char>(c) - 32u];
      const float rx = std::floor(x + b.xoff + 0.5f), ry = std::floor(y + b.yoff + 0.5f);
      const float x0 = SCALE * rx, x1 = SCALE * (rx + static_cast<float>(b.x1 - b.x0));
      const float y0 = -(SCALE * ry), y1 = -(SCALE * (ry + static_cast<float>(b.y1 - b.y0)));
      v = write_quad(v, x0, y0, x1, y1, static_cast<float>(b.x0) / BITMAP,
                     static_cast<float>(b.y0) / BITMAP, static_cast<float>(b.x1) / BITMAP,
                     static_cast<float>(b.y1) / BITMAP, text);
      x += b.xadvance;
    }
  }
}

// ---- ours ----

/// Draws nothing and remembers what it should draw.
class Looker : public orv::RendererNull {
 public:
  bool geometry_vbo_update(orv::GeometryCore* geometry) override {
    geometry_ = geometry;
    return true;
  }
  const orv::GeometryCore* geometry() const { return geometry_; }

 private:
  orv::GeometryCore* geometry_ = nullptr;
};

std::string page_xml() {
  std::string xml = "<font><info spacing=\"2,0\"/><common scaleW=\"256\" scaleH=\"256\"/><chars>";
  for (int code = 0; code < 256; ++code) {
    const PageChar ch = page_char(code);
    char row[256];
    std::snprintf(row, sizeof(row),
                  "<char id=\"%d\" x=\"%d\" y=\"%d\" width=\"%d\" height=\"%d\" xoffset=\"%d\" "
                  "yoffset=\"%d\" xadvance=\"%d\"/>",
                  code, ch.x, ch.y, ch.width, ch.height, ch.xoffset, ch.yoffset, ch.xadvance);
    xml += row;
  }
  return xml + "</chars></font>";
}

struct Frames {
  std::vector<Text> texts = make_texts();
  std::vector<PageChar> page;
  std::vector<stbtt_bakedchar> baked = std::vector<stbtt_bakedchar>(224);
  std::vector<Vertex> vertices = std::vector<Vertex>(NUM_VERTICES);
  Looker renderer;
  orv::Font* font = new orv::Font;  // lives as long as the program

  Frames() {
    for (int code = 0; code < 256; ++code) page.push_back(page_char(code));
    std::vector<unsigned char> file, pixels(BITMAP * BITMAP);
    if (std::FILE* stream = std::fopen(BENCH_FONT, "rb")) {
      file.resize(1 << 20);
      file.resize(std::fread(file.data(), 1, file.size(), stream));
      std::fclose(stream);
    }
    if (!font->stbttf_load_font_texture(nullptr, BENCH_FONT, 20, BITMAP, BITMAP) ||
        !font->bm_load_charset_from_memory(page_xml().c_str()) ||
        !font->bm_load_charset_texture(nullptr, BENCH_PAGE)) {
      fail("a font cannot be read");
    }
    stbtt_BakeFontBitmap(file.data(), 0, 20, pixels.data(), BITMAP, BITMAP, 32, 224, baked.data());
    font->bm_set_scale(SCALE);
  }

  void fill_queue() {
    font->bm_draw_reset();
    for (const Text& t : texts) {
      font->bm_draw_text_2d(t.x, t.y, t.r, t.g, t.b, t.a, t.text.c_str());
    }
  }
  void our_page() {
    fill_queue();
    if (!font->bm_update_vb(&renderer, false)) fail("no room for the texts");
  }
  void our_baked() {
    fill_queue();
    if (!font->stbtt_update_vb(&renderer, false)) fail("no room for the texts");
  }
  void page_peer() { page_loop(page, texts, vertices.data()); }
  void baked_peer() { baked_loop(baked, texts, vertices.data()); }

  void check(const char* road) const {
    const orv::GeometryCore* ours = renderer.geometry();
    if (ours && ours->get_num_vertices() >= NUM_VERTICES &&
        std::memcmp(ours->vertices, vertices.data(), NUM_VERTICES * sizeof(Vertex)) == 0) {
      return;
    }
    fail(road);
  }
};

template <class Action>
void add(const char* name, Action action) {
  benchmark::RegisterBenchmark(name, [action](benchmark::State& state) {
    for (auto _ : state) {
      action();
      benchmark::ClobberMemory();
    }
  });
}

}  // namespace

int main(int argc, char** argv) {
  orv::core::start(nullptr, false, nullptr, nullptr);
  Frames frames;
  frames.our_page();
  frames.font->bm_render_vb(&frames.renderer);
  frames.page_peer();
  frames.check("the vertices of the page image differ");
  frames.our_baked();
  frames.font->stbtt_render_vb(&frames.renderer);
  frames.baked_peer();
  frames.check("the vertices of the baked bitmap differ");

  add("10,000 characters of a page image/ours", [&] { frames.our_page(); });
  add("10,000 characters of a page image/loop", [&] { frames.page_peer(); });
  add("10,000 characters of a TrueType font/ours", [&] { frames.our_baked(); });
  add("10,000 characters of a TrueType font/loop", [&] { frames.baked_peer(); });
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  orv::core::stop(nullptr);
  return 0;
}
