#include <orv/gpu/texture_data.h>

#include "render/opengl/fake_gl_fixture.h"

using namespace orv;
using namespace orv::test;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

class TextureUnitsTest : public FakeGlTest {
 protected:
  TextureUnitsTest() { texture.set_opengl_texture_id(77); }
  TextureData texture;
};

const Calls CLEARED = {
    "glBindTexture(GL_TEXTURE_1D, 0)",       "glBindTexture(GL_TEXTURE_2D, 0)",
    "glBindTexture(GL_TEXTURE_2D_ARRAY, 0)", "glBindTexture(GL_TEXTURE_2D_MULTISAMPLE, 0)",
    "glBindTexture(GL_TEXTURE_3D, 0)",       "glBindTexture(GL_TEXTURE_CUBE_MAP, 0)",
    "glBindTexture(GL_TEXTURE_RECTANGLE, 0)"};

}  // namespace

TEST_F(TextureUnitsTest, BindingSelectsTheUnitAndTakesTheTypesTarget) {
  start();
  const char* const targets[] = {"GL_TEXTURE_1D",
                                 "GL_TEXTURE_2D",
                                 "GL_TEXTURE_3D",
                                 "GL_TEXTURE_CUBE_MAP",
                                 "GL_TEXTURE_2D_MULTISAMPLE",
                                 "GL_TEXTURE_RECTANGLE",
                                 "GL_TEXTURE_2D_ARRAY",
                                 "GL_TEXTURE_2D"};
  for (int type = 1; type <= 8; ++type) {
    texture.type = static_cast<TEXTURE_TYPE>(type);
    EXPECT_TRUE(renderer.texture_bind(&texture, 3));
    EXPECT_THAT(take(), ElementsAre("glActiveTexture(GL_TEXTURE3)",
                                    "glBindTexture(" + std::string(targets[type - 1]) + ", 77)"));
  }
}

TEST_F(TextureUnitsTest, TheCallIsAlwaysMade) {
  start();
  renderer.texture_bind(&texture, 0);
  gl.clear();
  renderer.texture_bind(&texture, 0);
  EXPECT_TRUE(gl.called("glBindTexture(GL_TEXTURE_2D, 77)"));
}

TEST_F(TextureUnitsTest, UnitsThatAreNotThereAreRefused) {
  start();
  EXPECT_TRUE(renderer.texture_bind(&texture, 15));
  gl.clear();
  for (const unsigned int unit : {16u, 17u, ~0u}) {
    EXPECT_FALSE(renderer.texture_bind(&texture, unit));
    EXPECT_FALSE(renderer.texture_bind_2d_by_id(77, unit));
    EXPECT_FALSE(renderer.texture_bind_2d_unit(77, unit));
  }
  EXPECT_THAT(gl.calls(), IsEmpty());
}

TEST_F(TextureUnitsTest, TexturesWithoutAnIdAreRefused) {
  start();
  texture.set_opengl_texture_id(0);
  EXPECT_FALSE(renderer.texture_bind(&texture, 0));
  EXPECT_THAT(gl.calls(), IsEmpty());
}

TEST_F(TextureUnitsTest, NothingClearsAllTargetsOfTheUnit) {
  start();
  EXPECT_TRUE(renderer.texture_bind(nullptr, 2));
  Calls expected = {"glActiveTexture(GL_TEXTURE2)"};
  expected.insert(expected.end(), CLEARED.begin(), CLEARED.end());
  EXPECT_EQ(expected, take());
  EXPECT_TRUE(renderer.texture_unbind(&texture, 2));
  EXPECT_EQ(expected, take());
}

TEST_F(TextureUnitsTest, ClearingUnitsThatAreNotThereDoesNothing) {
  start();
  for (const unsigned int unit : {16u, ~0u}) {
    EXPECT_TRUE(renderer.texture_bind(nullptr, unit));
    EXPECT_TRUE(renderer.texture_unbind(&texture, unit));
    EXPECT_TRUE(renderer.texture_unbind_unit(unit));
    EXPECT_TRUE(renderer.texture_bind_image(nullptr, unit, DATA_ACCESS_READ_ONLY));
  }
  EXPECT_THAT(take_changes(), IsEmpty());
}

