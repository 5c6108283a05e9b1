#include <orv/visual/hud.h>

#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/gpu_program_mgr.h>
#include <orv/gpu/gpu_program_uniform.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/scene/camera.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "support/held.h"
#include "support/log_capture.h"
#include "visual/draw_watcher.h"
#include "visual/picture_files.h"

namespace orv {
namespace {

using test::DrawWatcher;
using test::Held;
using test::LogCapture;
using test::PictureFiles;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

constexpr RENDERER_BLEND_FACTOR ONE = RENDERER_BLEND_FACTOR_ONE;
constexpr RENDERER_BLEND_FACTOR ALPHA = RENDERER_BLEND_FACTOR_SRC_ALPHA;

/// Gives its viewport as renderers do.
class HudRenderer : public DrawWatcher {
 public:
  bool get_viewport(int* x, int* y, int* width, int* height) override {
    const int* viewport = get_viewport_array(0);
    *x = viewport[0];
    *y = viewport[1];
    *width = viewport[2];
    *height = viewport[3];
    return true;
  }
};

class HudTest : public testing::Test {
 protected:
  void TearDown() override {
    hud.cleanup(&renderer);
    GpuProgramMgr::get()->stop(nullptr);
  }
  bool load() { return hud.init_texture(&renderer, files.write("picture.tga", {1, 2, 3}).c_str()); }
  void draw(bool blend = false) { hud.render(&renderer, 1, 2, 30, 40, blend, ALPHA, ONE); }

