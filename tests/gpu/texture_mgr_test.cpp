#include <orv/gpu/texture_mgr.h>

#include "image/test_files.h"
#include "support/held.h"
#include "support/recording_renderer.h"

#include <orv/core/plugin_mgr.h>
#include <orv/gpu/gpu_render_target.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/image/image.h>
#include <orv/image/image_codec_stb.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace orv {
namespace {

using test::Bytes;
using test::Held;
using test::RecordingRenderer;
using test::TempFile;
using testing::ElementsAre;

/// Gives one-coloured pictures without a file, and counts what it is asked for.
class FakeCodec : public ImageCodec {
 public:
  explicit FakeCodec(const char* name) { set_name(name); }

  bool load_image_from_file(Image* image, const char*, bool option, PIXEL_FORMAT format) override {
    ++loads;
    last_option = option;
    last_format = format;
    return give(image);
  }
  bool load_image_from_memory(Image* image, unsigned char*, unsigned int, bool option,
                              PIXEL_FORMAT format) override {
    ++loads;
    last_option = option;
    last_format = format;
    return give(image);
  }
  bool save_image_to_file(Image* image, const char*) override {
    ++saves;
    saved = *image;
    return can_save;
  }
  bool free_image_resources(Image* image) override {
    ++frees;
    if (!image || !image->codec_pixels) return false;
    image->codec_pixels = nullptr;
    return true;
  }

  bool succeeds = true;
  bool can_save = true;
  bool lends = false;  ///< the picture stays in `pixels`
  unsigned int width = 2;
  unsigned int height = 2;
  PIXEL_FORMAT given_format = PF_RGB_U8;
  int loads = 0;
  int saves = 0;
  int frees = 0;
  bool last_option = false;
  PIXEL_FORMAT last_format = PF_UNKNOWN;
  Bytes pixels = Bytes(256, 40);
  Image saved;

 private:
  bool give(Image* image) {
    if (!succeeds) return false;
    if (!image->create(width, height, 1, given_format, true, !lends)) return false;
    if (lends) image->codec_pixels = pixels.data();
    if (!lends && image->u8_ptr) std::memset(image->u8_ptr, 40, image->get_u8_capacity());
    return true;
  }
};

class TextureMgrTest : public testing::Test {
 protected:
  void SetUp() override {
    mgr.stop(nullptr);
    mgr.set_current_image_codec_name("stb");
  }
  void TearDown() override {
    mgr.stop(nullptr);
    mgr.set_current_image_codec_name("stb");
  }

  Texture* load(FakeCodec& codec) {
    mgr.register_image_codec_plugin(&codec);
    mgr.set_current_image_codec_name(codec.get_name());
    return mgr.create_texture_2d_from_file("any", false, PF_RGB_U8);
  }

