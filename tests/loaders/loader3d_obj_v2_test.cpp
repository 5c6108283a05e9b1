#include <orv/loaders/loader3d_obj_v2.h>

#include "loaders/loader_support.h"
#include "loaders/tinyobj_shape.h"
#include "support/log_capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace orv::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Loader3D_OBJ_V2Test : public LoaderTest<Loader3D_OBJ_V2> {};

constexpr const char* SQUARE = "v 0 0 0\nv 2 0 0\nv 2 2 0\nv 0 2 0\n";

TEST_F(Loader3D_OBJ_V2Test, SharesVerticesBetweenTriangles) {
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", std::string(SQUARE) + "o square\nf 1 2 3 4\n"));
  EXPECT_THAT(mesh_names(*model), ElementsAre("square"));
  MeshData& data = *mesh_of(*model, 0)->get_mesh_data();
  EXPECT_EQ(data.get_num_vertices(), 4u);
  EXPECT_EQ(data.get_num_faces(), 2u);
  for (unsigned int i = 0; i < 4; ++i) {
    EXPECT_EQ(data.get_color(i), vec4(1, 1, 1, 1));
    EXPECT_EQ(data.get_uv0(i), vec4(0, 0, 0, 1));
  }
}

TEST_F(Loader3D_OBJ_V2Test, ResolvesRelativeIndices) {
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", "v 7 8 9\nv 1 0 0\nv 0 1 0\nf -3 -2 -1\n"));
  EXPECT_THAT(mesh_positions(*mesh_of(*model, 0)),
              ElementsAre(vec4(7, 8, 9), vec4(1, 0, 0), vec4(0, 1, 0)));
}

TEST_F(Loader3D_OBJ_V2Test, ReadsNormalsAndTexcoords) {
  Held<Model> model;
  ASSERT_TRUE(
      load(*model, "a.obj", std::string(SQUARE) + "vt 0.25 0.5\nvn 0 0 2\nf 1/1/1 2/1/1 3\n"));
  MeshData& data = *mesh_of(*model, 0)->get_mesh_data();
  EXPECT_EQ(data.get_uv0(0), vec4(0.25f, 0.5f, 0, 1));
  EXPECT_EQ(data.get_normal(1), vec4(0, 0, 2, 1));
  EXPECT_EQ(data.get_uv0(2), vec4(0, 0, 0, 1));
  EXPECT_EQ(data.get_normal(2), vec4(0, 0, 0, 1));
}

TEST_F(Loader3D_OBJ_V2Test, MaterialsComeFromTheLibrary) {
  folder.write("a.mtl",
               "newmtl a\nKa 0.1 0.2 0.3\nKd 0.4 0.5 0.6\nKs 0.7 0.8 0.9\nNs 500\nd 0.75\n"
               "Tf 0.25 0.5 1\nmap_Ks s.png\nmap_Kd d.png\nmap_Ka a.png\nnewmtl b\nNs 0\n");
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj",
                   std::string(SQUARE) + "mtllib a.mtl\nusemtl a\nf 1 2 3\nusemtl b\nf 1 3 4\n"));
  EXPECT_THAT(material_names(*model), ElementsAre("a", "b"));
  Material& a = *find_material("a");
  EXPECT_EQ(a.get_ambient(), vec4(0.1f, 0.2f, 0.3f, 1));
  EXPECT_EQ(a.get_diffuse(), vec4(0.4f, 0.5f, 0.6f, 1));
  EXPECT_EQ(a.get_specular(), vec4(0.7f, 0.8f, 0.9f, 1));
  EXPECT_EQ(a.get_shininess(), 64.0f);
  ASSERT_EQ(a.async_loading_get_num_texture_filenames(), 3u);
  EXPECT_STREQ(a.async_loading_get_texture_filename(0), "a.png");
  EXPECT_STREQ(a.async_loading_get_texture_filename(1), "d.png");
  EXPECT_STREQ(a.async_loading_get_texture_filename(2), "s.png");
  EXPECT_EQ(find_material("b")->get_shininess(), 1.0f);
}

