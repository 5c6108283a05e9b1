#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>

#include <cstring>

#include "render/opengl/gl_fixture.h"
#include "render/opengl/gl_texture_enums.h"
#include "render/opengl/textured_quad.h"

using namespace orv;
using namespace orv::test;

namespace {

class TexturesGlTest : public GlTest {
 public:
  TexturedQuad::Tools tools() {
    return {renderer, vertex_header(), pixel_header(), has_modern_shaders()};
  }

 protected:
  void TearDown() override {
    if (!IsSkipped()) renderer.texture_unload(data());
    GlTest::TearDown();
  }
  TextureData* data() { return texture.get_data_ptr(); }
  bool load(unsigned int unit = 0) { return renderer.texture_load(nullptr, data(), unit); }
  static bool is_float(const Image& image) {
    return image.pixel_format >= PF_RGB_F32 && image.pixel_format <= PF_R_F16;
  }
  static unsigned char* store(const Image& image) {
    return is_float(image) ? reinterpret_cast<unsigned char*>(image.f32_ptr) : image.u8_ptr;
  }
  static std::size_t size(const Image& image) {
    return std::size_t{image.width} * image.height * image.get_pixel_format_size();
  }
  /// Fills the store of the image with a pattern.
  static void fill(Image& image) {
    const std::size_t count = size(image) / (is_float(image) ? sizeof(float) : 1);
    for (std::size_t i = 0; i < count; ++i) {
      const unsigned int value = static_cast<unsigned int>(i * 7 + 31) % 251;
      if (is_float(image)) {
        image.f32_ptr[i] = static_cast<float>(value) / 250.0f;
      } else {
        image.u8_ptr[i] = static_cast<unsigned char>(value);
      }
    }
  }
  static std::vector<unsigned char> bytes(const Image& image) {
    return std::vector<unsigned char>(store(image), store(image) + size(image));
  }
  /// Takes the pixels away and reads them back.
  std::vector<unsigned char> read_again() {
    Image& image = data()->image;
    std::memset(store(image), 0, size(image));
    const bool is_1d = data()->type == TEXTURE_1D;
    EXPECT_TRUE(is_1d ? renderer.texture_read_1d(data()) : renderer.texture_read_2d(data()));
    return bytes(image);
  }

  Texture texture;
};

constexpr PIXEL_FORMAT STORED_FORMATS[] = {PF_RGB_U8,  PF_BGR_U8,  PF_RGBA_U8,
                                           PF_BGRA_U8, PF_RGB_F32, PF_RGBA_F32,
                                           PF_R_F32,   PF_R_U8,    PF_RG_U8};

}  // namespace

ORV_BOTH_PROFILES(TexturesGlTest);

TEST_P(TexturesGlTest, PixelsOfEveryFormatComeBack) {
  for (const PIXEL_FORMAT format : STORED_FORMATS) {
    for (const unsigned int width : {1u, 4u, 5u, 6u, 8u}) {
      ASSERT_TRUE(texture.create_2d(width, 3, format, true));
      texture.gen_mipmaps(width == 8);
      fill(data()->image);
      const std::vector<unsigned char> before = bytes(data()->image);
      ASSERT_TRUE(load());
      EXPECT_EQ(before, read_again()) << "format " << format << ", width " << width;
      ASSERT_TRUE(renderer.texture_unload(data()));
      context.check();
    }
  }
}

TEST_P(TexturesGlTest, LinesComeBack) {
  ASSERT_TRUE(texture.create_1d(5, PF_RGB_U8, true));
  fill(data()->image);
  const std::vector<unsigned char> before = bytes(data()->image);
  ASSERT_TRUE(load());
  EXPECT_EQ(before, read_again());
  data()->image.u8_ptr[9] = 200;
  EXPECT_TRUE(renderer.texture_update_1d(data(), 3, 2));
  EXPECT_EQ(200, read_again()[9]);
}

TEST_P(TexturesGlTest, HalfFloatsAreTaken) {
  for (const PIXEL_FORMAT format : {PF_RGB_F16, PF_RGBA_F16, PF_R_F16}) {
    ASSERT_TRUE(texture.create_2d(4, 4, PF_RGBA_F32, true));
    data()->image.pixel_format = format;
    ASSERT_TRUE(load());
    ASSERT_TRUE(renderer.texture_unload(data()));
    context.check();
  }
}

TEST_P(TexturesGlTest, PixelBufferBringsTheSamePixels) {
  ASSERT_TRUE(texture.create_2d(5, 3, PF_RGB_U8, true));
  fill(data()->image);
  data()->use_pixel_buffer = true;
  const std::vector<unsigned char> before = bytes(data()->image);
  ASSERT_TRUE(load());
  EXPECT_NE(0u, data()->pixel_buffer_id);
  EXPECT_EQ(before, read_again());
}