  TextureMgr& mgr = *TextureMgr::get();
  ImageCodecStb stb;
};

const std::string& sample() {
  static const std::string path = test::data_path("img/png/basn6a08.png");
  return path;
}

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

TEST_F(TextureMgrTest, LoadsARealFileAndConvertsIt) {
  mgr.register_image_codec_plugin(&stb);
  Texture* texture = mgr.create_texture_2d_from_file(sample().c_str(), true, PF_RGBA_F32);
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(texture->get_width(), 32u);
  EXPECT_EQ(texture->get_pixel_format(), PF_RGBA_F32);
  EXPECT_TRUE(texture->get_image_ptr()->owns_pixels);
  EXPECT_EQ(texture->get_image_ptr()->get_codec_id(), stb.get_id());
  EXPECT_EQ(mgr.get_last_image_codec(), &stb);
  EXPECT_EQ(texture->get_ref(), 1);
}

TEST_F(TextureMgrTest, LoadsFromMemory) {
  mgr.register_image_codec_plugin(&stb);
  Bytes file = test::read_bytes(sample());
  Texture* texture = mgr.create_texture_2d_from_memory(
      file.data(), static_cast<unsigned int>(file.size()), false, PF_RGBA_U8);
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(texture->get_pixel_format(), PF_RGBA_U8);
  Held<Texture> other;
  other->create_1d(2, PF_R_U8, true);
  EXPECT_FALSE(mgr.load_texture_2d_from_memory(other, file.data(), 3, false, PF_RGBA_U8));
  EXPECT_EQ(other->get_data_ptr()->type, TEXTURE_2D);  // set before the attempt
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

// ---- loading ----

TEST_F(TextureMgrTest, AFailingFileIsDecodedTwice) {
  FakeCodec codec("stb");
  codec.succeeds = false;
  EXPECT_EQ(load(codec), nullptr);
  EXPECT_EQ(codec.loads, 2);
}

TEST_F(TextureMgrTest, TheFallbackIsAskedAfterTheCurrentCodec) {
  FakeCodec current("current"), fallback("stb");
  current.succeeds = false;
  mgr.register_image_codec_plugin(&fallback);
  EXPECT_NE(load(current), nullptr);
  EXPECT_EQ(current.loads, 1);
  EXPECT_EQ(fallback.loads, 1);
  EXPECT_EQ(mgr.get_last_image_codec(), &fallback);
}

TEST_F(TextureMgrTest, FlipAndFormatReachTheCodec) {
  FakeCodec codec("fake");
  Texture* texture = load(codec);
  ASSERT_TRUE(mgr.load_image_from_file(texture, "any", true, PF_BGRA_U8));
  EXPECT_TRUE(codec.last_option);
  EXPECT_EQ(codec.last_format, PF_BGRA_U8);
  // The name of the order changes, the bytes stay.
  EXPECT_EQ(texture->get_pixel_format(), PF_BGRA_U8);
}

TEST_F(TextureMgrTest, LoadingTakesTheTextureIntoTheListAndKeepsItsType) {
  FakeCodec codec("fake");
  load(codec);
  Held<Texture> texture;
  texture->create_1d(2, PF_R_U8, true);
  texture->get_data_ptr()->gpu_update_needed = false;
  EXPECT_TRUE(mgr.load_image_from_file(texture, "any", false, PF_RGB_U8));
  EXPECT_TRUE(mgr.load_image_from_file(texture, "any", false, PF_RGB_U8));
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_1D);
  EXPECT_TRUE(texture->get_data_ptr()->gpu_update_needed);
  EXPECT_EQ(texture->get_ref(), 2);
  EXPECT_TRUE(mgr.load_texture_2d_from_file(texture, "any", false, PF_RGB_U8));
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_2D);
  EXPECT_FALSE(mgr.load_image_from_file(nullptr, "any", false, PF_RGB_U8));
  EXPECT_FALSE(mgr.load_image_from_file(texture, nullptr, false, PF_RGB_U8));
}

TEST_F(TextureMgrTest, ATextureClassOfAHostSeesTheImage) {
  class Watching : public Texture {
   public:
    bool load_from_image(const Image& image) override {
      seen_width = image.width;
      return accepts && Texture::load_from_image(image);
    }
    unsigned int seen_width = 0;
    bool accepts = true;
  };
  FakeCodec codec("stb");
  mgr.register_image_codec_plugin(&codec);
  Held<Watching> texture;
  EXPECT_TRUE(mgr.load_image_from_file(texture, "any", false, PF_RGB_U8));
  EXPECT_EQ(texture->seen_width, 2u);
  EXPECT_NE(texture->get_image_ptr()->u8_ptr, nullptr);
  texture->accepts = false;
  Held<Watching> refusing;
  refusing->accepts = false;
  mgr.stop(nullptr);
  mgr.register_image_codec_plugin(&codec);
  EXPECT_FALSE(mgr.load_image_from_file(refusing, "any", false, PF_RGB_U8));
  EXPECT_EQ(mgr.get_last_image_codec(), nullptr);
  EXPECT_TRUE(mgr.has_resource(refusing));  // listed in any case
}

