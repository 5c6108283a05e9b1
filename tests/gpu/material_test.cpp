#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/material.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/image/image.h>
#include <orv/image/image_codec.h>
#include <orv/math/vec4.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "support/held.h"
#include "support/log_capture.h"
#include "support/recording_renderer.h"

namespace orv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Writes down where it is bound.
class SpyTexture : public Texture {
 public:
  explicit SpyTexture(std::vector<std::string>* calls) : calls_(calls) { ++alive; }
  ~SpyTexture() override { --alive; }
  bool bind(Renderer*, unsigned int unit) override {
    calls_->push_back("bind " + std::to_string(unit));
    return true;
  }
  bool unbind(Renderer*, unsigned int unit) override {
    calls_->push_back("unbind " + std::to_string(unit));
    return true;
  }
  static int alive;

 private:
  std::vector<std::string>* calls_;
};

int SpyTexture::alive = 0;

// Knows a set of file names and decodes each to two pixels.
class NamedFilesCodec : public ImageCodec {
 public:
  NamedFilesCodec() { set_name("named files"); }
  bool load_image_from_file(Image* image, const char* filename, bool option,
                            PIXEL_FORMAT format) override {
    tried.emplace_back(filename);
    flips.push_back(option);
    formats.push_back(format);
    return files.count(filename) != 0 && image->create(2, 1, 1, PF_RGBA_U8, true, true);
  }
  bool load_image_from_memory(Image*, unsigned char*, unsigned int, bool, PIXEL_FORMAT) override {
    return false;
  }
  bool save_image_to_file(Image*, const char*) override { return false; }
  bool free_image_resources(Image*) override { return false; }

  std::set<std::string> files;
  std::vector<std::string> tried;
  std::vector<bool> flips;
  std::vector<PIXEL_FORMAT> formats;
};

class MaterialTest : public testing::Test {
 protected:
  MaterialTest() {
    SpyTexture::alive = 0;
    renderer.label(program.get_data_ptr(), "program");
  }

  SpyTexture* add_spy() {
    auto* texture = new SpyTexture(&calls);
    material.add_texture(texture);
    return texture;
  }

  test::RecordingRenderer renderer;
  GpuProgram program;
  Material material;
  std::vector<std::string> calls;
};

// ---- values ----

TEST_F(MaterialTest, StartsWithTheDescribedValues) {
  EXPECT_EQ(material.get_gpu_program(), nullptr);
  EXPECT_EQ(material.get_num_textures(), 0u);
  EXPECT_TRUE(material.get_ambient() == vec4(0.5f, 0.5f, 0.6f, 1.0f));
  EXPECT_TRUE(material.get_diffuse() == vec4(0.8f, 0.8f, 0.9f, 1.0f));
  EXPECT_TRUE(material.get_specular() == vec4(0.9f, 0.9f, 0.9f, 1.0f));
  EXPECT_EQ(material.get_shininess(), 16.0f);
  EXPECT_EQ(material.get_opacity(), 1.0f);
  EXPECT_FALSE(material.get_use_fixed_material_colors_state());
  EXPECT_EQ(material.get_texture_unit_offset(), 0u);
  EXPECT_EQ(material.async_loading_get_num_texture_filenames(), 0u);
}

TEST_F(MaterialTest, ColoursAreTakenAsVectorsOrAsNumbers) {
  material.set_ambient(vec4(1, 2, 3, 4));
  material.set_diffuse(vec4(5, 6, 7, 8));
  material.set_specular(vec4(9, 10, 11, 12));
  EXPECT_TRUE(material.get_ambient() == vec4(1, 2, 3, 4));
  EXPECT_TRUE(material.get_diffuse() == vec4(5, 6, 7, 8));
  EXPECT_TRUE(material.get_specular() == vec4(9, 10, 11, 12));
  material.set_ambient(4, 3, 2, 1);
  material.set_diffuse(8, 7, 6, 5);
  material.set_specular(12, 11, 10, 9);
  EXPECT_TRUE(material.get_ambient() == vec4(4, 3, 2, 1));
  EXPECT_TRUE(material.get_diffuse() == vec4(8, 7, 6, 5));
  EXPECT_TRUE(material.get_specular() == vec4(12, 11, 10, 9));
  material.set_shininess(3);
  material.set_opacity(0.25f);
  EXPECT_EQ(material.get_shininess(), 3);
  EXPECT_EQ(material.get_opacity(), 0.25f);
}

