#include "viewer/mesh_area.h"

#include "apps/viewer/loaded_file.h"

namespace viewer {
namespace {

class MeshArea : public LoadedFileTest {
 protected:
  bool is_visible(const std::string& corners) {
    return load_text(corners + "f 1 2 3\n") && has_visible_triangle(get_mesh());
  }
};

TEST_F(MeshArea, OfTrianglesOfAnySize) {
  EXPECT_TRUE(is_visible("v 0 0 0\nv 1 0 0\nv 0 1 0\n"));
  EXPECT_TRUE(is_visible("v 0 0 0\nv 1e-25 0 0\nv 0 1e-25 0\n"));
  EXPECT_TRUE(is_visible("v 0 0 0\nv 1e25 0 0\nv 0 1e25 0\n"));
  EXPECT_TRUE(is_visible("v 0 0 0\nv 1 0 0\nv 0 1e-5 0\n")) << "a needle";
}

TEST_F(MeshArea, IsNotWhatRoundingLeavesOfALine) {
  EXPECT_FALSE(is_visible("v 0 0 0\nv 1 0 0\nv 2 0 0\n"));
  EXPECT_FALSE(is_visible("v 0.1 0.3 0.7\nv 0.2 0.6 1.4\nv 0.3 0.9 2.1\n"));
  EXPECT_FALSE(is_visible("v 0 0 0\nv 1 2 3\nv 1 2 3\n"));
}

TEST_F(MeshArea, OneTriangleOfManyIsEnough) {
  ASSERT_TRUE(load_text("v 0 0 0\nv 1 0 0\nv 2 0 0\nv 0 1 0\nf 1 2 3\nf 1 1 2\nf 1 2 4\n"));
  EXPECT_TRUE(has_visible_triangle(get_mesh()));
}

TEST_F(MeshArea, OfMeshesWithoutFacesToo) {
  ASSERT_TRUE(load_data("stl/20mm-xyz-cube.stl")) << reason_;
  ASSERT_EQ(get_mesh().get_num_faces(nullptr), 0u);
  EXPECT_TRUE(has_visible_triangle(get_mesh()));
  for (unsigned int i = 0; i < get_mesh().get_num_vertices(nullptr); ++i) {
    get_mesh().set_vertex_position(i, orv::vec4(static_cast<float>(i), 0.0f, 0.0f, 1.0f));
  }
  EXPECT_FALSE(has_visible_triangle(get_mesh()));
}

}  // namespace
}  // namespace viewer
