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

class TextureUpdateTest : public FakeGlTest {
 protected:
  void SetUp() override { start(); }
  void TearDown() override { renderer.texture_unload(data()); }
  void load_2d(bool mipmaps = false, PIXEL_FORMAT format = PF_RGBA_U8) {
    ASSERT_TRUE(texture.create_2d(8, 4, format, true));
    texture.gen_mipmaps(mipmaps);
    load();
  }
  void load() {
    ASSERT_TRUE(renderer.texture_load(nullptr, data(), 0));
    data()->gpu_update_needed = true;
    gl.clear();
  }
  bool update(int x, int y, int width, int height) {
    return renderer.texture_update_2d(data(), x, y, width, height, 1);
  }
  TextureData* data() { return texture.get_data_ptr(); }

  Texture texture;
};

constexpr char WHOLE[] =
    "glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 8, 4, GL_RGBA, GL_UNSIGNED_BYTE, ptr)";

}  // namespace

TEST_F(TextureUpdateTest, WholeImageIsSent) {
  load_2d();
  EXPECT_TRUE(update(0, 0, 8, 4));
  EXPECT_FALSE(data()->gpu_update_needed);
  EXPECT_THAT(take_changes(),
              ElementsAre("glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_2D, 1)",
                          "glPixelStorei(GL_UNPACK_ALIGNMENT, 8)", WHOLE,
                          "glPixelStorei(GL_UNPACK_ALIGNMENT, 1)"));
}

TEST_F(TextureUpdateTest, WithoutTheFlagTheCallerHasBound) {
  load_2d();
  EXPECT_TRUE(renderer.texture_update_2d(data(), 0, 0, 8, 4, 0));
  EXPECT_EQ(0, gl.count("glBindTexture"));
  EXPECT_TRUE(gl.called(WHOLE));
}

TEST_F(TextureUpdateTest, PartsAreTakenOutOfTheImage) {
  load_2d();
  EXPECT_TRUE(update(2, 1, 3, 2));
  EXPECT_TRUE(gl.called("glPixelStorei(GL_UNPACK_ROW_LENGTH, 8)"));
  EXPECT_TRUE(
      gl.called("glTexSubImage2D(GL_TEXTURE_2D, 0, 2, 1, 3, 2, GL_RGBA, GL_UNSIGNED_BYTE, ptr)"));
  EXPECT_TRUE(gl.called("glPixelStorei(GL_UNPACK_ROW_LENGTH, 0)"));
}

TEST_F(TextureUpdateTest, RegionsBeyondTheImageAreRefused) {
  load_2d();
  const int regions[][4] = {{0, 0, 9, 4},  {0, 0, 8, 5},          {1, 0, 8, 4},
                            {0, 1, 8, 4},  {-1, 0, 4, 4},         {0, -1, 4, 4},
                            {0, 0, -1, 4}, {0, 0, 4, -1},         {0, 0, 0, 4},
                            {8, 0, 1, 1},  {0x7FFFFFFF, 0, 1, 1}, {1, 0, 0x7FFFFFFF, 1}};
  const unsigned char pixels[256] = {};
  for (const auto& r : regions) {
    EXPECT_FALSE(update(r[0], r[1], r[2], r[3])) << r[0] << ' ' << r[1] << ' ' << r[2];
    EXPECT_FALSE(renderer.texture_update_2d_v2(data(), r[0], r[1], r[2], r[3], 1, pixels));
  }
  EXPECT_EQ(0, gl.count("glTexSubImage2D"));
}

TEST_F(TextureUpdateTest, NothingToSendClearsTheRequestAlone) {
  ASSERT_TRUE(texture.create_2d(8, 4, PF_RGBA_U8, true));
  data()->gpu_update_needed = true;
  EXPECT_FALSE(update(0, 0, 8, 4)) << "no id";
  EXPECT_FALSE(data()->gpu_update_needed);
  load_2d();
  data()->image.cleanup();
  EXPECT_FALSE(update(0, 0, 8, 4)) << "no pixels";
  EXPECT_FALSE(data()->gpu_update_needed);
  data()->gpu_update_needed = true;
  data()->type = TEXTURE_1D;
  EXPECT_FALSE(renderer.texture_update_1d(data(), 0, 8));
  EXPECT_FALSE(data()->gpu_update_needed);
  data()->gpu_update_needed = true;
  data()->type = TEXTURE_CUBE;
  EXPECT_FALSE(renderer.texture_load_cube_all_faces(data()));
  EXPECT_FALSE(data()->gpu_update_needed);
  EXPECT_THAT(gl.calls(), IsEmpty());
}