TEST_P(TexturesGlTest, PartsOfTheImageAreRefreshed) {
  ASSERT_TRUE(texture.create_2d(5, 4, PF_RGB_U8, true));
  ASSERT_TRUE(load());
  fill(data()->image);
  const std::vector<unsigned char> filled = bytes(data()->image);
  EXPECT_TRUE(renderer.texture_update_2d(data(), 2, 1, 2, 2, 1));
  const std::vector<unsigned char> after = read_again();
  for (unsigned int y = 0; y < 4; ++y) {
    for (unsigned int x = 0; x < 5; ++x) {
      const bool inside = x >= 2 && x < 4 && y >= 1 && y < 3;
      const std::size_t i = (y * 5 + x) * 3;
      EXPECT_EQ(inside ? filled[i] : 0, after[i]) << x << ' ' << y;
    }
  }
  const unsigned char pixel[6] = {9, 8, 7, 6, 5, 4};
  EXPECT_TRUE(renderer.texture_update_2d_v2(data(), 3, 3, 2, 1, 1, pixel));
  const std::vector<unsigned char> last = read_again();
  EXPECT_EQ(0, std::memcmp(pixel, &last[(3 * 5 + 3) * 3], 6));
}

TEST_P(TexturesGlTest, ImageOfAnotherSizeAndFormatReplacesTheOld) {
  ASSERT_TRUE(texture.create_2d(8, 8, PF_RGBA_U8, true));
  ASSERT_TRUE(load());
  ASSERT_TRUE(texture.create_2d(5, 3, PF_R_F32, true));
  fill(data()->image);
  const std::vector<unsigned char> before = bytes(data()->image);
  EXPECT_TRUE(renderer.texture_update_2d(data(), 0, 0, 5, 3, 1));
  EXPECT_EQ(before, read_again());
}

TEST_P(TexturesGlTest, EveryCompressionIsTaken) {
  for (const char* name :
       {"COMPRESSED_RED", "COMPRESSED_RG", "COMPRESSED_RGB", "COMPRESSED_RGBA", "RGB_S3TC_DXT1",
        "RGBA_S3TC_DXT1", "RGBA_S3TC_DXT3", "RGBA_S3TC_DXT5", "RED_RGTC1", "SIGNED_RED_RGTC1",
        "RED_GREEN_RGTC2", "SIGNED_RED_GREEN_RGTC2", "NO_SUCH_THING"}) {
    ASSERT_TRUE(texture.create_2d(64, 64, PF_RGBA_U8, true));
    ASSERT_TRUE(texture.set_compression_format(name));
    ASSERT_TRUE(load()) << name;
    EXPECT_EQ(64u * 64 * 4, data()->gpu_memory_size);
    if (std::strstr(name, "S3TC") && renderer.facts().s3tc_supported == 1) {
      EXPECT_EQ(std::strstr(name, "DXT1") ? 2048u : 4096u, data()->gpu_memory_size_compressed);
    }
    EXPECT_TRUE(renderer.texture_update_2d(data(), 1, 1, 3, 3, 1)) << name;
    ASSERT_TRUE(renderer.texture_unload(data()));
    context.check();
  }
}

TEST_P(TexturesGlTest, TextureIsSampled) {
  ASSERT_TRUE(texture.create_2d(4, 4, PF_BGR_U8, true));
  for (int i = 0; i < 16; ++i) data()->image.u8_ptr[i * 3] = 255;
  TexturedQuad quad(tools(), "sampler2D", "SAMPLE_2D(image, uv)");
  EXPECT_TRUE(texture.bind(&renderer, 2)) << "the first binding uploads";
  quad.draw(2);
  EXPECT_EQ(BLUE, center());
  std::memset(data()->image.u8_ptr, 255, 48);
  data()->gpu_update_needed = true;
  EXPECT_TRUE(texture.bind(&renderer, 2));
  quad.draw(2);
  EXPECT_EQ(WHITE, center()) << "all levels are made again";
}

