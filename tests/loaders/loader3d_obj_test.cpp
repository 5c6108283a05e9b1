#include <orv/loaders/loader3d_obj.h>

#include "loaders/loader_support.h"
#include "support/log_capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace orv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Loader3D_OBJTest : public LoaderTest<Loader3D_OBJ> {};

constexpr std::string_view SQUARE = "v 0 0 0\nv 2 0 0\nv 2 2 0\nv 0 2 0\n";

std::string square_with(std::string_view rest) { return std::string(SQUARE) + std::string(rest); }

TEST_F(Loader3D_OBJTest, AQuadIsAFanOfTwoTriangles) {
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", square_with("f 1 2 3 4\n")));
  ASSERT_EQ(model->get_num_children(), 1u);
  EXPECT_THAT(mesh_positions(*mesh_of(*model, 0)),
              ElementsAre(vec4(0, 0, 0), vec4(2, 0, 0), vec4(2, 2, 0), vec4(0, 0, 0), vec4(2, 2, 0),
                          vec4(0, 2, 0)));
  MeshData& data = *mesh_of(*model, 0)->get_mesh_data();
  EXPECT_EQ(data.get_num_faces(), 2u);
  EXPECT_EQ(data.get_index_bits(), 16);
  EXPECT_EQ(data.faces_u16[1].a, 3);
  EXPECT_EQ(data.faces_u16[1].b, 4);
  EXPECT_EQ(data.faces_u16[1].c, 5);
}

TEST_F(Loader3D_OBJTest, RelativeIndicesAllMeanTheFirstPosition) {
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", "v 7 8 9\nv 1 0 0\nv 0 1 0\nf -3 -2 -1\n"));
  EXPECT_THAT(mesh_positions(*mesh_of(*model, 0)),
              ElementsAre(vec4(7, 8, 9), vec4(7, 8, 9), vec4(7, 8, 9)));
}

TEST_F(Loader3D_OBJTest, ZeroAndTooLargeIndicesMeanTheFirstElement) {
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj",
                   "v 7 8 9\nv 1 0 0\nvt 0.5 0.25\nvt 1 1\nvn 0 1 0\nvn 1 0 0\n"
                   "f 0/3/-1 3/0/9 2/2/2\n"));
  MeshData& data = *mesh_of(*model, 0)->get_mesh_data();
  EXPECT_THAT(mesh_positions(*mesh_of(*model, 0)),
              ElementsAre(vec4(7, 8, 9), vec4(7, 8, 9), vec4(1, 0, 0)));
  EXPECT_EQ(data.get_uv0(0), vec4(0.5f, 0.25f, 0, 1));
  EXPECT_EQ(data.get_uv0(1), vec4(0.5f, 0.25f, 0, 1));
  EXPECT_EQ(data.get_uv0(2), vec4(1, 1, 0, 1));
  EXPECT_EQ(data.get_normal(0), vec4(0, 1, 0, 1));
  EXPECT_EQ(data.get_normal(1), vec4(0, 1, 0, 1));
  EXPECT_EQ(data.get_normal(2), vec4(1, 0, 0, 1));
}

TEST_F(Loader3D_OBJTest, FacesWithoutAnyPositionsStandAtTheOrigin) {
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", "f 1 2 3\n"));
  EXPECT_THAT(mesh_positions(*mesh_of(*model, 0)), ElementsAre(vec4(), vec4(), vec4()));
  EXPECT_EQ(mesh_of(*model, 0)->get_mesh_data()->get_normal(0), vec4(0, 0, 0, 1));
}

TEST_F(Loader3D_OBJTest, TexcoordIndicesWithoutTexcoordsWriteNone) {
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", square_with("f 1/1 2/2 3/3\n")));
  MeshData& data = *mesh_of(*model, 0)->get_mesh_data();
  for (unsigned int i = 0; i < 3; ++i) EXPECT_EQ(data.get_uv0(i), vec4(0, 0, 0, 1));
}

TEST_F(Loader3D_OBJTest, FacesWithoutAGroupMakeTheDefaultGroup) {
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", square_with("f 1 2 3\n")));
  EXPECT_THAT(mesh_names(*model), ElementsAre("obj_default_group"));
  EXPECT_EQ(model->get_child(0)->get_parent(), model.get());
  EXPECT_EQ(model->get_child(0)->get_ref(), 1);
}

