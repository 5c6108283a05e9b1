#include <orv/gpu/gpu_render_target.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>

#include "render/opengl/fake_gl_fixture.h"
#include "support/log_capture.h"

using namespace orv;
using namespace orv::test;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class TextureTargetsTest : public FakeGlTest {
 protected:
  void load() {
    ASSERT_TRUE(texture.create_2d(8, 4, PF_RGBA_U8, true));
    ASSERT_TRUE(renderer.texture_load(nullptr, data(), 0));
    gl.clear();
  }
  TextureData* data() { return texture.get_data_ptr(); }
  Texture texture;
};

}  // namespace

TEST_F(TextureTargetsTest, UnloadingDeletesAndTells) {
  start();
  load();
  texture.set_name("brick");
  data()->texture_id = 12;
  LogCapture log;
  EXPECT_TRUE(renderer.texture_unload(data()));
  EXPECT_EQ(0u, data()->gl_texture_id);
  EXPECT_FALSE(data()->loaded_in_gpu_memory);
  EXPECT_TRUE(gl.called("glDeleteTextures(1, [1])"));
  EXPECT_TRUE(log.contains("Texture (brick / 12 / 1) unloaded from GPU memory"));
  EXPECT_FALSE(renderer.texture_unload(data())) << "nothing left";
  EXPECT_FALSE(renderer.texture_unload(nullptr));
}

TEST_F(TextureTargetsTest, UnloadedTexturesAreNotBoundAgain) {
  start();
  load();
  TextureData other;
  other.set_opengl_texture_id(50);
  renderer.texture_unload(data());
  gl.clear();
  renderer.texture_set_filtering_mode(&other, SAMPLER_FILTERING_LINEAR);
  EXPECT_EQ("glBindTexture(GL_TEXTURE_2D, 0)", take().back());
}

TEST_F(TextureTargetsTest, SharedBlocksAreUnloadedWithTheLast) {
  start();
  load();
  {
    Texture second;
    ASSERT_TRUE(second.share_texture_data(&renderer, &texture));
    texture._cleanup(&renderer);
    EXPECT_EQ(0, gl.count("glDeleteTextures"));
    second._cleanup(&renderer);
    EXPECT_EQ(1, gl.count("glDeleteTextures"));
  }
  EXPECT_THAT(gl.live_ids(), IsEmpty());
}

TEST_F(TextureTargetsTest, IdsAreDeleted) {
  start();
  load();
  EXPECT_TRUE(renderer.texture_delete_id(data()->gl_texture_id));
  EXPECT_TRUE(gl.called("glDeleteTextures(1, [1])"));
  EXPECT_FALSE(renderer.texture_delete_id(0));
  data()->gl_texture_id = 0;
}

// ---- creation by id ----

TEST_F(TextureTargetsTest, PlainTexturesAreCreated) {
  start();
  unsigned int id = 0;
  ASSERT_TRUE(renderer.texture_create_2d_by_id(
      &id, 6, 3, PF_RGB_U8, "pixels", SAMPLER_FILTERING_TRILINEAR, SAMPLER_ADDRESSING_MIRROR));
  EXPECT_EQ(1u, id);
  EXPECT_THAT(
      take_changes(),
      ElementsAre("glGenTextures(1, ptr)", "glActiveTexture(GL_TEXTURE0)",
                  "glBindTexture(GL_TEXTURE_2D, 1)",
                  "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR)",
                  "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR)",
                  "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_MIRRORED_REPEAT)",
                  "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_MIRRORED_REPEAT)",
                  "glPixelStorei(GL_UNPACK_ALIGNMENT, 2)",
                  "glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, 6, 3, 0, GL_RGB, GL_UNSIGNED_BYTE, ptr)",
                  "glPixelStorei(GL_UNPACK_ALIGNMENT, 1)", "glBindTexture(GL_TEXTURE_2D, 0)"));
}

TEST_F(TextureTargetsTest, RectanglesAreClamped) {
  start();
  unsigned int id = 0;
  ASSERT_TRUE(renderer.texture_create_rect_by_id(
      &id, 6, 3, PF_RGBA_U8, nullptr, SAMPLER_FILTERING_NEAREST, SAMPLER_ADDRESSING_WRAP));
  EXPECT_TRUE(
      gl.called("glTexParameteri(GL_TEXTURE_RECTANGLE, GL_TEXTURE_WRAP_S, "
                "GL_CLAMP_TO_EDGE)"));
  EXPECT_TRUE(
      gl.called("glTexImage2D(GL_TEXTURE_RECTANGLE, 0, GL_RGBA, 6, 3, 0, GL_RGBA, "
                "GL_UNSIGNED_BYTE, null)"));
}

