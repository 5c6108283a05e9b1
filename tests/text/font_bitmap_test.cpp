// Font: BMFont files.
#include <orv/gpu/gpu_program_data.h>
#include <orv/image/image_codec.h>

#include <cstring>

#include "support/log_capture.h"
#include "text/font_fixture.h"

namespace orv::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

class FontBitmapTest : public FontTest {};

// ---- charset ----

TEST_F(FontBitmapTest, CharsetComesFromAFileOrFromMemory) {
  EXPECT_EQ(font.bm_get_charset_image_filename(), nullptr);
  EXPECT_TRUE(font.bm_load_charset(data_path("bmfont/medium.xml").c_str()));
  EXPECT_STREQ(font.bm_get_charset_image_filename(), "sheet_0.png");
  EXPECT_TRUE(font.bm_load_charset_from_memory(XML));
  EXPECT_STREQ(font.bm_get_charset_image_filename(), "page.png");
}

TEST_F(FontBitmapTest, CharsetThatCannotBeReadKeepsTheOneBefore) {
  ASSERT_TRUE(font.bm_load_charset_from_memory(XML));
  LogCapture log;
  EXPECT_FALSE(font.bm_load_charset(nullptr));
  EXPECT_FALSE(font.bm_load_charset_from_memory(nullptr));
  EXPECT_FALSE(font.bm_load_charset("/nowhere/font.xml"));
  EXPECT_TRUE(log.contains("font /nowhere/font.xml: No such file"));
  EXPECT_FALSE(font.bm_load_charset("/tmp"));
  EXPECT_FALSE(font.bm_load_charset(data_path("bmfont/font.png").c_str()));
  EXPECT_TRUE(log.contains("font.png: not the XML form of a BMFont file"));
  EXPECT_FALSE(font.bm_load_charset_from_memory("info face=\"Arial\""));
  EXPECT_STREQ(font.bm_get_charset_image_filename(), "page.png");
}

TEST_F(FontBitmapTest, EmbeddedZerosEndTheFile) {
  const TempFile file("zero.xml");
  Bytes bytes(XML, XML + std::strlen(XML));
  bytes.insert(bytes.end(), {0, '<', 'x'});
  write_bytes(file.path(), bytes);
  EXPECT_TRUE(font.bm_load_charset(file.path()));
  bytes[10] = 0;
  write_bytes(file.path(), bytes);
  EXPECT_FALSE(font.bm_load_charset(file.path()));
}

TEST_F(FontBitmapTest, IdBeyondTheTableKeepsItAsItWas) {
  ASSERT_TRUE(load_bitmap_font());
  ASSERT_TRUE(draw_white("A"));
  ASSERT_TRUE(font.bm_update_vb(&renderer, false));
  ASSERT_TRUE(font.bm_render_vb(&renderer));
  const std::vector<float> before(renderer.drawn(), renderer.drawn() + 96);
  std::string xml = XML;
  xml.insert(xml.find("</chars>"), "<char id=\"300\" width=\"99\"/><char id=\"-1\" width=\"99\"/>");
  ASSERT_TRUE(font.bm_load_charset_from_memory(xml.c_str()));
  ASSERT_TRUE(font.bm_update_vb(&renderer, false));
  ASSERT_TRUE(font.bm_render_vb(&renderer));
  EXPECT_EQ(std::vector<float>(renderer.drawn(), renderer.drawn() + 96), before);
}

// ---- page image ----

TEST_F(FontBitmapTest, PageImageIsLoadedAndUploaded) {
  const std::string path = data_path("bmfont/font.png");
  EXPECT_EQ(font.bm_get_charset_texture(), nullptr);
  EXPECT_TRUE(font.bm_load_charset_texture(&renderer, path.c_str()));
  Texture* texture = font.bm_get_charset_texture();
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(texture->get_width(), 64u);
  EXPECT_EQ(texture->get_pixel_format(), PF_RGB_U8);
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_2D);
  EXPECT_FALSE(texture->get_data_ptr()->gen_mipmaps);
  EXPECT_EQ(texture->get_ref(), 2) << "the manager's and the font's";
  EXPECT_THAT(renderer.names(), ElementsAre("texture_load"));

  EXPECT_TRUE(font.bm_load_charset_texture_v2(&renderer, path.c_str(), PF_RGBA_U8, true));
  texture = font.bm_get_charset_texture();
  EXPECT_EQ(texture->get_pixel_format(), PF_RGBA_U8);
  EXPECT_TRUE(texture->get_data_ptr()->gen_mipmaps);
}

