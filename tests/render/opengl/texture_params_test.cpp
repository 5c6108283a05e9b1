#include <orv/gpu/texture_data.h>

#include "render/opengl/fake_gl_fixture.h"

using namespace orv;
using namespace orv::test;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

class TextureParamsTest : public FakeGlTest {
 protected:
  TextureParamsTest() { texture.set_opengl_texture_id(77); }
  Calls params() {
    const Calls calls = gl.calls_of({"glTexParameter"});
    gl.clear();
    return calls;
  }
  TextureData texture;
};

}  // namespace

TEST_F(TextureParamsTest, SettersBindAndPutBack) {
  start();
  renderer.texture_bind_2d_by_id(5, 3);
  gl.clear();
  renderer.texture_set_addressing_mode(&texture, SAMPLER_ADDRESSING_MIRROR);
  EXPECT_THAT(take(),
              ElementsAre("glActiveTexture(GL_TEXTURE3)", "glBindTexture(GL_TEXTURE_2D, 77)",
                          "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_MIRRORED_REPEAT)",
                          "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_MIRRORED_REPEAT)",
                          "glBindTexture(GL_TEXTURE_2D, 5)"));
}

TEST_F(TextureParamsTest, OtherTargetsOfTheUnitStayBound) {
  start();
  renderer.texture_bind_2d_by_id(5, 0);
  renderer.texture_bind_cube_by_id(6, 0);
  gl.clear();
  renderer.texture_set_filtering_mode(&texture, SAMPLER_FILTERING_NEAREST);
  EXPECT_EQ("glBindTexture(GL_TEXTURE_2D, 5)", take().back());
}

TEST_F(TextureParamsTest, BoundTexturesStayBound) {
  start();
  renderer.texture_bind(&texture, 0);
  gl.clear();
  renderer.texture_set_filtering_mode(&texture, SAMPLER_FILTERING_NEAREST);
  EXPECT_EQ(1u, gl.calls_of({"glBindTexture"}).size());
}

TEST_F(TextureParamsTest, AddressingOfTwoDirections) {
  start();
  for (const TEXTURE_TYPE type : {TEXTURE_2D, TEXTURE_CUBE, TEXTURE_2D_ARRAY}) {
    texture.type = type;
    for (const auto& [mode, name] : {std::pair{0, "GL_CLAMP_TO_EDGE"},
                                     {1, "GL_REPEAT"},
                                     {2, "GL_CLAMP_TO_EDGE"},
                                     {3, "GL_MIRRORED_REPEAT"}}) {
      renderer.texture_set_addressing_mode(&texture, static_cast<SAMPLER_ADDRESSING_MODE>(mode));
      const Calls calls = params();
      ASSERT_EQ(2u, calls.size());
      EXPECT_NE(std::string::npos, calls[0].find(std::string("GL_TEXTURE_WRAP_S, ") + name));
      EXPECT_NE(std::string::npos, calls[1].find(std::string("GL_TEXTURE_WRAP_T, ") + name));
    }
  }
}

TEST_F(TextureParamsTest, RectanglesCannotRepeat) {
  start();
  texture.type = TEXTURE_RECTANGLE;
  renderer.texture_set_addressing_mode(&texture, SAMPLER_ADDRESSING_WRAP);
  EXPECT_THAT(params(), Contains("glTexParameteri(GL_TEXTURE_RECTANGLE, GL_TEXTURE_WRAP_S, "
                                 "GL_CLAMP_TO_EDGE)"));
  texture.mipmap_max_level = 4;
  renderer.texture_set_filtering_mode(&texture, SAMPLER_FILTERING_TRILINEAR);
  EXPECT_THAT(params(),
              Contains("glTexParameteri(GL_TEXTURE_RECTANGLE, GL_TEXTURE_MIN_FILTER, GL_LINEAR)"));
}

TEST_F(TextureParamsTest, FilteringByModeAndMipmaps) {
  start();
  const struct {
    int mode, levels;
    const char *mag, *min;
  } rows[] = {{1, 0, "GL_NEAREST", "GL_NEAREST"},
              {1, -1, "GL_NEAREST", "GL_NEAREST"},
              {1, 1, "GL_NEAREST", "GL_NEAREST_MIPMAP_NEAREST"},
              {2, 0, "GL_LINEAR", "GL_LINEAR"},
              {2, 5, "GL_LINEAR", "GL_LINEAR_MIPMAP_NEAREST"},
              {3, 0, "GL_LINEAR", "GL_LINEAR"},
              {3, 5, "GL_LINEAR", "GL_LINEAR_MIPMAP_LINEAR"},
              {9, 5, "GL_LINEAR", "GL_LINEAR_MIPMAP_NEAREST"}};
  for (const auto& row : rows) {
    texture.mipmap_max_level = row.levels;
    renderer.texture_set_filtering_mode(&texture, static_cast<SAMPLER_FILTERING_MODE>(row.mode));
    EXPECT_THAT(params(), ElementsAre("glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, " +
                                          std::string(row.mag) + ")",
                                      "glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, " +
                                          std::string(row.min) + ")"))
        << row.mode << " with " << row.levels;
  }
}

