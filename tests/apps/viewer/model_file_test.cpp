#include "viewer/model_file.h"

#include <algorithm>

#include "apps/viewer/loaded_file.h"

namespace viewer {
namespace {

class ModelFileTest : public LoadedFileTest {
 protected:
  static unsigned int count_materials() { return orv::MaterialMgr::get()->get_num_resources(); }
  static unsigned int count_textures() { return orv::TextureMgr::get()->get_num_resources(); }
};

TEST_F(ModelFileTest, CountsAndMeasuresACubeOfEachFormat) {
  struct Case {
    const char* name;
    unsigned int triangles;
    float half_size;
  };
  for (const Case& each : {Case{"obj/box.obj", 12, 0.5f}, Case{"stl/20mm-xyz-cube.stl", 260, 0.0f},
                           Case{"3ds/cube_with_materials.3ds", 12, 0.0f}}) {
    ASSERT_TRUE(load_data(each.name)) << reason_;
    EXPECT_EQ(file_->get_num_triangles(), each.triangles) << each.name;
    const orv::vec4 half = file_->get_box().get_half_size();
    EXPECT_NEAR(half.x, half.y, half.x * 0.2f) << each.name;
    if (each.half_size > 0.0f) {
      EXPECT_NEAR(half.x, each.half_size, 1e-5f);
    }
    EXPECT_GT(file_->get_load_milliseconds(), 0.0);
  }
}

TEST_F(ModelFileTest, ReadsRelativeIndicesOfObjFiles) {
  ASSERT_TRUE(load_data("obj/cornell_box.obj")) << reason_;
  const orv::vec4 half = file_->get_box().get_half_size();
  EXPECT_NEAR(half.x, 278.0f, 0.1f);
  EXPECT_NEAR(half.y, 274.4f, 0.1f);
  EXPECT_NEAR(half.z, 279.6f, 0.1f);
}

TEST_F(ModelFileTest, ReleaseLeavesNoMaterialAndNoTexture) {
  const unsigned int materials = count_materials();
  const unsigned int textures = count_textures();
  ASSERT_TRUE(
      load(ORV_TEST_DATA_DIR "/obj/cornell_box.obj", ORV_TEST_DATA_DIR "/img/png/basn2c08.png"))
      << reason_;
  EXPECT_GT(count_materials(), materials);
  EXPECT_EQ(count_textures(), textures + 1);
  file_->release(nullptr);
  file_.reset();
  EXPECT_EQ(count_materials(), materials);
  EXPECT_EQ(count_textures(), textures);
}

TEST_F(ModelFileTest, FailedLoadLeavesNoMaterial) {
  const unsigned int before = count_materials();
  folder_.write("m.mtl", "newmtl a\nKd 1 0 0\n");
  EXPECT_FALSE(load_text("mtllib m.mtl\nusemtl a\nv 0 0 0\n"));
  EXPECT_EQ(count_materials(), before);
  EXPECT_NE(reason_.find("no triangles"), std::string::npos) << reason_;
}

TEST_F(ModelFileTest, FileLoadedAgainBesideTheOldOneHasItsOwnMaterials) {
  const std::string obj = "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl a\nf 1 2 3\n";
  folder_.write("m.mtl", "newmtl a\nKd 1 0 0\n");
  ASSERT_TRUE(load_text(obj));
  std::unique_ptr<ModelFile> old = std::move(file_);
  folder_.write("m.mtl", "newmtl a\nKd 0 1 0\n");
  ASSERT_TRUE(load_text(obj));
  EXPECT_EQ(old->get_parts()[0].material->get_diffuse().x, 1.0f);
  EXPECT_EQ(file_->get_parts()[0].material->get_diffuse().x, 0.0f);
  EXPECT_EQ(file_->get_parts()[0].material->get_diffuse().y, 1.0f);
  old->release(nullptr);
}

TEST_F(ModelFileTest, MissingTextureIsAWarningThatNamesIt) {
  folder_.write("m.mtl", "newmtl a\nmap_Kd gone.png\n");
  ASSERT_TRUE(load_text("mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl a\nf 1 2 3\n"));
  EXPECT_NE(file_->get_warning().find("cannot load its texture gone.png"), std::string::npos)
      << file_->get_warning();
  EXPECT_EQ(file_->get_parts()[0].material->get_num_textures(), 0u);
}

TEST_F(ModelFileTest, ObjOfABadFaceIsShownAsFarAsItCanBeReadWithAWarningThatSaysWhy) {
  ASSERT_TRUE(load_data("obj/wallhole.obj")) << reason_;
  EXPECT_NE(file_->get_warning().find("shown as far as it can be read: "), std::string::npos);
  EXPECT_NE(file_->get_warning().find("line 282"), std::string::npos) << file_->get_warning();
  ASSERT_TRUE(load_data("obj/box.obj"));
  EXPECT_EQ(file_->get_warning(), "") << "a material that is named and not there is no matter";
}

TEST_F(ModelFileTest, SeveralMissingTexturesAreCountedAndTheFirstOneIsNamedWithTheReason) {
  folder_.write("junk.png", "junk");
  folder_.write("m.mtl", "newmtl a\nmap_Kd junk.png\nnewmtl b\nmap_Kd gone.png\n");
  ASSERT_TRUE(
      load_text("mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl a\nf 1 2 3\n"
                "usemtl b\nf 3 2 1\n"));
  EXPECT_NE(file_->get_warning().find("cannot load 2 of its 2 textures, first junk.png: "
                                      "cannot be decoded: "),
            std::string::npos)
      << file_->get_warning();
}

TEST_F(ModelFileTest, ObjOfWhichAPartIsBrokenIsShownWithAWarningThatSaysWhy) {
  ASSERT_TRUE(load_text("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nf 3 2 9\n")) << reason_;
  EXPECT_FALSE(file_->is_whole());
  EXPECT_NE(file_->get_warning().find(
                "model.obj: shown as far as it can be read: Vertex indices out of bounds"),
            std::string::npos)
      << file_->get_warning();
}

TEST_F(ModelFileTest, ObjWithoutAnythingToSeeIsRefusedWithTheReason) {
  EXPECT_FALSE(load_text("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 9\n"));
  EXPECT_NE(reason_.find("none of its triangles has an area: Vertex indices out of bounds"),
            std::string::npos)
      << reason_;
  EXPECT_FALSE(load_text("v 0 0 0\nv 1 0 0\nv 2 0 0\nf 1 2 3\n"));
  EXPECT_NE(reason_.find("model.obj: nothing to show: none of its triangles has an area"),
            std::string::npos)
      << reason_;
}

TEST_F(ModelFileTest, WarningsOfFileAndTexturesAreOneLine) {
  folder_.write("m.mtl", "newmtl a\nmap_Kd gone.png\n");
  ASSERT_TRUE(load_text("mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl a\nf 1 2 3\nf 3 2 9\n"));
  EXPECT_NE(file_->get_warning().find("out of bounds; cannot load its texture gone.png: "),
            std::string::npos)
      << file_->get_warning();
  EXPECT_EQ(file_->get_warning().find('\n'), std::string::npos);
}

TEST_F(ModelFileTest, VerticesAllAtOnePlaceAreRefused) {
  EXPECT_FALSE(load_text("v 1 2 3\nf 1 1 1\n"));
  EXPECT_NE(reason_.find("at one place"), std::string::npos) << reason_;
}

TEST_F(ModelFileTest, InfiniteVerticesAreRefused) {
  EXPECT_FALSE(load_text("v 1e39 0 0\nv 1 0 0\nv 0 -1e39 0\nf 1 2 3\n"));
  EXPECT_NE(reason_.find("bounds"), std::string::npos) << reason_;
}

TEST_F(ModelFileTest, NothingRemainsOfAFileThatIsCutAnywhere) {
  const std::string whole =
      orv::test::TempFolder::read_file(ORV_TEST_DATA_DIR "/3ds/cube_with_materials.3ds");
  ASSERT_GT(whole.size(), 100u);
  const unsigned int before = count_materials();
  for (std::size_t size = 0; size < whole.size(); size += 7) {
    if (load(folder_.write("cut.3ds", whole.substr(0, size)))) {
      file_->release(nullptr);
      file_.reset();
    } else {
      EXPECT_NE(reason_.find("cut.3ds: "), std::string::npos);
    }
    ASSERT_EQ(count_materials(), before) << size;
  }
}

}  // namespace
}  // namespace viewer