TEST_F(TextureUpdateTest, TheTypeMustFit) {
  load_2d();
  EXPECT_FALSE(renderer.texture_update_1d(data(), 0, 8));
  EXPECT_FALSE(renderer.texture_load_cube_all_faces(data()));
  data()->type = TEXTURE_RECTANGLE;
  EXPECT_FALSE(update(0, 0, 8, 4));
  data()->type = TEXTURE_2D;
  EXPECT_THAT(gl.calls(), IsEmpty());
  EXPECT_FALSE(renderer.texture_update_1d(nullptr, 0, 1));
  EXPECT_FALSE(renderer.texture_update_2d(nullptr, 0, 0, 1, 1, 1));
  EXPECT_FALSE(renderer.texture_update_2d_v2(nullptr, 0, 0, 1, 1, 1, "pixel"));
  EXPECT_FALSE(renderer.texture_load_cube_all_faces(nullptr));
}

TEST_F(TextureUpdateTest, NewSizeSpecifiesTheTextureAnew) {
  load_2d(true);
  ASSERT_TRUE(texture.create_2d(2, 2, PF_RGBA_U8, true));
  EXPECT_TRUE(update(0, 0, 2, 2));
  EXPECT_TRUE(gl.called(
      "glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, ptr)"));
  EXPECT_EQ(0, gl.count("glTexSubImage2D"));
  EXPECT_TRUE(gl.called("glGenerateMipmap(GL_TEXTURE_2D)"));
  gl.clear();
  EXPECT_TRUE(update(0, 0, 2, 2));
  EXPECT_EQ(1, gl.count("glTexSubImage2D")) << "known from now on";
}

TEST_F(TextureUpdateTest, NewFormatSpecifiesTheTextureAnew) {
  load_2d();
  ASSERT_TRUE(texture.create_2d(8, 4, PF_R_F32, true));
  EXPECT_TRUE(update(0, 0, 8, 4));
  EXPECT_TRUE(gl.called("glTexImage2D(GL_TEXTURE_2D, 0, GL_R32F, 8, 4, 0, GL_RED, GL_FLOAT, ptr)"));
}

TEST_F(TextureUpdateTest, CompressedTexturesAreSentWhole) {
  ASSERT_TRUE(texture.create_2d(8, 4, PF_RGBA_U8, true));
  texture.set_compression_format("COMPRESSED_RGBA");
  load();
  EXPECT_TRUE(update(1, 1, 3, 2));
  EXPECT_EQ(0, gl.count("glTexSubImage2D"));
  EXPECT_EQ(1, gl.count("glTexImage2D"));
}

TEST_F(TextureUpdateTest, MipmapsAreMadeAgain) {
  load_2d(true);
  EXPECT_TRUE(update(0, 0, 8, 4));
  EXPECT_EQ("glGenerateMipmap(GL_TEXTURE_2D)", take_changes().back());
  renderer.texture_unload(data());
  load_2d(false);
  EXPECT_TRUE(update(0, 0, 8, 4));
  EXPECT_EQ(0, gl.count("glGenerateMipmap"));
}

TEST_F(TextureUpdateTest, CallersPixelsAreTightlyPacked) {
  load_2d();
  const unsigned char pixels[4 * 3 * 2] = {};
  EXPECT_TRUE(renderer.texture_update_2d_v2(data(), 5, 2, 3, 2, 1, pixels));
  EXPECT_THAT(take_changes(),
              ElementsAre("glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_2D, 1)",
                          "glPixelStorei(GL_UNPACK_ALIGNMENT, 1)",
                          "glTexSubImage2D(GL_TEXTURE_2D, 0, 5, 2, 3, 2, GL_RGBA, "
                          "GL_UNSIGNED_BYTE, ptr)"));
  EXPECT_FALSE(renderer.texture_update_2d_v2(data(), 5, 2, 3, 2, 1, nullptr));
}

TEST_F(TextureUpdateTest, CallersPixelsGoIntoCompressedTexturesByWholeBlocks) {
  ASSERT_TRUE(texture.create_2d(10, 8, PF_RGBA_U8, true));
  texture.set_compression_format("RGBA_S3TC_DXT5");
  load();
  data()->gpu_memory_size_compressed = 96;
  const unsigned char pixels[10 * 8 * 4] = {};
  const auto send = [&](int x, int y, int width, int height) {
    return renderer.texture_update_2d_v2(data(), x, y, width, height, 1, pixels);
  };
  EXPECT_TRUE(send(4, 4, 4, 4));
  EXPECT_TRUE(send(8, 0, 2, 8)) << "the last block is cut";
  EXPECT_EQ(2, gl.count("glTexSubImage2D"));
  EXPECT_EQ(0, gl.count("glTexImage2D")) << "what the caller sent before stays";
  gl.clear();
  LogCapture log;
  EXPECT_FALSE(send(2, 0, 4, 4));
  EXPECT_FALSE(send(0, 1, 4, 4));
  EXPECT_FALSE(send(0, 0, 3, 4));
  EXPECT_FALSE(send(0, 0, 4, 6));
  EXPECT_EQ(0, gl.count("glTexSubImage2D"));
  EXPECT_TRUE(log.contains("blocks"));
}