TEST_F(Loader3D_OBJ_V2Test, OpacityIsTheFirstTransmittance) {
  folder.write("a.mtl", "newmtl a\nd 0.75\nTf 0.25 0.5 1\n");
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", "mtllib a.mtl\n"));
  EXPECT_EQ(find_material("a")->get_opacity(), 0.25f);
}

TEST_F(Loader3D_OBJ_V2Test, FacesCarryTheirMaterials) {
  folder.write("a.mtl", "newmtl unused\nnewmtl a\nnewmtl b\n");
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj",
                   std::string(SQUARE) +
                       "mtllib a.mtl\nf 1 2 3\nusemtl b\nf 1 2 3\nusemtl a\nf 1 2 3\n"
                       "usemtl b\nf 1 2 3\n"));
  ASSERT_EQ(model->get_num_children(), 1u);
  EXPECT_THAT(material_names(*mesh_of(*model, 0)), ElementsAre("b", "a"));
  const auto id = [](const char* name) {
    return static_cast<unsigned int>(find_material(name)->get_id());
  };
  const unsigned int* ids = mesh_of(*model, 0)->get_data()->face_materials;
  EXPECT_EQ(ids[0], 0u);
  EXPECT_EQ(ids[1], id("b"));
  EXPECT_EQ(ids[2], id("a"));
  EXPECT_EQ(ids[3], id("b"));
}

TEST_F(Loader3D_OBJ_V2Test, AnExistingMaterialOfTheNameWins) {
  Material* red = MaterialMgr::get()->create_material("red");
  red->set_diffuse(0, 0, 1, 1);
  folder.write("a.mtl", "newmtl red\nKd 1 0 0\n");
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", std::string(SQUARE) + "mtllib a.mtl\nusemtl red\nf 1 2 3\n"));
  EXPECT_EQ(model->get_material_by_index(0), red);
  EXPECT_EQ(red->get_diffuse(), vec4(0, 0, 1, 1));
}

TEST_F(Loader3D_OBJ_V2Test, LogsStatistics) {
  folder.write("a.mtl", "newmtl a\nKa 0.5 0.25 1\nmap_Kd d.png\nillum 2\nown thing\n");
  LogCapture log;
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", std::string(SQUARE) + "mtllib a.mtl\no square\nf 1 2 3 4\n"));
  for (const char* line :
       {"Number of meshes: 1", "meshes[0].name = square", "meshes[0].positions: 12",
        "meshes[0].normals: 0", "meshes[0].texcoords: 0", "meshes[0].indices: 6",
        "meshes[0].material_ids: 2", "Number of materials: 1", "material[0].name = a",
        "  material.Ka = (0.500000, 0.250000 ,1.000000)", "  material.Tr = (", "  material.Ke = (",
        "  material.Ni = 1.000000", "  material.dissolve = 1.000000", "  material.illum = 2",
        "  material.map_Kd = d.png",
        "  material.map_bump = ", "  material.disp = ", "  material.own = thing"}) {
    EXPECT_TRUE(log.contains(line)) << line;
  }
  EXPECT_FALSE(log.contains("error"));
}

TEST_F(Loader3D_OBJ_V2Test, AMissingLibraryOnlyLogs) {
  LogCapture log;
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", std::string(SQUARE) + "mtllib none.mtl\nf 1 2 3\n"));
  EXPECT_EQ(model->get_num_children(), 1u);
  EXPECT_TRUE(log.contains("error: "));
  EXPECT_TRUE(log.contains("none.mtl"));
  EXPECT_FALSE(log.contains("failed to load / parse"));
}

TEST_F(Loader3D_OBJ_V2Test, FailsOnIndexZeroAndLeavesNoMesh) {
  LogCapture log;
  Held<Model> model;
  EXPECT_FALSE(load(*model, "a.obj", std::string(SQUARE) + "f 1 2 3\nf 0 1 2\n"));
  EXPECT_EQ(model->get_num_children(), 0u);
  EXPECT_TRUE(log.contains("error: "));
  EXPECT_TRUE(log.contains("failed to load / parse " + folder.path() + "/a.obj"));
}