TEST_F(FontBitmapTest, PageImageComesFromMemoryToo) {
  const Bytes bytes = read_bytes(data_path("bmfont/font.png"));
  const auto size = static_cast<unsigned int>(bytes.size());
  EXPECT_TRUE(font.bm_load_charset_texture_from_memory(nullptr, bytes.data(), size));
  EXPECT_EQ(font.bm_get_charset_texture()->get_pixel_format(), PF_RGB_U8);
  EXPECT_TRUE(
      font.bm_load_charset_texture_from_memory_v2(nullptr, bytes.data(), size, PF_RGBA_U8, true));
  EXPECT_EQ(font.bm_get_charset_texture()->get_pixel_format(), PF_RGBA_U8);
  EXPECT_TRUE(renderer.calls().empty());
  EXPECT_FALSE(font.bm_load_charset_texture_from_memory(nullptr, nullptr, size));
  EXPECT_FALSE(font.bm_load_charset_texture_from_memory(nullptr, bytes.data(), 0));
  EXPECT_NE(font.bm_get_charset_texture(), nullptr);
  EXPECT_FALSE(font.bm_load_charset_texture_from_memory(nullptr, bytes.data(), 20));
  EXPECT_EQ(font.bm_get_charset_texture(), nullptr);
}

TEST_F(FontBitmapTest, Direct3dHasAnUploadOfItsOwn) {
  FontRenderer d3d(ORV_API3D_D3D12);
  EXPECT_TRUE(font.bm_load_charset_texture(&d3d, data_path("bmfont/font.png").c_str()));
  EXPECT_THAT(d3d.names(), ElementsAre("texture_load_direct3d"));
}

TEST_F(FontBitmapTest, UploadThatFailsIsToldAndKeepsTheTexture) {
  renderer.answer("texture_load", 0);
  EXPECT_FALSE(font.bm_load_charset_texture(&renderer, data_path("bmfont/font.png").c_str()));
  EXPECT_NE(font.bm_get_charset_texture(), nullptr);
}

TEST_F(FontBitmapTest, NoTextureIsLeftBehind) {
  TextureMgr& manager = *TextureMgr::get();
  const std::string path = data_path("bmfont/font.png");
  EXPECT_FALSE(font.bm_load_charset_texture(&renderer, nullptr));
  EXPECT_FALSE(font.bm_load_charset_texture(&renderer, "/nowhere.png"));
  EXPECT_EQ(manager.get_num_resources(), 0u);
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(font.bm_load_charset_texture(&renderer, path.c_str()));
  EXPECT_EQ(manager.get_num_resources(), 1u) << "each takes the place of the one before";
  EXPECT_FALSE(font.bm_load_charset_texture(&renderer, "/nowhere.png"));
  EXPECT_EQ(font.bm_get_charset_texture(), nullptr);
  EXPECT_EQ(manager.get_num_resources(), 0u);
  EXPECT_TRUE(font.bm_load_charset_texture(&renderer, path.c_str()));
  EXPECT_TRUE(font.bm_release_charset_texture(&renderer));
  EXPECT_FALSE(font.bm_release_charset_texture(&renderer));
  EXPECT_EQ(manager.get_num_resources(), 0u);
}

TEST_F(FontBitmapTest, TextureThatOthersHoldStays) {
  ASSERT_TRUE(font.bm_load_charset_texture(nullptr, data_path("bmfont/font.png").c_str()));
  Texture* texture = font.bm_get_charset_texture();
  texture->add_ref();
  EXPECT_TRUE(font.bm_release_charset_texture(&renderer));
  EXPECT_EQ(font.bm_get_charset_texture(), nullptr);
  EXPECT_EQ(texture->get_ref(), 2);
  EXPECT_NE(texture->get_pixmap_u8_ptr(), nullptr);
  texture->remove_ref();
}