TEST_F(Loader3D_OBJTest, EachUsemtlMakesAMesh) {
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", square_with("usemtl red\nf 1 2 3\nusemtl red\nf 1 2 3\n")));
  EXPECT_THAT(mesh_names(*model), ElementsAre("obj_group_red_0", "obj_group_red_1"));
  EXPECT_THAT(material_names(*model), ElementsAre("red"));
  EXPECT_EQ(mesh_of(*model, 0)->get_material_by_index(0), find_material("red"));
  EXPECT_EQ(mesh_of(*model, 0)->get_data()->face_materials[0],
            static_cast<unsigned int>(find_material("red")->get_id()));
}

TEST_F(Loader3D_OBJTest, WithoutUsemtlTheFirstDefinedMaterialIsUsedForAll) {
  folder.write("a.mtl", "newmtl one\nKd 1 0 0\nnewmtl two\n");
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", square_with("mtllib a.mtl\ng a\nf 1 2 3\ng b\nf 1 3 4\n")));
  EXPECT_THAT(mesh_names(*model), ElementsAre("a", "b"));
  EXPECT_THAT(material_names(*mesh_of(*model, 0)), ElementsAre("one"));
  EXPECT_THAT(material_names(*mesh_of(*model, 1)), ElementsAre("one"));
  // The faces were counted on the default material, which is built for that.
  EXPECT_THAT(material_names(*model), ElementsAre("ORV_obj_default_material", "one"));
  EXPECT_EQ(find_material("one")->get_diffuse(), vec4(1, 0, 0, 1));
  EXPECT_EQ(find_material("two"), nullptr);
}

TEST_F(Loader3D_OBJTest, WithoutAnyMaterialTheDefaultOneIsUsed) {
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", square_with("f 1 2 3\n")));
  EXPECT_THAT(material_names(*mesh_of(*model, 0)), ElementsAre("ORV_obj_default_material"));
  const Material& material = *find_material("ORV_obj_default_material");
  EXPECT_EQ(material.get_ambient(), vec4(0.6f, 0.6f, 0.6f, 1));
  EXPECT_EQ(material.get_diffuse(), vec4(0.8f, 0.8f, 0.8f, 1));
  EXPECT_EQ(material.get_specular(), vec4(0.6f, 0.6f, 0.6f, 1));
  EXPECT_EQ(material.get_shininess(), 24.0f / 1000.0f * 128.0f);
  EXPECT_EQ(material.get_opacity(), 1.0f);
}

TEST_F(Loader3D_OBJTest, MgStatementNamesALibrary) {
  folder.write("1", "newmtl one\n");
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", square_with("mg 1 2\nf 1 2 3\n")));
  EXPECT_THAT(material_names(*mesh_of(*model, 0)), ElementsAre("one"));
}

TEST_F(Loader3D_OBJTest, MaterialValuesComeFromTheLibrary) {
  folder.write("a.mtl",
               "newmtl a\nillum 1\nKs 1 1 1\nNs 500\nd 0.5\nKa 0.1 0.2 0.3\nmap_Kd x.png\n"
               "map_Kd \nmap_Kd y.png\nnewmtl b\nNs 0\nillum 2\nKs 1 1 1\n");
  Held<Model> model;
  ASSERT_TRUE(
      load(*model, "a.obj", square_with("mtllib a.mtl\nusemtl a\nf 1 2 3\nusemtl b\nf 1 2 3\n")));
  Material& a = *find_material("a");
  EXPECT_EQ(a.get_specular(), vec4(0.2f, 0.2f, 0.2f, 1));
  EXPECT_EQ(a.get_ambient(), vec4(0.1f, 0.2f, 0.3f, 1));
  EXPECT_EQ(a.get_shininess(), 64.0f);
  EXPECT_EQ(a.get_opacity(), 0.5f);
  ASSERT_EQ(a.async_loading_get_num_texture_filenames(), 2u);
  EXPECT_STREQ(a.async_loading_get_texture_filename(0), "x.png");
  EXPECT_STREQ(a.async_loading_get_texture_filename(1), "y.png");
  EXPECT_EQ(find_material("b")->get_shininess(), 1.0f);
  EXPECT_EQ(find_material("b")->get_specular(), vec4(1, 1, 1, 1));
}

