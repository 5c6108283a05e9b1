#include <orv/gpu/texture_mgr.h>

#include "gpu/texture_mgr_fixture.h"
#include "support/held.h"
#include "support/recording_renderer.h"

#include <orv/core/plugin_mgr.h>
#include <orv/gpu/gpu_render_target.h>

namespace orv {
namespace {

using test::FakeCodec;
using test::Held;
using test::RecordingRenderer;
using test::TextureMgrTest;

// ---- codecs ----

TEST_F(TextureMgrTest, IsOneAndStarts) {
  EXPECT_EQ(TextureMgr::get(), &mgr);
  EXPECT_TRUE(mgr.start(nullptr));
}

TEST_F(TextureMgrTest, RegistersCodecsWithAReference) {
  EXPECT_FALSE(mgr.register_image_codec_plugin(nullptr));
  EXPECT_TRUE(mgr.register_image_codec_plugin(&stb));
  EXPECT_EQ(stb.get_ref(), 1);
  EXPECT_EQ(mgr.get_num_image_codecs(), 1u);
  EXPECT_EQ(mgr.get_image_codec_by_index(0), &stb);
  EXPECT_EQ(mgr.get_image_codec_by_index(1), nullptr);
  EXPECT_TRUE(mgr.unregister_image_codec_plugin(&stb));
  EXPECT_EQ(stb.get_ref(), 0);
  EXPECT_FALSE(mgr.unregister_image_codec_plugin(&stb));
  EXPECT_FALSE(mgr.unregister_image_codec_plugin(nullptr));
}

TEST_F(TextureMgrTest, ACodecRegisteredTwiceStandsTwice) {
  mgr.register_image_codec_plugin(&stb);
  mgr.register_image_codec_plugin(&stb);
  EXPECT_EQ(mgr.get_num_image_codecs(), 2u);
  EXPECT_EQ(stb.get_ref(), 2);
  EXPECT_TRUE(mgr.unregister_image_codec_plugin(&stb));
  EXPECT_EQ(mgr.get_num_image_codecs(), 1u);
  EXPECT_EQ(stb.get_ref(), 1);
}

TEST_F(TextureMgrTest, UnregisteringDoesNotCountBelowZero) {
  mgr.register_image_codec_plugin(&stb);
  stb.dec_ref();
  EXPECT_TRUE(mgr.unregister_image_codec_plugin(&stb));
  EXPECT_EQ(stb.get_ref(), 0);
}

TEST_F(TextureMgrTest, UnregistersAllWithoutTouchingReferences) {
  mgr.register_image_codec_plugin(&stb);
  mgr.unregister_all_image_codec_plugins();
  EXPECT_EQ(mgr.get_num_image_codecs(), 0u);
  EXPECT_EQ(stb.get_ref(), 1);
}

TEST_F(TextureMgrTest, RegistersAllCodecsOfThePluginManager) {
  PluginMgr* plugins = PluginMgr::get();
  FakeCodec a("a"), b("b");
  Plugin other;
  for (Plugin* plugin : {static_cast<Plugin*>(&a), &other, static_cast<Plugin*>(&b)}) {
    plugins->insert_plugin(plugin);
  }
  const unsigned int others = plugins->get_num_plugins_by_type(PLUGIN_TYPE_IMAGE_CODEC) - 2;
  EXPECT_EQ(mgr.register_all_image_codec_plugins(), static_cast<int>(others) + 2);
  EXPECT_EQ(a.get_ref(), 2);
  EXPECT_EQ(mgr.get_image_codec_by_index(others), &a);
  EXPECT_EQ(mgr.get_image_codec_by_index(others + 1), &b);
  for (Plugin* plugin : {static_cast<Plugin*>(&a), &other, static_cast<Plugin*>(&b)}) {
    plugins->remove_plugin(plugin);
  }
}

TEST_F(TextureMgrTest, ForgetsCodecsThatAreUnloaded) {
  auto* codec = new FakeCodec("gone");
  PluginMgr::get()->insert_plugin(codec);
  ASSERT_NE(load(*codec), nullptr);
  EXPECT_EQ(mgr.get_last_image_codec(), codec);
  EXPECT_EQ(PluginMgr::get()->unload_plugin(codec), 0);
  EXPECT_EQ(mgr.get_num_image_codecs(), 0u);
  EXPECT_EQ(mgr.get_last_image_codec(), nullptr);
  EXPECT_EQ(mgr.create_texture_2d_from_file("any", false, PF_RGB_U8), nullptr);
}

TEST_F(TextureMgrTest, CurrentCodecNameIsStbAndIgnoresNull) {
  EXPECT_STREQ(mgr.get_current_image_codec_name(), "stb");
  mgr.set_current_image_codec_name(nullptr);
  EXPECT_STREQ(mgr.get_current_image_codec_name(), "stb");
  mgr.set_current_image_codec_name("other");
  EXPECT_STREQ(mgr.get_current_image_codec_name(), "other");
}

TEST_F(TextureMgrTest, CodecsAreFoundByTheFirst127Characters) {
  const std::string name(127, 'n');
  FakeCodec codec(name.c_str());
  mgr.register_image_codec_plugin(&codec);
  mgr.set_current_image_codec_name((name + "tail").c_str());
  EXPECT_NE(mgr.create_texture_2d_from_file("any", false, PF_RGB_U8), nullptr);
  mgr.set_current_image_codec_name("nn");
  EXPECT_EQ(mgr.create_texture_2d_from_file("any", false, PF_RGB_U8), nullptr);
}

TEST_F(TextureMgrTest, TheFirstCodecOfANameIsTaken) {
  FakeCodec first("same"), second("same");
  mgr.register_image_codec_plugin(&first);
  mgr.register_image_codec_plugin(&second);
  mgr.set_current_image_codec_name("same");
  first.succeeds = false;
  EXPECT_EQ(mgr.create_texture_2d_from_file("any", false, PF_RGB_U8), nullptr);
  EXPECT_EQ(first.loads, 1);
  EXPECT_EQ(second.loads, 0);
}

TEST_F(TextureMgrTest, StopReleasesTexturesAndForgetsCodecs) {
  FakeCodec codec("fake");
  ASSERT_NE(load(codec), nullptr);
  EXPECT_TRUE(mgr.stop(nullptr));
  EXPECT_EQ(mgr.get_num_resources(), 0u);
  EXPECT_EQ(mgr.get_num_image_codecs(), 0u);
  EXPECT_EQ(mgr.get_last_image_codec(), nullptr);
  EXPECT_EQ(codec.frees, 1);
}

// ---- creation ----

TEST_F(TextureMgrTest, CreatedTexturesAreListedWithOneReference) {
  Texture* empty = mgr.create_texture();
  EXPECT_EQ(empty->get_ref(), 1);
  EXPECT_EQ(mgr.get_num_resources(), 1u);
  EXPECT_EQ(mgr.create_texture_1d(4, PF_R_U8, true)->get_data_ptr()->type, TEXTURE_1D);
  EXPECT_EQ(mgr.create_texture_2d(4, 4, PF_R_U8, true)->get_data_ptr()->type, TEXTURE_2D);
  EXPECT_EQ(mgr.create_texture_2d_rectangle(4, 4, PF_R_U8, true)->get_data_ptr()->type,
            TEXTURE_RECTANGLE);
  EXPECT_EQ(mgr.create_texture_2d_array(4, 4, 2, PF_R_U8, true)->get_data_ptr()->type,
            TEXTURE_2D_ARRAY);
  EXPECT_EQ(mgr.create_texture_cube(4, PF_R_U8, true)->get_data_ptr()->type, TEXTURE_CUBE);
  EXPECT_EQ(mgr.get_num_resources(), 6u);
}

TEST_F(TextureMgrTest, CreatedTexturesAreGivenThoughTheyHaveNoPixels) {
  Texture* texture = mgr.create_texture_2d(4, 4, PF_RGBA_F16, true);
  ASSERT_NE(texture, nullptr);
  EXPECT_TRUE(mgr.has_resource(texture));
  EXPECT_EQ(texture->get_width(), 0u);
}

TEST_F(TextureMgrTest, AddsTexturesOfOthersOnce) {
  Held<Texture> texture;
  EXPECT_FALSE(mgr.add_texture(nullptr));
  EXPECT_TRUE(mgr.add_texture(texture));
  EXPECT_TRUE(mgr.add_texture(texture));
  EXPECT_TRUE(mgr.has_resource(texture));
  EXPECT_EQ(texture->get_ref(), 2);
  EXPECT_EQ(mgr.get_num_resources(), 1u);
}

TEST_F(TextureMgrTest, AMissingFileGivesNullAndLeavesNoEntry) {
  mgr.register_image_codec_plugin(&stb);
  EXPECT_EQ(mgr.create_texture_2d_from_file("/no/such/file.png", false, PF_RGB_U8), nullptr);
  EXPECT_EQ(mgr.create_texture_2d_from_file(nullptr, false, PF_RGB_U8), nullptr);
  EXPECT_EQ(mgr.create_texture_2d_from_memory(nullptr, 4, false, PF_RGB_U8), nullptr);
  EXPECT_EQ(mgr.create_texture_cube_from_files(nullptr, false), nullptr);
  EXPECT_EQ(mgr.create_texture_cube_from_memory(nullptr, nullptr, false), nullptr);
  EXPECT_EQ(mgr.create_texture_2d_from_raw_memory(nullptr, 1, 1, PF_R_U8), nullptr);
  EXPECT_EQ(mgr.create_texture_from_truetype_file("/no/such/font", 16, 64, 64), nullptr);
  EXPECT_EQ(mgr.get_num_resources(), 0u);
}

TEST_F(TextureMgrTest, RenderTargetsBecomeTextures) {
  GpuRenderTarget target;
  target.width = 16;
  target.gl.color_textures[1] = 3;
  target.gl.depth_texture = 4;
  EXPECT_EQ(mgr.create_color_texture_from_render_target(&target, 1)->get_opengl_texture_id(), 3u);
  EXPECT_EQ(mgr.create_depth_texture_from_render_target(&target)->get_opengl_texture_id(), 4u);
  EXPECT_EQ(mgr.get_num_resources(), 2u);
  EXPECT_EQ(mgr.create_color_texture_from_render_target(nullptr, 0), nullptr);
  EXPECT_EQ(mgr.create_depth_texture_from_render_target(nullptr), nullptr);
}

// ---- release ----

TEST_F(TextureMgrTest, FreesPixelsThroughTheCodecThatMadeThem) {
  FakeCodec codec("fake"), other("other");
  mgr.register_image_codec_plugin(&other);
  codec.lends = true;
  Texture* texture = load(codec);
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(texture->get_pixmap_u8_ptr(), codec.pixels.data());
  EXPECT_TRUE(mgr.free_image_resource(texture));
  EXPECT_EQ(codec.frees, 1);
  EXPECT_EQ(other.frees, 0);
  EXPECT_EQ(texture->get_pixmap_u8_ptr(), nullptr);
  EXPECT_EQ(texture->get_width(), 2u);
  EXPECT_FALSE(mgr.free_image_resource(nullptr));
}

TEST_F(TextureMgrTest, FreesTheStoresOfTheImageOrOfTheLayers) {
  Texture* texture = mgr.create_texture_2d(2, 2, PF_R_U8, true);
  EXPECT_TRUE(mgr.free_image_resource(texture));
  EXPECT_EQ(texture->get_pixmap_u8_ptr(), nullptr);
  EXPECT_TRUE(mgr.free_image_resource(texture));
  Texture* array = mgr.create_texture_2d_array(2, 2, 2, PF_R_F32, true);
  EXPECT_TRUE(mgr.free_image_resource(array));
  EXPECT_EQ(array->get_layer_image_ptr(1)->f32_ptr, nullptr);
  EXPECT_EQ(array->get_data_ptr()->get_num_layers(), 2u);
}

TEST_F(TextureMgrTest, ReleaseFreesPixelsOfATextureThatNobodyElseHolds) {
  Texture* texture = mgr.create_texture_2d(2, 2, PF_R_U8, true);
  texture->add_ref();
  EXPECT_EQ(mgr.release_texture(nullptr, texture, nullptr), 1);
  EXPECT_NE(texture->get_pixmap_u8_ptr(), nullptr);
  EXPECT_EQ(mgr.get_num_resources(), 0u);
  EXPECT_EQ(mgr.release_texture(nullptr, texture, nullptr), 0);
  EXPECT_EQ(mgr.release_texture(nullptr, nullptr, nullptr), 0);
}

TEST_F(TextureMgrTest, ReleaseOfAllLeavesTexturesOfOtherRenderers) {
  RecordingRenderer renderer;
  Texture* own = mgr.create_texture_2d(2, 2, PF_R_U8, true);
  Texture* foreign = mgr.create_texture_2d(2, 2, PF_R_U8, true);
  own->get_data_ptr()->renderer_id = renderer.get_id();
  foreign->get_data_ptr()->renderer_id = renderer.get_id() + 1;
  EXPECT_TRUE(mgr.release_all_textures(&renderer, nullptr));
  ASSERT_EQ(mgr.get_num_resources(), 1u);
  EXPECT_EQ(mgr.get_resource_by_index(0), foreign);
  EXPECT_NE(foreign->get_pixmap_u8_ptr(), nullptr);
  EXPECT_EQ(renderer.count("texture_unload"), 1);
}

}  // namespace
}  // namespace orv
