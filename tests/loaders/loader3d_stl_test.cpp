#include <orv/loaders/loader3d_stl.h>

#include "loaders/loader_support.h"
#include "loaders/stl_reader.h"
#include "support/log_capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace orv::test {
namespace {

using testing::ElementsAre;

class Loader3D_STLTest : public LoaderTest<Loader3D_STL> {};

/// A file of triangles whose coordinates count up from 1, with the normal (0.5, 0.25, 0.125).
std::string make_stl(std::uint32_t count, std::uint32_t told, const char* header = "made here") {
  std::string text(80, '\0');
  text.replace(0, std::strlen(header), header);
  text.append(reinterpret_cast<const char*>(&told), 4);
  float next = 1.0f;
  for (std::uint32_t i = 0; i < count; ++i) {
    float record[12] = {0.5f, 0.25f, 0.125f};
    for (int k = 3; k < 12; ++k) record[k] = next++;
    text.append(reinterpret_cast<const char*>(record), sizeof(record));
    text.append("xy");
  }
  return text;
}

TEST_F(Loader3D_STLTest, SwapsTheAxes) {
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.STL", make_stl(1, 1)));
  ASSERT_EQ(model->get_num_children(), 1u);
  EXPECT_THAT(mesh_positions(*mesh_of(*model, 0)),
              ElementsAre(vec4(1, -3, 2), vec4(4, -6, 5), vec4(7, -9, 8)));
  MeshData& data = *mesh_of(*model, 0)->get_mesh_data();
  for (unsigned int i = 0; i < 3; ++i) {
    EXPECT_EQ(data.get_normal(i), vec4(0.5f, -0.125f, 0.25f, 0));
    EXPECT_EQ(data.get_color(i), vec4(1, 1, 1, 1));
  }
  EXPECT_EQ(data.get_num_faces(), 0u);
  EXPECT_EQ(data.get_draw_count(), 3);
  EXPECT_EQ(model->get_child(0)->get_parent(), model.get());
}

TEST_F(Loader3D_STLTest, NoTrianglesMakeNoMeshAndNoFailure) {
  Held<Model> model;
  EXPECT_TRUE(load(*model, "a.stl", make_stl(0, 0)));
  EXPECT_TRUE(load(*model, "b.stl", ""));
  EXPECT_EQ(model->get_num_children(), 0u);
}

TEST_F(Loader3D_STLTest, TakesTheTrianglesThatAreThere) {
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.stl", make_stl(2, 0xFFFFFFFFu)));
  EXPECT_EQ(mesh_of(*model, 0)->get_data()->get_num_vertices(), 6u);
  Held<Model> shorter;
  ASSERT_TRUE(load(*shorter, "a.stl", make_stl(2, 1)));
  EXPECT_EQ(mesh_of(*shorter, 0)->get_data()->get_num_vertices(), 3u);
}

TEST_F(Loader3D_STLTest, TextFormGivesNoMesh) {
  Held<Model> model;
  EXPECT_TRUE(load(*model, "a.stl",
                   "solid x\nfacet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 1 0 0\n"
                   "vertex 0 1 0\nendloop\nendfacet\nendsolid x\n"));
  EXPECT_EQ(model->get_num_children(), 0u);
}

TEST_F(Loader3D_STLTest, BinaryFormMayBeginWithSolid) {
  Held<Model> model;
  ASSERT_TRUE(load(*model, "a.stl", make_stl(2, 2, "solid part")));
  EXPECT_EQ(model->get_num_children(), 1u);
  ASSERT_TRUE(load(*model, "a.stl", make_stl(2, 3, "solid part")));
  EXPECT_EQ(model->get_num_children(), 1u);
}

TEST_F(Loader3D_STLTest, InterleavedGeometryHoldsTheSame) {
  MeshDataVertexAttribsAllocParams params;
  params.separate_vertex_arrays = false;
  Held<Model> model;
  model->set_mesh_vertex_alloc_params(params);
  ASSERT_TRUE(load(*model, "a.stl", make_stl(1, 1)));
  EXPECT_EQ(mesh_of(*model, 0)->get_vertex(1)->position, vec4(4, -6, 5));
  EXPECT_EQ(mesh_of(*model, 0)->get_vertex(1)->normal, vec4(0.5f, -0.125f, 0.25f, 0));
}

TEST_F(Loader3D_STLTest, LogsAFileThatItCannotOpen) {
  LogCapture log;
  Held<Model> model;
  EXPECT_FALSE(loader.load_model(model, "none.stl"));
  EXPECT_TRUE(log.contains("unable to load file: " + folder.path() + "/none.stl"));
  EXPECT_FALSE(loader.load_model(model, ".stl"));
  EXPECT_FALSE(loader.load_model(model, "a.obj"));
  EXPECT_FALSE(loader.load_model(nullptr, "a.stl"));
  EXPECT_FALSE(loader.load_model(model, nullptr));
}

TEST_F(Loader3D_STLTest, EveryTruncationIsASuccess) {
  const std::string text = make_stl(3, 3);
  for (std::size_t size = 0; size <= text.size(); ++size) {
    const std::vector<unsigned char> bytes(text.begin(),
                                           text.begin() + static_cast<std::ptrdiff_t>(size));
    const detail::StlTriangles triangles = detail::find_stl_triangles(bytes.data(), bytes.size());
    ASSERT_EQ(triangles.count, size < 84 ? 0 : (size - 84) / 50);
    Held<Model> model;
    detail::build_stl_model(triangles, *model);
    ASSERT_EQ(model->get_num_children(), triangles.count > 0 ? 1u : 0u);
    if (triangles.count == 0) continue;
    ASSERT_EQ(mesh_of(*model, 0)->get_data()->get_num_vertices(), triangles.count * 3);
  }
}

}  // namespace
}  // namespace orv::test
