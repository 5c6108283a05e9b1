#include <orv/gpu/texture.h>
#include <orv/image/image.h>
#include <orv/math/mat4.h>
#include <orv/math/vec2.h>
#include <orv/math/vec4.h>
#include <orv/services/freetype_gl_plugin_interface.h>
#include <orv/text/font.h>

#include <gmock/gmock.h>

#include <cstring>

#include "services/loaded_module.h"
#include "support/held.h"
#include "support/temp_folder.h"
#include "visual/draw_watcher.h"

namespace orv::test {
namespace {

// Characters from the space to the umlaut u.
constexpr char FACE[] = "BOXES 32 252";

using testing::Contains;

constexpr vec4 RED(1, 0, 0, 1), WHITE(1, 1, 1, 1);

class FreeTypeGLModule : public LoadedModule<FreeTypeGLPluginInterface> {
 protected:
  FreeTypeGLModule() : LoadedModule("freetype_gl") {}

  void SetUp() override {
    LoadedModule::SetUp();
    ASSERT_NE(plugin_, nullptr);
    ASSERT_TRUE(plugin_->load_face_from_memory(font_, FACE, sizeof FACE - 1, 16.0f));
  }
  void TearDown() override {
    if (plugin_) plugin_->free_face(nullptr, font_);
    LoadedModule::TearDown();
  }

  vec2 measure(const char* text) {
    vec2 size(-1, -1);
    EXPECT_TRUE(plugin_->measure_text(font_, text, &size.x, &size.y));
    return size;
  }
  const unsigned char* atlas_row(unsigned int row) {
    const Image* image = plugin_->get_atlas_texture(font_)->get_image_ptr();
    return image->get_u8_ptr() +
           std::size_t{row} * image->width * image->get_pixel_format_num_channels();
  }