TEST_F(FontBitmapTest, TextureThatTheManagerGaveUpStaysWithOthers) {
  ASSERT_TRUE(font.bm_load_charset_texture(nullptr, data_path("bmfont/font.png").c_str()));
  Texture* texture = font.bm_get_charset_texture();
  texture->add_ref();
  EXPECT_EQ(TextureMgr::get()->release_texture(&renderer, texture, nullptr), 2);
  EXPECT_TRUE(font.bm_release_charset_texture(&renderer));
  EXPECT_EQ(texture->get_ref(), 1);
  EXPECT_NE(texture->get_pixmap_u8_ptr(), nullptr);
  texture->release(&renderer, nullptr);
}

// ---- vertices ----

TEST_F(FontBitmapTest, RoomNeedsARendererACharsetAndATexture) {
  EXPECT_TRUE(font.bm_alloc_vb(nullptr, 0)) << "there is room for nothing";
  EXPECT_TRUE(font.bm_alloc_vb(&renderer, 0));
  EXPECT_FALSE(font.bm_alloc_vb(&renderer, 1)) << "no charset, no texture";
  ASSERT_TRUE(font.bm_load_charset_from_memory(XML));
  EXPECT_FALSE(font.bm_alloc_vb(&renderer, 1)) << "no texture";
  ASSERT_TRUE(draw_white("A"));
  EXPECT_FALSE(font.bm_update_vb(&renderer, false)) << "no mesh";
  EXPECT_FALSE(font.bm_render_vb(&renderer));
  ASSERT_TRUE(load_bitmap_font());
  EXPECT_FALSE(font.bm_alloc_vb(nullptr, 1));
  EXPECT_TRUE(font.bm_alloc_vb(&renderer, 1));
  EXPECT_TRUE(font.bm_alloc_vb(nullptr, 1000)) << "room is there";
  EXPECT_FALSE(font.bm_alloc_vb(nullptr, 1001));
  EXPECT_TRUE(renderer.calls().empty());
}

TEST_F(FontBitmapTest, RoomGrowsInStepsOfAThousand) {
  ASSERT_TRUE(load_bitmap_font());
  const auto vertices_for = [&](unsigned int chars) {
    EXPECT_TRUE(font.bm_alloc_vb(&renderer, chars));
    font.bm_draw_reset();
    EXPECT_TRUE(draw_white("A"));
    EXPECT_TRUE(font.bm_update_vb(&renderer, false));
    EXPECT_TRUE(font.bm_render_vb(&renderer));
    return renderer.geometry()->get_num_vertices();
  };
  EXPECT_EQ(vertices_for(1), 6000u);
  EXPECT_EQ(vertices_for(1000), 6000u);
  renderer.clear();
  EXPECT_EQ(vertices_for(1001), 2001u * 6u);
  EXPECT_THAT(renderer.names(), Contains("geometry_vbo_destroy")) << "the old buffer";
  EXPECT_EQ(vertices_for(2001), 2001u * 6u);
  EXPECT_FALSE(renderer.geometry()->has_separate_vertex_arrays());
  EXPECT_EQ(renderer.geometry()->get_num_faces(), 0u);
}

TEST_F(FontBitmapTest, MoreTextThanMemoryIsRefused) {
  ASSERT_TRUE(load_bitmap_font());
  EXPECT_FALSE(font.bm_alloc_vb(&renderer, 0xFFFFFFFFu));
  EXPECT_FALSE(font.bm_alloc_vb(&renderer, 0x7FFFFFFFu / 384 + 1));
  EXPECT_TRUE(font.bm_alloc_vb(&renderer, 10)) << "it recovers";
}