TEST_F(TextureUnitsTest, OldDriversKnowFewerTargets) {
  gl.set_extensions({});
  start(2, 1, false);
  renderer.texture_bind(nullptr, 0);
  EXPECT_THAT(take_changes(),
              ElementsAre("glActiveTexture(GL_TEXTURE0)", "glBindTexture(GL_TEXTURE_1D, 0)",
                          "glBindTexture(GL_TEXTURE_2D, 0)", "glBindTexture(GL_TEXTURE_3D, 0)",
                          "glBindTexture(GL_TEXTURE_CUBE_MAP, 0)"));
  EXPECT_FALSE(renderer.texture_bind_2d_multisample_by_id(7, 0));
  EXPECT_FALSE(renderer.texture_bind_2d_array_by_id(7, 0));
  EXPECT_FALSE(renderer.texture_bind_rect_by_id(7, 0));
  EXPECT_FALSE(renderer.texture_bind_rect_unit(7, 0));
  EXPECT_THAT(take_changes(), IsEmpty());
}

TEST_F(TextureUnitsTest, UnbindingAUnitClearsItWhole) {
  start();
  EXPECT_TRUE(renderer.texture_unbind_unit(1));
  Calls expected = {"glActiveTexture(GL_TEXTURE1)"};
  expected.insert(expected.end(), CLEARED.begin(), CLEARED.end());
  for (const char* call :
       {"glBindImageTexture(1, 0, 0, GL_FALSE, 0, GL_READ_ONLY, GL_RGBA8)",
        "glDisable(GL_TEXTURE_1D)", "glDisable(GL_TEXTURE_2D)", "glDisable(GL_TEXTURE_3D)",
        "glDisable(GL_TEXTURE_CUBE_MAP)", "glDisable(GL_TEXTURE_RECTANGLE)",
        "glClientActiveTexture(GL_TEXTURE1)", "glDisableClientState(GL_TEXTURE_COORD_ARRAY)"}) {
    expected.emplace_back(call);
  }
  EXPECT_EQ(expected, take_changes());
}

TEST_F(TextureUnitsTest, CoreContextsHaveNothingToDisable) {
  start_core();
  EXPECT_TRUE(renderer.texture_unbind_unit(1));
  EXPECT_THAT(gl.calls_of({"glDisable", "glClientActiveTexture"}), IsEmpty());
}

TEST_F(TextureUnitsTest, UnitsBeyondTheFixedPipelineAndImagesAreClearedOfTexturesAlone) {
  start();
  EXPECT_TRUE(renderer.texture_unbind_unit(8));
  Calls expected = {"glActiveTexture(GL_TEXTURE8)"};
  expected.insert(expected.end(), CLEARED.begin(), CLEARED.end());
  EXPECT_EQ(expected, take_changes());
}

TEST_F(TextureUnitsTest, AllUnitsAreClearedAndTheFirstSelected) {
  start();
  EXPECT_TRUE(renderer.texture_unbind_all_units());
  EXPECT_EQ(16u, gl.calls_of({"glBindTexture(GL_TEXTURE_2D, 0)"}).size());
  const Calls calls = take_changes();
  EXPECT_EQ("glActiveTexture(GL_TEXTURE0)", calls[calls.size() - 2]);
  EXPECT_EQ("glClientActiveTexture(GL_TEXTURE0)", calls.back());
}