TEST_P(TexturesGlTest, CubesAndArraysAreSampled) {
  ASSERT_TRUE(texture.create_cubemap(4, PF_RGB_U8, true));
  for (int i = 0; i < 16; ++i) data()->cubemap_faces[3].image.u8_ptr[i * 3 + 1] = 255;
  data()->cubemap_faces[5].image.cleanup();
  ASSERT_TRUE(load(1));
  {
    TexturedQuad quad(tools(), "samplerCube", "SAMPLE_CUBE(image, vec3(0.1, -1.0, 0.2))");
    quad.draw(1);
    EXPECT_EQ(GREEN, center());
  }
  EXPECT_TRUE(renderer.texture_load_cube_all_faces(data()));
  ASSERT_TRUE(renderer.texture_unload(data()));
  if (!has_modern_shaders()) return;
  ASSERT_TRUE(texture.create_2d_array(4, 4, 3, PF_RGB_U8, true));
  for (int i = 0; i < 16; ++i) data()->layers.layers[2].u8_ptr[i * 3] = 255;
  ASSERT_TRUE(data()->layers.layers[1].create(2, 2, 1, PF_RGB_U8, true, true));
  ASSERT_TRUE(load(1));
  TexturedQuad quad(tools(), "sampler2DArray", "texture(image, vec3(uv, 2.0))");
  quad.draw(1);
  EXPECT_EQ(RED, center());
}

TEST_P(TexturesGlTest, AllSettingsAreTaken) {
  ASSERT_TRUE(texture.create_2d(4, 4, PF_RGBA_U8, true));
  ASSERT_TRUE(load());
  for (int mode = 0; mode < 5; ++mode) {
    texture.set_filtering_mode(&renderer, static_cast<SAMPLER_FILTERING_MODE>(mode));
    texture.set_addressing_mode(&renderer, static_cast<SAMPLER_ADDRESSING_MODE>(mode));
    texture.set_anisotropy(&renderer, static_cast<float>(mode * 9));
  }
  int wrap = 0;
  renderer.texture_bind(data(), 0);
  renderer.texture_set_addressing_mode(data(), SAMPLER_ADDRESSING_MIRROR);
  context.core().glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, &wrap);
  EXPECT_EQ(GL_MIRRORED_REPEAT, wrap);
}

TEST_P(TexturesGlTest, SettersLeaveTheBindingAlone) {
  ASSERT_TRUE(texture.create_2d(4, 4, PF_RGBA_U8, true));
  ASSERT_TRUE(load(3));
  Texture other;
  ASSERT_TRUE(other.create_2d(2, 2, PF_RGBA_U8, true));
  ASSERT_TRUE(other.upload(&renderer, 3, false));
  texture.set_filtering_mode(&renderer, SAMPLER_FILTERING_NEAREST);
  EXPECT_EQ(other.get_opengl_texture_id(), renderer.get_texture_2d_binding_of_unit(3));
  other.unload(&renderer);
}

TEST_P(TexturesGlTest, UnitsAreClearedWithoutErrors) {
  ASSERT_TRUE(texture.create_2d(4, 4, PF_RGBA_U8, true));
  ASSERT_TRUE(load(1));
  EXPECT_TRUE(renderer.texture_unbind_unit(1));
  EXPECT_EQ(0u, renderer.get_texture_2d_binding_of_unit(1));
  EXPECT_TRUE(renderer.texture_unbind_all_units());
  for (int type = 0; type < 9; ++type) {
    renderer.enable_texture_target(static_cast<TEXTURE_TYPE>(type), true);
    renderer.enable_texture_target(static_cast<TEXTURE_TYPE>(type), false);
  }
}

TEST_P(TexturesGlTest, ImagesAreBoundWithoutErrors) {
  if (!renderer.gl().glBindImageTexture) GTEST_SKIP() << "no images";
  ASSERT_TRUE(texture.create_2d(4, 4, PF_RGBA_U8, true));
  ASSERT_TRUE(load());
  EXPECT_TRUE(renderer.texture_bind_image(data(), 0, DATA_ACCESS_READ_WRITE));
  EXPECT_TRUE(renderer.texture_bind_image(nullptr, 0, DATA_ACCESS_READ_ONLY));
}

TEST_P(TexturesGlTest, TexturesById) {
  unsigned int ids[2] = {};
  const unsigned char green[3 * 3 * 3] = {0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0,
                                          0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 255, 0};
  ASSERT_TRUE(renderer.texture_create_2d_by_id(
      &ids[0], 3, 3, PF_RGB_U8, green, SAMPLER_FILTERING_TRILINEAR, SAMPLER_ADDRESSING_WRAP));
  ASSERT_TRUE(renderer.texture_create_rect_by_id(
      &ids[1], 3, 3, PF_RGB_U8, green, SAMPLER_FILTERING_NEAREST, SAMPLER_ADDRESSING_WRAP));
  EXPECT_TRUE(renderer.texture_bind_rect_unit(ids[1], 2));
  EXPECT_TRUE(renderer.texture_bind_2d_by_id(ids[0], 1));
  TexturedQuad quad(tools(), "sampler2D", "SAMPLE_2D(image, uv)");
  quad.draw(1);
  EXPECT_EQ(GREEN, center());
  for (const unsigned int id : ids) EXPECT_TRUE(renderer.texture_delete_id(id));
}