TEST_F(MaterialTest, ProgramIsNotCounted) {
  material.set_gpu_program(&program);
  EXPECT_EQ(material.get_gpu_program(), &program);
  EXPECT_EQ(program.get_ref(), 0);
}

// ---- textures ----

TEST_F(MaterialTest, NullTextureIsIgnored) {
  material.add_texture(nullptr);
  EXPECT_EQ(material.get_num_textures(), 0u);
}

TEST_F(MaterialTest, TexturesAreFoundByIndexAndId) {
  SpyTexture* a = add_spy();
  SpyTexture* b = add_spy();
  EXPECT_EQ(material.get_texture_by_index(0), a);
  EXPECT_EQ(material.get_texture_by_index(1), b);
  EXPECT_EQ(material.get_texture_by_index(2), nullptr);
  EXPECT_EQ(material.get_texture(b->get_id()), b);
  EXPECT_EQ(material.get_texture(-1), nullptr);
  material.remove_all_textures();
}

TEST_F(MaterialTest, RemovedTextureDiesWithItsLastReference) {
  SpyTexture* kept = add_spy();
  kept->add_ref();
  SpyTexture* gone = add_spy();
  EXPECT_TRUE(material.remove_texture(gone->get_id()));
  EXPECT_EQ(SpyTexture::alive, 1);
  EXPECT_TRUE(material.remove_texture(kept->get_id()));
  EXPECT_EQ(SpyTexture::alive, 1);
  EXPECT_EQ(kept->get_ref(), 1);
  EXPECT_EQ(material.get_num_textures(), 0u);
  EXPECT_FALSE(material.remove_texture(kept->get_id()));
  kept->release(nullptr, nullptr);
  EXPECT_EQ(SpyTexture::alive, 0);
}

TEST_F(MaterialTest, RemovedTextureLosesItsChildren) {
  SpyTexture* texture = add_spy();
  texture->add_ref();
  texture->add_child(new SpyTexture(&calls));
  auto* held_child = new SpyTexture(&calls);
  held_child->add_ref();
  texture->add_child(held_child);
  EXPECT_EQ(SpyTexture::alive, 3);
  EXPECT_TRUE(material.remove_texture(texture->get_id()));
  EXPECT_EQ(SpyTexture::alive, 2);
  EXPECT_EQ(texture->get_num_children(), 0u);
  EXPECT_EQ(held_child->get_ref(), 1);
  held_child->release(nullptr, nullptr);
  texture->release(nullptr, nullptr);
  EXPECT_EQ(SpyTexture::alive, 0);
}

TEST_F(MaterialTest, OnlyTheFirstOfTwoEntriesIsRemoved) {
  SpyTexture* texture = add_spy();
  material.add_texture(texture);
  EXPECT_EQ(texture->get_ref(), 2);
  EXPECT_TRUE(material.remove_texture(texture->get_id()));
  EXPECT_EQ(material.get_num_textures(), 1u);
  EXPECT_EQ(SpyTexture::alive, 1);
  EXPECT_TRUE(material.remove_texture(texture->get_id()));
  EXPECT_EQ(SpyTexture::alive, 0);
}

TEST_F(MaterialTest, AllTexturesAreRemovedTogether) {
  SpyTexture* twice = add_spy();
  material.add_texture(twice);
  add_spy();
  EXPECT_TRUE(material.remove_all_textures());
  EXPECT_EQ(material.get_num_textures(), 0u);
  EXPECT_EQ(SpyTexture::alive, 0);
  EXPECT_TRUE(material.remove_all_textures());
}

TEST_F(MaterialTest, CleanupRemovesTexturesAndKeepsTheRest) {
  add_spy();
  material.set_shininess(5);
  EXPECT_TRUE(material.cleanup(&renderer, nullptr));
  EXPECT_EQ(SpyTexture::alive, 0);
  EXPECT_EQ(material.get_shininess(), 5);
  add_spy();
  EXPECT_EQ(material.get_num_textures(), 1u);
  material.remove_all_textures();
}

