#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>

#include <cstring>

#include "render/opengl/fake_gl_fixture.h"
#include "support/log_capture.h"

using namespace orv;
using namespace orv::test;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

class TextureLoadTest : public FakeGlTest {
 protected:
  void make_2d(unsigned int width, unsigned int height, PIXEL_FORMAT format = PF_RGBA_U8) {
    ASSERT_TRUE(texture.create_2d(width, height, format, true));
    texture.gen_mipmaps(false);
  }
  bool load(unsigned int unit = 0) { return renderer.texture_load(nullptr, data(), unit); }
  TextureData* data() { return texture.get_data_ptr(); }
  void TearDown() override { renderer.texture_unload(data()); }
  /// What glTexImage2D was told to keep.
  std::string kept() {
    const Calls calls = gl.calls_of({"glTexImage2D(GL_TEXTURE_2D, 0, "});
    if (calls.size() != 1) return "none";
    const std::string rest = calls[0].substr(std::strlen("glTexImage2D(GL_TEXTURE_2D, 0, "));
    return rest.substr(0, rest.find(','));
  }

  Texture texture;
};

}  // namespace

// ---- which and when ----

TEST_F(TextureLoadTest, FourTypesAreLoaded) {
  start();
  for (const int type : {0, 3, 5, 6, 8}) {
    make_2d(4, 4);
    data()->type = static_cast<TEXTURE_TYPE>(type);
    EXPECT_FALSE(load()) << type;
    EXPECT_EQ(0u, data()->gl_texture_id);
  }
  EXPECT_THAT(gl.calls(), IsEmpty());
  EXPECT_FALSE(renderer.texture_load(nullptr, nullptr, 0));
}

TEST_F(TextureLoadTest, EachLoaderInsistsOnItsType) {
  start();
  make_2d(4, 4);
  EXPECT_FALSE(renderer.texture_load_1d(nullptr, data(), 0));
  EXPECT_FALSE(renderer.texture_load_cube(nullptr, data(), 0));
  EXPECT_FALSE(renderer.texture_load_2d_array(nullptr, data(), 0));
  data()->type = TEXTURE_CUBE;
  EXPECT_FALSE(renderer.texture_load_2d(nullptr, data(), 0));
  for (const auto loader :
       {&RendererOpenGL::texture_load_1d, &RendererOpenGL::texture_load_2d,
        &RendererOpenGL::texture_load_cube, &RendererOpenGL::texture_load_2d_array}) {
    EXPECT_FALSE((renderer.*loader)(nullptr, nullptr, 0));
  }
}

TEST_F(TextureLoadTest, LoadedTexturesAreNotLoadedAgain) {
  start();
  make_2d(4, 4);
  ASSERT_TRUE(load());
  gl.clear();
  EXPECT_TRUE(load());
  EXPECT_THAT(gl.calls(), IsEmpty());
}

TEST_F(TextureLoadTest, StoppedRendererLoadsNothing) {
  make_2d(4, 4);
  EXPECT_FALSE(load());
  EXPECT_FALSE(data()->loaded_in_gpu_memory);
}

// ---- sizes ----

TEST_F(TextureLoadTest, SizesPastTheLimitFailWithAMessage) {
  start();
  LogCapture log;
  make_2d(4097, 1, PF_R_U8);
  EXPECT_FALSE(load());
  EXPECT_TRUE(log.contains(
      "OpenGL renderer - 2D texture loading failed (texture size must be <= 4096x4096)"));
  make_2d(1, 4097, PF_R_U8);
  EXPECT_FALSE(load());
  ASSERT_TRUE(texture.create_1d(4097, PF_R_U8, true));
  EXPECT_FALSE(load());
  EXPECT_TRUE(log.contains("1D texture loading failed (texture size must be <= 4096)"));
  ASSERT_TRUE(texture.create_2d_array(4097, 1, 1, PF_R_U8, true));
  EXPECT_FALSE(load());
  EXPECT_TRUE(log.contains("texture 2D array loading failed (texture size must be <= 4096x4096)"));
  EXPECT_EQ(0, gl.count("glGenTextures"));
}