TEST_F(TextureMgrTest, RawPixelsAreCopied) {
  const unsigned char pixels[6] = {1, 2, 3, 4, 5, 6};
  Texture* texture = mgr.create_texture_2d_from_raw_memory(pixels, 2, 1, PF_RGB_U8);
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(std::memcmp(texture->get_pixmap_ptr(), pixels, 6), 0);
  const float floats[2] = {0.5f, 2.0f};
  ASSERT_TRUE(mgr.load_texture_2d_from_raw_memory(texture, floats, 1, 2, PF_R_F32));
  EXPECT_EQ(texture->get_pixmap_f32_ptr()[1], 2.0f);
  EXPECT_FALSE(mgr.load_texture_2d_from_raw_memory(nullptr, pixels, 1, 1, PF_R_U8));
  EXPECT_FALSE(mgr.load_texture_2d_from_raw_memory(texture, nullptr, 1, 1, PF_R_U8));
  EXPECT_FALSE(mgr.load_texture_2d_from_raw_memory(texture, pixels, 0, 1, PF_R_U8));
  EXPECT_FALSE(mgr.load_texture_2d_from_raw_memory(texture, pixels, 1, 0, PF_R_U8));
  EXPECT_FALSE(mgr.load_texture_2d_from_raw_memory(texture, pixels, 1, 1, PF_UNKNOWN));
  EXPECT_FALSE(mgr.load_texture_2d_from_raw_memory(texture, pixels, 1, 1, PF_RGBA_F16));
}

// ---- cube maps ----

TEST_F(TextureMgrTest, CubeMapTakesSixFilesInOrder) {
  if (test::extra_path("").empty()) GTEST_SKIP() << "no folder of real files";
  mgr.register_image_codec_plugin(&stb);
  std::vector<std::string> paths;
  for (const char* name : {"posx", "negx", "posy", "negy", "posz", "negz"}) {
    paths.push_back(test::extra_path("cubemap/") + name + ".jpg");
  }
  Texture* texture = mgr.create_texture_cube_from_files(paths[0].c_str(), paths[1].c_str(),
                                                        paths[2].c_str(), paths[3].c_str(),
                                                        paths[4].c_str(), paths[5].c_str(), false);
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_CUBE);
  for (int face = 0; face < 6; ++face) {
    Image expected;
    ASSERT_TRUE(stb.load_image_from_file(&expected, paths[static_cast<std::size_t>(face)].c_str(),
                                         false, PF_RGB_U8));
    const Image* image = texture->get_cubemap_image_ptr(static_cast<CUBEMAP_FACE>(face));
    ASSERT_EQ(image->get_u8_capacity(), expected.get_u8_capacity());
    EXPECT_EQ(image->get_codec_id(), stb.get_id());
    EXPECT_EQ(std::memcmp(image->u8_ptr, expected.u8_ptr, expected.get_u8_capacity()), 0) << face;
  }
}

TEST_F(TextureMgrTest, ANullFourthFaceLeavesThreeAndTheType) {
  FakeCodec codec("stb");
  mgr.register_image_codec_plugin(&codec);
  Held<Texture> texture;
  EXPECT_FALSE(mgr.load_texture_cube_from_files(texture, "a", "b", "c", nullptr, "e", "f", false));
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_CUBE);
  EXPECT_EQ(codec.loads, 3);
  EXPECT_EQ(codec.last_format, PF_RGB_U8);
  EXPECT_NE(texture->get_cubemap_image_ptr(CUBEMAP_FACE_POSITIVE_Y)->u8_ptr, nullptr);
  EXPECT_EQ(texture->get_cubemap_image_ptr(CUBEMAP_FACE_NEGATIVE_Y)->u8_ptr, nullptr);
  EXPECT_FALSE(mgr.load_texture_cube_from_files(nullptr, nullptr, false));
}

TEST_F(TextureMgrTest, CubeMapFromMemory) {
  mgr.register_image_codec_plugin(&stb);
  Bytes file = test::read_bytes(sample());
  unsigned char* datas[6];
  unsigned int sizes[6];
  std::fill_n(datas, 6, file.data());
  std::fill_n(sizes, 6, static_cast<unsigned int>(file.size()));
  Texture* texture = mgr.create_texture_cube_from_memory(datas, sizes, false);
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(texture->get_cubemap_image_ptr(CUBEMAP_FACE_NEGATIVE_Z)->width, 32u);
  sizes[5] = 20;
  EXPECT_EQ(mgr.create_texture_cube_from_memory(datas, sizes, false), nullptr);
  datas[2] = nullptr;
  EXPECT_FALSE(mgr.load_texture_cube_from_memory(texture, datas, sizes, false));
}

