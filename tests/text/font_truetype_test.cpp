// Font: TrueType files.
#include <cmath>
#include <cstring>
#include <limits>

#include "support/log_capture.h"
#include "text/font_builder.h"
#include "text/font_fixture.h"
#include "text/stb_truetype.h"

namespace orv::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

constexpr int FIRST = 32, COUNT = 224;

class FontTruetypeTest : public FontTest {
 protected:
  /// The rows that baking gives, for a bitmap of 256 x 256 and characters of 16 pixels.
  static std::vector<detail::BakedChar> baked_chars() {
    std::vector<detail::BakedChar> chars(COUNT);
    Bytes pixels(256 * 256);
    const Bytes file = read_bytes(data_path("ttf/DejaVuSansMono.ttf"));
    const detail::BakeResult result = detail::bake_font_bitmap(
        file.data(), file.size(), 16, pixels.data(), 256, 256, FIRST, COUNT, chars.data());
    EXPECT_EQ(result.num_baked, COUNT);
    return chars;
  }
  void write_and_draw() {
    ASSERT_TRUE(font.stbtt_update_vb(&renderer, false));
    ASSERT_TRUE(font.stbtt_render_vb(&renderer));
  }
};

// ---- real files ----

/// What is known of a real file.
struct Facts {
  const char* name;
  int ascent, descent;
  int mapped;                                          ///< characters 32 to 255
  int advance_blank, advance_a, advance_m, advance_i;  ///< units
  float advance_of_a;                                  ///< pixels, for a height of 32
};
constexpr Facts FACTS[] = {
    {"DejaVuSansMono.ttf", 1901, -483, 191, 1233, 1233, 1233, 1233, 16.5503f},
    {"DejaVuSans.ttf", 1901, -483, 191, 651, 1401, 1767, 569, 18.8054f},
};

void expect_facts(const std::string& path, const Facts& facts) {
  const Bytes file = read_bytes(path);
  constexpr int SIDE = 512;
  std::vector<detail::BakedChar> chars(COUNT);
  Bytes pixels(SIDE * SIDE);
  const detail::BakeResult result = detail::bake_font_bitmap(
      file.data(), file.size(), 32, pixels.data(), SIDE, SIDE, FIRST, COUNT, chars.data());
  ASSERT_EQ(result.fault, nullptr) << path;
  ASSERT_EQ(result.num_baked, COUNT);
  const auto at = [&](int code) { return chars[static_cast<std::size_t>(code - FIRST)]; };
  const float scale = 32.0f / static_cast<float>(facts.ascent - facts.descent);
  EXPECT_NEAR(at('A').xadvance, facts.advance_of_a, 1e-4f);
  EXPECT_NEAR(at('A').xadvance, static_cast<float>(facts.advance_a) * scale, 1e-4f);
  EXPECT_NEAR(at('M').xadvance, static_cast<float>(facts.advance_m) * scale, 1e-4f);
  EXPECT_NEAR(at('i').xadvance, static_cast<float>(facts.advance_i) * scale, 1e-4f);
  EXPECT_NEAR(at(' ').xadvance, static_cast<float>(facts.advance_blank) * scale, 1e-4f);
  // What the font lacks shows one and the same sign; the delete character is always lacking.
  const auto image_of = [&](int code) {
    const detail::BakedChar c = at(code);
    Bytes image;
    for (int y = c.y0; y < c.y1; ++y) {
      const auto row = pixels.begin() + y * SIDE;
      image.insert(image.end(), row + c.x0, row + c.x1);
    }
    return image;
  };
  int mapped = 0;
  for (int code = FIRST; code < FIRST + COUNT; ++code) mapped += image_of(code) != image_of(127);
  EXPECT_EQ(mapped, facts.mapped) << path;

  Held<Font> font;
  ASSERT_TRUE(font->stbttf_load_font_texture(nullptr, path.c_str(), 32, SIDE, SIDE));
  EXPECT_EQ(font->stbttf_get_string_width_v1("A"), static_cast<unsigned int>(facts.advance_of_a));
  EXPECT_EQ(font->stbttf_get_string_width_v1("Ai A"),
            2 * static_cast<unsigned int>(facts.advance_of_a) +
                static_cast<unsigned int>(at('i').xadvance) +
                static_cast<unsigned int>(at(' ').xadvance));
}

TEST_F(FontTruetypeTest, SmallRealFileBakesAsItShould) {
  expect_facts(data_path("ttf/DejaVuSansMono.ttf"), FACTS[0]);
}