TEST_F(Loader3D_OBJTest, AnExistingMaterialOfTheNameWins) {
  folder.write("a.mtl", "newmtl red\nKd 1 0 0\n");
  folder.write("b.mtl", "newmtl red\nKd 0 1 0\nmap_Kd x.png\n");
  Held<Model> first;
  Held<Model> second;
  ASSERT_TRUE(load(*first, "a.obj", square_with("mtllib a.mtl\nusemtl red\nf 1 2 3\n")));
  ASSERT_TRUE(load(*second, "b.obj", square_with("mtllib b.mtl\nusemtl red\nf 1 2 3\n")));
  EXPECT_EQ(first->get_material_by_index(0), second->get_material_by_index(0));
  EXPECT_EQ(find_material("red")->get_diffuse(), vec4(1, 0, 0, 1));
  EXPECT_EQ(find_material("red")->async_loading_get_num_texture_filenames(), 0u);
  // MaterialMgr, two models and two meshes.
  EXPECT_EQ(find_material("red")->get_ref(), 5);
}

TEST_F(Loader3D_OBJTest, PositionsAloneMakeAModelWithoutMeshes) {
  Held<Model> model;
  EXPECT_TRUE(load(*model, "a.obj", SQUARE));
  EXPECT_EQ(model->get_num_children(), 0u);
  EXPECT_TRUE(load(*model, "b.obj", ""));
  EXPECT_TRUE(load(*model, "c.obj", "g empty\nusemtl unused\n"));
  EXPECT_EQ(model->get_num_children(), 0u);
  EXPECT_EQ(model->get_num_materials(), 0u);
}

TEST_F(Loader3D_OBJTest, FlatNormalsWithoutNormalsInTheFile) {
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", square_with("f 1 2 3\nf 3 2 1\nf 1 1 2\n")));
  MeshData& data = *mesh_of(*model, 0)->get_mesh_data();
  EXPECT_EQ(data.face_normals[0], vec4(0, 0, 1, 1));
  EXPECT_EQ(data.face_normals[1], vec4(0, 0, -1, 1));
  EXPECT_EQ(data.face_normals[2], vec4(0, 0, 0, 1));
  for (unsigned int i = 0; i < 9; ++i) EXPECT_EQ(data.get_normal(i), data.face_normals[i / 3]);
}

TEST_F(Loader3D_OBJTest, FaceNormalIsTheMeanOfTheFilesNormals) {
  Held<Model> model;
  ASSERT_TRUE(
      load(*model, "a.obj", square_with("vn 1 0 0\nvn 0 2 0\nvn 0 0 3\nf 1//1 2//2 3//3\n")));
  MeshData& data = *mesh_of(*model, 0)->get_mesh_data();
  EXPECT_EQ(data.face_normals[0], vec4(1.0f / 3.0f, 2.0f / 3.0f, 1, 1));
  EXPECT_EQ(data.get_normal(1), vec4(0, 2, 0, 1));
}

TEST_F(Loader3D_OBJTest, VerticesAreWhite) {
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", square_with("f 1 2 3\n")));
  for (unsigned int i = 0; i < 3; ++i) {
    EXPECT_EQ(mesh_of(*model, 0)->get_data()->get_color(i), vec4(1, 1, 1, 1));
  }
}

