#include "viewer/mesh_normals.h"

#include "apps/viewer/loaded_file.h"

namespace viewer {
namespace {

class MeshNormals : public LoadedFileTest {};

float dot(const orv::vec4& a, float x, float y, float z) { return a.x * x + a.y * y + a.z * z; }

TEST_F(MeshNormals, FlatAcrossASharpEdge) {
  ASSERT_TRUE(
      load_text("v 0 0 0\nv 1 0 0\nv 0 0 -1\nv 0 -1 0\n"
                "f 1 2 3\n"     // faces up
                "f 1 4 2\n"));  // faces forth
  ASSERT_EQ(get_mesh().get_num_vertices(nullptr), 6u);
  for (unsigned int i = 0; i < 3; ++i) {
    EXPECT_NEAR(dot(get_mesh().get_vertex_normal(i), 0, 1, 0), 1.0f, 1e-5f) << i;
    EXPECT_NEAR(dot(get_mesh().get_vertex_normal(i + 3), 0, 0, 1), 1.0f, 1e-5f) << i;
  }
}

TEST_F(MeshNormals, SmoothAcrossAFlatEdgeWeightedByArea) {
  // A roof of 20 degrees on each side of the line from 1 to 2.
  ASSERT_TRUE(
      load_text("v 0 0 1\nv 0 0 -1\nv 1 -0.364 0\nv -1 -0.364 0\n"
                "f 1 3 2\nf 1 2 4\n"));
  int on_the_ridge = 0;
  for (unsigned int i = 0; i < 6; ++i) {
    const bool ridge = get_mesh().get_vertex_position(i).x == 0.0f;
    on_the_ridge += ridge;
    EXPECT_NEAR(dot(get_mesh().get_vertex_normal(i), 0, 1, 0), ridge ? 1.0f : 0.9397f, 1e-3f) << i;
  }
  EXPECT_EQ(on_the_ridge, 4);
}

TEST_F(MeshNormals, SmoothAcrossTwoMeshes) {
  ASSERT_TRUE(
      load_text("v 0 0 1\nv 0 0 -1\nv 1 -0.364 0\nv -1 -0.364 0\n"
                "o a\nf 1 3 2\no b\nf 1 2 4\n"));
  ASSERT_EQ(file_->get_parts().size(), 2u);
  for (std::size_t part : {0u, 1u}) {
    for (unsigned int i = 0; i < 3; ++i) {
      const bool ridge = get_mesh(part).get_vertex_position(i).x == 0.0f;
      EXPECT_NEAR(dot(get_mesh(part).get_vertex_normal(i), 0, 1, 0), ridge ? 1.0f : 0.9397f, 1e-3f);
    }
  }
}

TEST_F(MeshNormals, ThoseOfTheFileAreKept) {
  ASSERT_TRUE(load_text("v 0 0 0\nv 1 0 0\nv 0 1 0\nvn 1 0 0\nf 1//1 2//1 3//1\n"));
  EXPECT_FALSE(lacks_normals(get_mesh()));
  EXPECT_EQ(get_mesh().get_vertex_normal(0).x, 1.0f);
}

TEST_F(MeshNormals, ManyFacesAtOnePlaceAreSmoothAllRoundAndFast) {
  std::string fan = "v 0 0 0\n";
  constexpr int count = 20000;
  for (int i = 0; i < count; ++i) {
    const double angle = i * 6.283185307 / count;
    fan +=
        "v " + std::to_string(std::cos(angle)) + " -1 " + std::to_string(-std::sin(angle)) + "\n";
  }
  for (int i = 0; i < count; ++i) {
    fan += "f 1 " + std::to_string(i + 2) + " " + std::to_string((i + 1) % count + 2) + "\n";
  }
  ASSERT_TRUE(load_text(fan));
  for (unsigned int i = 0; i < get_mesh().get_num_vertices(nullptr); ++i) {
    if (get_mesh().get_vertex_position(i).y != 0.0f) continue;
    ASSERT_NEAR(dot(get_mesh().get_vertex_normal(i), 0, 1, 0), 1.0f, 1e-2f) << i;
  }
}

TEST_F(MeshNormals, UnsharingKeepsPositionsTextureCoordinatesAndMaterials) {
  folder_.write("two.mtl", "newmtl red\nKd 1 0 0\nnewmtl blue\nKd 0 0 1\n");
  ASSERT_TRUE(load_text(
      "mtllib two.mtl\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n"
      "usemtl red\nf 1/1 2/2 3/3\nusemtl blue\nf 1/1 3/3 4/4\n"));
  orv::Mesh& mesh = get_mesh();
  ASSERT_EQ(mesh.get_num_vertices(nullptr), 6u);
  for (unsigned int i = 0; i < 6; ++i) {
    EXPECT_EQ(mesh.get_vertex_position(i).x, mesh.get_vertex_uv(i, 0).x) << i;
    EXPECT_EQ(mesh.get_vertex_position(i).y, mesh.get_vertex_uv(i, 0).y) << i;
    EXPECT_EQ(mesh.get_vertex_color(i).x, 1.0f) << i;
  }
  EXPECT_FALSE(unshare_vertices(mesh)) << "nothing is shared any more";
  ASSERT_EQ(file_->get_parts().size(), 2u);
  EXPECT_STREQ(file_->get_parts()[0].material->get_name(), "red");
  EXPECT_STREQ(file_->get_parts()[1].material->get_name(), "blue");
}

}  // namespace
}  // namespace viewer