TEST_F(TextureLoadTest, CubesPastTheLimitFailWithAMessage) {
  start();
  LogCapture log;
  gl.set_integer(GL_MAX_TEXTURE_SIZE, 8);
  renderer.apply_pipeline_state();
  ASSERT_TRUE(texture.create_cubemap(9, PF_R_U8, true));
  EXPECT_FALSE(load());
  EXPECT_TRUE(log.contains("CUBE texture loading failed (texture size must be <= 8x8)"));
}

TEST_F(TextureLoadTest, TexturesWithoutSizeFailWithAMessage) {
  start();
  LogCapture log;
  data()->image.create(0, 7, 1, PF_RGBA_U8, false, false);
  EXPECT_FALSE(load());
  EXPECT_TRUE(log.contains("unable to load a 2D texture with no size (0x7)"));
  data()->type = TEXTURE_1D;
  EXPECT_FALSE(load());
  EXPECT_TRUE(log.contains("unable to load a 1D texture with no size (0)"));
  data()->type = TEXTURE_CUBE;
  EXPECT_FALSE(load());
  EXPECT_TRUE(log.contains("unable to load a CUBE texture with no size (0)"));
  data()->type = TEXTURE_2D_ARRAY;
  EXPECT_FALSE(load());
  EXPECT_TRUE(log.contains("unable to load a texture 2D array with no size (0x0)"));
}

TEST_F(TextureLoadTest, ArraysOfTooManyLayersFailWithAMessage) {
  start();
  gl.set_integer(GL_MAX_ARRAY_TEXTURE_LAYERS, 2);
  LogCapture log;
  ASSERT_TRUE(texture.create_2d_array(2, 2, 3, PF_RGBA_U8, true));
  EXPECT_FALSE(load());
  EXPECT_TRUE(
      log.contains("unable to load a texture 2D array, number of layers does not exceed 2"));
}

TEST_F(TextureLoadTest, StoresThatAreTooSmallAreRefused) {
  start();
  make_2d(4, 4);
  data()->image.width = 400;
  EXPECT_FALSE(load());
  EXPECT_EQ(0, gl.count("glTexImage2D"));
}

TEST_F(TextureLoadTest, UnknownAndIntegerFormatsAreRefused) {
  start();
  for (const PIXEL_FORMAT format : {PF_UNKNOWN, PF_R_U32}) {
    make_2d(4, 4);
    data()->image.pixel_format = format;
    EXPECT_FALSE(load());
  }
  EXPECT_EQ(0, gl.count("glGenTextures"));
}

// ---- the road ----

TEST_F(TextureLoadTest, PlainTextureIsLoadedInAFixedOrder) {
  start();
  make_2d(4, 2);
  ASSERT_TRUE(load(2));
  EXPECT_THAT(
      take_changes(),
      ElementsAre(
          "glGenTextures(1, ptr)", "glActiveTexture(GL_TEXTURE2)",
          "glBindTexture(GL_TEXTURE_2D, 1)", "glActiveTexture(GL_TEXTURE2)",
          "glBindTexture(GL_TEXTURE_2D, 1)",
          "glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY_EXT, 1)",
          "glPixelStorei(GL_UNPACK_ALIGNMENT, 4)",
          "glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 4, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, ptr)",
          "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_BASE_LEVEL, 0)",
          "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0)", "glActiveTexture(GL_TEXTURE2)",
          "glBindTexture(GL_TEXTURE_2D, 1)",
          "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR)",
          "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR)",
          "glActiveTexture(GL_TEXTURE2)", "glBindTexture(GL_TEXTURE_2D, 1)",
          "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT)",
          "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT)",
          "glActiveTexture(GL_TEXTURE2)", "glBindTexture(GL_TEXTURE_2D, 1)",
          "glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0)", "glPixelStorei(GL_UNPACK_ALIGNMENT, 1)"));
}

TEST_F(TextureLoadTest, RecordTellsOfTheUpload) {
  start();
  make_2d(16, 32);
  LogCapture log;
  ASSERT_TRUE(load());
  EXPECT_TRUE(data()->loaded_in_gpu_memory);
  EXPECT_FALSE(data()->gpu_update_needed);
  EXPECT_EQ(renderer.getid(), data()->renderer_id);
  EXPECT_EQ(16u * 32 * 4, data()->gpu_memory_size);
  EXPECT_EQ(0u, data()->gpu_memory_size_compressed);
  EXPECT_TRUE(log.contains("texture loaded ok (GL id=1, size=16x32, gpu mem size: 2KB)"));
}