  const Held<Font> font_;
};

TEST_F(FreeTypeGLModule, StateStandsInTheFont) {
  EXPECT_NE(font_->get_ftgl_data(), nullptr);
  EXPECT_TRUE(plugin_->free_face(nullptr, font_));
  EXPECT_EQ(font_->get_ftgl_data(), nullptr);
  EXPECT_FALSE(plugin_->free_face(nullptr, font_));
}

TEST_F(FreeTypeGLModule, EachFontHasAFaceOfItsOwn) {
  const Held<Font> other;
  EXPECT_TRUE(plugin_->load_face_from_memory(other, FACE, sizeof FACE - 1, 40.0f));
  EXPECT_NE(other->get_ftgl_data(), font_->get_ftgl_data());
  EXPECT_EQ(plugin_->get_pixel_height(font_), 16.0f);
  EXPECT_EQ(plugin_->get_pixel_height(other), 40.0f);
  EXPECT_TRUE(plugin_->free_face(nullptr, other));
  EXPECT_EQ(plugin_->get_pixel_height(font_), 16.0f);
}

TEST_F(FreeTypeGLModule, LoadsAFile) {
  const TempFolder folder;
  folder.write("boxes.face", "BOXES 65 90");
  EXPECT_TRUE(plugin_->load_face(font_, (folder.path() + "/boxes.face").c_str(), 20.0f));
  FtglGlyphMetrics metrics;
  EXPECT_TRUE(plugin_->get_glyph_metrics(font_, 'A', &metrics));
  EXPECT_FALSE(plugin_->get_glyph_metrics(font_, 'a', &metrics));
}

TEST_F(FreeTypeGLModule, WhatIsNoFaceLeavesTheOneBefore) {
  const void* before = font_->get_ftgl_data();
  EXPECT_FALSE(plugin_->load_face(font_, "/nonexistent/boxes.face", 20.0f));
  EXPECT_FALSE(plugin_->load_face(font_, nullptr, 20.0f));
  EXPECT_FALSE(plugin_->load_face_from_memory(font_, "CIRCLES", 7, 20.0f));
  EXPECT_FALSE(plugin_->load_face_from_memory(font_, FACE, sizeof FACE - 1, 0.0f));
  EXPECT_FALSE(plugin_->load_face_from_memory(nullptr, FACE, sizeof FACE - 1, 20.0f));
  EXPECT_EQ(font_->get_ftgl_data(), before);
  EXPECT_EQ(plugin_->get_pixel_height(font_), 16.0f);
}

TEST_F(FreeTypeGLModule, MetricsFollowTheHeight) {
  FtglFontMetrics face;
  EXPECT_TRUE(plugin_->get_font_metrics(font_, &face));
  EXPECT_EQ(face.ascender, 12.0f);
  EXPECT_EQ(face.descender, -4.0f);
  EXPECT_EQ(face.line_height, 16.0f);
  EXPECT_TRUE(plugin_->set_pixel_height(font_, 32.0f));
  FtglGlyphMetrics glyph;
  EXPECT_TRUE(plugin_->get_glyph_metrics(font_, 'x', &glyph));
  EXPECT_EQ(glyph.advance, 16.0f);
  EXPECT_EQ(glyph.height, 32.0f);
  EXPECT_EQ(glyph.offset_y, 24.0f);
  EXPECT_EQ(glyph.u1, 0.0f) << "not in the atlas";
}

TEST_F(FreeTypeGLModule, MeasuresTexts) {
  EXPECT_EQ(measure(""), vec2(0, 0));
  EXPECT_EQ(measure("abc"), vec2(24, 16));
  EXPECT_EQ(measure("ab\nabcd\n"), vec2(32, 48));
  EXPECT_EQ(measure("\xC3\xBC"), vec2(8, 16)) << "one character of two bytes";
  EXPECT_EQ(measure("\xC3"), vec2(8, 16)) << "a byte that begins nothing";
  EXPECT_TRUE(plugin_->measure_text(font_, "a", nullptr, nullptr));
  EXPECT_FALSE(plugin_->measure_text(font_, nullptr, nullptr, nullptr));
}

TEST_F(FreeTypeGLModule, KerningMovesPairsTogether) {
  EXPECT_EQ(plugin_->get_kerning(font_, 'A', 'V'), -2.0f);
  EXPECT_EQ(plugin_->get_kerning(font_, 'V', 'A'), 0.0f);
  EXPECT_EQ(measure("AV"), vec2(14, 16));
  EXPECT_TRUE(plugin_->set_kerning(font_, false));
  EXPECT_EQ(plugin_->get_kerning(font_, 'A', 'V'), 0.0f);
  EXPECT_EQ(measure("AV"), vec2(16, 16));
}

TEST_F(FreeTypeGLModule, AtlasHoldsWhatWasCached) {
  EXPECT_TRUE(plugin_->create_atlas(font_, 32, 32, 1));
  EXPECT_EQ(plugin_->get_atlas_texture(font_), nullptr);
  EXPECT_TRUE(plugin_->cache_glyphs(font_, "abca"));
  FtglGlyphMetrics glyph;
  EXPECT_TRUE(plugin_->get_glyph_metrics(font_, 'c', &glyph));
  EXPECT_EQ(glyph.u0, 0.5f);
  EXPECT_EQ(glyph.v0, 0.0f);
  EXPECT_EQ(glyph.u1, 0.75f);
  EXPECT_EQ(glyph.v1, 0.5f);
  EXPECT_TRUE(plugin_->upload_atlas(nullptr, font_));
  Texture* texture = plugin_->get_atlas_texture(font_);
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(texture->get_pixel_format(), PF_R_U8);
  EXPECT_EQ(atlas_row(0)[23], 255);
  EXPECT_EQ(atlas_row(0)[24], 0) << "three characters of eight pixels";
  EXPECT_EQ(atlas_row(15)[0], 255);
  EXPECT_EQ(atlas_row(16)[0], 0);
  EXPECT_TRUE(plugin_->cache_glyphs(font_, "de"));
  EXPECT_TRUE(plugin_->upload_atlas(nullptr, font_));
  EXPECT_EQ(plugin_->get_atlas_texture(font_), texture) << "the same texture, new pixels";
  EXPECT_EQ(atlas_row(16)[0], 255);
}

TEST_F(FreeTypeGLModule, FullAtlasTakesNoMore) {
  EXPECT_TRUE(plugin_->create_atlas(font_, 16, 16, 4));
  EXPECT_FALSE(plugin_->cache_glyphs(font_, "abc")) << "two characters fit";
  vec2 pen(5, 6);
  EXPECT_FALSE(plugin_->add_text(font_, &pen, "abc"));
  EXPECT_EQ(pen, vec2(5, 6));
  EXPECT_TRUE(plugin_->add_text(font_, &pen, "ab"));
  EXPECT_FALSE(plugin_->create_atlas(font_, 15, 16, 4));
  EXPECT_FALSE(plugin_->create_atlas(font_, 16, 16, 2));
}

TEST_F(FreeTypeGLModule, TextsOfTheQueueAreDrawn) {
  DrawWatcher renderer;
  vec2 pen(10, 100);
  EXPECT_TRUE(plugin_->set_color(font_, RED));
  EXPECT_TRUE(plugin_->add_text(font_, &pen, "a\nb"));
  EXPECT_EQ(pen, vec2(18, 84));
  EXPECT_TRUE(plugin_->set_color(font_, WHITE));
  EXPECT_TRUE(plugin_->add_text(font_, &pen, "c"));
  EXPECT_TRUE(plugin_->render_text(&renderer, font_));
  ASSERT_EQ(renderer.draws.size(), 1u) << "one draw for all";
  const auto& draw = renderer.draws[0];
  ASSERT_EQ(draw.positions.size(), 12u);
  EXPECT_EQ(draw.positions[0], vec4(10, 96, 0, 1)) << "the lower left corner of the a";
  EXPECT_EQ(draw.positions[2], vec4(18, 112, 0, 1));
  EXPECT_EQ(draw.positions[4], vec4(10, 80, 0, 1)) << "the b one line down";
  EXPECT_EQ(draw.positions[8], vec4(18, 80, 0, 1)) << "the c behind it";
  EXPECT_EQ(draw.colors[0], RED);
  EXPECT_EQ(draw.colors[8], WHITE);
}

TEST_F(FreeTypeGLModule, TextsStandWhereTheFontIs) {
  struct : DrawWatcher {
    void load_fixed_matrices(const mat4*, const mat4* view, const mat4*, const mat4*) override {
      model_view = *view;
    }
    mat4 model_view;
  } renderer;
  font_->set_position(100, 50, 0);
  EXPECT_TRUE(plugin_->draw_text(&renderer, font_, 0, 0, "a"));
  EXPECT_EQ(renderer.model_view.m[12], 100.0f);
  EXPECT_EQ(renderer.model_view.m[13], 50.0f);
  EXPECT_TRUE(plugin_->free_face(&renderer, font_));
}

TEST_F(FreeTypeGLModule, NewCharactersReachTheAtlasOnTheGpu) {
  DrawWatcher renderer;
  EXPECT_TRUE(plugin_->cache_glyphs(font_, "a"));
  EXPECT_TRUE(plugin_->upload_atlas(&renderer, font_));
  EXPECT_EQ(renderer.count("texture_load"), 1);
  Texture* texture = plugin_->get_atlas_texture(font_);
  ASSERT_NE(texture, nullptr);
  texture->set_loaded_in_gpu_memory_state(true);
  renderer.label(texture->get_data_ptr(), "atlas");
  renderer.clear();
  EXPECT_TRUE(plugin_->draw_text(&renderer, font_, 0, 0, "ab"));
  EXPECT_THAT(renderer.calls(), Contains("texture_bind(atlas, 0)"));
  EXPECT_THAT(renderer.calls(), Contains("texture_update_2d(atlas, 0, 0, 512, 512, 1)"));
  renderer.clear();
  EXPECT_TRUE(plugin_->draw_text(&renderer, font_, 0, 0, "ba"));
  EXPECT_THAT(renderer.calls(), Contains("texture_bind(atlas, 0)"));
  EXPECT_EQ(renderer.count("texture_update_2d"), 0) << "nothing new";
  EXPECT_TRUE(plugin_->cache_glyphs(font_, "c"));
  EXPECT_TRUE(plugin_->upload_atlas(&renderer, font_));
  EXPECT_EQ(renderer.count("texture_update_2d"), 1);
  EXPECT_TRUE(plugin_->free_face(&renderer, font_));
}

TEST_F(FreeTypeGLModule, QueueIsKeptUntilItIsCleared) {
  DrawWatcher renderer;
  vec2 pen(0, 0);
  EXPECT_TRUE(plugin_->add_text(font_, &pen, "ab"));
  EXPECT_TRUE(plugin_->draw_text(&renderer, font_, 50, 60, "x"));
  ASSERT_EQ(renderer.draws.size(), 1u);
  EXPECT_EQ(renderer.draws[0].positions.size(), 4u) << "beside the queue";
  EXPECT_EQ(renderer.draws[0].positions[0], vec4(50, 56, 0, 1));
  EXPECT_TRUE(plugin_->render_text(&renderer, font_));
  EXPECT_EQ(renderer.draws[1].positions.size(), 8u);
  EXPECT_TRUE(plugin_->clear_text(font_));
  EXPECT_TRUE(plugin_->render_text(&renderer, font_));
  EXPECT_EQ(renderer.draws.size(), 2u) << "nothing to draw";
  EXPECT_TRUE(plugin_->free_face(&renderer, font_));
}

TEST_F(FreeTypeGLModule, DrawingNeedsARendererAndAStart) {
  DrawWatcher renderer;
  EXPECT_FALSE(plugin_->render_text(nullptr, font_));
  EXPECT_FALSE(plugin_->draw_text(nullptr, font_, 0, 0, "a"));
  EXPECT_FALSE(plugin_->draw_text(&renderer, font_, 0, 0, nullptr));
  EXPECT_TRUE(plugin_->stop());
  EXPECT_FALSE(plugin_->draw_text(&renderer, font_, 0, 0, "a"));
  EXPECT_TRUE(plugin_->start());
  EXPECT_TRUE(plugin_->draw_text(&renderer, font_, 0, 0, "a"));
  EXPECT_TRUE(plugin_->free_face(&renderer, font_));
}

TEST_F(FreeTypeGLModule, OutlinesAreRefused) {
  EXPECT_FALSE(plugin_->set_outline(font_, 2.0f, RED));
  EXPECT_TRUE(plugin_->set_outline(font_, 0.0f, RED));
}

TEST_F(FreeTypeGLModule, FontsWithoutAFaceAnswerNothing) {
  const Held<Font> bare;
  DrawWatcher renderer;
  vec2 pen(0, 0);
  for (Font* font : {bare.get(), static_cast<Font*>(nullptr)}) {
    EXPECT_EQ(plugin_->get_pixel_height(font), 0.0f);
    EXPECT_EQ(plugin_->get_kerning(font, 'A', 'V'), 0.0f);
    EXPECT_FALSE(plugin_->set_color(font, RED));
    EXPECT_FALSE(plugin_->cache_glyphs(font, "a"));
    EXPECT_FALSE(plugin_->upload_atlas(&renderer, font));
    EXPECT_EQ(plugin_->get_atlas_texture(font), nullptr);
    EXPECT_FALSE(plugin_->add_text(font, &pen, "a"));
    EXPECT_FALSE(plugin_->render_text(&renderer, font));
  }
}

TEST_F(FreeTypeGLModule, TerminateFreesAllFaces) {
  const Held<Font> other;
  EXPECT_TRUE(plugin_->load_face_from_memory(other, FACE, sizeof FACE - 1, 40.0f));
  EXPECT_TRUE(plugin_->terminate());
  EXPECT_FALSE(plugin_->is_initialized());
  EXPECT_EQ(font_->get_ftgl_data(), nullptr);
  EXPECT_EQ(other->get_ftgl_data(), nullptr);
  EXPECT_FALSE(plugin_->load_face_from_memory(other, FACE, sizeof FACE - 1, 40.0f));
}

TEST_F(FreeTypeGLModule, StartNeedsInitialize) {
  EXPECT_TRUE(plugin_->stop());
  EXPECT_TRUE(plugin_->terminate());
  EXPECT_FALSE(plugin_->start());
  EXPECT_TRUE(plugin_->initialize());
  EXPECT_TRUE(plugin_->start());
}

}  // namespace
}  // namespace orv::test