TEST_F(FontTruetypeTest, AllRealFilesBakeAsTheyShould) {
  if (extra_path("").empty()) GTEST_SKIP() << "no folder of real files";
  for (const Facts& facts : FACTS) {
    expect_facts(extra_path(std::string("ttf/") + facts.name), facts);
  }
}

// ---- baking ----

TEST_F(FontTruetypeTest, BadArgumentsAreRefusedAndKeepTheFont) {
  const std::string path = data_path("ttf/DejaVuSansMono.ttf");
  const Bytes file = read_bytes(path);
  const auto size = static_cast<unsigned int>(file.size());
  ASSERT_TRUE(font.stbttf_load_font_texture_from_memory(nullptr, file.data(), size, 16, 256, 256));
  EXPECT_FALSE(font.stbttf_load_font_texture(nullptr, nullptr, 16, 256, 256));
  EXPECT_FALSE(font.stbttf_load_font_texture(nullptr, "/nowhere.ttf", 16, 256, 256));
  EXPECT_FALSE(font.stbttf_load_font_texture(nullptr, "/tmp", 16, 256, 256));
  EXPECT_FALSE(font.stbttf_load_font_texture_from_memory(nullptr, nullptr, size, 16, 256, 256));
  EXPECT_FALSE(font.stbttf_load_font_texture_from_memory(nullptr, file.data(), 0, 16, 256, 256));
  const int sizes[][2] = {
      {0, 256},     {256, 0},     {-1, 256},      {256, -1},
      {32768, 256}, {256, 32768}, {32767, 32767}, {-2147483647 - 1, 2147483647}};
  for (const auto& [width, height] : sizes) {
    EXPECT_FALSE(font.stbttf_load_font_texture(nullptr, path.c_str(), 16, width, height))
        << width << " " << height;
  }
  for (const float height : {0.0f, -16.0f, 4097.0f, std::numeric_limits<float>::infinity(),
                             std::numeric_limits<float>::quiet_NaN()}) {
    EXPECT_FALSE(font.stbttf_load_font_texture(nullptr, path.c_str(), height, 256, 256)) << height;
  }
  EXPECT_EQ(font.stbttf_get_string_width_v1("A"), 8u) << "the font from before";
  EXPECT_TRUE(font.stbttf_build_font_texture(&renderer, 0));
}

TEST_F(FontTruetypeTest, SpoiledFilesAreToldByName) {
  LogCapture log;
  EXPECT_FALSE(
      font.stbttf_load_font_texture(nullptr, data_path("bmfont/font.png").c_str(), 16, 64, 64));
  EXPECT_TRUE(log.contains("font.png: not a TrueType font"));
  EXPECT_FALSE(font.stbttf_load_font_texture(nullptr, "/nowhere.ttf", 16, 64, 64));
  EXPECT_TRUE(log.contains("font /nowhere.ttf: No such file"));
}

TEST_F(FontTruetypeTest, EveryTruncationIsRefused) {
  FontBuilder builder;
  builder.glyphs.push_back(rectangle_glyph(0, 0, 500, 700));
  const Bytes good = builder.build();
  const auto load = [&](std::size_t size) {
    return font.stbttf_load_font_texture_from_memory(nullptr, good.data(),
                                                     static_cast<unsigned int>(size), 12, 64, 64);
  };
  EXPECT_TRUE(load(good.size()));
  for (std::size_t size = 0; size + 2 < good.size(); ++size) EXPECT_FALSE(load(size)) << size;
}

TEST_F(FontTruetypeTest, CharactersThatDoNotFitAreLeftOut) {
  ASSERT_TRUE(load_truetype_font(40, 40));
  EXPECT_GT(font.stbttf_get_string_width_v1("!"), 0u);
  EXPECT_EQ(font.stbttf_get_string_width_v1("z"), 0u);
  ASSERT_TRUE(draw_white("z"));
  write_and_draw();
  EXPECT_EQ(renderer.drawn()[16] - renderer.drawn()[0], 0.0f) << "no width";
  ASSERT_TRUE(load_truetype_font(1, 1)) << "nothing fits";
  EXPECT_EQ(font.stbttf_get_string_width_v1("!"), 0u);
}

// ---- texture ----