TEST_F(TextureLoadTest, RowAlignmentFollowsTheWidth) {
  start();
  for (const auto& [width, alignment] : {std::pair{5u, 1}, {6u, 2}, {4u, 4}, {8u, 8}}) {
    make_2d(width, 3);
    ASSERT_TRUE(load());
    EXPECT_TRUE(gl.called("glPixelStorei(GL_UNPACK_ALIGNMENT, " + std::to_string(alignment) + ")"))
        << width;
    EXPECT_EQ("glPixelStorei(GL_UNPACK_ALIGNMENT, 1)", take_changes().back());
    renderer.texture_unload(data());
    gl.clear();
  }
}

TEST_F(TextureLoadTest, UnitsPastTheLastAreTheLast) {
  start();
  make_2d(4, 4);
  ASSERT_TRUE(load(1000));
  EXPECT_TRUE(gl.called("glActiveTexture(GL_TEXTURE15)"));
  EXPECT_FALSE(gl.called("glActiveTexture(GL_TEXTURE16)"));
}

TEST_F(TextureLoadTest, TexturesWithoutPixelsGetRoomAlone) {
  start();
  data()->image.create(4, 4, 1, PF_RGBA_U8, false, false);
  ASSERT_TRUE(load());
  EXPECT_TRUE(gl.called(
      "glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, null)"));
}

TEST_F(TextureLoadTest, ForgottenUploadIsReplaced) {
  start();
  make_2d(4, 4);
  ASSERT_TRUE(load());
  data()->loaded_in_gpu_memory = false;
  ASSERT_TRUE(load());
  EXPECT_EQ(1u, gl.live_ids().size());
}

// ---- mipmaps ----

TEST_F(TextureLoadTest, MipmapsForceTheThirdFilter) {
  start();
  make_2d(4, 4);
  texture.gen_mipmaps(true);
  texture.set_filtering_mode(nullptr, SAMPLER_FILTERING_NEAREST);
  ASSERT_TRUE(load());
  EXPECT_EQ(SAMPLER_FILTERING_TRILINEAR, texture.get_filtering_mode());
  EXPECT_EQ(3, data()->mipmap_max_level);
  EXPECT_TRUE(gl.called("glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 3)"));
  EXPECT_TRUE(gl.called("glGenerateMipmap(GL_TEXTURE_2D)"));
  EXPECT_TRUE(
      gl.called("glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR)"));
}

TEST_F(TextureLoadTest, OnePixelHasOneLevelMore) {
  start();
  make_2d(1, 1);
  texture.gen_mipmaps(true);
  ASSERT_TRUE(load());
  EXPECT_EQ(1, data()->mipmap_max_level);
  EXPECT_TRUE(gl.called("glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 1)"));
}

TEST_F(TextureLoadTest, WantedLevelsAreKept) {
  start();
  make_2d(16, 16);
  texture.gen_mipmaps(true);
  texture.set_mipmap_levels(1, 2);
  ASSERT_TRUE(load());
  EXPECT_TRUE(gl.called("glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_BASE_LEVEL, 1)"));
  EXPECT_TRUE(gl.called("glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 2)"));
}

TEST_F(TextureLoadTest, WithoutMipmapsTheLevelsBecomeZero) {
  start();
  make_2d(16, 16);
  texture.set_mipmap_levels(1, 2);
  ASSERT_TRUE(load());
  EXPECT_EQ(0, data()->mipmap_base_level);
  EXPECT_EQ(0, data()->mipmap_max_level);
  EXPECT_EQ(0, gl.count("glGenerateMipmap"));
  EXPECT_EQ(SAMPLER_FILTERING_LINEAR, texture.get_filtering_mode());
}

// ---- compression ----