// ---- use ----

TEST_F(MaterialTest, FreshMaterialBindsWithNoCall) {
  material.bind(&renderer);
  material.unbind(&renderer);
  EXPECT_THAT(renderer.calls(), IsEmpty());
}

TEST_F(MaterialTest, BindsProgramTexturesAndColoursInThisOrder) {
  material.set_gpu_program(&program);
  add_spy();
  material.set_use_fixed_material_colors_state(true);
  material.set_ambient(1, 0, 0, 1);
  material.set_diffuse(0, 1, 0, 1);
  material.set_specular(0, 0, 1, 1);
  material.bind(&renderer);
  EXPECT_THAT(renderer.calls(),
              ElementsAre("gpu_program_bind(program)",
                          "material_set_all((1, 0, 0, 1), (0, 1, 0, 1), (0, 0, 1, 1), 16)"));
  EXPECT_THAT(calls, ElementsAre("bind 0"));
  renderer.clear();
  material.unbind(&renderer);
  EXPECT_THAT(renderer.calls(), ElementsAre("gpu_program_bind(null)"));
  EXPECT_THAT(calls, ElementsAre("bind 0", "unbind 0"));
  material.remove_all_textures();
}

TEST_F(MaterialTest, ColoursAreSetOnlyWhenAskedFor) {
  material.set_gpu_program(&program);
  material.bind(&renderer);
  EXPECT_EQ(renderer.count("material_set_all"), 0);
}

TEST_F(MaterialTest, UnitOffsetMovesTheTextures) {
  add_spy();
  add_spy();
  material.set_texture_unit_offset(2);
  material.bind_textures(&renderer);
  material.unbind_textures(&renderer);
  EXPECT_THAT(calls, ElementsAre("bind 2", "bind 3", "unbind 2", "unbind 3"));
  material.remove_all_textures();
}

TEST_F(MaterialTest, TextureAddedTwiceIsBoundToTwoUnits) {
  material.add_texture(add_spy());
  material.bind_textures(&renderer);
  EXPECT_THAT(calls, ElementsAre("bind 0", "bind 1"));
  material.remove_all_textures();
}

TEST_F(MaterialTest, TextureMayChangeTheListWhileItIsBound) {
  class ClearingTexture : public Texture {
   public:
    explicit ClearingTexture(Material* material) : material_(material) {}
    bool bind(Renderer*, unsigned int) override { return material_->remove_all_textures(); }

   private:
    Material* material_;
  };
  test::Held<ClearingTexture> clearing(&material);
  material.add_texture(clearing);
  add_spy();
  material.bind_textures(&renderer);
  EXPECT_THAT(calls, IsEmpty());
  EXPECT_EQ(material.get_num_textures(), 0u);
}

TEST_F(MaterialTest, ProgramIsBoundAlone) {
  material.set_gpu_program(&program);
  add_spy();
  material.bind_gpu_program(&renderer);
  material.unbind_gpu_program(&renderer);
  EXPECT_THAT(renderer.calls(), ElementsAre("gpu_program_bind(program)", "gpu_program_bind(null)"));
  EXPECT_THAT(calls, IsEmpty());
  material.remove_all_textures();
}

TEST_F(MaterialTest, FixedColoursAreSetAlways) {
  material.fixed_pipeline_bind_colors(&renderer);
  EXPECT_EQ(renderer.count("material_set_all"), 1);
}

TEST_F(MaterialTest, NullRendererIsTolerated) {
  material.set_gpu_program(&program);
  material.set_use_fixed_material_colors_state(true);
  material.bind(nullptr);
  material.unbind(nullptr);
  material.fixed_pipeline_bind_colors(nullptr);
}

// ---- loading ----

class MaterialLoading : public MaterialTest {
 protected:
  MaterialLoading() {
    TextureMgr::get()->register_image_codec_plugin(&codec);
    TextureMgr::get()->set_current_image_codec_name("named files");
    num_textures_before = TextureMgr::get()->get_num_resources();
    material.set_name("brick");
  }
  ~MaterialLoading() override {
    material.remove_all_textures();
    TextureMgr::get()->stop(nullptr);
    TextureMgr::get()->set_current_image_codec_name("stb");
  }