TEST_F(TextureMgrTest, SingleFacesAreTested) {
  FakeCodec codec("stb");
  mgr.register_image_codec_plugin(&codec);
  unsigned char byte = 0;
  Held<Texture> texture;
  EXPECT_TRUE(mgr.load_cubemap_face_from_file(texture, CUBEMAP_FACE_NEGATIVE_X, "a", true));
  EXPECT_TRUE(mgr.load_cubemap_face_from_memory(texture, CUBEMAP_FACE_POSITIVE_Z, &byte, 1, true));
  EXPECT_FALSE(mgr.load_cubemap_face_from_file(texture, static_cast<CUBEMAP_FACE>(6), "a", true));
  EXPECT_FALSE(mgr.load_cubemap_face_from_file(texture, CUBEMAP_FACE_NEGATIVE_X, nullptr, true));
  EXPECT_FALSE(mgr.load_cubemap_face_from_file(nullptr, CUBEMAP_FACE_NEGATIVE_X, "a", true));
  EXPECT_FALSE(
      mgr.load_cubemap_face_from_memory(texture, CUBEMAP_FACE_NEGATIVE_X, nullptr, 1, true));
  EXPECT_FALSE(mgr.load_cubemap_face_from_memory(texture, CUBEMAP_FACE_NEGATIVE_X, &byte, 0, true));
}

// ---- layers ----

TEST_F(TextureMgrTest, LayersAreDecodedInPlaceInTheirOwnFormat) {
  FakeCodec codec("stb");
  codec.given_format = PF_RGBA_U8;
  mgr.register_image_codec_plugin(&codec);
  Held<Texture> texture;
  ASSERT_TRUE(texture->create_2d_array(2, 2, 2, PF_RGBA_U8, true));
  EXPECT_TRUE(mgr.load_texture_2d_array_layer_from_file(texture, 1, "a", false));
  EXPECT_EQ(codec.last_format, PF_RGBA_U8);
  EXPECT_EQ(texture->get_layer_image_ptr(1)->u8_ptr[0], 40);
  EXPECT_EQ(texture->get_layer_image_ptr(1)->get_codec_id(), codec.get_id());
  EXPECT_EQ(texture->get_layer_image_ptr(0)->u8_ptr[0], 0);
  EXPECT_TRUE(mgr.has_resource(texture));
  EXPECT_EQ(mgr.get_last_image_codec(), &codec);
}

TEST_F(TextureMgrTest, ALayerIndexEqualToTheCountIsRefused) {
  FakeCodec codec("stb");
  mgr.register_image_codec_plugin(&codec);
  const unsigned char pixels[16] = {};
  Held<Texture> texture;
  ASSERT_TRUE(texture->create_2d_array(2, 2, 2, PF_RGBA_U8, true));
  EXPECT_FALSE(mgr.load_texture_2d_array_layer_from_file(texture, 2, "a", false));
  EXPECT_FALSE(mgr.load_texture_2d_array_layer_from_raw_memory(texture, 2, pixels));
  EXPECT_EQ(codec.loads, 0);
  EXPECT_FALSE(mgr.load_texture_2d_array_layer_from_file(nullptr, 0, "a", false));
  EXPECT_FALSE(mgr.load_texture_2d_array_layer_from_file(texture, 0, nullptr, false));
}

TEST_F(TextureMgrTest, RawLayersAreCopied) {
  unsigned char pixels[16];
  std::memset(pixels, 3, 16);
  Held<Texture> texture;
  ASSERT_TRUE(texture->create_2d_array(2, 2, 2, PF_RGBA_U8, true));
  EXPECT_TRUE(mgr.load_texture_2d_array_layer_from_raw_memory(texture, 1, pixels));
  EXPECT_EQ(texture->get_layer_image_ptr(1)->u8_ptr[15], 3);
  EXPECT_FALSE(mgr.load_texture_2d_array_layer_from_raw_memory(nullptr, 0, pixels));
  EXPECT_FALSE(mgr.load_texture_2d_array_layer_from_raw_memory(texture, 0, nullptr));
  // A float store beside the bytes gets them when they fit.
  Image* layer = texture->get_layer_image_ptr(0);
  ASSERT_TRUE(layer->create(1, 1, 1, PF_R_F32, true, true));
  ASSERT_TRUE(layer->create(2, 2, 1, PF_RGBA_U8, true, true));
  EXPECT_TRUE(mgr.load_texture_2d_array_layer_from_raw_memory(texture, 0, pixels));
  EXPECT_EQ(layer->u8_ptr[15], 3);
  EXPECT_EQ(layer->f32_ptr[0], 0.0f);  // four bytes were too few
}