TEST_F(Loader3D_OBJ_V2Test, FailsOnAMissingFile) {
  LogCapture log;
  Held<Model> model;
  EXPECT_FALSE(loader.load_model(model, "none.obj"));
  EXPECT_TRUE(log.contains("error: Cannot open file"));
  EXPECT_TRUE(log.contains("failed to load / parse"));
  log.clear();
  EXPECT_FALSE(loader.load_model(model, ".obj"));
  EXPECT_FALSE(loader.load_model(nullptr, "a.obj"));
  EXPECT_FALSE(loader.load_model(model, nullptr));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(Loader3D_OBJ_V2Test, LibrariesThatAreNoPlainFilesAreMissing) {
  // An endless device would never be read to its end.
  Held<Model> model;
  EXPECT_TRUE(load(*model, "a.obj",
                   "mtllib ../../../../../../../../../dev/zero\nmtllib .\n" + std::string(SQUARE)));
}

TEST_F(Loader3D_OBJ_V2Test, ADirectoryMayHaveAColon) {
  std::filesystem::create_directory(folder.file("a:b"));
  folder.write("a:b/a.mtl", "newmtl a\n");
  folder.write("a:b/a.obj", "mtllib a.mtl\n");
  loader.set_model_dir((folder.file("a:b") + "/").c_str());
  Held<Model> model;
  ASSERT_TRUE(loader.load_model(model, "a.obj"));
  EXPECT_NE(find_material("a"), nullptr);
}

TEST_F(Loader3D_OBJ_V2Test, IndicesPastTheEndReadZeros) {
  tinyobj::attrib_t attrib;
  attrib.vertices = {1, 2, 3};
  attrib.normals = {0, 0, 1};
  attrib.texcoords = {0.5f, 0.25f};
  tinyobj::mesh_t mesh;
  const auto add = [&mesh](int vertex, int normal, int texcoord) {
    tinyobj::index_t index;
    index.vertex_index = vertex;
    index.normal_index = normal;
    index.texcoord_index = texcoord;
    mesh.indices.push_back(index);
  };
  add(0, 0, 0);
  add(1, 7, -5);
  add(-9, -1, 1000000000);
  add(0, 0, 0);
  const detail::TinyobjShape shape = detail::make_tinyobj_shape(attrib, mesh);
  EXPECT_THAT(shape.positions, ElementsAre(1, 2, 3, 0, 0, 0, 0, 0, 0));
  EXPECT_THAT(shape.normals, ElementsAre(0, 0, 1, 0, 0, 0, 0, 0, 0));
  EXPECT_THAT(shape.texcoords, ElementsAre(0.5f, 0.25f, 0, 0, 0, 0));
  EXPECT_THAT(shape.indices, ElementsAre(0u, 1u, 2u, 0u));
}

TEST_F(Loader3D_OBJ_V2Test, EveryTruncationEndsWell) {
  folder.write("a.mtl", "newmtl red\nKd 1 0 0\n");
  const std::string text = std::string(SQUARE) +
                           "mtllib a.mtl\nvt 0 0\nvn 0 0 1\ng one\nusemtl red\n"
                           "f 1/1/1 2/1/1 3/1/1 4/1/1\ng two\nf -1//1 2//-1 3//1\n";
  for (std::size_t size = 0; size <= text.size(); ++size) {
    Held<Model> model;
    load(*model, "a.obj", text.substr(0, size));
    for (unsigned int i = 0; i < model->get_num_children(); ++i) {
      MeshData& data = *mesh_of(*model, i)->get_mesh_data();
      for (unsigned int face = 0; face < data.get_num_faces(); ++face) {
        unsigned int a = 0, b = 0, c = 0;
        mesh_of(*model, i)->get_face_indexes(face, &a, &b, &c);
        ASSERT_LT(std::max({a, b, c}), data.get_num_vertices());
      }
    }
  }
}

}  // namespace
}  // namespace orv::test