TEST_F(FontTruetypeTest, BitmapBecomesATextureOnce) {
  EXPECT_FALSE(font.stbttf_build_font_texture(&renderer, 0)) << "nothing is baked";
  ASSERT_TRUE(load_truetype_font());
  EXPECT_FALSE(font.stbttf_build_font_texture(nullptr, 0));
  EXPECT_TRUE(font.stbttf_build_font_texture(&renderer, 3));
  Texture* texture = font.stbttf_get_font_texture();
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(texture->get_pixel_format(), PF_R_U8);
  EXPECT_EQ(texture->get_width(), 256u);
  EXPECT_FALSE(texture->get_data_ptr()->gen_mipmaps);
  EXPECT_EQ(texture->get_ref(), 2);
  renderer.label(texture->get_data_ptr(), "texture");
  EXPECT_THAT(renderer.calls(), ElementsAre("texture_load(null, ptr, 3)"));
  EXPECT_FALSE(font.stbttf_build_font_texture(&renderer, 0)) << "the bitmap is gone";
  EXPECT_EQ(font.stbttf_get_font_texture(), texture);

  FontRenderer d3d(ORV_API3D_D3D12);
  ASSERT_TRUE(load_truetype_font());
  EXPECT_TRUE(font.stbttf_build_font_texture(&d3d, 0));
  EXPECT_THAT(d3d.names(), Contains("texture_load_direct3d"));
  EXPECT_EQ(TextureMgr::get()->get_num_resources(), 1u) << "in place of the one before";
  EXPECT_TRUE(font.stbttf_release_font_texture(&renderer));
  EXPECT_FALSE(font.stbttf_release_font_texture(&renderer));
  EXPECT_EQ(TextureMgr::get()->get_num_resources(), 0u);
}

TEST_F(FontTruetypeTest, BitmapBecomesALayerOnce) {
  TextureMgr& manager = *TextureMgr::get();
  Texture* layers = manager.create_texture_2d_array(256, 256, 2, PF_R_U8, true);
  Texture* other_size = manager.create_texture_2d_array(256, 257, 2, PF_R_U8, true);
  Texture* other_format = manager.create_texture_2d_array(256, 256, 2, PF_RGBA_U8, true);
  Texture* flat = manager.create_texture_2d(256, 256, PF_R_U8, true);
  ASSERT_TRUE(load_truetype_font());
  EXPECT_FALSE(font.stbttf_add_layer_to_texture_2d_array(nullptr, layers, 0));
  EXPECT_FALSE(font.stbttf_add_layer_to_texture_2d_array(&renderer, nullptr, 0));
  EXPECT_FALSE(font.stbttf_add_layer_to_texture_2d_array(&renderer, layers, 2));
  EXPECT_FALSE(font.stbttf_add_layer_to_texture_2d_array(&renderer, other_size, 0));
  EXPECT_FALSE(font.stbttf_add_layer_to_texture_2d_array(&renderer, other_format, 0));
  EXPECT_FALSE(font.stbttf_add_layer_to_texture_2d_array(&renderer, flat, 0));
  EXPECT_TRUE(font.stbttf_add_layer_to_texture_2d_array(&renderer, layers, 1));
  EXPECT_FALSE(font.stbttf_add_layer_to_texture_2d_array(&renderer, layers, 1));
  EXPECT_FALSE(font.stbttf_build_font_texture(&renderer, 0)) << "it is used once";
  const unsigned char* pixels = layers->get_layer_image_ptr(1)->get_u8_ptr();
  EXPECT_GT(std::count_if(pixels, pixels + 256 * 256, [](int p) { return p > 128; }), 2000);
  EXPECT_EQ(layers->get_layer_image_ptr(0)->get_u8_ptr()[5], 0);
}

// ---- vertices ----

TEST_F(FontTruetypeTest, RoomNeedsABakedFont) {
  EXPECT_TRUE(font.stbttf_alloc_vb(nullptr, 0));
  EXPECT_FALSE(font.stbttf_alloc_vb(&renderer, 1));
  ASSERT_TRUE(draw_white("A"));
  EXPECT_FALSE(font.stbtt_update_vb(&renderer, false));
  EXPECT_FALSE(font.stbtt_render_vb(&renderer));
  ASSERT_TRUE(load_truetype_font());
  EXPECT_FALSE(font.stbttf_alloc_vb(nullptr, 1));
  EXPECT_TRUE(font.stbttf_alloc_vb(&renderer, 1)) << "no texture is needed";
  EXPECT_TRUE(font.stbttf_alloc_vb(nullptr, 512));
  EXPECT_FALSE(font.stbttf_alloc_vb(nullptr, 513));
  EXPECT_TRUE(font.stbttf_alloc_vb(&renderer, 513));
  EXPECT_TRUE(font.stbttf_alloc_vb(nullptr, 1025));
  EXPECT_FALSE(font.stbttf_alloc_vb(nullptr, 1026));
  EXPECT_FALSE(font.stbttf_alloc_vb(&renderer, 0xFFFFFFFFu));
  EXPECT_FALSE(font.stbttf_free_vb(nullptr));
  EXPECT_TRUE(font.stbttf_free_vb(&renderer));
  EXPECT_FALSE(font.stbttf_alloc_vb(nullptr, 1));
}