TEST_F(TextureUnitsTest, IdsAreBoundToTheirTargets) {
  start();
  EXPECT_TRUE(renderer.texture_bind_2d_by_id(5, 1));
  EXPECT_TRUE(renderer.texture_bind_2d_multisample_by_id(5, 1));
  EXPECT_TRUE(renderer.texture_bind_rect_by_id(5, 1));
  EXPECT_TRUE(renderer.texture_bind_cube_by_id(5, 1));
  EXPECT_TRUE(renderer.texture_bind_2d_array_by_id(5, 1));
  EXPECT_TRUE(renderer.texture_bind_2d_unit(6, 2));
  EXPECT_TRUE(renderer.texture_bind_rect_unit(6, 2));
  EXPECT_THAT(
      gl.calls_of({"glBindTexture"}),
      ElementsAre("glBindTexture(GL_TEXTURE_2D, 5)", "glBindTexture(GL_TEXTURE_2D_MULTISAMPLE, 5)",
                  "glBindTexture(GL_TEXTURE_RECTANGLE, 5)", "glBindTexture(GL_TEXTURE_CUBE_MAP, 5)",
                  "glBindTexture(GL_TEXTURE_2D_ARRAY, 5)", "glBindTexture(GL_TEXTURE_2D, 6)",
                  "glBindTexture(GL_TEXTURE_RECTANGLE, 6)"));
  EXPECT_EQ(5u, gl.calls_of({"glActiveTexture(GL_TEXTURE1)"}).size());
}

TEST_F(TextureUnitsTest, StoppedRendererBindsNothing) {
  EXPECT_FALSE(renderer.texture_bind(&texture, 0));
  EXPECT_TRUE(renderer.texture_bind(nullptr, 0));
  EXPECT_FALSE(renderer.texture_bind_2d_by_id(1, 0));
  EXPECT_TRUE(renderer.texture_unbind_unit(0));
  EXPECT_TRUE(renderer.texture_unbind_all_units());
  EXPECT_FALSE(renderer.texture_bind_image(&texture, 0, DATA_ACCESS_READ_ONLY));
}

// ---- image units ----

TEST_F(TextureUnitsTest, ImagesAreBoundWithAccessAndFormat) {
  start();
  const std::pair<PIXEL_FORMAT, const char*> formats[] = {
      {PF_RGBA_U8, "GL_RGBA8"}, {PF_BGRA_U8, "GL_RGBA8"},    {PF_RG_U8, "GL_RG8"},
      {PF_R_U8, "GL_R8"},       {PF_RGBA_F32, "GL_RGBA32F"}, {PF_R_F32, "GL_R32F"},
      {PF_RGB_U8, "GL_RGBA"},   {PF_R_F16, "GL_RGBA"}};
  for (const auto& [format, name] : formats) {
    texture.image.pixel_format = format;
    EXPECT_TRUE(renderer.texture_bind_image(&texture, 1, DATA_ACCESS_WRITE_ONLY));
    EXPECT_TRUE(gl.called("glBindImageTexture(1, 77, 0, GL_FALSE, 0, GL_WRITE_ONLY, " +
                          std::string(name) + ")"))
        << name;
    gl.clear();
  }
  renderer.texture_bind_image(&texture, 1, DATA_ACCESS_READ_ONLY);
  renderer.texture_bind_image(&texture, 1, DATA_ACCESS_READ_WRITE);
  EXPECT_THAT(take_changes(),
              ElementsAre("glBindImageTexture(1, 77, 0, GL_FALSE, 0, GL_READ_ONLY, GL_RGBA)",
                          "glBindImageTexture(1, 77, 0, GL_FALSE, 0, GL_READ_WRITE, GL_RGBA)"));
}

TEST_F(TextureUnitsTest, ImagesNeedAUnitAndAnId) {
  start();
  EXPECT_FALSE(renderer.texture_bind_image(&texture, 8, DATA_ACCESS_READ_ONLY));
  texture.set_opengl_texture_id(0);
  EXPECT_FALSE(renderer.texture_bind_image(&texture, 0, DATA_ACCESS_READ_ONLY));
  EXPECT_THAT(take_changes(), IsEmpty());
  EXPECT_TRUE(renderer.texture_bind_image(nullptr, 0, DATA_ACCESS_READ_ONLY));
  EXPECT_TRUE(gl.called("glBindImageTexture(0, 0, 0, GL_FALSE, 0, GL_READ_ONLY, GL_RGBA8)"));
}

TEST_F(TextureUnitsTest, WithoutImagesThereIsNothingToBind) {
  gl.remove_function("glBindImageTexture");
  start();
  EXPECT_FALSE(renderer.texture_bind_image(&texture, 0, DATA_ACCESS_READ_ONLY));
  EXPECT_FALSE(renderer.texture_bind_image(nullptr, 0, DATA_ACCESS_READ_ONLY));
}
