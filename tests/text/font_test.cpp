// Font: life, record and fonts of the window system.
#include <orv/gpu/material.h>
#include <orv/gpu/material_mgr.h>
#include <orv/render/render_window.h>

#include "text/font_fixture.h"

namespace orv::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

class FontLifeTest : public FontTest {};

TEST_F(FontLifeTest, IsAnObjectOfItsOwnType) {
  EXPECT_EQ(font.get_type(), NODE_TYPE_FONT);
  EXPECT_TRUE(font.is_type_of(NODE_TYPE_OBJECT));
  EXPECT_TRUE(font.is_type_of(NODE_TYPE_FONT));
}

TEST_F(FontLifeTest, RecordHasItsDefaults) {
  const FontData* data = font.get_font_data();
  ASSERT_NE(data, nullptr);
  EXPECT_STREQ(data->font_name, "Arial");
  EXPECT_EQ(data->height, 14);
  EXPECT_EQ(font.get_renderer_id(), 0);
  EXPECT_TRUE(font.set_viewport_info(1, 2, 30, 40));
  EXPECT_EQ(data->viewport_x, 1);
  EXPECT_EQ(data->viewport_y, 2);
  EXPECT_EQ(data->viewport_width, 30);
  EXPECT_EQ(data->viewport_height, 40);
  font.get_font_data()->renderer_id = 5;
  EXPECT_EQ(font.get_renderer_id(), 5);
}

TEST_F(FontLifeTest, WithoutARecordThereIsNoWindowFont) {
  EXPECT_TRUE(font.free_font_data());
  EXPECT_FALSE(font.free_font_data());
  EXPECT_EQ(font.get_font_data(), nullptr);
  EXPECT_EQ(font.get_renderer_id(), 0);
  EXPECT_FALSE(font.set_viewport_info(1, 2, 3, 4));
  RenderWindow window;
  renderer.answer("bitmap_font_create", 1);
  EXPECT_FALSE(font.bitmap_font_win32_create(&renderer, &window, "Arial", 12));
  EXPECT_FALSE(font.bitmap_font_win32_render(&renderer, &window, 0, 0, 1, 1, 1, 1, "a", 1));
  EXPECT_TRUE(font._cleanup(&renderer));
  EXPECT_TRUE(renderer.calls().empty());
}

TEST_F(FontLifeTest, KeepsWhatHostsLeave) {
  int mine = 0;
  EXPECT_EQ(font.get_ftgl_data(), nullptr);
  font.set_ftgl_data(&mine);
  EXPECT_EQ(font.get_ftgl_data(), &mine);
  EXPECT_FALSE(font.get_map_gpu_memory_for_update());
  font.map_gpu_memory_for_update(true);
  EXPECT_TRUE(font.get_map_gpu_memory_for_update());
}

// ---- fonts of the window system ----

TEST_F(FontLifeTest, WindowFontIsMadeByTheRenderer) {
  RenderWindow window;
  int native = 0;
  window.native_handle = &native;
  renderer.label(font.get_font_data(), "font");
  renderer.answer("bitmap_font_create", 1);
  EXPECT_FALSE(font.bitmap_font_win32_create(nullptr, &window, "Arial", 12));
  EXPECT_FALSE(font.bitmap_font_win32_create(&renderer, nullptr, "Arial", 12));
  EXPECT_TRUE(renderer.calls().empty());
  EXPECT_TRUE(font.bitmap_font_win32_create(&renderer, &window, "Courier", 22));
  EXPECT_THAT(renderer.calls(), ElementsAre("bitmap_font_create(font)"));
  const FontData& data = *font.get_font_data();
  EXPECT_STREQ(data.font_name, "Courier");
  EXPECT_EQ(data.height, 22);
  EXPECT_EQ(data.window_handle, &native);

  const std::string name(500, 'n');
  EXPECT_TRUE(font.bitmap_font_win32_create(&renderer, &window, name.c_str(), 1));
  EXPECT_EQ(std::string(data.font_name), name.substr(0, 127));
  EXPECT_TRUE(font.bitmap_font_win32_create(&renderer, &window, nullptr, 1));
  EXPECT_STREQ(data.font_name, "");
  renderer.answer("bitmap_font_create", 0);
  EXPECT_FALSE(font.bitmap_font_win32_create(&renderer, &window, "Arial", 12));
}

TEST_F(FontLifeTest, WindowTextGoesToTheRenderer) {
  RenderWindow window;
  renderer.label(font.get_font_data(), "font");
  renderer.answer("bitmap_font_render", 1);
  EXPECT_TRUE(font.bitmap_font_win32_render(&renderer, &window, 1, 2, 0, 0.5f, 1, 1, "text", 3));
  EXPECT_TRUE(font.bitmap_font_win32_renderf(&renderer, &window, 1, 2, 0, 0, 0, 1, "%d-%d", 4, 2));
  EXPECT_THAT(renderer.calls(),
              ElementsAre("bitmap_font_render(font, 1, 2, 0, 0.5, 1, 1, \"text\", 3)",
                          "bitmap_font_render(font, 1, 2, 0, 0, 0, 1, \"4-2\", 3)"));
  renderer.clear();
  const std::string text(9000, 'x');
  EXPECT_TRUE(
      font.bitmap_font_win32_renderf(&renderer, &window, 0, 0, 0, 0, 0, 1, "%s", text.c_str()));
  EXPECT_THAT(renderer.calls().at(0), ::testing::HasSubstr("x\", 4095)"));
  renderer.clear();
  const char* none = nullptr;
  EXPECT_FALSE(font.bitmap_font_win32_render(nullptr, &window, 0, 0, 1, 1, 1, 1, "a", 1));
  EXPECT_FALSE(font.bitmap_font_win32_render(&renderer, nullptr, 0, 0, 1, 1, 1, 1, "a", 1));
  EXPECT_FALSE(font.bitmap_font_win32_render(&renderer, &window, 0, 0, 1, 1, 1, 1, none, 1));
  EXPECT_FALSE(font.bitmap_font_win32_renderf(&renderer, &window, 0, 0, 1, 1, 1, 1, none, 1));
  EXPECT_TRUE(renderer.calls().empty());
}