TEST_F(TextureLoadTest, NamedCompressionIsKept) {
  gl.add_extension("GL_EXT_texture_compression_s3tc");
  start();
  make_2d(4, 4);
  texture.set_compression_format("RGBA_S3TC_DXT5");
  gl.set_integer(GL_TEXTURE_COMPRESSED, 1);
  gl.set_integer(GL_TEXTURE_COMPRESSED_IMAGE_SIZE, 4096);
  LogCapture log;
  ASSERT_TRUE(load());
  EXPECT_EQ("GL_COMPRESSED_RGBA_S3TC_DXT5_EXT", kept());
  EXPECT_EQ(4096u, data()->gpu_memory_size_compressed);
  EXPECT_EQ(64u, data()->gpu_memory_size);
  EXPECT_TRUE(log.contains("gpu mem size: 4KB"));
}

TEST_F(TextureLoadTest, UnknownNamesLeaveTheChoiceToTheDriver) {
  start();
  const std::pair<PIXEL_FORMAT, const char*> rows[] = {{PF_RGB_U8, "GL_COMPRESSED_RGB"},
                                                       {PF_BGRA_U8, "GL_COMPRESSED_RGBA"},
                                                       {PF_R_U8, "GL_COMPRESSED_RED"},
                                                       {PF_RG_U8, "GL_COMPRESSED_RG"}};
  for (const auto& [format, name] : rows) {
    make_2d(4, 4, format);
    texture.set_compression_format("NO_SUCH_THING");
    ASSERT_TRUE(load());
    EXPECT_EQ(name, kept());
    renderer.texture_unload(data());
    gl.clear();
  }
}

TEST_F(TextureLoadTest, CompressionWithoutTheExtensionIsTheDriversChoice) {
  gl.remove_extension("GL_EXT_texture_compression_s3tc");
  gl.remove_extension("GL_EXT_texture_compression_rgtc");
  start();
  for (const char* name : {"RGBA_S3TC_DXT1", "RED_RGTC1"}) {
    make_2d(4, 4);
    texture.set_compression_format(name);
    ASSERT_TRUE(load());
    EXPECT_EQ("GL_COMPRESSED_RGBA", kept()) << name;
    renderer.texture_unload(data());
    gl.clear();
  }
}

TEST_F(TextureLoadTest, SupportIsReadOnFirstNeed) {
  gl.add_extension("GL_EXT_texture_compression_s3tc");
  start();
  ASSERT_EQ(-1, renderer.facts().s3tc_supported) << "no window told";
  make_2d(4, 4);
  texture.set_compression_format("RGB_S3TC_DXT1");
  ASSERT_TRUE(load());
  EXPECT_EQ(1, renderer.facts().s3tc_supported);
  EXPECT_EQ(-1, renderer.facts().rgtc_supported);
  EXPECT_EQ("GL_COMPRESSED_RGB_S3TC_DXT1_EXT", kept());
}

TEST_F(TextureLoadTest, NamesCountOnlyWhenHonoured) {
  start();
  make_2d(4, 4);
  texture.set_compression_format("COMPRESSED_RED");
  texture.set_s3tc_compression_state(false);
  ASSERT_TRUE(load());
  EXPECT_EQ("GL_COMPRESSED_RGBA", kept());
  renderer.texture_unload(data());
  gl.clear();
  texture.set_s3tc_compression_state(true);
  texture.set_gpu_compression_state(false);
  ASSERT_TRUE(load());
  EXPECT_EQ("GL_RGBA", kept());
}

// ---- pixel buffers ----

TEST_F(TextureLoadTest, PixelBufferCarriesThePixels) {
  start();
  make_2d(2, 2);
  std::memset(data()->image.u8_ptr, 7, 16);
  data()->use_pixel_buffer = true;
  ASSERT_TRUE(load());
  const unsigned int buffer = data()->pixel_buffer_id;
  ASSERT_NE(0u, buffer);
  EXPECT_EQ(std::vector<unsigned char>(16, 7), gl.buffer_bytes(buffer));
  EXPECT_TRUE(gl.called("glBufferData(GL_PIXEL_UNPACK_BUFFER, 16, ptr, GL_STREAM_DRAW)"));
  EXPECT_TRUE(gl.called(
      "glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, null)"));
  EXPECT_TRUE(gl.called("glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0)"));
  ASSERT_TRUE(renderer.texture_unload(data()));
  EXPECT_EQ(0u, data()->pixel_buffer_id);
  EXPECT_THAT(gl.live_ids(), IsEmpty());
}

// ---- other types ----