TEST_F(FontTruetypeTest, MeshIsSetUpForTheRenderersApi) {
  ASSERT_TRUE(load_truetype_font());
  ASSERT_TRUE(draw_white("A"));
  write_and_draw();
  EXPECT_EQ(renderer.geometry()->get_vertex_buffer_usage(), BUFFER_USAGE_DYNAMIC_DRAW);
  EXPECT_FALSE(renderer.geometry()->has_separate_vertex_arrays());
  ASSERT_TRUE(font.stbttf_free_vb(&renderer));
  FontRenderer vulkan(ORV_API3D_VULKAN);
  ASSERT_TRUE(font.stbttf_alloc_vb(&vulkan, 1));
  EXPECT_THAT(vulkan.names(), ElementsAre("geometry_vbo_create"));
  ASSERT_TRUE(font.stbttf_free_vb(&vulkan));
}

TEST_F(FontTruetypeTest, SixVerticesForEachCharacter) {
  const detail::BakedChar b = baked_chars()['A' - FIRST];
  ASSERT_TRUE(load_truetype_font());
  font.bm_set_scale(2);
  ASSERT_TRUE(font.bm_draw_text_2d(10, 20, 0.5f, 0.25f, 0.75f, 1, "A"));
  write_and_draw();
  EXPECT_EQ(renderer.drawn_start, 0);
  EXPECT_EQ(renderer.drawn_count, 6);
  const float rx = std::floor(10 + b.xoff + 0.5f), ry = std::floor(20 + b.yoff + 0.5f);
  const float x0 = 2 * rx, x1 = 2 * (rx + static_cast<float>(b.x1 - b.x0));
  const float y0 = -2 * ry, y1 = -2 * (ry + static_cast<float>(b.y1 - b.y0));
  const float s0 = b.x0 / 256.0f, s1 = b.x1 / 256.0f, t0 = b.y0 / 256.0f, t1 = b.y1 / 256.0f;
  const float corners[6][4] = {{x0, y0, s0, t0}, {x1, y0, s1, t0}, {x1, y1, s1, t1},
                               {x1, y1, s1, t1}, {x0, y1, s0, t1}, {x0, y0, s0, t0}};
  for (std::size_t i = 0; i < 6; ++i) {
    const float* vertex = renderer.drawn() + 16 * i;
    EXPECT_THAT(std::vector<float>(vertex, vertex + 16),
                ElementsAre(corners[i][0], corners[i][1], 0, 1, corners[i][2], corners[i][3], 0, 1,
                            0, 0, 0, 1, 0.5f, 0.25f, 0.75f, 1));
  }
}

TEST_F(FontTruetypeTest, TextWithoutANewLineGoesOn) {
  ASSERT_TRUE(load_truetype_font());
  ASSERT_TRUE(font.bm_draw_text_2d(10, 20, 1, 0, 0, 1, "AAAA"));
  write_and_draw();
  const std::vector<float> whole(renderer.drawn(), renderer.drawn() + 4 * 96);
  font.bm_draw_reset();
  ASSERT_TRUE(font.bm_draw_text_2d(10, 20, 1, 0, 0, 1, "AA"));
  ASSERT_TRUE(font.bm_draw_text_2d_v2(500, 600, 0, 1, 0, 1, false, "AA"));
  write_and_draw();
  for (std::size_t vertex = 0; vertex < 24; ++vertex) {
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(renderer.drawn()[vertex * 16 + i], whole[vertex * 16 + i]);
    }
    EXPECT_EQ(renderer.drawn()[vertex * 16 + 12], vertex < 12 ? 1.0f : 0.0f) << "its own colour";
  }
}

TEST_F(FontTruetypeTest, OtherCharactersKeepTheirVertices) {
  ASSERT_TRUE(load_truetype_font());
  ASSERT_TRUE(draw_white("AAA"));
  write_and_draw();
  const std::vector<float> before(renderer.drawn(), renderer.drawn() + 3 * 96);
  font.bm_draw_reset();
  ASSERT_TRUE(font.bm_draw_text_2d(100, 0, 1, 1, 1, 1, "B\nB"));
  write_and_draw();
  EXPECT_EQ(renderer.drawn_count, 18);
  EXPECT_EQ(std::vector<float>(renderer.drawn() + 96, renderer.drawn() + 192),
            std::vector<float>(before.begin() + 96, before.begin() + 192));
  EXPECT_NE(renderer.drawn()[0], before[0]);
  EXPECT_NE(renderer.drawn()[192], before[192]);
}