// ---- fonts ----

TEST_F(TextureMgrTest, FontsAreBakedIntoOneChannel) {
  const std::string path = test::data_path("ttf/DejaVuSansMono.ttf");
  Texture* texture = mgr.create_texture_from_truetype_file(path.c_str(), 24, 256, 512);
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_2D);
  EXPECT_EQ(texture->get_pixel_format(), PF_R_U8);
  EXPECT_EQ(texture->get_width(), 256u);
  EXPECT_EQ(texture->get_height(), 512u);
  const unsigned char* pixels = texture->get_pixmap_u8_ptr();
  const auto inked = std::count_if(pixels, pixels + 256 * 512, [](int p) { return p > 128; });
  EXPECT_GT(inked, 5000);
  // A picture too small for all characters shows those that fit.
  EXPECT_TRUE(mgr.load_texture_2d_from_truetype_file(texture, path.c_str(), 24, 30, 30));
  EXPECT_EQ(texture->get_width(), 30u);
}

TEST_F(TextureMgrTest, SpoiledFontsAreRefused) {
  Held<Texture> texture;
  EXPECT_FALSE(mgr.load_texture_2d_from_truetype_file(texture, sample().c_str(), 16, 64, 64));
  EXPECT_FALSE(mgr.load_texture_2d_from_truetype_file(texture, "/tmp", 16, 64, 64));
  EXPECT_FALSE(mgr.load_texture_2d_from_truetype_file(texture, nullptr, 16, 64, 64));
  EXPECT_FALSE(mgr.load_texture_2d_from_truetype_file(nullptr, sample().c_str(), 16, 64, 64));
  const std::string path = test::data_path("ttf/DejaVuSansMono.ttf");
  EXPECT_FALSE(mgr.load_texture_2d_from_truetype_file(texture, path.c_str(), 16, 0, 64));
  EXPECT_FALSE(mgr.load_texture_2d_from_truetype_file(texture, path.c_str(), 16, 64, -1));
  EXPECT_FALSE(mgr.load_texture_2d_from_truetype_file(texture, path.c_str(), 16, 99999, 99999));
  Bytes font = test::read_bytes(path);
  const TempFile file("cut.ttf");
  for (const std::size_t length : {std::size_t{0}, std::size_t{5}, std::size_t{100}}) {
    test::write_bytes(file.path(),
                      Bytes(font.begin(), font.begin() + static_cast<std::ptrdiff_t>(length)));
    EXPECT_FALSE(mgr.load_texture_2d_from_truetype_file(texture, file.path(), 16, 64, 64));
  }
  // Longer pieces may hold what is needed; they end cleanly.
  for (std::size_t length = 1000; length < font.size(); length += font.size() / 13) {
    test::write_bytes(file.path(),
                      Bytes(font.begin(), font.begin() + static_cast<std::ptrdiff_t>(length)));
    mgr.load_texture_2d_from_truetype_file(texture, file.path(), 16, 64, 64);
  }
}

// ---- straight to the GPU ----

TEST_F(TextureMgrTest, UpdatesGpuMemoryWithoutTouchingThePixels) {
  FakeCodec codec("fake");
  Texture* texture = load(codec);
  ASSERT_NE(texture, nullptr);
  texture->get_pixmap_u8_ptr()[0] = 99;
  RecordingRenderer renderer;
  renderer.label(texture->get_data_ptr(), "data");
  EXPECT_TRUE(mgr.update_gpu_memory_from_file(&renderer, texture, "any", false, PF_RGB_U8));
  EXPECT_THAT(renderer.calls(), ElementsAre("texture_update_2d_v2(data, 0, 0, 2, 2, 1, ptr)"));
  EXPECT_EQ(texture->get_pixmap_u8_ptr()[0], 99);
  EXPECT_EQ(codec.frees, 1);
}

TEST_F(TextureMgrTest, UpdatesGpuMemoryBeforeAnyImageWasLoaded) {
  FakeCodec codec("stb");
  mgr.register_image_codec_plugin(&codec);
  ASSERT_EQ(mgr.get_last_image_codec(), nullptr);
  RecordingRenderer renderer;
  Texture* texture = mgr.create_texture_2d(2, 2, PF_RGB_U8, true);
  EXPECT_TRUE(mgr.update_gpu_memory_from_file(&renderer, texture, "any", false, PF_RGB_U8));
  EXPECT_EQ(codec.frees, 0);
  EXPECT_EQ(mgr.get_last_image_codec(), &codec);
}