TEST_F(Loader3D_OBJTest, AllFormsOfGeometryHoldTheSame) {
  const std::string text = square_with(
      "vt 0.25 0.5\nvt 0.75 1\nvn 0 0 1\nvn 0 1 0\nf 1/1/1 2/2/2 3/1/1\nf 1/1/1 3/2/1 4/1/2\n");
  Held<Model> separate;
  ASSERT_TRUE(load(*separate, "a.obj", text));
  MeshData& expected = *mesh_of(*separate, 0)->get_mesh_data();

  MeshDataVertexAttribsAllocParams params;
  params.separate_vertex_arrays = false;
  Held<Model> interleaved;
  interleaved->set_mesh_vertex_alloc_params(params);
  ASSERT_TRUE(load(*interleaved, "a.obj", text));
  params.reset();
  for (unsigned int i = 0; i < 4; ++i) params.set_vertex_attrib_dim(i, i == 1 ? 2 : 3);
  params.vertex_alignment = 32;
  Held<Model> packed;
  packed->set_mesh_vertex_alloc_params(params);
  ASSERT_TRUE(load(*packed, "a.obj", text));

  for (Model* model : {interleaved.get(), packed.get()}) {
    MeshData& data = *mesh_of(*model, 0)->get_mesh_data();
    ASSERT_EQ(data.get_num_vertices(), 6u);
    for (unsigned int i = 0; i < 6; ++i) {
      EXPECT_EQ(data.get_position_4f(i), expected.get_position_4f(i));
      EXPECT_EQ(data.get_normal(i), expected.get_normal(i));
      EXPECT_EQ(data.get_uv0(i), expected.get_uv0(i));
      EXPECT_EQ(data.get_color(i), expected.get_color(i));
    }
  }
  EXPECT_TRUE(expected.get_vertex_attrib_array(0)->is_update_needed());
  EXPECT_FALSE(mesh_of(*interleaved, 0)->get_mesh_data()->has_separate_vertex_arrays());
}

TEST_F(Loader3D_OBJTest, GeometryWithoutStandardAttributesIsLeftAlone) {
  MeshDataVertexAttribsAllocParams params;
  params.std_vertex_attribs = false;
  Held<Model> model;
  model->set_mesh_vertex_alloc_params(params);
  ASSERT_TRUE(load(*model, "a.obj", square_with("f 1 2 3\n")));
  EXPECT_EQ(mesh_of(*model, 0)->get_data()->get_num_vertices(), 3u);
}

TEST_F(Loader3D_OBJTest, ManyVerticesTakeWideIndices) {
  std::string text(SQUARE);
  for (int i = 0; i < 21846; ++i) text += "f 1 2 3\n";
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", text));
  MeshData& data = *mesh_of(*model, 0)->get_mesh_data();
  EXPECT_EQ(data.get_num_vertices(), 65538u);
  EXPECT_EQ(data.get_index_bits(), 32);
  EXPECT_EQ(data.faces_u32[21845].c, 65537u);
  EXPECT_EQ(data.get_position_4f(65537), vec4(2, 2, 0));
}

TEST_F(Loader3D_OBJTest, RefusesForeignNamesAndMissingFilesWithoutALog) {
  LogCapture log(LOG_LEVEL_INFO);
  Held<Model> model;
  folder.write(".obj", "");
  EXPECT_FALSE(loader.load_model(model, ".obj"));
  EXPECT_FALSE(loader.load_model(model, "a.obx"));
  EXPECT_FALSE(loader.load_model(model, "none.obj"));
  EXPECT_FALSE(loader.load_model(model, nullptr));
  EXPECT_FALSE(loader.load_model(nullptr, "none.obj"));
  EXPECT_TRUE(load(*model, "abobj", "mtllib none.mtl\n"));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Loader3D_OBJTest, EveryTruncationLoads) {
  folder.write("a.mtl", "newmtl red\nKd 1 0 0\nmap_Kd x.png\n");
  const std::string text = square_with(
      "mtllib a.mtl\nvt 0 0\nvt 1 1\nvn 0 0 1\ng one\nusemtl red\nf 1/1/1 2/2/1 3/1/1 4/2/1\n"
      "g two\nf 1//1 2//1 3//1\n");
  for (std::size_t size = 0; size <= text.size(); ++size) {
    Held<Model> model;
    ASSERT_TRUE(load(*model, "a.obj", text.substr(0, size)));
    ASSERT_LE(model->get_num_children(), 2u);
    for (unsigned int i = 0; i < model->get_num_children(); ++i) {
      for (const vec4& p : mesh_positions(*mesh_of(*model, i))) {
        ASSERT_TRUE(std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z));
      }
    }
  }
}

}  // namespace
}  // namespace orv::test