  NamedFilesCodec codec;
  unsigned int num_textures_before = 0;
};

TEST_F(MaterialLoading, LoadedTextureIsAddedConvertedAndUploaded) {
  codec.files = {"wall.png"};
  Texture* texture = material.load_texture(&renderer, "wall.png", PF_RGB_U8, true);
  ASSERT_NE(texture, nullptr);
  EXPECT_EQ(material.get_texture_by_index(0), texture);
  EXPECT_EQ(texture->get_ref(), 2);
  EXPECT_EQ(texture->get_data_ptr()->type, TEXTURE_2D);
  EXPECT_EQ(texture->get_data_ptr()->image.pixel_format, PF_RGB_U8);
  EXPECT_TRUE(texture->get_data_ptr()->gpu_update_needed);
  EXPECT_FALSE(codec.flips.front());
  EXPECT_EQ(codec.formats.front(), PF_RGB_U8);
  EXPECT_EQ(renderer.count("texture_load"), 1);
  EXPECT_EQ(renderer.count("texture_load_direct3d"), 0);
}

TEST_F(MaterialLoading, Direct3DRenderersLoadTheirOwnWay) {
  codec.files = {"wall.png"};
  renderer.use_api_type(ORV_API3D_D3D12);
  EXPECT_NE(material.load_texture(&renderer, "wall.png", PF_RGBA_U8, false), nullptr);
  EXPECT_EQ(renderer.count("texture_load"), 0);
  EXPECT_EQ(renderer.count("texture_load_direct3d"), 1);
}

TEST_F(MaterialLoading, TextureIsGivenThoughItsUploadFailed) {
  codec.files = {"wall.png"};
  renderer.answer("texture_load", 0);
  EXPECT_NE(material.load_texture(&renderer, "wall.png", PF_RGBA_U8, false), nullptr);
  EXPECT_EQ(material.get_num_textures(), 1u);
}

TEST_F(MaterialLoading, LoadsWithoutARenderer) {
  codec.files = {"wall.png"};
  EXPECT_NE(material.load_texture(nullptr, "wall.png", PF_RGBA_U8, false), nullptr);
}

TEST_F(MaterialLoading, MissingFileLeavesNothingBehind) {
  EXPECT_EQ(material.load_texture(&renderer, "none.png", PF_RGBA_U8, false), nullptr);
  EXPECT_EQ(material.load_texture(&renderer, nullptr, PF_RGBA_U8, false), nullptr);
  EXPECT_EQ(material.get_num_textures(), 0u);
  EXPECT_EQ(TextureMgr::get()->get_num_resources(), num_textures_before);
  EXPECT_THAT(renderer.calls(), IsEmpty());
}

TEST_F(MaterialLoading, NamesAreListedInOrder) {
  EXPECT_FALSE(material.async_loading_add_texture_filename(nullptr));
  EXPECT_TRUE(material.async_loading_add_texture_filename("a.png"));
  EXPECT_TRUE(material.async_loading_add_texture_filename("b.png"));
  EXPECT_EQ(material.async_loading_get_num_texture_filenames(), 2u);
  EXPECT_STREQ(material.async_loading_get_texture_filename(1), "b.png");
  EXPECT_EQ(material.async_loading_get_texture_filename(2), nullptr);
  EXPECT_TRUE(material.async_loading_clear_texture_filenames_list());
  EXPECT_EQ(material.async_loading_get_num_texture_filenames(), 0u);
}

TEST_F(MaterialLoading, EmptyListLoadsNothing) {
  EXPECT_EQ(
      material.async_loading_process_all_texture_filenames(&renderer, "x/", PF_RGBA_U8, false), 0u);
  EXPECT_THAT(codec.tried, IsEmpty());
}