TEST_F(FontBitmapTest, SixVerticesForEachCharacter) {
  ASSERT_TRUE(load_bitmap_font());
  ASSERT_TRUE(font.bm_draw_text_2d(10, 20, 0.5f, 0.25f, 0.75f, 1, "AA"));
  ASSERT_TRUE(font.bm_draw_text_2d_v2(100, 0, 1, 1, 1, 1, false, "A"));
  font.bm_set_scale(2);
  EXPECT_EQ(font.bm_get_scale(), 2.0f);
  EXPECT_TRUE(font.bm_update_vb(&renderer, false));
  EXPECT_TRUE(font.bm_render_vb(&renderer));
  EXPECT_EQ(renderer.drawn_start, 0);
  EXPECT_EQ(renderer.drawn_count, 18);
  // x, y, u, v of the corners.
  const float u0 = 0.25f, u1 = 0.25f + 0.0625f, v0 = 0.75f, v1 = 0.5f;
  const float corners[6][4] = {{12, -24, u0, v0}, {20, -24, u1, v0}, {20, -40, u1, v1},
                               {20, -40, u1, v1}, {12, -40, u0, v1}, {12, -24, u0, v0}};
  for (std::size_t i = 0; i < 6; ++i) {
    const float* vertex = renderer.drawn() + 16 * i;
    EXPECT_THAT(std::vector<float>(vertex, vertex + 16),
                ElementsAre(corners[i][0], corners[i][1], 0, 1, corners[i][2], corners[i][3], 0, 1,
                            0, 0, 0, 1, 0.5f, 0.25f, 0.75f, 1));
  }
  EXPECT_EQ(renderer.drawn()[96], 24.0f) << "the next character";
  EXPECT_EQ(renderer.drawn()[192], 102.0f) << "the flag of a new line means nothing here";
}

TEST_F(FontBitmapTest, EmptyQueueIsLeftAlone) {
  ASSERT_TRUE(load_bitmap_font());
  EXPECT_FALSE(font.bm_update_vb(nullptr, false));
  EXPECT_TRUE(font.bm_update_vb(&renderer, false));
  EXPECT_FALSE(font.bm_render_vb(&renderer));
  EXPECT_FALSE(font.bm_render_vb(nullptr));
  EXPECT_TRUE(renderer.calls().empty());
}

TEST_F(FontBitmapTest, QueueWithoutCharactersDrawsNothing) {
  ASSERT_TRUE(load_bitmap_font());
  ASSERT_TRUE(draw_white(""));
  EXPECT_FALSE(font.bm_update_vb(&renderer, false)) << "no mesh yet";
  ASSERT_TRUE(font.bm_alloc_vb(&renderer, 1));
  EXPECT_TRUE(font.bm_update_vb(&renderer, false));
  EXPECT_TRUE(font.bm_render_vb(&renderer));
  EXPECT_EQ(renderer.drawn_count, 0);
}

TEST_F(FontBitmapTest, LinesFeedsAreCharacters) {
  ASSERT_TRUE(load_bitmap_font());
  ASSERT_TRUE(draw_white("A\nA"));
  EXPECT_TRUE(font.bm_update_vb(&renderer, false));
  EXPECT_TRUE(font.bm_render_vb(&renderer));
  EXPECT_EQ(renderer.drawn_count, 18);
  EXPECT_EQ(renderer.drawn()[2 * 96 + 1], renderer.drawn()[1]) << "the same height";
}

TEST_F(FontBitmapTest, FontsOwnTransformIsTheMeshs) {
  ASSERT_TRUE(load_bitmap_font());
  ASSERT_TRUE(draw_white("A"));
  ASSERT_TRUE(font.bm_update_vb(&renderer, false));
  Held<Object> parent;
  parent->set_position(100, 0, 0);
  parent->add_child(held);
  font.set_position(0, 7, 0);
  renderer.set_modelview_matrix(mat4(), false);
  ASSERT_TRUE(font.bm_render_vb(&renderer));
  const float* matrix = renderer.drawn_with.ptr();
  EXPECT_EQ(matrix[12], 100.0f);
  EXPECT_EQ(matrix[13], 7.0f);
}

TEST_F(FontBitmapTest, OneDrawForTheWholeQueue) {
  ASSERT_TRUE(load_bitmap_font());
  for (int i = 0; i < 300; ++i) ASSERT_TRUE(draw_white("A A A"));
  EXPECT_TRUE(font.bm_update_vb(&renderer, false));
  EXPECT_TRUE(font.bm_render_vb(&renderer));
  EXPECT_EQ(renderer.count("geometry_vbo_draw"), 1);
  EXPECT_EQ(renderer.drawn_count, 300 * 5 * 6);
}