// ---- cleaning up ----

TEST_F(FontLifeTest, CleanupFreesEverything) {
  ASSERT_TRUE(load_bitmap_font());
  ASSERT_TRUE(load_truetype_font());
  ASSERT_TRUE(font.stbttf_build_font_texture(&renderer, 0));
  ASSERT_TRUE(draw_white("A"));
  ASSERT_TRUE(font.bm_update_vb(&renderer, false));
  ASSERT_TRUE(font.bm_render_vb(&renderer));
  ASSERT_TRUE(font.stbtt_update_vb(&renderer, false));
  ASSERT_TRUE(font.stbtt_render_vb(&renderer));
  font.add_material(MaterialMgr::get()->create_material("m"), nullptr);
  EXPECT_EQ(TextureMgr::get()->get_num_resources(), 2u);
  renderer.clear();
  EXPECT_TRUE(font._cleanup(&renderer));
  EXPECT_EQ(renderer.count("bitmap_font_destroy"), 1);
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 2);
  EXPECT_EQ(renderer.count("texture_unload"), 2);
  EXPECT_EQ(TextureMgr::get()->get_num_resources(), 0u);
  EXPECT_EQ(font.bm_get_charset_texture(), nullptr);
  EXPECT_EQ(font.stbttf_get_font_texture(), nullptr);
  EXPECT_EQ(font.bm_get_charset_image_filename(), nullptr);
  EXPECT_EQ(font.get_num_materials(), 0u);
  EXPECT_FALSE(font.bm_update_vb(&renderer, false)) << "there is no room any more";
  EXPECT_FALSE(font.stbtt_update_vb(&renderer, false));
  EXPECT_FALSE(font.bm_render_vb(&renderer));
  EXPECT_FALSE(font.stbtt_render_vb(&renderer));
  EXPECT_TRUE(font._cleanup(&renderer)) << "twice";
}

TEST_F(FontLifeTest, CleanupWithoutARendererLeavesTexturesAndMeshes) {
  ASSERT_TRUE(load_bitmap_font());
  ASSERT_TRUE(load_truetype_font());
  ASSERT_TRUE(font.stbttf_build_font_texture(&renderer, 0));
  ASSERT_TRUE(draw_white("A"));
  ASSERT_TRUE(font.bm_update_vb(&renderer, false));
  ASSERT_TRUE(font.stbtt_update_vb(&renderer, false));
  font.add_material(MaterialMgr::get()->create_material("m"), nullptr);
  renderer.clear();
  EXPECT_TRUE(font._cleanup(nullptr));
  EXPECT_NE(font.bm_get_charset_texture(), nullptr);
  EXPECT_NE(font.stbttf_get_font_texture(), nullptr);
  EXPECT_TRUE(font.bm_render_vb(&renderer)) << "the mesh as it was written last";
  EXPECT_TRUE(font.stbtt_render_vb(&renderer));
  EXPECT_EQ(font.bm_get_charset_image_filename(), nullptr) << "the fonts are gone";
  EXPECT_FALSE(font.bm_update_vb(&renderer, false));
  EXPECT_FALSE(font.stbtt_update_vb(&renderer, false));
  EXPECT_FALSE(font.stbtt_update_glyph_sizes());
  EXPECT_EQ(font.get_num_materials(), 0u);
}

TEST_F(FontLifeTest, FontThatEndsGivesItsTexturesBack) {
  {
    Held<Font> brief;
    ASSERT_TRUE(brief->bm_load_charset_texture(nullptr, data_path("bmfont/font.png").c_str()));
  }
  ASSERT_EQ(TextureMgr::get()->get_num_resources(), 1u);
  EXPECT_EQ(TextureMgr::get()->get_resource_by_index(0)->get_ref(), 1)
      << "the manager frees it with the renderer at its stop";
}

TEST_F(FontLifeTest, FontMayOutliveTheManager) {
  ASSERT_TRUE(load_bitmap_font());
  core::stop(nullptr);
  ASSERT_NE(font.bm_get_charset_texture(), nullptr);
  EXPECT_EQ(font.bm_get_charset_texture()->get_ref(), 1);
}

TEST_F(FontLifeTest, BothKindsOfFontsWorkInOneFont) {
  ASSERT_TRUE(load_bitmap_font());
  ASSERT_TRUE(load_truetype_font());
  ASSERT_TRUE(font.bm_alloc_vb(&renderer, 1000));
  ASSERT_TRUE(draw_white("AA"));
  ASSERT_TRUE(font.stbtt_update_vb(&renderer, false)) << "rooms of their own";
  ASSERT_TRUE(font.stbtt_render_vb(&renderer));
  EXPECT_EQ(renderer.geometry()->get_num_vertices(), 512u * 6u);
  EXPECT_EQ(renderer.drawn_count, 12);
  ASSERT_TRUE(font.bm_update_vb(&renderer, false));
  ASSERT_TRUE(font.bm_render_vb(&renderer));
  EXPECT_EQ(renderer.geometry()->get_num_vertices(), 6000u);
}

}  // namespace
}  // namespace orv::test