TEST_F(TextureUpdateTest, SizesThatNoTextureCanHaveAreRefused) {
  load_2d();
  ASSERT_TRUE(texture.create_2d(4097, 1, PF_RGBA_U8, true));
  EXPECT_FALSE(renderer.texture_update_2d(data(), 0, 0, 4097, 1, 1));
  EXPECT_FALSE(data()->gpu_update_needed);
  EXPECT_THAT(gl.changes(), IsEmpty());
}

TEST_F(TextureUpdateTest, FacesThatAreNotSquareAreRefused) {
  ASSERT_TRUE(texture.create_cubemap(4, PF_RGB_U8, true));
  load();
  for (TextureCubeMapFace& face : data()->cubemap_faces) {
    ASSERT_TRUE(face.image.create(8, 4, 1, PF_RGB_U8, true, true));
  }
  EXPECT_FALSE(renderer.texture_load_cube_all_faces(data()));
  EXPECT_THAT(gl.changes(), IsEmpty());
}

TEST_F(TextureUpdateTest, LinesAreSentFromTheOffset) {
  ASSERT_TRUE(texture.create_1d(8, PF_RGB_U8, true));
  load();
  EXPECT_TRUE(renderer.texture_update_1d(data(), 3, 5));
  EXPECT_TRUE(gl.called("glTexSubImage1D(GL_TEXTURE_1D, 0, 3, 5, GL_RGB, GL_UNSIGNED_BYTE, ptr)"));
  EXPECT_FALSE(renderer.texture_update_1d(data(), 4, 5));
  EXPECT_FALSE(renderer.texture_update_1d(data(), -1, 5));
}

TEST_F(TextureUpdateTest, FacesAreSentAll) {
  ASSERT_TRUE(texture.create_cubemap(4, PF_RGB_U8, true));
  load();
  EXPECT_TRUE(renderer.texture_load_cube_all_faces(data()));
  EXPECT_EQ(6, gl.count("glTexSubImage2D"));
  EXPECT_EQ(1, gl.count("glGenerateMipmap"));
  EXPECT_FALSE(data()->gpu_update_needed);
}

TEST_F(TextureUpdateTest, BindingATextureUploadsItFirst) {
  ASSERT_TRUE(texture.create_2d(8, 4, PF_RGBA_U8, true));
  EXPECT_TRUE(texture.bind(&renderer, 2));
  EXPECT_TRUE(data()->loaded_in_gpu_memory);
  EXPECT_EQ(1, gl.count("glTexImage2D"));
  EXPECT_EQ(0, gl.count("glTexSubImage2D"));
  gl.clear();
  data()->gpu_update_needed = true;
  EXPECT_TRUE(texture.bind(&renderer, 2));
  EXPECT_TRUE(gl.called(WHOLE));
  EXPECT_FALSE(gl.called("glActiveTexture(GL_TEXTURE0)")) << "the unit of the binding serves";
}

// ---- reading ----

TEST_F(TextureUpdateTest, PixelsAreReadIntoTheStore) {
  load_2d();
  gl.set_integer(GL_TEXTURE_WIDTH, 8);
  gl.set_integer(GL_TEXTURE_HEIGHT, 4);
  gl.texture_pixels.assign(8 * 4 * 4, 9);
  EXPECT_TRUE(renderer.texture_read_2d(data()));
  EXPECT_EQ(9, data()->image.u8_ptr[8 * 4 * 4 - 1]);
  EXPECT_TRUE(gl.called("glPixelStorei(GL_PACK_ALIGNMENT, 1)"));
  EXPECT_TRUE(gl.called("glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, ptr)"));
}

TEST_F(TextureUpdateTest, LinesAreReadToo) {
  ASSERT_TRUE(texture.create_1d(4, PF_R_F32, true));
  load();
  gl.set_integer(GL_TEXTURE_WIDTH, 4);
  EXPECT_TRUE(renderer.texture_read_1d(data()));
  EXPECT_TRUE(gl.called("glGetTexImage(GL_TEXTURE_1D, 0, GL_RED, GL_FLOAT, ptr)"));
  EXPECT_FALSE(renderer.texture_read_2d(data()));
}

TEST_F(TextureUpdateTest, NothingIsReadWithoutRoom) {
  load_2d();
  gl.set_integer(GL_TEXTURE_WIDTH, 16);
  gl.set_integer(GL_TEXTURE_HEIGHT, 4);
  EXPECT_FALSE(renderer.texture_read_2d(data())) << "more on the GPU than here";
  gl.set_integer(GL_TEXTURE_WIDTH, 8);
  unsigned char codec_pixels[128] = {};
  data()->image.cleanup();
  data()->image.codec_pixels = codec_pixels;
  EXPECT_FALSE(renderer.texture_read_2d(data())) << "pixels of a codec";
  EXPECT_EQ(0, gl.count("glGetTexImage"));
  EXPECT_FALSE(renderer.texture_read_2d(nullptr));
  EXPECT_FALSE(renderer.texture_read_1d(nullptr));
}