TEST_F(TextureMgrTest, GpuUpdateConvertsAndRefusesAnotherSize) {
  class Looking : public RecordingRenderer {
   public:
    bool texture_update_2d_v2(TextureData*, int, int, int width, int height, int,
                              const void* pixels) override {
      const auto* bytes = static_cast<const unsigned char*>(pixels);
      seen.assign(bytes, bytes + width * height * 4);
      return true;
    }
    Bytes seen;
  };
  FakeCodec codec("stb");
  mgr.register_image_codec_plugin(&codec);
  Looking renderer;
  Texture* texture = mgr.create_texture_2d(2, 2, PF_RGB_U8, true);
  EXPECT_TRUE(mgr.update_gpu_memory_from_file(&renderer, texture, "any", false, PF_RGBA_U8));
  EXPECT_EQ(texture->get_pixel_format(), PF_RGBA_U8);
  EXPECT_EQ(renderer.seen[0], 40);
  EXPECT_EQ(renderer.seen[3], 255);  // three channels were decoded
  codec.width = 3;
  renderer.seen.clear();
  EXPECT_FALSE(mgr.update_gpu_memory_from_file(&renderer, texture, "any", false, PF_RGBA_U8));
  EXPECT_TRUE(renderer.seen.empty());
}

TEST_F(TextureMgrTest, GpuUpdateFreesLentPixels) {
  FakeCodec codec("stb");
  codec.lends = true;
  mgr.register_image_codec_plugin(&codec);
  RecordingRenderer renderer;
  Texture* texture = mgr.create_texture_2d(2, 2, PF_RGB_U8, true);
  EXPECT_TRUE(mgr.update_gpu_memory_from_file(&renderer, texture, "any", false, PF_RGB_U8));
  EXPECT_EQ(codec.frees, 1);
  EXPECT_FALSE(mgr.update_gpu_memory_from_file(nullptr, texture, "any", false, PF_RGB_U8));
  EXPECT_FALSE(mgr.update_gpu_memory_from_file(&renderer, nullptr, "any", false, PF_RGB_U8));
  EXPECT_FALSE(mgr.update_gpu_memory_from_file(&renderer, texture, nullptr, false, PF_RGB_U8));
}

// ---- writing ----

