#include <orv/loaders/loader3d_obj_v2.h>

#include "loaders/loader_support.h"
#include "loaders/tinyobj_shape.h"
#include "support/log_capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

std::vector<unsigned int> face_indices(const Mesh& mesh) {
  std::vector<unsigned int> indices;
  for (unsigned int face = 0; face < mesh.get_data()->get_num_faces(); ++face) {
    unsigned int a = 0, b = 0, c = 0;
    mesh.get_face_indexes(face, &a, &b, &c);
    indices.insert(indices.end(), {a, b, c});
  }
  return indices;
}

TEST_F(Loader3D_OBJ_V2Test, FacesHoldIndicesOfTheSharedVertices) {
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", std::string(SQUARE) + "f 1 2 3\nf 3 4 1\n"));
  EXPECT_EQ(mesh_of(*model, 0)->get_data()->get_index_bits(), 16);
  EXPECT_THAT(face_indices(*mesh_of(*model, 0)), ElementsAre(0u, 1u, 2u, 2u, 3u, 0u));
  EXPECT_EQ(model->get_child(0)->get_parent(), model.get());
  EXPECT_EQ(model->get_child(0)->get_ref(), 1);
}

TEST_F(Loader3D_OBJ_V2Test, ManyVerticesTakeWideIndices) {
  std::string text;
  for (int i = 0; i < 65538; ++i) text += "v " + std::to_string(i) + " 0 0\n";
  for (int i = 1; i < 65538; i += 3) {
    text += "f " + std::to_string(i) + " " + std::to_string(i + 1) + " " + std::to_string(i + 2);
    text += "\n";
  }
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.obj", text));
  const Mesh& mesh = *mesh_of(*model, 0);
  ASSERT_EQ(mesh.get_data()->get_num_vertices(), 65538u);
  EXPECT_EQ(mesh.get_data()->get_index_bits(), 32);
  const std::vector<unsigned int> indices = face_indices(mesh);
  for (unsigned int i = 0; i < 65538; ++i) ASSERT_EQ(indices[i], i);
  EXPECT_EQ(mesh.get_data()->get_position_4f(65537).x, 65537.0f);
}

TEST_F(Loader3D_OBJ_V2Test, UsesTheModelsVertexLayout) {
  MeshDataVertexAttribsAllocParams params;
  params.separate_vertex_arrays = false;
  Held<Model> model;
  model->set_mesh_vertex_alloc_params(params);
  ASSERT_TRUE(
      load(*model, "a.obj", std::string(SQUARE) + "vt 0.5 1\nvn 0 0 1\nf 1/1/1 2/1/1 3/1/1\n"));
  ASSERT_FALSE(mesh_of(*model, 0)->get_data()->has_separate_vertex_arrays());
  const Vertex& vertex = *mesh_of(*model, 0)->get_vertex(2);
  EXPECT_EQ(vertex.position, vec4(2, 2, 0));
  EXPECT_EQ(vertex.uv0, vec4(0.5f, 1, 0, 1));
  EXPECT_EQ(vertex.normal, vec4(0, 0, 1));
  EXPECT_EQ(vertex.color, vec4(1, 1, 1, 1));
}

TEST_F(Loader3D_OBJ_V2Test, AFileWithoutFacesIsASuccessWithoutMeshes) {
  Held<Model> model;
  EXPECT_TRUE(load(*model, "a.obj", SQUARE));
  EXPECT_TRUE(load(*model, "b.obj", ""));
  EXPECT_TRUE(load(*model, "c.obj", std::string(SQUARE) + "o lines\nl 1 2 3\n"));
  EXPECT_EQ(model->get_num_children(), 0u);
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
  folder.write("a.mtl",
               "newmtl a\nKa 0.5 0.25 1\nKd 1 2 3\nKs 4 5 6\nTf 7 8 9\nKe 10 11 12\nNs 500\n"
               "Ni 1.5\nd 0.75\nillum 2\nmap_Ka a.png\nmap_Kd d.png\nmap_Ks s.png\nmap_Ns n.png\n"
               "map_bump b.png\nmap_d alpha.png\ndisp disp.png\nzz last\nown thing\n");
  Held<Model> model;
  LogCapture log(LOG_LEVEL_INFO);
  ASSERT_TRUE(load(*model, "a.obj",
                   std::string(SQUARE) + "vt 0 0\nvn 0 0 1\nmtllib a.mtl\n"
                                         "o square\nusemtl a\nf 1/1/1 2/1/1 3/1/1 4/1/1\n"));
  std::vector<std::string> expected = {
      "Number of meshes: 1",
      "meshes[0].name = square",
      "meshes[0].positions: 12",
      "meshes[0].normals: 12",
      "meshes[0].texcoords: 8",
      "meshes[0].indices: 6",
      "meshes[0].material_ids: 2",
      "Number of materials: 1",
      "material[0].name = a",
      "  material.Ka = (0.500000, 0.250000 ,1.000000)",
      "  material.Kd = (1.000000, 2.000000 ,3.000000)",
      "  material.Ks = (4.000000, 5.000000 ,6.000000)",
      "  material.Tr = (7.000000, 8.000000 ,9.000000)",
      "  material.Ke = (10.000000, 11.000000 ,12.000000)",
      "  material.Ns = 500.000000",
      "  material.Ni = 1.500000",
      "  material.dissolve = 0.750000",
      "  material.illum = 2",
      "  material.map_Ka = a.png",
      "  material.map_Kd = d.png",
      "  material.map_Ks = s.png",
      "  material.map_Ns = n.png",
      "  material.map_bump = b.png",
      "  material.map_d = alpha.png",
      "  material.disp = disp.png",
      "  material.own = thing",
      "  material.zz = last",
  };
  for (std::string& line : expected) line.insert(0, "[ObjLoaderV2] ");
  EXPECT_EQ(log.lines(), expected);
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
  EXPECT_THAT(shape.indices, ElementsAre(0u, 1u, 2u, 0u));
  EXPECT_TRUE(shape.has_normals && shape.has_texcoords);
  ASSERT_EQ(shape.vertices.size(), 3u);
  const vec4 positions[] = {{1, 2, 3}, {0, 0, 0}, {0, 0, 0}};
  const vec4 normals[] = {{0, 0, 1}, {0, 0, 0}, {0, 0, 0}};
  const vec4 texcoords[] = {{0.5f, 0.25f, 0}, {0, 0, 0}, {0, 0, 0}};
  for (std::size_t i = 0; i < 3; ++i) {
    const detail::TinyobjCorner& vertex = shape.vertices[i];
    EXPECT_EQ(detail::tinyobj_element<3>(attrib.vertices, vertex.position), positions[i]);
    EXPECT_EQ(detail::tinyobj_element<3>(attrib.normals, vertex.normal), normals[i]);
    EXPECT_EQ(detail::tinyobj_element<2>(attrib.texcoords, vertex.texcoord), texcoords[i]);
  }
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