TEST_F(TextureParamsTest, AnisotropyStaysWithinTheDriversLimit) {
  start();
  for (const auto& [value, text] :
       {std::pair{-3.0f, "1"}, {0.5f, "1"}, {4.0f, "4"}, {99.0f, "16"}, {std::nanf(""), "1"}}) {
    renderer.texture_set_anisotropy(&texture, value);
    EXPECT_THAT(params(),
                ElementsAre("glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY_EXT, " +
                            std::string(text) + ")"))
        << value;
  }
}

TEST_F(TextureParamsTest, AnisotropyNeedsTheExtension) {
  gl.set_extensions({});
  start(3, 3, true);
  renderer.texture_set_anisotropy(&texture, 4);
  EXPECT_THAT(take_changes(), IsEmpty());
}

TEST_F(TextureParamsTest, TexturesWithoutSettingsAreLeftAlone) {
  start();
  const auto set_all = [&](TextureData* data) {
    renderer.texture_set_anisotropy(data, 4);
    renderer.texture_set_addressing_mode(data, SAMPLER_ADDRESSING_WRAP);
    renderer.texture_set_filtering_mode(data, SAMPLER_FILTERING_LINEAR);
  };
  set_all(nullptr);
  texture.type = TEXTURE_2D_MULTISAMPLE;
  set_all(&texture);
  TextureData unloaded;
  set_all(&unloaded);
  EXPECT_THAT(gl.calls(), IsEmpty());
}

TEST_F(TextureParamsTest, SizesOfCompressedTexturesComeFromTheDriver) {
  start();
  texture.image.create(8, 4, 1, PF_RGBA_U8, true, true);
  EXPECT_EQ(0u, renderer.texture_get_compressed_size(&texture));
  EXPECT_EQ(128u, texture.gpu_memory_size);
  EXPECT_FALSE(
      gl.called("glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, "
                "GL_TEXTURE_COMPRESSED_IMAGE_SIZE, ptr)"))
      << "an error for textures that are not compressed";
  gl.set_integer(GL_TEXTURE_COMPRESSED, 1);
  gl.set_integer(GL_TEXTURE_COMPRESSED_IMAGE_SIZE, 32);
  EXPECT_EQ(32u, renderer.texture_get_compressed_size(&texture));
  EXPECT_EQ(32u, texture.gpu_memory_size_compressed);
  EXPECT_EQ(128u, texture.gpu_memory_size);
  EXPECT_EQ(0u, renderer.texture_get_compressed_size(nullptr));
}

TEST_F(TextureParamsTest, HalfFloatsTakeHalfAsMuch) {
  start();
  texture.image.width = texture.image.height = 2;
  texture.image.pixel_format = PF_RGBA_F16;
  renderer.texture_get_compressed_size(&texture);
  EXPECT_EQ(2u * 2 * 4 * 2, texture.gpu_memory_size);
}

TEST_F(TextureParamsTest, SwitchesOfTheFixedPipeline) {
  start();
  renderer.enable_texture_1d(true);
  renderer.enable_texture_2d(false);
  renderer.enable_texture_3d(true);
  renderer.enable_texture_cube_map(false);
  renderer.enable_texture_target(TEXTURE_RECTANGLE, true);
  renderer.enable_texture_target(TEXTURE_2D_ARRAY, true);
  renderer.enable_texture_target(TEXTURE_2D_MULTISAMPLE, true);
  EXPECT_THAT(take(), ElementsAre("glEnable(GL_TEXTURE_1D)", "glDisable(GL_TEXTURE_2D)",
                                  "glEnable(GL_TEXTURE_3D)", "glDisable(GL_TEXTURE_CUBE_MAP)",
                                  "glEnable(GL_TEXTURE_RECTANGLE)"));
}

TEST_F(TextureParamsTest, CoreContextsHaveNoSwitches) {
  start_core();
  renderer.enable_texture_2d(true);
  EXPECT_THAT(take(), IsEmpty());
}