TEST_F(MaterialLoading, MissingSecondOfThreeDoesNotStopTheList) {
  test::LogCapture log;
  codec.files = {"tex/a.png", "tex/c.png"};
  for (const char* name : {"a.png", "b.png", "c.png"}) {
    material.async_loading_add_texture_filename(name);
  }
  EXPECT_EQ(
      material.async_loading_process_all_texture_filenames(&renderer, "tex/", PF_RGBA_U8, false),
      2u);
  EXPECT_EQ(material.get_num_textures(), 2u);
  EXPECT_EQ(material.async_loading_get_num_texture_filenames(), 0u);
  EXPECT_THAT(codec.tried, ElementsAre("tex/a.png", "tex/b.png", "tex/b.png", "tex/c.png"));
}

TEST_F(MaterialLoading, EachStepOfTheListIsLogged) {
  codec.files = {"tex/a.png", "tex/c.png"};
  for (const char* name : {"a.png", "b.png", "C:\\models\\c.png"}) {
    material.async_loading_add_texture_filename(name);
  }
  const char* const expected[] = {
      "Material brick: texture 0 (tex/a.png) loaded ok.",
      "Material brick: texture 1 (tex/b.png) loading FAILED.",
      "Material brick: let's do a second attempt...",
      "Material brick: texture 1 (tex/b.png) loading FAILED, no hope!",
      "Material brick: texture 2 (tex/C:\\models\\c.png) loading FAILED.",
      "Material brick: let's do a second attempt...",
      "Material brick: texture 2 (tex/c.png) loaded ok.",
  };
  test::LogCapture log(LOG_LEVEL_INFO);
  EXPECT_EQ(
      material.async_loading_process_all_texture_filenames(nullptr, "tex/", PF_RGBA_U8, false), 2u);
  ASSERT_EQ(log.lines().size(), std::size(expected)) << log.text();
  for (std::size_t i = 0; i < std::size(expected); ++i) {
    EXPECT_THAT(log.lines()[i], testing::HasSubstr(expected[i]));
  }
}

TEST_F(MaterialLoading, FailuresAreErrors) {
  material.async_loading_add_texture_filename("b.png");
  test::LogCapture log(LOG_LEVEL_ERROR);
  material.async_loading_process_all_texture_filenames(nullptr, nullptr, PF_RGBA_U8, false);
  EXPECT_EQ(log.lines().size(), 3u);
}

TEST_F(MaterialLoading, SecondAttemptTakesTheBaseNameBehindEitherSeparator) {
  codec.files = {"tex/wall.png"};
  for (const char* name : {"/home/author/wall.png", "D:\\art\\wall.png", "a/b\\wall.png"}) {
    SCOPED_TRACE(name);
    material.async_loading_add_texture_filename(name);
    EXPECT_EQ(
        material.async_loading_process_all_texture_filenames(nullptr, "tex/", PF_RGBA_U8, false),
        1u);
  }
}

TEST_F(MaterialLoading, NullPrefixLoadsTheNamesAlone) {
  codec.files = {"wall.png"};
  material.async_loading_add_texture_filename("wall.png");
  material.async_loading_add_texture_filename("/home/author/wall.png");
  EXPECT_EQ(
      material.async_loading_process_all_texture_filenames(nullptr, nullptr, PF_RGBA_U8, false),
      2u);
  EXPECT_THAT(codec.tried, ElementsAre("wall.png", "/home/author/wall.png", "wall.png"));
}

TEST_F(MaterialLoading, NameWithoutSeparatorFallsBackOnThePrefixAlone) {
  material.async_loading_add_texture_filename("wall.png");
  EXPECT_EQ(
      material.async_loading_process_all_texture_filenames(nullptr, "tex_", PF_RGBA_U8, false), 0u);
  EXPECT_THAT(codec.tried, ElementsAre("tex_wall.png", "tex_"));
}

TEST_F(MaterialLoading, LongBaseNamesAreCut) {
  const std::string long_name(300, 'n');
  material.async_loading_add_texture_filename(("folder/" + long_name).c_str());
  material.async_loading_process_all_texture_filenames(nullptr, "tex/", PF_RGBA_U8, false);
  EXPECT_EQ(codec.tried.back(), "tex/" + std::string(255, 'n'));
}

}  // namespace
}  // namespace orv