TEST_F(TextureMgrTest, WritesTexturesOfType2DOnly) {
  FakeCodec codec("fake"), fallback("stb");
  codec.can_save = false;
  mgr.register_image_codec_plugin(&fallback);
  Texture* texture = load(codec);
  EXPECT_TRUE(mgr.write_texture_2d_to_file(texture, "x"));
  EXPECT_EQ(codec.saves, 1);
  EXPECT_EQ(fallback.saves, 1);
  texture->get_data_ptr()->type = TEXTURE_RECTANGLE;
  EXPECT_FALSE(mgr.write_texture_2d_to_file(texture, "x"));
  EXPECT_FALSE(mgr.write_texture_2d_to_file(nullptr, "x"));
  EXPECT_FALSE(mgr.write_texture_2d_to_file(texture, nullptr));
  EXPECT_EQ(codec.saves, 1);
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

// ---- screenshots ----

class Screen : public RecordingRenderer {
 public:
  bool get_back_buffer_size(unsigned int* size, unsigned int* w, unsigned int* h) override {
    *size = width * height * 4;
    *w = width;
    *h = height;
    return true;
  }
  bool read_back_buffer_rgba(unsigned char* pixels) override {
    for (unsigned int i = 0; i < width * height * 4; ++i) {
      pixels[i] = static_cast<unsigned char>(i);
    }
    return true;
  }
  bool read_back_buffer_rect_rgba(unsigned char* pixels, int x, int y, int w, int h) override {
    std::memset(pixels, x + y, static_cast<std::size_t>(w * h * 4));
    return true;
  }
  unsigned int width = 2;
  unsigned int height = 2;
};

TEST_F(TextureMgrTest, ScreenshotIsWrittenByTheCurrentCodec) {
  FakeCodec codec("fake"), fallback("stb");
  mgr.register_image_codec_plugin(&codec);
  mgr.register_image_codec_plugin(&fallback);
  mgr.set_current_image_codec_name("fake");
  Screen screen;
  EXPECT_TRUE(mgr.do_screenshot(&screen, "x", false));
  EXPECT_EQ(codec.saves, 1);
  EXPECT_EQ(fallback.saves, 0);
  EXPECT_EQ(codec.saved.width, 2u);
  EXPECT_EQ(codec.saved.pixel_format, PF_BGRA_U8);  // holding RGBA
  EXPECT_EQ(codec.saved.u8_ptr[0], 0);
  EXPECT_TRUE(mgr.do_screenshot(&screen, "x", true));
  EXPECT_EQ(codec.saved.u8_ptr[0], 8);  // the upper row is the last one read
  codec.can_save = false;
  EXPECT_TRUE(mgr.do_screenshot(&screen, "x", false));
  EXPECT_EQ(fallback.saves, 1);
  fallback.can_save = false;
  EXPECT_FALSE(mgr.do_screenshot(&screen, "x", false));
}

TEST_F(TextureMgrTest, ScreenshotOfTheSameSizeDoesNotReallocate) {
  FakeCodec codec("stb");
  mgr.register_image_codec_plugin(&codec);
  Screen screen;
  screen.width = 7;
  ASSERT_TRUE(mgr.do_screenshot(&screen, "x", false));
  const unsigned char* store = mgr.get_screenshot_image()->u8_ptr;
  ASSERT_TRUE(mgr.do_screenshot(&screen, "x", false));
  EXPECT_EQ(mgr.get_screenshot_image()->u8_ptr, store);
  screen.height = 9;
  ASSERT_TRUE(mgr.do_screenshot(&screen, "x", false));
  EXPECT_EQ(mgr.get_screenshot_image()->height, 9u);
  EXPECT_EQ(mgr.get_screenshot_image()->get_u8_capacity(), 7u * 9u * 4u);
}

TEST_F(TextureMgrTest, ScreenshotOffersThePictureToAllCodecsOfTheName) {
  FakeCodec first("stb"), second("stb"), longer("stbx");
  first.can_save = false;
  mgr.register_image_codec_plugin(&longer);
  mgr.register_image_codec_plugin(&first);
  mgr.register_image_codec_plugin(&second);
  Screen screen;
  EXPECT_TRUE(mgr.do_screenshot(&screen, "x", false));
  EXPECT_EQ(first.saves, 1);
  EXPECT_EQ(second.saves, 1);
  EXPECT_EQ(longer.saves, 0);
}

TEST_F(TextureMgrTest, ScreenshotOfARectangle) {
  FakeCodec codec("stb");
  mgr.register_image_codec_plugin(&codec);
  Screen screen;
  EXPECT_TRUE(mgr.do_screenshot_v2(&screen, "x", 3, 4, 5, 6, true));
  EXPECT_EQ(codec.saved.width, 5u);
  EXPECT_EQ(codec.saved.height, 6u);
  EXPECT_EQ(codec.saved.u8_ptr[0], 7);
  EXPECT_FALSE(mgr.do_screenshot_v2(&screen, "x", 0, 0, 0, 6, true));
  EXPECT_FALSE(mgr.do_screenshot_v2(&screen, "x", 0, 0, 5, -1, true));
  EXPECT_FALSE(mgr.do_screenshot_v2(nullptr, "x", 0, 0, 5, 6, true));
  EXPECT_FALSE(mgr.do_screenshot_v2(&screen, nullptr, 0, 0, 5, 6, true));
}

TEST_F(TextureMgrTest, ScreenshotNeedsARendererANameAndAPicture) {
  Screen screen;
  EXPECT_FALSE(mgr.do_screenshot(nullptr, "x", false));
  EXPECT_FALSE(mgr.do_screenshot(&screen, nullptr, false));
  EXPECT_FALSE(mgr.do_screenshot(&screen, "x", false));  // no codec
  RecordingRenderer blind;
  mgr.register_image_codec_plugin(&stb);
  EXPECT_FALSE(mgr.do_screenshot(&blind, "x", false));
  screen.width = 0;
  EXPECT_FALSE(mgr.do_screenshot(&screen, "x", false));
}

}  // namespace
}  // namespace orv