TEST_F(FontBitmapTest, FreedRoomIsMadeAgain) {
  ASSERT_TRUE(load_bitmap_font());
  ASSERT_TRUE(draw_white("A"));
  ASSERT_TRUE(font.bm_update_vb(&renderer, false));
  EXPECT_FALSE(font.bm_free_vb(nullptr));
  EXPECT_TRUE(font.bm_render_vb(&renderer));
  renderer.clear();
  EXPECT_TRUE(font.bm_free_vb(&renderer));
  EXPECT_THAT(renderer.names(), Contains("geometry_vbo_destroy"));
  EXPECT_FALSE(font.bm_render_vb(&renderer));
  EXPECT_TRUE(font.bm_free_vb(&renderer));
  EXPECT_TRUE(font.bm_update_vb(&renderer, false));
  EXPECT_TRUE(font.bm_render_vb(&renderer));
}

TEST_F(FontBitmapTest, MeshFollowsScalingAndStates) {
  ASSERT_TRUE(load_bitmap_font());
  font.scale_vertices_position(vec4(2, 2, 2, 1), nullptr);
  font.set_opengl_2_3_rendering_states(true, nullptr);
  ASSERT_TRUE(draw_white("A"));
  ASSERT_TRUE(font.bm_update_vb(&renderer, false));
  font.scale_vertices_position(vec4(2, 3, 1, 1), nullptr);
  ASSERT_TRUE(font.bm_render_vb(&renderer));
  EXPECT_EQ(renderer.drawn()[0], 2.0f);
  EXPECT_EQ(renderer.drawn()[1], -6.0f);
}

/// Always has a program.
class ProgramRenderer : public FontRenderer {
 public:
  using FontRenderer::FontRenderer;
  GpuProgramData* get_current_gpu_program() override { return &program_; }

 private:
  GpuProgramData program_;
};

TEST_F(FontBitmapTest, MeshTakesTheRenderingStates) {
  // Under OpenGL each drawing takes them from the program.
  ProgramRenderer other(ORV_API3D_NONE);
  ASSERT_TRUE(load_bitmap_font());
  ASSERT_TRUE(draw_white("A"));
  ASSERT_TRUE(font.bm_update_vb(&other, false));
  for (const bool legacy : {true, false, true}) {
    font.set_opengl_2_3_rendering_states(legacy, nullptr);
    other.clear();
    ASSERT_TRUE(font.bm_render_vb(&other));
    EXPECT_EQ(other.count("load_fixed_matrices"), legacy ? 1 : 0);
  }
}

// ---- mapped buffers ----

TEST_F(FontBitmapTest, MappedBufferTakesTheVertices) {
  ASSERT_TRUE(load_bitmap_font());
  ASSERT_TRUE(draw_white("A"));
  EXPECT_TRUE(font.bm_update_vb(&renderer, true)) << "no buffer yet: written to the mesh";
  EXPECT_THAT(renderer.names(), Not(Contains("vertex_buffer_map")));
  ASSERT_TRUE(font.bm_render_vb(&renderer));
  EXPECT_TRUE(renderer.uploaded());

  font.bm_draw_reset();
  ASSERT_TRUE(font.bm_draw_text_2d(50, 0, 1, 1, 1, 1, "A"));
  renderer.clear();
  EXPECT_TRUE(font.bm_update_vb(&renderer, true));
  EXPECT_THAT(renderer.calls(), ElementsAre("vertex_buffer_map(7)", "vertex_buffer_unmap(7)"));
  EXPECT_EQ(renderer.drawn()[0], 51.0f);
  ASSERT_TRUE(font.bm_render_vb(&renderer));
  EXPECT_FALSE(renderer.uploaded());
  EXPECT_EQ(renderer.drawn()[0], 51.0f) << "nothing came over it";
}

TEST_F(FontBitmapTest, BufferThatCannotBeMappedFallsBack) {
  ASSERT_TRUE(load_bitmap_font());
  ASSERT_TRUE(draw_white("A"));
  ASSERT_TRUE(font.bm_update_vb(&renderer, false));
  ASSERT_TRUE(font.bm_render_vb(&renderer));
  renderer.maps = false;
  font.bm_draw_reset();
  ASSERT_TRUE(font.bm_draw_text_2d(50, 0, 1, 1, 1, 1, "A"));
  EXPECT_TRUE(font.bm_update_vb(&renderer, true));
  EXPECT_EQ(renderer.count("vertex_buffer_unmap"), 0);
  ASSERT_TRUE(font.bm_render_vb(&renderer));
  EXPECT_TRUE(renderer.uploaded());
  EXPECT_EQ(renderer.drawn()[0], 51.0f);
}

}  // namespace
}  // namespace orv::test