  PictureFiles files;
  HudRenderer renderer;
  aux::Hud hud;
};

// ---- texture ----

TEST_F(HudTest, LoadsAndUploadsATexture) {
  EXPECT_EQ(hud.get_texture(), nullptr);
  ASSERT_TRUE(load());
  Texture* texture = hud.get_texture();
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(texture->get_pixel_format(), PF_RGB_U8);
  EXPECT_EQ(texture->get_data_ptr()->get_type(), TEXTURE_2D);
  EXPECT_TRUE(TextureMgr::get()->has_resource(texture));
  EXPECT_THAT(renderer.calls(), Contains("texture_load(null, ptr, 0)"));
}

TEST_F(HudTest, InitTextureWithAMissingFileIsFalseAndLogsTheName) {
  const LogCapture log(LOG_LEVEL_ERROR);
  ASSERT_TRUE(load());
  EXPECT_FALSE(hud.init_texture(&renderer, files.missing().c_str()));
  EXPECT_TRUE(log.contains("- Unable to load texture (" + files.missing() + ")."));
  EXPECT_EQ(hud.get_texture(), nullptr) << "the one before is gone";
  EXPECT_EQ(TextureMgr::get()->get_num_resources(), 0u);
}

TEST_F(HudTest, FailedUploadIsFalseAndLogged) {
  const LogCapture log(LOG_LEVEL_ERROR);
  renderer.answer("texture_load", 0);
  EXPECT_FALSE(load());
  EXPECT_TRUE(log.contains("- Unable to upload texture ("));
  EXPECT_TRUE(log.contains("picture.tga) to renderer."));
  EXPECT_EQ(hud.get_texture(), nullptr);
  EXPECT_EQ(TextureMgr::get()->get_num_resources(), 0u);
}

TEST_F(HudTest, NullArgumentsKeepTheTexture) {
  ASSERT_TRUE(load());
  Texture* texture = hud.get_texture();
  EXPECT_FALSE(hud.init_texture(nullptr, "picture.tga"));
  EXPECT_FALSE(hud.init_texture(&renderer, nullptr));
  EXPECT_EQ(hud.get_texture(), texture);
}

TEST_F(HudTest, NewTextureReplacesTheOldOne) {
  ASSERT_TRUE(load());
  const int old_id = hud.get_texture()->get_id();
  ASSERT_TRUE(load());
  EXPECT_FALSE(TextureMgr::get()->has_resource(old_id));
  EXPECT_EQ(renderer.count("texture_unload"), 1);
}

TEST_F(HudTest, NameOfTheOldTextureNamesTheNewOne) {
  ASSERT_TRUE(load());
  hud.get_texture()->set_name(files.write("other.tga", {4, 5, 6}).c_str());
  ASSERT_TRUE(hud.init_texture(&renderer, hud.get_texture()->get_name()));
  EXPECT_EQ(hud.get_texture()->get_image_ptr()->get_u8_ptr()[0], 4);
}

// ---- drawing ----

TEST_F(HudTest, NothingIsDrawnWithoutRendererTextureOrSize) {
  draw();
  ASSERT_TRUE(load());
  hud.render(nullptr, 0, 0, 1, 1, true, ONE, ONE);
  hud.render(&renderer, nullptr, 0, 0, 1, 1, true, ONE, ONE);
  hud.render(&renderer, 0, 0, 0, 1, true, ONE, ONE);
  hud.render(&renderer, 0, 0, 1, -1, true, ONE, ONE);
  EXPECT_TRUE(renderer.draws.empty());
  EXPECT_EQ(renderer.count("set_viewport"), 0);
}

TEST_F(HudTest, DrawsAQuadInPixelsAndPutsStateBack) {
  ASSERT_TRUE(load());
  renderer.set_viewport(0, 5, 6, 700, 800);
  mat4 projection, view;
  projection.init_scale(2, 3, 4);
  view.init_translate(1, 2, 3);
  renderer.set_projection_matrix(projection, true);
  renderer.set_modelview_matrix(view, true);
  const Held<GpuProgram> previous;
  renderer.label(previous->get_data_ptr(), "previous");
  renderer.set_current_program(previous->get_data_ptr());
  renderer.clear();
  draw();
  ASSERT_EQ(renderer.draws.size(), 1u);
  EXPECT_THAT(renderer.draws[0].positions, ElementsAre(vec4(0, 0, 0, 1), vec4(0, 40, 0, 1),
                                                       vec4(30, 40, 0, 1), vec4(30, 0, 0, 1)));
  EXPECT_THAT(renderer.calls(), Contains("set_viewport(0, 1, 2, 30, 40)"));
  EXPECT_THAT(renderer.calls(), Contains("enable_depth_test(false)"));
  EXPECT_THAT(renderer.calls(), Contains("texture_bind(ptr, 0)"));
  EXPECT_THAT(renderer.calls(), Not(Contains("enable_blending(true)")));
  const auto& calls = renderer.calls();
  const std::vector<std::string> end(calls.end() - 6, calls.end());
  EXPECT_THAT(end,
              ElementsAre("enable_blending(false)", "gpu_program_bind(previous)",
                          "set_projection_matrix(mat4, false)", "set_modelview_matrix(mat4, false)",
                          "set_viewport(0, 5, 6, 700, 800)", "enable_depth_test(true)"));
  EXPECT_EQ(renderer.get_projection_matrix(), projection);
  EXPECT_EQ(renderer.get_modelview_matrix(), view);
}

TEST_F(HudTest, BlendingIsThatOfTheArguments) {
  ASSERT_TRUE(load());
  draw(true);
  EXPECT_THAT(renderer.calls(), Contains("enable_blending(true)"));
  EXPECT_THAT(renderer.calls(), Contains("set_blend_func(2, 1)"));
}

TEST_F(HudTest, QuadFollowsTheSize) {
  ASSERT_TRUE(load());
  draw();
  hud.render(&renderer, 0, 0, 7, 9, false, ONE, ONE);
  ASSERT_EQ(renderer.draws.size(), 2u);
  EXPECT_EQ(renderer.draws[1].positions[2], vec4(7, 9, 0, 1));
}

TEST_F(HudTest, MatricesPutThePixelsOverTheViewport) {
  class Watcher : public HudRenderer {
   public:
    bool geometry_vbo_draw(GeometryCore*) override {
      corner = get_projection_matrix() * get_modelview_matrix() * vec4(30, 40, 0, 1);
      origin = get_projection_matrix() * get_modelview_matrix() * vec4(0, 0, 0, 1);
      return true;
    }
    vec4 corner, origin;
  } watcher;
  const Held<Texture> texture;
  hud.render(&watcher, texture, 1, 2, 30, 40, false, ONE, ONE);
  EXPECT_EQ(watcher.corner, vec4(1, 1, 0, 1));
  EXPECT_EQ(watcher.origin, vec4(-1, -1, 0, 1));
}

TEST_F(HudTest, TextureOfTheHostIsNotHeld) {
  const Held<Texture> texture;
  hud.render(&renderer, texture, 1, 2, 30, 40, false, ONE, ONE);
  EXPECT_EQ(renderer.draws.size(), 1u);
  EXPECT_EQ(texture->get_ref(), 1);
  EXPECT_EQ(hud.get_texture(), nullptr);
}

// ---- program ----

GpuProgram* hud_program() {
  return static_cast<GpuProgram*>(
      GpuProgramMgr::get()->get_resource("ORV_hud_tex_ortho_proj_XXXX"));
}

TEST_F(HudTest, ProgramIsMadeOnceByTheVersion) {
  const char* const gl2[2] = {
      "#version 120\nuniform mat4 orvex_ModelViewProjectionMatrix;\nvoid main()\n{\n"
      "  gl_Position = orvex_ModelViewProjectionMatrix * gl_Vertex;\n"
      "  gl_TexCoord[0] = gl_MultiTexCoord0; \n}",
      "#version 120\nuniform sampler2D tex0;\nvoid main()\n{\n  vec2 uv = gl_TexCoord[0].xy; \n"
      "  uv.y *= -1.0; \n  gl_FragColor = texture2D(tex0, uv); \n}"};
  const char* const gl3[2] = {
      "#version 150\nin vec4 orvex_Position;\nin vec4 orvex_TexCoord0;\nout vec4 Vertex_UV;\n"
      "uniform mat4 orvex_ModelViewProjectionMatrix;\nvoid main()\n{\n"
      "  gl_Position = orvex_ModelViewProjectionMatrix * orvex_Position;\n"
      "  Vertex_UV = orvex_TexCoord0;\n}",
      "#version 150\nuniform sampler2D tex0;\nin vec4 Vertex_UV;\nout vec4 Out_Color;\n"
      "void main()\n{\n  vec2 uv = Vertex_UV.xy; \n  uv.y *= -1.0; \n"
      "  Out_Color = texture(tex0, uv); \n}"};
  for (const bool modern : {false, true}) {
    renderer.answer("is_api_version_at_least", modern);
    ASSERT_TRUE(load());
    draw();
    draw();
    const GpuProgram* program = hud_program();
    ASSERT_NE(program, nullptr);
    const auto& texts = modern ? gl3 : gl2;
    EXPECT_STREQ(program->get_shader_source_code(GPU_SHADER_VERTEX), texts[0]);
    EXPECT_STREQ(program->get_shader_source_code(GPU_SHADER_PIXEL), texts[1]);
    EXPECT_EQ(program->get_ref(), 2);
    EXPECT_THAT(renderer.calls(), Contains("is_api_version_at_least(3, 2)"));
    ASSERT_NE(program->get_data_ptr()->find_uniform("tex0"), nullptr);
    EXPECT_EQ(renderer.count("gpu_shader_load"), 2);
    hud.cleanup(&renderer);
    EXPECT_EQ(hud_program(), nullptr);
    renderer.clear();
  }
}

TEST_F(HudTest, RefusedProgramIsLoggedOnce) {
  const LogCapture log(LOG_LEVEL_ERROR);
  ASSERT_TRUE(load());
  renderer.answer("gpu_shader_load", 0);
  draw();
  draw();
  EXPECT_EQ(log.count("- unable to create the GPU program ORV_hud_tex_ortho_proj_XXXX."), 1);
  EXPECT_TRUE(renderer.draws.empty());
  EXPECT_EQ(hud_program(), nullptr);
  renderer.answer("gpu_shader_load", 1);
  draw();
  EXPECT_TRUE(renderer.draws.empty()) << "not tried again";
  hud.cleanup(&renderer);
  ASSERT_TRUE(load());
  draw();
  EXPECT_EQ(renderer.draws.size(), 1u) << "but after cleanup";
}

TEST_F(HudTest, FailedLinkIsLoggedWithTheLinkersText) {
  class Linker : public HudRenderer {
   public:
    bool gpu_program_link(GpuProgramData* program) override {
      program->set_info_log("no such varying", 16);
      return false;
    }
  } linker;
  const LogCapture log(LOG_LEVEL_ERROR);
  const Held<Texture> texture;
  hud.render(&linker, texture, 0, 0, 1, 1, false, ONE, ONE);
  EXPECT_TRUE(log.contains("- ORV_hud_tex_ortho_proj_XXXX GPU program has erros"));
  EXPECT_TRUE(log.contains("- ORV_hud_tex_ortho_proj_XXXX GPU program error: no such varying"));
  EXPECT_EQ(hud_program(), nullptr);
}

// ---- end ----

TEST_F(HudTest, CleanupReleasesEverything) {
  ASSERT_TRUE(load());
  draw();
  hud.cleanup(&renderer);
  EXPECT_EQ(TextureMgr::get()->get_num_resources(), 0u);
  EXPECT_EQ(GpuProgramMgr::get()->get_num_resources(), 0u);
  EXPECT_EQ(renderer.count("texture_unload"), 1);
  EXPECT_EQ(renderer.count("gpu_program_unload"), 1);
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 1);
  hud.cleanup(nullptr);
}

TEST_F(HudTest, EndsWithoutCleanup) {
  const Held<Texture> texture;
  {
    aux::Hud other;
    other.render(&renderer, texture, 0, 0, 1, 1, false, ONE, ONE);
    ASSERT_NE(hud_program(), nullptr);
    EXPECT_EQ(hud_program()->get_ref(), 2);
  }
  ASSERT_NE(hud_program(), nullptr) << "a renderer has yet to unload it";
  EXPECT_EQ(hud_program()->get_ref(), 1);
}

}  // namespace
}  // namespace orv
