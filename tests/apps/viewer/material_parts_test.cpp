#include "viewer/material_parts.h"

#include "apps/viewer/loaded_file.h"

namespace viewer {
namespace {

class MaterialParts : public LoadedFileTest {
 protected:
  // Faces of three materials taking turns, the last with a single face.
  void load_mixed() {
    folder_.write("m.mtl", "newmtl a\nKd 1 0 0\nnewmtl b\nKd 0 1 0\nnewmtl c\nKd 0 0 1\n");
    std::string obj = "mtllib m.mtl\nvn 0 0 1\n";
    for (int i = 0; i < 5; ++i) {
      const std::string z = std::to_string(i);
      obj += "v 0 0 " + z + "\nv 1 0 " + z + "\nv 0 1 " + z + "\n";
    }
    obj += "usemtl a\nf -15//1 -14//1 -13//1\nusemtl b\nf -12//1 -11//1 -10//1\n";
    obj += "usemtl a\nf -9//1 -8//1 -7//1\nusemtl c\nf -6//1 -5//1 -4//1\n";
    obj += "usemtl b\nf -3//1 -2//1 -1//1\n";
    ASSERT_TRUE(load_text(obj)) << reason_;
  }
};

TEST_F(MaterialParts, EachMaterialIsOneRunOfFaces) {
  load_mixed();
  ASSERT_EQ(file_->get_parts().size(), 3u);
  const char* names[] = {"a", "b", "c"};
  const int counts[] = {2, 2, 1};
  const float heights[][2] = {{0, 2}, {1, 4}, {3, 3}};
  for (std::size_t i = 0; i < 3; ++i) {
    const Part& part = file_->get_parts()[i];
    EXPECT_STREQ(part.material->get_name(), names[i]);
    const orv::MaterialSubset& subset = part.mesh->get_mesh_data()->get_subsets_ptr()[part.subset];
    EXPECT_EQ(subset.material_id, part.material->get_id());
    ASSERT_EQ(subset.end_face - static_cast<int>(subset.start_face) + 1, counts[i]);
    for (int k = 0; k < counts[i]; ++k) {
      unsigned int vertex = 0;
      part.mesh->get_face_indexes(subset.start_face + static_cast<unsigned int>(k), &vertex,
                                  nullptr, nullptr);
      EXPECT_EQ(part.mesh->get_vertex_position(vertex).z, heights[i][k]) << names[i];
    }
  }
}

TEST_F(MaterialParts, MeshOfOneMaterialIsOnePart) {
  ASSERT_TRUE(load_data("obj/two_objects.obj")) << reason_;
  for (const Part& part : file_->get_parts()) EXPECT_EQ(part.subset, -1);
}

TEST_F(MaterialParts, MeshWithoutMaterialsHasNone) {
  ASSERT_TRUE(load_data("stl/20mm-xyz-cube.stl")) << reason_;
  ASSERT_EQ(file_->get_parts().size(), 1u);
  EXPECT_EQ(file_->get_parts()[0].material, nullptr);
}

}  // namespace
}  // namespace viewer