TEST_F(FontTruetypeTest, EmptyQueuesAreLeftAlone) {
  EXPECT_FALSE(font.stbtt_update_vb(nullptr, false));
  EXPECT_TRUE(font.stbtt_update_vb(&renderer, false));
  ASSERT_TRUE(draw_white(""));
  EXPECT_TRUE(font.stbtt_update_vb(&renderer, true)) << "no characters";
  EXPECT_FALSE(font.stbtt_render_vb(&renderer));
  EXPECT_FALSE(font.stbtt_render_vb(nullptr));
  EXPECT_TRUE(renderer.calls().empty());
}

TEST_F(FontTruetypeTest, MappingHasNoFallBack) {
  ASSERT_TRUE(load_truetype_font());
  ASSERT_TRUE(draw_white("A"));
  EXPECT_FALSE(font.stbtt_update_vb(&renderer, true)) << "no buffer yet";
  write_and_draw();
  font.bm_draw_reset();
  ASSERT_TRUE(font.bm_draw_text_2d(50, 0, 1, 1, 1, 1, "AB"));
  renderer.clear();
  renderer.maps = false;
  EXPECT_FALSE(font.stbtt_update_vb(&renderer, true));
  ASSERT_TRUE(font.stbtt_render_vb(&renderer));
  EXPECT_EQ(renderer.drawn_count, 6) << "as it was";
  renderer.maps = true;
  renderer.clear();
  EXPECT_TRUE(font.stbtt_update_vb(&renderer, true));
  EXPECT_THAT(renderer.calls(), ElementsAre("vertex_buffer_map(7)", "vertex_buffer_unmap(7)"));
  const std::vector<float> mapped(renderer.drawn(), renderer.drawn() + 192);
  ASSERT_TRUE(font.stbtt_render_vb(&renderer));
  EXPECT_FALSE(renderer.uploaded());
  EXPECT_EQ(std::vector<float>(renderer.drawn(), renderer.drawn() + 192), mapped);
  EXPECT_EQ(renderer.drawn_count, 12);
  ASSERT_TRUE(font.stbtt_update_vb(&renderer, false));
  ASSERT_TRUE(font.stbtt_render_vb(&renderer));
  EXPECT_EQ(std::vector<float>(renderer.drawn(), renderer.drawn() + 192), mapped);
}

// ---- widths ----

TEST_F(FontTruetypeTest, WidthsAreSumsOfWholeAdvances) {
  EXPECT_EQ(font.stbttf_get_string_width_v1("A"), 0u) << "nothing is baked";
  ASSERT_TRUE(load_truetype_font());
  font.bm_set_scale(3);
  const detail::BakedChar a = baked_chars()['A' - FIRST];
  ASSERT_EQ(static_cast<int>(a.xadvance), 8);
  ASSERT_GT(a.xadvance, 8.1f) << "cut, not rounded";
  EXPECT_EQ(font.stbttf_get_string_width_v1(nullptr), 0u);
  EXPECT_EQ(font.stbttf_get_string_width_v1(""), 0u);
  EXPECT_EQ(font.stbttf_get_string_width_v1("Hello"), 40u);
  EXPECT_EQ(font.stbttf_get_string_width_v1("\x01\n\x1f"), 0u) << "codes below 32";
  EXPECT_EQ(font.stbttf_get_string_width_v1("\xe9\xff"), 16u);
  ASSERT_TRUE(draw_white("abc"));
  ASSERT_TRUE(draw_white(""));
  EXPECT_EQ(font.stbttf_get_string_width_v2(0), 24u);
  EXPECT_EQ(font.stbttf_get_string_width_v2(1), 0u);
  EXPECT_EQ(font.stbttf_get_string_width_v2(2), 0u);
  EXPECT_EQ(font.stbttf_get_string_width_v2(0xFFFFFFFFu), 0u);
  EXPECT_TRUE(font.stbtt_update_glyph_sizes());
  EXPECT_EQ(font.stbttf_get_string_width_v2(0), 24u);
}

TEST_F(FontTruetypeTest, WidthsNeverFallBelowNothing) {
  FontBuilder builder;
  builder.glyphs.push_back(rectangle_glyph(0, 0, 500, 500));
  builder.advance = -20000;
  const Bytes file = builder.build();
  ASSERT_TRUE(font.stbttf_load_font_texture_from_memory(
      nullptr, file.data(), static_cast<unsigned int>(file.size()), 16, 256, 256));
  EXPECT_EQ(font.stbttf_get_string_width_v1("AAA"), 0u);
}

}  // namespace
}  // namespace orv::test