TEST_F(TextureLoadTest, LinesAreLoaded) {
  start();
  ASSERT_TRUE(texture.create_1d(8, PF_RGB_U8, true));
  LogCapture log;
  ASSERT_TRUE(load());
  EXPECT_TRUE(
      gl.called("glTexImage1D(GL_TEXTURE_1D, 0, GL_RGB, 8, 0, GL_RGB, GL_UNSIGNED_BYTE, ptr)"));
  EXPECT_TRUE(log.contains("texture 1D loaded ok (GL id=1, size=8)"));
}

TEST_F(TextureLoadTest, SixFacesAreLoaded) {
  start();
  ASSERT_TRUE(texture.create_cubemap(8, PF_RGBA_U8, true));
  LogCapture log;
  ASSERT_TRUE(load());
  EXPECT_EQ(6u, gl.calls_of({"glTexImage2D(GL_TEXTURE_CUBE_MAP_"}).size());
  EXPECT_TRUE(log.contains("cube texture loaded ok (GL id=1, size=8x8)"));
  EXPECT_EQ(6u * 8 * 8 * 4, data()->gpu_memory_size);
  EXPECT_EQ(4u, gl.calls_of({"glTexParameteri(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_WRAP",
                             "glTexParameteri(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_M"})
                        .size() -
                    1)
      << "two filters, the largest level and two directions";
}

TEST_F(TextureLoadTest, MissingFacesAreBlack) {
  start();
  ASSERT_TRUE(texture.create_cubemap(8, PF_RGBA_U8, true));
  data()->cubemap_faces[2].image.create(4, 4, 1, PF_RGBA_U8, true, true);
  LogCapture log;
  ASSERT_TRUE(load());
  EXPECT_EQ(5u, gl.calls_of({"glTexImage2D"}).size() -
                    static_cast<std::size_t>(
                        gl.called("glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_Y, 0, GL_RGBA, 8, 8, "
                                  "0, GL_RED, GL_UNSIGNED_BYTE, ptr)")));
  EXPECT_TRUE(log.contains("face 2 has no pixels"));
}

TEST_F(TextureLoadTest, FacesThatAreNotSquareAreRefused) {
  start();
  ASSERT_TRUE(texture.create_cubemap(8, PF_RGBA_U8, true));
  for (TextureCubeMapFace& face : data()->cubemap_faces) {
    ASSERT_TRUE(face.image.create(8, 4, 1, PF_RGBA_U8, true, true));
  }
  LogCapture log;
  EXPECT_FALSE(load());
  EXPECT_FALSE(data()->loaded_in_gpu_memory);
  EXPECT_TRUE(log.contains("faces of 8x4 are not square"));
  EXPECT_EQ(0, gl.count("glGenTextures"));
}

TEST_F(TextureLoadTest, LayersAreLoadedOneByOne) {
  start();
  ASSERT_TRUE(texture.create_2d_array(4, 2, 3, PF_RGBA_U8, true));
  ASSERT_TRUE(load());
  EXPECT_TRUE(
      gl.called("glTexImage3D(GL_TEXTURE_2D_ARRAY, 0, GL_RGBA, 4, 2, 3, 0, GL_RGBA, "
                "GL_UNSIGNED_BYTE, null)"));
  EXPECT_EQ(3, gl.count("glTexSubImage3D"));
  EXPECT_EQ(3u * 4 * 2 * 4, data()->gpu_memory_size);
}

TEST_F(TextureLoadTest, LayersOfOtherSizesAreLeftOut) {
  start();
  ASSERT_TRUE(texture.create_2d_array(4, 2, 3, PF_RGBA_U8, true));
  ASSERT_TRUE(data()->layers.layers[1].create(2, 2, 1, PF_RGBA_U8, true, true));
  LogCapture log;
  ASSERT_TRUE(load());
  EXPECT_EQ(2, gl.count("glTexSubImage3D"));
  EXPECT_TRUE(log.contains("layer 1 left out"));
}

TEST_F(TextureLoadTest, ArraysNeedTheirFunctions) {
  gl.remove_function("glTexImage3D");
  start();
  ASSERT_TRUE(texture.create_2d_array(4, 2, 3, PF_RGBA_U8, true));
  EXPECT_FALSE(load());
}