TEST_F(TextureTargetsTest, CreationFailsWithMessages) {
  start();
  unsigned int id = 7;
  const auto create = [&](int width, int height, PIXEL_FORMAT format) {
    return renderer.texture_create_2d_by_id(&id, width, height, format, nullptr,
                                            SAMPLER_FILTERING_LINEAR, SAMPLER_ADDRESSING_WRAP);
  };
  LogCapture log;
  EXPECT_FALSE(create(4097, 1, PF_RGBA_U8));
  EXPECT_TRUE(log.contains(
      "gl_texture_2d_create - 2D texture loading failed (texture size must be <= 4096x4096)"));
  EXPECT_FALSE(create(0, 5, PF_RGBA_U8));
  EXPECT_TRUE(
      log.contains("gl_texture_2d_create - unable to load a 2D texture with no size (0x5)"));
  EXPECT_FALSE(create(-4, 5, PF_RGBA_U8));
  EXPECT_FALSE(create(4, 4, PF_UNKNOWN));
  EXPECT_FALSE(create(4, 4, PF_R_U32));
  EXPECT_EQ(7u, id);
  EXPECT_FALSE(renderer.texture_create_2d_by_id(nullptr, 4, 4, PF_RGBA_U8, nullptr,
                                                SAMPLER_FILTERING_LINEAR, SAMPLER_ADDRESSING_WRAP));
  EXPECT_THAT(gl.live_ids(), IsEmpty());
}

// ---- bindless handles ----

TEST_F(TextureTargetsTest, HandlesBecomeResidentOnce) {
  start();
  load();
  EXPECT_TRUE(renderer.texture_make_handle_resident(data()));
  EXPECT_TRUE(renderer.texture_make_handle_resident(data()));
  EXPECT_EQ(0x1001ull, data()->gl_texture_handle);
  EXPECT_EQ(1, gl.count("glMakeTextureHandleResidentARB"));
  EXPECT_TRUE(renderer.texture_make_handle_non_resident(data()));
  EXPECT_FALSE(renderer.texture_make_handle_non_resident(data()));
  EXPECT_EQ(1, gl.count("glMakeTextureHandleNonResidentARB"));
  EXPECT_TRUE(renderer.texture_make_handle_resident(data()));
  renderer.texture_unload(data());
  EXPECT_EQ(2, gl.count("glMakeTextureHandleNonResidentARB"));
  EXPECT_EQ(0ull, data()->gl_texture_handle);
}

TEST_F(TextureTargetsTest, HandlesNeedTheirFunctionsAndAnId) {
  gl.remove_extension("GL_ARB_bindless_texture");
  start();
  load();
  EXPECT_FALSE(renderer.texture_make_handle_resident(data()));
  EXPECT_FALSE(renderer.texture_make_handle_non_resident(data()));
  renderer.texture_unload(data());
  EXPECT_FALSE(renderer.texture_make_handle_resident(data()));
  EXPECT_FALSE(renderer.texture_make_handle_resident(nullptr));
  EXPECT_FALSE(renderer.texture_make_handle_non_resident(nullptr));
}

// ---- views of render targets ----

TEST_F(TextureTargetsTest, ViewsBorrowTheId) {
  start();
  GpuRenderTarget* target =
      renderer.gpu_render_target_create_2d(nullptr, 32, 16, PF_RGBA_U8, 2, false, false, true, 0);
  ASSERT_NE(nullptr, target);
  ASSERT_TRUE(renderer.texture_bind_render_target_color(data(), target, 1));
  EXPECT_EQ(target->gl_get_color_texture(1), data()->gl_texture_id);
  EXPECT_EQ(TEXTURE_2D, data()->type);
  EXPECT_EQ(32u, data()->image.width);
  EXPECT_EQ(16u, data()->image.height);
  EXPECT_EQ(1u, data()->image.depth);
  EXPECT_EQ(PF_RGBA_U8, data()->image.pixel_format);
  EXPECT_TRUE(data()->loaded_in_gpu_memory);
  EXPECT_FALSE(data()->gpu_update_needed);
  gl.clear();
  EXPECT_TRUE(renderer.texture_unload(data()));
  EXPECT_EQ(0, gl.count("glDeleteTextures")) << "the target lives on";
  EXPECT_EQ(0u, data()->gl_texture_id);
  ASSERT_TRUE(renderer.texture_bind_render_target_depth(data(), target));
  EXPECT_EQ(target->gl_get_depth_texture(), data()->gl_texture_id);
  renderer.gpu_render_target_kill(nullptr, target);
  renderer.texture_unload(data());
  EXPECT_THAT(gl.live_ids(), IsEmpty());
}

TEST_F(TextureTargetsTest, ViewsReplaceWhatTheTextureHad) {
  start();
  load();
  GpuRenderTarget target;
  ASSERT_TRUE(renderer.texture_bind_render_target_color(data(), &target, 8));
  EXPECT_EQ(0u, data()->gl_texture_id) << "no such attachment";
  EXPECT_THAT(gl.live_ids(), IsEmpty());
  EXPECT_FALSE(renderer.texture_bind_render_target_color(nullptr, &target, 0));
  EXPECT_FALSE(renderer.texture_bind_render_target_color(data(), nullptr, 0));
  EXPECT_FALSE(renderer.texture_bind_render_target_depth(data(), nullptr));
}
